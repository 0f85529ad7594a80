// SPDX-License-Identifier: Apache-2.0
// A checksum of many seeded calls, for results that no test knows to the last bit. It is the same for every thread count, compiler,
// optimisation level and machine width; a changed one is a changed result and wants a line in the changelog.
#pragma once

#include "tests/support/samples.h"

namespace test {

struct Checksum { // FNV-1a
    std::uint64_t value = 0xCBF29CE484222325;

    template <class T> void add(T v) {
        if (is_nan(v)) return add(0x7FC00000); // any NaN
        unsigned char bytes[sizeof v];
        std::memcpy(bytes, &v, sizeof v);
        for (const unsigned char b : bytes) value = (value ^ b) * 0x100000001B3;
    }
};

} // namespace test
