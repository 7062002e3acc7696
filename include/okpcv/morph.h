/**
 * @file morph.h
 * @brief Morphology: dilation and erosion by arbitrary masks.
 */
#ifndef OKPCV_MORPH_H
#define OKPCV_MORPH_H

#include "okpcv/types.h"

/**
 * @defgroup morphology Dilation and erosion
 * @brief Local maximum and minimum over the pixels under a mask.
 *
 * With the mask's elements @f$ m(i, j) @f$, @f$ 0 \le i < w @f$, @f$ 0 \le j < h @f$, and its anchor at
 * @f$ a_x = \lfloor (w - 1) / 2 \rfloor @f$, @f$ a_y = \lfloor (h - 1) / 2 \rfloor @f$, dilation is
 *
 * @f[ dst(x, y) = \max_{m(i, j) \ne 0} src(x + i - a_x, y + j - a_y) @f]
 *
 * and erosion the minimum over the same pixels, channel by channel. The mask is neither reflected nor
 * transposed. A mask of even size has its anchor left of and above its centre. A mask without any nonzero
 * element copies the source.
 *
 * Pixels outside the region come from the border:
 *
 * | border | pixels outside the region |
 * |---|---|
 * | #BorderReplicate | the nearest pixel of the region |
 * | #BorderMirror | reflected about the region's edge pixels; not for bit-packed images |
 * | #BorderDefault | a constant that cannot win, see below |
 * | #BorderConstant | the border value |
 * | any of these with #BorderInMemTop and its siblings | on the flagged sides the caller's memory |
 * | #BorderInMemory | the caller's memory on all sides |
 *
 * Where the region is smaller than the mask it is mirrored again and again. The default constant is the
 * smallest number of the type in dilation and the largest in erosion, -FLT_MAX and FLT_MAX for floats, so
 * that infinities lose against it. The caller's memory is read as far as the mask reaches: @f$ a_x @f$
 * columns to the left, @f$ w - 1 - a_x @f$ to the right, @f$ a_y @f$ rows above and @f$ h - 1 - a_y @f$
 * below.
 *
 * The side flags may stand in bits 8 to 11 instead of bits 4 to 7.
 *
 * Floats are ordered as the totalOrder predicate of IEEE 754 orders them: -NaN, -Inf, negative numbers, -0,
 * +0, positive numbers, +Inf, +NaN, where the sign of a NaN is its sign bit. So -0 counts as smaller than +0,
 * a NaN with its sign clear wins every dilation and loses every erosion, and one with its sign set the other
 * way round. Each result is one of the source's pixels (or the border value), bit for bit, however the image
 * is divided into regions. A caller that has the processor treat denormals as zeros gets them compared so.
 *
 * Two generations of functions share one spec: those for 32-bit sizes, and those whose names end in `_L`.
 * In both a spec is filled once from the mask and then serves any number of dilations and erosions, also
 * several at a time, of images at most as wide as the region it was made for. A buffer serves one call at a
 * time. Specs and buffers need no alignment, and a spec may be copied.
 *
 * The time of a call hardly depends on the size of a rectangle and grows with the number of runs, not of
 * elements, of another mask.
 *
 * Sources: J. Serra, "Image Analysis and Mathematical Morphology", Academic Press 1982; M. van Herk, "A fast
 * algorithm for local minimum and maximum filters on rectangular and octagonal kernels", Pattern Recognition
 * Letters 13 (1992); J. Gil and M. Werman, "Computing 2-D min, median, and max filters", IEEE Transactions on
 * Pattern Analysis and Machine Intelligence 15 (1993).
 * @{
 */

