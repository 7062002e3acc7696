// Canny edge detection from derivatives that the caller gives, and from an 8-bit image.
#include "core/area.h"
#include "core/border.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "features/canny_engine.h"
#include "okpcv/features.h"

namespace okpcv {
namespace {

// ---- Derivatives of an image ----------------------------------------------------------------------------

// The two halves of a derivative kernel: it smooths across and differentiates along its axis.
struct Sobel3 {
    static constexpr int kLength = 3;
    static constexpr int16_t kSmooth[] = {1, 2, 1};
    static constexpr int16_t kDerive[] = {-1, 0, 1};
};
struct Sobel5 {
    static constexpr int kLength = 5;
    static constexpr int16_t kSmooth[] = {1, 4, 6, 4, 1};
    static constexpr int16_t kDerive[] = {-1, -2, 0, 2, 1};
};
struct Scharr {
    static constexpr int kLength = 3;
    static constexpr int16_t kSmooth[] = {3, 10, 3};
    static constexpr int16_t kDerive[] = {-1, 0, 1};
};

struct DerivativeRows {
    int16_t* smoothed;  // width + length - 1 each: the columns smoothed,
    int16_t* derived;   // and differentiated
    int16_t *dx, *dy;   // width each
    uint8_t* outside;   // width + length - 1 pixels of the border value
};

DerivativeRows layOutDerivatives(Area& area, int64_t width, int length) {
    DerivativeRows rows;
    rows.smoothed = area.take<int16_t>(width + length - 1);
    rows.derived = area.take<int16_t>(width + length - 1);
    rows.dx = area.take<int16_t>(width);
    rows.dy = area.take<int16_t>(width);
    rows.outside = area.take<uint8_t>(width + length - 1);
    return rows;
}

// Horizontal and vertical derivatives of an image, a row at a time: first the columns, whose results are
// extended beyond the sides as the border says, then along the row. All sums fit 16 bits.
template <class Kernel>
class ImageDerivatives {
  public:
    ImageDerivatives(Image<const uint8_t> src, Size size, BorderKind border, uint8_t value,
                     const DerivativeRows& rows)
        : src_(src), size_(size), border_(border), value_(value), rows_(rows) {
        std::memset(rows_.outside, value, static_cast<size_t>(size.width + 2 * kReach));
    }

    canny::DerivativeRow<int16_t> row(int64_t y) {
        filterColumns(y);
        extend(rows_.smoothed, static_cast<int16_t>(value_ * sum(Kernel::kSmooth)));
        extend(rows_.derived, static_cast<int16_t>(value_ * sum(Kernel::kDerive)));
        filterRow();
        return {rows_.dx, rows_.dy};
    }

  private:
    static constexpr int kReach = Kernel::kLength / 2;
    using Taps = Vec<int16_t>[Kernel::kLength];

    static constexpr int sum(const int16_t (&taps)[Kernel::kLength]) {
        int total = 0;
        for (const int16_t tap : taps) total += tap;
        return total;
    }

    static OKPCV_INLINE Vec<int16_t> scaled(Vec<int16_t> v, int16_t factor) {
        return factor == 1 ? v : v * broadcast(factor);
    }
    static OKPCV_INLINE Vec<int16_t> smooth(const Taps& v) {
        Vec<int16_t> total = scaled(v[kReach], Kernel::kSmooth[kReach]);
        for (int i = 0; i < kReach; ++i) {
            total = total + scaled(v[i] + v[Kernel::kLength - 1 - i], Kernel::kSmooth[i]);
        }
        return total;
    }
    static OKPCV_INLINE Vec<int16_t> derive(const Taps& v) {
        Vec<int16_t> total = zeros<int16_t>();
        for (int i = 0; i < kReach; ++i) {
            const int mirrored = Kernel::kLength - 1 - i;
            total = total + scaled(v[mirrored] - v[i], Kernel::kDerive[mirrored]);
        }
        return total;
    }

    void filterColumns(int64_t y) {
        const int64_t from = border_.leftInMemory() ? -kReach : 0;
        const int64_t to = size_.width + (border_.rightInMemory() ? kReach : 0);
        const uint8_t* rows[Kernel::kLength];
        for (int j = 0; j < Kernel::kLength; ++j) {
            const int64_t source = border_.row(y + j - kReach, size_.height);
            rows[j] = (source == Border::kValue ? rows_.outside + kReach : src_.row(source)) + from;
        }
        const auto kernel = [&](auto extent, int16_t* smoothed, int16_t* derived, const uint8_t* first) {
            const int64_t x = first - rows[0];
            Taps taps;
            for (int j = 0; j < Kernel::kLength; ++j) taps[j] = loadAs<int16_t>(rows[j] + x, extent);
            store(smoothed, smooth(taps), extent);
            store(derived, derive(taps), extent);
        };
        mapRow<Vec<int16_t>::lanes>(to - from, kernel, rows_.smoothed + kReach + from,
                                    rows_.derived + kReach + from, rows[0]);
    }

