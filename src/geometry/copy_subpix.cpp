// Sub-pixel copies: a region shifted by a fraction of a pixel, each pixel the bilinear blend of four
// neighbours. 8-bit destinations and scaled 16-bit ones use weights in units of 1 / 16384: per pixel two
// multiply-add pairs, about ten operations on eight pixels each way; float weights take four products and
// three sums on vectors of floats. Out of the caches the copies are bound by memory.
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/geometry.h"

namespace okpcv {
namespace {

// The part of a shift that counts, 0 to 1. A shift that is not finite has none.
float fraction(float d) {
    const float whole = __builtin_truncf(d);
    const float f = d - whole;
    if (f < 0.0F) return (d + 1.0F) - whole;
    return f == f ? f : 0.0F;
}

// The weight of a pixel, its right, its lower and its lower right neighbour.
struct FixedWeights {
    int32_t w00, w01, w10, w11;

    FixedWeights(float dx, float dy) {
        const auto ax = static_cast<int32_t>(fraction(dx) * 16384.0F + 0.5F);
        const auto ay = static_cast<int32_t>(fraction(dy) * 16384.0F + 0.5F);
        // Each weight is one more than the truncated product; what that is too much in all, the largest
        // loses.
        w00 = ((16384 - ay) * (16384 - ax) + 16384) >> 14;
        w01 = ((16384 - ay) * ax + 16384) >> 14;
        w10 = ((16384 - ax) * ay + 16384) >> 14;
        w11 = (ay * ax + 16384) >> 14;
        const int32_t excess = w00 + w01 + w10 + w11 - 16384;
        if (w00 >= w01 && w00 >= w10 && w00 >= w11) {
            w00 -= excess;
        } else if (w10 >= w00 && w10 >= w01 && w10 >= w11) {
            w10 -= excess;
        } else if (w01 >= w00 && w01 >= w10 && w01 >= w11) {
            w01 -= excess;
        } else {
            w11 -= excess;
        }
    }
};

// Two 16-bit weights for neighbouring lanes.
Vec<int16_t> weightPairs(int32_t first, int32_t second) {
    return interleaveLow(broadcast(static_cast<int16_t>(first)), broadcast(static_cast<int16_t>(second)));
}

// The weighted sums of a vector of bytes, in units of 1 / 16384. The four weights add up to 16384, so no sum
// exceeds 2^22.
class FixedBlend {
  public:
    struct Sums {
        static constexpr int kCount = Vec<uint8_t>::lanes / Vec<int32_t>::lanes;
        Vec<int32_t> part[kCount];
    };

    FixedBlend(float dx, float dy) : FixedBlend(FixedWeights(dx, dy)) {}

    template <class Extent>
    OKPCV_INLINE Sums operator()(const uint8_t* upper, const uint8_t* lower, Extent extent) const {
        const Vec<uint8_t> u0 = load(upper, extent);
        const Vec<uint8_t> u1 = load(upper + 1, extent);
        const Vec<uint8_t> l0 = load(lower, extent);
        const Vec<uint8_t> l1 = load(lower + 1, extent);
        Sums sums;
        blendHalf(interleaveLow(u0, u1), interleaveLow(l0, l1), sums.part);
        blendHalf(interleaveHigh(u0, u1), interleaveHigh(l0, l1), sums.part + Sums::kCount / 2);
        return sums;
    }

  private:
    explicit FixedBlend(FixedWeights w)
        : upperWeights_(weightPairs(w.w00, w.w01)), lowerWeights_(weightPairs(w.w10, w.w11)) {}

    OKPCV_INLINE void blendHalf(Vec<uint8_t> upperPairs, Vec<uint8_t> lowerPairs, Vec<int32_t>* sums) const {
        sums[0] = mulAddPairs(widenLow<int16_t>(upperPairs), upperWeights_) +
                  mulAddPairs(widenLow<int16_t>(lowerPairs), lowerWeights_);
        sums[1] = mulAddPairs(widenHigh<int16_t>(upperPairs), upperWeights_) +
                  mulAddPairs(widenHigh<int16_t>(lowerPairs), lowerWeights_);
    }

    Vec<int16_t> upperWeights_, lowerWeights_;
};

// Brings sums of at most 2^22 to 16 bits: divided by 2^bits, halves up, for positive bits; multiplied for
// negative ones.
class FixedScale {
  public:
    explicit FixedScale(int64_t bits) {
        if (bits > 0) {
            right_ = bits < kAllGone ? static_cast<int>(bits) : kAllGone;
            half_ = 1 << (right_ - 1);
        } else if (bits > -16) {
            left_ = static_cast<int>(-bits);
            largest_ = UINT16_MAX;
        } else {
            left_ = 16;  // every sum but 0 leaves the range
            largest_ = 1;
        }
    }

    OKPCV_INLINE Vec<int32_t> operator()(Vec<int32_t> sum) const {
        const Vec<int32_t> scaled = shiftRight(sum + broadcast(half_), right_);
        return shiftLeft(min(scaled, broadcast(largest_)), left_);
    }

  private:
    static constexpr int kAllGone = 24;  // half of 2^24 and any sum stay below 2^24

