// What the kernels of morphology are written in: the maximum or minimum, the types of elements, the watch for
// floats that need another, and tiles of a few rows and vectors of output in registers.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "core/unrolled.h"

namespace okpcv::morph {

struct Maximum {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return max(a, b);
    }
    // What never wins; in borders, only against numbers.
    template <class T>
    static constexpr T identity = kIsFloat<T> ? -std::numeric_limits<T>::infinity() : kSmallest<T>;
    template <class T>
    static constexpr T defaultBorder = kSmallest<T>;
};
struct Minimum {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return min(a, b);
    }
    template <class T>
    static constexpr T identity = kIsFloat<T> ? std::numeric_limits<T>::infinity() : kLargest<T>;
    template <class T>
    static constexpr T defaultBorder = kLargest<T>;
};

// ---- Element types --------------------------------------------------------------------------------------
// A type's pixels are what images hold; its cells are what intermediate rows hold.

template <class T, class Operation>
struct Integers {
    using Pixel = T;
    using Cell = T;
    using Op = Operation;
    static constexpr bool kCellsArePixels = true;
    static OKPCV_INLINE Vec<T> toCells(Vec<T> v) { return v; }
    static OKPCV_INLINE Vec<T> toPixels(Vec<T> v) { return v; }
};

// Floats are ordered as the totalOrder predicate of IEEE 754 orders them. Then every evaluation order gives
// the same bits. As integers, the bits of floats without a sign are in this order, and those with a sign
// once their other bits are inverted.
template <class Operation>
struct OrderedFloats {
    using Pixel = float;
    using Cell = int32_t;
    using Op = Operation;
    static constexpr bool kCellsArePixels = false;
    static OKPCV_INLINE Vec<int32_t> toCells(Vec<float> v) { return invertIfNegative(bitCast<int32_t>(v)); }
    static OKPCV_INLINE Vec<float> toPixels(Vec<int32_t> v) { return bitCast<float>(invertIfNegative(v)); }

  private:
    static OKPCV_INLINE Vec<int32_t> invertIfNegative(Vec<int32_t> v) {
        return v ^ bitCast<int32_t>(shiftRight(bitCast<uint32_t>(shiftRight(v, 31)), 1));
    }
};

// The same results for images without NaN and without -0, where float comparison already is that order.
template <class Operation>
struct PlainFloats {
    using Pixel = float;
    using Cell = float;
    using Op = Operation;
    static constexpr bool kCellsArePixels = false;  // as they are to be watched
    static OKPCV_INLINE Vec<float> toCells(Vec<float> v) { return v; }
    static OKPCV_INLINE Vec<float> toPixels(Vec<float> v) { return v; }
};

// Notes whether source pixels need OrderedFloats: -0 has the smallest bits as a signed integer, NaN the
// largest ones as a signed or as an unsigned integer.
class FloatWatch {
  public:
    OKPCV_INLINE void see(Vec<float> v) {
        smallest_ = min(smallest_, bitCast<int32_t>(v));
        largest_ = max(largest_, bitCast<int32_t>(v));
        largestBits_ = max(largestBits_, bitCast<uint32_t>(v));
    }
    bool found() const {
        return minLane(smallest_) == INT32_MIN || maxLane(largest_) > kInfinity ||
               maxLane(largestBits_) > (kInfinity | 0x80000000U);
    }

  private:
    static constexpr int32_t kInfinity = 0x7F800000;
    Vec<int32_t> smallest_ = zeros<int32_t>(), largest_ = zeros<int32_t>();
    Vec<uint32_t> largestBits_ = zeros<uint32_t>();
};
struct NoWatch {
    template <class T>
    OKPCV_INLINE void see(Vec<T>) {}
    static constexpr bool found() { return false; }
};

// ---- Tiles ---------------------------------------------------------------------------------------------

namespace detail {

template <class T>
OKPCV_INLINE const T* rowBelow(const T* p, int64_t rows, int64_t step) {
    return Image<const T>{p, step}.row(rows);
}

template <class P, class S, class Extent>
OKPCV_INLINE Vec<typename P::Cell> loadCells(const S* p, Extent extent) {
    if constexpr (std::is_same_v<S, typename P::Cell>) {
        return load(p, extent);
    } else {
        return P::toCells(load(p, extent));
    }
}
template <class P, class D, class Extent>
OKPCV_INLINE void storeCells(D* p, Vec<typename P::Cell> v, Extent extent) {
    if constexpr (std::is_same_v<D, typename P::Cell>) {
        store(p, v, extent);
    } else {
        store(p, P::toPixels(v), extent);
    }
}

// kRows rows of kVectors vectors of output.
template <class P, int kRows, int kVectors, class Extent>
class Tile {
  public:
    using Cell = typename P::Cell;
    using Op = typename P::Op;
    static constexpr int kLanes = Vec<Cell>::lanes;

    OKPCV_INLINE explicit Tile(Extent extent) : extent_(extent) {}

    // Fills the tile with a term of any height.
    template <class S, class Watch>
    OKPCV_INLINE void fill(const S* p, int64_t step, int32_t height, Watch& watch) {
        if (height == 1) return takeShort<1, true>(p, step, watch);
        if (height < kRows) {
            // By twos, which share all rows but two.
            return unrolled<kRows / 2>([&](auto i) OKPCV_INLINE_LAMBDA {
                takeTogether<2 * i, 2, true>(rowBelow(p, 2 * i, step), step, height, watch);
            });
        }
        takeTall<true>(p, step, height, watch);
    }

