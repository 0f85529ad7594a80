// SPDX-License-Identifier: Apache-2.0
// Shifts by constants. Left shifts drop the high bits; right shifts are arithmetic on signed samples, logical on unsigned ones.
// Lanes are unsigned throughout; T says how a right shift reads them.
//
//   LShift, RShift      one count for all samples, 0 <= n < bits of the sample
//   LShiftV, RShiftV    a count per channel, any n. The processor has no shift by a count per lane, but v << n is the low half of
//                       v * 2^n, and v >> n the high half of v * 2^(bits - n).
#pragma once

#include "core/simd.h"

namespace zeti {

template <class T> using Unsigned = std::make_unsigned_t<T>;
template <class T> inline constexpr int bits_of = 8 * int{sizeof(T)};

template <class T> class LShift {
    using U = Unsigned<T>;

public:
    explicit LShift(int n) : n_(count_of(n)), kept_(splat(static_cast<U>(max_of<U> << n))) {}
    template <class None> Vec<U> operator()(None, Vec<U> v) const {
        if constexpr (sizeof(U) == 1) return as_lanes<U>(shift_left<Zet16u>(as_lanes<Zet16u>(v), n_)) & kept_; // bytes in pairs
        else return shift_left<U>(v, n_);
    }

private:
    Count n_;
    Vec<U> kept_; // the bits that did not come from the byte below
};

template <class T> class RShift {
    using U = Unsigned<T>;

public:
    explicit RShift(int n) : n_(count_of(n)), kept_(splat(static_cast<U>(max_of<U> >> n))), sign_(splat(static_cast<U>(0x80 >> n))) {}
    template <class None> Vec<U> operator()(None, Vec<U> v) const {
        if constexpr (sizeof(U) == 1) {
            const Vec<U> shifted = as_lanes<U>(shift_right<Zet16u>(as_lanes<Zet16u>(v), n_)) & kept_; // bytes in pairs
            return std::is_signed_v<T> ? (shifted ^ sign_) - sign_ : shifted;                         // the sign bit spreads upward
        } else {
            return as_lanes<U>(shift_right<T>(as_lanes<T>(v), n_));
        }
    }

private:
    Count n_;
    Vec<U> kept_, sign_; // of bytes
};

template <class T> struct LShiftV {
    using U = Unsigned<T>;
    static U factor(Zet32u n) { return n < bits_of<T> ? static_cast<U>(U{1} << n) : U{0}; }

    Vec<U> operator()(const auto& c, Vec<U> v) const { return multiply_low<U>(c[0], v); }
};

// Signed samples are shifted with 2^(bits - 1) added, which makes them unsigned and leaves 2^(bits - 1 - n) too much.
template <class T> struct RShiftV {
    using U = Unsigned<T>;
    // A count of 0 has no room for its factor.
    static U factor(Zet32u n) { return n > 0 && n < bits_of<T> ? static_cast<U>(U{1} << (bits_of<T> - n)) : U{0}; }
    static U unshifted(Zet32u n) { return n == 0 ? max_of<U> : U{0}; }
    static U excess(Zet32u n) { return std::is_signed_v<T> ? static_cast<U>(U{1} << (bits_of<T> - 1 - n)) : U{0}; } // n < bits

    Vec<U> operator()(const auto& c, Vec<U> v) const {
        const Vec<U> u = std::is_signed_v<T> ? v ^ static_cast<U>(U{1} << (bits_of<T> - 1)) : v;
        const Vec<U> shifted = multiply_high(u, c[0]) | (u & c[1]);
        return std::is_signed_v<T> ? shifted - c[2] : shifted;
    }
};

// Bytes in pairs, by factors of 16 bits, which have room for a count of 0: the even one comes down from the top of its pair; the odd one
// goes one place too far, with the pair, and back, so that what is lost was the even one's.
template <class T> struct RShiftVBytes {
    using U = Unsigned<T>;
    static Zet16u factor_of_even(Zet32u n) { return static_cast<Zet16u>(n <= 8 ? 1 << (8 - n) : 0); }
    static Zet16u factor_of_odd(Zet32u n) { return static_cast<Zet16u>(n <= 8 ? 1 << (15 - n) : 0); }

    Vec<U> operator()(const auto& c, Vec<U> v) const {
        const auto pairs = as_lanes<Zet16u>(std::is_signed_v<T> ? v ^ U{0x80} : v);
        const auto even = multiply_high(pairs << 8, as_lanes<Zet16u>(c[0])), odd = multiply_high(pairs, as_lanes<Zet16u>(c[1]));
        const auto shifted = as_lanes<U>(even | ((odd + odd) & Zet16u{0xFF00}));
        return std::is_signed_v<T> ? shifted - c[2] : shifted;
    }
};

} // namespace zeti