    int right_ = 0;
    int left_ = 0;
    int32_t half_ = 0;
    int32_t largest_ = INT32_MAX;  // before the multiplication, which must not overflow
};

template <class S, class D>
okpStatus checkCopy(Image<const S> src, Image<D> dst, Size size) {
    Checks checks;
    checks.pointers(src.data, dst.data).size(size).steps(size, src, dst);
    return checks.status();
}

// The source one row further down. Right neighbours are read at the next address of the row.
template <class S>
Image<const S> below(Image<const S> src) {
    return {src.row(1), src.step};
}

// Blends in single precision, in one order of additions; 16u takes the nearest integer, ties to even.
template <class S, class D>
okpStatus copyWithFloatWeights(Image<const S> src, Image<D> dst, Size size, float dx, float dy) {
    if (const okpStatus status = checkCopy(src, dst, size); status != okpStatusOk) return status;
    const float fx = fraction(dx);
    const float fy = fraction(dy);
    const auto w00 = broadcast((1.0F - fx) * (1.0F - fy));
    const auto w01 = broadcast(fx * (1.0F - fy));
    const auto w10 = broadcast((1.0F - fx) * fy);
    const auto w11 = broadcast(fx * fy);
    const auto neighbours = [](const S* p, Vec<float> left, Vec<float> right, auto extent) {
        return loadAs<float>(p, extent) * left + loadAs<float>(p + 1, extent) * right;
    };
    const auto blend = [=](const S* upper, const S* lower, auto extent) {
        return neighbours(upper, w00, w01, extent) + neighbours(lower, w10, w11, extent);
    };
    constexpr int lanes = Vec<float>::lanes;
    const auto kernel = [=](auto extent, D* out, const S* upper, const S* lower) {
        if constexpr (kIsFloat<D>) {
            store(out, blend(upper, lower, extent), extent);
        } else {
            const Vec<float> first = blend(upper, lower, extent);
            const Vec<float> second = blend(upper + lanes, lower + lanes, extent.from(lanes));
            store(out, narrowSaturated<D>(roundToInt(first), roundToInt(second)), extent);
        }
    };
    mapRows<Vec<D>::lanes>(size, kernel, dst, src, below(src));
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiCopySubpix_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                RoiSize roiSize, float dx, float dy) {
    const Image<const uint8_t> src{pSrc, srcStep};
    const Image<uint8_t> dst{pDst, dstStep};
    if (const okpStatus status = checkCopy(src, dst, roiSize); status != okpStatusOk) return status;
    const auto kernel = [blend = FixedBlend(dx, dy)](auto extent, uint8_t* out, const uint8_t* upper,
                                                     const uint8_t* lower) {
        const auto sums = blend(upper, lower, extent);
        const auto rounded = [&](int i) { return shiftRight(sums.part[i] + broadcast(8192), 14); };
        const Vec<int16_t> low = narrowSaturated<int16_t>(rounded(0), rounded(1));
        const Vec<int16_t> high = narrowSaturated<int16_t>(rounded(2), rounded(3));
        store(out, narrowSaturated<uint8_t>(low, high), extent);
    };
    mapRows<Vec<uint8_t>::lanes>(roiSize, kernel, dst, src, below(src));
    return okpStatusOk;
}

okpStatus okpiCopySubpix_8u16u_C1R_Sfs(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst, int32_t dstStep,
                                       RoiSize roiSize, float dx, float dy, int32_t scaleFactor) {
    const Image<const uint8_t> src{pSrc, srcStep};
    const Image<uint16_t> dst{pDst, dstStep};
    if (const okpStatus status = checkCopy(src, dst, roiSize); status != okpStatusOk) return status;
    const auto kernel = [blend = FixedBlend(dx, dy), scale = FixedScale(int64_t{14} + scaleFactor)](
                            auto extent, uint16_t* out, const uint8_t* upper, const uint8_t* lower) {
        constexpr int lanes = Vec<uint16_t>::lanes;
        const auto sums = blend(upper, lower, extent);
        store(out, narrowSaturated<uint16_t>(scale(sums.part[0]), scale(sums.part[1])), extent);
        store(out + lanes, narrowSaturated<uint16_t>(scale(sums.part[2]), scale(sums.part[3])),
              extent.from(lanes));
    };
    mapRows<Vec<uint8_t>::lanes>(roiSize, kernel, dst, src, below(src));
    return okpStatusOk;
}

#define COPY_SUBPIX(NAME, S, D)                                                                         \
    okpStatus NAME(const S* pSrc, int32_t srcStep, D* pDst, int32_t dstStep, RoiSize roiSize, float dx, \
                   float dy) {                                                                          \
        return copyWithFloatWeights<S, D>({pSrc, srcStep}, {pDst, dstStep}, roiSize, dx, dy);           \
    }

COPY_SUBPIX(okpiCopySubpix_16u_C1R, uint16_t, uint16_t)
COPY_SUBPIX(okpiCopySubpix_8u32f_C1R, uint8_t, float)
COPY_SUBPIX(okpiCopySubpix_16u32f_C1R, uint16_t, float)
COPY_SUBPIX(okpiCopySubpix_32f_C1R, float, float)
