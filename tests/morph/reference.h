// Dilation and erosion by their definition: one pixel of the neighbourhood after the other.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

#include "okpcv.h"
#include "support/random.h"

namespace okpcv::test {

enum class Op { Dilate, Erode };

struct Mask {
    int width, height;
    std::vector<uint8_t> bytes;

    Mask(int w, int h) : width(w), height(h), bytes(static_cast<size_t>(w) * h) {}
    Mask(int w, int h, const std::function<int(int, int)>& at) : Mask(w, h) {
        for (int j = 0; j < h; ++j) {
            for (int i = 0; i < w; ++i)
                bytes[static_cast<size_t>(j) * w + i] = static_cast<uint8_t>(at(i, j));
        }
    }
    bool has(int i, int j) const { return bytes[static_cast<size_t>(j) * width + i] != 0; }
    bool empty() const {
        return std::all_of(bytes.begin(), bytes.end(), [](uint8_t b) { return b == 0; });
    }
    RoiSize size() const { return {width, height}; }
    int left() const { return (width - 1) / 2; }
    int above() const { return (height - 1) / 2; }
    int right() const { return width - 1 - left(); }
    int below() const { return height - 1 - above(); }
};

// A number that orders pixels: floats by totalOrder.
template <class T>
int64_t rank(T v) {
    if constexpr (std::is_floating_point_v<T>) {
        const auto bits = std::bit_cast<int32_t>(v);
        return bits < 0 ? int64_t{-1} - (bits & 0x7FFFFFFF) : bits;
    } else {
        return v;
    }
}

// Where the pixel at position i of a line of n pixels comes from; -1000000 for the border value.
inline constexpr int kNowhere = -1000000;
inline int borderIndex(int i, int n, uint32_t kind, bool beforeInMemory, bool afterInMemory) {
    if ((i >= 0 && i < n) || (i < 0 && beforeInMemory) || (i >= n && afterInMemory)) return i;
    if (kind == BorderReplicate) return std::clamp(i, 0, n - 1);
    if (kind != BorderMirror) return kNowhere;
    while (i < 0 || i >= n) i = n == 1 ? 0 : i < 0 ? -i : 2 * (n - 1) - i;
    return i;
}

// The result at (x, y), with source(x, y) giving the caller's memory and `value` the border value.
template <class T, class Source>
T morphed(Op op, const Mask& mask, RoiSize roi, uint32_t border, T value, int x, int y, Source source) {
    if (mask.empty()) return source(x, y);
    const uint32_t flags = border | border >> 4, kind = border & 15;
    if (kind == BorderDefault) {
        value = op == Op::Dilate ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    }
    bool first = true;
    T result{};
    for (int j = 0; j < mask.height; ++j) {
        for (int i = 0; i < mask.width; ++i) {
            if (!mask.has(i, j)) continue;
            const int sx = borderIndex(x + i - mask.left(), roi.width, kind, flags & BorderInMemLeft,
                                       flags & BorderInMemRight);
            const int sy = borderIndex(y + j - mask.above(), roi.height, kind, flags & BorderInMemTop,
                                       flags & BorderInMemBottom);
            const T v = sx == kNowhere || sy == kNowhere ? value : source(sx, sy);
            const bool wins = op == Op::Dilate ? rank(v) > rank(result) : rank(v) < rank(result);
            if (first || wins) result = v;
            first = false;
        }
    }
    return result;
}

// Masks of all the shapes that the engine tells apart.
inline Mask randomMask(Random& random, int most) {
    const int w = random.integer(1, most), h = random.integer(1, most);
    const auto byte = [&](bool in) { return in ? random.integer(1, 255) : 0; };
    switch (random.integer(0, 7)) {
        case 0:
            return {w, h, [&](int, int) { return byte(true); }};
        case 1:  // an ellipse
            return {w, h, [&](int i, int j) {
                        const double u = (2.0 * i - w + 1) / w, v = (2.0 * j - h + 1) / h;
                        return byte(u * u + v * v <= 1);
                    }};
        case 2:  // a cross
            return {w, h, [&](int i, int j) { return byte(i == w / 2 || j == h / 3); }};
        case 3: {  // a slanted line, perhaps thick and steep
            const int slope = random.integer(-3, 3), length = random.integer(1, 4);
            const int start = slope < 0 ? w - 1 : 0;
            return {w, h, [&](int i, int j) {
                        const int at = start + j * slope;
                        return byte(i >= at && i < at + length);
                    }};
        }
        case 4: {  // a rectangle somewhere
            const int l = random.integer(0, w - 1), t = random.integer(0, h - 1);
            const int r = random.integer(l, w - 1), b = random.integer(t, h - 1);
            return {w, h, [&](int i, int j) { return byte(i >= l && i <= r && j >= t && j <= b); }};
        }
        case 5: {  // a point somewhere, or nothing
            const int at = random.integer(0, w * h), width = w;
            return {w, h, [&](int i, int j) { return byte(j * width + i == at); }};
        }
        default: {
            const double density = random.real(0.05F, 0.95F);
            return {w, h, [&](int, int) { return byte(random.chance(density)); }};
        }
    }
}

// An accepted border with any side flags, some of them in bits 8 to 11.
inline uint32_t randomBorder(Random& random, bool mirror) {
    if (random.chance(0.1)) return BorderInMemory;
    static constexpr uint32_t kinds[] = {BorderReplicate, BorderDefault, BorderConstant, BorderMirror};
    const uint32_t kind = kinds[random.integer(0, mirror ? 3 : 2)];
    const auto flags = static_cast<uint32_t>(random.chance(0.5) ? 0 : random.integer(0, 255));
    return kind | flags << 4;
}

}  // namespace okpcv::test
