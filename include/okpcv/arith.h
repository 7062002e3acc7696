/**
 * @file arith.h
 * @brief Pixel arithmetic: absolute differences, accumulators, motion history.
 */
#ifndef OKPCV_ARITH_H
#define OKPCV_ARITH_H

#include "okpcv/types.h"

/**
 * @defgroup abs_diff Absolute difference
 * @brief Distance of every pixel of an image to another image or to a constant.
 *
 * The basic step of frame differencing for motion detection.
 * @{
 */

/**
 * @brief Absolute difference of two 8-bit images.
 *
 * @f[ dst(x, y) = | src_1(x, y) - src_2(x, y) | @f]
 *
 * The result is exact; it always fits the type.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[out] pDst     Destination; may be equal to either source.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only).
 */
OKPCV_API okpStatus okpiAbsDiff_8u_C1R(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                       int32_t src2Step, uint8_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * @brief Absolute difference of two 8-bit images of three channels, channel by channel.
 * @copydetails okpiAbsDiff_8u_C1R
 */
OKPCV_API okpStatus okpiAbsDiff_8u_C3R(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                       int32_t src2Step, uint8_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * @brief Absolute difference of two unsigned 16-bit images.
 * @copydetails okpiAbsDiff_8u_C1R
 */
OKPCV_API okpStatus okpiAbsDiff_16u_C1R(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                        int32_t src2Step, uint16_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * @brief Absolute difference of two float images.
 *
 * With @f$ d = src_1(x, y) - src_2(x, y) @f$ in single precision, always the first source minus the second:
 *
 * @f[ dst(x, y) = -d > d \;?\; -d : d @f]
 *
 * A comparison with NaN is false, so a NaN difference is stored as it is, payload and sign unchanged; a
 * difference of -0 is stored as -0; infinities give +Inf.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[out] pDst     Destination; may be equal to either source.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @return As okpiAbsDiff_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiAbsDiff_32f_C1R(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                        int32_t src2Step, float* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * @brief Absolute difference of an 8-bit image and a constant.
 *
 * The constant is first clamped to the range of the type, 0 to 255 (0 to 65535 for 16u):
 *
 * @f[ dst(x, y) = | src(x, y) - \mathrm{clamp}(value) | @f]
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Destination; may be equal to the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  value   Constant; any value is accepted.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only).
 */
OKPCV_API okpStatus okpiAbsDiffC_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                        RoiSize roiSize, int32_t value);

/**
 * @brief Absolute difference of an unsigned 16-bit image and a constant.
 * @copydetails okpiAbsDiffC_8u_C1R
 */
OKPCV_API okpStatus okpiAbsDiffC_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                         int32_t dstStep, RoiSize roiSize, int32_t value);

/**
 * @brief Absolute difference of a float image and a constant.
 *
 * As okpiAbsDiff_32f_C1R() with @f$ d = src(x, y) - value @f$.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[out] pDst    Destination; may be equal to the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  value   Constant; used unchanged, also when it is not finite.
 * @return As okpiAbsDiffC_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiAbsDiffC_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                         RoiSize roiSize, float value);

/** @} */

/**
 * @defgroup accumulate Accumulators
 * @brief Running sums and averages of images in a float image: background averaging and variance.
 *
 * All arithmetic is IEEE single precision, rounded to nearest, one rounding per operation and never fused;
 * integer sources are converted exactly. In the formulas @f$ d @f$ is the accumulator before and @f$ d' @f$
 * after the call. Where two NaNs meet, the first one of the formula stays.
 *
 * The masked forms rewrite every accumulator pixel: they zero the term of an unselected pixel and add it. So
 * an unselected accumulator of -0 becomes +0, a signalling NaN a quiet one, and any other value stays, except
 * where a formula below says otherwise.
 *
 * Some masked forms stream the accumulator past the caches when the call's data does not fit the largest one
 * (see okpGetMaxCacheSizeB()); the values stored are the same.
 * @{
 */

/**
 * @brief Adds an 8-bit image to an accumulator.
 *
 * @f[ d'(x, y) = d(x, y) + src(x, y) @f]
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAdd_8u32f_C1IR(const uint8_t* pSrc, int32_t srcStep, float* pSrcDst,
                                       int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds an unsigned 16-bit image to an accumulator.
 * @copydetails okpiAdd_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAdd_16u32f_C1IR(const uint16_t* pSrc, int32_t srcStep, float* pSrcDst,
                                        int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds an 8-bit image to an accumulator under a mask.
 *
 * @f[ d'(x, y) = d(x, y) + (mask(x, y) \ne 0 \;?\; src(x, y) : 0) @f]
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in]     pMask      Mask; a nonzero byte selects the pixel.
 * @param[in]     maskStep   Step of the mask in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAdd_8u32f_C1IMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                        int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                        RoiSize roiSize);

/**
 * @brief Adds an unsigned 16-bit image to an accumulator under a mask.
 * @copydetails okpiAdd_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAdd_16u32f_C1IMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                         RoiSize roiSize);

/**
 * @brief Adds a float image to an accumulator under a mask.
 * @copydetails okpiAdd_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAdd_32f_C1IMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                      int32_t maskStep, float* pSrcDst, int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds the square of an 8-bit image to an accumulator.
 *
 * @f[ d'(x, y) = d(x, y) + src(x, y)^2 @f]
 *
 * The square is rounded to single precision before it is added.
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddSquare_8u32f_C1IR(const uint8_t* pSrc, int32_t srcStep, float* pSrcDst,
                                             int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds the square of an unsigned 16-bit image to an accumulator.
 * @copydetails okpiAddSquare_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddSquare_16u32f_C1IR(const uint16_t* pSrc, int32_t srcStep, float* pSrcDst,
                                              int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds the square of a float image to an accumulator.
 * @copydetails okpiAddSquare_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddSquare_32f_C1IR(const float* pSrc, int32_t srcStep, float* pSrcDst,
                                           int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds the square of an 8-bit image to an accumulator under a mask.
 *
 * @f[ d'(x, y) = d(x, y) + (mask(x, y) \ne 0 \;?\; src(x, y) : 0)^2 @f]
 *
 * The square is rounded to single precision before it is added.
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in]     pMask      Mask; a nonzero byte selects the pixel.
 * @param[in]     maskStep   Step of the mask in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddSquare_8u32f_C1IMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                              int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                              RoiSize roiSize);

/**
 * @brief Adds the square of an unsigned 16-bit image to an accumulator under a mask.
 * @copydetails okpiAddSquare_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddSquare_16u32f_C1IMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                               int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                               RoiSize roiSize);

/**
 * @brief Adds the square of a float image to an accumulator under a mask.
 * @copydetails okpiAddSquare_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddSquare_32f_C1IMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                            int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                            RoiSize roiSize);

/**
 * @brief Adds the product of two 8-bit images to an accumulator.
 *
 * @f[ d'(x, y) = d(x, y) + src_1(x, y) \, src_2(x, y) @f]
 *
 * The product is rounded to single precision before it is added.
 *
 * @param[in]     pSrc1      First source.
 * @param[in]     src1Step   Step of the first source in bytes.
 * @param[in]     pSrc2      Second source.
 * @param[in]     src2Step   Step of the second source in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of either source below the
 *           row's width in bytes, then that of either source no multiple of the element size;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddProduct_8u32f_C1IR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                              int32_t src2Step, float* pSrcDst, int32_t srcDstStep,
                                              RoiSize roiSize);

/**
 * @brief Adds the product of two unsigned 16-bit images to an accumulator.
 * @copydetails okpiAddProduct_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddProduct_16u32f_C1IR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                               int32_t src2Step, float* pSrcDst, int32_t srcDstStep,
                                               RoiSize roiSize);

/**
 * @brief Adds the product of two float images to an accumulator.
 * @copydetails okpiAddProduct_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddProduct_32f_C1IR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                            int32_t src2Step, float* pSrcDst, int32_t srcDstStep,
                                            RoiSize roiSize);

/**
 * @brief Adds the product of two 8-bit images to an accumulator under a mask.
 *
 * @f[ d'(x, y) = d(x, y) + (mask(x, y) \ne 0 \;?\; src_1(x, y) : 0) \, src_2(x, y) @f]
 *
 * The product is rounded to single precision before it is added.
 *
 * @param[in]     pSrc1      First source.
 * @param[in]     src1Step   Step of the first source in bytes.
 * @param[in]     pSrc2      Second source.
 * @param[in]     src2Step   Step of the second source in bytes.
 * @param[in]     pMask      Mask; a nonzero byte selects the pixel.
 * @param[in]     maskStep   Step of the mask in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of either source below the
 *           row's width in bytes, then that of either source no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddProduct_8u32f_C1IMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                               int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                               float* pSrcDst, int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Adds the product of two unsigned 16-bit images to an accumulator under a mask.
 * @copydetails okpiAddProduct_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddProduct_16u32f_C1IMR(const uint16_t* pSrc1, int32_t src1Step,
                                                const uint16_t* pSrc2, int32_t src2Step, const uint8_t* pMask,
                                                int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                                RoiSize roiSize);

/**
 * @brief Adds the product of two float images to an accumulator under a mask.
 *
 * The term of an unselected pixel is +0 times the second source: where that is infinite or NaN, the
 * accumulator becomes NaN even though its mask byte is 0.
 *
 * @copydetails okpiAddProduct_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddProduct_32f_C1IMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             float* pSrcDst, int32_t srcDstStep, RoiSize roiSize);

/**
 * @brief Blends an 8-bit image into a running average.
 *
 * @f[ d'(x, y) = ((src(x, y) - d(x, y)) \, weight) + d(x, y) @f]
 *
 * Evaluated in exactly this order: difference, product, sum.
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     weight     Weight of the new image; any float, used unchanged.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddWeighted_8u32f_C1IR(const uint8_t* pSrc, int32_t srcStep, float* pSrcDst,
                                               int32_t srcDstStep, RoiSize roiSize, float weight);

/**
 * @brief Blends an unsigned 16-bit image into a running average.
 * @copydetails okpiAddWeighted_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddWeighted_16u32f_C1IR(const uint16_t* pSrc, int32_t srcStep, float* pSrcDst,
                                                int32_t srcDstStep, RoiSize roiSize, float weight);

/**
 * @brief Blends a float image into a running average.
 * @copydetails okpiAddWeighted_8u32f_C1IR
 */
OKPCV_API okpStatus okpiAddWeighted_32f_C1IR(const float* pSrc, int32_t srcStep, float* pSrcDst,
                                             int32_t srcDstStep, RoiSize roiSize, float weight);

/**
 * @brief Blends an 8-bit image into a running average under a mask.
 *
 * @f[ d'(x, y) = (mask(x, y) \ne 0 \;?\; (src(x, y) - d(x, y)) \, weight : 0) + d(x, y) @f]
 *
 * Evaluated in exactly this order: difference, product, sum.
 *
 * An unselected pixel keeps its value whatever the source holds (-0 becomes +0).
 *
 * @param[in]     pSrc       Source.
 * @param[in]     srcStep    Step of the source in bytes.
 * @param[in]     pMask      Mask; a nonzero byte selects the pixel.
 * @param[in]     maskStep   Step of the mask in bytes.
 * @param[in,out] pSrcDst    Accumulator.
 * @param[in]     srcDstStep Step of the accumulator in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     weight     Weight of the new image; any float, used unchanged.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the accumulator below 4 * width,
 *           then no multiple of 4.
 */
OKPCV_API okpStatus okpiAddWeighted_8u32f_C1IMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                                int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                                RoiSize roiSize, float weight);

