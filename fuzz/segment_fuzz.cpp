// Fuzzes flood fills, labelling, speckles and boundaries.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class F>
void bufferSize(F function, Data& data) {
    int32_t bytes = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), &bytes), bytes);
}

// The documented number wraps, and may read as negative.
template <class F>
void wrappingSize(F function, Data& data) {
    int32_t bytes = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), &bytes));
}

PixelPoint seed(Call& call) {
    Data& data = call.data();
    if (data.oneIn(8)) return {data.any<int32_t>(), data.any<int32_t>()};
    return {data.between(0, call.real().width - 1), data.between(0, call.real().height - 1)};
}

// The values of a pixel: by value for one channel, by address for three.
template <class T, int channels>
auto values(Call& call) {
    if constexpr (channels == 1) {
        return call.data().any<T>();
    } else {
        return call.input<T>(channels);
    }
}

template <class T, int channels, auto query, class F>
void fill(F function, Data& data) {
    Call call(data, 40, 20);
    int32_t bytes = 0;
    query(call.real(), &bytes);
    call(function, call.inOut<T>(channels), call.size(), seed(call), values<T, channels>(call),
         call.area<ConnectedComp>(), call.area(bytes));
}

template <class T, int channels, auto query, class F>
void fillDelta(F function, Data& data) {
    Call call(data, 40, 20);
    int32_t bytes = 0;
    query(call.real(), &bytes);
    // The buffer counts as defined: these fills keep a map of bits in it and count zeros beyond a row's end,
    // whatever stands there, before they cut the number off. Valgrind takes the result for undefined.
    call(function, call.inOut<T>(channels), call.size(), seed(call), values<T, channels>(call),
         values<T, channels>(call), values<T, channels>(call), call.area<ConnectedComp>(),
         const_cast<uint8_t*>(call.input<uint8_t>(bytes)));
}

template <class T, auto query, class F>
void label(F function, Data& data) {
    Call call(data, 40, 20);
    int32_t bytes = 0;
    query(call.real(), &bytes);
    const bool odd = data.oneIn(4);
    call(function, call.inOut<T>(), call.size(), odd ? data.any<int32_t>() : 1,
         odd ? data.any<int32_t>() : data.between(1, 254),
         data.oneIn(8) ? data.any<int32_t>() : data.between(0, 1), call.area<int32_t>(), call.area(bytes));
}

template <class F>
void labelApart(F function, Data& data) {
    Call call(data, 40, 20);
    int32_t bytes = 0;
    okpiLabelMarkersGetBufferSize_8u32s_C1R(call.real(), &bytes);
    call(function, call.source<uint8_t>(), call.destination<int32_t>(), call.size(), data.any<int32_t>(),
         data.any<int32_t>(), data.oneIn(8) ? data.any<int32_t>() : data.between(0, 1), call.area<int32_t>(),
         call.area(bytes));
}

template <class F>
void specklesSize(F function, Data& data) {
    int32_t bytes = 0;
    const DataTypeCode type = data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19);
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), type, data.any<int32_t>(), &bytes), bytes);
}

template <class T, DataTypeCode type, class F>
void speckles(F function, Data& data) {
    Call call(data, 40, 20);
    int32_t bytes = 0;
    okpiMarkSpecklesGetBufferSize(call.real(), type, 1, &bytes);
    call(function, call.inOut<T>(), call.size(), data.any<T>(), data.any<int32_t>(), data.any<T>(),
         data.oneIn(8) ? data.any<int32_t>() : NormKind{NormInf}, call.area(bytes));
}

