// SPDX-License-Identifier: Apache-2.0
// Norm, NormDiff, NormRel.
#include <regex>

#include "tests/stats/reduction.h"

using namespace test;

namespace {

const char* const norms[] = {"Inf", "L1", "L2"};
constexpr Zet64f mark = -12345;

// Samples of 32f are small integers here: every path computes with them exactly.
template <class T> void fill(Image<T>& image, Random& r) {
    const auto pattern = r.pattern();
    for (int y = 0; y < image.height; ++y)
        for (int i = 0; i < image.row_samples(); ++i)
            image.set(y, i, is_float<T> ? static_cast<T>(r.between(-60, 60)) : r.sample<T>(pattern, i));
}

// The norm of one channel, or of a difference, before any root.
template <class T> Zet64f plain_norm(const std::string& norm, const Image<T>& a, const Image<T>* b, int channel) {
    std::uint64_t sum = 0, largest = 0;
    for (int y = 0; y < a.height; ++y)
        for (int i = channel; i < a.row_samples(); i += a.channels) {
            const Zet64s d = static_cast<Zet64s>(a.at(y, i)) - (b ? static_cast<Zet64s>(b->at(y, i)) : 0);
            const std::uint64_t v = static_cast<std::uint64_t>(d < 0 ? -d : d);
            largest = std::max(largest, v), sum += norm == "L2" ? v * v : v;
        }
    return static_cast<Zet64f>(norm == "Inf" ? largest : sum);
}

// What becomes of numerators and denominators, by name and hint.
struct Quotient {
    bool ofRoots, leavesZeros, squaresAtZero;
    Quotient(const std::string& name, ZetHintAlgorithm hint) {
        const auto is = [&](const char* pattern) { return std::regex_match(name, std::regex(std::string("zetiNormRel_") + pattern)); };
        leavesZeros = is("Inf_16[us]_(C3|C4|AC4)R");
        squaresAtZero = is("L2_16u_(C3|C4|AC4)R");
        ofRoots = is("L2_(8u|16s)_(C3|C4|AC4)R") || is("L2_32f_C3R") || (is("L2_32f_A?C4R") && hint == zetAlgHintAccurate);
    }
};

template <class Use> void each_norm(Use use) {
    each_layout([&](auto type, const PixelLayout& l) {
        for (const char* const kind : {"Norm_", "NormDiff_", "NormRel_"})
            for (const char* const norm : norms) {
                const Reduction<decltype(type)> f{std::string(kind) + norm, l};
                for (const ZetHintAlgorithm hint : f.hints()) use(f, std::string(norm), hint);
            }
    });
    use(Reduction<Zet32s>{"Norm_Inf", pixel_layouts[0]}, "Inf", zetAlgHintNone);
}

// `zeros`: the second image is zero on its last colour channel.
template <class T>
void check(const Reduction<T>& f, const std::string& norm, ZetHintAlgorithm hint, Random& r, int width, int height, bool zeros) {
    const int channels = f.layout.channels, colours = f.layout.colours;
    Image<T> a(r, width, height, channels), b(r, width, height, channels);
    fill(a, r), fill(b, r);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            if (zeros) b.set(y, x * channels + colours - 1, 0);
            else if (x + y == 0) // never zero by accident
                for (int c = 0; c < colours; ++c) b.set(0, c, T{3});
        }
    const Quotient quotient(f.name(), hint);
    const bool rel = f.family.find("NormRel") == 0, square = norm == "L2";
    const auto root = [](Zet64f v) { return std::sqrt(v); };
    Zet64f expected[5] = {mark, mark, mark, mark, mark}, values[5] = {mark, mark, mark, mark, mark};
    for (int c = 0; c < colours; ++c) {
        const Zet64f above = plain_norm(norm, a, f.two() ? &b : nullptr, c), below = plain_norm<T>(norm, b, nullptr, c);
        if (!rel) expected[c] = square ? root(above) : above;
        else if (zeros) expected[c] = quotient.leavesZeros ? mark : square && !quotient.squaresAtZero ? root(above) : above;
        else expected[c] = !square ? above / below : quotient.ofRoots ? root(above) / root(below) : root(above / below);
    }
    if (std::is_same_v<T, Zet16s> && f.name() == "zetiNorm_Inf_16s_C1R" && width >= 8 && expected[0] == 32768) expected[0] = 32767;
    const int asked = standin_thread_queries();
    _mm_setcsr(0x7F80);
    const ZetStatus status = f(a.data(), a.step, b.data(), b.step, {width, height}, values, hint);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(0x1F80);
    EXPECT_EQ(after, 0x7F80U) << f.name();
    EXPECT_EQ(status, rel && zeros ? zetStsDivByZero : zetStsNoErr) << f.name();
    EXPECT_EQ(standin_thread_queries(), asked) << f.name();
    EXPECT_TRUE(a.intact() && b.intact()) << f.name();
    for (int c = 0; c < 5; ++c)
        ASSERT_EQ(values[c], expected[c]) << f.name() << " channel " << c << ", " << width << " x " << height << ", hint " << hint
                                          << (zeros ? ", zeros" : "");
}

