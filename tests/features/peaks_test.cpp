// Peaks against their definition, and what the list holds when it fills up.
#include <gtest/gtest.h>

#include <cmath>

#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
struct Arguments {
    const T* src;
    int32_t step;
    RoiSize roi;
    T threshold;
    PixelPoint* peaks;
    int32_t capacity;
    int32_t* count;
    int32_t norm;
    int32_t border;
    uint8_t* buffer;
};

okpStatus find(const Arguments<float>& a) {
    return okpiFindPeaks3x3_32f_C1R(a.src, a.step, a.roi, a.threshold, a.peaks, a.capacity, a.count, a.norm,
                                    a.border, a.buffer);
}
okpStatus find(const Arguments<int32_t>& a) {
    return okpiFindPeaks3x3_32s_C1R(a.src, a.step, a.roi, a.threshold, a.peaks, a.capacity, a.count, a.norm,
                                    a.border, a.buffer);
}

bool isClose(float v, float extremum) {
    return std::abs(v - extremum) <= 1.1754944e-38F;
}
bool isClose(int32_t v, int32_t extremum) {
    return v == extremum;
}
bool exceeds(float v, float threshold) {
    return std::abs(v) > threshold;
}
bool exceeds(int32_t v, int32_t threshold) {
    return std::abs(int64_t{v}) > threshold;
}

template <class T>
std::vector<PixelPoint> peaksOf(const GuardedImage<T>& src, T threshold, int norm, int border) {
    std::vector<PixelPoint> peaks;
    for (int y = border; y < src.height() - border; ++y) {
        for (int x = border; x < src.width() - border; ++x) {
            const T v = src.at(x, y);
            if (!exceeds(v, threshold)) continue;
            T least = v;
            T largest = v;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    if (norm == 1 && dx != 0 && dy != 0) continue;
                    const T n = src.at(x + dx, y + dy);
                    if (n < least) least = n;
                    if (n > largest) largest = n;
                }
            }
            if (v > 0 ? isClose(v, largest) : isClose(v, least)) peaks.push_back({x, y});
        }
    }
    return peaks;
}

template <class T>
struct PeaksTest : testing::Test {
    // Few distinct values, so that plateaus arise; and every special one.
    T draw() {
        if constexpr (std::is_same_v<T, float>) {
            if (random.chance(0.1)) return random.special<float>();
            if (random.chance(0.1)) return static_cast<float>(random.integer(-3, 3)) * 0.6e-38F;
        } else {
            if (random.chance(0.1)) return random.special<int32_t>();
        }
        return static_cast<T>(random.integer(-4, 4));
    }
    Random random{51};
};
using PeakTypes = testing::Types<float, int32_t>;
TYPED_TEST_SUITE(PeaksTest, PeakTypes);

TYPED_TEST(PeaksTest, ListsWhatTheDefinitionListsInRasterOrder) {
    using T = TypeParam;
    const T thresholds[] = {0, 2, -1, std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()};
    for (int round = 0; round < 600; ++round) {
        const int width = this->random.integer(2, 45);
        const int height = this->random.integer(2, 9);
        GuardedImage<T> src(width, height, {.padding = 4 * (round % 3)});
        const bool sparse = round % 2 == 0;
        src.fill([&](int, int, int) { return sparse && !this->random.chance(0.05) ? T(0) : this->draw(); });
        const T threshold = thresholds[round % 5];
        const int norm = this->random.integer(0, 1);
        const int border = this->random.integer(1, std::min(width, height) / 2);
        const std::vector<PixelPoint> expected = peaksOf(src, threshold, norm, border);

        // A list too short, and one with room to spare.
        for (const int capacity : {1 + this->random.integer(0, static_cast<int>(expected.size())),
                                   static_cast<int>(expected.size()) + 1}) {
            int32_t bytes = 0;
            ASSERT_EQ(okpiFindPeaks3x3GetBufferSize_32f_C1R(width, &bytes), okpStatusOk);
            GuardedMemory buffer(static_cast<size_t>(bytes), GuardedMemory::At::End);
            GuardedMemory list(sizeof(PixelPoint) * static_cast<size_t>(capacity), GuardedMemory::At::End);
            auto* const peaks = reinterpret_cast<PixelPoint*>(list.data());
            int32_t count = -1;
            ASSERT_EQ(find({src.data(), src.step(), src.roi(), threshold, peaks, capacity, &count, norm,
                            border, reinterpret_cast<uint8_t*>(buffer.data())}),
                      okpStatusOk);
            ASSERT_EQ(count, std::min(capacity, static_cast<int>(expected.size())));
            for (int i = 0; i < count; ++i) {
                EXPECT_EQ(peaks[i].x, expected[static_cast<size_t>(i)].x);
                EXPECT_EQ(peaks[i].y, expected[static_cast<size_t>(i)].y);
            }
        }
    }
}

TYPED_TEST(PeaksTest, ChecksInOrder) {
    using A = Arguments<TypeParam>;
    GuardedImage<TypeParam> src(9, 7, {.padding = 8});
    PixelPoint peaks[4];
    int32_t count = 77;
    uint8_t buffer[512];
    expectStatusOrder<A>({src.data(), src.step(), src.roi(), 0, peaks, 4, &count, 0, 1, buffer},
                         [](const A& a) { return find(a); },
                         {{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
                          {"null peaks", okpStatusNullPointer, [](A& a) { a.peaks = nullptr; }},
                          {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
                          {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
                          {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                          {"no capacity", okpStatusBadSize, [](A& a) { a.capacity = 0; }},
                          {"no border", okpStatusBadSize, [](A& a) { a.border = 0; }},
                          {"border beyond half the height", okpStatusBadSize, [](A& a) { a.border = 4; }},
                          {"border beyond half the width", okpStatusBadSize,
                           [](A& a) {
                               a.roi = {7, 9}, a.border = 4;
                           }},
                          {"short step", okpStatusBadStep, [](A& a) { a.step = 35; }},
                          {"odd step", okpStatusStepNotMultiple, [](A& a) { a.step = 38; }},
                          {"unknown norm", okpStatusBadArgument, [](A& a) { a.norm = 2; }},
                          {"negative norm", okpStatusBadArgument, [](A& a) { a.norm = -1; }}});
    EXPECT_EQ(find(A{src.data(), src.step(), src.roi(), 0, peaks, 4, nullptr, 0, 1, buffer}),
              okpStatusNullPointer);
    EXPECT_EQ(count, 77);
}

TEST(Peaks, BufferSizes) {
    for (const auto query : {okpiFindPeaks3x3GetBufferSize_32f_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R}) {
        int32_t size = 5;
        EXPECT_EQ(query(0, nullptr), okpStatusNullPointer);
        EXPECT_EQ(query(0, &size), okpStatusBadSize);
        EXPECT_EQ(query(INT32_MAX, &size), okpStatusSizeTooLarge);
        EXPECT_EQ(size, 5);
        EXPECT_EQ(query(1, &size), okpStatusOk);
        EXPECT_EQ(size, 160);
        EXPECT_EQ(query(100, &size), okpStatusOk);
        EXPECT_EQ(size, 3360);
    }
}

}  // namespace
}  // namespace okpcv::test
