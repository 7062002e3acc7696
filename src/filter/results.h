// How passes store what they computed in single precision.
#pragma once

#include <cstdint>

#include "core/simd.h"

namespace okpcv {

// Stores float results: unchanged, or clamped and truncated (see truncateSaturated) to a narrower type.
template <class D, int V, class Extent>
OKPCV_INLINE void storeResults(D* out, const Vec<float> (&v)[V], Extent extent) {
    constexpr int lanes = Vec<float>::lanes;
    if constexpr (kIsFloat<D>) {
        for (int i = 0; i < V; ++i) store(out + i * lanes, v[i], extent.from(i * lanes));
    } else if constexpr (sizeof(D) == 2) {
        if constexpr (V == 1) {
            const auto n = truncateToNarrow<D>(v[0]);
            storeFirst<lanes>(out, narrowSaturated<D>(n, n), extent);
        } else {
            static_assert(V % 2 == 0);
            for (int i = 0; i < V; i += 2) {
                store(out + i * lanes,
                      narrowSaturated<D>(truncateToNarrow<D>(v[i]), truncateToNarrow<D>(v[i + 1])),
                      extent.from(i * lanes));
            }
        }
    } else {
        static_assert(sizeof(D) == 1);
        const auto half = [&](int i) {
            return narrowSaturated<int16_t>(truncateToNarrow<D>(v[i]), truncateToNarrow<D>(v[i + 1]));
        };
        if constexpr (V == 1) {
            const auto n = truncateToNarrow<D>(v[0]);
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
