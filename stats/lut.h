// SPDX-License-Identifier: Apache-2.0
// LUT, LUT_Linear and LUT_Cubic: image level. All are serial. Integer samples go through a table that is built by the call; 16-bit
// samples of small images search their interval instead where the curve is of constants; 32f samples always search.
#pragma once

#include "core/memory.h"
#include "stats/lut_curves.h"

namespace zeti {

namespace detail {

// Fewer pixels are searched, which is less work than a table of 65536 samples. Only C1 and C3 have that way, on purpose.
inline constexpr int table_pays_from = 4097;
template <class L> inline constexpr bool searches_small = L::channels != 4;

// Samples outside all intervals stay as they are.
template <class T> void build_table(T* table, auto fillTable) {
    for (int i = 0; i < table_entries<T>; ++i) table[i] = static_cast<T>(i + int{min_of<T>});
    fillTable(table);
}

// Rows of pixels, each colour sample through map(channel, sample).
template <class T, class L, class Map> void map_samples(Src<T> src, Dst<T> dst, ZetiSize roi, Map map) {
    for (ptrdiff_t y = 0; y < roi.height; ++y) {
        const T* from = src.row(y);
        T* to = dst.row(y);
        ptrdiff_t x = 0;
        const auto pixel = [&] {
            T mapped[L::colours];
            for (int c = 0; c < L::colours; ++c) mapped[c] = map(c, get(from + c));
            for (int c = 0; c < L::colours; ++c) put(to + c, mapped[c]);
            from += L::channels, to += L::channels;
        };
        for (; x <= roi.width - 4; x += 4) pixel(), pixel(), pixel(), pixel();
        for (; x < roi.width; ++x) pixel();
    }
}

// ownpi_LUT: through one table of all samples per channel. Not inlined: a compiler that knows the table would load it into registers, lane by lane.
template <class T, class L> [[gnu::noinline]] void ownpi_LUT(Src<T> src, Dst<T> dst, ZetiSize roi, const T* tables) {
    map_samples<T, L>(src, dst, roi, [=](int c, T v) { return tables[c * table_entries<T> + table_index(v)]; });
}

// ownpi_LUT_BS: constants, by a search for the interval of each sample.
template <class T, class L> void ownpi_LUT_BS(Src<T> src, Dst<T> dst, ZetiSize roi, const Curve<Zet32s>* curves) {
    map_samples<T, L>(src, dst, roi, [=](int c, T v) {
        const Curve<Zet32s>& curve = curves[c];
        return curve.levels.hold(v) ? saturated<T>(curve.value[halved(curve.levels, Zet32s{v})]) : v;
    });
}

template <class Form, class T, class L> ZetStatus map_integers(Src<T> src, Dst<T> dst, ZetiSize roi, const Curve<Zet32s>* curves) {
    [[maybe_unused]] const FloatState held; // curves are computed in double precision
    const auto build = [&](T* tables) {
        for (int c = 0; c < L::colours; ++c)
            build_table(tables + c * table_entries<T>, [&](T* table) { Form::fill_table(table, curves[c]); });
    };
    if constexpr (sizeof(T) == 1) {
        T tables[L::colours * table_entries<T>];
        build(tables);
        ownpi_LUT<T, L>(src, dst, roi, tables);
        return zetStsNoErr;
    } else {
        if constexpr (Form::searches_16 && searches_small<L>)
            if (wrapping_product(roi.width, roi.height) < table_pays_from) {
                ownpi_LUT_BS<T, L>(src, dst, roi, curves);
                return zetStsNoErr;
            }
        T* const tables = zetsMalloc<T>(L::colours * table_entries<T>);
        if (!tables) return zetStsMemAllocErr;
        build(tables);
        ownpi_LUT<T, L>(src, dst, roi, tables);
        zetsFree(tables);
        return zetStsNoErr;
    }
}

// The first interval that holds a sample; the number of intervals where none does. Levels that ascend strictly are halved.
template <class V> int first_interval(const Levels<V>& levels, bool ascending, V v) {
    if (ascending) return levels.hold(v) ? halved(levels, v) : levels.intervals();
    int k = 0;
    while (k < levels.intervals() && !levels.interval_holds(k, v)) ++k;
    return k;
}

template <class Form, class T, class L> ZetStatus map_floats(Src<T> src, Dst<T> dst, ZetiSize roi, const Curve<Zet32f>* curves) {
    [[maybe_unused]] const FloatState held;
    bool ascending[L::colours];
    int64_t count = 0, offset[L::colours];
    for (int c = 0; c < L::colours; ++c) {
        ascending[c] = curves[c].levels.all_pairs([](Zet32f a, Zet32f b) { return a < b; });
        offset[c] = count;
        count += Form::coefficients(curves[c].levels.count);
    }
    Zet8u* block = nullptr;
    if (count > 0) {
        const int64_t bytes = count * int64_t{sizeof(Zet64f)};
        block = max_of<int> < bytes ? nullptr : zetsMalloc<Zet8u>(static_cast<int>(bytes));
        if (!block) return zetStsMemAllocErr;
    }
    const auto coefficients = [&](int c) { return reinterpret_cast<Zet64f*>(block) + offset[c]; };
    for (int c = 0; c < L::colours; ++c) Form::prepare(curves[c], coefficients(c));
    map_samples<T, L>(src, dst, roi, [&](int c, Zet32f v) {
        const int k = first_interval(curves[c].levels, ascending[c], v);
        return k < curves[c].levels.intervals() ? Form::at(curves[c], coefficients(c), k, v) : v;
    });
    zetsFree(block);
    return zetStsNoErr;
}

template <class Form, class T, class L, class Values, class Levels, class Number>
ZetStatus lut(ZetStatus images, ZetStatus sizeAndSteps, Src<T> src, Dst<T> dst, ZetiSize roi, const Values& pValues, const Levels& pLevels,
              const Number& nLevels) {
    const auto values = per_channel<L>(pValues);
    const auto levels = per_channel<L>(pLevels);
    const auto n = per_channel<L>(nLevels);
    if (ZetStatus bad = check_levels<L>(images, sizeAndSteps, zetStsLUTNofLevelsErr, n, values, levels)) return bad;
    Curve<Level<T>> curves[L::colours];
    for (int c = 0; c < L::colours; ++c) curves[c] = {values[c], {levels[c], n[c]}};
    if constexpr (has_table<T>) return map_integers<Form, T, L>(src, dst, roi, curves);
    else return map_floats<Form, T, L>(src, dst, roi, curves);
}

} // namespace detail

// On C1 the arrays by themselves, else an array of them per colour channel.
template <class Form, class T, class L, class Values, class Levels, class Number>
ZetStatus lut(const T* pSrc, int srcStep, T* pDst, int dstStep, ZetiSize roiSize, Values pValues, Levels pLevels, Number nLevels) {
    return detail::lut<Form, T, L>(null(pSrc, pDst), first(size(roiSize), step(srcStep, dstStep)), {pSrc, srcStep}, {pDst, dstStep},
                                   roiSize, pValues, pLevels, nLevels);
}

template <class Form, class T, class L, class Values, class Levels, class Number>
ZetStatus lut_I(T* pSrcDst, int srcDstStep, ZetiSize roiSize, Values pValues, Levels pLevels, Number nLevels) {
    return lut<Form, T, L>(static_cast<const T*>(pSrcDst), srcDstStep, pSrcDst, srcDstStep, roiSize, pValues, pLevels, nLevels);
}

} // namespace zeti
