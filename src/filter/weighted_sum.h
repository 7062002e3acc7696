// Weighted sums: the arithmetic that row and column passes share. Output element x of a pass is the sum over
// the taps i of kernel[i] times the element that tap i sees at x, added in kernel order, each product rounded
// before it is added. A row pass sees the same row at increasing offsets, a column pass the same place of
// consecutive rows. Elements of integer rows are converted, exactly, as they are loaded.
//
// Bound, per vector and tap: one load, one multiplication, one addition. A core that dispatches six
// instructions a cycle and has two pipes for each of the three needs half a cycle, and reaches it only when
// little else is issued: so the accumulators of several vectors stay in registers over all taps, and the
// coefficients of short kernels do too.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/simd.h"
#include "core/with_constant.h"

namespace okpcv {

// Coefficient i of a kernel that may lie at any address.
template <class K>
OKPCV_INLINE K coefficient(const K* kernel, int64_t i) {
    K value;
    std::memcpy(&value, reinterpret_cast<const char*>(kernel) + i * int64_t{sizeof(K)}, sizeof value);
    return value;
}

// The sum of a kernel's coefficients: of integers exact, of floats in kernel order.
template <class K>
auto kernelSum(const K* kernel, int64_t length) {
    std::conditional_t<kIsInt<K>, int64_t, float> sum = 0;
    for (int64_t i = 0; i < length; ++i) sum += coefficient(kernel, i);
    return sum;
}

// The sum of a kernel's coefficients without their signs.
template <class K>
auto magnitude(const K* kernel, int64_t length) {
    using Sum = std::conditional_t<kIsInt<K>, int64_t, double>;
    Sum sum = 0;
    for (int64_t i = 0; i < length; ++i) {
        const Sum k = coefficient(kernel, i);
        sum += k < 0 ? -k : k;
    }
    return sum;
}

// A kernel whose length the code knows. In all of these, Tap is a function that gives the address seen by
// tap i.
template <int Length>
class FixedTaps {
  public:
    static constexpr int vectors = 4;
    static constexpr bool fixed = true;

    template <class K>
    OKPCV_INLINE explicit FixedTaps(const K* kernel) {
        for (int i = 0; i < Length; ++i) c_[i] = broadcast(static_cast<float>(coefficient(kernel, i)));
    }

    template <int V, class Tap, class Extent>
    OKPCV_INLINE void sum(Vec<float> (&acc)[V], const Tap& tap, Extent extent) const {
        constexpr int lanes = Vec<float>::lanes;
        for (int v = 0; v < V; ++v) acc[v] = loadAs<float>(tap(0) + v * lanes, extent) * c_[0];
        for (int i = 1; i < Length; ++i) {
            for (int v = 0; v < V; ++v) {
                accumulate(acc[v], loadAs<float>(tap(i) + v * lanes, extent) * c_[i]);
            }
        }
    }

  private:
    Vec<float> c_[Length];
};

// A kernel of any length. Coefficients are fetched four at a time.
template <class K>
class AnyTaps {
  public:
    static constexpr int vectors = 8;
    static constexpr bool fixed = false;

    OKPCV_INLINE AnyTaps(const K* kernel, int64_t length) : kernel_(kernel), length_(length) {}

    template <int V, class Tap, class Extent>
    OKPCV_INLINE void sum(Vec<float> (&acc)[V], const Tap& tap, Extent extent) const {
        constexpr int lanes = Vec<float>::lanes;
        const Vec<float> first = broadcast(static_cast<float>(coefficient(kernel_, 0)));
        for (int v = 0; v < V; ++v) acc[v] = loadAs<float>(tap(0) + v * lanes, extent) * first;
        int64_t i = 1;
        for (; i + 4 <= length_; i += 4) {
            const Vec<float> c = loadAs<float>(kernel_ + i);
            add(acc, broadcastLane<0>(c), tap(i), extent);
            add(acc, broadcastLane<1>(c), tap(i + 1), extent);
            add(acc, broadcastLane<2>(c), tap(i + 2), extent);
            add(acc, broadcastLane<3>(c), tap(i + 3), extent);
        }
        for (; i < length_; ++i) {
            add(acc, broadcast(static_cast<float>(coefficient(kernel_, i))), tap(i), extent);
        }
    }

  private:
    template <int V, class T, class Extent>
    static OKPCV_INLINE void add(Vec<float> (&acc)[V], Vec<float> c, const T* p, Extent extent) {
        for (int v = 0; v < V; ++v) {
            accumulate(acc[v], loadAs<float>(p + v * Vec<float>::lanes, extent) * c);
        }
    }

    const K* kernel_;
    int64_t length_;
};

// Calls run(taps) with the code for the kernel's length.
template <class K, class Run>
OKPCV_INLINE void withTaps(const K* kernel, int64_t length, const Run& run) {
    withConstant<3, 5, 7, 9>(length, [&](auto known) OKPCV_INLINE_LAMBDA {
        if constexpr (known != 0) {
            run(FixedTaps<known>(kernel));
        } else {
            run(AnyTaps<K>(kernel, length));
        }
    });
}

// Computes `count` elements: blocks of several vectors while they last, then single vectors, the last of
// which is moved back to end with the row. So only a row shorter than one vector needs a part of one; tap and
// store see every element of it at least once, and results do not depend on how often.
// `step(block, extent, x)` computes a block of decltype(block)::vectors vectors at element x.
template <int N>
struct Block {
    static constexpr int vectors = N;
};
template <int Vectors, int Lanes, class Step>
OKPCV_INLINE void forBlocks(int64_t count, const Step& step) {
    int64_t x = 0;
    for (; x + Vectors * Lanes <= count; x += Vectors * Lanes) step(Block<Vectors>{}, Whole{}, x);
    if (x == count) return;
    for (; x + Lanes <= count; x += Lanes) step(Block<1>{}, Whole{}, x);
    if (x == count) return;
    if (count >= Lanes) {
        step(Block<1>{}, Whole{}, count - Lanes);
    } else {
        step(Block<1>{}, Part{static_cast<int>(count)}, int64_t{0});
    }
}

}  // namespace okpcv
