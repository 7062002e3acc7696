// Code dedicated to numbers that the compiler knows.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/simd.h"

namespace okpcv {

// Calls run(std::integral_constant<int, n>{}) where n is one of the numbers named, run with the constant 0
// for any other, and returns what it returns.
template <int First, int... Others, class Run>
OKPCV_INLINE auto withConstant(int64_t n, const Run& run) {
    if (n == First) return run(std::integral_constant<int, First>{});
    if constexpr (sizeof...(Others) > 0) {
        return withConstant<Others...>(n, run);
    } else {
        return run(std::integral_constant<int, 0>{});
    }
}

// The same for any n from Least to Most.
template <int Least, int Most, class Run>
OKPCV_INLINE auto withCount(int64_t n, const Run& run) {
    if constexpr (Least < Most) {
        if (n != Least) return withCount<Least + 1, Most>(n, run);
    }
    return run(std::integral_constant<int, Least>{});
}

}  // namespace okpcv
