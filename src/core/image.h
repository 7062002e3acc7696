// Image views: what an export's arguments become before anything else happens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "okpcv/types.h"

namespace okpcv {

// A region's size in pixels. Both generations of exports widen to it.
struct Size {
    int64_t width;
    int64_t height;

    constexpr Size(int64_t w, int64_t h) : width(w), height(h) {}
    constexpr Size(RoiSize size) : width(size.width), height(size.height) {}
    constexpr Size(RoiSizeL size) : width(size.width), height(size.height) {}
};

// Pixels of Channels elements of T in rows `step` bytes apart. T is const for an image that is only read.
template <class T, int Channels = 1>
struct Image {
    using Element = T;
    static constexpr int channels = Channels;
    static constexpr int elementBytes = sizeof(T);
    static constexpr int pixelBytes = Channels * int{sizeof(T)};

    T* data;
    int64_t step;

    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;

    // First element of row y; y may be negative where the caller's memory goes on above the region.
    T* row(int64_t y) const { return reinterpret_cast<T*>(reinterpret_cast<Byte*>(data) + y * step); }

    // Whether the rows of a region of this width follow each other without a gap.
    constexpr bool isDense(int64_t width) const { return step == width * pixelBytes; }

    operator Image<const T, Channels>() const { return {data, step}; }
};

}  // namespace okpcv
