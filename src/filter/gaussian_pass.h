// Row and column passes of the Gaussian filters (see row_pass.h and column_pass.h). Kernels are symmetric, of
// odd length, and have no negative coefficient.
//
// Integer images: each pass computes (sum of coefficient * element + 2^(bits - 1)) >> bits exactly, saturated
// to the type. Float images: the centre's product first, then from the centre outwards each product of a
// coefficient with the sum of the two elements that share it; every operation rounded to single precision.
#pragma once

#include <cstdint>

#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "filter/integer_pass.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// forBlocks over the elements of destination rows, with ordinary stores or, beginning with the first cache
// line of a row, past the caches. Where not all rows are aligned alike the stores are ordinary.
template <int Vectors, class D, class Step>
OKPCV_INLINE void forStored(D* out, int64_t step, int64_t count, bool streamed, const Step& body) {
    constexpr int lanes = Vec<D>::lanes;
    const auto address = reinterpret_cast<uintptr_t>(out);
    int64_t x = count;
    if (streamed && address % sizeof(D) == 0 && step % kVectorBytes == 0) {
        x = static_cast<int64_t>((kCacheLineBytes - address % kCacheLineBytes) % kCacheLineBytes / sizeof(D));
        if (x > count) x = count;
    }
    forBlocks<Vectors, lanes>(x, body);
    for (; x + Vectors * lanes <= count; x += Vectors * lanes) body(Block<Vectors>{}, Streamed{}, x);
    for (; x + lanes <= count; x += lanes) body(Block<1>{}, Streamed{}, x);
    forBlocks<1, lanes>(count - x, [&](auto block, auto extent, int64_t at)
                                       OKPCV_INLINE_LAMBDA { body(block, extent, x + at); });
}

// ---- 8-bit images, coefficients in two digits -----------------------------------------------------------

// An 8-bit kernel split for instructions that multiply bytes and add neighbours in 16 bits: each coefficient
// is high * 2^digit + low, so that
//
//     (sum + 2^11) >> 12 = (sumOfHighs + 2^(11 - digit) + (sumOfLows >> digit)) >> (12 - digit)
//
// exactly. Sums of highs may wrap as long as what is shifted last fits 16 bits; sums of lows and sums of two
// products must not.
class ByteTaps {
  public:
    static constexpr int64_t longest = 63;

    ByteTaps(const int16_t* kernel, int64_t length) : length_(length) {
        if (length > longest) return;
        for (const int digit : {5, 4}) {
            digit_ = digit;
            splits_ = split(kernel);
            if (splits_) return;
        }
    }

    // Whether the kernel can be split so.
    bool splits() const { return splits_; }
    int64_t length() const { return length_; }

    // The digits of the taps 2 * pair and 2 * pair + 1 (0 where there is none) in all pairs of lanes; of the
    // last tap also the other way round.
    OKPCV_INLINE Vec<int8_t> high(int64_t pair) const { return load(high_[pair]); }
    OKPCV_INLINE Vec<int8_t> low(int64_t pair) const { return load(low_[pair]); }
    OKPCV_INLINE Vec<int8_t> lastHigh() const { return load(high_[length_ / 2 + 1]); }
    OKPCV_INLINE Vec<int8_t> lastLow() const { return load(low_[length_ / 2 + 1]); }

    OKPCV_INLINE Vec<int16_t> start() const { return broadcast(static_cast<int16_t>(1 << (11 - digit_))); }
    // Of sums of highs, which began with start(), and of lows.
    OKPCV_INLINE Vec<int16_t> finished(Vec<int16_t> highs, Vec<int16_t> lows) const {
        return bitCast<int16_t>(shiftRight(bitCast<uint16_t>(highs + shiftRight(lows, digit_)), 12 - digit_));
    }

  private:
    static constexpr int32_t kLargestSum = 4103;  // of coefficients: then no result exceeds 255
    static constexpr int32_t kLargestByteSum = 128;

