// SPDX-License-Identifier: Apache-2.0
#include "tests/arith/arith.h"

using namespace test;

namespace {

TEST(Arithmetic, EveryMemberAtEveryScaleAndWidth) { sweep(each_arith); }
TEST(Arithmetic, OrderOfChecks) { check_orders(each_arith); }
TEST(Arithmetic, OverlappingRows) { check_overlap(each_arith); }

TEST(Arithmetic, LargeDestinations) {
    check_large(Arith<Zet8u>(Op::Add, false));
    check_large(Arith<Zet16s>(Op::Mul, true, false, pixel_layouts[1]));
    check_large(Arith<Zet32f>(Op::Sub, false, true, pixel_layouts[2]));
    check_large(Arith<Zet16u>(Op::Div, true, false, pixel_layouts[3]));
    check_large(Arith<Zet16s>(Op::Add, false, false, pixel_layouts[3]));
}

// At scales from low to high and at extremes.
template <class T> void pairs(const std::vector<T>& values, int low, int high, int by = 1) {
    std::vector<int> scales = {INT_MIN, -1000, INT_MAX};
    for (int s = low; s <= high; s += by) scales.push_back(s);
    std::vector<T> divisors;
    std::copy_if(values.begin(), values.end(), std::back_inserter(divisors), [](T v) { return !is_zero(v); });
    for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
        for (const bool constant : {false, true})
            for (const int s : scales) {
                Arith<T> f(op, constant);
                f.s = s;
                ASSERT_TRUE(check_pairs(f, constant && op == Op::Div ? divisors : values, values));
            }
}

// Bounds, powers of two and their neighbours.
template <class T> std::vector<T> boundaries() {
    std::vector<T> v;
    for (int k = 0; k < 8 * static_cast<int>(sizeof(Real<T>)); ++k)
        for (const int near : {-1, 0, 1})
            for (const int sign : {1, -1}) {
                T value = number<T>(static_cast<int>(sign * (std::int64_t{1} << k) + near));
                if constexpr (is_complex<T>) value.im = v.empty() ? value.re : v[v.size() * 5 / 7].re;
                v.push_back(value);
            }
    return v;
}

TEST(Arithmetic, EveryPairOf8u) { pairs(all_values<Zet8u>(), -16, 18); }
TEST(Arithmetic, EveryPairOfBoundaries) {
    pairs(boundaries<Zet16u>(), -34, 34), pairs(boundaries<Zet16s>(), -34, 34);
    pairs(boundaries<Zet16sc>(), -34, 35, 3), pairs(boundaries<Zet32sc>(), -33, 66, 3);
}

// An estimated quotient is the same wherever its pixel stands in its row.
TEST(Arithmetic, EstimatedQuotientsDoNotDependOnThePlace) {
    Arith<Zet32f> f(Op::Div, false);
    Random r("place");
    Image<Zet32f> a(64, 1, 1, 256), b(64, 1, 1, 256);
    f.prepare(r, a, b);
    for (int x = 0; x < 64; ++x) a.set(0, x, a.at(0, x) == 0 ? 3 : a.at(0, x)); // four pixels with a zero among them are divided exactly
    const auto run = [&](int from, int width, float* d) {
        test::run(f, Operands<const float*, float*>{a.data() + from, 256, b.data() + from, 256, d, 256, {width, 1}});
    };
    float alone[64];
    for (int x = 0; x < 64; ++x) run(x, 1, &alone[x]);
    for (int from = 0; from < 20; ++from)
        for (int width = 1; width <= 40; ++width) {
            Image<Zet32f> d(r, width, 1, 1);
            for (int x = 0; x < width; ++x) d.expect(0, x, alone[from + x]);
            run(from, width, d.data());
            ASSERT_TRUE(d.intact()) << from;
        }
}

} // namespace
