/* SPDX-License-Identifier: Apache-2.0 */
#include "zetcore_standin.h"

#include <stdatomic.h>
#include <stdlib.h>
#include <string.h>

enum { ALIGNMENT = 64, DIRTY_BYTES = 1 << 20 };

static int threads = 1, cache_bytes, refuse_all;
static int refused_allocation; /* counted like `allocations`; 0 for none */
static atomic_int thread_queries, cache_queries, allocations, last_bytes, live_blocks;

void standin_reset(void) {
    standin_set_threads(1);
    cache_bytes = refuse_all = refused_allocation = 0;
    cache_queries = allocations = last_bytes = 0;
}

void standin_set_threads(int count) {
    threads = count;
    thread_queries = 0;
}
void standin_refuse_allocation(int n) { refused_allocation = n ? allocations + n : 0; }
void standin_refuse_all_allocations(int refuse) { refuse_all = refuse; }
void standin_set_cache(int bytes) { cache_bytes = bytes; }

int standin_thread_queries(void) { return thread_queries; }
int standin_cache_queries(void) { return cache_queries; }
int standin_allocations(void) { return allocations; }
int standin_last_bytes(void) { return last_bytes; }
int standin_live_blocks(void) { return live_blocks; }

int ownGetNumThreads(void) {
    atomic_fetch_add(&thread_queries, 1);
    return threads;
}

void *zetMalloc(int bytes) {
    const int allocation = atomic_fetch_add(&allocations, 1) + 1;
    last_bytes = bytes;
    if (bytes < 1 || refuse_all || allocation == refused_allocation) return NULL;
    void *block = aligned_alloc(ALIGNMENT, ((size_t)bytes + ALIGNMENT - 1) & ~(size_t)(ALIGNMENT - 1));
    if (!block) return NULL;
    memset(block, 0xA5, bytes < DIRTY_BYTES ? (size_t)bytes : DIRTY_BYTES); /* nobody may count on zeros */
    atomic_fetch_add(&live_blocks, 1);
    return block;
}

void zetFree(void *block) {
    if (block) atomic_fetch_sub(&live_blocks, 1);
    free(block);
}

int zetGetMaxCacheSizeB(int *pSizeByte) {
    atomic_fetch_add(&cache_queries, 1);
    if (!pSizeByte || cache_bytes < 1) return -1;
    *pSizeByte = cache_bytes;
    return 0;
}