/** @brief The mask of a dilation or erosion, prepared. Opaque. */
typedef struct MorphSpec MorphSpec;

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of 8-bit images.
 *
 * The spec takes @f$ (5 \, (w | 1) + 4) \, (h | 1) + 136 @f$ bytes for a mask of w x h elements, where
 * @f$ n | 1 @f$ is n or, when n is even, n + 1. The buffer is at least as large as an image of the region's
 * size widened by the mask.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  maskSize    Size of the mask in elements.
 * @param[out] pSpecSize   Bytes of the spec.
 * @param[out] pBufferSize Bytes of the buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusSizeTooLarge: a size does not fit its type, or the mask has more than 2147483647
 *           elements.
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_8u_C1R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                       int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of 8-bit images of three channels.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_8u_C3R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                       int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of 8-bit images of four channels.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_8u_C4R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                       int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of unsigned 16-bit images.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_16u_C1R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                        int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of signed 16-bit images.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_16s_C1R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                        int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of float images.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_32f_C1R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                        int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of float images of three channels.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_32f_C3R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                        int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of float images of four channels.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_32f_C4R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                        int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and the buffer for dilation and erosion of bit-packed images.
 * @copydetails okpiMorphologyBorderGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderGetSize_1u_C1R(RoiSize roiSize, RoiSize maskSize, int32_t* pSpecSize,
                                                       int32_t* pBufferSize);

/**
 * @brief Fills a spec for dilation and erosion of 8-bit images.
 *
 * Specs of one mask are the same for all types.
 *
 * @param[in]  roiSize  Size of the region in pixels; operations may work on smaller ones.
 * @param[in]  pMask    Mask: maskSize.width x maskSize.height bytes, row after row without padding; an
 *                      element takes part when it is not zero.
 * @param[in]  maskSize Size of the mask in elements.
 * @param[out] pSpec    Spec.
 * @param[in]  pBuffer  Buffer; not used, but must not be null.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusSizeTooLarge: the mask has more than 2147483647 elements.
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_8u_C1R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                    MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of 8-bit images of three channels.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_8u_C3R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                    MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of 8-bit images of four channels.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_8u_C4R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                    MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of unsigned 16-bit images.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_16u_C1R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                     MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of signed 16-bit images.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_16s_C1R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                     MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of float images.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_32f_C1R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                     MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of float images of three channels.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_32f_C3R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                     MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of float images of four channels.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_32f_C4R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                     MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Fills a spec for dilation and erosion of bit-packed images.
 * @copydetails okpiMorphologyBorderInit_8u_C1R
 */
OKPCV_API okpStatus okpiMorphologyBorderInit_1u_C1R(RoiSize roiSize, const uint8_t* pMask, RoiSize maskSize,
                                                    MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image.
 *
 * The maximum over the pixels under the mask, see @ref morphology.
 *
 * @param[in]  pSrc        Source.
 * @param[in]  srcStep     Step of the source in bytes.
 * @param[out] pDst        Destination; must not overlap the source.
 * @param[in]  dstStep     Step of the destination in bytes.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  border      Border, see @ref morphology.
 * @param[in]  borderValue Value outside the region; read for #BorderConstant only.
 * @param[in]  pSpec       Spec of the mask.
 * @param[in]  pBuffer     Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed;
 *         - #okpStatusNullPointer: the border is constant and the address of its value (three and four
 *           channels) is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiDilateBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                            int32_t dstStep, RoiSize roiSize, BorderKind border,
                                            uint8_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image of three channels.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_8u_C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                            int32_t dstStep, RoiSize roiSize, BorderKind border,
                                            const uint8_t* borderValue, const MorphSpec* pSpec,
                                            uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image of four channels.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_8u_C4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                            int32_t dstStep, RoiSize roiSize, BorderKind border,
                                            const uint8_t* borderValue, const MorphSpec* pSpec,
                                            uint8_t* pBuffer);

/**
 * @brief Dilates an unsigned 16-bit image.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                             int32_t dstStep, RoiSize roiSize, BorderKind border,
                                             uint16_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a signed 16-bit image.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                             int32_t dstStep, RoiSize roiSize, BorderKind border,
                                             int16_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                             RoiSize roiSize, BorderKind border, float borderValue,
                                             const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image of three channels.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_32f_C3R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                             RoiSize roiSize, BorderKind border, const float* borderValue,
                                             const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image of four channels.
 * @copydetails okpiDilateBorder_8u_C1R
 */
