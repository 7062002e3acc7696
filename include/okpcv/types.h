/**
 * @file types.h
 * @brief Statuses, sizes, points, codes and border kinds that all families share.
 *
 * @section image_arguments Images
 * An image is passed as a pointer to the first pixel of the region of interest, a row step in bytes, and the
 * size of the region in pixels (once per call). With elements of `e` bytes and `C` interleaved channels,
 * channel `c` of pixel `(x, y)` lies at byte offset `y * step + (x * C + c) * e`. A step may exceed the row's
 * width in bytes; the padding between rows is neither read nor written. Pointers need no alignment beyond
 * that of the element type.
 *
 * @section mask_arguments Masks
 * A mask is an 8-bit single-channel image of the region's size with its own step. A pixel is selected exactly
 * when its mask byte is not zero.
 *
 * @section calls Calls
 * Every function checks its arguments in the documented order before it reads or writes any pixel, returns
 * the status of the first check that fails, and then leaves every output untouched. No function allocates
 * memory, keeps state between calls, starts threads, or prints. All functions are reentrant.
 *
 * @section life_cycle Specs, states and buffers
 * An operation that needs precomputed tables or scratch memory has companions, used in this order: a size
 * query (`...GetSize`, `...GetSpecSize`, `...GetBufferSize`), the caller's own allocation, an initialiser
 * (`...Init`), then any number of calls of the operation. Areas need no alignment unless the query says so. A
 * scratch buffer or a state serves one call at a time.
 *
 * @section large_sizes The _L forms
 * Functions whose names end in `_L` take `RoiSizeL` and 64-bit steps and report sizes as 64-bit counts. Their
 * checks and results are those of their 32-bit twins.
 */
#ifndef OKPCV_TYPES_H
#define OKPCV_TYPES_H

#include <stdint.h>

#if defined(__cplusplus)
#define OKPCV_EXTERN_C extern "C"
#else
#define OKPCV_EXTERN_C
#endif

/** Marks a function that the shared library exports. */
#define OKPCV_API OKPCV_EXTERN_C __attribute__((visibility("default")))

/**
 * @brief Result of a call: zero for success, negative for an error, positive for a warning.
 *
 * After an error no output has been written, unless the function says otherwise. After a warning all outputs
 * are written and valid, with the reservation that the warning names.
 */
typedef int32_t okpStatus;

/** @brief The values of #okpStatus. No function returns any other value. */
enum okpStatusValue {
    okpStatusOk = 0,               /**< No error. */
    okpStatusNoOperation = 1,      /**< Warning: the mask selects no pixel, so no extremum exists. */
    okpStatusDivByZeroWarning = 2, /**< Warning: a relative norm's divisor is zero. */
    okpStatusTooManyLines = 33,    /**< Warning: the line array filled up before all points were used. */
    okpStatusLineTooLong = -2,     /**< The number of samples along a line exceeds a 32-bit count. */
    okpStatusBadArgument = -5,     /**< An argument lies outside its allowed set or range. */
    okpStatusBadSize = -6,         /**< A width or height is below 1, or a size argument is too small. */
    okpStatusBadRange = -7,        /**< A range has its minimum above its maximum. */
    okpStatusNullPointer = -8,     /**< A required pointer is null. */
    okpStatusDivByZero = -10,      /**< A floating-point divisor computed from the arguments is zero. */
    okpStatusOutOfRange = -11,   /**< A parameter lies outside its range, such as a seed outside the image. */
    okpStatusBadContext = -13,   /**< A spec or state does not carry its initialiser's identifier. */
    okpStatusBadMode = -14,      /**< A mode value is not one of the accepted codes. */
    okpStatusBadStep = -16,      /**< A step is smaller than the row's width in bytes, or not positive. */
    okpStatusBadThreshold = -19, /**< A threshold is negative. */
    okpStatusBadMaskKind = -33,  /**< A #MaskSizeCode is not accepted. */
    okpStatusBadAnchor = -34,    /**< An anchor lies outside its kernel. */
    okpStatusBadNumChannels = -47,       /**< A channel count is not among 1 and 3, or 1, 3 and 4. */
    okpStatusZeroDivisor = -51,          /**< An integer divisor is zero. */
    okpStatusBadChannelOfInterest = -52, /**< The channel of interest is not 1, 2 or 3. */
    okpStatusBadChannelCount = -53,      /**< A channel count other than 1 where only 1 is accepted. */
    okpStatusBadMetric = -56,            /**< A weight of a distance mask is too small. */
    okpStatusBadDataType = -59,          /**< A #DataTypeCode is not accepted. */
    okpStatusStepNotMultiple = -108,     /**< A step is not a multiple of its image's element size. */
    okpStatusBadBorder = -225,           /**< A #BorderKind or its flags are not accepted. */
    okpStatusBadNorm = -229,             /**< A #NormKind is not accepted. */
    okpStatusBadFilterKind = -230,       /**< A derivative-filter kind is not 2, 5 or 8. */
    okpStatusSizeTooLarge = -232,        /**< A size, step or count exceeds what the function can hold. */
    okpStatusInPlaceNotSupported = -9998 /**< Source and destination are equal where that cannot work. */
};

