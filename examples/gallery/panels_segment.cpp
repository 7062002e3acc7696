// Panels of segmentation: flood fills by each rule, coins labelled and counted, boundaries of segments, a
// disparity map without its speckles.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

using Image16 = Image<uint16_t>;

// Times calls that change their input, each on a copy of its own; `image` becomes what one of them makes of
// it.
template <class T, class Work>
Call timedInPlace(const char* function, const std::string& parameters, Image<T>& image, const Work& work) {
    constexpr size_t calls = 32;  // as many as timedCall makes at most
    std::vector<Image<T>> copies(calls, image);
    size_t next = 0;
    const Call call = timedCall(function, parameters, [&] { work(copies[next++ % calls]); });
    image = copies[0];
    return call;
}

#define TIMED_IN_PLACE(parameters, image, function, ...) \
    timedInPlace(#function, parameters, image,           \
                 [&](auto& copy) { OKP(function, copy.data(), copy.step(), copy.size(), __VA_ARGS__); })

Image16 wide(const Image8& image) {
    Image16 result(image.width(), image.height());
    std::copy(image.values().begin(), image.values().end(), result.values().begin());
    return result;
}

// Means over squares of 2 * radius + 1 pixels, cut off at the image's edges.
Image8 smoothed(const Image8& image, int radius) {
    Image8 result(image.width(), image.height());
    for (int y = 0; y < image.height(); ++y) {
        const int top = std::max(y - radius, 0), bottom = std::min(y + radius, image.height() - 1);
        for (int x = 0; x < image.width(); ++x) {
            const int left = std::max(x - radius, 0), right = std::min(x + radius, image.width() - 1);
            int sum = 0;
            for (int v = top; v <= bottom; ++v) {
                for (int u = left; u <= right; ++u) sum += image.at(u, v);
            }
            result.at(x, y) = static_cast<uint8_t>(sum / ((bottom - top + 1) * (right - left + 1)));
        }
    }
    return result;
}

// The middle of the square whose levels are closest together: something smooth, like a sky.
PixelPoint smoothestPlace(const Image8& image) {
    constexpr int side = 24;
    PixelPoint best{image.width() / 2, image.height() / 2};
    int least = 256;
    for (int y = 0; y + side <= image.height(); y += side / 2) {
        for (int x = 0; x + side <= image.width(); x += side / 2) {
            const Image8 square = crop(image, x, y, side, side);
            const auto [low, high] = std::minmax_element(square.values().begin(), square.values().end());
            if (*high - *low >= least) continue;
            least = *high - *low;
            best = {x + side / 2, y + side / 2};
        }
    }
    return best;
}

// A colour for every label; neighbouring labels differ much.
std::array<uint8_t, 3> labelColor(int label) {
    const double hue = std::fmod(label * 0.381966, 1.0) * 6;
    const auto ramp = [hue](double shift) {
        const double distance = std::abs(std::fmod(hue + shift, 6.0) - 3) - 1;
        return static_cast<uint8_t>(std::lround(70 + 170 * std::clamp(distance, 0.0, 1.0)));
    };
    return {ramp(0), ramp(4), ramp(2)};
}

// Paints red what a fill has given the value, and outlines its rectangle.
Image8 filledRegion(const Image8& gray, const Image16& filled, uint16_t value, const ConnectedComp& region,
                    PixelPoint seed) {
    Image8 picture = toRgb(gray);
    const auto paint = [&](int x, int y, int red, int green, int blue) {
        if (x < 0 || y < 0 || x >= picture.width() || y >= picture.height()) return;
        picture.at(x, y, 0) = static_cast<uint8_t>(red);
        picture.at(x, y, 1) = static_cast<uint8_t>(green);
        picture.at(x, y, 2) = static_cast<uint8_t>(blue);
    };
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            if (filled.at(x, y) == value)
                paint(x, y, 128 + gray.at(x, y) / 2, gray.at(x, y) / 3, gray.at(x, y) / 3);
        }
    }
    const PixelRect& r = region.rect;
    for (int x = r.x; x < r.x + r.width; ++x) {
        paint(x, r.y, 255, 220, 0);
        paint(x, r.y + r.height - 1, 255, 220, 0);
    }
    for (int y = r.y; y < r.y + r.height; ++y) {
        paint(r.x, y, 255, 220, 0);
        paint(r.x + r.width - 1, y, 255, 220, 0);
    }
    for (int i = -6; i <= 6; ++i) {
        paint(seed.x + i, seed.y, 255, 255, 255);
        paint(seed.x, seed.y + i, 255, 255, 255);
    }
    return picture;
}

