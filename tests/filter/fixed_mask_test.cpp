// Filters with fixed masks against their definitions, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/border.h"
#include "okpcv.h"
#include "support/cache_stand_in.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// ---- Definitions ----------------------------------------------------------------------------------------

int reachOf(MaskSizeCode mask) {
    return mask == MaskSize3x3 ? 1 : 2;
}

using Coefficients = std::vector<std::vector<int>>;

Coefficients outerProduct(const std::vector<int16_t>& column, const std::vector<int16_t>& row) {
    Coefficients result;
    for (const int c : column) {
        result.emplace_back();
        for (const int r : row) result.back().push_back(c * r);
    }
    return result;
}

std::vector<int16_t> sobel(int size, int order) {
    std::vector<int16_t> kernel(static_cast<size_t>(size));
    EXPECT_EQ(okpiGenSobelKernel_16s(kernel.data(), size, order, 1), okpStatusOk);
    return kernel;
}

// `x` holds the n x n pixels that an output sees, row by row.
struct Mean {
    static uint8_t result(int n, const std::vector<uint8_t>& x) {
        int sum = 0;
        for (const int v : x) sum += v;
        return static_cast<uint8_t>((2 * sum + n * n) / (2 * n * n));
    }
    static float result(int n, const std::vector<float>& x) {
        float sum = 0;
        for (int j = 0; j < n; ++j) {
            float row = 0;
            for (int i = 0; i < n; ++i) row = row + x[static_cast<size_t>(j * n + i)];
            sum = sum + row;
        }
        return sum / static_cast<float>(n * n);
    }
};

int weighted(const Coefficients& mask, const std::vector<uint8_t>& x) {
    int sum = 0;
    size_t at = 0;
    for (const auto& row : mask) {
        for (const int k : row) sum += k * x[at++];
    }
    return sum;
}

struct SobelCross {
    static int16_t result(int n, const std::vector<uint8_t>& x) {
        return static_cast<int16_t>(weighted(outerProduct(sobel(n, 1), sobel(n, 1)), x));
    }
    static float result(int n, const std::vector<float>& x) {
        const std::vector<int16_t> k = sobel(n, 1);
        float sum = 0;
        for (int j = 0; j < n; ++j) {
            float row = 0;
            for (int i = 0; i < n; ++i) row = row + static_cast<float>(k[i]) * x[j * n + i];
            sum = sum + static_cast<float>(k[j]) * row;
        }
        return sum;
    }
};

struct Laplacian {
    static Coefficients mask(int n) {
        Coefficients sum = outerProduct(sobel(n, 0), sobel(n, 2));
        const Coefficients other = outerProduct(sobel(n, 2), sobel(n, 0));
        for (size_t j = 0; j < sum.size(); ++j) {
            for (size_t i = 0; i < sum.size(); ++i) sum[j][i] += other[j][i];
        }
        return sum;
    }
    static int16_t result(int n, const std::vector<uint8_t>& x) {
        return static_cast<int16_t>(weighted(mask(n), x));
    }
    static float result(int n, const std::vector<float>& x) {
        if (n == 3) return 2 * (x[0] + x[2] - 4 * x[4] + (x[6] + x[8]));
        float sum = 0;
        for (int j = 0; j < 5; ++j) {
            const float p = x[5 * j] + x[5 * j + 4], q = x[5 * j + 1] + x[5 * j + 3], c = x[5 * j + 2];
            const float between = 2 * p - 4 * c;
            sum = sum + (j % 4 == 0 ? p + 2 * (q + c) : j % 2 == 1 ? between : between - 4 * (q + 2 * c));
        }
        return 2 * sum;
    }
};

TEST(LaplacianMask, IsTheSumOfBothSecondDerivatives) {
    EXPECT_EQ(Laplacian::mask(3), (Coefficients{{2, 0, 2}, {0, -8, 0}, {2, 0, 2}}));
    EXPECT_EQ(
        Laplacian::mask(5),
        (Coefficients{
            {2, 4, 4, 4, 2}, {4, 0, -8, 0, 4}, {4, -8, -24, -8, 4}, {4, 0, -8, 0, 4}, {2, 4, 4, 4, 2}}));
}

// ---- The exports ----------------------------------------------------------------------------------------

