// SPDX-License-Identifier: Apache-2.0
// Checksums of many seeded calls, one per family, kept under version control in a checksums.txt beside the test. They are the same
// for every thread count, compiler, optimisation level and machine width; a changed one is a changed result and wants a line in the changelog.
#pragma once

#include <fstream>

#include "tests/support/image.h"

namespace test {

class Checksum { // FNV-1a
public:
    template <class T> void add(T v) {
        if constexpr (is_complex<T>) return add(v.re), add(v.im);
        else if (is_nan(v)) return add(0x7FC00000); // any NaN
        unsigned char bytes[sizeof v];
        std::memcpy(bytes, &v, sizeof v);
        for (const unsigned char b : bytes) value_ = (value_ ^ b) * 0x100000001B3;
    }
    template <class T> void add(const Image<T>& image) {
        for (const auto [y, i] : image.samples()) add(image.at(y, i));
    }
    // It is the one on the family's line of the folder's checksums.txt.
    testing::AssertionResult is_known(const std::string& family) const {
        std::ifstream known(ZETI_TEST_FOLDER "/checksums.txt");
        char line[80];
        std::snprintf(line, sizeof line, "%s %016llx", family.c_str(), static_cast<unsigned long long>(value_));
        for (std::string s; std::getline(known, s);)
            if (s == line) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "not in checksums.txt: " << line;
    }

private:
    std::uint64_t value_ = 0xCBF29CE484222325;
};

} // namespace test
