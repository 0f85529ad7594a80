// SPDX-License-Identifier: Apache-2.0
// Convert and Scale: all 133 members against the reference; every sample of 8 and 16 bits; 32 bits about ties and bounds.
#include "tests/support/faults.h"
#include "tests/support/layouts.h"
#include "tests/support/typed.h"

using namespace test;

namespace {

enum class Form { plain, scaled, rounded, rounded_scaled, in_place, by_hint, by_range };

struct Conversion {
    std::string family;
    Form form;
    Type from, to;
    PixelLayout layout;
    ZetStatus (*call)(const Conversion&, const void*, int, void*, int, ZetiSize);
    int mode = 1, s = 0, hint = 0;
    Zet32f low = 0, high = 255;

    bool has(Form f) const { return form == f; }
    bool scales() const { return has(Form::scaled) || has(Form::rounded_scaled) || has(Form::in_place); }
    bool stepped() const { return family == "Scale" || (from == Type::f32 && bytes_of(to) < 4); } // checks its steps
    bool whole_samples() const { return family != "Scale" && stepped(); }                         // ignores their low bits
    std::string name() const {
        const bool signs = family == "Convert" && has(Form::plain) && to != Type::f32 && lowest(from) < 0 && lowest(to) == 0 &&
                           bytes_of(to) >= bytes_of(from);
        const char* const suffix = signs ? "Rs" : has(Form::in_place) ? "IRSfs" : scales() ? "RSfs" : "R";
        return "zeti" + family + "_" + token(from) + token(to) + "_" + layout.name + suffix;
    }
    void prepare(Random& r) {
        mode = r.pick({0, 1, 2, 3, 7, -1, INT_MAX, INT_MIN}), hint = r.pick({0, 1, 2, 2, 3, -1});
        s = scales() ? r.pick({0, r.between(-9, 9), r.between(-40, 40), r.between(-400, 400), INT_MAX, INT_MIN}) : 0;
        if (!has(Form::by_range)) return;
        low = r.pick({0.0f, -1.0f, -128.0f, 1e-40f, r.sample<Zet32f>(Random::edges, 0)}),
        high = r.pick({1.0f, 255.0f, 2e-40f, 1e38f, r.sample<Zet32f>(Random::edges, 0)});
        if (high < low) std::swap(low, high);
        if (!(high > low)) low = 0, high = 255;
    }
    double expected(double v) const {
        const auto f = static_cast<Zet32f>(v), factor = 255.0f / (high - low), offset = 0.0f - low * factor;
        if (has(Form::by_range)) return to == Type::f32 ? low + f * ((high - low) / 255.0f) : rounded(f * factor + offset, 1);
        if (to == Type::f32) return v;
        if (family == "Scale") return full_scale(static_cast<std::int64_t>(v));
        const double scaled = std::ldexp(v, -std::clamp(s, -500, 500));
        return from == Type::f32 ? rounded(static_cast<Zet32f>(scaled), mode) : rounded(scaled, 1);
    }

private:
    double rounded(double v, int how) const {
        return saturated(to, how == 0 ? std::trunc(v) : how == 1 ? std::nearbyint(v) : std::round(v));
    }
    double full_scale(std::int64_t v) const {
        const bool from16 = bytes_of(from) == 2;
        if (from == Type::u8) return static_cast<double>(v * (bytes_of(to) == 2 ? 0x101 : 0x1010101)) + lowest(to);
        const std::int64_t x = from == Type::u16 ? v - 32768 : v, t = x - (x >> 8);
        if (hint != 2) return static_cast<double>((t >> (from16 ? 8 : 24)) + 128);
        const auto exact = static_cast<double>(x);
        return rounded(from16 ? (exact + 32768) * 255 / 65535 : exact * 5.937181414556033e-08 + 127.5000000296859, 1);
    }
};

template <class S, class D, Form form> ZetStatus call(const Conversion& f, const void* a, int aStep, void* d, int dStep, ZetiSize roi) {
    const auto mode = static_cast<ZetRoundMode>(f.mode);
    const auto with = [&](auto... more) {
        return call_member(f.name(), static_cast<const S*>(a), aStep, static_cast<D*>(d), dStep, roi, more...);
    };
    if constexpr (form == Form::plain) return with();
    else if constexpr (form == Form::scaled) return with(f.s);
    else if constexpr (form == Form::rounded) return with(mode);
    else if constexpr (form == Form::rounded_scaled) return with(mode, f.s);
    else if constexpr (form == Form::by_hint) return with(static_cast<ZetHintAlgorithm>(f.hint));
    else if constexpr (form == Form::by_range) return with(f.low, f.high);
    else return call_member(f.name(), static_cast<D*>(d), dStep, roi, mode, f.s);
}

struct Conversions : std::vector<Conversion> {
    template <Form form, class S, class... D> void add(const char* family, int layouts) {
        for (int l = 0; l < layouts; ++l) (push_back({family, form, type_of<S>, type_of<D>, pixel_layouts[l], call<S, D, form>}), ...);
    }
    Conversions() {
        add<Form::plain, Zet8u, Zet16u, Zet16s, Zet32s, Zet32f>("Convert", 4);
        add<Form::plain, Zet8s, Zet32s, Zet32f>("Convert", 4), add<Form::plain, Zet8s, Zet16u, Zet16s, Zet32u, Zet8u>("Convert", 1);
        add<Form::plain, Zet16u, Zet32s, Zet32f, Zet8u>("Convert", 4), add<Form::plain, Zet16u, Zet32u>("Convert", 1);
        add<Form::plain, Zet16s, Zet32s, Zet32f, Zet8u>("Convert", 4), add<Form::plain, Zet16s, Zet16u, Zet32u>("Convert", 1);
        add<Form::plain, Zet32s, Zet8u, Zet8s>("Convert", 4), add<Form::plain, Zet32s, Zet32f, Zet32u>("Convert", 1);
        add<Form::plain, Zet32u, Zet32f>("Convert", 1), add<Form::scaled, Zet8u, Zet8s>("Convert", 1);
        add<Form::scaled, Zet16u, Zet8s, Zet16s>("Convert", 1), add<Form::scaled, Zet16s, Zet8s>("Convert", 1);
        add<Form::scaled, Zet32u, Zet16s, Zet16u, Zet32s, Zet8s, Zet8u>("Convert", 1);
        add<Form::scaled, Zet32s, Zet16s, Zet16u>("Convert", 1);
        add<Form::rounded, Zet32f, Zet8u, Zet8s, Zet16u, Zet16s>("Convert", 4);
        add<Form::rounded_scaled, Zet32f, Zet8u, Zet8s, Zet16u, Zet16s, Zet32s, Zet32u>("Convert", 1);
        add<Form::in_place, Zet32f, Zet32u>("Convert", 1);
        add<Form::plain, Zet8u, Zet16u, Zet16s, Zet32s>("Scale", 4), add<Form::by_range, Zet8u, Zet32f>("Scale", 4);
        add<Form::by_range, Zet32f, Zet8u>("Scale", 4), add<Form::by_hint, Zet16u, Zet8u>("Scale", 4);
        add<Form::by_hint, Zet16s, Zet8u>("Scale", 4), add<Form::by_hint, Zet32s, Zet8u>("Scale", 4);
    }
};

// A call does with the samples what it ought to. Low bits of steps are set behind the images' backs.
bool verify(const Conversion& f, const Samples& a, Samples& d, int aBits = 0, int dBits = 0, unsigned state = plain_state) {
    if (f.has(Form::in_place))
        for (const auto [y, i] : d.samples()) d.copy(a, y, i);
    const ZetStatus status = under_state(state, [&] {
        return f.call(f, a.data(), a.step + aBits, d.data(), d.step + dBits, {a.width, a.height});
    });
    for (const auto [y, i] : d.samples())
        if (i % f.layout.channels < f.layout.colours) d.want(y, i, f.expected(a.value(y, i)));
    const bool good = d.intact() && a.intact() && status == zetStsNoErr;
    EXPECT_TRUE(good) << f.name() << ", mode " << f.mode << ", scale " << f.s << ", " << f.low << " to " << f.high << " gives " << status
                      << ": " << d.intact().message();
    return good;
}

// One random call. Steps are anything that the member takes; low bits are those that it ignores.
bool check(Conversion& f, Random& r, ZetiSize roi) {
    const int c = f.layout.channels, up = f.stepped() ? 1 : -1;
    const auto unit = [&](Type t) { return f.whole_samples() ? bytes_of(t) : 1; };
    Samples a(r, f.from, roi.width, roi.height, c, {1, up}, unit(f.from)), d(r, f.to, roi.width, roi.height, c, {1, up}, unit(f.to));
    f.prepare(r);
    const Zet32f size = r.pick({1.0f, 9.0f, 300.0f, 70000.0f});
    if (f.from == Type::f32 && r.chance(3)) // about the bounds of integers
        for (const auto [y, i] : a.samples())
            a.put(y, i, std::ldexp(static_cast<Zet32f>(r.between(-2000, 2000)) * 0.0005f * size, std::clamp(f.s, -99, 99)));
    const int aBits = r.between(0, unit(f.from) - 1), dBits = r.between(0, unit(f.to) - 1);
    return verify(f, a, d, aBits, dBits, r.chance(2) ? plain_state : odd_states[r.between(0, 7)]);
}

bool check_widths(Conversion& f) {
    Random r(f.name());
    for (int i = 0; i < 120; ++i) {
        const int width = i < 80 ? 1 + i / 2 : r.pick({47, 64, 65, r.between(1, 40), r.between(41, 600)});
        if (!check(f, r, {width, r.between(1, 4)})) return false;
    }
    // Destinations that are written past the cache, and the sizes at which Scale begins to do so.
    const int c = f.layout.channels, read = bytes_of(f.from), written = bytes_of(f.to);
    const std::string name = f.name().substr(4);
    if (name == "Convert_8u32f_AC4R" || name == "Convert_8u16s_C3R" || name == "Convert_32s8u_C1R" || name == "Convert_32f16u_C1R")
        return check(f, r, {(16 << 20) / 100 / c / written + 1, 100});
    const int samples = read + written == 3 ? 174762 : 104858;
    return f.family != "Scale" || (c != 1 && read == 4) || (check(f, r, {samples / 6 / c - 1, 6}) && check(f, r, {samples / 6 / c + 1, 6}));
}

TEST(Convert, EveryMemberAtEveryWidth) {
    for (Conversion& f : Conversions()) EXPECT_TRUE(check_widths(f)) << f.name();
}

TEST(Convert, OrderOfChecks) {
    for (const Conversion& f : Conversions()) {
        Random r(f.name());
        const Samples a(r, f.from, 3, 2, f.layout.channels), d(r, f.to, 3, 2, f.layout.channels);
        const auto list = [&](Faults& faults, const Arguments& call) {
            if (f.has(Form::by_range)) faults.add(zetStsScaleRangeErr, call.back().as<Zet32f>(), {0.0f, -0.0f, -1.0f, NAN, -INFINITY});
            faults.null(call).size(call);
            if (f.stepped()) faults.step(call);
        };
        check_order([&] { f.call(f, a.data(), a.step, d.data(), d.step, {3, 2}); }, list, [&] { return d.intact(); });
    }
}

// All samples of 8 and 16 bits; integers of 32 bits at random, most of them multiples of powers of two and their neighbours; floats about halves
// and whole numbers near 0 and the bounds of the other types, and what is no number.
std::vector<double> telling_samples(Type t) {
    std::vector<double> samples;
    Random r(token(t));
    if (bytes_of(t) < 4) {
        for (double v = lowest(t); v <= highest(t); ++v) samples.push_back(v);
    } else if (t != Type::f32) {
        for (int i = 0; i < 10000; ++i) samples.push_back(random_sample(r, t, Random::edges, i));
    } else {
        for (const double bound : {0.0, 0x1p7, 0x1p8, 0x1p15, 0x1p16, 0x1p23, 0x1p24, 0x1p31, 0x1p32, 0x1p33})
            for (int halves = -600; halves <= 600; ++halves) {
                const auto near = static_cast<Zet32f>(r.pick({bound, -bound}) + halves * 0.5);
                for (const Zet32f to : {-INFINITY, near, INFINITY}) samples.push_back(std::nextafter(near, to));
            }
        for (const Zet32f v : {-0.0f, INFINITY, -INFINITY, NAN, -NAN, 1e-45f, -1e-45f, 1e-38f, 3e38f, -3e38f}) samples.push_back(v);
    }
    return samples;
}

void check_samples(const Conversion& f, const std::vector<double>& samples) {
    const int n = static_cast<int>(samples.size());
    Samples a(f.from, n, 1, 1, n * bytes_of(f.from)), d(f.to, n, 1, 1, n * bytes_of(f.to));
    for (int i = 0; i < n; ++i) a.put(0, i, samples[i]);
    ASSERT_TRUE(verify(f, a, d));
}

TEST(Convert, EverySampleOf16BitsAndTiesOf32) {
    for (Conversion& f : Conversions()) {
        if (f.layout.channels > 1) continue;
        const std::vector<double> samples = telling_samples(f.from);
        std::vector<int> scales = {0};
        if (f.scales() && f.from == Type::f32)
            scales = {-400, -253, -252, -150, -127, -30, -8, -1, 0, 1, 3, 20, 126, 127, 128, 160, 253, 400};
        else if (f.scales())
            for (int s = bytes_of(f.from) * 8 + 2; s > 0; --s) scales.push_back(s), scales.push_back(-s);
        for (f.hint = 1; f.hint <= (f.has(Form::by_hint) ? 2 : 1); ++f.hint)
            for (const int mode : {1, 0, 2, -1, 7})
                for (const int s : scales) {
                    if (mode != 1 && (f.from != Type::f32 || f.has(Form::by_range))) continue;
                    f.s = s, f.mode = mode, check_samples(f, samples);
                    if (s == 0 || f.from != Type::f32) continue;
                    std::vector<double> scaled = samples; // about ties when it is scaled back
                    for (double& v : scaled) v = static_cast<Zet32f>(std::ldexp(v, s));
                    check_samples(f, scaled);
                }
    }
}

// --- Bits ---------------------------------------------------------------------------------------------------------

ZetStatus bits_to_bytes(const Zet8u* src, int srcStep, int offset, Zet8u* dst, int dstStep, ZetiSize roi) {
    return call_member("zetiConvert_1u8u_C1R", src, srcStep, offset, dst, dstStep, roi);
}

// The source holds the bytes of the wanted bits and no others; a fault lies behind them, or before.
TEST(Bits, EveryWidthAndOffset) {
    Random r("bits");
    for (int width = 1; width <= 70; ++width)
        for (int offset = 0; offset <= 33; ++offset) {
            const int bytes = (offset + width + 7) / 8 - offset / 8, height = r.between(1, 3), gaps = r.chance(2) ? 0 : 9;
            Image<Zet8u> src{bytes, height, 1, bytes + r.between(0, gaps), r.pick({Fence::behind, Fence::before})};
            Image<Zet8u> dst{width, height, 1, width + r.between(0, gaps), r.pick({Fence::behind, Fence::before}), r.between(0, 15)};
            src.fill(r, r.pick({Random::uniforms, Random::highest})), dst.fill(r, Random::uniforms);
            for (const auto [y, x] : dst.samples()) {
                const int bit = offset % 8 + x;
                dst.expect(y, x, src.at(y, bit / 8) >> (7 - bit % 8) & 1 ? 255 : 0);
            }
            // An address only: it may lie outside the image. NOLINTNEXTLINE(performance-no-int-to-ptr)
            const Zet8u* const base = reinterpret_cast<const Zet8u*>(reinterpret_cast<std::uintptr_t>(src.data()) - offset / 8);
            ASSERT_EQ(bits_to_bytes(base, src.step, offset, dst.data(), dst.step, {width, height}), zetStsNoErr);
            ASSERT_TRUE(dst.intact() && src.intact()) << "offset " << offset;
        }
}

// A negative offset has the status of a bad size, and comes last.
TEST(Bits, OrderOfChecks) {
    const Image<Zet8u> src(4, 2, 1, 4), dst(20, 2, 1, 20);
    const auto list = [](Faults& faults, const Arguments& call) {
        faults.null(call).size(call).step(call).add(zetStsSizeErr, call[2].as<int>(), {-1, -8, INT_MIN});
    };
    check_order([&] { bits_to_bytes(src.data(), src.step, 3, dst.data(), dst.step, {20, 2}); }, list, [&] { return dst.intact(); });
}

} // namespace
