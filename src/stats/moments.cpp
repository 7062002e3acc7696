// Mean and standard deviation over the selected pixels.
//
// Integer images are bound by memory: 1 to 7 bytes per pixel against 7 to 15 vector operations per 16 bytes
// of source. Float images are bound by double precision: two conversions and four additions per four pixels
// share two pipes, so three cycles at best, which memory can outrun.
//
// The cancellation guard follows the advice of T. F. Chan, G. H. Golub and R. J. LeVeque, "Algorithms for
// Computing the Sample Variance: Analysis and Recommendations", The American Statistician 37 (1983): where
// the spread is small against the mean, the squares are summed about a shift near the mean.
#include <cmath>

#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/reduce.h"
#include "core/simd.h"
#include "okpcv/stats.h"
#include "stats/source_checks.h"

namespace okpcv {
namespace {

// Floats are summed in eight partial sums of double precision. Integers are read four vectors at a time, in
// blocks of as many vectors as everywhere.
template <class T>
constexpr int kMomentPixels = kIsFloat<T> ? 8 : 2 * kReductionPixels<T>;
template <class T>
constexpr int kMomentSteps = kIsFloat<T> ? 256 : kReductionSteps<T> / 2;

class DoubleSum {
  public:
    struct Partials {
        Vec<double> sum[kMomentPixels<float> / Vec<double>::lanes];
        OKPCV_INLINE void add(int vector, Vec<double> low, Vec<double> high) {
            sum[2 * vector] = sum[2 * vector] + low;
            sum[2 * vector + 1] = sum[2 * vector + 1] + high;
        }
        OKPCV_INLINE void add(int vector, Vec<float> v) {
            add(vector, widenLow<double>(v), widenHigh<double>(v));
        }
    };
    OKPCV_INLINE void take(const Partials& partials) { sum_ += sumVectors(partials.sum); }
    double total() const { return sum_; }

  private:
    double sum_ = 0;
};

// The sums of the values and of their squares: exact for integers, in double precision for floats. Without
// kSquares the squares are left out.
template <class T, bool kSquares>
struct Totals;

template <class T>
struct Totals<T, false> {
    using Accumulator = std::conditional_t<kIsFloat<T>, DoubleSum, Sum<T>>;
    Accumulator values;

    struct Partials {
        typename Accumulator::Partials values;
        OKPCV_INLINE void add(int vector, Vec<T> v) { values.add(vector, v); }
    };
    OKPCV_INLINE void take(const Partials& partials) { values.take(partials.values); }
    auto sum() const { return values.total(); }
};
template <>
struct Totals<uint8_t, true> {
    Sum<uint8_t> values;
    SquareSum<uint8_t> squares;

    struct Partials {
        Sum<uint8_t>::Partials values;
        SquareSum<uint8_t>::Partials squares;
        OKPCV_INLINE void add(int vector, Vec<uint8_t> v) {
            values.add(vector, v);
            squares.add(vector, v);
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        values.take(partials.values);
        squares.take(partials.squares);
    }
    uint64_t sum() const { return values.total(); }
    uint64_t squareSum() const { return squares.total(); }
};
template <>
struct Totals<uint16_t, true> {
    SquareSum<uint16_t> squares;

    struct Partials : SquareSum<uint16_t>::Partials {};
    OKPCV_INLINE void take(const Partials& partials) { squares.take(partials); }
    uint64_t sum() const { return squares.sum(); }
    uint128_t squareSum() const { return squares.total(); }
};
template <>
struct Totals<float, true> {
    DoubleSum values, squares;

    struct Partials {
        DoubleSum::Partials values, squares;
        OKPCV_INLINE void add(int vector, Vec<float> v) {
            const Vec<double> low = widenLow<double>(v);
            const Vec<double> high = widenHigh<double>(v);
            values.add(vector, low, high);
            squares.add(vector, low * low, high * high);
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        values.take(partials.values);
        squares.take(partials.squares);
    }
    double sum() const { return values.total(); }
    double squareSum() const { return squares.total(); }
};

// The number of selected pixels: that of the lanes that came along, less those that did not take part.
template <class T>
class Count {
    // A byte's all ones are counted as 255, to be added up without overflow.
    static constexpr bool kBytes = sizeof(T) == 1;
    using Lane = std::conditional_t<kBytes, uint64_t, UnsignedLane<T>>;

  public:
    struct Partials {
        Vec<Lane> out;
        int64_t lanes;

        OKPCV_INLINE void add(SomeLanes<T> in) {
            lanes += Vec<T>::lanes;
            if constexpr (kBytes) {
                out = out + sumAbsDiff(in.out, zeros<uint8_t>());
            } else {
                out = out - bitCast<Lane>(in.out);
            }
        }
    };
    OKPCV_INLINE void take(const Partials& partials) {
        uint64_t out = 0;
        if constexpr (kBytes) {
            out = sumLanes(partials.out) / 255;
        } else if constexpr (sizeof(T) == 2) {
            static_assert(holdsBlock<T, Lane>(1));
            out = sumWidened(widenLow<uint32_t>(partials.out) + widenHigh<uint32_t>(partials.out));
        } else {
            out = sumWidened(partials.out);
        }
        count_ += partials.lanes - static_cast<int64_t>(out);
    }
    int64_t total() const { return count_; }

