// Integral images: the sum, and the sum of the squares, of all pixels above and to the left of every place.
// A row's running sum is added to the row above; both destinations are made in one pass. Source: F. C. Crow,
// "Summed-Area Tables for Texture Mapping", SIGGRAPH 1984.
//
// Bound by arithmetic and stores: per four 8-bit pixels the sums take 5 vector operations and a store in
// integers, 6 in floats; sums and squares together 11 and two, or with squares in doubles 15 and three. Two
// rows are made side by side: they share the row above and the turns of the loop. Beyond the caches memory
// bounds.
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

// Running sums of 8-bit pixels are kept in a vector: of four neighbouring columns, each through its own
// pixel. From these to the next four each grows by a sum over four pixels, its own and the three before it.
constexpr int kFour = Vec<int32_t>::lanes;
constexpr int kBefore = kFour - 1;

constexpr int kRowsAtOnce = 2;

// Aligning the stores of rows with fewer columns costs as much as it gains.
constexpr int kAlignedFrom = 128;

// What is added up: of a pixel, and of four pixels beginning with each of the first four in a vector.
struct Value {
    static int32_t of(uint8_t pixel) { return pixel; }
    static OKPCV_INLINE Vec<int32_t> ofFours(Vec<uint8_t> pixels) { return sumsOfFour(pixels); }
};
struct ValueBesideSquare : Value {
    static OKPCV_INLINE Vec<int32_t> ofFours(Vec<uint8_t> pixels) { return sumsOfFourBesideSquares(pixels); }
};
struct Square {
    static int32_t of(uint8_t pixel) { return pixel * pixel; }
    static OKPCV_INLINE Vec<int32_t> ofFours(Vec<uint8_t> pixels) { return squareSumsOfFour(pixels); }
};

// Running sums of fours are 32-bit integers. Below this column they are exact in the destination's type,
// sums in floats (2^24) and sums of squares in doubles (2^31), so that the result is that of adding pixel
// after pixel. From there on pixels are in fact added one after another. 32-bit destinations wrap anyway.
template <class D>
constexpr int64_t columnsInFours(int64_t width) {
    constexpr int64_t kFloatColumns = (int64_t{1} << 24) / 255;
    constexpr int64_t kDoubleColumns = (int64_t{1} << 31) / (255 * 255);
    return kIsFloat<D>    ? std::min(width, kFloatColumns)
           : kIsDouble<D> ? std::min(width, kDoubleColumns)
                          : width;
}

// kRows neighbouring rows of a destination of 8-bit pixels, put from left to right, in fours, then in single
// pixels.
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

    // The column from which on stores of fours are aligned: at least kBefore, below 2 * kFour.
    int firstAligned() const { return kBefore + elementsToAligned(out_[0] + kBefore); }

    // The columns before x, which is at least kBefore and below 2 * kFour. `pixels` are the row's first 2 *
    // kFour.
    OKPCV_INLINE void putBefore(int x, const Vec<uint8_t> (&pixels)[kRows]) {
        Vec<uint8_t> first[kRows];
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA { first[i] = shiftLanesUp<kBefore>(pixels[i]); });
        putFour(0, first, Whole{});
        if (x == kFour) return;
        // The running sums of the four columns before x, and of what comes before these.
        Vec<uint8_t> last[kRows];
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA {
            last[i] = bitCast<uint8_t>(shiftLeft(bitCast<uint64_t>(pixels[i]), 8 * (kFour + kBefore - x)));
            running_[i] = Term::ofFours(shiftLanesUp<kFour>(last[i]));
        });
        if (x > kFour) {
            putFour(x - kFour, last, Whole{});
        } else {
            unrolled<kRows>([&](auto i)
                                OKPCV_INLINE_LAMBDA { running_[i] = running_[i] + Term::ofFours(last[i]); });
        }
    }

    // The four columns from x on. Of `pixels`, kBefore come before that of column x.
    template <class Extent>
    OKPCV_INLINE void putFour(int64_t x, const Vec<uint8_t> (&pixels)[kRows], Extent extent) {
        constexpr int kLanes = Vec<D>::lanes;
        constexpr int kVectors = kFour / kLanes;
        Vec<D> sums[kVectors];
        unrolled<kVectors>([&](auto v) OKPCV_INLINE_LAMBDA {
            sums[v] = load(above_ + x + v * kLanes, extent.from(v * kLanes));
        });
        unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA {
            running_[i] = running_[i] + Term::ofFours(pixels[i]);
            if constexpr (kIsDouble<D>) {
                sums[0] = sums[0] + widenLow<double>(running_[i]);
                sums[1] = sums[1] + widenHigh<double>(running_[i]);
            } else if constexpr (kIsFloat<D>) {
                sums[0] = sums[0] + toFloat(running_[i]);
            } else {
                sums[0] = sums[0] + running_[i];
            }
            unrolled<kVectors>([&](auto v) OKPCV_INLINE_LAMBDA {
                store(out_[i] + x + v * kLanes, sums[v], extent.from(v * kLanes));
            });
        });
    }

    // Goes over to single pixels, in one of the rows.
    OKPCV_INLINE void beginSingle(int row) {
        single_ = static_cast<D>(lastLane(running_[row]));
        singleAbove_ = row == 0 ? above_ : out_[row - 1];
        singleOut_ = out_[row];
    }
    OKPCV_INLINE void putSingle(uint8_t pixel, int64_t x) {
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
    Vec<int32_t> running_[kRows];  // through the last four columns

    D single_ = 0;
    const D* singleAbove_ = nullptr;
    D* singleOut_ = nullptr;
};

