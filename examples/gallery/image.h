// An image that owns its pixels: rows without padding, interleaved channels.
#pragma once

#include <okpcv.h>

#include <cstddef>
#include <cstdint>
#include <vector>

template <typename T>
class Image {
  public:
    Image() = default;
    Image(int width, int height, int channels = 1, T value = {})
        : width_(width),
          height_(height),
          channels_(channels),
          pixels_(static_cast<size_t>(width) * height * channels, value) {}

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return channels_; }
    RoiSize size() const { return {width_, height_}; }
    int32_t step() const { return static_cast<int32_t>(width_ * channels_ * sizeof(T)); }

    T* data() { return pixels_.data(); }
    const T* data() const { return pixels_.data(); }
    T& at(int x, int y, int c = 0) { return pixels_[index(x, y, c)]; }
    const T& at(int x, int y, int c = 0) const { return pixels_[index(x, y, c)]; }

    std::vector<T>& values() { return pixels_; }
    const std::vector<T>& values() const { return pixels_; }

  private:
    size_t index(int x, int y, int c) const { return (static_cast<size_t>(y) * width_ + x) * channels_ + c; }

    int width_ = 0, height_ = 0, channels_ = 1;
    std::vector<T> pixels_;
};

using Image8 = Image<uint8_t>;
using ImageF = Image<float>;
