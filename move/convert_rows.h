// SPDX-License-Identifier: Apache-2.0
// The run of a converting row kernel over an image, for Convert and Scale.
#pragma once

#include "arith/rows.h"
#include "signal/convert_row.h"

namespace zeti {

// Contiguous images are one long row, up to a number of samples.
template <class L, class Kernel>
void run_conversion(const Kernel& kernel, Src<SourceOf<Kernel>> src, Dst<DestinationOf<Kernel>> dst, ZetiSize roi, bool large) {
    using S = SourceOf<Kernel>;
    using D = DestinationOf<Kernel>;
    constexpr Cache large_cache = L::keeps_alpha ? Cache::plain : Cache::streaming;
    const bool streams = large && !L::keeps_alpha && static_cast<const void*>(src.pointer) != dst.pointer;
    const Extent e = samples(roi, L::channels);
    const bool contiguous = area(e) < max_of<Zet32s> && src.step == e.width * ptrdiff_t{sizeof(S)};
    const Extent rows = contiguous ? collapsed(e, e.width * ptrdiff_t{sizeof(D)}, dst.step) : e;
    [[maybe_unused]] const RowScope<in_floats<S, Kernel>> held(streams);
    if (streams) convert_rows<Writes<D, L>, large_cache>(src, dst, rows.width, rows.height, kernel);
    else convert_rows<Writes<D, L>, Cache::plain>(src, dst, rows.width, rows.height, kernel);
}

} // namespace zeti
