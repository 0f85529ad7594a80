// SPDX-License-Identifier: Apache-2.0
// The harness of all element-wise members: a family describes itself, and what all of them promise is checked here.
//
// A family derives from Elementwise<T> and brings
//     call(images, use)              hands the arguments of one call to `use`, mostly through one(), two() or two_or_constants()
//     sample(a, b, c, warning)       the rule for one sample of channel c; or, where channels mix,
//     pixel(a, b, d, warning)        the rule for one pixel, d being what the destination holds
//     order()                        the statuses of its checks, the first checked first
//     own_faults(faults, status, argument, behind)   what else may be wrong with an argument that has so many others behind it
// and what it does otherwise than the base says. b is the image in place, and of one operand or a constant the only one.
#pragma once

#include <array>
#include <map>
#include <tuple>

#include "tests/support/checksum.h"
#include "tests/support/faults.h"
#include "tests/support/float_state.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/member.h"
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

    std::string family() const { return operation; }
    std::string name() const {
        return "zeti" + operation + "_" + token<T>() + "_" + layout.name + (inPlace ? "IR" : "R") + (scales ? "Sfs" : "");
    }
    std::string parameters() const { return "scale " + std::to_string(s) + ", constants from " + text(constants[0]); }
    bool checks_steps() const { return true; }
    bool forks() const { return false; }
    bool exact() const { return true; } // else within 2^-21 of a finite result
    std::vector<ZetStatus> order() const { return {zetStsNullPtrErr, zetStsSizeErr, zetStsStepErr}; }
    std::vector<int> unknown() const { return {}; } // operators, types or modes that are none
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

template <class F, class T, class R, class Use>
void with_operands(const F& f, const Image<T>& a, const Image<T>& b, const Image<R>& d, Use use) {
    const int height = f.layout.planar() ? d.height / 4 : d.height;
    const auto with = [&](auto pa, auto pb, auto pd) {
        use(Operands<decltype(pa), decltype(pd)>{pa, a.step, pb, b.step, pd, d.step, {d.width, height}});
    };
    if constexpr (F::planes)
        if (f.layout.planar()) {
            std::array<const T*, 4> planesOfA, planesOfB;
            std::array<R*, 4> planesOfD;
            const auto plane = [&](const auto& image, int c) {
                return reinterpret_cast<T*>(reinterpret_cast<char*>(image.data()) + std::ptrdiff_t{c} * height * image.step);
            };
            for (int c = 0; c < 4; ++c) planesOfA[c] = plane(a, c), planesOfB[c] = plane(b, c), planesOfD[c] = plane(d, c);
            const T *const *const pa = planesOfA.data(), *const *const pb = planesOfB.data();
            R* const* const pd = planesOfD.data();
            return with(pa, pb, pd);
        }
    const T *const pa = a.data(), *const pb = b.data();
    with(pa, pb, d.data());
}

// Samples are computed one after the other, each when those before it are written.
template <class F, class T, class R> void compute(const F& f, const T* a, const T* b, R* d, ZetStatus& warning) {
    if constexpr (requires { f.pixel(a, b, d, warning); }) f.pixel(a, b, d, warning);
    else
        for (int c = 0; c < f.layout.colours; ++c) d[c] = f.sample(a[c], b[c], c, warning);
}

