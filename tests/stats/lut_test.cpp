// SPDX-License-Identifier: Apache-2.0
// LUT, LUT_Linear and LUT_Cubic against the rules, sample by sample.
#include "tests/stats/tables.h"

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

template <class T> T saturated(double v) {
    return static_cast<T>(std::trunc(
        std::clamp(v, static_cast<double>(std::numeric_limits<T>::lowest()), static_cast<double>(std::numeric_limits<T>::max()))));
}

template <class T> struct Lut : TableCall<T> {
    using V = typename TableCall<T>::V;
    Curve curve;
    std::vector<V> x[4], y[4];

    Lut(Curve k, const PixelLayout& l, bool inPlace)
        : TableCall<T>(inPlace ? TableCall<T>::lut_in_place : TableCall<T>::lut, curve_names[static_cast<int>(k)], l), curve(k) {}

    void use(int c, const std::vector<V>& at, const std::vector<V>& values) {
        x[c] = at, y[c] = values;
        this->levels.entry[c] = x[c].data(), this->values.entry[c] = y[c].data(), this->counts.entry[c] = static_cast<int>(at.size());
    }
    // Levels that ascend, all of them or most; cubics want four different ones.
    void random(Random& r, int c, int n) {
        const int range = sizeof(T) == 1 ? 300 : is_float<T> ? 1000 : 70000;
        std::vector<V> at(n), values(n);
        for (V& v : at) v = static_cast<V>(r.between(-range, range));
        std::sort(at.begin(), at.end());
        for (int k = 1; k < n; ++k)
            if (at[k] <= at[k - 1] && (curve == Curve::cubic || r.chance(2))) at[k] = at[k - 1] + 1;
        for (V& v : values) v = static_cast<V>(r.pick({r.between(-range, range), r.between(0, 255)}));
        if (curve != Curve::cubic && !is_float<T>) {
            if (r.chance(4)) at.front() = static_cast<V>(INT_MIN), at.back() = static_cast<V>(INT_MAX);
            if (r.chance(4)) values[r.between(0, n - 1)] = static_cast<V>(r.pick({INT_MIN, INT_MAX}));
        }
        use(c, at, values);
    }
    void run_on(const Image<T>& from, const Image<T>& to) {
        this->src = from.data(), this->srcStep = from.step, this->dst = to.data(), this->dstStep = to.step,
        this->roi = {from.width, from.height};
        ASSERT_EQ(this->run(), zetStsNoErr) << this->name;
    }

    // One sample; two results where a cubic comes that close to the next integer.
    std::pair<T, T> mapped(int c, T v) const {
        if constexpr (is_float<T>) return mapped_float(c, v);
        else return mapped_integer(c, v);
    }

private:
    bool lines() const { return curve == Curve::linear || (curve == Curve::cubic && x[0].size() < 4); }
    const V* at4(int c, int k) const { return x[c].data() + std::clamp(k - 1, 0, static_cast<int>(x[c].size()) - 4); }
    const V* value4(int c, int k) const { return y[c].data() + (at4(c, k) - x[c].data()); }

    std::pair<T, T> mapped_integer(int c, T v) const {
        const int low = std::numeric_limits<T>::lowest(), high = std::numeric_limits<T>::max();
        std::pair<T, T> result = {v, v};
        for (int k = 0; k + 1 < static_cast<int>(x[c].size()); ++k) {
            const auto from = x[c][k], to = x[c][k + 1];
            const int first = std::clamp<int>(from, low, curve == Curve::steps ? high + 1 : high),
                      last = std::clamp<int>(to, low, high + 1); // last: behind
            if (to <= from || v < first || v >= last) continue;
            const double value = static_cast<double>(y[c][k]);
            if (curve == Curve::steps || last - first == 1) {
                result.first = result.second = saturated<T>(value);
            } else if (lines()) {
                const double s = (static_cast<double>(y[c][k + 1]) - value) / (static_cast<double>(to) - from);
                result.first = result.second = saturated<T>(value + 0.5 - from * s + v * s);
            } else {
                const double exact = lagrange(at4(c, k), value4(c, k), v) + 0.5, error = 1e-9 * (1 + std::fabs(exact)) + 1e-6;
                result = {saturated<T>(exact - error), saturated<T>(exact + error)};
            }
        }
        return result;
    }
    std::pair<T, T> mapped_float(int c, T v) const {
        for (int k = 0; k + 1 < static_cast<int>(x[c].size()); ++k) {
            const V from = x[c][k], to = x[c][k + 1], value = y[c][k];
            if (!(from <= v && v < to)) continue;
            if (curve == Curve::steps) return {value, value};
            if (lines()) {
                const T t = v - from;
                const T one =
                    static_cast<T>(double{t} * ((double{y[c][k + 1]} - double{value}) / (double{to} - double{from})) + double{value});
                return {one, one};
            }
            const double exact = lagrange(at4(c, k), value4(c, k), double{v}), error = 1e-6 * (1 + std::fabs(exact));
            return {static_cast<T>(exact - error), static_cast<T>(exact + error)};
        }
        return {v, v};
    }
};

