// SPDX-License-Identifier: Apache-2.0
// What the families of element-wise arithmetic share: operands of an image, and the run of a row kernel over its rows.
#pragma once

#include "core/check.h"
#include "core/float_state.h"
#include "core/frame.h"
#include "move/rows.h"

namespace zeti {

// The C3 and C4 forms of two real images are their C1 form on a wider row; they test the width before anything else.
template <class T, class L> inline constexpr bool delegates = !is_complex<T> && (std::is_same_v<L, C3> || std::is_same_v<L, C4>);

template <class T> inline constexpr int parts = is_complex<T> ? 2 : 1; // real samples in a sample
template <class T, class L> inline constexpr int pixel_samples = int{L::channels} * int{parts<T>};

template <class T, class L> using Writes = std::conditional_t<L::keeps_alpha, KeepAlpha<Real<T>, 4 * parts<T>>, WriteAll<Real<T>>>;

template <class T, class L> Extent real_samples(ZetiSize roi) { return samples(roi, pixel_samples<T, L>); }

// The constants of a call: one by value on C1, else a pointer to one per colour channel.
template <class T> const T* constants(const T& value) { return &value; }
template <class T> const T* constants(const T* const& values) { return values; }

// They as an operand.
template <class T, class L> auto constant_operand(const T* values) {
    using R = Real<T>;
    constexpr int pixel = pixel_samples<T, L>;
    constexpr int period = 16 % (pixel * sizeof(R)) == 0 ? 1 : pixel * sizeof(R) % 32 == 0 ? 2 : 3;
    R samples[pixel] = {}; // alpha has no constant
    std::memcpy(samples, values, sizeof(T) * L::colours);
    return Pattern<R, period>(samples, pixel);
}

// Several constants per channel, for kernels that are given an array of them.
template <class T, class L, class... Values> auto constant_operands(const Values*... values) {
    using One = decltype(constant_operand<T, L>(nullptr));
    return Operands<T, One, sizeof...(Values)>{{constant_operand<T, L>(values)...}};
}

// Fills what the layout writes with zeros.
template <class T, class L> void clear(Dst<T> dst, ZetiSize roi) {
    using R = Real<T>;
    const R zeros[8] = {};
    if constexpr (L::keeps_alpha) fill_colours<pixel_samples<T, L>>(zeros, as<R>(dst), real_samples<T, L>(roi));
    else fill_samples(zeros, 1, as<R>(dst), real_samples<T, L>(roi));
}

// --- Running a row kernel -----------------------------------------------------------------------------------------

// A destination from this size on does not stay in a cache: it is written past it, unless it is read as well.
inline constexpr int64_t arithmetic_streams_from = int64_t{16} << 20;

// Kernels of integer samples that compute in floats say so.
template <class R, class Kernel> inline constexpr bool in_floats = std::is_floating_point_v<R> || requires { Kernel::in_floats; };

// Held by every thread while it computes rows.
template <bool InFloats> class RowScope {
public:
    explicit RowScope(bool streams) : streams_(streams) {}
    ~RowScope() {
        if (streams_) streaming_fence();
    }

private:
    struct Nothing {};
    [[no_unique_address]] std::conditional_t<InFloats, FloatState, Nothing> state_;
    bool streams_;
};

// What a family that never forks gives for `fork`: it is known when the code is made, which is then half as long.
inline constexpr std::false_type serial;

// Rows without gaps between them in any image are one long row: their kernel starts once per run of rows.
template <bool InFloats, class R, class Fork, class A>
[[gnu::noinline]] void run_rows(const A& a, Src<R> b, Dst<R> dst, Extent e, Fork fork, const RowKernel<R, A>& kernel) {
    const bool inPlace = (kernel.reads_b && b.pointer == dst.pointer) || a.is(dst.pointer);
    const ptrdiff_t rowBytes = e.width * ptrdiff_t{sizeof(R)};
    const bool large = int64_t{rowBytes} * e.height >= arithmetic_streams_from && !kernel.ends_rows; // its pieces are rows to the kernel
    const bool streams = large && kernel.writes_all && !inPlace,
               joins = !kernel.ends_rows && (!kernel.registers_of_row || e.width % lanes<R> == 0);
    const bool contiguous = joins && b.step == rowBytes && dst.step == rowBytes && a.contiguous(rowBytes);
    const auto run = [&](ptrdiff_t first, ptrdiff_t count) {
        const Extent part = contiguous ? Extent{e.width * count, 1} : Extent{e.width, count};
        const Src<R> source{b.row(first), b.step};
        const Dst<R> destination{dst.row(first), dst.step};
        if (!large) return kernel.rows(a.row(first), source, destination, part.width, part.height);
        for (ptrdiff_t y = 0; y < part.height; ++y)
            large_row<R, A>(a.row(first + y), source.row(y), destination.row(y), part.width, kernel, streams);
    };
    const auto scope = [=] { return RowScope<InFloats>(streams); };
    if constexpr (!std::is_same_v<Fork, std::false_type>)
        if (fork) return static_runs(e.height, run, scope);
    [[maybe_unused]] const auto held = scope();
    run(0, e.height);
}

template <class Writes, class R, class A, class Fork, class Kernel>
void run_rows(const A& a, Src<R> b, Dst<R> dst, Extent e, Fork fork, Kernel& kernel) {
    run_rows<in_floats<R, Kernel>>(a, b, dst, e, fork, row_kernel<Writes, R, A>(kernel));
}

} // namespace zeti
