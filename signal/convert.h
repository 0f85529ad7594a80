// SPDX-License-Identifier: Apache-2.0
// Conversion kernels: the value is kept as far as the destination's type goes. They serve zetsConvert_8u16s, zetsConvert_32s16s_Sfs,
// zetsConvert_32f8u_Sfs, ownzetsCnvrtFin_32f8u_Sfs and their siblings by type.
#pragma once

#include "signal/convert_row.h"
#include "signal/rounding.h"
#include "signal/scaling.h"

namespace zeti {

namespace detail {

// f of each register, as registers of U.
template <class U, class T, int N, class F> Registers<U, N> each(const Registers<T, N>& g, F f) {
    Registers<U, N> r;
    for (int k = 0; k < N; ++k) r.v[k] = as_lanes<U>(f(g[k]));
    return r;
}

template <class U, class T, int N> Registers<U, 2 * N> widened(const Registers<T, N>& g) {
    Registers<U, 2 * N> r;
    for (int k = 0; k < N; ++k) {
        const auto [low, high] = widen<T>(g[k]);
        r.v[2 * k] = as_lanes<U>(low), r.v[2 * k + 1] = as_lanes<U>(high);
    }
    return r;
}

template <class U, class T, int N, class F> Registers<U, N / 2> narrowed(const Registers<T, N>& g, F f) {
    Registers<U, N / 2> r;
    for (int k = 0; k < N / 2; ++k) r.v[k] = f(g[2 * k], g[2 * k + 1]);
    return r;
}

// Unsigned lanes, those beyond the signed type at its maximum.
template <class T> Vec<T> within_signed(Vec<T> v) {
    constexpr T most = max_of<T> / 2;
    if constexpr (sizeof(T) < 4) return min<T>(v, splat(most));
    else return (v | as_lanes<T>(as_lanes<Zet32s>(v) >> 31)) & most; // with the top bit set all others are
}

template <class T> using AsSigned = std::make_signed_t<T>;
template <class T> using AsUnsigned = std::make_unsigned_t<T>;

} // namespace detail

// To samples of D, saturating; to floats to nearest. One step at a time, each of which saturates or is exact.
template <class D, class S, int N> auto converted(const Registers<S, N>& g) {
    using namespace detail;
    constexpr bool fromSigned = std::is_signed_v<S>, toSigned = std::is_signed_v<D>;
    if constexpr (std::is_same_v<S, D>) {
        return g;
    } else if constexpr (std::is_floating_point_v<D>) {
        if constexpr (sizeof(S) == 4) return each<D>(g, [](Vec<S> v) { return to_float(v); });
        else return converted<D>(converted<Zet32s>(g));
    } else if constexpr (fromSigned && !toSigned && sizeof(D) >= sizeof(S)) {
        return converted<D>(each<AsUnsigned<S>>(g, [](Vec<S> v) { return max<S>(v, Vec<S>{}); }));
    } else if constexpr (std::is_same_v<S, Zet16u> && std::is_same_v<D, Zet8u>) {
        return narrowed<D>(g, narrow_16u_to_8u);
    } else if constexpr (!fromSigned && sizeof(D) <= sizeof(S)) {
        return converted<D>(each<AsSigned<S>>(g, within_signed<S>));
    } else if constexpr (sizeof(D) > sizeof(S)) {
        using W = Wider<S>; // unsigned lanes fit the signed ones that are twice as wide
        if constexpr (toSigned && sizeof(W) == sizeof(D)) return widened<D>(g);
        else return converted<D>(widened<W>(g));
    } else if constexpr (std::is_same_v<D, Zet16u>) {
        return narrowed<D>(g, [](Vec<S> low, Vec<S> high) { return narrow_to_16u(max<S>(low, Vec<S>{}), max<S>(high, Vec<S>{})); });
    } else if constexpr (sizeof(S) == 4) {
        return converted<D>(narrowed<Zet16s>(g, narrow_to_16s));
    } else if constexpr (toSigned) {
        return narrowed<D>(g, narrow_to_8s);
    } else {
        return narrowed<D>(g, [](Vec<S> low, Vec<S> high) { return narrow_to_8u(as_lanes<Zet16u>(low), as_lanes<Zet16u>(high)); });
    }
}

// --- Integers, and integers to floats -----------------------------------------------------------------------------

template <class S, class D> struct ConvertSaturated {
    using source = S;
    using destination = D;
    static constexpr bool in_floats = std::is_floating_point_v<D>;

    auto operator()(const auto& g) const { return converted<D>(g); }
};

// Times 2^-s: bytes in lanes of 16 bits, all others in their own.
template <class S, class D> class ConvertScaledDown {
public:
    using source = S;
    using destination = D;
    using Lane = std::conditional_t<sizeof(S) == 1, Zet16u, S>;
    static constexpr int greatest = std::numeric_limits<Lane>::digits; // scale factor; beyond it all results are 0

    explicit ConvertScaledDown(int s) : round_(s) {}
    auto operator()(const auto& g) const {
        return converted<D>(detail::each<Lane>(converted<Lane>(g), [&](Vec<Lane> v) { return round_(v); }));
    }

private:
    RoundRemainder<Lane> round_;
};

template <class S, class D> class ConvertScaledUp {
public:
    using source = S;
    using destination = D;
    static constexpr int least = 1 - 8 * int{sizeof(D)}; // scale factor; below it a result is 0 or a bound

    explicit ConvertScaledUp(int s) : shift_(-s) {}
    auto operator()(const auto& g) const {
        return detail::each<D>(converted<D>(g), [&](Vec<D> v) { return shift_(v); });
    }

private:
    ShiftLeft<D> shift_;
};

template <class S, class D> struct ConvertBound {
    using source = S;
    using destination = D;

    auto operator()(const auto& g) const { return detail::each<D>(converted<D>(g), extreme<D>); }
};

// --- Floats to integers -------------------------------------------------------------------------------------------

struct Unscaled32f {
    Vec<Zet32f> operator()(Vec<Zet32f> v) const { return v; }
};

// Scaled, cut to the destination's range, rounded. NaN gives the least value of the type, as minus infinity does: it passes an upper
// bound as it is, a lower bound of 0 makes it 0, and what is no integer of 32 bits becomes -2^31, which saturates.
template <class D, class Rounding, class Scale> struct ConvertFloat {
    using source = Zet32f;
    using destination = D;
    static constexpr bool in_floats = true;

    Scale scale;

    auto operator()(const auto& g) const {
        const auto rounded = [&](Vec<Zet32f> v) { return to_integer(scale(v)); };
        if constexpr (sizeof(D) == 4) return detail::each<D>(g, rounded);
        else if constexpr (std::is_same_v<D, Zet16u>) return detail::narrowed<D>(detail::each<Zet32s>(g, rounded), narrow_to_16u);
        else return converted<D>(detail::each<Zet32s>(g, rounded));
    }

private:
    static Vec<Zet32s> to_integer(Vec<Zet32f> v) {
        const Vec<Zet32f> half = splat(0x1p31f), full = splat(0x1p32f);
        if constexpr (sizeof(D) < 4) {
            const Vec<Zet32f> below = min<Zet32f>(splat(Zet32f{max_of<D>}), v);
            return Rounding::to_integer(std::is_same_v<D, Zet16u> ? max<Zet32f>(below, Vec<Zet32f>{}) : below);
        } else if constexpr (std::is_signed_v<D>) {
            return Rounding::to_integer(v) ^ as_lanes<Zet32s>(v >= half); // -2^31 becomes 2^31 - 1
        } else {                                                          // from 2^31 on floats are integers: 2^31 goes through bit 31
            const Vec<Zet32f> positive = max<Zet32f>(v, Vec<Zet32f>{});
            const auto large = as_lanes<Zet32s>(positive >= half), beyond = as_lanes<Zet32s>(positive >= full);
            const Vec<Zet32f> rest = positive - as_lanes<Zet32f>(large & as_lanes<Zet32s>(half));
            return (Rounding::to_integer(rest) ^ (large & min_of<Zet32s>)) | beyond;
        }
    }
};

} // namespace zeti
