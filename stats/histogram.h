// SPDX-License-Identifier: Apache-2.0
// HistogramRange and HistogramEven: image level. All are serial. The bins are zero before anything can fail that is not an argument.
#pragma once

#include "core/memory.h"
#include "stats/histogram_kernels.h"

namespace zeti {

namespace detail {

enum class Way { direct, forward, binary, every_bin };

// From so many pixels on more levels than this are counted through a table of every sample; below the first row none are: it
// takes longer to clear and sum 65536 counters than to search.
struct BreakEven {
    int pixels, levels;
};
inline constexpr BreakEven ascending_break_even[] = {{6400, 134}, {9216, 78}, {12544, 50}, {16384, 34},
                                                     {20736, 22}, {25600, 6}, {36864, 2}};
inline constexpr BreakEven unsorted_break_even[] = {{1024, 434}, {2304, 222}, {4096, 126}, {6400, 78}, {9216, 50}, {12544, 34},
                                                    {16384, 22}, {20736, 14}, {25600, 10}, {30976, 6}, {43264, 2}};

template <int N> bool pays_direct(const BreakEven (&table)[N], int64_t pixels, int nLevels) {
    int limit = max_of<int>;
    for (const BreakEven& row : table)
        if (pixels >= row.pixels) limit = row.levels;
    return nLevels > limit;
}

inline Way way_of_16(Levels<Zet32s> levels, int64_t pixels) {
    if (levels.all_pairs([](Zet32s a, Zet32s b) { return a < b; }))
        return pays_direct(ascending_break_even, pixels, levels.count) ? Way::direct : levels.count < 171 ? Way::forward : Way::binary;
    return pays_direct(unsorted_break_even, pixels, levels.count) ? Way::direct : Way::every_bin;
}

inline Way way_of_32f(Levels<Zet32f> levels) {
    if (!levels.all_pairs([](Zet32f a, Zet32f b) { return !(a >= b); })) return Way::every_bin; // a level that is NaN counts as ascending
    return levels.count > 102 ? Way::binary : Way::forward;
}

template <class T> Channel<T> channel_of(const T* pSrc, int srcStep, ZetiSize roi, int channels, int c) {
    return {{pSrc + c, srcStep}, channels, roi};
}

template <class T> void search(Way way, Channel<T> image, Levels<Level<T>> levels, Zet32u* bins) {
    if (way == Way::forward) ownpi_Histogram_FS(image, levels, bins);
    else if (way == Way::binary) ownpi_Histogram_BS(image, levels, bins);
    else ownpi_Histogram_BH(image, levels, bins);
}

template <class T, class L>
ZetStatus count_16(const T* pSrc, int srcStep, ZetiSize roi, const Levels<Zet32s>* levels, Zet32u* const* bins) {
    const int64_t pixels = int64_t{roi.width} * roi.height;
    Way ways[L::colours] = {};
    bool direct = false;
    for (int c = 0; c < L::colours; ++c) {
        ways[c] = way_of_16(levels[c], pixels);
        direct |= ways[c] == Way::direct;
    }
    Zet32u* const counters = direct ? zetsMalloc<Zet32u>(table_entries<T>) : nullptr;
    if (direct && !counters) return zetStsMemAllocErr;
    for (int c = 0; c < L::colours; ++c) {
        const Channel<T> image = channel_of(pSrc, srcStep, roi, L::channels, c);
        if (ways[c] == Way::direct) direct_histogram(image, levels[c], counters, bins[c]);
        else search(ways[c], image, levels[c], bins[c]);
    }
    zetsFree(counters);
    return zetStsNoErr;
}

template <class T, class L> ZetStatus count(const T* pSrc, int srcStep, ZetiSize roi, const Levels<Level<T>>* levels, Zet32u* const* bins) {
    if constexpr (sizeof(T) == 1) {
        const Counters8u<L, Zet32u> counters({pSrc, srcStep}, roi);
        for (int c = 0; c < L::colours; ++c) sum_bins<T>(counters.counts[0][c], levels[c], bins[c]);
    } else if constexpr (sizeof(T) == 2) {
        return count_16<T, L>(pSrc, srcStep, roi, levels, bins);
    } else {
        [[maybe_unused]] const FloatState held;
        for (int c = 0; c < L::colours; ++c)
            search(way_of_32f(levels[c]), channel_of(pSrc, srcStep, roi, L::channels, c), levels[c], bins[c]);
    }
    return zetStsNoErr;
}

// Levels and cleared bins of all channels.
template <class T, class L> struct Bins {
    Levels<Level<T>> levels[L::colours];
    Zet32u* bins[L::colours];

    template <class Array> Bins(Zet32s* const* pHist, const Array* pLevels, const int* nLevels) {
        for (int c = 0; c < L::colours; ++c) {
            levels[c] = {pLevels[c], nLevels[c]};
            bins[c] = reinterpret_cast<Zet32u*>(pHist[c]); // counts wrap
            std::memset(bins[c], 0, levels[c].intervals() * sizeof(Zet32u));
        }
    }
};

// From lower to upper, whose difference takes 33 bits: the quotient, and one more, away from zero, for the first remainder intervals.
struct EvenLevels {
    int64_t width, remainder;

