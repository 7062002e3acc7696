// Benchmarks of pixel arithmetic: absolute differences, accumulators, motion history.
#include "okpcv/arith.h"

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

// OpenCV may fuse a multiplication and an addition, so its floats differ in the last places.
constexpr double kRounding = 1e-5;

template <class T, int kChannels = 1>
Setup absDiff(okpStatus (*f)(const T*, int32_t, const T*, int32_t, T*, int32_t, RoiSize)) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size, kChannels), b = randomImage<T>(size, kChannels);
        const Image<T> dst(size, kChannels), theirs(size, kChannels);
        return Case{
            .reads = 2.0 * sizeof(T) * kChannels,
            .writes = 1.0 * sizeof(T) * kChannels,
            .ours = [=] { return f(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size); },
            .peerName = "cv::absdiff",
            .peer = OPENCV(cv::absdiff(a.mat(), b.mat(), theirs.mat())),
            .agree = same(dst, theirs)};
    };
}

Setup absDiffOf3Channels(decltype(okpiAbsDiff_8u_C3R)* f) {
    return absDiff<uint8_t, 3>(f);
}

template <class T, class V>
Setup absDiffC(okpStatus (*f)(const T*, int32_t, T*, int32_t, RoiSize, V)) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size);
        const Image<T> dst(size), theirs(size);
        const V value = 77;
        return Case{.reads = sizeof(T),
                    .writes = sizeof(T),
                    .ours = [=] { return f(a.data(), a.step(), dst.data(), dst.step(), size, value); },
                    .peerName = "cv::absdiff",
                    .peer = OPENCV(cv::absdiff(a.mat(), cv::Scalar(value), theirs.mat())),
                    .agree = same(dst, theirs)};
    };
}

// An accumulator's formula: what it does beside reading and writing the accumulator.
struct Formula {
    int sources;
    double multiplications, additions;
    int maskedBytes = 0;  // of the elements that the mask is applied to; 0: no mask
};
constexpr Formula kSum{1, 0, 1}, kSquare{1, 1, 1}, kProduct{2, 1, 1}, kAverage{1, 1, 2};
constexpr Formula masked(Formula formula, int bytes) {
    formula.maskedBytes = bytes;
    return formula;
}

// Its work on four pixels. Integers are widened and converted, which adders do; bytes are multiplied before.
// Masks are compared and applied.
template <class T>
bench::Work workOf(Formula f) {
    const int integers = sizeof(T) < sizeof(float) ? f.sources : 0;
    const int conversions = sizeof(T) == 1 ? 1 : integers;
    const bool hasMask = f.maskedBytes != 0;
    return {.elements = 4,
            .multiplications = f.multiplications,
            .additions = f.additions + conversions,
            .others = integers + 2 * f.maskedBytes / 4.0,
            .loads = 1 + (f.sources * sizeof(T) + hasMask) / 4.0,
            .stores = 1};
}

// Operands of the accumulators. Sources are at least 1 and accumulators start there, so that sums only grow
// and averages stay between 1 and the largest source: no denormals however often the case is called. The
// fastest growth, of squares of 16 bits, would take 2^96 calls to leave the range.
template <class T>
struct Operands {
    RoiSize size;
    Image<T> a = randomImage<T>(size, 1, T{1}), b = randomImage<T>(size, 1, T{1});
    Image<uint8_t> mask = bench::randomMask(size);
    Image<float> acc = randomImage<float>(size), theirs = acc.clone();

    Case updating(Formula formula, bench::Call ours, const char* peerName, bench::Call peer) const {
        return {.reads = 1.0 * formula.sources * sizeof(T) + (formula.maskedBytes != 0),
                .updates = sizeof(float),
                .cycles = workOf<T>(formula).cyclesPerElement(),
                .ours = ours,
                .peerName = peerName,
                .peer = peer,
                .agree = same(acc, theirs, kRounding)};
    }
};

template <class T>
using Plain = okpStatus(const T*, int32_t, float*, int32_t, RoiSize);
template <class T>
using Masked = okpStatus(const T*, int32_t, const uint8_t*, int32_t, float*, int32_t, RoiSize);

