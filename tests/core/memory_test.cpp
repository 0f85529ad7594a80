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
    const int pixel = (layout.back() - '0') * static_cast<int>(sizeof(T)), live = standin_live_blocks();
    // The size of a row wraps at 32 bits, and so does that of all rows.
    const auto expect_size = [&](int width, int height, int step) {
        const std::int64_t expected = (width * std::int64_t{pixel} % (std::int64_t{1} << 32) + 63) / 64 * 64;
        EXPECT_EQ(step, static_cast<int>(expected)) << name << ", width " << width;
        EXPECT_EQ(standin_last_bytes(), static_cast<int>(expected * height)) << name << ", width " << width;
    };
    for (const int width : {1, 2, 3, 11, 16, 21, 64, 65, 333})
        for (const int height : {1, 5}) {
            int step = -1;
            T* const p = allocate(width, height, &step);
            ASSERT_TRUE(p && reinterpret_cast<std::uintptr_t>(p) % 64 == 0) << name;
            expect_size(width, height, step);
            std::memset(static_cast<void*>(p), 1, height * step);
            test::member<void(void*)>("zetiFree")(p);
        }
    EXPECT_EQ(standin_live_blocks(), live);

    standin_reset();
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {INT_MIN, INT_MIN}}) {
        int step = -1;
        EXPECT_EQ(allocate(width, height, &step), nullptr) << name;
        EXPECT_EQ(step, 0) << name << ' ' << width << ' ' << height;
    }
    EXPECT_EQ(allocate(5, 5, nullptr), nullptr) << name;
    EXPECT_EQ(standin_allocations(), 0) << name;

    standin_refuse_all_allocations(1);
    for (const auto& [width, height] : {std::pair{5, 5}, {INT_MAX, 1}, {0x20000001, 3}, {0x07FFFFFF, 0x123}, {1 << 30, 1}}) {
        int step = -1;
        EXPECT_EQ(allocate(width, height, &step), nullptr) << name;
        expect_size(width, height, step);
    }
    standin_reset();
}

TEST(Memory, Images) {
    const auto of_types = [](auto... samples) {
        for (const char* layout : {"C1", "C2", "C3", "C4", "AC4"}) (allocators<decltype(samples)>(layout), ...);
    };
    of_types(Zet8u{}, Zet16u{}, Zet16s{}, Zet32s{}, Zet32f{}, Zet32sc{}, Zet32fc{});
}

TEST(Memory, WorkBuffers) {
    standin_reset();
    for (const int count : {0, -1, INT_MIN}) EXPECT_EQ(zeti::zetsMalloc<Zet8u>(count), nullptr);
    EXPECT_EQ(standin_allocations(), 0);
    zeti::zetsFree(zeti::zetsMalloc<Zet16sc>(7));
    EXPECT_EQ(standin_last_bytes(), 28);
    standin_refuse_allocation(1);
    EXPECT_EQ(zeti::zetsMalloc<Zet64f>(7), nullptr);
    EXPECT_EQ(standin_last_bytes(), 56);
    standin_reset();
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
