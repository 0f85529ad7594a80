// SPDX-License-Identifier: Apache-2.0
// Calls under a caller's float state, which they must neither change nor follow.
#pragma once

#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace test {

inline constexpr unsigned plain_state = 0x1F80; // of MXCSR
// Rounding, flush and denormals to zero, traps, flags.
inline constexpr unsigned odd_states[] = {0x3F80, 0x5F80, 0x7F80, 0x9FC0, 0xFFC0, 0x1D80, 0x0000, 0x1FBF};

template <class Call> auto under_state(unsigned state, Call call, unsigned volatileBits = 0) {
    _mm_setcsr(state);
    const auto result = call();
    const unsigned after = _mm_getcsr();
    _mm_setcsr(plain_state);
    EXPECT_EQ(after & ~volatileBits, state & ~volatileBits) << "the float state has changed";
    return result;
}

} // namespace test
