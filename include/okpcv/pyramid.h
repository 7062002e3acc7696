/**
 * @file pyramid.h
 * @brief Image pyramids: sizes of the levels, the record that describes them, and how a level is made from
 * its neighbour.
 */
#ifndef OKPCV_PYRAMID_H
#define OKPCV_PYRAMID_H

#include "okpcv/types.h"

/**
 * @defgroup pyramid_sizes Pyramid sizes
 * @brief How large the next level of a pyramid is.
 *
 * A pyramid is a sequence of images: level 0 is the caller's, and each further level is smaller by a rate r,
 * 1 < r <= 10 (P. J. Burt, E. H. Adelson, "The Laplacian pyramid as a compact image code", IEEE Transactions
 * on Communications 31 (1983), with r = 2). Width and height follow the same rules independently of each
 * other. Products are rounded to single precision, trunc rounds towards zero. A size beyond its type becomes
 * the type's largest value.
 * @{
 */

/**
 * @brief Size of the next smaller level.
 *
 * For a width or height n it is the one size whose range of larger levels, see okpiGetPyramidUpROI(), holds
 * n; it lies at or beside @f$ n / r @f$ rounded half up, and is smaller than n except that 1 stays 1. Where n
 * is so large that the ranges of some sizes are empty, it is the smallest size whose maximum is at least n.
 *
 * For r = 2: 640 becomes 320, 7 becomes 4, 5 becomes 3.
 *
 * @param[in]  srcRoi Size of the level.
 * @param[out] dstRoi Size of the next smaller level.
 * @param[in]  rate   The rate r, 1 < r <= 10.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p dstRoi is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN.
 */
OKPCV_API okpStatus okpiGetPyramidDownROI(RoiSize srcRoi, RoiSize* dstRoi, float rate);

/**
 * @brief Size of the next smaller level, in 64 bits.
 * @copydetails okpiGetPyramidDownROI
 */
OKPCV_API okpStatus okpiGetPyramidDownROI_L(RoiSizeL srcRoi, RoiSizeL* dstRoi, float rate);

/**
 * @brief Smallest and largest size of a level whose next smaller level has the given size.
 *
 * For a width or height n, with @f$ t = trunc((n - 1) r) @f$ and @f$ u = trunc(n r) @f$:
 *
 * @f[ \min = \begin{cases} 1 & n = 1 \\ n + 1 & t < n \\ t + 1 & \text{else} \end{cases} \qquad
 *     \max = \begin{cases} u & n < u \\ n + 1 & \text{else} \end{cases} @f]
 *
 * @param[in]  srcRoi    Size of the smaller level.
 * @param[out] dstRoiMin Smallest size of the larger level.
 * @param[out] dstRoiMax Largest size of the larger level.
 * @param[in]  rate      The rate r, 1 < r <= 10.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN.
 */
OKPCV_API okpStatus okpiGetPyramidUpROI(RoiSize srcRoi, RoiSize* dstRoiMin, RoiSize* dstRoiMax, float rate);

/**
 * @brief Smallest and largest size of a level whose next smaller level has the given size, in 64 bits.
 * @copydetails okpiGetPyramidUpROI
 */
OKPCV_API okpStatus okpiGetPyramidUpROI_L(RoiSizeL srcRoi, RoiSizeL* dstRoiMin, RoiSizeL* dstRoiMax,
                                          float rate);

/** @} */

/**
 * @defgroup pyramid_record Pyramid record
 * @brief The description of a pyramid's levels in an area of the caller's.
 *
 * The caller owns the levels' images and enters them into the record:
 *
 * @code{.c}
 * int32_t recordSize, bufferSize;
 * okpiPyramidGetSize(&recordSize, &bufferSize, 4, size, 2.0f);
 * uint8_t *area = malloc(recordSize), *buffer = malloc(bufferSize);
 * PyramidRecord* pyramid;
 * okpiPyramidInit(&pyramid, 4, size, 2.0f, area, buffer);
 * free(buffer);
 * for (int32_t k = 0; k <= pyramid->level; ++k) {
 *     pyramid->pStep[k] = pyramid->pRoi[k].width;
 *     pyramid->pImage[k] = malloc((size_t)pyramid->pStep[k] * pyramid->pRoi[k].height);
 * }
 * @endcode
 * @{
 */

