// SPDX-License-Identifier: Apache-2.0
// Threshold kernels. A sample beyond a bound is replaced, every other one is copied bit for bit: a NaN compares false, and a zero
// is not beyond a zero of the other sign.
#pragma once

#include "core/simd.h"

namespace zeti {

// The two sides of a bound. min and max give their second operand where the two are equal or do not compare. On unsigned lanes the
// mask of what stays is cheaper than that of what goes; NaNs stay only under the latter.
struct Below {
    template <class T> static Vec<T> clamped(Vec<T> bound, Vec<T> v) { return max<T>(bound, v); }
    template <class T> static Vec<T> replaced(Vec<T> bound, Vec<T> value, Vec<T> v) {
        if constexpr (std::is_unsigned_v<T>) return as_lanes<T>(raw(value) ^ (raw(v >= bound) & (raw(v) ^ raw(value))));
        else return select<T>(v < bound, value, v);
    }
};

struct Above {
    template <class T> static Vec<T> clamped(Vec<T> bound, Vec<T> v) { return min<T>(bound, v); }
    template <class T> static Vec<T> replaced(Vec<T> bound, Vec<T> value, Vec<T> v) {
        if constexpr (std::is_unsigned_v<T>) return as_lanes<T>(raw(value) ^ (raw(v <= bound) & (raw(v) ^ raw(value))));
        else return select<T>(v > bound, value, v);
    }
};

// The bound in place of what lies beyond it.
template <class Side, class T> struct Threshold {
    Vec<T> operator()(Vec<T> bound, Vec<T> v) const { return Side::template clamped<T>(bound, v); }
};

// c[1] in place of what lies beyond c[0].
template <class Side, class T> struct ThresholdVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const { return Side::template replaced<T>(c[0], c[1], v); }
};

// c[1] below c[0], c[3] above c[2]: what is taken from v and put in its place, as exclusive ors, one of which is zero.
template <class T> struct ThresholdLTValGTVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const {
        const auto x = raw(v), low = x ^ raw(c[1]), high = x ^ raw(c[3]);
        if constexpr (std::is_unsigned_v<T>) return as_lanes<T>(x ^ (low & ~raw(v >= c[0])) ^ (high & ~raw(v <= c[2])));
        else return as_lanes<T>(x ^ (low & raw(v < c[0])) ^ (high & raw(v > c[2])));
    }
};

} // namespace zeti
