// SPDX-License-Identifier: Apache-2.0
// Mirror, Transpose, SwapChannels and the copies between layouts that bench/move.cpp does not have.
#include "bench/rows.h"

namespace bench {
namespace {

template <class T> void type(const std::string& type) {
    const std::string t = "_" + type + "_";
    for (const int flip : {0, 1, 2})
        for (const int channels : {1, 3, 4}) {
            const std::string name = "Mirror" + t + "C" + std::to_string(channels), detail = "flip=" + std::to_string(flip);
            row(name + "R", detail, source<T>(channels), destination<T>(channels), size, flip);
            row(name + "IR", detail, both<T>(channels), size, flip);
        }
    for (const int channels : {1, 3, 4}) {
        row("Transpose" + t + "C" + std::to_string(channels) + "R", "", source<T>(channels), destination<T>(channels), size);
        row("Transpose" + t + "C" + std::to_string(channels) + "IR", "", both<T>(channels), size);
    }
    static const int order[4] = {2, 1, 0, 3};
    const int* const given = order;
    row("SwapChannels" + t + "C3R", "", source<T>(3), destination<T>(3), size, given);
    row("SwapChannels" + t + "AC4R", "", source<T>(4), destination<T>(4), size, given);
    row("SwapChannels" + t + "C3C4R", "", source<T>(3), destination<T>(4), size, given, T{9});
    row("SwapChannels" + t + "C4C3R", "", source<T>(4), destination<T>(3), size, given);
    row("Copy" + t + "C4P4R", "", source<T>(4), Planes<T, 4>(), size);
    row("Copy" + t + "P4C4R", "", Planes<const T, 4>(), destination<T>(4), size);
    row("Copy" + t + "AC4C3R", "", source<T>(4), destination<T>(3), size);
    row("Copy" + t + "C4C1R", "", source<T>(4), destination<T>(1), size);
}

const bool listed = [] {
    type<Zet8u>("8u");
    type<Zet16s>("16s");
    type<Zet32f>("32f");
    static const int order[4] = {2, 1, 0, 3};
    const int* const given = order;
    row("SwapChannels_8u_C3IR", "", both<Zet8u>(3), size, given);
    row("SwapChannels_8u_C4IR", "", both<Zet8u>(4), size, given);
    return true;
}();

} // namespace
} // namespace bench
