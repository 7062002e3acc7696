// Speckles: small connected regions of similar values are overwritten, as disparity maps are cleaned
// (Hirschmueller, "Stereo Processing by Semiglobal Matching and Mutual Information", TPAMI 2008,
// section 2.5).
//
// Whether two neighbours are similar does not depend on which is reached first, so the regions are the
// components of a graph whose edges join similar neighbours. Comparisons of whole rows give bits: which
// pixels begin a run of horizontally joined pixels, and which are joined with the pixel above. The runs are
// the nodes of a forest. Smooth images are bound by the comparisons, noise by the runs, which are hardly
// longer than a pixel.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "core/area.h"
#include "core/checks.h"
#include "core/numbers.h"
#include "okpcv/segment.h"
#include "segment/pixel_bits.h"
#include "segment/run_forest.h"

namespace okpcv {
namespace {

// |a - b| <= limit for the exact difference.
template <class T>
class AtMost {
  public:
    explicit AtMost(T limit)
        : limit_(broadcast(static_cast<Unsigned>(limit))),
          never_(broadcast(limit < 0 ? Unsigned(-1) : Unsigned(0))) {}

    OKPCV_INLINE uint32_t operator()(Vec<T> a, Vec<T> b) const {
        // Differences of signed numbers fit the unsigned type.
        const auto difference = bitCast<Unsigned>(max(a, b) - min(a, b));
        return laneBits(andNot(lessEqual(difference, limit_), never_));
    }

  private:
    using Unsigned = std::make_unsigned_t<T>;
    Vec<Unsigned> limit_, never_;
};

// The rounded difference decides unless it equals the limit: rounding keeps the order of numbers, and the
// limit is one that needs none. Then the sign of what rounding took away decides (Knuth's exact sum of two
// numbers).
template <>
class AtMost<float> {
  public:
    explicit AtMost(float limit) : limit_(broadcast(limit)) {}

    OKPCV_INLINE uint32_t operator()(Vec<float> a, Vec<float> b) const {
        const Vec<float> difference = a - b;
        const Vec<float> sign = broadcast(-0.0F) & difference;
        const Vec<float> distance = difference ^ sign;
        const Vec<float> c = difference - a;
        const Vec<float> lost = ((a - (difference - c)) - (b + c)) ^ sign;
        const Vec<float> exceeds = greater(lost, zeros<float>());
        return laneBits(less(distance, limit_) | andNot(equal(distance, limit_), exceeds));
    }

  private:
    Vec<float> limit_;
};

// Pixels of the speckle value stand apart: their runs weigh more than any limit allows.
constexpr int32_t kNoRegion = INT32_MIN;

// Runs of pixels that are joined to their left neighbours cover the rows, so one ends where the next begins.
struct Scratch {
    int32_t* begins;  // of every run
    int32_t* links;   // the forest, weighed in pixels; then whether each run is a speckle
    // Bits of a row: where runs begin, in this row and the one above; where pixels have another value than
    // the speckles, in the latest row; and where two runs, one above the other, are joined for the first
    // time.
    uint64_t *beginBits, *beginBitsAbove, *valid, *pairs;
};

Scratch layOut(Area& area, Size size) {
    const int64_t words = wordsPerRow(size.width);
    Scratch scratch;
    scratch.begins = area.take<int32_t>(size.width * size.height + 1);
    scratch.links = area.take<int32_t>(size.width * size.height);
    scratch.beginBits = area.take<uint64_t>(words);
    scratch.beginBitsAbove = area.take<uint64_t>(words);
    scratch.valid = area.take<uint64_t>(words);
    scratch.pairs = area.take<uint64_t>(words);
    return scratch;
}

template <class T>
class SpeckleMarker {
  public:
    SpeckleMarker(Image<T> image, RoiSize size, T speckleValue, T maxDifference, const Scratch& scratch)
        : image_(image),
          size_(size),
          words_(wordsPerRow(size.width)),
          speckleValue_(speckleValue),
          similar_(maxDifference),
          scratch_(scratch) {}

