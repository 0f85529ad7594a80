// SPDX-License-Identifier: Apache-2.0
// Composition by colour key: where all samples of a pixel of the first source equal the key it is the second source's pixel
// that shows.
#pragma once

#include "signal/alpha.h"
#include "signal/group_row.h"

namespace zeti {

// All ones where all `bytes` bytes of a pixel are: pixels of 1, 2, 4 or 8 bytes.
template <int bytes> __m128i equal_pixels(__m128i a, __m128i key) {
    if constexpr (bytes == 1) return _mm_cmpeq_epi8(a, key);
    if constexpr (bytes == 2) return _mm_cmpeq_epi16(a, key);
    const __m128i equal = _mm_cmpeq_epi32(a, key);
    return bytes == 4 ? equal : _mm_and_si128(equal, _mm_shuffle_epi32(equal, _MM_SHUFFLE(2, 3, 0, 1)));
}

// One or four samples to the pixel; `key` is the pixel repeated.
template <class T, int Channels> struct ColorKey {
    static constexpr int pixel = Channels;
    Vec<T> key;

    static constexpr int bytes = sizeof(T) * pixel;
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return select<T>(equal_pixels<bytes>(raw(a), raw(key)), b, a); }
};

// Three samples to the pixel, in groups that hold whole pixels.
template <class T> struct ColorKey3 {
    Group<T> key;

    Group<T> operator()(const Group<T>& a, const Group<T>& b) const {
        Group<T> equal, result;
        for (int k = 0; k < 3; ++k) equal.v[k] = as_lanes<T>(a.v[k] == key.v[k]);
        // At the first sample of a pixel that the key matches, then at all three.
        const Group<T> second = moved_down<1>(equal), third = moved_down<2>(equal);
        Group<T> matched;
        for (int k = 0; k < 3; ++k) matched.v[k] = equal.v[k] & second.v[k] & third.v[k] & first_of_three(k);
        const Group<T> next = moved_up<1>(matched), last = moved_up<2>(matched);
        for (int k = 0; k < 3; ++k) result.v[k] = select<T>(matched.v[k] | next.v[k] | last.v[k], b.v[k], a.v[k]);
        return result;
    }

private:
    static Vec<T> first_of_three(int k) {
        Vec<T> mask{};
        for (int i = 0; i < lanes<T>; ++i) mask[i] = (k * lanes<T> + i) % 3 == 0;
        return as_lanes<T>(mask != T{0});
    }
};

// Where the colours of a pixel of 8u AC4 do not equal the key, the two pixels are composed by `inner`.
template <class Inner> struct ColorKeyComposition {
    static constexpr int pixel = 4;
    static constexpr bool is_long = true;
    Vec<Zet32u> key; // alpha 0
    Inner inner;

    [[gnu::always_inline]] Vec<Zet8u> operator()(Vec<Zet8u> a, Vec<Zet8u> b) const {
        const auto colours = as_lanes<Zet32u>(a) & 0x00FFFFFFu;
        return select<Zet8u>(colours == key, b, inner(a, b));
    }
};

} // namespace zeti
