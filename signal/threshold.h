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

// c[1] in place of what lies beyond c[0].
template <class Side, class T> struct ThresholdVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const { return select<T>(Side::template beyond<T>(c[0], v), c[1], v); }
};

// c[1] below c[0], c[3] above c[2].
template <class T> struct ThresholdLTValGTVal {
    Vec<T> operator()(const auto& c, Vec<T> v) const { return select<T>(v < c[0], c[1], select<T>(v > c[2], c[3], v)); }
};

} // namespace zeti
