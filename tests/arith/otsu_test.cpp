// SPDX-License-Identifier: Apache-2.0
// The threshold of Otsu.
#include "tests/arith/elementwise.h"

using namespace test;

namespace {

const auto otsu = [](const Zet8u* p, int step, ZetiSize roi, Zet8u* t) {
    return call_member("zetiComputeThreshold_Otsu_8u_C1R", p, step, roi, t);
};

// The rule, step by step.
Zet8u reference(const Image<Zet8u>& image) {
    double count[256] = {}, total = 0, weighted = 0, w = 0, m = 0, best = 0, result = 0;
    for (const auto [y, x] : image.samples()) count[image.at(y, x)] += 1;
    for (int i = 0; i < 256; ++i) total += count[i], weighted += (i + 0.5) * count[i]; // exact in any order
    const double r = 1 / total, mean = weighted * r;
    for (int t = 0; t < 256; ++t) {
        const double p = r * count[t];
        m = m * w;
        w = w + p;
        const double v = 1 - w;
        if (std::min(w, v) < 0x1p-23 || std::max(w, v) > 0.9999998807907104) continue;
        const double c = t + 0.5;
        m = (m + p * c) / w;
        const double d = m - (mean - w * m) / v, score = v * w * (d * d);
        if (score > best) best = score, result = c; // of all equal scores the first
    }
    return static_cast<Zet8u>(result);
}

TEST(Otsu, FollowsTheRule) {
    Random r("Otsu");
    for (int i = 0; i < 600; ++i) {
        const int width = i < 80 ? 1 + i % 40 : r.between(1, 200), modes = r.between(1, 4),
                  mode[4] = {r.between(0, 255), r.between(0, 255), r.between(0, 255), r.between(0, 255)};
        Image<Zet8u> image(r, width, r.between(1, 40), 1);
        const int spread = r.pick({0, 1, 10, 60, 255});
        for (const auto [y, x] : image.samples())
            image.set(y, x, static_cast<Zet8u>(std::clamp(mode[r.between(0, modes - 1)] + r.between(-spread, spread), 0, 255)));
        Zet8u got = 77;
        const auto run = [&] { return otsu(image.data(), image.step, {width, image.height}, &got); };
        ASSERT_EQ(under_state(i % 2 ? 0xFFC0 : plain_state, run), zetStsNoErr);
        ASSERT_EQ(int{got}, int{reference(image)}) << "image " << i;
    }
}

TEST(Otsu, OrderOfChecks) {
    const Image<Zet8u> image(64, 64, 1, 64);
    Zet8u got = 77;
    const auto list = [](Faults& faults, const Arguments& call) {
        faults.null(call).size(call).add(zetStsStepErr, call[1].as<int>(), {63, 0, -64}); // less than a row
    };
    check_order([&] { otsu(image.data(), 64, {64, 64}, &got); }, list, [&] { return got == 77; });
}

} // namespace
