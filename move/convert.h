// SPDX-License-Identifier: Apache-2.0
// Convert. The sample type changes, the value stays, as far as the new type goes.
//
// The step is checked by the forms from 32f to 8 and 16 bits and by the one from bits, and by no other. The former advance by steps that
// are rounded down to whole samples, kept on purpose.
#pragma once

#include "move/convert_rows.h"
#include "signal/convert.h"
#include "signal/convert_bits.h"

namespace zeti {

namespace detail {

template <class L, class Kernel, class S, class D>
void convert_image(const Kernel& kernel, const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roi) {
    const int64_t bytes = area(samples(roi, L::channels)) * int64_t{sizeof(D)};
    run_conversion<L>(kernel, Src<S>{pSrc, srcStep}, Dst<D>{pDst, dstStep}, roi, bytes >= arithmetic_streams_from);
}

// Every mode but these two is the financial one.
template <class D, class Use> void with_rounding(ZetRoundMode mode, Use use) {
    if (mode == zetRndZero) use(TowardsZero());
    else if (mode == zetRndNear) use(ToNearest());
    else use(ToNearestAwayFromZero<D>());
}

template <class D, class L, class Scale>
ZetStatus convert_float(const Zet32f* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roi, ZetRoundMode mode, const Scale& scale) {
    constexpr bool whole_samples = sizeof(D) < 4;
    if (ZetStatus bad = first(null(pSrc, pDst), size(roi), whole_samples ? step(srcStep, dstStep) : zetStsNoErr)) return bad;
    constexpr int srcBits = whole_samples ? int{sizeof(Zet32f)} - 1 : 0, dstBits = whole_samples ? int{sizeof(D)} - 1 : 0;
    with_rounding<D>(mode, [&]<class Rounding>(Rounding) {
        convert_image<L>(ConvertFloat<D, Rounding, Scale>{scale}, pSrc, srcStep & ~srcBits, pDst, dstStep & ~dstBits, roi);
    });
    return zetStsNoErr;
}

} // namespace detail

template <class S, class D, class L> ZetStatus convert(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    detail::convert_image<L>(ConvertSaturated<S, D>(), pSrc, srcStep, pDst, dstStep, roiSize);
    return zetStsNoErr;
}

template <class S, class D, class L>
ZetStatus convert_scaled(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize, int scaleFactor) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    const auto run = [&](const auto& kernel) { detail::convert_image<L>(kernel, pSrc, srcStep, pDst, dstStep, roiSize); };
    using Down = ConvertScaledDown<S, D>;
    using Up = ConvertScaledUp<S, D>;
    if (scaleFactor > Down::greatest) clear<D, L>(Dst<D>{pDst, dstStep}, roiSize);
    else if (scaleFactor > 0) run(Down(scaleFactor));
    else if (scaleFactor == 0) run(ConvertSaturated<S, D>());
    else if (scaleFactor >= Up::least) run(Up(scaleFactor));
    else run(ConvertBound<S, D>());
    return zetStsNoErr;
}

template <class S, class D, class L>
ZetStatus convert_rounded(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize, ZetRoundMode roundMode) {
    return detail::convert_float<D, L>(pSrc, srcStep, pDst, dstStep, roiSize, roundMode, Unscaled32f());
}

template <class S, class D, class L>
ZetStatus convert_rounded_scaled(const S* pSrc, int srcStep, D* pDst, int dstStep, ZetiSize roiSize, ZetRoundMode roundMode,
                                 int scaleFactor) {
    return detail::convert_float<D, L>(pSrc, srcStep, pDst, dstStep, roiSize, roundMode, ScaleFloat(scaleFactor));
}

template <class S, class D, class L>
ZetStatus convert_rounded_scaled_I(D* pSrcDst, int srcDstStep, ZetiSize roiSize, ZetRoundMode roundMode, int scaleFactor) {
    return convert_rounded_scaled<S, D, L>(reinterpret_cast<const S*>(pSrcDst), srcDstStep, pSrcDst, srcDstStep, roiSize, roundMode,
                                           scaleFactor);
}

// A bit: no type of its own.
struct Zet1u;

// A negative offset is a bad size, found after the steps. One of more than 7 skips whole bytes.
template <class S, class D, class L>
ZetStatus convert_bits(const Zet8u* pSrc, int srcStep, int srcBitOffset, D* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize), step(srcStep, dstStep), fails(srcBitOffset < 0, zetStsSizeErr))) return bad;
    const Src<Zet8u> src{pSrc + srcBitOffset / 8, srcStep};
    const Dst<Zet8u> dst{pDst, dstStep};
    const Extent e = samples(roiSize, 1);
    const Extent rows = e.width % 8 == 0 && area(e) < max_of<Zet32s> && srcStep == e.width / 8 ? collapsed(e, e.width, dstStep) : e;
    each_row(rows, [&](ptrdiff_t y) { ownsConvert_1u8u(src.row(y), srcBitOffset % 8, dst.row(y), rows.width); });
    return zetStsNoErr;
}

} // namespace zeti
