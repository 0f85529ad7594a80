// SPDX-License-Identifier: Apache-2.0
// Abs, Sqr, Sqrt, MulScale, MulCScale, Div_Round.
#include "tests/arith/unary.h"

#include <climits>
#include <map>

using namespace test;

namespace {

TEST(Elementwise, EveryMemberAtEveryScaleAndWidth) {
    each_elementwise([](const auto& f) {
        Random r(f.name());
        const auto some = [&](int width, int s) { return check(f, r, width, r.between(1, 3), f.scales() ? s : 0, r.between(0, 2)); };
        for (int s = -40; s <= 70; ++s)
            if (!some(r.between(1, 40), s) || !some(r.between(1, 40), s)) return;
        for (const int s : {INT_MIN, INT_MIN + 1, -1 << 16, -129, -128, -127, 127, 128, 129, 1 << 16, INT_MAX})
            if (!some(r.between(1, 40), s)) return;
        for (int width = 1; width <= 40; ++width)
            for (const int s : {0, 1, 4, -2, -8, -50})
                if (!some(width, s)) return;
        for (const int width : {47, 48, 49, 63, 64, 65, 127, 129, 1023, 1024, 1025, 3073})
            if (!some(width, 1)) return;
    });
}

// Every sample of 8 and 16 bits at every scale factor whose results are not all bounds or zeros.
template <class T> void every_sample(std::initializer_list<const char*> operations) {
    using limits = std::numeric_limits<T>;
    const int height = sizeof(T) == 1 ? 1 : 256;
    Image<T> b(256, height, 1, 256 * sizeof(T)), d(256, height, 1, 256 * sizeof(T));
    for (int i = 0; i < 256 * height; ++i) b.set(i / 256, i % 256, static_cast<T>(limits::min() + i));
    for (const std::string operation : operations)
        for (int s = -18; s <= 34; ++s) {
            ZetStatus expected = zetStsNoErr;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < 256; ++x) d.expect(y, x, result<T>(operation, 0, b.at(y, x), s, 0, expected));
            EXPECT_EQ(
                (Elementwise<T>{operation, "C1", false}.run({nullptr, 0, b.data(), b.step, d.data(), d.step, nullptr}, {256, height}, s)),
                expected);
            ASSERT_TRUE(d.intact()) << operation << " of " << token<T>() << " at scale " << s;
        }
}
TEST(Elementwise, EverySampleAtEveryScale) {
    every_sample<Zet8u>({"Sqr", "Sqrt"}), every_sample<Zet16u>({"Sqr", "Sqrt"}), every_sample<Zet16s>({"Sqr", "Sqrt"});
}

TEST(Elementwise, EveryPairOf8u) {
    Image<Zet8u> a(256, 256, 1, 257), b(256, 256, 1, 259), d(256, 256, 1, 261);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) a.set(y, x, y), b.set(y, x, x);
    const auto check_all = [&](const std::string& operation, int s, int mode) {
        ZetStatus expected = zetStsNoErr;
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) d.expect(y, x, result<Zet8u>(operation, y, x, s, mode, expected));
        const Elementwise<Zet8u> f{operation, "C1", false};
        for (int v = 0; v < 256 && f.constant(); ++v) {
            const Zet8u value = static_cast<Zet8u>(v);
            f.run({nullptr, 0, b.data(), b.step, d.data() + v * d.step, d.step, &value}, {256, 1});
        }
        if (!f.constant()) {
            EXPECT_EQ(f.run({a.data(), a.step, b.data(), b.step, d.data(), d.step, nullptr}, {256, 256}, s, mode), expected);
        }
        EXPECT_TRUE(d.intact()) << operation << ", scale " << s << ", mode " << mode;
    };
    check_all("MulScale", 0, 0), check_all("MulCScale", 0, 0);
    for (int s = -17; s <= 10; ++s)
        for (const int mode : {0, 1, 2}) check_all("Div_Round", s, mode);
}

