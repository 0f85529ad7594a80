// SPDX-License-Identifier: Apache-2.0
// And, Or, Xor, MulScale and their constant forms, Not, shifts, Complement.
#include "tests/arith/elementwise.h"

using namespace test;

namespace {

template <class T> struct Plain : Elementwise<T> {
    T (*rule)(T a, T b);
    bool sizeFirst = false; // on C3 and C4 of two images

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (std::is_same_v<T, Zet8u>)
            if (this->operation == "Not") return this->one(i, use);
        this->two_or_constants(i, use);
    }
    T sample(T a, T b, int c, ZetStatus&) const { return rule(this->constant ? this->constants[c] : a, b); }
    void order(Faults& faults, const Arguments& call) const {
        const bool early = sizeFirst && !this->constant && this->layout.channels > 1 && this->layout.channels == this->layout.colours;
        faults.size(call, early, early).null(call).step(call).size(call, !early, !early);
    }
};

template <class T> T full_scale_product(T a, T b) {
    constexpr int n = std::numeric_limits<T>::digits;
    const std::uint64_t t = std::uint64_t{a} * b;
    return static_cast<T>((t + 1 + (t >> n)) >> n);
}

template <class T> struct Shift : Elementwise<T> {
    bool left;
    std::array<Zet32u, 4> counts{};

    void prepare(Random& r, Image<T>&, Image<T>&) { // counts that differ, that agree, that are all too large
        const Zet32u bits = 8 * sizeof(T), one = r.between(0, bits + 1);
        const int kind = r.between(0, 5);
        for (Zet32u& n : counts) {
            const Zet32u any = r.between(0, bits - 1);
            n = kind == 0   ? one
                : kind == 1 ? bits + r.between(0, 1)
                            : r.pick<Zet32u>({0, bits - 1, bits, bits + 32, 1u << 31, ~0u, any, any});
        }
    }
    template <class I, class Use> void call(const I& i, Use use) const { this->with_constants(counts, i, use); }
    T sample(T, T v, int c, ZetStatus&) const { // one bit at a time
        auto x = static_cast<std::int64_t>(v);
        for (Zet32u n = 0; n < counts[c] && n < 40; ++n) x = left ? static_cast<T>(static_cast<std::uint64_t>(x) * 2) : x >> 1;
        return static_cast<T>(x);
    }
    void order(Faults& faults, const Arguments& call) const { faults.null(call).step(call).size(call); }
};

// Negative numbers as sign and magnitude; the lowest, which has none, stays.
struct Complement : Elementwise<Zet32s> {
    template <class I, class Use> void call(const I& i, Use use) const { use(i.d, i.dStep, i.roi); }
    Zet32s sample(Zet32s, Zet32s v, int, ZetStatus&) const {
        return v < 0 && v != INT_MIN ? static_cast<Zet32s>(0x80000000u - static_cast<std::uint32_t>(v)) : v;
    }
    void order(Faults& faults, const Arguments& call) const { faults.null(call).step(call).size(call); }
};

template <class T> Shift<T> shift(bool left, const PixelLayout& l, bool inPlace = false) {
    return {{left ? "LShiftC" : "RShiftC", l, inPlace}, left};
}

constexpr auto each_member = [](auto use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool inPlace : {false, true}) {
            const auto type = [&]<class T>(T) {
                use(Plain<T>{{"And", l, inPlace}, [](T a, T b) -> T { return a & b; }, true});
                use(Plain<T>{{"Or", l, inPlace}, [](T a, T b) -> T { return a | b; }, true});
                use(Plain<T>{{"Xor", l, inPlace}, [](T a, T b) -> T { return a ^ b; }, true});
                use(Plain<T>{{"AndC", l, inPlace, true}, [](T a, T b) -> T { return a & b; }});
                use(Plain<T>{{"OrC", l, inPlace, true}, [](T a, T b) -> T { return a | b; }});
                use(Plain<T>{{"XorC", l, inPlace, true}, [](T a, T b) -> T { return a ^ b; }});
                use(shift<T>(true, l, inPlace)), use(shift<T>(false, l, inPlace));
                if constexpr (std::is_same_v<T, Zet32s>) return;
                else {
                    use(Plain<T>{{"MulScale", l, inPlace}, full_scale_product<T>});
                    use(Plain<T>{{"MulCScale", l, inPlace, true}, full_scale_product<T>});
                }
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet32s{});
            use(Plain<Zet8u>{{"Not", l, inPlace}, [](Zet8u, Zet8u v) -> Zet8u { return ~v; }});
            use(shift<Zet8s>(false, l, inPlace)), use(shift<Zet16s>(false, l, inPlace));
        }
    use(Complement{{"Complement", pixel_layouts[0], true}});
};

TEST(Logic, EveryMemberAtEveryWidth) { sweep(each_member); }
TEST(Logic, OrderOfChecks) { check_orders(each_member); }
TEST(Logic, LargeDestination) { check_large(shift<Zet32s>(false, pixel_layouts[1])); }

// Alone and as one of four counts that differ.
template <class T> void every_shift(bool left) {
    constexpr Zet32u bits = 8 * sizeof(T);
    for (const PixelLayout& l : {pixel_layouts[0], pixel_layouts[2]})
        for (Zet32u n = 0; n <= bits + 2; ++n) {
            auto f = shift<T>(left, l);
            f.counts = {n, bits - 1 - n % bits, n, n + 1};
            ASSERT_TRUE(check_pairs(f, {T(0)}, all_values<T>()));
        }
}
TEST(MulScale, EveryPairOf8u) {
    const auto all = all_values<Zet8u>();
    check_pairs(Plain<Zet8u>{{"MulScale", pixel_layouts[0]}, full_scale_product<Zet8u>}, all, all);
    check_pairs(Plain<Zet8u>{{"MulCScale", pixel_layouts[0], false, true}, full_scale_product<Zet8u>}, all, all);
}
TEST(Shift, EverySampleByEveryCount) {
    every_shift<Zet8u>(true), every_shift<Zet16u>(true);
    every_shift<Zet8u>(false), every_shift<Zet8s>(false), every_shift<Zet16u>(false), every_shift<Zet16s>(false);
}

} // namespace
