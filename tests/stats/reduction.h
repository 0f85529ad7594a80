// SPDX-License-Identifier: Apache-2.0
// What the tests of reductions share: a member of one image or two with its results, its call, and its results by a plain loop.
#pragma once

#include "tests/support/faults.h"
#include "tests/support/layouts.h"
#include "tests/support/typed.h"
#include "tests/support/zetcore_standin.h"

namespace test {

struct Reduction {
    std::string family; // Sum, NormDiff_L2, MaxIndx, ...
    Type type;
    PixelLayout layout;
    ZetHintAlgorithm hint = zetAlgHintNone;

    bool has(const char* part) const { return family.find(part) != std::string::npos; }
    bool counts() const { return family == "CountInRange"; }
    bool sums() const { return has("Sum") || has("Mean") || has("_L"); }
    bool norm() const { return has("Norm"); }
    bool two() const { return has("NormDiff") || has("NormRel"); }
    bool hinted() const { return type == Type::f32 && sums(); }
    bool stepped() const { return norm() || counts(); } // checks its steps
    std::string name() const { return "zeti" + family + "_" + token(type) + "_" + layout.name + "R"; }
};

inline std::vector<Reduction> reductions() {
    std::vector<Reduction> all = {{"Norm_Inf", Type::s32, pixel_layouts[0]}};
    for (const PixelLayout& l : pixel_layouts)
        for (const Type t : {Type::u8, Type::u16, Type::s16, Type::f32}) {
            for (const char* const family : {"Sum", "Mean", "Max", "Min", "MinMax", "MaxIndx", "MinIndx", "Norm_Inf", "Norm_L1", "Norm_L2",
                                             "NormDiff_Inf", "NormDiff_L1", "NormDiff_L2", "NormRel_Inf", "NormRel_L1", "NormRel_L2"}) {
                all.push_back({family, t, l});
                if (all.back().hinted()) all.push_back({family, t, l, zetAlgHintAccurate});
            }
            if (bytes_of(t) != 2 && l.name != std::string("C4")) all.push_back({"CountInRange", t, l});
        }
    return all;
}

// Up to three arrays of results, with marks behind what a member gives.
struct Results {
    alignas(8) Zet8u bytes[3][40];
    Results() { std::memset(bytes, 0xC5, sizeof bytes); }
    bool operator==(const Results& other) const { return std::memcmp(bytes, other.bytes, sizeof bytes) == 0; }
    template <class V> V* at(int array) { return reinterpret_cast<V*>(bytes[array]); }
    template <class V> void put(int array, int channel, V v) { std::memcpy(bytes[array] + channel * sizeof v, &v, sizeof v); }
    Zet64f value(int channel) const { return load<Zet64f>(bytes[0] + channel * sizeof(Zet64f)); }
};

struct Call {
    const Reduction m;
    const void *a, *b;
    int aStep, bStep;
    ZetiSize roi;
    Results results;
    alignas(4) Zet8u bounds[2][16] = {};

    Call(const Reduction& given, const void* first, int step1, const void* second, int step2, ZetiSize size)
        : m(given), a(first), b(second), aStep(step1), bStep(step2), roi(size) {}
    Call(const Call&) = delete;

    double bound(int upperOne, int channel) const { return load(m.type, bounds[upperOne] + channel * bytes_of(m.type)); }
    ZetStatus run() {
        return with_type(m.type, [&]<class T>(T) {
            const auto *p = static_cast<const T*>(a), *q = static_cast<const T*>(b);
            const auto *low = reinterpret_cast<const T*>(bounds[0]), *high = reinterpret_cast<const T*>(bounds[1]);
            const auto one = [&](auto... rest) { return call_member(m.name(), p, aStep, roi, rest...); };
            const auto pair = [&](auto... rest) { return call_member(m.name(), p, aStep, q, bStep, roi, rest...); };
            auto* const values = results.at<Zet64f>(0);
            auto *const best = results.at<T>(0), *const other = results.at<T>(1);
            auto *const counts = results.at<Zet32s>(0), *const x = results.at<Zet32s>(1), *const y = results.at<Zet32s>(2);
            if (m.two()) return m.hinted() ? pair(values, m.hint) : pair(values);
            if (m.sums() || m.norm()) return m.hinted() ? one(values, m.hint) : one(values);
            if (m.counts()) return m.layout.channels == 1 ? one(counts, *low, *high) : one(counts, low, high);
            return m.has("Indx") ? one(best, x, y) : m.has("MinMax") ? one(best, other) : one(best);
        });
    }
};

// The results of a call that must succeed.
template <class T>
Results called(const std::string& family, const PixelLayout& l, const T* a, const T* b, int step, ZetiSize roi,
               ZetHintAlgorithm hint = zetAlgHintNone) {
    Call call({family, type_of<T>, l, hint}, a, step, b, step, roi);
    EXPECT_EQ(call.run(), zetStsNoErr) << call.m.name();
    return call.results;
}

// The value of the last colour channel of rows that are one sample apart, all samples a, and b.
template <class T> Zet64f of_constants(const std::string& family, const PixelLayout& l, int width, int height, T a, T b = 0) {
    const std::size_t n = static_cast<std::size_t>(width) * l.channels + height;
    return called(family, l, std::vector<T>(n, a).data(), std::vector<T>(n, b).data(), sizeof(T), {width, height}).value(l.colours - 1);
}

// What the samples of one channel, or differences of two, come to. Exact as long as it fits a double.
struct Plain {
    double sum = 0, largest = 0, magnitudes = 0, squares = 0, least, greatest;
    int leastRow = 0, greatestRow = 0;

