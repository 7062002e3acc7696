// The kernels of morphology: each destination pixel is the maximum (or minimum) of source pixels that stand
// at given offsets. All passes of the engine, along rows and along columns, are calls of them.
//
// combineRows is bound by loads. Four rows of output share the rows of a tall term: per vector of output a
// term of height h costs (h + 3) / 4 loads, about one maximum per load, and the result one store.
// combineTall costs 3 loads, 3 maxima and 2 stores at any height. combineRectangle is bound by the number of
// instructions, 13 per vector of a square of 3: 1.5 loads, 3.5 maxima, 2 moves along the row and one store.
// combineCross takes a load and a maximum more.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "core/image.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "core/with_constant.h"
#include "morph/tile.h"

namespace okpcv::morph {

// What takes part in an output pixel at (x, y): `height` rows from row y on, at element x + offset.
struct Term {
    int64_t offset;
    int32_t height;
};

// Runs of a multiple of a shorter length up to this one are combined directly.
inline constexpr int32_t kMostParts = 8;

// What is done beside the combining of rows, for each vector at element x of the kRows output rows from y on.
struct Nothing {
    template <class T, int kRows, class Extent>
    OKPCV_INLINE void visit(int64_t, int64_t, Extent) {}
};
// Fetches other rows of the source, which the next output rows will need: of four, a cache line of one.
struct FetchNextRows {
    Image<const char> rows;

    template <class T, int kRows, class Extent>
    OKPCV_INLINE void visit(int64_t y, int64_t x, Extent) {
        const int64_t byte = x * int64_t{sizeof(T)};
        if constexpr (kRows == 4) fetch(rows.row(y + byte / kVectorBytes % kRows) + byte);
    }
};
// Watches the rows that an output row is the first to need.
template <class S, class Watch>
struct WatchNewRows {
    Image<const S> rows;
    Watch watch;

    template <class T, int kRows, class Extent>
    OKPCV_INLINE void visit(int64_t y, int64_t x, Extent extent) {
        unrolled<kRows>([&](auto r) OKPCV_INLINE_LAMBDA { watch.see(load(rows.row(y + r) + x, extent)); });
    }
};

// Terms sorted by height: so many of heights 1, 2 and 3, then the taller ones.
struct TermList {
    const Term* begin;
    int32_t ofHeight[3];
    int32_t taller;

    int32_t count() const { return ofHeight[0] + ofHeight[1] + ofHeight[2] + taller; }
};

namespace detail {

// Fills tile after tile of kRows rows: take(tile, p) takes in what belongs to the tile whose source is at p.
template <class P, int kRows, class S, class D, class Beside, class Take>
OKPCV_INLINE void fillTiles(Image<const S> src, Image<D> dst, int64_t y, int64_t width, Beside& beside,
                            Take take) {
    constexpr int kLanes = Vec<S>::lanes;
    coverRow<kLanes, 2>(width, [&](auto vectors, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < vectors; ++v)
            beside.template visit<S, kRows>(y, x + v * kLanes, extent.from(v * kLanes));
        Tile<P, kRows, vectors, decltype(extent)> tile(extent);
        take(tile, src.row(y) + x);
        tile.write(dst.row(y) + x, dst.step);
    });
}

// Row y, all of whose terms, kTerms of them, have a height of 1.
template <class P, int kTerms, class S, class D, class Beside>
OKPCV_INLINE void fillRow(Image<const S> src, Image<D> dst, int64_t y, int64_t width, TermList terms,
                          Beside& beside) {
    using Cell = typename P::Cell;
    constexpr int kLanes = Vec<Cell>::lanes;
    const S* from[kTerms];
    for (int t = 0; t < kTerms; ++t) from[t] = src.row(y) + terms.begin[t].offset;
    D* const to = dst.row(y);
    coverRow<kLanes, 4>(width, [&](auto vectors, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < vectors; ++v)
            beside.template visit<S, 1>(y, x + v * kLanes, extent.from(v * kLanes));
        Vec<Cell> result[vectors];
        for (int v = 0; v < vectors; ++v)
            result[v] = loadCells<P>(from[0] + x + v * kLanes, extent.from(v * kLanes));
        for (int t = 1; t < kTerms; ++t) {
            for (int v = 0; v < vectors; ++v)
                result[v] =
                    P::Op::of(result[v], loadCells<P>(from[t] + x + v * kLanes, extent.from(v * kLanes)));
        }
        for (int v = 0; v < vectors; ++v)
            storeCells<P>(to + x + v * kLanes, result[v], extent.from(v * kLanes));
    });
}

