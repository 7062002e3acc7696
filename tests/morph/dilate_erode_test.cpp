// Dilation and erosion against their definition, bit for bit, for all types of whole bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "morph/reference.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace okpcv::test {
namespace {

// The exports of one type.
template <class T, class Value>
struct Exports {
    int channels;
    DataTypeCode type;
    okpStatus (*getSize)(RoiSize, RoiSize, int32_t*, int32_t*);
    okpStatus (*init)(RoiSize, const uint8_t*, RoiSize, MorphSpec*, uint8_t*);
    using Border = okpStatus(const T*, int32_t, T*, int32_t, RoiSize, BorderKind, Value, const MorphSpec*,
                             uint8_t*);
    Border *dilate, *erode;
    using Large = okpStatus(const T*, int64_t, T*, int64_t, RoiSizeL, BorderKind, const T*, const MorphSpec*,
                            uint8_t*);
    Large *dilateL, *erodeL;
};
// An area of exactly the queried size that begins at any address and ends at an unreadable page.
std::unique_ptr<GuardedMemory> areaOf(int64_t bytes, Random& random) {
    const auto at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start;
    auto memory = std::make_unique<GuardedMemory>(static_cast<size_t>(bytes), at);
    std::memset(memory->data(), 0xA5, static_cast<size_t>(bytes));
    return memory;
}

struct Areas {
    std::unique_ptr<GuardedMemory> spec, buffer;
    MorphSpec* specPointer() const { return reinterpret_cast<MorphSpec*>(spec->data()); }
    uint8_t* bufferPointer() const { return reinterpret_cast<uint8_t*>(buffer->data()); }
};

template <class T, class Value>
Areas prepare(const Exports<T, Value>& e, RoiSize roi, const Mask& mask, bool large, Random& random) {
    Areas areas;
    if (large) {
        const RoiSizeL roiL{roi.width, roi.height}, maskL{mask.width, mask.height};
        int64_t specSize = 0, bufferSize = 0;
        EXPECT_EQ(okpiErodeGetSpecSize_L(roiL, maskL, &specSize), okpStatusOk);
        EXPECT_EQ(okpiDilateGetBufferSize_L(roiL, maskL, e.type, e.channels, &bufferSize), okpStatusOk);
        areas = {areaOf(specSize, random), areaOf(bufferSize, random)};
        EXPECT_EQ(okpiDilateInit_L(roiL, mask.bytes.data(), maskL, areas.specPointer()), okpStatusOk);
    } else {
        int32_t specSize = 0, bufferSize = 0;
        EXPECT_EQ(e.getSize(roi, mask.size(), &specSize, &bufferSize), okpStatusOk);
        areas = {areaOf(specSize, random), areaOf(bufferSize, random)};
        EXPECT_EQ(e.init(roi, mask.bytes.data(), mask.size(), areas.specPointer(), areas.bufferPointer()),
                  okpStatusOk);
    }
    return areas;
}

// `specials` is the part of pixels that are extreme values: of floats also infinities, zeros and NaN.
// `elementsApart` are unused elements between the rows of the source.
template <class T, class Value>
void expectDefinition(const Exports<T, Value>& e, Random& random, RoiSize roi, const Mask& mask,
                      uint32_t border, double specials, int elementsApart = 0) {
    SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height << " mask " << mask.width << "x"
                                    << mask.height << " border " << border << " channels " << e.channels);
    const uint32_t flags = border | border >> 4;
    const auto element = static_cast<int>(sizeof(T));
    using Layout = typename GuardedImage<T>::Layout;
    const Layout layout{.channels = e.channels,
                        .padding = element * (elementsApart + random.integer(0, 5)),
                        .at = random.chance(0.5) ? GuardedMemory::At::End : GuardedMemory::At::Start,
                        .left = flags & BorderInMemLeft ? mask.left() : 0,
                        .top = flags & BorderInMemTop ? mask.above() : 0,
                        .right = flags & BorderInMemRight ? mask.right() : 0,
                        .bottom = flags & BorderInMemBottom ? mask.below() : 0};
    GuardedImage<T> src(roi.width, roi.height, layout);
    const auto pixel = [&] { return random.chance(specials) ? random.special<T>() : random.value<T>(); };
    src.fill([&](int, int, int) { return pixel(); });
    GuardedImage<T> dst(roi.width, roi.height,
                        Layout{.channels = e.channels, .padding = element * random.integer(0, 5)});
    T value[4];
    for (T& v : value) v = pixel();

