// Minimum and maximum of the selected pixels and the places of their first occurrence.
//
// One pass keeps the extrema of every lane and asks after each row whether one of them beat the best so far;
// the row that did is scanned for the place at the end. Bound by memory: 1 to 13 bytes per pixel against 3 to
// 12 vector operations per 16 bytes of source.
#include <bit>
#include <limits>

#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/reduce.h"
#include "core/rows.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "okpcv/stats.h"
#include "stats/source_checks.h"

namespace okpcv {
namespace {

// What the search starts from: the values that no pixel can be on the wrong side of.
template <class T>
constexpr T kAbove = kIsFloat<T> ? std::numeric_limits<T>::infinity() : kLargest<T>;
template <class T>
constexpr T kBelow = kIsFloat<T> ? -std::numeric_limits<T>::infinity() : kSmallest<T>;

// Lanes that do not take part become NaN among floats and an extreme among integers: none beats another lane.
template <class T, bool kMin, bool kMax>
struct ExtremaReduction {
    using Element = T;
    static constexpr int kStepPixels = kReductionPixels<T>;
    static constexpr int kVectors = kStepPixels / Vec<T>::lanes;
    struct Partials {
        Vec<T> smallest[kVectors], largest[kVectors];
    };

    template <class In>
    OKPCV_INLINE void add(Partials& partials, int vector, In in, Vec<T> v) const {
        if constexpr (kMin) {
            partials.smallest[vector] = min(in.orOnes(v), partials.smallest[vector]);
        }
        if constexpr (kMax) {
            const Vec<T> selected = kIsFloat<T> ? in.orOnes(v) : in.orZero(v);
            partials.largest[vector] = max(selected, partials.largest[vector]);
        }
    }
};

template <class T>
struct Extremum {
    T value;
    int64_t row = 0;        // of its first occurrence, if it was found
    bool improved = false;  // whether a pixel beat the value that the search started from
};

template <class T, bool kMin, bool kMax, class Selection, int Channels>
void search(Size size, const Selection& selection, const Values<T, Channels>& values, Extremum<T>& minimum,
            Extremum<T>& maximum) {
    using Reduction = ExtremaReduction<T, kMin, kMax>;
    typename Reduction::Partials partials;
    unrolled<Reduction::kVectors>([&](auto vector) OKPCV_INLINE_LAMBDA {
        partials.smallest[vector] = broadcast(minimum.value);
        partials.largest[vector] = broadcast(maximum.value);
    });
    for (int64_t y = 0; y < size.height; ++y) {
        reduceRow(Reduction{}, partials, 0, size.width, selection.row(y), values.row(y));
        if constexpr (kMin) {
            Vec<T> smallest = partials.smallest[0];
            for (const Vec<T> v : partials.smallest) smallest = min(smallest, v);
            if (anyBit(less(smallest, broadcast(minimum.value)))) minimum = {minLane(smallest), y, true};
        }
        if constexpr (kMax) {
            Vec<T> largest = partials.largest[0];
            for (const Vec<T> v : partials.largest) largest = max(largest, v);
            if (anyBit(greater(largest, broadcast(maximum.value)))) maximum = {maxLane(largest), y, true};
        }
    }
}

// The first selected pixel with this value, from a row on; (-1, 0) if there is none.
template <class T, class Selection, int Channels>
PixelPoint locate(Size size, const Selection& selection, const Values<T, Channels>& values, T value,
                  int64_t fromRow) {
    const Vec<T> wanted = broadcast(value);
    for (int64_t y = fromRow; y < size.height; ++y) {
        const auto in = selection.row(y);
        const auto row = values.row(y);
        for (int64_t x = 0; x < size.width; x += Vec<T>::lanes) {
            const auto matches = [&](auto extent) {
                const Vec<T> equals = equal(row.load(x, extent), wanted);
                return laneBits(in.template lanes<T>(x, extent).orZero(equals));
            };
            const int64_t left = size.width - x;
            const uint32_t bits =
                left >= Vec<T>::lanes ? matches(Whole{}) : matches(Part{static_cast<int>(left)});
            if (bits != 0) return {static_cast<int32_t>(x + std::countr_zero(bits)), static_cast<int32_t>(y)};
        }
    }
    return {-1, 0};
}

bool isEmpty(const EveryPixel&, Size) {
    return false;
}
bool isEmpty(const MaskedPixels& selection, Size size) {
    for (int64_t y = 0; y < size.height; ++y) {
        Vec<uint8_t> any = zeros<uint8_t>();
        mapRow<Vec<uint8_t>::lanes>(
            size.width, [&any](auto extent, const uint8_t* mask) { any = any | load(mask, extent); },
            selection.mask.row(y));
        if (anyBit(any)) return false;
    }
    return true;
}

// Writes what is asked for of one extremum.
template <class T, class Selection, int Channels>
void write(Size size, const Selection& selection, const Values<T, Channels>& values, Extremum<T> extremum,
           float* pValue, PixelPoint* pIndex) {
    // A float zero is reported with the sign of its first occurrence, whichever lane it was found in.
    const bool isZero = kIsFloat<T> && extremum.value == 0;
    if (pIndex != nullptr || (isZero && pValue != nullptr)) {
        const PixelPoint place = locate(size, selection, values, extremum.value, extremum.row);
        if (isZero) extremum.value = values.row(place.y).at(place.x);
        if (pIndex != nullptr) *pIndex = place;
    }
    if (pValue != nullptr) *pValue = static_cast<float>(extremum.value);
}

template <class T, class Selection, int Channels>
okpStatus writeExtrema(Size size, const Selection& selection, const Values<T, Channels>& values, float* pMin,
                       float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {
    const bool wantsMin = pMin != nullptr || pMinIndex != nullptr;
    const bool wantsMax = pMax != nullptr || pMaxIndex != nullptr;
    Extremum<T> minimum{kAbove<T>};
    Extremum<T> maximum{kBelow<T>};
    if (wantsMin && wantsMax) {
        search<T, true, true>(size, selection, values, minimum, maximum);
    } else if (wantsMin) {
        search<T, true, false>(size, selection, values, minimum, maximum);
    } else if (wantsMax) {
        search<T, false, true>(size, selection, values, minimum, maximum);
    }
    if (!minimum.improved && !maximum.improved && isEmpty(selection, size)) {
        if (pMin != nullptr) *pMin = 0;
        if (pMax != nullptr) *pMax = 0;
        if (pMinIndex != nullptr) *pMinIndex = {0, 0};
        if (pMaxIndex != nullptr) *pMaxIndex = {0, 0};
        return okpStatusNoOperation;
    }
    write(size, selection, values, minimum, pMin, pMinIndex);
    write(size, selection, values, maximum, pMax, pMaxIndex);
    return okpStatusOk;
}

template <class T, int Channels>
okpStatus minMaxIndx(Image<const T, Channels> src, RoiSize roiSize, int32_t coi, float* pMin, float* pMax,
                     PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {
    const Checks checks = checkSource(src, roiSize, coi);
    if (checks.failed()) return checks.status();

    return writeExtrema(roiSize, EveryPixel{}, Values<T, Channels>(src, coi), pMin, pMax, pMinIndex,
                        pMaxIndex);
}

template <class T, int Channels>
okpStatus minMaxIndxMasked(Image<const T, Channels> src, Image<const uint8_t> mask, RoiSize roiSize,
                           int32_t coi, float* pMin, float* pMax, PixelPoint* pMinIndex,
                           PixelPoint* pMaxIndex) {
    const Checks checks = checkSource(src, mask, roiSize, coi);
    if (checks.failed()) return checks.status();

    return writeExtrema(roiSize, MaskedPixels{mask}, Values<T, Channels>(src, coi), pMin, pMax, pMinIndex,
                        pMaxIndex);
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define MIN_MAX_INDX_C1R(NAME, T)                                                               \
    okpStatus NAME(const T* pSrc, int32_t srcStep, RoiSize roiSize, float* pMin, float* pMax,   \
                   PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {                              \
        return minMaxIndx<T, 1>({pSrc, srcStep}, roiSize, 1, pMin, pMax, pMinIndex, pMaxIndex); \
    }
#define MIN_MAX_INDX_C1MR(NAME, T)                                                                           \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize,  \
                   float* pMin, float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {                 \
        return minMaxIndxMasked<T, 1>({pSrc, srcStep}, {pMask, maskStep}, roiSize, 1, pMin, pMax, pMinIndex, \
                                      pMaxIndex);                                                            \
    }
#define MIN_MAX_INDX_C3CR(NAME, T)                                                                         \
    okpStatus NAME(const T* pSrc, int32_t srcStep, RoiSize roiSize, int32_t coi, float* pMin, float* pMax, \
                   PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {                                         \
        return minMaxIndx<T, 3>({pSrc, srcStep}, roiSize, coi, pMin, pMax, pMinIndex, pMaxIndex);          \
    }
#define MIN_MAX_INDX_C3CMR(NAME, T)                                                                         \
    okpStatus NAME(const T* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, RoiSize roiSize, \
                   int32_t coi, float* pMin, float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex) {   \
        return minMaxIndxMasked<T, 3>({pSrc, srcStep}, {pMask, maskStep}, roiSize, coi, pMin, pMax,         \
                                      pMinIndex, pMaxIndex);                                                \
    }

MIN_MAX_INDX_C1R(okpiMinMaxIndx_8u_C1R, uint8_t)
MIN_MAX_INDX_C1R(okpiMinMaxIndx_16u_C1R, uint16_t)
MIN_MAX_INDX_C1R(okpiMinMaxIndx_32f_C1R, float)
MIN_MAX_INDX_C1MR(okpiMinMaxIndx_8u_C1MR, uint8_t)
MIN_MAX_INDX_C1MR(okpiMinMaxIndx_16u_C1MR, uint16_t)
MIN_MAX_INDX_C1MR(okpiMinMaxIndx_32f_C1MR, float)
MIN_MAX_INDX_C3CR(okpiMinMaxIndx_8u_C3CR, uint8_t)
MIN_MAX_INDX_C3CR(okpiMinMaxIndx_16u_C3CR, uint16_t)
MIN_MAX_INDX_C3CR(okpiMinMaxIndx_32f_C3CR, float)
MIN_MAX_INDX_C3CMR(okpiMinMaxIndx_8u_C3CMR, uint8_t)
MIN_MAX_INDX_C3CMR(okpiMinMaxIndx_16u_C3CMR, uint16_t)
MIN_MAX_INDX_C3CMR(okpiMinMaxIndx_32f_C3CMR, float)
