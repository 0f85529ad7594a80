// SPDX-License-Identifier: Apache-2.0
// owniCopy_8u_C1_W7: the one byte mover under every copy of whole rows, of whatever type and layout.
#pragma once

#include "core/simd.h"

namespace zeti {

enum class Cache { plain, streaming };

// Copies n bytes upward. The streaming form bypasses the cache; its caller closes with streaming_fence().
inline void owniCopy_8u_C1(const Zet8u* src, Zet8u* dst, ptrdiff_t n, Cache cache) {
    ptrdiff_t i = 0;
    if (n >= 64) {
        if (const int peel = static_cast<int>(-reinterpret_cast<uintptr_t>(dst) & 15)) {
            store_bytes(dst, load_bytes(src, peel), peel);
            i = peel;
        }
        constexpr ptrdiff_t ahead = 4096; // streaming copies wait for their source otherwise
        const auto round = [&](auto store_aligned) __attribute__((always_inline)) {
            for (; i <= n - 64; i += 64) {
                if (cache == Cache::streaming) prefetch(src + i + ahead);
                const auto a = load(src + i), b = load(src + i + 16), c = load(src + i + 32), d = load(src + i + 48);
                store_aligned(dst + i, a), store_aligned(dst + i + 16, b);
                store_aligned(dst + i + 32, c), store_aligned(dst + i + 48, d);
            }
        };
        if (cache == Cache::streaming) round([](Zet8u* p, Vec<Zet8u> v) { store_streaming(p, raw(v)); });
        else round([](Zet8u* p, Vec<Zet8u> v) { store(p, v); });
    }
    for (; i <= n - 16; i += 16) store(dst + i, load(src + i));
    if (i < n) store_bytes(dst + i, load_bytes(src + i, static_cast<int>(n - i)), static_cast<int>(n - i));
}

} // namespace zeti
