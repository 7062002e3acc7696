/**
 * @file geometry.h
 * @brief Geometric sampling: pixels along a line, copies shifted by a fraction of a pixel.
 */
#ifndef OKPCV_GEOMETRY_H
#define OKPCV_GEOMETRY_H

#include "okpcv/types.h"

/**
 * @defgroup sample_line Line sampling
 * @brief The pixels that a digital straight line passes through, for profiles and display.
 * @{
 */

/**
 * @brief Copies the pixels along a line of an 8-bit image to an array.
 *
 * With @f$ M @f$ the longer and @f$ m @f$ the shorter of @f$ |x_2 - x_1| @f$ and @f$ |y_2 - y_1| @f$ (y
 * counts as the longer when they are equal), an error @f$ e = M @f$ and the current pixel at @p pt1, this is
 * repeated @f$ n = M + 1 @f$ times: copy the current pixel to the next sample;
 * @f$ e \leftarrow e - 2m @f$; if @f$ e < 0 @f$ then @f$ e \leftarrow e + 2M @f$ and move one pixel along the
 * shorter axis; move one pixel along the longer axis.
 *
 * Every sample is an existing pixel. The first is @p pt1 and the last @p pt2. Where the exact line passes
 * midway between two pixels it stays, so a line and its reverse may visit different pixels. Equal points give
 * one sample.
 *
 * Source: J. E. Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4
 * (1965).
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[out] pDst    Array of n pixels, all channels of a pixel together; must not overlap the source.
 * @param[in]  pt1     First point, inside the region.
 * @param[in]  pt2     Last point, inside the region.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: the step no multiple of the element size (elements wider than a byte);
 *         - #okpStatusOutOfRange: a point outside the region;
 *         - #okpStatusLineTooLong: n exceeds 2147483647, which points inside a region never reach.
 */
OKPCV_API okpStatus okpiSampleLine_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                          uint8_t* pDst, PixelPoint pt1, PixelPoint pt2);

/**
 * @brief Copies the pixels along a line of an 8-bit image of three channels to an array.
 * @copydetails okpiSampleLine_8u_C1R
 */
OKPCV_API okpStatus okpiSampleLine_8u_C3R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                          uint8_t* pDst, PixelPoint pt1, PixelPoint pt2);

/**
 * @brief Copies the pixels along a line of an unsigned 16-bit image to an array.
 * @copydetails okpiSampleLine_8u_C1R
 */
OKPCV_API okpStatus okpiSampleLine_16u_C1R(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                           uint16_t* pDst, PixelPoint pt1, PixelPoint pt2);

/**
 * @brief Copies the pixels along a line of an unsigned 16-bit image of three channels to an array.
 * @copydetails okpiSampleLine_8u_C1R
 */
OKPCV_API okpStatus okpiSampleLine_16u_C3R(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                           uint16_t* pDst, PixelPoint pt1, PixelPoint pt2);

/**
 * @brief Copies the pixels along a line of a float image to an array.
 * @copydetails okpiSampleLine_8u_C1R
 */
OKPCV_API okpStatus okpiSampleLine_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize roiSize, float* pDst,
                                           PixelPoint pt1, PixelPoint pt2);

/**
 * @brief Copies the pixels along a line of a float image of three channels to an array.
 * @copydetails okpiSampleLine_8u_C1R
 */
OKPCV_API okpStatus okpiSampleLine_32f_C3R(const float* pSrc, int32_t srcStep, RoiSize roiSize, float* pDst,
                                           PixelPoint pt1, PixelPoint pt2);

/** @} */

/**
 * @defgroup copy_subpix Sub-pixel copy
 * @brief Copies of a region shifted by a fraction of a pixel, by bilinear interpolation.
 *
 * Only the fractional parts of the shift count; the caller places the source pointer at its integer part.
 * With trunc rounding towards zero, @f$ f = d - trunc(d) @f$; a negative one is replaced by
 * @f$ (d + 1) - trunc(d) @f$, all in single precision, so a shift of -0.25 acts as 0.75 and one of 1.5 as
 * 0.5. A shift of magnitude @f$ 2^{23} @f$ or more has no fraction, and one that is not finite counts as
 * having none.
 *
 * The source must be readable one column to the right of the region and one row below it.
 * @{
 */

