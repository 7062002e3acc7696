// Separable filters: a row kernel, then a column kernel, given by the caller as 16-bit integers with a common
// divisor or as floats. Both passes sum in kernel order in single precision, and both multiply by the
// reciprocal of the divisor.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/area.h"
#include "core/border.h"
#include "core/checks.h"
#include "core/fp_control.h"
#include "core/image.h"
#include "core/numbers.h"
#include "filter/column_pass.h"
#include "filter/column_stream.h"
#include "filter/converting_row_filter.h"
#include "filter/integer_pass.h"
#include "filter/row_pass.h"
#include "filter/separable_engine.h"
#include "filter/stream_engine.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

enum KernelKind : int32_t { IntegerKernels = 0, FloatKernels = 1 };

// The caller's spec area: this record, then at kKernelOffset the row kernel and the column kernel. Specs may
// lie at any address, so the record is copied in and out.
struct SeparableSpec {
    int32_t kernelKind;
    int32_t kernelWidth;
    int32_t kernelHeight;
    int32_t divisor;
    int32_t scaleFactor;
    void* rowKernel;
    int64_t reserved1;
    void* columnKernel;
    int64_t reserved2;
    int32_t numChannels;
};
constexpr int64_t kKernelOffset = 64;
constexpr int64_t kSpecOverhead = 127;
static_assert(sizeof(SeparableSpec) <= kKernelOffset && kKernelOffset <= kSpecOverhead);

constexpr bool isChannelCount(int32_t channels) {
    return channels == 1 || channels == 3 || channels == 4;
}
constexpr bool isKernelType(DataTypeCode type) {
    return type == DataType16s || type == DataType32f;
}
constexpr int64_t kernelElementBytes(DataTypeCode kernelType) {
    return kernelType == DataType16s ? sizeof(int16_t) : sizeof(float);
}

// What the size query promises for the work buffer, and so what a call may use of it:
// 256 kw + 8 kh + 4 C (b kw + kh (width + kw - 1)) bytes for kernel elements of b bytes. False when the
// number does not fit 64 bits.
bool workBufferBytes(int64_t width, RoiSize kernel, int64_t kernelBytes, int32_t channels, int64_t& bytes) {
    const int64_t kw = kernel.width;
    const int64_t kh = kernel.height;
    int64_t rowElements = 0;
    int64_t ring = 0;
    return addChecked(width, kw - 1, rowElements) && multiplyChecked(rowElements, kh, ring) &&
           addChecked(ring, kernelBytes * kw, ring) && multiplyChecked(ring, int64_t{4} * channels, ring) &&
           addChecked(ring, 256 * kw + 8 * kh, bytes);
}

// The work buffer of one call, all of it within the promised number of bytes: the parts of the stream engine
// if it does the work and they fit, of the separable engine otherwise; and, for sources that are converted
// before they are filtered, a stretch of a row as floats.
template <class S, int Channels>
struct WorkBuffer {
    bool streamed;
    Windows<S> windows;  // of the stream engine
    float* streamState;
    SeparableBuffer<S, float> engine;
    float* scratch;
    int64_t scratchCount;

    // `canStream`: the stream engine does this work, if there is memory for it.
    WorkBuffer(void* memory, int64_t bytes, const Reach& row, const Reach& column, int64_t width,
               bool inPlace, bool canStream) {
        streamed = canStream && placeStream(memory, bytes, row, column, width);
        if (!streamed) placeEngine(memory, bytes, row, column, width, inPlace);
    }

  private:
    static constexpr bool converts = !kIsFloat<S>;
    static constexpr int64_t leastStretch = 8;  // pixels

    // The elements that a stretch of so many pixels of the intermediate row sees.
    static constexpr int64_t scratchElements(const Reach& row, int64_t pixels) {
        return converts ? (row.length - 1 + pixels) * Channels : 0;
    }

