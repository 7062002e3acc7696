// Fuzzes Gaussian filters, and the filters with fixed masks that smooth and derive.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

int32_t anyType(Data& data) {
    return data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19);
}

template <class N, class F>
void specSize(F function, Data& data) {
    N spec = 0, init = 0;
    fuzz::checkQuery(function(data.any<int32_t>(), anyType(data), data.between(-1, 5), &spec, &init), spec,
                     init);
}

template <class S, class N, class F>
void bufferSize(F function, Data& data) {
    // The query adds to the size of the spec.
    N spec = data.between<N>(0, 100000), buffer = 0;
    const okpStatus status = function(fuzz::anySize<S>(data), data.any<int32_t>(), anyType(data),
                                      data.between(-1, 5), &spec, &buffer);
    fuzz::checkQuery(status, buffer);
}

int32_t kernelSize(Data& data) {
    return 2 * data.between(1, data.oneIn(4) ? 25 : 4) + 1;
}

template <class F>
void init(F function, Data& data) {
    Call call(data);
    const int32_t size = kernelSize(data);
    int32_t specBytes = 0, initBytes = 0;
    okpiFilterGaussianGetSpecSize(size, DataType32f, 3, &specBytes, &initBytes);
    // Types and channels that need no more than three floats.
    const bool odd = data.oneIn(3);
    call(function, call.size(), data.oneIn(8) ? data.between(-5, 2) : size, data.any<float>(),
         fuzz::anyBorder(data),
         odd ? data.any<int32_t>() : data.oneOf<int32_t>({DataType8u, DataType16u, DataType16s, DataType32f}),
         odd ? data.any<int32_t>() : data.oneOf({1, 3}), static_cast<void*>(call.area(specBytes)),
         static_cast<void*>(call.area(initBytes)));
}

// With the border of the call, or that of the spec.
template <class T, int channels, DataTypeCode type, bool ownBorder, class F>
void gaussian(F function, Data& data) {
    Call call(data);
    call.acceptSmallSteps();
    const int32_t size = kernelSize(data);
    BorderKind border = fuzz::anyBorder(data);
    int32_t specBytes = 0, initBytes = 0, bufferBytes = 0;
    okpiFilterGaussianGetSpecSize(size, type, channels, &specBytes, &initBytes);
    fuzz::Block spec(data, specBytes), initBuffer(data, initBytes);
    int32_t added = specBytes;
    okpiFilterGaussianGetBufferSize(call.real(), size, type, channels, &added, &bufferBytes);
    const float sigma = data.oneIn(4) ? 1.5F : static_cast<float>(data.between(1, 2000)) / 100;
    const auto initialise = [&] {
        return okpiFilterGaussianInit(call.real(), size, sigma, border, type, channels, spec.begin(),
                                      initBuffer.begin());
    };
    if (initialise() != okpStatusOk) {
        // The border is none: such a call is worth making where the border is its own.
        const BorderKind wrong = std::exchange(border, BorderReplicate);
        if (initialise() != okpStatusOk) fuzz::fail("a good spec was refused", size);
        if (ownBorder) border = wrong;
    }
    const int reach = size / 2;
    const auto src = call.source<T>(channels, fuzz::marginsOf(border, {reach, reach, reach, reach}));
    const auto dst = call.destination<T>(channels);
    const auto value = [&] {
        if constexpr (channels == 1) {
            return data.any<T>();
        } else {
            return call.optionalInput<T>(channels);
        }
    }();
    const void* const filled = spec.begin();
    void* const buffer = call.area(bufferBytes);
    if constexpr (ownBorder) {
        call(function, src, dst, call.size(), border, value, filled, buffer);
    } else {
        call(function, src, dst, call.size(), value, filled, buffer);
    }
}

template <class F>
void maskBufferSize(F function, Data& data) {
    int32_t bytes = 0;
    const MaskSizeCode mask = data.oneIn(3) ? data.any<int32_t>() : data.oneOf<MaskSizeCode>({33, 55});
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), mask, &bytes), bytes);
}

template <class T, class D, auto query, class F>
void fixedMask(F function, Data& data) {
    Call call(data);
    const BorderKind border = fuzz::anyBorder(data);
    const MaskSizeCode mask = data.oneIn(8) ? data.any<int32_t>() : data.oneOf<MaskSizeCode>({33, 55});
    int32_t bytes = 1;
    query(call.real(), mask, &bytes);
    const int reach = mask == MaskSize5x5 ? 2 : 1;
    call(function, call.source<T>(1, fuzz::marginsOf(border, {reach, reach, reach, reach})),
         call.destination<D>(), call.size(), mask, border, data.any<T>(),
         static_cast<void*>(call.area(bytes)));
}

template <class T, class F>
void kernel(F function, Data& data) {
    const int32_t size = data.between(1, 60);
    fuzz::Block coefficients(data, size * int64_t{sizeof(T)}, alignof(T));
    const int32_t told = data.oneIn(4) ? data.between(INT32_MIN, 0) : size;
    auto* const first = data.oneIn(9) ? nullptr : reinterpret_cast<T*>(coefficients.begin());
    Call::check(function(first, told, data.oneIn(3) ? data.any<int32_t>() : data.between(0, size),
                         data.any<int32_t>()));
}

