// Norms over the selected pixels: of an image, |a|; of a difference, |a - b|; and of a difference relative to
// the second image. Inf is the largest of these values, L1 their sum, L2 the root of the sum of their
// squares.
//
// Bound by memory once the images leave the caches: 1 to 9 bytes per pixel, up to 25 of three channels,
// against 5 to 25 vector operations per 16 bytes of source, which run at about one byte per cycle and source
// at worst.
#include <cmath>
#include <limits>

#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/reduce.h"
#include "core/simd.h"
#include "okpcv/stats.h"

namespace okpcv {
namespace {

// What is accumulated from the values, none of them negative, and the norm that the total (for a relative
// norm, the quotient of two totals) gives.
struct Inf {
    template <class T>
    using Accumulator = Largest<T>;
    static double finish(double total) { return total; }
};
struct L1 {
    template <class T>
    using Accumulator = Sum<T>;
    static double finish(double total) { return total; }
};
struct L2 {
    template <class T>
    using Accumulator = SquareSum<T>;
    static double finish(double total) { return std::sqrt(total); }
};

template <class T>
OKPCV_INLINE Vec<T> magnitude(Vec<T> v) {
    if constexpr (kIsFloat<T>) {
        return abs(v);
    } else {
        return v;
    }
}
template <class T>
OKPCV_INLINE Vec<T> distance(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return abs(a - b);
    } else {
        return absDiff(a, b);
    }
}

// Of an image, or of a difference when given two values per pixel.
template <class T, class Norm>
struct NormReduction {
    using Element = T;
    static constexpr int kStepPixels = kReductionPixels<T>;
    static constexpr int kStepsPerBlock = kReductionSteps<T>;
    using Accumulator = typename Norm::template Accumulator<T>;
    using Partials = typename Accumulator::Partials;

    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<T> a) const {
        partials.add(vector, in.orZero(magnitude(a)));
    }
    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<T> a, Vec<T> b) const {
        partials.add(vector, in.orZero(distance(a, b)));
    }
    OKPCV_INLINE void take(const Partials& partials) { accumulator.take(partials); }

    Accumulator accumulator;
};

template <class T, class Norm>
struct NormRelReduction {
    using Element = T;
    static constexpr int kStepPixels = kReductionPixels<T>;
    static constexpr int kStepsPerBlock = kReductionSteps<T>;
    using Accumulator = typename Norm::template Accumulator<T>;
    struct Partials {
        typename Accumulator::Partials difference, divisor;
    };

    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<T> a, Vec<T> b) const {
        partials.difference.add(vector, in.orZero(distance(a, b)));
        partials.divisor.add(vector, in.orZero(magnitude(b)));
    }
    OKPCV_INLINE void take(const Partials& partials) {
        difference.take(partials.difference);
        divisor.take(partials.divisor);
    }

    Accumulator difference, divisor;
};

// The single-source form tests the source's step completely before the mask's.
template <class Norm, class T, int Channels>
okpStatus norm(Image<const T, Channels> src, Image<const uint8_t> mask, RoiSize roiSize, int32_t coi,
               double* pNorm) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, mask.data, pNorm).size(size).steps(size, src).rowsFit(size, mask);
    if (Channels > 1) checks.channelOfInterest(coi);
    if (checks.failed()) return checks.status();

    NormReduction<T, Norm> reduction;
    reduceRows(size, reduction, MaskedPixels{mask}, Values<T, Channels>(src, coi));
    *pNorm = Norm::finish(static_cast<double>(reduction.accumulator.total()));
    return okpStatusOk;
}

template <class T, int Channels>
Checks checkDifference(Image<const T, Channels> src1, Image<const T, Channels> src2,
                       Image<const uint8_t> mask, Size size, int32_t coi, const double* pNorm) {
    Checks checks;
    checks.pointers(src1.data, src2.data, mask.data, pNorm)
        .size(size)
        .rowsFit(size, src1, src2, mask)
        .stepsAreMultiples(src1, src2);
    if (Channels > 1) checks.channelOfInterest(coi);
    return checks;
}

template <class Norm, class T, int Channels>
okpStatus normDiff(Image<const T, Channels> src1, Image<const T, Channels> src2, Image<const uint8_t> mask,
                   RoiSize roiSize, int32_t coi, double* pNorm) {
    const Checks checks = checkDifference(src1, src2, mask, roiSize, coi, pNorm);
    if (checks.failed()) return checks.status();

    NormReduction<T, Norm> reduction;
    reduceRows(roiSize, reduction, MaskedPixels{mask}, Values<T, Channels>(src1, coi),
               Values<T, Channels>(src2, coi));
    *pNorm = Norm::finish(static_cast<double>(reduction.accumulator.total()));
    return okpStatusOk;
}

