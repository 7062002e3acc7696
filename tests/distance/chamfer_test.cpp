// Chamfer distances against the two passes written out pixel by pixel.
#include <gtest/gtest.h>

#include <cmath>

#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
using Weight = std::conditional_t<std::is_same_v<T, float>, float, int32_t>;
template <class T>
using Weights = std::vector<Weight<T>>;  // two for a 3 x 3 mask, three for a 5 x 5

template <class T>
T sumOf(T distance, Weight<T> weight) {
    if constexpr (std::is_same_v<T, float>) {
        return std::min(distance + weight, std::numeric_limits<T>::max());
    } else {
        const int64_t sum = int64_t{distance} + weight;
        return static_cast<T>(std::min<int64_t>(sum, std::numeric_limits<T>::max()));
    }
}

template <class T>
std::vector<T> chamfer(const GuardedImage<uint8_t>& src, const Weights<T>& weights) {
    struct Neighbour {
        int dx, dy;
        size_t weight;
    };
    std::vector<Neighbour> neighbours{{-1, 0, 0}, {-1, -1, 1}, {0, -1, 0}, {1, -1, 1}};
    if (weights.size() == 3) {
        for (const int side : {-1, 1}) {
            neighbours.push_back({2 * side, -1, 2});
            neighbours.push_back({side, -2, 2});
        }
    }
    const int width = src.width();
    const int height = src.height();
    std::vector<T> d(static_cast<size_t>(width) * height);
    const auto at = [&](int x, int y) -> T& { return d[static_cast<size_t>(y) * width + x]; };
    const auto lower = [&](int x, int y, int sign) {
        for (const Neighbour n : neighbours) {
            const int nx = x + sign * n.dx;
            const int ny = y + sign * n.dy;
            if (nx < 0 || nx >= width || ny < 0 || ny >= height) continue;
            at(x, y) = std::min(at(x, y), sumOf<T>(at(nx, ny), weights[n.weight]));
        }
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            at(x, y) = src.at(x, y) == 0 ? T(0) : std::numeric_limits<T>::max();
            if (src.at(x, y) != 0) lower(x, y, 1);
        }
    }
    for (int y = height - 1; y >= 0; --y) {
        for (int x = width - 1; x >= 0; --x) lower(x, y, -1);
    }
    return d;
}

okpStatus transform(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, RoiSize roi,
                    const int32_t* weights, bool large) {
    return (large ? okpiDistanceTransform_5x5_8u_C1R : okpiDistanceTransform_3x3_8u_C1R)(
        src, srcStep, dst, dstStep, roi, weights);
}
okpStatus transform(const uint8_t* src, int32_t srcStep, uint16_t* dst, int32_t dstStep, RoiSize roi,
                    const int32_t* weights, bool large) {
    return (large ? okpiDistanceTransform_5x5_8u16u_C1R : okpiDistanceTransform_3x3_8u16u_C1R)(
        src, srcStep, dst, dstStep, roi, weights);
}
okpStatus transform(const uint8_t* src, int32_t srcStep, float* dst, int32_t dstStep, RoiSize roi,
                    const float* weights, bool large) {
    return (large ? okpiDistanceTransform_5x5_8u32f_C1R : okpiDistanceTransform_3x3_8u32f_C1R)(
        src, srcStep, dst, dstStep, roi, weights);
}
okpStatus transformInPlace(uint8_t* image, int32_t step, RoiSize roi, const int32_t* weights, bool large) {
    return (large ? okpiDistanceTransform_5x5_8u_C1IR : okpiDistanceTransform_3x3_8u_C1IR)(image, step, roi,
                                                                                           weights);
}

template <class T>
struct ChamferTest : testing::Test {
    Random random{91};

