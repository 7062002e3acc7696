// The separable engine: runs a row pass and a column pass over a region, with any border.
//
//     source row --row pass--> one row of the ring --column pass over the ring's rows--> destination row
//
// A family brings the two passes (see row_pass.h and column_pass.h), which know nothing of borders, and
// memory laid out by layOutSeparable(); the engine brings the rest. Columns beyond the region are the
// business of RowFilter (see separable_task.h).
//
// - Rows. Each source row is row-filtered once, when the first output row needs it, into the ring slot of its
//   number modulo the number of slots. The column pass gets an array of pointers to the rows its taps see:
//   replicated and mirrored rows are the slots of the rows they repeat, rows of a constant border are filled
//   with what the row pass makes of border values, and rows in memory are filtered like the region's.
// - Batches. The column pass makes several output rows per call, place by place, so that the few cache lines
//   of intermediate rows that meet at a place are fetched once for all of them.
// - Strips. A region too wide for the ring is filtered in vertical strips. They share no work and change no
//   result. When the destination is the source, the strip must be as wide as the region: whole rows have been
//   read by the time they are overwritten.
//
// The column anchor must be the middle one (Reach::centred): with others, a mirrored row could have left the
// ring.
#pragma once

#include <cstdint>

#include "core/area.h"
#include "core/border.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "filter/separable_task.h"

namespace okpcv {

// The dimensions of a call's ring.
struct RingShape {
    int64_t strip;  // pixels of a strip
    int64_t batch;  // output rows per call of the column pass
    int64_t pitch;  // elements from one row to the next

    constexpr int64_t rows(Reach column) const { return column.length - 1 + batch; }
};

// The shapes for a region of a width: the widest within a limit of memory. The pitch is an odd multiple of
// two cache lines, so that the places of consecutive rows fall on different sets of a cache.
template <int Channels, class Mid>
class RingShapes {
  public:
    constexpr RingShapes(Reach column, int64_t width, int64_t batch)
        : column_(column), width_(width), batch_(batch) {}

    // About as many output rows as the kernel has taps: then no row is fetched much more than once per output
    // row, and the ring is not much taller than it must be.
    static constexpr int64_t batchFor(Reach column) {
        constexpr int64_t tallest = 16;
        return column.length < tallest ? column.length : tallest;
    }

    // For families that are free to ask for memory: the ring leaves room in the second-level cache. Strips
    // that cut rows in pieces cost more than a ring that takes half of that cache.
    constexpr RingShape preferred() const {
        constexpr int64_t ringBytes = 512 * 1024;
        const int64_t pitch = affordablePitch(ringBytes / int64_t{sizeof(Mid)}, 0);
        return evenStrips(pitch > kNarrowest ? pitch : kNarrowest);
    }

    // The ring's rows and `extraRows` more take no more than `elements`. Without room for strips worth their
    // trouble, whole rows.
    constexpr RingShape within(int64_t elements, int64_t extraRows) const {
        const int64_t pitch = affordablePitch(elements, extraRows);
        return pitch >= kNarrowest || pitch >= width_ * Channels ? evenStrips(pitch) : wholeRows();
    }

    // Whole rows of the region in batches of one: the shape that works in place, and that takes the least
    // memory, column length rows of the region.
    constexpr RingShape wholeRows() const { return {width_, 1, width_ * Channels}; }

  private:
    static constexpr int64_t kUnit = 2 * kCacheLineBytes / int64_t{sizeof(Mid)};
    static constexpr int64_t kNarrowest = 3 * kUnit;

    constexpr int64_t affordablePitch(int64_t elements, int64_t extraRows) const {
        const int64_t units = elements / (column_.length - 1 + batch_ + extraRows) / kUnit;
        return (units % 2 != 0 ? units : units - 1) * kUnit;
    }
    // As many strips as it takes with this pitch, of about the same width.
    constexpr RingShape evenStrips(int64_t pitch) const {
        const int64_t widest = pitch / Channels;
        if (widest >= width_) {
            const int64_t units = (width_ * Channels + kUnit - 1) / kUnit;
            return {width_, batch_, (units | 1) * kUnit};
        }
        const int64_t strips = (width_ + widest - 1) / widest;
        const int64_t even = roundUp((width_ + strips - 1) / strips, kUnit);
        return {even < widest ? even : widest, batch_, pitch};
    }

