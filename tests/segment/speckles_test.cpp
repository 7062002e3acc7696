// Speckles against a growth of every region, in a buffer of exactly the queried size.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "segment/scratch.h"
#include "support/compare.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {
namespace {

template <class T>
struct Arguments {
    T* image;
    int32_t step;
    RoiSize roi;
    T speckle;
    int32_t maxSize;
    T maxDifference;
    NormKind norm;
    uint8_t* buffer;
};

okpStatus mark(const Arguments<uint8_t>& a) {
    return okpiMarkSpeckles_8u_C1IR(a.image, a.step, a.roi, a.speckle, a.maxSize, a.maxDifference, a.norm,
                                    a.buffer);
}
okpStatus mark(const Arguments<uint16_t>& a) {
    return okpiMarkSpeckles_16u_C1IR(a.image, a.step, a.roi, a.speckle, a.maxSize, a.maxDifference, a.norm,
                                     a.buffer);
}
okpStatus mark(const Arguments<int16_t>& a) {
    return okpiMarkSpeckles_16s_C1IR(a.image, a.step, a.roi, a.speckle, a.maxSize, a.maxDifference, a.norm,
                                     a.buffer);
}
okpStatus mark(const Arguments<float>& a) {
    return okpiMarkSpeckles_32f_C1IR(a.image, a.step, a.roi, a.speckle, a.maxSize, a.maxDifference, a.norm,
                                     a.buffer);
}

template <class T>
constexpr DataTypeCode kCode = std::is_same_v<T, uint8_t>    ? DataType8u
                               : std::is_same_v<T, uint16_t> ? DataType16u
                               : std::is_same_v<T, int16_t>  ? DataType16s
                                                             : DataType32f;

// The x87's 64 bits hold the differences of the floats in these tests exactly.
template <class T>
bool similar(T a, T b, T limit) {
    if constexpr (std::is_same_v<T, float>) {
        const long double d = static_cast<long double>(a) - b;
        return (d < 0 ? -d : d) <= limit;
    } else {
        return std::abs(int{a} - b) <= limit;
    }
}

template <class T>
std::vector<T> marked(std::vector<T> pixels, RoiSize roi, T speckle, int32_t maxSize, T maxDifference) {
    const int w = roi.width, h = roi.height;
    std::vector<int> region(pixels.size(), 0);
    std::vector<bool> isSpeckle{false};
    for (int first = 0; first < w * h; ++first) {
        if (pixels[first] == speckle) continue;
        if (region[first] == 0) {
            const int number = static_cast<int>(isSpeckle.size());
            std::vector<int> stack{first};
            region[first] = number;
            int count = 1;
            while (!stack.empty()) {
                const int p = stack.back(), x = p % w, y = p / w;
                stack.pop_back();
                const auto add = [&](bool inside, int n) {
                    if (!inside || region[n] != 0 || pixels[n] == speckle ||
                        !similar(pixels[n], pixels[p], maxDifference)) {
                        return;
                    }
                    region[n] = number;
                    ++count;
                    stack.push_back(n);
                };
                add(x + 1 < w, p + 1);
                add(x > 0, p - 1);
                add(y > 0, p - w);
                add(y + 1 < h, p + w);
            }
            isSpeckle.push_back(count <= maxSize);
        }
        if (isSpeckle[region[first]]) pixels[first] = speckle;
    }
    return pixels;
}

template <class T>
void expectMarked(RoiSize roi, const std::vector<T>& pixels, T speckle, int32_t maxSize, T maxDifference,
                  size_t offset) {
    GuardedImage<T> image(
        roi.width, roi.height,
        {.padding = 8, .at = offset % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start});
    image.setPixels(pixels);
    int32_t bytes = 0;
    ASSERT_EQ(okpiMarkSpecklesGetBufferSize(roi, kCode<T>, 1, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, roi.width * roi.height * 13 + 64);
    Scratch scratch(static_cast<size_t>(bytes), offset);
    ASSERT_EQ(mark(Arguments<T>{image.data(), image.step(), roi, speckle, maxSize, maxDifference, NormInf,
                                scratch.data()}),
              okpStatusOk);
    EXPECT_TRUE(sameBits(image.pixels(), marked(pixels, roi, speckle, maxSize, maxDifference)));
    EXPECT_TRUE(image.paddingIntact());
    EXPECT_TRUE(scratch.intact());
}

// A special value; of the finite floats only such as similar() can subtract.
template <class T>
T special(Random& random) {
    const T v = random.special<T>();
    if constexpr (std::is_same_v<T, float>) {
        if (std::isfinite(v) && v != 0 && (std::abs(v) < 1e-3F || std::abs(v) > 1e6F)) return 2.5F;
    }
    return v;
}

template <class T>
struct SpecklesTest : testing::Test {};
using Types = testing::Types<uint8_t, uint16_t, int16_t, float>;
TYPED_TEST_SUITE(SpecklesTest, Types);

TYPED_TEST(SpecklesTest, MarksSmallRegions) {
    using T = TypeParam;
    Random random(sizeof(T));
    for (int round = 0; round < 1500; ++round) {
        const RoiSize roi{random.integer(1, round % 2 == 0 ? 9 : 150), random.integer(1, 12)};
        const int levels = random.integer(1, 12);
        const double change = random.real(0.0F, 1.0F), specials = random.chance(0.3) ? 0.2 : 0;
        std::vector<T> pixels(static_cast<size_t>(roi.width) * roi.height);
        for (size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] =
                i == 0 || random.chance(change) ? static_cast<T>(random.integer(0, levels)) : pixels[i - 1];
            if (random.chance(specials)) pixels[i] = special<T>(random);
        }
        const T speckle = random.chance(0.3) ? special<T>(random) : static_cast<T>(random.integer(0, levels));
        T difference = static_cast<T>(random.integer(0, 4));
        if (random.chance(0.2)) difference = special<T>(random);
        const int32_t maxSize = random.chance(0.1) ? INT32_MAX : random.integer(-1, 30);
        expectMarked(roi, pixels, speckle, maxSize, difference, static_cast<size_t>(round % 9));
        if (testing::Test::HasFailure()) FAIL() << round << ": " << roi.width << 'x' << roi.height;
    }
}

// Every pixel a region of its own, and the longest chains of unions, at widths around a word's.
TYPED_TEST(SpecklesTest, StaysInItsBuffer) {
    using T = TypeParam;
    for (const int width : {1, 2, 3, 63, 64, 65, 128, 200}) {
        for (const int height : {1, 2, 40}) {
            std::vector<T> apart(static_cast<size_t>(width * height)), meander = apart;
            for (int i = 0; i < width * height; ++i) {
                const int x = i % width, y = i / width;
                apart[i] = static_cast<T>((x + 2 * y) % 5 * 20);
                meander[i] = static_cast<T>(y % 2 == 0 || x == (y % 4 == 1 ? width - 1 : 0) ? 50 : x % 3);
            }
            for (const int32_t maxSize : {0, 1, 100000}) {
                expectMarked<T>({width, height}, apart, T(120), maxSize, T(1), 1);
                expectMarked<T>({width, height}, meander, T(120), maxSize, T(1), 5);
            }
        }
    }
}

TEST(Speckles, ComparesExactDifferences) {
    // 65535 apart; any limit of the type is less.
    expectMarked<int16_t>({2, 1}, {-32768, 32767}, 0, 1, 32767, 0);
    expectMarked<int16_t>({2, 1}, {-16384, 16383}, 0, 1, 32767, 0);
    expectMarked<int16_t>({2, 1}, {5, 5}, 0, 1, -1, 0);
    // Differences that single precision rounds to the limit, from above and from below, and one that it
    // holds.
    const float tiny = 1e-10F;
    for (const float b : {-tiny, tiny, 0.0F}) {
        expectMarked<float>({2, 1}, {1.0F, b}, -5, 1, 1.0F, 0);
        expectMarked<float>({1, 2}, {b, 1.0F}, -5, 1, 1.0F, 0);
        expectMarked<float>({2, 1}, {-1.0F, b}, -5, 1, 1.0F, 0);
    }
    const float infinity = std::numeric_limits<float>::infinity();
    expectMarked<float>({3, 1}, {infinity, 1, -3e38F}, -5, 1, infinity, 0);
    expectMarked<float>({2, 1}, {infinity, infinity}, -5, 1, infinity, 0);
}

TEST(Speckles, KeepsPixelsOfTheSpeckleValue) {
    // -0 equals the value and is not rewritten.
    expectMarked<float>({3, 1}, {-0.0F, 4.0F, -0.0F}, 0.0F, INT32_MAX, 1.0F, 0);
}

TYPED_TEST(SpecklesTest, ChecksInOrder) {
    using T = TypeParam;
    using A = Arguments<T>;
    GuardedImage<T> image(8, 3, {.padding = 16});
    image.fill([](int x, int, int) { return x; });
    const std::vector<T> before = image.pixels();
    Scratch scratch(8 * 3 * 13 + 64, 0);
    const A valid{image.data(), image.step(), image.roi(), T(9), 50, T(0), NormInf, scratch.data()};
    const int rowBytes = image.step() - 16;
    std::vector<Fault<A>> faults{{"null image", okpStatusNullPointer, [](A& a) { a.image = nullptr; }},
                                 {"null buffer", okpStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
                                 {"no width", okpStatusBadSize, [](A& a) { a.roi.width = 0; }},
                                 {"negative height", okpStatusBadSize, [](A& a) { a.roi.height = -1; }},
                                 {"short step", okpStatusBadStep, [=](A& a) { a.step = rowBytes - 1; }},
                                 {"norm L2", okpStatusBadNorm, [](A& a) { a.norm = NormL2; }},
                                 {"norm L1", okpStatusBadNorm, [](A& a) { a.norm = NormL1; }},
                                 {"norm 0", okpStatusBadNorm, [](A& a) { a.norm = 0; }}};
    if (sizeof(T) > 1) {
        faults.insert(faults.begin() + 5,
                      {"odd step", okpStatusStepNotMultiple, [=](A& a) { a.step = rowBytes + 1; }});
    }
    const std::function<okpStatus(const A&)> call = [](const A& a) { return mark(a); };
    expectStatusOrder<A>(valid, call, faults);
    expectRefusesAbsurdSizes([&](RoiSize roi, int32_t step) {
        A a = valid;
        a.roi = roi;
        a.step = step;
        return call(a);
    });
    EXPECT_EQ(image.pixels(), before);
}

TEST(Speckles, SizesItsBuffer) {
    int32_t bytes = -1;
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({0, 0}, 3, 3, nullptr), okpStatusNullPointer);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({0, 1}, 3, 3, &bytes), okpStatusBadSize);
    for (const DataTypeCode code : {0, 3, 19, -1})
        EXPECT_EQ(okpiMarkSpecklesGetBufferSize({1, 1}, code, 3, &bytes), okpStatusBadDataType);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({1, 1}, DataType8u, 3, &bytes), okpStatusBadChannelCount);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({40000, 40000}, DataType8u, 1, &bytes), okpStatusSizeTooLarge);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({INT32_MAX, INT32_MAX}, DataType8u, 1, &bytes),
              okpStatusSizeTooLarge);
    EXPECT_EQ(bytes, -1);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({165191044, 1}, DataType16s, 1, &bytes), okpStatusOk);
    EXPECT_EQ(bytes, 2147483636);
    EXPECT_EQ(okpiMarkSpecklesGetBufferSize({165191045, 1}, DataType16s, 1, &bytes), okpStatusSizeTooLarge);
}

}  // namespace
}  // namespace okpcv::test
