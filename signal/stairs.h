// SPDX-License-Identifier: Apache-2.0
// Functions of integer samples that take few values: a result for the smallest samples, and steps from which on it is higher.
#pragma once

#include "core/simd.h"

namespace zeti {

template <class T> struct Stairs {
    static constexpr int most = 14;
    T base{}; // before the first step
    int count = 0;
    T from[most]{}; // samples from here on, above the type's minimum
    T rise[most]{}; // have a result higher by this, in wrapping arithmetic

    constexpr void add(int x, int by) {
        from[count] = static_cast<T>(x);
        rise[count++] = static_cast<T>(by);
    }
};

// Stairs in registers. They outlive the kernels that refer to them.
template <class T> class Steps {
    using S = std::make_signed_t<T>;
    using U = std::make_unsigned_t<T>;                                             // sums wrap
    static constexpr T bias = std::is_unsigned_v<T> ? T(max_of<T> / 2 + 1) : T{0}; // the comparison is one of signed lanes

public:
    explicit Steps(const Stairs<T>& stairs) : base_(splat(stairs.base)), count_(stairs.count) {
        for (int k = 0; k < count_; ++k) {
            below_[k] = splat(static_cast<S>(static_cast<T>(stairs.from[k] - 1) ^ bias));
            rise_[k] = splat(stairs.rise[k]);
        }
    }
    Vec<T> operator()(Vec<T> x) const {
        const Vec<S> compared = as_lanes<S>(x ^ bias);
        Vec<U> y = as_lanes<U>(base_);
        for (int k = 0; k < count_; ++k) y += as_lanes<U>(compared > below_[k]) & as_lanes<U>(rise_[k]);
        return as_lanes<T>(y);
    }

private:
    Vec<T> base_;
    int count_;
    Vec<S> below_[Stairs<T>::most];
    Vec<T> rise_[Stairs<T>::most];
};

} // namespace zeti
