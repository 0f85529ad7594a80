// SPDX-License-Identifier: Apache-2.0
// Add, Sub, Mul, AddC, SubC, MulC: image level. `binary` and `constant` write a third image, their _I forms the second
// operand. The first operand of a row kernel is pSrc1 or the constant, so that Sub gives pSrc2 - pSrc1 and pSrc - value.
#pragma once

#include "arith/rows.h"
#include "arith/scale_path.h"
#include "signal/mul_32sc.h"
#include "signal/pixel_row.h"
#include "signal/scaled_constant.h"

namespace zeti {

namespace detail {

// The row kernels' operation on real lanes.
template <class Op, class T> struct LaneOp { using type = Op; };
template <> struct LaneOp<Mul, Zet16sc> { using type = MulComplex16; };
template <> struct LaneOp<Mul, Zet32fc> { using type = MulComplex32f; };

// Calls use(kernel) with the first of the kernels that takes the constant at this scale; false where none does.
template <class T, class... Kernel, class Use> bool with_first_of(T c, int s, Use use) {
    return (... || (Kernel::takes(c, s) && (use(Kernel(c, s)), true)));
}
template <class T, class Use> bool with_product(T c, int s, Use use) {
    if constexpr (std::is_same_v<T, Zet8u>) return with_first_of<T, ScaledProductWithConstant8u, ScaledProductWithFraction8u>(c, s, use);
    else if constexpr (std::is_same_v<T, Zet16s>)
        return with_first_of<T, ScaledProductWithFraction16<T>, ScaledProductWithConstant16s>(c, s, use);
    else return with_first_of<T, ScaledProductWithFraction16<T>>(c, s, use);
}

// Calls use(kernel) with the row kernel of the path. The choice is made once per call. `uniform`, if not null, is the value that
// every sample of the first operand has.
template <class Op, class T, class Use> void with_kernel(Path path, int s, [[maybe_unused]] const T* uniform, Use use) {
    using R = Real<T>;
    using K = typename LaneOp<Op, T>::type;
    if constexpr (std::is_floating_point_v<R>) {
        use(Unscaled<K, R>());
    } else {
        if constexpr (std::is_same_v<Op, Mul> && !is_complex<T>)
            if (uniform && with_product<T>(*uniform, s, use)) return;
        switch (path) {
        case Path::unscaled:
            if constexpr (std::is_same_v<Op, Mul> && std::is_same_v<T, Zet8u>)
                if (uniform) return use(MulByConstant8u(*uniform));
            return use(Unscaled<K, R>());
        case Path::half: return use(Halved<K, R>());
        case Path::down:
            if constexpr (std::is_same_v<Op, Mul> && std::is_same_v<T, Zet16u>)
                if (s > 16) return use(ScaledDownMul16uHigh(s));
            return use(ScaledDown<K, R>(s));
        case Path::up: return use(ScaledUp<K, R>(s));
        case Path::bound: return use(Bound<K, R>());
        case Path::zero: return;
        }
    }
}

template <class Op, class T, class L, Form F> bool forks_at(Path path, Extent e) {
    constexpr bool constants_of_pixel = (F == Form::constant || F == Form::constant_I) && L::channels > 1;
    return forks<T> && !L::keeps_alpha && (constants_of_pixel || fork_from<Op, T, F>.at(path, e));
}

// All paths of two operands, the checks passed. `a` gives the first operand by rows. The call's own s decides about forking;
// `computed` is the scale to compute with, which may be lower where the operand was reduced.
template <class Op, class T, class L, Form F, class Operand>
void arithmetic(const Operand& a, Src<T> b, Dst<T> dst, ZetiSize roi, int s, int computed, const T* uniform = nullptr) {
    using R = Real<T>;
    const Path path = std::is_floating_point_v<R> ? Path::unscaled : path_of(scale_range<Op, T>, s);
    if (path == Path::zero) return clear<T, L>(dst, roi);
    const Extent e = real_samples<T, L>(roi);
    const bool fork = forks_at<Op, T, L, F>(path, e);
    const Path kernelPath = computed == s ? path : path_of(scale_range<Op, T>, computed);
    with_kernel<Op, T>(kernelPath, computed, uniform,
                       [&](auto kernel) { run_rows<Writes<T, L>>(a, as<R>(b), as<R>(dst), e, fork, kernel); });
}

// 32sc products have no register form.
template <class L, class Rows> void multiply_32sc(Rows a, Src<Zet32sc> b, Dst<Zet32sc> dst, ZetiSize roi, int s) {
    if (s > scale_range<Mul, Zet32sc>.zeroAbove) return clear<Zet32sc, L>(dst, roi);
    MulComplex32 kernel(s);
    each_row(samples(roi, 1), [&](ptrdiff_t y) { pixel_row<L>(a(y), b.row(y), dst.row(y), roi.width, kernel); });
}

template <class Op, class T> inline constexpr bool by_pixel = std::is_same_v<T, Zet32sc> && (std::is_same_v<Op, Mul>);

template <class Op, class T, class L, Form F> void two_images(Src<T> a, Src<T> b, Dst<T> dst, ZetiSize roi, int s) {
    if constexpr (by_pixel<Op, T>) multiply_32sc<L>([=](ptrdiff_t y) { return SampleRow<T>{a.row(y)}; }, b, dst, roi, s);
    else arithmetic<Op, T, L, F>(operand_of(as<Real<T>>(a)), b, dst, roi, s, s);
}

template <class T, class L> ZetStatus check_width_first(ZetiSize roi) { return delegates<T, L> ? width(roi) : zetStsNoErr; }
template <class T, class... Step> ZetStatus check_complex_step(Step... s) { return is_complex<T> ? step(s...) : zetStsNoErr; }

} // namespace detail

template <class Op, class T, class L>
ZetStatus binary(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(check_width_first<T, L>(roiSize), null(pSrc1, pSrc2, pDst), size(roiSize),
                              check_complex_step<T>(src1Step, src2Step, dstStep)))
        return bad;
    two_images<Op, T, L, Form::images>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize, scaleFactor);
    return zetStsNoErr;
}

