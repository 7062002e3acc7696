// The caller's floating-point control word survives a call.
#include "core/fp_control.h"

#include <gtest/gtest.h>

namespace okpcv::test {
namespace {

TEST(DenormalExceptionMask, MasksForItsLifetimeAndRestores) {
    const unsigned before = _mm_getcsr();
    const unsigned callers = (before & ~(1U << 8)) | _MM_ROUND_TOWARD_ZERO;
    _mm_setcsr(callers);
    unsigned during = 0;
    {
        const DenormalExceptionMask guard;
        during = _mm_getcsr();
    }
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(during, callers | 1U << 8);
    EXPECT_EQ(after, callers);
}

}  // namespace
}  // namespace okpcv::test
