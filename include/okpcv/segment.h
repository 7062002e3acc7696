/**
 * @file segment.h
 * @brief Segmentation: flood fills, labelling of connected components, speckles, segment boundaries.
 */
#ifndef OKPCV_SEGMENT_H
#define OKPCV_SEGMENT_H

#include "okpcv/types.h"

/**
 * @defgroup flood_fill Flood fill
 * @brief Recolours the connected region around a seed, in place, and reports its size and place.
 *
 * Three rules say which pixels belong to the region:
 * - plain: those equal to the seed's value;
 * - range: those within a fixed interval around the seed's value;
 * - gradient: those that differ little from the neighbour through which they are reached.
 *
 * The `4Con` functions reach the four neighbours of a pixel beside, above and below it, the `8Con` functions
 * the diagonal ones as well.
 *
 * All fills grow the region run by run: from the run of accepted pixels in the seed's row, the rows beside
 * each run are searched for further runs, the most recently found run first. Source: P. S. Heckbert, "A Seed
 * Fill Algorithm", Graphics Gems, 1990.
 *
 * The caller's buffer serves one call at a time, needs no alignment, and is never exceeded, whatever the
 * image.
 * @{
 */

/** @brief Record of a filled region. */
typedef struct ConnectedComp {
    double area;     /**< Number of pixels. */
    double value[3]; /**< The value written, by channel; 0 where the image has no such channel. */
    PixelRect rect;  /**< Bounding box, relative to the region of interest. */
} ConnectedComp;

/**
 * @brief Size of the buffer of the plain and range fills.
 *
 * @f[ bytes = 6 \, width \, height + 32 @f]
 *
 * computed modulo @f$ 2^{32} @f$: from 357913936 pixels on the number reads as negative (as an unsigned
 * number it is right), and from 715827878 pixels on it wraps and is too small. No fill exceeds the bytes of
 * the wrapped number, but a fill of such an image may stop before the region is complete.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Receives the bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the pointer is null;
 *         - #okpStatusBadSize: width or height below 1.
 */
