// Gaussian filters and their specs against their definitions, bit for bit.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "core/border.h"
#include "core/numbers.h"
#include "okpcv.h"
#include "support/cache_stand_in.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// ---- Definitions ----------------------------------------------------------------------------------------

template <class T>
struct Traits;
template <>
struct Traits<uint8_t> {
    using Tap = int16_t;
    static constexpr DataTypeCode code = DataType8u;
    static constexpr int bits = 12;
};
template <>
struct Traits<uint16_t> {
    using Tap = uint16_t;
    static constexpr DataTypeCode code = DataType16u;
    static constexpr int bits = 15;
};
template <>
struct Traits<int16_t> {
    using Tap = int16_t;
    static constexpr DataTypeCode code = DataType16s;
    static constexpr int bits = 15;
};
template <>
struct Traits<float> {
    using Tap = float;
    static constexpr DataTypeCode code = DataType32f;
    static constexpr int bits = 0;
};

std::vector<float> weights(int size, float sigma) {
    const float q = 1.0F / (sigma * sigma);
    std::vector<float> w;
    for (int i = -(size / 2); i <= size / 2; ++i) {
        w.push_back(expf(static_cast<float>(i) * 0.5F * (-static_cast<float>(i)) * q));
    }
    w[size / 2] = 1;  // also where q is infinite
    return w;
}

template <class T>
std::vector<typename Traits<T>::Tap> fullKernel(int size, float sigma) {
    using Tap = typename Traits<T>::Tap;
    const std::vector<float> w = weights(size, sigma);
    float sum = 0;
    for (const float v : w) sum += v;
    const float reciprocal = 1.0F / sum;
    std::vector<Tap> taps;
    for (const float v : w) {
        if constexpr (std::is_same_v<T, float>) {
            taps.push_back(v * reciprocal);
        } else {
            const float one = std::ldexp(1.0F, Traits<T>::bits);
            const auto rounded = static_cast<int64_t>(static_cast<double>(v * one * reciprocal) + 0.5);
            taps.push_back(saturate<Tap>(rounded));
        }
    }
    return taps;
}

// One pass over a line of taps; `at(i)` gives the element that tap i sees.
template <class T, class At>
T passResult(const std::vector<typename Traits<T>::Tap>& taps, const At& at) {
    const int size = static_cast<int>(taps.size());
    if constexpr (std::is_same_v<T, float>) {
        const int half = size / 2;
        float sum = taps[half] * at(half);
        for (int i = 1; i <= half; ++i) {
            const float both = at(half - i) + at(half + i);
            sum = sum + taps[half + i] * both;
        }
        return sum;
    } else {
        int64_t sum = 0;
        for (int i = 0; i < size; ++i) sum += int64_t{taps[i]} * at(i);
        return saturate<T>((sum + (int64_t{1} << (Traits<T>::bits - 1))) >> Traits<T>::bits);
    }
}

template <class T>
T outsideResult(const std::vector<typename Traits<T>::Tap>& taps, T value) {
    if constexpr (std::is_same_v<T, float>) {
        float sum = 0;
        for (const float k : taps) sum += k;
        return value * sum;
    } else {
        return passResult<T>(taps, [&](int) { return value; });
    }
}

template <class T>
std::vector<T> reference(const GuardedImage<T>& src, const std::vector<typename Traits<T>::Tap>& taps,
                         BorderKind kind, const std::vector<T>& borderValue) {
    const Border border(kind);
    const int half = static_cast<int>(taps.size()) / 2;
    const int width = src.width(), height = src.height(), channels = src.channels();
    std::map<int64_t, std::vector<T>> rows;  // by source row
    const auto filteredRow = [&](int64_t source) -> const std::vector<T>& {
        std::vector<T>& row = rows[source];
        if (!row.empty()) return row;
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                row.push_back(source == Border::kValue
                                  ? outsideResult<T>(taps, borderValue[c])
                                  : passResult<T>(taps, [&](int i) {
                                        const int64_t column = border.column(x - half + i, width);
                                        return column == Border::kValue ? borderValue[c]
                                                                        : src.at(static_cast<int>(column),
                                                                                 static_cast<int>(source), c);
                                    }));
            }
        }
        return row;
    };
    std::vector<const T*> seen;
    for (int y = -half; y < height + half; ++y) seen.push_back(filteredRow(border.row(y, height)).data());
    std::vector<T> result;
    const int rowElements = width * channels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowElements; ++x) {
            result.push_back(passResult<T>(taps, [&](int j) { return seen[y + j][x]; }));
        }
    }
    return result;
}

