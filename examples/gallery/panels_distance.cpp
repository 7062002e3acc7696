// Panels of distance transforms: contour bands around coins for each norm, chamfer against exact distances.
#include "gallery.h"
#include "show.h"

#include <cmath>
#include <iterator>
#include <string>

namespace {

constexpr int kBand = 8;  // pixels from one contour to the next

ImageF exactDistances(const Image8& image) {
    int32_t bytes = 0;
    OKP(okpiTrueDistanceTransformGetBufferSize_8u32f_C1R, image.size(), &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    ImageF distances(image.width(), image.height());
    OKP(okpiTrueDistanceTransform_8u32f_C1R, image.data(), image.step(), distances.data(), distances.step(),
        image.size(), buffer.data());
    return distances;
}

// `low` where the image is within the distance of a zero pixel, `high` elsewhere.
Image8 near(const Image8& image, float distance, uint8_t low, uint8_t high) {
    const ImageF distances = exactDistances(image);
    Image8 result(image.width(), image.height());
    for (size_t i = 0; i < result.values().size(); ++i) {
        result.values()[i] = distances.values()[i] <= distance ? low : high;
    }
    return result;
}

// 0 inside the coins, which are brighter than their ground, 255 outside. The light falls off towards the
// lower right, and so does the threshold. Dark marks on the coins are closed: the coins grow by their width
// and shrink again.
Image8 groundOf(const Image8& coins) {
    constexpr float marks = 6;
    Image8 ground(coins.width(), coins.height());
    for (int y = 0; y < coins.height(); ++y) {
        for (int x = 0; x < coins.width(); ++x) {
            const int threshold = 160 - 30 * x / coins.width() - 45 * y / coins.height();
            ground.at(x, y) = coins.at(x, y) > threshold ? 0 : 255;
        }
    }
    return near(near(ground, marks, 255, 0), marks, 255, 0);
}

// Zero on the outlines: where a pixel and its right or lower neighbour differ.
Image8 outlinesOf(const Image8& ground) {
    Image8 outlines(ground.width(), ground.height(), 1, 255);
    for (int y = 0; y + 1 < ground.height(); ++y) {
        for (int x = 0; x + 1 < ground.width(); ++x) {
            const uint8_t here = ground.at(x, y);
            if (here != ground.at(x + 1, y) || here != ground.at(x, y + 1)) outlines.at(x, y) = 0;
        }
    }
    return outlines;
}

// Every second band is darker; the outlines are white.
Image8 bandsOf(const ImageF& distances) {
    float farthest = 1;
    for (const float d : distances.values()) farthest = std::max(farthest, d);
    Image8 picture = heatColors(distances, -0.15F * farthest, farthest);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const float d = distances.at(x, y);
            const bool isDark = static_cast<int>(d / kBand) % 2 == 1;
            for (int c = 0; c < 3; ++c) {
                uint8_t& level = picture.at(x, y, c);
                level = d == 0 ? 255 : static_cast<uint8_t>(isDark ? level * 6 / 10 : level);
            }
        }
    }
    return picture;
}

// How far two distances are apart, in percent of the second.
ImageF errorOf(const ImageF& approximate, const ImageF& exact) {
    ImageF error(exact.width(), exact.height());
    for (size_t i = 0; i < error.values().size(); ++i) {
        const float d = exact.values()[i];
        error.values()[i] = d == 0 ? 0 : 100 * std::abs(approximate.values()[i] - d) / d;
    }
    return error;
}

}  // namespace

void addDistancePanels(Gallery& gallery) {
    const Image8 outlines = outlinesOf(groundOf(gallery.coins));
    const auto size = outlines.size();
    Page& page = gallery.page;
    page.section(
        "Distance transforms",
        "The distance of every pixel to the nearest outline of a coin, in bands of " + std::to_string(kBand) +
            " pixels. Outlines at equal distance show what each norm takes for a circle: a square, a "
            "diamond, an octagon, a polygon of sixteen sides, and a circle.");

    struct Norm {
        const char *file, *title;
        int mask, code;
    };
    constexpr Norm kNorms[] = {{"distance-maximum", "Maximum norm", 3, 0},
                               {"distance-l1", "L1 norm", 3, 1},
                               {"distance-l2-3x3", "L2 norm, approximated by a 3 x 3 mask", 3, 2},
                               {"distance-l2-5x5", "L2 norm, approximated by a 5 x 5 mask", 5, 2}};
    ImageF chamfer[std::size(kNorms)];
    for (size_t i = 0; i < std::size(kNorms); ++i) {
        const Norm& norm = kNorms[i];
        ImageF& distances = chamfer[i] = ImageF(outlines.width(), outlines.height());
        float weights[3];
        OKP(okpiGetDistanceTransformMask_32f, norm.mask, norm.code, weights);
        const Call call = norm.mask == 3
                              ? OKP_TIMED("", okpiDistanceTransform_3x3_8u32f_C1R, outlines.data(),
                                          outlines.step(), distances.data(), distances.step(), size, weights)
                              : OKP_TIMED("", okpiDistanceTransform_5x5_8u32f_C1R, outlines.data(),
                                          outlines.step(), distances.data(), distances.step(), size, weights);
        page.panel({norm.file, norm.title, bandsOf(distances), {call}});
    }

    int32_t bytes = 0;
    OKP(okpiTrueDistanceTransformGetBufferSize_8u32f_C1R, size, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    ImageF exact(outlines.width(), outlines.height());
    const Call call = OKP_TIMED("", okpiTrueDistanceTransform_8u32f_C1R, outlines.data(), outlines.step(),
                                exact.data(), exact.step(), size, buffer.data());
    page.panel({"distance-exact", "L2 norm, exact", bandsOf(exact), {call}});
    page.panel({"distance-error-3x3", "Error of the 3 x 3 mask, dark to bright for 0 to 8 percent",
                heatColors(errorOf(chamfer[2], exact), 0, 8)});
    page.panel({"distance-error-5x5", "Error of the 5 x 5 mask, dark to bright for 0 to 8 percent",
                heatColors(errorOf(chamfer[3], exact), 0, 8)});
}
