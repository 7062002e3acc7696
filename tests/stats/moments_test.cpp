// Means and standard deviations against their definitions.
#include <gtest/gtest.h>

#include <cmath>

#include "stats/stats_arguments.h"
#include "support/repeated_memory.h"

namespace okpcv::test {
namespace {

template <class T>
using Call = std::function<okpStatus(const StatsArguments<T>&, double*, double*)>;

// Of the mean alone when it takes no pointer for the deviation.
template <class T>
struct MomentCase {
    const char* name;
    int channels;
    bool masked;
    bool deviation;
    Call<T> call;
};

template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*)) {
    return {name, channels, masked, false, [f](const StatsArguments<T>& v, double* mean, double*) {
                return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, mean);
            }};
}
template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t, double*)) {
    return {name, channels, masked, false, [f](const StatsArguments<T>& v, double* mean, double*) {
                return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, v.coi, mean);
            }};
}
template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, RoiSize, double*, double*)) {
    return {name, channels, masked, true, [f](const StatsArguments<T>& v, double* mean, double* stdDev) {
                return f(v.a, v.aStep, v.roi, mean, stdDev);
            }};
}
template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*, double*)) {
    return {name, channels, masked, true, [f](const StatsArguments<T>& v, double* mean, double* stdDev) {
                return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, mean, stdDev);
            }};
}
template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, RoiSize, int32_t, double*, double*)) {
    return {name, channels, masked, true, [f](const StatsArguments<T>& v, double* mean, double* stdDev) {
                return f(v.a, v.aStep, v.roi, v.coi, mean, stdDev);
            }};
}
template <class T>
MomentCase<T> make(const char* name, int channels, bool masked,
                   okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t, double*,
                                  double*)) {
    return {name, channels, masked, true, [f](const StatsArguments<T>& v, double* mean, double* stdDev) {
                return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, v.coi, mean, stdDev);
            }};
}

template <class T>
std::vector<MomentCase<T>> cases();

#define MOMENT_CASE(NAME, CHANNELS, MASKED) make(#NAME, CHANNELS, MASKED, NAME)

template <>
std::vector<MomentCase<uint8_t>> cases() {
    return {
        MOMENT_CASE(okpiMean_8u_C1MR, 1, true),         MOMENT_CASE(okpiMean_8u_C3CMR, 3, true),
        MOMENT_CASE(okpiMean_StdDev_8u_C1R, 1, false),  MOMENT_CASE(okpiMean_StdDev_8u_C1MR, 1, true),
        MOMENT_CASE(okpiMean_StdDev_8u_C3CR, 3, false), MOMENT_CASE(okpiMean_StdDev_8u_C3CMR, 3, true),
    };
}
template <>
std::vector<MomentCase<uint16_t>> cases() {
    return {
        MOMENT_CASE(okpiMean_16u_C1MR, 1, true),         MOMENT_CASE(okpiMean_16u_C3CMR, 3, true),
        MOMENT_CASE(okpiMean_StdDev_16u_C1R, 1, false),  MOMENT_CASE(okpiMean_StdDev_16u_C1MR, 1, true),
        MOMENT_CASE(okpiMean_StdDev_16u_C3CR, 3, false), MOMENT_CASE(okpiMean_StdDev_16u_C3CMR, 3, true),
    };
}
template <>
std::vector<MomentCase<float>> cases() {
    return {
        MOMENT_CASE(okpiMean_32f_C1MR, 1, true),         MOMENT_CASE(okpiMean_32f_C3CMR, 3, true),
        MOMENT_CASE(okpiMean_StdDev_32f_C1R, 1, false),  MOMENT_CASE(okpiMean_StdDev_32f_C1MR, 1, true),
        MOMENT_CASE(okpiMean_StdDev_32f_C3CR, 3, false), MOMENT_CASE(okpiMean_StdDev_32f_C3CMR, 3, true),
    };
}

struct Moments {
    double mean = 0, stdDev = 0;
};

