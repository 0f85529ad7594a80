// SPDX-License-Identifier: Apache-2.0
// And, Or, Xor, AndC, OrC, XorC, Not, Complement: image level. All are serial and test the steps before the size.
#pragma once

#include "arith/rows.h"
#include "signal/logic.h"

namespace zeti {

// The C3 and C4 forms test the size before anything else.
template <class Op, class T, class L>
ZetStatus logic(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize) {
    const ZetStatus sized = delegates<T, L> ? size(roiSize) : zetStsNoErr;
    if (ZetStatus bad = first(sized, null(pSrc1, pSrc2, pDst), step(src1Step, src2Step, dstStep), size(roiSize))) return bad;
    Op kernel;
    run_rows<Writes<T, L>>(RowOperand<T>{pSrc1, src1Step}, Src<T>{pSrc2, src2Step}, Dst<T>{pDst, dstStep}, real_samples<T, L>(roiSize),
                           serial, kernel);
    return zetStsNoErr;
}

template <class Op, class T, class L> ZetStatus logic_I(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return logic<Op, T, L>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

// `value` is one constant on C1, else a pointer to one per colour channel.
template <class Op, class T, class L, class V>
ZetStatus logic_constant(const T* pSrc, int srcStep, V value, T* pDst, int dstStep, ZetiSize roiSize) {
    const T* const values = constants(value);
    if (ZetStatus bad = first(null(pSrc, values, pDst), step(srcStep, dstStep), size(roiSize))) return bad;
    Op kernel;
    run_rows<Writes<T, L>>(constant_operand<T, L>(values), Src<T>{pSrc, srcStep}, Dst<T>{pDst, dstStep}, real_samples<T, L>(roiSize),
                           serial, kernel);
    return zetStsNoErr;
}

template <class Op, class T, class L, class V> ZetStatus logic_constant_I(V value, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return logic_constant<Op, T, L>(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize);
}

// XorC with ones.
template <class T, class L> ZetStatus invert(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    const T ones[4] = {max_of<T>, max_of<T>, max_of<T>, max_of<T>};
    return logic_constant<Xor, T, L>(pSrc, srcStep, static_cast<const T*>(ones), pDst, dstStep, roiSize);
}

template <class T, class L> ZetStatus invert_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return invert<T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

template <class T, class L> ZetStatus complement_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrcDst), step(srcDstStep), size(roiSize))) return bad;
    const Dst<T> image{pSrcDst, srcDstStep};
    Complement kernel;
    run_rows<Writes<T, L>>(NoOperand<T>(), Src<T>(image), image, real_samples<T, L>(roiSize), serial, kernel);
    return zetStsNoErr;
}

} // namespace zeti
