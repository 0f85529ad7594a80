// SPDX-License-Identifier: Apache-2.0
// MaxEvery, MinEvery: the larger or the smaller of two samples, in place.
#include "tests/arith/elementwise.h"

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

} // namespace
