// Pyramid sizes against the search that defines them, and the record's place in its area.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

struct Range {
    int64_t min, max;
};

Range upRange(int64_t n, float rate) {
    const auto t = static_cast<int64_t>(static_cast<float>(n - 1) * rate);
    const auto u = static_cast<int64_t>(static_cast<float>(n) * rate);
    return {n == 1 ? 1 : t < n ? n + 1 : t + 1, n < u ? u : n + 1};
}

// One step at a time, from n / rate rounded half up.
int64_t searchedDownSize(int64_t n, float rate) {
    auto d = static_cast<int64_t>(static_cast<float>(n) * (1.0F / rate) + 0.5F);
    if (d < 2) d = 1;
    for (int steps = 0; steps < 4000; ++steps) {
        const Range range = upRange(d, rate);
        if (range.min > n) {
            --d;
        } else if (range.max < n) {
            ++d;
        } else {
            return d;
        }
    }
    ADD_FAILURE() << "no end for " << n << " at " << rate;
    return d;
}

int64_t downWidth(int64_t width, float rate) {
    RoiSizeL down{};
    EXPECT_EQ(okpiGetPyramidDownROI_L({width, 1}, &down, rate), okpStatusOk);
    EXPECT_EQ(down.height, 1);
    return down.width;
}

const float kAboveOne = std::nextafter(1.0F, 2.0F);

std::vector<float> rates() {
    std::vector<float> result{
        kAboveOne, 1.0001F, 1.01F, 1.1F,    1.4142135F, 1.5F, std::nextafter(2.0F, 1.0F),
        2.0F,      2.0001F, 3.0F,  3.1415F, 7.3F,       9.9F, std::nextafter(10.0F, 9.0F),
        10.0F};
    Random random(94);
    for (int i = 0; i < 40; ++i) result.push_back(random.real(1.001F, 10.0F));
    return result;
}

void expectSizes(int32_t n, float rate) {
    const auto expected = static_cast<int32_t>(searchedDownSize(n, rate));
    RoiSize down{};
    ASSERT_EQ(okpiGetPyramidDownROI({n, 7}, &down, rate), okpStatusOk);
    ASSERT_EQ(down.width, expected) << n << " at " << rate;
    ASSERT_EQ(okpiGetPyramidDownROI({7, n}, &down, rate), okpStatusOk);
    ASSERT_EQ(down.height, expected) << n << " at " << rate;
    ASSERT_EQ(downWidth(n, rate), expected) << n << " at " << rate;

    const Range range = upRange(n, rate);
    RoiSize least{}, most{};
    ASSERT_EQ(okpiGetPyramidUpROI({n, n}, &least, &most, rate), okpStatusOk);
    EXPECT_EQ(least.width, std::min<int64_t>(range.min, INT32_MAX)) << n << " at " << rate;
    EXPECT_EQ(most.height, std::min<int64_t>(range.max, INT32_MAX)) << n << " at " << rate;
    RoiSizeL leastL{}, mostL{};
    ASSERT_EQ(okpiGetPyramidUpROI_L({n, n}, &leastL, &mostL, rate), okpStatusOk);
    EXPECT_EQ(leastL.height, range.min) << n << " at " << rate;
    EXPECT_EQ(mostL.width, range.max) << n << " at " << rate;
}

TEST(PyramidSizes, FollowTheSearch) {
    for (const float rate : rates()) {
        for (int n = 1; n <= 700; ++n) ASSERT_NO_FATAL_FAILURE(expectSizes(n, rate));
    }
}

TEST(PyramidSizes, FollowTheSearchAtLargeSizes) {
    Random random(95);
    for (const float rate : rates()) {
        std::vector<int32_t> sizes{(1 << 24) - 1, (1 << 24) + 1, 1 << 25, INT32_MAX - 1, INT32_MAX};
        for (int i = 0; i < 20; ++i) sizes.push_back(random.integer(1 << 20, INT32_MAX));
        for (const int32_t n : sizes) ASSERT_NO_FATAL_FAILURE(expectSizes(n, rate));
    }
}