// A row of the maxima of kRun elements each, kStep apart, which reach into the next vector at most: one load
// per vector, and maxima with itself, moved, for each doubling of the run. Reads a vector beyond the row.
template <class P, int kRun, int kStep, class S, class D, class Beside>
OKPCV_INLINE void fillRunRow(const S* src, D* dst, int64_t y, int64_t width, Beside& beside) {
    using Cell = typename P::Cell;
    constexpr int kLanes = Vec<Cell>::lanes;
    static_assert((kRun - 1) * kStep <= kLanes);
    coverRow<kLanes, 4>(width, [&](auto vectors, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < vectors; ++v)
            beside.template visit<S, 1>(y, x + v * kLanes, extent.from(v * kLanes));
        Vec<Cell> run[vectors + 1];
        for (int v = 0; v <= vectors; ++v) run[v] = load(src + x + v * kLanes);
        const auto widen = [&](auto by) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < vectors; ++v)
                run[v] = P::Op::of(run[v], slide<by * kStep>(run[v], run[v + 1]));
            run[vectors] = P::Op::of(run[vectors], slide<by * kStep>(run[vectors], run[vectors]));
        };
        constexpr int kDoubled = std::bit_floor(static_cast<unsigned>(kRun));
        if constexpr (kDoubled > 1) widen(std::integral_constant<int, 1>{});
        if constexpr (kDoubled > 2) widen(std::integral_constant<int, 2>{});
        if constexpr (kDoubled > 4) widen(std::integral_constant<int, 4>{});
        if constexpr (kRun > kDoubled) widen(std::integral_constant<int, kRun - kDoubled>{});
        for (int v = 0; v < vectors; ++v)
            storeCells<P>(dst + x + v * kLanes, run[v], extent.from(v * kLanes));
    });
}

// The steps by which a run of one element grows to a longer one: to twice the length as long as that fits.
struct Growth {
    int by[5]{};
    int steps = 0;

    explicit constexpr Growth(int run) {
        for (int length = 1; length < run; length += by[steps++])
            by[steps] = length < run - length ? length : run - length;
    }
};
template <int kRun>
inline constexpr Growth kGrowth{kRun};

// Runs of kRun elements, kStep apart, for kRows rows of output of whole vectors: take(tile, i) takes in
// vector i of the rows, and with each step of growth there is one maximum with themselves, moved, for which a
// vector waits until the next one is there; results(i)(r, v) is what to write of row r. Takes as many vectors
// beyond those that it writes as there are steps.
template <class P, int kRun, int kStep, int kRows, class T, class Take, class Results>
OKPCV_INLINE void fillGrown(Image<T> dst, int64_t vectors, Take take, Results results) {
    constexpr int kLanes = Vec<T>::lanes;
    constexpr int kSteps = kGrowth<kRun>.steps;
    Vec<T> waiting[kSteps + 1][kRows];
    for (auto& rows : waiting) {
        for (Vec<T>& v : rows) v = zeros<T>();
    }
    const auto advance = [&](int64_t i, auto write) OKPCV_INLINE_LAMBDA {
        Tile<P, kRows, 1, Whole> tile(Whole{});
        take(tile, i + kSteps);
        unrolled<kRows>([&](auto r) OKPCV_INLINE_LAMBDA {
            Vec<T> v = tile.template vector<r>();
            unrolled<kSteps>([&](auto s) OKPCV_INLINE_LAMBDA {
                const Vec<T> grown =
                    P::Op::of(waiting[s][r], slide<kGrowth<kRun>.by[s] * kStep>(waiting[s][r], v));
                waiting[s][r] = v;
                v = grown;
            });
            write(r, v);
        });
    };
    const auto put = [&](int64_t at) OKPCV_INLINE_LAMBDA {
        advance(at, [&, result = results(at)](auto r, Vec<T> v)
                        OKPCV_INLINE_LAMBDA { store(dst.row(r) + at * kLanes, result(r, v)); });
    };
    int64_t i = -kSteps;
    for (; i < 0; ++i) advance(i, [](auto, Vec<T>) OKPCV_INLINE_LAMBDA {});
    // By twos, so that what waits need not be moved from register to register.
    for (; i < vectors; i += 2) {
        put(i);
        put(i + 1);
    }
}

// Rectangles of kRun elements, kStep apart, and `height` rows.
template <class P, int kRun, int kStep, int kRows, class T, class Height, class Watch>
void fillRectangles(Image<const T> src, Image<T> dst, int64_t vectors, Height height, Watch& watch) {
    Watch seen = watch;
    fillGrown<P, kRun, kStep, kRows>(
        dst, vectors,
        [&](auto& tile, int64_t i)
            OKPCV_INLINE_LAMBDA { tile.fill(src.data + i * Vec<T>::lanes, src.step, height, seen); },
        [](int64_t) OKPCV_INLINE_LAMBDA { return [](auto, Vec<T> v) OKPCV_INLINE_LAMBDA { return v; }; });
    watch = seen;
}

