// SPDX-License-Identifier: Apache-2.0
// Convert and Scale: all 133 members against the reference; every sample of 8 and 16 bits; floats about ties and bounds.
#include <climits>
#include <map>

#include "tests/arith/pixelwise.h"
#include "tests/support/scaling.h"

using namespace test;

namespace {

enum class Form { plain, scaled, rounded, rounded_scaled, in_place, by_hint, by_range };

template <class D> D saturated(double v) { // NaN is the least
    using limits = std::numeric_limits<D>;
    return v >= limits::max() ? limits::max() : v > limits::min() ? static_cast<D>(v) : limits::min();
}
template <class D> D rounded(Zet32f v, int mode) {
    const double x = v;
    return saturated<D>(mode == 0 ? std::trunc(x) : mode == 1 ? std::nearbyint(x) : std::round(x));
}

template <class S, class D> struct Conversion {
    using source = S;
    using destination = D;
    std::string family;
    Form form;
    PixelLayout layout;
    int mode = 1, s = 0, hint = 0;
    Zet32f low = 0, high = 255;

    bool has(Form f) const { return form == f; }
    bool stepped() const { return family == "Scale" || (is_float<S> && sizeof(D) < 4); } // checks its steps
    bool whole_samples() const { return family != "Scale" && stepped(); }                // ignores their low bits
    std::string name() const {
        const bool signs = family == "Convert" && has(Form::plain) && !is_float<D> && std::is_signed_v<S> && std::is_unsigned_v<D> &&
                           sizeof(D) >= sizeof(S);
        const char* const suffix = signs                                            ? "Rs"
                                   : has(Form::in_place)                            ? "IRSfs"
                                   : has(Form::scaled) || has(Form::rounded_scaled) ? "RSfs"
                                                                                    : "R";
        return "zeti" + family + "_" + token<S>() + token<D>() + "_" + layout.name + suffix;
    }
    std::string parameters() const {
        return "mode " + std::to_string(mode) + ", scale " + std::to_string(s) + ", range " + text(low) + " to " + text(high);
    }

    void prepare(Random& r) {
        mode = r.pick({0, 1, 2, 3, 7, -1, INT_MAX, INT_MIN}), hint = r.pick({0, 1, 2, 2, 3, -1});
        s = !has(Form::scaled) && !has(Form::rounded_scaled) && !has(Form::in_place)
                ? 0
                : r.pick({0, r.between(-9, 9), r.between(-40, 40), r.between(-400, 400), INT_MAX, INT_MIN});
        if (!has(Form::by_range)) return;
        low = r.pick({0.0f, -1.0f, -128.0f, 1e-40f, r.sample<Zet32f>(Random::edges, 0)}),
        high = r.pick({1.0f, 255.0f, 2e-40f, 1e38f, r.sample<Zet32f>(Random::edges, 0)});
        if (high < low) std::swap(low, high);
        if (!(high > low)) low = 0, high = 255;
    }
    D expected(S v) const {
        if constexpr (is_float<D>) return has(Form::by_range) ? low + v * ((high - low) / 255.0f) : static_cast<D>(static_cast<double>(v));
        else if constexpr (is_float<S>)
            return has(Form::by_range)
                       ? in_range(v)
                       : rounded<D>(static_cast<Zet32f>(std::ldexp(static_cast<double>(v), -std::clamp(s, -500, 500))), mode);
        else return family == "Scale" ? full_scale(v) : scaled<D>(v, s);
    }
    template <class Use> auto call(const S* a, int aStep, D* d, int dStep, ZetiSize roi, Use use) const {
        const auto m = static_cast<ZetRoundMode>(mode);
        switch (form) {
        case Form::plain: return use(a, aStep, d, dStep, roi);
        case Form::scaled: return use(a, aStep, d, dStep, roi, s);
        case Form::rounded: return use(a, aStep, d, dStep, roi, m);
        case Form::rounded_scaled: return use(a, aStep, d, dStep, roi, m, s);
        case Form::in_place: return use(d, dStep, roi, m, s);
        case Form::by_hint: return use(a, aStep, d, dStep, roi, static_cast<ZetHintAlgorithm>(hint));
        default: return use(a, aStep, d, dStep, roi, low, high);
        }
    }
    ZetStatus run(const S* a, int aStep, D* d, int dStep, ZetiSize roi) const {
        return call(a, aStep, d, dStep, roi,
                    [&](auto... arguments) { return member<ZetStatus(decltype(arguments)...)>(name())(arguments...); });
    }

private:
    D in_range(Zet32f v) const {
        const Zet32f factor = 255.0f / (high - low), offset = 0.0f - low * factor;
        return rounded<D>(v * factor + offset, 1);
    }
    D full_scale(std::int64_t v) const {
        if (sizeof(S) == 1)
            return static_cast<D>((sizeof(D) == 2 ? v * 0x101 : v * 0x1010101) ^
                                  (std::is_signed_v<D> ? std::int64_t{1} << (8 * sizeof(D) - 1) : 0));
        const std::int64_t x = std::is_signed_v<S> ? v : v - 32768, t = x - (x >> 8);
        if (hint != 2) return static_cast<D>((t >> (sizeof(S) == 2 ? 8 : 24)) + 128);
        return saturated<D>(std::nearbyint(sizeof(S) == 2 ? static_cast<double>(x + 32768) * 255 / 65535
                                                          : static_cast<double>(v) * 5.937181414556033e-08 + 127.5000000296859));
    }
};

template <class Use> void each_member(Use use) {
    const auto members = [&]<class S, class... D>(const char* family, Form form, bool layouts, S, D...) {
        for (const PixelLayout& l : pixel_layouts)
            if (layouts || l.channels == 1) (use(Conversion<S, D>{family, form, l}), ...);
    };
    const Zet8u u8{};
    const Zet8s s8{};
    const Zet16u u16{};
    const Zet16s s16{};
    const Zet32u u32{};
    const Zet32s s32{};
    const Zet32f f32{};
    const char* const convert = "Convert";
    const char* const scale = "Scale";
    members(convert, Form::plain, true, u8, s16, u16, s32, f32), members(convert, Form::plain, true, s8, s32, f32);
    members(convert, Form::plain, true, s16, s32, f32, u8), members(convert, Form::plain, true, u16, s32, f32, u8),
        members(convert, Form::plain, true, s32, u8, s8);
    members(convert, Form::plain, false, s8, s16, u16, u32, u8), members(convert, Form::plain, false, s16, u16, u32);
    members(convert, Form::plain, false, u16, u32), members(convert, Form::plain, false, s32, f32, u32),
        members(convert, Form::plain, false, u32, f32);
    members(convert, Form::scaled, false, s16, s8), members(convert, Form::scaled, false, u16, s8, s16),
        members(convert, Form::scaled, false, u8, s8);
    members(convert, Form::scaled, false, s32, s16, u16), members(convert, Form::scaled, false, u32, s16, u16, s32, s8, u8);
    members(convert, Form::rounded, true, f32, u8, s8, u16, s16),
        members(convert, Form::rounded_scaled, false, f32, u8, s8, u16, s16, s32, u32);
    members(convert, Form::in_place, false, f32, u32);
    members(scale, Form::plain, true, u8, u16, s16, s32), members(scale, Form::by_range, true, u8, f32),
        members(scale, Form::by_range, true, f32, u8);
    members(scale, Form::by_hint, true, u16, u8), members(scale, Form::by_hint, true, s16, u8),
        members(scale, Form::by_hint, true, s32, u8);
}

// One random call. Steps are anything that the member takes; low bits that it ignores are set behind the image's back.
template <class F> bool check(F& f, Random& r, ZetiSize roi, bool contiguous, unsigned state = 0x1F80, Checksum* sum = nullptr) {
    using S = typename F::source;
    using D = typename F::destination;
    const int c = f.layout.channels;
    const auto step = [&]<class T>(T) {
        const int row = roi.width * c * int{sizeof(T)}, gap = r.pick({0, 1, r.between(0, 70)}) * (f.whole_samples() ? int{sizeof(T)} : 1);
        return contiguous ? row : (row + gap) * (f.stepped() ? 1 : r.pick({1, -1, f.has(Form::in_place) ? 1 : 0}));
    };
    const int aStep = step(S{}), dStep = f.has(Form::in_place) ? aStep : step(D{});
    const auto image = [&](int imageStep) {
        return std::tuple{roi.width, roi.height, c, imageStep, r.pick({Fence::behind, Fence::before}), r.pick({0, r.between(0, 15)})};
    };
    Image<S> a = std::make_from_tuple<Image<S>>(image(aStep));
    Image<D> d = std::make_from_tuple<Image<D>>(image(dStep));
    f.prepare(r);
    const auto pattern = r.pattern();
    const Zet32f size = r.pick({1.0f, 9.0f, 300.0f, 70000.0f});
    for (int y = 0; y < roi.height; ++y)
        for (int i = 0; i < a.row_samples(); ++i) {
            S v = r.sample<S>(pattern, i);
            if constexpr (is_float<S>)
                if (pattern == Random::mixed || pattern == Random::uniforms)
                    v = std::ldexp(static_cast<Zet32f>(r.between(-2000, 2000)) * 0.0005f * size, std::clamp(f.s, -99, 99));
            a.set(y, i, v), d.set(y, i, r.uniform<D>());
        }
    if constexpr (sizeof(S) == sizeof(D))
        for (int y = 0; f.has(Form::in_place) && y < roi.height; ++y)
            for (int i = 0; i < a.row_samples(); ++i) {
                const S v = a.at(y, i);
                d.set(y, i, load<D>(&v));
            }
    for (int y = 0; y < roi.height; ++y)
        for (int i = 0; i < d.row_samples(); ++i)
            if (i % c < f.layout.colours) d.expect(y, i, f.expected(a.at(y, i)));
    const int aPassed = aStep + (f.whole_samples() ? r.between(0, sizeof(S) - 1) : 0),
              dPassed = dStep + (f.whole_samples() ? r.between(0, sizeof(D) - 1) : 0);
    _mm_setcsr(state);
    const ZetStatus status = f.run(a.data(), aPassed, d.data(), dPassed, roi);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(0x1F80);
    if (sum) sum->add(d);
    const testing::AssertionResult good = d.intact();
    EXPECT_TRUE(good && status == zetStsNoErr) << f.name() << " gives " << status << ", " << f.parameters() << ", float state " << std::hex
                                               << state;
    EXPECT_TRUE(a.intact()) << f.name() << " writes to its source";
    EXPECT_EQ(after, state) << f.name() << " changes the float state";
    return good && status == zetStsNoErr && after == state;
}

TEST(Convert, EveryMemberAtEveryWidth) {
    std::map<std::string, Checksum> sums;
    each_member([&](auto f) {
        Random r(f.name());
        for (int i = 0; i < 120; ++i) {
            const int width = i < 80 ? 1 + i / 2 : r.pick({47, 64, 65, r.between(1, 40), r.between(41, 600)}), height = r.between(1, 4);
            if (!check(f, r, {width, height}, r.chance(3), 0x1F80, &sums[f.family])) return;
        }
        for (const unsigned state : {0x3F80U, 0x5F80U, 0x7F80U, 0x9FC0U, 0xFFC0U, 0x1D00U}) // rounding, flush and denormals to zero, traps
            for (int i = 0; i < 4; ++i)
                if (!check(f, r, {r.between(1, 70), 2}, false, state)) return;
    });
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
}

// Destinations that are written past the cache, and the sizes at which Scale begins to do so.
TEST(Convert, LargeDestinations) {
    each_member([](auto f) {
        Random r(f.name());
        const int c = f.layout.channels, read = sizeof(typename decltype(f)::source), written = sizeof(typename decltype(f)::destination);
        const std::string name = f.name().substr(4);
        if (name == "Convert_8u32f_AC4R" || name == "Convert_8u16s_C3R" || name == "Convert_32s8u_C1R" || name == "Convert_32f16u_C1R")
            check(f, r, {(16 << 20) / 100 / c / written + 1, 100}, r.chance(2));
        if (f.family != "Scale" || (c != 1 && read == 4)) return;
        for (const int more : {-1, 0, 8})
            if (!check(f, r, {(read + written == 3 ? 174762 : 104858) / 6 / c + more, 6}, r.chance(2))) return;
    });
}

TEST(Convert, OrderOfChecks) {
    each_member([](auto f) {
        Random r(f.name());
        Image<typename decltype(f)::source> a(r, 3, 2, f.layout.channels);
        Image<typename decltype(f)::destination> d(r, 3, 2, f.layout.channels);
        f.call(a.data(), a.step, d.data(), d.step, {3, 2}, [&](auto... arguments) {
            using Arguments = std::tuple<decltype(arguments)...>;
            constexpr std::size_t last = sizeof...(arguments) - 1;
            std::vector<Error<Arguments>> errors;
            for (auto& e : common_errors(Arguments(arguments...)))
                if (e.status != zetStsStepErr || f.stepped()) errors.push_back(e);
            if constexpr (std::is_same_v<std::tuple_element_t<last, Arguments>, Zet32f>)
                for (const Zet32f bad : {0.0f, -0.0f, -1.0f, NAN, -INFINITY})
                    errors.push_back({zetStsScaleRangeErr, [=](Arguments& x) { std::get<last - 1>(x) = 0, std::get<last>(x) = bad; }});
            expect_order(f.name(), Arguments(arguments...), {zetStsScaleRangeErr, zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr}, errors,
                         [&] { return d.intact(); });
            return zetStsNoErr;
        });
    });
}

// One row of the given samples.
template <class F> void check_samples(const F& f, const std::vector<typename F::source>& samples) {
    using D = typename F::destination;
    std::vector<typename F::source> src = samples;
    std::vector<D> dst(samples.size());
    if constexpr (sizeof(D) == sizeof samples[0])
        if (f.has(Form::in_place)) std::memcpy(dst.data(), samples.data(), samples.size() * sizeof(D));
    const int n = static_cast<int>(samples.size());
    ASSERT_EQ(f.run(src.data(), n * int{sizeof src[0]}, dst.data(), n * int{sizeof(D)}, {n, 1}), zetStsNoErr) << f.name();
    for (int i = 0; i < n; ++i)
        ASSERT_TRUE(same(dst[i], f.expected(samples[i])))
            << f.name() << " of " << text(samples[i]) << " gives " << text(dst[i]) << ", " << f.parameters();
}

TEST(Convert, EverySampleOf8And16Bits) {
    each_member([](auto f) {
        using S = typename decltype(f)::source;
        if constexpr (sizeof(S) <= 2) {
            if (f.layout.channels > 1) return;
            std::vector<S> all(1 << 8 * sizeof(S));
            for (size_t i = 0; i < all.size(); ++i) all[i] = static_cast<S>(i);
            for (f.hint = 1; f.hint <= (f.has(Form::by_hint) ? 2 : 1); ++f.hint)
                for (f.s = f.has(Form::scaled) ? -18 : 0; f.s <= (f.has(Form::scaled) ? 18 : 0); ++f.s) check_samples(f, all);
        }
    });
}

// Halves, whole numbers and bounds with their neighbours; what is no number.
TEST(Convert, FloatsAboutTiesAndBounds) {
    std::vector<Zet32f> about;
    const auto add = [&](double v) {
        Zet32f x = static_cast<Zet32f>(v);
        for (int k = 0; k < 2; ++k) x = std::nextafter(x, -INFINITY);
        for (int k = 0; k < 5; ++k, x = std::nextafter(x, INFINITY)) about.push_back(x);
    };
    for (int k = -70000; k <= 70000;
         k += std::abs(k) < 300 || std::abs(std::abs(k) - 32768) < 9 || std::abs(std::abs(k) - 65535) < 9 ? 1 : 83)
        add(k), add(k + 0.5);
    for (int power = 20; power <= 34; ++power)
        for (const double v : {0.0, 0.5, 1.0, 1.5, 2.5})
            add(std::ldexp(1.0, power) + v), add(std::ldexp(1.0, power) - v), add(-std::ldexp(1.0, power) - v),
                add(v - std::ldexp(1.0, power));
    for (const Zet32f v : {0.0f, -0.0f, INFINITY, -INFINITY, NAN, -NAN, 1e-45f, -1e-45f, 1e-38f, 3e38f, -3e38f}) about.push_back(v);
    each_member([&](auto f) {
        if constexpr (is_float<typename decltype(f)::source>) {
            if (f.layout.channels > 1 || f.has(Form::by_range)) return;
            for (f.mode = -1; f.mode <= 7; ++f.mode) {
                if (f.mode > 2 && f.mode < 7) continue;
                f.s = 0, check_samples(f, about);
                for (const int s : {-400, -253, -252, -150, -127, -30, -8, -1, 1, 3, 20, 126, 127, 128, 160, 253, 400}) {
                    if (f.has(Form::rounded)) break;
                    std::vector<Zet32f> scaled = about;
                    for (Zet32f& v : scaled) v = std::ldexp(v, s); // is about ties when it is scaled back
                    f.s = s, check_samples(f, about), check_samples(f, scaled);
                }
            }
        }
    });
}

TEST(Convert, IntegersOf32BitsAboutTiesAndBounds) {
    each_member([](auto f) {
        using S = typename decltype(f)::source;
        if constexpr (sizeof(S) == 4 && !is_float<S>) {
            if (f.layout.channels > 1) return;
            std::vector<S> about;
            for (const std::int64_t base :
                 {0LL, 1LL << 31, 1LL << 16, 1LL << 15, 1LL << 8, 1LL << 7, 3LL << 24, 1LL << 25, 0x55555555LL, 0x01010101LL})
                for (const std::int64_t near : {base, -base})
                    for (int k = -20; k <= 20; ++k)
                        about.push_back(static_cast<S>(near + k)), about.push_back(static_cast<S>((near + k) << 9)),
                            about.push_back(static_cast<S>((near + k) * 128));
            for (f.hint = 1; f.hint <= 2; ++f.hint)
                for (f.s = f.has(Form::scaled) ? -34 : 0; f.s <= (f.has(Form::scaled) ? 34 : 0); ++f.s) check_samples(f, about);
        }
    });
}

// The results and refusals that callers were told of.
TEST(Convert, ByHand) {
    const auto to8u = [](Zet32f v, int mode) {
        Zet8u got = 77;
        EXPECT_EQ(member<ZetStatus(const Zet32f*, int, Zet8u*, int, ZetiSize, ZetRoundMode)>("zetiConvert_32f8u_C1R")(
                      &v, 4, &got, 1, ZetiSize{1, 1}, ZetRoundMode(mode)),
                  zetStsNoErr);
        return int{got};
    };
    EXPECT_EQ(to8u(0.5f, 1), 0);
    EXPECT_EQ(to8u(1.5f, 1), 2);
    EXPECT_EQ(to8u(-0.7f, 1), 0);
    EXPECT_EQ(to8u(255.6f, 1), 255);
    EXPECT_EQ(to8u(1.9f, 0), 1);
    EXPECT_EQ(to8u(0.5f, 2), 1);
    EXPECT_EQ(to8u(2.5f, 2), 3);
    EXPECT_EQ(to8u(2.5f, 7), 3);
    EXPECT_EQ(to8u(std::nextafter(0.5f, 0.0f), 2), 0);
    EXPECT_EQ(to8u(NAN, 2), 0);
    const Zet8u bytes[3] = {0, 128, 255};
    Zet16s words[3];
    EXPECT_EQ(member<ZetStatus(const Zet8u*, int, Zet16s*, int, ZetiSize)>("zetiScale_8u16s_C1R")(bytes, 3, words, 6, ZetiSize{3, 1}),
              zetStsNoErr);
    EXPECT_EQ(words[0], -32768);
    EXPECT_EQ(words[1], 128);
    EXPECT_EQ(words[2], 32767);
    EXPECT_EQ(member<ZetStatus(const Zet32f*, int, Zet8u*, int, ZetiSize, Zet32f, Zet32f)>("zetiScale_32f8u_C1R")(
                  nullptr, 0, nullptr, 0, ZetiSize{0, 0}, 1.0f, 1.0f),
              zetStsScaleRangeErr);
}

// --- Bits ---------------------------------------------------------------------------------------------------------

const auto bits_to_bytes = [](const Zet8u* src, int srcStep, int offset, Zet8u* dst, int dstStep, ZetiSize roi) {
    return member<ZetStatus(const Zet8u*, int, int, Zet8u*, int, ZetiSize)>("zetiConvert_1u8u_C1R")(src, srcStep, offset, dst, dstStep,
                                                                                                    roi);
};

// The source holds the bytes of the wanted bits and no others; a fault lies behind them, or before.
TEST(Bits, EveryWidthAndOffset) {
    Random r("bits");
    Checksum sum;
    for (int width = 1; width <= 70; ++width)
        for (int offset = 0; offset <= 33; ++offset) {
            const int bytes = (offset + width + 7) / 8 - offset / 8, height = r.between(1, 3);
            const bool contiguous = r.chance(2);
            Image<Zet8u> src{bytes, height, 1, bytes + (contiguous ? 0 : r.between(0, 9)), r.pick({Fence::behind, Fence::before})};
            Image<Zet8u> dst{width,           height, 1, width + (contiguous ? 0 : r.between(0, 9)), r.pick({Fence::behind, Fence::before}),
                             r.between(0, 15)};
            src.fill(r, r.pick({Random::uniforms, Random::highest})), dst.fill(r, Random::uniforms);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int bit = offset % 8 + x;
                    dst.expect(y, x, src.at(y, bit / 8) >> (7 - bit % 8) & 1 ? 255 : 0);
                }
            const Zet8u* const base = reinterpret_cast<const Zet8u*>(reinterpret_cast<std::uintptr_t>(src.data()) - offset / 8);
            ASSERT_EQ(bits_to_bytes(base, src.step, offset, dst.data(), dst.step, {width, height}), zetStsNoErr);
            ASSERT_TRUE(dst.intact() && src.intact()) << "offset " << offset;
            sum.add(dst);
        }
    EXPECT_TRUE(sum.is_known("Bits"));
}

// A negative offset has the status of a bad size, and comes last.
TEST(Bits, OrderOfChecks) {
    Random r("order");
    Image<Zet8u> src(r, 4, 2, 1), dst(r, 20, 2, 1);
    const std::tuple call(static_cast<const Zet8u*>(src.data()), src.step, 3, dst.data(), dst.step, ZetiSize{20, 2});
    expect_order("zetiConvert_1u8u_C1R", call, {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr}, common_errors(call),
                 [&] { return dst.intact(); });
    for (const int bad : {-1, -8, INT_MIN}) {
        EXPECT_EQ(bits_to_bytes(src.data(), src.step, bad, dst.data(), dst.step, {20, 2}), zetStsSizeErr);
        EXPECT_EQ(bits_to_bytes(src.data(), 0, bad, dst.data(), dst.step, {20, 2}), zetStsStepErr);
        EXPECT_EQ(bits_to_bytes(src.data(), src.step, bad, nullptr, dst.step, {20, 2}), zetStsNullPtrErr);
    }
    EXPECT_TRUE(dst.intact());
}

} // namespace
