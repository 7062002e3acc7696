// Canny edges against a scalar reading of the rules, in buffers of exactly the size that the query gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/border.h"
#include "support/cache_stand_in.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

struct Limits {
    float low, high;
};

// The rules with magnitudes of type M (int64_t for integer derivatives, float for float ones).
template <class M, class T>
std::vector<uint8_t> edgesOf(const std::vector<T>& dx, const std::vector<T>& dy, int width, int height,
                             Limits limits, bool squared) {
    if (squared) limits = {limits.low * limits.low, limits.high * limits.high};
    const auto at = [&](int x, int y) {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    };
    const auto isInside = [&](int x, int y) { return x >= 0 && y >= 0 && x < width && y < height; };

    std::vector<M> magnitudes(dx.size());
    for (size_t i = 0; i < dx.size(); ++i) {
        const M a = dx[i];
        const M b = dy[i];
        const M m = squared ? a * a + b * b : std::abs(a) + std::abs(b);
        const bool passes = std::is_same_v<M, float> ? m >= limits.low : m > std::trunc(double{limits.low});
        magnitudes[i] = passes ? m : M(0);
    }
    const auto magnitude = [&](int x, int y) { return isInside(x, y) ? magnitudes[at(x, y)] : M(0); };

    std::vector<uint8_t> candidates(dx.size());
    std::vector<uint8_t> edges(dx.size());
    std::vector<std::pair<int, int>> stack;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const M m = magnitude(x, y);
            if (m == 0) continue;
            const auto ax = static_cast<float>(std::abs(static_cast<double>(dx[at(x, y)])));
            const auto ay = static_cast<float>(std::abs(static_cast<double>(dy[at(x, y)])));
            int stepX = 1;
            int stepY = 1;
            bool straight = true;
            if (ay > static_cast<float>(ax * 2.414213562373095)) {
                stepX = 0;
            } else if (static_cast<float>(ax * 0.41421356237309503) > ay) {
                stepY = 0;
            } else {
                straight = false;
                if ((dx[at(x, y)] < 0) != (dy[at(x, y)] < 0)) stepX = -1;
            }
            const M before = magnitude(x - stepX, y - stepY);
            const M after = magnitude(x + stepX, y + stepY);
            if (!(m > before && (m > after || (straight && m == after)))) continue;
            candidates[at(x, y)] = 1;
            if (static_cast<float>(m) > limits.high) {
                edges[at(x, y)] = 255;
                stack.emplace_back(x, y);
            }
        }
    }
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        for (int v = y - 1; v <= y + 1; ++v) {
            for (int u = x - 1; u <= x + 1; ++u) {
                if (!isInside(u, v) || candidates[at(u, v)] == 0 || edges[at(u, v)] != 0) continue;
                edges[at(u, v)] = 255;
                stack.emplace_back(u, v);
            }
        }
    }
    return edges;
}

template <class T>
struct Arguments {
    const T* dx;
    int64_t dxStep;
    const T* dy;
    int64_t dyStep;
    uint8_t* dst;
    int64_t dstStep;
    RoiSizeL roi;
    float low, high;
    NormKind norm;
    uint8_t* buffer;
};

template <class T>
okpStatus canny(const Arguments<T>& a) {
    const RoiSize roi{static_cast<int32_t>(a.roi.width), static_cast<int32_t>(a.roi.height)};
    const auto dxStep = static_cast<int32_t>(a.dxStep);
    const auto dyStep = static_cast<int32_t>(a.dyStep);
    const auto dstStep = static_cast<int32_t>(a.dstStep);
    if constexpr (std::is_same_v<T, float>) {
        return okpiCanny_32f8u_C1R(a.dx, dxStep, a.dy, dyStep, a.dst, dstStep, roi, a.low, a.high, a.buffer);
    } else {
        return okpiCanny_16s8u_C1R(a.dx, dxStep, a.dy, dyStep, a.dst, dstStep, roi, a.low, a.high, a.buffer);
    }
}
template <class T>
okpStatus cannyL(const Arguments<T>& a) {
    if constexpr (std::is_same_v<T, float>) {
        return okpiCanny_32f8u_C1R_L(a.dx, a.dxStep, a.dy, a.dyStep, a.dst, a.dstStep, a.roi, a.low, a.high,
                                     a.norm, a.buffer);
    } else {
        return okpiCanny_16s8u_C1R_L(a.dx, a.dxStep, a.dy, a.dyStep, a.dst, a.dstStep, a.roi, a.low, a.high,
                                     a.norm, a.buffer);
    }
}

