// SPDX-License-Identifier: Apache-2.0
// The claims of docs/numerics.md, one by one: prints each with its answer, and fails if one does not hold.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <vector>
#include <xmmintrin.h>
#include <zeti/zeti.h>

namespace {

bool all_hold = true;

void claim(bool holds, const char *text) {
    std::printf("%s  %s\n", holds ? "ok " : "NOT", text);
    all_hold &= holds;
}

// One pixel through a call; two_images takes the first operand first, as the calls do.
template <class T, class Call, class... Scale> T two_images(Call call, T src1, T src2, Scale... scale) {
    T dst{};
    call(&src1, int{sizeof(T)}, &src2, int{sizeof(T)}, &dst, int{sizeof(T)}, ZetiSize{1, 1}, scale...);
    return dst;
}
template <class T, class Call, class... Scale> T with_constant(Call call, T src, T value, Scale... scale) {
    T dst{};
    call(&src, int{sizeof(T)}, value, &dst, int{sizeof(T)}, ZetiSize{1, 1}, scale...);
    return dst;
}

Zet8u add(int a, int b, int s) { return two_images<Zet8u>(zetiAdd_8u_C1RSfs, Zet8u(a), Zet8u(b), s); }
Zet16s sub(int a, int b, int s) { return two_images<Zet16s>(zetiSub_16s_C1RSfs, Zet16s(a), Zet16s(b), s); }
Zet16s mul(int a, int b, int s) { return two_images<Zet16s>(zetiMul_16s_C1RSfs, Zet16s(a), Zet16s(b), s); }
Zet16u mul16u(int a, int b, int s) { return two_images<Zet16u>(zetiMul_16u_C1RSfs, Zet16u(a), Zet16u(b), s); }
Zet8u div8(int a, int b, int s) { return two_images<Zet8u>(zetiDiv_8u_C1RSfs, Zet8u(a), Zet8u(b), s); }
Zet16s div16(int a, int b, int s) { return two_images<Zet16s>(zetiDiv_16s_C1RSfs, Zet16s(a), Zet16s(b), s); }
Zet16u div16u(int a, int b, int s) { return two_images<Zet16u>(zetiDiv_16u_C1RSfs, Zet16u(a), Zet16u(b), s); }
Zet32f div(Zet32f a, Zet32f b) { return two_images<Zet32f>(zetiDiv_32f_C1R, a, b); }

constexpr Zet32f inf = std::numeric_limits<Zet32f>::infinity(), largest = std::numeric_limits<Zet32f>::max();

bool same(Zet32f a, Zet32f b) { return a == b && std::signbit(a) == std::signbit(b); }

void the_rule() {
    claim(add(1, 2, 1) == 2 && add(2, 3, 1) == 2 && add(3, 4, 1) == 4, "Add 8u, scale 1: 1.5 -> 2, 2.5 -> 2, 3.5 -> 4");
    claim(sub(0, -1, 1) == 0 && sub(0, -3, 1) == -2 && sub(0, -5, 1) == -2, "Sub 16s, scale 1: -0.5 -> 0, -1.5 -> -2, -2.5 -> -2");
    claim(add(200, 100, 0) == 255 && add(200, 100, 1) == 150, "Add 8u: 200 + 100 saturates at scale 0, and is 150 at scale 1");
    claim(add(10, 20, -2) == 120 && add(10, 60, -2) == 255, "Add 8u, scale -2: (10 + 20) * 4 = 120, (10 + 60) * 4 saturates");
    claim(add(255, 255, 9) == 1 && add(255, 255, 10) == 0, "Add 8u: 510 is 1 at scale 9 and 0 at scale 10");
    claim(mul(-1, 1, -15) == -32768 && mul(0, 77, -15) == 0, "Mul 16s, scale -15: -1 -> -32768, 0 -> 0");
    claim(mul16u(65535, 65535, 32) == 1 && mul16u(46341, 46340, 32) == 0, "Mul 16u, scale 32: 1 above 2^31, else 0");
}

void shifts_and_comparisons() {
    const auto shift = [](auto call, auto src, Zet32u n) {
        decltype(src) dst = 77;
        call(&src, int{sizeof src}, n, &dst, int{sizeof dst}, ZetiSize{1, 1});
        return dst;
    };
    claim(shift(zetiRShiftC_8s_C1R, Zet8s(-1), 9) == -1 && shift(zetiRShiftC_8s_C1R, Zet8s(5), 9) == 0,
          "RShiftC 8s by 9: -1 -> -1, 5 -> 0");
    claim(shift(zetiLShiftC_8u_C1R, Zet8u(255), 8) == 0 && shift(zetiRShiftC_32s_C1R, Zet32s(-7), 0xFFFFFFFFu) == -1,
          "LShiftC 8u by 8: 0; RShiftC 32s by 2^32 - 1: the sign");
    const auto equal = [](Zet32f a, Zet32f b, Zet32f eps) {
        Zet8u mask = 77;
        zetiCompareEqualEps_32f_C1R(&a, 4, &b, 4, &mask, 1, ZetiSize{1, 1}, eps);
        return mask;
    };
    constexpr Zet32f nan = std::numeric_limits<Zet32f>::quiet_NaN();
    claim(equal(1, 1, 0) == 255 && equal(1, 1, -0.0f) == 255 && equal(nan, nan, inf) == 0 && equal(inf, inf, inf) == 0 &&
              equal(1, 1, nan) == 0,
          "CompareEqualEps: 1 and 1 within 0 and -0; neither two NaN nor two infinities within anything, nothing within NaN");
    Zet32f zero = -0.0f;
    zetiThreshold_32f_C1IR(&zero, 4, ZetiSize{1, 1}, 0.0f, zetCmpLess);
    claim(same(zero, -0.0f), "Threshold 32f: -0 is not below 0");
}

void sums_and_norms() {
    const Zet8u bytes[3] = {255, 255, 254};
    Zet64f c1 = 0, c3[3];
    zetiMean_8u_C1R(bytes, 3, {3, 1}, &c1), zetiMean_8u_C3R(bytes, 3, {1, 1}, c3);
    claim(c1 == 764.0 / 3 && c3[2] == 254, "Mean: 764 / 3 on C1; of one pixel the pixel");

    const auto wide_difference = [](int width) {
        const std::vector<Zet16u> zeros(width), full(width, 65535);
        Zet64f norm = 0;
        zetiNormDiff_L1_16u_C1R(zeros.data(), 1, full.data(), 1, {width, 1}, &norm);
        return norm;
    };
    claim(wide_difference(32768) == 65535.0 * 32768 && wide_difference(32769) == 65535.0 * 32769 - 0x1p32,
          "NormDiff_L1 16u: 32769 differences of 65535 are less than nothing, 32768 are not");

    const std::vector<Zet16s> lowest(8, -32768);
    Zet64f narrow = 0, wide = 0;
    zetiNorm_Inf_16s_C1R(lowest.data(), 16, {7, 1}, &narrow), zetiNorm_Inf_16s_C1R(lowest.data(), 16, {8, 1}, &wide);
    claim(narrow == 32768 && wide == 32767, "Norm_Inf 16s C1 of -32768: 32768 at width 7, 32767 at width 8");

    std::vector<Zet32f> row(1000, 0.1F);
    const Zet64f exact = 1000 * Zet64f{0.1F};
    Zet64f fast = 0, accurate = 0;
    zetiSum_32f_C1R(row.data(), 0, {1000, 1000}, &fast, zetAlgHintFast),
        zetiSum_32f_C1R(row.data(), 0, {1000, 1000}, &accurate, zetAlgHintAccurate);
    claim(std::fabs(fast / 1000 - exact) <= 258 * 0x1p-24 * exact && std::fabs(accurate / 1000 - exact) <= 1e6 * 0x1p-53 * exact,
          "Sum 32f of 1000 rows of 1000: within 258 * 2^-24, and with the hint within 10^6 * 2^-53");

    const Zet32f samples[4] = {std::numeric_limits<Zet32f>::quiet_NaN(), 2, -inf, 1}, nothing = -inf;
    Zet32f greatest = 0, least = 0, none = 0;
    zetiMinMax_32f_C1R(samples, 16, {4, 1}, &least, &greatest), zetiMax_32f_C1R(&nothing, 4, {1, 1}, &none);
    claim(greatest == 2 && least == -inf && none == -largest,
          "MinMax 32f passes over NaN; Max of minus infinity is the lowest finite number");

    const Zet32f tiny[2] = {1e-30F, 0};
    Zet64f quotient = 7;
    claim(zetiNormRel_L2_32f_C1R(tiny + 1, 4, tiny, 4, {1, 1}, &quotient, zetAlgHintFast) == zetStsDivByZero && quotient == 0 &&
              zetiNormRel_L2_32f_C1R(tiny + 1, 4, tiny, 4, {1, 1}, &quotient, zetAlgHintAccurate) == zetStsNoErr && quotient == 1,
          "NormRel_L2 32f: the square of 1e-30 is 0 on the fast path, and counts with the hint");
}

void integer_quotients() {
    claim(div8(2, 7, 0) == 4 && div8(2, 5, 0) == 2 && div8(3, 7, -4) == 37, "Div 8u: 7/2 -> 4, 5/2 -> 2, 7/3 * 16 = 37.3 -> 37");
    claim(div8(0, 7, 0) == 255 && div8(0, 0, 0) == 0, "Div 8u by 0: 7 -> 255, 0 -> 0");
    claim(div16(0, 7, 20) == 32767 && div16(0, -7, -40) == -32768, "Div 16s by 0, whatever the scale: the bound of the dividend's sign");
    claim(div16u(58558, 21, -26) == 24066, "Div 16u, scale -26: 21/58558 gives 24066, the exact quotient rounds to 24067");
    const Zet32sc q = two_images<Zet32sc>(zetiDiv_32sc_C1RSfs, {0, 0}, {5, -5}, 0);
    claim(q.re == 2147483647 && q.im == -2147483647 - 1, "Div 32sc by 0: each part takes its own bound");
    const Zet16sc low = two_images<Zet16sc>(zetiDiv_16sc_C1RSfs, {0, 0}, {5, -5}, -33),
                  high = two_images<Zet16sc>(zetiDiv_16sc_C1RSfs, {0, 1}, {9, 0}, 33);
    claim(low.re == 0 && low.im == 0 && high.re == 0 && high.im == 0, "Div 16sc, scale -33: by 0 gives 0; scale 33: 0");
    const Zet16sc p = two_images<Zet16sc>(zetiMul_16sc_C1RSfs, {-32768, -32768}, {-32768, -32768}, 16);
    claim(p.re == 0 && p.im == -32768, "Mul 16sc: the sum 2^31 wraps to -2^31");
}

template <class T, class Call, class... Scale> T of_one(Call call, T src, Scale... scale) {
    T dst{};
    call(&src, int{sizeof(T)}, &dst, int{sizeof(T)}, ZetiSize{1, 1}, scale...);
    return dst;
}

void roots_and_products() {
    const auto divided = [](ZetRoundMode mode, int a, int b, int s) {
        return two_images<Zet16s>(zetiDiv_Round_16s_C1RSfs, Zet16s(a), Zet16s(b), mode, s);
    };
    claim(divided(zetRndZero, 2, -5, 0) == -2 && divided(zetRndNear, 2, -5, 0) == -2 && divided(zetRndFinancial, 2, -5, 0) == -3,
          "Div_Round 16s, -2.5: -2 towards zero and to even, -3 away from zero");
    claim(divided(zetRndNear, 0, 7, 15) == 32767 && divided(zetRndNear, 0, 7, 16) == 0, "Div_Round 16s by 0: 32767 at scale 15, 0 at 16");
    claim(of_one<Zet16u>(zetiSqrt_16u_C1RSfs, 4187, -7) == 8283 && of_one<Zet16u>(zetiSqrt_16u_C1RSfs, 25, 1) == 2,
          "Sqrt 16u: 8282.5001 -> 8283, 2.5 -> 2");
    claim(of_one<Zet16s>(zetiSqrt_16s_C1RSfs, -4, 0) == 0 && std::isnan(of_one<Zet32f>(zetiSqrt_32f_C1R, -inf)) &&
              same(of_one<Zet32f>(zetiSqrt_32f_C1R, -0.0F), -0.0F),
          "Sqrt: -4 gives 0 on 16s, -inf NaN on 32f; -0 gives -0");
    bool truncated = true;
    for (unsigned a = 0; a < 65536; a += 5)
        for (const unsigned b : {1U, 2U, 257U, 32768U, 65534U, 65535U})
            truncated &= two_images<Zet16u>(zetiMulScale_16u_C1R, Zet16u(a), Zet16u(b)) == a * b / 65535;
    claim(truncated, "MulScale 16u: the product by 65535, truncated");
}

void logarithms_and_exponentials() {
    const auto ln8 = [](int x, int s) { return of_one<Zet8u>(zetiLn_8u_C1RSfs, Zet8u(x), s); };
    const auto exp8 = [](int x, int s) { return of_one<Zet8u>(zetiExp_8u_C1RSfs, Zet8u(x), s); };
    claim(ln8(2, 1) == 0 && ln8(3, 1) == 1 && ln8(20, 1) == 1 && ln8(21, 1) == 2, "Ln 8u, scale 1: 1 from 3 on, 2 from 21 on");
    claim(ln8(54, 3) == 0 && ln8(55, 3) == 1 && ln8(255, 4) == 0, "Ln 8u: 1 from 55 on at scale 3, 0 at scale 4");
    claim(exp8(0, 1) == 1 && exp8(1, 1) == 1 && exp8(2, 1) == 4 && exp8(7, 1) == 255,
          "Exp 8u, scale 1: 0.5 -> 1, 1.36 -> 1, 3.69 -> 4, 548 -> 255");
    claim(exp8(0, -7) == 128 && exp8(1, -7) == 255, "Exp 8u, scale -7: 128 for 0, else 255");
    const Zet16s samples[] = {0, -1};
    Zet16s dst[2];
    claim(zetiLn_16s_C1RSfs(samples, 4, dst, 4, {2, 1}, 0) == zetStsLnNegArg &&
              zetiLn_16s_C1RSfs(samples, 2, dst, 2, {1, 2}, 0) == zetStsLnZeroArg && dst[0] == -32768 && dst[1] == -32768,
          "Ln 16s of 0 and -1: in one row the negative sample is warned of, in two the first row");
    const auto ln = [](Zet32f x) { return of_one<Zet32f>(zetiLn_32f_C1R, x); };
    const auto exp = [](Zet32f x) { return of_one<Zet32f>(zetiExp_32f_C1R, x); };
    claim(ln(0) == -inf && ln(-0.0F) == -inf && std::isnan(ln(-1)) && std::isnan(ln(-inf)) && ln(inf) == inf && std::isnan(ln(NAN)),
          "Ln 32f at its edges");
    claim(exp(-inf) == 0 && exp(88.73F) == inf && exp(inf) == inf && std::isnan(exp(NAN)) && exp(0x1p-149F) == 1, "Exp 32f at its edges");
    double worst_ln = 0, worst_exp = 0;
    const auto off = [](double exact, Zet32f result) {
        return std::abs(result - exact) / std::ldexp(1.0, std::max(std::ilogb(exact) - 23, -149));
    };
    for (std::uint32_t bits = 1; bits < 0x7F800000; bits += 4999) {
        Zet32f x;
        std::memcpy(&x, &bits, sizeof x);
        if (x != 1) worst_ln = std::max(worst_ln, off(std::log(double{x}), ln(x)));
        if (x < 88) worst_exp = std::max({worst_exp, off(std::exp(double{x}), exp(x)), off(std::exp(-double{x}), exp(-x))});
    }
    std::printf("     Ln and Exp 32f: %.2f and %.2f units of the last place off at most\n", worst_ln, worst_exp);
    claim(worst_ln <= 1.07 && worst_exp <= 1.89, "Ln 32f within 1.07, Exp 32f within 1.89 units of the last place");
}

void conversions() {
    const auto to8u = [](Zet32f v, int mode, int s = 0) {
        Zet8u dst = 77;
        zetiConvert_32f8u_C1RSfs(&v, 4, &dst, 1, {1, 1}, ZetRoundMode(mode), s);
        return int{dst};
    };
    claim(to8u(1.9F, zetRndZero) == 1 && to8u(0.5F, zetRndNear) == 0 && to8u(1.5F, zetRndNear) == 2 && to8u(2.5F, zetRndFinancial) == 3 &&
              to8u(2.5F, 7) == 3,
          "Convert 32f8u: 1.9 -> 1 towards zero; 0.5 -> 0, 1.5 -> 2 to even; 2.5 -> 3 financial, and by mode 7");
    claim(to8u(0x1.FFFFFEp-2F, zetRndFinancial) == 0 && to8u(0.5F, zetRndFinancial) == 1,
          "Convert 32f8u, financial: just below 0.5 -> 0, 0.5 -> 1");
    claim(to8u(0x1p-149F, zetRndNear, -150) == 2 && to8u(0, zetRndNear, -400) == 0 && to8u(inf, zetRndNear, 400) == 255 &&
              to8u(largest, zetRndNear, 400) == 0,
          "Convert 32f8u beyond the powers that are floats: 2^-149 * 2^150 = 2, 0 stays, infinity is 255");
    const auto of_nan = [](auto call, auto dst) {
        const Zet32f nan = NAN;
        call(&nan, 4, &dst, int{sizeof dst}, ZetiSize{1, 1}, zetRndNear, 0);
        return dst;
    };
    claim(of_nan(zetiConvert_32f8u_C1RSfs, Zet8u{7}) == 0 && of_nan(zetiConvert_32f16s_C1RSfs, Zet16s{7}) == -32768 &&
              of_nan(zetiConvert_32f32s_C1RSfs, Zet32s{7}) == -2147483647 - 1 && of_nan(zetiConvert_32f32u_C1RSfs, Zet32u{7}) == 0,
          "Convert of NaN: the least value of the type");
    bool close = true;
    for (int x = -32768, last = 0, lastFast = 0; x <= 32767; ++x) {
        const Zet16s src = static_cast<Zet16s>(x);
        Zet8u fast = 0, accurate = 0;
        zetiScale_16s8u_C1R(&src, 2, &fast, 1, {1, 1}, zetAlgHintFast);
        zetiScale_16s8u_C1R(&src, 2, &accurate, 1, {1, 1}, zetAlgHintAccurate);
        close &= std::abs(fast - accurate) <= 1 && accurate >= last && fast >= lastFast && (x > -32768 || (fast == 0 && accurate == 0));
        last = accurate, lastFast = fast;
        if (x == 32767) close &= fast == 255 && accurate == 255;
    }
    claim(close, "Scale 16s8u: both paths monotonic from 0 to 255, at most 1 apart");
}

void float_quotients() {
    std::mt19937 random(1);
    const auto any = [&](int exponents) {
        return std::ldexp(1 + Zet32f(random() >> 9) * 0x1p-23F, int(random() % unsigned(2 * exponents)) - exponents) *
               (random() % 2 ? 1.0F : -1.0F);
    };
    double worst = 0x1p-60;
    std::vector<Zet32f> a(1 << 20), b(a.size()), q(a.size());
    std::generate(a.begin(), a.end(), [&] { return any(60); });
    std::generate(b.begin(), b.end(), [&] { return any(60); });
    zetiDiv_32f_C1R(a.data(), 4, b.data(), 4, q.data(), 4, {int(a.size()), 1});
    int rounded = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        worst = std::max(worst, std::abs(q[i] / (double{b[i]} / a[i]) - 1));
        rounded += q[i] == b[i] / a[i];
    }
    std::printf("     Div 32f, a million quotients: relative error up to 2^%.2f, %.0f %% correctly rounded\n", std::log2(worst),
                100.0 * rounded / double(a.size()));
    claim(worst < 0x1p-22, "Div 32f: relative error below 2^-22");
    claim(div(0.0F, 2) == inf && div(-0.0F, 2) == inf && div(0.0F, -2) == -inf && std::isnan(div(0.0F, 0)),
          "Div 32f by 0 of either sign: infinity of the dividend's sign, NaN for 0");
    claim(std::isnan(div(inf, 1)) && std::isnan(div(-inf, 0)), "Div 32f by infinity: NaN");
    claim(std::isnan(div(1e-40F, 1)) && std::isnan(div(-1e-40F, 0)), "Div 32f by a denormal: NaN");
    claim(div(0x1p126F, 0x1p127F) == 0 && div(-largest, largest) == 0 && std::abs(div(0x1.FFFFFEp125F, 0x1.FFFFFEp125F) - 1) < 0x1p-22F,
          "Div 32f by 2^126 and more: 0; below: the quotient");
    claim(std::isnan(div(2, NAN)) && std::isnan(div(NAN, 2)), "Div 32f with a NaN: NaN");
    bool infinite_or_nan = true;
    for (int i = 0; i < 1000; ++i) {
        const Zet32f v = div(std::abs(any(60)), inf);
        infinite_or_nan &= v == inf || std::isnan(v);
    }
    claim(infinite_or_nan, "Div 32f of infinity: the infinity, or NaN");
    bool true_quotients = true;
    for (int i = 0; i < 1000; ++i) {
        const Zet32f x = any(60), y = any(60);
        true_quotients &= same(with_constant<Zet32f>(zetiDivC_32f_C1R, x, y), x / y);
    }
    claim(true_quotients && with_constant<Zet32f>(zetiDivC_32f_C1R, 1, inf) == 0 &&
              with_constant<Zet32f>(zetiDivC_32f_C1R, 0x1p127F, 0x1p126F) == 2,
          "DivC 32f: the true quotient");
    const Zet32fc z = two_images<Zet32fc>(zetiDiv_32fc_C1R, {0, 0}, {-1, 0}), w = two_images<Zet32fc>(zetiDiv_32fc_C1R, {1, 1}, {3, 1});
    claim(z.re == -inf && std::isnan(z.im) && w.re == 2 && w.im == -1, "Div 32fc: (-1, 0)/0 is (-inf, NaN); (3 + i)/(1 + i) = 2 - i");
}

