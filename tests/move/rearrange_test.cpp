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

    std::string told() const { return "flip " + std::to_string(flip); }
    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const auto call = [&](auto... more) {
                T* const to = static_cast<T*>(dst);
                if (m.inPlace) return call_member(m.name(), to, dstStep, roi, more...);
                return call_member(m.name(), static_cast<const T*>(src), srcStep, to, dstStep, roi, more...);
            };
            if (!m.swaps()) return m.family == "Mirror" ? call(flip) : call();
            return m.widens() ? call(order, load<T>(value)) : call(order);
        });
    }
};

// Where pixels become wider, an entry of 3 takes the constant, and one above keeps the sample.
Origin origin(const Call& k, int y, int x, int c) {
    const int colour = c < k.m.layout.colours() ? c : -1;
    if (k.m.family == "Transpose") return {x, y, c};
    if (k.m.family == "Mirror") return {k.flip != 1 ? k.roi.height - 1 - y : y, k.flip != 0 ? k.roi.width - 1 - x : x, colour};
    if (colour < 0 || !k.m.widens() || k.order[c] < 3) return {y, x, colour < 0 ? -1 : k.order[c]};
    return {-1, 0, k.order[c] == 3 ? 0 : -1};
}

// One call on random images. `same`: in place, or with one image on both sides, which starts as a copy of the source.
bool check(Call call, Random& r, bool same, Checksum& sum) {
    const Member& m = call.m;
    const int size = bytes_of(m.type), up = m.swaps() ? 1 : -1;
    const bool turns = m.family == "Transpose", mirrors = m.family == "Mirror", square = call.roi.width == call.roi.height;
    const bool thin = (call.flip != 1 && call.roi.height < 2) || (call.flip != 0 && call.roi.width < 2);
    const ZetiSize to = turns && !same ? ZetiSize{call.roi.height, call.roi.width} : call.roi;
    Image<Zet8u> src(r, call.roi.width, call.roi.height, m.layout.from * size, {1, up}),
        dst(r, to.width, to.height, m.layout.to * size, {1, up}), value(size, 1, 1, 0);
    fill_constants(r, m.type, value);
    for (int y = 0; same && y < src.height; ++y)
        for (int i = 0; i < src.row_samples(); ++i) dst.set(y, i, src.at(y, i));
    const ZetStatus expected = (mirrors && thin) || (turns && same && !square) ? zetStsSizeErr : zetStsNoErr;
    if (expected == zetStsNoErr) expect_moved(src, dst, value, size, [&](int y, int x, int c) { return origin(call, y, x, c); });
    const Image<Zet8u>& from = same ? dst : src;
    call.src = from.data(), call.srcStep = from.step, call.dst = dst.data(), call.dstStep = dst.step, call.value = value.data();
    return expect_done(call, src, dst, sum, expected);
}

ZetiSize any_size(Random& r, int i) {
    if (i < 80) return {i + 1, r.between(1, 5)};
    if (i < 130) return {r.between(1, 70), r.between(1, 140)};
    return {r.between(60, 1200), r.between(1, 4)};
}

// All orders of channels; flipped images that are written past the cache.
void check_member(const Member& m, Checksum& sum) {
    Random r(m.name());
    const int codes = m.widens()              ? 5
                      : m.layout.keepsAlpha() ? 3
                                              : m.layout.from,
              orders = m.swaps() ? m.layout.colours() == 3 ? 64 : 625 : 70;
    for (int i = 0; i < orders + 80; ++i) {
        const bool same = m.inPlace || (!m.swaps() && r.chance(6));
        int order[4];
        for (int c = 0, rest = i; c < 4; ++c, rest /= codes) order[c] = rest % codes < 4 ? rest % codes : r.pick({4, 5, 255, 256, INT_MAX});
        ZetiSize roi = m.swaps() && i % 2 ? ZetiSize{r.between(1, 60), r.between(1, 3)} : any_size(r, i % 150);
        if (same && m.family == "Transpose") roi.width = roi.height = std::min(roi.width, 200), roi.height += r.pick({0, 0, 0, 1});
        if (!check({m, {}, {}, 0, 0, roi, r.between(0, 2), order}, r, same, sum)) return;
    }
    for (const int flip : {0, 1, 2})
        if (m.family == "Mirror" && m.type == Type::u8 && m.layout.from == 1)
            check({m, {}, {}, 0, 0, {1301, 811}, flip}, r, m.inPlace, sum);
}

TEST(Rearrange, EveryMember) {
    for (const char* const family : {"Mirror", "Transpose", "SwapChannels"}) {
        Checksum sum;
        each_member(family, [&](const Member& m) { check_member(m, sum); });
        EXPECT_TRUE(sum.is_known(family));
    }
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
            if (m.swaps()) faults.step(call.dstStep);
            const auto orders = [&](bool wrong, auto... bad) {
                if (wrong) faults.add(zetStsChannelOrderErr, call.order, {bad...});
            };
            const bool swaps = m.swaps(), narrow = swaps && !m.widens();
            orders(swaps, negative, least), orders(narrow, four, largest), orders(swaps && m.layout.colours() == 4, last);
            orders(narrow && (m.layout.from == 3 || m.layout.keepsAlpha()), three);
            if (m.family == "Mirror")
                faults.add(zetStsMirrorFlipErr, call.flip, {-1, 3, INT_MIN, INT_MAX}).add(zetStsSizeErr, call.roi, {{1, 2}, {2, 1}});
            faults.expect_order(call, [&] { return std::count(image, image + 64, 0) == 64; });
        });
}

} // namespace
