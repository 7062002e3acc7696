// Panels of pixel arithmetic: frame differences, running statistics, learning under a mask, motion history.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <string>

namespace {

uint8_t clampLevel(int level) {
    return static_cast<uint8_t>(std::clamp(level, 0, 255));
}

void brighten(Image8& image, int by) {
    for (uint8_t& level : image.values()) level = clampLevel(level + by);
}

// The image moved right and down; its edge pixels fill what becomes free.
Image8 shifted(const Image8& image, int right, int down) {
    Image8 result(image.width(), image.height(), image.channels());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            for (int c = 0; c < image.channels(); ++c) {
                result.at(x, y, c) = image.at(std::max(x - right, 0), std::max(y - down, 0), c);
            }
        }
    }
    return result;
}

// Adds a camera's noise of up to 20 levels.
void addNoise(Image8& image, std::mt19937& random) {
    for (uint8_t& level : image.values()) level = clampLevel(level + static_cast<int>(random() % 41) - 20);
}

// A film of a disc that is cut from the photograph's upper middle and crosses the photograph in an arc.
Image8 frameWithDisc(const Image8& photo, int frame, int frames) {
    const int radius = std::min(photo.width(), photo.height()) / 8;
    const int fromX = photo.width() * 45 / 100, fromY = photo.height() * 27 / 100;
    const double way = static_cast<double>(frame) / (frames - 1);
    const int toX = static_cast<int>(std::lround(radius + way * (photo.width() - 1 - 2 * radius)));
    const double lift = std::sin(std::numbers::pi * way) * photo.height() * 0.45;
    const int toY = static_cast<int>(std::lround(photo.height() * 0.8 - lift));

    Image8 result = photo;
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x) {
            const bool inside = x * x + y * y <= radius * radius && fromX + x >= 0 && fromY + y >= 0 &&
                                toX + x < photo.width() && toY + y < photo.height();
            if (inside) result.at(toX + x, toY + y) = photo.at(fromX + x, fromY + y);
        }
    }
    return result;
}

void addFrameDifference(Gallery& gallery) {
    const Image8 &gray = gallery.gray, &color = gallery.color;
    Image8 nextGray = shifted(gray, 3, 2), nextColor = shifted(color, 3, 2);
    brighten(nextGray, 12);
    brighten(nextColor, 12);

    Image8 difference(gray.width(), gray.height()), colorDifference(gray.width(), gray.height(), 3),
        distance(gray.width(), gray.height());
    const Call one = OKP_TIMED("", okpiAbsDiff_8u_C1R, gray.data(), gray.step(), nextGray.data(),
                               nextGray.step(), difference.data(), difference.step(), gray.size());
    const Call three =
        OKP_TIMED("", okpiAbsDiff_8u_C3R, color.data(), color.step(), nextColor.data(), nextColor.step(),
                  colorDifference.data(), colorDifference.step(), color.size());
    const Call constant = OKP_TIMED("value 128", okpiAbsDiffC_8u_C1R, gray.data(), gray.step(),
                                    distance.data(), distance.step(), gray.size(), 128);

    Page& page = gallery.page;
    page.section(
        "Frame difference",
        "A frame and the next one, in which the camera has moved by 3 and 2 pixels and the light has "
        "become 12 levels brighter. Edges stand out; flat regions show the change of light.");
    page.panel({"difference-next", "The next frame", nextColor});
    page.panel({"difference-gray",
                "Absolute difference of the gray frames, dark to bright for 0 to 100",
                heatColors(toFloat(difference), 0, 100),
                {one}});
    page.panel({"difference-color",
                "Absolute difference per colour channel, shown 2.5 times as bright",
                grayLevels(toFloat(colorDifference), 0, 102),
                {three}});
    page.panel({"difference-constant",
                "Distance from mid-gray, shown twice as bright",
                grayLevels(toFloat(distance), 0, 128),
                {constant}});
}

