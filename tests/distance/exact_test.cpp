// Exact distances: bit for bit the envelope computed as documented, and what a search over all zero pixels
// finds.
#include <gtest/gtest.h>

#include <cmath>

#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

constexpr float kNone = std::numeric_limits<float>::max();

float square(int n) {
    return static_cast<float>(n) * static_cast<float>(n);
}

// Column pass and lower envelope, one step after the other in single precision.
std::vector<float> envelopeDistances(const GuardedImage<uint8_t>& src) {
    const int width = src.width();
    const int height = src.height();
    std::vector<float> squared(static_cast<size_t>(width) * height);
    const auto at = [&](int x, int y) -> float& { return squared[static_cast<size_t>(y) * width + x]; };
    for (int x = 0; x < width; ++x) {
        std::vector<int> c(static_cast<size_t>(height) + 1, height - 1);
        for (int y = height; y-- > 0;) {
            c[static_cast<size_t>(y)] = src.at(x, y) != 0 ? c[static_cast<size_t>(y) + 1] + 1 : 0;
        }
        int d = height - 1;
        for (int y = 0; y < height; ++y) {
            d = std::min(d + 1, c[static_cast<size_t>(y)]);
            at(x, y) = d <= height - 1 ? square(d) : kNone;
        }
    }
    std::vector<float> result(squared.size());
    std::vector<int> v(static_cast<size_t>(width));
    std::vector<float> z(static_cast<size_t>(width) + 1);
    for (int y = 0; y < height; ++y) {
        size_t k = 0;
        v[0] = 0;
        z[0] = -kNone;
        z[1] = kNone;
        for (int q = 1; q < width; ++q) {
            const auto meets = [&] {
                return ((at(q, y) + square(q)) - (at(v[k], y) + square(v[k]))) *
                       static_cast<float>(0.5 / (q - v[k]));
            };
            float s = meets();
            while (s <= z[k]) {
                --k;
                s = meets();
            }
            ++k;
            v[k] = q;
            z[k] = s;
            z[k + 1] = kNone;
        }
        k = 0;
        for (int q = 0; q < width; ++q) {
            while (static_cast<float>(q) > z[k + 1]) ++k;
            result[static_cast<size_t>(y) * width + q] = std::sqrt(at(v[k], y) + square(std::abs(q - v[k])));
        }
    }
    return result;
}

std::vector<float> searchedDistances(const GuardedImage<uint8_t>& src) {
    std::vector<PixelPoint> zeros;
    for (int y = 0; y < src.height(); ++y) {
        for (int x = 0; x < src.width(); ++x) {
            if (src.at(x, y) == 0) zeros.push_back({x, y});
        }
    }
    std::vector<float> result;
    for (int y = 0; y < src.height(); ++y) {
        for (int x = 0; x < src.width(); ++x) {
            int64_t nearest = INT64_MAX;
            for (const PixelPoint p : zeros) {
                const int64_t dx = p.x - x, dy = p.y - y;
                nearest = std::min(nearest, dx * dx + dy * dy);
            }
            result.push_back(std::sqrt(zeros.empty() ? kNone : static_cast<float>(nearest)));
        }
    }
    return result;
}

int bufferSize(RoiSize roi) {
    int32_t size = -1;
    EXPECT_EQ(okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(roi, &size), okpStatusOk);
    return size;
}

// Runs on a buffer of exactly the queried size, which ends at an unreadable page at any alignment.
std::vector<float> distances(const GuardedImage<uint8_t>& src, int shift = 0) {
    const auto bytes = static_cast<size_t>(bufferSize(src.roi()));
    const size_t misalignment = static_cast<size_t>(shift) % 64;
    GuardedMemory memory(bytes + misalignment, GuardedMemory::At::End);
    GuardedMemory front(bytes, GuardedMemory::At::Start);
    GuardedImage<float> dst(src.width(), src.height(), {.padding = 4 * (shift % 2)});
    auto* const buffer =
        reinterpret_cast<uint8_t*>(misalignment == 0 ? front.data() : memory.data() + misalignment);
    EXPECT_EQ(okpiTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                                  buffer),
              okpStatusOk);
    EXPECT_TRUE(dst.paddingIntact());
    return dst.pixels();
}

TEST(ExactDistance, EqualsASearchOverAllZeroPixels) {
    Random random(92);
    for (int width = 1; width <= 40; ++width) {
        for (int height = 1; height <= 20; ++height) {
            GuardedImage<uint8_t> src(width, height, {.padding = width % 5});
            const double density = random.chance(0.3) ? 0.5 : random.chance(0.5) ? 0.95 : 1.0;
            src.fill([&](int, int, int) { return random.maskByte(density); });
            const std::vector<float> actual = distances(src, width + height);
            ASSERT_TRUE(sameBits(actual, searchedDistances(src))) << width << " x " << height;
            ASSERT_TRUE(sameBits(actual, envelopeDistances(src))) << width << " x " << height;
        }
    }
}

