// Integral images against the sequential rule that defines them, bit by bit.
#include <gtest/gtest.h>

#include <sys/mman.h>

#include <cmath>

#include "support/compare.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class D>
D plus(D a, D b) {
    if constexpr (std::is_same_v<D, int32_t>) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
    } else {
        return a + b;
    }
}

// The defining recurrence over the pixels' values, or their squares, one after another.
template <class D>
std::vector<D> definition(const GuardedImage<uint8_t>& src, D offset, bool squares) {
    const auto stride = static_cast<size_t>(src.width()) + 1;
    std::vector<D> dst(stride * (static_cast<size_t>(src.height()) + 1), offset);
    for (int y = 0; y < src.height(); ++y) {
        D* const row = dst.data() + stride * (static_cast<size_t>(y) + 1);
        D sum = 0;
        for (int x = 0; x < src.width(); ++x) {
            const int v = src.at(x, y);
            sum = plus(sum, static_cast<D>(squares ? v * v : v));
            row[x + 1] = plus(row[x + 1 - static_cast<ptrdiff_t>(stride)], sum);
        }
    }
    return dst;
}

template <class D>
using Integral = okpStatus(const uint8_t*, int32_t, D*, int32_t, RoiSize, D);
template <class D, class Q>
using SqrIntegral = okpStatus(const uint8_t*, int32_t, D*, int32_t, Q*, int32_t, RoiSize, D, Q);

template <class D>
void expectSums(Integral<D>* f, const GuardedImage<uint8_t>& src, D val) {
    GuardedImage<D> dst(src.width() + 1, src.height() + 1, {.padding = 8 * (src.width() % 3)});
    ASSERT_EQ(f(src.data(), src.step(), dst.data(), dst.step(), src.roi(), val), okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), definition(src, val, false))) << src.width() << "x" << src.height();
    EXPECT_TRUE(dst.paddingIntact());
}

template <class D, class Q>
void expectSquares(SqrIntegral<D, Q>* f, const GuardedImage<uint8_t>& src, D val, Q valSqr) {
    GuardedImage<D> dst(src.width() + 1, src.height() + 1, {.padding = 8 * (src.width() % 2)});
    GuardedImage<Q> sqr(src.width() + 1, src.height() + 1, {.padding = 8 * (src.width() % 3)});
    ASSERT_EQ(
        f(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), src.roi(), val, valSqr),
        okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), definition(src, val, false))) << src.width() << "x" << src.height();
    EXPECT_TRUE(sameBits(sqr.pixels(), definition(src, valSqr, true))) << src.width() << "x" << src.height();
    EXPECT_TRUE(dst.paddingIntact());
    EXPECT_TRUE(sqr.paddingIntact());
}

TEST(Integral, EqualsTheSequentialRule) {
    Random random(41);
    for (int width = 1; width <= 160; width += width < 40 ? 1 : 7) {
        const auto at = width % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start;
        GuardedImage<uint8_t> src(width, 1 + width % 6, {.padding = width % 3, .at = at});
        src.fill([&](int, int, int) { return random.special<uint8_t>(); });
        // Offsets that round, that make sums wrap, and that are not finite.
        for (const float val : {0.0F, -7.3F, 1e-3F, 3e8F, INFINITY}) {
            expectSums<float>(okpiIntegral_8u32f_C1R, src, val);
            expectSquares<float, double>(okpiSqrIntegral_8u32f64f_C1R, src, val, 1e15 + 0.125);
        }
        for (const int32_t val : {0, 5, -1000, INT32_MAX, INT32_MIN}) {
            expectSums<int32_t>(okpiIntegral_8u32s_C1R, src, val);
            expectSquares<int32_t, int32_t>(okpiSqrIntegral_8u32s_C1R, src, val, INT32_MAX - 100000);
            expectSquares<int32_t, double>(okpiSqrIntegral_8u32s64f_C1R, src, val, val + 0.1);
        }
    }
}

