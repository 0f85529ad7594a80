// SPDX-License-Identifier: Apache-2.0
// Moments up to third order (Hu 1962): records of sums, the scans that fill them, and the getters that answer from them.
#pragma once

#include <cmath>
#include <cstring>

#include "core/check.h"
#include "core/float_state.h"
#include "core/layout.h"
#include "core/memory.h"
#include "core/view.h"
#include "signal/moments.h"
#include "stats/moments_extended.h"

namespace zeti {

inline constexpr int moment_entries = 16;

// The record behind ZetiMomentState_64f and ZetiMomentState_64s. Packed, as a caller's block may lie at any byte.
template <class V> struct [[gnu::packed]] MomentRecord {
    Zet32s idCtx;       // 33 or 34; cleared on release
    Zet32s hint;        // kept and never read
    Zet32s numChannels; // -1 before the first scan
    Zet32s reserved;
    V moments[3][moment_entries];
};

} // namespace zeti

struct ZetiMomentState_64f : zeti::MomentRecord<Zet64f> {};
struct ZetiMomentState_64s : zeti::MomentRecord<Zet64s> {};
static_assert(sizeof(ZetiMomentState_64f) == 400 && sizeof(ZetiMomentState_64s) == 400);

namespace zeti {

namespace detail {

template <class V> struct MomentForm;
template <> struct MomentForm<Zet64f> {
    using State = ZetiMomentState_64f;
    using Chains = FloatChains;
    using Number = Zet64f; // what getters compute in
    static constexpr Zet32s tag = 33;
};
template <> struct MomentForm<Zet64s> {
    using State = ZetiMomentState_64s;
    using Chains = IntegerChains;
    using Number = Extended;
    static constexpr Zet32s tag = 34;
};
template <class V> using MomentState = typename MomentForm<V>::State;
template <class V> using MomentNumber = typename MomentForm<V>::Number;

template <class V> ZetStatus check_state(const MomentState<V>* state) {
    if (!state) return zetStsNullPtrErr;
    return fails(state->idCtx != MomentForm<V>::tag, zetStsContextMatchErr);
}

template <class V> void init_state(MomentState<V>* state, ZetHintAlgorithm hint) {
    state->idCtx = MomentForm<V>::tag;
    state->hint = hint;
    state->numChannels = -1;
}

} // namespace detail

// --- Records --------------------------------------------------------------------------------------------------------------------------

template <class V> ZetStatus moment_init_alloc(detail::MomentState<V>** ppState, ZetHintAlgorithm hint) {
    if (ZetStatus bad = null(ppState)) return bad;
    auto* const state = reinterpret_cast<detail::MomentState<V>*>(zetsMalloc<Zet8u>(sizeof(detail::MomentState<V>)));
    if (!state) return zetStsMemAllocErr;
    detail::init_state<V>(state, hint);
    *ppState = state;
    return zetStsNoErr;
}

template <class V> ZetStatus moment_free(detail::MomentState<V>* pState) {
    if (ZetStatus bad = detail::check_state<V>(pState)) return bad;
    pState->idCtx = 0; // before the memory goes, for whoever still holds the pointer
    zetsFree(pState);
    return zetStsNoErr;
}

template <class V> ZetStatus moment_state_size(ZetHintAlgorithm, int* pSize) {
    if (ZetStatus bad = null(pSize)) return bad;
    *pSize = sizeof(detail::MomentState<V>);
    return zetStsNoErr;
}

template <class V> ZetStatus moment_init(detail::MomentState<V>* pState, ZetHintAlgorithm hint) {
    if (ZetStatus bad = null(pState)) return bad;
    detail::init_state<V>(pState, hint);
    return zetStsNoErr;
}

// --- Scans ----------------------------------------------------------------------------------------------------------------------------

namespace detail {

// Entry 4 m + n of a channel's table: the sum of p y^m x^n.
template <class Sum> void add_row(Sum* table, const Sum (&s)[4], Sum y) {
    const Sum y2 = y * y;
    for (int n = 0; n < 4; ++n) table[n] += s[n];
    for (int n = 0; n < 3; ++n) table[4 + n] += s[n] * y;
    for (int n = 0; n < 2; ++n) table[8 + n] += s[n] * y2;
    table[12] += s[0] * (y2 * y);
}

template <class Chains, class T, class L> void sum_moments(Src<T> src, ZetiSize roi, typename Chains::Sum (&tables)[3][moment_entries]) {
    using Sum = typename Chains::Sum;
    for (int y = 0; y < roi.height; ++y) {
        const T* p = src.row(y);
        Chains chains[L::colours];
        Vec<Zet64f> x = {0, 1};
        ptrdiff_t i = 0;
        for (; i <= roi.width - 4; i += 4, p += 4 * L::channels, x += 4)
            for (int c = 0; c < L::colours; ++c) chains[c].add(four_samples<L::channels>(p + c), x);
        if (const int rest = static_cast<int>(roi.width - i); rest > 0) {
            for (int c = 0; c < L::colours; ++c) chains[c].add(four_samples<L::channels>(p + c, rest), x);
            i += 4;
        }
        for (int c = 0; c < L::colours; ++c) {
            Sum s[4];
            chains[c].sums(i / 2, s);
            add_row(tables[c], s, static_cast<Sum>(y));
        }
    }
}

} // namespace detail

template <class V, class T, class L> ZetStatus moments(const T* pSrc, int srcStep, ZetiSize roiSize, detail::MomentState<V>* pState) {
    if (ZetStatus bad = first(null(pSrc), detail::check_state<V>(pState), step(srcStep), size(roiSize),
                              fails(srcStep < int64_t{roiSize.width} * L::channels * int64_t{sizeof(T)}, zetStsStrideErr)))
        return bad;
    [[maybe_unused]] const FloatState held;
    using Chains = typename detail::MomentForm<V>::Chains;
    typename Chains::Sum tables[3][moment_entries] = {};
    const auto scan = [&]<class C>(C) { detail::sum_moments<C, T, L>({pSrc, srcStep}, roiSize, tables); };
    if constexpr (std::is_same_v<V, Zet64f> && std::is_integral_v<T>) {
        if (detail::ExactChains::hold_row<T>(roiSize.width)) scan(detail::ExactChains());
        else scan(Chains());
    } else {
        scan(Chains());
    }
    static_assert(sizeof tables == sizeof pState->moments);
    std::memcpy(&pState->moments, &tables, sizeof tables);
    pState->numChannels = L::colours;
    return zetStsNoErr;
}

// --- Getters --------------------------------------------------------------------------------------------------------------------------

namespace detail {

inline bool is_zero(Zet64f v) { return v == 0; }
inline bool is_zero(const Extended& v) { return v.is_zero(); }
inline Zet64f square_root(Zet64f v) { return std::sqrt(v); }

// The sums of one channel, as numbers to compute with.
template <class V> struct MomentSums {
    using N = MomentNumber<V>;
    N t[moment_entries];

    MomentSums(const MomentState<V>* state, int channel) {
        for (int i = 0; i < moment_entries; ++i) t[i] = N(V{state->moments[channel][i]});
    }

    // About the origin at (-x, -y), by the binomial rule.
    N spatial(int m, int n, N x, N y) const {
        constexpr int binomial[4][4] = {{1}, {1, 1}, {1, 2, 1}, {1, 3, 3, 1}};
        N sum = 0;
        for (int i = m; i >= 0; --i)
            for (int j = n; j >= 0; --j) {
                N factor = binomial[m][i] * binomial[n][j];
                for (int k = i; k < m; ++k) factor = factor * y;
                for (int k = j; k < n; ++k) factor = factor * x;
                sum = sum + factor * t[4 * i + j];
            }
        return sum;
    }

    // About the centre of mass, or about the origin of an image without mass.
    N central(int m, int n) const {
        const bool massless = is_zero(t[0]);
        const N x = massless ? N(0.0) : t[1] / t[0], y = massless ? N(0.0) : t[4] / t[0], two = 2, three = 3;
        switch (4 * m + n) {
        case 1: return t[1] - t[0] * x;
        case 2: return t[2] - t[1] * x;
        case 3: return t[3] - three * x * t[2] + two * x * x * t[1];
        case 4: return t[4] - t[0] * y;
        case 5: return t[5] - t[4] * x;
        case 6: return t[6] - two * x * t[5] - y * t[2] + two * x * x * t[4];
        case 8: return t[8] - t[4] * y;
        case 9: return t[9] - two * y * t[5] - x * t[8] + two * y * y * t[1];
        case 12: return t[12] - three * y * t[8] + two * y * y * t[4];
        default: return t[0];
        }
    }
};

// The orders that a getter answers: by 4 m + n, so that a negative order may stand for another pair.
struct Orders {
    int m = 0, n = 0;
    bool known = false;

