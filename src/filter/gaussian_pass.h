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
#include "core/with_constant.h"
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

// Calls run(load) with the load for element x of rows of the ring, which begin at aligned addresses.
template <int Lanes, class Extent, class Run>
OKPCV_INLINE void forRowLoads(int64_t x, Extent, const Run& run) {
    if (!std::is_same_v<Extent, Part> && x % Lanes == 0) {
        run([](const auto* p, auto) OKPCV_INLINE_LAMBDA { return loadAligned(p); });
    } else {
        run([](const auto* p, auto extent) OKPCV_INLINE_LAMBDA { return load(p, extent); });
    }
}

// Calls run(std::integral_constant) with the length if code is dedicated to it, with 0 otherwise.
template <class Run>
OKPCV_INLINE void withGaussianLength(int64_t length, const Run& run) {
    withConstant<3, 5, 7, 9>(length, run);
}

// ---- 8-bit images ---------------------------------------------------------------------------------------

// An 8-bit kernel, folded: tap 0 sees the centre, tap i the sum of the two elements that are i away from it.
// Two such words at a time are multiplied and added in 32 bits.
class ByteTaps {
  public:
    // Elements of the table for a kernel of a length.
    static constexpr int64_t tableElements(int64_t length) { return (length / 4 + 1) * kLanes; }

    // `table` must be aligned for vectors.
    ByteTaps(const int16_t* kernel, int64_t length, int16_t* table) : table_(table), half_(length / 2) {
        const int16_t* const centre = kernel + half_;
        const auto put = [table](int64_t i, int16_t first, int16_t second) {
            store(table + i * kLanes, interleaveLow(broadcast(first), broadcast(second)));
        };
        const int64_t pairs = half_ / 2;
        for (int64_t i = 0; i < pairs; ++i) {
            put(i, coefficient(centre, 2 * i + 1), coefficient(centre, 2 * i + 2));
        }
        if (half_ % 2 != 0) {
            put(pairs, coefficient(centre, half_), coefficient(centre, 0));
        } else {
            put(pairs, coefficient(centre, 0), kHalf);
        }
    }

    // Taps on either side of the centre.
    int64_t half() const { return half_; }

    // For mulAddPairs, the coefficients of the taps 2 * i + 1 and 2 * i + 2. At the end, at i = half() / 2,
    // those of the last tap and the centre, or of the centre and a rounding term.
    OKPCV_INLINE Vec<int16_t> pair(int64_t i) const { return loadAligned(table_ + i * kLanes); }

    static constexpr int kBits = 12;
    static constexpr int16_t kHalf = 1 << (kBits - 1);

  private:
    static constexpr int kLanes = Vec<int16_t>::lanes;

    const int16_t* table_;
    int64_t half_;
};

// The taps for the time of one pass: those of a kernel whose length the code knows stay in registers, those
// of any other (Length 0) are read from their table.
template <int Length>
class PassTaps {
  public:
    OKPCV_INLINE explicit PassTaps(const ByteTaps& taps)
        : rounding(inRegister(broadcast(int32_t{ByteTaps::kHalf}))), table_(taps), anyHalf_(taps.half()) {
        if constexpr (Length != 0) {
            for (int i = 0; i <= Length / 4; ++i) pairs_[i] = taps.pair(i);
        }
    }

    const Vec<int32_t> rounding;

    OKPCV_INLINE int64_t half() const { return Length != 0 ? Length / 2 : anyHalf_; }
    OKPCV_INLINE Vec<int16_t> pair(int64_t i) const { return Length != 0 ? pairs_[i] : table_.pair(i); }
    // Calls body(i) for the pairs from `first` on that are full.
    template <class Body>
    OKPCV_INLINE void forPairs(int64_t first, const Body& body) const {
        if constexpr (Length != 0) {
            unrolled<Length / 4>([&](auto i) OKPCV_INLINE_LAMBDA {
                if (i >= first) body(i);
            });
        } else {
            for (int64_t i = first; i < anyHalf_ / 2; ++i) body(i);
        }
    }

    // Of sums that were rounded. Rounding the coefficients of a few taps adds too little to their sum for a
    // result above 255.
    static OKPCV_INLINE Vec<int16_t> results(Vec<int32_t> low, Vec<int32_t> high) {
        constexpr int bits = ByteTaps::kBits;
        const auto words = narrowSaturated<int16_t>(shiftRight(low, bits), shiftRight(high, bits));
        return Length != 0 ? words : min(words, broadcast(int16_t{255}));
    }

  private:
    const ByteTaps& table_;
    int64_t anyHalf_;
    Vec<int16_t> pairs_[Length / 4 + 1];
};

