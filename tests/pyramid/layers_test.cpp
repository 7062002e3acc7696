// Pyramid layers against their definition, bit for bit, and what a pyramid of them must be good for.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/compare.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// The three functions of one kind of layer and one type.
template <bool IsUp, class T, int Channels, class RoiType, class CountType, auto GetSize, auto Init,
          auto Operation>
struct Layer {
    using Element = T;
    using Roi = RoiType;
    using Count = CountType;
    static constexpr bool isUp = IsUp;
    static constexpr int channels = Channels;
    static constexpr auto getSize = GetSize;
    static constexpr auto init = Init;
    static constexpr auto operation = Operation;
};
#define LAYER(isUp, way, type, T, channels, Roi, Count)                         \
    Layer<isUp, T, channels, Roi, Count, okpiPyramidLayer##way##GetSize_##type, \
          okpiPyramidLayer##way##Init_##type, okpiPyramidLayer##way##_##type>
using Down8u = LAYER(false, Down, 8u_C1R, uint8_t, 1, RoiSize, int32_t);
using Up8u = LAYER(true, Up, 8u_C1R, uint8_t, 1, RoiSize, int32_t);

using AllLayers = testing::Types<Down8u, LAYER(false, Down, 8u_C3R, uint8_t, 3, RoiSize, int32_t),
                                 LAYER(false, Down, 16u_C1R, uint16_t, 1, RoiSize, int32_t),
                                 LAYER(false, Down, 16u_C3R, uint16_t, 3, RoiSize, int32_t),
                                 LAYER(false, Down, 32f_C1R, float, 1, RoiSize, int32_t),
                                 LAYER(false, Down, 32f_C3R, float, 3, RoiSize, int32_t),
                                 LAYER(false, Down, 32f_C1R_L, float, 1, RoiSizeL, int64_t), Up8u,
                                 LAYER(true, Up, 8u_C3R, uint8_t, 3, RoiSize, int32_t),
                                 LAYER(true, Up, 16u_C1R, uint16_t, 1, RoiSize, int32_t),
                                 LAYER(true, Up, 16u_C3R, uint16_t, 3, RoiSize, int32_t),
                                 LAYER(true, Up, 32f_C1R, float, 1, RoiSize, int32_t),
                                 LAYER(true, Up, 32f_C3R, float, 3, RoiSize, int32_t),
                                 LAYER(true, Up, 32f_C1R_L, float, 1, RoiSizeL, int64_t)>;
template <class L>
struct PyramidLayer : testing::Test {};
TYPED_TEST_SUITE(PyramidLayer, AllLayers);

template <class L>
typename L::Roi roiOf(RoiSize size) {
    return {size.width, size.height};
}

// A spec and a buffer of exactly the queried sizes, at any address, between unreadable pages.
template <class L>
class Areas {
  public:
    Areas(RoiSize srcRoi, float rate, const std::vector<float>& kernel, Random& random)
        : sizes_(query(srcRoi, rate, kernel)), spec_(sizes_.spec, random), buffer_(sizes_.buffer, random) {
        EXPECT_EQ(L::init(roiOf<L>(srcRoi), rate, kernel.empty() ? nullptr : kernel.data(), length(kernel),
                          spec_.begin),
                  okpStatusOk);
    }
    const void* spec() const { return spec_.begin; }
    void* buffer() const { return buffer_.begin; }

  private:
    static int32_t length(const std::vector<float>& kernel) {
        return kernel.empty() ? 5 : static_cast<int32_t>(kernel.size());
    }
    struct Sizes {
        typename L::Count spec = 0, buffer = 0;
    };
    static Sizes query(RoiSize srcRoi, float rate, const std::vector<float>& kernel) {
        Sizes sizes;
        EXPECT_EQ(L::getSize(roiOf<L>(srcRoi), rate, length(kernel), &sizes.spec, &sizes.buffer),
                  okpStatusOk);
        return sizes;
    }
    // Ends at the page, wherever its size makes it begin, or begins a few bytes behind one.
    struct Area {
        GuardedMemory memory;
        char* begin;

        Area(int64_t bytes, Random& random) : Area(bytes, random.integer(0, 16)) {}
        Area(int64_t bytes, int shift)
            : memory(static_cast<size_t>(bytes + shift),
                     shift == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start),
              begin(memory.data() + shift) {}
    };

    Sizes sizes_;
    Area spec_, buffer_;
};

