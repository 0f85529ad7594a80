// SPDX-License-Identifier: Apache-2.0
// Threshold and its siblings; the threshold of Otsu.
#include "tests/arith/pixelwise.h"

using namespace test;

namespace {

enum class Form { by_operator, GT, LT, Val, GTVal, LTVal, LTValGTVal };
constexpr const char* form_names[] = {"", "_GT", "_LT", "_Val", "_GTVal", "_LTVal", "_LTValGTVal"};

template <class T> struct Thresholding {
    using type = T;
    Form form;
    ZetCmpOp op; // of the forms that are given one
    PixelLayout layout;
    bool inPlace;
    T low[4], lowValue[4], high[4], highValue[4];

    std::string name() const {
        return std::string("zetiThreshold") + form_names[static_cast<int>(form)] + "_" + token<T>() + "_" + layout.name +
               (inPlace ? "IR" : "R");
    }
    std::string parameters() const { return text(low[0]) + ", " + text(lowValue[0]) + ", " + text(high[0]) + ", " + text(highValue[0]); }
    bool has_operator() const { return form == Form::by_operator || form == Form::Val; }

    void prepare(Random& r) {
        const bool equal = r.chance(3);
        for (int c = 0; c < 4; ++c) {
            for (T* v : {&low[c], &lowValue[c], &high[c], &highValue[c]}) *v = r.sample<T>(Random::mixed, c);
            if (high[c] < low[c]) std::swap(low[c], high[c]);
            if (equal) high[c] = low[c];
        }
    }
    T expected(T, T v, int c) const {
        const bool below = v<low[c], above = v> low[c]; // the forms with one bound have it in `low`
        switch (form) {
        case Form::by_operator: return (op == zetCmpLess ? below : above) ? low[c] : v;
        case Form::GT: return above ? low[c] : v;
        case Form::LT: return below ? low[c] : v;
        case Form::Val: return (op == zetCmpLess ? below : above) ? lowValue[c] : v;
        case Form::GTVal: return above ? lowValue[c] : v;
        case Form::LTVal: return below ? lowValue[c] : v;
        default: return below ? lowValue[c] : v > high[c] ? highValue[c] : v;
        }
    }
    template <class Use> void call(const Images<T>& i, Use use) const {
        const auto images = [&](auto... parameters) {
            inPlace ? use(i.d, i.dStep, i.roi, parameters...) : use(i.b, i.bStep, i.d, i.dStep, i.roi, parameters...);
        };
        const auto with = [&](auto t, auto v, auto t2, auto v2) {
            switch (form) {
            case Form::by_operator: return images(t, op);
            case Form::Val: return images(t, v, op);
            case Form::GT:
            case Form::LT: return images(t);
            case Form::GTVal:
            case Form::LTVal: return images(t, v);
            default: return images(t, v, t2, v2);
            }
        };
        layout.channels == 1 ? with(*low, *lowValue, *high, *highValue) : with(+low, +lowValue, +high, +highValue);
    }

    std::vector<ZetStatus> order() const {
        if (form == Form::Val) return {zetStsNotSupportedModeErr, zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr};
        return {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr, zetStsNotSupportedModeErr, zetStsThresholdErr};
    }
    template <class... A> void add_errors(std::vector<Error<std::tuple<A...>>>& errors) {
        using Arguments = std::tuple<A...>;
        constexpr std::size_t last = sizeof...(A) - 1;
        if constexpr (std::is_same_v<std::tuple_element_t<last, Arguments>, ZetCmpOp>) {
            for (const int bad : {-1, 1, 2, 3, 5, INT_MAX})
                errors.push_back({zetStsNotSupportedModeErr, [=](Arguments& a) { std::get<last>(a) = ZetCmpOp(bad); }});
        } else if (form == Form::LTValGTVal) {
            if constexpr (last >= 4)
                if constexpr (std::is_same_v<std::tuple_element_t<last - 3, Arguments>, std::tuple_element_t<last - 1, Arguments>>) {
                    crossed.fill(1), uncrossed.fill(1);
                    crossed[layout.colours - 1] = 0; // on one channel
                    errors.push_back({zetStsThresholdErr, [this](Arguments& a) {
                                          auto &t = std::get<last - 3>(a), &t2 = std::get<last - 1>(a);
                                          if constexpr (std::is_pointer_v<std::decay_t<decltype(t)>>)
                                              t = t ? uncrossed.data() : t, t2 = t2 ? crossed.data() : t2;
                                          else t = 1, t2 = 0;
                                      }});
                }
        }
    }
    std::array<T, 4> crossed, uncrossed;
};

template <class Use> void each_member(Use use) {
    for (const PixelLayout& l : pixel_layouts)
        for (const bool inPlace : {false, true}) {
            const auto type = [&]<class T>(T) {
                for (const Form form : {Form::by_operator, Form::GT, Form::LT, Form::Val, Form::GTVal, Form::LTVal, Form::LTValGTVal}) {
                    if (std::string(l.name) == "C4" && form != Form::GTVal && form != Form::LTVal) continue;
                    use(Thresholding<T>{form, zetCmpLess, l, inPlace, {}, {}, {}, {}, {}, {}});
                    if (form == Form::by_operator || form == Form::Val)
                        use(Thresholding<T>{form, zetCmpGreater, l, inPlace, {}, {}, {}, {}, {}, {}});
                }
            };
            type(Zet8u{}), type(Zet16u{}), type(Zet16s{}), type(Zet32f{});
        }
}

TEST(Threshold, EveryMemberAtEveryWidth) {
    Checksum sum;
    each_member([&](const auto& f) { check_widths(f, &sum); });
    EXPECT_TRUE(sum.is_known("Threshold"));
}

TEST(Threshold, OrderOfChecks) {
    each_member([](const auto& f) { check_order(f); });
}

TEST(Threshold, LargeDestinations) {
    check_large(Thresholding<Zet16u>{Form::by_operator, zetCmpLess, pixel_layouts[0], false, {}, {}, {}, {}, {}, {}});
    check_large(Thresholding<Zet8u>{Form::LTValGTVal, zetCmpLess, pixel_layouts[1], false, {}, {}, {}, {}, {}, {}});
}

// What is not beyond a bound keeps its bits: NaNs with all they carry, and zeros of either sign. Bounds that are denormal count,
// whatever the caller's float state.
TEST(Threshold, FloatsKeepTheirBits) {
    const auto run = [](Zet32u bits, Zet32f low, Zet32f high) {
        Zet32u got = 0;
        const auto function = member<ZetStatus(const Zet32f*, int, Zet32f*, int, ZetiSize, Zet32f, Zet32f, Zet32f, Zet32f)>(
            "zetiThreshold_LTValGTVal_32f_C1R");
        const auto clamp = member<ZetStatus(const Zet32f*, int, Zet32f*, int, ZetiSize, Zet32f, ZetCmpOp)>("zetiThreshold_32f_C1R");
        EXPECT_EQ(function(reinterpret_cast<Zet32f*>(&bits), 4, reinterpret_cast<Zet32f*>(&got), 4, ZetiSize{1, 1}, low, 1, high, 1),
                  zetStsNoErr);
        EXPECT_EQ(got, bits);
        for (const ZetCmpOp op : {zetCmpLess, zetCmpGreater}) {
            EXPECT_EQ(clamp(reinterpret_cast<Zet32f*>(&bits), 4, reinterpret_cast<Zet32f*>(&got), 4, ZetiSize{1, 1},
                            op == zetCmpLess ? low : high, op),
                      zetStsNoErr);
            EXPECT_EQ(got, bits);
        }
    };
    for (const Zet32u bits : {0x7FC00000u, 0xFFC12345u, 0x7F800001u, 0xFF9ABCDEu, 0x00000000u, 0x80000000u})
        for (const Zet32f low : {0.0f, -0.0f, NAN})
            for (const Zet32f high : {0.0f, -0.0f, NAN}) run(bits, low, high);
    run(0x3F800000, NAN, NAN);
    Zet32f sample = 0;
    _mm_setcsr(0x9FC0);
    const ZetStatus status = member<ZetStatus(Zet32f*, int, ZetiSize, Zet32f, Zet32f, Zet32f, Zet32f)>("zetiThreshold_LTValGTVal_32f_C1IR")(
        &sample, 4, ZetiSize{1, 1}, 2e-40f, 0.0f, 1e-40f, 0.0f);
    _mm_setcsr(0x1F80);
    EXPECT_EQ(status, zetStsThresholdErr);
}

// --- Otsu ---------------------------------------------------------------------------------------------------------

const auto otsu = [](const Zet8u* p, int step, ZetiSize roi, Zet8u* t) {
    return member<ZetStatus(const Zet8u*, int, ZetiSize, Zet8u*)>("zetiComputeThreshold_Otsu_8u_C1R")(p, step, roi, t);
};

// The rule, step by step.
Zet8u reference(const Image<Zet8u>& image) {
    double count[256] = {}, total = 0, weighted = 0, w = 0, m = 0, best = 0, result = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) count[image.at(y, x)] += 1;
    for (int i = 0; i < 256; ++i) total += count[i], weighted += (i + 0.5) * count[i]; // exact in any order
    const double r = 1 / total, mean = weighted * r;
    for (int t = 0; t < 256; ++t) {
        const double p = r * count[t];
        m = m * w;
        w = w + p;
        const double v = 1 - w;
        if (std::min(w, v) < 0x1p-23 || std::max(w, v) > 0.9999998807907104) continue;
        const double c = t + 0.5;
        m = (m + p * c) / w;
        const double d = m - (mean - w * m) / v, score = v * w * (d * d);
        if (score > best) best = score, result = c;
    }
    return static_cast<Zet8u>(result);
}