template <class Norm, class T, int Channels>
okpStatus normRel(Image<const T, Channels> src1, Image<const T, Channels> src2, Image<const uint8_t> mask,
                  RoiSize roiSize, int32_t coi, double* pNorm) {
    const Checks checks = checkDifference(src1, src2, mask, roiSize, coi, pNorm);
    if (checks.failed()) return checks.status();

    NormRelReduction<T, Norm> reduction;
    reduceRows(roiSize, reduction, MaskedPixels{mask}, Values<T, Channels>(src1, coi),
               Values<T, Channels>(src2, coi));
    const auto difference = static_cast<double>(reduction.difference.total());
    const auto divisor = static_cast<double>(reduction.divisor.total());
    if (divisor == 0.0) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        *pNorm = difference == 0.0 ? kNegativeNaN : difference > 0.0 ? infinity : -infinity;
        return okpStatusDivByZeroWarning;
    }
    *pNorm = Norm::finish(difference / divisor);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define NORM_C1MR(NAME, T, NORM)                                                                            \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   double* pNorm) {                                                                         \
        return norm<NORM, T, 1>({pSrc, srcStep}, {pMask, maskStep}, roiSize, 1, pNorm);                     \
    }
#define NORM_C3CMR(NAME, T, NORM)                                                                           \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   int32_t coi, double* pNorm) {                                                            \
        return norm<NORM, T, 3>({pSrc, srcStep}, {pMask, maskStep}, roiSize, coi, pNorm);                   \
    }
// FUNCTION is normDiff or normRel.
#define NORM_OF_TWO_C1MR(NAME, FUNCTION, T, NORM)                                                            \
    okpStatus NAME(const T* pSrc1, int32_t src1Step, const T* pSrc2, int32_t src2Step, const uint8_t* pMask, \
                   int32_t maskStep, RoiSize roiSize, double* pNorm) {                                       \
        return FUNCTION<NORM, T, 1>({pSrc1, src1Step}, {pSrc2, src2Step}, {pMask, maskStep}, roiSize, 1,     \
                                    pNorm);                                                                  \
    }
#define NORM_OF_TWO_C3CMR(NAME, FUNCTION, T, NORM)                                                           \
    okpStatus NAME(const T* pSrc1, int32_t src1Step, const T* pSrc2, int32_t src2Step, const uint8_t* pMask, \
                   int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm) {                          \
        return FUNCTION<NORM, T, 3>({pSrc1, src1Step}, {pSrc2, src2Step}, {pMask, maskStep}, roiSize, coi,   \
                                    pNorm);                                                                  \
    }

NORM_C1MR(okpiNorm_Inf_8u_C1MR, uint8_t, Inf)
NORM_C1MR(okpiNorm_Inf_16u_C1MR, uint16_t, Inf)
NORM_C1MR(okpiNorm_Inf_32f_C1MR, float, Inf)
NORM_C1MR(okpiNorm_L1_8u_C1MR, uint8_t, L1)
NORM_C1MR(okpiNorm_L1_16u_C1MR, uint16_t, L1)
NORM_C1MR(okpiNorm_L1_32f_C1MR, float, L1)
NORM_C1MR(okpiNorm_L2_8u_C1MR, uint8_t, L2)
NORM_C1MR(okpiNorm_L2_16u_C1MR, uint16_t, L2)
NORM_C1MR(okpiNorm_L2_32f_C1MR, float, L2)

NORM_C3CMR(okpiNorm_Inf_8u_C3CMR, uint8_t, Inf)
NORM_C3CMR(okpiNorm_Inf_16u_C3CMR, uint16_t, Inf)
NORM_C3CMR(okpiNorm_Inf_32f_C3CMR, float, Inf)
NORM_C3CMR(okpiNorm_L1_8u_C3CMR, uint8_t, L1)
NORM_C3CMR(okpiNorm_L1_16u_C3CMR, uint16_t, L1)
NORM_C3CMR(okpiNorm_L1_32f_C3CMR, float, L1)
NORM_C3CMR(okpiNorm_L2_8u_C3CMR, uint8_t, L2)
NORM_C3CMR(okpiNorm_L2_16u_C3CMR, uint16_t, L2)
NORM_C3CMR(okpiNorm_L2_32f_C3CMR, float, L2)

