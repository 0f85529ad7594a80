// SPDX-License-Identifier: Apache-2.0
// CopyConstBorder, CopyReplicateBorder, CopyWrapBorder: every member against the rule for one pixel, the checks.
#include "tests/move/moved.h"

using namespace test;

namespace {

enum Border { constant, replicated, wrapped };
const char* const families[] = {"CopyConstBorder", "CopyReplicateBorder", "CopyWrapBorder"};

struct Member {
    Border border;
    Type type;
    PixelLayout layout;
    bool inPlace;
    std::string name() const {
        return std::string("zeti") + families[border] + "_" + token(type) + "_" + layout.name + (inPlace ? "IR" : "R");
    }
};

template <class Use> void each_member(Border border, Use use) {
    for (const Type t : moved_types)
        for (const PixelLayout& l : pixel_layouts)
            for (const bool inPlace : {false, true})
                if (border == constant ? !inPlace : border == replicated || (l.channels == 1 && bytes_of(t) == 4))
                    use(Member{border, t, l, inPlace});
}

struct Case {
    ZetiSize src, dst;
    int top, left;
};

struct Call : Case {
    const Member m;
    const void* from;
    void* to;
    const void* values;
    int srcStep, dstStep;

    std::string told() const { return "source at " + std::to_string(left) + ", " + std::to_string(top); }
    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const auto call = [&](auto... arguments) { return call_member(m.name(), arguments...); };
            const T *p = static_cast<const T*>(from), *v = static_cast<const T*>(values);
            T* const d = static_cast<T*>(to);
            if (m.inPlace) return call(const_cast<T*>(p), srcStep, src, dst, top, left);
            if (m.border != constant) return call(p, srcStep, src, d, dstStep, dst, top, left);
            if (m.layout.channels > 1) return call(p, srcStep, src, d, dstStep, dst, top, left, v);
            return call(p, srcStep, src, d, dstStep, dst, top, left, load<T>(v));
        });
    }
};

int wrap(int i, int n) { return ((i % n) + n) % n; }

// One call on random images. The source may lie outside the destination or at its place in it.
bool check(const Member& m, Random& r, const Case& k, Checksum& sum) {
    const int size = bytes_of(m.type), pixel = m.layout.channels * size;
    Image<Zet8u> src(r, k.src.width, k.src.height, pixel), dst(r, k.dst.width, k.dst.height, pixel), value(pixel, 1, 1, 0);
    fill_constants(r, m.type, value);
    const bool inside = m.inPlace || r.chance(5);
    for (int y = 0; inside && y < k.src.height; ++y)
        for (int i = 0; i < src.row_samples(); ++i) dst.set(k.top + y, k.left * pixel + i, src.at(y, i));
    expect_moved(src, dst, value, size, [&](int y, int x, int c) -> Origin {
        const int sx = x - k.left, sy = y - k.top;
        if (c >= m.layout.colours) return {0, 0, -1};
        if (m.border == wrapped) return {wrap(sy, k.src.height), wrap(sx, k.src.width), c};
        const int fx = std::clamp(sx, 0, k.src.width - 1), fy = std::clamp(sy, 0, k.src.height - 1);
        return {m.border == constant && (fx != sx || fy != sy) ? -1 : fy, fx, c};
    });
    Zet8u* const corner = dst.data() + long{k.top} * dst.step + k.left * pixel;
    const Call call = {k, m, inside ? corner : src.data(), dst.data(), value.data(), inside ? dst.step : src.step, dst.step};
    return expect_done(call, src, dst, sum);
}

Case any_case(Random& r, int i) {
    const auto extent = [&](int n) { return r.pick({0, 1, r.between(0, n), r.between(0, 3)}); };
    const ZetiSize src = i < 40 ? ZetiSize{i + 1, r.between(1, 4)} : ZetiSize{r.between(1, 9), r.between(1, 9)};
    const int left = extent(60), top = extent(12), right = extent(100), bottom = extent(12);
    return {src, {src.width + left + right, src.height + top + bottom}, top, left};
}

TEST(Border, EveryMember) {
    for (const Border border : {constant, replicated, wrapped}) {
        Checksum sum;
        each_member(border, [&](const Member& m) {
            Random r(m.name());
            for (int i = 0; i < 100; ++i)
                if (!check(m, r, any_case(r, i), sum)) return;
            if (bytes_of(m.type) < 4 || border == wrapped) check(m, r, {{500, 300}, {1100, 700}, 333, 17}, sum); // past the cache
        });
        EXPECT_TRUE(sum.is_known(families[border]));
    }
}

TEST(Border, ChecksInTheirOrder) {
    Zet32s image[64] = {};
    for (const Border border : {constant, replicated, wrapped})
        each_member(border, [&](const Member& m) {
            Call call = {{{2, 3}, {5, 6}, 1, 1}, m, image, image + 32, image, 40, 40};
            Faults faults;
            faults.null(call.from);
            if (!m.inPlace) faults.null(call.to);
            if (border == constant && m.layout.channels > 1) faults.null(call.values);
            faults.step(call.srcStep);
            if (!m.inPlace) faults.step(call.dstStep);
            faults.size(call.src).size(call.dst);
            for (int* edge : {&call.top, &call.left}) faults.add(zetStsSizeErr, *edge, {-1, INT_MIN, 4, INT_MAX});
            for (int* most : {&call.src.width, &call.src.height}) faults.add(zetStsSizeErr, *most, {6, INT_MAX}); // at column 1 and row 1
            faults.add(zetStsSizeErr, call.src, {{5, 3}}).add(zetStsSizeErr, call.dst, {{2, 6}, {5, 3}});
            faults.expect_order(call, [&] { return std::count(image, image + 64, 0) == 64; });
        });
}

} // namespace
