// SPDX-License-Identifier: Apache-2.0
// Sums, differences and products with a constant, scaled down. With a constant c, which samples give a tie that goes down is seen
// from their low bits alone: half a unit is added to all samples, and one less than that to these.
#pragma once

#include "signal/scaling.h"
#include "signal/sub.h"

namespace zeti {

// v = x + c or, for Op = Sub, x - c; 2 <= s < bits of the sample. As c + 2^(s-1) may be any number, a whole multiple of 2^s of it is
// left out of the sum and taken from the result. Signed samples are summed as unsigned ones, 2^15 above.
template <class Op, class T> class ScaledSumWithConstant {
    using U = std::make_unsigned_t<T>;
    static constexpr int bits = 8 * sizeof(T);
    static constexpr int zero = std::is_signed_v<T> ? 1 << (bits - 1) : 0; // what stands for 0

public:
    // What the kernel takes for a channel's constant, in this order.
    struct Constants {
        T tie, addend, excess;
        Constants(int value, int s) {
            const int c = std::is_same_v<Op, Sub> ? -value : value, half = 1 << (s - 1);
            const int sum = c + half - zero, left_out = (sum - 2) >> s; // at least 2 remain: no addend wraps
            tie = static_cast<T>((half - c) & ((2 << s) - 1));
            addend = static_cast<T>(sum - left_out * (1 << s) - 1);
            excess = static_cast<T>(-left_out);
        }
    };

    explicit ScaledSumWithConstant(int s)
        : low_(splat(static_cast<T>((2u << s) - 1))), less_(s - 1), mask_(splat(static_cast<U>(max_of<U> >> (s - 1)))) {}

    Vec<T> operator()(const auto& c, Vec<T> x) const {
        const Vec<U> addend = as_lanes<U>(c[1]) + as_lanes<U>((x & low_) == c[0]);
        Vec<U> sum = as_lanes<U>(x);
        if constexpr (zero != 0) sum ^= static_cast<U>(zero);
        sum = unmixed<U>(less_(average_up(sum, addend)), mask_);
        // Only differences of unsigned samples leave the type, below 0.
        if constexpr (std::is_same_v<Op, Sub> && zero == 0) return sub_saturating<T>(sum, c[2]);
        else return as_lanes<T>(sum - as_lanes<U>(c[2]));
    }

private:
    Vec<T> low_;
    Shifted<U> less_;
    Vec<U> mask_;
};

// v = x * c for one odd c for all samples.

// 8u, 1 <= s <= 7. With x in the upper byte, and in the lower one what makes a half after the product, the upper half of the product with
// c * 2^(8-s) is the result; it reads as a positive number.
class ScaledProductWithConstant8u {
    static constexpr int half_before(Zet8u c, int s) { return ((1 << (s - 1 + 8)) + c - 1) / c; }

public:
    static bool takes(Zet8u c, int s) { return c % 2 == 1 && s >= 1 && s <= 7 && half_before(c, s) <= 255; }

    ScaledProductWithConstant8u(Zet8u c, int s)
        : low_(splat(static_cast<Zet8u>((2 << s) - 1))), tie_(splat(static_cast<Zet8u>((1 << (s - 1)) + (c / 2 % 2 << s)))),
          half_(splat(static_cast<Zet8u>(half_before(c, s)))), c_(splat(static_cast<Zet16u>(c << (8 - s)))) {}
    Vec<Zet8u> operator()(const auto&, Vec<Zet8u> x) const {
        const auto [low, high] = interleave<Zet8u>(half_ + as_lanes<Zet8u>((x & low_) == tie_), x);
        return narrow_to_8u(multiply_high(low, c_), multiply_high(high, c_));
    }

private:
    Vec<Zet8u> low_, tie_, half_;
    Vec<Zet16u> c_;
};

// 8u times less than a half, 2 <= s <= 7: x moves down by a bit, to make room for the half above it.
class ScaledProductWithFraction8u {
    static constexpr int half_before(Zet8u c, int s) { return ((1 << (s - 1 + 7)) + c - 1) / c; }

public:
    static bool takes(Zet8u c, int s) { return c % 2 == 1 && s >= 2 && s <= 7 && c < 1 << (s - 1); }

    ScaledProductWithFraction8u(Zet8u c, int s)
        : low_(splat(static_cast<Zet8u>((2 << s) - 1))), tie_(splat(static_cast<Zet8u>((1 << (s - 1)) + (c / 2 % 2 << s)))),
          half_(splat(static_cast<Zet16u>(half_before(c, s) - 1))), c_(splat(static_cast<Zet16u>(c << (9 - s)))) {}
    Vec<Zet8u> operator()(const auto&, Vec<Zet8u> x) const {
        const auto [low, high] = interleave<Zet8u>(Zet8u{2} + as_lanes<Zet8u>((x & low_) == tie_), x);
        return narrow_to_8u(multiply_high((low >> 1) + half_, c_), multiply_high((high >> 1) + half_, c_));
    }

private:
    Vec<Zet8u> low_, tie_;
    Vec<Zet16u> half_, c_;
};

// 16s, 1 <= s <= 15. The half joins the products as a second product, with 1.
class ScaledProductWithConstant16s {
public:
    static bool takes(Zet16s c, int s) { return c % 2 != 0 && s >= 1 && s <= 15; }

    ScaledProductWithConstant16s(Zet16s c, int s)
        : low_(splat(static_cast<Zet16s>((2 << s) - 1))), tie_(splat(static_cast<Zet16s>((1 << (s - 1)) + ((c >> 1 & 1) << s)))),
          half_(splat(static_cast<Zet16s>(1 << (s - 1)))), c_(as_lanes<Zet16s>(splat(1 << 16 | static_cast<Zet16u>(c)))), s_(count_of(s)) {}
    Vec<Zet16s> operator()(const auto&, Vec<Zet16s> x) const {
        const auto [low, high] = interleave<Zet16s>(x, half_ + as_lanes<Zet16s>((x & low_) == tie_));
        return narrow_to_16s(scaled(low), scaled(high));
    }

private:
    Vec<Zet32s> scaled(Vec<Zet32s> pairs) const { return shift_right<Zet32s>(multiply_add_pairs(as_lanes<Zet16s>(pairs), c_), s_); }

    Vec<Zet16s> low_, tie_, half_, c_;
    Count s_;
};

// 16 bits times a fraction, s <= 15: c * 2^(16-s) fits a sample, so that the halves of the product are the result and what is lost.
template <class T> class ScaledProductWithFraction16 {
public:
    static bool takes(T c, int s) {
        return c % 2 != 0 && s >= 1 && s <= 15 && c * (1 << (16 - s)) <= max_of<T> && c * (1 << (16 - s)) >= min_of<T>;
    }

    ScaledProductWithFraction16(T c, int s)
        : low_(splat(static_cast<T>((2 << s) - 1))), tie_(splat(static_cast<T>((1 << (s - 1)) + ((c >> 1 & 1) << s)))),
          c_(splat(static_cast<T>(c * (1 << (16 - s))))) {}
    Vec<T> operator()(const auto&, Vec<T> x) const {
        const Vec<Zet16u> lost = as_lanes<Zet16u>(x) * as_lanes<Zet16u>(c_) + as_lanes<Zet16u>((x & low_) == tie_);
        return multiply_high(x, c_) + as_lanes<T>(lost >> 15);
    }

private:
    Vec<T> low_, tie_, c_;
};

} // namespace zeti