RoiSize downSize(RoiSize size, float rate) {
    RoiSize down{};
    EXPECT_EQ(okpiGetPyramidDownROI(size, &down, rate), okpStatusOk);
    return down;
}
// One of the sizes of the range.
RoiSize upSize(RoiSize size, float rate, Random& random) {
    RoiSize least{}, most{};
    EXPECT_EQ(okpiGetPyramidUpROI(size, &least, &most, rate), okpStatusOk);
    return {random.integer(least.width, most.width), random.integer(least.height, most.height)};
}

// The definition for one channel of an image, by functions of places. Down filters the source; Up filters an
// image of twice the size with zeros between the pixels, which have no terms.
template <class T>
class Definition {
  public:
    Definition(const GuardedImage<T>& src, int channel, float rate, std::vector<float> kernel, bool isUp)
        : src_(src), channel_(channel), isUp_(isUp), rate_(rate) {
        if (kernel.empty()) kernel = {1, 4, 6, 4, 1};
        double sum = 0;
        for (const float k : kernel) sum += double{k};
        for (const float k : kernel) weights_.push_back(static_cast<float>(double{k} * (isUp ? 2 : 1) / sum));
    }

    T pixel(int x, int y) const {
        const Place row = place(y, src_.height()), column = place(x, src_.width());
        const auto along = [&](int64_t j) {
            return sum(j, src_.width(), [&](int64_t at) {
                const float above = filteredColumn(at, row.index);
                if (row.fraction == 0) return above;
                return mixed(above, filteredColumn(at, row.index + 1), row.fraction);
            });
        };
        float value = along(column.index);
        if (column.fraction != 0) value = mixed(value, along(column.index + 1), column.fraction);
        if constexpr (std::is_same_v<T, float>) {
            return value;
        } else {
            const float rounded = std::floor(value + 0.5F);
            const float most = std::numeric_limits<T>::max();
            return static_cast<T>(rounded > most ? most : rounded > 0 ? rounded : 0);
        }
    }

  private:
    struct Place {
        int64_t index;
        float fraction;
    };
    Place place(int x, int n) const {
        const int64_t last = isUp_ ? 2 * n - 1 : n - 1;
        const double at = isUp_ ? 2.0 * x / double{rate_} : x * double{rate_};
        if (at >= static_cast<double>(last)) return {last, 0};
        return {static_cast<int64_t>(at), static_cast<float>(at - std::floor(at))};
    }
    static float mixed(float a, float b, float fraction) {
        return test::sum(a, product(difference(b, a), fraction));
    }
    // Sum over the taps at element j of n pixels, of values given by the pixel's number.
    template <class Value>
    float sum(int64_t j, int n, const Value& value) const {
        const int half = static_cast<int>(weights_.size() / 2);
        const int64_t length = isUp_ ? 2 * n : n;
        float result = 0;
        for (int i = -half; i <= half; ++i) {
            int64_t at = j + i;
            while (at < 0 || at >= length) {
                if (length == 1) at = 0;
                if (at < 0) at = -at;
                if (at >= length) at = 2 * (length - 1) - at;
            }
            if (isUp_ && at % 2 != 0) continue;
            result = test::sum(result, product(value(isUp_ ? at / 2 : at), weights_[i + half]));
        }
        return result;
    }
    float filteredColumn(int64_t x, int64_t j) const {
        return sum(j, src_.height(), [&](int64_t y) {
            return static_cast<float>(src_.at(static_cast<int>(x), static_cast<int>(y), channel_));
        });
    }

    const GuardedImage<T>& src_;
    int channel_;
    bool isUp_;
    float rate_;
    std::vector<float> weights_;
};

template <class L>
void expectDefinition(Random& random, RoiSize srcRoi, float rate, const std::vector<float>& kernel) {
    using T = typename L::Element;
    const int padding = random.integer(0, 3) * static_cast<int>(sizeof(T));
    const auto at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
    GuardedImage<T> src(srcRoi.width, srcRoi.height, {.channels = L::channels, .padding = padding, .at = at});
    src.fill([&](int, int, int) { return random.special<T>(); });
    const RoiSize dstRoi = L::isUp ? upSize(srcRoi, rate, random) : downSize(srcRoi, rate);
    GuardedImage<T> dst(dstRoi.width, dstRoi.height, {.channels = L::channels, .padding = padding, .at = at});
    const Areas<L> areas(srcRoi, rate, kernel, random);
    ASSERT_EQ(L::operation(src.data(), src.step(), roiOf<L>(srcRoi), dst.data(), dst.step(), roiOf<L>(dstRoi),
                           areas.spec(), areas.buffer()),
              okpStatusOk);
    std::vector<T> expected(dst.pixels().size());
    for (int c = 0; c < L::channels; ++c) {
        const Definition<T> definition(src, c, rate, kernel, L::isUp);
        for (int y = 0; y < dstRoi.height; ++y) {
            for (int x = 0; x < dstRoi.width; ++x) {
                expected[(static_cast<size_t>(y) * dstRoi.width + x) * L::channels + c] =
                    definition.pixel(x, y);
            }
        }
    }
    EXPECT_TRUE(sameBits(dst.pixels(), expected))
        << srcRoi.width << " x " << srcRoi.height << " to " << dstRoi.width << " x " << dstRoi.height
        << " at rate " << rate << ", kernel of " << kernel.size();
    EXPECT_TRUE(dst.paddingIntact());
}

