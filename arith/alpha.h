// SPDX-License-Identifier: Apache-2.0
// AlphaComp, AlphaCompC, AlphaPremul, AlphaPremulC: image level. The fourth sample of AC4 and the fourth plane of AP4 are alpha, and so is the
// second sample of AC1. Steps are not checked. All serial.
#pragma once

#include "arith/rows.h"
#include "signal/alpha.h"

namespace zeti {

namespace detail {

constexpr ZetStatus alpha_type(int type, int last) { return fails(type < 0 || type > last, zetStsAlphaTypeErr); }

// Calls use(operator, premultiplied), once per call of the library.
template <class Use> void with_operator(int type, Use use) {
    const auto choose = [&](auto premultiplied) {
        switch (type % zetAlphaOverPremul) {
        case zetAlphaOver: return use(alpha::Over(), premultiplied);
        case zetAlphaIn: return use(alpha::In(), premultiplied);
        case zetAlphaOut: return use(alpha::Out(), premultiplied);
        case zetAlphaATop: return use(alpha::ATop(), premultiplied);
        case zetAlphaXor: return use(alpha::Xor(), premultiplied);
        default: return use(alpha::Plus(), premultiplied);
        }
    };
    if (type < zetAlphaOverPremul) choose(std::false_type());
    else choose(std::true_type());
}

template <class T, class L, class Kernel> void two_sources(Src<T> a, Src<T> b, Dst<T> dst, ZetiSize roi, Kernel kernel) {
    run_rows<WriteAll<T>>(operand_of(a), b, dst, samples(roi, L::channels), serial, kernel);
}

// A constant opacity fades alpha, and with it the colours that are multiplied by it already.
template <class T, int Pixel, bool Premultiplied> alpha::Faded<T> fade(T opacity) {
    const Factor<T> everywhere = factor<T>(splat(opacity));
    if constexpr (Premultiplied) return {everywhere};
    else return {factor<T>(select<T>(alpha::alpha_samples<T, Pixel>(), splat(opacity), splat(full_scale<T>)))};
}

// The four planes of an image, as rows.
template <class Image, class T> struct Planes {
    T* const* planes;
    ptrdiff_t step;
    Image operator[](int plane) const { return {planes[plane], step}; }
};
template <class T> using SrcPlanes = Planes<Src<T>, const T>;
template <class T> using DstPlanes = Planes<Dst<T>, T>;

// Colour planes first: in place the alpha planes are still needed for them.
template <class Op, bool Premultiplied, class T, class Fade>
void compose_planes(SrcPlanes<T> a, SrcPlanes<T> b, DstPlanes<T> dst, ZetiSize roi, Fade fadeA, Fade fadeB) {
    alpha::Colours<Op, Premultiplied, T, Fade> colours{fadeA, fadeB};
    alpha::Pixels<Op, true, T, 1, Fade> alphas{fadeA, fadeB};
    const RowOperand<T> ofA = operand_of(a[3]), ofB = operand_of(b[3]);
    const Extent plane = samples(roi, 1);
    for (int c = 0; c < 3; ++c) run_rows<WriteAll<T>>(Rows<T, 3>{{operand_of(a[c]), ofA, ofB}}, b[c], dst[c], plane, serial, colours);
    run_rows<WriteAll<T>>(ofA, b[3], dst[3], plane, serial, alphas);
}

template <class T> void premultiply_planes(SrcPlanes<T> src, DstPlanes<T> dst, ZetiSize roi) {
    alpha::PremultiplyPlane<T> kernel;
    for (int c = 0; c < 3; ++c) run_rows<WriteAll<T>>(operand_of(src[3]), src[c], dst[c], samples(roi, 1), serial, kernel);
}

} // namespace detail

// --- AlphaComp ----------------------------------------------------------------------------------------------------

template <class T, class L>
ZetStatus alpha_comp(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, ZetiSize roiSize,
                     ZetAlphaType alphaType) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst), size(roiSize), alpha_type(alphaType, zetAlphaPlusPremul))) return bad;
    with_operator(alphaType, [&](auto op, auto premultiplied) {
        two_sources<T, L>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize,
                          alpha::Pixels<decltype(op), premultiplied, T, L::channels, alpha::Opaque<T>>());
    });
    return zetStsNoErr;
}

template <class T, class L>
ZetStatus alpha_comp(const T* const* pSrc1, int src1Step, const T* const* pSrc2, int src2Step, T* const* pDst, int dstStep,
                     ZetiSize roiSize, ZetAlphaType alphaType) {
    using namespace detail;
    if (ZetStatus bad = first(null_planes<4>(pSrc1), null_planes<4>(pSrc2), null_planes<4>(pDst), size(roiSize),
                              alpha_type(alphaType, zetAlphaPlusPremul)))
        return bad;
    with_operator(alphaType, [&](auto op, auto premultiplied) {
        const alpha::Opaque<T> opaque;
        compose_planes<decltype(op), premultiplied, T>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize, opaque, opaque);
    });
    return zetStsNoErr;
}

// --- AlphaCompC ---------------------------------------------------------------------------------------------------

