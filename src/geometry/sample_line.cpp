// Line sampling: the pixels of a digital straight line, one per step along its longer axis, by integer error
// accumulation (Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4,
// 1965). Bound by the dependence of each error on the one before, about four cycles a sample; the step itself
// is chosen without a branch.
#include <cstring>

#include "core/checks.h"
#include "core/image.h"
#include "okpcv/geometry.h"

namespace okpcv {
namespace {

constexpr bool isInside(PixelPoint p, RoiSize size) {
    return p.x >= 0 && p.x < size.width && p.y >= 0 && p.y < size.height;
}

template <class T, int Channels>
okpStatus sampleLine(Image<const T, Channels> src, RoiSize roiSize, T* dst, PixelPoint from, PixelPoint to) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst)
        .size(size)
        .steps(size, src)
        .require(isInside(from, roiSize) && isInside(to, roiSize), okpStatusOutOfRange);
    if (checks.failed()) return checks.status();

    const int64_t dx = int64_t{to.x} - from.x;
    const int64_t dy = int64_t{to.y} - from.y;
    const int64_t lengthX = dx < 0 ? -dx : dx;
    const int64_t lengthY = dy < 0 ? -dy : dy;
    const int64_t stepX = dx >= 0 ? src.pixelBytes : -src.pixelBytes;
    const int64_t stepY = dy >= 0 ? src.step : -src.step;
    const bool alongY = lengthX <= lengthY;
    const int64_t major = alongY ? lengthY : lengthX;
    const int64_t minor = alongY ? lengthX : lengthY;
    const int64_t majorStep = alongY ? stepY : stepX;
    const int64_t minorStep = alongY ? stepX : stepY;
    // Two points of one region are at most a 32-bit count of samples apart, so this is a guard.
    if (major >= INT32_MAX) return okpStatusLineTooLong;

    const char* p = reinterpret_cast<const char*>(src.row(from.y) + int64_t{from.x} * Channels);
    int64_t error = major;
    for (int64_t i = 0;; ++i) {
        std::memcpy(dst + i * Channels, p, src.pixelBytes);
        if (i == major) break;
        error -= 2 * minor;
        const int64_t crossed = error < 0 ? -1 : 0;  // a mask
        error += 2 * major & crossed;
        p += majorStep + (minorStep & crossed);
    }
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define SAMPLE_LINE(NAME, T, CHANNELS)                                                       \
    okpStatus NAME(const T* pSrc, int32_t srcStep, RoiSize roiSize, T* pDst, PixelPoint pt1, \
                   PixelPoint pt2) {                                                         \
        return sampleLine<T, CHANNELS>({pSrc, srcStep}, roiSize, pDst, pt1, pt2);            \
    }

SAMPLE_LINE(okpiSampleLine_8u_C1R, uint8_t, 1)
SAMPLE_LINE(okpiSampleLine_8u_C3R, uint8_t, 3)
SAMPLE_LINE(okpiSampleLine_16u_C1R, uint16_t, 1)
SAMPLE_LINE(okpiSampleLine_16u_C3R, uint16_t, 3)
SAMPLE_LINE(okpiSampleLine_32f_C1R, float, 1)
SAMPLE_LINE(okpiSampleLine_32f_C3R, float, 3)
