// SPDX-License-Identifier: Apache-2.0
#include "bench/rows.h"

namespace bench {
namespace {

using Scales = std::initializer_list<int>;

// Floats take 1, so that repeated calls in place stay in range.
template <class T> constexpr T constant() {
    if constexpr (requires { T::re; }) return {3, 1};
    else return std::is_floating_point_v<T> ? T{1} : T{3};
}

// One operation on one type and layout, at every scale factor given; floats have none.
template <class T> void scaled(const std::string& name, const std::string& suffix, Scales scales, auto... arguments) {
    if constexpr (std::is_floating_point_v<T>) row(name + suffix, "", arguments..., size);
    else
        for (const int s : scales) row(name + suffix + "Sfs", "scale=" + std::to_string(s), arguments..., size, s);
}

template <class T>
void rows(const std::string& operation, const std::string& type, int channels, Scales scales, Scales scalesInPlace = {}) {
    const std::string layout = channels == 1 ? "C1" : channels == 3 ? "C3" : "AC4";
    const std::string name = operation + "_" + type + "_" + layout;
    const bool inPlace = scalesInPlace.size() > 0;
    const auto with_constant = [&](auto value) {
        scaled<T>(name, "R", scales, source<T>(channels), value, destination<T>(channels));
        if (inPlace) scaled<T>(name, "IR", scalesInPlace, value, both<T>(channels));
    };
    if (operation.back() != 'C') {
        scaled<T>(name, "R", scales, source<T>(channels), source<T>(channels), destination<T>(channels));
        if (inPlace) scaled<T>(name, "IR", scalesInPlace, source<T>(channels), both<T>(channels));
    } else if (channels == 1) {
        with_constant(constant<T>());
    } else {
        with_constant(Constants<T>{{constant<T>(), constant<T>(), constant<T>(), constant<T>()}});
    }
}

const bool listed = [] {
    for (const char* operation : {"Add", "Sub", "Mul", "Div", "AddC", "SubC", "MulC", "DivC"}) {
        rows<Zet8u>(operation, "8u", 1, {0, 1, 3, -2}, {0, 1});
        rows<Zet8u>(operation, "8u", 3, {0});
        rows<Zet8u>(operation, "8u", 4, {0, 3});
        rows<Zet16s>(operation, "16s", 1, {0, 1, 3, -2}, {0});
        rows<Zet16u>(operation, "16u", 1, {0, 3});
        rows<Zet16sc>(operation, "16sc", 1, {0, 3});
        rows<Zet32f>(operation, "32f", 1, {}, {0});
        rows<Zet32f>(operation, "32f", 3, {});
    }
    return true;
}();

} // namespace
} // namespace bench
