// Float filters where NaNs meet: which one results depends on the neighbourhood alone, not on the region, the
// column or the path through the code.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <tuple>

#include "okpcv.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace okpcv::test {
namespace {

// Half NaNs, which their payloads tell apart.
float nanOrNumber(Random& random) {
    if (random.chance(0.5)) return random.real(-9, 9);
    return std::bit_cast<float>(0x7FC00000U | static_cast<uint32_t>(random.integer(1, 0x3FFFFF)) |
                                (random.chance(0.5) ? 0x80000000U : 0U));
}

constexpr int kWidth = 75, kHeight = 19, kReach = 31;

// `filter(src, srcStep, dst, dstStep, size)` filters a region whose neighbours are in memory. All of an image
// at once gives what regions of it give one by one.
template <class Filter>
void expectTheSameInEveryRegion(Random& random, int srcChannels, int channels, const Filter& filter) {
    GuardedImage<float> src(
        kWidth, kHeight,
        {.channels = srcChannels, .left = kReach, .top = kReach, .right = kReach, .bottom = kReach});
    src.fill([&](int, int, int) { return nanOrNumber(random); });
    GuardedImage<float> whole(kWidth, kHeight, {.channels = channels});
    ASSERT_EQ(filter(src.data(), src.step(), whole.data(), whole.step(), whole.roi()), okpStatusOk);
    for (int i = 0; i < 60; ++i) {
        const RoiSize size{random.integer(1, 20), random.integer(1, 6)};
        const int x = random.integer(0, kWidth - size.width), y = random.integer(0, kHeight - size.height);
        GuardedImage<float> part(size.width, size.height, {.channels = channels});
        ASSERT_EQ(filter(src.row(y) + x * srcChannels, src.step(), part.data(), part.step(), size),
                  okpStatusOk);
        std::vector<float> expected;
        for (int row = y; row < y + size.height; ++row) {
            const float* const from = whole.row(row) + x * channels;
            expected.insert(expected.end(), from, from + size.width * channels);
        }
        ASSERT_TRUE(sameBits(part.pixels(), expected)) << size.width << " x " << size.height << " at " << x
                                                       << ", " << y << ", " << channels << " channels";
    }
}

GuardedMemory memory(int bytes) {
    return GuardedMemory(static_cast<size_t>(bytes), GuardedMemory::At::End);
}

std::vector<float> kernelWithNaNs(Random& random, int length) {
    std::vector<float> kernel(static_cast<size_t>(length));
    const bool numbers = random.chance(0.5);
    for (float& k : kernel) k = numbers || random.chance(0.7) ? random.real(-1, 1) : nanOrNumber(random);
    return kernel;
}

TEST(NaNs, MeetAlikeInSeparableFilters) {
    Random random(1);
    for (const int channels : {1, 3, 4}) {
        for (const int length : {1, 2, 3, 4, 5, 7, 9, 15, 21, 63}) {
            const auto row = kernelWithNaNs(random, length), column = kernelWithNaNs(random, length);
            const RoiSize size{length, length};
            int specBytes = 0, bufferBytes = 0;
            ASSERT_EQ(okpiFilterSeparableGetSpecSize(size, DataType32f, channels, &specBytes), okpStatusOk);
            ASSERT_EQ(okpiFilterSeparableGetBufferSize({kWidth, kHeight}, size, DataType32f, DataType32f,
                                                       channels, &bufferBytes),
                      okpStatusOk);
            const GuardedMemory spec = memory(specBytes), buffer = memory(bufferBytes);
            ASSERT_EQ(okpiFilterSeparableInit_32f(row.data(), column.data(), size, DataType32f, channels,
                                                  spec.data()),
                      okpStatusOk);
            const auto filter = [&](const float* src, int srcStep, float* dst, int dstStep, RoiSize roi) {
                if (channels == 1) {
                    return okpiFilterSeparable_32f_C1R(src, srcStep, dst, dstStep, roi, BorderInMemory, 0,
                                                       spec.data(), buffer.data());
                }
                const auto colour = channels == 3 ? okpiFilterSeparable_32f_C3R : okpiFilterSeparable_32f_C4R;
                return colour(src, srcStep, dst, dstStep, roi, BorderInMemory, nullptr, spec.data(),
                              buffer.data());
            };
            expectTheSameInEveryRegion(random, channels, channels, filter);
        }
    }
}

TEST(NaNs, MeetAlikeInGaussianFilters) {
    Random random(2);
    for (const int channels : {1, 3}) {
        for (const int length : {3, 5, 7, 9, 15, 21, 31}) {
            int specBytes = 0, initBytes = 0;
            ASSERT_EQ(okpiFilterGaussianGetSpecSize(length, DataType32f, channels, &specBytes, &initBytes),
                      okpStatusOk);
            int ofSpec = specBytes, bufferBytes = 0;
            ASSERT_EQ(okpiFilterGaussianGetBufferSize({kWidth, kHeight}, length, DataType32f, channels,
                                                      &ofSpec, &bufferBytes),
                      okpStatusOk);
            const GuardedMemory spec = memory(specBytes), init = memory(initBytes),
                                buffer = memory(bufferBytes);
            ASSERT_EQ(okpiFilterGaussianInit({kWidth, kHeight}, length, 0.3F * static_cast<float>(length),
                                             BorderInMemory, DataType32f, channels, spec.data(), init.data()),
                      okpStatusOk);
            const auto filter = [&](const float* src, int srcStep, float* dst, int dstStep, RoiSize roi) {
                return channels == 1
                           ? okpiFilterGaussian_32f_C1R(src, srcStep, dst, dstStep, roi, BorderInMemory, 0,
                                                        spec.data(), buffer.data())
                           : okpiFilterGaussian_32f_C3R(src, srcStep, dst, dstStep, roi, BorderInMemory,
                                                        nullptr, spec.data(), buffer.data());
            };
            expectTheSameInEveryRegion(random, channels, channels, filter);
        }
    }
}

TEST(NaNs, MeetAlikeInFixedMasks) {
    Random random(3);
    const std::tuple<decltype(&okpiFilterLowpassBorder_32f_C1R),
                     decltype(&okpiFilterLowpassGetBufferSize_32f_C1R)>
        filters[] = {{okpiFilterLowpassBorder_32f_C1R, okpiFilterLowpassGetBufferSize_32f_C1R},
                     {okpiFilterSobelCrossBorder_32f_C1R, okpiFilterSobelCrossGetBufferSize_32f_C1R},
                     {okpiFilterLaplacianBorder_32f_C1R, okpiFilterLaplacianGetBufferSize_32f_C1R}};
    for (const auto& [border, bufferSize] : filters) {
        for (const MaskSizeCode mask : {MaskSize3x3, MaskSize5x5}) {
            int bytes = 0;
            ASSERT_EQ(bufferSize({kWidth, kHeight}, mask, &bytes), okpStatusOk);
            const GuardedMemory buffer = memory(bytes);
            expectTheSameInEveryRegion(
                random, 1, 1,
                [&, run = border](const float* src, int srcStep, float* dst, int dstStep, RoiSize roi) {
                    return run(src, srcStep, dst, dstStep, roi, mask, BorderInMemory, 0, buffer.data());
                });
        }
    }
}

TEST(NaNs, MeetAlikeInPipelines) {
    Random random(4);
    for (const int channels : {1, 3}) {
        for (const int length : {1, 2, 3, 4, 5, 7, 9, 10, 15, 31}) {
            const auto kernel = kernelWithNaNs(random, length);
            int rowBytes = 0, columnBytes = 0;
            ASSERT_EQ(okpiFilterRowBorderPipelineGetBufferSize_32f_C3R({kWidth, kHeight}, length, &rowBytes),
                      okpStatusOk);
            ASSERT_EQ(okpiFilterColumnPipelineGetBufferSize_32f_C3R({kWidth, kHeight}, length, &columnBytes),
                      okpStatusOk);
            const GuardedMemory rowBuffer = memory(rowBytes), columnBuffer = memory(columnBytes);
            const auto at = [](auto* p, int step, int y) {
                return p + static_cast<int64_t>(step) / static_cast<int64_t>(sizeof(float)) * y;
            };
            const auto filterRows = [&](const float* src, int srcStep, float* dst, int dstStep, RoiSize roi) {
                std::vector<float*> rows;
                for (int y = 0; y < roi.height; ++y) rows.push_back(at(dst, dstStep, y));
                return channels == 1
                           ? okpiFilterRowBorderPipeline_32f_C1R(src, srcStep, rows.data(), roi,
                                                                 kernel.data(), length, length / 2,
                                                                 BorderInMemory, 0, rowBuffer.data())
                           : okpiFilterRowBorderPipeline_32f_C3R(src, srcStep, rows.data(), roi,
                                                                 kernel.data(), length, length / 2,
                                                                 BorderInMemory, nullptr, rowBuffer.data());
            };
            expectTheSameInEveryRegion(random, channels, channels, filterRows);
            const auto filterColumns = [&](const float* src, int srcStep, float* dst, int dstStep,
                                           RoiSize roi) {
                std::vector<const float*> rows;
                for (int y = 0; y < roi.height + length - 1; ++y) rows.push_back(at(src, srcStep, y));
                return channels == 1
                           ? okpiFilterColumnPipeline_32f_C1R(rows.data(), dst, dstStep, roi, kernel.data(),
                                                              length, columnBuffer.data())
                           : okpiFilterColumnPipeline_32f_C3R(rows.data(), dst, dstStep, roi, kernel.data(),
                                                              length, columnBuffer.data());
            };
            expectTheSameInEveryRegion(random, channels, channels, filterColumns);
        }
    }
}

TEST(NaNs, MeetAlikeInGradientNorms) {
    Random random(5);
    for (const int norm : {0, 1, 2}) {
        expectTheSameInEveryRegion(
            random, 3, 1, [&](const float* src, int srcStep, float* dst, int dstStep, RoiSize roi) {
                return okpiGradientColorToGray_32f_C3C1R(src, srcStep, dst, dstStep, roi, norm);
            });
    }
}

}  // namespace
}  // namespace okpcv::test