    // False when there is too little memory.
    bool placeStream(void* memory, int64_t bytes, const Reach& row, const Reach& column, int64_t width) {
        const auto layOut = [&](Area& area) {
            windows.count = kRowsTogether;
            windows.first = area.take<S>(windows.count * windowPixels<float>(row) * Channels, kVectorBytes);
            streamState = area.take<float>(streamStateElements<Channels>(column, width), kVectorBytes);
        };
        Area counted;
        layOut(counted);
        counted.take<float>(scratchElements(row, leastStretch), kVectorBytes);
        if (counted.bytes() > bytes) return false;

        Area placed(memory);
        layOut(placed);
        takeScratch(placed, bytes, scratchElements(row, tilePixels<S, Channels>()));
        return true;
    }

    void placeEngine(void* memory, int64_t bytes, const Reach& row, const Reach& column, int64_t width,
                     bool inPlace) {
        using Shapes = RingShapes<Channels, float>;
        const Shapes shapes(column, width, Shapes::batchFor(column));
        Area fixed;
        layOutSeparable<Channels, S, float>(fixed, row, column, {0, Shapes::batchFor(column), 0});
        fixed.take<float>(scratchElements(row, leastStretch), kVectorBytes);
        const int64_t elements = (bytes - fixed.bytes()) / int64_t{sizeof(float)};
        const RingShape shape = inPlace ? shapes.wholeRows() : shapes.within(elements, converts ? 1 : 0);

        Area placed(memory);
        engine = layOutSeparable<Channels, S, float>(placed, row, column, shape);
        takeScratch(placed, bytes, scratchElements(row, shape.strip));
    }

    // As many elements as are wanted, or as the rest of the memory holds.
    void takeScratch(Area& area, int64_t bytes, int64_t wanted) {
        if (!converts) return;
        const int64_t left = (bytes - area.bytes() - kVectorBytes) / int64_t{sizeof(float)};
        scratchCount = wanted < left ? wanted : left;
        scratch = area.take<float>(scratchCount, kVectorBytes);
    }
};

// What the row pass makes of border values: value * (sum of the kernel), times the reciprocal of the divisor
// for integer kernels.
template <class S, class K>
float filteredBorderValue(S value, const K* kernel, int64_t length, float scale) {
    const float product = static_cast<float>(value) * static_cast<float>(kernelSum(kernel, length));
    return kIsInt<K> ? product * scale : product;
}

// v * 2^-scaleFactor, finite, so that it takes zeros to zeros; other sums it then takes out of the range of
// any integer type.
float scaledDown(float v, int32_t scaleFactor) {
    constexpr int32_t enough = 300;  // shifts any float out of its range
    constexpr float largest = std::numeric_limits<float>::max();
    return std::clamp(std::ldexp(v, -std::clamp(scaleFactor, -enough, enough)), -largest, largest);
}

// Whether no result can reach 2^31 in magnitude, nor an intermediate value overflow, which column streams to
// integers ask for. The limits leave room for the roundings of sums.
template <class D, class S, class K>
bool isBounded(const SeparableSpec& spec, float rowScale, float columnScale) {
    if constexpr (kIsFloat<D>) {
        return true;
    } else {
        const auto scaled = [](const void* kernel, int32_t length, float scale) {
            const double sum = static_cast<double>(magnitude(static_cast<const K*>(kernel), length));
            return sum * std::fabs(static_cast<double>(scale));
        };
        const double largest = std::is_same_v<S, uint8_t> ? 255 : 65535;
        const double row = scaled(spec.rowKernel, spec.kernelWidth, rowScale) * largest;
        const double result = scaled(spec.columnKernel, spec.kernelHeight, columnScale) * row;
        return row <= powerOfTwo(100) && result <= powerOfTwo(29);
    }
}

