// SPDX-License-Identifier: Apache-2.0
// Composition under alpha as plainly as it can be said, one sample at a time.
#pragma once

#include "tests/arith/elementwise.h"

namespace test {

template <class T> inline constexpr T full = std::is_floating_point_v<T> ? T(1) : std::numeric_limits<T>::max();

template <class T> T clamped(std::int64_t v) {
    return static_cast<T>(std::clamp<std::int64_t>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T> T product(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a * b;
    } else {
        const auto magnitude = [](std::int64_t v) { return static_cast<std::uint64_t>(v < 0 ? -v : v); };
        constexpr int n = std::numeric_limits<T>::digits;
        const std::uint64_t t = magnitude(a) * magnitude(b);
        const auto quotient = static_cast<std::int64_t>((t + 1 + (t >> n)) >> n);
        return clamped<T>((a < 0) != (b < 0) ? -quotient : quotient);
    }
}
template <class T> T sum(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) return a + b;
    else return clamped<T>(std::int64_t{a} + b);
}
template <class T> T rest(T alpha) {
    if constexpr (std::is_floating_point_v<T>) return 1 - alpha;
    else return clamped<T>(std::int64_t{full<T>} - alpha);
}

// One sample of the result; alpha itself is never premultiplied.
template <class T> T composed(int type, bool isAlpha, T a, T alphaA, T b, T alphaB) {
    if (type < zetAlphaOverPremul && !isAlpha) a = product(a, alphaA), b = product(b, alphaB);
    switch (type % 6) {
    case zetAlphaOver: return sum(a, product(b, rest(alphaA)));
    case zetAlphaIn: return product(a, alphaB);
    case zetAlphaOut: return product(a, rest(alphaB));
    case zetAlphaATop: return sum(product(a, alphaB), product(b, rest(alphaA)));
    case zetAlphaXor: return sum(product(a, rest(alphaB)), product(b, rest(alphaA)));
    default: return sum(a, b);
    }
}

} // namespace test