std::vector<float> randomKernel(Random& random, int length) {
    std::vector<float> kernel;
    for (int i = 0; i < length; ++i) kernel.push_back(random.real(-0.3F, 1.0F));
    kernel[random.integer(0, length - 1)] += 1;
    return kernel;
}

TYPED_TEST(PyramidLayer, FollowsItsDefinitionAtRate2) {
    Random random(101);
    for (int width = 1; width <= 40; ++width) {
        expectDefinition<TypeParam>(random, {width, random.integer(1, 12)}, 2, {});
    }
    for (int height = 1; height <= 20; ++height) {
        expectDefinition<TypeParam>(random, {random.integer(1, 9), height}, 2, {});
    }
    for (const int width : {2047, 2050}) {
        const int height = random.integer(7, 10);
        expectDefinition<TypeParam>(
            random, TypeParam::isUp ? RoiSize{width / 8, height} : RoiSize{width, height}, 2, {});
    }
    // The binomial kernel in the caller's words, and others.
    expectDefinition<TypeParam>(random, {37, 20}, 2, {0.25F, 1, 1.5F, 1, 0.25F});
    for (const int length : {3, 5, 7, 9, 11, 25}) {
        for (int i = 0; i < 5; ++i) {
            expectDefinition<TypeParam>(random, {random.integer(1, 30), random.integer(1, 30)}, 2,
                                        randomKernel(random, length));
        }
    }
}

TYPED_TEST(PyramidLayer, FollowsItsDefinitionAtAnyRate) {
    Random random(102);
    for (const float rate : {std::nextafter(1.0F, 2.0F), 1.01F, 1.1F, 1.5F, std::nextafter(2.0F, 1.0F),
                             2.0001F, 2.5F, 3.0F, 7.3F, 10.0F}) {
        const int largest = TypeParam::isUp && rate > 3 ? 9 : 33;
        for (const int length : {0, 3, 5, 7, 13}) {
            for (int i = 0; i < 4; ++i) {
                expectDefinition<TypeParam>(
                    random, {random.integer(1, largest), random.integer(1, largest)}, rate,
                    length == 0 ? std::vector<float>{} : randomKernel(random, length));
            }
        }
    }
}

// Images may lie at any address.
TYPED_TEST(PyramidLayer, TakesImagesAtAnyAddress) {
    using L = TypeParam;
    using T = typename L::Element;
    Random random(103);
    const RoiSize small{9, 7}, large{17, 13}, from = L::isUp ? small : large, to = L::isUp ? large : small;
    for (const float rate : {2.0F, 1.9F}) {
        const Areas<L> areas(from, rate, {}, random);
        const size_t bytes = size_t{17} * 13 * L::channels * sizeof(T);
        std::vector<uint8_t> src(bytes + 1), dst(bytes + 1), first(bytes);
        for (uint8_t& byte : first) byte = random.value<uint8_t>() & 63U;
        std::vector<uint8_t> results[2];
        for (int shift = 0; shift < 2; ++shift) {
            std::copy(first.begin(), first.end(), src.begin() + shift);
            using Count = typename L::Count;
            const auto step = [](RoiSize size) {
                return static_cast<Count>(size.width * L::channels * static_cast<int>(sizeof(T)));
            };
            ASSERT_EQ(L::operation(reinterpret_cast<const T*>(src.data() + shift), step(from), roiOf<L>(from),
                                   reinterpret_cast<T*>(dst.data() + shift), step(to), roiOf<L>(to),
                                   areas.spec(), areas.buffer()),
                      okpStatusOk);
            results[shift].assign(dst.begin() + shift,
                                  dst.begin() + shift + static_cast<ptrdiff_t>(step(to)) * to.height);
        }
        EXPECT_EQ(results[0], results[1]);
    }
}

