// SPDX-License-Identifier: Apache-2.0
// Kernels of sums: terms, or their squares, of one block of pixels of a row. `block` is how many pixels the lanes can take; add_to()
// adds what they hold to a total per channel. All integer sums are exact.
#pragma once

#include "signal/reduce.h"

namespace zeti {

// What each term is multiplied by: nothing, itself, or its sign, which makes it a magnitude.
enum class Factor { none, itself, sign };

namespace detail {

inline constexpr ptrdiff_t any_number = max_of<ptrdiff_t>;

// Adds all lanes to the sum of their channel, in the order of the samples.
template <int Channels, class V, int N, class S> void fold_lanes(const V (&acc)[N], S (&sums)[Channels]) {
    constexpr int count = register_bytes / int{sizeof(acc[0][0])};
    for (int m = 0; m < N; ++m)
        for (int k = 0; k < count; ++k) sums[(m * count + k) % Channels] += acc[m][k];
}

// Samples of 8 and 16 bits to lanes of 32, four samples at a time: use(j, v) is given the terms of samples 4j to 4j + 3 of two
// registers, those of one added to those of the other. Samples of a single channel come in any order.
template <Factor factor, int Channels, class U, class Use> [[gnu::always_inline]] inline void in_fours(Vec<U> x, Vec<U> y, Use use) {
    if constexpr (std::is_same_v<U, Zet16u>) { // there is no product of unsigned pairs
        for (const Vec<U> v : {x, y}) {
            const auto wide = factor == Factor::itself ? interleave<U>(v * v, multiply_high(v, v)) : widen<U>(v);
            use(0, wide.low), use(1, wide.high);
        }
    } else {
        const auto pair = [&](int j, auto v) __attribute__((always_inline)) { // two samples of one channel side by side
            const auto w = as_lanes<Zet16s>(v);
            const auto by = factor == Factor::itself ? w : factor == Factor::sign ? (w >> 15) | 1 : splat(Zet16s{1});
            use(j, as_lanes<Zet32u>(multiply_add_pairs(w, by)));
        };
        const auto pairs = interleave<U>(x, y);
        if constexpr (Channels == 1) {
            for (const Vec<U> v : {x, y}) {
                if constexpr (std::is_same_v<U, Zet16s>) pair(0, v);
                else pair(0, as_lanes<Zet16u>(v) & 0xFF), pair(1, as_lanes<Zet16u>(v) >> 8);
            }
        } else if constexpr (std::is_same_v<U, Zet16s>) {
            pair(0, pairs.low), pair(1, pairs.high);
        } else {
            const auto low = widen<Zet8u>(as_lanes<Zet8u>(pairs.low)), high = widen<Zet8u>(as_lanes<Zet8u>(pairs.high));
            pair(0, low.low), pair(1, low.high), pair(2, high.low), pair(3, high.high);
        }
    }
}

} // namespace detail

// Bytes of one channel: no limit.
template <class Term> struct ByteSum {
    using Total = Zet64s;
    static constexpr int channels = 1, places = places_of<1>;
    static constexpr ptrdiff_t block = detail::any_number;
    Vec<Zet64s> acc[places] = {};

    template <int p, int N> void add(const Registers<Zet8u, N>& x, const Registers<Zet8u, N>& y) { acc[p] += sum(x) + sum(y); }
    template <int p, int N> void add_rest(const Registers<Zet8u, N>& x, int) { acc[p] += sum(x); }
    void add_to(Total (&totals)[1]) const { detail::fold_lanes(acc, totals); }

private:
    template <int N> static Vec<Zet64s> sum(const Registers<Zet8u, N>& x) {
        if constexpr (N == 2) return sum_of_distances(x[0], x[1]);
        else return sum_of_distances(x[0], Vec<Zet8u>{});
    }
};

// Lanes of 32 bits, whose blocks are such that each channel's sum of a block fits 32 bits with its sign. Differences of 16u alone have
// longer ones, and their sums wrap (ownpis_NormL1Diff_16u_C1); the blocks of ownpis_Sum_16u_C1 are half as long.
template <Factor factor, class Term, class T, int Channels> struct NarrowSum {
    using U = ValueOf<Term, T>;
    static constexpr int channels = Channels, places = places_of<Channels>;
    static constexpr bool wraps = std::is_same_v<T, Zet16u> && std::is_same_v<Term, Difference>;
    static constexpr bool bytes = std::is_same_v<T, Zet8u> && factor != Factor::itself;
    static constexpr ptrdiff_t block = bytes ? 0x808080 : wraps ? 65536 : 32768;
    // 16u: the top bit of a total is no sign, but where negative blocks were added.
    using Total = std::conditional_t<std::is_same_v<T, Zet16u> && !wraps, uint64_t, Zet64s>;
    Vec<Zet32u> acc[places] = {};

    template <int p, int N> void add(const Registers<T, N>& x, const Registers<T, N>& y) { add_terms<p>(Term::of(x), Term::of(y)); }
    template <int p, int N> void add_rest(const Registers<T, N>& x, int) { add_terms<p>(Term::of(x), Vec<U>{}); }
    void add_to(Total (&totals)[Channels]) const {
        Zet32u sums[Channels] = {};
        detail::fold_lanes(acc, sums);
        for (int c = 0; c < Channels; ++c) totals[c] += static_cast<Total>(Zet64s{static_cast<Zet32s>(sums[c])});
    }

private:
    template <int p> void add_terms(Vec<U> x, Vec<U> y) {
        detail::in_fours<factor, Channels, U>(x, y, [&](int j, Vec<Zet32u> v) { acc[(p * (lanes<T> / 4) + j) % places] += v; });
    }
};

// Lanes of 64 bits: squares of 16 bits, whose sums of two fill 32. What is added is two of these side by side, and the upper one once
// more by itself; both sums wrap, and the lower one is what is left of the first without the second.
template <class Term, class T, int Channels> struct WideSum {
    using U = ValueOf<Term, T>;
    static constexpr int channels = Channels, places = places_of<Channels>;
    static constexpr ptrdiff_t block = detail::any_number;
    using Total = uint64_t;
    Vec<uint64_t> both[places] = {}, upper[places] = {};

    template <int p, int N> void add(const Registers<T, N>& x, const Registers<T, N>& y) { add_squares<p>(Term::of(x), Term::of(y)); }
    template <int p, int N> void add_rest(const Registers<T, N>& x, int) { add_squares<p>(Term::of(x), Vec<U>{}); }
    void add_to(Total (&totals)[Channels]) const {
        for (int m = 0; m < places; ++m)
            for (int k = 0; k < 2; ++k) {
                const uint64_t odd = upper[m][k];
                totals[(4 * m + 2 * k) % Channels] += both[m][k] - (odd << 32);
                totals[(4 * m + 2 * k + 1) % Channels] += odd;
            }
    }

private:
    template <int p> void add_squares(Vec<U> x, Vec<U> y) {
        detail::in_fours<Factor::itself, Channels, U>(x, y, [&](int j, Vec<Zet32u> v) {
            const auto two = as_lanes<uint64_t>(v);
            both[(2 * p + j) % places] += two, upper[(2 * p + j) % places] += two >> 32;
        });
    }
};

// Single precision: a row at a time. Four samples of each channel and more are summed side by side, then together.
template <Factor factor, class Term, int Channels> struct FloatSum {
    using Total = Zet64f;
    static constexpr int channels = Channels, places = places_of<Channels>;
    static constexpr ptrdiff_t block = detail::any_number;
    Vec<Zet32f> acc[2 * places] = {};

    template <int p, int N> void add(const Registers<Zet32f, N>& x, const Registers<Zet32f, N>& y) {
        acc[p] += term(x), acc[places + p] += term(y);
    }
    template <int p, int N> void add_rest(const Registers<Zet32f, N>& x, int) { acc[p] += term(x); }
    void add_to(Total (&totals)[Channels]) const {
        Zet32f sums[Channels] = {};
        Vec<Zet32f> both[places];
        for (int p = 0; p < places; ++p) both[p] = acc[p] + acc[places + p];
        detail::fold_lanes(both, sums);
        for (int c = 0; c < Channels; ++c) totals[c] += static_cast<Zet64f>(sums[c]);
    }

private:
    template <int N> static Vec<Zet32f> term(const Registers<Zet32f, N>& x) {
        const Vec<Zet32f> v = Term::of(x);
        return factor == Factor::itself ? v * v : v;
    }
};

// Double precision throughout: samples are widened before differences and squares are taken.
template <Factor factor, class Term, int Channels> struct DoubleSum {
    using Total = Zet64f;
    static constexpr int channels = Channels, places = places_of<Channels>;
    static constexpr ptrdiff_t block = detail::any_number;
    Vec<Zet64f> acc[2 * places] = {};

    template <int p, int N> void add(const Registers<Zet32f, N>& x, const Registers<Zet32f, N>& y) { add_rest<p>(x, 0), add_rest<p>(y, 0); }
    template <int p, int N> void add_rest(const Registers<Zet32f, N>& x, int) {
        Registers<Zet64f, N> low, high;
        for (int k = 0; k < N; ++k) {
            const auto wide = widen_to_double<Zet32f>(x[k]);
            low.v[k] = wide.low, high.v[k] = wide.high;
        }
        acc[2 * p] += term(low), acc[2 * p + 1] += term(high);
    }
    void add_to(Total (&totals)[Channels]) const { detail::fold_lanes(acc, totals); }

private:
    template <int N> static Vec<Zet64f> term(const Registers<Zet64f, N>& x) {
        const Vec<Zet64f> v = Term::of(x);
        return factor == Factor::itself ? v * v : v;
    }
};

namespace detail {
template <Factor factor, class Term, class T, int Channels, bool accurate> auto sum_kernel() {
    if constexpr (std::is_same_v<T, Zet32f>) {
        if constexpr (accurate) return DoubleSum<factor, Term, Channels>();
        else return FloatSum<factor, Term, Channels>();
    } else if constexpr (std::is_same_v<T, Zet8u> && Channels == 1 && factor == Factor::none) return ByteSum<Term>();
    else if constexpr (std::is_same_v<T, Zet8u> || factor != Factor::itself) return NarrowSum<factor, Term, T, Channels>();
    else return WideSum<Term, T, Channels>();
}

// Magnitudes of 16s come from a product that is made anyway.
template <class Term, class T, int Channels, bool accurate> constexpr auto plain_sum_kernel() {
    if constexpr (std::is_same_v<T, Zet16s> && (std::is_same_v<Term, Magnitude>))
        return sum_kernel<Factor::sign, Plain, T, Channels, accurate>();
    else return sum_kernel<Factor::none, Term, T, Channels, accurate>();
}
} // namespace detail

template <class Term, class T, int Channels, bool accurate> using Sum = decltype(detail::plain_sum_kernel<Term, T, Channels, accurate>());

template <class Term, class T, int Channels, bool accurate>
using SumOfSquares = decltype(detail::sum_kernel<Factor::itself, Term, T, Channels, accurate>());

} // namespace zeti
