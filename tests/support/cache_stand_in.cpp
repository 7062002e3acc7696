// The stand-in for the companion library's cache query.
#include "support/cache_stand_in.h"

namespace okpcv::test {

CacheStandIn cacheStandIn;

}  // namespace okpcv::test

okpStatus okpGetMaxCacheSizeB(int32_t* pSizeByte) {
    auto& standIn = okpcv::test::cacheStandIn;
    ++standIn.queries;
    *pSizeByte = standIn.bytes;
    return standIn.status;
}
