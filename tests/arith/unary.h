// SPDX-License-Identifier: Apache-2.0
// The members of Abs, Sqr, Sqrt, MulScale, MulCScale and Div_Round: what a sample becomes, and one checked call of a member.
#pragma once

#include <xmmintrin.h>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/member.h"
#include "tests/support/scaling.h"
#include "tests/support/zetcore_standin.h"

namespace test {

inline constexpr unsigned plain_state = 0x1F80; // of MXCSR

template <class T> struct Elementwise {
    using type = T;
    std::string operation, layout;
    bool inPlace;

    int channels() const { return layout.back() - '0'; }
    int colours() const { return layout == "AC4" ? 3 : channels(); }
    bool constant() const { return operation == "MulCScale"; }
    bool divides() const { return operation == "Div_Round"; }
    bool one_operand() const { return operation[0] == 'A' || operation[0] == 'S'; }
    bool scales() const { return !is_float<T> && (operation[0] == 'S' || divides()); }
    std::string name() const {
        return "zeti" + operation + "_" + token<T>() + "_" + layout + (inPlace ? "IR" : "R") + (scales() ? "Sfs" : "");
    }

    struct Images { // b is the only operand, the second one or the image; not used in place
        const T* a;
        int aStep;
        const T* b;
        int bStep;
        T* d;
        int dStep;
        const T* constants;
    };
    ZetStatus run(const Images& i, ZetiSize roi, int s = 0, int mode = 1) const {
        const auto call = [&](auto... a) {
            if (divides())
                return member<ZetStatus(decltype(a)..., ZetiSize, ZetRoundMode, int)>(name())(a..., roi, static_cast<ZetRoundMode>(mode),
                                                                                              s);
            if (scales()) return member<ZetStatus(decltype(a)..., ZetiSize, int)>(name())(a..., roi, s);
            return member<ZetStatus(decltype(a)..., ZetiSize)>(name())(a..., roi);
        };
        if (one_operand()) return inPlace ? call(i.d, i.dStep) : call(i.b, i.bStep, i.d, i.dStep);
        if (!constant()) return inPlace ? call(i.a, i.aStep, i.d, i.dStep) : call(i.a, i.aStep, i.b, i.bStep, i.d, i.dStep);
        if (channels() > 1) return inPlace ? call(i.constants, i.d, i.dStep) : call(i.b, i.bStep, i.constants, i.d, i.dStep);
        return inPlace ? call(*i.constants, i.d, i.dStep) : call(i.b, i.bStep, *i.constants, i.d, i.dStep);
    }
};

// One sample of the result; a is the constant or pSrc1. Sets `status` where the sample raises a warning.
template <class T> T result(const std::string& operation, T a, T b, int s, int mode, ZetStatus& status) {
    if (operation == "Sqrt" && b < 0) {
        status = zetStsSqrtNegArg;
        return is_float<T> ? static_cast<T>(NAN) : T(0);
    }
    if constexpr (is_float<T>) {
        return operation == "Abs" ? std::fabs(b) : operation == "Sqr" ? b * b : std::sqrt(b);
    } else {
        constexpr int n = std::numeric_limits<T>::digits;
        const std::int64_t x = b;
        if (operation == "Abs") return scaled<T>(std::abs(x), 0);
        if (operation == "Sqr") return scaled<T>(x * x, s);
        if (operation == "Sqrt") return scaled<T>(std::sqrt(static_cast<long double>(x)), s); // 64 bits tell every root from every half
        const std::uint64_t t = std::uint64_t(a) * b;
        if (operation[0] == 'M') return static_cast<T>((t + 1 + (t >> n)) >> n);
        const int from = n == 8 ? -15 : n == 16 ? -31 : -30, to = n == 8 ? 8 : n == 16 ? 16 : 15;
        if (a == 0) status = zetStsDivByZero;
        if (s > to) return 0;
        if (s < from && a != 0) return extreme<T>(a < 0 ? -x : x);
        if (a == 0) return extreme<T>(b);
        const float q = std::ldexp(static_cast<float>(b) / static_cast<float>(a), -s);
        const float rounded = mode == 0 ? std::trunc(q) : mode == 1 ? std::nearbyint(q) : std::trunc(q + std::copysign(0.5f, q));
        return scaled<T>(rounded, 0);
    }
}

template <class Use> void each_elementwise(Use use) {
    const auto members = [&]<class T>(T, std::initializer_list<const char*> operations) {
        for (const std::string operation : operations)
            for (const std::string layout : {"C1", "C3", "C4", "AC4"})
                for (const bool inPlace : {false, true})
                    if (operation != "Sqrt" || layout != "C4" || (is_float<T> && inPlace)) use(Elementwise<T>{operation, layout, inPlace});
    };
    members(Zet8u{}, {"Sqr", "Sqrt", "MulScale", "MulCScale", "Div_Round"}),
        members(Zet16u{}, {"Sqr", "Sqrt", "MulScale", "MulCScale", "Div_Round"});
    members(Zet16s{}, {"Abs", "Sqr", "Sqrt", "Div_Round"}), members(Zet32f{}, {"Abs", "Sqr", "Sqrt"});
}

// An image for families of one operand, whose rows advance by whole samples: its step is a multiple of them.
template <class T> Image<T> of_whole_samples(Random& r, int w, int h, int c) {
    return Image<T>(w, h, c, (w * c + r.pick({0, 1, r.between(0, 40)})) * static_cast<int>(sizeof(T)),
                    r.chance(2) ? Fence::behind : Fence::before, r.pick({0, r.between(0, 15)}));
}

// One call on random images against the reference. False after a failure.
template <class T>
bool check(const Elementwise<T>& f, Random& r, int width, int height, int s, int mode, unsigned state = plain_state,
           Checksum* sum = nullptr) {
    const int c = f.channels(), extra = f.one_operand() ? r.between(0, sizeof(T) - 1) : 0; // low bits that a step may have on top
    const auto image = [&] { return f.one_operand() ? of_whole_samples<T>(r, width, height, c) : Image<T>(r, width, height, c); };
    Image<T> a = image(), b = image(), d = image(), constants(f.colours(), 1, 1, 0);
    const Random::Pattern pattern = r.pattern();
    for (Image<T>* i : {&a, &b, &d, &constants}) i->fill(r, pattern);
    Image<T>& operand = f.inPlace ? d : b;
    const bool opaque = r.chance(2), harmless = r.chance(2); // alpha that would warn; colours that do not
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < d.row_samples(); ++i) {
            const bool alpha = i % c >= f.colours();
            if (alpha && opaque) a.set(y, i, T(0)), operand.set(y, i, static_cast<T>(-7));
            if (alpha || !harmless) continue;
            if (a.at(y, i) == 0) a.set(y, i, T(1));
            if (f.operation == "Sqrt" && operand.at(y, i) < 0) operand.set(y, i, T(0));
        }
    ZetStatus expected = zetStsNoErr;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < d.row_samples(); ++i)
            if (const int k = i % c; k < f.colours())
                d.expect(y, i, result(f.operation, f.constant() ? constants.at(0, k) : a.at(y, i), operand.at(y, i), s, mode, expected));

    _mm_setcsr(state);
    const ZetStatus status =
        f.run({a.data(), a.step, b.data(), b.step + extra, d.data(), d.step + extra, constants.data()}, {width, height}, s, mode);
    const unsigned stateAfter = _mm_getcsr();
    _mm_setcsr(plain_state);

    if (sum) sum->add(status), sum->add(d);
    const testing::AssertionResult good = d.intact();
    EXPECT_TRUE(good) << f.name() << ", " << width << " x " << height << ", scale " << s << ", mode " << mode;
    EXPECT_EQ(status, expected) << f.name() << ", " << width << " x " << height << ", scale " << s;
    EXPECT_TRUE(a.intact() && (f.inPlace || b.intact()) && constants.intact()) << f.name() << " writes to a source";
    EXPECT_EQ(state, stateAfter) << f.name();
    return good && status == expected && state == stateAfter;
}

} // namespace test