template <class T>
struct CannyTest : testing::Test {
    Random random{61};
    using M = std::conditional_t<std::is_same_v<T, float>, float, int64_t>;

    // Derivatives of the kinds that matter: smooth hills, few levels (ties), any value, short walks between
    // long stretches of nothing, the extreme value.
    std::vector<T> draw(int kind, size_t count) {
        std::vector<T> values(count);
        T walk{};
        for (T& v : values) {
            switch (kind) {
                case 0:
                    v = walk = static_cast<T>(walk + random.integer(-20, 20));
                    break;
                case 1:
                    v = static_cast<T>(random.integer(-2, 2));
                    break;
                case 2:
                    v = random.special<T>();
                    break;
                case 3:
                    if (walk != T(0) && random.chance(0.1)) walk = T(0);
                    if (walk == T(0) && random.chance(0.98)) break;
                    walk = static_cast<T>(walk + random.integer(-300, 300));
                    v = walk;
                    break;
                default:
                    v = random.chance(0.5) ? std::numeric_limits<T>::lowest()
                                           : static_cast<T>(random.integer(-9, 9));
            }
        }
        return values;
    }
};
using DerivativeTypes = testing::Types<int16_t, float>;
TYPED_TEST_SUITE(CannyTest, DerivativeTypes);

TYPED_TEST(CannyTest, FollowsTheRules) {
    using T = TypeParam;
    const Limits limits[] = {{0, 0},       {0.5F, NAN},      {1, 65535.5F},  {2, 2},
                             {3, 200},     {3, NAN},         {10.7F, 30},    {99.5F, INFINITY},
                             {1e3F, 4e4F}, {65534.5, 65535}, {65535, 65535}, {2e9F, 3e9F},
                             {3e9F, 4e9F}, {0, INFINITY},    {NAN, 5},       {INFINITY, INFINITY}};
    for (int round = 0; round < 600; ++round) {
        // Some rows are longer than the 1024 pixels that are looked through together.
        const int width = this->random.chance(0.05)
                              ? 1024 * this->random.integer(0, 1) + this->random.integer(240, 400)
                              : this->random.integer(1, 40);
        const int height = this->random.integer(1, 12);
        const auto count = static_cast<size_t>(width * height);
        const int kind = round % 5;
        const std::vector<T> dx = this->draw(kind, count);
        const std::vector<T> dy = this->draw(kind, count);
        GuardedImage<T> dxImage(width, height, {.padding = 4});
        GuardedImage<T> dyImage(width, height, {.padding = 8 * (round % 2), .at = GuardedMemory::At::Start});
        dxImage.setPixels(dx);
        dyImage.setPixels(dy);
        const Limits limit = limits[this->random.integer(0, int{std::size(limits)} - 1)];
        for (const NormKind norm : {NormL1, NormL2}) {
            SCOPED_TRACE(testing::Message() << width << 'x' << height << " kind " << kind << " thresholds "
                                            << limit.low << ' ' << limit.high << " norm " << norm);
            int64_t bytes = 0;
            ASSERT_EQ(okpiCannyGetSize_L({width, height}, &bytes), okpStatusOk);
            GuardedMemory buffer(static_cast<size_t>(bytes), this->random.chance(0.5)
                                                                 ? GuardedMemory::At::End
                                                                 : GuardedMemory::At::Start);
            // Nothing depends on what the buffer holds.
            std::memset(buffer.data(), 0xA5, static_cast<size_t>(bytes));
            GuardedImage<uint8_t> dst(width, height, {.padding = 3});
            const Arguments<T> a{dxImage.data(),
                                 dxImage.step(),
                                 dyImage.data(),
                                 dyImage.step(),
                                 dst.data(),
                                 dst.step(),
                                 {width, height},
                                 limit.low,
                                 limit.high,
                                 norm,
                                 reinterpret_cast<uint8_t*>(buffer.data())};
            const auto expected =
                edgesOf<typename TestFixture::M>(dx, dy, width, height, limit, norm == NormL2);
            ASSERT_EQ(cannyL(a), okpStatusOk);
            ASSERT_EQ(dst.pixels(), expected);
            EXPECT_TRUE(dst.paddingIntact());
            if (norm == NormL1) {
                ASSERT_EQ(canny(a), okpStatusOk);
                ASSERT_EQ(dst.pixels(), expected);
            }
        }
    }
}

