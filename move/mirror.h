// SPDX-License-Identifier: Apache-2.0
// Mirror: rows from bottom to top, rows from right to left, or both. No step is checked.
#pragma once

#include "core/check.h"
#include "move/rows.h"
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
    static constexpr bool keeps_alpha = L::keeps_alpha;

    static void reverse(const Zet8u* src, Zet8u* dst, ptrdiff_t n) { owniFlipCopy_8u<bytes, keeps_alpha>(src, dst, n); }
    static void move(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
        if constexpr (keeps_alpha) {
            TakeFirst take;
            T* const to = reinterpret_cast<T*>(dst);
            rows<KeepAlpha<T, 4>>(RowOperand<T>{reinterpret_cast<const T*>(src)}, Src<T>{to, 0}, Dst<T>{to, 0}, 4 * n, 1, take);
        } else {
            owniCopy_8u_C1(src, dst, n * bytes, Cache::plain);
        }
    }
};

inline constexpr int kept_bytes = 1536; // what passes through a buffer at a time: a multiple of every pixel

// The same past the cache, by pieces; the next row lies above or below this one.
template <class Pixels> void reverse_streaming(const Zet8u* src, Zet8u* dst, ptrdiff_t n, bool nextBelow) {
    constexpr ptrdiff_t pixel = Pixels::bytes;
    static_assert(piece_bytes % pixel == 0);
    alignas(line_bytes) Zet8u reversed[piece_bytes];
    const ptrdiff_t end = n * pixel, before = to_line(dst) % pixel == 0 ? std::min(end, to_line(dst)) : 0; // what is left of the first line
    if (before > 0) Pixels::reverse(src + end - before, dst, before / pixel);
    by_places(end - before, line_bytes, ahead_bytes, [&](const Piece& piece) {
        const Zet8u* const from = src + end - before - piece.at - piece.count;
        Zet8u* const to = dst + before + piece.at;
        const ptrdiff_t ahead = piece.next > ahead_bytes && nextBelow ? 2 * end - piece.next : -piece.next;
        for (ptrdiff_t k = 0; k < piece.count; k += line_bytes) prefetch(from + k, ahead);
        Pixels::reverse(from, reversed, piece.count / pixel);
        if (piece.count == piece_bytes && starts_line(to)) stream_lines(reversed, to, piece_bytes);
        else owniCopy_8u_C1(reversed, to, piece.count, Cache::streaming);
    });
}

// Two runs of pixels change places by way of a buffer; `transfer` reverses or moves.
template <int Pixel, class Transfer> void exchange(Zet8u* a, Zet8u* b, ptrdiff_t n, Transfer transfer) {
    alignas(16) Zet8u kept[kept_bytes];
    owniCopy_8u_C1(a, kept, n * Pixel, Cache::plain);
    transfer(b, a, n);
    transfer(kept, b, n);
}

// Each from right to left. The next of them lie behind a and, mostly, before b.
template <class Pixels> void exchange_reversed(Zet8u* a, Zet8u* b, ptrdiff_t n) {
    if (n * Pixels::bytes == kept_bytes)
        for (ptrdiff_t k = 0; k < kept_bytes; k += line_bytes) prefetch(a + k, kept_bytes), prefetch(b + k, -kept_bytes);
    if constexpr (16 % Pixels::bytes == 0) owniFlip_8u<Pixels::bytes, Pixels::keeps_alpha>(a, b, n);
    else exchange<Pixels::bytes>(a, b, n, Pixels::reverse);
}

template <class Pixels> void reverse_in_place(Zet8u* row, ptrdiff_t n) {
    constexpr ptrdiff_t pixel = Pixels::bytes, piece = kept_bytes / pixel;
    for (; n > 1; row += piece * pixel, n -= 2 * piece) {
        const ptrdiff_t half = std::min(piece, n / 2); // the middle pixel of an odd number stays
        exchange_reversed<Pixels>(row, row + (n - half) * pixel, half);
    }
}

} // namespace detail

template <class T, class L> ZetStatus mirror_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, int flip) {
    using Pixels = detail::MirrorPixels<T, L>;
    if (ZetStatus bad = first(null(pSrcDst), size(roiSize))) return bad;
    if (ZetStatus bad = detail::check_flip(roiSize, flip)) return bad;
    const auto image = as<Zet8u>(Dst<T>{pSrcDst, srcDstStep});
    const ptrdiff_t width = roiSize.width, height = roiSize.height;
    constexpr ptrdiff_t pixel = Pixels::bytes, piece = detail::kept_bytes / pixel;
    if (flip == detail::vertical_axis) {
        for (ptrdiff_t y = 0; y < height; ++y) detail::reverse_in_place<Pixels>(image.row(y), width);
        return zetStsNoErr;
    }
    for (ptrdiff_t y = 0; y < height / 2; ++y) {
        Zet8u *const upper = image.row(y), *const lower = image.row(height - 1 - y);
        if (flip == detail::horizontal_axis && !L::keeps_alpha) {
            owniExchange_8u_I(upper, lower, width * pixel);
            continue;
        }
        for (ptrdiff_t x = 0; x < width; x += piece) {
            const ptrdiff_t n = std::min(piece, width - x);
            Zet8u* const from = upper + x * pixel;
            if (flip == detail::both_axes) detail::exchange_reversed<Pixels>(from, lower + (width - x - n) * pixel, n);
            else detail::exchange<Pixels::bytes>(from, lower + x * pixel, n, Pixels::move);
        }
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
            if (cache == Cache::streaming) detail::reverse_streaming<Pixels>(from, dst.row(y), width, flip == detail::vertical_axis);
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