void addFloodFill(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    const PixelPoint seed = smoothestPlace(gray);
    constexpr uint16_t filled = 65535;  // no pixel of the photograph has it
    const auto caption = [&](const std::string& rule, const ConnectedComp& region) {
        const int percent = static_cast<int>(std::lround(100 * region.area / gray.width() / gray.height()));
        return rule + ": " + std::to_string(static_cast<int>(region.area)) + " pixels, " +
               std::to_string(percent) + " % of the photograph";
    };
    int32_t bytes = 0, gradientBytes = 0;
    OKP(okpiFloodFillGetSize, gray.size(), &bytes);
    OKP(okpiFloodFillGetSize_Grad, gray.size(), &gradientBytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(std::max(bytes, gradientBytes)));
    ConnectedComp plainRegion{}, rangeRegion{}, gradientRegion{};

    // Equal values are rare in a photograph: its levels are reduced to eight.
    Image8 coarse = gray;
    for (uint8_t& level : coarse.values()) level = static_cast<uint8_t>(level / 32 * 32 + 16);
    Image16 plain = wide(coarse), range = wide(gray), gradient = range;
    const Call plainCall =
        TIMED_IN_PLACE("", plain, okpiFloodFill_8Con_16u_C1IR, seed, filled, &plainRegion, buffer.data());
    const Call rangeCall = TIMED_IN_PLACE("deltas 12", range, okpiFloodFill_Range8Con_16u_C1IR, seed, filled,
                                          25, 25, &rangeRegion, buffer.data());
    const Call gradientCall = TIMED_IN_PLACE("deltas 2", gradient, okpiFloodFill_Grad4Con_16u_C1IR, seed,
                                             filled, 2, 2, &gradientRegion, buffer.data());

    const uint8_t yellow[] = {255, 205, 40}, delta[] = {30, 30, 30};
    ConnectedComp colorRegion{};
    Image8 color = gallery.color;
    const Call colorCall = TIMED_IN_PLACE("deltas 30", color, okpiFloodFill_Range4Con_8u_C3IR, seed, yellow,
                                          delta, delta, &colorRegion, buffer.data());

    Page& page = gallery.page;
    page.section(
        "Flood fill",
        "The white cross marks a smooth place of the photograph. From there, three rules fill the regions "
        "that are painted red; the yellow rectangles are the bounding boxes that the functions report.");
    page.panel({"fill-plain",
                caption("Equal to the seed, of eight gray levels", plainRegion),
                filledRegion(coarse, plain, filled, plainRegion, seed),
                {plainCall}});
    page.panel({"fill-range",
                caption("Within 12 levels of the seed", rangeRegion),
                filledRegion(gray, range, filled, rangeRegion, seed),
                {rangeCall}});
    page.panel({"fill-gradient",
                caption("In steps of at most 2 levels", gradientRegion),
                filledRegion(gray, gradient, filled, gradientRegion, seed),
                {gradientCall}});
    page.panel(
        {"fill-color", caption("All three channels within 30 levels", colorRegion), color, {colorCall}});
}

