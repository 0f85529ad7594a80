// SPDX-License-Identifier: Apache-2.0
// First operands of the row walker: a row, a pattern of constants that repeats, several of them, or none. An operand gives registers by their
// place in the row; lead(dst, n) is how far a destination of n samples runs ahead of it where it overlaps it, else n.
#pragma once

#include "core/simd.h"

namespace zeti {

// A row of samples.
template <class T> struct RowOperand {
    static constexpr int period = 1;
    const T* p;

    Vec<T> whole(ptrdiff_t i, int) const { return load(p + i); }
    Vec<T> part(ptrdiff_t i, int, int n) const { return load(p + i, n); }
    RowOperand from(ptrdiff_t i) const { return {p + i}; }
    void advance(ptrdiff_t n) { p += n; }
    [[gnu::always_inline]] void prefetch(ptrdiff_t i) const { zeti::prefetch(p, i * ptrdiff_t{sizeof(T)}); }
    ptrdiff_t lead(const T* dst, ptrdiff_t n) const { return dst > p && dst < p + n ? dst - p : n; }
    bool overlaps(const T* dst, ptrdiff_t n) const { return dst != p && dst < p + n && p < dst + n; } // in part
};

// Constants that repeat every `Period` registers.
template <class T, int Period> struct Pattern {
    static constexpr int period = Period;
    static constexpr int count = Period * lanes<T>;
    T samples[2 * count]; // twice, so that a pattern can start at any phase

    Pattern(const T* values, int n) {
        for (int i = 0; i < 2 * count; ++i) samples[i] = values[i % n];
    }
    Vec<T> whole(ptrdiff_t, int phase) const { return load(samples + phase * lanes<T>); }
    Vec<T> part(ptrdiff_t i, int phase, int) const { return whole(i, phase); }
    Pattern from(ptrdiff_t i) const { return i % count == 0 ? *this : Pattern(samples + i % count, count); }
    static void advance(ptrdiff_t) {} // by whole patterns
    static void prefetch(ptrdiff_t) {}
    ptrdiff_t lead(const T*, ptrdiff_t n) const { return n; }
    bool overlaps(const T*, ptrdiff_t) const { return false; }
};

// N rows or patterns side by side; the kernel is given an array of N registers.
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
    ptrdiff_t lead(const T* dst, ptrdiff_t n) const {
        for (const auto& o : operand) n = o.lead(dst, n);
        return n;
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

// None.
template <class T> struct NoOperand {
    static constexpr int period = 1;
    Vec<T> whole(ptrdiff_t, int) const { return Vec<T>{}; }
    Vec<T> part(ptrdiff_t, int, int) const { return Vec<T>{}; }
    NoOperand from(ptrdiff_t) const { return {}; }
    static void advance(ptrdiff_t) {}
    static void prefetch(ptrdiff_t) {}
    ptrdiff_t lead(const T*, ptrdiff_t n) const { return n; }
    bool overlaps(const T*, ptrdiff_t) const { return false; }
};

} // namespace zeti
