// Reads the photograph by libpng's simplified interface.
#include "support/photograph.h"

#include <png.h>

#include <stdexcept>

namespace bench {
namespace {

Image<uint8_t> readGray(const char* path) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path)) throw std::runtime_error(png.message);
    png.format = PNG_FORMAT_GRAY;
    Image<uint8_t> image({static_cast<int32_t>(png.width), static_cast<int32_t>(png.height)});
    if (!png_image_finish_read(&png, nullptr, image.data(), image.step(), nullptr)) {
        throw std::runtime_error(png.message);
    }
    return image;
}

// The place of a row of `count` pixels that is repeated, every second time backwards.
int mirrored(int place, int count) {
    const int rest = place % (2 * count);
    return rest < count ? rest : 2 * count - 1 - rest;
}

}  // namespace

Image<uint8_t> photograph(RoiSize size) {
    const Image<uint8_t> original = readGray(OKPCV_BENCH_PHOTOGRAPH);
    Image<uint8_t> image(size);
    for (int y = 0; y < size.height; ++y) {
        const uint8_t* row = original.row(mirrored(y, original.size().height));
        for (int x = 0; x < size.width; ++x) *image.at(x, y) = row[mirrored(x, original.size().width)];
    }
    return image;
}

}  // namespace bench