/** @brief The levels of a pyramid. Arrays have level + 1 elements; all lies in the area given to the Init. */
typedef struct PyramidRecord {
    uint8_t** pImage; /**< Level images, for the caller to enter; null after the Init. */
    int32_t* pStep;   /**< Their steps in bytes, for the caller to enter; 0 after the Init. */
    RoiSize* pRoi;    /**< Their sizes; level 0 has the given one. */
    double* pRate;    /**< Scales relative to level 0: 1, 1/r, (1/r)(1/r), ... */
    uint8_t* pState;  /**< Null; reserved for the operations on levels. */
    int32_t level;    /**< Number of levels above level 0. */
} PyramidRecord;

/** @brief The levels of a pyramid with sizes and steps of 64 bits, otherwise as #PyramidRecord. */
typedef struct PyramidRecordL {
    uint8_t** pImage; /**< Level images, for the caller to enter; null after the Init. */
    int64_t* pStep;   /**< Their steps in bytes, for the caller to enter; 0 after the Init. */
    RoiSizeL* pRoi;   /**< Their sizes; level 0 has the given one. */
    double* pRate;    /**< Scales relative to level 0: 1, 1/r, (1/r)(1/r), ... */
    uint8_t* pState;  /**< Null; reserved for the operations on levels. */
    int32_t level;    /**< Number of levels above level 0. */
} PyramidRecordL;

/**
 * @brief Sizes of the areas that okpiPyramidInit() needs.
 *
 * @f[ pyramidSize = 52 L + 152 \qquad bufferSize = 8 \max(width, height) @f]
 *
 * where L is @p level, or the number of times that the size can be reduced before it is 1 x 1, if that is
 * less. The time is proportional to L, which exceeds the thousands only for rates very close to 1.
 *
 * @param[out] pyramidSize Size of the area for the record in bytes.
 * @param[out] bufferSize  Size of the work buffer in bytes.
 * @param[in]  level       Largest number of levels above level 0, at least 1.
 * @param[in]  roiSize     Size of level 0.
 * @param[in]  rate        The rate r, 1 < r <= 10.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pyramidSize or @p bufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p level below 1, or @p rate outside its range or NaN;
 *         - #okpStatusSizeTooLarge: a size in bytes exceeds the largest value of its type.
 */
OKPCV_API okpStatus okpiPyramidGetSize(int32_t* pyramidSize, int32_t* bufferSize, int32_t level,
                                       RoiSize roiSize, float rate);

/**
 * @brief Sizes of the areas that okpiPyramidInit_L() needs.
 * @copydetails okpiPyramidGetSize
 */
OKPCV_API okpStatus okpiPyramidGetSize_L(int64_t* pyramidSize, int64_t* bufferSize, int32_t level,
                                         RoiSizeL roiSize, float rate);

/**
 * @brief Lays out a pyramid's record in an area of the caller's.
 *
 * The record and its arrays are aligned to 8 bytes, wherever the area begins. They stay valid as long as the
 * area stays where it is; the buffer is not needed any longer after the call.
 *
 * @param[out] pyramid     Address of the record, inside the area; unchanged when the call fails.
 * @param[in]  level       Largest number of levels above level 0, at least 1.
 * @param[in]  roiSize     Size of level 0.
 * @param[in]  rate        The rate r, 1 < r <= 10.
 * @param[out] pyramidArea Area of the size that okpiPyramidGetSize() reports for the same arguments.
 * @param      buffer      Work buffer of the size that okpiPyramidGetSize() reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN, or @p level below 1;
 *         - #okpStatusSizeTooLarge: okpiPyramidGetSize() reports no sizes, because they exceed their type.
 */
OKPCV_API okpStatus okpiPyramidInit(PyramidRecord** pyramid, int32_t level, RoiSize roiSize, float rate,
                                    uint8_t* pyramidArea, uint8_t* buffer);

