// Separable filters against their definition, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "filter/separable_reference.h"
#include "okpcv.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/stack_use.h"
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
    Areas(const Kernels<K>& kernels, int width, int channels, S,
          GuardedMemory::At at = GuardedMemory::At::End)
        : spec(static_cast<size_t>(specBytes(kernels, channels)), at),
          buffer(static_cast<size_t>(bufferBytes<S>(kernels, width, channels)), at) {
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

template <class K>
void makeSymmetric(std::vector<K>& kernel) {
    for (size_t i = 0; i < kernel.size(); ++i) kernel[i] = kernel[kernel.size() - 1 - i];
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

// Wider and taller than the parts in which the filters work, with and without a remainder, and with kernels
// of all kinds of code: short ones, symmetric or not, even, long, and longer than the region.
TYPED_TEST(SeparableFilter, EqualsItsDefinitionForWideRegions) {
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(2);
        const int lengths[][2] = {{3, 3},  {5, 5},   {7, 7},  {9, 9},  {11, 11}, {13, 13}, {15, 15},
                                  {3, 15}, {15, 3},  {1, 21}, {21, 1}, {4, 8},   {33, 33}, {3, 70},
                                  {70, 3}, {17, 10}, {1, 1},  {65, 5}, {9, 2},   {5, 64}};
        for (const auto& length : lengths) {
            auto kernels = randomKernels<K>(random, length[0], length[1], 200);
            if (random.chance(0.5)) makeSymmetric(kernels.column);
            const BorderKind border = kBorders[random.integer(0, 23)];
            expectDefinition<TypeParam>(random, kernels, random.integer(150, 500) / TypeParam::channels,
                                        random.integer(9, 40), border, 4);
        }
    });
}

// The outputs whose taps reach over a side stand anywhere in the stretches in which rows are filtered.
TYPED_TEST(SeparableFilter, EqualsItsDefinitionAtAllWidths) {
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(9);
        for (const int length : {3, 8, 9, 17}) {
            const auto kernels = randomKernels<K>(random, length, length, 40);
            for (int width = 1; width <= 150 / TypeParam::channels; ++width) {
                expectDefinition<TypeParam>(random, kernels, width, 2, kBorders[random.integer(0, 23)], 4);
            }
        }
    });
}

// Sums that single precision cannot hold exactly, and a scale factor, which only signed destinations read.
TYPED_TEST(SeparableFilter, RoundsSumsOfLargeCoefficients) {
    if constexpr (!std::is_floating_point_v<typename TypeParam::D> &&
                  !std::is_same_v<typename TypeParam::D, uint16_t>) {
        Random random(3);
        for (const int length : {1, 3, 4, 9, 31}) {
            auto kernels = randomKernels<int16_t>(random, length, length, 32767);
            kernels.divisor = 32000;
            kernels.scaleFactor = random.integer(-3, 3);
            expectDefinition<TypeParam>(random, kernels, 100, 20, BorderMirror, 0);
        }
    }
}

// Coefficients of either sign whose magnitudes add up to `total`, in lumps of any size.
void shareOut(Random& random, std::vector<int16_t>& kernel, int total) {
    while (total > 0) {
        const int part = random.integer(1, total);
        const int last = static_cast<int>(kernel.size()) - 1;
        int16_t& k = kernel[static_cast<size_t>(random.integer(0, last))];
        k = static_cast<int16_t>(k + (k < 0 || (k == 0 && random.chance(0.3)) ? -part : part));
        total -= part;
    }
}

