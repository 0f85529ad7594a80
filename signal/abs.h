// SPDX-License-Identifier: Apache-2.0
// Absolute values. 16s: the sign mask XORed in, then subtracted with saturation, so that -32768 gives 32767. 32f: the sign bit
// is cleared, that of a NaN too.
#pragma once

#include "core/simd.h"

namespace zeti {

struct AbsoluteValue {
    Vec<Zet16s> operator()(Vec<Zet16s> x) const {
        const Vec<Zet16s> sign = x >> 15;
        return sub_saturating<Zet16s>(x ^ sign, sign);
    }
    Vec<Zet32f> operator()(Vec<Zet32f> x) const { return as_lanes<Zet32f>(as_lanes<Zet32s>(x) & max_of<Zet32s>); }
};

} // namespace zeti
