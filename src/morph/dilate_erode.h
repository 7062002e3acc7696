// What the exports of dilation and erosion have in common: their checks, in the documented order, and the way
// from an export's arguments to the engine.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/border.h"
#include "core/checks.h"
#include "core/image.h"
#include "morph/engine.h"
#include "morph/spec.h"
#include "okpcv/morph.h"

namespace okpcv::morph {

// The largest width, height and step that the 64-bit generation works with.
inline constexpr int64_t kLargest64 = INT32_MAX - 1;

// The checks that both generations share after their pointers, sizes and steps. A constant border needs its
// value; where a value is an argument itself, its address stands here.
template <class Pixel>
void checkBorderValue(Checks& checks, BorderKind border, const Pixel* value) {
    checks.require((border & kBorderKindBits) != BorderConstant || value != nullptr, okpStatusNullPointer);
}

// The border that the operation works with, and its value: the caller's, or for the default kind the one
// that never wins.
template <class Op, class Pixel>
struct ChosenBorder {
    Border border;
    Pixel value[4];

    ChosenBorder(BorderKind kind, const Pixel* callersValue, int channels)
        : border(foldBorderFlags(kind)), value{} {
        for (int c = 0; c < channels; ++c) {
            if (border.kind() == BorderDefault) value[c] = Op::template defaultBorder<Pixel>;
            if (border.kind() == BorderConstant) value[c] = callersValue[c];
        }
    }
};

template <class Op, int kChannels, class Pixel>
okpStatus apply(Size size, Image<const Pixel, kChannels> src, Image<Pixel, kChannels> dst, BorderKind border,
                const Pixel* value, const MorphSpec* spec, void* buffer) {
    const ChosenBorder<Op, Pixel> chosen(border, value, kChannels);
    applyMask<Op>(
        Job<Pixel>{size, {src.data, src.step}, {dst.data, dst.step}, kChannels, chosen.border, chosen.value},
        Spec(spec), buffer);
    return okpStatusOk;
}

// The 32-bit generation.
template <class Op, int kChannels, class Pixel>
okpStatus applyBorder(Image<const Pixel, kChannels> src, Image<Pixel, kChannels> dst, RoiSize roiSize,
                      BorderKind border, const Pixel* value, const MorphSpec* spec, void* buffer) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst.data, spec, static_cast<const uint8_t*>(buffer))
        .size(size)
        .steps(size, src, dst)
        .require(isMorphologyBorder(border), okpStatusBadBorder);
    checkBorderValue(checks, border, value);
    checks.require(src.data != dst.data, okpStatusInPlaceNotSupported);
    if (checks.failed()) return checks.status();
    return apply<Op>(size, src, dst, border, value, spec, buffer);
}

// The 64-bit generation.
template <class Op, int kChannels, class Pixel>
okpStatus applyL(Image<const Pixel, kChannels> src, Image<Pixel, kChannels> dst, RoiSizeL roiSize,
                 BorderKind border, const Pixel* value, const MorphSpec* spec, void* buffer) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst.data, spec, static_cast<const uint8_t*>(buffer))
        .size(size)
        .fit32(size.width, size.height)
        .steps(size, src, dst)
        .require(isMorphologyBorder(border), okpStatusBadBorder)
        .require(size.width <= kLargest64 && size.height <= kLargest64, okpStatusBadSize)
        .require(src.step <= kLargest64 && dst.step <= kLargest64, okpStatusBadStep);
    checkBorderValue(checks, border, value);
    checks.require(src.data != dst.data, okpStatusInPlaceNotSupported);
    if (checks.failed()) return checks.status();
    return apply<Op>(size, src, dst, border, value, spec, buffer);
}

}  // namespace okpcv::morph

// The exports of one operation for one type: NAME for the 32-bit generation, whose border value is VALUE
// (`T borderValue` or `const T* borderValue`) at POINTER, and NAME_L for the 64-bit one.
#define OKPCV_MORPH_BORDER(NAME, OP, T, CHANNELS, VALUE, POINTER)                                       \
    okpStatus NAME(const T* pSrc, int32_t srcStep, T* pDst, int32_t dstStep, RoiSize roiSize,           \
                   BorderKind border, VALUE, const MorphSpec* pSpec, uint8_t* pBuffer) {                \
        return applyBorder<OP, CHANNELS, T>({pSrc, srcStep}, {pDst, dstStep}, roiSize, border, POINTER, \
                                            pSpec, pBuffer);                                            \
    }
#define OKPCV_MORPH_L(NAME, OP, T, CHANNELS)                                                             \
    okpStatus NAME(const T* pSrc, int64_t srcStep, T* pDst, int64_t dstStep, RoiSizeL roiSize,           \
                   BorderKind border, const T* pBorderValue, const MorphSpec* pSpec, uint8_t* pBuffer) { \
        return applyL<OP, CHANNELS, T>({pSrc, srcStep}, {pDst, dstStep}, roiSize, border, pBorderValue,  \
                                       pSpec, pBuffer);                                                  \
    }
