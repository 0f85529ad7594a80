// SPDX-License-Identifier: Apache-2.0
// Scale kernels: the whole range of one type onto the whole range of another.
#pragma once

#include "signal/convert.h"

namespace zeti {

// 8u to a wider integer: the byte in all bytes of the result, with the top bit flipped where that is signed.
template <class D> struct ScaleUp {
    using source = Zet8u;
    using destination = D;

    auto operator()(const auto& g) const {
        using W = std::make_unsigned_t<D>;
        constexpr D flip = std::is_signed_v<D> ? min_of<D> : D{0};
        return detail::each<D>(repeated<W>(g), [](Vec<W> v) { return as_lanes<D>(v) ^ flip; });
    }

private:
    template <class W, class T, int N> static auto repeated(const Registers<T, N>& g) {
        Registers<Wider<T>, 2 * N> r;
        for (int k = 0; k < N; ++k) {
            const auto [low, high] = interleave<T>(g[k], g[k]);
            r.v[2 * k] = low, r.v[2 * k + 1] = high;
        }
        if constexpr (std::is_same_v<W, Wider<T>>) return r;
        else return repeated<W>(r);
    }
};

// A wider integer to 8u, by shifts: with t = x - (x >> 8) the top byte of t, as a signed number, its top bit flipped.
template <class S> struct ScaleDownFast {
    using source = S;
    using destination = Zet8u;
    using Lane = std::make_signed_t<S>;

    auto operator()(const auto& g) const {
        const auto top = detail::each<Lane>(g, [](Vec<S> v) {
            const Vec<Lane> x = std::is_unsigned_v<S> ? as_lanes<Lane>(v) ^ min_of<Lane> : as_lanes<Lane>(v);
            return (x - (x >> 8)) >> (8 * sizeof(S) - 8);
        });
        return detail::each<Zet8u>(converted<Zet8s>(top), [](Vec<Zet8s> v) { return as_lanes<Zet8u>(v) ^ Zet8u(0x80); });
    }
};

// The accurate form. With x from 0 to 65535 that is x / 257 to nearest, and there are no ties: (x + 128) / 257, truncated, as
// ((x + 128) * 65281) >> 24. Saturating the sum changes no result.
template <class S> struct ScaleDownAccurate {
    using source = S;
    using destination = Zet8u;

    auto operator()(const auto& g) const {
        const auto quotients = detail::each<Zet16u>(g, [](Vec<S> v) {
            const Vec<Zet16u> x = std::is_signed_v<S> ? as_lanes<Zet16u>(v) ^ Zet16u(0x8000) : as_lanes<Zet16u>(v);
            return multiply_high(add_saturating<Zet16u>(x, splat(Zet16u{128})), splat(Zet16u{65281})) >> 8;
        });
        return detail::narrowed<Zet8u>(quotients, narrow_to_8u);
    }
};

// 32s in double precision.
template <> struct ScaleDownAccurate<Zet32s> {
    using source = Zet32s;
    using destination = Zet8u;
    static constexpr bool in_floats = true;

    auto operator()(const auto& g) const {
        return converted<Zet8u>(detail::each<Zet32s>(g, [](Vec<Zet32s> v) {
            return as_lanes<Zet32s>(_mm_unpacklo_epi64(raw(scaled(v)), raw(scaled(as_lanes<Zet32s>(_mm_srli_si128(raw(v), 8))))));
        }));
    }

private:
    static Vec<Zet32s> scaled(Vec<Zet32s> twoLow) { return to_int(to_double(twoLow) * 5.937181414556033e-08 + 127.5000000296859); }
};

// 0 to 255 onto low to high: low + x * factor, where the factor, (high - low) / 255, is formed once.
class ScaleToFloat {
public:
    using source = Zet8u;
    using destination = Zet32f;
    static constexpr bool in_floats = true;

    ScaleToFloat(Zet32f low, Zet32f high) : low_(splat(low)), factor_((splat(high) - low_) / 255.0f) {}
    auto operator()(const auto& g) const {
        return detail::each<Zet32f>(converted<Zet32f>(g), [&](Vec<Zet32f> x) { return low_ + x * factor_; });
    }

private:
    Vec<Zet32f> low_, factor_;
};

// low to high onto 0 to 255: x * factor + offset, rounded and saturated; NaN gives 0.
class ScaleFromFloat {
public:
    using source = Zet32f;
    using destination = Zet8u;
    static constexpr bool in_floats = true;

    ScaleFromFloat(Zet32f low, Zet32f high) : factor_(255.0f / (splat(high) - splat(low))), offset_(0.0f - low * factor_) {}
    auto operator()(const auto& g) const {
        return convert_(detail::each<Zet32f>(g, [&](Vec<Zet32f> x) { return x * factor_ + offset_; }));
    }

private:
    Vec<Zet32f> factor_, offset_;
    ConvertFloat<Zet8u, ToNearest, Unscaled32f> convert_;
};

} // namespace zeti
