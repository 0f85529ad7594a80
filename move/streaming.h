// SPDX-License-Identifier: Apache-2.0
// Runs of bytes written past the cache, whole lines of memory only: half a line costs more than a line.
#pragma once

#include <algorithm>

#include "signal/copy.h"

namespace zeti {

inline constexpr ptrdiff_t line_bytes = 64;

inline bool starts_line(const void* p) { return reinterpret_cast<uintptr_t>(p) % line_bytes == 0; }

// Bytes from p to the next line.
inline ptrdiff_t to_line(const void* p) { return static_cast<ptrdiff_t>(-reinterpret_cast<uintptr_t>(p) % line_bytes); }

inline void copy_run(const Zet8u* src, Zet8u* dst, ptrdiff_t n, Cache cache) {
    const ptrdiff_t head = cache == Cache::streaming ? std::min(n, to_line(dst)) : 0;
    if (head > 0) owniCopy_8u_C1(src, dst, head, Cache::plain);
    if (n > head) owniCopy_8u_C1(src + head, dst + head, n - head, cache);
}

} // namespace zeti
