/**
 * @file filter.h
 * @brief Linear filters: separable filters with the caller's kernels, and their two halves; Gaussian filters;
 * derivative kernels, gradients, and filters with fixed masks.
 */
#ifndef OKPCV_FILTER_H
#define OKPCV_FILTER_H

#include "okpcv/types.h"

/**
 * @defgroup separable Separable filters
 * @brief Correlation with a kernel that is the product of a row kernel and a column kernel.
 *
 * With a row kernel @f$ k @f$ of length @f$ k_w @f$, a column kernel @f$ l @f$ of length @f$ k_h @f$, anchors
 * @f$ a_x = \lfloor (k_w - 1) / 2 \rfloor @f$ and @f$ a_y = \lfloor (k_h - 1) / 2 \rfloor @f$ (so a kernel
 * of even length has one more tap behind the pixel than before it), and @f$ r = 1 / divisor @f$ rounded to
 * single precision:
 *
 * @f[ R(x, y) = r \sum_{i=0}^{k_w-1} k_i \, src(x - a_x + i, y), \qquad
 *     dst(x, y) = C\Bigl( r \sum_{j=0}^{k_h-1} l_j \, R(x, y - a_y + j) \Bigr) @f]
 *
 * The kernels are not flipped. All arithmetic is IEEE single precision, one rounding per operation, terms
 * added in kernel order beginning with zero; results are the same bit for bit at every width, step and
 * alignment, NaNs included.
 *
 * - Integer kernels carry a divisor, which applies to both passes: the pair 1 2 1 / 1 2 1 is normalised by
 *   the divisor 4. Products of coefficients and pixels are exact before they are rounded to single precision.
 * - Float kernels have no divisor (@f$ r @f$ does not occur).
 * - @f$ C @f$ stores floats unchanged and clamps to the range of an integer type, then truncates towards
 *   zero: 254.9 becomes 254, and NaN the smallest value of the type.
 *
 * Use: ask okpiFilterSeparableGetSpecSize() and okpiFilterSeparableGetBufferSize() how much memory is needed,
 * fill the spec with okpiFilterSeparableInit_16s() or okpiFilterSeparableInit_32f() once, then filter any
 * number of times. A spec points into itself: it must not be moved or copied (initialise it again at its new
 * place instead). Filtering only reads it, so calls that run at the same time may share it, each with a
 * buffer of its own.
 * @{
 */

/**
 * @brief Bytes of a spec.
 *
 * @f$ e (k_w + k_h) + 127 @f$ for kernel elements of @f$ e @f$ bytes.
 *
 * @param[in]  kernelSize  Lengths of the row kernel (width) and of the column kernel (height).
 * @param[in]  kernelType  #DataType16s for integer kernels, #DataType32f for float kernels.
 * @param[in]  numChannels Channels of the images: 1, 3 or 4.
 * @param[out] pSpecSize   Receives the number of bytes; they need no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusNullPointer: the result pointer is null;
 *         - #okpStatusBadDataType: another kernel type;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusSizeTooLarge: the number of bytes does not fit the result.
 */
OKPCV_API okpStatus okpiFilterSeparableGetSpecSize(RoiSize kernelSize, DataTypeCode kernelType,
                                                   int32_t numChannels, int32_t* pSpecSize);

/**
 * @brief Bytes of a spec, as a 64-bit count.
 * @copydetails okpiFilterSeparableGetSpecSize
 */
OKPCV_API okpStatus okpiFilterSeparableGetSpecSize_L(RoiSize kernelSize, DataTypeCode kernelType,
                                                     int32_t numChannels, int64_t* pSpecSize);

/**
 * @brief Bytes of a work buffer.
 *
 * @f$ 256 k_w + 8 k_h + 4 C (e k_w + k_h (width + k_w - 1)) @f$ for kernel elements of @f$ e @f$ bytes and
 * @f$ C @f$ channels. A buffer serves every region that is not wider, whatever its height.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  kernelSize  Lengths of the row kernel (width) and of the column kernel (height).
 * @param[in]  dataType    Type of the source: #DataType8u, #DataType16u, #DataType16s or #DataType32f.
 * @param[in]  kernelType  #DataType16s for integer kernels, #DataType32f for float kernels.
 * @param[in]  numChannels Channels of the images: 1, 3 or 4.
 * @param[out] pBufferSize Receives the number of bytes; they need no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusBadSize: a width, height or kernel length below 1;
 *         - #okpStatusNullPointer: the result pointer is null;
 *         - #okpStatusBadDataType: another type of source or kernel;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusSizeTooLarge: the number of bytes does not fit the result.
 */
