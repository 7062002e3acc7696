// The stream engine: runs a row pass and a column stream over a region, with any border. It does the work of
// the separable engine for short column kernels, without a ring:
//
//     source rows --row pass--> a tile of a few intermediate rows --column stream--> destination rows
//
// Rows come in batches, and a batch is filtered tile by tile from left to right, so that source and
// destination are read and written in order and a tile never leaves the first-level cache. What the tile's
// rows contribute to output rows of the next batch is kept by the column stream. Rows beyond the region are
// made from the source rows that they repeat; their intermediate values are the same.
//
// The source must not be the destination: rows are overwritten before their neighbours are read.
#pragma once

#include <cstdint>

#include "core/area.h"
#include "core/border.h"
#include "core/simd.h"
#include "filter/column_stream.h"
#include "filter/separable_task.h"

namespace okpcv {

// Elements of a tile's row; the tile is kept on the stack. Longer ones crowd the rows of the destination out of
// the first-level cache.
inline constexpr int64_t kTileElements = 288;

template <int Channels>
constexpr int64_t tilePixels() {
    return kTileElements / Channels / Vec<float>::lanes * Vec<float>::lanes;
}

// Elements that the column stream keeps for a region of this width.
template <int Channels>
constexpr int64_t streamStateElements(Reach column, int64_t width) {
    const int64_t tiles = (width + tilePixels<Channels>() - 1) / tilePixels<Channels>();
    return tiles * ColumnStream<float>::stateElements(column.length, 0) +
           (column.length - 1) * width * Channels;
}

// Filters the region. `window` must hold windowPixels<float>() pixels, `state` streamStateElements().
template <class S, int Channels, class D, class RowPass>
void filterStreamed(const SeparableTask<S, Channels, D>& task, S* window, float* state, const float* outside,
                    const RowPass& rowPass, const ColumnStream<D>& columnStream) {
    const RowFilter<S, Channels, D, float, RowPass> rowFilter(task, rowPass, window, outside);
    alignas(kCacheLineBytes) float tile[kStreamBatch][kTileElements];
    const float* rows[kStreamBatch];
    for (int r = 0; r < kStreamBatch; ++r) rows[r] = tile[r];

    const int64_t stateElements = streamStateElements<Channels>(task.column, task.size.width);
    for (int64_t i = 0; i < stateElements; ++i) state[i] = 0;

    // Output row y is complete when row y + behind has come in; before row 0 nothing is.
    const int64_t behind = task.column.behind();
    for (int64_t y = -(task.column.length - 1); y < task.size.height;) {
        const int64_t left = (y < 0 ? 0 : task.size.height) - y;
        const int64_t count = left < kStreamBatch ? left : kStreamBatch;
        float* places = state;
        for (int64_t x = 0; x < task.size.width;) {
            const int64_t end =
                task.size.width - x < tilePixels<Channels>() ? task.size.width : x + tilePixels<Channels>();
            for (int64_t r = 0; r < count; ++r) {
                const int64_t source = task.border.row(y + behind + r, task.size.height);
                if (source == Border::kValue) {
                    rowFilter.fillOutside(tile[r], x, end);
                } else {
                    rowFilter.filter(tile[r], source, x, end);
                }
            }
            const int64_t elements = (end - x) * Channels;
            D* const out = y < 0 ? nullptr : task.dst.row(y) + x * Channels;
            columnStream(out, task.dst.step, count, rows, elements, places);
            places += ColumnStream<float>::stateElements(task.column.length, elements);
            x = end;
        }
        y += count;
    }
}

}  // namespace okpcv
