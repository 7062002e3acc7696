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
        const Vec<int16_t> v = narrowSaturated<int16_t>(shifted<D>(low), shifted<D>(high));
        if constexpr (sizeof(D) == 2) {
            store(out, v, extent);
        } else {
            storeFirst<Vec<int16_t>::lanes>(out, narrowSaturated<D>(v, v), extent);
        }
    }

  private:
    // A shift rounds down, which is towards zero once negative sums have been moved up. Where they become
    // zero anyway, they need not be.
    template <class D>
    OKPCV_INLINE Vec<int32_t> shifted(Vec<int32_t> v) const {
        if constexpr (std::is_unsigned_v<D>) return shiftRight(v, bits);
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
                accumulate(first[g], mulAddPairs(loadAs<int16_t>(p, oneMore(extent)), c));
                accumulate(second[g], mulAddPairs(loadAs<int16_t>(p + 1, extent), c));
            } else {
                const Vec<int16_t> a = loadAs<int16_t>(p, extent);
                const Vec<int16_t> b = loadAs<int16_t>(p + Channels, extent);
                accumulate(first[g], mulAddPairs(interleaveLow(a, b), c));
                accumulate(second[g], mulAddPairs(interleaveHigh(a, b), c));
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
        // The lengths whose coefficients fit in registers.
        switch (length) {
            case 3:
                return run<3>(out, step, outRows, rows, count);
            case 5:
                return run<5>(out, step, outRows, rows, count);
            case 7:
                return run<7>(out, step, outRows, rows, count);
            case 9:
                return run<9>(out, step, outRows, rows, count);
            default:
                return run<0>(out, step, outRows, rows, count);
        }
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    template <int N, class Extent>
    static OKPCV_INLINE void add(Vec<int32_t> (&low)[N], Vec<int32_t> (&high)[N], const int16_t* a,
                                 const int16_t* b, Vec<int16_t> c, Extent extent) {
        for (int g = 0; g < N; ++g) {
            const Vec<int16_t> first = load(a + g * lanes, extent);
            const Vec<int16_t> second = load(b + g * lanes, extent);
            accumulate(low[g], mulAddPairs(interleaveLow(first, second), c));
            accumulate(high[g], mulAddPairs(interleaveHigh(first, second), c));
        }
    }

    template <int Length>
    OKPCV_INLINE void run(D* out, int64_t step, int64_t outRows, const int16_t* const* rows,
                          int64_t count) const {
        constexpr int pairs = Length / 2;
        Vec<int16_t> c[pairs + 1];
        if constexpr (Length > 0) {
            for (int j = 0; j < pairs; ++j) c[j] = coefficientPair(kernel, 2 * j);
            c[pairs] = coefficientAndZero(kernel, 2 * pairs);
        }
        const Finish complete = finish;
        const Vec<int32_t> begin = broadcast(start);
        const int64_t anyLength = length;
        const int16_t* const anyKernel = kernel;
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            D* to = out + x;
            for (int64_t r = 0; r < outRows; ++r) {
                const int16_t* const* const row = rows + r;
                Vec<int32_t> low[n], high[n];
                for (int g = 0; g < n; ++g) low[g] = high[g] = begin;
                if constexpr (Length > 0) {
                    for (int j = 0; j < pairs; ++j) {
                        add(low, high, row[2 * j] + x, row[2 * j + 1] + x, c[j], extent);
                    }
                    add(low, high, row[2 * pairs] + x, row[2 * pairs] + x, c[pairs], extent);
                } else {
                    int64_t j = 0;
                    for (; j + 2 <= anyLength; j += 2) {
                        add(low, high, row[j] + x, row[j + 1] + x, coefficientPair(anyKernel, j), extent);
                    }
                    if (j < anyLength) {
                        add(low, high, row[j] + x, row[j] + x, coefficientAndZero(anyKernel, j), extent);
                    }
                }
                for (int g = 0; g < n; ++g) complete(to + g * lanes, low[g], high[g], extent);
                to = Image<D>{to, step}.row(1);
            }
        });
    }
};

// A kernel whose coefficients stand ready in all lanes, modulo 2^16. A symmetric one is folded: coefficient i
// serves the taps i and length - 1 - i.
class WrappingKernel {
  public:
    static constexpr int64_t longest = 64;
    static constexpr int lanes = Vec<int16_t>::lanes;

    WrappingKernel(const int16_t* kernel, int64_t length) : length_(length) {
        for (int64_t i = 0; i < length; ++i) {
            const int16_t k = coefficient(kernel, i);
            store(table_ + i * lanes, broadcast(k));
            symmetric_ = symmetric_ && k == coefficient(kernel, length - 1 - i);
        }
    }

    int64_t length() const { return length_; }
    bool symmetric() const { return symmetric_; }
    OKPCV_INLINE Vec<int16_t> operator[](int64_t i) const { return load(table_ + i * lanes); }

  private:
    alignas(kVectorBytes) int16_t table_[longest * lanes];
    int64_t length_;
    bool symmetric_ = true;
};

