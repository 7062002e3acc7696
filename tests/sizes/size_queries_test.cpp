// All size queries over the whole range of their arguments: whatever is asked, a query gives a size that is
// positive and never smaller than that of a smaller region or kernel, or refuses and writes nothing. A
// product that had wrapped would show, and under the sanitizer any overflow does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "okpcv.h"

namespace okpcv::test {
namespace {

constexpr int64_t kUntouched = -77;

// What a query says: sizes kUntouched where it has fewer than two, or refused.
struct Answer {
    okpStatus status;
    int64_t sizes[2];
};

// A query as a function of a region and of one more number: a kernel's or mask's length, or a level.
struct Query {
    const char* name;
    bool is64Bit;
    bool growing;  // whether a larger region or number never needs less
    std::function<Answer(RoiSizeL, int64_t)> ask;
};

template <class Call>
Query narrow(const char* name, bool growing, Call call) {
    return {name, false, growing, [=](RoiSizeL roi, int64_t number) {
                int32_t sizes[2] = {kUntouched, kUntouched};
                const okpStatus status =
                    call(RoiSize{static_cast<int32_t>(roi.width), static_cast<int32_t>(roi.height)},
                         static_cast<int32_t>(number), sizes);
                return Answer{status, {sizes[0], sizes[1]}};
            }};
}
template <class Call>
Query wide(const char* name, bool growing, Call call) {
    return {name, true, growing, [=](RoiSizeL roi, int64_t number) {
                Answer answer{okpStatusOk, {kUntouched, kUntouched}};
                answer.status = call(roi, number, answer.sizes);
                return answer;
            }};
}

// The arguments are written in terms of a region `r`, a number `n` and the sizes `s`.
#define NARROW(NAME, ...) \
    narrow(#NAME, true, [](RoiSize r, int32_t n, int32_t* s) { return (void)r, (void)n, NAME(__VA_ARGS__); })
#define WIDE(NAME, ...) \
    wide(#NAME, true, [](RoiSizeL r, int64_t n, int64_t* s) { return (void)r, (void)n, NAME(__VA_ARGS__); })
#define ROW_PIPELINE(TYPES) NARROW(okpiFilterRowBorderPipelineGetBufferSize_##TYPES, r, n, s)
#define COLUMN_PIPELINE(TYPES) NARROW(okpiFilterColumnPipelineGetBufferSize_##TYPES, r, n, s)
#define MORPHOLOGY(TYPES) NARROW(okpiMorphologyBorderGetSize_##TYPES, r, {n, n}, s, s + 1)
#define LAYER(TYPES)                                                     \
    NARROW(okpiPyramidLayerDownGetSize_##TYPES, r, 2, n, s, s + 1),      \
        NARROW(okpiPyramidLayerDownGetSize_##TYPES, r, 10, 5, s, s + 1), \
        NARROW(okpiPyramidLayerUpGetSize_##TYPES, r, 1.01F, n, s, s + 1)

std::vector<Query> growingQueries() {
    return {
        NARROW(okpiFilterSeparableGetSpecSize, {n, n}, DataType16s, 4, s),
        NARROW(okpiFilterSeparableGetSpecSize, {1, n}, DataType32f, 1, s),
        WIDE(okpiFilterSeparableGetSpecSize_L, RoiSize{INT32_MAX, static_cast<int32_t>(n)}, DataType32f, 3,
             s),
        NARROW(okpiFilterSeparableGetBufferSize, r, {n, n}, DataType8u, DataType16s, 4, s),
        NARROW(okpiFilterSeparableGetBufferSize, r, {3, n}, DataType32f, DataType32f, 1, s),
        WIDE(okpiFilterSeparableGetBufferSize_L, r, RoiSize{static_cast<int32_t>(n), INT32_MAX}, DataType32f,
             DataType32f, 4, s),
        NARROW(okpiFilterGaussianGetSpecSize, n, DataType16s, 3, s, s + 1),
        WIDE(okpiFilterGaussianGetSpecSize_L, static_cast<int32_t>(n), DataType32f, 3, s, s + 1),
        ROW_PIPELINE(8u16s_C1R),
        ROW_PIPELINE(8u16s_C3R),
        ROW_PIPELINE(16s_C1R),
        ROW_PIPELINE(16s_C3R),
        ROW_PIPELINE(Low_16s_C1R),
        ROW_PIPELINE(Low_16s_C3R),
        ROW_PIPELINE(16u_C1R),
        ROW_PIPELINE(16u_C3R),
        ROW_PIPELINE(32f_C1R),
        ROW_PIPELINE(32f_C3R),
        COLUMN_PIPELINE(16s8u_C1R),
        COLUMN_PIPELINE(16s8u_C3R),
        COLUMN_PIPELINE(16s8s_C1R),
        COLUMN_PIPELINE(16s8s_C3R),
        COLUMN_PIPELINE(16s_C1R),
        COLUMN_PIPELINE(16s_C3R),
        COLUMN_PIPELINE(Low_16s_C1R),
        COLUMN_PIPELINE(Low_16s_C3R),
        COLUMN_PIPELINE(16u_C1R),
        COLUMN_PIPELINE(16u_C3R),
        COLUMN_PIPELINE(32f_C1R),
        COLUMN_PIPELINE(32f_C3R),
        NARROW(okpiFilterLaplacianGetBufferSize_8u16s_C1R, r, n, s),
        NARROW(okpiFilterLaplacianGetBufferSize_32f_C1R, r, n, s),
        NARROW(okpiFilterLowpassGetBufferSize_8u_C1R, r, n, s),
        NARROW(okpiFilterLowpassGetBufferSize_32f_C1R, r, n, s),
        NARROW(okpiFilterSobelCrossGetBufferSize_8u16s_C1R, r, n, s),
        NARROW(okpiFilterSobelCrossGetBufferSize_32f_C1R, r, n, s),
        WIDE(okpiDilateGetSpecSize_L, r, RoiSizeL{n, n}, s),
        WIDE(okpiErodeGetSpecSize_L, r, RoiSizeL{n, 1}, s),
        NARROW(okpiCannyGetSize, r, s),
        WIDE(okpiCannyGetSize_L, r, s),
        NARROW(okpiFindPeaks3x3GetBufferSize_32f_C1R, n, s),
        NARROW(okpiFindPeaks3x3GetBufferSize_32s_C1R, n, s),
        NARROW(okpiFloodFillGetSize_Grad, r, s),
        NARROW(okpiMarkSpecklesGetBufferSize, r, DataType8u, 1, s),
        NARROW(okpiMarkSpecklesGetBufferSize, r, DataType16s, 1, s),
        NARROW(okpiTrueDistanceTransformGetBufferSize_8u32f_C1R, r, s),
        LAYER(8u_C1R),
        LAYER(8u_C3R),
        LAYER(16u_C1R),
        LAYER(16u_C3R),
        LAYER(32f_C1R),
        LAYER(32f_C3R),
        WIDE(okpiPyramidLayerDownGetSize_32f_C1R_L, r, 2, static_cast<int32_t>(n), s, s + 1),
        WIDE(okpiPyramidLayerUpGetSize_32f_C1R_L, r, 1.01F, static_cast<int32_t>(n), s, s + 1),
    };
}

// Those that may need less for more: a small region that needs a copy, a region wide enough for strips, a
// number modulo 2^32, levels that end where they become too small, and queries that raise what they are
// given.
std::vector<Query> otherQueries() {
    std::vector<Query> queries = {
        MORPHOLOGY(8u_C1R),
        MORPHOLOGY(8u_C3R),
        MORPHOLOGY(8u_C4R),
        MORPHOLOGY(16u_C1R),
        MORPHOLOGY(16s_C1R),
        MORPHOLOGY(32f_C1R),
        MORPHOLOGY(32f_C3R),
        MORPHOLOGY(32f_C4R),
        MORPHOLOGY(1u_C1R),
        NARROW(okpiCannyBorderGetSize, r, 2, n, DataType8u, s),
        NARROW(okpiFloodFillGetSize, r, s),
        NARROW(okpiLabelMarkersGetBufferSize_8u_C1R, r, s),
        NARROW(okpiLabelMarkersGetBufferSize_16u_C1R, r, s),
        NARROW(okpiLabelMarkersGetBufferSize_8u32s_C1R, r, s),
        NARROW(okpiPyramidGetSize, s, s + 1, n, r, 1.0001F),
        NARROW(okpiPyramidGetSize, s, s + 1, n, r, 2),
        WIDE(okpiPyramidGetSize_L, s, s + 1, static_cast<int32_t>(n), r, 1.5F),
        NARROW(okpiFilterGaussianGetBufferSize, r, n, DataType32f, 3, s, s + 1),
        WIDE(okpiFilterGaussianGetBufferSize_L, r, static_cast<int32_t>(n), DataType16u, 1, s, s + 1),
        WIDE(okpiDilateGetBufferSize_L, r, RoiSizeL{n, n}, DataType8u, 4, s),
        WIDE(okpiErodeGetBufferSize_L, r, RoiSizeL{1, n}, DataType32f, 3, s),
    };
    for (Query& query : queries) query.growing = false;
    return queries;
}

const std::vector<int64_t> kNumbers = {
    INT32_MIN,     -1,       0, 1, 2, 3, 4, 5, 33, 55, 255, 1001, 32767, 46341, 65535, 1 << 24,
    INT32_MAX - 1, INT32_MAX};

std::vector<int64_t> lengths(bool is64Bit) {
    std::vector<int64_t> values = {INT32_MIN,      -1,       0,     1,     2,     3,     17,      255,
                                   32767,          46340,    46341, 65532, 65533, 65536, 1 << 24, 715827883,
                                   INT32_MAX - 64, INT32_MAX};
    if (is64Bit) {
        for (const int64_t v :
             {int64_t{1} << 31, int64_t{1} << 32, int64_t{1} << 40, INT64_MAX / 8, INT64_MAX - 1, INT64_MAX})
            values.push_back(v);
    }
    return values;
}

void expectSound(const Query& query) {
    SCOPED_TRACE(query.name);
    const std::vector<int64_t> sides = lengths(query.is64Bit);
    const size_t w = sides.size(), n = kNumbers.size();
    std::vector<Answer> answers;  // by height, width, number
    for (const int64_t height : sides) {
        for (const int64_t width : sides) {
            for (const int64_t number : kNumbers) {
                const Answer answer = answers.emplace_back(query.ask({width, height}, number));
                for (const int64_t size : answer.sizes) {
                    if (size == kUntouched) continue;
                    ASSERT_EQ(answer.status, okpStatusOk) << width << 'x' << height << ' ' << number;
                    if (query.growing) {
                        ASSERT_GE(size, 0) << width << 'x' << height << ' ' << number;
                    }
                }
            }
        }
    }
    if (!query.growing) return;
    for (size_t i = 0; i < answers.size(); ++i) {
        // The same with the next larger number, width and height.
        for (const size_t larger : {(i + 1) % n == 0 ? i : i + 1, (i / n + 1) % w == 0 ? i : i + n,
                                    i + n * w < answers.size() ? i + n * w : i}) {
            const Answer &less = answers[i], &more = answers[larger];
            const auto where = [&] {
                return testing::Message() << sides[larger / n % w] << 'x' << sides[larger / n / w] << ' '
                                          << kNumbers[larger % n];
            };
            if (less.status == okpStatusSizeTooLarge) {
                ASSERT_NE(more.status, okpStatusOk) << where();
            }
            if (less.status != okpStatusOk || more.status != okpStatusOk) continue;
            for (int k = 0; k < 2; ++k) ASSERT_GE(more.sizes[k], less.sizes[k]) << where();
        }
    }
}

TEST(SizeQueries, NeitherWrapNorShrink) {
    for (const Query& query : growingQueries()) expectSound(query);
}

TEST(SizeQueries, RefuseWithoutWriting) {
    for (const Query& query : otherQueries()) expectSound(query);
}

}  // namespace
}  // namespace okpcv::test
