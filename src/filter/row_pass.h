// Row passes: rows of the source to intermediate rows. A row pass is a function object
//
//     void operator()(Mid* const* out, const S* const* in, int64_t rows, int64_t count) const
//
// that computes `count` elements (pixels times channels) of each of `rows` rows: element x of out[r] from the
// elements x, x + C, x + 2 * C, ... of in[r], one for each tap of the kernel. It reads in[r][0] to
// in[r][count - 1 + (length - 1) * C] and nothing else, so that borders are none of its concern.
#pragma once

#include <cstdint>

#include "core/simd.h"
#include "filter/results.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// Sums in single precision: out[x] = sum of kernel[i] * in[x + i * C], in kernel order; for integer kernels
// times `scale`, the reciprocal of their divisor. Integer elements are converted as they are loaded, exactly.
// Results for the caller's eyes begin their sums with zero, which shows only in float results: a sum of
// nothing but negative zeros is +0.
template <class K, int Channels, bool kBeginsWithZero = false>
struct FloatRowPass {
    const K* kernel;
    int64_t length;
    float scale;
    // Channels again, for long kernels: knowing it, compilers try to carry loads from tap to tap.
    int64_t channels = Channels;

    template <class Out, class S>
    __attribute__((noinline)) void operator()(Out* const* out, const S* const* in, int64_t rows,
                                              int64_t count) const {
        withTaps(kernel, length, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            using Taps = std::remove_cvref_t<decltype(taps)>;
            const Vec<float> s = broadcast(scale);
            const int64_t step = Taps::fixed ? Channels : channels;
            for (int64_t r = 0; r < rows; ++r) {
                const S* const row = in[r];
                Out* const results = out[r];
                forBlocks<Taps::vectors, Vec<float>::lanes>(
                    count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                        const S* const p = row + x;
                        Vec<float> sum[block.vectors];
                        taps.sum(
                            sum, [&](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * step; }, extent);
                        for (int v = 0; v < block.vectors; ++v) {
                            if constexpr (kBeginsWithZero && kIsFloat<Out>) sum[v] = sum[v] + zeros<float>();
                            if constexpr (kIsInt<K>) sum[v] = sum[v] * s;
                        }
                        storeResults(results + x, sum, extent);
                    });
            }
        });
    }
};

}  // namespace okpcv
