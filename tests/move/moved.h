// SPDX-License-Identifier: Apache-2.0
// Results whose samples are constants, or those of the source in other places. They are compared as bytes.
#pragma once

#include "tests/support/checksum.h"
#include "tests/support/faults.h"
#include "tests/support/layouts.h"
#include "tests/support/member.h"
#include "tests/support/typed.h"
#include "tests/support/zetcore_standin.h"

namespace test {

constexpr Type moved_types[] = {Type::u8, Type::u16, Type::s16, Type::s32, Type::f32};

// Where a sample comes from. A negative channel: it stays as it is; a negative row: the constant of the channel.
struct Origin {
    int y, x, c;
};

// Samples of `size` bytes: origin(y, x, c) of each.
template <class Of> void expect_moved(const Image<Zet8u>& src, Image<Zet8u>& dst, const Image<Zet8u>& constants, int size, Of origin) {
    const int channels = dst.channels / size;
    for (int y = 0; y < dst.height; ++y)
        for (int i = 0; i < dst.width * channels; ++i) {
            const auto [fy, fx, fc] = origin(y, i / channels, i % channels);
            for (int b = 0; b < size && fc >= 0; ++b)
                dst.expect(y, i * size + b, fy < 0 ? constants.at(0, fc * size + b) : src.at(fy, fx * src.channels + fc * size + b));
        }
}

// The call does that and nothing else. False after a failure.
template <class Call>
bool expect_done(const Call& call, const Image<Zet8u>& src, const Image<Zet8u>& dst, Checksum& sum, ZetStatus expected = zetStsNoErr) {
    const ZetStatus status = call.run();
    const bool good = status == expected && src.intact() && dst.intact();
    EXPECT_TRUE(good) << call.m.name() << " gives " << status << ": " << dst.intact().message() << ", " << call.told();
    sum.add(dst);
    return good;
}

// Constants. A NaN might not pass as the value that it is.
inline void fill_constants(Random& r, Type t, Image<Zet8u>& constants) {
    for (int i = 0; i < constants.width; ++i) constants.set(0, i, r.uniform<Zet8u>() & (t == Type::f32 && i % 4 == 3 ? 0xBF : 0xFF));
}

} // namespace test