namespace detail {

// sum[v] += what taps a and b (or a alone) see at element v * lanes, times c.
template <int V, class S, class Extent>
OKPCV_INLINE void addWrapping(Vec<int16_t> (&sum)[V], Vec<int16_t> c, const S* a, const S* b, Extent extent) {
    constexpr int lanes = Vec<int16_t>::lanes;
    for (int v = 0; v < V; ++v) {
        const Vec<int16_t> both =
            loadAs<int16_t>(a + v * lanes, extent) + loadAs<int16_t>(b + v * lanes, extent);
        accumulate(sum[v], both * c);
    }
}
template <int V, class S, class Extent>
OKPCV_INLINE void addWrapping(Vec<int16_t> (&sum)[V], Vec<int16_t> c, const S* a, Extent extent) {
    for (int v = 0; v < V; ++v) {
        accumulate(sum[v], loadAs<int16_t>(a + v * Vec<int16_t>::lanes, extent) * c);
    }
}

}  // namespace detail

// A symmetric kernel whose length the code knows.
template <int Length>
class FixedWrappingTaps {
  public:
    OKPCV_INLINE explicit FixedWrappingTaps(const WrappingKernel& kernel) {
        for (int i = 0; i <= Length / 2; ++i) c_[i] = kernel[i];
    }
    // sum[v] += the sum at element v * lanes; Tap is a function that gives the address seen by tap i.
    template <int V, class Tap, class Extent>
    OKPCV_INLINE void add(Vec<int16_t> (&sum)[V], const Tap& tap, Extent extent) const {
        for (int i = 0; i < Length / 2; ++i) {
            detail::addWrapping(sum, c_[i], tap(i), tap(Length - 1 - i), extent);
        }
        detail::addWrapping(sum, c_[Length / 2], tap(Length / 2), extent);
    }

  private:
    Vec<int16_t> c_[Length / 2 + 1];
};

// Any other kernel.
class AnyWrappingTaps {
  public:
    OKPCV_INLINE explicit AnyWrappingTaps(const WrappingKernel& kernel) : kernel_(kernel) {}

    template <int V, class Tap, class Extent>
    OKPCV_INLINE void add(Vec<int16_t> (&sum)[V], const Tap& tap, Extent extent) const {
        const int64_t length = kernel_.length();
        const int64_t folded = kernel_.symmetric() ? length / 2 : 0;
        for (int64_t i = 0; i < folded; ++i) {
            detail::addWrapping(sum, kernel_[i], tap(i), tap(length - 1 - i), extent);
        }
        for (int64_t i = folded; i < length - folded; ++i) {
            detail::addWrapping(sum, kernel_[i], tap(i), extent);
        }
    }

  private:
    const WrappingKernel& kernel_;
};

template <class Run>
OKPCV_INLINE void withWrappingTaps(const WrappingKernel& kernel, const Run& run) {
    switch (kernel.symmetric() ? kernel.length() : 0) {
        case 3:
            return run(FixedWrappingTaps<3>(kernel));
        case 5:
            return run(FixedWrappingTaps<5>(kernel));
        case 7:
            return run(FixedWrappingTaps<7>(kernel));
        case 9:
            return run(FixedWrappingTaps<9>(kernel));
        default:
            return run(AnyWrappingTaps(kernel));
    }
}

// Sums in 16-bit integers, modulo 2^16, of 8-bit elements: out[x] = start + sum of kernel[i] * in[x + i * C].
//
// Bound, per tap and eight elements: one load, one multiplication, one addition; two multiplications fewer
// for every four taps of a symmetric kernel.
template <int Channels>
struct WrappingRowPass {
    const WrappingKernel& kernel;
    int16_t start;

    __attribute__((noinline)) void operator()(int16_t* out, const uint8_t* in, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        withWrappingTaps(kernel, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            const Vec<int16_t> begin = broadcast(start);
            forBlocks<4, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                Vec<int16_t> sum[block.vectors];
                for (int v = 0; v < block.vectors; ++v) sum[v] = begin;
                taps.add(
                    sum, [p = in + x](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * Channels; }, extent);
                for (int v = 0; v < block.vectors; ++v) store(out + x + v * lanes, sum[v], extent);
            });
        });
    }
};

// Sums in 16-bit integers, modulo 2^16, of 16-bit rows, read as Sum (int16_t or uint16_t), divided by 2^bits,
// truncated towards zero and saturated to D.
template <class D, class Sum>
struct WrappingColumnPass {
    const WrappingKernel& kernel;
    int bits;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        withWrappingTaps(kernel, [&](const auto& taps) OKPCV_INLINE_LAMBDA {
            forBlocks<4, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                const Image<D> dst{out + x, step};
                for (int64_t r = 0; r < outRows; ++r) {
                    Vec<int16_t> sum[block.vectors];
                    for (int v = 0; v < block.vectors; ++v) sum[v] = zeros<int16_t>();
                    taps.add(
                        sum, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; },
                        extent);
                    for (int v = 0; v < block.vectors; ++v) {
                        const Vec<int16_t> result = finished(sum[v]);
                        D* const at = dst.row(r) + v * lanes;
                        if constexpr (sizeof(D) == 2) {
                            store(at, result, extent);
                        } else {
                            storeFirst<lanes>(at, narrowSaturated<D>(result, result), extent);
                        }
                    }
                }
            });
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