OKPCV_API okpStatus okpiDilateBorder_32f_C4R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                             RoiSize roiSize, BorderKind border, const float* borderValue,
                                             const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a bit-packed image.
 *
 * A pixel is a bit; the most significant bit of a byte is its leftmost pixel. The result is 1 where some
 * pixel under the mask is 1. Bits of the destination outside the region keep their values.
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[in]  srcBitOffset First pixel of the source, in bits from pSrc; may exceed 7.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  dstBitOffset First pixel of the destination, in bits from pDst; may exceed 7.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  borderValue  Value outside the region; not 0 counts as 1; read for #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: a bit offset below 0, or width or height below 1;
 *         - #okpStatusBadStep: a step below (width + 7) / 8;
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed, or mirrored;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiDilateBorder_1u_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t srcBitOffset,
                                            uint8_t* pDst, int32_t dstStep, int32_t dstBitOffset,
                                            RoiSize roiSize, BorderKind border, uint8_t borderValue,
                                            const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image, with 64-bit sizes.
 *
 * As okpiDilateBorder_8u_C1R().
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  pBorderValue Address of the value outside the region, one for each channel; read for
 *                          #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: width or height above 2147483647;
 *         - #okpStatusBadStep: a step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed;
 *         - #okpStatusBadSize: width or height above 2147483646;
 *         - #okpStatusBadStep: a step above 2147483646;
 *         - #okpStatusNullPointer: the border is constant and pBorderValue is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiDilate_8u_C1R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image of three channels, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_8u_C3R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an 8-bit image of four channels, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_8u_C4R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates an unsigned 16-bit image, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_16u_C1R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                         int64_t dstStep, RoiSizeL roiSize, BorderKind border,
                                         const uint16_t* pBorderValue, const MorphSpec* pSpec,
                                         uint8_t* pBuffer);

/**
 * @brief Dilates a signed 16-bit image, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_16s_C1R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst, int64_t dstStep,
                                         RoiSizeL roiSize, BorderKind border, const int16_t* pBorderValue,
                                         const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_32f_C1R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                         RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                         const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image of three channels, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_32f_C3R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                         RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                         const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a float image of four channels, with 64-bit sizes.
 * @copydetails okpiDilate_8u_C1R_L
 */
OKPCV_API okpStatus okpiDilate_32f_C4R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                         RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                         const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Dilates a bit-packed image, with 64-bit sizes.
 *
 * As okpiDilateBorder_1u_C1R().
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[in]  srcBitOffset First pixel of the source, in bits from pSrc; may exceed 7.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  dstBitOffset First pixel of the destination, in bits from pDst; may exceed 7.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  pBorderValue Address of the value outside the region; not 0 counts as 1; read for
 *                          #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: a bit offset below 0, or width or height below 1;
 *         - #okpStatusSizeTooLarge: width or height above 2147483647;
 *         - #okpStatusBadStep: a step below (width + 7) / 8;
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed, or mirrored;
 *         - #okpStatusBadSize: width or height above 2147483646;
 *         - #okpStatusBadStep: a step above 2147483646;
 *         - #okpStatusNullPointer: the border is constant and pBorderValue is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiDilate_1u_C1R_L(const uint8_t* pSrc, int64_t srcStep, int32_t srcBitOffset,
                                        uint8_t* pDst, int64_t dstStep, int32_t dstBitOffset,
                                        RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image.
 *
 * The minimum over the pixels under the mask, see @ref morphology.
 *
 * @param[in]  pSrc        Source.
 * @param[in]  srcStep     Step of the source in bytes.
 * @param[out] pDst        Destination; must not overlap the source.
 * @param[in]  dstStep     Step of the destination in bytes.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  border      Border, see @ref morphology.
 * @param[in]  borderValue Value outside the region; read for #BorderConstant only.
 * @param[in]  pSpec       Spec of the mask.
 * @param[in]  pBuffer     Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed;
 *         - #okpStatusNullPointer: the border is constant and the address of its value (three and four
 *           channels) is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiErodeBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, BorderKind border,
                                           uint8_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image of three channels.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_8u_C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, BorderKind border,
                                           const uint8_t* borderValue, const MorphSpec* pSpec,
                                           uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image of four channels.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_8u_C4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, BorderKind border,
                                           const uint8_t* borderValue, const MorphSpec* pSpec,
                                           uint8_t* pBuffer);