// Divisors that are powers of two and sums that single precision holds exactly: 8-bit images are filtered in
// integers then, as long as no row sum needs more than 16 bits.
TYPED_TEST(SeparableFilter, EqualsItsDefinitionWhereSumsAreExact) {
    if constexpr (std::is_same_v<typename TypeParam::S, uint8_t>) {
        Random random(8);
        const int lengths[] = {2, 3, 4, 5, 7, 9, 11, 13, 15, 16, 17, 21, 34, 63, 64, 65};
        for (const int kw : lengths) {
            for (const int total : {1, 16, 128, 256, 257, 258}) {
                const int kh = lengths[random.integer(0, 15)];
                Kernels<int16_t> kernels{std::vector<int16_t>(static_cast<size_t>(kw)),
                                         std::vector<int16_t>(static_cast<size_t>(kh)),
                                         1 << random.integer(0, 8)};
                shareOut(random, kernels.row, total);
                shareOut(random, kernels.column, random.integer(0, 256));
                kernels.scaleFactor = random.integer(-2, 4);
                if (random.chance(0.3)) makeSymmetric(kernels.column);
                const BorderKind border = kBorders[random.integer(0, 23)];
                expectDefinition<TypeParam>(random, kernels, random.integer(1, 150), random.integer(1, 40),
                                            border, 0);
            }
        }
    }
}

// Float kernels that take results, or sums on the way to them, out of the range of integers and of floats.
TYPED_TEST(SeparableFilter, ClampsResultsOfAnySize) {
    using D = typename TypeParam::D;
    if constexpr (std::is_same_v<D, uint8_t> || std::is_same_v<D, uint16_t>) {
        Random random(9);
        for (const int length : {3, 5, 9, 20}) {
            for (const float factor : {3e1F, 3e4F, 3e6F, 3e12F, 3e30F, 3e38F}) {
                auto kernels = randomKernels<float>(random, length, length, 0);
                for (float& k : kernels.row) k *= factor;
                if (random.chance(0.5)) {
                    for (float& k : kernels.column) k /= factor;
                }
                if (random.chance(0.2)) kernels.column[1] = std::nanf("");
                expectDefinition<TypeParam>(random, kernels, 50, 12, BorderReplicate, 0);
            }
        }
    }
}

TYPED_TEST(SeparableFilter, FiltersInPlace) {
    if constexpr (std::is_same_v<typename TypeParam::S, typename TypeParam::D>) {
        using S = typename TypeParam::S;
        forKernelTypes<TypeParam>([](auto k) {
            using K = decltype(k);
            Random random(4);
            for (const int length : {1, 3, 6, 15, 40}) {
                const auto kernels = randomKernels<K>(random, length, length, 20);
                for (const BorderKind border : {BorderReplicate, BorderMirror, BorderConstant}) {
                    GuardedImage<S> image(random.integer(1, 300), random.integer(1, 30),
                                          {.channels = TypeParam::channels, .padding = 4});
                    image.fill([&](int, int, int) { return random.value<S>(); });
                    const std::vector<S> value(4, S(7));
                    const auto expected = separableReference<S>(image, kernels, border, value);
                    Areas<K> areas(kernels, image.width(), TypeParam::channels, S{});
                    ASSERT_EQ(
                        TypeParam::filter(image.data(), image.step(), image.data(), image.step(), image.roi(),
                                          border, value.data(), areas.spec.data(), areas.buffer.data()),
                        okpStatusOk);
                    EXPECT_TRUE(sameBits(image.pixels(), expected)) << length << " " << border;
                }
            }
        });
    }
}

TYPED_TEST(SeparableFilter, UsesLessThan16KiBOfStack) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    if constexpr (!kFramesAreTypical) GTEST_SKIP();
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(10);
        for (const int length : {3, 9, 15, 31}) {
            for (const int largest : {4, 300}) {
                const auto kernels = randomKernels<K>(random, length, length, largest);
                const GuardedImage<S> src(640, 20, {.channels = TypeParam::channels});
                const GuardedImage<D> dst(640, 20, {.channels = TypeParam::channels});
                const std::vector<S> value(4);
                Areas<K> areas(kernels, 640, TypeParam::channels, S{});
                EXPECT_LT(stackUse([&] {
                              TypeParam::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                                BorderConstant, value.data(), areas.spec.data(),
                                                areas.buffer.data());
                          }),
                          16 * 1024)
                    << length << " " << largest;
            }
        }
    });
}

