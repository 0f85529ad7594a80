// SPDX-License-Identifier: Apache-2.0
#include "tests/support/zetcore_standin.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

Standin standin;

int ownGetNumThreads() {
    ++standin.thread_queries;
    return standin.threads;
}

void* zetMalloc(int bytes) {
    constexpr std::size_t alignment = 64;
    ++standin.allocations, standin.last_bytes = bytes;
    const bool refused = standin.refused_allocation > 0 && --standin.refused_allocation == 0;
    if (bytes < 1 || refused) return nullptr;
    void* const block = std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
    if (!block) return nullptr;
    std::memset(block, 0xA5, std::min(bytes, 1 << 20)); // nobody may count on zeros
    ++standin.live_blocks;
    return block;
}

void zetFree(void* block) {
    if (block) --standin.live_blocks;
    std::free(block);
}

int zetGetMaxCacheSizeB(int* pSizeByte) {
    ++standin.cache_queries;
    if (!pSizeByte || standin.cache_bytes < 1) return -1;
    *pSizeByte = standin.cache_bytes;
    return 0;
}
