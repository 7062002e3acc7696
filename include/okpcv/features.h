/**
 * @file features.h
 * @brief Features: the Canny edge detector, positions of local extrema.
 */
#ifndef OKPCV_FEATURES_H
#define OKPCV_FEATURES_H

#include "okpcv/types.h"

/**
 * @defgroup canny Canny edge detector
 * @brief Edges of one pixel's width, found by gradient magnitude, suppression off the ridges, and hysteresis.
 *
 * From the horizontal and vertical derivatives @f$ d_x @f$ and @f$ d_y @f$ of an image:
 *
 * 1. The magnitude is @f$ m = |d_x| + |d_y| @f$ (L1) or @f$ m = d_x^2 + d_y^2 @f$ (L2, with both thresholds
 *    squared in single precision and no square root taken). It becomes 0 unless it passes the low threshold:
 *    for integer derivatives @f$ m > trunc(low) @f$, for float ones @f$ m \ge low @f$. Outside the region
 *    magnitudes are 0. NaN magnitudes do not pass.
 * 2. A pixel survives when its magnitude exceeds that of the two neighbours along the gradient. The direction
 *    is vertical when @f$ |d_y| > 2.414213562373095 \, |d_x| @f$, else horizontal when
 *    @f$ 0.41421356237309503 \, |d_x| > |d_y| @f$ (the products formed in double and rounded to single
 *    precision), else diagonal: up-left and down-right when the derivatives have the same sign, zero counting
 *    as positive, up-right and down-left otherwise. In the vertical and horizontal directions the magnitude
 *    may equal that of the neighbour below or to the right.
 * 3. Survivors whose magnitude, as a float, exceeds the high threshold are edges, and so are survivors that
 *    touch an edge at a side or a corner.
 *
 * With integer derivatives a low threshold beyond the integers leaves no edge, and a threshold that is NaN
 * never does. The squares of two extreme 16-bit derivatives, -32768, add up to 2147483648 without overflow.
 * Large destinations are streamed past the caches (see okpGetMaxCacheSizeB()).
 *
 * Source: J. Canny, "A Computational Approach to Edge Detection", IEEE Transactions on Pattern Analysis and
 * Machine Intelligence 8 (1986).
 * @{
 */

/**
 * @brief Size of the work buffer of okpiCanny_16s8u_C1R() and okpiCanny_32f8u_C1R().
 *
 * @f[ 16 \cdot width + k \, (width + 2)(height + 2) + 160 @f]
 *
 * with k = 5 where width and height are below 65533 and k = 9 otherwise.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Size in bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pBufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: the size exceeds 2147483647.
 */
