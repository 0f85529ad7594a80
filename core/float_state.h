// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <xmmintrin.h>

#include <bit>

#include "core/base.h"

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

// a < b whatever the float state is, for arguments that are tested before it is set: by the bits. False for NaN.
template <class T> constexpr bool less(T a, T b) { return a < b; }
constexpr bool less(Zet32f a, Zet32f b) {
    constexpr Zet32s infinity = 0x7F800000;
    const auto magnitude = [](Zet32f v) { return std::bit_cast<Zet32s>(v) & max_of<Zet32s>; };
    const auto ordered = [&](Zet32f v) { return std::bit_cast<Zet32s>(v) < 0 ? -magnitude(v) : magnitude(v); };
    return magnitude(a) <= infinity && magnitude(b) <= infinity && ordered(a) < ordered(b);
}

} // namespace zeti
