// SPDX-License-Identifier: Apache-2.0
// Which calls share their work, and that nobody can tell from the result: neither from the number of threads nor from the float
// state of the calling thread.
#include <omp.h>

#include <map>

#include "tests/arith/arith.h"

using namespace test;

namespace {

struct ForkFrom { // the least width plus height, in samples of one channel
    int unscaled, half, down;
};

// C1 members that fork from a bound on some paths; C3 and C4 of two images follow them. All else forks always or never.
const std::map<std::string, ForkFrom> bounds = {
    {"zetiAdd_8u_C1IRSfs", {0, 0, 256}},      {"zetiAdd_16s_C1RSfs", {256, 256, 256}},  {"zetiAdd_32f_C1R", {256, 256, 256}},
    {"zetiSub_8u_C1IRSfs", {0, 0, 256}},      {"zetiSub_16s_C1RSfs", {256, 256, 256}},  {"zetiSub_16s_C1IRSfs", {0, 256, 128}},
    {"zetiSub_32f_C1R", {256, 256, 256}},     {"zetiMul_8u_C1RSfs", {0, 128, 256}},     {"zetiMul_8u_C1IRSfs", {0, 256, 256}},
    {"zetiMul_16s_C1RSfs", {0, 128, 128}},    {"zetiMul_16s_C1IRSfs", {0, 256, 0}},     {"zetiAddC_8u_C1IRSfs", {0, 256, 256}},
    {"zetiAddC_16s_C1RSfs", {256, 256, 256}}, {"zetiAddC_16s_C1IRSfs", {0, 256, 256}},  {"zetiAddC_32f_C1R", {256, 256, 256}},
    {"zetiSubC_8u_C1IRSfs", {0, 256, 256}},   {"zetiSubC_16s_C1RSfs", {256, 256, 256}}, {"zetiSubC_16s_C1IRSfs", {0, 256, 0}},
    {"zetiSubC_32f_C1R", {256, 256, 256}},    {"zetiMulC_8u_C1IRSfs", {0, 0, 128}},     {"zetiMulC_16s_C1IRSfs", {0, 256, 256}},
};

TEST(Threads, ForkFromTheirBounds) {
    each_member([](auto f) {
        using T = typename std::decay_t<decltype(f)>::type;
        const bool never = f.op == Op::Div || f.layout == "AC4" || is_complex<T> || std::is_same_v<T, Zet16u>;
        Arith<T> single = f;
        single.layout = "C1";
        const auto found = bounds.find(single.name());
        const ForkFrom from = found == bounds.end() || (f.constant && f.channels() > 1) ? ForkFrom{} : found->second;
        std::vector<T> image(300 * 256 * 4), constants(4, f.op == Op::Add ? T{} : number<T>(4));
        const auto asks = [&](int width, int height, int s) {
            const int step = f.channels() * width * static_cast<int>(sizeof(T));
            standin_set_threads(1);
            f.run({image.data(), step, image.data(), step, image.data(), step, constants.data()}, {width, height}, s);
            return standin_thread_queries() > 0;
        };
        const struct { int s, bound; } paths[] = {{0, from.unscaled}, {1, from.half}, {2, from.down}, {7, from.down}, {-1, 0}, {-40, 0}};
        for (const auto& path : paths) {
            if (is_float<T> && path.s != 0) continue;
            if (f.constant && f.op == Op::Add) constants.assign(4, number<T>(path.s == 0 ? 4 : 0)); // neither a copy nor, at -40, a fill
            for (const int pixels : {1, path.bound / 2 / f.channels(), (path.bound - 1) / f.channels()}) {
                const int width = std::max(pixels, 1), height = path.bound - width * f.channels();
                const std::string told = f.name() + ", scale " + std::to_string(path.s) + ", width " + std::to_string(width);
                EXPECT_EQ(asks(width, std::max(height, 1), path.s), !never) << told;
                EXPECT_FALSE(height > 1 && asks(width, height - 1, path.s)) << told;
            }
        }
        EXPECT_EQ(asks(300, 100, 3), !never) << f.name();
        EXPECT_FALSE(!is_float<T> && asks(300, 100, 70)) << f.name() << ": a region of zeros is filled serially";
        standin_reset();
    });
}

// Many seeded calls of every member, for every number of threads, odd answers included: always the same bytes. Quotients of 32f images are left
// out of the sums: they come from the processor's reciprocal estimate, which may differ from maker to maker.
TEST(Threads, AnyNumberGivesTheSameBytes) {
    for (const int threads : {1, 2, 3, 7, 16, 0, -1}) {
        std::map<std::string, Checksum> sums;
        each_member([&](const auto& f) {
            Random r(f.name());
            standin_set_threads(threads);
            for (const int s : {0, 1, 3, 9, -1, -5, -20, 2, 6, 15})
                if (!check(f, r, {r.between(1, 70), r.between(1, 20)}, s, default_state, f.estimates() ? nullptr : &sums[f.family()]))
                    return;
        });
        for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family)) << threads << " threads";
    }
    standin_reset();
}

TEST(Threads, CallsFromAParallelRegionOfTheCaller) {
    standin_set_threads(3);
    for (const int levels : {1, 2}) {
        omp_set_max_active_levels(levels);
#pragma omp parallel for num_threads(3) schedule(static, 1)
        for (int i = 0; i < 60; ++i) {
            Random r(std::to_string(i));
            check(Arith<Zet8u>{Op::Add, false, false, "C1"}, r, {50, 40}, 1);
            check(Arith<Zet16s>{Op::Mul, true, true, "C3"}, r, {50, 40}, 5);
            check(Arith<Zet32f>{Op::Sub, false, true, "C4"}, r, {80, 9}, 0);
        }
    }
    omp_set_max_active_levels(1);
    standin_reset();
}

TEST(Threads, FloatStateOfTheCallerNeitherCountsNorChanges) {
    for (const unsigned state :
         {0x3F80U, 0x5F80U, 0x7F80U, 0x9FC0U, 0xFFC0U, 0x1D80U, 0x0000U, 0x1FBFU}) // rounding, flush and denormals to zero, traps, flags
        each_member([&](const auto& f) {
            Random r(f.name());
            standin_set_threads(1 + (state >> 13 & 2));
            for (const int s : {0, 1, 3, -2, -9, -40})
                if (!check(f, r, {r.between(1, 40), 3}, s, state)) return;
        });
    standin_reset();
}

} // namespace