// ---- The exports of one type and channel count ----------------------------------------------------------

template <class Type, int Channels, auto Filter32, auto Filter64, auto FilterBorder>
struct Family {
    using T = Type;
    static constexpr int channels = Channels;

    static decltype(auto) value(const T* v) {
        if constexpr (Channels == 1) {
            return T{*v};
        } else {
            return static_cast<const T*>(v);
        }
    }
    static okpStatus filter(const T* src, int32_t srcStep, T* dst, int32_t dstStep, RoiSize size,
                            BorderKind border, const T* v, const void* spec, void* buffer) {
        return Filter32(src, srcStep, dst, dstStep, size, border, value(v), spec, buffer);
    }
    static okpStatus filter(const T* src, int64_t srcStep, T* dst, int64_t dstStep, RoiSizeL size,
                            BorderKind border, const T* v, const void* spec, void* buffer) {
        return Filter64(src, srcStep, dst, dstStep, size, border, value(v), spec, buffer);
    }
    static okpStatus filterBorder(const T* src, int32_t srcStep, T* dst, int32_t dstStep, RoiSize size,
                                  const T* v, const void* spec, void* buffer) {
        return FilterBorder(src, srcStep, dst, dstStep, size, value(v), spec, buffer);
    }
};

// A spec and a buffer of exactly the sizes that the queries report, before unreadable pages.
struct Areas {
    GuardedMemory spec, buffer;

    Areas(int size, float sigma, BorderKind border, DataTypeCode type, int channels, int width)
        : spec(specBytes(size, type, channels), GuardedMemory::At::End),
          buffer(bufferBytes(size, type, channels, width), GuardedMemory::At::End) {
        int bytes = 0, initBytes = 0;
        EXPECT_EQ(okpiFilterGaussianGetSpecSize(size, type, channels, &bytes, &initBytes), okpStatusOk);
        const GuardedMemory init(static_cast<size_t>(initBytes), GuardedMemory::At::End);
        EXPECT_EQ(
            okpiFilterGaussianInit({width, 1}, size, sigma, border, type, channels, specData(), init.data()),
            okpStatusOk);
    }
    void* specData() const { return spec.data(); }
    void* bufferData() const { return buffer.data(); }

    static size_t specBytes(int size, DataTypeCode type, int channels) {
        int bytes = 0, initBytes = 0;
        EXPECT_EQ(okpiFilterGaussianGetSpecSize(size, type, channels, &bytes, &initBytes), okpStatusOk);
        return static_cast<size_t>(bytes);
    }
    static size_t bufferBytes(int size, DataTypeCode type, int channels, int width) {
        int bytes = 0, specBytes = 0;
        EXPECT_EQ(okpiFilterGaussianGetBufferSize({width, 1}, size, type, channels, &specBytes, &bytes),
                  okpStatusOk);
        return static_cast<size_t>(bytes);
    }
};

// Pixels that reach the ends of the type's range in patches, so that sums reach theirs.
template <class T>
T patchy(Random& random, int x, int y) {
    if constexpr (!std::is_same_v<T, float>) {
        if ((x / 9 + y / 5) % 3 == 0) return std::numeric_limits<T>::max();
        if ((x / 9 + y / 5) % 3 == 1) return std::numeric_limits<T>::min();
    }
    return random.value<T>();
}

template <class F>
void expectDefinition(Random& random, int size, float sigma, int width, int height, BorderKind border) {
    using T = typename F::T;
    typename GuardedImage<T>::Layout around{.channels = F::channels, .padding = random.integer(0, 3) * 4};
    if ((border & BorderInMemLeft) != 0) around.left = size / 2;
    if ((border & BorderInMemRight) != 0) around.right = size / 2;
    if ((border & BorderInMemTop) != 0) around.top = size / 2;
    if ((border & BorderInMemBottom) != 0) around.bottom = size / 2;
    around.at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
    GuardedImage<T> src(width, height, around);
    const bool patches = random.chance(0.5);
    src.fill([&](int x, int y, int) { return patches ? patchy<T>(random, x, y) : random.value<T>(); });
    std::vector<T> value;
    for (int c = 0; c < F::channels; ++c) value.push_back(random.value<T>());
    const auto expected = reference(src, fullKernel<T>(size, sigma), border, value);
    const Areas areas(size, sigma, border, Traits<T>::code, F::channels, width);
    const auto trace = [&] {
        return "kernel " + std::to_string(size) + ", sigma " + std::to_string(sigma) + ", region " +
               std::to_string(width) + " x " + std::to_string(height) + ", border " + std::to_string(border);
    };

    GuardedImage<T> dst(width, height, {.channels = F::channels, .padding = 4});
    ASSERT_EQ(F::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(), border, value.data(),
                        areas.specData(), areas.bufferData()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(dst.pixels(), expected)) << trace();
    EXPECT_TRUE(dst.paddingIntact());

    GuardedImage<T> other(width, height, {.channels = F::channels, .at = GuardedMemory::At::Start});
    ASSERT_EQ(F::filterBorder(src.data(), src.step(), other.data(), other.step(), src.roi(), value.data(),
                              areas.specData(), areas.bufferData()),
              okpStatusOk);
    EXPECT_TRUE(sameBits(other.pixels(), expected)) << trace();

    const bool frameless = (border & BorderInMemory) == 0;
    if (frameless) {
        ASSERT_EQ(
            F::filter(src.data(), int64_t{src.step()}, src.data(), int64_t{src.step()},
                      RoiSizeL{width, height}, border, value.data(), areas.specData(), areas.bufferData()),
            okpStatusOk);
        EXPECT_TRUE(sameBits(src.pixels(), expected)) << "in place, " << trace();
        EXPECT_TRUE(src.paddingIntact());
    }
}

