// SPDX-License-Identifier: Apache-2.0
// What Ln gives on integers, ln x * 2^-s rounded to nearest, made from that rule at compile time. Results of few values are stairs
// whose step to k lies at e^((k - 1/2) 2^s); on 8u the negative scales have tables, and Tab_8u, Tab_1, Tab_2 are those of 0, -1, -2.
#pragma once

#include "signal/tables_exp.h"

namespace zeti {

inline constexpr int ln_bound = -9; // on 8u; this scale or a lower one saturates from 2 on
inline constexpr int ln_zero = 5;   // ln 65535 * 2^-5 < 1/2

// 16s: -32768 up to 0.
template <class T> constexpr Stairs<T> ln_stairs(int s) {
    Stairs<T> stairs;
    stairs.base = std::is_signed_v<T> ? min_of<T> : T{0};
    if (std::is_signed_v<T>) stairs.add(1, -min_of<T>);
    for (double k = 1;; ++k) {
        const double from = scaled_exp((k - 0.5) * (1 << s), 0);
        if (from > max_of<T>) return stairs;
        stairs.add(static_cast<int>(from) + 1, 1); // never at an integer
    }
}

template <class T>
inline constexpr auto ln_stairs_from_0 = [] {
    std::array<Stairs<T>, ln_zero + 1> stairs;
    for (int s = 0; s <= ln_zero; ++s) stairs[s] = ln_stairs<T>(s);
    return stairs;
}();

struct LnTable {
    Zet8u at[256];
};

// The tables of scales -1 to ln_bound, by -1 - s. ln x is ln (x - 1) + 2 atanh(1 / (2 x - 1)), whose series converges at once.
inline constexpr auto ln_tables = [] {
    std::array<LnTable, -ln_bound> tables{};
    double ln = 0;
    for (int x = 2; x < 256; ++x) {
        const double z = 1.0 / (2 * x - 1);
        double power = z;
        for (int k = 1; k < 40; k += 2, power *= z * z) ln += 2 * power / k;
        double scaled = ln;
        for (auto& table : tables) {
            scaled *= 2;
            table.at[x] = static_cast<Zet8u>(scaled + 0.5 < 255 ? scaled + 0.5 : 255);
        }
    }
    return tables;
}();

} // namespace zeti
