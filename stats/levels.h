// SPDX-License-Identifier: Apache-2.0
// Levels, which cut the range of samples into intervals: interval k runs from level[k] up to but excluding level[k + 1]. What the
// families that take them share: their checks, the levels of one channel, and the searches.
#pragma once

#include <algorithm>

#include "core/check.h"
#include "core/float_state.h"
#include "core/layout.h"
#include "core/view.h"

namespace zeti {

template <class T> using Level = std::conditional_t<std::is_floating_point_v<T>, Zet32f, Zet32s>;

// Integer samples have tables, indexed from the least sample on.
template <class T> inline constexpr bool has_table = std::is_integral_v<T>;
template <class T> inline constexpr int table_entries = 1 << (8 * sizeof(T));
template <class T> int table_index(T v) { return v - int{min_of<T>}; }

// What a call is given per colour channel: by itself on C1, else as an array.
template <class L, class A> auto per_channel(const A& argument) {
    if constexpr (L::channels == 1) return &argument;
    else return +argument;
}

// C1: pointers, size and steps, number of levels. On several channels each in turn has its pointers and its number tested before size and steps.
template <class L, class... Arrays>
ZetStatus check_levels(ZetStatus images, ZetStatus sizeAndSteps, ZetStatus fewLevels, const int* nLevels, Arrays... arrays) {
    if (ZetStatus bad = first(images, null(nLevels, arrays...))) return bad;
    if constexpr (L::channels == 1) return first(null(arrays[0]...), sizeAndSteps, fails(nLevels[0] < 2, fewLevels));
    for (int c = 0; c < L::colours; ++c)
        if (ZetStatus bad = first(null(arrays[c]...), fails(nLevels[c] < 2, fewLevels))) return bad;
    return sizeAndSteps;
}

// The levels of one channel.
template <class V> struct Levels {
    const V* level;
    int count;

    V operator[](int k) const { return level[k]; }
    int intervals() const { return count - 1; }
    bool hold(V v) const { return v >= (*this)[0] && v < (*this)[count - 1]; }
    bool interval_holds(int k, V v) const { return v >= (*this)[k] && v < (*this)[k + 1]; }

    template <class Holds> bool all_pairs(Holds holds) const {
        for (int k = 0; k < intervals(); ++k)
            if (!holds((*this)[k], (*this)[k + 1])) return false;
        return true;
    }
};

// The interval of a sample that the levels hold, by halving.
template <class V> int halved(const Levels<V>& levels, V v) {
    int base = 0;
    for (int m = levels.intervals(); m > 1;) {
        const int h = m / 2;
        const bool lower = v < levels[base + h];
        base += lower ? 0 : h;
        m = lower ? h : m - h;
    }
    return base;
}

// Every sample of one channel.
template <class T, class Use> void each_sample(Src<T> channel, int channels, ZetiSize roi, Use use) {
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        const T* p = channel.row(y);
        for (ptrdiff_t x = 0; x < roi.width; ++x, p += channels) use(get(p));
    }
}

} // namespace zeti
