// Masks: the bytes that select pixels, spread to the lanes of an element type.
#pragma once

#include <cstdint>

#include "core/simd.h"

namespace okpcv {

// All ones in the lanes of pixels that the mask leaves out, beginning with the pixel of mask[0]. Lanes that
// the extent leaves out are left out here too.
template <class T, class Extent>
OKPCV_INLINE Vec<T> unselected(const uint8_t* mask, Extent extent) {
    return bitCast<T>(equal(loadAs<UnsignedLane<T>>(mask, extent), zeros<UnsignedLane<T>>()));
}

}  // namespace okpcv
