// SPDX-License-Identifier: Apache-2.0
#include "bench/rows.h"

namespace bench {
namespace {

constexpr struct {
    const char* name;
    int channels;
} layouts[] = {{"_C1R", 1}, {"_C3R", 3}, {"_C4R", 4}, {"_AC4R", 4}};

template <class T> void type(const std::string& type) {
    const Results<double> sums = {};
    const Results<T> values = {};
    const Results<Zet32s> places = {};
    for (const auto& [layout, n] : layouts) {
        const auto hinted = [&](const std::string& name, auto... arguments) { // floats have a path for each hint
            if constexpr (std::is_floating_point_v<T>) {
                row(name, "", arguments..., zetAlgHintFast);
                row(name, "hint=accurate", arguments..., zetAlgHintAccurate);
            } else row(name, "", arguments...);
        };
        const std::string tail = "_" + type + layout;
        hinted("Sum" + tail, source<T>(n), size, sums);
        hinted("Mean" + tail, source<T>(n), size, sums);
        row("Norm_Inf" + tail, "", source<T>(n), size, sums);
        hinted("Norm_L1" + tail, source<T>(n), size, sums);
        hinted("Norm_L2" + tail, source<T>(n), size, sums);
        row("NormDiff_Inf" + tail, "", source<T>(n), source<T>(n), size, sums);
        hinted("NormDiff_L1" + tail, source<T>(n), source<T>(n), size, sums);
        hinted("NormDiff_L2" + tail, source<T>(n), source<T>(n), size, sums);
        row("NormRel_Inf" + tail, "", source<T>(n), source<T>(n), size, sums);
        hinted("NormRel_L2" + tail, source<T>(n), source<T>(n), size, sums);
        row("Max" + tail, "", source<T>(n), size, values);
        row("Min" + tail, "", source<T>(n), size, values);
        row("MinMax" + tail, "", source<T>(n), size, values, values);
        row("MaxIndx" + tail, "", source<T>(n), size, values, places, places);
    }
    row("MaxEvery_" + type + "_C1IR", "", source<T>(1), both<T>(1), size);
    row("MaxEvery_" + type + "_AC4IR", "", source<T>(4), both<T>(4), size);
}

const bool listed = (type<Zet8u>("8u"), type<Zet16u>("16u"), type<Zet16s>("16s"), type<Zet32f>("32f"), true);

} // namespace
} // namespace bench