    explicit Plain(Type t) : least(highest(t)), greatest(lowest(t)) {}
    void take(double v, int y) {
        sum += v, magnitudes += std::fabs(v), squares += v * v;
        if (std::fabs(v) > largest) largest = std::fabs(v);
        if (v < least) least = v, leastRow = y;
        if (v > greatest) greatest = v, greatestRow = y;
    }
    double norm(const Reduction& m) const { return m.has("Inf") ? largest : m.has("L1") ? magnitudes : squares; } // before any root
};

inline double norm_of(const Reduction& m, const Plain& a, const Plain& b, const Plain& difference, int width) {
    const bool squares = m.has("L2"), several = m.layout.channels > 1;
    const double above = (m.two() ? difference : a).norm(m), below = b.norm(m);
    if (m.name() == "zetiNorm_Inf_16s_C1R" && width >= 8 && above == 32768) return 32767;
    if (!m.has("Rel") || below == 0) return squares && !(m.has("Rel") && several && m.type == Type::u16) ? std::sqrt(above) : above;
    const bool ofRoots = several && m.type != Type::u16 && (m.type != Type::f32 || m.layout.channels == 3 || m.hint == zetAlgHintAccurate);
    return !squares ? above / below : ofRoots ? std::sqrt(above) / std::sqrt(below) : std::sqrt(above / below);
}

// The results of a call, and its status.
inline Results expected(const Call& call, const Samples& a, const Samples& b, ZetStatus& status) {
    const Reduction& m = call.m;
    const int channels = m.layout.channels;
    Results results;
    std::vector<Plain> ofA(4, Plain(m.type)), ofB = ofA, differences = ofA;
    int counts[4] = {};
    for (const auto [y, i] : a.samples()) {
        const int c = i % channels;
        const double v = a.value(y, i), w = m.two() ? b.value(y, i) : 1;
        ofA[c].take(v, y), ofB[c].take(w, y), differences[c].take(v - w, y);
        counts[c] += v >= call.bound(0, c) && v <= call.bound(1, c);
    }
    const bool zero =
        m.has("Rel") && std::any_of(ofB.begin(), ofB.begin() + m.layout.colours, [](const Plain& p) { return p.largest == 0; });
    status = zero ? zetStsDivByZero : zetStsNoErr;
    if (zero)
        for (Plain& p : ofB) p = Plain(m.type); // one denominator decides for all
    if (zero && m.has("Inf") && bytes_of(m.type) == 2 && channels > 1) return results;
    for (int c = 0; c < m.layout.colours; ++c) {
        const Plain& p = ofA[c];
        if (m.norm()) results.put(0, c, norm_of(m, p, ofB[c], differences[c], a.width));
        else if (m.has("Sum")) results.put(0, c, p.sum);
        else if (m.has("Mean"))
            results.put(0, c, channels == 1 ? p.sum / (1.0 * a.width * a.height) : p.sum * (1.0 / (1.0 * a.width * a.height)));
        else if (m.counts()) results.put(0, c, counts[c]);
        else
            with_type(m.type, [&]<class T>(T) {
                const double best = m.has("Max") && !m.has("MinMax") ? p.greatest : p.least;
                results.put(0, c, static_cast<T>(best));
                if (m.has("MinMax")) results.put(1, c, static_cast<T>(p.greatest));
                if (!m.has("Indx")) return;
                const int y = m.has("Max") ? p.greatestRow : p.leastRow;
                int x = 0; // of the first such sample in the row; 0 where there is none, as in rows of NaN
                while (x < a.width && a.value(y, x * channels + c) != best) ++x;
                results.put(1, c, x % a.width), results.put(2, c, y);
            });
    }
    return results;
}

} // namespace test