template <class T, class F>
void toGray(F function, Data& data) {
    Call call(data);
    call(function, call.source<T>(3), call.destination<T>(), call.size(),
         data.oneIn(8) ? data.any<int32_t>() : data.between(0, 2));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((gaussian<int16_t, 1, DataType16s, false>), okpiFilterGaussianBorder_16s_C1R),
    FUZZ((gaussian<int16_t, 3, DataType16s, false>), okpiFilterGaussianBorder_16s_C3R),
    FUZZ((gaussian<uint16_t, 1, DataType16u, false>), okpiFilterGaussianBorder_16u_C1R),
    FUZZ((gaussian<uint16_t, 3, DataType16u, false>), okpiFilterGaussianBorder_16u_C3R),
    FUZZ((gaussian<float, 1, DataType32f, false>), okpiFilterGaussianBorder_32f_C1R),
    FUZZ((gaussian<float, 3, DataType32f, false>), okpiFilterGaussianBorder_32f_C3R),
    FUZZ((gaussian<uint8_t, 1, DataType8u, false>), okpiFilterGaussianBorder_8u_C1R),
    FUZZ((gaussian<uint8_t, 3, DataType8u, false>), okpiFilterGaussianBorder_8u_C3R),
    FUZZ((bufferSize<RoiSize, int32_t>), okpiFilterGaussianGetBufferSize),
    FUZZ((bufferSize<RoiSizeL, int64_t>), okpiFilterGaussianGetBufferSize_L),
    FUZZ((specSize<int32_t>), okpiFilterGaussianGetSpecSize),
    FUZZ((specSize<int64_t>), okpiFilterGaussianGetSpecSize_L),
    FUZZ((init), okpiFilterGaussianInit),
    FUZZ((init), okpiFilterGaussianInit_L),
    FUZZ((gaussian<int16_t, 1, DataType16s, true>), okpiFilterGaussian_16s_C1R),
    FUZZ((gaussian<int16_t, 1, DataType16s, true>), okpiFilterGaussian_16s_C1R_L),
    FUZZ((gaussian<int16_t, 3, DataType16s, true>), okpiFilterGaussian_16s_C3R),
    FUZZ((gaussian<int16_t, 3, DataType16s, true>), okpiFilterGaussian_16s_C3R_L),
    FUZZ((gaussian<uint16_t, 1, DataType16u, true>), okpiFilterGaussian_16u_C1R),
    FUZZ((gaussian<uint16_t, 1, DataType16u, true>), okpiFilterGaussian_16u_C1R_L),
    FUZZ((gaussian<uint16_t, 3, DataType16u, true>), okpiFilterGaussian_16u_C3R),
    FUZZ((gaussian<uint16_t, 3, DataType16u, true>), okpiFilterGaussian_16u_C3R_L),
    FUZZ((gaussian<float, 1, DataType32f, true>), okpiFilterGaussian_32f_C1R),
    FUZZ((gaussian<float, 1, DataType32f, true>), okpiFilterGaussian_32f_C1R_L),
    FUZZ((gaussian<float, 3, DataType32f, true>), okpiFilterGaussian_32f_C3R),
    FUZZ((gaussian<float, 3, DataType32f, true>), okpiFilterGaussian_32f_C3R_L),
    FUZZ((gaussian<uint8_t, 1, DataType8u, true>), okpiFilterGaussian_8u_C1R),
    FUZZ((gaussian<uint8_t, 1, DataType8u, true>), okpiFilterGaussian_8u_C1R_L),
    FUZZ((gaussian<uint8_t, 3, DataType8u, true>), okpiFilterGaussian_8u_C3R),
    FUZZ((gaussian<uint8_t, 3, DataType8u, true>), okpiFilterGaussian_8u_C3R_L),
    FUZZ((fixedMask<float, float, okpiFilterLaplacianGetBufferSize_32f_C1R>),
         okpiFilterLaplacianBorder_32f_C1R),
    FUZZ((fixedMask<uint8_t, int16_t, okpiFilterLaplacianGetBufferSize_8u16s_C1R>),
         okpiFilterLaplacianBorder_8u16s_C1R),
    FUZZ((maskBufferSize), okpiFilterLaplacianGetBufferSize_32f_C1R),
    FUZZ((maskBufferSize), okpiFilterLaplacianGetBufferSize_8u16s_C1R),
    FUZZ((fixedMask<float, float, okpiFilterLowpassGetBufferSize_32f_C1R>), okpiFilterLowpassBorder_32f_C1R),
    FUZZ((fixedMask<uint8_t, uint8_t, okpiFilterLowpassGetBufferSize_8u_C1R>),
         okpiFilterLowpassBorder_8u_C1R),
    FUZZ((maskBufferSize), okpiFilterLowpassGetBufferSize_32f_C1R),
    FUZZ((maskBufferSize), okpiFilterLowpassGetBufferSize_8u_C1R),
    FUZZ((fixedMask<float, float, okpiFilterSobelCrossGetBufferSize_32f_C1R>),
         okpiFilterSobelCrossBorder_32f_C1R),
    FUZZ((fixedMask<uint8_t, int16_t, okpiFilterSobelCrossGetBufferSize_8u16s_C1R>),
         okpiFilterSobelCrossBorder_8u16s_C1R),
    FUZZ((maskBufferSize), okpiFilterSobelCrossGetBufferSize_32f_C1R),
    FUZZ((maskBufferSize), okpiFilterSobelCrossGetBufferSize_8u16s_C1R),
    FUZZ((kernel<int16_t>), okpiGenSobelKernel_16s),
    FUZZ((kernel<float>), okpiGenSobelKernel_32f),
    FUZZ((toGray<uint16_t>), okpiGradientColorToGray_16u_C3C1R),
    FUZZ((toGray<float>), okpiGradientColorToGray_32f_C3C1R),
    FUZZ((toGray<uint8_t>), okpiGradientColorToGray_8u_C3C1R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
