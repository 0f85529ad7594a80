// SPDX-License-Identifier: Apache-2.0
// First operands of the row walker: an image, constants that repeat, several of either, or none. An operand stands at a row, of which it gives
// registers by their place.
//
//     next_row()           goes on to the next row
//     advance(n)           goes on by n samples of the row; constants by whole patterns
//     row(y), from(i)      the operand y rows, or i samples, further on
//     apart(n)             the operand as if its rows were n samples apart
//     lead(dst, n)         how far a destination of n samples runs ahead of a row that it overlaps, else n
//     overlaps(dst, n)     in part
//     is(dst)              the same place
//     contiguous(bytes)    rows of so many bytes have no gaps between them
#pragma once

#include <algorithm>

#include "core/simd.h"
#include "core/view.h"

namespace zeti {

// An image, or a row of one.
template <class T> struct RowOperand {
    static constexpr int period = 1;
    const T* p;
    ptrdiff_t step = 0;

    void next_row() { *this = row(1); }
    RowOperand row(ptrdiff_t y) const { return {Src<T>{p, step}.row(y), step}; }
    Vec<T> whole(ptrdiff_t i, int) const { return load(p + i); }
    Vec<T> part(ptrdiff_t i, int, int n) const { return load(p + i, n); }
    RowOperand from(ptrdiff_t i) const { return {p + i, step}; }
    RowOperand apart(ptrdiff_t n) const { return {p, n * ptrdiff_t{sizeof(T)}}; }
    void advance(ptrdiff_t n) { p += n; }
    [[gnu::always_inline]] void prefetch(ptrdiff_t i) const { zeti::prefetch(p, i * ptrdiff_t{sizeof(T)}); }
    ptrdiff_t lead(const T* dst, ptrdiff_t n) const { return dst > p && dst < p + n ? dst - p : n; }
    bool overlaps(const T* dst, ptrdiff_t n) const { return dst != p && dst < p + n && p < dst + n; }
    bool is(const T* dst) const { return p == dst; }
    bool contiguous(ptrdiff_t bytes) const { return step == bytes; }
};

template <class T> RowOperand<T> operand_of(Src<T> image) { return {image.pointer, image.step}; }

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
    static void next_row() {}
    const Pattern& row(ptrdiff_t) const { return *this; }
    Pattern from(ptrdiff_t i) const { return i % count == 0 ? *this : Pattern(samples + i % count, count); }
    const Pattern& apart(ptrdiff_t) const { return *this; }
    static void advance(ptrdiff_t) {} // by whole patterns
    static void prefetch(ptrdiff_t) {}
    static ptrdiff_t lead(const T*, ptrdiff_t n) { return n; }
    static bool overlaps(const T*, ptrdiff_t) { return false; }
    static bool is(const T*) { return false; }
    static bool contiguous(ptrdiff_t) { return true; } // rows are whole pixels: constants go on where the next one begins
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
    void next_row() {
        for (auto& o : operand) o.next_row();
    }
    decltype(auto) row(ptrdiff_t y) const {
        if constexpr (std::is_reference_v<decltype(operand[0].row(y))>) return (*this); // constants: no copy
        else return mapped([=](const Operand& o) { return o.row(y); });
    }
    Operands from(ptrdiff_t i) const {
        return mapped([=](const Operand& o) { return o.from(i); });
    }
    Operands apart(ptrdiff_t n) const {
        return mapped([=](const Operand& o) { return o.apart(n); });
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
        return std::any_of(operand, operand + N, [=](const Operand& o) { return o.overlaps(dst, n); });
    }
    bool is(const T* dst) const {
        return std::any_of(operand, operand + N, [=](const Operand& o) { return o.is(dst); });
    }
    bool contiguous(ptrdiff_t bytes) const {
        return std::all_of(operand, operand + N, [=](const Operand& o) { return o.contiguous(bytes); });
    }

private:
    template <class Map> Operands mapped(Map map) const {
        Operands result = *this;
        for (Operand& o : result.operand) o = map(o);
        return result;
    }
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
    static void next_row() {}
    NoOperand row(ptrdiff_t) const { return {}; }
    NoOperand from(ptrdiff_t) const { return {}; }
    NoOperand apart(ptrdiff_t) const { return {}; }
    static void advance(ptrdiff_t) {}
    static void prefetch(ptrdiff_t) {}
    static ptrdiff_t lead(const T*, ptrdiff_t n) { return n; }
    static bool overlaps(const T*, ptrdiff_t) { return false; }
    static bool is(const T*) { return false; }
    static bool contiguous(ptrdiff_t) { return true; } // rows are whole pixels: constants go on where the next one begins
};

} // namespace zeti
