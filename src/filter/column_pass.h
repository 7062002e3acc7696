// Column passes: intermediate rows to rows of the destination. A column pass is a function object
//
//     void operator()(D* out, int64_t step, int64_t outRows, const Mid* const* rows, int64_t count) const
//
// that computes `count` elements of each of `outRows` rows, `step` bytes apart: element x of output row r
// from element x of rows[r], rows[r + 1], ..., one for each tap.
#pragma once

#include <cstdint>

#include "core/image.h"
#include "core/simd.h"
#include "filter/results.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// Sums in single precision: out[x] = sum of kernel[j] * rows[j][x], in kernel order; for integer kernels
// times `scale`. Sums start from zero, which shows only in float results: a sum of nothing but negative zeros
// is +0.
template <class D, class K>
struct FloatColumnPass {
    const K* kernel;
    int64_t length;
    float scale;

    template <class Mid>
    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows, const Mid* const* rows,
                                              int64_t count) const {
        const Image<D> dst{out, step};
        withTaps(kernel, length, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            forBlocks<std::remove_cvref_t<decltype(taps)>::vectors, Vec<float>::lanes>(
                count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    for (int64_t r = 0; r < outRows; ++r) {
                        Vec<float> acc[block.vectors];
                        taps.sum(
                            acc, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; },
                            extent);
                        for (int v = 0; v < block.vectors; ++v) {
                            if constexpr (kIsFloat<D>) acc[v] = acc[v] + zeros<float>();
                            if constexpr (kIsInt<K>) acc[v] = acc[v] * broadcast(scale);
                        }
                        storeResults(dst.row(r) + x, acc, extent);
                    }
                });
        });
    }
};

// Sums in 32-bit integers, modulo 2^32, of signed 16-bit rows: out[x] = float(sum of kernel[j] * rows[j][x])
// * scale. See IntegerRowPass for when they are those of FloatColumnPass.
//
// Bound, per two taps and eight elements: two loads, two interleavings, two multiply-add instructions and two
// additions.
template <class D>
struct IntegerColumnPass {
    const int16_t* kernel;
    int64_t length;
    float scale;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        const Image<D> dst{out, step};
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            for (int64_t r = 0; r < outRows; ++r) {
                const int16_t* const* const row = rows + r;
                Vec<int32_t> low[n], high[n];
                for (int g = 0; g < n; ++g) low[g] = high[g] = zeros<int32_t>();
                const auto add = [&](const int16_t* a, const int16_t* b, Vec<int16_t> c) OKPCV_INLINE_LAMBDA {
                    for (int g = 0; g < n; ++g) {
                        const Vec<int16_t> first = load(a + x + g * lanes, extent);
                        const Vec<int16_t> second = load(b + x + g * lanes, extent);
                        low[g] = low[g] + mulAddPairs(interleaveLow(first, second), c);
                        high[g] = high[g] + mulAddPairs(interleaveHigh(first, second), c);
                    }
                };
                int64_t j = 0;
                for (; j + 2 <= length; j += 2) add(row[j], row[j + 1], coefficientPair(kernel, j));
                if (j < length) add(row[j], row[j], coefficientAndZero(kernel, j));
                Vec<float> sum[2 * n];
                for (int g = 0; g < n; ++g) {
                    sum[2 * g] = toFloat(low[g]) * broadcast(scale);
                    sum[2 * g + 1] = toFloat(high[g]) * broadcast(scale);
                }
                storeResults(dst.row(r) + x, sum, extent);
            }
        });
    }
};

}  // namespace okpcv
