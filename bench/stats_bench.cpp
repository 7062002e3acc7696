// Benchmarks of the statistics: norms, means, standard deviations, extrema. Masks select a random half of the
// pixels, which no branch predictor can follow; variants show masks that select nothing, all, or blobs.
#include "okpcv/stats.h"

#include <cstdio>
#include <memory>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::randomImage;
using bench::Setup;

enum class Select { Random, Nothing, All, Blobs };

Image<uint8_t> maskOf(RoiSize size, Select select) {
    if (select == Select::Blobs) return bench::randomMask(size);
    Image<uint8_t> mask(size);
    bench::Random random(bench::imageCount);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            *mask.at(x, y) =
                select == Select::All || (select == Select::Random && random.between(0, 1) != 0) ? 255 : 0;
        }
    }
    return mask;
}

// The numbers that a call gives, ours and the peer's.
struct Numbers {
    double ours[2] = {}, theirs[2] = {};
    float min = 0, max = 0;
    PixelPoint minAt{}, maxAt{};
};
using Results = std::shared_ptr<Numbers>;

// Float sums in single precision differ from those in double precision.
std::function<std::string()> close(const Results& results, double tolerance) {
    return [=]() -> std::string {
        for (int i = 0; i < 2; ++i) {
            const double a = results->ours[i], b = results->theirs[i];
            if (std::abs(a - b) <= tolerance * std::max(std::abs(b), 1e-300)) continue;
            char text[80];
            std::snprintf(text, sizeof text, "%.17g instead of %.17g", a, b);
            return text;
        }
        return "";
    };
}

#ifdef OKPCV_BENCH_OPENCV
// A channel of interest is extracted first, as there is no other way to have the peer use a mask with it.
template <class T>
cv::Mat channelOf(const Image<T>& image) {
    if (image.channels() == 1) return image.mat();
    cv::Mat channel;
    cv::extractChannel(image.mat(), channel, 1);
    return channel;
}

int normType(const char* name) {
    const std::string text = name;
    return text.find("_Inf_") != text.npos  ? cv::NORM_INF
           : text.find("_L1_") != text.npos ? cv::NORM_L1
                                            : cv::NORM_L2;
}
#endif

template <class T>
constexpr double kTolerance = std::is_same_v<T, float> ? 1e-5 : 1e-12;

// C1MR and C3CMR forms differ in the channel argument alone.
template <class T>
using Norm1 = okpStatus(const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*);
template <class T>
using Norm3 = okpStatus(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t, double*);
template <class T>
using NormTwo1 = okpStatus(const T*, int32_t, const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*);
template <class T>
using NormTwo3 = okpStatus(const T*, int32_t, const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t,
                           double*);

template <class T, int kChannels, class F>
Setup normOfOne(const char* name, Select select, F call) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size, kChannels);
        const auto mask = maskOf(size, select);
        const Results r = std::make_shared<Numbers>();
        return Case{.reads = kChannels * 1.0 * sizeof(T) + 1,
                    .ours = [=] { return call(a, mask, size, &r->ours[0]); },
                    .peerName = kChannels == 1 ? "cv::norm" : "cv::extractChannel, norm",
                    .peer = OPENCV(r->theirs[0] = cv::norm(channelOf(a), normType(name), mask.mat())),
                    .agree = close(r, kTolerance<T>)};
    };
}
template <class T>
Setup norm(const char* name, Norm1<T>* f, Select select = Select::Random) {
    return normOfOne<T, 1>(name, select, [=](const auto& a, const auto& mask, RoiSize size, double* result) {
        return f(a.data(), a.step(), mask.data(), mask.step(), size, result);
    });
}
template <class T>
Setup norm(const char* name, Norm3<T>* f, Select select = Select::Random) {
    return normOfOne<T, 3>(name, select, [=](const auto& a, const auto& mask, RoiSize size, double* result) {
        return f(a.data(), a.step(), mask.data(), mask.step(), size, 2, result);
    });
}

