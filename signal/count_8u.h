// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/layout.h"
#include "core/view.h"

namespace zeti {

// A counter for every sample of an 8-bit image, by channel. Neighbours go to tables of their own, so that runs of one value do not wait for one counter.
template <class L, class Counter> struct Counters8u {
    static constexpr int sets = L::channels == 1 ? 8 : 2; // a counter is ready again after some seven cycles
    Counter counts[sets][L::colours][256] = {};

    Counters8u(Src<Zet8u> image, ZetiSize roi) { // counts[0] holds the sums
        for (ptrdiff_t y = 0; y < roi.height; ++y) add_row(image.row(y), roi.width);
        for (int c = 0; c < L::colours; ++c)
            for (int set = 1; set < sets; ++set)
                for (int i = 0; i < 256; ++i) counts[0][c][i] += counts[set][c][i];
    }

private:
    void add_row(const Zet8u* p, ptrdiff_t width) {
        constexpr int at_once = 8; // pixels
        ptrdiff_t x = 0;
        for (; x <= width - at_once; x += at_once, p += at_once * L::channels)
            for (int i = 0; i < at_once; ++i) add_pixel(p + i * L::channels, i % sets);
        for (; x < width; ++x, p += L::channels) add_pixel(p, 0);
    }
    void add_pixel(const Zet8u* p, int set) {
        for (int c = 0; c < L::colours; ++c) ++counts[set][c][p[c]];
    }
};

} // namespace zeti
