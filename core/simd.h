// SPDX-License-Identifier: Apache-2.0
// The vector layer: 16-byte registers as compiler vector types, which bring their own operators (+ - * & | ^ ~ == > and
// the elementwise select ?:), and the few operations that have no operator. Nothing here goes beyond SSE2.
#pragma once

#include <emmintrin.h>

#include <cstring>

#include "core/base.h"

namespace zeti {

inline constexpr int register_bytes = 16;

template <class T> struct VecOf { typedef T type __attribute__((vector_size(16))); };
template <class T> using Vec = typename VecOf<T>::type; // lanes of T

template <class T> inline constexpr int lanes = register_bytes / int{sizeof(T)};

// Between lane types and the raw registers of the intrinsics: a reinterpretation, no instruction.
template <class T, class V> Vec<T> as_lanes(V v) { return reinterpret_cast<Vec<T>>(v); }
template <class V> __m128i raw(V v) { return reinterpret_cast<__m128i>(v); }
inline __m128 raw_float(Vec<Zet32f> v) { return reinterpret_cast<__m128>(v); }

template <class T> Vec<T> splat(T value) { return value - Vec<T>{}; }

// --- Memory -------------------------------------------------------------------------------------------------------

template <class T> Vec<T> load(const T* p) { return as_lanes<T>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
template <class T> void store(T* p, Vec<T> v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), raw(v)); }

namespace detail {
template <class Word> Word load_word(const void* p) {
    Word w;
    std::memcpy(&w, p, sizeof w);
    return w;
}
inline __m128i from_words(uint64_t low, uint64_t high) { return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low)); }
inline uint64_t low_word(__m128i v) {
    uint64_t w;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&w), v);
    return w;
}
} // namespace detail

// The first `bytes` (1 to 15) bytes at p, zeros behind them. Reads those bytes only: two reads that may overlap.
inline __m128i load_bytes(const void* p, int bytes) {
    const char* const c = static_cast<const char*>(p);
    using namespace detail;
    if (bytes >= 8) {
        const uint64_t tail = load_word<uint64_t>(c + bytes - 8);
        return from_words(load_word<uint64_t>(c), bytes == 8 ? 0 : tail >> (8 * (16 - bytes)));
    }
    if (bytes >= 4) {
        const uint64_t tail = load_word<uint32_t>(c + bytes - 4);
        return from_words(load_word<uint32_t>(c) | tail << (8 * (bytes - 4)), 0);
    }
    if (bytes >= 2) {
        const uint64_t tail = load_word<uint16_t>(c + bytes - 2);
        return from_words(load_word<uint16_t>(c) | tail << (8 * (bytes - 2)), 0);
    }
    return _mm_cvtsi32_si128(static_cast<unsigned char>(*c));
}

// Writes the first `bytes` (1 to 15) bytes of v and no others.
inline void store_bytes(void* p, __m128i v, int bytes) {
    char* const c = static_cast<char*>(p);
    uint64_t low = detail::low_word(v);
    if (bytes >= 8) {
        const uint64_t high = detail::low_word(_mm_srli_si128(v, 8));
        std::memcpy(c, &low, 8);
        if (bytes == 8) return;
        const uint64_t last = low >> (8 * (bytes - 8)) | high << (8 * (16 - bytes));
        std::memcpy(c + bytes - 8, &last, 8);
    } else if (bytes >= 4) {
        const uint32_t head = static_cast<uint32_t>(low), last = static_cast<uint32_t>(low >> (8 * (bytes - 4)));
        std::memcpy(c, &head, 4);
        std::memcpy(c + bytes - 4, &last, 4);
    } else if (bytes >= 2) {
        const uint16_t head = static_cast<uint16_t>(low), last = static_cast<uint16_t>(low >> (8 * (bytes - 2)));
        std::memcpy(c, &head, 2);
        std::memcpy(c + bytes - 2, &last, 2);
    } else {
        *c = static_cast<char>(low);
    }
}

// Half registers: 8 bytes at each of two places.
inline __m128i load_halves(const void* low, const void* high) {
    const __m128i h = _mm_loadl_epi64(static_cast<const __m128i*>(high));
    return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(low)), h);
}
inline void store_halves(void* low, void* high, __m128i v) {
    const auto halves = as_lanes<uint64_t>(v);
    const uint64_t words[2] = {halves[0], halves[1]};
    std::memcpy(low, words, sizeof *words);
    std::memcpy(high, words + 1, sizeof *words);
}