template <class T, class F>
void boundaries(F function, Data& data) {
    Call call(data, 40, 20);
    call(function, call.inOut<T>(), call.size(), data.any<T>(),
         data.oneIn(8) ? data.any<int32_t>() : data.between(0, 1));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((wrappingSize), okpiFloodFillGetSize),
    FUZZ((bufferSize), okpiFloodFillGetSize_Grad),
    FUZZ((boundaries<uint16_t>), okpiBoundSegments_16u_C1IR),
    FUZZ((boundaries<uint8_t>), okpiBoundSegments_8u_C1IR),
    FUZZ((fill<uint16_t, 1, okpiFloodFillGetSize>), okpiFloodFill_4Con_16u_C1IR),
    FUZZ((fill<uint16_t, 3, okpiFloodFillGetSize>), okpiFloodFill_4Con_16u_C3IR),
    FUZZ((fill<float, 1, okpiFloodFillGetSize>), okpiFloodFill_4Con_32f_C1IR),
    FUZZ((fill<float, 3, okpiFloodFillGetSize>), okpiFloodFill_4Con_32f_C3IR),
    FUZZ((fill<int32_t, 1, okpiFloodFillGetSize>), okpiFloodFill_4Con_32s_C1IR),
    FUZZ((fill<uint8_t, 1, okpiFloodFillGetSize>), okpiFloodFill_4Con_8u_C1IR),
    FUZZ((fill<uint8_t, 3, okpiFloodFillGetSize>), okpiFloodFill_4Con_8u_C3IR),
    FUZZ((fill<uint16_t, 1, okpiFloodFillGetSize>), okpiFloodFill_8Con_16u_C1IR),
    FUZZ((fill<uint16_t, 3, okpiFloodFillGetSize>), okpiFloodFill_8Con_16u_C3IR),
    FUZZ((fill<float, 1, okpiFloodFillGetSize>), okpiFloodFill_8Con_32f_C1IR),
    FUZZ((fill<float, 3, okpiFloodFillGetSize>), okpiFloodFill_8Con_32f_C3IR),
    FUZZ((fill<int32_t, 1, okpiFloodFillGetSize>), okpiFloodFill_8Con_32s_C1IR),
    FUZZ((fill<uint8_t, 1, okpiFloodFillGetSize>), okpiFloodFill_8Con_8u_C1IR),
    FUZZ((fill<uint8_t, 3, okpiFloodFillGetSize>), okpiFloodFill_8Con_8u_C3IR),
    FUZZ((fillDelta<uint16_t, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_16u_C1IR),
    FUZZ((fillDelta<uint16_t, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_16u_C3IR),
    FUZZ((fillDelta<float, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_32f_C1IR),
    FUZZ((fillDelta<float, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_32f_C3IR),
    FUZZ((fillDelta<uint8_t, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_8u_C1IR),
    FUZZ((fillDelta<uint8_t, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad4Con_8u_C3IR),
    FUZZ((fillDelta<uint16_t, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_16u_C1IR),
    FUZZ((fillDelta<uint16_t, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_16u_C3IR),
    FUZZ((fillDelta<float, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_32f_C1IR),
    FUZZ((fillDelta<float, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_32f_C3IR),
    FUZZ((fillDelta<uint8_t, 1, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_8u_C1IR),
    FUZZ((fillDelta<uint8_t, 3, okpiFloodFillGetSize_Grad>), okpiFloodFill_Grad8Con_8u_C3IR),
    FUZZ((fillDelta<uint16_t, 1, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_16u_C1IR),
    FUZZ((fillDelta<uint16_t, 3, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_16u_C3IR),
    FUZZ((fillDelta<float, 1, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_32f_C1IR),
    FUZZ((fillDelta<float, 3, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_32f_C3IR),
    FUZZ((fillDelta<uint8_t, 1, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_8u_C1IR),
    FUZZ((fillDelta<uint8_t, 3, okpiFloodFillGetSize>), okpiFloodFill_Range4Con_8u_C3IR),
    FUZZ((fillDelta<uint16_t, 1, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_16u_C1IR),
    FUZZ((fillDelta<uint16_t, 3, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_16u_C3IR),
    FUZZ((fillDelta<float, 1, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_32f_C1IR),
    FUZZ((fillDelta<float, 3, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_32f_C3IR),
    FUZZ((fillDelta<uint8_t, 1, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_8u_C1IR),
    FUZZ((fillDelta<uint8_t, 3, okpiFloodFillGetSize>), okpiFloodFill_Range8Con_8u_C3IR),
    FUZZ((wrappingSize), okpiLabelMarkersGetBufferSize_16u_C1R),
    FUZZ((wrappingSize), okpiLabelMarkersGetBufferSize_8u32s_C1R),
    FUZZ((wrappingSize), okpiLabelMarkersGetBufferSize_8u_C1R),
    FUZZ((label<uint16_t, okpiLabelMarkersGetBufferSize_16u_C1R>), okpiLabelMarkers_16u_C1IR),
    FUZZ((labelApart), okpiLabelMarkers_8u32s_C1R),
    FUZZ((label<uint8_t, okpiLabelMarkersGetBufferSize_8u_C1R>), okpiLabelMarkers_8u_C1IR),
    FUZZ((specklesSize), okpiMarkSpecklesGetBufferSize),
    FUZZ((speckles<int16_t, DataType16s>), okpiMarkSpeckles_16s_C1IR),
    FUZZ((speckles<uint16_t, DataType16u>), okpiMarkSpeckles_16u_C1IR),
    FUZZ((speckles<float, DataType32f>), okpiMarkSpeckles_32f_C1IR),
    FUZZ((speckles<uint8_t, DataType8u>), okpiMarkSpeckles_8u_C1IR),
};

}  // namespace

FUZZ_FAMILY(kShapes)
