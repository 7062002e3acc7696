// The library's identity.
#include "okpcv/version.h"

namespace {

constexpr LibraryVersion kVersion = {
    2022, 2, 0, 1121655398, "y8", "okpCV SSE4.2 (y8)", "2022.2.0 (r0x42db1a66)", "May  9 2025",
};

}  // namespace

const LibraryVersion* okpcvGetLibVersion(void) {
    return &kVersion;
}
