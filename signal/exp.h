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

// 32f, zetsExp_32f_A21. x = n ln 2 + r with |r| <= ln 2 / 2, and e^x = 2^n e^r (reduction of Cody and Waite 1980); e^r = 1 + r / D with
// D = r / (e^r - 1) = 1 - (r / 2 - r^2 P(r^2)), P a minimax polynomial by tools/minimax.py, within 2^-30.8 of e^r. With the rounding of every
// step results are within 1.2 units of the last place.
class Exp32f {
public:
    Vec<Zet32f> operator()(Vec<Zet32f> x) const {
        if (any((as_lanes<Zet32s>(x) & magnitude_) > normal_)) [[unlikely]]
            return any_number(x);
        const Reduced e(*this, x);
        return as_lanes<Zet32f>(as_lanes<Zet32s>(e.mantissa) + (e.n << 23));
    }

private:
    using F = Vec<Zet32f>;
    using I = Vec<Zet32s>;

    struct Reduced { // e^x = mantissa * 2^n; the bits of n above the lowest nine are not its own
        Reduced(const Exp32f& k, F x) {
            const F t = x * k.log2e_ + k.round_, turns = t - k.round_;
            const F r = (x - turns * k.high_) - turns * k.low_, r2 = r * r;
            n = as_lanes<Zet32s>(t);
            mantissa = r / (k.one_ - (r * k.half_ - r2 * (k.p0_ + r2 * k.p1_))) + k.one_;
        }
        I n;
        F mantissa;
    };

    [[gnu::noinline, gnu::cold]] static F any_number(F x) {
        const Reduced e(Exp32f(), min<Zet32f>(max<Zet32f>(x, splat(-104.0f)), splat(89.0f))); // where results have reached 0 and infinity
        // 2^n in two factors, so that a denormal result is rounded once, by the second.
        const I n = e.n << 23 >> 23, half = n >> 1;
        const F y = e.mantissa * power_of_2(half) * power_of_2(n - half);
        return select<Zet32f>(x == x, y, x + x);
    }
    static F power_of_2(I n) { return as_lanes<Zet32f>((n + 127) << 23); }

    // Constants come from memory in the row, where the compiler would build some of them anew for every register.
    I magnitude_ = splat(max_of<Zet32s>), normal_ = splat(0x42AE0000); // up to 87 the result and 2^n are normal numbers
    F log2e_ = splat(0x1.715476p+0f), round_ = splat(0x1.8p+23f); // a number around that has its units in its lowest bit
    F high_ = splat(0x1.62E4p-1f), low_ = splat(0x1.7F7D1Cp-20f); // ln 2; n * high is exact
    F one_ = splat(1.0f), half_ = splat(0.5f), p0_ = splat(0x1.555514p-4f), p1_ = splat(-0x1.6A8B5Cp-10f);
};

} // namespace zeti
