// SPDX-License-Identifier: Apache-2.0
// ImageRamp, ImageJaehne and the noise: every member against plain loops, and the sequence of the generator.
#include <complex>

#include "tests/support/checksum.h"
#include "tests/support/faults.h"
#include "tests/support/layouts.h"
#include "tests/support/typed.h"
#include "tests/support/zetcore_standin.h"

using namespace test;

namespace {

// A member of a family, and its parameters.
struct Member {
    std::string family;
    Type type;
    PixelLayout layout;
    Zet32f offset = 1, slope = 1;
    int axis = 0;
    double a = 1, b = 2;
    Zet32u* seed = nullptr;

    std::string name() const { return "zeti" + family + "_" + token(type) + "_" + layout.name + (family[0] == 'A' ? "IR" : "R"); }
    ZetStatus run(void* to, int step, ZetiSize roi) const {
        return with_type(type, [&]<class T>(T) {
            const auto call = [&](auto... more) { return call_member(name(), static_cast<T*>(to), step, roi, more...); };
            if (family == "ImageRamp") return call(offset, slope, axis);
            return family == "ImageJaehne" ? call() : call(static_cast<T>(a), static_cast<T>(b), seed);
        });
    }
    // The result is sample(y, x, what was there, what is there) on all colours. The float state is at odds with the library's: rounding up,
    // denormals flushed, traps unmasked but for inexact results. Low bits of steps do not count.
    template <class Sample> void check(Samples& image, int lowBits, Checksum& sum, Sample sample) const {
        const auto call = [&] { return run(image.data(), image.step + lowBits, {image.width, image.height}); };
        EXPECT_EQ(under_state(0xD040, call, 0x3F), zetStsNoErr) << name();
        const int c = layout.channels;
        for (const auto [y, k] : image.samples())
            if (k % c < layout.colours) image.want(y, k, sample(y, k / c, image.wanted(y, k), image.value(y, k)));
        ASSERT_TRUE(image.intact()) << name() << ", " << offset << ", " << slope << ", axis " << axis << ", " << a << ", " << b;
        EXPECT_EQ(standin.live_blocks, 0);
        for (const auto [y, k] : image.samples()) sum.add(image.value(y, k));
    }
};

// Gives the checksum of all results.
template <class Use> std::uint64_t each_member(const std::string& family, std::initializer_list<Type> types, Use use) {
    Checksum sum;
    for (const Type t : types)
        for (const PixelLayout& l : pixel_layouts) use(Member{family, t, l}, sum);
    return sum.value;
}
const std::initializer_list<Type> images = {Type::u8, Type::s8, Type::u16, Type::s16, Type::s32, Type::f32};
const std::initializer_list<Type> noisy = {Type::u8, Type::u16, Type::s16, Type::f32};

double ramp_sample(Type t, float v) { return t == Type::f32 ? v : saturated(t, std::floor(std::fabs(v) < 8388608 ? v + 0.5f : v)); }

// An axis that is none does nothing.
TEST(Synthesis, Ramp) {
    each_member("ImageRamp", images, [](Member m, Checksum& sum) {
        Random r(m.name());
        const int c = m.layout.channels, size = bytes_of(m.type);
        const float span = std::ldexp(1.0f, 8 * size);
        for (int i = 0; i < 120; ++i) {
            const int width = i < 60 ? i + 1 : r.between(1, 900), height = r.between(1, 6);
            Samples image(r, m.type, width, height, c, {1}, size);
            m.axis = r.pick({0, 1, 2, 2, 3, -1, INT_MIN});
            m.offset = r.chance(8) ? r.edge<float>() : r.pick({0.0f, -0.0f, 0.5f, -2.5f, span / 2, span, -span});
            m.slope = r.chance(8) ? r.edge<float>() : r.pick({1.0f, -1.0f, 0.5f, 0.37f, -0.0625f, span / 100, -span / 77, 8388607.0f});
            const float slope = m.slope;
            m.check(image, r.between(0, size - 1), sum, [&](int y, int x, double was, double) {
                const float fx = static_cast<float>(x), fy = static_cast<float>(y), products[] = {slope * fx, slope * fy, slope * fx * fy};
                if (m.axis < 0 || m.axis > 2) return was;
                return ramp_sample(m.type, m.offset + products[m.axis]);
            });
        }
    });
}

double jaehne_sample(Type t, double s) {
    if (t == Type::f32) return static_cast<Zet32f>((s + 1) * 0.49999);
    const double scale = std::ldexp(1.0, 8 * bytes_of(t) - 1) - 1 + 0.99999;
    return std::trunc(lowest(t) == 0 ? (s + 1) * scale : s * scale);
}

// The sine is the library's own: samples may differ from those of the C library's sine by what 2^-51 makes in them.
TEST(Synthesis, Jaehne) {
    const auto sum = each_member("ImageJaehne", images, [](const Member& m, Checksum& sum) {
        const int c = m.layout.channels;
        Random r(m.name());
        for (const ZetiSize roi : {ZetiSize{1, 1}, {2, 3}, {7, 7}, {256, 31}, {257, 64}, {513, 5}, {1000, 1}, {300000, 1}, {20, 301}}) {
            if (roi.width > 1000 && c > 1) continue;
            Samples image(r, m.type, roi.width, roi.height, c, {1}, bytes_of(m.type));
            m.check(image, bytes_of(m.type) - 1, sum, [&](int y, int x, double, double got) {
                const double dx = x - (roi.width - 1) * 0.5, dy = y - (roi.height - 1) * 0.5;
                const double s = std::sin(6.283185307179586 * (dx * dx + dy * dy) / (4.0 * roi.height));
                const bool close = got == jaehne_sample(m.type, s + 0x1p-51) || got == jaehne_sample(m.type, s - 0x1p-51);
                return close ? got : jaehne_sample(m.type, s);
            });
        }
    });
    EXPECT_EQ(sum, 0x71E41489A93C3CE6);
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

struct Noise : Sequence {
    const Member& m;
    double waiting = 0; // the second of a pair
    bool waits = false;
    double next() {
        if (m.family.find("Gauss") == std::string::npos) return Sequence::next() * (m.b - m.a) * 2.3283064365387e-10 + (m.a + m.b) * 0.5;
        waits = !waits;
        if (!waits) return waiting;
        double u, v, s;
        do u = Sequence::next() * 4.656612873077e-10, v = Sequence::next() * 4.656612873077e-10, s = u * u + v * v;
        while (s >= 1 || s == 0);
        const double factor = std::sqrt(-2 * std::log(s) / s);
        waiting = v * m.b * factor + m.a;
        return u * m.b * factor + m.a;
    }
};

TEST(Synthesis, NoiseFollowsTheSequence) {
    for (const bool gauss : {false, true}) {
        const auto sum = each_member(gauss ? "AddRandGauss_Direct" : "AddRandUniform_Direct", noisy, [=](Member m, Checksum& sum) {
            Random r(m.name());
            const bool floats = m.type == Type::f32;
            for (int i = 0; i < 80; ++i) {
                Samples image(r, m.type, i < 40 ? i + 1 : r.between(1, 500), r.between(1, 5), m.layout.channels);
                for (const auto [y, k] : image.samples())
                    if (floats) image.put(y, k, r.between(-1000, 1000));
                for (double* parameter : {&m.a, &m.b})
                    *parameter = floats ? static_cast<Zet32f>(r.between(-99, 99) * 0.37) : random_sample(r, m.type, Random::edges, 0);
                if (r.chance(9)) m.a = m.b = 0;
                Zet32u seed = r.edge<Zet32u>();
                Noise noise{Sequence(seed), m};
                m.seed = &seed;
                m.check(image, 0, sum, [&](int, int, double sample, double got) {
                    const double value = noise.next(), v = floats ? sample + value : saturated(m.type, sample + std::nearbyint(value));
                    return floats && std::abs(got - v) <= std::abs(got) * 0x1p-22 ? got : v; // of another logarithm
                });
                ASSERT_EQ(seed, noise.x0) << m.name();
            }
        });
        EXPECT_EQ(sum, gauss ? 0x442B0D87039A23D4 : 0xF27021782B881FD7);
    }
}

// Of a million samples: mean, deviation, shares of 32 equally likely intervals, and the lowest frequencies of the rows.
TEST(Synthesis, NoiseIsSound) {
    constexpr int n = 1024, frequencies = 64;
    for (const bool gauss : {false, true})
        for (Zet32u seed : {0u, 123456789u, ~0u}) {
            std::vector<Zet32f> image(size_t(n) * n);
            const Member add = {gauss ? "AddRandGauss_Direct" : "AddRandUniform_Direct",
                                Type::f32,
                                pixel_layouts[0],
                                0,
                                0,
                                0,
                                gauss ? 10.0 : -8.0,
                                gauss ? 5.0 : 24.0,
                                &seed};
            ASSERT_EQ(add.run(image.data(), n * 4, {n, n}), zetStsNoErr);
            double sum = 0, squares = 0, chi = 0, power[frequencies] = {};
            int bins[32] = {};
            for (Zet32f& v : image) {
                v = gauss ? (v - 10) / 5 : (v - 8) / static_cast<Zet32f>(32 / std::sqrt(12));
                sum += v, squares += v * v;
                ++bins[std::clamp(static_cast<int>((gauss ? std::erfc(-v / std::sqrt(2)) / 2 : v / std::sqrt(12) + 0.5) * 32), 0, 31)];
            }
            for (const int b : bins) chi += std::pow(b - n * n / 32.0, 2) / (n * n / 32.0);
            for (int row = 0; row < 256; ++row)
                for (int f = 1; f < frequencies; ++f) {
                    std::complex<double> bin = 0;
                    for (int x = 0; x < 128; ++x) bin += std::polar<double>(1, -2 * M_PI * f * x / 128) * double{image[row * n + x]};
                    power[f] += std::norm(bin) / 128 / 256;
                }
            EXPECT_LT(std::abs(sum), 4 * n);
            EXPECT_LT(std::abs(squares - n * n), 6 * n);
            EXPECT_LT(chi, 70); // 31 degrees of freedom
            for (int f = 1; f < frequencies; ++f) EXPECT_NEAR(power[f], 1, 5.5 / 16) << gauss << ", frequency " << f;
        }
}

// A ramp looks at the step before the size. Along x it needs a row of memory.
TEST(Synthesis, ChecksInTheirOrder) {
    Zet32f image[64] = {};
    Zet32u seed = 7;
    const auto intact = [&] { return std::count(image, image + 64, 0) == 64 && seed == 7; };
    for (const char* const family : {"ImageRamp", "ImageJaehne", "AddRandUniform_Direct", "AddRandGauss_Direct"})
        each_member(family, noisy, [&](Member m, Checksum&) {
            const bool ramp = m.family == "ImageRamp";
            for (m.axis = 0, m.seed = &seed; m.axis < 4; ++m.axis) {
                const auto run = [&] { return m.run(image, 32, {2, 4}); };
                const auto list = [&](Faults& faults, const Arguments& call) {
                    faults.null(call);
                    ramp ? faults.step(call).size(call) : faults.size(call).step(call);
                };
                check_order(run, list, intact);
                standin.reset(), standin.refused_allocation = 1;
                EXPECT_TRUE(!ramp || m.axis != 0 || (run() == zetStsMemAllocErr && intact() && standin.allocations == 1)) << m.name();
                standin.reset();
            }
        });
}

} // namespace
