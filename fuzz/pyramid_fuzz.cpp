// Fuzzes the sizes, records and layers of pyramids.
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

int32_t kernelSize(Data& data) {
    return data.oneIn(8) ? data.between(-5, 6) : 2 * data.between(1, data.oneIn(4) ? 15 : 3) + 1;
}

template <class S, class N, class F>
void layerSize(F function, Data& data) {
    N spec = 0, buffer = 0;
    fuzz::checkQuery(function(fuzz::anySize<S>(data), anyRate(data), data.any<int32_t>(), &spec, &buffer),
                     spec, buffer);
}

template <class S, class N, auto query, class F>
void layerInit(F function, Data& data) {
    Call call(data);
    const int32_t size = kernelSize(data);
    const float rate = anyRate(data);
    const RoiSize real = call.real();
    N specBytes = 1, bufferBytes = 1;
    const okpStatus expected = query({real.width, real.height}, rate, size, &specBytes, &bufferBytes);
    const float* const kernel = data.oneIn(3) ? nullptr : call.optionalInput<float>(std::max(size, 1));
    const okpStatus status =
        call(function, call.size(), rate, kernel, size, static_cast<void*>(call.area(specBytes)));
    if (expected != okpStatusOk && status == okpStatusOk)
        fuzz::fail("query and initialiser differ", expected);
}

