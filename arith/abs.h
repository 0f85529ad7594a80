// SPDX-License-Identifier: Apache-2.0
// Abs: image level.
#pragma once

#include "arith/unary.h"
#include "signal/abs.h"

namespace zeti {

struct Abs {
    static constexpr bool whole_samples = true;
    template <class T, class Use> static void with_kernel(int, Use use) { use(AbsoluteValue()); }
};

} // namespace zeti
