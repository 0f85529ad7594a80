// SPDX-License-Identifier: Apache-2.0
// Threshold kernels. A sample beyond a bound is replaced, every other one is copied bit for bit: a NaN compares false, and a zero
// is not beyond a zero of the other sign.
#pragma once

#include "core/simd.h"

namespace zeti {

// The two sides of a bound. min and max give their second operand where the two are equal or do not compare.
struct Below {
    template <class T> static Vec<T> clamped(Vec<T> bound, Vec<T> v) { return max<T>(bound, v); }
    template <class T> static auto beyond(Vec<T> bound, Vec<T> v) { return v < bound; }
};

struct Above {
    template <class T> static Vec<T> clamped(Vec<T> bound, Vec<T> v) { return min<T>(bound, v); }
    template <class T> static auto beyond(Vec<T> bound, Vec<T> v) { return v > bound; }
};

// The bound in place of what lies beyond it.
template <class Side, class T> struct Threshold {
    Vec<T> operator()(Vec<T> bound, Vec<T> v) const { return Side::template clamped<T>(bound, v); }
};

// What a kernel takes for the value that replaces samples beyond a bound. Integers: its distance from the bound, which is added, modulo
// the type's range, to what has just been clamped.
template <class T> T replacement(T bound, T value) {
    if constexpr (std::is_integral_v<T>) return static_cast<T>(value - bound);
    else return value;
}

namespace detail {
template <class T> auto offset(Vec<T> clamped, Vec<T> v, Vec<T> distance) { // in unsigned lanes, which may wrap
    return as_lanes<std::make_unsigned_t<T>>(_mm_andnot_si128(raw(clamped == v), raw(distance)));
}
template <class T, class Distance> Vec<T> moved(Vec<T> v, Distance distance) {
    return as_lanes<T>(as_lanes<std::make_unsigned_t<T>>(v) + distance);
}
} // namespace detail

// The replacement c[1] for what lies beyond c[0].
template <class Side, class T> struct ThresholdVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const {
        if constexpr (std::is_integral_v<T>) {
            const Vec<T> clamped = Side::template clamped<T>(c[0], v);
            return detail::moved<T>(clamped, detail::offset<T>(clamped, v, c[1]));
        } else {
            return select<T>(Side::template beyond<T>(c[0], v), c[1], v);
        }
    }
};

// c[1] for what lies below c[0], c[3] for what lies above c[2]; c[0] is not above c[2]. Floats: what is taken from v and put in its place,
// as exclusive ors, one of which is zero.
template <class T> struct ThresholdLTValGTVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const {
        if constexpr (std::is_integral_v<T>) {
            const Vec<T> above = max<T>(c[0], v), both = min<T>(c[2], above);
            return detail::moved<T>(both, detail::offset<T>(above, v, c[1]) | detail::offset<T>(both, above, c[3]));
        } else {
            const auto x = raw(v), low = x ^ raw(c[1]), high = x ^ raw(c[3]);
            return as_lanes<T>(x ^ (low & raw(v < c[0])) ^ (high & raw(v > c[2])));
        }
    }
};

} // namespace zeti
