/**
 * @file features.h
 * @brief Features: positions of local extrema.
 */
#ifndef OKPCV_FEATURES_H
#define OKPCV_FEATURES_H

#include "okpcv/types.h"

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
 *         - #okpStatusBadSize: @p roiWidth below 1, or so large that the size exceeds 2147483647.
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
 * @param[out] pPeak        Positions of the peaks.
 * @param[in]  maxPeakCount Capacity of @p pPeak; the search ends when it is reached.
 * @param[out] pPeakCount   Number of peaks listed.
 * @param[in]  norm         0: the eight neighbours (3 x 3); 1: left, right, upper and lower (a cross).
 * @param[in]  border       Width of a frame in which no peak is reported; 0 peaks when it leaves nothing.
 * @param      pBuffer      Work buffer.
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
