// Benchmarks of pyramids: sizes of levels and the record that describes them, in time per call; layers, in
// time per pixel of the larger level.
#include "okpcv/pyramid.h"

#include <vector>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// Rates: octaves, and one that makes thousands of levels of the larger sizes.
constexpr float kOctaves = 2.0F;
constexpr float kFine = 1.0005F;

template <class Roi>
Roi roiOf(RoiSize size) {
    return {size.width, size.height};
}

template <class Roi>
Setup down(okpStatus (*f)(Roi, Roi*, float)) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Roi result;
                        return f(roiOf<Roi>(size), &result, kOctaves);
                    }};
    };
}

template <class Roi>
Setup up(okpStatus (*f)(Roi, Roi*, Roi*, float)) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Roi least, most;
                        return f(roiOf<Roi>(size), &least, &most, kOctaves);
                    }};
    };
}

template <class Count, class Roi>
Setup getSize(okpStatus (*f)(Count*, Count*, int32_t, Roi, float), float rate) {
    return [=](RoiSize size) {
        return Case{.pixels = 1, .ours = [=] {
                        Count area, buffer;
                        return f(&area, &buffer, INT32_MAX, roiOf<Roi>(size), rate);
                    }};
    };
}

template <class Record, class Roi>
Setup init(okpStatus (*f)(Record**, int32_t, Roi, float, uint8_t*, uint8_t*), float rate) {
    return [=](RoiSize size) {
        int64_t areaBytes = 0, bufferBytes = 0;
        okpiPyramidGetSize_L(&areaBytes, &bufferBytes, INT32_MAX, roiOf<RoiSizeL>(size), rate);
        const Image<uint8_t> area({static_cast<int32_t>(areaBytes), 1});
        const Image<uint8_t> buffer({static_cast<int32_t>(bufferBytes), 1});
        return Case{.pixels = 1, .ours = [=] {
                        Record* record = nullptr;
                        return f(&record, INT32_MAX, roiOf<Roi>(size), rate, area.data(), buffer.data());
                    }};
    };
}

// The functions of one kind of layer and one type.
template <class T, class Count, class Roi>
struct Layer {
    okpStatus (*getSize)(Roi, float, int32_t, Count*, Count*);
    okpStatus (*init)(Roi, float, const float*, int32_t, void*);
    okpStatus (*operation)(const T*, Count, Roi, T*, Count, Roi, const void*, void*);
    int channels;
};

enum class Way { Down, Up };

// From one of the sizes to the next smaller one, or back. A null kernel is the binomial one.
template <class T, class Count, class Roi>
Setup layer(Way way, Layer<T, Count, Roi> f, float rate = kOctaves, std::vector<float> kernel = {}) {
    return [=](RoiSize large) {
        RoiSize small;
        okpiGetPyramidDownROI(large, &small, rate);
        const RoiSize from = way == Way::Down ? large : small, to = way == Way::Down ? small : large;
        const auto src = bench::randomImage<T>(from, f.channels);
        const Image<T> dst(to, f.channels), theirs(to, f.channels);
        const auto kernelSize = kernel.empty() ? 5 : static_cast<int32_t>(kernel.size());
        Count specBytes = 0, bufferBytes = 0;
        f.getSize(roiOf<Roi>(from), rate, kernelSize, &specBytes, &bufferBytes);
        const Image<uint8_t> spec({static_cast<int32_t>(specBytes), 1});
        const Image<uint8_t> buffer({static_cast<int32_t>(bufferBytes), 1});
        f.init(roiOf<Roi>(from), rate, kernel.empty() ? nullptr : kernel.data(), kernelSize, spec.data());
        const double pixelBytes = sizeof(T) * f.channels;
        const double share = static_cast<double>(small.width) * small.height / large.width / large.height;
        Case result{.reads = pixelBytes * (way == Way::Down ? 1 : share),
                    .writes = pixelBytes * (way == Way::Down ? share : 1),
                    .ours = [=] {
                        return f.operation(src.data(), src.step(), roiOf<Roi>(from), dst.data(), dst.step(),
                                           roiOf<Roi>(to), spec.data(), buffer.data());
                    }};
        if (rate == kOctaves && kernel.empty()) {
            if (way == Way::Down) {
                result.peerName = "cv::pyrDown";
                result.peer = OPENCV(cv::Mat out = theirs.mat(); cv::pyrDown(src.mat(), out, out.size()));
            } else {
                result.peerName = "cv::pyrUp";
                result.peer = OPENCV(cv::Mat out = theirs.mat(); cv::pyrUp(src.mat(), out, out.size()));
            }
            result.agree = bench::same(dst, theirs, std::is_same_v<T, float> ? 1e-5 : 0);
        }
        return result;
    };
}