    // The weights lie at the end of readable memory: no more than the mask's are read.
    void expectRule(const GuardedImage<uint8_t>& src, int dstPadding, const Weights<T>& weights) {
        GuardedImage<Weight<T>> metrics(static_cast<int>(weights.size()), 1);
        metrics.setPixels(weights);
        GuardedImage<T> dst(src.width(), src.height(), {.padding = dstPadding});
        const bool large = weights.size() == 3;
        ASSERT_EQ(transform(src.data(), src.step(), dst.data(), dst.step(), src.roi(), metrics.data(), large),
                  okpStatusOk);
        const std::vector<T> expected = chamfer<T>(src, weights);
        ASSERT_TRUE(sameBits(dst.pixels(), expected))
            << src.width() << " x " << src.height() << ", weights " << weights[0] << ' ' << weights[1] << ' '
            << weights.back();
        EXPECT_TRUE(dst.paddingIntact());
        if constexpr (std::is_same_v<T, uint8_t>) {
            ASSERT_EQ(transformInPlace(src.data(), src.step(), src.roi(), metrics.data(), large),
                      okpStatusOk);
            ASSERT_TRUE(sameBits(src.pixels(), expected)) << "in place";
            EXPECT_TRUE(src.paddingIntact());
        }
    }

    void fill(GuardedImage<uint8_t>& src, double zeros) {
        src.fill([&](int, int, int) { return random.maskByte(1 - zeros); });
    }

    Weights<T> drawWeights() {
        Weights<T> weights;
        const int kind = random.integer(0, 3);
        const int count = random.integer(2, 3);
        for (int i = 0; i < count; ++i) {
            if constexpr (std::is_same_v<T, float>) {
                const float ordinary[] = {0.955F, 1.3693F, 2.1969F};
                const float special[] = {1e-45F, 1e-30F, 0.1F, 3e7F, 1.9e38F, INFINITY};
                weights.push_back(kind == 0   ? ordinary[i]
                                  : kind == 1 ? special[random.integer(0, 5)]
                                              : random.real(0.3F, 3.0F));
            } else {
                const int32_t special[] = {1, 60, 255, 30000, 65535, 1 << 30, INT32_MAX};
                weights.push_back(kind == 0   ? special[random.integer(0, 6)]
                                  : kind == 1 ? random.integer(1, 400)
                                              : random.integer(1, 9));
            }
        }
        return weights;
    }
};
using ChamferTypes = testing::Types<uint8_t, uint16_t, float>;
TYPED_TEST_SUITE(ChamferTest, ChamferTypes);

TYPED_TEST(ChamferTest, FollowsThePassesAtEverySize) {
    const int padding = 3 * static_cast<int>(sizeof(TypeParam));
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 3, 4, 5, 9}) {
            for (const double zeros : {0.2, 0.02}) {
                GuardedImage<uint8_t> src(width, height, {.padding = width % 3});
                this->fill(src, zeros);
                ASSERT_NO_FATAL_FAILURE(this->expectRule(src, (height % 2) * padding, this->drawWeights()));
            }
        }
    }
}

TYPED_TEST(ChamferTest, FollowsThePassesInLargerImages) {
    for (int round = 0; round < 60; ++round) {
        GuardedImage<uint8_t> src(this->random.integer(100, 300), this->random.integer(20, 60));
        // From scattered zero pixels to a single one and none.
        this->fill(src, round % 3 == 0 ? 0.003 : 0.0);
        if (round % 3 == 1) {
            src.set(this->random.integer(0, src.width() - 1), this->random.integer(0, src.height() - 1), 0);
        }
        ASSERT_NO_FATAL_FAILURE(this->expectRule(src, 0, this->drawWeights()));
    }
}

// Steps that a smaller mask makes as well are left out where that changes nothing: no weights may show it.
TYPED_TEST(ChamferTest, FollowsThePassesForAllSmallWeights) {
    for (int a = 1; a <= 5; ++a) {
        for (int b = 1; b <= 11; ++b) {
            for (int c = 1; c <= 13; ++c) {
                // In narrow images a path has little room; none may go around by the outside.
                for (const RoiSize size : {RoiSize{13, 11}, {1, 7}, {2, 7}, {3, 4}}) {
                    GuardedImage<uint8_t> src(size.width, size.height);
                    src.fill([&](int, int, int) { return 1; });
                    for (int i = 0; i < 1 + c % 3; ++i) {
                        src.set(this->random.integer(0, size.width - 1),
                                this->random.integer(0, size.height - 1), 0);
                    }
                    const auto scale = std::is_same_v<TypeParam, float> ? Weight<TypeParam>(0.7) : 1;
                    ASSERT_NO_FATAL_FAILURE(this->expectRule(src, 0, {a * scale, b * scale, c * scale}));
                }
            }
        }
    }
}