TEST(Integral, EqualsTheSequentialRuleWhereSumsWrapOrRound) {
    // Wide enough that a row's sum exceeds 2^24 and its sum of squares 2^32.
    GuardedImage<uint8_t> src(70001, 3);
    Random random(42);
    src.fill([&](int, int, int) { return 255 - random.integer(0, 3) / 3; });
    expectSums<float>(okpiIntegral_8u32f_C1R, src, 0.0F);
    expectSums<int32_t>(okpiIntegral_8u32s_C1R, src, INT32_MAX - 20000000);
    expectSquares<int32_t, int32_t>(okpiSqrIntegral_8u32s_C1R, src, 0, 0);
    expectSquares<int32_t, double>(okpiSqrIntegral_8u32s64f_C1R, src, 0, 0.5);
    expectSquares<float, double>(okpiSqrIntegral_8u32f64f_C1R, src, 0.5F, 0.0);
}

TEST(Integral, GivesTheSameBitsAtEveryAlignment) {
    constexpr int kWidth = 139;
    constexpr int kHeight = 3;
    Random random(45);
    GuardedImage<uint8_t> src(kWidth, kHeight);
    src.fill([&](int, int, int) { return random.value<uint8_t>(); });
    const std::vector<float> sums = definition(src, 0.25F, false);
    const std::vector<double> squares = definition(src, 0.1, true);
    for (const int step : {8 * (kWidth + 1), 8 * (kWidth + 2)}) {
        for (int shift = 0; shift < 16; ++shift) {
            std::vector<char> dst(static_cast<size_t>(step) * (kHeight + 1) + 16);
            std::vector<char> sqr(dst.size());
            char* const at = dst.data() + shift;
            char* const sqrAt = sqr.data() + shift * 5 % 16;
            ASSERT_EQ(
                okpiSqrIntegral_8u32f64f_C1R(src.data(), src.step(), reinterpret_cast<float*>(at), step,
                                             reinterpret_cast<double*>(sqrAt), step, src.roi(), 0.25F, 0.1),
                okpStatusOk);
            for (size_t y = 0; y <= kHeight; ++y) {
                constexpr size_t n = kWidth + 1;
                const auto offset = static_cast<ptrdiff_t>(y) * step;
                EXPECT_EQ(std::memcmp(at + offset, sums.data() + y * n, n * sizeof(float)), 0) << shift;
                EXPECT_EQ(std::memcmp(sqrAt + offset, squares.data() + y * n, n * sizeof(double)), 0)
                    << shift;
            }
        }
    }
}

TEST(Integral, OfConstantImages) {
    std::vector<int32_t> dst(65 * 65);
    std::vector<double> sqr(65 * 65);
    const std::vector<uint8_t> src(64 * 64, 255);
    ASSERT_EQ(okpiSqrIntegral_8u32s64f_C1R(src.data(), 64, dst.data(), 260, sqr.data(), 520, {64, 64}, 0, 0),
              okpStatusOk);
    EXPECT_EQ(dst.back(), 1044480);
    EXPECT_EQ(sqr.back(), 266342400.0);
    ASSERT_EQ(okpiIntegral_8u32s_C1R(src.data(), 1, dst.data(), 8, {1, 1}, 5), okpStatusOk);
    EXPECT_EQ(std::vector<int32_t>(dst.begin(), dst.begin() + 4), (std::vector<int32_t>{5, 5, 5, 260}));
}

// The documented order: groups of four from the left.
std::vector<float> definition(const GuardedImage<float>& src) {
    const auto stride = static_cast<size_t>(src.width()) + 1;
    std::vector<float> dst(stride * (static_cast<size_t>(src.height()) + 1), 0.0F);
    for (int y = 0; y < src.height(); ++y) {
        float* const row = dst.data() + stride * (static_cast<size_t>(y) + 1);
        const auto pixel = [&](int x) { return x < src.width() ? src.at(x, y) : 0.0F; };
        float carry = 0;
        for (int x = 0; x < src.width(); x += 4) {
            const float a[4] = {pixel(x), pixel(x + 1), pixel(x + 2), pixel(x + 3)};
            const float sums[4] = {sum(a[0], 0.0F), sum(a[0], a[1]), sum(a[0], sum(a[1], a[2])),
                                   sum(sum(a[0], a[1]), sum(a[2], a[3]))};
            for (int i = 0; i < 4 && x + i < src.width(); ++i) {
                const float above = row[x + i + 1 - static_cast<ptrdiff_t>(stride)];
                row[x + i + 1] = sum(above, sum(carry, sums[i]));
            }
            carry = sum(carry, sums[3]);
        }
    }
    return dst;
}