// Vectors of words; word(i, v) loads, as words, what tap i of 2 * half + 1 sees of vector v.
//
// Bound, per four taps and eight elements: four loads, two additions, two interleavings, two multiply-add
// instructions and two additions.
template <int V, int Length, class Word>
OKPCV_INLINE void foldedWords(Vec<int16_t> (&results)[V], const PassTaps<Length>& taps, const Word& word) {
    const int64_t half = taps.half();
    const auto both = [&](int64_t i, int v)
                          OKPCV_INLINE_LAMBDA { return word(half - i, v) + word(half + i, v); };
    Vec<int32_t> low[V], high[V];
    const Vec<int16_t> end = taps.pair(half / 2);
    for (int v = 0; v < V; ++v) {
        const bool centreFirst = half % 2 == 0;
        const Vec<int16_t> a = centreFirst ? word(half, v) : both(half, v);
        const Vec<int16_t> b = centreFirst ? broadcast(int16_t{1}) : word(half, v);
        low[v] = mulAddPairs(interleaveLow(a, b), end);
        high[v] = mulAddPairs(interleaveHigh(a, b), end);
        if (!centreFirst) {
            low[v] = low[v] + taps.rounding;
            high[v] = high[v] + taps.rounding;
        }
    }
    taps.forPairs(0, [&](int64_t i) OKPCV_INLINE_LAMBDA {
        const Vec<int16_t> c = taps.pair(i);
        for (int v = 0; v < V; ++v) {
            const Vec<int16_t> a = both(2 * i + 1, v);
            const Vec<int16_t> b = both(2 * i + 2, v);
            accumulate(low[v], mulAddPairs(interleaveLow(a, b), c));
            accumulate(high[v], mulAddPairs(interleaveHigh(a, b), c));
        }
    });
    for (int v = 0; v < V; ++v) results[v] = taps.results(low[v], high[v]);
}

// The row pass of long stretches, four outputs' sums at a time: a byte shuffle brings the elements that two
// taps of an output see into a lane of 32 bits, one instruction folds them, another multiplies and adds. The
// taps near the centre share the vector around it.
//
// Bound, per four taps and four outputs: one shuffle, two multiply-add instructions, one addition and one
// copy, or of taps far from the centre two loads.
template <int Channels, int Length>
class ByteRow {
    static constexpr int kLanes = Vec<uint8_t>::lanes;
    static constexpr int kOutputs = Vec<int32_t>::lanes;
    // The taps that the vector around the centre serves, on either side.
    static constexpr int kMostNear = (kLanes - kOutputs) / 2 / Channels;
    static constexpr int kNear = Length != 0 && Length / 2 < kMostNear ? Length / 2 : kMostNear;
    // Where the centre of the first output is in that vector, which ends with what the last tap sees.
    static constexpr int kCentre = kLanes - kOutputs - kNear * Channels;

  public:
    // Elements that are read before the first that a tap of a known length sees.
    static constexpr int before = kCentre - kNear * Channels;

    OKPCV_INLINE explicit ByteRow(const ByteTaps& taps)
        : taps_(taps), ones_(inRegister(broadcast(int8_t{1}))), far_(inRegister(laneOrder(Far{}))) {
        unrolled<kNear / 2>([&](auto i) OKPCV_INLINE_LAMBDA {
            near_[i] = inRegister(laneOrder(Near<2 * i + 1, 2 * i + 2>{}));
        });
        near_[kNear / 2] =
            inRegister(kNear % 2 == 0 ? laneOrder(Near<0, kNone>{}) : laneOrder(Near<kNear, 0>{}));
    }

