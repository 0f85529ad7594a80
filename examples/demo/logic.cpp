// SPDX-License-Identifier: Apache-2.0
// Gallery entries of arith/: logic, shifts, thresholds, comparisons.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "gallery.h"

namespace demo {

namespace {

Colour copied(const Colour &image) {
    Colour copy(image.size);
    zetiCopy_8u_C3R(image.p, image.step, copy.p, copy.step, image.size);
    return copy;
}

// Ones inside a disc, zeros around it, in all three channels.
Colour disc(ZetiSize size) {
    const Grey grey = drawn<Zet8u>(size, [](double x, double y) { return std::hypot(x, y) < 0.6 ? 255 : 0; });
    Colour image(size);
    zetiDup_8u_C1C3R(grey.p, grey.step, image.p, image.step, size);
    return image;
}

void show_images(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(1);
    const Colour mask = disc(src.size), dst(src.size);
    gallery.family("And", "Bitwise and of two images: dst = src1 & src2.");
    {
        Shot shot = gallery.shot("Cut out", "A mask of ones and zeros in the sample's bits keeps or clears.", src.size);
        shot.run(CALL(zetiAnd_8u_C3R(mask.p, mask.step, src.p, src.step, dst.p, dst.step, src.size)));
        shot.show({{"mask", picture(mask)}, {"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("Or", "Bitwise or of two images: dst = src1 | src2.");
    {
        Shot shot = gallery.shot("White inside", "Where the mask has ones the result has.", src.size);
        shot.run(CALL(zetiOr_8u_C3R(mask.p, mask.step, src.p, src.step, dst.p, dst.step, src.size)));
        shot.show({{"mask", picture(mask)}, {"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("Xor", "Bitwise exclusive or of two images: dst = src1 ^ src2.");
    {
        std::mt19937 random(1);
        const Colour key(src.size), open(src.size);
        for (int y = 0; y < key.size.height; ++y)
            for (int i = 0; i < 3 * key.size.width; ++i) key.row(y)[i] = static_cast<Zet8u>(random());
        Shot shot = gallery.shot("Sealed and opened", "With an image of noise, and once more with the same noise.", src.size);
        shot.run(CALL(zetiXor_8u_C3R(key.p, key.step, src.p, src.step, dst.p, dst.step, src.size)));
        shot.run(CALL(zetiXor_8u_C3R(key.p, key.step, dst.p, dst.step, open.p, open.step, src.size)));
        shot.show({{"src", picture(src)}, {"key", picture(key)}}, {{"dst", picture(dst)}, {"open", picture(open)}});
    }
    gallery.family("Not", "Bitwise complement: dst = ~src.");
    {
        Shot shot = gallery.shot("Negative", "255 minus the sample is its complement.", src.size);
        shot.run(CALL(zetiNot_8u_C3R(src.p, src.step, dst.p, dst.step, src.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
}

void show_constants(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(0);
    const Colour dst(src.size);
    gallery.family("AndC", "Bitwise and with a constant: dst = src & value.");
    {
        Shot shot = gallery.shot("Two bits of eight", "Four levels a channel are left.", src.size);
        GIVEN(shot, const Zet8u value[3] = {0xC0, 0xC0, 0xC0});
        shot.run(CALL(zetiAndC_8u_C3R(src.p, src.step, value, dst.p, dst.step, src.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("OrC", "Bitwise or with a constant: dst = src | value.");
    {
        const Colour image = copied(src);
        Shot shot = gallery.shot("Every blue at least 128", "In place; red and green keep their bits.", src.size);
        GIVEN(shot, const Zet8u value[3] = {0, 0, 0x80});
        shot.run(CALL(zetiOrC_8u_C3IR(value, image.p, image.step, src.size)));
        shot.show({{"image, as it was", picture(src)}}, {{"image", picture(image)}});
    }
    gallery.family("XorC", "Bitwise exclusive or with a constant: dst = src ^ value.");
    {
        Shot shot = gallery.shot("Halves exchanged", "The highest bit turned over: dark is light and light is dark.", src.size);
        GIVEN(shot, const Zet8u value[3] = {0x80, 0x80, 0x80});
        shot.run(CALL(zetiXorC_8u_C3R(src.p, src.step, value, dst.p, dst.step, src.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("LShiftC", "Left shift by a constant: dst = src << value.");
    {
        Shot shot = gallery.shot("The three lowest bits",
                                 "What a camera calls noise, 32 times brighter. High bits are lost, nothing saturates.", src.size);
        GIVEN(shot, const Zet32u value[3] = {5, 5, 5});
        shot.run(CALL(zetiLShiftC_8u_C3R(src.p, src.step, value, dst.p, dst.step, src.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("RShiftC", "Right shift by a constant: dst = src >> value.");
    {
        Shot shot =
            gallery.shot("Evening", "Each channel by its own count: half of the red, a quarter of the green, all of the blue.", src.size);
        GIVEN(shot, const Zet32u value[3] = {1, 2, 0});
        shot.run(CALL(zetiRShiftC_8u_C3R(src.p, src.step, value, dst.p, dst.step, src.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    gallery.family("Complement", "Two's complement to sign and magnitude, in place.");
    {
        const Grey &grey = photos.grey(2);
        const ZetiSize roi = {grey.size.width - 2, grey.size.height};
        Image<Zet32s, 1> image(roi);
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) image.row(y)[x] = grey.row(y)[x + 2] - grey.row(y)[x];
        Shot shot = gallery.shot("The magnitude of an edge", "Differences of neighbours, then their magnitude alone, by its bits.", roi);
        GIVEN(shot, const Zet32s magnitude = 0x7FFFFFFF);
        shot.run(CALL(zetiComplement_32s_C1IR(image.p, image.step, roi)));
        shot.run(CALL(zetiAndC_32s_C1IR(magnitude, image.p, image.step, roi)));
        shot.show({{"the differences are of this", picture(grey)}}, {{"image", toned(image, [](Zet32s v) { return 4.0 * v; })}});
    }
}

void show_thresholds(Gallery &gallery, const Photos &photos) {
    const Grey &src = photos.grey(2);
    const ZetiSize roi = src.size;
    const Grey dst(roi);
    const auto shot = [&](const char *operation, const char *brief, const char *title, const char *note, const auto &call) {
        gallery.family(operation, brief);
        Shot made = gallery.shot(title, note, roi);
        call(made);
        made.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    };
    shot("Threshold", "Clamps samples at a bound on one side.", "No darker than 90", "The operator says which side; samples within stay.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 90, zetCmpLess))); });
    shot("Threshold_GT", "Clamps samples from above.", "No lighter than 140", "The sky loses its clouds.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_GT_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 140))); });
    shot("Threshold_LT", "Clamps samples from below.", "Shadows lifted to 60", "The coat loses its folds.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_LT_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 60))); });
    shot("Threshold_Val", "Replaces samples beyond a bound.", "The sky to black", "What is above 170 becomes 0.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_Val_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 170, 0, zetCmpGreater))); });
    shot("Threshold_GTVal", "Replaces samples above a bound.", "The sky to grey", "What is above 170 becomes 128.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_GTVal_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 170, 128))); });
    shot("Threshold_LTVal", "Replaces samples below a bound.", "A white coat", "What is below 50 becomes 255.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_LTVal_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 50, 255))); });
    shot("Threshold_LTValGTVal", "Replaces samples below one bound and above another.", "Black, the greys between, white",
         "Below 70 becomes 0, above 180 becomes 255, in one pass.",
         [&](Shot &s) { s.run(CALL(zetiThreshold_LTValGTVal_8u_C1R(src.p, src.step, dst.p, dst.step, roi, 70, 0, 180, 255))); });
}

void show_comparisons(Gallery &gallery, const Photos &photos) {
    {
        gallery.family("Compare", "Mask of the pixels where two images compare: 255 where all channels do.");
        const Colour &src1 = photos.colour(0), &src2 = photos.colour(3);
        const ZetiSize roi = common(src1, src2);
        const Colour dst = copied(src1);
        const Grey mask(roi);
        Shot shot = gallery.shot("Whichever is lighter", "The mask of a comparison is the mask of a copy.", roi);
        shot.run(CALL(zetiCompare_8u_C3R(src1.p, src1.step, src2.p, src2.step, mask.p, mask.step, roi, zetCmpLess)));
        shot.run(CALL(zetiCopy_8u_C3MR(src2.p, src2.step, dst.p, dst.step, roi, mask.p, mask.step)));
        shot.show({{"src1", picture(src1, roi)}, {"src2", picture(src2, roi)}}, {{"mask", picture(mask)}, {"dst", picture(dst, roi)}});
    }
    {
        gallery.family("CompareC", "Mask of the pixels where an image compares with a constant.");
        const Colour &src = photos.colour(1);
        const Grey mask(src.size);
        Shot shot = gallery.shot("Light in every channel", "A constant for each of three channels.", src.size);
        GIVEN(shot, const Zet8u value[3] = {180, 150, 130});
        shot.run(CALL(zetiCompareC_8u_C3R(src.p, src.step, value, mask.p, mask.step, src.size, zetCmpGreaterEq)));
        shot.show({{"src", picture(src)}}, {{"mask", picture(mask)}});
    }
    const auto light = converted<Zet32f>(photos.grey(1), [](Zet8u v) { return static_cast<Zet32f>(v); });
    {
        gallery.family("CompareEqualEps", "Mask of the pixels where two images are equal within a tolerance.");
        const ZetiSize roi = {light.size.width - 2, light.size.height};
        const Grey mask(roi);
        Shot shot = gallery.shot("Even places", "An image and itself two columns on, alike within 3.", roi);
        shot.run(CALL(zetiCompareEqualEps_32f_C1R(light.p, light.step, light.p + 2, light.step, mask.p, mask.step, roi, 3.0f)));
        shot.show({{"light", picture(photos.grey(1))}}, {{"mask", picture(mask)}});
    }
    {
        gallery.family("CompareEqualEpsC", "Mask of the pixels where an image equals a constant within a tolerance.");
        const Grey mask(light.size);
        Shot shot = gallery.shot("A contour", "Where the image is 128, give or take 8.", light.size);
        shot.run(CALL(zetiCompareEqualEpsC_32f_C1R(light.p, light.step, 128.0f, mask.p, mask.step, light.size, 8.0f)));
        shot.show({{"light", picture(photos.grey(1))}}, {{"mask", picture(mask)}});
    }
}

// A page of print as a scanner sees it: grey ink on grey paper, noise over both. Letters of 5 x 7 dots.
Grey scanned_page(ZetiSize size) {
    struct Letter {
        char name;
        const char *dots;
    };
    constexpr Letter letters[] = {{'A', "01110100011000111111100011000110001"}, {'E', "11111100001000011110100001000011111"},
                                  {'I', "01110001000010000100001000010001110"}, {'N', "10001110011010110011100011000110001"},
                                  {'O', "01110100011000110001100011000101110"}, {'R', "11110100011000111110101001001010001"},
                                  {'S', "01111100001000001110000010000111110"}, {'T', "11111001000010000100001000010000100"}};
    const char *const lines[] = {"TEN STONES IN A TRAIN", "NO RAIN IS SEEN", "A TRAIN ROARS IN", "SIRENS AT NOON",
                                 "STARS ON IRON ARE RARE"};
    const int dot = std::max(1, size.width / 160);
    const auto ink = [&](int x, int y) {
        const int column = x / dot - 8, row = y / dot - 6, line = row / 12, place = column / 6;
        if (column < 0 || row < 0 || row % 12 >= 7 || column % 6 >= 5) return false;
        const char *const text = lines[line % 5];
        if (place >= static_cast<int>(std::strlen(text))) return false;
        const auto *const letter =
            std::find_if(std::begin(letters), std::end(letters), [&](const Letter &l) { return l.name == text[place]; });
        return letter != std::end(letters) && letter->dots[row % 12 * 5 + column % 6] == '1';
    };
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 14);
    Grey page(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            page.row(y)[x] = static_cast<Zet8u>(std::clamp((ink(x, y) ? 95 : 185) + noise(random), 0.0, 255.0));
    return page;
}

void show_otsu(Gallery &gallery) {
    gallery.family("ComputeThreshold_Otsu", "The level that best separates an image into two classes (Otsu 1979).");
    const Grey page = scanned_page({512, 340}), dst(page.size);
    Zet8u level = 0;
    Shot shot =
        gallery.shot("Ink and paper", "A noisy scan; the level is found, what is above it becomes white and the rest black.", page.size);
    shot.run(CALL(zetiComputeThreshold_Otsu_8u_C1R(page.p, page.step, page.size, &level)));
    shot.run(CALL(zetiThreshold_GTVal_8u_C1R(page.p, page.step, dst.p, dst.step, page.size, level, 255)));
    shot.run(CALL(zetiThreshold_Val_8u_C1IR(dst.p, dst.step, dst.size, 255, 0, zetCmpLess)));
    shot.show({{"page", picture(page)}}, {{"dst", picture(dst)}});
}

} // namespace

void show_logic(Gallery &gallery, const Photos &photos) {
    show_images(gallery, photos);
    show_constants(gallery, photos);
    show_thresholds(gallery, photos);
    show_comparisons(gallery, photos);
    show_otsu(gallery);
}

} // namespace demo
