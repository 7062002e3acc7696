// Motion histories against their definition.
#include <gtest/gtest.h>

#include <cmath>

#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class S>
struct Arguments {
    const S* silhouette;
    int32_t silhouetteStep;
    float* history;
    int32_t historyStep;
    RoiSize roi;
    float timestamp;
    float duration;
};

template <class S>
okpStatus update(const Arguments<S>& a) {
    if constexpr (std::is_same_v<S, uint8_t>) {
        return okpiUpdateMotionHistory_8u32f_C1IR(a.silhouette, a.silhouetteStep, a.history, a.historyStep,
                                                  a.roi, a.timestamp, a.duration);
    } else if constexpr (std::is_same_v<S, uint16_t>) {
        return okpiUpdateMotionHistory_16u32f_C1IR(a.silhouette, a.silhouetteStep, a.history, a.historyStep,
                                                   a.roi, a.timestamp, a.duration);
    } else {
        return okpiUpdateMotionHistory_32f_C1IR(a.silhouette, a.silhouetteStep, a.history, a.historyStep,
                                                a.roi, a.timestamp, a.duration);
    }
}

template <class S>
struct MotionHistoryTest : testing::Test {};
using SilhouetteTypes = testing::Types<uint8_t, uint16_t, float>;
TYPED_TEST_SUITE(MotionHistoryTest, SilhouetteTypes);

TYPED_TEST(MotionHistoryTest, EqualsItsDefinition) {
    using S = TypeParam;
    Random random(31);
    const float times[][2] = {{100, 30}, {100, 0}, {0, 0}, {100, NAN}, {NAN, 1}, {INFINITY, 5}, {-5, -0.0F}};
    for (const auto& [timestamp, duration] : times) {
        for (int width = 1; width <= 19; ++width) {
            GuardedImage<S> silhouette(width, 3, {.padding = 4});
            GuardedImage<float> history(width, 3, {.padding = 4 * (width % 2)});
            silhouette.fill([&](int, int, int) {
                return random.chance(0.5) ? S(random.chance(0.5) ? -0.0F : 0.0F) : random.special<S>();
            });
            const float threshold = timestamp - duration;
            history.fill([&](int x, int, int) { return x % 3 == 0 ? threshold : random.special<float>(); });
            std::vector<float> expected = history.pixels();
            const std::vector<S> moving = silhouette.pixels();
            for (size_t i = 0; i < expected.size(); ++i) {
                if (moving[i] != S(0)) {
                    expected[i] = timestamp;
                } else if (expected[i] < threshold) {
                    expected[i] = 0.0F;
                }
            }
            ASSERT_EQ(update<S>({silhouette.data(), silhouette.step(), history.data(), history.step(),
                                 history.roi(), timestamp, duration}),
                      okpStatusOk);
            EXPECT_TRUE(sameBits(history.pixels(), expected)) << timestamp << ' ' << duration << ' ' << width;
            EXPECT_TRUE(history.paddingIntact());
        }
    }
}

TYPED_TEST(MotionHistoryTest, ChecksInOrder) {
    using S = TypeParam;
    using A = Arguments<S>;
    constexpr auto size = static_cast<int32_t>(sizeof(S));
    GuardedImage<S> silhouette(5, 2, {.padding = 8});
    GuardedImage<float> history(5, 2, {.padding = 8});
    history.fill([](int, int, int) { return 1.0F; });
    const A valid{silhouette.data(), silhouette.step(), history.data(), history.step(), history.roi(), 10, 1};
    std::vector<Fault<A>> faults{
        {"null silhouette", okpStatusNullPointer, [](A& a) { a.silhouette = nullptr; }},
        {"null history", okpStatusNullPointer, [](A& a) { a.history = nullptr; }},
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
        {"short silhouette", okpStatusBadStep, [=](A& a) { a.silhouetteStep = 5 * size - 1; }},
        {"short history", okpStatusBadStep, [](A& a) { a.historyStep = 19; }},
        {"odd history", okpStatusStepNotMultiple, [](A& a) { a.historyStep = 22; }},
        {"negative duration", okpStatusOutOfRange, [](A& a) { a.duration = -1e-30F; }}};
    if (size > 1) {
        faults.insert(faults.end() - 1, {"odd silhouette", okpStatusStepNotMultiple,
                                         [=](A& a) { a.silhouetteStep = 5 * size + 1; }});
    }
    expectStatusOrder<A>(valid, update<S>, faults);
    expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
        return update<S>({valid.silhouette, step, valid.history, step, roi, 10, 1});
    });
    for (const float value : history.pixels()) ASSERT_EQ(value, 1.0F);
}

}  // namespace
}  // namespace okpcv::test
