// SPDX-License-Identifier: Apache-2.0
// LUTPalette and LUTPaletteSwap. No step is checked; rows are walked by the steps as they stand.
#pragma once

#include "core/check.h"
#include "core/layout.h"
#include "core/view.h"
#include "stats/levels.h"

namespace zeti {

struct Zet24u { // a pixel of three bytes, the lowest first
    Zet8u bytes[3];
};

namespace detail {

template <class D> struct PaletteEntry {
    using type = D;
    static D pixel(D entry) { return entry; }
};
template <> struct PaletteEntry<Zet24u> {
    using type = Zet32u;
    static Zet24u pixel(Zet32u entry) {
        return {{static_cast<Zet8u>(entry), static_cast<Zet8u>(entry >> 8), static_cast<Zet8u>(entry >> 16)}};
    }
};

// Samples of a pixel of the source and of the destination, and where they go.
template <class L> struct PaletteForm {
    static constexpr int channels = L::channels, to = L::channels, colours = L::colours, place[4] = {0, 1, 2, 3};
};
template <> struct PaletteForm<C3A0C4> { static constexpr int channels = 3, to = 4, colours = 3, place[4] = {1, 2, 3}; };
struct SwappedForm {
    static constexpr int channels = 3, to = 4, colours = 3, place[4] = {2, 1, 3};
};

// ownpiLUTPalette; with the swapped form ownpiLUTPaletteS.
template <class S, class D, class Form, class Entry>
void ownpiLUTPalette(Src<S> src, Dst<D> dst, ZetiSize roi, const Entry* const* tables, Zet32u mask) {
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        const S* from = src.row(y);
        D* to = dst.row(y);
        for (ptrdiff_t x = 0; x < roi.width; ++x, from += Form::channels, to += Form::to) {
            D mapped[Form::colours];
            for (int c = 0; c < Form::colours; ++c) mapped[c] = PaletteEntry<D>::pixel(get(tables[c] + (get(from + c) & mask)));
            for (int c = 0; c < Form::colours; ++c) put(to + Form::place[c], mapped[c]);
        }
    }
}

template <class S, class D, class Form, class Pixel, class Tables>
ZetStatus palette(const S* pSrc, int srcStep, Pixel* pDst, int dstStep, ZetiSize roiSize, const Tables& pTable, int nBitSize) {
    const auto given = per_channel<Form>(pTable);
    const bool noTable = !given || (Form::channels == 1 && !given[0]); // the tables in an array are looked at later
    if (ZetStatus bad = first(null(pSrc, pDst), fails(noTable, zetStsNullPtrErr), size(roiSize))) return bad;
    const typename PaletteEntry<D>::type* tables[Form::colours];
    for (int c = 0; c < Form::colours; ++c)
        if (!(tables[c] = given[c])) return zetStsNullPtrErr;
    if (nBitSize < 1 || nBitSize > 8 * int{sizeof(S)}) return zetStsOutOfRangeErr;
    ownpiLUTPalette<S, D, Form>(Src<S>{pSrc, srcStep}, Dst<D>{reinterpret_cast<D*>(pDst), dstStep}, roiSize, tables, (1u << nBitSize) - 1);
    return zetStsNoErr;
}

} // namespace detail

// One type: the sample type of both sides.
template <class T, class L, class Tables>
ZetStatus palette(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, Tables pTable, int nBitSize) {
    return detail::palette<T, T, detail::PaletteForm<L>>(pSrc, srcStep, pDst, dstStep, roiSize, pTable, nBitSize);
}

template <class T, class, class Tables>
ZetStatus palette_swap(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, Tables pTable, int nBitSize) {
    return detail::palette<T, T, detail::SwappedForm>(pSrc, srcStep, pDst, dstStep, roiSize, pTable, nBitSize);
}

// Two types.
template <class S, class D, class L, class Pixel, class Tables>
ZetStatus palette(const S* pSrc, int srcStep, Pixel* pDst, int dstStep, ZetiSize roiSize, Tables pTable, int nBitSize) {
    return detail::palette<S, D, detail::PaletteForm<L>>(pSrc, srcStep, pDst, dstStep, roiSize, pTable, nBitSize);
}

} // namespace zeti
