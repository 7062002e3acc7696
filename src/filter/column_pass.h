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
#include "filter/weighted_sum.h"

namespace okpcv {

// Stores float results: unchanged, or clamped and truncated (see truncateSaturated) to a narrower type.
template <class D, int V, class Extent>
OKPCV_INLINE void storeResults(D* out, const Vec<float> (&v)[V], Extent extent) {
    constexpr int lanes = Vec<float>::lanes;
    if constexpr (kIsFloat<D>) {
        for (int i = 0; i < V; ++i) store(out + i * lanes, v[i], extent);
    } else if constexpr (sizeof(D) == 2) {
        if constexpr (V == 1) {
            const auto n = truncateToNarrow<D>(v[0]);
            storeFirst<lanes>(out, narrowSaturated<D>(n, n), extent);
        } else {
            static_assert(V % 2 == 0);
            for (int i = 0; i < V; i += 2) {
                store(out + i * lanes,
                      narrowSaturated<D>(truncateToNarrow<D>(v[i]), truncateToNarrow<D>(v[i + 1])), extent);
            }
        }
    } else {
        static_assert(sizeof(D) == 1);
        const auto half = [&](int i) {
            return narrowSaturated<int16_t>(truncateToNarrow<D>(v[i]), truncateToNarrow<D>(v[i + 1]));
        };
        if constexpr (V == 1) {
            const auto n = truncateToNarrow<D>(v[0]);
            const auto h = narrowSaturated<int16_t>(n, n);
            storeFirst<lanes>(out, narrowSaturated<D>(h, h), extent);
        } else {
            static_assert(V % 2 == 0);
            int i = 0;
            for (; i + 4 <= V; i += 4) {
                store(out + i * lanes, narrowSaturated<D>(half(i), half(i + 2)), extent);
            }
            if (i < V) {
                storeFirst<2 * lanes>(out + i * lanes, narrowSaturated<D>(half(i), half(i)), extent);
            }
        }
    }
}

// Float rows: out[x] = sum of kernel[j] * rows[j][x], in kernel order; for integer kernels times `scale`.
// Sums start from zero, which shows only in float results: a sum of nothing but negative zeros is +0.
template <class D, class K>
struct FloatColumnPass {
    const K* kernel;
    int64_t length;
    float scale;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows, const float* const* rows,
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
