// Panels of linear filters: smoothing, sharpening, gradients, and what lies beyond an image's edges.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

// Pixels beyond an edge that are shown.
constexpr int kReach = 24;

// A region of a picture with a frame of kReach pixels around it, as a border sees them. A kernel whose only
// coefficient stands at one end moves the picture, and so brings its surroundings into the region: nine
// calls, each moved by another offset, show the region and the frame's sides and corners.
Image8 framed(const Image8& rgb, int left, int top, RoiSize size, BorderKind border,
              std::vector<Call>& calls) {
    Image8 result(size.width + 2 * kReach, size.height + 2 * kReach, 3);
    const int length = 2 * kReach + 1;
    const RoiSize kernelSize{length, length};
    int32_t specBytes = 0, bufferBytes = 0;
    OKP(okpiFilterSeparableGetSpecSize, kernelSize, DataType16s, 3, &specBytes);
    OKP(okpiFilterSeparableGetBufferSize, size, kernelSize, DataType8u, DataType16s, 3, &bufferBytes);
    std::vector<uint8_t> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    const uint8_t orange[] = {240, 140, 40};

    for (const int down : {-kReach, 0, kReach}) {
        for (const int right : {-kReach, 0, kReach}) {
            std::vector<int16_t> row(length), column(length);
            row[static_cast<size_t>(kReach + right)] = 1;
            column[static_cast<size_t>(kReach + down)] = 1;
            OKP(okpiFilterSeparableInit_16s, row.data(), column.data(), kernelSize, 1, 0, DataType8u, 3,
                spec.data());
            Image8 moved(size.width, size.height, 3);
            const auto filter = [&] {
                OKP(okpiFilterSeparable_8u_C3R, &rgb.at(left, top), rgb.step(), moved.data(), moved.step(),
                    size, border, orange, spec.data(), buffer.data());
            };
            filter();
            if (down == 0 && right == 0) {
                calls.push_back(timedCall("okpiFilterSeparable_8u_C3R",
                                          std::to_string(length) + " x " + std::to_string(length), filter));
            }
            for (int y = 0; y < size.height; ++y) {
                const auto first = moved.values().begin() + static_cast<ptrdiff_t>(y) * size.width * 3;
                std::copy(first, first + size.width * 3, &result.at(kReach + right, kReach + down + y));
            }
        }
    }
    return result;
}

void addBorders(Gallery& gallery) {
    // A part of a small copy of the photograph, so that there is something around it in memory.
    const Image8 small = resize(gallery.color, 160, 160 * gallery.color.height() / gallery.color.width());
    const RoiSize region{small.width() - 2 * kReach, small.height() - 2 * kReach};
    const struct {
        const char* name;
        const char* caption;
        BorderKind kind;
    } borders[] = {
        {"border-replicate", "BorderReplicate: the edge pixels go on", BorderReplicate},
        {"border-mirror", "BorderMirror: reflected about the edge pixels", BorderMirror},
        {"border-constant", "BorderConstant: a value that the caller gives", BorderConstant},
        {"border-in-memory", "BorderInMemory: what the region is a part of", BorderInMemory},
        {"border-mixed", "BorderMirror with the left side and the top in memory",
         BorderMirror | BorderInMemLeft | BorderInMemTop},
    };
    Page& page = gallery.page;
    page.section("Borders", "What neighbourhood operations see beyond the edges of a region.");
    for (const auto& border : borders) {
        std::vector<Call> calls;
        const Image8 picture = framed(small, kReach, kReach, region, border.kind, calls);
        page.panel(
            {border.name, border.caption, resize(picture, picture.width() * 2, picture.height() * 2), calls});
    }
}

