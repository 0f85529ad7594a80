// SPDX-License-Identifier: Apache-2.0
// Gallery entries of move/: pixels in other places, borders, generated images and noise.
#include "gallery.h"

namespace demo {

namespace {

void show_places(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(1);
    const ZetiSize size = src.size;
    {
        gallery.family("Mirror", "Flips an image about an axis.");
        const Colour upside(size), reversed(size), turned(size);
        Shot shot = gallery.shot("About each axis, and about both", "Channels keep their order within a pixel.", size);
        shot.run(CALL(zetiMirror_8u_C3R(src.p, src.step, upside.p, upside.step, size, 0)));
        shot.run(CALL(zetiMirror_8u_C3R(src.p, src.step, reversed.p, reversed.step, size, 1)));
        shot.run(CALL(zetiMirror_8u_C3R(src.p, src.step, turned.p, turned.step, size, 2)));
        shot.show({{"src", picture(src)}}, {{"upside", picture(upside)}, {"reversed", picture(reversed)}, {"turned", picture(turned)}});
    }
    {
        gallery.family("Transpose", "Exchanges rows and columns.");
        const Colour &night = photos.colour(3);
        const Colour dst({night.size.height, night.size.width}), quarter(dst.size);
        Shot shot = gallery.shot("A quarter turn", "Rows become columns; with a flip after that the image has turned by a right angle.",
                                 night.size);
        shot.run(CALL(zetiTranspose_8u_C3R(night.p, night.step, dst.p, dst.step, night.size)));
        shot.run(CALL(zetiMirror_8u_C3R(dst.p, dst.step, quarter.p, quarter.step, dst.size, 1)));
        shot.show({{"night", picture(night)}}, {{"dst", picture(dst)}, {"quarter", picture(quarter)}});
    }
    {
        gallery.family("SwapChannels", "Puts the channels of a pixel in another order.");
        const Colour swapped(size);
        const ColourAlpha veiled(size);
        Shot shot = gallery.shot("Blue for red, and an alpha of 150", "An entry of 3 takes the constant instead of a channel.", size);
        GIVEN(shot, const int blue_first[3] = {2, 1, 0});
        GIVEN(shot, const int with_alpha[4] = {0, 1, 2, 3});
        shot.run(CALL(zetiSwapChannels_8u_C3R(src.p, src.step, swapped.p, swapped.step, size, blue_first)));
        shot.run(CALL(zetiSwapChannels_8u_C3C4R(src.p, src.step, veiled.p, veiled.step, size, with_alpha, 150)));
        shot.show({{"src", picture(src)}}, {{"swapped", picture(swapped)}, {"veiled", picture(veiled)}});
    }
}

void show_borders(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(0);
    const int border = src.size.width / 5;
    const ZetiSize wide = {src.size.width + 2 * border, src.size.height + 2 * border};
    {
        gallery.family("CopyConstBorder", "Copies an image into a frame of one value.");
        const Colour dst(wide);
        Shot shot = gallery.shot("A passe-partout", "What a neighbourhood operation finds around the image.", wide);
        GIVEN(shot, const Zet8u value[3] = {238, 232, 218});
        shot.run(CALL(zetiCopyConstBorder_8u_C3R(src.p, src.step, src.size, dst.p, dst.step, wide, border, border, value)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        gallery.family("CopyReplicateBorder", "Copies an image and continues it by its edge pixels.");
        const Colour dst(wide);
        Shot shot = gallery.shot("The nearest pixel", "Edges run on to the sides, corners fill the corners.", wide);
        shot.run(CALL(zetiCopyReplicateBorder_8u_C3R(src.p, src.step, src.size, dst.p, dst.step, wide, border, border)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        gallery.family("CopyWrapBorder", "Copies an image and continues it periodically.");
        const ZetiSize tile = {96, 80}, wall = {480, 320};
        const auto src32 = drawn<Zet32s>(tile, [](double x, double y) { return 128 + 100 * x - 60 * y + (x * x + y * y < 0.3 ? 60 : 0); });
        const Image<Zet32s, 1> dst(wall);
        Shot shot = gallery.shot("A wall from one tile", "Four bytes a sample: 32s and 32f.", wall);
        shot.run(CALL(zetiCopyWrapBorder_32s_C1R(src32.p, src32.step, tile, dst.p, dst.step, wall, 120, 200)));
        const auto grey = [](Zet32s v) { return double(v); };
        shot.show({{"src32", toned(src32, grey)}}, {{"dst", toned(dst, grey)}});
    }
}

void show_synthesis(Gallery &gallery, const Photos &photos) {
    const ZetiSize size = {320, 320};
    {
        gallery.family("ImageRamp", "Makes an image whose brightness rises evenly.");
        const Grey across(size), down(size), both(size);
        Shot shot = gallery.shot("Along x, along y, along both", "The third is the product of the two.", size);
        shot.run(CALL(zetiImageRamp_8u_C1R(across.p, across.step, size, 0.0f, 0.8f, 0)));
        shot.run(CALL(zetiImageRamp_8u_C1R(down.p, down.step, size, 255.0f, -0.8f, 1)));
        shot.run(CALL(zetiImageRamp_8u_C1R(both.p, both.step, size, 0.0f, 0.0025f, 2)));
        shot.show({}, {{"across", picture(across)}, {"down", picture(down)}, {"both", picture(both)}});
    }
    {
        gallery.family("ImageJaehne", "Makes a zone plate: rings that become finer towards the border.");
        const Grey dst(size);
        Shot shot =
            gallery.shot("Rings", "Every frequency in every direction: what a filter does to it is what it does to an image.", size);
        shot.run(CALL(zetiImageJaehne_8u_C1R(dst.p, dst.step, size)));
        shot.show({}, {{"dst", picture(dst)}});
    }
    const Grey &photo = photos.grey(2);
    const auto copy = [&] {
        Grey image(photo.size);
        zetiCopy_8u_C1R(photo.p, photo.step, image.p, image.step, photo.size);
        return image;
    };
    {
        gallery.family("AddRandUniform_Direct", "Adds noise that is spread evenly between two bounds.");
        const Grey image = copy();
        Zet32u seed = 1;
        Shot shot = gallery.shot("From 0 to 80", "The seed is the state of the generator: the next call goes on with it.", photo.size);
        shot.run(CALL(zetiAddRandUniform_Direct_8u_C1IR(image.p, image.step, photo.size, 0, 80, &seed)));
        shot.show({{"image", picture(photo)}}, {{"image", picture(image)}});
    }
    {
        gallery.family("AddRandGauss_Direct", "Adds normally distributed noise.");
        const Grey image = copy();
        Zet32u seed = 1;
        Shot shot = gallery.shot("A deviation of 25", "Noise as a sensor makes it in the dark.", photo.size);
        shot.run(CALL(zetiAddRandGauss_Direct_8u_C1IR(image.p, image.step, photo.size, 0, 25, &seed)));
        shot.show({{"image", picture(photo)}}, {{"image", picture(image)}});
    }
}

} // namespace

void show_rearrange(Gallery &gallery, const Photos &photos) {
    show_places(gallery, photos);
    show_borders(gallery, photos);
    show_synthesis(gallery, photos);
}

} // namespace demo
