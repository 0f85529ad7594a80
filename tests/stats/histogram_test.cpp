// SPDX-License-Identifier: Apache-2.0
// HistogramRange and HistogramEven: every way of counting gives the counts of the plain loop, and is taken where it is said to be.
#include <array>

#include "tests/stats/tables.h"

using namespace test;

namespace {

template <class T> struct Histogram : TableCall<T> {
    using V = typename TableCall<T>::V;
    std::array<std::vector<V>, 4> edges;
    std::array<std::vector<Zet32s>, 4> got;

    Histogram(bool even, const PixelLayout& l)
        : TableCall<T>(even ? TableCall<T>::even : TableCall<T>::range, even ? "HistogramEven" : "HistogramRange", l) {}

    // The levels of channel c; a count behind the last bin must stay as it is.
    void use(int c, const std::vector<V>& levels) {
        edges[c] = levels;
        this->levels[c] = this->written[c] = edges[c].data(), this->counts[c] = static_cast<int>(levels.size());
    }
    ZetStatus count(const Image<T>& image) {
        for (int c = 0; c < this->layout.colours; ++c) got[c].assign(edges[c].size(), 77), this->bins[c] = got[c].data();
        this->take(image, image);
        return this->run();
    }
    void expect_counts(const Image<T>& image) {
        ASSERT_EQ(count(image), zetStsNoErr) << this->name;
        std::array<std::vector<Zet32s>, 4> expected;
        for (int c = 0; c < this->layout.colours; ++c) {
            expected[c].assign(edges[c].size(), 0), expected[c].back() = 77;
            for (const auto [y, x] : Places{image.height, image.width})
                for (std::size_t k = 0; k + 1 < edges[c].size(); ++k) {
                    const T v = image.at(y, x * image.channels + c);
                    expected[c][k] += v >= edges[c][k] && v < edges[c][k + 1];
                }
        }
        ASSERT_TRUE(got == expected && image.intact()) << this->name << ", " << edges[0].size() << " levels";
    }
};

template <class T> std::vector<typename TableCall<T>::V> random_levels(Random& r, int n, bool ascending) {
    using V = typename TableCall<T>::V;
    std::vector<V> v(n);
    const int range = r.pick({int{sizeof(T)} > 1 ? 70000 : 300, 2 * n + 9});
    for (V& level : v) level = static_cast<V>(r.between(-range, range));
    if (ascending) std::sort(v.begin(), v.end());
    for (int i = 1; ascending && i < n; ++i)
        if (v[i] <= v[i - 1]) v[i] = is_float<T> ? std::nextafterf(v[i - 1], INFINITY) : v[i - 1] + 1;
    if (r.chance(3)) v.front() = is_float<T> ? static_cast<V>(-INFINITY) : static_cast<V>(INT_MIN);
    if (r.chance(3)) v.back() = is_float<T> ? static_cast<V>(INFINITY) : static_cast<V>(INT_MAX);
    return v;
}

// Samples about the levels, and any.
template <class T> void fill(Random& r, Image<T>& image, const std::vector<typename TableCall<T>::V>& levels) {
    for (const auto [y, i] : image.samples()) {
        const auto level = levels[r.between(0, static_cast<int>(levels.size()) - 1)];
        const bool fits = level > std::numeric_limits<T>::lowest() && level < std::numeric_limits<T>::max();
        image.set(y, i, r.chance(4) || !fits ? r.sample<T>(Random::mixed, i) : static_cast<T>(level + static_cast<T>(r.between(-1, 1))));
    }
}

template <class Use> void each_type(Use use) { use(Zet8u{}), use(Zet16u{}), use(Zet16s{}), use(Zet32f{}); }

TEST(HistogramRange, EveryMemberAtEveryWidth) {
    each_type([]<class T>(T) {
        for (const PixelLayout& l : pixel_layouts) {
            Histogram<T> h(false, l);
            Random r(h.name);
            for (int width = 1; width <= 40; ++width) {
                for (int c = 0; c < l.colours; ++c) h.use(c, random_levels<T>(r, r.pick({2, 3, 700, r.between(2, 300)}), r.chance(2)));
                Image<T> image(r, width, r.between(1, 5), l.channels);
                fill(r, image, h.edges[0]);
                h.expect_counts(image);
            }
        }
    });
}

// On either side of every break-even: pixels of a square, or one less, and a limit of levels.
using BreakEven = std::pair<int, int>;
constexpr BreakEven ascending[] = {{80, 134}, {96, 78}, {112, 50}, {128, 34}, {144, 22}, {160, 6}, {192, 2}};
constexpr BreakEven unsorted[] = {{32, 434}, {48, 222}, {64, 126}, {80, 78}, {96, 50}, {112, 34},
                                  {128, 22}, {144, 14}, {160, 10}, {176, 6}, {208, 2}};

template <class T, std::size_t N> void check_break_even(const BreakEven (&table)[N], bool sorted) {
    for (std::size_t i = 0; i < 4 * N; ++i) { // pixels: (side - 1) (side + 1) is one less than the square
        const int row = static_cast<int>(i / 4), less = i / 2 % 2, side = table[row].first, n = std::max<int>(2, table[row].second + i % 2);
        const PixelLayout& l = pixel_layouts[row == 0 || row + 1 == N ? 1 : 0];
        Histogram<T> h(false, l);
        Random r(h.name + std::to_string(side));
        Image<T> image(r, side - less, side + less, l.channels);
        // Two levels that ascend: of their own the other channels go direct on the largest image alone.
        for (int c = 0; c + 1 < l.colours; ++c) h.use(c, {0, 9});
        h.use(l.colours - 1, random_levels<T>(r, n, true));
        auto& levels = h.edges[l.colours - 1];
        if (!sorted) std::swap(levels[0], levels[n / 2]), std::swap(levels[n - 1], levels[0]);
        fill(r, image, levels);
        standin.reset();
        h.expect_counts(image);
        const int limit = less == 0 ? table[row].second : row == 0 ? INT_MAX : table[row - 1].second;
        const bool direct = (sorted || n > 2) && n > limit; // of two levels swapped twice nothing is left
        EXPECT_EQ(standin.allocations, direct) << h.name << ", " << side * side - less << " pixels, " << n << " levels";
        EXPECT_EQ(standin.last_bytes, direct ? 4 * 65536 : 0);
    }
}

TEST(HistogramRange, WaysOf16BitSamplesAgree) {
    check_break_even<Zet16u>(ascending, true), check_break_even<Zet16s>(ascending, true);
    check_break_even<Zet16u>(unsorted, false), check_break_even<Zet16s>(unsorted, false);
}

// A level that is NaN passes for ascending, and the search goes past it; levels that do not ascend have every bin by itself.
TEST(HistogramRange, LevelsThatAreNaN) {
    Image<Zet32f> floats(4, 1, 1, 16);
    const Zet32f samples[] = {10, NAN, 3, std::nextafterf(10, 0)};
    for (int i = 0; i < 4; ++i) floats.set(0, i, samples[i]);
    Histogram<Zet32f> h(false, pixel_layouts[0]);
    h.use(0, {0, NAN, 10});
    EXPECT_EQ(h.count(floats), zetStsNoErr);
    EXPECT_EQ(h.got[0], (std::vector<Zet32s>{0, 2, 77}));
    h.use(0, {0, NAN, 10, 10}), h.expect_counts(floats);
}

TEST(Histogram, OrderOfChecksAndRefusals) {
    each_type([]<class T>(T) {
        for (const PixelLayout& l : pixel_layouts)
            for (const bool even : {false, true}) {
                if (even && is_float<T>) continue;
                Histogram<T> h(even, l);
                Random r("levels");
                Image<T> image(96, 96, l.channels, 96 * l.channels * int{sizeof(T)});
                for (int c = 0; c < l.colours; ++c) {
                    h.use(c, random_levels<T>(r, 100, true));
                    h.lower[c] = 5, h.upper[c] = 200; // not a multiple of 99
                }
                ASSERT_EQ(h.count(image), zetStsNoErr);
                const auto before = h.got;
                const auto levels = h.edges;
                h.expect_order([&] { return h.got == before && h.edges == levels; });
                std::vector<Zet32s> zero(100, 0);
                zero.back() = 77;
                EXPECT_EQ(h.refuse_each([&] { return std::count(h.got.begin(), h.got.end(), zero) == l.colours; }), sizeof(T) == 2);
            }
    });
}

// --- Even levels ------------------------------------------------------------------------------------------------------

std::vector<Zet32s> even_levels(Zet32s lower, Zet32s upper, int n) {
    const long long difference = static_cast<long long>(upper) - lower, q = difference / (n - 1), rest = difference % (n - 1);
    std::vector<Zet32s> levels(n);
    for (int k = 0; k < n; ++k)
        levels[k] = static_cast<Zet32s>(lower + q * k + (rest < 0 ? -std::min<long long>(k, -rest) : std::min<long long>(k, rest)));
    return levels;
}

TEST(HistogramEven, LevelsAndCounts) {
    const auto type = []<class T>(T) {
        for (const PixelLayout& l : pixel_layouts) {
            Histogram<T> h(true, l);
            Random r(h.name);
            for (int i = 0; i < 60; ++i) {
                const bool exact = i % 2 == 0, large = i >= 56; // bins of one width in every channel; pixels from 0x10000 on
                const int n = r.pick({2, 3, 5, 17, r.between(2, 260)});
                std::array<std::vector<Zet32s>, 4> expected;
                for (int c = 0; c < l.colours; ++c) {
                    const int range = sizeof(T) == 1 ? 300 : 70000, q = r.pick({0, 1, -3, r.between(1, 2 * range / n + 1)});
                    const int low = r.pick({r.between(-range, range), r.between(-9, 9), i % 8 < 6 ? 0 : INT_MIN});
                    const int toZero = 16909320 / (n - 1) * 127; // a width of bins that reach from the least int to the samples
                    const int high =
                        exact ? low + (low == INT_MIN ? toZero : q) * (n - 1) : r.pick({INT_MAX, INT_MIN, r.between(-range, range)});
                    h.lower[c] = low, h.upper[c] = high, expected[c] = even_levels(low, high, n);
                    h.use(c, std::vector<Zet32s>(n, 12345));
                }
                Image<T> image(r, large ? 256 : r.between(1, 90), large ? 256 : r.between(1, 12), l.channels);
                fill(r, image, expected[0]);
                standin.reset();
                ASSERT_EQ(h.count(image), zetStsNoErr);
                EXPECT_EQ(h.edges, expected) << h.name;
                EXPECT_TRUE(standin.allocations == 0 || !exact || large);
                h.expect_counts(image); // against the levels that it wrote, and writes again
            }
        }
    };
    type(Zet8u{}), type(Zet16u{}), type(Zet16s{});
}

// Without a remainder 16-bit samples need neither a table nor a search below 0x10000 pixels; one channel with a remainder decides for all.
TEST(HistogramEven, DirectPath) {
    Histogram<Zet16s> h(true, pixel_layouts[1]);
    for (const auto& [upper, width, allocations] : {std::tuple{160, 255, 0}, {161, 255, 1}, {160, 256, 1}}) {
        Image<Zet16s> image(width, 256, 3, width * 6);
        for (int c = 0; c < 3; ++c) h.lower[c] = -160, h.upper[c] = c == 2 ? upper : 160, h.use(c, std::vector<Zet32s>(65));
        standin.reset();
        EXPECT_EQ(h.count(image), zetStsNoErr);
        EXPECT_EQ(standin.allocations, allocations);
    }
}

} // namespace
