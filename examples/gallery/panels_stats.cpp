// Panels of statistics: extrema marked in the picture, and how far degraded copies are from the photograph.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>

namespace {

// A ring around a place.
void mark(Image8& rgb, PixelPoint at, const uint8_t (&color)[3]) {
    constexpr int inner = 9, outer = 12;
    for (int y = std::max(at.y - outer, 0); y <= std::min(at.y + outer, rgb.height() - 1); ++y) {
        for (int x = std::max(at.x - outer, 0); x <= std::min(at.x + outer, rgb.width() - 1); ++x) {
            const int distance = (x - at.x) * (x - at.x) + (y - at.y) * (y - at.y);
            if (distance < inner * inner || distance > outer * outer) continue;
            std::copy_n(color, 3, &rgb.at(x, y));
        }
    }
}

constexpr uint8_t kDarkest[] = {70, 160, 255}, kBrightest[] = {255, 80, 40};

std::string number(double value, const char* format = "%.4g") {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// The ellipse that a portrait would be framed by.
Image8 ellipse(RoiSize size) {
    Image8 mask(size.width, size.height);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const double u = 2.4 * (x + 0.5) / size.width - 1.2, v = 2.4 * (y + 0.5) / size.height - 1.2;
            if (u * u + v * v <= 1) mask.at(x, y) = 255;
        }
    }
    return mask;
}

void addExtrema(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    const auto caption = [](const char* where, double min, double max, double mean, double deviation) {
        return std::string(where) + ": from " + number(min) + " (blue ring) to " + number(max) +
               " (orange), mean " + number(mean) + ", standard deviation " + number(deviation);
    };
    float min = 0, max = 0;
    PixelPoint minAt{}, maxAt{};
    double mean = 0, deviation = 0;
    const Call extrema = OKP_TIMED("whole image", okpiMinMaxIndx_8u_C1R, gray.data(), gray.step(),
                                   gray.size(), &min, &max, &minAt, &maxAt);
    const Call moments = OKP_TIMED("whole image", okpiMean_StdDev_8u_C1R, gray.data(), gray.step(),
                                   gray.size(), &mean, &deviation);
    Image8 picture = toRgb(gray);
    mark(picture, minAt, kDarkest);
    mark(picture, maxAt, kBrightest);
    Page& page = gallery.page;
    page.section(
        "Statistics",
        "The darkest and the brightest pixel, the first of them where there are several, and the mean "
        "gray level; of the whole photograph, and of what a mask selects.");
    page.panel(
        {"extrema", caption("All gray levels", min, max, mean, deviation), picture, {extrema, moments}});

    const Image8 mask = ellipse(gray.size());
    const Call maskedExtrema = OKP_TIMED("ellipse", okpiMinMaxIndx_8u_C1MR, gray.data(), gray.step(),
                                         mask.data(), mask.step(), gray.size(), &min, &max, &minAt, &maxAt);
    const Call maskedMoments = OKP_TIMED("ellipse", okpiMean_StdDev_8u_C1MR, gray.data(), gray.step(),
                                         mask.data(), mask.step(), gray.size(), &mean, &deviation);
    Image8 framed = toRgb(gray);
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            if (mask.at(x, y) == 0) std::fill_n(&framed.at(x, y), 3, static_cast<uint8_t>(gray.at(x, y) / 4));
        }
    }
    mark(framed, minAt, kDarkest);
    mark(framed, maxAt, kBrightest);
    page.panel({"extrema-masked",
                caption("Under a mask", min, max, mean, deviation),
                framed,
                {maskedExtrema, maskedMoments}});
}

// Each pixel replaced by what `degrade` makes of its level.
template <class Degrade>
Image8 degraded(const Image8& image, Degrade degrade) {
    Image8 result = image;
    for (uint8_t& level : result.values()) level = static_cast<uint8_t>(std::clamp(degrade(level), 0, 255));
    return result;
}

void addNorms(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    const Image8 all(gray.width(), gray.height(), 1, 255);
    std::mt19937 random(3);
    struct Copy {
        const char* name;
        const char* caption;
        Image8 image;
    };
    const Copy copies[] = {
        {"noise", "Noise of up to 30 levels",
         degraded(gray, [&](int level) { return level + static_cast<int>(random() % 61) - 30; })},
        {"salt", "One pixel in a hundred black or white",
         degraded(gray,
                  [&](int level) { return random() % 100 != 0 ? level
                                          : random() % 2 == 0 ? 0
                                                              : 255; })},
        {"posterized", "Six gray levels", degraded(gray, [](int level) { return (level * 6 / 256) * 51; })},
        {"coarse", "A fifth of the resolution",
         resize(resize(gray, gray.width() / 5, gray.height() / 5), gray.width(), gray.height())}};

    Page& page = gallery.page;
    page.section(
        "Norms",
        "How far copies are from the photograph: the largest difference, the mean difference (L1 per "
        "pixel), and the Euclidean distance relative to the photograph.");
    std::vector<std::vector<std::string>> rows;
    for (const Copy& copy : copies) {
        double largest = 0, sum = 0, relative = 0;
        const auto measure = [&](auto norm, const char* name, const char* kind, double& result) {
            return timedCall(name, kind, [&] {
                checkStatus(name, norm(copy.image.data(), copy.image.step(), gray.data(), gray.step(),
                                       all.data(), all.step(), gray.size(), &result));
            });
        };
        const std::vector<Call> calls{
            measure(okpiNormDiff_Inf_8u_C1MR, "okpiNormDiff_Inf_8u_C1MR", "largest difference", largest),
            measure(okpiNormDiff_L1_8u_C1MR, "okpiNormDiff_L1_8u_C1MR", "sum of differences", sum),
            measure(okpiNormRel_L2_8u_C1MR, "okpiNormRel_L2_8u_C1MR", "relative distance", relative)};
        page.panel({std::string("degraded-") + copy.name, copy.caption, copy.image, calls});
        const double pixels = static_cast<double>(gray.width()) * gray.height();
        rows.push_back({copy.caption, number(largest, "%.0f"), number(sum / pixels, "%.2f"),
                        number(100 * relative, "%.1f %%")});
    }
    page.table({"Copy", "Largest difference", "Mean difference", "Relative distance"}, rows);
}

}  // namespace

void addStatsPanels(Gallery& gallery) {
    addExtrema(gallery);
    addNorms(gallery);
}
