// Peak finding: the positions of local extrema of a response image, in raster order. Responses are sparse:
// most vectors fail the threshold, so what counts is reading the image and one comparison per vector. Only
// vectors with a candidate look at their neighbours, eight loads and as many maxima, minima or both.
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "okpcv/features.h"

namespace okpcv {
namespace {

constexpr int32_t kWholeNeighbourhood = 0;
constexpr int32_t kCross = 1;

// |v| > threshold. The magnitude of the most negative integer is no integer, so those compare on both sides.
struct FloatThreshold {
    explicit FloatThreshold(float threshold) : threshold_(broadcast(threshold)) {}
    OKPCV_INLINE Vec<float> operator()(Vec<float> v) const { return greater(abs(v), threshold_); }
    Vec<float> threshold_;
};
struct IntegerThreshold {
    explicit IntegerThreshold(int32_t threshold)
        : threshold_(broadcast(threshold < 0 ? -1 : threshold)),
          mirrored_(broadcast(threshold < 0 ? 1 : -threshold)) {}
    OKPCV_INLINE Vec<int32_t> operator()(Vec<int32_t> v) const {
        return greater(v, threshold_) | less(v, mirrored_);
    }
    Vec<int32_t> threshold_, mirrored_;
};

// Whether v equals the extremum of its neighbourhood: exactly for integers, within the smallest normal number
// for floats. An infinity differs from itself by NaN and so is never a peak.
OKPCV_INLINE Vec<float> equalsExtremum(Vec<float> v, Vec<float> extremum) {
    return lessEqual(abs(v - extremum), broadcast(std::numeric_limits<float>::min()));
}
OKPCV_INLINE Vec<int32_t> equalsExtremum(Vec<int32_t> v, Vec<int32_t> extremum) {
    return equal(v, extremum);
}

// One row above, at and below the centre.
template <class T>
struct Rows {
    const T *above, *centre, *below;
};

// A candidate's neighbours and itself folded by `pick`.
template <bool kWhole, class T, class Extent, class Pick>
OKPCV_INLINE Vec<T> extremum(Vec<T> v, Rows<T> rows, Extent extent, Pick pick) {
    // Neighbours are the first operand, which loses when it is NaN.
    Vec<T> best = pick(load(rows.centre - 1, extent), v);
    best = pick(load(rows.centre + 1, extent), best);
    const T* const others[] = {rows.above, rows.below};
    for (const T* row : others) {
        best = pick(load(row, extent), best);
        if constexpr (kWhole) {
            best = pick(load(row - 1, extent), best);
            best = pick(load(row + 1, extent), best);
        }
    }
    return best;
}

// The lanes of the candidates that are peaks, one bit each.
template <bool kWhole, class T, class Extent>
OKPCV_INLINE uint32_t peakLanes(Vec<T> v, Vec<T> candidates, Rows<T> rows, Extent extent) {
    const Vec<T> positive = greater(v, zeros<T>());
    Vec<T> peaks = zeros<T>();
    if (anyBit(candidates & positive)) {
        const auto pick = [](Vec<T> a, Vec<T> b) { return max(a, b); };
        peaks = equalsExtremum(v, extremum<kWhole>(v, rows, extent, pick)) & positive;
    }
    if (anyBit(andNot(candidates, positive))) {
        const auto pick = [](Vec<T> a, Vec<T> b) { return min(a, b); };
        peaks = peaks | andNot(equalsExtremum(v, extremum<kWhole>(v, rows, extent, pick)), positive);
    }
    return laneBits(peaks & candidates);
}

class PeakList {
  public:
    PeakList(PixelPoint* points, int32_t capacity, int32_t* count)
        : points_(points), capacity_(capacity), count_(count) {
        *count_ = 0;
    }
    // Appends one peak per set bit; false once the list is full.
    bool append(uint32_t lanes, int64_t x, int64_t y) {
        for (; lanes != 0; lanes &= lanes - 1) {
            points_[*count_] = {static_cast<int32_t>(x + __builtin_ctz(lanes)), static_cast<int32_t>(y)};
            if (++*count_ == capacity_) return false;
        }
        return true;
    }