    // The columns beyond the sides that are not in memory. `outside` is what the border value's columns give.
    void extend(int16_t* row, int16_t outside) {
        int16_t* const first = row + kReach;
        int16_t* const behind = first + size_.width;
        const bool replicates = border_.kind() == BorderReplicate;
        for (int i = 0; i < kReach; ++i) {
            if (!border_.leftInMemory()) row[i] = replicates ? *first : outside;
            if (!border_.rightInMemory()) behind[i] = replicates ? behind[-1] : outside;
        }
    }

    void filterRow() {
        const auto kernel = [&](auto extent, int16_t* dx, int16_t* dy, const int16_t* smoothed,
                                const int16_t* derived) {
            Taps s, d;
            for (int i = 0; i < Kernel::kLength; ++i) {
                s[i] = load(smoothed + i, extent);
                d[i] = load(derived + i, extent);
            }
            store(dx, derive(s), extent);
            store(dy, smooth(d), extent);
        };
        mapRow<Vec<int16_t>::lanes>(size_.width, kernel, rows_.dx, rows_.dy, rows_.smoothed, rows_.derived);
    }

    Image<const uint8_t> src_;
    Size size_;
    Border border_;
    uint8_t value_;
    DerivativeRows rows_;
};

// ---- From given derivatives -----------------------------------------------------------------------------

template <class T>
okpStatus cannyFromDerivatives(canny::GivenDerivatives<T> derivatives, Image<uint8_t> dst, Size size,
                               float low, float high, NormKind norm, bool is64Bit, uint8_t* buffer) {
    const canny::Limits limits(low, high, norm == NormL2);
    Checks checks;
    checks.pointers(derivatives.dx.data, derivatives.dy.data, dst.data, buffer);
    if (is64Bit) checks.fit32(size.width, size.height, derivatives.dx.step, derivatives.dy.step, dst.step);
    checks.size(size)
        .rowsFit(size, derivatives.dx, derivatives.dy, dst)
        .stepsAreMultiples(derivatives.dx, derivatives.dy)
        .require(limits.areOrdered(), okpStatusBadArgument)
        .require(norm == NormL1 || norm == NormL2, okpStatusBadNorm);
    if (checks.failed()) return checks.status();

    Area area(buffer);
    canny::detect(canny::sourceOf<T>(derivatives), dst, size, limits, area);
    return okpStatusOk;
}

// ---- Buffer sizes ---------------------------------------------------------------------------------------

// 16 * width + k * (width + 2) * (height + 2) + 160, or -1 beyond 64 bits; for dimensions of 32 bits.
int64_t cannyBytes(Size size) {
    const int64_t perPixel = size.width < 65533 && size.height < 65533 ? 5 : 9;
    int64_t bytes = 0;
    const bool fits = multiplyChecked((size.width + 2) * (size.height + 2), perPixel, bytes) &&
                      addChecked(bytes, 16 * size.width + 160, bytes);
    return fits ? bytes : -1;
}

// The buffer of the detector that makes its own derivatives.
int64_t cannyBorderBytes(Size size, int64_t length) {
    const int64_t pixels = (size.width + length - 1) * (size.height + length - 1);
    const int64_t smaller = size.width < size.height ? size.width : size.height;
    return (smaller < length ? roundUp(pixels, 32) : 0) + roundUp(16 * (size.width + length - 1), 32) +
           roundUp(pixels, 32) + roundUp(4 * pixels, 32) + 64;
}

constexpr int32_t kSobel = 2;
constexpr int32_t kScharr = 5;

constexpr bool isMask(int32_t kind, MaskSizeCode mask) {
    return mask == MaskSize3x3 || (mask == MaskSize5x5 && kind != kScharr);
}
constexpr bool isDerivativeKind(int32_t kind) {
    return kind == kSobel || kind == kScharr;
}

template <class Kernel>
void cannyOfImage(Image<const uint8_t> src, Image<uint8_t> dst, Size size, BorderKind border, uint8_t value,
                  const canny::Limits& limits, uint8_t* buffer) {
    Area area(buffer);
    ImageDerivatives<Kernel> derivatives(src, size, border, value,
                                         layOutDerivatives(area, size.width, Kernel::kLength));
    canny::detect(canny::sourceOf<int16_t>(derivatives), dst, size, limits, area);
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiCannyGetSize(RoiSize roiSize, int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize).size(roiSize);
    if (checks.failed()) return checks.status();
    const int64_t bytes = cannyBytes(roiSize);
    if (bytes < 0 || bytes > INT32_MAX) return okpStatusSizeTooLarge;
    *pBufferSize = static_cast<int32_t>(bytes);
    return okpStatusOk;
}

okpStatus okpiCannyGetSize_L(RoiSizeL roiSize, int64_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize).fit32(roiSize.width, roiSize.height).size(roiSize);
    if (checks.failed()) return checks.status();
    const int64_t bytes = cannyBytes(roiSize);
    if (bytes < 0) return okpStatusSizeTooLarge;
    *pBufferSize = bytes;
    return okpStatusOk;
}

okpStatus okpiCannyBorderGetSize(RoiSize roiSize, int32_t derivativeKind, MaskSizeCode mask,
                                 DataTypeCode dataType, int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize)
        .size(roiSize)
        .require(isMask(derivativeKind, mask), okpStatusBadMaskKind)
        .require(isDerivativeKind(derivativeKind), okpStatusBadArgument)
        .require(dataType == DataType8u, okpStatusBadDataType);
    if (checks.failed()) return checks.status();
    // Of dimensions of 32 bits no term leaves 64 bits but the one of four bytes per pixel.
    const int64_t length = mask == MaskSize3x3 ? 3 : 5;
    if ((roiSize.width + length - 1) * (roiSize.height + length - 1) > INT32_MAX)
        return okpStatusSizeTooLarge;
    const int64_t bytes = cannyBorderBytes(roiSize, length);
    if (bytes > INT32_MAX) return okpStatusSizeTooLarge;
    *pBufferSize = static_cast<int32_t>(bytes);
    return okpStatusOk;
}

