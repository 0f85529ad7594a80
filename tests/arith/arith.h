// SPDX-License-Identifier: Apache-2.0
// The 400 members of Add, Sub, Mul, Div and their constant forms: what a sample becomes, and one checked call of a member.
#pragma once

#include <xmmintrin.h>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/member.h"
#include "tests/support/scaling.h"
#include "tests/support/zetcore_standin.h"

namespace test {

enum class Op { Add, Sub, Mul, Div };

template <class T> bool is_zero(T v) {
    if constexpr (is_complex<T>) return v.re == 0 && v.im == 0;
    else return v == 0;
}
inline float by_zero(float b) { return b > 0 ? INFINITY : b < 0 ? -INFINITY : NAN; }

// One sample of the result. a: pSrc1, the pSrc of in-place images, or the constant; b: the other image. Sets `zero` where the
// sample raises the warning.
template <class T> T result(Op op, bool constant, T a, T b, int s, bool& zero) {
    using R = Real<T>;
    if constexpr (!is_complex<T>) {
        if (op == Op::Div && a == 0) zero = true;
        if constexpr (is_float<T>) {
            return op == Op::Add ? a + b : op == Op::Sub ? b - a : op == Op::Mul ? a * b : a == 0 ? by_zero(b) : b / a;
        } else {
            const std::int64_t x = a, y = b;
            if (op != Op::Div) return scaled<T>(op == Op::Add ? x + y : op == Op::Sub ? y - x : x * y, s);
            return a == 0 ? extreme<T>(b) : scaled<T>(static_cast<float>(b) / static_cast<float>(a), s);
        }
    } else if (op == Op::Add || op == Op::Sub) {
        return {result(op, constant, a.re, b.re, s, zero), result(op, constant, a.im, b.im, s, zero)};
    } else if (op == Op::Mul) {
        if constexpr (is_float<T>) {
            return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
        } else { // sums wrap at 32 bits for 16sc, at 64 bits for 32sc
            using W = std::conditional_t<sizeof(R) == 2, std::uint32_t, std::uint64_t>;
            const W ar = a.re, ai = a.im, br = b.re, bi = b.im;
            return {scaled<R>(std::make_signed_t<W>(ar * br - ai * bi), s), scaled<R>(std::make_signed_t<W>(ar * bi + ai * br), s)};
        }
    } else {
        const double ar = a.re, ai = a.im, br = b.re, bi = b.im, norm = ar * ar + ai * ai, re = ar * br + ai * bi, im = ar * bi - ai * br;
        const bool by_none = is_zero(a);
        if constexpr (std::is_same_v<T, Zet16sc>) {
            const bool above = s > (constant ? 15 : 32), below = s < (constant ? -16 : -32);
            if (above && !constant && a.re == 0 && b.im == 0) zero = true;
            if (above) return {0, 0};
            if (below && !by_none) return {extreme<R>(re), extreme<R>(im)};
            if (below) return zero = true, T{0, 0};
        }
        if (by_none) zero = true;
        if constexpr (!is_float<T>)
            return by_none ? T{extreme<R>(b.re), extreme<R>(b.im)} : T{scaled<R>(re / norm, s), scaled<R>(im / norm, s)};
        else return by_none ? T{by_zero(b.re), by_zero(b.im)} : T{static_cast<float>(re / norm), static_cast<float>(im / norm)};
    }
}

template <class T> struct Arith {
    using type = T;
    Op op;
    bool constant, inPlace;
    std::string layout;

    int channels() const { return layout.back() - '0'; }
    int colours() const { return layout == "AC4" ? 3 : channels(); }
    bool checks_steps() const { return op == Op::Div || is_complex<T>; }
    bool estimates() const { return op == Op::Div && !constant && std::is_same_v<T, Zet32f>; }
    std::string family() const {
        return std::string(std::initializer_list<const char*>{"Add", "Sub", "Mul", "Div"}.begin()[int(op)]) + (constant ? "C" : "");
    }
    std::string name() const {
        return std::string("zeti") + family() + "_" + token<T>() + "_" + layout + (inPlace ? "IR" : "R") + (is_float<T> ? "" : "Sfs");
    }

    struct Images { // what the form has no use for is ignored
        const T* a;
        int aStep;
        const T* b;
        int bStep;
        T* d;
        int dStep;
        const T* constants;
    };
    ZetStatus run(const Images& i, ZetiSize roi, int s) const {
        if (!constant) return inPlace ? call(roi, s, i.a, i.aStep, i.d, i.dStep) : call(roi, s, i.a, i.aStep, i.b, i.bStep, i.d, i.dStep);
        if (channels() > 1)
            return inPlace ? call(roi, s, i.constants, i.d, i.dStep) : call(roi, s, i.b, i.bStep, i.constants, i.d, i.dStep);
        return inPlace ? call(roi, s, *i.constants, i.d, i.dStep) : call(roi, s, i.b, i.bStep, *i.constants, i.d, i.dStep);
    }

private:
    template <class... A> ZetStatus call(ZetiSize roi, int s, A... a) const {
        if constexpr (is_float<T>) return member<ZetStatus(A..., ZetiSize)>(name())(a..., roi);
        else return member<ZetStatus(A..., ZetiSize, int)>(name())(a..., roi, s);
    }
};

template <class Use> void each_member(Use use) {
    const auto members = [&]<class T>(T) {
        for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
            for (const std::string layout : {"C1", "C3", "C4", "AC4"})
                for (const int form : {0, 1, 2, 3})
                    if (!is_complex<T> || layout != "C4") use(Arith<T>{op, form / 2 == 1, form % 2 == 1, layout});
    };
    members(Zet8u{}), members(Zet16u{}), members(Zet16s{}), members(Zet32f{}), members(Zet16sc{}), members(Zet32sc{}), members(Zet32fc{});
}

// Constants, and quotients with zero divisors in some images, or among alpha samples only. Estimated quotients get operands for
// which the estimate has its full precision.
template <class T> void prepare(const Arith<T>& f, Random& r, Image<T>& a, Image<T>& b, Image<T>& constants) {
    for (int c = 0; c < f.colours(); ++c) do
            constants.set(0, c, r.chance(3) ? number<T>(r.between(0, 1)) : r.sample<T>(Random::mixed, c));
        while (f.op == Op::Div && is_zero(constants.at(0, c)));
    const bool zeros = r.chance(3), zeroAlpha = r.chance(2);
    for (int y = 0; f.op == Op::Div && y < a.height; ++y)
        for (int i = 0; i < a.row_samples(); ++i) {
            const bool zero = i % f.channels() < f.colours() ? zeros && r.chance(8) : zeroAlpha;
            if constexpr (std::is_same_v<T, Zet32f>) {
                const auto tame = [&] {
                    const float mantissa = 1 + 0x1p-23f * r.between(0, 0x7FFFFF), sign = r.pick({-1.0f, 1.0f});
                    return std::ldexp(sign * mantissa, r.between(-60, 60));
                };
                if (f.estimates()) a.set(y, i, tame()), b.set(y, i, zero ? r.edge<T>() : tame());
            }
            if (zero) a.set(y, i, T{});
        }
}

inline constexpr unsigned default_state = 0x1F80; // of MXCSR

// One call on random images against the reference. False after a failure.
template <class T> bool check(const Arith<T>& f, Random& r, ZetiSize size, int s, unsigned state = default_state, Checksum* sum = nullptr) {
    const bool anyStep = !f.checks_steps(), gaps = !r.chance(4);
    const int up = anyStep && gaps ? -1 : 1, flat = anyStep && gaps ? 0 : 1;    // directions that a step may point in
    const int flatToo = f.inPlace || sum || ownGetNumThreads() != 1 ? 1 : flat; // rows on top of each other need an order
    Image<T> a(r, size.width, size.height, f.channels(), {1, up, flat}, gaps),
        b(r, size.width, size.height, f.channels(), {1, up, flat}, gaps);
    Image<T> d(r, size.width, size.height, f.channels(), {1, up, flatToo}, gaps), constants(f.colours(), 1, 1, 0);
    const Image<T>& second = f.inPlace ? d : b;
    prepare(f, r, a, f.inPlace ? d : b, constants);
    bool zero = false;
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < d.row_samples(); ++i)
            if (const int c = i % f.channels(); c < f.colours())
                d.expect(y, i, result(f.op, f.constant, f.constant ? constants.at(0, c) : a.at(y, i), second.at(y, i), s, zero));

