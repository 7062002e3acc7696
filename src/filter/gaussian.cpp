// Gaussian filters: a row pass and a column pass with one symmetric kernel, which a spec keeps. What the row
// pass makes of an integer image is rounded to its pixels' type before the column pass reads it.
#include <algorithm>

#include "core/area.h"
#include "core/border.h"
#include "core/cache.h"
#include "core/checks.h"
#include "core/fp_control.h"
#include "core/image.h"
#include "core/numbers.h"
#include "filter/gaussian_kernel.h"
#include "filter/gaussian_pass.h"
#include "filter/separable_engine.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

template <class T>
constexpr DataTypeCode kDataType = kIsFloat<T>                   ? DataType32f
                                   : std::is_same_v<T, uint8_t>  ? DataType8u
                                   : std::is_same_v<T, uint16_t> ? DataType16u
                                                                 : DataType16s;

constexpr bool isKernelSize(int32_t kernelSize) {
    return kernelSize >= 3 && kernelSize % 2 != 0;
}
constexpr bool isChannelCount(int32_t channels) {
    return channels == 1 || channels == 3;
}

// ---- Work buffers ---------------------------------------------------------------------------------------

// The ring of a call whose intermediate rows are made of Mid: within the second-level cache, or of whole rows
// where the destination is the source.
template <int Channels, class Mid>
RingShape ringShape(Reach kernel, int64_t width, bool inPlace) {
    using Shapes = RingShapes<Channels, Mid>;
    // As many rows of the destination as a core writes at once without waiting for their lines.
    constexpr int64_t batch = 8;
    const Shapes shapes(kernel, width, batch);
    if (!inPlace) return shapes.preferred();
    RingShape shape = shapes.wholeRows();
    shape.pitch = roundUp(shape.pitch, Vec<Mid>::lanes);
    return shape;
}

// What the row pass makes of elements of T, and the kernel as the passes read it.
template <class T>
using MidOf = std::conditional_t<kIsFloat<T>, float, int16_t>;
template <class T>
using TapsOf = std::conditional_t<sizeof(T) == 1, ByteTaps, WordTaps<T>>;

template <class T>
int16_t* takeTable(Area& area, int64_t kernelSize) {
    return area.take<int16_t>(TapsOf<T>::tableElements(kernelSize), kVectorBytes);
}

// Bytes that a call may need, whatever its border, its kernel's weights, and whether it works in place. False
// when they do not fit 64 bits.
template <class T, int Channels>
bool workBytes(int32_t kernelSize, int64_t width, int64_t& bytes) {
    // Where this product fits 64 bits, so do the sums below.
    int64_t rows = 0;
    if (!multiplyChecked(width, (int64_t{kernelSize} + 64) * 64, rows)) return false;
    const Reach kernel = Reach::centred(kernelSize);
    bytes = 0;
    for (const bool inPlace : {false, true}) {
        Area counted;
        if constexpr (!kIsFloat<T>) takeTable<T>(counted, kernelSize);
        layOutSeparable<Channels, T, MidOf<T>>(counted, kernel, kernel,
                                               ringShape<Channels, MidOf<T>>(kernel, width, inPlace));
        bytes = std::max(bytes, counted.bytes());
    }
    return true;
}

// ---- Filters --------------------------------------------------------------------------------------------

template <class Mid, class T, int Channels, class RowPass, class ColumnPass>
void run(const SeparableTask<T, Channels, T>& task, Area& area, const RingShape& shape, const Mid* outside,
         const RowPass& rowPass, const ColumnPass& columnPass) {
    const auto buffer = layOutSeparable<Channels, T, Mid>(area, task.row, task.column, shape);
    filterSeparable(task, buffer, outside, rowPass, columnPass);
}

template <int Channels>
void filterFloats(const SeparableTask<float, Channels, float>& task, const float* kernel, void* pBuffer,
                  bool streamed) {
    float outside[Channels] = {};
    if (task.border.kind() == BorderConstant) {
        const float sum = kernelSum(kernel, task.row.length);
        for (int c = 0; c < Channels; ++c) outside[c] = task.borderValue[c] * sum;
    }
    Area area(pBuffer);
    const RingShape shape = ringShape<Channels, float>(task.column, task.size.width, task.inPlace());
    run<float>(task, area, shape, outside, FoldedRowPass<Channels>{kernel, task.row.length},
               FoldedColumnPass{kernel, task.column.length, streamed});
}

