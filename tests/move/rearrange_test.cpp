// SPDX-License-Identifier: Apache-2.0
// Mirror, Transpose and SwapChannels: every member against the reference, in place and out of place, the checks. Samples are compared as bits.
#include <climits>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/order.h"

using namespace test;

namespace {

template <class T> using Bits = std::conditional_t<is_float<T>, Zet32s, T>;

struct Layout {
    const char* name;
    int from, to;
    int colours() const { return name[0] == 'A' ? 3 : to; }
};

// use(T, layout, in place)
template <class Use> void each_form(std::initializer_list<Layout> layouts, Use use) {
    const auto of_type = [&](auto t) {
        for (const Layout& l : layouts)
            for (const bool inPlace : {false, true}) use(t, l, inPlace);
    };
    of_type(Zet8u{}), of_type(Zet16u{}), of_type(Zet16s{}), of_type(Zet32s{}), of_type(Zet32f{});
}

template <class T> std::string name_of(const char* family, const Layout& l, bool inPlace) {
    return std::string("zeti") + family + "_" + token<T>() + "_" + l.name + (inPlace ? "IR" : "R");
}

// Calls with the arguments that follow the images.
template <class T, class... A>
ZetStatus call(const std::string& name, const Image<Bits<T>>& src, const Image<Bits<T>>& dst, ZetiSize roi, A... rest) {
    T *const from = reinterpret_cast<T*>(src.data()), *const to = reinterpret_cast<T*>(dst.data());
    if (name.ends_with("IR")) return member<ZetStatus(T*, int, ZetiSize, A...)>(name)(to, dst.step, roi, rest...);
    return member<ZetStatus(const T*, int, T*, int, ZetiSize, A...)>(name)(from, src.step, to, dst.step, roi, rest...);
}

ZetiSize any_size(Random& r, int i) {
    if (i < 80) return {i + 1, r.between(1, 5)};
    if (i < 130) return {r.between(1, 70), r.between(1, 140)};
    return {r.between(60, 1200), r.between(1, 4)};
}

// The source of every destination sample is what `from(y, x, c)` gives: a sample, or nothing where the destination stays.
template <class T, class From> void expect(const Image<Bits<T>>& src, Image<Bits<T>>& dst, From from) {
    const Image<Bits<T>>& read = src; // in place `src` is a copy of what the image was
    for (int y = 0; y < dst.height; ++y)
        for (int x = 0; x < dst.width; ++x)
            for (int c = 0; c < dst.channels; ++c)
                if (const auto [fy, fx, fc] = from(y, x, c); fc >= 0)
                    dst.expect(y, x * dst.channels + c, read.at(fy, fx * read.channels + fc));
}

struct Place {
    int y, x, c;
};

// Images of a call; in place, or with the same image on both sides, the destination starts as a copy of the source.
template <class T> struct Pair {
    Image<Bits<T>> src, dst;
    Pair(Random& r, ZetiSize from, ZetiSize to, const Layout& l, bool same, std::initializer_list<int> directions)
        : src(r, from.width, from.height, l.from, directions), dst(r, to.width, to.height, l.to, directions) {
        for (int y = 0; same && y < src.height; ++y)
            for (int i = 0; i < src.row_samples(); ++i) dst.set(y, i, src.at(y, i));
    }
    testing::AssertionResult intact(Checksum& sum) const {
        sum.add(dst);
        return src.intact() ? dst.intact() : testing::AssertionFailure() << "writes to its source";
    }
};

TEST(Rearrange, Mirror) {
    Checksum sum;
    each_form({{"C1", 1, 1}, {"C3", 3, 3}, {"C4", 4, 4}, {"AC4", 4, 4}}, [&](auto t, const Layout& l, bool inPlace) {
        using T = decltype(t);
        const std::string name = name_of<T>("Mirror", l, inPlace);
        Random r(name);
        for (int i = 0; i < 150 && !testing::Test::HasFailure(); ++i) {
            const ZetiSize roi = any_size(r, i);
            const int flip = r.between(0, 2);
            const bool same = inPlace || r.chance(6), refused = (flip != 1 && roi.height < 2) || (flip != 0 && roi.width < 2);
            Pair<T> p(r, roi, roi, l, same, {1, -1});
            if (!refused)
                expect<T>(p.src, p.dst, [&](int y, int x, int c) {
                    return Place{flip != 1 ? roi.height - 1 - y : y, flip != 0 ? roi.width - 1 - x : x, c < l.colours() ? c : -1};
                });
            const ZetStatus status = call<T>(name, same ? p.dst : p.src, p.dst, roi, flip);
            EXPECT_EQ(status, refused ? zetStsSizeErr : zetStsNoErr) << name;
            EXPECT_TRUE(p.intact(sum)) << name << ", flip " << flip;
        }
    });
    EXPECT_TRUE(sum.is_known("Mirror"));
}

TEST(Rearrange, Transpose) {
    Checksum sum;
    each_form({{"C1", 1, 1}, {"C3", 3, 3}, {"C4", 4, 4}}, [&](auto t, const Layout& l, bool inPlace) {
        using T = decltype(t);
        const std::string name = name_of<T>("Transpose", l, inPlace);
        Random r(name);
        for (int i = 0; i < 140 && !testing::Test::HasFailure(); ++i) {
            const bool same = inPlace || r.chance(6), refused = same && r.chance(4);
            ZetiSize roi = any_size(r, i);
            if (same) roi.width = roi.height = std::min(roi.width, 200);
            if (refused) roi.width += r.pick({1, -1});
            if (roi.width == 0) continue;
            Pair<T> p(r, roi, same ? roi : ZetiSize{roi.height, roi.width}, l, same, {1, -1});
            if (!refused) expect<T>(p.src, p.dst, [&](int y, int x, int c) { return Place{x, y, c}; });
            EXPECT_EQ(call<T>(name, same ? p.dst : p.src, p.dst, roi), refused ? zetStsSizeErr : zetStsNoErr) << name;
            EXPECT_TRUE(p.intact(sum)) << name;
        }
    });
    EXPECT_TRUE(sum.is_known("Transpose"));
}

TEST(Rearrange, SwapChannels) {
    Checksum sum;
    each_form({{"C3", 3, 3}, {"C4", 4, 4}, {"AC4", 4, 4}, {"C3C4", 3, 4}, {"C4C3", 4, 3}}, [&](auto t, const Layout& l, bool inPlace) {
        using T = decltype(t);
        const bool plain = l.from == l.to && l.name[0] == 'C', widens = l.to > l.from;
        if (inPlace ? !plain || sizeof(T) > 1 : l.name == std::string("C4")) return;
        const std::string name = name_of<T>("SwapChannels", l, inPlace);
        const int n = l.colours(), last = l.name[0] == 'A' ? 2 : l.from - 1, codes = last + 1;
        Random r(name);
        for (int i = 0; i < (l.name[0] == 'A' || n == 3 ? 27 + 80 : 625 + 80) && !testing::Test::HasFailure(); ++i) {
            int order[4];
            for (int c = 0, rest = i; c < n; ++c, rest /= widens ? 5 : codes) order[c] = widens ? rest % 5 : rest % codes; // all orders
            for (int& o : order)
                if (widens && o == 4) o = r.pick({4, 5, 255, 256, INT_MAX});
            const ZetiSize roi = i % 2 ? ZetiSize{r.between(1, 60), r.between(1, 3)} : any_size(r, i % 150);
            Pair<T> p(r, roi, roi, l, inPlace, {1});
            const auto val = r.uniform<Bits<T>>() & Bits<T>(is_float<T> ? 0xBFFFFFFF : ~0u);
            expect<T>(p.src, p.dst, [&](int y, int x, int c) { return Place{y, x, c >= n || (widens && order[c] > 2) ? -1 : order[c]}; });
            for (int y = 0; widens && y < roi.height; ++y)
                for (int k = 0; k < roi.width * 4; ++k)
                    if (order[k % 4] == 3) p.dst.expect(y, k, static_cast<Bits<T>>(val));
            const int* const given = order;
            const auto status = widens ? call<T>(name, p.src, p.dst, roi, given, load<T>(&val)) : call<T>(name, p.src, p.dst, roi, given);
            EXPECT_EQ(status, zetStsNoErr) << name;
            EXPECT_TRUE(p.intact(sum)) << name << ", order " << order[0] << order[1] << order[2];
        }
    });
    EXPECT_TRUE(sum.is_known("SwapChannels"));
}

// Regions that copies write past the cache.
TEST(Rearrange, LargeImages) {
    Random r("large");
    const Layout c1 = {"C1", 1, 1};
    for (const int flip : {0, 1, 2}) {
        Pair<Zet8u> p(r, {1301, 811}, {1301, 811}, c1, false, {1});
        expect<Zet8u>(p.src, p.dst, [&](int y, int x, int) { return Place{flip != 1 ? 810 - y : y, flip != 0 ? 1300 - x : x, 0}; });
        EXPECT_EQ(call<Zet8u>("zetiMirror_8u_C1R", p.src, p.dst, {1301, 811}, flip), zetStsNoErr);
        Checksum unused;
        EXPECT_TRUE(p.intact(unused)) << flip;
    }
}

TEST(Rearrange, ChecksInTheirOrder) {
    Zet8u image[64] = {}, dst[64] = {};
    const auto intact = [&] {
        return std::all_of(image, image + 64, [](Zet8u v) { return v == 0; }) && std::all_of(dst, dst + 64, [](Zet8u v) { return v == 0; });
    };
    const auto check = [&](const std::string& name, const auto& arguments, std::vector<ZetStatus> order, auto more) {
        std::vector<Error<std::decay_t<decltype(arguments)>>> errors;
        for (auto& e : common_errors(arguments))
            if (std::count(order.begin(), order.end(), e.status)) errors.push_back(e);
        more(errors);
        expect_order(name, arguments, order, errors, intact);
    };
    const Zet8u* const src = image;
    const ZetiSize roi = {4, 4};
    const auto flips = [](auto& errors) {
        for (const int bad : {-1, 3, INT_MIN, INT_MAX})
            errors.push_back({zetStsMirrorFlipErr, [=](auto& a) { std::get<std::tuple_size_v<std::decay_t<decltype(a)>> - 1>(a) = bad; }});
    };
    check("zetiMirror_8u_C1R", std::tuple(src, 4, +dst, 4, roi, 2), {zetStsNullPtrErr, zetStsSizeErr, zetStsMirrorFlipErr}, flips);
    check("zetiMirror_8u_C1IR", std::tuple(+image, 4, roi, 2), {zetStsNullPtrErr, zetStsSizeErr, zetStsMirrorFlipErr}, flips);
    EXPECT_EQ(member<ZetStatus(Zet8u*, int, ZetiSize, int)>("zetiMirror_8u_C1IR")(+image, 4, ZetiSize{1, 1}, 3),
              zetStsMirrorFlipErr); // before the size that is too small for a flip
    const auto none = [](auto&) {};
    check("zetiTranspose_8u_C1R", std::tuple(src, 4, +dst, 4, roi), {zetStsNullPtrErr, zetStsSizeErr}, none);
    check("zetiTranspose_8u_C1IR", std::tuple(+image, 4, roi), {zetStsNullPtrErr, zetStsSizeErr}, none);
    static const int bad[][4] = {{0, 1, 3, 0}, {0, -1, 2, 0}, {4, 0, 0, 4}, {INT_MIN, 0, 0, 0}, {INT_MAX, 1, 2, 3}, {0, 0, 0, -1}};
    const int good[4] = {0, 1, 2, 0};
    const std::vector<ZetStatus> order = {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr, zetStsChannelOrderErr};
    const auto entries = [](std::initializer_list<int> which, auto index) {
        return [=](auto& errors) {
            for (const int i : which)
                errors.push_back({zetStsChannelOrderErr, [=](auto& a) {
                                      if (auto& p = std::get<decltype(index)::value>(a)) p = bad[i];
                                  }});
        };
    };
    const std::integral_constant<int, 5> sixth;
    const ZetiSize small = {2, 2};
    check("zetiSwapChannels_8u_C3R", std::tuple(src, 8, +dst, 8, small, +good), order, entries({0, 1, 2, 3, 4}, sixth));
    check("zetiSwapChannels_8u_AC4R", std::tuple(src, 8, +dst, 8, small, +good), order, entries({0, 1, 2, 3, 4}, sixth));
    check("zetiSwapChannels_8u_C4C3R", std::tuple(src, 8, +dst, 8, small, +good), order, entries({1, 2, 3, 4}, sixth));
    check("zetiSwapChannels_8u_C3C4R", std::tuple(src, 8, +dst, 8, small, +good, Zet8u{9}), order, entries({1, 3, 5}, sixth));
    check("zetiSwapChannels_8u_C3IR", std::tuple(+image, 8, small, +good), order,
          entries({0, 1, 2, 3, 4}, std::integral_constant<int, 3>()));
    check("zetiSwapChannels_8u_C4IR", std::tuple(+image, 8, small, +good), order,
          entries({1, 2, 3, 4, 5}, std::integral_constant<int, 3>()));
}

} // namespace
