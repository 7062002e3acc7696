// Row and column pipelines against their definitions, bit for bit, alone and as a filter in two halves.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "filter/separable_reference.h"
#include "okpcv.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// ---- Rows -----------------------------------------------------------------------------------------------

template <class Source, class Dest, int Channels, auto Filter, auto BufferSize>
struct RowFamily {
    using S = Source;
    using D = Dest;
    using K = std::conditional_t<std::is_same_v<Source, float>, float, int16_t>;
    static constexpr int channels = Channels;
    static constexpr auto bufferSize = BufferSize;

    static okpStatus filter(const S* src, int step, D* const* rows, RoiSize size, const K* kernel, int length,
                            int anchor, BorderKind border, const S* value, int divisor, void* buffer) {
        const auto call = [&](auto borderValue) {
            if constexpr (std::is_same_v<K, float>) {
                return Filter(src, step, rows, size, kernel, length, anchor, border, borderValue, buffer);
            } else {
                return Filter(src, step, rows, size, kernel, length, anchor, border, borderValue, divisor,
                              buffer);
            }
        };
        if constexpr (Channels == 1) {
            return call(*value);
        } else {
            return call(value);
        }
    }
};

template <class K>
std::vector<K> randomKernel(Random& random, int length, int largest) {
    std::vector<K> kernel;
    for (int i = 0; i < length; ++i) {
        kernel.push_back(std::is_same_v<K, float> ? static_cast<K>(random.real(-0.5F, 0.6F))
                                                  : static_cast<K>(random.integer(-largest, largest)));
    }
    return kernel;
}

// The Low forms sum in integers, all others in single precision, product by product.
template <class F>
constexpr bool kLow = F::bufferSize == okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R ||
                      F::bufferSize == okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R ||
                      F::bufferSize == okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R ||
                      F::bufferSize == okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R;
template <class F>
using Sum = std::conditional_t<kLow<F>, int32_t, float>;

// Coefficients whose sums single precision holds exactly, or not.
int largestCoefficient(Random& random) {
    return random.chance(0.5) ? 15 : 1500;
}

template <class D, class K>
D divided(float sum, int divisor) {
    return converted<D>(std::is_same_v<K, float> ? sum : sum * (1.0F / static_cast<float>(divisor)));
}

template <class F, class S, class K, class D = typename F::D>
std::vector<D> rowReference(const GuardedImage<S>& src, const std::vector<K>& kernel, int anchor,
                            BorderKind kind, const std::vector<S>& value, int divisor) {
    const Border border(kind);
    std::vector<D> result;
    for (int y = 0; y < src.height(); ++y) {
        for (int x = 0; x < src.width(); ++x) {
            for (int c = 0; c < src.channels(); ++c) {
                Sum<F> sum = 0;
                for (int i = 0; i < static_cast<int>(kernel.size()); ++i) {
                    const int64_t at = border.column(x - anchor + i, src.width());
                    const S pixel = at == Border::kValue ? value[c] : src.at(static_cast<int>(at), y, c);
                    sum = sum + static_cast<Sum<F>>(kernel[i] * pixel);
                }
                result.push_back(divided<D, K>(static_cast<float>(sum), divisor));
            }
        }
    }
    return result;
}

template <class T>
std::vector<T*> rowsOf(const GuardedImage<T>& image) {
    std::vector<T*> rows;
    for (int y = 0; y < image.height(); ++y) rows.push_back(image.row(y));
    return rows;
}

template <class F>
GuardedMemory bufferFor(int width, int length) {
    int bytes = 0;
    EXPECT_EQ(F::bufferSize({width, 1}, length, &bytes), okpStatusOk);
    return GuardedMemory(static_cast<size_t>(bytes), GuardedMemory::At::End);
}

