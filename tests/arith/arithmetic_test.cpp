// SPDX-License-Identifier: Apache-2.0
// Values: all members against the reference.
#include "tests/arith/arith.h"

#include <climits>
#include <numeric>

using namespace test;

namespace {

// A few results worked out by hand.
TEST(Values, ByHand) {
    const struct {
        Op op;
        int s;
        Zet16s a, b, expected;
    } cases[] = {
        {Op::Add, 1, 1, 2, 2},         {Op::Add, 1, 2, 3, 2},    {Op::Add, 1, -2, -3, -2},         {Op::Sub, 0, 10, 3, -7},
        {Op::Mul, -15, -1, 1, -32768}, {Op::Mul, -15, 0, 77, 0}, {Op::Mul, 30, -32768, -32768, 1}, {Op::Div, 0, 2, 7, 4},
        {Op::Div, 0, 2, 5, 2},         {Op::Div, 0, -2, 7, -4},  {Op::Div, -30, -1, 1, -32768},    {Op::Div, 99, 0, -7, -32768},
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
        for (int s = -40; s <= 70; ++s)
            if (!check(f, r, {r.between(1, 40), r.between(1, 3)}, s)) return;
        for (const int s : {INT_MIN, INT_MIN + 1, -1 << 16, -1024, -256, -128, -65, 96, 128, 256, 1023, 1 << 16, INT_MAX})
            if (!check(f, r, {r.between(1, 40), r.between(1, 3)}, s)) return;
        for (int width = 1; width <= 40; ++width)
            for (const int s : {0, 1, 4, -2, -50})
                if (!check(f, r, {width, r.between(1, 3)}, s)) return;
        for (const int width : {47, 48, 49, 63, 64, 65, 95, 97, 127, 129, 200, 1023, 3071, 3072, 3073})
            for (const int s : {0, 1, 3, -1})
                if (!check(f, r, {width, 2}, s)) return;
    });
}

// All pairs of the given values at scales from low to high and at extremes: two images, in place, and by constants.
template <class T> void pairs(const std::vector<T>& v, int low, int high, int by = 1) {
    const int n = static_cast<int>(v.size()), bytes = n * static_cast<int>(sizeof(T));
    Image<T> a(n, n, 1, bytes), b(n, n, 1, bytes), d(n, n, 1, bytes + 1);
    std::vector<int> scales = {INT_MIN, -1000, INT_MAX};
    for (int s = low; s <= high; s += by) scales.push_back(s);
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) a.set(y, x, v[y]), b.set(y, x, v[x]);
    for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
        for (const int s : scales)
            for (const bool constant : {false, true}) {
                bool zero = false;
                for (int y = 0; y < n; ++y)
                    for (int x = 0; x < n; ++x) {
                        const bool refused = constant && op == Op::Div && is_zero(v[y]);
                        d.expect(y, x, refused ? v[x] : result(op, constant, v[y], v[x], s, zero));
                    }
                for (const bool inPlace : {false, true}) {
                    const Arith<T> f{op, constant, inPlace, "C1"};
                    const auto row = [&](int y) { return reinterpret_cast<T*>(reinterpret_cast<char*>(d.data()) + y * d.step); };
                    for (int y = 0; y < n; ++y) {
                        std::memcpy(static_cast<void*>(row(y)), b.data(), bytes);
                        if (constant) f.run({nullptr, 0, b.data(), bytes, row(y), 1, &v[y]}, {n, 1}, s);
                    }
                    const auto images = [&] { return f.run({a.data(), bytes, b.data(), bytes, d.data(), d.step, nullptr}, {n, n}, s); };
                    ASSERT_TRUE(constant || images() == (zero ? zetStsDivByZero : zetStsNoErr)) << f.name() << " at scale " << s;
                    ASSERT_TRUE(d.intact()) << f.name() << " at scale " << s;
                }
            }
}

