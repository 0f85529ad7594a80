// SPDX-License-Identifier: Apache-2.0
// The one rule of integer results: the exact value v, times 2^-s, rounded to nearest with ties to even, saturated.
//
// For s > 0 that is (v + 2^(s-1) - 1 + bit s of v) >> s, for negative v as well. The forms below differ only in how they
// keep the sum from overflowing their lanes. For s < 0, saturating before and after the shift gives the same as after it alone.
#pragma once

#include <bit>

#include "core/simd.h"

namespace zeti {

// --- One value ----------------------------------------------------------------------------------------------------

template <class T> constexpr T saturate(int64_t v) { return static_cast<T>(v < min_of<T> ? min_of<T> : v > max_of<T> ? max_of<T> : v); }

// v * 2^-s on 64-bit values, for every v and 0 < s < 64: the remainder is compared, as v plus a half might overflow.
constexpr int64_t round_shift(int64_t v, int s) {
    const int64_t quotient = v >> s;
    const uint64_t remainder = static_cast<uint64_t>(v) & ((uint64_t{1} << s) - 1), half = uint64_t{1} << (s - 1);
    return quotient + (remainder + (quotient & 1) > half ? 1 : 0);
}

// 2^n, for -127 < n < 128.
constexpr Zet32f power_of_two(int n) { return std::bit_cast<Zet32f>((127 + n) << 23); }

// --- Registers, s >= 2 unless stated ------------------------------------------------------------------------------

// 16u lanes of any value, 2 <= s <= 16. The halving average forms the sum in 17 bits.
class Round16u {
public:
    explicit Round16u(int s) : s_(count_of(s)), less_(count_of(s - 1)), bias_(splat(static_cast<Zet16u>((1 << (s - 1)) - 2))) {}
    Vec<Zet16u> operator()(Vec<Zet16u> v) const {
        const Vec<Zet16u> odd = shift_right<Zet16u>(v, s_) & Zet16u{1};
        return shift_right<Zet16u>(average_up(v, bias_ + odd), less_);
    }

private:
    Count s_, less_;
    Vec<Zet16u> bias_;
};

// 32-bit lanes, 1 <= s <= 31, where v plus 2^(s-1) fits the lane.
template <class W> class Round32 {
public:
    explicit Round32(int s) : s_(count_of(s)), bias_(splat(static_cast<W>((1u << (s - 1)) - 1))) {}
    Vec<W> operator()(Vec<W> v) const {
        const Vec<W> odd = shift_right<W>(v, s_) & W{1};
        return shift_right<W>(v + bias_ + odd, s_);
    }

private:
    Count s_;
    Vec<W> bias_;
};

// 2 * f + lost as signed 32-bit lanes of any f, lost 0 or 1, 1 <= s <= 32. With s = 1 the low bit alone decides.
class Round33 {
public:
    explicit Round33(int s)
        : less_(count_of(s - 1)), mask_(splat(static_cast<Zet32s>((1u << (s - 1)) - 1))), half_(splat(static_cast<Zet32s>(s > 1 ? 1u << (s - 2) : 0))),
          direct_(splat(s > 1 ? 0 : -1)) {}
    Vec<Zet32s> operator()(Vec<Zet32s> f, Vec<Zet32s> lost) const {
        const Vec<Zet32s> quotient = shift_right<Zet32s>(f, less_);
        const Vec<Zet32s> sticky = select<Zet32s>(direct_, quotient & lost, (quotient & 1) | lost); // ties go up only from odd quotients
        const Vec<Zet32s> remainder = f & mask_;
        // The largest quotient stays: one more would leave the type, where the rule saturates.
        return quotient - (((remainder - half_ + sticky) > 0) & (quotient != max_of<Zet32s>));
    }

private:
    Count less_;
    Vec<Zet32s> mask_, half_, direct_;
};

// --- Scaling up ---------------------------------------------------------------------------------------------------

// Saturated samples times 2^k, saturated; k >= 1.
template <class T> class ShiftLeft {
public:
    explicit ShiftLeft(int k) : k_(count_of(k < bits ? k : bits)) {}
    Vec<T> operator()(Vec<T> v) const {
        if constexpr (std::is_same_v<T, Zet8u>) { // k <= 7: 255 * 2^7 still reads as a positive 16-bit number
            const auto [low, high] = widen<T>(v);
            return narrow_to_8u(shift_left<Zet16u>(low, k_), shift_left<Zet16u>(high, k_));
        } else {
            const Vec<T> shifted = shift_left<T>(v, k_);
            const auto exact = shift_right<T>(shifted, k_) == v;
            if constexpr (std::is_signed_v<T>) return select<T>(exact, shifted, as_lanes<T>(v < 0) ^ max_of<T>);
            else return shifted | ~as_lanes<T>(exact);
        }
    }

private:
    static constexpr int bits = 8 * sizeof(T); // a shift by all bits gives 0 on unsigned lanes: only 0 stays exact
    Count k_;
};

// Saturated samples of unlimited scale: the type's bound by the sign, 0 for 0.
template <class T> Vec<T> extreme(Vec<T> v) {
    if constexpr (std::is_unsigned_v<T>) return ~as_lanes<T>(v == 0);
    else return (as_lanes<T>(v > 0) & max_of<T>) | (as_lanes<T>(v < 0) & min_of<T>);
}

} // namespace zeti
