// Filters with fixed masks of 3 x 3 and 5 x 5 pixels: means, mixed second derivatives and Laplacians. 8-bit
// images are filtered in 16-bit integers, which hold every sum of them; float images in single precision.
//
// Bound, per 16 outputs of an 8-bit image and mask length n: of means n loads, the 5 (3 x 3) or 7
// instructions of the row's sums, 4 or 8 additions of rows and 5 or 9 instructions that divide; of the
// others 2 n loads that widen, the 2 (3 x 3 cross derivative) to 26 (5 x 5 Laplacian) instructions of the
// row's sums, then as many additions as the mask has distinct rows, twice. Float images need as many
// instructions for 4 outputs each way, and are bound by the memory where they leave the caches.
#include "core/area.h"
#include "core/border.h"
#include "core/cache.h"
#include "core/checks.h"
#include "core/fp_control.h"
#include "core/image.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "filter/mask_engine.h"
#include "filter/weighted_sum.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

// v * 2^kBits. Floats are multiplied, because additions are what their masks are full of.
template <int kBits>
OKPCV_INLINE Vec<int16_t> scaled(Vec<int16_t> v) {
    return kBits == 1 ? v + v : shiftLeft(v, kBits);
}
template <int kBits>
OKPCV_INLINE Vec<float> scaled(Vec<float> v) {
    return v * broadcast(float{1 << kBits});
}

// A sum of nothing but negative zeros is +0, as of all filters.
OKPCV_INLINE Vec<float> withoutNegativeZero(Vec<float> v) {
    return v + zeros<float>();
}
OKPCV_INLINE Vec<int16_t> withoutNegativeZero(Vec<int16_t> v) {
    return v;
}

// Sums of a vector of bytes' outputs: of the even ones and of the odd ones.
struct EvenOdd {
    Vec<int16_t> even, odd;
};

// ---- Masks ----------------------------------------------------------------------------------------------
//
// A mask computes from the elements that an output's taps see in one row what the outputs around it need of
// that row (Row), adds it to the sum of the output to which the row is row J of the mask, from J = 0, which
// sets the sum, to length - 1, and finishes the sum. `vectors` of sums advance side by side.

template <int kLength>
struct Mean {
    static constexpr int length = kLength;
    static constexpr int vectors = 2;
    using V = Vec<float>;
    using Row = V;

    static OKPCV_INLINE Row row(const V (&x)[length]) {
        V sum = x[0];
        for (int i = 1; i < length; ++i) sum = sum + x[i];
        return sum;
    }
    template <int J>
    static OKPCV_INLINE void add(V& sum, Row row) {
        sum = J == 0 ? row : sum + row;
    }
    static OKPCV_INLINE V finished(V sum) {
        return withoutNegativeZero(sum) / broadcast(float{length * length});
    }
};

// Of bytes. Two neighbouring outputs see the same elements but for the first and the last: an instruction
// that adds pairs of bytes serves both.
template <int kLength>
struct ByteMean {
    static constexpr int length = kLength;
    static constexpr int vectors = 1;
    using V = EvenOdd;
    using Row = V;

    template <class Extent>
    static OKPCV_INLINE Row row(const uint8_t* p, Extent extent) {
        const Vec<int8_t> ones = broadcast(int8_t{1});
        Vec<int16_t> inner = mulAddPairs(load(p + 1, extent.from(-1)), ones);
        for (int i = 3; i < length; i += 2) {
            inner = inner + mulAddPairs(load(p + i, extent.from(-1)), ones);
        }
        const Vec<int16_t> first = bitCast<int16_t>(load(p, extent)) & broadcast(int16_t{255});
        const Vec<uint16_t> last = shiftRight(bitCast<uint16_t>(load(p + length - 1, extent)), 8);
        return {inner + first, inner + bitCast<int16_t>(last)};
    }
    template <int J>
    static OKPCV_INLINE void add(V& sum, const Row& row) {
        sum = J == 0 ? row : V{sum.even + row.even, sum.odd + row.odd};
    }
    static OKPCV_INLINE Vec<uint8_t> finished(const V& sum) {
        return bitCast<uint8_t>(divided(sum.even) | shiftLeft(divided(sum.odd), 8));
    }

  private:
    // Rounded half up. The factors are exact for all sums of bytes: 3641 / 2^15 for 9, 5243 / 2^17 for 25.
    static OKPCV_INLINE Vec<int16_t> divided(Vec<int16_t> sum) {
        if constexpr (length == 3) return mulFraction(sum, broadcast(int16_t{3641}));
        return shiftRight(mulHigh(sum + broadcast(int16_t{12}), broadcast(int16_t{5243})), 1);
    }
};

// Rows and columns (-1 0 1).
template <class T>
struct Cross3 {
    static constexpr int length = 3;
    static constexpr int vectors = 2;
    using V = Vec<T>;
    using Row = V;

    static OKPCV_INLINE Row row(const V (&x)[length]) { return x[2] - x[0]; }
    template <int J>
    static OKPCV_INLINE void add(V& sum, Row row) {
        if constexpr (J == 0) sum = row;
        if constexpr (J == 2) sum = row - sum;
    }
    static OKPCV_INLINE V finished(V sum) { return withoutNegativeZero(sum); }
};

