// SPDX-License-Identifier: Apache-2.0
// The 400 members of Add, Sub, Mul, Div and their constant forms.
#pragma once

#include "tests/arith/elementwise.h"
#include "tests/support/scaling.h"

namespace test {

enum class Op { Add, Sub, Mul, Div };
inline constexpr const char* op_names[] = {"Add", "Sub", "Mul", "Div"};

template <class T> bool is_zero(T v) {
    if constexpr (is_complex<T>) return v.re == 0 && v.im == 0;
    else return v == 0;
}
inline float by_zero(float b) { return b > 0 ? INFINITY : b < 0 ? -INFINITY : NAN; }

template <class T> struct Arith : Elementwise<T> {
    using R = Real<T>;
    using Elementwise<T>::layout, Elementwise<T>::inPlace, Elementwise<T>::s, Elementwise<T>::constant, Elementwise<T>::constants;
    Op op;

    Arith(Op o, bool byConstant, bool isInPlace = false, const PixelLayout& l = pixel_layouts[0])
        : Elementwise<T>{op_names[static_cast<int>(o)] + std::string(byConstant ? "C" : ""), l, isInPlace, byConstant, !is_float<T>},
          op(o) {}

    bool exact() const { return !is_float<T> || is_complex<T> || op != Op::Div || constant; }
    bool forks() const { return op != Op::Div && layout.channels == layout.colours && !is_complex<T> && !std::is_same_v<T, Zet16u>; }
    // 16u by a constant, at a scale that leaves nothing: the fill that stands for the call walks any step.
    bool clears() const { return std::is_same_v<T, Zet16u> && op == Op::Div && constant && layout.channels == 1 && s > 16; }
    bool checks_steps() const { return (op == Op::Div && !clears()) || is_complex<T>; }

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (is_float<T>) this->two_or_constants(i, use);
        else this->two_or_constants(i, use, s);
    }

    T sample(T first, T b, int c, ZetStatus& warning) const { return result(constant ? constants[c] : first, b, warning); }

    T result(T a, T b, ZetStatus& warning) const {
        if constexpr (!is_complex<T>) {
            return real(a, b, warning);
        } else if (op == Op::Add || op == Op::Sub) {
            return {real(a.re, b.re, warning), real(a.im, b.im, warning)};
        } else if (op == Op::Mul) {
            if constexpr (is_float<T>) {
                return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
            } else { // sums wrap at 32 bits for 16sc, at 64 bits for 32sc
                using W = std::conditional_t<sizeof(R) == 2, std::uint32_t, std::uint64_t>;
                const W ar = a.re, ai = a.im, br = b.re, bi = b.im;
                return {scaled<R>(std::make_signed_t<W>(ar * br - ai * bi), s), scaled<R>(std::make_signed_t<W>(ar * bi + ai * br), s)};
            }
        } else {
            const double ar = a.re, ai = a.im, br = b.re, bi = b.im;
            const double norm = ar * ar + ai * ai, re = ar * br + ai * bi, im = ar * bi - ai * br;
            const bool by_none = is_zero(a);
            if constexpr (std::is_same_v<T, Zet16sc>) {
                const bool above = s > (constant ? 15 : 32), below = s < (constant ? -16 : -32);
                if (above && !constant && a.re == 0 && b.im == 0) warning = zetStsDivByZero;
                if (above) return {0, 0};
                if (below && !by_none) return {extreme<R>(re), extreme<R>(im)};
                if (below) return warning = zetStsDivByZero, T{0, 0};
            }
            if (by_none) warning = zetStsDivByZero;
            if constexpr (!is_float<T>)
                return by_none ? T{extreme<R>(b.re), extreme<R>(b.im)} : T{scaled<R>(re / norm, s), scaled<R>(im / norm, s)};
            else return by_none ? T{by_zero(b.re), by_zero(b.im)} : T{static_cast<float>(re / norm), static_cast<float>(im / norm)};
        }
    }

    R real(R a, R b, ZetStatus& warning) const {
        if (op == Op::Div && a == 0) warning = zetStsDivByZero;
        if constexpr (is_float<T>) {
            return op == Op::Add ? a + b : op == Op::Sub ? b - a : op == Op::Mul ? a * b : a == 0 ? by_zero(b) : b / a;
        } else {
            const std::int64_t x = a, y = b;
            if (op != Op::Div) return scaled<R>(op == Op::Add ? x + y : op == Op::Sub ? y - x : x * y, s);
            return a == 0 ? extreme<R>(b) : scaled<R>(static_cast<float>(b) / static_cast<float>(a), s);
        }
    }

    // Quotients have no zero among their constants. Estimated ones get operands for which the estimate has its full precision.
    void prepare(Random& r, Image<T>& a, Image<T>& b) {
        for (T& c : constants) do
                c = r.chance(3) ? number<T>(r.between(0, 1)) : r.sample<T>(Random::mixed, 0);
            while (op == Op::Div && is_zero(c));
        if constexpr (std::is_same_v<T, Zet32f>) {
            const auto tame = [&] {
                const float mantissa = 1 + 0x1p-23f * r.between(0, 0x7FFFFF), sign = r.pick({-1.0f, 1.0f});
                return std::ldexp(sign * mantissa, r.between(-60, 60));
            };
            for (int y = 0; !exact() && y < a.height; ++y)
                for (int i = 0; i < a.row_samples(); ++i) {
                    const bool zero = r.chance(20);
                    b.set(y, i, zero ? r.edge<T>() : tame());
                    a.set(y, i, zero ? 0 : tame());
                }
        }
        if (op == Op::Div) appease(r, a, layout, number<T>(1), T{}, is_zero<T>);
    }

    void order(Faults& faults, const Arguments& call) {
        const bool widthFirst = !constant && !is_complex<T> && layout.channels > 1 && layout.channels == layout.colours;
        faults.size(call, widthFirst, false).null(call).size(call, !widthFirst, true);
        if (checks_steps()) faults.step(call);
        if (constant && op == Op::Div)
            faults.add(zetStsDivByZeroErr, layout.channels == 1 ? call[inPlace ? 0 : 2].template as<T>() : constants[layout.colours - 1],
                       {T{}});
    }
};

inline constexpr auto each_arith = [](auto use) {
    const auto members = [&]<class T>(T) {
        for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
            for (const PixelLayout& l : pixel_layouts)
                for (const int form : {0, 1, 2, 3})
                    if (!is_complex<T> || std::string(l.name) != "C4") use(Arith<T>(op, form / 2 == 1, form % 2 == 1, l));
    };
    members(Zet8u{}), members(Zet16u{}), members(Zet16s{}), members(Zet32f{}), members(Zet16sc{}), members(Zet32sc{}), members(Zet32fc{});
};

} // namespace test
