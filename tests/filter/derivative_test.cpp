// Derivative kernels and the reduction of gradients to one channel against their definitions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "okpcv.h"
#include "support/compare.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
std::vector<T> sobel(int size, int order, int sign) {
    std::vector<T> kernel(size, T(99));
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_EQ(okpiGenSobelKernel_32f(kernel.data(), size, order, sign), okpStatusOk);
    } else {
        EXPECT_EQ(okpiGenSobelKernel_16s(kernel.data(), size, order, sign), okpStatusOk);
    }
    return kernel;
}

TEST(GenSobelKernel, GivesBinomialDerivatives) {
    using V = std::vector<int16_t>;
    EXPECT_EQ(sobel<int16_t>(1, 0, 1), V{1});
    EXPECT_EQ(sobel<int16_t>(3, 0, 1), (V{1, 2, 1}));
    EXPECT_EQ(sobel<int16_t>(3, 1, 1), (V{-1, 0, 1}));
    EXPECT_EQ(sobel<int16_t>(3, 1, -1), (V{1, 0, -1}));
    EXPECT_EQ(sobel<int16_t>(3, 2, 0), (V{1, -2, 1}));
    EXPECT_EQ(sobel<int16_t>(5, 1, 1), (V{-1, -2, 0, 2, 1}));
    EXPECT_EQ(sobel<int16_t>(5, 4, 1), (V{1, -4, 6, -4, 1}));
    EXPECT_EQ(sobel<float>(7, 2, 1), (std::vector<float>{1, 2, -1, -4, -1, 2, 1}));
    EXPECT_EQ(sobel<float>(5, 1, -7), (std::vector<float>{1, 2, -0.0F, -2, -1}));

    // Integers keep the low 16 bits of C(20, i).
    V binomial;
    int64_t c = 1;
    for (int i = 0; i <= 20; ++i) {
        binomial.push_back(static_cast<int16_t>(c));
        c = c * (20 - i) / (i + 1);
    }
    EXPECT_EQ(sobel<int16_t>(21, 0, 1), binomial);
}

TEST(GenSobelKernel, FillsKernelsAtAnyAddress) {
    char bytes[1 + 3 * sizeof(float)];
    ASSERT_EQ(okpiGenSobelKernel_32f(reinterpret_cast<float*>(bytes + 1), 3, 2, -1), okpStatusOk);
    const float expected[] = {-1, 2, -1};
    EXPECT_EQ(std::memcmp(bytes + 1, expected, sizeof expected), 0);
}

TEST(GenSobelKernel, ChecksArgumentsInOrder) {
    float f[5] = {};
    int16_t s[5] = {};
    EXPECT_EQ(okpiGenSobelKernel_32f(nullptr, 0, 0, 1), okpStatusNullPointer);
    EXPECT_EQ(okpiGenSobelKernel_16s(nullptr, 4, 0, 1), okpStatusNullPointer);
    const int bad[][2] = {{0, 0}, {-1, 0}, {4, 0}, {3, -1}, {3, 3}, {1, 1}, {INT32_MIN, INT32_MIN}};
    for (const auto& [size, order] : bad) {
        EXPECT_EQ(okpiGenSobelKernel_32f(f, size, order, 1), okpStatusBadSize) << size << " " << order;
        EXPECT_EQ(okpiGenSobelKernel_16s(s, size, order, 1), okpStatusBadSize) << size << " " << order;
    }
    EXPECT_EQ(f[0], 0);
    EXPECT_EQ(s[0], 0);
}

template <class T>
T grayReference(T a, T b, T c, int norm) {
    if (norm == 0) {
        const T m = a > b ? a : b;
        return m > c ? m : c;
    }
    if constexpr (std::is_same_v<T, float>) {
        if (norm == 1) return test::sum(test::sum(a, b), c) / 3.0F;
        return std::sqrt(test::sum(test::sum(a * a, b * b), c * c) * 0.33333334F);
    } else {
        if (norm == 1) return static_cast<T>(((int64_t{a} + b + c) * 1365 + 2048) >> 12);
        const int64_t sum = int64_t{a} * a + int64_t{b} * b + int64_t{c} * c;
        const float root = std::sqrt(static_cast<float>(sum) * 0.33333334F);
        return static_cast<T>(std::min(std::nearbyint(root), float{std::numeric_limits<T>::max()}));
    }
}

template <class T>
constexpr auto grayExport() {
    if constexpr (std::is_same_v<T, uint8_t>) {
        return okpiGradientColorToGray_8u_C3C1R;
    } else if constexpr (std::is_same_v<T, uint16_t>) {
        return okpiGradientColorToGray_16u_C3C1R;
    } else {
        return okpiGradientColorToGray_32f_C3C1R;
    }
}

template <class T>
class GradientColorToGray : public testing::Test {};
using GrayTypes = testing::Types<uint8_t, uint16_t, float>;
TYPED_TEST_SUITE(GradientColorToGray, GrayTypes);

TYPED_TEST(GradientColorToGray, EqualsItsDefinition) {
    using T = TypeParam;
    Random random(1);
    for (int width = 1; width <= 70; ++width) {
        for (const int norm : {0, 1, 2}) {
            const auto at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
            GuardedImage<T> src(width, 3, {.channels = 3, .padding = random.integer(0, 1) * 4, .at = at});
            src.fill([&](int, int, int) { return random.special<T>(); });
            GuardedImage<T> dst(width, 3, {.padding = 8, .at = at});
            ASSERT_EQ(grayExport<T>()(src.data(), src.step(), dst.data(), dst.step(), src.roi(), norm),
                      okpStatusOk);
            std::vector<T> expected;
            for (int y = 0; y < 3; ++y) {
                for (int x = 0; x < width; ++x) {
                    expected.push_back(
                        grayReference<T>(src.at(x, y, 0), src.at(x, y, 1), src.at(x, y, 2), norm));
                }
            }
            EXPECT_TRUE(sameBits(dst.pixels(), expected)) << width << " norm " << norm;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

TYPED_TEST(GradientColorToGray, ChecksArgumentsInOrder) {
    using T = TypeParam;
    struct Arguments {
        const T* src;
        int srcStep;
        T* dst;
        int dstStep;
        RoiSize size;
        int norm = 1;
    };
    GuardedImage<T> src(5, 2, {.channels = 3}), dst(5, 2);
    dst.fill([](int, int, int) { return 77; });
    const auto before = dst.pixels();
    expectStatusOrder<Arguments>(
        {src.data(), src.step(), dst.data(), dst.step(), src.roi()},
        [](const Arguments& a) {
            return grayExport<T>()(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.norm);
        },
        {{"null source", okpStatusNullPointer, [](auto& a) { a.src = nullptr; }},
         {"null destination", okpStatusNullPointer, [](auto& a) { a.dst = nullptr; }},
         {"width 0", okpStatusBadSize, [](auto& a) { a.size.width = 0; }},
         {"height 0", okpStatusBadSize, [](auto& a) { a.size.height = 0; }},
         {"source step", okpStatusBadStep, [](auto& a) { a.srcStep = 15 * int{sizeof(T)} - 1; }},
         {"destination step", okpStatusBadStep, [](auto& a) { a.dstStep = 5 * int{sizeof(T)} - 1; }},
         {"norm 3", okpStatusBadArgument, [](auto& a) { a.norm = 3; }},
         {"norm -1", okpStatusBadArgument, [](auto& a) { a.norm = -1; }}});
    EXPECT_EQ(dst.pixels(), before);
}

}  // namespace
}  // namespace okpcv::test
