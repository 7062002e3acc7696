// Separable filters against their definition, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <tuple>

#include "filter/separable_reference.h"
#include "okpcv.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// The exports of one type and channel count. Value is what they take as border value.
template <class Source, class Dest, int Channels, auto Filter32, auto Filter64>
struct Family {
    using S = Source;
    using D = Dest;
    static constexpr int channels = Channels;

    static okpStatus filter(const S* src, int64_t srcStep, D* dst, int64_t dstStep, RoiSizeL size,
                            BorderKind border, const S* value, const void* spec, void* buffer) {
        if constexpr (Channels == 1) {
            return Filter64(src, srcStep, dst, dstStep, size, border, *value, spec, buffer);
        } else {
            return Filter64(src, srcStep, dst, dstStep, size, border, value, spec, buffer);
        }
    }
    static okpStatus filter(const S* src, int32_t srcStep, D* dst, int32_t dstStep, RoiSize size,
                            BorderKind border, const S* value, const void* spec, void* buffer) {
        if constexpr (Channels == 1) {
            return Filter32(src, srcStep, dst, dstStep, size, border, *value, spec, buffer);
        } else {
            return Filter32(src, srcStep, dst, dstStep, size, border, value, spec, buffer);
        }
    }
};

template <class T>
constexpr DataTypeCode codeOf() {
    if (std::is_same_v<T, uint8_t>) return DataType8u;
    if (std::is_same_v<T, uint16_t>) return DataType16u;
    return std::is_same_v<T, int16_t> ? DataType16s : DataType32f;
}

// A spec and a buffer of exactly the promised sizes, which end at unreadable pages.
template <class K>
struct Areas {
    GuardedMemory spec;
    GuardedMemory buffer;

    template <class S>
    Areas(const Kernels<K>& kernels, int width, int channels, S)
        : spec(static_cast<size_t>(specBytes(kernels, channels)), GuardedMemory::At::End),
          buffer(static_cast<size_t>(bufferBytes<S>(kernels, width, channels)), GuardedMemory::At::End) {
        if constexpr (std::is_same_v<K, float>) {
            EXPECT_EQ(okpiFilterSeparableInit_32f(kernels.row.data(), kernels.column.data(), size(kernels),
                                                  codeOf<S>(), channels, spec.data()),
                      okpStatusOk);
        } else {
            EXPECT_EQ(okpiFilterSeparableInit_16s(kernels.row.data(), kernels.column.data(), size(kernels),
                                                  kernels.divisor, kernels.scaleFactor, codeOf<S>(), channels,
                                                  spec.data()),
                      okpStatusOk);
        }
    }

    static RoiSize size(const Kernels<K>& kernels) {
        return {static_cast<int>(kernels.row.size()), static_cast<int>(kernels.column.size())};
    }
    static int specBytes(const Kernels<K>& kernels, int channels) {
        int bytes = 0;
        EXPECT_EQ(okpiFilterSeparableGetSpecSize(size(kernels), codeOf<K>(), channels, &bytes), okpStatusOk);
        return bytes;
    }
    template <class S>
    static int bufferBytes(const Kernels<K>& kernels, int width, int channels) {
        int bytes = 0;
        EXPECT_EQ(okpiFilterSeparableGetBufferSize({width, 1}, size(kernels), codeOf<S>(), codeOf<K>(),
                                                   channels, &bytes),
                  okpStatusOk);
        return bytes;
    }
};

template <class K>
Kernels<K> randomKernels(Random& random, int kw, int kh, int largest) {
    Kernels<K> kernels;
    const auto fill = [&](std::vector<K>& kernel, int length) {
        for (int i = 0; i < length; ++i) {
            kernel.push_back(std::is_same_v<K, float> ? static_cast<K>(random.real(-0.4F, 0.6F))
                                                      : static_cast<K>(random.integer(-largest, largest)));
        }
    };
    fill(kernels.row, kw);
    fill(kernels.column, kh);
    if constexpr (!std::is_same_v<K, float>) {
        const int divisors[] = {1, 3, 7, 16, -5, 256};
        kernels.divisor = divisors[random.integer(0, 5)];
    }
    return kernels;
}

