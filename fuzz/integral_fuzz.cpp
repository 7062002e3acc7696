// Fuzzes integral images and the window deviation.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

constexpr RoiSize kLarger{1, 1};

template <class D, class F>
void integral(F function, Data& data) {
    Call call(data);
    call(function, call.source<uint8_t>(), call.destination<D>(1, kLarger), call.size(), data.any<D>());
}

template <class F>
void integralFloat(F function, Data& data) {
    Call call(data);
    call(function, call.source<float>(), call.destination<float>(1, kLarger), call.size());
}

template <class D, class S, class F>
void integrals(F function, Data& data) {
    Call call(data);
    call(function, call.source<uint8_t>(), call.destination<D>(1, kLarger), call.destination<S>(1, kLarger),
         call.size(), data.any<D>(), data.any<S>());
}

// A window whose integral images can be made, and what the images must have beyond the region.
PixelRect window(Data& data) {
    return {data.between(0, 9), data.between(0, 9), data.between(1, 9), data.between(1, 9)};
}
fuzz::Margins reach(PixelRect rect) {
    return {0, 0, rect.x + rect.width, rect.y + rect.height};
}
// The window that the function is told: sometimes one that it must refuse, whatever the images.
PixelRect told(Data& data, PixelRect rect) {
    if (!data.oneIn(6)) return rect;
    const int32_t bad = data.oneOf({-1, INT32_MIN, -5});
    switch (data.between(0, 3)) {
        case 0:
            return {bad, rect.y, rect.width, rect.height};
        case 1:
            return {rect.x, bad, rect.width, rect.height};
        case 2:
            return {rect.x, rect.y, bad, rect.height};
        default:
            return {rect.x, rect.y, rect.width, bad};
    }
}

template <class T, class F>
void deviation(F function, Data& data) {
    Call call(data);
    const PixelRect rect = window(data);
    call(function, call.source<T>(1, reach(rect)), call.source<double>(1, reach(rect)),
         call.destination<float>(), call.size(), told(data, rect));
}

template <class F>
void deviationScaled(F function, Data& data) {
    Call call(data);
    const PixelRect rect = window(data);
    call(function, call.source<int32_t>(1, reach(rect)), call.source<int32_t>(1, reach(rect)),
         call.destination<int32_t>(), call.size(), told(data, rect), data.any<int32_t>());
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((integralFloat), okpiIntegral_32f_C1R),
    FUZZ((integral<float>), okpiIntegral_8u32f_C1R),
    FUZZ((integral<int32_t>), okpiIntegral_8u32s_C1R),
    FUZZ((deviation<float>), okpiRectStdDev_32f_C1R),
    FUZZ((deviation<int32_t>), okpiRectStdDev_32s32f_C1R),
    FUZZ((deviationScaled), okpiRectStdDev_32s_C1RSfs),
    FUZZ((integrals<float, double>), okpiSqrIntegral_8u32f64f_C1R),
    FUZZ((integrals<int32_t, double>), okpiSqrIntegral_8u32s64f_C1R),
    FUZZ((integrals<int32_t, int32_t>), okpiSqrIntegral_8u32s_C1R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
