// SPDX-License-Identifier: Apache-2.0
// Mirror: rows from bottom to top, rows from right to left, or both. No step is checked.
#pragma once

#include "core/check.h"
#include "move/rows.h"
#include "move/streaming.h"
#include "signal/reverse.h"

namespace zeti {

namespace detail {

enum Flip { horizontal_axis = 0, vertical_axis = 1, both_axes = 2 };

// An image that a flip would leave as it is in the flip's direction is refused, on purpose.
inline ZetStatus check_flip(ZetiSize roi, int flip) {
    return first(fails(flip < horizontal_axis || flip > both_axes, zetStsMirrorFlipErr),
                 fails(flip != vertical_axis && roi.height < 2, zetStsSizeErr),
                 fails(flip != horizontal_axis && roi.width < 2, zetStsSizeErr));
}

// Pixels of type T and layout L as bytes; AC4 keeps the fourth sample of the destination.
template <class T, class L> struct MirrorPixels {
    static constexpr int bytes = int{sizeof(T)} * L::channels;

    static void reverse(const Zet8u* src, Zet8u* dst, ptrdiff_t n) { owniFlipCopy_8u<bytes, L::keeps_alpha>(src, dst, n); }
    static void move(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
        if constexpr (L::keeps_alpha) {
            TakeFirst take;
            T* const to = reinterpret_cast<T*>(dst);
            row<KeepAlpha<T, 4>>(RowOperand<T>{reinterpret_cast<const T*>(src)}, to, to, 4 * n, take);
        } else {
            owniCopy_8u_C1(src, dst, n * bytes, Cache::plain);
        }
    }
};

inline constexpr int piece_bytes = 1536; // what passes through a buffer at a time: a multiple of every pixel

// The same past the cache, in pieces so small that the next one is reversed while this one leaves, and asked for ahead of time.
template <class Pixels> void reverse_streaming(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
    constexpr int lines = 6 * line_bytes, ahead = 4096;
    constexpr ptrdiff_t pixel = Pixels::bytes, piece = lines / pixel;
    alignas(16) Zet8u reversed[lines];
    const ptrdiff_t before = to_line(dst) % pixel == 0 ? to_line(dst) / pixel : 0; // pixels before the first line
    for (ptrdiff_t x = 0, count; x < n; x += count) {
        count = std::min(x == 0 && before > 0 ? before : piece, n - x);
        const Zet8u* const from = src + (n - x - count) * pixel;
        for (int k = 0; k < lines; k += line_bytes) prefetch(from, k - ahead);
        Pixels::reverse(from, reversed, count);
        copy_run(reversed, dst + x * pixel, count * pixel, Cache::streaming);
    }
}

// owniExchange_8u_I, owniFlip_8u_C1: two runs of pixels change places. `transfer` moves or reverses.
template <int Pixel, class Transfer> void exchange(Zet8u* a, Zet8u* b, ptrdiff_t n, Transfer transfer) {
    alignas(16) Zet8u kept[piece_bytes];
    owniCopy_8u_C1(a, kept, n * Pixel, Cache::plain);
    transfer(b, a, n);
    transfer(kept, b, n);
}

template <class Pixels> void reverse_in_place(Zet8u* row, ptrdiff_t n) {
    constexpr ptrdiff_t pixel = Pixels::bytes, piece = piece_bytes / pixel;
    for (; n > 1; row += piece * pixel, n -= 2 * piece) {
        const ptrdiff_t half = std::min(piece, n / 2); // the middle pixel of an odd number stays
        exchange<Pixels::bytes>(row, row + (n - half) * pixel, half, Pixels::reverse);
    }
}

} // namespace detail

template <class T, class L> ZetStatus mirror_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, int flip) {
    using Pixels = detail::MirrorPixels<T, L>;
    if (ZetStatus bad = first(null(pSrcDst), size(roiSize))) return bad;
    if (ZetStatus bad = detail::check_flip(roiSize, flip)) return bad;
    const auto image = as<Zet8u>(Dst<T>{pSrcDst, srcDstStep});
    const ptrdiff_t width = roiSize.width, height = roiSize.height;
    constexpr ptrdiff_t pixel = Pixels::bytes, piece = detail::piece_bytes / pixel;
    if (flip == detail::vertical_axis) {
        for (ptrdiff_t y = 0; y < height; ++y) detail::reverse_in_place<Pixels>(image.row(y), width);
        return zetStsNoErr;
    }
    for (ptrdiff_t y = 0; y < height / 2; ++y)
        for (ptrdiff_t x = 0; x < width; x += piece) {
            const ptrdiff_t n = std::min(piece, width - x);
            Zet8u *const upper = image.row(y) + x * pixel, *const lower = image.row(height - 1 - y);
            if (flip == detail::both_axes) detail::exchange<Pixels::bytes>(upper, lower + (width - x - n) * pixel, n, Pixels::reverse);
            else detail::exchange<Pixels::bytes>(upper, lower + x * pixel, n, Pixels::move);
        }
    if (flip == detail::both_axes && height % 2 != 0) detail::reverse_in_place<Pixels>(image.row(height / 2), width);
    return zetStsNoErr;
}

template <class T, class L> ZetStatus mirror(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, int flip) {
    using Pixels = detail::MirrorPixels<T, L>;
    if (pSrc == pDst && srcStep == dstStep) return mirror_I<T, L>(pDst, dstStep, roiSize, flip);
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    if (ZetStatus bad = detail::check_flip(roiSize, flip)) return bad;
    const auto src = as<Zet8u>(Src<T>{pSrc, srcStep});
    const auto dst = as<Zet8u>(Dst<T>{pDst, dstStep});
    const ptrdiff_t width = roiSize.width, last = roiSize.height - 1;
    const Extent bytes = samples(roiSize, Pixels::bytes);
    const Cache cache = L::keeps_alpha ? Cache::plain : copy_cache(bytes);
    if (flip != detail::horizontal_axis) {
        each_row(bytes, [&](ptrdiff_t y) {
            const Zet8u* const from = src.row(flip == detail::both_axes ? last - y : y);
            if (cache == Cache::streaming) detail::reverse_streaming<Pixels>(from, dst.row(y), width);
            else Pixels::reverse(from, dst.row(y), width);
        });
        if (cache == Cache::streaming) streaming_fence();
    } else if constexpr (L::keeps_alpha) {
        each_row(bytes, [&](ptrdiff_t y) { Pixels::move(src.row(last - y), dst.row(y), width); });
    } else {
        copy_bytes({src.row(last), -src.step}, dst, bytes, cache);
    }
    return zetStsNoErr;
}

} // namespace zeti
