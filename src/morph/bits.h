#pragma once
#include "morph/engine.h"
namespace okpcv::morph {
struct BitSizes {
    BitSizes(int32_t, int32_t, int64_t) {}
};
inline void layOutBitScratch(Area&, const BitSizes&) {}
}  // namespace okpcv::morph
