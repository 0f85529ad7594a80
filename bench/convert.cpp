// SPDX-License-Identifier: Apache-2.0
#include "bench/rows.h"

namespace bench {
namespace {

// `more` follows the size.
template <class S, class D, class... More> void image(const std::string& name, const std::string& detail, int channels, More... more) {
    row(name, detail, source<S>(channels), destination<D>(channels), size, more...);
}

const bool listed = [] {
    image<Zet8u, Zet16u>("Convert_8u16u_C1R", "", 1);
    image<Zet8u, Zet16s>("Convert_8u16s_C3R", "", 3);
    image<Zet8u, Zet16u>("Convert_8u16u_AC4R", "", 4);
    image<Zet8u, Zet32s>("Convert_8u32s_C1R", "", 1);
    image<Zet8u, Zet32f>("Convert_8u32f_C1R", "", 1);
    image<Zet8u, Zet32f>("Convert_8u32f_AC4R", "", 4);
    image<Zet8s, Zet32s>("Convert_8s32s_C1R", "", 1);
    image<Zet16s, Zet32f>("Convert_16s32f_C1R", "", 1);
    image<Zet16u, Zet8u>("Convert_16u8u_C1R", "", 1);
    image<Zet16s, Zet8u>("Convert_16s8u_C1R", "", 1);
    image<Zet32s, Zet8u>("Convert_32s8u_C1R", "", 1);
    image<Zet32s, Zet8s>("Convert_32s8s_C1R", "", 1);
    image<Zet32u, Zet32f>("Convert_32u32f_C1R", "", 1);
    image<Zet16s, Zet16u>("Convert_16s16u_C1Rs", "", 1);
    for (const auto& [detail, mode] :
         {std::pair("mode=zero", zetRndZero), {"mode=near", zetRndNear}, {"mode=financial", zetRndFinancial}}) {
        image<Zet32f, Zet8u>("Convert_32f8u_C1R", detail, 1, mode);
        image<Zet32f, Zet16u>("Convert_32f16u_C1R", detail, 1, mode);
    }
    image<Zet32f, Zet8u>("Convert_32f8u_C1RSfs", "scale=1", 1, zetRndNear, 1);
    image<Zet32f, Zet32u>("Convert_32f32u_C1RSfs", "scale=1", 1, zetRndNear, 1);
    for (const int s : {-1, 0, 1}) {
        const std::string scale = "scale=" + std::to_string(s);
        image<Zet16u, Zet8s>("Convert_16u8s_C1RSfs", scale, 1, s);
        image<Zet32s, Zet16s>("Convert_32s16s_C1RSfs", scale, 1, s);
        image<Zet32u, Zet8u>("Convert_32u8u_C1RSfs", scale, 1, s);
    }
    image<Zet8u, Zet16u>("Scale_8u16u_C1R", "", 1);
    image<Zet8u, Zet32s>("Scale_8u32s_C1R", "", 1);
    for (const auto& [detail, hint] : {std::pair("fast", zetAlgHintFast), {"accurate", zetAlgHintAccurate}}) {
        image<Zet16u, Zet8u>("Scale_16u8u_C1R", detail, 1, hint);
        image<Zet16s, Zet8u>("Scale_16s8u_AC4R", detail, 4, hint);
        image<Zet32s, Zet8u>("Scale_32s8u_C1R", detail, 1, hint);
    }
    image<Zet8u, Zet32f>("Scale_8u32f_C1R", "", 1, 0.0f, 1.0f);
    image<Zet32f, Zet8u>("Scale_32f8u_C1R", "", 1, 0.0f, 1.0f);
    return true;
}();

} // namespace
} // namespace bench