template <class Use> void each_member(Use use) {
    for (const Curve k : {Curve::steps, Curve::linear, Curve::cubic})
        for (const PixelLayout& l : pixel_layouts)
            for (const bool inPlace : {false, true})
                use(Lut<Zet8u>(k, l, inPlace)), use(Lut<Zet16u>(k, l, inPlace)), use(Lut<Zet16s>(k, l, inPlace)),
                    use(Lut<Zet32f>(k, l, inPlace));
}

// Runs a member on an image and compares every sample.
template <class T> void check(Lut<T>& f, Random& r, int width, int height, Checksum* sum = nullptr) {
    Image<T> src(r, width, height, f.layout.channels), dst(r, width, height, f.layout.channels);
    const bool inPlace = f.form == TableCall<T>::lut_in_place;
    Image<T>& from = inPlace ? dst : src;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < from.row_samples(); ++i) {
            const int c = i % f.layout.channels;
            if (c == f.layout.colours || r.chance(4)) continue;
            const double level = static_cast<double>(f.x[c][r.between(0, f.counts.entry[c] - 1)]) + r.between(-1, 1);
            from.set(y, i, saturated<T>(level));
        }
    std::vector<std::pair<T, T>> both;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < from.row_samples(); ++i)
            if (const int c = i % f.layout.channels; c != f.layout.colours) both.push_back(f.mapped(c, from.at(y, i)));
    f.run_on(from, dst);
    std::size_t k = 0;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < from.row_samples(); ++i) {
            if (i % f.layout.channels == f.layout.colours) continue;
            const auto [low, high] = both[k++];
            const T got = dst.at(y, i);
            dst.expect(y, i, got >= low && got <= high ? got : low); // a NaN passes with its bits, which differ from none
        }
    ASSERT_TRUE(dst.intact()) << f.name << ", " << f.counts.entry[0] << " levels";
    ASSERT_TRUE(src.intact()) << f.name;
    if (sum) sum->add(dst);
}

TEST(Lut, EveryMemberAtEveryWidth) {
    Checksum sum;
    each_member([&](auto&& f) {
        using T = std::remove_const_t<std::remove_pointer_t<decltype(f.src)>>;
        Random r(f.name);
        for (int width = 1; width <= 40; width += sizeof(T) == 2 ? 3 : 1) {
            for (int c = 0, n = r.pick({2, 3, 4, 5, r.between(2, 60)}); c < f.layout.colours; ++c) f.random(r, c, n);
            check(f, r, width, r.between(1, 4), &sum);
        }
    });
    EXPECT_TRUE(sum.is_known("LUT")); // cubics to the last bit
}

// Constants on 16 bits: below 4097 pixels C1 and C3 search, all else is mapped through a table, and the results agree.
TEST(Lut, SearchAndTableAgree) {
    const auto type = []<class T>(T) {
        for (const Curve k : {Curve::steps, Curve::linear, Curve::cubic})
            for (const PixelLayout& l : pixel_layouts)
                for (const auto& [width, height] : {std::pair{64, 64}, {241, 17}}) { // 4096 and 4097 pixels
                    Lut<T> f(k, l, false);
                    Random r(f.name + std::to_string(height));
                    for (int c = 0; c < l.colours; ++c) f.random(r, c, 30);
                    standin_reset();
                    check(f, r, width, height);
                    const bool searches = k == Curve::steps && l.channels != 4 && width == 64;
                    EXPECT_EQ(standin_last_bytes(), searches ? 0 : l.colours * 65536 * 2) << f.name;
                    EXPECT_EQ(standin_allocations(), !searches);
                }
    };
    type(Zet16u{}), type(Zet16s{});
}

TEST(Lut, OrderOfChecksAndRefusals) {
    each_member([](auto&& f) {
        using T = std::remove_const_t<std::remove_pointer_t<decltype(f.src)>>;
        Random r(f.name);
        Image<T> src(r, 5, 4, f.layout.channels), dst(r, 5, 4, f.layout.channels);
        for (int c = 0; c < f.layout.colours; ++c) f.random(r, c, 9);
        f.src = src.data(), f.srcStep = src.step, f.dst = dst.data(), f.dstStep = dst.step, f.roi = {5, 4};
        const auto intact = [&] { return static_cast<bool>(dst.intact()); };
        f.expect_order(intact);
        const bool steps = f.curve == Curve::steps;
        const bool allocates = is_float<T> ? !steps : sizeof(T) == 2 && !(steps && f.layout.channels != 4);
        EXPECT_EQ(f.refuse_each(intact), allocates) << f.name;
    });
}

} // namespace
