// Benchmarks of linear filters: separable filters with the caller's kernels, and their two halves.
#include "okpcv/filter.h"

#include <cmath>
#include <numeric>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

constexpr int kLengths[] = {3, 5, 7, 9, 15, 21, 31, 63};
constexpr RoiSize kFilterSizes[] = {{640, 480}, {1920, 1080}};

// A sampled Gaussian of the length's customary width.
std::vector<double> bell(int length) {
    const double sigma = 0.3 * ((length - 1) * 0.5 - 1) + 0.8;
    std::vector<double> kernel;
    for (int i = 0; i < length; ++i) {
        const double x = i - (length - 1) / 2;
        kernel.push_back(std::exp(-x * x / (2 * sigma * sigma)));
    }
    const double sum = std::accumulate(kernel.begin(), kernel.end(), 0.0);
    for (double& k : kernel) k /= sum;
    return kernel;
}

template <class T>
constexpr DataTypeCode kCode = sizeof(T) == 4   ? DataType32f
                               : sizeof(T) == 1 ? DataType8u
                               : T(-1) < T(0)   ? DataType16s
                                                : DataType16u;

// A kernel as both sides take it: K is float, or int16_t with a divisor of 256.
template <class K>
struct Kernel {
    std::vector<K> values;
    std::vector<float> normalised;
    static constexpr int divisor = 256;

    explicit Kernel(int length) {
        int sum = 0;
        for (const double k : bell(length)) {
            values.push_back(static_cast<K>(sizeof(K) == 4 ? k : std::lround(k * divisor)));
            sum += static_cast<int>(values.back());
        }
        if constexpr (sizeof(K) == 2) values[values.size() / 2] += static_cast<K>(divisor - sum);
        for (const K k : values) normalised.push_back(static_cast<float>(k) / (sizeof(K) == 4 ? 1 : divisor));
    }
    int length() const { return static_cast<int>(values.size()); }
    RoiSize square() const { return {length(), length()}; }
};

// The work of one call: a spec and a buffer.
template <class S, class K>
struct Areas {
    Image<uint8_t> spec{{1, 1}}, buffer{{1, 1}};

    // The companions of the 64-bit forms do the same.
    Areas(const Kernel<K>& kernel, RoiSizeL size, int channels) {
        int64_t specBytes = 0, bufferBytes = 0;
        okpiFilterSeparableGetSpecSize_L(kernel.square(), kCode<K>, channels, &specBytes);
        okpiFilterSeparableGetBufferSize_L(size, kernel.square(), kCode<S>, kCode<K>, channels, &bufferBytes);
        spec = Image<uint8_t>({static_cast<int32_t>(specBytes), 1});
        buffer = Image<uint8_t>({static_cast<int32_t>(bufferBytes), 1});
        const K* const values = kernel.values.data();
        if constexpr (sizeof(K) == 4) {
            okpiFilterSeparableInit_32f_L(values, values, kernel.square(), kCode<S>, channels, spec.data());
        } else {
            okpiFilterSeparableInit_16s_L(values, values, kernel.square(), Kernel<K>::divisor, 0, kCode<S>,
                                          channels, spec.data());
        }
    }
    Areas(const Kernel<K>& kernel, RoiSize size, int channels) {
        int32_t specBytes = 0, bufferBytes = 0;
        okpiFilterSeparableGetSpecSize(kernel.square(), kCode<K>, channels, &specBytes);
        okpiFilterSeparableGetBufferSize(size, kernel.square(), kCode<S>, kCode<K>, channels, &bufferBytes);
        spec = Image<uint8_t>({specBytes, 1});
        buffer = Image<uint8_t>({bufferBytes, 1});
        const K* const values = kernel.values.data();
        if constexpr (sizeof(K) == 4) {
            okpiFilterSeparableInit_32f(values, values, kernel.square(), kCode<S>, channels, spec.data());
        } else {
            okpiFilterSeparableInit_16s(values, values, kernel.square(), Kernel<K>::divisor, 0, kCode<S>,
                                        channels, spec.data());
        }
    }
};

// One pass in single precision, in kernel order: a product, an addition and a load for every tap.
bench::Work floatPass(int length) {
    const double taps = length;
    return {.elements = 4, .multiplications = taps, .additions = taps - 1, .loads = taps, .stores = 1};
}

