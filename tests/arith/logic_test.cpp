// SPDX-License-Identifier: Apache-2.0
// And, Or, Xor, Not and their constant forms, shifts, Complement.
#include "tests/arith/pixelwise.h"

using namespace test;

namespace {

enum class Bits { And, Or, Xor, Not };

template <class T> struct Logic {
    using type = T;
    Bits op;
    bool constant;
    PixelLayout layout;
    bool inPlace;
    T constants[4];

    std::string family() const {
        const std::string words[] = {"And", "Or", "Xor", "Not"};
        return words[static_cast<int>(op)] + (constant && op != Bits::Not ? "C" : "");
    }
    std::string name() const { return std::string("zeti") + family() + "_" + token<T>() + "_" + layout.name + (inPlace ? "IR" : "R"); }
    std::string parameters() const { return std::string("with ") + text(constants[0]); }
    std::vector<ZetStatus> order() const {
        if (!constant && layout.channels == layout.colours && layout.channels > 1) return {zetStsSizeErr, zetStsNullPtrErr, zetStsStepErr};
        return {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr};
    }
    void prepare(Random& r) {
        for (T& c : constants) c = r.sample<T>(Random::mixed, 0);
    }
    T expected(T a, T b, int c) const {
        const T other = constant ? constants[c] : a;
        return static_cast<T>(op == Bits::And ? b & other : op == Bits::Or ? b | other : op == Bits::Xor ? b ^ other : ~b);
    }
    template <class Use> void call(const Images<T>& i, Use use) const {
        if constexpr (std::is_same_v<T, Zet8u>)
            if (op == Bits::Not) return inPlace ? use(i.d, i.dStep, i.roi) : use(i.b, i.bStep, i.d, i.dStep, i.roi);
        if (!constant) return inPlace ? use(i.a, i.aStep, i.d, i.dStep, i.roi) : use(i.a, i.aStep, i.b, i.bStep, i.d, i.dStep, i.roi);
        by_layout(layout, constants, [&](auto v) { inPlace ? use(v, i.d, i.dStep, i.roi) : use(i.b, i.bStep, v, i.d, i.dStep, i.roi); });
    }
};

template <class T> struct Shift {
    using type = T;
    bool left;
    PixelLayout layout;
    bool inPlace;
    Zet32u counts[4];

    std::string family() const { return left ? "LShiftC" : "RShiftC"; }
    std::string name() const { return std::string("zeti") + family() + "_" + token<T>() + "_" + layout.name + (inPlace ? "IR" : "R"); }
    std::string parameters() const {
        std::string s = "by";
        for (int c = 0; c < layout.colours; ++c) s += ' ', s += text(counts[c]);
        return s;
    }
    std::vector<ZetStatus> order() const { return {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr}; }
    void prepare(Random& r) { // counts that differ, that agree, that are all too large
        const Zet32u bits = 8 * sizeof(T), one = r.between(0, bits + 1);
        const int kind = r.between(0, 5);
        for (Zet32u& n : counts)
            n = kind == 0   ? one
                : kind == 1 ? bits + r.between(0, 1)
                            : r.pick<Zet32u>({0, bits - 1, bits, bits + 32, 1u << 31, ~0u, Zet32u(r.between(0, bits - 1)),
                                              Zet32u(r.between(0, bits - 1))});
    }
    T expected(T, T v, int c) const { // one bit at a time
        std::int64_t x = v;
        for (Zet32u n = 0; n < counts[c] && n < 40; ++n) x = left ? static_cast<T>(static_cast<std::uint64_t>(x) * 2) : x >> 1;
        return static_cast<T>(x);
    }
    template <class Use> void call(const Images<T>& i, Use use) const {
        by_layout(layout, counts, [&](auto n) { inPlace ? use(n, i.d, i.dStep, i.roi) : use(i.b, i.bStep, n, i.d, i.dStep, i.roi); });
    }
};

template <class Use> void each_member(Use use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool inPlace : {false, true}) {
            const auto type = [&]<class T>(T) {
                for (const Bits op : {Bits::And, Bits::Or, Bits::Xor})
                    for (const bool constant : {false, true}) use(Logic<T>{op, constant, l, inPlace, {}});
                use(Shift<T>{true, l, inPlace, {}});
                use(Shift<T>{false, l, inPlace, {}});
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet32s{});
            use(Logic<Zet8u>{Bits::Not, true, l, inPlace, {}});
            use(Shift<Zet8s>{false, l, inPlace, {}});
            use(Shift<Zet16s>{false, l, inPlace, {}});
        }
}

