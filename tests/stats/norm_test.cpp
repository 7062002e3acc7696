// Norms against their definitions.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>

#include "stats/stats_arguments.h"
#include "support/repeated_memory.h"

namespace okpcv::test {
namespace {

enum class Family { Norm, Diff, Rel };
enum class Kind { Inf, L1, L2 };

template <class T>
using Call = std::function<okpStatus(const StatsArguments<T>&, double*)>;

template <class T>
struct NormCase {
    const char* name;
    Family family;
    Kind kind;
    int channels;
    Call<T> call;
};

template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, double*)) {
    return [f](const StatsArguments<T>& v, double* norm) {
        return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, norm);
    };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t, double*)) {
    return [f](const StatsArguments<T>& v, double* norm) {
        return f(v.a, v.aStep, v.mask, v.maskStep, v.roi, v.coi, norm);
    };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const T*, int32_t, const uint8_t*, int32_t, RoiSize,
                            double*)) {
    return [f](const StatsArguments<T>& v, double* norm) {
        return f(v.a, v.aStep, v.b, v.bStep, v.mask, v.maskStep, v.roi, norm);
    };
}
template <class T>
Call<T> wrap(okpStatus (*f)(const T*, int32_t, const T*, int32_t, const uint8_t*, int32_t, RoiSize, int32_t,
                            double*)) {
    return [f](const StatsArguments<T>& v, double* norm) {
        return f(v.a, v.aStep, v.b, v.bStep, v.mask, v.maskStep, v.roi, v.coi, norm);
    };
}

template <class T>
std::vector<NormCase<T>> cases();

