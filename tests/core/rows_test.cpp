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

void expectAccumulated(int width, int height, int padding, int misalignment, bool streamed) {
    SCOPED_TRACE(testing::Message() << width << 'x' << height << " padding " << padding << " at "
                                    << misalignment << (streamed ? " streamed" : ""));
    GuardedImage<float> dst(width, height, {.padding = padding, .left = 0, .right = misalignment});
    GuardedImage<uint8_t> src(width, height, {.padding = padding});
    Random random(static_cast<uint32_t>(width * 31 + height));
    dst.fill([&](int, int, int) { return random.value<float>(); });
    src.fill([&](int, int, int) { return random.value<uint8_t>(); });
    std::vector<float> expected = dst.pixels();
    for (size_t i = 0; i < expected.size(); ++i) expected[i] += src.pixels()[i];

    const Image<float> d{dst.data(), dst.step()};
    const Image<const uint8_t> s{src.data(), src.step()};
    constexpr int lanes = Vec<float>::lanes;
    if (streamed) {
        mapRowsStreamed<lanes>(dst.roi(), kAccumulate, d, s);
    } else {
        mapRows<lanes>(dst.roi(), kAccumulate, d, s);
    }
    EXPECT_EQ(dst.pixels(), expected);
    EXPECT_TRUE(dst.paddingIntact());
}

TEST(Rows, VisitEveryElementOnce) {
    for (const bool streamed : {false, true}) {
        for (int width = 1; width <= 21; ++width) {
            for (const int padding : {0, 1, 4, 12}) {
                for (const int misalignment : {0, 1, 3})
                    expectAccumulated(width, 3, padding, misalignment, streamed);
            }
        }
    }
}

}  // namespace
}  // namespace okpcv::test
