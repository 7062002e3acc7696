// Standard deviation inside a rectangle that moves with the pixel, from integral images. Eight values are
// read per pixel, whatever the size of the rectangle. Source: P. Viola and M. Jones, "Robust Real-Time Face
// Detection", International Journal of Computer Vision 57 (2004), section 5.
//
// Bound by arithmetic: per four pixels some 15 additions and conversions of doubles share two pipes in the
// 64-bit forms; the 32-bit form takes two roots of doubles.
#include <algorithm>

#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/integral.h"

namespace okpcv {
namespace {

// The sums in the windows whose upper and lower left corners begin at these elements. Integers wrap.
template <class T, class Extent>
OKPCV_INLINE Vec<T> windowSums(const T* top, const T* bottom, int64_t width, Extent extent) {
    const Vec<T> a = load(top, extent);
    const Vec<T> b = load(top + width, extent);
    const Vec<T> c = load(bottom, extent);
    const Vec<T> d = load(bottom + width, extent);
    return d - b - c + a;
}

// Calls kernel(extent, out, top, bottom, sqrTop, sqrBottom) for all pixels, four at a time.
template <class S, class Q, class D, class Kernel>
OKPCV_INLINE void mapWindows(Size size, PixelRect rect, Image<const S> src, Image<const Q> sqr, Image<D> dst,
                             const Kernel& kernel) {
    for (int64_t y = 0; y < size.height; ++y) {
        const int64_t top = y + rect.y;
        const int64_t bottom = top + rect.height;
        mapRow<Vec<D>::lanes>(size.width, kernel, dst.row(y), src.row(top) + rect.x, src.row(bottom) + rect.x,
                              sqr.row(top) + rect.x, sqr.row(bottom) + rect.x);
    }
}

template <class S, class Q, class D>
Checks check(Image<const S> src, Image<const Q> sqr, Image<D> dst, RoiSize roiSize, PixelRect rect) {
    const Size size = roiSize;
    const int64_t columnsRead = int64_t{rect.x} + rect.width + size.width;
    Checks checks;
    checks.pointers(src.data, dst.data, sqr.data)
        .size(size)
        .require(src.step >= columnsRead * src.elementBytes, okpStatusBadStep)
        .require(sqr.step >= columnsRead * sqr.elementBytes, okpStatusBadStep)
        .rowsFit(size, dst)
        .stepsAreMultiples(sqr, dst, src)
        .require(rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1, okpStatusBadSize);
    return checks;
}

// n is the number of pixels in a window: rounded to single precision, its reciprocal taken in double.
template <class S>
okpStatus rectStdDev(Image<const S> src, Image<const double> sqr, Image<float> dst, RoiSize roiSize,
                     PixelRect rect) {
    const Checks checks = check(src, sqr, dst, roiSize, rect);
    if (checks.failed()) return checks.status();

    const Size size = roiSize;
    const auto n = static_cast<float>(int64_t{rect.width} * rect.height);
    const Vec<double> k = broadcast(1.0 / static_cast<double>(n));
    const auto variance = [k](Vec<double> sum, Vec<double> squareSum) {
        const Vec<double> mean = sum * k;
        return squareSum * k - mean * mean;
    };
    const auto kernel = [&](auto extent, float* out, const S* top, const S* bottom, const double* sqrTop,
                            const double* sqrBottom) {
        constexpr int kHalf = Vec<double>::lanes;
        const Vec<S> sums = windowSums(top, bottom, rect.width, extent);
        const Vec<double> low = windowSums(sqrTop, sqrBottom, rect.width, extent);
        const Vec<double> high =
            windowSums(sqrTop + kHalf, sqrBottom + kHalf, rect.width, extent.from(kHalf));
        const Vec<float> v =
            narrow(variance(widenLow<double>(sums), low), variance(widenHigh<double>(sums), high));
        // The order of the operands makes NaN 0.
        store(out, sqrt(max(v, zeros<float>())), extent);
    };
    mapWindows(size, rect, src, sqr, dst, kernel);
    return okpStatusOk;
}

okpStatus rectStdDevScaled(Image<const int32_t> src, Image<const int32_t> sqr, Image<int32_t> dst,
                           RoiSize roiSize, PixelRect rect, int32_t scaleFactor) {
    const Checks checks = check(src, sqr, dst, roiSize, rect);
    if (checks.failed()) return checks.status();

    const Size size = roiSize;
    const Vec<float> r = broadcast(1.0F / static_cast<float>(int64_t{rect.width} * rect.height));
    // Beyond these exponents every result is the same: 0, or the largest there is.
    const Vec<double> scale = broadcast(powerOfTwo(-std::clamp(scaleFactor, -1000, 1000)));
    const auto scaled = [scale](Vec<double> v) {
        return min(sqrt(v) * scale + broadcast(0.5), broadcast<double>(kLargest<int32_t>));
    };
    const auto kernel = [&](auto extent, int32_t* out, const int32_t* top, const int32_t* bottom,
                            const int32_t* sqrTop, const int32_t* sqrBottom) {
        const Vec<float> mean = toFloat(windowSums(top, bottom, rect.width, extent)) * r;
        const Vec<float> meanOfSquares = toFloat(windowSums(sqrTop, sqrBottom, rect.width, extent)) * r;
        const Vec<float> v = max(meanOfSquares - mean * mean, zeros<float>());
        store(out, narrowTruncated(scaled(widenLow<double>(v)), scaled(widenHigh<double>(v))), extent);
    };
    mapWindows(size, rect, src, sqr, dst, kernel);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiRectStdDev_32f_C1R(const float* pSrc, int32_t srcStep, const double* pSqr, int32_t sqrStep,
                                 float* pDst, int32_t dstStep, RoiSize roiSize, PixelRect rect) {
    return rectStdDev<float>({pSrc, srcStep}, {pSqr, sqrStep}, {pDst, dstStep}, roiSize, rect);
}
okpStatus okpiRectStdDev_32s32f_C1R(const int32_t* pSrc, int32_t srcStep, const double* pSqr, int32_t sqrStep,
                                    float* pDst, int32_t dstStep, RoiSize roiSize, PixelRect rect) {
    return rectStdDev<int32_t>({pSrc, srcStep}, {pSqr, sqrStep}, {pDst, dstStep}, roiSize, rect);
}
okpStatus okpiRectStdDev_32s_C1RSfs(const int32_t* pSrc, int32_t srcStep, const int32_t* pSqr,
                                    int32_t sqrStep, int32_t* pDst, int32_t dstStep, RoiSize roiSize,
                                    PixelRect rect, int32_t scaleFactor) {
    return rectStdDevScaled({pSrc, srcStep}, {pSqr, sqrStep}, {pDst, dstStep}, roiSize, rect, scaleFactor);
}
