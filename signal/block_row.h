// SPDX-License-Identifier: Apache-2.0
// The row walker of kernels that rearrange samples without computing with them. A kernel works on blocks of whole pixels, as bytes:
//
//     static constexpr int pixels;                    of a block
//     static constexpr int sources, source_bytes;     rows it reads, and the bytes of a pixel in each
//     static constexpr int targets, target_bytes;     rows it writes
//     static constexpr int before, behind;            neighbouring pixels that it touches, 0 or 1; behind the block also by writing
//     static constexpr int unread;                    bytes of a source's last pixel that are not the caller's
//     static constexpr bool keeps;                    it keeps some of what the destination holds
//     void operator()(const Zet8u* const* src, Zet8u* const* dst) const;
//
// Where a kernel would touch what lies outside the row, and where the row is shorter than a block, pixels pass through buffers. Sources and
// targets must not overlap: pixels may be done twice.
#pragma once

#include <algorithm>

#include "core/simd.h"

namespace zeti {

namespace detail {

// `count` pixels, at most a block, by way of buffers.
template <class Block>
[[gnu::always_inline]] inline void run_buffered(const Block& block, const Zet8u* const* src, Zet8u* const* dst, ptrdiff_t count) {
    constexpr int margin = 16; // for neighbours
    Zet8u in[Block::sources][Block::pixels * Block::source_bytes + 2 * margin],
        out[Block::targets][Block::pixels * Block::target_bytes + 2 * margin];
    const Zet8u* from[Block::sources];
    Zet8u* to[Block::targets];
    for (int k = 0; k < Block::sources; ++k) {
        from[k] = in[k] + margin;
        std::memcpy(in[k] + margin, src[k], static_cast<size_t>(count * Block::source_bytes - Block::unread));
    }
    const size_t written = static_cast<size_t>(count * Block::target_bytes);
    for (int k = 0; k < Block::targets; ++k) {
        to[k] = out[k] + margin;
        if constexpr (Block::keeps) std::memcpy(to[k], dst[k], written);
    }
    block(from, to);
    for (int k = 0; k < Block::targets; ++k) std::memcpy(dst[k], to[k], written);
}

} // namespace detail

template <class Block>
[[gnu::noinline, gnu::flatten]] void block_row(const Block& kernel, const Zet8u* const* sources, Zet8u* const* targets, ptrdiff_t n) {
    const Block block = kernel; // in registers for the row
    const Zet8u* src[Block::sources];
    Zet8u* dst[Block::targets];
    for (int k = 0; k < Block::sources; ++k) src[k] = sources[k];
    for (int k = 0; k < Block::targets; ++k) dst[k] = targets[k];
    if (n < Block::pixels) return detail::run_buffered(block, src, dst, n);
    const auto advance = [&](ptrdiff_t count) __attribute__((always_inline)) {
        for (int k = 0; k < Block::sources; ++k) src[k] += count * Block::source_bytes;
        for (int k = 0; k < Block::targets; ++k) dst[k] += count * Block::target_bytes;
    };
    if (Block::before > 0) {
        detail::run_buffered(block, src, dst, Block::pixels);
        advance(Block::pixels);
        n -= Block::pixels;
    }
    for (; n >= Block::pixels + Block::behind; n -= Block::pixels) {
        block(src, dst);
        advance(Block::pixels);
    }
    if (n <= 0) return;
    advance(n - Block::pixels); // the last whole block, part of it once more
    detail::run_buffered(block, src, dst, Block::pixels);
}

} // namespace zeti
