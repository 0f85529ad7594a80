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

struct NothingLeft { // of any sample, at scale factors so high that 0 is nearest
    template <class V> V operator()(V) const { return V{}; }
};

} // namespace zeti
