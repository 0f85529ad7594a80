// SPDX-License-Identifier: Apache-2.0
// The row walker of reductions: a row of one image, or of two side by side, into the lanes of a kernel.
//
// A row is taken from two places at the same time, a line of the cache from each: from its beginning and its middle, which is faster where
// memory is what holds it up, or, where both are in one page, from neighbouring lines. A kernel's add<p>(x, y) is given the registers of
// place p of either line, whose lanes belong to the same channels: lane k of place p to the channel of sample p * lanes + k of the row. The
// length of the row alone decides what a lane is given, not where the row lies. What is left at the end comes through add_rest<p>(x, n): one
// register with n samples in it, zeros behind them.
#pragma once

#include "signal/row.h"

namespace zeti {

// Three channels repeat after three registers; the others are given two places, so that sums do not wait for one another.
template <int Channels> inline constexpr int places_of = Channels == 3 ? 3 : 2;

inline constexpr ptrdiff_t apart_from = 8192; // bytes of a row
inline constexpr ptrdiff_t prefetched = 4096; // bytes ahead

template <class Kernel, class T, int N>
[[gnu::noinline, gnu::flatten]] void reduce_row(Kernel& kernel, const Rows<T, N>& images, ptrdiff_t n) {
    Kernel k = kernel; // in registers for the row
    const Rows<T, N> rows = images;
    const auto walk = [&]<int... place>(std::integer_sequence<int, place...>) __attribute__((always_inline)) {
        constexpr ptrdiff_t together = Kernel::places * lanes<T>, line = 64 / together / ptrdiff_t{sizeof(T)} * together;
        const auto both = [&](ptrdiff_t x, ptrdiff_t y) __attribute__((always_inline)) {
            (k.template add<place>(rows.whole(x + place * lanes<T>, 0), rows.whole(y + place * lanes<T>, 0)), ...);
        };
        const ptrdiff_t rounds = n / (2 * line);
        const bool apart = n * ptrdiff_t{sizeof(T)} >= apart_from;
        const ptrdiff_t from = apart ? rounds * line : line, step = apart ? line : 2 * line;
        for (ptrdiff_t x = 0, r = 0; r < rounds; x += step, ++r) {
            // At the end of its half each place looks to where it goes on in the next row, or block of this one.
            const ptrdiff_t ahead = apart && r >= rounds - prefetched / 64 ? prefetched + from * ptrdiff_t{sizeof(T)} : prefetched;
            for (const auto& o : rows.operand) prefetch_outer(o.p + x, ahead), prefetch_outer(o.p + from + x, ahead);
            for (ptrdiff_t more = 0; more < line; more += together) both(x + more, from + x + more);
        }
        ptrdiff_t i = rounds * 2 * line;
        for (; i <= n - 2 * together; i += 2 * together) both(i, i + together);
        const auto rest = [&]<int p>(std::integral_constant<int, p>) __attribute__((always_inline)) {
            const int left = static_cast<int>(n - i);
            if (left >= lanes<T>) k.template add_rest<p>(rows.whole(i, 0), lanes<T>);
            else if (left > 0) k.template add_rest<p>(rows.part(i, 0, left), left);
            i += lanes<T>;
        };
        while (i < n) (rest(std::integral_constant<int, place>()), ...); // NOLINT(bugprone-infinite-loop): rest() moves i
    };
    walk(std::make_integer_sequence<int, Kernel::places>());
    kernel = k;
}

// --- What is summed, or compared: of the registers of one image or two ----------------------------------------------------

struct Plain {
    template <class T> static Vec<T> of(const Registers<T, 1>& x) { return x[0]; }
};
struct Magnitude {
    template <class T> static auto of(const Registers<T, 1>& x) { return magnitude<T>(x[0]); }
};
struct Difference { // its magnitude
    template <class T> static auto of(const Registers<T, 2>& x) { return distance<T>(x[0], x[1]); }
};

template <class Term> inline constexpr int images_of = std::is_same_v<Term, Difference> ? 2 : 1;

// The lane type of a term: 16s has magnitudes and differences in 16u.
template <class Term, class T> using ValueOf = std::remove_cvref_t<decltype(Term::of(Registers<T, images_of<Term>>())[0])>;

} // namespace zeti