/**
 * @brief Blends an unsigned 16-bit image into a running average under a mask.
 * @copydetails okpiAddWeighted_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddWeighted_16u32f_C1IMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                                 int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                                 RoiSize roiSize, float weight);

/**
 * @brief Blends a float image into a running average under a mask.
 * @copydetails okpiAddWeighted_8u32f_C1IMR
 */
OKPCV_API okpStatus okpiAddWeighted_32f_C1IMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                              int32_t maskStep, float* pSrcDst, int32_t srcDstStep,
                                              RoiSize roiSize, float weight);

/**
 * @brief Weighted average of two float images.
 *
 * @f[ dst(x, y) = ((src_1(x, y) - src_2(x, y)) \, weight) + src_2(x, y) @f]
 *
 * Evaluated in exactly this order: the first source carries the weight @f$ weight @f$, the second
 * @f$ 1 - weight @f$.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[out] pDst     Destination; may be equal to either source.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  weight   Weight of the first source; any float, used unchanged.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below 4 * width;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of 4.
 */
OKPCV_API okpStatus okpiAddWeighted_32f_C1R(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                            int32_t src2Step, float* pDst, int32_t dstStep, RoiSize roiSize,
                                            float weight);

/** @} */

/**
 * @defgroup motion_history Motion history
 * @brief Image of the times at which each pixel last moved.
 * @{
 */

