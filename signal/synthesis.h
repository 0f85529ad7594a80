// SPDX-License-Identifier: Apache-2.0
// Rows of generated test images: fill(out, x, n) makes the samples of n <= longest columns from column x on.
#pragma once

#include "core/view.h"
#include "signal/double_math.h"

namespace zeti {

inline constexpr int synthesis_chunk = 256;

namespace detail {

// To nearest, halves up, saturated; NaN gives the least value. From 2^23 on floats are integers, and adding a half would spoil them.
template <class T> Vec<Zet32s> rounded_up(Vec<Zet32f> v) {
    const auto floor = [](Vec<Zet32f> x) {
        const auto whole = to_int_truncated(x);
        return as_lanes<Zet32s>(as_lanes<Zet32u>(whole) + as_lanes<Zet32u>(to_float(whole) > x)); // of what does not fit it wraps
    };
    if constexpr (sizeof(T) < 4) {
        return floor(min<Zet32f>(max<Zet32f>(v, splat(Zet32f{min_of<T>})), splat(Zet32f{max_of<T>})) + 0.5f);
    } else {
        const auto small = as_lanes<Zet32s>(v > -0x1p23f) & as_lanes<Zet32s>(v < 0x1p23f);
        const auto large = to_int_truncated(v) ^ as_lanes<Zet32s>(v >= 0x1p31f);
        return select<Zet32s>(small, floor(v + 0.5f), large);
    }
}

template <class T> void narrow(const Zet32s* wide, T* out, ptrdiff_t n) {
    for (ptrdiff_t i = 0; i < n; ++i) out[i] = static_cast<T>(wide[i]);
}

} // namespace detail

// offset + slope x, or offset + slope x y: each product and the sum rounded to single precision.
template <class T> class RampRow {
public:
    RampRow(Zet32f offset, Zet32f slope) : RampRow(offset, slope, 1) {}
    RampRow(Zet32f offset, Zet32f slope, int y) : offset_(splat(offset)), slope_(splat(slope)), y_(to_float(splat(y))) {}

    void fill(T* out, ptrdiff_t x, ptrdiff_t n) const {
        Vec<Zet32s> column = splat(static_cast<Zet32s>(x)) + Vec<Zet32s>{0, 1, 2, 3};
        alignas(16) std::conditional_t<std::is_same_v<T, Zet32f>, Zet32f, Zet32s> wide[synthesis_chunk];
        for (ptrdiff_t i = 0; i < n; i += 4, column += 4) {
            const Vec<Zet32f> v = offset_ + slope_ * to_float(column) * y_;
            if constexpr (std::is_same_v<T, Zet32f>) store(wide + i, v);
            else store(wide + i, detail::rounded_up<T>(v));
        }
        if constexpr (std::is_same_v<T, Zet32f>) std::memcpy(out, wide, static_cast<size_t>(n) * sizeof(T));
        else detail::narrow(wide, out, n);
    }

private:
    Vec<Zet32f> offset_, slope_, y_;
};

// sin(2 pi r / (4 height)) of r = (x - cx)^2 + (y - cy)^2, to the type's range.
template <class T> class JaehneRow {
public:
    // Four times the height whatever the width: kept on purpose.
    JaehneRow(ZetiSize roi, ptrdiff_t y)
        : cx_((roi.width - 1) * 0.5), dy_(static_cast<int>(y) - (roi.height - 1) * 0.5), period_(4.0 * roi.height) {}

    void fill(T* out, ptrdiff_t x, ptrdiff_t n) const {
        Doubles dx = splat(static_cast<int>(x) - cx_) + Doubles{0, 1};
        alignas(16) std::conditional_t<std::is_same_v<T, Zet32f>, Zet32f, Zet32s> wide[synthesis_chunk];
        for (ptrdiff_t i = 0; i < n; i += 2, dx += 2.0) {
            Doubles argument = 6.283185307179586 * (dx * dx + dy_ * dy_) / period_, less{};
            reduce(argument, less);
            const Doubles s = sine(argument, less);
            if constexpr (std::is_same_v<T, Zet32f>) {
                const Doubles v = (s + 1.0) * 0.49999;
                wide[i] = static_cast<Zet32f>(v[0]), wide[i + 1] = static_cast<Zet32f>(v[1]);
            } else {
                const Doubles v = std::is_unsigned_v<T> ? (s + 1.0) * scale : s * scale;
                _mm_storel_epi64(reinterpret_cast<__m128i*>(wide + i), _mm_cvttpd_epi32(reinterpret_cast<__m128d>(v)));
            }
        }
        if constexpr (std::is_same_v<T, Zet32f>) std::memcpy(out, wide, static_cast<size_t>(n) * sizeof(T));
        else detail::narrow(wide, out, n);
    }

private:
    static constexpr double scale = sizeof(T) == 1 ? 127.99999 : sizeof(T) == 2 ? 32767.99999 : 2147483647.99999;

    // Into the range of sine(): by exact differences from multiples of 2 pi, whose own rounding is collected in `less`.
    static void reduce(Doubles& a, Doubles& less) {
        constexpr double turns = 0x1.921fb54442d18p+28, rounding = 0x1.1a62633145c07p-26; // 2^26 of them
        if (!any(a >= turns)) [[likely]]
            return;
        for (double multiple = 0x1p34; multiple >= 1; multiple *= 0.5) {
            const auto goes = as_lanes<uint64_t>(a >= turns * multiple);
            const auto of = [&](double v) { return as_lanes<Zet64f>(goes & as_lanes<uint64_t>(splat(v))); };
            a -= of(turns * multiple);
            less += of(rounding * multiple);
        }
    }

    double cx_, dy_, period_;
};

} // namespace zeti
