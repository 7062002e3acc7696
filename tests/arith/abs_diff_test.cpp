// Absolute differences against their scalar definition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
T distance(T a, T b) {
    if constexpr (std::is_same_v<T, float>) {
        const float d = a - b;
        return -d > d ? -d : d;
    } else {
        return static_cast<T>(a > b ? a - b : b - a);
    }
}

// Every width from less than a vector to several, both memory ends, destination apart and in place.
template <class T, class Call>
void expectImageDifference(Call call, int channels) {
    Random random(11);
    for (int width = 1; width <= 40; ++width) {
        const auto at = width % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start;
        const typename GuardedImage<T>::Layout layout{
            .channels = channels, .padding = 4 * (width % 3), .at = at};
        GuardedImage<T> a(width, 3, layout);
        GuardedImage<T> b(width, 3, layout);
        GuardedImage<T> dst(width, 3, layout);
        a.fill([&](int, int, int) { return random.special<T>(); });
        // Two NaN operands leave open whose payload comes through.
        b.fill(
            [&](int x, int y, int c) { return a.at(x, y, c) != a.at(x, y, c) ? T(1) : random.special<T>(); });
        std::vector<T> expected = a.pixels();
        const std::vector<T> second = b.pixels();
        for (size_t i = 0; i < expected.size(); ++i) expected[i] = distance(expected[i], second[i]);

        ASSERT_EQ(call(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), a.roi()), okpStatusOk);
        EXPECT_TRUE(sameBits(dst.pixels(), expected)) << width;
        EXPECT_TRUE(dst.paddingIntact());
        ASSERT_EQ(call(a.data(), a.step(), b.data(), b.step(), b.data(), b.step(), a.roi()), okpStatusOk);
        EXPECT_TRUE(sameBits(b.pixels(), expected)) << width << " in place";
    }
}

TEST(AbsDiff, EqualsItsDefinition) {
    expectImageDifference<uint8_t>(okpiAbsDiff_8u_C1R, 1);
    expectImageDifference<uint8_t>(okpiAbsDiff_8u_C3R, 3);
    expectImageDifference<uint16_t>(okpiAbsDiff_16u_C1R, 1);
    expectImageDifference<float>(okpiAbsDiff_32f_C1R, 1);
}

template <class T, class Call, class Value>
void expectConstantDifference(Call call, Value value, T clamped) {
    Random random(12);
    for (int width = 1; width <= 37; ++width) {
        GuardedImage<T> src(width, 2, {.padding = 8});
        GuardedImage<T> dst(width, 2);
        src.fill([&](int, int, int) { return random.special<T>(); });
        std::vector<T> expected = src.pixels();
        for (T& v : expected) v = distance(v, clamped);
        ASSERT_EQ(call(src.data(), src.step(), dst.data(), dst.step(), src.roi(), value), okpStatusOk);
        EXPECT_TRUE(sameBits(dst.pixels(), expected)) << width << " value " << value;
        ASSERT_EQ(call(src.data(), src.step(), src.data(), src.step(), src.roi(), value), okpStatusOk);
        EXPECT_TRUE(sameBits(src.pixels(), expected)) << width << " in place";
        EXPECT_TRUE(src.paddingIntact());
    }
}

TEST(AbsDiffC, ClampsItsConstant) {
    for (const int32_t value :
         {INT32_MIN, -5, -1, 0, 1, 100, 255, 256, 300, 65535, 65536, 70000, INT32_MAX}) {
        expectConstantDifference<uint8_t>(okpiAbsDiffC_8u_C1R, value,
                                          static_cast<uint8_t>(std::clamp(value, 0, 255)));
        expectConstantDifference<uint16_t>(okpiAbsDiffC_16u_C1R, value,
                                           static_cast<uint16_t>(std::clamp(value, 0, 65535)));
    }
    for (const float value : {0.0F, -0.0F, 3.5F, INFINITY, -INFINITY}) {
        expectConstantDifference<float>(okpiAbsDiffC_32f_C1R, value, value);
    }
}

