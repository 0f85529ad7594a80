// SPDX-License-Identifier: Apache-2.0
// libzeti really calls the stand-in: if it did not, every test with refused allocations would be void.
#include "tests/support/zetcore_standin.h"

#include <gtest/gtest.h>

#include "zeti/zeti.h"

TEST(Standin, CountsAndRefusesAllocationsOfTheLibrary) {
    standin_reset();
    const int live = standin_live_blocks();
    const auto allocate = [](int height) {
        int step = 0;
        return zetiMalloc_8u_C1(65, height, &step);
    };
    standin_refuse_allocation(2);
    Zet8u* const first = allocate(3);
    EXPECT_EQ(standin_last_bytes(), 3 * 128);
    EXPECT_EQ(allocate(1), nullptr);
    Zet8u* const third = allocate(1);
    EXPECT_TRUE(first && third);
    EXPECT_EQ(standin_allocations(), 3);
    EXPECT_EQ(standin_live_blocks(), live + 2);
    standin_refuse_all_allocations(1);
    for (const int height : {1, 2}) EXPECT_EQ(allocate(height), nullptr);
    for (Zet8u* block : {first, third, static_cast<Zet8u*>(nullptr)}) zetiFree(block);
    EXPECT_EQ(standin_live_blocks(), live);
    standin_reset();
}
