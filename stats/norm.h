// SPDX-License-Identifier: Apache-2.0
// Norm and NormDiff.
#pragma once

#include "stats/rows.h"

namespace zeti {

enum NormType { zetiNormInf, zetiNormL1, zetiNormL2 };

namespace detail {

template <NormType N, class Term, class T, class L, bool accurate> auto norm_reduction() {
    constexpr int channels = L::channels;
    if constexpr (N == zetiNormL1) return std::type_identity<SumReduction<Sum<Term, T, channels, accurate>>>();
    else if constexpr (N == zetiNormL2) return std::type_identity<SumReduction<SumOfSquares<Term, T, channels, accurate>>>();
    else if constexpr (std::is_same_v<T, Zet32s>) return std::type_identity<LargestReduction<LargestMagnitude32s>>();
    else return std::type_identity<LargestReduction<Extreme<Greatest, Term, T, channels>>>();
}

// Of one image: squares need no magnitudes.
template <NormType N> using NormTerm = std::conditional_t<N == zetiNormL2, Plain, Magnitude>;

// Before the root where there is one.
template <NormType N, class Term, class T, class L, bool accurate>
using NormReduction = typename decltype(norm_reduction<N, Term, T, L, accurate>())::type;

// 16u looks at the steps before the size, and its L1 norm, which is its sum, at the step before everything else. Kept on purpose.
template <class T> ZetStatus check_norm(ZetStatus nulls, ZetStatus sizes, ZetStatus steps) {
    if constexpr (std::is_same_v<T, Zet16u>) return first(nulls, steps, sizes);
    else return first(nulls, sizes, steps);
}

// Wide 8u images take the root of each strip of columns and add its square: the last bit tells it from a single root. Kept on purpose.
inline constexpr int l2_strip = 32768;
template <NormType N, class T> constexpr bool in_strips(ZetiSize roi) {
    return N == zetiNormL2 && std::is_same_v<T, Zet8u> && roi.width > l2_strip;
}

template <NormType N, class Term, class L, class... T>
void norm_values(Zet64f (&values)[4], ZetiSize roi, ZetHintAlgorithm hint, Src<T>... src) {
    using Sample = std::common_type_t<T...>;
    if (in_strips<N, Sample>(roi)) {
        Zet64f strip[4], sums[4] = {};
        for (int x = 0; x < roi.width;) {
            const int width = std::min(l2_strip, roi.width - x);
            norm_values<N, Term, L>(strip, {width, roi.height}, hint, Src<T>{src.pointer + ptrdiff_t{x} * L::channels, src.step}...);
            for (int c = 0; c < L::colours; ++c) sums[c] += strip[c] * strip[c];
            x += width;
        }
        for (int c = 0; c < L::colours; ++c) values[c] = square_root(sums[c]);
        return;
    }
    by_hint<Sample>(N == zetiNormInf ? zetAlgHintNone : hint,
                    [&](auto accurate) { reduce<NormReduction<N, Term, Sample, L, accurate>, L>(values, roi, src...); });
    if constexpr (N == zetiNormL2)
        for (int c = 0; c < L::colours; ++c) values[c] = square_root(values[c]);
}

// The scan of 16 bits stops after a row with an extreme of the type and gives 32767, for -32768 as well. Kept on purpose.
inline Zet64f owniNorm_Inf_16s_C1(Src<Zet16s> src, ZetiSize roi) {
    Extremes<Zet16s, 1> lanes;
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        take_row(lanes, roi.width, src.row(y));
        if (lanes.least.complete<1>() || lanes.greatest.complete<1>()) return 32767;
    }
    Zet16s least[1], greatest[1];
    lanes.least.values(least), lanes.greatest.values(greatest);
    return std::max(-least[0], int{greatest[0]});
}

} // namespace detail

template <NormType N, class T, class L>
ZetStatus norm(const T* pSrc, int srcStep, ZetiSize roiSize, Zet64f* pValue, ZetHintAlgorithm hint = zetAlgHintNone) {
    using namespace detail;
    constexpr bool sum16u = N == zetiNormL1 && std::is_same_v<T, Zet16u>;
    const ZetStatus nulls = null(pSrc, pValue), sizes = size(roiSize), steps = step(srcStep);
    if (ZetStatus bad = sum16u ? first(steps, nulls, sizes) : check_norm<T>(nulls, sizes, steps)) return bad;
    [[maybe_unused]] const FloatState held;
    const Src<T> src{pSrc, srcStep};
    if constexpr (N == zetiNormInf && std::is_same_v<T, Zet16s> && std::is_same_v<L, C1>)
        if (roiSize.width >= 8) {
            *pValue = owniNorm_Inf_16s_C1(src, roiSize);
            return zetStsNoErr;
        }
    Zet64f values[4];
    norm_values<N, NormTerm<N>, L>(values, roiSize, hint, src);
    std::copy_n(values, L::colours, pValue);
    return zetStsNoErr;
}

template <NormType N, class T, class L>
ZetStatus norm_diff(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, ZetiSize roiSize, Zet64f* pValue,
                    ZetHintAlgorithm hint = zetAlgHintNone) {
    using namespace detail;
    if (ZetStatus bad = check_norm<T>(null(pSrc1, pSrc2, pValue), size(roiSize), step(src1Step, src2Step))) return bad;
    [[maybe_unused]] const FloatState held;
    Zet64f values[4];
    norm_values<N, Difference, L>(values, roiSize, hint, Src<T>{pSrc1, src1Step}, Src<T>{pSrc2, src2Step});
    std::copy_n(values, L::colours, pValue);
    return zetStsNoErr;
}

} // namespace zeti
