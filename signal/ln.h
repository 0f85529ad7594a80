// SPDX-License-Identifier: Apache-2.0
// Natural logarithms: the kernels under OwnLn_8u, OwnLn_16u, zetsLn_16s_Sfs and zetsLn_32f. Integer results are times 2^-s, to nearest,
// saturated. There are no ties: ln x is irrational but at x = 1.
//
// x = m 2^k with m between the root of 1/2 and its double; ln x = k ln 2 + ln m, and with z = (m - 1) / (m + 1) ln m is 2 atanh z =
// 2 z + z w P(w), w = z^2 <= 0.0295 (reduction of Cody and Waite 1980). P is a minimax polynomial by tools/minimax.py.
#pragma once

#include "signal/tables_ln.h"

namespace zeti {

// What a row warns of: a negative sample, or else a zero. The first row that warns counts.
template <class T> class LnDomain {
public:
    Vec<T> neutral() const { return splat(T{1}); }
    ZetStatus status() const { return first_ != zetStsNoErr ? first_ : row_status(); }
    void end_row() requires std::is_signed_v<T> {
        first_ = status();
        zero_ = negative_ = Vec<Zet32s>{};
    }

protected:
    void note(Vec<T> x) {
        zero_ |= as_lanes<Zet32s>(x == T{0});
        if constexpr (std::is_signed_v<T>) negative_ |= as_lanes<Zet32s>(x < T{0});
    }

private:
    ZetStatus row_status() const { return any(negative_) ? zetStsLnNegArg : any(zero_) ? zetStsLnZeroArg : zetStsNoErr; }

    Vec<Zet32s> zero_{}, negative_{};
    ZetStatus first_ = zetStsNoErr;
};

// Integers, scales 0 and above.
template <class T> class LnBySteps : public LnDomain<T> {
public:
    explicit LnBySteps(const Steps<T>& steps) : steps_(&steps) {}
    Vec<T> operator()(Vec<T> x) {
        this->note(x);
        return (*steps_)(x);
    }

private:
    const Steps<T>* steps_;
};

// 8u, negative scales.
class LnByTable : public LnDomain<Zet8u> {
public:
    explicit LnByTable(int s) : table_(ln_tables[s < ln_bound ? -1 - ln_bound : -1 - s].at) {}
    Vec<Zet8u> operator()(Vec<Zet8u> x) {
        note(x);
        return look_up(table_, x);
    }

private:
    const Zet8u* table_;
};

// 16u and 16s, negative scales, in double precision. P is within 2^-44.9 of ln; no sample has at any scale a logarithm as
// close as that to the middle between two integers.
template <class T> class Ln16 : public LnDomain<T> {
public:
    static constexpr bool in_floats = true;
    explicit Ln16(int s) : scale_(splat(static_cast<double>(1 << (s < bound ? -bound : -s)))) {}
    Vec<T> operator()(Vec<T> x) {
        this->note(x);
        if constexpr (std::is_signed_v<T>) {
            const auto v = widen<T>(max<T>(x, splat(T{1})));
            return narrow_to_16s(scaled(v.low), scaled(v.high)) | (as_lanes<T>(x <= 0) & min_of<T>);
        } else {
            const auto v = widen<T>(x - as_lanes<T>(x == 0)); // ln 1 is what a zero gives
            return narrow_to_16u(scaled(as_lanes<Zet32s>(v.low)), scaled(as_lanes<Zet32s>(v.high)));
        }
    }

private:
    using D = Vec<Zet64f>;
    static constexpr int bound = -17; // ln 2 * 2^17 saturates

    D ln(D x) const {
        const auto bits = as_lanes<uint64_t>(x);
        const auto k = (bits - root_) >> 52;
        const D m = as_lanes<Zet64f>(bits - (k << 52)), kf = as_lanes<Zet64f>(k | integer_) - as_lanes<Zet64f>(integer_);
        const D z = (m - one_) / (m + one_), w = z * z;
        return kf * ln2_ + z * (two_ + w * (p_[0] + w * (p_[1] + w * (p_[2] + w * (p_[3] + w * p_[4])))));
    }
    Vec<Zet32s> rounded(Vec<Zet32s> v) const { return to_int(min<Zet64f>(ln(to_double(v)) * scale_, maximum_)); }
    Vec<Zet32s> scaled(Vec<Zet32s> v) const {
        const auto high = as_lanes<Zet32s>(_mm_unpackhi_epi64(raw(v), raw(v)));
        return as_lanes<Zet32s>(_mm_unpacklo_epi64(raw(rounded(v)), raw(rounded(high))));
    }

    Vec<uint64_t> root_ = splat(uint64_t{0x3FE6A09E00000000}), integer_ = splat(uint64_t{0x4330000000000000}); // of 1/2; 2^52
    D one_ = splat(1.0), two_ = splat(2.0), ln2_ = splat(ln2_high + ln2_low), scale_, maximum_ = splat(Zet64f{max_of<T>});
    D p_[5] = {splat(0x1.555555561E2D7p-1), splat(0x1.999996A98DD68p-2), splat(0x1.249411CE9827Fp-2), splat(0x1.C62B200E01B4Dp-3),
               splat(0x1.9114DBF7C4EE0p-3)};
};

// 32f, zetsLn_32f_A21. P is within 2^-30.2 of ln; with the rounding of every step results are within 1.1 units of the last place, as
// ln m = f - z (f - w P) with f = m - 1 keeps what is added to f small.
class Ln32f : public LnDomain<Zet32f> {
public:
    bool usual(const Vec<Zet32f> (&x)[4]) const { // positive and normal
        const auto words = [&](int k) { return as_lanes<Zet16s>(as_lanes<Zet32u>(x[k]) + to_bottom_); };
        return !any(max<Zet16s>(max<Zet16s>(words(0), words(1)), max<Zet16s>(words(2), words(3))) > normal_);
    }
    Vec<Zet32f> usual(Vec<Zet32f> x) const { return positive(as_lanes<Zet32s>(x), I{}); }
    Vec<Zet32f> operator()(Vec<Zet32f> x) { // any number
        note(x);
        const auto bits = as_lanes<Zet32s>(x);
        const I denormal = as_lanes<Zet32s>(bits < 0x00800000); // integers times 2^-149
        const F infinity = splat(std::numeric_limits<Zet32f>::infinity());
        F y = positive(select<Zet32s>(denormal, as_lanes<Zet32s>(to_float(bits)), bits), denormal & -149);
        y = select<Zet32f>(x == 0.0f, -infinity, y);
        y = select<Zet32f>(x < 0.0f, as_lanes<Zet32f>(splat(Zet32s{0x7FC00000})), y);
        return select<Zet32f>(x < infinity, y, x + x); // infinity and NaN as they are
    }

private:
    using F = Vec<Zet32f>;
    using I = Vec<Zet32s>;
    using U = Vec<Zet32u>; // what is no normal number wraps, and is not used

