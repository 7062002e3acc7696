// Benchmarks of Gaussian filters. The peer's kernel has the same weights; it keeps more bits between its
// passes of integer images.
#include "okpcv/filter.h"
#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

constexpr int kLengths[] = {3, 5, 7, 9, 15, 21, 31, 63};
constexpr RoiSize kGaussianSizes[] = {{640, 480}, {1920, 1080}};

template <class T>
constexpr DataTypeCode kCode = sizeof(T) == 4   ? DataType32f
                               : sizeof(T) == 1 ? DataType8u
                               : T(-1) < T(0)   ? DataType16s
                                                : DataType16u;

// The length's customary width.
float sigmaOf(int length) {
    return 0.3F * (static_cast<float>(length - 1) * 0.5F - 1) + 0.8F;
}

// A filled spec and a buffer.
struct Areas {
    Image<uint8_t> spec{{1, 1}}, buffer{{1, 1}};

    // The companions of the 64-bit forms do the same.
    Areas(int length, DataTypeCode type, int channels, RoiSize size) {
        int32_t specBytes = 0, initBytes = 0, bufferBytes = 0;
        okpiFilterGaussianGetSpecSize(length, type, channels, &specBytes, &initBytes);
        spec = Image<uint8_t>({specBytes, 1});
        const Image<uint8_t> scratch({initBytes, 1});
        okpiFilterGaussianInit(size, length, sigmaOf(length), BorderReplicate, type, channels, spec.data(),
                               scratch.data());
        okpiFilterGaussianGetBufferSize(size, length, type, channels, &specBytes, &bufferBytes);
        buffer = Image<uint8_t>({bufferBytes, 1});
    }
    Areas(int length, DataTypeCode type, int channels, RoiSizeL size) {
        int64_t specBytes = 0, initBytes = 0, bufferBytes = 0;
        okpiFilterGaussianGetSpecSize_L(length, type, channels, &specBytes, &initBytes);
        spec = Image<uint8_t>({static_cast<int32_t>(specBytes), 1});
        const Image<uint8_t> scratch({static_cast<int32_t>(initBytes), 1});
        okpiFilterGaussianInit_L(size, length, sigmaOf(length), BorderReplicate, type, channels, spec.data(),
                                 scratch.data());
        okpiFilterGaussianGetBufferSize_L(size, length, type, channels, &specBytes, &bufferBytes);
        buffer = Image<uint8_t>({static_cast<int32_t>(bufferBytes), 1});
    }
};

// One pass. Kernels are symmetric: floats and bytes are folded before they are multiplied, a product for
// every two taps. Of integers one instruction multiplies two words and adds them, so words, which stay
// unfolded, take as many; the words of two rows, or of two folded taps, must stand beside each other.
template <class T>
bench::Work pass(int length, bool along) {
    const double taps = length, half = (length - 1) / 2;
    if constexpr (sizeof(T) == 4) {
        // Down the columns the rows that several outputs see can stay in registers.
        return {.elements = 4,
                .multiplications = half + 1,
                .additions = taps - 1,
                .loads = along ? taps : 1,
                .stores = 1};
    }
    constexpr double shiftsAndPack = 3;
    if constexpr (sizeof(T) == 1) {
        // Three taps can be had from averages of bytes.
        if (length == 3) return {.elements = 16, .others = 14, .loads = 3, .stores = 1};
        const double pairs = (length - 1) / 4 + 1;
        return {.elements = 8,
                .multiplications = 2 * pairs,
                .others = half + 2 * pairs + 2 * (pairs - 1) + shiftsAndPack,
                .loads = along ? 1 : taps,
                .stores = 1};
    }
    const double pairs = (length + 1) / 2;
    return {.elements = 8,
            .multiplications = 2 * pairs,
            .others = 2 * pairs + shiftsAndPack + (along ? 2 : 2 * pairs),
            .loads = taps,
            .stores = 1};
}

