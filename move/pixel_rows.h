// SPDX-License-Identifier: Apache-2.0
// A destination that is written in runs of pixels, copies of others or of one pixel; AC4 keeps every fourth sample.
#pragma once

#include "move/rows.h"
#include "signal/pixel_run.h"

namespace zeti {

// Regions above the size from which copies stream are written past the cache.
template <class T, class L> class PixelRows {
    static constexpr int channels = L::channels, pixel = channels * int{sizeof(T)};

public:
    PixelRows(Dst<T> dst, Extent pixels) : dst_(dst), cache_(copy_cache({pixels.width * pixel, pixels.height})) {}
    ~PixelRows() {
        if (cache_ == Cache::streaming) streaming_fence();
    }
    T* at(ptrdiff_t y, ptrdiff_t x = 0) const { return dst_.row(y) + x * channels; }

    void copy(const T* from, T* to, ptrdiff_t pixels) const {
        if (from == to) return;
        if constexpr (L::keeps_alpha) {
            TakeFirst take;
            const RowOperand<T> source{from};
            const auto kernel = row_kernel<KeepAlpha<T, 4>, T, RowOperand<T>>(take);
            if (cache_ == Cache::streaming) large_row(source, to, to, pixels * channels, kernel, false);
            else kernel(source, to, to, pixels * channels);
        } else {
            owniCopy_8u_C1(reinterpret_cast<const Zet8u*>(from), reinterpret_cast<Zet8u*>(to), pixels * pixel, cache_);
        }
    }

    // A few copies of a pixel.
    class Run {
    public:
        explicit Run(const T* value) : pattern_(pattern_of(value)) {}
        void fill(T* to, ptrdiff_t pixels) const {
            if (pixels == 0) return;
            if constexpr (L::keeps_alpha) {
                TakeFirst take;
                row<KeepAlpha<T, 4>>(pattern_, to, to, pixels * channels, take);
            } else {
                pattern_.fill(reinterpret_cast<Zet8u*>(to), pixels);
            }
        }

    private:
        static auto pattern_of(const T* value) {
            if constexpr (L::keeps_alpha) {
                const T colours[4] = {get(value), get(value + 1), get(value + 2)};
                return Pattern<T, KeepAlpha<T, 4>::period>(colours, 4);
            } else {
                return PixelRun<pixel>(reinterpret_cast<const Zet8u*>(value));
            }
        }
        decltype(pattern_of(nullptr)) pattern_;
    };

    // Whole rows of it.
    void fill_rows(const T* value, ptrdiff_t y, ptrdiff_t width, ptrdiff_t height) const {
        if constexpr (L::keeps_alpha) {
            const Run run(value);
            for (ptrdiff_t end = y + height; y < end; ++y) run.fill(at(y), width);
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
