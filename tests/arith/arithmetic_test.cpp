// SPDX-License-Identifier: Apache-2.0
// Values: all members against the reference.
#include "tests/arith/arith.h"

#include <climits>

using namespace test;

namespace {

// A few results worked out by hand.
TEST(Values, ByHand) {
    const struct { Op op; int s; Zet16s a, b, expected; } cases[] = {
        {Op::Add, 1, 1, 2, 2},     {Op::Add, 1, 2, 3, 2},      {Op::Add, 1, -2, -3, -2},       {Op::Sub, 0, 10, 3, -7},
        {Op::Mul, -15, -1, 1, -32768}, {Op::Mul, -15, 0, 77, 0}, {Op::Mul, 30, -32768, -32768, 1}, {Op::Div, 0, 2, 7, 4},
        {Op::Div, 0, 2, 5, 2},     {Op::Div, 0, -2, 7, -4},    {Op::Div, -30, -1, 1, -32768},  {Op::Div, 99, 0, -7, -32768},
    };
    bool zero = false;
    for (const auto& c : cases) {
        EXPECT_EQ(result(c.op, false, c.a, c.b, c.s, zero), c.expected);
        Zet16s got = 0;
        Arith<Zet16s>{c.op, false, false, "C1"}.run({&c.a, 2, &c.b, 2, &got, 2, nullptr}, {1, 1}, c.s);
        EXPECT_EQ(got, c.expected) << static_cast<int>(c.op) << ' ' << c.a << ' ' << c.b << ' ' << c.s;
    }
}

TEST(Values, EveryMemberAtEveryScaleAndWidth) {
    each_member([](const auto& f) {
        Random r(f.name());
        constexpr bool scales = !is_float<typename std::decay_t<decltype(f)>::type>;
        const auto some = [&](int s) { return check(f, r, r.between(1, 40), r.between(1, 3), scales ? s : 0); };
        for (int s = -40; s <= 70; ++s)
            if (!some(s) || !some(s)) return;
        for (const int s : {INT_MIN, INT_MIN + 1, -1 << 16, -1024, -257, -128, -65, 96, 127, 128, 256, 1023, 1 << 16, INT_MAX})
            if (!some(s)) return;
        for (int width = 1; width <= 40; ++width)
            for (const int s : {0, 1, 4, -2, -50})
                if (!check(f, r, width, r.between(1, 3), scales ? s : 0)) return;
        for (const int width : {47, 48, 49, 63, 64, 65, 95, 97, 127, 129, 200, 1023, 3071, 3072, 3073})
            for (const int s : {0, 1, 3, -1})
                if (!check(f, r, width, 2, scales ? s : 0)) return;
    });
}

// All pairs of samples, out of place and in place, and every constant; s from -16 to 18.
TEST(Values, EveryPairOf8uAtEveryScale) {
    for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
        for (int s = -16; s <= 18; ++s) {
            Image<Zet8u> a(256, 256, 1, 257), b(256, 256, 1, 259), d(256, 256, 1, 261);
            bool zero = false;
            for (int y = 0; y < 256; ++y)
                for (int x = 0; x < 256; ++x) a.set(y, x, y), b.set(y, x, x), d.set(y, x, x), d.expect(y, x, result<Zet8u>(op, false, y, x, s, zero));
            const auto run = [&](bool inPlace) {
                const ZetStatus status = Arith<Zet8u>{op, false, inPlace, "C1"}.run({a.data(), a.step, b.data(), b.step, d.data(), d.step, nullptr}, {256, 256}, s);
                EXPECT_EQ(status, zero ? zetStsDivByZero : zetStsNoErr);
                EXPECT_TRUE(d.intact()) << static_cast<int>(op) << " at scale " << s << (inPlace ? " in place" : "");
            };
            run(true), run(false);
            for (const bool inPlace : {true, false})
                for (int v = op == Op::Div; v < 256; ++v) {
                    const Zet8u value = static_cast<Zet8u>(v);
                    Zet8u* const row = d.data() + v * d.step;
                    if (inPlace) std::memcpy(row, b.data(), 256);
                    Arith<Zet8u>{op, true, inPlace, "C1"}.run({nullptr, 0, b.data(), b.step, row, d.step, &value}, {256, 1}, s);
                }
            EXPECT_TRUE(d.intact()) << static_cast<int>(op) << " by constants at scale " << s;
            if (HasFailure()) return;
        }
}

// Every pair of bounds, powers of two and their neighbours, 16 bits and 32.
template <class T> void boundaries() {
    std::vector<Real<T>> v;
    for (int k = 0; k < 8 * static_cast<int>(sizeof(Real<T>)); ++k)
        for (const int near : {-1, 0, 1})
            for (const int sign : {1, -1}) v.push_back(static_cast<Real<T>>(sign * (std::int64_t{1} << k) + near));
    const int n = static_cast<int>(v.size());
    Image<T> a(n, n, 1, n * sizeof(T)), b(n, n, 1, n * sizeof(T)), d(n, n, 1, n * sizeof(T));
    for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
        for (int s = -34; s <= (is_complex<T> ? 66 : 34); s += is_complex<T> ? 3 : 1) {
            bool zero = false;
            for (int y = 0; y < n; ++y)
                for (int x = 0; x < n; ++x) {
                    if constexpr (is_complex<T>) a.set(y, x, {v[y], v[(x + y) % n]}), b.set(y, x, {v[x], v[(x * 5 + y) % n]});
                    else a.set(y, x, v[y]), b.set(y, x, v[x]);
                    d.expect(y, x, result<T>(op, false, a.at(y, x), b.at(y, x), s, zero));
                }
            Arith<T>{op, false, false, "C1"}.run({a.data(), a.step, b.data(), b.step, d.data(), d.step, nullptr}, {n, n}, s);
            ASSERT_TRUE(d.intact()) << token<T>() << ' ' << static_cast<int>(op) << " at scale " << s;
        }
}
TEST(Values, Boundaries) { boundaries<Zet16u>(), boundaries<Zet16s>(), boundaries<Zet16sc>(), boundaries<Zet32sc>(); }

// Sums of products that do not fit wrap: four parts of -2^15 in 32 bits, of -2^31 in 64.
TEST(Values, ComplexSumsOfProductsWrap) {
    const Zet16sc low16{-32768, -32768};
    const Zet32sc low32{INT_MIN, INT_MIN};
    Zet16sc got16{};
    Zet32sc got32{};
    Arith<Zet16sc>{Op::Mul, false, false, "C1"}.run({&low16, 4, &low16, 4, &got16, 4, nullptr}, {1, 1}, 20);
    Arith<Zet32sc>{Op::Mul, false, false, "C1"}.run({&low32, 8, &low32, 8, &got32, 8, nullptr}, {1, 1}, 40);
    EXPECT_TRUE(same(got16, Zet16sc{0, -2048})) << text(got16);
    EXPECT_TRUE(same(got32, Zet32sc{0, -(1 << 23)})) << text(got32);
}

// An estimated quotient is the same wherever its pixel stands in its row.
TEST(Values, EstimatedQuotientsDoNotDependOnThePlace) {
    const Arith<Zet32f> f{Op::Div, false, false, "C1"};
    Random r("place");
    Image<Zet32f> a(64, 1, 1, 256), b(64, 1, 1, 256), one(64, 1, 1, 256);
    Image<Zet32f> unused(1, 1, 1, 4);
    prepare(f, r, a, b, unused);
    for (int x = 0; x < 64; ++x) a.set(0, x, a.at(0, x) == 0 ? 3.0f : a.at(0, x)), f.run({a.data() + x, 4, b.data() + x, 4, one.data() + x, 4, nullptr}, {1, 1}, 0);
    for (int from = 0; from < 20; ++from)
        for (int width = 1; width <= 40; ++width) {
            Image<Zet32f> d(r, width, 1, 1);
            for (int x = 0; x < width; ++x) d.expect(0, x, one.at(0, from + x));
            f.run({a.data() + from, 4, b.data() + from, 4, d.data(), d.step, nullptr}, {width, 1}, 0);
            ASSERT_TRUE(d.intact()) << from;
        }
}

// From 16 MiB on the rows of a destination leave by streaming stores.
TEST(Values, LargeDestinations) {
    const auto large = [](const auto& f) {
        Random r(f.name());
        const int height = 211, pixelBytes = f.channels() * sizeof(typename std::decay_t<decltype(f)>::type);
        check(f, r, (16 << 20) / height / pixelBytes + 1, height, 3);
    };
    large(Arith<Zet8u>{Op::Add, false, false, "C1"});
    large(Arith<Zet16s>{Op::Mul, true, false, "C3"});
    large(Arith<Zet32f>{Op::Sub, false, false, "C4"});
    large(Arith<Zet16u>{Op::Div, true, false, "C4"});
    large(Arith<Zet32f>{Op::Mul, true, false, "C3"});
}

// Rows more than 2 GiB apart.
TEST(Values, StepsBeyondTwoGigabytes) {
    if (sizeof(void*) == 4) GTEST_SKIP() << "no such image fits the address space";
    const long step = 1L << 30, height = 5;
    void* const memory = mmap(nullptr, step * height, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Zet8u* const d = static_cast<Zet8u*>(memory);
    const Zet8u a[3] = {1, 2, 3}, b[3] = {10, 20, 30};
    EXPECT_EQ((Arith<Zet8u>{Op::Add, false, false, "C3"}.run({a, 0, b, 0, d, static_cast<int>(step), nullptr}, {1, height}, 0)), zetStsNoErr);
    for (long y = 0; y < height; ++y) EXPECT_EQ(d[y * step] + d[y * step + 1] * 256 + d[y * step + 2] * 65536, 11 + 22 * 256 + 33 * 65536) << y;
    munmap(memory, step * height);
}

// Where source and destination overlap within a row, samples are computed one by one from left to right: every shift of either
// operand against the destination.
TEST(Overlap, EqualsTheSequence) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        for (int shift = -20; shift <= 20; ++shift)
            for (const int width : {5, 13, 37})
                for (const bool aOverlaps : {false, true}) {
                    const int n = width * f.channels(), s = r.pick({0, 1, 3, -1}), at = shift < 0 ? -shift : 0;
                    if (aOverlaps ? f.constant : f.inPlace) continue;
                    Image<T> both(n + 20, 1, 1, 0), other(n, 1, 1, 0), constants(f.colours(), 1, 1, 0), unused(n, 1, 1, 0);
                    both.fill(r, Random::mixed), other.fill(r, Random::mixed);
                    prepare(f, r, unused, unused, constants);
                    if (f.channels() == 1 && s == 0) constants.set(0, 0, number<T>(7)); // by 0 and 1 this may be a copy, which is no sequence
                    if constexpr (std::is_same_v<T, Zet32f>)
                        for (Image<T>* image : {&both, &other}) // near 1: their quotients feed into quotients
                            for (int i = 0; f.estimates() && i < image->width; ++i) image->set(0, i, 0.75f + r.between(0, 1 << 20) * 0x1p-21f);
                    T *const shifted = both.data() + at, *const d = shifted + shift;
                    bool zero = false;
                    for (int i = 0; i < n; ++i) {
                        if (i % f.channels() >= f.colours()) continue;
                        const T x = both.expected(0, at + i), y = other.at(0, i), own = both.expected(0, at + shift + i);
                        const T a = f.constant ? constants.at(0, i % f.channels()) : aOverlaps ? x : y, b = f.inPlace ? own : aOverlaps ? y : x;
                        both.expect(0, at + shift + i, result(f.op, f.constant, a, b, s, zero));
                    }
                    f.run({aOverlaps ? shifted : other.data(), 1 << 20, aOverlaps ? other.data() : shifted, 1 << 20, d, 1 << 20, constants.data()}, {width, 1}, s);
                    const auto close = [&](T got, T want) {
                        if constexpr (std::is_same_v<T, Zet32f>)
                            if (f.estimates()) return std::fabs(got - want) <= want * 0x1p-14f;
                        return same(got, want);
                    };
                    const testing::AssertionResult good = both.intact(close);
                    EXPECT_TRUE(good) << f.name() << ", width " << width << ", shifted by " << shift << ", scale " << s;
                    if (!good) return;
                }
    });
}

} // namespace
