// Test data: reproducible random values, with the special values of each type mixed in.
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

namespace okpcv::test {

class Random {
  public:
    explicit Random(uint32_t seed) : engine_(seed) {}

    // Uniform in [low, high].
    int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    float real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(engine_); }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(engine_); }

    // Any value of an integer type; for floats a finite value of moderate size.
    template <class T>
    T value() {
        if constexpr (std::is_floating_point_v<T>) {
            return static_cast<T>(real(-1000.0F, 1000.0F));
        } else {
            return static_cast<T>(std::uniform_int_distribution<int64_t>(
                std::numeric_limits<T>::min(), std::numeric_limits<T>::max())(engine_));
        }
    }

    // As value(), but one in four is a special value: extremes, and for floats zeros of both signs, NaN,
    // infinities and denormals.
    template <class T>
    T special() {
        if (!chance(0.25)) return value<T>();
        using Limits = std::numeric_limits<T>;
        if constexpr (std::is_floating_point_v<T>) {
            const T values[] = {T(0),
                                -T(0),
                                Limits::quiet_NaN(),
                                -Limits::quiet_NaN(),
                                Limits::infinity(),
                                -Limits::infinity(),
                                Limits::denorm_min(),
                                -Limits::min(),
                                Limits::max(),
                                Limits::lowest()};
            return values[integer(0, 9)];
        } else {
            const T values[] = {Limits::min(), Limits::max(), T(0), T(1)};
            return values[integer(0, 3)];
        }
    }

    // A mask byte: zero, or any nonzero value.
    uint8_t maskByte(double density = 0.5) {
        return chance(density) ? static_cast<uint8_t>(integer(1, 255)) : uint8_t{0};
    }

  private:
    std::mt19937 engine_;
};

}  // namespace okpcv::test
