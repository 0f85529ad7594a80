// SPDX-License-Identifier: Apache-2.0
// Histograms, tables by level, palettes and moments.
#include "bench/rows.h"

namespace bench {
namespace {

// 256 levels over the samples 0 to 255 in steps of 1, and values beside them; of every channel the same.
template <class V> struct Table {
    static constexpr int most = 257;
    V levels[most], values[most];
    Zet32s bins[most] = {};
    Table() {
        for (int k = 0; k < most; ++k) levels[k] = static_cast<V>(k), values[k] = static_cast<V>(256 - k);
    }
};

template <class V> struct Tables {
    Table<V> table;
    const V *levels[4], *values[4];
    Zet32s* bins[4];
    int counts[4];
    explicit Tables(int count) {
        for (int c = 0; c < 4; ++c) levels[c] = table.levels, values[c] = table.values, bins[c] = table.bins, counts[c] = count;
    }
};

template <class T> void levels(const std::string& type, int count) {
    using V = std::conditional_t<std::is_same_v<T, Zet32f>, Zet32f, Zet32s>;
    auto* const t = new Tables<V>(count); // for the whole run
    const V* const* const const_levels = t->levels;
    const V* const* const const_values = t->values;
    const auto const_counts = static_cast<const int*>(t->counts);
    const std::string detail = "levels=" + std::to_string(count);
    row("HistogramRange_" + type + "_C1R", detail, source<T>(1), size, *t->bins, *const_levels, count);
    row("HistogramRange_" + type + "_C3R", detail, source<T>(3), size, static_cast<Zet32s* const*>(t->bins), const_levels, const_counts);
    row("HistogramRange_" + type + "_AC4R", detail, source<T>(4), size, static_cast<Zet32s* const*>(t->bins), const_levels, const_counts);
    for (const std::string form : {"LUT_", "LUT_Linear_", "LUT_Cubic_"}) {
        row(form + type + "_C1R", detail, source<T>(1), destination<T>(1), size, *const_values, *const_levels, count);
        if (form == "LUT_") {
            row(form + type + "_C3R", detail, source<T>(3), destination<T>(3), size, const_values, const_levels, const_counts);
            row(form + type + "_AC4R", detail, source<T>(4), destination<T>(4), size, const_values, const_levels, const_counts);
        }
    }
}

template <class S, class D> void palette(const std::string& types, int bits) {
    const D* const table = new D[size_t{1} << bits]();
    row("LUTPalette_" + types + "_C1R", "bits=" + std::to_string(bits), source<S>(1), destination<D>(1), size, table, bits);
}

// A record with the sums of some image.
template <class State> State* state(ZetStatus (*init)(State**, ZetHintAlgorithm)) {
    State* made = nullptr;
    return init(&made, zetAlgHintNone) == zetStsNoErr ? made : nullptr;
}

const bool listed = [] {
    levels<Zet8u>("8u", 257);
    levels<Zet16s>("16s", 17);
    levels<Zet16u>("16u", 257);
    levels<Zet32f>("32f", 17);
    levels<Zet32f>("32f", 257);
    row("CountInRange_8u_C1R", "", source<Zet8u>(1), size, new Zet32s[3], Zet8u{10}, Zet8u{40});
    row("CountInRange_8u_C3R", "", source<Zet8u>(3), size, new Zet32s[3], static_cast<const Zet8u*>(new Zet8u[3]{1, 2, 3}),
        static_cast<const Zet8u*>(new Zet8u[3]{9, 9, 99}));
    row("CountInRange_32f_C1R", "", source<Zet32f>(1), size, new Zet32s[3], 0.5f, 1.5f);
    palette<Zet8u, Zet8u>("8u", 8);
    palette<Zet16u, Zet16u>("16u", 12);
    palette<Zet8u, Zet32u>("8u32u", 8);
    row("LUTPalette_8u24u_C1R", "bits=8", source<Zet8u>(1), destination<Zet8u>(3), size, static_cast<const Zet32u*>(new Zet32u[256]()), 8);
    ZetiMomentState_64f* const floats = state(zetiMomentInitAlloc_64f);
    ZetiMomentState_64s* const integers = state(zetiMomentInitAlloc_64s);
    for (const int channels : {1, 3}) {
        const std::string layout = "_C" + std::to_string(channels) + "R";
        row("Moments64f_8u" + layout, "", source<Zet8u>(channels), size, floats);
        row("Moments64f_16u" + layout, "", source<Zet16u>(channels), size, floats);
        row("Moments64f_32f" + layout, "", source<Zet32f>(channels), size, floats);
        row("Moments64s_8u" + layout, "", source<Zet8u>(channels), size, integers);
        row("Moments64s_16u" + layout, "", source<Zet16u>(channels), size, integers);
    }
    return true;
}();

} // namespace
} // namespace bench
