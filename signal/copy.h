// SPDX-License-Identifier: Apache-2.0
// owniCopy_8u_C1_W7: the one byte mover under every copy of whole rows, of whatever type and layout.
#pragma once

#include "signal/places.h"

namespace zeti {

enum class Cache { plain, streaming };

namespace detail {

// Upward, whatever overlaps.
[[gnu::noinline]] inline void copy_in_order(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
    ptrdiff_t i = 0;
    for (; i <= n - 16; i += 16) store(dst + i, load(src + i));
    if (i < n) store_bytes(dst + i, load_bytes(src + i, static_cast<int>(n - i)), static_cast<int>(n - i));
}

// Of two that do not overlap, 16 bytes and more: the first and the last registers cover what is left beside the aligned ones.
[[gnu::always_inline]] inline void copy_plain(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
    const auto four = [=](ptrdiff_t i) __attribute__((always_inline)) {
        const auto a = load(src + i), b = load(src + i + 16), c = load(src + i + 32), d = load(src + i + 48);
        store(dst + i, a), store(dst + i + 16, b), store(dst + i + 32, c), store(dst + i + 48, d);
    };
    store(dst, load(src));
    ptrdiff_t i = 16 - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & 15);
    for (; i < n - 64; i += 64) four(i);
    for (; i < n - 16; i += 16) store(dst + i, load(src + i));
    store(dst + n - 16, load(src + n - 16));
}

// Of two that do not overlap, past the cache, but for parts of lines, as half a line costs more than a line.
[[gnu::noinline]] inline void copy_streaming(const Zet8u* src, Zet8u* dst, ptrdiff_t n) {
    const ptrdiff_t head = std::min(n, to_line(dst)), lines = (n - head) / line_bytes * line_bytes, tail = n - head - lines;
    copy_in_order(src, dst, head);
    by_places(
        lines, line_bytes, ahead_bytes, [=](const Piece& piece) __attribute__((always_inline)) {
            for (ptrdiff_t i = head + piece.at, end = i + piece.count; i < end; i += line_bytes) {
                prefetch(src + i, piece.next);
                stream_lines(src + i, dst + i, line_bytes);
            }
        });
    copy_in_order(src + n - tail, dst + n - tail, tail);
}

} // namespace detail

// Copies n bytes; after the streaming form the caller closes with streaming_fence(). The usual case stands where it is used: a call in each
// row, which writes to the stack between the row's stores, would cost a short row a third more.
[[gnu::always_inline]] inline void owniCopy_8u_C1(const Zet8u* src, Zet8u* dst, ptrdiff_t n, Cache cache) {
    if (n < 16 || (src < dst + n && dst < src + n)) [[unlikely]]
        detail::copy_in_order(src, dst, n);
    else if (cache == Cache::plain) detail::copy_plain(src, dst, n);
    else detail::copy_streaming(src, dst, n);
}

// owniExchange_8u_I: two runs of n bytes that do not overlap change places.
inline void owniExchange_8u_I(Zet8u* a, Zet8u* b, ptrdiff_t n) {
    const ptrdiff_t lines = n / line_bytes * line_bytes;
    by_places(
        lines, line_bytes, ahead_bytes, [=](const Piece& piece) __attribute__((always_inline)) {
            for (ptrdiff_t i = piece.at, end = i + piece.count; i < end; i += line_bytes) {
                prefetch(a + i, piece.next), prefetch(b + i, piece.next);
                for (int k = 0; k < line_bytes; k += 16) {
                    const auto x = load(a + i + k), y = load(b + i + k);
                    store(a + i + k, y), store(b + i + k, x);
                }
            }
        });
    ptrdiff_t i = lines;
    for (; i <= n - 16; i += 16) {
        const auto x = load(a + i), y = load(b + i);
        store(a + i, y), store(b + i, x);
    }
    std::swap_ranges(a + i, a + n, b + i);
}

} // namespace zeti
