// SPDX-License-Identifier: Apache-2.0
// Image views: a base pointer and a row step in bytes. Nothing is assumed about the alignment of either.
#pragma once

#include <cstring>

#include "core/base.h"

namespace zeti {

// One sample, wherever it lies: the caller's rows may start at any byte.
template <class T> T get(const T* p) {
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}
template <class T> void put(T* p, const T& value) { std::memcpy(p, &value, sizeof value); }

template <class T> struct Src {
    const T* pointer;
    ptrdiff_t step;

    const T* row(ptrdiff_t y) const { return reinterpret_cast<const T*>(reinterpret_cast<const char*>(pointer) + y * step); }
};

template <class T> struct Dst {
    T* pointer;
    ptrdiff_t step;

    T* row(ptrdiff_t y) const { return reinterpret_cast<T*>(reinterpret_cast<char*>(pointer) + y * step); }
    operator Src<T>() const { return {pointer, step}; }
};

// The same image seen as samples of another type, such as a complex image as twice as many real samples.
template <class U, class T> Src<U> as(Src<T> v) { return {reinterpret_cast<const U*>(v.pointer), v.step}; }
template <class U, class T> Dst<U> as(Dst<T> v) { return {reinterpret_cast<U*>(v.pointer), v.step}; }

// Rows and the samples in each. Wider than ZetiSize, so that width times channels cannot wrap.
struct Extent {
    ptrdiff_t width;
    ptrdiff_t height;
};

inline Extent samples(ZetiSize roi, int perPixel) { return {ptrdiff_t{roi.width} * perPixel, roi.height}; }

} // namespace zeti
