// SPDX-License-Identifier: Apache-2.0
// The 153 members of Copy, Set, Dup and CopyManaged: all against the reference, the sizes at which they choose another way, the
// checks. Samples are compared as bytes.
#include <deque>
#include <map>

#include "tests/move/moved.h"

using namespace test;

namespace {

struct Form {
    std::string layout;
    int from, to, moved; // samples per pixel: stored on either side, and written; one that is written may be any channel
    bool fromPlanes = false, toPlanes = false;

    bool settable() const { return from == to && !fromPlanes && !toPlanes; }
    bool maskable() const { return settable() && (moved > 1 || from == 1); }
};
const Form forms[] = {{"C1", 1, 1, 1},    {"C3", 3, 3, 3},    {"C4", 4, 4, 4},         {"AC4", 4, 4, 3},
                      {"C3C", 3, 3, 1},   {"C4C", 4, 4, 1},   {"C3C1", 3, 1, 1},       {"C4C1", 4, 1, 1},
                      {"C1C3", 1, 3, 1},  {"C1C4", 1, 4, 1},  {"C3P3", 3, 3, 3, 0, 1}, {"C4P4", 4, 4, 4, 0, 1},
                      {"AC4C3", 4, 3, 3}, {"C3AC4", 3, 4, 3}, {"P3C3", 3, 3, 3, 1},    {"P4C4", 4, 4, 4, 1}};

struct Member {
    std::string family;
    Type type;
    Form form;
    bool masked = false;

    int size() const { return bytes_of(type); }
    bool sets() const { return family == "Set"; }
    std::string name() const { return "zeti" + family + "_" + token(type) + "_" + form.layout + (masked ? "MR" : "R"); }
};

template <class Use> void each_member(Use use) {
    for (const Type t : moved_types)
        for (const Form& f : forms)
            for (const bool masked : {false, true}) {
                if (!masked || f.maskable()) use(Member{"Copy", t, f, masked});
                if (masked ? f.maskable() : f.settable()) use(Member{"Set", t, f, masked});
            }
    use(Member{"Dup", Type::u8, {"C1C3", 1, 3, 3}}), use(Member{"Dup", Type::u8, {"C1C4", 1, 4, 4}}),
        use(Member{"CopyManaged", Type::u8, forms[0]});
}

// One call: its arguments, and its images, one on either side or one for each plane, all planes with the same step.
struct Call {
    const Member m;
    ZetiSize roi;
    std::deque<Image<Zet8u>> src, dst;
    Image<Zet8u> constants, masks;
    const int srcChannel, dstChannel; // where one sample of a pixel is moved; else 0
    const void *from[4] = {}, **sources = from, *values = constants.data();
    void *to[4] = {}, **destinations = to;
    const Zet8u* mask = masks.data();
    int srcStep = 0, dstStep = 0, maskStep = masks.step, flags = 0;

    Call(const Member& given, Random& r, ZetiSize size)
        : m(given), roi(size), constants(m.form.moved * m.size(), 1, 1, 0),
          masks(roi.width, roi.height, 1, any_step(r, roi.width, {1, -1, 0})),
          srcChannel(m.form.moved == 1 ? r.between(0, m.form.from - 1) : 0),
          dstChannel(m.form.moved == 1 ? r.between(0, m.form.to - 1) : 0) {
        fill_constants(r, m.type, constants);
        const auto add = [&](std::deque<Image<Zet8u>>& side, int channels, bool apart, int channel, auto& pointers) {
            const int pixel = (apart ? 1 : channels) * m.size(), row = roi.width * pixel, step = any_step(r, row, {1, -1, 0});
            for (int p = 0; p < (apart ? channels : 1); ++p) {
                const Fence fence = r.chance(2) ? Fence::behind : Fence::before;
                side.emplace_back(roi.width, roi.height, pixel, step, fence, r.pick({0, r.between(0, 15)})).fill(r, r.pattern());
                pointers[p] = side[p].data() + channel * m.size();
            }
            return step;
        };
        if (!m.sets()) srcStep = add(src, m.form.from, m.form.fromPlanes, srcChannel, from);
        dstStep = add(dst, m.form.to, m.form.toPlanes, dstChannel, to);
        int fill = 0; // of a block of the mask: empty, full, mixed
        for (int y = 0; m.masked && y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) {
                if (x % 16 == 0) fill = r.between(0, 2);
                const bool empty = fill == 0 || (fill == 2 && r.chance(2));
                masks.set(y, x, empty ? 0 : r.pick({1, 128, 255, r.between(1, 255)}));
            }
    }

    void expect_result() {
        const Form& f = m.form;
        const int size = m.size();
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x)
                for (int c = 0; c < (m.masked && masks.at(y, x) == 0 ? 0 : f.moved); ++c)
                    for (int b = 0; b < size; ++b) {
                        const int read = f.fromPlanes ? x : x * f.from + (f.from == 1 ? 0 : srcChannel + c);
                        const int written = f.toPlanes ? x : x * f.to + dstChannel + c;
                        const Zet8u v = m.sets() ? constants.at(0, c * size + b) : src[f.fromPlanes ? c : 0].at(y, read * size + b);
                        dst[f.toPlanes ? c : 0].expect(y, written * size + b, v);
                    }
    }

    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const T *const *const s = reinterpret_cast<const T*const*>(sources), *const v = static_cast<const T*>(values);
            T* const* const d = reinterpret_cast<T* const*>(destinations);
            if (m.sets()) return m.form.moved == 1 ? call(load<T>(v), *d, dstStep) : call(v, *d, dstStep);
            if (m.form.fromPlanes) return call(s, srcStep, *d, dstStep);
            return m.form.toPlanes ? call(*s, srcStep, d, dstStep) : call(*s, srcStep, *d, dstStep);
        });
    }

    bool intact() const {
        const auto whole = [](const Image<Zet8u>& image) { return static_cast<bool>(image.intact()); };
        return std::all_of(src.begin(), src.end(), whole) && std::all_of(dst.begin(), dst.end(), whole) && whole(constants) && whole(masks);
    }