    bool split(const int16_t* kernel) {
        int32_t sum = 0, above = 0, below = 0, previousHigh = 0;
        int8_t highs[longest + 1] = {}, lows[longest + 1] = {};
        for (int64_t i = 0; i < length_; ++i) {
            const int32_t k = coefficient(kernel, i);
            const int32_t base = 1 << digit_;
            int32_t low = k & (base - 1);
            // The lows are kept balanced, which keeps their sums small.
            if (above + low > below + base - low && (k >> digit_) < 127) low -= base;
            const int32_t high = (k - low) >> digit_;
            if (high > 127) {
                low += (high - 127) * base;
                if (low > 127) return false;
            }
            highs[i] = static_cast<int8_t>(high > 127 ? 127 : high);
            lows[i] = static_cast<int8_t>(low);
            (low > 0 ? above : below) += low > 0 ? low : -low;
            sum += k;
            if (highs[i] + previousHigh > kLargestByteSum) return false;
            previousHigh = highs[i];
        }
        if (sum > kLargestSum || above > kLargestByteSum || below > kLargestByteSum) return false;
        for (int64_t pair = 0; pair <= length_ / 2; ++pair) {
            fill(high_[pair], highs[2 * pair], highs[2 * pair + 1]);
            fill(low_[pair], lows[2 * pair], lows[2 * pair + 1]);
        }
        fill(high_[length_ / 2 + 1], 0, highs[length_ - 1]);
        fill(low_[length_ / 2 + 1], 0, lows[length_ - 1]);
        return true;
    }
    static void fill(int8_t* lanes, int8_t first, int8_t second) {
        store(lanes, interleaveLow(broadcast(first), broadcast(second)));
    }

    static constexpr int kLanes = Vec<int8_t>::lanes;
    alignas(kVectorBytes) int8_t high_[longest / 2 + 2][kLanes];
    alignas(kVectorBytes) int8_t low_[longest / 2 + 2][kLanes];
    int64_t length_;
    int digit_ = 0;
    bool splits_ = false;
};

// The taps of a kernel whose length the code knows, or of any (Length 0): calls body(i) for the pairs of taps
// before the last tap.
template <int Length, class Body>
OKPCV_INLINE void forPairs(int64_t length, const Body& body) {
    if constexpr (Length != 0) {
        unrolled<Length / 2>([&](auto pair) OKPCV_INLINE_LAMBDA { body(int64_t{pair}); });
    } else {
        for (int64_t pair = 0; pair < length / 2; ++pair) body(pair);
    }
}

// One vector of results; Tap is a function that gives the address seen by tap i.
//
// Bound, per two taps and sixteen elements: two loads, two interleavings, four multiply-add instructions and
// four additions.
template <int Length, class Tap, class Extent>
OKPCV_INLINE Vec<uint8_t> byteResults(const ByteTaps& taps, const Tap& tap, Extent extent) {
    Vec<int16_t> highs[2] = {taps.start(), taps.start()};
    Vec<int16_t> lows[2] = {zeros<int16_t>(), zeros<int16_t>()};
    const auto add = [&](Vec<uint8_t> a, Vec<uint8_t> b, int64_t pair) OKPCV_INLINE_LAMBDA {
        const Vec<uint8_t> first = interleaveLow(a, b);
        const Vec<uint8_t> second = interleaveHigh(a, b);
        highs[0] = highs[0] + mulAddPairs(first, taps.high(pair));
        highs[1] = highs[1] + mulAddPairs(second, taps.high(pair));
        lows[0] = lows[0] + mulAddPairs(first, taps.low(pair));
        lows[1] = lows[1] + mulAddPairs(second, taps.low(pair));
    };
    const int64_t length = Length != 0 ? Length : taps.length();
    forPairs<Length>(length, [&](int64_t pair) OKPCV_INLINE_LAMBDA {
        add(load(tap(2 * pair), extent), load(tap(2 * pair + 1), extent), pair);
    });
    add(load(tap(length - 1), extent), zeros<uint8_t>(), length / 2);
    return narrowSaturated<uint8_t>(taps.finished(highs[0], lows[0]), taps.finished(highs[1], lows[1]));
}

