// SPDX-License-Identifier: Apache-2.0
// CopyConstBorder, CopyReplicateBorder, CopyWrapBorder: every member against the rule for one pixel, the checks.
#include "tests/move/moved.h"

using namespace test;

namespace {

using Bordered = MovedMember<PixelLayout>;
const std::string constant = "CopyConstBorder", replicated = "CopyReplicateBorder", wrapped = "CopyWrapBorder";

template <class Use> void each_member(Use use) {
    for (const std::string& family : {constant, replicated, wrapped})
        for (const Type t : moved_types)
            for (const PixelLayout& l : pixel_layouts)
                for (const bool inPlace : {false, true})
                    if (family == constant ? !inPlace : family == replicated || (l.channels == 1 && bytes_of(t) == 4))
                        use(Bordered{family, t, l, inPlace});
}

struct Case {
    ZetiSize src, dst;
    int top, left;
};

struct Call : Images, Case {
    const Bordered m;

    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const auto call = [&](auto... arguments) { return call_member(m.name(), arguments...); };
            const T *p = static_cast<const T*>(from), *v = static_cast<const T*>(values);
            T* const d = static_cast<T*>(to);
            if (m.inPlace) return call(const_cast<T*>(p), fromStep, src, dst, top, left);
            if (m.family != constant) return call(p, fromStep, src, d, toStep, dst, top, left);
            if (m.layout.channels > 1) return call(p, fromStep, src, d, toStep, dst, top, left, v);
            return call(p, fromStep, src, d, toStep, dst, top, left, load<T>(v));
        });
    }
};

int wrap(int i, int n) { return ((i % n) + n) % n; }

// One call on random images. The source may lie outside the destination or at its place in it.
bool check(const Bordered& m, Random& r, const Case& k) {
    const int channels = m.layout.channels;
    const Geometry geometry = {k.src, k.dst, channels, channels, channels, 1, 1, 1, 1, m.inPlace || r.chance(5), k.top, k.left};
    const auto origin = [&](int y, int x, int c) -> Origin {
        const int sx = x - k.left, sy = y - k.top;
        if (c >= m.layout.colours) return {0, 0, -1};
        if (m.family == wrapped) return {wrap(sy, k.src.height), wrap(sx, k.src.width), c};
        const int fx = std::clamp(sx, 0, k.src.width - 1), fy = std::clamp(sy, 0, k.src.height - 1);
        return {m.family == constant && (fx != sx || fy != sy) ? -1 : fy, fx, c};
    };
    return check_moved(m.name(), r, m.type, geometry, origin, [&](const Images& images) { return Call{images, k, m}.run(); });
}

Case any_case(Random& r, int i) {
    const auto extent = [&](int n) { return r.pick({0, 1, r.between(0, n), r.between(0, 3)}); };
    const ZetiSize src = i < 40 ? ZetiSize{i + 1, r.between(1, 4)} : ZetiSize{r.between(1, 9), r.between(1, 9)};
    const int left = extent(60), top = extent(12), right = extent(100), bottom = extent(12);
    return {src, {src.width + left + right, src.height + top + bottom}, top, left};
}

TEST(Border, EveryMember) {
    each_member([&](const Bordered& m) {
        Random r(m.name());
        for (int i = 0; i < 100; ++i)
            if (!check(m, r, any_case(r, i))) return;
        if (bytes_of(m.type) < 4 || m.family == wrapped) check(m, r, {{500, 300}, {1100, 700}, 333, 17}); // past the cache
    });
}

TEST(Border, ChecksInTheirOrder) {
    Zet32s image[64] = {};
    each_member([&](const Bordered& m) {
        const Call call = {{image, 40, image + 32, 40, image}, {{2, 3}, {5, 6}, 1, 1}, m};
        const auto list = [&](Faults& faults, const Arguments& a) {
            const Argument* const to = &a[m.inPlace ? 3 : 5]; // the size of the destination; behind it the edges
            auto &src = a[2].as<ZetiSize>(), &dst = to->as<ZetiSize>();
            faults.null(a).step(a).size(a);
            for (const int edge : {1, 2}) faults.add(zetStsSizeErr, to[edge].as<int>(), {-1, INT_MIN, 4, INT_MAX});
            for (int* most : {&src.width, &src.height}) faults.add(zetStsSizeErr, *most, {6, INT_MAX}); // at column 1 and row 1
            faults.add(zetStsSizeErr, src, {{5, 3}}).add(zetStsSizeErr, dst, {{2, 6}, {5, 3}});
        };
        check_order([&] { call.run(); }, list, [&] { return std::count(image, image + 64, 0) == 64; });
    });
}

} // namespace
