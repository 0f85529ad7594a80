// SPDX-License-Identifier: Apache-2.0
// Bitwise kernels: ownsAnd_8u, ownsOr_8u, ownsXor_8u and those of 16u and 32s; ownsComplement_32s.
#pragma once

#include "core/simd.h"

namespace zeti {

struct And {
    template <class V> V operator()(V a, V b) const { return a & b; }
};

struct Or {
    template <class V> V operator()(V a, V b) const { return a | b; }
};

struct Xor {
    template <class V> V operator()(V a, V b) const { return a ^ b; }
};

// Two's complement to sign and magnitude. -2^31, whose magnitude has no room below the sign, stays.
struct Complement {
    template <class None> Vec<Zet32s> operator()(None, Vec<Zet32s> v) const {
        const auto bits = as_lanes<Zet32u>(v), negative = as_lanes<Zet32u>(v < 0);
        return as_lanes<Zet32s>(((bits ^ negative) - negative) | (bits & 0x80000000u));
    }
};

} // namespace zeti