/**
 * @brief Copies an 8-bit region shifted by a fraction of a pixel.
 *
 * The weights are integers in units of 1/16384. With @f$ a = trunc(16384 f + 0.5) @f$ for each axis,
 *
 * @f[ w_{00} = \lfloor ((16384 - a_y)(16384 - a_x) + 16384) / 16384 \rfloor \quad
 *     w_{01} = \lfloor ((16384 - a_y) a_x + 16384) / 16384 \rfloor @f]
 * @f[ w_{10} = \lfloor (a_y (16384 - a_x) + 16384) / 16384 \rfloor \quad
 *     w_{11} = \lfloor (a_y a_x + 16384) / 16384 \rfloor @f]
 *
 * What their sum exceeds 16384 by is taken from one of them: the first of
 * @f$ w_{00}, w_{10}, w_{01}, w_{11} @f$ that is at least as large as each other. So a shift without fraction
 * has the weights 16381, 1, 1, 1. Then
 *
 * @f[ S = w_{00} s(x, y) + w_{01} s(x + 1, y) + w_{10} s(x, y + 1) + w_{11} s(x + 1, y + 1) @f]
 * @f[ dst(x, y) = \lfloor (S + 8192) / 16384 \rfloor @f]
 *
 * @param[in]  pSrc    Source; (width + 1) x (height + 1) pixels are read.
 * @param[in]  srcStep Step of the source in bytes; the row's width suffices.
 * @param[out] pDst    Destination; must not overlap the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  dx      Shift to the right, any value.
 * @param[in]  dy      Shift down, any value.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of its image's element size (elements wider
 *           than a byte).
 */
OKPCV_API okpStatus okpiCopySubpix_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                          int32_t dstStep, RoiSize roiSize, float dx, float dy);

/**
 * @brief Copies an 8-bit region shifted by a fraction of a pixel to a scaled unsigned 16-bit image.
 *
 * With the weights and the sum @f$ S @f$ of okpiCopySubpix_8u_C1R() and @f$ k = 14 + scaleFactor @f$:
 *
 * @f[ dst(x, y) = \mathrm{saturate}(\lfloor (S + 2^{k - 1}) / 2^k \rfloor) @f]
 *
 * The scale factor is meaningful from -22, where every nonzero pixel saturates, to 8, from where on the
 * result is at most 1. Others are accepted and follow the same rule: for k = 0 the result is saturate(S), for
 * negative k it is saturate(@f$ 2^{-k} S @f$), and for k above 22 it is 0.
 *
 * @param[in]  pSrc        Source; (width + 1) x (height + 1) pixels are read.
 * @param[in]  srcStep     Step of the source in bytes; the row's width suffices.
 * @param[out] pDst        Destination; must not overlap the source.
 * @param[in]  dstStep     Step of the destination in bytes.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  dx          Shift to the right, any value.
 * @param[in]  dy          Shift down, any value.
 * @param[in]  scaleFactor The result is divided by 2 to this power.
 * @return As okpiCopySubpix_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiCopySubpix_8u16u_C1R_Sfs(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                 int32_t dstStep, RoiSize roiSize, float dx, float dy,
                                                 int32_t scaleFactor);

/**
 * @brief Copies an unsigned 16-bit region shifted by a fraction of a pixel.
 *
 * In single precision, with the fractions @f$ f_x @f$ and @f$ f_y @f$ of the shift and the weights
 * @f$ w_{00} = (1 - f_x)(1 - f_y) @f$, @f$ w_{01} = f_x (1 - f_y) @f$, @f$ w_{10} = (1 - f_x) f_y @f$ and
 * @f$ w_{11} = f_x f_y @f$, each rounded once, in this order of additions:
 *
 * @f[ dst(x, y) = (w_{00} s(x, y) + w_{01} s(x + 1, y)) + (w_{10} s(x, y + 1) + w_{11} s(x + 1, y + 1)) @f]
 *
 * 16-bit destinations take the nearest integer, ties to even, saturated.
 *
 * @param[in]  pSrc    Source; (width + 1) x (height + 1) pixels are read.
 * @param[in]  srcStep Step of the source in bytes; the row's width suffices.
 * @param[out] pDst    Destination; must not overlap the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  dx      Shift to the right, any value.
 * @param[in]  dy      Shift down, any value.
 * @return As okpiCopySubpix_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiCopySubpix_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, float dx, float dy);

/**
 * @brief Copies an 8-bit region shifted by a fraction of a pixel to a float image.
 * @copydetails okpiCopySubpix_16u_C1R
 */
OKPCV_API okpStatus okpiCopySubpix_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                             int32_t dstStep, RoiSize roiSize, float dx, float dy);

/**
 * @brief Copies an unsigned 16-bit region shifted by a fraction of a pixel to a float image.
 * @copydetails okpiCopySubpix_16u_C1R
 */
OKPCV_API okpStatus okpiCopySubpix_16u32f_C1R(const uint16_t* pSrc, int32_t srcStep, float* pDst,
                                              int32_t dstStep, RoiSize roiSize, float dx, float dy);

/**
 * @brief Copies a float region shifted by a fraction of a pixel.
 * @copydetails okpiCopySubpix_16u_C1R
 */
OKPCV_API okpStatus okpiCopySubpix_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                           RoiSize roiSize, float dx, float dy);

/** @} */

#endif /* OKPCV_GEOMETRY_H */
