// SPDX-License-Identifier: Apache-2.0
// The harness of all element-wise members: a family describes itself, and what all of them promise is checked here.
//
// A family derives from Elementwise<T> and brings
//     call(images, use)              hands the arguments of one call to `use`, mostly through one(), two() or two_or_constants()
//     sample(a, b, c, warning)       the rule for one sample of channel c; or, where channels mix,
//     pixel(a, b, d, warning)        the rule for one pixel, d being what the destination holds
//     order(faults, arguments)       what may be wrong with a call, the first checked first
// and what it does otherwise than the base says. b is the image in place, and of one operand or a constant the only one.
#pragma once

#include <array>

#include "tests/support/faults.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/zetcore_standin.h"

namespace test {

template <class P, class D> struct Operands { // pointers to samples, or to the pointers of four planes
    P a;
    int aStep;
    P b;
    int bStep;
    D d;
    int dStep;
    ZetiSize roi;
};

template <class T> struct Elementwise {
    using type = T;
    using Result = T;
    static constexpr bool masks = false;  // the result is one byte per pixel
    static constexpr bool planes = false; // there are planar layouts
    static constexpr int unit = 1;        // of what a step has beyond the row, in bytes

    std::string operation;
    PixelLayout layout;
    bool inPlace = false;
    bool constant = false; // instead of the first image
    bool scales = false;   // by the factor s
    int s = 0;
    std::array<T, 4> constants{};

    std::string name() const {
        return "zeti" + operation + "_" + token<T>() + "_" + layout.name + (inPlace ? "IR" : "R") + (scales ? "Sfs" : "");
    }
    bool checks_steps() const { return true; }
    bool forks() const { return false; }
    bool mixes() const { return true; } // the channels of a pixel(), which otherwise are computed one after the other
    bool exact() const { return true; } // else within 2^-21 of a finite result
    void order(Faults& faults, const Arguments& call) const { faults.null(call).size(call).step(call); }
    void prepare(Random& r, Image<T>&, Image<T>&) {
        for (T& c : constants) c = r.sample<T>(Random::mixed, 0);
    }

    template <class I, class Use, class... Rest> void one(const I& i, Use use, Rest... rest) const {
        inPlace ? use(i.d, i.dStep, i.roi, rest...) : use(i.b, i.bStep, i.d, i.dStep, i.roi, rest...);
    }
    template <class I, class Use, class... Rest> void two(const I& i, Use use, Rest... rest) const {
        inPlace ? use(i.a, i.aStep, i.d, i.dStep, i.roi, rest...) : use(i.a, i.aStep, i.b, i.bStep, i.d, i.dStep, i.roi, rest...);
    }
    template <class V, class I, class Use, class... Rest> void with_value(V value, const I& i, Use use, Rest... rest) const {
        inPlace ? use(value, i.d, i.dStep, i.roi, rest...) : use(i.b, i.bStep, value, i.d, i.dStep, i.roi, rest...);
    }
    template <class V, class I, class Use, class... Rest> // by value on C1, else a pointer to one per channel
    void with_constants(const std::array<V, 4>& values, const I& i, Use use, Rest... rest) const {
        layout.channels == 1 ? with_value(values[0], i, use, rest...) : with_value(values.data(), i, use, rest...);
    }
    template <class I, class Use, class... Rest> void two_or_constants(const I& i, Use use, Rest... rest) const {
        constant ? with_constants(constants, i, use, rest...) : two(i, use, rest...);
    }
};

// Half of the images give no cause for a warning except in alpha.
template <class T, class Bad> void appease(Random& r, Image<T>& image, const PixelLayout& l, T good, T worst, Bad bad) {
    if (r.chance(2)) return;
    for (const auto [y, i] : image.samples()) {
        if (i % l.channels >= l.colours) image.set(y, i, worst);
        else if (bad(image.at(y, i))) image.set(y, i, good);
    }
}

// --- One call -----------------------------------------------------------------------------------------------------

template <class F, class P, class D> ZetStatus run(const F& f, const Operands<P, D>& operands) {
    ZetStatus status{};
    f.call(operands, [&](auto... arguments) { status = call_member(f.name(), arguments...); });
    return status;
}

template <class F, class T, class R> ZetStatus run(const F& f, const Image<T>& a, const Image<T>& b, const Image<R>& d) {
    if constexpr (F::planes)
        if (f.layout.planar()) {
            const int height = d.height / 4;
            const auto planes = [&](const auto& image) {
                return std::array{image.row(0), image.row(height), image.row(2 * height), image.row(3 * height)};
            };
            auto ofA = planes(a), ofB = planes(b), ofD = planes(d);
            return run(f,
                       Operands<const T* const*, R* const*>{ofA.data(), a.step, ofB.data(), b.step, ofD.data(), d.step, {d.width, height}});
        }
    return run(f, Operands<const T*, R*>{a.data(), a.step, b.data(), b.step, d.data(), d.step, {d.width, d.height}});
}

// Calls f and compares everything with the rule. The images may overlap: samples are computed one after the other, each when those before
// it are written. False after a failure.
template <class F, class T, class R>
bool verify(const F& f, const Image<T>& first, const Image<T>& second, Image<R>& d, unsigned state = plain_state) {
    const PixelLayout &in = f.layout, &out = F::masks ? pixel_layouts[0] : in;
    const int height = in.planar() ? d.height / 4 : d.height;
    constexpr bool by_sample = requires(ZetStatus & status) { f.sample(T{}, T{}, 0, status); };
    const int together = by_sample || !f.mixes() ? 1 : 4; // channels
    ZetStatus expected = zetStsNoErr;                     // that of the first row which warns
    for (int y = 0; y < height; ++y) {
        ZetStatus warning = zetStsNoErr;
        for (int x = 0; x < d.width; ++x) {
            for (int part = 0; part < in.channels; part += together) {
                T a[4] = {}, b[4] = {};
                R result[4] = {};
                const auto each = [&](const PixelLayout& l, auto use) { // channel, row, sample
                    for (int c = part; c < std::min(part + together, l.channels); ++c)
                        l.planar() ? use(c, c * height + y, x) : use(c, y, x * l.channels + c);
                };
                each(in, [&](int c, int row, int i) { a[c] = first.expected(row, i), b[c] = second.expected(row, i); });
                each(out, [&](int c, int row, int i) { result[c] = d.expected(row, i); });
                if constexpr (!by_sample) f.pixel(a, b, result, warning);
                else if (part < in.colours) result[part] = f.sample(a[part], b[part], part, warning);
                each(out, [&](int c, int row, int i) { d.expect(row, i, result[c]); });
            }
        }
        if (expected == zetStsNoErr) expected = warning;
    }

    const int asked = standin.thread_queries;
    const ZetStatus status = under_state(state, [&] { return run(f, first, second, d); });
    const auto close = [&](R got, R want) {
        if constexpr (std::is_same_v<R, Zet32f>)
            if (!f.exact() && std::isfinite(want)) return std::fabs(got - want) <= std::fabs(want) * 0x1p-21f;
        return same(got, want);
    };
    const auto whole = [&](const auto& image) { return image.memory() == d.memory() || image.intact(); };
    const bool good =
        d.intact(close) && whole(first) && whole(second) && status == expected && (f.forks() || standin.thread_queries == asked);
    EXPECT_TRUE(good) << f.name() << " by " << f.s << " gives " << status << ", not " << expected << "; " << d.intact(close).message();
    return good;
}

// A call on random images in any of the ways that members must bear: the destination is a source, rows have gaps, go upwards or
// are all the same, the caller rounds otherwise, takes denormals for zeros or traps.
template <class F> bool check(F& f, Random& r, int width, int height) {
    using T = typename F::type;
    using R = typename F::Result;
    const bool planar = f.layout.planar(), gaps = !r.chance(4), anyStep = !f.checks_steps() && gaps;
    const int shared = F::masks ? 0 : r.between(0, 3); // 1: with the first source, 2: with the second
    const bool inOrder = f.inPlace || shared == 1 || shared == 2 || (f.forks() && ownGetNumThreads() != 1);
    const int rows = planar ? 4 * height : height, channels = planar ? 1 : f.layout.channels;
    const int up = anyStep ? -1 : 1, flat = anyStep && !planar ? 0 : 1; // directions; rows on top of each other need an order
    Image<T> a(r, width, rows, channels, {1, up, flat}, gaps * F::unit), b(r, width, rows, channels, {1, up, flat}, gaps * F::unit);
    Image<R> d(r, width, rows, F::masks ? 1 : channels, {1, up, inOrder ? 1 : flat}, gaps * F::unit);
    Image<T>*first = &a, *second = &b;
    if constexpr (!F::masks) {
        if (shared == 1) first = &d;
        if (shared == 2 || f.inPlace) second = &d;
    }
    f.prepare(r, *first, *second);
    const unsigned state = r.chance(2) ? plain_state : odd_states[r.between(0, 7)];
    return verify(f, *first, *second, d, state);
}

// --- Sweeps over the members of a family, which each_member(use) enumerates ---------------------------------------

// Every width and every scale factor, on any number of threads.
template <class Members> void sweep(Members each_member) {
    each_member([&](auto f) {
        Random r(f.name());
        const auto good = [&](int width, int s) {
            f.s = s;
            standin.threads = r.pick({1, 1, 1, 1, 2, 3, 7, 16, 0, -1});
            return check(f, r, width, r.between(1, 4));
        };
        for (int s = -40; f.scales && s <= 70; ++s)
            if (!good(r.between(1, 40), s)) return;
        for (const int s : {INT_MIN, INT_MIN + 1, -1 << 16, -1024, -256, -128, -65, 96, 128, 256, 1023, 1 << 16, INT_MAX})
            if (f.scales && !good(r.between(1, 40), s)) return;
        std::vector<int> widths = {47, 48, 49, 63, 64, 65, 95, 97, 127, 129, 200, 1023, 3071, 3072, 3073};
        for (int width = 1; width <= 40; ++width) widths.push_back(width);
        for (const int width : widths)
            for (const int s : {0, 1, 4, -2, -50})
                if ((f.scales || s >= 0) && !good(width, s)) return;
    });
    standin.reset();
}

template <class Members> void check_orders(Members each_member) {
    each_member([](auto f) {
        Random r(f.name());
        const int rows = f.layout.planar() ? 8 : 2, channels = f.layout.planar() ? 1 : f.layout.channels;
        Image<typename decltype(f)::type> a(r, 3, rows, channels), b(r, 3, rows, channels);
        Image<typename decltype(f)::Result> d(r, 3, rows, f.masks ? 1 : channels);
        f.prepare(r, a, b);
        for (const int s : {0, 17, -20}) {
            if (s != 0 && !f.scales) continue;
            f.s = s;
            check_order([&] { run(f, a, b, d); }, [&](Faults& faults, const Arguments& call) { f.order(faults, call); },
                        [&] { return d.intact(); });
        }
    });
}

// Where a source and the destination overlap within a row, the row is computed from left to right: every shift of either source.
template <class Members> void check_overlap(Members each_member) {
    each_member([](auto f) {
        using T = typename decltype(f)::type;
        if (f.layout.planar() || !f.exact()) return;
        Random r(f.name());
        for (int shift = -20; shift <= 44; ++shift)
            for (const int width : {5, 13, 37})
                for (const bool secondOverlaps : {false, true}) {
                    Image<T> memory(600, 1, 1, 1 << 20);
                    memory.fill(r, Random::mixed);
                    f.prepare(r, memory, memory);
                    f.s = r.pick({0, 1, 3, -1});
                    if (f.scales && f.s == 0) f.constants.fill(number<T>(7)); // by 0 and 1 it may be a copy, which is no sequence
                    Image<T> d(memory, 100, width, f.layout.channels);
                    const Image<T> near(memory, 100 - shift, width, f.layout.channels), far(memory, 300, width, f.layout.channels);
                    if (!verify(f, secondOverlaps ? far : near, f.inPlace ? d : secondOverlaps ? near : far, d)) return;
                }
    });
}

// All pairs of the given values, the second along the rows and the first down the rows or as the constant of a row.
template <class F, class T> bool check_pairs(F f, const std::vector<T>& firsts, const std::vector<T>& seconds) {
    const int n = f.layout.channels, width = static_cast<int>(seconds.size()) / n, all = static_cast<int>(firsts.size());
    const int calls = f.constant ? all : 1, rows = f.constant ? 1 : all, step = width * n * static_cast<int>(sizeof(T));
    Image<T> a(width, rows, n, step), b(width, rows, n, step);
    Image<typename F::Result> d(width, rows, F::masks ? 1 : n, step);
    for (const auto [y, i] : a.samples()) a.set(y, i, firsts[y]), b.set(y, i, seconds[i]);
    for (int call = 0; call < calls; ++call) {
        if (f.constant) f.constants.fill(firsts[call]);
        if (!verify(f, a, b, d)) return false;
    }
    return true;
}
template <class T> std::vector<T> all_values() {
    std::vector<T> v;
    for (int i = std::numeric_limits<T>::min(); i <= std::numeric_limits<T>::max(); ++i) v.push_back(static_cast<T>(i));
    return v;
}

// From 16 MiB on rows are taken by pieces, and leave by streaming stores unless something stays in the destination.
template <class F> void check_large(F f) {
    using T = typename F::type;
    using R = typename F::Result;
    Random r(f.name());
    const int channels = f.layout.channels, results = F::masks ? 1 : channels, height = 211,
              width = (16 << 20) / height / (results * int{sizeof(R)}) + 1;
    Image<T> a(r, width, height, channels), b(r, width, height, channels);
    Image<R> d(r, width, height, results, {1}, F::unit);
    f.prepare(r, a, b);
    if constexpr (F::masks) verify(f, a, b, d);
    else verify(f, a, f.inPlace ? d : b, d);
}

} // namespace test
