// SPDX-License-Identifier: Apache-2.0
// Transpose: the pixel at column x, row y goes to column y, row x. No step is checked.
#pragma once

#include "core/check.h"
#include "move/rows.h"
#include "signal/transpose.h"

namespace zeti {

namespace detail {

// The pixels from column x, row y on.
template <class View> View from(View image, ptrdiff_t x, ptrdiff_t y, int pixel) { return {image.row(y) + x * pixel, image.step}; }

} // namespace detail

// Square images only: a tile and its mirror across the diagonal change places.
template <class T, class L> ZetStatus transpose_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    constexpr int pixel = int{sizeof(T)} * L::channels;
    using Tile = TransposeTile<pixel>;
    constexpr ptrdiff_t side = std::min({32, Tile::rows, Tile::columns});
    if (ZetStatus bad = first(null(pSrcDst), size(roiSize), fails(roiSize.width != roiSize.height, zetStsSizeErr))) return bad;
    const auto image = as<Zet8u>(Dst<T>{pSrcDst, srcDstStep});
    const ptrdiff_t n = roiSize.width;
    Tile one, other;
    for (ptrdiff_t y = 0; y < n; y += side) {
        const ptrdiff_t height = std::min(side, n - y);
        for (ptrdiff_t x = y; x < n; x += side) {
            const ptrdiff_t width = std::min(side, n - x);
            const Dst<Zet8u> above = detail::from(image, x, y, pixel), below = detail::from(image, y, x, pixel);
            one.read(above, width, height);
            if (x != y) {
                other.read(below, height, width);
                other.write(above, height, width, Cache::plain);
            }
            one.write(below, width, height, Cache::plain);
        }
    }
    return zetStsNoErr;
}

template <class T, class L> ZetStatus transpose(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    constexpr int pixel = int{sizeof(T)} * L::channels;
    using Tile = TransposeTile<pixel>;
    if (pSrc == pDst && srcStep == dstStep) return transpose_I<T, L>(pDst, dstStep, roiSize);
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    const auto src = as<Zet8u>(Src<T>{pSrc, srcStep});
    const auto dst = as<Zet8u>(Dst<T>{pDst, dstStep});
    const bool large = copy_cache(samples(roiSize, pixel)) == Cache::streaming;
    const Cache cache = large && starts_line(pDst) && dst.step % line_bytes == 0 ? Cache::streaming : Cache::plain;
    Tile tile;
    for (ptrdiff_t y = 0; y < roiSize.height; y += Tile::rows) {
        const ptrdiff_t height = std::min<ptrdiff_t>(Tile::rows, roiSize.height - y);
        for (ptrdiff_t x = 0; x < roiSize.width; x += Tile::columns) {
            const ptrdiff_t width = std::min<ptrdiff_t>(Tile::columns, roiSize.width - x), ahead = x + 8 * Tile::columns;
            if (large && ahead < roiSize.width) Tile::announce(detail::from(src, ahead, y, pixel), height);
            tile.read(detail::from(src, x, y, pixel), width, height);
            tile.write(detail::from(dst, y, x, pixel), width, height, cache);
        }
    }
    if (cache == Cache::streaming) streaming_fence();
    return zetStsNoErr;
}

} // namespace zeti
