// SPDX-License-Identifier: Apache-2.0
// What the tests of logic, shifts, thresholds and comparisons share: layouts, and one checked call of a member.
#pragma once

#include <xmmintrin.h>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/order.h"
#include "tests/support/zetcore_standin.h"

namespace test {

struct PixelLayout {
    const char* name;
    int channels, colours;
};
inline constexpr PixelLayout pixel_layouts[] = {{"C1", 1, 1}, {"C3", 3, 3}, {"C4", 4, 4}, {"AC4", 4, 3}};

template <class T> struct Images {
    const T* a;
    int aStep;
    const T* b; // in place it is the destination
    int bStep;
    T* d;
    int dStep;
    ZetiSize roi;
};

// One constant by value on C1, else a pointer to the constants.
template <class V, class Use> void by_layout(const PixelLayout& l, const V* constants, Use use) {
    l.channels == 1 ? use(*constants) : use(constants);
}

// A family F has: type, layout, inPlace, name(), order(), prepare(random) for its parameters, expected(a, b, channel), and
// call(images, use), which hands the arguments of one call to `use`.
template <class F> bool check(F& f, Random& r, int width, int height, unsigned state = 0x1F80, Checksum* sum = nullptr) {
    using T = typename F::type;
    const PixelLayout& l = f.layout;
    Image<T> a(r, width, height, l.channels), b(r, width, height, l.channels), d(r, width, height, l.channels);
    Image<T>& second = f.inPlace ? d : b;
    f.prepare(r);
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < d.row_samples(); ++i)
            if (const int c = i % l.channels; c < l.colours) d.expect(y, i, f.expected(a.at(y, i), second.at(y, i), c));
    ZetStatus status = zetStsNoErr;
    const int asked = standin_thread_queries();
    unsigned after = 0;
    f.call(Images<T>{a.data(), a.step, b.data(), b.step, d.data(), d.step, {width, height}}, [&](auto... arguments) {
        const auto function = member<ZetStatus(decltype(arguments)...)>(f.name());
        _mm_setcsr(state);
        status = function(arguments...);
        after = _mm_getcsr();
        _mm_setcsr(0x1F80);
    });
    if (sum) sum->add(d);
    const testing::AssertionResult good = d.intact();
    EXPECT_TRUE(good) << f.name() << ' ' << f.parameters();
    EXPECT_EQ(status, zetStsNoErr) << f.name();
    EXPECT_TRUE(a.intact() && (f.inPlace || b.intact())) << f.name() << " writes to a source";
    EXPECT_EQ(after, state) << f.name() << " changes the float state";
    EXPECT_EQ(standin_thread_queries(), asked) << f.name() << " asks for threads";
    return good && status == zetStsNoErr;
}

// Every width up to 40, around powers of two, and a destination that is streamed.
template <class F> void check_widths(F f, Checksum* sum) {
    Random r(f.name());
    for (int width = 1; width <= 40; ++width)
        if (!check(f, r, width, r.between(1, 3), 0x1F80, sum)) return;
    for (const int width : {47, 48, 49, 63, 64, 65, 200, 1023, 3073})
        if (!check(f, r, width, 2, 0x1F80, sum)) return;
    if (is_float<typename F::type>)
        for (const unsigned state : {0x3F80U, 0x7F80U, 0x9FC0U, 0xFFC0U, 0x1D00U}) // rounding, flush and denormals to zero, traps
            if (!check(f, r, r.between(1, 40), 3, state)) return;
}
template <class F> void check_large(F f) {
    Random r(f.name());
    const int pixelBytes = f.layout.channels * static_cast<int>(sizeof(typename F::type));
    check(f, r, (16 << 20) / 100 / pixelBytes + 1, 100);
}

template <class F> void check_order(F f) {
    using T = typename F::type;
    Random r(f.name());
    Image<T> a(r, 3, 2, f.layout.channels), b(r, 3, 2, f.layout.channels), d(r, 3, 2, f.layout.channels);
    f.prepare(r);
    f.call(Images<T>{a.data(), a.step, b.data(), b.step, d.data(), d.step, {3, 2}}, [&](auto... arguments) {
        const std::tuple call(arguments...);
        auto errors = common_errors(call);
        if constexpr (requires { f.add_errors(errors); }) f.add_errors(errors);
        expect_order(f.name(), call, f.order(), errors, [&] { return d.intact(); });
    });
}

} // namespace test
