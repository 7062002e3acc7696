// Row engines: they walk the rows of a region and hand a kernel vector after vector. The kernel is called
// with an extent (Whole, Part or Streamed, see simd.h) and the addresses of one vector's first pixel in each
// image; it passes the extent on to its loads and stores. So the rest of a row runs through the same code as
// its whole vectors, and no scalar twin of a kernel exists.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/image.h"
#include "core/simd.h"

namespace okpcv {

// Calls kernel(extent, x) for x = 0, kLanes, 2 * kLanes, ... below `width`.
template <int kLanes, class Kernel>
OKPCV_INLINE void mapColumns(int64_t width, const Kernel& kernel) {
    int64_t x = 0;
    for (; x + 2 * kLanes <= width; x += 2 * kLanes) {
        kernel(Whole{}, x);
        kernel(Whole{}, x + kLanes);
    }
    if (x + kLanes <= width) {
        kernel(Whole{}, x);
        x += kLanes;
    }
    if (x < width) kernel(Part{static_cast<int>(width - x)}, x);
}

// The same with addresses: calls kernel(extent, p + x...).
template <int kLanes, class Kernel, class... T>
OKPCV_INLINE void mapRow(int64_t width, const Kernel& kernel, T*... p) {
    mapColumns<kLanes>(width,
                       [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA { kernel(extent, (p + x)...); });
}

// Whether an image that is read and written in place is fetched into the caches ahead of the work. That pays
// where it is most of what is read: the processor fetches by itself, but not beyond a page.
enum class Fetch { AsItComes, FirstAhead };
// For an image of floats beside sources of S: beside bytes it is most of what is read.
template <class S>
inline constexpr Fetch kFetchBeside = sizeof(S) == 1 ? Fetch::FirstAhead : Fetch::AsItComes;
inline constexpr int64_t kFetchedAheadBytes = 8192;

// Calls kernel(Extent{}, out + x, p + x...) along a row from x on, as far as there is something to fetch in
// the row, and returns where it ends.
template <int kLanes, class Extent, class Kernel, class Out, class... T>
OKPCV_INLINE int64_t mapFetching(int64_t x, int64_t width, const Kernel& kernel, Out* out, T*... p) {
    constexpr int64_t ahead = kFetchedAheadBytes / int{sizeof(Out)};
    constexpr int64_t line = std::max<int64_t>(kCacheLineBytes / sizeof(Out), kLanes);
    for (; x + ahead + line <= width; x += line) {
        fetch(out + x + ahead);
        for (int64_t i = 0; i < line; i += kLanes) kernel(Extent{}, out + x + i, (p + x + i)...);
    }
    return x;
}

// Maps pixels to pixels: mapRow over every row of single-channel images (an image of several channels passes
// as a wider one of single elements). Rows that follow each other without gaps are one long row.
template <int kLanes, Fetch kFetch = Fetch::AsItComes, class Kernel, class... T>
OKPCV_INLINE void mapRows(Size size, const Kernel& kernel, const Image<T>&... images) {
    if ((images.isDense(size.width) && ...)) size = {size.width * size.height, 1};
    for (int64_t y = 0; y < size.height; ++y) {
        int64_t x = 0;
        if constexpr (kFetch == Fetch::FirstAhead) {
            x = mapFetching<kLanes, Whole>(0, size.width, kernel, images.row(y)...);
        }
        mapRow<kLanes>(size.width - x, kernel, (images.row(y) + x)...);
    }
}

// mapRows whose kernel stores to the first image past the caches where the extent says Streamed. Every row
// begins with the elements before its first aligned address; a row that never reaches one (its address is no
// multiple of the element size) is stored ordinarily.
template <int kLanes, Fetch kFetch = Fetch::AsItComes, class Kernel, class Out, class... T>
OKPCV_INLINE void mapRowsStreamed(Size size, const Kernel& kernel, const Image<Out>& out,
                                  const Image<T>&... images) {
    static_assert(kLanes % Vec<Out>::lanes == 0);
    if (out.isDense(size.width) && (images.isDense(size.width) && ...)) size = {size.width * size.height, 1};
    for (int64_t y = 0; y < size.height; ++y) {
        Out* const row = out.row(y);
        if (reinterpret_cast<uintptr_t>(row) % sizeof(Out) != 0) {
            mapRow<kLanes>(size.width, kernel, row, images.row(y)...);
            continue;
        }
        const int64_t toAligned = elementsToAligned(row);
        int64_t x = toAligned < size.width ? toAligned : size.width;
        if (x > 0) kernel(Part{static_cast<int>(x)}, row, images.row(y)...);
        if constexpr (kFetch == Fetch::FirstAhead) {
            x = mapFetching<kLanes, Streamed>(x, size.width, kernel, row, images.row(y)...);
        }
        for (; x + kLanes <= size.width; x += kLanes) kernel(Streamed{}, row + x, (images.row(y) + x)...);
        if (x < size.width) kernel(Part{static_cast<int>(size.width - x)}, row + x, (images.row(y) + x)...);
    }
    finishStreaming();
}

}  // namespace okpcv