NORM_OF_TWO_C1MR(okpiNormDiff_Inf_8u_C1MR, normDiff, uint8_t, Inf)
NORM_OF_TWO_C1MR(okpiNormDiff_Inf_16u_C1MR, normDiff, uint16_t, Inf)
NORM_OF_TWO_C1MR(okpiNormDiff_Inf_32f_C1MR, normDiff, float, Inf)
NORM_OF_TWO_C1MR(okpiNormDiff_L1_8u_C1MR, normDiff, uint8_t, L1)
NORM_OF_TWO_C1MR(okpiNormDiff_L1_16u_C1MR, normDiff, uint16_t, L1)
NORM_OF_TWO_C1MR(okpiNormDiff_L1_32f_C1MR, normDiff, float, L1)
NORM_OF_TWO_C1MR(okpiNormDiff_L2_8u_C1MR, normDiff, uint8_t, L2)
NORM_OF_TWO_C1MR(okpiNormDiff_L2_16u_C1MR, normDiff, uint16_t, L2)
NORM_OF_TWO_C1MR(okpiNormDiff_L2_32f_C1MR, normDiff, float, L2)

NORM_OF_TWO_C3CMR(okpiNormDiff_Inf_8u_C3CMR, normDiff, uint8_t, Inf)
NORM_OF_TWO_C3CMR(okpiNormDiff_Inf_16u_C3CMR, normDiff, uint16_t, Inf)
NORM_OF_TWO_C3CMR(okpiNormDiff_Inf_32f_C3CMR, normDiff, float, Inf)
NORM_OF_TWO_C3CMR(okpiNormDiff_L1_8u_C3CMR, normDiff, uint8_t, L1)
NORM_OF_TWO_C3CMR(okpiNormDiff_L1_16u_C3CMR, normDiff, uint16_t, L1)
NORM_OF_TWO_C3CMR(okpiNormDiff_L1_32f_C3CMR, normDiff, float, L1)
NORM_OF_TWO_C3CMR(okpiNormDiff_L2_8u_C3CMR, normDiff, uint8_t, L2)
NORM_OF_TWO_C3CMR(okpiNormDiff_L2_16u_C3CMR, normDiff, uint16_t, L2)
NORM_OF_TWO_C3CMR(okpiNormDiff_L2_32f_C3CMR, normDiff, float, L2)

NORM_OF_TWO_C1MR(okpiNormRel_Inf_8u_C1MR, normRel, uint8_t, Inf)
NORM_OF_TWO_C1MR(okpiNormRel_Inf_16u_C1MR, normRel, uint16_t, Inf)
NORM_OF_TWO_C1MR(okpiNormRel_Inf_32f_C1MR, normRel, float, Inf)
NORM_OF_TWO_C1MR(okpiNormRel_L1_8u_C1MR, normRel, uint8_t, L1)
NORM_OF_TWO_C1MR(okpiNormRel_L1_16u_C1MR, normRel, uint16_t, L1)
NORM_OF_TWO_C1MR(okpiNormRel_L1_32f_C1MR, normRel, float, L1)
NORM_OF_TWO_C1MR(okpiNormRel_L2_8u_C1MR, normRel, uint8_t, L2)
NORM_OF_TWO_C1MR(okpiNormRel_L2_16u_C1MR, normRel, uint16_t, L2)
NORM_OF_TWO_C1MR(okpiNormRel_L2_32f_C1MR, normRel, float, L2)

NORM_OF_TWO_C3CMR(okpiNormRel_Inf_8u_C3CMR, normRel, uint8_t, Inf)
NORM_OF_TWO_C3CMR(okpiNormRel_Inf_16u_C3CMR, normRel, uint16_t, Inf)
NORM_OF_TWO_C3CMR(okpiNormRel_Inf_32f_C3CMR, normRel, float, Inf)
NORM_OF_TWO_C3CMR(okpiNormRel_L1_8u_C3CMR, normRel, uint8_t, L1)
NORM_OF_TWO_C3CMR(okpiNormRel_L1_16u_C3CMR, normRel, uint16_t, L1)
NORM_OF_TWO_C3CMR(okpiNormRel_L1_32f_C3CMR, normRel, float, L1)
NORM_OF_TWO_C3CMR(okpiNormRel_L2_8u_C3CMR, normRel, uint8_t, L2)
NORM_OF_TWO_C3CMR(okpiNormRel_L2_16u_C3CMR, normRel, uint16_t, L2)
NORM_OF_TWO_C3CMR(okpiNormRel_L2_32f_C3CMR, normRel, float, L2)