// The same of neighbouring elements of a row of one channel. A load at the first of two taps has the two
// neighbours in place for even elements, a load one further on for odd ones: nothing is interleaved.
template <int Length, class Extent>
OKPCV_INLINE Vec<uint8_t> byteResultsOfNeighbours(const ByteTaps& taps, const uint8_t* in, Extent extent) {
    const auto oneMore = [](auto e) OKPCV_INLINE_LAMBDA {
        if constexpr (std::is_same_v<decltype(e), Part>) {
            return Part{e.count + 1};
        } else {
            return e;
        }
    };
    Vec<int16_t> evenHighs = taps.start(), oddHighs = taps.start();
    Vec<int16_t> evenLows = zeros<int16_t>(), oddLows = zeros<int16_t>();
    const auto add = [&](Vec<uint8_t> even, Vec<uint8_t> odd, Vec<int8_t> evenHigh, Vec<int8_t> evenLow,
                         Vec<int8_t> oddHigh, Vec<int8_t> oddLow) OKPCV_INLINE_LAMBDA {
        evenHighs = evenHighs + mulAddPairs(even, evenHigh);
        oddHighs = oddHighs + mulAddPairs(odd, oddHigh);
        evenLows = evenLows + mulAddPairs(even, evenLow);
        oddLows = oddLows + mulAddPairs(odd, oddLow);
    };
    const int64_t length = Length != 0 ? Length : taps.length();
    forPairs<Length>(length, [&](int64_t pair) OKPCV_INLINE_LAMBDA {
        add(load(in + 2 * pair, oneMore(extent)), load(in + 2 * pair + 1, extent), taps.high(pair),
            taps.low(pair), taps.high(pair), taps.low(pair));
    });
    const Vec<uint8_t> last = load(in + length - 1, extent);
    add(last, last, taps.high(length / 2), taps.low(length / 2), taps.lastHigh(), taps.lastLow());
    return bitCast<uint8_t>(taps.finished(evenHighs, evenLows) |
                            shiftLeft(taps.finished(oddHighs, oddLows), 8));
}

// Calls run(std::integral_constant) with the length if code is dedicated to it, with 0 otherwise.
template <class Run>
OKPCV_INLINE void withGaussianLength(int64_t length, const Run& run) {
    switch (length) {
        case 3:
            return run(std::integral_constant<int, 3>{});
        case 5:
            return run(std::integral_constant<int, 5>{});
        case 7:
            return run(std::integral_constant<int, 7>{});
        default:
            return run(std::integral_constant<int, 0>{});
    }
}

template <int Channels>
struct ByteRowPass {
    const ByteTaps& taps;

    __attribute__((noinline)) void operator()(uint8_t* out, const uint8_t* in, int64_t count) const {
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            forBlocks<1, Vec<uint8_t>::lanes>(count, [&](auto, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                if constexpr (Channels == 1) {
                    store(out + x, byteResultsOfNeighbours<length>(taps, in + x, extent), extent);
                } else {
                    const auto tap = [p = in + x](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * Channels; };
                    store(out + x, byteResults<length>(taps, tap, extent), extent);
                }
            });
        });
    }
};

struct ByteColumnPass {
    const ByteTaps& taps;
    bool streamed;

    __attribute__((noinline)) void operator()(uint8_t* out, int64_t step, int64_t outRows,
                                              const uint8_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<uint8_t>::lanes;
        const Image<uint8_t> dst{out, step};
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            forStored<kCacheLineBytes / kVectorBytes>(
                out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    for (int64_t r = 0; r < outRows; ++r) {
                        for (int v = 0; v < block.vectors; ++v) {
                            const int64_t at = x + v * lanes;
                            const auto tap = [row = rows + r, at](int64_t i)
                                                 OKPCV_INLINE_LAMBDA { return row[i] + at; };
                            store(dst.row(r) + at, byteResults<length>(taps, tap, extent), extent);
                        }
                    }
                });
        });
    }
};

// ---- Integer images of any type -------------------------------------------------------------------------

// A kernel with 16-bit coefficients, and how its sums become results. Elements of unsigned 16-bit images are
// kept less 32768, in rows and between the passes, to fit the signed factors of the multiply-add
// instructions; what that takes from a sum is part of the sum's start. Sums are formed modulo 2^32.
template <class T>
struct WordTaps {
    const int16_t* kernel;
    int64_t length;
    int bits;
    int32_t start;

    static constexpr int16_t kBias = std::is_same_v<T, uint16_t> ? -32768 : 0;

    template <class Extent>
    static OKPCV_INLINE Vec<int16_t> elements(const T* p, Extent extent) {
        if constexpr (sizeof(T) == 1) {
            return loadAs<int16_t>(p, extent);
        } else {
            return withBias(bitCast<int16_t>(load(p, extent)));
        }
    }
    // Adds or takes away the bias: the same operation.
    static OKPCV_INLINE Vec<int16_t> withBias(Vec<int16_t> v) {
        if constexpr (kBias == 0) return v;
        return v ^ broadcast(kBias);
    }

