/**
 * @file pyramid.h
 * @brief Image pyramids: sizes of the levels and the record that describes them.
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
 *         - #okpStatusBadSize: a size in bytes exceeds the largest value of its type.
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
 *         - #okpStatusBadSize: okpiPyramidGetSize() reports no sizes, because they exceed their type.
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

#endif /* OKPCV_PYRAMID_H */
