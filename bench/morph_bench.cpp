// Benchmarks of dilation and erosion: rectangles, discs, crosses, slanted lines and random masks.
#include "okpcv/morph.h"

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/compare.h"

#ifdef OKPCV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

enum class Op { Dilate, Erode };

struct Mask {
    int size;
    std::vector<uint8_t> bytes;

    template <class Inside>
    Mask(int n, Inside inside) : size(n) {
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < n; ++i) bytes.push_back(inside(i - n / 2, j - n / 2) ? 1 : 0);
        }
    }
};

Mask rectangle(int n) {
    return {n, [](int, int) { return true; }};
}
Mask disc(int n) {
    return {n, [n](int x, int y) { return 4 * (x * x + y * y) <= n * n; }};
}
Mask cross(int n) {
    return {n, [](int x, int y) { return x == 0 || y == 0; }};
}
Mask slantedLine(int n) {
    return {n, [](int x, int y) { return x == y; }};
}
Mask randomElements(int n) {
    std::mt19937 engine(static_cast<uint32_t>(n));
    return {n, [&](int, int) { return (engine() & 1) != 0; }};
}

struct Shape {
    const char* name;
    Mask (*make)(int size);
};
constexpr Shape kShapes[] = {{"rectangle", rectangle},
                             {"disc", disc},
                             {"cross", cross},
                             {"line45", slantedLine},
                             {"random", randomElements}};

// A spec and a buffer, made by the 32-bit or the 64-bit generation.
struct Areas {
    Image<uint8_t> spec, buffer;

    MorphSpec* specPointer() const { return reinterpret_cast<MorphSpec*>(spec.data()); }
};
template <class GetSize, class Init>
Areas prepare(GetSize* getSize, Init* init, RoiSize size, const Mask& mask) {
    const RoiSize maskSize{mask.size, mask.size};
    int32_t specSize = 0, bufferSize = 0;
    getSize(size, maskSize, &specSize, &bufferSize);
    Areas areas{Image<uint8_t>({specSize, 1}), Image<uint8_t>({bufferSize, 1})};
    init(size, mask.bytes.data(), maskSize, areas.specPointer(), areas.buffer.data());
    return areas;
}
Areas prepareL(Op op, RoiSize size, const Mask& mask, DataTypeCode type, int channels) {
    const RoiSizeL sizeL{size.width, size.height}, maskSize{mask.size, mask.size};
    int64_t specSize = 0, bufferSize = 0;
    const bool dilates = op == Op::Dilate;
    (dilates ? okpiDilateGetSpecSize_L : okpiErodeGetSpecSize_L)(sizeL, maskSize, &specSize);
    (dilates ? okpiDilateGetBufferSize_L : okpiErodeGetBufferSize_L)(sizeL, maskSize, type, channels,
                                                                     &bufferSize);
    Areas areas{Image<uint8_t>({static_cast<int32_t>(specSize), 1}),
                Image<uint8_t>({static_cast<int32_t>(bufferSize), 1})};
    (dilates ? okpiDilateInit_L : okpiErodeInit_L)(sizeL, mask.bytes.data(), maskSize, areas.specPointer());
    return areas;
}

#ifdef OKPCV_BENCH_OPENCV
void callPeer(Op op, const cv::Mat& src, cv::Mat dst, const cv::Mat& mask) {
    const cv::Point anchor((mask.cols - 1) / 2, (mask.rows - 1) / 2);
    (op == Op::Dilate ? cv::dilate : cv::erode)(src, dst, mask, anchor, 1, cv::BORDER_REPLICATE,
                                                cv::Scalar());
}
#endif