    // ln(x 2^more) of the bits of a normal number x.
    F positive(I bits, I more) const {
        const U x = as_lanes<Zet32u>(bits), k = (x - root_) & exponent_; // times 2^23, which 32f holds as exactly
        const F m = as_lanes<Zet32f>(x - k), kf = to_float(as_lanes<Zet32s>(k + (as_lanes<Zet32u>(more) << 23))), f = m - one_;
        const F z = f / (m + one_), w = z * z;
        const F wp = w * (p0_ + w * (p1_ + w * p2_));
        return kf * ln2_ + (f - z * (f - wp));
    }

    // Constants come from memory in the row, where the compiler would build some of them anew for every register.
    Vec<Zet32u> to_bottom_ = splat(0x7F800000u); // moves 0x00800000 to 0x7F7FFFFF, the normal numbers, to the end of the signed range
    Vec<Zet16s> normal_ = as_lanes<Zet16s>(splat(0xFEFF7FFFu)); // tells by upper halves; no lower one is above it
    U root_ = splat(0x3F3504F3u), exponent_ = splat(0xFF800000u);
    F one_ = splat(1.0f), p0_ = splat(0x1.55557Ap-1f), p1_ = splat(0x1.995EBAp-2f), p2_ = splat(0x1.31E2F2p-2f);
    F ln2_ = splat(0x1.62E43p-24f); // times 2^-23, within 2^-28.4; a number so short that k ln 2 is exact for |k| <= 8
};

} // namespace zeti