/**
 * @brief Erodes an unsigned 16-bit image.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                            int32_t dstStep, RoiSize roiSize, BorderKind border,
                                            uint16_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a signed 16-bit image.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                            int32_t dstStep, RoiSize roiSize, BorderKind border,
                                            int16_t borderValue, const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                            RoiSize roiSize, BorderKind border, float borderValue,
                                            const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image of three channels.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_32f_C3R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                            RoiSize roiSize, BorderKind border, const float* borderValue,
                                            const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image of four channels.
 * @copydetails okpiErodeBorder_8u_C1R
 */
OKPCV_API okpStatus okpiErodeBorder_32f_C4R(const float* pSrc, int32_t srcStep, float* pDst, int32_t dstStep,
                                            RoiSize roiSize, BorderKind border, const float* borderValue,
                                            const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a bit-packed image.
 *
 * A pixel is a bit; the most significant bit of a byte is its leftmost pixel. The result is 1 where every
 * pixel under the mask is 1. Bits of the destination outside the region keep their values.
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[in]  srcBitOffset First pixel of the source, in bits from pSrc; may exceed 7.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  dstBitOffset First pixel of the destination, in bits from pDst; may exceed 7.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  borderValue  Value outside the region; not 0 counts as 1; read for #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: a bit offset below 0, or width or height below 1;
 *         - #okpStatusBadStep: a step below (width + 7) / 8;
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed, or mirrored;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiErodeBorder_1u_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t srcBitOffset,
                                           uint8_t* pDst, int32_t dstStep, int32_t dstBitOffset,
                                           RoiSize roiSize, BorderKind border, uint8_t borderValue,
                                           const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image, with 64-bit sizes.
 *
 * As okpiErodeBorder_8u_C1R().
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  pBorderValue Address of the value outside the region, one for each channel; read for
 *                          #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: width or height above 2147483647;
 *         - #okpStatusBadStep: a step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed;
 *         - #okpStatusBadSize: width or height above 2147483646;
 *         - #okpStatusBadStep: a step above 2147483646;
 *         - #okpStatusNullPointer: the border is constant and pBorderValue is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiErode_8u_C1R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                       RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                       const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image of three channels, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_8u_C3R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                       RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                       const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an 8-bit image of four channels, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_8u_C4R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst, int64_t dstStep,
                                       RoiSizeL roiSize, BorderKind border, const uint8_t* pBorderValue,
                                       const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes an unsigned 16-bit image, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_16u_C1R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                        int64_t dstStep, RoiSizeL roiSize, BorderKind border,
                                        const uint16_t* pBorderValue, const MorphSpec* pSpec,
                                        uint8_t* pBuffer);

/**
 * @brief Erodes a signed 16-bit image, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_16s_C1R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const int16_t* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_32f_C1R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image of three channels, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_32f_C3R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a float image of four channels, with 64-bit sizes.
 * @copydetails okpiErode_8u_C1R_L
 */
OKPCV_API okpStatus okpiErode_32f_C4R_L(const float* pSrc, int64_t srcStep, float* pDst, int64_t dstStep,
                                        RoiSizeL roiSize, BorderKind border, const float* pBorderValue,
                                        const MorphSpec* pSpec, uint8_t* pBuffer);

/**
 * @brief Erodes a bit-packed image, with 64-bit sizes.
 *
 * As okpiErodeBorder_1u_C1R().
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[in]  srcBitOffset First pixel of the source, in bits from pSrc; may exceed 7.
 * @param[out] pDst         Destination; must not overlap the source.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  dstBitOffset First pixel of the destination, in bits from pDst; may exceed 7.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  border       Border, see @ref morphology.
 * @param[in]  pBorderValue Address of the value outside the region; not 0 counts as 1; read for
 *                          #BorderConstant only.
 * @param[in]  pSpec        Spec of the mask.
 * @param[in]  pBuffer      Buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSrc, pDst, pSpec or pBuffer is null;
 *         - #okpStatusBadSize: a bit offset below 0, or width or height below 1;
 *         - #okpStatusSizeTooLarge: width or height above 2147483647;
 *         - #okpStatusBadStep: a step below (width + 7) / 8;
 *         - #okpStatusBadBorder: @p border is above 4095, or of none of the kinds listed, or mirrored;
 *         - #okpStatusBadSize: width or height above 2147483646;
 *         - #okpStatusBadStep: a step above 2147483646;
 *         - #okpStatusNullPointer: the border is constant and pBorderValue is null;
 *         - #okpStatusInPlaceNotSupported: pSrc and pDst are equal.
 */
