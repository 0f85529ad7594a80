// SPDX-License-Identifier: Apache-2.0
// Ln and Exp, and beside the floats a loop over the C library's function.
#include <cmath>

#include "bench/rows.h"

namespace bench {
namespace {

// transform(source, step, destination, step, size), on samples from 0.01 to 20.
template <class Transform> void on_floats(const std::string& name, Transform transform) {
    add({name, 2 * int{sizeof(Zet32f)}, 2 * int{sizeof(Zet32f)}, [=](Arena& arena) -> std::function<void(int)> {
             const auto [src, srcStep] = Image<Zet32f, 1>{1}.bind(arena);
             const auto [dst, dstStep] = Image<Zet32f, 1>{1}.bind(arena);
             const ZetiSize roi = arena.size;
             for (size_t i = 0; i < size_t(srcStep) / sizeof(Zet32f) * roi.height; ++i) src[i] = 0.01f * static_cast<float>(1 + i % 2000);
             return [=, s = src, sStep = srcStep, d = dst, dStep = dstStep](int calls) {
                 while (calls-- > 0) transform(s, sStep, d, dStep, roi);
             };
         }});
}

void beside_c_library(const std::string& name, float (*f)(float)) {
    on_floats(name + "/ours", reinterpret_cast<decltype(&zetiLn_32f_C1R)>(member("zeti" + name)));
    on_floats(name + "/by the C library", [f](const Zet32f* src, int srcStep, Zet32f* dst, int dstStep, ZetiSize roi) {
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) dst[y * (dstStep / int{sizeof *dst}) + x] = f(src[y * (srcStep / int{sizeof *src}) + x]);
    });
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
        row(name + "_32f_C3R", "", source<Zet32f>(3), destination<Zet32f>(3), size);
    }
    beside_c_library("Ln_32f_C1R", std::log);
    beside_c_library("Exp_32f_C1R", std::exp);
    return true;
}();

} // namespace
} // namespace bench