// One filter call on random pixels, its result, and the definition's.
template <class F, class K>
void expectDefinition(Random& random, const Kernels<K>& kernels, int width, int height, BorderKind border,
                      int padding) {
    using S = typename F::S;
    using D = typename F::D;
    const int kw = static_cast<int>(kernels.row.size());
    const int kh = static_cast<int>(kernels.column.size());
    typename GuardedImage<S>::Layout around{.channels = F::channels, .padding = padding};
    if ((border & BorderInMemLeft) != 0) around.left = (kw - 1) / 2;
    if ((border & BorderInMemRight) != 0) around.right = kw / 2;
    if ((border & BorderInMemTop) != 0) around.top = (kh - 1) / 2;
    if ((border & BorderInMemBottom) != 0) around.bottom = kh / 2;
    around.at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
    GuardedImage<S> src(width, height, around);
    src.fill([&](int, int, int) { return random.value<S>(); });
    GuardedImage<D> dst(width, height, {.channels = F::channels, .padding = padding});
    std::vector<S> value;
    for (int c = 0; c < F::channels; ++c) value.push_back(random.value<S>());

    Areas<K> areas(kernels, width, F::channels, S{});
    ASSERT_EQ(F::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), border, value.data(),
                        areas.spec.data(), areas.buffer.data()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), separableReference<D>(src, kernels, border, value)))
        << "kernel " << kw << " x " << kh << ", divisor " << kernels.divisor << ", region " << width << " x "
        << height << ", border " << border;
    EXPECT_TRUE(dst.paddingIntact());
}

template <class F>
class SeparableFilter : public testing::Test {};

using Families = testing::Types<
    Family<uint8_t, uint8_t, 1, okpiFilterSeparable_8u_C1R, okpiFilterSeparable_8u_C1R_L>,
    Family<uint8_t, uint8_t, 3, okpiFilterSeparable_8u_C3R, okpiFilterSeparable_8u_C3R_L>,
    Family<uint8_t, uint8_t, 4, okpiFilterSeparable_8u_C4R, okpiFilterSeparable_8u_C4R_L>,
    Family<uint8_t, int16_t, 1, okpiFilterSeparable_8u16s_C1R, okpiFilterSeparable_8u16s_C1R_L>,
    Family<uint8_t, int16_t, 3, okpiFilterSeparable_8u16s_C3R, okpiFilterSeparable_8u16s_C3R_L>,
    Family<uint8_t, int16_t, 4, okpiFilterSeparable_8u16s_C4R, okpiFilterSeparable_8u16s_C4R_L>,
    Family<int16_t, int16_t, 1, okpiFilterSeparable_16s_C1R, okpiFilterSeparable_16s_C1R_L>,
    Family<int16_t, int16_t, 3, okpiFilterSeparable_16s_C3R, okpiFilterSeparable_16s_C3R_L>,
    Family<int16_t, int16_t, 4, okpiFilterSeparable_16s_C4R, okpiFilterSeparable_16s_C4R_L>,
    Family<uint16_t, uint16_t, 1, okpiFilterSeparable_16u_C1R, okpiFilterSeparable_16u_C1R_L>,
    Family<uint16_t, uint16_t, 3, okpiFilterSeparable_16u_C3R, okpiFilterSeparable_16u_C3R_L>,
    Family<uint16_t, uint16_t, 4, okpiFilterSeparable_16u_C4R, okpiFilterSeparable_16u_C4R_L>,
    Family<float, float, 1, okpiFilterSeparable_32f_C1R, okpiFilterSeparable_32f_C1R_L>,
    Family<float, float, 3, okpiFilterSeparable_32f_C3R, okpiFilterSeparable_32f_C3R_L>,
    Family<float, float, 4, okpiFilterSeparable_32f_C4R, okpiFilterSeparable_32f_C4R_L>>;
TYPED_TEST_SUITE(SeparableFilter, Families);

// Runs a body once for each type of kernel that the family takes.
template <class F, class Body>
void forKernelTypes(const Body& body) {
    constexpr bool floats = std::is_same_v<typename F::D, uint8_t> ||
                            std::is_same_v<typename F::D, uint16_t> || std::is_same_v<typename F::D, float>;
    constexpr bool integers =
        std::is_same_v<typename F::D, uint8_t> || std::is_same_v<typename F::D, int16_t>;
    if constexpr (floats) body(float{});
    if constexpr (integers) body(int16_t{});
}

// Every combination of kind and side flags, with regions around the kernel's size.
constexpr BorderKind kBorders[] = {1,  3,  6,   17, 33,  65,  129, 19,  35,  67,  131, 22,
                                   38, 70, 134, 49, 195, 102, 150, 241, 243, 246, 240, 99};

TYPED_TEST(SeparableFilter, EqualsItsDefinitionForAllBordersAndSmallRegions) {
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(1);
        const int lengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 19};
        for (const BorderKind border : kBorders) {
            for (const int kw : lengths) {
                const int kh = lengths[random.integer(0, 10)];
                const auto kernels = randomKernels<K>(random, kw, kh, 40);
                expectDefinition<TypeParam>(random, kernels, random.integer(1, 24), random.integer(1, 12),
                                            border, random.integer(0, 3) * 4);
            }
        }
    });
}

}  // namespace
}  // namespace okpcv::test
