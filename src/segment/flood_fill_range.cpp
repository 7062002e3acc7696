// Flood fill by range: recolours the pixels that are connected to the seed through pixels within a fixed
// interval around the seed's value. The engine, its sources and what bounds it stand in scan_fill.h.
#include "core/numbers.h"
#include "segment/flood_fill.h"

namespace okpcv {
namespace {

// Members: the pixels between two values in every channel.
template <class T, int C>
class Within {
  public:
    Within(const Pixel<T, C>& lower, const Pixel<T, C>& upper)
        : lower_(Pixels<T, C>::repeated(lower)), upper_(Pixels<T, C>::repeated(upper)) {}

    OKPCV_INLINE Pixels<T, C> operator()(const Pixels<T, C>& pixels) const {
        return pixels.map(
            [](Vec<T> p, Vec<T> low, Vec<T> high) { return greaterEqual(p, low) & lessEqual(p, high); },
            lower_, upper_);
    }

  private:
    Pixels<T, C> lower_, upper_;
};

template <class T, int C>
struct Interval {
    Pixel<T, C> lower, upper;

    Interval(const Pixel<T, C>& value, const T* minDelta, const T* maxDelta) {
        for (int c = 0; c < C; ++c) {
            const T v = value.channel[c];
            if constexpr (kIsFloat<T>) {
                lower.channel[c] = v - minDelta[c];
                upper.channel[c] = v + maxDelta[c];
            } else {
                lower.channel[c] = saturate<T>(int32_t{v} - minDelta[c]);
                upper.channel[c] = saturate<T>(int32_t{v} + maxDelta[c]);
            }
        }
    }

    bool contains(const Pixel<T, C>& pixel) const {
        bool inside = true;
        for (int c = 0; c < C; ++c) {
            inside = inside && lower.channel[c] <= pixel.channel[c] && pixel.channel[c] <= upper.channel[c];
        }
        return inside;
    }
    Within<T, C> members() const { return {lower, upper}; }
};

// The stack keeps the latest w * h / 4 runs only. A quotient of 1 fills the seed's run alone; one of 0
// belongs to images of two or three pixels, where there is nothing to forget.
int64_t stackLimit(RoiSize size) {
    const int64_t entries = int64_t{size.width} * size.height / 4;
    return entries == 0 ? INT64_MAX : entries == 1 ? 0 : entries;
}

// False only where the size query's number wraps.
bool mapFits(RoiSize size) {
    return PixelMap::words(size) < int64_t{fillBufferBytes(size)} / int64_t{sizeof(uint64_t)};
}

// The rule of a map: pixels in the interval belong, whatever pixels see them.
template <class T, int C>
class InInterval {
  public:
    static constexpr int kLanes = Vec<T>::lanes;
    static constexpr int32_t kRejectedBeyond = 1;

    InInterval(Image<const T, C> image, int32_t width, const Within<T, C>& members)
        : image_(image), width_(width), members_(members) {}

    OKPCV_INLINE uint32_t follow(int32_t y, int32_t x, int32_t, int count) const {
        const T* const p = image_.row(y) + int64_t{x} * C;
        const auto inside = width_ - x >= kLanes ? compare(p, Whole{}) : compare(p, Part{count * C});
        return pixelBits<T, C>(inside) & lowBits(count);
    }
    OKPCV_INLINE bool allFollow(int32_t y, int32_t x, int32_t) const {
        const T* const p = image_.row(y) + int64_t{x} * C;
        return allPixels<T, C>([&](int i) { return compare(p + i * C * kLanes, Whole{}); });
    }
    OKPCV_INLINE uint32_t reached(int32_t y, int32_t x, int count, int32_t, Span) const {
        return follow(y, x, x, count);
    }

  private:
    template <class Extent>
    OKPCV_INLINE Pixels<T, C> compare(const T* p, Extent extent) const {
        return members_(Pixels<T, C>::load(p, extent));
    }

    Image<const T, C> image_;
    int32_t width_;
    Within<T, C> members_;
};

template <class T, int C, Connectivity kConnectivity>
okpStatus floodFillRange(Image<T, C> image, RoiSize size, PixelPoint seed, const T* newVal, const T* minDelta,
                         const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {
    const okpStatus status = checkFloodFill(image, size, seed, pRegion, pBuffer, newVal, minDelta, maxDelta);
    if (status != okpStatusOk) return status;

    const auto newValue = Pixel<T, C>::at(newVal);
    const Interval<T, C> interval(Pixel<T, C>::at(image.row(seed.y) + int64_t{seed.x} * C), minDelta,
                                  maxDelta);
    const Within<T, C> members = interval.members();
    const int64_t bytes = fillBufferBytes(size);
    const int64_t limit = stackLimit(size);
    FilledRegion filled;
    if (!interval.contains(newValue)) {
        ValueRegion region(image, size.width, members, newValue);
        SegmentStack stack(pBuffer, bytes, limit);
        filled = scanFill<kConnectivity>(size, seed, stack, region);
    } else if (mapFits(size)) {
        // A new value inside the interval does not tell taken pixels from others.
        const InInterval<T, C> rule(image, size.width, members);
        filled = fillMapped<kConnectivity>(image, size, seed, rule, newValue, pBuffer, bytes, limit);
    } else {
        // No stack: only the seed's run.
        ValueRegion region(image, size.width, members, newValue);
        SegmentStack stack(pBuffer, 0);
        filled = scanFill<kConnectivity>(size, seed, stack, region);
    }
    *pRegion = regionRecord(filled, newValue);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define FLOOD_FILL_RANGE_C1(NAME, T, CONNECTIVITY)                                                        \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, T newVal, T minDelta,  \
                   T maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {                                \
        return floodFillRange<T, 1, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, &newVal, &minDelta, \
                                                  &maxDelta, pRegion, pBuffer);                           \
    }

#define FLOOD_FILL_RANGE_C3(NAME, T, CONNECTIVITY)                                                      \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, const T* newVal,     \
                   const T* minDelta, const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {    \
        return floodFillRange<T, 3, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, newVal, minDelta, \
                                                  maxDelta, pRegion, pBuffer);                          \
    }

FLOOD_FILL_RANGE_C1(okpiFloodFill_Range4Con_8u_C1IR, uint8_t, Connectivity::Four)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range4Con_8u_C3IR, uint8_t, Connectivity::Four)
FLOOD_FILL_RANGE_C1(okpiFloodFill_Range4Con_16u_C1IR, uint16_t, Connectivity::Four)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range4Con_16u_C3IR, uint16_t, Connectivity::Four)
FLOOD_FILL_RANGE_C1(okpiFloodFill_Range4Con_32f_C1IR, float, Connectivity::Four)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range4Con_32f_C3IR, float, Connectivity::Four)

FLOOD_FILL_RANGE_C1(okpiFloodFill_Range8Con_8u_C1IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range8Con_8u_C3IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_RANGE_C1(okpiFloodFill_Range8Con_16u_C1IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range8Con_16u_C3IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_RANGE_C1(okpiFloodFill_Range8Con_32f_C1IR, float, Connectivity::Eight)
FLOOD_FILL_RANGE_C3(okpiFloodFill_Range8Con_32f_C3IR, float, Connectivity::Eight)
