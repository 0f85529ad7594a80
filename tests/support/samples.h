// SPDX-License-Identifier: Apache-2.0
// Sample types as tests see them: name tokens, real parts, bits, and adversarial values from a seed.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <type_traits>

#include "zeti/zeti.h"

namespace test {

template <class T> struct RealOf { using type = T; };
template <> struct RealOf<Zet16sc> { using type = Zet16s; };
template <> struct RealOf<Zet32sc> { using type = Zet32s; };
template <> struct RealOf<Zet32fc> { using type = Zet32f; };
template <class T> using Real = typename RealOf<T>::type;
template <class T> inline constexpr bool is_complex = !std::is_same_v<Real<T>, T>;
template <class T> inline constexpr bool is_float = std::is_floating_point_v<Real<T>>;

template <class T> std::string token() { // 8u, 16sc, 32f
    const char* const kind = is_float<T> ? "f" : std::is_unsigned_v<Real<T>> ? "u" : "s";
    return std::to_string(8 * sizeof(Real<T>)) + kind + (is_complex<T> ? "c" : "");
}

template <class T> T number(int v) { // of a complex type: its real part
    if constexpr (is_complex<T>) return {static_cast<Real<T>>(v), 0};
    else return static_cast<T>(v);
}

template <class T> T load(const void* p) { // of any alignment
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

template <class T> bool is_nan(T v) {
    if constexpr (is_float<T>) return std::isnan(v);
    else return false;
}
// The same bits, or two NaNs: which NaN comes out is nobody's contract.
template <class T> bool same(T a, T b) {
    if constexpr (is_complex<T>) return same(a.re, b.re) && same(a.im, b.im);
    else return is_nan(a) ? is_nan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

template <class T> std::string text(T v) {
    if constexpr (is_complex<T>) return std::string("(") + text(v.re) + ", " + text(v.im) + ")";
    else if constexpr (!is_float<T>) return std::to_string(v);
    char digits[40];
    if constexpr (std::is_same_v<T, Zet32f>) std::snprintf(digits, sizeof digits, "%.9g [%a]", v, v);
    return digits;
}

struct Random { // splitmix64. Draw in braces, never in parentheses: the order must be the same for every compiler
    std::uint64_t state = 0;
    explicit Random(const std::string& seed) {
        for (const char c : seed) state = state * 257 + static_cast<unsigned char>(c);
    }
    std::uint64_t bits() {
        std::uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }
    int between(int low, int high) { return low + static_cast<int>(bits() % (static_cast<std::uint64_t>(high) - low + 1)); }
    bool chance(int in) { return bits() % in == 0; }
    template <class T> T pick(std::initializer_list<T> list) { return list.begin()[bits() % list.size()]; }
    template <class T> T uniform() {
        const std::uint64_t any = bits();
        return load<T>(&any);
    }

    // Bounds, zero, powers of two, their multiples and neighbours; for floats signed zeros, denormals, infinities, NaN and halves.
    template <class T> T edge() {
        using limits = std::numeric_limits<T>;
        if constexpr (std::is_floating_point_v<T>) {
            const T tiny = limits::denorm_min(), infinity = limits::infinity(), nan = limits::quiet_NaN();
            const T magnitude =
                pick({T(0), tiny, limits::min() - tiny, limits::min(), T(1), T(1) + limits::epsilon(), limits::max(), infinity, nan,
                      T(between(-9, 9)) + T(0.5), T(between(0, 1 << 24)), std::ldexp(T(1), between(-120, 120))});
            return chance(2) ? -magnitude : magnitude;
        } else {
            const int k = between(0, limits::digits - 1);
            const T power = static_cast<T>(std::uint64_t{1} << k), multiple = static_cast<T>(bits() << k);
            const T base = pick<T>({limits::min(), limits::max(), T(0), power, static_cast<T>(-power), multiple});
            return static_cast<T>(static_cast<std::uint64_t>(base) + pick({0, 0, between(-2, 2)}));
        }
    }

    // The samples of one image come from one of these.
    enum Pattern { uniforms, edges, mixed, lowest, highest, alternating };
    Pattern pattern() { return static_cast<Pattern>(between(uniforms, alternating)); }

    template <class T> T sample(Pattern p, int index) {
        if constexpr (is_complex<T>) {
            const auto re = sample<Real<T>>(p, index);
            return {re, sample<Real<T>>(p, index / 2)};
        } else {
            if (p == edges || (p == mixed && chance(2))) return edge<T>();
            if (p == lowest || (p == alternating && index % 2 == 0)) return std::numeric_limits<T>::lowest();
            if (p == highest || p == alternating) return std::numeric_limits<T>::max();
            return uniform<T>();
        }
    }
};

} // namespace test
