// Exact Euclidean distance transform: squared distances down the columns, then along every row the lower
// envelope of the parabolas that stand on them (P. F. Felzenszwalb, D. P. Huttenlocher, "Distance transforms
// of sampled functions", 2012).
//
// The column passes run along the rows, vectors of columns at once, and are bound by memory: the way up
// leaves its counts in the destination, and the way down goes on with a row as soon as it has the row's
// distances, so the destination is passed over twice in all. Building an envelope is bound by branches that
// the image decides, so it comes between loops over vectors: one before it leaves out parabolas that cannot
// be the lowest anywhere, and one after it finds the lowest parabola of every pixel.
#include "core/area.h"
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/rows.h"
#include "core/simd.h"
#include "okpcv/distance.h"

namespace okpcv {
namespace {

constexpr int kLanes = Vec<float>::lanes;

// The squared distance where a column has no zero pixel.
constexpr float kNone = kLargest<float>;

// How far apart the parabolas stand that are compared with the one between them.
constexpr int kSpans[] = {1, 2, 4};
constexpr int kLongestSpan = 4;

struct Scratch {
    float* halfReciprocals;  // 0.5 / n for n = 1 ... width - 1
    int32_t* running;        // per column: pixels to the nearest zero pixel
    float* f;                // squared vertical distances of the row, kNone beyond its ends
    float* sums;             // f(q) + q * q
    int32_t* positions;      // of the parabolas in question, then of those in the envelope
    float* bounds;           // where each parabola of the envelope begins to be the lowest
    int32_t* lowest;         // where a pixel is the first of its parabola, that one's position
};

// Takes at most 28 * width + 8 * kLongestSpan + 8 * lanes + 27 bytes.
Scratch layOut(Area& area, Size size) {
    Scratch s;
    s.halfReciprocals = area.take<float>(size.width, 32);
    s.running = area.take<int32_t>(size.width);
    s.f = area.take<float>(size.width + 2 * kLongestSpan + kLanes) + kLongestSpan;
    s.sums = area.take<float>(size.width);
    s.positions = area.take<int32_t>(size.width + kLanes - 1);
    s.bounds = area.take<float>(size.width);
    s.lowest = area.take<int32_t>(size.width);
    return s;
}

int64_t bufferBytes(Size size) {
    const int64_t longer = size.width > size.height ? size.width : size.height;
    return roundUp(longer, 4) * 52 + size.height * 12 + 84;
}

// A size whose buffer size no caller can ask for is refused; the others' counts stay far inside 32 bits.
Checks& requireBufferSize(Checks& checks, Size size) {
    return checks.require(bufferBytes(size) <= INT32_MAX, okpStatusSizeTooLarge);
}

// Whether rounding cannot change a result. Below this size all sums are exact, and a bound, being at most the
// width in question, is off by less than 2^-12. A bound is a multiple of 0.5 / n, n below 2^11, so it is
// either equal to a pixel, where both parabolas have the same value, or further from it than it is off. Any
// way to the lowest parabola then gives the same distance.
constexpr bool isRoundingHarmless(Size size) {
    return size.width < 2048 && size.height < 2048;
}

OKPCV_INLINE Vec<float> square(Vec<int32_t> n) {
    const Vec<float> v = toFloat(n);
    return v * v;
}

// Up the columns: how many pixels down to the nearest zero pixel, at least `height` where there is none.
void countUp(Image<const uint8_t> src, Image<int32_t> counts, Size size) {
    const auto counted = [](Vec<int32_t> below, const uint8_t* s, auto extent) {
        const Vec<int32_t> isZero = equal(loadAs<int32_t>(s, extent), zeros<int32_t>());
        return andNot(below + broadcast<int32_t>(1), isZero);
    };
    const auto first = [&](auto extent, int32_t* count, const uint8_t* s) {
        store(count, counted(broadcast(static_cast<int32_t>(size.height - 1)), s, extent), extent);
    };
    const auto next = [&](auto extent, int32_t* count, const int32_t* below, const uint8_t* s) {
        store(count, counted(load(below, extent), s, extent), extent);
    };
    int64_t y = size.height - 1;
    mapRow<kLanes>(size.width, first, counts.row(y), src.row(y));
    while (--y >= 0) mapRow<kLanes>(size.width, next, counts.row(y), counts.row(y + 1), src.row(y));
}

// Down the columns by one row: the distances to the nearest zero pixel of the column, their squares, and the
// sums that the envelope needs.
void stepDown(const int32_t* counts, Size size, const Scratch& s) {
    const auto largest = broadcast(static_cast<int32_t>(size.height - 1));
    Vec<int32_t> q = laneNumbers<int32_t>();
    const auto kernel = [&](auto extent, int32_t* running, const int32_t* count, float* f, float* sums) {
        const Vec<int32_t> d = min(load(running, extent) + broadcast<int32_t>(1), load(count, extent));
        store(running, d, extent);
        const Vec<float> isNone = bitCast<float>(greater(d, largest));
        const Vec<float> squared = select(isNone, broadcast(kNone), square(d));
        store(f, squared, extent);
        store(sums, squared + square(q), extent);
        q = q + broadcast<int32_t>(kLanes);
    };
    mapRow<kLanes>(size.width, kernel, s.running, counts, s.f, s.sums);
}

// Lists the parabolas that may be the lowest somewhere; returns how many. Left out are those of columns
// without zero pixels; those that nowhere fall below one of two at the same distance to the left and right,
// which is 2 f(q) - f(q - n) - f(q + n) >= 2 n^2; and those of zero pixels between zero pixels, where the
// result is known. Of the lowest parabolas at any other pixel the outermost are listed: for those one of the
// two is higher there, so the first rule does not hold.
int64_t listParabolas(int64_t width, const Scratch& s) {
    int64_t count = 0;
    const Vec<int32_t> lanes = laneNumbers<int32_t>();
    for (int64_t q = 0; q < width; q += kLanes) {
        const Vec<float> f = load(s.f + q);
        const Vec<float> twice = f + f;
        const Vec<float> around = load(s.f + q - 1) + load(s.f + q + 1);
        Vec<float> isUseless = equal(around + f, zeros<float>()) | equal(f, broadcast(kNone));
        for (const int n : kSpans) {
            const Vec<float> depth = (twice - load(s.f + q - n)) - load(s.f + q + n);
            isUseless = isUseless | greaterEqual(depth, broadcast(static_cast<float>(2 * n * n)));
        }
        const uint32_t listed = laneBits(~isUseless);
        store(s.positions + count, packLanes(lanes + broadcast(static_cast<int32_t>(q)), listed));
        count += __builtin_popcount(listed);
    }
    if (count == 0) s.positions[count++] = 0;
    return count;
}

// Lists all of them.
int64_t listAllParabolas(int64_t width, const Scratch& s) {
    for (int64_t q = 0; q < width; ++q) s.positions[q] = static_cast<int32_t>(q);
    return width;
}

// The envelope of the listed parabolas, which takes their place; returns how many it has.
int64_t buildEnvelope(int64_t listed, const Scratch& s) {
    // The last parabola of the envelope, and its copies.
    int64_t top = 0;
    int32_t position = s.positions[0];
    float sum = s.sums[position];
    float bound = -kNone;
    s.bounds[0] = bound;
    for (int64_t i = 1; i < listed; ++i) {
        const int32_t q = s.positions[i];
        const float sumQ = s.sums[q];
        float meets = (sumQ - sum) * s.halfReciprocals[q - position];
        // Ends at the first parabola at the latest: its bound is below any difference of two sums.
        while (meets <= bound) {
            --top;
            position = s.positions[top];
            bound = s.bounds[top];
            meets = (sumQ - s.sums[position]) * s.halfReciprocals[q - position];
        }
        ++top;
        s.positions[top] = position = q;
        s.bounds[top] = bound = meets;
        sum = sumQ;
    }
    return top + 1;
}

// The root of the lowest parabola's value at every pixel of the row.
void evaluateEnvelope(int64_t width, int64_t count, bool zerosAreKnown, const Scratch& s, float* roots) {
    const auto clear = [](auto extent, int32_t* p) { store(p, zeros<int32_t>(), extent); };
    mapRow<kLanes>(width, clear, s.lowest);
    const auto last = static_cast<float>(width - 1);
    for (int64_t k = 0; k < count; ++k) {
        const float bound = s.bounds[k];
        if (!(bound < last)) break;
        s.lowest[bound < 0 ? 0 : static_cast<int32_t>(bound) + 1] = s.positions[k];
    }
    // From there on the parabola is the lowest until a later one is.
    const Vec<float> known = zerosAreKnown ? ~zeros<float>() : zeros<float>();
    Vec<int32_t> before = zeros<int32_t>();
    Vec<int32_t> x = laneNumbers<int32_t>();
    const auto kernel = [&](auto extent, float* root, const int32_t* lowest, const float* f) {
        const Vec<int32_t> position = max(prefixMax(load(lowest, extent)), before);
        before = broadcastLast(position);
        const Vec<float> squared = gather(s.f, position) + square(x - position);
        const Vec<float> isZero = equal(load(f, extent), zeros<float>()) & known;
        store(root, andNot(sqrt(squared), isZero), extent);
        x = x + broadcast<int32_t>(kLanes);
    };
    mapRow<kLanes>(width, kernel, roots, s.lowest, s.f);
}

void transform(Image<const uint8_t> src, Image<float> dst, Size size, const Scratch& s) {
    for (int64_t n = 1; n < size.width; ++n) {
        s.halfReciprocals[n] = static_cast<float>(0.5 / static_cast<double>(n));
    }
    for (int64_t x = 0; x < size.width; ++x) s.running[x] = static_cast<int32_t>(size.height - 1);
    for (int64_t i = 0; i < kLongestSpan; ++i) s.f[-1 - i] = kNone;
    for (int64_t i = 0; i < kLongestSpan + kLanes; ++i) s.f[size.width + i] = kNone;

    // Between the passes a row of the destination holds its counts.
    const Image<int32_t> counts{reinterpret_cast<int32_t*>(dst.data), dst.step};
    countUp(src, counts, size);
    const bool selects = isRoundingHarmless(size);
    for (int64_t y = 0; y < size.height; ++y) {
        stepDown(counts.row(y), size, s);
        const int64_t listed = selects ? listParabolas(size.width, s) : listAllParabolas(size.width, s);
        evaluateEnvelope(size.width, buildEnvelope(listed, s), selects, s, dst.row(y));
    }
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(RoiSize roiSize, int32_t* pBufferSize) {
    const Size size = roiSize;
    Checks checks;
    requireBufferSize(checks.pointers(pBufferSize).size(size), size);
    if (checks.failed()) return checks.status();
    *pBufferSize = static_cast<int32_t>(bufferBytes(size));
    return okpStatusOk;
}

okpStatus okpiTrueDistanceTransform_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                              int32_t dstStep, RoiSize roiSize, uint8_t* pBuffer) {
    const Image<const uint8_t> src{pSrc, srcStep};
    const Image<float> dst{pDst, dstStep};
    const Size size = roiSize;
    Checks checks;
    requireBufferSize(checks.pointers(pSrc, pDst, pBuffer).size(size).steps(size, src, dst), size);
    if (checks.failed()) return checks.status();

    Area area(pBuffer);
    transform(src, dst, size, layOut(area, size));
    return okpStatusOk;
}
