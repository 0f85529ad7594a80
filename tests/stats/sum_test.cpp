// SPDX-License-Identifier: Apache-2.0
// Sum and Mean, and what all sums of 32f have in common.
#include "tests/stats/reduction.h"

using namespace test;

namespace {

constexpr Zet64f mark = -12345;

// The results of a call on rows of random samples, and the status that it must have.
template <class T> struct Called {
    Zet64f values[5] = {mark, mark, mark, mark, mark};
    ZetStatus status;
    Called(const Reduction<T>& f, const T* p, int step, ZetiSize roi, ZetHintAlgorithm hint = zetAlgHintNone)
        : status(f(p, step, p, step, roi, values, hint)) {
        EXPECT_EQ(status, zetStsNoErr) << f.name();
        for (int c = f.layout.colours; c < 5; ++c) EXPECT_EQ(values[c], mark) << f.name();
    }
};

// A region of many rows that are all the same one.
template <class T> Zet64f of_one_row(const std::string& family, const PixelLayout& l, int width, int height, T sample) {
    const std::vector<T> row(static_cast<size_t>(width) * l.channels, sample);
    const Called<T> call({family, l}, row.data(), 0, {width, height});
    for (int c = 1; c < l.colours; ++c) EXPECT_EQ(call.values[c], call.values[0]);
    return call.values[0];
}

// --- Sums of integers --------------------------------------------------------------------------------------------------

// On both sides of every length at which lanes are emptied; extremes fill them.
TEST(Sum, IntegersAreSummedExactly) {
    each_layout([](auto type, const PixelLayout& l) {
        using T = decltype(type);
        if constexpr (!is_float<T>) {
            Random r("Sum" + token<T>() + l.name);
            for (const int width : {255, 256, 257, 511, 513, 1023, 1025, 32767, 32768, 32769, 65535, 65536, 65537, 70001}) {
                Image<T> image(r, width, 2, l.channels, {1, -1, 0});
                const auto pattern = r.pick({Random::lowest, Random::highest, Random::mixed, Random::uniforms});
                image.fill(r, pattern);
                Zet64s sums[4] = {};
                for (int y = 0; y < 2; ++y)
                    for (int i = 0; i < image.row_samples(); ++i) sums[i % l.channels] += image.at(y, i);
                const Called<T> sum({"Sum", l}, image.data(), image.step, {width, 2}),
                    mean({"Mean", l}, image.data(), image.step, {width, 2});
                for (int c = 0; c < l.colours; ++c) {
                    const Zet64f pixels = 2.0 * width, s = static_cast<Zet64f>(sums[c]);
                    EXPECT_EQ(sum.values[c], s) << token<T>() << l.name << ' ' << width;
                    EXPECT_EQ(mean.values[c], l.channels == 1 ? s / pixels : s * (1.0 / pixels)) << token<T>() << l.name << ' ' << width;
                }
            }
        }
    });
}

// 8421504 is the largest number of pixels whose bytes are summed in 32 bits.
TEST(Sum, RegionsOfMillionsOfPixels) {
    for (const PixelLayout& l : pixel_layouts) {
        EXPECT_EQ(of_one_row<Zet8u>("Sum", l, 65793, 128, 255), 8421504 * 255.0);
        EXPECT_EQ(of_one_row<Zet8u>("Sum", l, 65793, 129, 255), 8487297 * 255.0);
        EXPECT_EQ(of_one_row<Zet16s>("Sum", l, 40000, 600, -32768), 24e6 * -32768);
        EXPECT_EQ(of_one_row<Zet16u>("Sum", l, 40000, 600, 65535), 24e6 * 65535);
    }
}

// The number of pixels has 32 bits: 2^31 is negative for Mean, and 2^32 is 0, for which the sums of bytes are kept in 32 bits.
TEST(Sum, RegionsOfBillionsOfPixels) {
    EXPECT_EQ(of_one_row<Zet8u>("Mean", pixel_layouts[0], 65536, 32768, 3), -3);
    EXPECT_EQ(of_one_row<Zet8u>("Sum", pixel_layouts[0], 65536, 65536, 255), 0x1p32 * 255);
    EXPECT_EQ(of_one_row<Zet8u>("Sum", pixel_layouts[1], 65537, 65536, 255), -65536.0 * 0 + 65536.0 * 255); // 2^16 pixels and 2^32 more
}

TEST(Mean, OfOneChannelDividesAndOfSeveralMultiplies) {
    int differences = 0;
    for (int width = 1; width < 60; ++width) {
        const std::vector<Zet8u> row(static_cast<size_t>(width) * 4, 7);
        std::vector<Zet8u> first = row;
        std::fill_n(first.begin(), 4, Zet8u{8});
        const Called<Zet8u> c1({"Mean", pixel_layouts[0]}, first.data(), 0, {width, 1}),
            ac4({"Mean", pixel_layouts[3]}, first.data(), 0, {width, 1});
        const Zet64f sum = width < 4 ? 8.0 * width : 7.0 * width + 4;
        EXPECT_EQ(c1.values[0], sum / width);
        EXPECT_EQ(ac4.values[2], (7.0 * width + 1) * (1.0 / width));
        differences += (7.0 * width + 1) / width != ac4.values[2];
    }
    EXPECT_GT(differences, 0);
}

// --- Sums of floats -----------------------------------------------------------------------------------------------------

const char* const float_sums[] = {"Sum", "Mean", "Norm_L1", "Norm_L2", "NormDiff_L1", "NormDiff_L2", "NormRel_L1", "NormRel_L2"};

// Where a row lies has no part in a result, the caller's float state neither, and only one hint is accurate. Checksums tell any change in
// the order of the sums.
TEST(FloatSums, DependOnNothingButTheSamples) {
    for (const char* const family : float_sums) {
        Checksum sum;
        for (const PixelLayout& l : pixel_layouts) {
            const Reduction<Zet32f> f{family, l};
            Random r(f.name());
            for (int width = 1; width <= 2100;
                 width += width < 90 ? r.between(1, 3) : 1000) { // from 2048 samples on, a row is read in two places
                const int n = width * l.channels, step = (n + 8) * 4;
                std::vector<Zet32f> samples(static_cast<size_t>(n) * 4);
                for (Zet32f& s : samples) s = std::ldexp(static_cast<Zet32f>(r.between(-9999999, 9999999)), r.between(-30, 0));
                Zet64f known[2][5] = {};
                for (int offset = 0; offset < 16; ++offset) {
                    std::vector<char> memory(static_cast<size_t>(step) * 4 + 64);
                    char* const at = memory.data() + offset;
                    for (int y = 0; y < 4; ++y)
                        std::memcpy(at + y * step, &samples[static_cast<size_t>(y) * n], static_cast<size_t>(n) * 4);
                    const auto* const p = reinterpret_cast<const Zet32f*>(at);
                    for (const ZetHintAlgorithm hint : {zetAlgHintNone, zetAlgHintAccurate, zetAlgHintFast, ZetHintAlgorithm(-1),
                                                        ZetHintAlgorithm(3), ZetHintAlgorithm(INT_MIN)}) {
                        Zet64f values[5] = {mark, mark, mark, mark, mark}, (&same_hint)[5] = known[hint == zetAlgHintAccurate];
                        const unsigned state = offset == 0 ? 0x1F80 : 0xFFC0;
                        _mm_setcsr(state);
                        const ZetStatus status = f(p, step, reinterpret_cast<const Zet32f*>(at + 2 * step), step, {width, 2}, values, hint);
                        const unsigned after = _mm_getcsr();
                        _mm_setcsr(0x1F80);
                        ASSERT_EQ(status, zetStsNoErr);
                        ASSERT_EQ(after, state);
                        if (offset == 0 && hint <= zetAlgHintAccurate && hint >= 0) {
                            if (hint != zetAlgHintFast) std::copy_n(values, 5, same_hint);
                            for (const Zet64f v : values) sum.add(v);
                        }
                        ASSERT_TRUE(std::equal(values, values + 5, same_hint)) << f.name() << " at offset " << offset << ", hint " << hint;
                    }
                }
            }
        }
        EXPECT_TRUE(sum.is_known(family));
    }
}

// With u = 2^-24 and at least four lanes for a channel, a row of n samples passes through at most n / 4 + 8 additions in single precision:
// its sum is off by at most that many times u times the sum of its magnitudes. Rows are added in double precision, and however many they
// are, the relative error stays. The accurate path stays within as many units of 2^-53 as there are samples.
TEST(FloatSums, ErrorsGrowWithTheRowAlone) {
    const auto check = [](const char* what, int width, int height, auto sample) {
        for (const PixelLayout& l : pixel_layouts) {
            const int n = width * l.channels;
            std::vector<Zet32f> image(static_cast<size_t>(n) * height);
            __extension__ typedef __float128 Exact;
            Exact sums[4] = {}, magnitudes[4] = {}, squares[4] = {};
            for (size_t i = 0; i < image.size(); ++i) {
                const int c = static_cast<int>(i % l.channels);
                image[i] = sample(static_cast<int>(i) / l.channels + c);
                sums[c] += image[i], magnitudes[c] += std::fabs(image[i]), squares[c] += Exact(image[i]) * image[i];
            }
            for (const ZetHintAlgorithm hint : {zetAlgHintFast, zetAlgHintAccurate}) {
                const double unit = hint == zetAlgHintFast ? (width / 4 + 8) * 0x1p-24 : 1.0 * width * height * 0x1p-53;
                const auto value = [&](const char* family, int c) {
                    return Called<Zet32f>({family, l}, image.data(), n * 4, {width, height}, hint).values[c];
                };
                const int c = l.colours - 1;
                const double square = value("Norm_L2", c);
                EXPECT_LE(std::fabs(static_cast<double>(value("Sum", c) - sums[c])), unit * static_cast<double>(magnitudes[c]))
                    << what << ' ' << l.name << hint;
                EXPECT_LE(std::fabs(static_cast<double>(value("Norm_L1", c) - magnitudes[c])), unit * static_cast<double>(magnitudes[c]))
                    << what << ' ' << l.name << hint;
                EXPECT_LE(std::fabs(static_cast<double>(Exact(square) * square - squares[c])),
                          (unit + 0x1p-24) * static_cast<double>(squares[c]))
                    << what << ' ' << l.name << hint;
            }
        }
    };
    check("a large mean", 1000, 1000, [](int i) { return 1e6F + static_cast<Zet32f>(i % 7) * 0.3F; });
    check("alternating signs", 4096, 64, [](int i) { return (i % 2 ? 1 : -1) * (1e5F + static_cast<Zet32f>(i % 11)); });
    check("one wide row", 1 << 18, 1, [](int i) { return static_cast<Zet32f>(i % 1001) * 0.001F; });

    // Single precision shows: 1 is lost beside 2^30 in every lane of the row, but not in the next one.
    std::vector<Zet32f> row(3 * 256, 1);
    std::fill_n(row.begin(), 256, 0x1p30F), std::fill_n(row.begin() + 384, 256, 0x1p30F);
    const Reduction<Zet32f> f{"Sum", pixel_layouts[0]};
    EXPECT_EQ(Called<Zet32f>(f, row.data(), 0, {768, 1}, zetAlgHintFast).values[0], 0x1p39);
    EXPECT_EQ(Called<Zet32f>(f, row.data(), 0, {768, 1}, zetAlgHintAccurate).values[0], 0x1p39 + 256);
    EXPECT_EQ(Called<Zet32f>(f, row.data(), 4, {768, 1}, zetAlgHintFast).values[0], 0x1p39);
    std::fill_n(row.begin(), 768, 1);
    row[0] = 0x1p30F;
    EXPECT_EQ(Called<Zet32f>(f, row.data(), 4, {1, 768}, zetAlgHintFast).values[0], 0x1p30 + 767);
}

// --- Checks --------------------------------------------------------------------------------------------------------------

TEST(SumAndMean, ChecksInTheirOrder) {
    each_layout([](auto type, const PixelLayout& l) {
        using T = decltype(type);
        for (const char* const family : {"Sum", "Mean"}) {
            const Reduction<T> f{family, l};
            const T samples[16] = {};
            Zet64f values[4] = {mark, mark, mark, mark};
            f.with(samples, 16, samples, 16, {2, 2}, values, zetAlgHintNone, [&](auto... arguments) {
                const std::tuple call(arguments...);
                auto errors = common_errors(call);
                std::erase_if(errors, [](const auto& e) { return e.status == zetStsStepErr; });
                expect_order(f.name(), call, {zetStsNullPtrErr, zetStsSizeErr}, errors,
                             [&] { return std::count(values, values + 4, mark) == 4; });
            });
            Zet64f twice[5]; // any step will do, 0 counts the row again
            for (const int step : {0, 1, -1}) EXPECT_EQ(f(samples + 8, step, nullptr, 0, {1, 2}, twice), zetStsNoErr) << f.name();
        }
    });
}

} // namespace
