// Row and column passes in integers (see row_pass.h and column_pass.h). Additions of integers may be taken in
// any order, so symmetric kernels are folded here, and neighbouring taps share a multiply-add instruction.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/image.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "core/with_constant.h"
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

// Adds term i to a sum. To term 0 the sum is added instead, which spares the copy of a constant that several
// sums begin with.
template <class T>
OKPCV_INLINE void addTerm(int64_t i, Vec<T>& sum, Vec<T> term) {
    if (i == 0) {
        sum = term + sum;
    } else {
        accumulate(sum, term);
    }
}

// Whether no sum of products with elements of S can exceed what single precision counts exactly, so that sums
// in integers are those in single precision.
template <class S>
bool sumsAreExact(const int16_t* kernel, int64_t length) {
    static_assert(std::is_same_v<S, uint8_t> || std::is_same_v<S, int16_t>);
    constexpr int64_t largest = std::is_same_v<S, uint8_t> ? 255 : 32768;
    return magnitude(kernel, length) * largest <= int64_t{1} << 24;
}

// How sums of 32-bit integers, two vectors for every vector of 16-bit elements, are finished and stored.
struct TimesScale {
    float scale;

    template <class D, int V, class Extent>
    OKPCV_INLINE void operator()(D* out, const Vec<int32_t> (&sum)[V], Extent extent) const {
        Vec<float> v[V];
        for (int i = 0; i < V; ++i) v[i] = toFloat(sum[i]) * broadcast(scale);
        storeResults(out, v, extent);
    }
};
// Divided by 2^bits, truncated towards zero and saturated; with kNegative false, for sums that are not
// negative or become zero then.
template <bool kNegative>
struct ShiftedRight {
    int bits;

    template <class D, int V, class Extent>
    OKPCV_INLINE void operator()(D* out, const Vec<int32_t> (&sum)[V], Extent extent) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        Vec<int16_t> v[V / 2];
        for (int i = 0; i < V / 2; ++i) {
            v[i] = narrowSaturated<int16_t>(shifted(sum[2 * i]), shifted(sum[2 * i + 1]));
        }
        if constexpr (sizeof(D) == 2) {
            for (int i = 0; i < V / 2; ++i) store(out + i * lanes, v[i], extent);
        } else if constexpr (V == 2) {
            storeFirst<lanes>(out, narrowSaturated<D>(v[0], v[0]), extent);
        } else {
            static_assert(V == 4);
            store(out, narrowSaturated<D>(v[0], v[1]), extent);
        }
    }

  private:
    // A shift rounds down, which is towards zero once negative sums have been moved up.
    OKPCV_INLINE Vec<int32_t> shifted(Vec<int32_t> v) const {
        if constexpr (kNegative) {
            const Vec<int32_t> ones = broadcast(static_cast<int32_t>((1U << bits) - 1));
            v = v + (shiftRight(v, 31) & ones);
        }
        return shiftRight(v, bits);
    }
};

// Sums in 32-bit integers, modulo 2^32, of 8-bit or signed 16-bit elements: out[x] = float(sum of kernel[i] *
// in[x + i * C]) * scale. Where sumsAreExact(), the results are those of FloatRowPass.
//
// Bound, per two taps and eight elements of one channel: two loads, two multiply-add instructions and two
// additions, half of what single precision takes.
template <int Channels>
struct IntegerRowPass {
    const int16_t* kernel;
    int64_t length;
    float scale;

