// Accumulators against their scalar definition, streamed past the caches or not.
#include <gtest/gtest.h>

#include <cmath>

#include "core/cache.h"
#include "support/cache_stand_in.h"
#include "support/compare.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

enum class Family { Add, Square, Product, Weighted };

constexpr float kWeight = 0.3F;

// The new accumulator value; `selected` is true without a mask.
float definition(Family family, bool masked, bool selected, float s, float t, float d) {
    const float first = selected ? s : 0.0F;
    switch (family) {
        case Family::Add:
            return sum(d, first);
        case Family::Square:
            return sum(d, product(first, first));
        case Family::Product:
            return sum(d, product(first, t));
        default: {
            const float change = product(difference(s, d), kWeight);
            return sum(masked && !selected ? 0.0F : change, d);
        }
    }
}

// One call of any of the exports, whatever subset of the arguments it takes.
template <class S>
struct Arguments {
    const S* src1;
    int32_t src1Step;
    const S* src2;
    int32_t src2Step;
    const uint8_t* mask;
    int32_t maskStep;
    float* dst;
    int32_t dstStep;
    RoiSize roi;
};

template <class S>
struct Export {
    std::string name;
    Family family;
    bool masked;
    int32_t streamedBytes;  // per pixel; 0 when the cache size is never asked for
    std::function<okpStatus(const Arguments<S>&)> call;
};

#define CALL(...) [](const Arguments<S>& a) { return __VA_ARGS__; }

template <class S>
std::vector<Export<S>> exportsOf();