TEST(Otsu, FollowsTheRule) {
    Random r("Otsu");
    Checksum sum;
    for (int i = 0; i < 600; ++i) {
        const int width = i < 80 ? 1 + i % 40 : r.between(1, 200), modes = r.between(1, 4),
                  mode[4] = {r.between(0, 255), r.between(0, 255), r.between(0, 255), r.between(0, 255)};
        Image<Zet8u> image(r, width, r.between(1, 40), 1);
        const int spread = r.pick({0, 1, 10, 60, 255});
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < width; ++x)
                image.set(y, x, static_cast<Zet8u>(std::clamp(mode[r.between(0, modes - 1)] + r.between(-spread, spread), 0, 255)));
        Zet8u got = 77;
        _mm_setcsr(i % 2 ? 0xFFC0 : 0x1F80);
        const ZetStatus status = otsu(image.data(), image.step, {width, image.height}, &got);
        _mm_setcsr(0x1F80);
        ASSERT_EQ(status, zetStsNoErr);
        ASSERT_EQ(int{got}, int{reference(image)}) << "image " << i;
        sum.add(got);
    }
    EXPECT_TRUE(sum.is_known("Otsu"));
}

TEST(Otsu, ByHand) {
    Image<Zet8u> image(64, 64, 1, 64);
    Zet8u got = 77;
    const auto of = [&](auto level) {
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) image.set(y, x, static_cast<Zet8u>(level(x, y)));
        EXPECT_EQ(otsu(image.data(), 64, {64, 64}, &got), zetStsNoErr);
        return int{got};
    };
    EXPECT_EQ(of([](int x, int) { return x < 32 ? 10 : 200; }), 10); // of all equal scores the first
    EXPECT_EQ(of([](int, int) { return 99; }), 0);                   // a single level
    EXPECT_EQ(of([](int x, int y) { return x + y == 0 ? 255 : 254; }), 254);
    EXPECT_EQ(of([](int x, int y) { return (x * 64 + y) % 256; }), 127);

    const std::tuple call(static_cast<const Zet8u*>(image.data()), 64, ZetiSize{64, 64}, &got);
    std::vector<Error<std::decay_t<decltype(call)>>> errors;
    for (auto& e : common_errors(call))
        if (e.status != zetStsStepErr) errors.push_back(e);
    for (const int bad : {63, 0, -64}) errors.push_back({zetStsStepErr, [=](auto& a) { std::get<1>(a) = bad; }}); // less than a row
    got = 77;
    for (const auto& one : errors)
        for (const auto& two : errors) { // any step is wide enough for a width below 1
            auto spoiled = call;
            one.spoil(spoiled), two.spoil(spoiled);
            EXPECT_EQ(std::apply(otsu, spoiled), std::max({one.status, two.status}, [](int a, int b) {
                          return (a == -8 ? 0 : a == -6 ? 1 : 2) > (b == -8 ? 0 : b == -6 ? 1 : 2);
                      }));
        }
    EXPECT_EQ(got, 77);
}

} // namespace
