// Fuzzes the Canny edge detector and peak finding.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class S, class N, class F>
void cannySize(F function, Data& data) {
    N bytes = 0;
    fuzz::checkQuery(function(fuzz::anySize<S>(data), data.oneIn(9) ? nullptr : &bytes), bytes | 1);
}

template <class F>
void cannyBorderSize(F function, Data& data) {
    int32_t bytes = 0;
    const okpStatus status = function(fuzz::anySize<RoiSize>(data), data.any<int32_t>(), data.any<int32_t>(),
                                      data.any<int32_t>(), &bytes);
    fuzz::checkQuery(status, bytes);
}

template <class T, class F>
void canny(F function, Data& data) {
    Call call(data);
    int32_t bytes = 0;
    okpiCannyGetSize(call.real(), &bytes);
    call(function, call.source<T>(), call.source<T>(), call.destination<uint8_t>(), call.size(),
         data.any<float>(), data.any<float>(), call.area(bytes));
}

template <class T, class F>
void cannyLarge(F function, Data& data) {
    Call call(data);
    int64_t bytes = 0;
    okpiCannyGetSize_L({call.real().width, call.real().height}, &bytes);
    const NormKind norm = data.oneIn(8) ? data.any<int32_t>() : data.oneOf<NormKind>({NormL1, NormL2});
    call(function, call.source<T>(), call.source<T>(), call.destination<uint8_t>(), call.size(),
         data.any<float>(), data.any<float>(), norm, call.area(bytes));
}

template <class F>
void cannyBorder(F function, Data& data) {
    Call call(data);
    const BorderKind border = fuzz::anyBorder(data);
    const int32_t kind = data.oneIn(8) ? data.any<int32_t>() : data.oneOf({2, 5});
    const MaskSizeCode mask = data.oneIn(8) ? data.any<int32_t>() : data.oneOf<MaskSizeCode>({33, 55});
    int32_t bytes = 0;
    if (okpiCannyBorderGetSize(call.real(), kind, mask, DataType8u, &bytes) != okpStatusOk) bytes = 1;
    const int reach = mask == MaskSize5x5 ? 2 : 1;
    call(function, call.source<uint8_t>(1, fuzz::marginsOf(border, {reach, reach, reach, reach})),
         call.destination<uint8_t>(), call.size(), kind, mask, border, data.any<uint8_t>(), data.any<float>(),
         data.any<float>(), data.oneIn(8) ? data.any<int32_t>() : data.oneOf<NormKind>({NormL1, NormL2}),
         call.area(bytes));
}

template <class F>
void peaksSize(F function, Data& data) {
    int32_t bytes = 0;
    fuzz::checkQuery(function(data.any<int32_t>(), &bytes), bytes);
}

template <class T, auto query, class F>
void peaks(F function, Data& data) {
    Call call(data);
    int32_t bytes = 0;
    query(call.real().width, &bytes);
    const int32_t capacity = data.between(1, 40);
    call(function, call.source<T>(), call.size(), data.any<T>(), call.area<PixelPoint>(capacity),
         data.oneIn(8) ? data.oneOf({0, -1, INT32_MIN}) : capacity, call.area<int32_t>(),
         data.oneIn(8) ? data.any<int32_t>() : data.between(0, 1), data.oneIn(2) ? data.any<int32_t>() : 1,
         call.area(bytes));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((cannySize<RoiSize, int32_t>), okpiCannyGetSize),
    FUZZ((cannySize<RoiSizeL, int64_t>), okpiCannyGetSize_L),
    FUZZ((cannyBorderSize), okpiCannyBorderGetSize),
    FUZZ((cannyBorder), okpiCannyBorder_8u_C1R),
    FUZZ((canny<int16_t>), okpiCanny_16s8u_C1R),
    FUZZ((cannyLarge<int16_t>), okpiCanny_16s8u_C1R_L),
    FUZZ((canny<float>), okpiCanny_32f8u_C1R),
    FUZZ((cannyLarge<float>), okpiCanny_32f8u_C1R_L),
    FUZZ((peaksSize), okpiFindPeaks3x3GetBufferSize_32f_C1R),
    FUZZ((peaksSize), okpiFindPeaks3x3GetBufferSize_32s_C1R),
    FUZZ((peaks<float, okpiFindPeaks3x3GetBufferSize_32f_C1R>), okpiFindPeaks3x3_32f_C1R),
    FUZZ((peaks<int32_t, okpiFindPeaks3x3GetBufferSize_32s_C1R>), okpiFindPeaks3x3_32s_C1R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
