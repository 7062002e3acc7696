// Fuzzes the sizes and records of pyramids.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

// Any rate, or one that keeps the levels few: the time grows with their number.
float anyRate(Data& data) {
    return data.oneIn(4) ? data.any<float>() : static_cast<float>(data.between(105, 1010)) / 100;
}

template <class S, class F>
void down(F function, Data& data) {
    S result{};
    const okpStatus status =
        function(fuzz::anySize<S>(data), data.oneIn(9) ? nullptr : &result, anyRate(data));
    fuzz::checkQuery(status, result.width | !!status, result.height | !!status);
}

template <class S, class F>
void up(F function, Data& data) {
    S low{}, high{};
    const okpStatus status =
        function(fuzz::anySize<S>(data), &low, data.oneIn(9) ? nullptr : &high, anyRate(data));
    fuzz::checkQuery(status, low.width, high.width, low.height, high.height);
}

template <class S, class N, class F>
void recordSize(F function, Data& data) {
    N record = 0, buffer = 0;
    const int32_t level = data.oneIn(3) ? data.between(INT32_MIN, 0) : data.between(1, 40);
    fuzz::checkQuery(function(&record, &buffer, level, fuzz::anySize<S>(data), anyRate(data)), record,
                     buffer);
}

template <class S, class N, class R, auto query, class F>
void record(F function, Data& data) {
    const S size = fuzz::anySize<S>(data, 5000);
    const int32_t level = data.oneIn(9) ? data.between(INT32_MIN, 0) : data.between(1, 40);
    const float rate = anyRate(data);
    N recordBytes = 0, bufferBytes = 0;
    const okpStatus expected = query(&recordBytes, &bufferBytes, level, size, rate);
    fuzz::checkQuery(expected, recordBytes, bufferBytes);
    if (expected == okpStatusOk && bufferBytes > N{1} << 20) return;

    fuzz::Block area(data, std::max<N>(recordBytes, 1)), buffer(data, std::max<N>(bufferBytes, 1));
    area.fill(data);
    R* pyramid = nullptr;
    if (function(&pyramid, level, size, rate, area.begin(), buffer.begin()) != expected)
        fuzz::fail("query and initialiser differ", expected);
    if (expected != okpStatusOk) return;
    // The record's arrays lie inside the area.
    for (int32_t k = 0; k <= pyramid->level; ++k) {
        pyramid->pImage[k] = nullptr;
        pyramid->pStep[k] = 0;
        if (pyramid->pRoi[k].width < 1 || pyramid->pRate[k] <= 0) fuzz::fail("a bad level", k);
    }
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((down<RoiSize>), okpiGetPyramidDownROI),
    FUZZ((down<RoiSizeL>), okpiGetPyramidDownROI_L),
    FUZZ((up<RoiSize>), okpiGetPyramidUpROI),
    FUZZ((up<RoiSizeL>), okpiGetPyramidUpROI_L),
    FUZZ((recordSize<RoiSize, int32_t>), okpiPyramidGetSize),
    FUZZ((recordSize<RoiSizeL, int64_t>), okpiPyramidGetSize_L),
    FUZZ((record<RoiSize, int32_t, PyramidRecord, okpiPyramidGetSize>), okpiPyramidInit),
    FUZZ((record<RoiSizeL, int64_t, PyramidRecordL, okpiPyramidGetSize_L>), okpiPyramidInit_L),
};

}  // namespace

FUZZ_FAMILY(kShapes)
