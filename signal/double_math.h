// SPDX-License-Identifier: Apache-2.0
// Sine and logarithm in double precision, of two numbers at a time: of our own, so that results are the same on every machine and with
// every C library. The polynomials are by tools/minimax.py.
#pragma once

#include "core/simd.h"

namespace zeti {

using Doubles = Vec<Zet64f>;

// The sine of x - less, within 2^-51 for |x| below 2^29 and small `less`; never beyond 1. x = n pi + r (reduction of Cody and Waite 1980): three parts of pi
// of 22 bits each, whose products with n are exact, and the rest; sin r = r + r w P(w), w = r^2, P within 2^-61.
inline Doubles sine(Doubles x, Doubles less) {
    constexpr double pi[4] = {0x1.921fbp+1, 0x1.5110bp-21, 0x1.184698p-43, 0x1.3198a2e037073p-68};
    constexpr double p[8] = {-0x1.5555555555555p-3,  0x1.11111111110c1p-7,  -0x1.a01a01a0148bcp-13, 0x1.71de3a5287c2dp-19,
                             -0x1.ae6454cb553fep-26, 0x1.6123cb2880274p-33, -0x1.ae431d765775ep-41, 0x1.88299f5749c54p-49};
    constexpr double round = 0x1.8p52; // a number around that has its units in its lowest bit
    const Doubles t = x * 0x1.45f306dc9c883p-2 + round, n = t - round;
    const Doubles r = (((x - n * pi[0]) - n * pi[1]) - n * pi[2]) - (n * pi[3] + less), w = r * r;
    Doubles q = splat(p[7]);
    for (int k = 6; k >= 0; --k) q = p[k] + w * q;
    const Doubles s = r + r * (w * q);
    const auto sign = as_lanes<uint64_t>(t) << 63; // of odd n
    return min<Zet64f>(max<Zet64f>(as_lanes<Zet64f>(as_lanes<uint64_t>(s) ^ sign), splat(-1.0)), splat(1.0));
}

// The natural logarithm of 2^-63 <= x < 2, within 1.5 units of the last place. x = m 2^k with m between the root of 1/2 and its double; with
// f = m - 1 and z = f / (m + 1), ln m = 2 atanh z = f - z (f - w P(w)), w = z^2, P within 2^-59.
inline Doubles logarithm(Doubles x) {
    constexpr double p[7] = {0x1.5555555555592p-1, 0x1.999999997fdb8p-2, 0x1.24924941f11c5p-2, 0x1.c71c5209655dbp-3,
                             0x1.74663ee68ba3ep-3, 0x1.39a1baeb9b84dp-3, 0x1.2f056159d8130p-3};
    constexpr double ln2_high = 0x1.62e42feep-1, ln2_low = 0x1.a39ef35793c76p-33;          // k times the first is exact
    constexpr uint64_t root = 0x3FE6A09E667F3BCD, bias = 64, integer = 0x4330000000000000; // of 1/2; keeps k positive; 2^52
    const auto bits = as_lanes<uint64_t>(x), k = (bits - (root - (bias << 52))) >> 52;
    const Doubles m = as_lanes<Zet64f>(bits - ((k - bias) << 52)), kf = as_lanes<Zet64f>(k | integer) - (0x1p52 + bias);
    const Doubles f = m - 1.0, z = f / (m + 1.0), w = z * z;
    Doubles q = splat(p[6]);
    for (int i = 5; i >= 0; --i) q = p[i] + w * q;
    return kf * ln2_high + (f - (z * (f - w * q) - kf * ln2_low));
}

inline Doubles square_root(Doubles x) { return reinterpret_cast<Doubles>(_mm_sqrt_pd(reinterpret_cast<__m128d>(x))); }

} // namespace zeti