    Reach column_;
    int64_t width_, batch_;
};

// The working memory of one call.
template <class S, class Mid>
struct SeparableBuffer {
    RingShape shape;
    const Mid** rows;  // what the taps of the current output rows see
    Windows<S> windows;
    Mid* ring;
};

template <int Channels, class S, class Mid>
SeparableBuffer<S, Mid> layOutSeparable(Area& area, Reach row, Reach column, RingShape shape) {
    SeparableBuffer<S, Mid> buffer;
    buffer.shape = shape;
    buffer.rows = area.take<const Mid*>(shape.rows(column));
    buffer.windows.count = shape.batch < kRowsTogether ? shape.batch : kRowsTogether;
    buffer.windows.first =
        area.take<S>(buffer.windows.count * windowPixels<Mid>(row) * Channels, kVectorBytes);
    buffer.ring = area.take<Mid>(shape.rows(column) * shape.pitch, kCacheLineBytes);
    return buffer;
}

namespace detail {

// One strip, columns `from` to `to` - 1.
template <class S, int Channels, class D, class Mid, class RowPass, class ColumnPass>
void filterStrip(const SeparableTask<S, Channels, D>& task, const SeparableBuffer<S, Mid>& buffer,
                 const RowFilter<S, Channels, D, Mid, RowPass>& rowFilter, const ColumnPass& columnPass,
                 int64_t from, int64_t to) {
    const Reach& column = task.column;
    const int64_t height = task.size.height;
    const int64_t slots = buffer.shape.rows(column);
    const auto slot = [&](int64_t y) { return buffer.ring + (y + slots) % slots * buffer.shape.pitch; };

    const int64_t end = task.border.bottomInMemory() ? height + column.behind() : height;
    int64_t next = task.border.topInMemory() ? -column.anchor : 0;
    const auto filterTo = [&](int64_t last) {
        while (next <= last && next < end) {
            Mid* out[kRowsTogether];
            int64_t y[kRowsTogether];
            int64_t count = 0;
            for (; count < kRowsTogether && next <= last && next < end; ++count, ++next) {
                out[count] = slot(next);
                y[count] = next;
            }
            rowFilter.filter(out, y, count, from, to);
        }
    };
    // The row that a tap sees at row y, inside the region or outside.
    const auto intermediate = [&](int64_t y) -> const Mid* {
        const int64_t source = task.border.row(y, height);
        if (source != Border::kValue) return slot(source);
        rowFilter.fillOutside(slot(y), from, to);
        return slot(y);
    };

    // The rows that the first output sees are filtered before any is asked for: a mirrored row above the
    // region repeats one of them.
    filterTo(column.behind());
    const Mid** const rows = buffer.rows;
    const int64_t shared = column.length - 1;  // rows that an output and the next one both see
    for (int64_t j = 0; j < shared; ++j) rows[j] = intermediate(j - column.anchor);
    for (int64_t y = 0; y < height;) {
        const int64_t left = height - y;
        const int64_t count = left < buffer.shape.batch ? left : buffer.shape.batch;
        const int64_t first = y + column.behind();
        filterTo(first + count - 1);
        for (int64_t j = 0; j < count; ++j) rows[shared + j] = intermediate(first + j);
        columnPass(task.dst.row(y) + from * Channels, task.dst.step, count, rows, (to - from) * Channels);
        for (int64_t j = 0; j < shared; ++j) rows[j] = rows[j + count];
        y += count;
    }
}

}  // namespace detail

// Filters the region. For `outside` see RowFilter.
template <class S, int Channels, class D, class Mid, class RowPass, class ColumnPass>
void filterSeparable(const SeparableTask<S, Channels, D>& task, const SeparableBuffer<S, Mid>& buffer,
                     const Mid* outside, const RowPass& rowPass, const ColumnPass& columnPass) {
    const RowFilter<S, Channels, D, Mid, RowPass> rowFilter(task, rowPass, buffer.windows, outside);
    for (int64_t x = 0; x < task.size.width; x += buffer.shape.strip) {
        const int64_t left = task.size.width - x;
        const int64_t width = left < buffer.shape.strip ? left : buffer.shape.strip;
        detail::filterStrip(task, buffer, rowFilter, columnPass, x, x + width);
    }
}

}  // namespace okpcv
