// Segment boundaries against their rule, pixel by pixel.
#include <gtest/gtest.h>

#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
using Bound = okpStatus(T*, int32_t, RoiSize, T, int32_t);

template <class T>
std::vector<T> bounded(std::vector<T> pixels, RoiSize roi, T val, int norm) {
    const auto at = [&](int x, int y) -> T& { return pixels[static_cast<size_t>(y) * roi.width + x]; };
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            bool mark = false;
            const auto look = [&](int nx, int ny) {
                if (nx < 0 || nx >= roi.width || ny < 0) return;
                mark = mark || (at(nx, ny) != val && at(nx, ny) != at(x, y));
            };
            look(x - 1, y);
            look(x, y - 1);
            if (norm == 0) {
                look(x - 1, y - 1);
                look(x + 1, y - 1);
            }
            if (mark) at(x, y) = val;
        }
    }
    return pixels;
}

template <class T>
void expectBounded(Bound<T>* f, RoiSize roi, const std::vector<T>& pixels, T val, int norm) {
    GuardedImage<T> image(
        roi.width, roi.height,
        {.padding = 4, .at = norm == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start});
    image.setPixels(pixels);
    ASSERT_EQ(f(image.data(), image.step(), roi, val, norm), okpStatusOk);
    EXPECT_EQ(image.pixels(), bounded(pixels, roi, val, norm)) << roi.width << 'x' << roi.height;
    EXPECT_TRUE(image.paddingIntact());
}

template <class T>
void expectFollowsTheRule(Bound<T>* f) {
    Random random(91);
    for (int round = 0; round < 2000; ++round) {
        const RoiSize roi{random.integer(1, round % 2 == 0 ? 20 : 200), random.integer(1, 6)};
        const int levels = random.integer(1, 6);
        const double change = random.real(0.0F, 1.0F);
        std::vector<T> pixels(static_cast<size_t>(roi.width) * roi.height);
        for (size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = i == 0 || random.chance(change)
                            ? static_cast<T>(random.integer(0, levels) * (sizeof(T) > 1 ? 257 : 1))
                            : pixels[i - 1];
        }
        expectBounded<T>(f, roi, pixels, static_cast<T>(random.integer(0, levels + 1)), round % 2);
    }
    // No two neighbours alike: whether a pixel is marked changes from each to the next, over whole words.
    for (const int width : {63, 64, 65, 127, 128, 129, 300}) {
        std::vector<T> pixels(static_cast<size_t>(width) * 3);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<T>(1 + i % 7);
        for (const int norm : {0, 1}) expectBounded<T>(f, {width, 3}, pixels, T(0), norm);
    }
}

TEST(BoundSegments, FollowsItsRule) {
    expectFollowsTheRule<uint8_t>(okpiBoundSegments_8u_C1IR);
    expectFollowsTheRule<uint16_t>(okpiBoundSegments_16u_C1IR);
}

template <class T>
struct Arguments {
    T* image;
    int32_t step;
    RoiSize roi;
    int32_t norm;
};

template <class T>
void expectOrder(Bound<T>* f) {
    using A = Arguments<T>;
    GuardedImage<T> image(8, 3, {.padding = 16});
    image.fill([](int x, int, int) { return x; });
    const std::vector<T> before = image.pixels();
    const int rowBytes = image.step() - 16;
    std::vector<Fault<A>> faults{{"null image", okpStatusNullPointer, [](A& a) { a.image = nullptr; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                                 {"negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
                                 {"short step", okpStatusBadStep, [=](A& a) { a.step = rowBytes - 1; }},
                                 {"norm 2", okpStatusBadArgument, [](A& a) { a.norm = 2; }},
                                 {"norm -1", okpStatusBadArgument, [](A& a) { a.norm = -1; }}};
    if (sizeof(T) > 1) {
        faults.insert(faults.begin() + 4,
                      {"odd step", okpStatusStepNotMultiple, [=](A& a) { a.step = rowBytes + 1; }});
    }
    const std::function<okpStatus(const A&)> call = [f](const A& a) {
        return f(a.image, a.step, a.roi, 99, a.norm);
    };
    expectStatusOrder<A>({image.data(), image.step(), image.roi(), 0}, call, faults);
    expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) { return f(image.data(), step, roi, 99, 0); });
    EXPECT_EQ(image.pixels(), before);
}

TEST(BoundSegments, ChecksInOrder) {
    expectOrder<uint8_t>(okpiBoundSegments_8u_C1IR);
    expectOrder<uint16_t>(okpiBoundSegments_16u_C1IR);
}

}  // namespace
}  // namespace okpcv::test
