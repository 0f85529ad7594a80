// SPDX-License-Identifier: Apache-2.0
// What maps a sample of an interval of levels: a constant, a line, a cubic. Each has two forms: on integers it fills a table, on 32f
// it computes coefficients first and then each sample.
#pragma once

#include "core/simd.h"
#include "stats/levels.h"

namespace zeti {

// A curve through values at levels.
template <class V> struct Curve {
    const V* value;
    Levels<V> levels;

    // In double precision: integers may be 33 bits apart.
    double x(int k, int origin) const { return static_cast<double>(levels[k]) - static_cast<double>(levels[origin]); }
    double y(int k, int origin) const { return static_cast<double>(value[k]) - static_cast<double>(value[origin]); }
    double slope(int k) const { return y(k + 1, k) / x(k + 1, k); }
};

// Clamped, then without what is behind the point; the least sample for NaN.
template <class T> T saturated(double v) {
    constexpr double low = min_of<T>, high = max_of<T>;
    v = v > low ? v : low;
    return static_cast<T>(static_cast<int>(v < high ? v : high));
}
template <class T> T saturated(Zet32s v) { return static_cast<T>(std::clamp(v, int{min_of<T>}, int{max_of<T>})); }

// The entries of a table that an interval fills, as samples.
struct Span {
    int low, high; // low up to but excluding high
    template <class T> static Span of(const Levels<Zet32s>& levels, int k, int highestLow) {
        return {std::clamp(levels[k], int{min_of<T>}, highestLow), std::clamp(levels[k + 1], int{min_of<T>}, max_of<T> + 1)};
    }
};

template <class T, class Of> void fill(T* table, Span span, Of of) {
    for (int x = span.low; x < span.high; ++x) table[x - int{min_of<T>}] = of(x);
}

// Intervals of lines and cubics begin at the largest sample at most, so that one above all samples decides about that sample; where one sample
// is left there is no curve. Both kept on purpose. `of(k)` gives the curve of an interval as a function.
template <class T, class Of> void fill_curves(T* table, const Curve<Zet32s>& curve, Of of) {
    for (int k = 0; k < curve.levels.intervals(); ++k) {
        if (curve.levels[k + 1] <= curve.levels[k]) continue;
        const Span span = Span::of<T>(curve.levels, k, max_of<T>);
        if (span.high - span.low == 1) fill(table, span, [v = saturated<T>(curve.value[k])](int) { return v; });
        else fill(table, span, of(k));
    }
}

// --- The three ------------------------------------------------------------------------------------------------------------------------

struct Steps {
    static constexpr bool searches_16 = true; // small images are mapped without a table

    template <class T> static void fill_table(T* table, const Curve<Zet32s>& curve) {
        for (int k = 0; k < curve.levels.intervals(); ++k)
            fill(table, Span::of<T>(curve.levels, k, max_of<T> + 1), [v = saturated<T>(curve.value[k])](int) { return v; });
    }

    static int64_t coefficients(int) { return 0; }
    static void prepare(const Curve<Zet32f>&, double*) {}
    static Zet32f at(const Curve<Zet32f>& curve, const double*, int k, Zet32f) { return curve.value[k]; }
};

struct Linear {
    static constexpr bool searches_16 = false;

    template <class T> static void fill_table(T* table, const Curve<Zet32s>& curve) {
        fill_curves(table, curve, [&](int k) {
            const double slope = curve.slope(k), start = curve.value[k] + 0.5 - curve.levels[k] * slope;
            return [=](int x) { return saturated<T>(start + x * slope); };
        });
    }

    static int64_t coefficients(int levels) { return levels - 1; }
    static void prepare(const Curve<Zet32f>& curve, double* slope) {
        for (int k = 0; k < curve.levels.intervals(); ++k) slope[k] = curve.slope(k);
    }
    static Zet32f at(const Curve<Zet32f>& curve, const double* slope, int k, Zet32f x) {
        const Zet32f t = x - curve.levels[k];
        return static_cast<Zet32f>(double{t} * slope[k] + double{curve.value[k]});
    }
};

// ((a t^2 + c) t) + (base + b t^2), t counted from the second of the four points.
struct CubicPolynomial {
    double a, b, c;
    double at(double base, double t) const { return (a * (t * t) + c) * t + (base + b * (t * t)); }
};

// Through the points j to j + 3, seen from point j + 1: Cramer's rule on  a x^3 + b x^2 + c x = y  for the other three (Vandermonde).
template <class V> CubicPolynomial cubic_through(const Curve<V>& curve, int j) {
    double x[3], y[3];
    for (int i = 0; i < 3; ++i) {
        const int other = j + i + (i > 0);
        x[i] = curve.x(other, j + 1), y[i] = curve.y(other, j + 1);
    }
    const auto determinant = [](const double(&p)[3], const double(&q)[3], const double(&r)[3]) {
        return p[0] * (q[1] * r[2] - q[2] * r[1]) - p[1] * (q[0] * r[2] - q[2] * r[0]) + p[2] * (q[0] * r[1] - q[1] * r[0]);
    };
    const double square[3] = {x[0] * x[0], x[1] * x[1], x[2] * x[2]}, cube[3] = {square[0] * x[0], square[1] * x[1], square[2] * x[2]};
    const double reciprocal = 1 / determinant(cube, square, x);
    return {determinant(y, square, x) * reciprocal, determinant(cube, y, x) * reciprocal, determinant(cube, square, y) * reciprocal};
}

struct Cubic {
    static constexpr bool searches_16 = false;
    static constexpr int fewest_levels = 4; // below, lines

    static int first_point(int k, int levels) { return std::clamp(k - 1, 0, levels - 4); }

    template <class T> static void fill_table(T* table, const Curve<Zet32s>& curve) {
        if (curve.levels.count < fewest_levels) return Linear::fill_table(table, curve);
        fill_curves(table, curve, [&](int k) {
            const int j = first_point(k, curve.levels.count);
            const CubicPolynomial cubic = cubic_through(curve, j);
            const double base = curve.value[j + 1] + 0.5, origin = curve.levels[j + 1];
            return [=](int x) { return saturated<T>(cubic.at(base, x - origin)); };
        });
    }

    static int64_t coefficients(int levels) {
        return levels < fewest_levels ? Linear::coefficients(levels) : 3 * Linear::coefficients(levels);
    }
    // Three arrays, one behind the other.
    static void prepare(const Curve<Zet32f>& curve, double* coefficients) {
        if (curve.levels.count < fewest_levels) return Linear::prepare(curve, coefficients);
        const int n = curve.levels.intervals();
        for (int k = 0; k < n; ++k) {
            const CubicPolynomial cubic = cubic_through(curve, first_point(k, curve.levels.count));
            coefficients[k] = cubic.a, coefficients[n + k] = cubic.b, coefficients[2 * n + k] = cubic.c;
        }
    }
    static Zet32f at(const Curve<Zet32f>& curve, const double* coefficients, int k, Zet32f x) {
        if (curve.levels.count < fewest_levels) return Linear::at(curve, coefficients, k, x);
        const int n = curve.levels.intervals(), origin = first_point(k, curve.levels.count) + 1;
        const CubicPolynomial cubic = {coefficients[k], coefficients[n + k], coefficients[2 * n + k]};
        return static_cast<Zet32f>(cubic.at(curve.value[origin], double{x} - double{curve.levels[origin]}));
    }
};

} // namespace zeti