TEST(Integral, OfFloatsAddsInTheDocumentedOrder) {
    Random random(43);
    for (int width = 1; width <= 90; width += width < 30 ? 1 : 5) {
        const auto at = width % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start;
        GuardedImage<float> src(width, 1 + width % 5, {.padding = 4 * (width % 3), .at = at});
        const bool special = width % 3 == 0;
        src.fill([&](int, int, int) { return special ? random.special<float>() : random.value<float>(); });
        GuardedImage<float> dst(width + 1, src.height() + 1, {.padding = 4 * (width % 2), .at = at});
        ASSERT_EQ(okpiIntegral_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi()),
                  okpStatusOk);
        EXPECT_TRUE(sameBits(dst.pixels(), definition(src))) << width;
        EXPECT_TRUE(dst.paddingIntact());
    }
}

// Rows that share memory hold what writing sum and square of place after place leaves there.
TEST(SqrIntegral, WritesOverlappingDestinationsPlaceByPlace) {
    constexpr int kWidth = 37;
    constexpr int kHeight = 3;
    constexpr int kStep = 4 * (2 * kWidth + 10);
    Random random(44);
    GuardedImage<uint8_t> src(kWidth, kHeight);
    src.fill([&](int, int, int) { return random.value<uint8_t>(); });
    for (const int distance : {-20, -1, 0, 1, 5, 16, 37}) {
        const auto buffer = [] { return std::vector<int32_t>(kStep / 4 * (kHeight + 2), -1); };
        const auto element = [](std::vector<int32_t>& memory, int x, int y) -> int32_t& {
            return memory[static_cast<size_t>(30 + x + y * (kStep / 4))];
        };
        std::vector<int32_t> expected = buffer();
        for (int y = 0; y <= kHeight; ++y) {
            int32_t sum = 0;
            int32_t squares = 0;
            for (int x = 0; x <= kWidth; ++x) {
                const bool edge = x == 0 || y == 0;
                const int v = edge ? 0 : src.at(x - 1, y - 1);
                sum += v;
                squares += v * v;
                element(expected, x, y) = edge ? 3 : element(expected, x, y - 1) + sum;
                element(expected, x + distance, y) =
                    edge ? 4 : element(expected, x + distance, y - 1) + squares;
            }
        }
        std::vector<int32_t> actual = buffer();
        ASSERT_EQ(okpiSqrIntegral_8u32s_C1R(src.data(), src.step(), &element(actual, 0, 0), kStep,
                                            &element(actual, distance, 0), kStep, src.roi(), 3, 4),
                  okpStatusOk);
        EXPECT_EQ(actual, expected) << distance;
    }
}

TEST(Integral, ReachesRowsBeyond32Bits) {
    constexpr int32_t kStep = 1 << 30;
    constexpr size_t kBytes = size_t{6} * kStep;
    void* const memory =
        mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const dst = static_cast<char*>(memory);
    const std::vector<uint8_t> src(5 * 20, 1);
    ASSERT_EQ(okpiIntegral_8u32s_C1R(src.data(), 20, reinterpret_cast<int32_t*>(dst), kStep, {20, 5}, 0),
              okpStatusOk);
    for (int64_t y = 0; y <= 5; ++y) {
        EXPECT_EQ(*reinterpret_cast<int32_t*>(dst + y * kStep + 80), 20 * y);
    }
    munmap(memory, kBytes);
}

// One argument set serves all forms; those without squares leave theirs out.
struct Arguments {
    void* src;
    int32_t srcStep;
    void* dst;
    int32_t dstStep;
    void* sqr;
    int32_t sqrStep;
    RoiSize roi;
};

