// SPDX-License-Identifier: Apache-2.0
// Short runs of one pixel, made anew for every row: the pixel spread over registers, where signal/set.h prepares for long rows.
#pragma once

#include <algorithm>

#include "core/simd.h"

namespace zeti {

template <int Pixel> class PixelRun {
public:
    explicit PixelRun(const Zet8u* pixel) {
        if constexpr (Pixel == 16) {
            part_[0] = part_[1] = part_[2] = raw(load(pixel));
        } else {
            constexpr int two = std::min(16, 2 * Pixel), four = std::min(16, 4 * Pixel);
            __m128i v = load_bytes(pixel, Pixel);
            v = _mm_or_si128(v, _mm_slli_si128(v, Pixel));
            v = _mm_or_si128(v, _mm_slli_si128(v, two));
            v = _mm_or_si128(v, _mm_slli_si128(v, four));
            if constexpr (Pixel == 1) v = _mm_unpacklo_epi64(v, v);
            // 16 and 32 bytes into the pattern; what the shift down leaves is filled from the pattern's start.
            constexpr int first = 16 % Pixel, second = 32 % Pixel, from_first = 16 % Pixel == 0 ? 16 : 8;
            constexpr int from_second = 16 % Pixel == 0 ? 16 : Pixel == 12 ? 4 : 10;
            part_[0] = v;
            part_[1] = _mm_or_si128(_mm_srli_si128(v, first), _mm_slli_si128(v, from_first));
            part_[2] = _mm_or_si128(_mm_srli_si128(v, second), _mm_slli_si128(v, from_second));
        }
    }
    void fill(Zet8u* dst, ptrdiff_t pixels) const {
        ptrdiff_t rest = pixels * Pixel;
        for (; rest >= 48; rest -= 48, dst += 48)
            for (int k = 0; k < 3; ++k) store(dst + 16 * k, as_lanes<Zet8u>(part_[k]));
        int k = 0;
        for (; rest >= 16; rest -= 16, dst += 16) store(dst, as_lanes<Zet8u>(part_[k++]));
        if (rest > 0) store_bytes(dst, part_[k], static_cast<int>(rest));
    }

private:
    __m128i part_[3];
};

} // namespace zeti
