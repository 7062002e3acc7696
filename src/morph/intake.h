// How rows of the source come into an engine: as they are, or, for upright rectangles, as the maxima of each
// column's rows under the mask. Rows above and below the region come from the border; the columns beside it
// are the engine's own matter.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/border.h"
#include "core/image.h"
#include "core/simd.h"
#include "morph/combine.h"

namespace okpcv::morph {

template <class P, class Watch>
class RowIntake {
  public:
    using Pixel = typename P::Pixel;
    using Cell = typename P::Cell;

    // The height above which combineTall is faster than combineColumns.
    static constexpr int32_t kTallest = 10;

    // `src` begins at the first readable column and has size.width elements in each of size.height rows. A
    // row that is nowhere consists of the `period` elements at `value`, repeated. `copies` has room for as
    // many rows as there are under the masks of the rows of one call.
    RowIntake(Image<const Pixel> src, Size size, Border border, const Pixel* value, int period,
              Image<Cell> rows, Image<Pixel> copies, Watch& watch)
        : src_(src),
          size_(size),
          border_(border),
          value_(value),
          period_(period),
          rows_(rows),
          copies_(copies),
          watch_(watch) {}

    // The source's rows from y on, into rows `first` to `end` - 1.
    void takeRows(int64_t y, int64_t first, int64_t end) {
        for (int64_t i = first; i < end;) {
            const int64_t source = border_.row(y, size_.height);
            // Rows that follow each other in memory come in together.
            int64_t count = 1;
            if (source == y) {
                const int64_t inRegion = y >= 0 && y < size_.height ? size_.height - y : 1;
                count = std::min(inRegion, end - i);
            }
            if (source == Border::kValue) fillRow(copies_.row(0));
            const Image<const Pixel> rows{source == Border::kValue ? copies_.data : src_.row(source),
                                          src_.step};
            if constexpr (P::kCellsArePixels) {
                for (int64_t r = 0; r < count; ++r)
                    std::memcpy(rows_.row(i + r), rows.row(r),
                                static_cast<size_t>(size_.width) * sizeof(Pixel));
            } else {
                combineColumns<P>(rows, Image<Cell>{rows_.row(i), rows_.step}, size_.width, count, 1, watch_);
            }
            i += count;
            y += count;
        }
    }

    // The maxima of `height` rows each, beginning with rows y, y + 1, ... of the source, into the first
    // `count` rows. Calls for one engine go down the image.
    void takeMaxima(int64_t y, int64_t count, int32_t height) {
        // Results that reach above readable memory, then those inside it, then the others.
        const int64_t readableTop = border_.topInMemory() ? y : 0;
        const int64_t readableEnd = border_.bottomInMemory() ? y + count + height - 1 : size_.height;
        const int64_t above = std::clamp<int64_t>(readableTop - y, 0, count);
        const int64_t inside = std::clamp<int64_t>(readableEnd - height + 1 - y, above, count);

        takeMaximaOfCopies(y, 0, above, height);
        if (inside > above) {
            const Image<const Pixel> src{src_.row(y + above), src_.step};
            if (!watchedFirst_) watchRows(src, size_.width, height - 1, watch_);
            watchedFirst_ = true;
            verticalMaxima(src, above, inside - above, height);
        }
        takeMaximaOfCopies(y + inside, inside, count - inside, height);
    }

  private:
    void takeMaximaOfCopies(int64_t y, int64_t first, int64_t count, int32_t height) {
        if (count == 0) return;
        const int64_t copied = count + height - 1;
        for (int64_t i = 0; i < copied; ++i) {
            const int64_t source = border_.row(y + i, size_.height);
            if (source == Border::kValue) {
                fillRow(copies_.row(i));
            } else {
                std::memcpy(copies_.row(i), src_.row(source),
                            static_cast<size_t>(size_.width) * sizeof(Pixel));
            }
        }
        watchRows(Image<const Pixel>(copies_), size_.width, copied, watch_);
        verticalMaxima(copies_, first, count, height);
    }

    void verticalMaxima(Image<const Pixel> src, int64_t first, int64_t count, int32_t height) {
        if (height <= kTallest) {
            return combineColumns<P>(src, Image<Cell>{rows_.row(first), rows_.step}, size_.width, count,
                                     height, watch_);
        }
        for (int64_t i = 0; i < count; i += height) {
            combineTall<P>(Image<const Pixel>{src.row(i), src.step},
                           Image<Cell>{rows_.row(first + i), rows_.step}, size_.width,
                           std::min<int64_t>(height, count - i), height, watch_);
        }
    }

    void fillRow(Pixel* row) const {
        for (int64_t x = 0; x < size_.width; x += period_) {
            for (int c = 0; c < period_; ++c) *row++ = value_[c];
        }
    }

    Image<const Pixel> src_;
    Size size_;
    Border border_;
    const Pixel* value_;
    int period_;
    Image<Cell> rows_;
    Image<Pixel> copies_;
    Watch& watch_;
    bool watchedFirst_ = false;
};

}  // namespace okpcv::morph
