// SPDX-License-Identifier: Apache-2.0
// MulScale and MulCScale: image level. Serial. Steps are checked before the size.
#pragma once

#include "arith/rows.h"
#include "signal/mul_scale.h"

namespace zeti {

namespace detail {

// `a` gives the first operand by rows.
template <class L, class T, class Operand> ZetStatus multiply_full_scale(const Operand& a, Src<T> b, Dst<T> dst, ZetiSize roi) {
    FullScaleProduct product;
    run_rows<Writes<T, L>>(a, b, dst, real_samples<T, L>(roi), serial, product);
    return zetStsNoErr;
}

} // namespace detail

template <class T, class L>
ZetStatus mul_scale(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst), step(src1Step, src2Step, dstStep), size(roiSize))) return bad;
    return detail::multiply_full_scale<L>(RowOperand<T>{pSrc1, src1Step}, Src<T>{pSrc2, src2Step}, Dst<T>{pDst, dstStep}, roiSize);
}

template <class T, class L> ZetStatus mul_scale_I(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return mul_scale<T, L>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

// One constant per colour channel.
template <class T, class L> ZetStatus mul_c_scale(const T* pSrc, int srcStep, const T* value, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, value, pDst), step(srcStep, dstStep), size(roiSize))) return bad;
    return detail::multiply_full_scale<L>(constant_operand<T, L>(value), Src<T>{pSrc, srcStep}, Dst<T>{pDst, dstStep}, roiSize);
}

template <class T, class L> ZetStatus mul_c_scale_I(const T* value, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return mul_c_scale<T, L>(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize);
}

// C1: the constant by value.
template <class T, class L> ZetStatus mul_c_scale(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, ZetiSize roiSize) {
    return mul_c_scale<T, L>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}

template <class T, class L> ZetStatus mul_c_scale_I(T value, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return mul_c_scale_I<T, L>(&value, pSrcDst, srcDstStep, roiSize);
}

} // namespace zeti
