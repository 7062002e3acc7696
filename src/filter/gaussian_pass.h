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

    // The digits of the taps 2 * pair and 2 * pair + 1 in all pairs of lanes; of pair length() / 2 those of
    // the last tap and 0, and of the one behind it the same the other way round.
    OKPCV_INLINE Vec<int8_t> high(int64_t pair) const { return load(high_[pair]); }
    OKPCV_INLINE Vec<int8_t> low(int64_t pair) const { return load(low_[pair]); }

    OKPCV_INLINE Vec<int16_t> start() const { return broadcast(static_cast<int16_t>(1 << (11 - digit_))); }
    OKPCV_INLINE int digit() const { return digit_; }

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
    static OKPCV_INLINE Vec<int8_t> load(const int8_t* p) { return loadAligned(p); }
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

// The taps of a kernel whose length the code knows, or of any (Length 0), for the time of one pass: what
// would be read again after every store, which might have changed it for all the compiler knows, is copied.
template <int Length>
class PassTaps {
  public:
    OKPCV_INLINE explicit PassTaps(const ByteTaps& byteTaps)
        : taps(byteTaps), start(taps.start()), length_(taps.length()), digit_(taps.digit()) {}

    const ByteTaps& taps;
    const Vec<int16_t> start;

    OKPCV_INLINE int64_t length() const { return Length != 0 ? Length : length_; }
    // Calls body(i) for the pairs of taps before the last tap.
    template <class Body>
    OKPCV_INLINE void forPairs(const Body& body) const {
        if constexpr (Length != 0) {
            unrolled<Length / 2>([&](auto pair) OKPCV_INLINE_LAMBDA { body(int64_t{pair}); });
        } else {
            for (int64_t pair = 0; pair < length_ / 2; ++pair) body(pair);
        }
    }
    // Of sums of highs, which began with `start`, and of lows.
    OKPCV_INLINE Vec<int16_t> finished(Vec<int16_t> highs, Vec<int16_t> lows) const {
        return bitCast<int16_t>(shiftRight(bitCast<uint16_t>(highs + shiftRight(lows, digit_)), 12 - digit_));
    }

  private:
    int64_t length_;
    int digit_;
};

// One vector of results; Tap is a function that gives the address seen by tap i.
//
// Bound, per two taps and sixteen elements: two loads, two interleavings, four multiply-add instructions and
// four additions.
template <class Taps, class Tap, class Extent>
OKPCV_INLINE Vec<uint8_t> byteResults(const Taps& taps, const Tap& tap, Extent extent) {
    Vec<int16_t> highs[2] = {taps.start, taps.start};
    Vec<int16_t> lows[2] = {zeros<int16_t>(), zeros<int16_t>()};
    const auto add = [&](Vec<uint8_t> a, Vec<uint8_t> b, int64_t pair) OKPCV_INLINE_LAMBDA {
        const Vec<uint8_t> first = interleaveLow(a, b);
        const Vec<uint8_t> second = interleaveHigh(a, b);
        accumulate(highs[0], mulAddPairs(first, taps.taps.high(pair)));
        accumulate(highs[1], mulAddPairs(second, taps.taps.high(pair)));
        accumulate(lows[0], mulAddPairs(first, taps.taps.low(pair)));
        accumulate(lows[1], mulAddPairs(second, taps.taps.low(pair)));
    };
    taps.forPairs([&](int64_t pair) OKPCV_INLINE_LAMBDA {
        add(load(tap(2 * pair), extent), load(tap(2 * pair + 1), extent), pair);
    });
    add(load(tap(taps.length() - 1), extent), zeros<uint8_t>(), taps.length() / 2);
    return narrowSaturated<uint8_t>(taps.finished(highs[0], lows[0]), taps.finished(highs[1], lows[1]));
}