// Crosses of such a run, of which `runs` has the first elements, and a column of as many rows, of which
// `columns` has the first. Watches what columns see.
template <class P, int kRun, int kStep, int kRows, class T, class Watch>
void fillCrosses(Image<const T> runs, Image<const T> columns, Image<T> dst, int64_t vectors, Watch& watch) {
    Watch seen = watch;
    NoWatch none;
    constexpr int kLanes = Vec<T>::lanes;
    fillGrown<P, kRun, kStep, kRows>(
        dst, vectors,
        [&](auto& tile, int64_t i) OKPCV_INLINE_LAMBDA {
            tile.template takeShort<1, true>(runs.data + i * kLanes, runs.step, none);
        },
        [&](int64_t i) OKPCV_INLINE_LAMBDA {
            Tile<P, kRows, 1, Whole> tile(Whole{});
            tile.fill(columns.data + i * kLanes, columns.step, std::integral_constant<int, kRun>{}, seen);
            return [tile](auto r, Vec<T> v)
                       OKPCV_INLINE_LAMBDA { return P::Op::of(v, tile.template vector<r>()); };
        });
    watch = seen;
}

template <class P, class S, class D, class Beside, class Take>
OKPCV_INLINE void fillRows(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, Beside& beside,
                           Take take) {
    int64_t y = 0;
    if (width >= Vec<S>::lanes) {
        for (; y + 4 <= rows; y += 4) fillTiles<P, 4>(src, dst, y, width, beside, take);
    }
    for (; y < rows; ++y) fillTiles<P, 1>(src, dst, y, width, beside, take);
}

}  // namespace detail

// dst(x, y) = the maximum of the `height` elements of src from (x, y) down. Watches all rows of the source
// but the first height - 1.
template <class P, class S, class D, class Watch>
void combineColumns(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, int32_t height,
                    Watch& watch) {
    Watch seen = watch;
    const int64_t step = src.step;
    const auto withHeight = [&](auto take) OKPCV_INLINE_LAMBDA {
        Nothing nothing;
        detail::fillRows<P>(src, dst, width, rows, nothing, take);
    };
    switch (height) {
        case 1:
            withHeight([&](auto& tile, const S* p)
                           OKPCV_INLINE_LAMBDA { tile.template takeShort<1, true>(p, step, seen); });
            break;
        case 2:
            withHeight([&](auto& tile, const S* p)
                           OKPCV_INLINE_LAMBDA { tile.template takeShort<2, true>(p, step, seen); });
            break;
        case 3:
            withHeight([&](auto& tile, const S* p)
                           OKPCV_INLINE_LAMBDA { tile.template takeShort<3, true>(p, step, seen); });
            break;
        default:
            withHeight([&](auto& tile, const S* p)
                           OKPCV_INLINE_LAMBDA { tile.template takeTall<true>(p, step, height, seen); });
    }
    watch = seen;
}