// Passes that sum in integers, where that is exact. One instruction multiplies two taps and adds them.
double pairsOf(int length) {
    return (length + 1) / 2;
}
// Along a row of bytes, of which a vector has 16, or of words, 8.
bench::Work integerRow(double elements, int length) {
    const double pairs = pairsOf(length);
    return {.elements = elements,
            .multiplications = 2 * pairs,
            .others = 2 * (pairs - 1),
            .loads = 2 * pairs,
            .stores = 1};
}
// Down columns of 16-bit sums: two rows of output share the loads and what is interleaved, and the results
// are shifted and packed.
bench::Work integerColumn(int length) {
    const double pairs = pairsOf(length);
    return {.elements = 16,
            .multiplications = 4 * pairs,
            .others = 4 * (pairs - 1) + 2 * pairs + 7,
            .loads = 2 * pairs,
            .stores = 1};
}

// Both passes over elements of S with a kernel of K; integer kernels here are small.
template <class S, class K>
bench::Work passes(int length) {
    if constexpr (sizeof(K) == 4) return floatPass(length) + floatPass(length);
    if constexpr (sizeof(S) == 1) return integerRow(16, length) + integerColumn(length);
    return integerRow(8, length) + floatPass(length);
}

// V is what the export takes as border value: an element, or a pointer to one for each channel.
template <class K, class S, class D, class Step, class RoiT, class V>
Setup separable(okpStatus (*f)(const S*, Step, D*, Step, RoiT, BorderKind, V, const void*, void*),
                int channels, int length) {
    return [=](RoiSize size) {
        const Kernel<K> kernel(length);
        const RoiT roi{size.width, size.height};
        const Areas<S, K> areas(kernel, roi, channels);
        const auto src = bench::randomImage<S>(size, channels);
        const Image<D> dst(size, channels), theirs(size, channels);
        Case result{
            .reads = 1.0 * sizeof(S) * channels,
            .writes = 1.0 * sizeof(D) * channels,
            .cycles = channels * passes<S, K>(length).cyclesPerElement(),
            .ours =
                [=] {
                    return f(src.data(), src.step(), dst.data(), dst.step(), roi, BorderReplicate, V{},
                             areas.spec.data(), areas.buffer.data());
                },
            .peerName = "cv::sepFilter2D",
            .peer = OPENCV(cv::sepFilter2D(src.mat(), theirs.mat(), theirs.mat().depth(), kernel.normalised,
                                           kernel.normalised, {-1, -1}, 0, cv::BORDER_REPLICATE))};
        // The peer rounds integers where this library truncates.
        if (sizeof(D) == 4) result.agree = bench::same(dst, theirs, 1e-5);
        return result;
    };
}