TYPED_TEST(CannyTest, ChecksInOrder) {
    using T = TypeParam;
    using A = Arguments<T>;
    constexpr auto size = static_cast<int>(sizeof(T));
    GuardedImage<T> dx(6, 4, {.padding = 8});
    GuardedImage<uint8_t> dst(6, 4, {.padding = 8});
    dst.fill([](int, int, int) { return 9; });
    std::vector<uint8_t> buffer(2000);
    const A valid{dx.data(), dx.step(), dx.data(), dx.step(), dst.data(),   dst.step(),
                  {6, 4},    1,         2,         NormL1,    buffer.data()};
    const std::vector<Fault<A>> pointers{
        {"null dx", okpStatusNullPointer, [](A& a) { a.dx = nullptr; }},
        {"null dy", okpStatusNullPointer, [](A& a) { a.dy = nullptr; }},
        {"null edges", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }}};
    const int64_t large = int64_t{INT32_MAX} + 1;
    const std::vector<Fault<A>> tooLarge{
        {"large width", okpStatusSizeTooLarge, [=](A& a) { a.roi.width = large; }},
        {"large height", okpStatusSizeTooLarge, [=](A& a) { a.roi.height = large; }},
        {"large dx step", okpStatusSizeTooLarge, [=](A& a) { a.dxStep = large; }},
        {"large dy step", okpStatusSizeTooLarge, [=](A& a) { a.dyStep = large; }},
        {"large edge step", okpStatusSizeTooLarge, [=](A& a) { a.dstStep = large; }}};
    const std::vector<Fault<A>> common{
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
        {"short dx", okpStatusBadStep, [=](A& a) { a.dxStep = 6 * size - 1; }},
        {"short dy", okpStatusBadStep, [=](A& a) { a.dyStep = 6 * size - 1; }},
        {"short edges", okpStatusBadStep, [](A& a) { a.dstStep = 5; }},
        {"odd dx", okpStatusStepNotMultiple, [=](A& a) { a.dxStep = 6 * size + 1; }},
        {"odd dy", okpStatusStepNotMultiple, [=](A& a) { a.dyStep = 6 * size + 1; }},
        {"low above high", okpStatusBadArgument, [](A& a) { a.low = 3; }}};
    std::vector<Fault<A>> faults = pointers;
    faults.insert(faults.end(), common.begin(), common.end());
    expectStatusOrder<A>(valid, canny<T>, faults);
    faults = pointers;
    faults.insert(faults.end(), tooLarge.begin(), tooLarge.end());
    faults.insert(faults.end(), common.begin(), common.end());
    faults.push_back({"unknown norm", okpStatusBadNorm, [](A& a) { a.norm = NormInf; }});
    expectStatusOrder<A>(valid, cannyL<T>, faults);
    EXPECT_EQ(dst.pixels(), std::vector<uint8_t>(24, 9));

    // Negative thresholds are refused, but squares are not negative.
    A negative = valid;
    negative.low = -1;
    EXPECT_EQ(canny(negative), okpStatusBadArgument);
    EXPECT_EQ(cannyL(negative), okpStatusBadArgument);
    negative.norm = NormL2;
    EXPECT_EQ(cannyL(negative), okpStatusOk);
}