TEST(Logic, EveryMemberAtEveryWidth) {
    std::map<std::string, Checksum> sums;
    each_member([&](const auto& f) { check_widths(f, &sums[f.family()]); });
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
}

TEST(Logic, OrderOfChecks) {
    each_member([](const auto& f) { check_order(f); });
}

TEST(Logic, LargeDestinations) {
    check_large(Logic<Zet8u>{Bits::And, false, pixel_layouts[0], false, {}});
    check_large(Logic<Zet16u>{Bits::Xor, true, pixel_layouts[1], false, {}});
    check_large(Shift<Zet32s>{false, pixel_layouts[1], false, {}});
}

// Every sample of 8 and 16 bits by every count, alone and as one of four that differ.
template <class T> void every_shift(bool left) {
    constexpr int bits = 8 * sizeof(T), samples = 1 << bits;
    Image<T> b(samples, 1, 1, 0), d(samples, 1, 1, 0);
    for (int i = 0; i < samples; ++i) b.set(0, i, static_cast<T>(i));
    for (const PixelLayout& l : {pixel_layouts[0], pixel_layouts[2]})
        for (int n = 0; n <= bits + 2; ++n) {
            const Shift<T> f{left, l, false, {Zet32u(n), Zet32u(bits - 1 - n % bits), Zet32u(n), Zet32u(n + 1)}};
            for (int i = 0; i < samples; ++i) d.expect(0, i, f.expected(0, b.at(0, i), i % l.channels));
            f.call({nullptr, 0, b.data(), samples * bits, d.data(), samples * bits, {samples / l.channels, 1}},
                   [&](auto... a) { member<ZetStatus(decltype(a)...)>(f.name())(a...); });
            ASSERT_TRUE(d.intact()) << f.name() << ' ' << f.parameters();
        }
}
TEST(Shift, EverySampleByEveryCount) {
    every_shift<Zet8u>(true), every_shift<Zet16u>(true);
    every_shift<Zet8u>(false), every_shift<Zet8s>(false), every_shift<Zet16u>(false), every_shift<Zet16s>(false);
}

TEST(Complement, SignAndMagnitude) {
    const auto function = member<ZetStatus(Zet32s*, int, ZetiSize)>("zetiComplement_32s_C1IR");
    Random r("Complement");
    for (int width = 1; width <= 40; ++width) {
        Image<Zet32s> d(r, width, 3, 1);
        d.set(0, 0, -1), d.set(1, 0, INT_MIN), d.set(2, 0, INT_MIN + 1);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < width; ++x)
                if (const std::int64_t v = d.at(y, x); v < 0 && v != INT_MIN)
                    d.expect(y, x, static_cast<Zet32s>(0x80000000u + static_cast<std::uint32_t>(-v)));
        EXPECT_EQ(function(d.data(), d.step, ZetiSize{width, 3}), zetStsNoErr);
        ASSERT_TRUE(d.intact());
    }
    Image<Zet32s> d(r, 3, 2, 1);
    const std::tuple call(d.data(), int{d.step}, ZetiSize{3, 2});
    expect_order("zetiComplement_32s_C1IR", call, {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr}, common_errors(call),
                 [&] { return d.intact(); });
}

} // namespace