// The image smoothed, and the call that did it.
struct Smoothed {
    Image8 image;
    Call call;
};
Smoothed smooth(const Image8& rgb, float sigma) {
    const int size = 2 * static_cast<int>(std::ceil(3 * sigma)) + 1;
    int32_t specBytes = 0, initBytes = 0, bytes = 0;
    OKP(okpiFilterGaussianGetSpecSize, size, DataType8u, 3, &specBytes, &initBytes);
    std::vector<uint8_t> spec(static_cast<size_t>(specBytes)), scratch(static_cast<size_t>(initBytes));
    OKP(okpiFilterGaussianGetBufferSize, rgb.size(), size, DataType8u, 3, &specBytes, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    OKP(okpiFilterGaussianInit, rgb.size(), size, sigma, BorderReplicate, DataType8u, 3, spec.data(),
        scratch.data());
    Smoothed result{Image8(rgb.width(), rgb.height(), 3), {}};
    const std::string parameters =
        std::to_string(size) + " × " + std::to_string(size) + ", replicated border";
    result.call =
        OKP_TIMED(parameters, okpiFilterGaussianBorder_8u_C3R, rgb.data(), rgb.step(), result.image.data(),
                  result.image.step(), rgb.size(), nullptr, spec.data(), buffer.data());
    return result;
}

void addSmoothing(Gallery& gallery) {
    gallery.page.section("Smoothing", "Gaussian filters: the wider the bell, the less detail is left.");
    gallery.page.panel({"gaussian-none", "The photograph", gallery.color});
    for (const int sigma : {1, 3, 8}) {
        const std::string text = std::to_string(sigma);
        const Smoothed smoothed = smooth(gallery.color, static_cast<float>(sigma));
        gallery.page.panel(
            {"gaussian-" + text, "Standard deviation " + text, smoothed.image, {smoothed.call}});
    }
}

uint8_t toLevel(int value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

void addSharpening(Gallery& gallery) {
    gallery.page.section("Sharpening", "What smoothing takes from an image, added to it once more.");
    const Smoothed smoothed = smooth(gallery.color, 2);
    Image8 unsharp = smoothed.image;
    std::transform(gallery.color.values().begin(), gallery.color.values().end(), unsharp.values().begin(),
                   unsharp.values().begin(), [](int sharp, int soft) { return toLevel(2 * sharp - soft); });
    gallery.page.panel({"unsharp-mask",
                        "Unsharp mask: the photograph plus its difference from a smoothed one",
                        unsharp,
                        {smoothed.call}});

    const Image8& gray = gallery.gray;
    int32_t bytes = 0;
    OKP(okpiFilterLaplacianGetBufferSize_8u16s_C1R, gray.size(), MaskSize3x3, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    Image<int16_t> laplacian(gray.width(), gray.height());
    const Call call = OKP_TIMED("3 × 3, replicated border", okpiFilterLaplacianBorder_8u16s_C1R, gray.data(),
                                gray.step(), laplacian.data(), laplacian.step(), gray.size(), MaskSize3x3,
                                BorderReplicate, 0, buffer.data());
    Image8 sharpened = gray;
    std::transform(gray.values().begin(), gray.values().end(), laplacian.values().begin(),
                   sharpened.values().begin(),
                   [](int level, int curve) { return toLevel(level - curve / 8); });
    gallery.page.panel(
        {"laplacian-sharpened", "Gray levels minus an eighth of their Laplacian", sharpened, {call}});
}

void addGradient(Gallery& gallery) {
    gallery.page.section("Gradients", "How steeply an image rises, and where.");
    const Image8& rgb = gallery.color;
    constexpr RoiSize kernelSize{3, 3};
    int32_t specBytes = 0, bytes = 0;
    OKP(okpiFilterSeparableGetSpecSize, kernelSize, DataType16s, 3, &specBytes);
    OKP(okpiFilterSeparableGetBufferSize, rgb.size(), kernelSize, DataType8u, DataType16s, 3, &bytes);
    std::vector<uint8_t> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bytes));
    std::vector<Call> calls;
    const auto derivative = [&](int xOrder, int yOrder) {
        int16_t row[3], column[3];
        OKP(okpiGenSobelKernel_16s, row, 3, xOrder, 1);
        OKP(okpiGenSobelKernel_16s, column, 3, yOrder, 1);
        OKP(okpiFilterSeparableInit_16s, row, column, kernelSize, 1, 0, DataType8u, 3, spec.data());
        Image<int16_t> result(rgb.width(), rgb.height(), 3);
        calls.push_back(OKP_TIMED("Sobel 3 × 3, replicated border", okpiFilterSeparable_8u16s_C3R, rgb.data(),
                                  rgb.step(), result.data(), result.step(), rgb.size(), BorderReplicate,
                                  nullptr, spec.data(), buffer.data()));
        return result;
    };
    const Image<int16_t> dx = derivative(1, 0), dy = derivative(0, 1);
    ImageF magnitude(rgb.width(), rgb.height(), 3), reduced(rgb.width(), rgb.height());
    std::transform(dx.values().begin(), dx.values().end(), dy.values().begin(), magnitude.values().begin(),
                   [](float x, float y) { return std::hypot(x, y); });
    constexpr int32_t rootMeanSquare = 2;
    calls.push_back(OKP_TIMED("root mean square", okpiGradientColorToGray_32f_C3C1R, magnitude.data(),
                              magnitude.step(), reduced.data(), reduced.step(), rgb.size(), rootMeanSquare));
    gallery.page.panel({"gradient-magnitude", "Magnitude of the gradient, over all colours",
                        heatColors(reduced, 0, 400), calls});
}

}  // namespace

void addFilterPanels(Gallery& gallery) {
    addSmoothing(gallery);
    addSharpening(gallery);
    addGradient(gallery);
    addBorders(gallery);
}
