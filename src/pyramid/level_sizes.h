// Sizes of neighbouring levels of a pyramid.
//
// A size is found by its defining property, not by a formula: the down size of n is the d whose range of up
// sizes, min(d) to max(d), holds n. With u(d) = trunc(float(d) * rate), max(d) is the larger of u(d) and d +
// 1, and min(d + 1) is max(d) + 1. So the ranges tile the numbers, and the down size is the smallest d with
// max(d) >= n. As max(d) > d, levels shrink until they are 1.
#pragma once

#include <cstdint>

#include "core/image.h"
#include "core/numbers.h"

namespace okpcv {

inline constexpr float kLargestRate = 10.0F;

// False for NaN.
constexpr bool isRate(float rate) {
    return rate > 1.0F && rate <= kLargestRate;
}

constexpr int64_t nextSaturated(int64_t n) {
    return n < kLargest<int64_t> ? n + 1 : n;
}

// trunc(float(n) * rate).
constexpr int64_t scaled(int64_t n, float rate) {
    return truncateSaturated<int64_t>(static_cast<float>(n) * rate);
}

constexpr int64_t smallestUpSize(int64_t n, float rate) {
    if (n == 1) return 1;
    const int64_t t = scaled(n - 1, rate);
    return nextSaturated(t < n ? n : t);
}

constexpr int64_t largestUpSize(int64_t n, float rate) {
    const int64_t u = scaled(n, rate);
    return n < u ? u : nextSaturated(n);
}

// The smallest d whose largest up size is at least n: looked for from n / rate on in strides that double,
// then halved in. For sizes that floats hold exactly the first guess is off by one at most.
constexpr int64_t downSize(int64_t n, float rate) {
    const auto reaches = [=](int64_t d) { return largestUpSize(d, rate) >= n; };
    const int64_t guess = truncateSaturated<int64_t>(static_cast<float>(n) * (1.0F / rate) + 0.5F);
    int64_t enough = guess < 1 ? 1 : guess > n ? n : guess;
    int64_t tooSmall = 0;
    if (reaches(enough)) {
        for (int64_t stride = 1; stride < enough; stride *= 2) {
            if (!reaches(enough - stride)) {
                tooSmall = enough - stride;
                break;
            }
            enough -= stride;
        }
    } else {
        for (int64_t stride = 1; tooSmall == 0; stride *= 2) {
            const int64_t next = stride < n - enough ? enough + stride : n;
            if (reaches(next)) tooSmall = enough;
            enough = next;
        }
    }
    while (enough - tooSmall > 1) {
        const int64_t middle = tooSmall + (enough - tooSmall) / 2;
        (reaches(middle) ? enough : tooSmall) = middle;
    }
    return enough;
}

constexpr Size downSize(Size size, float rate) {
    return {downSize(size.width, rate), downSize(size.height, rate)};
}

}  // namespace okpcv