// The coefficients are those of a spec; K is their type.
template <class T, int Channels, class K>
void filterIntegers(SeparableTask<T, Channels, T> task, const K* taps, int bits, void* pBuffer,
                    bool streamed) {
    static constexpr int16_t kCentre[] = {0, 1 << 14, 0};
    const auto* kernel = reinterpret_cast<const int16_t*>(taps);
    int64_t sum = kernelSum(taps, task.row.length);
    // The memory is that of the spec's kernel, also where a shorter one has the same results.
    const RingShape shape = ringShape<Channels, int16_t>(task.column, task.size.width, task.inPlace());
    if (taps[task.row.length / 2] > 32767) {
        // A centre of exactly 1, which signed factors do not reach, has no neighbours of weight.
        task.row = task.column = Reach::centred(3);
        kernel = kCentre;
        sum = kCentre[1];
        bits = 14;
    }

    int16_t outside[Channels] = {};
    if (task.border.kind() == BorderConstant) {
        for (int c = 0; c < Channels; ++c) {
            const T v = saturate<T>(shiftRightHalfUp(task.borderValue[c] * sum, bits));
            outside[c] = static_cast<int16_t>(v + kBias<T>);
        }
    }
    Area area(pBuffer);
    int16_t* const table = takeTable<T>(area, task.row.length);
    if constexpr (sizeof(T) == 1) {
        if (ThreeTaps::fits(kernel, task.row.length)) {
            const ThreeTaps threeTaps(kernel);
            run<int16_t>(task, area, shape, outside, ThreeTapRowPass<Channels>{threeTaps},
                         ThreeTapColumnPass{threeTaps, streamed});
            return;
        }
        const ByteTaps byteTaps(kernel, task.row.length, table);
        run<int16_t>(task, area, shape, outside, ByteRowPass<Channels>{byteTaps},
                     ByteColumnPass{byteTaps, streamed});
    } else {
        const WordTaps<T> wordTaps(kernel, task.row.length, bits, table);
        run<int16_t>(task, area, shape, outside, WordRowPass<T, Channels>{wordTaps},
                     WordColumnPass<T>{wordTaps, streamed});
    }
}

// `borderType` is null where the spec's border holds.
template <class T, int Channels>
okpStatus filter(Image<const T, Channels> src, Image<T, Channels> dst, Size size,
                 const BorderKind* borderType, const T* borderValue, const void* pSpec, void* pBuffer) {
    Checks checks;
    checks.pointers(src.data, dst.data, pSpec, pBuffer)
        .require(src.step > 0 && dst.step > 0, okpStatusBadStep)
        .size(size);
    if (checks.failed()) return checks.status();

    const FullKernelRecord record = readGaussianRecord(pSpec);
    const BorderKind kind = borderType != nullptr ? *borderType : record.borderType;
    const Border border(kind);
    int64_t bytes = 0;
    checks.require(isKernelSize(record.kernelSize), okpStatusBadArgument)
        .require(record.dataType == kDataType<T>, okpStatusBadDataType)
        .require(isFilterBorder(kind), okpStatusBadBorder)
        .require(border.kind() != BorderConstant || borderValue != nullptr, okpStatusNullPointer);
    if (checks.failed()) return checks.status();
    checks.require(workBytes<T, Channels>(record.kernelSize, size.width, bytes), okpStatusSizeTooLarge);
    if (checks.failed()) return checks.status();

    int64_t written = 0;
    if (!multiplyChecked(size.width * (Channels * int64_t{sizeof(T)}), size.height, written)) {
        written = INT64_MAX;
    }
    const bool streamed = streamsFilter(written);
    const Reach reach = Reach::centred(record.kernelSize);
    const SeparableTask<T, Channels, T> task{src, dst, size, reach, reach, border, borderValue};
    const void* const taps = gaussianTaps(pSpec);
    const DenormalExceptionMask mask;
    if constexpr (kIsFloat<T>) {
        filterFloats(task, static_cast<const float*>(taps), pBuffer, streamed);
    } else {
        using K = std::conditional_t<std::is_same_v<T, uint16_t>, uint16_t, int16_t>;
        filterIntegers(task, static_cast<const K*>(taps), record.fractionBits, pBuffer, streamed);
    }
    if (streamed) finishStreaming();
    return okpStatusOk;
}

// ---- Queries and initialisers of both widths: N is the results' type ------------------------------------

Checks& checkKernel(Checks& checks, int32_t kernelSize, DataTypeCode dataType, int32_t channels) {
    return checks.require(isKernelSize(kernelSize), okpStatusBadArgument)
        .require(isImageType(dataType), okpStatusBadDataType)
        .require(isChannelCount(channels), okpStatusBadNumChannels);
}

