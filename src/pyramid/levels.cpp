// Sizes of pyramid levels, and the record that describes a pyramid (P. J. Burt, E. H. Adelson, "The Laplacian
// pyramid as a compact image code", 1983, for any rate from above 1 to 10).
#include <type_traits>

#include "core/area.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "okpcv/pyramid.h"
#include "pyramid/level_sizes.h"

namespace okpcv {
namespace {

// Sizes beyond the type become its largest.
template <class Roi>
Roi roiOf(int64_t width, int64_t height) {
    if constexpr (std::is_same_v<Roi, RoiSize>) {
        return {saturate<int32_t>(width), saturate<int32_t>(height)};
    } else {
        return {width, height};
    }
}

template <class Roi>
okpStatus downRoi(Roi srcRoi, Roi* dstRoi, float rate) {
    Checks checks;
    checks.pointers(dstRoi).size(srcRoi).require(isRate(rate), okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    const Size down = downSize(Size(srcRoi), rate);
    *dstRoi = roiOf<Roi>(down.width, down.height);
    return okpStatusOk;
}

template <class Roi>
okpStatus upRoi(Roi srcRoi, Roi* dstRoiMin, Roi* dstRoiMax, float rate) {
    Checks checks;
    checks.pointers(dstRoiMin, dstRoiMax).size(srcRoi).require(isRate(rate), okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    *dstRoiMin = roiOf<Roi>(smallestUpSize(srcRoi.width, rate), smallestUpSize(srcRoi.height, rate));
    *dstRoiMax = roiOf<Roi>(largestUpSize(srcRoi.width, rate), largestUpSize(srcRoi.height, rate));
    return okpStatusOk;
}

// Levels above level 0: as many as asked for, or as it takes to become 1 x 1.
int32_t levelCount(Size size, int32_t level, float rate) {
    int32_t count = 0;
    for (; count < level && (size.width > 1 || size.height > 1); ++count) size = downSize(size, rate);
    return count;
}

struct Bytes {
    int64_t record, buffer;
};

// Checks that the query and the initialiser share, which come to the same in either order.
Checks& checkLevels(Checks& checks, Size size, int32_t level, float rate) {
    return checks.size(size).require(level >= 1 && isRate(rate), okpStatusBadArgument);
}

// False when a size exceeds `largest`.
bool countBytes(Size size, int32_t levels, int64_t largest, Bytes& bytes) {
    const int64_t longer = size.width > size.height ? size.width : size.height;
    bytes.record = int64_t{levels} * 52 + 152;
    return bytes.record <= largest && multiplyChecked(longer, 8, bytes.buffer) && bytes.buffer <= largest;
}

template <class Count, class Roi>
okpStatus pyramidSizes(Count* pyramidSize, Count* bufferSize, int32_t level, Roi roi, float rate) {
    Checks checks;
    checkLevels(checks.pointers(pyramidSize, bufferSize), roi, level, rate);
    if (checks.failed()) return checks.status();
    Bytes bytes;
    if (!countBytes(roi, levelCount(roi, level, rate), kLargest<Count>, bytes)) return okpStatusSizeTooLarge;
    *pyramidSize = static_cast<Count>(bytes.record);
    *bufferSize = static_cast<Count>(bytes.buffer);
    return okpStatusOk;
}

// Takes at most 28 * levels + 87 bytes, and 40 * levels + 95 of the 64-bit record.
template <class Record, class Step, class Roi>
Record* layOut(Area& area, int32_t levels) {
    constexpr int64_t kAlignment = 8;
    const int64_t count = int64_t{levels} + 1;
    auto* const record = area.take<Record>(1, kAlignment);
    record->pImage = area.take<uint8_t*>(count, kAlignment);
    record->pStep = area.take<Step>(count, kAlignment);
    record->pRoi = area.take<Roi>(count, kAlignment);
    record->pRate = area.take<double>(count, kAlignment);
    record->pState = nullptr;
    record->level = levels;
    return record;
}

template <class Record, class Step, class Count, class Roi>
okpStatus pyramidInit(Record** pyramid, int32_t level, Roi roi, float rate, uint8_t* pyramidArea,
                      const uint8_t* buffer) {
    Checks checks;
    checkLevels(checks.pointers(pyramid, pyramidArea, buffer), roi, level, rate);
    if (checks.failed()) return checks.status();
    // The sizes are found once to count them and again to enter them. The buffer would not hold them between
    // the two: at rates close to 1 there are nearly as many levels as pixels, of 16 bytes in a 64-bit record.
    const int32_t levels = levelCount(roi, level, rate);
    Bytes bytes;
    if (!countBytes(roi, levels, kLargest<Count>, bytes)) return okpStatusSizeTooLarge;

    Area area(pyramidArea);
    Record* const record = layOut<Record, Step, Roi>(area, levels);
    const double reduction = 1.0 / static_cast<double>(rate);
    Size size = roi;
    double scale = 1.0;
    for (int32_t k = 0; k <= levels; ++k) {
        record->pImage[k] = nullptr;
        record->pStep[k] = 0;
        record->pRoi[k] = roiOf<Roi>(size.width, size.height);
        record->pRate[k] = scale;
        size = downSize(size, rate);
        scale *= reduction;
    }
    *pyramid = record;
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiGetPyramidDownROI(RoiSize srcRoi, RoiSize* dstRoi, float rate) {
    return downRoi(srcRoi, dstRoi, rate);
}

okpStatus okpiGetPyramidDownROI_L(RoiSizeL srcRoi, RoiSizeL* dstRoi, float rate) {
    return downRoi(srcRoi, dstRoi, rate);
}

okpStatus okpiGetPyramidUpROI(RoiSize srcRoi, RoiSize* dstRoiMin, RoiSize* dstRoiMax, float rate) {
    return upRoi(srcRoi, dstRoiMin, dstRoiMax, rate);
}

okpStatus okpiGetPyramidUpROI_L(RoiSizeL srcRoi, RoiSizeL* dstRoiMin, RoiSizeL* dstRoiMax, float rate) {
    return upRoi(srcRoi, dstRoiMin, dstRoiMax, rate);
}

okpStatus okpiPyramidGetSize(int32_t* pyramidSize, int32_t* bufferSize, int32_t level, RoiSize roiSize,
                             float rate) {
    return pyramidSizes(pyramidSize, bufferSize, level, roiSize, rate);
}

okpStatus okpiPyramidGetSize_L(int64_t* pyramidSize, int64_t* bufferSize, int32_t level, RoiSizeL roiSize,
                               float rate) {
    return pyramidSizes(pyramidSize, bufferSize, level, roiSize, rate);
}

okpStatus okpiPyramidInit(PyramidRecord** pyramid, int32_t level, RoiSize roiSize, float rate,
                          uint8_t* pyramidArea, uint8_t* buffer) {
    return pyramidInit<PyramidRecord, int32_t, int32_t>(pyramid, level, roiSize, rate, pyramidArea, buffer);
}

okpStatus okpiPyramidInit_L(PyramidRecordL** pyramid, int32_t level, RoiSizeL roiSize, float rate,
                            uint8_t* pyramidArea, uint8_t* buffer) {
    return pyramidInit<PyramidRecordL, int64_t, int64_t>(pyramid, level, roiSize, rate, pyramidArea, buffer);
}
