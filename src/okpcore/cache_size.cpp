// The companion library: the size of the largest processor cache.
#include <cpuid.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>

#include "okpcore.h"

namespace {

// The size that the operating system gives for cache `index` of the first processor, in bytes; 0 when there
// is no such cache. The file reads like "32768K".
int64_t describedSize(char index) {
    char path[] = "/sys/devices/system/cpu/cpu0/cache/index?/size";
    *__builtin_strchr(path, '?') = index;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    char text[32];
    const ssize_t length = read(file, text, sizeof text);
    close(file);
    int64_t size = 0;
    for (ssize_t i = 0; i < length; ++i) {
        if (text[i] >= '0' && text[i] <= '9') {
            size = size * 10 + (text[i] - '0');
        } else {
            return text[i] == 'K'   ? size << 10
                   : text[i] == 'M' ? size << 20
                   : text[i] == 'G' ? size << 30
                                    : size;
        }
    }
    return size;
}

int64_t largestDescribed() {
    int64_t largest = 0;
    for (char index = '0'; index <= '9'; ++index) {
        const int64_t size = describedSize(index);
        if (size == 0) break;
        largest = size > largest ? size : largest;
    }
    return largest;
}

// The processor's deterministic cache parameters: leaf 4, or its twin among the extended leaves.
int64_t largestEnumerated(unsigned leaf) {
    int64_t largest = 0;
    for (unsigned index = 0; index < 16; ++index) {
        unsigned a = 0, b = 0, c = 0, d = 0;
        if (!__get_cpuid_count(leaf, index, &a, &b, &c, &d) || (a & 31U) == 0) break;
        const int64_t ways = (b >> 22) + 1;
        const int64_t partitions = ((b >> 12) & 1023U) + 1;
        const int64_t lineBytes = (b & 4095U) + 1;
        const int64_t size = ways * partitions * lineBytes * (int64_t{c} + 1);
        largest = size > largest ? size : largest;
    }
    return largest;
}

int64_t largestCache() {
    if (const int64_t size = largestDescribed(); size > 0) return size;
    if (const int64_t size = largestEnumerated(0x4); size > 0) return size;
    return largestEnumerated(0x8000001D);
}

// The machine's caches do not change, and reading their description takes several system calls: the first
// answer is kept. Calls that race find and store the same value.
int32_t knownSize = 0;

}  // namespace

okpStatus okpGetMaxCacheSizeB(int32_t* pSizeByte) {
    if (pSizeByte == nullptr) return okpStatusNullPointer;
    int32_t size = __atomic_load_n(&knownSize, __ATOMIC_RELAXED);
    if (size == 0) {
        const int64_t found = largestCache();
        if (found == 0) return okpStatusBadArgument;
        size = found > INT32_MAX ? INT32_MAX : static_cast<int32_t>(found);
        __atomic_store_n(&knownSize, size, __ATOMIC_RELAXED);
    }
    *pSizeByte = size;
    return okpStatusOk;
}
