// SPDX-License-Identifier: Apache-2.0
// LUT, LUT_Linear and LUT_Cubic against the rules, sample by sample.
#include "tests/stats/tables.h"
#include "tests/support/checksum.h"

using namespace test;

namespace {

enum class Curve { steps, linear, cubic };
constexpr const char* curve_names[] = {"LUT", "LUT_Linear", "LUT_Cubic"};

// The cubic through four points, by Lagrange.
template <class V> double lagrange(const V* x, const V* y, double at) {
    double sum = 0;
    for (int i = 0; i < 4; ++i) {
        double term = static_cast<double>(y[i]);
        for (int j = 0; j < 4; ++j)
            if (j != i) term *= (at - static_cast<double>(x[j])) / (static_cast<double>(x[i]) - static_cast<double>(x[j]));
        sum += term;
    }
    return sum;
}

// Integers are clamped, then without what is behind the point.
template <class T> T sample_of(double v) {
    if constexpr (is_float<T>) return static_cast<T>(v);
    else return static_cast<T>(std::clamp<double>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T> struct Lut : TableCall<T> {
    using V = typename TableCall<T>::V;
    Curve curve;
    std::vector<V> x[4], y[4];

    Lut(Curve k, const PixelLayout& l, bool inPlace)
        : TableCall<T>(inPlace ? TableCall<T>::lut_in_place : TableCall<T>::lut, curve_names[static_cast<int>(k)], l), curve(k) {}

    // Levels that ascend, all of them or most; cubics want four different ones.
    void random(Random& r, int c, int n) {
        const int range = sizeof(T) == 1 ? 300 : is_float<T> ? 1000 : 70000;
        std::vector<V>&at = x[c], &values = y[c];
        at.resize(n), values.resize(n);
        for (V& v : at) v = static_cast<V>(r.between(-range, range));
        std::sort(at.begin(), at.end());
        for (int k = 1; k < n; ++k)
            if (at[k] <= at[k - 1] && (curve == Curve::cubic || r.chance(2))) at[k] = at[k - 1] + 1;
        for (V& v : values) v = static_cast<V>(r.pick({r.between(-range, range), r.between(0, 255)}));
        if (curve != Curve::cubic && !is_float<T>) {
            if (r.chance(4)) at.front() = static_cast<V>(INT_MIN), at.back() = static_cast<V>(INT_MAX);
            if (r.chance(4)) values[r.between(0, n - 1)] = static_cast<V>(r.pick({INT_MIN, INT_MAX}));
        }
        if (is_float<T> && curve == Curve::steps && n % 3 == 0) std::swap(at[0], at[n / 2]);
        this->levels[c] = at.data(), this->values[c] = values.data(), this->counts[c] = n;
    }
    // Constants on 16 bits: below 4097 pixels C1 and C3 search, all else is mapped through a table. Curves of floats have coefficients.
    bool allocates(int pixels) const {
        if (curve == Curve::steps && this->layout.channels != 4 && pixels < 4097) return false;
        return is_float<T> ? curve != Curve::steps : sizeof(T) == 2;
    }

    // One sample; two results where a cubic comes that close to the next integer. The first interval that holds a float decides, and the
    // last one that holds an integer: those of lines and cubics begin at the largest sample at most.
    std::pair<T, T> mapped(int c, T v) const {
        std::pair<T, T> result = {v, v};
        const int n = static_cast<int>(x[c].size());
        const double low = std::numeric_limits<T>::lowest(), high = std::numeric_limits<T>::max();
        for (int k = 0; k + 1 < n; ++k) {
            const auto at = [](const std::vector<V>& of, int i) { return static_cast<double>(of[i]); };
            const double from = at(x[c], k), to = at(x[c], k + 1), value = at(y[c], k), slope = (at(y[c], k + 1) - value) / (to - from);
            const double first = is_float<T> ? from : std::clamp(from, low, curve == Curve::steps ? high + 1 : high),
                         last = is_float<T> ? to : std::clamp(to, low, high + 1);
            if (to <= from || !(v >= first && v < last)) continue;
            double exact = value, error = 0;
            if (curve == Curve::steps || (!is_float<T> && last - first == 1)) {
            } else if (curve == Curve::linear || n < 4) {
                exact =
                    is_float<T> ? static_cast<double>(v - static_cast<T>(from)) * slope + value : value + 0.5 - from * slope + v * slope;
            } else {
                const int four = std::clamp(k - 1, 0, n - 4);
                exact = lagrange(&x[c][four], &y[c][four], v) + (is_float<T> ? 0 : 0.5);
                error = (is_float<T> ? 1e-6 : 1e-9) * (1 + std::fabs(exact)) + (is_float<T> ? 0 : 1e-6);
            }
            result = {sample_of<T>(exact - error), sample_of<T>(exact + error)};
            if (is_float<T>) break;
        }
        return result;
    }
};

template <class Use> void each_member(Use use) {
    for (const Curve k : {Curve::steps, Curve::linear, Curve::cubic})
        for (const PixelLayout& l : pixel_layouts)
            for (const bool inPlace : {false, true})
                use(Lut<Zet8u>(k, l, inPlace)), use(Lut<Zet16u>(k, l, inPlace)), use(Lut<Zet16s>(k, l, inPlace)),
                    use(Lut<Zet32f>(k, l, inPlace));
}

template <class F> using SampleOf = std::remove_cvref_t<decltype(*std::declval<F>().src)>;

// Runs a member on an image and compares every sample.
template <class T> void check(Lut<T>& f, Random& r, int width, int height, Checksum& sum) {
    const int channels = f.layout.channels;
    Image<T> src(r, width, height, channels), dst(r, width, height, channels);
    Image<T>& from = f.form == TableCall<T>::lut_in_place ? dst : src;
    for (const auto [y, i] : from.samples())
        if (const int c = i % channels; c != f.layout.colours && !r.chance(4))
            from.set(y, i, sample_of<T>(static_cast<double>(f.x[c][r.between(0, f.counts[c] - 1)]) + r.between(-1, 1)));
    f.take(src, dst), standin.reset();
    ASSERT_EQ(f.run(), zetStsNoErr) << f.name;
    EXPECT_EQ(standin.allocations, f.allocates(width * height)) << f.name;
    EXPECT_TRUE(sizeof(T) != 2 || standin.last_bytes == f.allocates(width * height) * f.layout.colours * 65536 * 2) << f.name;
    for (const auto [y, i] : from.samples()) {
        if (i % channels == f.layout.colours) continue;
        const auto [low, high] = f.mapped(i % channels, from.expected(y, i));
        const T got = dst.at(y, i);
        dst.expect(y, i, got >= low && got <= high ? got : low), sum.add(got);
    }
    ASSERT_TRUE(dst.intact() && src.intact()) << f.name << ", " << f.counts[0] << " levels: " << dst.intact().message();
}

TEST(Lut, EveryMemberAtEveryWidth) {
    Checksum sum;
    each_member([&](auto&& f) {
        using T = SampleOf<decltype(f)>;
        Random r(f.name);
        for (int width = 1; width <= 40; width += sizeof(T) == 2 ? 3 : 1) {
            for (int c = 0, n = r.pick({2, 3, 4, 5, r.between(2, 60)}); c < f.layout.colours; ++c) f.random(r, c, n);
            check(f, r, width, r.between(1, 4), sum);
        }
        if (sizeof(T) == 2) check(f, r, 64, 64, sum), check(f, r, 241, 17, sum); // 4096 and 4097 pixels
    });
    EXPECT_EQ(sum.value, 0x7EA5775742F082EE); // cubics to the last bit
}

TEST(Lut, OrderOfChecksAndRefusals) {
    each_member([](auto&& f) {
        using T = SampleOf<decltype(f)>;
        Random r(f.name);
        Image<T> src(r, 5, 4, f.layout.channels), dst(r, 5, 4, f.layout.channels);
        for (int c = 0; c < f.layout.colours; ++c) f.random(r, c, 9);
        f.take(src, dst);
        const auto intact = [&] { return static_cast<bool>(dst.intact()); };
        f.expect_order(intact);
        EXPECT_EQ(f.refuse_each(intact), f.allocates(20)) << f.name;
        if constexpr (is_float<T>) { // a NaN keeps its bits
            const Zet32f same = load<Zet32f>("\x21\x43\xC5\xFF");
            (f.form == TableCall<T>::lut ? src : dst).set(0, 0, same);
            EXPECT_EQ(f.run(), zetStsNoErr);
            EXPECT_EQ(load<Zet32u>(dst.data()), load<Zet32u>(&same)) << f.name;
        }
    });
}

} // namespace
