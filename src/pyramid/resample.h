// Pyramid layers of any rate and kernel. The filtered image is never stored as a whole: of an output row, the
// one or two filtered rows that it lies between are made, columns first, mixed into one line, filtered along
// the line, and sampled.
//
// When a layer shrinks, the filtered line has as many elements as the source. When it grows, it has twice as
// many: a zero stands behind every pixel, so elements at pixels and elements between them see every second
// coefficient each, which makes two phases of one kernel.
//
// Bound: per output row two column passes over the source's width at most (one where rows serve again), and
// one row pass; single precision throughout.
#pragma once

#include <cstdint>
#include <utility>

#include "core/area.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"
#include "filter/column_pass.h"
#include "filter/results.h"
#include "filter/row_pass.h"
#include "filter/weighted_sum.h"
#include "pyramid/mirror.h"

namespace okpcv {

// Between an element of a filtered line and the next.
struct LinePosition {
    int64_t index;
    float fraction;  // 0 at the element
};

// The filter along one direction. Element j of the filtered line has phase j % phases and sees the source's
// pixels from j / phases + first on, one for each coefficient of the phase.
struct LineFilter {
    struct Phase {
        const float* kernel;
        int64_t length;
        int64_t first;
    };
    int phases;
    Phase phase[2];
    double rate;

    // Down takes the coefficients as they are, Up the first, third, ... around the middle one, then the
    // others.
    static LineFilter down(const float* kernel, int64_t length, float rate) {
        return {1, {{kernel, length, -(length / 2)}, {}}, rate};
    }
    static LineFilter up(const float* kernel, int64_t length, float rate) {
        const int64_t atPixel = pixelTaps(length);
        const int64_t between = length - atPixel;
        return {2, {{kernel, atPixel, -(atPixel / 2)}, {kernel + atPixel, between, 1 - between / 2}}, rate};
    }
    // Coefficients at an even distance from the middle one.
    static constexpr int64_t pixelTaps(int64_t length) { return 2 * (length / 4) + 1; }

    // How many pixels a line must have before and behind it.
    static constexpr int64_t reach(int64_t length, int phases) {
        return phases == 1 ? length / 2 : (length + 1) / 4;
    }

    // Where pixel x of the output stands, at most at the last of the elements that come of n pixels.
    LinePosition position(int64_t x, int64_t n) const {
        const double last = static_cast<double>(n * phases - 1);
        const double at = phases == 1 ? static_cast<double>(x) * rate : static_cast<double>(2 * x) / rate;
        if (at >= last) return {n * phases - 1, 0};
        const auto index = static_cast<int64_t>(at);
        return {index, static_cast<float>(at - static_cast<double>(index))};
    }
};

// The element of a filtered line, or two, that an output pixel is made of.
struct LineSample {
    const float *first, *second;
    float fraction;
};

template <class S>
struct ResampleBuffer {
    const S** rows;       // what the taps of a filtered row see
    float* row[2];        // filtered rows, of even and of odd number
    float* line;          // their mixture, with room for mirrored pixels around it
    float* filtered[2];   // phases of the filtered line
    float* sampled;       // the output row
    LineSample* samples;  // where its pixels come from
};

template <class S>
ResampleBuffer<S> layOutResample(Area& area, int channels, int64_t width, int64_t dstWidth,
                                 int64_t kernelSize, int phases) {
    // Elements of `pixels` + 2 * `margin` pixels, or -1, which does not fit an area.
    const auto elements = [channels](int64_t pixels, int64_t margin) {
        int64_t count = 0;
        return addChecked(pixels, 2 * margin, count) && multiplyChecked(count, channels, count) ? count : -1;
    };
    ResampleBuffer<S> buffer{};
    const int64_t reach = LineFilter::reach(kernelSize, phases);
    buffer.rows = area.take<const S*>(kernelSize);
    for (float*& row : buffer.row) row = area.take<float>(elements(width, 0), kVectorBytes);
    buffer.line = area.take<float>(elements(width, reach), kVectorBytes);
    if (buffer.line != nullptr) buffer.line += reach * channels;
    for (int i = 0; i < phases; ++i) buffer.filtered[i] = area.take<float>(elements(width, 0), kVectorBytes);
    buffer.sampled = area.take<float>(elements(dstWidth, 0), kVectorBytes);
    buffer.samples = area.take<LineSample>(dstWidth);
    return buffer;
}

namespace detail {

// a where the fraction is 0, so that no more than a is looked at there.
OKPCV_INLINE Vec<float> mixed(Vec<float> a, Vec<float> b, float fraction) {
    return fraction == 0 ? a : a + (b - a) * broadcast(fraction);
}

// Rounded half up and clamped to an integer type.
template <class D>
void storeRounded(D* out, const float* in, int64_t count) {
    constexpr int lanes = Vec<float>::lanes;
    const Vec<float> half = broadcast(kIsFloat<D> ? 0.0F : 0.5F);
    forBlocks<4, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        Vec<float> v[block.vectors];
        for (int i = 0; i < block.vectors; ++i) {
            v[i] = load(in + x + i * lanes, extent);
            if constexpr (kIsInt<D>) v[i] = v[i] + half;
        }
        storeResults(out + x, v, extent);
    });
}

}  // namespace detail

