// SPDX-License-Identifier: Apache-2.0
// Noise from one sequence of 32-bit numbers: subtraction with borrow (Marsaglia and Zaman 1991) added to a congruential sequence. fill() gives
// so many values, at most noise_chunk, in the order of the samples that take them, and writes one more.
#pragma once

#include "core/view.h"
#include "signal/double_math.h"

namespace zeti {

class NoiseGenerator {
public:
    explicit NoiseGenerator(Zet32u seed) : x0_(seed), x1_(x0_ * 69069 + 1013904243), x2_(x1_ * 69069 + 1013904243) {}

    Zet32s next() {
        Zet32u t = x1_ - x2_ + borrow_;
        borrow_ = static_cast<Zet32u>(static_cast<Zet32s>(t) >> 31);
        t -= borrow_ & 18;
        d_ = d_ * 69069 + 1013904243;
        x2_ = x1_, x1_ = x0_, x0_ = t;
        return static_cast<Zet32s>(t + d_);
    }
    Zet32u last() const { return x0_; }

private:
    Zet32u x0_, x1_, x2_, d_ = 1131199209, borrow_ = ~Zet32u{0}; // -1 or 0
};

inline constexpr int noise_chunk = 192; // values at a time; whole pixels, whole pairs

// owniAddRandUniform_Direct_8u_C1IR and its kin.
class UniformNoise {
public:
    UniformNoise(Zet32u seed, double low, double high) : generator_(seed), range_(high - low), middle_((low + high) * 0.5) {}

    void fill(double* out, int n) {
        alignas(16) Zet32s r[noise_chunk + 2];
        for (int i = 0; i < n; ++i) r[i] = generator_.next();
        r[n] = 0; // where the last register holds one value
        for (int i = 0; i < n; i += 2)
            store(out + i,
                  to_double(as_lanes<Zet32s>(_mm_loadl_epi64(reinterpret_cast<__m128i*>(r + i)))) * range_ * 2.3283064365387e-10 + middle_);
    }
    Zet32u last() const { return generator_.last(); }

private:
    NoiseGenerator generator_;
    double range_, middle_;
};

// The polar method (Marsaglia and Bray 1964). Values come in pairs; the second of a pair may wait for the next call.
class GaussNoise {
public:
    GaussNoise(Zet32u seed, double mean, double stdDev) : generator_(seed), mean_(mean), stdDev_(stdDev) {}

    void fill(double* out, int n) {
        out[n] = 0;
        int i = 0;
        if (waits_ && n > 0) out[i++] = second_;
        waits_ = waits_ && n == 0;
        if (i == n) return;
        const int count = (n - i + 1) / 2;
        alignas(16) double u[noise_chunk / 2 + 2], v[noise_chunk / 2 + 2], s[noise_chunk / 2 + 2];
        for (int k = 0; k < count;) {
            u[k] = generator_.next() * 4.656612873077e-10;
            v[k] = generator_.next() * 4.656612873077e-10;
            s[k] = u[k] * u[k] + v[k] * v[k];
            k += (s[k] < 1.0) & (s[k] != 0.0);
        }
        u[count] = v[count] = s[count] = 0.5; // where the last register holds one pair
        for (int k = 0; k < count; k += 2) {
            const Doubles factor = square_root(-2.0 * logarithm(load(s + k)) / load(s + k));
            const Doubles first = load(u + k) * stdDev_ * factor + mean_, second = load(v + k) * stdDev_ * factor + mean_;
            store(u + k, first), store(v + k, second);
        }
        for (int k = 0; k < count; ++k) {
            out[i++] = u[k];
            if (i < n) out[i++] = v[k];
            else second_ = v[k], waits_ = true;
        }
    }
    Zet32u last() const { return generator_.last(); }

private:
    NoiseGenerator generator_;
    double mean_, stdDev_, second_ = 0;
    bool waits_ = false;
};

// n samples, one after the other or the colours of AC4 pixels, plus values: rounded to nearest, ties to even, and saturated; floats are
// added in double precision and rounded once.
template <bool KeepsAlpha, class T> void add_noise(const double* values, T* samples, int n) {
    constexpr bool is_float = std::is_same_v<T, Zet32f>;
    alignas(16) Zet32s rounded[noise_chunk + 2];
    if constexpr (!is_float)
        for (int i = 0; i < n; i += 2) _mm_storel_epi64(reinterpret_cast<__m128i*>(rounded + i), raw(to_int(load(values + i))));
    for (int i = 0; i < n; ++i) {
        T* const sample = samples + (KeepsAlpha ? i / 3 * 4 + i % 3 : i);
        if constexpr (is_float) {
            put(sample, static_cast<Zet32f>(get(sample) + values[i]));
        } else {
            const Zet32s sum = get(sample) + rounded[i];
            put(sample, static_cast<T>(sum < min_of<T> ? min_of<T> : sum > max_of<T> ? max_of<T> : sum));
        }
    }
}

} // namespace zeti