template <class Op, class T, class L>
ZetStatus binary_I(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad =
            first(check_width_first<T, L>(roiSize), null(pSrc, pSrcDst), size(roiSize), check_complex_step<T>(srcStep, srcDstStep)))
        return bad;
    two_images<Op, T, L, Form::images_I>({pSrc, srcStep}, {pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, scaleFactor);
    return zetStsNoErr;
}

namespace detail {

// Constants of the C1 forms that leave nothing to compute.
enum class Shortcut { none, copy, clear, fill_with_maximum };

template <class Op, class T> Shortcut shortcut_of(T value, int s) {
    using R = Real<T>;
    if constexpr (std::is_floating_point_v<R>) {
        return Shortcut::none;
    } else {
        R re{}, im{};
        if constexpr (is_complex<T>) re = value.re, im = value.im;
        else re = value;
        const bool zero = re == 0 && im == 0, one = re == 1 && im == 0;
        if constexpr (std::is_same_v<Op, Mul>) {
            return zero ? Shortcut::clear : one && s == 0 ? Shortcut::copy : Shortcut::none;
        } else {
            if (zero && s == 0) return Shortcut::copy;
            const bool always_above = std::is_same_v<Op, Add> && std::is_unsigned_v<R> && !zero;
            return always_above && path_of(scale_range<Op, T>, s) == Path::bound ? Shortcut::fill_with_maximum : Shortcut::none;
        }
    }
}

// The path `down` of sums and differences with constants.
template <class Op, class T> bool sums_down(int s) {
    return !std::is_same_v<Op, Mul> && path_of(scale_range<Op, T>, s) == Path::down && s < 8 * int{sizeof(T)};
}
template <class Op, class T, class L, Form F> void sum_down(Src<T> src, const T* values, Dst<T> dst, ZetiSize roi, int s) {
    using Kernel = ScaledSumWithConstant<Op, T>;
    T tie[L::colours], addend[L::colours], excess[L::colours];
    for (int c = 0; c < L::colours; ++c) {
        const typename Kernel::Constants of_channel(values[c], s);
        tie[c] = of_channel.tie, addend[c] = of_channel.addend, excess[c] = of_channel.excess;
    }
    const Extent e = real_samples<T, L>(roi);
    Kernel kernel(s);
    run_rows<Writes<T, L>>(constant_operands<T, L>(tie, addend, excess), src, dst, e, forks_at<Op, T, L, F>(Path::down, e), kernel);
}

template <class Op, class T, class L, Form F> void image_and_constant(Src<T> src, const T* values, Dst<T> dst, ZetiSize roi, int s) {
    using R = Real<T>;
    if constexpr (L::channels == 1) {
        const Shortcut shortcut = shortcut_of<Op>(*values, s);
        const R maximum = max_of<R>;
        if (shortcut == Shortcut::copy && F == Form::constant_I) return;
        if (shortcut == Shortcut::copy) return copy_samples(as<R>(src), as<R>(dst), real_samples<T, L>(roi));
        if (shortcut == Shortcut::clear) return clear<T, L>(dst, roi);
        if (shortcut == Shortcut::fill_with_maximum) return fill_samples(&maximum, 1, as<R>(dst), real_samples<T, L>(roi));
    }
    if constexpr (by_pixel<Op, T>) {
        SampleConstants<T> constants{};
        for (int c = 0; c < L::colours; ++c) constants.value[c] = values[c];
        multiply_32sc<L>([=](ptrdiff_t) { return constants; }, src, dst, roi, s);
    } else if constexpr (std::is_same_v<Op, Mul> && L::channels == 1 && std::is_integral_v<T>) {
        T value = *values;
        int computed = s;
        for (; computed > 0 && value % 2 == 0; --computed) value = static_cast<T>(value / 2); // the same products, exactly
        arithmetic<Op, T, L, F>(constant_operand<T, L>(&value), src, dst, roi, s, computed, &value);
    } else {
        if constexpr (std::is_integral_v<T>)
            if (sums_down<Op, T>(s)) return sum_down<Op, T, L, F>(src, values, dst, roi, s);
        arithmetic<Op, T, L, F>(constant_operand<T, L>(values), src, dst, roi, s, s);
    }
}

} // namespace detail

