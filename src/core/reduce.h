// Reductions: the selected pixels of a region become a few numbers. The engine walks the region, expands the
// mask and picks the channel of interest; a reduction says what is added up.
//
//     struct Brightest {
//         using Element = uint8_t;
//         static constexpr int kStepPixels = 2 * Vec<uint8_t>::lanes;
//         static constexpr int kStepsPerBlock = 1024;
//         struct Partials { ... };                                      // lives in registers for one block
//         void add(Partials&, auto vector, auto in, Vec<uint8_t> v);    // `in` says which lanes take part
//         void take(const Partials&);                                   // widens at the end of a block
//         pixels
//     };
//
// A step is kStepPixels neighbours in a row, read as several vectors; `vector` is the number of the vector
// within its step, a constant. So pixel x of a row always meets the partial result of its place in the step,
// whatever the register width, and a float sum has one order everywhere. A block is as many whole rows as
// make kStepsPerBlock steps, or a piece of one long row: narrow partial sums are widened before they
// overflow, and single-precision ones before they grow coarse.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/image.h"
#include "core/mask.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "core/unrolled.h"

namespace okpcv {

// ---- Which lanes take part ------------------------------------------------------------------------------

struct AllLanes {
    template <class T>
    OKPCV_INLINE Vec<T> orZero(Vec<T> v) const {
        return v;
    }
    template <class T>
    OKPCV_INLINE Vec<T> orOnes(Vec<T> v) const {
        return v;
    }
    template <class T>
    OKPCV_INLINE Vec<T> orElse(Vec<T> v, Vec<T>) const {
        return v;
    }
};

// Lanes of T's width. The values of lanes that do not take part are replaced by zero, by all ones (the
// largest unsigned integer; a NaN among floats, which no ordered comparison prefers) or by a lane of `other`.
template <class T>
struct SomeLanes {
    Vec<T> out;  // all ones in the lanes that do not take part

    template <class U>
    OKPCV_INLINE Vec<U> orZero(Vec<U> v) const {
        return andNot(v, bitCast<U>(out));
    }
    template <class U>
    OKPCV_INLINE Vec<U> orOnes(Vec<U> v) const {
        return v | bitCast<U>(out);
    }
    template <class U>
    OKPCV_INLINE Vec<U> orElse(Vec<U> v, Vec<U> other) const {
        return select(bitCast<U>(out), other, v);
    }
};

// The selections: what takes part in each row.
struct EveryPixel {
    struct Row {
        template <class T>
        OKPCV_INLINE AllLanes lanes(int64_t, Whole) const {
            return {};
        }
        template <class T>
        OKPCV_INLINE SomeLanes<T> lanes(int64_t, Part part) const {
            using U = UnsignedLane<T>;
            return {bitCast<T>(greaterEqual(laneNumbers<U>(), broadcast(static_cast<U>(part.count))))};
        }
        template <int kPixels>
        OKPCV_INLINE bool isEmpty(int64_t) const {
            return false;
        }
    };
    Row row(int64_t) const { return {}; }
};

struct MaskedPixels {
    Image<const uint8_t> mask;

    struct Row {
        const uint8_t* mask;
        template <class T, class Extent>
        OKPCV_INLINE SomeLanes<T> lanes(int64_t x, Extent extent) const {
            return {unselected<T>(mask + x, extent)};
        }
        // Whether none of the pixels from x on takes part. Where they are fewer than a vector of mask bytes
        // it is not looked for.
        template <int kPixels>
        OKPCV_INLINE bool isEmpty(int64_t x) const {
            constexpr int kLanes = Vec<uint8_t>::lanes;
            if constexpr (kPixels % kLanes != 0) return false;
            Vec<uint8_t> any = load(mask + x);
            for (int i = kLanes; i < kPixels; i += kLanes) any = any | load(mask + x + i);
            return !anyBit(any);
        }
    };
    Row row(int64_t y) const { return {mask.row(y)}; }
};

// ---- One value per pixel --------------------------------------------------------------------------------

// The values of a single-channel image, or of one channel of a three-channel image.
template <class T, int Channels>
struct Values;

template <class T>
struct Values<T, 1> {
    Image<const T> image;