    for (const Op op : {Op::Dilate, Op::Erode}) {
        const bool large = random.chance(0.5);
        const Areas areas = prepare(e, roi, mask, large, random);
        okpStatus status;
        if (large) {
            status = (op == Op::Dilate ? e.dilateL : e.erodeL)(
                src.data(), src.step(), dst.data(), dst.step(), {roi.width, roi.height}, border,
                (border & 15) == BorderConstant ? value : nullptr, areas.specPointer(),
                areas.bufferPointer());
        } else {
            Value argument;
            if constexpr (std::is_pointer_v<Value>) {
                argument = (border & 15) == BorderConstant ? value : nullptr;
            } else {
                argument = value[0];
            }
            status = (op == Op::Dilate ? e.dilate : e.erode)(src.data(), src.step(), dst.data(), dst.step(),
                                                             roi, border, argument, areas.specPointer(),
                                                             areas.bufferPointer());
        }
        ASSERT_EQ(status, okpStatusOk);
        std::vector<T> expected;
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                for (int c = 0; c < e.channels; ++c) {
                    expected.push_back(morphed(op, mask, roi, border, value[c], x, y,
                                               [&](int sx, int sy) { return src.at(sx, sy, c); }));
                }
            }
        }
        ASSERT_TRUE(sameBits(dst.pixels(), expected)) << (op == Op::Dilate ? "dilation" : "erosion");
        ASSERT_TRUE(dst.paddingIntact());
    }
}

template <class T, class Value>
void expectDefinitionEverywhere(const Exports<T, Value>& e, uint32_t seed) {
    Random random(seed);
    for (int i = 0; i < 150 && !testing::Test::HasFatalFailure(); ++i) {
        const RoiSize roi{random.integer(1, 60), random.integer(1, 30)};
        expectDefinition(e, random, roi, randomMask(random, i % 5 == 0 ? 40 : 9), randomBorder(random, true),
                         random.chance(0.3) ? 1 : 0);
    }
    // Small masks in regions that are wide against them, with at most a few special pixels somewhere.
    for (int i = 0; i < 60 && !testing::Test::HasFatalFailure(); ++i) {
        const int bytes = random.integer(600, i % 4 == 0 ? 4200 : 1400);
        const RoiSize roi{bytes / e.channels / static_cast<int>(sizeof(T)),
                          i % 10 == 0 ? random.integer(60, 140) : random.integer(1, 14)};
        const bool isCross = random.chance(0.3), isSlanted = !isCross && random.chance(0.3);
        const int h = random.integer(1, i % 5 == 0 ? 18 : 7);
        const int slope = random.integer(-2, 2), thickness = random.integer(1, 4);
        const int w = isSlanted ? thickness + std::abs(slope) * (h - 1) : random.integer(1, 9);
        const int l = random.integer(0, 2), t = random.integer(0, 2);
        const double part = random.chance(0.6) ? 1 : 0.6;
        const int row = random.integer(0, h - 1), column = random.integer(0, w - 1);
        const Mask mask(l + w + random.integer(0, 2), t + h + random.integer(0, 2), [&](int x, int y) {
            x -= l, y -= t;
            if (x < 0 || x >= w || y < 0 || y >= h) return false;
            if (isCross) return x == column || y == row;
            const int begin = slope * y - std::min(0, slope * (h - 1));
            if (isSlanted) return x >= begin && x < begin + thickness;
            return random.chance(part);
        });
        expectDefinition(e, random, roi, mask, randomBorder(random, true),
                         random.chance(0.5) ? 1.0 / (roi.width * roi.height) : 0);
    }
    // Rectangles of every length that is reached in other steps.
    for (int length = 8; length <= 70 && !testing::Test::HasFatalFailure(); ++length) {
        const Mask mask(length, random.integer(1, 20), [](int, int) { return 1; });
        expectDefinition(e, random, {random.integer(1, 150), random.integer(1, 8)}, mask,
                         randomBorder(random, true), random.chance(0.2) ? 0.01 : 0);
    }
    // Wide enough for several strips, high enough for several blocks of rows.
    for (const Mask& mask :
         {Mask(3, 3, [](int, int) { return 1; }), Mask(70, 2, [](int i, int) { return i % 7; }),
          Mask(1, 40, [](int, int) { return 1; }), Mask(5, 5, [](int i, int j) { return i == j; })}) {
        if (testing::Test::HasFatalFailure()) break;
        expectDefinition(e, random, {9000 / e.channels, 20}, mask, BorderMirror, 0);
        expectDefinition(e, random, {5000 / e.channels, 3}, mask, BorderReplicate, 1);
        expectDefinition(e, random, {10, 300}, mask, BorderConstant, 0);
    }
    // So much memory that it lies in no near cache.
    const Mask disc(7, 7, [](int i, int j) { return (i - 3) * (i - 3) + (j - 3) * (j - 3) < 12; });
    expectDefinition(e, random, {40, 200}, disc, BorderReplicate, 0, 32768);
}