// One constant per colour channel.
template <class Op, class T, class L>
ZetStatus constant(const T* pSrc, int srcStep, const T* value, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc, value, pDst), size(roiSize), check_complex_step<T>(srcStep, dstStep))) return bad;
    image_and_constant<Op, T, L, Form::constant>({pSrc, srcStep}, value, {pDst, dstStep}, roiSize, scaleFactor);
    return zetStsNoErr;
}

template <class Op, class T, class L>
ZetStatus constant_I(const T* value, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    using namespace detail;
    if (ZetStatus bad = first(null(value, pSrcDst), size(roiSize), check_complex_step<T>(srcDstStep))) return bad;
    image_and_constant<Op, T, L, Form::constant_I>({pSrcDst, srcDstStep}, value, {pSrcDst, srcDstStep}, roiSize, scaleFactor);
    return zetStsNoErr;
}

// C1: the constant by value.
template <class Op, class T, class L>
ZetStatus constant(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, ZetiSize roiSize, int scaleFactor = 0) {
    return constant<Op, T, L>(pSrc, srcStep, &value, pDst, dstStep, roiSize, scaleFactor);
}

template <class Op, class T, class L> ZetStatus constant_I(T value, T* pSrcDst, int srcDstStep, ZetiSize roiSize, int scaleFactor = 0) {
    return constant_I<Op, T, L>(&value, pSrcDst, srcDstStep, roiSize, scaleFactor);
}

} // namespace zeti
