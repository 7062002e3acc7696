// Counts coins on an unevenly lit table, by the C++ face of the library. Opening by a mask that is larger
// than any coin leaves the table; what differs from it much is coin. Closing fills the coins' dark reliefs,
// opening removes specks, and every connected group that is left is a coin.
#include <okpcv.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <vector>

#include "gallery/png_io.h"

namespace {

using okpcv::ImageView;
using okpcv::Morphology;

void countCoins(const char* path) {
    const Image8 photo = readPng(path);
    const RoiSize size = photo.size();
    std::vector<uint8_t> gray(photo.values().size() / 3), table(gray.size()), work(gray.size());
    for (size_t i = 0; i < gray.size(); ++i) gray[i] = photo.values()[3 * i];

    auto large = Morphology<uint8_t>::rectangle(size, {75, 75}).orThrow();
    auto small = Morphology<uint8_t>::rectangle(size, {5, 5}).orThrow();
    const auto open = [&](Morphology<uint8_t>& mask, ImageView<uint8_t> image, ImageView<uint8_t> other) {
        mask.erode(image, other).orThrow();
        mask.dilate(other, image).orThrow();
    };
    const auto close = [&](Morphology<uint8_t>& mask, ImageView<uint8_t> image, ImageView<uint8_t> other) {
        mask.dilate(image, other).orThrow();
        mask.erode(other, image).orThrow();
    };
    const ImageView<uint8_t> coins(gray, size), background(table, size), scratch(work, size);

    std::ranges::copy(gray, table.begin());
    open(large, background, scratch);
    okpcv::absDiff(coins, background, coins).orThrow();
    for (uint8_t& pixel : gray) pixel = pixel > 70 ? 255 : 0;
    close(small, coins, scratch);
    open(small, coins, scratch);

    std::vector<int32_t> labels(gray.size());
    auto label = okpcv::Labeller::create(size).orThrow();
    const int32_t count = label(coins, ImageView<int32_t>(labels, size)).orThrow();
    std::printf("%d coins\n", static_cast<int>(count));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        countCoins(argc > 1 ? argv[1] : EXAMPLE_IMAGES "/coins.png");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
