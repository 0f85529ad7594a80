// SPDX-License-Identifier: Apache-2.0
// Rows of pixels from right to left: owniFlipCopy_8u_C1, for pixels of any number of bytes. Samples keep their order within a pixel.
#pragma once

#include "signal/block_row.h"

namespace zeti {

namespace detail {

// The pixels of a register.
template <int Pixel> __m128i reversed(__m128i v) {
    if constexpr (Pixel == 8) return _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2));
    else if constexpr (Pixel == 4) return _mm_shuffle_epi32(v, _MM_SHUFFLE(0, 1, 2, 3));
    else if constexpr (Pixel == 2) {
        v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(0, 1, 2, 3)), _MM_SHUFFLE(0, 1, 2, 3));
        return reversed<8>(v);
    } else if constexpr (Pixel == 1) {
        return reversed<2>(_mm_or_si128(_mm_srli_epi16(v, 8), _mm_slli_epi16(v, 8)));
    } else {
        return v;
    }
}

} // namespace detail

// A block of pixels of `Pixel` bytes; `Keeps`: the last quarter of every pixel stays as the destination has it.
template <int Pixel, bool Keeps> struct ReversePixels {
    static constexpr bool in_registers = 16 % Pixel == 0;
    static constexpr int pixels = in_registers ? 64 / Pixel : 48 / Pixel;
    static constexpr int aside = in_registers ? 0 : 1; // pixels touched before a block of the source and behind one of the destination

    [[gnu::always_inline]] void operator()(const Zet8u* src, Zet8u* dst) const {
        // Where pixels do not fill registers each store covers what the last one wrote too much.
        if constexpr (Pixel == 3) {
            for (int i = 0; i < 48; i += 12) {
                const __m128i two = _mm_srli_epi64(load_halves(src + 48 - 8 - i, src + 48 - 14 - i), 16); // pixels in half a register
                store_halves(dst + i, dst + i + 6, _mm_or_si128(_mm_srli_epi64(two, 24), _mm_slli_epi64(two, 24)));
            }
        } else if constexpr (Pixel == 6) {
            for (int i = 0; i < 48; i += 12)
                store_halves(dst + i, dst + i + 6, _mm_srli_epi64(load_halves(src + 48 - 8 - i, src + 48 - 14 - i), 16));
        } else if constexpr (Pixel == 12) {
            for (int i = 0; i < 48; i += 12) store(dst + i, as_lanes<Zet8u>(_mm_srli_si128(raw(load(src + 32 - i)), 4)));
        } else if constexpr (Pixel == 1) {
            // Half of it as words: a register costs the vector units three shuffles and a swap.
            for (int i = 0; i < 64; i += 32) {
                store(dst + i, as_lanes<Zet8u>(detail::reversed<1>(raw(load(src + 48 - i)))));
                for (int k = 16; k < 32; k += 8) {
                    const uint64_t word = __builtin_bswap64(detail::load_word<uint64_t>(src + 56 - i - k));
                    std::memcpy(dst + i + k, &word, 8);
                }
            }
        } else {
            for (int i = 0; i < 64; i += 16) {
                __m128i v = detail::reversed<Pixel>(raw(load(src + 48 - i)));
                if constexpr (Keeps) v = select_colours(v, raw(load(dst + i)));
                store(dst + i, as_lanes<Zet8u>(v));
            }
        }
    }

private:
    static __m128i select_colours(__m128i v, __m128i old) {
        constexpr uint64_t low = Pixel == 4 ? 0x00FFFFFF00FFFFFF : Pixel == 8 ? 0x0000FFFFFFFFFFFF : ~uint64_t{0};
        const __m128i colours = detail::from_words(low, Pixel == 16 ? 0xFFFFFFFF : low);
        return _mm_or_si128(_mm_and_si128(colours, v), _mm_andnot_si128(colours, old));
    }
};

// dst[x] = src[n - 1 - x]; the two do not overlap.
template <int Pixel, bool Keeps> [[gnu::noinline, gnu::flatten]] void owniFlipCopy_8u(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
    using Block = ReversePixels<Pixel, Keeps>;
    const Block block;
    // `count` pixels from x on, at most a block, by way of buffers.
    const auto buffered = [&](ptrdiff_t x, ptrdiff_t count) __attribute__((always_inline)) {
        Zet8u in[Block::pixels * Pixel], out[Block::pixels * Pixel];
        std::memcpy(in + (Block::pixels - count) * Pixel, src + (n - x - count) * Pixel, static_cast<size_t>(count * Pixel));
        if constexpr (Keeps) std::memcpy(out, dst + x * Pixel, static_cast<size_t>(count * Pixel));
        block(in, out);
        std::memcpy(dst + x * Pixel, out, static_cast<size_t>(count * Pixel));
    };
    if (Block::aside == 0 && n < Block::pixels) return buffered(0, n);
    ptrdiff_t x = 0;
    for (; x <= n - Block::pixels - Block::aside; x += Block::pixels) block(src + (n - x - Block::pixels) * Pixel, dst + x * Pixel);
    if constexpr (Block::aside == 0) {
        if (x < n) buffered(n - Block::pixels, Block::pixels); // part of it once more
    } else {
        for (; x < n; ++x) std::memcpy(dst + x * Pixel, src + (n - 1 - x) * Pixel, Pixel);
    }
}

} // namespace zeti
