// SPDX-License-Identifier: Apache-2.0
// Ln and Exp: integers against the rule in extended precision, floats against double precision.
#include "tests/arith/elementwise.h"
#include "tests/support/checksum.h"

using namespace test;

namespace {

template <class T> struct LnExp : Elementwise<T> {
    bool ln;

    explicit LnExp(bool isLn, const PixelLayout& l = pixel_layouts[0], bool isInPlace = false)
        : Elementwise<T>{isLn ? "Ln" : "Exp", l, isInPlace, false, !is_float<T>}, ln(isLn) {}

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (is_float<T>) this->one(i, use);
        else this->one(i, use, this->s);
    }
    void on_row(const T* x, T* y, int width) const {
        run(*this, Operands<const T*, T*>{x, width * 4, x, width * 4, y, width * 4, {width, 1}});
    }
    T alone(T x) const { // a float in an image of its own
        T y{};
        LnExp(ln).on_row(&x, &y, 1);
        return y;
    }

    // A float has the same result wherever it stands. An integer follows the rule: the only tie there is, e^0 at scale 1, is exact, and goes up.
    T sample(T, T x, int, ZetStatus& warning) const {
        if (ln && x <= 0) warning = std::max(warning, x < 0 ? zetStsLnNegArg : zetStsLnZeroArg);
        if constexpr (is_float<T>) {
            return alone(x);
        } else {
            constexpr T low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
            const int s = this->s;
            const long double power = x - s * std::log(2.0L);
            if (ln ? x <= 0 : power < -99) return ln ? low : 0;
            if (!ln && power > 99) return high;
            const long double value = ln       ? std::ldexp(std::log(static_cast<long double>(x)), -std::clamp(s, -200, 200))
                                      : x == 0 ? std::exp2(-static_cast<long double>(s))
                                               : std::exp(power);
            return value >= high ? high : static_cast<T>(value + 0.5L);
        }
    }
    // In many rows nothing warns, or zeros alone.
    void prepare(Random& r, Image<T>&, Image<T>& b) {
        for (int y = 0; y < b.height; ++y) {
            const int least = r.pick({1, 1, 0, INT_MIN});
            for (int i = 0; i < b.row_samples(); ++i)
                if (b.at(y, i) < least) b.set(y, i, 1);
        }
    }
};

constexpr auto each_member = [](auto use) {
    const auto members = [&](auto... v) {
        for (const bool ln : {true, false})
            for (const bool inPlace : {false, true})
                for (const int l : {0, 1}) (use(LnExp<decltype(v)>(ln, pixel_layouts[l], inPlace)), ...);
    };
    members(Zet8u{}, Zet16u{}, Zet16s{}, Zet32f{});
};

TEST(LnExp, EveryMemberOnImages) { sweep(each_member); }
TEST(LnExp, OrderOfChecks) { check_orders(each_member); }

TEST(LnExp, EveryIntegerAtEveryScale) {
    const auto every_sample = [](auto f, int s) {
        f.s = s;
        ASSERT_TRUE(check_pairs(f, {0}, all_values<typename decltype(f)::type>()));
    };
    std::vector<int> scales = {INT_MIN, INT_MIN + 1, -94549, -47276, -47271, 100, 368, 369, 47265, 47285, 94548, 94549, INT_MAX};
    for (int s = -41; s <= 41; ++s) scales.push_back(s);
    for (const bool ln : {true, false})
        for (const int s : scales)
            every_sample(LnExp<Zet8u>(ln), s), every_sample(LnExp<Zet16u>(ln), s), every_sample(LnExp<Zet16s>(ln), s);
}

// Where results change fastest, at each scale that 16-bit samples can reach.
template <class T> void exponentials(int low, int high) {
    LnExp<T> f(false);
    for (f.s = -47400; f.s <= 94700; f.s += 7) {
        std::vector<T> values;
        for (int i = -3; i <= 13; ++i) values.push_back(static_cast<T>(std::clamp(static_cast<int>(f.s * 0.693147) + i, low, high)));
        ASSERT_TRUE(check_pairs(f, {0}, values));
    }
}
TEST(LnExp, ExponentialsOfAllScales) { exponentials<Zet16u>(0, 65535), exponentials<Zet16s>(-32768, 32767); }

TEST(LnExp, FloatsByUnitsOfTheLastPlace) {
    const LnExp<Zet32f> ln(true), exp(false);
    const Zet32f inf = INFINITY, tiny = 0x1p-149f, nan = NAN;
    for (const auto& [x, y] : {std::pair{0.0f, -inf}, {-0.0f, -inf}, {-tiny, nan}, {-inf, nan}, {inf, inf}, {1, 0}, {nan, nan}})
        EXPECT_PRED2(same<Zet32f>, ln.alone(x), y) << text(x);
    for (const auto& [x, y] :
         {std::pair{0.0f, 1.0f}, {-tiny, 1}, {88.73f, inf}, {inf, inf}, {-103.97f, tiny}, {-103.98f, 0}, {-inf, 0}, {nan, nan}})
        EXPECT_PRED2(same<Zet32f>, exp.alone(x), y) << text(x);

    constexpr unsigned stride = 1021, row = 4096; // through all bit patterns
    std::vector<Zet32f> x(row), y(row);
    for (const auto& f : {ln, exp}) {
        double worst = 0;
        Checksum sum;
        for (std::uint64_t bits = 0; bits < 1ull << 32; bits += row * stride) {
            for (unsigned i = 0; i < row; ++i) {
                const auto pattern = static_cast<std::uint32_t>(bits + i * stride);
                x[i] = load<Zet32f>(&pattern);
            }
            f.on_row(x.data(), y.data(), row);
            for (unsigned i = 0; i < row; ++i) {
                sum.add(y[i]);
                const double exact = f.ln ? std::log(double{x[i]}) : std::exp(double{x[i]});
                if (std::isfinite(static_cast<float>(exact))) {
                    const double ulp = std::ldexp(1.0, std::max(std::ilogb(exact == 0 ? 1e-300 : exact) - 23, -149));
                    worst = std::max(worst, std::fabs(y[i] - exact) / ulp);
                } else {
                    ASSERT_PRED2(same<Zet32f>, y[i], static_cast<float>(exact)) << text(x[i]);
                }
            }
        }
        EXPECT_LE(worst, f.ln ? 1.1 : 1.9) << f.name();
        EXPECT_EQ(sum.value, f.ln ? 0x0DB54D4F2963325B : 0xA7CAE89EB1A2DCCC) << f.name();
    }
}

// Too large for a cache: rows leave in pieces, and still are whole rows to the status.
TEST(LnExp, StatusOfLargeImages) {
    LnExp<Zet16s> f(true);
    Image<Zet16s> a(4096, 2064, 1, 8192), d(4096, 2064, 1, 8192);
    for (const auto [y, x] : a.samples()) a.set(y, x, 2);
    a.set(2063, 4095, -1), a.set(2063, 96, 0);
    verify(f, a, a, d);
    a.set(2062, 3192, 0);
    verify(f, a, a, d);
}

} // namespace