    Values(Image<const T> from, int32_t) : image(from) {}

    struct Row {
        const T* pixels;
        template <class Extent>
        OKPCV_INLINE Vec<T> load(int64_t x, Extent extent) const {
            return okpcv::load(pixels + x, extent);
        }
        T at(int64_t x) const { return firstLane(load(x, Part{1})); }
    };
    Row row(int64_t y) const { return {image.row(y)}; }
};

template <class T>
struct Values<T, 3> {
    Image<const T, 3> image;
    ChannelOf3<T> shuffle;

    // The channel of interest counts from 1.
    Values(Image<const T, 3> from, int32_t channelOfInterest)
        : image(from), shuffle(channelOf3<T>(channelOfInterest - 1)) {}

    struct Row {
        const T* pixels;
        ChannelOf3<T> shuffle;
        template <class Extent>
        OKPCV_INLINE Vec<T> load(int64_t x, Extent extent) const {
            constexpr int kLanes = Vec<T>::lanes;
            const T* const p = pixels + 3 * x;
            if constexpr (std::is_same_v<Extent, Part>) {
                const Part elements{3 * extent.count};
                return pick(shuffle, okpcv::load(p, elements), okpcv::load(p + kLanes, elements.from(kLanes)),
                            okpcv::load(p + 2 * kLanes, elements.from(2 * kLanes)));
            } else {
                return pick(shuffle, okpcv::load(p), okpcv::load(p + kLanes), okpcv::load(p + 2 * kLanes));
            }
        }
        T at(int64_t x) const { return firstLane(load(x, Part{1})); }
    };
    Row row(int64_t y) const { return {image.row(y), shuffle}; }
};

// ---- The engine -----------------------------------------------------------------------------------------

// Adds the pixels of a row with begin <= x < end; begin is the first pixel of a step.
template <class R, class Selection, class... Source>
OKPCV_INLINE void reduceRow(const R& reduction, typename R::Partials& partials, int64_t begin, int64_t end,
                            Selection selection, Source... sources) {
    using T = typename R::Element;
    constexpr int kLanes = Vec<T>::lanes;
    constexpr int kVectors = R::kStepPixels / kLanes;
    static_assert(kVectors * kLanes == R::kStepPixels);

    const auto addWhole = [&](auto vector, int64_t x) OKPCV_INLINE_LAMBDA {
        reduction.add(partials, vector, selection.template lanes<T>(x, Whole{}), sources.load(x, Whole{})...);
    };
    int64_t x = begin;
    for (; x + R::kStepPixels <= end; x += R::kStepPixels) {
        // Floats are so wide that not to fetch those of an empty part of the mask pays for finding it.
        if constexpr (kIsFloat<T>) {
            if (selection.template isEmpty<R::kStepPixels>(x)) continue;
        }
        unrolled<kVectors>([&](auto vector) OKPCV_INLINE_LAMBDA { addWhole(vector, x + vector * kLanes); });
    }
    int whole = 0;  // vectors of the last step that are whole
    unrolled<kVectors - 1>([&](auto vector) OKPCV_INLINE_LAMBDA {
        if (x + kLanes <= end) {
            addWhole(vector, x);
            x += kLanes;
            whole = vector + 1;
        }
    });
    if (x < end) {
        const Part part{static_cast<int>(end - x)};
        const auto addPart = [&](auto in, auto... values) OKPCV_INLINE_LAMBDA {
            unrolled<kVectors>([&](auto vector) OKPCV_INLINE_LAMBDA {
                if (vector == whole) reduction.add(partials, vector, in, values...);
            });
        };
        addPart(selection.template lanes<T>(x, part), sources.load(x, part)...);
    }
}

template <class R, class Selection, class... Source>
OKPCV_INLINE void reduceRows(Size size, R& reduction, const Selection& selection, const Source&... sources) {
    constexpr int64_t kBlockPixels = int64_t{R::kStepPixels} * R::kStepsPerBlock;
    const int64_t stepsPerRow = (size.width + R::kStepPixels - 1) / R::kStepPixels;
    const int64_t rowsPerBlock = std::max<int64_t>(R::kStepsPerBlock / stepsPerRow, 1);
    for (int64_t top = 0; top < size.height; top += rowsPerBlock) {
        const int64_t bottom = std::min(top + rowsPerBlock, size.height);
        for (int64_t left = 0; left < size.width; left += kBlockPixels) {
            const int64_t right = std::min(left + kBlockPixels, size.width);
            typename R::Partials partials{};
            for (int64_t y = top; y < bottom; ++y) {
                reduceRow(reduction, partials, left, right, selection.row(y), sources.row(y)...);
            }
            reduction.take(partials);
        }
    }
}

// ---- Accumulators: what a reduction adds up with ----------------------------------------------------------

// Vectors in a step, and steps in a block. Single-precision sums have sixteen partial sums (four vectors
// here, fewer of wider ones), of at most 64 terms each; integers widen before the narrowest of the
// accumulators below overflows.
template <class T>
inline constexpr int kReductionPixels = kIsFloat<T> ? 16 : 2 * Vec<T>::lanes;
template <class T>
inline constexpr int kReductionSteps = kIsFloat<T> ? 64 : 4096;

// Whether lanes hold what a block adds to them, this much per vector at most.
template <class T, class Lane>
constexpr bool holdsBlock(uint64_t largestPerVector) {
    constexpr uint64_t vectors = uint64_t{kReductionSteps<T>} * (kReductionPixels<T> / Vec<T>::lanes);
    return largestPerVector * vectors <= kLargest<Lane>;
}

// All lanes of several vectors added, halves first: of sixteen floats, i and i + 8, then i and i + 4, ...
template <int N, class T>
OKPCV_INLINE T sumVectors(const Vec<T> (&v)[N]) {
    if constexpr (N == 1) {
        return sumLanes(v[0]);
    } else {
        Vec<T> half[N / 2];
        for (int i = 0; i < N / 2; ++i) half[i] = v[i] + v[i + N / 2];
        return sumVectors(half);
    }
}

OKPCV_INLINE uint64_t sumWidened(Vec<uint32_t> v) {
    return sumLanes(widenLow<uint64_t>(v) + widenHigh<uint64_t>(v));
}
OKPCV_INLINE int64_t sumWidened(Vec<int32_t> v) {
    return sumLanes(widenLow<int64_t>(v) + widenHigh<int64_t>(v));
}

// The largest value, 0 if none is larger. A NaN is never the largest.
template <class T>
class Largest {
  public:
    struct Partials {
        static constexpr int chains = kIsFloat<T> ? 16 / Vec<float>::lanes : 1;
        Vec<T> largest[chains];