// C1, C3, C4: all samples are colours under the constant alphas. AC4: the constants are opacities of whole pixels.
template <class T, class L>
ZetStatus alpha_comp_constant(const T* pSrc1, int src1Step, T alpha1, const T* pSrc2, int src2Step, T alpha2, T* pDst, int dstStep,
                              ZetiSize roiSize, ZetAlphaType alphaType) {
    using namespace detail;
    if (ZetStatus bad = first(null(pSrc1, pSrc2, pDst), size(roiSize), alpha_type(alphaType, zetAlphaPlusPremul))) return bad;
    with_operator(alphaType, [&](auto op, auto premultiplied) {
        const auto run = [&](auto kernel) { two_sources<T, L>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize, kernel); };
        if constexpr (std::is_same_v<L, AC4>)
            run(alpha::Pixels<decltype(op), premultiplied, T, 4, alpha::Faded<T>>{fade<T, 4, premultiplied>(alpha1),
                                                                                  fade<T, 4, premultiplied>(alpha2)});
        else run(alpha::Constant<decltype(op), premultiplied, T>{splat(alpha1), splat(alpha2)});
    });
    return zetStsNoErr;
}

template <class T, class L>
ZetStatus alpha_comp_constant(const T* const* pSrc1, int src1Step, T alpha1, const T* const* pSrc2, int src2Step, T alpha2, T* const* pDst,
                              int dstStep, ZetiSize roiSize, ZetAlphaType alphaType) {
    using namespace detail;
    if (ZetStatus bad = first(null_planes<4>(pSrc1), null_planes<4>(pSrc2), null_planes<4>(pDst), size(roiSize),
                              alpha_type(alphaType, zetAlphaPlusPremul)))
        return bad;
    with_operator(alphaType, [&](auto op, auto premultiplied) {
        compose_planes<decltype(op), premultiplied, T>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize,
                                                       fade<T, 1, premultiplied>(alpha1), fade<T, 1, premultiplied>(alpha2));
    });
    return zetStsNoErr;
}

// --- AlphaPremul --------------------------------------------------------------------------------------------------

template <class T, class L> ZetStatus alpha_premul(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    alpha::PremultiplyPixels<T, L::channels> kernel;
    run_rows<WriteAll<T>>(NoOperand<T>(), Src<T>{pSrc, srcStep}, Dst<T>{pDst, dstStep}, samples(roiSize, L::channels), serial, kernel);
    return zetStsNoErr;
}

template <class T, class L> ZetStatus alpha_premul(const T* const* pSrc, int srcStep, T* const* pDst, int dstStep, ZetiSize roiSize) {
    using namespace detail;
    if (ZetStatus bad = first(null_planes<4>(pSrc), null_planes<4>(pDst), size(roiSize))) return bad;
    const SrcPlanes<T> src{pSrc, srcStep};
    const DstPlanes<T> dst{pDst, dstStep};
    premultiply_planes<T>(src, dst, roiSize);
    copy_samples(src[3], dst[3], samples(roiSize, 1));
    return zetStsNoErr;
}

template <class T, class L> ZetStatus alpha_premul_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return alpha_premul<T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

template <class T, class L> ZetStatus alpha_premul_I(T* const* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    using namespace detail;
    if (ZetStatus bad = first(null_planes<4>(pSrcDst), size(roiSize))) return bad;
    premultiply_planes<T>({pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize);
    return zetStsNoErr;
}

// --- AlphaPremulC -------------------------------------------------------------------------------------------------

// The alpha samples of AC4 and the alpha plane of AP4 stay as the destination has them.
template <class T, class L> ZetStatus alpha_premul_constant(const T* pSrc, int srcStep, T alpha, T* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize))) return bad;
    alpha::PremultiplyConstant<T> kernel{factor<T>(splat(alpha))};
    run_rows<Writes<T, L>>(NoOperand<T>(), Src<T>{pSrc, srcStep}, Dst<T>{pDst, dstStep}, samples(roiSize, L::channels), serial, kernel);
    return zetStsNoErr;
}

template <class T, class L>
ZetStatus alpha_premul_constant(const T* const* pSrc, int srcStep, T alpha, T* const* pDst, int dstStep, ZetiSize roiSize) {
    if (ZetStatus bad = first(null_planes<4>(pSrc), null_planes<4>(pDst), size(roiSize))) return bad;
    for (int c = 0; c < 3; ++c) alpha_premul_constant<T, C1>(pSrc[c], srcStep, alpha, pDst[c], dstStep, roiSize);
    return zetStsNoErr;
}

template <class T, class L> ZetStatus alpha_premul_constant_I(T alpha, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return alpha_premul_constant<T, L>(pSrcDst, srcDstStep, alpha, pSrcDst, srcDstStep, roiSize);
}

template <class T, class L> ZetStatus alpha_premul_constant_I(T alpha, T* const* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return alpha_premul_constant<T, L>(pSrcDst, srcDstStep, alpha, pSrcDst, srcDstStep, roiSize);
}

} // namespace zeti
