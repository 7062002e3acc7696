// Bit-for-bit comparison of pixels: -0 differs from +0, and a NaN equals only the same NaN.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace okpcv::test {

template <class T>
testing::AssertionResult sameBits(const std::vector<T>& actual, const std::vector<T>& expected) {
    if (actual.size() != expected.size()) {
        return testing::AssertionFailure() << actual.size() << " elements instead of " << expected.size();
    }
    for (size_t i = 0; i < actual.size(); ++i) {
        if (std::memcmp(&actual[i], &expected[i], sizeof(T)) != 0) {
            return testing::AssertionFailure()
                   << "element " << i << " is " << +actual[i] << " instead of " << +expected[i];
        }
    }
    return testing::AssertionSuccess();
}

}  // namespace okpcv::test