template <class K, class S, int Channels, class D>
void filterWith(const SeparableSpec& spec, const SeparableTask<S, Channels, D>& task, float rowScale,
                float columnScale, void* pBuffer, int64_t bytes) {
    const bool streamed = hasColumnStream(task.column.length) && !task.inPlace() &&
                          isBounded<D, S, K>(spec, rowScale, columnScale);
    const WorkBuffer<S, Channels> buffer(pBuffer, bytes, task.row, task.column, task.size.width,
                                         task.inPlace(), streamed);
    const auto* const rowKernel = static_cast<const K*>(spec.rowKernel);
    const auto* const columnKernel = static_cast<const K*>(spec.columnKernel);

    float outside[Channels] = {};
    if (task.border.kind() == BorderConstant) {
        for (int c = 0; c < Channels; ++c) {
            outside[c] = filteredBorderValue(task.borderValue[c], rowKernel, task.row.length, rowScale);
        }
    }
    const auto run = [&](const auto& rowPass) {
        const int64_t length = task.column.length;
        if (buffer.streamed) {
            filterStreamed(task, buffer.windows, buffer.streamState, outside, rowPass,
                           ColumnStream<D>(columnKernel, length, columnScale));
        } else {
            filterSeparable(task, buffer.engine, outside, rowPass,
                            FloatColumnPass<D, K>{columnKernel, length, columnScale});
        }
    };
    const FloatRowPass<K, Channels> floatPass{rowKernel, task.row.length, rowScale};
    if constexpr (kIsInt<K> && (std::is_same_v<S, uint8_t> || std::is_same_v<S, int16_t>)) {
        if (sumsAreExact<S>(rowKernel, task.row.length)) {
            return run(IntegerRowPass<Channels>{rowKernel, task.row.length, rowScale});
        }
    }
    if constexpr (kIsFloat<S>) {
        run(floatPass);
    } else {
        run(ConvertingRowPass<S, K, Channels>{floatPass, buffer.scratch, buffer.scratchCount});
    }
}

// How integer kernels filter 8-bit images without single precision. Where the divisor is a power of two and
// no sum of products exceeds 2^24 in magnitude, every intermediate value and every sum of the definition is a
// number that single precision holds exactly; then the order of additions does not matter, and the whole is
// the integer (sum over both kernels) / 2^bits, truncated and clamped.
struct ExactPlan {
    enum class Sums { None, Signed16, Unsigned16, Signed32 };
    Sums sums = Sums::None;
    int bits = 0;
    int32_t bias = 0;         // taken from row sums so that they fit 16 bits
    int32_t columnStart = 0;  // what that takes from column sums
    bool negative = false;    // whether sums can be

    ExactPlan(const SeparableSpec& spec, int32_t scaleFactor) {
        const int64_t divisor = spec.divisor;
        if (divisor < 1 || (divisor & (divisor - 1)) != 0) return;
        if (spec.kernelWidth < 2 || spec.kernelWidth > PairedKernel::longest) return;
        if (spec.kernelHeight > WrappingKernel::longest) return;
        const int64_t shift = 2 * int64_t{__builtin_ctzll(static_cast<uint64_t>(divisor))} + scaleFactor;
        if (shift < 0 || shift > 30) return;

        const Range row =
            Range{0, 255}.weighted(static_cast<const int16_t*>(spec.rowKernel), spec.kernelWidth);
        const auto* const columnKernel = static_cast<const int16_t*>(spec.columnKernel);
        const Range sum = row.weighted(columnKernel, spec.kernelHeight);
        // Coefficients of both signs: no partial sum exceeds the sum of magnitudes, which is at most this.
        const int64_t largest = (row.high - row.low) * magnitude(columnKernel, spec.kernelHeight);
        const int64_t rowSpan = 255 * PairedKernel::largestMagnitude;  // what 16 bits hold
        if (row.high - row.low > rowSpan || largest > int64_t{1} << 24) return;

        bits = static_cast<int>(shift);
        negative = sum.low < 0;
        if (bits <= 15 && sum.low >= -32768 && sum.high <= 32767) {
            sums = Sums::Signed16;
        } else if (bits <= 15 && sum.low >= 0 && sum.high <= 65535) {
            sums = Sums::Unsigned16;
        } else {
            sums = Sums::Signed32;
            bias = row.low >= -32768 && row.high <= 32767 ? 0 : static_cast<int32_t>(row.low + 32768);
            columnStart = static_cast<int32_t>(kernelSum(columnKernel, spec.kernelHeight) * bias);
        }
    }