/**
 * @brief Lays out a pyramid's record with sizes and steps of 64 bits.
 * @copydetails okpiPyramidInit
 */
OKPCV_API okpStatus okpiPyramidInit_L(PyramidRecordL** pyramid, int32_t level, RoiSizeL roiSize, float rate,
                                      uint8_t* pyramidArea, uint8_t* buffer);

/** @} */

/**
 * @defgroup pyramid_layers Pyramid layers
 * @brief A level of a pyramid from its neighbour.
 *
 * Down makes the next smaller level: it filters the image and samples it at multiples of the rate. Up makes
 * the next larger one: it inserts a zero behind every pixel, filters with the matching gain, and samples what
 * has become twice as large at multiples of two over the rate. With rate 2 no sample lies between pixels, and
 * the two are the REDUCE and EXPAND of P. J. Burt, E. H. Adelson, "The Laplacian pyramid as a compact image
 * code", IEEE Transactions on Communications 31 (1983).
 *
 * With a kernel of @f$ n = 2h + 1 @f$ coefficients @f$ k_{-h}, ..., k_h @f$ and their weights
 * @f$ w_i = g k_i / \sum k @f$, where the gain @f$ g @f$ is 1 for Down and 2 for Up, each channel by itself:
 *
 * @f[ V(x, j) = \sum_{i=-h}^{h} w_i \, S(x, j + i) \qquad
 *     M_y(x) = V(x, j) + (V(x, j + 1) - V(x, j)) \, f \qquad
 *     H_y(j) = \sum_{i=-h}^{h} w_i \, M_y(j + i) @f]
 * @f[ dst(x, y) = C\bigl( H_y(j') + (H_y(j' + 1) - H_y(j')) \, f' \bigr) @f]
 *
 * - For Down @f$ S @f$ is the source, @f$ j + f = y r @f$ and @f$ j' + f' = x r @f$.
 * - For Up @f$ S @f$ has twice the source's size: @f$ S(2x, 2y) = src(x, y) @f$, the rest is zero
 *   (@f$ M_y @f$ too has zeros between its pixels). @f$ j + f = 2y / r @f$ and @f$ j' + f' = 2x / r @f$. Sums
 *   have no terms for the zeros.
 * - A place behind the last pixel of @f$ S @f$ is moved onto it. @f$ f @f$ is the fractional part; places are
 *   computed in double precision, @f$ f @f$ is then rounded to single precision. Where it is 0, the second
 *   element is not looked at.
 * - Beyond its first and last pixels @f$ S @f$ is reflected about them, without repeating them, again and
 *   again where it is small (#BorderMirror).
 * - Weights are computed in double precision (the sum in the order of the coefficients) and rounded to single
 *   precision. All else is single precision, one rounding per operation; sums begin with zero and take their
 *   terms in the order of the coefficients, rows from top to bottom.
 * - @f$ C @f$ stores floats unchanged. For integer types it adds 0.5, rounds down and clamps to the type: it
 *   rounds half up.
 *
 * So results are the same bit for bit at every alignment, step and width of memory, NaNs included. With the
 * binomial kernel 1 4 6 4 1 and rate 2, all values of 8- and 16-bit images are exact before they are rounded.
 *
 * Smooth images come back: where the second differences of an 8-bit image stay below about a quarter, Up of
 * Down with the binomial kernel at rate 2 differs from it by 1 at most. Across the edges it must be level:
 * reflection flattens slopes there.
 *
 * Use, for one step of a Laplacian pyramid:
 *
 * @code{.c}
 * int32_t downSpecSize, downBufferSize, upSpecSize, upBufferSize;
 * RoiSize small;
 * okpiGetPyramidDownROI(size, &small, 2.0f);
 * okpiPyramidLayerDownGetSize_8u_C1R(size, 2.0f, 5, &downSpecSize, &downBufferSize);
 * okpiPyramidLayerUpGetSize_8u_C1R(small, 2.0f, 5, &upSpecSize, &upBufferSize);
 * // ... allocate ...
 * okpiPyramidLayerDownInit_8u_C1R(size, 2.0f, NULL, 5, downSpec);
 * okpiPyramidLayerUpInit_8u_C1R(small, 2.0f, NULL, 5, upSpec);
 * okpiPyramidLayerDown_8u_C1R(image, step, size, next, nextStep, small, downSpec, downBuffer);
 * okpiPyramidLayerUp_8u_C1R(next, nextStep, small, predicted, step, size, upSpec, upBuffer);
 * // The Laplacian level is image - predicted.
 * @endcode
 *
 * A spec serves all levels whose source is not larger than the size it was made for. It must not be moved or
 * copied (initialise it again at its new place instead). Operations only read it, so calls that run at the
 * same time may share it, each with a buffer of its own. Rate 2 with the binomial kernel is the fastest by
 * far.
 * @{
 */

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of 8-bit images.
 *
 * @param[in]  srcRoi      Size of the source, or of the largest one that the spec and the buffer shall serve.
 * @param[in]  rate        The rate r, 1 < r <= 10.
 * @param[in]  kernelSize  Number of coefficients of the kernel: odd, at least 3; 5 for the binomial kernel.
 * @param[out] pSpecSize   Receives the bytes of the spec; it needs no alignment.
 * @param[out] pBufferSize Receives the bytes of the work buffer; it needs no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pSpecSize or @p pBufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN;
 *         - #okpStatusBadArgument: @p kernelSize even or below 3;
 *         - #okpStatusSizeTooLarge: a number of bytes exceeds the largest value of its type.
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_8u_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                       int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of 8-bit images of three
 * channels.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_8u_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                       int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of 16-bit images.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_16u_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                        int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of 16-bit images of three
 * channels.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_16u_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                        int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of float images.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_32f_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                        int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of float images of three
 * channels.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_32f_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                        int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next smaller level of float images, for 64-bit
 * sizes and steps.
 * @copydetails okpiPyramidLayerDownGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownGetSize_32f_C1R_L(RoiSizeL srcRoi, float rate, int32_t kernelSize,
                                                          int64_t* pSpecSize, int64_t* pBufferSize);

