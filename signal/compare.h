// SPDX-License-Identifier: Apache-2.0
// Comparisons: a mask byte per pixel, 255 where the comparison holds for every colour channel, else 0. Nothing holds for a NaN.
//
// `Comparison` is an operand of the row walker that makes the mask of 16 pixels from two operands of samples: the samples'
// masks, narrowed to bytes, fill one register per channel of the layout, which are then joined pixel by pixel.
#pragma once

#include "signal/row.h"

namespace zeti {

// What the lanes of a mask say: all ones where the comparison holds, else zero; or as little as that a lane is not zero where it
// holds, or where it fails. The processor has no unsigned comparison, only a difference that is zero or not.
enum class Says { exactly, holds, fails };

// ownpi_CmpLT, ownpi_CmpLE, ownpi_CmpEQ: a against b. The other two operators are the first two with a and b swapped.
struct CmpLT {
    template <class T> static constexpr Says says = std::is_unsigned_v<T> ? Says::holds : Says::exactly;
    template <class T> auto mask(Vec<T> a, Vec<T> b) const {
        if constexpr (std::is_unsigned_v<T>) return sub_saturating<T>(b, a);
        else return a < b;
    }
};
struct CmpLE {
    template <class T> static constexpr Says says = std::is_integral_v<T> ? Says::fails : Says::exactly;
    template <class T> auto mask(Vec<T> a, Vec<T> b) const {
        if constexpr (std::is_unsigned_v<T>) return sub_saturating<T>(a, b);
        else if constexpr (std::is_integral_v<T>) return a > b;
        else return a <= b;
    }
};
struct CmpEQ {
    template <class T> static constexpr Says says = Says::exactly;
    template <class T> auto mask(Vec<T> a, Vec<T> b) const { return a == b; }
};

// |a - b| <= eps; the absolute value is the difference without its sign bit.
class CmpEqualEps {
public:
    explicit CmpEqualEps(Zet32f eps) : eps_(splat(eps)) {}
    template <class T> static constexpr Says says = Says::exactly;
    template <class T> auto mask(Vec<T> a, Vec<T> b) const { return as_lanes<T>(as_lanes<Zet32s>(a - b) & max_of<Zet32s>) <= eps_; }

private:
    Vec<Zet32f> eps_;
};

namespace detail {

// Two registers' worth in lanes half as wide. Saturation keeps zero, all ones and anything else apart.
template <class M> __m128i narrowed16(M low, M high) { return _mm_packs_epi16(raw(low), raw(high)); }
template <class M> __m128i narrowed32(M low, M high) { return _mm_packs_epi32(raw(low), raw(high)); }

// Pixels of three channels, from exact masks of what holds or what fails: the signs of 48 sample masks make a number in which pixel p has bits 3p to 3p + 2.
template <bool Fails> __m128i join3(const __m128i* m) {
    const auto signs = [&](int k) { return uint64_t{static_cast<unsigned>(_mm_movemask_epi8(m[k]))} << 16 * k; };
    const uint64_t samples = signs(0) | signs(1) | signs(2);
    const uint64_t pixels = Fails ? samples | samples >> 1 | samples >> 2 : samples & samples >> 1 & samples >> 2;
    const __m128i low = from_words(pixels, 0), halves = _mm_unpacklo_epi32(low, _mm_srli_epi64(low, 24)); // 8 pixels in 24 bits each
    const __m128i words = _mm_unpacklo_epi16(halves, halves);
    // The first word of a half holds 6 pixels, the second one 2.
    const __m128i bit = _mm_setr_epi16(1, 1 << 3, 1 << 6, 1 << 9, 1 << 12, static_cast<short>(1 << 15), 1 << 2, 1 << 5);
    const auto spread = [&](__m128i eight) { return _mm_cmpeq_epi16(_mm_and_si128(eight, bit), Fails ? __m128i{} : bit); };
    return narrowed16(spread(_mm_shuffle_epi32(words, 0x40)), spread(_mm_shuffle_epi32(words, 0xEA)));
}

// Of four, or of three beside an alpha: a pixel is a lane of all ones, or of zeros where the masks say what fails.
template <bool Fails, bool Alpha> __m128i join4(const __m128i* m) {
    const __m128i alpha = _mm_set1_epi32(Alpha ? static_cast<int>(0xFF000000) : 0);
    const auto pixels = [&](int k) { return Fails ? _mm_andnot_si128(alpha, m[k]) : _mm_or_si128(alpha, m[k]); };
    const __m128i narrow = narrowed16(narrowed32(pixels(0), pixels(1)), narrowed32(pixels(2), pixels(3)));
    return _mm_cmpeq_epi8(narrow, Fails ? __m128i{} : _mm_set1_epi8(-1));
}

} // namespace detail

template <class Cmp, class L, class T, class A, class B> class Comparison {
    static constexpr int channels = L::channels;
    static constexpr int registers = int{sizeof(T)}; // that narrow to one of bytes
    static constexpr Says says = Cmp::template says<T>;

public:
    static constexpr int period = 1;
    static constexpr int lines = channels * registers; // of an image, for one of bytes
    static constexpr bool is_long = lines > 2;
    Comparison(const Cmp& cmp, const A& a, const B& b) : cmp_(cmp), a_(a), b_(b) {}

    Vec<Zet8u> whole(ptrdiff_t i, int) const {
        return joined([&](int k) __attribute__((always_inline)) { return cmp_.template mask<T>(whole(a_, i, k), whole(b_, i, k)); });
    }
    [[gnu::noinline]] Vec<Zet8u> part(ptrdiff_t i, int, int n) const {
        return joined([&](int k) { return cmp_.template mask<T>(part(a_, i, k, n), part(b_, i, k, n)); });
    }
    void next_row() { a_.next_row(), b_.next_row(); }
    Comparison row(ptrdiff_t y) const { return {cmp_, a_.row(y), b_.row(y)}; }
    Comparison from(ptrdiff_t i) const { return {cmp_, a_.from(i * channels), b_.from(i * channels)}; }
    Comparison apart(ptrdiff_t n) const { return {cmp_, a_.apart(n * channels), b_.apart(n * channels)}; }
    void advance(ptrdiff_t n) { a_.advance(n * channels), b_.advance(n * channels); }
    [[gnu::always_inline]] void prefetch(ptrdiff_t i) const { // what becomes a cache line of bytes
        for (int k = 0; k < lines; ++k) {
            const ptrdiff_t at = i * channels + k * (64 / ptrdiff_t{sizeof(T)});
            a_.prefetch(at), b_.prefetch(at);
        }
    }
    static ptrdiff_t lead(const Zet8u*, ptrdiff_t n) { return n; } // sources and mask do not overlap
    static bool overlaps(const Zet8u*, ptrdiff_t) { return false; }
    static bool is(const Zet8u*) { return false; }
    bool contiguous(ptrdiff_t pixels) const {
        return a_.contiguous(pixels * channels * ptrdiff_t{sizeof(T)}) && b_.contiguous(pixels * channels * ptrdiff_t{sizeof(T)});
    }

private:
    // Register k of the 16 pixels from pixel i on, of which n < 16 exist.
    template <class O> static Vec<T> whole(const O& operand, ptrdiff_t i, int k) {
        return operand.whole(i * channels + k * lanes<T>, k % O::period);
    }
    template <class O> [[gnu::noinline]] static Vec<T> part(const O& operand, ptrdiff_t i, int k, int n) {
        const int left = n * channels - k * lanes<T>;
        if (left >= lanes<T>) return whole(operand, i, k);
        return left > 0 ? operand.part(i * channels + k * lanes<T>, k % O::period, left) : Vec<T>{};
    }

    template <class Mask> [[gnu::always_inline]] static Vec<Zet8u> joined(Mask mask) {
        using namespace detail;
        __m128i bytes[channels];
        for (int c = 0; c < channels; ++c) {
            const int k = c * registers;
            if constexpr (registers == 1) bytes[c] = raw(mask(k));
            else if constexpr (registers == 2) bytes[c] = narrowed16(mask(k), mask(k + 1));
            else bytes[c] = narrowed16(narrowed32(mask(k), mask(k + 1)), narrowed32(mask(k + 2), mask(k + 3)));
        }
        // A comparison with zero makes what a mask says exact, and says the opposite.
        if constexpr (says == Says::holds || (says == Says::fails && channels != 4))
            for (__m128i& b : bytes) b = _mm_cmpeq_epi8(b, __m128i{});
        constexpr bool fails = says == Says::holds || (says == Says::fails && channels == 4);
        if constexpr (channels == 1) return as_lanes<Zet8u>(fails ? ~bytes[0] : bytes[0]);
        else if constexpr (channels == 3) return as_lanes<Zet8u>(join3<fails>(bytes));
        else return as_lanes<Zet8u>(join4<fails, L::keeps_alpha>(bytes));
    }

    Cmp cmp_;
    A a_;
    B b_;
};

} // namespace zeti
