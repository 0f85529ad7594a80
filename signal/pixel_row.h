// SPDX-License-Identifier: Apache-2.0
// The row walker of operations that have no register form: dst[i] = op(a[i], b[i]), one sample at a time, a sample being a whole
// complex number where the type is complex.
#pragma once

#include "core/layout.h"
#include "core/view.h"

namespace zeti {

// First operand: a row, or one constant per colour channel.
template <class T> struct SampleRow {
    const T* p;
    T at(ptrdiff_t i, int) const { return get(p + i); }
};
template <class T> struct SampleConstants {
    T value[4];
    T at(ptrdiff_t, int channel) const { return value[channel]; }
};

template <class L, class T, class A, class Op> void pixel_row(const A& a, const T* b, T* dst, ptrdiff_t pixels, Op& op) {
    for (ptrdiff_t x = 0; x < pixels; ++x)
        for (int c = 0; c < L::colours; ++c) {
            const ptrdiff_t i = x * L::channels + c;
            put(dst + i, op(a.at(i, c), get(b + i)));
        }
}

} // namespace zeti
