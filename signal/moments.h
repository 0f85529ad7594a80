// SPDX-License-Identifier: Apache-2.0
// Row kernels of the moments: the sums of p, p x, p x^2 and p x^3 of one channel.
#pragma once

#include "core/simd.h"
#include "core/to_double.h"
#include "core/view.h"

namespace zeti {

namespace detail {

// Four samples of one channel as 32-bit numbers; zeros behind the n-th, which add nothing.
template <class T> using Four = std::conditional_t<std::is_floating_point_v<T>, Vec<Zet32f>, Vec<Zet32s>>;

template <int channels, class T> Four<T> four_samples(const T* p) {
    if constexpr (channels == 1 && sizeof(T) == 1) {
        const auto bytes = as_lanes<Zet8u>(_mm_cvtsi32_si128(load_word<int>(p)));
        return as_lanes<Zet32s>(widen<Zet16u>(widen<Zet8u>(bytes).low).low);
    } else if constexpr (channels == 1 && sizeof(T) == 2) {
        return as_lanes<Zet32s>(widen<Zet16u>(as_lanes<Zet16u>(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))).low);
    } else if constexpr (channels == 1) {
        return load(p);
    } else {
        return Four<T>{get(p), get(p + channels), get(p + 2 * channels), get(p + 3 * channels)};
    }
}
template <int channels, class T> Four<T> four_samples(const T* p, int n) {
    Four<T> v{};
    for (int i = 0; i < n; ++i) v[i] = get(p + i * channels);
    return v;
}

// Samples and columns in pairs: two chains of sums, of the even and of the odd columns. No integer is negative: with the upper half of 2^52
// above it each is 2^52 too large.
inline Pair2<Zet64f> pairs_to_double(Vec<Zet32s> v) {
    const __m128i upper = _mm_set1_epi32(0x43300000);
    const auto low = as_lanes<Zet64f>(_mm_unpacklo_epi32(raw(v), upper)), high = as_lanes<Zet64f>(_mm_unpackhi_epi32(raw(v), upper));
    return {low - 0x1p52, high - 0x1p52};
}
inline Pair2<Zet64f> pairs_to_double(Vec<Zet32f> v) { return widen_to_double<Zet32f>(v); }

// In double precision: Moments8uC1R_64f_FAST and its siblings.
struct FloatChains {
    using Sum = Zet64f;
    Vec<Zet64f> s0{}, s1{}, s2{}, s3{};

    template <class V> void add(V four, Vec<Zet64f> x) {
        const auto pairs = pairs_to_double(four);
        add_pair(pairs.low, x);
        add_pair(pairs.high, x + 2);
    }
    void sums(ptrdiff_t, Sum (&s)[4]) const { s[0] = s0[0] + s0[1], s[1] = s1[0] + s1[1], s[2] = s2[0] + s2[1], s[3] = s3[0] + s3[1]; }

private:
    void add_pair(Vec<Zet64f> p, Vec<Zet64f> x) {
        const Vec<Zet64f> px = p * x, pxx = px * x;
        s0 += p, s1 += px, s2 += pxx, s3 += pxx * x;
    }
};

// In 64-bit integers, exact unless they wrap: Moments8uC1R_64s_ACCURATE and its siblings. Sums of sums take no product per sample: with w counted
// from 1 at the last pair of the row backwards, they are the sums of p, p w, p w (w + 1) / 2 and p w (w + 1) (w + 2) / 6.
struct IntegerChains {
    using Sum = uint64_t;
    Vec<uint64_t> s0{}, s1{}, s2{}, s3{};

    void add(Vec<Zet32s> four, Vec<Zet64f>) { // no sample is negative
        add_pair(as_lanes<uint64_t>(_mm_unpacklo_epi32(raw(four), __m128i{})));
        add_pair(as_lanes<uint64_t>(_mm_unpackhi_epi32(raw(four), __m128i{})));
    }
    void sums(ptrdiff_t pairs, uint64_t (&s)[4]) const {
        uint64_t odd[4];
        chain(0, pairs, s), chain(1, pairs, odd);
        for (int n = 0; n < 4; ++n) s[n] += odd[n];
    }

protected:
    void chain(int odd, ptrdiff_t pairs, uint64_t (&s)[4]) const { // x = last - 2 w
        const uint64_t last = 2 * static_cast<uint64_t>(pairs) + static_cast<uint64_t>(odd);
        const uint64_t w0 = s0[odd], w1 = s1[odd], w2 = 2 * s2[odd] - w1, w3 = 6 * s3[odd] - 3 * w2 - 2 * w1;
        s[0] = w0;
        s[1] = last * w0 - 2 * w1;
        s[2] = last * last * w0 - 4 * last * w1 + 4 * w2;
        s[3] = last * last * last * w0 - 6 * last * last * w1 + 12 * last * w2 - 8 * w3;
    }

private:
    void add_pair(Vec<uint64_t> p) { s0 += p, s1 += s0, s2 += s1, s3 += s2; }
};

// The same as FloatChains, in half the time, for rows so short that no sum of a chain takes more than 53 bits.
struct ExactChains : IntegerChains {
    using Sum = Zet64f;

    template <class T> static constexpr bool hold_row(int width) {
        if (std::is_floating_point_v<T> || width > 4096) return false;
        const uint64_t u = (static_cast<uint64_t>(width) + 1) / 2; // the cubes of the first u odd numbers add up to u^2 (2 u^2 - 1)
        return u * u * (2 * u * u - 1) <= (uint64_t{1} << 53) / static_cast<uint64_t>(max_of<T>);
    }
    void sums(ptrdiff_t pairs, Zet64f (&s)[4]) const {
        uint64_t even[4], odd[4];
        chain(0, pairs, even), chain(1, pairs, odd);
        for (int n = 0; n < 4; ++n) s[n] = to_double(static_cast<Zet64s>(even[n])) + to_double(static_cast<Zet64s>(odd[n]));
    }
};

} // namespace detail

} // namespace zeti