const std::vector<float> kLongKernel{1, 6, 15, 20, 15, 6, 1};
constexpr RoiSize kOneSize[] = {{1920, 1080}};

const bench::Family family_("pyramid", [](bench::Family& family) {
    BENCH(down, okpiGetPyramidDownROI, kOneSize);
    BENCH(down, okpiGetPyramidDownROI_L, kOneSize);
    BENCH(up, okpiGetPyramidUpROI, kOneSize);
    BENCH(up, okpiGetPyramidUpROI_L, kOneSize);
    family.add("okpiPyramidGetSize/octaves", getSize(okpiPyramidGetSize, kOctaves), kOneSize);
    family.add("okpiPyramidGetSize/thousands", getSize(okpiPyramidGetSize, kFine), kOneSize);
    family.add("okpiPyramidGetSize_L/octaves", getSize(okpiPyramidGetSize_L, kOctaves), kOneSize);
    family.add("okpiPyramidInit/octaves", init(okpiPyramidInit, kOctaves), kOneSize);
    family.add("okpiPyramidInit/thousands", init(okpiPyramidInit, kFine), kOneSize);
    family.add("okpiPyramidInit_L/octaves", init(okpiPyramidInit_L, kOctaves), kOneSize);
    family.add("okpiPyramidLayerDown_8u_C1R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_8u_C1R, okpiPyramidLayerDownInit_8u_C1R,
                                      okpiPyramidLayerDown_8u_C1R, 1}));
    family.add("okpiPyramidLayerDown_8u_C3R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_8u_C3R, okpiPyramidLayerDownInit_8u_C3R,
                                      okpiPyramidLayerDown_8u_C3R, 3}));
    family.add("okpiPyramidLayerDown_16u_C1R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_16u_C1R, okpiPyramidLayerDownInit_16u_C1R,
                                      okpiPyramidLayerDown_16u_C1R, 1}));
    family.add("okpiPyramidLayerDown_16u_C3R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_16u_C3R, okpiPyramidLayerDownInit_16u_C3R,
                                      okpiPyramidLayerDown_16u_C3R, 3}));
    family.add("okpiPyramidLayerDown_32f_C1R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_32f_C1R, okpiPyramidLayerDownInit_32f_C1R,
                                      okpiPyramidLayerDown_32f_C1R, 1}));
    family.add("okpiPyramidLayerDown_32f_C3R",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_32f_C3R, okpiPyramidLayerDownInit_32f_C3R,
                                      okpiPyramidLayerDown_32f_C3R, 3}));
    family.add("okpiPyramidLayerDown_32f_C1R_L",
               layer(Way::Down, Layer{okpiPyramidLayerDownGetSize_32f_C1R_L,
                                      okpiPyramidLayerDownInit_32f_C1R_L, okpiPyramidLayerDown_32f_C1R_L, 1}),
               kOneSize);
    family.add("okpiPyramidLayerDown_8u_C1R/rate1.5",
               layer(Way::Down,
                     Layer{okpiPyramidLayerDownGetSize_8u_C1R, okpiPyramidLayerDownInit_8u_C1R,
                           okpiPyramidLayerDown_8u_C1R, 1},
                     1.5F),
               kOneSize);
    family.add("okpiPyramidLayerDown_8u_C1R/k7",
               layer(Way::Down,
                     Layer{okpiPyramidLayerDownGetSize_8u_C1R, okpiPyramidLayerDownInit_8u_C1R,
                           okpiPyramidLayerDown_8u_C1R, 1},
                     kOctaves, kLongKernel),
               kOneSize);
    family.add("okpiPyramidLayerDown_32f_C3R/rate1.5",
               layer(Way::Down,
                     Layer{okpiPyramidLayerDownGetSize_32f_C3R, okpiPyramidLayerDownInit_32f_C3R,
                           okpiPyramidLayerDown_32f_C3R, 3},
                     1.5F),
               kOneSize);
    family.add("okpiPyramidLayerDown_32f_C3R/k7",
               layer(Way::Down,
                     Layer{okpiPyramidLayerDownGetSize_32f_C3R, okpiPyramidLayerDownInit_32f_C3R,
                           okpiPyramidLayerDown_32f_C3R, 3},
                     kOctaves, kLongKernel),
               kOneSize);
    family.add("okpiPyramidLayerUp_8u_C1R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_8u_C1R, okpiPyramidLayerUpInit_8u_C1R,
                                    okpiPyramidLayerUp_8u_C1R, 1}));
    family.add("okpiPyramidLayerUp_8u_C3R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_8u_C3R, okpiPyramidLayerUpInit_8u_C3R,
                                    okpiPyramidLayerUp_8u_C3R, 3}));
    family.add("okpiPyramidLayerUp_16u_C1R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_16u_C1R, okpiPyramidLayerUpInit_16u_C1R,
                                    okpiPyramidLayerUp_16u_C1R, 1}));
    family.add("okpiPyramidLayerUp_16u_C3R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_16u_C3R, okpiPyramidLayerUpInit_16u_C3R,
                                    okpiPyramidLayerUp_16u_C3R, 3}));
    family.add("okpiPyramidLayerUp_32f_C1R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_32f_C1R, okpiPyramidLayerUpInit_32f_C1R,
                                    okpiPyramidLayerUp_32f_C1R, 1}));
    family.add("okpiPyramidLayerUp_32f_C3R",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_32f_C3R, okpiPyramidLayerUpInit_32f_C3R,
                                    okpiPyramidLayerUp_32f_C3R, 3}));
    family.add("okpiPyramidLayerUp_32f_C1R_L",
               layer(Way::Up, Layer{okpiPyramidLayerUpGetSize_32f_C1R_L, okpiPyramidLayerUpInit_32f_C1R_L,
                                    okpiPyramidLayerUp_32f_C1R_L, 1}),
               kOneSize);
    family.add("okpiPyramidLayerUp_8u_C1R/rate1.5",
               layer(Way::Up,
                     Layer{okpiPyramidLayerUpGetSize_8u_C1R, okpiPyramidLayerUpInit_8u_C1R,
                           okpiPyramidLayerUp_8u_C1R, 1},
                     1.5F),
               kOneSize);
    family.add("okpiPyramidLayerUp_8u_C1R/k7",
               layer(Way::Up,
                     Layer{okpiPyramidLayerUpGetSize_8u_C1R, okpiPyramidLayerUpInit_8u_C1R,
                           okpiPyramidLayerUp_8u_C1R, 1},
                     kOctaves, kLongKernel),
               kOneSize);
    family.add("okpiPyramidLayerUp_32f_C3R/rate1.5",
               layer(Way::Up,
                     Layer{okpiPyramidLayerUpGetSize_32f_C3R, okpiPyramidLayerUpInit_32f_C3R,
                           okpiPyramidLayerUp_32f_C3R, 3},
                     1.5F),
               kOneSize);
    family.add("okpiPyramidLayerUp_32f_C3R/k7",
               layer(Way::Up,
                     Layer{okpiPyramidLayerUpGetSize_32f_C3R, okpiPyramidLayerUpInit_32f_C3R,
                           okpiPyramidLayerUp_32f_C3R, 3},
                     kOctaves, kLongKernel),
               kOneSize);
});

}  // namespace
