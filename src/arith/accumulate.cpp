// Accumulators: d + s, d + s * s, d + s1 * s2 and (s - d) * w + d on a float image d, with and without a
// mask. Bound by memory: per four pixels one accumulator vector is loaded and stored beside 1 to 9 bytes per
// pixel of sources and mask. Each formula is written once; products are rounded before they are added, and
// where NaNs meet, the first one of the formula stays.
#include "core/cache.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/mask.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/arith.h"

namespace okpcv {
namespace {

constexpr int kLanes = Vec<float>::lanes;

// The pixels of one vector of S as vectors of floats.
template <class S>
struct Floats {
    static constexpr int kCount = Vec<S>::lanes / kLanes;
    Vec<float> part[kCount];
};

OKPCV_INLINE Floats<float> toFloats(Vec<float> v) {
    return {{v}};
}
OKPCV_INLINE Floats<uint16_t> toFloats(Vec<uint16_t> v) {
    return {{toFloat(widenLow<int32_t>(v)), toFloat(widenHigh<int32_t>(v))}};
}
OKPCV_INLINE Floats<uint8_t> toFloats(Vec<uint16_t> low, Vec<uint16_t> high) {
    const Floats<uint16_t> first = toFloats(low);
    const Floats<uint16_t> second = toFloats(high);
    return {{first.part[0], first.part[1], second.part[0], second.part[1]}};
}
OKPCV_INLINE Floats<uint8_t> toFloats(Vec<uint8_t> v) {
    return toFloats(widenLow<uint16_t>(v), widenHigh<uint16_t>(v));
}

// Products of two sources. Those of bytes are exact in 16 bits, which spares half of the conversions.
template <class S>
OKPCV_INLINE Floats<S> product(Vec<S> a, Vec<S> b) {
    Floats<S> x = toFloats(a);
    const Floats<S> y = toFloats(b);
    for (int i = 0; i < Floats<S>::kCount; ++i) x.part[i] = x.part[i] * y.part[i];
    return x;
}
OKPCV_INLINE Floats<uint8_t> product(Vec<uint8_t> a, Vec<uint8_t> b) {
    return toFloats(widenLow<uint16_t>(a) * widenLow<uint16_t>(b),
                    widenHigh<uint16_t>(a) * widenHigh<uint16_t>(b));
}

// What is added to the accumulator, from the source's values.
struct Identity {
    template <class S>
    OKPCV_INLINE Floats<S> operator()(Vec<S> s) const {
        return toFloats(s);
    }
};
struct Square {
    template <class S>
    OKPCV_INLINE Floats<S> operator()(Vec<S> s) const {
        return product(s, s);
    }
};

template <class S, class Extent>
OKPCV_INLINE void addTo(float* d, Floats<S> terms, Extent extent) {
    for (int i = 0; i < Floats<S>::kCount; ++i) {
        const auto rest = extent.from(i * kLanes);
        store(d + i * kLanes, load(d + i * kLanes, rest) + terms.part[i], rest);
    }
}

// The source with zeros where the mask leaves a pixel out.
template <class S, class Extent>
OKPCV_INLINE Vec<S> loadSelected(const S* source, const uint8_t* mask, Extent extent) {
    return andNot(load(source, extent), unselected<S>(mask, extent));
}

enum class Stores { Ordinary, Streamed };

template <int kPixels, class Kernel, class S, class... T>
void accumulateRows(Stores stores, Size size, const Kernel& kernel, Image<float> dst, Image<const S> source,
                    const Image<T>&... others) {
    if (stores == Stores::Streamed) {
        mapRowsStreamed<kPixels, kFetchBeside<S>>(size, kernel, dst, source, others...);
    } else {
        mapRows<kPixels, kFetchBeside<S>>(size, kernel, dst, source, others...);
    }
}

// The store kind of the masked accumulators that ask for the cache size. 0 stands for those that never ask.
Stores storesFor(int32_t bytesPerPixel, RoiSize size) {
    return bytesPerPixel != 0 && streamsAccumulator(bytesPerPixel, size) ? Stores::Streamed
                                                                         : Stores::Ordinary;
}

// Add and AddSquare.
template <class S, class Term>
okpStatus addTerm(Image<const S> src, Image<float> dst, RoiSize roiSize, Term term) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst.data).size(size).steps(size, src).steps(size, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [term](auto extent, float* d, const S* s) {
        addTo(d, term(loadAs<float>(s, extent)), extent);
    };
    mapRows<kLanes, kFetchBeside<S>>(size, kernel, dst, src);
    return okpStatusOk;
}

template <class S, class Term>
okpStatus addTermMasked(Image<const S> src, Image<const uint8_t> mask, Image<float> dst, RoiSize roiSize,
                        Term term, int32_t streamedBytesPerPixel) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, mask.data, dst.data)
        .size(size)
        .steps(size, src)
        .steps(size, mask)
        .steps(size, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [term](auto extent, float* d, const S* s, const uint8_t* m) {
        addTo(d, term(loadSelected(s, m, extent)), extent);
    };
    accumulateRows<Vec<S>::lanes>(storesFor(streamedBytesPerPixel, roiSize), size, kernel, dst, src, mask);
    return okpStatusOk;
}