  private:
    struct Range {
        int64_t low, high;

        Range weighted(const int16_t* kernel, int64_t length) const {
            Range sum{0, 0};
            for (int64_t i = 0; i < length; ++i) {
                const int64_t k = coefficient(kernel, i);
                sum.low += k * (k < 0 ? high : low);
                sum.high += k * (k < 0 ? low : high);
            }
            return sum;
        }
    };
};

template <int Channels, class D>
void filterExactly(const SeparableSpec& spec, const SeparableTask<uint8_t, Channels, D>& task,
                   const ExactPlan& plan, void* pBuffer, int64_t bytes) {
    const auto* const columnKernel = static_cast<const int16_t*>(spec.columnKernel);
    const auto* const rowKernel = static_cast<const int16_t*>(spec.rowKernel);
    const PairedKernel pairedRow(rowKernel, task.row.length);
    const PairedRowPass<Channels> rowPass{pairedRow, static_cast<int16_t>(-plan.bias)};

    using Shapes = RingShapes<Channels, int16_t>;
    const int64_t batch = roundUp(Shapes::batchFor(task.column), 2);  // output rows are made in pairs
    const Shapes shapes(task.column, task.size.width, batch);
    Area fixed;
    layOutSeparable<Channels, uint8_t, int16_t>(fixed, task.row, task.column, {0, batch, 0});
    const int64_t elements = (bytes - fixed.bytes()) / int64_t{sizeof(int16_t)};
    Area placed(pBuffer);
    const auto buffer = layOutSeparable<Channels, uint8_t, int16_t>(
        placed, task.row, task.column, task.inPlace() ? shapes.wholeRows() : shapes.within(elements, 0));

    int16_t outside[Channels] = {};
    if (task.border.kind() == BorderConstant) {
        const int64_t sum = kernelSum(rowKernel, task.row.length);
        for (int c = 0; c < Channels; ++c) {
            outside[c] = static_cast<int16_t>(task.borderValue[c] * sum - plan.bias);
        }
    }
    if (plan.sums == ExactPlan::Sums::Signed32) {
        const auto run = [&](const auto& finish) {
            filterSeparable(task, buffer, outside, rowPass,
                            IntegerColumnPass<D, std::remove_cvref_t<decltype(finish)>>{
                                columnKernel, task.column.length, plan.columnStart, finish});
        };
        if constexpr (std::is_signed_v<D>) {
            if (plan.negative) return run(ShiftedRight<true>{plan.bits});
        }
        return run(ShiftedRight<false>{plan.bits});
    }
    const WrappingKernel wrappingColumn(columnKernel, task.column.length);
    if (plan.sums == ExactPlan::Sums::Signed16) {
        filterSeparable(task, buffer, outside, rowPass,
                        WrappingColumnPass<D, int16_t>{wrappingColumn, plan.bits});
    } else {
        filterSeparable(task, buffer, outside, rowPass,
                        WrappingColumnPass<D, uint16_t>{wrappingColumn, plan.bits});
    }
}