// The halves of a separable filter, which have no peer. F is the export; kernels of floats have no divisor.
template <int kChannels, class S, class D, class K, class F>
Setup rows(F f, okpStatus (*bufferSize)(RoiSize, int32_t, int32_t*), int length) {
    return [=](RoiSize size) {
        const Kernel<K> kernel(length);
        const auto src = bench::randomImage<S>(size, kChannels);
        const Image<D> dst(size, kChannels);
        std::conditional_t<kChannels == 1, S, const S*> borderValue{};
        std::vector<D*> pointers;
        for (int y = 0; y < size.height; ++y) pointers.push_back(dst.row(y));
        int32_t bytes = 0;
        bufferSize(size, length, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        const auto call = [=, pointedTo = dst](auto... divisor) {
            return f(src.data(), src.step(), pointers.data(), size, kernel.values.data(), length, length / 2,
                     BorderReplicate, borderValue, divisor..., buffer.data());
        };
        return Case{.reads = 1.0 * sizeof(S) * kChannels, .writes = 1.0 * sizeof(D) * kChannels, .ours = [=] {
                        if constexpr (sizeof(K) == 4)
                            return call();
                        else
                            return call(Kernel<K>::divisor);
                    }};
    };
}

template <int kChannels, class S, class D, class K, class F>
Setup columns(F f, okpStatus (*bufferSize)(RoiSize, int32_t, int32_t*), int length) {
    return [=](RoiSize size) {
        const Kernel<K> kernel(length);
        const auto src = bench::randomImage<S>({size.width, size.height + length - 1}, kChannels);
        const Image<D> dst(size, kChannels);
        std::vector<const S*> pointers;
        for (int y = 0; y < src.size().height; ++y) pointers.push_back(src.row(y));
        int32_t bytes = 0;
        bufferSize(size, length, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        const auto call = [=, pointedTo = src](auto... divisor) {
            return f(pointers.data(), dst.data(), dst.step(), size, kernel.values.data(), length, divisor...,
                     buffer.data());
        };
        return Case{.reads = 1.0 * sizeof(S) * kChannels, .writes = 1.0 * sizeof(D) * kChannels, .ours = [=] {
                        if constexpr (sizeof(K) == 4)
                            return call();
                        else
                            return call(Kernel<K>::divisor);
                    }};
    };
}

const bench::Family family_("filter", [](bench::Family& family) {
    const auto add = [&]<class K>(const char* name, auto function, int channels, K, const char* kernels) {
        for (const int length : kLengths) {
            family.add(std::string(name) + "/k" + std::to_string(length) + kernels,
                       separable<K>(function, channels, length), kFilterSizes);
        }
    };
#define SEPARABLE(NAME, CHANNELS, K, KERNELS) add(#NAME, NAME, CHANNELS, K{}, KERNELS)
    SEPARABLE(okpiFilterSeparable_8u_C1R, 1, int16_t, "");
    SEPARABLE(okpiFilterSeparable_8u_C3R, 3, int16_t, "");
    SEPARABLE(okpiFilterSeparable_8u_C4R, 4, int16_t, "");
    SEPARABLE(okpiFilterSeparable_8u_C1R, 1, float, "-float");
    SEPARABLE(okpiFilterSeparable_8u_C3R, 3, float, "-float");
    SEPARABLE(okpiFilterSeparable_8u_C4R, 4, float, "-float");
    SEPARABLE(okpiFilterSeparable_8u16s_C1R, 1, int16_t, "");
    SEPARABLE(okpiFilterSeparable_8u16s_C3R, 3, int16_t, "");
    SEPARABLE(okpiFilterSeparable_8u16s_C4R, 4, int16_t, "");
    SEPARABLE(okpiFilterSeparable_16s_C1R, 1, int16_t, "");
    SEPARABLE(okpiFilterSeparable_16s_C3R, 3, int16_t, "");
    SEPARABLE(okpiFilterSeparable_16s_C4R, 4, int16_t, "");
    SEPARABLE(okpiFilterSeparable_16u_C1R, 1, float, "");
    SEPARABLE(okpiFilterSeparable_16u_C3R, 3, float, "");
    SEPARABLE(okpiFilterSeparable_16u_C4R, 4, float, "");
    SEPARABLE(okpiFilterSeparable_32f_C1R, 1, float, "");
    SEPARABLE(okpiFilterSeparable_32f_C3R, 3, float, "");
    SEPARABLE(okpiFilterSeparable_32f_C4R, 4, float, "");
#undef SEPARABLE
    GROW(okpiFilterSeparable_32f_C1R, separable<float>(okpiFilterSeparable_32f_C1R, 1, 5));
    // The 64-bit forms share all but their arguments.
#define SEPARABLE_L(NAME, CHANNELS, K) family.add(#NAME "/k5", separable<K>(NAME, CHANNELS, 5), kFilterSizes)
    SEPARABLE_L(okpiFilterSeparable_8u_C1R_L, 1, int16_t);
    SEPARABLE_L(okpiFilterSeparable_8u_C3R_L, 3, int16_t);
    SEPARABLE_L(okpiFilterSeparable_8u_C4R_L, 4, int16_t);
    SEPARABLE_L(okpiFilterSeparable_8u16s_C1R_L, 1, int16_t);
    SEPARABLE_L(okpiFilterSeparable_8u16s_C3R_L, 3, int16_t);
    SEPARABLE_L(okpiFilterSeparable_8u16s_C4R_L, 4, int16_t);
    SEPARABLE_L(okpiFilterSeparable_16s_C1R_L, 1, int16_t);
    SEPARABLE_L(okpiFilterSeparable_16s_C3R_L, 3, int16_t);
    SEPARABLE_L(okpiFilterSeparable_16s_C4R_L, 4, int16_t);
    SEPARABLE_L(okpiFilterSeparable_16u_C1R_L, 1, float);
    SEPARABLE_L(okpiFilterSeparable_16u_C3R_L, 3, float);
    SEPARABLE_L(okpiFilterSeparable_16u_C4R_L, 4, float);
    SEPARABLE_L(okpiFilterSeparable_32f_C1R_L, 1, float);
    SEPARABLE_L(okpiFilterSeparable_32f_C3R_L, 3, float);
    SEPARABLE_L(okpiFilterSeparable_32f_C4R_L, 4, float);
#undef SEPARABLE_L

#define HALF(SHAPE, CHANNELS, NAME, QUERY, ...) \
    family.add(#NAME "/k5", SHAPE<CHANNELS, __VA_ARGS__>(NAME, QUERY, 5), kFilterSizes)
    HALF(rows, 1, okpiFilterRowBorderPipeline_8u16s_C1R, okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
         uint8_t, int16_t, int16_t);
    HALF(rows, 3, okpiFilterRowBorderPipeline_8u16s_C3R, okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R,
         uint8_t, int16_t, int16_t);
    HALF(rows, 1, okpiFilterRowBorderPipeline_16s_C1R, okpiFilterRowBorderPipelineGetBufferSize_16s_C1R,
         int16_t, int16_t, int16_t);
    HALF(rows, 3, okpiFilterRowBorderPipeline_16s_C3R, okpiFilterRowBorderPipelineGetBufferSize_16s_C3R,
         int16_t, int16_t, int16_t);
    HALF(rows, 1, okpiFilterRowBorderPipeline_Low_16s_C1R,
         okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, int16_t, int16_t, int16_t);
    HALF(rows, 3, okpiFilterRowBorderPipeline_Low_16s_C3R,
         okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, int16_t, int16_t, int16_t);
    HALF(rows, 1, okpiFilterRowBorderPipeline_16u_C1R, okpiFilterRowBorderPipelineGetBufferSize_16u_C1R,
         uint16_t, uint16_t, int16_t);
    HALF(rows, 3, okpiFilterRowBorderPipeline_16u_C3R, okpiFilterRowBorderPipelineGetBufferSize_16u_C3R,
         uint16_t, uint16_t, int16_t);
    HALF(rows, 1, okpiFilterRowBorderPipeline_32f_C1R, okpiFilterRowBorderPipelineGetBufferSize_32f_C1R,
         float, float, float);
    HALF(rows, 3, okpiFilterRowBorderPipeline_32f_C3R, okpiFilterRowBorderPipelineGetBufferSize_32f_C3R,
         float, float, float);
    HALF(columns, 1, okpiFilterColumnPipeline_16s8s_C1R, okpiFilterColumnPipelineGetBufferSize_16s8s_C1R,
         int16_t, int8_t, int16_t);
    HALF(columns, 3, okpiFilterColumnPipeline_16s8s_C3R, okpiFilterColumnPipelineGetBufferSize_16s8s_C3R,
         int16_t, int8_t, int16_t);
    HALF(columns, 1, okpiFilterColumnPipeline_16s8u_C1R, okpiFilterColumnPipelineGetBufferSize_16s8u_C1R,
         int16_t, uint8_t, int16_t);
    HALF(columns, 3, okpiFilterColumnPipeline_16s8u_C3R, okpiFilterColumnPipelineGetBufferSize_16s8u_C3R,
         int16_t, uint8_t, int16_t);
    HALF(columns, 1, okpiFilterColumnPipeline_16s_C1R, okpiFilterColumnPipelineGetBufferSize_16s_C1R, int16_t,
         int16_t, int16_t);
    HALF(columns, 3, okpiFilterColumnPipeline_16s_C3R, okpiFilterColumnPipelineGetBufferSize_16s_C3R, int16_t,
         int16_t, int16_t);
    HALF(columns, 1, okpiFilterColumnPipeline_Low_16s_C1R, okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
         int16_t, int16_t, int16_t);
    HALF(columns, 3, okpiFilterColumnPipeline_Low_16s_C3R, okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R,
         int16_t, int16_t, int16_t);
    HALF(columns, 1, okpiFilterColumnPipeline_16u_C1R, okpiFilterColumnPipelineGetBufferSize_16u_C1R,
         uint16_t, uint16_t, int16_t);
    HALF(columns, 3, okpiFilterColumnPipeline_16u_C3R, okpiFilterColumnPipelineGetBufferSize_16u_C3R,
         uint16_t, uint16_t, int16_t);
    HALF(columns, 1, okpiFilterColumnPipeline_32f_C1R, okpiFilterColumnPipelineGetBufferSize_32f_C1R, float,
         float, float);
    HALF(columns, 3, okpiFilterColumnPipeline_32f_C3R, okpiFilterColumnPipelineGetBufferSize_32f_C3R, float,
         float, float);
#undef HALF
});

}  // namespace