// Other arithmetic stands in for double-precision products when the derivatives are integers: all of them,
// with the other derivative at every place where the decision could turn.
TEST(Canny, DirectionsOfAllIntegers) {
    constexpr int kWidth = 3;
    std::vector<int16_t> dx(9);
    std::vector<int16_t> dy(9);
    std::vector<uint8_t> dst(9);
    std::vector<uint8_t> buffer(1000);
    // Whether a centre survives two opposite neighbours that are larger, all others being smaller.
    const auto survives = [&](int x, int y, size_t neighbour) {
        dx.assign(9, 0);
        dy.assign(9, 0);
        dx[4] = static_cast<int16_t>(x);
        dy[4] = static_cast<int16_t>(y);
        // In halves, which are not larger than the larger of the centre's derivatives by more than one. Two
        // extreme derivatives have the largest sum there is.
        const int larger = std::min(std::abs(x) + std::abs(y) + 1, 65536);
        for (const size_t i : {neighbour, 8 - neighbour}) {
            dx[i] = static_cast<int16_t>(-(larger / 2));
            dy[i] = static_cast<int16_t>(-(larger - larger / 2));
        }
        okpiCanny_16s8u_C1R(dx.data(), 2 * kWidth, dy.data(), 2 * kWidth, dst.data(), kWidth, {3, 3}, 0, 0,
                            buffer.data());
        return dst[4] == 255;
    };
    for (int ax = 1; ax <= 32768; ++ax) {
        const auto steep = static_cast<float>(ax * 2.414213562373095);
        const auto flat = static_cast<float>(ax * 0.41421356237309503);
        for (const int ay : {static_cast<int>(steep), static_cast<int>(steep) + 1}) {
            if (ay > 32768) continue;
            ASSERT_EQ(survives(-ax, -ay, 1), !(static_cast<float>(ay) > steep)) << ax << ' ' << ay;
        }
        for (const int ay : {static_cast<int>(flat), static_cast<int>(flat) + 1}) {
            ASSERT_EQ(survives(-ax, -ay, 3), !(flat > static_cast<float>(ay))) << ax << ' ' << ay;
        }
    }
}

// A derivative kernel as a plain correlation.
std::vector<int16_t> derivative(const GuardedImage<uint8_t>& src, const std::vector<int>& row,
                                const std::vector<int>& column, BorderKind border, int value) {
    const int reach = static_cast<int>(row.size()) / 2;
    std::vector<int16_t> result;
    for (int y = 0; y < src.height(); ++y) {
        for (int x = 0; x < src.width(); ++x) {
            int sum = 0;
            for (int j = -reach; j <= reach; ++j) {
                for (int i = -reach; i <= reach; ++i) {
                    const int64_t u = Border(border).column(x + i, src.width());
                    const int64_t v = Border(border).row(y + j, src.height());
                    const int pixel = u == Border::kValue || v == Border::kValue
                                          ? value
                                          : src.at(static_cast<int>(u), static_cast<int>(v));
                    sum +=
                        row[static_cast<size_t>(i + reach)] * column[static_cast<size_t>(j + reach)] * pixel;
                }
            }
            result.push_back(static_cast<int16_t>(sum));
        }
    }
    return result;
}

