// Area layouts: what is counted is enough at every address, and overflow is seen.
#include "core/area.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/guarded_image.h"

namespace okpcv::test {
namespace {

struct Parts {
    char* flags;
    double* sums;
    int16_t* runs;
};

Parts layOut(Area& area, int64_t n) {
    Parts parts;
    parts.flags = area.take<char>(n);
    parts.sums = area.take<double>(n, 32);
    parts.runs = area.take<int16_t>(n);
    return parts;
}

TEST(Area, CountsEnoughForAnyAddress) {
    for (int64_t n = 0; n < 40; ++n) {
        Area counted;
        layOut(counted, n);
        for (size_t shift = 0; shift < 64; ++shift) {
            const auto bytes = static_cast<size_t>(counted.bytes());
            GuardedMemory memory(bytes + shift, GuardedMemory::At::End);
            Area placed(memory.data() + shift);
            const Parts parts = layOut(placed, n);
            EXPECT_LE(placed.bytes(), counted.bytes());
            EXPECT_EQ(reinterpret_cast<uintptr_t>(parts.sums) % 32, 0U);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(parts.runs) % alignof(int16_t), 0U);
            // The guard page behind the area ends the test when the layout exceeds it.
            std::memset(parts.flags, 1, static_cast<size_t>(n));
            std::memset(parts.sums, 2, static_cast<size_t>(n) * sizeof(double));
            std::memset(parts.runs, 3, static_cast<size_t>(n) * sizeof(int16_t));
            EXPECT_TRUE(n == 0 ||
                        (parts.flags[n - 1] == 1 && reinterpret_cast<char*>(parts.sums)[8 * n - 1] == 2));
        }
    }
}

TEST(Area, NoticesOverflow) {
    for (const int64_t n : {INT64_MAX, INT64_MAX / 8 + 1, INT64_MAX / 8 - 2, int64_t{-1}}) {
        Area area;
        layOut(area, n);
        EXPECT_FALSE(area.fits()) << n;
    }
}

}  // namespace
}  // namespace okpcv::test
