// Labelling: every connected group of marked pixels gets a label, in raster order of the groups' first
// pixels.
//
// Two scans over runs (He, Chao, Suzuki, "A Run-Based Two-Scan Labeling Algorithm", 2008). The first turns
// the image into bits and joins each run with those it touches in the row above, in a forest whose roots are
// the first runs of the groups; one pass over the runs then numbers the groups in raster order. The second
// lists the runs of the bits and paints them.
//
// Bound by writing the labels; in noise by the mispredicted branches of the forest and of ever new run
// lengths.
#include <algorithm>
#include <bit>
#include <cstdint>

#include "core/area.h"
#include "core/cache.h"
#include "core/checks.h"
#include "segment/run_forest.h"
#include "segment/scan_fill.h"

namespace okpcv {
namespace {

// Labels from first to last, over and over.
class Labels {
  public:
    Labels(int32_t first, int32_t last) : first_(first), last_(last), next_(first) {}

    int32_t next() const { return next_; }
    // Takes the next label, or not. Free of branches: whether a run begins a group is hard to predict.
    void takeIf(bool taken) {
        const int32_t following = next_ < last_ ? next_ + 1 : first_;
        next_ = taken ? following : next_;
        taken_ += taken ? 1 : 0;
    }
    int32_t taken() const { return static_cast<int32_t>(taken_); }