template <class F>
class Gaussian : public testing::Test {
  protected:
    void SetUp() override { cacheStandIn = CacheStandIn{}; }
};

using Families = testing::Types<Family<uint8_t, 1, okpiFilterGaussian_8u_C1R, okpiFilterGaussian_8u_C1R_L,
                                       okpiFilterGaussianBorder_8u_C1R>,
                                Family<uint8_t, 3, okpiFilterGaussian_8u_C3R, okpiFilterGaussian_8u_C3R_L,
                                       okpiFilterGaussianBorder_8u_C3R>,
                                Family<uint16_t, 1, okpiFilterGaussian_16u_C1R, okpiFilterGaussian_16u_C1R_L,
                                       okpiFilterGaussianBorder_16u_C1R>,
                                Family<uint16_t, 3, okpiFilterGaussian_16u_C3R, okpiFilterGaussian_16u_C3R_L,
                                       okpiFilterGaussianBorder_16u_C3R>,
                                Family<int16_t, 1, okpiFilterGaussian_16s_C1R, okpiFilterGaussian_16s_C1R_L,
                                       okpiFilterGaussianBorder_16s_C1R>,
                                Family<int16_t, 3, okpiFilterGaussian_16s_C3R, okpiFilterGaussian_16s_C3R_L,
                                       okpiFilterGaussianBorder_16s_C3R>,
                                Family<float, 1, okpiFilterGaussian_32f_C1R, okpiFilterGaussian_32f_C1R_L,
                                       okpiFilterGaussianBorder_32f_C1R>,
                                Family<float, 3, okpiFilterGaussian_32f_C3R, okpiFilterGaussian_32f_C3R_L,
                                       okpiFilterGaussianBorder_32f_C3R>>;
TYPED_TEST_SUITE(Gaussian, Families);

constexpr BorderKind kBorders[] = {1,  3,  6,   17, 33,  65,  129, 19,  35,  67,  131, 22,
                                   38, 70, 134, 49, 195, 102, 150, 241, 243, 246, 240, 99};

TYPED_TEST(Gaussian, EqualsItsDefinitionForAllBordersAndSmallRegions) {
    Random random(1);
    for (const BorderKind border : kBorders) {
        for (const int size : {3, 5, 7, 9, 11, 15, 21}) {
            expectDefinition<TypeParam>(random, size, random.real(0.3F, 4.0F), random.integer(1, 40),
                                        random.integer(1, 12), border);
        }
    }
}

// Lengths with code of their own, and the shortest without; where rows are long enough for each vector of it.
TYPED_TEST(Gaussian, EqualsItsDefinitionAtAllWidths) {
    Random random(8);
    for (const int size : {3, 5, 7, 9, 11, 13, 15, 17}) {
        for (int width = 1; width <= 70; ++width) {
            expectDefinition<TypeParam>(random, size, 0.2F * static_cast<float>(size), width, 2,
                                        BorderMirror);
        }
    }
}

// Kernels of every kind of weight: a centre alone, almost alone, flat, and flatter than the format resolves.
TYPED_TEST(Gaussian, EqualsItsDefinitionForAllSizesAndSigmas) {
    Random random(2);
    for (const int size : {3, 5, 7, 9, 13, 15, 31, 33, 63, 65, 129}) {
        for (const float sigma : {1e-30F, 0.01F, 0.26F, 0.3F, 0.8F, 1.0F, 2.7F, 0.15F * size, 1e3F, 1e30F}) {
            expectDefinition<TypeParam>(random, size, sigma, random.integer(60, 300) / TypeParam::channels,
                                        random.integer(9, 40), kBorders[random.integer(0, 23)]);
        }
    }
}