template <class F>
class RowPipeline : public testing::Test {};
using RowFamilies = testing::Types<RowFamily<int16_t, int16_t, 1, okpiFilterRowBorderPipeline_16s_C1R,
                                             okpiFilterRowBorderPipelineGetBufferSize_16s_C1R>,
                                   RowFamily<int16_t, int16_t, 3, okpiFilterRowBorderPipeline_16s_C3R,
                                             okpiFilterRowBorderPipelineGetBufferSize_16s_C3R>,
                                   RowFamily<uint16_t, uint16_t, 1, okpiFilterRowBorderPipeline_16u_C1R,
                                             okpiFilterRowBorderPipelineGetBufferSize_16u_C1R>,
                                   RowFamily<uint16_t, uint16_t, 3, okpiFilterRowBorderPipeline_16u_C3R,
                                             okpiFilterRowBorderPipelineGetBufferSize_16u_C3R>,
                                   RowFamily<float, float, 1, okpiFilterRowBorderPipeline_32f_C1R,
                                             okpiFilterRowBorderPipelineGetBufferSize_32f_C1R>,
                                   RowFamily<float, float, 3, okpiFilterRowBorderPipeline_32f_C3R,
                                             okpiFilterRowBorderPipelineGetBufferSize_32f_C3R>,
                                   RowFamily<uint8_t, int16_t, 1, okpiFilterRowBorderPipeline_8u16s_C1R,
                                             okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R>,
                                   RowFamily<uint8_t, int16_t, 3, okpiFilterRowBorderPipeline_8u16s_C3R,
                                             okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R>,
                                   RowFamily<int16_t, int16_t, 1, okpiFilterRowBorderPipeline_Low_16s_C1R,
                                             okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R>,
                                   RowFamily<int16_t, int16_t, 3, okpiFilterRowBorderPipeline_Low_16s_C3R,
                                             okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R>>;
TYPED_TEST_SUITE(RowPipeline, RowFamilies);

