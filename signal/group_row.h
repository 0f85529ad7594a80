// SPDX-License-Identifier: Apache-2.0
// The row walker of operations on pixels of three samples that depend on one another: dst = op(a, b) on groups of three
// registers, which hold whole pixels. The kernel is the only definition of the arithmetic, as in row.h.
#pragma once

#include "signal/row.h"

namespace zeti {

template <class T> struct Group {
    static constexpr int samples = 3 * lanes<T>;
    Vec<T> v[3];

    static Group from(const T* p) { return {{load(p), load(p + lanes<T>), load(p + 2 * lanes<T>)}}; }
    void to(T* p) const {
        for (int k = 0; k < 3; ++k) store(p + k * lanes<T>, v[k]);
    }
};

// Every sample n places further down or up in the group, zeros behind them.
template <int n, class T> Group<T> moved_down(const Group<T>& g) {
    constexpr int in = n * int{sizeof(T)}, out = register_bytes - in;
    const auto joined = [](Vec<T> low, Vec<T> high) {
        return as_lanes<T>(_mm_or_si128(_mm_srli_si128(raw(low), in), _mm_slli_si128(raw(high), out)));
    };
    return {{joined(g.v[0], g.v[1]), joined(g.v[1], g.v[2]), as_lanes<T>(_mm_srli_si128(raw(g.v[2]), in))}};
}
template <int n, class T> Group<T> moved_up(const Group<T>& g) {
    constexpr int in = n * int{sizeof(T)}, out = register_bytes - in;
    const auto joined = [](Vec<T> low, Vec<T> high) {
        return as_lanes<T>(_mm_or_si128(_mm_srli_si128(raw(low), out), _mm_slli_si128(raw(high), in)));
    };
    return {{as_lanes<T>(_mm_slli_si128(raw(g.v[0]), in)), joined(g.v[0], g.v[1]), joined(g.v[1], g.v[2])}};
}

template <class T, class Op> [[gnu::noinline]] void group_row(const T* a, const T* b, T* dst, ptrdiff_t n, const Op& kernel) {
    const Op op = kernel;
    const bool ahead = RowOperand<T>{a}.lead(dst, n) < n || RowOperand<T>{b}.lead(dst, n) < n;
    ptrdiff_t i = 0;
    if (!ahead)
        for (; i <= n - Group<T>::samples; i += Group<T>::samples) op(Group<T>::from(a + i), Group<T>::from(b + i)).to(dst + i);
    // The rest at once; pixel by pixel, in order, where results become sources.
    for (const ptrdiff_t piece = ahead ? 3 : n - i; i < n; i += piece) {
        T x[Group<T>::samples] = {}, y[Group<T>::samples] = {};
        const size_t bytes = static_cast<size_t>(piece) * sizeof(T);
        std::memcpy(x, a + i, bytes), std::memcpy(y, b + i, bytes);
        op(Group<T>::from(x), Group<T>::from(y)).to(x);
        std::memcpy(dst + i, x, bytes);
    }
}

} // namespace zeti
