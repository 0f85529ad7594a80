// SPDX-License-Identifier: Apache-2.0
// Div_Round: image level. Serial. As in Div, the first operand of a row kernel is the divisor.
#pragma once

#include "arith/division.h"
#include "signal/div_round.h"

namespace zeti {

namespace detail {

inline ZetStatus round_mode(ZetRoundMode mode) {
    return fails(mode != zetRndZero && mode != zetRndNear && mode != zetRndFinancial, zetStsRoundModeNotSupportedErr);
}

template <class T, class Use> void with_rounding_divider(ZetRoundMode mode, int s, Use use) {
    if (s < quotient_range<T>.from) return use(QuotientBound<T>());
    if (s > quotient_range<T>.to) return use(QuotientNothing<T>());
    if (mode == zetRndZero) return use(Quotient<T, TowardsZero>(s));
    if (mode == zetRndNear) return use(Quotient<T>(s));
    use(Quotient<T, ToNearestAwayFromZero<T>>(s));
}

} // namespace detail

template <class T, class L>
ZetStatus divide_round(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize,
                       ZetRoundMode roundMode, int scaleFactor) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst), size(roiSize), step(src1Step, src2Step, dstStep), round_mode(roundMode)))
        return bad;
    bool zero = false;
    with_rounding_divider<T>(roundMode, scaleFactor, [&](auto kernel) {
        run_rows<Writes<T, L>>(RowOperand<T>{pSrc1, src1Step}, Src<T>{pSrc2, src2Step}, Dst<T>{pDst, dstStep}, real_samples<T, L>(roiSize),
                               serial, kernel);
        zero = kernel.saw_zero();
    });
    return zero ? zetStsDivByZero : zetStsNoErr;
}

template <class T, class L>
ZetStatus divide_round_I(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize, ZetRoundMode roundMode,
                         int scaleFactor) {
    return divide_round<T, L>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, roundMode, scaleFactor);
}

} // namespace zeti
