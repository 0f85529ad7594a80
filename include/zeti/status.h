/* SPDX-License-Identifier: Apache-2.0 */
/* Status codes: negative values are errors (the destination is untouched), positive values are warnings
   that come with a complete result. */
#ifndef ZETI_STATUS_H
#define ZETI_STATUS_H

typedef enum {
    zetStsNoErr = 0,                       /* success */
    zetStsNoOperation = 1,                 /* nothing to do: empty region after clipping, or zero-sized region where a family accepts one */
    zetStsSqrtNegArg = 3,                  /* square root of a negative value in some pixel */
    zetStsDivByZero = 6,                   /* a division by zero occurred in some pixel; the result is saturated there */
    zetStsLnZeroArg = 7,                   /* logarithm of zero in some pixel */
    zetStsLnNegArg = 8,                    /* logarithm of a negative value in some pixel */
    zetStsAffineQuadChanged = 28,          /* the given quadrangle is no parallelogram; the affine fit is used */
    zetStsWrongIntersectROI = 29,          /* region does not meet the image; nothing done */
    zetStsWrongIntersectQuad = 30,         /* quadrangle does not meet the image; nothing done */
    zetStsEvenMedianWeight = 39,           /* even centre weight was lowered to the next odd value */
    zetStsNoAntialiasing = 46,             /* the function works, but without antialiasing */
    zetStsSizeWrn = 48,                    /* requested destination exceeds the prepared size; clipped and done */
    zetStsNoMemErr = -4,                   /* allocation for a kernel set failed */
    zetStsBadArgErr = -5,                  /* a numeric argument out of its domain */
    zetStsSizeErr = -6,                    /* width or height not positive, or below a family's minimum */
    zetStsRangeErr = -7,                   /* empty or inverted range */
    zetStsNullPtrErr = -8,                 /* null pointer */
    zetStsMemAllocErr = -9,                /* a work buffer could not be allocated */
    zetStsDivByZeroErr = -10,              /* a zero divisor passed by the caller */
    zetStsOutOfRangeErr = -11,             /* a value outside the allowed range */
    zetStsScaleRangeErr = -13,             /* range of Scale is empty */
    zetStsStepErr = -14,                   /* step not positive */
    zetStsFftOrderErr = -15,               /* transform order above 30 */
    zetStsFftFlagErr = -16,                /* unknown normalisation flag */
    zetStsContextMatchErr = -17,           /* state record has the wrong identity tag */
    zetStsThresholdErr = -18,              /* lower threshold above upper */
    zetStsMoment00ZeroErr = -20,           /* the zeroth moment is too small to normalise */
    zetStsMirrorFlipErr = -21,             /* axis value unknown */
    zetStsInterpolationErr = -22,          /* interpolation code unknown */
    zetStsResizeFactorErr = -23,           /* a resize factor is not positive */
    zetStsFIRLenErr = -26,                 /* filter tap count below 1 */
    zetStsFIRMRPhaseErr = -28,             /* phase out of range */
    zetStsFIRMRFactorErr = -29,            /* factor not positive */
    zetStsMaskSizeErr = -33,               /* mask dimension not positive, or not one of the codes */
    zetStsAnchorErr = -34,                 /* anchor outside the mask */
    zetStsEpsValErr = -36,                 /* a negative epsilon */
    zetStsStrideErr = -37,                 /* step smaller than one row of the region */
    zetStsCOIErr = -47,                    /* channel index beyond what the state holds */
    zetStsAlphaTypeErr = -50,              /* alpha operator above 11 */
    zetStsDivisorErr = -51,                /* zero divisor of a kernel */
    zetStsChannelErr = -53,                /* channel count not 1, 3 or 4 */
    zetStsQuadErr = -56,                   /* quadrangle degenerate */
    zetStsRectErr = -57,                   /* a rectangle is empty */
    zetStsCoeffErr = -58,                  /* coefficients degenerate */
    zetStsZeroMaskValuesErr = -59,         /* a morphology mask holds no non-zero byte */
    zetStsChannelOrderErr = -60,           /* a channel index above 3 */
    zetStsLUTNofLevelsErr = -106,          /* fewer than 2 levels */
    zetStsHistoNofLevelsErr = -107,        /* fewer than 2 levels */
    zetStsStepAlignErr = -108,             /* steps of a float image not a multiple of 4 */
    zetStsNoiseValErr = -125,              /* noise argument out of its range */
    zetStsResizeTooSmallErr = -201,        /* result of a subsampled format would have no chroma */
    zetStsQualityIndexErr = -210,          /* denominator of the index vanished; the result is the library's float infinity constant */
    zetStsWeightErr = -211,                /* centre weight below 1 */
    zetStsDecimateFractionErr = -212,      /* fraction code not in the table */
    zetStsRoundModeNotSupportedErr = -213, /* round mode other than the three of ZetRoundMode */
    zetStsBorderErr = -225,                /* border type flags outside the mask or not a supported one */
    zetStsOddOffsetErr = -227,             /* an odd start position for a subsampled format */
    zetStsNotSupportedModeErr = -9999      /* an enumerated mode argument not supported here */
} ZetStatus;

#endif