// Partial vectors of n < lanes<T> samples, zeros behind them.
template <class T> Vec<T> load(const T* p, int n) { return as_lanes<T>(load_bytes(p, n * int{sizeof(T)})); }
template <class T> void store(T* p, Vec<T> v, int n) { store_bytes(p, raw(v), n * int{sizeof(T)}); }

// --- Shifts by one count for all lanes ----------------------------------------------------------------------------

using Count = __m128i;
inline Count count_of(int n) { return _mm_cvtsi32_si128(n); }

template <class T> Vec<T> shift_left(Vec<T> v, Count n) {
    if constexpr (sizeof(T) == 2) return as_lanes<T>(_mm_sll_epi16(raw(v), n));
    else if constexpr (sizeof(T) == 4) return as_lanes<T>(_mm_sll_epi32(raw(v), n));
    else return as_lanes<T>(_mm_sll_epi64(raw(v), n));
}

// Arithmetic on signed lanes, logical on unsigned ones.
template <class T> Vec<T> shift_right(Vec<T> v, Count n) {
    static_assert(sizeof(T) == 2 || sizeof(T) == 4);
    if constexpr (sizeof(T) == 2) return as_lanes<T>(std::is_signed_v<T> ? _mm_sra_epi16(raw(v), n) : _mm_srl_epi16(raw(v), n));
    else return as_lanes<T>(std::is_signed_v<T> ? _mm_sra_epi32(raw(v), n) : _mm_srl_epi32(raw(v), n));
}

// --- Lanes --------------------------------------------------------------------------------------------------------

// a where the mask's lane is all ones, b where it is zero.
template <class T, class M> Vec<T> select(M mask, Vec<T> a, Vec<T> b) {
    return as_lanes<T>(_mm_or_si128(_mm_and_si128(raw(mask), raw(a)), _mm_andnot_si128(raw(mask), raw(b))));
}

// True when some lane of a comparison holds; when all do.
template <class M> bool any(M mask) { return _mm_movemask_epi8(raw(mask)) != 0; }
template <class M> bool all(M mask) { return _mm_movemask_epi8(raw(mask)) == 0xFFFF; }