template <class Source, class Destination, class Definition, auto Filter, auto BufferSize>
struct Family {
    using S = Source;
    using D = Destination;
    static constexpr auto filter = Filter;
    static constexpr auto bufferSize = BufferSize;

    static std::vector<D> reference(const GuardedImage<S>& src, MaskSizeCode mask, BorderKind kind, S value) {
        const Border border(kind);
        const int reach = reachOf(mask);
        std::vector<D> result;
        for (int y = 0; y < src.height(); ++y) {
            for (int x = 0; x < src.width(); ++x) {
                std::vector<S> seen;
                for (int j = y - reach; j <= y + reach; ++j) {
                    for (int i = x - reach; i <= x + reach; ++i) {
                        const int64_t u = border.column(i, src.width()), v = border.row(j, src.height());
                        const bool outside = u == Border::kValue || v == Border::kValue;
                        seen.push_back(outside ? value : src.at(static_cast<int>(u), static_cast<int>(v)));
                    }
                }
                result.push_back(Definition::result(2 * reach + 1, seen));
            }
        }
        return result;
    }
    // A buffer of exactly the size that the query reports, before an unreadable page.
    static GuardedMemory buffer(RoiSize size, MaskSizeCode mask) {
        int32_t bytes = 0;
        EXPECT_EQ(bufferSize(size, mask, &bytes), okpStatusOk);
        return GuardedMemory(static_cast<size_t>(bytes), GuardedMemory::At::End);
    }
};

template <class F>
class FixedMask : public testing::Test {
  protected:
    void SetUp() override { cacheStandIn = CacheStandIn{}; }
};

using Families = testing::Types<
    Family<uint8_t, uint8_t, Mean, okpiFilterLowpassBorder_8u_C1R, okpiFilterLowpassGetBufferSize_8u_C1R>,
    Family<float, float, Mean, okpiFilterLowpassBorder_32f_C1R, okpiFilterLowpassGetBufferSize_32f_C1R>,
    Family<uint8_t, int16_t, SobelCross, okpiFilterSobelCrossBorder_8u16s_C1R,
           okpiFilterSobelCrossGetBufferSize_8u16s_C1R>,
    Family<float, float, SobelCross, okpiFilterSobelCrossBorder_32f_C1R,
           okpiFilterSobelCrossGetBufferSize_32f_C1R>,
    Family<uint8_t, int16_t, Laplacian, okpiFilterLaplacianBorder_8u16s_C1R,
           okpiFilterLaplacianGetBufferSize_8u16s_C1R>,
    Family<float, float, Laplacian, okpiFilterLaplacianBorder_32f_C1R,
           okpiFilterLaplacianGetBufferSize_32f_C1R>>;
TYPED_TEST_SUITE(FixedMask, Families);

// Pixels at the ends of the type's range, alone and in patches, so that sums reach theirs.
template <class S>
S pixel(Random& random, bool patches, int x, int y) {
    if constexpr (std::is_same_v<S, float>) {
        return random.chance(0.1) ? -0.0F : random.value<S>();
    } else {
        if (!patches) return random.value<S>();
        return (x / 3 + y / 3) % 2 == 0 ? S{0} : S{255};
    }
}

template <class F>
void expectDefinition(Random& random, int width, int height, MaskSizeCode mask, BorderKind border) {
    using S = typename F::S;
    using D = typename F::D;
    const int reach = reachOf(mask);
    typename GuardedImage<S>::Layout around{.padding = random.integer(0, 3) * 4};
    if ((border & BorderInMemLeft) != 0) around.left = reach;
    if ((border & BorderInMemRight) != 0) around.right = reach;
    if ((border & BorderInMemTop) != 0) around.top = reach;
    if ((border & BorderInMemBottom) != 0) around.bottom = reach;
    around.at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
    GuardedImage<S> src(width, height, around);
    const bool patches = random.chance(0.3);
    src.fill([&](int x, int y, int) { return pixel<S>(random, patches, x, y); });
    const S value = random.value<S>();
    const auto expected = F::reference(src, mask, border, value);
    const GuardedMemory buffer = F::buffer(src.roi(), mask);
    GuardedImage<D> dst(width, height, {.padding = 4, .at = around.at});
    ASSERT_EQ(F::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), mask, border, value,
                        buffer.data()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), expected))
        << width << " x " << height << ", mask " << mask << ", border " << border;
    EXPECT_TRUE(dst.paddingIntact());
}

