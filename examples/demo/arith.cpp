// SPDX-License-Identifier: Apache-2.0
// Gallery entries of arith/: element-wise arithmetic.
#include <cmath>
#include <random>

#include "gallery.h"

namespace demo {

namespace {

// A colour image of the same grey in all three channels.
Colour in_colour(const Grey &grey) {
    Colour image(grey.size);
    zetiDup_8u_C1C3R(grey.p, grey.step, image.p, image.step, image.size);
    return image;
}

// What a lens does to the light: all of it in the middle, less and less towards the corners.
Grey falloff(ZetiSize size) {
    return drawn<Zet8u>(size, [](double x, double y) { return 255 / std::pow(1 + 0.6 * (x * x + y * y), 2.0); });
}

void show_add(Gallery &gallery, const Photos &photos) {
    gallery.family("Add", "Sum of two images: dst = src1 + src2.");
    const Colour &src1 = photos.colour(0), &src2 = photos.colour(3);
    const ZetiSize roi = common(src1, src2);
    {
        const Colour dst(roi);
        Shot shot =
            gallery.shot("Two photographs blended", "At scale factor 1 the sum is halved, rounded to nearest with ties to even.", roi);
        shot.run(CALL(zetiAdd_8u_C3RSfs(src1.p, src1.step, src2.p, src2.step, dst.p, dst.step, roi, 1)));
        shot.show({{"src1", picture(src1, roi)}, {"src2", picture(src2, roi)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour dst(roi);
        zetiCopy_8u_C3R(src1.p, src1.step, dst.p, dst.step, roi);
        Shot shot = gallery.shot("Double exposure", "In place, without scaling: the lights add up, and end at 255.", roi);
        shot.run(CALL(zetiAdd_8u_C3IRSfs(src2.p, src2.step, dst.p, dst.step, roi, 0)));
        shot.show({{"src", picture(src2, roi)}, {"dst, as it was", picture(src1, roi)}}, {{"dst", picture(dst)}});
    }
    {
        const Grey &clean = photos.grey(2);
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0, 40);
        std::vector<Image<Zet16u, 1>> frames;
        frames.reserve(16);
        for (int i = 0; i < 16; ++i)
            frames.push_back(converted<Zet16u>(clean, [&](Zet8u v) { return static_cast<Zet16u>(std::max(0.0, v + 64 + noise(random))); }));
        const Image<Zet16u, 1> sum(clean.size);
        Shot shot = gallery.shot(
            "The mean of sixteen noisy exposures",
            "16-bit sums of sixteen frames, then a sixteenth of them: scale factor 4. The noise is a quarter of what it was.", clean.size);
        for (const Image<Zet16u, 1> &frame : frames) shot.run(CALL(zetiAdd_16u_C1IRSfs(frame.p, frame.step, sum.p, sum.step, sum.size, 0)));
        shot.run(CALL(zetiMulC_16u_C1IRSfs(1, sum.p, sum.step, sum.size, 4)));
        const auto shown = [](Zet16u v) { return v - 64; };
        shot.show({{"one frame of sixteen", toned(frames[0], shown)}}, {{"sum, scaled", toned(sum, shown)}});
    }
}

void show_sub(Gallery &gallery, const Photos &photos) {
    gallery.family("Sub", "Difference of two images: dst = src2 - src1, the second minus the first.");
    const Grey &src = photos.grey(2);
    const ZetiSize roi = {src.size.width - 2, src.size.height};
    {
        const Grey dst(roi);
        Shot shot =
            gallery.shot("Neighbours subtracted",
                         "The same image twice, two columns apart. What is negative becomes 0; scale factor -2 is a gain of four.", roi);
        shot.run(CALL(zetiSub_8u_C1RSfs(src.p, src.step, src.p + 2, src.step, dst.p, dst.step, roi, -2)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const auto wide = converted<Zet16s>(src, [](Zet8u v) { return Zet16s{v}; });
        const Image<Zet16s, 1> dst(roi);
        Shot shot =
            gallery.shot("Relief", "Signed samples keep both directions; (difference + 255) / 2 brings them back to 0 to 255.", roi);
        shot.run(CALL(zetiSub_16s_C1RSfs(wide.p, wide.step, wide.p + 2, wide.step, dst.p, dst.step, roi, 0)));
        shot.run(CALL(zetiAddC_16s_C1IRSfs(255, dst.p, dst.step, roi, 1)));
        shot.show({{"wide", picture(src)}}, {{"dst", toned(dst, [](Zet16s v) { return v; })}});
    }
    {
        const Colour &first = photos.colour(3), &second = photos.colour(0);
        const ZetiSize both = common(first, second);
        const Colour dst(both);
        zetiCopy_8u_C3R(second.p, second.step, dst.p, dst.step, both);
        Shot shot = gallery.shot("One photograph taken out of another", "In place: srcDst = srcDst - src, never below 0.", both);
        shot.run(CALL(zetiSub_8u_C3IRSfs(first.p, first.step, dst.p, dst.step, both, 0)));
        shot.show({{"src", picture(first, both)}, {"dst, as it was", picture(second, both)}}, {{"dst", picture(dst)}});
    }
}

void show_mul(Gallery &gallery, const Photos &photos) {
    gallery.family("Mul", "Product of two images: dst = src1 * src2.");
    const Colour &src = photos.colour(1);
    {
        const Colour light = in_colour(falloff(src.size));
        const Colour dst(src.size);
        Shot shot = gallery.shot("Vignette", "A drawn image of the light as the factor; scale factor 8 divides by 256.", src.size);
        shot.run(CALL(zetiMul_8u_C3RSfs(light.p, light.step, src.p, src.step, dst.p, dst.step, dst.size, 8)));
        shot.show({{"light", picture(light)}, {"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &other = photos.colour(0);
        const ZetiSize roi = common(src, other);
        const Colour dst(roi);
        Shot shot = gallery.shot("Two slides on top of each other", "Where either is dark the product is.", roi);
        shot.run(CALL(zetiMul_8u_C3RSfs(src.p, src.step, other.p, other.step, dst.p, dst.step, roi, 8)));
        shot.show({{"src", picture(src, roi)}, {"other", picture(other, roi)}}, {{"dst", picture(dst)}});
    }
    {
        using Complex = Image<Zet32fc, 1>;
        const Grey &grey = photos.grey(2);
        const auto light = converted<Zet32fc>(grey, [](Zet8u v) { return Zet32fc{static_cast<Zet32f>(v), 0}; });
        const auto wave = [&](double sign) {
            Complex image(grey.size);
            for (int y = 0; y < image.size.height; ++y)
                for (int x = 0; x < image.size.width; ++x) {
                    const double phase = 0.25 * (x + 0.5 * y);
                    image.row(y)[x] = {static_cast<Zet32f>(std::cos(phase)), static_cast<Zet32f>(sign * std::sin(phase))};
                }
            return image;
        };
        const Complex carrier = wave(1), conjugate = wave(-1), there(grey.size), back(grey.size);
        Shot shot =
            gallery.shot("On a carrier wave and back",
                         "Complex floats: the product with a wave, shown by its real part, and with the conjugate wave.", grey.size);
        shot.run(CALL(zetiMul_32fc_C1R(light.p, light.step, carrier.p, carrier.step, there.p, there.step, there.size)));
        shot.run(CALL(zetiMul_32fc_C1R(there.p, there.step, conjugate.p, conjugate.step, back.p, back.step, back.size)));
        const auto real = [](Zet32fc v) { return 128 + v.re / 2; };
        shot.show({{"light", picture(grey)}},
                  {{"there, real part", toned(there, real)}, {"back", toned(back, [](Zet32fc v) { return v.re; })}});
    }
}

void show_div(Gallery &gallery, const Photos &photos) {
    gallery.family("Div", "Quotient of two images: dst = src2 / src1, the second by the first.");
    {
        const Colour &scene = photos.colour(1);
        const Colour flat = in_colour(falloff(scene.size)), photo(scene.size), dst(scene.size);
        zetiMul_8u_C3RSfs(flat.p, flat.step, scene.p, scene.step, photo.p, photo.step, photo.size, 8);
        Shot shot =
            gallery.shot("Flat-field correction",
                         "A photograph with dark corners, by one of an evenly lit wall; scale factor -8 multiplies by 256.", dst.size);
        shot.run(CALL(zetiDiv_8u_C3RSfs(flat.p, flat.step, photo.p, photo.step, dst.p, dst.step, dst.size, -8)));
        shot.show({{"flat", picture(flat)}, {"photo", picture(photo)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &scene = photos.colour(1);
        const auto channel = [&](int c) {
            Grey plane(scene.size);
            zetiCopy_8u_C3C1R(scene.p + c, scene.step, plane.p, plane.step, plane.size);
            return converted<Zet32f>(plane, [](Zet8u v) { return static_cast<Zet32f>(v); });
        };
        const Image<Zet32f, 1> red = channel(0), green = channel(1), dst(scene.size);
        Shot shot = gallery.shot("The ratio of two channels",
                                 "Red by green as floats: light and shadow cancel out, colour is left. Black pixels divide by "
                                 "zero, which is a warning; they become infinite or no number.",
                                 dst.size);
        shot.run(CALL(zetiDiv_32f_C1R(green.p, green.step, red.p, red.step, dst.p, dst.step, dst.size)));
        shot.run(CALL(zetiMulC_32f_C1IR(90.0f, dst.p, dst.step, dst.size)));
        shot.show({{"red and green of this", picture(scene)}}, {{"dst", toned(dst, [](Zet32f v) { return v; })}});
    }
}

void show_addc(Gallery &gallery, const Photos &photos) {
    gallery.family("AddC", "Sum of an image and a constant: dst = src + value.");
    const Colour &src = photos.colour(0);
    {
        const Colour dst(src.size);
        Shot shot = gallery.shot("Brighter", "Every channel plus 60; what would pass 255 stays there.", src.size);
        GIVEN(shot, const Zet8u value[3] = {60, 60, 60});
        shot.run(CALL(zetiAddC_8u_C3RSfs(src.p, src.step, value, dst.p, dst.step, src.size, 0)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const ColourAlpha image(src.size);
        const Grey alpha =
            drawn<Zet8u>(src.size, [](double x, double y) { return std::max(0.0, std::min(255.0, 900 * (1 - std::hypot(x, 1.5 * y)))); });
        zetiCopy_8u_C3AC4R(src.p, src.step, image.p, image.step, image.size);
        zetiCopy_8u_C1C4R(alpha.p, alpha.step, image.p + 3, image.step, image.size);
        const Captioned before = {"image, with alpha", picture(image)};
        Shot shot = gallery.shot("A tint that leaves alpha alone",
                                 "AC4: a constant for each of three colours; the fourth sample stays as it is.", src.size);
        GIVEN(shot, const Zet8u value[3] = {0, 40, 120});
        shot.run(CALL(zetiAddC_8u_AC4IRSfs(value, image.p, image.step, image.size, 0)));
        shot.show({before}, {{"image", picture(image)}});
    }
}

void show_subc(Gallery &gallery, const Photos &photos) {
    gallery.family("SubC", "Difference of an image and a constant: dst = src - value.");
    {
        const Grey &src = photos.grey(3);
        const Grey dst(src.size);
        Shot shot = gallery.shot("Out of the dark", "What is below 12 is black, the rest counts four times: scale factor -2.", src.size);
        shot.run(CALL(zetiSubC_8u_C1RSfs(src.p, src.step, 12, dst.p, dst.step, src.size, -2)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Grey &src = photos.grey(1);
        const auto image = converted<Zet16s>(src, [](Zet8u v) { return Zet16s{v}; });
        Shot shot = gallery.shot("Negative", "Signed samples, in place: minus 255, then times -1.", src.size);
        shot.run(CALL(zetiSubC_16s_C1IRSfs(255, image.p, image.step, image.size, 0)));
        shot.run(CALL(zetiMulC_16s_C1IRSfs(-1, image.p, image.step, image.size, 0)));
        shot.show({{"image", picture(src)}}, {{"image", toned(image, [](Zet16s v) { return v; })}});
    }
}

void show_mulc(Gallery &gallery, const Photos &photos) {
    gallery.family("MulC", "Product of an image and a constant: dst = src * value.");
    const Colour &src = photos.colour(3);
    const Colour dst(src.size);
    {
        Shot shot = gallery.shot("One and a half times the light", "Times 3 at scale factor 1.", src.size);
        GIVEN(shot, const Zet8u value[3] = {3, 3, 3});
        shot.run(CALL(zetiMulC_8u_C3RSfs(src.p, src.step, value, dst.p, dst.step, src.size, 1)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const Colour &warm = photos.colour(0);
        const Colour balanced(warm.size);
        Shot shot = gallery.shot("White balance", "A factor for each channel in 64ths: scale factor 6.", warm.size);
        GIVEN(shot, const Zet8u value[3] = {56, 64, 80});
        shot.run(CALL(zetiMulC_8u_C3RSfs(warm.p, warm.step, value, balanced.p, balanced.step, warm.size, 6)));
        shot.show({{"warm", picture(warm)}}, {{"balanced", picture(balanced)}});
    }
}

void show_divc(Gallery &gallery, const Photos &photos) {
    gallery.family("DivC", "Quotient of an image and a constant: dst = src / value.");
    const Colour &src = photos.colour(1);
    const Colour dst(src.size);
    Shot shot = gallery.shot("Six levels a channel", "By 51, rounded to 0 to 5, and back by the product.", src.size);
    GIVEN(shot, const Zet8u value[3] = {51, 51, 51});
    shot.run(CALL(zetiDivC_8u_C3RSfs(src.p, src.step, value, dst.p, dst.step, src.size, 0)));
    shot.run(CALL(zetiMulC_8u_C3IRSfs(value, dst.p, dst.step, dst.size, 0)));
    shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
}

} // namespace

void show_arith(Gallery &gallery, const Photos &photos) {
    show_add(gallery, photos);
    show_sub(gallery, photos);
    show_mul(gallery, photos);
    show_div(gallery, photos);
    show_addc(gallery, photos);
    show_subc(gallery, photos);
    show_mulc(gallery, photos);
    show_divc(gallery, photos);
}

} // namespace demo
