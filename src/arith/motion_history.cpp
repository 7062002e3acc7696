// Motion history: a moving pixel takes the time stamp, others are cleared once they are older than the given
// duration (Davis and Bobick, "The Representation and Recognition of Human Movement Using Temporal
// Templates", CVPR 1997). Bound by memory: the history is loaded and stored, the silhouette loaded.
#include "core/checks.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/arith.h"

namespace okpcv {
namespace {

template <class S>
okpStatus updateMotionHistory(Image<const S> silhouette, Image<float> history, Size size, float timestamp,
                              float duration) {
    Checks checks;
    checks.pointers(silhouette.data, history.data)
        .size(size)
        .steps(size, silhouette, history)
        .require(!(duration < 0.0F), okpStatusOutOfRange);
    if (checks.failed()) return checks.status();

    // Integer silhouettes are compared as integers, float ones as floats: -0 is still, NaN moves.
    using Lane = std::conditional_t<kIsFloat<S>, float, int32_t>;
    const auto kernel = [now = broadcast(timestamp), threshold = broadcast(timestamp - duration)](
                            auto extent, float* h, const S* s) {
        const Vec<float> before = load(h, extent);
        const Vec<float> kept = andNot(before, less(before, threshold));
        const Vec<float> still = bitCast<float>(equal(loadAs<Lane>(s, extent), zeros<Lane>()));
        store(h, select(still, kept, now), extent);
    };
    mapRows<Vec<float>::lanes, kFetchBeside<S>>(size, kernel, history, silhouette);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

#define UPDATE_MOTION_HISTORY(NAME, S)                                                                    \
    okpStatus NAME(const S* pSilhouette, int32_t silhStep, float* pMHI, int32_t mhiStep, RoiSize roiSize, \
                   float timestamp, float mhiDuration) {                                                  \
        return updateMotionHistory<S>({pSilhouette, silhStep}, {pMHI, mhiStep}, roiSize, timestamp,       \
                                      mhiDuration);                                                       \
    }

UPDATE_MOTION_HISTORY(okpiUpdateMotionHistory_8u32f_C1IR, uint8_t)
UPDATE_MOTION_HISTORY(okpiUpdateMotionHistory_16u32f_C1IR, uint16_t)
UPDATE_MOTION_HISTORY(okpiUpdateMotionHistory_32f_C1IR, float)
