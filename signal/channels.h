// SPDX-License-Identifier: Apache-2.0
// Channels apart and together: kernels of block_row() for samples of `Size` bytes, whatever they mean.
#pragma once

#include "signal/block_row.h"

namespace zeti {

namespace detail {

inline __m128i load_raw(const Zet8u* p) { return raw(load(p)); }
inline void store_raw(Zet8u* p, __m128i v) { store(p, as_lanes<Zet8u>(v)); }
inline __m128i blend(__m128i mask, __m128i a, __m128i b) { return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b)); }

constexpr int log2_of(int n) { return n <= 1 ? 0 : 1 + log2_of(n / 2); }

// The first and the second half of N registers by turns: of n samples, sample i goes to place 2 i mod (n - 1). `Rounds` of them
// multiply places by 2^Rounds, which is what takes channels apart and together and transposes squares.
template <int Size, int Rounds, int N> [[gnu::always_inline]] inline void shuffle(__m128i (&r)[N]) {
    for (int round = 0; round < Rounds; ++round) {
        __m128i turned[N];
        for (int k = 0; k < N / 2; ++k) {
            turned[2 * k] = interleave_low<Size>(r[k], r[k + N / 2]);
            turned[2 * k + 1] = interleave_high<Size>(r[k], r[k + N / 2]);
        }
        for (int k = 0; k < N; ++k) r[k] = turned[k];
    }
}

// 16 pixels of three bytes without a shuffle of bytes: fours, pairs and single samples by masks and shifts.
[[gnu::always_inline]] inline void split_16_by_masks(const Zet8u* p, __m128i (&plane)[3]) {
    const __m128i pairs = _mm_set1_epi32(0xFFFF), bytes = _mm_set1_epi16(0xFF);
    const auto fours = [&](int at) __attribute__((always_inline)) { // of every pixel quad the dword at that byte
        const auto x = reinterpret_cast<__m128>(load_raw(p + at)), y = reinterpret_cast<__m128>(load_raw(p + at + 24));
        return raw(_mm_shuffle_ps(x, y, _MM_SHUFFLE(3, 0, 3, 0)));
    };
    const __m128i a = fours(0), b = fours(4), c = fours(8);
    const __m128i x = blend(pairs, a, b), y = _mm_or_si128(_mm_srli_epi32(a, 16), _mm_slli_epi32(c, 16)), z = blend(pairs, b, c);
    plane[0] = blend(bytes, x, y), plane[2] = blend(bytes, y, z);
    plane[1] = _mm_or_si128(_mm_srli_epi16(x, 8), _mm_slli_epi16(z, 8));
}

} // namespace detail

// Interleaved pixels of N samples to `Planes` planes; with one plane the source begins at the channel that is taken.
template <int Size, int N, int Planes> struct SplitChannels {
    static constexpr int by_shuffles = (N == 3 ? 32 : 16) / Size, by_masks = N == 3 && Size == 1 && Planes == 3 ? 16 : 0;
    static constexpr int pixels = by_shuffles + by_masks, sources = 1, targets = Planes, source_bytes = N * Size, target_bytes = Size;
    static constexpr int before = 0, behind = Planes == N ? 0 : 1, unread = Planes == N ? 0 : (N - 1) * Size;
    static constexpr bool keeps = false;

    [[gnu::always_inline]] void operator()(const Zet8u* const* src, Zet8u* const* dst) const {
        constexpr int registers = by_shuffles * source_bytes / 16, of_plane = registers / N;
        __m128i r[registers];
        for (int k = 0; k < registers; ++k) r[k] = detail::load_raw(src[0] + 16 * k);
        detail::shuffle<Size, detail::log2_of(by_shuffles)>(r);
        for (int k = 0; k < Planes * of_plane; ++k) detail::store_raw(dst[k / of_plane] + k % of_plane * 16, r[k]);
        if constexpr (by_masks > 0) { // which keep those units busy that cannot shuffle
            __m128i plane[3];
            detail::split_16_by_masks(src[0] + by_shuffles * source_bytes, plane);
            for (int c = 0; c < Planes; ++c) detail::store_raw(dst[c] + by_shuffles, plane[c]);
        }
    }
};

