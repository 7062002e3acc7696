// The separable engine: runs a row pass and a column pass over a region, with any border.
//
//     source row --row pass--> one row of the ring --column pass over the ring's rows--> destination row
//
// A family brings the two passes (see row_pass.h and column_pass.h), which know nothing of borders, and
// memory laid out by layOutSeparable(); the engine brings the rest:
//
// - Columns. The few outputs near a side whose kernel straddles it are computed from a window: a short row
//   built by produceColumns() with the border's pixels in place. All others are computed straight from the
//   source row. A side in memory has no such outputs.
// - Rows. Each source row is row-filtered once, when the first output row needs it, into the ring slot of its
//   number modulo the kernel's height. The column pass gets an array of pointers to the rows its taps see:
//   replicated and mirrored rows are the slots of the rows they repeat, rows of a constant border are filled
//   with what the row pass makes of border values, and rows in memory are filtered like the region's.
// - Strips. The region is filtered in vertical strips narrow enough for the ring to stay in the first-level
//   cache (see cachedStrip()). Strips share no work and change no result. When the destination is the source,
//   the strip must be as wide as the region: whole rows have been read by the time they are overwritten.
//
// The column anchor must be the middle one (Reach::centred): with others, a mirrored row could have left the
// ring.
#pragma once

#include <cstdint>

#include "core/area.h"
#include "core/border.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"

namespace okpcv {

// A kernel's place around its pixel: `anchor` taps before it, length - 1 - anchor behind it.
struct Reach {
    int64_t length;
    int64_t anchor;

    // The middle one of an odd number of taps; of an even number the one before the middle.
    static constexpr Reach centred(int64_t length) { return {length, (length - 1) / 2}; }
    constexpr int64_t behind() const { return length - 1 - anchor; }
};

// What to filter.
template <class S, int Channels, class D>
struct SeparableTask {
    Image<const S, Channels> src;
    Image<D, Channels> dst;
    Size size;
    Reach row;
    Reach column;
    Border border;
    const S* borderValue;  // an element per channel; read for the constant kind only

    // Whether strips would read pixels that another strip has overwritten.
    bool inPlace() const { return static_cast<const void*>(src.data) == dst.data; }
};

// The outputs of a row that are computed from windows: those before `left` and those from `right` on. The
// left group is a multiple of whole vectors wide, so that the outputs behind it begin at an aligned address
// of the ring.
template <class Mid>
struct RowEdges {
    int64_t left, right;

    RowEdges(Reach kernel, Border border, int64_t width) {
        left = border.leftInMemory() ? 0 : roundUp(kernel.anchor, Vec<Mid>::lanes);
        if (left > width) left = width;
        right = border.rightInMemory() ? width : width - kernel.behind();
        if (right < left) right = left;
    }
    // What the longest window holds.
    static constexpr int64_t windowPixels(Reach kernel) {
        const int64_t left = roundUp(kernel.anchor, Vec<Mid>::lanes);
        return kernel.length - 1 + (left > kernel.behind() ? left : kernel.behind());
    }
};

// The working memory of one call, for strips of up to `strip` pixels.
template <class S, class Mid>
struct SeparableBuffer {
    const Mid** rows;  // what the taps of the current output row see, one row for each
    S* window;
    Mid* ring;  // a row of strip pixels for each tap of the column kernel
    int64_t strip;
};

template <int Channels, class S, class Mid>
SeparableBuffer<S, Mid> layOutSeparable(Area& area, Reach row, Reach column, int64_t strip) {
    SeparableBuffer<S, Mid> buffer;
    buffer.rows = area.take<const Mid*>(column.length);
    buffer.window = area.take<S>(RowEdges<Mid>::windowPixels(row) * Channels, kVectorBytes);
    buffer.ring = area.take<Mid>(strip * Channels * column.length, kCacheLineBytes);
    buffer.strip = strip;
    return buffer;
}

// The strip width for which the ring stays in the first-level cache beside the rows it is made from and
// feeds; strips of about equal width, a multiple of whole blocks of vectors. Very tall kernels get strips of
// a reasonable width and a ring in the second-level cache.
template <int Channels, class Mid>
constexpr int64_t cachedStrip(Reach column, int64_t width) {
    constexpr int64_t ringBytes = 24 * 1024;
    constexpr int64_t leastElements = 128;
    constexpr int64_t unit = 32;
    const int64_t elements = ringBytes / int64_t{sizeof(Mid)} / column.length;
    const int64_t pixels = (elements > leastElements ? elements : leastElements) / Channels;
    const int64_t strips = (width + pixels - 1) / pixels;
    return roundUp((width + strips - 1) / strips, unit);
}

namespace detail {

// One strip, columns `from` to `to` - 1.
template <class S, int Channels, class D, class Mid, class RowPass, class ColumnPass>
class SeparableStrip {
  public:
    SeparableStrip(const SeparableTask<S, Channels, D>& task, const SeparableBuffer<S, Mid>& buffer,
                   const Mid* outside, const RowPass& rowPass, const ColumnPass& columnPass, int64_t from,
                   int64_t to)
        : task_(task),
          buffer_(buffer),
          outside_(outside),
          rowPass_(rowPass),
          columnPass_(columnPass),
          edges_(task.row, task.border, task.size.width),
          from_(from),
          to_(to) {}

