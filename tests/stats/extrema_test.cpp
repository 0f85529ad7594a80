// SPDX-License-Identifier: Apache-2.0
// MaxEvery, MinEvery: the larger or the smaller of two samples, in place. Where scans for extrema, and for the largest magnitude, stop.
#include "tests/arith/elementwise.h"
#include "tests/stats/reduction.h"

using namespace test;

namespace {

template <class T> struct Every : Elementwise<T> {
    bool greatest;

    T sample(T a, T b, int, ZetStatus&) const { return (greatest ? a > b : a < b) ? a : b; } // b where they are equal or do not compare
    template <class I, class Use> void call(const I& i, Use use) const { use(i.a, i.aStep, i.d, i.dStep, i.roi); }
};

constexpr auto each_member = [](auto use) {
    const auto members = [&](auto... v) {
        for (const PixelLayout& l : pixel_layouts)
            for (const bool greatest : {true, false})
                (use(Every<decltype(v)>{{greatest ? "MaxEvery" : "MinEvery", l, true}, greatest}), ...);
    };
    members(Zet8u{}, Zet16u{}, Zet16s{}, Zet32f{});
};

TEST(Every, EveryMemberAtEveryWidth) { sweep(each_member); }
TEST(Every, OrderOfChecks) { check_orders(each_member); }

// A row that holds the limit of the type ends the search, once every colour channel has seen it: the rows below lie behind a fence. On
// the other side, the limit on all channels but one ends nothing.
TEST(Extrema, StopAtTheLimit) {
    for (const Reduction& m : reductions()) {
        const bool both = m.has("MinMax"), norm = m.name() == "zetiNorm_Inf_16s_C1R"; // which stops at either limit, from a width of 8 on
        if (!(m.has("Max") || m.has("Min") || norm) || m.type == Type::f32 || (both && bytes_of(m.type) == 1)) continue;
        const int n = m.layout.channels;
        for (const int width : {2, 3, 8, 16, 33, 200}) {
            if (norm && width < 8) continue;
            Samples image(m.type, width, 2, n, width * n * bytes_of(m.type));
            for (const auto [y, i] : image.samples()) image.put(y, i, 50);
            for (int c = 0; c < m.layout.colours; ++c) { // the last channel in the second row alone
                if (m.has("Min")) image.put(c == m.layout.colours - 1, c, lowest(m.type));
                if (m.has("Max")) image.put(c == m.layout.colours - 1, (width - 1) * n + c, highest(m.type));
            }
            if (norm) image.put(1, width / 2, width % 2 ? lowest(m.type) : highest(m.type));
            Call call(m, image.data(), image.step, nullptr, 0, {width, 1000});
            ZetStatus status;
            ASSERT_EQ(call.run(), zetStsNoErr);
            ASSERT_TRUE(call.results == expected(call, image, image, status)) << m.name() << ' ' << width;
        }
    }
}

} // namespace