/** @brief Size of a region in pixels. */
typedef struct RoiSize {
    int32_t width;  /**< Pixels in a row (never bytes or channel values). */
    int32_t height; /**< Rows. */
} RoiSize;

/** @brief Size of a region in pixels, for the `_L` functions. */
typedef struct RoiSizeL {
    int64_t width;  /**< Pixels in a row. */
    int64_t height; /**< Rows. */
} RoiSizeL;

/** @brief Integer pixel position, relative to the region's first pixel. */
typedef struct PixelPoint {
    int32_t x; /**< Column. */
    int32_t y; /**< Row. */
} PixelPoint;

/** @brief Position in single precision. */
typedef struct PointF {
    float x; /**< Column. */
    float y; /**< Row. */
} PointF;

/** @brief Upright rectangle of pixels. */
typedef struct PixelRect {
    int32_t x;      /**< Leftmost column. */
    int32_t y;      /**< Topmost row. */
    int32_t width;  /**< Columns. */
    int32_t height; /**< Rows. */
} PixelRect;

/** @brief Size of a fixed square mask, written as its digits. */
typedef int32_t MaskSizeCode;

/** @brief The values of #MaskSizeCode. */
enum MaskSizeCodeValue {
    MaskSize3x3 = 33, /**< 3 x 3. */
    MaskSize5x5 = 55  /**< 5 x 5. */
};

/** @brief Vector norm. */
typedef int32_t NormKind;

/** @brief The values of #NormKind. */
enum NormKindValue {
    NormInf = 1, /**< Largest absolute value. */
    NormL1 = 2,  /**< Sum of absolute values. */
    NormL2 = 4   /**< Square root of the sum of squares. */
};

/** @brief Element type of an image. The numbers come from a wider numbering and are not consecutive. */
typedef int32_t DataTypeCode;

/** @brief The values of #DataTypeCode. */
enum DataTypeCodeValue {
    DataType1u = 0,   /**< One bit per pixel, packed. */
    DataType8u = 1,   /**< Unsigned 8-bit integer. */
    DataType16u = 5,  /**< Unsigned 16-bit integer. */
    DataType16s = 7,  /**< Signed 16-bit integer. */
    DataType32f = 13, /**< Single-precision float. */
    DataType64f = 19  /**< Double-precision float. */
};

/**
 * @brief How pixels outside the region are obtained: a kind in bits 0 to 3, side flags in bits 4 to 7.
 *
 * The kind says how pixels beyond a side are made; a set side flag says that, on that side, they exist in the
 * caller's memory and are read as they are. A kind may be combined with any flags by bitwise or. On a flagged
 * side the caller guarantees as many rows or columns beyond the region as the kernel reaches there.
 */
typedef uint32_t BorderKind;

/** @brief The values of #BorderKind. */
enum BorderKindValue {
    BorderReplicate = 1, /**< The nearest edge pixel: a a a | a b c d | d d d. */
    BorderMirror = 3,  /**< Reflected about the edge pixel, which is not repeated: d c b | a b c d | c b a. */
    BorderDefault = 5, /**< Morphology only: the constant that never wins. */
    BorderConstant = 6,     /**< The caller's border value. */
    BorderInMemTop = 16,    /**< Rows above the region are read from memory. */
    BorderInMemBottom = 32, /**< Rows below the region are read from memory. */
    BorderInMemLeft = 64,   /**< Columns to the left of the region are read from memory. */
    BorderInMemRight = 128, /**< Columns to the right of the region are read from memory. */
    BorderInMemory = 240    /**< All four sides are read from memory; needs no kind. */
};

#endif /* OKPCV_TYPES_H */
