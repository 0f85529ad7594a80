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
            else kernel.part(source, to, to, pixels * channels);
        } else {
            owniCopy_8u_C1(reinterpret_cast<const Zet8u*>(from), reinterpret_cast<Zet8u*>(to), pixels * pixel, cache_);
        }
    }

    // A few copies of a pixel.
    class Run {
    public:
        [[gnu::always_inline]] explicit Run(const T* value) : run_(of(value)) {}
        [[gnu::always_inline]] void fill(T* to, ptrdiff_t pixels) const {
            if constexpr (L::keeps_alpha) fill_colours(as_lanes<T>(run_.first()), to, pixels * channels);
            else run_.fill(reinterpret_cast<Zet8u*>(to), pixels);
        }

    private:
        [[gnu::always_inline]] static PixelRun<pixel> of(const T* value) {
            if constexpr (!L::keeps_alpha) return PixelRun<pixel>(reinterpret_cast<const Zet8u*>(value));
            T colours[channels] = {}; // alpha need not be there
            for (int c = 0; c < L::colours; ++c) colours[c] = get(value + c);
            return PixelRun<pixel>(reinterpret_cast<const Zet8u*>(colours));
        }
        [[gnu::noinline]] static void fill_colours(Vec<T> v, T* to, ptrdiff_t n) {
            for (; n >= lanes<T>; n -= lanes<T>, to += lanes<T>) store(to, KeepAlpha<T, 4>::merge(v, load(to), 0));
            if (n > 0) store(to, KeepAlpha<T, 4>::merge(v, load(to, static_cast<int>(n)), 0), static_cast<int>(n));
        }
        PixelRun<pixel> run_;
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