// Rows and columns (-1 -2 0 2 1), in this order.
template <class T>
struct Cross5 {
    static constexpr int length = 5;
    static constexpr int vectors = 1;
    using V = Vec<T>;
    struct Row {
        V single, doubled;
    };

    static OKPCV_INLINE Row row(const V (&x)[length]) {
        const V sum = scaled<1>(x[3]) - (x[0] + scaled<1>(x[1])) + x[4];
        return {sum, scaled<1>(sum)};
    }
    template <int J>
    static OKPCV_INLINE void add(V& sum, const Row& row) {
        if constexpr (J == 0) sum = row.single;
        if constexpr (J == 1) sum = sum + row.doubled;
        if constexpr (J == 3) sum = row.doubled - sum;
        if constexpr (J == 4) sum = sum + row.single;
    }
    static OKPCV_INLINE V finished(V sum) { return withoutNegativeZero(sum); }
};

// Twice 1 0 1
//       0 -4 0
//       1 0 1.
template <class T>
struct Laplacian3 {
    static constexpr int length = 3;
    static constexpr int vectors = 2;
    using V = Vec<T>;
    struct Row {
        V sides, centre;
    };

    static OKPCV_INLINE Row row(const V (&x)[length]) { return {x[0] + x[2], scaled<2>(x[1])}; }
    template <int J>
    static OKPCV_INLINE void add(V& sum, const Row& row) {
        if constexpr (J == 0) sum = row.sides;
        if constexpr (J == 1) sum = sum - row.centre;
        if constexpr (J == 2) sum = sum + row.sides;
    }
    static OKPCV_INLINE V finished(V sum) { return scaled<1>(sum); }
};

// Twice 1   2   2   2 1
//       2   0  -4   0 2
//       2  -4 -12  -4 2
//       2   0  -4   0 2
//       1   2   2   2 1.
template <class T>
struct Laplacian5 {
    static constexpr int length = 5;
    static constexpr int vectors = 1;
    using V = Vec<T>;
    struct Row {
        V outer, between, middle;
    };

    static OKPCV_INLINE Row row(const V (&x)[length]) {
        const V ends = x[0] + x[4];
        const V inner = x[1] + x[3];
        const V between = scaled<1>(ends) - scaled<2>(x[2]);
        return {ends + scaled<1>(inner + x[2]), between, between - scaled<2>(inner + scaled<1>(x[2]))};
    }
    template <int J>
    static OKPCV_INLINE void add(V& sum, const Row& row) {
        if constexpr (J == 0) {
            sum = row.outer;
        } else {
            sum = sum + (J == 4 ? row.outer : J == 2 ? row.middle : row.between);
        }
    }
    static OKPCV_INLINE V finished(V sum) { return scaled<1>(sum); }
};

// ---- The pass -------------------------------------------------------------------------------------------

// See mask_engine.h. A row that comes in is added to the sums of all outputs that see it, one of which it
// completes: so `length` sums are under way at a time.
template <class Mask, class S, class D>
struct MaskPass {
    using T = std::conditional_t<kIsFloat<S>, float, int16_t>;
    static constexpr int length = Mask::length;
    static constexpr bool ofBytes = std::is_same_v<typename Mask::V, EvenOdd>;
    static constexpr int lanes = ofBytes ? Vec<uint8_t>::lanes : Vec<T>::lanes;

    __attribute__((noinline)) void operator()(D* out, int64_t step, int64_t outRows, const S* const* rows,
                                              int64_t count) const {
        const Image<D> dst{out, step};
        forBlocks<Mask::vectors, lanes>(count, [&](auto block, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            constexpr int n = block.vectors;
            typename Mask::V sums[length][n];
            // Adds a row to the sums of the outputs of which it is row kLast, kLast - 1, ..., 0; the first of
            // them has slot kSlot.
            const auto add = [&](const S* row, auto kLast, auto kSlot) OKPCV_INLINE_LAMBDA {
                typename Mask::Row terms[n];
                for (int v = 0; v < n; ++v) terms[v] = rowTerms(row + x + v * lanes, extent);
                unrolled<kLast + 1>([&](auto i) OKPCV_INLINE_LAMBDA {
                    for (int v = 0; v < n; ++v) {
                        Mask::template add<kLast - i>(sums[(kSlot + i) % length][v], terms[v]);
                    }
                });
            };
            unrolled<length - 1>(
                [&](auto j) OKPCV_INLINE_LAMBDA { add(rows[j], j, std::integral_constant<int, 0>{}); });
            for (int64_t r = 0; r < outRows; r += length) {
                unrolled<length>([&](auto slot) OKPCV_INLINE_LAMBDA {
                    if (r + slot >= outRows) return;
                    add(rows[r + slot + length - 1], std::integral_constant<int, length - 1>{}, slot);
                    for (int v = 0; v < n; ++v) {
                        store(dst.row(r + slot) + x + v * lanes, Mask::finished(sums[slot][v]), extent);
                    }
                });
            }
        });
    }