void addRunningStatistics(Gallery& gallery) {
    constexpr int frames = 48;
    constexpr float weight = 0.1f;
    const Image8& photo = gallery.gray;
    const int width = photo.width() * 3 / 4, height = photo.height() * 3 / 4;

    // Two cameras make the same pan, each with noise of its own.
    Image8 left, right;
    ImageF average(width, height), sum(width, height), squares(width, height), products(width, height),
        otherSum(width, height);
    std::mt19937 random(1);
    for (int i = 0; i < frames; ++i) {
        left = crop(photo, (photo.width() - width) * i / (frames - 1),
                    (photo.height() - height) * i / (2 * (frames - 1)), width, height);
        right = left;
        addNoise(left, random);
        addNoise(right, random);
        // The first frame starts the average.
        OKP(okpiAddWeighted_8u32f_C1IR, left.data(), left.step(), average.data(), average.step(), left.size(),
            i == 0 ? 1.0f : weight);
        OKP(okpiAdd_8u32f_C1IR, left.data(), left.step(), sum.data(), sum.step(), left.size());
        OKP(okpiAdd_8u32f_C1IR, right.data(), right.step(), otherSum.data(), otherSum.step(), left.size());
        OKP(okpiAddSquare_8u32f_C1IR, left.data(), left.step(), squares.data(), squares.step(), left.size());
        OKP(okpiAddProduct_8u32f_C1IR, left.data(), left.step(), right.data(), right.step(), products.data(),
            products.step(), left.size());
    }

    ImageF deviation(width, height), common(width, height);
    for (size_t i = 0; i < deviation.values().size(); ++i) {
        const float m = sum.values()[i] / frames, other = otherSum.values()[i] / frames;
        deviation.values()[i] = std::sqrt(std::max(squares.values()[i] / frames - m * m, 0.0f));
        common.values()[i] = std::sqrt(std::max(products.values()[i] / frames - m * other, 0.0f));
    }

    ImageF scratch(width, height);
    const Call weighted = OKP_TIMED("weight 0.1", okpiAddWeighted_8u32f_C1IR, left.data(), left.step(),
                                    scratch.data(), scratch.step(), left.size(), weight);
    const Call plain = OKP_TIMED("", okpiAdd_8u32f_C1IR, left.data(), left.step(), scratch.data(),
                                 scratch.step(), left.size());
    const Call square = OKP_TIMED("", okpiAddSquare_8u32f_C1IR, left.data(), left.step(), scratch.data(),
                                  scratch.step(), left.size());
    const Call product = OKP_TIMED("", okpiAddProduct_8u32f_C1IR, left.data(), left.step(), right.data(),
                                   right.step(), scratch.data(), scratch.step(), left.size());

    Page& page = gallery.page;
    page.section(
        "Running statistics",
        "Two noisy cameras pan across the photograph together for 48 frames. Sums of the frames, of their "
        "squares and of their products give the deviation of every pixel and what both cameras agree on.");
    page.panel({"statistics-frame", "Last frame of the first camera", left});
    page.panel({"statistics-average",
                "Running average: the newest frames weigh most",
                grayLevels(average, 0, 255),
                {weighted}});
    page.panel({"statistics-deviation",
                "Standard deviation, noise included, dark to bright for 0 to 90",
                heatColors(deviation, 0, 90),
                {plain, square}});
    page.panel({"statistics-common",
                "Square root of the cameras' covariance: their noise cancels",
                heatColors(common, 0, 90),
                {plain, product}});
}