// A picture cut into strips of any height, each filtered with its neighbours in memory, is the picture
// filtered whole; so is it with 64-bit sizes, and with areas and rows at odd addresses.
TYPED_TEST(SeparableFilter, GivesTheSameInStripsAndAtAnyAddress) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    constexpr int channels = TypeParam::channels;
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(5);
        for (const int length : {3, 8, 15, 19}) {
            const auto kernels = randomKernels<K>(random, length, length, 30);
            GuardedImage<S> src(131, 67, {.channels = channels, .padding = 4});
            src.fill([&](int, int, int) { return random.value<S>(); });
            const std::vector<S> value(4, S(9));
            Areas<K> areas(kernels, src.width(), channels, S{});

            GuardedImage<D> whole(131, 67, {.channels = channels});
            ASSERT_EQ(TypeParam::filter(src.data(), src.step(), whole.data(), whole.step(), src.roi(),
                                        BorderMirror, value.data(), areas.spec.data(), areas.buffer.data()),
                      okpStatusOk);
            GuardedImage<D> strips(131, 67, {.channels = channels});
            for (int y = 0; y < 67;) {
                // Strips at the ends are as high as their kernel, to mirror and be read by their neighbours.
                int rows = y == 0 ? 20 : random.integer(1, 9);
                if (y + rows > 67 - 20) rows = 67 - y;
                const BorderKind border =
                    BorderMirror | (y > 0 ? BorderInMemTop : 0) | (y + rows < 67 ? BorderInMemBottom : 0);
                ASSERT_EQ(TypeParam::filter(src.row(y), src.step(), strips.row(y), strips.step(),
                                            RoiSize{131, rows}, border, value.data(), areas.spec.data(),
                                            areas.buffer.data()),
                          okpStatusOk);
                y += rows;
            }
            EXPECT_TRUE(sameBits(strips.pixels(), whole.pixels())) << length;

            GuardedImage<D> large(131, 67, {.channels = channels});
            ASSERT_EQ(TypeParam::filter(src.data(), src.step(), large.data(), large.step(), RoiSizeL{131, 67},
                                        BorderMirror, value.data(), areas.spec.data(), areas.buffer.data()),
                      okpStatusOk);
            EXPECT_TRUE(sameBits(large.pixels(), whole.pixels()));

            const int oddStep = src.step() + 1;
            const int oddDstStep = whole.step() + 3;
            std::vector<char> moved(static_cast<size_t>(oddStep) * 68);
            std::vector<char> result(static_cast<size_t>(oddDstStep) * 68);
            char* const at = moved.data() + 1;
            char* const to = result.data() + 3;
            for (int y = 0; y < 67; ++y) {
                std::memcpy(at + y * oddStep, static_cast<const void*>(src.row(y)),
                            static_cast<size_t>(131) * channels * sizeof(S));
            }
            ASSERT_EQ(TypeParam::filter(reinterpret_cast<const S*>(at), oddStep, reinterpret_cast<D*>(to),
                                        oddDstStep, src.roi(), BorderMirror, value.data(), areas.spec.data(),
                                        areas.buffer.data()),
                      okpStatusOk);
            for (int y = 0; y < 67; ++y) {
                EXPECT_EQ(std::memcmp(to + y * oddDstStep, static_cast<const void*>(whole.row(y)),
                                      static_cast<size_t>(131) * channels * sizeof(D)),
                          0);
            }
        }
    });
}

// Every work buffer holds what the filters put into it, at its size to the byte: regions and kernels of all
// small sizes, between unreadable pages.
TYPED_TEST(SeparableFilter, StaysInsideItsAreas) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    forKernelTypes<TypeParam>([](auto k) {
        using K = decltype(k);
        Random random(6);
        for (int kw = 1; kw <= 18; ++kw) {
            for (int kh = 1; kh <= 18; ++kh) {
                const int width = random.integer(1, kh % 3 == 0 ? 200 : 6);
                const auto kernels = randomKernels<K>(random, kw, kh, 9);
                GuardedImage<S> src(width, 3, {.channels = TypeParam::channels});
                GuardedImage<D> dst(width, 3, {.channels = TypeParam::channels});
                const std::vector<S> value(4, S(9));
                src.fill([&](int, int, int) { return S(1); });
                Areas<K> areas(kernels, width, TypeParam::channels, S{}, GuardedMemory::At::End);
                Areas<K> begun(kernels, width, TypeParam::channels, S{}, GuardedMemory::At::Start);
                for (const Areas<K>* a : {&areas, &begun}) {
                    EXPECT_EQ(
                        TypeParam::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                          BorderConstant, value.data(), a->spec.data(), a->buffer.data()),
                        okpStatusOk);
                }
            }
        }
    });
}

