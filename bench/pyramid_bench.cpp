// Benchmarks of pyramids: sizes of levels and the record that describes them, in time per call.
#include "okpcv/pyramid.h"

#include "support/compare.h"

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// Rates: octaves, and one that makes thousands of levels of the larger sizes.
constexpr float kOctaves = 2.0F;
constexpr float kFine = 1.0005F;

template <class Roi>
Roi roiOf(RoiSize size) {
    return {size.width, size.height};
}

template <class Roi>
Setup down(okpStatus (*f)(Roi, Roi*, float)) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Roi result;
                        return f(roiOf<Roi>(size), &result, kOctaves);
                    }};
    };
}

template <class Roi>
Setup up(okpStatus (*f)(Roi, Roi*, Roi*, float)) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Roi least, most;
                        return f(roiOf<Roi>(size), &least, &most, kOctaves);
                    }};
    };
}

template <class Count, class Roi>
Setup getSize(okpStatus (*f)(Count*, Count*, int32_t, Roi, float), float rate) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Count area, buffer;
                        return f(&area, &buffer, INT32_MAX, roiOf<Roi>(size), rate);
                    }};
    };
}

template <class Record, class Roi>
Setup init(okpStatus (*f)(Record**, int32_t, Roi, float, uint8_t*, uint8_t*), float rate) {
    return [=](RoiSize size) {
        int64_t areaBytes = 0, bufferBytes = 0;
        okpiPyramidGetSize_L(&areaBytes, &bufferBytes, INT32_MAX, roiOf<RoiSizeL>(size), rate);
        const Image<uint8_t> area({static_cast<int32_t>(areaBytes), 1});
        const Image<uint8_t> buffer({static_cast<int32_t>(bufferBytes), 1});
        return Case{.pixels = 1, .ours = [=] {
                        Record* record = nullptr;
                        return f(&record, INT32_MAX, roiOf<Roi>(size), rate, area.data(), buffer.data());
                    }};
    };
}

constexpr RoiSize kOneSize[] = {{1920, 1080}};

const bench::Family family_("pyramid", [](bench::Family& family) {
    BENCH(down, okpiGetPyramidDownROI, kOneSize);
    BENCH(down, okpiGetPyramidDownROI_L, kOneSize);
    BENCH(up, okpiGetPyramidUpROI, kOneSize);
    BENCH(up, okpiGetPyramidUpROI_L, kOneSize);
    family.add("okpiPyramidGetSize/octaves", getSize(okpiPyramidGetSize, kOctaves), kOneSize);
    family.add("okpiPyramidGetSize/thousands", getSize(okpiPyramidGetSize, kFine), kOneSize);
    family.add("okpiPyramidGetSize_L/octaves", getSize(okpiPyramidGetSize_L, kOctaves), kOneSize);
    family.add("okpiPyramidInit/octaves", init(okpiPyramidInit, kOctaves), kOneSize);
    family.add("okpiPyramidInit/thousands", init(okpiPyramidInit, kFine), kOneSize);
    family.add("okpiPyramidInit_L/octaves", init(okpiPyramidInit_L, kOctaves), kOneSize);
});

}  // namespace
