// SPDX-License-Identifier: Apache-2.0
// The 153 members of Copy, Set, Dup and CopyManaged: all against the reference, the sizes at which they choose another way, the
// checks. Samples are compared as bits: floats are kept as integers of their size.
#include <climits>
#include <list>
#include <map>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/member.h"
#include "tests/support/zetcore_standin.h"

using namespace test;

namespace {

template <class T> using Bits = std::conditional_t<is_float<T>, Zet32s, T>;

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

template <class T> struct Move {
    using type = T;
    std::string family;
    Form form;
    bool masked;

    bool sets() const { return family == "Set"; }
    std::string name() const { return "zeti" + family + "_" + token<T>() + "_" + form.layout + (masked ? "MR" : "R"); }

    struct Arguments { // the first entry is the image where there are no planes
        const T* src[4];
        T* dst[4];
        const T* values;
        const Zet8u* mask;
        int srcStep, dstStep, maskStep, flags;
        bool planes = true; // the arrays themselves are there
    };
    ZetStatus run(const Arguments& a, ZetiSize roi) const {
        const T* const* const from = a.planes ? a.src : nullptr;
        T* const* const to = a.planes ? a.dst : nullptr;
        if (sets()) return form.moved == 1 ? call(a, roi, *a.values, *a.dst, a.dstStep) : call(a, roi, a.values, *a.dst, a.dstStep);
        if (form.fromPlanes) return call(a, roi, from, a.srcStep, *a.dst, a.dstStep);
        return form.toPlanes ? call(a, roi, *a.src, a.srcStep, to, a.dstStep) : call(a, roi, *a.src, a.srcStep, *a.dst, a.dstStep);
    }

private:
    template <class... A> ZetStatus call(const Arguments& a, ZetiSize roi, A... head) const {
        if (masked) return member<ZetStatus(A..., ZetiSize, const Zet8u*, int)>(name())(head..., roi, a.mask, a.maskStep);
        if (family == "CopyManaged") return member<ZetStatus(A..., ZetiSize, int)>(name())(head..., roi, a.flags);
        return member<ZetStatus(A..., ZetiSize)>(name())(head..., roi);
    }
};

template <class Use> void each_member(Use use) {
    const auto members = [&]<class T>(T) {
        for (const Form& f : forms)
            for (const bool masked : {false, true}) {
                if (!masked || f.maskable()) use(Move<T>{"Copy", f, masked});
                if (masked ? f.maskable() : f.settable()) use(Move<T>{"Set", f, masked});
            }
    };
    members(Zet8u{}), members(Zet16u{}), members(Zet16s{}), members(Zet32s{}), members(Zet32f{});
    use(Move<Zet8u>{"Dup", {"C1C3", 1, 3, 3}, false}), use(Move<Zet8u>{"Dup", {"C1C4", 1, 4, 4}, false});
    use(Move<Zet8u>{"CopyManaged", forms[0], false});
}

int any_step(Random& r, int row) { // draws in one order, whatever the compiler
    const int gap = r.pick({0, 1, r.between(0, 70)});
    return (row + gap) * r.pick({1, -1, 0});
}

// The images of one call: one on either side, or one for each plane, all planes with the same step.
template <class T> struct Call {
    using U = Bits<T>;
    const Move<T> f;
    const ZetiSize roi;
    std::list<Image<U>> src, dst;
    Image<U> values;
    Image<Zet8u> mask;
    const int srcChannel, dstChannel; // where one sample of a pixel is moved; else 0
    int flags = 0;

    Call(const Move<T>& member, Random& r, ZetiSize size, bool contiguous)
        : f(member), roi(size), values(f.form.moved, 1, 1, 0), mask(roi.width, roi.height, 1, any_step(r, roi.width)),
          srcChannel(f.form.moved == 1 ? r.between(0, f.form.from - 1) : 0),
          dstChannel(f.form.moved == 1 ? r.between(0, f.form.to - 1) : 0) {
        const auto add = [&](std::list<Image<U>>& side, int channels, bool planes) {
            const int c = planes ? 1 : channels, row = roi.width * c * int{sizeof(U)};
            const int step = contiguous ? row : any_step(r, row);
            for (int p = 0; p < channels; p += c) {
                const Fence fence = r.chance(2) ? Fence::behind : Fence::before;
                side.emplace_back(roi.width, roi.height, c, step, fence, r.pick({0, r.between(0, 15)})).fill(r, r.pattern());
            }
        };
        if (!f.sets()) add(src, f.form.from, f.form.fromPlanes);
        add(dst, f.form.to, f.form.toPlanes);
        for (int c = 0; c < f.form.moved; ++c) values.set(0, c, r.uniform<U>() & U(is_float<T> ? 0xBFFFFFFF : ~0u)); // a NaN might not pass
        int fill = 0; // of a block of the mask: empty, full, mixed
        for (int y = 0; f.masked && y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) {
                if (x % 16 == 0) fill = r.between(0, 2);
                const bool empty = fill == 0 || (fill == 2 && r.chance(2));
                mask.set(y, x, empty ? 0 : r.pick({1, 128, 255, r.between(1, 255)}));
            }
    }

    static T* as(U* p) { return reinterpret_cast<T*>(p); }
    typename Move<T>::Arguments arguments() {
        typename Move<T>::Arguments a{{},        {},   as(values.data()), mask.data(), f.sets() ? 0 : src.front().step, dst.front().step,
                                      mask.step, flags};
        int s = 0, d = 0;
        for (Image<U>& image : src) a.src[s++] = as(image.data()) + srcChannel;
        for (Image<U>& image : dst) a.dst[d++] = as(image.data()) + dstChannel;
        return a;
    }

    void expect_result() {
        const Form& m = f.form;
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x)
                for (int c = 0; c < (f.masked && mask.at(y, x) == 0 ? 0 : m.moved); ++c) {
                    const int from = m.from == 1 ? 0 : srcChannel + c, to = dstChannel + c;
                    const U v = f.sets()       ? values.at(0, c)
                                : m.fromPlanes ? std::next(src.begin(), c)->at(y, x)
                                               : src.front().at(y, x * m.from + from);
                    if (m.toPlanes) std::next(dst.begin(), c)->expect(y, x, v);
                    else dst.front().expect(y, x * m.to + to, v);
                }
    }