template <class T>
Case compared(Op op, const Image<T>& src, const Image<T>& dst, int channels,
              [[maybe_unused]] const Mask& mask, bench::Call ours) {
    const Image<T> theirs(src.size(), channels);
#ifdef OKPCV_BENCH_OPENCV
    const cv::Mat element =
        cv::Mat(mask.size, mask.size, CV_8U, const_cast<uint8_t*>(mask.bytes.data())).clone();
#endif
    return {.reads = 1.0 * sizeof(T) * channels,
            .writes = 1.0 * sizeof(T) * channels,
            .ours = ours,
            .peerName = op == Op::Dilate ? "cv::dilate" : "cv::erode",
            .peer = OPENCV(callPeer(op, src.mat(), theirs.mat(), element)),
            .agree = bench::same(dst, theirs)};
}

// The border value that is not read, by value or by address.
template <class Value>
constexpr Value kNoValue{};

template <class T, class V, class GetSize, class Init>
Setup border(Op op, int channels,
             okpStatus (*f)(const T*, int32_t, T*, int32_t, RoiSize, BorderKind, V, const MorphSpec*,
                            uint8_t*),
             GetSize* getSize, Init* init, const Mask& mask) {
    return [=](RoiSize size) {
        const auto src = bench::randomImage<T>(size, channels);
        const Image<T> dst(size, channels);
        const Areas areas = prepare(getSize, init, size, mask);
        return compared(op, src, dst, channels, mask, [=] {
            return f(src.data(), src.step(), dst.data(), dst.step(), size, BorderReplicate, kNoValue<V>,
                     areas.specPointer(), areas.buffer.data());
        });
    };
}

template <class T>
Setup large(Op op, int channels, DataTypeCode type,
            okpStatus (*f)(const T*, int64_t, T*, int64_t, RoiSizeL, BorderKind, const T*, const MorphSpec*,
                           uint8_t*),
            const Mask& mask) {
    return [=](RoiSize size) {
        const auto src = bench::randomImage<T>(size, channels);
        const Image<T> dst(size, channels);
        const Areas areas = prepareL(op, size, mask, type, channels);
        return compared(op, src, dst, channels, mask, [=] {
            return f(src.data(), src.step(), dst.data(), dst.step(), {size.width, size.height},
                     BorderReplicate, nullptr, areas.specPointer(), areas.buffer.data());
        });
    };
}

// Bits have no peer. The destination begins within a byte.
Case bits(RoiSize size, std::function<okpStatus(const Image<uint8_t>&, const Image<uint8_t>&)> f) {
    const RoiSize bytes{(size.width + 7) / 8 + 1, size.height};
    const auto src = bench::randomImage<uint8_t>(bytes);
    const Image<uint8_t> dst(bytes);
    return {.reads = 0.125, .writes = 0.125, .ours = [=] { return f(src, dst); }};
}
Setup bitBorder(Op, decltype(okpiDilateBorder_1u_C1R)* f, const Mask& mask, int dstOffset) {
    return [=](RoiSize size) {
        const Areas areas =
            prepare(okpiMorphologyBorderGetSize_1u_C1R, okpiMorphologyBorderInit_1u_C1R, size, mask);
        return bits(size, [=](const Image<uint8_t>& src, const Image<uint8_t>& dst) {
            return f(src.data(), src.step(), 0, dst.data(), dst.step(), dstOffset, size, BorderReplicate, 0,
                     areas.specPointer(), areas.buffer.data());
        });
    };
}
Setup bitLarge(Op op, decltype(okpiDilate_1u_C1R_L)* f, const Mask& mask) {
    return [=](RoiSize size) {
        const Areas areas = prepareL(op, size, mask, DataType1u, 1);
        return bits(size, [=](const Image<uint8_t>& src, const Image<uint8_t>& dst) {
            return f(src.data(), src.step(), 0, dst.data(), dst.step(), 0, {size.width, size.height},
                     BorderReplicate, nullptr, areas.specPointer(), areas.buffer.data());
        });
    };
}

std::string named(const char* function, const char* shape, int size) {
    return std::string(function) + "/" + shape + std::to_string(size);
}

constexpr int kMaskSizes[] = {3, 5, 7, 15, 31, 63};
constexpr RoiSize kOneSize[] = {{640, 480}};

