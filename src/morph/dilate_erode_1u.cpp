// Dilation and erosion of bit-packed images: or and and over the pixels under a mask (J. Serra, "Image
// Analysis and Mathematical Morphology", 1982). The work is in bits.h.
#include <cstdint>

#include "core/border.h"
#include "core/checks.h"
#include "morph/bits.h"
#include "morph/dilate_erode.h"
#include "morph/spec.h"
#include "okpcv/morph.h"

namespace okpcv::morph {
namespace {

bool isBitBorder(BorderKind border) {
    return isMorphologyBorder(border) && (border & kBorderKindBits) != BorderMirror;
}

// An argument list, widened.
struct BitArguments {
    const uint8_t* src;
    int64_t srcStep;
    int32_t srcBitOffset;
    uint8_t* dst;
    int64_t dstStep;
    int32_t dstBitOffset;
    Size size;
    BorderKind border;
    const uint8_t* value;
    const MorphSpec* spec;
    uint8_t* buffer;
};

template <class Op>
void applyBits(const BitArguments& a) {
    const Border border(foldBorderFlags(a.border));
    const bool value = border.kind() == BorderConstant ? *a.value != 0 : Op::defaultBorder;
    const Spec spec(a.spec);
    BitEngine<Op>(a.size, {a.src, a.srcStep, a.srcBitOffset}, {a.dst, a.dstStep, a.dstBitOffset}, border,
                  value, spec, a.buffer)
        .run();
}

void checkRows(Checks& checks, const BitArguments& a) {
    const int64_t rowBytes = (a.size.width + 7) / 8;
    checks.require(a.srcStep >= rowBytes && a.dstStep >= rowBytes, okpStatusBadStep)
        .require(isBitBorder(a.border), okpStatusBadBorder);
}

template <class Op>
okpStatus applyBitBorder(const BitArguments& a) {
    Checks checks;
    checks.pointers(a.src, a.dst, a.spec, a.buffer)
        .require(a.srcBitOffset >= 0 && a.dstBitOffset >= 0, okpStatusBadSize)
        .size(a.size);
    checkRows(checks, a);
    checks.require(a.src != a.dst, okpStatusInPlaceNotSupported);
    if (checks.failed()) return checks.status();
    applyBits<Op>(a);
    return okpStatusOk;
}

template <class Op>
okpStatus applyBitL(const BitArguments& a) {
    Checks checks;
    checks.pointers(a.src, a.dst, a.spec, a.buffer)
        .require(a.srcBitOffset >= 0 && a.dstBitOffset >= 0, okpStatusBadSize)
        .size(a.size)
        .fit32(a.size.width, a.size.height);
    checkRows(checks, a);
    checks.require(a.size.width <= kLargest64 && a.size.height <= kLargest64, okpStatusBadSize)
        .require(a.srcStep <= kLargest64 && a.dstStep <= kLargest64, okpStatusBadStep);
    checkBorderValue(checks, a.border, a.value);
    checks.require(a.src != a.dst, okpStatusInPlaceNotSupported);
    if (checks.failed()) return checks.status();
    applyBits<Op>(a);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv::morph

using namespace okpcv::morph;

#define BIT_BORDER(NAME, OP)                                                                          \
    okpStatus NAME(const uint8_t* pSrc, int32_t srcStep, int32_t srcBitOffset, uint8_t* pDst,         \
                   int32_t dstStep, int32_t dstBitOffset, RoiSize roiSize, BorderKind border,         \
                   uint8_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer) {                   \
        return applyBitBorder<OP>({pSrc, srcStep, srcBitOffset, pDst, dstStep, dstBitOffset, roiSize, \
                                   border, &borderValue, pSpec, pBuffer});                            \
    }
#define BIT_L(NAME, OP)                                                                                  \
    okpStatus NAME(const uint8_t* pSrc, int64_t srcStep, int32_t srcBitOffset, uint8_t* pDst,            \
                   int64_t dstStep, int32_t dstBitOffset, RoiSizeL roiSize, BorderKind border,           \
                   const uint8_t* pBorderValue, const MorphSpec* pSpec, uint8_t* pBuffer) {              \
        return applyBitL<OP>({pSrc, srcStep, srcBitOffset, pDst, dstStep, dstBitOffset, roiSize, border, \
                              pBorderValue, pSpec, pBuffer});                                            \
    }

BIT_BORDER(okpiDilateBorder_1u_C1R, BitOr)
BIT_L(okpiDilate_1u_C1R_L, BitOr)
BIT_BORDER(okpiErodeBorder_1u_C1R, BitAnd)
BIT_L(okpiErode_1u_C1R_L, BitAnd)
