// Line sampling: exactly the pixels of the rule, of every type and in every direction.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

std::vector<PixelPoint> line(PixelPoint from, PixelPoint to) {
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    const bool alongY = std::abs(dx) <= std::abs(dy);
    const int longer = std::max(std::abs(dx), std::abs(dy));
    const int shorter = std::min(std::abs(dx), std::abs(dy));
    std::vector<PixelPoint> points;
    PixelPoint p = from;
    int error = longer;
    for (int i = 0; i <= longer; ++i) {
        points.push_back(p);
        error -= 2 * shorter;
        const bool crosses = error < 0;
        if (crosses) error += 2 * longer;
        if (alongY || crosses) p.y += dy >= 0 ? 1 : -1;
        if (!alongY || crosses) p.x += dx >= 0 ? 1 : -1;
    }
    return points;
}

template <class T, class Call>
void expectLines(Call call, int channels) {
    constexpr int kWidth = 9;
    constexpr int kHeight = 7;
    GuardedImage<T> src(kWidth, kHeight, {.channels = channels, .padding = 8});
    src.fill([](int x, int y, int c) { return 1 + x + 10 * y + 70 * c; });
    for (int from = 0; from < kWidth * kHeight; ++from) {
        for (int to = 0; to < kWidth * kHeight; ++to) {
            const PixelPoint a{from % kWidth, from / kWidth};
            const PixelPoint b{to % kWidth, to / kWidth};
            std::vector<T> expected;
            for (const PixelPoint p : line(a, b)) {
                for (int c = 0; c < channels; ++c) expected.push_back(src.at(p.x, p.y, c));
            }
            GuardedImage<T> dst(static_cast<int>(expected.size()), 1);
            ASSERT_EQ(call(src.data(), src.step(), src.roi(), dst.data(), a, b), okpStatusOk);
            ASSERT_EQ(dst.pixels(), expected) << a.x << ',' << a.y << " to " << b.x << ',' << b.y;
        }
    }
}

TEST(SampleLine, FollowsTheRuleBetweenAllPoints) {
    expectLines<uint8_t>(okpiSampleLine_8u_C1R, 1);
    expectLines<uint8_t>(okpiSampleLine_8u_C3R, 3);
    expectLines<uint16_t>(okpiSampleLine_16u_C1R, 1);
    expectLines<uint16_t>(okpiSampleLine_16u_C3R, 3);
    expectLines<float>(okpiSampleLine_32f_C1R, 1);
    expectLines<float>(okpiSampleLine_32f_C3R, 3);
}

TEST(SampleLine, StaysAtAnExactHalf) {
    uint8_t src[3][5];
    for (int i = 0; i < 15; ++i) src[i / 5][i % 5] = static_cast<uint8_t>(i);
    uint8_t dst[5];
    ASSERT_EQ(okpiSampleLine_8u_C1R(src[0], 5, {5, 3}, dst, {0, 0}, {4, 2}), okpStatusOk);
    EXPECT_EQ(std::vector<uint8_t>(dst, dst + 5), (std::vector<uint8_t>{0, 1, 7, 8, 14}));
}

template <class T>
struct Arguments {
    const T* src;
    int32_t step;
    RoiSize roi;
    T* dst;
    PixelPoint a, b;
};

template <class T, class Call>
void expectOrder(Call call, int channels) {
    using A = Arguments<T>;
    const int rowBytes = 6 * channels * static_cast<int>(sizeof(T));
    GuardedImage<T> src(6, 4, {.channels = channels, .padding = 8});
    std::vector<T> dst(64, T(77));
    std::vector<Fault<A>> faults{{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
                                 {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                                 {"no height", okpStatusBadSize, [](A& a) { a.roi.height = -2; }},
                                 {"short step", okpStatusBadStep, [=](A& a) { a.step = rowBytes - 1; }}};
    if (sizeof(T) > 1) {
        faults.push_back({"odd step", okpStatusStepNotMultiple, [=](A& a) { a.step = rowBytes + 1; }});
    }
    faults.push_back({"x beyond", okpStatusOutOfRange, [](A& a) { a.a.x = 6; }});
    faults.push_back({"y beyond", okpStatusOutOfRange, [](A& a) { a.b.y = 4; }});
    faults.push_back({"negative x", okpStatusOutOfRange, [](A& a) { a.b.x = -1; }});
    faults.push_back({"least y", okpStatusOutOfRange, [](A& a) { a.a.y = INT32_MIN; }});
    expectStatusOrder<A>(
        {src.data(), src.step(), src.roi(), dst.data(), {0, 0}, {5, 3}},
        [=](const A& a) { return call(a.src, a.step, a.roi, a.dst, a.a, a.b); }, faults);
    EXPECT_EQ(dst, std::vector<T>(64, T(77)));
}

TEST(SampleLine, ChecksInOrder) {
    expectOrder<uint8_t>(okpiSampleLine_8u_C1R, 1);
    expectOrder<uint8_t>(okpiSampleLine_8u_C3R, 3);
    expectOrder<uint16_t>(okpiSampleLine_16u_C1R, 1);
    expectOrder<uint16_t>(okpiSampleLine_16u_C3R, 3);
    expectOrder<float>(okpiSampleLine_32f_C1R, 1);
    expectOrder<float>(okpiSampleLine_32f_C3R, 3);
}

}  // namespace
}  // namespace okpcv::test
