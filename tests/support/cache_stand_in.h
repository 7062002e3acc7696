// A cache query that tests control. The program that links cache_stand_in.cpp answers the query itself, as
// another companion library would.
#pragma once

#include <cstdint>

#include "okpcore.h"

namespace okpcv::test {

struct CacheStandIn {
    okpStatus status = okpStatusOk;
    int32_t bytes = 32 << 20;  // written also when the query fails, and then means nothing
    int queries = 0;
};

extern CacheStandIn cacheStandIn;

}  // namespace okpcv::test
