// Panels of geometric sampling: the profile along a line, a copy shifted by half a pixel.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

void mark(Image8& rgb, int x, int y) {
    if (x < 0 || y < 0 || x >= rgb.width() || y >= rgb.height()) return;
    rgb.at(x, y, 0) = 255;
    rgb.at(x, y, 1) = 70;
    rgb.at(x, y, 2) = 40;
}

// Samples as a curve, bright at the top, with lines at a quarter, a half and three quarters of the range.
Image8 plot(const Image8& samples, int width, int height) {
    Image8 graph(width, height, 3, 24);
    for (int quarter = 1; quarter < 4; ++quarter) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 3; ++c) graph.at(x, height * quarter / 4, c) = 60;
        }
    }
    const auto level = [&](int x) {
        return height - 1 - samples.at(x * (samples.width() - 1) / (width - 1), 0) * (height - 1) / 255;
    };
    for (int x = 0; x + 1 < width; ++x) {
        const auto [top, bottom] = std::minmax({level(x), level(x + 1)});
        for (int y = top; y <= bottom; ++y) mark(graph, x, y);
    }
    return graph;
}

void addProfile(Gallery& gallery) {
    const Image8& coins = gallery.coins;
    const PixelPoint from{4, coins.height() * 15 / 100}, to{coins.width() - 5, coins.height() * 45 / 100};
    const int count = std::max(to.x - from.x, to.y - from.y) + 1;
    Image8 samples(count, 1);
    const Call call = OKP_TIMED(std::to_string(count) + " samples", okpiSampleLine_8u_C1R, coins.data(),
                                coins.step(), coins.size(), samples.data(), from, to);

    Image8 picture = toRgb(coins);
    for (int i = 0; i < count; ++i) {
        const double way = static_cast<double>(i) / (count - 1);
        const int y = from.y + static_cast<int>(std::lround(way * (to.y - from.y)));
        mark(picture, from.x + i, y);
        mark(picture, from.x + i, y + 1);
    }
    Page& page = gallery.page;
    page.section("Profile along a line",
                 "The gray levels of the pixels that a straight line passes through: coins are hills.");
    page.panel({"profile-line", "The line across the coins", picture});
    page.panel({"profile-levels",
                "Gray levels along it, black at the bottom, white at the top",
                plot(samples, coins.width(), coins.height()),
                {call}});
}

void addHalfPixelShift(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    // One column and one row fewer, because the copy reads the right and the lower neighbours.
    const RoiSize size{gray.width() - 1, gray.height() - 1};
    Image8 shifted(size.width, size.height), difference(size.width, size.height);
    const Call copy = OKP_TIMED("dx 0.5, dy 0.5", okpiCopySubpix_8u_C1R, gray.data(), gray.step(),
                                shifted.data(), shifted.step(), size, 0.5F, 0.5F);
    OKP(okpiAbsDiff_8u_C1R, gray.data(), gray.step(), shifted.data(), shifted.step(), difference.data(),
        difference.step(), size);

    Page& page = gallery.page;
    page.section("Sub-pixel copy", "The photograph, moved by half a pixel in both directions.");
    page.panel({"subpixel-copy", "The shifted copy", shifted, {copy}});
    page.panel({"subpixel-difference", "What half a pixel changes, dark to bright for 0 to 60",
                heatColors(toFloat(difference), 0, 60)});
}

}  // namespace

void addGeometryPanels(Gallery& gallery) {
    addProfile(gallery);
    addHalfPixelShift(gallery);
}
