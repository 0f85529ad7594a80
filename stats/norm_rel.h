// SPDX-License-Identifier: Apache-2.0
// NormRel: NormDiff of two images by the Norm of the second. What stands in pValue after a zero denominator, and where the roots are
// taken, depends on type and layout; the differences between siblings are kept on purpose.
#pragma once

#include "stats/norm.h"

namespace zeti {

inline constexpr Zet64f zetDblMin = 2.2250738585072014e-308; // below it a denominator counts as zero

namespace detail {

enum class Quotient {
    plain,                // of two norms without a root; zero denominator: the numerators
    plain_or_nothing,     // zero denominator: pValue is left alone
    of_roots,             // zero denominator: the roots of the numerators
    under_root,           // a single root; zero denominator: the roots of the numerators
    under_root_or_squares // zero denominator: the numerators without a root
};

template <NormType N, class T, class L> constexpr Quotient quotient_of(bool accurate) {
    constexpr bool c1 = L::channels == 1, c3 = L::channels == 3, is8u = std::is_same_v<T, Zet8u>, is16u = std::is_same_v<T, Zet16u>,
                   is16s = std::is_same_v<T, Zet16s>;
    if (N == zetiNormInf) return !c1 && (is16u || is16s) ? Quotient::plain_or_nothing : Quotient::plain;
    if (N == zetiNormL1) return Quotient::plain;
    if (c1) return Quotient::under_root;
    if (is16u) return Quotient::under_root_or_squares;
    return is8u || is16s || c3 || accurate ? Quotient::of_roots : Quotient::under_root;
}

// Both reductions in one pass, before any root.
template <NormType N, class T, class L, bool accurate>
void norm_rel_parts(Zet64f (&above)[4], Zet64f (&below)[4], ZetiSize roi, Src<T> src1, Src<T> src2) {
    NormReduction<N, Difference, T, L, accurate> difference(roi);
    NormReduction<N, NormTerm<N>, T, L, accurate> norm(roi);
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        difference.row(roi.width, src1.row(y), src2.row(y));
        norm.row(roi.width, src2.row(y));
    }
    for (int c = 0; c < L::colours; ++c) above[c] = difference.value(c), below[c] = norm.value(c);
}

template <Quotient quotient, int Colours> ZetStatus divide_norms(const Zet64f (&above)[4], const Zet64f (&below)[4], Zet64f* pValue) {
    bool zero = false;
    for (int c = 0; c < Colours; ++c) zero |= zetDblMin > below[c];
    if (zero && quotient == Quotient::plain_or_nothing) return zetStsDivByZero;
    for (int c = 0; c < Colours; ++c) {
        const Zet64f v = zero ? above[c] : above[c] / below[c];
        const bool root = quotient == Quotient::under_root || (quotient == Quotient::under_root_or_squares && !zero);
        pValue[c] = root ? square_root(v) : v;
    }
    return zero ? zetStsDivByZero : zetStsNoErr;
}

} // namespace detail

template <NormType N, class T, class L>
ZetStatus norm_rel(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, ZetiSize roiSize, Zet64f* pValue,
                   ZetHintAlgorithm hint = zetAlgHintNone) {
    using namespace detail;
    if (ZetStatus bad = check_norm<T>(null(pSrc1, pSrc2, pValue), size(roiSize), step(src1Step, src2Step))) return bad;
    [[maybe_unused]] const FloatState held;
    const Src<T> src1{pSrc1, src1Step}, src2{pSrc2, src2Step};
    ZetStatus status = zetStsNoErr;
    by_hint<T>(N == zetiNormInf ? zetAlgHintNone : hint, [&](auto accurate) {
        constexpr Quotient quotient = quotient_of<N, T, L>(accurate);
        Zet64f above[4], below[4];
        if constexpr (quotient == Quotient::of_roots) {
            norm_values<N, NormTerm<N>, L>(below, roiSize, hint, src2);
            norm_values<N, Difference, L>(above, roiSize, hint, src1, src2);
        } else {
            norm_rel_parts<N, T, L, accurate>(above, below, roiSize, src1, src2);
        }
        status = divide_norms<quotient, L::colours>(above, below, pValue);
    });
    return status;
}

} // namespace zeti
