// The size queries and initialisers of dilation and erosion. One spec layout serves both operations, both
// generations and all types; the buffer depends on the type.
#include <algorithm>
#include <cstdint>

#include "core/area.h"
#include "core/checks.h"
#include "morph/bits.h"
#include "morph/engine.h"
#include "morph/spec.h"
#include "okpcv/morph.h"

namespace okpcv::morph {
namespace {

// The elements of a mask have numbers of 32 bits.
Checks& checkMaskArea(Checks& checks, Size mask) {
    return checks.fit32(mask.width, mask.height)
        .require(mask.height < 1 || mask.width <= INT32_MAX / mask.height, okpStatusSizeTooLarge);
}

// Bytes of the buffer: an image of the region's size and what the mask reaches beyond it, or the engine's
// scratch memory when that is larger. False when it does not fit 64 bits.
bool bufferBytes(Size roi, Size mask, DataTypeCode type, int channels, int64_t& bytes) {
    const auto maskWidth = static_cast<int32_t>(mask.width), maskHeight = static_cast<int32_t>(mask.height);
    Area scratch;
    int64_t elementBytes = 1;
    if (type == DataType1u) {
        layOutBitScratch(scratch, BitSizes(maskWidth, maskHeight, roi.width));
    } else {
        elementBytes = type == DataType8u ? 1 : type == DataType32f ? 4 : 2;
        layOutScratch(scratch, Sizes(maskWidth, maskHeight, roi.width, channels, elementBytes));
    }
    int64_t image = 0;
    const bool fits =
        scratch.fits() &&
        multiplyChecked(roi.width + (mask.width & ~int64_t{1}), roi.height + mask.height - 1, image) &&
        multiplyChecked(image, elementBytes * channels, image) && addChecked(image, 31, image) &&
        addChecked(image / 32 * 32, 64, image);
    bytes = std::max(image, scratch.bytes());
    return fits;
}

okpStatus getSizes(RoiSize roiSize, RoiSize maskSize, DataTypeCode type, int channels, int32_t* pSpecSize,
                   int32_t* pBufferSize) {
    const Size roi = roiSize, mask = maskSize;
    Checks checks;
    checks.pointers(pSpecSize, pBufferSize).size(roi).size(mask);
    checkMaskArea(checks, mask);
    if (checks.failed()) return checks.status();

    const int64_t spec = specBytes(mask.width, mask.height, kSpecFixedBytes);
    int64_t buffer = 0;
    checks.require(bufferBytes(roi, mask, type, channels, buffer), okpStatusSizeTooLarge).fit32(spec, buffer);
    if (checks.failed()) return checks.status();
    *pSpecSize = static_cast<int32_t>(spec);
    *pBufferSize = static_cast<int32_t>(buffer);
    return okpStatusOk;
}

okpStatus init(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize, MorphSpec* pSpec, uint8_t* pBuffer) {
    const Size roi = roiSize, mask = maskSize;
    Checks checks;
    checks.pointers(pMask, pSpec, pBuffer).size(roi).size(mask);
    checkMaskArea(checks, mask);
    if (checks.failed()) return checks.status();
    initSpec(pSpec, pMask, maskSize.width, maskSize.height, roiSize.width);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv::morph

using namespace okpcv;
using namespace okpcv::morph;

#define GET_SIZE(NAME, TYPE, CHANNELS)                                                            \
    okpStatus NAME(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize, int32_t* pBufferSize) { \
        return getSizes(roiSize, maskSize, TYPE, CHANNELS, pSpecSize, pBufferSize);               \
    }
#define INIT(NAME)                                                                            \
    okpStatus NAME(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize, MorphSpec* pSpec, \
                   uint8_t* pBuffer) {                                                        \
        return init(roiSize, pMask, maskSize, pSpec, pBuffer);                                \
    }

GET_SIZE(okpiMorphologyBorderGetSize_8u_C1R, DataType8u, 1)
GET_SIZE(okpiMorphologyBorderGetSize_8u_C3R, DataType8u, 3)
GET_SIZE(okpiMorphologyBorderGetSize_8u_C4R, DataType8u, 4)
GET_SIZE(okpiMorphologyBorderGetSize_16u_C1R, DataType16u, 1)
GET_SIZE(okpiMorphologyBorderGetSize_16s_C1R, DataType16s, 1)
GET_SIZE(okpiMorphologyBorderGetSize_32f_C1R, DataType32f, 1)
GET_SIZE(okpiMorphologyBorderGetSize_32f_C3R, DataType32f, 3)
GET_SIZE(okpiMorphologyBorderGetSize_32f_C4R, DataType32f, 4)
GET_SIZE(okpiMorphologyBorderGetSize_1u_C1R, DataType1u, 1)

INIT(okpiMorphologyBorderInit_8u_C1R)
INIT(okpiMorphologyBorderInit_8u_C3R)
INIT(okpiMorphologyBorderInit_8u_C4R)
INIT(okpiMorphologyBorderInit_16u_C1R)
INIT(okpiMorphologyBorderInit_16s_C1R)
INIT(okpiMorphologyBorderInit_32f_C1R)
INIT(okpiMorphologyBorderInit_32f_C3R)
INIT(okpiMorphologyBorderInit_32f_C4R)
INIT(okpiMorphologyBorderInit_1u_C1R)

okpStatus okpiErodeGetSpecSize_L(RoiSizeL roiSize, RoiSizeL maskSize, int64_t* pSpecSize) {
    const Size roi = roiSize, mask = maskSize;
    Checks checks;
    checks.pointers(pSpecSize).fit32(roi.width, roi.height).size(roi).size(mask);
    checkMaskArea(checks, mask);
    if (checks.failed()) return checks.status();
    *pSpecSize = specBytes(mask.width, mask.height, kSpecFixedBytesL);
    return okpStatusOk;
}

okpStatus okpiErodeGetBufferSize_L(RoiSizeL roiSize, RoiSizeL maskSize, DataTypeCode dataType,
                                   int32_t numChannels, int64_t* pBufferSize) {
    const Size roi = roiSize, mask = maskSize;
    Checks checks;
    checks.pointers(pBufferSize)
        .fit32(roi.width, roi.height)
        .size(roi)
        .size(mask)
        .require(dataType == DataType1u || dataType == DataType8u || dataType == DataType16u ||
                     dataType == DataType16s || dataType == DataType32f,
                 okpStatusBadDataType)
        .require(numChannels == 1 || numChannels == 3 || numChannels == 4, okpStatusBadNumChannels);
    checkMaskArea(checks, mask);
    if (checks.failed()) return checks.status();
    int64_t bytes = 0;
    if (!bufferBytes(roi, mask, dataType, numChannels, bytes)) return okpStatusSizeTooLarge;
    *pBufferSize = std::max(*pBufferSize, bytes);
    return okpStatusOk;
}

okpStatus okpiErodeInit_L(RoiSizeL roiSize, const uint8_t* pMask, RoiSizeL maskSize, MorphSpec* pSpec) {
    const Size roi = roiSize, mask = maskSize;
    Checks checks;
    checks.pointers(pMask, pSpec).size(roi).size(mask).fit32(roi.width, roi.height);
    checkMaskArea(checks, mask);
    if (checks.failed()) return checks.status();
    initSpec(pSpec, pMask, static_cast<int32_t>(mask.width), static_cast<int32_t>(mask.height),
             static_cast<int32_t>(roi.width));
    return okpStatusOk;
}

okpStatus okpiDilateGetSpecSize_L(RoiSizeL roiSize, RoiSizeL maskSize, int64_t* pSpecSize) {
    return okpiErodeGetSpecSize_L(roiSize, maskSize, pSpecSize);
}
okpStatus okpiDilateGetBufferSize_L(RoiSizeL roiSize, RoiSizeL maskSize, DataTypeCode dataType,
                                    int32_t numChannels, int64_t* pBufferSize) {
    return okpiErodeGetBufferSize_L(roiSize, maskSize, dataType, numChannels, pBufferSize);
}
okpStatus okpiDilateInit_L(RoiSizeL roiSize, const uint8_t* pMask, RoiSizeL maskSize, MorphSpec* pSpec) {
    return okpiErodeInit_L(roiSize, pMask, maskSize, pSpec);
}
