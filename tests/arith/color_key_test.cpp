// SPDX-License-Identifier: Apache-2.0
// CompColorKey and AlphaCompColorKey.
#include "tests/arith/composition.h"

using namespace test;

namespace {

template <class T> struct Key : Elementwise<T> {
    using Elementwise<T>::layout, Elementwise<T>::constants;
    int composition; // of composition, -1 for none

    Key(const PixelLayout& l, int alphaType = -1)
        : Elementwise<T>{alphaType < 0 ? "CompColorKey" : "AlphaCompColorKey", l}, composition(alphaType) {}

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (std::is_same_v<T, Zet8u>)
            if (composition >= 0) return this->two(i, use, constants.data(), static_cast<ZetAlphaType>(composition));
        layout.channels == 1 ? this->two(i, use, constants[0]) : this->two(i, use, constants.data());
    }
    void pixel(const T* a, const T* b, T* d, ZetStatus&) const {
        const bool matches = std::equal(a, a + layout.colours, constants.begin());
        for (int c = 0; c < layout.channels; ++c)
            d[c] = matches ? b[c] : composition >= 0 ? composed(composition, c == 3, a[c], a[3], b[c], b[3]) : a[c];
    }
    // Samples of 0 and 1 match now and then. Every fifth time none does, and the result is the first source.
    void prepare(Random& r, Image<T>& a, Image<T>& b) {
        for (T& key : constants) key = static_cast<T>(r.chance(4));
        const bool mayMatch = !r.chance(5);
        for (Image<T>* image : {&b, &a})
            for (const auto [y, i] : image->samples()) {
                const int other = r.between(2, 252);
                image->set(y, i, static_cast<T>(mayMatch && image == &a && !r.chance(9) ? r.chance(4) : other));
            }
    }
    void order(Faults& faults, const Arguments& call) const {
        faults.null(call).size(call).step(call);
        if (composition >= 0) faults.add(zetStsAlphaTypeErr, call.back().as<int>(), {6, 11, 12, -1, INT_MIN});
    }
};

constexpr auto each_member = [](auto use) {
    for (const int l : {0, 1, 2}) use(Key<Zet8u>(pixel_layouts[l])), use(Key<Zet16u>(pixel_layouts[l])), use(Key<Zet16s>(pixel_layouts[l]));
    for (int type = 0; type < 6; ++type) use(Key<Zet8u>(pixel_layouts[3], type));
};

TEST(ColorKey, EveryMemberAtEveryWidth) { sweep(each_member); }
TEST(ColorKey, OrderOfChecks) { check_orders(each_member); }
TEST(ColorKey, OverlappingRows) { check_overlap(each_member); }

} // namespace
