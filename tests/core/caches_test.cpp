// The companion's readers of cache descriptions, with folders made for the purpose.
#include "okpcore/caches.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace okpcv::test {
namespace {

int64_t parsed(const std::string& text) {
    return okpcore::parsedSize(text.data(), static_cast<int64_t>(text.size()));
}

TEST(Caches, ReadsSizesAsTheSystemWritesThem) {
    EXPECT_EQ(parsed("32768K\n"), 32768 * 1024);
    EXPECT_EQ(parsed("12M\n"), 12 << 20);
    EXPECT_EQ(parsed("4G\n"), int64_t{4} << 30);
    EXPECT_EQ(parsed("512\n"), 512);
    EXPECT_EQ(parsed("512"), 512);
    EXPECT_EQ(parsed(""), 0);
    EXPECT_EQ(parsed("unknown\n"), 0);
}

TEST(Caches, FindsTheLargestDescribed) {
    char pattern[] = "/tmp/caches.XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::filesystem::path folder = pattern;
    EXPECT_EQ(okpcore::largestDescribed(folder.c_str()), 0);
    const char* const sizes[] = {"32K\n", "32K\n", "1024K\n", "16M\n", "8M\n"};
    for (int i = 0; i < 5; ++i) {
        const auto cache = folder / ("index" + std::to_string(i));
        std::filesystem::create_directory(cache);
        std::ofstream(cache / "size") << sizes[i];
    }
    EXPECT_EQ(okpcore::largestDescribed(folder.c_str()), 16 << 20);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(okpcore::largestDescribed(folder.c_str()), 0);
    EXPECT_EQ(okpcore::largestDescribed(std::string(200, 'x').c_str()), 0);
}

// Virtual machines may describe other caches than the processor has, so only the order of magnitude is held.
TEST(Caches, AsksTheProcessor) {
    const int64_t size = okpcore::largestEnumerated();
    if (size == 0) GTEST_SKIP() << "the processor does not say";
    EXPECT_GE(size, 16 << 10);
    EXPECT_LE(size, int64_t{4} << 30);
}

}  // namespace
}  // namespace okpcv::test