    // Vectors of words.
    template <int V>
    OKPCV_INLINE void results(Vec<int16_t> (&words)[V], const uint8_t* in) const {
        constexpr int groups = 2 * V;
        const int64_t half = taps_.half();
        const uint8_t* const centre = in + half * Channels;
        Vec<uint8_t> near[groups];
        Vec<int32_t> sum[groups];
        for (int g = 0; g < groups; ++g) {
            near[g] = load(centre + g * kOutputs - kCentre);
            sum[g] = taps_.rounding;
        }
        const auto add = [&](int g, Vec<int16_t> v, int64_t i)
                             OKPCV_INLINE_LAMBDA { accumulate(sum[g], mulAddPairs(v, taps_.pair(i))); };
        unrolled<kNear / 2>([&](auto i) OKPCV_INLINE_LAMBDA {
            for (int g = 0; g < groups; ++g) add(g, folded(permuted(near[g], near_[i])), i);
        });
        taps_.forPairs(kNear / 2, [&](int64_t i) OKPCV_INLINE_LAMBDA {
            const uint8_t* const left = centre - (2 * i + 2) * Channels;
            const uint8_t* const right = centre + (2 * i + 2) * Channels + kOutputs - kLanes / 2;
            for (int g = 0; g < groups; ++g) {
                add(g, folded(permuted(loadHalves(left + g * kOutputs, right + g * kOutputs), far_)), i);
            }
        });
        if (half % 2 == 0) {
            for (int g = 0; g < groups; ++g) {
                add(g, bitCast<int16_t>(permuted(near[g], near_[kNear / 2])), half / 2);
            }
        } else if (half == kNear) {
            for (int g = 0; g < groups; ++g) {
                add(g, folded(permuted(near[g], near_[kNear / 2])), half / 2);
            }
        } else {
            for (int v = 0; v < V; ++v) {
                const auto word = [&](int64_t i) OKPCV_INLINE_LAMBDA {
                    return loadAs<int16_t>(centre + i * Channels + v * Vec<int16_t>::lanes);
                };
                const Vec<int16_t> last = word(-half) + word(half);
                add(2 * v, interleaveLow(last, word(0)), half / 2);
                add(2 * v + 1, interleaveHigh(last, word(0)), half / 2);
            }
        }
        for (int v = 0; v < V; ++v) words[v] = taps_.results(sum[2 * v], sum[2 * v + 1]);
    }

  private:
    static constexpr int kNone = -1;  // instead of a tap

    // The lanes of the vector around the centre that the taps A and B of each output see.
    template <int A, int B>
    struct Near {
        constexpr int operator()(int i) const {
            const int tap = i % 4 < 2 ? A : B;
            const bool right = i % 2 != 0;
            if (tap == kNone || (tap == 0 && right)) return -1;
            return kCentre + i / 4 + (right ? tap : -tap) * Channels;
        }
    };
    // The same of two neighbouring taps and two half vectors: what the left taps see begins the first, what
    // the right ones see ends the second.
    struct Far {
        constexpr int operator()(int i) const {
            const int inner = i % 4 < 2 ? Channels : 0;
            return i / 4 + (i % 2 != 0 ? kLanes - kOutputs - inner : inner);
        }
    };

    OKPCV_INLINE Vec<int16_t> folded(Vec<uint8_t> v) const { return mulAddPairs(v, ones_); }

    PassTaps<Length> taps_;
    Vec<int8_t> ones_;
    Vec<uint8_t> far_;
    Vec<uint8_t> near_[kNear / 2 + 1];
};

// A kernel k, 4096 - 2 k, k: its sum is one, so that
//
//     (sum + 2^11) >> 12 = centre + ((k * (left + right - 2 * centre) + 2^11) >> 12).
//
// Bound, per eight elements: three loads and five other instructions.
class ThreeTaps {
  public:
    static bool fits(const int16_t* kernel, int64_t length) {
        return length == 3 && 2 * coefficient(kernel, 0) + coefficient(kernel, 1) == 4096;
    }
    explicit ThreeTaps(const int16_t* kernel)
        : factor_(broadcast(static_cast<int16_t>(8 * coefficient(kernel, 0)))) {}

    OKPCV_INLINE Vec<int16_t> result(Vec<int16_t> left, Vec<int16_t> centre, Vec<int16_t> right) const {
        return centre + mulFraction(left + right - (centre + centre), factor_);
    }

  private:
    Vec<int16_t> factor_;
};

template <int Channels>
struct ThreeTapRowPass {
    ThreeTaps taps;

    __attribute__((noinline)) void operator()(int16_t* const* out, const uint8_t* const* in, int64_t rows,
                                              int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        const ThreeTaps t = taps;
        for (int64_t r = 0; r < rows; ++r) {
            const uint8_t* const row = in[r];
            int16_t* const results = out[r];
            forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                for (int v = 0; v < block.vectors; ++v) {
                    const int64_t at = x + v * lanes;
                    const auto word = [&](int64_t i) OKPCV_INLINE_LAMBDA {
                        return loadAs<int16_t>(row + at + i * Channels, extent);
                    };
                    store(results + at, t.result(word(0), word(1), word(2)), extent);
                }
            });
        }
    }
};

