// SPDX-License-Identifier: Apache-2.0
// The four frames on a small example: rows that note which thread did them, with which buffer.
#include "core/frame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "tests/support/zetcore_standin.h"

using namespace zeti;

namespace {

struct Frames : testing::Test {
    const int live = standin_live_blocks();
    ~Frames() override {
        EXPECT_EQ(standin_live_blocks(), live) << "a buffer was not freed";
        standin_reset();
    }

    // With every thread count asked for granted, and where the runtime grants one thread only.
    template <class Body> static void with_threads(std::initializer_list<int> counts, Body body) {
        for (const int asked : counts) {
            standin_set_threads(asked);
            body(std::max(asked, 1), std::max(asked, 1));
#pragma omp parallel num_threads(2)
#pragma omp single
            body(std::max(asked, 1), 1);
        }
    }
};

struct Log {
    std::vector<int> owner;
    std::vector<Zet8u*> buffers = std::vector<Zet8u*>(8);
    explicit Log(int height) : owner(height, -1) {}

    void rows(Strip s, Zet8u* buffer = nullptr, int bytes = 0) {
        const int thread = omp_get_thread_num();
        buffers.at(thread) = std::fill_n(buffer, bytes, Zet8u{1}) - bytes;
        for (int y = s.first; y < s.first + s.count; ++y) EXPECT_EQ(std::exchange(owner.at(y), thread), -1);
    }
    std::vector<int> runs(int threads) const { // the rows of each thread; every row is done, in thread order
        EXPECT_TRUE(std::is_sorted(owner.begin(), owner.end()) && owner.front() >= 0);
        std::vector<int> counts(threads);
        for (const int thread : owner) ++counts.at(thread);
        return counts;
    }
    void expect_even_runs(int threads) const {
        const auto counts = runs(threads);
        EXPECT_LE(*std::max_element(counts.begin(), counts.end()) - *std::min_element(counts.begin(), counts.end()), 1);
    }
    void expect_buffers(int threads, int bytes) const {
        for (int t = 0; t < threads; ++t) EXPECT_EQ(buffers[t], buffers[0] + t * bytes);
    }
};

TEST_F(Frames, StaticRows) {
    for (const int height : {1, 2, 7, 100})
        with_threads({1, 2, 3, 7, 0, -5}, [&](int, int granted) {
            Log log(height);
            std::atomic<int> scopes{0};
            const auto row = [&](ptrdiff_t y) { log.rows({static_cast<int>(y), 1}); };
            static_rows(height, row, [&] { return ++scopes; });
            log.expect_even_runs(granted);
            EXPECT_EQ(scopes, granted);
        });
}

TEST_F(Frames, BufferedStripsLeaveTheRemainderToTheLast) {
    const auto expect = [](int threads, int height, const std::vector<int>& runs) {
        with_threads({threads}, [&](int asked, int granted) {
            Log log(height);
            EXPECT_EQ(buffered_strips(height, 9, [&](Strip s, Zet8u* own) { log.rows(s, own, 12); }), zetStsNoErr);
            EXPECT_EQ(log.runs(granted), granted == asked ? runs : std::vector{height});
            log.expect_buffers(granted, 12); // 9 bytes are rounded up
            EXPECT_EQ(standin_last_bytes(), 12 * asked);
        });
    };
    expect(3, 100, {33, 33, 34}), expect(3, 2, {0, 0, 2}), expect(1, 5, {5}), expect(7, 20, {2, 2, 2, 2, 2, 2, 8}), expect(0, 4, {4});
    standin_refuse_all_allocations(1);
    EXPECT_EQ(buffered_strips(5, 8, [](Strip, Zet8u*) { ADD_FAILURE(); }), zetStsMemAllocErr);
}

TEST_F(Frames, BufferedRowsAllocateForTheThreadsGranted) {
    with_threads({1, 3, 7}, [](int, int granted) {
        Log log(20);
        EXPECT_EQ(buffered_rows(20, 24, [&](int y, Zet8u* own) { log.rows({y, 1}, own, 24); }), zetStsNoErr);
        log.expect_even_runs(granted);
        log.expect_buffers(granted, 24);
        EXPECT_EQ(standin_last_bytes(), 24 * granted);
        standin_refuse_allocation(1);
        EXPECT_EQ(buffered_rows(20, 24, [](int, Zet8u*) { ADD_FAILURE() << "a row without a buffer"; }), zetStsMemAllocErr);
    });
}

TEST_F(Frames, StatusStripsReportTheFirstFailingThread) {
    standin_set_threads(4);
    const auto expect = [](int maxThreads, int failing, const std::vector<int>& runs, int status) { // a thread whose bit is set fails
        Log log(11);
        std::vector<Zet32s> statuses(maxThreads + 1, 77);
        const auto work = [&](Strip s, int thread) { return log.rows(s), ZetStatus(failing >> thread & 1 ? -100 - thread : 0); };
        EXPECT_EQ(status_strips(11, maxThreads, statuses.data(), work), status);
        EXPECT_EQ(log.runs(static_cast<int>(runs.size())), runs);
        EXPECT_EQ(statuses.back(), 77) << "beyond the slots";
    };
    expect(4, 0b0000, {2, 2, 2, 5}, 0), expect(4, 0b1100, {2, 2, 2, 5}, -102), expect(4, 0b1001, {2, 2, 2, 5}, -100);
    expect(9, 0b1000, {2, 2, 2, 5}, -103), expect(2, 0b0010, {5, 6}, -101), expect(1, 0b0000, {11}, 0);
    for (const auto& [columns, blocks] : {std::pair{1, 1}, {16, 1}, {17, 2}, {33, 3}}) EXPECT_EQ(column_blocks(columns), blocks);
}

} // namespace
