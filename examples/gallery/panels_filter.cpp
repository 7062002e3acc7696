// Panels of linear filters: what lies beyond an image's edges.
#include "gallery.h"
#include "show.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

// Pixels beyond an edge that are shown.
constexpr int kReach = 24;

// A region of a picture with a frame of kReach pixels around it, as a border sees them. A kernel whose only
// coefficient stands at one end moves the picture, and so brings its surroundings into the region: nine
// calls, each moved by another offset, show the region and the frame's sides and corners.
Image8 framed(const Image8& rgb, int left, int top, RoiSize size, BorderKind border,
              std::vector<Call>& calls) {
    Image8 result(size.width + 2 * kReach, size.height + 2 * kReach, 3);
    const int length = 2 * kReach + 1;
    const RoiSize kernelSize{length, length};
    int32_t specBytes = 0, bufferBytes = 0;
    OKP(okpiFilterSeparableGetSpecSize, kernelSize, DataType16s, 3, &specBytes);
    OKP(okpiFilterSeparableGetBufferSize, size, kernelSize, DataType8u, DataType16s, 3, &bufferBytes);
    std::vector<uint8_t> spec(static_cast<size_t>(specBytes)), buffer(static_cast<size_t>(bufferBytes));
    const uint8_t orange[] = {240, 140, 40};

    for (const int down : {-kReach, 0, kReach}) {
        for (const int right : {-kReach, 0, kReach}) {
            std::vector<int16_t> row(length), column(length);
            row[static_cast<size_t>(kReach + right)] = 1;
            column[static_cast<size_t>(kReach + down)] = 1;
            OKP(okpiFilterSeparableInit_16s, row.data(), column.data(), kernelSize, 1, 0, DataType8u, 3,
                spec.data());
            Image8 moved(size.width, size.height, 3);
            const auto filter = [&] {
                OKP(okpiFilterSeparable_8u_C3R, &rgb.at(left, top), rgb.step(), moved.data(), moved.step(),
                    size, border, orange, spec.data(), buffer.data());
            };
            filter();
            if (down == 0 && right == 0) {
                calls.push_back(timedCall("okpiFilterSeparable_8u_C3R",
                                          std::to_string(length) + " x " + std::to_string(length), filter));
            }
            for (int y = 0; y < size.height; ++y) {
                const auto first = moved.values().begin() + static_cast<ptrdiff_t>(y) * size.width * 3;
                std::copy(first, first + size.width * 3, &result.at(kReach + right, kReach + down + y));
            }
        }
    }
    return result;
}

void addBorders(Gallery& gallery) {
    // A part of a small copy of the photograph, so that there is something around it in memory.
    const Image8 small = resize(gallery.color, 160, 160 * gallery.color.height() / gallery.color.width());
    const RoiSize region{small.width() - 2 * kReach, small.height() - 2 * kReach};
    const struct {
        const char* name;
        const char* caption;
        BorderKind kind;
    } borders[] = {
        {"border-replicate", "BorderReplicate: the edge pixels go on", BorderReplicate},
        {"border-mirror", "BorderMirror: reflected about the edge pixels", BorderMirror},
        {"border-constant", "BorderConstant: a value that the caller gives", BorderConstant},
        {"border-in-memory", "BorderInMemory: what the region is a part of", BorderInMemory},
        {"border-mixed", "BorderMirror with the left side and the top in memory",
         BorderMirror | BorderInMemLeft | BorderInMemTop},
    };
    Page& page = gallery.page;
    page.section("Borders", "What neighbourhood operations see beyond the edges of a region.");
    for (const auto& border : borders) {
        std::vector<Call> calls;
        const Image8 picture = framed(small, kReach, kReach, region, border.kind, calls);
        page.panel(
            {border.name, border.caption, resize(picture, picture.width() * 2, picture.height() * 2), calls});
    }
}

}  // namespace

void addFilterPanels(Gallery& gallery) {
    addBorders(gallery);
}
