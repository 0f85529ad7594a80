// SPDX-License-Identifier: Apache-2.0
// Which calls share their work, and that the caller may be one of many threads.
#include <omp.h>

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
    each_arith([]<class T>(Arith<T> f) {
        const int channels = f.layout.channels;
        const auto found = bounds.find(Arith<T>(f.op, f.constant, f.inPlace).name());
        const ForkFrom from = found == bounds.end() || (f.constant && channels > 1) ? ForkFrom{} : found->second;
        std::vector<T> image(300 * 256 * 4);
        f.constants.fill(f.op == Op::Add ? T{} : number<T>(4));
        const auto asks = [&](int width, int height, int s) {
            const int step = channels * width * static_cast<int>(sizeof(T));
            standin.threads = 1, standin.thread_queries = 0;
            f.s = s;
            run(f, Operands<const T*, T*>{image.data(), step, image.data(), step, image.data(), step, {width, height}});
            return standin.thread_queries > 0;
        };
        const struct { int s, bound; } paths[] = {{0, from.unscaled}, {1, from.half}, {2, from.down}, {7, from.down}, {-1, 0}, {-40, 0}};
        for (const auto& path : paths) {
            if (is_float<T> && path.s != 0) continue;
            if (f.constant && f.op == Op::Add) f.constants.fill(number<T>(path.s == 0 ? 4 : 0)); // neither a copy nor, at -40, a fill
            for (const int pixels : {1, path.bound / 2 / channels, (path.bound - 1) / channels}) {
                const int width = std::max(pixels, 1), height = path.bound - width * channels;
                const std::string told = f.name() + ", scale " + std::to_string(path.s) + ", width " + std::to_string(width);
                EXPECT_EQ(asks(width, std::max(height, 1), path.s), f.forks()) << told;
                EXPECT_FALSE(height > 1 && asks(width, height - 1, path.s)) << told;
            }
        }
        EXPECT_EQ(asks(300, 100, 3), f.forks()) << f.name();
        EXPECT_FALSE(!is_float<T> && asks(300, 100, 70)) << f.name() << ": a region of zeros is filled serially";
    });
    standin.reset();
}

TEST(Threads, CallsFromAParallelRegionOfTheCaller) {
    standin.threads = 3;
    for (const int levels : {1, 2}) {
        omp_set_max_active_levels(levels);
#pragma omp parallel for num_threads(3) schedule(static, 1)
        for (int i = 0; i < 60; ++i) {
            Random r(std::to_string(i));
            Arith<Zet8u> sum(Op::Add, false);
            Arith<Zet16s> product(Op::Mul, true, true, pixel_layouts[1]);
            sum.s = 1, product.s = 5;
            check(sum, r, 50, 40), check(product, r, 50, 40);
        }
    }
    omp_set_max_active_levels(1);
    standin.reset();
}

} // namespace
