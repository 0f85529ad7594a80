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

template <class T> T saturated(double v) {
    return static_cast<T>(std::trunc(
        std::clamp(v, static_cast<double>(std::numeric_limits<T>::lowest()), static_cast<double>(std::numeric_limits<T>::max()))));
}

template <class T> struct Lut : TableCall<T> {
    using V = typename TableCall<T>::V;
    Curve curve;
    std::vector<V> x[4], y[4];

    Lut(Curve k, TableLayout l, bool inPlace)
        : TableCall<T>(inPlace ? TableCall<T>::lut_in_place : TableCall<T>::lut, curve_names[static_cast<int>(k)], l), curve(k) {}

    void use(int c, const std::vector<V>& at, const std::vector<V>& values) {
        x[c] = at, y[c] = values;
        this->levels[c] = x[c].data(), this->values[c] = y[c].data(), this->counts[c] = static_cast<int>(at.size());
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
        for (const TableLayout& l : table_layouts)
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
            const double level = static_cast<double>(f.x[c][r.between(0, f.counts[c] - 1)]) + r.between(-1, 1);
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
    ASSERT_TRUE(dst.intact()) << f.name << ", " << f.counts[0] << " levels";
    ASSERT_TRUE(src.intact()) << f.name;
    if (sum) sum->add(dst);
}

TEST(Lut, EveryMemberAtEveryWidth) {
    Checksum sum;
    each_member([&](auto f) {
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
            for (const TableLayout& l : table_layouts)
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
    each_member([](auto f) {
        using T = std::remove_const_t<std::remove_pointer_t<decltype(f.src)>>;
        Random r(f.name);
        Image<T> src(r, 5, 4, f.layout.channels), dst(r, 5, 4, f.layout.channels);
        for (int c = 0; c < f.layout.colours; ++c) f.random(r, c, 9);
        f.src = src.data(), f.srcStep = src.step, f.dst = dst.data(), f.dstStep = dst.step, f.roi = {5, 4};
        const auto intact = [&] { return static_cast<bool>(dst.intact()); };
        expect_sequence(static_cast<const TableCall<T>&>(f), f.errors(), intact);
        const bool steps = f.curve == Curve::steps;
        const bool allocates = is_float<T> ? !steps : sizeof(T) == 2 && !(steps && f.layout.channels != 4);
        EXPECT_EQ(refuse_each(f, intact), allocates) << f.name;
    });
}

// What one sample of a C1 image becomes.
template <class T>
T one(Curve k, const std::vector<typename TableCall<T>::V>& levels, const std::vector<typename TableCall<T>::V>& values, T v) {
    Lut<T> f(k, table_layouts[0], false);
    Image<T> src(1, 1, 1, sizeof(T)), dst(1, 1, 1, sizeof(T));
    src.set(0, 0, v);
    f.use(0, levels, values);
    f.run_on(src, dst);
    return dst.at(0, 0);
}

TEST(Lut, ByHand) {
    const auto linear = [](const std::vector<int>& levels, const std::vector<int>& values, int v) {
        return int{one<Zet8u>(Curve::linear, levels, values, static_cast<Zet8u>(v))};
    };
    EXPECT_EQ(linear({10, 20}, {0, 5}, 11), 1);   // 0.5 goes up
    EXPECT_EQ(linear({0, 100}, {-1, -1}, 50), 0); // -0.5 towards zero
    EXPECT_EQ(linear({-5, 1}, {100, 0}, 0), 100); // one sample is left: no line
    EXPECT_EQ(linear({0, 256, 400}, {0, 128, 7}, 254), 127);
    EXPECT_EQ(linear({0, 256, 300, 400}, {0, 128, 33, 7}, 255), 33); // of intervals above all samples the last decides about 255
    EXPECT_EQ(int{one<Zet16s>(Curve::linear, {32768, 40000}, {5, 6}, 32767)}, 5);
    EXPECT_EQ(int{one<Zet8u>(Curve::steps, {300, 400}, {5, 6}, 255)}, 255); // not so with constants
    EXPECT_EQ(int{one<Zet8u>(Curve::steps, {10, 20, 30}, {300, -4, 9}, 10)}, 255);
    EXPECT_EQ(int{one<Zet8u>(Curve::steps, {10, 20, 30}, {300, -4, 9}, 29)}, 0);
    EXPECT_EQ(int{one<Zet8u>(Curve::steps, {10, 20, 30}, {300, -4, 9}, 30)}, 30);

    const std::vector<int> levels = {10, 70, 200}, values = {40, 5, 230};
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(int{one<Zet8u>(Curve::cubic, levels, values, static_cast<Zet8u>(v))}, linear(levels, values, v));
    for (int v = 0; v < 200; ++v) // a cubic goes through its points
        EXPECT_EQ(int{one<Zet8u>(Curve::cubic, {0, 50, 100, 200}, {0, 15, 125, 216}, static_cast<Zet8u>(v))} == 125, v == 100) << v;

    const auto steps = [](const std::vector<Zet32f>& x, Zet32f v) { return one<Zet32f>(Curve::steps, x, {1, 2, 3, 4, 5}, v); };
    EXPECT_EQ(steps({0, 100, 50, 200, 300}, 60), 1); // the first interval that holds it
    EXPECT_EQ(steps({100, 0, 50, 20, 300}, 30), 2);
    EXPECT_EQ(steps({0, 1, 2, 3, 4}, 4), 4); // the last level belongs to none: the sample itself
    const Zet32f same_nan = one<Zet32f>(Curve::cubic, {0, 1, 2, 3, 4}, {1, 2, 3, 4, 5}, load<Zet32f>("\x21\x43\xC5\xFF"));
    EXPECT_EQ(std::memcmp(&same_nan, "\x21\x43\xC5\xFF", 4), 0);
}

} // namespace