  private:
    int64_t count_ = 0;
};

// Where every pixel takes part they need no counting.
template <class T, class Selection, bool kSquares>
struct MomentReduction {
    static constexpr bool kCounts = !std::is_same_v<Selection, EveryPixel>;
    using Element = T;
    static constexpr int kStepPixels = kMomentPixels<T>;
    static constexpr int kStepsPerBlock = kMomentSteps<T>;
    struct Partials {
        typename Totals<T, kSquares>::Partials totals;
        typename Count<T>::Partials count;
    };

    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<T> v) const {
        partials.totals.add(vector, in.orZero(v));
        if constexpr (kCounts) partials.count.add(in);
    }
    OKPCV_INLINE void take(const Partials& partials) {
        totals.take(partials.totals);
        if constexpr (kCounts) count.take(partials.count);
    }
    int64_t selected(Size size) const { return kCounts ? count.total() : size.width * size.height; }

    Totals<T, kSquares> totals;
    Count<T> count;
};

// The sum of (x - shift)^2 over a float image.
struct DeviationReduction {
    using Element = float;
    static constexpr int kStepPixels = kMomentPixels<float>;
    static constexpr int kStepsPerBlock = kMomentSteps<float>;
    using Partials = DoubleSum::Partials;

    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<float> v) const {
        const Vec<float> selected = in.orElse(v, shift);
        const Vec<double> wideShift = widenLow<double>(shift);
        const Vec<double> low = widenLow<double>(selected) - wideShift;
        const Vec<double> high = widenHigh<double>(selected) - wideShift;
        partials.add(vector, low * low, high * high);
    }
    OKPCV_INLINE void take(const Partials& partials) { sum.take(partials); }

    Vec<float> shift;
    DoubleSum sum;
};

// The same over integers, from their exact sums: sum x^2 - 2 shift sum x + count shift^2. The shift is a mean
// that is large against the deviation, so it is above 0.95: of integers x^2 >= x, and the variance is at
// least mean - mean^2. Above 0.5 a float is a multiple of 2^-24, so that 2^48 times the result is an integer.
double deviationsAbout(float shift, uint64_t sum, uint128_t squares, int64_t count) {
    const auto scaled = static_cast<int64_t>(shift * 0x1p24F);
    const int128_t deviations = static_cast<int128_t>(squares << 48) -
                                (static_cast<int128_t>(sum) * scaled << 25) +
                                static_cast<int128_t>(scaled) * scaled * count;
    return static_cast<double>(deviations) * 0x1p-48;
}

struct Moments {
    double mean = 0, stdDev = 0;
};

// Both are 0 where no pixel is selected.
template <class Selection, class T, int Channels>
Moments momentsOf(Size size, const Selection& selection, const Values<T, Channels>& values) {
    MomentReduction<T, Selection, true> reduction;
    reduceRows(size, reduction, selection, values);
    const int64_t count = reduction.selected(size);
    if (count == 0) return {};

    const auto n = static_cast<double>(count);
    const double r = 1.0 / n;
    const double mean = static_cast<double>(reduction.totals.sum()) * r;
    const double meanOfSquares = r * static_cast<double>(reduction.totals.squareSum());
    const double stdDev = std::sqrt(std::fabs(meanOfSquares - mean * mean));
    if (!(mean * mean * 0.05 > stdDev * stdDev)) return {mean, stdDev};

    // The difference has lost its digits.
    const auto shift = static_cast<float>(mean);
    double deviations;
    if constexpr (kIsFloat<T>) {
        DeviationReduction second{broadcast(shift), {}};
        reduceRows(size, second, selection, values);
        deviations = second.sum.total();
    } else {
        deviations = deviationsAbout(shift, reduction.totals.sum(), reduction.totals.squareSum(), count);
    }
    return {mean, std::sqrt(deviations / n)};
}

// The same mean without the squares.
template <class Selection, class T, int Channels>
double meanOf(Size size, const Selection& selection, const Values<T, Channels>& values) {
    MomentReduction<T, Selection, false> reduction;
    reduceRows(size, reduction, selection, values);
    const int64_t count = reduction.selected(size);
    if (count == 0) return 0;
    return static_cast<double>(reduction.totals.sum()) * (1.0 / static_cast<double>(count));
}

// Writes what is asked for.
template <class Selection, class T, int Channels>
void writeMeanStdDev(Size size, const Selection& selection, const Values<T, Channels>& values, double* pMean,
                     double* pStdDev) {
    if (pStdDev != nullptr) {
        const Moments moments = momentsOf(size, selection, values);
        *pStdDev = moments.stdDev;
        if (pMean != nullptr) *pMean = moments.mean;
    } else if (pMean != nullptr) {
        *pMean = meanOf(size, selection, values);
    }
}

template <class T, int Channels>
okpStatus meanStdDev(Image<const T, Channels> src, RoiSize roiSize, int32_t coi, double* pMean,
                     double* pStdDev) {
    const Checks checks = checkSource(src, roiSize, coi);
    if (checks.failed()) return checks.status();

    writeMeanStdDev(roiSize, EveryPixel{}, Values<T, Channels>(src, coi), pMean, pStdDev);
    return okpStatusOk;
}

template <class T, int Channels>
okpStatus meanStdDevMasked(Image<const T, Channels> src, Image<const uint8_t> mask, RoiSize roiSize,
                           int32_t coi, double* pMean, double* pStdDev) {
    const Checks checks = checkSource(src, mask, roiSize, coi);
    if (checks.failed()) return checks.status();

    writeMeanStdDev(roiSize, MaskedPixels{mask}, Values<T, Channels>(src, coi), pMean, pStdDev);
    return okpStatusOk;
}

template <class T, int Channels>
okpStatus meanMasked(Image<const T, Channels> src, Image<const uint8_t> mask, RoiSize roiSize, int32_t coi,
                     double* pMean) {
    const Checks checks = checkSource(src, mask, roiSize, coi, pMean);
    if (checks.failed()) return checks.status();

    MomentReduction<T, MaskedPixels, false> reduction;
    reduceRows(roiSize, reduction, MaskedPixels{mask}, Values<T, Channels>(src, coi));
    const auto sum = static_cast<double>(reduction.totals.sum());
    const int64_t count = reduction.selected(roiSize);
    *pMean = count == 0 ? 0.0 : sum / static_cast<double>(count);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define MEAN_C1MR(NAME, T)                                                                                  \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   double* pMean) {                                                                         \
        return meanMasked<T, 1>({pSrc, srcStep}, {pMask, maskStep}, roiSize, 1, pMean);                     \
    }
#define MEAN_C3CMR(NAME, T)                                                                                 \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   int32_t coi, double* pMean) {                                                            \
        return meanMasked<T, 3>({pSrc, srcStep}, {pMask, maskStep}, roiSize, coi, pMean);                   \
    }
#define MEAN_STD_DEV_C1R(NAME, T)                                                                     \
    okpStatus NAME(const T* pSrc, int32_t srcStep, RoiSize roiSize, double* pMean, double* pStdDev) { \
        return meanStdDev<T, 1>({pSrc, srcStep}, roiSize, 1, pMean, pStdDev);                         \
    }
#define MEAN_STD_DEV_C1MR(NAME, T)                                                                          \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   double* pMean, double* pStdDev) {                                                        \
        return meanStdDevMasked<T, 1>({pSrc, srcStep}, {pMask, maskStep}, roiSize, 1, pMean, pStdDev);      \
    }
