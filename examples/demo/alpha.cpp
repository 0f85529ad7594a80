// SPDX-License-Identifier: Apache-2.0
// Gallery entries of arith/: composition under alpha and by colour key.
#include <algorithm>
#include <cmath>

#include "gallery.h"

namespace demo {

namespace {

// A photograph under an alpha matte.
template <class Alpha> ColourAlpha with_alpha(const Colour &photo, ZetiSize size, Alpha alpha) {
    ColourAlpha image(size);
    zetiCopy_8u_C3AC4R(photo.p, photo.step, image.p, image.step, size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) image.at(x, y)[3] = static_cast<Zet8u>(std::clamp<double>(alpha(x, y), 0, 255));
    return image;
}

// The cameraman is dark before a bright sky: how dark, is how much of him there is. Soft at coats and hair.
ColourAlpha cut_out(const Grey &grey, const Colour &clothes, ZetiSize size) {
    return with_alpha(clothes, size, [&](int x, int y) { return (150 - *grey.at(x, y)) * 4.0; });
}

ColourAlpha disc(const Colour &photo, ZetiSize size, double centre) {
    const double radius = size.height * 0.36;
    return with_alpha(photo, size,
                      [&](int x, int y) { return 128 + 12 * (radius - std::hypot(x - size.width * centre, y - size.height / 2.0)); });
}

void show_comp(Gallery &gallery, const Photos &photos) {
    gallery.family("AlphaComp", "Composition of two images under their alpha: how much of each shows.");
    const Colour &front = photos.colour(2), &back = photos.colour(0);
    {
        const ZetiSize roi = common(front, back);
        const ColourAlpha src1 = cut_out(photos.grey(2), front, roi), src2 = with_alpha(back, roi, [](int, int) { return 255; }), dst(roi);
        Shot shot =
            gallery.shot("Cut out and put elsewhere", "A matte made from the brightness of the photograph; Over, with soft edges.", roi);
        shot.run(CALL(zetiAlphaComp_8u_AC4R(src1.p, src1.step, src2.p, src2.step, dst.p, dst.step, roi, zetAlphaOver)));
        shot.show({{"src1", picture(src1)}, {"src2", picture(src2)}}, {{"dst", picture(dst)}});
    }
    {
        const ZetiSize roi = common(photos.colour(1), back);
        const ColourAlpha src1 = disc(photos.colour(1), roi, 0.38), src2 = disc(back, roi, 0.62), in(roi), out(roi), atop(roi),
                          exclusive(roi);
        Shot shot = gallery.shot("Two discs by four operators",
                                 "Inside the other, outside of it, on top of it, and each outside of the other.", roi);
        shot.run(CALL(zetiAlphaComp_8u_AC4R(src1.p, src1.step, src2.p, src2.step, in.p, in.step, roi, zetAlphaIn)));
        shot.run(CALL(zetiAlphaComp_8u_AC4R(src1.p, src1.step, src2.p, src2.step, out.p, out.step, roi, zetAlphaOut)));
        shot.run(CALL(zetiAlphaComp_8u_AC4R(src1.p, src1.step, src2.p, src2.step, atop.p, atop.step, roi, zetAlphaATop)));
        shot.run(CALL(zetiAlphaComp_8u_AC4R(src1.p, src1.step, src2.p, src2.step, exclusive.p, exclusive.step, roi, zetAlphaXor)));
        shot.show({{"src1", picture(src1)}, {"src2", picture(src2)}},
                  {{"in", picture(in)}, {"out", picture(out)}, {"atop", picture(atop)}, {"exclusive", picture(exclusive)}});
    }
}

void show_constant(Gallery &gallery, const Photos &photos) {
    gallery.family("AlphaCompC", "Composition of two images under constant alpha.");
    const Colour &src1 = photos.colour(1), &src2 = photos.colour(3);
    const ZetiSize roi = common(src1, src2);
    const Colour dst(roi);
    Shot shot = gallery.shot("Cross-fade", "One third of the first photograph over the second.", roi);
    shot.run(CALL(zetiAlphaCompC_8u_C3R(src1.p, src1.step, 85, src2.p, src2.step, 255, dst.p, dst.step, roi, zetAlphaOver)));
    shot.show({{"src1", picture(src1, roi)}, {"src2", picture(src2, roi)}}, {{"dst", picture(dst)}});
}

void show_premul(Gallery &gallery, const Photos &photos) {
    gallery.family("AlphaPremul", "Colours times the alpha of their pixel.");
    {
        const ZetiSize roi = photos.colour(1).size;
        const ColourAlpha src = disc(photos.colour(1), roi, 0.5), dst(roi);
        Shot shot = gallery.shot("Ready for composition", "What is transparent becomes black; shown without its alpha.", roi);
        shot.run(CALL(zetiAlphaPremul_8u_AC4R(src.p, src.step, dst.p, dst.step, roi)));
        const Colour colours(roi);
        zetiCopy_8u_AC4C3R(dst.p, dst.step, colours.p, colours.step, roi);
        shot.show({{"src", picture(src)}}, {{"dst, its colours", picture(colours)}});
    }
    gallery.family("AlphaPremulC", "All colours times one constant alpha.");
    const Colour &src = photos.colour(0), dst(src.size);
    Shot shot = gallery.shot("At half opacity", "Every sample times 128 / 255.", src.size);
    shot.run(CALL(zetiAlphaPremulC_8u_C3R(src.p, src.step, 128, dst.p, dst.step, dst.size)));
    shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
}

void show_key(Gallery &gallery, const Photos &photos) {
    gallery.family("CompColorKey", "Where the first image has the key's colour the second one shows.");
    const Colour &scene = photos.colour(3);
    {
        const Colour src1(scene.size), &src2 = scene, dst(scene.size);
        for (int y = 0; y < src1.size.height; ++y) // a frame before a magenta screen
            for (int x = 0; x < src1.size.width; ++x) {
                const int edge = std::min({x, y, src1.size.width - 1 - x, src1.size.height - 1 - y}), wood = 90 + (x * 7 + y * 3) % 40;
                const bool screen = edge * 10 > src1.size.height;
                Zet8u *const p = src1.at(x, y);
                p[0] = static_cast<Zet8u>(screen ? 255 : wood), p[1] = static_cast<Zet8u>(screen ? 0 : wood * 2 / 3),
                p[2] = static_cast<Zet8u>(screen ? 255 : wood / 3);
            }
        Shot shot = gallery.shot("Framed", "A drawn frame before a magenta screen, in which the photograph appears.", dst.size);
        GIVEN(shot, const Zet8u magenta[3] = {255, 0, 255});
        shot.run(CALL(zetiCompColorKey_8u_C3R(src1.p, src1.step, src2.p, src2.step, dst.p, dst.step, dst.size, magenta)));
        shot.show({{"src1", picture(src1)}, {"src2", picture(src2)}}, {{"dst", picture(dst)}});
    }
    gallery.family("AlphaCompColorKey", "The second image where the first has the key's colour, elsewhere a composition.");
    const ZetiSize roi = common(photos.colour(1), scene);
    const ColourAlpha src1 = disc(photos.colour(1), roi, 0.5), src2 = with_alpha(scene, roi, [](int, int) { return 255; }), dst(roi);
    for (int y = roi.height / 3; y < roi.height / 2; ++y) // a band in the key's colour
        for (int x = 0; x < roi.width; ++x) std::fill_n(src1.at(x, y), 3, Zet8u{0});
    Shot shot = gallery.shot("A disc with a slit", "Black is the key: the band shows the photograph behind, the rest is put over it.", roi);
    GIVEN(shot, const Zet8u black[3] = {});
    shot.run(CALL(zetiAlphaCompColorKey_8u_AC4R(src1.p, src1.step, src2.p, src2.step, dst.p, dst.step, roi, black, zetAlphaOver)));
    shot.show({{"src1", picture(src1)}, {"src2", picture(src2)}}, {{"dst", picture(dst)}});
}

} // namespace

void show_alpha(Gallery &gallery, const Photos &photos) {
    show_comp(gallery, photos);
    show_constant(gallery, photos);
    show_premul(gallery, photos);
    show_key(gallery, photos);
}

} // namespace demo
