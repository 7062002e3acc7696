// Benchmarks of distance transforms: chamfer distances by 3 x 3 and 5 x 5 masks, exact distances.
#include "okpcv/distance.h"

#include <cmath>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// What the distances are measured to: the outside of smooth blobs, single pixels here and there, or all
// pixels.
enum class Zeros { Outside, Scattered, Everywhere };

Image<uint8_t> pictureOf(Zeros zeros, RoiSize size) {
    if (zeros == Zeros::Outside) return bench::randomMask(size);
    const auto noise = bench::randomImage<uint16_t>(size);
    const Image<uint8_t> picture(size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            *picture.at(x, y) = zeros == Zeros::Scattered && *noise.at(x, y) % 256 != 0 ? 255 : 0;
        }
    }
    return picture;
}

// By norm code.
#ifdef OKPCV_BENCH_OPENCV
constexpr int kPeerNorms[] = {cv::DIST_C, cv::DIST_L1, cv::DIST_L2};
#else
constexpr int kPeerNorms[] = {0, 0, 0};
#endif

template <class T, class W>
Setup chamfer(okpStatus (*f)(const uint8_t*, int32_t, T*, int32_t, RoiSize, const W*), int mask, int norm,
              Zeros zeros) {
    return [=](RoiSize size) {
        const auto src = pictureOf(zeros, size);
        const Image<T> dst(size), theirs(size);
        const Image<W> weights({3, 1});
        if constexpr (std::is_same_v<W, float>) {
            okpiGetDistanceTransformMask_32f(mask, norm, weights.data());
        } else {
            okpiGetDistanceTransformMask_32s(mask, norm, weights.data());
        }
        Case result{.reads = 1, .writes = sizeof(T), .ours = [=] {
                        return f(src.data(), src.step(), dst.data(), dst.step(), size, weights.data());
                    }};
        // The peer knows floats, and bytes for L1 alone, by a 3 x 3 mask.
        if constexpr (std::is_same_v<T, float>) {
            result.peerName = "cv::distanceTransform";
            result.peer = OPENCV(cv::Mat out = theirs.mat();
                                 cv::distanceTransform(src.mat(), out, kPeerNorms[norm], mask));
            // It counts in units of 1 / 65536.
            result.agree = bench::same(dst, theirs, 1e-2);
        } else if constexpr (std::is_same_v<T, uint8_t>) {
            if (norm == 1) {
                result.peerName = "cv::distanceTransform";
                result.peer = OPENCV(cv::Mat out = theirs.mat();
                                     cv::distanceTransform(src.mat(), out, cv::DIST_L1, 3, CV_8U));
                result.agree = bench::same(dst, theirs);
            }
        }
        return result;
    };
}

Setup inPlace(okpStatus (*f)(uint8_t*, int32_t, RoiSize, const int32_t*), int mask) {
    return [=](RoiSize size) {
        const auto src = pictureOf(Zeros::Outside, size);
        const Image<uint8_t> image(size);
        const Image<int32_t> weights({3, 1});
        okpiGetDistanceTransformMask_32s(mask, 2, weights.data());
        return Case{.updates = 1,
                    .ours = [=] { return f(image.data(), image.step(), size, weights.data()); },
                    .before = [=] { image.assign(src); }};
    };
}

Setup exact(Zeros zeros) {
    return [=](RoiSize size) {
        const auto src = pictureOf(zeros, size);
        const Image<float> dst(size), theirs(size);
        int32_t bytes = 0;
        okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        return Case {
            .reads = 1, .writes = sizeof(float),
            .ours =
                [=] {
                    return okpiTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(),
                                                               size, buffer.data());
                },
            .peerName = "cv::distanceTransform",
            .peer = OPENCV(cv::Mat out = theirs.mat();
                           cv::distanceTransform(src.mat(), out, cv::DIST_L2, cv::DIST_MASK_PRECISE)),
            .agree = bench::same(dst, theirs, 1e-6)
        };
    };
}

