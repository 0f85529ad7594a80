// SPDX-License-Identifier: Apache-2.0
// What copying and filling share: regions as rows of bytes, contiguous images as one long row, and the choice of
// streaming stores by size.
#pragma once

#include "core/services.h"
#include "core/view.h"
#include "signal/row.h"
#include "signal/set.h"

namespace zeti {

inline constexpr int64_t copy_streams_above = 1048576; // bytes of the region
inline constexpr int64_t set_asks_above = 524288;      // bytes from which a fill asks for the cache size

inline int64_t area(Extent e) { return int64_t{e.width} * e.height; }

inline Cache copy_cache(Extent bytes) { return area(bytes) > copy_streams_above ? Cache::streaming : Cache::plain; }

// A fill streams when it cannot stay in the cache; a cache of unknown size counts as large enough.
inline Cache set_cache(Extent bytes) {
    int cacheSize = 0;
    if (area(bytes) <= set_asks_above || zetGetMaxCacheSizeB(&cacheSize) != 0) return Cache::plain;
    return area(bytes) >= cacheSize ? Cache::streaming : Cache::plain;
}

// Images without gaps between their rows are one long row.
template <class... Step> Extent collapsed(Extent rows, ptrdiff_t rowBytes, Step... step) {
    return (... && (step == rowBytes)) ? Extent{rows.width * rows.height, 1} : rows;
}

// The same for pixels of different sizes on the two sides.
inline Extent collapsed_pixels(ZetiSize roi, ptrdiff_t srcStep, ptrdiff_t srcPixel, ptrdiff_t dstStep, ptrdiff_t dstPixel) {
    const Extent pixels = samples(roi, 1);
    return collapsed(pixels, 0, srcStep - pixels.width * srcPixel, dstStep - pixels.width * dstPixel);
}

template <class Row> void each_row(Extent e, Row row) {
    for (ptrdiff_t y = 0; y < e.height; ++y) row(y);
}

inline void copy_bytes(Src<Zet8u> src, Dst<Zet8u> dst, Extent bytes, Cache cache) {
    each_row(bytes, [&](ptrdiff_t y) { owniCopy_8u_C1(src.row(y), dst.row(y), bytes.width, cache); });
    if (cache == Cache::streaming) streaming_fence();
}

// Copies every sample of the rows; the extent is in samples.
template <class T> void copy_samples(Src<T> src, Dst<T> dst, Extent e) {
    const Extent bytes = {e.width * ptrdiff_t{sizeof(T)}, e.height};
    copy_bytes(as<Zet8u>(src), as<Zet8u>(dst), collapsed(bytes, bytes.width, src.step, dst.step), copy_cache(bytes));
}

// Fills every sample of the rows with pixels of `channels` samples; the extent is in samples.
template <class T> void fill_samples(const T* value, int channels, Dst<T> dst, Extent e) {
    const Extent bytes = {e.width * ptrdiff_t{sizeof(T)}, e.height};
    const Cache cache = set_cache(bytes);
    const FillPattern pattern(value, channels);
    const Extent rows = collapsed(bytes, bytes.width, dst.step);
    each_row(rows, [&](ptrdiff_t y) { owniSet_8u(pattern, as<Zet8u>(dst).row(y), rows.width, cache); });
    if (cache == Cache::streaming) streaming_fence();
}

// The kernel of AC4 copies and fills: the first operand as it is.
struct TakeFirst {
    template <class V> V operator()(V a) const { return a; }
};

// Fills the colour samples of AC4 pixels (of `PixelSamples` samples, three quarters of them colour) and keeps the rest.
template <int PixelSamples, class T> void fill_colours(const T* value, Dst<T> dst, Extent e) {
    constexpr int colours = PixelSamples / 4 * 3;
    T pixel[PixelSamples] = {};
    for (int c = 0; c < colours; ++c) pixel[c] = value[c];
    using Writes = KeepAlpha<T, PixelSamples>;
    const Pattern<T, Writes::period> pattern(pixel, PixelSamples);
    const Extent run = collapsed(e, e.width * ptrdiff_t{sizeof(T)}, dst.step);
    TakeFirst take;
    rows<Writes>(pattern, Src<T>(dst), dst, run.width, run.height, take);
}

} // namespace zeti
