// SPDX-License-Identifier: Apache-2.0
// Compare, CompareC, CompareEqualEps, CompareEqualEpsC: image level. All are serial and test pointers, steps and size in this order.
#pragma once

#include "arith/rows.h"
#include "signal/compare.h"

namespace zeti {

namespace detail {

template <class L, class T, class Cmp, class A, class B>
void compare_rows(const Cmp& cmp, const A& a, const B& b, Dst<Zet8u> dst, ZetiSize roi) {
    const RowScope<std::is_floating_point_v<T>> held(false);
    TakeFirst take;
    run_rows<WriteAll<Zet8u>>(Comparison<Cmp, L, T, A, B>(cmp, a, b), Src<Zet8u>(dst), dst, samples(roi, 1), serial, take);
}

// An unknown operator leaves the destination as it was, and nobody is told.
template <class L, class T, class A, class B>
ZetStatus compare_operands(const A& a, const B& b, Dst<Zet8u> dst, ZetiSize roi, ZetCmpOp op) {
    switch (op) {
    case zetCmpLess: compare_rows<L, T>(CmpLT(), a, b, dst, roi); break;
    case zetCmpLessEq: compare_rows<L, T>(CmpLE(), a, b, dst, roi); break;
    case zetCmpEq: compare_rows<L, T>(CmpEQ(), a, b, dst, roi); break;
    case zetCmpGreaterEq: compare_rows<L, T>(CmpLE(), b, a, dst, roi); break;
    case zetCmpGreater: compare_rows<L, T>(CmpLT(), b, a, dst, roi); break;
    }
    return zetStsNoErr;
}

} // namespace detail

template <class T, class L>
ZetStatus compare(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, Zet8u* pDst, int dstStep, ZetiSize roiSize, ZetCmpOp cmpOp) {
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst), step(src1Step, src2Step, dstStep), size(roiSize))) return bad;
    return detail::compare_operands<L, T>(RowOperand<T>{pSrc1, src1Step}, RowOperand<T>{pSrc2, src2Step}, {pDst, dstStep}, roiSize, cmpOp);
}

// `value` is one constant on C1, else a pointer to one per colour channel.
template <class T, class L, class V>
ZetStatus compare_constant(const T* pSrc, int srcStep, V value, Zet8u* pDst, int dstStep, ZetiSize roiSize, ZetCmpOp cmpOp) {
    const T* const values = constants(value);
    if (ZetStatus bad = first(null(pSrc, values, pDst), step(srcStep, dstStep), size(roiSize))) return bad;
    const RowOperand<T> image{pSrc, srcStep};
    if constexpr (std::is_unsigned_v<T>) {
        // Below c is at most c - 1, and the masks of the comparisons that include their bound are cheaper.
        const bool below = cmpOp == zetCmpLess;
        T closed[L::colours];
        bool closes = below || cmpOp == zetCmpGreater;
        for (int c = 0; c < L::colours; ++c) {
            closes &= values[c] != (below ? T{0} : max_of<T>);
            closed[c] = static_cast<T>(below ? values[c] - 1 : values[c] + 1);
        }
        if (closes)
            return detail::compare_operands<L, T>(image, constant_operand<T, L>(closed), {pDst, dstStep}, roiSize,
                                                  below ? zetCmpLessEq : zetCmpGreaterEq);
    }
    return detail::compare_operands<L, T>(image, constant_operand<T, L>(values), {pDst, dstStep}, roiSize, cmpOp);
}

// The tolerance is tested last.
template <class T, class L>
ZetStatus compare_eps(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, Zet8u* pDst, int dstStep, ZetiSize roiSize, T eps) {
    if (ZetStatus bad =
            first(null(pSrc1, pSrc2, pDst), step(src1Step, src2Step, dstStep), size(roiSize), fails(less(eps, T{0}), zetStsEpsValErr)))
        return bad;
    detail::compare_rows<L, T>(CmpEqualEps(eps), RowOperand<T>{pSrc1, src1Step}, RowOperand<T>{pSrc2, src2Step}, {pDst, dstStep}, roiSize);
    return zetStsNoErr;
}

template <class T, class L, class V>
ZetStatus compare_eps_constant(const T* pSrc, int srcStep, V value, Zet8u* pDst, int dstStep, ZetiSize roiSize, T eps) {
    const T* const values = constants(value);
    if (ZetStatus bad = first(null(pSrc, values, pDst), step(srcStep, dstStep), size(roiSize), fails(less(eps, T{0}), zetStsEpsValErr)))
        return bad;
    detail::compare_rows<L, T>(CmpEqualEps(eps), RowOperand<T>{pSrc, srcStep}, constant_operand<T, L>(values), {pDst, dstStep}, roiSize);
    return zetStsNoErr;
}

} // namespace zeti