    _mm_setcsr(state);
    const ZetStatus status = f.run({a.data(), a.step, b.data(), b.step, d.data(), d.step, constants.data()}, size, s);
    const unsigned stateAfter = _mm_getcsr();
    _mm_setcsr(default_state);

    if (sum) sum->add(status), sum->add(d);
    const auto close = [&](T got, T want) {
        if constexpr (std::is_same_v<T, Zet32f>)
            if (f.estimates() && std::isfinite(want)) return std::fabs(got - want) <= std::fabs(want) * 0x1p-21f;
        return same(got, want);
    };
    const testing::AssertionResult good = d.intact(close);
    EXPECT_TRUE(good) << f.name() << ", " << size.width << " x " << size.height << ", scale " << s << ", constants from "
                      << text(constants.at(0, 0));
    EXPECT_EQ(status, zero ? zetStsDivByZero : zetStsNoErr) << f.name() << ", " << size.width << " x " << size.height << ", scale " << s;
    EXPECT_TRUE(a.intact() && (f.inPlace || b.intact()) && constants.intact()) << f.name() << " writes to a source";
    EXPECT_EQ(state, stateAfter) << f.name();
    return good && status == (zero ? zetStsDivByZero : zetStsNoErr) && state == stateAfter;
}

} // namespace test