/**
 * @brief Fills a spec for the next smaller level of 8-bit images.
 *
 * @param[in]  srcRoi     Size of the source, or of the largest one that the spec shall serve.
 * @param[in]  rate       The rate r, 1 < r <= 10.
 * @param[in]  pKernel    Coefficients, which are divided by their sum; copied. Null stands for the binomial
 *                        kernel 1 4 6 4 1.
 * @param[in]  kernelSize Number of coefficients: odd, at least 3, and 5 when @p pKernel is null.
 * @param[out] pSpec      Spec, of the size that okpiPyramidLayerDownGetSize_8u_C1R() reports for the same
 *                        arguments.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pSpec is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN;
 *         - #okpStatusBadArgument: @p kernelSize even or below 3;
 *         - #okpStatusSizeTooLarge: okpiPyramidLayerDownGetSize_8u_C1R() reports no sizes, because they
 *           exceed their type;
 *         - #okpStatusBadArgument: @p pKernel is null and @p kernelSize is not 5;
 *         - #okpStatusDivByZero: the sum of the coefficients is zero;
 *         - #okpStatusBadArgument: a weight is not a finite number.
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_8u_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                    int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of 8-bit images of three channels.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_8u_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                    int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of 16-bit images.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_16u_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                     int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of 16-bit images of three channels.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_16u_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                     int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of float images.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_32f_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                     int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of float images of three channels.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_32f_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                     int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next smaller level of float images, for 64-bit sizes and steps.
 * @copydetails okpiPyramidLayerDownInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDownInit_32f_C1R_L(RoiSizeL srcRoi, float rate, const float* pKernel,
                                                       int32_t kernelSize, void* pSpec);

/**
 * @brief Makes the next smaller level of an 8-bit image.
 *
 * @f$ dst @f$ as given above for the group.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[in]  srcRoi  Size of the source: in neither direction larger than the size that the spec was made
 *                     for.
 * @param[out] pDst    Destination; must not overlap the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  dstRoi  Size of the destination: what okpiGetPyramidDownROI() reports for the source.
 * @param[in]  pSpec   Spec that okpiPyramidLayerDownInit_8u_C1R() has filled.
 * @param      pBuffer Work buffer, of the size that okpiPyramidLayerDownGetSize_8u_C1R() reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height of the source, then of the destination, below 1;
 *         - #okpStatusBadStep: the step of the source is less than its width in bytes;
 *         - #okpStatusStepNotMultiple: it is no multiple of the element size (not of 8-bit images);
 *         - #okpStatusBadStep, #okpStatusStepNotMultiple: the same of the destination;
 *         - #okpStatusBadSize: the source is larger than the size that the spec was made for;
 *         - #okpStatusBadSize: the size of the destination is none that belongs to the source;
 *         - #okpStatusInPlaceNotSupported: source and destination begin at the same address.
 */
