// SPDX-License-Identifier: Apache-2.0
// Sums. v = a + b has one bit more than the samples; `wide` lanes hold it, `half` needs no wider lane.
#pragma once

#include "signal/scaling.h"

namespace zeti {

struct Add {
    template <class T> static Vec<T> saturated(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_floating_point_v<T>) return a + b;
        else return add_saturating<T>(a, b);
    }

    // Scale 1. The average rounded up is one too high where the sum is odd and the average is.
    template <class T> static Vec<T> half(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_same_v<T, Zet16s>) { // biased to unsigned; the bias is even and keeps parities
            const auto x = as_lanes<Zet16u>(a) ^ Zet16u{0x8000}, y = as_lanes<Zet16u>(b) ^ Zet16u{0x8000};
            return as_lanes<T>(half<Zet16u>(x, y) ^ Zet16u{0x8000});
        } else {
            const Vec<T> up = average_up(a, b);
            return up - ((a ^ b) & up & T{1});
        }
    }

    static Pair2<Zet16u> wide(Vec<Zet8u> a, Vec<Zet8u> b) {
        const auto x = widen<Zet8u>(a), y = widen<Zet8u>(b);
        return {x.low + y.low, x.high + y.high};
    }
    static Pair2<Zet32s> wide(Vec<Zet16s> a, Vec<Zet16s> b) {
        const auto pairs = interleave<Zet16s>(a, b);
        const Vec<Zet16s> ones = splat(Zet16s{1});
        return {multiply_add_pairs(as_lanes<Zet16s>(pairs.low), ones), multiply_add_pairs(as_lanes<Zet16s>(pairs.high), ones)};
    }
    static Pair2<Zet32u> wide(Vec<Zet16u> a, Vec<Zet16u> b) {
        const auto x = widen<Zet16u>(a), y = widen<Zet16u>(b);
        return {x.low + y.low, x.high + y.high};
    }

    // v = 2 * halved + lost.
    static Vec<Zet32s> halved(Vec<Zet32s> a, Vec<Zet32s> b) { return (a & b) + ((a ^ b) >> 1); }
    static Vec<Zet32s> lost(Vec<Zet32s> a, Vec<Zet32s> b) { return (a ^ b) & 1; }
};

} // namespace zeti
