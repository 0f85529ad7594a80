// SPDX-License-Identifier: Apache-2.0
// The row walker of the element-wise operations:  dst[i] = op(a[i], b[i]).
//
// A kernel `op` takes and gives whole registers and is the only definition of its arithmetic: the tail of a row goes
// through the same kernel as a partial register. b is an image; a is an operand of signal/operands.h (a kernel of one operand ignores what
// it is given first). A kernel that takes a alone leaves b unread.
#pragma once

#include <algorithm>
#include <numeric>

#include "core/layout.h"
#include "signal/operands.h"
#include "signal/places.h"

namespace zeti {

// What becomes of the destination: all samples are written.
template <class T> struct WriteAll {
    static constexpr int period = 1, pixel = 1;
    static constexpr bool skips(ptrdiff_t) { return false; }
    static Vec<T> merge(Vec<T> result, Vec<T>, int) { return result; }
    template <class Op, class A> static A guarded(const Op&, A a, int) { return a; }
};

// AC4: the last quarter of every pixel of `PixelSamples` samples keeps what the destination holds.
template <class T, int PixelSamples> struct KeepAlpha {
    static constexpr int period = PixelSamples > lanes<T> ? PixelSamples / lanes<T> : 1, pixel = PixelSamples;
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

// What a kernel takes at least: one sample, or the pixel of a kernel whose samples depend on one another.
template <class Op> constexpr int unit_of() {
    if constexpr (requires { Op::pixel; }) return Op::pixel;
    else return 1;
}

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

// Kernels of one operand for which most samples are simpler than some: while four registers hold usual(ones) they take their short
// form, usual(x). Gives the samples done.
template <class T, class A, class Op> ptrdiff_t usual_row(const A& a, T* dst, ptrdiff_t i, ptrdiff_t n, Op& op) {
    for (; i <= n - 4 * lanes<T>; i += 4 * lanes<T>) {
        const Vec<T> x[4] = {a.whole(i, 0), a.whole(i + lanes<T>, 0), a.whole(i + 2 * lanes<T>, 0), a.whole(i + 3 * lanes<T>, 0)};
        if (op.usual(x)) [[likely]]
            for (int k = 0; k < 4; ++k) store(dst + i + k * lanes<T>, op.usual(x[k]));
        else
            for (int k = 0; k < 4; ++k) store(dst + i + k * lanes<T>, op(x[k], x[k]));
    }
    return i;
}

template <class Op> inline constexpr bool has_zero_flag = requires(const Op& op) { op.saw_zero(); };
template <class Op> inline constexpr bool has_status = requires(const Op& op) { op.status(); };
template <class Op> inline constexpr bool takes_notes = has_zero_flag<Op> || has_status<Op>;
template <class Op> inline constexpr bool settles_rows = requires(Op& op) { op.end_row(); };
template <class Op> inline constexpr bool in_registers_of_row = requires { Op::in_fours; };

} // namespace detail

inline constexpr ptrdiff_t part_of_row = 0; // a height: n samples of a row that does not end there

template <class Writes, class T, class A, class Op>
void rows(const A& operand, Src<T> b, Dst<T> dst, ptrdiff_t n, ptrdiff_t height, Op& kernel);

// A row kernel of any type behind one pointer: what goes through rows in ways of its own is compiled once for all kernels of the same operands.
template <class T, class A> struct RowKernel {
    void (*call)(const A& a, Src<T> b, Dst<T> dst, ptrdiff_t n, ptrdiff_t height, void* op);
    void* op;
    bool writes_all, reads_b;
    bool ends_rows;        // it has something to settle at the end of each row
    bool registers_of_row; // its lanes depend on one another: a row's registers must start where the row does
    int unit;              // samples that it takes at least: one, or the pixel of a kernel whose samples depend on one another
    int pixel;             // samples after which unit and destination repeat
    bool (*skips)(ptrdiff_t i);

    void rows(const A& a, Src<T> b, Dst<T> dst, ptrdiff_t n, ptrdiff_t height) const { call(a, b, dst, n, height, op); }
    void part(const A& a, const T* b, T* dst, ptrdiff_t n) const { call(a, {b, 0}, {dst, 0}, n, part_of_row, op); }
};

template <class Writes, class T, class A, class Op> RowKernel<T, A> row_kernel(Op& op) {
    using namespace detail;
    RowKernel<T, A> kernel{};
    kernel.call = [](const A& a, Src<T> b, Dst<T> dst, ptrdiff_t n, ptrdiff_t height, void* erased) {
        rows<Writes>(a, b, dst, n, height, *static_cast<Op*>(erased));
    };
    kernel.op = const_cast<void*>(static_cast<const void*>(&op));
    kernel.writes_all = std::is_same_v<Writes, WriteAll<T>>;
    kernel.reads_b = !leaves_row_unread<Op, A>;
    kernel.ends_rows = settles_rows<Op>;
    kernel.registers_of_row = in_registers_of_row<Op>;
    kernel.unit = unit_of<Op>();
    kernel.pixel = std::lcm(unit_of<Op>(), Writes::pixel);
    kernel.skips = Writes::skips;
    return kernel;
}

// Left to right, where the destination runs ahead of a source within the row and results become sources: as many samples at a time as it is ahead.
template <class T, class A>
[[gnu::noinline]] void row_in_order(const A& a, const T* b, T* dst, ptrdiff_t n, ptrdiff_t lead, const RowKernel<T, A>& kernel) {
    const ptrdiff_t pixels = kernel.registers_of_row ? 0 : lead / kernel.pixel * kernel.pixel;
    for (ptrdiff_t i = 0, count = pixels > 0 ? pixels : kernel.unit; i < n; i += count)
        if (pixels > 0 || !kernel.skips(i)) kernel.part(a.from(i), b + i, dst + i, std::min(count, n - i));
}

// One function per kernel, and everything in it, the loop over rows too: what a large file leaves the compiler to inline is not to decide about
// speed, and a call per row would cost short rows as much as their samples.
template <class Writes, class T, class A, class Op>
[[gnu::noinline, gnu::flatten]] void rows(const A& operand, Src<T> source, Dst<T> destination, ptrdiff_t n, ptrdiff_t height, Op& kernel) {
    constexpr int period = std::lcm(A::period, Writes::period);
    Op op = kernel; // in registers for the rows
    A a = operand;
    for (ptrdiff_t y = 0; y < std::max<ptrdiff_t>(height, 1); ++y, a.next_row()) {
        const T* const b = source.row(y);
        T* const dst = destination.row(y);
        ptrdiff_t i = 0;
        if (const ptrdiff_t lead = RowOperand<T>{b}.lead(dst, a.lead(dst, n)); lead < n && n > detail::unit_of<Op>()) [[unlikely]] {
            if constexpr (detail::takes_notes<Op>) kernel = op;
            row_in_order<T, A>(operand.row(y), b, dst, n, lead, row_kernel<Writes, T, A>(kernel));
            if constexpr (detail::takes_notes<Op>) op = kernel;
            i = n;
        }
        const auto whole = [&](ptrdiff_t at, int phase) __attribute__((always_inline)) {
            const Vec<T> result = detail::applied<T>(op, Writes::guarded(op, a.whole(at, phase), phase), [&] { return load(b + at); });
            store(dst + at, Writes::merge(result, load(dst + at), phase));
        };
        const auto round = [&](ptrdiff_t at) __attribute__((always_inline)) {
            for (int phase = 0; phase < period; ++phase) whole(at + phase * lanes<T>, phase);
        };
        if constexpr (requires { op.usual(Vec<T>{}); } && std::is_same_v<Writes, WriteAll<T>>) i = detail::usual_row(a, dst, i, n, op);
        if constexpr (detail::unrolls<Op, A>) { // NOLINT(bugprone-branch-clone)
#pragma GCC unroll 4
            for (; i <= n - period * lanes<T>; i += period * lanes<T>) round(i);
        } else {
            for (; i <= n - period * lanes<T>; i += period * lanes<T>) round(i);
        }
        int phase = 0;
        for (; i <= n - lanes<T>; i += lanes<T>) whole(i, phase++);
        if (const int rest = static_cast<int>(n - i); rest > 0) {
            const auto last = detail::padded<T>(op, Writes::guarded(op, a.part(i, phase, rest), phase), rest);
            const Vec<T> result = detail::applied<T>(op, last, [&] { return load(b + i, rest); });
            store(dst + i, Writes::merge(result, load(dst + i, rest), phase), rest);
        }
        if constexpr (detail::settles_rows<Op>)
            if (height != part_of_row) op.end_row();
    }
    if constexpr (detail::takes_notes<Op>) kernel = op; // what it saw; others are shared by threads
}

// The same row of an image that is too large to stay in a cache: by pieces, each asked for ahead of time, as the processor does not do it by
// itself across them. Where everything is written and nothing of it read, results leave by streaming stores, so that the destination is not
// read first.
template <class T, class A>
[[gnu::noinline]] void large_row(const A& a, const T* b, T* dst, ptrdiff_t n, const RowKernel<T, A>& kernel, bool streams) {
    constexpr ptrdiff_t size = sizeof(T), line = line_bytes / size,
                        ahead = std::max(piece_bytes, ahead_bytes / detail::lines_of<A>()) / size;
    const ptrdiff_t head = streams ? std::min(n, to_line(dst) / size) : 0;
    if ((kernel.reads_b && RowOperand<T>{b}.overlaps(dst, n)) || a.overlaps(dst, n) ||
        (streams && to_line(dst) % (kernel.unit * size) != 0) || (kernel.registers_of_row && head % lanes<T> != 0))
        return kernel.part(a, b, dst, n);
    if (head > 0) kernel.part(a, b, dst, head);
    const ptrdiff_t whole = (n - head) / line * line, part = (n - head) - whole;
    constexpr ptrdiff_t lines = 3, together = 2; // whole patterns and pixels; so few that the next ones are computed while these leave
    const Places places(whole, line, lines);
    alignas(line_bytes) T buffer[together * lines * line];
    // As many samples at each of so many places, which are rows to the kernel.
    const auto pieces = [&](const A& from, ptrdiff_t i, ptrdiff_t samples, ptrdiff_t count, ptrdiff_t next) {
        const Src<T> second{b + head + i, places.part * size};
        const Dst<T> to{dst + head + i, places.part * size}, out = streams ? Dst<T>{buffer, lines * line_bytes} : to;
        for (ptrdiff_t p = 0; p < count; ++p)
            for (ptrdiff_t k = next; k < next + samples; k += line) {
                from.prefetch(p * places.part + k);
                if (kernel.reads_b) prefetch(second.row(p), k * size);
                if (!kernel.writes_all) prefetch(to.row(p), k * size);
            }
        kernel.rows(from, second, out, samples, count);
        for (ptrdiff_t p = 0; streams && p < count; ++p) stream_lines(out.row(p), to.row(p), samples * size);
    };
    A from = a.from(head).apart(places.part);
    for (ptrdiff_t i = 0; i < places.part; i += places.piece, from.advance(places.piece)) {
        const ptrdiff_t next = i + ahead < places.part ? ahead : ahead + whole - places.part; // at its end each place looks to the next row
        for (ptrdiff_t p = 0; p < places.count; p += together)
            pieces(from.row(p), p * places.part + i, places.piece, std::min(together, places.count), next);
    }
    from = a.from(head + places.count * places.part);
    for (ptrdiff_t i = places.count * places.part; i < whole; i += places.piece, from.advance(places.piece))
        pieces(from, i, std::min(places.piece, whole - i), 1, ahead);
    if (part > 0) kernel.part(a.from(n - part), b + n - part, dst + n - part, part);
}

} // namespace zeti
