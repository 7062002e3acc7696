// Speckles: small connected regions of similar values are overwritten, as disparity maps are cleaned
// (Hirschmueller, "Stereo Processing by Semiglobal Matching and Mutual Information", TPAMI 2008,
// section 2.5).
//
// Whether two neighbours are similar does not depend on which is reached first, so the regions are the
// components of a graph whose edges join similar neighbours. Comparisons of whole rows give bits: which
// pixels begin a run of horizontally joined pixels, and which are joined with the pixel above. Runs are the
// nodes of a forest that is joined where the bits say so, once per pair of touching runs. Smooth images are
// bound by the comparisons, noise by mispredicted branches, a few per run.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "core/area.h"
#include "core/checks.h"
#include "core/numbers.h"
#include "okpcv/segment.h"
#include "segment/pixel_bits.h"

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

// A run of pixels that are joined to their left neighbours. Runs follow each other in raster order and cover
// the rows, so one ends where the next begins.
struct Node {
    int32_t begin;
    int32_t link;  // the number of a node before it in the same region, or minus the region's pixels
};
// Pixels of the speckle value stand apart. Their runs count as larger than any limit.
constexpr int32_t kNoRegion = INT32_MIN;

struct Scratch {
    Node* nodes;
    // Bits of a row: where runs begin, in this row and the one above; where pixels have another value than
    // the speckles, in the latest row; and where a run touches another one of the row above for the first
    // time.
    uint64_t *begins, *beginsAbove, *valid, *touches;
};

Scratch layOut(Area& area, Size size) {
    const int64_t words = wordsPerRow(size.width);
    Scratch scratch;
    scratch.nodes = area.take<Node>(size.width * size.height + 1);
    scratch.begins = area.take<uint64_t>(words);
    scratch.beginsAbove = area.take<uint64_t>(words);
    scratch.valid = area.take<uint64_t>(words);
    scratch.touches = area.take<uint64_t>(words);
    return scratch;
}

int32_t findRoot(Node* nodes, int32_t node) {
    while (nodes[node].link >= 0) {
        const int32_t next = nodes[node].link;
        if (nodes[next].link >= 0) nodes[node].link = nodes[next].link;
        node = next;
    }
    return node;
}

void join(Node* nodes, int32_t a, int32_t b) {
    a = findRoot(nodes, a);
    b = findRoot(nodes, b);
    if (a == b) return;
    const int32_t first = std::min(a, b);
    const int32_t second = std::max(a, b);
    nodes[first].link += nodes[second].link;
    nodes[second].link = first;
}

template <class T>
class SpeckleMarker {
  public:
    SpeckleMarker(Image<T> image, RoiSize size, T speckleValue, T maxDifference, const Scratch& scratch)
        : image_(image),
          size_(size),
          speckleValue_(speckleValue),
          similar_(maxDifference),
          scratch_(scratch) {}

