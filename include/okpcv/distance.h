/**
 * @file distance.h
 * @brief Distance transforms: how far every pixel lies from the nearest zero pixel.
 */
#ifndef OKPCV_DISTANCE_H
#define OKPCV_DISTANCE_H

#include "okpcv/types.h"

/**
 * @defgroup chamfer_distance Chamfer distance transform
 * @brief Distances along paths of small steps with fixed weights.
 *
 * A 3 x 3 mask has two weights: a for a step along a row or column and b for a diagonal step. A 5 x 5 mask
 * has a third, c, for a knight's move: two pixels one way and one the other. The weights of the common norms:
 *
 * | mask  | norm    | norm code | float weights    | integer weights |
 * |-------|---------|-----------|------------------|-----------------|
 * | 3 x 3 | maximum | 0         | 1, 1             | 1, 1            |
 * | 3 x 3 | L1      | 1         | 1, 2             | 1, 2            |
 * | 3 x 3 | L2      | 2         | 0.955, 1.3693    | 2, 3            |
 * | 5 x 5 | maximum | 0         | 1, 1, 2          | 1, 1, 2         |
 * | 5 x 5 | L1      | 1         | 1, 2, 3          | 1, 2, 3         |
 * | 5 x 5 | L2      | 2         | 1, 1.4, 2.1969   | 5, 7, 11        |
 *
 * Maximum and L1 are exact; L2 is approximated, with integer weights in units of 1/2 and 1/5 of a pixel.
 * okpiTrueDistanceTransform_8u32f_C1R() gives exact L2 distances.
 * @{
 */

/**
 * @brief The float weights of a norm, by a combined code.
 *
 * @param[in]  maskType 10 * mask size + norm code: 30, 31, 32, 50, 51 or 52.
 * @param[out] pMetrics Two weights (a, b) for mask size 3, three (a, b, c) for mask size 5.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusBadArgument: the remainder of @p maskType by 10 above 2;
 *         - #okpStatusNullPointer: @p pMetrics is null;
 *         - #okpStatusBadSize: @p maskType / 10 neither 3 nor 5;
 *         - #okpStatusOutOfRange: @p maskType below 30 or above 52, which the checks before leave no room
 *           for.
 */
OKPCV_API okpStatus okpiGetDistanceTransformMask(int32_t maskType, float* pMetrics);

/**
 * @brief The float weights of a norm.
 *
 * @param[in]  kernelSize Mask size, 3 or 5.
 * @param[in]  norm       0 for the maximum norm, 1 for L1, 2 for L2.
 * @param[out] pMetrics   Two weights (a, b) for mask size 3, three (a, b, c) for mask size 5.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pMetrics is null;
 *         - #okpStatusBadSize: @p kernelSize neither 3 nor 5;
 *         - #okpStatusBadArgument: @p norm not 0, 1 or 2.
 */
OKPCV_API okpStatus okpiGetDistanceTransformMask_32f(int32_t kernelSize, int32_t norm, float* pMetrics);

/**
 * @brief The integer weights of a norm.
 * @copydetails okpiGetDistanceTransformMask_32f
 */
OKPCV_API okpStatus okpiGetDistanceTransformMask_32s(int32_t kernelSize, int32_t norm, int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 3 x 3 mask, as 8-bit integers.
 *
 * Zero pixels get 0. All others are found in two passes. The first goes down the rows, each from left to
 * right:
 *
 * @f[ D(x, y) = \min\{ D(x - 1, y) + a,\; D(x - 1, y - 1) + b,\; D(x, y - 1) + a,\; D(x + 1, y - 1) + b,\; s
 * \} @f]
 *
 * and the second goes back up, each row from right to left:
 *
 * @f[ D(x, y) = \min\{ D(x, y),\; D(x + 1, y) + a,\; D(x + 1, y + 1) + b,\; D(x, y + 1) + a,\;
 *     D(x - 1, y + 1) + b \} @f]
 *
 * where neighbours outside the region are left out and s, the largest value of the destination's type, means
 * that the distance is s or more, or that no zero pixel exists. Sums of integers never overflow, whatever the
 * weights; sums of floats are rounded to single precision. The two passes give the cost of the cheapest path
 * when @f$ a \le b @f$; other weights are accepted, and the formulas above hold.
 *
 * Sources: A. Rosenfeld, J. L. Pfaltz, "Sequential operations in digital picture processing", Journal of the
 * ACM 13 (1966); G. Borgefors, "Distance transformations in digital images", Computer Vision, Graphics and
 * Image Processing 34 (1986).
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[out] pDst     Destination; may be an 8-bit source itself, otherwise must not overlap it.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  pMetrics The weights a, b, at least 1; float weights any number above 0, infinity included.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the destination's step no multiple of its element size (elements wider
 *           than a byte);
 *         - #okpStatusBadMetric: an integer weight below 1, or a float weight that is NaN or not above 0.
 */
OKPCV_API okpStatus okpiDistanceTransform_3x3_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize,
                                                     const int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 3 x 3 mask, as unsigned 16-bit integers.
 * @copydetails okpiDistanceTransform_3x3_8u_C1R
 */