// Columns of bytes from rows of words; words(results, word) computes vectors of words, where word(i, v) loads
// what tap i sees of vector v.
template <class Words>
OKPCV_INLINE void forWordRows(uint8_t* out, int64_t step, int64_t outRows, const int16_t* const* rows,
                              int64_t count, bool streamed, const Words& words) {
    const Image<uint8_t> dst{out, step};
    forStored<kCacheLineBytes / kVectorBytes>(
        out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            forRowLoads<Vec<int16_t>::lanes>(x, extent, [&](const auto& loadRow) OKPCV_INLINE_LAMBDA {
                for (int64_t r = 0; r < outRows; ++r) {
                    for (int v = 0; v < block.vectors; ++v) {
                        const int64_t at = x + v * Vec<uint8_t>::lanes;
                        Vec<int16_t> results[2];
                        words(results, [&](int64_t i, int half) OKPCV_INLINE_LAMBDA {
                            const int offset = half * Vec<int16_t>::lanes;
                            return loadRow(rows[r + i] + at + offset, extent.from(offset));
                        });
                        store(dst.row(r) + at, narrowSaturated<uint8_t>(results[0], results[1]), extent);
                    }
                }
            });
        });
}

template <int Channels>
struct ByteRowPass {
    const ByteTaps& taps;

    __attribute__((noinline)) void operator()(int16_t* const* out, const uint8_t* const* in, int64_t rows,
                                              int64_t count) const {
        const auto runLength = [&](auto length) OKPCV_INLINE_LAMBDA {
            for (int64_t r = 0; r < rows; ++r) run<length>(out[r], in[r], count);
        };
        const int64_t length = 2 * taps.half() + 1;
        if constexpr (Channels == 1) {
            withConstant<3, 5, 7, 9, 11>(length, runLength);
        } else {
            withGaussianLength(length, runLength);
        }
    }

  private:
    template <int Length>
    OKPCV_INLINE void run(int16_t* out, const uint8_t* in, int64_t count) const {
        constexpr int lanes = Vec<int16_t>::lanes;
        constexpr int vectors = Length != 0 ? 1 : 2;
        using Row = ByteRow<Channels, Length>;
        constexpr int64_t begin = Row::before > 0 ? roundUp(Row::before, lanes) : 0;
        const bool allShort = count < begin + vectors * lanes;
        const PassTaps<Length> passTaps(taps);
        forBlocks<1, lanes>(allShort ? count : begin, [&](auto, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            Vec<int16_t> results[1];
            foldedWords(results, passTaps, [&](int64_t i, int) OKPCV_INLINE_LAMBDA {
                return loadAs<int16_t>(in + x + i * Channels, extent);
            });
            store(out + x, results[0], extent);
        });
        if (allShort) return;
        const Row row(taps);
        const auto step = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            Vec<int16_t> results[vectors];
            row.results(results, in + x);
            for (int v = 0; v < vectors; ++v) store(out + x + v * lanes, results[v]);
        };
        int64_t x = begin;
        for (; x + vectors * lanes <= count; x += vectors * lanes) step(x);
        if (x < count) step(count - vectors * lanes);
    }
};

struct ThreeTapColumnPass {
    ThreeTaps taps;
    bool streamed;

    __attribute__((noinline)) void operator()(uint8_t* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        const ThreeTaps t = taps;
        forWordRows(out, step, outRows, rows, count, streamed,
                    [&](auto& results, const auto& word) OKPCV_INLINE_LAMBDA {
                        for (int v = 0; v < 2; ++v) results[v] = t.result(word(0, v), word(1, v), word(2, v));
                    });
    }
};

struct ByteColumnPass {
    const ByteTaps& taps;
    bool streamed;

    __attribute__((noinline)) void operator()(uint8_t* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        withGaussianLength(2 * taps.half() + 1, [&](auto length) OKPCV_INLINE_LAMBDA {
            const PassTaps<length> passTaps(taps);
            forWordRows(out, step, outRows, rows, count, streamed,
                        [&](auto& results, const auto& word)
                            OKPCV_INLINE_LAMBDA { foldedWords(results, passTaps, word); });
        });
    }
};

// ---- 16-bit images ---------------------------------------------------------------------------------------

// Elements of unsigned 16-bit images are kept less 32768, in rows and between the passes, to fit the signed
// factors of the multiply-add instructions.
template <class T>
inline constexpr int16_t kBias = std::is_same_v<T, uint16_t> ? -32768 : 0;

// A kernel with 16-bit coefficients, and how its sums become results. What the bias takes from a sum is part
// of the sum's start. Sums are formed modulo 2^32.
template <class T>
class WordTaps {
  public:
    // Elements of the table for a kernel of a length.
    static constexpr int64_t tableElements(int64_t length) { return (length / 2 + 2) * kLanes; }