#define MEAN_STD_DEV_C3CR(NAME, T)                                                              \
    okpStatus NAME(const T* pSrc, int32_t srcStep, RoiSize roiSize, int32_t coi, double* pMean, \
                   double* pStdDev) {                                                           \
        return meanStdDev<T, 3>({pSrc, srcStep}, roiSize, coi, pMean, pStdDev);                 \
    }
#define MEAN_STD_DEV_C3CMR(NAME, T)                                                                         \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   int32_t coi, double* pMean, double* pStdDev) {                                           \
        return meanStdDevMasked<T, 3>({pSrc, srcStep}, {pMask, maskStep}, roiSize, coi, pMean, pStdDev);    \
    }

MEAN_C1MR(okpiMean_8u_C1MR, uint8_t)
MEAN_C1MR(okpiMean_16u_C1MR, uint16_t)
MEAN_C1MR(okpiMean_32f_C1MR, float)
MEAN_C3CMR(okpiMean_8u_C3CMR, uint8_t)
MEAN_C3CMR(okpiMean_16u_C3CMR, uint16_t)
MEAN_C3CMR(okpiMean_32f_C3CMR, float)

MEAN_STD_DEV_C1R(okpiMean_StdDev_8u_C1R, uint8_t)
MEAN_STD_DEV_C1R(okpiMean_StdDev_16u_C1R, uint16_t)
MEAN_STD_DEV_C1R(okpiMean_StdDev_32f_C1R, float)
MEAN_STD_DEV_C1MR(okpiMean_StdDev_8u_C1MR, uint8_t)
MEAN_STD_DEV_C1MR(okpiMean_StdDev_16u_C1MR, uint16_t)
MEAN_STD_DEV_C1MR(okpiMean_StdDev_32f_C1MR, float)
MEAN_STD_DEV_C3CR(okpiMean_StdDev_8u_C3CR, uint8_t)
MEAN_STD_DEV_C3CR(okpiMean_StdDev_16u_C3CR, uint16_t)
MEAN_STD_DEV_C3CR(okpiMean_StdDev_32f_C3CR, float)
MEAN_STD_DEV_C3CMR(okpiMean_StdDev_8u_C3CMR, uint8_t)
MEAN_STD_DEV_C3CMR(okpiMean_StdDev_16u_C3CMR, uint16_t)
MEAN_STD_DEV_C3CMR(okpiMean_StdDev_32f_C3CMR, float)