// The definition, step by step. The values are such that sums are exact in doubles, except those about the
// rounded mean, which leaves the deviation a few last places.
template <class T>
Moments definition(const MomentCase<T>& c, const StatsImages<T>& images, int32_t coi) {
    double sum = 0;
    double squares = 0;
    int64_t count = 0;
    images.forSelected(coi, [&](double v, double, int, int) {
        sum += v;
        squares += v * v;
        ++count;
    });
    if (count == 0) return {};
    const auto n = static_cast<double>(count);
    if (!c.deviation) return {sum / n, 0};
    const double r = 1.0 / n;
    const double mean = sum * r;
    double stdDev = std::sqrt(std::abs(r * squares - mean * mean));
    if (mean * mean * 0.05 > stdDev * stdDev) {
        const double m = static_cast<float>(mean);
        double deviations = 0;
        images.forSelected(coi, [&](double v, double, int, int) { deviations += (v - m) * (v - m); });
        stdDev = std::sqrt(deviations / n);
    }
    return {mean, stdDev};
}

template <class T>
void expectDefinition(T (*value)(Random&)) {
    for (const MomentCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        forVariedImages<T>(c.channels, value, [&](StatsImages<T>& images, int32_t coi) {
            if (!c.masked) images.mask.fill([](int, int, int) { return 1; });
            const Moments expected = definition(c, images, coi);
            Moments actual{-1, -1};
            ASSERT_EQ(c.call(images.arguments(coi), &actual.mean, &actual.stdDev), okpStatusOk);
            EXPECT_EQ(actual.mean, expected.mean) << images.a.width();
            if (!c.deviation) return;
            EXPECT_NEAR(actual.stdDev, expected.stdDev, 1e-12 * expected.stdDev) << images.a.width();

            // Each output alone, and none.
            Moments alone{-1, -1};
            ASSERT_EQ(c.call(images.arguments(coi), &alone.mean, nullptr), okpStatusOk);
            ASSERT_EQ(c.call(images.arguments(coi), nullptr, &alone.stdDev), okpStatusOk);
            ASSERT_EQ(c.call(images.arguments(coi), nullptr, nullptr), okpStatusOk);
            EXPECT_EQ(alone.mean, actual.mean);
            EXPECT_EQ(alone.stdDev, actual.stdDev);
        });
    }
}

TEST(Moments, EqualTheirDefinition) {
    expectDefinition<uint8_t>(exactValue<uint8_t>);
    expectDefinition<uint16_t>(exactValue<uint16_t>);
    expectDefinition<float>(exactValue<float>);
}

TEST(Moments, KeepASmallSpread) {
    expectDefinition<uint8_t>([](Random& random) { return static_cast<uint8_t>(random.integer(250, 252)); });
    expectDefinition<uint8_t>([](Random& random) { return static_cast<uint8_t>(random.chance(0.999)); });
    expectDefinition<uint16_t>(
        [](Random& random) { return static_cast<uint16_t>(random.integer(65534, 65535)); });
    expectDefinition<float>(
        [](Random& random) { return 30000.0F + 0.25F * static_cast<float>(random.integer(0, 3)); });
}

TEST(Moments, OfAConstantHaveNoDeviation) {
    for (const int width : {1, 3, 8, 61, 331}) {
        const std::vector<float> image(static_cast<size_t>(width) * 3, 1000.5F);
        double mean = 0;
        double stdDev = -1;
        ASSERT_EQ(okpiMean_StdDev_32f_C1R(image.data(), 4 * width, {width, 3}, &mean, &stdDev), okpStatusOk);
        EXPECT_EQ(mean, 1000.5);
        EXPECT_EQ(stdDev, 0.0);
        const std::vector<uint16_t> words(static_cast<size_t>(width) * 3, 60001);
        ASSERT_EQ(okpiMean_StdDev_16u_C1R(words.data(), 2 * width, {width, 3}, &mean, &stdDev), okpStatusOk);
        EXPECT_EQ(stdDev, 0.0);
    }
}

