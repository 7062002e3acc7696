// Window standard deviations against their scalar definition, bit by bit.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cmath>
#include <cstring>

#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class S, class Q, class D>
using RectStdDev =
    std::function<okpStatus(const S*, int32_t, const Q*, int32_t, D*, int32_t, RoiSize, PixelRect)>;

// ((D - B) - C) + A; integers wrap.
template <class T>
T windowSum(const GuardedImage<T>& image, int x, int y, PixelRect r) {
    const T a = image.at(x + r.x, y + r.y);
    const T b = image.at(x + r.x + r.width, y + r.y);
    const T c = image.at(x + r.x, y + r.y + r.height);
    const T d = image.at(x + r.x + r.width, y + r.y + r.height);
    if constexpr (std::is_same_v<T, int32_t>) {
        const auto u = [](int32_t v) { return static_cast<uint32_t>(v); };
        return static_cast<int32_t>(u(d) - u(b) - u(c) + u(a));
    } else {
        return d - b - c + a;
    }
}

template <class S>
float definition(const GuardedImage<S>& sum, const GuardedImage<double>& sqr, int x, int y, PixelRect r) {
    const double k = 1.0 / static_cast<double>(static_cast<float>(r.width * r.height));
    const double m = static_cast<double>(windowSum(sum, x, y, r)) * k;
    const double u = windowSum(sqr, x, y, r) * k;
    const auto v = static_cast<float>(u - m * m);
    return v > 0.0F ? std::sqrt(v) : 0.0F;
}

int32_t scaledDefinition(const GuardedImage<int32_t>& sum, const GuardedImage<int32_t>& sqr, int x, int y,
                         PixelRect r, int scaleFactor) {
    const float reciprocal = 1.0F / static_cast<float>(r.width * r.height);
    const float m = static_cast<float>(windowSum(sum, x, y, r)) * reciprocal;
    const float v = static_cast<float>(windowSum(sqr, x, y, r)) * reciprocal - m * m;
    const double scaled = std::sqrt(double{v < 0.0F ? 0.0F : v}) * std::ldexp(1.0, -scaleFactor) + 0.5;
    return scaled < 2147483647.0 ? static_cast<int32_t>(scaled) : INT32_MAX;
}

