// How a result becomes a picture: sizes, gray levels, colours.
#pragma once

#include "image.h"

Image8 crop(const Image8& image, int x, int y, int width, int height);

// Every pixel is the mean of the source pixels that it covers, or the nearest one where the picture grows.
Image8 resize(const Image8& image, int width, int height);

// Gray levels of an RGB image.
Image8 toGray(const Image8& rgb);

Image8 toRgb(const Image8& gray);
ImageF toFloat(const Image8& image);

// low becomes black and high white.
Image8 grayLevels(const ImageF& values, float low, float high);

// low becomes black, high a light yellow, over violet, red and orange between them.
Image8 heatColors(const ImageF& values, float low, float high);
