// SPDX-License-Identifier: Apache-2.0
// Channels of a pixel in another order, kernels of block_row(): owniSwap_8u_C3I_A6, owniSwap_8u_210_C3I_A6 and the rest. A channel's
// samples lie at one distance from where they go, so a register of results is the row, read at as many distances as there are channels, under masks.
#pragma once

#include "signal/channels.h"

namespace zeti {

// Pixels of N samples of `Size` bytes to pixels of as many; `Keeps`: channels whose entry is negative stay as they are.
template <int Size, int N, bool Keeps> class SwapPixels {
    static constexpr int registers = N == 3 ? 3 : 4, phases = N == 3 ? 3 : 1; // of a block; until the masks repeat

public:
    static constexpr int pixels = 16 * registers / (N * Size), sources = 1, targets = 1, source_bytes = N * Size, target_bytes = N * Size;
    static constexpr int before = 1, behind = 1, unread = 0;
    static constexpr bool keeps = Keeps;

    explicit SwapPixels(const int* order) {
        for (int c = 0; c < N; ++c) {
            const bool kept = order[c] < 0;
            distance_[c] = kept ? 0 : (order[c] - c) * Size;
            for (int k = 0; k < phases; ++k) {
                const __m128i lanes_of_c = detail::load_raw(lanes.of_channel[c] + 16 * k);
                mask_[c][k] = kept ? _mm_setzero_si128() : lanes_of_c;
                if (kept) kept_ = _mm_or_si128(kept_, lanes_of_c);
            }
        }
    }
    [[gnu::always_inline]] void operator()(const Zet8u* const* src, Zet8u* const* dst) const {
        for (int k = 0; k < registers; ++k) {
            Zet8u* const to = dst[0] + 16 * k;
            __m128i all = Keeps ? _mm_and_si128(kept_, detail::load_raw(to)) : _mm_setzero_si128();
            for (int c = 0; c < N; ++c)
                all = _mm_or_si128(all, _mm_and_si128(mask_[c][k % phases], detail::load_raw(src[0] + 16 * k + distance_[c])));
            detail::store_raw(to, all);
        }
    }

private:
    struct Lanes {
        alignas(16) Zet8u of_channel[N][48];
        constexpr Lanes() : of_channel() {
            for (int c = 0; c < N; ++c)
                for (int i = 0; i < 48; ++i) of_channel[c][i] = i / Size % N == c ? 255 : 0;
        }
    };
    static constexpr Lanes lanes{};

    ptrdiff_t distance_[N];
    __m128i mask_[N][phases], kept_{};
};

} // namespace zeti