constexpr BorderKind kBorders[] = {1,  3,  6,   17, 33,  65,  129, 19,  35,  67,  131, 22,
                                   38, 70, 134, 49, 195, 102, 150, 241, 243, 246, 240, 99};

TYPED_TEST(FixedMask, EqualsItsDefinitionForAllBordersAndSmallRegions) {
    Random random(1);
    for (const BorderKind border : kBorders) {
        for (const MaskSizeCode mask : {MaskSize3x3, MaskSize5x5}) {
            for (int width = 1; width <= 60; ++width) {
                expectDefinition<TypeParam>(random, width, random.integer(1, 20), mask, border);
            }
        }
    }
}

// A cache that the query does not know, or a small one, has regions filtered in strips.
TYPED_TEST(FixedMask, EqualsItsDefinitionInStripsAndWhole) {
    Random random(2);
    for (const int cacheBytes : {INT32_MAX, 8 * 7000 * 3 + 1, 8 * 7000 * 3, 0}) {
        for (const MaskSizeCode mask : {MaskSize3x3, MaskSize5x5}) {
            for (const BorderKind border : {BorderMirror, BorderConstant, BorderInMemory}) {
                cacheStandIn = {.bytes = cacheBytes};
                expectDefinition<TypeParam>(random, 7000, 3, mask, border);
                EXPECT_EQ(cacheStandIn.queries, 1);
            }
        }
    }
    cacheStandIn = {.status = okpStatusBadArgument};
    expectDefinition<TypeParam>(random, 2049, 17, MaskSize5x5, BorderReplicate);
}

TYPED_TEST(FixedMask, GivesTheSameInStripsOfRows) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    Random random(3);
    GuardedImage<S> src(61, 40, {});
    src.fill([&](int x, int y, int) { return pixel<S>(random, false, x, y); });
    const GuardedMemory buffer = TypeParam::buffer(src.roi(), MaskSize5x5);
    GuardedImage<D> whole(61, 40, {}), strips(61, 40, {});
    ASSERT_EQ(TypeParam::filter(src.data(), src.step(), whole.data(), whole.step(), src.roi(), MaskSize5x5,
                                BorderMirror, 0, buffer.data()),
              okpStatusOk);
    for (int y = 0; y < 40; y += 8) {
        const BorderKind border =
            BorderMirror | (y > 0 ? BorderInMemTop : 0) | (y < 32 ? BorderInMemBottom : 0);
        ASSERT_EQ(TypeParam::filter(src.row(y), src.step(), strips.row(y), strips.step(), {61, 8},
                                    MaskSize5x5, border, 0, buffer.data()),
                  okpStatusOk);
    }
    EXPECT_TRUE(sameBits(strips.pixels(), whole.pixels()));
}

// The cross derivative is the separable filter with the kernels of derivatives.
TEST(SobelCross, IsASeparableFilter) {
    Random random(4);
    for (const int size : {3, 5}) {
        const MaskSizeCode mask = size == 3 ? MaskSize3x3 : MaskSize5x5;
        GuardedImage<float> src(45, 23, {}), separable(45, 23, {}), cross(45, 23, {});
        src.fill([&](int, int, int) { return random.value<float>(); });
        float kernel[5];
        ASSERT_EQ(okpiGenSobelKernel_32f(kernel, size, 1, 1), okpStatusOk);
        int32_t specBytes = 0, bytes = 0, crossBytes = 0;
        ASSERT_EQ(okpiFilterSeparableGetSpecSize({size, size}, DataType32f, 1, &specBytes), okpStatusOk);
        ASSERT_EQ(
            okpiFilterSeparableGetBufferSize(src.roi(), {size, size}, DataType32f, DataType32f, 1, &bytes),
            okpStatusOk);
        ASSERT_EQ(okpiFilterSobelCrossGetBufferSize_32f_C1R(src.roi(), mask, &crossBytes), okpStatusOk);
        std::vector<char> spec(specBytes), buffer(bytes), crossBuffer(crossBytes);
        ASSERT_EQ(okpiFilterSeparableInit_32f(kernel, kernel, {size, size}, DataType32f, 1, spec.data()),
                  okpStatusOk);
        for (const BorderKind border : {BorderMirror, BorderConstant}) {
            ASSERT_EQ(okpiFilterSeparable_32f_C1R(src.data(), src.step(), separable.data(), separable.step(),
                                                  src.roi(), border, 7.5F, spec.data(), buffer.data()),
                      okpStatusOk);
            ASSERT_EQ(okpiFilterSobelCrossBorder_32f_C1R(src.data(), src.step(), cross.data(), cross.step(),
                                                         src.roi(), mask, border, 7.5F, crossBuffer.data()),
                      okpStatusOk);
            EXPECT_TRUE(sameBits(cross.pixels(), separable.pixels())) << size << " " << border;
        }
    }
}

