// SPDX-License-Identifier: Apache-2.0
// Sums: v = a + b.
#pragma once

#include "signal/scaling.h"

namespace zeti {

struct Add {
    template <class T> static Vec<T> saturated(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_floating_point_v<T>) return a + b;
        else return add_saturating<T>(a, b);
    }

    // Scale 1 on unsigned types. The average rounded up is one too high where the sum is odd and the average is.
    template <class T> static Vec<T> half(Vec<T> a, Vec<T> b) {
        const Vec<T> up = average_up(a, b);
        return up - ((a ^ b) & up & T{1});
    }

    // Signed types: v = 2 * halved + bit 0 of odd().
    template <class T> static Vec<T> halved(Vec<T> a, Vec<T> b) { return (a & b) + ((a ^ b) >> 1); }
    template <class T> static Vec<T> odd(Vec<T> a, Vec<T> b) { return a ^ b; }
};

} // namespace zeti
