/* SPDX-License-Identifier: Apache-2.0 */
/* libzetcore: the core services that libzeti imports. */
#ifndef ZETCORE_H
#define ZETCORE_H

#if defined(__GNUC__)
#define ZETCORE_API __attribute__((visibility("default")))
#else
#define ZETCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A block of at least `bytes` bytes aligned to 64 bytes, or null. */
ZETCORE_API void *zetMalloc(int bytes);

/* Releases a block from zetMalloc; null is harmless. */
ZETCORE_API void zetFree(void *block);

/* Writes the size in bytes of the largest cache and returns 0, or returns non-zero where it is not known. */
ZETCORE_API int zetGetMaxCacheSizeB(int *pSizeByte);

/* The number of threads a call may use, at least 1; follows the OpenMP runtime's own settings. */
ZETCORE_API int ownGetNumThreads(void);

#ifdef __cplusplus
}
#endif

#endif
