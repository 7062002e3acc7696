// Argument checks at the edges of their ranges, where products would overflow.
#include "core/checks.h"

#include <gtest/gtest.h>

namespace okpcv::test {
namespace {

template <int Channels, class T = float>
bool rowFits(int64_t width, int64_t step) {
    return !Checks().rowsFit(Size(width, 1), Image<T, Channels>{nullptr, step}).failed();
}

TEST(Checks, CompareRowsWithStepsExactly) {
    EXPECT_TRUE((rowFits<3>(100, 1200)));
    EXPECT_FALSE((rowFits<3>(100, 1199)));
    EXPECT_FALSE((rowFits<1>(1, -4)));
    EXPECT_FALSE((rowFits<1>(1, INT64_MIN)));
    EXPECT_FALSE((rowFits<3>(INT32_MAX, INT32_MAX)));
    // 3 * 4 * 357913942 is 8 modulo 2^32.
    EXPECT_FALSE((rowFits<3>(357913942, 1024)));
    EXPECT_FALSE((rowFits<4>(INT64_MAX, INT64_MAX)));
    EXPECT_FALSE((rowFits<4>(int64_t{1} << 60, 1024)));  // the product is 0 modulo 2^64
    EXPECT_TRUE((rowFits<1, uint8_t>(INT64_MAX, INT64_MAX)));
}

TEST(Checks, KeepTheFirstFailure) {
    Checks checks;
    checks.size(RoiSize{1, 1}).channelOfInterest(4).pointers(static_cast<int*>(nullptr));
    EXPECT_EQ(checks.status(), okpStatusBadChannelOfInterest);
    EXPECT_EQ(Checks().size(RoiSize{1, 0}).status(), okpStatusBadSize);
    EXPECT_EQ(Checks().fit32(int64_t{INT32_MAX}, int64_t{1}).status(), okpStatusOk);
    EXPECT_EQ(Checks().fit32(int64_t{1}, int64_t{INT32_MAX} + 1).status(), okpStatusSizeTooLarge);
    EXPECT_EQ(Checks().stepsAreMultiples(Image<float>{nullptr, 6}).status(), okpStatusStepNotMultiple);
}

}  // namespace
}  // namespace okpcv::test
