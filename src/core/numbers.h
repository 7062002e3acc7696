// Numbers: how values are rounded, clamped and converted. Every conversion that loses something has its name
// here, so that scalar code, vector code and documentation speak of the same rule.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace okpcv {

__extension__ typedef unsigned __int128 uint128_t;
__extension__ typedef __int128 int128_t;

template <class T>
inline constexpr T kSmallest = std::numeric_limits<T>::lowest();
template <class T>
inline constexpr T kLargest = std::numeric_limits<T>::max();

// The quiet NaN with its sign bit set: what the processor makes of 0 / 0.
inline constexpr double kNegativeNaN = -std::numeric_limits<double>::quiet_NaN();

// The value of an integer type nearest to v.
template <class T, class From>
constexpr T saturate(From v) {
    static_assert(std::is_integral_v<T> && std::is_integral_v<From> && sizeof(From) > sizeof(T));
    const From low = kSmallest<T>;
    const From high = kLargest<T>;
    return static_cast<T>(v < low ? low : v > high ? high : v);
}

// Clamped to a type, then truncated towards zero; NaN counts as below the range.
template <class T>
constexpr T truncateSaturated(float v) {
    static_assert(std::is_integral_v<T>);
    if constexpr (sizeof(T) <= 2) {
        const float low = kSmallest<T>;
        const float high = kLargest<T>;
        const float atLeastLow = v > low ? v : low;
        return static_cast<T>(static_cast<int32_t>(atLeastLow < high ? atLeastLow : high));
    } else {
        // The largest value is no float, but the one after it, minus the smallest, is.
        static_assert(std::is_signed_v<T>);
        constexpr float low = static_cast<float>(kSmallest<T>);
        return v >= -low ? kLargest<T> : v > low ? static_cast<T>(v) : kSmallest<T>;
    }
}

// v / 2^bits, rounded half up: (v + 2^(bits - 1)) >> bits.
constexpr int64_t shiftRightHalfUp(int64_t v, int bits) {
    return bits == 0 ? v : (v + (int64_t{1} << (bits - 1))) >> bits;
}

// What 32-bit arithmetic without overflow checks leaves: product and sum modulo 2^32.
constexpr int32_t wrappingProduct(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr int32_t wrappingSum(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// 2^exponent of a normal double: -1022 to 1023.
constexpr double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<uint64_t>(exponent + 1023) << 52);
}

constexpr int64_t roundUp(int64_t v, int64_t multiple) {
    return (v + multiple - 1) / multiple * multiple;
}

// The product and the sum; false when it does not fit 64 bits.
constexpr bool multiplyChecked(int64_t a, int64_t b, int64_t& product) {
    return !__builtin_mul_overflow(a, b, &product);
}
constexpr bool addChecked(int64_t a, int64_t b, int64_t& sum) {
    return !__builtin_add_overflow(a, b, &sum);
}

}  // namespace okpcv
