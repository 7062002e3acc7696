// Column streams: the column pass of short kernels. Instead of gathering all rows that an output row sees, a
// stream takes each intermediate row once and adds its share to every output row that sees it; the sums that
// are not complete when a batch of rows ends wait in memory. Each sum still takes its terms in kernel order.
//
// Bound, per vector and output row: length additions, of which a core does two a cycle. Against gathering,
// the loads fall from length to 1, and for symmetric kernels the multiplications to half, because a row's
// product with a coefficient serves both output rows that want it.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/numbers.h"
#include "core/simd.h"
#include "filter/weighted_sum.h"

namespace okpcv {

// Output rows that are best computed together.
inline constexpr int kStreamBatch = 8;

// The code for one length and symmetry: see ColumnStream.
template <class D>
using ColumnStreamCode = void (*)(D* out, int64_t step, int64_t outRows, const float* const* rows,
                                  int64_t count, const float* kernel, float scale, float* state);

// Null when no code is dedicated to this length.
ColumnStreamCode<uint8_t> columnStreamTo8u(int64_t length, bool symmetric);
ColumnStreamCode<uint16_t> columnStreamTo16u(int64_t length, bool symmetric);
ColumnStreamCode<int16_t> columnStreamTo16s(int64_t length, bool symmetric);
ColumnStreamCode<float> columnStreamTo32f(int64_t length, bool symmetric);

template <class D>
ColumnStreamCode<D> columnStreamCode(int64_t length, bool symmetric) {
    if constexpr (std::is_same_v<D, uint8_t>) {
        return columnStreamTo8u(length, symmetric);
    } else if constexpr (std::is_same_v<D, uint16_t>) {
        return columnStreamTo16u(length, symmetric);
    } else if constexpr (std::is_same_v<D, int16_t>) {
        return columnStreamTo16s(length, symmetric);
    } else {
        return columnStreamTo32f(length, symmetric);
    }
}
inline bool hasColumnStream(int64_t length) {
    return columnStreamCode<float>(length, false) != nullptr;
}

// Takes intermediate rows and gives the results of FloatColumnPass: out[x] = (sum of kernel[j] * rows[j][x],
// in kernel order) * scale, for lengths that have a stream. Float results are not scaled; results that become
// integers must be less than 2^31 in magnitude.
template <class D>
class ColumnStream {
  public:
    static constexpr int64_t longest = 15;

    // Elements of state for rows of `count` elements.
    static constexpr int64_t stateElements(int64_t length, int64_t count) {
        return (length - 1) * roundUp(count, Vec<float>::lanes);
    }

    template <class K>
    ColumnStream(const K* kernel, int64_t length, float scale) : scale_(scale) {
        bool symmetric = true;
        for (int64_t i = 0; i < length; ++i) kernel_[i] = static_cast<float>(coefficient(kernel, i));
        for (int64_t i = 0; i < length; ++i) symmetric = symmetric && kernel_[i] == kernel_[length - 1 - i];
        code_ = columnStreamCode<D>(length, symmetric);
    }

    // Takes in `rowCount` rows and completes as many output rows, `step` bytes apart; `out` may be null while
    // the rows before the first output's last one come in. `state` is zero before the first row and must hold
    // stateElements().
    void operator()(D* out, int64_t step, int64_t rowCount, const float* const* rows, int64_t count,
                    float* state) const {
        code_(out, step, rowCount, rows, count, kernel_, scale_, state);
    }

  private:
    float kernel_[longest];
    float scale_;
    ColumnStreamCode<D> code_;
};

}  // namespace okpcv
