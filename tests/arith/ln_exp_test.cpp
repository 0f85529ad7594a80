// SPDX-License-Identifier: Apache-2.0
// Ln and Exp: integers against the rule in extended precision, floats against double precision.
#include <xmmintrin.h>

#include <climits>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/member.h"

using namespace test;

namespace {

constexpr unsigned plain_state = 0x1F80; // of MXCSR

template <class T> struct LnExp {
    using type = T;
    bool ln, inPlace;
    std::string layout = "C1";

    int channels() const { return layout.back() - '0'; }
    std::string name() const {
        return std::string("zeti") + (ln ? "Ln_" : "Exp_") + token<T>() + "_" + layout + (inPlace ? "IR" : "R") +
               (is_float<T> ? "" : "Sfs");
    }
    ZetStatus run(const T* src, int srcStep, T* dst, int dstStep, ZetiSize roi, int s) const {
        return inPlace ? call(roi, s, dst, dstStep) : call(roi, s, src, srcStep, dst, dstStep);
    }
    T alone(T x, int s = 0) const { // a sample in an image of its own
        T y{};
        LnExp{ln, false}.run(&x, sizeof x, &y, sizeof y, {1, 1}, s);
        return y;
    }

private:
    template <class... A> ZetStatus call(ZetiSize roi, int s, A... a) const {
        if constexpr (is_float<T>) return member<ZetStatus(A..., ZetiSize)>(name())(a..., roi);
        else return member<ZetStatus(A..., ZetiSize, int)>(name())(a..., roi, s);
    }
};

template <class Use> void each_member(Use use) {
    const auto members = [&]<class T>(T) {
        for (const bool ln : {true, false})
            for (const bool inPlace : {false, true})
                for (const char* layout : {"C1", "C3"}) use(LnExp<T>{ln, inPlace, layout});
    };
    members(Zet8u{}), members(Zet16u{}), members(Zet16s{}), members(Zet32f{});
}

// One sample by the rule, on integers. The only tie there is, e^0 at scale 1, is exact, and goes up.
template <class T> T result(bool ln, T x, int s) {
    constexpr T low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    const long double power = x - s * std::log(2.0L);
    if (ln ? x <= 0 : power < -99) return ln ? low : 0;
    if (!ln && power > 99) return high;
    const long double value = ln       ? std::ldexp(std::log(static_cast<long double>(x)), -std::clamp(s, -200, 200))
                              : x == 0 ? std::exp2(-static_cast<long double>(s))
                                       : std::exp(power);
    return value >= high ? high : static_cast<T>(value + 0.5L);
}

template <class T> ZetStatus warning(T x) { return x < 0 ? zetStsLnNegArg : x == 0 ? zetStsLnZeroArg : zetStsNoErr; }

// All samples of T at once.
template <class T> void every_sample(bool ln, int s) {
    constexpr int low = std::numeric_limits<T>::min(), n = std::numeric_limits<T>::max() - low + 1, side = n == 256 ? 16 : 256;
    Image<T> a(side, side, 1, side * sizeof(T)), d(side, side, 1, side * sizeof(T));
    for (int i = 0; i < n; ++i)
        a.set(i / side, i % side, static_cast<T>(low + i)), d.expect(i / side, i % side, result<T>(ln, static_cast<T>(low + i), s));
    LnExp<T>{ln, false}.run(a.data(), a.step, d.data(), d.step, {side, side}, s);
    ASSERT_TRUE(d.intact()) << (ln ? "Ln " : "Exp ") << token<T>() << " at scale " << s;
}

TEST(LnExp, EveryIntegerAtEveryScale) {
    for (const bool ln : {true, false}) {
        for (int s = -40; s <= 40; ++s) every_sample<Zet8u>(ln, s);
        for (int s = -21; s <= 21; ++s) every_sample<Zet16u>(ln, s), every_sample<Zet16s>(ln, s);
        for (const int s : {INT_MIN, INT_MIN + 1, -94549, -47276, -47271, -41, 100, 368, 369, 47265, 47285, 94548, 94549, INT_MAX})
            every_sample<Zet8u>(ln, s), every_sample<Zet16u>(ln, s), every_sample<Zet16s>(ln, s);
    }
}

// Where every member's results change fastest, at each scale that 16-bit samples can reach.
TEST(LnExp, ExponentialsOfAllScales) {
    for (int s = -47400; s <= 94700; s += 7)
        for (int i = -3; i <= 13; ++i) {
            const int x = static_cast<int>(s * 0.693147) + i;
            const auto u = static_cast<Zet16u>(std::clamp(x, 0, 65535));
            const auto i16 = static_cast<Zet16s>(std::clamp(x, -32768, 32767));
            ASSERT_EQ((LnExp<Zet16u>{false, false}.alone(u, s)), result(false, u, s)) << u << " at scale " << s;
            ASSERT_EQ((LnExp<Zet16s>{false, false}.alone(i16, s)), result(false, i16, s)) << i16 << " at scale " << s;
        }
}

Zet32f of_bits(std::uint32_t bits) { return load<Zet32f>(&bits); }

TEST(LnExp, FloatsByUnitsOfTheLastPlace) {
    const LnExp<Zet32f> ln{true, false}, exp{false, false};
    const Zet32f inf = INFINITY, tiny = 0x1p-149f;
    for (const Zet32f x : {0.0f, -0.0f}) EXPECT_EQ(ln.alone(x), -inf);
    for (const Zet32f x : {-1.0f, -tiny, -1e30f, -inf, Zet32f(NAN), -Zet32f(NAN)}) EXPECT_TRUE(std::isnan(ln.alone(x))) << text(x);
    for (const Zet32f x : {0.0f, -0.0f, tiny, -tiny, 0x1p-126f}) EXPECT_EQ(exp.alone(x), 1) << text(x);
    for (const Zet32f x : {88.73f, 89.0f, 1000.0f, 1e30f, inf}) EXPECT_EQ(exp.alone(x), inf) << text(x);
    for (const Zet32f x : {-103.98f, -104.0f, -1000.0f, -1e30f, -inf}) EXPECT_PRED2(same<Zet32f>, exp.alone(x), 0.0f) << text(x);
    EXPECT_EQ(exp.alone(-103.97f), tiny);
    EXPECT_EQ(ln.alone(inf), inf);
    EXPECT_PRED2(same<Zet32f>, ln.alone(1), 0.0f);
    EXPECT_TRUE(std::isnan(exp.alone(NAN)));

    constexpr unsigned stride = 1021, row = 4096; // through all bit patterns
    std::vector<Zet32f> x(row), y(row);
    for (const auto& f : {ln, exp}) {
        double worst = 0;
        for (std::uint64_t bits = 0; bits < 1ull << 32; bits += row * stride) {
            for (unsigned i = 0; i < row; ++i) x[i] = of_bits(static_cast<std::uint32_t>(bits + i * stride));
            f.run(x.data(), row * 4, y.data(), row * 4, {row, 1}, 0);
            for (unsigned i = 0; i < row; ++i) {
                if (i % 61 == 0) { ASSERT_PRED2(same<Zet32f>, y[i], f.alone(x[i])) << text(x[i]); }
                const double exact = f.ln ? std::log(double{x[i]}) : std::exp(double{x[i]});
                const bool number = std::isfinite(static_cast<float>(exact));
                if (!number) {
                    ASSERT_PRED2(same<Zet32f>, y[i], static_cast<float>(exact)) << text(x[i]);
                    continue;
                }
                worst = std::max(worst,
                                 std::fabs(y[i] - exact) / std::ldexp(1.0, std::max(std::ilogb(exact == 0 ? 1e-300 : exact) - 23, -149)));
            }
        }
        EXPECT_LE(worst, f.ln ? 1.1 : 1.9) << (f.ln ? "Ln" : "Exp");
    }
}

// One call on random images. A sample has the same result wherever it stands; the status is that of the first row that warns, whose
// negative samples come before its zeros.
template <class T> bool check(const LnExp<T>& f, Random& r, int width, int height, int s, Checksum& sum) {
    Image<T> a(r, width, height, f.channels()), d(r, width, height, f.channels());
    Image<T>& operand = f.inPlace ? d : a;
    ZetStatus expected = zetStsNoErr;
    for (int y = 0; y < height; ++y) {
        const ZetStatus allowed = r.pick({zetStsNoErr, zetStsNoErr, zetStsLnZeroArg, zetStsLnNegArg});
        ZetStatus inRow = zetStsNoErr;
        for (int i = 0; i < d.row_samples(); ++i) {
            if (warning(operand.at(y, i)) > allowed) operand.set(y, i, 1);
            inRow = std::max(inRow, warning(operand.at(y, i)));
        }
        if (f.ln && expected == zetStsNoErr) expected = inRow;
        for (int i = 0; i < d.row_samples(); ++i) {
            if constexpr (is_float<T>) d.expect(y, i, f.alone(operand.at(y, i)));
            else d.expect(y, i, result(f.ln, operand.at(y, i), s));
        }
    }
    const unsigned state = r.pick({plain_state, 0xFFC0u, 0x5F80u, 0x0000u}); // up and without denormals; upwards; every exception a trap
    _mm_setcsr(state);
    const ZetStatus status = f.run(a.data(), a.step, d.data(), d.step, {width, height}, s);
    const unsigned stateAfter = _mm_getcsr();
    _mm_setcsr(plain_state);
    sum.add(status), sum.add(d);
    EXPECT_TRUE(d.intact() && a.intact()) << f.name() << ", " << width << " x " << height << ", scale " << s << ": "
                                          << d.intact().message();
    EXPECT_EQ(status, expected) << f.name() << ", " << width << " x " << height << ", scale " << s;
    EXPECT_EQ(state, stateAfter) << f.name();
    return !testing::Test::HasFailure();
}

TEST(LnExp, EveryMemberOnImages) {
    Checksum sums[2];
    each_member([&](const auto& f) {
        Random r(f.name());
        for (int width = 1; width <= 70; ++width)
            for (const int s : {-20, -8, -2, -1, 0, 1, 3, 6, 25})
                if (!check(f, r, width, r.between(1, 4), is_float<typename std::decay_t<decltype(f)>::type> ? 0 : s, sums[f.ln])) return;
    });
    EXPECT_TRUE(sums[1].is_known("Ln"));
    EXPECT_TRUE(sums[0].is_known("Exp"));
}

// Too large for a cache: rows leave in pieces, and still are whole rows to the status.
TEST(LnExp, StatusOfLargeImages) {
    const ZetiSize roi = {4096, 2064};
    const std::size_t n = std::size_t(roi.width) * roi.height;
    std::vector<Zet16s> a(n, 2), d(n);
    const LnExp<Zet16s> f{true, false};
    const auto status = [&] { return f.run(a.data(), roi.width * 2, d.data(), roi.width * 2, roi, -9); };
    EXPECT_EQ(status(), zetStsNoErr);
    a[n - 1] = -1, a[n - 4000] = 0;
    EXPECT_EQ(status(), zetStsLnNegArg);
    a[n - 5000] = 0;
    EXPECT_EQ(status(), zetStsLnZeroArg);
    EXPECT_EQ(d[0], 355);
    EXPECT_EQ(d[n - 1], -32768);
}

TEST(LnExp, OrderOfChecks) {
    enum { null_src = 1, null_dst = 2, width = 4, height = 8, src_step = 16, dst_step = 32, all = 64 };
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        Image<T> a(r, 3, 2, f.channels()), d(r, 3, 2, f.channels());
        for (int e = 1; e < all; ++e) {
            if (f.inPlace && (e & (null_src | src_step))) continue;
            const auto bad = [&](int error, int good) { return e & error ? r.pick({0, -1, INT_MIN}) : good; };
            const ZetStatus expected = e & (null_src | null_dst) ? zetStsNullPtrErr : e & (width | height) ? zetStsSizeErr : zetStsStepErr;
            const ZetStatus status = f.run(e & null_src ? nullptr : a.data(), bad(src_step, a.step), e & null_dst ? nullptr : d.data(),
                                           bad(dst_step, d.step), {bad(width, 3), bad(height, 2)}, 0);
            EXPECT_EQ(status, expected) << f.name() << ", errors " << e;
            EXPECT_TRUE(d.intact()) << f.name();
        }
    });
}

} // namespace