template <class W>
Setup weights(okpStatus (*f)(int32_t, int32_t, W*)) {
    return [=](RoiSize) {
        const Image<W> result({3, 1});
        return Case{.pixels = 1, .ours = [=] { return f(5, 2, result.data()); }};
    };
}
Setup weightsByCode(decltype(okpiGetDistanceTransformMask)* f) {
    return [=](RoiSize) {
        const Image<float> result({3, 1});
        return Case{.pixels = 1, .ours = [=] { return f(52, result.data()); }};
    };
}
Setup bufferSize(decltype(okpiTrueDistanceTransformGetBufferSize_8u32f_C1R)* f) {
    return [=](RoiSize size) {
        const Image<int32_t> result({1, 1});
        return Case{.pixels = 1, .ours = [=] { return f(size, result.data()); }};
    };
}

constexpr RoiSize kTiny[] = {{16, 16}};
constexpr RoiSize kFullHd[] = {{1920, 1080}};

const bench::Family family_("distance", [](bench::Family& family) {
    constexpr auto blobs = Zeros::Outside;
    family.add("okpiDistanceTransform_3x3_8u_C1R/L1", chamfer(okpiDistanceTransform_3x3_8u_C1R, 3, 1, blobs));
    family.add("okpiDistanceTransform_3x3_8u_C1R/L2", chamfer(okpiDistanceTransform_3x3_8u_C1R, 3, 2, blobs));
    family.add("okpiDistanceTransform_3x3_8u_C1IR/L2", inPlace(okpiDistanceTransform_3x3_8u_C1IR, 3));
    family.add("okpiDistanceTransform_3x3_8u16u_C1R/L2",
               chamfer(okpiDistanceTransform_3x3_8u16u_C1R, 3, 2, blobs));
    family.add("okpiDistanceTransform_3x3_8u32f_C1R/C",
               chamfer(okpiDistanceTransform_3x3_8u32f_C1R, 3, 0, blobs), kFullHd);
    family.add("okpiDistanceTransform_3x3_8u32f_C1R/L1",
               chamfer(okpiDistanceTransform_3x3_8u32f_C1R, 3, 1, blobs), kFullHd);
    family.add("okpiDistanceTransform_3x3_8u32f_C1R/L2",
               chamfer(okpiDistanceTransform_3x3_8u32f_C1R, 3, 2, blobs));
    family.add("okpiDistanceTransform_3x3_8u32f_C1R/L2/scattered",
               chamfer(okpiDistanceTransform_3x3_8u32f_C1R, 3, 2, Zeros::Scattered));
    family.add("okpiDistanceTransform_5x5_8u_C1R/L2", chamfer(okpiDistanceTransform_5x5_8u_C1R, 5, 2, blobs));
    family.add("okpiDistanceTransform_5x5_8u_C1IR/L2", inPlace(okpiDistanceTransform_5x5_8u_C1IR, 5));
    family.add("okpiDistanceTransform_5x5_8u16u_C1R/L2",
               chamfer(okpiDistanceTransform_5x5_8u16u_C1R, 5, 2, blobs));
    family.add("okpiDistanceTransform_5x5_8u32f_C1R/L2",
               chamfer(okpiDistanceTransform_5x5_8u32f_C1R, 5, 2, blobs));
    family.add("okpiDistanceTransform_5x5_8u32f_C1R/L2/scattered",
               chamfer(okpiDistanceTransform_5x5_8u32f_C1R, 5, 2, Zeros::Scattered));
    family.add("okpiTrueDistanceTransform_8u32f_C1R", exact(blobs));
    GROW(okpiTrueDistanceTransform_8u32f_C1R, exact(blobs));
    family.add("okpiTrueDistanceTransform_8u32f_C1R/scattered", exact(Zeros::Scattered));
    family.add("okpiTrueDistanceTransform_8u32f_C1R/zeros", exact(Zeros::Everywhere));
    BENCH(weightsByCode, okpiGetDistanceTransformMask, kTiny);
    BENCH(weights, okpiGetDistanceTransformMask_32f, kTiny);
    BENCH(weights, okpiGetDistanceTransformMask_32s, kTiny);
    BENCH(bufferSize, okpiTrueDistanceTransformGetBufferSize_8u32f_C1R, kTiny);
});

}  // namespace
