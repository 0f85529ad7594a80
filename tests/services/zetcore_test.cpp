// SPDX-License-Identifier: Apache-2.0
#include "services/zetcore.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <climits>
#include <cstdint>
#include <cstring>

TEST(Services, BlocksAreAlignedAndWritableToTheirEnd) {
    for (const int bytes : {1, 63, 64, 65, 4095, 1 << 20}) {
        void* const block = zetMalloc(bytes);
        ASSERT_TRUE(block && reinterpret_cast<std::uintptr_t>(block) % 64 == 0) << bytes;
        std::memset(block, 1, bytes);
        zetFree(block);
    }
    zetFree(nullptr);
    for (const int bytes : {0, -1, -64, INT_MIN}) EXPECT_EQ(zetMalloc(bytes), nullptr) << bytes;
}

TEST(Services, LargestCacheIsPlausibleOrUnknown) {
    EXPECT_NE(zetGetMaxCacheSizeB(nullptr), 0);
    int bytes = -7;
    const bool known = zetGetMaxCacheSizeB(&bytes) == 0;
    EXPECT_TRUE(known ? bytes >= 8 * 1024 : bytes == -7) << bytes;
}

TEST(Services, ThreadCountFollowsTheRuntime) {
    const int before = omp_get_max_threads();
    for (const int threads : {1, 3, 7, before}) {
        omp_set_num_threads(threads);
        EXPECT_EQ(ownGetNumThreads(), threads);
    }
}