TYPED_TEST(Gaussian, EqualsItsDefinitionAcrossStripsOfWideRegions) {
    Random random(3);
    expectDefinition<TypeParam>(random, 31, 4.0F, 9001 / TypeParam::channels, 3, BorderMirror);
    expectDefinition<TypeParam>(random, 3, 0.8F, 70001 / TypeParam::channels, 2, BorderConstant);
    // The centre alone counts, in the memory of the whole kernel.
    for (const int size : {7, 9})
        expectDefinition<TypeParam>(random, size, 0.2F, 26111 / TypeParam::channels, 10, BorderMirror);
}

// Sums of coefficients of 8192, and of up to 65536 of the longest kernels whose rounded coefficients are not
// all 0.
TYPED_TEST(Gaussian, SaturatesWhereRoundedCoefficientsSumToMoreThanOne) {
    Random random(4);
    if constexpr (sizeof(typename TypeParam::T) <= 2) {
        const int size = sizeof(typename TypeParam::T) == 1 ? 8191 : 65535;
        expectDefinition<TypeParam>(random, size, 1e9F, 4, 1, BorderReplicate);
    }
}

// Streamed and ordinary stores leave the same pixels; the query decides, and is not asked below 512 KiB.
TYPED_TEST(Gaussian, StreamsLargeDestinations) {
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(5);
    for (const int size : {3, 9}) {
        const int width = 700 / channels, height = 780 / static_cast<int>(sizeof(T)) + 1;
        // Steps that keep all rows aligned alike, or do not.
        for (const int padding : {4, 16 - static_cast<int>(width * channels * sizeof(T) % 16)}) {
            GuardedImage<T> src(width, height, {.channels = channels, .padding = padding});
            src.fill([&](int, int, int) { return random.value<T>(); });
            const std::vector<T> value(3);
            const Areas areas(size, 1.2F, BorderReplicate, Traits<T>::code, channels, width);
            std::vector<T> results[3];
            for (const int cacheBytes : {INT32_MAX, 1, 0}) {
                cacheStandIn = {.status = cacheBytes == 0 ? okpStatusBadArgument : okpStatusOk,
                                .bytes = cacheBytes};
                GuardedImage<T> dst(width, height, {.channels = channels, .padding = padding});
                ASSERT_EQ(
                    TypeParam::filter(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                      BorderReplicate, value.data(), areas.specData(), areas.bufferData()),
                    okpStatusOk);
                EXPECT_EQ(cacheStandIn.queries, 1);
                EXPECT_TRUE(dst.paddingIntact());
                results[cacheBytes == 1 ? 1 : cacheBytes == 0 ? 2 : 0] = dst.pixels();
            }
            EXPECT_TRUE(sameBits(results[1], results[0]));
            EXPECT_TRUE(sameBits(results[2], results[0]));

            cacheStandIn = CacheStandIn{};
            ASSERT_EQ(
                TypeParam::filter(src.data(), src.step(), src.data(), src.step(), RoiSize{width, height - 40},
                                  BorderReplicate, value.data(), areas.specData(), areas.bufferData()),
                okpStatusOk);
            EXPECT_EQ(cacheStandIn.queries, 0);
        }
    }
}

TEST(GaussianStreaming, AsksAboutTheCachesFrom512KiBOn) {
    const Areas areas(3, 1, BorderReplicate, DataType8u, 1, 1024);
    const std::vector<uint8_t> src(1024 * 512);
    std::vector<uint8_t> dst(src.size());
    for (const int width : {1023, 1024}) {
        cacheStandIn = CacheStandIn{};
        ASSERT_EQ(okpiFilterGaussian_8u_C1R(src.data(), 1024, dst.data(), 1024, {width, 512}, BorderReplicate,
                                            0, areas.specData(), areas.bufferData()),
                  okpStatusOk);
        EXPECT_EQ(cacheStandIn.queries, width == 1024 ? 1 : 0);
    }
}

