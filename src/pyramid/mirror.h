// Mirror borders of pyramid layers. A line of n pixels is reflected about its first and last pixel. When it
// grows, `phases` - 1 zeros stand behind each pixel first, so that the last pixel of the line is a zero; of
// the reflected line only the pixels matter.
#pragma once

#include <cstdint>

#include "core/border.h"

namespace okpcv {

// The pixel of the line that stands at place i, inside or outside.
constexpr int64_t mirroredPixel(int64_t i, int64_t n, int phases) {
    return Border(BorderMirror).row(i * phases, n * phases) / phases;
}

// Writes `reach` pixels before and behind a line of `width` pixels.
template <int Channels, class T>
void extendLine(T* line, int64_t width, int64_t reach, int phases) {
    const auto produce = [&](int64_t x) {
        const int64_t source = mirroredPixel(x, width, phases);
        for (int c = 0; c < Channels; ++c) line[x * Channels + c] = line[source * Channels + c];
    };
    for (int64_t i = 1; i <= reach; ++i) {
        produce(-i);
        produce(width - 1 + i);
    }
}

}  // namespace okpcv
