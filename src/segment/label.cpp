// Labelling: every connected group of marked pixels gets a label, in raster order of the groups' first
// pixels.
//
// Two scans over runs (He, Chao, Suzuki, "A Run-Based Two-Scan Labeling Algorithm", 2008; Wu, Otoo, Suzuki,
// "Optimizing Two-Pass Connected-Component Labeling Algorithms", 2009). The first turns the image into bits
// and joins each run with those it touches in the row above, in a forest over the runs' numbers in which
// every parent precedes its children. So the root of a group is its first run, and one pass in ascending
// order numbers the groups in raster order. The second scan lists the runs of the bits again and paints them.
//
// Sparse noise is bound by mispredicted branches, a few per run; everything else by writing the labels.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "core/area.h"
#include "core/cache.h"
#include "core/checks.h"
#include "segment/scan_fill.h"

namespace okpcv {
namespace {

// Labels from first to last, over and over.
class Labels {
  public:
    Labels(int32_t first, int32_t last) : first_(first), last_(last), next_(first) {}

    int32_t take() {
        const int32_t label = next_;
        next_ = label < last_ ? label + 1 : first_;
        ++taken_;
        return label;
    }
    int32_t taken() const { return static_cast<int32_t>(taken_); }

  private:
    int32_t first_, last_, next_;
    uint32_t taken_ = 0;
};

struct Scratch {
    uint64_t* words;   // a bit for every pixel, set where it is marked
    int32_t* parents;  // by number of run, in raster order: a run of the same group that is not behind it
    int32_t* runs[2];  // begin and end of every run of two rows, and a pair that lies behind the row
};

int64_t mostRuns(int64_t width) {
    return (width + 1) / 2;
}

Scratch layOut(Area& area, Size size) {
    Scratch scratch;
    scratch.words = area.take<uint64_t>(wordsPerRow(size.width) * size.height);
    scratch.parents = area.take<int32_t>(mostRuns(size.width) * size.height);
    for (int32_t*& runs : scratch.runs) runs = area.take<int32_t>(2 * (mostRuns(size.width) + 1));
    return scratch;
}

// Lists the begin and the end of every run of a row's bits; returns how many there are.
int32_t listRuns(const uint64_t* words, int32_t width, int32_t* runs) {
    int32_t* edge = runs;
    uint64_t before = 0;
    for (int64_t x = 0; x < width; x += kWordBits) {
        const uint64_t word = words[x / kWordBits];
        for (uint64_t edges = word ^ (word << 1 | before); edges != 0; edges &= edges - 1)
            *edge++ = static_cast<int32_t>(x) + std::countr_zero(edges);
        before = word >> (kWordBits - 1);
    }
    if (before != 0) *edge++ = width;
    edge[0] = edge[1] = INT32_MAX;
    return static_cast<int32_t>(edge - runs) / 2;
}

// The root of a run's group; the path to it is halved on the way.
int32_t findRoot(int32_t* parents, int32_t run) {
    while (parents[run] != run) run = parents[run] = parents[parents[run]];
    return run;
}

// Joins the `count` runs of a row, numbered from `number` on, with those above, numbered from `numberAbove`
// on.
template <Connectivity kConnectivity>
void joinRuns(const int32_t* runs, int32_t count, int32_t number, const int32_t* above, int32_t numberAbove,
              int32_t* parents) {
    constexpr int32_t reach = kConnectivity == Connectivity::Eight ? 1 : 0;
    for (int32_t i = 0; i < count; ++i, ++number) {
        const int32_t begin = runs[2 * i] - reach;
        const int32_t end = runs[2 * i + 1] + reach;
        while (above[1] <= begin) above += 2, ++numberAbove;
        if (above[0] >= end) {
            parents[number] = number;
            continue;
        }
        int32_t root = findRoot(parents, numberAbove);
        // The last run above that is touched may touch the next run, too.
        while (above[2] < end) {
            above += 2;
            const int32_t other = findRoot(parents, ++numberAbove);
            const int32_t first = std::min(root, other);
            parents[std::max(root, other)] = first;
            root = first;
        }
        parents[number] = root;
    }
}

// Writes a row of labels on a background of 0. Whole vectors are stored from left to right, each over what
// the one before it wrote too far.
template <class T>
void paintRow(T* row, int32_t width, const int32_t* runs, int32_t count, const int32_t* labels) {
    constexpr int lanes = Vec<T>::lanes;
    const auto paint = [=](int64_t from, int64_t to, Vec<T> value) {
        for (int64_t x = from; x < to; x += lanes) {
            if (width - x >= lanes) {
                store(row + x, value);
            } else {
                store(row + x, value, Part{static_cast<int>(width - x)});
            }
        }
    };
    int32_t end = 0;
    for (int32_t i = 0; i < count; ++i) {
        paint(end, runs[2 * i], zeros<T>());
        end = runs[2 * i + 1];
        paint(runs[2 * i], end, broadcast(static_cast<T>(labels[i])));
    }
    paint(end, width, zeros<T>());
}

// `dst` may be `src`. With a staging row, finished rows are stored past the caches.
template <Connectivity kConnectivity, class S, class T>
void labelRuns(Image<const S> src, Image<T> dst, RoiSize size, const Scratch& scratch, T* staging,
               Labels& labels) {
    constexpr int lanes = Vec<S>::lanes;
    const int64_t rowWords = wordsPerRow(size.width);

    int32_t* here = scratch.runs[0];
    int32_t* above = scratch.runs[1];
    above[0] = above[1] = INT32_MAX;
    int32_t number = 0, numberAbove = 0;
    uint64_t* words = scratch.words;
    for (int32_t y = 0; y < size.height; ++y, words += rowWords) {
        const auto marked = [row = src.row(y)](int64_t x, auto extent) {
            return ~laneBits(equal(load(row + x, extent), zeros<S>())) & lowBits(lanes);
        };
        for (int64_t i = 0; i < rowWords; ++i) words[i] = rowWord<lanes>(i * kWordBits, size.width, marked);

        const int32_t count = listRuns(words, size.width, here);
        joinRuns<kConnectivity>(here, count, number, above, numberAbove, scratch.parents);
        std::swap(here, above);
        numberAbove = number;
        number += count;
    }

    // A parent precedes its children, so it already has its label in place of its own parent.
    int32_t* const groups = scratch.parents;
    for (int32_t run = 0; run < number; ++run)
        groups[run] = groups[run] == run ? labels.take() : groups[groups[run]];

    const int32_t* runLabels = groups;
    words = scratch.words;
    for (int32_t y = 0; y < size.height; ++y, words += rowWords) {
        const int32_t count = listRuns(words, size.width, here);
        if (staging == nullptr) {
            paintRow(dst.row(y), size.width, here, count, runLabels);
        } else {
            paintRow(staging, size.width, here, count, runLabels);
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
        for (int32_t x = 0; x < size.width; ++x) dst.row(y)[x] = src.row(y)[x] != 0 ? kLargest<T> : T{0};
    }
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
            if (dst.row(y)[x] != kLargest<T>) continue;
            ValueRegion region(dst, size.width, EqualTo(Pixel<T, 1>{kLargest<T>}),
                               Pixel<T, 1>{static_cast<T>(labels.take())});
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
