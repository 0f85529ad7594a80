// SPDX-License-Identifier: Apache-2.0
// SwapChannels: destination channel c takes source channel dstOrder[c]. The entries are tested last.
#pragma once

#include "core/check.h"
#include "move/rows.h"
#include "signal/swap.h"

namespace zeti {

namespace detail {

template <int N> constexpr ZetStatus channel_order(const int* order, int last) {
    bool bad = false;
    for (int c = 0; c < N; ++c) bad |= order[c] < 0 || order[c] > last;
    return fails(bad, zetStsChannelOrderErr);
}

template <class T, class L> constexpr int pixel_bytes() { // of the source
    if constexpr (requires { L::channels; }) return L::channels * int{sizeof(T)};
    else return L::source::channels * int{sizeof(T)};
}

inline constexpr ptrdiff_t swap_chunk = 768; // pixels that pass through a buffer at a time

// Rows in pieces that fit a buffer: piece(src, dst, pixels).
template <class Piece> void each_piece(const Zet8u* src, int sourceBytes, Zet8u* dst, int targetBytes, ptrdiff_t pixels, Piece piece) {
    for (ptrdiff_t x = 0; x < pixels; x += swap_chunk)
        piece(src + x * sourceBytes, dst + x * targetBytes, std::min(swap_chunk, pixels - x));
}

template <class Block> void one_to_one(const Block& block, const Zet8u* src, Zet8u* dst, ptrdiff_t pixels) {
    block_row(block, &src, &dst, pixels);
}

// Calls use(SwapPixels) for an order in which a negative entry keeps the destination's channel.
template <int Size, int N, class Use> void with_swap(const int* order, Use use) {
    if (*std::min_element(order, order + N) < 0) use(SwapPixels<Size, N, true>(order));
    else use(SwapPixels<Size, N, false>(order));
}

} // namespace detail

// C3, AC4, C4C3.
template <class T, class L>
ZetStatus swap_channels(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, const int* dstOrder) {
    constexpr bool narrows = !requires { L::channels; };
    constexpr int size_ = sizeof(T), last = narrows ? 3 : 2;
    if (ZetStatus bad = first(null(pSrc, pDst, dstOrder), size(roiSize), step(srcStep, dstStep))) return bad;
    if (ZetStatus bad = detail::channel_order<3>(dstOrder, last)) return bad;
    const auto src = as<Zet8u>(Src<T>{pSrc, srcStep});
    const auto dst = as<Zet8u>(Dst<T>{pDst, dstStep});
    constexpr int srcPixel = detail::pixel_bytes<T, L>(), dstPixel = narrows ? 3 * size_ : srcPixel;
    const Extent rows = collapsed_pixels(roiSize, srcStep, srcPixel, dstStep, dstPixel);
    if constexpr (narrows) {
        const int order[4] = {dstOrder[0], dstOrder[1], dstOrder[2], 3};
        const SwapPixels<size_, 4, false> swap(order);
        each_row(rows, [&](ptrdiff_t y) {
            detail::each_piece(src.row(y), srcPixel, dst.row(y), dstPixel, rows.width, [&](const Zet8u* from, Zet8u* to, ptrdiff_t n) {
                Zet8u swapped[detail::swap_chunk * 4 * size_];
                detail::one_to_one(swap, from, swapped, n);
                detail::one_to_one(NarrowPixels<size_>(), swapped, to, n);
            });
        });
    } else {
        const int order[4] = {dstOrder[0], dstOrder[1], dstOrder[2], -1};
        detail::with_swap<size_, L::channels>(order, [&](const auto& swap) {
            each_row(rows, [&](ptrdiff_t y) { detail::one_to_one(swap, src.row(y), dst.row(y), rows.width); });
        });
    }
    return zetStsNoErr;
}

// C3C4: an entry of 3 takes `val`, one above 3 keeps the destination's channel.
template <class T, class L>
ZetStatus swap_channels(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, const int* dstOrder, T val) {
    constexpr int size_ = sizeof(T);
    if (ZetStatus bad = first(null(pSrc, pDst, dstOrder), size(roiSize), step(srcStep, dstStep))) return bad;
    if (ZetStatus bad = detail::channel_order<4>(dstOrder, max_of<int>)) return bad;
    const auto src = as<Zet8u>(Src<T>{pSrc, srcStep});
    const auto dst = as<Zet8u>(Dst<T>{pDst, dstStep});
    int order[4];
    T fourth[16 / size_] = {};
    for (int c = 0; c < 4; ++c) order[c] = dstOrder[c] > 3 ? -1 : dstOrder[c];
    for (int i = 3; i < 16 / size_; i += 4) fourth[i] = val;
    const Extent rows = collapsed_pixels(roiSize, srcStep, 3 * size_, dstStep, 4 * size_);
    const WidenPixels<size_, false> widen{raw(load(fourth))};
    detail::with_swap<size_, 4>(order, [&](const auto& swap) {
        each_row(rows, [&](ptrdiff_t y) {
            detail::each_piece(src.row(y), 3 * size_, dst.row(y), 4 * size_, rows.width, [&](const Zet8u* from, Zet8u* to, ptrdiff_t n) {
                Zet8u widened[detail::swap_chunk * 4 * size_];
                detail::one_to_one(widen, from, widened, n);
                detail::one_to_one(swap, widened, to, n);
            });
        });
    });
    return zetStsNoErr;
}

// In place, where rows pass through a buffer: C3, C4.
template <class T, class L> ZetStatus swap_channels_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, const int* dstOrder) {
    constexpr int pixel = L::channels * int{sizeof(T)};
    if (ZetStatus bad = first(null(pSrcDst, dstOrder), size(roiSize), step(srcDstStep))) return bad;
    if (ZetStatus bad = detail::channel_order<L::channels>(dstOrder, L::channels - 1)) return bad;
    const auto image = as<Zet8u>(Dst<T>{pSrcDst, srcDstStep});
    const SwapPixels<sizeof(T), L::channels, false> swap(dstOrder);
    const Extent rows = collapsed_pixels(roiSize, srcDstStep, pixel, srcDstStep, pixel);
    each_row(rows, [&](ptrdiff_t y) {
        detail::each_piece(image.row(y), pixel, image.row(y), pixel, rows.width, [&](const Zet8u*, Zet8u* at, ptrdiff_t n) {
            Zet8u kept[detail::swap_chunk * pixel];
            std::memcpy(kept, at, static_cast<size_t>(n * pixel));
            detail::one_to_one(swap, kept, at, n);
        });
    });
    return zetStsNoErr;
}

} // namespace zeti