OKPCV_API okpStatus okpiCannyGetSize(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Size of the work buffer of okpiCanny_16s8u_C1R_L() and okpiCanny_32f8u_C1R_L().
 *
 * The formula of okpiCannyGetSize() in 64 bits.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Size in bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pBufferSize is null;
 *         - #okpStatusSizeTooLarge: width or height above 2147483647;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: the size exceeds 64 bits.
 */
OKPCV_API okpStatus okpiCannyGetSize_L(RoiSizeL roiSize, int64_t* pBufferSize);

/**
 * @brief Edges from 16-bit derivatives, by the L1 magnitude.
 *
 * @param[in]  pSrcDx      Horizontal derivative: right minus left.
 * @param[in]  srcDxStep   Step of the horizontal derivative in bytes.
 * @param[in]  pSrcDy      Vertical derivative: lower minus upper.
 * @param[in]  srcDyStep   Step of the vertical derivative in bytes.
 * @param[out] pDstEdges   Edge map: 255 on edges, 0 elsewhere; must not overlap the derivatives.
 * @param[in]  dstEdgeStep Step of the edge map in bytes.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  lowThresh   Low threshold, not negative.
 * @param[in]  highThresh  High threshold, not below the low one.
 * @param      pBuffer     Work buffer of the size that okpiCannyGetSize() gives; needs no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a derivative's step no multiple of its element size;
 *         - #okpStatusBadArgument: the low threshold is negative or above the high one.
 */
OKPCV_API okpStatus okpiCanny_16s8u_C1R(const int16_t* pSrcDx, int32_t srcDxStep, const int16_t* pSrcDy,
                                        int32_t srcDyStep, uint8_t* pDstEdges, int32_t dstEdgeStep,
                                        RoiSize roiSize, float lowThresh, float highThresh, uint8_t* pBuffer);

/**
 * @brief Edges from float derivatives, by the L1 magnitude.
 * @copydetails okpiCanny_16s8u_C1R
 */
OKPCV_API okpStatus okpiCanny_32f8u_C1R(const float* pSrcDx, int32_t srcDxStep, const float* pSrcDy,
                                        int32_t srcDyStep, uint8_t* pDstEdges, int32_t dstEdgeStep,
                                        RoiSize roiSize, float lowThresh, float highThresh, uint8_t* pBuffer);

/**
 * @brief Edges from 16-bit derivatives, by either magnitude, 64-bit sizes.
 *
 * @param[in]  pSrcDx      Horizontal derivative: right minus left.
 * @param[in]  srcDxStep   Step of the horizontal derivative in bytes.
 * @param[in]  pSrcDy      Vertical derivative: lower minus upper.
 * @param[in]  srcDyStep   Step of the vertical derivative in bytes.
 * @param[out] pDstEdges   Edge map: 255 on edges, 0 elsewhere; must not overlap the derivatives.
 * @param[in]  dstEdgeStep Step of the edge map in bytes.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  lowThresh   Low threshold.
 * @param[in]  highThresh  High threshold.
 * @param[in]  norm        #NormL1 or #NormL2.
 * @param      pBuffer     Work buffer of the size that okpiCannyGetSize_L() gives; needs no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusSizeTooLarge: width, height or a step above 2147483647;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a derivative's step no multiple of its element size;
 *         - #okpStatusBadArgument: the low threshold (for L2 both are squared first) is negative or above the
 *           high one;
 *         - #okpStatusBadNorm: @p norm is neither #NormL1 nor #NormL2.
 */
OKPCV_API okpStatus okpiCanny_16s8u_C1R_L(const int16_t* pSrcDx, int64_t srcDxStep, const int16_t* pSrcDy,
                                          int64_t srcDyStep, uint8_t* pDstEdges, int64_t dstEdgeStep,
                                          RoiSizeL roiSize, float lowThresh, float highThresh, NormKind norm,
                                          uint8_t* pBuffer);

/**
 * @brief Edges from float derivatives, by either magnitude, 64-bit sizes.
 * @copydetails okpiCanny_16s8u_C1R_L
 */
OKPCV_API okpStatus okpiCanny_32f8u_C1R_L(const float* pSrcDx, int64_t srcDxStep, const float* pSrcDy,
                                          int64_t srcDyStep, uint8_t* pDstEdges, int64_t dstEdgeStep,
                                          RoiSizeL roiSize, float lowThresh, float highThresh, NormKind norm,
                                          uint8_t* pBuffer);

/**
 * @brief Size of the work buffer of okpiCannyBorder_8u_C1R().
 *
 * With m = 3 or 5 the size of the mask, @f$ P = (width + m - 1)(height + m - 1) @f$ and @f$ R @f$ rounding up
 * to a multiple of 32:
 *
 * @f[ (\min(width, height) < m \;?\; R(P) : 0) + R(16 (width + m - 1)) + R(P) + R(4P) + 64 @f]
 *
 * @param[in]  roiSize        Size of the region in pixels.
 * @param[in]  derivativeKind 2: Sobel, 5: Scharr.
 * @param[in]  mask           #MaskSize3x3, or for Sobel #MaskSize5x5.
 * @param[in]  dataType       #DataType8u.
 * @param[out] pBufferSize    Size in bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pBufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadMaskKind: the mask is neither 3 x 3 nor 5 x 5, or 5 x 5 for Scharr;
 *         - #okpStatusBadArgument: @p derivativeKind is neither 2 nor 5;
 *         - #okpStatusBadDataType: @p dataType is not #DataType8u;
 *         - #okpStatusSizeTooLarge: the size exceeds 2147483647.
 */
OKPCV_API okpStatus okpiCannyBorderGetSize(RoiSize roiSize, int32_t derivativeKind, MaskSizeCode mask,
                                           DataTypeCode dataType, int32_t* pBufferSize);

/**
 * @brief Edges of an 8-bit image.
 *
 * The derivatives are correlations with a smoothing kernel across and a difference kernel along the axis,
 * right minus left and lower minus upper, unscaled: for Sobel 3 x 3 (1 2 1) and (-1 0 1), for Sobel 5 x 5 (1
 * 4 6 4 1) and (-1 -2 0 2 1), for Scharr (3 10 3) and (-1 0 1).
 *
 * Source of the Scharr kernel: H. Scharr, "Optimale Operatoren in der Digitalen Bildverarbeitung", Heidelberg
 * University 2000.
 *
 * @param[in]  pSrc           Source.
 * @param[in]  srcStep        Step of the source in bytes.
 * @param[out] pDst           Edge map: 255 on edges, 0 elsewhere; must not overlap the source.
 * @param[in]  dstStep        Step of the edge map in bytes.
 * @param[in]  roiSize        Size of the region in pixels.
 * @param[in]  derivativeKind 2: Sobel, 5: Scharr.
 * @param[in]  mask           #MaskSize3x3, or for Sobel #MaskSize5x5.
 * @param[in]  border         #BorderReplicate or #BorderConstant with any side flags, or #BorderInMemory. On
 *                            a side in memory as many pixels as the mask reaches, 1 or 2, are read beyond the
 *                            region.
 * @param[in]  borderValue    Pixels outside the region, for #BorderConstant; ignored for other kinds.
 * @param[in]  lowThresh      Low threshold, not negative.
 * @param[in]  highThresh     High threshold, not below the low one.
 * @param[in]  norm           #NormL1 or #NormL2.
 * @param      pBuffer        Work buffer of the size that okpiCannyBorderGetSize() gives; needs no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusBadMaskKind: the mask is neither 3 x 3 nor 5 x 5, or 5 x 5 for Scharr;
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width;
 *         - #okpStatusBadArgument: @p derivativeKind is neither 2 nor 5;
 *         - #okpStatusBadArgument: @p norm is neither #NormL1 nor #NormL2, or the low threshold is negative
 *           or above the high one;
 *         - #okpStatusBadBorder: @p border is not accepted.
 */
OKPCV_API okpStatus okpiCannyBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, int32_t derivativeKind,
                                           MaskSizeCode mask, BorderKind border, uint8_t borderValue,
                                           float lowThresh, float highThresh, NormKind norm,
                                           uint8_t* pBuffer);

