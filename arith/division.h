// SPDX-License-Identifier: Apache-2.0
// Div and DivC: image level. Always serial. The first operand of a row kernel is the divisor: pSrc1 or the constant.
#pragma once

#include "arith/arithmetic.h"
#include "move/set.h"
#include "signal/div.h"
#include "signal/div_complex.h"

namespace zeti {

namespace detail {

// The scale factors for which a quotient is computed at all.
struct QuotientRange {
    int from, to;
};

template <class T> inline constexpr QuotientRange quotient_range = {};
template <> inline constexpr QuotientRange quotient_range<Zet8u> = {-15, 8};
template <> inline constexpr QuotientRange quotient_range<Zet16s> = {-30, 15};
template <> inline constexpr QuotientRange quotient_range<Zet16u> = {-31, 16};
inline constexpr QuotientRange quotient_range_16sc = {-32, 32};
inline constexpr QuotientRange quotient_range_16sc_constant = {-16, 15};

// Calls use(kernel) with the kernel for s and says whether it saw a zero divisor.
template <class T, Form F, class Use> bool with_divider(int s, Use use) {
    const auto run = [&](auto kernel) {
        use(kernel);
        if constexpr (requires { kernel.saw_zero(); }) return kernel.saw_zero();
        else return false;
    };
    constexpr bool by_constant = F == Form::constant || F == Form::constant_I;
    if constexpr (std::is_same_v<T, Zet32f>) {
        if constexpr (by_constant) return run(QuotientByConstant32f());
        else return run(Quotient32f());
    } else if constexpr (std::is_same_v<T, Zet32fc>) {
        return run(ComplexQuotient32f());
    } else if constexpr (std::is_same_v<T, Zet32sc>) {
        return run(ComplexQuotient<Zet32sc>(s));
    } else if constexpr (std::is_same_v<T, Zet16sc>) {
        constexpr QuotientRange range = by_constant ? quotient_range_16sc_constant : quotient_range_16sc;
        return s < range.from ? run(ComplexQuotientBound()) : s > range.to ? run(ComplexQuotientZero()) : run(ComplexQuotient<Zet16sc>(s));
    } else {
        constexpr QuotientRange range = quotient_range<T>;
        return s < range.from ? run(QuotientBound<T>()) : s > range.to ? run(QuotientZero<T>()) : run(Quotient<T>(s));
    }
}

template <class T, class L, Form F> ZetStatus divide_images(Src<T> a, Src<T> b, Dst<T> dst, ZetiSize roi, int s) {
    [[maybe_unused]] const FloatState held; // integer quotients are computed in floats too
    const bool zero = with_divider<T, F>(s, [&](auto& kernel) {
        if constexpr (is_complex<T>) {
            each_row(samples(roi, 1), [&](ptrdiff_t y) { pixel_row<L>(SampleRow<T>{a.row(y)}, b.row(y), dst.row(y), roi.width, kernel); });
        } else {
            run_rows<Writes<T, L>>(operand_of(a), b, dst, real_samples<T, L>(roi), serial, kernel);
        }
    });
    return zero ? zetStsDivByZero : zetStsNoErr;
}

// Floats by their bits: the caller's float state still holds, and may take denormals for zero or trap on NaN.
template <class T> bool is_zero_constant(T value) {
    if constexpr (is_complex<T>) {
        return is_zero_constant(value.re) && is_zero_constant(value.im);
    } else if constexpr (std::is_floating_point_v<T>) {
        Zet32u bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits << 1 == 0;
    } else {
        return value == 0;
    }
}

template <class T, class L> ZetStatus zero_constant(const T* values) {
    for (int c = 0; c < L::colours; ++c)
        if (is_zero_constant(values[c])) return zetStsDivByZeroErr;
    return zetStsNoErr;
}

template <class T, class L, Form F> ZetStatus divide_by_constants(Src<T> src, const T* values, Dst<T> dst, ZetiSize roi, int s) {
    if constexpr (std::is_same_v<T, Zet16u> && std::is_same_v<L, C1>) {
        if (*values == 1 && s == 0) {
            if (F == Form::constant) copy_samples(src, dst, samples(roi, 1));
            return zetStsNoErr;
        }
        if (*values == 1) { // scaling alone
            arithmetic<Mul, T, L, F>(constant_operand<T, L>(values), src, dst, roi, s, s);
            return zetStsNoErr;
        }
    }
    [[maybe_unused]] const FloatState held;
    with_divider<T, F>(s, [&](auto& kernel) {
        if constexpr (is_complex<T>) {
            SampleConstants<T> constants{};
            for (int c = 0; c < L::colours; ++c) constants.value[c] = values[c];
            each_row(samples(roi, 1), [&](ptrdiff_t y) { pixel_row<L>(constants, src.row(y), dst.row(y), roi.width, kernel); });
        } else {
            run_rows<Writes<T, L>>(constant_operand<T, L>(values), src, dst, real_samples<T, L>(roi), serial, kernel);
        }
    });
    return zetStsNoErr; // no constant is zero
}

// 16u C1 at a scale that leaves nothing of any quotient: after the source pointer only what the fill needs is tested.
template <class T, class L> bool clears_at_once(T value, int s) {
    return std::is_same_v<T, Zet16u> && !is_zero_constant(value) && s > quotient_range<Zet16u>.to;
}

} // namespace detail

template <class T, class L>
ZetStatus divide(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(check_width_first<T, L>(roiSize), null(pSrc1, pSrc2, pDst), size(roiSize), step(src1Step, src2Step, dstStep)))
        return bad;
    return divide_images<T, L, Form::images>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize, scaleFactor);
}

template <class T, class L>
ZetStatus divide_I(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(check_width_first<T, L>(roiSize), null(pSrc, pSrcDst), size(roiSize), step(srcStep, srcDstStep))) return bad;
    return divide_images<T, L, Form::images_I>({pSrc, srcStep}, {pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, scaleFactor);
}

// One constant per colour channel.
template <class T, class L>
ZetStatus divide_constant(const T* pSrc, int srcStep, const T* value, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc, value, pDst), size(roiSize), step(srcStep, dstStep))) return bad;
    if (ZetStatus bad = zero_constant<T, L>(value)) return bad;
    return divide_by_constants<T, L, Form::constant>({pSrc, srcStep}, value, {pDst, dstStep}, roiSize, scaleFactor);
}

template <class T, class L> ZetStatus divide_constant_I(const T* value, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(null(value, pSrcDst), size(roiSize), step(srcDstStep))) return bad;
    if (ZetStatus bad = zero_constant<T, L>(value)) return bad;
    return divide_by_constants<T, L, Form::constant_I>({pSrcDst, srcDstStep}, value, {pSrcDst, srcDstStep}, roiSize, scaleFactor);
}

// C1: the constant by value.
template <class T, class L>
ZetStatus divide_constant(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    if (pSrc && detail::clears_at_once<T, L>(value, scaleFactor))
        return set<Zet16s, C1>(Zet16s{0}, reinterpret_cast<Zet16s*>(pDst), dstStep, roiSize);
    return divide_constant<T, L>(pSrc, srcStep, &value, pDst, dstStep, roiSize, scaleFactor);
}

template <class T, class L> ZetStatus divide_constant_I(T value, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    if (pSrcDst && detail::clears_at_once<T, L>(value, scaleFactor))
        return set<Zet16s, C1>(Zet16s{0}, reinterpret_cast<Zet16s*>(pSrcDst), srcDstStep, roiSize);
    return divide_constant_I<T, L>(&value, pSrcDst, srcDstStep, roiSize, scaleFactor);
}

} // namespace zeti