    void mark(int32_t maxSize) {
        if (maxSize < 1) return;
        for (int32_t y = 0; y < size_.height; ++y) {
            if (y == 0) {
                compareRow<false>(y);
            } else {
                compareRow<true>(y);
                joinRow();
            }
            std::swap(scratch_.begins, scratch_.beginsAbove);
        }
        scratch_.nodes[count_].begin = 0;
        overwrite(maxSize);
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;

    // The bits of a row, its nodes, and their pixels as links.
    template <bool kHasAbove>
    void compareRow(int32_t y) {
        const T* const row = image_.row(y);
        const T* const above = kHasAbove ? image_.row(y - 1) : row;
        const auto isSpeckle = [row, speckle = broadcast(speckleValue_)](int64_t x, auto extent) {
            return laneBits(equal(load(row + x, extent), speckle));
        };
        const auto similarToLeft = [this, row](int64_t x, auto extent) {
            return similar_(load(row + x, extent), load(row + x - 1, extent));
        };
        const auto similarToAbove = [this, row, above](int64_t x, auto extent) {
            return similar_(load(row + x, extent), load(above + x, extent));
        };

        firstAbove_ = first_;
        first_ = count_;
        uint64_t validBefore = 0, upBefore = 0;  // of the pixel to the left, in bit 0
        for (int64_t i = 0; i < wordsPerRow(size_.width); ++i) {
            const int64_t x = i * kWordBits;
            const int rest = static_cast<int>(std::min<int64_t>(size_.width - x, kWordBits));
            const uint64_t inRow = ~uint64_t{0} >> (kWordBits - rest);
            const uint64_t valid = ~rowWord<kLanes>(x, size_.width, isSpeckle) & inRow;
            const uint64_t validLeft = valid << 1 | validBefore;
            // The first pixel of the row has no left neighbour; it begins a run anyway.
            const uint64_t similar =
                x == 0
                    ? rowWord<kLanes>(0, size_.width - 1,
                                      [&](int64_t at, auto extent) { return similarToLeft(at + 1, extent); })
                          << 1
                    : rowWord<kLanes>(x, size_.width, similarToLeft);
            const uint64_t joined = (valid & validLeft & similar) | ~(valid | validLeft);
            const uint64_t begins = (x == 0 ? ~joined | 1 : ~joined) & inRow;
            for (uint64_t bits = begins; bits != 0; bits &= bits - 1) {
                const int at = std::countr_zero(bits);
                addNode(static_cast<int32_t>(x) + at, (valid >> at & 1) != 0);
            }
            if constexpr (kHasAbove) {
                const uint64_t up =
                    valid & scratch_.valid[i] & rowWord<kLanes>(x, size_.width, similarToAbove);
                const uint64_t continued = (up << 1 | upBefore) & ~begins & ~scratch_.beginsAbove[i];
                scratch_.touches[i] = up & ~continued;
                upBefore = up >> (kWordBits - 1);
            }
            scratch_.begins[i] = begins;
            scratch_.valid[i] = valid;
            validBefore = valid >> (kWordBits - 1);
        }
        closeNode(size_.width);
    }

    void addNode(int32_t x, bool valid) {
        if (count_ > first_) closeNode(x);
        scratch_.nodes[count_++] = {x, valid ? 0 : kNoRegion};
    }
    void closeNode(int32_t end) {
        Node& node = scratch_.nodes[count_ - 1];
        if (node.link == 0) node.link = node.begin - end;
    }

    // Joins runs of the row with those above that they touch.
    void joinRow() {
        // The number of a pixel's run is the number of begins up to it.
        int32_t before = first_ - 1, beforeAbove = firstAbove_ - 1;
        for (int64_t i = 0; i < wordsPerRow(size_.width); ++i) {
            const uint64_t begins = scratch_.begins[i];
            const uint64_t beginsAbove = scratch_.beginsAbove[i];
            for (uint64_t bits = scratch_.touches[i]; bits != 0; bits &= bits - 1) {
                const uint64_t upTo = bits ^ (bits - 1);
                join(scratch_.nodes, before + std::popcount(begins & upTo),
                     beforeAbove + std::popcount(beginsAbove & upTo));
            }
            before += std::popcount(begins);
            beforeAbove += std::popcount(beginsAbove);
        }
    }

    // A link refers to a node before, whose own link has by then been replaced by whether it is a speckle.
    void overwrite(int32_t maxSize) {
        const Pixels<T, 1> speckles = Pixels<T, 1>::repeated({speckleValue_});
        Node* const nodes = scratch_.nodes;
        int32_t y = -1;
        for (int32_t i = 0; i < count_; ++i) {
            Node& node = nodes[i];
            if (node.begin == 0) ++y;
            node.link = node.link >= 0 ? nodes[node.link].link : -int64_t{node.link} <= maxSize ? 1 : 0;
            if (node.link == 0) continue;
            const int32_t next = nodes[i + 1].begin;
            const int32_t end = next == 0 ? size_.width : next;
            fillPixels<T, 1>(image_.row(y) + node.begin, end - node.begin, speckles);
        }
    }

    Image<T> image_;
    RoiSize size_;
    T speckleValue_;
    AtMost<T> similar_;
    Scratch scratch_;
    int32_t count_ = 0;                   // nodes
    int32_t first_ = 0, firstAbove_ = 0;  // numbers of the first nodes of the latest row and the one above
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
