// Panels of morphology: coins grown and shrunk by a disc, a thresholded picture in bits, outlines.
#include "gallery.h"
#include "show.h"

#include <string>
#include <vector>

namespace {

struct Disc {
    RoiSize size;
    std::vector<uint8_t> elements;

    explicit Disc(int n) : size{n, n} {
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < n; ++i) {
                const int x = 2 * i - n + 1, y = 2 * j - n + 1;
                elements.push_back(x * x + y * y <= n * n ? 1 : 0);
            }
        }
    }
};

// The two areas that an operation needs besides its images.
struct Areas {
    std::vector<uint8_t> spec, buffer;

    MorphSpec* specPointer() { return reinterpret_cast<MorphSpec*>(spec.data()); }
};

Areas prepare(RoiSize size, const Disc& disc) {
    int32_t specSize = 0, bufferSize = 0;
    OKP(okpiMorphologyBorderGetSize_8u_C1R, size, disc.size, &specSize, &bufferSize);
    Areas areas{std::vector<uint8_t>(specSize), std::vector<uint8_t>(bufferSize)};
    OKP(okpiMorphologyBorderInit_8u_C1R, size, disc.elements.data(), disc.size, areas.specPointer(),
        areas.buffer.data());
    return areas;
}

void addCoins(Gallery& gallery) {
    const Image8& coins = gallery.coins;
    const RoiSize size = coins.size();
    const Disc disc(15), small(3);
    Image8 dilated(size.width, size.height), eroded(size.width, size.height),
        outline(size.width, size.height);

    Areas areas = prepare(size, disc);
    const Call dilation =
        OKP_TIMED("disc of 15", okpiDilateBorder_8u_C1R, coins.data(), coins.step(), dilated.data(),
                  dilated.step(), size, BorderReplicate, 0, areas.specPointer(), areas.buffer.data());
    const Call erosion =
        OKP_TIMED("disc of 15", okpiErodeBorder_8u_C1R, coins.data(), coins.step(), eroded.data(),
                  eroded.step(), size, BorderReplicate, 0, areas.specPointer(), areas.buffer.data());
    Page& page = gallery.page;
    page.section(
        "Dilation and erosion",
        "The brightest and the darkest pixel under a disc. Bright objects grow and shrink by its radius.");
    page.panel({"dilate-disc", "Dilated by a disc of 15 x 15", dilated, {dilation}});
    page.panel({"erode-disc", "Eroded by the same disc", eroded, {erosion}});

    areas = prepare(size, small);
    OKP(okpiDilateBorder_8u_C1R, coins.data(), coins.step(), dilated.data(), dilated.step(), size,
        BorderReplicate, 0, areas.specPointer(), areas.buffer.data());
    OKP(okpiErodeBorder_8u_C1R, coins.data(), coins.step(), eroded.data(), eroded.step(), size,
        BorderReplicate, 0, areas.specPointer(), areas.buffer.data());
    const Call difference = OKP_TIMED("", okpiAbsDiff_8u_C1R, dilated.data(), dilated.step(), eroded.data(),
                                      eroded.step(), outline.data(), outline.step(), size);
    page.panel({"morph-outline",
                "Outlines: the dilation by a disc of 3 x 3 minus the erosion",
                heatColors(toFloat(outline), 0, 120),
                {difference}});
}

// One bit per pixel, the leftmost pixel of a byte in its most significant bit.
Image8 packed(const Image8& gray, int threshold) {
    Image8 bits((gray.width() + 7) / 8, gray.height());
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            if (gray.at(x, y) >= threshold) bits.at(x / 8, y) |= static_cast<uint8_t>(0x80 >> x % 8);
        }
    }
    return bits;
}
Image8 unpacked(const Image8& bits, RoiSize size) {
    Image8 gray(size.width, size.height);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) gray.at(x, y) = bits.at(x / 8, y) >> (7 - x % 8) & 1 ? 255 : 0;
    }
    return gray;
}

void addBits(Gallery& gallery) {
    const RoiSize size = gallery.coins.size();
    const Disc disc(7);
    const Image8 bits = packed(gallery.coins, 120);
    Image8 grown(bits.width(), bits.height()), closed(bits.width(), bits.height());
    int32_t specSize = 0, bufferSize = 0;
    OKP(okpiMorphologyBorderGetSize_1u_C1R, size, disc.size, &specSize, &bufferSize);
    Areas areas{std::vector<uint8_t>(specSize), std::vector<uint8_t>(bufferSize)};
    OKP(okpiMorphologyBorderInit_1u_C1R, size, disc.elements.data(), disc.size, areas.specPointer(),
        areas.buffer.data());
    const Call dilation =
        OKP_TIMED("disc of 7", okpiDilateBorder_1u_C1R, bits.data(), bits.step(), 0, grown.data(),
                  grown.step(), 0, size, BorderDefault, 0, areas.specPointer(), areas.buffer.data());
    const Call erosion =
        OKP_TIMED("disc of 7", okpiErodeBorder_1u_C1R, grown.data(), grown.step(), 0, closed.data(),
                  closed.step(), 0, size, BorderDefault, 0, areas.specPointer(), areas.buffer.data());
    Page& page = gallery.page;
    page.section("Morphology of bits",
                 "A thresholded picture, eight pixels in a byte: one operation on a word "
                 "works on all of its pixels.");
    page.panel({"bits-threshold", "Coins brighter than 120", unpacked(bits, size)});
    page.panel({"bits-dilate", "Dilated by a disc of 7 x 7", unpacked(grown, size), {dilation}});
    page.panel({"bits-close", "Eroded again: the holes are closed", unpacked(closed, size), {erosion}});
}

}  // namespace

void addMorphPanels(Gallery& gallery) {
    addCoins(gallery);
    addBits(gallery);
}