  private:
    PixelPoint* points_;
    int32_t capacity_;
    int32_t* count_;
};

template <bool kWhole, class T, class Threshold>
void scan(Image<const T> src, Size size, int64_t border, Threshold threshold, PeakList list) {
    constexpr int lanes = Vec<T>::lanes;
    constexpr int kBlock = 4;  // vectors that share one test for candidates
    const int64_t end = size.width - border;
    for (int64_t y = border; y < size.height - border; ++y) {
        const T* const centre = src.row(y);
        // Peaks of the vector at column x; false once the list is full.
        const auto search = [&](int64_t x, auto extent) {
            const Vec<T> v = load(centre + x, extent);
            Vec<T> candidates = threshold(v);
            if (!anyBit(candidates)) return true;
            uint32_t peaks = peakLanes<kWhole>(v, candidates,
                                               {src.row(y - 1) + x, centre + x, src.row(y + 1) + x}, extent);
            // The lanes beyond a part are no pixels.
            if (end - x < lanes) peaks &= (1U << (end - x)) - 1;
            return list.append(peaks, x, y);
        };
        int64_t x = border;
        for (; x + kBlock * lanes <= end; x += kBlock * lanes) {
            Vec<T> any = threshold(load(centre + x));
            for (int i = 1; i < kBlock; ++i) any = any | threshold(load(centre + x + i * lanes));
            if (!anyBit(any)) continue;
            for (int i = 0; i < kBlock; ++i) {
                if (!search(x + i * lanes, Whole{})) return;
            }
        }
        for (; x + lanes <= end; x += lanes) {
            if (!search(x, Whole{})) return;
        }
        if (x < end && !search(x, Part{static_cast<int>(end - x)})) return;
    }
}

template <class T, class Threshold>
okpStatus findPeaks(Image<const T> src, RoiSize roiSize, Threshold threshold, PixelPoint* peaks,
                    int32_t capacity, int32_t* count, int32_t norm, int32_t border, const uint8_t* buffer) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, peaks, count, buffer)
        .size(size)
        .require(capacity >= 1 && border >= 1, okpStatusBadSize)
        .require(border <= size.width / 2 && border <= size.height / 2, okpStatusBadSize)
        .steps(size, src)
        .require(norm == kWholeNeighbourhood || norm == kCross, okpStatusBadArgument);
    if (checks.failed()) return checks.status();

    const PeakList list(peaks, capacity, count);
    if (norm == kWholeNeighbourhood) {
        scan<true>(src, size, border, threshold, list);
    } else {
        scan<false>(src, size, border, threshold, list);
    }
    return okpStatusOk;
}

okpStatus peakBufferSize(int32_t roiWidth, int32_t* size) {
    Checks checks;
    checks.pointers(size).require(roiWidth >= 1, okpStatusBadSize);
    if (checks.failed()) return checks.status();
    const int64_t bytes = (int64_t{32} * roiWidth + 160) / 128 * 128 + 32;
    if (bytes > INT32_MAX) return okpStatusSizeTooLarge;
    *size = static_cast<int32_t>(bytes);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiFindPeaks3x3GetBufferSize_32f_C1R(int32_t roiWidth, int32_t* pBufferSize) {
    return peakBufferSize(roiWidth, pBufferSize);
}

okpStatus okpiFindPeaks3x3GetBufferSize_32s_C1R(int32_t roiWidth, int32_t* pBufferSize) {
    return peakBufferSize(roiWidth, pBufferSize);
}

okpStatus okpiFindPeaks3x3_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize roiSize, float threshold,
                                   PixelPoint* pPeak, int32_t maxPeakCount, int32_t* pPeakCount, int32_t norm,
                                   int32_t border, uint8_t* pBuffer) {
    return findPeaks<float>({pSrc, srcStep}, roiSize, FloatThreshold(threshold), pPeak, maxPeakCount,
                            pPeakCount, norm, border, pBuffer);
}

okpStatus okpiFindPeaks3x3_32s_C1R(const int32_t* pSrc, int32_t srcStep, RoiSize roiSize, int32_t threshold,
                                   PixelPoint* pPeak, int32_t maxPeakCount, int32_t* pPeakCount, int32_t norm,
                                   int32_t border, uint8_t* pBuffer) {
    return findPeaks<int32_t>({pSrc, srcStep}, roiSize, IntegerThreshold(threshold), pPeak, maxPeakCount,
                              pPeakCount, norm, border, pBuffer);
}
