// Row and column pipelines: the two halves of a separable filter, on rows that the caller keeps. Sums are
// those of the separable filters, each half followed by the division and the conversion to the type of its
// results.
#include "core/area.h"
#include "core/border.h"
#include "core/checks.h"
#include "core/fp_control.h"
#include "core/image.h"
#include "core/numbers.h"
#include "filter/column_pass.h"
#include "filter/integer_pass.h"
#include "filter/row_pass.h"
#include "filter/separable_task.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

// Whether none of the pointers to rows is null.
template <class T>
bool allRows(T* const* rows, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        if (rows[i] == nullptr) return false;
    }
    return true;
}

// The arithmetic of a family of pipelines.
enum class Sums { Single, Integer };

// Whether integer passes take these elements and coefficients.
template <class S, class K>
inline constexpr bool kInIntegers = kIsInt<K> && (std::is_same_v<S, uint8_t> || std::is_same_v<S, int16_t>);

// What a row pipeline is asked to do. K is float or int16_t; float kernels have no divisor.
template <class S, class D, int Channels, class K>
struct RowPipeline {
    Image<const S, Channels> src;
    D* const* dstRows;
    Size size;
    const K* kernel;
    int32_t kernelSize;
    int32_t anchor;
    BorderKind borderType;
    const S* borderValue;
    int32_t divisor;
    void* buffer;
};

template <Sums kSums, class S, class D, int Channels, class K>
okpStatus filterRows(const RowPipeline<S, D, Channels, K>& call) {
    const Size size = call.size;
    const Border border(call.borderType);
    Checks checks;
    checks.pointers(call.src.data, call.dstRows, call.kernel, call.buffer).size(size);
    if (checks.failed()) return checks.status();
    checks.require(allRows(call.dstRows, size.height), okpStatusNullPointer)
        .require(call.kernelSize >= 1, okpStatusBadSize)
        .require(call.anchor >= 0 && call.anchor < call.kernelSize, okpStatusBadAnchor)
        .steps(size, call.src)
        .require(call.divisor >= 1, okpStatusBadArgument)
        .require(isFilterBorder(call.borderType), okpStatusBadBorder)
        .require(border.kind() != BorderConstant || call.borderValue != nullptr, okpStatusNullPointer);
    if (checks.failed()) return checks.status();

    const Reach row{call.kernelSize, call.anchor};
    const SeparableTask<S, Channels, D> task{call.src, {nullptr, 0},    size, row, Reach::centred(1),
                                             border,   call.borderValue};
    Area area(call.buffer);
    S* const window = area.take<S>(windowPixels<D>(row) * Channels, kVectorBytes);
    const float scale = 1.0F / static_cast<float>(call.divisor);

    const auto run = [&](const auto& pass) {
        const RowFilter<S, Channels, D, D, std::remove_cvref_t<decltype(pass)>> rows(task, pass, {window, 1},
                                                                                     nullptr);
        for (int64_t y = 0; y < size.height; ++y) rows.filter(call.dstRows + y, &y, 1, 0, size.width);
    };
    const DenormalExceptionMask mask;
    if constexpr (kInIntegers<S, K>) {
        if (kSums == Sums::Integer || sumsAreExact<S>(call.kernel, call.kernelSize)) {
            run(IntegerRowPass<Channels>{call.kernel, call.kernelSize, scale});
            return okpStatusOk;
        }
    }
    run(FloatRowPass<K, Channels, true>{call.kernel, call.kernelSize, scale});
    return okpStatusOk;
}

// What a column pipeline is asked to do.
template <class S, class D, int Channels, class K>
struct ColumnPipeline {
    const S* const* srcRows;
    Image<D, Channels> dst;
    Size size;
    const K* kernel;
    int32_t kernelSize;
    int32_t divisor;
    void* buffer;
};

