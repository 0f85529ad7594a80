// SPDX-License-Identifier: Apache-2.0
// Guarded images. The image lies flush against an unreadable page, behind its last row or before its first, and beside it
// lies a shadow: the bytes that the whole mapping is expected to hold. A reference loop writes into the shadow; what else the
// library touches, be it in the gap between rows, above, below or in a channel that it must leave alone, differs from it.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/support/samples.h"

namespace test {

enum class Fence { behind, before };

// Rows of so many bytes, and some units between them unless a unit is nothing.
inline int any_step(Random& r, int row, std::initializer_list<int> directions, int unit = 1) {
    const int gap = unit ? unit * r.pick({0, 1, r.between(0, 70)}) : 0;
    return (row + gap) * r.pick(directions);
}
inline Fence any_fence(Random& r) { return r.pick({Fence::behind, Fence::before}); }
inline int any_offset(Random& r) { return r.pick({0, r.between(0, 15)}); } // from the fence

struct Places { // (0, 0), (0, 1), ...: rows of so many samples
    struct Iterator {
        int perRow, at;
        std::pair<int, int> operator*() const { return {at / perRow, at % perRow}; }
        void operator++() { ++at; }
        bool operator!=(const Iterator& other) const { return at != other.at; }
    };
    int rows, perRow;
    Iterator begin() const { return {perRow, 0}; }
    Iterator end() const { return {perRow, rows * perRow}; }
};

template <class T> class Image {
public:
    static constexpr int bytes = sizeof(T);
    const int width, height, channels; // in pixels
    const int step;                    // in bytes; negative: the rows go up from the first, 0: all rows are the same

    // `offset` bytes lie between the fence and the image. Steps shorter than a row are for sources only.
    Image(int w, int h, int c, int rowStep, Fence fence = Fence::behind, int offset = 0) : width(w), height(h), channels(c), step(rowStep) {
        const long last = (h - 1L) * step, low = std::min(0L, last), bytes = std::abs(last) + row_bytes();
        size_ = (bytes + offset + 2 * 64 + page_ - 1) / page_ * page_;
        base_ = static_cast<unsigned char*>(mmap(nullptr, size_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) + page_;
        if (mprotect(base_, size_, PROT_READ | PROT_WRITE) != 0) std::abort();
        first_ = (fence == Fence::behind ? size_ - offset - bytes : offset) - low;
        mapping_ = {base_ - page_, [all = size_ + 2 * page_](void* mapped) { munmap(mapped, all); }};
        for (long i = 0; i < size_; ++i) base_[i] = static_cast<unsigned char>(0xC5 ^ i * 37);
        shadow_ = std::make_shared<std::vector<unsigned char>>(base_, base_ + size_);
    }
    // Any offset, any gap of whole units, a step that points in one of the given directions, and samples of any pattern.
    Image(Random& r, int w, int h, int c, std::initializer_list<int> directions = {1}, int unit = 1)
        : Image{w, h, c, any_step(r, w * c * bytes, directions, unit), any_fence(r), any_offset(r)} {
        fill(r, r.pattern());
    }
    // A part of the first row of other images, from a sample on.
    Image(const Image& of, int from, int w, int c)
        : width(w), height(1), channels(c), step(of.step), size_(of.size_), first_(of.position(0, from)), base_(of.base_),
          mapping_(of.mapping_), shadow_(of.shadow_) {}
    Image(const Image&) = delete;

    const void* memory() const { return base_; }
    T* data() const { return row(0); }
    T* row(int y) const { return reinterpret_cast<T*>(base_ + position(y, 0)); }
    int row_samples() const { return width * channels; }

    // for (const auto [y, i] : image.samples())
    Places samples() const { return {height, row_samples()}; }

    // Sample i of row y, counted over all channels: as it is, and as it ought to be.
    T at(int y, int i) const { return load<T>(base_ + position(y, i)); }
    T expected(int y, int i) const { return load<T>(expected_at(y, i)); }
    const void* expected_at(int y, int i) const { return shadow_->data() + position(y, i); }
    void expect(int y, int i, T v) { std::memcpy(shadow_->data() + position(y, i), &v, sizeof v); }
    void set(int y, int i, T v) { std::memcpy(base_ + position(y, i), &v, sizeof v), expect(y, i, v); }
    void fill(Random& r, Random::Pattern p) {
        for (const auto [y, i] : samples()) set(y, i, r.sample<T>(p, i));
    }

    // Everything is as it ought to be; `close` judges samples whose bits differ.
    template <class Close = bool (*)(T, T)> testing::AssertionResult intact(Close close = same<T>) const {
        if (std::memcmp(base_, shadow_->data(), size_) == 0) return testing::AssertionSuccess();
        std::vector<unsigned char> wanted = *shadow_;
        for (const auto [y, i] : samples()) {
            if (!close(at(y, i), expected(y, i)))
                return testing::AssertionFailure() << "row " << y << ", pixel " << i / channels << ", channel " << i % channels << ": "
                                                   << text(at(y, i)) << ", not " << text(expected(y, i));
            std::memcpy(&wanted[position(y, i)], base_ + position(y, i), bytes);
        }
        const long stray = std::mismatch(wanted.begin(), wanted.end(), base_).first - wanted.begin();
        if (stray == size_) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "stray write at byte " << stray - first_;
    }

private:
    long row_bytes() const { return long{row_samples()} * bytes; }
    long position(int y, int i) const { return first_ + static_cast<long>(y) * step + long{i} * bytes; }

    const long page_ = sysconf(_SC_PAGESIZE);
    long size_, first_;
    unsigned char* base_;
    std::shared_ptr<void> mapping_;
    std::shared_ptr<std::vector<unsigned char>> shadow_;
};

} // namespace test