// Beyond the reach of a search by single steps the size is known by its property.
TEST(PyramidSizes, OfHugeLevels) {
    Random random(96);
    for (const float rate : rates()) {
        for (int i = 0; i < 40; ++i) {
            const int64_t n = i == 0 ? INT64_MAX : (random.value<int64_t>() & INT64_MAX) >> (i % 32);
            const int64_t d = downWidth(n, rate);
            RoiSizeL least{}, most{}, before{};
            ASSERT_EQ(okpiGetPyramidUpROI_L({d, 1}, &least, &most, rate), okpStatusOk);
            EXPECT_LE(least.width, n);
            EXPECT_GE(most.width, n);
            ASSERT_EQ(okpiGetPyramidUpROI_L({d - 1, 1}, &least, &before, rate), okpStatusOk);
            EXPECT_LT(before.width, n);
            EXPECT_LT(d, n);
        }
    }
    RoiSizeL least{}, most{};
    EXPECT_EQ(okpiGetPyramidUpROI_L({INT64_MAX, INT64_MAX / 2}, &least, &most, 10.0F), okpStatusOk);
    EXPECT_EQ(least.width, INT64_MAX);
    EXPECT_EQ(most.height, INT64_MAX);
}

TEST(PyramidSizes, Examples) {
    RoiSize size{640, 480};
    for (const RoiSize expected : {RoiSize{320, 240},
                                   {160, 120},
                                   {80, 60},
                                   {40, 30},
                                   {20, 15},
                                   {10, 8},
                                   {5, 4},
                                   {3, 2},
                                   {2, 1},
                                   {1, 1},
                                   {1, 1}}) {
        ASSERT_EQ(okpiGetPyramidDownROI(size, &size, 2.0F), okpStatusOk);
        EXPECT_EQ(size.width, expected.width);
        EXPECT_EQ(size.height, expected.height);
    }
    RoiSize least{}, most{};
    EXPECT_EQ(okpiGetPyramidUpROI({1, 4}, &least, &most, 2.0F), okpStatusOk);
    EXPECT_EQ(least.width, 1);
    EXPECT_EQ(most.width, 2);
    EXPECT_EQ(least.height, 7);
    EXPECT_EQ(most.height, 8);
    EXPECT_EQ(okpiGetPyramidUpROI({1, 1}, &least, &most, 1.2F), okpStatusOk);
    EXPECT_EQ(most.width, 2);
}

template <class Roi>
struct SizeArguments {
    Roi roi;
    Roi *first, *second;
    float rate;
};

