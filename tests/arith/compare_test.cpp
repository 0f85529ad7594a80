// SPDX-License-Identifier: Apache-2.0
// Compare, CompareC, CompareEqualEps, CompareEqualEpsC: a mask byte per pixel.
#include "tests/arith/pixelwise.h"

using namespace test;

namespace {

template <class T> struct Comparison {
    bool tolerant, constant;
    ZetCmpOp op;
    Zet32f eps;
    PixelLayout layout;

    std::string family() const { return std::string(tolerant ? "CompareEqualEps" : "Compare") + (constant ? "C" : ""); }
    std::string name() const { return "zeti" + family() + "_" + token<T>() + "_" + layout.name + "R"; }
    bool known() const { return tolerant || (op >= 0 && op <= 4); }
    bool holds(T a, T b) const {
        if (tolerant) return std::fabs(static_cast<Zet32f>(a - b)) <= eps;
        const bool each[] = {a<b, a <= b, a == b, a >= b, a> b};
        return each[op];
    }
    template <class Use> void call(const Image<T>& a, const Image<T>& b, const T* constants, Image<Zet8u>& d, ZetiSize roi, Use use) const {
        const T *const first = a.data(), *const second = b.data();
        const auto operands = [&](auto parameter) {
            if (!constant) return use(first, int{a.step}, second, int{b.step}, d.data(), int{d.step}, roi, parameter);
            by_layout(layout, constants, [&](auto v) { use(first, int{a.step}, v, d.data(), int{d.step}, roi, parameter); });
        };
        if constexpr (is_float<T>) tolerant ? operands(eps) : operands(op);
        else operands(op);
    }
};

// The mask of one call on images that are equal in many samples. False after a failure.
template <class T> bool check(const Comparison<T>& f, Random& r, int width, int height, unsigned state = 0x1F80, Checksum* sum = nullptr) {
    const int channels = f.layout.channels;
    Image<T> a(r, width, height, channels), b(r, width, height, channels);
    Image<Zet8u> d(r, width, height, 1);
    T constants[4];
    for (int c = 0; c < 4; ++c) constants[c] = r.pick({a.at(0, c % channels), r.sample<T>(Random::mixed, c)});
    const int alike = r.pick({0, 50, 95});
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < a.row_samples(); ++i) {
            const bool alpha = i % channels >= f.layout.colours;
            if (!alpha && r.between(0, 99) < alike) f.constant ? a.set(y, i, constants[i % channels]) : b.set(y, i, a.at(y, i));
        }
    for (int y = 0; y < height && f.known(); ++y)
        for (int x = 0; x < width; ++x) {
            bool all = true;
            for (int c = 0; c < f.layout.colours; ++c)
                all &= f.holds(a.at(y, x * channels + c), f.constant ? constants[c] : b.at(y, x * channels + c));
            d.expect(y, x, all ? 255 : 0);
        }
    ZetStatus status = zetStsNoErr;
    unsigned after = 0;
    f.call(a, b, constants, d, {width, height}, [&](auto... arguments) {
        const auto function = member<ZetStatus(decltype(arguments)...)>(f.name());
        _mm_setcsr(state);
        status = function(arguments...);
        after = _mm_getcsr();
        _mm_setcsr(0x1F80);
    });
    if (sum) sum->add(d);
    const testing::AssertionResult good = d.intact();
    EXPECT_TRUE(good) << f.name() << ", operator " << f.op << ", eps " << f.eps;
    EXPECT_EQ(status, zetStsNoErr) << f.name();
    EXPECT_TRUE(a.intact() && b.intact()) << f.name() << " writes to a source";
    EXPECT_EQ(after, state) << f.name();
    return good && status == zetStsNoErr;
}

template <class Use> void each_member(Use use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool constant : {false, true}) {
            const auto type = [&]<class T>(T) {
                for (const int op : {0, 1, 2, 3, 4, 5, -1, INT_MIN, INT_MAX}) use(Comparison<T>{false, constant, ZetCmpOp(op), 0, l});
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet16s{}), type(Zet32f{});
            for (const Zet32f eps : {0.0f, -0.0f, 1e-40f, 0.5f, 1e30f, INFINITY, NAN})
                use(Comparison<Zet32f>{true, constant, zetCmpEq, eps, l});
        }
}

