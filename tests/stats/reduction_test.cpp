// SPDX-License-Identifier: Apache-2.0
// Sum, Mean, the norms, the extrema and CountInRange: every member against plain loops, and its checks.
#include "tests/stats/reduction.h"

using namespace test;

namespace {

// Floats whose sums or differences are taken are small whole numbers: every path computes with them exactly. Else any will do, infinities and
// NaN as well, but for -0, which equals the other zero. Of integers half may be few values: many ties.
void fill(Random& r, const Reduction& m, Samples& image) {
    const bool ties = r.chance(2), whole = m.sums() || m.two();
    const double filler = r.pick({NAN, INFINITY, -INFINITY});
    const int special = m.type == Type::f32 ? r.between(0, 9) : 9;
    for (const auto [y, i] : image.samples())
        if (m.type != Type::f32 && ties && r.chance(2)) image.put(y, i, r.between(3, 90));
        else if (m.type == Type::f32) image.put(y, i, whole ? r.between(-60, 60) : special == 0 ? filler : image.value(y, i) + 0.0);
}

bool check(const Reduction& m, Random& r, int width, int height, bool zeros = false) {
    const int channels = m.layout.channels, colours = m.layout.colours;
    const int up = m.stepped() ? 1 : -1, same = m.stepped() ? 1 : 0;
    Samples a(r, m.type, width, height, channels, {1, up, same}), b(r, m.type, width, height, channels);
    fill(r, m, a), fill(r, m, b);
    for (int c = 0; c < colours; ++c) b.put(0, c, 3); // never zero by accident
    for (int y = 0; zeros && y < height; ++y)
        for (int x = 0; x < width; ++x) b.put(y, x * channels + colours - 1, 0);
    Call call(m, a.data(), a.step, b.data(), b.step, {width, height});
    for (int c = 0; c < colours; ++c) { // bounds of samples; all of them, if they are many
        const auto any = [&] { return a.value(r.between(0, height - 1), r.between(0, width - 1) * channels + c); };
        double low = any(), high = r.chance(3) ? low : any();
        if (width > 1000 || high < low) std::swap(low, high);
        if (width > 1000) low = lowest(m.type), high = highest(m.type);
        store(m.type, call.bounds[0] + c * bytes_of(m.type), low), store(m.type, call.bounds[1] + c * bytes_of(m.type), high);
    }
    ZetStatus status;
    const Results wanted = expected(call, a, b, status);
    const int asked = standin.thread_queries;
    const ZetStatus given = under_state(r.pick({plain_state, 0x7F80U, 0x9FC0U, 0xFFC0U}), [&] { return call.run(); });
    EXPECT_EQ(given, status) << m.name();
    EXPECT_EQ(standin.thread_queries, asked) << m.name();
    EXPECT_TRUE(call.results == wanted) << m.name() << ", " << width << " x " << height << ", hint " << m.hint << ": "
                                        << call.results.value(0) << ", not " << wanted.value(0)
                                        << " in the first channel (if it is a double)";
    return a.intact() && b.intact() && given == status && call.results == wanted;
}

// Wide integers are summed on both sides of every length at which lanes are emptied. Many samples are counted in lanes of 8 bits.
bool check_widths(const Reduction& m) {
    Random r(m.name() + std::to_string(m.hint));
    for (int width = 1; width <= 60; ++width)
        if (!check(m, r, width, r.between(1, width < 40 ? 9 : 3))) return false;
    for (const int width : {63, 64, 65, 127, 200, 257, 1000})
        if (!check(m, r, width, 2) || (m.two() && !check(m, r, width / 9, 2, true))) return false;
    if (m.counts()) return check(m, r, 1500, 70);
    for (const int width : {255, 256, 511, 513, 1023, 1025, 32767, 32768, 32769, 65535, 65536, 65537, 70001})
        if (m.type != Type::f32 && (m.has("Sum") || m.has("Mean")) && !check(m, r, width, 2)) return false;
    return true;
}

TEST(Reductions, EveryMemberAtEveryWidth) {
    for (const Reduction& m : reductions()) EXPECT_TRUE(check_widths(m)) << m.name();
}

// Sum, Mean and the extrema take any step. 16u looks at steps before sizes, and its L1 norm at the step before all.
TEST(Reductions, ChecksInTheirOrder) {
    for (const Reduction& m : reductions()) {
        const Zet32f samples[16] = {};
        Call call(m, samples, 16, samples, 16, {2, 2});
        const bool early = m.family == "Norm_L1" && m.type == Type::u16, before = m.type == Type::u16 || m.counts();
        const int place = !m.stepped() ? 0 : early ? 1 : before ? 2 : 3; // of the steps
        const auto list = [&](Faults& faults, const Arguments& arguments) {
            if (place == 1) faults.step(arguments);
            faults.null(arguments);
            if (place == 2) faults.step(arguments);
            faults.size(arguments);
            if (place == 3) faults.step(arguments);
            with_type(m.type, [&]<class T>(T) { // bounds that cross in one channel
                for (int c = 0; m.counts() && c < m.layout.colours; ++c)
                    faults.add(zetStsRangeErr,
                               m.layout.channels == 1 ? arguments.end()[-2].as<T>() : reinterpret_cast<T*>(call.bounds[0])[c], {T(6)});
            });
        };
        check_order([&] { call.run(); }, list, [&] { return call.results == Results(); });
    }
}

} // namespace
