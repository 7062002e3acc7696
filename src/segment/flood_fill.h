// What the flood fills share: their argument checks and the record that they write.
#pragma once

#include "core/area.h"
#include "core/checks.h"
#include "segment/mapped_region.h"
#include "segment/scan_fill.h"

namespace okpcv {

// `values` are the pointers to pixel values of the three-channel fills.
template <class T, int C, class... P>
okpStatus checkFloodFill(Image<T, C> image, RoiSize size, PixelPoint seed, const ConnectedComp* region,
                         const uint8_t* buffer, const P*... values) {
    Checks checks;
    checks.pointers(image.data, region, buffer, values...)
        .size(size)
        .steps(size, image)
        .require(seed.x >= 0 && seed.x < size.width && seed.y >= 0 && seed.y < size.height,
                 okpStatusOutOfRange);
    return checks.status();
}

template <class T, int C>
ConnectedComp regionRecord(const FilledRegion& filled, const Pixel<T, C>& newValue) {
    ConnectedComp record{};
    record.area = static_cast<double>(filled.area);
    for (int c = 0; c < C; ++c) record.value[c] = newValue.channel[c];
    record.rect = {filled.left, filled.top, filled.right - filled.left + 1, filled.bottom - filled.top + 1};
    return record;
}

// Fills by a rule of MappedRegion, with `bytes` of buffer, which hold the map, and a stack of at most `limit`
// entries.
template <Connectivity kConnectivity, class T, int C, class Rule>
FilledRegion fillMapped(Image<T, C> image, RoiSize size, PixelPoint seed, const Rule& rule,
                        const Pixel<T, C>& newValue, uint8_t* pBuffer, int64_t bytes,
                        int64_t limit = INT64_MAX) {
    Area area(pBuffer);
    const PixelMap map(area.take<uint64_t>(PixelMap::words(size)), size, seed.y);
    SegmentStack stack(pBuffer + area.bytes(), bytes - area.bytes(), limit);
    MappedRegion region(rule, size.width, map);
    const FilledRegion filled = scanFill<kConnectivity>(size, seed, stack, region);
    region.write(image, newValue);
    return filled;
}

}  // namespace okpcv