    template <class Out, class S>
    __attribute__((noinline)) void operator()(Out* const* out, const S* const* in, int64_t rows,
                                              int64_t count) const {
        // The lengths whose coefficients fit in registers.
        withConstant<3, 5, 7, 9>(length, [&](auto known) OKPCV_INLINE_LAMBDA {
            for (int64_t r = 0; r < rows; ++r) run<known>(out[r], in[r], count);
        });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    template <int Length, class Out, class S>
    OKPCV_INLINE void run(Out* out, const S* in, int64_t count) const {
        constexpr int pairs = Length / 2;
        Vec<int16_t> c[pairs + 1];
        if constexpr (Length > 0) {
            for (int i = 0; i < pairs; ++i) c[i] = coefficientPair(kernel, 2 * i);
            c[pairs] = coefficientAndZero(kernel, 2 * pairs);
        }
        constexpr int groups = Length > 0 ? 2 : 3;  // of one vector of 16-bit elements, two of sums
        forBlocks<groups, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            const S* p = in + x;
            Vec<int32_t> first[n], second[n];
            for (int g = 0; g < n; ++g) first[g] = second[g] = zeros<int32_t>();
            if constexpr (Length > 0) {
                for (int i = 0; i < pairs; ++i, p += 2 * Channels) addPair(i, first, second, c[i], p, extent);
                addLast(first, second, c[pairs], p, extent);
            } else {
                int64_t i = 0;
                for (; i + 2 <= length; i += 2, p += 2 * Channels) {
                    addPair(i, first, second, coefficientPair(kernel, i), p, extent);
                }
                if (i < length) addLast(first, second, coefficientAndZero(kernel, i), p, extent);
            }
            Vec<float> sum[2 * n];
            for (int g = 0; g < n; ++g) {
                inOrder(first[g], second[g]);
                sum[2 * g] = toFloat(first[g]) * broadcast(scale);
                sum[2 * g + 1] = toFloat(second[g]) * broadcast(scale);
            }
            storeResults(out + x, sum, extent);
        });
    }

    // Of a single channel, the first sums are those of even elements and the second those of odd ones: a load
    // at the first tap pairs it with the second for the even ones, a load one further on does for the odd
    // ones. Of several channels, the elements of two taps are interleaved, and the first sums are those of
    // the first half.
    template <int N, class S, class Extent>
    static OKPCV_INLINE void addPair(int64_t i, Vec<int32_t> (&first)[N], Vec<int32_t> (&second)[N],
                                     Vec<int16_t> c, const S* p, Extent extent) {
        for (int g = 0; g < N; ++g, p += lanes) {
            if constexpr (Channels == 1) {
                addTerm(i, first[g], mulAddPairs(loadAs<int16_t>(p, extent.from(-1)), c));
                addTerm(i, second[g], mulAddPairs(loadAs<int16_t>(p + 1, extent), c));
            } else {
                const Vec<int16_t> a = loadAs<int16_t>(p, extent);
                const Vec<int16_t> b = loadAs<int16_t>(p + Channels, extent);
                addTerm(i, first[g], mulAddPairs(interleaveLow(a, b), c));
                addTerm(i, second[g], mulAddPairs(interleaveHigh(a, b), c));
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
};

// Sums in 32-bit integers, modulo 2^32, of signed 16-bit rows: `start` + sum of kernel[j] * rows[j][x],
// handed to Finish. With TimesScale, and where sumsAreExact(), the results are those of FloatColumnPass.
//
// Two output rows are made at a time: the interleaved elements of two rows serve both.
//
// Bound, per two taps and eight elements of an output row: one interleaving, two multiply-add instructions
// and two additions, of which a core does four a cycle.
template <class D, class Finish>
struct IntegerColumnPass {
    const int16_t* kernel;
    int64_t length;
    int32_t start;
    Finish finish;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        withConstant<3, 5, 7, 9, 11, 13, 15>(length, [&](auto known) OKPCV_INLINE_LAMBDA {
            if constexpr (known != 0) {
                run(FixedPairs<known>(kernel), out, step, outRows, rows, count);
            } else {
                run(AnyPairs(kernel, length), out, step, outRows, rows, count);
            }
        });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    // The taps, two rows at a time, of an output row and the one below it: calls add(j, own, next) for
    // j = 0, 2, 4, ... with the output row's coefficients for rows j and j + 1, which are taps j and j + 1 to
    // it, and the next one's, to which they are taps j - 1 and j. Taps that do not exist have coefficient 0.
    template <int Length>
    class FixedPairs {
      public:
        OKPCV_INLINE explicit FixedPairs(const int16_t* kernel) {
            for (int i = 0; i <= Length; ++i) c_[i] = kernelPair(kernel, Length, i - 1);
        }
        template <int Outputs, class Add>
        OKPCV_INLINE void forEach(const Add& add) const {
            for (int j = 0; j < Length + Outputs - 1; j += 2) add(j, c_[j + 1], c_[j]);
        }
        static constexpr int64_t length() { return Length; }

      private:
        static_assert(Length % 2 != 0);
        Vec<int16_t> c_[Length + 1];
    };
    class AnyPairs {
      public:
        OKPCV_INLINE AnyPairs(const int16_t* kernel, int64_t length) : kernel_(kernel), length_(length) {}

        template <int Outputs, class Add>
        OKPCV_INLINE void forEach(const Add& add) const {
            const auto addAny = [&](int64_t j) OKPCV_INLINE_LAMBDA {
                add(j, kernelPair(kernel_, length_, j), kernelPair(kernel_, length_, j - 1));
            };
            addAny(0);
            int64_t j = 2;
            for (; j + 8 <= length_; j += 8) {
                const Vec<int32_t> own = bitCast<int32_t>(load(kernel_ + j));
                const Vec<int32_t> next = bitCast<int32_t>(load(kernel_ + j - 1));
                unrolled<4>([&](auto i) OKPCV_INLINE_LAMBDA {
                    add(j + 2 * i, bitCast<int16_t>(broadcastLane<i>(own)),
                        bitCast<int16_t>(broadcastLane<i>(next)));
                });
            }
            for (; j < length_ + Outputs - 1; j += 2) addAny(j);
        }
        int64_t length() const { return length_; }

      private:
        const int16_t* kernel_;
        int64_t length_;
    };

    // Coefficients i and i + 1 of a kernel that is zero outside its length.
    static OKPCV_INLINE Vec<int16_t> kernelPair(const int16_t* kernel, int64_t length, int64_t i) {
        if (i >= length) return zeros<int16_t>();
        if (i == length - 1) return coefficientAndZero(kernel, i);
        if (i >= 0) return coefficientPair(kernel, i);
        return bitCast<int16_t>(shiftLeft(bitCast<int32_t>(coefficientAndZero(kernel, 0)), 16));
    }

    template <class Pairs>
    OKPCV_INLINE void run(const Pairs& pairs, D* out, int64_t step, int64_t outRows,
                          const int16_t* const* rows, int64_t count) const {
        const Image<D> dst{out, step};
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            int64_t r = 0;
            for (; r + 2 <= outRows; r += 2) {
                makeRows<2, block.vectors>(pairs, dst, r, rows + r, x, extent);
            }
            if (r < outRows) makeRows<1, block.vectors>(pairs, dst, r, rows + r, x, extent);
        });
    }

    // `Outputs` output rows from row r on, N vectors of 16-bit elements at x.
    template <int Outputs, int N, class Pairs, class Extent>
    OKPCV_INLINE void makeRows(const Pairs& pairs, const Image<D>& dst, int64_t r, const int16_t* const* rows,
                               int64_t x, Extent extent) const {
        const int64_t last = pairs.length() + Outputs - 2;  // of the rows
        Vec<int32_t> sum[Outputs][2 * N];
        for (auto& row : sum) {
            for (auto& v : row) v = broadcast(start);
        }
        pairs.template forEach<Outputs>(
            [&](int64_t j, Vec<int16_t> own, Vec<int16_t> next) OKPCV_INLINE_LAMBDA {
                const int16_t* const first = rows[j] + x;
                const int16_t* const second = rows[j < last ? j + 1 : j] + x;
                for (int g = 0; g < N; ++g) {
                    const Vec<int16_t> a = load(first + g * lanes, extent);
                    const Vec<int16_t> b = load(second + g * lanes, extent);
                    const Vec<int16_t> low = interleaveLow(a, b);
                    const Vec<int16_t> high = interleaveHigh(a, b);
                    addTerm(j, sum[0][2 * g], mulAddPairs(low, own));
                    addTerm(j, sum[0][2 * g + 1], mulAddPairs(high, own));
                    if constexpr (Outputs == 2) {
                        addTerm(j, sum[1][2 * g], mulAddPairs(low, next));
                        addTerm(j, sum[1][2 * g + 1], mulAddPairs(high, next));
                    }
                }
            });
        for (int o = 0; o < Outputs; ++o) finish(dst.row(r + o) + x, sum[o], extent);
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
template <int V, class Extent>
OKPCV_INLINE void addWrapping(Vec<int16_t> (&sum)[V], Vec<int16_t> c, const int16_t* a, const int16_t* b,
                              Extent extent) {
    constexpr int lanes = Vec<int16_t>::lanes;
    for (int v = 0; v < V; ++v) {
        const Vec<int16_t> both = load(a + v * lanes, extent) + load(b + v * lanes, extent);
        accumulate(sum[v], both * c);
    }
}
template <int V, class Extent>
OKPCV_INLINE void addWrapping(Vec<int16_t> (&sum)[V], Vec<int16_t> c, const int16_t* a, Extent extent) {
    for (int v = 0; v < V; ++v) accumulate(sum[v], load(a + v * Vec<int16_t>::lanes, extent) * c);
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
    const int64_t length = kernel.symmetric() ? kernel.length() : 0;
    withConstant<3, 5, 7, 9>(length, [&](auto known) OKPCV_INLINE_LAMBDA {
        if constexpr (known != 0) {
            run(FixedWrappingTaps<known>(kernel));
        } else {
            run(AnyWrappingTaps(kernel));
        }
    });
}

// A kernel as a sum of terms, each of which weighs two neighbouring taps with 8-bit coefficients so small
// that the term of any two 8-bit pixels fits 16 bits. Large coefficients are spread over several terms.
class PairedKernel {
  public:
    static constexpr int64_t longest = 64;
    // Of a kernel, the sum of its coefficients without signs: its sums of bytes then span 16 bits at most.
    static constexpr int64_t largestMagnitude = 65535 / 255;

    // `length` must be 2 to `longest`. There is at least one term.
    PairedKernel(const int16_t* kernel, int64_t length) {
        int next = coefficient(kernel, 0);
        for (int64_t tap = 0; tap + 1 < length; ++tap) {
            int own = next;
            next = coefficient(kernel, tap + 1);
            const bool last = tap + 2 == length;
            while (own != 0 || (last && (next != 0 || terms_ == 0))) {
                const int a = limited(own, 0);
                const int b = limited(next, a);
                append(tap, a, b);
                own -= a;
                next -= b;
            }
        }
    }

    int terms() const { return terms_; }
    // The first of a term's two taps.
    int64_t tap(int term) const { return taps_[term]; }
    // Its coefficients, in all pairs of lanes.
    OKPCV_INLINE Vec<int8_t> operator[](int term) const { return load(table_ + term * Vec<int8_t>::lanes); }

  private:
    static constexpr int most = 128;  // 128 * 255 fits 16 bits
    // Each tap but the last begins one term; another one only if a term before it has taken most - 1 of the
    // magnitude at least.
    static constexpr int64_t capacity = longest + largestMagnitude / (most - 1);

    // As much of a coefficient as a term takes that has another one.
    static int limited(int k, int other) {
        const int low = other < 0 ? -most - other : -most;
        const int high = other > 0 ? most - other : most - 1;
        return k < low ? low : k > high ? high : k;
    }
    void append(int64_t tap, int a, int b) {
        taps_[terms_] = tap;
        int8_t* const pairs = table_ + terms_ * Vec<int8_t>::lanes;
        for (int i = 0; i < Vec<int8_t>::lanes; i += 2) {
            pairs[i] = static_cast<int8_t>(a);
            pairs[i + 1] = static_cast<int8_t>(b);
        }
        ++terms_;
    }

    alignas(kVectorBytes) int8_t table_[capacity * Vec<int8_t>::lanes];
    int64_t taps_[capacity];
    int terms_ = 0;
};

// Sums in 16-bit integers, modulo 2^16, of 8-bit elements: out[x] = start + sum of kernel[i] * in[x + i * C].
//
// Bound, per term (about two taps) and sixteen elements: two loads, two multiply-add instructions and two
// additions, and two interleavings for several channels.
template <int Channels>
struct PairedRowPass {
    const PairedKernel& kernel;
    int16_t start;

    __attribute__((noinline)) void operator()(int16_t* const* out, const uint8_t* const* in, int64_t rows,
                                              int64_t count) const {
        withConstant<2, 3, 4, 5, 6, 7, 8>(kernel.terms(), [&](auto known) OKPCV_INLINE_LAMBDA {
            if constexpr (known != 0) {
                const FixedTerms<known> terms(kernel);
                for (int64_t r = 0; r < rows; ++r) run(terms, out[r], in[r], count);
            } else {
                for (int64_t r = 0; r < rows; ++r) run(AnyTerms(kernel), out[r], in[r], count);
            }
        });
    }

  private:
    static constexpr int lanes = Vec<uint8_t>::lanes;

    // The terms: calls add(i, place, coefficients) for i = 0, 1, ..., where the elements seen by the first
    // tap of term i begin at `place`.
    template <int Terms>
    class FixedTerms {
      public:
        static constexpr int vectors = 2;

        OKPCV_INLINE explicit FixedTerms(const PairedKernel& kernel) {
            for (int i = 0; i < Terms; ++i) {
                c_[i] = kernel[i];
                at_[i] = kernel.tap(i) * Channels;
            }
        }
        template <class Add>
        OKPCV_INLINE void forEach(const uint8_t* p, const Add& add) const {
            for (int i = 0; i < Terms; ++i) add(i, p + at_[i], c_[i]);
        }

      private:
        Vec<int8_t> c_[Terms];
        int64_t at_[Terms];
    };
    class AnyTerms {
      public:
        static constexpr int vectors = 4;

        OKPCV_INLINE explicit AnyTerms(const PairedKernel& kernel) : kernel_(kernel) {}
        template <class Add>
        OKPCV_INLINE void forEach(const uint8_t* p, const Add& add) const {
            const auto addAny = [&](int i) OKPCV_INLINE_LAMBDA {
                add(i, p + kernel_.tap(i) * Channels, kernel_[i]);
            };
            addAny(0);
            for (int i = 1; i < kernel_.terms(); ++i) addAny(i);
        }

      private:
        const PairedKernel& kernel_;
    };

    template <class Terms>
    OKPCV_INLINE void run(const Terms& terms, int16_t* out, const uint8_t* in, int64_t count) const {
        constexpr int half = lanes / 2;
        int64_t x = 0;
        constexpr int block = Terms::vectors * lanes;
        for (; x + block <= count; x += block) sums<Terms::vectors>(terms, out + x, in + x, Whole{});
        for (; x + lanes <= count; x += lanes) sums<1>(terms, out + x, in + x, Whole{});
        if (x == count) return;
        // The last elements again, with those before them.
        if (count >= lanes) {
            sums<1>(terms, out + count - lanes, in + count - lanes, Whole{});
        } else if (count >= half) {
            sums<1>(terms, out, in, Part{half});
            if (count > half) sums<1>(terms, out + count - half, in + count - half, Part{half});
        } else {
            sums<1>(terms, out, in, Part{static_cast<int>(count)});
        }
    }

    // Of a single channel, the first sums are those of even elements and the second those of odd ones; of
    // several channels, the elements of two taps are interleaved, and the first sums are those of the first
    // half.
    template <int N, class Terms, class Extent>
    OKPCV_INLINE void sums(const Terms& terms, int16_t* out, const uint8_t* in, Extent extent) const {
        Vec<int16_t> first[N], second[N];
        for (int g = 0; g < N; ++g) first[g] = second[g] = broadcast(start);
        terms.forEach(in, [&](int i, const uint8_t* p, Vec<int8_t> c) OKPCV_INLINE_LAMBDA {
            for (int g = 0; g < N; ++g, p += lanes) {
                if constexpr (Channels == 1) {
                    addTerm(i, first[g], mulAddPairs(load(p, extent.from(-1)), c));
                    addTerm(i, second[g], mulAddPairs(load(p + 1, extent), c));
                } else {
                    const Vec<uint8_t> a = load(p, extent);
                    const Vec<uint8_t> b = load(p + Channels, extent);
                    addTerm(i, first[g], mulAddPairs(interleaveLow(a, b), c));
                    addTerm(i, second[g], mulAddPairs(interleaveHigh(a, b), c));
                }
            }
        });
        constexpr int half = lanes / 2;
        for (int g = 0; g < N; ++g, out += lanes) {
            const bool inOrder = Channels > 1;
            store(out, inOrder ? first[g] : interleaveLow(first[g], second[g]), extent);
            store(out + half, inOrder ? second[g] : interleaveHigh(first[g], second[g]), extent.from(half));
        }
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
