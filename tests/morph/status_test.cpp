// The statuses of dilation and erosion, their order, and the sizes of specs and buffers.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "morph/reference.h"
#include "support/guarded_image.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

constexpr int32_t kInt32Max = INT32_MAX;
constexpr int64_t kInt32MaxL = INT32_MAX;

// A region, a 3 x 3 mask, and what an operation on floats of three channels takes.
struct Fixture {
    std::vector<char> spec = std::vector<char>(1000), buffer = std::vector<char>(1 << 20);
    std::vector<float> src = std::vector<float>(512, 1.0F), dst = std::vector<float>(512, 7.0F);
    std::vector<uint8_t> mask = std::vector<uint8_t>(9, 1);

    Fixture() {
        EXPECT_EQ(
            okpiMorphologyBorderInit_32f_C3R({7, 5}, mask.data(), {3, 3}, specPointer(), bufferPointer()),
            okpStatusOk);
    }
    MorphSpec* specPointer() { return reinterpret_cast<MorphSpec*>(spec.data()); }
    uint8_t* bufferPointer() { return reinterpret_cast<uint8_t*>(buffer.data()); }
    bool untouched() const { return dst == std::vector<float>(512, 7.0F); }
};

template <class Step, class Roi>
struct Arguments {
    const float* src;
    Step srcStep;
    float* dst;
    Step dstStep;
    Roi roi;
    BorderKind border;
    const float* value;
    const MorphSpec* spec;
    uint8_t* buffer;
};

const float kValue[3] = {1, 2, 3};