TYPED_TEST(Gaussian, GivesTheSameInStripsAndAtAnyAddress) {
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(6);
    const std::vector<T> value(3, T(9));
    for (const int size : {3, 15}) {
        GuardedImage<T> src(131, 67, {.channels = channels, .padding = 4});
        src.fill([&](int, int, int) { return random.value<T>(); });
        const Areas areas(size, 2.0F, BorderMirror, Traits<T>::code, channels, 131);
        GuardedImage<T> whole(131, 67, {.channels = channels});
        ASSERT_EQ(TypeParam::filterBorder(src.data(), src.step(), whole.data(), whole.step(), src.roi(),
                                          value.data(), areas.specData(), areas.bufferData()),
                  okpStatusOk);
        GuardedImage<T> strips(131, 67, {.channels = channels});
        for (int y = 0; y < 67;) {
            int rows = y == 0 ? 20 : random.integer(1, 9);
            if (y + rows > 67 - 20) rows = 67 - y;
            const BorderKind border =
                BorderMirror | (y > 0 ? BorderInMemTop : 0) | (y + rows < 67 ? BorderInMemBottom : 0);
            ASSERT_EQ(
                TypeParam::filter(src.row(y), src.step(), strips.row(y), strips.step(), RoiSize{131, rows},
                                  border, value.data(), areas.specData(), areas.bufferData()),
                okpStatusOk);
            y += rows;
        }
        EXPECT_TRUE(sameBits(strips.pixels(), whole.pixels()));

        const int oddStep = src.step() + 1;
        std::vector<char> odd(static_cast<size_t>(oddStep) * 67 + 2);
        for (int y = 0; y < 67; ++y) {
            std::memcpy(odd.data() + 1 + y * oddStep, static_cast<const void*>(src.row(y)),
                        131 * channels * sizeof(T));
        }
        GuardedImage<T> dst(131, 67, {.channels = channels, .padding = 3});
        ASSERT_EQ(
            TypeParam::filter(reinterpret_cast<const T*>(odd.data() + 1), oddStep, dst.data(), dst.step(),
                              dst.roi(), BorderMirror, value.data(), areas.specData(), areas.bufferData()),
            okpStatusOk);
        EXPECT_TRUE(sameBits(dst.pixels(), whole.pixels()));
    }
}

// ---- Statuses -------------------------------------------------------------------------------------------

template <class T>
struct FilterArguments {
    const T* src;
    int64_t srcStep;
    T* dst;
    int64_t dstStep;
    RoiSize size;
    BorderKind border;
    const T* value;
    const void* spec;
    void* buffer;
};

TYPED_TEST(Gaussian, ChecksArgumentsInOrder) {
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    using Arguments = FilterArguments<T>;
    GuardedImage<T> src(5, 4, {.channels = channels}), dst(5, 4, {.channels = channels});
    dst.fill([](int, int, int) { return 77; });
    const std::vector<T> before = dst.pixels();
    const std::vector<T> value(3);
    const Areas areas(3, 1.0F, BorderReplicate, Traits<T>::code, channels, 5);
    const DataTypeCode another = Traits<T>::code == DataType16s ? DataType16u : DataType16s;
    const Areas otherType(3, 1.0F, BorderReplicate, another, channels, 5);
    std::vector<char> zeros(1000), even(1000), badBorder(1000);
    std::memcpy(even.data(), areas.specData(), 20);
    const int32_t four = 4;
    std::memcpy(even.data(), &four, sizeof four);
    std::memcpy(badBorder.data(), areas.specData(), 20);
    const BorderKind bad = 2;
    std::memcpy(badBorder.data() + 12, &bad, sizeof bad);

    std::vector<Fault<Arguments>> faults = {
        {"null source", okpStatusNullPointer, [](auto& a) { a.src = nullptr; }},
        {"null destination", okpStatusNullPointer, [](auto& a) { a.dst = nullptr; }},
        {"null spec", okpStatusNullPointer, [](auto& a) { a.spec = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](auto& a) { a.buffer = nullptr; }},
        {"source step 0", okpStatusBadStep, [](auto& a) { a.srcStep = 0; }},
        {"destination step negative", okpStatusBadStep, [](auto& a) { a.dstStep = -8; }},
        {"width 0", okpStatusBadSize, [](auto& a) { a.size.width = 0; }},
        {"height negative", okpStatusBadSize, [](auto& a) { a.size.height = -1; }},
        {"spec of zeros", okpStatusBadArgument, [&](auto& a) { a.spec = zeros.data(); }},
        {"spec of even size", okpStatusBadArgument, [&](auto& a) { a.spec = even.data(); }},
        {"spec of another type", okpStatusBadDataType, [&](auto& a) { a.spec = otherType.specData(); }},
    };
    const Arguments valid{src.data(),      src.step(),   dst.data(),       dst.step(),        src.roi(),
                          BorderReplicate, value.data(), areas.specData(), areas.bufferData()};
    auto withSpec = faults;
    withSpec.push_back({"border of the spec", okpStatusBadBorder, [&](auto& a) {
                            if (a.spec == areas.specData()) a.spec = badBorder.data();
                        }});
    expectStatusOrder<Arguments>(
        valid,
        [](const Arguments& a) {
            return TypeParam::filterBorder(a.src, static_cast<int>(a.srcStep), a.dst,
                                           static_cast<int>(a.dstStep), a.size, a.value, a.spec, a.buffer);
        },
        withSpec);

    faults.push_back({"border 2", okpStatusBadBorder, [](auto& a) { a.border = 2; }});
    faults.push_back({"border 256", okpStatusBadBorder, [](auto& a) { a.border = 256 + BorderMirror; }});
    if (channels == 3) {
        faults.push_back({"constant border without values", okpStatusNullPointer, [](auto& a) {
                              if (a.border == BorderReplicate) a.border = BorderConstant;
                              a.value = nullptr;
                          }});
    }
    expectStatusOrder<Arguments>(
        valid,
        [](const Arguments& a) {
            return TypeParam::filter(a.src, static_cast<int>(a.srcStep), a.dst, static_cast<int>(a.dstStep),
                                     a.size, a.border, a.value, a.spec, a.buffer);
        },
        faults);
    expectStatusOrder<Arguments>(
        valid,
        [](const Arguments& a) {
            return TypeParam::filter(a.src, a.srcStep, a.dst, a.dstStep,
                                     RoiSizeL{a.size.width, a.size.height}, a.border, a.value, a.spec,
                                     a.buffer);
        },
        faults);
    EXPECT_EQ(TypeParam::filter(src.data(), int64_t{64}, dst.data(), int64_t{64}, RoiSizeL{INT64_MAX, 1},
                                BorderReplicate, value.data(), areas.specData(), areas.bufferData()),
              okpStatusSizeTooLarge);
    EXPECT_TRUE(sameBits(dst.pixels(), before));
}

