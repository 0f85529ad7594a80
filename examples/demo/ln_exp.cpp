// SPDX-License-Identifier: Apache-2.0
// Gallery entries of arith/: logarithms and exponentials.
#include "gallery.h"

namespace demo {

namespace {

using Real = Image<Zet32f, 1>;

// Floats from 1 up, so that every pixel has a logarithm.
Real light_of(const Grey &grey) {
    return converted<Zet32f>(grey, [](Zet8u v) { return 1 + static_cast<Zet32f>(v); });
}

void show_ln(Gallery &gallery, const Photos &photos) {
    gallery.family("Ln", "Natural logarithm: dst = ln(src).");
    {
        const Colour &src = photos.colour(3);
        const Colour dst(src.size);
        Shot shot =
            gallery.shot("Light in the shadows",
                         "Scale factor -5 keeps 32nds of the logarithm: 0 to 177. A black sample stays black, with a warning.", src.size);
        shot.run(CALL(zetiLn_8u_C3RSfs(src.p, src.step, dst.p, dst.step, dst.size, -5)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Grey &grey = photos.grey(2);
        const Real light = light_of(grey), density(grey.size);
        Shot shot = gallery.shot(
            "Optical density",
            "The photograph as a film that lets light through; its density is minus the logarithm of the share, here in floats.",
            grey.size);
        shot.run(CALL(zetiDivC_32f_C1R(light.p, light.step, 256.0f, density.p, density.step, density.size)));
        shot.run(CALL(zetiLn_32f_C1IR(density.p, density.step, density.size)));
        shot.show({{"light", picture(grey)}}, {{"density", toned(density, [](Zet32f v) { return -50 * v; })}});
    }
}

void show_exp(Gallery &gallery, const Photos &photos) {
    gallery.family("Exp", "Exponential: dst = e to the power of src.");
    {
        const Grey &scene = photos.grey(1);
        const Real light = light_of(scene);
        const Real lamp = drawn<Zet32f>(scene.size, [](double x, double y) { return -2 * (x * x + y * y); });
        const Real dst(scene.size);
        Shot shot = gallery.shot("A lamp over the scene",
                                 "Products by sums: the logarithm of the photograph, plus that of the light, and the exponential of both.",
                                 scene.size);
        shot.run(CALL(zetiLn_32f_C1R(light.p, light.step, dst.p, dst.step, dst.size)));
        shot.run(CALL(zetiAdd_32f_C1IR(lamp.p, lamp.step, dst.p, dst.step, dst.size)));
        shot.run(CALL(zetiExp_32f_C1IR(dst.p, dst.step, dst.size)));
        shot.show({{"light", picture(scene)}, {"lamp", toned(lamp, [](Zet32f v) { return 255 + 60 * v; })}},
                  {{"dst", toned(dst, [](Zet32f v) { return v; })}});
    }
    {
        const Grey &src = photos.grey(0);
        const Grey dst(src.size);
        Shot shot = gallery.shot("Steps of a factor e", "Seven levels, each e times as bright as the one before, up to 255.", src.size);
        shot.run(CALL(zetiDivC_8u_C1RSfs(src.p, src.step, 42, dst.p, dst.step, dst.size, 0)));
        shot.run(CALL(zetiExp_8u_C1IRSfs(dst.p, dst.step, dst.size, 0)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
}

} // namespace

void show_ln_exp(Gallery &gallery, const Photos &photos) {
    show_ln(gallery, photos);
    show_exp(gallery, photos);
}

} // namespace demo
