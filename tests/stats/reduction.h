// SPDX-License-Identifier: Apache-2.0
// What the tests of reductions share: a member of one image or two with its results, and plain loops.
#pragma once

#include <xmmintrin.h>

#include "tests/arith/pixelwise.h"

namespace test {

// One call: results lie in an array with marks behind them.
template <class T> struct Reduction {
    using type = T;
    std::string family; // Sum, NormDiff_L2, ...
    PixelLayout layout;

    std::string name() const { return "zeti" + family + "_" + token<T>() + "_" + layout.name + "R"; }
    bool two() const { return family.find("NormDiff") == 0 || family.find("NormRel") == 0; }
    bool norm() const { return family.find("Norm") == 0; }
    bool hinted() const { return is_float<T> && family.find("Inf") == std::string::npos; }
    std::vector<ZetHintAlgorithm> hints() const {
        return hinted() ? std::vector{zetAlgHintNone, zetAlgHintAccurate} : std::vector{zetAlgHintNone};
    }

    template <class Use>
    auto with(const T* a, int aStep, const T* b, int bStep, ZetiSize roi, Zet64f* values, ZetHintAlgorithm hint, Use use) const {
        if (two()) return hinted() ? use(a, aStep, b, bStep, roi, values, hint) : use(a, aStep, b, bStep, roi, values);
        return hinted() ? use(a, aStep, roi, values, hint) : use(a, aStep, roi, values);
    }
    ZetStatus operator()(const T* a, int aStep, const T* b, int bStep, ZetiSize roi, Zet64f* values,
                         ZetHintAlgorithm hint = zetAlgHintNone) const {
        return with(a, aStep, b, bStep, roi, values, hint, [&](auto... x) { return member<ZetStatus(decltype(x)...)>(name())(x...); });
    }
};

template <class Use> void each_layout(Use use) {
    for (const PixelLayout& l : pixel_layouts) use(Zet8u{}, l), use(Zet16u{}, l), use(Zet16s{}, l), use(Zet32f{}, l);
}

} // namespace test
