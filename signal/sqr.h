// SPDX-License-Identifier: Apache-2.0
// Squares: the products of samples by themselves.
#pragma once

#include "core/simd.h"

namespace zeti {

// A kernel of two operands, given the same sample twice.
template <class Product> class Squared {
public:
    explicit Squared(Product product) : product_(product) {}
    template <class V> V operator()(V x) const { return product_(x, x); }

private:
    Product product_;
};

// 8u, -8 < s <= 0. Samples from 16 on saturate, as 16 does, and as 15 does at any s below 0: squares of the smaller of both fit
// positive 16-bit lanes when scaled.
class SquaredUp8u {
public:
    explicit SquaredUp8u(int s) : largest_(splat(static_cast<Zet8u>(s < 0 ? 15 : 16))), shift_(count_of(-s)) {}
    Vec<Zet8u> operator()(Vec<Zet8u> x) const {
        const auto v = widen<Zet8u>(min<Zet8u>(x, largest_));
        return narrow_to_8u(shift_left<Zet16u>(v.low * v.low, shift_), shift_left<Zet16u>(v.high * v.high, shift_));
    }

private:
    Vec<Zet8u> largest_;
    Count shift_;
};

struct NothingLeft { // of any sample, at scale factors so high that 0 is nearest
    template <class V> V operator()(V) const { return V{}; }
};

} // namespace zeti
