// SPDX-License-Identifier: Apache-2.0
// Where scans for extrema stop; MaxEvery, MinEvery.
#include "tests/stats/reduction.h"

using namespace test;

namespace {

// A row that holds the limit of the type ends the search, once every colour channel has seen it: the rows below lie behind a fence. On
// the other side, the limit on all channels but one ends nothing.
TEST(Extrema, StopAtTheLimit) {
    for (const Reduction& m : reductions()) {
        const bool both = m.has("MinMax");
        if (!(m.has("Max") || m.has("Min")) || m.type == Type::f32 || (both && bytes_of(m.type) == 1)) continue;
        const int n = m.layout.channels;
        for (const int width : {2, 3, 8, 16, 33, 200}) {
            Samples image(m.type, width, 2, n, width * n * bytes_of(m.type));
            for (int i = 0; i < 2 * image.row; ++i) image.put(i / image.row, i % image.row, 50);
            for (int c = 0; c < m.layout.colours; ++c) { // the last channel in the second row alone
                if (m.has("Min")) image.put(c == m.layout.colours - 1, c, lowest(m.type));
                if (m.has("Max")) image.put(c == m.layout.colours - 1, (width - 1) * n + c, highest(m.type));
            }
            Call call(m, image.data(), image.step, nullptr, 0, {width, 1000});
            ZetStatus status;
            ASSERT_EQ(call.run(), zetStsNoErr);
            ASSERT_TRUE(call.results == expected(call, image, image, status)) << m.name() << ' ' << width;
        }
    }
}

// --- MaxEvery, MinEvery --------------------------------------------------------------------------------------------------

template <class T> struct Every {
    using type = T;
    bool greatest;
    PixelLayout layout;
    static constexpr bool inPlace = true;

    std::string name() const { return std::string(greatest ? "zetiMaxEvery_" : "zetiMinEvery_") + token<T>() + "_" + layout.name + "IR"; }
    static std::string parameters() { return ""; }
    static std::vector<ZetStatus> order() { return {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr}; }
    static void prepare(Random&) {}
    T expected(T a, T b, int) const { return (greatest ? a > b : a < b) ? a : b; } // the second one where they are equal or do not compare
    template <class Use> void call(const Images<T>& i, Use use) const { use(i.a, i.aStep, i.d, i.dStep, i.roi); }
};

TEST(Every, EveryMemberAtEveryWidth) {
    for (const bool greatest : {true, false}) {
        Checksum sum;
        const auto use = [&]<class T>(T, const PixelLayout& l) {
            check_widths(Every<T>{greatest, l}, &sum), check_order(Every<T>{greatest, l});
        };
        for (const PixelLayout& l : pixel_layouts) use(Zet8u{}, l), use(Zet16u{}, l), use(Zet16s{}, l), use(Zet32f{}, l);
        EXPECT_TRUE(sum.is_known(greatest ? "MaxEvery" : "MinEvery"));
    }
}

} // namespace