TYPED_TEST(RowPipeline, EqualsItsDefinition) {
    using F = TypeParam;
    using S = typename F::S;
    using D = typename F::D;
    using K = typename F::K;
    Random random(1);
    for (const BorderKind border : {1U, 3U, 6U, 65U, 129U, 67U, 134U, 240U, 241U, 19U}) {
        for (const int length : {1, 2, 3, 4, 5, 7, 9, 10, 15, 33}) {
            const auto kernel = randomKernel<K>(random, length, largestCoefficient(random));
            const int anchor = random.integer(0, length - 1);
            const int divisor = random.integer(1, 20);
            const int width = random.integer(1, length % 2 != 0 ? 90 : 12);
            typename GuardedImage<S>::Layout around{.channels = F::channels, .padding = 4};
            if ((border & BorderInMemLeft) != 0) around.left = anchor;
            if ((border & BorderInMemRight) != 0) around.right = length - 1 - anchor;
            GuardedImage<S> src(width, 3, around);
            src.fill([&](int, int, int) { return random.value<S>(); });
            const std::vector<S> value{random.value<S>(), random.value<S>(), random.value<S>()};
            GuardedImage<D> dst(width, 3, {.channels = F::channels, .padding = 4});
            const GuardedMemory buffer = bufferFor<F>(width, length);
            ASSERT_EQ(F::filter(src.data(), src.step(), rowsOf(dst).data(), src.roi(), kernel.data(), length,
                                anchor, border, value.data(), divisor, buffer.data()),
                      okpStatusOk);
            EXPECT_TRUE(sameBits(dst.pixels(), rowReference<F>(src, kernel, anchor, border, value, divisor)))
                << "length " << length << ", anchor " << anchor << ", border " << border << ", width "
                << width;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

TYPED_TEST(RowPipeline, ChecksItsArgumentsInOrder) {
    using F = TypeParam;
    using S = typename F::S;
    using D = typename F::D;
    using K = typename F::K;
    struct Arguments {
        const S* src;
        int step;
        D* const* rows;
        RoiSize size;
        const K* kernel;
        int length, anchor;
        BorderKind border;
        const S* value;
        int divisor;
        void* buffer;
    };
    GuardedImage<S> src(9, 4, {.channels = F::channels, .padding = 8});
    src.fill([](int, int, int) { return 1; });
    GuardedImage<D> dst(9, 4, {.channels = F::channels});
    dst.fill([](int, int, int) { return 77; });
    const auto before = dst.pixels();
    const auto rows = rowsOf(dst);
    auto missing = rows;
    missing[3] = nullptr;
    const std::vector<K> kernel{1, 2, 1};
    const std::vector<S> value(3);
    const GuardedMemory buffer = bufferFor<F>(9, 3);
    std::vector<Fault<Arguments>> faults{
        {"null source", okpStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
        {"null rows", okpStatusNullPointer, [](Arguments& a) { a.rows = nullptr; }},
        {"null kernel", okpStatusNullPointer, [](Arguments& a) { a.kernel = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](Arguments& a) { a.buffer = nullptr; }},
        {"no width", okpStatusBadSize, [](Arguments& a) { a.size.width = 0; }},
        {"no height", okpStatusBadSize, [](Arguments& a) { a.size.height = 0; }},
        {"a null row", okpStatusNullPointer, [&](Arguments& a) { a.rows = missing.data(); }},
        {"no kernel", okpStatusBadSize, [](Arguments& a) { a.length = 0; }},
        {"anchor behind the kernel", okpStatusBadAnchor, [](Arguments& a) { a.anchor = 3; }},
        {"negative anchor", okpStatusBadAnchor, [](Arguments& a) { a.anchor = -1; }},
        {"short step", okpStatusBadStep, [](Arguments& a) { a.step = 9 * F::channels * sizeof(S) - 1; }},
    };
    if (sizeof(S) > 1) {
        faults.push_back({"odd step", okpStatusStepNotMultiple, [](Arguments& a) { a.step += 1; }});
    }
    if (std::is_same_v<K, int16_t>) {
        faults.push_back({"no divisor", okpStatusBadArgument, [](Arguments& a) { a.divisor = 0; }});
        faults.push_back({"negative divisor", okpStatusBadArgument, [](Arguments& a) { a.divisor = -1; }});
    }
    faults.push_back({"border 0", okpStatusBadBorder, [](Arguments& a) { a.border = 0; }});
    faults.push_back({"border 262", okpStatusBadBorder, [](Arguments& a) { a.border = 262; }});
    if (F::channels > 1) {
        faults.push_back({"no border value", okpStatusNullPointer, [](Arguments& a) {
                              if (a.border == BorderReplicate) a.border = BorderConstant;
                              a.value = nullptr;
                          }});
    }
    const Arguments valid{src.data(), src.step(),      rows.data(),  src.roi(), kernel.data(), 3,
                          1,          BorderReplicate, value.data(), 4,         buffer.data()};
    expectStatusOrder<Arguments>(
        valid,
        [](const Arguments& a) {
            return F::filter(a.src, a.step, a.rows, a.size, a.kernel, a.length, a.anchor, a.border, a.value,
                             a.divisor, a.buffer);
        },
        faults);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
}

// ---- Columns --------------------------------------------------------------------------------------------

template <class Source, class Dest, int Channels, auto Filter, auto BufferSize>
struct ColumnFamily {
    using S = Source;
    using D = Dest;
    using K = std::conditional_t<std::is_same_v<Source, float>, float, int16_t>;
    static constexpr int channels = Channels;
    static constexpr auto bufferSize = BufferSize;

    static okpStatus filter(const S* const* rows, D* dst, int step, RoiSize size, const K* kernel, int length,
                            int divisor, void* buffer) {
        if constexpr (std::is_same_v<K, float>) {
            return Filter(rows, dst, step, size, kernel, length, buffer);
        } else {
            return Filter(rows, dst, step, size, kernel, length, divisor, buffer);
        }
    }
};

template <class F>
class ColumnPipeline : public testing::Test {};
using ColumnFamilies = testing::Types<ColumnFamily<int16_t, int8_t, 1, okpiFilterColumnPipeline_16s8s_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s8s_C1R>,
                                      ColumnFamily<int16_t, int8_t, 3, okpiFilterColumnPipeline_16s8s_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s8s_C3R>,
                                      ColumnFamily<int16_t, uint8_t, 1, okpiFilterColumnPipeline_16s8u_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s8u_C1R>,
                                      ColumnFamily<int16_t, uint8_t, 3, okpiFilterColumnPipeline_16s8u_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s8u_C3R>,
                                      ColumnFamily<int16_t, int16_t, 1, okpiFilterColumnPipeline_16s_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s_C1R>,
                                      ColumnFamily<int16_t, int16_t, 3, okpiFilterColumnPipeline_16s_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_16s_C3R>,
                                      ColumnFamily<uint16_t, uint16_t, 1, okpiFilterColumnPipeline_16u_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_16u_C1R>,
                                      ColumnFamily<uint16_t, uint16_t, 3, okpiFilterColumnPipeline_16u_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_16u_C3R>,
                                      ColumnFamily<float, float, 1, okpiFilterColumnPipeline_32f_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_32f_C1R>,
                                      ColumnFamily<float, float, 3, okpiFilterColumnPipeline_32f_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_32f_C3R>,
                                      ColumnFamily<int16_t, int16_t, 1, okpiFilterColumnPipeline_Low_16s_C1R,
                                                   okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R>,
                                      ColumnFamily<int16_t, int16_t, 3, okpiFilterColumnPipeline_Low_16s_C3R,
                                                   okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R>>;
TYPED_TEST_SUITE(ColumnPipeline, ColumnFamilies);

TYPED_TEST(ColumnPipeline, EqualsItsDefinition) {
    using F = TypeParam;
    using S = typename F::S;
    using D = typename F::D;
    using K = typename F::K;
    Random random(2);
    for (const int length : {1, 2, 3, 4, 5, 7, 9, 10, 15, 33}) {
        for (int turn = 0; turn < 4; ++turn) {
            const auto kernel = randomKernel<K>(random, length, largestCoefficient(random));
            const int divisor = random.integer(1, 400);
            const int width = random.integer(1, 90);
            const int height = random.integer(1, 20);
            GuardedImage<S> src(width, height + length - 1, {.channels = F::channels, .padding = 4});
            src.fill([&](int, int, int) { return random.value<S>(); });
            GuardedImage<D> dst(width, height, {.channels = F::channels, .padding = 4});
            const GuardedMemory buffer = bufferFor<F>(width, length);
            ASSERT_EQ(F::filter(rowsOf(src).data(), dst.data(), dst.step(), dst.roi(), kernel.data(), length,
                                divisor, buffer.data()),
                      okpStatusOk);
            std::vector<D> expected;
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width * F::channels; ++x) {
                    Sum<F> sum = 0;
                    for (int j = 0; j < length; ++j) {
                        sum = sum + static_cast<Sum<F>>(kernel[j] * src.at(0, y + j, x));
                    }
                    expected.push_back(divided<D, K>(static_cast<float>(sum), divisor));
                }
            }
            EXPECT_TRUE(sameBits(dst.pixels(), expected)) << "length " << length << ", width " << width;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

TYPED_TEST(ColumnPipeline, ChecksItsArgumentsInOrder) {
    using F = TypeParam;
    using S = typename F::S;
    using D = typename F::D;
    using K = typename F::K;
    struct Arguments {
        const S* const* rows;
        D* dst;
        int step;
        RoiSize size;
        const K* kernel;
        int length, divisor;
        void* buffer;
    };
    GuardedImage<S> src(9, 6, {.channels = F::channels});
    src.fill([](int, int, int) { return 1; });
    GuardedImage<D> dst(9, 4, {.channels = F::channels, .padding = 8});
    dst.fill([](int, int, int) { return 77; });
    const auto before = dst.pixels();
    const auto sources = rowsOf(src);
    const std::vector<const S*> rows(sources.begin(), sources.end());
    auto missing = rows;
    missing[5] = nullptr;
    const std::vector<K> kernel{1, 2, 1};
    const GuardedMemory buffer = bufferFor<F>(9, 3);
    std::vector<Fault<Arguments>> faults{
        {"null rows", okpStatusNullPointer, [](Arguments& a) { a.rows = nullptr; }},
        {"null destination", okpStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }},
        {"null kernel", okpStatusNullPointer, [](Arguments& a) { a.kernel = nullptr; }},
        {"no width", okpStatusBadSize, [](Arguments& a) { a.size.width = 0; }},
        {"no height", okpStatusBadSize, [](Arguments& a) { a.size.height = 0; }},
    };
    if (std::is_same_v<K, int16_t>) {
        faults.push_back({"no divisor", okpStatusBadArgument, [](Arguments& a) { a.divisor = 0; }});
        faults.push_back({"negative divisor", okpStatusBadArgument, [](Arguments& a) { a.divisor = -1; }});
    }
    // A kernel of length 0 sees three rows fewer, so the missing one must be among the others.
    missing[0] = nullptr;
    faults.push_back({"a null row", okpStatusNullPointer, [&](Arguments& a) { a.rows = missing.data(); }});
    faults.push_back({"no kernel", okpStatusBadSize, [](Arguments& a) { a.length = 0; }});
    faults.push_back(
        {"short step", okpStatusBadStep, [](Arguments& a) { a.step = 9 * F::channels * sizeof(D) - 1; }});
    if (sizeof(D) > 1) {
        faults.push_back({"odd step", okpStatusStepNotMultiple, [](Arguments& a) { a.step += 1; }});
    }
    faults.push_back({"null buffer", okpStatusNullPointer, [](Arguments& a) { a.buffer = nullptr; }});
    const Arguments valid{rows.data(), dst.data(), dst.step(), dst.roi(), kernel.data(), 3, 4, buffer.data()};
    expectStatusOrder<Arguments>(
        valid,
        [](const Arguments& a) {
            return F::filter(a.rows, a.dst, a.step, a.size, a.kernel, a.length, a.divisor, a.buffer);
        },
        faults);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
}

// ---- Together -------------------------------------------------------------------------------------------

// A float picture that arrives in strips, filtered by the two halves with a ring of rows, is the picture
// filtered whole by the separable filter.
TEST(Pipelines, FilterStripsAsTheSeparableFilterDoes) {
    Random random(3);
    const auto kernel = randomKernel<float>(random, 5, 0);
    const int width = 83, height = 61;
    GuardedImage<float> src(width, height);
    src.fill([&](int, int, int) { return random.value<float>(); });

    int specBytes = 0, bufferBytes = 0;
    ASSERT_EQ(okpiFilterSeparableGetSpecSize({5, 5}, DataType32f, 1, &specBytes), okpStatusOk);
    ASSERT_EQ(okpiFilterSeparableGetBufferSize(src.roi(), {5, 5}, DataType32f, DataType32f, 1, &bufferBytes),
              okpStatusOk);
    std::vector<char> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    ASSERT_EQ(okpiFilterSeparableInit_32f(kernel.data(), kernel.data(), {5, 5}, DataType32f, 1, spec.data()),
              okpStatusOk);
    GuardedImage<float> whole(width, height);
    ASSERT_EQ(okpiFilterSeparable_32f_C1R(src.data(), src.step(), whole.data(), whole.step(), src.roi(),
                                          BorderReplicate, 0, spec.data(), buffer.data()),
              okpStatusOk);

    GuardedImage<float> filtered(width, height), strips(width, height);
    const GuardedMemory rowBuffer(5 * 64 + 96, GuardedMemory::At::End);
    const auto rows = rowsOf(filtered);
    int done = 0;
    for (int y = 0; y < height;) {
        const int arrived = std::min(random.integer(1, 9), height - y);
        ASSERT_EQ(
            okpiFilterRowBorderPipeline_32f_C1R(src.row(y), src.step(), rows.data() + y, {width, arrived},
                                                kernel.data(), 5, 2, BorderReplicate, 0, rowBuffer.data()),
            okpStatusOk);
        y += arrived;
        const int ready = y == height ? height : std::max(y - 2, 0);
        if (ready == done) continue;
        std::vector<const float*> seen;
        for (int r = done - 2; r < ready + 2; ++r) seen.push_back(rows[std::clamp(r, 0, height - 1)]);
        ASSERT_EQ(okpiFilterColumnPipeline_32f_C1R(seen.data(), strips.row(done), strips.step(),
                                                   {width, ready - done}, kernel.data(), 5, buffer.data()),
                  okpStatusOk);
        done = ready;
    }
    EXPECT_TRUE(sameBits(strips.pixels(), whole.pixels()));
}

// Beyond 2^24 the standard forms round every addition, and the Low forms only the sum.
TEST(Pipelines, LowFormsSumInIntegers) {
    const int16_t src[] = {32767, 32767, 32767};
    const int16_t kernel[] = {32767, 1, 1};
    const int64_t exact = int64_t{32767} * 32767 + 2 * 32767;
    int16_t dst[1];
    int16_t* const rows[] = {dst};
    char buffer[48 * 3 + 112];
    const auto result = [&](auto filter) {
        EXPECT_EQ(filter(src, 6, rows, RoiSize{1, 1}, kernel, 3, 0, BorderInMemory, 0, 65536, buffer),
                  okpStatusOk);
        return dst[0];
    };
    EXPECT_EQ(result(okpiFilterRowBorderPipeline_Low_16s_C1R),
              truncateSaturated<int16_t>(static_cast<float>(exact) * (1.0F / 65536)));
    const float rounded = (static_cast<float>(32767 * 32767) + 32767.0F) + 32767.0F;
    EXPECT_EQ(result(okpiFilterRowBorderPipeline_16s_C1R),
              truncateSaturated<int16_t>(rounded * (1.0F / 65536)));
}

TEST(Pipelines, BufferSizesFollowTheirFormulas) {
    struct Query {
        okpStatus (*size)(RoiSize, int32_t, int32_t*);
        int bytes;  // for a width of 101 and a kernel of length 7
    };
    const Query queries[] = {
        {okpiFilterRowBorderPipelineGetBufferSize_16s_C1R, 48 * 7 + 112},
        {okpiFilterRowBorderPipelineGetBufferSize_16s_C3R, 40 * 7 + 96},
        {okpiFilterRowBorderPipelineGetBufferSize_16u_C1R, 48 * 7 + 80},
        {okpiFilterRowBorderPipelineGetBufferSize_16u_C3R, 112 * 7 + 80},
        {okpiFilterRowBorderPipelineGetBufferSize_32f_C1R, 64 * 7 + 96},
        {okpiFilterRowBorderPipelineGetBufferSize_32f_C3R, 192 * 7 + 96},
        {okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 36 * 7 + 144},
        {okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, 60 * 7 + 144},
        {okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 24 * 7 + 96},
        {okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, 208 * 7 + 96},
        {okpiFilterColumnPipelineGetBufferSize_16s_C1R, 104 * 12 + 64},
        {okpiFilterColumnPipelineGetBufferSize_16s_C3R, 104 * 36 + 64},
        {okpiFilterColumnPipelineGetBufferSize_16u_C1R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_16u_C3R, 304 * 36 + 32},
        {okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 104 * 12 + 64},
        {okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R, 104 * 36 + 64},
        {okpiFilterColumnPipelineGetBufferSize_16s8s_C1R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_16s8s_C3R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_16s8u_C1R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_16s8u_C3R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_32f_C1R, 16 * 7 + 32},
        {okpiFilterColumnPipelineGetBufferSize_32f_C3R, 16 * 7 + 32},
    };
    for (const Query& query : queries) {
        int bytes = -1;
        EXPECT_EQ(query.size({101, 3}, 7, &bytes), okpStatusOk);
        EXPECT_EQ(bytes, query.bytes);
        bytes = -1;
        EXPECT_EQ(query.size({0, 0}, 0, nullptr), okpStatusNullPointer);
        EXPECT_EQ(query.size({0, 3}, 7, &bytes), okpStatusBadSize);
        EXPECT_EQ(query.size({101, 0}, 7, &bytes), okpStatusBadSize);
        EXPECT_EQ(query.size({101, 3}, 0, &bytes), okpStatusBadSize);
        EXPECT_EQ(query.size({INT32_MAX, 3}, INT32_MAX, &bytes), okpStatusSizeTooLarge);
        EXPECT_EQ(bytes, -1);
    }
}

}  // namespace
}  // namespace okpcv::test
