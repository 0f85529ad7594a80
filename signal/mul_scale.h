// SPDX-License-Identifier: Apache-2.0
// Products of samples that stand for 0 to 1: with t = a * b and n bits, (t + 1 + (t >> n)) >> n, which is t / N truncated, N = 2^n - 1:
// t = q N + r is q 2^n + (r - q), so that t >> n is q, or q - 1 where r < q, and the sum is q 2^n plus r + 1 or r, less than 2^n.
#pragma once

#include "core/simd.h"

namespace zeti {

struct FullScaleProduct {
    // 8u: the result is (257 t + 256) >> 16, and as t + 1 is never 2^16 that is the upper half of 257 (t + 1).
    Vec<Zet8u> operator()(Vec<Zet8u> a, Vec<Zet8u> b) const {
        const auto x = widen<Zet8u>(a), y = widen<Zet8u>(b);
        const Vec<Zet16u> full = splat(Zet16u{257});
        return narrow_to_8u(multiply_high(x.low * y.low + Zet16u{1}, full), multiply_high(x.high * y.high + Zet16u{1}, full));
    }

    // 16u: the upper half of t, plus the carry out of lower half + upper half + 1, which is the top bit of their average rounded up.
    Vec<Zet16u> operator()(Vec<Zet16u> a, Vec<Zet16u> b) const {
        const Vec<Zet16u> high = multiply_high(a, b), low = a * b;
        return high + (average_up(low, high) >> 15);
    }
};

} // namespace zeti
