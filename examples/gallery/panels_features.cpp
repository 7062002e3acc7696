// Panels of features: edges at three pairs of thresholds, and the peaks of a corner response.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

void addEdges(Gallery& gallery) {
    constexpr int32_t sobel = 2;
    const Image8& gray = gallery.gray;
    int32_t bytes = 0;
    OKP(okpiCannyBorderGetSize, gray.size(), sobel, MaskSize3x3, DataType8u, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));

    gallery.page.section(
        "Edges",
        "Ridges of the gradient's magnitude, one pixel wide: kept where they exceed the high "
        "threshold or hang together with such a place above the low one.");
    const struct {
        const char* name;
        float low, high;
        const char* caption;
    } thresholds[] = {{"edges-low", 40, 100, "Low thresholds: texture, too"},
                      {"edges-middle", 100, 250, "Medium thresholds: outlines"},
                      {"edges-high", 200, 500, "High thresholds: the strongest outlines"}};
    for (const auto& t : thresholds) {
        Image8 edges(gray.width(), gray.height());
        const std::string parameters = "Sobel 3 × 3, replicated border, L2, " +
                                       std::to_string(static_cast<int>(t.low)) + " and " +
                                       std::to_string(static_cast<int>(t.high));
        const Call call = OKP_TIMED(parameters, okpiCannyBorder_8u_C1R, gray.data(), gray.step(),
                                    edges.data(), edges.step(), gray.size(), sobel, MaskSize3x3,
                                    BorderReplicate, 0, t.low, t.high, NormL2, buffer.data());
        gallery.page.panel({t.name, t.caption, edges, {call}});
    }
}

ImageF filtered(const ImageF& image, const std::array<float, 5>& row, const std::array<float, 5>& column) {
    const RoiSize kernel{5, 5};
    int32_t specBytes = 0, bufferBytes = 0;
    OKP(okpiFilterSeparableGetSpecSize, kernel, DataType32f, 1, &specBytes);
    OKP(okpiFilterSeparableGetBufferSize, image.size(), kernel, DataType32f, DataType32f, 1, &bufferBytes);
    std::vector<uint8_t> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    OKP(okpiFilterSeparableInit_32f, row.data(), column.data(), kernel, DataType32f, 1, spec.data());
    ImageF result(image.width(), image.height());
    OKP(okpiFilterSeparable_32f_C1R, image.data(), image.step(), result.data(), result.step(), image.size(),
        BorderReplicate, 0, spec.data(), buffer.data());
    return result;
}

ImageF product(const ImageF& a, const ImageF& b) {
    ImageF result(a.width(), a.height());
    OKP(okpiAddProduct_32f_C1IR, a.data(), a.step(), b.data(), b.step(), result.data(), result.step(),
        a.size());
    return result;
}

// The response of Harris and Stephens, "A combined corner and edge detector" (1988).
ImageF cornerResponse(const ImageF& gray) {
    const std::array<float, 5> smooth = {1.0F / 16, 4.0F / 16, 6.0F / 16, 4.0F / 16, 1.0F / 16};
    const std::array<float, 5> derive = {-1.0F / 8, -2.0F / 8, 0, 2.0F / 8, 1.0F / 8};
    const ImageF dx = filtered(gray, derive, smooth);
    const ImageF dy = filtered(gray, smooth, derive);
    const ImageF xx = filtered(product(dx, dx), smooth, smooth);
    const ImageF yy = filtered(product(dy, dy), smooth, smooth);
    const ImageF xy = filtered(product(dx, dy), smooth, smooth);
    ImageF response(gray.width(), gray.height());
    for (size_t i = 0; i < response.values().size(); ++i) {
        const float a = xx.values()[i], b = yy.values()[i], c = xy.values()[i];
        // Edges make it negative.
        response.values()[i] = std::max(a * b - c * c - 0.05F * (a + b) * (a + b), 0.0F);
    }
    return response;
}

void drawCross(Image8& rgb, PixelPoint at) {
    constexpr int reach = 4;
    const uint8_t color[] = {255, 60, 40};
    for (int i = -reach; i <= reach; ++i) {
        for (const PixelPoint p : {PixelPoint{at.x + i, at.y}, PixelPoint{at.x, at.y + i}}) {
            if (p.x < 0 || p.y < 0 || p.x >= rgb.width() || p.y >= rgb.height()) continue;
            std::copy(color, color + 3, &rgb.at(p.x, p.y));
        }
    }
}

void addCorners(Gallery& gallery) {
    const ImageF response = cornerResponse(toFloat(gallery.gray));
    const float threshold = *std::max_element(response.values().begin(), response.values().end()) / 50;
    int32_t bytes = 0, count = 0;
    OKP(okpiFindPeaks3x3GetBufferSize_32f_C1R, response.width(), &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    std::vector<PixelPoint> corners(2000);
    const Call call =
        OKP_TIMED("3 × 3 neighbours, beyond a fiftieth of the strongest", okpiFindPeaks3x3_32f_C1R,
                  response.data(), response.step(), response.size(), threshold, corners.data(),
                  static_cast<int32_t>(corners.size()), &count, 0, 3, buffer.data());
    corners.resize(static_cast<size_t>(count));

    Image8 picture = toRgb(gallery.gray);
    for (const PixelPoint corner : corners) drawCross(picture, corner);
    gallery.page.section("Corners",
                         "Where the gradient takes all directions, a response made of smoothed products of "
                         "derivatives is large; its local maxima are the corners.");
    gallery.page.panel(
        {"corners-response", "Corner response, black for none", grayLevels(response, 0, threshold * 4)});
    gallery.page.panel({"corners-peaks", std::to_string(count) + " peaks", picture, {call}});
}

}  // namespace

void addFeaturePanels(Gallery& gallery) {
    addEdges(gallery);
    addCorners(gallery);
}
