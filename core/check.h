// SPDX-License-Identifier: Apache-2.0
// Argument checks. A function lists its checks in the order in which they count:
//
//     if (ZetStatus bad = first(null(pSrc, pDst), size(roiSize), step(srcStep, dstStep))) return bad;
#pragma once

#include "core/base.h"

namespace zeti {

constexpr ZetStatus fails(bool bad, ZetStatus status) { return bad ? status : zetStsNoErr; }

template <class... Pointer> constexpr ZetStatus null(Pointer... p) { return fails((... || (p == nullptr)), zetStsNullPtrErr); }

// The array of planes itself, then every plane in it.
template <int N, class T> constexpr ZetStatus null_planes(T* const* planes) {
    if (!planes) return zetStsNullPtrErr;
    for (int i = 0; i < N; ++i)
        if (!planes[i]) return zetStsNullPtrErr;
    return zetStsNoErr;
}

constexpr ZetStatus width(ZetiSize s) { return fails(s.width < 1, zetStsSizeErr); }
constexpr ZetStatus size(ZetiSize s) { return fails(s.width < 1 || s.height < 1, zetStsSizeErr); }

template <class... Step> constexpr ZetStatus step(Step... s) { return fails((... || (s < 1)), zetStsStepErr); }

// The first check that failed, in the order given.
template <class... Status> constexpr ZetStatus first(Status... s) {
    ZetStatus result = zetStsNoErr;
    (void)(... || ((result = s) != zetStsNoErr));
    return result;
}

} // namespace zeti
