// Benchmarks of derivative kernels, of gradients reduced to one channel, and of filters with fixed masks.
#include "okpcv/filter.h"
#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

constexpr RoiSize kDerivativeSizes[] = {{640, 480}, {1920, 1080}};

// A kernel of seven taps; the size stands for one call.
template <class T>
Setup kernel(okpStatus (*f)(T*, int32_t, int32_t, int32_t)) {
    return [=](RoiSize) {
        const Image<T> taps({16, 1});
        return Case{.pixels = 1, .ours = [=] { return f(taps.data(), 7, 2, 1); }};
    };
}

// The peers' equal of a norm takes several calls, so there is none.
template <class T>
Setup toGray(okpStatus (*f)(const T*, int32_t, T*, int32_t, RoiSize, int32_t), int32_t norm) {
    return [=](RoiSize size) {
        const auto src = bench::randomImage<T>(size, 3);
        const Image<T> dst(size);
        return Case{.reads = 3.0 * sizeof(T), .writes = sizeof(T), .ours = [=] {
                        return f(src.data(), src.step(), dst.data(), dst.step(), size, norm);
                    }};
    };
}

// What a mask needs for each output: its taps in one row, what becomes of that row by scalings (by powers of
// two) and additions, and the additions to the sums of the outputs that see it. The columns share their rows'
// results. Bytes are widened as they are loaded.
struct MaskWork {
    double taps, scalings, additions;

    template <class S>
    bench::Work work() const {
        if constexpr (sizeof(S) == 4) {
            return {.elements = 4,
                    .multiplications = scalings,
                    .additions = additions,
                    .loads = taps,
                    .stores = 1};
        }
        return {.elements = 8, .others = scalings + additions + taps, .loads = taps, .stores = 1};
    }
};
struct CrossWork {
    template <class S>
    static bench::Work work(int length) {
        // The tap in the middle is zero.
        return (length == 3 ? MaskWork{2, 0, 2} : MaskWork{4, 3, 6}).work<S>();
    }
};
struct LaplacianWork {
    template <class S>
    static bench::Work work(int length) {
        return (length == 3 ? MaskWork{3, 2, 3} : MaskWork{5, 6, 11}).work<S>();
    }
};
struct BoxWork {
    template <class S>
    static bench::Work work(int length) {
        const double between = length - 1;  // additions along a row, and down a column
        if constexpr (sizeof(S) == 4) {
            // The division counts as one multiplication, of which it takes the place.
            return MaskWork{between + 1, 1, 2 * between}.work<S>();
        }
        // One instruction adds two neighbouring bytes; even and odd outputs, which share all but one of their
        // bytes, are summed, divided by a multiplication and put together.
        return {.elements = 16,
                .multiplications = between / 2 + 2,
                .others = 2 + (between / 2 - 1) + 2 + 2 * between + 2,
                .loads = between + 1,
                .stores = 1};
    }
};

// Peer(source, destination, mask length) calls the peer.
template <class Work, class S, class D, class Peer>
Setup fixedMask(okpStatus (*f)(const S*, int32_t, D*, int32_t, RoiSize, MaskSizeCode, BorderKind, S, void*),
                okpStatus (*bufferSize)(RoiSize, MaskSizeCode, int32_t*), int length, const char* peerName,
                [[maybe_unused]] Peer peer) {
    return [=](RoiSize size) {
        const MaskSizeCode mask = length == 3 ? MaskSize3x3 : MaskSize5x5;
        const auto src = bench::randomImage<S>(size);
        const Image<D> dst(size), theirs(size);
        int32_t bytes = 0;
        bufferSize(size, mask, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        return Case{.reads = sizeof(S),
                    .writes = sizeof(D),
                    .cycles = Work::template work<S>(length).cyclesPerElement(),
                    .ours =
                        [=] {
                            return f(src.data(), src.step(), dst.data(), dst.step(), size, mask,
                                     BorderReplicate, S{}, buffer.data());
                        },
                    .peerName = peerName,
                    .peer = OPENCV(peer(src, theirs, length)),
                    .agree = bench::same(dst, theirs, sizeof(D) == 4 ? 1e-3 : 0)};
    };
}

#ifdef OKPCV_BENCH_OPENCV
constexpr auto box = [](const auto& src, const auto& dst, int length) {
    cv::boxFilter(src.mat(), dst.mat(), -1, {length, length}, {-1, -1}, true, cv::BORDER_REPLICATE);
};
constexpr auto cross = [](const auto& src, const auto& dst, int length) {
    cv::Sobel(src.mat(), dst.mat(), dst.mat().depth(), 1, 1, length, 1, 0, cv::BORDER_REPLICATE);
};
constexpr auto laplacian = [](const auto& src, const auto& dst, int length) {
    cv::Laplacian(src.mat(), dst.mat(), dst.mat().depth(), length, 1, 0, cv::BORDER_REPLICATE);
};
#else
constexpr auto box = 0, cross = 0, laplacian = 0;
#endif

const bench::Family family_("derivatives", [](bench::Family& family) {
    constexpr RoiSize one[] = {{1, 1}};
    BENCH(kernel, okpiGenSobelKernel_16s, one);
    BENCH(kernel, okpiGenSobelKernel_32f, one);
    for (const int norm : {0, 1, 2}) {
        const std::string variant = "/norm" + std::to_string(norm);
#define TO_GRAY(NAME) family.add(#NAME + variant, toGray(NAME, norm), kDerivativeSizes)
        TO_GRAY(okpiGradientColorToGray_8u_C3C1R);
        TO_GRAY(okpiGradientColorToGray_16u_C3C1R);
        TO_GRAY(okpiGradientColorToGray_32f_C3C1R);
#undef TO_GRAY
    }
    for (const int length : {3, 5}) {
        const std::string variant = "/k" + std::to_string(length);
#define FIXED_MASK(NAME, QUERY, WORK, PEER_NAME, PEER) \
    family.add(#NAME + variant, fixedMask<WORK>(NAME, QUERY, length, PEER_NAME, PEER), kDerivativeSizes)
        FIXED_MASK(okpiFilterLowpassBorder_8u_C1R, okpiFilterLowpassGetBufferSize_8u_C1R, BoxWork,
                   "cv::boxFilter", box);
        FIXED_MASK(okpiFilterLowpassBorder_32f_C1R, okpiFilterLowpassGetBufferSize_32f_C1R, BoxWork,
                   "cv::boxFilter", box);
        FIXED_MASK(okpiFilterSobelCrossBorder_8u16s_C1R, okpiFilterSobelCrossGetBufferSize_8u16s_C1R,
                   CrossWork, "cv::Sobel", cross);
        FIXED_MASK(okpiFilterSobelCrossBorder_32f_C1R, okpiFilterSobelCrossGetBufferSize_32f_C1R, CrossWork,
                   "cv::Sobel", cross);
        FIXED_MASK(okpiFilterLaplacianBorder_8u16s_C1R, okpiFilterLaplacianGetBufferSize_8u16s_C1R,
                   LaplacianWork, "cv::Laplacian", laplacian);
        FIXED_MASK(okpiFilterLaplacianBorder_32f_C1R, okpiFilterLaplacianGetBufferSize_32f_C1R, LaplacianWork,
                   "cv::Laplacian", laplacian);
#undef FIXED_MASK
    }
});

}  // namespace
