// SPDX-License-Identifier: Apache-2.0
// LShiftC and RShiftC: image level. Serial; the steps are tested before the size.
//
// A count from the width of the sample on leaves nothing: the result is 0, or the sign where a right shift is arithmetic.
#pragma once

#include "arith/rows.h"
#include "signal/shift.h"

namespace zeti {

struct Left {
    template <class T> using Kernel = LShift<T>;
    template <class T> using KernelV = LShiftV<T>;
    template <class T> static constexpr bool fills_with_sign = false;
};

struct Right {
    template <class T> using Kernel = RShift<T>;
    template <class T> using KernelV = RShiftV<T>;
    template <class T> static constexpr bool fills_with_sign = std::is_signed_v<T>;
};

namespace detail {

template <class Direction, class T, class L> void shift_by_one_count(Zet32u n, Src<T> src, Dst<T> dst, ZetiSize roi) {
    using U = Unsigned<T>;
    const Extent e = real_samples<T, L>(roi);
    if (n == 0 && !L::keeps_alpha) {
        const bool inPlace = src.pointer == dst.pointer && src.step == dst.step;
        return inPlace ? void() : copy_samples(src, dst, e);
    }
    if (n >= bits_of<T> && !Direction::template fills_with_sign<T>) return clear<T, L>(dst, roi);
    typename Direction::template Kernel<T> kernel(static_cast<int>(std::min<Zet32u>(n, bits_of<T> - 1)));
    run_rows<Writes<U, L>>(NoOperand<U>(), as<U>(src), as<U>(dst), e, serial, kernel);
}

// Lanes of one register have different counts.
template <class Direction, class T, class L> void shift_by_channel(const Zet32u* counts, Src<T> src, Dst<T> dst, ZetiSize roi) {
    using U = Unsigned<T>;
    const typename Direction::template KernelV<T> kernel;
    const auto run = [&](const auto& op, const auto& operand) {
        run_rows<Writes<U, L>>(operand, as<U>(src), as<U>(dst), real_samples<T, L>(roi), serial, op);
    };
    U factors[4], unshifted[4], excess[4];
    Zet32u n[4] = {};
    for (int c = 0; c < L::colours; ++c) {
        n[c] = Direction::template fills_with_sign<T> ? std::min<Zet32u>(counts[c], bits_of<T> - 1) : counts[c];
        factors[c] = kernel.factor(n[c]);
        if constexpr (std::is_same_v<Direction, Right>) unshifted[c] = kernel.unshifted(n[c]), excess[c] = kernel.excess(n[c]);
    }
    if constexpr (std::is_same_v<Direction, Left>) {
        run(kernel, constant_operands<U, L>(factors));
    } else if constexpr (sizeof(T) > 1) {
        run(kernel, constant_operands<U, L>(factors, unshifted, excess));
    } else {
        using Bytes = RShiftVBytes<T>;
        using Constants = decltype(constant_operand<U, L>(excess));
        Zet16u ofEven[L::channels], ofOdd[L::channels]; // of the pairs in two pixels
        for (int k = 0; k < L::channels; ++k) {
            ofEven[k] = Bytes::factor_of_even(n[2 * k % L::channels]);
            ofOdd[k] = Bytes::factor_of_odd(n[(2 * k + 1) % L::channels]);
        }
        const auto pairs = [](const Zet16u* f) { return Constants(reinterpret_cast<const U*>(f), 2 * L::channels); };
        run(Bytes(), Operands<U, Constants, 3>{{pairs(ofEven), pairs(ofOdd), constant_operand<U, L>(excess)}});
    }
}

} // namespace detail

// `value` is one count on C1, else a pointer to one per colour channel.
template <class Direction, class T, class L, class V>
ZetStatus shift(const T* pSrc, int srcStep, V value, T* pDst, int dstStep, ZetiSize roiSize) {
    const Zet32u* const counts = constants(value);
    if (ZetStatus bad = first(null(pSrc, counts, pDst), step(srcStep, dstStep), size(roiSize))) return bad;
    const Src<T> src{pSrc, srcStep};
    const Dst<T> dst{pDst, dstStep};
    const bool one = std::all_of(counts, counts + L::colours, [=](Zet32u n) { return n == *counts; });
    if (one) detail::shift_by_one_count<Direction, T, L>(*counts, src, dst, roiSize);
    else if constexpr (L::colours > 1) detail::shift_by_channel<Direction, T, L>(counts, src, dst, roiSize);
    return zetStsNoErr;
}

template <class Direction, class T, class L, class V> ZetStatus shift_I(V value, T* pSrcDst, int srcDstStep, ZetiSize roiSize) {
    return shift<Direction, T, L>(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize);
}

} // namespace zeti