#define NORM_CASE(NAME, FAMILY, KIND, CHANNELS) \
    { #NAME, Family::FAMILY, Kind::KIND, CHANNELS, wrap(NAME) }

template <>
std::vector<NormCase<uint8_t>> cases() {
    return {
        NORM_CASE(okpiNorm_Inf_8u_C1MR, Norm, Inf, 1),     NORM_CASE(okpiNorm_Inf_8u_C3CMR, Norm, Inf, 3),
        NORM_CASE(okpiNorm_L1_8u_C1MR, Norm, L1, 1),       NORM_CASE(okpiNorm_L1_8u_C3CMR, Norm, L1, 3),
        NORM_CASE(okpiNorm_L2_8u_C1MR, Norm, L2, 1),       NORM_CASE(okpiNorm_L2_8u_C3CMR, Norm, L2, 3),
        NORM_CASE(okpiNormDiff_Inf_8u_C1MR, Diff, Inf, 1), NORM_CASE(okpiNormDiff_Inf_8u_C3CMR, Diff, Inf, 3),
        NORM_CASE(okpiNormDiff_L1_8u_C1MR, Diff, L1, 1),   NORM_CASE(okpiNormDiff_L1_8u_C3CMR, Diff, L1, 3),
        NORM_CASE(okpiNormDiff_L2_8u_C1MR, Diff, L2, 1),   NORM_CASE(okpiNormDiff_L2_8u_C3CMR, Diff, L2, 3),
        NORM_CASE(okpiNormRel_Inf_8u_C1MR, Rel, Inf, 1),   NORM_CASE(okpiNormRel_Inf_8u_C3CMR, Rel, Inf, 3),
        NORM_CASE(okpiNormRel_L1_8u_C1MR, Rel, L1, 1),     NORM_CASE(okpiNormRel_L1_8u_C3CMR, Rel, L1, 3),
        NORM_CASE(okpiNormRel_L2_8u_C1MR, Rel, L2, 1),     NORM_CASE(okpiNormRel_L2_8u_C3CMR, Rel, L2, 3),
    };
}
template <>
std::vector<NormCase<uint16_t>> cases() {
    return {
        NORM_CASE(okpiNorm_Inf_16u_C1MR, Norm, Inf, 1),
        NORM_CASE(okpiNorm_Inf_16u_C3CMR, Norm, Inf, 3),
        NORM_CASE(okpiNorm_L1_16u_C1MR, Norm, L1, 1),
        NORM_CASE(okpiNorm_L1_16u_C3CMR, Norm, L1, 3),
        NORM_CASE(okpiNorm_L2_16u_C1MR, Norm, L2, 1),
        NORM_CASE(okpiNorm_L2_16u_C3CMR, Norm, L2, 3),
        NORM_CASE(okpiNormDiff_Inf_16u_C1MR, Diff, Inf, 1),
        NORM_CASE(okpiNormDiff_Inf_16u_C3CMR, Diff, Inf, 3),
        NORM_CASE(okpiNormDiff_L1_16u_C1MR, Diff, L1, 1),
        NORM_CASE(okpiNormDiff_L1_16u_C3CMR, Diff, L1, 3),
        NORM_CASE(okpiNormDiff_L2_16u_C1MR, Diff, L2, 1),
        NORM_CASE(okpiNormDiff_L2_16u_C3CMR, Diff, L2, 3),
        NORM_CASE(okpiNormRel_Inf_16u_C1MR, Rel, Inf, 1),
        NORM_CASE(okpiNormRel_Inf_16u_C3CMR, Rel, Inf, 3),
        NORM_CASE(okpiNormRel_L1_16u_C1MR, Rel, L1, 1),
        NORM_CASE(okpiNormRel_L1_16u_C3CMR, Rel, L1, 3),
        NORM_CASE(okpiNormRel_L2_16u_C1MR, Rel, L2, 1),
        NORM_CASE(okpiNormRel_L2_16u_C3CMR, Rel, L2, 3),
    };
}
template <>
std::vector<NormCase<float>> cases() {
    return {
        NORM_CASE(okpiNorm_Inf_32f_C1MR, Norm, Inf, 1),
        NORM_CASE(okpiNorm_Inf_32f_C3CMR, Norm, Inf, 3),
        NORM_CASE(okpiNorm_L1_32f_C1MR, Norm, L1, 1),
        NORM_CASE(okpiNorm_L1_32f_C3CMR, Norm, L1, 3),
        NORM_CASE(okpiNorm_L2_32f_C1MR, Norm, L2, 1),
        NORM_CASE(okpiNorm_L2_32f_C3CMR, Norm, L2, 3),
        NORM_CASE(okpiNormDiff_Inf_32f_C1MR, Diff, Inf, 1),
        NORM_CASE(okpiNormDiff_Inf_32f_C3CMR, Diff, Inf, 3),
        NORM_CASE(okpiNormDiff_L1_32f_C1MR, Diff, L1, 1),
        NORM_CASE(okpiNormDiff_L1_32f_C3CMR, Diff, L1, 3),
        NORM_CASE(okpiNormDiff_L2_32f_C1MR, Diff, L2, 1),
        NORM_CASE(okpiNormDiff_L2_32f_C3CMR, Diff, L2, 3),
        NORM_CASE(okpiNormRel_Inf_32f_C1MR, Rel, Inf, 1),
        NORM_CASE(okpiNormRel_Inf_32f_C3CMR, Rel, Inf, 3),
        NORM_CASE(okpiNormRel_L1_32f_C1MR, Rel, L1, 1),
        NORM_CASE(okpiNormRel_L1_32f_C3CMR, Rel, L1, 3),
        NORM_CASE(okpiNormRel_L2_32f_C1MR, Rel, L2, 1),
        NORM_CASE(okpiNormRel_L2_32f_C3CMR, Rel, L2, 3),
    };
}

// Of integers exactly, of floats in the single precision of the definition where that is exact.
template <class T>
okpStatus definition(const NormCase<T>& c, const StatsImages<T>& images, int32_t coi, double& norm) {
    using Exact = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
    Exact numerator = 0;
    Exact divisor = 0;
    const auto gather = [&](Exact& total, Exact v) {
        if (c.kind == Kind::Inf) total = std::max(total, v);
        if (c.kind == Kind::L1) total += v;
        if (c.kind == Kind::L2) total += v * v;
    };
    images.forSelected(coi, [&](Exact a, Exact b, int, int) {
        gather(numerator, std::abs(c.family == Family::Norm ? a : a - b));
        gather(divisor, std::abs(b));
    });
    okpStatus status = okpStatusOk;
    double result = static_cast<double>(numerator);
    if (c.family == Family::Rel) {
        if (divisor == 0) {
            norm = numerator == 0 ? std::bit_cast<double>(0xFFF8000000000000) : INFINITY;
            return okpStatusDivByZeroWarning;
        }
        result /= static_cast<double>(divisor);
    }
    norm = c.kind == Kind::L2 ? std::sqrt(result) : result;
    return status;
}

template <class T>
void expectDefinition() {
    for (const NormCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        forVariedImages<T>(c.channels, exactValue<T>, [&](const StatsImages<T>& images, int32_t coi) {
            double expected = 0;
            const okpStatus status = definition(c, images, coi, expected);
            double actual = -1;
            EXPECT_EQ(c.call(images.arguments(coi), &actual), status);
            EXPECT_EQ(std::bit_cast<uint64_t>(actual), std::bit_cast<uint64_t>(expected))
                << images.a.width() << ": " << actual << " instead of " << expected;
        });
    }
}

TEST(Norm, EqualsItsDefinition) {
    expectDefinition<uint8_t>();
    expectDefinition<uint16_t>();
    expectDefinition<float>();
}

TEST(Norm, OfFourByFourOf255Is1020) {
    const std::vector<uint8_t> image(16, 255);
    double norm = 0;
    EXPECT_EQ(okpiNorm_L2_8u_C1MR(image.data(), 4, image.data(), 4, {4, 4}, &norm), okpStatusOk);
    EXPECT_EQ(norm, 1020.0);
}

// Of one float row, or of its difference to a row of ones.
double normOf(const Call<float>& call, const std::vector<float>& a, const std::vector<uint8_t>& mask) {
    const std::vector<float> b(a.size(), 1.0F);
    const int width = static_cast<int>(a.size());
    double norm = -1;
    EXPECT_EQ(call({a.data(), 4 * width, b.data(), 4 * width, mask.data(), width, {width, 1}, 1}, &norm),
              okpStatusOk);
    return norm;
}

TEST(Norm, IgnoresWhatIsNotSelected) {
    std::vector<float> a(23, 2.0F);
    std::vector<uint8_t> mask(23, 1);
    for (size_t i = 0; i < a.size(); i += 3) {
        a[i] = i % 2 == 0 ? NAN : -INFINITY;
        mask[i] = 0;
    }
    EXPECT_EQ(normOf(wrap(okpiNorm_Inf_32f_C1MR), a, mask), 2.0);
    EXPECT_EQ(normOf(wrap(okpiNorm_L1_32f_C1MR), a, mask), 30.0);
    EXPECT_EQ(normOf(wrap(okpiNorm_L2_32f_C1MR), a, mask), std::sqrt(60.0));
    EXPECT_EQ(normOf(wrap(okpiNormDiff_L1_32f_C1MR), a, mask), 15.0);
    EXPECT_EQ(normOf(wrap(okpiNormRel_Inf_32f_C1MR), a, mask), 1.0);
}

TEST(Norm, TakesNoNanForTheLargestAndSpreadsItInSums) {
    for (size_t place = 0; place < 37; ++place) {
        std::vector<float> a(37, -3.0F);
        a[place] = NAN;
        const std::vector<uint8_t> mask(37, 255);
        EXPECT_EQ(normOf(wrap(okpiNorm_Inf_32f_C1MR), a, mask), 3.0) << place;
        EXPECT_TRUE(std::isnan(normOf(wrap(okpiNorm_L1_32f_C1MR), a, mask))) << place;
        EXPECT_TRUE(std::isnan(normOf(wrap(okpiNorm_L2_32f_C1MR), a, mask))) << place;
        a[place] = -INFINITY;
        EXPECT_EQ(normOf(wrap(okpiNorm_Inf_32f_C1MR), a, mask), INFINITY);
        EXPECT_EQ(normOf(wrap(okpiNorm_L2_32f_C1MR), a, mask), INFINITY);
    }
}

TEST(NormRel, WarnsOfAZeroDivisor) {
    const std::vector<uint8_t> mask(5, 7);
    const std::vector<float> zeros{0.0F, -0.0F, 0.0F, 0.0F, 0.0F};
    const auto relative = [&](auto f, std::vector<float> first, const std::vector<uint8_t>& m) {
        double norm = 0;
        EXPECT_EQ(f(first.data(), 20, zeros.data(), 20, m.data(), 5, {5, 1}, &norm),
                  okpStatusDivByZeroWarning);
        return std::bit_cast<uint64_t>(norm);
    };
    const uint64_t negativeNan = 0xFFF8000000000000;
    const auto infinity = std::bit_cast<uint64_t>(double{INFINITY});
    const auto negativeInfinity = std::bit_cast<uint64_t>(-double{INFINITY});
    for (const auto f : {okpiNormRel_Inf_32f_C1MR, okpiNormRel_L1_32f_C1MR, okpiNormRel_L2_32f_C1MR}) {
        EXPECT_EQ(relative(f, zeros, mask), negativeNan);
        EXPECT_EQ(relative(f, {9, 9, 9, 9, 9}, {0, 0, 0, 0, 0}), negativeNan);
        EXPECT_EQ(relative(f, {0, 0, 0, 1, 0}, mask), infinity);
        EXPECT_EQ(relative(f, {0, 0, -INFINITY, 0, 0}, mask), infinity);
    }
    EXPECT_EQ(relative(okpiNormRel_L1_32f_C1MR, {NAN, 0, 0, 0, 0}, mask), negativeInfinity);
    EXPECT_EQ(relative(okpiNormRel_L2_32f_C1MR, {NAN, 0, 0, 0, 0}, mask), negativeInfinity);
    // The largest difference takes no notice of NaN.
    EXPECT_EQ(relative(okpiNormRel_Inf_32f_C1MR, {NAN, 0, 0, 0, 0}, mask), negativeNan);
}

TEST(Norm, IsExactOverLargeRegions) {
    constexpr int32_t kSide = 20000;
    constexpr double kPixels = 1.0 * kSide * kSide;
    const RepeatedMemory image(int64_t{2} * kSide * kSide, 255);
    const RoiSize roi{kSide, kSide};
    const uint8_t* const bytes = image.data();
    const auto* const words = image.as<uint16_t>();
    double norm = 0;
    ASSERT_EQ(okpiNorm_L1_8u_C1MR(bytes, kSide, bytes, kSide, roi, &norm), okpStatusOk);
    EXPECT_EQ(norm, 255 * kPixels);
    ASSERT_EQ(okpiNorm_L2_8u_C1MR(bytes, kSide, bytes, kSide, roi, &norm), okpStatusOk);
    EXPECT_EQ(norm, 255.0 * kSide);
    ASSERT_EQ(okpiNorm_L1_16u_C1MR(words, 2 * kSide, bytes, kSide, roi, &norm), okpStatusOk);
    EXPECT_EQ(norm, 65535 * kPixels);
    ASSERT_EQ(okpiNorm_L2_16u_C1MR(words, 2 * kSide, bytes, kSide, roi, &norm), okpStatusOk);
    EXPECT_EQ(norm, 65535.0 * kSide);
}

// The sum of squares exceeds 64 bits, and the rows lie beyond 2^32 bytes.
TEST(Norm, IsExactBeyond64Bits) {
    constexpr int32_t kWidth = 80000;
    constexpr int32_t kHeight = 64800;
    const RepeatedMemory image(int64_t{2} * kWidth * kHeight, 255);
    double norm = 0;
    ASSERT_EQ(okpiNorm_L2_16u_C1MR(image.as<uint16_t>(), 2 * kWidth, image.data(), kWidth, {kWidth, kHeight},
                                   &norm),
              okpStatusOk);
    EXPECT_EQ(norm, 65535.0 * 72000);  // 72000^2 = 80000 * 64800
}

TEST(Norm, KeepsTheErrorOfFloatSumsSmall) {
    constexpr int kWidth = 1999;
    constexpr int kHeight = 1500;
    Random random(5);
    std::vector<float> image(static_cast<size_t>(kWidth) * kHeight);
    double sum = 0;
    double squares = 0;
    for (float& v : image) {
        v = random.real(0.0F, 1.0F);
        sum += v;
        squares += double{v} * v;
    }
    const std::vector<uint8_t> mask(image.size(), 1);
    double norm = 0;
    const double bound = (71 + std::log2(2 * kHeight)) * 0x1p-24;
    ASSERT_EQ(okpiNorm_L1_32f_C1MR(image.data(), 4 * kWidth, mask.data(), kWidth, {kWidth, kHeight}, &norm),
              okpStatusOk);
    EXPECT_NEAR(norm / sum, 1.0, bound);
    EXPECT_EQ(norm, static_cast<float>(norm)) << "accumulated in single precision";
    ASSERT_EQ(okpiNorm_L2_32f_C1MR(image.data(), 4 * kWidth, mask.data(), kWidth, {kWidth, kHeight}, &norm),
              okpStatusOk);
    EXPECT_NEAR(norm * norm / squares, 1.0, bound);
}

// Sixteen partial sums, pixel x in that of x mod 16, and these added halves first: the order of one block,
// which no register width may change.
TEST(Norm, AddsFloatsInOneOrder) {
    Random random(6);
    for (size_t width = 1; width <= 200; ++width) {
        std::vector<float> row(width);
        std::array<float, 16> sums{};
        for (size_t x = 0; x < width; ++x) {
            row[x] = random.real(0.0F, 1.0F);
            sums[x % 16] += row[x];
        }
        for (size_t half = 8; half > 0; half /= 2) {
            for (size_t i = 0; i < half; ++i) sums[i] += sums[i + half];
        }
        EXPECT_EQ(normOf(wrap(okpiNorm_L1_32f_C1MR), row, std::vector<uint8_t>(width, 1)), sums[0]) << width;
    }
}

TEST(Norm, GivesTheSameBitsAtEveryAlignmentAndStep) {
    for (const NormCase<float>& c : cases<float>()) {
        SCOPED_TRACE(c.name);
        std::vector<double> norms;
        for (const int padding : {0, 12, 36, 180}) {
            for (const auto at : {GuardedMemory::At::End, GuardedMemory::At::Start}) {
                Random random(77);
                StatsImages<float> images(1083, 3, c.channels, padding, at);
                images.a.fill([&](int, int, int) { return random.value<float>(); });
                images.b.fill([&](int, int, int) { return random.value<float>(); });
                images.mask.fill([&](int, int, int) { return random.maskByte(); });
                double norm = 0;
                EXPECT_EQ(c.call(images.arguments(), &norm), okpStatusOk);
                norms.push_back(norm);
            }
        }
        EXPECT_EQ(norms, std::vector<double>(norms.size(), norms[0]));
    }
}

template <class T>
void expectOrder() {
    for (const NormCase<T>& c : cases<T>()) {
        SCOPED_TRACE(c.name);
        const bool second = c.family != Family::Norm;
        StatsImages<T> images(8, 2, c.channels, 12);
        images.mask.fill([](int, int, int) { return 1; });
        double norm = -1;
        expectStatusOrder<StatsArguments<T>>(
            images.arguments(), [&](const StatsArguments<T>& v) { return c.call(v, &norm); },
            statsFaults<T>(8, c.channels, second, true,
                           second ? Order::AllShortThenMultiples : Order::SourceThenMask));
        EXPECT_EQ(norm, -1);
        StatsArguments<T> noWidth = images.arguments();
        noWidth.roi.width = 0;
        EXPECT_EQ(c.call(noWidth, nullptr), okpStatusNullPointer);
    }
}

TEST(Norm, ChecksInOrder) {
    expectOrder<uint8_t>();
    expectOrder<uint16_t>();
    expectOrder<float>();
}

}  // namespace
}  // namespace okpcv::test
