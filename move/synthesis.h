// SPDX-License-Identifier: Apache-2.0
// ImageRamp and ImageJaehne. Rows advance by the step with its low bits cleared.
#pragma once

#include "core/check.h"
#include "core/float_state.h"
#include "core/memory.h"
#include "move/pixel_rows.h"
#include "signal/synthesis.h"

namespace zeti {

namespace detail {

template <class T> Dst<T> whole_sample_rows(T* p, int step) { return {p, step & ~(int{sizeof(T)} - 1)}; }

// One value for all colour channels of each pixel.
template <class L, class T> void spread(const T* values, T* dst, ptrdiff_t pixels) {
    if constexpr (L::channels == 1) std::memcpy(dst, values, static_cast<size_t>(pixels) * sizeof(T));
    else
        for (ptrdiff_t x = 0; x < pixels; ++x)
            for (int c = 0; c < L::colours; ++c) put(dst + x * L::channels + c, values[x]);
}

template <class L, class T, class Row> void synthesise(const Row& row, T* dst, ptrdiff_t width) {
    T values[synthesis_chunk];
    for (ptrdiff_t x = 0; x < width; x += synthesis_chunk) {
        const ptrdiff_t n = std::min<ptrdiff_t>(synthesis_chunk, width - x);
        row.fill(values, x, n);
        spread<L>(values, dst + x * L::channels, n);
    }
}

// All rows are the same: one is made and copied.
template <class L, class T> ZetStatus ramp_along_x(const RampRow<T>& ramp, Dst<T> dst, ZetiSize roi) {
    constexpr int pixel = L::channels * int{sizeof(T)};
    if (roi.width > max_of<int> / pixel) return zetStsMemAllocErr;
    T* const buffer = zetsMalloc<T>(roi.width * L::channels);
    if (!buffer) return zetStsMemAllocErr;
    synthesise<L>(ramp, buffer, roi.width);
    const PixelRows<T, L> rows(dst, samples(roi, 1));
    for (ptrdiff_t y = 0; y < roi.height; ++y) rows.copy(buffer, rows.at(y), roi.width);
    zetsFree(buffer);
    return zetStsNoErr;
}

} // namespace detail

// Any other axis than 0 (along x), 1 (along y), 2 (along both) does nothing and is no error, on purpose.
template <class T, class L> ZetStatus image_ramp(T* pDst, int dstStep, ZetiSize roiSize, Zet32f offset, Zet32f slope, int axis) {
    if (ZetStatus bad = first(null(pDst), step(dstStep), size(roiSize))) return bad;
    const FloatState state;
    const Dst<T> dst = detail::whole_sample_rows(pDst, dstStep);
    if (axis == 0) return detail::ramp_along_x<L>(RampRow<T>(offset, slope), dst, roiSize);
    if (axis == 1) {
        const PixelRows<T, L> rows(dst, samples(roiSize, 1));
        for (ptrdiff_t y = 0; y < roiSize.height; ++y) {
            T value[4];
            RampRow<T>(offset, slope).fill(value, y, 1);
            value[1] = value[2] = value[3] = value[0];
            typename PixelRows<T, L>::Run(value).fill(rows.at(y), roiSize.width);
        }
    } else if (axis == 2) {
        for (int y = 0; y < roiSize.height; ++y) detail::synthesise<L>(RampRow<T>(offset, slope, y), dst.row(y), roiSize.width);
    }
    return zetStsNoErr;
}

template <class T, class L> ZetStatus image_jaehne(T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pDst), size(roiSize), step(dstStep))) return bad;
    const FloatState state;
    const Dst<T> dst = detail::whole_sample_rows(pDst, dstStep);
    for (int y = 0; y < roiSize.height; ++y) detail::synthesise<L>(JaehneRow<T>(roiSize, y), dst.row(y), roiSize.width);
    return zetStsNoErr;
}

} // namespace zeti