// Makes kRows rows of all destinations, aligned to the first one's: the columns below `inFours` in fours, if
// they are enough, and the others one after another.
template <int kRows, class First, class... Rows>
OKPCV_INLINE void makeRows(Image<const uint8_t> src, int64_t y, int64_t width, int64_t inFours, First first,
                           Rows... rows) {
    const uint8_t* pixels[kRows];
    for (int i = 0; i < kRows; ++i) pixels[i] = src.row(y + i);

    int64_t x = 0;
    if (inFours >= 2 * kFour) {
        Vec<uint8_t> group[kRows];
        const auto loadGroup = [&](int64_t column, auto extent) OKPCV_INLINE_LAMBDA {
            unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA {
                group[i] = loadFirst<2 * kFour>(pixels[i] + column, extent);
            });
        };
        const auto putFour = [&](int64_t column, auto extent) OKPCV_INLINE_LAMBDA {
            loadGroup(column - kBefore, extent.from(-kBefore));
            first.putFour(column, group, extent);
            (rows.putFour(column, group, extent), ...);
        };
        const int begin = inFours < kAlignedFrom ? kFour : first.firstAligned();
        loadGroup(0, Whole{});
        first.putBefore(begin, group);
        (rows.putBefore(begin, group), ...);
        x = begin;
        for (; x + 2 * kFour < inFours; x += 2 * kFour) {
            putFour(x, Whole{});
            putFour(x + kFour, Whole{});
        }
        if (x + kFour < inFours) {
            putFour(x, Whole{});
            x += kFour;
        }
        if (x < inFours) putFour(x, Part{static_cast<int>(inFours - x)});
        x = inFours;
    }
    if (x == width) return;
    unrolled<kRows>([&](auto i) OKPCV_INLINE_LAMBDA {
        first.beginSingle(i);
        (rows.beginSingle(i), ...);
        for (int64_t column = x; column < width; ++column) {
            first.putSingle(pixels[i][column], column);
            (rows.putSingle(pixels[i][column], column), ...);
        }
    });
}

// The row above all sums.
template <class D>
void fillFirstRow(Image<D> dst, Size size, D value) {
    const Vec<D> values = broadcast(value);
    mapRow<Vec<D>::lanes>(
        size.width + 1, [values](auto extent, D* out) { store(out, values, extent); }, dst.data);
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
    const int64_t inFours = columnsInFours<D>(size.width);
    int64_t y = 0;
    for (; y + kRowsAtOnce <= size.height; y += kRowsAtOnce) {
        makeRows<kRowsAtOnce>(src, y, size.width, inFours, RowsOf<D, Value, kRowsAtOnce>(dst, val, y));
    }
    for (; y < size.height; ++y) {
        makeRows<1>(src, y, size.width, inFours, RowsOf<D, Value, 1>(dst, val, y));
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
    // Destinations that overlap receive what writing sum and square of pixel after pixel leaves.
    if (overlap) {
        for (int64_t x = 0; x < rowElements; ++x) {
            storeScalar(dst.data + x, val);
            storeScalar(sqr.data + x, valSqr);
        }
    } else {
        fillFirstRow(dst, size, val);
        fillFirstRow(sqr, size, valSqr);
    }
    const int64_t inFours = overlap ? 0 : columnsInFours<D>(columnsInFours<Q>(size.width));
    const auto rowsFrom = [&](auto count, int64_t y) OKPCV_INLINE_LAMBDA {
        const RowsOf<D, ValueBesideSquare, count> sums(dst, val, y);
        const RowsOf<Q, Square, count> squares(sqr, valSqr, y);
        makeRows<count>(src, y, size.width, inFours, sums, squares);
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
okpStatus integral32f(Image<const float> src, Image<float> dst, RoiSize roiSize) {
    const Size size = roiSize;
    const Checks checks = check(src, size, dst);
    if (checks.failed()) return checks.status();

    fillFirstRow(dst, size, 0.0F);
    for (int64_t y = 0; y < size.height; ++y) {
        Vec<float> running = zeros<float>();
        const auto kernel = [&](auto extent, const float* pixels, const float* above, float* out)
                                OKPCV_INLINE_LAMBDA {
                                    const Vec<float> sums = prefixSums(load(pixels, extent));
                                    store(out, load(above, extent) + (running + sums), extent);
                                    running = running + broadcastLast(sums);
                                };
        storeScalar(dst.row(y + 1), 0.0F);
        mapRow<Vec<float>::lanes>(size.width, kernel, src.row(y), static_cast<const float*>(dst.row(y) + 1),
                                  dst.row(y + 1) + 1);
    }
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
