// Integral images: the sum, and the sum of the squares, of all pixels above and to the left of every place.
// A row's running sum is added to the row above; both destinations are made in one pass. Source: F. C. Crow,
// "Summed-Area Tables for Texture Mapping", SIGGRAPH 1984.
//
// Bound by stores: 4 to 12 bytes per pixel. Four rows are made side by side, so that the row above is read
// once for all and their running sums do not wait for each other; per four 8-bit pixels the sums then take
// some 8 operations and the squares 10 to 16.
#include <algorithm>

#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "okpcv/integral.h"

namespace okpcv {
namespace {

// 8-bit pixels are loaded as a group and made in quarters of it, one vector of 32-bit sums at a time.
constexpr int kGroup = Vec<uint8_t>::lanes;
constexpr int kQuarter = Vec<int32_t>::lanes;

constexpr int kRowsAtOnce = 4;

// What is added up, of a pixel and of a quarter's pixels.
struct Value {
    static int32_t of(uint8_t pixel) { return pixel; }
    template <int kNumber>
    static OKPCV_INLINE Vec<int32_t> prefixSums(Vec<uint8_t> group) {
        return prefixSumsOfQuarter<kNumber>(group);
    }
};
struct ValueBesideSquare : Value {
    template <int kNumber>
    static OKPCV_INLINE Vec<int32_t> prefixSums(Vec<uint8_t> group) {
        return prefixSumsBesideSquares<kNumber>(group);
    }
};
struct Square {
    static int32_t of(uint8_t pixel) { return pixel * pixel; }
    template <int kNumber>
    static OKPCV_INLINE Vec<int32_t> prefixSums(Vec<uint8_t> group) {
        return prefixSquareSumsOfQuarter<kNumber>(group);
    }
};

// Running sums of groups are 32-bit integers. Below this column they are exact in the destination's type,
// sums in floats (2^24) and sums of squares in doubles (2^31), so that the result is that of adding pixel
// after pixel. From there on pixels are in fact added one after another. 32-bit destinations wrap anyway.
template <class D>
constexpr int64_t groupedColumns(int64_t width) {
    constexpr int64_t kFloatColumns = (int64_t{1} << 24) / 255 / kGroup * kGroup;
    constexpr int64_t kDoubleColumns = (int64_t{1} << 31) / (255 * 255) / kGroup * kGroup;
    return kIsFloat<D>    ? std::min(width, kFloatColumns)
           : kIsDouble<D> ? std::min(width, kDoubleColumns)
                          : width;
}

// kRows neighbouring rows of a destination of 8-bit pixels, from left to right.
template <class D, class Term, int kRows>
class RowsOf {
  public:
    // From row y of the source on.
    RowsOf(Image<D> dst, D offset, int64_t y) : above_(dst.row(y) + 1) {
        for (int i = 0; i < kRows; ++i) {
            out_[i] = dst.row(y + 1 + i) + 1;
            storeScalar(out_[i] - 1, offset);
            running_[i] = zeros<int32_t>();
        }
    }

    // Writes the quarter of this number of a group of each row, at column x.
    template <int kNumber, class Extent>
    OKPCV_INLINE void putQuarter(const Vec<uint8_t> (&groups)[kRows], int64_t x, Extent extent) {
        constexpr int kLanes = Vec<D>::lanes;
        constexpr int kVectors = kQuarter / kLanes;
        Vec<D> sums[kVectors];
        unrolled<kVectors>([&](auto v) OKPCV_INLINE_LAMBDA {
            sums[v] = load(above_ + x + v * kLanes, extent.from(v * kLanes));
        });
        unrolled<kRows>([&](auto row) OKPCV_INLINE_LAMBDA {
            const Vec<int32_t> running = running_[row] + Term::template prefixSums<kNumber>(groups[row]);
            running_[row] = broadcastLast(running);
            if constexpr (kIsDouble<D>) {
                sums[0] = sums[0] + widenLow<double>(running);
                sums[1] = sums[1] + widenHigh<double>(running);
            } else if constexpr (kIsFloat<D>) {
                sums[0] = sums[0] + toFloat(running);
            } else {
                sums[0] = sums[0] + running;
            }
            unrolled<kVectors>([&](auto v) OKPCV_INLINE_LAMBDA {
                store(out_[row] + x + v * kLanes, sums[v], extent.from(v * kLanes));
            });
        });
    }