TEST(Norms, EveryMemberAtEveryWidth) {
    each_norm([](const auto& f, const std::string& norm, ZetHintAlgorithm hint) {
        Random r(f.name());
        for (int width = 1; width <= 40; ++width) check(f, norm, hint, r, width, r.between(1, 3), false);
        for (const int width : {47, 64, 65, 200, 257, 1000})
            check(f, norm, hint, r, width, 2, false), check(f, norm, hint, r, width / 9, 2, true);
    });
}

TEST(Norms, ChecksInTheirOrder) {
    each_norm([](const auto& f, const std::string& norm, ZetHintAlgorithm hint) {
        using T = typename std::decay_t<decltype(f)>::type;
        const T samples[16] = {};
        Zet64f values[4] = {mark, mark, mark, mark};
        const bool sum16u = f.family == "Norm_L1" && std::is_same_v<T, Zet16u>;
        const std::vector<ZetStatus> order = sum16u                      ? std::vector{zetStsStepErr, zetStsNullPtrErr, zetStsSizeErr}
                                             : std::is_same_v<T, Zet16u> ? std::vector{zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr}
                                                                         : std::vector{zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr};
        (void)norm;
        f.with(samples, 16, samples, 16, {2, 2}, values, hint, [&](auto... arguments) {
            const std::tuple call(arguments...);
            expect_order(f.name(), call, order, common_errors(call), [&] { return std::count(values, values + 4, mark) == 4; });
        });
    });
}

// --- Wide images ---------------------------------------------------------------------------------------------------------

template <class T>
Zet64f of_rows(const std::string& family, const PixelLayout& l, const std::vector<T>& a, const std::vector<T>& b, int width,
               int height = 1) {
    Zet64f values[4] = {};
    EXPECT_EQ((Reduction<T>{family, l}(a.data(), int{sizeof(T)}, b.data(), int{sizeof(T)}, {width, height}, values)), zetStsNoErr);
    return values[l.colours - 1];
}