TEST(CannyBorder, EqualsTheEdgesOfItsDerivatives) {
    struct Kernel {
        int32_t kind;
        MaskSizeCode mask;
        std::vector<int> smooth, derive;
    };
    const Kernel kernels[] = {{2, MaskSize3x3, {1, 2, 1}, {-1, 0, 1}},
                              {2, MaskSize5x5, {1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}},
                              {5, MaskSize3x3, {3, 10, 3}, {-1, 0, 1}}};
    Random random(62);
    for (int round = 0; round < 600; ++round) {
        const Kernel& kernel = kernels[round % 3];
        const int width = random.integer(1, 36);
        const int height = random.integer(1, 9);
        BorderKind border = BorderInMemory;
        if (round % 7 != 0) {
            border = (round % 2 == 0 ? BorderReplicate : BorderConstant) |
                     static_cast<BorderKind>(random.integer(0, 15) << 4);
        }
        const int reach = kernel.mask == MaskSize3x3 ? 1 : 2;
        const Border sides(border);
        GuardedImage<uint8_t> src(width, height,
                                  {.padding = round % 5,
                                   .left = sides.leftInMemory() ? reach : 0,
                                   .top = sides.topInMemory() ? reach : 0,
                                   .right = sides.rightInMemory() ? reach : 0,
                                   .bottom = sides.bottomInMemory() ? reach : 0});
        const bool smooth = random.chance(0.5);
        src.fill([&](int x, int y, int) {
            return smooth ? 128 + static_cast<int>(60 * std::sin(0.4 * x + 0.1 * y * y))
                          : random.value<uint8_t>();
        });
        const uint8_t value = random.value<uint8_t>();
        const NormKind norm = random.chance(0.5) ? NormL1 : NormL2;
        const Limits limits{random.real(0, 300), random.real(300, 900)};
        int32_t bytes = 0;
        ASSERT_EQ(okpiCannyBorderGetSize({width, height}, kernel.kind, kernel.mask, DataType8u, &bytes),
                  okpStatusOk);
        GuardedMemory buffer(static_cast<size_t>(bytes),
                             round % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start);
        std::memset(buffer.data(), 0xA5, static_cast<size_t>(bytes));
        GuardedImage<uint8_t> dst(width, height, {.padding = 2});
        ASSERT_EQ(okpiCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                         kernel.kind, kernel.mask, border, value, limits.low, limits.high,
                                         norm, reinterpret_cast<uint8_t*>(buffer.data())),
                  okpStatusOk);
        const auto dx = derivative(src, kernel.derive, kernel.smooth, border, value);
        const auto dy = derivative(src, kernel.smooth, kernel.derive, border, value);
        ASSERT_EQ(dst.pixels(), (edgesOf<int64_t>(dx, dy, width, height, limits, norm == NormL2)))
            << width << 'x' << height << " border " << border << " kernel " << round % 3;
        EXPECT_TRUE(dst.paddingIntact());
    }
}

// One derivative of an image by the library's own filters: `xOrder` and `yOrder` are 1 and 0, or 0 and 1.
void sobel(const GuardedImage<uint8_t>& src, const GuardedImage<int16_t>& dst, int size, int xOrder,
           int yOrder, BorderKind border, uint8_t value) {
    int16_t row[5], column[5];
    EXPECT_EQ(okpiGenSobelKernel_16s(row, size, xOrder, 1), okpStatusOk);
    EXPECT_EQ(okpiGenSobelKernel_16s(column, size, yOrder, 1), okpStatusOk);
    int32_t specBytes = 0, bytes = 0;
    EXPECT_EQ(okpiFilterSeparableGetSpecSize({size, size}, DataType16s, 1, &specBytes), okpStatusOk);
    EXPECT_EQ(okpiFilterSeparableGetBufferSize(src.roi(), {size, size}, DataType8u, DataType16s, 1, &bytes),
              okpStatusOk);
    std::vector<char> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bytes));
    EXPECT_EQ(okpiFilterSeparableInit_16s(row, column, {size, size}, 1, 0, DataType8u, 1, spec.data()),
              okpStatusOk);
    EXPECT_EQ(okpiFilterSeparable_8u16s_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi(), border,
                                            value, spec.data(), buffer.data()),
              okpStatusOk);
}

