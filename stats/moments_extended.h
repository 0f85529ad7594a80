// SPDX-License-Identifier: Apache-2.0
// Floating-point numbers of 64 significant bits, made of integers: each operation is exact, then rounded to nearest with ties to even,
// and the same on every machine. The exponent has no bounds that a computation could reach; there is no infinity and no NaN.
#pragma once

#include <bit>
#include <utility>

#include "core/base.h"

namespace zeti {

namespace detail {

struct Wide { // 128 bits
    uint64_t high, low;

    static Wide product(uint64_t a, uint64_t b) {
        const uint64_t aLow = a & 0xFFFFFFFF, aHigh = a >> 32, bLow = b & 0xFFFFFFFF, bHigh = b >> 32;
        const uint64_t low = aLow * bLow, middle1 = aHigh * bLow + (low >> 32), middle2 = aLow * bHigh + (middle1 & 0xFFFFFFFF);
        return {aHigh * bHigh + (middle1 >> 32) + (middle2 >> 32), middle2 << 32 | (low & 0xFFFFFFFF)};
    }
    friend Wide operator-(Wide a, Wide b) { return {a.high - b.high - (a.low < b.low), a.low - b.low}; }
    friend bool operator<(Wide a, Wide b) { return a.high != b.high ? a.high < b.high : a.low < b.low; }
    // The last bit also stands for all that were shifted out.
    Wide shifted_right(int n) const {
        if (n == 0) return *this;
        if (n >= 128) return {0, high != 0 || low != 0};
        if (n >= 64) return {0, Wide{0, high}.shifted_right(n - 64).low | (low != 0)};
        return {high >> n, low >> n | high << (64 - n) | ((low << (64 - n)) != 0)};
    }
};

} // namespace detail

class Extended {
public:
    Extended() = default;
    Extended(Zet64s v) : Extended(v < 0, {v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v), 0}, 0) {}
    // A finite number; others become one that is larger than all finite ones.
    explicit Extended(Zet64f v) {
        const uint64_t bits = std::bit_cast<uint64_t>(v), fraction = bits & ((uint64_t{1} << 52) - 1);
        const int exponent = static_cast<int>(bits >> 52 & 0x7FF);
        *this = Extended(bits >> 63, {exponent == 0 ? fraction : fraction | uint64_t{1} << 52, 0}, (exponent == 0 ? 1 : exponent) - 1075);
    }

    bool is_zero() const { return significand_ == 0; }
    Extended operator-() const {
        Extended r = *this;
        r.negative_ = !negative_;
        return r;
    }
    friend Extended operator*(Extended a, Extended b) {
        return Extended(a.negative_ != b.negative_, detail::Wide::product(a.significand_, b.significand_), a.exponent_ + b.exponent_ + 64);
    }
    friend Extended operator+(Extended a, Extended b) {
        if (a.is_zero()) return b;
        if (b.is_zero()) return a;
        if (a.exponent_ < b.exponent_ || (a.exponent_ == b.exponent_ && a.significand_ < b.significand_)) std::swap(a, b);
        const detail::Wide x = detail::Wide{a.significand_, 0}.shifted_right(1);
        const int64_t distance = a.exponent_ - b.exponent_;
        const detail::Wide y = detail::Wide{b.significand_, 0}.shifted_right(distance > 127 ? 128 : static_cast<int>(distance) + 1);
        if (a.negative_ != b.negative_) return Extended(a.negative_, x - y, a.exponent_ + 1);
        const uint64_t low = x.low + y.low;
        return Extended(a.negative_, {x.high + y.high + (low < x.low), low}, a.exponent_ + 1);
    }
    friend Extended operator-(Extended a, Extended b) { return a + -b; }

    // b is not zero. A quotient of 128 bits, the last of which stands for the rest.
    friend Extended operator/(Extended a, Extended b) {
        uint64_t rest = a.significand_;
        detail::Wide quotient{0, 0};
        bool carry = false;
        for (int i = 0; i < 128; ++i) {
            const bool bit = carry || rest >= b.significand_;
            if (bit) rest -= b.significand_;
            quotient = {quotient.high << 1 | quotient.low >> 63, quotient.low << 1 | bit};
            carry = rest >> 63;
            rest <<= 1;
        }
        quotient.low |= carry || rest != 0;
        return Extended(a.negative_ != b.negative_, quotient, a.exponent_ - b.exponent_ - 63);
    }

    // Of a number that is not negative.
    friend Extended square_root(Extended v) {
        if (v.is_zero()) return v;
        const bool odd = (v.exponent_ & 1) != 0;
        const detail::Wide radicand = detail::Wide{v.significand_, 0}.shifted_right(odd ? 1 : 0);
        uint64_t root = 0;
        for (uint64_t bit = uint64_t{1} << 63; bit != 0; bit >>= 1)
            if (!(radicand < detail::Wide::product(root | bit, root | bit))) root |= bit;
        const detail::Wide rest = radicand - detail::Wide::product(root, root); // a root between two numbers is never half way
        return Extended(false, {root, detail::Wide{0, root} < rest ? ~uint64_t{0} : rest.low != 0}, (v.exponent_ + odd) / 2 - 32);
    }

    // Times 2 to the power of minus `scaleFactor`, without what is behind the point, saturated.
    Zet64s truncated(int scaleFactor) const {
        const int64_t exponent = exponent_ - scaleFactor;
        if (is_zero() || exponent <= -64) return 0;
        if (exponent >= 0) return negative_ ? min_of<Zet64s> : max_of<Zet64s>;
        const uint64_t magnitude = significand_ >> -exponent; // below 2^63
        return negative_ ? -static_cast<Zet64s>(magnitude) : static_cast<Zet64s>(magnitude);
    }

private:
    // The value is digits.high, with digits.low behind the point, times 2 to the power of the exponent; rounded.
    Extended(bool negative, detail::Wide digits, int64_t exponent) : negative_(negative) {
        if (digits.high == 0) digits = {digits.low, 0}, exponent -= 64;
        if (digits.high == 0) return;
        if (const int n = std::countl_zero(digits.high); n > 0) {
            digits = {digits.high << n | digits.low >> (64 - n), digits.low << n};
            exponent -= n;
        }
        constexpr uint64_t half = uint64_t{1} << 63;
        significand_ = digits.high;
        exponent_ = exponent;
        if (digits.low > half || (digits.low == half && (digits.high & 1) != 0)) {
            if (++significand_ == 0) significand_ = half, ++exponent_;
        }
    }

    uint64_t significand_ = 0; // its highest bit is set, or it is zero
    int64_t exponent_ = 0;
    bool negative_ = false;
};

} // namespace zeti
