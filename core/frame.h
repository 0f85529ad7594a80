// SPDX-License-Identifier: Apache-2.0
// The four frames in which a call shares its work among threads. Each is one OpenMP region, opened and closed within the
// call; a runtime that refuses to fork runs the same code on one thread. A family uses one frame on each of its paths.
#pragma once

#include <omp.h>

#include "core/memory.h"

namespace zeti {

// The threads a region asks for; asked anew each time, as the answer may change between calls.
inline int threads() {
    const int n = ownGetNumThreads();
    return n < 1 ? 1 : n;
}

// Units [first, first + count) of one thread. Every thread but the last takes units / threads of them; the last one adds
// the whole remainder, which is not spread on purpose.
struct Strip {
    int first;
    int count;
};

constexpr Strip strip_of(int thread, int threadCount, int units) {
    const int each = units / threadCount;
    return {thread * each, thread == threadCount - 1 ? units - thread * each : each};
}

// Frame A: every thread takes one contiguous run of rows, `run(first, count)`; the runs differ by at most one row, the longer
// ones first. The rows' kernels cannot fail. What `scope()` returns lives in each thread for the length of its run.
template <class Run, class Scope> void static_runs(ptrdiff_t height, Run run, Scope scope) {
#pragma omp parallel num_threads(threads())
    {
        [[maybe_unused]] const auto held = scope();
        const ptrdiff_t team = omp_get_num_threads(), thread = omp_get_thread_num(), each = height / team, longer = height % team;
        const ptrdiff_t count = each + (thread < longer ? 1 : 0);
        if (count > 0) run(thread * each + (thread < longer ? thread : longer), count);
    }
}

// The same, row by row.
template <class Row, class Scope> void static_rows(ptrdiff_t height, Row row, Scope scope) {
    static_runs(
        height,
        [&](ptrdiff_t first, ptrdiff_t count) {
            for (ptrdiff_t y = first; y < first + count; ++y) row(y);
        },
        scope);
}

// Frame B: one buffer for all threads, allocated before the region; `strip(rows, buffer)` once per thread.
// `bufferBytes` is one thread's share. The strips' kernels have no failing path once the buffer exists.
template <class StripKernel> ZetStatus buffered_strips(int height, int bufferBytes, StripKernel strip) {
    const int share = (bufferBytes + 3) & ~3;
    const int requested = threads();
    Zet8u* const buffer = zetsMalloc<Zet8u>(wrapping_product(share, requested));
    if (!buffer) return zetStsMemAllocErr;
    int granted = 1;
#pragma omp parallel num_threads(requested)
    {
#pragma omp master
        granted = omp_get_num_threads();
#pragma omp barrier
        const int thread = omp_get_thread_num();
        strip(strip_of(thread, granted, height), buffer + ptrdiff_t{thread} * share);
    }
    zetsFree(buffer);
    return zetStsNoErr;
}

// Frame C: the buffer is allocated inside the region, for the threads actually granted; when that is refused no thread
// touches a row. The rows go out in static runs, `row(y, buffer)`.
template <class RowKernel> ZetStatus buffered_rows(int height, int bufferBytes, RowKernel row) {
    Zet8u* buffer = nullptr;
#pragma omp parallel num_threads(threads())
    {
#pragma omp master
        buffer = zetsMalloc<Zet8u>(wrapping_product(bufferBytes, omp_get_num_threads()));
#pragma omp barrier
        if (buffer) {
            Zet8u* const own = buffer + ptrdiff_t{omp_get_thread_num()} * bufferBytes;
#pragma omp for schedule(static) nowait
            for (int y = 0; y < height; ++y) row(y, own);
        }
    }
    if (!buffer) return zetStsMemAllocErr;
    zetsFree(buffer);
    return zetStsNoErr;
}

// Frame D: at most `maxThreads` threads, each with its slot in `statuses` (one per possible thread) and its share of a buffer that
// the caller brings. `work(strip, thread)` stops at its first failure; the first failing thread, in thread order, gives the
// status of the call. What was written before a failure stays written.
template <class Work> ZetStatus status_strips(int units, int maxThreads, Zet32s* statuses, Work work) {
    for (int t = 0; t < maxThreads; ++t) statuses[t] = zetStsNoErr;
    int used = 1;
#pragma omp parallel num_threads(threads())
    {
#pragma omp master
        used = omp_get_num_threads() < maxThreads ? omp_get_num_threads() : maxThreads;
#pragma omp barrier
        const int thread = omp_get_thread_num();
        if (thread < used) statuses[thread] = work(strip_of(thread, used, units), thread);
    }
    for (int t = 0; t < maxThreads; ++t)
        if (statuses[t] != zetStsNoErr) return static_cast<ZetStatus>(statuses[t]);
    return zetStsNoErr;
}

// Column passes of frame D hand out blocks of 16 columns.
constexpr int column_blocks(int columns) { return (columns - 1 + 16) / 16; }

} // namespace zeti
