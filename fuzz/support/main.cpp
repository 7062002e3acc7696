// The entry of every fuzzer: the first bytes of the input choose the export.
#include "support/fuzz.h"

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count) {
    fuzz::Data data(bytes, count);
    fuzz::family.shapes[data.between<size_t>(0, fuzz::family.count - 1)](data);
    return 0;
}

// A report begins with the version that it is about.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const LibraryVersion* const version = okpcvGetLibVersion();
    std::fprintf(stderr, "%s %s\n", version->name, version->version);
    return 0;
}