template <class T>
bench::Call call(const Operands<T>& o, Plain<T>* f) {
    return [=] { return f(o.a.data(), o.a.step(), o.acc.data(), o.acc.step(), o.size); };
}

template <class T>
bench::Call callMasked(const Operands<T>& o, Masked<T>* f) {
    return [=] {
        return f(o.a.data(), o.a.step(), o.mask.data(), o.mask.step(), o.acc.data(), o.acc.step(), o.size);
    };
}

template <class T>
Setup sum(Plain<T>* f) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        return o.updating(kSum, call(o, f), "cv::accumulate",
                          OPENCV(cv::accumulate(o.a.mat(), o.theirs.mat())));
    };
}

template <class T>
Setup sumMasked(Masked<T>* f) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        return o.updating(masked(kSum, sizeof(T)), callMasked(o, f), "cv::accumulate",
                          OPENCV(cv::accumulate(o.a.mat(), o.theirs.mat(), o.mask.mat())));
    };
}

template <class T>
Setup square(Plain<T>* f) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        return o.updating(kSquare, call(o, f), "cv::accumulateSquare",
                          OPENCV(cv::accumulateSquare(o.a.mat(), o.theirs.mat())));
    };
}

template <class T>
Setup squareMasked(Masked<T>* f) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        return o.updating(masked(kSquare, sizeof(T)), callMasked(o, f), "cv::accumulateSquare",
                          OPENCV(cv::accumulateSquare(o.a.mat(), o.theirs.mat(), o.mask.mat())));
    };
}

template <class T>
Setup product(okpStatus (*f)(const T*, int32_t, const T*, int32_t, float*, int32_t, RoiSize)) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        const auto ours = [=] {
            return f(o.a.data(), o.a.step(), o.b.data(), o.b.step(), o.acc.data(), o.acc.step(), size);
        };
        return o.updating(kProduct, ours, "cv::accumulateProduct",
                          OPENCV(cv::accumulateProduct(o.a.mat(), o.b.mat(), o.theirs.mat())));
    };
}

template <class T>
Setup productMasked(okpStatus (*f)(const T*, int32_t, const T*, int32_t, const uint8_t*, int32_t, float*,
                                   int32_t, RoiSize)) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        const auto ours = [=] {
            return f(o.a.data(), o.a.step(), o.b.data(), o.b.step(), o.mask.data(), o.mask.step(),
                     o.acc.data(), o.acc.step(), size);
        };
        return o.updating(masked(kProduct, sizeof(T)), ours, "cv::accumulateProduct",
                          OPENCV(cv::accumulateProduct(o.a.mat(), o.b.mat(), o.theirs.mat(), o.mask.mat())));
    };
}

constexpr float kWeight = 0.05f;

template <class T>
Setup average(okpStatus (*f)(const T*, int32_t, float*, int32_t, RoiSize, float)) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        const auto ours = [=] {
            return f(o.a.data(), o.a.step(), o.acc.data(), o.acc.step(), size, kWeight);
        };
        return o.updating(kAverage, ours, "cv::accumulateWeighted",
                          OPENCV(cv::accumulateWeighted(o.a.mat(), o.theirs.mat(), kWeight)));
    };
}

template <class T>
Setup averageMasked(okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, float*, int32_t, RoiSize,
                                   float)) {
    return [=](RoiSize size) {
        const Operands<T> o{size};
        const auto ours = [=] {
            return f(o.a.data(), o.a.step(), o.mask.data(), o.mask.step(), o.acc.data(), o.acc.step(), size,
                     kWeight);
        };
        return o.updating(masked(kAverage, sizeof(float)), ours, "cv::accumulateWeighted",
                          OPENCV(cv::accumulateWeighted(o.a.mat(), o.theirs.mat(), kWeight, o.mask.mat())));
    };
}