    // Goes over to single pixels, in one of the rows.
    void beginSingle(int row) {
        single_ = static_cast<D>(firstLane(running_[row]));
        singleAbove_ = row == 0 ? above_ : out_[row - 1];
        singleOut_ = out_[row];
    }
    void putSingle(uint8_t pixel, int64_t x) {
        if constexpr (kIsInt<D>) {
            single_ = wrappingSum(single_, Term::of(pixel));
            storeScalar(singleOut_ + x, wrappingSum(loadScalar<D>(singleAbove_ + x), single_));
        } else {
            single_ += static_cast<D>(Term::of(pixel));
            storeScalar(singleOut_ + x, loadScalar<D>(singleAbove_ + x) + single_);
        }
    }

  private:
    const D* above_;
    D* out_[kRows];
    Vec<int32_t> running_[kRows];

    D single_ = 0;
    const D* singleAbove_ = nullptr;
    D* singleOut_ = nullptr;
};

// Makes kRows rows of all destinations: the columns below `grouped` in groups, of the last group only the
// quarters that it has, and the others one after another.
template <int kRows, class... Rows>
OKPCV_INLINE void makeRows(Image<const uint8_t> src, int64_t y, int64_t width, int64_t grouped,
                           Rows... rows) {
    const uint8_t* pixels[kRows];
    for (int i = 0; i < kRows; ++i) pixels[i] = src.row(y + i);

    Vec<uint8_t> groups[kRows];
    int64_t x = 0;
    for (; x + kGroup <= grouped; x += kGroup) {
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA { groups[i] = load(pixels[i] + x); });
        unrolled<kGroup / kQuarter>([&](auto number) OKPCV_INLINE_LAMBDA {
            (rows.template putQuarter<number>(groups, x + number * kQuarter, Whole{}), ...);
        });
    }
    if (x < grouped) {
        const Part rest{static_cast<int>(grouped - x)};
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA { groups[i] = load(pixels[i] + x, rest); });
        for (; x + kQuarter <= grouped; x += kQuarter) {
            (rows.template putQuarter<0>(groups, x, Whole{}), ...);
            unrolled<kRows>([&](auto i)
                                OKPCV_INLINE_LAMBDA { groups[i] = shiftLanesDown<kQuarter>(groups[i]); });
        }
        if (x < grouped) (rows.template putQuarter<0>(groups, x, Part{static_cast<int>(grouped - x)}), ...);
    }
    if (grouped == width) return;
    for (int i = 0; i < kRows; ++i) {
        (rows.beginSingle(i), ...);
        for (x = grouped; x < width; ++x) (rows.putSingle(pixels[i][x], x), ...);
    }
}

// The row above all sums.
template <class D>
void fillFirstRow(Image<D> dst, Size size, D value) {
    for (int64_t x = 0; x <= size.width; ++x) storeScalar(dst.data + x, value);
}

// The source's pixels, and one row and one column more in every destination.
template <class S, class... Dst>
Checks check(Image<const S> src, Size size, const Dst&... dst) {
    Checks checks;
    checks.pointers(src.data, dst.data...)
        .size(size)
        .rowsFit(size, src)
        .rowsFit(Size(size.width + 1, size.height + 1), dst...)
        .stepsAreMultiples(src, dst...);
    return checks;
}

template <class D>
okpStatus integral8u(Image<const uint8_t> src, Image<D> dst, RoiSize roiSize, D val) {
    const Size size = roiSize;
    const Checks checks = check(src, size, dst);
    if (checks.failed()) return checks.status();

    fillFirstRow(dst, size, val);
    const int64_t grouped = groupedColumns<D>(size.width);
    int64_t y = 0;
    for (; y + kRowsAtOnce <= size.height; y += kRowsAtOnce) {
        makeRows<kRowsAtOnce>(src, y, size.width, grouped, RowsOf<D, Value, kRowsAtOnce>(dst, val, y));
    }
    for (; y < size.height; ++y) {
        makeRows<1>(src, y, size.width, grouped, RowsOf<D, Value, 1>(dst, val, y));
    }
    return okpStatusOk;
}