/**
 * @brief Updates a motion-history image with an 8-bit silhouette.
 *
 * A silhouette pixel counts as moving when it is not zero; for float silhouettes, when it does not compare
 * equal to 0, so NaN moves and -0 does not. With the threshold @f$ t = timestamp - mhiDuration @f$, formed
 * once in single precision:
 *
 * @f[ mhi'(x, y) = \begin{cases} timestamp & \text{if the silhouette moves at } (x, y) \\
 *                                0         & \text{otherwise, if } mhi(x, y) < t \\
 *                                mhi(x, y) & \text{otherwise} \end{cases} @f]
 *
 * A comparison with NaN is false: NaN histories stay, and with a NaN threshold no pixel is cleared.
 *
 * Source: J. W. Davis and A. F. Bobick, "The Representation and Recognition of Human Movement Using Temporal
 * Templates", CVPR 1997.
 *
 * @param[in]     pSilhouette Silhouette.
 * @param[in]     silhStep    Step of the silhouette in bytes.
 * @param[in,out] pMHI        Motion-history image.
 * @param[in]     mhiStep     Step of the history in bytes.
 * @param[in]     roiSize     Size of the region in pixels.
 * @param[in]     timestamp   Current time, in the caller's unit.
 * @param[in]     mhiDuration How long motion is remembered, in the same unit.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of its image's element size;
 *         - #okpStatusOutOfRange: @p mhiDuration is negative (NaN is not).
 */
OKPCV_API okpStatus okpiUpdateMotionHistory_8u32f_C1IR(const uint8_t* pSilhouette, int32_t silhStep,
                                                       float* pMHI, int32_t mhiStep, RoiSize roiSize,
                                                       float timestamp, float mhiDuration);

/**
 * @brief Updates a motion-history image with an unsigned 16-bit silhouette.
 * @copydetails okpiUpdateMotionHistory_8u32f_C1IR
 */
OKPCV_API okpStatus okpiUpdateMotionHistory_16u32f_C1IR(const uint16_t* pSilhouette, int32_t silhStep,
                                                        float* pMHI, int32_t mhiStep, RoiSize roiSize,
                                                        float timestamp, float mhiDuration);

/**
 * @brief Updates a motion-history image with a float silhouette.
 * @copydetails okpiUpdateMotionHistory_8u32f_C1IR
 */
OKPCV_API okpStatus okpiUpdateMotionHistory_32f_C1IR(const float* pSilhouette, int32_t silhStep, float* pMHI,
                                                     int32_t mhiStep, RoiSize roiSize, float timestamp,
                                                     float mhiDuration);

/** @} */

#endif /* OKPCV_ARITH_H */
