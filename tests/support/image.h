// SPDX-License-Identifier: Apache-2.0
// Guarded images. The image lies flush against an unreadable page, behind its last row or before its first, and beside it
// lies a shadow: the bytes that the whole mapping is expected to hold. A reference loop writes into the shadow; what else the
// library touches, be it in the gap between rows, above, below or in a channel that it must leave alone, differs from it.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "tests/support/samples.h"

namespace test {

enum class Fence { behind, before };

template <class T> class Image {
public:
    const int width, height, channels; // in pixels
    const int step;                    // in bytes; negative: the rows go up from the first, 0: all rows are the same

    // `offset` bytes lie between the fence and the image. Steps shorter than a row are for sources only.
    Image(int w, int h, int c, int rowStep, Fence fence = Fence::behind, int offset = 0)
        : width(w), height(h), channels(c), step(rowStep), page_(sysconf(_SC_PAGESIZE)) {
        const long last = static_cast<long>(h - 1) * step, low = std::min(0L, last), high = std::max(0L, last) + row_bytes();
        size_ = (high - low + offset + 2 * 64 + page_ - 1) / page_ * page_;
        base_ = static_cast<unsigned char*>(mmap(nullptr, size_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) + page_;
        if (mprotect(base_, size_, PROT_READ | PROT_WRITE) != 0) std::abort();
        first_ = (fence == Fence::behind ? size_ - offset - (high - low) : offset) - low;
        for (long i = 0; i < size_; ++i) base_[i] = static_cast<unsigned char>(0xC5 ^ i * 37);
        remember();
    }
    // Any offset, any gap, and a step that points in one of the given directions.
    Image(Random& r, int w, int h, int c, std::initializer_list<int> directions = {1})
        : Image(w, h, c, (w * c * static_cast<int>(sizeof(T)) + r.pick({0, 1, r.between(0, 70)})) * r.pick(directions),
                r.chance(2) ? Fence::behind : Fence::before, r.pick({0, r.between(0, 15)})) {
        fill(r, r.pattern());
    }
    Image(const Image&) = delete;
    ~Image() { munmap(base_ - page_, size_ + 2 * page_); }

    T* data() { return reinterpret_cast<T*>(base_ + first_); }
    T* data() const { return reinterpret_cast<T*>(base_ + first_); }
    int row_samples() const { return width * channels; }

    // Sample i of row y, counted over all channels: as it is, and as it ought to be.
    T at(int y, int i) const { return load<T>(base_ + position(y, i)); }
    T expected(int y, int i) const { return load<T>(&shadow_[position(y, i)]); }
    void expect(int y, int i, T v) { std::memcpy(&shadow_[position(y, i)], &v, sizeof v); }
    void set(int y, int i, T v) { std::memcpy(base_ + position(y, i), &v, sizeof v), expect(y, i, v); }

    void fill(Random& r, Random::Pattern p) {
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < row_samples(); ++i) set(y, i, r.sample<T>(p, i));
    }
    void remember() { shadow_.assign(base_, base_ + size_); } // what is there is what ought to be
    void restore() { std::memcpy(base_, shadow_.data(), size_); }

    // Everything is as it ought to be; `close` judges samples whose bits differ.
    template <class Close = bool (*)(T, T)> testing::AssertionResult intact(Close close = same<T>) const {
        if (std::memcmp(base_, shadow_.data(), size_) == 0) return testing::AssertionSuccess();
        for (long p = 0; p < size_; ++p) {
            if (base_[p] == shadow_[p]) continue;
            const Place at = place(p);
            if (!at.inside) return testing::AssertionFailure() << "stray write " << at.text;
            const T got = this->at(at.y, at.i), want = expected(at.y, at.i);
            if (!close(got, want))
                return testing::AssertionFailure() << "row " << at.y << ", pixel " << at.i / channels << ", channel " << at.i % channels << ": " << text(got)
                                                   << ", not " << text(want) << "  (" << width << " x " << height << ", step " << step << ", "
                                                   << reinterpret_cast<std::uintptr_t>(data()) % 64 << " past a 64-byte boundary)";
        }
        return testing::AssertionSuccess();
    }

private:
    struct Place {
        bool inside;
        int y, i;
        std::string text;
    };
    long row_bytes() const { return static_cast<long>(row_samples()) * sizeof(T); }
    long position(int y, int i) const { return first_ + static_cast<long>(y) * step + static_cast<long>(i) * sizeof(T); }

    Place place(long p) const {
        int y = step < 0 ? height - 1 : 0; // the last row in memory that starts at or before p
        for (int other = 0; other < height; ++other)
            if (position(other, 0) <= p && position(other, 0) > position(y, 0)) y = other;
        const long behind = p - position(y, 0), gap = behind - row_bytes();
        if (behind < 0) return {false, y, 0, std::to_string(-behind) + " bytes above the image"};
        if (gap < 0) return {true, y, static_cast<int>(behind / sizeof(T)), {}};
        const bool lowest = y == (step < 0 ? 0 : height - 1) || step == 0;
        return {false, y, 0, std::to_string(gap + 1) + " bytes " + (lowest ? "below the image" : "into the gap behind row " + std::to_string(y))};
    }

    long page_, size_, first_;
    unsigned char* base_;
    std::vector<unsigned char> shadow_;
};

} // namespace test