// Windows of several shapes over destinations of widths up to several vectors. fillSum and fillSqr give the
// elements of the integral images.
template <class S, class Q, class D, class FillSum, class FillSqr, class Expected>
void expectDefinition(const RectStdDev<S, Q, D>& f, FillSum fillSum, FillSqr fillSqr, Expected expected) {
    for (const PixelRect rect : {PixelRect{0, 0, 1, 1}, PixelRect{2, 1, 3, 5}, PixelRect{0, 3, 7, 2}}) {
        for (int width = 1; width <= 21; ++width) {
            const int height = 1 + width % 3;
            const int columns = width + rect.x + rect.width;
            const int rows = height + rect.y + rect.height;
            GuardedImage<S> sum(columns, rows, {.padding = 4 * (width % 3)});
            GuardedImage<Q> sqr(columns, rows, {.padding = 8 * (width % 2)});
            GuardedImage<D> dst(width, height, {.padding = 12});
            sum.fill(fillSum);
            sqr.fill(fillSqr);
            ASSERT_EQ(
                f(sum.data(), sum.step(), sqr.data(), sqr.step(), dst.data(), dst.step(), dst.roi(), rect),
                okpStatusOk);
            std::vector<D> want;
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) want.push_back(expected(sum, sqr, x, y, rect));
            }
            EXPECT_TRUE(sameBits(dst.pixels(), want)) << width << ", window " << rect.width;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

TEST(RectStdDev, EqualsItsDefinition) {
    Random random(51);
    // Any elements will do, and with some of them the variance is negative, infinite or NaN.
    const auto anyDouble = [&](int, int, int) { return double{random.special<float>()} * 1e3; };
    expectDefinition<float, double, float>(
        okpiRectStdDev_32f_C1R, [&](int, int, int) { return random.special<float>(); }, anyDouble,
        definition<float>);
    expectDefinition<int32_t, double, float>(
        okpiRectStdDev_32s32f_C1R, [&](int, int, int) { return random.special<int32_t>(); }, anyDouble,
        definition<int32_t>);
    const auto smooth = [&](int x, int y, int) { return x * y * 90 + random.integer(0, 400); };
    expectDefinition<float, double, float>(
        okpiRectStdDev_32f_C1R, smooth, [&](int x, int y, int) { return 1e5 * x * y; }, definition<float>);
}

TEST(RectStdDev, ScalesAndSaturates) {
    Random random(52);
    for (const int scaleFactor : {0, 1, -2, 7, -15, -31, -40, 31, 32, 2000, -2000, INT32_MAX, INT32_MIN}) {
        // An exponent that neither the definition nor the result needs exactly.
        const int bounded = std::max(-1000, std::min(scaleFactor, 1000));
        expectDefinition<int32_t, int32_t, int32_t>(
            [=](auto... arguments) { return okpiRectStdDev_32s_C1RSfs(arguments..., scaleFactor); },
            [&](int, int, int) { return random.special<int32_t>() >> random.integer(0, 28); },
            [&](int, int, int) { return random.special<int32_t>(); },
            [=](const auto& sum, const auto& sqr, int x, int y, PixelRect r) {
                return scaledDefinition(sum, sqr, x, y, r, bounded);
            });
    }
}

// From 2^24 pixels on the number of those in a window is rounded. Of the integral images of so large a window
// only the corners are looked at, so the pages between them need no memory.
TEST(RectStdDev, RoundsTheNumberOfPixels) {
    constexpr int32_t kSide = 4097;
    constexpr int32_t kCount = kSide * kSide, kRounded = kCount - 1;
    constexpr int32_t kStep = 8 * (kSide + 1);
    constexpr size_t kBytes = size_t{kStep} * (kSide + 1);
    const auto reserve = [] {
        return mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1,
                    0);
    };
    void* const sums = reserve();
    void* const squares = reserve();
    ASSERT_NE(sums, MAP_FAILED);
    ASSERT_NE(squares, MAP_FAILED);
    // Near the mean 100 and the variance 1, where a relative change of 2^-24 in the number can be seen.
    constexpr int32_t kSum = 100 * kCount;
    constexpr double kSquares = 10001.0 * kCount;
    std::memcpy(static_cast<char*>(sums) + kBytes - kStep + 4 * kSide, &kSum, sizeof kSum);
    std::memcpy(static_cast<char*>(squares) + kBytes - 8, &kSquares, sizeof kSquares);
    float deviation = -1;
    EXPECT_EQ(okpiRectStdDev_32s32f_C1R(static_cast<int32_t*>(sums), kStep, static_cast<double*>(squares),
                                        kStep, &deviation, 4, {1, 1}, {0, 0, kSide, kSide}),
              okpStatusOk);
    const double k = 1.0 / kRounded;
    EXPECT_EQ(deviation, std::sqrt(static_cast<float>(kSquares * k - kSum * k * (kSum * k))));
    EXPECT_NE(deviation, 1.0F);
    munmap(sums, kBytes);
    munmap(squares, kBytes);
}

// The integral images of an image, as their makers make them.
TEST(RectStdDev, OfAPicture) {
    constexpr int kWidth = 45;
    constexpr int kHeight = 30;
    Random random(53);
    GuardedImage<uint8_t> src(kWidth, kHeight);
    GuardedImage<float> sumF(kWidth + 1, kHeight + 1);
    GuardedImage<int32_t> sum(kWidth + 1, kHeight + 1), sqr(kWidth + 1, kHeight + 1);
    GuardedImage<double> sqrD(kWidth + 1, kHeight + 1);
    const PixelRect rect{1, 2, 5, 4};
    const RoiSize roi{kWidth - 6, kHeight - 6};
    GuardedImage<float> dst(roi.width, roi.height);
    GuardedImage<int32_t> scaled(roi.width, roi.height);
    for (const bool constant : {true, false}) {
        src.fill([&](int, int, int) { return constant ? 137 : random.value<uint8_t>(); });
        okpiSqrIntegral_8u32f64f_C1R(src.data(), src.step(), sumF.data(), sumF.step(), sqrD.data(),
                                     sqrD.step(), src.roi(), 7.0F, 9.0);
        ASSERT_EQ(okpiRectStdDev_32f_C1R(sumF.data(), sumF.step(), sqrD.data(), sqrD.step(), dst.data(),
                                         dst.step(), roi, rect),
                  okpStatusOk);
        okpiSqrIntegral_8u32s_C1R(src.data(), src.step(), sum.data(), sum.step(), sqr.data(), sqr.step(),
                                  src.roi(), -7, 9);
        ASSERT_EQ(okpiRectStdDev_32s_C1RSfs(sum.data(), sum.step(), sqr.data(), sqr.step(), scaled.data(),
                                            scaled.step(), roi, rect, -4),
                  okpStatusOk);
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                double mean = 0;
                double variance = 0;
                for (int i = 0; i < 20; ++i) mean += src.at(x + 1 + i % 5, y + 2 + i / 5) / 20.0;
                for (int i = 0; i < 20; ++i) {
                    const double d = src.at(x + 1 + i % 5, y + 2 + i / 5) - mean;
                    variance += d * d / 20.0;
                }
                EXPECT_NEAR(dst.at(x, y), constant ? 0.0 : std::sqrt(variance), constant ? 0.0 : 1e-4);
                EXPECT_NEAR(scaled.at(x, y), 16 * std::sqrt(variance), constant ? 2.0 : 0.6);
            }
        }
    }
}

