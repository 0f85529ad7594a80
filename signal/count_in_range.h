// SPDX-License-Identifier: Apache-2.0
// Row kernel of CountInRange.
#pragma once

#include "core/view.h"
#include "signal/row.h"

namespace zeti {

// The bounds of every sample of a row, in registers that repeat. Lanes count downwards from zero, and join the sums before they could wrap.
template <class T, class L> class RangeCounter {
    using Lane = std::conditional_t<sizeof(T) == 1, Zet8u, Zet32u>;
    static constexpr int channels = L::channels, period = channels == 3 ? 3 : 1, step = period * lanes<T>;
    static constexpr ptrdiff_t most_rounds = sizeof(T) == 1 ? 255 : max_of<Zet32s>;
    using Bounds = Pattern<T, period>;

public:
    RangeCounter(const T* lower, const T* upper) : lower_(stored(lower).samples, channels), upper_(stored(upper).samples, channels) {}

    void add_row(const T* p, ptrdiff_t samples) {
        ptrdiff_t i = 0;
        while (i <= samples - step) {
            if (room_ == 0) flush();
            const ptrdiff_t rounds = std::min(room_, (samples - i) / step), end = i + rounds * step;
            room_ -= rounds;
            for (; i < end; i += step)
                for (int r = 0; r < period; ++r) {
                    const Vec<T> v = load(p + i + r * lanes<T>);
                    within_[r] += as_lanes<Lane>(v >= lower_.whole(0, r)) & as_lanes<Lane>(v <= upper_.whole(0, r)); // all ones are -1
                }
        }
        for (; i < samples; ++i) {
            const T v = get(p + i);
            const int c = static_cast<int>(i % channels);
            sums_[c] += v >= lower_.samples[c] && v <= upper_.samples[c];
        }
    }
    void give(Zet32s* counts) {
        flush();
        for (int c = 0; c < L::colours; ++c) counts[c] = static_cast<Zet32s>(sums_[c]);
    }

private:
    struct Stored { // alpha has no bound
        T samples[channels] = {};
    };
    static Stored stored(const T* bounds) {
        Stored s;
        for (int c = 0; c < L::colours; ++c) s.samples[c] = bounds[c];
        return s;
    }
    void flush() {
        for (int k = 0; k < step; ++k) sums_[k % channels] += static_cast<Lane>(-within_[k / lanes<T>][k % lanes<T>]);
        for (Vec<Lane>& lane : within_) lane = Vec<Lane>{};
        room_ = most_rounds;
    }

    Bounds lower_, upper_;
    Vec<Lane> within_[period] = {};
    ptrdiff_t room_ = most_rounds;
    Zet32u sums_[channels] = {};
};

} // namespace zeti
