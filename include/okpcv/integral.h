/**
 * @file integral.h
 * @brief Integral images and the window standard deviation made from them.
 */
#ifndef OKPCV_INTEGRAL_H
#define OKPCV_INTEGRAL_H

#include "okpcv/types.h"

/**
 * @defgroup integrals Integral images
 * @brief Images of sums, from which the sum over any upright rectangle takes four reads.
 *
 * The destinations are one column and one row larger than the source of @f$ w \times h @f$ pixels. For
 * @f$ 0 \le x \le w @f$ and @f$ 0 \le y \le h @f$ they hold
 *
 * @f[ I(x, y) = val + \sum_{j < y} \sum_{i < x} src(i, j), \qquad
 *     S(x, y) = valSqr + \sum_{j < y} \sum_{i < x} src(i, j)^2 @f]
 *
 * so row 0 and column 0 hold the offset, and the sum over the pixels @f$ x_0 \le x < x_1, y_0 \le y < y_1 @f$
 * is @f$ I(x_1, y_1) - I(x_1, y_0) - I(x_0, y_1) + I(x_0, y_0) @f$.
 *
 * Every element is the one above it plus the running sum @f$ r @f$ of its row:
 * @f$ I(x + 1, y + 1) = I(x + 1, y) + r @f$, one addition in the type of the destination.
 * - 32s: modulo @f$ 2^{32} @f$, sums and squares alike; rectangle sums below @f$ 2^{31} @f$ are right even
 *   where elements have wrapped.
 * - 32f of 8-bit pixels: the running sum is in single precision, one pixel added after another. Everything is
 *   exact while the sums and the offset, which is an integer, stay below @f$ 2^{24} @f$ together.
 * - 64f: squares and running sums are in double precision, exact up to @f$ 2^{53} @f$.
 *
 * The offsets are used unchanged, also when they are not finite.
 *
 * Source: F. C. Crow, "Summed-Area Tables for Texture Mapping", SIGGRAPH 1984.
 * @{
 */

/**
 * @brief Integral image of 8-bit pixels in 32-bit integers.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Integral image, (width + 1) x (height + 1) elements; must not overlap the source.
 * @param[in]  dstStep Step of the integral image in bytes.
 * @param[in]  roiSize Size of the source in pixels.
 * @param[in]  val     Offset; any value.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step of the source below its width in bytes, or that of the integral image
 *           below 4 * (width + 1);
 *         - #okpStatusStepNotMultiple: the step of the integral image is no multiple of 4.
 */
OKPCV_API okpStatus okpiIntegral_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, int32_t val);

/**
 * @brief Integral image of 8-bit pixels in floats.
 * @copydetails okpiIntegral_8u32s_C1R
 */
OKPCV_API okpStatus okpiIntegral_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                           RoiSize roiSize, float val);

/**
 * @brief Integral image of floats.
 *
 * The offset is 0. Additions are in single precision, in one order for every size and alignment: pixels are
 * taken in groups of four from the left, a group's sums @f$ s_0 = a_0, s_1 = a_0 + a_1, s_2 = a_0 + (a_1 +
 * a_2), s_3 = (a_0 + a_1) + (a_2 + a_3) @f$ are formed, and the running sum is @f$ r_k = c + s_k @f$ with the
 * running sum @f$ c @f$ through the group before. The error of a running sum grows with the number of groups
 * before it. Where two NaNs meet, the first one of these sums stays.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Integral image, (width + 1) x (height + 1) elements; must not overlap the source.
 * @param[in]  dstStep Step of the integral image in bytes.
 * @param[in]  roiSize Size of the source in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step of the source below 4 * width, or that of the integral image below
 *           4 * (width + 1);
 *         - #okpStatusStepNotMultiple: a step that is no multiple of 4.
 */
OKPCV_API okpStatus okpiIntegral_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                         RoiSize roiSize);

/**
 * @brief Integral and squared integral image of 8-bit pixels in 32-bit integers.
 *
 * When the first rows of the two destinations overlap, every place receives what is left when sum and square
 * are written place after place, the sum first. They must not overlap in other ways.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Integral image, (width + 1) x (height + 1) elements; must not overlap the source.
 * @param[in]  dstStep Step of the integral image in bytes.
 * @param[out] pSqr    Squared integral image, (width + 1) x (height + 1) elements; must not overlap the
 *                     source.
 * @param[in]  sqrStep Step of the squared integral image in bytes.
 * @param[in]  roiSize Size of the source in pixels.
 * @param[in]  val     Offset of the integral image; any value.
 * @param[in]  valSqr  Offset of the squared integral image; any value.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step of the source below its width in bytes, or that of a destination
 *           below (width + 1) times its element size;
 *         - #okpStatusStepNotMultiple: the step of a destination is no multiple of its element size.
 */
OKPCV_API okpStatus okpiSqrIntegral_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst,
                                              int32_t dstStep, int32_t* pSqr, int32_t sqrStep,
                                              RoiSize roiSize, int32_t val, int32_t valSqr);

/**
 * @brief Integral image of 8-bit pixels in 32-bit integers and squared integral image in doubles.
 * @copydetails okpiSqrIntegral_8u32s_C1R
 */