// All ways in which the elements of one row can lie, among them those that look like runs at their ends.
TEST(DilateErode, EveryMaskOfOneRow) {
    Random random(10);
    const Exports<uint8_t, uint8_t> e{1,
                                      DataType8u,
                                      okpiMorphologyBorderGetSize_8u_C1R,
                                      okpiMorphologyBorderInit_8u_C1R,
                                      okpiDilateBorder_8u_C1R,
                                      okpiErodeBorder_8u_C1R,
                                      okpiDilate_8u_C1R_L,
                                      okpiErode_8u_C1R_L};
    constexpr int kWidth = 11;
    for (int bits = 1; bits < 1 << kWidth && !testing::Test::HasFatalFailure(); ++bits) {
        const Mask mask(kWidth, 1, [bits](int i, int) { return bits >> i & 1; });
        expectDefinition(e, random, {40, 1}, mask, BorderReplicate, 0);
    }
}

// A mask so long that a spec holds it in two pieces. From every pixel it reaches the whole row, from the
// first ones only with its second piece.
TEST(DilateErode, MaskOfTwoPieces) {
    Random random(10);
    const Mask mask(70000, 1, [](int, int) { return 1; });
    GuardedImage<uint8_t> src(31000, 1), dst(31000, 1);
    src.fill([](int x, int, int) { return x == 30900 ? 200 : x % 100; });
    int32_t specSize = 0, bufferSize = 0;
    ASSERT_EQ(okpiMorphologyBorderGetSize_8u_C1R(src.roi(), mask.size(), &specSize, &bufferSize),
              okpStatusOk);
    const auto spec = areaOf(specSize, random), buffer = areaOf(bufferSize, random);
    auto* const morphSpec = reinterpret_cast<MorphSpec*>(spec->data());
    auto* const bytes = reinterpret_cast<uint8_t*>(buffer->data());
    ASSERT_EQ(okpiMorphologyBorderInit_8u_C1R(src.roi(), mask.bytes.data(), mask.size(), morphSpec, bytes),
              okpStatusOk);
    ASSERT_EQ(okpiDilateBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                                      BorderDefault, 0, morphSpec, bytes),
              okpStatusOk);
    EXPECT_EQ(dst.pixels(), std::vector<uint8_t>(31000, 200));
}

// The only NaN of an image counts wherever it stands, also beside the region.
TEST(DilateErode, OneNanAmongNumbers) {
    Random random(9);
    const auto cross = [](int n) {
        return Mask(n, n, [n](int i, int j) { return i == n / 2 || j == n / 3; });
    };
    const Mask scattered(5, 3, [](int i, int j) { return (i + j) % 2 == 0 && i != 2; });
    const Mask farLeft(31, 3, [](int i, int j) { return i < 3 && (i == 1 || j == 1); });
    const Mask corner(3, 3, [](int i, int j) { return i == 2 || j == 2; });
    const Mask slanted(4, 4, [](int i, int j) { return i + j == 3 && j < 3; });
    // Two pixels as far apart as neighbours of images of several channels.
    const Mask apart3(4, 1, [](int i, int) { return i % 3 == 0; });
    const Mask apart4(7, 3, [](int i, int j) { return j == 1 && (i == 1 || i == 5); });
    const uint32_t inside = 0, columnsInMemory = BorderInMemLeft | BorderInMemRight,
                   inMemory = BorderInMemory;
    for (const Mask& mask :
         {cross(3), cross(5), cross(7), corner, scattered, farLeft, slanted, apart3, apart4}) {
        for (const uint32_t sides : {inside, columnsInMemory, inMemory}) {
            // From the first vector of a cross and from the first column on, whole pairs of vectors.
            const RoiSize roi{sides == inside ? 451 : sides == columnsInMemory ? 452 : 456, 16};
            GuardedImage<float> src(
                roi.width, roi.height,
                {.left = mask.left(), .top = mask.above(), .right = mask.right(), .bottom = mask.below()});
            GuardedImage<float> dst(roi.width, roi.height);
            src.fill([&](int, int, int) { return random.real(-9, 9); });
            const BorderKind border = BorderReplicate | sides;
            int32_t specSize = 0, bufferSize = 0;
            okpiMorphologyBorderGetSize_32f_C1R(roi, mask.size(), &specSize, &bufferSize);
            const auto spec = areaOf(specSize, random), buffer = areaOf(bufferSize, random);
            auto* const morphSpec = reinterpret_cast<MorphSpec*>(spec->data());
            auto* const bytes = reinterpret_cast<uint8_t*>(buffer->data());
            ASSERT_EQ(okpiMorphologyBorderInit_32f_C1R(roi, mask.bytes.data(), mask.size(), morphSpec, bytes),
                      okpStatusOk);
            const bool beside = sides != 0;
            for (int x = beside ? -mask.left() : 0; x < roi.width + (beside ? mask.right() : 0); ++x) {
                const int y = random.integer(4, 11);
                const float kept = src.at(x, y);
                // Smaller than all numbers, then larger.
                const float nan = std::numeric_limits<float>::quiet_NaN();
                src.set(x, y, std::copysign(nan, x % 2 == 0 ? -1.0F : 1.0F));
                ASSERT_EQ(okpiDilateBorder_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), roi,
                                                   border, 0, morphSpec, bytes),
                          okpStatusOk);
                for (int row = 0; row < roi.height; ++row) {
                    for (int column = std::max(0, x - 16); column < std::min(roi.width, x + 17); ++column) {
                        const float expected = morphed(Op::Dilate, mask, roi, border, 0.0F, column, row,
                                                       [&](int sx, int sy) { return src.at(sx, sy); });
                        ASSERT_EQ(std::bit_cast<uint32_t>(dst.at(column, row)),
                                  std::bit_cast<uint32_t>(expected))
                            << "NaN at " << x << ", " << y << " result at " << column << ", " << row;
                    }
                }
                src.set(x, y, kept);
            }
        }
    }
}

