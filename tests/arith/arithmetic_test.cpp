// SPDX-License-Identifier: Apache-2.0
// The 400 members of Add, Sub, Mul, Div and their constant forms.
#include <omp.h>

#include <map>

#include "tests/arith/elementwise.h"
#include "tests/support/scaling.h"

using namespace test;

namespace {

enum class Op { Add, Sub, Mul, Div };
constexpr const char* op_names[] = {"Add", "Sub", "Mul", "Div"};

template <class T> bool is_zero(T v) {
    if constexpr (is_complex<T>) return v.re == 0 && v.im == 0;
    else return v == 0;
}
float by_zero(float b) { return b > 0 ? INFINITY : b < 0 ? -INFINITY : NAN; }

template <class T> struct Arith : Elementwise<T> {
    using R = Real<T>;
    using Elementwise<T>::layout, Elementwise<T>::inPlace, Elementwise<T>::s, Elementwise<T>::constant, Elementwise<T>::constants;
    Op op;

    Arith(Op o, bool byConstant, bool isInPlace = false, const PixelLayout& l = pixel_layouts[0])
        : Elementwise<T>{op_names[static_cast<int>(o)] + std::string(byConstant ? "C" : ""), l, isInPlace, byConstant, !is_float<T>},
          op(o) {}

    bool exact() const { return !is_float<T> || is_complex<T> || op != Op::Div || constant; }
    bool forks() const { return op != Op::Div && layout.channels == layout.colours && !is_complex<T> && !std::is_same_v<T, Zet16u>; }
    // 16u by a constant, at a scale that leaves nothing: the fill that stands for the call walks any step.
    bool clears() const { return std::is_same_v<T, Zet16u> && op == Op::Div && constant && layout.channels == 1 && s > 16; }
    bool checks_steps() const { return (op == Op::Div && !clears()) || is_complex<T>; }

    template <class I, class Use> void call(const I& i, Use use) const {
        if constexpr (is_float<T>) this->two_or_constants(i, use);
        else this->two_or_constants(i, use, s);
    }

    T sample(T first, T b, int c, ZetStatus& warning) const { return result(constant ? constants[c] : first, b, warning); }

    T result(T a, T b, ZetStatus& warning) const {
        if constexpr (!is_complex<T>) {
            return real(a, b, warning);
        } else if (op == Op::Add || op == Op::Sub) {
            return {real(a.re, b.re, warning), real(a.im, b.im, warning)};
        } else if (op == Op::Mul) {
            if constexpr (is_float<T>) {
                return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
            } else { // sums wrap at 32 bits for 16sc, at 64 bits for 32sc
                using W = std::conditional_t<sizeof(R) == 2, std::uint32_t, std::uint64_t>;
                const W ar = a.re, ai = a.im, br = b.re, bi = b.im;
                return {scaled<R>(std::make_signed_t<W>(ar * br - ai * bi), s), scaled<R>(std::make_signed_t<W>(ar * bi + ai * br), s)};
            }
        } else {
            const double ar = a.re, ai = a.im, br = b.re, bi = b.im;
            const double norm = ar * ar + ai * ai, re = ar * br + ai * bi, im = ar * bi - ai * br;
            const bool by_none = is_zero(a);
            if constexpr (std::is_same_v<T, Zet16sc>) {
                const bool above = s > (constant ? 15 : 32), below = s < (constant ? -16 : -32);
                if (above && !constant && a.re == 0 && b.im == 0) warning = zetStsDivByZero;
                if (above) return {0, 0};
                if (below && !by_none) return {extreme<R>(re), extreme<R>(im)};
                if (below) return warning = zetStsDivByZero, T{0, 0};
            }
            if (by_none) warning = zetStsDivByZero;
            if constexpr (!is_float<T>)
                return by_none ? T{extreme<R>(b.re), extreme<R>(b.im)} : T{scaled<R>(re / norm, s), scaled<R>(im / norm, s)};
            else return by_none ? T{by_zero(b.re), by_zero(b.im)} : T{static_cast<float>(re / norm), static_cast<float>(im / norm)};
        }
    }

    R real(R a, R b, ZetStatus& warning) const {
        if (op == Op::Div && a == 0) warning = zetStsDivByZero;
        if constexpr (is_float<T>) {
            return op == Op::Add ? a + b : op == Op::Sub ? b - a : op == Op::Mul ? a * b : a == 0 ? by_zero(b) : b / a;
        } else {
            const std::int64_t x = a, y = b;
            if (op != Op::Div) return scaled<R>(op == Op::Add ? x + y : op == Op::Sub ? y - x : x * y, s);
            return a == 0 ? extreme<R>(b) : scaled<R>(static_cast<float>(b) / static_cast<float>(a), s);
        }
    }

    // Quotients have no zero among their constants. Estimated ones get operands for which the estimate has its full precision.
    void prepare(Random& r, Image<T>& a, Image<T>& b) {
        for (T& c : constants) do
                c = r.chance(3) ? number<T>(r.between(0, 1)) : r.sample<T>(Random::mixed, 0);
            while (op == Op::Div && is_zero(c));
        if constexpr (std::is_same_v<T, Zet32f>) {
            const auto tame = [&] {
                const float mantissa = 1 + 0x1p-23f * r.between(0, 0x7FFFFF), sign = r.pick({-1.0f, 1.0f});
                return std::ldexp(sign * mantissa, r.between(-60, 60));
            };
            for (int y = 0; !exact() && y < a.height; ++y)
                for (int i = 0; i < a.row_samples(); ++i) {
                    const bool zero = r.chance(20);
                    b.set(y, i, zero ? r.edge<T>() : tame());
                    a.set(y, i, zero ? 0 : tame());
                }
        }
        if (op == Op::Div) appease(r, a, layout, number<T>(1), T{}, is_zero<T>);
    }

    void order(Faults& faults, const Arguments& call) {
        const bool widthFirst = !constant && !is_complex<T> && layout.channels > 1 && layout.channels == layout.colours;
        faults.size(call, widthFirst, false).null(call).size(call, !widthFirst, true);
        if (checks_steps()) faults.step(call);
        if (constant && op == Op::Div)
            faults.add(zetStsDivByZeroErr, layout.channels == 1 ? call[inPlace ? 0 : 2].template as<T>() : constants[layout.colours - 1],
                       {T{}});
    }
};

constexpr auto each_arith = [](auto use) {
    const auto members = [&]<class T>(T) {
        for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
            for (const PixelLayout& l : pixel_layouts)
                for (const int form : {0, 1, 2, 3})
                    if (!is_complex<T> || std::string(l.name) != "C4") use(Arith<T>(op, form / 2 == 1, form % 2 == 1, l));
    };
    members(Zet8u{}), members(Zet16u{}), members(Zet16s{}), members(Zet32f{}), members(Zet16sc{}), members(Zet32sc{}), members(Zet32fc{});
};

TEST(Arithmetic, EveryMemberAtEveryScaleAndWidth) { sweep(each_arith); }
TEST(Arithmetic, OrderOfChecks) { check_orders(each_arith); }
TEST(Arithmetic, OverlappingRows) { check_overlap(each_arith); }

TEST(Arithmetic, LargeDestinations) {
    check_large(Arith<Zet8u>(Op::Add, false));
    check_large(Arith<Zet16s>(Op::Mul, true, false, pixel_layouts[1]));
    check_large(Arith<Zet32f>(Op::Sub, false, true, pixel_layouts[2]));
    check_large(Arith<Zet16u>(Op::Div, true, false, pixel_layouts[3]));
    check_large(Arith<Zet16s>(Op::Add, false, false, pixel_layouts[3]));
}

// At scales from low to high and at extremes.
template <class T> void pairs(const std::vector<T>& values, int low, int high, int by = 1) {
    std::vector<int> scales = {INT_MIN, -1000, INT_MAX};
    for (int s = low; s <= high; s += by) scales.push_back(s);
    std::vector<T> divisors;
    std::copy_if(values.begin(), values.end(), std::back_inserter(divisors), [](T v) { return !is_zero(v); });
    for (const Op op : {Op::Add, Op::Sub, Op::Mul, Op::Div})
        for (const bool constant : {false, true})
            for (const int s : scales) {
                Arith<T> f(op, constant);
                f.s = s;
                ASSERT_TRUE(check_pairs(f, constant && op == Op::Div ? divisors : values, values));
            }
}

// Bounds, powers of two and their neighbours.
template <class T> std::vector<T> boundaries() {
    Random r("boundaries");
    std::vector<T> v(96);
    for (T& value : v) value = r.sample<T>(Random::edges, 0);
    return v;
}

TEST(Arithmetic, EveryPairOf8u) { pairs(all_values<Zet8u>(), -16, 18); }
TEST(Arithmetic, EveryPairOfBoundaries) {
    pairs(boundaries<Zet16u>(), -34, 34), pairs(boundaries<Zet16s>(), -34, 34);
    pairs(boundaries<Zet16sc>(), -34, 35, 3), pairs(boundaries<Zet32sc>(), -33, 66, 3);
}

// An estimated quotient is the same wherever its pixel stands in its row.
TEST(Arithmetic, EstimatedQuotientsDoNotDependOnThePlace) {
    Arith<Zet32f> f(Op::Div, false);
    Random r("place");
    Image<Zet32f> a(64, 1, 1, 256), b(64, 1, 1, 256);
    f.prepare(r, a, b);
    for (int x = 0; x < 64; ++x) a.set(0, x, a.at(0, x) == 0 ? 3 : a.at(0, x)); // four pixels with a zero among them are divided exactly
    const auto run = [&](int from, int width, float* d) {
        test::run(f, Operands<const float*, float*>{a.data() + from, 256, b.data() + from, 256, d, 256, {width, 1}});
    };
    float alone[64];
    for (int x = 0; x < 64; ++x) run(x, 1, &alone[x]);
    for (int from = 0; from < 20; ++from)
        for (int width = 1; width <= 40; ++width) {
            Image<Zet32f> d(r, width, 1, 1);
            for (int x = 0; x < width; ++x) d.expect(0, x, alone[from + x]);
            run(from, width, d.data());
            ASSERT_TRUE(d.intact()) << from;
        }
}

// --- Which calls share their work, and that the caller may be one of many threads ----------------------------------

struct ForkFrom { // the least width plus height, in samples of one channel
    int unscaled, half, down;
};

// C1 members that fork from a bound on some paths; C3 and C4 of two images follow them. All else forks always or never.
const std::map<std::string, ForkFrom> bounds = {
    {"zetiAdd_8u_C1IRSfs", {0, 0, 256}},      {"zetiAdd_16s_C1RSfs", {256, 256, 256}},  {"zetiAdd_32f_C1R", {256, 256, 256}},
    {"zetiSub_8u_C1IRSfs", {0, 0, 256}},      {"zetiSub_16s_C1RSfs", {256, 256, 256}},  {"zetiSub_16s_C1IRSfs", {0, 256, 128}},
    {"zetiSub_32f_C1R", {256, 256, 256}},     {"zetiMul_8u_C1RSfs", {0, 128, 256}},     {"zetiMul_8u_C1IRSfs", {0, 256, 256}},
    {"zetiMul_16s_C1RSfs", {0, 128, 128}},    {"zetiMul_16s_C1IRSfs", {0, 256, 0}},     {"zetiAddC_8u_C1IRSfs", {0, 256, 256}},
    {"zetiAddC_16s_C1RSfs", {256, 256, 256}}, {"zetiAddC_16s_C1IRSfs", {0, 256, 256}},  {"zetiAddC_32f_C1R", {256, 256, 256}},
    {"zetiSubC_8u_C1IRSfs", {0, 256, 256}},   {"zetiSubC_16s_C1RSfs", {256, 256, 256}}, {"zetiSubC_16s_C1IRSfs", {0, 256, 0}},
    {"zetiSubC_32f_C1R", {256, 256, 256}},    {"zetiMulC_8u_C1IRSfs", {0, 0, 128}},     {"zetiMulC_16s_C1IRSfs", {0, 256, 256}},
};

TEST(Threads, ForkFromTheirBounds) {
    each_arith([]<class T>(Arith<T> f) {
        const int channels = f.layout.channels;
        const auto found = bounds.find(Arith<T>(f.op, f.constant, f.inPlace).name());
        const ForkFrom from = found == bounds.end() || (f.constant && channels > 1) ? ForkFrom{} : found->second;
        std::vector<T> image(300 * 256 * 4);
        f.constants.fill(f.op == Op::Add ? T{} : number<T>(4));
        const auto asks = [&](int width, int height, int s) {
            const int step = channels * width * static_cast<int>(sizeof(T));
            standin.threads = 1, standin.thread_queries = 0;
            f.s = s;
            run(f, Operands<const T*, T*>{image.data(), step, image.data(), step, image.data(), step, {width, height}});
            return standin.thread_queries > 0;
        };
        const struct { int s, bound; } paths[] = {{0, from.unscaled}, {1, from.half}, {2, from.down}, {7, from.down}, {-1, 0}, {-40, 0}};
        for (const auto& path : paths) {
            if (is_float<T> && path.s != 0) continue;
            if (f.constant && f.op == Op::Add) f.constants.fill(number<T>(path.s == 0 ? 4 : 0)); // neither a copy nor, at -40, a fill
            for (const int pixels : {1, path.bound / 2 / channels, (path.bound - 1) / channels}) {
                const int width = std::max(pixels, 1), height = path.bound - width * channels;
                const std::string told = f.name() + ", scale " + std::to_string(path.s) + ", width " + std::to_string(width);
                EXPECT_EQ(asks(width, std::max(height, 1), path.s), f.forks()) << told;
                EXPECT_FALSE(height > 1 && asks(width, height - 1, path.s)) << told;
            }
        }
        EXPECT_EQ(asks(300, 100, 3), f.forks()) << f.name();
        EXPECT_FALSE(!is_float<T> && asks(300, 100, 70)) << f.name() << ": a region of zeros is filled serially";
    });
    standin.reset();
}

TEST(Threads, CallsFromAParallelRegionOfTheCaller) {
    standin.threads = 3;
    for (const int levels : {1, 2}) {
        omp_set_max_active_levels(levels);
#pragma omp parallel for num_threads(3) schedule(static, 1)
        for (int i = 0; i < 60; ++i) {
            Random r(std::to_string(i));
            Arith<Zet8u> sum(Op::Add, false);
            Arith<Zet16s> product(Op::Mul, true, true, pixel_layouts[1]);
            sum.s = 1, product.s = 5;
            check(sum, r, 50, 40), check(product, r, 50, 40);
        }
    }
    omp_set_max_active_levels(1);
    standin.reset();
}

} // namespace
