// Benchmarks of features: Canny edges, peaks of response images.
#include "okpcv/features.h"

#include <cmath>

#include "support/compare.h"
#include "support/photograph.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// A smooth picture with few edges: waves of many lengths that jump where they pass a level, and little noise.
Image<uint8_t> smooth(RoiSize size) {
    Image<uint8_t> image(size);
    bench::Random random(7);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const double wave =
                std::sin(0.031 * x + 0.9 * std::sin(0.017 * y)) * std::sin(0.023 * y + 0.004 * x);
            const double level = 120 + 60 * wave + (wave > 0.2 ? 40 : 0);
            *image.at(x, y) = static_cast<uint8_t>(level + random.between(-3.0, 3.0));
        }
    }
    return image;
}

Image<uint8_t> noise(RoiSize size) {
    return bench::randomImage<uint8_t>(size);
}

// Central differences, three rows smoothed.
template <class T>
Image<T> derivativeOf(const Image<uint8_t>& src, bool vertical) {
    Image<T> result(src.size());
    for (int y = 1; y + 1 < src.size().height; ++y) {
        for (int x = 1; x + 1 < src.size().width; ++x) {
            int sum = 0;
            for (int i = -1; i <= 1; ++i) {
                sum += (2 - i * i) * (vertical ? *src.at(x + i, y + 1) - *src.at(x + i, y - 1)
                                               : *src.at(x + 1, y + i) - *src.at(x - 1, y + i));
            }
            *result.at(x, y) = static_cast<T>(sum);
        }
    }
    return result;
}

// A picture and the thresholds of its edges.
struct Picture {
    Image<uint8_t> (*make)(RoiSize);
    float low, high;
};
constexpr Picture kSmooth{smooth, 60, 150}, kNoise{noise, 60, 150}, kPhotograph{bench::photograph, 50, 150};

template <class T>
struct GivenDerivatives {
    RoiSize size;
    Picture picture;
    Image<uint8_t> src = picture.make(size);
    Image<T> dx = derivativeOf<T>(src, false), dy = derivativeOf<T>(src, true);
    Image<uint8_t> dst{size}, theirs{size};

    // The peer takes 16-bit derivatives only.
    Case timed(bench::Call ours, bool squared) const {
        Case result{.reads = 2.0 * sizeof(T), .writes = 1, .ours = ours};
        if constexpr (sizeof(T) == 2) {
            result.peerName = "cv::Canny";
            const GivenDerivatives copy = *this;
            result.peer = OPENCV(cv::Canny(copy.dx.mat(), copy.dy.mat(), copy.theirs.mat(), copy.picture.low,
                                           copy.picture.high, squared));
        }
        return result;
    }
};

