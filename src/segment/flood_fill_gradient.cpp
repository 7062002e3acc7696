// Flood fill by gradient: recolours the pixels that are reached from the seed in steps between neighbours
// whose values differ little. The engine and its sources stand in scan_fill.h.
//
// The result depends on the order in which pixels are reached, so the order is fixed. The stack never
// overflows: every segment on it owns a pixel, and the 16 bytes per pixel that the size query counts for it
// hold a segment of 12.
#include <cstring>

#include "segment/flood_fill.h"

namespace okpcv {
namespace {

// The bytes that the size query reports; more than it can report where they would not fit 64 bits.
int64_t bufferBytes(RoiSize size) {
    const int64_t pixels = int64_t{size.width} * size.height;
    if (pixels > INT32_MAX) return pixels;
    return (int64_t{size.width} + 2) * (int64_t{size.height} + 2) + 16 * pixels + 64;
}

// Pixels are taken in a map, one byte each, and written when nothing is compared with them any more.
template <class T, int C, Connectivity kConnectivity>
class GradientRegion {
  public:
    // Beyond a run's ends anything may be reached from another row.
    static constexpr int32_t kRejectedBeyond = 0;

    GradientRegion(Image<T, C> image, RoiSize size, const Pixel<T, C>& newValue, const Pixel<T, C>& minDelta,
                   const Pixel<T, C>& maxDelta, uint8_t* map)
        : image_(image),
          width_(size.width),
          map_{map, size.width},
          newValue_(Pixels<T, C>::repeated(newValue)),
          minDelta_(Pixels<T, C>::repeated(minDelta)),
          maxDelta_(Pixels<T, C>::repeated(maxDelta)) {}

    Span seedRun(PixelPoint seed) {
        topMapped_ = bottomMapped_ = seed.y;
        clearMap(seed.y);
        return take(seed.y, seed.x);
    }

    template <class Found>
    OKPCV_INLINE void takeRuns(int32_t y, Span where, int32_t fromRow, Span from, const Found& found) {
        prepareMap(y);
        const uint8_t* const map = map_.row(y);
        int32_t x = where.left;
        while (x <= where.right) {
            const int32_t count = std::min(where.right - x + 1, kLanes);
            uint32_t accepted = freeBits(map, x, count);
            if (accepted != 0) accepted &= reachedBits(y, x, count, fromRow, from);
            if (accepted == 0) {
                x += count;
                continue;
            }
            const Span run = take(y, x + std::countr_zero(accepted));
            found(run);
            // The pixel behind the run is not tried from the row that is searched from.
            if (where.right - run.right < 2) return;
            x = run.right + 2;
        }
    }

