// SPDX-License-Identifier: Apache-2.0
// Gallery entries of move/: copying and filling.
#include <algorithm>
#include <cmath>

#include "gallery.h"

namespace demo {

namespace {

Grey oval(ZetiSize size) {
    return drawn<Zet8u>(size, [](double x, double y) { return std::hypot(x * 1.7, y * 1.3) < 0.8 ? 255 : 0; });
}

void show_copy(Gallery &gallery, const Photos &photos) {
    gallery.family("Copy", "Copies pixels, also between layouts.");
    const Colour &src = photos.colour(1);
    {
        const ZetiSize roi = {src.size.width / 2, src.size.height / 2};
        const Colour dst(roi);
        Shot shot =
            gallery.shot("A region", "An image is a pointer to its first pixel and a step: a pointer further in is a smaller image.", roi);
        GIVEN(shot, const Zet8u *corner = src.p + src.size.width / 4 * 3);
        shot.run(CALL(zetiCopy_8u_C3R(corner, src.step, dst.p, dst.step, roi)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &night = photos.colour(3);
        const Colour dst(night.size);
        Shot shot = gallery.shot("Upside down", "Copy takes any step: from the last row on, a negative one walks up.", night.size);
        GIVEN(shot, const Zet8u *last = night.p + (night.size.height - 1) * night.step);
        shot.run(CALL(zetiCopy_8u_C3R(last, -night.step, dst.p, dst.step, night.size)));
        shot.show({{"night", picture(night)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &under = photos.colour(0);
        const ZetiSize roi = common(src, under);
        const Grey mask = oval(roi);
        const Colour dst(roi);
        zetiCopy_8u_C3R(under.p, under.step, dst.p, dst.step, roi);
        Shot shot = gallery.shot("Through a mask", "A pixel is written where its mask byte is not zero.", roi);
        shot.run(CALL(zetiCopy_8u_C3MR(src.p, src.step, dst.p, dst.step, roi, mask.p, mask.step)));
        shot.show({{"src", picture(src, roi)}, {"mask", picture(mask)}}, {{"dst", picture(dst)}});
    }
    {
        const Grey red(src.size), green(src.size), blue(src.size);
        const Colour swapped(src.size);
        Shot shot =
            gallery.shot("Channels apart, and together in another order", "From pixels to planes, and from planes to pixels.", src.size);
        GIVEN(shot, Zet8u *const planes[3] = {red.p, green.p, blue.p});
        GIVEN(shot, const Zet8u *const turned[3] = {green.p, blue.p, red.p});
        shot.run(CALL(zetiCopy_8u_C3P3R(src.p, src.step, planes, red.step, src.size)));
        shot.run(CALL(zetiCopy_8u_P3C3R(turned, red.step, swapped.p, swapped.step, src.size)));
        shot.show({{"src", picture(src)}},
                  {{"red", picture(red)}, {"green", picture(green)}, {"blue", picture(blue)}, {"swapped", picture(swapped)}});
    }
    {
        const int shift = std::max(1, src.size.width / 64);
        const ZetiSize roi = {src.size.width - shift, src.size.height};
        const Colour dst(roi);
        zetiCopy_8u_C3R(src.p, src.step, dst.p, dst.step, roi);
        Shot shot =
            gallery.shot("One channel moved", "The pointers address red, and only red is copied: from a few pixels further right.", roi);
        GIVEN(shot, const Zet8u *red = src.p + 3 * shift);
        shot.run(CALL(zetiCopy_8u_C3CR(red, src.step, dst.p, dst.step, roi)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &cup = photos.colour(0);
        const Grey dst(cup.size);
        Shot shot = gallery.shot("Blue alone", "One channel out of an interleaved image: the pointer says which.", cup.size);
        shot.run(CALL(zetiCopy_8u_C3C1R(cup.p + 2, cup.step, dst.p, dst.step, cup.size)));
        shot.show({{"cup", picture(cup)}}, {{"dst", picture(dst)}});
    }
    {
        const ColourAlpha image(src.size);
        const Grey alpha =
            drawn<Zet8u>(src.size, [](double x, double y) { return std::clamp(700 * (1 - std::hypot(x, y) / 0.95), 0.0, 255.0); });
        Shot shot = gallery.shot("Colours and alpha from two images",
                                 "C3AC4 writes three samples of four, C1C4 the one its pointer addresses.", src.size);
        shot.run(CALL(zetiCopy_8u_C3AC4R(src.p, src.step, image.p, image.step, image.size)));
        shot.run(CALL(zetiCopy_8u_C1C4R(alpha.p, alpha.step, image.p + 3, image.step, image.size)));
        shot.show({{"src", picture(src)}, {"alpha", picture(alpha)}}, {{"image", picture(image)}});
    }
}

void show_set(Gallery &gallery, const Photos &photos) {
    gallery.family("Set", "Fills pixels with a value.");
    const Colour &src = photos.colour(0);
    const auto copy = [&] {
        Colour image(src.size);
        zetiCopy_8u_C3R(src.p, src.step, image.p, image.step, image.size);
        return image;
    };
    {
        const Colour image = copy();
        const ZetiSize bar = {src.size.width / 2, src.size.height / 4};
        Shot shot = gallery.shot("A bar", "A rectangle is a region like any other.", bar);
        GIVEN(shot, const Zet8u value[3] = {32, 60, 110});
        GIVEN(shot, Zet8u *corner = image.p + image.size.height / 8 * image.step + image.size.width / 4 * 3);
        shot.run(CALL(zetiSet_8u_C3R(value, corner, image.step, bar)));
        shot.show({{"image", picture(src)}}, {{"image", picture(image)}});
    }
    {
        const Colour image = copy();
        const Grey mask = drawn<Zet8u>(src.size, [](double x, double y) { return std::fmod(std::hypot(x, y), 0.16) < 0.05; });
        Shot shot = gallery.shot("Rings", "Through a mask; 1 counts as much as 255.", image.size);
        GIVEN(shot, const Zet8u value[3] = {245, 235, 215});
        shot.run(CALL(zetiSet_8u_C3MR(value, image.p, image.step, image.size, mask.p, mask.step)));
        shot.show({{"image", picture(src)}}, {{"image", picture(image)}});
    }
    {
        const Colour image = copy();
        Shot shot = gallery.shot("No red", "The channel that the pointer addresses, and no other.", image.size);
        shot.run(CALL(zetiSet_8u_C3CR(0, image.p, image.step, image.size)));
        shot.show({{"image", picture(src)}}, {{"image", picture(image)}});
    }
}

void show_dup(Gallery &gallery, const Photos &photos) {
    gallery.family("Dup", "Spreads one channel over three or four.");
    const Grey &src = photos.grey(2);
    const Colour dst(src.size), sepia(src.size);
    Shot shot = gallery.shot("Grey to colour", "Three equal channels, which a product with three constants turns to sepia.", src.size);
    GIVEN(shot, const Zet8u value[3] = {140, 120, 92});
    shot.run(CALL(zetiDup_8u_C1C3R(src.p, src.step, dst.p, dst.step, src.size)));
    shot.run(CALL(zetiMulC_8u_C3RSfs(dst.p, dst.step, value, sepia.p, sepia.step, src.size, 7)));
    shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}, {"sepia", picture(sepia)}});
}

void show_copy_managed(Gallery &gallery, const Photos &photos) {
    gallery.family("CopyManaged", "Copies pixels with a choice of cache use.");
    const Grey &photo = photos.grey(2);
    const Grey wall({4096, 4096}), dst(wall.size);
    for (int y = 0; y < wall.size.height; y += photo.size.height) // a wall of photographs
        for (int x = 0; x < wall.size.width; x += photo.size.width) {
            const ZetiSize tile = {std::min(photo.size.width, wall.size.width - x), std::min(photo.size.height, wall.size.height - y)};
            zetiCopy_8u_C1R(photo.p, photo.step, wall.at(x, y), wall.step, tile);
        }
    Shot shot = gallery.shot("Sixteen megabytes, through the cache and past it",
                             "A wall of photographs, 4096 x 4096; the picture shows every eighth pixel of its upper half. Flag 1 asks for "
                             "stores that bypass the cache.",
                             wall.size);
    shot.run(CALL(zetiCopyManaged_8u_C1R(wall.p, wall.step, dst.p, dst.step, wall.size, 0)));
    shot.run(CALL(zetiCopyManaged_8u_C1R(wall.p, wall.step, dst.p, dst.step, wall.size, 1)));
    Picture small{{dst.size.width / 8, dst.size.height / 16}, 1, {}};
    for (int y = 0; y < dst.size.height / 2; y += 8)
        for (int x = 0; x < dst.size.width; x += 8) small.samples.push_back(*dst.at(x, y));
    shot.show({}, {{"upper half of dst, an eighth of its size", small}});
}

} // namespace

void show_move(Gallery &gallery, const Photos &photos) {
    show_copy(gallery, photos);
    show_set(gallery, photos);
    show_dup(gallery, photos);
    show_copy_managed(gallery, photos);
}

} // namespace demo