// ---- Statuses and sizes ---------------------------------------------------------------------------------

TYPED_TEST(FixedMask, ChecksArgumentsInOrder) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    struct Arguments {
        const S* src;
        int srcStep;
        D* dst;
        int dstStep;
        RoiSize size;
        void* buffer;
        MaskSizeCode mask = MaskSize3x3;
        BorderKind border = BorderMirror;
    };
    GuardedImage<S> src(5, 2, {.padding = 4});
    GuardedImage<D> dst(5, 2, {.padding = 4});
    dst.fill([](int, int, int) { return 77; });
    const auto before = dst.pixels();
    const GuardedMemory buffer = TypeParam::buffer(src.roi(), MaskSize5x5);
    std::vector<Fault<Arguments>> faults = {
        {"null source", okpStatusNullPointer, [](auto& a) { a.src = nullptr; }},
        {"null destination", okpStatusNullPointer, [](auto& a) { a.dst = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](auto& a) { a.buffer = nullptr; }},
        {"width 0", okpStatusBadSize, [](auto& a) { a.size.width = 0; }},
        {"height 0", okpStatusBadSize, [](auto& a) { a.size.height = 0; }},
        {"source step", okpStatusBadStep, [](auto& a) { a.srcStep = 5 * int{sizeof(S)} - 1; }},
        {"destination step", okpStatusBadStep, [](auto& a) { a.dstStep = 5 * int{sizeof(D)} - 1; }}};
    if (std::is_same_v<S, float>) {
        faults.push_back({"odd source step", okpStatusStepNotMultiple, [](auto& a) { a.srcStep = 22; }});
        faults.push_back({"odd destination step", okpStatusStepNotMultiple, [](auto& a) { a.dstStep = 21; }});
    }
    faults.push_back({"border 0", okpStatusBadBorder, [](auto& a) { a.border = 0; }});
    faults.push_back({"border 5", okpStatusBadBorder, [](auto& a) { a.border = BorderDefault; }});
    faults.push_back({"border 256", okpStatusBadBorder, [](auto& a) { a.border = 257; }});
    faults.push_back({"mask 35", okpStatusBadMaskKind, [](auto& a) { a.mask = 35; }});
    expectStatusOrder<Arguments>(
        {src.data(), src.step(), dst.data(), dst.step(), src.roi(), buffer.data()},
        [](const Arguments& a) {
            return TypeParam::filter(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.mask, a.border, 0,
                                     a.buffer);
        },
        faults);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
}

TYPED_TEST(FixedMask, SizesDependOnWidthAndMaskOnly) {
    int32_t bytes = 0, other = 0;
    ASSERT_EQ(TypeParam::bufferSize({640, 1}, MaskSize3x3, &bytes), okpStatusOk);
    ASSERT_EQ(TypeParam::bufferSize({640, INT32_MAX}, MaskSize3x3, &other), okpStatusOk);
    EXPECT_EQ(bytes, other);

    bytes = 9;
    EXPECT_EQ(TypeParam::bufferSize({0, 1}, 35, nullptr), okpStatusNullPointer);
    EXPECT_EQ(TypeParam::bufferSize({0, 1}, 35, &bytes), okpStatusBadSize);
    EXPECT_EQ(TypeParam::bufferSize({1, 0}, 35, &bytes), okpStatusBadSize);
    EXPECT_EQ(TypeParam::bufferSize({INT32_MAX, 1}, 35, &bytes), okpStatusBadMaskKind);
    EXPECT_EQ(TypeParam::bufferSize({INT32_MAX, 1}, MaskSize5x5, &bytes), okpStatusSizeTooLarge);
    EXPECT_EQ(bytes, 9);
}

}  // namespace
}  // namespace okpcv::test