    // `table` must be aligned for vectors.
    WordTaps(const int16_t* kernel, int64_t length, int bits, int16_t* table)
        : table_(table), length_(length), bits_(bits) {
        const int64_t sum = kernelSum(kernel, length);
        start_ = static_cast<int32_t>((int64_t{1} << (bits - 1)) - kBias<T> * sum);
        const int64_t pairs = length / 2;
        for (int64_t i = 0; i < pairs; ++i) store(table + i * kLanes, coefficientPair(kernel, 2 * i));
        const Vec<int16_t> last = coefficientAndZero(kernel, length - 1);
        store(table + pairs * kLanes, last);
        store(table + (pairs + 1) * kLanes, bitCast<int16_t>(shiftLeft(bitCast<int32_t>(last), 16)));
    }

    int64_t length() const { return length_; }
    int64_t pairs() const { return length_ / 2; }
    // The coefficients 2 * i and 2 * i + 1 in all pairs of lanes; of i = pairs() the last one and 0, of
    // pairs() + 1 the same the other way round.
    OKPCV_INLINE Vec<int16_t> pair(int64_t i) const { return loadAligned(table_ + i * kLanes); }
    OKPCV_INLINE Vec<int32_t> start() const { return broadcast(start_); }

    template <class Extent>
    static OKPCV_INLINE Vec<int16_t> elements(const T* p, Extent extent) {
        return withBias(bitCast<int16_t>(load(p, extent)));
    }
    // Adds or takes away the bias: the same operation.
    static OKPCV_INLINE Vec<int16_t> withBias(Vec<int16_t> v) {
        if constexpr (kBias<T> == 0) return v;
        return v ^ broadcast(kBias<T>);
    }

    // The results of two vectors of sums, saturated to T and biased.
    OKPCV_INLINE Vec<int16_t> results(Vec<int32_t> low, Vec<int32_t> high) const {
        if constexpr (std::is_same_v<T, uint16_t>) {
            // Sums are not negative and may need all 32 bits.
            const auto shifted = [&](Vec<int32_t> v) OKPCV_INLINE_LAMBDA {
                return bitCast<int32_t>(shiftRight(bitCast<uint32_t>(v), bits_));
            };
            return withBias(bitCast<int16_t>(narrowSaturated<uint16_t>(shifted(low), shifted(high))));
        } else {
            return narrowSaturated<int16_t>(shiftRight(low, bits_), shiftRight(high, bits_));
        }
    }

  private:
    static constexpr int kLanes = Vec<int16_t>::lanes;

    const int16_t* table_;
    int64_t length_;
    int bits_;
    int32_t start_;
};

// Bound, per two taps and eight elements of one channel: two loads, two multiply-add instructions and two
// additions; of several channels two interleavings more.
template <class T, int Channels>
struct WordRowPass {
    const WordTaps<T>& wordTaps;

    __attribute__((noinline)) void operator()(int16_t* const* out, const T* const* in, int64_t rows,
                                              int64_t count) const {
        const WordTaps<T> taps = wordTaps;
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            for (int64_t r = 0; r < rows; ++r) run<length>(taps, out[r], in[r], count);
        });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    template <int Length>
    static OKPCV_INLINE void run(const WordTaps<T>& taps, int16_t* out, const T* in, int64_t count) {
        const int64_t pairs = Length != 0 ? Length / 2 : taps.pairs();
        const Vec<int32_t> start = taps.start();
        forBlocks<2, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            const T* p = in + x;
            Vec<int32_t> first[n], second[n];
            for (int v = 0; v < n; ++v) first[v] = second[v] = start;
            const auto add = [&](int64_t i) OKPCV_INLINE_LAMBDA {
                const Vec<int16_t> c = taps.pair(i);
                for (int v = 0; v < n; ++v) addPair(first[v], second[v], c, p + v * lanes, extent);
                p += 2 * Channels;
            };
            if constexpr (Length != 0) {
                unrolled<Length / 2>([&](auto i) OKPCV_INLINE_LAMBDA { add(i); });
            } else {
                for (int64_t i = 0; i < pairs; ++i) add(i);
            }
            for (int v = 0; v < n; ++v) {
                addLast(first[v], second[v], taps.pair(pairs), taps.pair(pairs + 1), p + v * lanes, extent);
                const Vec<int16_t> results = taps.results(first[v], second[v]);
                store(out + x + v * lanes, Channels == 1 ? interleaveHalves(results) : results, extent);
            }
        });
    }

    // Of a single channel, the first sums are those of even elements and the second those of odd ones; of
    // several, those of the first and the second half.
    template <class Extent>
    static OKPCV_INLINE void addPair(Vec<int32_t>& first, Vec<int32_t>& second, Vec<int16_t> c, const T* p,
                                     Extent extent) {
        if constexpr (Channels == 1) {
            accumulate(first, mulAddPairs(WordTaps<T>::elements(p, extent.from(-1)), c));
            accumulate(second, mulAddPairs(WordTaps<T>::elements(p + 1, extent), c));
        } else {
            const Vec<int16_t> a = WordTaps<T>::elements(p, extent);
            const Vec<int16_t> b = WordTaps<T>::elements(p + Channels, extent);
            accumulate(first, mulAddPairs(interleaveLow(a, b), c));
            accumulate(second, mulAddPairs(interleaveHigh(a, b), c));
        }
    }
    template <class Extent>
    static OKPCV_INLINE void addLast(Vec<int32_t>& first, Vec<int32_t>& second, Vec<int16_t> c,
                                     Vec<int16_t> reversed, const T* p, Extent extent) {
        const Vec<int16_t> a = WordTaps<T>::elements(p, extent);
        if constexpr (Channels == 1) {
            accumulate(first, mulAddPairs(a, c));
            accumulate(second, mulAddPairs(a, reversed));
        } else {
            accumulate(first, mulAddPairs(interleaveLow(a, a), c));
            accumulate(second, mulAddPairs(interleaveHigh(a, a), c));
        }
    }
};