void floats() {
    claim(same(with_constant<Zet32f>(zetiAddC_32f_C1R, -0.0F, 0.0F), 0.0F), "AddC 32f, value 0: -0 becomes +0");
    claim(same(with_constant<Zet32f>(zetiMulC_32f_C1R, -3.0F, 0.0F), -0.0F) &&
              std::isnan(with_constant<Zet32f>(zetiMulC_32f_C1R, inf, 0.0F)),
          "MulC 32f, value 0: -3 gives -0, infinity gives NaN");
    const unsigned before = _mm_getcsr();
    _mm_setcsr(0xDF80); // rounds upwards, flushes denormals to zero
    const Zet32f third = with_constant<Zet32f>(zetiDivC_32f_C1R, 1, 3), tiny = with_constant<Zet32f>(zetiMulC_32f_C1R, 0x1p-126F, 0.5F);
    const Zet8u third8 = div8(3, 7, 0);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    claim(same(third, 0x1.555556p-2F) && same(tiny, 0x1p-127F) && third8 == 2 && after == 0xDF80,
          "The caller's rounding and flushing change nothing, and are as they were afterwards");
}

void overlaps() {
    Zet8u row[40] = {};
    zetiAddC_8u_C1RSfs(row, 40, 1, row + 1, 40, {39, 1}, 0);
    bool counts = true;
    for (int i = 0; i < 40; ++i) counts &= row[i] == i;
    claim(counts, "AddC 8u one sample ahead of its source: from left to right");
}