struct InitArguments {
    RoiSize size{4, 4};
    int32_t kernelSize = 5;
    float sigma = 1;
    BorderKind border = BorderReplicate;
    DataTypeCode type = DataType8u;
    int32_t channels = 1;
    void* spec;
    void* scratch;
};

TEST(GaussianInit, ChecksArgumentsInOrder) {
    std::vector<char> spec(1000), scratch(1000);
    const std::vector<char> before = spec;
    using F = Fault<InitArguments>;
    const std::vector<F> size = {{"width 0", okpStatusBadSize, [](auto& a) { a.size.width = 0; }},
                                 {"height 0", okpStatusBadSize, [](auto& a) { a.size.height = 0; }}};
    const std::vector<F> kernel = {{"kernel 1", okpStatusBadArgument, [](auto& a) { a.kernelSize = 1; }},
                                   {"kernel 4", okpStatusBadArgument, [](auto& a) { a.kernelSize = 4; }},
                                   {"kernel -3", okpStatusBadArgument, [](auto& a) { a.kernelSize = -3; }},
                                   {"type 64f", okpStatusBadDataType, [](auto& a) { a.type = DataType64f; }},
                                   {"type 3", okpStatusBadDataType, [](auto& a) { a.type = 3; }},
                                   {"4 channels", okpStatusBadNumChannels, [](auto& a) { a.channels = 4; }}};
    const std::vector<F> pointers = {
        {"null spec", okpStatusNullPointer, [](auto& a) { a.spec = nullptr; }},
        {"null scratch", okpStatusNullPointer, [](auto& a) { a.scratch = nullptr; }}};
    const auto joined = [](std::vector<F> a, const std::vector<F>& b) {
        a.insert(a.end(), b.begin(), b.end());
        return a;
    };
    std::vector<F> all = joined(joined(pointers, size), kernel);
    all.push_back({"sigma 0", okpStatusBadArgument, [](auto& a) { a.sigma = 0; }});
    all.push_back({"sigma NaN", okpStatusBadArgument, [](auto& a) { a.sigma = NAN; }});
    all.push_back({"border 0", okpStatusBadBorder, [](auto& a) { a.border = 0; }});
    all.push_back({"border 16", okpStatusBadBorder, [](auto& a) { a.border = 16; }});
    all.push_back({"border 256", okpStatusBadBorder, [](auto& a) { a.border = 257; }});
    InitArguments valid;
    valid.spec = spec.data();
    valid.scratch = scratch.data();
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianInit(a.size, a.kernelSize, a.sigma, a.border, a.type, a.channels, a.spec,
                                          a.scratch);
        },
        all);
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianInit_L({a.size.width, a.size.height}, a.kernelSize, a.sigma, a.border,
                                            a.type, a.channels, a.spec, a.scratch);
        },
        all);
    EXPECT_EQ(spec, before);

    // The queries check what they share with it; `spec` and `scratch` stand for their results.
    int64_t results[2] = {};
    valid.spec = &results[0];
    valid.scratch = &results[1];
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianGetSpecSize(a.kernelSize, a.type, a.channels,
                                                 static_cast<int32_t*>(a.spec),
                                                 static_cast<int32_t*>(a.scratch));
        },
        joined(pointers, kernel));
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianGetSpecSize_L(a.kernelSize, a.type, a.channels,
                                                   static_cast<int64_t*>(a.spec),
                                                   static_cast<int64_t*>(a.scratch));
        },
        joined(pointers, kernel));
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianGetBufferSize(a.size, a.kernelSize, a.type, a.channels,
                                                   static_cast<int32_t*>(a.spec),
                                                   static_cast<int32_t*>(a.scratch));
        },
        joined(joined(pointers, size), kernel));
    expectStatusOrder<InitArguments>(
        valid,
        [](const InitArguments& a) {
            return okpiFilterGaussianGetBufferSize_L({a.size.width, a.size.height}, a.kernelSize, a.type,
                                                     a.channels, static_cast<int64_t*>(a.spec),
                                                     static_cast<int64_t*>(a.scratch));
        },
        joined(joined(pointers, size), kernel));
    EXPECT_EQ(results[0], 0);
    EXPECT_EQ(results[1], 0);
}

