// Fuzzes line sampling and sub-pixel copies.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class T, int channels, class F>
void line(F function, Data& data) {
    Call call(data);
    const RoiSize size = call.real();
    const auto point = [&] {
        return PixelPoint{data.between(0, size.width - 1), data.between(0, size.height - 1)};
    };
    PixelPoint from = point(), to = point();
    const int32_t samples = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) + 1;
    // A point outside must be refused.
    if (data.oneIn(6)) (data.oneIn(2) ? from.x : to.y) = data.oneOf({-1, 70, INT32_MIN, INT32_MAX});
    call(function, call.source<T>(channels), call.size(), call.area<T>(int64_t{samples} * channels), from,
         to);
}

constexpr fuzz::Margins kReach{0, 0, 1, 1};

template <class T, class D, class F>
void copy(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(1, kReach), call.destination<D>(), call.size(), data.any<float>(),
         data.any<float>());
}

template <class F>
void copyScaled(F function, Data& data) {
    Call call(data);
    call(function, call.source<uint8_t>(1, kReach), call.destination<uint16_t>(), call.size(),
         data.any<float>(), data.any<float>(), data.any<int32_t>());
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((copy<uint16_t, float>), okpiCopySubpix_16u32f_C1R),
    FUZZ((copy<uint16_t, uint16_t>), okpiCopySubpix_16u_C1R),
    FUZZ((copy<float, float>), okpiCopySubpix_32f_C1R),
    FUZZ((copyScaled), okpiCopySubpix_8u16u_C1R_Sfs),
    FUZZ((copy<uint8_t, float>), okpiCopySubpix_8u32f_C1R),
    FUZZ((copy<uint8_t, uint8_t>), okpiCopySubpix_8u_C1R),
    FUZZ((line<uint16_t, 1>), okpiSampleLine_16u_C1R),
    FUZZ((line<uint16_t, 3>), okpiSampleLine_16u_C3R),
    FUZZ((line<float, 1>), okpiSampleLine_32f_C1R),
    FUZZ((line<float, 3>), okpiSampleLine_32f_C3R),
    FUZZ((line<uint8_t, 1>), okpiSampleLine_8u_C1R),
    FUZZ((line<uint8_t, 3>), okpiSampleLine_8u_C3R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
