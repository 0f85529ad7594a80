// SPDX-License-Identifier: Apache-2.0
// Images in the library's own memory, and pictures: what the page shows of them.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#include <zeti/zeti.h>

namespace demo {

template <class T, int Channels> T *allocate(ZetiSize size, int *step);
template <> inline Zet8u *allocate<Zet8u, 1>(ZetiSize s, int *step) { return zetiMalloc_8u_C1(s.width, s.height, step); }
template <> inline Zet8u *allocate<Zet8u, 3>(ZetiSize s, int *step) { return zetiMalloc_8u_C3(s.width, s.height, step); }
template <> inline Zet8u *allocate<Zet8u, 4>(ZetiSize s, int *step) { return zetiMalloc_8u_C4(s.width, s.height, step); }
template <> inline Zet16u *allocate<Zet16u, 1>(ZetiSize s, int *step) { return zetiMalloc_16u_C1(s.width, s.height, step); }
template <> inline Zet16s *allocate<Zet16s, 1>(ZetiSize s, int *step) { return zetiMalloc_16s_C1(s.width, s.height, step); }
template <> inline Zet32s *allocate<Zet32s, 1>(ZetiSize s, int *step) { return zetiMalloc_32s_C1(s.width, s.height, step); }
template <> inline Zet32f *allocate<Zet32f, 1>(ZetiSize s, int *step) { return zetiMalloc_32f_C1(s.width, s.height, step); }
template <> inline Zet32fc *allocate<Zet32fc, 1>(ZetiSize s, int *step) { return zetiMalloc_32fc_C1(s.width, s.height, step); }

// `p` and `step` are what the calls take. Zeros at first.
template <class T, int Channels> class Image {
public:
    explicit Image(ZetiSize extent) : p(allocate<T, Channels>(extent, &step)), size(extent) {
        if (!p) throw std::runtime_error("no memory for an image");
        for (int y = 0; y < size.height; ++y)
            for (int i = 0; i < size.width * Channels; ++i) row(y)[i] = T{};
    }
    Image(Image &&other) noexcept : step(other.step), p(std::exchange(other.p, nullptr)), size(other.size) {}
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;
    ~Image() { zetiFree(p); }

    T *row(int y) const { return reinterpret_cast<T *>(reinterpret_cast<char *>(p) + std::ptrdiff_t{y} * step); }
    T *at(int x, int y) const { return row(y) + x * Channels; }

    int step = 0; // before p, which is made with it
    T *p;
    ZetiSize size;
};

using Grey = Image<Zet8u, 1>;
using Colour = Image<Zet8u, 3>;
using ColourAlpha = Image<Zet8u, 4>;

// An image drawn by value(x, y), with x and y from -1 to 1 over its longer side.
template <class T, class Value> Image<T, 1> drawn(ZetiSize size, Value value) {
    Image<T, 1> image(size);
    const double half = (size.width > size.height ? size.width : size.height) / 2.0;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            image.row(y)[x] = static_cast<T>(value((x - size.width / 2.0) / half, (y - size.height / 2.0) / half));
    return image;
}

// The samples of a one-channel image, each through `convert`.
template <class T, class U, class Convert> Image<T, 1> converted(const Image<U, 1> &source, Convert convert) {
    Image<T, 1> image(source.size);
    for (int y = 0; y < source.size.height; ++y)
        for (int x = 0; x < source.size.width; ++x) image.row(y)[x] = convert(source.row(y)[x]);
    return image;
}

// 8-bit samples without gaps: grey, RGB or RGBA.
struct Picture {
    ZetiSize size;
    int channels;
    std::vector<std::uint8_t> samples;
};

// A region of an image; `image` may be of fewer rows and columns than its own.
template <int Channels> Picture picture(const Image<Zet8u, Channels> &image, ZetiSize region) {
    Picture made{region, Channels, {}};
    for (int y = 0; y < region.height; ++y) made.samples.insert(made.samples.end(), image.row(y), image.row(y) + region.width * Channels);
    return made;
}
template <int Channels> Picture picture(const Image<Zet8u, Channels> &image) { return picture(image, image.size); }

// Other samples as grey; what lies outside 0 to 255 is cut off, what is not a number is black.
template <class T, class Brightness> Picture toned(const Image<T, 1> &image, Brightness brightness) {
    return picture(converted<Zet8u>(image, [&](T sample) {
        const double v = brightness(sample);
        return static_cast<Zet8u>(v >= 255 ? 255 : v > 0 ? v + 0.5 : 0);
    }));
}

// Files; each throws std::runtime_error with a message for the user.
Picture read_picture(const std::string &file); // PNG or JPEG; grey or RGB
void write_png(const std::string &file, const Picture &picture);

} // namespace demo