// ---- Specs and sizes ------------------------------------------------------------------------------------

template <class T>
T readAt(const void* memory, size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const char*>(memory) + offset, sizeof value);
    return value;
}

template <class T>
std::vector<typename Traits<T>::Tap> tapsOfSpec(int size, float sigma, size_t offset) {
    using Tap = typename Traits<T>::Tap;
    alignas(64) static char memory[4096];
    static char scratch[4096];
    char* const spec = memory + offset;
    EXPECT_EQ(okpiFilterGaussianInit({9, 9}, size, sigma, 67, Traits<T>::code, 1, spec, scratch + 1),
              okpStatusOk);
    EXPECT_EQ(readAt<int32_t>(spec, 0), size);
    EXPECT_EQ(readAt<int32_t>(spec, 4), 20);
    EXPECT_EQ(readAt<int32_t>(spec, 8), Traits<T>::code);
    EXPECT_EQ(readAt<int32_t>(spec, 12), 67);
    EXPECT_EQ(readAt<int32_t>(spec, 16), Traits<T>::bits);
    const size_t first = (offset + 20 + 15) / 16 * 16;
    std::vector<Tap> taps;
    for (int i = 0; i < size; ++i) taps.push_back(readAt<Tap>(memory, first + i * sizeof(Tap)));

    const size_t half = (first + size * sizeof(Tap) + 63) / 64 * 64;
    EXPECT_EQ(readAt<int32_t>(memory, half), size);
    EXPECT_EQ(readAt<int32_t>(memory, half + 4), 64);
    EXPECT_EQ(readAt<int32_t>(memory, half + 8), Traits<T>::code);
    EXPECT_EQ(readAt<int32_t>(memory, half + 12), 0);
    const std::vector<float> w = weights(size, sigma);
    float outer = 0;
    for (int i = 0; i < size / 2; ++i) outer += w[i];
    const float reciprocal = 1.0F / (1.0F + 2.0F * outer);
    for (int i = 0; i <= size / 2; ++i) {
        EXPECT_EQ(readAt<float>(memory, half + 64 + i * 4), w[i] * reciprocal);
    }
    return taps;
}

TEST(GaussianSpec, HoldsTheRecords) {
    for (const size_t offset : {0, 1, 37, 63}) {
        for (const int size : {3, 5, 63, 129}) {
            for (const float sigma : {0.5F, 1.0F, 3.0F, 40.0F}) {
                EXPECT_EQ(tapsOfSpec<uint8_t>(size, sigma, offset), fullKernel<uint8_t>(size, sigma));
                EXPECT_EQ(tapsOfSpec<uint16_t>(size, sigma, offset), fullKernel<uint16_t>(size, sigma));
                EXPECT_EQ(tapsOfSpec<int16_t>(size, sigma, offset), fullKernel<int16_t>(size, sigma));
                EXPECT_EQ(tapsOfSpec<float>(size, sigma, offset), fullKernel<float>(size, sigma));
            }
        }
    }
    EXPECT_EQ(tapsOfSpec<uint8_t>(3, 1.0F, 0), (std::vector<int16_t>{1123, 1851, 1123}));
    EXPECT_EQ(tapsOfSpec<int16_t>(3, 0.01F, 0), (std::vector<int16_t>{0, 32767, 0}));
    EXPECT_EQ(tapsOfSpec<uint16_t>(3, 0.01F, 0), (std::vector<uint16_t>{0, 32768, 0}));
    EXPECT_EQ(tapsOfSpec<uint8_t>(3, 0.01F, 0), (std::vector<int16_t>{0, 4096, 0}));
}

