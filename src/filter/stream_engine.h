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

// Elements of a tile's row; the tile is kept on the stack. Short rows let float images come from memory and
// go to it evenly, at the price of more calls; of smaller elements calls are what counts. Whole blocks of
// the row pass's vectors, for any number of channels.
template <class S>
inline constexpr int64_t kTileElements = kIsFloat<S> ? 96 : 288;

template <class S, int Channels>
constexpr int64_t tilePixels() {
    return kTileElements<S> / Channels / Vec<float>::lanes * Vec<float>::lanes;
}

// Elements that the column stream keeps for a region of this width.
template <int Channels>
constexpr int64_t streamStateElements(Reach column, int64_t width) {
    return ColumnStream<float>::stateElements(column.length, width * Channels);
}

// Filters the region. `state` must hold streamStateElements().
template <class S, int Channels, class D, class RowPass>
void filterStreamed(const SeparableTask<S, Channels, D>& task, Windows<S> windows, float* state,
                    const float* outside, const RowPass& rowPass, const ColumnStream<D>& columnStream) {
    const RowFilter<S, Channels, D, float, RowPass> rowFilter(task, rowPass, windows, outside);
    alignas(kCacheLineBytes) float tile[kStreamBatch][kTileElements<S>];
    const float* rows[kStreamBatch];
    for (int r = 0; r < kStreamBatch; ++r) rows[r] = tile[r];

    const int64_t stateElements = streamStateElements<Channels>(task.column, task.size.width);
    for (int64_t i = 0; i < stateElements; ++i) state[i] = 0;

    // Output row y is complete when row y + behind has come in; before row 0 nothing is.
    const int64_t behind = task.column.behind();
    for (int64_t y = -(task.column.length - 1); y < task.size.height;) {
        const int64_t left = (y < 0 ? 0 : task.size.height) - y;
        const int64_t count = left < kStreamBatch ? left : kStreamBatch;
        // The rows to filter, and those that hold border values.
        float* filtered[kStreamBatch];
        int64_t sources[kStreamBatch];
        int64_t filteredCount = 0;
        float* beyond[kStreamBatch];
        int64_t beyondCount = 0;
        for (int64_t r = 0; r < count; ++r) {
            const int64_t source = task.border.row(y + behind + r, task.size.height);
            if (source == Border::kValue) {
                beyond[beyondCount++] = tile[r];
            } else {
                filtered[filteredCount] = tile[r];
                sources[filteredCount++] = source;
            }
        }
        float* places = state;
        for (int64_t x = 0; x < task.size.width;) {
            constexpr int64_t widest = tilePixels<S, Channels>();
            const int64_t end = task.size.width - x < widest ? task.size.width : x + widest;
            rowFilter.filter(filtered, sources, filteredCount, x, end);
            for (int64_t r = 0; r < beyondCount; ++r) rowFilter.fillOutside(beyond[r], x, end);
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