Setup blend(decltype(okpiAddWeighted_32f_C1R)* f) {
    return [=](RoiSize size) {
        const auto a = randomImage<float>(size), b = randomImage<float>(size);
        const Image<float> dst(size), theirs(size);
        return Case{.reads = 8,
                    .writes = 4,
                    .ours =
                        [=] {
                            return f(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size,
                                     kWeight);
                        },
                    .peerName = "cv::addWeighted",
                    .peer = OPENCV(cv::addWeighted(a.mat(), kWeight, b.mat(), 1 - kWeight, 0, theirs.mat())),
                    .agree = same(dst, theirs, kRounding)};
    };
}

// Of the pixels that do not move, the first call clears the half that is too old; later calls find the rest.
template <class T>
Setup motionHistory(okpStatus (*f)(const T*, int32_t, float*, int32_t, RoiSize, float, float)) {
    return [=](RoiSize size) {
        const Image<uint8_t> blobs = bench::randomMask(size);
        const Image<T> silhouette(size);
        for (int y = 0; y < size.height; ++y) std::copy_n(blobs.row(y), size.width, silhouette.row(y));
        const auto history = randomImage<float>(size, 1, 0.0f, 100.0f);
        return Case{.reads = sizeof(T), .updates = sizeof(float), .ours = [=] {
                        return f(silhouette.data(), silhouette.step(), history.data(), history.step(), size,
                                 100.0f, 50.0f);
                    }};
    };
}

const bench::Family arith("arith", [](bench::Family& family) {
    BENCH(absDiff, okpiAbsDiff_8u_C1R, bench::kSizesAndTiny);
    GROW(okpiAbsDiff_8u_C1R, absDiff(okpiAbsDiff_8u_C1R));
    BENCH(absDiffOf3Channels, okpiAbsDiff_8u_C3R);
    BENCH(absDiff, okpiAbsDiff_16u_C1R);
    BENCH(absDiff, okpiAbsDiff_32f_C1R);
    BENCH(absDiffC, okpiAbsDiffC_8u_C1R);
    BENCH(absDiffC, okpiAbsDiffC_16u_C1R);
    BENCH(absDiffC, okpiAbsDiffC_32f_C1R);

    BENCH(sum, okpiAdd_8u32f_C1IR, bench::kSizesAndTiny);
    BENCH(sum, okpiAdd_16u32f_C1IR);
    BENCH(sumMasked, okpiAdd_8u32f_C1IMR);
    BENCH(sumMasked, okpiAdd_16u32f_C1IMR);
    BENCH(sumMasked, okpiAdd_32f_C1IMR);
    BENCH(square, okpiAddSquare_8u32f_C1IR);
    BENCH(square, okpiAddSquare_16u32f_C1IR);
    BENCH(square, okpiAddSquare_32f_C1IR);
    BENCH(squareMasked, okpiAddSquare_8u32f_C1IMR);
    BENCH(squareMasked, okpiAddSquare_16u32f_C1IMR);
    BENCH(squareMasked, okpiAddSquare_32f_C1IMR);
    BENCH(product, okpiAddProduct_8u32f_C1IR);
    BENCH(product, okpiAddProduct_16u32f_C1IR);
    BENCH(product, okpiAddProduct_32f_C1IR);
    BENCH(productMasked, okpiAddProduct_8u32f_C1IMR);
    BENCH(productMasked, okpiAddProduct_16u32f_C1IMR);
    BENCH(productMasked, okpiAddProduct_32f_C1IMR);
    BENCH(average, okpiAddWeighted_8u32f_C1IR);
    BENCH(average, okpiAddWeighted_16u32f_C1IR);
    BENCH(average, okpiAddWeighted_32f_C1IR);
    BENCH(averageMasked, okpiAddWeighted_8u32f_C1IMR);
    BENCH(averageMasked, okpiAddWeighted_16u32f_C1IMR);
    BENCH(averageMasked, okpiAddWeighted_32f_C1IMR);
    BENCH(blend, okpiAddWeighted_32f_C1R);

    BENCH(motionHistory, okpiUpdateMotionHistory_8u32f_C1IR);
    BENCH(motionHistory, okpiUpdateMotionHistory_16u32f_C1IR);
    BENCH(motionHistory, okpiUpdateMotionHistory_32f_C1IR);
});

}  // namespace