TEST(MorphStatus, Border) {
    using A = Arguments<int32_t, RoiSize>;
    for (const auto operation : {okpiDilateBorder_32f_C3R, okpiErodeBorder_32f_C3R}) {
        Fixture f;
        const float* const src = f.src.data();
        expectStatusOrder<A>(
            {src, 88, f.dst.data(), 88, {7, 5}, BorderConstant, kValue, f.specPointer(), f.bufferPointer()},
            [&](const A& a) {
                return operation(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.border, a.value, a.spec,
                                 a.buffer);
            },
            {{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
             {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
             {"null spec", okpStatusNullPointer, [](A& a) { a.spec = nullptr; }},
             {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
             {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
             {"no height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
             {"short source step", okpStatusBadStep, [](A& a) { a.srcStep = 80; }},
             {"short destination step", okpStatusBadStep, [](A& a) { a.dstStep = 83; }},
             {"odd source step", okpStatusStepNotMultiple, [](A& a) { a.srcStep = 86; }},
             {"odd destination step", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 85; }},
             {"kind 0", okpStatusBadBorder, [](A& a) { a.border = 16; }},
             {"kind 4", okpStatusBadBorder, [](A& a) { a.border = 4; }},
             {"flags beyond bit 11", okpStatusBadBorder, [](A& a) { a.border = 4096 | BorderConstant; }},
             {"null value", okpStatusNullPointer, [](A& a) { a.value = nullptr; }},
             {"in place", okpStatusInPlaceNotSupported, [](A& a) { a.dst = const_cast<float*>(a.src); }}});
        EXPECT_TRUE(f.untouched());
        // Other kinds need no value.
        EXPECT_EQ(operation(src, 88, f.dst.data(), 88, {7, 5}, BorderMirror, nullptr, f.specPointer(),
                            f.bufferPointer()),
                  okpStatusOk);
    }
}

TEST(MorphStatus, Large) {
    using A = Arguments<int64_t, RoiSizeL>;
    for (const auto operation : {okpiDilate_32f_C3R_L, okpiErode_32f_C3R_L}) {
        Fixture f;
        const auto call = [&](const A& a) {
            return operation(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.border, a.value, a.spec, a.buffer);
        };
        const A valid{f.src.data(),     88, f.dst.data(), 88, {7, 5}, BorderConstant, kValue, f.specPointer(),
                      f.bufferPointer()};
        expectStatusOrder<A>(
            valid, call,
            {{"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
             {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
             {"null spec", okpStatusNullPointer, [](A& a) { a.spec = nullptr; }},
             {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
             {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
             {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
             {"height beyond 32 bits", okpStatusSizeTooLarge, [](A& a) { a.roi.height = kInt32MaxL + 1; }},
             {"short source step", okpStatusBadStep, [](A& a) { a.srcStep = 80; }},
             {"short destination step", okpStatusBadStep, [](A& a) { a.dstStep = 80; }},
             {"odd source step", okpStatusStepNotMultiple, [](A& a) { a.srcStep = 86; }},
             {"odd destination step", okpStatusStepNotMultiple, [](A& a) { a.dstStep = 86; }},
             {"kind 2", okpStatusBadBorder, [](A& a) { a.border = 242; }},
             {"largest height", okpStatusBadSize, [](A& a) { a.roi.height = kInt32MaxL; }},
             {"source step beyond 32 bits", okpStatusBadStep, [](A& a) { a.srcStep = (kInt32MaxL + 1) * 2; }},
             {"destination step beyond 32 bits", okpStatusBadStep,
              [](A& a) { a.dstStep = (kInt32MaxL + 1) * 2; }},
             {"null value", okpStatusNullPointer, [](A& a) { a.value = nullptr; }},
             {"in place", okpStatusInPlaceNotSupported, [](A& a) { a.dst = const_cast<float*>(a.src); }}});
        A wide = valid;
        wide.roi.width = kInt32MaxL + 1;
        EXPECT_EQ(call(wide), okpStatusSizeTooLarge);
        wide.roi.width = kInt32MaxL;
        EXPECT_EQ(call(wide), okpStatusBadStep);
        wide.srcStep = wide.dstStep = 12 * kInt32MaxL;
        EXPECT_EQ(call(wide), okpStatusBadSize);
        EXPECT_TRUE(f.untouched());
    }
}

// One channel: the value is an argument itself, or needed for the constant kind only.
TEST(MorphStatus, OneChannel) {
    Fixture f;
    EXPECT_EQ(okpiDilateBorder_16u_C1R(reinterpret_cast<uint16_t*>(f.src.data()), 15,
                                       reinterpret_cast<uint16_t*>(f.dst.data()), 14, {7, 5}, BorderDefault,
                                       0, f.specPointer(), f.bufferPointer()),
              okpStatusStepNotMultiple);
    const auto* const src = reinterpret_cast<const uint8_t*>(f.src.data());
    auto* const dst = reinterpret_cast<uint8_t*>(f.dst.data());
    EXPECT_EQ(okpiErode_8u_C1R_L(src, 7, dst, 7, {7, 5}, BorderConstant, nullptr, f.specPointer(),
                                 f.bufferPointer()),
              okpStatusNullPointer);
    EXPECT_EQ(okpiErode_8u_C1R_L(src, 7, dst, 7, {7, 5}, BorderDefault, nullptr, f.specPointer(),
                                 f.bufferPointer()),
              okpStatusOk);
}

struct BitArguments {
    const uint8_t* src;
    int32_t srcStep, srcOffset;
    uint8_t* dst;
    int32_t dstStep, dstOffset;
    RoiSizeL roi;
    BorderKind border;
    const uint8_t* value;
    const MorphSpec* spec;
    uint8_t* buffer;
};

TEST(MorphStatus, Bits) {
    using A = BitArguments;
    Fixture f;
    const uint8_t value = 1;
    const A valid{reinterpret_cast<const uint8_t*>(f.src.data()),
                  2,
                  3,
                  reinterpret_cast<uint8_t*>(f.dst.data()),
                  2,
                  11,
                  {9, 5},
                  BorderConstant,
                  &value,
                  f.specPointer(),
                  f.bufferPointer()};
    std::vector<Fault<A>> faults = {
        {"null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"null spec", okpStatusNullPointer, [](A& a) { a.spec = nullptr; }},
        {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
        {"negative source offset", okpStatusBadSize, [](A& a) { a.srcOffset = -1; }},
        {"negative destination offset", okpStatusBadSize, [](A& a) { a.dstOffset = -1; }},
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
        {"short source step", okpStatusBadStep, [](A& a) { a.srcStep = 1; }},
        {"short destination step", okpStatusBadStep, [](A& a) { a.dstStep = 1; }},
        {"mirror", okpStatusBadBorder, [](A& a) { a.border = BorderMirror; }},
        {"beyond bit 11", okpStatusBadBorder, [](A& a) { a.border = 4097; }},
        {"in place", okpStatusInPlaceNotSupported, [](A& a) { a.dst = const_cast<uint8_t*>(a.src); }}};
    for (const auto operation : {okpiDilateBorder_1u_C1R, okpiErodeBorder_1u_C1R}) {
        expectStatusOrder<A>(
            valid,
            [&](const A& a) {
                const RoiSize roi{static_cast<int32_t>(a.roi.width), static_cast<int32_t>(a.roi.height)};
                return operation(a.src, a.srcStep, a.srcOffset, a.dst, a.dstStep, a.dstOffset, roi, a.border,
                                 *a.value, a.spec, a.buffer);
            },
            faults);
    }
    faults.insert(faults.begin() + 8, {"height beyond 32 bits", okpStatusSizeTooLarge,
                                       [](A& a) { a.roi.height = kInt32MaxL + 1; }});
    faults.insert(faults.end() - 1,
                  {"largest height", okpStatusBadSize, [](A& a) { a.roi.height = kInt32MaxL; }});
    faults.insert(faults.end() - 1, {"null value", okpStatusNullPointer, [](A& a) { a.value = nullptr; }});
    for (const auto operation : {okpiDilate_1u_C1R_L, okpiErode_1u_C1R_L}) {
        expectStatusOrder<A>(
            valid,
            [&](const A& a) {
                return operation(a.src, a.srcStep, a.srcOffset, a.dst, a.dstStep, a.dstOffset, a.roi,
                                 a.border, a.value, a.spec, a.buffer);
            },
            faults);
    }
    EXPECT_TRUE(f.untouched());
}

// ---- Sizes and initialisers -------------------------------------------------------------------------------

int64_t specFormula(int64_t w, int64_t h) {
    return ((w | 1) * 5 + 4) * (h | 1);
}

TEST(MorphSizes, FollowTheFormulas) {
    struct Query {
        okpStatus (*getSize)(RoiSize, RoiSize, int32_t*, int32_t*);
        DataTypeCode type;
        int channels, bytes;
    };
    for (const Query& q : {Query{okpiMorphologyBorderGetSize_8u_C1R, DataType8u, 1, 1},
                           {okpiMorphologyBorderGetSize_8u_C3R, DataType8u, 3, 3},
                           {okpiMorphologyBorderGetSize_8u_C4R, DataType8u, 4, 4},
                           {okpiMorphologyBorderGetSize_16u_C1R, DataType16u, 1, 2},
                           {okpiMorphologyBorderGetSize_16s_C1R, DataType16s, 1, 2},
                           {okpiMorphologyBorderGetSize_32f_C1R, DataType32f, 1, 4},
                           {okpiMorphologyBorderGetSize_32f_C3R, DataType32f, 3, 12},
                           {okpiMorphologyBorderGetSize_32f_C4R, DataType32f, 4, 16}}) {
        for (const RoiSize mask : {RoiSize{1, 1}, {2, 2}, {3, 3}, {1, 64}, {64, 1}, {15, 9}, {200, 100}}) {
            for (const RoiSize roi : {RoiSize{1, 1}, {640, 480}, {5, 4000}}) {
                int32_t spec = 0, buffer = 0;
                ASSERT_EQ(q.getSize(roi, mask, &spec, &buffer), okpStatusOk);
                EXPECT_EQ(spec, specFormula(mask.width, mask.height) + 136);
                const int64_t image =
                    int64_t{roi.width + mask.width / 2 * 2} * (roi.height + mask.height - 1) * q.bytes;
                EXPECT_GE(buffer, (image + 31) / 32 * 32 + 64);

                int64_t specL = 0, bufferL = 0;
                const RoiSizeL roiL{roi.width, roi.height}, maskL{mask.width, mask.height};
                ASSERT_EQ(okpiDilateGetSpecSize_L(roiL, maskL, &specL), okpStatusOk);
                EXPECT_EQ(specL, specFormula(mask.width, mask.height) + 160 + 16);
                ASSERT_EQ(okpiErodeGetBufferSize_L(roiL, maskL, q.type, q.channels, &bufferL), okpStatusOk);
                EXPECT_EQ(bufferL, buffer);
                // The query only raises what the variable holds.
                bufferL += 5;
                ASSERT_EQ(okpiDilateGetBufferSize_L(roiL, maskL, q.type, q.channels, &bufferL), okpStatusOk);
                EXPECT_EQ(bufferL, buffer + 5);
            }
        }
    }
}

TEST(MorphSizes, RefuseInOrder) {
    int32_t spec = 1, buffer = 1;
    const auto query = okpiMorphologyBorderGetSize_32f_C4R;
    EXPECT_EQ(query({0, 1}, {1, 1}, nullptr, &buffer), okpStatusNullPointer);
    EXPECT_EQ(query({0, 1}, {1, 1}, &spec, nullptr), okpStatusNullPointer);
    for (const auto& [roi, mask] :
         {std::pair<RoiSize, RoiSize>{{0, 1}, {1, 1}}, {{1, 0}, {1, 1}}, {{1, 1}, {0, 1}}, {{1, 1}, {1, -3}}})
        EXPECT_EQ(query(roi, mask, &spec, &buffer), okpStatusBadSize);
    EXPECT_EQ(query({kInt32Max, kInt32Max}, {3, 3}, &spec, &buffer), okpStatusSizeTooLarge);
    EXPECT_EQ(query({1, 1}, {30000, 30000}, &spec, &buffer), okpStatusSizeTooLarge);
    EXPECT_EQ(query({1, 1}, {kInt32Max, kInt32Max}, &spec, &buffer), okpStatusSizeTooLarge);
    EXPECT_EQ(spec, 1);
    EXPECT_EQ(buffer, 1);

    struct A {
        RoiSizeL roi, mask;
        DataTypeCode type;
        int32_t channels;
        int64_t* size;
    };
    int64_t size = 0;
    const std::vector<Fault<A>> faults = {
        {"null", okpStatusNullPointer, [](A& a) { a.size = nullptr; }},
        {"width beyond 32 bits", okpStatusSizeTooLarge, [](A& a) { a.roi.width = kInt32MaxL + 1; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
        {"no mask width", okpStatusBadSize, [](A& a) { a.mask.width = 0; }},
        {"type", okpStatusBadDataType, [](A& a) { a.type = DataType64f; }},
        {"channels", okpStatusBadNumChannels, [](A& a) { a.channels = 2; }},
        {"mask area", okpStatusSizeTooLarge, [](A& a) {
             a.mask = {a.mask.width < 1 ? 0 : 1 << 20, 1 << 20};
         }}};
    const A valid{{7, 5}, {3, 3}, DataType8u, 1, &size};
    for (const auto f : {okpiErodeGetBufferSize_L, okpiDilateGetBufferSize_L}) {
        expectStatusOrder<A>(
            valid, [&](const A& a) { return f(a.roi, a.mask, a.type, a.channels, a.size); }, faults);
    }
    for (const auto f : {okpiErodeGetSpecSize_L, okpiDilateGetSpecSize_L}) {
        expectStatusOrder<A>(valid, [&](const A& a) { return f(a.roi, a.mask, a.size); },
                             {faults.begin(), faults.begin() + 4});
    }
    EXPECT_EQ(size, 0);
    // Sizes beyond 64 bits.
    EXPECT_EQ(okpiErodeGetBufferSize_L({kInt32MaxL, kInt32MaxL}, {3, 3}, DataType32f, 4, &size),
              okpStatusSizeTooLarge);
    for (const RoiSizeL mask : {RoiSizeL{kInt32MaxL, 1}, RoiSizeL{1, kInt32MaxL}}) {
        EXPECT_EQ(okpiErodeGetBufferSize_L({kInt32MaxL, 1}, mask, DataType1u, 1, &size),
                  okpStatusSizeTooLarge);
    }
    for (const DataTypeCode type : {DataType1u, DataType8u, DataType16u, DataType16s, DataType32f})
        EXPECT_EQ(okpiErodeGetBufferSize_L({7, 5}, {3, 3}, type, 1, &size), okpStatusOk);
}

TEST(MorphSizes, InitialisersRefuseInOrder) {
    Fixture f;
    const std::vector<char> before = f.spec;
    uint8_t* const mask = f.mask.data();
    for (const auto init : {okpiMorphologyBorderInit_8u_C1R, okpiMorphologyBorderInit_1u_C1R}) {
        EXPECT_EQ(init({0, 1}, nullptr, {1, 1}, f.specPointer(), f.bufferPointer()), okpStatusNullPointer);
        EXPECT_EQ(init({0, 1}, mask, {1, 1}, nullptr, f.bufferPointer()), okpStatusNullPointer);
        EXPECT_EQ(init({0, 1}, mask, {1, 1}, f.specPointer(), nullptr), okpStatusNullPointer);
        EXPECT_EQ(init({0, 1}, mask, {1, 1}, f.specPointer(), f.bufferPointer()), okpStatusBadSize);
        EXPECT_EQ(init({1, 1}, mask, {1, 0}, f.specPointer(), f.bufferPointer()), okpStatusBadSize);
    }
    for (const auto init : {okpiErodeInit_L, okpiDilateInit_L}) {
        EXPECT_EQ(init({0, 1}, nullptr, {1, 1}, f.specPointer()), okpStatusNullPointer);
        EXPECT_EQ(init({0, 1}, mask, {1, 1}, nullptr), okpStatusNullPointer);
        EXPECT_EQ(init({kInt32MaxL + 1, 1}, mask, {1, 0}, f.specPointer()), okpStatusBadSize);
        EXPECT_EQ(init({kInt32MaxL + 1, 1}, mask, {1, 1}, f.specPointer()), okpStatusSizeTooLarge);
    }
    EXPECT_EQ(f.spec, before);
}

TEST(MorphSizes, SpecsBeginWithTheMasksGeometry) {
    Fixture f;
    const auto fields = [&] {
        std::array<int32_t, 9> values;
        std::memcpy(values.data(), f.spec.data(), sizeof values);
        return values;
    };
    const std::vector<uint8_t> mask = {0, 0, 0, 0, 0, 0, 0, 9};
    ASSERT_EQ(
        okpiMorphologyBorderInit_8u_C1R({33, 5}, mask.data(), {4, 2}, f.specPointer(), f.bufferPointer()),
        okpStatusOk);
    EXPECT_EQ(fields(), (std::array<int32_t, 9>{4, 2, 1, 0, 2, 1, 33, 48, 0}));
    ASSERT_EQ(okpiErodeInit_L({32, 5}, mask.data(), {1, 7}, f.specPointer()), okpStatusOk);
    EXPECT_EQ(fields(), (std::array<int32_t, 9>{1, 7, 0, 3, 0, 3, 32, 32, 3}));
}

// Every mask of a few elements fits the spec that the query reports, whatever its runs.
TEST(MorphSizes, SpecsOfAllSmallMasksFit) {
    for (int w = 1; w <= 12; ++w) {
        for (int h = 1; w * h <= 12; ++h) {
            int32_t specSize = 0, bufferSize = 0;
            ASSERT_EQ(okpiMorphologyBorderGetSize_8u_C1R({5, 5}, {w, h}, &specSize, &bufferSize),
                      okpStatusOk);
            const GuardedMemory spec(static_cast<size_t>(specSize), GuardedMemory::At::End);
            for (int bits = 0; bits < 1 << (w * h); ++bits) {
                const Mask mask(w, h, [&, w](int i, int j) { return bits >> (j * w + i) & 1; });
                uint8_t unused = 0;
                ASSERT_EQ(okpiMorphologyBorderInit_8u_C1R({5, 5}, mask.bytes.data(), mask.size(),
                                                          reinterpret_cast<MorphSpec*>(spec.data()), &unused),
                          okpStatusOk);
            }
        }
    }
    // Lines with every other element, the most runs that there are.
    for (const auto& [w, h] : {std::pair{1, 4001}, {4001, 1}, {2, 3000}, {3, 3001}, {63, 63}, {64, 500}}) {
        int64_t specSize = 0;
        ASSERT_EQ(okpiErodeGetSpecSize_L({5, 5}, {w, h}, &specSize), okpStatusOk);
        const GuardedMemory spec(static_cast<size_t>(specSize - 40), GuardedMemory::At::End);
        const Mask mask(w, h, [](int i, int j) { return (i + j) % 2 == 0; });
        EXPECT_EQ(
            okpiErodeInit_L({5, 5}, mask.bytes.data(), {w, h}, reinterpret_cast<MorphSpec*>(spec.data())),
            okpStatusOk);
    }
}

}  // namespace
}  // namespace okpcv::test