#define COMMON_EXPORTS(TYPE, PRODUCT_BYTES, WEIGHTED_BYTES, SQUARE_BYTES)                                 \
    {#TYPE " AddSquare", Family::Square, false, 0,                                                        \
     CALL(okpiAddSquare_##TYPE##_C1IR(a.src1, a.src1Step, a.dst, a.dstStep, a.roi))},                     \
        {#TYPE " AddSquare masked", Family::Square, true, SQUARE_BYTES,                                   \
         CALL(okpiAddSquare_##TYPE##_C1IMR(a.src1, a.src1Step, a.mask, a.maskStep, a.dst, a.dstStep,      \
                                           a.roi))},                                                      \
        {#TYPE " AddProduct", Family::Product, false, 0,                                                  \
         CALL(okpiAddProduct_##TYPE##_C1IR(a.src1, a.src1Step, a.src2, a.src2Step, a.dst, a.dstStep,      \
                                           a.roi))},                                                      \
        {#TYPE " AddProduct masked", Family::Product, true, PRODUCT_BYTES,                                \
         CALL(okpiAddProduct_##TYPE##_C1IMR(a.src1, a.src1Step, a.src2, a.src2Step, a.mask, a.maskStep,   \
                                            a.dst, a.dstStep, a.roi))},                                   \
        {#TYPE " AddWeighted", Family::Weighted, false, 0,                                                \
         CALL(okpiAddWeighted_##TYPE##_C1IR(a.src1, a.src1Step, a.dst, a.dstStep, a.roi, kWeight))},      \
        {#TYPE " AddWeighted masked", Family::Weighted, true, WEIGHTED_BYTES,                             \
         CALL(okpiAddWeighted_##TYPE##_C1IMR(a.src1, a.src1Step, a.mask, a.maskStep, a.dst, a.dstStep,    \
                                             a.roi, kWeight))},                                           \
    {                                                                                                     \
#TYPE " Add masked", Family::Add, true, 0,                                                        \
            CALL(okpiAdd_##TYPE##_C1IMR(a.src1, a.src1Step, a.mask, a.maskStep, a.dst, a.dstStep, a.roi)) \
    }

template <>
std::vector<Export<uint8_t>> exportsOf() {
    using S = uint8_t;
    return {{"8u Add", Family::Add, false, 0,
             CALL(okpiAdd_8u32f_C1IR(a.src1, a.src1Step, a.dst, a.dstStep, a.roi))},
            COMMON_EXPORTS(8u32f, 7, 5, 0)};
}
template <>
std::vector<Export<uint16_t>> exportsOf() {
    using S = uint16_t;
    return {{"16u Add", Family::Add, false, 0,
             CALL(okpiAdd_16u32f_C1IR(a.src1, a.src1Step, a.dst, a.dstStep, a.roi))},
            COMMON_EXPORTS(16u32f, 9, 7, 0)};
}
template <>
std::vector<Export<float>> exportsOf() {
    using S = float;
    return {COMMON_EXPORTS(32f, 13, 9, 12)};
}

template <class S>
struct AccumulateTest : testing::Test {
    void SetUp() override { cacheStandIn = {}; }
    void TearDown() override { cacheStandIn = {}; }
};
using SourceTypes = testing::Types<uint8_t, uint16_t, float>;
TYPED_TEST_SUITE(AccumulateTest, SourceTypes);

TYPED_TEST(AccumulateTest, EqualsItsDefinitionWithEitherKindOfStore) {
    using S = TypeParam;
    for (const Export<S>& f : exportsOf<S>()) {
        for (const int32_t cacheBytes : {0, INT32_MAX}) {  // streamed, ordinary
            cacheStandIn.bytes = cacheBytes;
            Random random(21);
            for (int width = 1; width <= 24; ++width) {
                SCOPED_TRACE(testing::Message() << f.name << " width " << width << " cache " << cacheBytes);
                const auto at = width % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start;
                GuardedImage<S> src1(width, 3, {.padding = 4, .at = at});
                GuardedImage<S> src2(width, 3, {.padding = 8, .at = at});
                GuardedImage<uint8_t> mask(width, 3, {.padding = 1, .at = at});
                GuardedImage<float> dst(width, 3, {.padding = 4 * (width % 4), .at = at});
                mask.fill([&](int, int, int) { return random.maskByte(); });
                dst.fill([&](int, int, int) { return random.special<float>(); });
                src1.fill([&](int, int, int) { return random.special<S>(); });
                src2.fill([&](int, int, int) { return random.special<S>(); });
                std::vector<float> expected = dst.pixels();
                size_t i = 0;
                for (int y = 0; y < 3; ++y) {
                    for (int x = 0; x < width; ++x, ++i) {
                        expected[i] = definition(f.family, f.masked, !f.masked || mask.at(x, y) != 0,
                                                 static_cast<float>(src1.at(x, y)),
                                                 static_cast<float>(src2.at(x, y)), expected[i]);
                    }
                }
                ASSERT_EQ(f.call({src1.data(), src1.step(), src2.data(), src2.step(), mask.data(),
                                  mask.step(), dst.data(), dst.step(), dst.roi()}),
                          okpStatusOk);
                EXPECT_TRUE(sameBits(dst.pixels(), expected));
                EXPECT_TRUE(dst.paddingIntact());
            }
        }
    }
}

// The forms that ask do so once per call, whatever the answer; the others never.
TYPED_TEST(AccumulateTest, AsksForTheCacheSizeOnlyWhereItMatters) {
    using S = TypeParam;
    std::vector<S> src(64);
    std::vector<uint8_t> mask(64, 1);
    std::vector<float> dst(64);
    for (const Export<S>& f : exportsOf<S>()) {
        for (const okpStatus status : {okpStatusOk, okpStatusBadArgument}) {
            cacheStandIn = {.status = status};
            const auto step = static_cast<int32_t>(8 * sizeof(S));
            ASSERT_EQ(f.call({src.data(), step, src.data(), step, mask.data(), 8, dst.data(), 32, {8, 8}}),
                      okpStatusOk);
            EXPECT_EQ(cacheStandIn.queries, f.streamedBytes != 0 ? 1 : 0) << f.name;
        }
    }
}

TYPED_TEST(AccumulateTest, ChecksInOrder) {
    using S = TypeParam;
    using A = Arguments<S>;
    constexpr auto size = static_cast<int32_t>(sizeof(S));
    GuardedImage<S> src(6, 2, {.padding = 24});
    GuardedImage<uint8_t> mask(6, 2, {.padding = 24});
    GuardedImage<float> dst(6, 2, {.padding = 24});
    dst.fill([](int, int, int) { return 1.0F; });
    const A valid{src.data(),  src.step(), src.data(), src.step(), mask.data(),
                  mask.step(), dst.data(), dst.step(), dst.roi()};
    for (const Export<S>& f : exportsOf<S>()) {
        SCOPED_TRACE(f.name);
        const bool second = f.family == Family::Product;
        std::vector<Fault<A>> faults;
        const auto add = [&](bool applies, const char* name, okpStatus status,
                             std::function<void(A&)> inject) {
            if (applies) faults.push_back({name, status, std::move(inject)});
        };
        add(true, "null source", okpStatusNullPointer, [](A& a) { a.src1 = nullptr; });
        add(second, "null source 2", okpStatusNullPointer, [](A& a) { a.src2 = nullptr; });
        add(f.masked, "null mask", okpStatusNullPointer, [](A& a) { a.mask = nullptr; });
        add(true, "null accumulator", okpStatusNullPointer, [](A& a) { a.dst = nullptr; });
        add(true, "no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; });
        add(true, "no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; });
        add(true, "short source", okpStatusBadStep, [=](A& a) { a.src1Step = 6 * size - 1; });
        add(second, "short source 2", okpStatusBadStep, [=](A& a) { a.src2Step = 6 * size - 1; });
        add(size > 1, "odd source", okpStatusStepNotMultiple, [=](A& a) { a.src1Step = 6 * size + 1; });
        add(second && size > 1, "odd source 2", okpStatusStepNotMultiple,
            [=](A& a) { a.src2Step = 6 * size + 1; });
        add(f.masked, "short mask", okpStatusBadStep, [](A& a) { a.maskStep = 5; });
        add(true, "short accumulator", okpStatusBadStep, [](A& a) { a.dstStep = 23; });
        add(true, "odd accumulator", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 26; });
        expectStatusOrder<A>(valid, f.call, faults);
        expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
            return f.call({valid.src1, step, valid.src2, step, valid.mask, step, valid.dst, step, roi});
        });
        for (const float value : dst.pixels()) ASSERT_EQ(value, 1.0F);
    }
}

TEST(Accumulate, MaskedTermsOfUnselectedPixels) {
    cacheStandIn = {};
    const std::vector<uint8_t> mask(4, 0);
    const std::vector<float> first{NAN, INFINITY, 1, 1};
    const std::vector<float> second{1, 1, INFINITY, NAN};
    std::vector<float> d{-0.0F, 5, 5, 5};
    ASSERT_EQ(okpiAdd_32f_C1IMR(first.data(), 16, mask.data(), 4, d.data(), 16, {4, 1}), okpStatusOk);
    EXPECT_TRUE(sameBits(d, {+0.0F, 5, 5, 5}));
    // The zeroed first source meets the second one: 0 * Inf and 0 * NaN.
    ASSERT_EQ(
        okpiAddProduct_32f_C1IMR(first.data(), 16, second.data(), 16, mask.data(), 4, d.data(), 16, {4, 1}),
        okpStatusOk);
    EXPECT_EQ(d[0], 0.0F);
    EXPECT_EQ(d[1], 5.0F);
    EXPECT_TRUE(std::isnan(d[2]) && std::isnan(d[3]));
}

TEST(Accumulate, WeightedOrderOfOperations) {
    // (s - d) * 1 + d is not s when d swallows it.
    std::vector<float> d{1e8F};
    const std::vector<float> s{1.0F};
    ASSERT_EQ(okpiAddWeighted_32f_C1IR(s.data(), 4, d.data(), 4, {1, 1}, 1.0F), okpStatusOk);
    EXPECT_EQ(d[0], (1.0F - 1e8F) * 1.0F + 1e8F);
    EXPECT_NE(d[0], 1.0F);
    Random random(5);
    for (int width = 1; width < 20; ++width) {
        GuardedImage<float> a(width, 2, {.padding = 4});
        GuardedImage<float> b(width, 2);
        GuardedImage<float> dst(width, 2, {.padding = 8});
        a.fill([&](int, int, int) { return random.special<float>(); });
        b.fill([&](int, int, int) { return random.special<float>(); });
        std::vector<float> expected = a.pixels();
        for (size_t i = 0; i < expected.size(); ++i) {
            const float second = b.pixels()[i];
            expected[i] = sum(product(difference(expected[i], second), 0.25F), second);
        }
        ASSERT_EQ(okpiAddWeighted_32f_C1R(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(),
                                          a.roi(), 0.25F),
                  okpStatusOk);
        EXPECT_TRUE(sameBits(dst.pixels(), expected));
        EXPECT_TRUE(dst.paddingIntact());
    }
}

struct WeightedArguments {
    const float* src1;
    int32_t src1Step;
    const float* src2;
    int32_t src2Step;
    float* dst;
    int32_t dstStep;
    RoiSize roi;
};

TEST(Accumulate, WeightedImagesChecksAllWidthsBeforeAllMultiples) {
    using A = WeightedArguments;
    GuardedImage<float> image(6, 2, {.padding = 8});
    const A valid{image.data(), image.step(), image.data(), image.step(),
                  image.data(), image.step(), image.roi()};
    expectStatusOrder<A>(valid,
                         [](const A& a) {
                             return okpiAddWeighted_32f_C1R(a.src1, a.src1Step, a.src2, a.src2Step, a.dst,
                                                            a.dstStep, a.roi, 0.5F);
                         },
                         {{"null source", okpStatusNullPointer, [](A& a) { a.src1 = nullptr; }},
                          {"null source 2", okpStatusNullPointer, [](A& a) { a.src2 = nullptr; }},
                          {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
                          {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
                          {"short source", okpStatusBadStep, [](A& a) { a.src1Step = 23; }},
                          {"short source 2", okpStatusBadStep, [](A& a) { a.src2Step = 23; }},
                          {"short destination", okpStatusBadStep, [](A& a) { a.dstStep = 20; }},
                          {"odd source", okpStatusStepNotMultiple, [](A& a) { a.src1Step = 26; }},
                          {"odd source 2", okpStatusStepNotMultiple, [](A& a) { a.src2Step = 25; }},
                          {"odd destination", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 30; }}});
}

TEST(CacheDecision, ComparesWithTheWrappedProduct) {
    cacheStandIn = {.bytes = 5 * 640 * 480};
    EXPECT_TRUE(streamsAccumulator(5, {640, 480}));
    cacheStandIn.bytes += 1;
    EXPECT_FALSE(streamsAccumulator(5, {640, 480}));
    cacheStandIn.bytes = 1;
    EXPECT_FALSE(streamsAccumulator(13, {INT32_MAX, INT32_MAX - 1}));  // wraps to -26
    cacheStandIn = {.status = okpStatusBadArgument, .bytes = INT32_MAX};
    EXPECT_TRUE(streamsAccumulator(5, {1, 1}));

    cacheStandIn = {.bytes = 524288};
    EXPECT_FALSE(streamsFilter(524287));
    EXPECT_EQ(cacheStandIn.queries, 0);
    EXPECT_TRUE(streamsFilter(524288));
    EXPECT_FALSE(streamsOutput(524287, 1));
    EXPECT_TRUE(streamsOutput(524288, 1));
    cacheStandIn = {.status = okpStatusBadArgument, .bytes = INT32_MAX};
    EXPECT_TRUE(streamsFilter(524288));
    EXPECT_FALSE(streamsOutput(524288, 1));
    cacheStandIn = {};
}

}  // namespace
}  // namespace okpcv::test
