// SPDX-License-Identifier: Apache-2.0
// The image level of all families of one operand: dst = f(src). A family `Op` brings
//
//     static constexpr bool whole_samples;         rows advance by the step with its low bits cleared
//     template <class T, class Use> static void with_kernel(int s, Use use);
//
// which calls use(kernel) once, with the row kernel for that scale factor: a functor Vec<T> operator()(Vec<T> x). A kernel that computes
// in floats on integers says `static constexpr bool in_floats = true`. One that warns of samples has
//
//     Vec<T> neutral() const;        what stands for a sample behind the row and in alpha: nothing to warn of
//     ZetStatus status() const;      the warning, or zetStsNoErr
//     void end_row();                only where the rows of an image may warn of different things: the first one counts
#pragma once

#include "arith/rows.h"

namespace zeti {

namespace detail {

// The walker's first operand is the watched one, so the image comes first; the second is the same row and not looked at.
template <class Kernel> struct OneOperand : Kernel {
    template <class V> V operator()(V x, V) { return Kernel::operator()(x); }
};

template <class L, class T, class Kernel> ZetStatus unary_rows(Src<T> src, Dst<T> dst, ZetiSize roi, const Kernel& kernel) {
    OneOperand<Kernel> op{kernel};
    run_rows<Writes<T, L>>(operand_of(src), src, dst, real_samples<T, L>(roi), serial, op);
    if constexpr (requires { op.status(); }) return op.status();
    else return zetStsNoErr;
}

template <class Op, class T, class L> ZetStatus unary_image(const T* src, int srcStep, T* dst, int dstStep, ZetiSize roi, int s) {
    constexpr int low_bits = Op::whole_samples ? int{sizeof(T)} - 1 : 0;
    ZetStatus status = zetStsNoErr;
    Op::template with_kernel<T>(s, [&](auto kernel) {
        status = unary_rows<L>(Src<T>{src, srcStep & ~low_bits}, Dst<T>{dst, dstStep & ~low_bits}, roi, kernel);
    });
    return status;
}

} // namespace detail

template <class Op, class T, class L>
ZetStatus unary(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize), step(srcStep, dstStep))) return bad;
    return detail::unary_image<Op, T, L>(pSrc, srcStep, pDst, dstStep, roiSize, scaleFactor);
}

template <class Op, class T, class L> ZetStatus unary_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    if (ZetStatus bad = first(null(pSrcDst), size(roiSize), step(srcDstStep))) return bad;
    return detail::unary_image<Op, T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, scaleFactor);
}

} // namespace zeti
