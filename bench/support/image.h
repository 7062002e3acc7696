// Images for the cases: owning, 64-byte aligned on large pages, rows padded to 64 bytes, filled with
// reproducible pixels.
#ifndef OKPCV_BENCH_IMAGE_H
#define OKPCV_BENCH_IMAGE_H

#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "okpcv.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace bench {

// Images made since the case began; gives every image of a case its own pixels and its own place in a page.
inline uint32_t imageCount = 0;

// A handle: copies share the pixels, so that a case's callables capture their images by value.
template <class T>
class Image {
  public:
    explicit Image(RoiSize size, int channels = 1)
        : size_(size),
          channels_(channels),
          step_(roundUp(size.width * channels * int64_t{sizeof(T)}, int64_t{64})) {
        // Images that begin at the same place of a page contend for the same cache sets.
        const size_t stagger = 64 * ((imageCount++ * 13) % 64);
        const size_t bytes = roundUp(static_cast<size_t>(step_ * size.height) + stagger, kLargePage);
        auto* block = static_cast<uint8_t*>(std::aligned_alloc(kLargePage, bytes));
        if (block == nullptr) throw std::bad_alloc();
        block_.reset(block, std::free);
        // On small pages the same code runs up to 10 % faster on one image than on the next. A system that
        // does not give large ones is no error.
        (void)madvise(block, bytes, MADV_HUGEPAGE);
        // Every page is written, so that none is the system's one shared page of zeros.
        std::memset(block, 0, bytes);
        data_ = reinterpret_cast<T*>(block + stagger);
#ifdef OKPCV_BENCH_OPENCV
        mat_ = cv::Mat(size.height, size.width, CV_MAKETYPE(cv::DataType<T>::depth, channels), data_,
                       static_cast<size_t>(step_));
#endif
    }

    RoiSize size() const {
        return size_;
    }
    int channels() const {
        return channels_;
    }
    int32_t step() const {
        return static_cast<int32_t>(step_);
    }
    T* data() const {
        return data_;
    }
    T* row(int y) const {
        return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(data_) + y * step_);
    }
    T* at(int x, int y) const {
        return row(y) + static_cast<ptrdiff_t>(x) * channels_;
    }

    Image clone() const {
        Image copy(size_, channels_);
        copy.assign(*this);
        return copy;
    }
    void assign(const Image& other) const {
        std::memcpy(data_, other.data_, static_cast<size_t>(step_ * size_.height));
    }

#ifdef OKPCV_BENCH_OPENCV
    // The same pixels as OpenCV sees them. Const, so that OpenCV may fill but not reallocate it.
    const cv::Mat& mat() const {
        return mat_;
    }
#endif

  private:
    static constexpr size_t kLargePage = size_t{1} << 21;

    template <class I>
    static I roundUp(I bytes, I unit) {
        return (bytes + unit - 1) / unit * unit;
    }

    RoiSize size_;
    int channels_;
    int64_t step_;
    std::shared_ptr<uint8_t> block_;
    T* data_ = nullptr;
#ifdef OKPCV_BENCH_OPENCV
    cv::Mat mat_;
#endif
};

// A fast generator whose state is one counter (splitmix64).
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed << 32) {}
    uint64_t next() {
        uint64_t z = state_ += 0x9E3779B97F4A7C15u;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    // Uniform in [low, high]; integers include both ends.
    template <class T>
    T between(T low, T high) {
        if constexpr (std::is_floating_point_v<T>) {
            return low + (high - low) * (static_cast<T>(next() >> 40) * T(0x1p-24));
        } else {
            const uint64_t count = static_cast<uint64_t>(int64_t{high} - int64_t{low}) + 1;
            return static_cast<T>(int64_t{low} + static_cast<int64_t>(((next() >> 32) * count) >> 32));
        }
    }

  private:
    uint64_t state_;
};

// Integers span their type and floats 1 to 255, unless the case says otherwise.
template <class T>
constexpr T kLow = std::is_floating_point_v<T> ? T(1) : std::numeric_limits<T>::min();
template <class T>
constexpr T kHigh = std::is_floating_point_v<T> ? T(255) : std::numeric_limits<T>::max();

template <class T>
Image<T> randomImage(RoiSize size, int channels = 1, T low = kLow<T>, T high = kHigh<T>) {
    Image<T> image(size, channels);
    Random random(imageCount);
    for (int y = 0; y < size.height; ++y) {
        T* row = image.row(y);
        for (int x = 0; x < size.width * channels; ++x) row[x] = random.between(low, high);
    }
    return image;
}

// A mask of smooth blobs some 16 pixels across that selects about half of the pixels with 255.
inline Image<uint8_t> randomMask(RoiSize size) {
    constexpr int kCell = 16;
    Image<uint8_t> mask(size);
    Random random(imageCount);
    const auto noise = [&, count = static_cast<size_t>(size.width / kCell) + 2] {
        std::vector<float> row(count);
        for (float& value : row) value = random.between(-1.0f, 1.0f);
        return row;
    };
    std::vector<float> above = noise(), below = noise(), here = above;
    for (int y = 0; y < size.height; ++y) {
        if (y > 0 && y % kCell == 0) {
            above.swap(below);
            below = noise();
        }
        const float down = static_cast<float>(y % kCell) / kCell;
        for (size_t i = 0; i < here.size(); ++i) here[i] = above[i] + (below[i] - above[i]) * down;
        uint8_t* row = mask.row(y);
        for (int x = 0; x < size.width; ++x) {
            const float left = here[static_cast<size_t>(x / kCell)];
            const float right = here[static_cast<size_t>(x / kCell) + 1];
            const float value = left * (kCell - x % kCell) + right * (x % kCell);
            row[x] = value > 0 ? 255 : 0;
        }
    }
    return mask;
}

// A comparison for Case::agree: empty when all elements of two images are the same, or differ by no more than
// `tolerance` times the larger magnitude (at least 1); otherwise what differs.
template <class T>
std::function<std::string()> same(const Image<T>& ours, const Image<T>& theirs, double tolerance = 0) {
    return [=]() -> std::string {
        int64_t differing = 0;
        double largest = 0;
        for (int y = 0; y < ours.size().height; ++y) {
            const T *a = ours.row(y), *b = theirs.row(y);
            const int count = ours.size().width * ours.channels();
            if (std::memcmp(a, b, sizeof(T) * static_cast<size_t>(count)) == 0) continue;
            for (int x = 0; x < count; ++x) {
                const double p = a[x], q = b[x], difference = std::abs(p - q);
                // Written so that NaN differs.
                if (difference <= tolerance * std::max({1.0, std::abs(p), std::abs(q)})) continue;
                ++differing;
                largest = std::max(largest, difference);
            }
        }
        if (differing == 0) return "";
        return std::to_string(differing) + " elements differ, by up to " + std::to_string(largest);
    };
}

}  // namespace bench

#endif  // OKPCV_BENCH_IMAGE_H
