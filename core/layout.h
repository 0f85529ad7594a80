// SPDX-License-Identifier: Apache-2.0
// Layout tags: `channels` samples are stored per pixel, `colours` of them are processed.
#pragma once

#include "core/base.h"

namespace zeti {

template <int Channels, int Colours> struct Layout {
    static constexpr int channels = Channels;
    static constexpr int colours = Colours;
    static constexpr bool keeps_alpha = Channels == 4 && Colours == 3;
};

struct C1 : Layout<1, 1> {};
struct C2 : Layout<2, 2> {};
struct C3 : Layout<3, 3> {};
struct C4 : Layout<4, 4> {};
struct AC4 : Layout<4, 3> {};

// One colour sample and its alpha, side by side.
struct AC1 : Layout<2, 1> {};

// Channel of interest: the pointer addresses one channel of an interleaved image.
struct C3C : Layout<3, 1> {};
struct C4C : Layout<4, 1> {};

// Separate planes; an argument of this layout is an array of plane pointers.
struct P3 : Layout<3, 3> {};
struct P4 : Layout<4, 4> {};
struct AP4 : Layout<4, 3> {};

// Four samples, the first of them alpha.
struct A0C4 : Layout<4, 3> {};

// Source layout, then destination layout.
template <class Source, class Destination> struct Pair {
    using source = Source;
    using destination = Destination;
};

using C3C1 = Pair<C3, C1>;
using C4C1 = Pair<C4, C1>;
using C1C3 = Pair<C1, C3>;
using C1C4 = Pair<C1, C4>;
using AC4C3 = Pair<AC4, C3>;
using C3AC4 = Pair<C3, AC4>;
using C3C4 = Pair<C3, C4>;
using C4C3 = Pair<C4, C3>;
using C3P3 = Pair<C3, P3>;
using C4P4 = Pair<C4, P4>;
using P3C3 = Pair<P3, C3>;
using P4C4 = Pair<P4, C4>;
using C3A0C4 = Pair<C3, A0C4>;

} // namespace zeti
