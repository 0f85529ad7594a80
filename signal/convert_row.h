// SPDX-License-Identifier: Apache-2.0
// The row walker of conversions: samples of one type to as many samples of another.
//
// A kernel names its types, `source` and `destination`, and takes and gives a block: 16 samples, in as many registers as they fill. It is
// the only definition of its arithmetic: the ends of a row go through it as a block of which the rest is zero.
#pragma once

#include "core/view.h"
#include "signal/copy.h"
#include "signal/row.h"

namespace zeti {

template <class Kernel> using SourceOf = typename Kernel::source;
template <class Kernel> using DestinationOf = typename Kernel::destination;

inline constexpr int block = lanes<Zet8u>; // samples: whole registers of every type
template <class T> using Block = Registers<T, block / lanes<T>>;

namespace detail {

// One block. Where the stores stream, dst is aligned to a register.
template <class Writes, Cache cache, class Kernel>
[[gnu::always_inline]] inline void convert_block(const SourceOf<Kernel>* src, DestinationOf<Kernel>* dst, const Kernel& kernel) {
    using S = SourceOf<Kernel>;
    using D = DestinationOf<Kernel>;
    Block<S> from;
    for (int k = 0; k < block / lanes<S>; ++k) from.v[k] = load(src + k * lanes<S>);
    const Block<D> to = kernel(from);
    for (int k = 0; k < block / lanes<D>; ++k) {
        D* const p = dst + k * lanes<D>;
        if constexpr (cache == Cache::streaming) store_streaming(p, raw(to[k]));
        else store(p, Writes::merge(to[k], load(p), 0));
    }
}

// n samples, fewer than a block.
template <class Writes, class Kernel>
[[gnu::noinline]] void convert_part(const SourceOf<Kernel>* src, DestinationOf<Kernel>* dst, ptrdiff_t n, const Kernel& kernel) {
    alignas(register_bytes) SourceOf<Kernel> from[block] = {};
    alignas(register_bytes) DestinationOf<Kernel> to[block] = {};
    std::memcpy(from, src, static_cast<size_t>(n) * sizeof *from);
    if (!std::is_same_v<Writes, WriteAll<DestinationOf<Kernel>>>) std::memcpy(to, dst, static_cast<size_t>(n) * sizeof *to);
    convert_block<Writes, Cache::plain>(from, to, kernel);
    std::memcpy(dst, to, static_cast<size_t>(n) * sizeof *to);
}

} // namespace detail

// Rows of n samples. Registers of the destination begin with a pixel: WriteAll, or KeepAlpha with pixels of 4 samples. The streaming form
// bypasses the cache; its caller closes with streaming_fence().
template <class Writes, Cache cache, class Kernel>
[[gnu::noinline, gnu::flatten]] void convert_rows(Src<SourceOf<Kernel>> source, Dst<DestinationOf<Kernel>> destination, ptrdiff_t n,
                                                  ptrdiff_t height, const Kernel& kernel) {
    using D = DestinationOf<Kernel>;
    constexpr ptrdiff_t size = sizeof(SourceOf<Kernel>);
    const Kernel op = kernel; // in registers for the rows
    for (ptrdiff_t y = 0; y < height; ++y) {
        const auto* const src = source.row(y);
        D* const dst = destination.row(y);
        ptrdiff_t i = 0;
        if constexpr (cache == Cache::streaming) {
            static_assert(std::is_same_v<Writes, WriteAll<D>>);
            const int peel = static_cast<int>(-reinterpret_cast<uintptr_t>(dst) % register_bytes);
            if (peel % int{sizeof(D)} != 0) {
                convert_rows<Writes, Cache::plain>({src, 0}, {dst, 0}, n, 1, kernel);
                continue;
            }
            i = std::min<ptrdiff_t>(n, peel / int{sizeof(D)});
            if (i > 0) detail::convert_part<Writes>(src, dst, i, kernel);
            constexpr ptrdiff_t line = 4 * block, ahead = std::max<ptrdiff_t>(6 * line, ahead_bytes / size);
            const ptrdiff_t whole = (n - i) / line * line;
            by_places(
                whole, line, ahead, [=](const Piece& piece) __attribute__((always_inline)) {
                    for (ptrdiff_t k = i + piece.at, end = k + piece.count; k < end; k += line) {
                        for (ptrdiff_t m = 0; m < line; m += line_bytes / size) prefetch(src + k + m, piece.next * size);
                        for (ptrdiff_t m = 0; m < line; m += block) detail::convert_block<Writes, cache>(src + k + m, dst + k + m, op);
                    }
                });
            i += whole;
        }
        for (; i <= n - block; i += block) detail::convert_block<Writes, cache>(src + i, dst + i, op);
        if (i == n) continue;
        const bool apart = static_cast<const void*>(src + n) <= dst || static_cast<const void*>(dst + n) <= src;
        if (n >= block && apart) detail::convert_block<Writes, Cache::plain>(src + n - block, dst + n - block, op); // part of it once more
        else detail::convert_part<Writes>(src + i, dst + i, n - i, kernel);
    }
}

} // namespace zeti
