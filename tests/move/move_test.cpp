// SPDX-License-Identifier: Apache-2.0
// The 153 members of Copy, Set, Dup and CopyManaged: all against the reference, the sizes at which they choose another way, the
// checks. Samples are compared as bytes.
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

struct Call : Images {
    const Member m;
    ZetiSize roi;
    const Zet8u* mask;
    int maskStep, flags;

    ZetStatus run() const {
        return with_type(m.type, [&]<class T>(T) {
            const T *planesFrom[4] = {}, *const *const s = planesFrom, *const v = static_cast<const T*>(values);
            T *planesTo[4] = {}, *const *const d = planesTo;
            const std::ptrdiff_t height = roi.height;
            for (int p = 0; p < (m.form.fromPlanes ? m.form.from : 1); ++p)
                planesFrom[p] = reinterpret_cast<const T*>(static_cast<const Zet8u*>(from) + p * height * fromStep);
            for (int p = 0; p < (m.form.toPlanes ? m.form.to : 1); ++p)
                planesTo[p] = reinterpret_cast<T*>(static_cast<Zet8u*>(to) + p * height * toStep);
            if (m.sets()) return m.form.moved == 1 ? call(load<T>(v), *d, toStep) : call(v, *d, toStep);
            if (m.form.fromPlanes) return call(s, fromStep, *d, toStep);
            return m.form.toPlanes ? call(*s, fromStep, d, toStep) : call(*s, fromStep, *d, toStep);
        });
    }

private:
    template <class... A> ZetStatus call(A... head) const {
        if (m.masked) return call_member(m.name(), head..., roi, mask, maskStep);
        return m.family == "CopyManaged" ? call_member(m.name(), head..., roi, flags) : call_member(m.name(), head..., roi);
    }
};

// One call on random images; planes lie one below the other. False after a failure.
bool check(const Member& m, Random& r, ZetiSize roi, int flags = 0) {
    const Form& f = m.form;
    const int srcChannel = f.moved == 1 ? r.between(0, f.from - 1) : 0, dstChannel = f.moved == 1 ? r.between(0, f.to - 1) : 0;
    Image<Zet8u> masks(roi.width, roi.height, 1, any_step(r, roi.width, {1, -1, 0}));
    int fill = 0; // of a block of the mask: empty, full, mixed
    for (const auto [y, x] : masks.samples()) {
        if (x % 16 == 0) fill = r.between(0, 2);
        const bool empty = fill == 0 || (fill == 2 && r.chance(2));
        masks.set(y, x, empty ? 0 : r.pick({1, 128, 255, r.between(1, 255)}));
    }
    const auto side = [&](bool planes, int channels) { return ZetiSize{roi.width, roi.height * (planes ? channels : 1)}; };
    const Geometry geometry = {side(f.fromPlanes, f.from),
                               side(f.toPlanes, f.to),
                               f.fromPlanes ? 1 : f.from,
                               f.toPlanes ? 1 : f.to,
                               f.moved,
                               -1,
                               f.fromPlanes,
                               -1,
                               f.toPlanes};
    const auto origin = [&](int y, int x, int c) -> Origin {
        const int row = y % roi.height, channel = f.toPlanes ? y / roi.height : c - dstChannel;
        if (channel < 0 || channel >= f.moved || (m.masked && masks.at(row, x) == 0)) return {0, 0, -1};
        if (m.sets()) return {-1, 0, channel};
        return f.fromPlanes ? Origin{channel * roi.height + row, x, 0} : Origin{row, x, f.from == 1 ? 0 : srcChannel + channel};
    };
    const auto run = [&](Images images) {
        images.from = static_cast<const Zet8u*>(images.from) + srcChannel * m.size();
        images.to = static_cast<Zet8u*>(images.to) + dstChannel * m.size();
        return Call{images, m, roi, masks.data(), masks.step, flags}.run();
    };
    return check_moved(m.name(), r, m.type, geometry, origin, run) && masks.intact();
}

TEST(Move, EveryMemberAtEveryWidth) {
    each_member([&](const Member& m) {
        Random r(m.name());
        for (int i = 1; i <= 160; ++i) {
            const int any = i > 150 ? r.between(70, 3000) : r.between(1, 20) * 16 - 1 + i % 3, width = i > 140 ? any : (i + 1) / 2;
            const int height = r.between(1, 4), flags = m.family == "CopyManaged" ? r.pick({0, 1, 2, 3, -1, -2, INT_MIN, INT_MAX}) : 0;
            if (!check(m, r, {width, height}, flags)) return;
        }
        if (m.sets() || m.masked || m.form.moved < m.form.to - 1 || m.size() == 2 || m.type == Type::f32) return;
        // Bytes of a region about which copies begin to stream, and planes to mind alignments; with and without gaps.
        const int bytes = m.form.fromPlanes || m.form.toPlanes ? 160000 : 1048576, width = bytes / 8 / m.form.to / m.size();
        for (int i = 0; i < 6; ++i)
            if (!check(m, r, {width + i % 2, 8})) return;
    });
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
                standin.reset(), standin.cache_bytes = cache;
                EXPECT_TRUE(check(m, r, {width + more, 16}));
                EXPECT_EQ(standin.cache_queries, asks && more) << m.name();
            }
    });
    std::vector<Zet8u> row(65536);
    const Zet8u value = 1;
    standin.reset(); // 2^32 bytes, the same row again and again
    EXPECT_EQ((Call{{nullptr, 0, row.data(), 0, &value}, {"Set", Type::u8, forms[0]}, {65536, 65536}, nullptr, 0, 0}.run()), zetStsNoErr);
    EXPECT_EQ(standin.cache_queries, 1);
}

// Null pointers, each of them in turn, before a bad size; no step is ever bad. Every byte stays as it was.
TEST(Move, ChecksInTheirOrder) {
    each_member([](const Member& m) {
        Zet32f image[64] = {};
        const Call call = {{image, 16, image + 32, 16, image}, m, {1, 2}, reinterpret_cast<Zet8u*>(image), 1, 0};
        const auto list = [](Faults& faults, const Arguments& a) { faults.null(a).size(a); };
        check_order([&] { call.run(); }, list, [&] { return std::count(image, image + 64, 0) == 64; });
    });
}

// Rows more than 2 GiB apart, downward for Copy and upward for Set.
TEST(Move, StepsBeyondTwoGigabytes) {
    if (sizeof(void*) == 4) GTEST_SKIP() << "no such image fits the address space";
    constexpr int step = 1 << 30, height = 5;
    constexpr size_t size = size_t{height} * step;
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Zet8u *const first = static_cast<Zet8u*>(memory), *const last = first + size - step;
    const Zet8u pixel[4] = {1, 2, 3, 4};
    each_member([&](const Member& m) {
        if (m.type != Type::u8 || !m.form.settable()) return;
        for (size_t y = 0; y < height; ++y) first[y * step] = 0;
        Call{{pixel, 0, m.sets() ? last : first, m.sets() ? -step : step, pixel}, m, {1, height}, pixel, 0, 0}.run();
        for (size_t y = 0; y < height; ++y) EXPECT_EQ(first[y * step], 1) << m.name() << ", row " << y;
    });
    munmap(memory, size);
}

} // namespace