// dst(x, y) = the maximum over the terms of their elements of src, for `width` elements of `rows` rows. May
// read, and ignore, a vector beyond each row of src. For a single term, which only rectangles have,
// nothing is done beside.
template <class P, class S, class D, class Beside>
void combineRows(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, TermList terms,
                 Beside& beside) {
    if (terms.count() == 1) {
        NoWatch none;
        const Term& term = *terms.begin;
        return combineColumns<P>(Image<const S>{src.data + term.offset, src.step}, dst, width, rows,
                                 term.height, none);
    }
    if (terms.count() == terms.ofHeight[0] && terms.count() <= kMostParts) {
        return withCount<2, kMostParts>(terms.count(), [&](auto count) OKPCV_INLINE_LAMBDA {
            const int64_t first = terms.begin[0].offset;
            const int64_t apart = terms.begin[1].offset - first;
            bool isRun = true;
            for (int t = 2; t < count; ++t) isRun &= terms.begin[t].offset - first == apart * t;
            const auto fillRuns = [&](auto step) OKPCV_INLINE_LAMBDA {
                if constexpr ((count - 1) * step <= Vec<S>::lanes) {
                    if (!isRun || apart != step || width < Vec<S>::lanes) return false;
                    Beside here = beside;
                    for (int64_t y = 0; y < rows; ++y)
                        detail::fillRunRow<P, count, step>(src.row(y) + first, dst.row(y), y, width, here);
                    beside = here;
                    return true;
                }
                return false;
            };
            // The elements of a run are as far apart as there are channels.
            if (fillRuns(std::integral_constant<int, 1>{}) || fillRuns(std::integral_constant<int, 3>{}) ||
                fillRuns(std::integral_constant<int, 4>{}))
                return;
            Beside here = beside;
            for (int64_t y = 0; y < rows; ++y) detail::fillRow<P, count>(src, dst, y, width, terms, here);
            beside = here;
        });
    }
    NoWatch none;
    Beside here = beside;
    const int64_t step = src.step;
    detail::fillRows<P>(src, dst, width, rows, here, [&](auto& tile, const S* p) OKPCV_INLINE_LAMBDA {
        const Term* t = terms.begin;
        const Term* end = t + terms.ofHeight[0];
        if (t != end) {
            tile.template takeShort<1, true>(p + t->offset, step, none);
            ++t;
        } else {
            tile.clear();
        }
        for (; t != end; ++t) tile.template takeShort<1, false>(p + t->offset, step, none);
        end += terms.ofHeight[1];
        for (; t != end; ++t) tile.template takeShort<2, false>(p + t->offset, step, none);
        end += terms.ofHeight[2];
        for (; t != end; ++t) tile.template takeShort<3, false>(p + t->offset, step, none);
        end += terms.taller;
        for (; t != end; ++t) tile.template takeTall<false>(p + t->offset, step, t->height, none);
    });
    beside = here;
}
template <class P, class S, class D>
void combineRows(Image<const S> src, Image<D> dst, int64_t width, int64_t rows, TermList terms) {
    Nothing nothing;
    combineRows<P>(src, dst, width, rows, terms, nothing);
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
    // Down the rows there are too many streams for the processor to see them itself.
    constexpr int kBytesAhead = 128;
    Watch seen = watch;
    detail::coverRow<kLanes, 4>(width, [&](auto vectors, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        Vec<D> run[vectors];
        const auto begin = [&](int64_t row) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < vectors; ++v)
                run[v] = detail::loadCells<P>(src.row(row) + x + v * kLanes, extent.from(v * kLanes));
        };
        const auto grow = [&](int64_t row) OKPCV_INLINE_LAMBDA {
            fetch(reinterpret_cast<const char*>(src.row(row) + x) + kBytesAhead);
            for (int v = 0; v < vectors; ++v)
                run[v] = Op::of(run[v],
                                detail::loadCells<P>(src.row(row) + x + v * kLanes, extent.from(v * kLanes)));
        };
        const auto see = [&](int64_t row) OKPCV_INLINE_LAMBDA {
            if constexpr (!std::is_same_v<Watch, NoWatch>) {
                for (int v = 0; v < vectors; ++v)
                    seen.see(load(src.row(row) + x + v * kLanes, extent.from(v * kLanes)));
            }
        };
        const auto write = [&](int64_t row, auto merge) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < vectors; ++v) {
                D* const to = dst.row(row) + x + v * kLanes;
                store(to, merge() ? Op::of(load(to, extent.from(v * kLanes)), run[v]) : run[v],
                      extent.from(v * kLanes));
            }
        };
        begin(height - 1);
        see(height - 1);
        for (int64_t y = height - 2; y >= rows; --y) grow(y);
        for (int64_t y = rows - 1; y >= 0; --y) {
            if (y < height - 1) grow(y);
            write(y, std::false_type{});
        }
        if (rows == 1) return;
        begin(height);
        for (int64_t y = 1;; ++y) {
            see(height + y - 1);
            write(y, std::true_type{});
            if (y + 1 == rows) break;
            grow(height + y);
        }
    });
    watch = seen;
}

// What combineRectangle can do: the short runs that masks with a middle have, of elements as far apart as
// there are channels, which reach into the next vector at most with each step of their growth.
template <class T>
constexpr bool canCombineRectangle(int32_t run, int32_t channels) {
    const int32_t longestStep = run == 5 ? 2 : run == 7 ? 3 : 1;
    return run <= 7 && run % 2 == 1 && longestStep * channels <= Vec<T>::lanes;
}
// Vectors of the source that it reads beyond those that it writes.
constexpr int64_t vectorsBeyond(int32_t run) {
    return std::bit_width(static_cast<uint32_t>(run - 1));
}

inline constexpr int kRectangleRows = 4;

