// SPDX-License-Identifier: Apache-2.0
// The rule of integer results, as plainly as it can be said.
#pragma once

#include <algorithm>

#include "tests/support/samples.h"

namespace test {

// v times 2^-s, to nearest with ties to even, saturated.
template <class T, class V> T scaled(V v, int s) {
    static_assert(std::numeric_limits<long double>::digits >= 64, "exact for 64-bit values");
    const long double rounded = std::rint(std::ldexp(static_cast<long double>(v), -std::clamp(s, -200, 200)));
    return static_cast<T>(std::clamp<long double>(rounded, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

// The bound of T on v's side of zero; 0 for 0.
template <class T, class V> T extreme(V v) { return v > 0 ? std::numeric_limits<T>::max() : v < 0 ? std::numeric_limits<T>::min() : T(0); }

} // namespace test
