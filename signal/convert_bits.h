// SPDX-License-Identifier: Apache-2.0
// Bits to bytes: 255 for a set bit, 0 for a clear one, the most significant bit of a byte first.
#pragma once

#include "core/simd.h"

namespace zeti {

// n bytes from the bits that begin with bit `first` (0 to 7) of *src. Reads the bytes that hold these bits and no others.
inline void ownsConvert_1u8u(const Zet8u* src, int first, Zet8u* dst, ptrdiff_t n) {
    const __m128i bit = _mm_set1_epi64x(0x0102040810204080); // of each lane within its byte
    for (ptrdiff_t i = 0; i < n; i += lanes<Zet8u>, src += 2) {
        const int count = n - i < lanes<Zet8u> ? static_cast<int>(n - i) : lanes<Zet8u>;
        const int bytes = (first + count + 7) / 8;
        const int word = src[0] << 16 | (bytes > 1 ? src[1] << 8 : 0) | (bytes > 2 ? src[2] : 0);
        const int wanted = word >> (8 - first);
        const __m128i two = _mm_cvtsi32_si128((wanted >> 8 & 0xFF) | (wanted & 0xFF) << 8);
        const __m128i four = _mm_unpacklo_epi8(two, two);
        const __m128i each = _mm_unpacklo_epi32(_mm_shufflelo_epi16(four, 0x00), _mm_shufflelo_epi16(four, 0x55));
        const __m128i lanesOfByte = _mm_shuffle_epi32(each, 0x50); // the first 8 lanes hold the first byte
        const Vec<Zet8u> result = as_lanes<Zet8u>(_mm_cmpeq_epi8(_mm_and_si128(lanesOfByte, bit), bit));
        if (count == lanes<Zet8u>) store(dst + i, result);
        else store(dst + i, result, count);
    }
}

} // namespace zeti
