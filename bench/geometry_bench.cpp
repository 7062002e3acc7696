// Benchmarks of geometric sampling: pixels along a line, sub-pixel copies.
#include "okpcv/geometry.h"

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

template <class T, int kChannels>
Setup line(okpStatus (*f)(const T*, int32_t, RoiSize, T*, PixelPoint, PixelPoint)) {
    return [=](RoiSize size) {
        const auto src = randomImage<T>(size, kChannels);
        // Off the diagonal of the picture, where rasterisations choose differently.
        const PixelPoint from{3, 1}, to{size.width - 1, size.height / 3};
        const int samples = to.x - from.x + 1;
        const Image<T> dst({samples, 1}, kChannels), theirs({samples, 1}, kChannels);
        return Case {
            .pixels = static_cast<double>(samples),
            .ours = [=] { return f(src.data(), src.step(), size, dst.data(), from, to); },
            .peerName = "cv::LineIterator",
            .peer = OPENCV(cv::LineIterator it(src.mat(), {from.x, from.y}, {to.x, to.y}, 8, true);
                           for (int i = 0; i < it.count; ++i, ++it)
                               std::memcpy(theirs.at(i, 0), *it, kChannels * sizeof(T)))
        };
    };
}

template <class T>
Setup line1(okpStatus (*f)(const T*, int32_t, RoiSize, T*, PixelPoint, PixelPoint)) {
    return line<T, 1>(f);
}
template <class T>
Setup line3(okpStatus (*f)(const T*, int32_t, RoiSize, T*, PixelPoint, PixelPoint)) {
    return line<T, 3>(f);
}

// `tolerance` allows for the fixed-point weights, which differ from library to library.
template <class S, class D>
Setup copy(okpStatus (*f)(const S*, int32_t, D*, int32_t, RoiSize, float, float), double tolerance) {
    return [=](RoiSize size) {
        const auto src = randomImage<S>({size.width + 1, size.height + 1});
        const Image<D> dst(size), theirs(size);
        Case result{.reads = sizeof(S), .writes = sizeof(D), .ours = [=] {
                        return f(src.data(), src.step(), dst.data(), dst.step(), size, 0.3F, 0.7F);
                    }};
        if constexpr (sizeof(S) != 2) {
            // getRectSubPix takes the centre of the patch, and knows bytes and floats only.
            result.peerName = "cv::getRectSubPix";
            result.peer = OPENCV(cv::Mat out = theirs.mat(); cv::getRectSubPix(
                                     src.mat(), {size.width, size.height},
                                     {(size.width - 1) * 0.5F + 0.3F, (size.height - 1) * 0.5F + 0.7F}, out,
                                     CV_MAT_DEPTH(theirs.mat().type())));
            result.agree = same(dst, theirs, tolerance);
        }
        return result;
    };
}

template <class S, class D>
Setup copyExactly(okpStatus (*f)(const S*, int32_t, D*, int32_t, RoiSize, float, float)) {
    // The peer derives the fraction from a centre of several digits, so its weights are rounded differently.
    return copy(f, 1e-1);
}
Setup copyBytes(decltype(okpiCopySubpix_8u_C1R)* f) {
    return copy<uint8_t, uint8_t>(f, 1);
}
Setup copyScaled(decltype(okpiCopySubpix_8u16u_C1R_Sfs)* f) {
    return [=](RoiSize size) {
        const auto src = randomImage<uint8_t>({size.width + 1, size.height + 1});
        const Image<uint16_t> dst(size);
        return Case{.reads = 1, .writes = 2, .ours = [=] {
                        return f(src.data(), src.step(), dst.data(), dst.step(), size, 0.3F, 0.7F, -8);
                    }};
    };
}

const bench::Family family_("geometry", [](bench::Family& family) {
    BENCH(line1, okpiSampleLine_8u_C1R);
    BENCH(line3, okpiSampleLine_8u_C3R);
    BENCH(line1, okpiSampleLine_16u_C1R);
    BENCH(line3, okpiSampleLine_16u_C3R);
    BENCH(line1, okpiSampleLine_32f_C1R);
    BENCH(line3, okpiSampleLine_32f_C3R);
    BENCH(copyBytes, okpiCopySubpix_8u_C1R);
    BENCH(copyScaled, okpiCopySubpix_8u16u_C1R_Sfs);
    BENCH(copyExactly, okpiCopySubpix_16u_C1R);
    BENCH(copyExactly, okpiCopySubpix_8u32f_C1R);
    BENCH(copyExactly, okpiCopySubpix_16u32f_C1R);
    BENCH(copyExactly, okpiCopySubpix_32f_C1R);
});

}  // namespace
