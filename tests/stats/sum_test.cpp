// SPDX-License-Identifier: Apache-2.0
// Sums of millions of pixels, and what all sums of 32f have in common.
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

const char* const float_sums[] = {"Sum", "Mean", "Norm_L1", "Norm_L2", "NormDiff_L1", "NormDiff_L2", "NormRel_L1", "NormRel_L2"};

// Where a row lies has no part in a result, the caller's float state neither, and only one hint is accurate. Checksums tell any change in
// the order of the sums.
TEST(FloatSums, DependOnNothingButTheSamples) {
    Checksum sum;
    for (const char* const family : float_sums) {
        for (const PixelLayout& l : pixel_layouts) {
            Random r(Reduction{family, Type::f32, l}.name());
            for (int width = 1; width <= 2100;
                 width += width < 90 ? r.between(1, 3) : 1000) { // from 2048 samples on, a row is read in two places
                const int n = width * l.channels;
                std::vector<Zet32f> samples(static_cast<size_t>(n) * 4);
                for (Zet32f& s : samples) s = std::ldexp(static_cast<Zet32f>(r.between(-9999999, 9999999)), r.between(-30, 0));
                Results known[2];
                for (int offset = 0; offset < 16; ++offset) {
                    Image<Zet32f> image(width, 4, l.channels, (n + 8) * 4, Fence::behind, offset);
                    for (const auto [y, i] : image.samples()) image.set(y, i, samples[static_cast<size_t>(y) * n + i]);
                    for (const int hint : {zetAlgHintNone, zetAlgHintAccurate, zetAlgHintFast, ZetHintAlgorithm(-1), ZetHintAlgorithm(3),
                                           ZetHintAlgorithm(INT_MIN)}) {
                        const Results got = under_state(offset == 0 ? plain_state : 0xFFC0, [&] {
                            return called(family, l, image.row(0), image.row(2), image.step, {width, 2}, ZetHintAlgorithm(hint));
                        });
                        Results& same_hint = known[hint == zetAlgHintAccurate];
                        const bool first = offset == 0 && (hint == zetAlgHintNone || hint == zetAlgHintAccurate);
                        if (first) same_hint = got;
                        for (int c = 0; first && c < l.colours; ++c) sum.add(got.value(c));
                        ASSERT_TRUE(got == same_hint) << family << l.name << " at offset " << offset << ", hint " << hint;
                    }
                }
            }
        }
    }
    EXPECT_EQ(sum.value, 0xDB1E483422E4960A);
}

// A row of n samples passes through at most n / 4 + 8 additions in single precision, each off by 2^-24 of a sum of magnitudes at most. Rows
// are added in double precision, and however many they are, the relative error stays. The accurate path has units of 2^-53.
TEST(FloatSums, ErrorsGrowWithTheRowAlone) {
    const int width = 1000, height = 1000;
    std::vector<Zet32f> image(3 * width * height);
    for (const bool alternating : {false, true}) { // a large mean; terms that cancel
        __extension__ __float128 sum = 0, magnitudes = 0, squares = 0;
        for (size_t i = 0; i < image.size(); ++i) {
            image[i] = (alternating && i / 3 % 2 ? -1 : 1) * (1e6F + static_cast<Zet32f>(i % 7) * 0.3F);
            if (i % 3 != 2) continue;
            sum += image[i], magnitudes += std::fabs(image[i]), squares += __float128(image[i]) * image[i];
        }
        for (const ZetHintAlgorithm hint : {zetAlgHintFast, zetAlgHintAccurate}) {
            const double unit = hint == zetAlgHintFast ? (width / 4.0 + 8) * 0x1p-24 : 1.0 * width * height * 0x1p-53;
            const auto error = [&](const char* family, auto exact, auto all) { // in units of what all terms weigh
                __float128 got = called(family, pixel_layouts[1], image.data(), image.data(), 12 * width, {width, height}, hint).value(2);
                if (family == std::string("Norm_L2")) got *= got;
                return std::fabs(static_cast<double>((got - exact) / all));
            };
            EXPECT_LE(error("Sum", sum, magnitudes), unit) << hint;
            EXPECT_LE(error("Norm_L1", magnitudes, magnitudes), unit) << hint;
            EXPECT_LE(error("Norm_L2", squares, squares), unit + 0x1p-24) << hint;
        }
    }
}

} // namespace