// Output rows r, r + 2, r + 4 and r + 6 are computed together, because they see the same pairs of rows, which
// are interleaved once for all of them.
//
// Bound, per two taps and eight elements of four output rows: two loads, two interleavings, eight
// multiply-add instructions and eight additions.
template <class T>
struct WordColumnPass {
    const WordTaps<T>& wordTaps;
    bool streamed;

    __attribute__((noinline)) void operator()(T* out, int64_t step, int64_t outRows,
                                              const int16_t* const* rows, int64_t count) const {
        constexpr int together = 4;
        const WordTaps<T> taps = wordTaps;
        const Image<T> dst{out, step};
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            forStored<kCacheLineBytes / kVectorBytes>(
                out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    int64_t r = 0;
                    const auto filter = [&](auto fixedLength, auto outputs) OKPCV_INLINE_LAMBDA {
                        columns<fixedLength, outputs>(taps, dst, r, rows + r, x, block.vectors, extent);
                    };
                    for (; r + 2 * together <= outRows; r += 2 * together) {
                        filter(length, std::integral_constant<int, together>{});
                        ++r;
                        filter(length, std::integral_constant<int, together>{});
                        --r;
                    }
                    for (; r < outRows; ++r) {
                        filter(std::integral_constant<int, 0>{}, std::integral_constant<int, 1>{});
                    }
                });
        });
    }

  private:
    static constexpr int lanes = Vec<int16_t>::lanes;

    // `vectors` vectors of each of the output rows r, r + 2, ... Not inline: it is wanted at too many places.
    template <int Length, int Outputs, class Extent>
    static __attribute__((noinline)) void columns(const WordTaps<T>& passTaps, const Image<T>& dst, int64_t r,
                                                  const int16_t* const* rows, int64_t x, int vectors,
                                                  Extent extent) {
        const WordTaps<T> taps = passTaps;
        for (int v = 0; v < vectors; ++v) {
            vectorOfColumns<Length, Outputs>(taps, dst, r, rows, x + v * Vec<T>::lanes, extent);
        }
    }

    template <int Length, int Outputs, class Extent>
    static OKPCV_INLINE void vectorOfColumns(const WordTaps<T>& taps, const Image<T>& dst, int64_t r,
                                             const int16_t* const* rows, int64_t x, Extent extent) {
        const int64_t pairs = Length != 0 ? Length / 2 : taps.pairs();
        Vec<int32_t> low[Outputs], high[Outputs];
        for (int o = 0; o < Outputs; ++o) low[o] = high[o] = taps.start();
        // Adds the rows 2 * i and 2 * i + 1 to the outputs from `first` to `last`, for each of which they are
        // a pair of its own. The last output has no other row in the last of its pairs.
        const auto add = [&](int64_t i, auto first, auto last, bool alone) OKPCV_INLINE_LAMBDA {
            const Vec<int16_t> a = load(rows[2 * i] + x, extent);
            const Vec<int16_t> b = alone ? a : load(rows[2 * i + 1] + x, extent);
            const Vec<int16_t> interleavedLow = interleaveLow(a, b);
            const Vec<int16_t> interleavedHigh = interleaveHigh(a, b);
            unrolled<last - first + 1>([&](auto n) OKPCV_INLINE_LAMBDA {
                constexpr int o = first + n;
                accumulate(low[o], mulAddPairs(interleavedLow, taps.pair(i - o)));
                accumulate(high[o], mulAddPairs(interleavedHigh, taps.pair(i - o)));
            });
        };
        using First = std::integral_constant<int, 0>;
        using Last = std::integral_constant<int, Outputs - 1>;
        if constexpr (Length != 0) {
            constexpr int fixedPairs = Length / 2;
            unrolled<fixedPairs + Outputs>([&](auto i) OKPCV_INLINE_LAMBDA {
                constexpr int first = i > fixedPairs ? i - fixedPairs : 0;
                constexpr int last = i < Outputs ? i : Outputs - 1;
                add(i, std::integral_constant<int, first>{}, std::integral_constant<int, last>{},
                    i == fixedPairs + Outputs - 1);
            });
        } else {
            unrolled<Outputs - 1>([&](auto i) OKPCV_INLINE_LAMBDA { add(i, First{}, i, false); });
            for (int64_t i = Outputs - 1; i < pairs; ++i) add(i, First{}, Last{}, false);
            unrolled<Outputs>([&](auto n)
                                  OKPCV_INLINE_LAMBDA { add(pairs + n, n, Last{}, n == Outputs - 1); });
        }
        for (int o = 0; o < Outputs; ++o) {
            const Vec<int16_t> results = taps.results(low[o], high[o]);
            store(dst.row(r + 2 * o) + x, bitCast<T>(WordTaps<T>::withBias(results)), extent);
        }
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
        const Vec<float> middle = coefficients(0);
        for (int v = 0; v < V; ++v) acc[v] = load(tap(half) + v * lanes, extent) * middle;
        for (int64_t i = 1; i <= half; ++i) {
            const Vec<float> k = coefficients(i);
            const float* const a = tap(half - i);
            const float* const b = tap(half + i);
            for (int v = 0; v < V; ++v) {
                accumulate(acc[v], (load(a + v * lanes, extent) + load(b + v * lanes, extent)) * k);
            }
        }
    }

    // The sums of two outputs, of which the second sees at tap i what the first sees at tap i + 1. Behind the
    // centre, what the first sees at a tap the second has seen at the tap before. In front of it elements are
    // loaded for either: a sum overwrites its first element.
    template <int V, class Tap, class Extent>
    OKPCV_INLINE void sums(Vec<float> (&first)[V], Vec<float> (&second)[V], const Tap& tap,
                           Extent extent) const {
        constexpr int lanes = Vec<float>::lanes;
        const int64_t half = Length != 0 ? Length / 2 : half_;
        const Vec<float> middle = coefficients(0);
        const float* inner = tap(half);
        Vec<float> behind[V];
        for (int v = 0; v < V; ++v) {
            behind[v] = load(tap(half + 1) + v * lanes, extent);
            first[v] = load(inner + v * lanes, extent) * middle;
            second[v] = behind[v] * middle;
        }
        for (int64_t i = 1; i <= half; ++i) {
            const Vec<float> k = coefficients(i);
            const float* const outer = tap(half - i);
            const float* const b = tap(half + 1 + i);
            inner = unseen(inner);
            for (int v = 0; v < V; ++v) {
                accumulate(first[v], (load(outer + v * lanes, extent) + behind[v]) * k);
                behind[v] = load(b + v * lanes, extent);
                accumulate(second[v], (load(inner + v * lanes, extent) + behind[v]) * k);
            }
            inner = outer;
        }
    }
    // One output's sum of elements in registers, of which element(i) is what tap i sees.
    template <class Element>
    OKPCV_INLINE Vec<float> sum(const Element& element) const {
        constexpr int half = Length / 2;
        Vec<float> acc = element(std::integral_constant<int, half>{}) * coefficients(0);
        unrolled<half>([&](auto i) OKPCV_INLINE_LAMBDA {
            const Vec<float> a = element(std::integral_constant<int, half - 1 - i>{});
            const Vec<float> b = element(std::integral_constant<int, half + 1 + i>{});
            accumulate(acc, (a + b) * coefficients(i + 1));
        });
        return acc;
    }

  private:
    OKPCV_INLINE Vec<float> coefficients(int64_t i) const {
        return Length != 0 ? c_[i] : broadcast(coefficient(centre_, i));
    }

    const float* centre_;
    int64_t half_;
    Vec<float> c_[Length / 2 + 1];
};

