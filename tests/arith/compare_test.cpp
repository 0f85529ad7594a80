// SPDX-License-Identifier: Apache-2.0
// Compare, CompareC, CompareEqualEps, CompareEqualEpsC: a mask byte per pixel.
#include "tests/arith/elementwise.h"

using namespace test;

namespace {

template <class T> struct Comparison : Elementwise<T> {
    using Result = Zet8u;
    static constexpr bool masks = true;
    int op;
    bool tolerant = false;
    Zet32f eps = 0;

    bool known() const { return op >= 0 && op <= 4; }
    bool holds(T a, T b) const {
        if (tolerant) return std::fabs(static_cast<Zet32f>(a - b)) <= eps;
        const bool each[] = {a<b, a <= b, a == b, a >= b, a> b};
        return each[op];
    }
    void pixel(const T* a, const T* b, Zet8u* d, ZetStatus&) const {
        bool all = true;
        for (int c = 0; known() && c < this->layout.colours; ++c)
            all &= this->constant ? holds(b[c], this->constants[c]) : holds(a[c], b[c]);
        if (known()) *d = all ? 255 : 0;
    }
    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (is_float<T>)
            if (tolerant) return this->two_or_constants(i, use, eps);
        this->two_or_constants(i, use, static_cast<ZetCmpOp>(op));
    }
    void prepare(Random& r, Image<T>& a, Image<T>& b) { // many samples are equal, of 4 channels even 95 in a hundred
        for (T& c : this->constants) c = r.chance(2) ? b.at(0, 0) : r.sample<T>(Random::mixed, 0);
        const int alike = r.pick({0, 50, 95}), channels = this->layout.channels;
        for (const auto [y, i] : b.samples())
            if (i % channels < this->layout.colours && r.between(0, 99) < alike)
                b.set(y, i, this->constant ? this->constants[i % channels] : a.at(y, i));
    }
    void order(Faults& faults, const Arguments& call) const { // of an unknown operator nobody is told
        faults.null(call).step(call).size(call);
        if (tolerant) faults.add(zetStsEpsValErr, call.back().as<Zet32f>(), {-1e-45f, -1.0f, -INFINITY});
    }
};

constexpr auto each_member = [](auto use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool constant : {false, true}) {
            const auto type = [&]<class T>(T) {
                for (const int op : {0, 1, 2, 3, 4, 5, -1}) use(Comparison<T>{{constant ? "CompareC" : "Compare", l, false, constant}, op});
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet16s{}), type(Zet32f{});
            for (const Zet32f eps : {0.0f, -0.0f, 1e-40f, 0.5f, 1e30f, INFINITY, NAN})
                use(Comparison<Zet32f>{{constant ? "CompareEqualEpsC" : "CompareEqualEps", l, false, constant}, 0, true, eps});
        }
};

TEST(Compare, EveryMemberAtEveryWidth) { sweep(each_member); }
TEST(Compare, OrderOfChecks) { check_orders(each_member); }
TEST(Compare, LargeDestinations) { check_large(Comparison<Zet16s>{{"CompareC", pixel_layouts[1], false, true}, zetCmpGreaterEq}); }

} // namespace