/** @} */

/**
 * @defgroup peaks Peak finding
 * @brief Local extrema of a response image, for example of a corner or blob detector.
 * @{
 */

/**
 * @brief Size of the work buffer of okpiFindPeaks3x3_32f_C1R().
 *
 * @f[ \lfloor (32 \cdot roiWidth + 160) / 128 \rfloor \cdot 128 + 32 @f]
 *
 * @param[in]  roiWidth    Width of the region in pixels.
 * @param[out] pBufferSize Size in bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pBufferSize is null;
 *         - #okpStatusBadSize: @p roiWidth below 1;
 *         - #okpStatusSizeTooLarge: the size exceeds 2147483647.
 */
OKPCV_API okpStatus okpiFindPeaks3x3GetBufferSize_32f_C1R(int32_t roiWidth, int32_t* pBufferSize);

/**
 * @brief Size of the work buffer of okpiFindPeaks3x3_32s_C1R().
 * @copydetails okpiFindPeaks3x3GetBufferSize_32f_C1R
 */
OKPCV_API okpStatus okpiFindPeaks3x3GetBufferSize_32s_C1R(int32_t roiWidth, int32_t* pBufferSize);

/**
 * @brief Lists the local extrema of a float image.
 *
 * A pixel v with @f$ |v| > threshold @f$ is a peak when it equals the extremum of its neighbourhood, itself
 * included:
 *
 * @f[ v > 0 \text{ and } |v - \max| \le \varepsilon \quad\text{or}\quad
 *     v \le 0 \text{ and } |v - \min| \le \varepsilon @f]
 *
 * with @f$ \varepsilon = 2^{-126} @f$, the smallest normal float, which in practice means equality (integers
 * compare exactly). Every pixel of a plateau is reported. A positive pixel is never a minimum, and a zero or
 * negative one never a maximum. NaN and infinities are no peaks; NaN neighbours are ignored.
 *
 * Peaks are listed in raster order: by rows from the top, within a row from the left.
 *
 * @param[in]  pSrc         Response image.
 * @param[in]  srcStep      Step of the image in bytes.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  threshold    Magnitude that a peak must exceed.
 * @param[out] pPeak        Positions of the peaks; must not overlap the image.
 * @param[in]  maxPeakCount Capacity of @p pPeak; the search ends when it is reached.
 * @param[out] pPeakCount   Number of peaks listed.
 * @param[in]  norm         0: the eight neighbours (3 x 3); 1: left, right, upper and lower (a cross).
 * @param[in]  border       Width of a frame, at least 1, in which no peak is reported; 0 peaks when it leaves
 *                          nothing.
 * @param      pBuffer      Work buffer, of the size that the function's `GetBufferSize` reports; needs no
 *                          alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width, height, @p maxPeakCount or @p border below 1;
 *         - #okpStatusBadSize: @p border exceeds half the width or half the height;
 *         - #okpStatusBadStep: the step below 4 * width;
 *         - #okpStatusStepNotMultiple: the step no multiple of 4;
 *         - #okpStatusBadArgument: @p norm neither 0 nor 1.
 */
OKPCV_API okpStatus okpiFindPeaks3x3_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize roiSize,
                                             float threshold, PixelPoint* pPeak, int32_t maxPeakCount,
                                             int32_t* pPeakCount, int32_t norm, int32_t border,
                                             uint8_t* pBuffer);

/**
 * @brief Lists the local extrema of a signed 32-bit image.
 * @copydetails okpiFindPeaks3x3_32f_C1R
 */
OKPCV_API okpStatus okpiFindPeaks3x3_32s_C1R(const int32_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                             int32_t threshold, PixelPoint* pPeak, int32_t maxPeakCount,
                                             int32_t* pPeakCount, int32_t norm, int32_t border,
                                             uint8_t* pBuffer);

/** @} */

#endif /* OKPCV_FEATURES_H */
