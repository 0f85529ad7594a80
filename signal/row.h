// SPDX-License-Identifier: Apache-2.0
// The row walker of the element-wise operations:  dst[i] = op(a[i], b[i]).
//
// A kernel `op` takes and gives whole registers and is the only definition of its arithmetic: the tail of a row goes
// through the same kernel as a partial register. b is a row; a is another row, a pattern of constants that repeats, several
// such rows or patterns, or nothing (a kernel of one operand ignores what it is given first). A kernel that takes a alone leaves b unread.
#pragma once

#include <algorithm>
#include <numeric>

#include "core/layout.h"
#include "signal/places.h"

namespace zeti {

namespace detail {

// What a kernel takes at least: one sample, or the pixel of a kernel whose samples depend on one another.
template <class Op> constexpr int unit_of() {
    if constexpr (requires { Op::pixel; }) return Op::pixel;
    else return 1;
}
template <int n, class T> Vec<T> load_unit(const T* p) {
    if constexpr (n == lanes<T>) return load(p);
    else return load(p, n);
}
template <int n, class T> void store_unit(T* p, Vec<T> v) {
    if constexpr (n == lanes<T>) store(p, v);
    else store(p, v, n);
}

} // namespace detail

// First operand: a row of samples.
template <class T> struct RowOperand {
    static constexpr int period = 1;
    const T* p;

    Vec<T> whole(ptrdiff_t i, int) const { return load(p + i); }
    Vec<T> part(ptrdiff_t i, int, int n) const { return load(p + i, n); }
    template <int n> Vec<T> unit(ptrdiff_t i) const { return detail::load_unit<n>(p + i); }
    RowOperand from(ptrdiff_t i) const { return {p + i}; }
    void advance(ptrdiff_t n) { p += n; }
    [[gnu::always_inline]] void prefetch(ptrdiff_t i) const { zeti::prefetch(p + i); }
    bool written_ahead_by(const T* dst, ptrdiff_t n) const { return dst > p && dst < p + n; }
    bool overlaps(const T* dst, ptrdiff_t n) const { return dst != p && dst < p + n && p < dst + n; } // in part
};

// First operand: constants that repeat every `Period` registers.
template <class T, int Period> struct Pattern {
    static constexpr int period = Period;
    static constexpr int count = Period * lanes<T>;
    T samples[2 * count]; // twice, so that a pattern can start at any phase

    Pattern(const T* values, int n) {
        for (int i = 0; i < 2 * count; ++i) samples[i] = values[i % n];
    }
    Vec<T> whole(ptrdiff_t, int phase) const { return load(samples + phase * lanes<T>); }
    Vec<T> part(ptrdiff_t i, int phase, int) const { return whole(i, phase); }
    template <int> Vec<T> unit(ptrdiff_t i) const { return load(samples + i % count); }
    Pattern from(ptrdiff_t i) const { return i % count == 0 ? *this : Pattern(samples + i % count, count); }
    static void advance(ptrdiff_t) {} // by whole patterns
    static void prefetch(ptrdiff_t) {}
    bool written_ahead_by(const T*, ptrdiff_t) const { return false; }
    bool overlaps(const T*, ptrdiff_t) const { return false; }
};

// First operand: N rows or patterns side by side; the kernel is given an array of N registers.
template <class T, int N> struct Registers {
    Vec<T> v[N];
    Vec<T> operator[](int k) const { return v[k]; }
};
template <class T, class Operand, int N> struct Operands {
    static constexpr int period = Operand::period;
    Operand operand[N];

    Registers<T, N> whole(ptrdiff_t i, int phase) const {
        return each([&](const auto& o) { return o.whole(i, phase); });
    }
    Registers<T, N> part(ptrdiff_t i, int phase, int n) const {
        return each([&](const auto& o) { return o.part(i, phase, n); });
    }
    template <int n> Registers<T, N> unit(ptrdiff_t i) const {
        return each([&](const auto& o) { return o.template unit<n>(i); });
    }
    Operands from(ptrdiff_t i) const {
        Operands shifted = *this;
        for (auto& o : shifted.operand) o = o.from(i);
        return shifted;
    }
    void advance(ptrdiff_t n) {
        for (auto& o : operand) o.advance(n);
    }
    [[gnu::always_inline]] void prefetch(ptrdiff_t i) const {
        for (const auto& o : operand) o.prefetch(i);
    }
    bool written_ahead_by(const T* dst, ptrdiff_t n) const {
        bool any = false;
        for (const auto& o : operand) any |= o.written_ahead_by(dst, n);
        return any;
    }
    bool overlaps(const T* dst, ptrdiff_t n) const {
        bool any = false;
        for (const auto& o : operand) any |= o.overlaps(dst, n);
        return any;
    }

private:
    template <class Take> Registers<T, N> each(Take take) const {
        Registers<T, N> r;
        for (int k = 0; k < N; ++k) r.v[k] = take(operand[k]);
        return r;
    }
};
template <class T, int N> using Rows = Operands<T, RowOperand<T>, N>;
template <class T, int Period, int N> using Patterns = Operands<T, Pattern<T, Period>, N>;

// First operand: none.
template <class T> struct NoOperand {
    static constexpr int period = 1;
    Vec<T> whole(ptrdiff_t, int) const { return Vec<T>{}; }
    Vec<T> part(ptrdiff_t, int, int) const { return Vec<T>{}; }
    template <int> Vec<T> unit(ptrdiff_t) const { return Vec<T>{}; }
    NoOperand from(ptrdiff_t) const { return {}; }
    static void advance(ptrdiff_t) {}
    static void prefetch(ptrdiff_t) {}
    bool written_ahead_by(const T*, ptrdiff_t) const { return false; }
    bool overlaps(const T*, ptrdiff_t) const { return false; }
};

// What becomes of the destination: all samples are written.
template <class T> struct WriteAll {
    static constexpr int period = 1;
    static constexpr bool skips(ptrdiff_t) { return false; }
    static Vec<T> merge(Vec<T> result, Vec<T>, int) { return result; }
    template <class Op, class A> static A guarded(const Op&, A a, int) { return a; }
};

// AC4: the last quarter of every pixel of `PixelSamples` samples keeps what the destination holds.
template <class T, int PixelSamples> struct KeepAlpha {
    static constexpr int period = PixelSamples > lanes<T> ? PixelSamples / lanes<T> : 1;
    static constexpr bool skips(ptrdiff_t i) { return i % PixelSamples >= PixelSamples / 4 * 3; }

    static Vec<T> colours(int phase) {
        Vec<T> index{}, mask{};
        for (int k = 0; k < lanes<T>; ++k) index[k] = skips(phase * lanes<T> + k) ? T{0} : T{1};
        mask = as_lanes<T>(index != T{0});
        return mask;
    }
    static Vec<T> merge(Vec<T> result, Vec<T> old, int phase) { return select<T>(colours(phase), result, old); }
    // A kernel that watches its first operand must not see the alpha samples.
    template <class Op, class A> static A guarded(const Op& op, A a, int phase) {
        if constexpr (requires { op.neutral(); }) return select<T>(colours(phase), a, op.neutral());
        else return a;
    }
};

// Whether a kernel takes its first operand alone.
template <class Op, class A> inline constexpr bool leaves_row_unread = requires(Op& op, const A& a) { op(a.whole(0, 0)); };

namespace detail {

// Kernels and operands of many instructions say so: unrolling would gain nothing and fill the code cache.
template <class X> inline constexpr bool is_long_code = requires { requires X::is_long; };
template <class Op, class A> inline constexpr bool unrolls = !is_long_code<Op> && !is_long_code<A>;

// Kernels whose lanes depend on one another: a row's registers must start where the row does.
template <class Op> inline constexpr bool in_registers_of_row = requires { Op::in_fours; };

// Lines of the cache that an operand reads for one of the destination.
template <class A> constexpr ptrdiff_t lines_of() {
    if constexpr (requires { A::lines; }) return A::lines;
    else return 1;
}

// All ones in the first n lanes, zero behind them.
template <class T> Vec<T> first_lanes(int n) {
    alignas(16) static constexpr Zet32u ones[8] = {~0u, ~0u, ~0u, ~0u, 0, 0, 0, 0};
    return load(reinterpret_cast<const T*>(reinterpret_cast<const char*>(ones) + register_bytes - n * int{sizeof(T)}));
}

template <class T, class Op, class A> A padded(const Op& op, A a, int n) {
    if constexpr (requires { op.neutral(); }) return select<T>(first_lanes<T>(n), a, op.neutral()); // as harmless as alpha samples
    else return a;
}

// op(a, b), or op(a) for a kernel that takes a alone.
template <class T, class Op, class A, class LoadB> [[gnu::always_inline]] inline Vec<T> applied(Op& op, const A& a, LoadB b) {
    if constexpr (requires { op(a); }) return op(a);
    else return op(a, b());
}

// One unit at a time, in order: where the destination runs ahead of a source within the row, results become sources.
template <class Writes, class T, class A, class Op>
[[gnu::noinline]] void row_by_unit(const A& a, const T* b, T* dst, ptrdiff_t n, Op& op) {
    constexpr int unit = unit_of<Op>();
    for (ptrdiff_t i = 0; i < n; i += unit)
        if (!Writes::skips(i))
            store_unit<unit, T>(dst + i,
                                applied<T>(op, padded<T>(op, a.template unit<unit>(i), unit), [&] { return load_unit<unit>(b + i); }));
}

// Kernels of one operand for which most samples are simpler than some: while four registers hold usual(ones) they take their short
// form, usual(x). Gives the samples done.
template <class T, class A, class Op> ptrdiff_t usual_row(const A& a, T* dst, ptrdiff_t n, Op& op) {
    ptrdiff_t i = 0;
    for (; i <= n - 4 * lanes<T>; i += 4 * lanes<T>) {
        const Vec<T> x[4] = {a.whole(i, 0), a.whole(i + lanes<T>, 0), a.whole(i + 2 * lanes<T>, 0), a.whole(i + 3 * lanes<T>, 0)};
        if (op.usual(x)) [[likely]]
            for (int k = 0; k < 4; ++k) store(dst + i + k * lanes<T>, op.usual(x[k]));
        else
            for (int k = 0; k < 4; ++k) store(dst + i + k * lanes<T>, op(x[k], x[k]));
    }
    return i;
}

} // namespace detail

namespace detail {
template <class Op> inline constexpr bool has_zero_flag = requires(const Op& op) { op.saw_zero(); };
template <class Op> inline constexpr bool has_status = requires(const Op& op) { op.status(); };
} // namespace detail

// One function per kernel, and everything in it: what a large file leaves the compiler to inline is not to decide about speed.
template <class Writes, class T, class A, class Op>
[[gnu::noinline, gnu::flatten]] void row(const A& operand, const T* b, T* dst, ptrdiff_t n, Op& kernel) {
    constexpr int period = std::lcm(A::period, Writes::period);
    Op op = kernel; // in registers for the row
    const A a = operand;
    if (a.written_ahead_by(dst, n) || RowOperand<T>{b}.written_ahead_by(dst, n)) {
        detail::row_by_unit<Writes>(a, b, dst, n, kernel);
        return;
    }
    const auto whole = [&](ptrdiff_t i, int phase) __attribute__((always_inline)) {
        const Vec<T> result = detail::applied<T>(op, Writes::guarded(op, a.whole(i, phase), phase), [&] { return load(b + i); });
        store(dst + i, Writes::merge(result, load(dst + i), phase));
    };
    const auto round = [&](ptrdiff_t at) __attribute__((always_inline)) {
        for (int phase = 0; phase < period; ++phase) whole(at + phase * lanes<T>, phase);
    };
    ptrdiff_t i = 0;
    if constexpr (requires { op.usual(Vec<T>{}); } && std::is_same_v<Writes, WriteAll<T>>) i = detail::usual_row(a, dst, n, op);
    if constexpr (detail::unrolls<Op, A>) { // NOLINT(bugprone-branch-clone)
#pragma GCC unroll 4
        for (; i <= n - period * lanes<T>; i += period * lanes<T>) round(i);
    } else {
        for (; i <= n - period * lanes<T>; i += period * lanes<T>) round(i);
    }
    int phase = 0;
    for (; i <= n - lanes<T>; i += lanes<T>) whole(i, phase++);
    if (const int rest = static_cast<int>(n - i); rest > 0) {
        const auto first = detail::padded<T>(op, Writes::guarded(op, a.part(i, phase, rest), phase), rest);
        const Vec<T> result = detail::applied<T>(op, first, [&] { return load(b + i, rest); });
        store(dst + i, Writes::merge(result, load(dst + i, rest), phase), rest);
    }
    if constexpr (detail::has_zero_flag<Op> || detail::has_status<Op>) kernel = op; // what it saw; others are shared by threads
}

// The same row of an image that is too large to stay in a cache: by pieces, each asked for ahead of time, as the processor does not do it by
// itself across them. Where everything is written and nothing of it read, results leave by streaming stores, so that the destination is not
// read first.
template <class Writes, class T, class A, class Op> void large_row(const A& a, const T* b, T* dst, ptrdiff_t n, Op& op, bool streams) {
    constexpr ptrdiff_t line = line_bytes / ptrdiff_t{sizeof(T)}, piece = piece_bytes / ptrdiff_t{sizeof(T)};
    constexpr ptrdiff_t ahead = std::max(piece, ahead_bytes / ptrdiff_t{sizeof(T)} / detail::lines_of<A>());
    constexpr bool reads_b = !leaves_row_unread<Op, A>;
    const ptrdiff_t misaligned = static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) % line_bytes);
    const ptrdiff_t head = streams ? std::min(n, (line_bytes - misaligned) % line_bytes / ptrdiff_t{sizeof(T)}) : 0;
    if ((reads_b && RowOperand<T>{b}.overlaps(dst, n)) || a.overlaps(dst, n) ||
        (streams && misaligned % ptrdiff_t{detail::unit_of<Op>() * sizeof(T)} != 0) ||
        (detail::in_registers_of_row<Op> && head % lanes<T> != 0))
        return row<Writes>(a, b, dst, n, op);
    if (head > 0) row<Writes>(a, b, dst, head, op);
    const ptrdiff_t whole = (n - head) / line * line, part = (n - head) - whole;
    alignas(line_bytes) T buffer[piece];
    A at[most_places + 1] = {a, a, a, a, a};
    ptrdiff_t next_of[most_places + 1] = {-1, -1, -1, -1, -1};
    by_places(whole, line, ahead, [&](int place, ptrdiff_t i, ptrdiff_t count, ptrdiff_t next) {
        i += head;
        if (next_of[place] != i) at[place] = a.from(i);
        for (ptrdiff_t k = 0; k < count; k += line) {
            at[place].prefetch(k + next);
            if (reads_b) prefetch(b + i + k + next);
            if (!std::is_same_v<Writes, WriteAll<T>>) prefetch(dst + i + k + next);
        }
        row<Writes>(at[place], b + i, streams ? buffer : dst + i, count, op);
        if (streams) stream_lines(buffer, dst + i, count * ptrdiff_t{sizeof(T)});
        at[place].advance(count), next_of[place] = i + count;
    });
    if (part > 0) row<Writes>(A(a.from(n - part)), b + n - part, dst + n - part, part, op);
}

} // namespace zeti