        OKPCV_INLINE void add(int vector, Vec<T> v) {
            largest[vector % chains] = max(v, largest[vector % chains]);
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        for (const Vec<T> v : partials.largest) largest_ = std::max(largest_, maxLane(v));
    }
    T total() const { return largest_; }

  private:
    T largest_ = 0;
};

// The exact sum of integers.
template <class T>
class Sum;

template <>
class Sum<uint8_t> {
  public:
    struct Partials {
        Vec<uint64_t> sum;
        OKPCV_INLINE void add(int, Vec<uint8_t> v) { sum = sum + sumAbsDiff(v, zeros<uint8_t>()); }
    };
    OKPCV_INLINE void take(const Partials& partials) { sum_ += sumLanes(partials.sum); }
    uint64_t total() const { return sum_; }

  private:
    uint64_t sum_ = 0;
};

// Values are moved to the signed range, where pairs are added in one operation; what that took away per lane
// is given back at the end.
template <>
class Sum<uint16_t> {
  public:
    struct Partials {
        Vec<int32_t> sum;
        int64_t lanes;
        OKPCV_INLINE void add(int, Vec<uint16_t> v) {
            sum = sum + mulAddPairs(bitCast<int16_t>(v ^ broadcast<uint16_t>(32768)), broadcast<int16_t>(1));
            lanes += Vec<uint16_t>::lanes;
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        sum_ += static_cast<uint64_t>(sumWidened(partials.sum) + 32768 * partials.lanes);
    }
    uint64_t total() const { return sum_; }

