// What a separable filter is asked to do, and the part of it that both engines share: intermediate rows with
// their borders.
//
// The few outputs of a row near a side whose kernel straddles it are computed from a window: a short row
// built by produceColumns() with the border's pixels in place. All others are computed straight from the
// source row. A side in memory has no such outputs.
#pragma once

#include <cstdint>

#include "core/border.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "okpcv/types.h"

namespace okpcv {

// A kernel's place around its pixel: `anchor` taps before it, length - 1 - anchor behind it.
struct Reach {
    int64_t length;
    int64_t anchor;

    // The middle one of an odd number of taps; of an even number the one before the middle.
    static constexpr Reach centred(int64_t length) { return {length, (length - 1) / 2}; }
    constexpr int64_t behind() const { return length - 1 - anchor; }
};

// The types of images for which there are separable filters.
constexpr bool isImageType(DataTypeCode type) {
    return type == DataType8u || type == DataType16u || type == DataType16s || type == DataType32f;
}

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

// Rows that a row pass filters in one call.
inline constexpr int64_t kRowsTogether = 8;

// Memory for the windows of the rows that are filtered together: `count` of windowPixels() each, at most
// kRowsTogether.
template <class S>
struct Windows {
    S* first;
    int64_t count;
};

// What a window holds at most: the taps around the outputs of one side, which come in whole vectors.
template <class Mid>
constexpr int64_t windowPixels(Reach kernel) {
    const int64_t reach = kernel.anchor > kernel.behind() ? kernel.anchor : kernel.behind();
    return kernel.length - 1 + roundUp(reach, Vec<Mid>::lanes);
}

// Writes `count` pixels, all of one value.
template <int Channels, class T>
void fillPixels(T* out, int64_t count, const T* value) {
    for (int64_t x = 0; x < count; ++x) {
        for (int c = 0; c < Channels; ++c) *out++ = value[c];
    }
}

// Makes intermediate rows. RowPass is a row pass (see row_pass.h).
template <class S, int Channels, class D, class Mid, class RowPass>
class RowFilter {
  public:
    // `outside` holds, per channel, what the row pass makes of a row of border values; it is read for the
    // constant kind only.
    RowFilter(const SeparableTask<S, Channels, D>& task, const RowPass& pass, Windows<S> windows,
              const Mid* outside)
        : task_(task), pass_(pass), windows_(windows), outside_(outside) {
        const int64_t width = task.size.width;
        left_ = task.border.leftInMemory() ? 0 : roundUp(task.row.anchor, kGroup);
        if (left_ > width) left_ = width;
        right_ = task.border.rightInMemory() ? width : width - roundUp(task.row.behind(), kGroup);
        if (right_ < left_) right_ = left_;
    }

    // Columns `from` to `to` - 1 of `count` intermediate rows: out[i] is made of source row y[i], which
    // must be readable.
    __attribute__((noinline)) void filter(Mid* const* out, const int64_t* y, int64_t count, int64_t from,
                                          int64_t to) const {
        const int64_t begin = left_ < from ? from : left_ < to ? left_ : to;
        const int64_t end = right_ < begin ? begin : right_ < to ? right_ : to;
        for (int64_t i = 0; i < count; i += windows_.count) {
            const int64_t left = count - i;
            const Rows rows{out + i, y + i, left < windows_.count ? left : windows_.count, from};
            if (from < begin) filterSide(rows, from, begin);
            if (begin < end) filterInside(rows, begin, end);
            if (end < to) filterSide(rows, end, to);
        }
    }

    // The same of one row of border values.
    void fillOutside(Mid* out, int64_t from, int64_t to) const {
        fillPixels<Channels>(out, to - from, outside_);
    }

  private:
    static constexpr int64_t kGroup = Vec<Mid>::lanes;

    // What filter() is called for, of as many rows as there are windows. Column `from` comes first in them.
    struct Rows {
        Mid* const* out;
        const int64_t* y;
        int64_t count;
        int64_t from;
    };

    // Columns `from` to `to` - 1, whose taps are all inside the region or in memory.
    void filterInside(const Rows& rows, int64_t from, int64_t to) const {
        const S* in[kRowsTogether];
        for (int64_t i = 0; i < rows.count; ++i) {
            in[i] = task_.src.row(rows.y[i]) + (from - task_.row.anchor) * Channels;
        }
        filterFrom(in, rows, from, to);
    }
    // Columns `from` to `to` - 1, some of whose taps are not.
    void filterSide(const Rows& rows, int64_t from, int64_t to) const {
        const S* in[kRowsTogether];
        for (int64_t i = 0; i < rows.count; ++i) in[i] = filledWindow(i, rows.y[i], from, to);
        filterFrom(in, rows, from, to);
    }
    // Window i with what the taps of these columns see. Not inline: compilers write the loop out.
    __attribute__((noinline)) const S* filledWindow(int64_t i, int64_t y, int64_t from, int64_t to) const {
        S* const window = windows_.first + i * windowPixels<Mid>(task_.row) * Channels;
        produceColumns<Channels>(window, task_.src.row(y), task_.size.width, from - task_.row.anchor,
                                 to + task_.row.behind(), task_.border, task_.borderValue);
        return window;
    }
    void filterFrom(const S* const* in, const Rows& rows, int64_t from, int64_t to) const {
        Mid* out[kRowsTogether];
        for (int64_t i = 0; i < rows.count; ++i) out[i] = rows.out[i] + (from - rows.from) * Channels;
        pass_(out, in, rows.count, (to - from) * Channels);
    }

    const SeparableTask<S, Channels, D>& task_;
    const RowPass& pass_;
    Windows<S> windows_;
    const Mid* outside_;
    int64_t left_, right_;
};

}  // namespace okpcv
