// SPDX-License-Identifier: Apache-2.0
// Dup: one sample to all channels of a pixel. No step is checked.
#pragma once

#include "core/check.h"
#include "move/rows.h"

namespace zeti {

template <class T, class L> ZetStatus dup(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    constexpr int channels = L::destination::channels;
    const Src<T> src{pSrc, srcStep};
    const Dst<T> dst{pDst, dstStep};
    each_row(samples(roiSize, 1), [&](ptrdiff_t y) {
        const T* const from = src.row(y);
        T* const to = dst.row(y);
        for (ptrdiff_t x = 0; x < roiSize.width; ++x)
            for (int c = 0; c < channels; ++c) put(to + x * channels + c, get(from + x));
    });
    return zetStsNoErr;
}

} // namespace zeti
