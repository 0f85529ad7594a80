// SPDX-License-Identifier: Apache-2.0
// The guard itself: the fence bites, and a stray write is found and told by its place.
#include "tests/support/image.h"

using namespace test;

TEST(Guard, FenceBites) {
    for (const int step : {7, 9, -9}) {
        const Image<Zet8u> behind(7, 3, 1, step, Fence::behind), before(7, 3, 1, step, Fence::before);
        volatile Zet8u* const end = behind.data() + std::max(0, 2 * step) + 7;
        volatile Zet8u* const start = before.data() + std::min(0, 2 * step);
        end[-1] = 1;
        start[0] = 1;
        EXPECT_DEATH(end[0] = 1, "") << step;
        EXPECT_DEATH((void)end[0], "") << step;
        EXPECT_DEATH(start[-1] = 1, "") << step;
    }
}

// Above, below, in a gap, in a sample; of rows that go up, and of rows on top of each other.
TEST(Guard, TellsThePlaceOfAStrayWrite) {
    const std::tuple<int, int, const char*> writes[] = {{9, -1, "byte -1"},
                                                        {9, 24, "byte 24"},
                                                        {-9, -10, "byte -10"},
                                                        {-9, 6, "byte 6"},
                                                        {0, 6, "byte 6"},
                                                        {9, 23, "row 2, pixel 1, channel 2"},
                                                        {-9, -9, "row 1, pixel 0, channel 0"}};
    for (const auto& [step, at, message] : writes) {
        const Image<Zet8u> image(2, 3, 3, step, Fence::behind, 15);
        EXPECT_TRUE(image.intact());
        image.data()[at] ^= 1;
        EXPECT_NE(std::string(image.intact().message()).find(message), std::string::npos) << step << ' ' << at << image.intact().message();
    }
}