TEST(Moments, IgnoreWhatIsNotSelected) {
    std::vector<float> image(29, 4.0F);
    std::vector<uint8_t> mask(29, 9);
    for (size_t i = 1; i < image.size(); i += 4) {
        image[i] = i % 8 == 1 ? NAN : INFINITY;
        mask[i] = 0;
    }
    Moments m;
    ASSERT_EQ(okpiMean_32f_C1MR(image.data(), 116, mask.data(), 29, {29, 1}, &m.mean), okpStatusOk);
    EXPECT_EQ(m.mean, 4.0);
    // The spread is small: the second pass ignores them too.
    ASSERT_EQ(okpiMean_StdDev_32f_C1MR(image.data(), 116, mask.data(), 29, {29, 1}, &m.mean, &m.stdDev),
              okpStatusOk);
    EXPECT_NEAR(m.mean, 4.0, 1e-15);
    EXPECT_EQ(m.stdDev, 0.0);
}

TEST(Moments, AreExactOverLargeRegions) {
    constexpr int32_t kSide = 20000;
    const RepeatedMemory image(int64_t{2} * kSide * kSide, 255);
    const RoiSize roi{kSide, kSide};
    Moments m;
    ASSERT_EQ(okpiMean_8u_C1MR(image.data(), kSide, image.data(), kSide, roi, &m.mean), okpStatusOk);
    EXPECT_EQ(m.mean, 255.0);
    ASSERT_EQ(okpiMean_StdDev_8u_C1R(image.data(), kSide, roi, &m.mean, &m.stdDev), okpStatusOk);
    EXPECT_NEAR(m.mean, 255.0, 1e-12);
    EXPECT_EQ(m.stdDev, 0.0);
    ASSERT_EQ(okpiMean_StdDev_16u_C1R(image.as<uint16_t>(), 2 * kSide, roi, &m.mean, &m.stdDev), okpStatusOk);
    EXPECT_NEAR(m.mean, 65535.0, 1e-9);
    EXPECT_EQ(m.stdDev, 0.0);
}

TEST(Moments, GiveTheSameBitsAtEveryAlignmentAndStep) {
    std::vector<double> results;
    for (const int padding : {0, 12, 180}) {
        for (const auto at : {GuardedMemory::At::End, GuardedMemory::At::Start}) {
            Random random(78);
            StatsImages<float> images(1083, 5, 1, padding, at);
            images.a.fill([&](int, int, int) { return random.value<float>() + 1e4F; });
            images.mask.fill([&](int, int, int) { return random.maskByte(); });
            const StatsArguments<float> v = images.arguments();
            Moments all, some;
            okpiMean_StdDev_32f_C1R(v.a, v.aStep, v.roi, &all.mean, &all.stdDev);
            okpiMean_StdDev_32f_C1MR(v.a, v.aStep, v.mask, v.maskStep, v.roi, &some.mean, &some.stdDev);
            const std::vector<double> now{all.mean, all.stdDev, some.mean, some.stdDev};
            if (results.empty()) results = now;
            EXPECT_EQ(now, results) << padding;
        }
    }
}

template <class T>
void expectOrder() {
    for (const MomentCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        StatsImages<T> images(8, 2, c.channels, 12);
        Moments m{-1, -1};
        expectStatusOrder<StatsArguments<T>>(
            images.arguments(), [&](const StatsArguments<T>& v) { return c.call(v, &m.mean, &m.stdDev); },
            statsFaults<T>(8, c.channels, false, c.masked, Order::AllShortThenMultiples));
        EXPECT_EQ(m.mean, -1);
        EXPECT_EQ(m.stdDev, -1);
        StatsArguments<T> noWidth = images.arguments();
        noWidth.roi.width = 0;
        EXPECT_EQ(c.call(noWidth, nullptr, nullptr), c.deviation ? okpStatusBadSize : okpStatusNullPointer);
    }
}

TEST(Moments, CheckInOrder) {
    expectOrder<uint8_t>();
    expectOrder<uint16_t>();
    expectOrder<float>();
}

}  // namespace
}  // namespace okpcv::test
