// SPDX-License-Identifier: Apache-2.0
// Logic, shifts, thresholds and comparisons.
#include "bench/rows.h"

namespace bench {
namespace {

using Operator = ZetCmpOp;

template <class T> constexpr Constants<T> alike = {{40, 40, 40, 40}};
template <class T> constexpr Constants<T> different = {{40, 41, 42, 43}};
constexpr Constants<Zet32u> counts = {{1, 2, 3, 4}};

template <class T> void logic(const std::string& type) {
    for (const std::string operation : {"And", "Or", "Xor"}) {
        row(operation + "_" + type + "_C1R", "", source<T>(1), source<T>(1), destination<T>(1), size);
        row(operation + "C_" + type + "_C1R", "", source<T>(1), T{85}, destination<T>(1), size);
        row(operation + "C_" + type + "_C1IR", "", T{85}, both<T>(1), size);
    }
    row("And_" + type + "_AC4R", "", source<T>(4), source<T>(4), destination<T>(4), size);
    row("AndC_" + type + "_C3R", "", source<T>(3), different<T>, destination<T>(3), size);
    row("AndC_" + type + "_AC4R", "", source<T>(4), different<T>, destination<T>(4), size);
}

template <class T> void shift(const std::string& operation, const std::string& type) {
    const std::string name = operation + "_" + type + "_";
    for (const Zet32u n : {0, 3}) row(name + "C1R", "count=" + std::to_string(n), source<T>(1), n, destination<T>(1), size);
    row(name + "C3R", "", source<T>(3), counts, destination<T>(3), size);
    row(name + "AC4R", "", source<T>(4), counts, destination<T>(4), size);
}

template <class T> void threshold(const std::string& type) {
    const T low{20}, high{40};
    const auto& c = different<T>;
    row("Threshold_" + type + "_C1R", "less", source<T>(1), destination<T>(1), size, low, Operator::zetCmpLess);
    row("Threshold_GT_" + type + "_C1IR", "", both<T>(1), size, low);
    row("Threshold_GT_" + type + "_C3R", "", source<T>(3), destination<T>(3), size, c);
    row("Threshold_LT_" + type + "_AC4R", "", source<T>(4), destination<T>(4), size, c);
    row("Threshold_LTVal_" + type + "_C1R", "", source<T>(1), destination<T>(1), size, low, high);
    row("Threshold_LTVal_" + type + "_C3R", "", source<T>(3), destination<T>(3), size, c, c);
    row("Threshold_LTValGTVal_" + type + "_C1R", "", source<T>(1), destination<T>(1), size, low, low, high, high);
    row("Threshold_LTValGTVal_" + type + "_C3R", "", source<T>(3), destination<T>(3), size, c, c, c, c);
    row("Threshold_LTValGTVal_" + type + "_AC4R", "", source<T>(4), destination<T>(4), size, c, c, c, c);
}

template <class T> void compare(const std::string& type) {
    for (const int channels : {1, 3, 4})
        for (const Operator op : {Operator::zetCmpLess, Operator::zetCmpLessEq}) {
            const std::string name = "_" + type + (channels == 4 ? "_A" : "_") + "C" + std::to_string(channels) + "R",
                              detail = op == Operator::zetCmpLess ? "less" : "less or equal";
            row("Compare" + name, detail, source<T>(channels), source<T>(channels), destination<Zet8u>(1), size, op);
            if (channels == 1) row("CompareC" + name, detail, source<T>(1), T{30}, destination<Zet8u>(1), size, op);
            else row("CompareC" + name, detail, source<T>(channels), alike<T>, destination<Zet8u>(1), size, op);
        }
}

const bool listed = [] {
    logic<Zet8u>("8u"), logic<Zet16u>("16u"), logic<Zet32s>("32s");
    row("Not_8u_C1R", "", source<Zet8u>(1), destination<Zet8u>(1), size);
    row("Complement_32s_C1IR", "", both<Zet32s>(1), size);
    shift<Zet8u>("LShiftC", "8u"), shift<Zet16u>("LShiftC", "16u"), shift<Zet32s>("LShiftC", "32s");
    shift<Zet8u>("RShiftC", "8u"), shift<Zet8s>("RShiftC", "8s"), shift<Zet16u>("RShiftC", "16u"), shift<Zet16s>("RShiftC", "16s"),
        shift<Zet32s>("RShiftC", "32s");
    threshold<Zet8u>("8u"), threshold<Zet16u>("16u"), threshold<Zet16s>("16s"), threshold<Zet32f>("32f");
    compare<Zet8u>("8u"), compare<Zet16u>("16u"), compare<Zet16s>("16s"), compare<Zet32f>("32f");
    row("CompareEqualEps_32f_C1R", "", source<Zet32f>(1), source<Zet32f>(1), destination<Zet8u>(1), size, 0.5f);
    row("CompareEqualEpsC_32f_C3R", "", source<Zet32f>(3), alike<Zet32f>, destination<Zet8u>(1), size, 0.5f);
    return true;
}();

} // namespace
} // namespace bench