Zet8u line(int x0, int x1, int y0, int y1, int v) {
    const Zet32s levels[2] = {x0, x1}, values[2] = {y0, y1};
    const Zet8u src = Zet8u(v);
    Zet8u dst = 0;
    zetiLUT_Linear_8u_C1R(&src, 1, &dst, 1, {1, 1}, values, levels, 2);
    return dst;
}

void tables_and_moments() {
    claim(line(10, 20, 0, 5, 11) == 1 && line(0, 100, -1, -1, 50) == 0, "LUT_Linear 8u: 0.5 -> 1, -1 + 0.5 -> 0");
    claim(line(-5, 1, 100, 0, 0) == 100 && line(300, 400, 5, 6, 255) == 5,
          "LUT_Linear 8u: the one sample of an interval has the value at its level, also beyond 255");

    const Zet8u src[4] = {1, 0, 0, 2}; // the centre is at x = 2, the moment of second order 6
    ZetiMomentState_64s *state = nullptr;
    if (zetiMomentInitAlloc_64s(&state, zetAlgHintNone) != zetStsNoErr) return claim(false, "room for a record of moments");
    Zet64s about = 0, scaled = 0, normalized = 0, untouched = 77;
    const bool done = zetiMoments64s_8u_C1R(src, 4, {4, 1}, state) == zetStsNoErr &&
                      zetiGetCentralMoment_64s(state, 0, 2, 0, &about, 0) == zetStsNoErr &&
                      zetiGetCentralMoment_64s(state, 0, 3, 0, &scaled, 1) == zetStsNoErr &&
                      zetiGetNormalizedCentralMoment_64s(state, 0, 2, 0, &normalized, -1) == zetStsNoErr &&
                      zetiGetCentralMoment_64s(state, 2, -1, 0, &untouched, 0) == zetStsNoErr;
    claim(done && about == 6 && scaled == -3 && normalized == 1 && untouched == 77,
          "64s moments of 1 0 0 2: second order 6, third -6 / 2, normalised 6 / 9 * 2 -> 1; orders 2 and -1 write nothing");
    zetiMomentFree_64s(state);
}

} // namespace

int main() {
    the_rule();
    shifts_and_comparisons();
    sums_and_norms();
    integer_quotients();
    roots_and_products();
    logarithms_and_exponentials();
    conversions();
    float_quotients();
    floats();
    overlaps();
    tables_and_moments();
    return all_hold ? 0 : 1;
}