template <class N>
okpStatus specSize(int32_t kernelSize, DataTypeCode dataType, int32_t channels, N* pSpecSize,
                   N* pInitBufferSize) {
    Checks checks;
    checks.pointers(pSpecSize, pInitBufferSize);
    checkKernel(checks, kernelSize, dataType, channels);
    if (checks.failed()) return checks.status();

    const int64_t spec = gaussianSpecBytes(kernelSize, dataType);
    const int64_t scratch = gaussianInitBytes(kernelSize);
    checks.require(spec <= kLargest<N> && scratch <= kLargest<N>, okpStatusSizeTooLarge);
    if (checks.failed()) return checks.status();
    *pSpecSize = static_cast<N>(spec);
    *pInitBufferSize = static_cast<N>(scratch);
    return okpStatusOk;
}

bool workBytes(int32_t kernelSize, DataTypeCode dataType, int32_t channels, int64_t width, int64_t& bytes) {
    const bool single = channels == 1;
    switch (dataType) {
        case DataType8u:
            return (single ? workBytes<uint8_t, 1> : workBytes<uint8_t, 3>)(kernelSize, width, bytes);
        case DataType16u:
            return (single ? workBytes<uint16_t, 1> : workBytes<uint16_t, 3>)(kernelSize, width, bytes);
        case DataType16s:
            return (single ? workBytes<int16_t, 1> : workBytes<int16_t, 3>)(kernelSize, width, bytes);
        default:
            return (single ? workBytes<float, 1> : workBytes<float, 3>)(kernelSize, width, bytes);
    }
}

template <class N>
okpStatus bufferSize(Size size, int32_t kernelSize, DataTypeCode dataType, int32_t channels, N* pSpecSize,
                     N* pBufferSize) {
    Checks checks;
    checks.pointers(pSpecSize, pBufferSize).size(size);
    checkKernel(checks, kernelSize, dataType, channels);
    if (checks.failed()) return checks.status();

    int64_t work = 0;
    int64_t spec = 0;
    const bool fits = workBytes(kernelSize, dataType, channels, size.width, work) &&
                      addChecked(int64_t{*pSpecSize}, gaussianHalfRecordBytes(kernelSize), spec);
    const int64_t buffer = std::max(work, gaussianInitBytes(kernelSize));
    checks.require(fits && spec <= kLargest<N> && buffer <= kLargest<N>, okpStatusSizeTooLarge);
    if (checks.failed()) return checks.status();
    *pSpecSize = static_cast<N>(spec);
    *pBufferSize = static_cast<N>(buffer);
    return okpStatusOk;
}