template <class T, int kChannels, class F>
Setup normOfTwo(const char* name, Select select, F call) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size, kChannels), b = randomImage<T>(size, kChannels);
        const auto mask = maskOf(size, select);
        const Results r = std::make_shared<Numbers>();
        const bool relative = std::string(name).find("NormRel") != std::string::npos;
        (void)relative;
        return Case{.reads = 2.0 * kChannels * sizeof(T) + 1,
                    .ours = [=] { return call(a, b, mask, size, &r->ours[0]); },
                    .peerName = kChannels == 1 ? "cv::norm" : "cv::extractChannel, norm",
                    .peer = OPENCV(r->theirs[0] = cv::norm(
                                       channelOf(a), channelOf(b),
                                       normType(name) | (relative ? cv::NORM_RELATIVE : 0), mask.mat())),
                    .agree = close(r, kTolerance<T>)};
    };
}
template <class T>
Setup norm(const char* name, NormTwo1<T>* f, Select select = Select::Random) {
    return normOfTwo<T, 1>(
        name, select, [=](const auto& a, const auto& b, const auto& mask, RoiSize size, double* result) {
            return f(a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), size, result);
        });
}
template <class T>
Setup norm(const char* name, NormTwo3<T>* f, Select select = Select::Random) {
    return normOfTwo<T, 3>(
        name, select, [=](const auto& a, const auto& b, const auto& mask, RoiSize size, double* result) {
            return f(a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), size, 2, result);
        });
}

template <class T>
Setup mean(const char*, Norm1<T>* f) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size);
        const auto mask = maskOf(size, Select::Random);
        const Results r = std::make_shared<Numbers>();
        return Case{
            .reads = 1.0 * sizeof(T) + 1,
            .ours = [=] { return f(a.data(), a.step(), mask.data(), mask.step(), size, &r->ours[0]); },
            .peerName = "cv::mean",
            .peer = OPENCV(r->theirs[0] = cv::mean(a.mat(), mask.mat())[0]),
            .agree = close(r, 1e-12)};
    };
}
template <class T>
Setup mean(const char*, Norm3<T>* f) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size, 3);
        const auto mask = maskOf(size, Select::Random);
        const Results r = std::make_shared<Numbers>();
        return Case{
            .reads = 3.0 * sizeof(T) + 1,
            .ours = [=] { return f(a.data(), a.step(), mask.data(), mask.step(), size, 2, &r->ours[0]); },
            .peerName = "cv::extractChannel, mean",
            .peer = OPENCV(r->theirs[0] = cv::mean(channelOf(a), mask.mat())[0]),
            .agree = close(r, 1e-12)};
    };
}

// Of 16 bytes: two vectors of every other one are squared and added, beside the sum of absolute differences
// from 0.
constexpr bench::Work kByteMoments{.elements = 16, .multiplications = 2, .others = 6, .loads = 1};

