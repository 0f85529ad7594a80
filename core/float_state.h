// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <xmmintrin.h>

namespace zeti {

// While it lives, this thread computes floats with the default state: nearest with ties to even, denormals kept, no traps.
// Results depend neither on what the caller has set nor on what a worker thread inherited, and the caller's state,
// flags included, is as it was afterwards.
class FloatState {
public:
    FloatState() : saved_(_mm_getcsr()) { _mm_setcsr(default_state); }
    ~FloatState() { _mm_setcsr(saved_); }
    FloatState(const FloatState&) = delete;
    FloatState& operator=(const FloatState&) = delete;

private:
    static constexpr unsigned default_state = 0x1F80; // all exceptions masked, nearest, no flush to zero
    unsigned saved_;
};

} // namespace zeti
