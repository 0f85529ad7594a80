// SPDX-License-Identifier: Apache-2.0
// CountInRange: samples between two bounds, both of them included.
#pragma once

#include "signal/count_in_range.h"
#include "stats/levels.h"

namespace zeti {

template <class T, class L, class Bound>
ZetStatus count_in_range(const T* pSrc, int srcStep, ZetiSize roiSize, Zet32s* pCounts, Bound lowerBound, Bound upperBound) {
    const auto lower = per_channel<L>(lowerBound), upper = per_channel<L>(upperBound);
    if (ZetStatus bad = first(null(pSrc, pCounts, lower, upper), step(srcStep), size(roiSize))) return bad;
    for (int c = 0; c < L::colours; ++c)
        if (less(upper[c], lower[c])) return zetStsRangeErr;
    [[maybe_unused]] const FloatState held;
    RangeCounter<T, L> counter(lower, upper);
    for (ptrdiff_t y = 0; y < roiSize.height; ++y) counter.add_row(Src<T>{pSrc, srcStep}.row(y), ptrdiff_t{roiSize.width} * L::channels);
    counter.give(pCounts);
    return zetStsNoErr;
}

} // namespace zeti