    testing::AssertionResult intact() const {
        for (const Image<U>& d : dst)
            if (const auto good = d.intact(); !good) return good;
        for (const Image<U>& s : src)
            if (!s.intact()) return testing::AssertionFailure() << "writes to a source";
        return values.intact() && mask.intact() ? testing::AssertionSuccess()
                                                : testing::AssertionFailure() << "writes to its mask or values";
    }
};

// One call on random images against the reference. False after a failure.
template <class T> bool check(const Move<T>& f, Random& r, ZetiSize roi, bool contiguous, int flags = 0, Checksum* sum = nullptr) {
    Call<T> call(f, r, roi, contiguous);
    call.flags = flags;
    call.expect_result();
    const ZetStatus status = f.run(call.arguments(), roi);
    for (const auto& d : call.dst)
        if (sum) sum->add(d);
    const testing::AssertionResult good = call.intact();
    EXPECT_TRUE(good && status == zetStsNoErr) << good.message() << f.name() << " gives " << status << ", " << roi.width << " x "
                                               << roi.height << (contiguous ? " contiguous" : "") << ", flags " << flags;
    return good && status == zetStsNoErr;
}

TEST(Move, EveryMemberAtEveryWidth) {
    std::map<std::string, Checksum> sums;
    each_member([&](const auto& f) {
        Random r(f.name());
        for (int i = 1; i <= 160; ++i) {
            const int any = i > 150 ? r.between(70, 3000) : r.between(1, 20) * 16 - 1 + i % 3, width = i > 140 ? any : (i + 1) / 2;
            const int height = r.between(1, 4), flags = f.family == "CopyManaged" ? r.pick({0, 1, 2, 3, -1, -2, INT_MIN, INT_MAX}) : 0;
            const bool contiguous = r.chance(3);
            if (!check(f, r, {width, height}, contiguous, flags, &sums[f.family])) return;
        }
    });
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
}

// Bytes of a region about which copies begin to stream, and planes to mind alignments.
TEST(Move, SizesAboutTheThresholds) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        if (f.sets() || f.masked || f.form.moved < f.form.to - 1 || sizeof(T) == 2 || is_float<T>) return;
        Random r(f.name());
        const int bytes = f.form.fromPlanes || f.form.toPlanes ? 160000 : 1048576, width = bytes / 8 / f.form.to / int{sizeof(T)};
        for (const int more : {0, 1})
            for (const bool contiguous : {false, true})
                if (!check(f, r, {width + more, 8}, contiguous, more)) return;
    });
    Random r("exactly");
    for (const ZetiSize roi : {ZetiSize{1 << 20, 1}, {(1 << 20) + 1, 1}, {61681, 17}}) // the last is 2^20 + 1 as well
        for (const bool contiguous : {false, true}) check(Move<Zet8u>{"Copy", forms[0], false}, r, roi, contiguous);
}

