// SPDX-License-Identifier: Apache-2.0
// AlphaComp, AlphaCompC, AlphaPremul, AlphaPremulC; CompColorKey and AlphaCompColorKey.
#include "tests/arith/elementwise.h"

using namespace test;

namespace {

// --- Composition under alpha as plainly as it can be said, one sample at a time ------------------------------------

template <class T> constexpr T full = std::is_floating_point_v<T> ? T(1) : std::numeric_limits<T>::max();

template <class T> T clamped(std::int64_t v) {
    return static_cast<T>(std::clamp<std::int64_t>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T> T product(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a * b;
    } else {
        const auto magnitude = [](std::int64_t v) { return static_cast<std::uint64_t>(v < 0 ? -v : v); };
        constexpr int n = std::numeric_limits<T>::digits;
        const std::uint64_t t = magnitude(a) * magnitude(b);
        const auto quotient = static_cast<std::int64_t>((t + 1 + (t >> n)) >> n);
        return clamped<T>((a < 0) != (b < 0) ? -quotient : quotient);
    }
}
template <class T> T sum(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) return a + b;
    else return clamped<T>(std::int64_t{a} + b);
}
template <class T> T rest(T alpha) {
    if constexpr (std::is_floating_point_v<T>) return 1 - alpha;
    else return clamped<T>(std::int64_t{full<T>} - alpha);
}

// One sample of the result; alpha itself is never premultiplied.
template <class T> T composed(int type, bool isAlpha, T a, T alphaA, T b, T alphaB) {
    if (type < zetAlphaOverPremul && !isAlpha) a = product(a, alphaA), b = product(b, alphaB);
    switch (type % 6) {
    case zetAlphaOver: return sum(a, product(b, rest(alphaA)));
    case zetAlphaIn: return product(a, alphaB);
    case zetAlphaOut: return product(a, rest(alphaB));
    case zetAlphaATop: return sum(product(a, alphaB), product(b, rest(alphaA)));
    case zetAlphaXor: return sum(product(a, rest(alphaB)), product(b, rest(alphaA)));
    default: return sum(a, b);
    }
}

// --- Alpha ----------------------------------------------------------------------------------------------------------

constexpr const PixelLayout &C1 = pixel_layouts[0], &C3 = pixel_layouts[1], &C4 = pixel_layouts[2], &AC4 = pixel_layouts[3];
constexpr PixelLayout AC1{"AC1", 2, 1}, AP4{"AP4", 4, 3};

template <class T> struct Alpha : Elementwise<T> {
    static constexpr bool planes = std::is_unsigned_v<T> && sizeof(T) <= 2;
    using Elementwise<T>::layout, Elementwise<T>::constant, Elementwise<T>::constants;
    bool composes;
    int composition; // of composition; the first two constants are the alphas

    Alpha(const std::string& operation, const PixelLayout& l, int alphaType = 0, bool isInPlace = false)
        : Elementwise<T>{operation, l, isInPlace, operation.ends_with("C")}, composes(operation.starts_with("AlphaComp")),
          composition(alphaType) {}

    bool checks_steps() const { return false; }

    template <class I, class Use> void call(const I& i, Use use) const {
        const auto t = static_cast<ZetAlphaType>(composition);
        if (composes && constant) use(i.a, i.aStep, constants[0], i.b, i.bStep, constants[1], i.d, i.dStep, i.roi, t);
        else if (composes) this->two(i, use, t);
        else if constexpr (planes) constant ? this->with_value(constants[0], i, use) : this->one(i, use);
    }
    int alpha() const { return layout.colours == layout.channels ? -1 : layout.colours; } // where it is
    bool mixes() const { return alpha() >= 0 && (composes || !constant); }
    void pixel(const T* a, const T* b, T* d, ZetStatus&) const {
        const int last = alpha();
        const auto faded = [&](const T* p, int i, T by) {
            return i == last || composition >= zetAlphaOverPremul ? product(p[i], by) : p[i];
        };
        for (int c = 0; c < layout.channels; ++c) {
            if (!composes && c == last) d[c] = constant ? d[c] : b[c];
            else if (!composes) d[c] = product(b[c], constant ? constants[0] : b[last]);
            else if (last < 0) d[c] = composed(composition, false, a[c], constants[0], b[c], constants[1]);
            else if (!constant) d[c] = composed(composition, c == last, a[c], a[last], b[c], b[last]);
            else
                d[c] = composed(composition, c == last, faded(a, c, constants[0]), product(a[last], constants[0]),
                                faded(b, c, constants[1]), product(b[last], constants[1]));
        }
    }
    void prepare(Random& r, Image<T>& a, Image<T>& b) { // alpha of mattes, floats of a photograph
        const auto fraction = [&] { return static_cast<T>(r.between(0, 999)) / 999; };
        for (T& alpha : constants) alpha = is_float<T> ? fraction() : r.sample<T>(Random::mixed, 0);
        if (r.chance(3)) return;
        for (Image<T>* image : {&a, &b})
            for (const auto [y, i] : image->samples()) {
                const bool isAlpha = (layout.planar() ? y / (image->height / 4) : i % layout.channels) == layout.colours;
                if (isAlpha && r.chance(2)) image->set(y, i, r.chance(2) ? full<T> : T(0));
                else if (is_float<T>) image->set(y, i, fraction());
            }
    }

    void order(Faults& faults, const Arguments& call) const {
        faults.null(call).size(call);
        if (composes) faults.add(zetStsAlphaTypeErr, call.back().as<int>(), {12, INT_MAX, -1, INT_MIN});
    }
};

constexpr auto each_member = [](auto use) {
    const auto composition = [&]<class T>(T, std::initializer_list<PixelLayout> byPixel, std::initializer_list<PixelLayout> byConstant) {
        for (int type = 0; type < 12; ++type) {
            for (const PixelLayout& l : byPixel) use(Alpha<T>("AlphaComp", l, type));
            for (const PixelLayout& l : byConstant) use(Alpha<T>("AlphaCompC", l, type));
        }
    };
    const auto small = [&]<class T>(T) {
        composition(T{}, {AC1, AC4, AP4}, {C1, C3, C4, AC4, AP4});
        for (const bool inPlace : {false, true}) {
            for (const PixelLayout& l : {AC4, AP4}) use(Alpha<T>("AlphaPremul", l, 0, inPlace));
            for (const PixelLayout& l : {C1, C3, C4, AC4, AP4}) use(Alpha<T>("AlphaPremulC", l, 0, inPlace));
        }
    };
    const auto other = [&](auto... v) { (composition(v, {AC1, AC4}, {C1}), ...); };
    small(Zet8u{}), small(Zet16u{});
    other(Zet8s{}, Zet16s{}, Zet32u{}, Zet32s{}, Zet32f{});
};

TEST(Alpha, EveryMemberAndOperatorAtEveryWidth) { sweep(each_member); }
TEST(Alpha, OrderOfChecks) { check_orders(each_member); }
TEST(Alpha, OverlappingRows) { check_overlap(each_member); }
TEST(Alpha, LargeDestination) { check_large(Alpha<Zet8u>("AlphaPremul", AC4)); } // a pixel never leaves in two parts

// A sample and its alpha, two alphas, a sample and a constant.
TEST(Alpha, EveryPairOf8u) {
    Random r("pairs");
    Image<Zet8u> a(256, 256, 4, 1024), b(256, 256, 4, 1024), d(256, 256, 4, 1024);
    for (const auto [y, i] : d.samples()) {
        const int x = i / 4, c = i % 4, any = r.between(0, 255);
        a.set(y, i, static_cast<Zet8u>(c == 0 ? x : c == 1 ? any : c == 2 ? x ^ 255 : y));
        b.set(y, i, static_cast<Zet8u>(c == 0 ? y : c == 1 ? x : c == 2 ? any : x));
    }
    for (int type = 0; type < 12; ++type) ASSERT_TRUE(verify(Alpha<Zet8u>("AlphaComp", AC4, type), a, b, d));
    ASSERT_TRUE(verify(Alpha<Zet8u>("AlphaPremul", AC4), b, a, d));
    ASSERT_TRUE(check_pairs(Alpha<Zet8u>("AlphaPremulC", C1), all_values<Zet8u>(), all_values<Zet8u>()));
}

// --- Colour keys ----------------------------------------------------------------------------------------------------

template <class T> struct Key : Elementwise<T> {
    using Elementwise<T>::layout, Elementwise<T>::constants;
    int composition; // of composition, -1 for none

    Key(const PixelLayout& l, int alphaType = -1)
        : Elementwise<T>{alphaType < 0 ? "CompColorKey" : "AlphaCompColorKey", l}, composition(alphaType) {}

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (std::is_same_v<T, Zet8u>)
            if (composition >= 0) return this->two(i, use, constants.data(), static_cast<ZetAlphaType>(composition));
        layout.channels == 1 ? this->two(i, use, constants[0]) : this->two(i, use, constants.data());
    }
    void pixel(const T* a, const T* b, T* d, ZetStatus&) const {
        const bool matches = std::equal(a, a + layout.colours, constants.begin());
        for (int c = 0; c < layout.channels; ++c)
            d[c] = matches ? b[c] : composition >= 0 ? composed(composition, c == 3, a[c], a[3], b[c], b[3]) : a[c];
    }
    // Samples of 0 and 1 match now and then. Every fifth time none does, and the result is the first source.
    void prepare(Random& r, Image<T>& a, Image<T>& b) {
        for (T& key : constants) key = static_cast<T>(r.chance(4));
        const bool mayMatch = !r.chance(5);
        for (Image<T>* image : {&b, &a})
            for (const auto [y, i] : image->samples()) {
                const int other = r.between(2, 252);
                image->set(y, i, static_cast<T>(mayMatch && image == &a && !r.chance(9) ? r.chance(4) : other));
            }
    }
    void order(Faults& faults, const Arguments& call) const {
        faults.null(call).size(call).step(call);
        if (composition >= 0) faults.add(zetStsAlphaTypeErr, call.back().as<int>(), {6, 11, 12, -1, INT_MIN});
    }
};

constexpr auto each_key = [](auto use) {
    for (const int l : {0, 1, 2}) use(Key<Zet8u>(pixel_layouts[l])), use(Key<Zet16u>(pixel_layouts[l])), use(Key<Zet16s>(pixel_layouts[l]));
    for (int type = 0; type < 6; ++type) use(Key<Zet8u>(pixel_layouts[3], type));
};

TEST(ColorKey, EveryMemberAtEveryWidth) { sweep(each_key); }
TEST(ColorKey, OrderOfChecks) { check_orders(each_key); }
TEST(ColorKey, OverlappingRows) { check_overlap(each_key); }

} // namespace
