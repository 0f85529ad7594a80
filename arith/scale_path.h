// SPDX-License-Identifier: Apache-2.0
// Which scale path a call of Add, Sub or Mul takes, and from which size that path forks. Tables of tuned constants: each differs
// from what a uniform rule would give, on purpose.
#pragma once

#include "signal/arithmetic.h"

namespace zeti {

enum class Path { unscaled, half, down, up, bound, zero };

struct ScaleRange {
    int zeroAbove; // a larger s gives 0 everywhere
    int boundAt;   // this s or a lower one leaves only the sign of the exact result
};

inline constexpr int in_the_row = min_of<int>; // the row kernel itself handles every low s

template <class Op, class T> inline constexpr ScaleRange scale_range = {};
template <> inline constexpr ScaleRange scale_range<Add, Zet8u> = {9, -8};
template <> inline constexpr ScaleRange scale_range<Sub, Zet8u> = {8, -8};
template <> inline constexpr ScaleRange scale_range<Mul, Zet8u> = {16, -8};
template <> inline constexpr ScaleRange scale_range<Add, Zet16s> = {16, -16};
template <> inline constexpr ScaleRange scale_range<Sub, Zet16s> = {16, -16};
template <> inline constexpr ScaleRange scale_range<Mul, Zet16s> = {30, -15};
template <> inline constexpr ScaleRange scale_range<Add, Zet16u> = {17, -16};
template <> inline constexpr ScaleRange scale_range<Sub, Zet16u> = {16, in_the_row};
template <> inline constexpr ScaleRange scale_range<Mul, Zet16u> = {32, in_the_row};
template <> inline constexpr ScaleRange scale_range<Add, Zet16sc> = {16, -16};
template <> inline constexpr ScaleRange scale_range<Sub, Zet16sc> = {16, -16};
template <> inline constexpr ScaleRange scale_range<Mul, Zet16sc> = {31, -16};
template <> inline constexpr ScaleRange scale_range<Add, Zet32sc> = {32, -31};
template <> inline constexpr ScaleRange scale_range<Sub, Zet32sc> = {32, -31};
template <> inline constexpr ScaleRange scale_range<Mul, Zet32sc> = {63, -32};

constexpr Path path_of(ScaleRange range, int s) {
    if (s > range.zeroAbove) return Path::zero;
    if (s <= range.boundAt) return Path::bound;
    return s == 0 ? Path::unscaled : s == 1 ? Path::half : s > 0 ? Path::down : Path::up;
}

// --- Forking ------------------------------------------------------------------------------------------------------

// The least width plus height (in samples of the C1 form) from which a path forks; 0 forks always.
struct ForkFrom {
    int unscaled = 0, half = 0, down = 0;

    constexpr bool at(Path path, Extent e) const {
        const ptrdiff_t sum = e.width + e.height;
        switch (path) {
        case Path::unscaled: return sum >= unscaled;
        case Path::half: return sum >= half;
        case Path::down: return sum >= down;
        default: return true;
        }
    }
};

enum class Form { images, images_I, constant, constant_I };

template <class Op, class T, Form F> inline constexpr ForkFrom fork_from = {};
template <> inline constexpr ForkFrom fork_from<Add, Zet8u, Form::images_I> = {.down = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet16s, Form::images> = {.unscaled = 256, .half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet32f, Form::images> = {.unscaled = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet8u, Form::images_I> = {.down = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet16s, Form::images> = {.unscaled = 256, .half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet16s, Form::images_I> = {.half = 256, .down = 128};
template <> inline constexpr ForkFrom fork_from<Sub, Zet32f, Form::images> = {.unscaled = 256};
template <> inline constexpr ForkFrom fork_from<Mul, Zet8u, Form::images> = {.half = 128, .down = 256};
template <> inline constexpr ForkFrom fork_from<Mul, Zet8u, Form::images_I> = {.half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Mul, Zet16s, Form::images> = {.half = 128, .down = 128};
template <> inline constexpr ForkFrom fork_from<Mul, Zet16s, Form::images_I> = {.half = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet8u, Form::constant_I> = {.half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet16s, Form::constant> = {.unscaled = 256, .half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet16s, Form::constant_I> = {.half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Add, Zet32f, Form::constant> = {.unscaled = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet8u, Form::constant_I> = {.half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet16s, Form::constant> = {.unscaled = 256, .half = 256, .down = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet16s, Form::constant_I> = {.half = 256};
template <> inline constexpr ForkFrom fork_from<Sub, Zet32f, Form::constant> = {.unscaled = 256};
template <> inline constexpr ForkFrom fork_from<Mul, Zet8u, Form::constant_I> = {.down = 128};
template <> inline constexpr ForkFrom fork_from<Mul, Zet16s, Form::constant_I> = {.half = 256, .down = 256};

// 16u and the complex types never fork, nor does AC4; C3 and C4 constants fork on every path.
template <class T> inline constexpr bool forks = std::is_same_v<T, Zet8u> || std::is_same_v<T, Zet16s> || std::is_same_v<T, Zet32f>;

} // namespace zeti
