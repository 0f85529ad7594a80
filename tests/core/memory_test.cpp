// SPDX-License-Identifier: Apache-2.0
// Image memory, work buffers and the version record.
#include "core/memory.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "tests/support/member.h"
#include "tests/support/samples.h"
#include "tests/support/zetcore_standin.h"

namespace {

template <class T> void allocators(const std::string& layout) {
    const std::string name = "zetiMalloc_" + test::token<T>() + "_" + layout;
    const auto allocate = test::member<T*(int, int, int*)>(name);
    const int pixel = (layout.back() - '0') * static_cast<int>(sizeof(T)), live = standin.live_blocks;
    const auto check = [&](int width, int height, bool refuse) {
        standin.refused_allocation = refuse;
        int step = -1;
        T* const p = allocate(width, height, &step);
        // The size of a row wraps at 32 bits, and so does that of all rows.
        const std::int64_t expected = (width * std::int64_t{pixel} % (std::int64_t{1} << 32) + 63) / 64 * 64;
        EXPECT_EQ(step, static_cast<int>(expected)) << name << ", width " << width;
        EXPECT_EQ(standin.last_bytes, static_cast<int>(expected * height)) << name << ", width " << width;
        EXPECT_TRUE(refuse ? !p : p && reinterpret_cast<std::uintptr_t>(p) % 64 == 0) << name;
        if (p) std::memset(static_cast<void*>(p), 1, height * step);
        test::member<void(void*)>("zetiFree")(p);
    };
    for (const int width : {1, 2, 3, 11, 16, 21, 64, 65, 333}) check(width, 1, false), check(width, 5, false);
    for (const auto& [width, height] : {std::pair{5, 5}, {INT_MAX, 1}, {0x20000001, 3}, {0x07FFFFFF, 0x123}, {1 << 30, 1}})
        check(width, height, true);
    EXPECT_EQ(standin.live_blocks, live);

    standin.reset();
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {INT_MIN, INT_MIN}}) {
        int step = -1;
        EXPECT_TRUE(!allocate(width, height, &step) && step == 0) << name << ' ' << width << ' ' << height;
    }
    EXPECT_EQ(allocate(5, 5, nullptr), nullptr) << name;
    EXPECT_EQ(standin.allocations, 0) << name;
}

TEST(Memory, Images) {
    const auto of_types = [](auto... samples) {
        for (const char* layout : {"C1", "C2", "C3", "C4", "AC4"}) (allocators<decltype(samples)>(layout), ...);
    };
    of_types(Zet8u{}, Zet16u{}, Zet16s{}, Zet32s{}, Zet32f{}, Zet32sc{}, Zet32fc{});
}

TEST(Memory, WorkBuffers) {
    standin.reset();
    for (const int count : {0, -1, INT_MIN}) EXPECT_EQ(zeti::zetsMalloc<Zet8u>(count), nullptr);
    EXPECT_EQ(standin.allocations, 0);
    zeti::zetsFree(zeti::zetsMalloc<Zet16sc>(7));
    EXPECT_EQ(standin.last_bytes, 28);
}

TEST(Version, IsOneConstantRecord) {
    const auto query = test::member<const ZetLibraryVersion*()>("zetiGetLibVersion");
    const ZetLibraryVersion* const v = query();
    EXPECT_EQ(v, query());
    EXPECT_EQ((std::vector{v->major, v->minor, v->majorBuild, v->build}), (std::vector{7, 1, 1, 37466}));
    EXPECT_EQ(std::string(v->targetCpu, 4), std::string("w7\0\0", 4));
    EXPECT_EQ((std::vector<std::string>{v->Name, v->Version, v->BuildDate}),
              (std::vector<std::string>{"zetIP SSE2 (w7)", "7.1.1 (r37466)", "Sep 24 2012"}));
}

} // namespace
