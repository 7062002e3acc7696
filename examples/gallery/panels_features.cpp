// Panels of features: edges at three pairs of thresholds.
#include "gallery.h"
#include "show.h"

#include <string>
#include <vector>

namespace {

void addEdges(Gallery& gallery) {
    constexpr int32_t sobel = 2;
    const Image8& gray = gallery.gray;
    int32_t bytes = 0;
    OKP(okpiCannyBorderGetSize, gray.size(), sobel, MaskSize3x3, DataType8u, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));

    gallery.page.section(
        "Edges",
        "Ridges of the gradient's magnitude, one pixel wide: kept where they exceed the high "
        "threshold or hang together with such a place above the low one.");
    const struct {
        const char* name;
        float low, high;
        const char* caption;
    } thresholds[] = {{"edges-low", 40, 100, "Low thresholds: texture, too"},
                      {"edges-middle", 100, 250, "Medium thresholds: outlines"},
                      {"edges-high", 200, 500, "High thresholds: the strongest outlines"}};
    for (const auto& t : thresholds) {
        Image8 edges(gray.width(), gray.height());
        const std::string parameters = "Sobel 3 × 3, replicated border, L2, " +
                                       std::to_string(static_cast<int>(t.low)) + " and " +
                                       std::to_string(static_cast<int>(t.high));
        const Call call = OKP_TIMED(parameters, okpiCannyBorder_8u_C1R, gray.data(), gray.step(),
                                    edges.data(), edges.step(), gray.size(), sobel, MaskSize3x3,
                                    BorderReplicate, 0, t.low, t.high, NormL2, buffer.data());
        gallery.page.panel({t.name, t.caption, edges, {call}});
    }
}

}  // namespace

void addFeaturePanels(Gallery& gallery) {
    addEdges(gallery);
}
