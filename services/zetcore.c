/* SPDX-License-Identifier: Apache-2.0 */
#include "zetcore.h"

#include <limits.h>
#include <omp.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

enum { ALIGNMENT = 64 };

void *zetMalloc(int bytes) {
    if (bytes < 1) return NULL;
    /* aligned_alloc wants whole multiples of the alignment. */
    return aligned_alloc(ALIGNMENT, ((size_t)bytes + ALIGNMENT - 1) & ~(size_t)(ALIGNMENT - 1));
}

void zetFree(void *block) { free(block); }

/* The largest cache that the C library knows of; 0 for none. */
static long long cache_of_c_library(void) {
    static const int names[] = {_SC_LEVEL4_CACHE_SIZE, _SC_LEVEL3_CACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL1_DCACHE_SIZE};
    long long largest = 0;
    for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
        const long size = sysconf(names[i]);
        if (size > largest) largest = size;
    }
    return largest;
}

/* The largest cache that the kernel lists, in entries like "2048K"; 0 for none. */
static long long cache_of_kernel(void) {
    long long largest = 0;
    for (int i = 0;; ++i) {
        char path[64];
        snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu0/cache/index%d/size", i);
        FILE *file = fopen(path, "re");
        if (!file) return largest;
        long long size = 0;
        char unit = 0;
        if (fscanf(file, "%9lld%c", &size, &unit) < 1) size = 0;
        fclose(file);
        if (unit == 'K') size <<= 10;
        if (unit == 'M') size <<= 20;
        if (size > largest) largest = size;
    }
}

int zetGetMaxCacheSizeB(int *pSizeByte) {
    if (!pSizeByte) return -1;
    long long size = cache_of_c_library();
    if (size == 0) size = cache_of_kernel();
    if (size == 0) return -1;
    *pSizeByte = size < INT_MAX ? (int)size : INT_MAX;
    return 0;
}

int ownGetNumThreads(void) {
    const int threads = omp_get_max_threads();
    return threads > 1 ? threads : 1;
}
