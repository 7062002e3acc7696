// The code of column streams, for the source files that instantiate it.
#pragma once

#include "core/image.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "core/with_constant.h"
#include "filter/column_pass.h"
#include "filter/column_stream.h"

namespace okpcv {

// `Rows` rows of the batch at one place of `Vectors` vectors. Sum r is that of output row r of the batch; the
// last length - 1 sums are of rows behind it. Sum r takes from input row m the tap length - 1 - (r - m).
// Without an output the completed sums, of rows above the region, are dropped.
template <class D, int Length, bool Symmetric, int Vectors, int Rows, bool HasOutput, class Extent>
OKPCV_INLINE void streamRows(const Image<D>& out, const float* const* rows, int64_t x, const float* table,
                             float scale, float* state, Extent extent) {
    constexpr int lanes = Vec<float>::lanes;
    constexpr int pending = Length - 1;
    constexpr int products = Symmetric ? (Length + 1) / 2 : Length;
    constexpr bool inMemory = Length > 9;  // coefficients; fewer find room in registers
    Vec<float> sum[Vectors][Rows + pending];
    const auto place = [](int v, int r) OKPCV_INLINE_LAMBDA { return (r * Vectors + v) * lanes; };
    unrolled<pending>([&](auto r) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < Vectors; ++v) sum[v][r] = load(state + place(v, r));
    });
    unrolled<Rows>([&](auto m) OKPCV_INLINE_LAMBDA {
        Vec<float> result[Vectors];
        unrolled<Vectors>([&](auto v) OKPCV_INLINE_LAMBDA {
            const Vec<float> in = load(rows[m] + x + v * lanes, extent);
            unrolled<products>([&](auto j) OKPCV_INLINE_LAMBDA {
                const float* const coefficient = table + j * lanes;
                const Vec<float> product = inMemory ? timesAligned(in, coefficient) : in * load(coefficient);
                constexpr int newest = m + pending - j;
                constexpr int mirrored = m + j;
                if constexpr (Symmetric && mirrored != newest) accumulate(sum[v][mirrored], product);
                if constexpr (j == 0) {
                    sum[v][newest] = product;
                } else {
                    accumulate(sum[v][newest], product);
                }
            });
            result[v] = kIsFloat<D> ? sum[v][m] + zeros<float>() : sum[v][m] * broadcast(scale);
        });
        if constexpr (HasOutput) storeResults<Clamped::No>(out.row(m) + x, result, extent);
    });
    unrolled<pending>([&](auto r) OKPCV_INLINE_LAMBDA {
        for (int v = 0; v < Vectors; ++v) store(state + place(v, r), sum[v][Rows + r]);
    });
}

template <class D, int Length, bool Symmetric>
void streamColumns(D* out, int64_t step, int64_t rowCount, const float* const* rows, int64_t count,
                   const float* kernel, float scale, float* state) {
    constexpr int lanes = Vec<float>::lanes;
    alignas(kVectorBytes) float table[Length * lanes];
    for (int j = 0; j < Length; ++j) store(table + j * lanes, broadcast(kernel[j]));

    // As many vectors at a time as leave room for their sums in registers. The last vector of a row is moved
    // back to end with it.
    constexpr int vectors = Length <= 5 ? 2 : 1;
    const auto stream = [&]<int Rows, bool HasOutput>(int64_t row) OKPCV_INLINE_LAMBDA {
        const Image<D> dst{HasOutput ? Image<D>{out, step}.row(row) : nullptr, step};
        float* places = state;
        int64_t x = 0;
        for (; x + vectors * lanes <= count; x += vectors * lanes, places += (Length - 1) * vectors * lanes) {
            streamRows<D, Length, Symmetric, vectors, Rows, HasOutput>(dst, rows + row, x, table, scale,
                                                                       places, Whole{});
        }
        for (; x < count; x += lanes, places += (Length - 1) * lanes) {
            const int64_t at = x + lanes <= count ? x : count - lanes;
            streamRows<D, Length, Symmetric, 1, Rows, HasOutput>(dst, rows + row, at, table, scale, places,
                                                                 Whole{});
        }
    };
    int64_t row = 0;
    if (count < lanes) {
        for (; row < rowCount; ++row) {
            const Part part{static_cast<int>(count)};
            if (out == nullptr) {
                streamRows<D, Length, Symmetric, 1, 1, false>(Image<D>{}, rows + row, 0, table, scale, state,
                                                              part);
            } else {
                const Image<D> dst{Image<D>{out, step}.row(row), step};
                streamRows<D, Length, Symmetric, 1, 1, true>(dst, rows + row, 0, table, scale, state, part);
            }
        }
    } else if (out == nullptr) {
        for (; row < rowCount; ++row) stream.template operator()<1, false>(row);
    } else {
        for (; row + kStreamBatch <= rowCount; row += kStreamBatch) {
            stream.template operator()<kStreamBatch, true>(row);
        }
        for (; row < rowCount; ++row) stream.template operator()<1, true>(row);
    }
}

// The code for a length that only the caller's data knows, or null.
template <class D>
ColumnStreamCode<D> selectColumnStream(int64_t length, bool symmetric) {
    return withConstant<3, 5, 7, 9, 11, 13, 15>(length, [symmetric](auto known) -> ColumnStreamCode<D> {
        if constexpr (known == 0) {
            return nullptr;
        } else {
            return symmetric ? streamColumns<D, known, true> : streamColumns<D, known, false>;
        }
    });
}

}  // namespace okpcv
