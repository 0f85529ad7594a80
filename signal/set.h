// SPDX-License-Identifier: Apache-2.0
// owniSet_..._W7: fills a row of bytes with a pixel value spread to registers.
#pragma once

#include "signal/copy.h"

namespace zeti {

// One pixel repeated over 48 bytes, which is a whole number of every pixel; twice, so that a register can be read at any phase.
class FillPattern {
public:
    static constexpr int period = 48;

    template <class T> FillPattern(const T* value, int channels) {
        const int pixel = int{sizeof(T)} * channels;
        for (int i = 0; i < 2 * period; ++i) bytes_[i] = reinterpret_cast<const Zet8u*>(value)[i % pixel];
    }
    Vec<Zet8u> at(ptrdiff_t i) const { return load(bytes_ + i % period); }
    Vec<Zet8u> begin(ptrdiff_t i) const { return load(bytes_ + i); } // of the first 80 bytes

private:
    Zet8u bytes_[2 * period];
};

inline constexpr ptrdiff_t set_is_large_from = 1048576; // bytes of a row

namespace detail {

// From the first register boundary on a row is rounds of three registers; its first and its last register cover what is left beside them.
[[gnu::always_inline]] inline ptrdiff_t first_round(const Zet8u* dst) {
    return 16 - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & 15);
}

// 16 bytes and more, of which the rounds before `i` are done.
[[gnu::always_inline]] inline void set_rounds(const FillPattern& pattern, Zet8u* dst, ptrdiff_t i, ptrdiff_t n) {
    const ptrdiff_t first = first_round(dst);
    const auto a = pattern.begin(first), b = pattern.begin(first + 16), c = pattern.begin(first + 32);
    store(dst, pattern.begin(0));
    for (; i <= n - 48; i += 48) store(dst + i, a), store(dst + i + 16, b), store(dst + i + 32, c);
    if (i <= n - 16) store(dst + i, a);
    if (i <= n - 32) store(dst + i + 16, b);
    store(dst + n - 16, pattern.at(n - 16));
}

// What is not in the cache is asked for before it is written.
[[gnu::noinline]] inline void set_large(const FillPattern& pattern, Zet8u* dst, ptrdiff_t n) {
    const ptrdiff_t first = first_round(dst);
    const auto a = pattern.begin(first), b = pattern.begin(first + 16), c = pattern.begin(first + 32);
    ptrdiff_t done = 0;
    by_places(n - first, line_bytes, ahead_bytes, [&](const Piece& piece) {
        Zet8u* const to = dst + first + piece.at;
        for (ptrdiff_t k = 0; k < piece.count; k += line_bytes) prefetch(to + k, piece.next);
        for (ptrdiff_t k = 0; k <= piece.count - 48; k += 48) store(to + k, a), store(to + k + 16, b), store(to + k + 32, c);
        done = piece.at + piece.count / 48 * 48; // the last piece ends the row
    });
    set_rounds(pattern, dst, first + done, n);
}

[[gnu::noinline]] inline void set_streaming(const FillPattern& pattern, Zet8u* dst, ptrdiff_t n) {
    ptrdiff_t i = first_round(dst);
    const auto a = raw(pattern.begin(i)), b = raw(pattern.begin(i + 16)), c = raw(pattern.begin(i + 32));
    for (; i <= n - 48; i += 48) store_streaming(dst + i, a), store_streaming(dst + i + 16, b), store_streaming(dst + i + 32, c);
    set_rounds(pattern, dst, i, n);
}

} // namespace detail

// Fills n bytes with the pattern; after the streaming form the caller closes with streaming_fence(). As in owniCopy_8u_C1, the usual case takes
// no call.
[[gnu::always_inline]] inline void owniSet_8u(const FillPattern& pattern, Zet8u* dst, ptrdiff_t n, Cache cache) {
    if (n < 16) store_bytes(dst, raw(pattern.begin(0)), static_cast<int>(n));
    else if (cache == Cache::streaming) detail::set_streaming(pattern, dst, n);
    else if (n >= set_is_large_from) detail::set_large(pattern, dst, n);
    else detail::set_rounds(pattern, dst, detail::first_round(dst), n);
}

} // namespace zeti
