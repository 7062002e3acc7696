// Row passes: one row of the source to one intermediate row. A row pass is a function object
//
//     void operator()(Mid* out, const S* in, int64_t count) const
//
// that computes `count` elements (pixels times channels): element x of `out` from the elements x, x + C,
// x + 2 * C, ... of `in`, one for each tap of the kernel. It reads in[0] to in[count - 1 + (length - 1) * C]
// and nothing else, so that borders are none of its concern.
#pragma once

#include <cstdint>
#include <cstring>

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
    __attribute__((noinline)) void operator()(Out* out, const S* in, int64_t count) const {
        withTaps(kernel, length, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            using Taps = std::remove_cvref_t<decltype(taps)>;
            const Vec<float> s = broadcast(scale);
            const int64_t step = Taps::fixed ? Channels : channels;
            forBlocks<Taps::vectors, Vec<float>::lanes>(count, [&](auto block, auto extent,
                                                                   int64_t x) OKPCV_INLINE_LAMBDA {
                Vec<float> sum[block.vectors];
                taps.sum(
                    sum, [p = in + x, step](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * step; }, extent);
                for (int v = 0; v < block.vectors; ++v) {
                    if constexpr (kBeginsWithZero && kIsFloat<Out>) sum[v] = sum[v] + zeros<float>();
                    if constexpr (kIsInt<K>) sum[v] = sum[v] * s;
                }
                storeResults(out + x, sum, extent);
            });
        });
    }
};

// Sums in 32-bit integers, modulo 2^32, of 8-bit or signed 16-bit elements: out[x] = float(sum of kernel[i] *
// in[x + i * C]) * scale. Where no sum of products can exceed 2^24 in magnitude, the results are those of
// FloatRowPass: every sum of it is then an integer that single precision holds exactly.
//
// Bound, per two taps and eight elements of one channel: two loads, two multiply-add instructions and two
// additions, half of what single precision takes.
template <int Channels>
struct IntegerRowPass {
    const int16_t* kernel;
    int64_t length;
    float scale;

    template <class Out, class S>
    __attribute__((noinline)) void operator()(Out* out, const S* in, int64_t count) const {
        constexpr int groups = 3;  // of one vector of 16-bit elements, two of sums
        forBlocks<groups, Vec<int16_t>::lanes>(
            count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                constexpr int n = block.vectors;
                const S* p = in + x;
                Vec<int32_t> first[n], second[n];
                for (int g = 0; g < n; ++g) first[g] = second[g] = zeros<int32_t>();
                int64_t i = 0;
                for (; i + 2 <= length; i += 2, p += 2 * Channels) {
                    addPair(first, second, coefficientPair(kernel, i), p, extent);
                }
                if (i < length) addLast(first, second, coefficientAndZero(kernel, i), p, extent);
                Vec<float> sum[2 * n];
                for (int g = 0; g < n; ++g) {
                    inOrder(first[g], second[g]);
                    sum[2 * g] = toFloat(first[g]) * broadcast(scale);
                    sum[2 * g + 1] = toFloat(second[g]) * broadcast(scale);
                }
                storeResults(out + x, sum, extent);
            });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    // Of a single channel, the first sums are those of even elements and the second those of odd ones: a load
    // at the first tap pairs it with the second for the even ones, a load one further on does for the odd
    // ones. Of several channels, the elements of two taps are interleaved, and the first sums are those of
    // the first half.
    template <int N, class S, class Extent>
    static OKPCV_INLINE void addPair(Vec<int32_t> (&first)[N], Vec<int32_t> (&second)[N], Vec<int16_t> c,
                                     const S* p, Extent extent) {
        for (int g = 0; g < N; ++g, p += lanes) {
            if constexpr (Channels == 1) {
                first[g] = first[g] + mulAddPairs(loadAs<int16_t>(p, oneMore(extent)), c);
                second[g] = second[g] + mulAddPairs(loadAs<int16_t>(p + 1, extent), c);
            } else {
                const Vec<int16_t> a = loadAs<int16_t>(p, extent);
                const Vec<int16_t> b = loadAs<int16_t>(p + Channels, extent);
                first[g] = first[g] + mulAddPairs(interleaveLow(a, b), c);
                second[g] = second[g] + mulAddPairs(interleaveHigh(a, b), c);
            }
        }
    }
    template <int N, class S, class Extent>
    static OKPCV_INLINE void addLast(Vec<int32_t> (&first)[N], Vec<int32_t> (&second)[N], Vec<int16_t> low,
                                     const S* p, Extent extent) {
        const auto high = bitCast<int16_t>(shiftLeft(bitCast<int32_t>(low), 16));
        for (int g = 0; g < N; ++g, p += lanes) {
            const Vec<int16_t> a = loadAs<int16_t>(p, extent);
            if constexpr (Channels == 1) {
                first[g] = first[g] + mulAddPairs(a, low);
                second[g] = second[g] + mulAddPairs(a, high);
            } else {
                first[g] = first[g] + mulAddPairs(interleaveLow(a, a), low);
                second[g] = second[g] + mulAddPairs(interleaveHigh(a, a), low);
            }
        }
    }
    static OKPCV_INLINE void inOrder(Vec<int32_t>& first, Vec<int32_t>& second) {
        if constexpr (Channels == 1) {
            const Vec<int32_t> low = interleaveLow(first, second);
            second = interleaveHigh(first, second);
            first = low;
        }
    }

    // The second taps of a part of a row go one element beyond the part.
    static OKPCV_INLINE Whole oneMore(Whole) { return {}; }
    static OKPCV_INLINE Part oneMore(Part part) { return {part.count + 1}; }
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
