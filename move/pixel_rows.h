// SPDX-License-Identifier: Apache-2.0
// A destination that is written in runs of pixels, copies of others or of one pixel; AC4 keeps every fourth sample.
#pragma once

#include "move/rows.h"
#include "move/streaming.h"
#include "signal/pixel_run.h"

namespace zeti {

// Regions above the size from which copies stream are written past the cache.
template <class T, class L> class PixelRows {
    static constexpr int channels = L::channels, pixel = channels * int{sizeof(T)};

public:
    PixelRows(Dst<T> dst, Extent pixels)
        : dst_(dst), cache_(L::keeps_alpha ? Cache::plain : copy_cache({pixels.width * pixel, pixels.height})) {}
    ~PixelRows() {
        if (cache_ == Cache::streaming) streaming_fence();
    }
    T* at(ptrdiff_t y, ptrdiff_t x = 0) const { return dst_.row(y) + x * channels; }

    void copy(const T* from, T* to, ptrdiff_t pixels) const {
        if (from == to) return;
        if constexpr (L::keeps_alpha) {
            TakeFirst take;
            row<KeepAlpha<T, 4>>(RowOperand<T>{from}, to, to, pixels * channels, take);
        } else {
            copy_run(reinterpret_cast<const Zet8u*>(from), reinterpret_cast<Zet8u*>(to), pixels * pixel, cache_);
        }
    }
    // A few copies of a pixel.
    void fill(const T* value, T* to, ptrdiff_t pixels) const {
        if (pixels == 0) return;
        if constexpr (L::keeps_alpha) {
            const T colours[4] = {get(value), get(value + 1), get(value + 2)};
            const Pattern<T, KeepAlpha<T, 4>::period> pattern(colours, 4);
            TakeFirst take;
            row<KeepAlpha<T, 4>>(pattern, to, to, pixels * channels, take);
        } else {
            PixelRun<pixel>(reinterpret_cast<const Zet8u*>(value)).fill(reinterpret_cast<Zet8u*>(to), pixels);
        }
    }
    // Whole rows of it.
    void fill_rows(const T* value, ptrdiff_t y, ptrdiff_t width, ptrdiff_t height) const {
        if constexpr (L::keeps_alpha) {
            for (ptrdiff_t end = y + height; y < end; ++y) fill(value, at(y), width);
        } else {
            const FillPattern pattern(value, channels);
            for (ptrdiff_t end = y + height; y < end; ++y) owniSet_8u(pattern, reinterpret_cast<Zet8u*>(at(y)), width * pixel, cache_);
        }
    }

private:
    Dst<T> dst_;
    Cache cache_;
};

} // namespace zeti