// The weights add up to 1 wherever a sample falls.
TYPED_TEST(PyramidLayer, KeepsConstants) {
    using L = TypeParam;
    using T = typename L::Element;
    Random random(104);
    for (const float rate : {1.001F, 1.3F, 2.0F, 2.7F, 10.0F}) {
        const RoiSize from{23, 6}, to = L::isUp ? upSize(from, rate, random) : downSize(from, rate);
        const T value = std::is_same_v<T, float> ? T{1} : std::numeric_limits<T>::max();
        GuardedImage<T> src(from.width, from.height, {.channels = L::channels});
        src.fill([&](int, int, int) { return value; });
        GuardedImage<T> dst(to.width, to.height, {.channels = L::channels});
        const Areas<L> areas(from, rate, {}, random);
        ASSERT_EQ(L::operation(src.data(), src.step(), roiOf<L>(from), dst.data(), dst.step(), roiOf<L>(to),
                               areas.spec(), areas.buffer()),
                  okpStatusOk);
        for (const T v : dst.pixels()) ASSERT_EQ(v, value) << "rate " << rate;
    }
}

// Waves with a crest or a trough near each edge, where a mirror border would flatten any slope.
TEST(PyramidLayers, BringSmoothImagesBack) {
    Random random(105);
    const RoiSize size{158, 117};
    for (const float rate : {1.2F, 1.5F, 2.0F, 3.0F}) {
        GuardedImage<uint8_t> image(size.width, size.height);
        const double height = rate <= 2 ? 50 : 25;
        image.fill([&](int x, int y, int) {
            return std::lround(128 + height * std::cos(x * 0.08) + height * std::cos(y * 0.054));
        });
        const Areas<Down8u> down(size, rate, {}, random);
        const Areas<Up8u> up(size, rate, {}, random);
        const RoiSize small = downSize(size, rate);
        GuardedImage<uint8_t> reduced(small.width, small.height), back(size.width, size.height);
        ASSERT_EQ(okpiPyramidLayerDown_8u_C1R(image.data(), image.step(), size, reduced.data(),
                                              reduced.step(), small, down.spec(), down.buffer()),
                  okpStatusOk);
        ASSERT_EQ(okpiPyramidLayerUp_8u_C1R(reduced.data(), reduced.step(), small, back.data(), back.step(),
                                            size, up.spec(), up.buffer()),
                  okpStatusOk);
        int largest = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                largest = std::max(largest, std::abs(back.at(x, y) - image.at(x, y)));
            }
        }
        EXPECT_LE(largest, 1) << "rate " << rate;
        // The same spec and buffer serve the smaller level.
        const RoiSize smaller = downSize(small, rate);
        GuardedImage<uint8_t> next(smaller.width, smaller.height);
        EXPECT_EQ(okpiPyramidLayerDown_8u_C1R(reduced.data(), reduced.step(), small, next.data(), next.step(),
                                              smaller, down.spec(), down.buffer()),
                  okpStatusOk);
    }
}

template <class L>
struct SetupArguments {
    typename L::Count *specBytes, *bufferBytes;
    typename L::Roi roi;
    float rate;
    const float* kernel;
    int32_t kernelSize;
    void* spec;
};

TYPED_TEST(PyramidLayer, ChecksSetupInOrder) {
    using L = TypeParam;
    using A = SetupArguments<L>;
    using Count = typename L::Count;
    Count specBytes = -5, bufferBytes = -5;
    std::vector<uint8_t> spec(256, 77);
    const A valid{&specBytes, &bufferBytes, {8, 8}, 2.0F, nullptr, 5, spec.data()};
    const std::vector<Fault<A>> values{
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
        {"rate 1", okpStatusBadArgument, [](A& a) { a.rate = 1; }},
        {"rate above 10", okpStatusBadArgument, [](A& a) { a.rate = 10.000001F; }},
        {"no rate", okpStatusBadArgument, [](A& a) { a.rate = NAN; }},
        {"even kernel", okpStatusBadArgument, [](A& a) { a.kernelSize = 4; }},
        {"kernel of one", okpStatusBadArgument, [](A& a) { a.kernelSize = 1; }},
        {"negative kernel", okpStatusBadArgument, [](A& a) { a.kernelSize = -5; }},
        {"too wide", okpStatusSizeTooLarge, [](A& a) { a.roi.width = std::numeric_limits<Count>::max(); }}};
    std::vector<Fault<A>> faults{
        {"null spec size", okpStatusNullPointer, [](A& a) { a.specBytes = nullptr; }},
        {"null buffer size", okpStatusNullPointer, [](A& a) { a.bufferBytes = nullptr; }}};
    faults.insert(faults.end(), values.begin(), values.end());
    expectStatusOrder<A>(
        valid, [](const A& a) { return L::getSize(a.roi, a.rate, a.kernelSize, a.specBytes, a.bufferBytes); },
        faults);
    EXPECT_EQ(specBytes, -5);
    EXPECT_EQ(bufferBytes, -5);

    static const float cancelling[] = {1, -2, 1}, notFinite[] = {1, INFINITY, 1},
                       tiny[] = {3e38F, -3e38F, 1e-2F};
    faults = {{"null spec", okpStatusNullPointer, [](A& a) { a.spec = nullptr; }}};
    faults.insert(faults.end(), values.begin(), values.end());
    faults.push_back({"no kernel", okpStatusBadArgument, [](A& a) { a.kernel = nullptr, a.kernelSize = 7; }});
    const auto call = [](const A& a) { return L::init(a.roi, a.rate, a.kernel, a.kernelSize, a.spec); };
    expectStatusOrder<A>(valid, call, faults);
    A kernel = valid;
    kernel.kernelSize = 3;
    kernel.kernel = cancelling;
    EXPECT_EQ(call(kernel), okpStatusDivByZero);
    for (const float* const k : {notFinite, tiny}) {
        kernel.kernel = k;
        EXPECT_EQ(call(kernel), okpStatusBadArgument);
    }
    EXPECT_EQ(spec, std::vector<uint8_t>(256, 77));
}