OKPCV_API okpStatus okpiFloodFillGetSize(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Size of the buffer of the gradient fills.
 *
 * @f[ bytes = (width + 2)(height + 2) + 16 \, width \, height + 64 @f]
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Receives the bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusSizeTooLarge: the bytes exceed 2147483647.
 */
OKPCV_API okpStatus okpiFloodFillGetSize_Grad(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Fills the 4-connected region equal to the seed in an 8-bit image.
 *
 * A pixel belongs to the region when it equals the seed's value and is connected to the seed by such pixels:
 *
 * @f[ p(x, y) = p(seed) @f]
 *
 * Floats are compared as numbers: -0 equals +0. A NaN equals nothing, so a fill from a NaN recolours the seed
 * alone. When the seed already equals `newVal` the function returns at once and writes nothing, not even the
 * record.
 *
 * The region is always complete: the buffer holds the stack for every image (see okpiFloodFillGetSize() for
 * images beyond its range).
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_4Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                               PixelPoint seed, uint8_t newVal, ConnectedComp* pRegion,
                                               uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in an 8-bit image of three channels.
 *
 * As okpiFloodFill_4Con_8u_C1IR(); a pixel belongs to the region when all three channels equal the seed's.
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write, a pointer to three values.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_4Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                               PixelPoint seed, const uint8_t* newVal, ConnectedComp* pRegion,
                                               uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_4Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, uint16_t newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in an unsigned 16-bit image of three channels.
 * @copydetails okpiFloodFill_4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_4Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, const uint16_t* newVal,
                                                ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in a signed 32-bit image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_4Con_32s_C1IR(int32_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, int32_t newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in a float image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_4Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, float newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region equal to the seed in a float image of three channels.
 * @copydetails okpiFloodFill_4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_4Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, const float* newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in an 8-bit image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                               PixelPoint seed, uint8_t newVal, ConnectedComp* pRegion,
                                               uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in an 8-bit image of three channels.
 * @copydetails okpiFloodFill_4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                               PixelPoint seed, const uint8_t* newVal, ConnectedComp* pRegion,
                                               uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, uint16_t newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in an unsigned 16-bit image of three channels.
 * @copydetails okpiFloodFill_4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, const uint16_t* newVal,
                                                ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in a signed 32-bit image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_32s_C1IR(int32_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, int32_t newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in a float image.
 * @copydetails okpiFloodFill_4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, float newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region equal to the seed in a float image of three channels.
 * @copydetails okpiFloodFill_4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_8Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                PixelPoint seed, const float* newVal, ConnectedComp* pRegion,
                                                uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in an 8-bit image.
 *
 * A pixel belongs to the region when it lies in an interval that is fixed by the seed's value before the
 * fill, and is connected to the seed by such pixels:
 *
 * @f[ p(seed) - minDelta \le p(x, y) \le p(seed) + maxDelta @f]
 *
 * The bounds are clamped to the range of an integer type, and formed in single precision for floats. NaN
 * pixels never belong. The seed always belongs, whatever its value.
 *
 * `newVal` may lie inside the interval.
 *
 * The stack keeps the runs that are still to be searched from in a ring of @f$ \lfloor width \cdot height / 4
 * \rfloor @f$ entries. When more are waiting the oldest are forgotten: they are recoloured and counted in
 * `area`, but the region does not grow on from them, and they do not widen `rect`. Only tiny images and dense
 * patterns of single pixels come to that. When the quotient is exactly 1 (4 to 7 pixels) only the seed's run
 * is filled; when it is 0, in smaller images, the region is complete.
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write.
 * @param[in]     minDelta  How far below a pixel may lie.
 * @param[in]     maxDelta  How far above a pixel may lie.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, uint8_t newVal, uint8_t minDelta,
                                                    uint8_t maxDelta, ConnectedComp* pRegion,
                                                    uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in an 8-bit image of three channels.
 *
 * As okpiFloodFill_Range4Con_8u_C1IR(); a pixel belongs to the region when each channel lies in its interval.
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write, a pointer to three values.
 * @param[in]     minDelta  How far below a pixel may lie; a pointer to three values.
 * @param[in]     maxDelta  How far above a pixel may lie; a pointer to three values.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const uint8_t* newVal,
                                                    const uint8_t* minDelta, const uint8_t* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_Range4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, uint16_t newVal, uint16_t minDelta,
                                                     uint16_t maxDelta, ConnectedComp* pRegion,
                                                     uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in an unsigned 16-bit image of three
 * channels.
 * @copydetails okpiFloodFill_Range4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, const uint16_t* newVal,
                                                     const uint16_t* minDelta, const uint16_t* maxDelta,
                                                     ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in a float image.
 * @copydetails okpiFloodFill_Range4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, float newVal, float minDelta,
                                                     float maxDelta, ConnectedComp* pRegion,
                                                     uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region in an interval around the seed in a float image of three channels.
 * @copydetails okpiFloodFill_Range4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Range4Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, const float* newVal,
                                                     const float* minDelta, const float* maxDelta,
                                                     ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in an 8-bit image.
 * @copydetails okpiFloodFill_Range4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, uint8_t newVal, uint8_t minDelta,
                                                    uint8_t maxDelta, ConnectedComp* pRegion,
                                                    uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in an 8-bit image of three channels.
 * @copydetails okpiFloodFill_Range4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const uint8_t* newVal,
                                                    const uint8_t* minDelta, const uint8_t* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_Range4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, uint16_t newVal, uint16_t minDelta,
                                                     uint16_t maxDelta, ConnectedComp* pRegion,
                                                     uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in an unsigned 16-bit image of three
 * channels.
 * @copydetails okpiFloodFill_Range4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, const uint16_t* newVal,
                                                     const uint16_t* minDelta, const uint16_t* maxDelta,
                                                     ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in a float image.
 * @copydetails okpiFloodFill_Range4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, float newVal, float minDelta,
                                                     float maxDelta, ConnectedComp* pRegion,
                                                     uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region in an interval around the seed in a float image of three channels.
 * @copydetails okpiFloodFill_Range4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Range8Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                     PixelPoint seed, const float* newVal,
                                                     const float* minDelta, const float* maxDelta,
                                                     ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in an 8-bit image.
 *
 * A pixel c belongs to the region when it is reached from a pixel n of the region beside it with
 *
 * @f[ n - minDelta \le c \le n + maxDelta @f]
 *
 * where both are the values before the fill: exact for integers, the bounds formed in single precision for
 * floats. NaN pixels are never reached, and nothing is reached from them. The seed always belongs.
 *
 * The condition need not be symmetric, and not every pair of neighbours is tried, so the order matters; it
 * is:
 * 1. The seed's run: from the seed to the left, then to the right, while each pixel is reached from the one
 * before.
 * 2. Then, from the most recently found run first: the row ahead (away from the row in which the run was
 * found; for the seed's run the row above, but the row below in the last row) is searched along the run from
 * left to right; in the `8Con` functions from one column before the run to one behind it. A pixel that does
 * not yet belong and is reached from the run's pixel above or below it (in the `8Con` functions also from
 * those diagonal to it) begins a new run, which grows to the left and to the right as the seed's did. The
 * search goes on two columns behind the new run.
 * 3. The other row is searched in the same way, except along the span of the run from which this one was
 * found. (Behind the seed's run the `8Con` functions search it in two parts: up to the run's end, and the
 * column behind it.)
 *
 * The region is always complete: the buffer holds the stack for every image.
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write.
 * @param[in]     minDelta  How far below a pixel may lie.
 * @param[in]     maxDelta  How far above a pixel may lie.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize_Grad() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                   PixelPoint seed, uint8_t newVal, uint8_t minDelta,
                                                   uint8_t maxDelta, ConnectedComp* pRegion,
                                                   uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in an 8-bit image of three channels.
 *
 * As okpiFloodFill_Grad4Con_8u_C1IR(); a pixel is reached when each channel satisfies the condition.
 *
 * @param[in,out] pImage    Image.
 * @param[in]     imageStep Step of the image in bytes.
 * @param[in]     roiSize   Size of the region of interest in pixels.
 * @param[in]     seed      Seed, relative to the region of interest.
 * @param[in]     newVal    Value to write, a pointer to three values.
 * @param[in]     minDelta  How far below a pixel may lie; a pointer to three values.
 * @param[in]     maxDelta  How far above a pixel may lie; a pointer to three values.
 * @param[out]    pRegion   Receives the record of the filled region.
 * @param[in]     pBuffer   Buffer of the bytes that okpiFloodFillGetSize_Grad() reports; must not overlap the
 *                          image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusOutOfRange: the seed lies outside the region of interest.
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                   PixelPoint seed, const uint8_t* newVal,
                                                   const uint8_t* minDelta, const uint8_t* maxDelta,
                                                   ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_Grad4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, uint16_t newVal, uint16_t minDelta,
                                                    uint16_t maxDelta, ConnectedComp* pRegion,
                                                    uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in an unsigned 16-bit image of three channels.
 * @copydetails okpiFloodFill_Grad4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const uint16_t* newVal,
                                                    const uint16_t* minDelta, const uint16_t* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in a float image.
 * @copydetails okpiFloodFill_Grad4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, float newVal, float minDelta,
                                                    float maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 4-connected region reached by small steps in a float image of three channels.
 * @copydetails okpiFloodFill_Grad4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad4Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const float* newVal,
                                                    const float* minDelta, const float* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in an 8-bit image.
 * @copydetails okpiFloodFill_Grad4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_8u_C1IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                   PixelPoint seed, uint8_t newVal, uint8_t minDelta,
                                                   uint8_t maxDelta, ConnectedComp* pRegion,
                                                   uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in an 8-bit image of three channels.
 * @copydetails okpiFloodFill_Grad4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_8u_C3IR(uint8_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                   PixelPoint seed, const uint8_t* newVal,
                                                   const uint8_t* minDelta, const uint8_t* maxDelta,
                                                   ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in an unsigned 16-bit image.
 * @copydetails okpiFloodFill_Grad4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_16u_C1IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, uint16_t newVal, uint16_t minDelta,
                                                    uint16_t maxDelta, ConnectedComp* pRegion,
                                                    uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in an unsigned 16-bit image of three channels.
 * @copydetails okpiFloodFill_Grad4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_16u_C3IR(uint16_t* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const uint16_t* newVal,
                                                    const uint16_t* minDelta, const uint16_t* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in a float image.
 * @copydetails okpiFloodFill_Grad4Con_8u_C1IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_32f_C1IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, float newVal, float minDelta,
                                                    float maxDelta, ConnectedComp* pRegion, uint8_t* pBuffer);

/**
 * @brief Fills the 8-connected region reached by small steps in a float image of three channels.
 * @copydetails okpiFloodFill_Grad4Con_8u_C3IR
 */
OKPCV_API okpStatus okpiFloodFill_Grad8Con_32f_C3IR(float* pImage, int32_t imageStep, RoiSize roiSize,
                                                    PixelPoint seed, const float* newVal,
                                                    const float* minDelta, const float* maxDelta,
                                                    ConnectedComp* pRegion, uint8_t* pBuffer);

/** @} */

/**
 * @defgroup labelling Connected components
 * @brief Numbers the connected groups of marked pixels.
 * @{
 */

/**
 * @brief Size of the buffer of okpiLabelMarkers_8u_C1IR().
 *
 * @f[ bytes = 6 \, width \, height + 32 @f]
 *
 * computed modulo @f$ 2^{32} @f$, as okpiFloodFillGetSize() does: from 357913936 pixels on the number reads
 * as negative (as an unsigned number it is right), and from 715827878 pixels on it wraps and is too small. No
 * call exceeds the bytes of the wrapped number, but with so few a group may be labelled as several.
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[out] pBufferSize Receives the bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the pointer is null;
 *         - #okpStatusBadSize: width or height below 1.
 */
OKPCV_API okpStatus okpiLabelMarkersGetBufferSize_8u_C1R(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Size of the buffer of okpiLabelMarkers_16u_C1IR().
 * @copydetails okpiLabelMarkersGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiLabelMarkersGetBufferSize_16u_C1R(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Size of the buffer of okpiLabelMarkers_8u32s_C1R().
 * @copydetails okpiLabelMarkersGetBufferSize_8u_C1R
 */
OKPCV_API okpStatus okpiLabelMarkersGetBufferSize_8u32s_C1R(RoiSize roiSize, int32_t* pBufferSize);

/**
 * @brief Labels the connected groups of nonzero pixels of an 8-bit image.
 *
 * Groups are numbered in the order in which a scan of the rows, top to bottom and each from left to right,
 * comes to their first pixels. The first group gets `minLabel`, each further one the next label; behind
 * `maxLabel` the labels begin again with `minLabel`, so that several groups share a label when there are more
 * groups than labels. Pixels of value 0 stay 0.
 *
 * Source: L. He, Y. Chao, K. Suzuki, "A Run-Based Two-Scan Labeling Algorithm", IEEE Transactions on Image
 * Processing 17(5), 2008.
 *
 * @param[in,out] pMarker    Markers on input, labels on output.
 * @param[in]     markerStep Step of the image in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     minLabel   First label, at least 1.
 * @param[in]     maxLabel   Last label, at least `minLabel` and at most 254 (65534 for 16u, 2147483646 for
 *                           32s).
 * @param[in]     norm       0: groups are connected through all eight neighbours; 1: through four.
 * @param[out]    pNumber    Receives the number of groups.
 * @param[in]     pBuffer    Buffer of the bytes that the size query reports, at any address; must not overlap
 *                           an image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadArgument: a label outside its range, `minLabel` above `maxLabel`, or another norm.
 */
OKPCV_API okpStatus okpiLabelMarkers_8u_C1IR(uint8_t* pMarker, int32_t markerStep, RoiSize roiSize,
                                             int32_t minLabel, int32_t maxLabel, int32_t norm,
                                             int32_t* pNumber, uint8_t* pBuffer);

/**
 * @brief Labels the connected groups of nonzero pixels of an unsigned 16-bit image.
 * @copydetails okpiLabelMarkers_8u_C1IR
 */
OKPCV_API okpStatus okpiLabelMarkers_16u_C1IR(uint16_t* pMarker, int32_t markerStep, RoiSize roiSize,
                                              int32_t minLabel, int32_t maxLabel, int32_t norm,
                                              int32_t* pNumber, uint8_t* pBuffer);

/**
 * @brief Labels the connected groups of nonzero pixels of an 8-bit image in a 32-bit image.
 *
 * As okpiLabelMarkers_8u_C1IR(), with the labels, and 0 for pixels of value 0, in an image of their own.
 *
 * @param[in]  pSrc     Markers.
 * @param[in]  srcStep  Step of the source in bytes.
 * @param[out] pDst     Labels; must not overlap the source.
 * @param[in]  dstStep  Step of the destination in bytes.
 * @param[in]  roiSize  Size of the region in pixels.
 * @param[in]  minLabel First label, at least 1.
 * @param[in]  maxLabel Last label, at least `minLabel` and at most 2147483646.
 * @param[in]  norm     0: groups are connected through all eight neighbours; 1: through four.
 * @param[out] pNumber  Receives the number of groups.
 * @param[in]  pBuffer  Buffer of the bytes that the size query reports, at any address; must not overlap an
 *                      image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step of the source below the width, or then that of the destination below
 *           4 * width;
 *         - #okpStatusStepNotMultiple: the step of the destination is no multiple of 4;
 *         - #okpStatusBadArgument: a label outside its range, `minLabel` above `maxLabel`, or another norm.
 */
OKPCV_API okpStatus okpiLabelMarkers_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst,
                                               int32_t dstStep, RoiSize roiSize, int32_t minLabel,
                                               int32_t maxLabel, int32_t norm, int32_t* pNumber,
                                               uint8_t* pBuffer);

/** @} */

/**
 * @defgroup speckles Speckles
 * @brief Overwrites small regions of similar values, as they disturb disparity maps.
 * @{
 */

/**
 * @brief Size of the buffer of okpiMarkSpeckles_8u_C1IR() and its siblings.
 *
 * @f[ bytes = 13 \, width \, height + 64 @f]
 *
 * @param[in]  roiSize     Size of the region in pixels.
 * @param[in]  dataType    #DataType8u, #DataType16u, #DataType16s or #DataType32f.
 * @param[in]  numChannels 1.
 * @param[out] pBufferSize Receives the bytes.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadDataType: another data type;
 *         - #okpStatusBadChannelCount: another number of channels;
 *         - #okpStatusSizeTooLarge: the bytes exceed 2147483647.
 */
OKPCV_API okpStatus okpiMarkSpecklesGetBufferSize(RoiSize roiSize, DataTypeCode dataType, int32_t numChannels,
                                                  int32_t* pBufferSize);

/**
 * @brief Overwrites the speckles of an 8-bit image.
 *
 * Two pixels that lie side by side or one above the other are joined when neither equals `speckleVal` and
 *
 * @f[ | p - q | \le maxPixDiff @f]
 *
 * for the exact difference. Joined pixels form regions; all pixels of a region of at most `maxSpeckleSize`
 * pixels are set to `speckleVal`. Pixels that equal `speckleVal` stay as they are and separate regions.
 *
 * A negative `maxPixDiff` joins nothing; a `maxSpeckleSize` below 1 makes no region a speckle. A NaN pixel is
 * a region of its own, and so is an infinite one, whose difference from its like is NaN, unless an infinite
 * `maxPixDiff` joins it with others.
 *
 * Source: H. Hirschmueller, "Stereo Processing by Semiglobal Matching and Mutual Information", IEEE
 * Transactions on Pattern Analysis and Machine Intelligence 30(2), 2008, section 2.5.
 *
 * @param[in,out] pSrcDst        Image.
 * @param[in]     srcDstStep     Step of the image in bytes.
 * @param[in]     roiSize        Size of the region in pixels.
 * @param[in]     speckleVal     Value that marks speckles.
 * @param[in]     maxSpeckleSize Pixels of the largest speckle.
 * @param[in]     maxPixDiff     Largest difference of joined neighbours.
 * @param[in]     norm           #NormInf.
 * @param[in]     pBuffer        Buffer of the bytes that okpiMarkSpecklesGetBufferSize() reports, at any
 *                               address; must not overlap the image.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: a pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of the element size (elements wider than a
 *           byte only);
 *         - #okpStatusBadNorm: another norm.
 */
OKPCV_API okpStatus okpiMarkSpeckles_8u_C1IR(uint8_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                             uint8_t speckleVal, int32_t maxSpeckleSize, uint8_t maxPixDiff,
                                             NormKind norm, uint8_t* pBuffer);

/**
 * @brief Overwrites the speckles of an unsigned 16-bit image.
 * @copydetails okpiMarkSpeckles_8u_C1IR
 */
OKPCV_API okpStatus okpiMarkSpeckles_16u_C1IR(uint16_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                              uint16_t speckleVal, int32_t maxSpeckleSize,
                                              uint16_t maxPixDiff, NormKind norm, uint8_t* pBuffer);

/**
 * @brief Overwrites the speckles of a signed 16-bit image.
 * @copydetails okpiMarkSpeckles_8u_C1IR
 */
OKPCV_API okpStatus okpiMarkSpeckles_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                              int16_t speckleVal, int32_t maxSpeckleSize, int16_t maxPixDiff,
                                              NormKind norm, uint8_t* pBuffer);

/**
 * @brief Overwrites the speckles of a float image.
 * @copydetails okpiMarkSpeckles_8u_C1IR
 */
OKPCV_API okpStatus okpiMarkSpeckles_32f_C1IR(float* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                              float speckleVal, int32_t maxSpeckleSize, float maxPixDiff,
                                              NormKind norm, uint8_t* pBuffer);

/** @} */

/**
 * @defgroup boundaries Segment boundaries
 * @brief Draws the lines between the segments of a labelled image.
 * @{
 */

/**
 * @brief Marks the segment boundaries of an 8-bit label image.
 *
 * In raster order, and in place, a pixel P is set to `val` unless every earlier neighbour N inside the region
 * satisfies
 *
 * @f[ N = val \quad \text{or} \quad N = P @f]
 *
 * The earlier neighbours are left and above, and with norm 0 also above left and above right. They are seen
 * after their own turn, so a pixel that has become `val` marks no other one.
 *
 * @param[in,out] pMarker    Labels on input, labels and boundaries on output.
 * @param[in]     markerStep Step of the image in bytes.
 * @param[in]     roiSize    Size of the region in pixels.
 * @param[in]     val        Value of the boundaries.
 * @param[in]     norm       0: eight neighbours count, of which four are earlier; 1: four, of which two are
 *                           earlier.
 * @return #okpStatusOk, or the first of
 *         - #okpStatusNullPointer: the pointer is null;
 *         - #okpStatusBadSize: width or height below 1;
 *         - #okpStatusBadStep: the step below the row's width in bytes;
 *         - #okpStatusStepNotMultiple: a step that is no multiple of 2 (16u only);
 *         - #okpStatusBadArgument: another norm.
 */
OKPCV_API okpStatus okpiBoundSegments_8u_C1IR(uint8_t* pMarker, int32_t markerStep, RoiSize roiSize,
                                              uint8_t val, int32_t norm);

/**
 * @brief Marks the segment boundaries of an unsigned 16-bit label image.
 * @copydetails okpiBoundSegments_8u_C1IR
 */
OKPCV_API okpStatus okpiBoundSegments_16u_C1IR(uint16_t* pMarker, int32_t markerStep, RoiSize roiSize,
                                               uint16_t val, int32_t norm);

/** @} */

#endif /* OKPCV_SEGMENT_H */