// Bound, per two taps and vector: two additions and one multiplication.
template <int Channels>
struct FoldedRowPass {
    const float* kernel;
    int64_t length;

    __attribute__((noinline)) void operator()(float* const* out, const float* const* in, int64_t rows,
                                              int64_t count) const {
        withGaussianLength(length, [&](auto fixed) OKPCV_INLINE_LAMBDA {
            constexpr int lanes = Vec<float>::lanes;
            const FoldedTaps<fixed> taps(kernel, length);
            for (int64_t r = 0; r < rows; ++r) {
                const float* const row = in[r];
                float* const results = out[r];
                forBlocks<taps.vectors, lanes>(
                    count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                        const auto tap = [p = row + x](int64_t i)
                                             OKPCV_INLINE_LAMBDA { return p + i * Channels; };
                        Vec<float> acc[block.vectors];
                        taps.sum(acc, tap, extent);
                        for (int v = 0; v < block.vectors; ++v) {
                            store(results + x + v * lanes, acc[v], extent);
                        }
                    });
            }
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
            const FoldedTaps<fixed> taps(kernel, length);
            forStored<kCacheLineBytes / kVectorBytes>(
                out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    if constexpr (std::is_same_v<decltype(extent), Streamed>) {
                        // Cache lines are stored in one go.
                        computeRows<block.vectors>(taps, dst, x, 0, outRows, rows, extent);
                    } else {
                        // As many vectors as fit in registers.
                        constexpr int most = fixed == 0 || fixed == 3 ? 4 : 2;
                        constexpr int vectors = block.vectors < most ? block.vectors : most;
                        for (int v = 0; v < block.vectors; v += vectors) {
                            if constexpr (fixed >= 3 && fixed <= 7) {
                                walkDown<vectors>(taps, dst, x + v * lanes, outRows, rows, extent);
                            } else {
                                computePairs<vectors>(taps, dst, x + v * lanes, outRows, rows, extent);
                            }
                        }
                    }
                });
        });
    }

  private:
    static constexpr int lanes = Vec<float>::lanes;

    // From row r on.
    template <int V, int Length, class Extent>
    static OKPCV_INLINE void computeRows(const FoldedTaps<Length>& taps, const Image<float>& dst, int64_t x,
                                         int64_t r, int64_t outRows, const float* const* rows,
                                         Extent extent) {
        for (; r < outRows; ++r) {
            Vec<float> acc[V];
            taps.sum(
                acc, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; }, extent);
            for (int v = 0; v < V; ++v) store(dst.row(r) + x + v * lanes, acc[v], extent);
        }
    }
    // Two rows at a time: each element is loaded once for both.
    template <int V, int Length, class Extent>
    static OKPCV_INLINE void computePairs(const FoldedTaps<Length>& taps, const Image<float>& dst, int64_t x,
                                          int64_t outRows, const float* const* rows, Extent extent) {
        int64_t r = 0;
        for (; r + 2 <= outRows; r += 2) {
            Vec<float> first[V], second[V];
            taps.sums(
                first, second, [row = rows + r, x](int64_t i) OKPCV_INLINE_LAMBDA { return row[i] + x; },
                extent);
            for (int v = 0; v < V; ++v) store(dst.row(r) + x + v * lanes, first[v], extent);
            for (int v = 0; v < V; ++v) store(dst.row(r + 1) + x + v * lanes, second[v], extent);
        }
        computeRows<V>(taps, dst, x, r, outRows, rows, extent);
    }
    // What the taps see stays in registers from one row to the next: each row is loaded once.
    template <int V, int Length, class Extent>
    static OKPCV_INLINE void walkDown(const FoldedTaps<Length>& taps, const Image<float>& dst, int64_t x,
                                      int64_t outRows, const float* const* rows, Extent extent) {
        Vec<float> seen[Length][V];  // of row j in place j % Length
        const auto see = [&](int64_t j, auto place) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < V; ++v) seen[place][v] = load(rows[j] + x + v * lanes, extent);
        };
        unrolled<Length - 1>([&](auto j) OKPCV_INLINE_LAMBDA { see(j, j); });
        for (int64_t r = 0; r < outRows; r += Length) {
            unrolled<Length>([&](auto first) OKPCV_INLINE_LAMBDA {
                if (r + first >= outRows) return;
                see(r + first + Length - 1, std::integral_constant<int, (first + Length - 1) % Length>{});
                for (int v = 0; v < V; ++v) {
                    const auto element = [&](auto i)
                                             OKPCV_INLINE_LAMBDA { return seen[(first + i) % Length][v]; };
                    store(dst.row(r + first) + x + v * lanes, taps.sum(element), extent);
                }
            });
        }
    }
};

}  // namespace okpcv
