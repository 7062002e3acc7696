// Plain flood fill: recolours the pixels that are connected to the seed through pixels of the seed's value.
// The engine, its sources and what bounds it stand in scan_fill.h.
//
// The stack never overflows the w * h * 6 + 32 bytes that the size query reports, which hold
// w * h / 2 + 2 segments at any address. A row of w pixels holds at most ceil(w / 2) runs, so for even w this
// is clear. For odd w > 1 only a row whose every other pixel is a run on the stack exceeds w / 2, by a half.
// Each of these runs was found from a run that has left the stack, in the row above or below; there, such
// runs and the gaps beside them leave room for at most w / 2 - 1/2 runs on the stack. Where a neighbouring
// row has just that many, it holds one such run of a single pixel, which is not enough to find all runs of
// the full row: then both its neighbours lack a half, a quarter for each of their own neighbours. Otherwise
// one neighbour lacks at least 3/2. So no full row's excess is left over. (For w = 1 the stack holds at most
// two.)
#include "segment/flood_fill.h"

namespace okpcv {
namespace {

template <class T, int C, Connectivity kConnectivity>
okpStatus floodFill(Image<T, C> image, RoiSize size, PixelPoint seed, const T* newVal, ConnectedComp* pRegion,
                    uint8_t* pBuffer) {
    const okpStatus status = checkFloodFill(image, size, seed, pRegion, pBuffer, newVal);
    if (status != okpStatusOk) return status;

    const auto newValue = Pixel<T, C>::at(newVal);
    const auto oldValue = Pixel<T, C>::at(image.row(seed.y) + int64_t{seed.x} * C);
    if (oldValue == newValue) return okpStatusOk;

    ValueRegion region(image, size.width, EqualTo(oldValue), newValue);
    SegmentStack stack(pBuffer, fillBufferBytes(size));
    *pRegion = regionRecord(scanFill<kConnectivity>(size, seed, stack, region), newValue);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiFloodFillGetSize(RoiSize roiSize, int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize).size(roiSize);
    if (checks.failed()) return checks.status();
    *pBufferSize = static_cast<int32_t>(fillBufferBytes(roiSize));
    return okpStatusOk;
}

#define FLOOD_FILL_C1(NAME, T, CONNECTIVITY)                                                                 \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, T newVal,                 \
                   ConnectedComp* pRegion, uint8_t* pBuffer) {                                               \
        return floodFill<T, 1, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, &newVal, pRegion, pBuffer); \
    }

#define FLOOD_FILL_C3(NAME, T, CONNECTIVITY)                                                                \
    okpStatus NAME(T* pImage, int32_t imageStep, RoiSize roiSize, PixelPoint seed, const T* newVal,         \
                   ConnectedComp* pRegion, uint8_t* pBuffer) {                                              \
        return floodFill<T, 3, CONNECTIVITY>({pImage, imageStep}, roiSize, seed, newVal, pRegion, pBuffer); \
    }

FLOOD_FILL_C1(okpiFloodFill_4Con_8u_C1IR, uint8_t, Connectivity::Four)
FLOOD_FILL_C3(okpiFloodFill_4Con_8u_C3IR, uint8_t, Connectivity::Four)
FLOOD_FILL_C1(okpiFloodFill_4Con_16u_C1IR, uint16_t, Connectivity::Four)
FLOOD_FILL_C3(okpiFloodFill_4Con_16u_C3IR, uint16_t, Connectivity::Four)
FLOOD_FILL_C1(okpiFloodFill_4Con_32s_C1IR, int32_t, Connectivity::Four)
FLOOD_FILL_C1(okpiFloodFill_4Con_32f_C1IR, float, Connectivity::Four)
FLOOD_FILL_C3(okpiFloodFill_4Con_32f_C3IR, float, Connectivity::Four)

FLOOD_FILL_C1(okpiFloodFill_8Con_8u_C1IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_C3(okpiFloodFill_8Con_8u_C3IR, uint8_t, Connectivity::Eight)
FLOOD_FILL_C1(okpiFloodFill_8Con_16u_C1IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_C3(okpiFloodFill_8Con_16u_C3IR, uint16_t, Connectivity::Eight)
FLOOD_FILL_C1(okpiFloodFill_8Con_32s_C1IR, int32_t, Connectivity::Eight)
FLOOD_FILL_C1(okpiFloodFill_8Con_32f_C1IR, float, Connectivity::Eight)
FLOOD_FILL_C3(okpiFloodFill_8Con_32f_C3IR, float, Connectivity::Eight)
