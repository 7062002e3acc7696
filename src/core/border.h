// Borders: what a BorderKind means, which kinds a family accepts, and the pixels that stand outside a region.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/numbers.h"
#include "okpcv/types.h"

namespace okpcv {

inline constexpr BorderKind kBorderKindBits = 15;

// The kinds that linear filters accept: replicate, mirror and constant with any side flags, and all sides in
// memory.
constexpr bool isFilterBorder(BorderKind border) {
    if (border > 255) return false;
    const BorderKind kind = border & kBorderKindBits;
    return border == BorderInMemory || kind == BorderReplicate || kind == BorderMirror ||
           kind == BorderConstant;
}

// The kinds that morphology accepts: replicate, mirror, default and constant with any side flags, the flags
// also in bits 8 to 11, and all sides in memory.
constexpr bool isMorphologyBorder(BorderKind border) {
    if (border > 4095) return false;
    const BorderKind kind = border & kBorderKindBits;
    return border == BorderInMemory || kind == BorderReplicate || kind == BorderMirror ||
           kind == BorderDefault || kind == BorderConstant;
}

// An accepted kind with the flags in bits 8 to 11 moved to their place in bits 4 to 7.
constexpr BorderKind foldBorderFlags(BorderKind border) {
    return (border & 255U) | (border >> 4 & BorderInMemory);
}

// Where the pixel at a position outside a line comes from.
class Border {
  public:
    // Stands for a position that holds the border value.
    static constexpr int64_t kValue = INT64_MIN;

    explicit constexpr Border(BorderKind border) : bits_(border) {}

    constexpr BorderKind kind() const { return bits_ & kBorderKindBits; }
    // The same sides in memory with another kind.
    constexpr Border withKind(BorderKind kind) const { return Border((bits_ & BorderInMemory) | kind); }
    constexpr bool topInMemory() const { return (bits_ & BorderInMemTop) != 0; }
    constexpr bool bottomInMemory() const { return (bits_ & BorderInMemBottom) != 0; }
    constexpr bool leftInMemory() const { return (bits_ & BorderInMemLeft) != 0; }
    constexpr bool rightInMemory() const { return (bits_ & BorderInMemRight) != 0; }

    // The column of the caller's memory whose pixel stands at column x of a row of `width` pixels, or kValue.
    constexpr int64_t column(int64_t x, int64_t width) const {
        return source(x, width, leftInMemory(), rightInMemory());
    }
    // The same for row y of `height` rows.
    constexpr int64_t row(int64_t y, int64_t height) const {
        return source(y, height, topInMemory(), bottomInMemory());
    }

  private:
    constexpr int64_t source(int64_t i, int64_t n, bool beforeInMemory, bool afterInMemory) const {
        if (i >= 0 && i < n) return i;
        if (i < 0 ? beforeInMemory : afterInMemory) return i;
        switch (kind()) {
            case BorderReplicate:
                return i < 0 ? 0 : n - 1;
            case BorderMirror:
                return mirrored(i, n);
            default:
                return kValue;
        }
    }

    // Reflected about the first and the last pixel as often as it takes: a line shorter than the kernel's
    // reach is still read inside.
    static constexpr int64_t mirrored(int64_t i, int64_t n) {
        if (n == 1) return 0;
        const int64_t period = 2 * (n - 1);
        const int64_t once = i < 0 ? -i : period - i;
        if (once >= 0 && once < n) return once;  // spares the division where it can
        const int64_t phase = (i % period + period) % period;
        return phase < n ? phase : period - phase;
    }

    BorderKind bits_;
};

// Writes the pixels at columns `from` to `to` - 1 of a row of `width` pixels to `out`; those outside the row
// are produced by the border. `value` holds one element per channel and is read for the constant kind only.
template <int Channels, class T>
void produceColumns(T* out, const T* row, int64_t width, int64_t from, int64_t to, Border border,
                    const T* value) {
    const auto produce = [&](int64_t x, int64_t end) {
        for (; x < end; ++x) {
            const int64_t source = border.column(x, width);
            const T* const pixel = source == Border::kValue ? value : row + source * Channels;
            std::memcpy(out, pixel, sizeof(T) * Channels);
            out += Channels;
        }
    };
    const int64_t insideFrom = from < 0 ? 0 : from < width ? from : width;
    const int64_t insideTo = to > width ? width : to > 0 ? to : 0;
    if (from < 0) produce(from, to < 0 ? to : 0);
    if (insideFrom < insideTo) {
        const int64_t count = (insideTo - insideFrom) * Channels;
        std::memcpy(out, row + insideFrom * Channels, static_cast<size_t>(count) * sizeof(T));
        out += count;
    }
    if (to > width) produce(from > width ? from : width, to);
}

}  // namespace okpcv
