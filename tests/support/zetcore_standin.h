/* SPDX-License-Identifier: Apache-2.0 */
/* A stand-in for libzetcore: it counts, refuses and answers as it is told. Settings are made while no call is under way. */
#ifndef ZETCORE_STANDIN_H
#define ZETCORE_STANDIN_H

#include "services/zetcore.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One thread, no refusals, no known cache, all counts zero except the live blocks, which are still out there. */
ZETCORE_API void standin_reset(void);

/* ownGetNumThreads answers `count`. */
ZETCORE_API void standin_set_threads(int count);
ZETCORE_API int standin_thread_queries(void);

/* Refuses the n-th allocation from now (1 is the next, 0 takes a refusal back), or all of them. */
ZETCORE_API void standin_refuse_allocation(int n);
ZETCORE_API void standin_refuse_all_allocations(int refuse);
ZETCORE_API int standin_allocations(void); /* asked for, granted or not */
ZETCORE_API int standin_last_bytes(void);  /* the size last asked for */
ZETCORE_API int standin_live_blocks(void); /* granted and not yet released */

/* zetGetMaxCacheSizeB answers `bytes`; 0 makes the size unknown. */
ZETCORE_API void standin_set_cache(int bytes);
ZETCORE_API int standin_cache_queries(void);

#ifdef __cplusplus
}
#endif

#endif
