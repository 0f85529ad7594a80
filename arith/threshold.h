// SPDX-License-Identifier: Apache-2.0
// Threshold and its siblings: image level. All are serial. Every parameter V is one value on C1, else a pointer to one per
// colour channel.
//
// Pointers, size and steps come first, then the parameters; Threshold_Val alone tests its operator before everything else.
#pragma once

#include "arith/rows.h"
#include "signal/threshold.h"

namespace zeti {

namespace detail {

template <class T, class... V>
ZetStatus check_threshold(const T* pSrc, int srcStep, const T* pDst, int dstStep, ZetiSize roi, const V&... parameters) {
    return first(null(pSrc, constants(parameters)..., pDst), size(roi), step(srcStep, dstStep));
}

template <class T, class L, class Kernel, class... Values>
void run_threshold(Kernel kernel, const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roi, const Values*... values) {
    const auto run = [&](const auto& operand) {
        run_rows<Writes<T, L>>(operand, Src<T>{pSrc, srcStep}, Dst<T>{pDst, dstStep}, real_samples<T, L>(roi), serial, kernel);
    };
    if constexpr (sizeof...(Values) == 1) run(constant_operand<T, L>(values...));
    else run(constant_operands<T, L>(values...));
}

// What the kernel takes for each channel's value.
template <class T, class L> struct Replacements {
    T values[L::colours];
    Replacements(const T* bound, const T* value) {
        for (int c = 0; c < L::colours; ++c) values[c] = replacement(bound[c], value[c]);
    }
};

constexpr bool is_side(ZetCmpOp op) { return op == zetCmpLess || op == zetCmpGreater; }

} // namespace detail

template <class T, class L, class V>
ZetStatus threshold_by(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, V bound, ZetCmpOp cmpOp) {
    using namespace detail;
    if (ZetStatus bad =
            first(check_threshold(pSrc, srcStep, pDst, dstStep, roiSize, bound), fails(!is_side(cmpOp), zetStsNotSupportedModeErr)))
        return bad;
    if (cmpOp == zetCmpLess) run_threshold<T, L>(Threshold<Below, T>(), pSrc, srcStep, pDst, dstStep, roiSize, constants(bound));
    else run_threshold<T, L>(Threshold<Above, T>(), pSrc, srcStep, pDst, dstStep, roiSize, constants(bound));
    return zetStsNoErr;
}

// Threshold_LT, Threshold_GT.
template <ZetCmpOp Op, class T, class L, class V>
ZetStatus threshold_side(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, V bound) {
    return threshold_by<T, L>(pSrc, srcStep, pDst, dstStep, roiSize, bound, Op);
}

template <class T, class L, class V>
ZetStatus threshold_value(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, V bound, V value, ZetCmpOp cmpOp) {
    using namespace detail;
    if (ZetStatus bad =
            first(fails(!is_side(cmpOp), zetStsNotSupportedModeErr), check_threshold(pSrc, srcStep, pDst, dstStep, roiSize, bound, value)))
        return bad;
    const T* const b = constants(bound);
    const Replacements<T, L> put(b, constants(value));
    if (cmpOp == zetCmpLess) run_threshold<T, L>(ThresholdVal<Below, T>(), pSrc, srcStep, pDst, dstStep, roiSize, b, put.values);
    else run_threshold<T, L>(ThresholdVal<Above, T>(), pSrc, srcStep, pDst, dstStep, roiSize, b, put.values);
    return zetStsNoErr;
}

// Threshold_LTVal, Threshold_GTVal.
template <ZetCmpOp Op, class T, class L, class V>
ZetStatus threshold_side_value(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, V bound, V value) {
    return threshold_value<T, L>(pSrc, srcStep, pDst, dstStep, roiSize, bound, value, Op);
}

// Bounds that cross are an error on any channel; equal ones are none.
template <class T, class L, class V>
ZetStatus threshold_two_values(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, V low, V valueLow, V high, V valueHigh) {
    using namespace detail;
    if (ZetStatus bad = check_threshold(pSrc, srcStep, pDst, dstStep, roiSize, low, valueLow, high, valueHigh)) return bad;
    for (int c = 0; c < L::colours; ++c)
        if (less(constants(high)[c], constants(low)[c])) return zetStsThresholdErr;
    const T *const lows = constants(low), *const highs = constants(high);
    const Replacements<T, L> putLow(lows, constants(valueLow)), putHigh(highs, constants(valueHigh));
    run_threshold<T, L>(ThresholdLTValGTVal<T>(), pSrc, srcStep, pDst, dstStep, roiSize, lows, putLow.values, highs, putHigh.values);
    return zetStsNoErr;
}

// In place: the same call with both images the same.
template <class T, class L, class... V> ZetStatus threshold_by_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, V... parameters) {
    return threshold_by<T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, parameters...);
}
template <ZetCmpOp Op, class T, class L, class... V>
ZetStatus threshold_side_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, V... parameters) {
    return threshold_side<Op, T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, parameters...);
}
template <class T, class L, class... V> ZetStatus threshold_value_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, V... parameters) {
    return threshold_value<T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, parameters...);
}
template <ZetCmpOp Op, class T, class L, class... V>
ZetStatus threshold_side_value_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, V... parameters) {
    return threshold_side_value<Op, T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, parameters...);
}
template <class T, class L, class... V> ZetStatus threshold_two_values_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, V... parameters) {
    return threshold_two_values<T, L>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, parameters...);
}

} // namespace zeti