template <class S, int Channels>
void resample(const Image<const S, Channels>& src, Size srcSize, const Image<S, Channels>& dst, Size dstSize,
              const LineFilter& filter, int64_t reach, const ResampleBuffer<S>& buffer) {
    const int64_t elements = srcSize.width * Channels;
    for (int64_t x = 0; x < dstSize.width; ++x) {
        const auto element = [&](int64_t j) {
            return buffer.filtered[j % filter.phases] + j / filter.phases * Channels;
        };
        const LinePosition p = filter.position(x, srcSize.width);
        buffer.samples[x] = {element(p.index), element(p.fraction == 0 ? p.index : p.index + 1), p.fraction};
    }

    int64_t held[2] = {-1, -1};
    const auto filteredRow = [&](int64_t j) -> const float* {
        float* const row = buffer.row[j % 2];
        if (std::exchange(held[j % 2], j) == j) return row;
        const LineFilter::Phase& phase = filter.phase[j % filter.phases];
        const int64_t first = j / filter.phases + phase.first;
        for (int64_t i = 0; i < phase.length; ++i) {
            buffer.rows[i] = src.row(mirroredPixel(first + i, srcSize.height, filter.phases));
        }
        FloatColumnPass<float, float>{phase.kernel, phase.length, 1.0F}(row, 0, 1, buffer.rows, elements);
        return row;
    };

    for (int64_t y = 0; y < dstSize.height; ++y) {
        const LinePosition p = filter.position(y, srcSize.height);
        const float* const above = filteredRow(p.index);
        const float* const below = p.fraction == 0 ? above : filteredRow(p.index + 1);
        mapRow<Vec<float>::lanes>(
            elements,
            [fraction = p.fraction](auto extent, float* out, const float* a, const float* b)
                OKPCV_INLINE_LAMBDA {
                    store(out, detail::mixed(load(a, extent), load(b, extent), fraction), extent);
                },
            buffer.line, above, below);
        extendLine<Channels>(buffer.line, srcSize.width, reach, filter.phases);
        for (int i = 0; i < filter.phases; ++i) {
            const LineFilter::Phase& phase = filter.phase[i];
            const float* const line = buffer.line + phase.first * Channels;
            FloatRowPass<float, Channels, true>{phase.kernel, phase.length, 1.0F}(&buffer.filtered[i], &line,
                                                                                  1, elements);
        }
        for (int64_t x = 0; x < dstSize.width; ++x) {
            const LineSample& s = buffer.samples[x];
            for (int c = 0; c < Channels; ++c) {
                constexpr Part one{1};
                store(buffer.sampled + x * Channels + c,
                      detail::mixed(load(s.first + c, one), load(s.second + c, one), s.fraction), one);
            }
        }
        detail::storeRounded(dst.row(y), buffer.sampled, dstSize.width * Channels);
    }
}

}  // namespace okpcv
