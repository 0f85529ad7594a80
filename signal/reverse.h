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

// 32 bytes of pixels that fill registers, last pixel first.
template <int Pixel> class Turned {
public:
    explicit Turned(const Zet8u* p) : first_(reversed<Pixel>(raw(load(p + 16)))) {
        if constexpr (in_words) {
            for (int k = 0; k < 2; ++k) words_[k] = __builtin_bswap64(load_word<uint64_t>(p + 8 - 8 * k));
        } else {
            second_ = reversed<Pixel>(raw(load(p)));
        }
    }
    // `Keeps`: the last quarter of every pixel stays as it is there.
    template <bool Keeps> void to(Zet8u* p) const {
        put<Keeps>(p, first_);
        if constexpr (in_words) std::memcpy(p + 16, words_, 16);
        else put<Keeps>(p + 16, second_);
    }

private:
    static constexpr bool in_words = Pixel == 1; // half of it: a register costs the vector units three shuffles and a swap

    template <bool Keeps> static void put(Zet8u* p, __m128i v) {
        constexpr uint64_t low = Pixel == 4 ? 0x00FFFFFF00FFFFFF : Pixel == 8 ? 0x0000FFFFFFFFFFFF : ~uint64_t{0};
        if constexpr (Keeps) {
            const __m128i colours = from_words(low, Pixel == 16 ? 0xFFFFFFFF : low);
            v = _mm_or_si128(_mm_and_si128(colours, v), _mm_andnot_si128(colours, raw(load(p))));
        }
        store(p, as_lanes<Zet8u>(v));
    }

    __m128i first_, second_{};
    uint64_t words_[2] = {};
};

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
        } else {
            for (int i = 0; i < 64; i += 32) detail::Turned<Pixel>(src + 32 - i).template to<Keeps>(dst + i);
        }
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

// owniFlip_8u_C1: a[x] and b[n - 1 - x], for pixels that fill registers, change places; the two do not overlap.
template <int Pixel, bool Keeps> [[gnu::noinline, gnu::flatten]] void owniFlip_8u(Zet8u* a, Zet8u* b, ptrdiff_t n) {
    constexpr ptrdiff_t block = 32;
    Zet8u* end = b + n * Pixel;
    for (; end - b >= block; a += block) {
        end -= block;
        const detail::Turned<Pixel> fromA(a), fromB(end);
        fromB.template to<Keeps>(a), fromA.template to<Keeps>(end);
    }
    if (end == b) return;
    Zet8u kept[block];
    std::memcpy(kept, a, static_cast<size_t>(end - b));
    owniFlipCopy_8u<Pixel, Keeps>(b, a, (end - b) / Pixel);
    owniFlipCopy_8u<Pixel, Keeps>(kept, b, (end - b) / Pixel);
}

} // namespace zeti
