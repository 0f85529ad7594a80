// SPDX-License-Identifier: Apache-2.0
// owniSet_..._W7: fills a row of bytes with a pixel value spread to registers.
#pragma once

#include "signal/copy.h"

namespace zeti {

// One pixel repeated over 16 or, where it does not divide 16, 48 bytes; twice, so that a register can be read at any phase.
class FillPattern {
public:
    template <class T> FillPattern(const T* value, int channels) : period_(16 % (int{sizeof(T)} * channels) == 0 ? 16 : 48) {
        const int pixel = int{sizeof(T)} * channels;
        for (int i = 0; i < 2 * longest; ++i) bytes_[i] = reinterpret_cast<const Zet8u*>(value)[i % pixel];
    }
    int period() const { return period_; }
    Vec<Zet8u> at(ptrdiff_t i) const { return load(bytes_ + i % period_); }

private:
    static constexpr int longest = 48;
    int period_;
    Zet8u bytes_[2 * longest];
};

inline constexpr ptrdiff_t set_is_large_from = 1048576; // bytes of a row

// Fills n bytes with the pattern. The streaming form's caller closes with streaming_fence().
inline void owniSet_8u(const FillPattern& pattern, Zet8u* dst, ptrdiff_t n, Cache cache) {
    ptrdiff_t i = 0;
    if (n >= 64) {
        store(dst, pattern.at(0)); // one unaligned register, then on from the next boundary
        i = 16 - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & 15);
        const auto a = pattern.at(i), b = pattern.at(i + 16), c = pattern.at(i + 32);
        const auto round = [=](ptrdiff_t at, auto store_aligned) __attribute__((always_inline)) {
            store_aligned(dst + at, a), store_aligned(dst + at + 16, b), store_aligned(dst + at + 32, c);
        };
        if (cache == Cache::streaming) {
            for (; i <= n - 48; i += 48) round(i, [](Zet8u* p, Vec<Zet8u> v) { store_streaming(p, raw(v)); });
        } else {
            const auto plain = [=](ptrdiff_t at) __attribute__((always_inline)) {
                round(at, [](Zet8u* p, Vec<Zet8u> v) { store(p, v); });
            };
            if (const ptrdiff_t from = i; n >= set_is_large_from) { // what is not in the cache is asked for before it is written
                by_places(n - from, line_bytes, ahead_bytes, [=, &i](const Piece& piece) {
                    const ptrdiff_t at = from + piece.at;
                    for (ptrdiff_t k = 0; k < piece.count; k += line_bytes) prefetch(dst + at + k, piece.next);
                    for (i = at; i <= at + piece.count - 48; i += 48) plain(i);
                });
            }
            for (; i <= n - 48; i += 48) plain(i);
        }
    }
    for (; i <= n - 16; i += 16) store(dst + i, pattern.at(i));
    if (i < n) store_bytes(dst + i, raw(pattern.at(i)), static_cast<int>(n - i));
}

} // namespace zeti
