// SPDX-License-Identifier: Apache-2.0
// Sums and norms of images so wide or large that they are kept, rounded or rooted in parts, and what all sums of 32f have in common.
#include "tests/stats/reduction.h"
#include "tests/support/checksum.h"

using namespace test;

namespace {

// 8421504 is the largest number of pixels whose bytes are summed in 32 bits. That number has 32 bits itself: 2^31 is negative for Mean, and
// 2^32 is 0, for which the sums of bytes are kept in 32 bits.
TEST(Sum, RegionsOfMillionsOfPixels) {
    for (const PixelLayout& l : pixel_layouts) {
        EXPECT_EQ(of_constants<Zet8u>("Sum", l, 65793, 128, 255), 8421504 * 255.0);
        EXPECT_EQ(of_constants<Zet8u>("Sum", l, 65793, 129, 255), 8487297 * 255.0);
        EXPECT_EQ(of_constants<Zet16s>("Sum", l, 40000, 600, -32768), 24e6 * -32768);
        EXPECT_EQ(of_constants<Zet16u>("Sum", l, 40000, 600, 65535), 24e6 * 65535);
    }
    EXPECT_EQ(of_constants<Zet8u>("Mean", pixel_layouts[0], 65536, 32768, 3), -3);
    EXPECT_EQ(of_constants<Zet8u>("Sum", pixel_layouts[0], 65536, 65536, 255), 0x1p32 * 255);
    EXPECT_EQ(of_constants<Zet8u>("Sum", pixel_layouts[1], 65537, 65536, 255), 65536.0 * 255); // 2^16 pixels and 2^32 more
}

// Where a row lies has no part in a result, the caller's float state neither, and only one hint is accurate. A row of n samples passes through at
// most n / 4 + 8 additions in single precision, each off by 2^-24 of a sum of magnitudes at most; rows are added in double precision. The
// checksum tells any change in the order of the sums.
TEST(FloatSums, DependOnNothingButTheSamples) {
    const char* const families[] = {"Sum", "Norm_L1", "Norm_L2", "Mean", "NormDiff_L1", "NormDiff_L2", "NormRel_L1", "NormRel_L2"};
    Checksum sum;
    for (int k = 0; k < 8 * 4; ++k) {
        const std::string family = families[k / 4];
        const PixelLayout& l = pixel_layouts[k % 4];
        Random r(family + l.name);
        for (int width = 1; width <= 2100;
             width += width < 90 ? r.between(1, 3) : 1000) { // from 2048 samples on, a row is read in two places
            const int n = width * l.channels;
            std::vector<Zet32f> samples(static_cast<size_t>(n) * 4);
            for (Zet32f& s : samples) s = std::ldexp(static_cast<Zet32f>(r.between(-9999999, 9999999)), r.between(-30, 0));
            double exact[] = {0, 0, 0}; // of the first families, in the last channel
            for (int i = l.colours - 1; i < 2 * n; i += l.channels)
                exact[0] += samples[i], exact[1] += std::fabs(samples[i]), exact[2] = std::hypot(exact[2], samples[i]);
            Results known[2];
            for (int offset = 0; offset < 16; ++offset) {
                Image<Zet32f> image(width, 4, l.channels, (n + 8) * 4, Fence::behind, offset);
                for (const auto [y, i] : image.samples()) image.set(y, i, samples[static_cast<size_t>(y) * n + i]);
                for (const int hint : {0, int{zetAlgHintFast}, int{zetAlgHintAccurate}, -1, 3, INT_MIN}) {
                    const bool accurate = hint == zetAlgHintAccurate, first = offset == 0 && (hint == 0 || accurate);
                    const Results got = under_state(offset == 0 ? plain_state : 0xFFC0, [&] {
                        return called(family, l, image.row(0), image.row(2), image.step, {width, 2}, ZetHintAlgorithm(hint));
                    });
                    if (first) known[accurate] = got;
                    for (int c = 0; first && c < l.colours; ++c) sum.add(got.value(c));
                    ASSERT_TRUE(got == known[accurate]) << family << l.name << " at offset " << offset << ", hint " << hint;
                    const double unit = accurate ? 0x1p-40 : (width / 4.0 + 8) * 0x1p-24;
                    const bool near = k >= 12 || std::fabs(got.value(l.colours - 1) - exact[k / 4]) <= unit * exact[1];
                    ASSERT_TRUE(near) << family << l.name << ", width " << width << ", hint " << hint;
                }
            }
        }
    }
    EXPECT_EQ(sum.value, 0xC71BB153DD175E38);
}

// From 32769 pixels on the roots of strips are squared and added: the result is not the root of the whole.
TEST(WideNorms, StripsOf8uAreRootedTwice) {
    Random r("strips");
    for (const PixelLayout& l : pixel_layouts)
        for (const int width : {32767, 32768, 32769, 32776, 65536, 65537, 100000})
            for (const int height : {1, 2}) { // rows one sample apart
                std::vector<Zet8u> a(static_cast<std::size_t>(width) * l.channels + 1), b = a;
                for (std::size_t i = 0; i < a.size(); ++i) a[i] = r.uniform<Zet8u>(), b[i] = r.uniform<Zet8u>();
                const auto value = [&](const char* family, const Zet8u* of) {
                    return called(family, l, of, b.data(), 1, {width, height}).value(l.colours - 1);
                };
                for (const bool diff : {false, true}) {
                    Zet64f strips = 0, squares = 0, whole = 0;
                    for (int x = 0; x < width; ++x) {
                        for (int i = x * l.channels + l.colours - 1, y = 0; y < height; ++i, ++y) {
                            const int d = a[i] - (diff ? b[i] : 0);
                            squares += d * d;
                        }
                        if (x + 1 == width || (x + 1) % 32768 == 0)
                            strips += std::sqrt(squares) * std::sqrt(squares), whole += std::exchange(squares, 0);
                    }
                    const Zet64f got = value(diff ? "NormDiff_L2" : "Norm_L2", a.data()), norm = value("Norm_L2", b.data());
                    EXPECT_EQ(got, std::sqrt(width > 32768 ? strips : whole)) << l.name << ' ' << width;
                    EXPECT_TRUE(!diff || l.channels == 1 || value("NormRel_L2", a.data()) == got / norm) << l.name << ' ' << width;
                }
            }
}

// The sum of a block of 65536 differences of 16u has 32 bits and a sign; the denominators of NormRel have no such blocks. Integers of more
// than 53 bits are rounded once, whether or not bit 63 is a part of them. Sums of bytes are in 32 bits up to 8421504 pixels.
TEST(WideNorms, SumsInBlocks) {
    const auto root_of_squares = [](std::uint64_t v, std::uint64_t pixels) { return std::sqrt(static_cast<Zet64f>(v * v * pixels)); };
    for (const PixelLayout& l : pixel_layouts) {
        for (const int width : {32768, 32769, 65536, 65537, 98305, 131073}) {
            Zet64f expected = 0;
            for (int x = 0; x < width; x += 65536) {
                const Zet64f block = 65535.0 * std::min(65536, width - x);
                expected += block < 0x1p31 ? block : block - 0x1p32;
            }
            EXPECT_EQ(of_constants<Zet16u>("NormDiff_L1", l, width, 1, 0, 65535), expected) << l.name << ' ' << width;
            EXPECT_EQ(of_constants<Zet16u>("NormRel_L1", l, width, 1, 0, 65535), expected / (65535.0 * width)) << l.name << ' ' << width;
            EXPECT_EQ(of_constants<Zet16u>("Norm_L1", l, width, 1, 65535), 65535.0 * width) << l.name << ' ' << width;
        }
        EXPECT_EQ(of_constants<Zet16u>("Norm_L2", l, 3000001, 1, 65535), root_of_squares(65535, 3000001)) << l.name;
        EXPECT_EQ(of_constants<Zet16u>("NormDiff_L2", l, 3000001, 1, 0, 65535), root_of_squares(65535, 3000001)) << l.name;
        EXPECT_EQ(of_constants<Zet16s>("Norm_L2", l, 9000001, 1, -32767), root_of_squares(32767, 9000001)) << l.name;
        EXPECT_EQ(of_constants<Zet16s>("NormDiff_L2", l, 9000001, 1, 0, -32767), root_of_squares(32767, 9000001)) << l.name;
        for (const int height : {128, 129}) {
            EXPECT_EQ(of_constants<Zet8u>("Norm_L1", l, 65793, height, 255), 255.0 * 65793 * height) << l.name;
            EXPECT_EQ(of_constants<Zet8u>("NormDiff_L1", l, 65793, height, 0, 255), 255.0 * 65793 * height) << l.name;
            EXPECT_EQ(of_constants<Zet8u>("Norm_L2", l, 32768, height, 255), root_of_squares(255, 32768 * height)) << l.name;
        }
    }
    EXPECT_EQ(of_constants<Zet16u>("Norm_L2", pixel_layouts[0], 65537, 32770, 65535), root_of_squares(65535, 65537ULL * 32770)); // 2^63
}

// Single precision loses the squares of small samples; with the hint they count.
TEST(NormRel, SmallFloats) {
    const std::vector<Zet32f> a(64, 3e-30F), b(64, 1e-30F);
    for (const PixelLayout& l : pixel_layouts)
        for (const bool accurate : {false, true}) {
            const Reduction m = {"NormRel_L2", Type::f32, l, accurate ? zetAlgHintAccurate : zetAlgHintFast};
            Call call(m, a.data(), 64, b.data(), 64, {5, 1});
            EXPECT_EQ(call.run(), accurate ? zetStsNoErr : zetStsDivByZero) << l.name;
            EXPECT_NEAR(call.results.value(0), accurate ? 2 : 0, 1e-6) << l.name;
        }
}

} // namespace
