// Benchmarks of segmentation: flood fills, labelling, speckles, segment boundaries.
//
// flat:    one value everywhere; every run is a row.
// natural: a picture with structure at all scales and a camera's noise. Plain fills run on its two halves,
//          dark and light; the others on its levels.
// noise60, noise80, noise95, dots25: pixels set independently with that probability in percent.
#include "okpcv/segment.h"

#include <array>
#include <cmath>
#include <cstring>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// Octaves of noise on ever finer grids, about half as strong each time, and at last some noise per pixel.
Image<uint8_t> naturalImage(RoiSize size) {
    Image<float> sum(size);
    bench::Random random(8);
    float strength = 64;
    for (int cell = 256; cell >= 4; cell /= 2, strength *= 0.55f) {
        const int columns = size.width / cell + 2, rows = size.height / cell + 2;
        std::vector<float> grid(static_cast<size_t>(columns) * rows);
        for (float& value : grid) value = random.between(-strength, strength);
        const float scale = 1.0f / static_cast<float>(cell);
        for (int y = 0; y < size.height; ++y) {
            const float* above = grid.data() + static_cast<ptrdiff_t>(y / cell) * columns;
            const float down = static_cast<float>(y % cell) * scale;
            float* row = sum.row(y);
            for (int x = 0; x < size.width; ++x) {
                const float* corner = above + x / cell;
                const float right = static_cast<float>(x % cell) * scale;
                const float upper = corner[0] + (corner[1] - corner[0]) * right;
                const float lower = corner[columns] + (corner[columns + 1] - corner[columns]) * right;
                row[x] += upper + (lower - upper) * down;
            }
        }
    }
    Image<uint8_t> image(size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const float level = 128 + *sum.at(x, y) + random.between(-2.0f, 2.0f);
            *image.at(x, y) = static_cast<uint8_t>(std::clamp(level, 0.0f, 255.0f));
        }
    }
    return image;
}

Image<uint8_t> thresholded(const Image<uint8_t>& image) {
    Image<uint8_t> result(image.size());
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) *result.at(x, y) = *image.at(x, y) > 128 ? 1 : 0;
    }
    return result;
}

Image<uint8_t> noise(RoiSize size, int percent) {
    Image<uint8_t> image(size);
    bench::Random random(9);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) *image.at(x, y) = random.between(0, 99) < percent ? 100 : 0;
    }
    return image;
}

// Noise has the percentage of its set pixels as its number.
enum class Picture { Flat = -2, Natural = -1, Dots25 = 25, Noise60 = 60, Noise80 = 80, Noise95 = 95 };
enum class Rule { Plain, Range, Gradient };

Image<uint8_t> levels(Picture picture, RoiSize size, bool inTwo) {
    if (picture == Picture::Flat) return Image<uint8_t>(size);
    if (picture == Picture::Natural) return inTwo ? thresholded(naturalImage(size)) : naturalImage(size);
    return noise(size, static_cast<int>(picture));
}

template <class T>
Image<T> converted(const Image<uint8_t>& image, int channels = 1) {
    Image<T> result(image.size(), channels);
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) {
            for (int c = 0; c < channels; ++c) result.at(x, y)[c] = static_cast<T>(*image.at(x, y));
        }
    }
    return result;
}

// The middle; in the pictures of two values the next pixel behind it that lies in a row of eight set ones.
PixelPoint seedOf(const Image<uint8_t>& image, bool inTwo) {
    PixelPoint seed{image.size().width / 2, image.size().height / 2};
    const auto isSet = [&](int x) { return *image.at(x, seed.y) != 0; };
    for (int set = 0; inTwo && set < 8 && seed.x + 1 < image.size().width; ++seed.x)
        set = isSet(seed.x) ? set + 1 : 0;
    if (inTwo) --seed.x;
    return seed;
}

template <class T, int kChannels>
struct FillArguments {
    Image<T> image;
    PixelPoint seed;
    std::array<T, 3> newVal, minDelta, maxDelta;
    std::shared_ptr<ConnectedComp> region;
    Image<uint8_t> buffer;
};

