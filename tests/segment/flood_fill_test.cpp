// Flood fills against their documented steps, in buffers of exactly the queried size.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "segment/fill_reference.h"
#include "segment/scratch.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/repeated_memory.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

// Every fill behind one signature: values by pointer, deltas ignored by plain fills.
template <class T>
using Call = std::function<okpStatus(T*, int32_t, RoiSize, PixelPoint, const T*, const T*, const T*,
                                     ConnectedComp*, uint8_t*)>;
template <class T>
struct Fill {
    const char* name;
    Rule rule;
    bool diagonals;
    int channels;
    Call<T> call;
};

template <class T>
Call<T> callOf(okpStatus (*f)(T*, int32_t, RoiSize, PixelPoint, T, ConnectedComp*, uint8_t*)) {
    return [f](T* p, int32_t step, RoiSize roi, PixelPoint seed, const T* v, const T*, const T*,
               ConnectedComp* r, uint8_t* b) { return f(p, step, roi, seed, *v, r, b); };
}
template <class T>
Call<T> callOf(okpStatus (*f)(T*, int32_t, RoiSize, PixelPoint, const T*, ConnectedComp*, uint8_t*)) {
    return [f](T* p, int32_t step, RoiSize roi, PixelPoint seed, const T* v, const T*, const T*,
               ConnectedComp* r, uint8_t* b) { return f(p, step, roi, seed, v, r, b); };
}
template <class T>
Call<T> callOf(okpStatus (*f)(T*, int32_t, RoiSize, PixelPoint, T, T, T, ConnectedComp*, uint8_t*)) {
    return [f](T* p, int32_t step, RoiSize roi, PixelPoint seed, const T* v, const T* a, const T* z,
               ConnectedComp* r, uint8_t* b) { return f(p, step, roi, seed, *v, *a, *z, r, b); };
}
template <class T>
Call<T> callOf(okpStatus (*f)(T*, int32_t, RoiSize, PixelPoint, const T*, const T*, const T*, ConnectedComp*,
                              uint8_t*)) {
    return f;
}

template <class T>
Fill<T> makeFill(const char* name, Rule rule, bool diagonals, int channels, Call<T> call) {
    return {name, rule, diagonals, channels, std::move(call)};
}

