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
    return int64_t{size.width} * size.height <= fillBufferBytes(size);
}

// A new value inside the interval does not tell taken pixels from others. The fill then runs on a map of the
// pixels inside the interval, and what it reached is copied to the image.
template <class T, int C, Connectivity kConnectivity>
FilledRegion fillByMap(Image<T, C> image, RoiSize size, PixelPoint seed, const Interval<T, C>& interval,
                       const Pixel<T, C>& newValue, uint8_t* pBuffer) {
    constexpr uint8_t kInside = 1, kReached = 2;
    constexpr int lanes = Vec<T>::lanes;
    const Within<T, C> members = interval.members();
    const auto newValues = Pixels<T, C>::repeated(newValue);

    const Image<uint8_t> map{pBuffer, size.width};
    const int64_t mapBytes = int64_t{size.width} * size.height;
    SegmentStack stack(pBuffer + mapBytes, fillBufferBytes(size) - mapBytes, stackLimit(size));

    const auto markRow = [&](int32_t y) {
        const auto mark = [&](auto extent, int32_t x, int count) {
            const T* const p = image.row(y) + int64_t{x} * C;
            const uint32_t bits = pixelBits<T, C>(members(Pixels<T, C>::load(p, extent)));
            for (int i = 0; i < count; ++i) map.row(y)[x + i] = (bits >> i & 1) != 0 ? kInside : 0;
        };
        int32_t x = 0;
        for (; size.width - x >= lanes; x += lanes) mark(Whole{}, x, lanes);
        mark(Part{(size.width - x) * C}, x, size.width - x);
    };
    for (int32_t y = 0; y < size.height; ++y) markRow(y);

    ValueRegion region(map, size.width, EqualTo(Pixel<uint8_t, 1>{kInside}), Pixel<uint8_t, 1>{kReached});
    const FilledRegion filled = scanFill<kConnectivity>(size, seed, stack, region);
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
            if (map.row(y)[x] == kReached) fillPixels<T, C>(image.row(y) + int64_t{x} * C, 1, newValues);
        }
    }
    return filled;
}

template <class T, int C, Connectivity kConnectivity>
okpStatus floodFillRange(Image<T, C> image, RoiSize size, PixelPoint seed, const T* newVal, const T* minDelta,
                         const T* maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer) {
    const okpStatus status = checkFloodFill(image, size, seed, pRegion, pBuffer, newVal, minDelta, maxDelta);
    if (status != okpStatusOk) return status;

    const auto newValue = Pixel<T, C>::at(newVal);
    const Interval<T, C> interval(Pixel<T, C>::at(image.row(seed.y) + int64_t{seed.x} * C), minDelta,
                                  maxDelta);
    const bool needsMap = interval.contains(newValue);
    FilledRegion filled;
    if (needsMap && mapFits(size)) {
        filled = fillByMap<T, C, kConnectivity>(image, size, seed, interval, newValue, pBuffer);
    } else {
        ValueRegion region(image, size.width, interval.members(), newValue);
        SegmentStack stack(pBuffer, fillBufferBytes(size), needsMap ? 0 : stackLimit(size));
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
