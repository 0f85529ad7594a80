// SPDX-License-Identifier: Apache-2.0
// Max, Min, MinMax, MaxIndx, MinIndx; MaxEvery, MinEvery.
#include "tests/stats/reduction.h"

using namespace test;

namespace {

template <class T> struct Results { // marks behind what a layout has
    T least[5], greatest[5];
    Zet32s x[5], y[5];
    Results() { std::fill_n(least, 5, T{77}), std::fill_n(greatest, 5, T{77}), std::fill_n(x, 5, -7), std::fill_n(y, 5, -7); }
    bool operator==(const Results& other) const = default; // the two zeros are equal
};

// Max, Min, MinMax, MaxIndx, MinIndx
template <class T> struct Extremes {
    using type = T;
    std::string family;
    PixelLayout layout;

    std::string name() const { return "zeti" + family + "_" + token<T>() + "_" + layout.name + "R"; }
    bool finds_max() const { return family.find("Max") != std::string::npos; }
    bool finds_min() const { return family.find("Min") != std::string::npos; }
    bool indexed() const { return family.find("Indx") != std::string::npos; }

    template <class Use> auto with(const T* p, int step, ZetiSize roi, Results<T>& r, Use use) const {
        if (family == "MinMax") return use(p, step, roi, +r.least, +r.greatest);
        T* const best = finds_max() ? r.greatest : r.least;
        return indexed() ? use(p, step, roi, best, +r.x, +r.y) : use(p, step, roi, best);
    }
    ZetStatus operator()(const T* p, int step, ZetiSize roi, Results<T>& r) const {
        return with(p, step, roi, r, [&](auto... a) { return member<ZetStatus(decltype(a)...)>(name())(a...); });
    }
    Results<T> expected(const Image<T>& image) const {
        using limits = std::numeric_limits<T>;
        Results<T> e;
        for (int c = 0; c < layout.colours; ++c) {
            T least = limits::max(), greatest = limits::lowest();
            int at[2] = {0, 0};
            const auto take = [&](T& best, T v, int x, int y, bool counts) { best = v, counts ? void((at[0] = x, at[1] = y)) : void(); };
            for (int y = 0; y < image.height; ++y)
                for (int x = 0; x < image.width; ++x) {
                    const T v = image.at(y, x * layout.channels + c);
                    if (v < least) take(least, v, x, y, finds_min());
                    if (v > greatest) take(greatest, v, x, y, finds_max());
                }
            if (finds_min()) e.least[c] = least;
            if (finds_max()) e.greatest[c] = greatest;
            if (indexed()) e.x[c] = at[0], e.y[c] = at[1];
        }
        return e;
    }
};

template <class Use> void each_member(Use use) {
    each_layout([&](auto type, const PixelLayout& l) {
        for (const char* const family : {"Max", "Min", "MinMax", "MaxIndx", "MinIndx"}) use(Extremes<decltype(type)>{family, l});
    });
}

TEST(Extrema, EveryMemberAtEveryWidth) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        const auto check = [&](int width, int height) {
            Image<T> image(r, width, height, f.layout.channels, {1, -1, 0});
            if (is_float<T> || r.chance(2)) // few values: many ties, of which the first counts
                for (int y = 0; y < height; ++y)
                    for (int i = 0; i < image.row_samples(); ++i)
                        if (!is_float<T> || r.chance(2)) image.set(y, i, static_cast<T>(r.between(3, 90)));
            Results<T> got;
            const unsigned state = r.pick({0x1F80U, 0x9FC0U});
            _mm_setcsr(state);
            const ZetStatus status = f(image.data(), image.step, {width, height}, got);
            const unsigned after = _mm_getcsr();
            _mm_setcsr(0x1F80);
            EXPECT_EQ(after, state) << f.name();
            Results<T> expected = f.expected(image);
            for (int c = 0; is_float<T> && f.indexed() && c < f.layout.colours; ++c) // no sample was better than the start value
                if (expected.x[c] == 0 && expected.y[c] == 0)
                    expected.x[c] = got.x[c] * (got.y[c] == 0 && image.at(0, got.x[c] * f.layout.channels + c) ==
                                                                     (f.finds_max() ? got.greatest : got.least)[c]);
            return status == zetStsNoErr && got == expected && image.intact();
        };
        for (int width = 1; width <= 60; ++width) ASSERT_TRUE(check(width, r.between(1, 9))) << f.name() << ' ' << width;
        for (const int width : {63, 64, 65, 127, 200, 257, 1000}) ASSERT_TRUE(check(width, r.between(1, 40))) << f.name() << ' ' << width;
    });
}

// A row that holds the limit of the type ends the search, once every colour channel has seen it: the rows below lie behind a fence. On
// the other side, the limit on all channels but one ends nothing.
TEST(Extrema, StopAtTheLimit) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        using limits = std::numeric_limits<T>;
        if (is_float<T> || (f.family == "MinMax" && sizeof(T) == 1)) return;
        const int n = f.layout.channels, colours = f.layout.colours;
        for (const int width : {2, 3, 8, 16, 33, 200}) {
            Image<T> image(width, 2, n, width * n * int{sizeof(T)});
            for (int y = 0; y < 2; ++y)
                for (int i = 0; i < image.row_samples(); ++i) image.set(y, i, 50);
            for (int c = 0; c < colours; ++c) { // the last channel in the second row alone
                const int y = c == colours - 1;
                if (f.finds_min()) image.set(y, c, limits::lowest());
                if (f.finds_max()) image.set(y, (width - 1) * n + c, limits::max());
            }
            Results<T> got;
            ASSERT_EQ(f(image.data(), image.step, {width, 1000}, got), zetStsNoErr);
            ASSERT_TRUE(got == f.expected(image)) << f.name() << ' ' << width;
        }
    });
}

// NaNs are not taken wherever they stand, and what is beyond the finite start values not either.
TEST(Extrema, FloatsBeyondNumbers) {
    constexpr Zet32f largest = std::numeric_limits<Zet32f>::max(), infinity = std::numeric_limits<Zet32f>::infinity();
    for (const PixelLayout& l : pixel_layouts)
        for (const Zet32f filler : {Zet32f(NAN), infinity, -infinity}) {
            std::vector<Zet32f> image(100 * l.channels, filler);
            const int step = 20 * l.channels * 4;
            Results<Zet32f> max, min;
            Extremes<Zet32f>{"MaxIndx", l}(image.data(), step, {20, 5}, max),
                Extremes<Zet32f>{"MinIndx", l}(image.data(), step, {20, 5}, min);
            EXPECT_EQ(max.greatest[l.colours - 1], filler == infinity ? infinity : -largest);
            EXPECT_EQ(min.least[l.colours - 1], filler == -infinity ? -infinity : largest);
            EXPECT_EQ(max.x[0] + max.y[0] + min.x[0] + min.y[0], 0);
        }
}

TEST(Extrema, ChecksInTheirOrder) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        const T samples[16] = {};
        Results<T> r;
        f.with(samples, 16, {2, 2}, r, [&](auto... arguments) {
            const std::tuple call(arguments...);
            auto errors = common_errors(call);
            std::erase_if(errors, [](const auto& e) { return e.status == zetStsStepErr; }); // any step will do
            expect_order(f.name(), call, {zetStsNullPtrErr, zetStsSizeErr}, errors, [&] { return r == Results<T>(); });
        });
    });
}

} // namespace