// On floats b where the two do not compare.
template <class T> Vec<T> min(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Zet8u>) return as_lanes<T>(_mm_min_epu8(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<T>(_mm_min_epi16(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet32f>) return reinterpret_cast<Vec<T>>(_mm_min_ps(raw_float(a), raw_float(b)));
    else if constexpr (std::is_same_v<T, Zet64f>)
        return reinterpret_cast<Vec<T>>(_mm_min_pd(reinterpret_cast<__m128d>(a), reinterpret_cast<__m128d>(b)));
    else if constexpr (std::is_same_v<T, Zet16u>) return a - as_lanes<T>(_mm_subs_epu16(raw(a), raw(b)));
    else return select<T>(a < b, a, b);
}

template <class T> Vec<T> max(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Zet8u>) return as_lanes<T>(_mm_max_epu8(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<T>(_mm_max_epi16(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet32f>) return reinterpret_cast<Vec<T>>(_mm_max_ps(raw_float(a), raw_float(b)));
    else if constexpr (std::is_same_v<T, Zet64f>)
        return reinterpret_cast<Vec<T>>(_mm_max_pd(reinterpret_cast<__m128d>(a), reinterpret_cast<__m128d>(b)));
    else if constexpr (std::is_same_v<T, Zet16u>) return b + as_lanes<T>(_mm_subs_epu16(raw(a), raw(b)));
    else return select<T>(a > b, a, b);
}

// Absolute values, in unsigned lanes for integers: -32768 has 32768.
template <class T> auto magnitude(Vec<T> v) {
    if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<Zet16u>(_mm_max_epi16(raw(v), _mm_sub_epi16(__m128i{}, raw(v))));
    else if constexpr (std::is_same_v<T, Zet32f>) return as_lanes<T>(as_lanes<Zet32s>(v) & max_of<Zet32s>);
    else if constexpr (std::is_same_v<T, Zet64f>) return as_lanes<T>(as_lanes<Zet64s>(v) & max_of<Zet64s>);
    else {
        static_assert(std::is_unsigned_v<T>);
        return v;
    }
}

template <class T> Vec<T> add_saturating(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Zet8u>) return as_lanes<T>(_mm_adds_epu8(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet8s>) return as_lanes<T>(_mm_adds_epi8(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16u>) return as_lanes<T>(_mm_adds_epu16(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<T>(_mm_adds_epi16(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet32u>) return (a + b) | as_lanes<T>(a + b < a);
    else {
        static_assert(std::is_same_v<T, Zet32s>);
        const Vec<Zet32s> sum = as_lanes<Zet32s>(_mm_add_epi32(raw(a), raw(b))); // wraps
        return select<Zet32s>(((a ^ sum) & (b ^ sum)) < 0, (a >> 31) ^ max_of<Zet32s>, sum);
    }
}

template <class T> Vec<T> sub_saturating(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Zet8u>) return as_lanes<T>(_mm_subs_epu8(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16u>) return as_lanes<T>(_mm_subs_epu16(raw(a), raw(b)));
    else if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<T>(_mm_subs_epi16(raw(a), raw(b)));
    else {
        static_assert(std::is_same_v<T, Zet32s>);
        const Vec<Zet32s> difference = as_lanes<Zet32s>(_mm_sub_epi32(raw(a), raw(b))); // wraps
        return select<Zet32s>(((a ^ b) & (a ^ difference)) < 0, (a >> 31) ^ max_of<Zet32s>, difference);
    }
}

// |a - b|, in unsigned lanes for integers.
template <class T> auto distance(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Zet16s>) return as_lanes<Zet16u>(_mm_sub_epi16(raw(max<T>(a, b)), raw(min<T>(a, b))));
    else if constexpr (std::is_integral_v<T>) return sub_saturating<T>(a, b) | sub_saturating<T>(b, a);
    else return magnitude<T>(a - b);
}

// (a + b + 1) >> 1 without overflow.
inline Vec<Zet8u> average_up(Vec<Zet8u> a, Vec<Zet8u> b) { return as_lanes<Zet8u>(_mm_avg_epu8(raw(a), raw(b))); }
inline Vec<Zet16u> average_up(Vec<Zet16u> a, Vec<Zet16u> b) { return as_lanes<Zet16u>(_mm_avg_epu16(raw(a), raw(b))); }

// --- Widening and narrowing ---------------------------------------------------------------------------------------

template <class T> struct WiderOf;
template <> struct WiderOf<Zet8u> { using type = Zet16u; };
template <> struct WiderOf<Zet8s> { using type = Zet16s; };
template <> struct WiderOf<Zet16u> { using type = Zet32u; };
template <> struct WiderOf<Zet16s> { using type = Zet32s; };
template <> struct WiderOf<Zet32u> { using type = uint64_t; };
template <class T> using Wider = typename WiderOf<T>::type;

// One register's worth of samples in lanes twice as wide.
template <class W> struct Pair2 { Vec<W> low, high; };

template <class T> Pair2<Wider<T>> interleave(Vec<T> a, Vec<T> b) {
    using W = Wider<T>;
    if constexpr (sizeof(T) == 1) return {as_lanes<W>(_mm_unpacklo_epi8(raw(a), raw(b))), as_lanes<W>(_mm_unpackhi_epi8(raw(a), raw(b)))};
    else if constexpr (sizeof(T) == 2)
        return {as_lanes<W>(_mm_unpacklo_epi16(raw(a), raw(b))), as_lanes<W>(_mm_unpackhi_epi16(raw(a), raw(b)))};
    else return {as_lanes<W>(_mm_unpacklo_epi32(raw(a), raw(b))), as_lanes<W>(_mm_unpackhi_epi32(raw(a), raw(b)))};
}

template <class T> Pair2<Wider<T>> widen(Vec<T> v) {
    if constexpr (std::is_signed_v<T>) return interleave<T>(v, as_lanes<T>(v < 0));
    else return interleave<T>(v, Vec<T>{});
}

// Saturating: 16-bit lanes read as signed to 8u or 8s; signed 32-bit lanes to 16s.
inline Vec<Zet8u> narrow_to_8u(Vec<Zet16u> low, Vec<Zet16u> high) { return as_lanes<Zet8u>(_mm_packus_epi16(raw(low), raw(high))); }
inline Vec<Zet8s> narrow_to_8s(Vec<Zet16s> low, Vec<Zet16s> high) { return as_lanes<Zet8s>(_mm_packs_epi16(raw(low), raw(high))); }
inline Vec<Zet16s> narrow_to_16s(Vec<Zet32s> low, Vec<Zet32s> high) { return as_lanes<Zet16s>(_mm_packs_epi32(raw(low), raw(high))); }

// Unsigned 16-bit lanes to 8u, saturating: those with the top bit set read as negative.
inline Vec<Zet8u> narrow_16u_to_8u(Vec<Zet16u> low, Vec<Zet16u> high) {
    return narrow_to_8u(low, high) | as_lanes<Zet8u>(narrow_to_8s(as_lanes<Zet16s>(low), as_lanes<Zet16s>(high)) < 0);
}

// Signed 32-bit lanes to 16u, saturating; lanes must be at least -2^31 + 32768.
inline Vec<Zet16u> narrow_to_16u(Vec<Zet32s> low, Vec<Zet32s> high) {
    return as_lanes<Zet16u>(narrow_to_16s(low - 32768, high - 32768)) ^ static_cast<Zet16u>(0x8000);
}

// Units of so many bytes of two registers by turns: of their low halves, of their high halves.
template <int Bytes> __m128i interleave_low(__m128i a, __m128i b) {
    if constexpr (Bytes == 1) return _mm_unpacklo_epi8(a, b);
    else if constexpr (Bytes == 2) return _mm_unpacklo_epi16(a, b);
    else if constexpr (Bytes == 4) return _mm_unpacklo_epi32(a, b);
    else return _mm_unpacklo_epi64(a, b);
}
template <int Bytes> __m128i interleave_high(__m128i a, __m128i b) {
    if constexpr (Bytes == 1) return _mm_unpackhi_epi8(a, b);
    else if constexpr (Bytes == 2) return _mm_unpackhi_epi16(a, b);
    else if constexpr (Bytes == 4) return _mm_unpackhi_epi32(a, b);
    else return _mm_unpackhi_epi64(a, b);
}

// --- Products -----------------------------------------------------------------------------------------------------

inline Vec<Zet16u> multiply_high(Vec<Zet16u> a, Vec<Zet16u> b) { return as_lanes<Zet16u>(_mm_mulhi_epu16(raw(a), raw(b))); }
inline Vec<Zet16s> multiply_high(Vec<Zet16s> a, Vec<Zet16s> b) { return as_lanes<Zet16s>(_mm_mulhi_epi16(raw(a), raw(b))); }

// In twos: every second lane where it stands, its neighbours shifted into its place.
inline Vec<Zet32u> multiply_high(Vec<Zet32u> a, Vec<Zet32u> b) {
    const __m128i even = _mm_srli_epi64(_mm_mul_epu32(raw(a), raw(b)), 32);
    const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(raw(a), 32), _mm_srli_epi64(raw(b), 32));
    return as_lanes<Zet32u>(even) | (as_lanes<Zet32u>(odd) & as_lanes<Zet32u>(splat(uint64_t{0xFFFFFFFF00000000})));
}

// Low halves of the products, unsigned lanes.
template <class T> Vec<T> multiply_low(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) {
        const auto x = as_lanes<Zet16u>(a), y = as_lanes<Zet16u>(b);
        return as_lanes<T>(((x * y) & 0xFF) | ((x & 0xFF00) * (y >> 8)));
    } else {
        return a * b;
    }
}

// a[2i] * b[2i] + a[2i+1] * b[2i+1] in 32 bits, wrapping.
inline Vec<Zet32s> multiply_add_pairs(Vec<Zet16s> a, Vec<Zet16s> b) { return as_lanes<Zet32s>(_mm_madd_epi16(raw(a), raw(b))); }

// Each half of a register: the sum of |a[k] - b[k]| over its eight lanes.
inline Vec<Zet64s> sum_of_distances(Vec<Zet8u> a, Vec<Zet8u> b) { return as_lanes<Zet64s>(_mm_sad_epu8(raw(a), raw(b))); }

// --- Float --------------------------------------------------------------------------------------------------------

// The processor's 12-bit estimate of 1 / v.
inline Vec<Zet32f> reciprocal_estimate(Vec<Zet32f> v) { return reinterpret_cast<Vec<Zet32f>>(_mm_rcp_ps(raw_float(v))); }

// Nearest with ties to even under the default float state; -2^31 for what does not fit.
inline Vec<Zet32s> to_int(Vec<Zet32f> v) { return as_lanes<Zet32s>(_mm_cvtps_epi32(raw_float(v))); }

// Towards zero; -2^31 for what does not fit.
inline Vec<Zet32s> to_int_truncated(Vec<Zet32f> v) { return as_lanes<Zet32s>(_mm_cvttps_epi32(raw_float(v))); }

// Correctly rounded; NaN below zero.
inline Vec<Zet32f> square_root(Vec<Zet32f> v) { return reinterpret_cast<Vec<Zet32f>>(_mm_sqrt_ps(raw_float(v))); }

inline Zet64f square_root(Zet64f v) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(v))); }

// Exact: the low two lanes and the high two.
template <class T> Pair2<Zet64f> widen_to_double(Vec<T> v) {
    const auto half = [](__m128i w) {
        if constexpr (std::is_same_v<T, Zet32f>) return reinterpret_cast<Vec<Zet64f>>(_mm_cvtps_pd(_mm_castsi128_ps(w)));
        else return reinterpret_cast<Vec<Zet64f>>(_mm_cvtepi32_pd(w));
    };
    return {half(raw(v)), half(_mm_unpackhi_epi64(raw(v), raw(v)))};
}

// The two low lanes; back, to nearest with ties to even, with zeros above them.
inline Vec<Zet64f> to_double(Vec<Zet32s> v) { return reinterpret_cast<Vec<Zet64f>>(_mm_cvtepi32_pd(raw(v))); }
inline Vec<Zet32s> to_int(Vec<Zet64f> v) { return as_lanes<Zet32s>(_mm_cvtpd_epi32(reinterpret_cast<__m128d>(v))); }

inline Vec<Zet32f> to_float(Vec<Zet32s> v) { return reinterpret_cast<Vec<Zet32f>>(_mm_cvtepi32_ps(raw(v))); }

// Two exact halves, and one sum that is rounded.
inline Vec<Zet32f> to_float(Vec<Zet32u> v) {
    return to_float(as_lanes<Zet32s>(v >> 16)) * splat(65536.0f) + to_float(as_lanes<Zet32s>(v & 0xFFFF));
}

// --- Tables -------------------------------------------------------------------------------------------------------

// A table of 256 entries.
inline Vec<Zet8u> look_up(const Zet8u* table, Vec<Zet8u> index) {
    const auto pairs = as_lanes<Zet16u>(index);
    Vec<Zet16u> found{};
    for (int k = 0; k < lanes<Zet16u>; ++k) found[k] = static_cast<Zet16u>(table[pairs[k] & 255] | table[pairs[k] >> 8] << 8);
    return as_lanes<Zet8u>(found);
}

// --- Cache --------------------------------------------------------------------------------------------------------

inline void store_streaming(void* aligned, __m128i v) { _mm_stream_si128(static_cast<__m128i*>(aligned), v); }
inline void streaming_fence() { _mm_sfence(); }

// Asks the cache for what lies some bytes further on: no access, whatever is there. Always inlined, as the compiler takes a call of a function
// that does nothing else for one without effect.
[[gnu::always_inline]] inline const char* ahead_of(const void* p, ptrdiff_t ahead) { // addresses only: it may lie outside the image
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<const char*>(reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(ahead));
}
[[gnu::always_inline]] inline void prefetch(const void* p, ptrdiff_t ahead = 0) { _mm_prefetch(ahead_of(p, ahead), _MM_HINT_T0); }
// Into the second cache: where the loads themselves are many, the first one's few requests are better left to them.
[[gnu::always_inline]] inline void prefetch_outer(const void* p, ptrdiff_t ahead) { _mm_prefetch(ahead_of(p, ahead), _MM_HINT_T1); }

} // namespace zeti