TEST(CannyBorder, EqualsCannyOverTheDerivativesOfSeparableFilters) {
    Random random(63);
    for (const int size : {3, 5}) {
        const MaskSizeCode mask = size == 3 ? MaskSize3x3 : MaskSize5x5;
        for (const BorderKind border : {BorderReplicate, BorderConstant, BorderInMemory}) {
            GuardedImage<uint8_t> src(73, 41, {.left = 2, .top = 2, .right = 2, .bottom = 2});
            src.fill([&](int x, int y, int) {
                return 128 + static_cast<int>(90 * std::sin(0.3 * x + 0.02 * y * y)) +
                       random.integer(-20, 20);
            });
            int32_t bytes = 0, borderBytes = 0;
            ASSERT_EQ(okpiCannyGetSize(src.roi(), &bytes), okpStatusOk);
            ASSERT_EQ(okpiCannyBorderGetSize(src.roi(), 2, mask, DataType8u, &borderBytes), okpStatusOk);
            std::vector<uint8_t> buffer(static_cast<size_t>(std::max(bytes, borderBytes)));
            GuardedImage<int16_t> dx(73, 41), dy(73, 41);
            sobel(src, dx, size, 1, 0, border, 77);
            sobel(src, dy, size, 0, 1, border, 77);
            const float low = size == 3 ? 150 : 1800, high = 2 * low;
            GuardedImage<uint8_t> given(73, 41), own(73, 41);
            ASSERT_EQ(okpiCanny_16s8u_C1R(dx.data(), dx.step(), dy.data(), dy.step(), given.data(),
                                          given.step(), src.roi(), low, high, buffer.data()),
                      okpStatusOk);
            ASSERT_EQ(okpiCannyBorder_8u_C1R(src.data(), src.step(), own.data(), own.step(), src.roi(), 2,
                                             mask, border, 77, low, high, NormL1, buffer.data()),
                      okpStatusOk);
            EXPECT_EQ(own.pixels(), given.pixels()) << size << " border " << border;
            const std::vector<uint8_t> edges = own.pixels();
            EXPECT_GT(std::count(edges.begin(), edges.end(), 255), 50);
        }
    }
}

struct BorderArguments {
    const uint8_t* src;
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    RoiSize roi;
    int32_t kind;
    MaskSizeCode mask;
    BorderKind border;
    float low, high;
    NormKind norm;
    uint8_t* buffer;
};

