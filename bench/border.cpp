// SPDX-License-Identifier: Apache-2.0
// Borders of 8 pixels on every side of a destination of the row's size.
#include "bench/rows.h"

namespace bench {
namespace {

constexpr int border = 8;

struct InnerSize {
    static constexpr bool byRows = true;
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena& arena) const {
        const int less = arena.size.width > 4 * border ? 2 * border : 0;
        return std::tuple<ZetiSize>(ZetiSize{arena.size.width - less, arena.size.height - less});
    }
};
struct InnerOffset {
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena& arena) const {
        const int offset = arena.size.width > 4 * border ? border : 0;
        return std::tuple<int, int>(offset, offset);
    }
};

template <class T> void type(const std::string& type) {
    const Constants<T> constants = {{1, 2, 3, 4}};
    const std::string c = "CopyConstBorder_" + type + "_", r = "CopyReplicateBorder_" + type + "_";
    row(c + "C1R", "", source<T>(1), InnerSize(), destination<T>(1), size, InnerOffset(), T{7});
    for (const int n : {3, 4})
        row(c + "C" + std::to_string(n) + "R", "", source<T>(n), InnerSize(), destination<T>(n), size, InnerOffset(), constants);
    for (const int n : {1, 3, 4})
        row(r + "C" + std::to_string(n) + "R", "", source<T>(n), InnerSize(), destination<T>(n), size, InnerOffset());
    row(r + "AC4R", "", source<T>(4), InnerSize(), destination<T>(4), size, InnerOffset());
}

const bool listed = [] {
    type<Zet8u>("8u");
    type<Zet16s>("16s");
    type<Zet32f>("32f");
    row("CopyWrapBorder_32s_C1R", "", source<Zet32s>(1), InnerSize(), destination<Zet32s>(1), size, InnerOffset());
    return true;
}();

} // namespace
} // namespace bench