  private:
    int32_t first_, last_, next_;
    uint32_t taken_ = 0;
};

struct Scratch {
    uint64_t* words;  // a bit for every pixel, set where it is marked
    int32_t* links;   // the forest; then the label of each run
    int32_t* edges;   // begin and end of every run of a row
};

Scratch layOut(Area& area, Size size) {
    const int64_t mostRuns = (size.width + 1) / 2;
    Scratch scratch;
    scratch.words = area.take<uint64_t>(wordsPerRow(size.width) * size.height);
    scratch.links = area.take<int32_t>(mostRuns * size.height);
    scratch.edges = area.take<int32_t>(2 * mostRuns);
    return scratch;
}

// Joins the runs of a row, numbered from `first` on, with those of the row above.
template <Connectivity kConnectivity>
void joinRow(RunForest forest, const uint64_t* row, int32_t first, const uint64_t* above, int32_t firstAbove,
             int64_t words) {
    RowJoiner joiner(forest, first, firstAbove);
    uint64_t before = 0, beforeAbove = 0;  // the pixels to the left, in bit 0
    for (int64_t i = 0; i < words; ++i) {
        const uint64_t here = row[i];
        const uint64_t up = above[i];
        const uint64_t left = here << 1 | before;
        const uint64_t upLeft = up << 1 | beforeAbove;
        before = here >> (kWordBits - 1);
        beforeAbove = up >> (kWordBits - 1);
        const uint64_t begins = here & ~left;
        const uint64_t beginsAbove = up & ~upLeft;
        // Each touching pair once, where the later of the two begins.
        const uint64_t pairs = kConnectivity == Connectivity::Four
                                   ? (begins & up) | (beginsAbove & here & left)
                                   : (begins & (up | upLeft)) | (beginsAbove & left);
        joiner.joinWord(pairs, begins, beginsAbove);
    }
}

// Lists the begin and the end of every run of a row's bits; returns how many there are.
int32_t listRuns(const uint64_t* words, int32_t width, int32_t* edges) {
    int32_t* edge = edges;
    uint64_t before = 0;
    for (int64_t x = 0; x < width; x += kWordBits) {
        const uint64_t word = words[x / kWordBits];
        for (uint64_t bits = word ^ (word << 1 | before); bits != 0; bits &= bits - 1)
            *edge++ = static_cast<int32_t>(x) + std::countr_zero(bits);
        before = word >> (kWordBits - 1);
    }
    if (before != 0) *edge++ = width;
    return static_cast<int32_t>(edge - edges) / 2;
}

// Writes a row of labels on a background of 0.
template <class T>
void paintRow(T* row, int32_t width, const int32_t* edges, int32_t count, const int32_t* labels) {
    constexpr int lanes = Vec<T>::lanes;
    fillPixels<T, 1>(row, width, Pixels<T, 1>{zeros<T>()});
    for (int32_t i = 0; i < count; ++i) {
        const Vec<T> label = broadcast(static_cast<T>(labels[i]));
        int32_t x = edges[2 * i];
        const int32_t end = edges[2 * i + 1];
        for (; end - x > lanes; x += lanes) store(row + x, label);
        // The rest in one store, which clears pixels behind the run: they are background, or painted later.
        const Vec<T> rest = label & less(laneNumbers<T>(), broadcast(static_cast<T>(end - x)));
        if (width - x >= lanes) {
            store(row + x, rest);
        } else {
            store(row + x, rest, Part{width - x});
        }
    }
}

// `dst` may be `src`. With a staging row, finished rows are stored past the caches.
template <Connectivity kConnectivity, class S, class T>
void labelRuns(Image<const S> src, Image<T> dst, RoiSize size, const Scratch& scratch, T* staging,
               Labels& labels) {
    constexpr int lanes = Vec<S>::lanes;
    const int64_t rowWords = wordsPerRow(size.width);
    RunForest forest(scratch.links);

    int32_t runs = 0, runsAbove = 0;  // before the row and before the one above
    uint64_t* words = scratch.words;
    for (int32_t y = 0; y < size.height; ++y, words += rowWords) {
        const auto marked = [row = src.row(y)](int64_t x, auto extent) {
            return ~laneBits(equal(load(row + x, extent), zeros<S>())) & lowBits(lanes);
        };
        int32_t count = 0;
        uint64_t before = 0;
        for (int64_t i = 0; i < rowWords; ++i) {
            const uint64_t word = rowWord<lanes>(i * kWordBits, size.width, marked);
            words[i] = word;
            count += std::popcount(word & ~(word << 1 | before));
            before = word >> (kWordBits - 1);
        }
        for (int32_t i = 0; i < count; ++i) scratch.links[runs + i] = -1;
        if (y > 0) {
            joinRow<kConnectivity>(forest, words, runs, words - rowWords, runsAbove, rowWords);
        }
        runsAbove = runs;
        runs += count;
    }

    forest.resolve(runs, [&labels](int64_t, bool isRoot) {
        const int32_t label = labels.next();
        labels.takeIf(isRoot);
        return label;
    });

    const int32_t* runLabels = scratch.links;
    words = scratch.words;
    for (int32_t y = 0; y < size.height; ++y, words += rowWords) {
        const int32_t count = listRuns(words, size.width, scratch.edges);
        if (staging == nullptr) {
            paintRow(dst.row(y), size.width, scratch.edges, count, runLabels);
        } else {
            paintRow(staging, size.width, scratch.edges, count, runLabels);
            const auto copy = [](auto extent, T* out, const T* in) { store(out, load(in, extent), extent); };
            mapRowsStreamed<Vec<T>::lanes>({size.width, 1}, copy, Image<T>{dst.row(y), dst.step},
                                           Image<const T>{staging, dst.step});
        }
        runLabels += count;
    }
}

// One fill per group, for images so narrow that the scratch of labelRuns does not fit the buffer.
template <Connectivity kConnectivity, class S, class T>
void labelByFilling(Image<const S> src, Image<T> dst, RoiSize size, uint8_t* pBuffer, Labels& labels) {
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x)
            storeScalar(dst.row(y) + x, loadScalar<S>(src.row(y) + x) != 0 ? kLargest<T> : T{0});
    }
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
            if (loadScalar<T>(dst.row(y) + x) != kLargest<T>) continue;
            ValueRegion region(dst, size.width, EqualTo(Pixel<T, 1>{kLargest<T>}),
                               Pixel<T, 1>{static_cast<T>(labels.next())});
            labels.takeIf(true);
            SegmentStack stack(pBuffer, fillBufferBytes(size));
            scanFill<kConnectivity>(size, {x, y}, stack, region);
        }
    }
}

template <Connectivity kConnectivity, class S, class T>
void label(Image<const S> src, Image<T> dst, RoiSize size, uint8_t* pBuffer, bool streamed, Labels& labels) {
    const int64_t bytes = fillBufferBytes(size);
    Area counted;
    layOut(counted, size);
    if (!counted.fits() || counted.bytes() > bytes) {
        labelByFilling<kConnectivity>(src, dst, size, pBuffer, labels);
        return;
    }
    Area placed(pBuffer);
    const Scratch scratch = layOut(placed, size);
    T* staging = placed.take<T>(size.width, kVectorBytes);
    if (!streamed || placed.bytes() > bytes) staging = nullptr;
    labelRuns<kConnectivity>(src, dst, size, scratch, staging, labels);
}

