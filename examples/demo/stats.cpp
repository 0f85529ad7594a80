// SPDX-License-Identifier: Apache-2.0
// Gallery entries of stats/: sums, norms, extreme values.
#include <cstdio>

#include "gallery.h"

namespace demo {

namespace {

std::string number(double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%.6g", v);
    return text;
}
template <class V> std::string numbers(const std::string &what, const V &values) { // one per channel
    std::string text = what;
    for (const auto v : values) text += ' ', text += number(static_cast<double>(v));
    return text;
}

void show_sums(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(0);
    {
        gallery.family("Sum", "Sum of the samples of each channel.");
        Shot shot = gallery.shot("All the light in a photograph", "One sum for each channel, in double precision.", src.size);
        GIVEN(shot, Zet64f sum[3]);
        shot.run(CALL(zetiSum_8u_C3R(src.p, src.step, src.size, sum)));
        shot.show({{"src", picture(src)}}, {{numbers("sum", sum), picture(src, {src.size.width, 1})}});
    }
    {
        gallery.family("Mean", "Mean of the samples of each channel.");
        const Colour flat(src.size);
        Shot shot = gallery.shot("What is left from far away", "The mean of each channel, and an image of nothing but that.", src.size);
        GIVEN(shot, Zet64f mean[3]);
        shot.run(CALL(zetiMean_8u_C3R(src.p, src.step, src.size, mean)));
        const Zet8u value[3] = {static_cast<Zet8u>(mean[0]), static_cast<Zet8u>(mean[1]), static_cast<Zet8u>(mean[2])};
        zetiSet_8u_C3R(value, flat.p, flat.step, flat.size);
        shot.show({{"src", picture(src)}}, {{numbers("mean", mean), picture(flat)}});
    }
}

// A photograph, and the same with its samples cut to a few bits.
void show_norms(Gallery &gallery, const Photos &photos) {
    const Grey &src = photos.grey(2);
    const Grey coarse(src.size), error(src.size);
    zetiAndC_8u_C1R(src.p, src.step, 0xE0, coarse.p, coarse.step, src.size);
    zetiSub_8u_C1RSfs(coarse.p, coarse.step, src.p, src.step, error.p, error.step, src.size, -3);
    const auto light = converted<Zet32f>(src, [](Zet8u v) { return static_cast<Zet32f>(v) / 255; });
    const auto one = [&](const char *family, const char *brief, const char *note, const auto &run) {
        gallery.family(family, brief);
        Shot shot = gallery.shot("Length of an image", note, src.size);
        GIVEN(shot, Zet64f norm = 0);
        run(shot, norm);
        shot.show({{"src", picture(src)}}, {{"norm " + number(norm), picture(src)}});
    };
    one("Norm_Inf", "Largest magnitude.", "The brightest sample.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNorm_Inf_8u_C1R(src.p, src.step, src.size, &norm))); });
    one("Norm_L1", "Sum of the magnitudes.", "Floats from 0 to 1, summed in single precision row by row.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNorm_L1_32f_C1R(light.p, light.step, src.size, &norm, zetAlgHintFast))); });
    one("Norm_L2", "Root of the sum of the squares.", "Floats from 0 to 1, each widened to double precision first.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNorm_L2_32f_C1R(light.p, light.step, src.size, &norm, zetAlgHintAccurate))); });

    const auto two = [&](const char *family, const char *brief, const auto &run) {
        gallery.family(family, brief);
        Shot shot =
            gallery.shot("How far from the original",
                         "The three upper bits of each sample against all eight; the error is shown eight times as large.", src.size);
        GIVEN(shot, Zet64f norm = 0);
        run(shot, norm);
        shot.show({{"src", picture(src)}, {"coarse", picture(coarse)}}, {{"norm " + number(norm), picture(error)}});
    };
    two("NormDiff_Inf", "Largest difference of two images.", [&](Shot &shot, Zet64f &norm) {
        shot.run(CALL(zetiNormDiff_Inf_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm)));
    });
    two("NormDiff_L1", "Sum of the differences of two images.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNormDiff_L1_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm))); });
    two("NormDiff_L2", "Root of the sum of the squared differences of two images.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNormDiff_L2_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm))); });
    two("NormRel_Inf", "Largest difference, relative to the largest sample.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNormRel_Inf_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm))); });
    two("NormRel_L1", "Sum of the differences, relative to the sum of the samples.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNormRel_L1_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm))); });
    two("NormRel_L2", "Differences as a part of the whole: the quotient of two lengths.",
        [&](Shot &shot, Zet64f &norm) { shot.run(CALL(zetiNormRel_L2_8u_C1R(coarse.p, coarse.step, src.p, src.step, src.size, &norm))); });
}

// Between black and white of the photograph, but near neither.
Grey faded(const Grey &src) {
    Grey dim(src.size);
    zetiMulC_8u_C1RSfs(src.p, src.step, 90, dim.p, dim.step, src.size, 8);
    zetiAddC_8u_C1IRSfs(40, dim.p, dim.step, dim.size, 0);
    return dim;
}

// A cross through a pixel.
Colour marked(const Colour &src, int x, int y) {
    Colour image(src.size);
    zetiCopy_8u_C3R(src.p, src.step, image.p, image.step, src.size);
    const Zet8u red[3] = {255, 40, 40};
    zetiSet_8u_C3R(red, image.at(0, y), image.step, {src.size.width, 1});
    zetiSet_8u_C3R(red, image.at(x, 0), image.step, {1, src.size.height});
    return image;
}

void show_extrema(Gallery &gallery, const Photos &photos) {
    const Grey dim = faded(photos.grey(1));
    const Grey dst(dim.size);
    {
        gallery.family("Max", "Greatest sample of each channel.");
        Shot shot = gallery.shot("As bright as can be", "The greatest sample says how far an image may be brightened.", dim.size);
        GIVEN(shot, Zet8u max = 0);
        shot.run(CALL(zetiMax_8u_C1R(dim.p, dim.step, dim.size, &max)));
        shot.run(CALL(zetiAddC_8u_C1RSfs(dim.p, dim.step, static_cast<Zet8u>(255 - max), dst.p, dst.step, dim.size, 0)));
        shot.show({{numbers("max", std::vector{max}), picture(dim)}}, {{"dst", picture(dst)}});
    }
    {
        gallery.family("Min", "Least sample of each channel.");
        Shot shot = gallery.shot("Without the haze", "What every sample has in common is taken away.", dim.size);
        GIVEN(shot, Zet8u min = 0);
        shot.run(CALL(zetiMin_8u_C1R(dim.p, dim.step, dim.size, &min)));
        shot.run(CALL(zetiSubC_8u_C1RSfs(dim.p, dim.step, min, dst.p, dst.step, dim.size, 0)));
        shot.show({{numbers("min", std::vector{min}), picture(dim)}}, {{"dst", picture(dst)}});
    }
    {
        gallery.family("MinMax", "Least and greatest sample of each channel.");
        Shot shot = gallery.shot("Full contrast", "From the least sample to the greatest: from black to white.", dim.size);
        GIVEN(shot, Zet8u min = 0, max = 0);
        shot.run(CALL(zetiMinMax_8u_C1R(dim.p, dim.step, dim.size, &min, &max)));
        GIVEN(shot, const Zet8u gain = static_cast<Zet8u>(max > min + 16 ? 255 * 16 / (max - min) : 255));
        shot.run(CALL(zetiSubC_8u_C1RSfs(dim.p, dim.step, min, dst.p, dst.step, dim.size, 0)));
        shot.run(CALL(zetiMulC_8u_C1IRSfs(gain, dst.p, dst.step, dst.size, 4)));
        shot.show({{numbers("min, max", std::vector{min, max}), picture(dim)}}, {{"dst", picture(dst)}});
    }
    const Colour &src = photos.colour(3);
    {
        gallery.family("MaxIndx", "Greatest sample of each channel, and where it is.");
        Shot shot =
            gallery.shot("The reddest pixel", "The first in the order of the rows; the cross marks that of the first channel.", src.size);
        GIVEN(shot, Zet8u max[3]);
        GIVEN(shot, Zet32s x[3], y[3]);
        shot.run(CALL(zetiMaxIndx_8u_C3R(src.p, src.step, src.size, max, x, y)));
        shot.show({{"src", picture(src)}}, {{numbers("max", max), picture(marked(src, x[0], y[0]))}});
    }
    {
        gallery.family("MinIndx", "Least sample of each channel, and where it is.");
        Shot shot = gallery.shot("The least blue pixel", "The cross marks that of the third channel.", src.size);
        GIVEN(shot, Zet8u min[3]);
        GIVEN(shot, Zet32s x[3], y[3]);
        shot.run(CALL(zetiMinIndx_8u_C3R(src.p, src.step, src.size, min, x, y)));
        shot.show({{"src", picture(src)}}, {{numbers("min", min), picture(marked(src, x[2], y[2]))}});
    }
}

void show_every(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(3);
    const Colour &other = photos.colour(1);
    const ZetiSize roi = common(src, other);
    const auto both = [&](const char *family, const char *brief, const char *title, const auto &run) {
        gallery.family(family, brief);
        const Colour dst(roi);
        zetiCopy_8u_C3R(other.p, other.step, dst.p, dst.step, roi);
        Shot shot = gallery.shot(title, "Two photographs, sample by sample, in place on the second.", roi);
        run(shot, dst);
        shot.show({{"src", picture(src, roi)}, {"dst", picture(other, roi)}}, {{"dst", picture(dst)}});
    };
    both("MaxEvery", "Greater sample of two images: srcDst = max(src, srcDst).", "Two exposures of one film",
         [&](Shot &shot, const Colour &dst) { shot.run(CALL(zetiMaxEvery_8u_C3IR(src.p, src.step, dst.p, dst.step, roi))); });
    both("MinEvery", "Lesser sample of two images: srcDst = min(src, srcDst).", "Two slides before one lamp",
         [&](Shot &shot, const Colour &dst) { shot.run(CALL(zetiMinEvery_8u_C3IR(src.p, src.step, dst.p, dst.step, roi))); });
}

} // namespace

void show_stats(Gallery &gallery, const Photos &photos) {
    show_sums(gallery, photos);
    show_norms(gallery, photos);
    show_extrema(gallery, photos);
    show_every(gallery, photos);
}

} // namespace demo