// A fill asks for the cache once, from 524289 bytes on, and writes the same whatever the answer.
TEST(Move, FillsAskForTheCache) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        const bool asks = !f.masked && f.form.moved == f.form.to;
        if (!f.sets() || (!asks && sizeof(T) > 1)) return;
        Random r(f.name());
        const int row = 16 * f.form.to * sizeof(T), width = 524288 / row, above = (width + 1) * row;
        for (const int cache : {0, 1, above - 1, above, above + 1, INT_MAX}) {
            if (sizeof(T) > 1 && !r.chance(3)) continue;
            standin_reset(), standin_set_cache(cache);
            const bool contiguous = r.chance(2);
            if (!check(f, r, {width, 16}, contiguous)) return;
            EXPECT_EQ(standin_cache_queries(), 0) << f.name();
            if (!check(f, r, {width + 1, 16}, contiguous)) return;
            EXPECT_TRUE(!asks || standin_cache_queries() == 1) << f.name();
        }
    });
    Image<Zet8u> image(524289, 1, 1, 0);
    const Zet8u value = 7;
    for (const ZetiSize roi : {ZetiSize{524288, 1}, {524289, 1}, {65536, 65536}}) { // 2^32 bytes, the same row again and again
        standin_reset();
        Move<Zet8u>{"Set", forms[0], false}.run({{}, {image.data()}, &value, nullptr, 0, 0, 0, 0}, roi);
        EXPECT_EQ(standin_cache_queries(), roi.width != 524288) << roi.width;
    }
}

// Null pointers, each of them in turn, before a bad size; no step is ever bad. Every byte stays as it was.
TEST(Move, ChecksInTheirOrder) {
    each_member([](const auto& f) {
        using Arguments = typename Move<typename std::decay_t<decltype(f)>::type>::Arguments;
        Random r(f.name());
        Call call(f, r, {20, 3}, false);
        const auto expect = [&](ZetStatus expected, const char* what, const auto& spoil) {
            for (const ZetiSize roi : {ZetiSize{0, 3}, {20, 0}, {-1, 3}, {20, INT_MIN}, {0, -5}, {20, 3}}) {
                if (expected == zetStsSizeErr && roi.width == 20 && roi.height == 3) continue;
                Arguments a = call.arguments();
                for (int* step : {&a.srcStep, &a.dstStep, &a.maskStep}) *step = r.pick({0, -1, INT_MIN, *step});
                spoil(a);
                ASSERT_EQ(f.run(a, roi), expected) << f.name() << ", " << what << ", " << roi.width << " x " << roi.height;
                ASSERT_TRUE(call.intact()) << f.name() << ", " << what;
            }
        };
        const auto null = [&](const char* what, const auto& spoil) { expect(zetStsNullPtrErr, what, spoil); };
        expect(zetStsSizeErr, "sizes", [](Arguments&) {});
        for (size_t p = 0; p < call.src.size(); ++p) null("source", [=](Arguments& a) { a.src[p] = nullptr; });
        for (size_t p = 0; p < call.dst.size(); ++p) null("destination", [=](Arguments& a) { a.dst[p] = nullptr; });
        if (f.form.fromPlanes || f.form.toPlanes) null("planes", [](Arguments& a) { a.planes = false; });
        if (f.masked) null("mask", [](Arguments& a) { a.mask = nullptr; });
        if (f.sets() && f.form.moved > 1) null("values", [](Arguments& a) { a.values = nullptr; });
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
    const Zet8u src[4] = {1, 2, 3, 4}, mask[1] = {1};
    each_member([&](const auto& f) {
        if constexpr (std::is_same_v<decltype(f), const Move<Zet8u>&>) {
            if (!f.form.settable()) return;
            for (size_t y = 0; y < height; ++y) first[y * step] = 0;
            f.run({{src}, {f.sets() ? first + size - step : first}, src, mask, 0, f.sets() ? -step : step, 0, 0}, {1, height});
            for (size_t y = 0; y < height; ++y) EXPECT_EQ(first[y * step], 1) << f.name() << ", row " << y;
        }
    });
    munmap(memory, size);
}

} // namespace
