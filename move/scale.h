// SPDX-License-Identifier: Apache-2.0
// Scale. The whole range of one sample type goes onto the whole range of another.
#pragma once

#include "move/convert_rows.h"
#include "signal/scale.h"

namespace zeti {

namespace detail {

// Samples from which a destination is written past the cache: both images together have half a mebibyte then.
template <class S, class D> inline constexpr int64_t scale_streams_from = sizeof(S) + sizeof(D) == 3 ? 174762 : 104858;

template <class L, class Kernel, class S, class D>
void scale_image(const Kernel& kernel, const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roi) {
    const bool large = area(samples(roi, L::channels)) >= scale_streams_from<S, D>;
    run_conversion<L>(kernel, Src<S>{pSrc, srcStep}, Dst<D>{pDst, dstStep}, roi, large);
}

// A function of its own: its kernel's constants are floats, and must not be formed before the float state is set.
template <class Kernel, class L, class S, class D>
[[gnu::noinline]] void scale_range(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roi, Zet32f vMin, Zet32f vMax) {
    scale_image<L>(Kernel(vMin, vMax), pSrc, srcStep, pDst, dstStep, roi);
}

} // namespace detail

// To a wider integer.
template <class S, class D, class L> ZetStatus scale(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize), step(srcStep, dstStep))) return bad;
    detail::scale_image<L>(ScaleUp<D>(), pSrc, srcStep, pDst, dstStep, roiSize);
    return zetStsNoErr;
}

// From a wider integer.
template <class S, class D, class L>
ZetStatus scale(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize, ZetHintAlgorithm hint) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize), step(srcStep, dstStep))) return bad;
    if (hint == zetAlgHintAccurate) detail::scale_image<L>(ScaleDownAccurate<S>(), pSrc, srcStep, pDst, dstStep, roiSize);
    else detail::scale_image<L>(ScaleDownFast<S>(), pSrc, srcStep, pDst, dstStep, roiSize);
    return zetStsNoErr;
}

// To and from floats of a given range, which is tested before all else: vMax - vMin is positive exactly where vMin is less.
template <class S, class D, class L>
ZetStatus scale(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize, Zet32f vMin, Zet32f vMax) {
    using Kernel = std::conditional_t<std::is_same_v<S, Zet32f>, ScaleFromFloat, ScaleToFloat>;
    if (ZetStatus bad = first(fails(!less(vMin, vMax), zetStsScaleRangeErr), null(pSrc, pDst), size(roiSize), step(srcStep, dstStep)))
        return bad;
    const FloatState state;
    detail::scale_range<Kernel, L>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
    return zetStsNoErr;
}

} // namespace zeti