    void leave(int32_t y, Span span) {
        fillPixels<T, C>(pixel(y, span.left), span.right - span.left + 1, newValue_);
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;
    using Unsigned =
        std::conditional_t<sizeof(T) == 1, uint8_t, std::conditional_t<sizeof(T) == 2, uint16_t, uint32_t>>;

    T* pixel(int32_t y, int32_t x) const { return image_.row(y) + int64_t{x} * C; }

    // Takes the pixel and the run around it in which every pixel follows from its neighbour.
    Span take(int32_t y, int32_t x) {
        uint8_t* const map = map_.row(y);
        const int32_t left = runLeft(y, x);
        const int32_t right = runRight(y, x);
        fillPixels<uint8_t, 1>(map + left, right - left + 1, Pixels<uint8_t, 1>{broadcast<uint8_t>(1)});
        return {left, right};
    }
    int32_t runLeft(int32_t y, int32_t x) const {
        while (x > 0) {
            const int32_t from = std::max(x - kLanes, 0);
            const int count = x - from;
            const uint32_t accepted =
                freeBits(map_.row(y), from, count) & nearBits(y, from, y, from + 1, count);
            const uint32_t others = ~accepted & lowBits(count);
            if (others != 0) return from + static_cast<int32_t>(std::bit_width(others));
            x = from;
        }
        return 0;
    }
    int32_t runRight(int32_t y, int32_t x) const {
        while (x + 1 < width_) {
            const int count = std::min(width_ - 1 - x, kLanes);
            const uint32_t accepted = freeBits(map_.row(y), x + 1, count) & nearBits(y, x + 1, y, x, count);
            const uint32_t others = ~accepted & lowBits(count);
            if (others != 0) return x + std::countr_zero(others);
            x += count;
        }
        return x;
    }

    // Which of `count` pixels follow from the pixels `from` of the row beside them.
    OKPCV_INLINE uint32_t reachedBits(int32_t y, int32_t x, int count, int32_t fromRow, Span from) const {
        if constexpr (kConnectivity == Connectivity::Four) return nearBits(y, x, fromRow, x, count);
        uint32_t bits = 0;
        for (int32_t shift = -1; shift <= 1; ++shift) {
            // Only those whose neighbour lies inside the span.
            const int32_t first = std::max(from.left - (x + shift), 0);
            const int32_t last = std::min(from.right - (x + shift), count - 1);
            if (first <= last) {
                bits |= nearBits(y, x + first, fromRow, x + first + shift, last - first + 1) << first;
            }
        }
        return bits;
    }

    // Which of the `count` pixels at (x, y) follow from those at (fromX, fromY).
    OKPCV_INLINE uint32_t nearBits(int32_t y, int32_t x, int32_t fromY, int32_t fromX, int count) const {
        const auto bits = [&](auto extent) {
            const auto candidates = Pixels<T, C>::load(pixel(y, x), extent);
            const auto neighbours = Pixels<T, C>::load(pixel(fromY, fromX), extent);
            return pixelBits<T, C>(candidates.map(isNear, neighbours, minDelta_, maxDelta_)) & lowBits(count);
        };
        return width_ - std::max(x, fromX) >= kLanes ? bits(Whole{}) : bits(Part{count * C});
    }
    // n - minDelta <= c <= n + maxDelta. Saturation moves the bounds only beyond all values of the type.
    static OKPCV_INLINE Vec<T> isNear(Vec<T> c, Vec<T> n, Vec<T> minDelta, Vec<T> maxDelta) {
        if constexpr (kIsFloat<T>) {
            return greaterEqual(c, n - minDelta) & lessEqual(c, n + maxDelta);
        } else {
            return greaterEqual(c, subSaturated(n, minDelta)) & lessEqual(c, addSaturated(n, maxDelta));
        }
    }

    // Which of `count` pixels are not taken.
    OKPCV_INLINE uint32_t freeBits(const uint8_t* map, int32_t x, int count) const {
        const auto bits = [&](auto extent) {
            return laneBits(equal(loadAs<Unsigned>(map + x, extent), zeros<Unsigned>())) & lowBits(count);
        };
        return width_ - x >= kLanes ? bits(Whole{}) : bits(Part{count});
    }

    // Rows of the map are cleared when the fill first comes to them: its rows grow from the seed's one by
    // one.
    void prepareMap(int32_t y) {
        if (y < topMapped_) {
            topMapped_ = y;
            clearMap(y);
        } else if (y > bottomMapped_) {
            bottomMapped_ = y;
            clearMap(y);
        }
    }
    void clearMap(int32_t y) { std::memset(map_.row(y), 0, static_cast<size_t>(width_)); }

    Image<T, C> image_;
    int32_t width_;
    Image<uint8_t> map_;
    int32_t topMapped_ = 0, bottomMapped_ = 0;
    Pixels<T, C> newValue_, minDelta_, maxDelta_;
};

template <class T, int C, Connectivity kConnectivity>
okpStatus floodFillGradient(Image<T, C> image, RoiSize size, PixelPoint seed, const T* newVal,
                            const T* minDelta, const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {
    const okpStatus status = checkFloodFill(image, size, seed, pRegion, pBuffer, newVal, minDelta, maxDelta);
    if (status != okpStatusOk) return status;

    const auto newValue = Pixel<T, C>::at(newVal);
    const int64_t mapBytes = int64_t{size.width} * size.height;
    GradientRegion<T, C, kConnectivity> region(image, size, newValue, Pixel<T, C>::at(minDelta),
                                               Pixel<T, C>::at(maxDelta), pBuffer);
    SegmentStack stack(pBuffer + mapBytes, bufferBytes(size) - mapBytes);
    *pRegion = regionRecord(scanFill<kConnectivity>(size, seed, stack, region), newValue);
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
