// SPDX-License-Identifier: Apache-2.0
// Doubles of integers of 64 bits, rounded once. From two halves: the compiler's own conversion on the 32-bit machine is x87 code.
#pragma once

#include "core/base.h"

namespace zeti {

namespace detail {
inline Zet64f unsigned_to_double(Zet32u v) { return static_cast<Zet64f>(static_cast<Zet32s>(v ^ 0x80000000U)) + 0x1p31; } // exact
} // namespace detail

// Each half is exact, so that their sum is the only rounding. Inlined: a double that a function returns would pass through x87.
template <class V> [[gnu::always_inline]] inline Zet64f to_double(V v) {
    static_assert(sizeof(V) == 8);
    const auto high = static_cast<Zet32u>(static_cast<uint64_t>(v) >> 32);
    const Zet64f low = detail::unsigned_to_double(static_cast<Zet32u>(v));
    if constexpr (std::is_same_v<V, Zet64f>) return v;
    else if constexpr (std::is_signed_v<V>) return static_cast<Zet64f>(static_cast<Zet32s>(high)) * 0x1p32 + low;
    else return detail::unsigned_to_double(high) * 0x1p32 + low;
}

} // namespace zeti
