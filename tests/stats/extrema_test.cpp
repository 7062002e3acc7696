// Extrema and their places against their definition.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <optional>

#include "stats/stats_arguments.h"
#include "support/repeated_memory.h"

namespace okpcv::test {
namespace {

struct Extrema {
    float min = -7, max = -7;
    PixelPoint minAt{-7, -7}, maxAt{-7, -7};
};

// Which outputs a call is given.
struct Wanted {
    bool min = true, max = true, minAt = true, maxAt = true;
};

template <class T>
using Call = std::function<okpStatus(const StatsArguments<T>&, float*, float*, PixelPoint*, PixelPoint*)>;

template <class T>
struct ExtremaCase {
    const char* name;
    int channels;
    bool masked;
    Call<T> call;

    okpStatus operator()(const StatsArguments<T>& v, Extrema& e, Wanted w = {}) const {
        return call(v, w.min ? &e.min : nullptr, w.max ? &e.max : nullptr, w.minAt ? &e.minAt : nullptr,
                    w.maxAt ? &e.maxAt : nullptr);
    }
};

template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, RoiSize, float*, float*, PixelPoint*, PixelPoint*)) {
    return [f](const StatsArguments<T>& v, auto... out) { return f(v.a, v.aStep, v.roi, out...); };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, float*, float*, PixelPoint*,
                            PixelPoint*)) {
    return [f](const StatsArguments<T>& v, auto... out) {
        return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, out...);
    };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, RoiSize, int32_t, float*, float*, PixelPoint*, PixelPoint*)) {
    return [f](const StatsArguments<T>& v, auto... out) { return f(v.a, v.aStep, v.roi, v.coi, out...); };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t, float*, float*,
                            PixelPoint*, PixelPoint*)) {
    return [f](const StatsArguments<T>& v, auto... out) {
        return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, v.coi, out...);
    };
}

template <class T>
std::vector<ExtremaCase<T>> cases();

