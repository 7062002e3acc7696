// The companion library: the size of the largest processor cache.
#include <atomic>
#include <cstdint>

#include "okpcore.h"
#include "okpcore/caches.h"

namespace {

int64_t largestCache() {
    const int64_t size = okpcore::largestDescribed("/sys/devices/system/cpu/cpu0/cache");
    return size > 0 ? size : okpcore::largestEnumerated();
}

// The machine's caches do not change, and reading their description takes several system calls: the first
// answer is kept. Calls that race find and store the same value.
std::atomic<int32_t> knownSize = 0;

}  // namespace

okpStatus okpGetMaxCacheSizeB(int32_t* pSizeByte) {
    if (pSizeByte == nullptr) return okpStatusNullPointer;
    int32_t size = knownSize.load(std::memory_order_relaxed);
    if (size == 0) {
        const int64_t found = largestCache();
        if (found == 0) return okpStatusBadArgument;
        size = found > INT32_MAX ? INT32_MAX : static_cast<int32_t>(found);
        knownSize.store(size, std::memory_order_relaxed);
    }
    *pSizeByte = size;
    return okpStatusOk;
}
