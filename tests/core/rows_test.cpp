// Row engines: every element exactly once, nothing outside, streamed or not.
#include "core/rows.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/guarded_image.h"
#include "support/random.h"

namespace okpcv::test {
namespace {

// d += s on every element, which shows an element that is visited twice or left out.
constexpr auto kAccumulate = [](auto extent, float* d, const uint8_t* s) {
    store(d, load(d, extent) + loadAs<float>(s, extent), extent);
};

template <Fetch kFetch>
void expectAccumulated(int width, int height, int padding, int misalignment, bool streamed) {
    SCOPED_TRACE(testing::Message() << width << 'x' << height << " padding " << padding << " at "
                                    << misalignment << (streamed ? " streamed" : ""));
    GuardedImage<float> dst(width, height, {.padding = padding, .left = 0, .right = misalignment});
    GuardedImage<uint8_t> src(width, height, {.padding = padding});
    Random random(static_cast<uint32_t>(width * 31 + height));
    dst.fill([&](int, int, int) { return random.value<float>(); });
    src.fill([&](int, int, int) { return random.value<uint8_t>(); });
    std::vector<float> expected = dst.pixels();
    const std::vector<uint8_t> added = src.pixels();
    for (size_t i = 0; i < expected.size(); ++i) expected[i] += added[i];

    const Image<float> d{dst.data(), dst.step()};
    const Image<const uint8_t> s{src.data(), src.step()};
    constexpr int lanes = Vec<float>::lanes;
    if (streamed) {
        mapRowsStreamed<lanes, kFetch>(dst.roi(), kAccumulate, d, s);
    } else {
        mapRows<lanes, kFetch>(dst.roi(), kAccumulate, d, s);
    }
    EXPECT_EQ(dst.pixels(), expected);
    EXPECT_TRUE(dst.paddingIntact());
}

TEST(Rows, VisitEveryElementOnce) {
    for (const bool streamed : {false, true}) {
        for (int width = 1; width <= 21; ++width) {
            for (const int padding : {0, 1, 4, 12}) {
                for (const int misalignment : {0, 1, 3})
                    expectAccumulated<Fetch::AsItComes>(width, 3, padding, misalignment, streamed);
            }
        }
    }
}

// Rows, or several together, that are long enough for something of them to be fetched ahead.
TEST(Rows, VisitEveryElementOnceWhenFetchingAhead) {
    constexpr int ahead = kFetchedAheadBytes / sizeof(float);
    for (const bool streamed : {false, true}) {
        for (const int padding : {0, 4}) {
            for (const int width : {700, ahead + 3, ahead + 16, ahead + 17, ahead + 83, 2 * ahead}) {
                for (const int misalignment : {0, 3})
                    expectAccumulated<Fetch::FirstAhead>(width, 3, padding, misalignment, streamed);
            }
        }
    }
}

}  // namespace
}  // namespace okpcv::test
