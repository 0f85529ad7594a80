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

// --- Registers ----------------------------------------------------------------------------------------------------

// Logical shift of unsigned lanes by 1 to 16: as the upper half of a product, which is one operation where a shift by a variable
// count is two. Bytes are shifted in pairs: their upper bits hold what crossed over and must be masked.
template <class T> class Shifted {
public:
    explicit Shifted(int n) : factor_(splat(static_cast<Zet16u>(1u << (16 - (n < 1 ? 1 : n))))) {} // a user of 0 does not shift
    Vec<T> operator()(Vec<T> v) const { return as_lanes<T>(multiply_high(as_lanes<Zet16u>(v), factor_)); }

private:
    Vec<Zet16u> factor_;
};
template <class T> Vec<T> unmixed(Vec<T> v, Vec<T> mask) {
    if constexpr (sizeof(T) == 1) return v & mask;
    else return v;
}

// Unsigned lanes of any value, 2 <= s <= bits of the lane. The average rounded up forms v + 2^(s-1) - 1 + bit s and its first
// shift without a carry.
template <class T> class RoundUnsigned {
public:
    explicit RoundUnsigned(int s)
        : whole_(s), less_(s - 1), bit_(splat(T(s < bits ? 1 : 0))), bias_(splat(T((1u << (s - 1)) - 2))),
          mask_(splat(T(max_of<T> >> (s - 1)))) {}
    Vec<T> operator()(Vec<T> v) const {
        const Vec<T> odd = whole_(v) & bit_;
        return unmixed<T>(less_(average_up(v, bias_ + odd)), mask_);
    }

private:
    static constexpr int bits = 8 * sizeof(T);
    Shifted<T> whole_, less_;
    Vec<T> bit_, bias_, mask_;
};

// Sums of two unsigned lanes, from `up`, their average rounded up, and bit 0 of `lost`, set where that rounding went up;
// 2 <= s <= bits of the lane + 1. With n = s - 1 the result is (up + 2^(n-1) - 1 + y) >> n, where y is bit n of up unless the
// rounding went up: then the sum is no tie.
template <class T> class RoundAverage {
public:
    explicit RoundAverage(int s)
        : s_is_2_(s == 2), n_(s - 1), less_(s - 2), bit_(splat(T(s - 1 < bits ? 1 : 0))), bias_(splat(T((1u << (s - 2)) - 2))),
          mask_(splat(T(max_of<T> >> (s - 2)))) {}
    Vec<T> operator()(Vec<T> up, Vec<T> lost) const {
        const Vec<T> quotient = n_(up), y = quotient & ~lost & bit_;
        if (s_is_2_) return (quotient & T(max_of<T> >> 1)) + (up & y); // up + y may leave the lane
        return unmixed<T>(less_(average_up(up, bias_ + y)), mask_);
    }

private:
    static constexpr int bits = 8 * sizeof(T);
    bool s_is_2_;
    Shifted<T> n_, less_;
    Vec<T> bit_, bias_, mask_;
};

// Lanes of any value, 1 <= n <= bits of the value. The remainder v mod 2^n is compared with its half; an odd quotient breaks ties
// upward, and so does bit 0 of `odd`.
template <class T> class RoundRemainder {
public:
    explicit RoundRemainder(int n) : n_(count_of(n)), mask_(splat(T((uint64_t{1} << n) - 1))), half_(splat(T(1u << (n - 1)))) {}
    Vec<T> operator()(Vec<T> v, Vec<T> odd = Vec<T>{}) const {
        const Vec<T> quotient = shift_right<T>(v, n_);
        return quotient - as_lanes<T>((v & mask_) > half_ - ((quotient | odd) & T{1}));
    }

private:
    Count n_;
    Vec<T> mask_, half_;
};

// Signed lanes f, v = 2 * f + bit 0 of `odd`, 2 <= s <= bits of the lane: what the halving lost breaks ties upward.
template <class T> struct RoundHalved : RoundRemainder<T> {
    explicit RoundHalved(int s) : RoundRemainder<T>(s - 1) {}
};

// The same for s = 1: what was lost goes up from odd f. The largest f stays: one more would leave the type.
template <class T> Vec<T> round_halved_once(Vec<T> f, Vec<T> odd) { return add_saturating<T>(f, f & odd & T{1}); }

// 32-bit lanes, 1 <= s <= 31, where v plus 2^(s-1) fits the lane.
template <class W> class Round32 {
public:
    explicit Round32(int s) : s_(count_of(s)), bit_(splat(W(1u << s))), bias_(splat(W((1u << (s - 1)) - 1))) {}
    Vec<W> operator()(Vec<W> v) const { return shift_right<W>(v + bias_ - as_lanes<W>((v & bit_) == bit_), s_); }

private:
    Count s_;
    Vec<W> bit_, bias_;
};

// --- Scaling up ---------------------------------------------------------------------------------------------------

// Saturated samples times 2^k, saturated; 1 <= k, and for bytes k <= 7.
template <class T> class ShiftLeft {
public:
    explicit ShiftLeft(int k) : k_(count_of(k < bits ? k : bits)) {}
    Vec<T> operator()(Vec<T> v) const {
        if constexpr (std::is_same_v<T, Zet8u>) { // k <= 7: 255 * 2^7 still reads as a positive 16-bit number
            const auto [low, high] = widen<T>(v);
            return narrow_to_8u(shift_left<Zet16u>(low, k_), shift_left<Zet16u>(high, k_));
        } else if constexpr (std::is_same_v<T, Zet8s>) {
            const auto [low, high] = widen<T>(v);
            return narrow_to_8s(shift_left<Zet16s>(low, k_), shift_left<Zet16s>(high, k_));
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

// Floats times 2^-s for every s, in single precision. The power itself may lie beyond the type; its two halves do not, and what a
// scale factor beyond theirs would give they give as well: 0, or more than any integer type holds.
class ScaleFloat {
public:
    explicit ScaleFloat(int s)
        : half_(splat(power_of_two(-(clamped(s) / 2)))), rest_(splat(power_of_two(-(clamped(s) - clamped(s) / 2)))) {}
    Vec<Zet32f> operator()(Vec<Zet32f> v) const { return v * half_ * rest_; }

private:
    static constexpr int clamped(int s) { return s < -252 ? -252 : s > 252 ? 252 : s; }
    Vec<Zet32f> half_, rest_;
};

} // namespace zeti
