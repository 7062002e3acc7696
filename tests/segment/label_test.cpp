// Labelling against a search of every group, in buffers of exactly the queried size.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <limits>

#include "segment/scratch.h"
#include "support/cache_stand_in.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

struct Markers {
    RoiSize roi;
    std::vector<uint8_t> pixels;
};

struct Rule {
    int32_t minLabel, maxLabel, norm;
};

// Labels in raster order of the groups' first pixels; returns the number of groups.
int labelGroups(const Markers& markers, const Rule& rule, std::vector<int>& labels) {
    const int w = markers.roi.width, h = markers.roi.height;
    labels.assign(markers.pixels.size(), 0);
    int groups = 0;
    for (int first = 0; first < w * h; ++first) {
        if (markers.pixels[first] == 0 || labels[first] != 0) continue;
        const int64_t count = int64_t{rule.maxLabel} - rule.minLabel + 1;
        const int label = rule.minLabel + static_cast<int>(groups++ % count);
        std::deque<int> open{first};
        labels[first] = label;
        while (!open.empty()) {
            const int x = open.front() % w, y = open.front() / w;
            open.pop_front();
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const int nx = x + dx, ny = y + dy;
                    if (nx < 0 || nx >= w || ny < 0 || ny >= h) continue;
                    if (rule.norm == 1 && dx != 0 && dy != 0) continue;
                    const int n = ny * w + nx;
                    if (markers.pixels[n] == 0 || labels[n] != 0) continue;
                    labels[n] = label;
                    open.push_back(n);
                }
            }
        }
    }
    return groups;
}

using SizeQuery = decltype(okpiLabelMarkersGetBufferSize_8u_C1R);
using InPlace16 = decltype(okpiLabelMarkers_16u_C1IR);

template <class T>
void expectImage(const GuardedImage<T>& image, const std::vector<int>& labels, const char* what) {
    const std::vector<T> pixels = image.pixels();
    EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), labels.begin(), labels.end())) << what;
    EXPECT_TRUE(image.paddingIntact()) << what;
}

