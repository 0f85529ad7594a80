// SPDX-License-Identifier: Apache-2.0
// The row walker of the element-wise operations:  dst[i] = op(a[i], b[i]).
//
// A kernel `op` takes and gives whole registers and is the only definition of its arithmetic: the tail of a row goes
// through the same kernel as a partial register. b is a row; a is another row, a pattern of constants that repeats, several
// such patterns, or nothing (a kernel of one operand ignores what it is given first).
#pragma once

#include <algorithm>
#include <numeric>

#include "core/layout.h"
#include "core/simd.h"

namespace zeti {

// First operand: a row of samples.
template <class T> struct RowOperand {
    static constexpr int period = 1;
    const T* p;

    Vec<T> whole(ptrdiff_t i, int) const { return load(p + i); }
    Vec<T> part(ptrdiff_t i, int, int n) const { return load(p + i, n); }
    Vec<T> sample(ptrdiff_t i) const { return load(p + i, 1); }
    RowOperand from(ptrdiff_t i) const { return {p + i}; }
    bool written_ahead_by(const T* dst, ptrdiff_t n) const { return dst > p && dst < p + n; }
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
    Vec<T> sample(ptrdiff_t i) const { return load(samples + i % count); }
    Pattern from(ptrdiff_t i) const { return Pattern(samples + i % count, count); }
    bool written_ahead_by(const T*, ptrdiff_t) const { return false; }
};

// First operand: N patterns side by side; the kernel is given an array of N registers.
template <class T, int Period, int N> struct Patterns {
    static constexpr int period = Period;
    struct Registers {
        Vec<T> v[N];
        Vec<T> operator[](int k) const { return v[k]; }
    };
    Pattern<T, Period> pattern[N];

    Registers whole(ptrdiff_t i, int phase) const {
        return each([&](const auto& p) { return p.whole(i, phase); });
    }
    Registers part(ptrdiff_t i, int phase, int n) const {
        return each([&](const auto& p) { return p.part(i, phase, n); });
    }
    Registers sample(ptrdiff_t i) const {
        return each([&](const auto& p) { return p.sample(i); });
    }
    Patterns from(ptrdiff_t i) const {
        Patterns shifted = *this;
        for (auto& p : shifted.pattern) p = p.from(i);
        return shifted;
    }
    bool written_ahead_by(const T*, ptrdiff_t) const { return false; }

private:
    template <class Take> Registers each(Take take) const {
        Registers r;
        for (int k = 0; k < N; ++k) r.v[k] = take(pattern[k]);
        return r;
    }
};

// First operand: none.
template <class T> struct NoOperand {
    static constexpr int period = 1;
    Vec<T> whole(ptrdiff_t, int) const { return {}; }
    Vec<T> part(ptrdiff_t, int, int) const { return {}; }
    Vec<T> sample(ptrdiff_t) const { return {}; }
    NoOperand from(ptrdiff_t) const { return {}; }
    bool written_ahead_by(const T*, ptrdiff_t) const { return false; }
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

namespace detail {

// All ones in the first n lanes, zero behind them.
template <class T> Vec<T> first_lanes(int n) {
    alignas(16) static constexpr Zet32u ones[8] = {~0u, ~0u, ~0u, ~0u, 0, 0, 0, 0};
    return load(reinterpret_cast<const T*>(reinterpret_cast<const char*>(ones) + register_bytes - n * int{sizeof(T)}));
}

template <class T, class Op, class A> A padded(const Op& op, A a, int n) {
    if constexpr (requires { op.neutral(); }) return select<T>(first_lanes<T>(n), a, op.neutral()); // as harmless as alpha samples
    else return a;
}

// One sample at a time, in order: where the destination runs ahead of a source within the row, results become sources.
template <class Writes, class T, class A, class Op> void row_by_sample(const A& a, const T* b, T* dst, ptrdiff_t n, Op& op) {
    for (ptrdiff_t i = 0; i < n; ++i)
        if (!Writes::skips(i)) store(dst + i, Vec<T>(op(padded<T>(op, a.sample(i), 1), load(b + i, 1))), 1);
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

template <class Writes, class T, class A, class Op>
[[gnu::noinline]] void row(const A& operand, const T* b, T* dst, ptrdiff_t n, Op& kernel) {
    constexpr int period = std::lcm(A::period, Writes::period);
    Op op = kernel; // in registers for the row
    const A a = operand;
    if (a.written_ahead_by(dst, n) || RowOperand<T>{b}.written_ahead_by(dst, n)) {
        detail::row_by_sample<Writes>(a, b, dst, n, kernel);
        return;
    }
    const auto whole = [&](ptrdiff_t i, int phase) __attribute__((always_inline)) {
        const Vec<T> result = op(Writes::guarded(op, a.whole(i, phase), phase), load(b + i));
        store(dst + i, Writes::merge(result, load(dst + i), phase));
    };
    ptrdiff_t i = 0;
    if constexpr (requires { op.usual(Vec<T>{}); } && std::is_same_v<Writes, WriteAll<T>>) i = detail::usual_row(a, dst, n, op);
#pragma GCC unroll 4
    for (; i <= n - period * lanes<T>; i += period * lanes<T>)
        for (int phase = 0; phase < period; ++phase) whole(i + phase * lanes<T>, phase);
    int phase = 0;
    for (; i <= n - lanes<T>; i += lanes<T>) whole(i, phase++);
    if (const int rest = static_cast<int>(n - i); rest > 0) {
        const Vec<T> first = detail::padded<T>(op, Writes::guarded(op, a.part(i, phase, rest), phase), rest);
        const Vec<T> result = op(first, load(b + i, rest));
        store(dst + i, Writes::merge(result, load(dst + i, rest), phase), rest);
    }
    if constexpr (requires { op.saw_zero(); } || requires { op.status(); }) kernel = op; // what it saw; others are shared by threads
}

// The same row when the whole destination is too large to stay in a cache: results are made a few kilobytes at a time
// and leave by streaming stores, so that the destination is not read first.
template <class T, class A, class Op> void streaming_row(const A& a, const T* b, T* dst, ptrdiff_t n, Op& op) {
    constexpr ptrdiff_t chunk = 48 * 64 / ptrdiff_t{sizeof(T)}; // whole cache lines and whole patterns
    alignas(64) T buffer[chunk];
    const ptrdiff_t misaligned = static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) % 64);
    const bool overlaps = (b < dst + n && dst < b + n) || a.written_ahead_by(dst, n);
    if (overlaps || misaligned % ptrdiff_t{sizeof(T)} != 0) return row<WriteAll<T>>(a, b, dst, n, op);
    const ptrdiff_t head = std::min(n, (64 - misaligned) % 64 / ptrdiff_t{sizeof(T)});
    if (head > 0) row<WriteAll<T>>(a, b, dst, head, op);
    const A rest = a.from(head);
    const ptrdiff_t last = head + (n - head) / lanes<T> * lanes<T>;
    for (ptrdiff_t i = head; i < last; i += chunk) {
        const ptrdiff_t count = std::min(chunk, last - i);
        row<WriteAll<T>>(A(rest.from(i - head)), b + i, buffer, count, op);
        for (ptrdiff_t k = 0; k < count; k += lanes<T>) store_streaming(dst + i + k, raw(load(buffer + k)));
    }
    if (last < n) row<WriteAll<T>>(A(a.from(last)), b + last, dst + last, n - last, op);
}

} // namespace zeti
