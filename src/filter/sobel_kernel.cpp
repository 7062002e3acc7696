// Kernels of derivatives: differences of binomial coefficients. They may lie at any address.
#include "core/checks.h"
#include "core/simd.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

// Convolves the last `taps` elements of the kernel with (1, `sign`) in place, one element to the left.
template <class T>
void convolve(T* kernel, int64_t size, int64_t taps, int sign) {
    for (int64_t i = size - 1 - taps; i < size - 1; ++i) {
        const T here = loadScalar<T>(kernel + i), next = loadScalar<T>(kernel + i + 1);
        storeScalar(kernel + i, static_cast<T>(here + (sign < 0 ? -next : next)));
    }
}

template <class T>
okpStatus sobelKernel(T* pKernel, int32_t size, int32_t order, int32_t sign) {
    Checks checks;
    checks.pointers(pKernel).require(size >= 1 && size % 2 != 0 && order >= 0 && order < size,
                                     okpStatusBadSize);
    if (checks.failed()) return checks.status();

    for (int32_t i = 0; i < size; ++i) storeScalar(pKernel + i, static_cast<T>(i == size - 1));
    for (int32_t taps = 1; taps < size; ++taps) convolve(pKernel, size, taps, taps < size - order ? 1 : -1);
    if (sign < 0) {
        for (int32_t i = 0; i < size; ++i)
            storeScalar(pKernel + i, static_cast<T>(-loadScalar<T>(pKernel + i)));
    }
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiGenSobelKernel_16s(int16_t* pKernel, int32_t kernelSize, int32_t order, int32_t sign) {
    return sobelKernel(pKernel, kernelSize, order, sign);
}

okpStatus okpiGenSobelKernel_32f(float* pKernel, int32_t kernelSize, int32_t order, int32_t sign) {
    return sobelKernel(pKernel, kernelSize, order, sign);
}
