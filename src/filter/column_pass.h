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

}  // namespace okpcv
