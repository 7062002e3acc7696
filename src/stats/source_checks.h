// The argument checks that means, deviations and extrema share.
#pragma once

#include "core/checks.h"
#include "core/image.h"

namespace okpcv {

// Of a source without a mask.
template <class T, int Channels>
Checks checkSource(Image<const T, Channels> src, Size size, int32_t coi) {
    Checks checks;
    checks.pointers(src.data).size(size).steps(size, src);
    if (Channels > 1) checks.channelOfInterest(coi);
    return checks;
}

// Of a source and its mask, whose step has no multiple; and of outputs that may not be null.
template <class T, int Channels, class... Output>
Checks checkSource(Image<const T, Channels> src, Image<const uint8_t> mask, Size size, int32_t coi,
                   const Output*... outputs) {
    Checks checks;
    checks.pointers(src.data, mask.data, outputs...)
        .size(size)
        .rowsFit(size, src, mask)
        .stepsAreMultiples(src);
    if (Channels > 1) checks.channelOfInterest(coi);
    return checks;
}

}  // namespace okpcv
