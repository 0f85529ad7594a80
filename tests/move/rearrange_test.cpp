// SPDX-License-Identifier: Apache-2.0
// Mirror, Transpose and SwapChannels: every member against the reference, in place and out of place, the checks.
#include "tests/move/moved.h"

using namespace test;

namespace {

struct Layout {
    const char *name, *families; // by their first letters
    int from, to;
    bool keepsAlpha() const { return name[0] == 'A'; }
    int colours() const { return keepsAlpha() ? 3 : to; }
};
constexpr Layout layouts[] = {{"C1", "MT", 1, 1},  {"C3", "MTS", 3, 3}, {"C4", "MT", 4, 4},
                              {"AC4", "MS", 4, 4}, {"C3C4", "S", 3, 4}, {"C4C3", "S", 4, 3}};

struct Member {
    std::string family;
    Type type;
    Layout layout;
    bool inPlace;
    std::string name() const { return "zeti" + family + "_" + token(type) + "_" + layout.name + (inPlace ? "IR" : "R"); }
    bool swaps() const { return family == "SwapChannels"; }
    bool widens() const { return layout.to > layout.from; }
};

template <class Use> void each_member(const std::string& family, Use use) {
    const bool swaps = family == "SwapChannels";
    for (const Type t : moved_types)
        for (const Layout& l : layouts)
            for (const bool inPlace : {false, true})
                if (std::strchr(l.families, family[0]) && (!inPlace || !swaps)) use(Member{family, t, l, inPlace});
    for (const int l : {1, 2})
        if (swaps) use(Member{family, Type::u8, layouts[l], true});
}

struct Call {
    const Member m;
    const void* src;
    void* dst;
    int srcStep, dstStep;
    ZetiSize roi;
    int flip = 0;
    const int* order = nullptr;
    const void* value = nullptr;

    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const auto call = [&](auto... more) {
                T* const to = static_cast<T*>(dst);
                if (m.inPlace) return member<ZetStatus(T*, int, ZetiSize, decltype(more)...)>(m.name())(to, dstStep, roi, more...);
                return member<ZetStatus(const T*, int, T*, int, ZetiSize, decltype(more)...)>(m.name())(static_cast<const T*>(src), srcStep,
                                                                                                        to, dstStep, roi, more...);
            };
            if (!m.swaps()) return m.family == "Mirror" ? call(flip) : call();
            return m.widens() ? call(order, load<T>(value)) : call(order);
        });
    }
};

// One call on random images, and its status. `same`: in place, or with one image on both sides, which starts as a copy of the source.
template <class Of> void check(Call call, Random& r, bool same, ZetStatus expected, Checksum& sum, Of origin) {
    const Member& m = call.m;
    const int size = bytes_of(m.type);
    const bool upright = m.family != "Transpose" || same;
    const ZetiSize to = upright ? call.roi : ZetiSize{call.roi.height, call.roi.width};
    const int up = m.swaps() ? 1 : -1;
    Image<Zet8u> src(r, call.roi.width, call.roi.height, m.layout.from * size, {1, up}),
        dst(r, to.width, to.height, m.layout.to * size, {1, up}), value(size, 1, 1, 0);
    fill_constants(r, m.type, value);
    for (int y = 0; same && y < src.height; ++y)
        for (int i = 0; i < src.row_samples(); ++i) dst.set(y, i, src.at(y, i));
    if (expected == zetStsNoErr) expect_moved(src, dst, value, size, origin);
    const Image<Zet8u>& from = same ? dst : src;
    call.src = from.data(), call.srcStep = from.step, call.dst = dst.data(), call.dstStep = dst.step, call.value = value.data();
    EXPECT_EQ(call.run(), expected) << m.name();
    EXPECT_TRUE(dst.intact() && src.intact()) << m.name() << ", flip " << call.flip << dst.intact().message();
    sum.add(dst);
}

ZetiSize any_size(Random& r, int i) {
    if (i < 80) return {i + 1, r.between(1, 5)};
    if (i < 130) return {r.between(1, 70), r.between(1, 140)};
    return {r.between(60, 1200), r.between(1, 4)};
}

void check_mirror(const Member& m, Random& r, ZetiSize roi, int flip, bool same, Checksum& sum) {
    const bool refused = (flip != 1 && roi.height < 2) || (flip != 0 && roi.width < 2);
    check({m, {}, {}, 0, 0, roi, flip}, r, same, refused ? zetStsSizeErr : zetStsNoErr, sum, [&](int y, int x, int c) -> Origin {
        return {flip != 1 ? roi.height - 1 - y : y, flip != 0 ? roi.width - 1 - x : x, c < m.layout.colours() ? c : -1};
    });
}

