// SPDX-License-Identifier: Apache-2.0
// libzeti really calls the stand-in: if it did not, every test with refused allocations or scripted threads would be void.
#include "tests/support/zetcore_standin.h"

#include <gtest/gtest.h>

#include <array>

#include "zeti/zeti.h"

TEST(Standin, CountsAndRefusesAllocationsOfTheLibrary) {
    standin_reset();
    const int live = standin_live_blocks();
    int step = 0;
    Zet8u* first = zetiMalloc_8u_C1(65, 3, &step);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(standin_last_bytes(), 3 * 128);

    standin_refuse_allocation(2);
    Zet8u* second = zetiMalloc_8u_C1(1, 1, &step);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(zetiMalloc_8u_C1(1, 1, &step), nullptr);
    Zet8u* fourth = zetiMalloc_8u_C1(1, 1, &step);
    EXPECT_NE(fourth, nullptr);
    EXPECT_EQ(standin_allocations(), 4);
    EXPECT_EQ(standin_live_blocks(), live + 3);

    standin_refuse_all_allocations(1);
    EXPECT_EQ(zetiMalloc_8u_C1(1, 1, &step), nullptr);
    EXPECT_EQ(zetiMalloc_8u_C1(1, 1, &step), nullptr);

    zetiFree(first);
    zetiFree(second);
    zetiFree(fourth);
    zetiFree(nullptr);
    EXPECT_EQ(standin_live_blocks(), live);
    standin_reset();
}

TEST(Standin, ScriptsItsAnswers) {
    standin_reset();
    EXPECT_EQ(ownGetNumThreads(), 1);
    const std::array answers{3, 2, 7};
    standin_script_threads(answers.data(), answers.size());
    for (const int expected : {3, 2, 7, 7}) EXPECT_EQ(ownGetNumThreads(), expected);
    EXPECT_EQ(standin_thread_queries(), 4);

    int bytes = -1;
    EXPECT_NE(zetGetMaxCacheSizeB(&bytes), 0);
    EXPECT_EQ(bytes, -1);
    standin_set_cache(1 << 16);
    EXPECT_EQ(zetGetMaxCacheSizeB(&bytes), 0);
    EXPECT_EQ(bytes, 1 << 16);
    EXPECT_EQ(standin_cache_queries(), 2);
    standin_reset();
}
