// SPDX-License-Identifier: Apache-2.0
// Complex products of 32-bit parts. Each sum is formed in 64 bits and wraps, kept on purpose: four parts of -2^31 give -2^63.
#pragma once

#include <algorithm>

#include "signal/scaling.h"

namespace zeti {

class MulComplex32 {
public:
    explicit MulComplex32(int s) : s_(s) {}
    Zet32sc operator()(Zet32sc a, Zet32sc b) const {
        return {scaled(sum(product(a.re, b.re), -product(a.im, b.im))), scaled(sum(product(a.re, b.im), product(a.im, b.re)))};
    }

private:
    static int64_t product(Zet32s a, Zet32s b) { return int64_t{a} * b; }
    static int64_t sum(int64_t a, int64_t b) { return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b)); }

    Zet32s scaled(int64_t v) const { // s < 64; from -32 down only the sign of v is left
        if (s_ > 0) return saturate<Zet32s>(round_shift(v, s_));
        return saturate<Zet32s>(int64_t{saturate<Zet32s>(v)} * (int64_t{1} << -std::max(s_, -32)));
    }

    int s_;
};

} // namespace zeti
