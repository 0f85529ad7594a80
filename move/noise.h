// SPDX-License-Identifier: Apache-2.0
// AddRandUniform_Direct and AddRandGauss_Direct: noise added in place. Samples take their values in row order, AC4 pixels three of them; a
// pair of values may span the end of a row.
#pragma once

#include <algorithm>

#include "core/check.h"
#include "core/float_state.h"
#include "core/layout.h"
#include "signal/noise.h"

namespace zeti {

// Noise: UniformNoise with the parameters low and high, or GaussNoise with mean and stdDev.
template <class Noise, class T, class L>
ZetStatus add_rand(T* pSrcDst, int srcDstStep, ZetiSize roiSize, T first_, T second, Zet32u* pSeed) {
    if (ZetStatus bad = first(null(pSrcDst, pSeed), size(roiSize), step(srcDstStep))) return bad;
    const FloatState state;
    const Dst<T> image{pSrcDst, srcDstStep};
    constexpr int pixels = noise_chunk / L::colours;
    Noise noise(get(pSeed), static_cast<double>(first_), static_cast<double>(second));
    for (ptrdiff_t y = 0; y < roiSize.height; ++y)
        for (ptrdiff_t x = 0; x < roiSize.width; x += pixels) {
            alignas(16) double values[noise_chunk + 2];
            const int n = static_cast<int>(std::min<ptrdiff_t>(pixels, roiSize.width - x)) * L::colours;
            noise.fill(values, n);
            add_noise<L::keeps_alpha>(values, image.row(y) + x * L::channels, n);
        }
    put(pSeed, noise.last());
    return zetStsNoErr;
}

} // namespace zeti