struct Arguments {
    RoiSize size;
    int32_t minLabel, maxLabel, norm;
    int32_t* pNumber;
    uint8_t* pBuffer;
};

// The checks behind those of the steps, and the work.
template <class S, class T>
okpStatus labelMarkers(Checks checks, Image<const S> src, Image<T> dst, const Arguments& a,
                       bool (*streams)(RoiSize)) {
    checks.require(
        a.minLabel >= 1 && a.maxLabel < kLargest<T> && a.minLabel <= a.maxLabel && a.norm >= 0 && a.norm <= 1,
        okpStatusBadArgument);
    if (checks.failed()) return checks.status();

    Labels labels(a.minLabel, a.maxLabel);
    const bool streamed = streams(a.size);
    if (a.norm == 0) {
        label<Connectivity::Eight>(src, dst, a.size, a.pBuffer, streamed, labels);
    } else {
        label<Connectivity::Four>(src, dst, a.size, a.pBuffer, streamed, labels);
    }
    *a.pNumber = labels.taken();
    return okpStatusOk;
}

template <class T>
okpStatus labelInPlace(Image<T> marker, const Arguments& a, bool (*streams)(RoiSize)) {
    Checks checks;
    checks.pointers(marker.data, a.pBuffer, a.pNumber).size(a.size).steps(a.size, marker);
    return labelMarkers<T, T>(checks, marker, marker, a, streams);
}

bool neverStreams(RoiSize) {
    return false;
}
bool streams16(RoiSize size) {
    return streamsOutput(int64_t{size.width} * size.height * 2, 0);
}

okpStatus labelBufferSize(RoiSize roiSize, int32_t* pBufferSize) {
    return okpiFloodFillGetSize(roiSize, pBufferSize);
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiLabelMarkersGetBufferSize_8u_C1R(RoiSize roiSize, int32_t* pBufferSize) {
    return labelBufferSize(roiSize, pBufferSize);
}
okpStatus okpiLabelMarkersGetBufferSize_16u_C1R(RoiSize roiSize, int32_t* pBufferSize) {
    return labelBufferSize(roiSize, pBufferSize);
}
okpStatus okpiLabelMarkersGetBufferSize_8u32s_C1R(RoiSize roiSize, int32_t* pBufferSize) {
    return labelBufferSize(roiSize, pBufferSize);
}

okpStatus okpiLabelMarkers_8u_C1IR(uint8_t* pMarker, int32_t markerStep, RoiSize roiSize, int32_t minLabel,
                                   int32_t maxLabel, int32_t norm, int32_t* pNumber, uint8_t* pBuffer) {
    return labelInPlace<uint8_t>({pMarker, markerStep}, {roiSize, minLabel, maxLabel, norm, pNumber, pBuffer},
                                 neverStreams);
}

okpStatus okpiLabelMarkers_16u_C1IR(uint16_t* pMarker, int32_t markerStep, RoiSize roiSize, int32_t minLabel,
                                    int32_t maxLabel, int32_t norm, int32_t* pNumber, uint8_t* pBuffer) {
    return labelInPlace<uint16_t>({pMarker, markerStep},
                                  {roiSize, minLabel, maxLabel, norm, pNumber, pBuffer}, streams16);
}

okpStatus okpiLabelMarkers_8u32s_C1R(const uint8_t* pSrc, int32_t srcStep, int32_t* pDst, int32_t dstStep,
                                     RoiSize roiSize, int32_t minLabel, int32_t maxLabel, int32_t norm,
                                     int32_t* pNumber, uint8_t* pBuffer) {
    const Image<const uint8_t> src{pSrc, srcStep};
    const Image<int32_t> dst{pDst, dstStep};
    const Size size = roiSize;
    Checks checks;
    checks.pointers(pSrc, pDst, pBuffer, pNumber).size(size).steps(size, src).steps(size, dst);
    return labelMarkers(checks, src, dst, {roiSize, minLabel, maxLabel, norm, pNumber, pBuffer},
                        neverStreams);
}