template <class Roi>
void expectSizeOrder(okpStatus (*down)(Roi, Roi*, float), okpStatus (*up)(Roi, Roi*, Roi*, float)) {
    using A = SizeArguments<Roi>;
    Roi first{-5, -5}, second{-5, -5};
    std::vector<Fault<A>> faults{{"null result", okpStatusNullPointer, [](A& a) { a.first = nullptr; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                                 {"no height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
                                 {"rate 1", okpStatusBadArgument, [](A& a) { a.rate = 1.0F; }},
                                 {"rate 10.000001", okpStatusBadArgument, [](A& a) { a.rate = 10.000001F; }},
                                 {"no rate", okpStatusBadArgument, [](A& a) { a.rate = NAN; }},
                                 {"negative rate", okpStatusBadArgument, [](A& a) { a.rate = -2.0F; }}};
    const A valid{{4, 4}, &first, &second, 10.0F};
    expectStatusOrder<A>(
        valid, [=](const A& a) { return down(a.roi, a.first, a.rate); }, faults);
    faults.insert(faults.begin(), {"null maximum", okpStatusNullPointer, [](A& a) { a.second = nullptr; }});
    expectStatusOrder<A>(
        valid, [=](const A& a) { return up(a.roi, a.first, a.second, a.rate); }, faults);
    EXPECT_EQ(first.width, -5);
    EXPECT_EQ(second.height, -5);
    EXPECT_EQ(down(valid.roi, valid.first, valid.rate), okpStatusOk);
    EXPECT_EQ(up(valid.roi, valid.first, valid.second, kAboveOne), okpStatusOk);
}

TEST(PyramidSizes, ChecksInOrder) {
    expectSizeOrder<RoiSize>(okpiGetPyramidDownROI, okpiGetPyramidUpROI);
    expectSizeOrder<RoiSizeL>(okpiGetPyramidDownROI_L, okpiGetPyramidUpROI_L);
}

// The 32-bit and the 64-bit family under one name each.
struct Family32 {
    using Record = PyramidRecord;
    using Roi = RoiSize;
    using Count = int32_t;
    static constexpr auto getSize = okpiPyramidGetSize;
    static constexpr auto init = okpiPyramidInit;
};
struct Family64 {
    using Record = PyramidRecordL;
    using Roi = RoiSizeL;
    using Count = int64_t;
    static constexpr auto getSize = okpiPyramidGetSize_L;
    static constexpr auto init = okpiPyramidInit_L;
};
template <class F>
struct PyramidRecordTest : testing::Test {};
using Families = testing::Types<Family32, Family64>;
TYPED_TEST_SUITE(PyramidRecordTest, Families);

// Areas of exactly the queried sizes between unreadable pages, beginning anywhere.
template <class F>
void expectRecord(int64_t width, int64_t height, int32_t level, float rate, int shift) {
    using Count = typename F::Count;
    const typename F::Roi roi{static_cast<Count>(width), static_cast<Count>(height)};
    Count recordBytes = 0, bufferBytes = 0;
    ASSERT_EQ(F::getSize(&recordBytes, &bufferBytes, level, roi, rate), okpStatusOk);
    EXPECT_EQ(bufferBytes, std::max(width, height) * 8);
    const int64_t levels = (recordBytes - 152) / 52;
    ASSERT_EQ(recordBytes, levels * 52 + 152);

    // An area that ends at the page begins wherever its size puts it.
    const size_t before = static_cast<size_t>(shift);
    GuardedMemory area(static_cast<size_t>(recordBytes) + before, GuardedMemory::At::Start);
    GuardedMemory ending(static_cast<size_t>(recordBytes), GuardedMemory::At::End);
    GuardedMemory buffer(static_cast<size_t>(bufferBytes), GuardedMemory::At::End);
    char* const begin = shift == 0 ? ending.data() : area.data() + before;
    typename F::Record* record = nullptr;
    ASSERT_EQ(F::init(&record, level, roi, rate, reinterpret_cast<uint8_t*>(begin),
                      reinterpret_cast<uint8_t*>(buffer.data())),
              okpStatusOk);

    const char* end = begin;
    const auto expectNext = [&](const auto* p, int64_t count) {
        const auto* const first = reinterpret_cast<const char*>(p);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 8, 0U);
        EXPECT_GE(first, end);
        end = first + count * static_cast<int64_t>(sizeof *p);
        EXPECT_LE(end, begin + recordBytes);
    };
    const int64_t count = levels + 1;
    expectNext(record, 1);
    expectNext(record->pImage, count);
    expectNext(record->pStep, count);
    expectNext(record->pRoi, count);
    expectNext(record->pRate, count);

    EXPECT_EQ(record->level, levels);
    EXPECT_EQ(record->pState, nullptr);
    double scale = 1.0;
    for (int64_t k = 0; k <= levels; ++k) {
        EXPECT_EQ(record->pImage[k], nullptr);
        EXPECT_EQ(record->pStep[k], 0);
        ASSERT_EQ(record->pRoi[k].width, width);
        ASSERT_EQ(record->pRoi[k].height, height);
        EXPECT_EQ(record->pRate[k], scale);
        EXPECT_TRUE(k == levels || width > 1 || height > 1);
        width = searchedDownSize(width, rate);
        height = searchedDownSize(height, rate);
        scale *= 1.0 / static_cast<double>(rate);
    }
    // Either the last level is 1 x 1, or there are as many as were asked for.
    const auto& last = record->pRoi[levels];
    EXPECT_TRUE((last.width == 1 && last.height == 1) || levels == level);
}

TYPED_TEST(PyramidRecordTest, LiesInsideItsAreaAtAnyAddress) {
    for (int shift = 0; shift < 17; ++shift) {
        for (const int level : {1, 2, 3, 6, 100}) {
            ASSERT_NO_FATAL_FAILURE(expectRecord<TypeParam>(640, 480, level, 2.0F, shift));
            ASSERT_NO_FATAL_FAILURE(expectRecord<TypeParam>(1, 1, level, 2.0F, shift));
            ASSERT_NO_FATAL_FAILURE(expectRecord<TypeParam>(3, 50, level, 1.3F, shift));
        }
    }
}

TYPED_TEST(PyramidRecordTest, HoldsThousandsOfLevels) {
    expectRecord<TypeParam>(5000, 3000, INT32_MAX, kAboveOne, 3);
    expectRecord<TypeParam>(40000, 30, 20000, 1.0003F, 1);
}

TYPED_TEST(PyramidRecordTest, SizesInBytes) {
    using Count = typename TypeParam::Count;
    Count record = 0, buffer = 0;
    ASSERT_EQ(TypeParam::getSize(&record, &buffer, 3, {1, 1}, 2.0F), okpStatusOk);
    EXPECT_EQ(record, 152);
    EXPECT_EQ(buffer, 8);
    ASSERT_EQ(TypeParam::getSize(&record, &buffer, 20, {640, 480}, 2.0F), okpStatusOk);
    EXPECT_EQ(record, 10 * 52 + 152);
    EXPECT_EQ(buffer, 5120);
    // The largest size whose buffer fits its type, and the next.
    const Count most = std::numeric_limits<Count>::max() / 8;
    EXPECT_EQ(TypeParam::getSize(&record, &buffer, 1, {1, most}, 2.0F), okpStatusOk);
    EXPECT_EQ(buffer, most * 8);
    EXPECT_EQ(TypeParam::getSize(&record, &buffer, 1, {most + 1, 1}, 2.0F), okpStatusSizeTooLarge);
    EXPECT_EQ(buffer, most * 8);
    uint8_t area[256];
    typename TypeParam::Record* pyramid = nullptr;
    EXPECT_EQ(TypeParam::init(&pyramid, 1, {most + 1, 1}, 2.0F, area, area), okpStatusSizeTooLarge);
    EXPECT_EQ(pyramid, nullptr);
}

template <class F>
struct RecordArguments {
    typename F::Count *recordBytes, *bufferBytes;
    typename F::Record** pyramid;
    int32_t level;
    typename F::Roi roi;
    float rate;
    uint8_t *area, *buffer;
};

TYPED_TEST(PyramidRecordTest, ChecksInOrder) {
    using F = TypeParam;
    using A = RecordArguments<F>;
    typename F::Count recordBytes = -5, bufferBytes = -5;
    typename F::Record* pyramid = nullptr;
    std::vector<uint8_t> area(512, 77), buffer(64);
    const A valid{&recordBytes, &bufferBytes, &pyramid, 2, {8, 8}, 2.0F, area.data(), buffer.data()};
    const std::vector<Fault<A>> values{
        {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
        {"no height", okpStatusBadSize, [](A& a) { a.roi.height = 0; }},
        {"no level", okpStatusBadArgument, [](A& a) { a.level = 0; }},
        {"rate 1", okpStatusBadArgument, [](A& a) { a.rate = 1.0F; }},
        {"rate above 10", okpStatusBadArgument, [](A& a) { a.rate = 10.000001F; }},
        {"no rate", okpStatusBadArgument, [](A& a) { a.rate = NAN; }}};

    std::vector<Fault<A>> faults{
        {"null size", okpStatusNullPointer, [](A& a) { a.recordBytes = nullptr; }},
        {"null buffer size", okpStatusNullPointer, [](A& a) { a.bufferBytes = nullptr; }}};
    faults.insert(faults.end(), values.begin(), values.end());
    expectStatusOrder<A>(
        valid, [](const A& a) { return F::getSize(a.recordBytes, a.bufferBytes, a.level, a.roi, a.rate); },
        faults);
    EXPECT_EQ(recordBytes, -5);

    faults = {{"null pyramid", okpStatusNullPointer, [](A& a) { a.pyramid = nullptr; }},
              {"null area", okpStatusNullPointer, [](A& a) { a.area = nullptr; }},
              {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }}};
    faults.insert(faults.end(), values.begin(), values.end());
    expectStatusOrder<A>(
        valid, [](const A& a) { return F::init(a.pyramid, a.level, a.roi, a.rate, a.area, a.buffer); },
        faults);
    EXPECT_EQ(pyramid, nullptr);
    EXPECT_EQ(area, std::vector<uint8_t>(512, 77));
}

}  // namespace
}  // namespace okpcv::test