TEST(Compare, EveryMemberAtEveryWidth) {
    std::map<std::string, Checksum> sums;
    each_member([&](const auto& f) {
        Random r(f.name() + std::to_string(f.op) + text(f.eps));
        Checksum* const sum = &sums[f.family()];
        for (int width = 1; width <= 40; ++width)
            if (!check(f, r, width, r.between(1, 3), 0x1F80, sum)) return;
        for (const int width : {47, 48, 49, 63, 64, 65, 200, 1023, 3073})
            if (!check(f, r, width, 2, 0x1F80, sum)) return;
        for (const unsigned state : {0x3F80U, 0x7F80U, 0x9FC0U, 0xFFC0U, 0x1D00U}) // rounding, flush and denormals to zero, traps
            if (!check(f, r, r.between(1, 40), 3, state)) return;
    });
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
}

// Each of the three failing channels of each of 16 pixels turns off its own pixel and no other.
TEST(Compare, OneChannelOfOnePixel) {
    for (const PixelLayout& l : pixel_layouts)
        for (int i = 0; i < 16 * l.channels; ++i) {
            Image<Zet8u> a(16, 1, l.channels, 0), b(16, 1, l.channels, 0), d(16, 1, 1, 0);
            for (int k = 0; k < 16 * l.channels; ++k) a.set(0, k, 7), b.set(0, k, k == i ? 6 : 7);
            for (int x = 0; x < 16; ++x) d.expect(0, x, x == i / l.channels && i % l.channels < l.colours ? 0 : 255);
            const auto function = member<ZetStatus(const Zet8u*, int, const Zet8u*, int, Zet8u*, int, ZetiSize, ZetCmpOp)>(
                std::string("zetiCompare_8u_") + l.name + "R");
            EXPECT_EQ(function(a.data(), 64, b.data(), 64, d.data(), 16, ZetiSize{16, 1}, zetCmpEq), zetStsNoErr);
            ASSERT_TRUE(d.intact()) << l.name << ", sample " << i;
        }
}

TEST(Compare, OrderOfChecks) {
    each_member([]<class T>(const Comparison<T>& f) {
        if (!f.known()) return;
        Random r(f.name());
        Image<T> a(r, 3, 2, f.layout.channels), b(r, 3, 2, f.layout.channels);
        Image<Zet8u> d(r, 3, 2, 1);
        const T constants[4] = {};
        f.call(a, b, constants, d, {3, 2}, [&](auto... arguments) {
            const std::tuple call(arguments...);
            using Arguments = std::tuple<decltype(arguments)...>;
            constexpr std::size_t last = sizeof...(arguments) - 1;
            auto errors = common_errors(call);
            if constexpr (std::is_same_v<std::tuple_element_t<last, Arguments>, ZetCmpOp>) {
                for (const int bad : {-1, 5}) errors.push_back({zetStsNoErr, [=](Arguments& v) { std::get<last>(v) = ZetCmpOp(bad); }});
            } else {
                for (const float bad : {-1e-45f, -1.0f, -INFINITY})
                    errors.push_back({zetStsEpsValErr, [=](Arguments& v) { std::get<last>(v) = bad; }});
            }
            for (const unsigned state : {0x1F80U, 0x9FC0U}) { // denormals as zeros: a negative one is negative all the same
                _mm_setcsr(state);
                expect_order(f.name(), call, {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr, zetStsEpsValErr, zetStsNoErr}, errors,
                             [&] { return d.intact(); });
                _mm_setcsr(0x1F80);
            }
        });
    });
}

TEST(Compare, LargeDestinations) {
    Random r("large");
    check(Comparison<Zet8u>{false, false, zetCmpLess, 0, pixel_layouts[0]}, r, 4099, 4096);
    check(Comparison<Zet16s>{false, true, zetCmpGreaterEq, 0, pixel_layouts[1]}, r, 4099, 4096);
}

} // namespace
