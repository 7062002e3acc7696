// Row passes: one row of the source to one intermediate row. A row pass is a function object
//
//     void operator()(Mid* out, const S* in, int64_t count) const
//
// that computes `count` elements (pixels times channels): element x of `out` from the elements x, x + C,
// x + 2 * C, ... of `in`, one for each tap of the kernel. It reads in[0] to in[count - 1 + (length - 1) * C]
// and nothing else, so that borders are none of its concern.
#pragma once

#include <cstdint>

#include "core/simd.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// Float rows: out[x] = sum of kernel[i] * in[x + i * C], in kernel order; for integer kernels times `scale`,
// the reciprocal of their divisor.
template <class K, int Channels>
struct FloatRowPass {
    const K* kernel;
    int64_t length;
    float scale;
    // Channels again, for long kernels: knowing it, compilers try to carry loads from tap to tap.
    int64_t channels = Channels;

    __attribute__((noinline)) void operator()(float* out, const float* in, int64_t count) const {
        withTaps(kernel, length, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            constexpr int lanes = Vec<float>::lanes;
            constexpr bool kFixed = std::remove_cvref_t<decltype(taps)>::fixed;
            const Vec<float> s = broadcast(scale);
            forBlocks<std::remove_cvref_t<decltype(taps)>::vectors, lanes>(
                count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    Vec<float> acc[block.vectors];
                    const auto tap = [p = in + x, step = kFixed ? Channels : channels](int64_t i)
                                         OKPCV_INLINE_LAMBDA { return p + i * step; };
                    taps.sum(acc, tap, extent);
                    for (int v = 0; v < block.vectors; ++v) {
                        store(out + x + v * lanes, kIsFloat<K> ? acc[v] : acc[v] * s, extent);
                    }
                });
        });
    }
};

// Rows of another type, converted to float a stretch at a time before a float row pass reads them: the
// conversion is paid once per element instead of once per tap.
template <class S, class K, int Channels>
struct ConvertingRowPass {
    FloatRowPass<K, Channels> pass;
    float* scratch;
    int64_t scratchCount;  // more than (length - 1) * Channels

    void operator()(float* out, const S* in, int64_t count) const {
        const int64_t reach = (pass.length - 1) * Channels;
        const int64_t stretch = scratchCount - reach;
        for (int64_t x = 0; x < count; x += stretch) {
            const int64_t n = count - x < stretch ? count - x : stretch;
            convert(in + x, n + reach);
            pass(out + x, scratch, n);
        }
    }

  private:
    __attribute__((noinline)) void convert(const S* in, int64_t count) const {
        forBlocks<4, Vec<float>::lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < block.vectors; ++v) {
                const int64_t at = x + v * Vec<float>::lanes;
                store(scratch + at, loadAs<float>(in + at, extent), extent);
            }
        });
    }
};

}  // namespace okpcv