TEST(AbsDiff, KeepsNanPayloadAndNegativeZero) {
    const float payload = std::bit_cast<float>(0xFFC12345U);
    const std::vector<float> first{+0.0F, -0.0F, payload, 1.0F, INFINITY};
    const std::vector<float> second{+0.0F, +0.0F, 1.0F, payload, -INFINITY};
    std::vector<float> dst(5);
    ASSERT_EQ(okpiAbsDiff_32f_C1R(first.data(), 20, second.data(), 20, dst.data(), 20, {5, 1}), okpStatusOk);
    EXPECT_TRUE(sameBits(dst, {+0.0F, -0.0F, payload, payload, INFINITY}));
}

// One argument set serves both forms: the constant forms leave the second source out.
template <class T>
struct Arguments {
    const T* src1;
    int32_t src1Step;
    const T* src2;
    int32_t src2Step;
    T* dst;
    int32_t dstStep;
    RoiSize roi;
};

template <class T>
std::vector<Fault<Arguments<T>>> stepFaults(int rowBytes, bool second) {
    using A = Arguments<T>;
    std::vector<Fault<A>> faults;
    const auto all = [&](const char* name, okpStatus status, int32_t step) {
        faults.push_back({std::string("source 1 ") + name, status, [=](A& a) { a.src1Step = step; }});
        if (second)
            faults.push_back({std::string("source 2 ") + name, status, [=](A& a) { a.src2Step = step; }});
        faults.push_back({std::string("destination ") + name, status, [=](A& a) { a.dstStep = step; }});
    };
    all("negative step", okpStatusBadStep, -rowBytes);
    all("short step", okpStatusBadStep, rowBytes - 1);
    if (sizeof(T) > 1) all("odd step", okpStatusStepNotMultiple, rowBytes + 1);
    return faults;
}

template <class T, class Call>
void expectOrder(Call call, int channels, bool second) {
    using A = Arguments<T>;
    GuardedImage<T> image(8, 2, {.channels = channels, .padding = 16});
    image.fill([](int, int, int) { return 7; });
    const std::vector<T> before = image.pixels();
    const A valid{image.data(), image.step(), image.data(), image.step(),
                  image.data(), image.step(), image.roi()};
    std::vector<Fault<A>> faults{{"null source 1", okpStatusNullPointer, [](A& a) { a.src1 = nullptr; }},
                                 {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                                 {"negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }}};
    if (second) {
        faults.insert(faults.begin(),
                      {"null source 2", okpStatusNullPointer, [](A& a) { a.src2 = nullptr; }});
    }
    for (auto& fault : stepFaults<T>(8 * channels * static_cast<int>(sizeof(T)), second))
        faults.push_back(fault);
    expectStatusOrder<A>(valid, call, faults);
    expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
        return call(A{valid.src1, step, valid.src2, step, valid.dst, step, roi});
    });
    EXPECT_EQ(image.pixels(), before);
}

TEST(AbsDiff, ChecksInOrder) {
    const auto images = [](auto f) {
        return
            [f](const auto& a) { return f(a.src1, a.src1Step, a.src2, a.src2Step, a.dst, a.dstStep, a.roi); };
    };
    const auto constant = [](auto f) {
        return [f](const auto& a) { return f(a.src1, a.src1Step, a.dst, a.dstStep, a.roi, 0); };
    };
    expectOrder<uint8_t>(images(okpiAbsDiff_8u_C1R), 1, true);
    expectOrder<uint8_t>(images(okpiAbsDiff_8u_C3R), 3, true);
    expectOrder<uint16_t>(images(okpiAbsDiff_16u_C1R), 1, true);
    expectOrder<float>(images(okpiAbsDiff_32f_C1R), 1, true);
    expectOrder<uint8_t>(constant(okpiAbsDiffC_8u_C1R), 1, false);
    expectOrder<uint16_t>(constant(okpiAbsDiffC_16u_C1R), 1, false);
    expectOrder<float>(constant(okpiAbsDiffC_32f_C1R), 1, false);
}

}  // namespace
}  // namespace okpcv::test
