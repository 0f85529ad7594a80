// SPDX-License-Identifier: Apache-2.0
// Differences, second operand minus first: v = b - a.
#pragma once

#include "signal/scaling.h"

namespace zeti {

struct Sub {
    template <class T> static Vec<T> saturated(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_floating_point_v<T>) return b - a;
        else return sub_saturating<T>(b, a);
    }

    // Scale 1.
    template <class T> static Vec<T> half(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_same_v<T, Zet16s>) {
            // Both biased to unsigned, a complemented: the average up is floor(v / 2) + 2^15. The saturating step keeps 65535 / 2 at 32767.
            const auto x = as_lanes<Zet16u>(a) ^ Zet16u{0x7FFF}, y = as_lanes<Zet16u>(b) ^ Zet16u{0x8000};
            const Vec<Zet16u> down = average_up(x, y);
            const Vec<Zet16u> odd = as_lanes<Zet16u>(a ^ b) & down & Zet16u{1};
            return as_lanes<T>(add_saturating<Zet16u>(down, odd) ^ Zet16u{0x8000});
        } else { // a negative difference rounds to 0 or below: 0 either way
            const Vec<T> v = sub_saturating<T>(b, a), up = average_up(v, Vec<T>{});
            return up - (v & up & T{1});
        }
    }

    static Pair2<Zet16u> wide(Vec<Zet8u> a, Vec<Zet8u> b) { return widen<Zet8u>(sub_saturating<Zet8u>(b, a)); }
    static Pair2<Zet32s> wide(Vec<Zet16s> a, Vec<Zet16s> b) {
        const auto pairs = interleave<Zet16s>(a, b);
        const Vec<Zet16s> signs = as_lanes<Zet16s>(splat(Zet32s{0x0001FFFF})); // -1, 1
        return {multiply_add_pairs(as_lanes<Zet16s>(pairs.low), signs), multiply_add_pairs(as_lanes<Zet16s>(pairs.high), signs)};
    }

    // v = 2 * halved + lost: b - a is b + ~a + 1, and the average of b and ~a rounded up halves that.
    static Vec<Zet32s> halved(Vec<Zet32s> a, Vec<Zet32s> b) { return (b | ~a) - ((b ^ ~a) >> 1); }
    static Vec<Zet32s> lost(Vec<Zet32s> a, Vec<Zet32s> b) { return (a ^ b) & 1; }
};

} // namespace zeti