okpStatus init(Size size, int32_t kernelSize, float sigma, BorderKind borderType, DataTypeCode dataType,
               int32_t channels, void* pSpec, void* pInitBuffer) {
    Checks checks;
    checks.pointers(pSpec, pInitBuffer).size(size);
    checkKernel(checks, kernelSize, dataType, channels)
        .require(sigma > 0, okpStatusBadArgument)
        .require(isFilterBorder(borderType), okpStatusBadBorder);
    if (checks.failed()) return checks.status();
    const DenormalExceptionMask mask;
    fillGaussianSpec(kernelSize, sigma, borderType, dataType, pSpec, pInitBuffer);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define GAUSSIAN_C1(NAME, T, STEP, SIZE)                                                                    \
    okpStatus NAME(const T* pSrc, STEP srcStep, T* pDst, STEP dstStep, SIZE roiSize, BorderKind borderType, \
                   T borderValue, const void* pSpec, void* pBuffer) {                                       \
        return filter<T, 1>({pSrc, srcStep}, {pDst, dstStep}, roiSize, &borderType, &borderValue, pSpec,    \
                            pBuffer);                                                                       \
    }

#define GAUSSIAN_C3(NAME, T, STEP, SIZE)                                                                    \
    okpStatus NAME(const T* pSrc, STEP srcStep, T* pDst, STEP dstStep, SIZE roiSize, BorderKind borderType, \
                   const T* pBorderValue, const void* pSpec, void* pBuffer) {                               \
        return filter<T, 3>({pSrc, srcStep}, {pDst, dstStep}, roiSize, &borderType, pBorderValue, pSpec,    \
                            pBuffer);                                                                       \
    }

#define GAUSSIAN_BORDER_C1(NAME, T)                                                                          \
    okpStatus NAME(const T* pSrc, int32_t srcStep, T* pDst, int32_t dstStep, RoiSize roiSize, T borderValue, \
                   const void* pSpec, void* pBuffer) {                                                       \
        return filter<T, 1>({pSrc, srcStep}, {pDst, dstStep}, roiSize, nullptr, &borderValue, pSpec,         \
                            pBuffer);                                                                        \
    }

#define GAUSSIAN_BORDER_C3(NAME, T)                                                                  \
    okpStatus NAME(const T* pSrc, int32_t srcStep, T* pDst, int32_t dstStep, RoiSize roiSize,        \
                   const T* pBorderValue, const void* pSpec, void* pBuffer) {                        \
        return filter<T, 3>({pSrc, srcStep}, {pDst, dstStep}, roiSize, nullptr, pBorderValue, pSpec, \
                            pBuffer);                                                                \
    }

GAUSSIAN_C1(okpiFilterGaussian_8u_C1R, uint8_t, int32_t, RoiSize)
GAUSSIAN_C1(okpiFilterGaussian_8u_C1R_L, uint8_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C1(okpiFilterGaussianBorder_8u_C1R, uint8_t)
GAUSSIAN_C3(okpiFilterGaussian_8u_C3R, uint8_t, int32_t, RoiSize)
GAUSSIAN_C3(okpiFilterGaussian_8u_C3R_L, uint8_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C3(okpiFilterGaussianBorder_8u_C3R, uint8_t)

GAUSSIAN_C1(okpiFilterGaussian_16u_C1R, uint16_t, int32_t, RoiSize)
GAUSSIAN_C1(okpiFilterGaussian_16u_C1R_L, uint16_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C1(okpiFilterGaussianBorder_16u_C1R, uint16_t)
GAUSSIAN_C3(okpiFilterGaussian_16u_C3R, uint16_t, int32_t, RoiSize)
GAUSSIAN_C3(okpiFilterGaussian_16u_C3R_L, uint16_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C3(okpiFilterGaussianBorder_16u_C3R, uint16_t)

GAUSSIAN_C1(okpiFilterGaussian_16s_C1R, int16_t, int32_t, RoiSize)
GAUSSIAN_C1(okpiFilterGaussian_16s_C1R_L, int16_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C1(okpiFilterGaussianBorder_16s_C1R, int16_t)
GAUSSIAN_C3(okpiFilterGaussian_16s_C3R, int16_t, int32_t, RoiSize)
GAUSSIAN_C3(okpiFilterGaussian_16s_C3R_L, int16_t, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C3(okpiFilterGaussianBorder_16s_C3R, int16_t)

GAUSSIAN_C1(okpiFilterGaussian_32f_C1R, float, int32_t, RoiSize)
GAUSSIAN_C1(okpiFilterGaussian_32f_C1R_L, float, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C1(okpiFilterGaussianBorder_32f_C1R, float)
GAUSSIAN_C3(okpiFilterGaussian_32f_C3R, float, int32_t, RoiSize)
GAUSSIAN_C3(okpiFilterGaussian_32f_C3R_L, float, int64_t, RoiSizeL)
GAUSSIAN_BORDER_C3(okpiFilterGaussianBorder_32f_C3R, float)

okpStatus okpiFilterGaussianGetSpecSize(int32_t kernelSize, DataTypeCode dataType, int32_t numChannels,
                                        int32_t* pSpecSize, int32_t* pInitBufferSize) {
    return specSize(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
}

okpStatus okpiFilterGaussianGetSpecSize_L(int32_t kernelSize, DataTypeCode dataType, int32_t numChannels,
                                          int64_t* pSpecSize, int64_t* pInitBufferSize) {
    return specSize(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
}

okpStatus okpiFilterGaussianGetBufferSize(RoiSize roiSize, int32_t kernelSize, DataTypeCode dataType,
                                          int32_t numChannels, int32_t* pSpecSize, int32_t* pBufferSize) {
    return bufferSize(roiSize, kernelSize, dataType, numChannels, pSpecSize, pBufferSize);
}

okpStatus okpiFilterGaussianGetBufferSize_L(RoiSizeL roiSize, int32_t kernelSize, DataTypeCode dataType,
                                            int32_t numChannels, int64_t* pSpecSize, int64_t* pBufferSize) {
    return bufferSize(roiSize, kernelSize, dataType, numChannels, pSpecSize, pBufferSize);
}

okpStatus okpiFilterGaussianInit(RoiSize roiSize, int32_t kernelSize, float sigma, BorderKind borderType,
                                 DataTypeCode dataType, int32_t numChannels, void* pSpec, void* pInitBuffer) {
    return init(roiSize, kernelSize, sigma, borderType, dataType, numChannels, pSpec, pInitBuffer);
}

okpStatus okpiFilterGaussianInit_L(RoiSizeL roiSize, int32_t kernelSize, float sigma, BorderKind borderType,
                                   DataTypeCode dataType, int32_t numChannels, void* pSpec,
                                   void* pInitBuffer) {
    return init(roiSize, kernelSize, sigma, borderType, dataType, numChannels, pSpec, pInitBuffer);
}
