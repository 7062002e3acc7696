// Predicates over rows as bits: a comparison of whole pixels, a vector of them at a time, becomes an integer
// with one bit per pixel, the leftmost lowest, in which runs are found by counting zeros and ones.
#pragma once

#include <bit>
#include <cstdint>

#include "core/rows.h"
#include "core/simd.h"

namespace okpcv {

// The value of one pixel. Floats compare as numbers: -0 equals +0, and a NaN equals nothing.
template <class T, int C>
struct Pixel {
    T channel[C];

    static Pixel at(const T* p) {
        Pixel pixel;
        for (int c = 0; c < C; ++c) pixel.channel[c] = loadScalar<T>(p + c);
        return pixel;
    }
    bool operator==(const Pixel&) const = default;
};

// As many interleaved pixels as a vector has lanes.
template <class T, int C>
struct Pixels {
    static constexpr int count = Vec<T>::lanes;
    Vec<T> part[C];

    // `extent` counts elements.
    template <class Extent>
    static OKPCV_INLINE Pixels load(const T* p, Extent extent) {
        Pixels pixels;
        for (int i = 0; i < C; ++i) pixels.part[i] = okpcv::load(p + i * count, extent.from(i * count));
        return pixels;
    }

    static Pixels repeated(const Pixel<T, C>& pixel) {
        T values[C * count];
        for (int i = 0; i < C * count; ++i) values[i] = pixel.channel[i % C];
        return load(values, Whole{});
    }

    // operation(this, others...) vector by vector.
    template <class Operation, class... P>
    OKPCV_INLINE Pixels map(const Operation& operation, const P&... others) const {
        Pixels result;
        for (int i = 0; i < C; ++i) result.part[i] = operation(part[i], others.part[i]...);
        return result;
    }
};

constexpr uint32_t lowBits(int count) {
    return static_cast<uint32_t>((uint64_t{1} << count) - 1);
}

// One bit for each pixel whose channels are all set in a comparison's result.
template <class T, int C>
OKPCV_INLINE uint32_t pixelBits(const Pixels<T, C>& mask) {
    if constexpr (C == 1) {
        return laneBits(mask.part[0]);
    } else {
        static_assert(C == 3);
        // All or nothing is the common case, and needs no separation of the channels.
        constexpr uint32_t full = lowBits(Vec<T>::lanes);
        if (laneBits(mask.part[0] & mask.part[1] & mask.part[2]) == full) return full;
        if (!anyBit(mask.part[0] | mask.part[1] | mask.part[2])) return 0;
        const Channels3<T> channels = deinterleave3(mask.part[0], mask.part[1], mask.part[2]);
        return laneBits(channels.c0 & channels.c1 & channels.c2);
    }
}

// Long runs are compared this many vectors at a time.
inline constexpr int kUnrolled = 4;

// Whether all pixels are set in the results of compare(0), compare(1), ..., one for each vector of pixels.
template <class T, int C, class Compare>
OKPCV_INLINE bool allPixels(const Compare& compare) {
    Vec<T> all = ~zeros<T>();
    for (int i = 0; i < kUnrolled; ++i) {
        const Pixels<T, C> mask = compare(i);
        for (int c = 0; c < C; ++c) all = all & mask.part[c];
    }
    return laneBits(all) == lowBits(Vec<T>::lanes);
}

// Writes `count` times the value that `pixels` repeats.
template <class T, int C>
OKPCV_INLINE void fillPixels(T* row, int32_t count, const Pixels<T, C>& pixels) {
    constexpr int lanes = Vec<T>::lanes;
    const auto kernel = [&pixels](auto extent, T* p) {
        for (int i = 0; i < C; ++i) store(p + i * lanes, pixels.part[i], extent.from(i * lanes));
    };
    mapRow<C * lanes>(int64_t{count} * C, kernel, row);
}

// Writes the value that `pixels` repeats to those of as many pixels as a vector has lanes, or of fewer, whose
// bits are set. The others are written as they were.
template <class T, int C>
OKPCV_INLINE void writePixels(T* p, int32_t count, uint32_t bits, const Pixels<T, C>& pixels) {
    const Vec<T> mask = laneMask<T>(bits);
    Pixels<T, C> masks{mask};
    if constexpr (C == 3) {
        const Channels3<T> triples = interleave3(mask, mask, mask);
        masks = {triples.c0, triples.c1, triples.c2};
    }
    const auto write = [&](auto extent) {
        for (int i = 0; i < C; ++i) {
            T* const to = p + i * Vec<T>::lanes;
            const auto part = extent.from(i * Vec<T>::lanes);
            store(to, select(masks.part[i], pixels.part[i], load(to, part)), part);
        }
    };
    count < Vec<T>::lanes ? write(Part{count * C}) : write(Whole{});
}

// A word of bits, one per pixel from x on: bits(x, extent) gives those of a vector. Beyond the row they are
// 0.
inline constexpr int kWordBits = 64;
constexpr int64_t wordsPerRow(int64_t width) {
    return (width + kWordBits - 1) / kWordBits;
}
template <int kLanes, class Bits>
OKPCV_INLINE uint64_t rowWord(int64_t x, int64_t width, const Bits& bits) {
    uint64_t word = 0;
    if (x + kWordBits <= width) {
        for (int i = 0; i < kWordBits; i += kLanes) word |= uint64_t{bits(x + i, Whole{})} << i;
        return word;
    }
    int i = 0;
    for (; x + i + kLanes <= width; i += kLanes) word |= uint64_t{bits(x + i, Whole{})} << i;
    if (x + i < width) {
        const int rest = static_cast<int>(width - x) - i;
        word |= uint64_t{bits(x + i, Part{rest}) & lowBits(rest)} << i;
    }
    return word;
}

}  // namespace okpcv