OKPCV_API okpStatus okpiDistanceTransform_3x3_8u16u_C1R(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize,
                                                        const int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 3 x 3 mask, as floats.
 * @copydetails okpiDistanceTransform_3x3_8u_C1R
 */
OKPCV_API okpStatus okpiDistanceTransform_3x3_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                                        int32_t dstStep, RoiSize roiSize,
                                                        const float* pMetrics);

/**
 * @brief Replaces an 8-bit image by its chamfer distances by a 3 x 3 mask.
 *
 * The result is that of okpiDistanceTransform_3x3_8u_C1R().
 *
 * @param[in,out] pSrcDst    Source, and destination.
 * @param[in]     srcDstStep Step of the image in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     pMetrics   The weights a, b, at least 1.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the width;
 *         - #okpStatusBadMetric: a weight below 1.
 */
OKPCV_API okpStatus okpiDistanceTransform_3x3_8u_C1IR(uint8_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                                      const int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 5 x 5 mask, as 8-bit integers.
 *
 * As okpiDistanceTransform_3x3_8u_C1R() with four more neighbours in each pass. The first pass also takes
 * D + c of (x - 2, y - 1), (x + 2, y - 1), (x - 1, y - 2) and (x + 1, y - 2), and the second of (x + 2, y +
 * 1), (x - 2, y + 1), (x + 1, y + 2) and (x - 1, y + 2).
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[out] pDst     Destination; may be an 8-bit source itself, otherwise must not overlap it.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  pMetrics The weights a, b, c, at least 1; float weights any number above 0, infinity included.
 * @return As okpiDistanceTransform_3x3_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiDistanceTransform_5x5_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize,
                                                     const int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 5 x 5 mask, as unsigned 16-bit integers.
 * @copydetails okpiDistanceTransform_5x5_8u_C1R
 */
OKPCV_API okpStatus okpiDistanceTransform_5x5_8u16u_C1R(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize,
                                                        const int32_t* pMetrics);

/**
 * @brief Chamfer distances by a 5 x 5 mask, as floats.
 * @copydetails okpiDistanceTransform_5x5_8u_C1R
 */
OKPCV_API okpStatus okpiDistanceTransform_5x5_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                                        int32_t dstStep, RoiSize roiSize,
                                                        const float* pMetrics);

/**
 * @brief Replaces an 8-bit image by its chamfer distances by a 5 x 5 mask.
 *
 * The result is that of okpiDistanceTransform_5x5_8u_C1R().
 *
 * @param[in,out] pSrcDst    Source, and destination.
 * @param[in]     srcDstStep Step of the image in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     pMetrics   The weights a, b, c, at least 1.
 * @return As okpiDistanceTransform_3x3_8u_C1IR(), in the same order.
 */
OKPCV_API okpStatus okpiDistanceTransform_5x5_8u_C1IR(uint8_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                                      const int32_t* pMetrics);

/** @} */

/**
 * @defgroup exact_distance Exact distance transform
 * @brief Euclidean distances to the nearest zero pixel.
 * @{
 */

/**
 * @brief Size of the work buffer of okpiTrueDistanceTransform_8u32f_C1R().
 *
 * @f[ 52 \cdot 4 \lceil \max(width, height) / 4 \rceil + 12 \cdot height + 84 @f]
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Size in bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pBufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: the size exceeds 2147483647.
 */
OKPCV_API okpStatus okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief The exact Euclidean distance of every pixel to the nearest zero pixel.
 *
 * @f[ D(x, y) = \sqrt{ \min_v \left( f(v, y) + (x - v)^2 \right) } @f]
 *
 * where f(v, y) is the squared distance to the nearest zero pixel of column v. Every row's minimum is the
 * lower envelope of parabolas f(v) + (x - v)^2. The rows are built in single precision: neighbouring
 * parabolas u < v meet at @f$ ((f(v) + v^2) - (f(u) + u^2)) \cdot (0.5 / (v - u)) @f$. The square root is
 * correctly rounded. Where the image has no zero pixel at all, every pixel gets the square root of the
 * largest finite float, about 1.8446743e19. The time depends on the size alone, not on where the zero pixels
 * lie.
 *
 * While width and height are below 2048 the rounding of these steps changes nothing: the results are the
 * distances, correctly rounded. In images wider than 4096 pixels it moves boundaries of the envelope by whole
 * pixels, and distances may come out a few pixels too large, towards the right side the more.
 *
 * Source: P. F. Felzenszwalb, D. P. Huttenlocher, "Distance transforms of sampled functions", Theory of
 * Computing 8 (2012).
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Destination; must not overlap the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param      pBuffer Work buffer, at any address.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the destination's step no multiple of 4;
 *         - #okpStatusSizeTooLarge: the region is so large that no buffer size exists.
 */
OKPCV_API okpStatus okpiTrueDistanceTransform_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                                        int32_t dstStep, RoiSize roiSize, uint8_t* pBuffer);

/** @} */

#endif /* OKPCV_DISTANCE_H */
