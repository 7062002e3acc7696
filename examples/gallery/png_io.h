// PNG files in and out, by libpng. All functions throw std::runtime_error when they cannot.
#pragma once

#include "image.h"

#include <string>
#include <vector>

// Any PNG, as 8-bit RGB; transparent pixels lie on white.
Image8 readPng(const std::string& path);

// An 8-bit image of one channel (gray) or three (RGB), as the bytes of a PNG file.
std::vector<uint8_t> encodePng(const Image8& image);
