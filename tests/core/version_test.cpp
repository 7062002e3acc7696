// The version record, and the companion's cache query.
#include "okpcv/version.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "okpcore.h"

namespace okpcv::test {
namespace {

TEST(Version, RecordAgreesWithItself) {
    const LibraryVersion* const v = okpcvGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(okpcvGetLibVersion(), v);
    char text[64];
    std::snprintf(text, sizeof text, "%d.%d.%d (r0x%08x)", v->major, v->minor, v->majorBuild,
                  static_cast<unsigned>(v->build));
    EXPECT_STREQ(v->version, text);
    EXPECT_STREQ(v->version, "2022.2.0 (r0x42db1a66)");
    EXPECT_EQ(std::memcmp(v->targetCpu, "y8\0", 4), 0);
    EXPECT_STREQ(v->name, "okpCV SSE4.2 (y8)");
    EXPECT_STREQ(v->buildDate, "May  9 2025");
}

TEST(CacheQuery, ReportsAPlausibleSize) {
    int32_t first = 0;
    int32_t second = 0;
    EXPECT_EQ(okpGetMaxCacheSizeB(nullptr), okpStatusNullPointer);
    ASSERT_EQ(okpGetMaxCacheSizeB(&first), okpStatusOk);
    ASSERT_EQ(okpGetMaxCacheSizeB(&second), okpStatusOk);
    EXPECT_EQ(first, second);
    EXPECT_GE(first, 16 * 1024);
}

}  // namespace
}  // namespace okpcv::test
