// Flood fill by gradient: recolours the pixels that are reached from the seed in steps between neighbours
// whose values differ little. The engine and its sources stand in scan_fill.h.
//
// The result depends on the order in which pixels are reached, so the order is fixed. The stack never
// overflows: every segment on it owns a pixel, and the 16 bytes per pixel that the size query counts for it
// hold a segment of 12.
#include "segment/flood_fill.h"
#include "segment/mapped_region.h"

namespace okpcv {
namespace {

// The bytes that the size query reports; more than it can report where they would not fit 64 bits.
int64_t bufferBytes(RoiSize size) {
    const int64_t pixels = int64_t{size.width} * size.height;
    if (pixels > INT32_MAX) return pixels;
    return (int64_t{size.width} + 2) * (int64_t{size.height} + 2) + 16 * pixels + 64;
}

// Pixels belong when their values are near those of the neighbours that see them.
template <class T, int C, Connectivity kConnectivity>
class Gradient {
  public:
    static constexpr int kLanes = Vec<T>::lanes;
    // Beyond a run's ends anything may be reached from another row.
    static constexpr int32_t kRejectedBeyond = 0;

    Gradient(Image<const T, C> image, int32_t width, const Pixel<T, C>& minDelta, const Pixel<T, C>& maxDelta)
        : image_(image),
          width_(width),
          minDelta_(Pixels<T, C>::repeated(minDelta)),
          maxDelta_(Pixels<T, C>::repeated(maxDelta)) {}

    OKPCV_INLINE uint32_t follow(int32_t y, int32_t x, int32_t fromX, int count) const {
        return nearBits(y, x, y, fromX, count);
    }
    OKPCV_INLINE bool allFollow(int32_t y, int32_t x, int32_t fromX) const {
        const T* const candidates = pixel(y, x);
        const T* const neighbours = pixel(y, fromX);
        return allPixels<T, C>([&](int i) {
            return compare(candidates + i * C * kLanes, neighbours + i * C * kLanes, Whole{});
        });
    }
    OKPCV_INLINE uint32_t reached(int32_t y, int32_t x, int count, int32_t fromRow, Span from) const {
        if constexpr (kConnectivity == Connectivity::Four) return nearBits(y, x, fromRow, x, count);
        const bool inside = x > 0 && width_ - x > kLanes;
        uint32_t bits = 0;
        for (int32_t shift = -1; shift <= 1; ++shift) {
            // Only those whose neighbour lies inside the span.
            const int32_t first = std::max(from.left - (x + shift), 0);
            const int32_t end = std::min(from.right - (x + shift) + 1, count);
            if (inside) {
                const auto near = compare(pixel(y, x), pixel(fromRow, x + shift), Whole{});
                bits |= pixelBits<T, C>(near) & ~lowBits(first) & lowBits(std::max(end, 0));
            } else if (first < end) {
                bits |= nearBits(y, x + first, fromRow, x + first + shift, end - first) << first;
            }
        }
        return bits;
    }

  private:
    const T* pixel(int32_t y, int32_t x) const { return image_.row(y) + int64_t{x} * C; }

    // Which of the `count` pixels from (x, y) on are near those from (fromX, fromY) on.
    OKPCV_INLINE uint32_t nearBits(int32_t y, int32_t x, int32_t fromY, int32_t fromX, int count) const {
        const T* const candidates = pixel(y, x);
        const T* const neighbours = pixel(fromY, fromX);
        const auto near = width_ - std::max(x, fromX) >= kLanes
                              ? compare(candidates, neighbours, Whole{})
                              : compare(candidates, neighbours, Part{count * C});
        return pixelBits<T, C>(near) & lowBits(count);
    }
    template <class Extent>
    OKPCV_INLINE Pixels<T, C> compare(const T* candidates, const T* neighbours, Extent extent) const {
        const auto c = Pixels<T, C>::load(candidates, extent);
        const auto n = Pixels<T, C>::load(neighbours, extent);
        return c.map(isNear, n, minDelta_, maxDelta_);
    }
    // n - minDelta <= c <= n + maxDelta. Saturation moves the bounds only beyond all values of the type.
    static OKPCV_INLINE Vec<T> isNear(Vec<T> c, Vec<T> n, Vec<T> minDelta, Vec<T> maxDelta) {
        if constexpr (kIsFloat<T>) {
            return greaterEqual(c, n - minDelta) & lessEqual(c, n + maxDelta);
        } else {
            return greaterEqual(c, subSaturated(n, minDelta)) & lessEqual(c, addSaturated(n, maxDelta));
        }
    }

    Image<const T, C> image_;
    int32_t width_;
    Pixels<T, C> minDelta_, maxDelta_;
};

template <class T, int C, Connectivity kConnectivity>
okpStatus floodFillGradient(Image<T, C> image, RoiSize size, PixelPoint seed, const T* newVal,
                            const T* minDelta, const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {
    const okpStatus status = checkFloodFill(image, size, seed, pRegion, pBuffer, newVal, minDelta, maxDelta);
    if (status != okpStatusOk) return status;

    const auto newValue = Pixel<T, C>::at(newVal);
    const Gradient<T, C, kConnectivity> rule(image, size.width, Pixel<T, C>::at(minDelta),
                                             Pixel<T, C>::at(maxDelta));
    const FilledRegion filled =
        fillMapped<kConnectivity>(image, size, seed, rule, newValue, pBuffer, bufferBytes(size));
    *pRegion = regionRecord(filled, newValue);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiFloodFillGetSize_Grad(RoiSize roiSize, int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize).size(roiSize);
    if (checks.failed()) return checks.status();
    checks.fit32(bufferBytes(roiSize));
    if (checks.failed()) return checks.status();
    *pBufferSize = static_cast<int32_t>(bufferBytes(roiSize));
    return okpStatusOk;
}

#define FLOOD_FILL_GRADIENT_C1(NAME, T, CONNECTIVITY)                                                        \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, T newVal, T minDelta,     \
                   T maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {                                   \
        return floodFillGradient<T, 1, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, &newVal, &minDelta, \
                                                     &maxDelta, pRegion, pBuffer);                           \
    }

#define FLOOD_FILL_GRADIENT_C3(NAME, T, CONNECTIVITY)                                                      \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, const T* newVal,        \
                   const T* minDelta, const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {       \
        return floodFillGradient<T, 3, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, newVal, minDelta, \
                                                     maxDelta, pRegion, pBuffer);                          \
    }

FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad4Con_8u_C1IR, uint8_t, Connectivity::Four)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad4Con_8u_C3IR, uint8_t, Connectivity::Four)
FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad4Con_16u_C1IR, uint16_t, Connectivity::Four)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad4Con_16u_C3IR, uint16_t, Connectivity::Four)
FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad4Con_32f_C1IR, float, Connectivity::Four)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad4Con_32f_C3IR, float, Connectivity::Four)

FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad8Con_8u_C1IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad8Con_8u_C3IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad8Con_16u_C1IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad8Con_16u_C3IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_GRADIENT_C1(okpiFloodFill_Grad8Con_32f_C1IR, float, Connectivity::Eight)
FLOOD_FILL_GRADIENT_C3(okpiFloodFill_Grad8Con_32f_C3IR, float, Connectivity::Eight)
