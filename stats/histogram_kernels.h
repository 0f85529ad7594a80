// SPDX-License-Identifier: Apache-2.0
// The ways to count samples into bins. All give the same counts where the levels ascend strictly; where they do not, the direct
// table and the every-bin test do.
#pragma once

#include <cstring>

#include "signal/count_8u.h"
#include "stats/levels.h"

namespace zeti {

template <class T> struct Channel { // of an interleaved image
    Src<T> samples;
    int channels;
    ZetiSize roi;

    template <class Use> void each(Use use) const { each_sample(samples, channels, roi, use); }
};

// Forward search: the first interval whose end lies above the sample.
template <class T> void ownpi_Histogram_FS(Channel<T> image, Levels<Level<T>> levels, Zet32u* bins) {
    image.each([=](Level<T> v) {
        if (!levels.hold(v)) return;
        int k = 0;
        while (!(v < levels[k + 1])) ++k;
        ++bins[k];
    });
}

// Binary search.
template <class T> void ownpi_Histogram_BS(Channel<T> image, Levels<Level<T>> levels, Zet32u* bins) {
    image.each([=](Level<T> v) {
        if (!levels.hold(v)) return;
        const int k = halved(levels, v);
        ++bins[k];
    });
}

// Every bin is tested: one sample may count in several.
template <class T> void ownpi_Histogram_BH(Channel<T> image, Levels<Level<T>> levels, Zet32u* bins) {
    image.each([=](Level<T> v) {
        for (int k = 0; k < levels.intervals(); ++k) bins[k] += levels.interval_holds(k, v);
    });
}

// The counters of the samples between two levels.
template <class T> void sum_bins(const Zet32u* counters, Levels<Zet32s> levels, Zet32u* bins) {
    const auto entry = [](Zet32s level) { return std::clamp(level, int{min_of<T>}, max_of<T> + 1) - int{min_of<T>}; };
    for (int k = 0; k < levels.intervals(); ++k)
        for (int i = entry(levels[k]); i < entry(levels[k + 1]); ++i) bins[k] += counters[i];
}

// Direct: a counter for every 16-bit sample.
template <class T> void direct_histogram(Channel<T> image, Levels<Zet32s> levels, Zet32u* counters, Zet32u* bins) {
    std::memset(counters, 0, table_entries<T> * sizeof *counters);
    image.each([=](T v) { ++counters[table_index(v)]; });
    sum_bins<T>(counters, levels, bins);
}

// Bins of one width: (v - lower) / width without a division. In double precision (v - lower + 0.5) * (1 / width) lies further from an integer
// than its error, whatever the 32-bit lower level.
template <class T> void ownpi_HistogramEven(Channel<T> image, Zet32s lower, Zet32s upper, double width, Zet32u* bins) {
    const double start = lower - 0.5, reciprocal = 1 / width;
    image.each([=](T v) {
        if (v >= lower && v < upper) ++bins[static_cast<int>((v - start) * reciprocal)];
    });
}

} // namespace zeti
