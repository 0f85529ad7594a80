// SPDX-License-Identifier: Apache-2.0
// Sum and Mean. No step is checked.
#pragma once

#include "stats/rows.h"

namespace zeti {

template <class T, class L>
ZetStatus sum(const T* pSrc, int srcStep, ZetiSize roiSize, Zet64f* pSum, ZetHintAlgorithm hint = zetAlgHintNone) {
    if (ZetStatus bad = first(null(pSrc, pSum), size(roiSize))) return bad;
    [[maybe_unused]] const FloatState held;
    by_hint<T>(hint, [&](auto accurate) {
        Zet64f sums[4];
        reduce<SumReduction<Sum<Plain, T, L::channels, accurate>>, L>(sums, roiSize, Src<T>{pSrc, srcStep});
        std::copy_n(sums, L::colours, pSum);
    });
    return zetStsNoErr;
}

// One channel is divided by the number of pixels, several are multiplied by its reciprocal: kept on purpose. The number is of 32 bits
// and has a sign.
template <class T, class L>
ZetStatus mean(const T* pSrc, int srcStep, ZetiSize roiSize, Zet64f* pMean, ZetHintAlgorithm hint = zetAlgHintNone) {
    if (ZetStatus bad = null(pMean)) return bad;
    Zet64f sums[4];
    if (ZetStatus bad = sum<T, L>(pSrc, srcStep, roiSize, sums, hint)) return bad;
    [[maybe_unused]] const FloatState held;
    const auto pixels = static_cast<Zet64f>(static_cast<Zet32s>(static_cast<Zet32u>(roiSize.width) * static_cast<Zet32u>(roiSize.height)));
    if constexpr (L::channels == 1) {
        *pMean = sums[0] / pixels;
    } else {
        const Zet64f reciprocal = 1.0 / pixels;
        for (int c = 0; c < L::colours; ++c) pMean[c] = sums[c] * reciprocal;
    }
    return zetStsNoErr;
}

} // namespace zeti
