// Floating-point arithmetic as the definitions of operations mean it: where both operands are NaN, the first
// one results. Compilers are free to swap the operands of a sum or a product, and with them the NaN.
#pragma once

#include <cmath>

namespace okpcv::test {

template <class T>
T sum(T a, T b) {
    return std::isnan(a) ? a : a + b;
}
template <class T>
T difference(T a, T b) {
    return std::isnan(a) ? a : a - b;
}
template <class T>
T product(T a, T b) {
    return std::isnan(a) ? a : a * b;
}
template <class T>
T quotient(T a, T b) {
    return std::isnan(a) ? a : a / b;
}

}  // namespace okpcv::test