TYPED_TEST(SeparableFilter, ChecksItsArgumentsInOrder) {
    using S = typename TypeParam::S;
    using D = typename TypeParam::D;
    using K = std::conditional_t<std::is_same_v<D, int16_t>, int16_t, float>;
    struct Arguments {
        const S* src;
        int srcStep;
        D* dst;
        int dstStep;
        RoiSize size;
        BorderKind border;
        const void* spec;
        void* buffer;
    };
    const Kernels<K> kernels{{1, 2, 1}, {1, 2, 1}};
    const Areas<K> areas(kernels, 9, TypeParam::channels, S{});
    const std::vector<char> zeroed(200);
    const std::vector<S> value(4);
    GuardedImage<S> src(9, 5, {.channels = TypeParam::channels});
    GuardedImage<D> dst(9, 5, {.channels = TypeParam::channels});
    src.fill([](int, int, int) { return 1; });
    dst.fill([](int, int, int) { return 77; });
    const auto before = dst.pixels();

    using Call = std::function<okpStatus(const Arguments&)>;
    const Call narrow = [&](const Arguments& a) {
        return TypeParam::filter(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.border, value.data(), a.spec,
                                 a.buffer);
    };
    const Call large = [&](const Arguments& a) {
        return TypeParam::filter(a.src, int64_t{a.srcStep}, a.dst, int64_t{a.dstStep},
                                 RoiSizeL{a.size.width, a.size.height}, a.border, value.data(), a.spec,
                                 a.buffer);
    };
    std::vector<Fault<Arguments>> faults{
        {"null source", okpStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
        {"null destination", okpStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](Arguments& a) { a.buffer = nullptr; }},
        {"null spec", okpStatusNullPointer, [](Arguments& a) { a.spec = nullptr; }},
        {"no width", okpStatusBadSize, [](Arguments& a) { a.size.width = 0; }},
        {"no height", okpStatusBadSize, [](Arguments& a) { a.size.height = -1; }},
        {"short source step", okpStatusBadStep, [](Arguments& a) { a.srcStep -= 1; }},
        {"short destination step", okpStatusBadStep, [](Arguments& a) { a.dstStep = -a.dstStep; }},
        {"zeroed spec", okpStatusNullPointer, [&](Arguments& a) { a.spec = zeroed.data(); }},
    };
    for (const BorderKind border : {0U, 2U, 4U, 5U, 16U, 242U, 256U, 257U}) {
        faults.push_back({"border " + std::to_string(border), okpStatusBadBorder,
                          [border](Arguments& a) { a.border = border; }});
    }
    const Arguments valid{src.data(), src.step(),      dst.data(),        dst.step(),
                          src.roi(),  BorderReplicate, areas.spec.data(), areas.buffer.data()};
    expectStatusOrder(valid, narrow, faults);
    expectStatusOrder(valid, large, faults);
    if (TypeParam::channels > 1) {
        EXPECT_EQ(TypeParam::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), BorderConstant,
                                    nullptr, areas.spec.data(), areas.buffer.data()),
                  okpStatusNullPointer);
        EXPECT_TRUE(sameBits(dst.pixels(), before));
        EXPECT_EQ(TypeParam::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), BorderMirror,
                                    nullptr, areas.spec.data(), areas.buffer.data()),
                  okpStatusOk);
    } else {
        EXPECT_TRUE(sameBits(dst.pixels(), before));
    }
}

std::vector<uint8_t> filtered8u(const std::vector<int16_t>& kernel, int divisor, uint8_t pixel) {
    using F = Family<uint8_t, uint8_t, 1, okpiFilterSeparable_8u_C1R, okpiFilterSeparable_8u_C1R_L>;
    const Kernels<int16_t> kernels{kernel, kernel, divisor};
    Areas<int16_t> areas(kernels, 4, 1, uint8_t{});
    const std::vector<uint8_t> src(16, pixel);
    std::vector<uint8_t> dst(16);
    EXPECT_EQ(F::filter(src.data(), 4, dst.data(), 4, RoiSize{4, 4}, BorderReplicate, src.data(),
                        areas.spec.data(), areas.buffer.data()),
              okpStatusOk);
    return dst;
}

