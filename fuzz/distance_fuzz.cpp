// Fuzzes distance transforms.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class F>
void combinedMetrics(F function, Data& data) {
    float weights[3];
    Call::check(function(data.oneIn(2) ? data.any<int32_t>() : data.between(25, 55),
                         data.oneIn(9) ? nullptr : weights));
}

template <class T, class F>
void metrics(F function, Data& data) {
    T weights[3];
    Call::check(function(data.any<int32_t>(), data.any<int32_t>(), data.oneIn(9) ? nullptr : weights));
}

// The weights of a mask, any or usual ones.
template <class T, int mask>
const T* weights(Call& call) {
    constexpr int count = (mask + 1) / 2;
    T* const values = const_cast<T*>(call.input<T>(count));
    for (int i = 0; i < count && values != nullptr; ++i) {
        const T weight = call.data().oneIn(3) ? call.data().any<T>() : static_cast<T>(1 + i);
        std::memcpy(static_cast<void*>(values + i), &weight, sizeof weight);
    }
    return values;
}

template <class D, int mask, class F>
void chamfer(F function, Data& data) {
    Call call(data);
    using Weight = std::conditional_t<std::is_integral_v<D>, int32_t, D>;
    call(function, call.source<uint8_t>(), call.destination<D>(), call.size(), weights<Weight, mask>(call));
}

template <int mask, class F>
void chamferInPlace(F function, Data& data) {
    Call call(data);
    call(function, call.inOut<uint8_t>(), call.size(), weights<int32_t, mask>(call));
}

template <class F>
void exactSize(F function, Data& data) {
    int32_t bytes = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), &bytes), bytes);
}

template <class F>
void exact(F function, Data& data) {
    Call call(data, 60, 40);
    int32_t bytes = 0;
    okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(call.real(), &bytes);
    call(function, call.source<uint8_t>(), call.destination<float>(), call.size(), call.area(bytes));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((combinedMetrics), okpiGetDistanceTransformMask),
    FUZZ((metrics<float>), okpiGetDistanceTransformMask_32f),
    FUZZ((metrics<int32_t>), okpiGetDistanceTransformMask_32s),
    FUZZ((exactSize), okpiTrueDistanceTransformGetBufferSize_8u32f_C1R),
    FUZZ((exact), okpiTrueDistanceTransform_8u32f_C1R),
    FUZZ((chamfer<uint16_t, 3>), okpiDistanceTransform_3x3_8u16u_C1R),
    FUZZ((chamfer<float, 3>), okpiDistanceTransform_3x3_8u32f_C1R),
    FUZZ((chamferInPlace<3>), okpiDistanceTransform_3x3_8u_C1IR),
    FUZZ((chamfer<uint8_t, 3>), okpiDistanceTransform_3x3_8u_C1R),
    FUZZ((chamfer<uint16_t, 5>), okpiDistanceTransform_5x5_8u16u_C1R),
    FUZZ((chamfer<float, 5>), okpiDistanceTransform_5x5_8u32f_C1R),
    FUZZ((chamferInPlace<5>), okpiDistanceTransform_5x5_8u_C1IR),
    FUZZ((chamfer<uint8_t, 5>), okpiDistanceTransform_5x5_8u_C1R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
