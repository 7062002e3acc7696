/**
 * @file stats.h
 * @brief Image statistics: norms, means, standard deviations, extrema.
 */
#ifndef OKPCV_STATS_H
#define OKPCV_STATS_H

#include "okpcv/types.h"

/**
 * @defgroup norms Norms
 * @brief How large an image is, or how far two images are apart, over the pixels that a mask selects.
 *
 * Sums and maxima run over the selected pixels @f$ M = \{ (x, y) : mask(x, y) \ne 0 \} @f$; what an
 * unselected pixel holds, NaN included, has no influence. In the `C3CMR` forms the values are those of one
 * channel of a three-channel image. When no pixel is selected, every sum and maximum is 0.
 *
 * The result is a 64-bit float. How it is accumulated depends on the type of the image:
 * - 8u: exactly, in integers, for any region; the sum of squares is a 64-bit integer.
 * - 16u: exactly, in integers, for any region; sums are then converted to a 64-bit float, so they are exact
 *   up to @f$ 2^{53} @f$ and correctly rounded beyond.
 * - 32f: in single precision, one rounding per operation. A largest value is exact, and a NaN is never the
 *   largest. A sum is formed of sixteen partial sums per block of about a thousand pixels and pairwise over
 *   the blocks, in one order that depends on the size of the region alone. With @f$ n @f$ blocks its relative
 *   error is at most @f$ (71 + \log_2 n) \, 2^{-24} @f$, below @f$ 6 \cdot 10^{-6} @f$ for regions of up to
 *   @f$ 2^{31} @f$ pixels, terms included, as long as no operation overflows or underflows. A NaN or an
 *   infinity among the selected values spreads as IEEE arithmetic has it.
 *
 * Square roots and quotients are taken in 64-bit floats and correctly rounded.
 *
 * Source of the order of summation: N. J. Higham, "The Accuracy of Floating Point Summation", SIAM Journal on
 * Scientific Computing 14 (1993).
 * @{
 */

/**
 * @brief Largest absolute value of an 8-bit image under a mask.
 *
 * @f[ norm = \max_{(x, y) \in M} | src(x, y) | @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width.
 */
