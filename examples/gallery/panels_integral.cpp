// Panels of integral images: the local contrast that they make cheap.
#include "gallery.h"
#include "show.h"

#include <string>

void addIntegralPanels(Gallery& gallery) {
    const Image8& gray = gallery.gray;
    const int width = gray.width(), height = gray.height();
    ImageF sums(width + 1, height + 1);
    Image<double> squares(width + 1, height + 1);
    const Call integral =
        OKP_TIMED("8-bit to 32- and 64-bit floats", okpiSqrIntegral_8u32f64f_C1R, gray.data(), gray.step(),
                  sums.data(), sums.step(), squares.data(), squares.step(), gray.size(), 0.0F, 0.0);

    Page& page = gallery.page;
    page.section("Local contrast",
                 "The standard deviation of the gray levels in a window around every pixel. With integral "
                 "images a window takes eight reads, whatever its size.");
    for (const int side : {5, 15, 41}) {
        // Where the window lies inside the photograph.
        const RoiSize size{width - side + 1, height - side + 1};
        ImageF contrast(size.width, size.height);
        const PixelRect window{0, 0, side, side};
        const std::string name = std::to_string(side) + " x " + std::to_string(side);
        const Call deviation =
            OKP_TIMED("window " + name, okpiRectStdDev_32f_C1R, sums.data(), sums.step(), squares.data(),
                      squares.step(), contrast.data(), contrast.step(), size, window);
        std::vector<Call> calls{deviation};
        if (side == 5) calls.insert(calls.begin(), integral);
        page.panel({"contrast-" + std::to_string(side), "Windows of " + name + ", dark to bright for 0 to 60",
                    heatColors(contrast, 0, 60), calls});
    }
}
