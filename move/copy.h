// SPDX-License-Identifier: Apache-2.0
// Copy and CopyManaged. No step is checked; rows are walked by the steps as they stand.
#pragma once

#include "core/check.h"
#include "move/masked.h"
#include "move/rows.h"
#include "signal/channels.h"

namespace zeti {

namespace detail {

// One channel of a pixel to one channel of another. No other channel of the destination is touched, not even to be stored again: other
// threads may be at them.
template <int From, int To, class T> void copy_channel(const T* src, T* dst, ptrdiff_t width) {
#pragma GCC unroll 8
    for (ptrdiff_t x = 0; x < width; ++x) put(dst + x * To, get(src + x * From));
}

template <class Block, class T> void copy_blocks(const T* src, T* dst, ptrdiff_t width) {
    const Zet8u* const from = reinterpret_cast<const Zet8u*>(src);
    Zet8u* const to = reinterpret_cast<Zet8u*>(dst);
    block_row(Block(), &from, &to, width);
}

// Rows of layouts that are no plain move of samples.
template <class L, class T> void copy_row(const T* src, T* dst, ptrdiff_t width) {
    if constexpr (std::is_same_v<L, C3C>) copy_channel<3, 3>(src, dst, width);
    else if constexpr (std::is_same_v<L, C4C>) copy_channel<4, 4>(src, dst, width);
    else if constexpr (std::is_same_v<L, C1C3>) copy_channel<1, 3>(src, dst, width);
    else if constexpr (std::is_same_v<L, C1C4>) copy_channel<1, 4>(src, dst, width);
    else if constexpr (std::is_same_v<L, C3C1>) copy_blocks<SplitChannels<sizeof(T), 3, 1>>(src, dst, width);
    else if constexpr (std::is_same_v<L, C4C1>) copy_blocks<SplitChannels<sizeof(T), 4, 1>>(src, dst, width);
    else if constexpr (std::is_same_v<L, AC4C3>) copy_blocks<NarrowPixels<sizeof(T)>>(src, dst, width);
    else copy_blocks<WidenPixels<sizeof(T), true>>(src, dst, width);
}

// Plane images lie without gaps when their rows are as wide as their step and the interleaved rows follow suit.
inline Extent collapsed_planes(Extent e, int channels, ptrdiff_t sampleBytes, ptrdiff_t planeStep, ptrdiff_t interleavedStep) {
    return collapsed(e, e.width * sampleBytes, planeStep, interleavedStep == channels * planeStep ? planeStep : -1);
}

} // namespace detail

// Interleaved to interleaved.
template <class T, class L> ZetStatus copy(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    const Src<T> src{pSrc, srcStep};
    const Dst<T> dst{pDst, dstStep};
    if constexpr (std::is_same_v<L, AC4>) {
        const Extent e = samples(roiSize, 4), run = collapsed(e, e.width * ptrdiff_t{sizeof(T)}, src.step, dst.step);
        TakeFirst take;
        rows<KeepAlpha<T, 4>>(operand_of(src), Src<T>(dst), dst, run.width, run.height, take);
    } else if constexpr (requires { L::channels == L::colours; } && !std::is_same_v<L, C3C> && !std::is_same_v<L, C4C>) {
        copy_samples(src, dst, samples(roiSize, L::channels));
    } else {
        constexpr bool one = requires { L::channels; };
        using Sides = std::conditional_t<one, Pair<L, L>, L>;
        const Extent rows =
            collapsed_pixels(roiSize, srcStep, Sides::source::channels * sizeof(T), dstStep, Sides::destination::channels * sizeof(T));
        each_row(rows, [&](ptrdiff_t y) { detail::copy_row<L>(src.row(y), dst.row(y), rows.width); });
    }
    return zetStsNoErr;
}

// Interleaved to planes.
template <class T, class L> ZetStatus copy(const T* pSrc, int srcStep, T* const* pDst, int dstStep, ZetiSize roiSize) {
    constexpr int channels = L::source::channels;
    if (ZetStatus bad = first(null(pSrc), null_planes<channels>(pDst), size(roiSize))) return bad;
    const Extent rows = detail::collapsed_planes(samples(roiSize, 1), channels, sizeof(T), dstStep, srcStep);
    each_row(rows, [&](ptrdiff_t y) {
        const Zet8u* const from = as<Zet8u>(Src<T>{pSrc, srcStep}).row(y);
        Zet8u* to[channels];
        for (int c = 0; c < channels; ++c) to[c] = as<Zet8u>(Dst<T>{pDst[c], dstStep}).row(y);
        block_row(SplitChannels<sizeof(T), channels, channels>(), &from, to, rows.width);
    });
    return zetStsNoErr;
}

// Planes to interleaved.
template <class T, class L> ZetStatus copy(const T* const* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    constexpr int channels = L::destination::channels;
    if (ZetStatus bad = first(null_planes<channels>(pSrc), null(pDst), size(roiSize))) return bad;
    const Extent rows = detail::collapsed_planes(samples(roiSize, 1), channels, sizeof(T), srcStep, dstStep);
    each_row(rows, [&](ptrdiff_t y) {
        const Zet8u* from[channels];
        for (int c = 0; c < channels; ++c) from[c] = as<Zet8u>(Src<T>{pSrc[c], srcStep}).row(y);
        Zet8u* const to = as<Zet8u>(Dst<T>{pDst, dstStep}).row(y);
        block_row(JoinChannels<sizeof(T), channels>(), from, &to, rows.width);
    });
    return zetStsNoErr;
}

template <class T, class L>
ZetStatus copy_M(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, const Zet8u* pMask, int maskStep) {
    if (ZetStatus bad = first(null(pSrc, pDst, pMask), size(roiSize))) return bad;
    const Src<T> src{pSrc, srcStep};
    const Dst<T> dst{pDst, dstStep};
    const Src<Zet8u> mask{pMask, maskStep};
    each_row(samples(roiSize, 1), [&](ptrdiff_t y) {
        const T* const from = src.row(y);
        masked_row<T, L>([=](ptrdiff_t x) { return from + x * L::channels; }, dst.row(y), mask.row(y), roiSize.width);
    });
    return zetStsNoErr;
}

// Bit 0 of the flags asks for streaming stores, whatever the size.
template <class T, class L> ZetStatus copy_managed(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, int flags) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    const Extent e = samples(roiSize, 1);
    const Extent rows = area(e) <= max_of<Zet32s> ? collapsed(e, e.width, srcStep, dstStep) : e;
    copy_bytes({pSrc, srcStep}, {pDst, dstStep}, rows, flags & 1 ? Cache::streaming : Cache::plain);
    return zetStsNoErr;
}

} // namespace zeti