// The operations that come in four forms: with and without a mask, of one channel or of one of three.
template <class T, int kChannels, bool kMasked, class F>
Setup meanStdDevOf(Select select, F call) {
    return [=](RoiSize size) {
        const auto a = randomImage<T>(size, kChannels);
        const auto mask = maskOf(size, select);
        const Results r = std::make_shared<Numbers>();
        return Case {
            .reads = kChannels * 1.0 * sizeof(T) + (kMasked ? 1 : 0),
            .cycles = sizeof(T) == 1 && kChannels == 1 && !kMasked ? kByteMoments.cyclesPerElement() : 0,
            .ours = [=] { return call(a, mask, size, &r->ours[0], &r->ours[1]); },
            .peerName = kChannels == 1 ? "cv::meanStdDev" : "cv::extractChannel, meanStdDev",
            .peer = OPENCV(cv::Scalar mean; cv::Scalar deviation;
                           cv::meanStdDev(channelOf(a), mean, deviation, kMasked ? mask.mat() : cv::Mat());
                           r->theirs[0] = mean[0]; r->theirs[1] = deviation[0]),
            .agree = close(r, 1e-9)
        };
    };
}
template <class T>
Setup meanStdDev(const char*, okpStatus (*f)(const T*, int32_t, RoiSize, double*, double*)) {
    return meanStdDevOf<T, 1, false>(Select::All,
                                     [=](const auto& a, const auto&, RoiSize size, auto... results) {
                                         return f(a.data(), a.step(), size, results...);
                                     });
}
template <class T>
Setup meanStdDev(const char*, okpStatus (*f)(const T*, int32_t, RoiSize, int32_t, double*, double*)) {
    return meanStdDevOf<T, 3, false>(Select::All,
                                     [=](const auto& a, const auto&, RoiSize size, auto... results) {
                                         return f(a.data(), a.step(), size, 2, results...);
                                     });
}
template <class T>
Setup meanStdDev(const char*,
                 okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*, double*),
                 Select select = Select::Random) {
    return meanStdDevOf<T, 1, true>(
        select, [=](const auto& a, const auto& mask, RoiSize size, auto... results) {
            return f(a.data(), a.step(), mask.data(), mask.step(), size, results...);
        });
}
template <class T>
Setup meanStdDev(const char*, okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t,
                                             double*, double*)) {
    return meanStdDevOf<T, 3, true>(
        Select::Random, [=](const auto& a, const auto& mask, RoiSize size, auto... results) {
            return f(a.data(), a.step(), mask.data(), mask.step(), size, 2, results...);
        });
}

template <class T, int kChannels, bool kMasked, class F>
Setup extremaOf(Select select, F call) {
    return [=](RoiSize size) {
        // No value is an extreme of its type everywhere.
        const auto a = randomImage<T>(size, kChannels, T{3}, T{251});
        const auto mask = maskOf(size, select);
        const Results r = std::make_shared<Numbers>();
        const auto ours = [=] {
            const okpStatus status = call(a, mask, size, &r->min, &r->max, &r->minAt, &r->maxAt);
            r->ours[0] = r->min + 1e3 * r->minAt.x + 1e7 * r->minAt.y;
            r->ours[1] = r->max + 1e3 * r->maxAt.x + 1e7 * r->maxAt.y;
            return status;
        };
        return Case {
            .reads = kChannels * 1.0 * sizeof(T) + (kMasked ? 1 : 0), .ours = ours,
            .peerName = kChannels == 1 ? "cv::minMaxLoc" : "cv::extractChannel, minMaxLoc",
            .peer = OPENCV(double min = 0; double max = 0; cv::Point minAt; cv::Point maxAt; cv::minMaxLoc(
                               channelOf(a), &min, &max, &minAt, &maxAt, kMasked ? mask.mat() : cv::Mat());
                           r->theirs[0] = min + 1e3 * minAt.x + 1e7 * minAt.y;
                           r->theirs[1] = max + 1e3 * maxAt.x + 1e7 * maxAt.y),
            // The peer reports (-1, -1) where nothing is selected.
                .agree = select == Select::Nothing ? nullptr : close(r, 1e-9)
        };
    };
}
template <class T>
Setup extrema(const char*,
              okpStatus (*f)(const T*, int32_t, RoiSize, float*, float*, PixelPoint*, PixelPoint*)) {
    return extremaOf<T, 1, false>(Select::All,
                                  [=](const auto& a, const auto&, RoiSize size, auto... results) {
                                      return f(a.data(), a.step(), size, results...);
                                  });
}
template <class T>
Setup extrema(const char*,
              okpStatus (*f)(const T*, int32_t, RoiSize, int32_t, float*, float*, PixelPoint*, PixelPoint*)) {
    return extremaOf<T, 3, false>(Select::All,
                                  [=](const auto& a, const auto&, RoiSize size, auto... results) {
                                      return f(a.data(), a.step(), size, 2, results...);
                                  });
}
template <class T>
Setup extrema(const char*,
              okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, float*, float*, PixelPoint*,
                             PixelPoint*),
              Select select = Select::Random) {
    return extremaOf<T, 1, true>(select, [=](const auto& a, const auto& mask, RoiSize size, auto... results) {
        return f(a.data(), a.step(), mask.data(), mask.step(), size, results...);
    });
}
template <class T>
Setup extrema(const char*, okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t,
                                          float*, float*, PixelPoint*, PixelPoint*)) {
    return extremaOf<T, 3, true>(
        Select::Random, [=](const auto& a, const auto& mask, RoiSize size, auto... results) {
            return f(a.data(), a.step(), mask.data(), mask.step(), size, 2, results...);
        });
}

