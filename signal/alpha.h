// SPDX-License-Identifier: Apache-2.0
// Composition of two images under their alpha, after Porter and Duff (1984): of each image shows what the other one's alpha says,
//
//   result = A fA + B fB      on premultiplied samples, alpha among them.
//
// All products are of full scale, sums saturate. Colours that are not premultiplied yet become so first; the result is premultiplied.
#pragma once

#include "signal/full_scale.h"

namespace zeti::alpha {

// --- Alpha of a register of pixels --------------------------------------------------------------------------------

// M - alpha; more than M, for a negative alpha, saturates. Float alpha is taken as it is.
template <class T> [[gnu::always_inline]] inline Factor<T> complement(Factor<T> alpha) {
    if constexpr (std::is_same_v<T, Zet8u>) return {alpha.even ^ Zet16u{0xFF}, alpha.odd ^ Zet16u{0xFF}};
    else if constexpr (std::is_floating_point_v<T>) return T{1} - alpha;
    else if constexpr (std::is_unsigned_v<T>) return ~alpha;
    else return max_of<T> - (alpha & as_lanes<T>(alpha >= 0));
}

// The last sample of every pixel of `Pixel` samples, in the place of all of them. In planes every sample is a pixel.
template <class T, int Pixel> [[gnu::always_inline]] inline Factor<T> spread(Vec<T> v) {
    if constexpr (Pixel == 1) {
        return factor<T>(v);
    } else if constexpr (sizeof(T) == 4) {
        return as_lanes<T>(_mm_shuffle_epi32(raw(v), Pixel == 4 ? _MM_SHUFFLE(3, 3, 3, 3) : _MM_SHUFFLE(3, 3, 1, 1)));
    } else if constexpr (sizeof(T) == 2) {
        constexpr int order = Pixel == 4 ? _MM_SHUFFLE(3, 3, 3, 3) : _MM_SHUFFLE(3, 3, 1, 1);
        return as_lanes<T>(_mm_shufflehi_epi16(_mm_shufflelo_epi16(raw(v), order), order));
    } else {
        Vec<Zet16u> last = as_lanes<Zet16u>(v) >> 8;
        if constexpr (Pixel == 4) {
            const auto pixels = as_lanes<Zet32u>(v) >> 24;
            last = as_lanes<Zet16u>(pixels | pixels << 16);
        }
        if constexpr (std::is_same_v<T, Zet8u>) return {last, last};
        else return as_lanes<T>(last | last << 8);
    }
}

// All ones in the alpha samples.
template <class T, int Pixel> Vec<T> alpha_samples() {
    Vec<T> last{};
    for (int k = 0; k < lanes<T>; ++k) last[k] = k % Pixel == Pixel - 1;
    return as_lanes<T>(last != T{0});
}

// f on colour samples, M on alpha samples, which it leaves as they are.
template <class T, int Pixel> [[gnu::always_inline]] inline Factor<T> on_colours(Factor<T> f) {
    if constexpr (std::is_same_v<T, Zet8u>) {
        const Factor<T> full = factor<T>(alpha_samples<T, Pixel>());
        return {f.even | full.even, f.odd | full.odd};
    } else {
        return select<T>(alpha_samples<T, Pixel>(), splat(full_scale<T>), f);
    }
}

template <class T> struct Coverage {
    Factor<T> inside;  // alpha
    Factor<T> outside; // M - alpha
    Factor<T> colours; // what premultiplies: alpha, and M for alpha itself
};

// By pixels with their alpha last, and by alphas one for each colour sample.
template <class T, int Pixel> [[gnu::always_inline]] inline Coverage<T> coverage_of(Vec<T> pixels) {
    const Factor<T> alpha = spread<T, Pixel>(pixels);
    return {alpha, complement<T>(alpha), on_colours<T, Pixel>(alpha)};
}
template <class T> [[gnu::always_inline]] inline Coverage<T> coverage_by(Vec<T> alphas) {
    const Factor<T> alpha = factor<T>(alphas);
    return {alpha, complement<T>(alpha), alpha};
}

// --- Operators ----------------------------------------------------------------------------------------------------

// Where an image shows: within the other one's coverage, outside of it, in both, in neither.
enum class Shows { everywhere, inside, outside, nowhere };

template <Shows A, Shows B> struct Operator { static constexpr Shows a = A, b = B; };
using Over = Operator<Shows::everywhere, Shows::outside>;
using In = Operator<Shows::inside, Shows::nowhere>;
using Out = Operator<Shows::outside, Shows::nowhere>;
using ATop = Operator<Shows::inside, Shows::outside>;
using Xor = Operator<Shows::outside, Shows::outside>;
using Plus = Operator<Shows::everywhere, Shows::everywhere>;

template <Shows S, class T> [[gnu::always_inline]] inline Vec<T> shown(Vec<T> v, const Coverage<T>& other) {
    if constexpr (S == Shows::everywhere) return v;
    else return scaled_product<T>(v, S == Shows::inside ? other.inside : other.outside);
}

template <class Op, bool Premultiplied, class T>
[[gnu::always_inline]] inline Vec<T> compose(Vec<T> a, const Coverage<T>& ofA, Vec<T> b, const Coverage<T>& ofB) {
    if constexpr (!Premultiplied) a = scaled_product<T>(a, ofA.colours), b = scaled_product<T>(b, ofB.colours);
    const Vec<T> result = shown<Op::a, T>(a, ofB);
    if constexpr (Op::b == Shows::nowhere) return result;
    else if constexpr (std::is_floating_point_v<T>) return result + shown<Op::b, T>(b, ofA);
    else return add_saturating<T>(result, shown<Op::b, T>(b, ofA));
}

// --- Row kernels --------------------------------------------------------------------------------------------------

// A source as it is, or under a constant opacity.
template <class T> struct Opaque {
    [[gnu::always_inline]] Vec<T> operator()(Vec<T> v) const { return v; }
};
template <class T> struct Faded {
    Factor<T> opacity;
    [[gnu::always_inline]] Vec<T> operator()(Vec<T> v) const { return scaled_product<T>(v, opacity); }
};

// Pixels of `Pixel` samples, alpha last; with Pixel 1 the alpha of planes.
template <class Op, bool Premultiplied, class T, int Pixel, class Fade> struct Pixels {
    static constexpr int pixel = Pixel;
    static constexpr bool is_long = true; // no need to unroll
    Fade fadeA, fadeB;

    [[gnu::always_inline]] Vec<T> operator()(Vec<T> a, Vec<T> b) const {
        a = fadeA(a), b = fadeB(b);
        if constexpr (std::is_same_v<Op, Over> && std::is_unsigned_v<T>) { // what most of a matte is: opaque or empty, with the same result
            if (all((~a & alpha_samples<T, Pixel>()) == 0)) return a;
            if (Premultiplied && all(a == 0)) return b;
        }
        return compose<Op, Premultiplied, T>(a, coverage_of<T, Pixel>(a), b, coverage_of<T, Pixel>(b));
    }
};

// A colour plane: A, the alpha of A and the alpha of B in one array, and B.
template <class Op, bool Premultiplied, class T, class Fade> struct Colours {
    static constexpr bool is_long = true; // no need to unroll
    Fade fadeA, fadeB;

    template <class Registers> [[gnu::always_inline]] Vec<T> operator()(const Registers& r, Vec<T> b) const {
        const Vec<T> a = Premultiplied ? fadeA(r[0]) : r[0];
        if constexpr (Premultiplied) b = fadeB(b);
        return compose<Op, Premultiplied, T>(a, coverage_by<T>(fadeA(r[1])), b, coverage_by<T>(fadeB(r[2])));
    }
};

// Samples under constant alphas. M - alpha is formed here, and not before: float rows have a float state of their own.
template <class Op, bool Premultiplied, class T> struct Constant {
    static constexpr bool is_long = true; // no need to unroll
    Vec<T> alphaA, alphaB;
    [[gnu::always_inline]] Vec<T> operator()(Vec<T> a, Vec<T> b) const {
        return compose<Op, Premultiplied, T>(a, coverage_by<T>(alphaA), b, coverage_by<T>(alphaB));
    }
};

// Colours times the alpha of their pixel, times that of their plane's alpha plane, times a constant.
template <class T, int Pixel> struct PremultiplyPixels {
    static constexpr int pixel = Pixel;
    [[gnu::always_inline]] Vec<T> operator()(Vec<T>, Vec<T> v) const { return scaled_product<T>(v, coverage_of<T, Pixel>(v).colours); }
};
template <class T> struct PremultiplyPlane {
    [[gnu::always_inline]] Vec<T> operator()(Vec<T> alpha, Vec<T> v) const { return scaled_product<T>(v, factor<T>(alpha)); }
};
template <class T> struct PremultiplyConstant {
    Factor<T> alpha;
    [[gnu::always_inline]] Vec<T> operator()(Vec<T>, Vec<T> v) const { return scaled_product<T>(v, alpha); }
};

} // namespace zeti::alpha
