// SPDX-License-Identifier: Apache-2.0
// Products of full scale: a b / M, where M is the greatest value of the sample type, and 1 for 32f.
//
// Of samples of n bits, with t = a b: (t + 1 + (t >> n)) >> n. For every pair of samples that is t / M cut to an integer, so
// that M times a gives a. Signed samples multiply their magnitudes, with one bit less, and take the sign after that;
// the two products that leave the type, of its minimum with itself or with -M, saturate. 32f: the plain product.
//
// Kernels are inlined into their rows at any price: a call would spill the row's registers.
#pragma once

#include "core/simd.h"

namespace zeti {

template <class T> inline constexpr T full_scale = std::is_floating_point_v<T> ? T{1} : max_of<T>;

// A register of second factors. Bytes multiply in lanes of 16 bits, even and odd ones apart; factors that serve many
// products, or two samples of one lane, are taken apart once.
template <class T> struct FactorOf { using type = Vec<T>; };
template <> struct FactorOf<Zet8u> {
    struct type {
        Vec<Zet16u> even, odd;
    };
};
template <class T> using Factor = typename FactorOf<T>::type;

template <class T> Factor<T> factor(Vec<T> v) { return v; }
template <> inline Factor<Zet8u> factor<Zet8u>(Vec<Zet8u> v) {
    const auto pairs = as_lanes<Zet16u>(v);
    return {pairs & Zet16u{0xFF}, pairs >> 8};
}

namespace detail {

// Magnitudes of at most 2^n times magnitudes of at most 2^n.
template <int n> [[gnu::always_inline]] inline Vec<Zet8u> full_scale_product(Vec<Zet8u> a, Factor<Zet8u> b) {
    // (t + 1)(2^n + 1) >> 2n is the same, but for t = 2^2n - 1, which is no product.
    const auto quotient = [](Vec<Zet16u> t) { return multiply_high(t + Zet16u{1}, splat(Zet16u{((1 << n) + 1) << (16 - 2 * n)})); };
    const Factor<Zet8u> x = factor<Zet8u>(a);
    return as_lanes<Zet8u>(quotient(x.even * b.even) | quotient(x.odd * b.odd) << 8);
}

// In 16 bits: with t = q 2^n + r the result is q, and one more where q + r reaches M.
template <int n> [[gnu::always_inline]] inline Vec<Zet16u> full_scale_product(Vec<Zet16u> a, Vec<Zet16u> b) {
    const Vec<Zet16u> low = a * b, high = multiply_high(a, b);
    const Vec<Zet16u> q = n == 16 ? high : high << (16 - n) | low >> (n % 16);
    const Vec<Zet16u> below = ~low & static_cast<Zet16u>((1 << n) - 1); // M - r
    return q - as_lanes<Zet16u>(sub_saturating<Zet16u>(below, q) == 0);
}

// In 64 bits, even and odd lanes apart.
template <int n> [[gnu::always_inline]] inline Vec<Zet32u> full_scale_product(Vec<Zet32u> a, Vec<Zet32u> b) {
    const auto quotient = [](__m128i product) {
        const auto t = as_lanes<uint64_t>(product);
        return (t + 1 + (t >> n)) >> n;
    };
    const auto even = quotient(_mm_mul_epu32(raw(a), raw(b)));
    const auto odd = quotient(_mm_mul_epu32(_mm_srli_epi64(raw(a), 32), _mm_srli_epi64(raw(b), 32)));
    return as_lanes<Zet32u>(even | odd << 32);
}

template <class T> auto magnitude(Vec<T> v) { // that of the minimum in full
    using U = std::make_unsigned_t<T>;
    const auto sign = as_lanes<U>(v < 0);
    return (as_lanes<U>(v) ^ sign) - sign;
}

} // namespace detail

template <class T> [[gnu::always_inline]] inline Vec<T> scaled_product(Vec<T> a, Factor<T> b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a * b;
    } else if constexpr (std::is_unsigned_v<T>) {
        return detail::full_scale_product<8 * int{sizeof(T)}>(a, b);
    } else {
        using U = std::make_unsigned_t<T>;
        const auto product =
            detail::full_scale_product<8 * int{sizeof(T)} - 1>(detail::magnitude<T>(a), factor<U>(detail::magnitude<T>(b)));
        const auto sign = as_lanes<U>((a ^ b) < 0);
        const Vec<T> too_large = as_lanes<T>(product) & as_lanes<T>(~sign); // as negative numbers
        return select<T>(too_large < 0, splat(max_of<T>), as_lanes<T>((product ^ sign) - sign));
    }
}

inline Vec<Zet8u> scaled_product(Vec<Zet8u> a, Vec<Zet8u> b) { return scaled_product<Zet8u>(a, factor<Zet8u>(b)); }
inline Vec<Zet16u> scaled_product(Vec<Zet16u> a, Vec<Zet16u> b) { return scaled_product<Zet16u>(a, b); }

} // namespace zeti
