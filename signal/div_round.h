// SPDX-License-Identifier: Apache-2.0
// Quotients with a choice of rounding. Kernels of Div, which take any way from float to integer (signal/rounding.h).
#pragma once

#include "signal/div.h"

namespace zeti {

// s above the range: 0 throughout, by a zero divisor too.
template <class T> class QuotientNothing : public Divisors<T> {
public:
    Vec<T> operator()(Vec<T> a, Vec<T>) {
        this->note(a == 0);
        return Vec<T>{};
    }
};

} // namespace zeti
