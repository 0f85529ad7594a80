// SPDX-License-Identifier: Apache-2.0
// CopyConstBorder, CopyReplicateBorder, CopyWrapBorder: a source in a larger destination. Steps are checked before sizes.
#pragma once

#include "core/check.h"
#include "move/pixel_rows.h"

namespace zeti {

namespace detail {

// The source's place in the destination, in pixels.
struct Place {
    ptrdiff_t left, top, width, height, dstWidth, dstHeight;

    Place(ZetiSize src, ZetiSize dst, int topHeight, int leftWidth)
        : left(leftWidth), top(topHeight), width(src.width), height(src.height), dstWidth(dst.width), dstHeight(dst.height) {}
    ptrdiff_t right() const { return dstWidth - left - width; }
    ptrdiff_t bottom() const { return dstHeight - top - height; }
};

inline ZetStatus check_place(ZetiSize src, ZetiSize dst, int top, int left) {
    return first(size(src), size(dst), fails(top < 0 || left < 0, zetStsSizeErr),
                 fails(int64_t{top} + src.height > dst.height || int64_t{left} + src.width > dst.width, zetStsSizeErr));
}

// The rows of the source between their borders.
template <class T, class L>
[[gnu::noinline]] void const_sides(Src<T> src, const PixelRows<T, L>& rows, const Place& place, const T* value) {
    const Place p = place;
    const typename PixelRows<T, L>::Run run(value);
    for (ptrdiff_t y = 0; y < p.height; ++y) {
        T* const to = rows.at(p.top + y);
        run.fill(to, p.left);
        rows.copy(src.row(y), to + p.left * L::channels, p.width);
        run.fill(to + (p.left + p.width) * L::channels, p.right());
    }
}

template <class T, class L> void const_border(Src<T> src, Dst<T> dst, const Place& p, const T* value) {
    const PixelRows<T, L> rows(dst, {p.dstWidth, p.dstHeight});
    rows.fill_rows(value, 0, p.dstWidth, p.top);
    const_sides<T, L>(src, rows, p, value);
    rows.fill_rows(value, p.top + p.height, p.dstWidth, p.bottom());
}

// The nearest source pixel: rows to their sides, then the first and the last of them up and down.
struct ReplicateBorder {
    template <class T, class L> static void run(Src<T> src, Dst<T> dst, const Place& p) {
        using Rows = PixelRows<T, L>;
        const Rows rows(dst, {p.dstWidth, p.dstHeight});
        const ptrdiff_t last = p.top + p.height - 1;
        for (ptrdiff_t y = 0; y < p.height; ++y) {
            const T* const from = src.row(y);
            T *const to = rows.at(p.top + y), *const inner = to + p.left * L::channels, *const right = inner + p.width * L::channels;
            if (p.left > 0) typename Rows::Run(from).fill(to, p.left);
            rows.copy(from, inner, p.width);
            if (p.right() > 0) typename Rows::Run(from + (p.width - 1) * L::channels).fill(right, p.right());
        }
        for (ptrdiff_t y = 0; y < p.top; ++y) rows.copy(rows.at(p.top), rows.at(y), p.dstWidth);
        for (ptrdiff_t y = last + 1; y < p.dstHeight; ++y) rows.copy(rows.at(last), rows.at(y), p.dstWidth);
    }
};

// The source again and again. What stands grows by whole periods, as many at a time as there are already.
struct WrapBorder {
    template <class T, class L> static void run(Src<T> src, Dst<T> dst, const Place& p) {
        const PixelRows<T, L> rows(dst, {p.dstWidth, p.dstHeight});
        for (ptrdiff_t y = 0; y < p.height; ++y) {
            const ptrdiff_t row = p.top + y;
            rows.copy(src.row(y), rows.at(row, p.left), p.width);
            ptrdiff_t begin = p.left, end = p.left + p.width;
            const auto periods = [&] { return (end - begin) / p.width * p.width; };
            for (ptrdiff_t n; begin > 0; begin -= n) {
                n = std::min(periods(), begin);
                rows.copy(rows.at(row, begin - n + periods()), rows.at(row, begin - n), n);
            }
            for (ptrdiff_t n; end < p.dstWidth; end += n) {
                n = std::min(periods(), p.dstWidth - end);
                rows.copy(rows.at(row, end - periods()), rows.at(row, end), n);
            }
        }
        for (ptrdiff_t y = p.top - 1; y >= 0; --y) rows.copy(rows.at(y + p.height), rows.at(y), p.dstWidth);
        for (ptrdiff_t y = p.top + p.height; y < p.dstHeight; ++y) rows.copy(rows.at(y - p.height), rows.at(y), p.dstWidth);
    }
};

} // namespace detail

template <class T, class L, class V>
ZetStatus copy_const_border(const T* pSrc, int srcStep, ZetiSize srcRoiSize, T* pDst, int dstStep, ZetiSize dstRoiSize, int topBorderHeight,
                            int leftBorderWidth, V value) {
    const T* values;
    if constexpr (std::is_pointer_v<V>) values = value;
    else values = &value;
    if (ZetStatus bad = first(null(pSrc, pDst, values), step(srcStep, dstStep),
                              detail::check_place(srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth)))
        return bad;
    detail::const_border<T, L>({pSrc, srcStep}, {pDst, dstStep}, {srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth}, values);
    return zetStsNoErr;
}

// Border: detail::ReplicateBorder or detail::WrapBorder.
template <class Border, class T, class L>
ZetStatus copy_border(const T* pSrc, int srcStep, ZetiSize srcRoiSize, T* pDst, int dstStep, ZetiSize dstRoiSize, int topBorderHeight,
                      int leftBorderWidth) {
    if (ZetStatus bad =
            first(null(pSrc, pDst), step(srcStep, dstStep), detail::check_place(srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth)))
        return bad;
    Border::template run<T, L>({pSrc, srcStep}, {pDst, dstStep}, {srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth});
    return zetStsNoErr;
}

// In place: pSrc addresses the source, inside the destination.
template <class Border, class T, class L>
ZetStatus copy_border_I(T* pSrc, int srcDstStep, ZetiSize srcRoiSize, ZetiSize dstRoiSize, int topBorderHeight, int leftBorderWidth) {
    if (ZetStatus bad = first(null(pSrc), step(srcDstStep), detail::check_place(srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth)))
        return bad;
    const Dst<T> src{pSrc, srcDstStep};
    const Dst<T> dst{src.row(-ptrdiff_t{topBorderHeight}) - ptrdiff_t{leftBorderWidth} * L::channels, srcDstStep};
    Border::template run<T, L>(src, dst, {srcRoiSize, dstRoiSize, topBorderHeight, leftBorderWidth});
    return zetStsNoErr;
}

} // namespace zeti
