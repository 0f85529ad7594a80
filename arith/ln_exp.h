// SPDX-License-Identifier: Apache-2.0
// Ln and Exp: image level. Which kernel serves which scale factor.
#pragma once

#include "arith/unary.h"
#include "signal/exp.h"
#include "signal/ln.h"

namespace zeti {

struct Ln {
    static constexpr bool whole_samples = false;
    template <class T, class Use> static void with_kernel(int s, Use use) {
        if constexpr (std::is_same_v<T, Zet32f>) {
            use(Ln32f());
        } else if (s >= 0) {
            const Steps<T> steps(ln_stairs_from_0<T>[s < ln_zero ? s : ln_zero]);
            use(LnBySteps<T>(steps));
        } else if constexpr (std::is_same_v<T, Zet8u>) {
            use(LnByTable(s));
        } else {
            use(Ln16<T>(s));
        }
    }
};

struct Exp {
    static constexpr bool whole_samples = false;
    template <class T, class Use> static void with_kernel(int s, Use use) {
        if constexpr (std::is_same_v<T, Zet32f>) {
            use(Exp32f());
        } else {
            const Steps<T> steps(exp_stairs_at<T>(s));
            use(ExpBySteps<T>(steps));
        }
    }
};

} // namespace zeti