// `call` makes a fill from its arguments, whatever its signature.
template <class T, int kChannels, class FillCall>
Setup fill(Rule rule, int connectivity, Picture picture, FillCall call) {
    return [=](RoiSize size) {
        const bool inTwo = picture != Picture::Flat && (rule == Rule::Plain || picture != Picture::Natural);
        const Image<uint8_t> original = levels(picture, size, inTwo);
        const auto pristine = converted<T>(original, kChannels);
        const Image<T> image(size, kChannels), theirs(size, kChannels);
        int32_t bytes = 0;
        rule == Rule::Gradient ? okpiFloodFillGetSize_Grad(size, &bytes) : okpiFloodFillGetSize(size, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        const auto region = std::make_shared<ConnectedComp>();
        // Wide enough for most of the natural picture, by steps or at once; nothing to the others.
        const int delta = rule == Rule::Plain                 ? 0
                          : inTwo || picture == Picture::Flat ? 2
                          : rule == Rule::Gradient            ? 6
                                                              : 60;
        const auto d = static_cast<T>(delta);
        const PixelPoint seed = seedOf(original, inTwo);
        const FillArguments<T, kChannels> arguments{image,     seed,   {250, 250, 250}, {d, d, d},
                                                    {d, d, d}, region, buffer};

        Case result{.ours = [=] { return call(arguments); },
                    .before = [=] { image.assign(pristine); },
                    .beforePeer = [=] { theirs.assign(pristine); }};
        if (picture == Picture::Flat) result.updates = 1.0 * sizeof(T) * kChannels;
        // The peer knows no 16-bit images. The order in which gradient fills try neighbours is their own.
        if constexpr (!std::is_same_v<T, uint16_t>) {
            result.peerName = "cv::floodFill";
            result.peer = OPENCV(
                cv::floodFill(theirs.mat(), {seed.x, seed.y}, cv::Scalar::all(250), nullptr,
                              cv::Scalar::all(delta), cv::Scalar::all(delta),
                              connectivity + (rule == Rule::Gradient ? 0 : cv::FLOODFILL_FIXED_RANGE)));
            if (rule != Rule::Gradient) result.agree = bench::same(image, theirs);
        }
        return result;
    };
}

template <class T>
using PlainC1 = okpStatus(T*, int32_t, RoiSize, PixelPoint, T, ConnectedComp*, uint8_t*);
template <class T>
using PlainC3 = okpStatus(T*, int32_t, RoiSize, PixelPoint, const T*, ConnectedComp*, uint8_t*);
template <class T>
using DeltaC1 = okpStatus(T*, int32_t, RoiSize, PixelPoint, T, T, T, ConnectedComp*, uint8_t*);
template <class T>
using DeltaC3 = okpStatus(T*, int32_t, RoiSize, PixelPoint, const T*, const T*, const T*, ConnectedComp*,
                          uint8_t*);

template <class T>
Setup fillOf(PlainC1<T>* f, Rule rule, int connectivity, Picture picture) {
    return fill<T, 1>(rule, connectivity, picture, [f](const FillArguments<T, 1>& a) {
        return f(a.image.data(), a.image.step(), a.image.size(), a.seed, a.newVal[0], a.region.get(),
                 a.buffer.data());
    });
}
template <class T>
Setup fillOf(PlainC3<T>* f, Rule rule, int connectivity, Picture picture) {
    return fill<T, 3>(rule, connectivity, picture, [f](const FillArguments<T, 3>& a) {
        return f(a.image.data(), a.image.step(), a.image.size(), a.seed, a.newVal.data(), a.region.get(),
                 a.buffer.data());
    });
}
template <class T>
Setup fillOf(DeltaC1<T>* f, Rule rule, int connectivity, Picture picture) {
    return fill<T, 1>(rule, connectivity, picture, [f](const FillArguments<T, 1>& a) {
        return f(a.image.data(), a.image.step(), a.image.size(), a.seed, a.newVal[0], a.minDelta[0],
                 a.maxDelta[0], a.region.get(), a.buffer.data());
    });
}
template <class T>
Setup fillOf(DeltaC3<T>* f, Rule rule, int connectivity, Picture picture) {
    return fill<T, 3>(rule, connectivity, picture, [f](const FillArguments<T, 3>& a) {
        return f(a.image.data(), a.image.step(), a.image.size(), a.seed, a.newVal.data(), a.minDelta.data(),
                 a.maxDelta.data(), a.region.get(), a.buffer.data());
    });
}

constexpr RoiSize kMiddle[] = {{1920, 1080}};

#define FILL(FUNCTION, RULE, CONNECTIVITY)                                                    \
    family.add(#FUNCTION "/flat", fillOf(FUNCTION, Rule::RULE, CONNECTIVITY, Picture::Flat)); \
    family.add(#FUNCTION "/natural", fillOf(FUNCTION, Rule::RULE, CONNECTIVITY, Picture::Natural), kMiddle)
#define FILL_NOISE(FUNCTION, RULE, CONNECTIVITY)                                                             \
    family.add(#FUNCTION "/noise60", fillOf(FUNCTION, Rule::RULE, CONNECTIVITY, Picture::Noise60), kMiddle); \
    family.add(#FUNCTION "/noise80", fillOf(FUNCTION, Rule::RULE, CONNECTIVITY, Picture::Noise80), kMiddle); \
    family.add(#FUNCTION "/noise95", fillOf(FUNCTION, Rule::RULE, CONNECTIVITY, Picture::Noise95), kMiddle)

// Labels from 1 to 200 in place, so that they wrap around.
template <class T>
Setup labelInPlace(okpStatus (*f)(T*, int32_t, RoiSize, int32_t, int32_t, int32_t, int32_t*, uint8_t*),
                   okpStatus (*query)(RoiSize, int32_t*), Picture picture, int32_t norm) {
    return [=](RoiSize size) {
        const auto pristine = converted<T>(levels(picture, size, true));
        const Image<T> image(size);
        int32_t bytes = 0;
        query(size, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        const auto number = std::make_shared<int32_t>();
        Case result{.ours =
                        [=] {
                            return f(image.data(), image.step(), size, 1, 200, norm, number.get(),
                                     buffer.data());
                        },
                    .before = [=] { image.assign(pristine); }};
#ifdef OKPCV_BENCH_OPENCV
        // Not in place, and from 8 bits.
        if constexpr (sizeof(T) == 2) {
            const Image<uint8_t> markers = converted<uint8_t>(levels(picture, size, true));
            const Image<T> theirs(size);
            const auto theirNumber = std::make_shared<int32_t>();
            result.peerName = "cv::connectedComponents";
            result.peer = OPENCV(*theirNumber = cv::connectedComponents(markers.mat(), theirs.mat(),
                                                                        norm == 0 ? 8 : 4, CV_16U) -
                                                1);
        }
#endif
        return result;
    };
}

Setup label(decltype(okpiLabelMarkers_8u32s_C1R)* f, Picture picture, int32_t norm) {
    return [=](RoiSize size) {
        const Image<uint8_t> src = levels(picture, size, true);
        const Image<int32_t> dst(size), theirs(size);
        int32_t bytes = 0;
        okpiLabelMarkersGetBufferSize_8u32s_C1R(size, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        const auto number = std::make_shared<int32_t>(), theirNumber = std::make_shared<int32_t>();
        return Case{.reads = 1,
                    .writes = 4,
                    .ours =
                        [=] {
                            return f(src.data(), src.step(), dst.data(), dst.step(), size, 1, 2147483646,
                                     norm, number.get(), buffer.data());
                        },
                    .peerName = "cv::connectedComponents",
                    // Its labels include the background.
                    .peer = OPENCV(
                        *theirNumber =
                            cv::connectedComponents(src.mat(), theirs.mat(), norm == 0 ? 8 : 4, CV_32S) - 1),
                    // The peer numbers groups in an order of its own.
                    .agree = [=]() -> std::string {
                        if (*number == *theirNumber) return "";
                        return std::to_string(*number) + " groups and " + std::to_string(*theirNumber);
                    }};
    };
}

// Like a disparity map: the natural picture in few levels, and speckles of wrong matches.
template <class T>
Image<T> disparities(RoiSize size) {
    const Image<uint8_t> picture = naturalImage(size);
    Image<T> result(size);
    bench::Random random(10);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) *result.at(x, y) = static_cast<T>(1 + *picture.at(x, y) / 8);
    }
    for (int i = 0; i < size.width * size.height / 200; ++i) {
        const int x = random.between(0, size.width - 3), y = random.between(0, size.height - 3);
        const int width = random.between(1, 3), height = random.between(1, 3);
        const auto wrong = static_cast<T>(random.between(40, 90));
        for (int dy = 0; dy < height; ++dy) {
            for (int dx = 0; dx < width; ++dx) *result.at(x + dx, y + dy) = wrong;
        }
    }
    return result;
}

template <class T>
Setup speckles(okpStatus (*f)(T*, int32_t, RoiSize, T, int32_t, T, NormKind, uint8_t*), DataTypeCode code,
               bool isNoise) {
    return [=](RoiSize size) {
        const Image<T> pristine =
            isNoise ? bench::randomImage<T>(size, 1, T(0), T(15)) : disparities<T>(size);
        const Image<T> image(size), theirs(size);
        int32_t bytes = 0;
        okpiMarkSpecklesGetBufferSize(size, code, 1, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        Case result{
            .ours =
                [=] { return f(image.data(), image.step(), size, T(0), 50, T(1), NormInf, buffer.data()); },
            .before = [=] { image.assign(pristine); },
            .beforePeer = [=] { theirs.assign(pristine); }};
#ifdef OKPCV_BENCH_OPENCV
        if constexpr (std::is_same_v<T, uint8_t> || std::is_same_v<T, int16_t>) {
            result.peerName = "cv::filterSpeckles";
            const auto work = std::make_shared<cv::Mat>();
            result.peer = OPENCV(cv::filterSpeckles(theirs.mat(), 0, 50, 1, *work));
            result.agree = bench::same(image, theirs);
        }
#endif
        return result;
    };
}

template <class T>
Setup boundaries(okpStatus (*f)(T*, int32_t, RoiSize, T, int32_t), int32_t norm) {
    return [=](RoiSize size) {
        const auto pristine = converted<T>(thresholded(naturalImage(size)));
        const Image<T> image(size);
        return Case{.reads = 0,
                    .updates = sizeof(T),
                    .ours = [=] { return f(image.data(), image.step(), size, T(200), norm); },
                    .before = [=] { image.assign(pristine); }};
    };
}

#define LABEL_IN_PLACE(FUNCTION, QUERY)                                                    \
    family.add(#FUNCTION "/natural8", labelInPlace(FUNCTION, QUERY, Picture::Natural, 0)); \
    family.add(#FUNCTION "/dots25_8", labelInPlace(FUNCTION, QUERY, Picture::Dots25, 0), kMiddle)

const bench::Family segment("segment", [](bench::Family& family) {
    FILL(okpiFloodFill_4Con_8u_C1IR, Plain, 4);
    FILL_NOISE(okpiFloodFill_4Con_8u_C1IR, Plain, 4);
    FILL(okpiFloodFill_4Con_8u_C3IR, Plain, 4);
    FILL(okpiFloodFill_4Con_16u_C1IR, Plain, 4);
    FILL(okpiFloodFill_4Con_16u_C3IR, Plain, 4);
    FILL(okpiFloodFill_4Con_32s_C1IR, Plain, 4);
    FILL(okpiFloodFill_4Con_32f_C1IR, Plain, 4);
    FILL(okpiFloodFill_4Con_32f_C3IR, Plain, 4);
    FILL(okpiFloodFill_8Con_8u_C1IR, Plain, 8);
    FILL_NOISE(okpiFloodFill_8Con_8u_C1IR, Plain, 8);
    FILL(okpiFloodFill_8Con_8u_C3IR, Plain, 8);
    FILL(okpiFloodFill_8Con_16u_C1IR, Plain, 8);
    FILL(okpiFloodFill_8Con_16u_C3IR, Plain, 8);
    FILL(okpiFloodFill_8Con_32s_C1IR, Plain, 8);
    FILL(okpiFloodFill_8Con_32f_C1IR, Plain, 8);
    FILL(okpiFloodFill_8Con_32f_C3IR, Plain, 8);
    FILL(okpiFloodFill_Range4Con_8u_C1IR, Range, 4);
    FILL(okpiFloodFill_Range4Con_8u_C3IR, Range, 4);
    FILL(okpiFloodFill_Range4Con_16u_C1IR, Range, 4);
    FILL(okpiFloodFill_Range4Con_16u_C3IR, Range, 4);
    FILL(okpiFloodFill_Range4Con_32f_C1IR, Range, 4);
    FILL(okpiFloodFill_Range4Con_32f_C3IR, Range, 4);
    FILL(okpiFloodFill_Range8Con_8u_C1IR, Range, 8);
    FILL_NOISE(okpiFloodFill_Range8Con_8u_C1IR, Range, 8);
    FILL(okpiFloodFill_Range8Con_8u_C3IR, Range, 8);
    FILL(okpiFloodFill_Range8Con_16u_C1IR, Range, 8);
    FILL(okpiFloodFill_Range8Con_16u_C3IR, Range, 8);
    FILL(okpiFloodFill_Range8Con_32f_C1IR, Range, 8);
    FILL(okpiFloodFill_Range8Con_32f_C3IR, Range, 8);
    FILL(okpiFloodFill_Grad4Con_8u_C1IR, Gradient, 4);
    FILL_NOISE(okpiFloodFill_Grad4Con_8u_C1IR, Gradient, 4);
    FILL(okpiFloodFill_Grad4Con_8u_C3IR, Gradient, 4);
    FILL(okpiFloodFill_Grad4Con_16u_C1IR, Gradient, 4);
    FILL(okpiFloodFill_Grad4Con_16u_C3IR, Gradient, 4);
    FILL(okpiFloodFill_Grad4Con_32f_C1IR, Gradient, 4);
    FILL(okpiFloodFill_Grad4Con_32f_C3IR, Gradient, 4);
    FILL(okpiFloodFill_Grad8Con_8u_C1IR, Gradient, 8);
    FILL_NOISE(okpiFloodFill_Grad8Con_8u_C1IR, Gradient, 8);
    FILL(okpiFloodFill_Grad8Con_8u_C3IR, Gradient, 8);
    FILL(okpiFloodFill_Grad8Con_16u_C1IR, Gradient, 8);
    FILL(okpiFloodFill_Grad8Con_16u_C3IR, Gradient, 8);
    FILL(okpiFloodFill_Grad8Con_32f_C1IR, Gradient, 8);
    FILL(okpiFloodFill_Grad8Con_32f_C3IR, Gradient, 8);

    LABEL_IN_PLACE(okpiLabelMarkers_8u_C1IR, okpiLabelMarkersGetBufferSize_8u_C1R);
    LABEL_IN_PLACE(okpiLabelMarkers_16u_C1IR, okpiLabelMarkersGetBufferSize_16u_C1R);
    GROW(okpiLabelMarkers_8u32s_C1R, label(okpiLabelMarkers_8u32s_C1R, Picture::Natural, 0));
    for (const int32_t norm : {0, 1}) {
        const std::string con = norm == 0 ? "8" : "4";
        family.add("okpiLabelMarkers_8u32s_C1R/natural_" + con,
                   label(okpiLabelMarkers_8u32s_C1R, Picture::Natural, norm));
        family.add("okpiLabelMarkers_8u32s_C1R/dots25_" + con,
                   label(okpiLabelMarkers_8u32s_C1R, Picture::Dots25, norm));
        family.add("okpiLabelMarkers_8u32s_C1R/noise60_" + con,
                   label(okpiLabelMarkers_8u32s_C1R, Picture::Noise60, norm), kMiddle);
    }

    family.add("okpiMarkSpeckles_8u_C1IR/disparity", speckles(okpiMarkSpeckles_8u_C1IR, DataType8u, false));
    family.add("okpiMarkSpeckles_8u_C1IR/noise", speckles(okpiMarkSpeckles_8u_C1IR, DataType8u, true),
               kMiddle);
    family.add("okpiMarkSpeckles_16u_C1IR/disparity",
               speckles(okpiMarkSpeckles_16u_C1IR, DataType16u, false));
    family.add("okpiMarkSpeckles_16s_C1IR/disparity",
               speckles(okpiMarkSpeckles_16s_C1IR, DataType16s, false));
    family.add("okpiMarkSpeckles_16s_C1IR/noise", speckles(okpiMarkSpeckles_16s_C1IR, DataType16s, true),
               kMiddle);
    family.add("okpiMarkSpeckles_32f_C1IR/disparity",
               speckles(okpiMarkSpeckles_32f_C1IR, DataType32f, false));

    family.add("okpiBoundSegments_8u_C1IR/norm0", boundaries(okpiBoundSegments_8u_C1IR, 0));
    family.add("okpiBoundSegments_8u_C1IR/norm1", boundaries(okpiBoundSegments_8u_C1IR, 1));
    family.add("okpiBoundSegments_16u_C1IR/norm0", boundaries(okpiBoundSegments_16u_C1IR, 0));
    family.add("okpiBoundSegments_16u_C1IR/norm1", boundaries(okpiBoundSegments_16u_C1IR, 1));
});

}  // namespace
