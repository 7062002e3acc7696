/**
 * @file okpcore.h
 * @brief The public interface of the companion library okpcore: the cache query.
 */
#ifndef OKPCORE_H
#define OKPCORE_H

#include "okpcv/types.h"

/**
 * @brief Size in bytes of the largest processor cache.
 *
 * Exported by the companion library `libokpcore.so`, not by okpcv itself. okpcv calls it through the dynamic
 * linker to decide whether a large output is worth streaming past the caches, so a library of that name that
 * exports this function may stand in for it. The answer decides which store instructions are used, never
 * which values are stored.
 *
 * The size is taken from the operating system's description of the caches and, where there is none, from the
 * processor's own.
 *
 * @param[out] pSizeByte Receives the size in bytes.
 * @return #okpStatusOk when the size was written; otherwise, in this order,
 *         - #okpStatusNullPointer: @p pSizeByte is null;
 *         - #okpStatusBadArgument: neither description is available (nothing is written).
 */
OKPCV_API okpStatus okpGetMaxCacheSizeB(int32_t* pSizeByte);

#endif /* OKPCORE_H */
