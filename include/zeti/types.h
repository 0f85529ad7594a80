/* SPDX-License-Identifier: Apache-2.0 */
/* Sample types and records. */
#ifndef ZETI_TYPES_H
#define ZETI_TYPES_H

#if defined(__GNUC__)
#define ZETI_API __attribute__((visibility("default")))
#define ZETI_EXTENSION __extension__
#else
#define ZETI_API
#define ZETI_EXTENSION
#endif

/* Enumerations are signed 32-bit numbers, and a function may be given any number for one. */
#if defined(__cplusplus) && __cplusplus >= 201103L
#define ZETI_INT_ENUM : int
#else
#define ZETI_INT_ENUM
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Zet8u;
typedef signed char Zet8s;
typedef unsigned short Zet16u;
typedef signed short Zet16s;
typedef unsigned int Zet32u;
typedef signed int Zet32s;
typedef float Zet32f;
ZETI_EXTENSION typedef long long Zet64s;
typedef double Zet64f;

/* Complex samples: real part, then imaginary part. */
typedef struct {
    Zet16s re;
    Zet16s im;
} Zet16sc;

typedef struct {
    Zet32s re;
    Zet32s im;
} Zet32sc;

typedef struct {
    Zet32f re;
    Zet32f im;
} Zet32fc;

/* Extent of a region in pixels. */
typedef struct {
    int width;
    int height;
} ZetiSize;

typedef struct {
    int x;
    int y;
} ZetiPoint;

typedef struct {
    int x;
    int y;
    int width;
    int height;
} ZetiRect;

/* How an integer result is rounded. */
typedef enum ZETI_INT_ENUM {
    zetRndZero = 0,     /* towards zero */
    zetRndNear = 1,     /* to nearest, ties to even */
    zetRndFinancial = 2 /* to nearest, ties away from zero */
} ZetRoundMode;

typedef struct {
    int major;
    int minor;
    int majorBuild;
    int build;
    char targetCpu[4];
    const char *Name;
    const char *Version;
    const char *BuildDate;
} ZetLibraryVersion;

/* How the first of two images covers the second one; on premultiplied images the colours are alpha times colour already. */
typedef enum ZETI_INT_ENUM {
    zetAlphaOver = 0,
    zetAlphaIn = 1,
    zetAlphaOut = 2,
    zetAlphaATop = 3,
    zetAlphaXor = 4,
    zetAlphaPlus = 5,
    zetAlphaOverPremul = 6,
    zetAlphaInPremul = 7,
    zetAlphaOutPremul = 8,
    zetAlphaATopPremul = 9,
    zetAlphaXorPremul = 10,
    zetAlphaPlusPremul = 11
} ZetAlphaType;

/* Speed or accuracy, where a function has a path for each: the value 2 takes the accurate one, any other the fast one. */
/* clang-format off */
typedef enum ZETI_INT_ENUM {
    zetAlgHintNone = 0,
    zetAlgHintFast = 1,
    zetAlgHintAccurate = 2
} ZetHintAlgorithm;

/* A comparison of the first operand against the second. */
typedef enum ZETI_INT_ENUM {
    zetCmpLess = 0,
    zetCmpLessEq = 1,
    zetCmpEq = 2,
    zetCmpGreaterEq = 3,
    zetCmpGreater = 4
} ZetCmpOp;
/* clang-format on */

/* Sums over an image, from MomentInitAlloc or MomentInit; Moments64f and Moments64s fill them, and getters answer from them. */
typedef struct ZetiMomentState_64f ZetiMomentState_64f;
typedef struct ZetiMomentState_64s ZetiMomentState_64s;

#ifdef __cplusplus
}
#endif

#endif
