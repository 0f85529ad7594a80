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

// How a run of n is divided: so many places, a part of the run each, which are gone through by pieces; what is left lies behind them. Everything
// is in units of which a line has `line`.
struct Places {
    ptrdiff_t piece, count, part;

    Places(ptrdiff_t n, ptrdiff_t line, ptrdiff_t lines)
        : piece(lines * line), count(n < 256 * line ? 1 : most_places), part(n / (count * piece) * piece) {}
};

struct Piece {
    ptrdiff_t at, count;
    ptrdiff_t next; // so far behind it lies what will be wanted soon
};

// take(piece) for each piece of n, of the places by turns; `ahead` is how far to look.
template <class Take> [[gnu::always_inline]] inline void by_places(ptrdiff_t n, ptrdiff_t line, ptrdiff_t ahead, Take take) {
    const auto [piece, places, part] = Places(n, line, piece_bytes / line_bytes);
    for (ptrdiff_t i = 0; i < part; i += piece)
        for (ptrdiff_t p = 0; p < places; ++p) // at the end of its part each place looks to where it goes on in the next row
            take(Piece{p * part + i, piece, i + ahead < part ? ahead : ahead + n - part});
    for (ptrdiff_t i = places * part; i < n; i += piece) take(Piece{i, std::min(piece, n - i), ahead});
}

} // namespace zeti
