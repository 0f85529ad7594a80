// SPDX-License-Identifier: Apache-2.0
// A stand-in for libzetcore: it counts, refuses and answers as it is told. Settings are made while no call is under way.
#pragma once

#include <atomic>

#include "services/zetcore.h"

struct Standin {
    int threads = 1;            // the answer of ownGetNumThreads
    int cache_bytes = 0;        // that of zetGetMaxCacheSizeB; 0: unknown
    int refused_allocation = 0; // from now: 1 is the next; 0: none
    std::atomic<int> thread_queries = 0, cache_queries = 0;
    std::atomic<int> allocations = 0, last_bytes = 0; // asked for, granted or not
    std::atomic<int> live_blocks = 0;                 // granted and not yet released

    void reset() { // all but the live blocks, which are still out there
        threads = 1, cache_bytes = refused_allocation = 0;
        thread_queries = cache_queries = allocations = last_bytes = 0;
    }
};
extern ZETCORE_API Standin standin;
