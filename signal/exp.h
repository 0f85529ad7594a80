// SPDX-License-Identifier: Apache-2.0
// Exponentials: the kernels under OwnExp_8u_Sfs, OwnExp_16u_Sfs, zetsExp_16s_Sfs and zetsExp_32f. On integers all but a dozen
// samples give 0 or the type's maximum, at any scale: the results are stairs.
#pragma once

#include "signal/tables_exp.h"

namespace zeti {

template <class T> class ExpBySteps {
public:
    explicit ExpBySteps(const Steps<T>& steps) : steps_(&steps) {}
    Vec<T> operator()(Vec<T> x) const { return (*steps_)(x); }

private:
    const Steps<T>* steps_;
};

// 32f, zetsExp_32f_A21. x = n ln 2 + r with |r| <= ln 2 / 2, and e^x = 2^n e^r (reduction of Cody and Waite 1980); e^r = (N + r Q) / (N - r Q)
// with N = 12 r^2 + 120 and Q = r^2 + 60, the approximant of Pade (1892), within 2^-27.3. With the rounding of every step results are
// within 1.9 units of the last place.
class Exp32f {
public:
    bool usual(const Vec<Zet32f> (&x)[4]) const { // below 87, where the result and 2^n are normal numbers
        const auto words = [&](int k) { return as_lanes<Zet16s>(as_lanes<Zet32s>(x[k]) & magnitude_); };
        return !any(max<Zet16s>(max<Zet16s>(words(0), words(1)), max<Zet16s>(words(2), words(3))) > below_87_);
    }
    Vec<Zet32f> usual(Vec<Zet32f> x) const {
        const Reduced e(*this, x);
        return as_lanes<Zet32f>(as_lanes<Zet32s>(e.mantissa) + (e.n << 23));
    }
    Vec<Zet32f> operator()(Vec<Zet32f> x) const {                                          // any number
        const Reduced e(*this, min<Zet32f>(max<Zet32f>(x, splat(-104.0f)), splat(89.0f))); // where results have reached 0 and infinity
        // 2^n in two factors, so that a denormal result is rounded once, by the second.
        const I n = e.n << 23 >> 23, half = n >> 1;
        const F y = e.mantissa * power_of_2(half) * power_of_2(n - half);
        return select<Zet32f>(x == x, y, x + x); // NOLINT(misc-redundant-expression): NaN differs from itself
    }

private:
    using F = Vec<Zet32f>;
    using I = Vec<Zet32s>;

    struct Reduced { // e^x = mantissa * 2^n; the bits of n above the lowest nine are not its own
        Reduced(const Exp32f& k, F x) {
            const F t = x * k.log2e_ + k.round_, turns = t - k.round_;
            const F r = (x - turns * k.high_) - turns * k.low_, r2 = r * r;
            n = as_lanes<Zet32s>(t);
            const F even = r2 * k.n2_ + k.n0_, odd = r * (r2 + k.q0_);
            mantissa = (even + odd) / (even - odd);
        }
        I n;
        F mantissa;
    };

    static F power_of_2(I n) { return as_lanes<Zet32f>((n + 127) << 23); }

    // Constants come from memory in the row, where the compiler would build some of them anew for every register.
    I magnitude_ = splat(max_of<Zet32s>);
    Vec<Zet16s> below_87_ = as_lanes<Zet16s>(splat(Zet32s{0x42AD7FFF})); // tells by upper halves; no lower one is above it
    F log2e_ = splat(0x1.715476p+0f), round_ = splat(0x1.8p+23f);        // a number around that has its units in its lowest bit
    F high_ = splat(0x1.62E4p-1f), low_ = splat(0x1.7F7D1Cp-20f);        // ln 2; n * high is exact
    F n0_ = splat(120.0f), n2_ = splat(12.0f), q0_ = splat(60.0f);
};

} // namespace zeti
