// SPDX-License-Identifier: Apache-2.0
// What the tests of histograms, tables by level and palettes share: calls with arrays per channel, and their checks in order.
#pragma once

#include <climits>
#include <functional>
#include <utility>

#include "tests/support/image.h"
#include "tests/support/member.h"
#include "tests/support/zetcore_standin.h"

namespace test {

struct TableLayout {
    const char* name;
    int channels, colours;
    bool one() const { return channels == 1; }
};
constexpr TableLayout table_layouts[] = {{"C1", 1, 1}, {"C3", 3, 3}, {"C4", 4, 4}, {"AC4", 4, 3}};

// Arguments that can be spoiled, two at a time: of two errors the call reports the one that stands first in the list, and touches nothing.
template <class Call> using Spoilers = std::vector<std::pair<ZetStatus, std::function<void(Call&)>>>;

template <class Call, class Intact> void expect_sequence(const Call& good, const Spoilers<Call>& errors, Intact intact) {
    for (std::size_t i = 0; i < errors.size(); ++i)
        for (std::size_t j = i; j < errors.size(); ++j) {
            Call call = good;
            errors[j].second(call), errors[i].second(call);
            ASSERT_EQ(call.run(), errors[i].first) << call.name << ": errors " << i << " and " << j;
            ASSERT_TRUE(intact()) << call.name << ": errors " << i << " and " << j;
        }
}

// One call of HistogramRange, HistogramEven or a LUT.
template <class T> struct TableCall {
    using V = std::conditional_t<is_float<T>, Zet32f, Zet32s>;
    enum Form { range, even, lut, lut_in_place };

    Form form;
    TableLayout layout;
    std::string name;
    const T* src = nullptr;
    T* dst = nullptr;
    int srcStep = 0, dstStep = 0;
    ZetiSize roi = {};
    Zet32s* bins[4] = {};
    const V *levels[4] = {}, *values[4] = {};
    int counts[4] = {};
    Zet32s lower[4] = {}, upper[4] = {};
    bool noBins = false, noLevels = false, noValues = false, noCounts = false, noLower = false, noUpper = false;

    TableCall(Form f, const std::string& operation, TableLayout l)
        : form(f), layout(l), name("zeti" + operation + "_" + token<T>() + "_" + l.name + (f == lut_in_place ? "IR" : "R")) {}

    ZetStatus run() const {
        if (layout.one()) return with(*bins, *levels, const_cast<V*>(*levels), *values, *counts, *lower, *upper);
        V* const written[4] = {const_cast<V*>(levels[0]), const_cast<V*>(levels[1]), const_cast<V*>(levels[2]), const_cast<V*>(levels[3])};
        const auto array = [](auto* p, bool missing) { return missing ? nullptr : p; };
        return with(array(bins, noBins), array(levels, noLevels), array(written, noLevels), array(values, noValues),
                    array(counts, noCounts), array(lower, noLower), array(upper, noUpper));
    }

    // In the order of the checks. Channel by channel on several channels, before size and steps.
    Spoilers<TableCall> errors() const {
        Spoilers<TableCall> e = {{zetStsNullPtrErr, [](TableCall& c) { c.src = nullptr, c.dst = nullptr; }}};
        const ZetStatus few = form == range || form == even ? zetStsHistoNofLevelsErr : zetStsLUTNofLevelsErr;
        const bool histogram = form == range || form == even;
        const auto channel = [&](int k) {
            if (histogram) e.push_back({zetStsNullPtrErr, [=](TableCall& c) { c.bins[k] = nullptr; }});
            else e.push_back({zetStsNullPtrErr, [=](TableCall& c) { c.values[k] = nullptr; }});
            e.push_back({zetStsNullPtrErr, [=](TableCall& c) { c.levels[k] = nullptr; }});
        };
        const auto too_few = [&](int k) {
            for (const int bad : {1, 0, INT_MIN}) e.push_back({few, [=](TableCall& c) { c.counts[k] = bad; }});
        };
        const auto size = [&] {
            for (const int bad : {0, -1, INT_MIN}) {
                e.push_back({zetStsSizeErr, [=](TableCall& c) { c.roi.width = bad; }});
                e.push_back({zetStsSizeErr, [=](TableCall& c) { c.roi.height = bad; }});
            }
            for (const int bad : {0, -1, INT_MIN})
                e.push_back({zetStsStepErr, [=](TableCall& c) { c.dstStep = c.form == lut_in_place ? bad : c.dstStep, c.srcStep = bad; }});
            if (form == lut) e.push_back({zetStsStepErr, [=](TableCall& c) { c.dstStep = 0; }});
        };
        if (form == lut) e.push_back({zetStsNullPtrErr, [](TableCall& c) { c.dst = nullptr; }});
        if (layout.one()) return channel(0), size(), too_few(0), e;
        e.push_back({zetStsNullPtrErr, [](TableCall& c) { c.noLevels = true; }});
        e.push_back({zetStsNullPtrErr, [](TableCall& c) { c.noCounts = true; }});
        e.push_back({zetStsNullPtrErr, [](TableCall& c) { (c.form == range || c.form == even ? c.noBins : c.noValues) = true; }});
        if (form == even)
            e.push_back({zetStsNullPtrErr, [](TableCall& c) { c.noLower = true; }}),
                e.push_back({zetStsNullPtrErr, [](TableCall& c) { c.noUpper = true; }});
        for (int k = 0; k < layout.colours; ++k) channel(k), too_few(k);
        return size(), e;
    }

private:
    template <class Bins, class Levels, class Written, class Values, class Count, class Bound>
    ZetStatus with(Bins b, Levels l, Written w, Values v, Count n, Bound low, Bound high) const {
        if (form == range) return member<ZetStatus(const T*, int, ZetiSize, Bins, Levels, Count)>(name)(src, srcStep, roi, b, l, n);
        if (form == lut_in_place) return member<ZetStatus(T*, int, ZetiSize, Values, Levels, Count)>(name)(dst, dstStep, roi, v, l, n);
        if (form == lut)
            return member<ZetStatus(const T*, int, T*, int, ZetiSize, Values, Levels, Count)>(name)(src, srcStep, dst, dstStep, roi, v, l,
                                                                                                    n);
        if constexpr (!is_float<T>)
            return member<ZetStatus(const T*, int, ZetiSize, Bins, Written, Count, Bound, Bound)>(name)(src, srcStep, roi, b, w, n, low,
                                                                                                        high);
        return zetStsNoErr;
    }
};

// Refuses each allocation of a call in turn. Gives how many there were; `unwritten` says whether a refused call has kept away from the result.
template <class Call, class Unwritten> int refuse_each(const Call& call, Unwritten unwritten) {
    for (int n = 1;; ++n) {
        const int live = standin_live_blocks(), asked = standin_allocations();
        standin_refuse_allocation(n);
        const ZetStatus status = call.run();
        standin_refuse_allocation(0);
        EXPECT_EQ(standin_live_blocks(), live) << call.name;
        if (standin_allocations() - asked < n) {
            EXPECT_EQ(status, zetStsNoErr) << call.name;
            return n - 1;
        }
        EXPECT_EQ(status, zetStsMemAllocErr) << call.name;
        EXPECT_TRUE(unwritten()) << call.name;
    }
}

} // namespace test
