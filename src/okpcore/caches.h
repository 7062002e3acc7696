// What the operating system and the processor say about the processor's caches.
#pragma once

#include <cpuid.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace okpcore {

// A size as the operating system writes it, "32768K" or "1M" or "512", in bytes.
inline int64_t parsedSize(const char* text, int64_t length) {
    int64_t size = 0;
    for (int64_t i = 0; i < length; ++i) {
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

// The size of the cache that a file describes; 0 when there is no such file.
inline int64_t sizeInFile(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    char text[32];
    const ssize_t length = read(file, text, sizeof text);
    close(file);
    return parsedSize(text, length);
}

// The largest of the caches that the operating system describes in a folder: index0/size, index1/size and so
// on. 0 when it describes none.
inline int64_t largestDescribed(const char* folder) {
    char path[128] = {};
    const size_t length = strnlen(folder, sizeof path);
    static constexpr char kFile[] = "/index?/size";
    if (length + sizeof kFile > sizeof path) return 0;
    std::memcpy(path, folder, length);
    std::memcpy(path + length, kFile, sizeof kFile);
    int64_t largest = 0;
    for (char index = '0'; index <= '9'; ++index) {
        path[length + sizeof "/index" - 1] = index;
        const int64_t size = sizeInFile(path);
        if (size == 0) break;
        largest = size > largest ? size : largest;
    }
    return largest;
}

// The largest of the processor's deterministic cache parameters: leaf 4, or its twin among the extended
// leaves. 0 when the processor gives none there.
inline int64_t largestEnumerated(unsigned leaf) {
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
inline int64_t largestEnumerated() {
    const int64_t size = largestEnumerated(0x4);
    return size > 0 ? size : largestEnumerated(0x8000001D);
}

}  // namespace okpcore