namespace detail {

// Calls fill(length, step, together, y), all but y known to the code, until all rows are filled: as many
// together, from row y on, as leaves what waits and what is watched in registers.
template <class T, class Watch, class Fill>
OKPCV_INLINE void forRowsOfRuns(int64_t rows, int32_t run, int channels, Fill fill) {
    const auto fillAll = [&](auto length, auto step) OKPCV_INLINE_LAMBDA {
        if constexpr (canCombineRectangle<T>(length, step)) {
            static_assert(vectorsBeyond(length) == kGrowth<length>.steps);
            constexpr bool isLight = length <= 3 && std::is_same_v<Watch, NoWatch>;
            constexpr int kRows = isLight ? kRectangleRows : kRectangleRows / 2;
            for (int64_t y = 0; y < rows; y += kRows)
                fill(length, step, std::integral_constant<int, kRows>{}, std::min(y, rows - kRows));
        }
    };
    withCount<1, 7>(run, [&](auto length) OKPCV_INLINE_LAMBDA {
        if (channels == 1) return fillAll(length, std::integral_constant<int, 1>{});
        // There are no pixels of two bytes with several channels.
        if constexpr (sizeof(T) != 2) {
            if (channels == 3) return fillAll(length, std::integral_constant<int, 3>{});
            fillAll(length, std::integral_constant<int, 4>{});
        }
    });
}

}  // namespace detail

// dst(x, y) = the maximum of the elements of src from (x, y) on that are a run of pixels of `channels`
// elements and `height` rows, for an even number of whole vectors of at least kRectangleRows rows. Watches
// all rows of the source but the first height - 1.
template <class P, class T, class Watch>
void combineRectangle(Image<const T> src, Image<T> dst, int64_t vectors, int64_t rows, int32_t run,
                      int channels, int32_t height, Watch& watch) {
    detail::forRowsOfRuns<T, Watch>(
        rows, run, channels, [&](auto length, auto step, auto together, int64_t y) OKPCV_INLINE_LAMBDA {
            const auto fill = [&](auto knownHeight) OKPCV_INLINE_LAMBDA {
                detail::fillRectangles<P, length, step, together>(Image<const T>{src.row(y), src.step},
                                                                  Image<T>{dst.row(y), dst.step}, vectors,
                                                                  knownHeight, watch);
            };
            // Squares are worth code of their own.
            if (height == length) return fill(length);
            fill(height);
        });
}

// The same for crosses: dst(x, y) = the maximum of the run of pixels from (x, y) on in `runs` and of the
// column of as many rows from (x, y) down in `columns`. Watches all rows of columns but the first run - 1.
template <class P, class T, class Watch>
void combineCross(Image<const T> runs, Image<const T> columns, Image<T> dst, int64_t vectors, int64_t rows,
                  int32_t run, int channels, Watch& watch) {
    detail::forRowsOfRuns<T, Watch>(
        rows, run, channels, [&](auto length, auto step, auto together, int64_t y) OKPCV_INLINE_LAMBDA {
            if constexpr (length > 1) {
                detail::fillCrosses<P, length, step, together>(
                    Image<const T>{runs.row(y), runs.step}, Image<const T>{columns.row(y), columns.step},
                    Image<T>{dst.row(y), dst.step}, vectors, watch);
            }
        });
}

// The longest runs that combineDoubled makes: with the last step a whole vector joins the next one.
template <class T>
inline constexpr int32_t kLongestDoubled = 2 * Vec<T>::lanes;

// dst(x, y) = the maximum of the `run` elements of src from (x, y) on, a power of two from 8 on, for an even
// number of whole vectors. Reads a vector beyond them for each doubling.
template <class P, class T>
void combineDoubled(Image<const T> src, Image<T> dst, int64_t vectors, int64_t rows, int32_t run) {
    withConstant<8, 16, 32>(run, [&](auto length) OKPCV_INLINE_LAMBDA {
        if constexpr (length != 0 && length <= kLongestDoubled<T>) {
            constexpr std::integral_constant<int, 1> kOne;
            NoWatch none;
            for (int64_t y = 0; y < rows; ++y)
                detail::fillRectangles<P, length, 1, 1>(Image<const T>{src.row(y), src.step},
                                                        Image<T>{dst.row(y), dst.step}, vectors, kOne, none);
        }
    });
}

// Shows the watch `rows` rows.
template <class T, class Watch>
void watchRows(Image<const T> src, int64_t width, int64_t rows, Watch& watch) {
    if constexpr (!std::is_same_v<Watch, NoWatch>) {
        Watch seen = watch;
        for (int64_t y = 0; y < rows; ++y) {
            detail::coverRow<Vec<T>::lanes, 1>(width, [&](auto, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
                seen.see(load(src.row(y) + x, extent));
            });
        }
        watch = seen;
    }
}

}  // namespace okpcv::morph
