// Panels of pyramids: the Gaussian and the Laplacian pyramid of the photograph, and the photograph rebuilt.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr float kRate = 2;
constexpr int kLevels = 5;
constexpr int kKernelSize = 5;  // of the binomial kernel
// What a Laplacian level, whose values lie around zero, is shown at.
constexpr float kMiddle = 128;

// A pyramid of float images in three channels.
class Pyramid {
  public:
    explicit Pyramid(const Image8& photo) {
        const RoiSize size = photo.size();
        int32_t areaBytes = 0, bufferBytes = 0;
        OKP(okpiPyramidGetSize, &areaBytes, &bufferBytes, kLevels, size, kRate);
        area_.resize(static_cast<size_t>(areaBytes));
        std::vector<uint8_t> buffer(static_cast<size_t>(bufferBytes));
        PyramidRecord* record = nullptr;
        OKP(okpiPyramidInit, &record, kLevels, size, kRate, area_.data(), buffer.data());
        for (int k = 0; k <= record->level; ++k) {
            levels_.emplace_back(record->pRoi[k].width, record->pRoi[k].height, 3);
        }
        std::copy(photo.values().begin(), photo.values().end(), levels_[0].values().begin());

        // Specs and buffers for the largest step serve the others.
        int32_t specBytes = 0;
        OKP(okpiPyramidLayerDownGetSize_32f_C3R, size, kRate, kKernelSize, &specBytes, &bufferBytes);
        downSpec_.resize(static_cast<size_t>(specBytes));
        downBuffer_.resize(static_cast<size_t>(bufferBytes));
        OKP(okpiPyramidLayerDownInit_32f_C3R, size, kRate, nullptr, kKernelSize, downSpec_.data());
        const RoiSize small = levels_.size() > 1 ? levels_[1].size() : size;
        OKP(okpiPyramidLayerUpGetSize_32f_C3R, small, kRate, kKernelSize, &specBytes, &bufferBytes);
        upSpec_.resize(static_cast<size_t>(specBytes));
        upBuffer_.resize(static_cast<size_t>(bufferBytes));
        OKP(okpiPyramidLayerUpInit_32f_C3R, small, kRate, nullptr, kKernelSize, upSpec_.data());
    }

    std::vector<ImageF>& levels() { return levels_; }

    void reduce(const ImageF& from, ImageF& to) {
        OKP(okpiPyramidLayerDown_32f_C3R, from.data(), from.step(), from.size(), to.data(), to.step(),
            to.size(), downSpec_.data(), downBuffer_.data());
    }
    void expand(const ImageF& from, ImageF& to) {
        OKP(okpiPyramidLayerUp_32f_C3R, from.data(), from.step(), from.size(), to.data(), to.step(),
            to.size(), upSpec_.data(), upBuffer_.data());
    }

  private:
    std::vector<uint8_t> area_, downSpec_, downBuffer_, upSpec_, upBuffer_;
    std::vector<ImageF> levels_;
};

// Level 0 at the left, the others beside it from the top down.
Image8 mosaic(const std::vector<ImageF>& levels) {
    const int beside = levels.size() > 1 ? levels[1].width() : 0;
    int height = 0;
    for (size_t k = 1; k < levels.size(); ++k) height += levels[k].height();
    Image8 picture(levels[0].width() + beside, std::max(height, levels[0].height()), 3, 255);
    int left = 0, top = 0;
    for (const ImageF& level : levels) {
        for (int y = 0; y < level.height(); ++y) {
            for (int x = 0; x < level.width(); ++x) {
                for (int c = 0; c < 3; ++c) {
                    const float value = std::clamp(level.at(x, y, c), 0.0F, 255.0F);
                    picture.at(left + x, top + y, c) = static_cast<uint8_t>(std::lround(value));
                }
            }
        }
        if (left == 0) {
            left = level.width();
        } else {
            top += level.height();
        }
    }
    return picture;
}

}  // namespace

void addPyramidPanels(Gallery& gallery) {
    Pyramid pyramid(gallery.color);
    std::vector<ImageF>& gauss = pyramid.levels();
    const int last = static_cast<int>(gauss.size()) - 1;

    const Call down = timedCall("okpiPyramidLayerDown_32f_C3R", std::to_string(last) + " levels", [&] {
        for (int k = 0; k < last; ++k) pyramid.reduce(gauss[k], gauss[k + 1]);
    });
    std::vector<ImageF> laplace = gauss;
    const Call up = timedCall("okpiPyramidLayerUp_32f_C3R", std::to_string(last) + " levels", [&] {
        for (int k = 0; k < last; ++k) pyramid.expand(gauss[k + 1], laplace[k]);
    });
    std::vector<ImageF> shown = gauss;
    for (int k = 0; k < last; ++k) {
        for (size_t i = 0; i < gauss[k].values().size(); ++i) {
            laplace[k].values()[i] = gauss[k].values()[i] - laplace[k].values()[i];
            shown[k].values()[i] = kMiddle + 2 * laplace[k].values()[i];
        }
    }

    // From the last level up: the prediction plus what it lacked.
    ImageF rebuilt = laplace[last];
    for (int k = last - 1; k >= 0; --k) {
        ImageF predicted(laplace[k].width(), laplace[k].height(), 3);
        pyramid.expand(rebuilt, predicted);
        for (size_t i = 0; i < predicted.values().size(); ++i)
            predicted.values()[i] += laplace[k].values()[i];
        rebuilt = predicted;
    }
    float error = 0;
    for (size_t i = 0; i < rebuilt.values().size(); ++i) {
        error = std::max(error, std::abs(rebuilt.values()[i] - gauss[0].values()[i]));
    }

    Page& page = gallery.page;
    page.section("Pyramids",
                 "Every level is the one before it, smoothed and with half the width and height.");
    page.panel({"pyramid-gaussian", "Gaussian pyramid", mosaic(gauss), {down}});
    page.panel(
        {"pyramid-laplacian",
         "Laplacian pyramid: what each level has that the next smaller one, enlarged, lacks (doubled, on "
         "gray); the smallest level itself",
         mosaic(shown),
         {up}});
    page.panel({"pyramid-rebuilt",
                "The photograph rebuilt from the Laplacian pyramid; no value is off by more than " +
                    std::to_string(error) + " of 255",
                mosaic({rebuilt})});
}