template <class D, class Q>
okpStatus sqrIntegral8u(Image<const uint8_t> src, Image<D> dst, Image<Q> sqr, RoiSize roiSize, D val,
                        Q valSqr) {
    const Size size = roiSize;
    const Checks checks = check(src, size, dst, sqr);
    if (checks.failed()) return checks.status();

    const auto address = [](const auto* p) { return reinterpret_cast<uintptr_t>(p); };
    const int64_t rowElements = size.width + 1;
    const bool overlap = address(dst.data) < address(sqr.data + rowElements) &&
                         address(sqr.data) < address(dst.data + rowElements);
    for (int64_t x = 0; x < rowElements; ++x) {
        storeScalar(dst.data + x, val);
        storeScalar(sqr.data + x, valSqr);
    }
    // Destinations that overlap receive what writing sum and square of pixel after pixel leaves.
    const int64_t grouped = overlap ? 0 : groupedColumns<D>(groupedColumns<Q>(size.width));
    const auto rowsFrom = [&](auto count, int64_t y) OKPCV_INLINE_LAMBDA {
        const RowsOf<D, ValueBesideSquare, count> sums(dst, val, y);
        const RowsOf<Q, Square, count> squares(sqr, valSqr, y);
        makeRows<count>(src, y, size.width, grouped, sums, squares);
    };
    int64_t y = 0;
    for (; y + kRowsAtOnce <= size.height && !overlap; y += kRowsAtOnce) {
        rowsFrom(std::integral_constant<int, kRowsAtOnce>{}, y);
    }
    for (; y < size.height; ++y) rowsFrom(std::integral_constant<int, 1>{}, y);
    return okpStatusOk;
}

// Four floats at a time: their sums are formed, then the running sum before them is added, then the row
// above; all in single precision and in this order everywhere.
template <int kRows>
OKPCV_INLINE void makeFloatRows(Image<const float> src, Image<float> dst, int64_t y, int64_t width) {
    const float* const above = dst.row(y) + 1;
    const float* pixels[kRows];
    float* out[kRows];
    Vec<float> running[kRows];
    for (int i = 0; i < kRows; ++i) {
        pixels[i] = src.row(y + i);
        out[i] = dst.row(y + 1 + i) + 1;
        storeScalar(out[i] - 1, 0.0F);
        running[i] = zeros<float>();
    }
    mapColumns<Vec<float>::lanes>(width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        Vec<float> sums = load(above + x, extent);
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA {
            const Vec<float> group = prefixSums(load(pixels[i] + x, extent));
            sums = sums + (running[i] + group);
            running[i] = running[i] + broadcastLast(group);
            store(out[i] + x, sums, extent);
        });
    });
}

okpStatus integral32f(Image<const float> src, Image<float> dst, RoiSize roiSize) {
    const Size size = roiSize;
    const Checks checks = check(src, size, dst);
    if (checks.failed()) return checks.status();

    fillFirstRow(dst, size, 0.0F);
    int64_t y = 0;
    for (; y + kRowsAtOnce <= size.height; y += kRowsAtOnce) {
        makeFloatRows<kRowsAtOnce>(src, dst, y, size.width);
    }
    for (; y < size.height; ++y) makeFloatRows<1>(src, dst, y, size.width);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiIntegral_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst, int32_t dstStep,
                                 RoiSize roiSize, int32_t val) {
    return integral8u<int32_t>({pSrc, srcStep}, {pDst, dstStep}, roiSize, val);
}
okpStatus okpiIntegral_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                 RoiSize roiSize, float val) {
    return integral8u<float>({pSrc, srcStep}, {pDst, dstStep}, roiSize, val);
}
okpStatus okpiIntegral_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                               RoiSize roiSize) {
    return integral32f({pSrc, srcStep}, {pDst, dstStep}, roiSize);
}
okpStatus okpiSqrIntegral_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst, int32_t dstStep,
                                    int32_t* pSqr, int32_t sqrStep, RoiSize roiSize, int32_t val,
                                    int32_t valSqr) {
    return sqrIntegral8u<int32_t, int32_t>({pSrc, srcStep}, {pDst, dstStep}, {pSqr, sqrStep}, roiSize, val,
                                           valSqr);
}
okpStatus okpiSqrIntegral_8u32s64f_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst, int32_t dstStep,
                                       double* pSqr, int32_t sqrStep, RoiSize roiSize, int32_t val,
                                       double valSqr) {
    return sqrIntegral8u<int32_t, double>({pSrc, srcStep}, {pDst, dstStep}, {pSqr, sqrStep}, roiSize, val,
                                          valSqr);
}
okpStatus okpiSqrIntegral_8u32f64f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                       double* pSqr, int32_t sqrStep, RoiSize roiSize, float val,
                                       double valSqr) {
    return sqrIntegral8u<float, double>({pSrc, srcStep}, {pDst, dstStep}, {pSqr, sqrStep}, roiSize, val,
                                        valSqr);
}