// The name goes to the shape, which takes the peer's norm from it.
#define STATS(shape, function, ...) \
    family.add(#function, shape(#function, function) __VA_OPT__(, ) __VA_ARGS__)
#define STATS_MASKS(shape, function)                                            \
    family.add(#function "/none", shape(#function, function, Select::Nothing)); \
    family.add(#function "/all", shape(#function, function, Select::All));      \
    family.add(#function "/blobs", shape(#function, function, Select::Blobs))

const bench::Family stats("stats", [](bench::Family& family) {
    STATS(norm, okpiNorm_Inf_8u_C1MR);
    STATS(norm, okpiNorm_Inf_8u_C3CMR);
    STATS(norm, okpiNorm_Inf_16u_C1MR);
    STATS(norm, okpiNorm_Inf_16u_C3CMR);
    STATS(norm, okpiNorm_Inf_32f_C1MR);
    STATS(norm, okpiNorm_Inf_32f_C3CMR);
    STATS(norm, okpiNorm_L1_8u_C1MR);
    STATS(norm, okpiNorm_L1_8u_C3CMR);
    STATS(norm, okpiNorm_L1_16u_C1MR);
    STATS(norm, okpiNorm_L1_16u_C3CMR);
    STATS(norm, okpiNorm_L1_32f_C1MR);
    STATS(norm, okpiNorm_L1_32f_C3CMR);
    STATS(norm, okpiNorm_L2_8u_C1MR, bench::kSizesAndTiny);
    STATS_MASKS(norm, okpiNorm_L2_8u_C1MR);
    STATS(norm, okpiNorm_L2_8u_C3CMR);
    STATS(norm, okpiNorm_L2_16u_C1MR);
    STATS(norm, okpiNorm_L2_16u_C3CMR);
    STATS(norm, okpiNorm_L2_32f_C1MR);
    STATS(norm, okpiNorm_L2_32f_C3CMR);

    STATS(norm, okpiNormDiff_Inf_8u_C1MR);
    STATS(norm, okpiNormDiff_Inf_8u_C3CMR);
    STATS(norm, okpiNormDiff_Inf_16u_C1MR);
    STATS(norm, okpiNormDiff_Inf_16u_C3CMR);
    STATS(norm, okpiNormDiff_Inf_32f_C1MR);
    STATS(norm, okpiNormDiff_Inf_32f_C3CMR);
    STATS(norm, okpiNormDiff_L1_8u_C1MR);
    STATS(norm, okpiNormDiff_L1_8u_C3CMR);
    STATS(norm, okpiNormDiff_L1_16u_C1MR);
    STATS(norm, okpiNormDiff_L1_16u_C3CMR);
    STATS(norm, okpiNormDiff_L1_32f_C1MR);
    STATS_MASKS(norm, okpiNormDiff_L1_32f_C1MR);
    STATS(norm, okpiNormDiff_L1_32f_C3CMR);
    STATS(norm, okpiNormDiff_L2_8u_C1MR);
    STATS(norm, okpiNormDiff_L2_8u_C3CMR);
    STATS(norm, okpiNormDiff_L2_16u_C1MR);
    STATS(norm, okpiNormDiff_L2_16u_C3CMR);
    STATS(norm, okpiNormDiff_L2_32f_C1MR);
    STATS(norm, okpiNormDiff_L2_32f_C3CMR);

    STATS(norm, okpiNormRel_Inf_8u_C1MR);
    STATS(norm, okpiNormRel_Inf_8u_C3CMR);
    STATS(norm, okpiNormRel_Inf_16u_C1MR);
    STATS(norm, okpiNormRel_Inf_16u_C3CMR);
    STATS(norm, okpiNormRel_Inf_32f_C1MR);
    STATS(norm, okpiNormRel_Inf_32f_C3CMR);
    STATS(norm, okpiNormRel_L1_8u_C1MR);
    STATS(norm, okpiNormRel_L1_8u_C3CMR);
    STATS(norm, okpiNormRel_L1_16u_C1MR);
    STATS(norm, okpiNormRel_L1_16u_C3CMR);
    STATS(norm, okpiNormRel_L1_32f_C1MR);
    STATS(norm, okpiNormRel_L1_32f_C3CMR);
    STATS(norm, okpiNormRel_L2_8u_C1MR);
    STATS(norm, okpiNormRel_L2_8u_C3CMR);
    STATS(norm, okpiNormRel_L2_16u_C1MR);
    STATS(norm, okpiNormRel_L2_16u_C3CMR);
    STATS(norm, okpiNormRel_L2_32f_C1MR);
    STATS(norm, okpiNormRel_L2_32f_C3CMR);

    STATS(mean, okpiMean_8u_C1MR);
    STATS(mean, okpiMean_8u_C3CMR);
    STATS(mean, okpiMean_16u_C1MR);
    STATS(mean, okpiMean_16u_C3CMR);
    STATS(mean, okpiMean_32f_C1MR);
    STATS(mean, okpiMean_32f_C3CMR);
    STATS(meanStdDev, okpiMean_StdDev_8u_C1R);
    STATS(meanStdDev, okpiMean_StdDev_8u_C1MR);
    STATS_MASKS(meanStdDev, okpiMean_StdDev_8u_C1MR);
    STATS(meanStdDev, okpiMean_StdDev_8u_C3CR);
    STATS(meanStdDev, okpiMean_StdDev_8u_C3CMR);
    STATS(meanStdDev, okpiMean_StdDev_16u_C1R);
    STATS(meanStdDev, okpiMean_StdDev_16u_C1MR);
    STATS(meanStdDev, okpiMean_StdDev_16u_C3CR);
    STATS(meanStdDev, okpiMean_StdDev_16u_C3CMR);
    STATS(meanStdDev, okpiMean_StdDev_32f_C1R);
    STATS(meanStdDev, okpiMean_StdDev_32f_C1MR);
    STATS(meanStdDev, okpiMean_StdDev_32f_C3CR);
    STATS(meanStdDev, okpiMean_StdDev_32f_C3CMR);

    STATS(extrema, okpiMinMaxIndx_8u_C1R, bench::kSizesAndTiny);
    STATS(extrema, okpiMinMaxIndx_8u_C1MR);
    STATS_MASKS(extrema, okpiMinMaxIndx_8u_C1MR);
    STATS(extrema, okpiMinMaxIndx_8u_C3CR);
    STATS(extrema, okpiMinMaxIndx_8u_C3CMR);
    STATS(extrema, okpiMinMaxIndx_16u_C1R);
    STATS(extrema, okpiMinMaxIndx_16u_C1MR);
    STATS(extrema, okpiMinMaxIndx_16u_C3CR);
    STATS(extrema, okpiMinMaxIndx_16u_C3CMR);
    STATS(extrema, okpiMinMaxIndx_32f_C1R);
    STATS(extrema, okpiMinMaxIndx_32f_C1MR);
    STATS_MASKS(extrema, okpiMinMaxIndx_32f_C1MR);
    STATS(extrema, okpiMinMaxIndx_32f_C3CR);
    STATS(extrema, okpiMinMaxIndx_32f_C3CMR);
});

}  // namespace
