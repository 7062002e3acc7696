// The mask engine: small square masks, whose outputs are computed straight from the source's rows. Between
// the rows of a batch all that outputs share stays in registers, so no intermediate row is stored.
//
// A family brings a pass, a function object
//
//     void operator()(D* out, int64_t step, int64_t outRows, const S* const* rows, int64_t count) const
//
// that computes `count` elements of each of `outRows` rows, `step` bytes apart, from `length` rows and
// columns each: element x of output row r sees rows[r + j][x + i] for i and j from 0 to length - 1. The
// engine brings the borders.
//
// - Rows. The pass gets an array of pointers to the rows that a batch of outputs sees. Replicated and
//   mirrored rows are the source's own; rows of a constant border are one row of border values.
// - Columns. The vector of outputs next to a side is computed from windows: the few pixels around it, copied
//   row by row with the border's in place. A side in memory needs none.
// - Strips. A large region is filtered in vertical strips, so that rows are still in the cache when the next
//   batch sees them again.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/area.h"
#include "core/border.h"
#include "core/cache.h"
#include "core/image.h"
#include "core/simd.h"

namespace okpcv {

// Output rows per call of a pass: the more, the less often a row is looked at again for the next batch; but
// of wide elements, more rows than these are more streams than a core prefetches.
template <class S>
inline constexpr int64_t kMaskBatch = sizeof(S) == 1 ? 16 : 8;

// What to filter.
template <class S, class D>
struct MaskTask {
    Image<const S> src;
    Image<D> dst;
    Size size;
    Border border;
    S borderValue;
};

// The working memory of one call, for a mask of a length and outputs that are computed in groups of `lanes`.
template <class S, int kLength, int kLanes>
struct MaskBuffer {
    static constexpr int64_t reach = kLength / 2;
    static constexpr int64_t rowsSeen = kMaskBatch<S> + kLength - 1;
    // Pixels of the region that a window copies, and pixels of a window. A region with fewer columns is one
    // window.
    static constexpr int64_t copied = 2 * kLanes;
    static constexpr int64_t windowPixels = copied + 2 * reach;
    static_assert(copied >= kLanes + reach);

    const S** rows;     // of the batch
    const S** windows;  // of the batch, at one side
    S* window;          // rowsSeen of them
    S* outside;         // a row of border values and as many more as the mask reaches beyond it

    static MaskBuffer layOut(Area& area, int64_t width) {
        MaskBuffer buffer;
        buffer.rows = area.take<const S*>(rowsSeen);
        buffer.windows = area.take<const S*>(rowsSeen);
        buffer.window = area.take<S>(rowsSeen * windowPixels);
        buffer.outside = area.take<S>(width + 2 * reach);
        return buffer;
    }
};

// Filters a region.
template <class S, class D, int kLength, int kLanes, class Pass>
class MaskFilter {
  public:
    using Buffer = MaskBuffer<S, kLength, kLanes>;

    MaskFilter(const MaskTask<S, D>& task, const Buffer& buffer, const Pass& pass)
        : task_(task), buffer_(buffer), pass_(pass) {
        const int64_t width = task.size.width;
        for (int64_t i = 0; i < reach; ++i) {
            before_[i] = task.border.column(i - reach, width);
            behind_[i] = task.border.column(width + i, width);
        }
        if (task.border.kind() == BorderConstant) {
            for (int64_t x = 0; x < width + 2 * reach; ++x) buffer.outside[x] = task.borderValue;
        }
    }

    void run() const {
        const int64_t width = task_.size.width;
        const bool whole = filtersWhole(task_.size);
        const int64_t strips = whole ? 1 : (width + kStripPixels - 1) / kStripPixels;
        for (int64_t i = 0; i < strips; ++i) filterStrip(width * i / strips, width * (i + 1) / strips);
    }

  private:
    static constexpr int64_t reach = Buffer::reach;
    static constexpr int64_t kStripPixels = 2048;

    // Columns `from` to `to` - 1.
    void filterStrip(int64_t from, int64_t to) const {
        const int64_t width = task_.size.width;
        const int64_t height = task_.size.height;
        const bool narrow = width < Buffer::copied;
        const bool left = from == 0 && !task_.border.leftInMemory();
        const bool right = to == width && !task_.border.rightInMemory();
        const int64_t first = left ? kLanes : from;
        const int64_t end = right ? width - kLanes : to;

        for (int64_t y = 0; y < height; y += kMaskBatch<S>) {
            const int64_t count = height - y < kMaskBatch<S> ? height - y : kMaskBatch<S>;
            const auto filter = [&](int64_t x, int64_t behind, const S* const* rows) {
                pass_(task_.dst.row(y) + x, task_.dst.step, count, rows, behind - x);
            };
            if (narrow) {
                filter(0, width, makeWindows(y, count, 0, [&](S* window, const S* row) {
                           produceColumns<1>(window, row, width, -reach, width + reach, task_.border,
                                             &task_.borderValue);
                       }));
                continue;
            }
            if (left) {
                filter(0, kLanes, makeWindows(y, count, 0, [&](S* window, const S* row) {
                           putBorder(window, row, before_);
                           copyPixels(window + reach, row);
                       }));
            }
            if (first < end) {
                for (int64_t j = 0; j < count + kLength - 1; ++j) {
                    const int64_t source = task_.border.row(y - reach + j, height);
                    buffer_.rows[j] =
                        source == Border::kValue ? buffer_.outside : task_.src.row(source) + first - reach;
                }
                filter(first, end, buffer_.rows);
            }
            if (right) {
                // The first output's taps begin amid the copied pixels.
                constexpr int64_t seen = Buffer::copied - kLanes - reach;
                filter(width - kLanes, width, makeWindows(y, count, seen, [&](S* window, const S* row) {
                           copyPixels(window, row + width - Buffer::copied);
                           putBorder(window + Buffer::copied, row, behind_);
                       }));
            }
        }
    }

    // The windows of a batch, filled by fill(window, row), from pixel `seen` on.
    template <class Fill>
    const S* const* makeWindows(int64_t y, int64_t count, int64_t seen, const Fill& fill) const {
        for (int64_t j = 0; j < count + kLength - 1; ++j) {
            S* const window = buffer_.window + j * Buffer::windowPixels;
            const int64_t source = task_.border.row(y - reach + j, task_.size.height);
            if (source != Border::kValue) {
                fill(window, task_.src.row(source));
            } else {
                for (int64_t x = 0; x < Buffer::windowPixels; ++x) window[x] = task_.borderValue;
            }
            buffer_.windows[j] = window + seen;
        }
        return buffer_.windows;
    }

    void putBorder(S* out, const S* row, const int64_t (&columns)[reach]) const {
        for (int64_t i = 0; i < reach; ++i) {
            const S* const from = columns[i] == Border::kValue ? &task_.borderValue : row + columns[i];
            std::memcpy(out + i, static_cast<const void*>(from), sizeof(S));
        }
    }
    static void copyPixels(S* out, const S* from) {
        std::memcpy(out, static_cast<const void*>(from), Buffer::copied * sizeof(S));
    }

    const MaskTask<S, D>& task_;
    const Buffer& buffer_;
    const Pass& pass_;
    int64_t before_[reach], behind_[reach];  // where the pixels beyond the sides come from
};

}  // namespace okpcv