  private:
    static_assert(holdsBlock<uint16_t, int32_t>(2 * 32768));
    uint64_t sum_ = 0;
};

// The exact sum of the squares of integers.
template <class T>
class SquareSum;

template <>
class SquareSum<uint8_t> {
    static_assert(holdsBlock<uint8_t, uint32_t>(4 * 255 * 255));

  public:
    struct Partials {
        Vec<uint32_t> sum;
        OKPCV_INLINE void add(int, Vec<uint8_t> v) {
            const Vec<uint16_t> pairs = bitCast<uint16_t>(v);
            const Vec<int16_t> even = bitCast<int16_t>(pairs & broadcast<uint16_t>(255));
            const Vec<int16_t> odd = bitCast<int16_t>(shiftRight(pairs, 8));
            sum = sum + bitCast<uint32_t>(mulAddPairs(even, even) + mulAddPairs(odd, odd));
        }
    };
    OKPCV_INLINE void take(const Partials& partials) { sum_ += sumWidened(partials.sum); }
    uint64_t total() const { return sum_; }

  private:
    uint64_t sum_ = 0;
};

// With s = v - 32768, which has 16 bits with its sign, v^2 = s^2 + 2^16 s + 2^30. The sum comes along.
// Regions of more than 2^32 pixels need more than 64 bits.
template <>
class SquareSum<uint16_t> {
  public:
    struct Partials {
        Vec<int32_t> sum;         // of s
        Vec<uint64_t> even, odd;  // of s^2 of every other pair of lanes; a pair makes at most 2^31
        int64_t lanes;
        OKPCV_INLINE void add(int, Vec<uint16_t> v) {
            const Vec<int16_t> s = bitCast<int16_t>(v ^ broadcast<uint16_t>(32768));
            const Vec<uint64_t> squares = bitCast<uint64_t>(mulAddPairs(s, s));
            sum = sum + mulAddPairs(s, broadcast<int16_t>(1));
            even = even + (squares & broadcast<uint64_t>(kLargest<uint32_t>));
            odd = odd + shiftRight(squares, 32);
            lanes += Vec<uint16_t>::lanes;
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        const int64_t sum = sumWidened(partials.sum);
        const auto squares = static_cast<int64_t>(sumLanes(partials.even + partials.odd));
        sum_ += static_cast<uint64_t>(sum + 32768 * partials.lanes);
        squares_ += static_cast<uint64_t>(squares + 65536 * sum + (partials.lanes << 30));
    }
    uint64_t sum() const { return sum_; }
    uint128_t total() const { return squares_; }

  private:
    static_assert(holdsBlock<uint16_t, int32_t>(2 * 32768));
    uint64_t sum_ = 0;
    uint128_t squares_ = 0;
};

// The sum of floats in single precision, in an order that keeps large sums accurate: sixteen partial sums per
// block, added to each other halves first, and the sums of the blocks pairwise: of two neighbours, of two
// such pairs, and so on. A term passes through at most 63 + 4 + log2(blocks) + 1 additions.
template <>
class Sum<float> {
    static constexpr int kVectors = kReductionPixels<float> / Vec<float>::lanes;

  public:
    struct Partials {
        Vec<float> sum[kVectors];
        OKPCV_INLINE void add(int vector, Vec<float> v) { sum[vector] = sum[vector] + v; }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        float sum = sumVectors(partials.sum);
        int level = 0;
        for (; blocks_ >> level & 1; ++level) sum = sums_[level] + sum;
        sums_[level] = sum;
        ++blocks_;
    }
    float total() const {
        float sum = 0;
        for (int level = 0; blocks_ >> level != 0; ++level) {
            if (blocks_ >> level & 1) sum = sums_[level] + sum;
        }
        return sum;
    }

  private:
    uint64_t blocks_ = 0;
    float sums_[63];  // at bit k of blocks_, if it is set: the sum of 2^k neighbouring blocks
};

template <>
class SquareSum<float> : public Sum<float> {
  public:
    struct Partials : Sum<float>::Partials {
        OKPCV_INLINE void add(int vector, Vec<float> v) { Sum<float>::Partials::add(vector, v * v); }
    };
};

}  // namespace okpcv