    void mark(int32_t maxSize) {
        if (maxSize < 1) return;
        int32_t first = 0, firstAbove = 0;  // the numbers of the rows' first runs
        for (int32_t y = 0; y < size_.height; ++y) {
            const int32_t end = y == 0 ? compareRow<false>(y, first) : compareRow<true>(y, first);
            if (y > 0) joinRow(first, firstAbove);
            std::swap(scratch_.beginBits, scratch_.beginBitsAbove);
            firstAbove = first;
            first = end;
        }
        // As if another row followed.
        scratch_.begins[first] = 0;
        overwrite(first, maxSize);
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;

    // Finds the bits of a row and its runs, which are numbered from `first` on. Returns the number behind
    // them.
    template <bool kHasAbove>
    int32_t compareRow(int32_t y, int32_t first) {
        const T* const row = image_.row(y);
        const T* const above = kHasAbove ? image_.row(y - 1) : row;
        const auto isSpeckle = [row, speckle = broadcast(speckleValue_)](int64_t x, auto extent) {
            return laneBits(equal(load(row + x, extent), speckle));
        };
        const auto similarToRight = [row, similar = similar_](int64_t x, auto extent) {
            return similar(load(row + x, extent), load(row + x + 1, extent));
        };
        const auto similarToAbove = [row, above, similar = similar_](int64_t x, auto extent) {
            return similar(load(row + x, extent), load(above + x, extent));
        };

        int32_t end = first;
        uint64_t before = 0, similarBefore = 0, pairBefore = 0;  // of the pixel to the left, in bit 0
        for (int64_t i = 0; i < words_; ++i) {
            const int64_t x = i * kWordBits;
            const int rest = static_cast<int>(std::min<int64_t>(size_.width - x, kWordBits));
            const uint64_t inRow = ~uint64_t{0} >> (kWordBits - rest);
            const uint64_t valid = ~rowWord<kLanes>(x, size_.width, isSpeckle) & inRow;
            const uint64_t toRight = rowWord<kLanes>(x, size_.width - 1, similarToRight);
            const uint64_t left = valid << 1 | before;
            const uint64_t joined = (valid & left & (toRight << 1 | similarBefore)) | ~(valid | left);
            const uint64_t begins = (i == 0 ? ~joined | 1 : ~joined) & inRow;
            if constexpr (kHasAbove) {
                const uint64_t up =
                    valid & scratch_.valid[i] & rowWord<kLanes>(x, size_.width, similarToAbove);
                const uint64_t sameRuns = ~begins & ~scratch_.beginBitsAbove[i];
                scratch_.pairs[i] = up & ~((up << 1 | pairBefore) & sameRuns);
                pairBefore = up >> (kWordBits - 1);
            }
            for (uint64_t bits = begins; bits != 0; bits &= bits - 1)
                scratch_.begins[end++] = static_cast<int32_t>(x) + std::countr_zero(bits);
            scratch_.beginBits[i] = begins;
            scratch_.valid[i] = valid;
            before = valid >> (kWordBits - 1);
            similarBefore = toRight >> (kWordBits - 1);
        }
        weigh(first, end);
        return end;
    }

    void weigh(int32_t first, int32_t end) {
        const int32_t* const begins = scratch_.begins;
        for (int32_t run = first; run + 1 < end; ++run) scratch_.links[run] = begins[run] - begins[run + 1];
        scratch_.links[end - 1] = begins[end - 1] - size_.width;

        int32_t run = first;
        for (int64_t i = 0; i < words_; ++i) {
            const uint64_t bits = scratch_.beginBits[i];
            for (uint64_t apart = bits & ~scratch_.valid[i]; apart != 0; apart &= apart - 1)
                scratch_.links[run + std::popcount(bits & (apart ^ (apart - 1))) - 1] = kNoRegion;
            run += std::popcount(bits);
        }
    }

    void joinRow(int32_t first, int32_t firstAbove) {
        RowJoiner joiner(RunForest(scratch_.links), first, firstAbove);
        for (int64_t i = 0; i < words_; ++i)
            joiner.joinWord(scratch_.pairs[i], scratch_.beginBits[i], scratch_.beginBitsAbove[i]);
    }

    void overwrite(int32_t runs, int32_t maxSize) {
        RunForest(scratch_.links).resolve(runs, [maxSize](int64_t pixels, bool) {
            return pixels <= maxSize ? 1 : 0;
        });
        // Speckles side by side are written at once.
        const auto speckles = Pixels<T, 1>::repeated({speckleValue_});
        const int32_t* const begins = scratch_.begins;
        for (int32_t y = 0, run = 0; y < size_.height; ++y) {
            int32_t from = -1;  // where the speckles that have begun began
            do {
                const bool isSpeckle = scratch_.links[run] != 0;
                if (isSpeckle == (from >= 0)) continue;
                if (isSpeckle) {
                    from = begins[run];
                } else {
                    fillPixels<T, 1>(image_.row(y) + from, begins[run] - from, speckles);
                    from = -1;
                }
            } while (begins[++run] != 0);
            if (from >= 0) fillPixels<T, 1>(image_.row(y) + from, size_.width - from, speckles);
        }
    }

    Image<T> image_;
    RoiSize size_;
    int64_t words_;
    T speckleValue_;
    AtMost<T> similar_;
    Scratch scratch_;
};

template <class T>
okpStatus markSpeckles(Image<T> image, RoiSize roiSize, T speckleValue, int32_t maxSpeckleSize,
                       T maxDifference, NormKind norm, uint8_t* pBuffer) {
    Checks checks;
    checks.pointers(image.data, pBuffer)
        .size(roiSize)
        .steps(roiSize, image)
        .require(norm == NormInf, okpStatusBadNorm);
    if (checks.failed()) return checks.status();

    Area area(pBuffer);
    SpeckleMarker<T>(image, roiSize, speckleValue, maxDifference, layOut(area, roiSize)).mark(maxSpeckleSize);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiMarkSpecklesGetBufferSize(RoiSize roiSize, DataTypeCode dataType, int32_t numChannels,
                                        int32_t* pBufferSize) {
    Checks checks;
    checks.pointers(pBufferSize)
        .size(roiSize)
        .require(dataType == DataType8u || dataType == DataType16u || dataType == DataType16s ||
                     dataType == DataType32f,
                 okpStatusBadDataType)
        .require(numChannels == 1, okpStatusBadChannelCount);
    if (checks.failed()) return checks.status();

    constexpr int64_t perPixel = 13, fixed = 64;
    const int64_t pixels = int64_t{roiSize.width} * roiSize.height;
    if (pixels > (INT32_MAX - fixed) / perPixel) return okpStatusSizeTooLarge;
    *pBufferSize = static_cast<int32_t>(pixels * perPixel + fixed);
    return okpStatusOk;
}

#define MARK_SPECKLES(NAME, T)                                                                               \
    okpStatus NAME(T* pSrcDst, int32_t srcDstStep, RoiSize roiSize, T speckleVal, int32_t maxSpeckleSize,    \
                   T maxPixDiff, NormKind norm, uint8_t* pBuffer) {                                          \
        return markSpeckles<T>({pSrcDst, srcDstStep}, roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm, \
                               pBuffer);                                                                     \
    }

MARK_SPECKLES(okpiMarkSpeckles_8u_C1IR, uint8_t)
MARK_SPECKLES(okpiMarkSpeckles_16u_C1IR, uint16_t)
MARK_SPECKLES(okpiMarkSpeckles_16s_C1IR, int16_t)
MARK_SPECKLES(okpiMarkSpeckles_32f_C1IR, float)
