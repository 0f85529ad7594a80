// SPDX-License-Identifier: Apache-2.0
// What the tests of histograms and of tables by level share: calls with arrays per channel, and their checks in order.
#pragma once

#include "tests/support/faults.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/member.h"
#include "tests/support/zetcore_standin.h"

namespace test {

// An argument that is an entry on C1, else the array.
template <class E> struct PerChannel {
    E entry[4] = {};
    E* array = entry;
    PerChannel() = default;
    PerChannel(const PerChannel&) = delete;
};

// One call of HistogramRange, HistogramEven or a LUT.
template <class T> struct TableCall {
    using V = std::conditional_t<is_float<T>, Zet32f, Zet32s>;
    enum Form { range, even, lut, lut_in_place };

    const Form form;
    const PixelLayout layout;
    const std::string name;
    const T* src = nullptr;
    T* dst = nullptr;
    int srcStep = 0, dstStep = 0;
    ZetiSize roi = {};
    PerChannel<Zet32s*> bins;
    PerChannel<V*> written; // levels that a call writes
    PerChannel<const V*> levels, values;
    PerChannel<int> counts, lower, upper;

    TableCall(Form f, const std::string& operation, const PixelLayout& l)
        : form(f), layout(l), name("zeti" + operation + "_" + token<T>() + "_" + l.name + (f == lut_in_place ? "IR" : "R")) {}

    ZetStatus run() const {
        const auto call = [&](auto... arguments) { return call_member(name, arguments...); };
        const auto with = [&](auto get) {
            if (form == range) return call(src, srcStep, roi, get(bins), get(levels), get(counts));
            if (form == even) return call(src, srcStep, roi, get(bins), get(written), get(counts), get(lower), get(upper));
            if (form == lut) return call(src, srcStep, dst, dstStep, roi, get(values), get(levels), get(counts));
            return call(dst, dstStep, roi, get(values), get(levels), get(counts));
        };
        if (layout.channels == 1) return with([]<class E>(const PerChannel<E>& a) { return a.entry[0]; });
        return with([]<class E>(const PerChannel<E>& a) { return static_cast<const E*>(a.array); });
    }

    // Each channel in turn, before size and steps; on C1 the number of levels comes last.
    void expect_order(const std::function<bool()>& intact) {
        const bool histogram = form == range || form == even;
        Faults faults;
        const auto pointers = [&](auto... arguments) { (faults.null(*arguments), ...); };
        const auto channel = [&](int c) {
            histogram ? pointers(&bins.entry[c]) : pointers(&values.entry[c]);
            form == even ? pointers(&written.entry[c]) : pointers(&levels.entry[c]);
        };
        const auto number = [&](int c) {
            faults.add(histogram ? zetStsHistoNofLevelsErr : zetStsLUTNofLevelsErr, counts.entry[c], {1, 0, INT_MIN});
        };
        const auto size_and_steps = [&] {
            faults.size(roi);
            if (form != lut_in_place) faults.step(srcStep);
            if (!histogram) faults.step(dstStep);
        };
        if (form != lut_in_place) pointers(&src);
        if (!histogram) pointers(&dst);
        if (layout.channels == 1) {
            channel(0), size_and_steps(), number(0);
        } else {
            pointers(&counts.array), histogram ? pointers(&bins.array) : pointers(&values.array);
            form == even ? pointers(&written.array, &lower.array, &upper.array) : pointers(&levels.array);
            for (int c = 0; c < layout.colours; ++c) channel(c), number(c);
            size_and_steps();
        }
        faults.expect_order(
            name, [&] { return run(); }, intact);
    }

    // Refuses each allocation in turn. Gives how many there were; `unwritten` says whether a refused call has kept away from the result.
    int refuse_each(const std::function<bool()>& unwritten) const {
        for (int n = 1;; ++n) {
            const int live = standin_live_blocks(), asked = standin_allocations();
            standin_refuse_allocation(n);
            const ZetStatus status = run();
            standin_refuse_allocation(0);
            const bool refused = standin_allocations() - asked >= n;
            EXPECT_EQ(standin_live_blocks(), live) << name;
            EXPECT_EQ(status, refused ? zetStsMemAllocErr : zetStsNoErr) << name;
            if (!refused) return n - 1;
            EXPECT_TRUE(unwritten()) << name;
        }
    }
};

} // namespace test
