// SPDX-License-Identifier: Apache-2.0
// Composition under alpha as plainly as it can be said, one sample at a time, and pictures whose alpha stands anywhere.
#pragma once

#include <array>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/member.h"

namespace test {

template <class T> inline constexpr T full = std::is_floating_point_v<T> ? T(1) : std::numeric_limits<T>::max();

template <class T> T clamped(std::int64_t v) {
    return static_cast<T>(std::clamp<std::int64_t>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T> T product(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a * b;
    } else {
        const auto magnitude = [](std::int64_t v) { return static_cast<std::uint64_t>(v < 0 ? -v : v); };
        constexpr int n = std::numeric_limits<T>::digits;
        const std::uint64_t t = magnitude(a) * magnitude(b);
        const auto quotient = static_cast<std::int64_t>((t + 1 + (t >> n)) >> n);
        return clamped<T>((a < 0) != (b < 0) ? -quotient : quotient);
    }
}
template <class T> T sum(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) return a + b;
    else return clamped<T>(std::int64_t{a} + b);
}
template <class T> T rest(T alpha) {
    if constexpr (std::is_floating_point_v<T>) return 1 - alpha;
    else return clamped<T>(std::int64_t{full<T>} - alpha);
}

// One sample of the result; alpha itself is never premultiplied.
template <class T> T composed(int type, bool isAlpha, T a, T alphaA, T b, T alphaB) {
    if (type < zetAlphaOverPremul && !isAlpha) a = product(a, alphaA), b = product(b, alphaB);
    switch (type % 6) {
    case zetAlphaOver: return sum(a, product(b, rest(alphaA)));
    case zetAlphaIn: return product(a, alphaB);
    case zetAlphaOut: return product(a, rest(alphaB));
    case zetAlphaATop: return sum(product(a, alphaB), product(b, rest(alphaA)));
    case zetAlphaXor: return sum(product(a, rest(alphaB)), product(b, rest(alphaA)));
    default: return sum(a, b);
    }
}

struct Layout {
    const char* name;
    int channels, alpha; // alpha: which channel it is, -1 for none
    bool planar() const { return name[1] == 'P'; }
};
inline constexpr Layout C1{"C1", 1, -1}, C3{"C3", 3, -1}, C4{"C4", 4, -1}, AC1{"AC1", 2, 1}, AC4{"AC4", 4, 3}, AP4{"AP4", 4, 3};

// An image of a layout; planes lie one below the other.
template <class T> struct Picture {
    Layout layout;
    int width, height;
    Image<T> image;
    std::array<T*, 4> planes{};

    Picture(Random& r, Layout l, int w, int h, std::initializer_list<int> directions)
        : layout(l), width(w), height(h), image(r, w, l.planar() ? 4 * h : h, l.planar() ? 1 : l.channels, directions) {
        for (int c = 0; c < 4; ++c)
            planes[c] = reinterpret_cast<T*>(reinterpret_cast<char*>(image.data()) + static_cast<std::ptrdiff_t>(c) * h * image.step);
        if (r.chance(3)) return;
        each([&](int x, int y, int c) { // alpha of mattes, floats of a photograph
            if (c == l.alpha && r.chance(2)) set(x, y, c, r.chance(2) ? full<T> : T(0));
            else if (std::is_floating_point_v<T>) set(x, y, c, static_cast<T>(r.between(0, 1000)) / 999);
        });
    }
    template <class Use> void each(Use use) const {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < layout.channels; ++c) use(x, y, c);
    }
    T at(int x, int y, int c) const { return image.at(row(y, c), sample(x, c)); }
    void set(int x, int y, int c, T v) { image.set(row(y, c), sample(x, c), v); }
    void expect(int x, int y, int c, T v) { image.expect(row(y, c), sample(x, c), v); }

private:
    int row(int y, int c) const { return layout.planar() ? c * height + y : y; }
    int sample(int x, int c) const { return layout.planar() ? x : x * layout.channels + c; }
};

template <class... A> ZetStatus call(const std::string& name, A... arguments) { return member<ZetStatus(A...)>(name)(arguments...); }

} // namespace test
