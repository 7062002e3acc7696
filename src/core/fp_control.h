// The processor's floating-point control word during a call.
#pragma once

#include <immintrin.h>

namespace okpcv {

// Masks the denormal exception for its lifetime and restores the caller's control word on every way out.
class DenormalExceptionMask {
  public:
    DenormalExceptionMask() : callers_(_mm_getcsr()) { _mm_setcsr(callers_ | kDenormalMask); }
    ~DenormalExceptionMask() { _mm_setcsr(callers_); }
    DenormalExceptionMask(const DenormalExceptionMask&) = delete;
    DenormalExceptionMask& operator=(const DenormalExceptionMask&) = delete;

  private:
    static constexpr unsigned kDenormalMask = 1U << 8;
    unsigned callers_;
};

}  // namespace okpcv
