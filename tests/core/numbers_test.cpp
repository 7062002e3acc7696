// Rounding, clamping and conversion at the edges of their ranges.
#include "core/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace okpcv::test {
namespace {

TEST(Numbers, Saturate) {
    EXPECT_EQ(saturate<uint8_t>(-1), 0);
    EXPECT_EQ(saturate<uint8_t>(256), 255);
    EXPECT_EQ(saturate<int16_t>(INT32_MIN), -32768);
    EXPECT_EQ(saturate<uint16_t>(INT32_MAX), 65535);
    EXPECT_EQ(saturate<int32_t>(INT64_MAX), INT32_MAX);
}

TEST(Numbers, TruncateSaturated) {
    EXPECT_EQ(truncateSaturated<uint8_t>(254.99F), 254);
    EXPECT_EQ(truncateSaturated<uint8_t>(-0.5F), 0);
    EXPECT_EQ(truncateSaturated<int16_t>(-1.99F), -1);
    EXPECT_EQ(truncateSaturated<int16_t>(-1e30F), -32768);
    EXPECT_EQ(truncateSaturated<uint16_t>(INFINITY), 65535);
    EXPECT_EQ(truncateSaturated<uint8_t>(NAN), 0);
    EXPECT_EQ(truncateSaturated<int32_t>(-2147483648.0F), INT32_MIN);
    EXPECT_EQ(truncateSaturated<int32_t>(2147483520.0F), 2147483520);
    EXPECT_EQ(truncateSaturated<int32_t>(2147483648.0F), INT32_MAX);
    EXPECT_EQ(truncateSaturated<int64_t>(-1.99F), -1);
    EXPECT_EQ(truncateSaturated<int64_t>(0x1.fffffep62F), 0x7fffff8000000000);
    EXPECT_EQ(truncateSaturated<int64_t>(0x1p63F), INT64_MAX);
    EXPECT_EQ(truncateSaturated<int64_t>(-INFINITY), INT64_MIN);
    EXPECT_EQ(truncateSaturated<int64_t>(NAN), INT64_MIN);
}

TEST(Numbers, ShiftAndProductRules) {
    EXPECT_EQ(shiftRightHalfUp(3, 1), 2);
    EXPECT_EQ(shiftRightHalfUp(-3, 1), -1);
    EXPECT_EQ(shiftRightHalfUp(5, 0), 5);
    EXPECT_EQ(wrappingProduct(65536, 65536), 0);
    EXPECT_EQ(wrappingProduct(13, INT32_MAX), static_cast<int32_t>(13LL * INT32_MAX));
    EXPECT_EQ(wrappingSum(INT32_MAX, 2), INT32_MIN + 1);
    EXPECT_EQ(powerOfTwo(-1022), 0x1p-1022);
    EXPECT_EQ(powerOfTwo(1023), 0x1p1023);
    EXPECT_EQ(std::bit_cast<uint64_t>(kNegativeNaN), 0xFFF8000000000000U);
    EXPECT_EQ(roundUp(33, 32), 64);
    EXPECT_EQ(roundUp(64, 32), 64);
}

}  // namespace
}  // namespace okpcv::test