TEST(CannyBorder, ChecksInOrder) {
    using A = BorderArguments;
    GuardedImage<uint8_t> src(6, 4, {.padding = 2});
    GuardedImage<uint8_t> dst(6, 4, {.padding = 2});
    dst.fill([](int, int, int) { return 9; });
    std::vector<uint8_t> buffer(2000);
    const A valid{src.data(),  src.step(),      dst.data(), dst.step(), {6, 4}, 2,
                  MaskSize3x3, BorderReplicate, 1,          2,          NormL1, buffer.data()};
    const auto call = [](const A& a) {
        return okpiCannyBorder_8u_C1R(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.kind, a.mask, a.border, 0,
                                      a.low, a.high, a.norm, a.buffer);
    };
    expectStatusOrder<A>(
        valid, call,
        {{"unknown mask", okpStatusBadMaskKind, [](A& a) { a.mask = 35; }},
         {"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
         {"null edges", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
         {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
         {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
         {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
         {"short source", okpStatusBadStep, [](A& a) { a.srcStep = 5; }},
         {"short edges", okpStatusBadStep, [](A& a) { a.dstStep = 5; }},
         {"unknown kind", okpStatusBadArgument, [](A& a) { a.kind = 3; }},
         {"unknown norm", okpStatusBadArgument, [](A& a) { a.norm = 3; }},
         {"negative low", okpStatusBadArgument, [](A& a) { a.low = -1; }},
         {"high below low", okpStatusBadArgument, [](A& a) { a.high = 0.5F; }},
         {"large border", okpStatusBadBorder, [](A& a) { a.border = 256 + BorderReplicate; }},
         {"mirror", okpStatusBadBorder, [](A& a) { a.border = BorderMirror; }},
         {"flags without kind", okpStatusBadBorder, [](A& a) { a.border = BorderInMemTop; }}});
    EXPECT_EQ(dst.pixels(), std::vector<uint8_t>(24, 9));
    A scharr = valid;
    scharr.kind = 5;
    EXPECT_EQ(call(scharr), okpStatusOk);
    scharr.mask = MaskSize5x5;
    EXPECT_EQ(call(scharr), okpStatusBadMaskKind);
}

TEST(Canny, BufferSizes) {
    int32_t size = 7;
    int64_t large = 7;
    EXPECT_EQ(okpiCannyGetSize({0, 0}, nullptr), okpStatusNullPointer);
    EXPECT_EQ(okpiCannyGetSize({5, 0}, &size), okpStatusBadSize);
    EXPECT_EQ(okpiCannyGetSize({INT32_MAX, INT32_MAX}, &size), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiCannyGetSize({30000, 30000}, &size), okpStatusSizeTooLarge);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(okpiCannyGetSize({640, 480}, &size), okpStatusOk);
    EXPECT_EQ(size, 16 * 640 + 5 * 642 * 482 + 160);
    EXPECT_EQ(okpiCannyGetSize({65533, 10}, &size), okpStatusOk);
    EXPECT_EQ(size, 16 * 65533 + 9 * 65535 * 12 + 160);

    EXPECT_EQ(okpiCannyGetSize_L({0, 0}, nullptr), okpStatusNullPointer);
    EXPECT_EQ(okpiCannyGetSize_L({INT64_MAX, 0}, &large), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiCannyGetSize_L({1, int64_t{INT32_MAX} + 1}, &large), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiCannyGetSize_L({0, 5}, &large), okpStatusBadSize);
    EXPECT_EQ(okpiCannyGetSize_L({INT32_MAX, INT32_MAX}, &large), okpStatusSizeTooLarge);
    EXPECT_EQ(large, 7);
    EXPECT_EQ(okpiCannyGetSize_L({65533, 65533}, &large), okpStatusOk);
    EXPECT_EQ(large, 16 * 65533LL + 9 * 65535LL * 65535 + 160);

    EXPECT_EQ(okpiCannyBorderGetSize({0, 0}, 2, 33, 1, nullptr), okpStatusNullPointer);
    EXPECT_EQ(okpiCannyBorderGetSize({0, 4}, 2, 35, 2, &size), okpStatusBadSize);
    EXPECT_EQ(okpiCannyBorderGetSize({4, 4}, 9, 35, 2, &size), okpStatusBadMaskKind);
    EXPECT_EQ(okpiCannyBorderGetSize({4, 4}, 5, 55, 2, &size), okpStatusBadMaskKind);
    EXPECT_EQ(okpiCannyBorderGetSize({4, 4}, 9, 33, 2, &size), okpStatusBadArgument);
    EXPECT_EQ(okpiCannyBorderGetSize({4, 4}, 2, 33, 5, &size), okpStatusBadDataType);
    EXPECT_EQ(okpiCannyBorderGetSize({INT32_MAX, INT32_MAX}, 2, 55, 1, &size), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiCannyBorderGetSize({640, 480}, 2, 55, 1, &size), okpStatusOk);
    EXPECT_EQ(size, 10304 + 311712 + 1246784 + 64);  // P = 644 * 484 = 311696
    EXPECT_EQ(okpiCannyBorderGetSize({2, 9}, 2, 33, 1, &size), okpStatusOk);
    EXPECT_EQ(size, 64 + 64 + 64 + 192 + 64);  // P = 44, the width below 3
}

// The edge map is the same past the caches, which are asked about for 524289 pixels and more.
TEST(Canny, StreamsLargeEdgeMaps) {
    struct {
        RoiSize size;
        int queries;
    } const regions[] = {{{1024, 512}, 0}, {{174763, 3}, 1}};
    Random random(64);
    for (const auto& [size, queries] : regions) {
        const int pixels = size.width * size.height;
        std::vector<int16_t> dx(static_cast<size_t>(pixels)), dy(dx.size());
        for (int16_t& v : dx) v = static_cast<int16_t>(random.integer(-300, 300));
        for (int16_t& v : dy) v = static_cast<int16_t>(random.integer(-300, 300));
        const Limits limits{100, 400};
        const auto expected = edgesOf<int64_t>(dx, dy, size.width, size.height, limits, false);
        int32_t bytes = 0;
        ASSERT_EQ(okpiCannyGetSize(size, &bytes), okpStatusOk);
        std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
        const CacheStandIn caches[] = {
            {.bytes = pixels + 1}, {.bytes = pixels}, {.status = okpStatusBadArgument, .bytes = 0}};
        for (const CacheStandIn& cache : caches) {
            cacheStandIn = cache;
            GuardedImage<uint8_t> dst(size.width, size.height, {.padding = 5});
            ASSERT_EQ(okpiCanny_16s8u_C1R(dx.data(), 2 * size.width, dy.data(), 2 * size.width, dst.data(),
                                          dst.step(), size, limits.low, limits.high, buffer.data()),
                      okpStatusOk);
            EXPECT_EQ(cacheStandIn.queries, queries);
            EXPECT_TRUE(dst.pixels() == expected) << pixels << " pixels, cache of " << cache.bytes;
            EXPECT_TRUE(dst.paddingIntact());
        }
    }
}

// 65533 and more columns, in buffers that end where the query says.
TEST(Canny, WideRegions) {
    for (const int width : {65532, 65533, 70001}) {
        constexpr int kHeight = 3;
        GuardedImage<uint8_t> src(width, kHeight);
        Random random(63);
        src.fill([&](int, int, int) { return random.value<uint8_t>(); });
        const auto dx = derivative(src, {-1, 0, 1}, {1, 2, 1}, BorderReplicate, 0);
        const auto dy = derivative(src, {1, 2, 1}, {-1, 0, 1}, BorderReplicate, 0);
        const Limits limits{50, 400};
        const auto expected = edgesOf<int64_t>(dx, dy, width, kHeight, limits, false);
        GuardedImage<uint8_t> dst(width, kHeight);
        int32_t bytes = 0;
        ASSERT_EQ(okpiCannyBorderGetSize(src.roi(), 2, 33, 1, &bytes), okpStatusOk);
        GuardedMemory own(static_cast<size_t>(bytes), GuardedMemory::At::End);
        ASSERT_EQ(okpiCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi(), 2, 33,
                                         BorderReplicate, 0, limits.low, limits.high, NormL1,
                                         reinterpret_cast<uint8_t*>(own.data())),
                  okpStatusOk);
        EXPECT_TRUE(dst.pixels() == expected) << width;
        ASSERT_EQ(okpiCannyGetSize(src.roi(), &bytes), okpStatusOk);
        GuardedMemory given(static_cast<size_t>(bytes), GuardedMemory::At::End);
        ASSERT_EQ(
            okpiCanny_16s8u_C1R(dx.data(), 2 * width, dy.data(), 2 * width, dst.data(), dst.step(), src.roi(),
                                limits.low, limits.high, reinterpret_cast<uint8_t*>(given.data())),
            okpStatusOk);
        EXPECT_TRUE(dst.pixels() == expected) << width;
    }
}

}  // namespace
}  // namespace okpcv::test
