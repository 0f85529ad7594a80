// SPDX-License-Identifier: Apache-2.0
// How a float becomes an integer, under the default float state. What does not fit 32 bits gives -2^31, and so does a NaN.
#pragma once

#include "core/simd.h"

namespace zeti {

struct ToNearest { // ties to even
    static Vec<Zet32s> to_integer(Vec<Zet32f> q) { return to_int(q); }
};

struct TowardsZero {
    static Vec<Zet32s> to_integer(Vec<Zet32f> q) { return to_int_truncated(q); }
};

// Ties away from zero. Half of one is added with the sign of q, and the sum truncated. It is the float just below 0.5 that is added:
// 0.5 plus the float just below 0.5 would be rounded to 1, and sums above 2^23 to the next even number. With it every tie is rounded up
// to the integer, everything below a tie stays below, and the result is right for every float.
// For an unsigned type T, whose results below 0 are 0, the sign does not matter.
template <class T> struct ToNearestAwayFromZero {
    static Vec<Zet32s> to_integer(Vec<Zet32f> q) {
        const Vec<Zet32f> half = splat(0x1.FFFFFEp-2f);
        if constexpr (std::is_unsigned_v<T>) return to_int_truncated(q + half);
        else return to_int_truncated(q + as_lanes<Zet32f>((as_lanes<Zet32s>(q) & min_of<Zet32s>) | as_lanes<Zet32s>(half)));
    }
};

} // namespace zeti