OKPCV_API okpStatus okpiErode_1u_C1R_L(const uint8_t* pSrc, int64_t srcStep, int32_t srcBitOffset,
                                       uint8_t* pDst, int64_t dstStep, int32_t dstBitOffset, RoiSizeL roiSize,
                                       BorderKind border, const uint8_t* pBorderValue, const MorphSpec* pSpec,
                                       uint8_t* pBuffer);

/**
 * @brief Size of the spec for erosion (and dilation) with 64-bit sizes, of any type.
 *
 * @f$ (5 \, (w | 1) + 4) \, (h | 1) + 176 @f$ bytes for a mask of w x h elements.
 *
 * @param[in]  roiSize   Size of the region in pixels.
 * @param[in]  maskSize  Size of the mask in elements.
 * @param[out] pSpecSize Bytes of the spec.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pSpecSize is null;
 *         - #okpStatusSizeTooLarge: width or height of the region above 2147483647;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusSizeTooLarge: the mask has more than 2147483647 elements.
 */
OKPCV_API okpStatus okpiErodeGetSpecSize_L(RoiSizeL roiSize, RoiSizeL maskSize, int64_t* pSpecSize);

/**
 * @brief Size of the buffer for erosion (and dilation) with 64-bit sizes.
 *
 * Writes the size only where it exceeds the value that pBufferSize points to, so that one buffer can be sized
 * for several uses: set the variable to 0 first.
 *
 * @param[in]     roiSize     Size of the region in pixels.
 * @param[in]     maskSize    Size of the mask in elements.
 * @param[in]     dataType    Type of the images: 1u, 8u, 16u, 16s or 32f.
 * @param[in]     numChannels Channels of the images: 1, 3 or 4.
 * @param[in,out] pBufferSize Bytes of the buffer.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: pBufferSize is null;
 *         - #okpStatusSizeTooLarge: width or height of the region above 2147483647;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadDataType: another type;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusSizeTooLarge: the mask has more than 2147483647 elements, or the size does not fit 64
 *           bits.
 */
OKPCV_API okpStatus okpiErodeGetBufferSize_L(RoiSizeL roiSize, RoiSizeL maskSize, DataTypeCode dataType,
                                             int32_t numChannels, int64_t* pBufferSize);

/**
 * @brief Fills a spec for erosion (and dilation) with 64-bit sizes, of any type.
 *
 * @param[in]  roiSize  Size of the region in pixels; operations may work on smaller ones.
 * @param[in]  pMask    Mask: maskSize.width x maskSize.height bytes, row after row without padding; an
 *                      element takes part when it is not zero.
 * @param[in]  maskSize Size of the mask in elements.
 * @param[out] pSpec    Spec.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusSizeTooLarge: width or height of the region above 2147483647, or more than 2147483647
 *           elements of the mask.
 */
OKPCV_API okpStatus okpiErodeInit_L(RoiSizeL roiSize, const uint8_t* pMask, RoiSizeL maskSize,
                                    MorphSpec* pSpec);

/**
 * @brief Size of the spec for dilation (and erosion) with 64-bit sizes, of any type.
 * @copydetails okpiErodeGetSpecSize_L
 */
OKPCV_API okpStatus okpiDilateGetSpecSize_L(RoiSizeL roiSize, RoiSizeL maskSize, int64_t* pSpecSize);

/**
 * @brief Size of the buffer for dilation (and erosion) with 64-bit sizes.
 * @copydetails okpiErodeGetBufferSize_L
 */
OKPCV_API okpStatus okpiDilateGetBufferSize_L(RoiSizeL roiSize, RoiSizeL maskSize, DataTypeCode dataType,
                                              int32_t numChannels, int64_t* pBufferSize);

/**
 * @brief Fills a spec for dilation (and erosion) with 64-bit sizes, of any type.
 * @copydetails okpiErodeInit_L
 */
OKPCV_API okpStatus okpiDilateInit_L(RoiSizeL roiSize, const uint8_t* pMask, RoiSizeL maskSize,
                                     MorphSpec* pSpec);

/** @} */

#endif /* OKPCV_MORPH_H */
