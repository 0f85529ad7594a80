// SPDX-License-Identifier: Apache-2.0
// Sqr: image level. The paths by scale factor are those of Mul, whose bounds fit squares as well: no square of a sample is larger than
// its largest product.
#pragma once

#include "arith/arithmetic.h"
#include "arith/unary.h"
#include "signal/sqr.h"

namespace zeti {

struct Sqr {
    static constexpr bool whole_samples = true;
    template <class T, class Use> static void with_kernel(int s, Use use) {
        const Path path = std::is_floating_point_v<T> ? Path::unscaled : path_of(scale_range<Mul, T>, s);
        if (path == Path::zero) return use(NothingLeft());
        if constexpr (std::is_same_v<T, Zet8u>)
            if (path == Path::unscaled || path == Path::up) return use(SquaredUp8u(s));
        detail::with_kernel<Mul, T>(path, s, nullptr, [&](auto product) { use(Squared(product)); });
    }
};

} // namespace zeti
