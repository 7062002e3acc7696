// Benchmarks of integral images and of the window standard deviation.
#include "okpcv/integral.h"

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::randomImage;
using bench::same;
using bench::Setup;

RoiSize enlarged(RoiSize size) {
    return {size.width + 1, size.height + 1};
}

// Sums of a large image exceed what single precision holds, and the peer adds in another order.
template <class D>
constexpr double kTolerance = std::is_same_v<D, float> ? 1e-4 : 0.0;

// Of four 8-bit pixels: to move lanes, to multiply and add them, the running sum and the row above, which two
// rows of output share.
template <class D>
bench::Work integralWork() {
    return {.elements = 4,
            .multiplications = 2,
            .additions = std::is_same_v<D, float> ? 1.0 : 0.0,
            .others = 3,
            .loads = 1.5,
            .stores = 1};
}
// Beside squares, lanes are moved for both, in two vectors. Running sums of squares become two vectors of
// doubles.
template <class D, class Q>
bench::Work sqrIntegralWork() {
    constexpr bool kDoubles = std::is_same_v<Q, double>;
    return {.elements = 4,
            .multiplications = 3,
            .additions = (std::is_same_v<D, float> ? 1.0 : 0.0) + (kDoubles ? 2 : 0),
            .others = kDoubles ? 10 : 8,
            .loads = kDoubles ? 2.5 : 2,
            .stores = kDoubles ? 3.0 : 2.0};
}

template <class S, class D, class F>
Setup sums(F call, bench::Work work = {}) {
    return [=](RoiSize size) {
        const auto src = randomImage<S>(size);
        const Image<D> dst(enlarged(size)), theirs(enlarged(size));
        return Case{.reads = sizeof(S),
                    .writes = sizeof(D),
                    .cycles = work.cyclesPerElement(),
                    .ours = [=] { return call(src, dst, size); },
                    .peerName = "cv::integral",
                    .peer = OPENCV(cv::integral(src.mat(), theirs.mat(), cv::DataType<D>::depth)),
                    .agree = same(dst, theirs, kTolerance<D>)};
    };
}
template <class D>
Setup integral(okpStatus (*f)(const uint8_t*, int32_t, D*, int32_t, RoiSize, D)) {
    return sums<uint8_t, D>(
        [=](const auto& src, const auto& dst, RoiSize size) {
            return f(src.data(), src.step(), dst.data(), dst.step(), size, D{0});
        },
        integralWork<D>());
}
Setup floatIntegral(decltype(okpiIntegral_32f_C1R)* f) {
    return sums<float, float>([=](const auto& src, const auto& dst, RoiSize size) {
        return f(src.data(), src.step(), dst.data(), dst.step(), size);
    });
}

template <class D, class Q>
Setup sqrIntegral(okpStatus (*f)(const uint8_t*, int32_t, D*, int32_t, Q*, int32_t, RoiSize, D, Q)) {
    return [=](RoiSize size) {
        const auto src = randomImage<uint8_t>(size);
        const Image<D> dst(enlarged(size)), theirs(enlarged(size));
        const Image<Q> sqr(enlarged(size)), theirSqr(enlarged(size));
        return Case{.reads = 1,
                    .writes = sizeof(D) + sizeof(Q),
                    .cycles = sqrIntegralWork<D, Q>().cyclesPerElement(),
                    .ours =
                        [=] {
                            return f(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(),
                                     size, D{0}, Q{0});
                        },
                    .peerName = "cv::integral",
                    .peer = OPENCV(cv::integral(src.mat(), theirs.mat(), theirSqr.mat(),
                                                cv::DataType<D>::depth, cv::DataType<Q>::depth)),
                    .agree = same(sqr, theirSqr, kTolerance<D>)};
    };
}

// A window of 24 x 24 pixels, as detectors use it; no peer has this operation.
constexpr PixelRect kWindow{0, 0, 24, 24};

template <class S, class Q, class D, class F>
Setup windows(F call) {
    return [=](RoiSize size) {
        const RoiSize read{size.width + kWindow.width, size.height + kWindow.height};
        Image<S> sum(read);
        Image<Q> sqr(read);
        for (int y = 0; y < read.height; ++y) {
            for (int x = 0; x < read.width; ++x) {
                const int n = (x * y) % 1000000;
                *sum.at(x, y) = static_cast<S>(100 * n);
                *sqr.at(x, y) = static_cast<Q>(2000 * n);
            }
        }
        const Image<D> dst(size);
        return Case{.reads = sizeof(S) + sizeof(Q), .writes = sizeof(D), .ours = [=] {
                        return call(sum, sqr, dst, size);
                    }};
    };
}
template <class S>
Setup rectStdDev(okpStatus (*f)(const S*, int32_t, const double*, int32_t, float*, int32_t, RoiSize,
                                PixelRect)) {
    return windows<S, double, float>([=](const auto& sum, const auto& sqr, const auto& dst, RoiSize size) {
        return f(sum.data(), sum.step(), sqr.data(), sqr.step(), dst.data(), dst.step(), size, kWindow);
    });
}
Setup rectStdDevScaled(decltype(okpiRectStdDev_32s_C1RSfs)* f) {
    return windows<int32_t, int32_t, int32_t>([=](const auto& sum, const auto& sqr, const auto& dst,
                                                  RoiSize size) {
        return f(sum.data(), sum.step(), sqr.data(), sqr.step(), dst.data(), dst.step(), size, kWindow, 0);
    });
}

const bench::Family integrals("integral", [](bench::Family& family) {
    BENCH(integral, okpiIntegral_8u32s_C1R, bench::kSizesAndTiny);
    GROW(okpiIntegral_8u32s_C1R, integral(okpiIntegral_8u32s_C1R));
    BENCH(integral, okpiIntegral_8u32f_C1R);
    BENCH(floatIntegral, okpiIntegral_32f_C1R);
    BENCH(sqrIntegral, okpiSqrIntegral_8u32s_C1R);
    BENCH(sqrIntegral, okpiSqrIntegral_8u32s64f_C1R);
    BENCH(sqrIntegral, okpiSqrIntegral_8u32f64f_C1R);
    BENCH(rectStdDev, okpiRectStdDev_32f_C1R);
    BENCH(rectStdDev, okpiRectStdDev_32s32f_C1R);
    BENCH(rectStdDevScaled, okpiRectStdDev_32s_C1RSfs);
});

}  // namespace
