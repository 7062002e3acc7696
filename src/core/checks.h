// Argument checks: one chain that reads like the documented order and stops at the first failure.
//
//     Checks checks;
//     checks.pointers(pSrc, pDst).size(size).steps(size, src, dst);
//     if (checks.failed()) return checks.status();
#pragma once

#include <cstdint>

#include "core/image.h"
#include "okpcv/types.h"

namespace okpcv {

class Checks {
  public:
    constexpr okpStatus status() const { return status_; }
    constexpr bool failed() const { return status_ != okpStatusOk; }

    // Notes `failure` unless `holds` or an earlier check failed.
    constexpr Checks& require(bool holds, okpStatus failure) {
        if (status_ == okpStatusOk && !holds) status_ = failure;
        return *this;
    }

    template <class... P>
    constexpr Checks& pointers(const P*... p) {
        return require(((p != nullptr) && ...), okpStatusNullPointer);
    }

    constexpr Checks& size(Size size) {
        return require(size.width >= 1 && size.height >= 1, okpStatusBadSize);
    }

    // Every step holds a row of size.width (at least 1) pixels of its image. Division instead of a product:
    // nothing overflows at any width.
    template <class... I>
    constexpr Checks& rowsFit(Size size, const I&... images) {
        return require(((images.step / I::pixelBytes >= size.width) && ...), okpStatusBadStep);
    }

    // Every step is a multiple of its image's element size.
    template <class... I>
    constexpr Checks& stepsAreMultiples(const I&... images) {
        return require(((images.step % I::elementBytes == 0) && ...), okpStatusStepNotMultiple);
    }

    // Both of these, for the images given: first that every row fits, then that every step is a multiple.
    template <class... I>
    constexpr Checks& steps(Size size, const I&... images) {
        return rowsFit(size, images...).stepsAreMultiples(images...);
    }

    // A channel of interest counts from 1 to 3.
    constexpr Checks& channelOfInterest(int32_t channel) {
        return require(channel >= 1 && channel <= 3, okpStatusBadChannelOfInterest);
    }

    // Nothing the operation processes with 32-bit quantities exceeds them.
    template <class... V>
    constexpr Checks& fit32(V... values) {
        return require(((int64_t{values} <= INT32_MAX) && ...), okpStatusSizeTooLarge);
    }

  private:
    okpStatus status_ = okpStatusOk;
};

}  // namespace okpcv