OKPCV_API okpStatus okpiPyramidLayerDown_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                uint8_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                                const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of 8-bit images of three channels.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_8u_C3R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                uint8_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                                const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of 16-bit images.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_16u_C1R(const uint16_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                 uint16_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                                 const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of 16-bit images of three channels.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_16u_C3R(const uint16_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                 uint16_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                                 const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of float images.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                 float* pDst, int32_t dstStep, RoiSize dstRoi,
                                                 const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of float images of three channels.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_32f_C3R(const float* pSrc, int32_t srcStep, RoiSize srcRoi,
                                                 float* pDst, int32_t dstStep, RoiSize dstRoi,
                                                 const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next smaller level of float images, for 64-bit sizes and steps.
 * @copydetails okpiPyramidLayerDown_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerDown_32f_C1R_L(const float* pSrc, int64_t srcStep, RoiSizeL srcRoi,
                                                   float* pDst, int64_t dstStep, RoiSizeL dstRoi,
                                                   const void* pSpec, void* pBuffer);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of 8-bit images.
 *
 * @param[in]  srcRoi      Size of the source, or of the largest one that the spec and the buffer shall serve.
 * @param[in]  rate        The rate r, 1 < r <= 10.
 * @param[in]  kernelSize  Number of coefficients of the kernel: odd, at least 3; 5 for the binomial kernel.
 * @param[out] pSpecSize   Receives the bytes of the spec; it needs no alignment.
 * @param[out] pBufferSize Receives the bytes of the work buffer; it needs no alignment.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pSpecSize or @p pBufferSize is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN;
 *         - #okpStatusBadArgument: @p kernelSize even or below 3;
 *         - #okpStatusSizeTooLarge: a number of bytes exceeds the largest value of its type.
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_8u_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                     int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of 8-bit images of three
 * channels.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_8u_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                     int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of 16-bit images.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_16u_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                      int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of 16-bit images of three
 * channels.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_16u_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                      int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of float images.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_32f_C1R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                      int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of float images of three
 * channels.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_32f_C3R(RoiSize srcRoi, float rate, int32_t kernelSize,
                                                      int32_t* pSpecSize, int32_t* pBufferSize);

/**
 * @brief Sizes of the spec and of the work buffer for the next larger level of float images, for 64-bit sizes
 * and steps.
 * @copydetails okpiPyramidLayerUpGetSize_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpGetSize_32f_C1R_L(RoiSizeL srcRoi, float rate, int32_t kernelSize,
                                                        int64_t* pSpecSize, int64_t* pBufferSize);

/**
 * @brief Fills a spec for the next larger level of 8-bit images.
 *
 * @param[in]  srcRoi     Size of the source, or of the largest one that the spec shall serve.
 * @param[in]  rate       The rate r, 1 < r <= 10.
 * @param[in]  pKernel    Coefficients, which are divided by their sum; copied. Null stands for the binomial
 *                        kernel 1 4 6 4 1.
 * @param[in]  kernelSize Number of coefficients: odd, at least 3, and 5 when @p pKernel is null.
 * @param[out] pSpec      Spec, of the size that okpiPyramidLayerUpGetSize_8u_C1R() reports for the same
 *                        arguments.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: @p pSpec is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadArgument: @p rate outside its range or NaN;
 *         - #okpStatusBadArgument: @p kernelSize even or below 3;
 *         - #okpStatusSizeTooLarge: okpiPyramidLayerUpGetSize_8u_C1R() reports no sizes, because they exceed
 *           their type;
 *         - #okpStatusBadArgument: @p pKernel is null and @p kernelSize is not 5;
 *         - #okpStatusDivByZero: the sum of the coefficients is zero;
 *         - #okpStatusBadArgument: a weight is not a finite number.
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_8u_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                  int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of 8-bit images of three channels.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_8u_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                  int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of 16-bit images.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_16u_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                   int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of 16-bit images of three channels.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_16u_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                   int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of float images.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_32f_C1R(RoiSize srcRoi, float rate, const float* pKernel,
                                                   int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of float images of three channels.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_32f_C3R(RoiSize srcRoi, float rate, const float* pKernel,
                                                   int32_t kernelSize, void* pSpec);

/**
 * @brief Fills a spec for the next larger level of float images, for 64-bit sizes and steps.
 * @copydetails okpiPyramidLayerUpInit_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUpInit_32f_C1R_L(RoiSizeL srcRoi, float rate, const float* pKernel,
                                                     int32_t kernelSize, void* pSpec);

/**
 * @brief Makes the next larger level of an 8-bit image.
 *
 * @f$ dst @f$ as given above for the group.
 *
 * @param[in]  pSrc    Source.
 * @param[in]  srcStep Step of the source in bytes.
 * @param[in]  srcRoi  Size of the source: in neither direction larger than the size that the spec was made
 *                     for.
 * @param[out] pDst    Destination; must not overlap the source.
 * @param[in]  dstStep Step of the destination in bytes.
 * @param[in]  dstRoi  Size of the destination: in the range that okpiGetPyramidUpROI() reports for the
 *                     source.
 * @param[in]  pSpec   Spec that okpiPyramidLayerUpInit_8u_C1R() has filled.
 * @param      pBuffer Work buffer, of the size that okpiPyramidLayerUpGetSize_8u_C1R() reports.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height of the source, then of the destination, below 1;
 *         - #okpStatusBadStep: the step of the source is less than its width in bytes;
 *         - #okpStatusStepNotMultiple: it is no multiple of the element size (not of 8-bit images);
 *         - #okpStatusBadStep, #okpStatusStepNotMultiple: the same of the destination;
 *         - #okpStatusBadSize: the source is larger than the size that the spec was made for;
 *         - #okpStatusBadSize: the size of the destination is none that belongs to the source;
 *         - #okpStatusInPlaceNotSupported: source and destination begin at the same address.
 */
OKPCV_API okpStatus okpiPyramidLayerUp_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                              uint8_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                              const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of 8-bit images of three channels.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_8u_C3R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                              uint8_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                              const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of 16-bit images.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_16u_C1R(const uint16_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                               uint16_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                               const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of 16-bit images of three channels.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_16u_C3R(const uint16_t* pSrc, int32_t srcStep, RoiSize srcRoi,
                                               uint16_t* pDst, int32_t dstStep, RoiSize dstRoi,
                                               const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of float images.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_32f_C1R(const float* pSrc, int32_t srcStep, RoiSize srcRoi,
                                               float* pDst, int32_t dstStep, RoiSize dstRoi,
                                               const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of float images of three channels.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_32f_C3R(const float* pSrc, int32_t srcStep, RoiSize srcRoi,
                                               float* pDst, int32_t dstStep, RoiSize dstRoi,
                                               const void* pSpec, void* pBuffer);

/**
 * @brief Makes the next larger level of float images, for 64-bit sizes and steps.
 * @copydetails okpiPyramidLayerUp_8u_C1R
 */
OKPCV_API okpStatus okpiPyramidLayerUp_32f_C1R_L(const float* pSrc, int64_t srcStep, RoiSizeL srcRoi,
                                                 float* pDst, int64_t dstStep, RoiSizeL dstRoi,
                                                 const void* pSpec, void* pBuffer);

/** @} */

#endif /* OKPCV_PYRAMID_H */