Scratch scratchFor(SizeQuery* query, RoiSize roi, size_t offset) {
    int32_t bytes = 0;
    EXPECT_EQ(query(roi, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, roi.width * roi.height * 6 + 32);
    return {static_cast<size_t>(bytes), offset};
}

template <class T>
void expectInPlace(SizeQuery* query,
                   okpStatus (*f)(T*, int32_t, RoiSize, int32_t, int32_t, int32_t, int32_t*, uint8_t*),
                   const Markers& markers, Rule rule, size_t offset) {
    rule.maxLabel = std::min<int32_t>(rule.maxLabel, std::numeric_limits<T>::max() - 1);
    std::vector<int> expected;
    const int groups = labelGroups(markers, rule, expected);
    GuardedImage<T> image(
        markers.roi.width, markers.roi.height,
        {.padding = 6, .at = offset % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start});
    // The upper byte of a wider marker counts, too.
    image.fill([&](int x, int y, int) {
        const int v = markers.pixels[static_cast<size_t>(y) * markers.roi.width + x];
        return sizeof(T) > 1 && v % 2 == 0 ? v * 256 : v;
    });
    Scratch scratch = scratchFor(query, markers.roi, offset);
    int32_t number = -1;
    ASSERT_EQ(f(image.data(), image.step(), markers.roi, rule.minLabel, rule.maxLabel, rule.norm, &number,
                scratch.data()),
              okpStatusOk);
    EXPECT_EQ(number, groups);
    expectImage(image, expected, "in place");
    EXPECT_TRUE(scratch.intact());
}

void expectLabels(const Markers& markers, const Rule& rule, size_t offset) {
    expectInPlace<uint8_t>(okpiLabelMarkersGetBufferSize_8u_C1R, okpiLabelMarkers_8u_C1IR, markers, rule,
                           offset);
    expectInPlace<uint16_t>(okpiLabelMarkersGetBufferSize_16u_C1R, okpiLabelMarkers_16u_C1IR, markers, rule,
                            offset);

    std::vector<int> expected;
    const int groups = labelGroups(markers, rule, expected);
    GuardedImage<uint8_t> src(markers.roi.width, markers.roi.height, {.padding = 3});
    src.setPixels(markers.pixels);
    GuardedImage<int32_t> dst(markers.roi.width, markers.roi.height, {.padding = 8});
    Scratch scratch = scratchFor(okpiLabelMarkersGetBufferSize_8u32s_C1R, markers.roi, offset);
    int32_t number = -1;
    ASSERT_EQ(okpiLabelMarkers_8u32s_C1R(src.data(), src.step(), dst.data(), dst.step(), markers.roi,
                                         rule.minLabel, rule.maxLabel, rule.norm, &number, scratch.data()),
              okpStatusOk);
    EXPECT_EQ(number, groups);
    expectImage(dst, expected, "apart");
    EXPECT_EQ(src.pixels(), markers.pixels);
    EXPECT_TRUE(scratch.intact());
}

Markers randomMarkers(Random& random, RoiSize roi, double density) {
    Markers markers{roi, {}};
    for (int i = 0; i < roi.width * roi.height; ++i) markers.pixels.push_back(random.maskByte(density));
    return markers;
}

TEST(LabelMarkers, NumbersGroupsInRasterOrder) {
    Random random(81);
    for (int round = 0; round < 1500; ++round) {
        const RoiSize roi{random.integer(1, round % 2 == 0 ? 12 : 200), random.integer(1, 14)};
        const Markers markers = randomMarkers(random, roi, random.real(0.0F, 1.0F));
        const int minLabel = random.integer(1, 5);
        const int maxLabel = random.chance(0.5) ? minLabel + random.integer(0, 9) : 2147483646;
        expectLabels(markers, {minLabel, maxLabel, round % 3 == 0}, static_cast<size_t>(round % 9));
        if (testing::Test::HasFailure()) FAIL() << roi.width << 'x' << roi.height;
    }
}

// Most runs, longest chains of unions, widths around a word's.
TEST(LabelMarkers, StaysInItsBufferWhateverTheShape) {
    const auto isSet = [](int shape, int x, int y, RoiSize roi) {
        switch (shape) {
            case 0:
                return x % 2 == 0;
            case 1:
                return (x + y) % 2 == 0;
            case 2:
                return x % 2 == 0 || y == roi.height - 1;
            case 3:
                return x % 2 == 0 && (y % 2 == 0 || x % 4 == 0);
            case 4:
                return y % 2 == 0 || x == (y % 4 == 1 ? roi.width - 1 : 0);
            default:
                return true;
        }
    };
    for (const int width : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 63, 64, 65, 127, 128, 129, 301}) {
        for (const int height : {1, 2, 3, 4, 5, 20, 90}) {
            for (int shape = 0; shape < 6; ++shape) {
                Markers markers{{width, height}, {}};
                for (int i = 0; i < width * height; ++i)
                    markers.pixels.push_back(isSet(shape, i % width, i / width, markers.roi) ? 9 : 0);
                for (int32_t norm = 0; norm <= 1; ++norm)
                    expectLabels(markers, {1, 1000, norm}, static_cast<size_t>(width % 8));
                if (testing::Test::HasFailure()) FAIL() << shape << ": " << width << 'x' << height;
            }
        }
    }
}

TEST(LabelMarkers, LabelsTheSameWhateverTheCache) {
    Random random(82);
    for (const CacheStandIn& answer : {CacheStandIn{okpStatusOk, 1, 0}, CacheStandIn{okpStatusOk, 1 << 30, 0},
                                       CacheStandIn{okpStatusBadArgument, 0, 0}}) {
        cacheStandIn = answer;
        int calls = 0;
        for (int width = 1; width <= 70; ++width) {
            // The buffer of a single row has no room for another one.
            for (const int height : {1, 30}) {
                expectInPlace<uint16_t>(okpiLabelMarkersGetBufferSize_16u_C1R, okpiLabelMarkers_16u_C1IR,
                                        randomMarkers(random, {width, height}, 0.5), {1, 60000, 1},
                                        static_cast<size_t>(width % 5));
                ++calls;
            }
        }
        EXPECT_EQ(cacheStandIn.queries, calls);
        // The other forms do not ask.
        expectInPlace<uint8_t>(okpiLabelMarkersGetBufferSize_8u_C1R, okpiLabelMarkers_8u_C1IR,
                               randomMarkers(random, {9, 9}, 0.5), {1, 250, 0}, 0);
        EXPECT_EQ(cacheStandIn.queries, calls);
    }
    cacheStandIn = {};
}

