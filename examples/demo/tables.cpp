// SPDX-License-Identifier: Apache-2.0
// Gallery entries of stats/: histograms, tables by level, palettes, moments.
#include <algorithm>
#include <cmath>

#include "gallery.h"

namespace demo {

namespace {

using Bins = std::vector<Zet32s>;

// Bars of three counts side by side, as wide as the picture is, the highest as high.
Colour bars(const Bins (&counts)[3], ZetiSize size) {
    Colour image(size);
    Zet32s most = 1;
    for (const Bins &bins : counts) most = std::max(most, *std::max_element(bins.begin(), bins.end()));
    for (int x = 0; x < size.width; ++x)
        for (int c = 0; c < 3; ++c) {
            const std::size_t bin = static_cast<std::size_t>(x) * counts[c].size() / size.width;
            const int height =
                static_cast<int>(std::sqrt(static_cast<double>(counts[c][bin]) / most) * size.height); // of the root: small counts show
            for (int y = size.height - height; y < size.height; ++y) image.at(x, y)[c] = 230;
        }
    return image;
}

// A tone curve as a line, from a table of all 8-bit samples.
Grey plotted(const Zet8u (&table)[256]) {
    Grey image({256, 256});
    for (int x = 0; x < 256; ++x) {
        const int before = table[x == 0 ? 0 : x - 1], low = std::min<int>(before, table[x]), high = std::max<int>(before, table[x]);
        for (int y = low; y <= high; ++y) image.row(255 - y)[x] = 255;
    }
    return image;
}

template <class Map> Grey curve_of(Map map) {
    Zet8u ramp[256], mapped[256];
    for (int v = 0; v < 256; ++v) ramp[v] = static_cast<Zet8u>(v);
    map(ramp, mapped);
    return plotted(mapped);
}

void show_histogram(Gallery &gallery, const Photos &photos) {
    gallery.family("HistogramEven", "Counts samples between levels at even distances.");
    const Colour &src = photos.colour(0);
    {
        Shot shot = gallery.shot("The colours of a photograph",
                                 "A bin for each of 256 levels and channel; the bars are drawn by square roots.", src.size);
        Bins counts[3] = {Bins(256), Bins(256), Bins(256)}, levels[3] = {Bins(257), Bins(257), Bins(257)};
        GIVEN(shot, Zet32s *const pHist[3] = {counts[0].data(), counts[1].data(), counts[2].data()});
        GIVEN(shot, Zet32s *const pLevels[3] = {levels[0].data(), levels[1].data(), levels[2].data()});
        GIVEN(shot, const int nLevels[3] = {257, 257, 257});
        GIVEN(shot, const Zet32s lower[3] = {0, 0, 0}, upper[3] = {256, 256, 256});
        shot.run(CALL(zetiHistogramEven_8u_C3R(src.p, src.step, src.size, pHist, pLevels, nLevels, lower, upper)));
        shot.show({{"src", picture(src)}}, {{"pHist, red, green and blue", picture(bars(counts, {512, 256}))}});
    }
    gallery.family("HistogramRange", "Counts samples between levels of the caller's choice.");
    {
        const Grey &grey = photos.grey(2);
        Shot shot = gallery.shot("Shadows, midtones, highlights", "Three bins of different width.", grey.size);
        GIVEN(shot, const Zet32s pLevels[4] = {0, 64, 192, 256});
        Bins counts[3] = {Bins(3), Bins(3), Bins(3)};
        GIVEN(shot, Zet32s *pHist = counts[0].data());
        shot.run(CALL(zetiHistogramRange_8u_C1R(grey.p, grey.step, grey.size, pHist, pLevels, 4)));
        counts[1] = counts[2] = counts[0];
        const std::string told = std::to_string(counts[0][0]) + ", " + std::to_string(counts[0][1]) + ", " + std::to_string(counts[0][2]);
        shot.show({{"grey", picture(grey)}}, {{"pHist: " + told, picture(bars(counts, {384, 192}))}});
    }
    gallery.family("CountInRange", "Counts samples between two bounds, both included.");
    {
        const Grey &grey = photos.grey(3), dst(grey.size);
        Shot shot = gallery.shot("How much is black?", "The count, and the same range as a picture.", grey.size);
        GIVEN(shot, Zet32s count = 0);
        shot.run(CALL(zetiCountInRange_8u_C1R(grey.p, grey.step, grey.size, &count, 0, 24)));
        shot.run(CALL(zetiCompareC_8u_C1R(grey.p, grey.step, 24, dst.p, dst.step, dst.size, zetCmpLessEq)));
        const double percent = 100.0 * count / grey.size.width / grey.size.height;
        shot.show(
            {{"grey", picture(grey)}},
            {{"dst: " + std::to_string(count) + " samples, " + std::to_string(std::lround(percent)) + " %", picture(dst)}});
    }
}

void show_lut(Gallery &gallery, const Photos &photos) {
    const Grey &src = photos.grey(1);
    const ZetiSize row = {256, 1};
    {
        gallery.family("LUT", "Replaces samples by a constant for each interval of levels.");
        const Grey dst(src.size);
        Shot shot = gallery.shot("Five greys", "Each interval becomes one tone.", src.size);
        GIVEN(shot, const Zet32s pLevels[6] = {0, 40, 90, 140, 200, 256}, pValues[6] = {10, 70, 128, 190, 250, 0});
        shot.run(CALL(zetiLUT_8u_C1R(src.p, src.step, dst.p, dst.step, dst.size, pValues, pLevels, 6)));
        const Grey curve = curve_of([&](const Zet8u *from, Zet8u *to) { zetiLUT_8u_C1R(from, 256, to, 256, row, pValues, pLevels, 6); });
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}, {"the table", picture(curve)}});
    }
    {
        gallery.family("LUT_Linear", "Maps samples by straight lines between the values at the levels.");
        const Colour &colour = photos.colour(3);
        const Colour dst(colour.size);
        Shot shot = gallery.shot("Evening light", "A line of its own for each channel: red is lifted, blue held down.", colour.size);
        GIVEN(shot, const Zet32s levels[3] = {0, 96, 256}, red[3] = {0, 150, 256}, green[3] = {0, 96, 240}, blue[3] = {10, 70, 180});
        GIVEN(shot, const Zet32s *const pLevels[3] = {levels, levels, levels}, *const pValues[3] = {red, green, blue});
        GIVEN(shot, const int nLevels[3] = {3, 3, 3});
        shot.run(CALL(zetiLUT_Linear_8u_C3R(colour.p, colour.step, dst.p, dst.step, dst.size, pValues, pLevels, nLevels)));
        const Grey curve = curve_of([&](const Zet8u *from, Zet8u *to) { zetiLUT_Linear_8u_C1R(from, 256, to, 256, row, red, levels, 3); });
        shot.show({{"colour", picture(colour)}}, {{"dst", picture(dst)}, {"the line of red", picture(curve)}});
    }
    {
        gallery.family("LUT_Cubic", "Maps samples by cubics through the values at four levels.");
        const Grey dst(src.size);
        Shot shot = gallery.shot("A tone curve", "Five points and smooth between them: deeper shadows, lighter lights.", src.size);
        GIVEN(shot, const Zet32s pLevels[5] = {0, 64, 128, 192, 256}, pValues[5] = {0, 32, 128, 224, 255});
        shot.run(CALL(zetiLUT_Cubic_8u_C1R(src.p, src.step, dst.p, dst.step, dst.size, pValues, pLevels, 5)));
        const Grey curve =
            curve_of([&](const Zet8u *from, Zet8u *to) { zetiLUT_Cubic_8u_C1R(from, 256, to, 256, row, pValues, pLevels, 5); });
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}, {"the curve", picture(curve)}});
    }
}

