// SPDX-License-Identifier: Apache-2.0
// How the channels of an image lie. Those behind the colours are alpha, which most members leave alone.
#pragma once

namespace test {

struct PixelLayout {
    const char* name;
    int channels, colours;
    bool planar() const { return name[1] == 'P'; } // four planes, one below the other
};
inline constexpr PixelLayout pixel_layouts[] = {{"C1", 1, 1}, {"C3", 3, 3}, {"C4", 4, 4}, {"AC4", 4, 3}};

} // namespace test
