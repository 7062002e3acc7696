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
    // `window` must hold windowPixels<Mid>(). `outside` holds, per channel, what the row pass makes of a row
    // of border values; it is read for the constant kind only.
    RowFilter(const SeparableTask<S, Channels, D>& task, const RowPass& pass, S* window, const Mid* outside)
        : task_(task), pass_(pass), window_(window), outside_(outside) {
        const int64_t width = task.size.width;
        left_ = task.border.leftInMemory() ? 0 : roundUp(task.row.anchor, kGroup);
        if (left_ > width) left_ = width;
        right_ = task.border.rightInMemory() ? width : width - roundUp(task.row.behind(), kGroup);
        if (right_ < left_) right_ = left_;
    }

    // Columns `from` to `to` - 1 of the intermediate row of source row y, which must be readable.
    void filter(Mid* out, int64_t y, int64_t from, int64_t to) const {
        const S* const row = task_.src.row(y);
        const int64_t begin = left_ < from ? from : left_ < to ? left_ : to;
        const int64_t end = right_ < begin ? begin : right_ < to ? right_ : to;
        // The pass over the window comes late, when what was written into it can be read again at once.
        if (from < begin) fillWindow(row, from, begin);
        if (begin < end) {
            pass_(out + (begin - from) * Channels, row + (begin - task_.row.anchor) * Channels,
                  (end - begin) * Channels);
        }
        if (from < begin) pass_(out, window_, (begin - from) * Channels);
        if (end < to) {
            fillWindow(row, end, to);
            pass_(out + (end - from) * Channels, window_, (to - end) * Channels);
        }
    }

    // The same of a row of border values.
    void fillOutside(Mid* out, int64_t from, int64_t to) const {
        fillPixels<Channels>(out, to - from, outside_);
    }

  private:
    static constexpr int64_t kGroup = Vec<Mid>::lanes;

    // What the taps of columns `from` to `to` - 1 see.
    void fillWindow(const S* row, int64_t from, int64_t to) const {
        const int64_t first = from - task_.row.anchor;
        produceColumns<Channels>(window_, row, task_.size.width, first,
                                 first + (to - from) + task_.row.length - 1, task_.border, task_.borderValue);
    }

    const SeparableTask<S, Channels, D>& task_;
    const RowPass& pass_;
    S* window_;
    const Mid* outside_;
    int64_t left_, right_;
};

}  // namespace okpcv