OKPCV_API okpStatus okpiNorm_Inf_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute value of an unsigned 16-bit image under a mask.
 * @copydetails okpiNorm_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_Inf_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute value of a float image under a mask.
 * @copydetails okpiNorm_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_Inf_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute values of an 8-bit image under a mask.
 *
 * @f[ norm = \sum_{(x, y) \in M} | src(x, y) | @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width.
 */
OKPCV_API okpStatus okpiNorm_L1_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                        int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute values of an unsigned 16-bit image under a mask.
 * @copydetails okpiNorm_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_L1_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute values of a float image under a mask.
 * @copydetails okpiNorm_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_L1_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean length of an 8-bit image under a mask.
 *
 * @f[ norm = \sqrt{\sum_{(x, y) \in M} src(x, y)^2} @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width.
 */
OKPCV_API okpStatus okpiNorm_L2_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                        int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean length of an unsigned 16-bit image under a mask.
 * @copydetails okpiNorm_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_L2_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean length of a float image under a mask.
 * @copydetails okpiNorm_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNorm_L2_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute value of one channel of an 8-bit three-channel image under a mask.
 *
 * @f[ norm = \max_{(x, y) \in M} | src(x, y) | @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNorm_Inf_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute value of one channel of an unsigned 16-bit three-channel image under a mask.
 * @copydetails okpiNorm_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_Inf_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                           int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute value of one channel of a float three-channel image under a mask.
 * @copydetails okpiNorm_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_Inf_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                           int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute values of one channel of an 8-bit three-channel image under a mask.
 *
 * @f[ norm = \sum_{(x, y) \in M} | src(x, y) | @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNorm_L1_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute values of one channel of an unsigned 16-bit three-channel image under a mask.
 * @copydetails okpiNorm_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_L1_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute values of one channel of a float three-channel image under a mask.
 * @copydetails okpiNorm_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_L1_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean length of one channel of an 8-bit three-channel image under a mask.
 *
 * @f[ norm = \sqrt{\sum_{(x, y) \in M} src(x, y)^2} @f]
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep, then #okpStatusStepNotMultiple: the step of the source below the row's
 *           width in bytes, then no multiple of the element size;
 *         - #okpStatusBadStep: the step of the mask below the width;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNorm_L2_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                         int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean length of one channel of an unsigned 16-bit three-channel image under a mask.
 * @copydetails okpiNorm_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_L2_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean length of one channel of a float three-channel image under a mask.
 * @copydetails okpiNorm_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNorm_L2_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                          int32_t maskStep, RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of two 8-bit images under a mask.
 *
 * @f[ norm = \max_{(x, y) \in M} | src_1(x, y) - src_2(x, y) | @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormDiff_Inf_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of two unsigned 16-bit images under a mask.
 * @copydetails okpiNormDiff_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_Inf_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of two float images under a mask.
 * @copydetails okpiNormDiff_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_Inf_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two 8-bit images under a mask.
 *
 * @f[ norm = \sum_{(x, y) \in M} | src_1(x, y) - src_2(x, y) | @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormDiff_L1_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two unsigned 16-bit images under a mask.
 * @copydetails okpiNormDiff_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_L1_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two float images under a mask.
 * @copydetails okpiNormDiff_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_L1_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two 8-bit images under a mask.
 *
 * @f[ norm = \sqrt{\sum_{(x, y) \in M} (src_1(x, y) - src_2(x, y))^2} @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormDiff_L2_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two unsigned 16-bit images under a mask.
 * @copydetails okpiNormDiff_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_L2_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two float images under a mask.
 * @copydetails okpiNormDiff_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNormDiff_L2_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two 8-bit three-channel images under a mask.
 *
 * @f[ norm = \max_{(x, y) \in M} | src_1(x, y) - src_2(x, y) | @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormDiff_Inf_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two unsigned 16-bit three-channel images under a
 * mask.
 * @copydetails okpiNormDiff_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_Inf_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                               int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                               RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two float three-channel images under a mask.
 * @copydetails okpiNormDiff_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_Inf_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                               int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                               RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two 8-bit three-channel images under a mask.
 *
 * @f[ norm = \sum_{(x, y) \in M} | src_1(x, y) - src_2(x, y) | @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormDiff_L1_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two unsigned 16-bit three-channel images under
 * a mask.
 * @copydetails okpiNormDiff_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_L1_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two float three-channel images under a mask.
 * @copydetails okpiNormDiff_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_L1_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two 8-bit three-channel images under a mask.
 *
 * @f[ norm = \sqrt{\sum_{(x, y) \in M} (src_1(x, y) - src_2(x, y))^2} @f]
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormDiff_L2_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two unsigned 16-bit three-channel images under a mask.
 * @copydetails okpiNormDiff_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_L2_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two float three-channel images under a mask.
 * @copydetails okpiNormDiff_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormDiff_L2_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of two 8-bit images under a mask, relative to the second.
 *
 * @f[ norm = \frac{\max_{(x, y) \in M} | src_1(x, y) - src_2(x, y) |}{\max_{(x, y) \in M} | src_2(x, y) |}
 * @f]
 *
 * The second source is always the divisor. When the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormRel_Inf_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of two unsigned 16-bit images under a mask, relative to the second.
 * @copydetails okpiNormRel_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_Inf_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of two float images under a mask, relative to the second.
 * @copydetails okpiNormRel_Inf_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_Inf_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two 8-bit images under a mask, relative to the second.
 *
 * @f[ norm = \frac{\sum_{(x, y) \in M} | src_1(x, y) - src_2(x, y) |}{\sum_{(x, y) \in M} | src_2(x, y) |}
 * @f]
 *
 * The second source is always the divisor. When the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormRel_L1_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                           int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                           RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two unsigned 16-bit images under a mask, relative to the
 * second.
 * @copydetails okpiNormRel_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_L1_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Sum of the absolute differences of two float images under a mask, relative to the second.
 * @copydetails okpiNormRel_L1_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_L1_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two 8-bit images under a mask, relative to the second.
 *
 * @f[ norm = \sqrt{\frac{\sum_{(x, y) \in M} (src_1(x, y) - src_2(x, y))^2}{\sum_{(x, y) \in M} src_2(x,
 * y)^2}} @f]
 *
 * The second source is always the divisor; the root is taken once, of the quotient of the two sums. When
 * the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiNormRel_L2_8u_C1MR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                           int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                           RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two unsigned 16-bit images under a mask, relative to the second.
 * @copydetails okpiNormRel_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_L2_16u_C1MR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Euclidean distance of two float images under a mask, relative to the second.
 * @copydetails okpiNormRel_L2_8u_C1MR
 */
OKPCV_API okpStatus okpiNormRel_L2_32f_C1MR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two 8-bit three-channel images under a mask,
 * relative to the second.
 *
 * @f[ norm = \frac{\max_{(x, y) \in M} | src_1(x, y) - src_2(x, y) |}{\max_{(x, y) \in M} | src_2(x, y) |}
 * @f]
 *
 * The second source is always the divisor. When the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormRel_Inf_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two unsigned 16-bit three-channel images under a
 * mask, relative to the second.
 * @copydetails okpiNormRel_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_Inf_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Largest absolute difference of one channel of two float three-channel images under a mask,
 * relative to the second.
 * @copydetails okpiNormRel_Inf_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_Inf_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                              int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                              RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two 8-bit three-channel images under a mask,
 * relative to the second.
 *
 * @f[ norm = \frac{\sum_{(x, y) \in M} | src_1(x, y) - src_2(x, y) |}{\sum_{(x, y) \in M} | src_2(x, y) |}
 * @f]
 *
 * The second source is always the divisor. When the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormRel_L1_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two unsigned 16-bit three-channel images under
 * a mask, relative to the second.
 * @copydetails okpiNormRel_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_L1_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Sum of the absolute differences of one channel of two float three-channel images under a mask,
 * relative to the second.
 * @copydetails okpiNormRel_L1_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_L1_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two 8-bit three-channel images under a mask, relative to the
 * second.
 *
 * @f[ norm = \sqrt{\frac{\sum_{(x, y) \in M} (src_1(x, y) - src_2(x, y))^2}{\sum_{(x, y) \in M} src_2(x,
 * y)^2}} @f]
 *
 * The second source is always the divisor; the root is taken once, of the quotient of the two sums. When
 * the divisor is 0, the result is
 * - the quiet NaN with its sign bit set (FFF8000000000000 in hexadecimal) if the numerator is 0 too, as
 *   it is under an empty mask;
 * - +Inf if the numerator is greater than 0;
 * - -Inf otherwise, that is, if the numerator is NaN.
 *
 * @param[in]  pSrc1    First source.
 * @param[in]  src1Step Step of the first source in bytes.
 * @param[in]  pSrc2    Second source.
 * @param[in]  src2Step Step of the second source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pNorm    The norm.
 * @return #okpStatusOk, #okpStatusDivByZeroWarning with the result above when the divisor is 0, or the
 *         first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of a source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiNormRel_L2_8u_C3CMR(const uint8_t* pSrc1, int32_t src1Step, const uint8_t* pSrc2,
                                            int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                            RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two unsigned 16-bit three-channel images under a mask,
 * relative to the second.
 * @copydetails okpiNormRel_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_L2_16u_C3CMR(const uint16_t* pSrc1, int32_t src1Step, const uint16_t* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/**
 * @brief Euclidean distance of one channel of two float three-channel images under a mask, relative to the
 * second.
 * @copydetails okpiNormRel_L2_8u_C3CMR
 */
OKPCV_API okpStatus okpiNormRel_L2_32f_C3CMR(const float* pSrc1, int32_t src1Step, const float* pSrc2,
                                             int32_t src2Step, const uint8_t* pMask, int32_t maskStep,
                                             RoiSize roiSize, int32_t coi, double* pNorm);

/** @} */

/**
 * @defgroup moments Mean and standard deviation
 * @brief Mean and population standard deviation of an image or of one of its channels.
 *
 * The statistics run over all pixels, or over those that a mask selects; what an unselected pixel holds, NaN
 * included, has no influence. The sums of integer images are exact for any region until they are
 * converted to a 64-bit float; those of float images are formed in 64-bit floats, of eight partial sums, in
 * one order that depends on the size of the region alone.
 * @{
 */

/**
 * @brief Mean of an 8-bit image under a mask.
 *
 * @f[ mean = \frac{1}{N} \sum_{(x, y) \in M} src(x, y), \qquad
 *      M = \{ (x, y) : mask(x, y) \ne 0 \}, \quad N = |M| @f]
 *
 * When no pixel is selected, the mean is 0; that is neither an error nor a warning.
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pMean    The mean.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiMean_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                     int32_t maskStep, RoiSize roiSize, double* pMean);

/**
 * @brief Mean of an unsigned 16-bit image under a mask.
 * @copydetails okpiMean_8u_C1MR
 */
OKPCV_API okpStatus okpiMean_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                      int32_t maskStep, RoiSize roiSize, double* pMean);

/**
 * @brief Mean of a float image under a mask.
 * @copydetails okpiMean_8u_C1MR
 */
OKPCV_API okpStatus okpiMean_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                      int32_t maskStep, RoiSize roiSize, double* pMean);

/**
 * @brief Mean of one channel of an 8-bit three-channel image under a mask.
 *
 * @f[ mean = \frac{1}{N} \sum_{(x, y) \in M} src(x, y), \qquad
 *      M = \{ (x, y) : mask(x, y) \ne 0 \}, \quad N = |M| @f]
 *
 * When no pixel is selected, the mean is 0; that is neither an error nor a warning.
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pMean    The mean.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiMean_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                      int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean);

/**
 * @brief Mean of one channel of an unsigned 16-bit three-channel image under a mask.
 * @copydetails okpiMean_8u_C3CMR
 */
OKPCV_API okpStatus okpiMean_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                       int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean);

/**
 * @brief Mean of one channel of a float three-channel image under a mask.
 * @copydetails okpiMean_8u_C3CMR
 */
OKPCV_API okpStatus okpiMean_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                       int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean);

/**
 * @brief Mean and standard deviation of an 8-bit image.
 *
 * With the number of pixels @f$ N @f$ and its reciprocal @f$ r = 1 / N @f$, in 64-bit floats:
 *
 * @f[ mean = r \sum src(x, y), \qquad
 *      stdDev = \sqrt{\left| r \sum src(x, y)^2 - mean^2 \right|} @f]
 *
 * This is the population standard deviation: the divisor is @f$ N @f$, not @f$ N - 1 @f$. Where the spread is
 * so small against the mean that the difference cancels, @f$ 0.05 \, mean^2 > stdDev^2 @f$, it is replaced by
 *
 * @f[ stdDev = \sqrt{\frac{1}{N} \sum (src(x, y) - m)^2} @f]
 *
 * where @f$ m @f$ is the mean rounded to single precision. Float images are read a second time for it; for
 * integer images the sum follows exactly from the other two.
 *
 * Source: T. F. Chan, G. H. Golub and R. J. LeVeque, "Algorithms for Computing the Sample Variance: Analysis
 * and Recommendations", The American Statistician 37 (1983).
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[out] pMean   The mean; may be null.
 * @param[out] pStdDev The standard deviation; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step is below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: the step is no multiple of the element size.
 */
OKPCV_API okpStatus okpiMean_StdDev_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                           double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of an unsigned 16-bit image.
 * @copydetails okpiMean_StdDev_8u_C1R
 */
OKPCV_API okpStatus okpiMean_StdDev_16u_C1R(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                            double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of a float image.
 * @copydetails okpiMean_StdDev_8u_C1R
 */
OKPCV_API okpStatus okpiMean_StdDev_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize roiSize,
                                            double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of an 8-bit image under a mask.
 *
 * As okpiMean_StdDev_8u_C1R() over the selected pixels, with their number as @f$ N @f$. When no pixel is
 * selected, both results are 0; that is neither an error nor a warning.
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[out] pMean    The mean; may be null.
 * @param[out] pStdDev  The standard deviation; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source or the mask is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiMean_StdDev_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                            int32_t maskStep, RoiSize roiSize, double* pMean,
                                            double* pStdDev);

/**
 * @brief Mean and standard deviation of an unsigned 16-bit image under a mask.
 * @copydetails okpiMean_StdDev_8u_C1MR
 */
OKPCV_API okpStatus okpiMean_StdDev_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                             int32_t maskStep, RoiSize roiSize, double* pMean,
                                             double* pStdDev);

/**
 * @brief Mean and standard deviation of a float image under a mask.
 * @copydetails okpiMean_StdDev_8u_C1MR
 */
OKPCV_API okpStatus okpiMean_StdDev_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                             int32_t maskStep, RoiSize roiSize, double* pMean,
                                             double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of an 8-bit three-channel image.
 *
 * As okpiMean_StdDev_8u_C1R() over the channel of interest.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  coi     Channel of interest, 1 to 3.
 * @param[out] pMean   The mean; may be null.
 * @param[out] pStdDev The standard deviation; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step is below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: the step is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiMean_StdDev_8u_C3CR(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                            int32_t coi, double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of an unsigned 16-bit three-channel image.
 * @copydetails okpiMean_StdDev_8u_C3CR
 */
OKPCV_API okpStatus okpiMean_StdDev_16u_C3CR(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                             int32_t coi, double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of a float three-channel image.
 * @copydetails okpiMean_StdDev_8u_C3CR
 */
OKPCV_API okpStatus okpiMean_StdDev_32f_C3CR(const float* pSrc, int32_t srcStep, RoiSize roiSize, int32_t coi,
                                             double* pMean, double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of an 8-bit three-channel image under a mask.
 *
 * As okpiMean_StdDev_8u_C1R() over the channel of interest of the selected pixels, with their number as @f$ N
 * @f$. When no pixel is selected, both results are 0; that is neither an error nor a warning.
 *
 * @param[in]  pSrc     Source.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[in]  pMask    Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep Step of the mask in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  coi      Channel of interest, 1 to 3.
 * @param[out] pMean    The mean; may be null.
 * @param[out] pStdDev  The standard deviation; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source or the mask is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiMean_StdDev_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                             int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean,
                                             double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of an unsigned 16-bit three-channel image under a
 * mask.
 * @copydetails okpiMean_StdDev_8u_C3CMR
 */
OKPCV_API okpStatus okpiMean_StdDev_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                              int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean,
                                              double* pStdDev);

/**
 * @brief Mean and standard deviation of one channel of a float three-channel image under a mask.
 * @copydetails okpiMean_StdDev_8u_C3CMR
 */
OKPCV_API okpStatus okpiMean_StdDev_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                              int32_t maskStep, RoiSize roiSize, int32_t coi, double* pMean,
                                              double* pStdDev);

/** @} */

/**
 * @defgroup extrema Extrema
 * @brief Minimum and maximum of an image or of one of its channels, with the places where they first occur.
 *
 * Places are relative to the region. Among equal extrema the first in row-major order counts: the smallest y,
 * then the smallest x. The values are reported as 32-bit floats for every type, exactly. Comparisons of
 * floats are ordered: a NaN is never an extremum, and -0 equals +0; the zero that occurs first is the one
 * reported.
 *
 * Each of the four outputs may be null, and no work is done for what is not asked for: without both outputs
 * of the maximum only the minimum is searched, and the reverse; without the place, no place is looked for.
 * @{
 */

/**
 * @brief Extrema of an 8-bit image.
 *
 * In a float image that contains nothing but NaN the minimum is +Inf, the maximum -Inf, and both places are
 * (-1, 0).
 *
 * @param[in]  pSrc      Source.
 * @param[in]  srcStep   Step of the source in bytes.
 * @param[in]  roiSize   Size of the region in pixels.
 * @param[out] pMin      The minimum; may be null.
 * @param[out] pMax      The maximum; may be null.
 * @param[out] pMinIndex Place of the minimum; may be null.
 * @param[out] pMaxIndex Place of the maximum; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step is below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: the step is no multiple of the element size.
 */
OKPCV_API okpStatus okpiMinMaxIndx_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize, float* pMin,
                                          float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of an unsigned 16-bit image.
 * @copydetails okpiMinMaxIndx_8u_C1R
 */
OKPCV_API okpStatus okpiMinMaxIndx_16u_C1R(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                           float* pMin, float* pMax, PixelPoint* pMinIndex,
                                           PixelPoint* pMaxIndex);

/**
 * @brief Extrema of a float image.
 * @copydetails okpiMinMaxIndx_8u_C1R
 */
OKPCV_API okpStatus okpiMinMaxIndx_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize roiSize, float* pMin,
                                           float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of an 8-bit image under a mask.
 *
 * Only selected pixels count; what an unselected one holds, NaN included, has no influence. When no pixel is
 * selected, both values are 0, both places (0, 0), and the status is #okpStatusNoOperation, whichever outputs
 * are asked for. When pixels of a float image are selected but all are NaN, the minimum is +Inf, the maximum
 * -Inf, and both places are (-1, 0).
 *
 * @param[in]  pSrc      Source.
 * @param[in]  srcStep   Step of the source in bytes.
 * @param[in]  pMask     Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep  Step of the mask in bytes.
 * @param[in]  roiSize   Size of the region in pixels.
 * @param[out] pMin      The minimum; may be null.
 * @param[out] pMax      The maximum; may be null.
 * @param[out] pMinIndex Place of the minimum; may be null.
 * @param[out] pMaxIndex Place of the maximum; may be null.
 * @return #okpStatusOk, #okpStatusNoOperation when the mask selects no pixel, or the first of
 *         - #okpStatusNullPointer: the source or the mask is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size.
 */
OKPCV_API okpStatus okpiMinMaxIndx_8u_C1MR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                           int32_t maskStep, RoiSize roiSize, float* pMin, float* pMax,
                                           PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of an unsigned 16-bit image under a mask.
 * @copydetails okpiMinMaxIndx_8u_C1MR
 */
OKPCV_API okpStatus okpiMinMaxIndx_16u_C1MR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                            int32_t maskStep, RoiSize roiSize, float* pMin, float* pMax,
                                            PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of a float image under a mask.
 * @copydetails okpiMinMaxIndx_8u_C1MR
 */
OKPCV_API okpStatus okpiMinMaxIndx_32f_C1MR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                            int32_t maskStep, RoiSize roiSize, float* pMin, float* pMax,
                                            PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of an 8-bit three-channel image.
 *
 * In a float image that contains nothing but NaN the minimum is +Inf, the maximum -Inf, and both places are
 * (-1, 0).
 *
 * @param[in]  pSrc      Source.
 * @param[in]  srcStep   Step of the source in bytes.
 * @param[in]  roiSize   Size of the region in pixels.
 * @param[in]  coi       Channel of interest, 1 to 3.
 * @param[out] pMin      The minimum; may be null.
 * @param[out] pMax      The maximum; may be null.
 * @param[out] pMinIndex Place of the minimum; may be null.
 * @param[out] pMaxIndex Place of the maximum; may be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the source is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step is below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: the step is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiMinMaxIndx_8u_C3CR(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize, int32_t coi,
                                           float* pMin, float* pMax, PixelPoint* pMinIndex,
                                           PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of an unsigned 16-bit three-channel image.
 * @copydetails okpiMinMaxIndx_8u_C3CR
 */
OKPCV_API okpStatus okpiMinMaxIndx_16u_C3CR(const uint16_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                            int32_t coi, float* pMin, float* pMax, PixelPoint* pMinIndex,
                                            PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of a float three-channel image.
 * @copydetails okpiMinMaxIndx_8u_C3CR
 */
OKPCV_API okpStatus okpiMinMaxIndx_32f_C3CR(const float* pSrc, int32_t srcStep, RoiSize roiSize, int32_t coi,
                                            float* pMin, float* pMax, PixelPoint* pMinIndex,
                                            PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of an 8-bit three-channel image under a mask.
 *
 * Only selected pixels count; what an unselected one holds, NaN included, has no influence. When no pixel is
 * selected, both values are 0, both places (0, 0), and the status is #okpStatusNoOperation, whichever outputs
 * are asked for. When pixels of a float image are selected but all are NaN, the minimum is +Inf, the maximum
 * -Inf, and both places are (-1, 0).
 *
 * @param[in]  pSrc      Source.
 * @param[in]  srcStep   Step of the source in bytes.
 * @param[in]  pMask     Mask; a nonzero byte selects the pixel.
 * @param[in]  maskStep  Step of the mask in bytes.
 * @param[in]  roiSize   Size of the region in pixels.
 * @param[in]  coi       Channel of interest, 1 to 3.
 * @param[out] pMin      The minimum; may be null.
 * @param[out] pMax      The maximum; may be null.
 * @param[out] pMinIndex Place of the minimum; may be null.
 * @param[out] pMaxIndex Place of the maximum; may be null.
 * @return #okpStatusOk, #okpStatusNoOperation when the mask selects no pixel, or the first of
 *         - #okpStatusNullPointer: the source or the mask is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusStepNotMultiple: the step of the source is no multiple of the element size;
 *         - #okpStatusBadChannelOfInterest: @p coi outside 1 to 3.
 */
OKPCV_API okpStatus okpiMinMaxIndx_8u_C3CMR(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                            int32_t maskStep, RoiSize roiSize, int32_t coi, float* pMin,
                                            float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of an unsigned 16-bit three-channel image under a mask.
 * @copydetails okpiMinMaxIndx_8u_C3CMR
 */
OKPCV_API okpStatus okpiMinMaxIndx_16u_C3CMR(const uint16_t* pSrc, int32_t srcStep, const uint8_t* pMask,
                                             int32_t maskStep, RoiSize roiSize, int32_t coi, float* pMin,
                                             float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/**
 * @brief Extrema of one channel of a float three-channel image under a mask.
 * @copydetails okpiMinMaxIndx_8u_C3CMR
 */
OKPCV_API okpStatus okpiMinMaxIndx_32f_C3CMR(const float* pSrc, int32_t srcStep, const uint8_t* pMask,
                                             int32_t maskStep, RoiSize roiSize, int32_t coi, float* pMin,
                                             float* pMax, PixelPoint* pMinIndex, PixelPoint* pMaxIndex);

/** @} */

#endif /* OKPCV_STATS_H */