// Around the width where the steps' rounding begins to matter, and far beyond it.
TEST(ExactDistance, FollowsTheStepsAtEveryWidth) {
    Random random(93);
    for (const int width : {300, 2046, 2047, 2048, 2049, 4100, 9001}) {
        for (const int height : {1, 3, 40}) {
            for (const double zeros : {0.5, 0.01, 0.0005, 0.0}) {
                GuardedImage<uint8_t> src(width, height);
                src.fill([&](int, int, int) { return random.maskByte(1 - zeros); });
                ASSERT_TRUE(sameBits(distances(src), envelopeDistances(src))) << width << " x " << height;
            }
        }
    }
    GuardedImage<uint8_t> tall(130, 2047);
    tall.fill([&](int, int, int) { return random.maskByte(0.9998); });
    EXPECT_TRUE(sameBits(distances(tall), envelopeDistances(tall)));
}

TEST(ExactDistance, Patterns) {
    const auto expectPattern = [](int width, int height, auto isZero) {
        GuardedImage<uint8_t> src(width, height);
        src.fill([&](int x, int y, int) { return isZero(x, y) ? 0 : 255; });
        EXPECT_TRUE(sameBits(distances(src), searchedDistances(src)));
    };
    expectPattern(50, 37, [](int x, int y) { return (x + y) % 2 == 0; });
    expectPattern(50, 37, [](int x, int) { return x == 49; });
    expectPattern(50, 37, [](int, int y) { return y == 0; });
    expectPattern(50, 37, [](int x, int y) { return x == 49 && y == 36; });
    expectPattern(80, 60, [](int x, int y) { return (x - 40) * (x - 40) + (y - 30) * (y - 30) > 28 * 28; });
    expectPattern(80, 60, [](int x, int y) { return (x - 40) * (x - 40) + (y - 30) * (y - 30) < 9 * 9; });
    expectPattern(7, 5, [](int, int) { return false; });
    expectPattern(7, 5, [](int, int) { return true; });
}

TEST(ExactDistance, BufferSizes) {
    EXPECT_EQ(bufferSize({1, 1}), 4 * 52 + 12 + 84);
    EXPECT_EQ(bufferSize({640, 480}), 640 * 52 + 480 * 12 + 84);
    EXPECT_EQ(bufferSize({5, 9}), 12 * 52 + 9 * 12 + 84);
    EXPECT_EQ(bufferSize({41297760, 1}), 2147483616);
    int32_t size = 5;
    const auto query = okpiTrueDistanceTransformGetBufferSize_8u32f_C1R;
    EXPECT_EQ(query({0, 0}, nullptr), okpStatusNullPointer);
    EXPECT_EQ(query({0, 3}, &size), okpStatusBadSize);
    EXPECT_EQ(query({3, -1}, &size), okpStatusBadSize);
    EXPECT_EQ(query({41297761, 1}, &size), okpStatusSizeTooLarge);
    EXPECT_EQ(query({1, INT32_MAX}, &size), okpStatusSizeTooLarge);
    EXPECT_EQ(size, 5);
}

struct Arguments {
    const uint8_t* src;
    int32_t srcStep;
    float* dst;
    int32_t dstStep;
    RoiSize roi;
    uint8_t* buffer;
};

TEST(ExactDistance, ChecksInOrder) {
    using A = Arguments;
    GuardedImage<uint8_t> src(9, 4, {.padding = 3});
    GuardedImage<float> dst(9, 4, {.padding = 8});
    uint8_t buffer[1024];
    expectStatusOrder<A>(
        {src.data(), src.step(), dst.data(), dst.step(), src.roi(), buffer},
        [](const A& a) {
            return okpiTrueDistanceTransform_8u32f_C1R(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.buffer);
        },
        {{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
         {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
         {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
         {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
         {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
         {"short source step", okpStatusBadStep, [](A& a) { a.srcStep = 8; }},
         {"short step", okpStatusBadStep, [](A& a) { a.dstStep = 35; }},
         {"odd step", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 42; }},
         {"a size without buffer size", okpStatusSizeTooLarge, [](A& a) { a.roi.height = INT32_MAX; }}});
    EXPECT_EQ(dst.pixels(), std::vector<float>(36));
}

}  // namespace
}  // namespace okpcv::test