private:
    template <class... A> ZetStatus call(A... head) const {
        if (m.masked) return call_member(m.name(), head..., roi, mask, maskStep);
        return m.family == "CopyManaged" ? call_member(m.name(), head..., roi, flags) : call_member(m.name(), head..., roi);
    }
};

// One call on random images against the reference. False after a failure.
bool check(const Member& m, Random& r, ZetiSize roi, int flags = 0, Checksum* sum = nullptr) {
    Call call(m, r, roi);
    call.flags = flags;
    call.expect_result();
    const ZetStatus status = call.run();
    for (const auto& d : call.dst)
        if (sum) sum->add(d);
    const bool good = call.intact() && status == zetStsNoErr;
    EXPECT_TRUE(good) << m.name() << " gives " << status << ", " << roi.width << " x " << roi.height << ", flags " << flags << ": "
                      << call.dst.back().intact().message();
    return good;
}

TEST(Move, EveryMemberAtEveryWidth) {
    std::map<std::string, Checksum> sums;
    each_member([&](const Member& m) {
        Random r(m.name());
        for (int i = 1; i <= 160; ++i) {
            const int any = i > 150 ? r.between(70, 3000) : r.between(1, 20) * 16 - 1 + i % 3, width = i > 140 ? any : (i + 1) / 2;
            const int height = r.between(1, 4), flags = m.family == "CopyManaged" ? r.pick({0, 1, 2, 3, -1, -2, INT_MIN, INT_MAX}) : 0;
            if (!check(m, r, {width, height}, flags, &sums[m.family])) return;
        }
        if (m.sets() || m.masked || m.form.moved < m.form.to - 1 || m.size() == 2 || m.type == Type::f32) return;
        // Bytes of a region about which copies begin to stream, and planes to mind alignments; with and without gaps.
        const int bytes = m.form.fromPlanes || m.form.toPlanes ? 160000 : 1048576, width = bytes / 8 / m.form.to / m.size();
        for (int i = 0; i < 6; ++i)
            if (!check(m, r, {width + i % 2, 8})) return;
    });
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
}

// A fill asks for the cache once, from 524289 bytes on, and writes the same whatever the answer.
TEST(Move, FillsAskForTheCache) {
    each_member([](const Member& m) {
        const bool asks = !m.masked && m.form.moved == m.form.to;
        if (!m.sets() || (!asks && m.size() > 1)) return;
        Random r(m.name());
        const int width = 524288 / (16 * m.form.to * m.size());
        for (const int cache : {0, 1, INT_MAX})
            for (const int more : {0, 1}) {
                standin_reset(), standin_set_cache(cache);
                EXPECT_TRUE(check(m, r, {width + more, 16}));
                EXPECT_EQ(standin_cache_queries(), asks && more) << m.name();
            }
    });
    Random r("fills");
    Call call({"Set", Type::u8, forms[0]}, r, {524289, 1});
    call.dstStep = 0;
    for (const ZetiSize roi : {ZetiSize{524288, 1}, {524289, 1}, {65536, 65536}}) { // 2^32 bytes, the same row again and again
        standin_reset(), call.roi = roi;
        EXPECT_EQ(call.run(), zetStsNoErr);
        EXPECT_EQ(standin_cache_queries(), roi.width != 524288) << roi.width;
    }
}

// Null pointers, each of them in turn, before a bad size; no step is ever bad. Every byte stays as it was.
TEST(Move, ChecksInTheirOrder) {
    each_member([](const Member& m) {
        Random r(m.name());
        Call call(m, r, {20, 3});
        Faults faults;
        for (std::size_t p = 0; p < call.src.size(); ++p) faults.null(call.from[p]);
        for (std::size_t p = 0; p < call.dst.size(); ++p) faults.null(call.to[p]);
        if (m.form.fromPlanes) faults.null(call.sources);
        if (m.form.toPlanes) faults.null(call.destinations);
        if (m.masked) faults.null(call.mask);
        if (m.sets() && m.form.moved > 1) faults.null(call.values);
        faults.size(call.roi);
        faults.expect_order(call, [&] { return call.intact(); });
    });
}

// Rows more than 2 GiB apart, downward for Copy and upward for Set.
TEST(Move, StepsBeyondTwoGigabytes) {
    if (sizeof(void*) == 4) GTEST_SKIP() << "no such image fits the address space";
    const int step = 1 << 30, height = 5;
    const size_t size = size_t{height} * step;
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Zet8u* const first = static_cast<Zet8u*>(memory);
    const Zet8u pixel[4] = {1, 2, 3, 4}, mask[1] = {1};
    each_member([&](const Member& m) {
        if (m.type != Type::u8 || !m.form.settable()) return;
        for (size_t y = 0; y < height; ++y) first[y * step] = 0;
        Random r(m.name());
        Call call(m, r, {1, 1});
        call.roi.height = height, call.from[0] = call.values = pixel, call.srcStep = 0, call.mask = mask, call.maskStep = 0;
        call.to[0] = m.sets() ? first + size - step : first, call.dstStep = m.sets() ? -step : step;
        call.run();
        for (size_t y = 0; y < height; ++y) EXPECT_EQ(first[y * step], 1) << m.name() << ", row " << y;
    });
    munmap(memory, size);
}

} // namespace