OKPCV_API okpStatus okpiSqrIntegral_8u32s64f_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst,
                                                 int32_t dstStep, double* pSqr, int32_t sqrStep,
                                                 RoiSize roiSize, int32_t val, double valSqr);

/**
 * @brief Integral image of 8-bit pixels in floats and squared integral image in doubles.
 * @copydetails okpiSqrIntegral_8u32s_C1R
 */
OKPCV_API okpStatus okpiSqrIntegral_8u32f64f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                                 int32_t dstStep, double* pSqr, int32_t sqrStep,
                                                 RoiSize roiSize, float val, double valSqr);

/** @} */

/**
 * @defgroup rect_std_dev Window standard deviation
 * @brief Standard deviation of the pixels in a rectangle around or beside every pixel, from integral images.
 *
 * The step that normalises the windows of a detector. For destination pixel @f$ (j, i) @f$ the window covers
 * the source pixels with @f$ j + x \le column < j + x + width @f$ and @f$ i + y \le row < i + y + height @f$,
 * where @f$ x, y, width, height @f$ are those of the rectangle. With the elements
 * @f$ A = I(j + x, i + y), B = I(j + x + width, i + y), C = I(j + x, i + y + height),
 * D = I(j + x + width, i + y + height) @f$ of the integral image its sum is @f$ s = D - B - C + A @f$; the
 * sum of squares @f$ t @f$ is the same of the squared integral image. The offsets of the integral images
 * cancel.
 *
 * The caller guarantees that both integral images have `rect.y + rect.height + roiSize.height` rows.
 *
 * Source: P. Viola and M. Jones, "Robust Real-Time Face Detection", International Journal of Computer Vision
 * 57 (2004).
 * @{
 */

/**
 * @brief Window standard deviation from an integral image of floats.
 *
 * @f[ dst(j, i) = \sqrt{\max(t k - (s k)^2, 0)}, \qquad k = \frac{1}{width \cdot height} @f]
 *
 * The number of pixels in the window is rounded to single precision and its reciprocal @f$ k @f$ taken in
 * double precision. @f$ s @f$ is formed in the type of the integral image, in the order @f$ ((D - B) - C) + A
 * @f$ (32s wraps), @f$ t @f$ in the same order in double precision; products and difference are in double
 * precision; the variance is rounded to single precision, a NaN becomes 0, and the root is taken in single
 * precision.
 *
 * @param[in]  pSrc    Integral image.
 * @param[in]  srcStep Step of the integral image in bytes.
 * @param[in]  pSqr    Squared integral image.
 * @param[in]  sqrStep Step of the squared integral image in bytes.
 * @param[out] pDst    Destination; must not overlap the integral images.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the destination in pixels.
 * @param[in]  rect    The window, relative to the pixel.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height of the region below 1;
 *         - #okpStatusBadStep: the step of an integral image below `rect.x + rect.width + roiSize.width`
 *           times its element size, or that of the destination below 4 * width;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of its image's element size;
 *         - #okpStatusBadSize: `rect.x` or `rect.y` below 0, or `rect.width` or `rect.height` below 1.
 */
OKPCV_API okpStatus okpiRectStdDev_32f_C1R(const float* pSrc, int32_t srcStep, const double* pSqr,
                                           int32_t sqrStep, float* pDst, int32_t dstStep, RoiSize roiSize,
                                           PixelRect rect);

/**
 * @brief Window standard deviation from an integral image of 32-bit integers.
 * @copydetails okpiRectStdDev_32f_C1R
 */
OKPCV_API okpStatus okpiRectStdDev_32s32f_C1R(const int32_t* pSrc, int32_t srcStep, const double* pSqr,
                                              int32_t sqrStep, float* pDst, int32_t dstStep, RoiSize roiSize,
                                              PixelRect rect);

/**
 * @brief Window standard deviation from integral images of 32-bit integers, scaled and rounded.
 *
 * @f[ dst(j, i) = \left\lfloor \sqrt{\max(t r - (s r)^2, 0)} \; 2^{-scaleFactor} + 0.5 \right\rfloor, \qquad
 *     r = \frac{1}{width \cdot height} @f]
 *
 * Sums are formed in 32-bit integers and wrap. @f$ r @f$, the products and the difference are in single
 * precision, each rounded; the root, the scaling and the rounding, half up, are in double precision. Results
 * beyond the type become its largest value.
 *
 * @param[in]  pSrc        Integral image.
 * @param[in]  srcStep     Step of the integral image in bytes.
 * @param[in]  pSqr        Squared integral image.
 * @param[in]  sqrStep     Step of the squared integral image in bytes.
 * @param[out] pDst        Destination; must not overlap the integral images.
 * @param[in]  dstStep     Step of the destination in bytes.
 * @param[in]  roiSize     Size of the destination in pixels.
 * @param[in]  rect        The window, relative to the pixel.
 * @param[in]  scaleFactor Binary logarithm of the divisor; negative values multiply. Any value.
 * @return As okpiRectStdDev_32f_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiRectStdDev_32s_C1RSfs(const int32_t* pSrc, int32_t srcStep, const int32_t* pSqr,
                                              int32_t sqrStep, int32_t* pDst, int32_t dstStep,
                                              RoiSize roiSize, PixelRect rect, int32_t scaleFactor);

/** @} */

#endif /* OKPCV_INTEGRAL_H */