OKPCV_API okpStatus okpiFilterSeparableGetBufferSize(RoiSize roiSize, RoiSize kernelSize,
                                                     DataTypeCode dataType, DataTypeCode kernelType,
                                                     int32_t numChannels, int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer, for 64-bit region sizes and as a 64-bit count.
 * @copydetails okpiFilterSeparableGetBufferSize
 */
OKPCV_API okpStatus okpiFilterSeparableGetBufferSize_L(RoiSizeL roiSize, RoiSize kernelSize,
                                                       DataTypeCode dataType, DataTypeCode kernelType,
                                                       int32_t numChannels, int64_t* pBufferSize);

/**
 * @brief Fills a spec with integer kernels.
 *
 * @param[in]  pRowKernel    Row kernel; copied.
 * @param[in]  pColumnKernel Column kernel; copied.
 * @param[in]  kernelSize    Lengths of the row kernel (width) and of the column kernel (height).
 * @param[in]  divisor       Divisor of both passes; may be negative.
 * @param[in]  scaleFactor   Filters with signed 16-bit destinations multiply their results by
 *                           @f$ 2^{-scaleFactor} @f$ before they convert them; others ignore it. Usually 0.
 * @param[in]  dataType      Type of the source: #DataType8u or #DataType16s.
 * @param[in]  numChannels   Channels of the images: 1, 3 or 4.
 * @param[out] pSpec         Spec, of the size that okpiFilterSeparableGetSpecSize() reports for
 *                           #DataType16s.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadDataType: another type of source;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusZeroDivisor: the divisor is zero.
 */
OKPCV_API okpStatus okpiFilterSeparableInit_16s(const int16_t* pRowKernel, const int16_t* pColumnKernel,
                                                RoiSize kernelSize, int32_t divisor, int32_t scaleFactor,
                                                DataTypeCode dataType, int32_t numChannels, void* pSpec);

/**
 * @brief Fills a spec with integer kernels; the same function under the name of the `_L` family.
 * @copydetails okpiFilterSeparableInit_16s
 */
OKPCV_API okpStatus okpiFilterSeparableInit_16s_L(const int16_t* pRowKernel, const int16_t* pColumnKernel,
                                                  RoiSize kernelSize, int32_t divisor, int32_t scaleFactor,
                                                  DataTypeCode dataType, int32_t numChannels, void* pSpec);

/**
 * @brief Fills a spec with float kernels.
 *
 * @param[in]  pRowKernel    Row kernel; copied.
 * @param[in]  pColumnKernel Column kernel; copied.
 * @param[in]  kernelSize    Lengths of the row kernel (width) and of the column kernel (height).
 * @param[in]  dataType      Type of the source: #DataType8u, #DataType16u or #DataType32f.
 * @param[in]  numChannels   Channels of the images: 1, 3 or 4.
 * @param[out] pSpec         Spec, of the size that okpiFilterSeparableGetSpecSize() reports for
 *                           #DataType32f.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadDataType: another type of source;
 *         - #okpStatusBadNumChannels: another number of channels.
 */
OKPCV_API okpStatus okpiFilterSeparableInit_32f(const float* pRowKernel, const float* pColumnKernel,
                                                RoiSize kernelSize, DataTypeCode dataType,
                                                int32_t numChannels, void* pSpec);

/**
 * @brief Fills a spec with float kernels; the same function under the name of the `_L` family.
 * @copydetails okpiFilterSeparableInit_32f
 */
OKPCV_API okpStatus okpiFilterSeparableInit_32f_L(const float* pRowKernel, const float* pColumnKernel,
                                                  RoiSize kernelSize, DataTypeCode dataType,
                                                  int32_t numChannels, void* pSpec);

/**
 * @brief Filters 8-bit images with integer or float kernels.
 *
 * @f$ dst @f$ as given above for the group, each channel by itself. Pixels outside the region come from the
 * border. The rows that a constant border adds above and below the region have the intermediate value
 * (borderValue times the sum of the row kernel) times @f$ r @f$ in every column.
 *
 * @param[in]  pSrc         Source.
 * @param[in]  srcStep      Step of the source in bytes.
 * @param[out] pDst         Destination; may be equal to the source if their steps and pixels are of the same
 *                          size, but must not overlap it otherwise.
 * @param[in]  dstStep      Step of the destination in bytes.
 * @param[in]  roiSize      Size of the region in pixels.
 * @param[in]  borderType   #BorderReplicate, #BorderMirror or #BorderConstant with any side flags, or
 *                          #BorderInMemory. On a side in memory, @f$ a_x @f$ columns to the left,
 *                          @f$ k_w - 1 - a_x @f$ to the right, @f$ a_y @f$ rows above and
 *                          @f$ k_h - 1 - a_y @f$ below are read. Where a region is too small to be mirrored
 *                          once, it is mirrored repeatedly.
 * @param[in]  borderValue  Value of #BorderConstant, in the source's type (for images of several channels a
 *                          pointer to one value per channel); ignored for other kinds.
 * @param[in]  pSpec        Spec that an initialiser has filled for this type of source.
 * @param[in]  pBuffer      Work buffer, of the size that okpiFilterSeparableGetBufferSize() reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: a step below the width of its image's row in bytes;
 *         - #okpStatusNullPointer: the spec is not initialised (its bytes are zero);
 *         - #okpStatusBadBorder: another border kind;
 *         - #okpStatusNullPointer: a constant border's pointer to its values is null;
 *         - #okpStatusSizeTooLarge: the region is too wide for 64-bit arithmetic.
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images with integer or float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C1R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images of three channels with integer or float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               const uint8_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images of three channels with integer or float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C3R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 const uint8_t* borderValue, const void* pSpec,
                                                 void* pBuffer);

/**
 * @brief Filters 8-bit images of four channels with integer or float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               const uint8_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images of four channels with integer or float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u_C4R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 const uint8_t* borderValue, const void* pSpec,
                                                 void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                  uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones with integer kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C1R_L(const uint8_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                    int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                    uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones of three channels with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C3R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                  const uint8_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones of three channels with integer kernels, for 64-bit sizes
 * and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C3R_L(const uint8_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                    int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                    const uint8_t* borderValue, const void* pSpec,
                                                    void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones of four channels with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C4R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                  const uint8_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters 8-bit images to signed 16-bit ones of four channels with integer kernels, for 64-bit sizes
 * and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_8u16s_C4R_L(const uint8_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                    int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                    const uint8_t* borderValue, const void* pSpec,
                                                    void* pBuffer);

/**
 * @brief Filters signed 16-bit images with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                int16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters signed 16-bit images with integer kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C1R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  int16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters signed 16-bit images of three channels with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C3R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const int16_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters signed 16-bit images of three channels with integer kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C3R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const int16_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters signed 16-bit images of four channels with integer kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C4R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const int16_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters signed 16-bit images of four channels with integer kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16s_C4R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const int16_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                uint16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C1R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  uint16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images of three channels with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C3R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const uint16_t* borderValue, const void* pSpec,
                                                void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images of three channels with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C3R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const uint16_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images of four channels with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C4R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const uint16_t* borderValue, const void* pSpec,
                                                void* pBuffer);

/**
 * @brief Filters unsigned 16-bit images of four channels with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_16u_C4R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const uint16_t* borderValue, const void* pSpec,
                                                  void* pBuffer);

/**
 * @brief Filters float images with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                float borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters float images with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C1R_L(const float* pSrc, int64_t srcStep, float* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  float borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters float images of three channels with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C3R(const float* pSrc, int32_t srcStep, float* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const float* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters float images of three channels with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C3R_L(const float* pSrc, int64_t srcStep, float* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const float* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters float images of four channels with float kernels.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C4R(const float* pSrc, int32_t srcStep, float* pDst,
                                                int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                                const float* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Filters float images of four channels with float kernels, for 64-bit sizes and steps.
 * @copydetails okpiFilterSeparable_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSeparable_32f_C4R_L(const float* pSrc, int64_t srcStep, float* pDst,
                                                  int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                  const float* borderValue, const void* pSpec, void* pBuffer);

/** @} */

/**
 * @defgroup pipelines Row and column pipelines
 * @brief The two halves of a separable filter, for callers who keep the intermediate rows themselves.
 *
 * A row pipeline filters rows horizontally, with a border, into rows that the caller gives as an array of
 * pointers. A column pipeline combines rows that the caller gives as an array of pointers vertically. So an
 * image that arrives strip by strip can be filtered strip by strip: the result is that of filtering it whole,
 * bit for bit, however it is cut.
 *
 * Integer kernels have 16-bit coefficients and a divisor; their results are truncated towards zero and
 * clamped to the range of the destination's type. Float kernels have no divisor. Sums are formed in IEEE
 * single precision in kernel order beginning with zero, products of integers exact before they are rounded,
 * as in the separable filters. The `Low` forms form them in 32-bit integers, modulo @f$ 2^{32} @f$, and
 * convert the sum: they are faster, and give the same results wherever no sum of products exceeds @f$ 2^{24}
 * @f$ in magnitude.
 *
 * The buffers need no alignment and hold nothing between calls.
 * @{
 */

/**
 * @brief Filters signed 16-bit rows horizontally.
 *
 * @f[ dst_y(x) = C\Bigl( \frac{1}{divisor} \sum_{i=0}^{k-1} kernel_i \, src(x - anchor + i, y) \Bigr) @f]
 *
 * with the reciprocal of the divisor rounded to single precision, and @f$ C @f$ the conversion to the type of
 * the result: truncation towards zero, then saturation. Each channel is filtered by itself.
 *
 * @param[in]  pSrc        Source.
 * @param[in]  srcStep     Step of the source in bytes.
 * @param[out] ppDst       An array of as many pointers as the region has rows, each to a row of its width;
 *                         they must not overlap the source.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  pKernel     Kernel.
 * @param[in]  kernelSize  Length k of the kernel.
 * @param[in]  anchor      Index of the coefficient that meets the pixel itself, 0 to k - 1.
 * @param[in]  borderType  #BorderReplicate, #BorderMirror or #BorderConstant with any side flags, or
 *                         #BorderInMemory. Only the flags of the left and the right side matter: on a side in
 *                         memory, `anchor` columns to the left or k - 1 - `anchor` to the right are read.
 * @param[in]  borderValue Value of #BorderConstant, in the source's type (for images of several channels a
 *                         pointer to one value per channel); ignored for other kinds.
 * @param[in]  divisor     Divisor of the sums, at least 1.
 * @param[in]  pBuffer     Work buffer, of the size that the function's `GetBufferSize` reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusNullPointer: a pointer in `ppDst` is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadAnchor: an anchor outside the kernel;
 *         - #okpStatusBadStep: a step below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size;
 *         - #okpStatusBadArgument: a divisor below 1;
 *         - #okpStatusBadBorder: another border kind;
 *         - #okpStatusNullPointer: a constant border's pointer to its values is null.
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_16s_C1R(const int16_t* pSrc, int32_t srcStep,
                                                        int16_t* const* ppDst, RoiSize roiSize,
                                                        const int16_t* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        int16_t borderValue, int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows of three channels horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_16s_C3R(const int16_t* pSrc, int32_t srcStep,
                                                        int16_t* const* ppDst, RoiSize roiSize,
                                                        const int16_t* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        const int16_t* borderValue, int32_t divisor,
                                                        void* pBuffer);

/**
 * @brief Filters unsigned 16-bit rows horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_16u_C1R(const uint16_t* pSrc, int32_t srcStep,
                                                        uint16_t* const* ppDst, RoiSize roiSize,
                                                        const int16_t* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        uint16_t borderValue, int32_t divisor, void* pBuffer);

/**
 * @brief Filters unsigned 16-bit rows of three channels horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_16u_C3R(const uint16_t* pSrc, int32_t srcStep,
                                                        uint16_t* const* ppDst, RoiSize roiSize,
                                                        const int16_t* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        const uint16_t* borderValue, int32_t divisor,
                                                        void* pBuffer);

/**
 * @brief Filters float rows horizontally.
 *
 * @f[ dst_y(x) = \sum_{i=0}^{k-1} kernel_i \, src(x - anchor + i, y) @f]
 *
 * Each channel is filtered by itself.
 *
 * @param[in]  pSrc        Source.
 * @param[in]  srcStep     Step of the source in bytes.
 * @param[out] ppDst       An array of as many pointers as the region has rows, each to a row of its width;
 *                         they must not overlap the source.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  pKernel     Kernel.
 * @param[in]  kernelSize  Length k of the kernel.
 * @param[in]  anchor      Index of the coefficient that meets the pixel itself, 0 to k - 1.
 * @param[in]  borderType  #BorderReplicate, #BorderMirror or #BorderConstant with any side flags, or
 *                         #BorderInMemory. Only the flags of the left and the right side matter: on a side in
 *                         memory, `anchor` columns to the left or k - 1 - `anchor` to the right are read.
 * @param[in]  borderValue Value of #BorderConstant, in the source's type (for images of several channels a
 *                         pointer to one value per channel); ignored for other kinds.
 * @param[in]  pBuffer     Work buffer, of the size that the function's `GetBufferSize` reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusNullPointer: a pointer in `ppDst` is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadAnchor: an anchor outside the kernel;
 *         - #okpStatusBadStep: a step below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size;
 *         - #okpStatusBadBorder: another border kind;
 *         - #okpStatusNullPointer: a constant border's pointer to its values is null.
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_32f_C1R(const float* pSrc, int32_t srcStep,
                                                        float* const* ppDst, RoiSize roiSize,
                                                        const float* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        float borderValue, void* pBuffer);

/**
 * @brief Filters float rows of three channels horizontally.
 * @copydetails okpiFilterRowBorderPipeline_32f_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_32f_C3R(const float* pSrc, int32_t srcStep,
                                                        float* const* ppDst, RoiSize roiSize,
                                                        const float* pKernel, int32_t kernelSize,
                                                        int32_t anchor, BorderKind borderType,
                                                        const float* borderValue, void* pBuffer);

/**
 * @brief Filters 8-bit rows to signed 16-bit ones horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep,
                                                          int16_t* const* ppDst, RoiSize roiSize,
                                                          const int16_t* pKernel, int32_t kernelSize,
                                                          int32_t anchor, BorderKind borderType,
                                                          uint8_t borderValue, int32_t divisor,
                                                          void* pBuffer);

/**
 * @brief Filters 8-bit rows to signed 16-bit ones of three channels horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_8u16s_C3R(const uint8_t* pSrc, int32_t srcStep,
                                                          int16_t* const* ppDst, RoiSize roiSize,
                                                          const int16_t* pKernel, int32_t kernelSize,
                                                          int32_t anchor, BorderKind borderType,
                                                          const uint8_t* borderValue, int32_t divisor,
                                                          void* pBuffer);

/**
 * @brief Filters signed 16-bit rows with 32-bit integer sums horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_Low_16s_C1R(const int16_t* pSrc, int32_t srcStep,
                                                            int16_t* const* ppDst, RoiSize roiSize,
                                                            const int16_t* pKernel, int32_t kernelSize,
                                                            int32_t anchor, BorderKind borderType,
                                                            int16_t borderValue, int32_t divisor,
                                                            void* pBuffer);

/**
 * @brief Filters signed 16-bit rows with 32-bit integer sums of three channels horizontally.
 * @copydetails okpiFilterRowBorderPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipeline_Low_16s_C3R(const int16_t* pSrc, int32_t srcStep,
                                                            int16_t* const* ppDst, RoiSize roiSize,
                                                            const int16_t* pKernel, int32_t kernelSize,
                                                            int32_t anchor, BorderKind borderType,
                                                            const int16_t* borderValue, int32_t divisor,
                                                            void* pBuffer);

/**
 * @brief Filters signed 16-bit rows vertically.
 *
 * @f[ dst(x, y) = C\Bigl( \frac{1}{divisor} \sum_{j=0}^{k-1} kernel_j \, src_{y+j}(x) \Bigr) @f]
 *
 * with the reciprocal of the divisor rounded to single precision, and @f$ C @f$ the conversion to the type of
 * the result: truncation towards zero, then saturation.
 *
 * @param[in]  ppSrc      An array of height + k - 1 pointers to rows of the region's width.
 * @param[out] pDst       Destination; must not overlap the rows.
 * @param[in]  dstStep    Step of the destination in bytes.
 * @param[in]  roiSize    Size of the destination in pixels.
 * @param[in]  pKernel    Kernel.
 * @param[in]  kernelSize Length k of the kernel.
 * @param[in]  divisor    Divisor of the sums, at least 1.
 * @param[in]  pBuffer    Work buffer, of the size that the function's `GetBufferSize` reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer other than the buffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: a divisor below 1;
 *         - #okpStatusNullPointer: a pointer in `ppSrc` is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadStep: a step below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusNullPointer: the buffer is null.
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s_C1R(const int16_t* const* ppSrc, int16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, const int16_t* pKernel,
                                                     int32_t kernelSize, int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s_C3R(const int16_t* const* ppSrc, int16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, const int16_t* pKernel,
                                                     int32_t kernelSize, int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows to signed 8-bit ones vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s8s_C1R(const int16_t* const* ppSrc, int8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize,
                                                       const int16_t* pKernel, int32_t kernelSize,
                                                       int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows to signed 8-bit ones of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s8s_C3R(const int16_t* const* ppSrc, int8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize,
                                                       const int16_t* pKernel, int32_t kernelSize,
                                                       int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows to unsigned 8-bit ones vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s8u_C1R(const int16_t* const* ppSrc, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize,
                                                       const int16_t* pKernel, int32_t kernelSize,
                                                       int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows to unsigned 8-bit ones of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16s8u_C3R(const int16_t* const* ppSrc, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize,
                                                       const int16_t* pKernel, int32_t kernelSize,
                                                       int32_t divisor, void* pBuffer);

/**
 * @brief Filters unsigned 16-bit rows vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16u_C1R(const uint16_t* const* ppSrc, uint16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, const int16_t* pKernel,
                                                     int32_t kernelSize, int32_t divisor, void* pBuffer);

/**
 * @brief Filters unsigned 16-bit rows of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_16u_C3R(const uint16_t* const* ppSrc, uint16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, const int16_t* pKernel,
                                                     int32_t kernelSize, int32_t divisor, void* pBuffer);

/**
 * @brief Filters float rows vertically.
 *
 * @f[ dst(x, y) = \sum_{j=0}^{k-1} kernel_j \, src_{y+j}(x) @f]
 *
 * Each channel is filtered by itself.
 *
 * @param[in]  ppSrc      An array of height + k - 1 pointers to rows of the region's width.
 * @param[out] pDst       Destination; must not overlap the rows.
 * @param[in]  dstStep    Step of the destination in bytes.
 * @param[in]  roiSize    Size of the destination in pixels.
 * @param[in]  pKernel    Kernel.
 * @param[in]  kernelSize Length k of the kernel.
 * @param[in]  pBuffer    Work buffer, of the size that the function's `GetBufferSize` reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer other than the buffer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusNullPointer: a pointer in `ppSrc` is null;
 *         - #okpStatusBadSize: a kernel length below 1;
 *         - #okpStatusBadStep: a step below the width of the row in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusNullPointer: the buffer is null.
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_32f_C1R(const float* const* ppSrc, float* pDst, int32_t dstStep,
                                                     RoiSize roiSize, const float* pKernel,
                                                     int32_t kernelSize, void* pBuffer);

/**
 * @brief Filters float rows of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_32f_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_32f_C3R(const float* const* ppSrc, float* pDst, int32_t dstStep,
                                                     RoiSize roiSize, const float* pKernel,
                                                     int32_t kernelSize, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows with 32-bit integer sums vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_Low_16s_C1R(const int16_t* const* ppSrc, int16_t* pDst,
                                                         int32_t dstStep, RoiSize roiSize,
                                                         const int16_t* pKernel, int32_t kernelSize,
                                                         int32_t divisor, void* pBuffer);

/**
 * @brief Filters signed 16-bit rows with 32-bit integer sums of three channels vertically.
 * @copydetails okpiFilterColumnPipeline_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipeline_Low_16s_C3R(const int16_t* const* ppSrc, int16_t* pDst,
                                                         int32_t dstStep, RoiSize roiSize,
                                                         const int16_t* pKernel, int32_t kernelSize,
                                                         int32_t divisor, void* pBuffer);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_16s_C1R(): 48 k + 112 for a kernel of length
 * k.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  kernelSize  Length of the kernel.
 * @param[out] pBufferSize Receives the number of bytes; they need no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the result pointer is null;
 *         - #okpStatusBadSize: width, height or kernel length below 1;
 *         - #okpStatusSizeTooLarge: the number of bytes does not fit the result.
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_16s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_16s_C3R():
 * 40 k + 96 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_16s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_16u_C1R():
 * 48 k + 80 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_16u_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_16u_C3R():
 * 112 k + 80 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_16u_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_32f_C1R():
 * 64 k + 96 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_32f_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_32f_C3R():
 * 192 k + 96 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_32f_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                     int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_8u16s_C1R():
 * 36 k + 144 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                       int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_8u16s_C3R():
 * 60 k + 144 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                       int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_Low_16s_C1R():
 * 24 k + 96 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                         int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterRowBorderPipeline_Low_16s_C3R():
 * 208 k + 96 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                         int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s_C1R():
 * 12 (w rounded up to a multiple of 4) + 64 for a width of w pixels.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s_C3R():
 * 36 (w rounded up to a multiple of 4) + 64 for a width of w pixels.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16u_C1R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16u_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16u_C3R():
 * 36 (3 w rounded up to a multiple of 4) + 32 for a width of w pixels.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16u_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_Low_16s_C1R():
 * 12 (w rounded up to a multiple of 8) + 64 for a width of w pixels.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                      int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_Low_16s_C3R():
 * 36 (w rounded up to a multiple of 8) + 64 for a width of w pixels.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                      int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s8s_C1R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s8s_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                    int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s8s_C3R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s8s_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                    int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s8u_C1R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s8u_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                    int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_16s8u_C3R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_16s8u_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                    int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_32f_C1R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_32f_C1R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterColumnPipeline_32f_C3R():
 * 16 k + 32 for a kernel of length k.
 * @copydetails okpiFilterRowBorderPipelineGetBufferSize_16s_C1R
 */
OKPCV_API okpStatus okpiFilterColumnPipelineGetBufferSize_32f_C3R(RoiSize roiSize, int32_t kernelSize,
                                                                  int32_t* pBufferSize);

/** @} */

/**
 * @defgroup gaussian Gaussian filters
 * @brief Smoothing with a square Gaussian kernel of odd size.
 *
 * The kernel of size @f$ K @f$ has @f$ h = \lfloor K / 2 \rfloor @f$ taps on each side of its centre, and
 *
 * @f[ w_i = e^{-i^2 / (2 \sigma^2)}, \qquad S = \sum_{i=-h}^{h} w_i, \qquad
 *     R(x, y) = C\Bigl( \sum_{i=-h}^{h} k_i \, src(x + i, y) \Bigr), \qquad
 *     dst(x, y) = C\Bigl( \sum_{j=-h}^{h} k_j \, R(x, y + j) \Bigr). @f]
 *
 * The weights are computed once, by okpiFilterGaussianInit(), in single precision: @f$ q = 1 / (\sigma
 * \sigma) @f$, then `expf(i * 0.5 * -i * q)`. Where the square of @f$ \sigma @f$ is too small for @f$ q @f$
 * to be finite, the centre has the weight 1 and all other taps 0.
 *
 * | images | coefficient @f$ k_i @f$ | @f$ C @f$ |
 * |---|---|---|
 * | 8u | @f$ \lfloor 4096 w_i / S + 1/2 \rfloor @f$ | @f$ \lfloor s / 4096 + 1/2 \rfloor @f$, saturated |
 * | 16s | @f$ \lfloor 32768 w_i / S + 1/2 \rfloor @f$, at most 32767 | @f$ \lfloor s / 32768 + 1/2 \rfloor @f$, saturated |
 * | 16u | @f$ \lfloor 32768 w_i / S + 1/2 \rfloor @f$ | the same |
 * | 32f | @f$ w_i / S @f$ | none |
 *
 * Integer images are filtered in exact integer arithmetic, and the row pass's results have the pixels' type
 * too; rounded coefficients need not sum to exactly 1. Float images are filtered in single precision: the
 * centre's product first, then from the centre outwards each product of a coefficient and the sum of the two
 * elements that share it. Results are the same bit for bit at every width, step and alignment, NaNs
 * included.
 *
 * Rows of a constant border stand between the passes as @f$ C(v \sum k_i) @f$ of the border value @f$ v @f$.
 *
 * Use: ask okpiFilterGaussianGetSpecSize() and okpiFilterGaussianGetBufferSize() how much memory is needed,
 * fill the spec with okpiFilterGaussianInit() once, then filter any number of times. A spec must not be moved
 * or copied. Filtering only reads it, so calls that run at the same time may share it, each with a buffer of
 * its own.
 *
 * A spec begins with five 32-bit integers: kernel size, 20, data type, border kind and fraction bits (12 for
 * 8u, 15 for 16u and 16s, 0 for 32f). The coefficients, 16-bit integers or floats, follow at the next 16-byte
 * boundary in memory. Behind them, at a 64-byte boundary, stand four 32-bit integers, kernel size, 64, data
 * type and 0, and at the next 64-byte boundary the half kernel as floats:
 * @f$ w_h / S, ..., w_1 / S, 1 / S @f$.
 * @{
 */

/**
 * @brief Bytes of a spec and of the memory that filling it takes.
 *
 * @param[in]  kernelSize      Size of the kernel: odd, at least 3.
 * @param[in]  dataType        Type of the images: #DataType8u, #DataType16u, #DataType16s or #DataType32f.
 * @param[in]  numChannels     Channels of the images: 1 or 3.
 * @param[out] pSpecSize       Receives the number of bytes of the spec; they need no alignment.
 * @param[out] pInitBufferSize Receives the number of bytes of the buffer of okpiFilterGaussianInit().
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a result pointer is null;
 *         - #okpStatusBadArgument: the kernel size is even or below 3;
 *         - #okpStatusBadDataType: another type of image;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusSizeTooLarge: a number of bytes does not fit its result.
 */
OKPCV_API okpStatus okpiFilterGaussianGetSpecSize(int32_t kernelSize, DataTypeCode dataType,
                                                  int32_t numChannels, int32_t* pSpecSize,
                                                  int32_t* pInitBufferSize);

/**
 * @brief Bytes of a spec and of the memory that filling it takes, as 64-bit counts.
 * @copydetails okpiFilterGaussianGetSpecSize
 */
OKPCV_API okpStatus okpiFilterGaussianGetSpecSize_L(int32_t kernelSize, DataTypeCode dataType,
                                                    int32_t numChannels, int64_t* pSpecSize,
                                                    int64_t* pInitBufferSize);

/**
 * @brief Bytes of a work buffer.
 *
 * The number serves every region that is not wider, whatever its height, every border kind, and filtering in
 * place; it also serves okpiFilterGaussianInit().
 *
 * @param[in]     roiSize     Size of the region in pixels.
 * @param[in]     kernelSize  Size of the kernel: odd, at least 3.
 * @param[in]     dataType    Type of the images: #DataType8u, #DataType16u, #DataType16s or #DataType32f.
 * @param[in]     numChannels Channels of the images: 1 or 3.
 * @param[in,out] pSpecSize   The size of the spec, to which the size of its half-kernel record is added. The
 *                            spec needs no more than okpiFilterGaussianGetSpecSize() reports.
 * @param[out]    pBufferSize Receives the number of bytes of the buffer; they need no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a result pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadArgument: the kernel size is even or below 3;
 *         - #okpStatusBadDataType: another type of image;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusSizeTooLarge: a number of bytes does not fit its result.
 */
OKPCV_API okpStatus okpiFilterGaussianGetBufferSize(RoiSize roiSize, int32_t kernelSize,
                                                    DataTypeCode dataType, int32_t numChannels,
                                                    int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer, for 64-bit region sizes and as 64-bit counts.
 * @copydetails okpiFilterGaussianGetBufferSize
 */
OKPCV_API okpStatus okpiFilterGaussianGetBufferSize_L(RoiSizeL roiSize, int32_t kernelSize,
                                                      DataTypeCode dataType, int32_t numChannels,
                                                      int64_t* pSpecSize, int64_t* pBufferSize);

/**
 * @brief Fills a spec.
 *
 * @param[in]  roiSize     Size of the region in pixels. Only checked: the spec serves regions of any size.
 * @param[in]  kernelSize  Size of the kernel: odd, at least 3.
 * @param[in]  sigma       Standard deviation in pixels, greater than 0.
 * @param[in]  borderType  Border of the `okpiFilterGaussianBorder` functions: #BorderReplicate, #BorderMirror
 *                         or #BorderConstant, each with any side flags, or #BorderInMemory.
 * @param[in]  dataType    Type of the images: #DataType8u, #DataType16u, #DataType16s or #DataType32f.
 * @param[in]  numChannels Channels of the images: 1 or 3.
 * @param[out] pSpec       Spec, of the size that okpiFilterGaussianGetSpecSize() reports.
 * @param      pInitBuffer Scratch memory of the size that the same function reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadArgument: the kernel size is even or below 3;
 *         - #okpStatusBadDataType: another type of image;
 *         - #okpStatusBadNumChannels: another number of channels;
 *         - #okpStatusBadArgument: sigma is not greater than 0, or NaN;
 *         - #okpStatusBadBorder: another border.
 */
OKPCV_API okpStatus okpiFilterGaussianInit(RoiSize roiSize, int32_t kernelSize, float sigma,
                                           BorderKind borderType, DataTypeCode dataType, int32_t numChannels,
                                           void* pSpec, void* pInitBuffer);

/**
 * @brief Fills a spec, for 64-bit region sizes.
 * @copydetails okpiFilterGaussianInit
 */
OKPCV_API okpStatus okpiFilterGaussianInit_L(RoiSizeL roiSize, int32_t kernelSize, float sigma,
                                             BorderKind borderType, DataTypeCode dataType,
                                             int32_t numChannels, void* pSpec, void* pInitBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of one channel, with the border of the call.
 *
 * Destinations as large as the caches or larger (counted in bytes of the region's rows, from 512 KiB on) are
 * stored past the caches where their step is a multiple of 16; the results are the same.
 *
 * @param[in]  pSrc        First pixel of the source's region.
 * @param[in]  srcStep     Bytes from one source row to the next.
 * @param[out] pDst        First pixel of the destination's region; may be the source with the same step, but
 *                         must not overlap it otherwise.
 * @param[in]  dstStep     Bytes from one destination row to the next.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  borderType  Pixels outside the region: #BorderReplicate, #BorderMirror or #BorderConstant, each
 *                         with any side flags, or #BorderInMemory. On a side in memory
 *                         @f$ \lfloor K / 2 \rfloor @f$ pixels must be readable beyond the region.
 * @param[in]  borderValue Value of the constant border, for three channels one per channel; not read for
 *                         other kinds.
 * @param[in]  pSpec       Spec, filled for this type of image.
 * @param      pBuffer     Work buffer of the size that okpiFilterGaussianGetBufferSize() reports for the
 *                         region or a wider one.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: an image, the spec or the buffer is null;
 *         - #okpStatusBadStep: a step is not positive;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadArgument: the spec's kernel size is even or below 3, as in a spec of zero bytes;
 *         - #okpStatusBadDataType: the spec was filled for another type of image;
 *         - #okpStatusBadBorder: another border;
 *         - #okpStatusNullPointer: no values for a constant border of several channels;
 *         - #okpStatusSizeTooLarge: the region is too wide for 64-bit arithmetic.
 */
OKPCV_API okpStatus okpiFilterGaussian_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                              int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                              uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of one channel, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_8u_C1R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst,
                                                int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                uint8_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of three channels, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_8u_C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                              int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                              const uint8_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of three channels, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_8u_C3R_L(const uint8_t* pSrc, int64_t srcStep, uint8_t* pDst,
                                                int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                const uint8_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of one channel, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               uint16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of one channel, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16u_C1R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 uint16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of three channels, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16u_C3R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               const uint16_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of three channels, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16u_C3R_L(const uint16_t* pSrc, int64_t srcStep, uint16_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 const uint16_t* borderValue, const void* pSpec,
                                                 void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of one channel, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               int16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of one channel, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16s_C1R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 int16_t borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of three channels, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16s_C3R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               const int16_t* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of three channels, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_16s_C3R_L(const int16_t* pSrc, int64_t srcStep, int16_t* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 const int16_t* borderValue, const void* pSpec,
                                                 void* pBuffer);

/**
 * @brief Gaussian filter of a float image of one channel, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               float borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a float image of one channel, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_32f_C1R_L(const float* pSrc, int64_t srcStep, float* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 float borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a float image of three channels, with the border of the call.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_32f_C3R(const float* pSrc, int32_t srcStep, float* pDst,
                                               int32_t dstStep, RoiSize roiSize, BorderKind borderType,
                                               const float* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a float image of three channels, with 64-bit sizes and steps.
 * @copydetails okpiFilterGaussian_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussian_32f_C3R_L(const float* pSrc, int64_t srcStep, float* pDst,
                                                 int64_t dstStep, RoiSizeL roiSize, BorderKind borderType,
                                                 const float* borderValue, const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of one channel, with the border of the spec.
 *
 * As okpiFilterGaussian_8u_C1R(), except that pixels outside the region are those of the border kind that
 * okpiFilterGaussianInit() recorded.
 *
 * @param[in]  pSrc        First pixel of the source's region.
 * @param[in]  srcStep     Bytes from one source row to the next.
 * @param[out] pDst        First pixel of the destination's region; may be the source with the same step, but
 *                         must not overlap it otherwise.
 * @param[in]  dstStep     Bytes from one destination row to the next.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  borderValue Value of the constant border, for three channels one per channel; not read for
 *                         other kinds.
 * @param[in]  pSpec       Spec, filled for this type of image.
 * @param      pBuffer     Work buffer of the size that okpiFilterGaussianGetBufferSize() reports for the
 *                         region or a wider one.
 * @return The statuses of okpiFilterGaussian_8u_C1R(), in the same order.
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                    int32_t dstStep, RoiSize roiSize, uint8_t borderValue,
                                                    const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an 8-bit image of three channels, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_8u_C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                    int32_t dstStep, RoiSize roiSize,
                                                    const uint8_t* borderValue, const void* pSpec,
                                                    void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of one channel, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_16u_C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, uint16_t borderValue,
                                                     const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of an unsigned 16-bit image of three channels, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_16u_C3R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize,
                                                     const uint16_t* borderValue, const void* pSpec,
                                                     void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of one channel, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, int16_t borderValue,
                                                     const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a signed 16-bit image of three channels, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_16s_C3R(const int16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize,
                                                     const int16_t* borderValue, const void* pSpec,
                                                     void* pBuffer);

/**
 * @brief Gaussian filter of a float image of one channel, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                     int32_t dstStep, RoiSize roiSize, float borderValue,
                                                     const void* pSpec, void* pBuffer);

/**
 * @brief Gaussian filter of a float image of three channels, with the border of the spec.
 * @copydetails okpiFilterGaussianBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterGaussianBorder_32f_C3R(const float* pSrc, int32_t srcStep, float* pDst,
                                                     int32_t dstStep, RoiSize roiSize,
                                                     const float* borderValue, const void* pSpec,
                                                     void* pBuffer);

/** @} */

/**
 * @defgroup derivatives Derivative kernels and gradients
 * @brief Kernels of binomial derivatives, and the reduction of a three-channel gradient to one channel.
 * @{
 */

/**
 * @brief One-dimensional kernel of a smoothed derivative, in 16-bit integers.
 *
 * The coefficients of @f$ (1 + z)^{n - d - 1} (1 - z)^d @f$ for a kernel of @f$ n @f$ taps and order
 * @f$ d @f$, ordered for filters that do not flip their kernels: 1 2 1 for @f$ n = 3, d = 0 @f$; -1 0 1 for
 * @f$ d = 1 @f$, positive where values grow; 1 -2 1 for @f$ d = 2 @f$. Not normalised. Arithmetic is that of
 * the elements: integers are exact modulo @f$ 2^{16} @f$, floats round every sum.
 *
 * @param[out] pKernel    Receives kernelSize coefficients.
 * @param[in]  kernelSize Number of taps: odd, at least 1.
 * @param[in]  order      Order of the derivative: at least 0, less than kernelSize.
 * @param[in]  sign       Negative: all coefficients change their sign.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the kernel is null;
 *         - #okpStatusBadSize: a number of taps that is even or below 1, an order below 0 or not less than
 *           it.
 */
OKPCV_API okpStatus okpiGenSobelKernel_16s(int16_t* pKernel, int32_t kernelSize, int32_t order, int32_t sign);

/**
 * @brief One-dimensional kernel of a smoothed derivative, in floats.
 * @copydetails okpiGenSobelKernel_16s
 */
OKPCV_API okpStatus okpiGenSobelKernel_32f(float* pKernel, int32_t kernelSize, int32_t order, int32_t sign);

/**
 * @brief Reduces an 8-bit image of three channels to one by a norm of each pixel.
 *
 * | norm | result for the values @f$ a, b, c @f$ | for floats |
 * |---|---|---|
 * | 0 | @f$ \max(a, b, c) @f$ | the same |
 * | 1 | @f$ \lfloor (1365 (a + b + c) + 2048) / 4096 \rfloor @f$ | @f$ (a + b + c) / 3 @f$ |
 * | 2 | @f$ \sqrt{(a^2 + b^2 + c^2) / 3} @f$ to nearest, ties to even | the same, not rounded to integers |
 *
 * For norm 2 the sum of squares, exact for integers, is rounded to single precision, multiplied by
 * 0.33333334 and its root taken in single precision. 16-bit images use the formulas of 8-bit ones. The
 * maximum of floats is @f$ m = a > b \; ? \; a : b @f$, then @f$ m > c \; ? \; m : c @f$, also where NaNs
 * are among them.
 *
 * @param[in]  pSrc    First pixel of the source's region.
 * @param[in]  srcStep Bytes from one source row to the next.
 * @param[out] pDst    First pixel of the destination's region; must not overlap the source.
 * @param[in]  dstStep Bytes from one destination row to the next.
 * @param[in]  roiSize Size of the region in pixels.
 * @param[in]  norm    0, 1 or 2.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: an image is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadStep: a step is smaller than a row of its image;
 *         - #okpStatusBadArgument: another norm.
 */
OKPCV_API okpStatus okpiGradientColorToGray_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize, int32_t norm);

/**
 * @brief Reduces an unsigned 16-bit image of three channels to one by a norm of each pixel.
 * @copydetails okpiGradientColorToGray_8u_C3C1R
 */
OKPCV_API okpStatus okpiGradientColorToGray_16u_C3C1R(const uint16_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                                      int32_t dstStep, RoiSize roiSize, int32_t norm);

/**
 * @brief Reduces a float image of three channels to one by a norm of each pixel.
 * @copydetails okpiGradientColorToGray_8u_C3C1R
 */
OKPCV_API okpStatus okpiGradientColorToGray_32f_C3C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                      int32_t dstStep, RoiSize roiSize, int32_t norm);

/** @} */

/**
 * @defgroup fixed_masks Filters with fixed masks
 * @brief Means, mixed second derivatives and Laplacians over 3 x 3 or 5 x 5 pixels.
 *
 * With the binomial kernels of okpiGenSobelKernel_16s(), smoothing @f$ s @f$, first derivative @f$ d @f$ and
 * second derivative @f$ e @f$:
 *
 * | mask | @f$ s @f$ | @f$ d @f$ | @f$ e @f$ |
 * |---|---|---|---|
 * | #MaskSize3x3 | 1 2 1 | -1 0 1 | 1 -2 1 |
 * | #MaskSize5x5 | 1 4 6 4 1 | -1 -2 0 2 1 | 1 0 -2 0 1 |
 *
 * The kernels are not flipped: derivatives are positive where values grow to the right (`dx`) and downwards
 * (`dy`). This holds for all derivatives of the library.
 *
 * Results are saturated to their type; those of 8-bit images are exact integers that fit it. Sums of floats
 * are rounded to single precision one by one, in the order that each function states. Results are the same
 * bit for bit at every width, step and alignment.
 * @{
 */

/**
 * @brief Bytes of a work buffer of okpiFilterLowpassBorder_8u_C1R().
 *
 * Depends on the region's width and the mask only: a buffer serves every region that is not wider.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  mask        #MaskSize3x3 or #MaskSize5x5.
 * @param[out] pBufferSize Receives the number of bytes; they need no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the result pointer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadMaskKind: another mask;
 *         - #okpStatusSizeTooLarge: the number of bytes does not fit the result.
 */
OKPCV_API okpStatus okpiFilterLowpassGetBufferSize_8u_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                          int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterLowpassBorder_32f_C1R().
 * @copydetails okpiFilterLowpassGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLowpassGetBufferSize_32f_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                           int32_t* pBufferSize);

/**
 * @brief Mean of the pixels around each pixel of an 8-bit image.
 *
 * @f$ dst = \lfloor \Sigma / n^2 + 1/2 \rfloor @f$ for the sum @f$ \Sigma @f$ of the
 * @f$ n \times n @f$ pixels, @f$ n = 3 @f$ or 5.
 *
 * @param[in]  pSrc        First pixel of the source's region.
 * @param[in]  srcStep     Bytes from one source row to the next.
 * @param[out] pDst        First pixel of the destination's region; must not overlap the source.
 * @param[in]  dstStep     Bytes from one destination row to the next.
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  mask        #MaskSize3x3 or #MaskSize5x5.
 * @param[in]  borderType  Pixels outside the region: #BorderReplicate, #BorderMirror or #BorderConstant, each
 *                         with any side flags, or #BorderInMemory. On a side in memory as many pixels as the
 *                         mask reaches, 1 or 2, must be readable beyond the region.
 * @param[in]  borderValue Value of the constant border; ignored for other kinds.
 * @param      pBuffer     Work buffer of the size that the function's size query reports for the region or a
 *                         wider one.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: an image or the buffer is null;
 *         - #okpStatusBadSize: a width or height below 1;
 *         - #okpStatusBadStep: a step is smaller than a row of its image;
 *         - #okpStatusStepNotMultiple: of float images only, a step is no multiple of 4;
 *         - #okpStatusBadBorder: another border;
 *         - #okpStatusBadMaskKind: another mask.
 */
OKPCV_API okpStatus okpiFilterLowpassBorder_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                   int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                   BorderKind borderType, uint8_t borderValue, void* pBuffer);

/**
 * @brief Mean of the pixels around each pixel of a float image.
 *
 * Each row of the mask is summed from left to right, the rows' sums from top to bottom, and the whole is
 * divided by 9 or 25.
 *
 * @copydetails okpiFilterLowpassBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLowpassBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                    int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                    BorderKind borderType, float borderValue, void* pBuffer);

/**
 * @brief Bytes of a work buffer of okpiFilterSobelCrossBorder_8u16s_C1R().
 * @copydetails okpiFilterLowpassGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSobelCrossGetBufferSize_8u16s_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                                int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterSobelCrossBorder_32f_C1R().
 * @copydetails okpiFilterLowpassGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSobelCrossGetBufferSize_32f_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                              int32_t* pBufferSize);

/**
 * @brief Mixed second derivative of an 8-bit image.
 *
 * @f$ dst(x, y) = \sum_j d_j \sum_i d_i \, src(x + i, y + j) @f$ with the first derivative of the mask,
 * unscaled: positive where an image grows to the lower right and the upper left.
 *
 * @copydetails okpiFilterLowpassBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSobelCrossBorder_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                         int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                         BorderKind borderType, uint8_t borderValue,
                                                         void* pBuffer);

/**
 * @brief Mixed second derivative of a float image.
 *
 * @f$ dst(x, y) = \sum_j d_j \sum_i d_i \, src(x + i, y + j) @f$ with the first derivative of the mask,
 * unscaled, both sums in the kernel's order: where no sum overflows, the result of
 * okpiFilterSeparable_32f_C1R() with the kernel of okpiGenSobelKernel_32f() for rows and columns.
 *
 * @copydetails okpiFilterLowpassBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterSobelCrossBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                       int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                       BorderKind borderType, float borderValue,
                                                       void* pBuffer);

/**
 * @brief Bytes of a work buffer of okpiFilterLaplacianBorder_8u16s_C1R().
 * @copydetails okpiFilterLowpassGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLaplacianGetBufferSize_8u16s_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                               int32_t* pBufferSize);

/**
 * @brief Bytes of a work buffer of okpiFilterLaplacianBorder_32f_C1R().
 * @copydetails okpiFilterLowpassGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLaplacianGetBufferSize_32f_C1R(RoiSize roiSize, MaskSizeCode mask,
                                                             int32_t* pBufferSize);

/**
 * @brief Laplacian of an 8-bit image.
 *
 * The sum of the second derivatives along rows and columns, each smoothed across, unscaled:
 * @f$ dst(x, y) = \sum_{i,j} (s_j e_i + e_j s_i) \, src(x + i, y + j) @f$, negative at bright spots. So the
 * masks are
 *
 *     2  0  2         2  4   4  4  2
 *     0 -8  0         4  0  -8  0  4
 *     2  0  2         4 -8 -24 -8  4
 *                     4  0  -8  0  4
 *                     2  4   4  4  2
 *
 * @copydetails okpiFilterLowpassBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLaplacianBorder_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                        BorderKind borderType, uint8_t borderValue,
                                                        void* pBuffer);

/**
 * @brief Laplacian of a float image.
 *
 * The masks are those of okpiFilterLaplacianBorder_8u16s_C1R(). The five or three rows of half the mask are
 * added from top to bottom, and the whole is doubled. Of pixels @f$ a, b, c, d, e @f$ these rows are, for
 * 3 x 3, @f$ a + c @f$ and @f$ -4b @f$; for 5 x 5, with @f$ p = a + e @f$ and @f$ q = b + d @f$,
 * @f$ p + 2(q + c) @f$, @f$ r = 2p - 4c @f$ and @f$ r - 4(q + 2c) @f$.
 *
 * @copydetails okpiFilterLowpassBorder_8u_C1R
 */
OKPCV_API okpStatus okpiFilterLaplacianBorder_32f_C1R(const float* pSrc, int32_t srcStep, float* pDst,
                                                      int32_t dstStep, RoiSize roiSize, MaskSizeCode mask,
                                                      BorderKind borderType, float borderValue,
                                                      void* pBuffer);

/** @} */

#endif /* OKPCV_FILTER_H */
