// SPDX-License-Identifier: Apache-2.0
// owniTranspose_8u_C1R_W7: tiles of pixels with rows and columns exchanged, for pixels of any number of bytes.
#pragma once

#include "core/view.h"
#include "signal/channels.h"
#include "signal/copy.h"

namespace zeti {

// Squares of `side` pixels of `Pixel` bytes. May write up to a pixel behind each row.
template <int Pixel> struct TransposeSquare {
    static constexpr bool in_registers = 16 % Pixel == 0;
    static constexpr int side = in_registers ? 16 / Pixel : 8;

    [[gnu::always_inline]] static void run(const Zet8u* src, ptrdiff_t srcStep, Zet8u* dst, ptrdiff_t dstStep) {
        if constexpr (in_registers) {
            __m128i r[side];
            for (int k = 0; k < side; ++k) r[k] = detail::load_raw(src + k * srcStep);
            if constexpr (Pixel < 16) detail::shuffle<Pixel, detail::log2_of(side)>(r);
            for (int k = 0; k < side; ++k) detail::store_raw(dst + k * dstStep, r[k]);
        } else {
            constexpr size_t word = Pixel == 3 ? 4 : Pixel == 6 ? 8 : 16; // each covers what the last one wrote too much
            for (int y = 0; y < side; ++y)
                for (int x = 0; x < side; ++x) std::memcpy(dst + y * dstStep + x * Pixel, src + x * srcStep + y * Pixel, word);
        }
    }
};

// A tile on its way: whole pieces of rows are read into one buffer and written from another, so that no line of memory is visited twice
// however the rows of an image lie in the cache.
template <int Pixel> class TransposeTile {
    using Square = TransposeSquare<Pixel>;

public:
    // At most so many rows, which become pieces of whole lines of 64 bytes, and so many columns, pieces of 64 bytes or a little less.
    static constexpr int rows = Pixel == 1 || Pixel == 3 ? 64 : Pixel == 2 || Pixel == 6 ? 32 : 16;
    static constexpr int columns = Square::in_registers ? 64 / Pixel : Pixel == 3 ? 16 : 8;

    void read(Src<Zet8u> src, ptrdiff_t width, ptrdiff_t height) {
        if (width == columns)
            for (ptrdiff_t y = 0; y < height; ++y) std::memcpy(in_ + y * in_step, src.row(y), columns * Pixel);
        else
            for (ptrdiff_t y = 0; y < height; ++y) owniCopy_8u_C1(src.row(y), in_ + y * in_step, width * Pixel, Cache::plain);
    }
    // Of a tile of `width` columns and `height` rows: rows of `height` pixels.
    void write(Dst<Zet8u> dst, ptrdiff_t width, ptrdiff_t height, Cache cache) {
        for (ptrdiff_t x = 0; x < width; x += Square::side)
            for (ptrdiff_t y = 0; y < height; y += Square::side)
                Square::run(in_ + y * in_step + x * Pixel, in_step, out_ + x * out_step + y * Pixel, out_step);
        if (height == rows && cache == Cache::streaming)
            for (ptrdiff_t x = 0; x < width; ++x) stream_lines(out_ + x * out_step, dst.row(x), rows * Pixel);
        else if (height == rows)
            for (ptrdiff_t x = 0; x < width; ++x) std::memcpy(dst.row(x), out_ + x * out_step, rows * Pixel);
        else
            for (ptrdiff_t x = 0; x < width; ++x) owniCopy_8u_C1(out_ + x * out_step, dst.row(x), height * Pixel, cache);
    }
    // Asks the memory for a tile that will be read.
    [[gnu::always_inline]] static void announce(Src<Zet8u> src, ptrdiff_t height) {
        for (ptrdiff_t y = 0; y < height; ++y) _mm_prefetch(reinterpret_cast<const char*>(src.row(y)), _MM_HINT_T0);
    }

private:
    static constexpr int in_step = columns * Pixel + 16, out_step = rows * Pixel + 16;

    alignas(16) Zet8u in_[rows * in_step + 16];
    alignas(16) Zet8u out_[columns * out_step + 16];
};

} // namespace zeti
