// SPDX-License-Identifier: Apache-2.0
// Sample types at run time. Samples are doubles here, which hold every value of every type: what is written in terms of them is compiled
// once, not once a type.
#pragma once

#include "tests/support/image.h"

namespace test {

enum class Type { u8, s8, u16, s16, u32, s32, f32 };
template <class T> inline constexpr Type type_of = is_float<T> ? Type::f32 : static_cast<Type>(sizeof(T) / 2 * 2 + std::is_signed_v<T>);

template <class Use> auto with_type(Type t, Use use) {
    switch (t) {
    case Type::u8: return use(Zet8u{});
    case Type::s8: return use(Zet8s{});
    case Type::u16: return use(Zet16u{});
    case Type::s16: return use(Zet16s{});
    case Type::u32: return use(Zet32u{});
    case Type::s32: return use(Zet32s{});
    default: return use(Zet32f{});
    }
}

inline std::string token(Type t) {
    return with_type(t, []<class T>(T) { return token<T>(); });
}
inline int bytes_of(Type t) {
    return with_type(t, []<class T>(T) { return int{sizeof(T)}; });
}
inline double lowest(Type t) {
    return with_type(t, []<class T>(T) { return static_cast<double>(std::numeric_limits<T>::lowest()); });
}
inline double highest(Type t) {
    return with_type(t, []<class T>(T) { return static_cast<double>(std::numeric_limits<T>::max()); });
}
inline double load(Type t, const void* p) {
    return with_type(t, [=]<class T>(T) { return static_cast<double>(load<T>(p)); });
}
inline void store(Type t, void* p, double v) {
    with_type(t, [=]<class T>(T) {
        const T sample = static_cast<T>(v);
        std::memcpy(p, &sample, sizeof sample);
    });
}
inline double random_sample(Random& r, Type t, Random::Pattern p, int i) {
    return with_type(t, [&]<class T>(T) { return static_cast<double>(r.sample<T>(p, i)); });
}
// A whole number, within the bounds of the type; the least for NaN.
inline double saturated(Type t, double v) { return v >= highest(t) ? highest(t) : v > lowest(t) ? v : lowest(t); }

// An image of any type.
class Samples : public Image<Zet8u> {
public:
    const Type type;
    const int perRow; // samples

    Samples(Type t, int w, int h, int c, int rowStep, Fence fence = Fence::behind, int offset = 0)
        : Image(w, h, c * bytes_of(t), rowStep, fence, offset), type(t), perRow(w * c) {}
    // Any step, offset and samples.
    Samples(Random& r, Type t, int w, int h, int c, std::initializer_list<int> directions = {1}, int unit = 1)
        : Samples{t, w, h, c, any_step(r, w * c * bytes_of(t), directions, unit), any_fence(r), any_offset(r)} {
        fill(r, r.pattern());
    }
    Places samples() const { return {height, perRow}; }
    void fill(Random& r, Random::Pattern p) {
        for (const auto [y, i] : samples()) put(y, i, random_sample(r, type, p, i));
    }
    double value(int y, int i) const { return load(type, row(y) + i * bytes_of(type)); }
    void put(int y, int i, double v) { write(y, i, v, &Image::set); }
    void copy(const Samples& from, int y, int i) { // of the same size
        for (int b = i * bytes_of(type); b < (i + 1) * bytes_of(type); ++b) set(y, b, from.at(y, b));
    }
    // One NaN is as good as another.
    void want(int y, int i, double v) { write(y, i, std::isnan(v) && std::isnan(value(y, i)) ? value(y, i) : v, &Image::expect); }
    double wanted(int y, int i) const { return load(type, expected_at(y, i * bytes_of(type))); }

private:
    void write(int y, int i, double v, void (Image::*to)(int, int, Zet8u)) {
        Zet8u bytes[4];
        store(type, bytes, v);
        for (int b = 0; b < bytes_of(type); ++b) (this->*to)(y, i * bytes_of(type) + b, bytes[b]);
    }
};

} // namespace test
