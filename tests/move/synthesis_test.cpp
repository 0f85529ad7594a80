// SPDX-License-Identifier: Apache-2.0
// ImageRamp, ImageJaehne and the noise: every member against plain loops, the sequence of the generator, and what noise must be like: its mean,
// its deviation, its distribution and a flat spectrum.
#include <xmmintrin.h>

#include <climits>
#include <complex>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/order.h"
#include "tests/support/zetcore_standin.h"

using namespace test;

namespace {

const char* const layouts[] = {"C1", "C3", "C4", "AC4"};
int channels_of(const std::string& layout) { return layout.back() - '0'; }
int colours_of(const std::string& layout) { return layout == "AC4" ? 3 : channels_of(layout); }

// The caller's float state, at odds with the library's: rounding up, denormals flushed, traps unmasked but for inexact results.
class OddState {
public:
    OddState() { _mm_setcsr(0xD040 | 0x1000); }
    ~OddState() {
        EXPECT_EQ(_mm_getcsr() & ~0x3Fu, (0xD040u | 0x1000u) & ~0x3Fu);
        _mm_setcsr(0x1F80);
    }
};

template <class T> T ramp_sample(float v) {
    if constexpr (is_float<T>) return v;
    const double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    if (!(v >= low)) return std::numeric_limits<T>::min();
    if (v >= high - 0.5) return std::numeric_limits<T>::max();
    return static_cast<T>(std::floor(std::fabs(v) < 8388608 ? v + 0.5f : v));
}

TEST(Synthesis, Ramp) {
    Checksum sum;
    const auto of_type = [&](auto t) {
        using T = decltype(t);
        for (const std::string layout : layouts) {
            const std::string name = "zetiImageRamp_" + token<T>() + "_" + layout + "R";
            Random r(name);
            for (int i = 0; i < 120 && !testing::Test::HasFailure(); ++i) {
                const ZetiSize roi = {i < 60 ? i + 1 : r.between(1, 900), r.between(1, 6)};
                const int c = channels_of(layout), axis = r.pick({0, 1, 2, 2, 3, -1, INT_MIN}), gap = r.pick({0, 1, 2, 3, 40});
                Image<T> image(roi.width, roi.height, c, (roi.width * c * int{sizeof(T)} + gap) & ~(int{sizeof(T)} - 1),
                               r.pick({Fence::behind, Fence::before}), r.between(0, 9));
                image.fill(r, r.pattern());
                const float span = std::ldexp(1.0f, int(8 * sizeof(T))),
                            offset = r.chance(8) ? r.edge<float>() : r.pick({0.0f, -0.0f, 0.5f, -2.5f, span / 2, span, -span}),
                            slope = r.chance(8) ? r.edge<float>()
                                                : r.pick({1.0f, -1.0f, 0.5f, 0.37f, -0.0625f, span / 100, -span / 77, 8388607.0f});
                for (int y = 0; axis >= 0 && axis < 3 && y < roi.height; ++y)
                    for (int x = 0; x < roi.width; ++x) {
                        const float product = axis == 0 ? slope * float(x) : axis == 1 ? slope * float(y) : slope * float(x) * float(y);
                        for (int k = 0; k < colours_of(layout); ++k) image.expect(y, x * c + k, ramp_sample<T>(offset + product));
                    }
                standin_reset();
                const int given = image.step + (image.step > 0 ? gap % int{sizeof(T)} : 0); // its low bits do not count
                ZetStatus status;
                {
                    const OddState odd;
                    status = member<ZetStatus(T*, int, ZetiSize, Zet32f, Zet32f, int)>(name)(image.data(), given, roi, offset, slope, axis);
                }
                EXPECT_EQ(status, zetStsNoErr) << name;
                EXPECT_TRUE(image.intact()) << name << ", axis " << axis << ", " << offset << " + " << slope;
                EXPECT_EQ(standin_live_blocks(), 0);
                sum.add(image);
            }
        }
    };
    of_type(Zet8u{}), of_type(Zet8s{}), of_type(Zet16u{}), of_type(Zet16s{}), of_type(Zet32s{}), of_type(Zet32f{});
    EXPECT_TRUE(sum.is_known("ImageRamp"));
}

template <class T> T jaehne_sample(double s) {
    if constexpr (is_float<T>) return static_cast<T>((s + 1) * 0.49999);
    const double scale = sizeof(T) == 1 ? 127.99999 : sizeof(T) == 2 ? 32767.99999 : 2147483647.99999;
    return static_cast<T>(std::is_unsigned_v<T> ? (s + 1) * scale : s * scale);
}

// The sine is the library's own: samples may differ from those of the C library's sine by what 2^-51 makes in them.
TEST(Synthesis, Jaehne) {
    Checksum sum;
    const auto of_type = [&](auto t) {
        using T = decltype(t);
        for (const std::string layout : layouts) {
            const std::string name = "zetiImageJaehne_" + token<T>() + "_" + layout + "R";
            const int c = channels_of(layout);
            Random r(name);
            for (const ZetiSize roi : {ZetiSize{1, 1}, {2, 3}, {7, 7}, {256, 31}, {257, 64}, {513, 5}, {1000, 1}, {300000, 1}, {20, 301}}) {
                if (roi.width > 1000 && c > 1) continue;
                Image<T> image(roi.width, roi.height, c, (roi.width * c + r.between(0, 9)) * int{sizeof(T)},
                               r.pick({Fence::behind, Fence::before}), r.between(0, 9));
                ZetStatus status;
                {
                    const OddState odd;
                    status = member<ZetStatus(T*, int, ZetiSize)>(name)(image.data(), image.step + int{sizeof(T)} - 1, roi);
                }
                ASSERT_EQ(status, zetStsNoErr) << name;
                for (int y = 0; y < roi.height; ++y)
                    for (int x = 0; x < roi.width; ++x) {
                        const double dx = x - (roi.width - 1) * 0.5, dy = y - (roi.height - 1) * 0.5;
                        const double s = std::sin(6.283185307179586 * (dx * dx + dy * dy) / (4.0 * roi.height));
                        const T want = jaehne_sample<T>(s), got = image.at(y, x * c), other = jaehne_sample<T>(s + 0x1p-51),
                                another = jaehne_sample<T>(s - 0x1p-51);
                        ASSERT_TRUE(got == want || got == other || got == another)
                            << name << " at " << x << ", " << y << ": " << text(got) << ", not " << text(want);
                        for (int k = 0; k < colours_of(layout); ++k) image.expect(y, x * c + k, got);
                    }
                EXPECT_TRUE(image.intact()) << name;
                sum.add(image);
            }
        }
    };
    of_type(Zet8u{}), of_type(Zet8s{}), of_type(Zet16u{}), of_type(Zet16s{}), of_type(Zet32s{}), of_type(Zet32f{});
    EXPECT_TRUE(sum.is_known("ImageJaehne"));
    Zet8u centre[9] = {};
    member<ZetStatus(Zet8u*, int, ZetiSize)>("zetiImageJaehne_8u_C1R")(centre, 3, ZetiSize{3, 3});
    EXPECT_EQ(centre[4], 127);
}

// The sequence, in pairs of steps: the multiplier and the constant are those of two congruential steps at once.
struct Sequence {
    Zet32u x0, x1, x2, d = 1131199209;
    bool borrows = true;
    explicit Sequence(Zet32u seed) : x0(seed), x1(seed * 69069u + 1013904243u), x2(x1 * 69069u + 1013904243u) {}
    Zet32s next() {
        std::int32_t t = static_cast<std::int32_t>(x1 - x2 - (borrows ? 1 : 0));
        borrows = t < 0;
        const Zet32u u = static_cast<Zet32u>(t) - (borrows ? 18u : 0u);
        d = d * 69069u + 1013904243u;
        x2 = x1, x1 = x0, x0 = u;
        return static_cast<Zet32s>(u + d);
    }
};

template <class T> T plus(T sample, double noise) {
    if constexpr (is_float<T>) return static_cast<T>(sample + noise);
    else
        return static_cast<T>(
            std::clamp<double>(sample + std::nearbyint(noise), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T> ZetStatus add_noise(bool gauss, const std::string& layout, Image<T>& image, T a, T b, Zet32u* seed) {
    const std::string name = std::string("zetiAddRand") + (gauss ? "Gauss" : "Uniform") + "_Direct_" + token<T>() + "_" + layout + "IR";
    return member<ZetStatus(T*, int, ZetiSize, T, T, Zet32u*)>(name)(image.data(), image.step, ZetiSize{image.width, image.height}, a, b,
                                                                     seed);
}

TEST(Synthesis, NoiseFollowsTheSequence) {
    for (const bool gauss : {false, true}) {
        Checksum sum;
        const auto of_type = [&](auto t) {
            using T = decltype(t);
            for (const std::string layout : layouts) {
                Random r((gauss ? "Gauss" : "Uniform") + token<T>() + layout);
                for (int i = 0; i < 80 && !testing::Test::HasFailure(); ++i) {
                    const int c = channels_of(layout), width = i < 40 ? i + 1 : r.between(1, 500);
                    Image<T> image(r, width, r.between(1, 5), c);
                    if (is_float<T>)
                        for (int y = 0; y < image.height; ++y)
                            for (int k = 0; k < image.row_samples(); ++k) image.set(y, k, static_cast<T>(r.between(-1000, 1000)));
                    T a = is_float<T> ? static_cast<T>(r.between(-99, 99) * 0.37) : r.edge<T>(),
                      b = is_float<T> ? static_cast<T>(r.between(-99, 99) * 0.59) : r.edge<T>();
                    if (r.chance(9)) a = b = 0;
                    Zet32u seed = r.edge<Zet32u>();
                    Sequence sequence(seed);
                    double waiting = 0;
                    bool waits = false;
                    for (int y = 0; y < image.height; ++y)
                        for (int k = 0; k < image.row_samples(); ++k) {
                            if (k % c >= colours_of(layout)) continue;
                            double noise = waiting;
                            if (!gauss)
                                noise = sequence.next() * (double(b) - double(a)) * 2.3283064365387e-10 + (double(a) + double(b)) * 0.5;
                            if (gauss && !waits) {
                                double u, v, s;
                                do u = sequence.next() * 4.656612873077e-10, v = sequence.next() * 4.656612873077e-10, s = u * u + v * v;
                                while (s >= 1 || s == 0);
                                const double factor = std::sqrt(-2 * std::log(s) / s);
                                noise = u * double(b) * factor + double(a), waiting = v * double(b) * factor + double(a);
                            }
                            waits = !waits;
                            image.expect(y, k, plus(image.at(y, k), noise));
                        }
                    ZetStatus status;
                    {
                        const OddState odd;
                        status = add_noise(gauss, layout, image, a, b, &seed);
                    }
                    EXPECT_EQ(status, zetStsNoErr);
                    const auto close = [](T one, T other) {
                        return is_float<T> && std::abs(one - other) <= std::abs(one) * 0x1p-22;
                    }; // of another logarithm
                    EXPECT_TRUE(image.intact(close)) << gauss << " " << layout << " " << token<T>() << " " << text(a) << " " << text(b);
                    EXPECT_EQ(seed, sequence.x0);
                    sum.add(image);
                }
            }
        };
        of_type(Zet8u{}), of_type(Zet16u{}), of_type(Zet16s{}), of_type(Zet32f{});
        EXPECT_TRUE(sum.is_known(gauss ? "AddRandGauss" : "AddRandUniform"));
    }
}

// A million samples: moments, distribution, correlation between neighbours along and across rows, and no line in the spectrum of rows.
TEST(Synthesis, NoiseIsSound) {
    constexpr int n = 1024;
    for (const bool gauss : {false, true})
        for (Zet32u seed : {0u, 1u, 123456789u, ~0u}) {
            Image<Zet32f> image(n, n, 1, n * 4);
            for (int y = 0; y < n; ++y)
                for (int x = 0; x < n; ++x) image.set(y, x, 0);
            ASSERT_EQ(add_noise<Zet32f>(gauss, "C1", image, gauss ? 10 : -8, gauss ? 5 : 24, &seed), zetStsNoErr);
            const double mean = gauss ? 10 : 8, deviation = gauss ? 5 : 32 / std::sqrt(12), count = double(n) * n;
            double moment[5] = {}, along = 0, across = 0, two = 0;
            int bins[32] = {};
            for (int y = 0; y < n; ++y)
                for (int x = 0; x < n; ++x) {
                    const auto z = [&](int yy, int xx) { return (image.at(yy % n, xx % n) - mean) / deviation; };
                    const double v = z(y, x);
                    for (int k = 1; k < 5; ++k) moment[k] += std::pow(v, k) / count;
                    along += v * z(y, x + 1) / count, across += v * z(y + 1, x) / count, two += v * z(y, x + 2) / count;
                    const double share = gauss ? std::erfc(-v / std::sqrt(2)) / 2 : (image.at(y, x) + 8) / 32;
                    ++bins[std::clamp(int(share * 32), 0, 31)];
                }
            const double sigma = 1 / std::sqrt(count); // of a mean
            EXPECT_LT(std::abs(moment[1]), 4 * sigma);
            EXPECT_LT(std::abs(moment[2] - 1), 6 * sigma);
            EXPECT_LT(std::abs(moment[3]), 16 * sigma);
            EXPECT_LT(std::abs(moment[4] - (gauss ? 3 : 1.8)), 40 * sigma);
            for (const double correlation : {along, across, two}) EXPECT_LT(std::abs(correlation), 4.5 * sigma) << gauss << " " << seed;
            double chi = 0;
            for (const int b : bins) chi += (b - count / 32) * (b - count / 32) / (count / 32);
            EXPECT_LT(chi, 70) << gauss; // 31 degrees of freedom
            double power[64] = {};       // of the lowest frequencies of the first 64 columns, mean 1
            for (int row = 0; row < 256; ++row)
                for (int f = 1; f < 64; ++f) {
                    std::complex<double> bin = 0;
                    for (int x = 0; x < 128; ++x) bin += std::polar((image.at(row, x) - mean) / deviation, -2 * M_PI * f * x / 128);
                    power[f] += std::norm(bin) / 128 / 256;
                }
            for (int f = 1; f < 64; ++f) EXPECT_NEAR(power[f], 1, 5.5 / 16) << gauss << ", frequency " << f;
        }
}

TEST(Synthesis, ChecksInTheirOrder) {
    Zet16s image[64] = {};
    Zet32u seed = 7;
    const auto intact = [&] { return std::count(image, image + 64, 0) == 64 && seed == 7; };
    const ZetiSize roi = {4, 4};
    const auto check = [&](const std::string& name, const auto& arguments, const std::vector<ZetStatus>& order) {
        expect_order(name, arguments, order, common_errors(arguments), intact);
    };
    for (const int axis : {0, 1, 2, 3})
        check("zetiImageRamp_16s_C1R", std::tuple(+image, 8, roi, 1.0f, 1.0f, axis), {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr});
    standin_reset(), standin_refuse_all_allocations(1);
    for (const int axis : {0, 1}) {
        EXPECT_EQ(member<ZetStatus(Zet16s*, int, ZetiSize, Zet32f, Zet32f, int)>("zetiImageRamp_16s_C1R")(+image, 8, roi, 0.0f, 0.0f, axis),
                  axis == 0 ? zetStsMemAllocErr : zetStsNoErr);
        EXPECT_EQ(standin_allocations(), 1);
    }
    standin_reset();
    const std::vector<ZetStatus> common = {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr};
    check("zetiImageJaehne_16s_C1R", std::tuple(+image, 8, roi), common);
    check("zetiAddRandUniform_Direct_16s_C1IR", std::tuple(+image, 8, roi, Zet16s{1}, Zet16s{2}, &seed), common);
    check("zetiAddRandGauss_Direct_16s_C1IR", std::tuple(+image, 8, roi, Zet16s{1}, Zet16s{2}, &seed), common);
}

} // namespace
