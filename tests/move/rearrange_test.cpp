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

struct Rearranged : MovedMember<Layout> {
    bool swaps() const { return family == "SwapChannels"; }
    bool widens() const { return layout.to > layout.from; }
};

template <class Use> void each_member(Use use) {
    for (const std::string family : {"Mirror", "Transpose", "SwapChannels"})
        for (const Type t : moved_types)
            for (const Layout& l : layouts)
                for (const bool inPlace : {false, true}) {
                    const bool few = family == "SwapChannels" && inPlace; // C3 and C4 of 8u alone
                    if (few ? t == Type::u8 && (&l == &layouts[1] || &l == &layouts[2]) : std::strchr(l.families, family[0]) != nullptr)
                        use(Rearranged{{family, t, l, inPlace}});
                }
}

struct Call : Images {
    const Rearranged m;
    ZetiSize roi;
    int flip;
    const int* order;

    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const auto call = [&](auto... more) {
                T* const d = static_cast<T*>(to);
                if (m.inPlace) return call_member(m.name(), d, toStep, roi, more...);
                return call_member(m.name(), static_cast<const T*>(from), fromStep, d, toStep, roi, more...);
            };
            if (!m.swaps()) return m.family == "Mirror" ? call(flip) : call();
            return m.widens() ? call(order, load<T>(values)) : call(order);
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
bool check(Call call, Random& r, bool same) {
    const Rearranged& m = call.m;
    const bool turns = m.family == "Transpose", mirrors = m.family == "Mirror", square = call.roi.width == call.roi.height;
    const bool thin = (call.flip != 1 && call.roi.height < 2) || (call.flip != 0 && call.roi.width < 2);
    const ZetiSize to = turns && !same ? ZetiSize{call.roi.height, call.roi.width} : call.roi;
    const int up = m.swaps() ? 1 : -1;
    return check_moved(
        m.name(), r, m.type, {call.roi, to, m.layout.from, m.layout.to, 1, up, 1, up, 1, same},
        [&](int y, int x, int c) { return origin(call, y, x, c); },
        [&](const Images& images) { return static_cast<Images&>(call) = images, call.run(); },
        (mirrors && thin) || (turns && same && !square) ? zetStsSizeErr : zetStsNoErr);
}

ZetiSize any_size(Random& r, int i) {
    if (i < 80) return {i + 1, r.between(1, 5)};
    if (i < 130) return {r.between(1, 70), r.between(1, 140)};
    return {r.between(60, 1200), r.between(1, 4)};
}

// All orders of channels; flipped images that are written past the cache.
void check_member(const Rearranged& m) {
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
        if (same && m.family == "Transpose")
            roi.width = roi.height = std::min(roi.width, 200), roi.height += r.pick({0, 0, 1, roi.width > 1 ? -1 : 1});
        if (!check({{}, m, roi, r.between(0, 2), order}, r, same)) return;
    }
    for (const int flip : {0, 1, 2})
        if (m.family == "Mirror" && m.type == Type::u8 && m.layout.from == 1) check({{}, m, {1301, 811}, flip, nullptr}, r, m.inPlace);
}

TEST(Rearrange, EveryMember) { each_member(check_member); }

// Only SwapChannels looks at steps. A flip is tested before the size that is too small for it, an order last.
TEST(Rearrange, ChecksInTheirOrder) {
    each_member([](const Rearranged& m) {
        static const int good[4] = {0, 1, 2, 0}, negative[4] = {0, -1, 2, 0}, least[4] = {INT_MIN, 0, 0, 0}, last[4] = {0, 0, 0, -1},
                         three[4] = {0, 1, 3, 0}, four[4] = {4, 0, 0, 4}, largest[4] = {INT_MAX, 1, 2, 3};
        Zet32s image[64] = {};
        const Call call = {{image, 40, image + 32, 40, image}, m, {2, 2}, 2, good};
        const auto list = [&](Faults& faults, const Arguments& a) {
            faults.null(a).size(a);
            if (m.family == "Mirror")
                faults.add(zetStsMirrorFlipErr, a.back().as<int>(), {-1, 3, INT_MIN, INT_MAX})
                    .add(zetStsSizeErr, a.end()[-2].as<ZetiSize>(), {{1, 2}, {2, 1}});
            if (!m.swaps()) return;
            faults.step(a);
            const auto orders = [&](bool wrong, auto... bad) {
                if (wrong) faults.add(zetStsChannelOrderErr, a.end()[m.widens() ? -2 : -1].as<const int*>(), {bad...});
            };
            orders(true, negative, least), orders(!m.widens(), four, largest), orders(m.layout.colours() == 4, last);
            orders(!m.widens() && (m.layout.from == 3 || m.layout.keepsAlpha()), three);
        };
        check_order([&] { call.run(); }, list, [&] { return std::count(image, image + 64, 0) == 64; });
    });
}

} // namespace
