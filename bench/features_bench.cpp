// Benchmarks of features: peaks of response images.
#include "okpcv/features.h"

#include "support/compare.h"

namespace {

using bench::Case;
using bench::Image;
using bench::Setup;

// A response image: noise below the threshold and a spike in every 16 x 16 pixels, or noise above it
// throughout.
template <class T>
Setup peaks(okpStatus (*f)(const T*, int32_t, RoiSize, T, PixelPoint*, int32_t, int32_t*, int32_t, int32_t,
                           uint8_t*),
            decltype(okpiFindPeaks3x3GetBufferSize_32f_C1R)* bufferSize, int32_t norm, bool dense) {
    return [=](RoiSize size) {
        const auto src = bench::randomImage<T>(size, 1, T(1), T(1000));
        for (int y = 8; y < size.height; y += 16) {
            for (int x = 8; x < size.width; x += 16) *src.at(x, y) = T(2000);
        }
        const int32_t capacity = size.width * size.height;
        const Image<int32_t> list({2 * capacity, 1});  // x and y of each peak
        const Image<int32_t> count({1, 1});
        int32_t bytes = 0;
        bufferSize(size.width, &bytes);
        const Image<uint8_t> buffer({bytes, 1});
        return Case{.reads = sizeof(T), .ours = [=] {
                        return f(src.data(), src.step(), size, dense ? T(0) : T(1500),
                                 reinterpret_cast<PixelPoint*>(list.data()), capacity, count.data(), norm, 1,
                                 buffer.data());
                    }};
    };
}

const bench::Family family_("features", [](bench::Family& family) {
    family.add("okpiFindPeaks3x3_32f_C1R",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 0, false));
    family.add("okpiFindPeaks3x3_32f_C1R/cross",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 1, false));
    family.add("okpiFindPeaks3x3_32f_C1R/dense",
               peaks(okpiFindPeaks3x3_32f_C1R, okpiFindPeaks3x3GetBufferSize_32f_C1R, 0, true));
    family.add("okpiFindPeaks3x3_32s_C1R",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 0, false));
    family.add("okpiFindPeaks3x3_32s_C1R/cross",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 1, false));
    family.add("okpiFindPeaks3x3_32s_C1R/dense",
               peaks(okpiFindPeaks3x3_32s_C1R, okpiFindPeaks3x3GetBufferSize_32s_C1R, 0, true));
});

}  // namespace
