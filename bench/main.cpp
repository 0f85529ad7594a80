// SPDX-License-Identifier: Apache-2.0
// Runs the rows at every size. The yardstick is memcpy: where an operation touches B bytes, reads plus writes, memcpy copies B/2 bytes
// to B/2 others. Where it reads no image, memcpy writes as much as it does, B bytes; where it writes none, the yardstick is a plain
// loop that reads B bytes by whole registers. Where images are regions of larger ones, memcpy is called for each row, as it would have
// to be. The two take turns, a batch of calls each. Machines are noisy, and what a neighbour takes of a shared core slows arithmetic more
// than memory: the figures are of the fastest tenth of the turns, and the median of the turns' own ratios stands beside them.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <emmintrin.h>
#include <omp.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/rows.h"

namespace bench {
namespace {

constexpr ZetiSize sizes[] = {{8, 8}, {256, 256}, {1920, 1080}, {4096, 4096}};

constexpr double batch_seconds = 0.2e-3;
constexpr size_t fewest_turns = 5, most_turns = 100;
constexpr double turns_seconds = 0.05; // ends the turns between these two numbers
constexpr double undisturbed = 0.1;    // this part of the turns

int threads = 1;

// With one thread the processor time of that thread, which does not count what other programs take of the machine.
double now() {
    timespec t;
    clock_gettime(threads == 1 ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double quantile(std::vector<double> v, double q) {
    const auto at = v.begin() + std::lround(q * static_cast<double>(v.size() - 1));
    std::nth_element(v.begin(), at, v.end());
    return *at;
}

template <class Calls> double seconds_per_call(const Calls& calls, int count) {
    const double start = now();
    calls(count);
    return (now() - start) / count;
}

template <class Calls> int batch_of(const Calls& calls) {
    calls(1);
    for (int count = 1;; count *= 2)
        if (const double seconds = seconds_per_call(calls, count) * count; seconds > batch_seconds / 4)
            return std::max(1, static_cast<int>(count * batch_seconds / seconds));
}

// As fast as one thread reads memory.
void read_all(const char* from, size_t bytes) {
    const auto* const p = reinterpret_cast<const __m128i*>(from);
    __m128i sums[4] = {};
    for (size_t i = 0; i + 4 <= bytes / sizeof(__m128i); i += 4)
        for (size_t k = 0; k < 4; ++k) sums[k] = _mm_or_si128(sums[k], _mm_load_si128(p + i + k));
    benchmark::DoNotOptimize(sums);
}

void measure(benchmark::State& state, const Row& row, ZetiSize size) {
    const size_t pixels = size_t(size.width) * size.height, bytes = pixels * row.touched;
    const size_t copied = row.reads ? bytes / 2 : bytes;
    Arena arena(size, size_t(size.width + 64) * size.height * row.stored + 2 * copied + 4096);
    const auto calls = row.prepare(arena);
    char *const from = arena.take(copied), *const to = arena.take(copied);
    std::memset(from, 1, copied);
    std::memset(to, 1, copied);
    const size_t run = row.byRows ? copied / size.height : copied;
    const auto copies = [=, writes = row.writes](int count) {
        for (int i = 0; i < count; ++i) {
            if (writes)
                for (size_t at = 0; at < copied; at += run) std::memcpy(to + at, from + at, run);
            else read_all(from, bytes); // both lie side by side
            benchmark::ClobberMemory();
        }
    };

    std::vector<double> ours, theirs, ratios;
    for (auto _ : state) { // once: the turns are inside
        const int callsInBatch = batch_of(calls), copiesInBatch = batch_of(copies);
        const double end = now() + turns_seconds;
        while (ours.size() < fewest_turns || (ours.size() < most_turns && now() < end)) {
            ours.push_back(seconds_per_call(calls, callsInBatch));
            theirs.push_back(seconds_per_call(copies, copiesInBatch));
            ratios.push_back(theirs.back() / ours.back());
        }
        state.SetIterationTime(quantile(ours, undisturbed));
    }
    state.counters["pixels"] = static_cast<double>(pixels);
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["reads"] = row.reads;
    state.counters["writes"] = row.writes;
    state.counters["yardstick_ns"] = quantile(theirs, undisturbed) * 1e9;
    state.counters["median_ratio"] = quantile(ratios, 0.5);
}

std::vector<Row>& rows() {
    static std::vector<Row> all;
    return all;
}

} // namespace

void add(Row row) { rows().push_back(std::move(row)); }

void* member(const std::string& name) {
    if (void* const address = dlsym(RTLD_DEFAULT, name.c_str())) return address;
    std::fprintf(stderr, "libzeti has no %s\n", name.c_str());
    std::exit(1);
}

Arena::Arena(ZetiSize imageSize, size_t bytes) : size(imageSize) {
    static Zet8u* block = nullptr;
    static size_t capacity = 0;
    if (bytes > capacity) {
        zetiFree(block);
        int step = 0;
        block = zetiMalloc_8u_C1(static_cast<int>(bytes >> 10) + 1, 1 << 10, &step);
        capacity = size_t(step) << 10;
        if (!block) std::fprintf(stderr, "no memory for %zu bytes\n", bytes), std::exit(1);
    }
    next_ = reinterpret_cast<char*>(block);
}

char* Arena::take(size_t bytes) {
    char* const taken = next_;
    next_ += (bytes + 63) / 64 * 64;
    return taken;
}

char* Arena::image(int pixelBytes, int* step) {
    *step = (size.width * pixelBytes + 63) / 64 * 64;
    return take(size_t(*step) * size.height);
}

} // namespace bench

int main(int argc, char** argv) {
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i)
        if (std::sscanf(argv[i], "--threads=%d", &bench::threads) != 1) rest.push_back(argv[i]);
    omp_set_num_threads(bench::threads);

    int order = 0; // of the report: the passes go through the rows in any order
    for (const bench::Row& row : bench::rows())
        for (const ZetiSize size : bench::sizes)
            benchmark::RegisterBenchmark((row.name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height)).c_str(),
                                         [&row, size, at = order++](benchmark::State& state) {
                                             bench::measure(state, row, size);
                                             state.counters["order"] = at;
                                         })
                ->UseManualTime()
                ->Iterations(1);

    benchmark::AddCustomContext("compiler", ZETI_BENCH_COMPILER);
    benchmark::AddCustomContext("flags", ZETI_BENCH_FLAGS);
    benchmark::AddCustomContext("threads", std::to_string(bench::threads));
    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    if (benchmark::ReportUnrecognizedArguments(count, rest.data())) return 1;
    return benchmark::RunSpecifiedBenchmarks() == 0;
}