    // The results of two vectors of sums, saturated to T and biased.
    OKPCV_INLINE Vec<int16_t> results(Vec<int32_t> low, Vec<int32_t> high) const {
        if constexpr (std::is_same_v<T, uint16_t>) {
            // Sums are not negative and may need all 32 bits.
            const auto shifted = [&](Vec<int32_t> v) OKPCV_INLINE_LAMBDA {
                return bitCast<int32_t>(shiftRight(bitCast<uint32_t>(v), bits));
            };
            return withBias(bitCast<int16_t>(narrowSaturated<uint16_t>(shifted(low), shifted(high))));
        } else {
            const Vec<int16_t> v = narrowSaturated<int16_t>(shiftRight(low, bits), shiftRight(high, bits));
            if constexpr (sizeof(T) == 1) return min(v, broadcast(int16_t{255}));
            return v;
        }
    }
};

// Bound, per two taps and eight elements of one channel: two loads, two multiply-add instructions and two
// additions; of several channels two interleavings more.
template <class T, int Channels>
struct WordRowPass {
    WordTaps<T> taps;

    __attribute__((noinline)) void operator()(int16_t* out, const T* in, int64_t count) const {
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            const T* p = in + x;
            Vec<int32_t> first[n], second[n];
            for (int g = 0; g < n; ++g) first[g] = second[g] = broadcast(taps.start);
            int64_t i = 0;
            for (; i + 2 <= taps.length; i += 2, p += 2 * Channels) {
                const Vec<int16_t> c = coefficientPair(taps.kernel, i);
                for (int g = 0; g < n; ++g) addPair(first[g], second[g], c, p + g * lanes, extent);
            }
            const Vec<int16_t> c = coefficientAndZero(taps.kernel, i);
            for (int g = 0; g < n; ++g) {
                addLast(first[g], second[g], c, p + g * lanes, extent);
                if constexpr (Channels == 1) {
                    const Vec<int32_t> low = interleaveLow(first[g], second[g]);
                    second[g] = interleaveHigh(first[g], second[g]);
                    first[g] = low;
                }
                store(out + x + g * lanes, taps.results(first[g], second[g]), extent);
            }
        });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    // Of a single channel, the first sums are those of even elements and the second those of odd ones; of
    // several, those of the first and the second half.
    template <class Extent>
    static OKPCV_INLINE void addPair(Vec<int32_t>& first, Vec<int32_t>& second, Vec<int16_t> c, const T* p,
                                     Extent extent) {
        if constexpr (Channels == 1) {
            const auto oneMore = [](auto e) OKPCV_INLINE_LAMBDA {
                if constexpr (std::is_same_v<decltype(e), Part>) {
                    return Part{e.count + 1};
                } else {
                    return e;
                }
            };
            first = first + mulAddPairs(WordTaps<T>::elements(p, oneMore(extent)), c);
            second = second + mulAddPairs(WordTaps<T>::elements(p + 1, extent), c);
        } else {
            const Vec<int16_t> a = WordTaps<T>::elements(p, extent);
            const Vec<int16_t> b = WordTaps<T>::elements(p + Channels, extent);
            first = first + mulAddPairs(interleaveLow(a, b), c);
            second = second + mulAddPairs(interleaveHigh(a, b), c);
        }
    }
    template <class Extent>
    static OKPCV_INLINE void addLast(Vec<int32_t>& first, Vec<int32_t>& second, Vec<int16_t> c, const T* p,
                                     Extent extent) {
        const Vec<int16_t> a = WordTaps<T>::elements(p, extent);
        if constexpr (Channels == 1) {
            first = first + mulAddPairs(a, c);
            second = second + mulAddPairs(a, bitCast<int16_t>(shiftLeft(bitCast<int32_t>(c), 16)));
        } else {
            first = first + mulAddPairs(interleaveLow(a, a), c);
            second = second + mulAddPairs(interleaveHigh(a, a), c);
        }
    }
};

// Bound, per two taps and eight elements: two loads, two interleavings, two multiply-add instructions and two
// additions.
template <class T>
struct WordColumnPass {
    WordTaps<T> taps;
    bool streamed;