template <class T>
Setup cannyFromDerivatives(okpStatus (*f)(const T*, int32_t, const T*, int32_t, uint8_t*, int32_t, RoiSize,
                                          float, float, uint8_t*),
                           Picture picture = kSmooth) {
    return [=](RoiSize size) {
        const GivenDerivatives<T> given{size, picture};
        int32_t bytes = 0;
        okpiCannyGetSize(size, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        return given.timed(
            [=] {
                return f(given.dx.data(), given.dx.step(), given.dy.data(), given.dy.step(), given.dst.data(),
                         given.dst.step(), size, picture.low, picture.high, buffer.data());
            },
            false);
    };
}

template <class T>
Setup cannyFromDerivativesL(okpStatus (*f)(const T*, int64_t, const T*, int64_t, uint8_t*, int64_t, RoiSizeL,
                                           float, float, NormKind, uint8_t*),
                            NormKind norm, Picture picture = kSmooth) {
    return [=](RoiSize size) {
        const GivenDerivatives<T> given{size, picture};
        const RoiSizeL sizeL{size.width, size.height};
        int64_t bytes = 0;
        okpiCannyGetSize_L(sizeL, &bytes);
        const Image<uint8_t> buffer({static_cast<int32_t>(bytes), 1});
        return given.timed(
            [=] {
                return f(given.dx.data(), given.dx.step(), given.dy.data(), given.dy.step(), given.dst.data(),
                         given.dst.step(), sizeL, picture.low, picture.high, norm, buffer.data());
            },
            norm == NormL2);
    };
}

// The peer knows Sobel derivatives with a replicated border.
Setup cannyOfImage(int32_t kind, MaskSizeCode mask, NormKind norm, Picture picture = kSmooth) {
    return [=](RoiSize size) {
        const Image<uint8_t> src = picture.make(size);
        const Image<uint8_t> dst(size), theirs(size);
        int32_t bytes = 0;
        okpiCannyBorderGetSize(size, kind, mask, DataType8u, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        // A 5 x 5 kernel's derivatives are about twelve times as large.
        const float scale = mask == MaskSize5x5 ? 12 : 1;
        const float low = picture.low * scale, high = picture.high * scale;
        Case result{.reads = 1, .writes = 1, .ours = [=] {
                        return okpiCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size,
                                                      kind, mask, BorderReplicate, 0, low, high, norm,
                                                      buffer.data());
                    }};
        if (kind == 2) {
            result.peerName = "cv::Canny";
            result.peer = OPENCV(cv::Canny(src.mat(), theirs.mat(), low, high, mask / 10, norm == NormL2));
        }
        return result;
    };
}

// A response image: noise below the threshold and a spike in every 16 x 16 pixels, or noise above it
// throughout.
template <class T>
Setup peaks(okpStatus (*f)(const T*, int32_t, RoiSize, T, PixelPoint*, int32_t, int32_t*, int32_t, int32_t,
                           uint8_t*),
            decltype(okpiFindPeaks3x3GetBufferSize_32f_C1R)* bufferSize, int32_t norm, bool dense) {
    return [=](RoiSize size) {
        const auto src = bench::randomImage<T>(size, 1, T(1), T(1000));
        for (int y = 8; y < size.height; y += 16) {
            for (int x = 8; x < size.width; x += 16) *src.at(x, y) = T(2000);
        }
        const int32_t capacity = size.width * size.height;
        const Image<int32_t> list({2 * capacity, 1});  // x and y of each peak
        const Image<int32_t> count({1, 1});
        int32_t bytes = 0;
        bufferSize(size.width, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        return Case{.reads = sizeof(T), .ours = [=] {
                        return f(src.data(), src.step(), size, dense ? T(0) : T(1500),
                                 reinterpret_cast<PixelPoint*>(list.data()), capacity, count.data(), norm, 1,
                                 buffer.data());
                    }};
    };
}

const bench::Family family_("features", [](bench::Family& family) {
    BENCH(cannyFromDerivatives, okpiCanny_16s8u_C1R);
    BENCH(cannyFromDerivatives, okpiCanny_32f8u_C1R);
    family.add("okpiCanny_16s8u_C1R/photograph", cannyFromDerivatives(okpiCanny_16s8u_C1R, kPhotograph));
    family.add("okpiCanny_16s8u_C1R_L/L1", cannyFromDerivativesL(okpiCanny_16s8u_C1R_L, NormL1));
    family.add("okpiCanny_16s8u_C1R_L/L2", cannyFromDerivativesL(okpiCanny_16s8u_C1R_L, NormL2));
    family.add("okpiCanny_16s8u_C1R_L/photograph-L2",
               cannyFromDerivativesL(okpiCanny_16s8u_C1R_L, NormL2, kPhotograph));
    family.add("okpiCanny_32f8u_C1R_L/L2", cannyFromDerivativesL(okpiCanny_32f8u_C1R_L, NormL2));
    family.add("okpiCannyBorder_8u_C1R/sobel3", cannyOfImage(2, MaskSize3x3, NormL1));
    GROW(okpiCannyBorder_8u_C1R, cannyOfImage(2, MaskSize3x3, NormL1));
    family.add("okpiCannyBorder_8u_C1R/sobel3-L2", cannyOfImage(2, MaskSize3x3, NormL2));
    family.add("okpiCannyBorder_8u_C1R/sobel3-photograph", cannyOfImage(2, MaskSize3x3, NormL1, kPhotograph));
    family.add("okpiCannyBorder_8u_C1R/sobel3-noise", cannyOfImage(2, MaskSize3x3, NormL1, kNoise));
    family.add("okpiCannyBorder_8u_C1R/sobel5", cannyOfImage(2, MaskSize5x5, NormL1));
    family.add("okpiCannyBorder_8u_C1R/scharr", cannyOfImage(5, MaskSize3x3, NormL1));
    family.add("okpiFindPeaks3x3_32f_C1R",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 0, false));
    family.add("okpiFindPeaks3x3_32f_C1R/cross",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 1, false));
    family.add("okpiFindPeaks3x3_32f_C1R/dense",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 0, true));
    family.add("okpiFindPeaks3x3_32s_C1R",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 0, false));
    family.add("okpiFindPeaks3x3_32s_C1R/cross",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 1, false));
    family.add("okpiFindPeaks3x3_32s_C1R/dense",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 0, true));
});

}  // namespace
