// Loops that are written out at compile time, for bodies that name registers by the loop's index.
#pragma once

#include <type_traits>
#include <utility>

#include "core/simd.h"

namespace okpcv {

// body(std::integral_constant<int, 0>), ..., body(std::integral_constant<int, N - 1>).
template <int N, class Body>
OKPCV_INLINE void unrolled(const Body& body) {
    [&]<int... I>(std::integer_sequence<int, I...>) OKPCV_INLINE_LAMBDA {
        (body(std::integral_constant<int, I>{}), ...);
    }
    (std::make_integer_sequence<int, N>{});
}

}  // namespace okpcv
