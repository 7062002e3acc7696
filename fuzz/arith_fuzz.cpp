// Fuzzes absolute differences, accumulators and the motion history.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class T, int channels, class F>
void absDiff(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(channels), call.source<T>(channels), call.destination<T>(channels),
         call.size());
}

template <class T, class F>
void absDiffConstant(F function, Data& data) {
    Call call(data);
    using Value = std::conditional_t<std::is_integral_v<T>, int32_t, T>;
    call(function, call.source<T>(), call.destination<T>(), call.size(), data.any<Value>());
}

template <class T, class F>
void accumulate(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.inOut<float>(), call.size());
}

template <class T, class F>
void accumulateMasked(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.source<uint8_t>(), call.inOut<float>(), call.size());
}

template <class T, class F>
void product(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.source<T>(), call.inOut<float>(), call.size());
}

template <class T, class F>
void productMasked(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.source<T>(), call.source<uint8_t>(), call.inOut<float>(),
         call.size());
}

template <class T, class F>
void weighted(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.inOut<float>(), call.size(), data.any<float>());
}

template <class T, class F>
void weightedMasked(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.source<uint8_t>(), call.inOut<float>(), call.size(),
         data.any<float>());
}

template <class F>
void addWeightedApart(F function, Data& data) {
    Call call(data);
    call(function, call.source<float>(), call.source<float>(), call.destination<float>(), call.size(),
         data.any<float>());
}

template <class T, class F>
void motionHistory(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(), call.inOut<float>(), call.size(), data.any<float>(), data.any<float>());
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((absDiffConstant<uint16_t>), okpiAbsDiffC_16u_C1R),
    FUZZ((absDiffConstant<float>), okpiAbsDiffC_32f_C1R),
    FUZZ((absDiffConstant<uint8_t>), okpiAbsDiffC_8u_C1R),
    FUZZ((absDiff<uint16_t, 1>), okpiAbsDiff_16u_C1R),
    FUZZ((absDiff<float, 1>), okpiAbsDiff_32f_C1R),
    FUZZ((absDiff<uint8_t, 1>), okpiAbsDiff_8u_C1R),
    FUZZ((absDiff<uint8_t, 3>), okpiAbsDiff_8u_C3R),
    FUZZ((productMasked<uint16_t>), okpiAddProduct_16u32f_C1IMR),
    FUZZ((product<uint16_t>), okpiAddProduct_16u32f_C1IR),
    FUZZ((productMasked<float>), okpiAddProduct_32f_C1IMR),
    FUZZ((product<float>), okpiAddProduct_32f_C1IR),
    FUZZ((productMasked<uint8_t>), okpiAddProduct_8u32f_C1IMR),
    FUZZ((product<uint8_t>), okpiAddProduct_8u32f_C1IR),
    FUZZ((accumulateMasked<uint16_t>), okpiAddSquare_16u32f_C1IMR),
    FUZZ((accumulate<uint16_t>), okpiAddSquare_16u32f_C1IR),
    FUZZ((accumulateMasked<float>), okpiAddSquare_32f_C1IMR),
    FUZZ((accumulate<float>), okpiAddSquare_32f_C1IR),
    FUZZ((accumulateMasked<uint8_t>), okpiAddSquare_8u32f_C1IMR),
    FUZZ((accumulate<uint8_t>), okpiAddSquare_8u32f_C1IR),
    FUZZ((weightedMasked<uint16_t>), okpiAddWeighted_16u32f_C1IMR),
    FUZZ((weighted<uint16_t>), okpiAddWeighted_16u32f_C1IR),
    FUZZ((weightedMasked<float>), okpiAddWeighted_32f_C1IMR),
    FUZZ((weighted<float>), okpiAddWeighted_32f_C1IR),
    FUZZ((addWeightedApart), okpiAddWeighted_32f_C1R),
    FUZZ((weightedMasked<uint8_t>), okpiAddWeighted_8u32f_C1IMR),
    FUZZ((weighted<uint8_t>), okpiAddWeighted_8u32f_C1IR),
    FUZZ((accumulateMasked<uint16_t>), okpiAdd_16u32f_C1IMR),
    FUZZ((accumulate<uint16_t>), okpiAdd_16u32f_C1IR),
    FUZZ((accumulateMasked<float>), okpiAdd_32f_C1IMR),
    FUZZ((accumulateMasked<uint8_t>), okpiAdd_8u32f_C1IMR),
    FUZZ((accumulate<uint8_t>), okpiAdd_8u32f_C1IR),
    FUZZ((motionHistory<uint16_t>), okpiUpdateMotionHistory_16u32f_C1IR),
    FUZZ((motionHistory<float>), okpiUpdateMotionHistory_32f_C1IR),
    FUZZ((motionHistory<uint8_t>), okpiUpdateMotionHistory_8u32f_C1IR),
};

}  // namespace

FUZZ_FAMILY(kShapes)