#define FILL(NAME, RULE, DIAGONALS, CHANNELS) \
    makeFill<T>(#NAME, Rule::RULE, DIAGONALS, CHANNELS, callOf<T>(NAME))

template <class T>
std::vector<Fill<T>> fills();

template <>
std::vector<Fill<uint8_t>> fills() {
    using T = uint8_t;
    return {FILL(okpiFloodFill_4Con_8u_C1IR, Plain, false, 1),
            FILL(okpiFloodFill_4Con_8u_C3IR, Plain, false, 3),
            FILL(okpiFloodFill_8Con_8u_C1IR, Plain, true, 1),
            FILL(okpiFloodFill_8Con_8u_C3IR, Plain, true, 3),
            FILL(okpiFloodFill_Range4Con_8u_C1IR, Range, false, 1),
            FILL(okpiFloodFill_Range4Con_8u_C3IR, Range, false, 3),
            FILL(okpiFloodFill_Range8Con_8u_C1IR, Range, true, 1),
            FILL(okpiFloodFill_Range8Con_8u_C3IR, Range, true, 3),
            FILL(okpiFloodFill_Grad4Con_8u_C1IR, Gradient, false, 1),
            FILL(okpiFloodFill_Grad4Con_8u_C3IR, Gradient, false, 3),
            FILL(okpiFloodFill_Grad8Con_8u_C1IR, Gradient, true, 1),
            FILL(okpiFloodFill_Grad8Con_8u_C3IR, Gradient, true, 3)};
}
template <>
std::vector<Fill<uint16_t>> fills() {
    using T = uint16_t;
    return {FILL(okpiFloodFill_4Con_16u_C1IR, Plain, false, 1),
            FILL(okpiFloodFill_4Con_16u_C3IR, Plain, false, 3),
            FILL(okpiFloodFill_8Con_16u_C1IR, Plain, true, 1),
            FILL(okpiFloodFill_8Con_16u_C3IR, Plain, true, 3),
            FILL(okpiFloodFill_Range4Con_16u_C1IR, Range, false, 1),
            FILL(okpiFloodFill_Range4Con_16u_C3IR, Range, false, 3),
            FILL(okpiFloodFill_Range8Con_16u_C1IR, Range, true, 1),
            FILL(okpiFloodFill_Range8Con_16u_C3IR, Range, true, 3),
            FILL(okpiFloodFill_Grad4Con_16u_C1IR, Gradient, false, 1),
            FILL(okpiFloodFill_Grad4Con_16u_C3IR, Gradient, false, 3),
            FILL(okpiFloodFill_Grad8Con_16u_C1IR, Gradient, true, 1),
            FILL(okpiFloodFill_Grad8Con_16u_C3IR, Gradient, true, 3)};
}
template <>
std::vector<Fill<int32_t>> fills() {
    using T = int32_t;
    return {FILL(okpiFloodFill_4Con_32s_C1IR, Plain, false, 1),
            FILL(okpiFloodFill_8Con_32s_C1IR, Plain, true, 1)};
}
template <>
std::vector<Fill<float>> fills() {
    using T = float;
    return {FILL(okpiFloodFill_4Con_32f_C1IR, Plain, false, 1),
            FILL(okpiFloodFill_4Con_32f_C3IR, Plain, false, 3),
            FILL(okpiFloodFill_8Con_32f_C1IR, Plain, true, 1),
            FILL(okpiFloodFill_8Con_32f_C3IR, Plain, true, 3),
            FILL(okpiFloodFill_Range4Con_32f_C1IR, Range, false, 1),
            FILL(okpiFloodFill_Range4Con_32f_C3IR, Range, false, 3),
            FILL(okpiFloodFill_Range8Con_32f_C1IR, Range, true, 1),
            FILL(okpiFloodFill_Range8Con_32f_C3IR, Range, true, 3),
            FILL(okpiFloodFill_Grad4Con_32f_C1IR, Gradient, false, 1),
            FILL(okpiFloodFill_Grad4Con_32f_C3IR, Gradient, false, 3),
            FILL(okpiFloodFill_Grad8Con_32f_C1IR, Gradient, true, 1),
            FILL(okpiFloodFill_Grad8Con_32f_C3IR, Gradient, true, 3)};
}

int32_t bufferBytes(Rule rule, RoiSize roi) {
    int32_t bytes = 0;
    EXPECT_EQ(
        rule == Rule::Gradient ? okpiFloodFillGetSize_Grad(roi, &bytes) : okpiFloodFillGetSize(roi, &bytes),
        okpStatusOk);
    return bytes;
}

bool operator==(const PixelRect& a, const PixelRect& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
void expectSame(const ConnectedComp& actual, const ConnectedComp& expected) {
    EXPECT_EQ(actual.area, expected.area);
    EXPECT_EQ(std::memcmp(actual.value, expected.value, sizeof actual.value), 0);
    EXPECT_TRUE(actual.rect == expected.rect)
        << actual.rect.x << ',' << actual.rect.y << ' ' << actual.rect.width << 'x' << actual.rect.height;
}

// Any bits: a call that writes no record must leave them.
ConnectedComp untouchedRecord() {
    return {-1.5, {-2.5, -3.5, -4.5}, {-5, -6, -7, -8}};
}

template <class T>
struct Values {
    std::vector<T> newVal, minDelta, maxDelta;
};

// Fills an image that holds `pixels` and expects what the reference makes of it. Returns the reference.
template <class T>
FillReference<T> expectFill(const Fill<T>& fill, RoiSize roi, const std::vector<T>& pixels, PixelPoint seed,
                            const Values<T>& values, size_t bufferOffset = 0) {
    FillReference<T> reference(fill.rule, fill.diagonals, fill.channels, roi, pixels, values.newVal,
                               values.minDelta, values.maxDelta);
    const ConnectedComp expected = reference.fill(seed).value_or(untouchedRecord());

    GuardedImage<T> image(roi.width, roi.height,
                          {.channels = fill.channels,
                           .padding = roi.width % 3 * 4,
                           .at = seed.x % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start});
    image.setPixels(pixels);
    Scratch scratch(static_cast<size_t>(bufferBytes(fill.rule, roi)), bufferOffset);
    ConnectedComp record = untouchedRecord();
    EXPECT_EQ(fill.call(image.data(), image.step(), roi, seed, values.newVal.data(), values.minDelta.data(),
                        values.maxDelta.data(), &record, scratch.data()),
              okpStatusOk);
    expectSame(record, expected);
    EXPECT_TRUE(sameBits(image.pixels(), reference.image));
    EXPECT_TRUE(image.paddingIntact());
    EXPECT_TRUE(scratch.intact());
    return reference;
}

template <class T>
struct FloodFillTest : testing::Test {
    Random random{sizeof(T)};

    PixelPoint seedIn(RoiSize roi) {
        return {random.integer(0, roi.width - 1), random.integer(0, roi.height - 1)};
    }
    // A new value that no pixel below has.
    std::vector<T> fresh(int channels) { return std::vector<T>(static_cast<size_t>(channels), T(200)); }

    // Few levels, each pixel one of them at random or the one before it: runs of all lengths.
    std::vector<T> blotches(RoiSize roi, int channels, int levels, double change) {
        std::vector<T> pixels(static_cast<size_t>(roi.width) * roi.height * channels);
        for (size_t i = 0; i < pixels.size(); ++i) {
            const auto before = static_cast<size_t>(channels);
            pixels[i] = i < before || random.chance(change) ? static_cast<T>(random.integer(0, levels - 1))
                                                            : pixels[i - before];
        }
        return pixels;
    }
    // A value per channel; one of the types' special values now and then.
    Values<T> draw(int channels, int levels) {
        Values<T> values{fresh(channels), {}, {}};
        for (int c = 0; c < channels; ++c) {
            values.minDelta.push_back(static_cast<T>(random.integer(0, levels / 2)));
            values.maxDelta.push_back(static_cast<T>(random.integer(0, levels / 2)));
        }
        return values;
    }
};
using FillTypes = testing::Types<uint8_t, uint16_t, int32_t, float>;
TYPED_TEST_SUITE(FloodFillTest, FillTypes);

TYPED_TEST(FloodFillTest, FollowsItsSteps) {
    using T = TypeParam;
    for (const Fill<T>& fill : fills<T>()) {
        SCOPED_TRACE(fill.name);
        for (int round = 0; round < 250; ++round) {
            // Now and then runs of several words of a map.
            const RoiSize roi{this->random.integer(1, round % 10 == 0 ? 450 : 45),
                              this->random.integer(1, 12)};
            const int levels = this->random.integer(2, 9);
            const auto pixels = this->blotches(roi, fill.channels, levels, this->random.real(0.02F, 1.0F));
            expectFill(fill, roi, pixels, this->seedIn(roi), this->draw(fill.channels, levels),
                       static_cast<size_t>(round % 8));
            if (testing::Test::HasFailure()) return;
        }
    }
}

TYPED_TEST(FloodFillTest, TakesSpecialValues) {
    using T = TypeParam;
    for (const Fill<T>& fill : fills<T>()) {
        SCOPED_TRACE(fill.name);
        for (int round = 0; round < 200; ++round) {
            const RoiSize roi{this->random.integer(1, 20), this->random.integer(1, 6)};
            auto pixels = this->blotches(roi, fill.channels, 2, 0.3);
            for (T& p : pixels) {
                if (this->random.chance(0.3)) p = this->random.template special<T>();
            }
            const auto channels = static_cast<size_t>(fill.channels);
            Values<T> values{std::vector<T>(channels), std::vector<T>(channels), std::vector<T>(channels)};
            for (size_t c = 0; c < channels; ++c) {
                values.newVal[c] = this->random.template special<T>();
                values.minDelta[c] = this->random.template special<T>();
                values.maxDelta[c] = this->random.template special<T>();
            }
            expectFill(fill, roi, pixels, this->seedIn(roi), values);
            if (testing::Test::HasFailure()) return;
        }
    }
}

// Shapes that ask most of the stack, as images of 0 and 1 with a seed in a 1.
struct Shape {
    const char* name;
    std::function<bool(int x, int y, RoiSize roi)> isSet;
};
const Shape kShapes[] = {
    {"comb", [](int x, int y, RoiSize) { return y == 0 || x % 2 == 0; }},
    {"comb from below", [](int x, int y, RoiSize roi) { return y == roi.height - 1 || x % 2 == 0; }},
    {"combs on a stem", [](int x, int y, RoiSize) { return x == 0 || y % 4 == 0 || x % 2 == 0; }},
    {"fishbone", [](int x, int y, RoiSize roi) { return x == roi.width / 2 || y % 2 == 0; }},
    {"checkerboard", [](int x, int y, RoiSize) { return (x + y) % 2 == 0; }},
    {"net", [](int x, int y, RoiSize) { return x % 2 == 0 || y % 2 == 0; }},
    {"loose net", [](int x, int y, RoiSize) { return x % 3 == 0 || y % 3 == 0; }},
    {"spiral",
     [](int x, int y, RoiSize roi) {
         const int ring = std::min({x, y, roi.width - 1 - x, roi.height - 1 - y});
         return ring % 2 == 0 ? !(x == ring && y == ring + 1) : x == ring && y == ring;
     }},
    {"meander",
     [](int x, int y, RoiSize roi) { return y % 2 == 0 || x == (y % 4 == 1 ? roi.width - 1 : 0); }},
    {"flat", [](int, int, RoiSize) { return true; }},
};

TYPED_TEST(FloodFillTest, StaysInItsBufferWhateverTheShape) {
    using T = TypeParam;
    // Narrow, low and square ones; the buffer holds only a few entries for the smallest.
    std::vector<RoiSize> sizes;
    for (int w = 1; w <= 7; ++w) {
        for (const int h : {1, 2, 3, 4, 5, 8, 67}) sizes.push_back({w, h});
    }
    for (const RoiSize roi : {RoiSize{33, 2}, {67, 3}, {66, 65}, {65, 66}}) sizes.push_back(roi);

    for (const Fill<T>& fill : fills<T>()) {
        const auto channels = static_cast<size_t>(fill.channels);
        const Values<T> values{this->fresh(fill.channels), std::vector<T>(channels),
                               std::vector<T>(channels)};
        for (const Shape& shape : kShapes) {
            for (const RoiSize roi : sizes) {
                std::vector<T> pixels(static_cast<size_t>(roi.width) * roi.height * channels);
                for (size_t i = 0; i < pixels.size(); ++i) {
                    const int p = static_cast<int>(i / channels);
                    pixels[i] = shape.isSet(p % roi.width, p / roi.width, roi) ? 1 : 0;
                }
                for (int round = 0; round < 3; ++round) {
                    expectFill(fill, roi, pixels, this->seedIn(roi), values,
                               static_cast<size_t>(this->random.integer(0, 7)));
                }
                if (testing::Test::HasFailure())
                    FAIL() << fill.name << ' ' << shape.name << ' ' << roi.width << 'x' << roi.height;
            }
        }
    }
}

TYPED_TEST(FloodFillTest, StaysInItsBufferInNoise) {
    using T = TypeParam;
    const RoiSize roi{201, 150};
    for (const Fill<T>& fill : fills<T>()) {
        SCOPED_TRACE(fill.name);
        const auto channels = static_cast<size_t>(fill.channels);
        for (const double density : {0.35, 0.45, 0.6, 0.7}) {
            std::vector<T> pixels(static_cast<size_t>(roi.width) * roi.height * channels);
            for (size_t i = 0; i < pixels.size(); i += channels)
                std::fill_n(pixels.begin() + static_cast<ptrdiff_t>(i), channels,
                            T(this->random.chance(density) ? 1 : 0));
            const PixelPoint seed = this->seedIn(roi);
            std::fill_n(pixels.begin() + static_cast<ptrdiff_t>((seed.y * roi.width + seed.x) * channels),
                        channels, T(1));
            expectFill(fill, roi, pixels, seed,
                       {this->fresh(fill.channels), std::vector<T>(channels), std::vector<T>(channels)}, 3);
        }
    }
}

// Small images with every seed: the ring of the range fills runs over, or has but one entry.
TYPED_TEST(FloodFillTest, FillsTinyImages) {
    using T = TypeParam;
    size_t overruns = 0;
    for (const Fill<T>& fill : fills<T>()) {
        const auto channels = static_cast<size_t>(fill.channels);
        const Values<T> values{this->fresh(fill.channels), std::vector<T>(channels),
                               std::vector<T>(channels)};
        for (int width = 1; width <= 6; ++width) {
            for (int height = 1; height <= 9; ++height) {
                for (int round = 0; round < 8; ++round) {
                    std::vector<T> pixels(static_cast<size_t>(width * height) * channels);
                    for (size_t i = 0; i < pixels.size(); i += channels) {
                        std::fill_n(pixels.begin() + static_cast<ptrdiff_t>(i), channels,
                                    T(round == 0 || this->random.chance(0.6) ? 1 : 0));
                    }
                    const auto reference =
                        expectFill(fill, {width, height}, pixels, this->seedIn({width, height}), values);
                    overruns += fill.rule == Rule::Range &&
                                reference.mostWaiting > static_cast<size_t>(width * height / 4);
                    if (testing::Test::HasFailure()) FAIL() << fill.name << ' ' << width << 'x' << height;
                }
            }
        }
    }
    // There is no range fill of 32s.
    EXPECT_EQ(overruns > 0, (!std::is_same_v<T, int32_t>));
}

TEST(FloodFill, LeavesTheRecordWhenTheSeedHasTheNewValue) {
    std::vector<uint8_t> pixels{7, 7, 8};
    ConnectedComp record = untouchedRecord();
    Scratch scratch(50, 0);
    EXPECT_EQ(okpiFloodFill_4Con_8u_C1IR(pixels.data(), 3, {3, 1}, {0, 0}, 7, &record, scratch.data()),
              okpStatusOk);
    expectSame(record, untouchedRecord());
    // Only plain fills stop there.
    EXPECT_EQ(
        okpiFloodFill_Range4Con_8u_C1IR(pixels.data(), 3, {3, 1}, {0, 0}, 7, 0, 0, &record, scratch.data()),
        okpStatusOk);
    expectSame(record, {2, {7, 0, 0}, {0, 0, 2, 1}});
}

TEST(FloodFill, FillsOnlyTheSeedsRunWhenTheRingHasOneEntry) {
    std::vector<uint8_t> pixels(6, 1);
    ConnectedComp record;
    Scratch scratch(68, 0);
    EXPECT_EQ(
        okpiFloodFill_Range4Con_8u_C1IR(pixels.data(), 3, {3, 2}, {1, 1}, 9, 0, 0, &record, scratch.data()),
        okpStatusOk);
    EXPECT_EQ(pixels, (std::vector<uint8_t>{1, 1, 1, 9, 9, 9}));
    expectSame(record, {3, {9, 0, 0}, {0, 1, 3, 1}});
}

TEST(FloodFill, SizesItsBuffers) {
    const auto plain = [](int32_t width, int32_t height) {
        int32_t bytes = -1;
        EXPECT_EQ(okpiFloodFillGetSize({width, height}, &bytes), okpStatusOk);
        return bytes;
    };
    EXPECT_EQ(plain(1, 1), 38);
    EXPECT_EQ(plain(640, 480), 640 * 480 * 6 + 32);
    EXPECT_EQ(plain(30000, 30000), 1105032736);   // modulo 2^32
    EXPECT_EQ(plain(20000, 20000), -1894967264);  // 2400000032

    int32_t bytes = -1;
    EXPECT_EQ(okpiFloodFillGetSize_Grad({640, 480}, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 642 * 482 + 16 * 640 * 480 + 64);
    EXPECT_EQ(okpiFloodFillGetSize_Grad({11000, 11000}, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 2057044068);
    bytes = -1;
    EXPECT_EQ(okpiFloodFillGetSize_Grad({12000, 12000}, &bytes), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiFloodFillGetSize_Grad({INT32_MAX, INT32_MAX}, &bytes), okpStatusSizeTooLarge);

    for (const auto query : {okpiFloodFillGetSize, okpiFloodFillGetSize_Grad}) {
        EXPECT_EQ(query({0, 0}, nullptr), okpStatusNullPointer);
        EXPECT_EQ(query({0, 5}, &bytes), okpStatusBadSize);
        EXPECT_EQ(query({5, -1}, &bytes), okpStatusBadSize);
    }
    EXPECT_EQ(bytes, -1);
}

// What the query returns for so large a region has room for one or two runs.
TEST(FloodFill, StaysInABufferWhoseSizeHasWrapped) {
    const RoiSize roi{16, 44739243};
    RepeatedMemory image(int64_t{roi.width} * roi.height, 7);
    ASSERT_EQ(bufferBytes(Rule::Range, roi), 64);
    Scratch scratch(64, 0);
    ConnectedComp record;
    // A new value inside the interval would need a map, in which this seed's bit lies just behind the buffer;
    // there is room for the seed's run alone.
    ASSERT_EQ(okpiFloodFill_Range4Con_8u_C1IR(const_cast<uint8_t*>(image.data()), roi.width, roi, {3, 40}, 8,
                                              1, 1, &record, scratch.data()),
              okpStatusOk);
    expectSame(record, {16, {8, 0, 0}, {0, 40, 16, 1}});
    EXPECT_TRUE(scratch.intact());
    EXPECT_EQ(image.data()[int64_t{roi.width} * 40 + 15], 8);
    EXPECT_EQ(image.data()[int64_t{roi.width} * 41], 7);
}

template <class T>
struct Arguments {
    T* image;
    int32_t step;
    RoiSize roi;
    PixelPoint seed;
    const T *newVal, *minDelta, *maxDelta;
    ConnectedComp* region;
    uint8_t* buffer;
};

TYPED_TEST(FloodFillTest, ChecksInOrder) {
    using T = TypeParam;
    using A = Arguments<T>;
    for (const Fill<T>& fill : fills<T>()) {
        SCOPED_TRACE(fill.name);
        GuardedImage<T> image(8, 3, {.channels = fill.channels, .padding = 16});
        image.fill([](int, int, int) { return 1; });
        const std::vector<T> before = image.pixels();
        const std::vector<T> values(3, T(5));
        Scratch scratch(static_cast<size_t>(bufferBytes(fill.rule, image.roi())), 0);
        ConnectedComp record = untouchedRecord();
        const A valid{image.data(),  image.step(),  image.roi(), {7, 2},        values.data(),
                      values.data(), values.data(), &record,     scratch.data()};

        std::vector<Fault<A>> faults{{"null image", okpStatusNullPointer, [](A& a) { a.image = nullptr; }},
                                     {"null region", okpStatusNullPointer, [](A& a) { a.region = nullptr; }},
                                     {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }}};
        const auto add = [&](const char* name, okpStatus status, std::function<void(A&)> inject) {
            faults.push_back({name, status, std::move(inject)});
        };
        if (fill.channels == 3) {
            add("null value", okpStatusNullPointer, [](A& a) { a.newVal = nullptr; });
            if (fill.rule != Rule::Plain) {
                add("null lower delta", okpStatusNullPointer, [](A& a) { a.minDelta = nullptr; });
                add("null upper delta", okpStatusNullPointer, [](A& a) { a.maxDelta = nullptr; });
            }
        }
        const int rowBytes = image.step() - 16;
        add("no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; });
        add("negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; });
        add("short step", okpStatusBadStep, [=](A& a) { a.step = rowBytes - 1; });
        if (sizeof(T) > 1) add("odd step", okpStatusStepNotMultiple, [=](A& a) { a.step = rowBytes + 1; });
        add("seed left", okpStatusOutOfRange, [](A& a) { a.seed.x = -1; });
        add("seed right", okpStatusOutOfRange, [](A& a) { a.seed.x = 8; });
        add("seed above", okpStatusOutOfRange, [](A& a) { a.seed.y = -1; });
        add("seed below", okpStatusOutOfRange, [](A& a) { a.seed.y = 3; });
        const std::function<okpStatus(const A&)> call = [&](const A& a) {
            return fill.call(a.image, a.step, a.roi, a.seed, a.newVal, a.minDelta, a.maxDelta, a.region,
                             a.buffer);
        };
        expectStatusOrder<A>(valid, call, faults);
        expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
            A a = valid;
            a.roi = roi;
            a.step = step;
            return call(a);
        });
        EXPECT_EQ(image.pixels(), before);
        expectSame(record, untouchedRecord());
    }
}

}  // namespace
}  // namespace okpcv::test