template <class S, int Channels, class D>
okpStatus filter(Image<const S, Channels> src, Image<D, Channels> dst, Size size, BorderKind borderType,
                 const S* borderValue, const void* pSpec, void* pBuffer) {
    Checks checks;
    checks.pointers(src.data, dst.data, pBuffer, pSpec).size(size).rowsFit(size, src, dst);
    if (checks.failed()) return checks.status();

    SeparableSpec spec;
    std::memcpy(&spec, pSpec, sizeof spec);
    const Border border(borderType);
    checks.pointers(spec.rowKernel, spec.columnKernel)
        .require(isFilterBorder(borderType), okpStatusBadBorder)
        .require(border.kind() != BorderConstant || borderValue != nullptr, okpStatusNullPointer);
    if (checks.failed()) return checks.status();

    const bool integer = spec.kernelKind == IntegerKernels;
    int64_t bytes = 0;
    checks.require(workBufferBytes(size.width, {spec.kernelWidth, spec.kernelHeight},
                                   kernelElementBytes(integer ? DataType16s : DataType32f), Channels, bytes),
                   okpStatusSizeTooLarge);
    if (checks.failed()) return checks.status();

    const SeparableTask<S, Channels, D> task{
        src,    dst,        size, Reach::centred(spec.kernelWidth), Reach::centred(spec.kernelHeight),
        border, borderValue};
    const DenormalExceptionMask mask;
    if constexpr (std::is_same_v<S, uint8_t>) {
        if (integer) {
            const ExactPlan plan(spec, std::is_same_v<D, int16_t> ? spec.scaleFactor : 0);
            if (plan.sums != ExactPlan::Sums::None) {
                filterExactly(spec, task, plan, pBuffer, bytes);
                return okpStatusOk;
            }
        }
    }
    if (integer) {
        const float reciprocal = 1.0F / static_cast<float>(spec.divisor);
        const float columnScale =
            std::is_same_v<D, int16_t> ? scaledDown(reciprocal, spec.scaleFactor) : reciprocal;
        filterWith<int16_t>(spec, task, reciprocal, columnScale, pBuffer, bytes);
    } else {
        filterWith<float>(spec, task, 1.0F, 1.0F, pBuffer, bytes);
    }
    return okpStatusOk;
}

// Queries of both widths: T is the result's type.
template <class T>
okpStatus specSize(RoiSize kernel, DataTypeCode kernelType, int32_t channels, T* pSize) {
    Checks checks;
    checks.size(kernel)
        .pointers(pSize)
        .require(isKernelType(kernelType), okpStatusBadDataType)
        .require(isChannelCount(channels), okpStatusBadNumChannels);
    if (checks.failed()) return checks.status();

    const int64_t elements = int64_t{kernel.width} + kernel.height;
    const int64_t bytes = elements * kernelElementBytes(kernelType) + kSpecOverhead;
    checks.require(bytes <= kLargest<T>, okpStatusSizeTooLarge);
    if (!checks.failed()) *pSize = static_cast<T>(bytes);
    return checks.status();
}

template <class T>
okpStatus bufferSize(Size size, RoiSize kernel, DataTypeCode dataType, DataTypeCode kernelType,
                     int32_t channels, T* pSize) {
    Checks checks;
    checks.size(size)
        .size(kernel)
        .pointers(pSize)
        .require(isImageType(dataType), okpStatusBadDataType)
        .require(isKernelType(kernelType), okpStatusBadDataType)
        .require(isChannelCount(channels), okpStatusBadNumChannels);
    if (checks.failed()) return checks.status();

    int64_t bytes = 0;
    const bool fits = workBufferBytes(size.width, kernel, kernelElementBytes(kernelType), channels, bytes) &&
                      bytes <= kLargest<T>;
    checks.require(fits, okpStatusSizeTooLarge);
    if (!checks.failed()) *pSize = static_cast<T>(bytes);
    return checks.status();
}

