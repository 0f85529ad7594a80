// SPDX-License-Identifier: Apache-2.0
// Ln and Exp, and beside the floats a loop over the C library's function.
#include <cmath>

#include "bench/rows.h"

namespace bench {
namespace {

void loop_over(const std::string& name, float (*f)(float)) {
    const auto prepare = [f](Arena& arena) -> std::function<void(int)> {
        const auto [src, srcStep] = Image<Zet32f, 1>{1}.bind(arena);
        const auto [dst, dstStep] = Image<Zet32f, 1>{1}.bind(arena);
        const ZetiSize roi = arena.size;
        const ptrdiff_t stride = srcStep / ptrdiff_t{sizeof(Zet32f)}; // the two images are alike
        for (ptrdiff_t i = 0; i < stride * roi.height; ++i)
            src[i] = 0.01f * static_cast<float>(1 + i % 2000); // 1 alone is a case of its own
        return [=, source = src, destination = dst](int calls) {
            for (int call = 0; call < calls; ++call)
                for (int y = 0; y < roi.height; ++y)
                    for (int x = 0; x < roi.width; ++x) destination[y * stride + x] = f(source[y * stride + x]);
        };
    };
    add({name, 2 * int{sizeof(Zet32f)}, 2 * int{sizeof(Zet32f)}, prepare});
}

template <class T> void rows(const std::string& operation, const std::string& type, std::initializer_list<int> scales) {
    for (const int s : scales)
        row(operation + "_" + type + "_C1RSfs", "scale=" + std::to_string(s), source<T>(1), destination<T>(1), size, s);
}

const bool listed = [] {
    for (const char* operation : {"Ln", "Exp"}) {
        const std::string name = operation;
        rows<Zet8u>(name, "8u", {0, 2, -4});
        rows<Zet16u>(name, "16u", {0, 2, -8});
        rows<Zet16s>(name, "16s", {0, 2, -8});
        row(name + "_32f_C1R", "", source<Zet32f>(1), destination<Zet32f>(1), size);
        row(name + "_32f_C3R", "", source<Zet32f>(3), destination<Zet32f>(3), size);
    }
    loop_over("logf", std::log);
    loop_over("expf", std::exp);
    return true;
}();

} // namespace
} // namespace bench