TEST(GaussianSpec, IsTheCentreAloneWhereSigmaSquaredUnderflows) {
    alignas(64) char spec[512];
    char scratch[512];
    for (const float sigma : {1e-38F, 1e-23F, 3e-20F}) {
        ASSERT_EQ(okpiFilterGaussianInit({1, 1}, 5, sigma, 1, DataType32f, 3, spec, scratch), okpStatusOk);
        const float expected[] = {0, 0, 1, 0, 0};
        EXPECT_EQ(std::memcmp(spec + 32, expected, sizeof expected), 0) << sigma;
    }
}

TEST(GaussianSpec, IsMadeAndUsedWhereDenormalsTrap) {
    std::array<float, 9> pixels;
    pixels.fill(1e-40F);
    std::array<float, 9> blurred{};
    alignas(32) char spec[4096], scratch[4096];
    const unsigned callers = _mm_getcsr();
    constexpr unsigned denormalMask = 1U << 8;
    _mm_setcsr(callers & ~denormalMask);
    const okpStatus made = okpiFilterGaussianInit({3, 3}, 5, 1e-20F, 1, DataType32f, 1, spec, scratch);
    const okpStatus used = okpiFilterGaussian_32f_C1R(pixels.data(), 12, blurred.data(), 12, {3, 3},
                                                      BorderReplicate, 0, spec, scratch);
    _mm_setcsr(callers);
    EXPECT_EQ(made, okpStatusOk);
    EXPECT_EQ(used, okpStatusOk);
    EXPECT_EQ(blurred, pixels);
}

TEST(GaussianSizes, AddTheHalfKernelRecordAndReportWhatDoesNotFit) {
    int spec = 0, init = 0, buffer = 0;
    ASSERT_EQ(okpiFilterGaussianGetSpecSize(31, DataType8u, 1, &spec, &init), okpStatusOk);
    EXPECT_GE(init, 1);
    int total = spec;
    ASSERT_EQ(okpiFilterGaussianGetBufferSize({640, 480}, 31, DataType8u, 1, &total, &buffer), okpStatusOk);
    EXPECT_GE(total, spec + 64 + 16 * 4);
    EXPECT_GE(buffer, init);
    int64_t specL = 0, initL = 0, totalL = spec, bufferL = 0;
    ASSERT_EQ(okpiFilterGaussianGetSpecSize_L(31, DataType8u, 1, &specL, &initL), okpStatusOk);
    ASSERT_EQ(okpiFilterGaussianGetBufferSize_L({640, 480}, 31, DataType8u, 1, &totalL, &bufferL),
              okpStatusOk);
    EXPECT_EQ(specL, spec);
    EXPECT_EQ(initL, init);
    EXPECT_EQ(totalL, total);
    EXPECT_EQ(bufferL, buffer);

    int keptSpec = 7, kept = 9;
    EXPECT_EQ(okpiFilterGaussianGetSpecSize(INT32_MAX, DataType32f, 1, &keptSpec, &kept),
              okpStatusSizeTooLarge);
    EXPECT_EQ(okpiFilterGaussianGetBufferSize({INT32_MAX, 1}, 3, DataType8u, 1, &keptSpec, &kept),
              okpStatusSizeTooLarge);
    EXPECT_EQ(keptSpec, 7);
    EXPECT_EQ(kept, 9);
    keptSpec = INT32_MAX;
    EXPECT_EQ(okpiFilterGaussianGetBufferSize({9, 1}, 3, DataType8u, 1, &keptSpec, &kept),
              okpStatusSizeTooLarge);
    EXPECT_EQ(okpiFilterGaussianGetBufferSize_L({INT64_MAX, 1}, 3, DataType8u, 3, &specL, &bufferL),
              okpStatusSizeTooLarge);
    EXPECT_EQ(okpiFilterGaussianGetBufferSize_L({int64_t{1} << 40, 1}, 3, DataType8u, 3, &specL, &bufferL),
              okpStatusOk);
}

}  // namespace
}  // namespace okpcv::test
