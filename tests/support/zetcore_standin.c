/* SPDX-License-Identifier: Apache-2.0 */
#include "zetcore_standin.h"

#include <stdatomic.h>
#include <stdlib.h>
#include <string.h>

enum { ALIGNMENT = 64, SCRIPT_LENGTH = 64, DIRTY_BYTES = 1 << 20 };

static int thread_answers[SCRIPT_LENGTH] = {1};
static int thread_answers_length = 1;
static atomic_int thread_queries;

static atomic_int allocations, last_bytes, live_blocks;
static int refused_allocation; /* counted like `allocations`; 0 for none */
static int refuse_all;

static int cache_bytes;
static atomic_int cache_queries;

void standin_reset(void) {
    standin_set_threads(1);
    standin_refuse_allocation(0);
    standin_refuse_all_allocations(0);
    standin_set_cache(0);
    allocations = last_bytes = 0;
    cache_queries = 0;
}

void standin_set_threads(int count) { standin_script_threads(&count, 1); }

void standin_script_threads(const int *answers, int length) {
    if (length < 1 || length > SCRIPT_LENGTH) abort();
    memcpy(thread_answers, answers, (size_t)length * sizeof *answers);
    thread_answers_length = length;
    thread_queries = 0;
}

int standin_thread_queries(void) { return thread_queries; }

int ownGetNumThreads(void) {
    const int query = atomic_fetch_add(&thread_queries, 1);
    return thread_answers[query < thread_answers_length ? query : thread_answers_length - 1];
}

void standin_refuse_allocation(int n) { refused_allocation = n ? allocations + n : 0; }

void standin_refuse_all_allocations(int refuse) { refuse_all = refuse; }

int standin_allocations(void) { return allocations; }

int standin_last_bytes(void) { return last_bytes; }

int standin_live_blocks(void) { return live_blocks; }

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

void standin_set_cache(int bytes) { cache_bytes = bytes; }

int standin_cache_queries(void) { return cache_queries; }

int zetGetMaxCacheSizeB(int *pSizeByte) {
    atomic_fetch_add(&cache_queries, 1);
    if (!pSizeByte || cache_bytes < 1) return -1;
    *pSizeByte = cache_bytes;
    return 0;
}
