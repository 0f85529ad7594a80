// SPDX-License-Identifier: Apache-2.0
// Threshold and its siblings.
#include "tests/arith/elementwise.h"

using namespace test;

namespace {

enum Parameters { bound, bound_and_value, two_of_both };

template <class T> struct Thresholding : Elementwise<T> {
    Parameters kind;
    bool below;       // is what counts as beyond the bound; else above
    bool hasOperator; // and is told so
    std::array<T, 4> low{}, lowValue{}, high{}, highValue{};

    void prepare(Random& r, Image<T>&, Image<T>&) {
        const bool equal = r.chance(3);
        for (int c = 0; c < 4; ++c) {
            for (T* v : {&low[c], &lowValue[c], &high[c], &highValue[c]}) *v = r.sample<T>(Random::mixed, c);
            if (high[c] < low[c]) std::swap(low[c], high[c]);
            if (equal) high[c] = low[c];
        }
    }
    T sample(T, T v, int c, ZetStatus&) const {
        if (kind == two_of_both && v > high[c]) return highValue[c];
        const bool beyond = below ? v < low[c] : v > low[c]; // a single bound is in `low`
        return !beyond ? v : kind == bound ? low[c] : lowValue[c];
    }
    template <class I, class Use> void call(const I& i, Use use) const {
        const Elementwise<T>& base = *this;
        const ZetCmpOp op = below ? zetCmpLess : zetCmpGreater;
        const auto with = [&](auto t, auto v, auto t2, auto v2) {
            if (kind == bound) return hasOperator ? base.one(i, use, t, op) : base.one(i, use, t);
            if (kind == bound_and_value) return hasOperator ? base.one(i, use, t, v, op) : base.one(i, use, t, v);
            base.one(i, use, t, v, t2, v2);
        };
        if (base.layout.channels == 1) with(low[0], lowValue[0], high[0], highValue[0]);
        else with(low.data(), lowValue.data(), high.data(), highValue.data());
    }

    void order(Faults& faults, const Arguments& call) {
        const auto operators = [&] { faults.add(zetStsNotSupportedModeErr, call.back().as<int>(), {-1, 1, 2, 3, 5, INT_MAX}); };
        if (hasOperator && kind == bound_and_value) operators();
        faults.null(call).size(call).step(call);
        if (hasOperator && kind == bound) operators();
        if (kind != two_of_both) return;
        const bool alone = this->layout.channels == 1; // bounds that cross on one channel, be it by a denormal
        T& lower = alone ? call.end()[-4].template as<T>() : low[this->layout.colours - 1];
        T& upper = alone ? call.end()[-2].template as<T>() : high[this->layout.colours - 1];
        lower = upper = is_float<T> ? static_cast<T>(1e-40f) : T(1);
        faults.add(zetStsThresholdErr, upper, {T(0)});
    }
};

constexpr auto each_member = [](auto use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool inPlace : {false, true}) {
            const auto type = [&]<class T>(T) {
                if (std::string(l.name) != "C4") use(Thresholding<T>{{"Threshold_LTValGTVal", l, inPlace}, two_of_both, true, false});
                for (const bool below : {false, true}) {
                    use(Thresholding<T>{{below ? "Threshold_LTVal" : "Threshold_GTVal", l, inPlace}, bound_and_value, below, false});
                    if (std::string(l.name) == "C4") continue; // which has these two alone
                    use(Thresholding<T>{{"Threshold", l, inPlace}, bound, below, true});
                    use(Thresholding<T>{{"Threshold_Val", l, inPlace}, bound_and_value, below, true});
                    use(Thresholding<T>{{below ? "Threshold_LT" : "Threshold_GT", l, inPlace}, bound, below, false});
                }
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet16s{}), type(Zet32f{});
        }
};

TEST(Threshold, EveryMemberAtEveryWidth) { sweep(each_member); }
TEST(Threshold, OrderOfChecks) { check_orders(each_member); }
// What is not beyond a bound keeps its bits: NaNs with all they carry, and zeros of either sign.
TEST(Threshold, FloatsKeepTheirBits) {
    Image<Zet32u> from(7, 1, 1, 28), to(7, 1, 1, 28); // floats that no test code moves about
    const Zet32u bits[] = {0x7FC00000, 0xFFC12345, 0x7F800001, 0xFF9ABCDE, 0x00000000, 0x80000000, 0x7FFFFFFF};
    for (int x = 0; x < 7; ++x) from.set(0, x, bits[x]), to.expect(0, x, bits[x]);
    const auto* const src = reinterpret_cast<const Zet32f*>(from.data());
    auto* const dst = reinterpret_cast<Zet32f*>(to.data());
    const auto check = [&](const char* name, auto... bounds) {
        std::memset(dst, 1, 28);
        call_member(name, src, 28, dst, 28, ZetiSize{7, 1}, bounds...);
        EXPECT_TRUE(to.intact()) << name;
    };
    for (const Zet32f low : {0.0f, -0.0f, Zet32f(NAN)}) {
        for (const Zet32f high : {0.0f, -0.0f, Zet32f(NAN)}) check("zetiThreshold_LTValGTVal_32f_C1R", low, 1.0f, high, 1.0f);
        check("zetiThreshold_32f_C1R", low, zetCmpLess), check("zetiThreshold_32f_C1R", low, zetCmpGreater);
    }
}

} // namespace