TEST(SeparableFilterValues, DividesInBothPassesAndTruncates) {
    EXPECT_EQ(filtered8u({1}, 1, 200), std::vector<uint8_t>(16, 200));
    EXPECT_EQ(filtered8u({1, 2, 1}, 4, 200), std::vector<uint8_t>(16, 200));
    EXPECT_EQ(filtered8u({1, 2, 1}, 8, 200), std::vector<uint8_t>(16, 50));
    EXPECT_EQ(filtered8u({1, 2, 1}, 16, 200), std::vector<uint8_t>(16, 12));  // 12.5
    EXPECT_EQ(filtered8u({1, 2, 1}, 1, 200), std::vector<uint8_t>(16, 255));
}

// Sums of zero stay so, and others saturate, however far results are scaled up.
TEST(SeparableFilterValues, ScalesUpWithoutBounds) {
    const int16_t kernel[] = {1, 2, 1};
    const std::vector<int16_t> src{0, 0, 0, 0, 0, -5, 0, 0, 0, 0, 5, 0};
    for (const int32_t scaleFactor : {-20, -127, -128, -149, INT32_MIN}) {
        for (const int32_t divisor : {1, 3, -3}) {
            Kernels<int16_t> kernels{{1, 2, 1}, {1, 2, 1}, divisor};
            Areas<int16_t> areas(kernels, 12, 1, int16_t{});
            ASSERT_EQ(okpiFilterSeparableInit_16s(kernel, kernel, {3, 3}, divisor, scaleFactor, DataType16s,
                                                  1, areas.spec.data()),
                      okpStatusOk);
            std::vector<int16_t> dst(12);
            ASSERT_EQ(okpiFilterSeparable_16s_C1R(src.data(), 24, dst.data(), 24, {12, 1}, BorderReplicate, 0,
                                                  areas.spec.data(), areas.buffer.data()),
                      okpStatusOk);
            EXPECT_EQ(dst,
                      (std::vector<int16_t>{0, 0, 0, 0, -32768, -32768, -32768, 0, 0, 32767, 32767, 32767}))
                << scaleFactor << ' ' << divisor;
        }
    }
}

TEST(SeparableFilterValues, HandlesSpecialFloats) {
    using F = Family<float, float, 1, okpiFilterSeparable_32f_C1R, okpiFilterSeparable_32f_C1R_L>;
    Random random(7);
    const auto kernels = randomKernels<float>(random, 3, 3, 0);
    GuardedImage<float> src(70, 20);
    src.fill([&](int, int, int) { return random.special<float>(); });
    src.set(0, 0, -0.0F);
    GuardedImage<float> dst(70, 20);
    Areas<float> areas(kernels, 70, 1, 0.0F);
    const float value = 0;
    ASSERT_EQ(F::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), BorderReplicate, &value,
                        areas.spec.data(), areas.buffer.data()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), separableReference<float>(src, kernels, BorderReplicate, {value})));
    // A sum of nothing but negative zeros is +0.
    const std::vector<float> zeros(9, 0.0F);
    std::vector<float> result(9);
    const Kernels<float> negative{{-1, -1, -1}, {1, 1, 1}};
    Areas<float> others(negative, 3, 1, 0.0F);
    ASSERT_EQ(F::filter(zeros.data(), 12, result.data(), 12, RoiSize{3, 3}, BorderReplicate, &value,
                        others.spec.data(), others.buffer.data()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(result, zeros));
}

