// SPDX-License-Identifier: Apache-2.0
// Kernels of extreme values: per lane the best of all rows so far, or its start value. NaNs are beaten by everything, so that the result
// does not depend on where they stand.
#pragma once

#include "signal/reduce.h"

namespace zeti {

// The two directions. A sample that does not compare is not taken; nothing beats the limit.
struct Greatest {
    template <class T> static constexpr T start = std::numeric_limits<T>::lowest();
    template <class T> static constexpr T limit = max_of<T>;
    template <class T> static Vec<T> of(Vec<T> x, Vec<T> best) { return max<T>(x, best); }
    template <class T> static bool better(T a, T b) { return a > b; }
};
struct Least {
    template <class T> static constexpr T start = max_of<T>;
    template <class T> static constexpr T limit = std::numeric_limits<T>::lowest();
    template <class T> static Vec<T> of(Vec<T> x, Vec<T> best) { return min<T>(x, best); }
    template <class T> static bool better(T a, T b) { return a < b; }
};

template <class Side, class Term, class T, int Channels> class Extreme {
public:
    using Value = ValueOf<Term, T>;
    static constexpr int channels = Channels, places = places_of<Channels>;

    Extreme() {
        for (auto& v : best_) v = splat(start);
    }
    template <int p, int N> void add(const Registers<T, N>& x, const Registers<T, N>& y) {
        take<p>(Term::of(x)), take<second + p>(Term::of(y));
    }
    template <int p, int N> void add_rest(const Registers<T, N>& x, int n) {
        take<p>(select<Value>(detail::first_lanes<Value>(n), Term::of(x), splat(start)));
    }

    // The best of each channel.
    void values(Value (&result)[Channels]) const {
        Value samples[period * lanes<Value>];
        for (int r = 0; r < period; ++r) {
            Vec<Value> v = best_[r];
            for (int m = r + period; m < registers; m += period) v = Side::template of<Value>(best_[m], v);
            store(samples + r * lanes<Value>, v);
        }
        for (int c = 0; c < Channels; ++c) result[c] = start;
        for (int i = 0; i < period * lanes<Value>; ++i)
            if (Side::better(samples[i], result[i % Channels])) result[i % Channels] = samples[i];
    }
    // Goes on as if every lane had seen these.
    void restart(const Value (&from)[Channels]) {
        Value samples[period * lanes<Value>];
        for (int i = 0; i < period * lanes<Value>; ++i) samples[i] = from[i % Channels];
        for (int m = 0; m < registers; ++m) best_[m] = load(samples + m % period * lanes<Value>);
    }
    // Some lane is not what it was in the other.
    bool differs(const Extreme& other) const {
        bool differs = false;
        for (int m = 0; m < registers; ++m) differs |= any(as_lanes<Zet32s>(best_[m]) != as_lanes<Zet32s>(other.best_[m]));
        return differs;
    }
    // Each of the first channels has seen the limit, as some lane of its own tells.
    template <int Colours> bool complete() const {
        uint64_t seen = 0; // a bit per byte
        for (int m = 0; m < registers; ++m)
            seen |= static_cast<uint64_t>(_mm_movemask_epi8(raw(best_[m] == Side::template limit<Value>)))
                    << (register_bytes * (m % period));
        for (int c = 0; c < Colours; ++c)
            if ((seen & lanes_of_channel(c)) == 0) return false;
        return true;
    }

private:
    static constexpr Value start = std::is_same_v<Term, Plain> ? Side::template start<Value> : Value{0}; // of magnitudes: 0
    static constexpr int period = Channels == 3 ? 3 : 1;
    // Comparisons of floats take their time: two sets of registers, so that they do not wait for one another.
    static constexpr int second = std::is_floating_point_v<Value> ? places : 0, registers = second + places;
    Vec<Value> best_[registers];

    template <int m> void take(Vec<Value> v) { best_[m] = Side::template of<Value>(v, best_[m]); }
    static constexpr uint64_t lanes_of_channel(int c) {
        uint64_t bits = 0;
        for (int i = 0; i < period * register_bytes; ++i)
            if (i / int{sizeof(Value)} % Channels == c) bits |= uint64_t{1} << i;
        return bits;
    }
};

// Both directions at once.
template <class T, int Channels> struct Extremes {
    static constexpr int channels = Channels, places = places_of<Channels>;
    Extreme<Least, Plain, T, Channels> least;
    Extreme<Greatest, Plain, T, Channels> greatest;

    template <int p> void add(const Registers<T, 1>& x, const Registers<T, 1>& y) {
        least.template add<p>(x, y), greatest.template add<p>(x, y);
    }
    template <int p> void add_rest(const Registers<T, 1>& x, int n) {
        least.template add_rest<p>(x, n), greatest.template add_rest<p>(x, n);
    }
    template <int Colours> bool complete() const { return least.template complete<Colours>() && greatest.template complete<Colours>(); }
};

// The largest magnitude of 32s, in double precision, where that of -2147483648 has room.
struct LargestMagnitude32s {
    static constexpr int channels = 1, places = places_of<1>;
    Vec<Zet64f> best[2 * places] = {};

    template <int p> void add(const Registers<Zet32s, 1>& x, const Registers<Zet32s, 1>& y) { add_rest<p>(x, 0), add_rest<p>(y, 0); }
    template <int p> void add_rest(const Registers<Zet32s, 1>& x, int) {
        const auto wide = widen_to_double<Zet32s>(x[0]);
        best[2 * p] = max<Zet64f>(magnitude<Zet64f>(wide.low), best[2 * p]);
        best[2 * p + 1] = max<Zet64f>(magnitude<Zet64f>(wide.high), best[2 * p + 1]);
    }
    void values(Zet64f (&result)[1]) const {
        const Vec<Zet64f> v = max<Zet64f>(max<Zet64f>(best[0], best[1]), max<Zet64f>(best[2], best[3]));
        result[0] = v[0] > v[1] ? v[0] : v[1];
    }
    using Value = Zet64f;
};

// The better of two samples (zetsMaxEvery_I, zetsMinEvery_I); the second where the two do not compare, or are zeros.
template <class Side, class T> struct Every {
    Vec<T> operator()(Vec<T> a, Vec<T> b) const { return Side::template of<T>(a, b); }
};

} // namespace zeti
