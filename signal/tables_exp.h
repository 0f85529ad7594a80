// SPDX-License-Identifier: Apache-2.0
// What Exp gives on integers, e^x * 2^-s + 0.5 truncated and saturated, made from that rule: E_Tab_M6 to E_Tab_P8 and Exp_Tab_M15
// to Exp_Tab_P16 at compile time, other scales by the call.
#pragma once

#include <array>
#include <cstdint>

#include "core/float_state.h"
#include "signal/stairs.h"

namespace zeti {

// Their sum is ln 2 to 86 bits, and n * ln2_high is exact for |n| < 2^21 (reduction of Cody and Waite 1980).
inline constexpr double ln2_high = 0x1.62E42FEEp-1, ln2_low = 0x1.A39EF35793C76p-33;
inline constexpr double log2_e = 0x1.71547652B82FEp+0;

// e^x * 2^-s for |x| <= 65536: a few units of the last place off, exact at x = 0, the one place where a result is a tie.
// 2^-100 and 2^100 stand for what lies beyond them.
constexpr double scaled_exp(double x, int64_t s) {
    const double turns = x * log2_e;
    const int n = static_cast<int>(turns < 0 ? turns - 0.5 : turns + 0.5);
    const double r = (x - n * ln2_high) - n * ln2_low; // |r| <= 0.35
    double y = 1;
    for (int k = 16; k > 0; --k) y = 1 + y * r / k;
    const int64_t power = n - s < -100 ? -100 : n - s > 100 ? 100 : n - s;
    for (int64_t i = 0; i < power; ++i) y *= 2;
    for (int64_t i = 0; i > power; --i) y /= 2;
    return y;
}

template <class T>
[[gnu::noinline]] constexpr Stairs<T> exp_stairs(int64_t s) { // not to be mixed with what its caller does to the float state
    const auto result = [=](int x) {
        const double v = scaled_exp(x, s) + 0.5;
        return v < max_of<T> ? static_cast<int>(v) : int{max_of<T>};
    };
    // No step before it. (From an int: of 64 bits the 32-bit machine would convert on its old float unit.)
    const double zeros_to = (static_cast<double>(static_cast<int>(s)) - 1) * ln2_high - 2;
    int x = zeros_to < min_of<T> ? int{min_of<T>} : zeros_to > max_of<T> ? int{max_of<T>} : static_cast<int>(zeros_to);
    Stairs<T> stairs;
    int reached = result(x);
    stairs.base = static_cast<T>(reached);
    while (reached < max_of<T> && x < max_of<T>) {
        const int next = result(++x);
        if (next > reached) stairs.add(x, next - reached);
        reached = next;
    }
    return stairs;
}

struct TableScales {
    int from, to;
};
template <class T> inline constexpr TableScales exp_tables_range = {-15, 16};
template <> inline constexpr TableScales exp_tables_range<Zet8u> = {-8, 8};

template <class T>
inline constexpr auto exp_tables = [] {
    constexpr auto range = exp_tables_range<T>;
    std::array<Stairs<T>, range.to - range.from + 1> tables;
    for (int s = range.from; s <= range.to; ++s) tables[s - range.from] = exp_stairs<T>(s);
    return tables;
}();

template <class T> Stairs<T> exp_stairs_at(int s) {
    constexpr auto range = exp_tables_range<T>;
    if (s >= range.from && s <= range.to) return exp_tables<T>[s - range.from];
    [[maybe_unused]] const FloatState held; // no trace of inexact steps in the caller's state
    return exp_stairs<T>(s);
}

} // namespace zeti
