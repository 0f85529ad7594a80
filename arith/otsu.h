// SPDX-License-Identifier: Apache-2.0
// ComputeThreshold_Otsu: the bound that separates an image's levels into two classes with the largest variance between them
// (Otsu 1979). Serial, in double precision; the order of operations decides between nearly equal scores and is kept.
#pragma once

#include <algorithm>

#include "core/check.h"
#include "core/float_state.h"
#include "signal/count_8u.h"

namespace zeti {

namespace detail {

struct Levels {
    double count[256];
};

inline Levels count_levels(Src<Zet8u> src, ZetiSize roi) {
    const Counters8u<C1, size_t> counters(src, roi);
    Levels levels;
    for (int i = 0; i < 256; ++i) levels.count[i] = static_cast<double>(counters.counts[0][0][i]);
    return levels;
}

inline Zet8u otsu_threshold(const Levels& levels) {
    constexpr double least = 1.1920928955078125e-07, most = 0.9999998807907104; // shares of pixels that make a class
    double totals[4] = {}, sums[4] = {};
    for (int i = 0; i < 256; ++i) {
        totals[i % 4] += levels.count[i];
        sums[i % 4] += (i + 0.5) * levels.count[i];
    }
    const double total = totals[0] + totals[1] + totals[2] + totals[3], sum = sums[0] + sums[1] + sums[2] + sums[3];
    const double reciprocal = total > least ? 1 / total : 0, mean = sum * reciprocal;

    double lowShare = 0, lowMean = 0, best = 0, result = 0;
    for (int t = 0; t < 256; ++t) {
        const double share = reciprocal * levels.count[t];
        lowMean *= lowShare; // a sum until it is divided again, and left so where a class is too small
        lowShare += share;
        const double highShare = 1 - lowShare;
        if (std::min(lowShare, highShare) < least || std::max(lowShare, highShare) > most) continue;
        const double centre = t + 0.5;
        lowMean = (lowMean + share * centre) / lowShare;
        const double distance = lowMean - (mean - lowShare * lowMean) / highShare;
        const double score = highShare * lowShare * (distance * distance);
        if (score > best) best = score, result = centre;
    }
    return static_cast<Zet8u>(result);
}

} // namespace detail

template <class T, class L> ZetStatus otsu(const T* pSrc, int srcStep, ZetiSize roiSize, T* pThreshold) {
    if (ZetStatus bad = first(null(pSrc, pThreshold), size(roiSize), fails(roiSize.width > srcStep, zetStsStepErr))) return bad;
    [[maybe_unused]] const FloatState held;
    *pThreshold = detail::otsu_threshold(detail::count_levels({pSrc, srcStep}, roiSize));
    return zetStsNoErr;
}

} // namespace zeti