    __attribute__((noinline)) void operator()(T* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<T>::lanes;
        constexpr int groups = lanes / Vec<int16_t>::lanes;  // of sums for one vector of results
        const Image<T> dst{out, step};
        forStored<2>(out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors * groups;
            for (int64_t r = 0; r < outRows; ++r) {
                const int16_t* const* const row = rows + r;
                Vec<int32_t> low[n], high[n];
                for (int g = 0; g < n; ++g) low[g] = high[g] = broadcast(taps.start);
                const auto add = [&](const int16_t* a, const int16_t* b, Vec<int16_t> c) OKPCV_INLINE_LAMBDA {
                    for (int g = 0; g < n; ++g) {
                        const int at = g * Vec<int16_t>::lanes;
                        const Vec<int16_t> first = load(a + x + at, extent.from(at));
                        const Vec<int16_t> second = load(b + x + at, extent.from(at));
                        low[g] = low[g] + mulAddPairs(interleaveLow(first, second), c);
                        high[g] = high[g] + mulAddPairs(interleaveHigh(first, second), c);
                    }
                };
                int64_t j = 0;
                for (; j + 2 <= taps.length; j += 2) add(row[j], row[j + 1], coefficientPair(taps.kernel, j));
                add(row[j], row[j], coefficientAndZero(taps.kernel, j));
                for (int v = 0; v < block.vectors; ++v) {
                    T* const at = dst.row(r) + x + v * lanes;
                    const int g = v * groups;
                    if constexpr (groups == 2) {
                        store(at,
                              narrowSaturated<T>(taps.results(low[g], high[g]),
                                                 taps.results(low[g + 1], high[g + 1])),
                              extent);
                    } else {
                        store(at, bitCast<T>(WordTaps<T>::withBias(taps.results(low[g], high[g]))), extent);
                    }
                }
            }
        });
    }
};

// ---- Float images ---------------------------------------------------------------------------------------

// One kernel, its coefficients in registers if its length is known, for blocks of vectors.
template <int Length>
class FoldedTaps {
  public:
    static constexpr int vectors = Length != 0 ? 4 : 6;

    OKPCV_INLINE FoldedTaps(const float* kernel, int64_t length)
        : centre_(kernel + length / 2), half_(length / 2) {
        if constexpr (Length != 0) {
            for (int i = 0; i <= Length / 2; ++i) c_[i] = broadcast(coefficient(centre_, i));
        }
    }

    template <int V, class Tap, class Extent>
    OKPCV_INLINE void sum(Vec<float> (&acc)[V], const Tap& tap, Extent extent) const {
        constexpr int lanes = Vec<float>::lanes;
        const int64_t half = Length != 0 ? Length / 2 : half_;
        const auto c = [&](int64_t i) OKPCV_INLINE_LAMBDA {
            return Length != 0 ? c_[i] : broadcast(coefficient(centre_, i));
        };
        const Vec<float> middle = c(0);
        for (int v = 0; v < V; ++v) acc[v] = middle * load(tap(half) + v * lanes, extent);
        for (int64_t i = 1; i <= half; ++i) {
            const Vec<float> k = c(i);
            const float* const a = tap(half - i);
            const float* const b = tap(half + i);
            for (int v = 0; v < V; ++v) {
                accumulate(acc[v], k * (load(a + v * lanes, extent) + load(b + v * lanes, extent)));
            }
        }
    }

  private:
    const float* centre_;
    int64_t half_;
    Vec<float> c_[Length / 2 + 1];
};

// Bound, per two taps and vector: two additions and one multiplication.
template <int Channels>
struct FoldedRowPass {
    const float* kernel;
    int64_t length;

    __attribute__((noinline)) void operator()(float* out, const float* in, int64_t count) const {
        withGaussianLength(length, [&](auto fixed) OKPCV_INLINE_LAMBDA {
            constexpr int lanes = Vec<float>::lanes;
            const FoldedTaps<fixed> taps(kernel, length);
            forBlocks<taps.vectors, lanes>(count, [&](auto block, auto extent,
                                                      int64_t x) OKPCV_INLINE_LAMBDA {
                Vec<float> acc[block.vectors];
                taps.sum(
                    acc, [p = in + x](int64_t i) OKPCV_INLINE_LAMBDA { return p + i * Channels; }, extent);
                for (int v = 0; v < block.vectors; ++v) store(out + x + v * lanes, acc[v], extent);
            });
        });
    }
};

struct FoldedColumnPass {
    const float* kernel;
    int64_t length;
    bool streamed;

    __attribute__((noinline)) void operator()(float* out, int64_t step, int64_t outRows,
                                              const float* const* rows, int64_t count) const {
        const Image<float> dst{out, step};
        withGaussianLength(length, [&](auto fixed) OKPCV_INLINE_LAMBDA {
            constexpr int lanes = Vec<float>::lanes;
            const FoldedTaps<fixed> taps(kernel, length);
            forStored<4>(
                out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    for (int64_t r = 0; r < outRows; ++r) {
                        Vec<float> acc[block.vectors];
                        taps.sum(
                            acc, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; },
                            extent);
                        for (int v = 0; v < block.vectors; ++v) {
                            store(dst.row(r) + x + v * lanes, acc[v], extent);
                        }
                    }
                });
        });
    }
};

}  // namespace okpcv