    EvenLevels(Zet32s lower, Zet32s upper, int intervals)
        : width((int64_t{upper} - lower) / intervals), remainder((int64_t{upper} - lower) % intervals) {}
    void write(Zet32s lower, Zet32s* levels, int intervals) const {
        int64_t level = lower;
        for (int k = 0; k <= intervals; ++k) {
            put(levels + k, static_cast<Zet32s>(level));
            level += width + (k < remainder) - (k < -remainder);
        }
    }
};

} // namespace detail

// HistogramRange. On C1 the arrays by themselves, else an array of them per colour channel.
template <class T, class L, class Hist, class Levels, class Number>
ZetStatus histogram_range(const T* pSrc, int srcStep, ZetiSize roiSize, Hist pHist, Levels pLevels, Number nLevels) {
    const auto hist = per_channel<L>(pHist);
    const auto levels = per_channel<L>(pLevels);
    const auto n = per_channel<L>(nLevels);
    if (ZetStatus bad = check_levels<L>(null(pSrc), first(size(roiSize), step(srcStep)), zetStsHistoNofLevelsErr, n, hist, levels))
        return bad;
    const detail::Bins<T, L> to(hist, levels, n);
    return detail::count<T, L>(pSrc, srcStep, roiSize, to.levels, to.bins);
}

// HistogramEven.
template <class T, class L, class Hist, class Levels, class Number, class Bound>
ZetStatus histogram_even(const T* pSrc, int srcStep, ZetiSize roiSize, Hist pHist, Levels pLevels, Number nLevels, Bound lowerLevel,
                         Bound upperLevel) {
    const auto hist = per_channel<L>(pHist);
    const auto levels = per_channel<L>(pLevels);
    const auto n = per_channel<L>(nLevels);
    const auto lower = per_channel<L>(lowerLevel), upper = per_channel<L>(upperLevel);
    const ZetStatus sizeAndStep = first(size(roiSize), step(srcStep));
    if (ZetStatus bad = check_levels<L>(null(pSrc, lower, upper), sizeAndStep, zetStsHistoNofLevelsErr, n, hist, levels)) return bad;
    bool exact = sizeof(T) == 2 && int64_t{roiSize.width} * roiSize.height < 0x10000; // all bins of a channel have one width
    for (int c = 0; c < L::colours; ++c) {
        const detail::EvenLevels even(lower[c], upper[c], n[c] - 1);
        even.write(lower[c], levels[c], n[c] - 1);
        exact &= even.remainder == 0;
    }
    const detail::Bins<T, L> to(hist, levels, n);
    if (!exact) return detail::count<T, L>(pSrc, srcStep, roiSize, to.levels, to.bins);
    [[maybe_unused]] const FloatState held;
    for (int c = 0; c < L::colours; ++c) {
        const double width = (static_cast<double>(upper[c]) - lower[c]) / (n[c] - 1);
        ownpi_HistogramEven(detail::channel_of(pSrc, srcStep, roiSize, L::channels, c), lower[c], upper[c], width, to.bins[c]);
    }
    return zetStsNoErr;
}

} // namespace zeti