// Results worked out by hand, each through a row of nothing else.
TEST(Elementwise, ByHand) {
    const struct {
        const char* operation;
        int a, b, s, mode, expected;
    } cases[] = {
        {"Abs", 0, -32768, 0, 0, 32767},
        {"Sqrt", 0, 25, 1, 0, 2},
        {"Sqrt", 0, 9, 1, 0, 2},
        {"Sqrt", 0, -4, 0, 0, 0},
        {"Sqrt", 0, 530, -11, 0, 32767},
        {"Sqrt", 0, 4187, -7, 0, 8283},
        {"Sqr", 0, -32768, 30, 0, 1},
        {"Sqr", 0, -32768, 31, 0, 0},
        {"Div_Round", 2, 5, 0, 0, 2},
        {"Div_Round", 2, 5, 0, 1, 2},
        {"Div_Round", 2, 5, 0, 2, 3},
        {"Div_Round", 2, -5, 0, 0, -2},
        {"Div_Round", 2, -5, 0, 1, -2},
        {"Div_Round", 2, -5, 0, 2, -3},
        {"Div_Round", 0, -5, 0, 2, -32768},
        {"Div_Round", 0, -5, 16, 2, 0},
        {"Div_Round", -1, 5, -31, 0, -32768},
    };
    for (const auto& c : cases) {
        const Zet16s a = static_cast<Zet16s>(c.a), b = static_cast<Zet16s>(c.b);
        Zet16s got = 99;
        Elementwise<Zet16s>{c.operation, "C1", false}.run({&a, 2, &b, 2, &got, 2, nullptr}, {1, 1}, c.s, c.mode);
        EXPECT_EQ(got, c.expected) << c.operation << ' ' << c.a << ' ' << c.b << ", scale " << c.s << ", mode " << c.mode;
    }
}

// Two errors in every pair: the one that the family checks first is reported, and nothing is written.
TEST(Elementwise, OrderOfChecks) {
    enum Error { null_a, null_b, null_d, null_constants, width, height, step_a, step_b, step_d, bad_mode, errors };
    each_elementwise([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        const bool usesA = !f.one_operand() && !f.constant(), usesB = !f.inPlace, stepFirst = f.operation[0] == 'M';
        const auto rank = [&](int e) { // 0 where the member has no such argument
            const bool no = ((e == null_a || e == step_a) && !usesA) || ((e == null_b || e == step_b) && !usesB) ||
                            (e == bad_mode && !f.divides()) || (e == null_constants && (!f.constant() || f.channels() == 1));
            return no ? 0 : e <= null_constants ? 1 : e == bad_mode ? 4 : (e <= height) != stepFirst ? 2 : 3;
        };
        const auto status = [](int e) {
            return e <= null_constants ? zetStsNullPtrErr
                   : e <= height       ? zetStsSizeErr
                   : e <= step_d       ? zetStsStepErr
                                       : zetStsRoundModeNotSupportedErr;
        };
        Random r(f.name());
        Image<T> a(r, 3, 2, f.channels()), b(r, 3, 2, f.channels()), d(r, 3, 2, f.channels()), constants(r, f.colours(), 1, 1);
        for (int one = 0; one < errors; ++one)
            for (int two = one; two < errors; ++two) {
                if (!rank(one) || !rank(two)) continue;
                const auto has = [&](int e) { return one == e || two == e; };
                const auto bad = [&](int e, int good) { return has(e) ? r.pick({0, -1, INT_MIN}) : good; };
                const ZetStatus got =
                    f.run({has(null_a) ? nullptr : a.data(), bad(step_a, a.step), has(null_b) ? nullptr : b.data(), bad(step_b, b.step),
                           has(null_d) ? nullptr : d.data(), bad(step_d, d.step), has(null_constants) ? nullptr : constants.data()},
                          {bad(width, 3), bad(height, 2)}, r.pick({0, 100, -100}), has(bad_mode) ? 3 : 1);
                ASSERT_EQ(got, status(rank(one) <= rank(two) ? one : two)) << f.name() << ", errors " << one << " and " << two;
                ASSERT_TRUE(d.intact()) << f.name();
            }
    });
}

TEST(Elementwise, SerialAndTheSameUnderAnyFloatState) {
    for (const unsigned state : {plain_state, 0x3F80U, 0x5F80U, 0x7F80U, 0x9FC0U, 0x0000U}) {
        std::map<std::string, Checksum> sums;
        standin_reset();
        each_elementwise([&](const auto& f) {
            Random r(f.name());
            for (const int s : {0, 1, 3, -2, -9, -40})
                if (!check(f, r, r.between(1, 70), r.between(1, 9), f.scales() ? s : 0, r.between(0, 2), state, &sums[f.operation])) return;
        });
        for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
        EXPECT_EQ(standin_thread_queries(), 0);
    }
}

// A destination too large for the cache is written past it.
TEST(Elementwise, LargeImage) {
    Random r("large");
    check(Elementwise<Zet16s>{"Sqrt", "C1", false}, r, 4099, 2100, 0, 1);
}

} // namespace
