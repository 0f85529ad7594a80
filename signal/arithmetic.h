// SPDX-License-Identifier: Apache-2.0
// The row kernels of Add, Sub and Mul, one per scale path. For Op = Add and T = Zet8u these are
//   ownsAdd_8u           Unscaled<Add, Zet8u>         s = 0
//   ownsAdd_8u_1Sfs      Halved<Add, Zet8u>           s = 1
//   ownsAdd_8u_PosSfs    ScaledDown<Add, Zet8u>       s >= 2
//   ownsAdd_8u_NegSfs    ScaledUp<Add, Zet8u>         s < 0
//   ownsAdd_8u_Bound     Bound<Add, Zet8u>            s so low that only the sign of the exact result counts
// and likewise ownsSub_..., ownsMul_..., ownsAddC_... and their in-place forms, which are the same kernels on other operands.
#pragma once

#include "signal/add.h"
#include "signal/complex.h"
#include "signal/mul.h"
#include "signal/sub.h"

namespace zeti {

// Kernels of complex operations take whole complex samples, two lanes, at least.
template <class Op> struct Unit {};
template <> struct Unit<MulComplex16> { static constexpr int pixel = 2; };
template <> struct Unit<MulComplex32f> { static constexpr int pixel = 2; };

template <class Op, class T> struct Unscaled : Unit<Op> {
    explicit Unscaled(int = 0) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const {
        if constexpr (requires { Op::template saturated<T>(a, b); }) return Op::template saturated<T>(a, b);
        else return Op::saturated(a, b);
    }
};

template <class Op, class T> struct ScaledUp : Unit<Op> {
    explicit ScaledUp(int s) : shift_(-std::max(s, -32)) {} // 32 bits are more than any lane keeps
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return shift_(Unscaled<Op, T>()(a, b)); }

private:
    ShiftLeft<T> shift_;
};

template <class Op, class T> struct Bound : Unit<Op> {
    explicit Bound(int = 0) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return extreme<T>(Unscaled<Op, T>()(a, b)); }
};

// s >= 2.
template <class Op, class T> class ScaledDown;

template <class T>
    requires std::is_unsigned_v<T>
class ScaledDown<Add, T> {
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return round_(average_up(a, b), a ^ b); }

private:
    RoundAverage<T> round_;
};

template <class T>
    requires std::is_unsigned_v<T>
class ScaledDown<Sub, T> { // a negative difference gives 0 at every scale
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return round_(sub_saturating<T>(b, a)); }

private:
    RoundUnsigned<T> round_;
};

// Signed sums and differences, s up to the bits of the sample.
template <class Op, class T> class ScaledDown {
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return round_(Op::template halved<T>(a, b), Op::template odd<T>(a, b)); }

private:
    RoundHalved<T> round_;
};

template <> class ScaledDown<Mul, Zet8u> { // results of scale 2 and more read as positive 16-bit numbers
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<Zet8u> operator()(Vec<Zet8u> a, Vec<Zet8u> b) const {
        const auto v = Mul::wide(a, b);
        return narrow_to_8u(round_(v.low), round_(v.high));
    }

private:
    RoundUnsigned<Zet16u> round_;
};

template <> class ScaledDown<Mul, Zet16s> { // |v| <= 2^30
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<Zet16s> operator()(Vec<Zet16s> a, Vec<Zet16s> b) const {
        const auto v = Mul::wide(a, b);
        return narrow_to_16s(round_(v.low), round_(v.high));
    }

private:
    Round32<Zet32s> round_;
};

template <> class ScaledDown<Mul, Zet16u> { // s <= 16: 65535^2 + 2^15 fits 32 bits
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<Zet16u> operator()(Vec<Zet16u> a, Vec<Zet16u> b) const {
        const auto v = Mul::wide(a, b);
        return narrow_to_16u(as_lanes<Zet32s>(round_(v.low)), as_lanes<Zet32s>(round_(v.high)));
    }

private:
    Round32<Zet32u> round_;
};

template <> class ScaledDown<MulComplex16, Zet16s> : public Unit<MulComplex16> { // v fills its 32 bits, s <= 31
public:
    explicit ScaledDown(int s) : round_(s) {}
    Vec<Zet16s> operator()(Vec<Zet16s> a, Vec<Zet16s> b) const {
        const auto v = MulComplex16::wide(a, b);
        return narrow_to_16s(round_(v.low >> 1, v.low), round_(v.high >> 1, v.high));
    }

private:
    RoundHalved<Zet32s> round_;
};

// 16u products at scales 17 to 32: the upper half of the product is rounded at s - 16, the lower half only breaks ties.
struct ScaledDownMul16uHigh {
    explicit ScaledDownMul16uHigh(int s)
        : t_(count_of(s - 16)), less_(count_of(s - 17)), bias_(splat(static_cast<Zet16u>((1 << (s - 17)) - 1))) {}
    Vec<Zet16u> operator()(Vec<Zet16u> a, Vec<Zet16u> b) const {
        const Vec<Zet16u> high = multiply_high(a, b), odd = shift_right<Zet16u>(high, t_);
        const Vec<Zet16u> add = bias_ + ((odd | ~as_lanes<Zet16u>(a * b == 0)) & Zet16u{1});
        const Vec<Zet16u> halved = average_up(high, add) - ((high ^ add) & Zet16u{1}); // (high + add) >> 1
        return shift_right<Zet16u>(halved, less_);
    }

private:
    Count t_, less_;
    Vec<Zet16u> bias_;
};

// s = 1.
template <class Op, class T> struct Halved {
    explicit Halved(int = 1) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const {
        if constexpr (std::is_unsigned_v<T>) return Op::template half<T>(a, b);
        else return round_halved_once<T>(Op::template halved<T>(a, b), Op::template odd<T>(a, b));
    }
};

template <class T> struct Halved<Mul, T> {
    explicit Halved(int = 1) {}
    Vec<T> operator()(Vec<T> a, Vec<T> b) const {
        const auto v = Mul::wide(a, b);
        return narrowed(half(v.low), half(v.high));
    }

private:
    template <class V> static V half(V v) { return (v + (v >> 1 & 1)) >> 1; } // v is far from its lane's bound
    static Vec<Zet8u> narrowed(Vec<Zet16u> low, Vec<Zet16u> high) { return narrow_to_8u(low, high); }
    static Vec<Zet16s> narrowed(Vec<Zet32s> low, Vec<Zet32s> high) { return narrow_to_16s(low, high); }
    static Vec<Zet16u> narrowed(Vec<Zet32u> low, Vec<Zet32u> high) { return narrow_to_16u(as_lanes<Zet32s>(low), as_lanes<Zet32s>(high)); }
};

template <> struct Halved<MulComplex16, Zet16s> : Unit<MulComplex16> {
    explicit Halved(int = 1) {}
    Vec<Zet16s> operator()(Vec<Zet16s> a, Vec<Zet16s> b) const {
        const auto v = MulComplex16::wide(a, b);
        return narrow_to_16s(round_halved_once<Zet32s>(v.low >> 1, v.low), round_halved_once<Zet32s>(v.high >> 1, v.high));
    }
};

} // namespace zeti