okpStatus okpiCanny_16s8u_C1R(const int16_t* pSrcDx, int32_t srcDxStep, const int16_t* pSrcDy,
                              int32_t srcDyStep, uint8_t* pDstEdges, int32_t dstEdgeStep, RoiSize roiSize,
                              float lowThresh, float highThresh, uint8_t* pBuffer) {
    return cannyFromDerivatives<int16_t>({{pSrcDx, srcDxStep}, {pSrcDy, srcDyStep}}, {pDstEdges, dstEdgeStep},
                                         roiSize, lowThresh, highThresh, NormL1, false, pBuffer);
}

okpStatus okpiCanny_32f8u_C1R(const float* pSrcDx, int32_t srcDxStep, const float* pSrcDy, int32_t srcDyStep,
                              uint8_t* pDstEdges, int32_t dstEdgeStep, RoiSize roiSize, float lowThresh,
                              float highThresh, uint8_t* pBuffer) {
    return cannyFromDerivatives<float>({{pSrcDx, srcDxStep}, {pSrcDy, srcDyStep}}, {pDstEdges, dstEdgeStep},
                                       roiSize, lowThresh, highThresh, NormL1, false, pBuffer);
}

okpStatus okpiCanny_16s8u_C1R_L(const int16_t* pSrcDx, int64_t srcDxStep, const int16_t* pSrcDy,
                                int64_t srcDyStep, uint8_t* pDstEdges, int64_t dstEdgeStep, RoiSizeL roiSize,
                                float lowThresh, float highThresh, NormKind norm, uint8_t* pBuffer) {
    return cannyFromDerivatives<int16_t>({{pSrcDx, srcDxStep}, {pSrcDy, srcDyStep}}, {pDstEdges, dstEdgeStep},
                                         roiSize, lowThresh, highThresh, norm, true, pBuffer);
}

okpStatus okpiCanny_32f8u_C1R_L(const float* pSrcDx, int64_t srcDxStep, const float* pSrcDy,
                                int64_t srcDyStep, uint8_t* pDstEdges, int64_t dstEdgeStep, RoiSizeL roiSize,
                                float lowThresh, float highThresh, NormKind norm, uint8_t* pBuffer) {
    return cannyFromDerivatives<float>({{pSrcDx, srcDxStep}, {pSrcDy, srcDyStep}}, {pDstEdges, dstEdgeStep},
                                       roiSize, lowThresh, highThresh, norm, true, pBuffer);
}

okpStatus okpiCannyBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                 RoiSize roiSize, int32_t derivativeKind, MaskSizeCode mask,
                                 BorderKind border, uint8_t borderValue, float lowThresh, float highThresh,
                                 NormKind norm, uint8_t* pBuffer) {
    const Image<const uint8_t> src{pSrc, srcStep};
    const Image<uint8_t> dst{pDst, dstStep};
    const Size size = roiSize;
    const BorderKind kind = border & kBorderKindBits;
    Checks checks;
    checks.require(isMask(derivativeKind, mask), okpStatusBadMaskKind)
        .pointers(pSrc, pDst, pBuffer)
        .size(size)
        .rowsFit(size, src, dst)
        .require(isDerivativeKind(derivativeKind), okpStatusBadArgument)
        .require(
            (norm == NormL1 || norm == NormL2) && canny::Limits(lowThresh, highThresh, false).areOrdered(),
            okpStatusBadArgument)
        .require(border < 256, okpStatusBadBorder)
        .require(border == BorderInMemory || kind == BorderConstant || kind == BorderReplicate,
                 okpStatusBadBorder);
    if (checks.failed()) return checks.status();

    const canny::Limits limits(lowThresh, highThresh, norm == NormL2);
    const auto run = [&](auto kernel) {
        cannyOfImage<decltype(kernel)>(src, dst, size, border, borderValue, limits, pBuffer);
    };
    if (derivativeKind == kScharr) {
        run(Scharr{});
    } else if (mask == MaskSize3x3) {
        run(Sobel3{});
    } else {
        run(Sobel5{});
    }
    return okpStatusOk;
}