TYPED_TEST(ChamferTest, UnalignedImages) {
    std::vector<char> memory(70 * 11 * sizeof(TypeParam) + 64);
    GuardedImage<uint8_t> src(61, 11);
    this->fill(src, 0.05);
    const Weights<TypeParam> weights{2, 3, 4};
    const std::vector<TypeParam> expected = chamfer<TypeParam>(src, weights);
    for (size_t shift = 0; shift < 17; ++shift) {
        char* const dst = memory.data() + shift;
        const int step = 70 * static_cast<int>(sizeof(TypeParam));
        ASSERT_EQ(transform(src.data(), src.step(), reinterpret_cast<TypeParam*>(dst), step, src.roi(),
                            weights.data(), true),
                  okpStatusOk);
        for (size_t y = 0; y < 11; ++y) {
            EXPECT_EQ(std::memcmp(dst + y * static_cast<size_t>(step), expected.data() + y * 61,
                                  61 * sizeof(TypeParam)),
                      0);
        }
    }
}

TEST(Chamfer, NormsOfASinglePoint) {
    std::vector<uint8_t> src(15 * 15, 1), dst(15 * 15);
    src[7 * 15 + 7] = 0;
    const auto distanceAt = [&](int norm, int mask, int dx, int dy) {
        int32_t weights[3];
        EXPECT_EQ(okpiGetDistanceTransformMask_32s(mask, norm, weights), okpStatusOk);
        EXPECT_EQ(transform(src.data(), 15, dst.data(), 15, {15, 15}, weights, mask == 5), okpStatusOk);
        return +dst[static_cast<size_t>((7 + dy) * 15 + 7 + dx)];
    };
    for (const int mask : {3, 5}) {
        EXPECT_EQ(distanceAt(0, mask, -6, 4), 6);
        EXPECT_EQ(distanceAt(1, mask, 6, -4), 10);
    }
    EXPECT_EQ(distanceAt(2, 3, 6, 4), 16);   // four diagonal, two straight steps, in halves of a pixel
    EXPECT_EQ(distanceAt(2, 5, 6, -4), 36);  // two knight's, two diagonal steps, in fifths
}

template <class T>
struct Arguments {
    const uint8_t* src;
    int32_t srcStep;
    T* dst;
    int32_t dstStep;
    RoiSize roi;
    Weights<T> weights;
    bool hasWeights = true;
};