struct Arguments {
    const void* src;
    int32_t srcStep;
    const void* sqr;
    int32_t sqrStep;
    void* dst;
    int32_t dstStep;
    RoiSize roi;
    PixelRect rect;
};

template <class S, class Q, class D, class Call>
void expectOrder(Call call) {
    const PixelRect rect{1, 2, 3, 4};
    GuardedImage<S> src(12, 9, {.padding = 8});
    GuardedImage<Q> sqr(12, 9, {.padding = 8});
    GuardedImage<D> dst(8, 3, {.padding = 8});
    const auto before = dst.pixels();
    const Arguments valid{src.data(), src.step(), sqr.data(), sqr.step(),
                          dst.data(), dst.step(), dst.roi(),  rect};
    constexpr int q = sizeof(Q);
    const std::vector<Fault<Arguments>> faults{
        {"null source", okpStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
        {"null squares", okpStatusNullPointer, [](Arguments& a) { a.sqr = nullptr; }},
        {"null destination", okpStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }},
        {"no width", okpStatusBadSize, [](Arguments& a) { a.roi.width = 0; }},
        {"negative height", okpStatusBadSize, [](Arguments& a) { a.roi.height = -3; }},
        {"huge window", okpStatusBadStep, [](Arguments& a) { a.rect.x = a.rect.width = INT32_MAX; }},
        {"short source", okpStatusBadStep, [](Arguments& a) { a.srcStep = 4 * 7; }},
        {"short squares", okpStatusBadStep, [](Arguments& a) { a.sqrStep = q * 7; }},
        {"short destination", okpStatusBadStep, [](Arguments& a) { a.dstStep = 4 * 8 - 4; }},
        {"odd squares", okpStatusStepNotMultiple, [](Arguments& a) { a.sqrStep = q * 12 + q / 2; }},
        {"odd destination", okpStatusStepNotMultiple, [](Arguments& a) { a.dstStep = 4 * 8 + 2; }},
        {"odd source", okpStatusStepNotMultiple, [](Arguments& a) { a.srcStep = 4 * 12 + 1; }},
        {"window to the left", okpStatusBadSize, [](Arguments& a) { a.rect.x = -1; }},
        {"window above", okpStatusBadSize, [](Arguments& a) { a.rect.y = -1; }},
        {"no window width", okpStatusBadSize, [](Arguments& a) { a.rect.width = 0; }},
        {"no window height", okpStatusBadSize, [](Arguments& a) { a.rect.height = -1; }}};
    const std::function<okpStatus(const Arguments&)> wrapped = [&](const Arguments& a) {
        return call(static_cast<const S*>(a.src), a.srcStep, static_cast<const Q*>(a.sqr), a.sqrStep,
                    static_cast<D*>(a.dst), a.dstStep, a.roi, a.rect);
    };
    expectStatusOrder<Arguments>(valid, wrapped, faults);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
    EXPECT_EQ(wrapped(valid), okpStatusOk);
}

TEST(RectStdDev, ChecksInOrder) {
    expectOrder<float, double, float>(okpiRectStdDev_32f_C1R);
    expectOrder<int32_t, double, float>(okpiRectStdDev_32s32f_C1R);
    expectOrder<int32_t, int32_t, int32_t>(
        [](auto... arguments) { return okpiRectStdDev_32s_C1RSfs(arguments..., 0); });
}

}  // namespace
}  // namespace okpcv::test
