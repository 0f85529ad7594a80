// SPDX-License-Identifier: Apache-2.0
// Abs, Sqr, Sqrt, Div_Round.
#include "tests/arith/elementwise.h"
#include "tests/support/scaling.h"

using namespace test;

namespace {

enum class Function { Abs, Sqr, Sqrt };

// Rows advance by whole samples: by the step without its low bits.
template <class T> struct Unary : Elementwise<T> {
    static constexpr int unit = sizeof(T);
    Function function;
    int lowBits = 0;

    template <class I, class Use> void call(I i, Use use) const {
        i.bStep += lowBits, i.dStep += lowBits;
        if constexpr (!is_float<T>)
            if (function != Function::Abs) return this->one(i, use, this->s);
        this->one(i, use);
    }
    T sample(T, T v, int, ZetStatus& warning) const {
        if (function == Function::Sqrt && v < 0) {
            warning = zetStsSqrtNegArg;
            return is_float<T> ? static_cast<T>(NAN) : T(0);
        }
        if constexpr (is_float<T>) {
            return function == Function::Abs ? std::fabs(v) : function == Function::Sqr ? v * v : std::sqrt(v);
        } else {
            const std::int64_t x = v;
            if (function == Function::Abs) return scaled<T>(std::abs(x), 0);
            if (function == Function::Sqr) return scaled<T>(x * x, this->s);
            return scaled<T>(std::sqrt(static_cast<long double>(x)), this->s); // 64 bits tell every root from every half
        }
    }
    void prepare(Random& r, Image<T>&, Image<T>& b) {
        lowBits = r.between(0, sizeof(T) - 1);
        if (function == Function::Sqrt) appease(r, b, this->layout, T(0), static_cast<T>(-7), [](T v) { return v < 0; });
    }
};

template <class T> struct DivRound : Elementwise<T> {
    int mode = zetRndZero;

    template <class I, class Use> void call(const I& i, Use use) const { this->two(i, use, static_cast<ZetRoundMode>(mode), this->s); }
    T sample(T a, T b, int, ZetStatus& warning) const {
        constexpr int n = std::numeric_limits<T>::digits, from = n == 8 ? -15 : n == 16 ? -31 : -30, to = n == 8 ? 8 : n == 16 ? 16 : 15;
        if (a == 0) warning = zetStsDivByZero;
        if (this->s > to) return 0;
        if (this->s < from && a != 0) return extreme<T>(a < 0 ? -b : +b);
        if (a == 0) return extreme<T>(b);
        const float q = std::ldexp(static_cast<float>(b) / static_cast<float>(a), -this->s);
        return scaled<T>(mode == 0 ? std::trunc(q) : mode == 1 ? std::nearbyint(q) : std::trunc(q + std::copysign(0.5f, q)), 0);
    }
    void prepare(Random& r, Image<T>& a, Image<T>&) {
        mode = r.between(0, 2);
        appease(r, a, this->layout, T(1), T(0), [](T v) { return v == 0; });
    }
    void order(Faults& faults, const Arguments& call) const {
        faults.null(call).size(call).step(call).add(zetStsRoundModeNotSupportedErr, call.end()[-2].as<int>(), {3, -1, INT_MAX});
    }
};

template <class T> Unary<T> unary(Function f, const PixelLayout& l = pixel_layouts[0], bool inPlace = false) {
    const char* const names[] = {"Abs", "Sqr", "Sqrt"};
    return {{names[static_cast<int>(f)], l, inPlace, false, f != Function::Abs && !is_float<T>}, f};
}
template <class T> DivRound<T> div_round(const PixelLayout& l = pixel_layouts[0], bool inPlace = false) {
    return {{"Div_Round", l, inPlace, false, true}};
}

constexpr auto each_member = [](auto use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool inPlace : {false, true}) {
            const auto members = [&](auto... v) {
                (use(unary<decltype(v)>(Function::Sqr, l, inPlace)), ...);
                if (std::string(l.name) != "C4") (use(unary<decltype(v)>(Function::Sqrt, l, inPlace)), ...);
            };
            members(Zet8u{}, Zet16u{}, Zet16s{}, Zet32f{});
            if (std::string(l.name) == "C4" && inPlace) use(unary<Zet32f>(Function::Sqrt, l, inPlace));
            use(unary<Zet16s>(Function::Abs, l, inPlace)), use(unary<Zet32f>(Function::Abs, l, inPlace));
            use(div_round<Zet8u>(l, inPlace)), use(div_round<Zet16u>(l, inPlace)), use(div_round<Zet16s>(l, inPlace));
        }
};

TEST(Unary, EveryMemberAtEveryScaleAndWidth) { sweep(each_member); }
TEST(Unary, OrderOfChecks) { check_orders(each_member); }
TEST(Unary, LargeDestination) { check_large(unary<Zet16s>(Function::Sqrt)); }

// At every scale factor whose results are not all bounds or zeros.
template <class T> void every_sample() {
    for (const Function function : {Function::Sqr, Function::Sqrt}) {
        auto f = unary<T>(function);
        for (f.s = -18; f.s <= 34; ++f.s) ASSERT_TRUE(check_pairs(f, {T(0)}, all_values<T>()));
    }
}
TEST(Unary, EverySampleAtEveryScale) { every_sample<Zet8u>(), every_sample<Zet16u>(), every_sample<Zet16s>(); }

TEST(DivRound, EveryPairOf8u) {
    auto f = div_round<Zet8u>();
    for (f.s = -17; f.s <= 10; ++f.s)
        for (f.mode = 0; f.mode < 3; ++f.mode) ASSERT_TRUE(check_pairs(f, all_values<Zet8u>(), all_values<Zet8u>()));
}

} // namespace