// `call` runs an export on source, destination, region and areas.
template <int kChannels, class T, class RoiT, class Call>
Setup gaussian(Call call, int length) {
    return [=](RoiSize size) {
        const RoiT roi{size.width, size.height};
        const Areas areas(length, kCode<T>, kChannels, roi);
        const auto src = bench::randomImage<T>(size, kChannels);
        const Image<T> dst(size, kChannels), theirs(size, kChannels);
        const double bytes = sizeof(T) * kChannels;
        return Case{
            .reads = bytes,
            .writes = bytes,
            .cycles = kChannels * (pass<T>(length, true) + pass<T>(length, false)).cyclesPerElement(),
            .ours = [=] { return call(src, dst, roi, areas); },
            .peerName = "cv::GaussianBlur",
            .peer = OPENCV(cv::GaussianBlur(src.mat(), theirs.mat(), {length, length},
                                            static_cast<double>(sigmaOf(length)), 0, cv::BORDER_REPLICATE)),
            .agree = bench::same(dst, theirs,
                                 sizeof(T) == 4   ? 1e-5
                                 : sizeof(T) == 1 ? 2
                                                  : 32)};
    };
}

// V is what the export takes as border value: an element, or a pointer to one for each channel.
template <int kChannels, class T, class Step, class RoiT, class V>
Setup withKind(okpStatus (*f)(const T*, Step, T*, Step, RoiT, BorderKind, V, const void*, void*),
               int length) {
    return gaussian<kChannels, T, RoiT>(
        [=](const Image<T>& src, const Image<T>& dst, RoiT roi, const Areas& areas) {
            return f(src.data(), src.step(), dst.data(), dst.step(), roi, BorderReplicate, V{},
                     areas.spec.data(), areas.buffer.data());
        },
        length);
}
template <int kChannels, class T, class V>
Setup withSpec(okpStatus (*f)(const T*, int32_t, T*, int32_t, RoiSize, V, const void*, void*), int length) {
    return gaussian<kChannels, T, RoiSize>(
        [=](const Image<T>& src, const Image<T>& dst, RoiSize roi, const Areas& areas) {
            return f(src.data(), src.step(), dst.data(), dst.step(), roi, V{}, areas.spec.data(),
                     areas.buffer.data());
        },
        length);
}

const bench::Family family_("gaussian", [](bench::Family& family) {
#define GAUSSIAN(NAME, CHANNELS)      \
    for (const int length : kLengths) \
    family.add(#NAME "/k" + std::to_string(length), withKind<CHANNELS>(NAME, length), kGaussianSizes)
    GAUSSIAN(okpiFilterGaussian_8u_C1R, 1);
    GAUSSIAN(okpiFilterGaussian_8u_C3R, 3);
    GAUSSIAN(okpiFilterGaussian_16u_C1R, 1);
    GAUSSIAN(okpiFilterGaussian_16u_C3R, 3);
    GAUSSIAN(okpiFilterGaussian_16s_C1R, 1);
    GAUSSIAN(okpiFilterGaussian_16s_C3R, 3);
    GAUSSIAN(okpiFilterGaussian_32f_C1R, 1);
    GAUSSIAN(okpiFilterGaussian_32f_C3R, 3);
#undef GAUSSIAN
    // The other forms share all but their arguments.
#define ONCE(SHAPE, NAME, CHANNELS) family.add(#NAME "/k5", SHAPE<CHANNELS>(NAME, 5), kGaussianSizes)
    ONCE(withKind, okpiFilterGaussian_8u_C1R_L, 1);
    ONCE(withKind, okpiFilterGaussian_8u_C3R_L, 3);
    ONCE(withKind, okpiFilterGaussian_16u_C1R_L, 1);
    ONCE(withKind, okpiFilterGaussian_16u_C3R_L, 3);
    ONCE(withKind, okpiFilterGaussian_16s_C1R_L, 1);
    ONCE(withKind, okpiFilterGaussian_16s_C3R_L, 3);
    ONCE(withKind, okpiFilterGaussian_32f_C1R_L, 1);
    ONCE(withKind, okpiFilterGaussian_32f_C3R_L, 3);
    ONCE(withSpec, okpiFilterGaussianBorder_8u_C1R, 1);
    ONCE(withSpec, okpiFilterGaussianBorder_8u_C3R, 3);
    ONCE(withSpec, okpiFilterGaussianBorder_16u_C1R, 1);
    ONCE(withSpec, okpiFilterGaussianBorder_16u_C3R, 3);
    ONCE(withSpec, okpiFilterGaussianBorder_16s_C1R, 1);
    ONCE(withSpec, okpiFilterGaussianBorder_16s_C3R, 3);
    ONCE(withSpec, okpiFilterGaussianBorder_32f_C1R, 1);
    ONCE(withSpec, okpiFilterGaussianBorder_32f_C3R, 3);
#undef ONCE
});

}  // namespace
