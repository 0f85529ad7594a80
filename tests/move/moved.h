// SPDX-License-Identifier: Apache-2.0
// Results whose samples are constants, or those of the source in other places. They are compared as bytes.
#pragma once

#include "tests/support/faults.h"
#include "tests/support/layouts.h"
#include "tests/support/typed.h"
#include "tests/support/zetcore_standin.h"

namespace test {

constexpr Type moved_types[] = {Type::u8, Type::u16, Type::s16, Type::s32, Type::f32};

template <class Layout> struct MovedMember {
    std::string family;
    Type type;
    Layout layout;
    bool inPlace;
    std::string name() const { return "zeti" + family + "_" + token(type) + "_" + layout.name + (inPlace ? "IR" : "R"); }
};

// Where a sample comes from. A negative channel: it stays as it is; a negative row: the constant of the channel.
struct Origin {
    int y, x, c;
};

struct Geometry {
    ZetiSize src, dst;
    int srcChannels, dstChannels, constants;
    int srcUp = 1, srcFlat = 1, dstUp = 1, dstFlat = 1; // directions: -1 and 0 where rows may go upwards, or be all the same
    bool inside = false;                                // the source is a part of the destination
    int top = 0, left = 0;                              // its place there
};

struct Images { // of a call
    const void* from;
    int fromStep;
    void* to;
    int toStep;
    const void* values;
};

// A call on random images moves what it ought to, origin(y, x, c), and does nothing else. False after a failure.
template <class Of, class Run>
bool check_moved(const std::string& name, Random& r, Type t, const Geometry& g, Of origin, Run run, ZetStatus expected = zetStsNoErr) {
    const int size = bytes_of(t), pixel = g.srcChannels * size;
    const Image<Zet8u> src(r, g.src.width, g.src.height, pixel, {1, g.srcUp, g.srcFlat});
    Image<Zet8u> dst(r, g.dst.width, g.dst.height, g.dstChannels * size, {1, g.dstUp, g.dstFlat}), values(g.constants * size, 1, 1, 0);
    for (int i = 0; i < values.width; ++i) // no NaN: it might not pass as the value that it is
        values.set(0, i, r.uniform<Zet8u>() & (t == Type::f32 && i % 4 == 3 ? 0xBF : 0xFF));
    for (const auto [y, i] : src.samples())
        if (g.inside) dst.set(g.top + y, g.left * pixel + i, src.at(y, i));
    for (const auto [y, i] : Places{dst.height, dst.width * g.dstChannels}) {
        const auto [fy, fx, fc] = origin(y, i / g.dstChannels, i % g.dstChannels);
        for (int b = 0; b < size && fc >= 0 && expected == zetStsNoErr; ++b)
            dst.expect(y, i * size + b, fy < 0 ? values.at(0, fc * size + b) : src.at(fy, fx * pixel + fc * size + b));
    }
    const Zet8u* const from = g.inside ? dst.row(g.top) + g.left * pixel : src.data();
    const ZetStatus status = run(Images{from, g.inside ? dst.step : src.step, dst.data(), dst.step, values.data()});
    const bool good = status == expected && src.intact() && dst.intact() && values.intact();
    EXPECT_TRUE(good) << name << " gives " << status << ": " << dst.intact().message();
    return good;
}

} // namespace test
