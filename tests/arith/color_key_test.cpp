// SPDX-License-Identifier: Apache-2.0
// CompColorKey and AlphaCompColorKey.
#include <climits>

#include "tests/arith/alpha.h"

using namespace test;

namespace {

template <class T> struct Key {
    using type = T;
    Layout layout;
    bool composes = false;

    std::string name() const {
        return std::string(composes ? "zetiAlphaCompColorKey_" : "zetiCompColorKey_") + token<T>() + "_" + layout.name + "R";
    }
    ZetStatus run(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, ZetiSize roi, const T* key, int type) const {
        if (composes) return call(name(), a, aStep, b, bStep, d, dStep, roi, key, static_cast<ZetAlphaType>(type));
        return layout.channels == 1 ? call(name(), a, aStep, b, bStep, d, dStep, roi, *key)
                                    : call(name(), a, aStep, b, bStep, d, dStep, roi, key);
    }
    // One pixel of the result.
    void compute(const T* a, const T* b, T* d, const T* key, int type) const {
        T pixel[4];
        const bool matches = std::equal(key, key + (composes ? 3 : layout.channels), a);
        for (int c = 0; c < layout.channels; ++c)
            pixel[c] = matches ? b[c] : composes ? composed(type, c == 3, a[c], a[3], b[c], b[3]) : a[c];
        std::copy_n(pixel, layout.channels, d);
    }
};

template <class Use> void each_member(Use use) {
    const auto of = [&]<class T>(T) { use(Key<T>{C1}), use(Key<T>{C3}), use(Key<T>{C4}); };
    of(Zet8u{}), of(Zet16u{}), of(Zet16s{});
    use(Key<Zet8u>{AC4, true});
}

constexpr int no_key = 2; // samples of 0 and 1 match now and then, others never

template <class T> void fill(Random& r, T* p, int count, bool mayMatch) {
    for (int i = 0; i < count; ++i)
        p[i] = mayMatch && !r.chance(9) ? static_cast<T>(r.chance(4)) : static_cast<T>(no_key + r.between(0, 250));
}

template <class T> void check(const Key<T>& f, Random& r, int width, int type, Checksum& checksum) {
    const int height = r.between(1, 3), channels = f.layout.channels;
    Image<T> a(r, width, height, channels), b(r, width, height, channels), d(r, width, height, channels);
    T key[4];
    fill(r, key, 4, true);
    const int shared = r.between(0, 3);
    Image<T>&first = shared == 1 ? d : a, &second = shared == 2 ? d : b;
    const bool mayMatch = !r.chance(5); // else a copy of the first source
    std::vector<T> rows[3];
    for (int y = 0; y < height; ++y) {
        for (auto& row : rows) row.resize(first.row_samples());
        fill(r, rows[0].data(), first.row_samples(), mayMatch), fill(r, rows[1].data(), first.row_samples(), false);
        if (&first == &second) rows[1] = rows[0];
        for (int x = 0; x < width; ++x) f.compute(&rows[0][x * channels], &rows[1][x * channels], &rows[2][x * channels], key, type);
        for (int i = 0; i < first.row_samples(); ++i) first.set(y, i, rows[0][i]), second.set(y, i, rows[1][i]), d.expect(y, i, rows[2][i]);
    }
    EXPECT_EQ(f.run(first.data(), first.step, second.data(), second.step, d.data(), d.step, {width, height}, key, type), zetStsNoErr);
    ASSERT_TRUE(d.intact()) << f.name() << ", width " << width;
    ASSERT_TRUE(a.intact() && b.intact()) << f.name() << " writes to a source";
    checksum.add(d);
}

TEST(ColorKey, EveryMemberAtEveryWidth) {
    Checksum checksum;
    each_member([&](const auto& f) {
        Random r(f.name());
        for (int round = 0; round < 400 && !testing::Test::HasFatalFailure(); ++round)
            check(f, r, round < 160 ? 1 + round % 80 : r.between(1, 300), round % 6, checksum);
    });
    EXPECT_TRUE(checksum.is_known("ColorKey"));
}

// Where the destination runs ahead of a source within the row, pixels are computed one by one.
TEST(ColorKey, OverlappingRows) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        for (int ahead = -7; ahead <= 60; ++ahead) {
            std::array<T, 1024> memory, expected;
            fill(r, memory.data(), 1024, true);
            expected = memory;
            T key[4];
            fill(r, key, 4, true);
            const int width = r.between(1, 60), n = f.layout.channels;
            const int a = r.pick({100, 500}), b = 600 - a, d = 100 + ahead;
            for (int x = 0; x < width; ++x) f.compute(&expected[a + x * n], &expected[b + x * n], &expected[d + x * n], key, 0);
            f.run(&memory[a], 1, &memory[b], 1, &memory[d], 1, {width, 1}, key, 0);
            ASSERT_EQ(memory, expected) << f.name() << ", " << ahead << " samples ahead, width " << width;
        }
    });
}

TEST(ColorKey, OrderOfChecksByPairsOfErrors) {
    enum Error { first, second, destination, no_key_pointer, width, height, step1, step2, step3, type, errors };
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        Image<T> a(r, 3, 2, f.layout.channels), b(r, 3, 2, f.layout.channels), d(r, 3, 2, f.layout.channels);
        const T key[4] = {};
        for (int one = 0; one < errors; ++one)
            for (int two = one; two < errors; ++two)
                for (const int wrong : {6, 11, 12, -1, INT_MIN}) {
                    const auto has = [&](Error e) {
                        return (one == e || two == e) && (e != no_key_pointer || f.layout.channels > 1) && (e != type || f.composes);
                    };
                    const auto bad = [&](Error e, int good) { return has(e) ? r.pick({0, -1, INT_MIN}) : good; };
                    const ZetStatus expected = has(first) || has(second) || has(destination) || has(no_key_pointer) ? zetStsNullPtrErr
                                               : has(width) || has(height)                                          ? zetStsSizeErr
                                               : has(step1) || has(step2) || has(step3)                             ? zetStsStepErr
                                               : has(type)                                                          ? zetStsAlphaTypeErr
                                                                                                                    : zetStsNoErr;
                    if (expected == zetStsNoErr) continue;
                    EXPECT_EQ(f.run(has(first) ? nullptr : a.data(), bad(step1, a.step), has(second) ? nullptr : b.data(),
                                    bad(step2, b.step), has(destination) ? nullptr : d.data(), bad(step3, d.step),
                                    {bad(width, 3), bad(height, 2)}, has(no_key_pointer) ? nullptr : key, has(type) ? wrong : 0),
                              expected)
                        << f.name() << ", errors " << one << " and " << two;
                    ASSERT_TRUE(d.intact()) << f.name();
                }
    });
}

} // namespace
