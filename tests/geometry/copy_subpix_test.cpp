// Sub-pixel copies against their scalar definition, weights included.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "support/compare.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

float fraction(float d) {
    if (!std::isfinite(d)) return 0.0F;
    const float f = d - std::trunc(d);
    return f < 0 ? (d + 1.0F) - std::trunc(d) : f;
}

// Same pixel, right, lower, lower right.
std::array<int64_t, 4> fixedWeights(float dx, float dy) {
    const auto ax = static_cast<int64_t>(fraction(dx) * 16384.0F + 0.5F);
    const auto ay = static_cast<int64_t>(fraction(dy) * 16384.0F + 0.5F);
    std::array<int64_t, 4> w{((16384 - ay) * (16384 - ax) + 16384) >> 14, ((16384 - ay) * ax + 16384) >> 14,
                             ((16384 - ax) * ay + 16384) >> 14, (ay * ax + 16384) >> 14};
    const int64_t excess = w[0] + w[1] + w[2] + w[3] - 16384;
    const int64_t largest = *std::max_element(w.begin(), w.end());
    for (const size_t i : {0U, 2U, 1U, 3U}) {
        if (w[i] != largest) continue;
        w[i] -= excess;
        break;
    }
    return w;
}

const float kShifts[] = {0.0F,        -0.0F,    0.5F,  1.5F,      -0.25F,       0.25F,       0.7F,
                         0.99999994F, -1e-9F,   1e-9F, 123.4567F, -77.125F,     8388607.5F,  -1e30F,
                         1e38F,       INFINITY, NAN,   -INFINITY, 0.5F / 16384, -16777216.0F};

