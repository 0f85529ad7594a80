// SPDX-License-Identifier: Apache-2.0
// Operations of one operand, products of full scale, rounded quotients.
#include "bench/rows.h"

namespace bench {
namespace {

using Scales = std::initializer_list<int>;

template <class T> void unary(const std::string& name, int channels, Scales scales = {}) {
    if (scales.size() == 0) row(name + "R", "", source<T>(channels), destination<T>(channels), size);
    for (const int s : scales) row(name + "RSfs", "scale=" + std::to_string(s), source<T>(channels), destination<T>(channels), size, s);
}

template <class T> void products(const std::string& type) {
    const Constants<T> constants = {{7, 100, 200, 255}};
    for (const int channels : {1, 4}) {
        const std::string layout = type + (channels == 1 ? "_C1R" : "_AC4R");
        row("MulScale_" + layout, "", source<T>(channels), source<T>(channels), destination<T>(channels), size);
        if (channels > 1) row("MulCScale_" + layout, "", source<T>(channels), constants, destination<T>(channels), size);
    }
    row("MulCScale_" + type + "_C1R", "", source<T>(1), T{100}, destination<T>(1), size);
    row("MulCScale_" + type + "_C3R", "", source<T>(3), constants, destination<T>(3), size);
}

template <class T> void rounded(const std::string& type) {
    for (const ZetRoundMode mode : {zetRndZero, zetRndNear, zetRndFinancial})
        row("Div_Round_" + type + "_C1RSfs", "mode=" + std::to_string(mode), source<T>(1), source<T>(1), destination<T>(1), size, mode, 0);
}

const bool listed = [] {
    unary<Zet16s>("Abs_16s_C1", 1), unary<Zet16s>("Abs_16s_AC4", 4), unary<Zet32f>("Abs_32f_C1", 1);
    unary<Zet8u>("Sqr_8u_C1", 1, {0, 1, 8, -1}), unary<Zet16u>("Sqr_16u_C1", 1, {0, 8, 20, -1}),
        unary<Zet16s>("Sqr_16s_C1", 1, {0, 8, 20, -1});
    unary<Zet32f>("Sqr_32f_C1", 1);
    unary<Zet8u>("Sqrt_8u_C1", 1, {0, 1, 3, -4}), unary<Zet16u>("Sqrt_16u_C1", 1, {0, -8}), unary<Zet16s>("Sqrt_16s_C1", 1, {0, -7});
    unary<Zet32f>("Sqrt_32f_C1", 1), unary<Zet32f>("Sqrt_32f_AC4", 4);
    products<Zet8u>("8u"), products<Zet16u>("16u");
    rounded<Zet8u>("8u"), rounded<Zet16u>("16u"), rounded<Zet16s>("16s");
    return true;
}();

} // namespace
} // namespace bench
