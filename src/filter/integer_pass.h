// Row and column passes in integers (see row_pass.h and column_pass.h). Additions of integers may be taken in
// any order, so symmetric kernels are folded here, and neighbouring taps share a multiply-add instruction.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/image.h"
#include "core/simd.h"
#include "filter/results.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// Coefficients i and i + 1, or i and 0, in all pairs of lanes, for mulAddPairs.
OKPCV_INLINE Vec<int16_t> coefficientPair(const int16_t* kernel, int64_t i) {
    int32_t pair;
    std::memcpy(&pair, reinterpret_cast<const char*>(kernel) + i * int64_t{sizeof(int16_t)}, sizeof pair);
    return bitCast<int16_t>(broadcast(pair));
}
OKPCV_INLINE Vec<int16_t> coefficientAndZero(const int16_t* kernel, int64_t i) {
    return bitCast<int16_t>(broadcast(static_cast<int32_t>(static_cast<uint16_t>(coefficient(kernel, i)))));
}

// What becomes of sums of two vectors of 32-bit integers before they are stored.
struct TimesScale {
    float scale;

    template <class D, class Extent>
    OKPCV_INLINE void operator()(D* out, Vec<int32_t> low, Vec<int32_t> high, Extent extent) const {
        const Vec<float> v[2] = {toFloat(low) * broadcast(scale), toFloat(high) * broadcast(scale)};
        storeResults(out, v, extent);
    }
};
// Divided by 2^bits, truncated towards zero and saturated.
struct ShiftedRight {
    int bits;

    template <class D, class Extent>
    OKPCV_INLINE void operator()(D* out, Vec<int32_t> low, Vec<int32_t> high, Extent extent) const {
        const Vec<int16_t> v = narrowSaturated<int16_t>(shifted(low), shifted(high));
        if constexpr (sizeof(D) == 2) {
            store(out, v, extent);
        } else {
            storeFirst<Vec<int16_t>::lanes>(out, narrowSaturated<D>(v, v), extent);
        }
    }

  private:
    OKPCV_INLINE Vec<int32_t> shifted(Vec<int32_t> v) const {
        const Vec<int32_t> ones = broadcast(static_cast<int32_t>((1U << bits) - 1));
        return shiftRight(v + (shiftRight(v, 31) & ones), bits);
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

// Sums in 32-bit integers, modulo 2^32, of signed 16-bit rows: `start` + sum of kernel[j] * rows[j][x],
// handed to Finish. With TimesScale, see IntegerRowPass for when the results are those of FloatColumnPass.
//
// Bound, per two taps and eight elements: two loads, two interleavings, two multiply-add instructions and two
// additions.
template <class D, class Finish>
struct IntegerColumnPass {
    const int16_t* kernel;
    int64_t length;
    int32_t start;
    Finish finish;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        const Image<D> dst{out, step};
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            for (int64_t r = 0; r < outRows; ++r) {
                const int16_t* const* const row = rows + r;
                Vec<int32_t> low[n], high[n];
                for (int g = 0; g < n; ++g) low[g] = high[g] = broadcast(start);
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
                for (int g = 0; g < n; ++g) finish(dst.row(r) + x + g * lanes, low[g], high[g], extent);
            }
        });
    }
};

// A kernel whose coefficients stand ready in all lanes, modulo 2^16, folded if it is symmetric: then
// coefficient i serves the taps i and length - 1 - i.
class WrappingTaps {
  public:
    static constexpr int64_t longest = 64;

    OKPCV_INLINE WrappingTaps(const int16_t* kernel, int64_t length) : length_(length) {
        symmetric_ = true;
        for (int64_t i = 0; i < length; ++i) {
            const int16_t k = coefficient(kernel, i);
            store(table_ + i * lanes, broadcast(k));
            symmetric_ = symmetric_ && k == coefficient(kernel, length - 1 - i);
        }
    }

    // sum[v] += the taps' products at element v * lanes. Tap is a function that gives the address seen by tap
    // i.
    template <int V, class Tap, class Extent>
    OKPCV_INLINE void add(Vec<int16_t> (&sum)[V], const Tap& tap, Extent extent) const {
        int64_t i = 0;
        if (symmetric_) {
            for (; i < length_ / 2; ++i) {
                const Vec<int16_t> c = load(table_ + i * lanes);
                const auto* const a = tap(i);
                const auto* const b = tap(length_ - 1 - i);
                for (int v = 0; v < V; ++v) {
                    sum[v] =
                        sum[v] +
                        (loadAs<int16_t>(a + v * lanes, extent) + loadAs<int16_t>(b + v * lanes, extent)) * c;
                }
            }
        }
        for (const int64_t end = symmetric_ ? length_ - i : length_; i < end; ++i) {
            const Vec<int16_t> c = load(table_ + i * lanes);
            const auto* const a = tap(i);
            for (int v = 0; v < V; ++v) sum[v] = sum[v] + loadAs<int16_t>(a + v * lanes, extent) * c;
        }
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;
    alignas(kVectorBytes) int16_t table_[longest * lanes];
    int64_t length_;
    bool symmetric_;
};

// Sums in 16-bit integers, modulo 2^16, of 8-bit elements: out[x] = start + sum of kernel[i] * in[x + i * C].
//
// Bound, per tap and eight elements: one load, one multiplication, one addition; two multiplications fewer
// for every four taps of a symmetric kernel.
template <int Channels>
struct WrappingRowPass {
    const WrappingTaps& taps;
    int16_t start;

    __attribute__((noinline)) void operator()(int16_t* out, const uint8_t* in, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        forBlocks<4, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            Vec<int16_t> sum[block.vectors];
            for (int v = 0; v < block.vectors; ++v) sum[v] = broadcast(start);
            taps.add(
                sum, [p = in + x](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * Channels; }, extent);
            for (int v = 0; v < block.vectors; ++v) store(out + x + v * lanes, sum[v], extent);
        });
    }
};

// Sums in 16-bit integers, modulo 2^16, of 16-bit rows, read as Sum (int16_t or uint16_t), divided by 2^bits,
// truncated towards zero and saturated to D.
template <class D, class Sum>
struct WrappingColumnPass {
    const WrappingTaps& taps;
    int bits;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        const Image<D> dst{out, step};
        forBlocks<4, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            for (int64_t r = 0; r < outRows; ++r) {
                Vec<int16_t> sum[block.vectors];
                for (int v = 0; v < block.vectors; ++v) sum[v] = zeros<int16_t>();
                taps.add(
                    sum, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; }, extent);
                for (int v = 0; v < block.vectors; ++v) {
                    const Vec<int16_t> result = finished(sum[v]);
                    D* const at = dst.row(r) + x + v * lanes;
                    if constexpr (sizeof(D) == 2) {
                        store(at, result, extent);
                    } else {
                        storeFirst<lanes>(at, narrowSaturated<D>(result, result), extent);
                    }
                }
            }
        });
    }

  private:
    // In the range of int16_t; narrowing to 8 bits does the rest.
    OKPCV_INLINE Vec<int16_t> finished(Vec<int16_t> sum) const {
        if constexpr (std::is_signed_v<Sum>) {
            const Vec<int16_t> ones = broadcast(static_cast<int16_t>((1U << bits) - 1));
            return shiftRight(sum + (shiftRight(sum, 15) & ones), bits);
        } else {
            return bitCast<int16_t>(
                min(shiftRight(bitCast<uint16_t>(sum), bits), broadcast(uint16_t{32767})));
        }
    }
};

}  // namespace okpcv
