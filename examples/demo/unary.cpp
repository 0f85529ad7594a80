// SPDX-License-Identifier: Apache-2.0
// Gallery entries of arith/: operations of one operand, products of full scale, rounded quotients.
#include <cmath>

#include "gallery.h"

namespace demo {

namespace {

void show_abs(Gallery &gallery, const Photos &photos) {
    gallery.family("Abs", "Absolute value: dst = |src|.");
    const Grey &src = photos.grey(2);
    const ZetiSize roi = {src.size.width - 2, src.size.height};
    const auto wide = converted<Zet16s>(src, [](Zet8u v) { return Zet16s{v}; });
    const Image<Zet16s, 1> slope(roi), dst(roi);
    Shot shot = gallery.shot("Edges of either sign", "Neighbours subtracted go up or down; their absolute value says how steeply.", roi);
    shot.run(CALL(zetiSub_16s_C1RSfs(wide.p, wide.step, wide.p + 2, wide.step, slope.p, slope.step, roi, -1)));
    shot.run(CALL(zetiAbs_16s_C1R(slope.p, slope.step, dst.p, dst.step, roi)));
    shot.show({{"slope", toned(slope, [](Zet16s v) { return 128 + v / 2; })}}, {{"dst", toned(dst, [](Zet16s v) { return v; })}});
}

void show_sqr(Gallery &gallery, const Photos &photos) {
    gallery.family("Sqr", "Square: dst = src * src.");
    const Colour &src = photos.colour(1);
    const Colour dst(src.size);
    Shot shot = gallery.shot("Deeper shadows", "Scale factor 8 divides by 256, so that white stays white.", src.size);
    shot.run(CALL(zetiSqr_8u_C3RSfs(src.p, src.step, dst.p, dst.step, src.size, 8)));
    shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
}

void show_sqrt(Gallery &gallery, const Photos &photos) {
    gallery.family("Sqrt", "Square root: dst = sqrt(src).");
    {
        const Colour &src = photos.colour(3);
        const Colour dst(src.size);
        Shot shot = gallery.shot("Out of the shadows",
                                 "Scale factor -4 multiplies the roots by 16: 0 and 255 stay, all between grows lighter.", src.size);
        shot.run(CALL(zetiSqrt_8u_C3RSfs(src.p, src.step, dst.p, dst.step, src.size, -4)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Grey &src = photos.grey(2);
        const ZetiSize roi = {src.size.width - 1, src.size.height - 1};
        const auto light = converted<Zet32f>(src, [](Zet8u v) { return static_cast<Zet32f>(v); });
        const Image<Zet32f, 1> across(roi), down(roi);
        Shot shot = gallery.shot("Length of the gradient", "Floats: slopes across and down squared, added, and the root of the sum.", roi);
        shot.run(CALL(zetiSub_32f_C1R(light.p, light.step, light.p + 1, light.step, across.p, across.step, roi)));
        shot.run(CALL(zetiSub_32f_C1R(light.p, light.step, light.row(1), light.step, down.p, down.step, roi)));
        shot.run(CALL(zetiSqr_32f_C1IR(across.p, across.step, roi)));
        shot.run(CALL(zetiSqr_32f_C1IR(down.p, down.step, roi)));
        shot.run(CALL(zetiAdd_32f_C1IR(across.p, across.step, down.p, down.step, roi)));
        shot.run(CALL(zetiSqrt_32f_C1IR(down.p, down.step, roi)));
        shot.show({{"light", picture(src)}}, {{"down", toned(down, [](Zet32f v) { return 3 * v; })}});
    }
}

void show_mul_scale(Gallery &gallery, const Photos &photos) {
    gallery.family("MulScale", "Product of samples that stand for 0 to 1.");
    const Colour &src = photos.colour(0);
    const Grey shape =
        drawn<Zet8u>(src.size, [](double x, double y) { return std::max(0.0, std::min(255.0, 700 * (1 - std::hypot(x, 1.4 * y)))); });
    const Colour mask(src.size), dst(src.size);
    zetiDup_8u_C1C3R(shape.p, shape.step, mask.p, mask.step, mask.size);
    Shot shot = gallery.shot("Under a soft mask",
                             "Where the mask is 255 the photograph is exactly as it was, where it is 0 there is nothing.", src.size);
    shot.run(CALL(zetiMulScale_8u_C3R(mask.p, mask.step, src.p, src.step, dst.p, dst.step, src.size)));
    shot.show({{"mask", picture(mask)}, {"src", picture(src)}}, {{"dst", picture(dst)}});

    gallery.family("MulCScale", "Product of samples and constants that stand for 0 to 1.");
    const Colour tinted(src.size);
    Shot tint = gallery.shot("Through a coloured filter", "All of the red, most of the green, half of the blue.", src.size);
    GIVEN(tint, const Zet8u value[3] = {255, 210, 128});
    tint.run(CALL(zetiMulCScale_8u_C3R(src.p, src.step, value, tinted.p, tinted.step, src.size)));
    tint.show({{"src", picture(src)}}, {{"tinted", picture(tinted)}});
}

void show_div_round(Gallery &gallery, const Photos &photos) {
    gallery.family("Div_Round", "Quotient of two images with a choice of rounding: dst = src2 / src1.");
    const Grey &src = photos.grey(2);
    const Grey levels(src.size), cut(src.size), rounded(src.size);
    zetiSet_8u_C1R(85, levels.p, levels.step, levels.size);
    Shot shot = gallery.shot("Few levels, cut off or rounded", "By 85, towards zero and to nearest, and back by the product.", src.size);
    shot.run(CALL(zetiDiv_Round_8u_C1RSfs(levels.p, levels.step, src.p, src.step, cut.p, cut.step, src.size, zetRndZero, 0)));
    shot.run(CALL(zetiDiv_Round_8u_C1RSfs(levels.p, levels.step, src.p, src.step, rounded.p, rounded.step, src.size, zetRndFinancial, 0)));
    shot.run(CALL(zetiMul_8u_C1IRSfs(levels.p, levels.step, cut.p, cut.step, src.size, 0)));
    shot.run(CALL(zetiMul_8u_C1IRSfs(levels.p, levels.step, rounded.p, rounded.step, src.size, 0)));
    shot.show({{"src", picture(src)}}, {{"cut", picture(cut)}, {"rounded", picture(rounded)}});
}

} // namespace

void show_unary(Gallery &gallery, const Photos &photos) {
    show_abs(gallery, photos);
    show_sqr(gallery, photos);
    show_sqrt(gallery, photos);
    show_mul_scale(gallery, photos);
    show_div_round(gallery, photos);
}

} // namespace demo
