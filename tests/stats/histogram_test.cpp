// SPDX-License-Identifier: Apache-2.0
// HistogramRange and HistogramEven: every way of counting gives the counts of the plain loop, and is taken where it is said to be.
#include "tests/stats/tables.h"

using namespace test;

namespace {

template <class T> struct Histogram : TableCall<T> {
    using V = typename TableCall<T>::V;
    std::vector<V> edges[4];
    std::vector<Zet32s> got[4];

    Histogram(bool even, TableLayout l)
        : TableCall<T>(even ? TableCall<T>::even : TableCall<T>::range, even ? "HistogramEven" : "HistogramRange", l) {}

    // The levels of channel c; a count behind the last bin must stay as it is.
    void use(int c, const std::vector<V>& levels) {
        edges[c] = levels;
        this->levels[c] = edges[c].data(), this->counts[c] = static_cast<int>(levels.size());
    }
    ZetStatus count(const Image<T>& image) {
        for (int c = 0; c < this->layout.colours; ++c) {
            got[c].assign(edges[c].size(), 77);
            this->bins[c] = got[c].data();
        }
        this->src = image.data(), this->srcStep = image.step, this->roi = {image.width, image.height};
        return this->run();
    }
    void expect_counts(const Image<T>& image) {
        ASSERT_EQ(count(image), zetStsNoErr) << this->name;
        for (int c = 0; c < this->layout.colours; ++c) {
            std::vector<Zet32s> expected(edges[c].size(), 77);
            for (std::size_t k = 0; k + 1 < edges[c].size(); ++k) {
                expected[k] = 0;
                for (int y = 0; y < image.height; ++y)
                    for (int x = 0; x < image.width; ++x) {
                        const T v = image.at(y, x * image.channels + c);
                        expected[k] += v >= edges[c][k] && v < edges[c][k + 1];
                    }
            }
            ASSERT_EQ(got[c], expected) << this->name << ", channel " << c << ", " << edges[c].size() << " levels, " << image.width << " x "
                                        << image.height;
        }
        EXPECT_TRUE(image.intact());
    }
};

template <class T> std::vector<typename TableCall<T>::V> random_levels(Random& r, int n, bool ascending) {
    using V = typename TableCall<T>::V;
    std::vector<V> v(n);
    const int range = r.pick({int{sizeof(T)} > 1 ? 70000 : 300, 2 * n + 9});
    for (V& level : v) level = static_cast<V>(r.between(-range, range));
    if (ascending) {
        std::sort(v.begin(), v.end());
        for (int i = 1; i < n; ++i)
            if (v[i] <= v[i - 1]) v[i] = is_float<T> ? std::nextafterf(v[i - 1], INFINITY) : v[i - 1] + 1;
    }
    if (r.chance(3)) v.front() = is_float<T> ? static_cast<V>(-INFINITY) : static_cast<V>(INT_MIN);
    if (r.chance(3)) v.back() = is_float<T> ? static_cast<V>(INFINITY) : static_cast<V>(INT_MAX);
    return v;
}

// Samples about the levels, and any.
template <class T> void fill(Random& r, Image<T>& image, const std::vector<typename TableCall<T>::V>& levels) {
    for (int y = 0; y < image.height; ++y)
        for (int i = 0; i < image.row_samples(); ++i) {
            const auto level = levels[r.between(0, static_cast<int>(levels.size()) - 1)];
            const bool fits = level > std::numeric_limits<T>::lowest() && level < std::numeric_limits<T>::max();
            image.set(y, i,
                      r.chance(4) || !fits ? r.sample<T>(Random::mixed, i) : static_cast<T>(level + static_cast<T>(r.between(-1, 1))));
        }
}

template <class Use> void each_type(Use use) { use(Zet8u{}), use(Zet16u{}), use(Zet16s{}), use(Zet32f{}); }

TEST(HistogramRange, EveryMemberAtEveryWidth) {
    each_type([]<class T>(T) {
        for (const TableLayout& l : table_layouts) {
            Histogram<T> h(false, l);
            Random r(h.name);
            for (int width = 1; width <= 40; ++width) {
                for (int c = 0; c < l.colours; ++c) h.use(c, random_levels<T>(r, r.pick({2, 3, r.between(2, 300)}), r.chance(2)));
                Image<T> image(r, width, r.between(1, 5), l.channels);
                fill(r, image, h.edges[0]);
                h.expect_counts(image);
            }
        }
    });
}

// On either side of every break-even: pixels of a square, or one less, and a limit of levels.
struct BreakEven {
    int side, levels;
};
constexpr BreakEven ascending[] = {{80, 134}, {96, 78}, {112, 50}, {128, 34}, {144, 22}, {160, 6}, {192, 2}};
constexpr BreakEven unsorted[] = {{32, 434}, {48, 222}, {64, 126}, {80, 78}, {96, 50}, {112, 34},
                                  {128, 22}, {144, 14}, {160, 10}, {176, 6}, {208, 2}};

template <class T, std::size_t N> void check_break_even(const BreakEven (&table)[N], bool sorted) {
    for (std::size_t i = 0; i < N; ++i)
        for (const int less : {0, 1}) // pixels: (side - 1) (side + 1) is one less than the square
            for (const int more : {0, 1}) {
                const int side = table[i].side;
                const TableLayout l = table_layouts[i == 0 || i + 1 == N ? 1 : 0];
                Histogram<T> h(false, l);
                Random r(h.name + std::to_string(side));
                Image<T> image(r, side - less, side + less, l.channels);
                const int n = std::max(2, table[i].levels + more);
                for (int c = 0; c < l.colours; ++c) h.use(c, random_levels<T>(r, n, true));
                const int chosen =
                    l.colours - 1; // the others have two levels that ascend: of their own they go direct on the largest alone
                for (int c = 0; c < chosen; ++c) h.use(c, {0, 9});
                if (!sorted) std::swap(h.edges[chosen][0], h.edges[chosen][n / 2]), std::swap(h.edges[chosen][n - 1], h.edges[chosen][0]);
                fill(r, image, h.edges[chosen]);
                standin_reset();
                h.expect_counts(image);
                const int limit = less == 0 ? table[i].levels : i == 0 ? INT_MAX : table[i - 1].levels;
                const bool descends = !sorted && n > 2; // of two levels swapped twice nothing is left
                const bool direct = (sorted || descends) && n > limit;
                EXPECT_EQ(standin_allocations(), direct) << h.name << ", " << side * side - less << " pixels, " << n << " levels";
                EXPECT_EQ(standin_last_bytes(), direct ? 4 * 65536 : 0);
            }
}

TEST(HistogramRange, WaysOf16BitSamplesAgree) {
    check_break_even<Zet16u>(ascending, true), check_break_even<Zet16s>(ascending, true);
    check_break_even<Zet16u>(unsorted, false), check_break_even<Zet16s>(unsorted, false);
    const auto searches = []<class T>(T, int width, int height, std::initializer_list<int> numbers) {
        for (const int n : numbers) {
            Histogram<T> h(false, table_layouts[0]);
            Random r(h.name + std::to_string(n));
            Image<T> image(r, width, height, 1);
            h.use(0, random_levels<T>(r, n, true)), fill(r, image, h.edges[0]);
            standin_reset();
            h.expect_counts(image);
            EXPECT_EQ(standin_allocations(), 0);
        }
    };
    searches(Zet16u{}, 79, 81, {2, 135, 170, 171, 172, 700}), searches(Zet16s{}, 79, 81, {2, 170, 171});
    searches(Zet32f{}, 99, 101, {2, 101, 102, 103, 104, 700});
}

TEST(HistogramRange, ByHand) {
    standin_reset();
    Image<Zet16u> sixties(10, 10, 1, 20);
    for (int i = 0; i < 100; ++i) sixties.set(i / 10, i % 10, 60);
    Histogram<Zet16u> unsorted16(false, table_layouts[0]);
    unsorted16.use(0, {0, 100, 50, 200});
    EXPECT_EQ(unsorted16.count(sixties), zetStsNoErr);
    EXPECT_EQ(unsorted16.got[0], (std::vector<Zet32s>{100, 0, 100, 77}));
    EXPECT_EQ(standin_allocations(), 0);

    Image<Zet32f> floats(4, 1, 1, 16);
    const Zet32f samples[] = {10, NAN, 3, std::nextafterf(10, 0)};
    for (int i = 0; i < 4; ++i) floats.set(0, i, samples[i]);
    Histogram<Zet32f> h(false, table_layouts[0]);
    const auto counts = [&](const std::vector<Zet32f>& levels) {
        h.use(0, levels);
        EXPECT_EQ(h.count(floats), zetStsNoErr);
        return h.got[0];
    };
    EXPECT_EQ(counts({0, 5, 10}), (std::vector<Zet32s>{1, 1, 77}));          // the last level and NaN are in no bin
    EXPECT_EQ(counts({0, NAN, 10}), (std::vector<Zet32s>{0, 2, 77}));        // NaN passes for ascending: the search goes past it
    EXPECT_EQ(counts({0, NAN, 10, 10}), (std::vector<Zet32s>{0, 0, 0, 77})); // every bin by itself
}

TEST(Histogram, OrderOfChecksAndRefusals) {
    each_type([]<class T>(T) {
        for (const TableLayout& l : table_layouts)
            for (const bool even : {false, true}) {
                if (even && is_float<T>) continue;
                Histogram<T> h(even, l);
                Image<T> image(96, 96, l.channels, 96 * l.channels * int{sizeof(T)});
                for (int c = 0; c < l.colours; ++c) {
                    h.use(c, random_levels<T>(*std::make_unique<Random>("levels"), 100, true));
                    h.lower[c] = 5, h.upper[c] = 200; // not a multiple of 99
                }
                ASSERT_EQ(h.count(image), zetStsNoErr);
                std::vector<Zet32s> before[4];
                for (int c = 0; c < 4; ++c) std::fill(h.got[c].begin(), h.got[c].end(), 55), before[c] = h.got[c];
                const auto intact = [&] { return std::equal(before, before + 4, h.got) && h.edges[0][99] != 0; };
                expect_sequence(static_cast<const TableCall<T>&>(h), h.errors(), intact);
                const auto zero = [&] {
                    for (int c = 0; c < l.colours; ++c)
                        if (std::any_of(h.got[c].begin(), h.got[c].end() - 1, [](int n) { return n != 0; }) || h.got[c][99] != 55)
                            return false;
                    return true;
                };
                EXPECT_EQ(refuse_each(h, zero), sizeof(T) == 2);
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
        for (const TableLayout& l : table_layouts) {
            Histogram<T> h(true, l);
            Random r(h.name);
            for (int i = 0; i < 60; ++i) {
                const bool exact = i % 2 == 0, large = i >= 56; // bins of one width in every channel; pixels from 0x10000 on
                const int n = r.pick({2, 3, 5, 17, r.between(2, 260)});
                std::vector<Zet32s> expected[4];
                for (int c = 0; c < l.colours; ++c) {
                    const int range = sizeof(T) == 1 ? 300 : 70000, q = r.pick({0, 1, -3, r.between(1, 2 * range / n + 1)});
                    h.lower[c] = r.pick({r.between(-range, range), r.between(-9, 9), i % 8 < 6 ? 0 : INT_MIN});
                    const int toZero = 16909320 / (n - 1) * 127; // a width of bins that reach from the least int to the samples
                    h.upper[c] = exact ? h.lower[c] + (h.lower[c] == INT_MIN ? toZero : q) * (n - 1)
                                       : r.pick({INT_MAX, INT_MIN, r.between(-range, range)});
                    expected[c] = even_levels(h.lower[c], h.upper[c], n);
                    h.use(c, std::vector<Zet32s>(n, 12345));
                }
                Image<T> image(r, large ? 256 : r.between(1, 90), large ? 256 : r.between(1, 12), l.channels);
                fill(r, image, expected[0]);
                standin_reset();
                ASSERT_EQ(h.count(image), zetStsNoErr);
                for (int c = 0; c < l.colours; ++c)
                    ASSERT_EQ(h.edges[c], expected[c]) << h.name << " " << h.lower[c] << " to " << h.upper[c];
                EXPECT_TRUE(standin_allocations() == 0 || !exact || large);
                h.expect_counts(image); // against the levels that it wrote, and writes again
            }
        }
    };
    type(Zet8u{}), type(Zet16u{}), type(Zet16s{});
    EXPECT_EQ(even_levels(0, 10, 4), (std::vector<Zet32s>{0, 4, 7, 10}));
}

// Without a remainder 16-bit samples need neither a table nor a search below 0x10000 pixels; one channel with a remainder decides for all.
TEST(HistogramEven, DirectPath) {
    Histogram<Zet16s> h(true, table_layouts[1]);
    for (const auto& [upper, width, allocations] : {std::tuple{160, 255, 0}, {161, 255, 1}, {160, 256, 1}}) {
        Image<Zet16s> image(width, 256, 3, width * 6);
        for (int c = 0; c < 3; ++c) h.lower[c] = -160, h.upper[c] = c == 2 ? upper : 160, h.use(c, std::vector<Zet32s>(65));
        standin_reset();
        EXPECT_EQ(h.count(image), zetStsNoErr);
        EXPECT_EQ(standin_allocations(), allocations);
    }
}

} // namespace