    Orders(int mOrd, int nOrd) {
        const int64_t index = int64_t{mOrd} * 4 + nOrd;
        if (index < 0 || index > 12) return;
        m = static_cast<int>(index / 4), n = static_cast<int>(index % 4);
        known = m + n <= 3;
    }
};

template <class V> ZetStatus check_channel(const MomentState<V>* state, int channel) {
    return fails(channel < 0 || channel >= state->numChannels, zetStsCOIErr);
}

// The checks of the getters of one moment; then use(orders, sums), unless no moment has these orders.
template <class V, class Use>
ZetStatus get_moment(const MomentState<V>* state, int mOrd, int nOrd, int channel, const void* value, Use use) {
    if (ZetStatus bad = first(null(value), check_state<V>(state))) return bad;
    if (int64_t{mOrd} + nOrd > 3) return zetStsSizeErr;
    if (ZetStatus bad = check_channel<V>(state, channel)) return bad;
    const Orders orders(mOrd, nOrd);
    [[maybe_unused]] const FloatState held;
    return use(orders, MomentSums<V>(state, channel));
}

// Results as the caller wants them.
struct AsFloat {
    Zet64f operator()(Zet64f v) const { return v; }
};
struct AsInteger {
    int scaleFactor;
    Zet64s operator()(const Extended& v) const { return v.truncated(scaleFactor); }
};

// base to the power of half of `halves`: products, and a square root where that is odd.
inline Zet64f half_power(Zet64f base, int64_t halves) {
    Zet64f power = halves % 2 != 0 ? std::sqrt(base) : 1;
    for (int64_t n = (halves < 0 ? -halves : halves) / 2; n > 0; n /= 2, base *= base)
        if (n % 2 != 0) power *= base;
    return halves < 0 ? 1 / power : power;
}

inline bool is_normalizable(Zet64f zeroth) { return std::fabs(zeroth) > 2.220446049250313e-16; }
inline bool is_normalizable(const Extended& zeroth) { return !zeroth.is_zero(); }

// A moment over a power of the zeroth one. Integers: the moment is a whole number before it is divided, and the power is in double precision.
template <class V, class Plain, class Out>
ZetStatus normalized(const MomentState<V>* state, int mOrd, int nOrd, int channel, V* value, Out out, Plain plain) {
    return get_moment<V>(state, mOrd, nOrd, channel, value, [&](Orders orders, const MomentSums<V>& sums) {
        if (!is_normalizable(sums.t[0])) return zetStsMoment00ZeroErr;
        if (!orders.known) return zetStsNoErr;
        const int64_t halves = -(int64_t{mOrd} + nOrd + 2);
        const auto moment = plain(sums, orders);
        if constexpr (std::is_same_v<V, Zet64f>) *value = out(moment * half_power(sums.t[0], halves));
        else *value = out(Extended(to_double(moment.truncated(0)) * half_power(to_double(V{state->moments[channel][0]}), halves)));
        return zetStsNoErr;
    });
}

template <class V, class Out> ZetStatus hu(const MomentState<V>* state, int channel, V* result, Out out) {
    if (ZetStatus bad = first(null(result), check_state<V>(state))) return bad;
    if (ZetStatus bad = check_channel<V>(state, channel)) return bad;
    [[maybe_unused]] const FloatState held;
    const MomentSums<V> sums(state, channel);
    using N = MomentNumber<V>;
    const N mass = sums.t[0], one = 1, three = 3, four = 4;
    if (!is_normalizable(mass)) return zetStsMoment00ZeroErr;
    const N second = one / (mass * mass), third = one / (square_root(mass) * mass * mass);
    const auto v = [&](int p, int q) { return sums.central(q, p) * (p + q == 2 ? second : third); }; // p of x, q of y
    const N v20 = v(2, 0), v02 = v(0, 2), v11 = v(1, 1), v30 = v(3, 0), v12 = v(1, 2), v21 = v(2, 1), v03 = v(0, 3);
    const N a = v30 + v12, b = v21 + v03, c = v30 - three * v12, d = three * v21 - v03, e = v20 - v02;
    const N odd = v12 + v03; // where a would make an invariant: kept on purpose
    const N aabb = a * a - three * b * b, bbaa = three * a * a - b * b;
    result[0] = out(v20 + v02);
    result[1] = out(four * v11 * v11 + e * e);
    result[2] = out(c * c + d * d);
    result[3] = out(a * a + b * b);
    result[4] = out(c * a * (odd * odd - three * b * b) + d * b * bbaa);
    result[5] = out(e * (a * a - b * b) + four * v11 * a * b);
    result[6] = out(d * a * aabb - c * b * bbaa);
    return zetStsNoErr;
}

template <class V, class Out>
ZetStatus spatial(const MomentState<V>* state, int mOrd, int nOrd, int channel, V* value, Out out, ZetiPoint offset) {
    return get_moment<V>(state, mOrd, nOrd, channel, value, [&](Orders o, const MomentSums<V>& sums) {
        if (o.known) *value = out(sums.spatial(o.m, o.n, MomentNumber<V>(V(offset.x)), MomentNumber<V>(V(offset.y))));
        return zetStsNoErr;
    });
}
template <class V, class Out> ZetStatus central(const MomentState<V>* state, int mOrd, int nOrd, int channel, V* value, Out out) {
    return get_moment<V>(state, mOrd, nOrd, channel, value, [&](Orders o, const MomentSums<V>& sums) {
        if (o.known) *value = out(sums.central(o.m, o.n));
        return zetStsNoErr;
    });
}
template <class V, class Out>
ZetStatus normalized_spatial(const MomentState<V>* state, int mOrd, int nOrd, int channel, V* value, Out out, ZetiPoint offset) {
    return normalized<V>(state, mOrd, nOrd, channel, value, out, [=](const MomentSums<V>& sums, Orders o) {
        return sums.spatial(o.m, o.n, MomentNumber<V>(V(offset.x)), MomentNumber<V>(V(offset.y)));
    });
}
template <class V, class Out>
ZetStatus normalized_central(const MomentState<V>* state, int mOrd, int nOrd, int channel, V* value, Out out) {
    return normalized<V>(state, mOrd, nOrd, channel, value, out,
                         [](const MomentSums<V>& sums, Orders o) { return sums.central(o.m, o.n); });
}

// What the scale factor, which only the integer forms have, makes of the results.
inline AsFloat output() { return {}; }
inline AsInteger output(int scaleFactor) { return {scaleFactor}; }

} // namespace detail

template <class V, class... Scale>
ZetStatus spatial_moment(const detail::MomentState<V>* pState, int mOrd, int nOrd, int nChannel, ZetiPoint roiOffset, V* pValue,
                         Scale... scaleFactor) {
    return detail::spatial<V>(pState, mOrd, nOrd, nChannel, pValue, detail::output(scaleFactor...), roiOffset);
}
template <class V, class... Scale>
ZetStatus central_moment(const detail::MomentState<V>* pState, int mOrd, int nOrd, int nChannel, V* pValue, Scale... scaleFactor) {
    return detail::central<V>(pState, mOrd, nOrd, nChannel, pValue, detail::output(scaleFactor...));
}
template <class V, class... Scale>
ZetStatus normalized_spatial_moment(const detail::MomentState<V>* pState, int mOrd, int nOrd, int nChannel, ZetiPoint roiOffset, V* pValue,
                                    Scale... scaleFactor) {
    return detail::normalized_spatial<V>(pState, mOrd, nOrd, nChannel, pValue, detail::output(scaleFactor...), roiOffset);
}
template <class V, class... Scale>
ZetStatus normalized_central_moment(const detail::MomentState<V>* pState, int mOrd, int nOrd, int nChannel, V* pValue,
                                    Scale... scaleFactor) {
    return detail::normalized_central<V>(pState, mOrd, nOrd, nChannel, pValue, detail::output(scaleFactor...));
}
template <class V, class... Scale> ZetStatus hu_moments(const detail::MomentState<V>* pState, int nChannel, V* pHm, Scale... scaleFactor) {
    return detail::hu<V>(pState, nChannel, pHm, detail::output(scaleFactor...));
}

} // namespace zeti
