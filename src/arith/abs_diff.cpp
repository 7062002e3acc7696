// Absolute difference: |src1 - src2| and |src - value| per pixel. Bound by memory: one or two loads and a
// store per two to five operations.
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/arith.h"

namespace okpcv {
namespace {

template <class T>
OKPCV_INLINE Vec<T> distance(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        const Vec<float> d = a - b;
        // max takes its second operand where the comparison is false, which keeps NaN and -0 as they are.
        return max(d ^ broadcast(-0.0F), d);
    } else {
        return absDiff(a, b);
    }
}

template <class T, int Channels>
okpStatus absDiffImages(Image<const T, Channels> src1, Image<const T, Channels> src2, Image<T, Channels> dst,
                        Size size) {
    Checks checks;
    checks.pointers(src1.data, src2.data, dst.data).size(size).steps(size, src1, src2, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [](auto extent, T* out, const T* a, const T* b) {
        store(out, distance(inRegister(load(a, extent)), inRegister(load(b, extent))), extent);
    };
    mapRows<Vec<T>::lanes>(Size(size.width * Channels, size.height), kernel, Image<T>{dst.data, dst.step},
                           Image<const T>{src1.data, src1.step}, Image<const T>{src2.data, src2.step});
    return okpStatusOk;
}

// `value` is what is subtracted: for integer images already clamped to the type.
template <class T>
okpStatus absDiffConstant(Image<const T> src, Image<T> dst, Size size, T value) {
    Checks checks;
    checks.pointers(src.data, dst.data).size(size).steps(size, src, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [subtrahend = broadcast(value)](auto extent, T* out, const T* a) {
        store(out, distance(load(a, extent), subtrahend), extent);
    };
    mapRows<Vec<T>::lanes>(size, kernel, dst, src);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define ABS_DIFF(NAME, T, CHANNELS)                                                                        \
    okpStatus NAME(const T* pSrc1, int32_t src1Step, const T* pSrc2, int32_t src2Step, T* pDst,            \
                   int32_t dstStep, RoiSize roiSize) {                                                     \
        return absDiffImages<T, CHANNELS>({pSrc1, src1Step}, {pSrc2, src2Step}, {pDst, dstStep}, roiSize); \
    }

ABS_DIFF(okpiAbsDiff_8u_C1R, uint8_t, 1)
ABS_DIFF(okpiAbsDiff_8u_C3R, uint8_t, 3)
ABS_DIFF(okpiAbsDiff_16u_C1R, uint16_t, 1)
ABS_DIFF(okpiAbsDiff_32f_C1R, float, 1)

okpStatus okpiAbsDiffC_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                              RoiSize roiSize, int32_t value) {
    return absDiffConstant<uint8_t>({pSrc, srcStep}, {pDst, dstStep}, roiSize, saturate<uint8_t>(value));
}

okpStatus okpiAbsDiffC_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst, int32_t dstStep,
                               RoiSize roiSize, int32_t value) {
    return absDiffConstant<uint16_t>({pSrc, srcStep}, {pDst, dstStep}, roiSize, saturate<uint16_t>(value));
}

okpStatus okpiAbsDiffC_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                               RoiSize roiSize, float value) {
    return absDiffConstant<float>({pSrc, srcStep}, {pDst, dstStep}, roiSize, value);
}
