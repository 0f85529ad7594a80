// SPDX-License-Identifier: Apache-2.0
// Rows under a mask: a pixel is written where its mask byte is not zero.
#pragma once

#include "core/layout.h"
#include "core/view.h"
#include "signal/copy.h"

namespace zeti {

template <class T, class L> void copy_pixel(const T* src, T* dst) {
    for (int c = 0; c < L::colours; ++c) put(dst + c, get(src + c));
}

// `source(x)` points at the pixel for column x, with at least 16 pixels behind it. The mask is read in blocks of 16: an
// empty block is passed over, a full one moves as a whole, any other goes pixel by pixel.
template <class T, class L, class Source> void masked_row(Source source, T* dst, const Zet8u* mask, ptrdiff_t width) {
    constexpr int block = 16, pixel = L::channels;
    for (ptrdiff_t x = 0; x < width; x += block) {
        const int count = width - x < block ? static_cast<int>(width - x) : block;
        const __m128i bytes = count == block ? raw(load(mask + x)) : load_bytes(mask + x, count);
        const unsigned set = 0xFFFFu & ~static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
        if (set == 0) continue;
        const T* const from = source(x);
        T* const to = dst + x * pixel;
        if (set == 0xFFFF && !L::keeps_alpha) {
            std::memcpy(to, from, sizeof(T) * pixel * block);
        } else {
            for (int k = 0; k < count; ++k)
                if (set >> k & 1) copy_pixel<T, L>(from + k * pixel, to + k * pixel);
        }
    }
}

} // namespace zeti
