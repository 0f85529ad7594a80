// SPDX-License-Identifier: Apache-2.0
// Products: v = a * b.
#pragma once

#include "signal/scaling.h"

namespace zeti {

struct Mul {
    static Vec<Zet32f> saturated(Vec<Zet32f> a, Vec<Zet32f> b) { return a * b; }
    static Vec<Zet8u> saturated(Vec<Zet8u> a, Vec<Zet8u> b) {
        const auto v = wide(a, b); // up to 255 * 255, which the narrowing would read as negative
        return narrow_to_8u(clamp(v.low), clamp(v.high));
    }
    static Vec<Zet16s> saturated(Vec<Zet16s> a, Vec<Zet16s> b) {
        const auto v = wide(a, b);
        return narrow_to_16s(v.low, v.high);
    }
    static Vec<Zet16u> saturated(Vec<Zet16u> a, Vec<Zet16u> b) { return a * b | ~as_lanes<Zet16u>(multiply_high(a, b) == 0); }

    static Pair2<Zet16u> wide(Vec<Zet8u> a, Vec<Zet8u> b) {
        const auto x = widen<Zet8u>(a), y = widen<Zet8u>(b);
        return {x.low * y.low, x.high * y.high};
    }
    static Pair2<Zet32s> wide(Vec<Zet16s> a, Vec<Zet16s> b) { // low halves wrap: unsigned
        return interleave<Zet16s>(as_lanes<Zet16s>(as_lanes<Zet16u>(a) * as_lanes<Zet16u>(b)), multiply_high(a, b));
    }
    static Pair2<Zet32u> wide(Vec<Zet16u> a, Vec<Zet16u> b) { return interleave<Zet16u>(a * b, multiply_high(a, b)); }

private:
    static Vec<Zet16u> clamp(Vec<Zet16u> v) { return v - sub_saturating<Zet16u>(v, splat(Zet16u{255})); }
};

// 8u times one constant c for all samples, s = 0. Samples up to 255 / c have products of one byte, so that one 16-bit product gives
// two of them; larger samples saturate.
class MulByConstant8u {
public:
    explicit MulByConstant8u(Zet8u c) : limit_(splat(static_cast<Zet8u>(255 / c))), c_(splat(Zet16u{c})) {}
    template <class A> Vec<Zet8u> operator()(const A&, Vec<Zet8u> b) const {
        const Vec<Zet8u> low = min<Zet8u>(b, limit_);
        return as_lanes<Zet8u>(as_lanes<Zet16u>(low) * c_) | ~as_lanes<Zet8u>(low == b);
    }

private:
    Vec<Zet8u> limit_;
    Vec<Zet16u> c_;
};

} // namespace zeti
