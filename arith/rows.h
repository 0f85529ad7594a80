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
template <class T, class L> inline constexpr int pixel_samples = L::channels * parts<T>;

template <class T, class L>
using Writes = std::conditional_t<L::keeps_alpha, KeepAlpha<Real<T>, 4 * parts<T>>, WriteAll<Real<T>>>;

template <class T, class L> Extent real_samples(ZetiSize roi) { return samples(roi, pixel_samples<T, L>); }

// First operands, given row by row.
template <class R> struct ImageOperand {
    Src<R> image;
    RowOperand<R> row(ptrdiff_t y) const { return {image.row(y)}; }
    bool is(const R* p) const { return image.pointer == p; }
};

template <class R> struct NoImage {
    NoOperand<R> row(ptrdiff_t) const { return {}; }
    static bool is(const R*) { return false; }
};

template <class T, class L> class ConstantOperand {
    using R = Real<T>;
    static constexpr int pixel = pixel_samples<T, L>;
    static constexpr int period = 16 % (pixel * sizeof(R)) == 0 ? 1 : pixel * sizeof(R) % 32 == 0 ? 2 : 3;

public:
    explicit ConstantOperand(const T* values) : pattern_(Pixel(values).samples, pixel) {}
    const Pattern<R, period>& row(ptrdiff_t) const { return pattern_; }
    static bool is(const R*) { return false; }

private:
    struct Pixel { // alpha has no constant
        R samples[pixel] = {};
        explicit Pixel(const T* values) { std::memcpy(samples, values, sizeof(T) * L::colours); }
    };
    Pattern<R, period> pattern_;
};

// Fills what the layout writes with zeros.
template <class T, class L> void clear(Dst<T> dst, ZetiSize roi) {
    using R = Real<T>;
    const R zeros[8] = {};
    if constexpr (L::keeps_alpha) fill_colours<pixel_samples<T, L>>(zeros, as<R>(dst), real_samples<T, L>(roi));
    else fill_samples(zeros, 1, as<R>(dst), real_samples<T, L>(roi));
}

// --- Running a row kernel -----------------------------------------------------------------------------------------

// A destination from this size on does not stay in a cache: it is written past it. (In place it is in the cache already.)
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

template <class Writes, class R, class Operand, class Kernel>
void run_rows(const Operand& a, Src<R> b, Dst<R> dst, Extent e, bool fork, Kernel& kernel) {
    constexpr bool writes_all = std::is_same_v<Writes, WriteAll<R>>;
    const bool streams = writes_all && area(e) * int64_t{sizeof(R)} >= arithmetic_streams_from && b.pointer != dst.pointer && !a.is(dst.pointer);
    const auto compute = [&](ptrdiff_t y) {
        if constexpr (writes_all)
            if (streams) return streaming_row(a.row(y), b.row(y), dst.row(y), e.width, kernel);
        row<Writes>(a.row(y), b.row(y), dst.row(y), e.width, kernel);
    };
    const auto one_row = [&](ptrdiff_t y) {
        compute(y);
        if constexpr (requires { kernel.end_row(); }) kernel.end_row();
    };
    const auto scope = [=] { return RowScope<in_floats<R, Kernel>>(streams); };
    if (fork) {
        static_rows(e.height, one_row, scope);
    } else {
        [[maybe_unused]] const auto held = scope();
        each_row(e, one_row);
    }
}

} // namespace zeti