void addMaskedLearning(Gallery& gallery) {
    constexpr int frames = 60;
    constexpr float weight = 0.15f, threshold = 18;
    const Image8& photo = gallery.gray;
    const int width = photo.width(), height = photo.height();

    Image8 frame, mask(width, height);
    const Image8 one(width, height, 1, 1);
    ImageF everything = toFloat(photo), background = everything, difference(width, height),
           learned(width, height);
    for (int i = 0; i < frames; ++i) {
        frame = frameWithDisc(photo, i, frames);
        brighten(frame, i / 2);
        const ImageF now = toFloat(frame);
        OKP(okpiAbsDiff_32f_C1R, now.data(), now.step(), background.data(), background.step(),
            difference.data(), difference.step(), now.size());
        std::transform(difference.values().begin(), difference.values().end(), mask.values().begin(),
                       [=](float d) { return static_cast<uint8_t>(d < threshold ? 255 : 0); });
        OKP(okpiAddWeighted_8u32f_C1IR, frame.data(), frame.step(), everything.data(), everything.step(),
            frame.size(), weight);
        OKP(okpiAddWeighted_8u32f_C1IMR, frame.data(), frame.step(), mask.data(), mask.step(),
            background.data(), background.step(), frame.size(), weight);
        OKP(okpiAdd_8u32f_C1IMR, one.data(), one.step(), mask.data(), mask.step(), learned.data(),
            learned.step(), one.size());
    }

    ImageF scratch = background;
    const Call unmasked = OKP_TIMED("weight 0.15", okpiAddWeighted_8u32f_C1IR, frame.data(), frame.step(),
                                    scratch.data(), scratch.step(), frame.size(), weight);
    const Call masked =
        OKP_TIMED("weight 0.15", okpiAddWeighted_8u32f_C1IMR, frame.data(), frame.step(), mask.data(),
                  mask.step(), scratch.data(), scratch.step(), frame.size(), weight);
    const Call count = OKP_TIMED("source 1", okpiAdd_8u32f_C1IMR, one.data(), one.step(), mask.data(),
                                 mask.step(), scratch.data(), scratch.step(), one.size());
    Image8 withoutMask = toRgb(frame);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (mask.at(x, y) == 0) withoutMask.at(x, y, 0) = 255;
        }
    }

    const ImageF now = toFloat(frame);
    const Call compare = OKP_TIMED("", okpiAbsDiff_32f_C1R, now.data(), now.step(), background.data(),
                                   background.step(), scratch.data(), scratch.step(), now.size());

    Page& page = gallery.page;
    page.section(
        "Learning a background under a mask",
        "While a disc passes and daylight comes up, a running average learns the background. A mask leaves "
        "out the pixels that differ from what has been learned.");
    page.panel({"learning-frame",
                "Last of 60 frames; red pixels differ from the background by 18 or more and are not learned",
                withoutMask,
                {compare}});
    page.panel({"learning-everything",
                "Without the mask the disc leaves a trail",
                grayLevels(everything, 0, 255),
                {unmasked}});
    page.panel({"learning-background",
                "With the mask the background stays clean",
                grayLevels(background, 0, 255),
                {masked}});
    page.panel({"learning-count",
                "How often each pixel was learned, black for never",
                heatColors(learned, 0, frames),
                {count}});
}

void addMotionHistory(Gallery& gallery) {
    constexpr int frames = 32;
    constexpr float remembered = 20;
    const Image8& photo = gallery.gray;
    const int width = photo.width(), height = photo.height();

    Image8 before = frameWithDisc(photo, 0, frames), frame, silhouette(width, height);
    ImageF history(width, height);
    for (int i = 1; i < frames; ++i) {
        frame = frameWithDisc(photo, i, frames);
        OKP(okpiAbsDiff_8u_C1R, frame.data(), frame.step(), before.data(), before.step(), silhouette.data(),
            silhouette.step(), frame.size());
        for (uint8_t& level : silhouette.values()) level = level > 16 ? 255 : 0;
        OKP(okpiUpdateMotionHistory_8u32f_C1IR, silhouette.data(), silhouette.step(), history.data(),
            history.step(), frame.size(), static_cast<float>(i), remembered);
        before = frame;
    }
    ImageF scratch = history;
    const Call update =
        OKP_TIMED("timestamp 31, duration 20", okpiUpdateMotionHistory_8u32f_C1IR, silhouette.data(),
                  silhouette.step(), scratch.data(), scratch.step(), frame.size(), frames - 1.0f, remembered);

    Page& page = gallery.page;
    page.section(
        "Motion history",
        "The difference of consecutive frames is the silhouette of what moves; the history holds the time at "
        "which each pixel last moved, and forgets what is older than 20 frames.");
    page.panel({"history-frame", "Last of 32 frames", frame});
    page.panel({"history-silhouette", "Silhouette of the last step", silhouette});
    page.panel({"history-image",
                "Motion history: the brighter, the more recent",
                heatColors(history, frames - 1 - remembered, frames - 1),
                {update}});
}

}  // namespace

void addArithPanels(Gallery& gallery) {
    addFrameDifference(gallery);
    addRunningStatistics(gallery);
    addMaskedLearning(gallery);
    addMotionHistory(gallery);
}