// AddProduct: the sources' steps are tested together.
template <class S>
okpStatus addProduct(Image<const S> src1, Image<const S> src2, Image<float> dst, RoiSize roiSize) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src1.data, src2.data, dst.data).size(size).steps(size, src1, src2).steps(size, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [](auto extent, float* d, const S* s, const S* t) {
        addTo(d, product(load(s, extent), load(t, extent)), extent);
    };
    mapRows<Vec<S>::lanes, kFetchBeside<S>>(size, kernel, dst, src1, src2);
    return okpStatusOk;
}

template <class S>
okpStatus addProductMasked(Image<const S> src1, Image<const S> src2, Image<const uint8_t> mask,
                           Image<float> dst, RoiSize roiSize, int32_t streamedBytesPerPixel) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src1.data, src2.data, mask.data, dst.data)
        .size(size)
        .steps(size, src1, src2)
        .steps(size, mask)
        .steps(size, dst);
    if (checks.failed()) return checks.status();

    // Only the first source is zeroed: 0 * Inf and 0 * NaN reach the accumulator.
    const auto kernel = [](auto extent, float* d, const S* s, const S* t, const uint8_t* m) {
        addTo(d, product(loadSelected(s, m, extent), load(t, extent)), extent);
    };
    accumulateRows<Vec<S>::lanes>(storesFor(streamedBytesPerPixel, roiSize), size, kernel, dst, src1, src2,
                                  mask);
    return okpStatusOk;
}

// AddWeighted in place.
template <class S>
okpStatus addWeighted(Image<const S> src, Image<float> dst, RoiSize roiSize, float weight) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst.data).size(size).steps(size, src).steps(size, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [w = broadcast(weight)](auto extent, float* d, const S* s) {
        const Vec<float> before = inRegister(load(d, extent));
        store(d, (loadAs<float>(s, extent) - before) * w + before, extent);
    };
    mapRows<kLanes, kFetchBeside<S>>(size, kernel, dst, src);
    return okpStatusOk;
}

