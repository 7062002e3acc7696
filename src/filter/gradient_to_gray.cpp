// Three channels to one: the maximum, the mean or the root mean square of a pixel's values.
//
// Bound, per vector of pixels: three loads and the nine shuffles that part the channels; the root of wide
// types is bound by their conversions and square roots.
#include "core/checks.h"
#include "core/fp_control.h"
#include "core/image.h"
#include "core/simd.h"
#include "filter/weighted_sum.h"
#include "okpcv/filter.h"

namespace okpcv {
namespace {

constexpr float kThird = 0.33333334F;

struct Maximum {
    template <class T>
    OKPCV_INLINE Vec<T> operator()(const Channels3<T>& p) const {
        return max(max(p.c0, p.c1), p.c2);
    }
};

// Of integers ((a + b + c) * 1365 + 2048) >> 12, of floats (a + b + c) / 3.
struct Mean {
    OKPCV_INLINE Vec<uint8_t> operator()(const Channels3<uint8_t>& p) const {
        return narrowSaturated<uint8_t>(
            ofSums(widenLow<int16_t>(p.c0), widenLow<int16_t>(p.c1), widenLow<int16_t>(p.c2)),
            ofSums(widenHigh<int16_t>(p.c0), widenHigh<int16_t>(p.c1), widenHigh<int16_t>(p.c2)));
    }
    OKPCV_INLINE Vec<uint16_t> operator()(const Channels3<uint16_t>& p) const {
        return narrowSaturated<uint16_t>(
            ofSums(widenLow<int32_t>(p.c0), widenLow<int32_t>(p.c1), widenLow<int32_t>(p.c2)),
            ofSums(widenHigh<int32_t>(p.c0), widenHigh<int32_t>(p.c1), widenHigh<int32_t>(p.c2)));
    }
    OKPCV_INLINE Vec<float> operator()(const Channels3<float>& p) const {
        return (p.c0 + p.c1 + p.c2) / broadcast(3.0F);
    }

  private:
    static OKPCV_INLINE Vec<int16_t> ofSums(Vec<int16_t> a, Vec<int16_t> b, Vec<int16_t> c) {
        const Vec<int16_t> sum = a + b + c;
        const Vec<int16_t> one = broadcast(int16_t{1});
        const Vec<int16_t> factors = interleaveLow(broadcast(int16_t{1365}), broadcast(int16_t{2048}));
        return narrowSaturated<int16_t>(shiftRight(mulAddPairs(interleaveLow(sum, one), factors), 12),
                                        shiftRight(mulAddPairs(interleaveHigh(sum, one), factors), 12));
    }
    static OKPCV_INLINE Vec<int32_t> ofSums(Vec<int32_t> a, Vec<int32_t> b, Vec<int32_t> c) {
        return shiftRight((a + b + c) * broadcast(1365) + broadcast(2048), 12);
    }
};

// sqrt(float(a * a + b * b + c * c) * kThird), of integers with an exact sum and rounded to nearest, ties to
// even.
struct RootMeanSquare {
    OKPCV_INLINE Vec<uint8_t> operator()(const Channels3<uint8_t>& p) const {
        return narrowSaturated<uint8_t>(
            ofWords(widenLow<int16_t>(p.c0), widenLow<int16_t>(p.c1), widenLow<int16_t>(p.c2)),
            ofWords(widenHigh<int16_t>(p.c0), widenHigh<int16_t>(p.c1), widenHigh<int16_t>(p.c2)));
    }
    OKPCV_INLINE Vec<uint16_t> operator()(const Channels3<uint16_t>& p) const {
        const Vec<int32_t> low =
            ofInts(widenLow<int32_t>(p.c0), widenLow<int32_t>(p.c1), widenLow<int32_t>(p.c2));
        const Vec<int32_t> high =
            ofInts(widenHigh<int32_t>(p.c0), widenHigh<int32_t>(p.c1), widenHigh<int32_t>(p.c2));
        return narrowSaturated<uint16_t>(low, high);
    }
    OKPCV_INLINE Vec<float> operator()(const Channels3<float>& p) const {
        return root(p.c0 * p.c0 + p.c1 * p.c1 + p.c2 * p.c2);
    }