// N planes to interleaved pixels.
template <int Size, int N> struct JoinChannels {
    static constexpr int pixels = 16 / Size, sources = N, targets = 1, source_bytes = Size, target_bytes = N * Size;
    static constexpr int before = 0, behind = N == 3 ? 1 : 0, unread = 0;
    static constexpr bool keeps = false;

    [[gnu::always_inline]] void operator()(const Zet8u* const* src, Zet8u* const* dst) const {
        __m128i r[4];
        for (int c = 0; c < 4; ++c) r[c] = detail::load_raw(src[c < N ? c : N - 1]);
        if constexpr (N == 3 && Size == 1) {
            const __m128i even = _mm_set1_epi16(0xFF), x = r[0], y = r[1], z = r[2]; // two pixels become three pairs of samples
            r[0] = _mm_or_si128(_mm_and_si128(even, x), _mm_slli_epi16(y, 8));
            r[1] = detail::blend(even, z, x);
            r[2] = r[3] = _mm_or_si128(_mm_srli_epi16(y, 8), _mm_andnot_si128(even, z));
            threes<2>(r, dst[0]);
        } else if constexpr (N == 3) {
            threes<Size>(r, dst[0]);
        } else {
            detail::shuffle<Size, 2>(r);
            for (int k = 0; k < 4; ++k) detail::store_raw(dst[0] + 16 * k, r[k]);
        }
    }

private:
    // Pixels of four, of which three count: each covers what the one before it wrote too much.
    template <int Unit> [[gnu::always_inline]] static void threes(__m128i (&r)[4], Zet8u* dst) {
        detail::shuffle<Unit, 2>(r);
        for (int k = 0; k < 4; ++k) {
            if constexpr (Unit == 2) store_halves(dst + 12 * k, dst + 12 * k + 6, r[k]);
            else detail::store_raw(dst + 12 * k, r[k]);
        }
    }
};

// Between three and four samples a pixel: 12 bytes and a register.
template <int Size> struct ThreeInFour {
    static constexpr int pixels = 4 / Size;

    static __m128i colours() { return detail::from_words(colours_low, colours_high); }
    // Reads up to 16 bytes; the fourth sample is zero.
    static __m128i load(const Zet8u* p) {
        if constexpr (Size == 4) return _mm_and_si128(detail::load_raw(p), colours());
        const __m128i two = load_halves(p, p + 6);
        if constexpr (Size == 2) return _mm_and_si128(two, colours());
        const __m128i first = _mm_set1_epi64x(0xFFFFFF);
        return _mm_or_si128(_mm_and_si128(two, first), _mm_and_si128(_mm_slli_epi64(two, 8), _mm_slli_epi64(first, 32)));
    }
    // Writes up to 16 bytes.
    static void store(Zet8u* p, __m128i v) {
        if constexpr (Size == 4) return detail::store_raw(p, v);
        const __m128i first = _mm_set1_epi64x(0xFFFFFF);
        if constexpr (Size == 1) v = _mm_or_si128(_mm_and_si128(v, first), _mm_and_si128(_mm_srli_epi64(v, 8), _mm_slli_epi64(first, 24)));
        store_halves(p, p + 6, v);
    }

private:
    static constexpr uint64_t colours_low = Size == 1 ? 0x00FFFFFF00FFFFFF : Size == 2 ? 0x0000FFFFFFFFFFFF : ~uint64_t{0};
    static constexpr uint64_t colours_high = Size == 4 ? 0xFFFFFFFF : colours_low;
};

// Colours of three-sample pixels into those of four; the fourth sample stays, or becomes that of a constant.
template <int Size, bool Keeps> struct WidenPixels {
    using Register = ThreeInFour<Size>;
    static constexpr int pixels = 4 * Register::pixels, sources = 1, targets = 1, source_bytes = 3 * Size, target_bytes = 4 * Size;
    static constexpr int before = 0, behind = 1, unread = 0;
    static constexpr bool keeps = Keeps;
    __m128i fourth{}; // zero in the colours

    [[gnu::always_inline]] void operator()(const Zet8u* const* src, Zet8u* const* dst) const {
        for (int k = 0; k < 4; ++k) {
            Zet8u* const p = dst[0] + 16 * k;
            const __m128i other = Keeps ? _mm_andnot_si128(Register::colours(), detail::load_raw(p)) : fourth;
            detail::store_raw(p, _mm_or_si128(Register::load(src[0] + 12 * k), other));
        }
    }
};

template <int Size> struct NarrowPixels {
    using Register = ThreeInFour<Size>;
    static constexpr int pixels = 4 * Register::pixels, sources = 1, targets = 1, source_bytes = 4 * Size, target_bytes = 3 * Size;
    static constexpr int before = 0, behind = 1, unread = 0;
    static constexpr bool keeps = false;

    [[gnu::always_inline]] void operator()(const Zet8u* const* src, Zet8u* const* dst) const {
        for (int k = 0; k < 4; ++k) Register::store(dst[0] + 12 * k, detail::load_raw(src[0] + 16 * k));
    }
};

} // namespace zeti
