// SPDX-License-Identifier: Apache-2.0
// Complex quotients, second operand by first: b conj(a) / |a|^2. Sample by sample, in double precision.
#pragma once

#include "signal/scaling.h"

namespace zeti {

namespace detail {

template <class C> bool is_zero(C c) { return c.re == 0 && c.im == 0; }

struct Complex64 {
    double re, im;
};

template <class C> Complex64 divided(C a, C b) {
    const double ar = a.re, ai = a.im, br = b.re, bi = b.im, norm = ar * ar + ai * ai;
    return {(ar * br + ai * bi) / norm, (ar * bi - ai * br) / norm};
}

// 2^-s, for |s| < 1023.
inline double power(int s) {
    const uint64_t bits = static_cast<uint64_t>(1023 - s) << 52;
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

// To nearest with ties to even, saturated.
template <class T> T rounded(double v) {
    const double high = max_of<T>, low = min_of<T>;
    return static_cast<T>(_mm_cvtsd_si32(_mm_set_sd(v > high ? high : v < low ? low : v)));
}

// The bound of T on v's side of zero; 0 for 0.
template <class T, class V> T bound_of(V v) { return v > 0 ? max_of<T> : v < 0 ? min_of<T> : T{0}; }

} // namespace detail

// 16sc and 32sc. A quotient by zero is each part's own extreme.
template <class C> class ComplexQuotient {
    using R = Real<C>;

public:
    // Any |s| above 200 gives 0 or the bounds, as 200 does.
    explicit ComplexQuotient(int s) : scale_(detail::power(s > 200 ? 200 : s < -200 ? -200 : s)) {}
    C operator()(C a, C b) {
        if (detail::is_zero(a)) {
            zero_ = true;
            return {detail::bound_of<R>(b.re), detail::bound_of<R>(b.im)};
        }
        const auto q = detail::divided(a, b);
        return {detail::rounded<R>(q.re * scale_), detail::rounded<R>(q.im * scale_)};
    }
    bool saw_zero() const { return zero_; }

private:
    double scale_;
    bool zero_ = false;
};

// 16sc, s below the computed range: the sign of each part's numerator alone counts; a quotient by zero is 0.
class ComplexQuotientBound {
public:
    Zet16sc operator()(Zet16sc a, Zet16sc b) {
        zero_ |= detail::is_zero(a);
        const int64_t re = int64_t{a.re} * b.re + int64_t{a.im} * b.im, im = int64_t{a.re} * b.im - int64_t{a.im} * b.re;
        return {detail::bound_of<Zet16s>(re), detail::bound_of<Zet16s>(im)};
    }
    bool saw_zero() const { return zero_; }

private:
    bool zero_ = false;
};

// 16sc, s above the computed range: 0. The warning looks at the divisor's real and the dividend's imaginary part, kept on purpose.
class ComplexQuotientZero {
public:
    Zet16sc operator()(Zet16sc a, Zet16sc b) {
        zero_ |= a.re == 0 && b.im == 0;
        return {0, 0};
    }
    bool saw_zero() const { return zero_; }

private:
    bool zero_ = false;
};

// 32fc. A quotient by zero follows the rule of 32f in each part.
class ComplexQuotient32f {
public:
    Zet32fc operator()(Zet32fc a, Zet32fc b) {
        if (detail::is_zero(a)) {
            zero_ = true;
            return {by_zero(b.re), by_zero(b.im)};
        }
        const auto q = detail::divided(a, b);
        return {static_cast<Zet32f>(q.re), static_cast<Zet32f>(q.im)};
    }
    bool saw_zero() const { return zero_; }

private:
    static Zet32f by_zero(Zet32f v) {
        constexpr Zet32f infinity = std::numeric_limits<Zet32f>::infinity();
        return v > 0 ? infinity : v < 0 ? -infinity : std::numeric_limits<Zet32f>::quiet_NaN();
    }
    bool zero_ = false;
};

} // namespace zeti
