// SPDX-License-Identifier: Apache-2.0
// Image memory for callers, and work buffers for the library.
#pragma once

#include "core/base.h"
#include "core/layout.h"
#include "core/services.h"

namespace zeti {

// Products of sizes wrap at 32 bits on purpose: nothing here tests for overflow.
constexpr int wrapping_product(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b)); }

// A row of `width` pixels, rounded up to 64 bytes.
constexpr int image_step(int width, int pixelBytes) {
    return static_cast<int>((static_cast<unsigned>(wrapping_product(width, pixelBytes)) + 63u) & ~63u);
}

template <class T, class L> T* malloc_image(int width, int height, int* pStepBytes) {
    if (!pStepBytes) return nullptr;
    *pStepBytes = 0;
    if (width < 1 || height < 1) return nullptr;
    *pStepBytes = image_step(width, int{sizeof(T)} * L::channels);
    return static_cast<T*>(zetMalloc(wrapping_product(height, *pStepBytes)));
}

inline void free_image(void* block) { zetFree(block); }

// Work buffers: `count` elements, or null for a count below 1 or when memory is refused.
template <class T> T* zetsMalloc(int count) {
    return count < 1 ? nullptr : static_cast<T*>(zetMalloc(wrapping_product(count, int{sizeof(T)})));
}

inline void zetsFree(void* block) { zetFree(block); }

} // namespace zeti
