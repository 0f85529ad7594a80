// SPDX-License-Identifier: Apache-2.0
// The four frames on a small example: rows that note which thread did them, with which buffer.
#include "core/frame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <numeric>
#include <vector>

#include "tests/support/zetcore_standin.h"

using namespace zeti;

namespace {

struct Frames : testing::Test {
    const int live = standin.live_blocks;
    ~Frames() override {
        EXPECT_EQ(standin.live_blocks, live) << "a buffer was not freed";
        standin.reset();
    }
};

// With the thread count asked for granted, and where the runtime grants one thread only.
template <class Body> void with_threads(int asked, Body body) {
    standin.threads = asked;
    body(std::max(asked, 1));
#pragma omp parallel num_threads(2)
#pragma omp single
    body(1);
}

struct Log {
    std::vector<int> owner;
    std::vector<Zet8u*> buffers = std::vector<Zet8u*>(8);
    explicit Log(int height) : owner(height, -1) {}

    void rows(Strip s, Zet8u* buffer = nullptr, int bytes = 0) {
        const int thread = omp_get_thread_num();
        buffers.at(thread) = std::fill_n(buffer, bytes, Zet8u{1}) - bytes;
        for (int y = s.first; y < s.first + s.count; ++y) EXPECT_EQ(std::exchange(owner.at(y), thread), -1);
    }
    // The number of rows of each thread. Every row is done, in thread order; buffers lie so many bytes apart.
    std::vector<int> runs(int threads, int bytes = 0) const {
        EXPECT_TRUE(std::is_sorted(owner.begin(), owner.end()) && owner.front() >= 0);
        std::vector<int> counts(threads);
        for (const int thread : owner) {
            ++counts.at(thread);
            EXPECT_EQ(buffers[thread], buffers[0] + thread * bytes);
        }
        return counts;
    }
};

TEST_F(Frames, RowsGoOutInEvenRuns) {
    for (const int threads : {1, 2, 3, 7, 0, -5})
        for (const int height : {1, 2, 7, 100})
            with_threads(threads, [=](int granted) {
                Log log(height), buffered(height);
                std::atomic<int> scopes{0};
                static_rows(
                    height,
                    [&](ptrdiff_t y) {
                        log.rows({static_cast<int>(y), 1});
                    },
                    [&] { return ++scopes; });
                EXPECT_EQ(scopes, granted);
                EXPECT_EQ(buffered_rows(height, 24, [&](int y, Zet8u* own) { buffered.rows({y, 1}, own, 24); }), zetStsNoErr);
                EXPECT_EQ(standin.last_bytes, 24 * granted);
                for (const auto& runs : {log.runs(granted), buffered.runs(granted, 24)})
                    EXPECT_TRUE(std::is_sorted(runs.rbegin(), runs.rend()) && runs.front() - runs.back() <= 1);
                standin.refused_allocation = 1;
                EXPECT_EQ(buffered_rows(height, 24, [](int, Zet8u*) { ADD_FAILURE() << "a row without a buffer"; }), zetStsMemAllocErr);
            });
}

TEST_F(Frames, BufferedStripsLeaveTheRemainderToTheLast) {
    for (const auto& [threads, runs] : {std::pair{3, std::vector{33, 33, 34}}, {3, {0, 0, 2}}, {7, {2, 2, 2, 2, 2, 2, 8}}, {0, {4}}})
        with_threads(threads,
                     [&, asked = std::max(threads, 1), height = std::accumulate(runs.begin(), runs.end(), 0), &runs = runs](int granted) {
                         Log log(height);
                         EXPECT_EQ(buffered_strips(height, 9, [&](Strip s, Zet8u* own) { log.rows(s, own, 12); }),
                                   zetStsNoErr); // 9 bytes are rounded up
                         EXPECT_EQ(log.runs(granted, 12), granted == asked ? runs : std::vector{height});
                         EXPECT_EQ(standin.last_bytes, 12 * asked);
                     });
    standin.refused_allocation = 1;
    EXPECT_EQ(buffered_strips(5, 8, [](Strip, Zet8u*) { ADD_FAILURE(); }), zetStsMemAllocErr);
}

TEST_F(Frames, StatusStripsReportTheFirstFailingThread) {
    standin.threads = 4;
    const auto expect = [](int maxThreads, int failing, const std::vector<int>& runs, int status) { // a thread whose bit is set fails
        Log log(11);
        std::vector<Zet32s> statuses(maxThreads + 1, 77);
        const auto work = [&](Strip s, int thread) { return log.rows(s), ZetStatus(failing >> thread & 1 ? -100 - thread : 0); };
        EXPECT_EQ(status_strips(11, maxThreads, statuses.data(), work), status);
        EXPECT_EQ(log.runs(static_cast<int>(runs.size())), runs);
        EXPECT_EQ(statuses.back(), 77) << "beyond the slots";
    };
    expect(4, 0b0000, {2, 2, 2, 5}, 0), expect(4, 0b1100, {2, 2, 2, 5}, -102), expect(9, 0b1000, {2, 2, 2, 5}, -103);
    expect(2, 0b0010, {5, 6}, -101), expect(1, 0b0000, {11}, 0);
    for (const auto& [columns, blocks] : {std::pair{1, 1}, {16, 1}, {17, 2}, {33, 3}}) EXPECT_EQ(column_blocks(columns), blocks);
}

} // namespace