void addCoins(Gallery& gallery) {
    const Image8& coins = gallery.coins;
    const RoiSize size = coins.size();
    constexpr int smallest = 300;  // pixels of a coin
    Image8 bright(coins.width(), coins.height());
    std::transform(coins.values().begin(), coins.values().end(), bright.values().begin(),
                   [](uint8_t level) { return static_cast<uint8_t>(level > 120 ? 255 : 0); });

    // The light ground at the upper edge, small bright spots, then holes in the coins.
    Image8 whole = bright;
    int32_t bytes = 0;
    OKP(okpiFloodFillGetSize, size, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    ConnectedComp ground{};
    const Call filling =
        TIMED_IN_PLACE("", whole, okpiFloodFill_8Con_8u_C1IR, PixelPoint{100, 0}, 0, &ground, buffer.data());
    OKP(okpiMarkSpecklesGetBufferSize, size, DataType8u, 1, &bytes);
    buffer.resize(static_cast<size_t>(bytes));
    OKP(okpiMarkSpeckles_8u_C1IR, whole.data(), whole.step(), size, 0, smallest, 0, NormInf, buffer.data());
    const Call holes = TIMED_IN_PLACE("at most 300 pixels", whole, okpiMarkSpeckles_8u_C1IR, 255, smallest, 0,
                                      NormInf, buffer.data());

    OKP(okpiLabelMarkersGetBufferSize_8u32s_C1R, size, &bytes);
    buffer.resize(static_cast<size_t>(bytes));
    Image<int32_t> labels(coins.width(), coins.height());
    int32_t number = 0;
    const Call labelling = OKP_TIMED("norm 0", okpiLabelMarkers_8u32s_C1R, whole.data(), whole.step(),
                                     labels.data(), labels.step(), size, 1, 1000, 0, &number, buffer.data());

    Image8 colored = toRgb(coins);
    for (int y = 0; y < coins.height(); ++y) {
        for (int x = 0; x < coins.width(); ++x) {
            if (labels.at(x, y) == 0) continue;
            const auto tint = labelColor(labels.at(x, y));
            for (int c = 0; c < 3; ++c)
                colored.at(x, y, c) =
                    static_cast<uint8_t>(tint[static_cast<size_t>(c)] * coins.at(x, y) / 255);
        }
    }
    Page& page = gallery.page;
    page.section("Counting coins",
                 "Pixels brighter than 120 are marked. The light ground is filled from the upper edge, small "
                 "spots and holes are removed, and the connected groups numbered.");
    page.panel({"coins-marked", "Brighter than 120", bright});
    page.panel({"coins-whole",
                "Without the ground and spots and holes of at most 300 pixels",
                whole,
                {filling, holes}});
    page.panel({"coins-labelled", std::to_string(number) + " groups, a colour each", colored, {labelling}});
}

void addBoundaries(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    Image8 segments = smoothed(gray, 4);
    for (uint8_t& level : segments.values()) level = static_cast<uint8_t>(1 + level / 43);
    Image8 bounded = segments;
    const Call call = TIMED_IN_PLACE("norm 1", bounded, okpiBoundSegments_8u_C1IR, 0, 1);

    Image8 picture = toRgb(gray);
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            if (bounded.at(x, y) != 0) continue;
            picture.at(x, y, 0) = 255;
            picture.at(x, y, 1) = 60;
            picture.at(x, y, 2) = 60;
        }
    }
    Page& page = gallery.page;
    page.section("Segment boundaries", "Six gray levels of the smoothed photograph are its segments.");
    page.panel({"boundaries-segments", "Segments", grayLevels(toFloat(segments), 1, 6)});
    page.panel({"boundaries-drawn", "Their boundaries on the photograph", picture, {call}});
}

void addSpeckles(Gallery& gallery) {
    // A scene of two slopes and the photograph's shapes, in sixteenths of a pixel of disparity.
    const Image8& gray = gallery.gray;
    Image<int16_t> noisy(gray.width(), gray.height());
    std::mt19937 random(3);
    const Image8 shapes = smoothed(gray, 6);
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            noisy.at(x, y) = static_cast<int16_t>(160 + y / 2 + shapes.at(x, y) / 64 * 48 +
                                                  static_cast<int>(random() % 5));
        }
    }
    for (int i = 0; i < gray.width() * gray.height() / 400; ++i) {
        const int size = 1 + static_cast<int>(random() % 5);
        const int left = static_cast<int>(random() % static_cast<unsigned>(gray.width() - size));
        const int top = static_cast<int>(random() % static_cast<unsigned>(gray.height() - size));
        const auto wrong = static_cast<int16_t>(random() % 600);
        for (int y = top; y < top + size; ++y) {
            for (int x = left; x < left + size; ++x) noisy.at(x, y) = wrong;
        }
    }
    int32_t bytes = 0;
    OKP(okpiMarkSpecklesGetBufferSize, gray.size(), DataType16s, 1, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    Image<int16_t> clean = noisy;
    const Call call = TIMED_IN_PLACE("at most 100 pixels, difference 8", clean, okpiMarkSpeckles_16s_C1IR, -1,
                                     100, 8, NormInf, buffer.data());

    const auto picture = [](const Image<int16_t>& disparities) {
        ImageF values(disparities.width(), disparities.height());
        std::copy(disparities.values().begin(), disparities.values().end(), values.values().begin());
        return heatColors(values, 0, 600);
    };
    Page& page = gallery.page;
    page.section(
        "Speckles",
        "What a stereo matcher might return: smooth surfaces, and small patches of wrong disparities.");
    page.panel({"speckles-noisy", "Disparities, dark to bright for 0 to 600", picture(noisy)});
    page.panel(
        {"speckles-clean", "Regions of at most 100 pixels are marked, shown black", picture(clean), {call}});
}

}  // namespace

void addSegmentPanels(Gallery& gallery) {
    addFloodFill(gallery);
    addCoins(gallery);
    addBoundaries(gallery);
    addSpeckles(gallery);
}
