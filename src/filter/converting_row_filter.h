// Intermediate rows of integer sources that a float row pass filters: a stretch of the row is converted
// first, so that the conversion is paid once per element instead of once per tap. What a border adds is
// converted with it, and the pass sees one row without sides.
#pragma once

#include <cstdint>

#include "core/border.h"
#include "core/simd.h"
#include "filter/row_pass.h"
#include "filter/separable_task.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// The row pass and the memory for a stretch.
template <class S, class K, int Channels>
struct ConvertingRowPass {
    FloatRowPass<K, Channels> pass;
    float* scratch;
    int64_t scratchCount;  // elements, at least those that a vector of outputs sees
};

template <class S, int Channels, class D, class K>
class RowFilter<S, Channels, D, float, ConvertingRowPass<S, K, Channels>> {
  public:
    using RowPass = ConvertingRowPass<S, K, Channels>;

    // As of the general RowFilter.
    RowFilter(const SeparableTask<S, Channels, D>& task, const RowPass& pass, Windows<S> windows,
              const float* outside)
        : task_(task), pass_(pass), window_(windows.first), outside_(outside) {}

    __attribute__((noinline)) void filter(float* const* out, const int64_t* y, int64_t count, int64_t from,
                                          int64_t to) const {
        for (int64_t i = 0; i < count; ++i) filterRow(out[i], task_.src.row(y[i]), from, to);
    }

    void fillOutside(float* out, int64_t from, int64_t to) const {
        fillPixels<Channels>(out, to - from, outside_);
    }

  private:
    void filterRow(float* out, const S* row, int64_t from, int64_t to) const {
        const int64_t stretch = pass_.scratchCount / Channels - (task_.row.length - 1);
        for (int64_t x = from; x < to; x += stretch) {
            const int64_t end = to - x < stretch ? to : x + stretch;
            convertRow(row, x - task_.row.anchor, end + task_.row.behind());
            float* const at = out + (x - from) * Channels;
            pass_.pass(&at, &pass_.scratch, 1, (end - x) * Channels);
        }
    }
    // Columns `from` to `to` - 1, of which the border produces those outside the region.
    void convertRow(const S* row, int64_t from, int64_t to) const {
        const int64_t width = task_.size.width;
        const int64_t insideFrom = from >= 0 || task_.border.leftInMemory() ? from : 0;
        const int64_t insideTo = to <= width || task_.border.rightInMemory() ? to : width;
        float* out = pass_.scratch;
        const auto append = [&](const S* in, int64_t pixels) {
            convert(out, in, pixels * Channels);
            out += pixels * Channels;
        };
        const auto appendOutside = [&](int64_t x, int64_t end) {
            if (x == end) return;
            produceColumns<Channels>(window_, row, width, x, end, task_.border, task_.borderValue);
            append(window_, end - x);
        };
        appendOutside(from, insideFrom);
        append(row + insideFrom * Channels, insideTo - insideFrom);
        appendOutside(insideTo, to);
    }
    static __attribute__((noinline)) void convert(float* out, const S* in, int64_t count) {
        forBlocks<4, Vec<float>::lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            for (int v = 0; v < block.vectors; ++v) {
                const int64_t at = x + v * Vec<float>::lanes;
                store(out + at, loadAs<float>(in + at, extent), extent);
            }
        });
    }

    const SeparableTask<S, Channels, D>& task_;
    const RowPass& pass_;
    S* window_;
    const float* outside_;
};

}  // namespace okpcv