// The same of neighbouring elements of a row of one channel. A load at the first of two taps has the two
// neighbours in place for even elements, a load one further on for odd ones: nothing is interleaved.
template <int N, class Taps, class Extent>
OKPCV_INLINE void byteResultsOfNeighbours(Vec<uint8_t> (&results)[N], const Taps& taps, const uint8_t* in,
                                          Extent extent) {
    const auto oneMore = [](auto e) OKPCV_INLINE_LAMBDA {
        if constexpr (std::is_same_v<decltype(e), Part>) {
            return Part{e.count + 1};
        } else {
            return e;
        }
    };
    constexpr int lanes = Vec<uint8_t>::lanes;
    Vec<int16_t> evenHighs[N], oddHighs[N], evenLows[N], oddLows[N];
    for (int v = 0; v < N; ++v) {
        evenHighs[v] = oddHighs[v] = taps.start;
        evenLows[v] = oddLows[v] = zeros<int16_t>();
    }
    const auto add = [&](int v, Vec<uint8_t> even, Vec<uint8_t> odd, int64_t evenPair, int64_t oddPair)
                         OKPCV_INLINE_LAMBDA {
                             accumulate(evenHighs[v], mulAddPairs(even, taps.taps.high(evenPair)));
                             accumulate(oddHighs[v], mulAddPairs(odd, taps.taps.high(oddPair)));
                             accumulate(evenLows[v], mulAddPairs(even, taps.taps.low(evenPair)));
                             accumulate(oddLows[v], mulAddPairs(odd, taps.taps.low(oddPair)));
                         };
    const uint8_t* p = in;
    taps.forPairs([&](int64_t pair) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < N; ++v) {
            const uint8_t* const at = p + v * lanes;
            add(v, load(at, oneMore(extent)), load(at + 1, extent), pair, pair);
        }
        p += 2;
    });
    const int64_t last = taps.length() / 2;
    for (int v = 0; v < N; ++v) {
        const Vec<uint8_t> in0 = load(p + v * lanes, extent);
        add(v, in0, in0, last, last + 1);
        results[v] = bitCast<uint8_t>(taps.finished(evenHighs[v], evenLows[v]) |
                                      shiftLeft(taps.finished(oddHighs[v], oddLows[v]), 8));
    }
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
        case 9:
            return run(std::integral_constant<int, 9>{});
        default:
            return run(std::integral_constant<int, 0>{});
    }
}

template <int Channels>
struct ByteRowPass {
    const ByteTaps& taps;

    __attribute__((noinline)) void operator()(uint8_t* out, const uint8_t* in, int64_t count) const {
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            const PassTaps<length> passTaps(taps);
            constexpr int lanes = Vec<uint8_t>::lanes;
            forBlocks<length == 0 && Channels == 1 ? 2 : 1, lanes>(
                count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    Vec<uint8_t> results[block.vectors];
                    if constexpr (Channels == 1) {
                        byteResultsOfNeighbours(results, passTaps, in + x, extent);
                    } else {
                        for (int v = 0; v < block.vectors; ++v) {
                            const auto tap = [p = in + x + v * lanes](int64_t i)
                                                 OKPCV_INLINE_LAMBDA { return p + i * Channels; };
                            results[v] = byteResults(passTaps, tap, extent);
                        }
                    }
                    for (int v = 0; v < block.vectors; ++v) store(out + x + v * lanes, results[v], extent);
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
            const PassTaps<length> passTaps(taps);
            forStored<kCacheLineBytes / kVectorBytes>(
                out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                    for (int64_t r = 0; r < outRows; ++r) {
                        for (int v = 0; v < block.vectors; ++v) {
                            const int64_t at = x + v * lanes;
                            const auto tap = [row = rows + r, at](int64_t i)
                                                 OKPCV_INLINE_LAMBDA { return row[i] + at; };
                            store(dst.row(r) + at, byteResults(passTaps, tap, extent), extent);
                        }
                    }
                });
        });
    }
};

// ---- 8-bit images, three taps ---------------------------------------------------------------------------

// A kernel k, 4096 - 2 k, k: its sum is one, so that
//
//     (sum + 2^11) >> 12 = centre + ((k * (left + right - 2 * centre) + 2^11) >> 12).
struct ThreeTaps {
    Vec<int16_t> factor;

    static bool fits(const int16_t* kernel, int64_t length) {
        return length == 3 && 2 * coefficient(kernel, 0) + coefficient(kernel, 1) == 4096;
    }
    explicit ThreeTaps(const int16_t* kernel)
        : factor(broadcast(static_cast<int16_t>(8 * coefficient(kernel, 0)))) {}

    // Bound, per sixteen elements: six loads that widen and ten other instructions.
    template <class Extent>
    OKPCV_INLINE Vec<uint8_t> results(const uint8_t* left, const uint8_t* centre, const uint8_t* right,
                                      Extent extent) const {
        const auto half = [&](int at) OKPCV_INLINE_LAMBDA {
            const auto elements = [&](const uint8_t* p) OKPCV_INLINE_LAMBDA {
                return loadAs<int16_t>(p + at, extent.from(at));
            };
            const Vec<int16_t> c = elements(centre);
            return c + mulFraction(elements(left) + elements(right) - (c + c), factor);
        };
        return narrowSaturated<uint8_t>(half(0), half(Vec<int16_t>::lanes));
    }
};

template <int Channels>
struct ThreeTapRowPass {
    ThreeTaps taps;

    __attribute__((noinline)) void operator()(uint8_t* out, const uint8_t* in, int64_t count) const {
        const ThreeTaps t = taps;
        forBlocks<1, Vec<uint8_t>::lanes>(count, [&](auto, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            const uint8_t* const p = in + x;
            store(out + x, t.results(p, p + Channels, p + 2 * Channels, extent), extent);
        });
    }
};

