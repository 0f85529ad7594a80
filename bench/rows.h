// SPDX-License-Identifier: Apache-2.0
// The rows of the benchmark. A folder of the library has a file here that lists its operations:
//
//     static const bool listed = (row("Add_8u_C1RSfs", "scale=1", source<Zet8u>(1), source<Zet8u>(1), destination<Zet8u>(1), size, 1), true);
//
// A row is a member of the public C API by its name without `zeti`, what sets the row apart from others of that member, and the
// arguments. Images are given by their channels; they say how large they are and how many bytes of a pixel a call reads and writes.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>

#include "zeti/zeti.h"

namespace bench {

// Memory for the images of one row at one size, laid out one behind the other with the steps that zetiMalloc gives. All rows
// use the same block: what differs between them is not where their pages lie.
class Arena {
public:
    Arena(ZetiSize imageSize, size_t bytes);
    char* take(size_t bytes);
    char* image(int pixelBytes, int* step);

    const ZetiSize size;

private:
    char* next_;
};

// Samples that stay in range however often a call is repeated in place.
template <class T> T sample(size_t i) {
    if constexpr (requires { T::re; }) return {sample<decltype(T::re)>(2 * i), sample<decltype(T::im)>(2 * i + 1)};
    else if constexpr (std::is_floating_point_v<T>) return 1;
    else return static_cast<T>(1 + i % 64);
}

// --- Arguments: `stored` and `touched` bytes per pixel, and bind(), which makes the C arguments ----------------------------

template <class T, int Touches> struct Image { // one image that is read or written, or both
    static constexpr bool writes = !std::is_const_v<T>, reads = !writes || Touches == 2;
    int channels;
    int stored() const { return channels * int{sizeof(T)}; }
    int touched() const { return Touches * stored(); }
    auto bind(Arena& arena) const {
        using Sample = std::remove_const_t<T>;
        int step = 0;
        Sample* const p = reinterpret_cast<Sample*>(arena.image(stored(), &step));
        const size_t count = size_t(step) * arena.size.height / sizeof(T);
        for (size_t i = 0; i < count; ++i) p[i] = sample<Sample>(i);
        return std::tuple<T*, int>(p, step);
    }
};
template <class T> Image<const T, 1> source(int channels) { return {channels}; }
template <class T> Image<T, 1> destination(int channels) { return {channels}; }
template <class T> Image<T, 2> both(int channels) { return {channels}; }

template <class T, int N> struct Planes { // T is const for a source
    static constexpr bool writes = !std::is_const_v<T>, reads = !writes;
    std::array<T*, N> planes{};
    int stored() const { return N * int{sizeof(T)}; }
    int touched() const { return stored(); }
    auto bind(Arena& arena) {
        int step = 0;
        for (T*& plane : planes) std::tie(plane, step) = Image<T, 1>{1}.bind(arena);
        return std::tuple<T* const*, int>(planes.data(), step);
    }
};

// Pixels of the mask in runs of `run`, set and unset by turns; 0 sets all.
struct Mask {
    static constexpr bool reads = true;
    int run;
    static int stored() { return 1; }
    static int touched() { return 1; }
    auto bind(Arena& arena) const {
        int step = 0;
        Zet8u* const p = reinterpret_cast<Zet8u*>(arena.image(1, &step));
        for (size_t i = 0; i < size_t(step) * arena.size.height; ++i) p[i] = run == 0 || i / run % 2 == 0;
        return std::tuple<const Zet8u*, int>(p, step);
    }
};

template <class T> struct Constants { // one per channel
    std::array<T, 4> values;
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena&) const { return std::tuple<const T*>(values.data()); }
};

inline constexpr struct Size {
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena& arena) const { return std::tuple<ZetiSize>(arena.size); }
} size;

template <class T> struct Value {
    T value;
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena&) const { return std::tuple<T>(value); }
};
template <class T> struct Results { // one per channel
    std::array<T, 4> values;
    static int stored() { return 0; }
    static int touched() { return 0; }
    auto bind(Arena&) { return std::tuple<T*>(values.data()); }
};

template <class A> auto argument(A a) {
    if constexpr (requires { a.touched(); }) return a;
    else return Value<A>{a};
}

// --- Rows -----------------------------------------------------------------------------------------------------------------

struct Row {
    std::string name;
    int stored = 0, touched = 0;                             // bytes per pixel
    std::function<std::function<void(int)>(Arena&)> prepare; // gives the function that makes so many calls
    bool reads = true, writes = true;                        // images
    bool byRows = false;                                     // regions of larger images
};

void add(Row row);
void* member(const std::string& name);

namespace detail {
template <class A> constexpr bool reads() {
    if constexpr (requires { A::reads; }) return A::reads;
    else return false;
}
template <class A> constexpr bool writes() {
    if constexpr (requires { A::writes; }) return A::writes;
    else return false;
}
template <class A> constexpr bool by_rows() {
    return requires { A::byRows; };
}
template <class A> bool is_destination(const A& a) {
    if constexpr (requires { a.channels; }) return a.channels == 4 && A::writes && !A::reads;
    else return false;
}
template <class... C> auto function(const std::string& name, std::type_identity<std::tuple<C...>>) {
    return reinterpret_cast<ZetStatus (*)(C...)>(member("zeti" + name));
}
} // namespace detail

template <class... A> void row(const std::string& name, const std::string& detail, A... plain) {
    const auto arguments = std::make_tuple(argument(plain)...);
    const auto sum = [&](auto part) { return std::apply([&](const auto&... a) { return (0 + ... + part(a)); }, arguments); };
    const auto prepare = [=](Arena& arena) -> std::function<void(int)> {
        const auto kept = std::make_shared<std::tuple<decltype(argument(plain))...>>(arguments); // planes and constants live here
        const auto c = std::apply([&](auto&... a) { return std::tuple_cat(a.bind(arena)...); }, *kept);
        const auto f = detail::function(name, std::type_identity<std::remove_const_t<decltype(c)>>());
        return [f, c, kept](int calls) { // which keeps them alive
            for (int i = 0; i < calls; ++i) std::apply(f, c);
        };
    };
    // AC4 reads its destination, whose alpha it keeps; operations on alpha itself write it.
    const bool keepsAlpha = name.find("_AC4R") != std::string::npos && name.find("Alpha") == std::string::npos;
    const auto kept = [&](const auto& a) { return keepsAlpha && detail::is_destination(a) ? a.stored() : 0; };
    add({detail.empty() ? name : name + "/" + detail, sum([](const auto& a) { return a.stored(); }),
         sum([&](const auto& a) { return a.touched() + kept(a); }), prepare, (... || detail::reads<decltype(argument(plain))>()),
         (... || detail::writes<decltype(argument(plain))>()), (... || detail::by_rows<decltype(argument(plain))>())});
}

} // namespace bench