  private:
    template <class Extent>
    static OKPCV_INLINE typename Mask::Row rowTerms(const S* p, Extent extent) {
        if constexpr (ofBytes) {
            return Mask::row(p, extent);
        } else {
            Vec<T> x[length];
            for (int i = 0; i < length; ++i) x[i] = loadAs<T>(p + i, extent);
            return Mask::row(x);
        }
    }
};

// ---- Exports --------------------------------------------------------------------------------------------

constexpr bool isMask(MaskSizeCode mask) {
    return mask == MaskSize3x3 || mask == MaskSize5x5;
}

template <class S>
constexpr int kGroup = Vec<S>::lanes;

template <class Mask, class S, class D>
void run(const MaskTask<S, D>& task, void* pBuffer) {
    using Buffer = MaskBuffer<S, Mask::length, kGroup<S>>;
    Area area(pBuffer);
    const Buffer buffer = Buffer::layOut(area, task.size.width);
    const MaskPass<Mask, S, D> pass;
    MaskFilter<S, D, Mask::length, kGroup<S>, MaskPass<Mask, S, D>>(task, buffer, pass).run();
}

template <class Mask3, class Mask5, class S, class D>
okpStatus filter(Image<const S> src, Image<D> dst, Size size, MaskSizeCode mask, BorderKind borderType,
                 S borderValue, void* pBuffer) {
    Checks checks;
    checks.pointers(src.data, dst.data, pBuffer).size(size).rowsFit(size, src, dst);
    if constexpr (kIsFloat<S>) checks.stepsAreMultiples(src, dst);
    checks.require(isFilterBorder(borderType), okpStatusBadBorder)
        .require(isMask(mask), okpStatusBadMaskKind);
    if (checks.failed()) return checks.status();

    const DenormalExceptionMask denormals;
    const MaskTask<S, D> task{src, dst, size, Border(borderType), borderValue};
    mask == MaskSize3x3 ? run<Mask3>(task, pBuffer) : run<Mask5>(task, pBuffer);
    return okpStatusOk;
}

template <class S>
okpStatus bufferSize(RoiSize size, MaskSizeCode mask, int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize).size(size).require(isMask(mask), okpStatusBadMaskKind);
    if (checks.failed()) return checks.status();

    Area area;
    if (mask == MaskSize3x3) {
        MaskBuffer<S, 3, kGroup<S>>::layOut(area, size.width);
    } else {
        MaskBuffer<S, 5, kGroup<S>>::layOut(area, size.width);
    }
    checks.require(area.bytes() <= INT32_MAX, okpStatusSizeTooLarge);
    if (!checks.failed()) *pBufferSize = static_cast<int32_t>(area.bytes());
    return checks.status();
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

// The last two are the masks of 3 x 3 and 5 x 5.
#define FIXED_MASK(NAME, S, D, ...)                                                                   \
    okpStatus NAME(const S* pSrc, int32_t srcStep, D* pDst, int32_t dstStep, RoiSize roiSize,         \
                   MaskSizeCode mask, BorderKind borderType, S borderValue, void* pBuffer) {          \
        return filter<__VA_ARGS__, S, D>({pSrc, srcStep}, {pDst, dstStep}, roiSize, mask, borderType, \
                                         borderValue, pBuffer);                                       \
    }
#define BUFFER_SIZE(NAME, S)                                                   \
    okpStatus NAME(RoiSize roiSize, MaskSizeCode mask, int32_t* pBufferSize) { \
        return bufferSize<S>(roiSize, mask, pBufferSize);                      \
    }

FIXED_MASK(okpiFilterLowpassBorder_8u_C1R, uint8_t, uint8_t, ByteMean<3>, ByteMean<5>)
FIXED_MASK(okpiFilterLowpassBorder_32f_C1R, float, float, Mean<3>, Mean<5>)
FIXED_MASK(okpiFilterSobelCrossBorder_8u16s_C1R, uint8_t, int16_t, Cross3<int16_t>, Cross5<int16_t>)
FIXED_MASK(okpiFilterSobelCrossBorder_32f_C1R, float, float, Cross3<float>, Cross5<float>)
FIXED_MASK(okpiFilterLaplacianBorder_8u16s_C1R, uint8_t, int16_t, Laplacian3<int16_t>, Laplacian5<int16_t>)
FIXED_MASK(okpiFilterLaplacianBorder_32f_C1R, float, float, Laplacian3<float>, Laplacian5<float>)

BUFFER_SIZE(okpiFilterLowpassGetBufferSize_8u_C1R, uint8_t)
BUFFER_SIZE(okpiFilterLowpassGetBufferSize_32f_C1R, float)
BUFFER_SIZE(okpiFilterSobelCrossGetBufferSize_8u16s_C1R, uint8_t)
BUFFER_SIZE(okpiFilterSobelCrossGetBufferSize_32f_C1R, float)
BUFFER_SIZE(okpiFilterLaplacianGetBufferSize_8u16s_C1R, uint8_t)
BUFFER_SIZE(okpiFilterLaplacianGetBufferSize_32f_C1R, float)