template <class S, class D, class Call, class Blend>
void expectCopies(Call call, Blend blend) {
    Random random(41);
    for (const float dx : kShifts) {
        for (const float dy : kShifts) {
            const int width = random.integer(1, 40);
            const int height = random.integer(1, 3);
            const auto at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
            GuardedImage<S> src(width, height, {.padding = 4, .at = at, .right = 1, .bottom = 1});
            GuardedImage<D> dst(width, height, {.padding = 4, .at = at});
            src.fill([&](int, int, int) { return random.special<S>(); });
            std::vector<D> expected;
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    expected.push_back(blend(src.at(x, y), src.at(x + 1, y), src.at(x, y + 1),
                                             src.at(x + 1, y + 1), dx, dy));
                }
            }
            ASSERT_EQ(call(src.data(), src.step(), dst.data(), dst.step(), dst.roi(), dx, dy), okpStatusOk);
            ASSERT_TRUE(sameBits(dst.pixels(), expected)) << dx << ' ' << dy << " width " << width;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

int64_t fixedSum(int a, int b, int c, int d, float dx, float dy) {
    const auto w = fixedWeights(dx, dy);
    return w[0] * a + w[1] * b + w[2] * c + w[3] * d;
}

TEST(CopySubpix, FixedWeights) {
    expectCopies<uint8_t, uint8_t>(okpiCopySubpix_8u_C1R, [](int a, int b, int c, int d, float dx, float dy) {
        return static_cast<uint8_t>((fixedSum(a, b, c, d, dx, dy) + 8192) >> 14);
    });
    for (const int32_t scale :
         {INT32_MIN, -1000, -30, -29, -28, -22, -15, -14, -13, -8, -7, 0, 3, 8, 9, 10, 50, INT32_MAX}) {
        SCOPED_TRACE(scale);
        const auto call = [=](auto... arguments) {
            return okpiCopySubpix_8u16u_C1R_Sfs(arguments..., scale);
        };
        expectCopies<uint8_t, uint16_t>(call, [=](int a, int b, int c, int d, float dx, float dy) {
            // Exact in double: the sum times a power of two, halves up.
            const double exact = std::ldexp(static_cast<double>(fixedSum(a, b, c, d, dx, dy)), -14) *
                                 std::exp2(-std::clamp<double>(scale, -60, 60));
            return static_cast<uint16_t>(std::min(std::floor(exact + 0.5), 65535.0));
        });
    }
}

TEST(CopySubpix, FixedWeightsOfAnIntegerShift) {
    const uint8_t src[2][2] = {{255, 0}, {0, 0}};
    const uint8_t neighbours[2][2] = {{0, 255}, {255, 255}};
    uint8_t dst = 0;
    uint16_t exact = 0;
    ASSERT_EQ(okpiCopySubpix_8u_C1R(src[0], 2, &dst, 1, {1, 1}, 0, 0), okpStatusOk);
    EXPECT_EQ(dst, 255);
    ASSERT_EQ(okpiCopySubpix_8u_C1R(neighbours[0], 2, &dst, 1, {1, 1}, 0, 0), okpStatusOk);
    EXPECT_EQ(dst, 0);
    ASSERT_EQ(okpiCopySubpix_8u16u_C1R_Sfs(neighbours[0], 2, &exact, 2, {1, 1}, 0, 0, -14), okpStatusOk);
    EXPECT_EQ(exact, 765);
    EXPECT_EQ(fixedWeights(0.5F, 0.0F), (std::array<int64_t, 4>{8189, 8193, 1, 1}));
}

float floatBlend(float a, float b, float c, float d, float dx, float dy) {
    const float fx = fraction(dx);
    const float fy = fraction(dy);
    const float w00 = (1.0F - fx) * (1.0F - fy);
    const float w01 = fx * (1.0F - fy);
    const float w10 = (1.0F - fx) * fy;
    const float w11 = fx * fy;
    return sum(sum(product(a, w00), product(b, w01)), sum(product(c, w10), product(d, w11)));
}

TEST(CopySubpix, FloatWeights) {
    expectCopies<uint8_t, float>(okpiCopySubpix_8u32f_C1R, floatBlend);
    expectCopies<uint16_t, float>(okpiCopySubpix_16u32f_C1R, floatBlend);
    expectCopies<float, float>(okpiCopySubpix_32f_C1R, floatBlend);
    expectCopies<uint16_t, uint16_t>(
        okpiCopySubpix_16u_C1R, [](float a, float b, float c, float d, float dx, float dy) {
            return static_cast<uint16_t>(std::nearbyint(floatBlend(a, b, c, d, dx, dy)));
        });
}

template <class S, class D>
struct Arguments {
    const S* src;
    int32_t srcStep;
    D* dst;
    int32_t dstStep;
    RoiSize roi;
};

template <class S, class D, class Call>
void expectOrder(Call call) {
    using A = Arguments<S, D>;
    GuardedImage<S> src(5, 2, {.padding = 4, .right = 1, .bottom = 1});
    GuardedImage<D> dst(5, 2, {.padding = 4});
    dst.fill([](int, int, int) { return 77; });
    const int srcRow = 5 * static_cast<int>(sizeof(S));
    const int dstRow = 5 * static_cast<int>(sizeof(D));
    std::vector<Fault<A>> faults{
        {"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
        {"short source", okpStatusBadStep, [=](A& a) { a.srcStep = srcRow - 1; }},
        {"short destination", okpStatusBadStep, [=](A& a) { a.dstStep = dstRow - 1; }}};
    if (sizeof(S) > 1) {
        faults.push_back({"odd source", okpStatusStepNotMultiple, [=](A& a) { a.srcStep = srcRow + 1; }});
    }
    if (sizeof(D) > 1) {
        faults.push_back(
            {"odd destination", okpStatusStepNotMultiple, [=](A& a) { a.dstStep = dstRow + 1; }});
    }
    expectStatusOrder<A>(
        {src.data(), src.step(), dst.data(), dst.step(), dst.roi()},
        [=](const A& a) { return call(a.src, a.srcStep, a.dst, a.dstStep, a.roi, 0.5F, 0.5F); }, faults);
    EXPECT_EQ(dst.pixels(), std::vector<D>(10, D(77)));
    // A step of exactly the row's width is enough, although one more column is read.
    std::vector<S> dense(5 * 2 + 6);
    EXPECT_EQ(call(dense.data(), srcRow, dst.data(), dst.step(), RoiSize{5, 2}, 0.5F, 0.5F), okpStatusOk);
}

TEST(CopySubpix, ChecksInOrder) {
    expectOrder<uint8_t, uint8_t>(okpiCopySubpix_8u_C1R);
    expectOrder<uint8_t, uint16_t>([](auto... a) { return okpiCopySubpix_8u16u_C1R_Sfs(a..., 2); });
    expectOrder<uint16_t, uint16_t>(okpiCopySubpix_16u_C1R);
    expectOrder<uint8_t, float>(okpiCopySubpix_8u32f_C1R);
    expectOrder<uint16_t, float>(okpiCopySubpix_16u32f_C1R);
    expectOrder<float, float>(okpiCopySubpix_32f_C1R);
}

}  // namespace
}  // namespace okpcv::test
