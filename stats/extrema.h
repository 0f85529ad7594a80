// SPDX-License-Identifier: Apache-2.0
// Max, Min, MinMax, MaxIndx, MinIndx; MaxEvery and MinEvery. Only the last two check steps.
//
// Scans of integers end after a row in which every channel has seen the limit of the type: nothing can beat it.
#pragma once

#include "arith/rows.h"
#include "stats/rows.h"

namespace zeti {

namespace detail {

// Rows into `kernel` until after_row(y) says that they are enough.
template <class Kernel, class T, class After> void scan_rows(Kernel& kernel, Src<T> src, ZetiSize roi, After after_row) {
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        take_row(kernel, roi.width, src.row(y));
        if (after_row(y)) return;
    }
}

template <class L, class Kernel, class T> void copy_values(const Kernel& kernel, T* to) {
    T values[L::channels];
    kernel.values(values);
    for (int c = 0; c < L::colours; ++c) to[c] = values[c];
}

template <class T> inline constexpr bool has_limit = std::is_integral_v<T>;

// The first pixel of a row with the value; 0 where there is none, as in rows of NaN.
template <int Channels, class T> int position_in_row(const T* p, int width, T value) {
    for (int x = 0; x < width; ++x)
        if (get(p + ptrdiff_t{x} * Channels) == value) return x;
    return 0;
}

} // namespace detail

// Max, Min.
template <class Side, class T, class L> ZetStatus extreme(const T* pSrc, int srcStep, ZetiSize roiSize, T* pBest) {
    if (ZetStatus bad = first(null(pSrc, pBest), size(roiSize))) return bad;
    [[maybe_unused]] const FloatState held;
    Extreme<Side, Plain, T, L::channels> best;
    detail::scan_rows(best, Src<T>{pSrc, srcStep}, roiSize,
                      [&](ptrdiff_t) { return detail::has_limit<T> && best.template complete<L::colours>(); });
    detail::copy_values<L>(best, pBest);
    return zetStsNoErr;
}

// Stops only in 16-bit types, when both limits have been seen.
template <class T, class L> ZetStatus min_max(const T* pSrc, int srcStep, ZetiSize roiSize, T* pMin, T* pMax) {
    if (ZetStatus bad = first(null(pSrc, pMin, pMax), size(roiSize))) return bad;
    [[maybe_unused]] const FloatState held;
    Extremes<T, L::channels> both;
    detail::scan_rows(both, Src<T>{pSrc, srcStep}, roiSize,
                      [&](ptrdiff_t) { return sizeof(T) == 2 && both.template complete<L::colours>(); });
    detail::copy_values<L>(both.least, pMin);
    detail::copy_values<L>(both.greatest, pMax);
    return zetStsNoErr;
}

// MaxIndx, MinIndx: the first in the order of the rows. A row counts only if it beats the rows above, so the lanes begin each row with the
// best so far in all of them (ownpis_Max_8u_C3 and its siblings).
template <class Side, class T, class L>
ZetStatus extreme_index(const T* pSrc, int srcStep, ZetiSize roiSize, T* pBest, Zet32s* pIndexX, Zet32s* pIndexY) {
    if (ZetStatus bad = first(null(pSrc, pBest, pIndexX, pIndexY), size(roiSize))) return bad;
    [[maybe_unused]] const FloatState held;
    const Src<T> src{pSrc, srcStep};
    Extreme<Side, Plain, T, L::channels> lanes, before;
    T best[L::channels], now[L::channels];
    lanes.values(best);
    int rows[L::channels] = {};
    detail::scan_rows(lanes, src, roiSize, [&](ptrdiff_t y) {
        if (!lanes.differs(before)) return false;
        lanes.values(now);
        for (int c = 0; c < L::channels; ++c)
            if (Side::better(now[c], best[c])) best[c] = now[c], rows[c] = static_cast<int>(y);
        lanes.restart(best);
        before = lanes;
        return detail::has_limit<T> && lanes.template complete<L::colours>();
    });
    for (int c = 0; c < L::colours; ++c) {
        pBest[c] = best[c];
        pIndexX[c] = detail::position_in_row<L::channels>(src.row(rows[c]) + c, roiSize.width, best[c]);
        pIndexY[c] = rows[c];
    }
    return zetStsNoErr;
}

// MaxEvery, MinEvery, per row zetsMaxEvery_8u_I and its siblings.
template <class Side, class T, class L> ZetStatus every(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pSrcDst), size(roiSize), step(srcStep, srcDstStep))) return bad;
    Every<Side, T> kernel;
    const Dst<T> dst{pSrcDst, srcDstStep};
    run_rows<Writes<T, L>>(RowOperand<T>{pSrc, srcStep}, Src<T>(dst), dst, real_samples<T, L>(roiSize), serial, kernel);
    return zetStsNoErr;
}

} // namespace zeti