TEST(DilateErode, U8C1) {
    expectDefinitionEverywhere(
        Exports<uint8_t, uint8_t>{1, DataType8u, okpiMorphologyBorderGetSize_8u_C1R,
                                  okpiMorphologyBorderInit_8u_C1R, okpiDilateBorder_8u_C1R,
                                  okpiErodeBorder_8u_C1R, okpiDilate_8u_C1R_L, okpiErode_8u_C1R_L},
        1);
}
TEST(DilateErode, U8C3) {
    expectDefinitionEverywhere(
        Exports<uint8_t, const uint8_t*>{3, DataType8u, okpiMorphologyBorderGetSize_8u_C3R,
                                         okpiMorphologyBorderInit_8u_C3R, okpiDilateBorder_8u_C3R,
                                         okpiErodeBorder_8u_C3R, okpiDilate_8u_C3R_L, okpiErode_8u_C3R_L},
        2);
}
TEST(DilateErode, U8C4) {
    expectDefinitionEverywhere(
        Exports<uint8_t, const uint8_t*>{4, DataType8u, okpiMorphologyBorderGetSize_8u_C4R,
                                         okpiMorphologyBorderInit_8u_C4R, okpiDilateBorder_8u_C4R,
                                         okpiErodeBorder_8u_C4R, okpiDilate_8u_C4R_L, okpiErode_8u_C4R_L},
        3);
}
TEST(DilateErode, U16) {
    expectDefinitionEverywhere(
        Exports<uint16_t, uint16_t>{1, DataType16u, okpiMorphologyBorderGetSize_16u_C1R,
                                    okpiMorphologyBorderInit_16u_C1R, okpiDilateBorder_16u_C1R,
                                    okpiErodeBorder_16u_C1R, okpiDilate_16u_C1R_L, okpiErode_16u_C1R_L},
        4);
}
TEST(DilateErode, S16) {
    expectDefinitionEverywhere(
        Exports<int16_t, int16_t>{1, DataType16s, okpiMorphologyBorderGetSize_16s_C1R,
                                  okpiMorphologyBorderInit_16s_C1R, okpiDilateBorder_16s_C1R,
                                  okpiErodeBorder_16s_C1R, okpiDilate_16s_C1R_L, okpiErode_16s_C1R_L},
        5);
}
TEST(DilateErode, F32C1) {
    expectDefinitionEverywhere(
        Exports<float, float>{1, DataType32f, okpiMorphologyBorderGetSize_32f_C1R,
                              okpiMorphologyBorderInit_32f_C1R, okpiDilateBorder_32f_C1R,
                              okpiErodeBorder_32f_C1R, okpiDilate_32f_C1R_L, okpiErode_32f_C1R_L},
        6);
}
TEST(DilateErode, F32C3) {
    expectDefinitionEverywhere(
        Exports<float, const float*>{3, DataType32f, okpiMorphologyBorderGetSize_32f_C3R,
                                     okpiMorphologyBorderInit_32f_C3R, okpiDilateBorder_32f_C3R,
                                     okpiErodeBorder_32f_C3R, okpiDilate_32f_C3R_L, okpiErode_32f_C3R_L},
        7);
}
TEST(DilateErode, F32C4) {
    expectDefinitionEverywhere(
        Exports<float, const float*>{4, DataType32f, okpiMorphologyBorderGetSize_32f_C4R,
                                     okpiMorphologyBorderInit_32f_C4R, okpiDilateBorder_32f_C4R,
                                     okpiErodeBorder_32f_C4R, okpiDilate_32f_C4R_L, okpiErode_32f_C4R_L},
        8);
}

}  // namespace
}  // namespace okpcv::test