TEST(SeparableFilterSpec, HasItsLayout) {
    struct Spec {
        int32_t kernelKind, kernelWidth, kernelHeight, divisor, scaleFactor;
        void* rowKernel;
        int64_t reserved1;
        void* columnKernel;
        int64_t reserved2;
        int32_t numChannels;
    };
    const int16_t row[] = {1, -2, 3};
    const int16_t column[] = {4, 5};
    alignas(8) char area[200];
    ASSERT_EQ(okpiFilterSeparableInit_16s(row, column, {3, 2}, 7, -4, DataType8u, 3, area), okpStatusOk);
    Spec spec;
    std::memcpy(&spec, area, sizeof spec);
    EXPECT_EQ(spec.kernelKind, 0);
    EXPECT_EQ(spec.kernelWidth, 3);
    EXPECT_EQ(spec.kernelHeight, 2);
    EXPECT_EQ(spec.divisor, 7);
    EXPECT_EQ(spec.scaleFactor, -4);
    EXPECT_EQ(spec.rowKernel, area + 64);
    EXPECT_EQ(spec.columnKernel, area + 70);
    EXPECT_EQ(spec.reserved1 | spec.reserved2, 0);
    EXPECT_EQ(spec.numChannels, 3);
    EXPECT_EQ(std::memcmp(area + 64, row, sizeof row), 0);
    EXPECT_EQ(std::memcmp(area + 70, column, sizeof column), 0);

    const float kernel[] = {0.5F, 1, 2};
    ASSERT_EQ(okpiFilterSeparableInit_32f_L(kernel, kernel, {3, 3}, DataType16u, 1, area), okpStatusOk);
    std::memcpy(&spec, area, sizeof spec);
    EXPECT_EQ(spec.kernelKind, 1);
    EXPECT_EQ(spec.divisor, 1);
    EXPECT_EQ(spec.columnKernel, area + 76);
    EXPECT_EQ(std::memcmp(area + 76, kernel, sizeof kernel), 0);
}

TEST(SeparableFilterInit, ChecksItsArgumentsInOrder) {
    struct Arguments {
        const int16_t* row;
        const int16_t* column;
        RoiSize size;
        int divisor;
        DataTypeCode type;
        int channels;
        void* spec;
    };
    const int16_t kernel[] = {1, 2, 1};
    const float floats[] = {1, 2, 1};
    char spec[200];
    const std::vector<Fault<Arguments>> faults{
        {"null row kernel", okpStatusNullPointer, [](Arguments& a) { a.row = nullptr; }},
        {"null spec", okpStatusNullPointer, [](Arguments& a) { a.spec = nullptr; }},
        {"null column kernel", okpStatusNullPointer, [](Arguments& a) { a.column = nullptr; }},
        {"no width", okpStatusBadSize, [](Arguments& a) { a.size.width = 0; }},
        {"no height", okpStatusBadSize, [](Arguments& a) { a.size.height = 0; }},
        {"double", okpStatusBadDataType, [](Arguments& a) { a.type = DataType64f; }},
        {"two channels", okpStatusBadNumChannels, [](Arguments& a) { a.channels = 2; }},
    };
    auto withDivisor = faults;
    withDivisor.push_back({"float", okpStatusBadDataType, [](Arguments& a) { a.type = DataType32f; }});
    withDivisor.push_back({"unsigned", okpStatusBadDataType, [](Arguments& a) { a.type = DataType16u; }});
    std::swap(withDivisor[6], withDivisor[8]);
    withDivisor.push_back({"divisor", okpStatusZeroDivisor, [](Arguments& a) { a.divisor = 0; }});
    const Arguments valid{kernel, kernel, {3, 3}, 1, DataType8u, 1, spec};
    for (const auto init : {okpiFilterSeparableInit_16s, okpiFilterSeparableInit_16s_L}) {
        expectStatusOrder<Arguments>(
            valid,
            [&](const Arguments& a) {
                return init(a.row, a.column, a.size, a.divisor, 0, a.type, a.channels, a.spec);
            },
            withDivisor);
    }
    for (const auto init : {okpiFilterSeparableInit_32f, okpiFilterSeparableInit_32f_L}) {
        expectStatusOrder<Arguments>(
            valid,
            [&](const Arguments& a) {
                return init(a.row != nullptr ? floats : nullptr, a.column != nullptr ? floats : nullptr,
                            a.size, a.type, a.channels, a.spec);
            },
            faults);
        EXPECT_EQ(init(floats, floats, {3, 3}, DataType16s, 1, spec), okpStatusBadDataType);
    }
    EXPECT_EQ(okpiFilterSeparableInit_16s(kernel, kernel, {3, 3}, 1, 0, DataType16s, 4, spec), okpStatusOk);
}