template <class K>
okpStatus init(const K* pRowKernel, const K* pColumnKernel, RoiSize kernel, int32_t divisor,
               int32_t scaleFactor, bool dataTypeAccepted, int32_t channels, void* pSpec) {
    Checks checks;
    checks.pointers(pRowKernel, pSpec, pColumnKernel)
        .size(kernel)
        .require(dataTypeAccepted, okpStatusBadDataType)
        .require(isChannelCount(channels), okpStatusBadNumChannels)
        .require(divisor != 0, okpStatusZeroDivisor);
    if (checks.failed()) return checks.status();

    const size_t rowBytes = sizeof(K) * static_cast<size_t>(kernel.width);
    const size_t columnBytes = sizeof(K) * static_cast<size_t>(kernel.height);
    char* const kernels = static_cast<char*>(pSpec) + kKernelOffset;
    SeparableSpec spec = {};
    spec.kernelKind = kIsFloat<K> ? FloatKernels : IntegerKernels;
    spec.kernelWidth = kernel.width;
    spec.kernelHeight = kernel.height;
    spec.divisor = divisor;
    spec.scaleFactor = scaleFactor;
    spec.rowKernel = kernels;
    spec.columnKernel = kernels + rowBytes;
    spec.numChannels = channels;
    std::memcpy(pSpec, &spec, sizeof spec);
    std::memcpy(kernels, static_cast<const void*>(pRowKernel), rowBytes);
    std::memcpy(kernels + rowBytes, static_cast<const void*>(pColumnKernel), columnBytes);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define FILTER_C1(NAME, S, D, STEP, SIZE)                                                                   \
    okpStatus NAME(const S* pSrc, STEP srcStep, D* pDst, STEP dstStep, SIZE roiSize, BorderKind borderType, \
                   S borderValue, const void* pSpec, void* pBuffer) {                                       \
        return filter<S, 1, D>({pSrc, srcStep}, {pDst, dstStep}, roiSize, borderType, &borderValue, pSpec,  \
                               pBuffer);                                                                    \
    }

#define FILTER_CN(NAME, S, D, CHANNELS, STEP, SIZE)                                                         \
    okpStatus NAME(const S* pSrc, STEP srcStep, D* pDst, STEP dstStep, SIZE roiSize, BorderKind borderType, \
                   const S* borderValue, const void* pSpec, void* pBuffer) {                                \
        return filter<S, CHANNELS, D>({pSrc, srcStep}, {pDst, dstStep}, roiSize, borderType, borderValue,   \
                                      pSpec, pBuffer);                                                      \
    }

FILTER_C1(okpiFilterSeparable_8u_C1R, uint8_t, uint8_t, int32_t, RoiSize)
FILTER_C1(okpiFilterSeparable_8u_C1R_L, uint8_t, uint8_t, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_8u_C3R, uint8_t, uint8_t, 3, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_8u_C3R_L, uint8_t, uint8_t, 3, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_8u_C4R, uint8_t, uint8_t, 4, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_8u_C4R_L, uint8_t, uint8_t, 4, int64_t, RoiSizeL)

FILTER_C1(okpiFilterSeparable_8u16s_C1R, uint8_t, int16_t, int32_t, RoiSize)
FILTER_C1(okpiFilterSeparable_8u16s_C1R_L, uint8_t, int16_t, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_8u16s_C3R, uint8_t, int16_t, 3, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_8u16s_C3R_L, uint8_t, int16_t, 3, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_8u16s_C4R, uint8_t, int16_t, 4, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_8u16s_C4R_L, uint8_t, int16_t, 4, int64_t, RoiSizeL)

FILTER_C1(okpiFilterSeparable_16s_C1R, int16_t, int16_t, int32_t, RoiSize)
FILTER_C1(okpiFilterSeparable_16s_C1R_L, int16_t, int16_t, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_16s_C3R, int16_t, int16_t, 3, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_16s_C3R_L, int16_t, int16_t, 3, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_16s_C4R, int16_t, int16_t, 4, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_16s_C4R_L, int16_t, int16_t, 4, int64_t, RoiSizeL)

FILTER_C1(okpiFilterSeparable_16u_C1R, uint16_t, uint16_t, int32_t, RoiSize)
FILTER_C1(okpiFilterSeparable_16u_C1R_L, uint16_t, uint16_t, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_16u_C3R, uint16_t, uint16_t, 3, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_16u_C3R_L, uint16_t, uint16_t, 3, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_16u_C4R, uint16_t, uint16_t, 4, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_16u_C4R_L, uint16_t, uint16_t, 4, int64_t, RoiSizeL)

FILTER_C1(okpiFilterSeparable_32f_C1R, float, float, int32_t, RoiSize)
FILTER_C1(okpiFilterSeparable_32f_C1R_L, float, float, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_32f_C3R, float, float, 3, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_32f_C3R_L, float, float, 3, int64_t, RoiSizeL)
FILTER_CN(okpiFilterSeparable_32f_C4R, float, float, 4, int32_t, RoiSize)
FILTER_CN(okpiFilterSeparable_32f_C4R_L, float, float, 4, int64_t, RoiSizeL)

okpStatus okpiFilterSeparableGetSpecSize(RoiSize kernelSize, DataTypeCode kernelType, int32_t numChannels,
                                         int32_t* pSpecSize) {
    return specSize(kernelSize, kernelType, numChannels, pSpecSize);
}

okpStatus okpiFilterSeparableGetSpecSize_L(RoiSize kernelSize, DataTypeCode kernelType, int32_t numChannels,
                                           int64_t* pSpecSize) {
    return specSize(kernelSize, kernelType, numChannels, pSpecSize);
}

okpStatus okpiFilterSeparableGetBufferSize(RoiSize roiSize, RoiSize kernelSize, DataTypeCode dataType,
                                           DataTypeCode kernelType, int32_t numChannels,
                                           int32_t* pBufferSize) {
    return bufferSize(roiSize, kernelSize, dataType, kernelType, numChannels, pBufferSize);
}

okpStatus okpiFilterSeparableGetBufferSize_L(RoiSizeL roiSize, RoiSize kernelSize, DataTypeCode dataType,
                                             DataTypeCode kernelType, int32_t numChannels,
                                             int64_t* pBufferSize) {
    return bufferSize(roiSize, kernelSize, dataType, kernelType, numChannels, pBufferSize);
}

okpStatus okpiFilterSeparableInit_16s(const int16_t* pRowKernel, const int16_t* pColumnKernel,
                                      RoiSize kernelSize, int32_t divisor, int32_t scaleFactor,
                                      DataTypeCode dataType, int32_t numChannels, void* pSpec) {
    return okpiFilterSeparableInit_16s_L(pRowKernel, pColumnKernel, kernelSize, divisor, scaleFactor,
                                         dataType, numChannels, pSpec);
}

okpStatus okpiFilterSeparableInit_16s_L(const int16_t* pRowKernel, const int16_t* pColumnKernel,
                                        RoiSize kernelSize, int32_t divisor, int32_t scaleFactor,
                                        DataTypeCode dataType, int32_t numChannels, void* pSpec) {
    const bool accepted = dataType == DataType16s || dataType == DataType8u;
    return init(pRowKernel, pColumnKernel, kernelSize, divisor, scaleFactor, accepted, numChannels, pSpec);
}

okpStatus okpiFilterSeparableInit_32f(const float* pRowKernel, const float* pColumnKernel, RoiSize kernelSize,
                                      DataTypeCode dataType, int32_t numChannels, void* pSpec) {
    return okpiFilterSeparableInit_32f_L(pRowKernel, pColumnKernel, kernelSize, dataType, numChannels, pSpec);
}

okpStatus okpiFilterSeparableInit_32f_L(const float* pRowKernel, const float* pColumnKernel,
                                        RoiSize kernelSize, DataTypeCode dataType, int32_t numChannels,
                                        void* pSpec) {
    const bool accepted = dataType == DataType8u || dataType == DataType16u || dataType == DataType32f;
    return init(pRowKernel, pColumnKernel, kernelSize, 1, 0, accepted, numChannels, pSpec);
}