template <class L>
struct LayerArguments {
    const typename L::Element* src;
    typename L::Count srcStep;
    typename L::Roi srcRoi;
    typename L::Element* dst;
    typename L::Count dstStep;
    typename L::Roi dstRoi;
    const void* spec;
    void* buffer;
};

TYPED_TEST(PyramidLayer, ChecksInOrder) {
    using L = TypeParam;
    using T = typename L::Element;
    using A = LayerArguments<L>;
    Random random(106);
    const RoiSize small{4, 3}, large{8, 6}, from = L::isUp ? small : large, to = L::isUp ? large : small;
    GuardedImage<T> src(from.width, from.height, {.channels = L::channels});
    GuardedImage<T> dst(to.width, to.height, {.channels = L::channels});
    src.fill([&](int, int, int) { return 3; });
    dst.fill([](int, int, int) { return 77; });
    const std::vector<T> before = dst.pixels();
    const Areas<L> areas(from, 2, {}, random);
    const A valid{src.data(), src.step(),   roiOf<L>(from), dst.data(),
                  dst.step(), roiOf<L>(to), areas.spec(),   areas.buffer()};
    std::vector<Fault<A>> faults{{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
                                 {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
                                 {"null spec", okpStatusNullPointer, [](A& a) { a.spec = nullptr; }},
                                 {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
                                 {"no source width", okpStatusBadSize, [](A& a) { a.srcRoi.width = 0; }},
                                 {"no source height", okpStatusBadSize, [](A& a) { a.srcRoi.height = -1; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.dstRoi.width = -1; }},
                                 {"no height", okpStatusBadSize, [](A& a) { a.dstRoi.height = 0; }},
                                 {"source step", okpStatusBadStep, [](A& a) { a.srcStep = 0; }}};
    if (sizeof(T) > 1) {
        faults.push_back({"odd source step", okpStatusStepNotMultiple, [](A& a) { ++a.srcStep; }});
    }
    faults.push_back({"step", okpStatusBadStep, [](A& a) { a.dstStep = 0; }});
    if (sizeof(T) > 1) faults.push_back({"odd step", okpStatusStepNotMultiple, [](A& a) { ++a.dstStep; }});
    faults.push_back({"other width", okpStatusBadSize, [](A& a) { a.dstRoi.width -= L::isUp ? 2 : 1; }});
    faults.push_back({"other height", okpStatusBadSize, [](A& a) { a.dstRoi.height -= L::isUp ? 2 : 1; }});
    faults.push_back({"in place", okpStatusInPlaceNotSupported, [](A& a) { a.dst = const_cast<T*>(a.src); }});
    const auto call = [](const A& a) {
        return L::operation(a.src, a.srcStep, a.srcRoi, a.dst, a.dstStep, a.dstRoi, a.spec, a.buffer);
    };
    expectStatusOrder<A>(valid, call, faults);
    // Pixels that would be right, of a source larger than the spec's.
    A larger = valid;
    larger.srcRoi.height += 1;
    larger.dstRoi.height += L::isUp ? 2 : 1;
    EXPECT_EQ(call(larger), okpStatusBadSize);
    EXPECT_EQ(dst.pixels(), before);
    EXPECT_EQ(call(valid), okpStatusOk);
}

}  // namespace
}  // namespace okpcv::test