template <class T>
void expectSizeQueries(okpStatus (*specSize)(RoiSize, DataTypeCode, int32_t, T*),
                       const std::function<okpStatus(RoiSizeL, RoiSize, int, int, int, T*)>& bufferSize) {
    T bytes = -1;
    EXPECT_EQ(specSize({3, 5}, DataType16s, 1, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 16 + 127);
    EXPECT_EQ(specSize({3, 5}, DataType32f, 4, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 32 + 127);
    EXPECT_EQ(bufferSize({640, 1}, {3, 5}, DataType8u, DataType16s, 3, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 3 * 256 + 5 * 8 + 3 * 4 * (6 + 642 * 5));
    EXPECT_EQ(bufferSize({640, 1}, {3, 5}, DataType32f, DataType32f, 1, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 3 * 256 + 5 * 8 + 4 * (12 + 642 * 5));
    bytes = -1;

    struct Arguments {
        RoiSizeL roi;
        RoiSize kernel;
        int type, kernelType, channels;
        T* result;
    };
    const Arguments valid{{640, 480}, {3, 5}, DataType16u, DataType32f, 3, &bytes};
    const std::vector<Fault<Arguments>> faults{
        {"no kernel width", okpStatusBadSize, [](Arguments& a) { a.kernel.width = 0; }},
        {"no kernel height", okpStatusBadSize, [](Arguments& a) { a.kernel.height = -7; }},
        {"null result", okpStatusNullPointer, [](Arguments& a) { a.result = nullptr; }},
        {"kernel type", okpStatusBadDataType, [](Arguments& a) { a.kernelType = DataType8u; }},
        {"channels", okpStatusBadNumChannels, [](Arguments& a) { a.channels = 2; }},
    };
    expectStatusOrder<Arguments>(
        valid, [&](const Arguments& a) { return specSize(a.kernel, a.kernelType, a.channels, a.result); },
        faults);
    auto more = faults;
    more.insert(more.begin(), {"no width", okpStatusBadSize, [](Arguments& a) { a.roi.width = 0; }});
    more.insert(more.begin(), {"no height", okpStatusBadSize, [](Arguments& a) { a.roi.height = 0; }});
    more.insert(more.begin() + 5, {"data type", okpStatusBadDataType, [](Arguments& a) { a.type = 3; }});
    expectStatusOrder<Arguments>(
        valid,
        [&](const Arguments& a) {
            return bufferSize(a.roi, a.kernel, a.type, a.kernelType, a.channels, a.result);
        },
        more);
    // A count that does not fit is an error, never another number.
    EXPECT_EQ(bufferSize({std::is_same_v<T, int32_t> ? INT32_MAX : INT64_MAX - 5, 1}, {3, 5}, DataType8u,
                         DataType16s, 1, &bytes),
              okpStatusSizeTooLarge);
    EXPECT_EQ(bytes, -1);
}

TEST(SeparableFilterSizes, FollowTheirFormulas) {
    expectSizeQueries<int32_t>(okpiFilterSeparableGetSpecSize, [](RoiSizeL roi, RoiSize kernel, int type,
                                                                  int kernelType, int channels, int32_t* p) {
        return okpiFilterSeparableGetBufferSize(
            {static_cast<int32_t>(roi.width), static_cast<int32_t>(roi.height)}, kernel, type, kernelType,
            channels, p);
    });
    expectSizeQueries<int64_t>(okpiFilterSeparableGetSpecSize_L, okpiFilterSeparableGetBufferSize_L);
    int32_t bytes = -1;
    EXPECT_EQ(okpiFilterSeparableGetSpecSize({INT32_MAX, INT32_MAX}, DataType16s, 1, &bytes),
              okpStatusSizeTooLarge);
    EXPECT_EQ(bytes, -1);
}

}  // namespace
}  // namespace okpcv::test