#define EXTREMA_CASE(NAME, CHANNELS, MASKED) \
    { #NAME, CHANNELS, MASKED, wrap(NAME) }

template <>
std::vector<ExtremaCase<uint8_t>> cases() {
    return {
        EXTREMA_CASE(okpiMinMaxIndx_8u_C1R, 1, false),
        EXTREMA_CASE(okpiMinMaxIndx_8u_C1MR, 1, true),
        EXTREMA_CASE(okpiMinMaxIndx_8u_C3CR, 3, false),
        EXTREMA_CASE(okpiMinMaxIndx_8u_C3CMR, 3, true),
    };
}
template <>
std::vector<ExtremaCase<uint16_t>> cases() {
    return {
        EXTREMA_CASE(okpiMinMaxIndx_16u_C1R, 1, false),
        EXTREMA_CASE(okpiMinMaxIndx_16u_C1MR, 1, true),
        EXTREMA_CASE(okpiMinMaxIndx_16u_C3CR, 3, false),
        EXTREMA_CASE(okpiMinMaxIndx_16u_C3CMR, 3, true),
    };
}
template <>
std::vector<ExtremaCase<float>> cases() {
    return {
        EXTREMA_CASE(okpiMinMaxIndx_32f_C1R, 1, false),
        EXTREMA_CASE(okpiMinMaxIndx_32f_C1MR, 1, true),
        EXTREMA_CASE(okpiMinMaxIndx_32f_C3CR, 3, false),
        EXTREMA_CASE(okpiMinMaxIndx_32f_C3CMR, 3, true),
    };
}

// The first pixel that no other is below (above); NaN is no extremum.
template <class T>
okpStatus definition(const StatsImages<T>& images, int32_t coi, Extrema& e) {
    bool any = false;
    std::optional<T> min, max;
    e = {INFINITY, -INFINITY, {-1, 0}, {-1, 0}};
    images.forSelected(coi, [&](T v, T, int x, int y) {
        any = true;
        if (v != v) return;
        if (!min || v < *min) {
            min = v;
            e.min = v;
            e.minAt = {x, y};
        }
        if (!max || v > *max) {
            max = v;
            e.max = v;
            e.maxAt = {x, y};
        }
    });
    if (any) return okpStatusOk;
    e = {0, 0, {0, 0}, {0, 0}};
    return okpStatusNoOperation;
}

testing::AssertionResult same(const Extrema& actual, const Extrema& expected) {
    if (std::memcmp(&actual, &expected, sizeof actual) == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "min " << actual.min << " at " << actual.minAt.x << ", " << actual.minAt.y << " not "
           << expected.min << " at " << expected.minAt.x << ", " << expected.minAt.y << "; max " << actual.max
           << " at " << actual.maxAt.x << ", " << actual.maxAt.y << " not " << expected.max << " at "
           << expected.maxAt.x << ", " << expected.maxAt.y;
}

// All outputs, and then every subset of them: what is not asked for is not written, the rest is the same.
template <class T>
void expectDefinition(const ExtremaCase<T>& c, StatsImages<T>& images, int32_t coi) {
    if (!c.masked) images.mask.fill([](int, int, int) { return 1; });
    Extrema expected;
    const okpStatus status = definition(images, coi, expected);
    for (int subset = 0; subset < 16; ++subset) {
        const Wanted wanted{(subset & 1) == 0, (subset & 2) == 0, (subset & 4) == 0, (subset & 8) == 0};
        Extrema part;
        if (wanted.min) part.min = expected.min;
        if (wanted.max) part.max = expected.max;
        if (wanted.minAt) part.minAt = expected.minAt;
        if (wanted.maxAt) part.maxAt = expected.maxAt;
        Extrema actual;
        EXPECT_EQ(c(images.arguments(coi), actual, wanted), status) << "subset " << subset;
        EXPECT_TRUE(same(actual, part)) << images.a.width() << " wide, subset " << subset;
    }
}

template <class T>
void expectDefinition(T (*value)(Random&)) {
    for (const ExtremaCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        forVariedImages<T>(c.channels, value,
                           [&](StatsImages<T>& images, int32_t coi) { expectDefinition(c, images, coi); });
    }
}

TEST(MinMaxIndx, EqualsItsDefinition) {
    expectDefinition<uint8_t>([](Random& random) { return random.value<uint8_t>(); });
    expectDefinition<uint16_t>([](Random& random) { return random.value<uint16_t>(); });
    expectDefinition<float>([](Random& random) { return random.special<float>(); });
}

TEST(MinMaxIndx, PrefersTheFirstOfEqualExtrema) {
    expectDefinition<uint8_t>([](Random& random) { return static_cast<uint8_t>(random.integer(0, 2)); });
    expectDefinition<uint16_t>([](Random& random) { return static_cast<uint16_t>(random.integer(4, 5)); });
    expectDefinition<float>([](Random& random) { return random.chance(0.5) ? 0.0F : -0.0F; });
}

// The values that a search could start from.
TEST(MinMaxIndx, FindsTheLimitsOfTheType) {
    expectDefinition<uint8_t>([](Random&) { return uint8_t{255}; });
    expectDefinition<uint8_t>([](Random&) { return uint8_t{0}; });
    expectDefinition<uint16_t>([](Random&) { return uint16_t{65535}; });
    expectDefinition<float>([](Random&) { return NAN; });
    for (const float limit : {INFINITY, -INFINITY}) {
        StatsImages<float> images(9, 3, 1);
        images.a.fill([&](int x, int y, int) { return y == 0 || x < 4 ? NAN : limit; });
        expectDefinition(cases<float>()[0], images, 1);
        images.mask.fill([](int x, int, int) { return x != 4; });
        expectDefinition(cases<float>()[1], images, 1);
    }
}

TEST(MinMaxIndx, ReportsRowsBefore) {
    GuardedImage<uint8_t> image(8, 4);
    image.fill([](int, int, int) { return 3; });
    const std::vector<uint8_t> mask(32, 1);
    Extrema e;
    image.set(5, 2, 9);
    image.set(1, 3, 9);
    ASSERT_EQ(okpiMinMaxIndx_8u_C1MR(image.data(), 8, mask.data(), 8, image.roi(), &e.min, &e.max, &e.minAt,
                                     &e.maxAt),
              okpStatusOk);
    EXPECT_TRUE(same(e, {3, 9, {0, 0}, {5, 2}}));
    image.set(1, 3, 3);
    image.set(1, 2, 9);
    ASSERT_EQ(okpiMinMaxIndx_8u_C1MR(image.data(), 8, mask.data(), 8, image.roi(), &e.min, &e.max, &e.minAt,
                                     &e.maxAt),
              okpStatusOk);
    EXPECT_TRUE(same(e, {3, 9, {0, 0}, {1, 2}}));
}

TEST(MinMaxIndx, ReachesRowsBeyond32Bits) {
    constexpr int32_t kWidth = 70001;
    constexpr int32_t kHeight = 65000;
    const RepeatedMemory image(int64_t{kWidth} * kHeight, 10);
    // The last row alone, in a copy of the repeated chunk that lies in it.
    auto* const last = const_cast<uint8_t*>(image.data()) + int64_t{kWidth} * (kHeight - 1);
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t from = (reinterpret_cast<uintptr_t>(last) + page - 1) / page * page;
    auto* const own = static_cast<uint8_t*>(mmap(reinterpret_cast<void*>(from), page, PROT_READ | PROT_WRITE,
                                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0));
    std::memset(own, 10, page);
    own[77] = 4;
    own[99] = 200;
    const auto column = static_cast<int32_t>(own - last);
    Extrema e;
    ASSERT_EQ(
        okpiMinMaxIndx_8u_C1R(image.data(), kWidth, {kWidth, kHeight}, &e.min, &e.max, &e.minAt, &e.maxAt),
        okpStatusOk);
    EXPECT_TRUE(same(e, {4, 200, {column + 77, kHeight - 1}, {column + 99, kHeight - 1}}));
}

template <class T>
void expectOrder() {
    for (const ExtremaCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        StatsImages<T> images(8, 2, c.channels, 12);
        Extrema e;
        expectStatusOrder<StatsArguments<T>>(
            images.arguments(), [&](const StatsArguments<T>& v) { return c(v, e); },
            statsFaults<T>(8, c.channels, false, c.masked, Order::AllShortThenMultiples));
        EXPECT_TRUE(same(e, Extrema{}));
    }
}

TEST(MinMaxIndx, ChecksInOrder) {
    expectOrder<uint8_t>();
    expectOrder<uint16_t>();
    expectOrder<float>();
}

}  // namespace
}  // namespace okpcv::test
