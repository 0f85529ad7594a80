// SPDX-License-Identifier: Apache-2.0
// Long runs of memory, taken from several places by turns: that suits memory better than one place, most of all beyond the last cache.
#pragma once

#include <algorithm>

#include "core/simd.h"

namespace zeti {

inline constexpr ptrdiff_t line_bytes = 64; // a line of the cache
inline constexpr ptrdiff_t piece_bytes =
    6 * line_bytes; // so few that the next ones are computed while these leave; whole patterns and pixels
inline constexpr ptrdiff_t ahead_bytes = 32 * line_bytes;
inline constexpr int most_places = 4;

inline bool starts_line(const void* p) { return reinterpret_cast<uintptr_t>(p) % line_bytes == 0; }

// Bytes from p to the next line.
inline ptrdiff_t to_line(const void* p) { return static_cast<ptrdiff_t>(-reinterpret_cast<uintptr_t>(p) % line_bytes); }

// Writes whole lines past the cache; whoever calls it closes with streaming_fence().
[[gnu::always_inline]] inline void stream_lines(const void* src, void* dst, ptrdiff_t n) {
    const auto* const from = static_cast<const __m128i*>(src);
    auto* const to = static_cast<__m128i*>(dst);
    for (ptrdiff_t k = 0; k < n / 16; ++k) store_streaming(to + k, _mm_loadu_si128(from + k));
}

// A piece of a long run. Everything is in units of which a line has `line`.
struct Piece {
    int place;  // that it belongs to; `most_places` is what is left in the end
    bool first; // of its place; the next one begins where it ends
    ptrdiff_t at, count;
    ptrdiff_t next; // so far behind it lies what will be wanted soon
};

// take(piece) for each piece of n; `ahead` is how far to look.
template <class Take> [[gnu::always_inline]] inline void by_places(ptrdiff_t n, ptrdiff_t line, ptrdiff_t ahead, Take take) {
    const ptrdiff_t piece = piece_bytes / line_bytes * line, places = n < 256 * line ? 1 : most_places, part = n / (places * piece) * piece;
    for (ptrdiff_t i = 0; i < part; i += piece)
        for (int p = 0; p < places; ++p) // at the end of its part each place looks to where it goes on in the next row
            take(Piece{p, i == 0, p * part + i, piece, i + ahead < part ? ahead : ahead + n - part});
    for (ptrdiff_t i = places * part; i < n; i += piece) take(Piece{most_places, i == places * part, i, std::min(piece, n - i), ahead});
}

} // namespace zeti