// One argument set serves all forms: in place, the destination is the image.
template <class S, class T>
struct Arguments {
    const S* src;
    int32_t srcStep;
    T* dst;
    int32_t dstStep;
    RoiSize roi;
    int32_t minLabel, maxLabel, norm;
    int32_t* number;
    uint8_t* buffer;
};

template <class S, class T>
void expectOrder(std::function<okpStatus(const Arguments<S, T>&)> call, bool apart) {
    using A = Arguments<S, T>;
    GuardedImage<S> src(8, 3, {.padding = 16});
    GuardedImage<T> dst(8, 3, {.padding = 16});
    src.fill([](int, int, int) { return 3; });
    dst.fill([](int, int, int) { return 3; });
    const auto before = dst.pixels();
    int32_t number = -7;
    Scratch scratch(8 * 3 * 6 + 32, 0);
    const A valid{src.data(), src.step(), dst.data(), dst.step(), src.roi(),
                  1,          100,        0,          &number,    scratch.data()};

    std::vector<Fault<A>> faults;
    const auto add = [&](const char* name, okpStatus status, std::function<void(A&)> inject) {
        faults.push_back({name, status, std::move(inject)});
    };
    const int dstRow = dst.step() - 16;
    if (apart) add("null source", okpStatusNullPointer, [](A& a) { a.src = nullptr; });
    add("null destination", okpStatusNullPointer, [](A& a) { a.dst = nullptr; });
    add("null number", okpStatusNullPointer, [](A& a) { a.number = nullptr; });
    add("null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; });
    add("no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; });
    add("negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; });
    if (apart) add("short source step", okpStatusBadStep, [](A& a) { a.srcStep = 7; });
    add("short step", okpStatusBadStep, [=](A& a) { a.dstStep = dstRow - 1; });
    if (sizeof(T) > 1) add("odd step", okpStatusStepNotMultiple, [=](A& a) { a.dstStep = dstRow + 1; });
    add("label 0", okpStatusBadArgument, [](A& a) { a.minLabel = 0; });
    add("label of the type's maximum", okpStatusBadArgument,
        [](A& a) { a.maxLabel = std::numeric_limits<T>::max(); });
    add("labels in reverse", okpStatusBadArgument, [](A& a) { a.minLabel = 101; });
    add("norm 2", okpStatusBadArgument, [](A& a) { a.norm = 2; });
    add("norm -1", okpStatusBadArgument, [](A& a) { a.norm = -1; });
    expectStatusOrder<A>(valid, call, faults);
    expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
        A a = valid;
        a.roi = roi;
        a.srcStep = a.dstStep = step;
        return call(a);
    });
    EXPECT_EQ(dst.pixels(), before);
    EXPECT_EQ(number, -7);

    A largest = valid;
    largest.maxLabel = std::numeric_limits<T>::max() - 1;
    EXPECT_EQ(call(largest), okpStatusOk);
}

TEST(LabelMarkers, ChecksInOrder) {
    const auto inPlace = [](auto f) {
        return [f](const auto& a) {
            return f(a.dst, a.dstStep, a.roi, a.minLabel, a.maxLabel, a.norm, a.number, a.buffer);
        };
    };
    expectOrder<uint8_t, uint8_t>(inPlace(okpiLabelMarkers_8u_C1IR), false);
    expectOrder<uint16_t, uint16_t>(inPlace(okpiLabelMarkers_16u_C1IR), false);
    expectOrder<uint8_t, int32_t>(
        [](const auto& a) {
            return okpiLabelMarkers_8u32s_C1R(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.minLabel,
                                              a.maxLabel, a.norm, a.number, a.buffer);
        },
        true);

    int32_t bytes = -1;
    for (SizeQuery* query : {okpiLabelMarkersGetBufferSize_8u_C1R, okpiLabelMarkersGetBufferSize_16u_C1R,
                             okpiLabelMarkersGetBufferSize_8u32s_C1R}) {
        EXPECT_EQ(query({0, 0}, nullptr), okpStatusNullPointer);
        EXPECT_EQ(query({0, 1}, &bytes), okpStatusBadSize);
        EXPECT_EQ(query({1, 0}, &bytes), okpStatusBadSize);
    }
    EXPECT_EQ(bytes, -1);
}

}  // namespace
}  // namespace okpcv::test
