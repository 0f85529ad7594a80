// SPDX-License-Identifier: Apache-2.0
// Sqrt: image level.
#pragma once

#include "arith/unary.h"
#include "signal/sqr.h"
#include "signal/sqrt.h"

namespace zeti {

struct Sqrt {
    static constexpr bool whole_samples = true;
    template <class T, class Use> static void with_kernel(int s, Use use) {
        const int near = std::clamp(s, -16, 16);
        if constexpr (std::is_floating_point_v<T>) {
            use(Root<T>());
        } else if constexpr (sizeof(T) == 2) {
            if (s < -3) use(ExactRoot<T>(near));
            else use(Root<T>(near));
        } else {
            switch (s) {
            case 1: return use(RootSteps<1>());
            case 2: return use(RootSteps<2>());
            case 3: return use(RootSteps<3>());
            case 4: return use(RootSteps<4>());
            default: return s > 4 ? use(NothingLeft()) : use(Root<T>(near));
            }
        }
    }
};

} // namespace zeti
