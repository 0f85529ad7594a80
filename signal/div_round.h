// SPDX-License-Identifier: Apache-2.0
// Quotients with a choice of rounding. Kernels of Div with other ways from float to integer.
#pragma once

#include "signal/div.h"

namespace zeti {

struct TowardsZero {
    static Vec<Zet32s> to_integer(Vec<Zet32f> q) { return to_int_truncated(q); }
};

template <class T> struct ToNearestAwayFromZero { // the half has the sign of the quotient
    static Vec<Zet32s> to_integer(Vec<Zet32f> q) {
        const Vec<Zet32f> half = splat(0.5f);
        if constexpr (std::is_unsigned_v<T>) return to_int_truncated(q + half);
        else return to_int_truncated(q + as_lanes<Zet32f>((as_lanes<Zet32s>(q) & min_of<Zet32s>) | as_lanes<Zet32s>(half)));
    }
};

// s above the range: 0 throughout, by a zero divisor too.
template <class T> class QuotientNothing : public Divisors<T> {
public:
    Vec<T> operator()(Vec<T> a, Vec<T>) {
        this->note(a == 0);
        return Vec<T>{};
    }
};

} // namespace zeti
