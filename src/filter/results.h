// How passes store what they computed in single precision.
#pragma once

#include <cstdint>

#include "core/simd.h"

namespace okpcv {

// Whether results are clamped before they are truncated: those within 2^31 in magnitude need not be, because
// the integers they become are saturated.
enum class Clamped { Yes, No };

// Stores float results: unchanged, or clamped and truncated (see truncateSaturated) to a narrower type.
template <Clamped kClamped = Clamped::Yes, class D, int V, class Extent>
OKPCV_INLINE void storeResults(D* out, const Vec<float> (&v)[V], Extent extent) {
    constexpr int lanes = Vec<float>::lanes;
    const auto integers = [&](int i) OKPCV_INLINE_LAMBDA {
        if constexpr (kIsInt<D> && kClamped == Clamped::Yes) {
            return truncateToNarrow<D>(v[i]);
        } else {
            return truncateToInt(v[i]);
        }
    };
    if constexpr (kIsFloat<D>) {
        for (int i = 0; i < V; ++i) store(out + i * lanes, v[i], extent.from(i * lanes));
    } else if constexpr (sizeof(D) == 2) {
        if constexpr (V == 1) {
            const auto n = integers(0);
            storeFirst<lanes>(out, narrowSaturated<D>(n, n), extent);
        } else {
            static_assert(V % 2 == 0);
            for (int i = 0; i < V; i += 2) {
                store(out + i * lanes, narrowSaturated<D>(integers(i), integers(i + 1)),
                      extent.from(i * lanes));
            }
        }
    } else {
        static_assert(sizeof(D) == 1);
        const auto half = [&](int i) { return narrowSaturated<int16_t>(integers(i), integers(i + 1)); };
        if constexpr (V == 1) {
            const auto n = integers(0);
            const auto h = narrowSaturated<int16_t>(n, n);
            storeFirst<lanes>(out, narrowSaturated<D>(h, h), extent);
        } else {
            static_assert(V % 2 == 0);
            int i = 0;
            for (; i + 4 <= V; i += 4) {
                store(out + i * lanes, narrowSaturated<D>(half(i), half(i + 2)), extent.from(i * lanes));
            }
            if (i < V) {
                storeFirst<2 * lanes>(out + i * lanes, narrowSaturated<D>(half(i), half(i)),
                                      extent.from(i * lanes));
            }
        }
    }
}

}  // namespace okpcv
