// SPDX-License-Identifier: Apache-2.0
// What the tests of histograms and of tables by level share: calls with arrays per channel, and their checks in order.
#pragma once

#include "tests/support/faults.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/zetcore_standin.h"

namespace test {

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
    Zet32s* bins[4] = {}; // of each channel; on C1 the first is an argument by itself
    V* written[4] = {};   // levels that a call writes
    const V *levels[4] = {}, *values[4] = {};
    int counts[4] = {}, lower[4] = {}, upper[4] = {};

    TableCall(Form f, const std::string& operation, const PixelLayout& l)
        : form(f), layout(l), name("zeti" + operation + "_" + token<T>() + "_" + l.name + (f == lut_in_place ? "IR" : "R")) {}

    void take(const Image<T>& from, const Image<T>& to) {
        src = from.data(), srcStep = from.step, dst = to.data(), dstStep = to.step, roi = {from.width, from.height};
    }
    ZetStatus run() const {
        const auto call = [&](auto... arguments) { return call_member(name, arguments...); };
        const auto with = [&](auto get) {
            if (form == range) return call(src, srcStep, roi, get(bins), get(levels), get(counts));
            if (form == even) return call(src, srcStep, roi, get(bins), get(written), get(counts), get(lower), get(upper));
            if (form == lut) return call(src, srcStep, dst, dstStep, roi, get(values), get(levels), get(counts));
            return call(dst, dstStep, roi, get(values), get(levels), get(counts));
        };
        if (layout.channels == 1) return with([](const auto* array) { return *array; });
        return with([](const auto* array) { return array; });
    }

    // Each channel in turn, before size and steps; on C1 the number of levels comes last.
    void expect_order(const std::function<bool()>& intact) {
        const bool histogram = form == range || form == even, alone = layout.channels == 1;
        const ZetStatus few = histogram ? zetStsHistoNofLevelsErr : zetStsLUTNofLevelsErr;
        const auto list = [&](Faults& faults, const Arguments& call) {
            faults.null(call, false);
            for (int c = 0; !alone && c < layout.colours; ++c) {
                faults.null(histogram ? argument(bins[c]) : argument(values[c]))
                    .null(form == even ? argument(written[c]) : argument(levels[c]));
                faults.add(few, counts[c], {1, 0, INT_MIN});
            }
            faults.size(call).step(call);
            if (alone) faults.add(few, call.end()[form == even ? -3 : -1].template as<int>(), {1, 0, INT_MIN});
        };
        check_order([&] { run(); }, list, intact);
    }

    // Refuses each allocation in turn. Gives how many there were; `unwritten` says whether a refused call has kept away from the result.
    int refuse_each(const std::function<bool()>& unwritten) const {
        for (int n = 1;; ++n) {
            const int live = standin.live_blocks, asked = standin.allocations;
            standin.refused_allocation = n;
            const ZetStatus status = run();
            standin.refused_allocation = 0;
            const bool refused = standin.allocations - asked >= n;
            EXPECT_EQ(standin.live_blocks, live) << name;
            EXPECT_EQ(status, refused ? zetStsMemAllocErr : zetStsNoErr) << name;
            if (!refused) return n - 1;
            EXPECT_TRUE(unwritten()) << name;
        }
    }
};

} // namespace test