TYPED_TEST(ChamferTest, ChecksInOrder) {
    using T = TypeParam;
    using A = Arguments<T>;
    for (const bool large : {false, true}) {
        GuardedImage<uint8_t> src(9, 4, {.padding = 3});
        GuardedImage<T> dst(9, 4, {.padding = 8});
        std::vector<Fault<A>> faults{
            {"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
            {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
            {"null weights", okpStatusNullPointer, [](A& a) { a.hasWeights = false; }},
            {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
            {"no height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
            {"short source step", okpStatusBadStep, [](A& a) { a.srcStep = 8; }},
            {"short step", okpStatusBadStep, [](A& a) { a.dstStep = 9 * int{sizeof(T)} - 1; }}};
        if (sizeof(T) > 1) {
            faults.push_back(
                {"odd step", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 9 * int{sizeof(T)} + 1; }});
        }
        for (size_t i = 0; i < (large ? 3U : 2U); ++i) {
            faults.push_back({"no weight", okpStatusBadMetric, [=](A& a) { a.weights[i] = 0; }});
            faults.push_back({"negative weight", okpStatusBadMetric, [=](A& a) { a.weights[i] = -7; }});
            if constexpr (std::is_same_v<T, float>) {
                faults.push_back({"NaN weight", okpStatusBadMetric, [=](A& a) { a.weights[i] = NAN; }});
            }
        }
        const A valid{src.data(), src.step(), dst.data(), dst.step(), src.roi(), {1, 2, 3}};
        expectStatusOrder<A>(
            valid,
            [=](const A& a) {
                return transform(a.src, a.srcStep, a.dst, a.dstStep, a.roi,
                                 a.hasWeights ? a.weights.data() : nullptr, large);
            },
            faults);
        EXPECT_EQ(dst.pixels(), std::vector<T>(9 * 4));
    }
}

TEST(Chamfer, ChecksInOrderInPlace) {
    GuardedImage<uint8_t> image(9, 4, {.padding = 3});
    const int32_t good[] = {1, 2, 3}, bad[] = {1, 2, 0};
    for (const bool large : {false, true}) {
        EXPECT_EQ(transformInPlace(nullptr, 0, {0, 0}, bad, large), okpStatusNullPointer);
        EXPECT_EQ(transformInPlace(image.data(), 0, {0, 0}, nullptr, large), okpStatusNullPointer);
        EXPECT_EQ(transformInPlace(image.data(), 0, {0, 4}, bad, large), okpStatusBadSize);
        EXPECT_EQ(transformInPlace(image.data(), 8, {9, 4}, bad + 1, large), okpStatusBadStep);
        EXPECT_EQ(transformInPlace(image.data(), 12, {9, 4}, large ? bad : bad + 1, large),
                  okpStatusBadMetric);
        EXPECT_EQ(transformInPlace(image.data(), 12, {9, 4}, good, large), okpStatusOk);
    }
}

template <class W>
void expectTable(okpStatus (*query)(int32_t, int32_t, W*), const std::vector<std::vector<W>>& table) {
    for (int i = 0; i < 6; ++i) {
        std::vector<W> weights(4, W(77));
        ASSERT_EQ(query(i < 3 ? 3 : 5, i % 3, weights.data()), okpStatusOk);
        std::vector<W> expected = table[static_cast<size_t>(i)];
        expected.resize(4, W(77));
        EXPECT_EQ(weights, expected);
    }
    W weights[3] = {};
    EXPECT_EQ(query(4, 9, nullptr), okpStatusNullPointer);
    for (const int size : {4, 33, 0, -3}) EXPECT_EQ(query(size, 9, weights), okpStatusBadSize);
    for (const int norm : {3, -1, INT32_MIN}) EXPECT_EQ(query(5, norm, weights), okpStatusBadArgument);
    EXPECT_EQ(weights[0], W(0));
}

TEST(Chamfer, WeightsOfTheNorms) {
    const std::vector<std::vector<float>> floats{{1, 1},    {1, 2},    {0.955F, 1.3693F},
                                                 {1, 1, 2}, {1, 2, 3}, {1, 1.4F, 2.1969F}};
    expectTable<float>(okpiGetDistanceTransformMask_32f, floats);
    expectTable<int32_t>(okpiGetDistanceTransformMask_32s,
                         {{1, 1}, {1, 2}, {2, 3}, {1, 1, 2}, {1, 2, 3}, {5, 7, 11}});

    std::vector<float> weights(3);
    for (const int code : {30, 31, 32, 50, 51, 52}) {
        std::vector<float> expected = floats[static_cast<size_t>(code % 10 + (code < 50 ? 0 : 3))];
        weights.assign(expected.size(), 0);
        EXPECT_EQ(okpiGetDistanceTransformMask(code, weights.data()), okpStatusOk);
        EXPECT_EQ(weights, expected);
    }
    for (const int code : {33, 39, 59, INT32_MAX}) {
        EXPECT_EQ(okpiGetDistanceTransformMask(code, nullptr), okpStatusBadArgument) << code;
    }
    EXPECT_EQ(okpiGetDistanceTransformMask(42, nullptr), okpStatusNullPointer);
    for (const int code : {42, 0, -31, -50, 330, INT32_MIN}) {
        EXPECT_EQ(okpiGetDistanceTransformMask(code, weights.data()), okpStatusBadSize) << code;
    }
}

}  // namespace
}  // namespace okpcv::test