// A destination that belongs to the source, or sometimes one that does not and must be refused.
template <class T, int channels, class S, class N, bool down, auto query, auto initialise, class F>
void layer(F function, Data& data) {
    Call call(data, 60, 20);
    const RoiSize real = call.real();
    const S source{real.width, real.height};
    const float rate = data.oneIn(2) ? 2.0F : static_cast<float>(data.between(105, 1000)) / 100;
    const bool binomial = data.oneIn(2);
    const int32_t size = binomial ? 5 : 2 * data.between(1, 6) + 1;
    N specBytes = 0, bufferBytes = 0;
    if (query(source, rate, size, &specBytes, &bufferBytes) != okpStatusOk)
        fuzz::fail("a good size was refused", size);
    std::vector<float> kernel(static_cast<size_t>(size));
    for (float& coefficient : kernel) coefficient = static_cast<float>(data.between(1, 9));
    fuzz::Block spec(data, specBytes);
    if (initialise(source, rate, binomial ? nullptr : kernel.data(), size, spec.begin()) != okpStatusOk)
        fuzz::fail("a good spec was refused", size);

    RoiSize low{}, high{};
    if (down) {
        okpiGetPyramidDownROI(real, &low, rate);
        high = low;
    } else {
        okpiGetPyramidUpROI(real, &low, &high, rate);
    }
    const RoiSize made{data.between(low.width, high.width), data.between(low.height, high.height)};
    fuzz::Size told{made.width, made.height};
    if (data.oneIn(8)) told.width = data.oneOf<int64_t>({0, -1, INT32_MIN, high.width + 1, INT32_MAX});
    const auto src = call.source<T>(channels);
    const auto dst = call.destination<T>(channels, {made.width - real.width, made.height - real.height});
    // The buffer counts as defined: sums of two neighbours share a lane, and of the last pixel's neighbour,
    // which may be anything, Valgrind does not know that it stays in its half.
    void* const buffer = const_cast<uint8_t*>(call.input<uint8_t>(bufferBytes));
    call(function, src, call.size(), dst, told, static_cast<const void*>(spec.begin()), buffer);
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
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_16u_C1R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_16u_C3R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_32f_C1R),
    FUZZ((layerSize<RoiSizeL, int64_t>), okpiPyramidLayerDownGetSize_32f_C1R_L),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_32f_C3R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_8u_C1R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerDownGetSize_8u_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_16u_C1R>),
         okpiPyramidLayerDownInit_16u_C1R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_16u_C3R>),
         okpiPyramidLayerDownInit_16u_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_32f_C1R>),
         okpiPyramidLayerDownInit_32f_C1R),
    FUZZ((layerInit<RoiSizeL, int64_t, okpiPyramidLayerDownGetSize_32f_C1R_L>),
         okpiPyramidLayerDownInit_32f_C1R_L),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_32f_C3R>),
         okpiPyramidLayerDownInit_32f_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_8u_C1R>), okpiPyramidLayerDownInit_8u_C1R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerDownGetSize_8u_C3R>), okpiPyramidLayerDownInit_8u_C3R),
    FUZZ((layer<uint16_t, 1, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_16u_C1R,
                okpiPyramidLayerDownInit_16u_C1R>),
         okpiPyramidLayerDown_16u_C1R),
    FUZZ((layer<uint16_t, 3, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_16u_C3R,
                okpiPyramidLayerDownInit_16u_C3R>),
         okpiPyramidLayerDown_16u_C3R),
    FUZZ((layer<float, 1, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_32f_C1R,
                okpiPyramidLayerDownInit_32f_C1R>),
         okpiPyramidLayerDown_32f_C1R),
    FUZZ((layer<float, 1, RoiSizeL, int64_t, true, okpiPyramidLayerDownGetSize_32f_C1R_L,
                okpiPyramidLayerDownInit_32f_C1R_L>),
         okpiPyramidLayerDown_32f_C1R_L),
    FUZZ((layer<float, 3, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_32f_C3R,
                okpiPyramidLayerDownInit_32f_C3R>),
         okpiPyramidLayerDown_32f_C3R),
    FUZZ((layer<uint8_t, 1, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_8u_C1R,
                okpiPyramidLayerDownInit_8u_C1R>),
         okpiPyramidLayerDown_8u_C1R),
    FUZZ((layer<uint8_t, 3, RoiSize, int32_t, true, okpiPyramidLayerDownGetSize_8u_C3R,
                okpiPyramidLayerDownInit_8u_C3R>),
         okpiPyramidLayerDown_8u_C3R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_16u_C1R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_16u_C3R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_32f_C1R),
    FUZZ((layerSize<RoiSizeL, int64_t>), okpiPyramidLayerUpGetSize_32f_C1R_L),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_32f_C3R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_8u_C1R),
    FUZZ((layerSize<RoiSize, int32_t>), okpiPyramidLayerUpGetSize_8u_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_16u_C1R>), okpiPyramidLayerUpInit_16u_C1R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_16u_C3R>), okpiPyramidLayerUpInit_16u_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_32f_C1R>), okpiPyramidLayerUpInit_32f_C1R),
    FUZZ((layerInit<RoiSizeL, int64_t, okpiPyramidLayerUpGetSize_32f_C1R_L>),
         okpiPyramidLayerUpInit_32f_C1R_L),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_32f_C3R>), okpiPyramidLayerUpInit_32f_C3R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_8u_C1R>), okpiPyramidLayerUpInit_8u_C1R),
    FUZZ((layerInit<RoiSize, int32_t, okpiPyramidLayerUpGetSize_8u_C3R>), okpiPyramidLayerUpInit_8u_C3R),
    FUZZ((layer<uint16_t, 1, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_16u_C1R,
                okpiPyramidLayerUpInit_16u_C1R>),
         okpiPyramidLayerUp_16u_C1R),
    FUZZ((layer<uint16_t, 3, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_16u_C3R,
                okpiPyramidLayerUpInit_16u_C3R>),
         okpiPyramidLayerUp_16u_C3R),
    FUZZ((layer<float, 1, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_32f_C1R,
                okpiPyramidLayerUpInit_32f_C1R>),
         okpiPyramidLayerUp_32f_C1R),
    FUZZ((layer<float, 1, RoiSizeL, int64_t, false, okpiPyramidLayerUpGetSize_32f_C1R_L,
                okpiPyramidLayerUpInit_32f_C1R_L>),
         okpiPyramidLayerUp_32f_C1R_L),
    FUZZ((layer<float, 3, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_32f_C3R,
                okpiPyramidLayerUpInit_32f_C3R>),
         okpiPyramidLayerUp_32f_C3R),
    FUZZ((layer<uint8_t, 1, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_8u_C1R,
                okpiPyramidLayerUpInit_8u_C1R>),
         okpiPyramidLayerUp_8u_C1R),
    FUZZ((layer<uint8_t, 3, RoiSize, int32_t, false, okpiPyramidLayerUpGetSize_8u_C3R,
                okpiPyramidLayerUpInit_8u_C3R>),
         okpiPyramidLayerUp_8u_C3R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
