// SPDX-License-Identifier: Apache-2.0
// CountInRange.
#include <xmmintrin.h>

#include "tests/stats/tables.h"

using namespace test;

namespace {

template <class T> struct Count {
    TableLayout layout;
    std::string name = std::string("zetiCountInRange_") + token<T>() + "_" + layout.name + "R";
    const T* src = nullptr;
    int srcStep = 0;
    ZetiSize roi = {};
    Zet32s* counts = nullptr;
    T lower[3] = {}, upper[3] = {};
    bool noLower = false, noUpper = false;

    ZetStatus run() const {
        if (layout.one()) return member<ZetStatus(const T*, int, ZetiSize, Zet32s*, T, T)>(name)(src, srcStep, roi, counts, *lower, *upper);
        return member<ZetStatus(const T*, int, ZetiSize, Zet32s*, const T*, const T*)>(name)(
            src, srcStep, roi, counts, noLower ? nullptr : lower, noUpper ? nullptr : upper);
    }
    Spoilers<Count> errors() const { // the step before the size
        Spoilers<Count> e = {{zetStsNullPtrErr, [](Count& c) { c.src = nullptr; }},
                             {zetStsNullPtrErr, [](Count& c) { c.counts = nullptr; }}};
        if (!layout.one())
            e.push_back({zetStsNullPtrErr, [](Count& c) { c.noLower = true; }}),
                e.push_back({zetStsNullPtrErr, [](Count& c) { c.noUpper = true; }});
        for (const int bad : {0, -1, INT_MIN}) e.push_back({zetStsStepErr, [=](Count& c) { c.srcStep = bad; }});
        for (const int bad : {0, -1, INT_MIN})
            e.push_back({zetStsSizeErr, [=](Count& c) { c.roi.width = bad; }}),
                e.push_back({zetStsSizeErr, [=](Count& c) { c.roi.height = bad; }});
        for (int k = 0; k < layout.colours; ++k) e.push_back({zetStsRangeErr, [=](Count& c) { c.lower[k] = 6, c.upper[k] = 5; }});
        return e;
    }
};

template <class Use> void each_member(Use use) {
    for (const TableLayout& l : {table_layouts[0], table_layouts[1], table_layouts[3]}) use(Count<Zet8u>{l}), use(Count<Zet32f>{l});
}

template <class T> void check(Count<T>& f, const Image<T>& image) {
    Zet32s got[4] = {77, 77, 77, 77}, expected[4] = {77, 77, 77, 77};
    for (int c = 0; c < f.layout.colours; ++c) expected[c] = 0;
    for (int y = 0; y < image.height; ++y)
        for (int i = 0; i < image.row_samples(); ++i)
            if (const int c = i % image.channels; c < f.layout.colours)
                expected[c] += image.at(y, i) >= f.lower[c] && image.at(y, i) <= f.upper[c];
    f.src = image.data(), f.srcStep = image.step, f.roi = {image.width, image.height}, f.counts = got;
    ASSERT_EQ(f.run(), zetStsNoErr);
    for (int c = 0; c < 4; ++c)
        ASSERT_EQ(got[c], expected[c]) << f.name << ", channel " << c << ", " << image.width << " x " << image.height;
}

TEST(CountInRange, EveryMemberAtEveryWidth) {
    each_member([](auto f) {
        using T = std::remove_cv_t<std::remove_pointer_t<decltype(f.src)>>;
        Random r(f.name);
        for (int width = 1; width <= 100; ++width) {
            Image<T> image(r, width, r.between(1, 5), f.layout.channels);
            for (int c = 0; c < 3; ++c) {
                f.lower[c] = r.sample<T>(Random::mixed, c), f.upper[c] = r.chance(3) ? f.lower[c] : r.sample<T>(Random::mixed, c);
                if (f.upper[c] < f.lower[c]) std::swap(f.lower[c], f.upper[c]);
                image.set(0, r.between(0, width - 1) * f.layout.channels + (c < f.layout.colours ? c : 0),
                          f.lower[c < f.layout.colours ? c : 0]);
            }
            check(f, image);
        }
        Image<T> large(1500, 70, f.layout.channels,
                       1500 * f.layout.channels * static_cast<int>(sizeof(T))); // 8-bit lanes would wrap many times
        for (int c = 0; c < 3; ++c) f.lower[c] = 0, f.upper[c] = 9;
        for (int y = 0; y < 70; ++y)
            for (int i = 0; i < large.row_samples(); ++i) large.set(y, i, static_cast<T>(i % 11));
        check(f, large);

        const Zet32s before[3] = {1, 2, 3};
        Zet32s counts[3] = {1, 2, 3};
        f.counts = counts;
        expect_sequence(f, f.errors(), [&] { return std::equal(counts, counts + 3, before); });
    });
}

// Denormal bounds count whatever the caller's float state; NaN as a bound is no error, and holds nothing.
TEST(CountInRange, Floats) {
    Count<Zet32f> f{table_layouts[0]};
    Image<Zet32f> image(40, 1, 1, 160);
    for (int i = 0; i < 40; ++i) image.set(0, i, static_cast<Zet32f>(i) * 1e-40f);
    Zet32s count = 77;
    f.src = image.data(), f.srcStep = 160, f.roi = {40, 1}, f.counts = &count;
    const auto run = [&](Zet32f lower, Zet32f upper) {
        f.lower[0] = lower, f.upper[0] = upper;
        const unsigned state = _mm_getcsr();
        _mm_setcsr(0x9FC0);
        const ZetStatus status = f.run();
        EXPECT_EQ(_mm_getcsr(), 0x9FC0u);
        _mm_setcsr(state);
        return status;
    };
    EXPECT_EQ(run(1e-40f, 2e-40f), zetStsNoErr);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(run(2e-40f, 1e-40f), zetStsRangeErr);
    for (const auto& [lower, upper] : {std::pair{NAN, 1.0f}, {0.0f, NAN}}) f.lower[0] = lower, f.upper[0] = upper, check(f, image);
}

} // namespace
