// The kernels of morphology: each destination pixel is the maximum (or minimum) of source pixels that stand
// at given offsets. All passes of the engine, along rows and along columns, are calls of them.
//
// combineRows is bound by loads. Four rows of output share the rows of a tall term: per vector of output a
// term of height h costs (h + 3) / 4 loads, about one maximum per load, and the result one store.
// combineTall costs 3 loads, 3 maxima and 2 stores at any height.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"

namespace okpcv::morph {

struct Maximum {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return max(a, b);
    }
    template <class T>
    static constexpr T neutral = kSmallest<T>;
};
struct Minimum {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return min(a, b);
    }
    template <class T>
    static constexpr T neutral = kLargest<T>;
};

// ---- Element types --------------------------------------------------------------------------------------
// A type's pixels are what images hold; its cells are what intermediate rows hold.

template <class T, class Operation>
struct Integers {
    using Pixel = T;
    using Cell = T;
    using Op = Operation;
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

// ---- Kernels --------------------------------------------------------------------------------------------

// What takes part in an output pixel at (x, y): `height` rows from row y on, at element x + offset.
struct Term {
    int64_t offset;
    int32_t height;
};

// Terms sorted by height, shortest first.
struct TermList {
    const Term* begin;
    int32_t count;
};

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

    // Takes in a term of a height below kRows, or of height 1 when kRows is 1. kFirst: the tile is empty yet.
    template <int kHeight, bool kFirst, class S, class Watch>
    OKPCV_INLINE void takeShort(const S* p, int64_t step, Watch& watch) {
        forEach<kRows + kHeight - 1>([&](auto t) {
            Row row;
            fetch(row, rowBelow(p, t, step));
            if constexpr (t >= kHeight - 1) see(row, watch);
            forEach<kRows>([&](auto r) {
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

    // Takes in a term of at least kRows rows: the rows that all outputs share first, then the rest of each.
    template <bool kFirst, class S, class Watch>
    OKPCV_INLINE void takeTall(const S* p, int64_t step, int32_t height, Watch& watch) {
        Row run, row;
        fetch(run, rowBelow(p, kRows - 1, step));
        if (height == kRows) see(run, watch);
        for (int32_t t = kRows; t < height; ++t) {
            fetch(row, rowBelow(p, t, step));
            if (t == height - 1) see(row, watch);
            merge(run, row);
        }
        forEach<kRows>([&](auto i) {
            constexpr int r = kRows - 1 - i;
            if constexpr (r < kRows - 1) {
                fetch(row, rowBelow(p, r, step));
                merge(run, row);
            }
            if constexpr (kFirst) {
                rows_[r] = run;
            } else {
                merge(rows_[r], run);
            }
        });
        const S* const below = rowBelow(p, height, step);
        forEach<kRows - 1>([&](auto i) {
            fetch(row, rowBelow(below, i, step));
            see(row, watch);
            if constexpr (i == 0) {
                run = row;
            } else {
                merge(run, row);
            }
            merge(rows_[i + 1], run);
        });
    }

    template <bool kFirst, class S, class Watch>
    OKPCV_INLINE void take(const S* p, int64_t step, int32_t height, Watch& watch) {
        if constexpr (kRows == 1) {
            takeTall<kFirst>(p, step, height, watch);
        } else {
            switch (height) {
                case 1:
                    return takeShort<1, kFirst>(p, step, watch);
                case 2:
                    return takeShort<2, kFirst>(p, step, watch);
                case 3:
                    return takeShort<3, kFirst>(p, step, watch);
                default:
                    return takeTall<kFirst>(p, step, height, watch);
            }
        }
    }

    template <class D>
    OKPCV_INLINE void write(D* p, int64_t step) const {
        forEach<kRows>([&](auto r) {
            D* const to = Image<D>{p, step}.row(r);
            for (int v = 0; v < kVectors; ++v)
                storeCells<P>(to + v * kLanes, rows_[r].vectors[v], extent_.from(v * kLanes));
        });
    }

  private:
    struct Row {
        Vec<Cell> vectors[kVectors];
    };

    template <int kCount, class Step>
    static OKPCV_INLINE void forEach(Step step) {
        [&]<int... i>(std::integer_sequence<int, i...>) {
            (step(std::integral_constant<int, i>{}), ...);
        }
        (std::make_integer_sequence<int, kCount>{});
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

template <class P, int kRows, class S, class D, class Watch>
OKPCV_INLINE void combineTiles(Image<const S> src, Image<D> dst, int64_t width, TermList terms,
                               Watch& watch) {
    coverRow<Vec<S>::lanes, 2>(width, [&](auto vectors, auto extent, int64_t x) {
        Tile<P, kRows, vectors, decltype(extent)> tile(extent);
        const Term* term = terms.begin;
        const Term* const end = term + terms.count;
        tile.template take<true>(src.data + x + term->offset, src.step, term->height, watch);
        for (++term; term != end; ++term)
            tile.template take<false>(src.data + x + term->offset, src.step, term->height, watch);
        tile.write(dst.data + x, dst.step);
    });
}

}  // namespace detail

// dst(x, y) = the maximum over the terms of their elements of src, for `width` elements of `rows` rows.
// Watches the pixels of the last row of each term; the caller watches the height - 1 rows above the first.
template <class P, class S, class D, class Watch>
void combineRows(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, TermList terms,
                 Watch& watch) {
    Watch seen = watch;
    int64_t y = 0;
    for (; y + 4 <= rows; y += 4)
        detail::combineTiles<P, 4>(Image<const S>{src.row(y), src.step}, Image<D>{dst.row(y), dst.step},
                                   width, terms, seen);
    for (; y < rows; ++y)
        detail::combineTiles<P, 1>(Image<const S>{src.row(y), src.step}, Image<D>{dst.row(y), dst.step},
                                   width, terms, seen);
    watch = seen;
}

// dst(x, y) = the maximum of the `height` elements of src from (x, y) down, for at most `height` rows, by
// van Herk's and Gil and Werman's scheme: the rows that all outputs share and, growing upwards from them, the
// upper parts go to dst; then the lower parts, growing downwards, are merged in.
template <class P, class S, class D, class Watch>
void combineTall(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, int32_t height,
                 Watch& watch) {
    static_assert(std::is_same_v<D, typename P::Cell>);
    using Op = typename P::Op;
    constexpr int kLanes = Vec<D>::lanes;
    Watch seen = watch;
    detail::coverRow<kLanes, 4>(width, [&](auto vectors, auto extent, int64_t x) {
        Vec<D> run[vectors];
        const auto begin = [&](int64_t row) {
            for (int v = 0; v < vectors; ++v)
                run[v] = detail::loadCells<P>(src.row(row) + x + v * kLanes, extent.from(v * kLanes));
        };
        const auto grow = [&](int64_t row) {
            for (int v = 0; v < vectors; ++v)
                run[v] = Op::of(run[v],
                                detail::loadCells<P>(src.row(row) + x + v * kLanes, extent.from(v * kLanes)));
        };
        const auto see = [&](int64_t row) {
            if constexpr (!std::is_same_v<Watch, NoWatch>) {
                for (int v = 0; v < vectors; ++v)
                    seen.see(load(src.row(row) + x + v * kLanes, extent.from(v * kLanes)));
            }
        };
        const auto write = [&](int64_t row, bool merge) {
            for (int v = 0; v < vectors; ++v) {
                D* const to = dst.row(row) + x + v * kLanes;
                store(to, merge ? Op::of(load(to, extent.from(v * kLanes)), run[v]) : run[v],
                      extent.from(v * kLanes));
            }
        };
        begin(height - 1);
        see(height - 1);
        for (int64_t y = height - 2; y >= rows; --y) grow(y);
        for (int64_t y = rows - 1; y >= 0; --y) {
            if (y < height - 1) grow(y);
            write(y, false);
        }
        if (rows == 1) return;
        begin(height);
        for (int64_t y = 1;; ++y) {
            see(height + y - 1);
            write(y, true);
            if (y + 1 == rows) break;
            grow(height + y);
        }
    });
    watch = seen;
}

}  // namespace okpcv::morph
