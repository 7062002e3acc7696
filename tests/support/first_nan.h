// Single precision as the definitions of operations mean it: where both operands are NaN, the first one
// results. Compilers are free to swap the operands of a sum or a product, and with them the NaN.
#pragma once

#include <cmath>

namespace okpcv::test {

inline float sum(float a, float b) {
    return std::isnan(a) ? a : a + b;
}
inline float difference(float a, float b) {
    return std::isnan(a) ? a : a - b;
}
inline float product(float a, float b) {
    return std::isnan(a) ? a : a * b;
}

}  // namespace okpcv::test
