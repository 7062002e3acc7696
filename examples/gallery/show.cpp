// How a result becomes a picture: sizes, gray levels, colours.
#include "show.h"

#include <algorithm>
#include <cmath>

Image8 crop(const Image8& image, int x, int y, int width, int height) {
    Image8 result(width, height, image.channels());
    for (int row = 0; row < height; ++row) {
        const uint8_t* from = &image.at(x, y + row);
        std::copy(from, from + result.step(), &result.at(0, row));
    }
    return result;
}

Image8 resize(const Image8& image, int width, int height) {
    // The source pixels that pixel i of count covers; at least one.
    const auto begin = [](int i, int count, int size) { return static_cast<int>(int64_t{i} * size / count); };
    const auto end = [&](int i, int count, int size) {
        return std::max(begin(i + 1, count, size), begin(i, count, size) + 1);
    };
    Image8 result(width, height, image.channels());
    for (int y = 0; y < height; ++y) {
        const int top = begin(y, height, image.height()), bottom = end(y, height, image.height());
        for (int x = 0; x < width; ++x) {
            const int left = begin(x, width, image.width()), right = end(x, width, image.width());
            const int64_t count = int64_t{right - left} * (bottom - top);
            for (int c = 0; c < image.channels(); ++c) {
                int64_t sum = count / 2;
                for (int v = top; v < bottom; ++v) {
                    for (int u = left; u < right; ++u) sum += image.at(u, v, c);
                }
                result.at(x, y, c) = static_cast<uint8_t>(sum / count);
            }
        }
    }
    return result;
}

Image8 toGray(const Image8& rgb) {
    Image8 gray(rgb.width(), rgb.height());
    const uint8_t* from = rgb.data();
    for (uint8_t& level : gray.values()) {
        level = static_cast<uint8_t>((77 * from[0] + 150 * from[1] + 29 * from[2] + 128) / 256);
        from += 3;
    }
    return gray;
}

Image8 toRgb(const Image8& gray) {
    Image8 rgb(gray.width(), gray.height(), 3);
    uint8_t* to = rgb.data();
    for (const uint8_t level : gray.values()) to = std::fill_n(to, 3, level);
    return rgb;
}

ImageF toFloat(const Image8& image) {
    ImageF values(image.width(), image.height(), image.channels());
    std::copy(image.values().begin(), image.values().end(), values.values().begin());
    return values;
}

Image8 grayLevels(const ImageF& values, float low, float high) {
    Image8 levels(values.width(), values.height(), values.channels());
    std::transform(values.values().begin(), values.values().end(), levels.values().begin(), [=](float value) {
        return static_cast<uint8_t>(std::lround(255 * std::clamp((value - low) / (high - low), 0.0f, 1.0f)));
    });
    return levels;
}

Image8 heatColors(const ImageF& values, float low, float high) {
    static constexpr int stops[][3] = {
        {0, 0, 0}, {87, 16, 110}, {188, 55, 84}, {249, 142, 9}, {252, 255, 164}};
    static constexpr int spacing = 64;
    Image8 colors(values.width(), values.height(), 3);
    uint8_t* to = colors.data();
    const Image8 levels = grayLevels(values, low, high);
    for (const uint8_t level : levels.values()) {
        const int stop = level / spacing, way = level % spacing;
        for (int c = 0; c < 3; ++c) {
            *to++ =
                static_cast<uint8_t>((stops[stop][c] * (spacing - way) + stops[stop + 1][c] * way) / spacing);
        }
    }
    return colors;
}
