// Layers of pyramids: one level of a pyramid from its neighbour (P. J. Burt, E. H. Adelson, "The Laplacian
// pyramid as a compact image code", 1983, for any rate from above 1 to 10 and any odd kernel). Rate 2 with
// the binomial kernel has a path of its own with the same results.
#include <cmath>
#include <cstdint>

#include "core/area.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "filter/weighted_sum.h"
#include "okpcv/pyramid.h"
#include "pyramid/level_sizes.h"
#include "pyramid/octave.h"
#include "pyramid/resample.h"

namespace okpcv {
namespace {

constexpr float kBinomial[] = {1 / 16.0F, 4 / 16.0F, 6 / 16.0F, 4 / 16.0F, 1 / 16.0F};
constexpr int32_t kBinomialSize = 5;

// To the next smaller level, and to the next larger one.
struct Down {
    static constexpr int phases = 1;
    static int64_t largest(int64_t n, float rate) { return downSize(n, rate); }
    static bool fits(int64_t n, int64_t dst, float rate) { return dst == downSize(n, rate); }
};
struct Up {
    static constexpr int phases = 2;
    static int64_t largest(int64_t n, float rate) { return largestUpSize(n, rate); }
    static bool fits(int64_t n, int64_t dst, float rate) {
        return dst >= smallestUpSize(n, rate) && dst <= largestUpSize(n, rate);
    }
};

// The caller's spec area: this record, then the coefficients. They are divided by their sum; for larger
// levels they are doubled, and those at an even distance from the middle one come first.
struct LayerSpec {
    int64_t width, height;  // of the largest source
    float rate;
    int32_t kernelSize;
    bool isOctave;  // rate 2, binomial kernel
};
struct LayerAreas {
    LayerSpec* spec;
    float* kernel;
};
LayerAreas layOutSpec(Area& area, int64_t kernelSize) {
    LayerSpec* const spec = area.take<LayerSpec>(1);
    return {spec, area.take<float>(kernelSize)};
}
// Of a filled spec; nothing lies behind the kernel, so its size does not matter.
LayerAreas filledSpec(const void* pSpec) {
    Area area(const_cast<void*>(pSpec));
    return layOutSpec(area, 0);
}

// The work buffer serves either path, so its size is that of the larger one.
template <class Layer, class S, int Channels>
bool bufferBytes(Size size, float rate, int32_t kernelSize, int64_t& bytes) {
    Area octave, any;
    layOutOctave<OctaveSum<S>>(octave, Channels, size.width, Layer::phases);
    layOutResample<S>(any, Channels, size.width, Layer::largest(size.width, rate), kernelSize, Layer::phases);
    bytes = octave.bytes() > any.bytes() ? octave.bytes() : any.bytes();
    return octave.fits() && any.fits();
}

struct LayerBytes {
    int64_t spec, buffer;
};

// What the query and the initialiser check in common, behind the pointers.
template <class Layer, class S, int Channels>
okpStatus checkLayer(Checks& checks, Size size, float rate, int32_t kernelSize, int64_t largest,
                     LayerBytes& bytes) {
    checks.size(size)
        .require(isRate(rate), okpStatusBadArgument)
        .require(kernelSize >= 3 && kernelSize % 2 == 1, okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    Area spec;
    layOutSpec(spec, kernelSize);
    bytes.spec = spec.bytes();
    const bool fits = bufferBytes<Layer, S, Channels>(size, rate, kernelSize, bytes.buffer) &&
                      bytes.buffer <= largest && bytes.spec <= largest;
    return fits ? okpStatusOk : okpStatusSizeTooLarge;
}

template <class Layer, class S, int Channels, class Roi, class Count>
okpStatus layerSizes(Roi srcRoi, float rate, int32_t kernelSize, Count* pSpecSize, Count* pBufferSize) {
    Checks checks;
    checks.pointers(pSpecSize, pBufferSize);
    LayerBytes bytes;
    const okpStatus status =
        checkLayer<Layer, S, Channels>(checks, srcRoi, rate, kernelSize, kLargest<Count>, bytes);
    if (status != okpStatusOk) return status;
    *pSpecSize = static_cast<Count>(bytes.spec);
    *pBufferSize = static_cast<Count>(bytes.buffer);
    return okpStatusOk;
}

template <class Layer, class S, int Channels, class Count, class Roi>
okpStatus layerInit(Roi srcRoi, float rate, const float* pKernel, int32_t kernelSize, void* pSpec) {
    Checks checks;
    checks.pointers(pSpec);
    LayerBytes bytes;
    const okpStatus status =
        checkLayer<Layer, S, Channels>(checks, srcRoi, rate, kernelSize, kLargest<Count>, bytes);
    if (status != okpStatusOk) return status;
    if (pKernel == nullptr) {
        if (kernelSize != kBinomialSize) return okpStatusBadArgument;
        pKernel = kBinomial;
    }

    double sum = 0;
    for (int32_t i = 0; i < kernelSize; ++i) sum += static_cast<double>(coefficient(pKernel, i));
    if (sum == 0) return okpStatusDivByZero;
    const auto weight = [=](int64_t i) {
        return static_cast<float>(static_cast<double>(coefficient(pKernel, i)) * Layer::phases / sum);
    };
    bool isBinomial = kernelSize == kBinomialSize;
    for (int32_t i = 0; i < kernelSize; ++i) {
        if (!std::isfinite(weight(i))) return okpStatusBadArgument;
        isBinomial = isBinomial && weight(i) == kBinomial[i] * Layer::phases;
    }

    Area area(pSpec);
    const LayerAreas areas = layOutSpec(area, kernelSize);
    const Size size = srcRoi;
    *areas.spec = {size.width, size.height, rate, kernelSize, isBinomial && rate == 2};
    const int64_t middle = kernelSize / 2;
    float* next = areas.kernel;
    for (int64_t phase = 0; phase < Layer::phases; ++phase) {
        for (int64_t i = (middle + phase) % Layer::phases; i < kernelSize; i += Layer::phases) {
            *next++ = weight(i);
        }
    }
    return okpStatusOk;
}

template <class Layer, class S, int Channels>
okpStatus layer(Image<const S, Channels> src, Size srcSize, Image<S, Channels> dst, Size dstSize,
                const void* pSpec, void* pBuffer) {
    Checks checks;
    checks.pointers(src.data, dst.data, pSpec, pBuffer)
        .size(srcSize)
        .size(dstSize)
        .rowsFit(srcSize, src)
        .stepsAreMultiples(src)
        .rowsFit(dstSize, dst)
        .stepsAreMultiples(dst);
    if (checks.failed()) return checks.status();
    const LayerAreas areas = filledSpec(pSpec);
    const LayerSpec& spec = *areas.spec;
    checks.require(srcSize.width <= spec.width && srcSize.height <= spec.height, okpStatusBadSize)
        .require(Layer::fits(srcSize.width, dstSize.width, spec.rate) &&
                     Layer::fits(srcSize.height, dstSize.height, spec.rate),
                 okpStatusBadSize)
        .require(static_cast<const void*>(src.data) != dst.data, okpStatusInPlaceNotSupported);
    if (checks.failed()) return checks.status();

    Area buffer(pBuffer);
    if (spec.isOctave) {
        const auto lines = layOutOctave<OctaveSum<S>>(buffer, Channels, srcSize.width, Layer::phases);
        if constexpr (Layer::phases == 1) {
            octaveDown(src, srcSize, dst, dstSize, lines);
        } else {
            octaveUp(src, srcSize, dst, dstSize, lines);
        }
        return okpStatusOk;
    }
    const LineFilter filter = Layer::phases == 1 ? LineFilter::down(areas.kernel, spec.kernelSize, spec.rate)
                                                 : LineFilter::up(areas.kernel, spec.kernelSize, spec.rate);
    resample<S, Channels>(
        src, srcSize, dst, dstSize, filter, LineFilter::reach(spec.kernelSize, Layer::phases),
        layOutResample<S>(buffer, Channels, srcSize.width, dstSize.width, spec.kernelSize, Layer::phases));
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

// The query, the initialiser and the operation of one type.
#define LAYER(getSize, init, operation, Layer, T, channels, Roi, Count)                                     \
    okpStatus getSize(Roi srcRoi, float rate, int32_t kernelSize, Count* pSpecSize, Count* pBufferSize) {   \
        return layerSizes<Layer, T, channels>(srcRoi, rate, kernelSize, pSpecSize, pBufferSize);            \
    }                                                                                                       \
    okpStatus init(Roi srcRoi, float rate, const float* pKernel, int32_t kernelSize, void* pSpec) {         \
        return layerInit<Layer, T, channels, Count>(srcRoi, rate, pKernel, kernelSize, pSpec);              \
    }                                                                                                       \
    okpStatus operation(const T* pSrc, Count srcStep, Roi srcRoi, T* pDst, Count dstStep, Roi dstRoi,       \
                        const void* pSpec, void* pBuffer) {                                                 \
        return layer<Layer, T, channels>({pSrc, srcStep}, srcRoi, {pDst, dstStep}, dstRoi, pSpec, pBuffer); \
    }

LAYER(okpiPyramidLayerDownGetSize_8u_C1R, okpiPyramidLayerDownInit_8u_C1R, okpiPyramidLayerDown_8u_C1R, Down,
      uint8_t, 1, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_8u_C3R, okpiPyramidLayerDownInit_8u_C3R, okpiPyramidLayerDown_8u_C3R, Down,
      uint8_t, 3, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_16u_C1R, okpiPyramidLayerDownInit_16u_C1R, okpiPyramidLayerDown_16u_C1R,
      Down, uint16_t, 1, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_16u_C3R, okpiPyramidLayerDownInit_16u_C3R, okpiPyramidLayerDown_16u_C3R,
      Down, uint16_t, 3, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_32f_C1R, okpiPyramidLayerDownInit_32f_C1R, okpiPyramidLayerDown_32f_C1R,
      Down, float, 1, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_32f_C3R, okpiPyramidLayerDownInit_32f_C3R, okpiPyramidLayerDown_32f_C3R,
      Down, float, 3, RoiSize, int32_t)
LAYER(okpiPyramidLayerDownGetSize_32f_C1R_L, okpiPyramidLayerDownInit_32f_C1R_L,
      okpiPyramidLayerDown_32f_C1R_L, Down, float, 1, RoiSizeL, int64_t)

LAYER(okpiPyramidLayerUpGetSize_8u_C1R, okpiPyramidLayerUpInit_8u_C1R, okpiPyramidLayerUp_8u_C1R, Up, uint8_t,
      1, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_8u_C3R, okpiPyramidLayerUpInit_8u_C3R, okpiPyramidLayerUp_8u_C3R, Up, uint8_t,
      3, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_16u_C1R, okpiPyramidLayerUpInit_16u_C1R, okpiPyramidLayerUp_16u_C1R, Up,
      uint16_t, 1, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_16u_C3R, okpiPyramidLayerUpInit_16u_C3R, okpiPyramidLayerUp_16u_C3R, Up,
      uint16_t, 3, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_32f_C1R, okpiPyramidLayerUpInit_32f_C1R, okpiPyramidLayerUp_32f_C1R, Up,
      float, 1, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_32f_C3R, okpiPyramidLayerUpInit_32f_C3R, okpiPyramidLayerUp_32f_C3R, Up,
      float, 3, RoiSize, int32_t)
LAYER(okpiPyramidLayerUpGetSize_32f_C1R_L, okpiPyramidLayerUpInit_32f_C1R_L, okpiPyramidLayerUp_32f_C1R_L, Up,
      float, 1, RoiSizeL, int64_t)
