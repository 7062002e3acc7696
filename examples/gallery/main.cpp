// okpcv_gallery PHOTO.png FOLDER: runs the operations on a photograph and writes the results as one web page.
#include "gallery.h"
#include "png_io.h"
#include "show.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <vector>

void checkStatus(const char* function, okpStatus status) {
    if (status < 0) throw std::runtime_error(function + (" returned " + std::to_string(status)));
}

Call timedCall(const char* function, const std::string& parameters, const std::function<void()>& work) {
    using Clock = std::chrono::steady_clock;
    using Micro = std::chrono::duration<double, std::micro>;
    constexpr size_t enough = 31, few = 3;
    constexpr std::chrono::milliseconds budget(100);

    work();  // brings code and data into the caches
    std::vector<double> times;
    const Clock::time_point start = Clock::now();
    while (times.size() < few || (times.size() < enough && Clock::now() - start < budget)) {
        const Clock::time_point before = Clock::now();
        work();
        times.push_back(Micro(Clock::now() - before).count());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return {function, parameters, *middle};
}

// Gives a photograph of any size one that panels can count on: no side longer than 640 pixels nor shorter
// than 160, which costs a very long strip its ends.
static Image8 fitted(const Image8& photo) {
    constexpr int longest = 640, shortest = 160;
    const int limit = longest / shortest * std::min(photo.width(), photo.height());
    const int width = std::min(photo.width(), limit), height = std::min(photo.height(), limit);
    const Image8 middle =
        crop(photo, (photo.width() - width) / 2, (photo.height() - height) / 2, width, height);

    const double shrink = double{longest} / std::max(width, height);
    const double grow = double{shortest} / std::min(width, height);
    const double scale = std::max(std::min(1.0, shrink), grow);
    return resize(middle, static_cast<int>(std::lround(width * scale)),
                  static_cast<int>(std::lround(height * scale)));
}

static std::string dimensions(const Image8& image) {
    return std::to_string(image.width()) + " × " + std::to_string(image.height());
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: okpcv_gallery PHOTO.png FOLDER\n");
        return 2;
    }
    try {
        const std::filesystem::path photoPath = argv[1], folder = argv[2];
        const Image8 photo = readPng(photoPath.string());
        std::filesystem::create_directories(folder);

        Gallery gallery{fitted(photo), {}, toGray(readPng(EXAMPLE_IMAGES "/coins.png")), Page(folder)};
        gallery.gray = toGray(gallery.color);
        addArithPanels(gallery);
        addDistancePanels(gallery);
        addStatsPanels(gallery);
        addIntegralPanels(gallery);
        addFilterPanels(gallery);
        addFeaturePanels(gallery);
        addSegmentPanels(gallery);
        addPyramidPanels(gallery);
        addGeometryPanels(gallery);
        addMorphPanels(gallery);

        std::string source = photoPath.filename().string() + ", " + dimensions(photo) + " pixels";
        if (dimensions(photo) != dimensions(gallery.color)) {
            source += ", shown and processed at " + dimensions(gallery.color);
        }
        const std::filesystem::path page =
            gallery.page.write("okpcv gallery",
                               {"Photograph: " + source + ".",
                                "Library: " + std::string(okpcvGetLibVersion()->name) + ", " +
                                    okpcvGetLibVersion()->version + ".",
                                "Times: the median of up to 31 calls on one core, after one "
                                "that does not count."},
                               gallery.color);
        std::printf("Wrote %s\n", page.c_str());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "okpcv_gallery: %s\n", error.what());
        return 1;
    }
    return 0;
}
