// SPDX-License-Identifier: Apache-2.0
// Absolute values. 16s: the larger of the sample and its negative, which saturates, so that -32768 gives 32767. 32f: the sign
// bit is cleared, that of a NaN too.
#pragma once

#include "core/simd.h"

namespace zeti {

struct AbsoluteValue {
    Vec<Zet16s> operator()(Vec<Zet16s> x) const { return max<Zet16s>(x, sub_saturating<Zet16s>(Vec<Zet16s>{}, x)); }
    Vec<Zet32f> operator()(Vec<Zet32f> x) const { return as_lanes<Zet32f>(as_lanes<Zet32s>(x) & max_of<Zet32s>); }
};

} // namespace zeti