// Calls f and compares everything with the rule. False after a failure.
template <class F, class T, class R>
bool verify(const F& f, const Image<T>& first, const Image<T>& second, Image<R>& d, unsigned state = plain_state, Checksum* sum = nullptr) {
    const PixelLayout &in = f.layout, &out = F::masks ? pixel_layouts[0] : in;
    const int height = in.planar() ? d.height / 4 : d.height;
    ZetStatus expected = zetStsNoErr; // that of the first row which warns
    for (int y = 0; y < height; ++y) {
        ZetStatus warning = zetStsNoErr;
        for (int x = 0; x < d.width; ++x) {
            T a[4], b[4];
            R result[4];
            const auto each = [&](const PixelLayout& l, auto use) { // channel, row, sample
                for (int c = 0; c < l.channels; ++c) l.planar() ? use(c, c * height + y, x) : use(c, y, x * l.channels + c);
            };
            each(in, [&](int c, int row, int i) { a[c] = first.at(row, i), b[c] = second.at(row, i); });
            each(out, [&](int c, int row, int i) { result[c] = d.at(row, i); });
            compute(f, a, b, result, warning);
            each(out, [&](int c, int row, int i) { d.expect(row, i, result[c]); });
        }
        if (expected == zetStsNoErr) expected = warning;
    }

    const auto failures = [] { return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count(); };
    const int before = failures(), asked = standin_thread_queries();
    ZetStatus status = zetStsNoErr;
    with_operands(f, first, second, d, [&](const auto& operands) {
        f.call(operands, [&](auto... a) { status = under_state(state, [&] { return call_member(f.name(), a...); }); });
    });

    if (sum && f.exact()) sum->add(status), sum->add(d);
    const auto close = [&](R got, R want) {
        if constexpr (std::is_same_v<R, Zet32f>)
            if (!f.exact() && std::isfinite(want)) return std::fabs(got - want) <= std::fabs(want) * 0x1p-21f;
        return same(got, want);
    };
    const void* const written = &d;
    const std::string told = f.name() + ", " + f.parameters();
    EXPECT_TRUE(d.intact(close)) << told;
    EXPECT_EQ(status, expected) << told;
    EXPECT_TRUE((&first == written || first.intact()) && (&second == written || second.intact())) << told << ": writes to a source";
    EXPECT_TRUE(f.forks() || standin_thread_queries() == asked) << told << ": asks for threads";
    return failures() == before;
}

// A call on random images in any of the ways that members must bear: the destination is a source, rows have gaps, go upwards or
// are all the same, the caller rounds otherwise, takes denormals for zeros or traps.
template <class F> bool check(F& f, Random& r, int width, int height, Checksum* sum = nullptr) {
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
    return verify(f, *first, *second, d, state, sum);
}

// --- Sweeps over the members of a family, which each_member(use) enumerates ---------------------------------------

