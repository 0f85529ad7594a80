// SPDX-License-Identifier: Apache-2.0
// Set. No step is checked.
#pragma once

#include "core/check.h"
#include "move/masked.h"
#include "move/rows.h"

namespace zeti {

// One value: C1, and the channel of interest of C3C and C4C.
template <class T, class L> ZetStatus set(T value, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pDst), size(roiSize))) return bad;
    const Dst<T> dst{pDst, dstStep};
    if constexpr (L::channels == 1) {
        fill_samples(&value, 1, dst, samples(roiSize, 1));
    } else {
        each_row(samples(roiSize, 1), [&](ptrdiff_t y) {
            T* const to = dst.row(y);
            for (ptrdiff_t x = 0; x < roiSize.width; ++x) put(to + x * L::channels, value);
        });
    }
    return zetStsNoErr;
}

// One value per colour channel.
template <class T, class L> ZetStatus set(const T* value, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(value, pDst), size(roiSize))) return bad;
    const Dst<T> dst{pDst, dstStep};
    if constexpr (L::keeps_alpha) fill_colours<4>(value, dst, samples(roiSize, 4));
    else fill_samples(value, L::channels, dst, samples(roiSize, L::channels));
    return zetStsNoErr;
}

namespace detail {

template <class T, class L> void set_masked(const T* value, Dst<T> dst, Src<Zet8u> mask, ZetiSize roiSize) {
    constexpr int count = 16 * L::channels;
    T block[count]; // what a whole block of the mask writes
    for (int i = 0; i < count; ++i) block[i] = i % L::channels < L::colours ? value[i % L::channels] : T{};
    each_row(samples(roiSize, 1),
             [&](ptrdiff_t y) { masked_row<T, L>([&](ptrdiff_t) { return block; }, dst.row(y), mask.row(y), roiSize.width); });
}

} // namespace detail

template <class T, class L> ZetStatus set_M(T value, T* pDst, int dstStep, ZetiSize roiSize, const Zet8u* pMask, int maskStep) {
    if (ZetStatus bad = first(null(pDst, pMask), size(roiSize))) return bad;
    detail::set_masked<T, L>(&value, {pDst, dstStep}, {pMask, maskStep}, roiSize);
    return zetStsNoErr;
}

template <class T, class L> ZetStatus set_M(const T* value, T* pDst, int dstStep, ZetiSize roiSize, const Zet8u* pMask, int maskStep) {
    if (ZetStatus bad = first(null(value, pDst, pMask), size(roiSize))) return bad;
    detail::set_masked<T, L>(value, {pDst, dstStep}, {pMask, maskStep}, roiSize);
    return zetStsNoErr;
}

} // namespace zeti
