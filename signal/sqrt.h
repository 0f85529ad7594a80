// SPDX-License-Identifier: Apache-2.0
// Square roots: sqrt(x) * 2^-s, rounded to nearest with ties to even from the exact value, saturated.
//
// With X = x * 4^-s the result turns from k to k + 1 at X = (k + 1/2)^2 = k^2 + k + 1/4. For s > 0 a sample there, a tie, has an exact root in
// single precision, and all other samples are far from it. For s <= 0 X is an integer and at least 1/4 away: while X < 2^22 its root
// is more than 1/4 / (2 * 2^11) = 2^-14 away from k + 1/2, and the processor's root at most 2^-14 from the exact one, so that the
// rounded root times 2^-s rounds as the exact one does. That covers s >= -3 on samples of 16 bits. Below, results may be off by one,
// and integers tell: k is right when k^2 - k < X <= k^2 + k.
#pragma once

#include "signal/scaling.h"

namespace zeti {

// Remembers negative samples and makes them 0; unsigned samples have none.
template <class T> class Negatives {
public:
    Vec<T> neutral() const { return Vec<T>{}; }
    ZetStatus status() const { return any(seen_) ? zetStsSqrtNegArg : zetStsNoErr; }

protected:
    template <class V> void note(V x) { seen_ |= as_lanes<Zet32s>(x < 0); } // minus zero and NaN are not below 0

private:
    Vec<Zet32s> seen_{};
};
template <> class Negatives<Zet8u> {};
template <> class Negatives<Zet16u> {};

namespace detail {

class ScaledRoot {
public:
    explicit ScaledRoot(int s) : scale_(splat(power_of_two(-s))) {}
    template <class T> Pair2<Zet32s> halves(Vec<T> x) const {
        const auto v = widen<T>(x);
        return {rounded(as_lanes<Zet32s>(v.low)), rounded(as_lanes<Zet32s>(v.high))};
    }

private:
    Vec<Zet32s> rounded(Vec<Zet32s> x) const { return to_int(square_root(to_float(x)) * scale_); }

    Vec<Zet32f> scale_;
};

} // namespace detail

// -16 <= s <= 16 unless stated; beyond, results are those of the nearest s of the range.
template <class T> class Root;

template <> class Root<Zet32f> : public Negatives<Zet32f> { // a negative sample gives the processor's quiet NaN
public:
    Vec<Zet32f> operator()(Vec<Zet32f> x) {
        note(x);
        return square_root(x);
    }
};

template <> class Root<Zet8u> { // X < 2^22 wherever the result does not saturate
public:
    static constexpr bool in_floats = true;
    explicit Root(int s) : root_(s) {}
    Vec<Zet8u> operator()(Vec<Zet8u> x) const {
        const auto v = widen<Zet8u>(x);
        const auto low = root_.halves<Zet16u>(v.low), high = root_.halves<Zet16u>(v.high);
        return narrow_to_8u(as_lanes<Zet16u>(narrow_to_16s(low.low, low.high)), as_lanes<Zet16u>(narrow_to_16s(high.low, high.high)));
    }

private:
    detail::ScaledRoot root_;
};

// 16u and 16s, s >= -3.
template <class T> class Root : public Negatives<T> {
public:
    static constexpr bool in_floats = true;
    explicit Root(int s) : root_(s) {}
    Vec<T> operator()(Vec<T> x) {
        if constexpr (std::is_signed_v<T>) {
            this->note(x);
            x = max<T>(x, Vec<T>{});
        }
        return of_positive(x);
    }

protected:
    Vec<T> of_positive(Vec<T> x) const {
        const auto k = root_.halves<T>(x);
        if constexpr (std::is_signed_v<T>) return narrow_to_16s(k.low, k.high);
        else return narrow_to_16u(k.low, k.high);
    }

private:
    detail::ScaledRoot root_;
};

// 16u and 16s, s < 0: corrected by integers. Samples above `last_` saturate.
template <class T> class ExactRoot : public Root<T> {
    using Bits = Zet16u;

public:
    explicit ExactRoot(int s) : Root<T>(s), shift_(count_of(-2 * s)), last_(splat(static_cast<Bits>(last_below_bound(-2 * s)))) {}
    Vec<T> operator()(Vec<T> x) {
        if constexpr (std::is_signed_v<T>) {
            this->note(x);
            x = max<T>(x, Vec<T>{});
        }
        const auto positive = as_lanes<Bits>(x), k = as_lanes<Bits>(this->of_positive(x));
        const auto saturates = sub_saturating<Bits>(positive, last_) != 0;
        const auto not_zero = positive != 0;
        const Vec<Bits> corrected = k + (as_lanes<Bits>(excess(positive, k)) & as_lanes<Bits>(not_zero));
        return as_lanes<T>(select<Bits>(saturates, splat(static_cast<Bits>(max_of<T>)), corrected));
    }

private:
    // The largest x with x * 2^shift <= max^2 + max, which no root above max + 1/2 fulfils.
    static constexpr int64_t last_below_bound(int shift) {
        return std::min(int64_t{max_of<T>}, (int64_t{max_of<T>} * max_of<T> + max_of<T>) >> shift);
    }

    // 1 where X > k^2 + k, -1 where X <= k^2 - k, else 0. X and k^2 may fill 32 bits, their difference does not.
    Vec<Zet16s> excess(Vec<Bits> x, Vec<Bits> k) const {
        const auto wide_x = widen<Bits>(x), wide_k = widen<Bits>(k), square = interleave<Bits>(k * k, multiply_high(k, k));
        const auto one = [&](Vec<Zet32u> x32, Vec<Zet32u> k32, Vec<Zet32u> square32) {
            const auto difference = as_lanes<Zet32s>(shift_left<Zet32u>(x32, shift_) - square32), root = as_lanes<Zet32s>(k32);
            return (difference + root < 1) - (difference > root);
        };
        return narrow_to_16s(one(wide_x.low, wide_k.low, square.low), one(wide_x.high, wide_k.high, square.high));
    }

    Count shift_;
    Vec<Bits> last_;
};

// 8u, s > 0: few results are left, and comparisons with the samples at which they begin are enough.
template <int S> class RootSteps {
    static constexpr int count = 8 >> (S - 1); // the largest result: sqrt(255) * 2^-S rounded
    // The least x with result k: the half below k squared, where the tie goes up to an even k.
    static constexpr int first_with(int k) { return ((2 * k - 1) * (2 * k - 1) << (2 * S - 2)) + (k & 1); }
    static_assert(count == 0 || (first_with(count) <= 255 && first_with(count + 1) > 255));

public:
    Vec<Zet8u> operator()(Vec<Zet8u> x) const {
        Vec<Zet8u> result{};
#pragma GCC unroll 8
        for (int k = 1; k <= count; ++k) result -= as_lanes<Zet8u>(max<Zet8u>(x, splat(static_cast<Zet8u>(first_with(k)))) == x);
        return result;
    }
};

} // namespace zeti
