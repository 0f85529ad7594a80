// SPDX-License-Identifier: Apache-2.0
#include "bench/rows.h"

namespace bench {
namespace {

template <class T> void type(const std::string& type) {
    const Constants<T> constants = {{1, 2, 3, 4}};
    const auto copy = [&](const std::string& layout, int from, int to) {
        row("Copy_" + type + "_" + layout, "", source<T>(from), destination<T>(to), size);
    };
    copy("C1R", 1, 1);
    copy("C3R", 3, 3);
    copy("AC4R", 4, 4);
    copy("C3CR", 3, 3);
    copy("C3C1R", 3, 1);
    copy("C1C3R", 1, 3);
    copy("C3AC4R", 3, 4);
    row("Copy_" + type + "_C3P3R", "", source<T>(3), Planes<T, 3>(), size);
    row("Copy_" + type + "_P3C3R", "", Planes<const T, 3>(), destination<T>(3), size);
    row("Copy_" + type + "_C1MR", "mask=full", source<T>(1), destination<T>(1), size, Mask{0});
    row("Copy_" + type + "_C1MR", "mask=runs", source<T>(1), destination<T>(1), size, Mask{24});
    row("Copy_" + type + "_C3MR", "mask=runs", source<T>(3), destination<T>(3), size, Mask{24});
    row("Set_" + type + "_C1R", "", T{7}, destination<T>(1), size);
    row("Set_" + type + "_C3R", "", constants, destination<T>(3), size);
    row("Set_" + type + "_AC4R", "", constants, destination<T>(4), size);
    row("Set_" + type + "_C1MR", "mask=runs", T{7}, destination<T>(1), size, Mask{24});
}

const bool listed = [] {
    type<Zet8u>("8u");
    type<Zet16s>("16s");
    type<Zet32f>("32f");
    row("Dup_8u_C1C3R", "", source<Zet8u>(1), destination<Zet8u>(3), size);
    row("Dup_8u_C1C4R", "", source<Zet8u>(1), destination<Zet8u>(4), size);
    for (const int flags : {0, 1})
        row("CopyManaged_8u_C1R", "flags=" + std::to_string(flags), source<Zet8u>(1), destination<Zet8u>(1), size, flags);
    return true;
}();

} // namespace
} // namespace bench
