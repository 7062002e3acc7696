// The C++ face: every function gives what its C function gives, objects size and own their areas, and what
// cannot be a valid call is refused before it is made.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "okpcv.hpp"
#include "support/random.h"

namespace {

using namespace okpcv;

constexpr RoiSize kSize{37, 23};
constexpr size_t kPixels = size_t{37} * 23;

template <class T>
std::vector<T> randomPixels(uint32_t seed, int channels = 1) {
    test::Random random(seed);
    std::vector<T> pixels(kPixels * static_cast<size_t>(channels));
    for (T& pixel : pixels) pixel = random.value<T>();
    return pixels;
}

TEST(Status, TellsSuccessWarningAndError) {
    EXPECT_TRUE(Status(okpStatusOk) && Status(okpStatusDivByZeroWarning));
    EXPECT_TRUE(Status(okpStatusNoOperation).warning());
    const Status error(okpStatusBadStep);
    EXPECT_FALSE(error || error.warning());
    EXPECT_NO_THROW(Status(okpStatusNoOperation).orThrow());
    try {
        error.orThrow();
        FAIL();
    } catch (const Error& e) {
        EXPECT_EQ(e.status(), okpStatusBadStep);
    }
}

TEST(Result, HoldsAValueOrAnError) {
    const Result<std::vector<int>> value(std::vector<int>{1, 2, 3}), error = Status(okpStatusBadSize);
    EXPECT_EQ(value->size(), 3u);
    EXPECT_EQ(value.orThrow()[2], 3);
    EXPECT_FALSE(error);
    EXPECT_EQ(error.status(), okpStatusBadSize);
    EXPECT_THROW(error.orThrow(), Error);
    EXPECT_EQ(*Result<std::unique_ptr<int>>(std::make_unique<int>(7)).orThrow(), 7);
}

TEST(ImageView, DescribesTheBufferItIsMadeFrom) {
    std::vector<uint16_t> pixels(4 * 3 * 3);
    ImageView<uint16_t, 3> view(pixels, {4, 3});
    EXPECT_EQ(view.step(), 24);
    EXPECT_EQ(view.data(), pixels.data());
    EXPECT_EQ(view.row(2).data(), pixels.data() + 24);
    EXPECT_EQ(view.row(0).size(), 12u);

    const ImageView<const uint16_t, 3> readOnly = view.sub({1, 1, 2, 2});
    EXPECT_EQ(readOnly.data(), pixels.data() + 15);
    EXPECT_EQ(readOnly.size().width, 2);
    EXPECT_EQ(readOnly.step(), 24);

    static_assert(!std::is_constructible_v<ImageView<uint8_t>, const std::vector<uint8_t>&, RoiSize>);
    static_assert(!std::is_convertible_v<ImageView<const uint8_t>, ImageView<uint8_t>>);
    static_assert(!std::is_constructible_v<ImageView<uint8_t>, std::vector<int8_t>&, RoiSize>);
}

TEST(ImageView, OfTooSmallABufferIsEmpty) {
    std::vector<uint8_t> pixels(100);
    const auto width = [&](RoiSize size, std::optional<int32_t> step = {}) {
        return ImageView<uint8_t>(pixels, size, step).size().width;
    };
    EXPECT_EQ(width({10, 10}), 10);
    EXPECT_EQ(width({10, 9}, 11), 10);  // the last row needs no padding
    EXPECT_EQ(width({10, 11}), 0);
    EXPECT_EQ(width({10, 10}, 11), 0);
    EXPECT_EQ(width({10, 2}, 9), 0);
    EXPECT_EQ(width({-1, 2}), 0);
    EXPECT_EQ(width({INT32_MAX, INT32_MAX}), 0);

    const ImageView<uint8_t> view(pixels, {10, 10});
    for (const PixelRect part : {PixelRect{-1, 0, 2, 2}, PixelRect{0, 9, 1, 2}, PixelRect{3, 3, INT32_MAX, 1},
                                 PixelRect{INT32_MAX, 0, 1, 1}, PixelRect{0, 0, 0, 1}})
        EXPECT_EQ(absDiff(view.sub(part), view.sub(part), view.sub(part)), okpStatusBadSize);
}

TEST(Face, ArithmeticIsThatOfTheCInterface) {
    const auto a = randomPixels<uint8_t>(1, 3), b = randomPixels<uint8_t>(2, 3);
    std::vector<uint8_t> ours(a.size()), theirs(a.size());
    absDiff(ImageView<const uint8_t, 3>(a, kSize), ImageView<const uint8_t, 3>(b, kSize),
            ImageView<uint8_t, 3>(ours, kSize))
        .orThrow();
    okpiAbsDiff_8u_C3R(a.data(), 111, b.data(), 111, theirs.data(), 111, kSize);
    EXPECT_EQ(ours, theirs);

    const auto wide = randomPixels<uint16_t>(3), other = randomPixels<uint16_t>(4);
    const auto mask = randomPixels<uint8_t>(5);
    const auto floats = randomPixels<float>(6);
    std::vector<float> sum(kPixels), expected(kPixels);
    const ImageView<const uint16_t> src(wide, kSize), second(other, kSize);
    const ImageView<const uint8_t> selected(mask, kSize);
    const ImageView<float> acc(sum, kSize);
    add(src, acc).orThrow();
    add(src, selected, acc).orThrow();
    addSquare(src, acc).orThrow();
    addProduct(src, second, acc).orThrow();
    addWeighted(src, acc, 0.25F).orThrow();
    addSquare(src, selected, acc).orThrow();
    addProduct(src, second, selected, acc).orThrow();
    addWeighted(src, selected, acc, 0.25F).orThrow();
    add(ImageView<const float>(floats, kSize), selected, acc).orThrow();
    okpiAdd_16u32f_C1IR(wide.data(), 74, expected.data(), 148, kSize);
    okpiAdd_16u32f_C1IMR(wide.data(), 74, mask.data(), 37, expected.data(), 148, kSize);
    okpiAddSquare_16u32f_C1IR(wide.data(), 74, expected.data(), 148, kSize);
    okpiAddProduct_16u32f_C1IR(wide.data(), 74, other.data(), 74, expected.data(), 148, kSize);
    okpiAddWeighted_16u32f_C1IR(wide.data(), 74, expected.data(), 148, kSize, 0.25F);
    okpiAddSquare_16u32f_C1IMR(wide.data(), 74, mask.data(), 37, expected.data(), 148, kSize);
    okpiAddProduct_16u32f_C1IMR(wide.data(), 74, other.data(), 74, mask.data(), 37, expected.data(), 148,
                                kSize);
    okpiAddWeighted_16u32f_C1IMR(wide.data(), 74, mask.data(), 37, expected.data(), 148, kSize, 0.25F);
    okpiAdd_32f_C1IMR(floats.data(), 148, mask.data(), 37, expected.data(), 148, kSize);
    EXPECT_EQ(sum, expected);
}

TEST(Face, StatisticsAreThoseOfTheCInterface) {
    const auto a = randomPixels<float>(1), b = randomPixels<float>(2);
    std::vector<uint8_t> mask = randomPixels<uint8_t>(3);
    const ImageView<const float> first(a, kSize), second(b, kSize);
    const ImageView<const uint8_t> selected(mask, kSize);
    double value = 0, deviation = 0;

    okpiNorm_L1_32f_C1MR(a.data(), 148, mask.data(), 37, kSize, &value);
    EXPECT_EQ(*norm<NormL1>(first, selected), value);
    okpiNormDiff_L2_32f_C1MR(a.data(), 148, b.data(), 148, mask.data(), 37, kSize, &value);
    EXPECT_EQ(*normDiff<NormL2>(first, second, selected), value);
    okpiNormRel_Inf_32f_C1MR(a.data(), 148, b.data(), 148, mask.data(), 37, kSize, &value);
    EXPECT_EQ(*normRel<NormInf>(first, second, selected), value);
    okpiMean_32f_C1MR(a.data(), 148, mask.data(), 37, kSize, &value);
    EXPECT_EQ(*mean(first, selected), value);
    okpiMean_StdDev_32f_C1R(a.data(), 148, kSize, &value, &deviation);
    EXPECT_EQ(meanStdDev(first)->stdDev, deviation);
    okpiMean_StdDev_32f_C1MR(a.data(), 148, mask.data(), 37, kSize, &value, &deviation);
    EXPECT_EQ(meanStdDev(first, selected)->mean, value);

    float low = 0, high = 0;
    PixelPoint lowAt{}, highAt{};
    okpiMinMaxIndx_32f_C1R(a.data(), 148, kSize, &low, &high, &lowAt, &highAt);
    const MinMax found = minMax(first).orThrow();
    EXPECT_EQ(std::pair(found.min, found.max), std::pair(low, high));
    EXPECT_EQ(std::pair(found.maxAt.x, found.maxAt.y), std::pair(highAt.x, highAt.y));

    // Warnings come with the value.
    std::fill(mask.begin(), mask.end(), uint8_t{0});
    const Result<double> relative = normRel<NormL2>(first, second, selected);
    EXPECT_EQ(relative.status(), okpStatusDivByZeroWarning);
    EXPECT_TRUE(std::isnan(relative.orThrow()));
}

TEST(Face, RefusesImagesOfDifferentSizes) {
    std::vector<uint8_t> pixels(kPixels);
    const ImageView<uint8_t> whole(pixels, kSize), part = whole.sub({0, 0, 36, 23});
    EXPECT_EQ(absDiff(whole, part, whole), okpStatusBadSize);
    EXPECT_EQ(absDiff(whole, 3, part), okpStatusBadSize);
    EXPECT_EQ(mean(whole, part).status(), okpStatusBadSize);
    std::vector<int32_t> sums(kPixels);
    EXPECT_EQ(integral(whole, ImageView<int32_t>(sums, kSize)), okpStatusBadSize);
    EXPECT_TRUE(integral(whole.sub({0, 0, 36, 22}), ImageView<int32_t>(sums, kSize)));
    EXPECT_EQ(copySubpix(whole, whole, 0.5F, 0.5F), okpStatusBadSize);
}

TEST(SeparableFilter, FiltersAsTheCInterfaceAndSharesItsSpec) {
    const auto src = randomPixels<float>(1, 3);
    const std::array<float, 5> row{0.1F, 0.2F, 0.4F, 0.2F, 0.1F};
    const std::array<float, 3> column{-1, 0, 1};
    const std::array<float, 3> border{1, 2, 3};
    const RoiSize kernel{5, 3};

    int32_t specBytes = 0, bufferBytes = 0;
    okpiFilterSeparableGetSpecSize(kernel, DataType32f, 3, &specBytes);
    okpiFilterSeparableGetBufferSize(kSize, kernel, DataType32f, DataType32f, 3, &bufferBytes);
    std::vector<char> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    okpiFilterSeparableInit_32f(row.data(), column.data(), kernel, DataType32f, 3, spec.data());
    std::vector<float> expected(src.size());
    ASSERT_EQ(okpiFilterSeparable_32f_C3R(src.data(), 444, expected.data(), 444, kSize, BorderConstant,
                                          border.data(), spec.data(), buffer.data()),
              okpStatusOk);

    auto made = SeparableFilter<float, float, 3>::create(kSize, row, column);
    ASSERT_TRUE(made);
    auto filter = std::move(made).orThrow();  // moving leaves the spec in its place
    const ImageView<const float, 3> source(src, kSize);
    std::vector<float> ours(src.size());
    filter(source, ImageView<float, 3>(ours, kSize), BorderConstant, border).orThrow();
    EXPECT_EQ(ours, expected);

    std::array<std::vector<float>, 3> results;
    std::vector<std::thread> threads;
    for (auto& result : results) {
        result.resize(src.size());
        threads.emplace_back([&] {
            const Buffer own = filter.makeBuffer();
            const ImageView<float, 3> dst(result, kSize);
            EXPECT_TRUE(std::as_const(filter)(source, dst, BorderConstant, border, own));
        });
    }
    for (auto& thread : threads) thread.join();
    for (const auto& result : results) EXPECT_EQ(result, expected);
}

TEST(SeparableFilter, RefusesWhatItIsNotMadeFor) {
    const std::array<int16_t, 3> kernel{1, 2, 1};
    EXPECT_EQ((SeparableFilter<uint8_t>::create({0, 5}, kernel, kernel, 4).status()), okpStatusBadSize);
    EXPECT_EQ((SeparableFilter<uint8_t>::create(kSize, kernel, kernel, 0).status()), okpStatusZeroDivisor);

    auto filter = SeparableFilter<uint8_t, int16_t>::create({36, 23}, kernel, kernel, 4).orThrow();
    const auto src = randomPixels<uint8_t>(1);
    std::vector<int16_t> dst(kPixels);
    const ImageView<const uint8_t> source(src, kSize);
    const ImageView<int16_t> result(dst, kSize);
    EXPECT_EQ(filter(source, result), okpStatusBadSize);
    EXPECT_TRUE(filter(source.sub({1, 0, 36, 23}), result.sub({0, 0, 36, 23})));
}

TEST(GaussianFilter, FiltersAsTheCInterface) {
    const auto src = randomPixels<uint8_t>(1, 3);
    const std::array<uint8_t, 3> border{1, 2, 3};
    int32_t specBytes = 0, initBytes = 0, bufferBytes = 0, added = 0;
    okpiFilterGaussianGetSpecSize(7, DataType8u, 3, &specBytes, &initBytes);
    okpiFilterGaussianGetBufferSize(kSize, 7, DataType8u, 3, &added, &bufferBytes);
    std::vector<char> spec(static_cast<size_t>(specBytes)), init(static_cast<size_t>(initBytes)),
        buffer(static_cast<size_t>(bufferBytes));
    okpiFilterGaussianInit(kSize, 7, 1.4F, BorderReplicate, DataType8u, 3, spec.data(), init.data());
    std::vector<uint8_t> expected(src.size()), ours(src.size());
    ASSERT_EQ(okpiFilterGaussian_8u_C3R(src.data(), 111, expected.data(), 111, kSize, BorderConstant,
                                        border.data(), spec.data(), buffer.data()),
              okpStatusOk);

    auto filter = GaussianFilter<uint8_t, 3>::create(kSize, 7, 1.4F).orThrow();
    const ImageView<const uint8_t, 3> source(src, kSize);
    filter(source, ImageView<uint8_t, 3>(ours, kSize), BorderConstant, border).orThrow();
    EXPECT_EQ(ours, expected);
    EXPECT_EQ((GaussianFilter<uint8_t, 3>::create(kSize, 6, 1.4F).status()), okpStatusBadArgument);
}

TEST(Morphology, DilatesAndErodesAsTheCInterface) {
    const auto src = randomPixels<uint8_t>(1);
    const std::array<uint8_t, 9> cross{0, 1, 0, 1, 1, 1, 0, 1, 0};
    int32_t specBytes = 0, bufferBytes = 0;
    okpiMorphologyBorderGetSize_8u_C1R(kSize, {3, 3}, &specBytes, &bufferBytes);
    std::vector<uint8_t> area(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    auto* spec = reinterpret_cast<MorphSpec*>(area.data());
    okpiMorphologyBorderInit_8u_C1R(kSize, cross.data(), {3, 3}, spec, buffer.data());
    std::vector<uint8_t> dilated(kPixels), eroded(kPixels), result(kPixels);
    okpiDilateBorder_8u_C1R(src.data(), 37, dilated.data(), 37, kSize, BorderDefault, 0, spec, buffer.data());
    okpiErodeBorder_8u_C1R(src.data(), 37, eroded.data(), 37, kSize, BorderConstant, 9, spec, buffer.data());

    auto morphology = Morphology<uint8_t>::create(kSize, cross, {3, 3}).orThrow();
    const ImageView<const uint8_t> source(src, kSize);
    const ImageView<uint8_t> dst(result, kSize);
    morphology.dilate(source, dst).orThrow();
    EXPECT_EQ(result, dilated);
    std::as_const(morphology).erode(source, dst, BorderConstant, 9, morphology.makeBuffer()).orThrow();
    EXPECT_EQ(result, eroded);

    EXPECT_EQ(Morphology<uint8_t>::create(kSize, cross, {3, 4}).status(), okpStatusBadSize);
    EXPECT_EQ(Morphology<uint8_t>::rectangle(kSize, {3, -1}).status(), okpStatusBadSize);
    EXPECT_EQ(Morphology<uint8_t>::rectangle(kSize, {INT32_MAX, INT32_MAX}).status(), okpStatusSizeTooLarge);
}

TEST(Canny, FindsTheEdgesOfASquare) {
    std::vector<uint8_t> pixels(kPixels), edges(kPixels);
    const ImageView<uint8_t> image(pixels, kSize), found(edges, kSize);
    for (int y = 6; y < 18; ++y) std::ranges::fill(image.row(y).subspan(10, 12), uint8_t{200});
    auto canny = Canny::create(kSize).orThrow();
    canny(image, found, 50, 100).orThrow();
    EXPECT_EQ(found.row(12)[15], 0);
    const auto across = found.row(12);
    EXPECT_EQ(std::ranges::count(across, 255), 2);

    std::vector<int16_t> dx(kPixels), dy(kPixels);
    dx[5 * 37 + 9] = 300;
    const ImageView<int16_t> horizontal(dx, kSize), vertical(dy, kSize);
    canny.fromDerivatives(horizontal, vertical, found, 50, 100).orThrow();
    EXPECT_EQ(std::ranges::count(edges, 255), 1);
    EXPECT_EQ(edges[5 * 37 + 9], 255);
}

TEST(FloodFill, RecoloursRegionsByEachRule) {
    std::vector<uint8_t> pixels(kPixels);
    const ImageView<uint8_t> image(pixels, kSize);
    for (int y = 0; y < kSize.height; ++y) image.row(y)[20] = static_cast<uint8_t>(100 + y % 2);
    auto fill = FloodFill::create(kSize).orThrow();

    EXPECT_EQ(fill.equal(image, {3, 3}, 7)->area, 20.0 * 23);
    EXPECT_EQ(fill.equal(image, {20, 0}, 9)->area, 1);
    EXPECT_EQ(fill.range(image, {20, 1}, 9, 1, 0)->area, 22);
    EXPECT_EQ(fill.gradient<Connectivity::Eight>(image, {0, 0}, 50, 1, 255)->area, 21.0 * 23);
    EXPECT_EQ(fill.equal(image, {37, 0}, 9).status(), okpStatusOutOfRange);
}

TEST(Labeller, CountsGroups) {
    std::vector<uint8_t> pixels(kPixels);
    pixels[0] = pixels[38] = 1;
    std::vector<int32_t> labels(kPixels);
    const ImageView<uint8_t> markers(pixels, kSize);
    const ImageView<int32_t> result(labels, kSize);
    auto label = Labeller::create(kSize).orThrow();
    EXPECT_EQ(*label(markers, result), 1);
    EXPECT_EQ(*label(markers, result, Connectivity::Four), 2);
    EXPECT_EQ(labels[38], 2);
}

// The query's number would be negative for the first of these, and far too small for the second.
TEST(Labeller, RefusesSizesWhoseBufferSizeWraps) {
    EXPECT_EQ(Labeller::create({20000, 20000}).status(), okpStatusSizeTooLarge);
    EXPECT_EQ(Labeller::create({40000, 40000}).status(), okpStatusSizeTooLarge);
    EXPECT_EQ(Labeller::create({INT32_MAX, INT32_MAX}).status(), okpStatusSizeTooLarge);
}

TEST(SpeckleMarker, OverwritesSmallRegions) {
    std::vector<float> pixels(kPixels, 5.0F);
    pixels[40] = 9;
    auto mark = SpeckleMarker<float>::create(kSize).orThrow();
    mark(ImageView<float>(pixels, kSize), -1, 2, 1).orThrow();
    EXPECT_EQ(pixels[40], -1);
    EXPECT_EQ(std::ranges::count(pixels, 5.0F), 850);
}

TEST(Distance, ReachesTheFarCorner) {
    std::vector<uint8_t> pixels(kPixels, 1);
    pixels[0] = 0;
    const ImageView<const uint8_t> image(pixels, kSize);
    std::vector<float> exact(kPixels);
    auto transform = ExactDistance::create(kSize).orThrow();
    transform(image, ImageView<float>(exact, kSize)).orThrow();
    EXPECT_FLOAT_EQ(exact.back(), std::sqrt(36.0F * 36 + 22 * 22));

    std::vector<uint16_t> chamfer(kPixels);
    distanceTransform<3>(image, ImageView<uint16_t>(chamfer, kSize), {1, 2}).orThrow();
    EXPECT_EQ(chamfer.back(), 58);
    std::vector<float> chamfer5(kPixels);
    distanceTransform<5>(image, ImageView<float>(chamfer5, kSize), {1, 1, 2}).orThrow();
    EXPECT_EQ(chamfer5.back(), 36);
}

TEST(PyramidStep, GoesDownAndUp) {
    const std::vector<float> flat(kPixels, 3.5F);
    const RoiSize half{19, 12};
    std::vector<float> small(static_cast<size_t>(half.width * half.height)), large(kPixels);
    auto down = PyramidDown<float>::create(kSize).orThrow();
    auto up = PyramidUp<float>::create(half).orThrow();
    const ImageView<float> level(small, half);
    down(ImageView<const float>(flat, kSize), level).orThrow();
    up(level, ImageView<float>(large, kSize)).orThrow();
    EXPECT_EQ(large, flat);
    EXPECT_EQ(down(ImageView<const float>(flat, kSize), level.sub({0, 0, 18, 12})), okpStatusBadSize);
}

TEST(Pyramid, HoldsTheSizesOfTheLevels) {
    auto made = Pyramid::create({640, 480}, 3);
    ASSERT_TRUE(made);
    const Pyramid pyramid = std::move(made).orThrow();
    EXPECT_EQ(pyramid.levels(), 3);
    EXPECT_EQ(pyramid.size(3).width, 80);
    EXPECT_EQ(pyramid.scale(2), 0.25);
    EXPECT_EQ(Pyramid::create({640, 480}, 3, 1.0F).status(), okpStatusBadArgument);
}

}  // namespace