// A small rectangle and a disc at every image size; for the most used exports also every shape and size of
// mask at one.
template <class Make>
void addShapes(bench::Family& family, const char* function, bool all, Make make) {
    family.add(named(function, "rectangle", 3), make(rectangle(3)));
    family.add(named(function, "disc", 7), make(disc(7)));
    if (!all) return;
    for (const Shape& shape : kShapes) {
        for (const int size : kMaskSizes) {
            const bool added = (shape.make == rectangle && size == 3) || (shape.make == disc && size == 7);
            if (!added) family.add(named(function, shape.name, size), make(shape.make(size)), kOneSize);
        }
    }
}

#define BORDER(op, channels, all, function, getSize, init) \
    addShapes(family, #function, all,                      \
              [](const Mask& mask) { return border(op, channels, function, getSize, init, mask); })
#define LARGE(op, channels, type, function) \
    family.add(#function "/rectangle3", large(op, channels, type, function, rectangle(3)), kOneSize)

const bench::Family family_("morph", [](bench::Family& family) {
    BORDER(Op::Dilate, 1, true, okpiDilateBorder_8u_C1R, okpiMorphologyBorderGetSize_8u_C1R,
           okpiMorphologyBorderInit_8u_C1R);
    LARGE(Op::Dilate, 1, DataType8u, okpiDilate_8u_C1R_L);
    GROW(okpiDilateBorder_8u_C1R,
         border(Op::Dilate, 1, okpiDilateBorder_8u_C1R, okpiMorphologyBorderGetSize_8u_C1R,
                okpiMorphologyBorderInit_8u_C1R, rectangle(15)));
    BORDER(Op::Dilate, 3, false, okpiDilateBorder_8u_C3R, okpiMorphologyBorderGetSize_8u_C3R,
           okpiMorphologyBorderInit_8u_C3R);
    LARGE(Op::Dilate, 3, DataType8u, okpiDilate_8u_C3R_L);
    BORDER(Op::Dilate, 4, false, okpiDilateBorder_8u_C4R, okpiMorphologyBorderGetSize_8u_C4R,
           okpiMorphologyBorderInit_8u_C4R);
    LARGE(Op::Dilate, 4, DataType8u, okpiDilate_8u_C4R_L);
    BORDER(Op::Dilate, 1, true, okpiDilateBorder_16u_C1R, okpiMorphologyBorderGetSize_16u_C1R,
           okpiMorphologyBorderInit_16u_C1R);
    LARGE(Op::Dilate, 1, DataType16u, okpiDilate_16u_C1R_L);
    BORDER(Op::Dilate, 1, false, okpiDilateBorder_16s_C1R, okpiMorphologyBorderGetSize_16s_C1R,
           okpiMorphologyBorderInit_16s_C1R);
    LARGE(Op::Dilate, 1, DataType16s, okpiDilate_16s_C1R_L);
    BORDER(Op::Dilate, 1, true, okpiDilateBorder_32f_C1R, okpiMorphologyBorderGetSize_32f_C1R,
           okpiMorphologyBorderInit_32f_C1R);
    LARGE(Op::Dilate, 1, DataType32f, okpiDilate_32f_C1R_L);
    BORDER(Op::Dilate, 3, false, okpiDilateBorder_32f_C3R, okpiMorphologyBorderGetSize_32f_C3R,
           okpiMorphologyBorderInit_32f_C3R);
    LARGE(Op::Dilate, 3, DataType32f, okpiDilate_32f_C3R_L);
    BORDER(Op::Dilate, 4, false, okpiDilateBorder_32f_C4R, okpiMorphologyBorderGetSize_32f_C4R,
           okpiMorphologyBorderInit_32f_C4R);
    LARGE(Op::Dilate, 4, DataType32f, okpiDilate_32f_C4R_L);
    family.add("okpiDilateBorder_1u_C1R/rectangle3",
               bitBorder(Op::Dilate, okpiDilateBorder_1u_C1R, rectangle(3), 0));
    family.add("okpiDilateBorder_1u_C1R/rectangle15",
               bitBorder(Op::Dilate, okpiDilateBorder_1u_C1R, rectangle(15), 0));
    family.add("okpiDilateBorder_1u_C1R/disc15", bitBorder(Op::Dilate, okpiDilateBorder_1u_C1R, disc(15), 0));
    family.add("okpiDilateBorder_1u_C1R/rectangle3/offset",
               bitBorder(Op::Dilate, okpiDilateBorder_1u_C1R, rectangle(3), 5));
    family.add("okpiDilate_1u_C1R_L/rectangle3", bitLarge(Op::Dilate, okpiDilate_1u_C1R_L, rectangle(3)));
    BORDER(Op::Erode, 1, false, okpiErodeBorder_8u_C1R, okpiMorphologyBorderGetSize_8u_C1R,
           okpiMorphologyBorderInit_8u_C1R);
    LARGE(Op::Erode, 1, DataType8u, okpiErode_8u_C1R_L);
    BORDER(Op::Erode, 3, false, okpiErodeBorder_8u_C3R, okpiMorphologyBorderGetSize_8u_C3R,
           okpiMorphologyBorderInit_8u_C3R);
    LARGE(Op::Erode, 3, DataType8u, okpiErode_8u_C3R_L);
    BORDER(Op::Erode, 4, false, okpiErodeBorder_8u_C4R, okpiMorphologyBorderGetSize_8u_C4R,
           okpiMorphologyBorderInit_8u_C4R);
    LARGE(Op::Erode, 4, DataType8u, okpiErode_8u_C4R_L);
    BORDER(Op::Erode, 1, false, okpiErodeBorder_16u_C1R, okpiMorphologyBorderGetSize_16u_C1R,
           okpiMorphologyBorderInit_16u_C1R);
    LARGE(Op::Erode, 1, DataType16u, okpiErode_16u_C1R_L);
    BORDER(Op::Erode, 1, false, okpiErodeBorder_16s_C1R, okpiMorphologyBorderGetSize_16s_C1R,
           okpiMorphologyBorderInit_16s_C1R);
    LARGE(Op::Erode, 1, DataType16s, okpiErode_16s_C1R_L);
    BORDER(Op::Erode, 1, false, okpiErodeBorder_32f_C1R, okpiMorphologyBorderGetSize_32f_C1R,
           okpiMorphologyBorderInit_32f_C1R);
    LARGE(Op::Erode, 1, DataType32f, okpiErode_32f_C1R_L);
    BORDER(Op::Erode, 3, false, okpiErodeBorder_32f_C3R, okpiMorphologyBorderGetSize_32f_C3R,
           okpiMorphologyBorderInit_32f_C3R);
    LARGE(Op::Erode, 3, DataType32f, okpiErode_32f_C3R_L);
    BORDER(Op::Erode, 4, false, okpiErodeBorder_32f_C4R, okpiMorphologyBorderGetSize_32f_C4R,
           okpiMorphologyBorderInit_32f_C4R);
    LARGE(Op::Erode, 4, DataType32f, okpiErode_32f_C4R_L);
    family.add("okpiErodeBorder_1u_C1R/rectangle3",
               bitBorder(Op::Erode, okpiErodeBorder_1u_C1R, rectangle(3), 0));
    family.add("okpiErodeBorder_1u_C1R/rectangle15",
               bitBorder(Op::Erode, okpiErodeBorder_1u_C1R, rectangle(15), 0));
    family.add("okpiErodeBorder_1u_C1R/disc15", bitBorder(Op::Erode, okpiErodeBorder_1u_C1R, disc(15), 0));
    family.add("okpiErodeBorder_1u_C1R/rectangle3/offset",
               bitBorder(Op::Erode, okpiErodeBorder_1u_C1R, rectangle(3), 5));
    family.add("okpiErode_1u_C1R_L/rectangle3", bitLarge(Op::Erode, okpiErode_1u_C1R_L, rectangle(3)));
});

}  // namespace
