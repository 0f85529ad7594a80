// SPDX-License-Identifier: Apache-2.0
// Short runs of one pixel, made anew for every row: the pixel spread over registers, where signal/set.h prepares for long rows.
#pragma once

#include "core/layout.h"
#include "core/simd.h"

namespace zeti {

namespace detail {

// 16 bytes and more of a pattern of 48.
[[gnu::noinline]] inline void fill_registers(__m128i a, __m128i b, __m128i c, Zet8u* dst, ptrdiff_t bytes) {
    const auto put = [](Zet8u* p, __m128i v) { store(p, as_lanes<Zet8u>(v)); };
    for (; bytes >= 48; bytes -= 48, dst += 48) put(dst, a), put(dst + 16, b), put(dst + 32, c);
    const ptrdiff_t whole = bytes / 16;
    if (whole > 0) put(dst, a);
    if (whole > 1) put(dst + 16, b);
    if (bytes % 16 > 0) store_bytes(dst + whole * 16, whole == 0 ? a : whole == 1 ? b : c, static_cast<int>(bytes % 16));
}

} // namespace detail

template <int Pixel> class PixelRun {
    static constexpr bool fits = 16 % Pixel == 0; // registers

public:
    [[gnu::always_inline]] explicit PixelRun(const Zet8u* pixel) {
        if constexpr (Pixel == 16) {
            first_ = raw(load(pixel));
        } else {
            constexpr int two = std::min(16, 2 * Pixel), four = std::min(16, 4 * Pixel);
            __m128i v = load_bytes(pixel, Pixel);
            v = _mm_or_si128(v, _mm_slli_si128(v, Pixel));
            v = _mm_or_si128(v, _mm_slli_si128(v, two));
            v = _mm_or_si128(v, _mm_slli_si128(v, four));
            first_ = Pixel == 1 ? _mm_unpacklo_epi64(v, v) : v;
        }
    }

    // A run of less than a register takes no call: see owniCopy_8u_C1.
    [[gnu::always_inline]] void fill(Zet8u* dst, ptrdiff_t pixels) const {
        const ptrdiff_t bytes = pixels * Pixel;
        if (bytes >= 16) detail::fill_registers(first_, after<16, 8>(), after < 32, Pixel == 12 ? 4 : 10 > (), dst, bytes);
        else if (bytes > 0) store_bytes(dst, first_, static_cast<int>(bytes));
    }

    __m128i first() const { return first_; }

private:
    // So many bytes into the pattern; what the shift down leaves is filled from the pattern's start.
    template <int Bytes, int From> __m128i after() const {
        if constexpr (fits) return first_;
        else return _mm_or_si128(_mm_srli_si128(first_, Bytes % Pixel), _mm_slli_si128(first_, From));
    }

    __m128i first_;
};

} // namespace zeti
