// SPDX-License-Identifier: Apache-2.0
// AlphaComp, AlphaCompC, AlphaPremul, AlphaPremulC: all members against the reference.
#include <xmmintrin.h>

#include <climits>

#include "tests/arith/alpha.h"
#include "tests/support/zetcore_standin.h"

using namespace test;

namespace {

template <class T> struct Family {
    using type = T;
    const char* operation;
    Layout layout;
    bool inPlace = false;

    std::string name() const { return std::string("zeti") + operation + "_" + token<T>() + "_" + layout.name + (inPlace ? "IR" : "R"); }
    bool composes() const { return std::string(operation).starts_with("AlphaComp"); }
    bool constant() const { return std::string(operation).ends_with("C"); }

    ZetStatus run(const Picture<T>& a, const Picture<T>& b, const Picture<T>& d, ZetiSize roi, T alpha1, T alpha2, int type) const {
        const auto with = [&](auto pa, auto pb, auto pd) {
            return call(pa, a.image.step, pb, b.image.step, pd, d.image.step, roi, alpha1, alpha2, type);
        };
        return layout.planar() ? with(a.planes.data(), b.planes.data(), d.planes.data()) : with(a.planes[0], b.planes[0], d.planes[0]);
    }
    // P is T* or, on planes, T* const*.
    template <class P> ZetStatus call(P a, int aStep, P b, int bStep, P d, int dStep, ZetiSize roi, T alpha1, T alpha2, int type) const {
        using S = std::conditional_t<std::is_same_v<P, T*>, const T*, const T* const*>;
        const auto t = static_cast<ZetAlphaType>(type);
        const S x = a, y = b;
        const auto with = [&](auto... arguments) { return test::call(name(), arguments...); };
        if (composes())
            return constant() ? with(x, aStep, alpha1, y, bStep, alpha2, d, dStep, roi, t) : with(x, aStep, y, bStep, d, dStep, roi, t);
        if (inPlace) return constant() ? with(alpha1, d, dStep, roi) : with(d, dStep, roi);
        return constant() ? with(x, aStep, alpha1, d, dStep, roi) : with(x, aStep, d, dStep, roi);
    }

    // The expected sample of channel c, of pixels given by their channels; d is what the destination holds.
    template <class Pixel> T expected(int c, Pixel a, Pixel b, T d, T alpha1, T alpha2, int type) const {
        const int last = layout.alpha;
        if (!composes()) {
            if (constant()) return c == last ? d : product(a(c), alpha1);
            return c == last ? a(c) : product(a(c), a(last));
        }
        if (last < 0) return composed(type, false, a(c), alpha1, b(c), alpha2);
        if (!constant()) return composed(type, c == last, a(c), a(last), b(c), b(last));
        const auto faded = [&](Pixel p, int i, T by) { return i == last || type >= zetAlphaOverPremul ? product(p(i), by) : p(i); };
        return composed(type, c == last, faded(a, c, alpha1), product(a(last), alpha1), faded(b, c, alpha2), product(b(last), alpha2));
    }
};

template <class Use> void each_member(Use use) {
    const auto small = [&]<class T>(T) {
        for (const Layout& l : {AC1, AC4, AP4}) use(Family<T>{"AlphaComp", l});
        for (const Layout& l : {C1, C3, C4, AC4, AP4}) use(Family<T>{"AlphaCompC", l});
        for (const bool inPlace : {false, true}) {
            for (const Layout& l : {AC4, AP4}) use(Family<T>{"AlphaPremul", l, inPlace});
            for (const Layout& l : {C1, C3, C4, AC4, AP4}) use(Family<T>{"AlphaPremulC", l, inPlace});
        }
    };
    const auto other = [&]<class T>(T) {
        use(Family<T>{"AlphaComp", AC1}), use(Family<T>{"AlphaComp", AC4}), use(Family<T>{"AlphaCompC", C1});
    };
    small(Zet8u{}), small(Zet16u{});
    other(Zet8s{}), other(Zet16s{}), other(Zet32u{}), other(Zet32s{}), other(Zet32f{});
}

// One call on random pictures, the destination being a source in some of them. False after a failure.
template <class T> bool check(const Family<T>& f, Random& r, int width, int height, int type, Checksum* checksum = nullptr) {
    Picture<T> a(r, f.layout, width, height, {1, -1}), b(r, f.layout, width, height, {1, -1}), d(r, f.layout, width, height, {1, -1});
    const int shared = f.inPlace ? 1 : r.between(0, 3);
    const Picture<T>&first = shared == 1 ? d : a, &second = shared == 2 ? d : b;
    const auto constant = [&] {
        return std::is_floating_point_v<T> ? static_cast<T>(r.between(0, 100)) / 99 : r.sample<T>(Random::mixed, 0);
    };
    const T alpha1 = constant(), alpha2 = constant();
    d.each([&](int x, int y, int c) {
        const auto pixel = [&](const Picture<T>& p) { return std::function([&, x, y](int i) { return p.at(x, y, i); }); };
        d.expect(x, y, c, f.expected(c, pixel(first), pixel(second), d.at(x, y, c), alpha1, alpha2, type));
    });
    const unsigned before = _mm_getcsr(), state = r.pick({0x1F80u, 0xFF80u, 0x3F80u}); // truncation and flushing; upwards
    _mm_setcsr(state);
    const ZetStatus status = f.run(first, second, d, {width, height}, alpha1, alpha2, type);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    const auto good = d.image.intact();
    EXPECT_TRUE(good) << f.name() << ", type " << type << ", " << width << " x " << height << ", constants " << text(alpha1) << ' '
                      << text(alpha2);
    EXPECT_TRUE(a.image.intact() && b.image.intact()) << f.name() << " writes to a source";
    EXPECT_EQ(status, zetStsNoErr) << f.name();
    EXPECT_EQ(after, state) << f.name();
    if (checksum) checksum->add(d.image);
    return good && status == zetStsNoErr;
}

TEST(Alpha, EveryMemberAndOperatorAtEveryWidth) {
    standin_reset();
    Checksum checksum;
    each_member([&](const auto& f) {
        Random r(f.name());
        for (int type = 0; type < (f.composes() ? 12 : 1); ++type) {
            for (int width = 1; width <= 40; ++width)
                if (!check(f, r, width, r.between(1, 3), type, &checksum)) return;
            if (!check(f, r, r.between(41, 400), 4, type, &checksum)) return;
        }
    });
    EXPECT_TRUE(checksum.is_known("Alpha"));
    EXPECT_EQ(standin_thread_queries(), 0); // serial
}

// Bytes through every pair: a sample and its alpha, two alphas, a sample and a constant.
TEST(Alpha, EveryPairOf8u) {
    Random r("pairs");
    Picture<Zet8u> a(r, AC4, 256, 256, {1}), b(r, AC4, 256, 256, {1}), d(r, AC4, 256, 256, {1});
    for (int type = 0; type <= 12; ++type) {
        const Family<Zet8u> f{type < 12 ? "AlphaComp" : "AlphaPremul", AC4};
        a.each([&](int x, int y, int c) {
            a.set(x, y, c, static_cast<Zet8u>(c == 0 ? x : c == 1 ? r.bits() : c == 2 ? x ^ 255 : y));
            b.set(x, y, c, static_cast<Zet8u>(c == 0 ? y : c == 1 ? x : c == 2 ? r.bits() : x));
        });
        const auto pixel = [](const Picture<Zet8u>& p, int x, int y) { return std::function([&p, x, y](int c) { return p.at(x, y, c); }); };
        a.each([&](int x, int y, int c) {
            d.expect(x, y, c, f.expected(c, pixel(a, x, y), pixel(b, x, y), Zet8u{}, Zet8u{}, Zet8u{}, type));
        });
        f.run(a, b, d, {256, 256}, 0, 0, type);
        ASSERT_TRUE(d.image.intact()) << type;
    }
    for (int v = 0; v < 256; ++v) {
        Zet8u row[256], by[256];
        for (int x = 0; x < 256; ++x) row[x] = static_cast<Zet8u>(x);
        test::call("zetiAlphaPremulC_8u_C1R", static_cast<const Zet8u*>(row), 256, static_cast<Zet8u>(v), by, 256, ZetiSize{256, 1});
        for (int x = 0; x < 256; ++x) ASSERT_EQ(by[x], x * v / 255); // the product of full scale is the quotient cut off
    }
}

// Rules that hold without any reference.
TEST(Alpha, ByHand) {
    const auto over = [](int type, std::array<Zet8u, 4> a, std::array<Zet8u, 4> b) {
        std::array<Zet8u, 4> d{};
        EXPECT_EQ(test::call("zetiAlphaComp_8u_AC4R", static_cast<const Zet8u*>(a.data()), 4, static_cast<const Zet8u*>(b.data()), 4,
                             d.data(), 4, ZetiSize{1, 1}, static_cast<ZetAlphaType>(type)),
                  zetStsNoErr);
        return d;
    };
    using Pixel = std::array<Zet8u, 4>;
    EXPECT_EQ(over(zetAlphaOver, {9, 200, 3, 255}, {50, 60, 70, 80}), (Pixel{9, 200, 3, 255}));
    EXPECT_EQ(over(zetAlphaOverPremul, {0, 0, 0, 0}, {50, 60, 70, 80}), (Pixel{50, 60, 70, 80}));
    EXPECT_EQ(over(zetAlphaOver, {100, 200, 0, 128}, {100, 200, 255, 128}),
              (Pixel{74, 149, 63, 191})); // 50 + 24, 100 + 49, 0 + 63, 128 + 63
    EXPECT_EQ(over(zetAlphaPlusPremul, {200, 1, 2, 200}, {100, 1, 2, 55}), (Pixel{255, 2, 4, 255}));
    const Zet8s low[2] = {-128, -128};
    Zet8s signedResult[2];
    test::call("zetiAlphaComp_8s_AC1R", low, 2, low, 2, signedResult, 2, ZetiSize{1, 1}, zetAlphaInPremul);
    EXPECT_EQ(signedResult[0], 127); // -128 times -128 leaves the type
}

// Where the destination runs ahead of a source within the row, pixels are computed one by one, also when it is no whole number of pixels.
TEST(Alpha, OverlappingRows) {
    for (int type = 0; type < 12; ++type)
        for (int ahead = -9; ahead <= 23; ++ahead) {
            Random r(std::to_string(type * 100 + ahead));
            std::array<Zet8u, 512> memory, expected;
            for (Zet8u& v : memory) v = r.chance(4) ? 255 : r.uniform<Zet8u>();
            expected = memory;
            const int width = r.between(1, 40), a = 100, b = r.pick({100, 300}), d = 100 + ahead;
            for (int x = 0; x < width; ++x) {
                Zet8u pixel[4];
                for (int c = 0; c < 4; ++c)
                    pixel[c] = composed(type, c == 3, expected[a + 4 * x + c], expected[a + 4 * x + 3], expected[b + 4 * x + c],
                                        expected[b + 4 * x + 3]);
                std::copy_n(pixel, 4, &expected[d + 4 * x]);
            }
            test::call("zetiAlphaComp_8u_AC4R", static_cast<const Zet8u*>(&memory[a]), 0, static_cast<const Zet8u*>(&memory[b]), 0,
                       &memory[d], 0, ZetiSize{width, 1}, static_cast<ZetAlphaType>(type));
            ASSERT_EQ(memory, expected) << "type " << type << ", " << ahead << " samples ahead, width " << width;
        }
}

// From 16 MiB on rows leave by streaming stores, a pixel never in two parts.
TEST(Alpha, LargeDestinations) {
    const int width = 2111, height = 2003;
    std::vector<Zet8u> source(4 * width * height + 64), memory(source.size());
    Random r("large");
    for (Zet8u& v : source) v = static_cast<Zet8u>(r.bits());
    for (const int offset : {0, 1, 4, 6, 60}) {
        test::call("zetiAlphaPremul_8u_AC4R", static_cast<const Zet8u*>(source.data()), 4 * width, memory.data() + offset, 4 * width,
                   ZetiSize{width, height});
        for (int i = 0; i < 4 * width * height; ++i) {
            const Zet8u v = source[i];
            ASSERT_EQ(memory[offset + i], i % 4 == 3 ? v : v * source[i | 3] / 255) << i << " at offset " << offset;
        }
    }
}

TEST(Alpha, OrderOfChecksByPairsOfErrors) {
    enum Error { first, second, destination, width, height, type, errors };
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        Picture<T> a(r, f.layout, 3, 2, {1}), b(r, f.layout, 3, 2, {1}), d(r, f.layout, 3, 2, {1});
        for (int one = 0; one < errors; ++one)
            for (int two = one; two < errors; ++two) {
                const auto has = [&](int e) {
                    return (one == e || two == e) && (e == first ? !f.inPlace : e == second || e == type ? f.composes() : true);
                };
                const ZetStatus expected = has(first) || has(second) || has(destination) ? zetStsNullPtrErr
                                           : has(width) || has(height)                   ? zetStsSizeErr
                                           : has(type)                                   ? zetStsAlphaTypeErr
                                                                                         : zetStsNoErr;
                if (expected == zetStsNoErr) continue;
                const ZetiSize roi{has(width) ? r.pick({0, -1}) : 3, has(height) ? r.pick({0, INT_MIN}) : 2};
                for (const int wrong : {12, INT_MAX, -1, INT_MIN})
                    for (int plane = -1; plane < (f.layout.planar() ? 4 : 0); ++plane) { // -1: the argument itself is null
                        auto planes = std::array{a.planes, b.planes, d.planes};
                        for (int k = 0; plane >= 0 && k < 3; ++k)
                            if (has(k)) planes[k][plane] = nullptr;
                        const auto with = [&](auto... p) { return f.call(p..., roi, T(1), T(1), has(type) ? wrong : 0); };
                        const auto array = [&](int k) -> T* const* { return plane < 0 && has(k) ? nullptr : planes[k].data(); };
                        const auto data = [&](int k) { return has(k) ? nullptr : planes[k][0]; };
                        EXPECT_EQ(f.layout.planar() ? with(array(0), 3, array(1), 3, array(2), 3)
                                                    : with(data(0), 3, data(1), 3, data(2), 3),
                                  expected)
                            << f.name() << ", errors " << one << " and " << two << ", plane " << plane;
                        ASSERT_TRUE(d.image.intact()) << f.name();
                    }
            }
    });
}

} // namespace
