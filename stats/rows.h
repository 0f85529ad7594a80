// SPDX-License-Identifier: Apache-2.0
// What the reductions share: a reduction in progress, to which an image, or two, are given row by row, and which then has one value per
// channel. All are serial. None of the checks is here, and whoever computes holds a FloatState.
#pragma once

#include "core/check.h"
#include "core/float_state.h"
#include "core/layout.h"
#include "core/to_double.h"
#include "core/view.h"
#include "signal/extrema.h"
#include "signal/sum.h"

namespace zeti {

namespace detail {
template <class Kernel, class T, class... More> void take_row(Kernel& kernel, ptrdiff_t pixels, const T* p, const More*... more) {
    reduce_row(kernel, Rows<T, 1 + sizeof...(More)>{{{p}, {more}...}}, pixels * Kernel::channels);
}
} // namespace detail

// A sum: every row, or block of a row, is summed by itself and added to one total per channel.
template <class Kernel> class SumReduction {
public:
    static constexpr bool rows_matter = !std::is_integral_v<typename Kernel::Total> || requires { requires Kernel::wraps; };

    explicit SumReduction(ZetiSize roi) : pixels_(static_cast<Zet32u>(roi.width) * static_cast<Zet32u>(roi.height)) {}

    template <class... T> void row(ptrdiff_t width, const T*... p) {
        for (ptrdiff_t x = 0; x < width;) {
            const ptrdiff_t count = std::min<ptrdiff_t>(Kernel::block, width - x);
            Kernel lanes;
            detail::take_row(lanes, count, p + x * Kernel::channels...);
            lanes.add_to(totals_);
            x += count;
        }
    }

    [[gnu::always_inline]] Zet64f value(int c) const {
        // Bytes of several channels: where the number of pixels says that 32 bits will do, they have to, and that number itself is of 32
        // bits. Kept on purpose.
        if constexpr (requires { requires Kernel::bytes; })
            if (pixels_ <= Zet32u{Kernel::block}) return static_cast<Zet64f>(static_cast<Zet32s>(static_cast<Zet32u>(totals_[c])));
        return to_double(totals_[c]);
    }

private:
    const Zet32u pixels_;
    typename Kernel::Total totals_[Kernel::channels] = {};
};

// The largest value; its kernel goes on from row to row.
template <class Kernel> class LargestReduction {
public:
    static constexpr bool rows_matter = false;

    explicit LargestReduction(ZetiSize) {}
    template <class... T> void row(ptrdiff_t width, const T*... p) { detail::take_row(lanes_, width, p...); }
    [[gnu::always_inline]] Zet64f value(int c) const {
        typename Kernel::Value best[Kernel::channels];
        lanes_.values(best);
        return static_cast<Zet64f>(best[c]);
    }

private:
    Kernel lanes_;
};

// All rows of the images, then the values of the colours. Rows without gaps are one long row where that gives the same.
template <class Reduction, class L, class... T> void reduce(Zet64f (&values)[4], ZetiSize roi, Src<T>... src) {
    Reduction reduction(roi);
    const int64_t rowBytes = int64_t{roi.width} * L::channels * int64_t{sizeof(std::common_type_t<T...>)};
    if (!Reduction::rows_matter && (... && (src.step == rowBytes)) && rowBytes * roi.height <= max_of<Zet32s>) {
        reduction.row(ptrdiff_t{roi.width} * roi.height, src.pointer...);
    } else {
        for (ptrdiff_t y = 0; y < roi.height; ++y) reduction.row(roi.width, src.row(y)...);
    }
    for (int c = 0; c < L::colours; ++c) values[c] = reduction.value(c);
}

inline constexpr std::false_type fast_path;
inline constexpr std::true_type accurate_path;

// use(path) for what the hint asks for. Only floats have two paths, and any value but one asks for the fast one.
template <class T, class Use> void by_hint(ZetHintAlgorithm hint, Use use) {
    if constexpr (std::is_floating_point_v<T>)
        if (hint == zetAlgHintAccurate) return use(accurate_path);
    use(fast_path);
}

} // namespace zeti
