// Images between unreadable pages: one byte read or written beyond the rows that a call may touch ends the
// test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "okpcv.h"

namespace okpcv::test {

// Memory of exactly `bytes` bytes that ends (or begins) at an unreadable page.
class GuardedMemory {
  public:
    enum class At { End, Start };

    GuardedMemory(size_t bytes, At at) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t inner = std::max<size_t>((bytes + page - 1) / page, 1) * page;
        mappedBytes_ = inner + 2 * page;
        mapped_ = static_cast<char*>(
            mmap(nullptr, mappedBytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (mapped_ == MAP_FAILED) std::abort();
        mprotect(mapped_, page, PROT_NONE);
        mprotect(mapped_ + page + inner, page, PROT_NONE);
        data_ = mapped_ + page + (at == At::End ? inner - bytes : 0);
    }
    ~GuardedMemory() { munmap(mapped_, mappedBytes_); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    char* data() const { return data_; }

  private:
    char* mapped_;
    size_t mappedBytes_;
    char* data_;
};

// Rows of `width` pixels of `channels` elements of T. The last row ends at an unreadable page (or the first
// begins at one); between the rows lie `padding` bytes that must keep their value. An optional frame of
// pixels around the region stands for memory that a border may be read from.
template <class T>
class GuardedImage {
  public:
    struct Layout {
        int channels = 1;
        int padding = 0;  // bytes between rows, a multiple of the element size where calls demand it
        GuardedMemory::At at = GuardedMemory::At::End;
        int left = 0, top = 0, right = 0, bottom = 0;  // readable pixels around the region
    };

    GuardedImage(int width, int height, Layout layout)
        : width_(width),
          height_(height),
          layout_(layout),
          rowBytes_((layout.left + width + layout.right) * layout.channels * static_cast<int>(sizeof(T))),
          step_(rowBytes_ + layout.padding),
          rows_(layout.top + height + layout.bottom),
          memory_(
              static_cast<size_t>(step_) * static_cast<size_t>(rows_ - 1) + static_cast<size_t>(rowBytes_),
              layout.at) {
        for (int y = 0; y + 1 < rows_; ++y)
            std::memset(paddingAfter(y), kCanary, static_cast<size_t>(layout.padding));
    }
    GuardedImage(int width, int height) : GuardedImage(width, height, Layout{}) {}

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return layout_.channels; }
    RoiSize roi() const { return {width_, height_}; }
    int step() const { return step_; }

    // First element of the region, and of its row y. The frame is reached by negative and larger indices.
    T* data() const { return row(0); }
    T* row(int y) const {
        char* const first = memory_.data() + static_cast<ptrdiff_t>(y + layout_.top) * step_;
        return reinterpret_cast<T*>(first) + layout_.left * layout_.channels;
    }
    // Element c of pixel (x, y); memory need not be aligned to T.
    T at(int x, int y, int c = 0) const {
        T value;
        std::memcpy(&value, row(y) + x * layout_.channels + c, sizeof value);
        return value;
    }
    void set(int x, int y, T value) { set(x, y, 0, value); }
    void set(int x, int y, int c, T value) {
        std::memcpy(static_cast<void*>(row(y) + x * layout_.channels + c), &value, sizeof value);
    }

    // Sets every element of the region and its frame to generate(x, y, c).
    template <class Generate>
    void fill(Generate generate) {
        for (int y = -layout_.top; y < height_ + layout_.bottom; ++y) {
            for (int x = -layout_.left; x < width_ + layout_.right; ++x) {
                for (int c = 0; c < layout_.channels; ++c) set(x, y, c, static_cast<T>(generate(x, y, c)));
            }
        }
    }

    // The region's elements row by row, without padding.
    std::vector<T> pixels() const {
        std::vector<T> result(static_cast<size_t>(width_) * height_ * layout_.channels);
        const size_t rowElements = static_cast<size_t>(width_) * layout_.channels;
        for (int y = 0; y < height_; ++y) {
            std::memcpy(result.data() + rowElements * y, static_cast<const void*>(row(y)),
                        rowElements * sizeof(T));
        }
        return result;
    }
    void setPixels(const std::vector<T>& values) {
        const size_t rowElements = static_cast<size_t>(width_) * layout_.channels;
        for (int y = 0; y < height_; ++y) {
            std::memcpy(static_cast<void*>(row(y)), values.data() + rowElements * y, rowElements * sizeof(T));
        }
    }

    bool paddingIntact() const {
        for (int y = 0; y + 1 < rows_; ++y) {
            const char* const p = paddingAfter(y);
            if (!std::all_of(p, p + layout_.padding, [](char b) { return b == kCanary; })) return false;
        }
        return true;
    }

  private:
    static constexpr char kCanary = '\x5A';
    char* paddingAfter(int row) const {
        return memory_.data() + static_cast<ptrdiff_t>(row) * step_ + rowBytes_;
    }

    int width_, height_;
    Layout layout_;
    int rowBytes_, step_, rows_;
    GuardedMemory memory_;
};

}  // namespace okpcv::test