// From 32769 pixels on the roots of strips are squared and added: the result is not the root of the whole.
TEST(WideNorms, StripsOf8uAreRootedTwice) {
    Random r("strips");
    for (const PixelLayout& l : pixel_layouts) {
        int differences = 0;
        for (const int width : {32767, 32768, 32769, 32776, 65536, 65537, 100000})
            for (int times = 0; times < 4; ++times) {
                const size_t n = static_cast<size_t>(width) * l.channels;
                std::vector<Zet8u> a(n + 1), b(n + 1);
                for (size_t i = 0; i <= n; ++i) a[i] = r.uniform<Zet8u>(), b[i] = r.uniform<Zet8u>();
                for (const bool diff : {false, true}) {
                    const int height = times % 2 + 1;
                    Zet64f strips = 0, whole = 0;
                    for (int x = 0; x < width; x += 32768) {
                        Zet64f squares = 0;
                        for (int y = 0; y < height; ++y) // rows one sample apart
                            for (int k = x; k < std::min(width, x + 32768); ++k) {
                                const size_t i = static_cast<size_t>(k) * l.channels + l.colours - 1 + y;
                                const int d = a[i] - (diff ? b[i] : 0);
                                squares += d * d;
                            }
                        whole += squares, strips += std::sqrt(squares) * std::sqrt(squares);
                    }
                    const Zet64f got = of_rows<Zet8u>(diff ? "NormDiff_L2" : "Norm_L2", l, a, b, width, height);
                    EXPECT_EQ(got, width > 32768 ? std::sqrt(strips) : std::sqrt(whole)) << l.name << ' ' << width;
                    differences += got != std::sqrt(whole);
                    if (!diff) continue;
                    const Zet64f norm = of_rows<Zet8u>("Norm_L2", l, b, b, width, height),
                                 rel = of_rows<Zet8u>("NormRel_L2", l, a, b, width, height);
                    EXPECT_EQ(rel, l.channels > 1 ? got / norm : std::sqrt(whole / std::round(norm * norm))) << l.name << ' ' << width;
                }
            }
        EXPECT_GT(differences, 0) << l.name;
    }
}

// The sum of a block of 65536 differences has 32 bits and a sign; the denominators of NormRel have no such blocks.
TEST(WideNorms, BlocksOf16uDifferencesWrap) {
    for (const PixelLayout& l : pixel_layouts)
        for (const int width : {32768, 32769, 65536, 65537, 98305, 131073}) {
            const std::vector<Zet16u> a(static_cast<size_t>(width) * l.channels, 0), b(a.size(), 65535);
            Zet64f expected = 0;
            for (int x = 0; x < width; x += 65536) {
                const Zet64f block = 65535.0 * std::min(65536, width - x);
                expected += block < 0x1p31 ? block : block - 0x1p32;
            }
            EXPECT_EQ(of_rows("NormDiff_L1", l, a, b, width), expected) << l.name << ' ' << width;
            EXPECT_EQ(of_rows("NormRel_L1", l, a, b, width), expected / (65535.0 * width)) << l.name << ' ' << width;
            EXPECT_EQ(of_rows("Norm_L1", l, b, b, width), 65535.0 * width) << l.name << ' ' << width;
        }
}

// Integers of more than 53 bits are rounded once, whether or not bit 63 is a part of them.
TEST(WideNorms, SumsAreRoundedOnce) {
    const auto check = []<class T>(const PixelLayout& l, int width, int height, T sample) {
        const std::vector<T> a(static_cast<size_t>(width) * l.channels + static_cast<size_t>(height), sample),
            zeros(a.size(), 0); // rows one sample apart
        const std::uint64_t squares =
            static_cast<std::uint64_t>(Zet64s{sample} * sample) * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
        EXPECT_EQ(of_rows("Norm_L2", l, a, a, width, height), std::sqrt(static_cast<Zet64f>(squares))) << token<T>() << l.name;
        if (height > 1) return;
        EXPECT_EQ(of_rows("NormDiff_L2", l, zeros, a, width, height), std::sqrt(static_cast<Zet64f>(squares))) << token<T>() << l.name;
    };
    for (const PixelLayout& l : pixel_layouts) check(l, 3000001, 1, Zet16u{65535}), check(l, 9000001, 1, Zet16s{-32767});
    check(pixel_layouts[0], 65537, 32770, Zet16u{65535}); // 2^63 and more
}