  private:
    static OKPCV_INLINE Vec<float> root(Vec<float> sum) { return sqrt(sum * broadcast(kThird)); }

    static OKPCV_INLINE Vec<int16_t> ofWords(Vec<int16_t> a, Vec<int16_t> b, Vec<int16_t> c) {
        const Vec<int16_t> none = zeros<int16_t>();
        const auto squares = [](Vec<int16_t> ab, Vec<int16_t> c0) OKPCV_INLINE_LAMBDA {
            return roundToInt(root(toFloat(mulAddPairs(ab, ab) + mulAddPairs(c0, c0))));
        };
        return narrowSaturated<int16_t>(squares(interleaveLow(a, b), interleaveLow(c, none)),
                                        squares(interleaveHigh(a, b), interleaveHigh(c, none)));
    }
    // Sums of squares of 16-bit numbers are exact in doubles.
    static OKPCV_INLINE Vec<int32_t> ofInts(Vec<int32_t> a, Vec<int32_t> b, Vec<int32_t> c) {
        const auto squares = [](Vec<double> x, Vec<double> y, Vec<double> z)
                                 OKPCV_INLINE_LAMBDA { return x * x + y * y + z * z; };
        return roundToInt(
            root(narrow(squares(widenLow<double>(a), widenLow<double>(b), widenLow<double>(c)),
                        squares(widenHigh<double>(a), widenHigh<double>(b), widenHigh<double>(c)))));
    }
};

template <class T, class Norm>
void reduce(const Image<const T, 3>& src, const Image<T>& dst, Size size, const Norm& norm) {
    constexpr int lanes = Vec<T>::lanes;
    for (int64_t y = 0; y < size.height; ++y) {
        const T* const in = src.row(y);
        T* const out = dst.row(y);
        forBlocks<1, lanes>(size.width, [&](auto, auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            const auto elements = [&] {
                if constexpr (std::is_same_v<decltype(extent), Part>) {
                    return Part{3 * extent.count};
                } else {
                    return extent;
                }
            }();
            const T* const p = in + 3 * x;
            const Channels3<T> pixels =
                deinterleave3(load(p, elements), load(p + lanes, elements.from(lanes)),
                              load(p + 2 * lanes, elements.from(2 * lanes)));
            store(out + x, norm(pixels), extent);
        });
    }
}

template <class T>
okpStatus gradientToGray(Image<const T, 3> src, Image<T> dst, Size size, int32_t norm) {
    Checks checks;
    checks.pointers(src.data, dst.data)
        .size(size)
        .rowsFit(size, src, dst)
        .require(norm >= 0 && norm <= 2, okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    const DenormalExceptionMask mask;
    switch (norm) {
        case 0:
            reduce(src, dst, size, Maximum{});
            break;
        case 1:
            reduce(src, dst, size, Mean{});
            break;
        default:
            reduce(src, dst, size, RootMeanSquare{});
    }
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define GRADIENT_TO_GRAY(NAME, T)                                                             \
    okpStatus NAME(const T* pSrc, int32_t srcStep, T* pDst, int32_t dstStep, RoiSize roiSize, \
                   int32_t norm) {                                                            \
        return gradientToGray<T>({pSrc, srcStep}, {pDst, dstStep}, roiSize, norm);            \
    }

GRADIENT_TO_GRAY(okpiGradientColorToGray_8u_C3C1R, uint8_t)
GRADIENT_TO_GRAY(okpiGradientColorToGray_16u_C3C1R, uint16_t)
GRADIENT_TO_GRAY(okpiGradientColorToGray_32f_C3C1R, float)