    // Takes in a term of a height below kRows, or of height 1 when kRows is 1. kFirst: the tile is empty yet.
    template <int kHeight, bool kFirst, class S, class Watch>
    OKPCV_INLINE void takeShort(const S* p, int64_t step, Watch& watch) {
        unrolled<kRows + kHeight - 1>([&](auto t) OKPCV_INLINE_LAMBDA {
            Row row;
            fetch(row, rowBelow(p, t, step));
            if constexpr (t >= kHeight - 1) see(row, watch);
            unrolled<kRows>([&](auto r) OKPCV_INLINE_LAMBDA {
                if constexpr (r <= t && t < r + kHeight) {
                    if constexpr (kFirst && r == t) {
                        rows_[r] = row;
                    } else {
                        merge(rows_[r], row);
                    }
                }
            });
        });
    }

    // Takes in a term of at least kRows rows.
    template <bool kFirst, class S, class Watch>
    OKPCV_INLINE void takeTall(const S* p, int64_t step, int32_t height, Watch& watch) {
        takeTogether<0, kRows, kFirst>(p, step, height, watch);
    }

    // The identity everywhere, to begin with terms of any height.
    OKPCV_INLINE void clear() {
        const Vec<Cell> identity = broadcast(Op::template identity<Cell>);
        for (Row& row : rows_) {
            for (Vec<Cell>& v : row.vectors) v = identity;
        }
    }

    template <class D>
    OKPCV_INLINE void write(D* p, int64_t step) const {
        unrolled<kRows>([&](auto r) OKPCV_INLINE_LAMBDA {
            D* const to = Image<D>{p, step}.row(r);
            for (int v = 0; v < kVectors; ++v)
                storeCells<P>(to + v * kLanes, rows_[r].vectors[v], extent_.from(v * kLanes));
        });
    }

    template <int r>
    OKPCV_INLINE Vec<Cell> vector() const {
        static_assert(kVectors == 1);
        return rows_[r].vectors[0];
    }

  private:
    struct Row {
        Vec<Cell> vectors[kVectors];
    };

    // Takes a term of at least kCount rows into the kCount rows from kFrom on: the rows that they all share
    // first, then the rest of each.
    template <int kFrom, int kCount, bool kFirst, class S, class Watch>
    OKPCV_INLINE void takeTogether(const S* p, int64_t step, int32_t height, Watch& watch) {
        Row run, row;
        fetch(run, rowBelow(p, kCount - 1, step));
        if (height == kCount) see(run, watch);
        for (int32_t t = kCount; t < height; ++t) {
            fetch(row, rowBelow(p, t, step));
            if (t == height - 1) see(row, watch);
            merge(run, row);
        }
        unrolled<kCount>([&](auto i) OKPCV_INLINE_LAMBDA {
            constexpr int r = kCount - 1 - i;
            if constexpr (r < kCount - 1) {
                fetch(row, rowBelow(p, r, step));
                merge(run, row);
            }
            if constexpr (kFirst) {
                rows_[kFrom + r] = run;
            } else {
                merge(rows_[kFrom + r], run);
            }
        });
        const S* const below = rowBelow(p, height, step);
        unrolled<kCount - 1>([&](auto i) OKPCV_INLINE_LAMBDA {
            fetch(row, rowBelow(below, i, step));
            see(row, watch);
            if constexpr (i == 0) {
                run = row;
            } else {
                merge(run, row);
            }
            merge(rows_[kFrom + i + 1], run);
        });
    }

    template <class S>
    OKPCV_INLINE void fetch(Row& row, const S* p) const {
        for (int v = 0; v < kVectors; ++v)
            row.vectors[v] = loadCells<P>(p + v * kLanes, extent_.from(v * kLanes));
    }
    template <class Watch>
    static OKPCV_INLINE void see(const Row& row, Watch& watch) {
        for (int v = 0; v < kVectors; ++v) watch.see(row.vectors[v]);
    }
    static OKPCV_INLINE void merge(Row& into, const Row& row) {
        for (int v = 0; v < kVectors; ++v) into.vectors[v] = Op::of(into.vectors[v], row.vectors[v]);
    }

    Extent extent_;
    Row rows_[kRows];
};

// Calls tile(extent, x) over a row: steps of kVectors whole vectors, then single ones; the last one ends with
// the row and may overlap the one before, which changes nothing. Rows below a vector are one part.
template <int kLanes, int kVectors, class Visit>
OKPCV_INLINE void coverRow(int64_t width, Visit visit) {
    using One = std::integral_constant<int, 1>;
    if (width < kLanes) return visit(One{}, Part{static_cast<int>(width)}, 0);
    int64_t x = 0;
    for (; x + kVectors * kLanes <= width; x += kVectors * kLanes)
        visit(std::integral_constant<int, kVectors>{}, Whole{}, x);
    for (; x + kLanes <= width; x += kLanes) visit(One{}, Whole{}, x);
    if (x < width) visit(One{}, Whole{}, width - kLanes);
}

}  // namespace detail

}  // namespace okpcv::morph