TEST(Rearrange, Mirror) {
    Checksum sum;
    each_member("Mirror", [&](const Member& m) {
        Random r(m.name());
        for (int i = 0; i < 150 && !testing::Test::HasFailure(); ++i) {
            const ZetiSize roi = any_size(r, i);
            const int flip = r.between(0, 2);
            check_mirror(m, r, roi, flip, m.inPlace || r.chance(6), sum);
        }
        if (m.type == Type::u8 && m.layout.from == 1) // past the cache
            for (const int flip : {0, 1, 2}) check_mirror(m, r, {1301, 811}, flip, m.inPlace, sum);
    });
    EXPECT_TRUE(sum.is_known("Mirror"));
}

TEST(Rearrange, Transpose) {
    Checksum sum;
    each_member("Transpose", [&](const Member& m) {
        Random r(m.name());
        for (int i = 0; i < 140 && !testing::Test::HasFailure(); ++i) {
            const bool same = m.inPlace || r.chance(6), refused = same && r.chance(4);
            ZetiSize roi = any_size(r, i);
            if (same) roi.width = roi.height = std::min(roi.width, 200);
            if (refused) roi.width += roi.width == 1 ? 1 : r.pick({1, -1});
            check({m, {}, {}, 0, 0, roi}, r, same, refused ? zetStsSizeErr : zetStsNoErr, sum, [](int y, int x, int c) -> Origin {
                return {x, y, c};
            });
        }
    });
    EXPECT_TRUE(sum.is_known("Transpose"));
}

// All orders. Where pixels become wider, an entry of 3 takes the constant, and one above keeps the sample.
TEST(Rearrange, SwapChannels) {
    Checksum sum;
    each_member("SwapChannels", [&](const Member& m) {
        const int n = m.layout.colours(), codes = m.widens() ? 5 : m.layout.keepsAlpha() ? 3 : m.layout.from;
        Random r(m.name());
        for (int i = 0; i < (n == 3 ? 27 + 80 : 625 + 80) && !testing::Test::HasFailure(); ++i) {
            int order[4];
            for (int c = 0, rest = i; c < n; ++c, rest /= codes) order[c] = rest % codes;
            for (int& o : order)
                if (m.widens() && o == 4) o = r.pick({4, 5, 255, 256, INT_MAX});
            const ZetiSize roi = i % 2 ? ZetiSize{r.between(1, 60), r.between(1, 3)} : any_size(r, i % 150);
            check({m, {}, {}, 0, 0, roi, 0, order}, r, m.inPlace, zetStsNoErr, sum, [&](int y, int x, int c) -> Origin {
                if (m.widens() && order[c] == 3) return {-1, 0, 0};
                return {y, x, c >= n || (m.widens() && order[c] > 3) ? -1 : order[c]};
            });
        }
    });
    EXPECT_TRUE(sum.is_known("SwapChannels"));
}

// Only SwapChannels looks at steps. A flip is tested before the size that is too small for it, an order last.
TEST(Rearrange, ChecksInTheirOrder) {
    for (const char* const family : {"Mirror", "Transpose", "SwapChannels"})
        each_member(family, [](const Member& m) {
            static const int good[4] = {0, 1, 2, 0}, negative[4] = {0, -1, 2, 0}, least[4] = {INT_MIN, 0, 0, 0}, last[4] = {0, 0, 0, -1},
                             three[4] = {0, 1, 3, 0}, four[4] = {4, 0, 0, 4}, largest[4] = {INT_MAX, 1, 2, 3};
            Zet32s image[64] = {};
            Call call = {m, image, image + 32, 40, 40, {2, 2}, 2, good, image};
            Faults faults;
            if (!m.inPlace) faults.null(call.src);
            faults.null(call.dst);
            if (m.swaps()) faults.null(call.order);
            faults.size(call.roi);
            if (m.swaps() && !m.inPlace) faults.step(call.srcStep);
            if (m.swaps()) faults.step(call.dstStep).add(zetStsChannelOrderErr, call.order, {negative, least});
            if (m.swaps() && !m.widens()) faults.add(zetStsChannelOrderErr, call.order, {four, largest});
            if (m.swaps() && m.layout.colours() == 4) faults.add(zetStsChannelOrderErr, call.order, {last});
            if (m.swaps() && (m.layout.from == 3 || m.layout.keepsAlpha()) && !m.widens())
                faults.add(zetStsChannelOrderErr, call.order, {three});
            if (m.family == "Mirror")
                faults.add(zetStsMirrorFlipErr, call.flip, {-1, 3, INT_MIN, INT_MAX}).add(zetStsSizeErr, call.roi, {{1, 2}, {2, 1}});
            faults.expect_order(
                m.name(), [&] { return call.run(); }, [&] { return std::count(image, image + 64, 0) == 64; });
        });
}

} // namespace
