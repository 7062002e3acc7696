// Calls that run at the same time: they share specs that a call only reads, and the companion's answer. The
// results are those of one thread; the thread sanitizer looks for races.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <thread>
#include <vector>

#include "okpcore.h"
#include "okpcv.hpp"
#include "support/random.h"

namespace {

using namespace okpcv;

constexpr RoiSize kSize{61, 17};
constexpr size_t kPixels = size_t{61} * 17;
constexpr int kThreads = 4;

template <class T>
std::vector<T> randomPixels() {
    test::Random random(1);
    std::vector<T> pixels(kPixels);
    for (T& pixel : pixels) pixel = random.value<T>();
    return pixels;
}

template <class Work>
void together(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

// Each thread has a buffer and a destination of its own.
template <class T, class D, class Shared>
void expectSame(const Shared& shared, auto call) {
    const auto src = randomPixels<T>();
    const ImageView<const T> source(src, kSize);
    std::vector<D> alone(kPixels);
    call(shared, source, ImageView<D>(alone, kSize), shared.makeBuffer()).orThrow();
    together([&] {
        const Buffer buffer = shared.makeBuffer();
        for (int repeat = 0; repeat < 5; ++repeat) {
            std::vector<D> result(kPixels);
            EXPECT_TRUE(call(shared, source, ImageView<D>(result, kSize), buffer));
            EXPECT_EQ(result, alone);
        }
    });
}

TEST(SharedSpec, OfASeparableFilter) {
    const auto call = [](const auto& filter, auto src, auto dst, const Buffer& buffer) {
        return filter(src, dst, BorderMirror, 0, buffer);
    };
    const std::array<float, 5> kernel{0.1F, 0.2F, 0.4F, 0.2F, 0.1F};
    expectSame<float, float>(SeparableFilter<float>::create(kSize, kernel, kernel).orThrow(), call);
    const std::array<int16_t, 3> integers{1, 2, 1};
    expectSame<uint8_t, uint8_t>(SeparableFilter<uint8_t>::create(kSize, integers, integers, 4).orThrow(),
                                 call);
    expectSame<uint8_t, int16_t>(
        SeparableFilter<uint8_t, int16_t>::create(kSize, integers, integers, 4).orThrow(), call);
}

TEST(SharedSpec, OfAGaussianFilter) {
    const auto call = [](const auto& filter, auto src, auto dst, const Buffer& buffer) {
        return filter(src, dst, BorderReplicate, 0, buffer);
    };
    expectSame<float, float>(GaussianFilter<float>::create(kSize, 5, 1.4F).orThrow(), call);
    expectSame<uint8_t, uint8_t>(GaussianFilter<uint8_t>::create(kSize, 7, 2.0F).orThrow(), call);
}

TEST(SharedSpec, OfAMask) {
    const std::array<uint8_t, 9> cross{0, 1, 0, 1, 1, 1, 0, 1, 0};
    const auto dilate = [](const auto& mask, auto src, auto dst, const Buffer& buffer) {
        return mask.dilate(src, dst, BorderReplicate, 0, buffer);
    };
    expectSame<uint8_t, uint8_t>(Morphology<uint8_t>::create(kSize, cross, {3, 3}).orThrow(), dilate);
    expectSame<float, float>(Morphology<float>::rectangle(kSize, {7, 5}).orThrow(),
                             [](const auto& mask, auto src, auto dst, const Buffer& buffer) {
                                 return mask.erode(src, dst, BorderMirror, 0, buffer);
                             });
}

TEST(CacheQuery, AnswersAllThreadsAlike) {
    together([] {
        int32_t first = 0, second = 0;
        EXPECT_EQ(okpGetMaxCacheSizeB(&first), okpStatusOk);
        EXPECT_EQ(okpGetMaxCacheSizeB(&second), okpStatusOk);
        EXPECT_EQ(first, second);
    });
}

}  // namespace
