// Sizes of pyramid levels, and the record that describes a pyramid (P. J. Burt, E. H. Adelson, "The Laplacian
// pyramid as a compact image code", 1983, for any rate from above 1 to 10).
//
// A size is found by its defining property, not by a formula: the down size of n is the d whose range of up
// sizes, min(d) to max(d), holds n. With u(d) = trunc(float(d) * rate), max(d) is the larger of u(d) and d +
// 1, and min(d + 1) is max(d) + 1. So the ranges tile the numbers, and the down size is the smallest d with
// max(d) >= n. As max(d) > d, levels shrink until they are 1.
#include <type_traits>

#include "core/area.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "okpcv/pyramid.h"

namespace okpcv {
namespace {

constexpr float kLargestRate = 10.0F;

// False for NaN.
constexpr bool isRate(float rate) {
    return rate > 1.0F && rate <= kLargestRate;
}

constexpr int64_t nextSaturated(int64_t n) {
    return n < kLargest<int64_t> ? n + 1 : n;
}

// trunc(float(n) * rate).
constexpr int64_t scaled(int64_t n, float rate) {
    return truncateSaturated<int64_t>(static_cast<float>(n) * rate);
}

constexpr int64_t smallestUpSize(int64_t n, float rate) {
    if (n == 1) return 1;
    const int64_t t = scaled(n - 1, rate);
    return nextSaturated(t < n ? n : t);
}

constexpr int64_t largestUpSize(int64_t n, float rate) {
    const int64_t u = scaled(n, rate);
    return n < u ? u : nextSaturated(n);
}

// The smallest d whose largest up size is at least n: looked for from n / rate on in strides that double,
// then halved in. For sizes that floats hold exactly the first guess is off by one at most.
constexpr int64_t downSize(int64_t n, float rate) {
    const auto reaches = [=](int64_t d) { return largestUpSize(d, rate) >= n; };
    const int64_t guess = truncateSaturated<int64_t>(static_cast<float>(n) * (1.0F / rate) + 0.5F);
    int64_t enough = guess < 1 ? 1 : guess > n ? n : guess;
    int64_t tooSmall = 0;
    if (reaches(enough)) {
        for (int64_t stride = 1; stride < enough; stride *= 2) {
            if (!reaches(enough - stride)) {
                tooSmall = enough - stride;
                break;
            }
            enough -= stride;
        }
    } else {
        for (int64_t stride = 1; tooSmall == 0; stride *= 2) {
            const int64_t next = stride < n - enough ? enough + stride : n;
            if (reaches(next)) tooSmall = enough;
            enough = next;
        }
    }
    while (enough - tooSmall > 1) {
        const int64_t middle = tooSmall + (enough - tooSmall) / 2;
        (reaches(middle) ? enough : tooSmall) = middle;
    }
    return enough;
}

Size downSize(Size size, float rate) {
    return {downSize(size.width, rate), downSize(size.height, rate)};
}

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
    if (!countBytes(roi, levelCount(roi, level, rate), kLargest<Count>, bytes)) return okpStatusBadSize;
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
    if (!countBytes(roi, levels, kLargest<Count>, bytes)) return okpStatusBadSize;

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