struct ThreeTapColumnPass {
    ThreeTaps taps;
    bool streamed;

    __attribute__((noinline)) void operator()(uint8_t* out, int64_t step, int64_t outRows,
                                              const uint8_t* const* rows, int64_t count) const {
        constexpr int lanes = Vec<uint8_t>::lanes;
        const ThreeTaps t = taps;
        const Image<uint8_t> dst{out, step};
        forStored<kCacheLineBytes / kVectorBytes>(
            out, step, count, streamed, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                for (int64_t r = 0; r < outRows; ++r) {
                    for (int v = 0; v < block.vectors; ++v) {
                        const int64_t at = x + v * lanes;
                        store(dst.row(r) + at,
                              t.results(rows[r] + at, rows[r + 1] + at, rows[r + 2] + at, extent), extent);
                    }
                }
            });
    }
};

// ---- Integer images of any type -------------------------------------------------------------------------

// A kernel with 16-bit coefficients, and how its sums become results. Elements of unsigned 16-bit images are
// kept less 32768, in rows and between the passes, to fit the signed factors of the multiply-add
// instructions; what that takes from a sum is part of the sum's start. Sums are formed modulo 2^32.
template <class T>
class WordTaps {
  public:
    static constexpr int16_t kBias = std::is_same_v<T, uint16_t> ? -32768 : 0;

    // Elements of the table for a kernel of a length.
    static constexpr int64_t tableElements(int64_t length) { return (length / 2 + 2) * kLanes; }

    // `table` must be aligned for vectors.
    WordTaps(const int16_t* kernel, int64_t length, int bits, int16_t* table)
        : table_(table), length_(length), bits_(bits) {
        int64_t sum = 0;
        for (int64_t i = 0; i < length; ++i) sum += coefficient(kernel, i);
        start_ = static_cast<int32_t>((int64_t{1} << (bits - 1)) - kBias * sum);
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
                return bitCast<int32_t>(shiftRight(bitCast<uint32_t>(v), bits_));
            };
            return withBias(bitCast<int16_t>(narrowSaturated<uint16_t>(shifted(low), shifted(high))));
        } else {
            const Vec<int16_t> v = narrowSaturated<int16_t>(shiftRight(low, bits_), shiftRight(high, bits_));
            if constexpr (sizeof(T) == 1) return min(v, broadcast(int16_t{255}));
            return v;
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

    __attribute__((noinline)) void operator()(int16_t* out, const T* in, int64_t count) const {
        const WordTaps<T> taps = wordTaps;
        withGaussianLength(taps.length(), [&](auto length) OKPCV_INLINE_LAMBDA {
            const int64_t pairs = length != 0 ? length / 2 : taps.pairs();
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
                if constexpr (length != 0) {
                    unrolled<length / 2>([&](auto i) OKPCV_INLINE_LAMBDA { add(i); });
                } else {
                    for (int64_t i = 0; i < pairs; ++i) add(i);
                }
                for (int v = 0; v < n; ++v) {
                    addLast(first[v], second[v], taps.pair(pairs), taps.pair(pairs + 1), p + v * lanes,
                            extent);
                    const Vec<int16_t> results = taps.results(first[v], second[v]);
                    store(out + x + v * lanes, Channels == 1 ? interleaveHalves(results) : results, extent);
                }
            });
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
            accumulate(first, mulAddPairs(WordTaps<T>::elements(p, oneMore(extent)), c));
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
        constexpr int groups = Vec<T>::lanes / lanes;  // of sums for one vector of results
        const int64_t pairs = Length != 0 ? Length / 2 : taps.pairs();
        Vec<int16_t> results[Outputs][groups];
        for (int g = 0; g < groups; ++g) {
            const int64_t at = x + g * lanes;
            const auto within = extent.from(g * lanes);
            Vec<int32_t> low[Outputs], high[Outputs];
            for (int o = 0; o < Outputs; ++o) low[o] = high[o] = taps.start();
            // Adds the rows 2 * i and 2 * i + 1 to the outputs from `first` to `last`, for each of which they
            // are a pair of its own. The last output has no other row in the last of its pairs.
            const auto add = [&](int64_t i, auto first, auto last, bool alone) OKPCV_INLINE_LAMBDA {
                const Vec<int16_t> a = load(rows[2 * i] + at, within);
                const Vec<int16_t> b = alone ? a : load(rows[2 * i + 1] + at, within);
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
            for (int o = 0; o < Outputs; ++o) results[o][g] = taps.results(low[o], high[o]);
        }
        for (int o = 0; o < Outputs; ++o) {
            T* const to = dst.row(r + 2 * o) + x;
            if constexpr (groups == 2) {
                store(to, narrowSaturated<T>(results[o][0], results[o][1]), extent);
            } else {
                store(to, bitCast<T>(WordTaps<T>::withBias(results[o][0])), extent);
            }
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