void show_palette(Gallery &gallery, const Photos &photos) {
    const Grey &src = photos.grey(2);
    {
        gallery.family("LUTPalette", "Replaces samples by entries of a table.");
        const Colour dst(src.size);
        Zet32u glow[256]; // black, red, yellow, white; the lowest byte is red
        for (int v = 0; v < 256; ++v) {
            const auto part = [v](int from) { return static_cast<Zet32u>(std::clamp(3 * (v - from), 0, 255)); };
            glow[v] = part(0) | part(85) << 8 | part(170) << 16;
        }
        Shot shot = gallery.shot("Heat", "A grey image indexes colours of 24 bits.", src.size);
        shot.run(CALL(zetiLUTPalette_8u24u_C1R(src.p, src.step, dst.p, dst.step, dst.size, glow, 8)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        gallery.family("LUTPaletteSwap", "Replaces samples by entries of a table and exchanges two channels.");
        const Colour &colour = photos.colour(0);
        const ColourAlpha dst(colour.size);
        const Colour shown(colour.size);
        Zet8u same[256];
        for (int v = 0; v < 256; ++v) same[v] = static_cast<Zet8u>(v);
        Shot shot = gallery.shot("Red for green", "Alpha first: the colours go to samples 2, 1 and 3 of four.", colour.size);
        GIVEN(shot, const Zet8u *const pTable[3] = {same, same, same});
        shot.run(CALL(zetiLUTPaletteSwap_8u_C3A0C4R(colour.p, colour.step, dst.p, dst.step, dst.size, pTable, 8)));
        for (int y = 0; y < shown.size.height; ++y)
            for (int x = 0; x < shown.size.width; ++x) std::copy_n(dst.at(x, y) + 1, 3, shown.at(x, y));
        shot.show({{"colour", picture(colour)}}, {{"samples 1 to 3 of dst", picture(shown)}});
    }
}

// A leaf: bright, off the centre and turned.
Grey shape(ZetiSize size) {
    return drawn<Zet8u>(size, [](double x, double y) {
        const double u = (x + 0.12) * std::cos(0.6) + (y - 0.05) * std::sin(0.6),
                     v = (y - 0.05) * std::cos(0.6) - (x + 0.12) * std::sin(0.6);
        return std::hypot(u / 0.7, v / (0.22 + 0.12 * u)) < 1 ? 220 : 0;
    });
}

void show_moments(Gallery &gallery) {
    gallery.family("Moments64f", "Scans an image for its moments, and answers from the sums.");
    const Grey src = shape({420, 300});
    {
        Shot shot = gallery.shot("The axes of a shape", "Centre, direction and extent from the moments of second order.", src.size);
        GIVEN(shot, ZetiMomentState_64f *pState = nullptr);
        GIVEN(shot, const ZetStatus made = zetiMomentInitAlloc_64f(&pState, zetAlgHintNone)); // once: calls are repeated to be measured
        if (made != zetStsNoErr) throw std::runtime_error("no memory for a record of moments");
        GIVEN(shot, double m00, m01, m10, c02, c11, c20, n02);
        GIVEN(shot, const ZetiPoint origin = {0, 0});
        shot.given("... zetiMomentFree_64f(pState)");
        shot.run(CALL(zetiMoments64f_8u_C1R(src.p, src.step, src.size, pState)));
        shot.run(CALL(zetiGetSpatialMoment_64f(pState, 0, 0, 0, origin, &m00)));
        shot.run(CALL(zetiGetSpatialMoment_64f(pState, 0, 1, 0, origin, &m01)));
        shot.run(CALL(zetiGetSpatialMoment_64f(pState, 1, 0, 0, origin, &m10)));
        shot.run(CALL(zetiGetCentralMoment_64f(pState, 0, 2, 0, &c02)));
        shot.run(CALL(zetiGetCentralMoment_64f(pState, 1, 1, 0, &c11)));
        shot.run(CALL(zetiGetCentralMoment_64f(pState, 2, 0, 0, &c20)));
        shot.run(CALL(zetiGetNormalizedCentralMoment_64f(pState, 0, 2, 0, &n02)));
        const Colour axes(src.size);
        zetiDup_8u_C1C3R(src.p, src.step, axes.p, axes.step, axes.size);
        const double angle = std::atan2(2 * c11, c02 - c20) / 2, mean = (c02 + c20) / 2, off = std::hypot((c02 - c20) / 2, c11);
        const auto draw = [&](double turn, double variance, Zet8u r, Zet8u g, Zet8u b) {
            const double half = 2 * std::sqrt(variance / m00); // of an ellipse its half axis
            for (int quarter = static_cast<int>(-4 * half); quarter <= 4 * half; ++quarter) {
                const double t = quarter * 0.25;
                const int x = static_cast<int>(m01 / m00 + t * std::cos(turn)), y = static_cast<int>(m10 / m00 + t * std::sin(turn));
                for (int k = 0; k < 4; ++k)
                    if (x + k % 2 >= 0 && y + k / 2 >= 0 && x + 1 < src.size.width && y + 1 < src.size.height)
                        axes.at(x + k % 2, y + k / 2)[0] = r, axes.at(x + k % 2, y + k / 2)[1] = g, axes.at(x + k % 2, y + k / 2)[2] = b;
            }
        };
        draw(angle, mean + off, 200, 30, 20), draw(angle + std::acos(0.0), mean - off, 20, 80, 200);
        shot.show({{"src", picture(src)}}, {{"the axes, of twice the standard deviation to either side", picture(axes)}});
        zetiMomentFree_64f(pState);
    }
    {
        gallery.family("Moments64s", "The same in 64-bit integers, exact, with a record in the caller's memory.");
        Shot shot = gallery.shot("Invariants", "Shift, turn or enlarge a shape: its numbers stay.", src.size);
        GIVEN(shot, int size);
        shot.run(CALL(zetiMomentGetStateSize_64s(zetAlgHintNone, &size)));
        std::vector<char> block(static_cast<std::size_t>(size));
        GIVEN(shot, ZetiMomentState_64s *pState = reinterpret_cast<ZetiMomentState_64s *>(block.data()));
        GIVEN(shot, Zet64s x2, centred, pHm[7]);
        GIVEN(shot, const ZetiPoint origin = {0, 0});
        shot.run(CALL(zetiMomentInit_64s(pState, zetAlgHintNone)));
        shot.run(CALL(zetiMoments64s_8u_C1R(src.p, src.step, src.size, pState)));
        shot.run(CALL(zetiGetNormalizedSpatialMoment_64s(pState, 0, 2, 0, origin, &x2, -20)));
        shot.run(CALL(zetiGetCentralMoment_64s(pState, 0, 2, 0, &centred, 0)));
        shot.run(CALL(zetiGetHuMoments_64s(pState, 0, pHm, -50)));
        const auto number = [](Zet64s v) { return std::to_string(std::ldexp(static_cast<double>(v), -50) * 1e6); };
        const std::string told = number(pHm[0]) + ", " + number(pHm[1]) + " millionths";
        shot.show({}, {{"src: its first two invariants are " + told, picture(src)}});
    }
}

} // namespace

void show_tables(Gallery &gallery, const Photos &photos) {
    show_histogram(gallery, photos);
    show_lut(gallery, photos);
    show_palette(gallery, photos);
    show_moments(gallery);
}

} // namespace demo
