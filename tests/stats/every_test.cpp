// SPDX-License-Identifier: Apache-2.0
// MaxEvery, MinEvery: the larger or the smaller of two samples, in place.
#include "tests/arith/pixelwise.h"

using namespace test;

namespace {

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
