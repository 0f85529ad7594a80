// SPDX-License-Identifier: Apache-2.0
// Products of samples that stand for 0 to 1: with t = a * b and n bits, (t + 1 + (t >> n)) >> n. That is floor(t / (2^n - 1)) or one more,
// and exactly a or b where the other one is at full scale.
#pragma once

#include "core/simd.h"

namespace zeti {

struct FullScaleProduct {
    // 8u: t + 1 + (t >> 8) is floor((257 t + 256) / 256), and as no t is 2^16 - 1 the upper half of 257 (t + 1) is the same.
    Vec<Zet8u> operator()(Vec<Zet8u> a, Vec<Zet8u> b) const {
        const auto x = widen<Zet8u>(a), y = widen<Zet8u>(b);
        const Vec<Zet16u> full = splat(Zet16u{257});
        return narrow_to_8u(multiply_high(x.low * y.low + Zet16u{1}, full), multiply_high(x.high * y.high + Zet16u{1}, full));
    }

    // 16u: the upper half of t, plus the carry out of lower half + upper half + 1.
    Vec<Zet16u> operator()(Vec<Zet16u> a, Vec<Zet16u> b) const {
        const Vec<Zet16u> high = multiply_high(a, b), low = a * b;
        return high - as_lanes<Zet16u>(sub_saturating<Zet16u>(~high, low) == 0);
    }
};

} // namespace zeti