template <Sums kSums, class S, class D, int Channels, class K>
okpStatus filterColumns(const ColumnPipeline<S, D, Channels, K>& call) {
    const Size size = call.size;
    Checks checks;
    checks.pointers(call.srcRows, call.dst.data, call.kernel)
        .size(size)
        .require(call.divisor >= 1, okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    const int64_t rowCount = size.height + call.kernelSize - 1;
    checks.require(allRows(call.srcRows, rowCount), okpStatusNullPointer)
        .require(call.kernelSize >= 1, okpStatusBadSize)
        .steps(size, call.dst)
        .pointers(call.buffer);
    if (checks.failed()) return checks.status();

    const float scale = 1.0F / static_cast<float>(call.divisor);
    const int64_t elements = size.width * Channels;
    const auto run = [&](const auto& pass) {
        constexpr int64_t batch = 8;  // rows that share what they see while it is in the cache
        for (int64_t y = 0; y < size.height; y += batch) {
            const int64_t rows = size.height - y < batch ? size.height - y : batch;
            pass(call.dst.row(y), call.dst.step, rows, call.srcRows + y, elements);
        }
    };
    const DenormalExceptionMask mask;
    if constexpr (kInIntegers<S, K>) {
        if (kSums == Sums::Integer || sumsAreExact<S>(call.kernel, call.kernelSize)) {
            run(IntegerColumnPass<D, TimesScale>{call.kernel, call.kernelSize, 0, {scale}});
            return okpStatusOk;
        }
    }
    run(FloatColumnPass<D, K>{call.kernel, call.kernelSize, scale});
    return okpStatusOk;
}

// The size queries: `bytes` is computed in 64 bits from a valid region and kernel.
template <class Bytes>
okpStatus bufferSize(RoiSize roiSize, int32_t kernelSize, int32_t* pBufferSize, const Bytes& bytes) {
    Checks checks;
    checks.pointers(pBufferSize).size(roiSize).require(kernelSize >= 1, okpStatusBadSize);
    if (checks.failed()) return checks.status();

    const int64_t size = bytes(int64_t{roiSize.width}, int64_t{kernelSize});
    checks.require(size <= INT32_MAX, okpStatusSizeTooLarge);
    if (!checks.failed()) *pBufferSize = static_cast<int32_t>(size);
    return checks.status();
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define ROWS_C1(NAME, SUMS, S, D)                                                                            \
    okpStatus NAME(const S* pSrc, int32_t srcStep, D* const* ppDst, RoiSize roiSize, const int16_t* pKernel, \
                   int32_t kernelSize, int32_t anchor, BorderKind borderType, S borderValue,                 \
                   int32_t divisor, void* pBuffer) {                                                         \
        return filterRows<SUMS>(RowPipeline<S, D, 1, int16_t>{{pSrc, srcStep},                               \
                                                              ppDst,                                         \
                                                              roiSize,                                       \
                                                              pKernel,                                       \
                                                              kernelSize,                                    \
                                                              anchor,                                        \
                                                              borderType,                                    \
                                                              &borderValue,                                  \
                                                              divisor,                                       \
                                                              pBuffer});                                     \
    }

#define ROWS_C3(NAME, SUMS, S, D)                                                                            \
    okpStatus NAME(const S* pSrc, int32_t srcStep, D* const* ppDst, RoiSize roiSize, const int16_t* pKernel, \
                   int32_t kernelSize, int32_t anchor, BorderKind borderType, const S* borderValue,          \
                   int32_t divisor, void* pBuffer) {                                                         \
        return filterRows<SUMS>(RowPipeline<S, D, 3, int16_t>{{pSrc, srcStep},                               \
                                                              ppDst,                                         \
                                                              roiSize,                                       \
                                                              pKernel,                                       \
                                                              kernelSize,                                    \
                                                              anchor,                                        \
                                                              borderType,                                    \
                                                              borderValue,                                   \
                                                              divisor,                                       \
                                                              pBuffer});                                     \
    }

#define COLUMNS(NAME, SUMS, S, D, CHANNELS)                                                                  \
    okpStatus NAME(const S* const* ppSrc, D* pDst, int32_t dstStep, RoiSize roiSize, const int16_t* pKernel, \
                   int32_t kernelSize, int32_t divisor, void* pBuffer) {                                     \
        return filterColumns<SUMS>(ColumnPipeline<S, D, CHANNELS, int16_t>{                                  \
            ppSrc, {pDst, dstStep}, roiSize, pKernel, kernelSize, divisor, pBuffer});                        \
    }

// BYTES is a formula of the region's width w and the kernel's length k.
#define BUFFER_SIZE(NAME, BYTES)                                                                         \
    okpStatus NAME(RoiSize roiSize, int32_t kernelSize, int32_t* pBufferSize) {                          \
        return bufferSize(roiSize, kernelSize, pBufferSize,                                              \
                          []([[maybe_unused]] int64_t w, [[maybe_unused]] int64_t k) { return BYTES; }); \
    }

ROWS_C1(okpiFilterRowBorderPipeline_16s_C1R, Sums::Single, int16_t, int16_t)
ROWS_C3(okpiFilterRowBorderPipeline_16s_C3R, Sums::Single, int16_t, int16_t)
ROWS_C1(okpiFilterRowBorderPipeline_16u_C1R, Sums::Single, uint16_t, uint16_t)
ROWS_C3(okpiFilterRowBorderPipeline_16u_C3R, Sums::Single, uint16_t, uint16_t)
ROWS_C1(okpiFilterRowBorderPipeline_8u16s_C1R, Sums::Single, uint8_t, int16_t)
ROWS_C3(okpiFilterRowBorderPipeline_8u16s_C3R, Sums::Single, uint8_t, int16_t)
ROWS_C1(okpiFilterRowBorderPipeline_Low_16s_C1R, Sums::Integer, int16_t, int16_t)
ROWS_C3(okpiFilterRowBorderPipeline_Low_16s_C3R, Sums::Integer, int16_t, int16_t)

okpStatus okpiFilterRowBorderPipeline_32f_C1R(const float* pSrc, int32_t srcStep, float* const* ppDst,
                                              RoiSize roiSize, const float* pKernel, int32_t kernelSize,
                                              int32_t anchor, BorderKind borderType, float borderValue,
                                              void* pBuffer) {
    return filterRows<Sums::Single>(RowPipeline<float, float, 1, float>{
        {pSrc, srcStep}, ppDst, roiSize, pKernel, kernelSize, anchor, borderType, &borderValue, 1, pBuffer});
}

okpStatus okpiFilterRowBorderPipeline_32f_C3R(const float* pSrc, int32_t srcStep, float* const* ppDst,
                                              RoiSize roiSize, const float* pKernel, int32_t kernelSize,
                                              int32_t anchor, BorderKind borderType, const float* borderValue,
                                              void* pBuffer) {
    return filterRows<Sums::Single>(RowPipeline<float, float, 3, float>{
        {pSrc, srcStep}, ppDst, roiSize, pKernel, kernelSize, anchor, borderType, borderValue, 1, pBuffer});
}

COLUMNS(okpiFilterColumnPipeline_16s8s_C1R, Sums::Single, int16_t, int8_t, 1)
COLUMNS(okpiFilterColumnPipeline_16s8s_C3R, Sums::Single, int16_t, int8_t, 3)
COLUMNS(okpiFilterColumnPipeline_16s8u_C1R, Sums::Single, int16_t, uint8_t, 1)
COLUMNS(okpiFilterColumnPipeline_16s8u_C3R, Sums::Single, int16_t, uint8_t, 3)
COLUMNS(okpiFilterColumnPipeline_16s_C1R, Sums::Single, int16_t, int16_t, 1)
COLUMNS(okpiFilterColumnPipeline_16s_C3R, Sums::Single, int16_t, int16_t, 3)
COLUMNS(okpiFilterColumnPipeline_16u_C1R, Sums::Single, uint16_t, uint16_t, 1)
COLUMNS(okpiFilterColumnPipeline_16u_C3R, Sums::Single, uint16_t, uint16_t, 3)
COLUMNS(okpiFilterColumnPipeline_Low_16s_C1R, Sums::Integer, int16_t, int16_t, 1)
COLUMNS(okpiFilterColumnPipeline_Low_16s_C3R, Sums::Integer, int16_t, int16_t, 3)

okpStatus okpiFilterColumnPipeline_32f_C1R(const float* const* ppSrc, float* pDst, int32_t dstStep,
                                           RoiSize roiSize, const float* pKernel, int32_t kernelSize,
                                           void* pBuffer) {
    return filterColumns<Sums::Single>(ColumnPipeline<float, float, 1, float>{
        ppSrc, {pDst, dstStep}, roiSize, pKernel, kernelSize, 1, pBuffer});
}

okpStatus okpiFilterColumnPipeline_32f_C3R(const float* const* ppSrc, float* pDst, int32_t dstStep,
                                           RoiSize roiSize, const float* pKernel, int32_t kernelSize,
                                           void* pBuffer) {
    return filterColumns<Sums::Single>(ColumnPipeline<float, float, 3, float>{
        ppSrc, {pDst, dstStep}, roiSize, pKernel, kernelSize, 1, pBuffer});
}

BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_16s_C1R, 48 * k + 112)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_16s_C3R, 40 * k + 96)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_16u_C1R, 48 * k + 80)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_16u_C3R, 112 * k + 80)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_32f_C1R, 64 * k + 96)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_32f_C3R, 192 * k + 96)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 36 * k + 144)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, 60 * k + 144)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 24 * k + 96)
BUFFER_SIZE(okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, 208 * k + 96)

BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s_C1R, roundUp(w, 4) * 12 + 64)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s_C3R, roundUp(w, 4) * 36 + 64)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16u_C1R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16u_C3R, roundUp(3 * w, 4) * 36 + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R, roundUp(w, 8) * 12 + 64)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R, roundUp(w, 8) * 36 + 64)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s8s_C1R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s8s_C3R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s8u_C1R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_16s8u_C3R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_32f_C1R, 16 * k + 32)
BUFFER_SIZE(okpiFilterColumnPipelineGetBufferSize_32f_C3R, 16 * k + 32)