// Bounds, powers of two and their neighbours.
template <class T> std::vector<T> boundaries() {
    std::vector<T> v;
    for (int k = 0; k < 8 * static_cast<int>(sizeof(Real<T>)); ++k)
        for (const int near : {-1, 0, 1})
            for (const int sign : {1, -1}) {
                T value = number<T>(static_cast<int>(sign * (std::int64_t{1} << k) + near));
                if constexpr (is_complex<T>) value.im = v.empty() ? value.re : v[v.size() * 5 / 7].re;
                v.push_back(value);
            }
    return v;
}

TEST(Values, EveryPairOf8u) {
    std::vector<Zet8u> all(256);
    std::iota(all.begin(), all.end(), Zet8u{0});
    pairs(all, -16, 18);
}
TEST(Values, EveryPairOfBoundaries) {
    pairs(boundaries<Zet16u>(), -34, 34), pairs(boundaries<Zet16s>(), -34, 34);
    pairs(boundaries<Zet16sc>(), -34, 35, 3), pairs(boundaries<Zet32sc>(), -33, 66, 3);
}

// An estimated quotient is the same wherever its pixel stands in its row.
TEST(Values, EstimatedQuotientsDoNotDependOnThePlace) {
    const Arith<Zet32f> f{Op::Div, false, false, "C1"};
    Random r("place");
    Image<Zet32f> a(64, 1, 1, 256), b(64, 1, 1, 256), one(64, 1, 1, 256);
    Image<Zet32f> unused(1, 1, 1, 4);
    prepare(f, r, a, b, unused);
    for (int x = 0; x < 64; ++x)
        a.set(0, x, a.at(0, x) == 0 ? 3.0f : a.at(0, x)), f.run({a.data() + x, 4, b.data() + x, 4, one.data() + x, 4, nullptr}, {1, 1}, 0);
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
        check(f, r, {(16 << 20) / height / pixelBytes + 1, height}, 3);
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
    const std::size_t step = 1 << 30, height = 5, all = sizeof(void*) == 4 ? 0 : step * height;
    void* const memory = mmap(nullptr, all, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Zet8u* const d = static_cast<Zet8u*>(memory);
    const Zet8u a[3] = {1, 2, 3}, b[3] = {10, 20, 30};
    EXPECT_EQ((Arith<Zet8u>{Op::Add, false, false, "C3"}.run({a, 0, b, 0, d, 1 << 30, nullptr}, {1, 5}, 0)), zetStsNoErr);
    for (std::size_t y = 0; y < height; ++y)
        EXPECT_EQ(d[y * step] + d[y * step + 1] * 256 + d[y * step + 2] * 65536, 11 + 22 * 256 + 33 * 65536) << y;
    munmap(memory, all);
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
                    if (f.channels() == 1 && s == 0)
                        constants.set(0, 0, number<T>(7)); // by 0 and 1 this may be a copy, which is no sequence
                    if constexpr (std::is_same_v<T, Zet32f>)
                        for (Image<T>* image : {&both, &other}) // near 1: their quotients feed into quotients
                            for (int i = 0; f.estimates() && i < image->width; ++i)
                                image->set(0, i, 0.75f + r.between(0, 1 << 20) * 0x1p-21f);
                    T *const shifted = both.data() + at, *const d = shifted + shift;
                    bool zero = false;
                    for (int i = 0; i < n; ++i) {
                        if (i % f.channels() >= f.colours()) continue;
                        const T x = both.expected(0, at + i), y = other.at(0, i), own = both.expected(0, at + shift + i);
                        const T a = f.constant  ? constants.at(0, i % f.channels())
                                    : aOverlaps ? x
                                                : y,
                                b = f.inPlace   ? own
                                    : aOverlaps ? y
                                                : x;
                        both.expect(0, at + shift + i, result(f.op, f.constant, a, b, s, zero));
                    }
                    f.run({aOverlaps ? shifted : other.data(), 1 << 20, aOverlaps ? other.data() : shifted, 1 << 20, d, 1 << 20,
                           constants.data()},
                          {width, 1}, s);
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