    void filter() {
        const Reach& column = task_.column;
        const int64_t height = task_.size.height;
        const int64_t end = task_.border.bottomInMemory() ? height + column.behind() : height;
        // Rows up to the first output's last tap are filtered first: a mirrored row above the region repeats
        // one of them.
        int64_t next = task_.border.topInMemory() ? -column.anchor : 0;
        const auto filterTo = [&](int64_t last) {
            for (; next <= last && next < end; ++next) filterRow(next);
        };
        filterTo(column.behind());
        for (int64_t j = 0; j < column.length - 1; ++j) buffer_.rows[j + 1] = intermediate(j - column.anchor);
        for (int64_t y = 0; y < height; ++y) {
            const int64_t last = y + column.behind();
            filterTo(last);
            for (int64_t j = 0; j + 1 < column.length; ++j) buffer_.rows[j] = buffer_.rows[j + 1];
            buffer_.rows[column.length - 1] = intermediate(last);
            columnPass_(task_.dst.row(y) + from_ * Channels, buffer_.rows, (to_ - from_) * Channels);
        }
    }

  private:
    Mid* slot(int64_t y) const {
        const int64_t length = task_.column.length;
        return buffer_.ring + (y + length) % length * buffer_.strip * Channels;
    }

    // The intermediate row that a tap sees at row y, inside the region or outside.
    const Mid* intermediate(int64_t y) const {
        const int64_t source = task_.border.row(y, task_.size.height);
        if (source != Border::kValue) return slot(source);
        Mid* const row = slot(y);
        for (int64_t i = 0; i < (to_ - from_) * Channels; ++i) row[i] = outside_[i % Channels];
        return row;
    }

    void filterRow(int64_t y) const {
        const S* const row = task_.src.row(y);
        Mid* const out = slot(y);
        int64_t x = from_;
        const auto throughWindow = [&](int64_t end) {
            if (end > to_) end = to_;
            if (x >= end) return;
            const int64_t first = x - task_.row.anchor;
            produceColumns<Channels>(buffer_.window, row, task_.size.width, first,
                                     first + (end - x) + task_.row.length - 1, task_.border,
                                     task_.borderValue);
            rowPass_(out + (x - from_) * Channels, buffer_.window, (end - x) * Channels);
            x = end;
        };
        throughWindow(edges_.left);
        const int64_t end = edges_.right < to_ ? edges_.right : to_;
        if (x < end) {
            rowPass_(out + (x - from_) * Channels, row + (x - task_.row.anchor) * Channels,
                     (end - x) * Channels);
            x = end;
        }
        throughWindow(to_);
    }

    const SeparableTask<S, Channels, D>& task_;
    const SeparableBuffer<S, Mid>& buffer_;
    const Mid* outside_;
    const RowPass& rowPass_;
    const ColumnPass& columnPass_;
    RowEdges<Mid> edges_;
    int64_t from_, to_;
};

}  // namespace detail

// Filters the region. `outside` holds, per channel, what the row pass makes of a row of border values; it is
// read for the constant kind only.
template <class S, int Channels, class D, class Mid, class RowPass, class ColumnPass>
void filterSeparable(const SeparableTask<S, Channels, D>& task, const SeparableBuffer<S, Mid>& buffer,
                     const Mid* outside, const RowPass& rowPass, const ColumnPass& columnPass) {
    for (int64_t x = 0; x < task.size.width; x += buffer.strip) {
        const int64_t end = task.size.width - x < buffer.strip ? task.size.width : x + buffer.strip;
        detail::SeparableStrip<S, Channels, D, Mid, RowPass, ColumnPass>(task, buffer, outside, rowPass,
                                                                         columnPass, x, end)
            .filter();
    }
}

}  // namespace okpcv