template <class S, class D, class Q>
void expectOrder(const std::function<okpStatus(const Arguments&)>& call, bool squares) {
    constexpr int kWidth = 8;
    GuardedImage<S> src(kWidth, 2, {.padding = 8});
    GuardedImage<D> dst(kWidth + 1, 3, {.padding = 8});
    GuardedImage<Q> sqr(kWidth + 1, 3, {.padding = 8});
    const auto before = dst.pixels();
    const auto sqrBefore = sqr.pixels();
    const Arguments valid{src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), src.roi()};
    using Faults = std::vector<Fault<Arguments>>;
    constexpr int d = sizeof(D) * (kWidth + 1);
    constexpr int q = sizeof(Q) * (kWidth + 1);
    Faults faults{{"null source", okpStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
                  {"null destination", okpStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }}};
    if (squares)
        faults.push_back({"null squares", okpStatusNullPointer, [](Arguments& a) { a.sqr = nullptr; }});
    faults.push_back({"no height", okpStatusBadSize, [](Arguments& a) { a.roi.height = 0; }});
    faults.push_back({"negative width", okpStatusBadSize, [](Arguments& a) { a.roi.width = -1; }});
    // The width plus one, and its bytes, exceed 32 bits.
    faults.push_back({"huge width", okpStatusBadStep, [](Arguments& a) {
                          a.roi.width = INT32_MAX;
                          a.srcStep = INT32_MAX;
                      }});
    faults.push_back({"short source", okpStatusBadStep,
                      [](Arguments& a) { a.srcStep = static_cast<int>(sizeof(S)) * kWidth - 1; }});
    faults.push_back({"short destination", okpStatusBadStep, [](Arguments& a) { a.dstStep = d - 4; }});
    if (squares) {
        faults.push_back({"short squares", okpStatusBadStep,
                          [](Arguments& a) { a.sqrStep = q - static_cast<int>(sizeof(Q)); }});
    }
    if (sizeof(S) > 1)
        faults.push_back({"odd source", okpStatusStepNotMultiple, [](Arguments& a) { a.srcStep += 2; }});
    faults.push_back({"odd destination", okpStatusStepNotMultiple, [](Arguments& a) { a.dstStep = d + 2; }});
    if (squares) {
        faults.push_back({"odd squares", okpStatusStepNotMultiple,
                          [](Arguments& a) { a.sqrStep = q + static_cast<int>(sizeof(Q)) / 2; }});
    }
    expectStatusOrder<Arguments>(valid, call, faults);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
    EXPECT_TRUE(sameBits(sqr.pixels(), sqrBefore));
}

TEST(Integral, ChecksInOrder) {
    const auto sums = [](auto f, auto val) {
        using D = decltype(val);
        return [=](const Arguments& a) {
            return f(static_cast<const uint8_t*>(a.src), a.srcStep, static_cast<D*>(a.dst), a.dstStep, a.roi,
                     val);
        };
    };
    const auto squares = [](auto f, auto val, auto valSqr) {
        using D = decltype(val);
        using Q = decltype(valSqr);
        return [=](const Arguments& a) {
            return f(static_cast<const uint8_t*>(a.src), a.srcStep, static_cast<D*>(a.dst), a.dstStep,
                     static_cast<Q*>(a.sqr), a.sqrStep, a.roi, val, valSqr);
        };
    };
    expectOrder<uint8_t, int32_t, int32_t>(sums(okpiIntegral_8u32s_C1R, 0), false);
    expectOrder<uint8_t, float, float>(sums(okpiIntegral_8u32f_C1R, 0.0F), false);
    expectOrder<float, float, float>(
        [](const Arguments& a) {
            return okpiIntegral_32f_C1R(static_cast<const float*>(a.src), a.srcStep,
                                        static_cast<float*>(a.dst), a.dstStep, a.roi);
        },
        false);
    expectOrder<uint8_t, int32_t, int32_t>(squares(okpiSqrIntegral_8u32s_C1R, 0, 0), true);
    expectOrder<uint8_t, int32_t, double>(squares(okpiSqrIntegral_8u32s64f_C1R, 0, 0.0), true);
    expectOrder<uint8_t, float, double>(squares(okpiSqrIntegral_8u32f64f_C1R, 0.0F, 0.0), true);
}

}  // namespace
}  // namespace okpcv::test
