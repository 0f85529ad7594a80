// SPDX-License-Identifier: Apache-2.0
// Quotients, second operand by first: v = b / a. Each kernel remembers whether it saw a zero divisor; an integer sample divided
// by zero takes its own extreme.
#pragma once

#include "signal/rounding.h"
#include "signal/scaling.h"

namespace zeti {

// Remembers zero divisors; what stands for a divisor behind the row and in alpha samples is 1.
template <class T> class Divisors {
public:
    Vec<T> neutral() const { return splat(T{1}); }
    bool saw_zero() const { return any(zeros_); }

protected:
    template <class M> M note(M zero) {
        zeros_ |= as_lanes<Bits>(zero);
        return zero;
    }

private:
    using Bits = std::conditional_t<std::is_floating_point_v<T>, Zet32s, T>;
    Vec<Bits> zeros_{};
};

// 8u, 16u, 16s. The quotient in single precision, times 2^-s, rounded by `Rounding`, saturated. For 8u that is the exact
// quotient rounded: no two of its values are closer than single precision can tell.
template <class T, class Rounding = ToNearest> class Quotient : public Divisors<T> {
public:
    static constexpr bool in_floats = true;
    explicit Quotient(int s) : scale_(splat(power_of_two(-s))) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) {
        const auto zero = this->note(a == 0);
        return select<T>(zero, extreme<T>(b), divided(a, b));
    }

private:
    Vec<Zet32s> divided(Vec<Zet32s> a, Vec<Zet32s> b) const {
        const Vec<Zet32f> q = to_float(b) / to_float(a) * scale_;
        const Vec<Zet32f> below = min<Zet32f>(q, splat(Zet32f{max_of<T>}));
        return Rounding::to_integer(std::is_signed_v<T> ? max<Zet32f>(below, splat(Zet32f{min_of<T>})) : below);
    }
    template <class U> Pair2<Zet32s> divided_halves(Vec<U> a, Vec<U> b) const {
        const auto x = widen<U>(a), y = widen<U>(b);
        return {divided(as_lanes<Zet32s>(x.low), as_lanes<Zet32s>(y.low)), divided(as_lanes<Zet32s>(x.high), as_lanes<Zet32s>(y.high))};
    }
    Vec<Zet8u> divided(Vec<Zet8u> a, Vec<Zet8u> b) const {
        const auto x = widen<Zet8u>(a), y = widen<Zet8u>(b);
        const auto low = divided_halves<Zet16u>(x.low, y.low), high = divided_halves<Zet16u>(x.high, y.high);
        return narrow_to_8u(as_lanes<Zet16u>(narrow_to_16s(low.low, low.high)), as_lanes<Zet16u>(narrow_to_16s(high.low, high.high)));
    }
    Vec<Zet16s> divided(Vec<Zet16s> a, Vec<Zet16s> b) const {
        const auto q = divided_halves<Zet16s>(a, b);
        return narrow_to_16s(q.low, q.high);
    }
    Vec<Zet16u> divided(Vec<Zet16u> a, Vec<Zet16u> b) const {
        const auto q = divided_halves<Zet16u>(a, b);
        return narrow_to_16u(q.low, q.high);
    }

    Vec<Zet32f> scale_; // 2^-s
};

// s below the range of Quotient: the sign of the quotient alone counts.
template <class T> class QuotientBound : public Divisors<T> {
public:
    Vec<T> operator()(Vec<T> a, Vec<T> b) {
        this->note(a == 0);
        if constexpr (std::is_unsigned_v<T>) return extreme<T>(b);
        else return select<T>(a < 0, (as_lanes<T>(b < 0) & max_of<T>) | (as_lanes<T>(b > 0) & min_of<T>), extreme<T>(b));
    }
};

// s above the range: 0, but for zero divisors.
template <class T> class QuotientZero : public Divisors<T> {
public:
    Vec<T> operator()(Vec<T> a, Vec<T> b) { return as_lanes<T>(this->note(a == 0)) & extreme<T>(b); }
};

// 32f between images: three terms of the series of 1 / (1 - e) on the reciprocal estimate r, with e = 1 - a r; no correction step
// follows. Four lanes with a zero divisor among them are divided one by one: the fours count from the start of the row.
class Quotient32f : public Divisors<Zet32f> {
public:
    static constexpr bool in_fours = true;
    Vec<Zet32f> operator()(Vec<Zet32f> a, Vec<Zet32f> b) {
        if (any(note(a == 0.0f))) [[unlikely]]
            return one_by_one(a, b);
        const Vec<Zet32f> r = reciprocal_estimate(a), e = 1.0f - a * r, q = b * r;
        return q + e * (q + e * q);
    }

private:
    // The sign of a negative zero divisor is ignored, kept on purpose.
    static Vec<Zet32f> one_by_one(Vec<Zet32f> a, Vec<Zet32f> b) {
        const Vec<Zet32f> infinity = splat(std::numeric_limits<Zet32f>::infinity());
        const Vec<Zet32f> nan = as_lanes<Zet32f>(splat(Zet32s{0x7FC00000}));
        const Vec<Zet32f> by_zero = select<Zet32f>(b > 0.0f, infinity, select<Zet32f>(b < 0.0f, -infinity, nan));
        return select<Zet32f>(a == 0.0f, by_zero, b / a);
    }
};

// 32f by constants, none of them zero: the true quotient.
struct QuotientByConstant32f {
    Vec<Zet32f> neutral() const { return splat(1.0f); }
    Vec<Zet32f> operator()(Vec<Zet32f> a, Vec<Zet32f> b) const { return b / a; }
};

} // namespace zeti
