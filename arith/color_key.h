// SPDX-License-Identifier: Apache-2.0
// CompColorKey and AlphaCompColorKey: image level. Every step is checked. All serial.
#pragma once

#include "arith/alpha.h"
#include "signal/color_key.h"

namespace zeti {

template <class T, class L>
ZetStatus comp_color_key(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize,
                         const T* colorKey) {
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst, colorKey), size(roiSize), step(src1Step, src2Step, dstStep))) return bad;
    const Src<T> src1{pSrc1, src1Step}, src2{pSrc2, src2Step};
    const Dst<T> dst{pDst, dstStep};
    T key[Group<T>::samples];
    for (int i = 0; i < Group<T>::samples; ++i) key[i] = colorKey[i % L::channels];
    if constexpr (L::channels == 3) {
        const ColorKey3<T> kernel{Group<T>::from(key)};
        const Extent e = samples(roiSize, 3);
        each_row(e, [&](ptrdiff_t y) { group_row(src1.row(y), src2.row(y), dst.row(y), e.width, kernel); });
    } else {
        detail::two_sources<T, L>(src1, src2, dst, roiSize, ColorKey<T, L::channels>{load(key)});
    }
    return zetStsNoErr;
}

// C1: the key by value.
template <class T, class L>
ZetStatus comp_color_key(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize, T colorKey) {
    return comp_color_key<T, L>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize, &colorKey);
}

template <class T, class L>
ZetStatus alpha_comp_color_key(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize,
                               const T* colorKey, ZetAlphaType alphaType) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst, colorKey), size(roiSize), step(src1Step, src2Step, dstStep),
                              alpha_type(alphaType, zetAlphaPlus)))
        return bad;
    const Vec<Zet32u> key = splat(Zet32u{colorKey[0]} | Zet32u{colorKey[1]} << 8 | Zet32u{colorKey[2]} << 16);
    with_operator(alphaType, [&](auto op, auto) {
        using Inner = alpha::Pixels<decltype(op), false, T, 4, alpha::Opaque<T>>;
        two_sources<T, L>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize, ColorKeyComposition<Inner>{key, {}});
    });
    return zetStsNoErr;
}

} // namespace zeti