// Every width and every scale factor, on any number of threads.
template <class Members> void sweep(Members each_member) {
    std::map<std::string, Checksum> sums;
    each_member([&](auto f) {
        Random r(f.name());
        const auto good = [&](int width, int s) {
            f.s = s;
            standin_set_threads(r.pick({1, 1, 1, 1, 2, 3, 7, 16, 0, -1}));
            return check(f, r, width, r.between(1, 4), &sums[f.family()]);
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
    for (const auto& [family, sum] : sums) EXPECT_TRUE(sum.is_known(family));
    standin_reset();
}

// The faults of a status among the arguments of a call: null pointers, those of planes too; steps, which stand behind pointers; both sides
// of a size, or one of them where the other has its own place; values of an enumeration that are none.
template <std::size_t I = 0, class F, class... A>
void add_faults(F& f, Faults& faults, ZetStatus status, bool width, bool height, std::tuple<A...>& call) {
    if constexpr (I < sizeof...(A)) {
        auto& argument = std::get<I>(call);
        using This = std::tuple_element_t<I, std::tuple<A...>>;
        using Before = std::tuple_element_t<I == 0 ? 0 : I - 1, std::tuple<A...>>;
        using Pointee = std::remove_const_t<std::remove_pointer_t<This>>;
        if constexpr (std::is_pointer_v<This>) {
            if (status == zetStsNullPtrErr) faults.null(argument);
            if constexpr (std::is_pointer_v<Pointee>)
                for (int c = 0; status == zetStsNullPtrErr && c < 4; ++c) faults.null(const_cast<Pointee&>(argument[c]));
        } else if constexpr (std::is_same_v<This, ZetiSize>) {
            if (width) faults.side(argument.width);
            if (height) faults.side(argument.height);
        } else if constexpr (std::is_enum_v<This>) {
            const bool others = status == zetStsNullPtrErr || status == zetStsSizeErr || status == zetStsStepErr;
            for (int i = 0; !others && i < static_cast<int>(f.unknown().size()); ++i)
                faults.add(status, argument, {static_cast<This>(f.unknown()[i])});
        } else if constexpr (std::is_same_v<This, int> && std::is_pointer_v<Before>) {
            if (status == zetStsStepErr) faults.step(argument);
        }
        constexpr int behind = sizeof...(A) - 1 - I;
        if constexpr (requires { f.own_faults(faults, status, argument, behind); }) f.own_faults(faults, status, argument, behind);
        add_faults<I + 1>(f, faults, status, width, height, call);
    }
}

template <class Members> void check_order(Members each_member) {
    each_member([](auto f) {
        Random r(f.name());
        const int rows = f.layout.planar() ? 8 : 2, channels = f.layout.planar() ? 1 : f.layout.channels;
        Image<typename decltype(f)::type> a(r, 3, rows, channels), b(r, 3, rows, channels);
        Image<typename decltype(f)::Result> d(r, 3, rows, f.masks ? 1 : channels);
        f.prepare(r, a, b);
        const auto check = [&](auto... arguments) {
            std::tuple call(arguments...);
            Faults faults;
            const auto order = f.order();
            for (auto status = order.begin(); status != order.end(); ++status) {
                const bool size = *status == zetStsSizeErr, first = std::find(order.begin(), status, *status) == status,
                           last = std::find(status + 1, order.end(), *status) == order.end();
                add_faults(f, faults, *status, size && first, size && last, call);
            }
            faults.expect_order(
                f.name(),
                [&] { // denormals are no zeros to a check
                    return under_state(0x9FC0, [&] { return std::apply(member<ZetStatus(decltype(arguments)...)>(f.name()), call); });
                },
                [&] { return d.intact(); });
        };
        for (const int s : {0, 17, -20}) {
            if (s != 0 && !f.scales) continue;
            f.s = s;
            with_operands(f, a, b, d, [&](const auto& operands) { f.call(operands, check); });
        }
    });
}

// Where a source and the destination overlap within a row, the row is computed from left to right: every shift of either source.
template <class Members> void check_overlap(Members each_member) {
    each_member([](auto f) {
        using T = typename decltype(f)::type;
        if (f.layout.planar() || !f.exact()) return;
        Random r(f.name());
        const int n = f.layout.channels;
        for (int shift = -20; shift <= 44; ++shift)
            for (const int width : {5, 13, 37})
                for (const bool secondOverlaps : {false, true}) {
                    Image<T> memory(600, 1, 1, 0);
                    memory.fill(r, Random::mixed);
                    f.prepare(r, memory, memory);
                    f.s = r.pick({0, 1, 3, -1});
                    if (f.scales && f.s == 0) f.constants.fill(number<T>(7)); // by 0 and 1 it may be a copy, which is no sequence
                    const int d = 100, near = d - shift, far = 300;
                    const int a = secondOverlaps ? far : near, b = f.inPlace ? d : secondOverlaps ? near : far;
                    std::vector<T> expected(600);
                    for (int i = 0; i < 600; ++i) expected[i] = memory.at(0, i);
                    ZetStatus warning = zetStsNoErr;
                    for (int x = 0; x < width; ++x) compute(f, &expected[a + x * n], &expected[b + x * n], &expected[d + x * n], warning);
                    for (int i = 0; i < 600; ++i) memory.expect(0, i, expected[i]);
                    T* const p = memory.data();
                    const Operands<const T*, T*> operands{p + a, 1 << 20, p + b, 1 << 20, p + d, 1 << 20, {width, 1}};
                    f.call(operands, [&](auto... arguments) { call_member(f.name(), arguments...); });
                    const testing::AssertionResult good = memory.intact();
                    EXPECT_TRUE(good) << f.name() << ", width " << width << ", shifted by " << shift << ", " << f.parameters();
                    if (!good) return;
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
    Random r(f.name());
    const int channels = f.layout.channels, pixelBytes = F::masks ? 1 : channels * static_cast<int>(sizeof(typename F::type));
    const int height = 211, width = (16 << 20) / height / pixelBytes + 1;
    Image<typename F::type> a(r, width, height, channels), b(r, width, height, channels);
    Image<typename F::Result> d(r, width, height, F::masks ? 1 : channels, {1}, F::unit);
    const Image<typename F::type>* second = &b;
    if constexpr (!F::masks)
        if (f.inPlace) second = &d;
    f.prepare(r, a, b);
    verify(f, a, *second, d);
}

} // namespace test
