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

    // Scale 1 on unsigned types: a negative difference rounds to 0 or below, which is 0 either way.
    template <class T> static Vec<T> half(Vec<T> a, Vec<T> b) {
        const Vec<T> v = sub_saturating<T>(b, a), up = average_up(v, Vec<T>{});
        return up - (v & up & T{1});
    }

    // Signed types: v = 2 * halved + bit 0 of odd().
    template <class T> static Vec<T> halved(Vec<T> a, Vec<T> b) { return ((a ^ b) >> 1) - (a & ~b); }
    template <class T> static Vec<T> odd(Vec<T> a, Vec<T> b) { return a ^ b; }
};

} // namespace zeti