// Bytes of several channels: 8421504 pixels and one more row.
TEST(WideNorms, RegionsOfMillionsOfPixels) {
    for (const PixelLayout& l : pixel_layouts)
        for (const int height : {128, 129}) {
            const std::vector<Zet8u> a(65793 * l.channels + 200, 255), b(a.size(), 0);
            const Zet64f pixels = 65793.0 * height;
            EXPECT_EQ(of_rows("Norm_L1", l, a, b, 65793, height), 255 * pixels) << l.name;
            EXPECT_EQ(of_rows("NormDiff_L1", l, b, a, 65793, height), 255 * pixels) << l.name;
            EXPECT_EQ(of_rows("Norm_L2", l, a, b, 32768, height), std::sqrt(65025.0 * 32768 * height)) << l.name;
        }
}

// --- Norm_Inf ------------------------------------------------------------------------------------------------------------

// C1 stops after the row with an extreme, from a width of 8 on: the rows below lie behind a fence.
TEST(NormInf, LeastOf16s) {
    for (const int width : {7, 8, 9, 100}) {
        for (const Zet16s extreme : {Zet16s{-32768}, Zet16s{32767}, Zet16s{-32767}}) {
            Image<Zet16s> image(width, 1, 1, width * 2);
            for (int x = 0; x < width; ++x) image.set(0, x, 5);
            image.set(0, width - 1, extreme);
            const bool stops = width >= 8 && extreme != -32767;
            Zet64f value = mark;
            EXPECT_EQ(
                (Reduction<Zet16s>{"Norm_Inf", pixel_layouts[0]}(image.data(), image.step, nullptr, 0, {width, stops ? 3 : 1}, &value)),
                zetStsNoErr);
            EXPECT_EQ(value, extreme == -32768 && !stops ? 32768 : 32767) << width << ' ' << extreme;
        }
    }
    const std::vector<Zet16s> lowest(64, -32768), highest(64, 32767);
    EXPECT_EQ(of_rows("Norm_Inf", pixel_layouts[1], lowest, lowest, 16), 32768);
    EXPECT_EQ(of_rows("NormDiff_Inf", pixel_layouts[0], lowest, highest, 16), 65535);
    EXPECT_EQ(of_rows("NormRel_Inf", pixel_layouts[0], highest, lowest, 16), 65535.0 / 32768);
}

TEST(NormInf, FloatsPassNaNs) {
    const Zet32f samples[8] = {NAN, -3, NAN, 2, NAN, -NAN, 0, NAN}, infinite[8] = {1, -INFINITY, NAN, 0, 0, 0, 0, 0},
                 nothing[8] = {NAN, NAN, NAN, NAN, NAN, NAN, NAN, NAN};
    Zet64f value = mark;
    const Reduction<Zet32f> f{"Norm_Inf", pixel_layouts[0]};
    for (const auto& [row, norm] : {std::pair{samples, 3.0}, {infinite, std::numeric_limits<double>::infinity()}, {nothing, 0.0}}) {
        f(row, 32, nullptr, 0, {8, 1}, &value);
        EXPECT_EQ(value, norm);
    }
    const Zet32f tiny = 1e-42F; // denormals count, whatever the caller's float state
    _mm_setcsr(0x9FC0);
    f(&tiny, 4, nullptr, 0, {1, 1}, &value);
    _mm_setcsr(0x1F80);
    EXPECT_EQ(value, static_cast<Zet64f>(1e-42F));
}

// Single precision loses the squares of small samples; with the hint they count.
TEST(NormRel, SmallFloats) {
    for (const PixelLayout& l : pixel_layouts) {
        const std::vector<Zet32f> a(64, 3e-30F), b(64, 1e-30F);
        const Reduction<Zet32f> f{"NormRel_L2", l};
        Zet64f values[4];
        EXPECT_EQ(f(a.data(), 64, b.data(), 64, {5, 1}, values, zetAlgHintFast), zetStsDivByZero) << l.name;
        EXPECT_EQ(values[0], 0) << l.name;
        EXPECT_EQ(f(a.data(), 64, b.data(), 64, {5, 1}, values, zetAlgHintAccurate), zetStsNoErr) << l.name;
        EXPECT_NEAR(values[0], 2, 1e-6) << l.name;
    }
}

} // namespace
