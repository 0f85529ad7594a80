// SPDX-License-Identifier: Apache-2.0
// Complex products on registers of interleaved parts:
//   re = a.re b.re - a.im b.im,  im = a.re b.im + a.im b.re.
#pragma once

#include "signal/scaling.h"

namespace zeti {

// Each sum is formed in 32 bits and wraps, kept on purpose: four parts of -32768 give -2^31.
struct MulComplex16 {
    static Pair2<Zet32s> wide(Vec<Zet16s> a, Vec<Zet16s> b) {
        const Vec<Zet16s> real = as_lanes<Zet16s>(splat(Zet32s{0x0000FFFF}));
        const auto words = as_lanes<Zet32u>(b);
        const auto swapped = as_lanes<Zet16s>(words >> 16 | words << 16);
        const __m128i re = _mm_sub_epi32(raw(multiply_add_pairs(a & real, b)), raw(multiply_add_pairs(a & ~real, b)));
        const __m128i im = raw(multiply_add_pairs(a, swapped));
        return {as_lanes<Zet32s>(_mm_unpacklo_epi32(re, im)), as_lanes<Zet32s>(_mm_unpackhi_epi32(re, im))};
    }
    static Vec<Zet16s> saturated(Vec<Zet16s> a, Vec<Zet16s> b) {
        const auto v = wide(a, b);
        return narrow_to_16s(v.low, v.high);
    }
};

struct MulComplex32f {
    static Vec<Zet32f> saturated(Vec<Zet32f> a, Vec<Zet32f> b) {
        const Vec<Zet32f> re = __builtin_shufflevector(a, a, 0, 0, 2, 2), im = __builtin_shufflevector(a, a, 1, 1, 3, 3);
        const Vec<Zet32f> cross = im * __builtin_shufflevector(b, b, 1, 0, 3, 2);
        const Vec<Zet32s> negate_real = {min_of<Zet32s>, 0, min_of<Zet32s>, 0};
        return re * b + as_lanes<Zet32f>(as_lanes<Zet32s>(cross) ^ negate_real);
    }
};

} // namespace zeti