template <class S>
okpStatus addWeightedMasked(Image<const S> src, Image<const uint8_t> mask, Image<float> dst, RoiSize roiSize,
                            float weight, int32_t streamedBytesPerPixel) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, mask.data, dst.data)
        .size(size)
        .steps(size, src)
        .steps(size, mask)
        .steps(size, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [w = broadcast(weight)](auto extent, float* d, const S* s, const uint8_t* m) {
        const Vec<float> before = inRegister(load(d, extent));
        const Vec<float> change = (loadAs<float>(s, extent) - before) * w;
        store(d, andNot(change, unselected<float>(m, extent)) + before, extent);
    };
    accumulateRows<kLanes>(storesFor(streamedBytesPerPixel, roiSize), size, kernel, dst, src, mask);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define ADD_TERM(NAME, S, TERM)                                                                           \
    okpStatus NAME(const S* pSrc, int32_t srcStep, float* pSrcDst, int32_t srcDstStep, RoiSize roiSize) { \
        return addTerm<S>({pSrc, srcStep}, {pSrcDst, srcDstStep}, roiSize, TERM{});                       \
    }

// The last argument of the masked forms is the number of bytes per pixel by which a call is measured against
// the caches; 0 for the forms that always store ordinarily.
#define ADD_TERM_MASKED(NAME, S, TERM, STREAMED_BYTES)                                                      \
    okpStatus NAME(const S* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, float* pSrcDst,  \
                   int32_t srcDstStep, RoiSize roiSize) {                                                   \
        return addTermMasked<S>({pSrc, srcStep}, {pMask, maskStep}, {pSrcDst, srcDstStep}, roiSize, TERM{}, \
                                STREAMED_BYTES);                                                            \
    }

#define ADD_PRODUCT(NAME, S)                                                                           \
    okpStatus NAME(const S* pSrc1, int32_t src1Step, const S* pSrc2, int32_t src2Step, float* pSrcDst, \
                   int32_t srcDstStep, RoiSize roiSize) {                                              \
        return addProduct<S>({pSrc1, src1Step}, {pSrc2, src2Step}, {pSrcDst, srcDstStep}, roiSize);    \
    }

#define ADD_PRODUCT_MASKED(NAME, S, STREAMED_BYTES)                                                          \
    okpStatus NAME(const S* pSrc1, int32_t src1Step, const S* pSrc2, int32_t src2Step, const uint8_t* pMask, \
                   int32_t maskStep, float* pSrcDst, int32_t srcDstStep, RoiSize roiSize) {                  \
        return addProductMasked<S>({pSrc1, src1Step}, {pSrc2, src2Step}, {pMask, maskStep},                  \
                                   {pSrcDst, srcDstStep}, roiSize, STREAMED_BYTES);                          \
    }

#define ADD_WEIGHTED(NAME, S)                                                                           \
    okpStatus NAME(const S* pSrc, int32_t srcStep, float* pSrcDst, int32_t srcDstStep, RoiSize roiSize, \
                   float weight) {                                                                      \
        return addWeighted<S>({pSrc, srcStep}, {pSrcDst, srcDstStep}, roiSize, weight);                 \
    }

#define ADD_WEIGHTED_MASKED(NAME, S, STREAMED_BYTES)                                                       \
    okpStatus NAME(const S* pSrc, int32_t srcStep, const uint8_t* pMask, int32_t maskStep, float* pSrcDst, \
                   int32_t srcDstStep, RoiSize roiSize, float weight) {                                    \
        return addWeightedMasked<S>({pSrc, srcStep}, {pMask, maskStep}, {pSrcDst, srcDstStep}, roiSize,    \
                                    weight, STREAMED_BYTES);                                               \
    }

ADD_TERM(okpiAdd_8u32f_C1IR, uint8_t, Identity)
ADD_TERM(okpiAdd_16u32f_C1IR, uint16_t, Identity)
ADD_TERM_MASKED(okpiAdd_8u32f_C1IMR, uint8_t, Identity, 0)
ADD_TERM_MASKED(okpiAdd_16u32f_C1IMR, uint16_t, Identity, 0)
ADD_TERM_MASKED(okpiAdd_32f_C1IMR, float, Identity, 0)

ADD_TERM(okpiAddSquare_8u32f_C1IR, uint8_t, Square)
ADD_TERM(okpiAddSquare_16u32f_C1IR, uint16_t, Square)
ADD_TERM(okpiAddSquare_32f_C1IR, float, Square)
ADD_TERM_MASKED(okpiAddSquare_8u32f_C1IMR, uint8_t, Square, 0)
ADD_TERM_MASKED(okpiAddSquare_16u32f_C1IMR, uint16_t, Square, 0)
ADD_TERM_MASKED(okpiAddSquare_32f_C1IMR, float, Square, 12)

ADD_PRODUCT(okpiAddProduct_8u32f_C1IR, uint8_t)
ADD_PRODUCT(okpiAddProduct_16u32f_C1IR, uint16_t)
ADD_PRODUCT(okpiAddProduct_32f_C1IR, float)
ADD_PRODUCT_MASKED(okpiAddProduct_8u32f_C1IMR, uint8_t, 7)
ADD_PRODUCT_MASKED(okpiAddProduct_16u32f_C1IMR, uint16_t, 9)
ADD_PRODUCT_MASKED(okpiAddProduct_32f_C1IMR, float, 13)

ADD_WEIGHTED(okpiAddWeighted_8u32f_C1IR, uint8_t)
ADD_WEIGHTED(okpiAddWeighted_16u32f_C1IR, uint16_t)
ADD_WEIGHTED(okpiAddWeighted_32f_C1IR, float)
ADD_WEIGHTED_MASKED(okpiAddWeighted_8u32f_C1IMR, uint8_t, 5)
ADD_WEIGHTED_MASKED(okpiAddWeighted_16u32f_C1IMR, uint16_t, 7)
ADD_WEIGHTED_MASKED(okpiAddWeighted_32f_C1IMR, float, 9)

okpStatus okpiAddWeighted_32f_C1R(const float* pSrc1, int32_t src1Step, const float* pSrc2, int32_t src2Step,
                                  float* pDst, int32_t dstStep, RoiSize roiSize, float weight) {
    const Image<const float> src1{pSrc1, src1Step};
    const Image<const float> src2{pSrc2, src2Step};
    const Image<float> dst{pDst, dstStep};
    const Size size = roiSize;
    Checks checks;
    checks.pointers(pSrc1, pSrc2, pDst).size(size).steps(size, src1, src2, dst);
    if (checks.failed()) return checks.status();

    const auto kernel = [w = broadcast(weight)](auto extent, float* out, const float* a, const float* b) {
        const Vec<float> second = load(b, extent);
        store(out, (load(a, extent) - second) * w + second, extent);
    };
    mapRows<kLanes>(size, kernel, dst, src1, src2);
    return okpStatusOk;
}
