// PNG files in and out, by libpng's simplified interface.
#include "png_io.h"

#include <png.h>

#include <stdexcept>

Image8 readPng(const std::string& path) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path.c_str())) {
        throw std::runtime_error(path + ": " + png.message);
    }
    png.format = PNG_FORMAT_RGB;
    Image8 image(static_cast<int>(png.width), static_cast<int>(png.height), 3);
    const png_color white{255, 255, 255};
    if (!png_image_finish_read(&png, &white, image.data(), 0, nullptr)) {
        throw std::runtime_error(path + ": " + png.message);
    }
    return image;
}

std::vector<uint8_t> encodePng(const Image8& image) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width());
    png.height = static_cast<png_uint_32>(image.height());
    png.format = image.channels() == 1 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;

    std::vector<uint8_t> bytes(PNG_IMAGE_PNG_SIZE_MAX(png));
    png_alloc_size_t size = bytes.size();
    if (!png_image_write_to_memory(&png, bytes.data(), &size, 0, image.data(), 0, nullptr)) {
        throw std::runtime_error(std::string("writing a PNG: ") + png.message);
    }
    bytes.resize(size);
    return bytes;
}
