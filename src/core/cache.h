// The cache query and the decisions taken by it: when an output is large enough to be streamed past the
// caches, and when a region is filtered in strips.
#pragma once

#include <cstdint>

#include "core/image.h"
#include "core/numbers.h"
#include "okpcore.h"

namespace okpcv {

struct CacheSize {
    bool known;     // whether the query succeeded
    int32_t bytes;  // 0 when it failed
};

// Asked anew on every call: the answer belongs to the companion library, which keeps the state if anyone
// does.
inline CacheSize queryCacheSize() {
    int32_t bytes = 0;
    const bool known = okpGetMaxCacheSizeB(&bytes) == okpStatusOk;
    return {known, known ? bytes : 0};
}

// Masked accumulators: streamed unless the caches hold more than `bytesPerPixel` times the region, a product
// formed in wrapping 32-bit arithmetic.
inline bool streamsAccumulator(int32_t bytesPerPixel, RoiSize size) {
    const int32_t product = wrappingProduct(wrappingProduct(bytesPerPixel, size.width), size.height);
    return queryCacheSize().bytes <= product;
}

// Gaussian filters: small products skip the query.
inline bool streamsFilter(int64_t product) {
    return product >= 524288 && product >= queryCacheSize().bytes;
}

// Filters with small masks: regions of fewer pixels than an eighth of the caches' bytes are filtered whole,
// others in strips. The eighth counts with its fraction: whole pixels are fewer than it when they are fewer
// than it rounded up.
inline bool filtersWhole(Size size) {
    return size.width * size.height < (int64_t{queryCacheSize().bytes} + 7) / 8;
}

// Outputs whose operation streams only on the word of a successful query.
inline bool streamsOutput(int64_t bytes, int64_t smallestQueried) {
    if (bytes < smallestQueried) return false;
    const CacheSize cache = queryCacheSize();
    return cache.known && bytes >= cache.bytes;
}

}  // namespace okpcv
