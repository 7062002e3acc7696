// Chamfer distance transforms: D(x, y) is the cost of the cheapest path of weighted steps from a zero pixel,
// found in one pass from the top left and one back from the bottom right (A. Rosenfeld, J. L. Pfaltz,
// "Sequential operations in digital picture processing", 1966; G. Borgefors, "Distance transformations in
// digital images", 1986).
//
// What bounds a pass is that a pixel waits for its left neighbour, D(x) = min(v(x), D(x - 1) + a), where v is
// the minimum over the rows above. Adding a weight never changes the order of two values, so that recurrence
// is D(x) = min over k of v(x - k) + a + ... + a (k times): within a vector a prefix minimum in log2(lanes)
// steps, across vectors one carried value. Integer sums saturate, and k additions are one of k * a: the
// carried value costs three instructions per vector. Float sums round, and the k additions must be made one
// by one: there the carried value of one row leaves most of the processor idle, so several rows advance side
// by side, each behind the one it reads.
#include "core/checks.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "okpcv/distance.h"

namespace okpcv {
namespace {

// The distance of pixels that no path reaches, also of all that lie outside the image.
template <class T>
inline constexpr T kUnreachable = kLargest<T>;

// Columns that a mask reaches to either side.
constexpr int kReach = 2;

// ---- Weights --------------------------------------------------------------------------------------------

// Integer weights above the largest distance act like it, because sums saturate there.
template <class T>
constexpr T weightAs(int64_t weight) {
    return static_cast<T>(weight < kUnreachable<T> ? weight : kUnreachable<T>);
}

template <class T>
OKPCV_INLINE Vec<T> plus(Vec<T> distance, Vec<T> weight) {
    if constexpr (kIsFloat<T>) {
        return distance + weight;
    } else {
        return addSaturated(distance, weight);
    }
}

// The lesser of two distances. Floats that are not negative order like their bits, and minima of integers
// leave the units free that add floats.
template <class T>
OKPCV_INLINE Vec<T> lesser(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return bitCast<T>(min(bitCast<int32_t>(a), bitCast<int32_t>(b)));
    } else {
        return min(a, b);
    }
}

// Steps along a row, in the order in which its pixels are visited: from left to right when kForward.

// The lanes visited N before each of v's, which begin in the vector visited before it.
template <int N, bool kForward, class T>
OKPCV_INLINE Vec<T> lanesBefore(Vec<T> before, Vec<T> v) {
    if constexpr (kForward) {
        return slide<Vec<T>::lanes - N>(before, v);
    } else {
        return slide<N>(v, before);
    }
}

// operator()(before, v) is v with every lane lowered to what steps from any lane visited before it give,
// where `before` is the vector visited before.
template <class T, bool kForward>
class StraightSteps {
  public:
    explicit StraightSteps(int64_t a) {
        for (int i = 0; i < kDoublings; ++i) doubled_[i] = broadcast(weightAs<T>(a << i));
        T ramp[kLanes];
        for (int i = 0; i < kLanes; ++i) ramp[i] = weightAs<T>(a * (kForward ? i + 1 : kLanes - i));
        ramp_ = load(ramp);
    }
    OKPCV_INLINE Vec<T> operator()(Vec<T> before, Vec<T> v) const {
        const Vec<T> carried = kForward ? broadcastLast(before) : broadcastLane<0>(before);
        return lesser(along<1>(v), addSaturated(carried, ramp_));
    }

  private:
    // v lowered to what N, 2 * N, ... steps within the vector give.
    template <int N>
    OKPCV_INLINE Vec<T> along(Vec<T> v) const {
        if constexpr (N < kLanes) {
            const Vec<T> before = lanesBefore<N, kForward>(broadcast(kUnreachable<T>), v);
            return along<2 * N>(lesser(v, addSaturated(before, doubled_[__builtin_ctz(N)])));
        } else {
            return v;
        }
    }

    static constexpr int kLanes = Vec<T>::lanes;
    static constexpr int kDoublings = __builtin_ctz(kLanes);
    Vec<T> doubled_[kDoublings];
    Vec<T> ramp_;
};

template <bool kForward>
class StraightSteps<float, kForward> {
  public:
    explicit StraightSteps(float a) : a_(broadcast(a)) {
        constexpr int lanes = Vec<float>::lanes;
        float toFirst[lanes];
        for (float& weight : toFirst) weight = kUnreachable<float>;
        toFirst[kForward ? 0 : lanes - 1] = a;
        toFirst_ = load(toFirst);
    }
    OKPCV_INLINE Vec<float> operator()(Vec<float> before, Vec<float> v) const {
        const Vec<float> carried = kForward ? broadcastLast(before) : broadcastLane<0>(before);
        return along<1>(lesser(v, carried + toFirst_));
    }

  private:
    // The same. Lanes that have no N-th before them step from themselves, which lowers nothing.
    template <int N>
    OKPCV_INLINE Vec<float> along(Vec<float> v) const {
        if constexpr (N < Vec<float>::lanes) {
            Vec<float> stepped = kForward ? repeatLanesUp<N>(v) : repeatLanesDown<N>(v);
            for (int i = 0; i < N; ++i) stepped = stepped + a_;
            return along<2 * N>(lesser(v, stepped));
        } else {
            return v;
        }
    }

    Vec<float> a_;
    Vec<float> toFirst_;  // a step to the lane visited first, none to the others
};

// ---- Rows -----------------------------------------------------------------------------------------------

// Where a vector stands in its row: clear of both ends by the reach of the mask, or not.
struct Inside {};
struct AtEdge {
    int64_t width;
    OKPCV_INLINE int lanesFrom(int64_t x, int lanes) const {
        return static_cast<int>(width - x < lanes ? width - x : lanes);
    }
};

template <class T>
struct OutsideRow {
    T values[kReach + Vec<T>::lanes + kReach];
    constexpr OutsideRow() : values() {
        for (T& value : values) value = kUnreachable<T>;
    }
};
template <class T>
inline constexpr OutsideRow<T> kOutsideRow;

// A row of distances; outside the image every column is the same place.
template <class T>
struct Row {
    const T* data;
    int64_t columnMask;
    OKPCV_INLINE const T* at(int64_t x) const { return data + (x & columnMask); }
};
template <class T>
Row<T> rowOf(Image<T> image, Size size, int64_t y) {
    if (y < 0 || y >= size.height) return {kOutsideRow<T>.values + kReach, 0};
    return {image.row(y), -1};
}

// Unreachable in the lanes from `count` on, 0 before.
template <class T>
OKPCV_INLINE Vec<T> unreachableFrom(int count) {
    return greaterEqual(laneNumbers<T>(), broadcast(static_cast<T>(count))) & broadcast(kUnreachable<T>);
}

// The lanes of the row at column x + kOffset.
template <int kOffset, class T>
OKPCV_INLINE Vec<T> loadAt(Row<T> row, int64_t x, Inside) {
    return load(row.at(x) + kOffset);
}
template <int kOffset, class T>
OKPCV_INLINE Vec<T> loadAt(Row<T> row, int64_t x, AtEdge edge) {
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (kOffset < 0) {
        if (x == 0) return slide<lanes + kOffset>(broadcast(kUnreachable<T>), loadAt<0>(row, x, edge));
    }
    const int count = edge.lanesFrom(x + kOffset, lanes);
    if (count <= 0) return broadcast(kUnreachable<T>);
    return load(row.at(x) + kOffset, Part{count}) | unreachableFrom<T>(count);
}

// All ones in the lanes of zero pixels, and outside the image.
template <class T>
OKPCV_INLINE Vec<T> zeroPixels(const uint8_t* src, int64_t x, Inside) {
    using Lane = std::conditional_t<kIsFloat<T>, int32_t, T>;
    return bitCast<T>(equal(loadAs<Lane>(src + x), zeros<Lane>()));
}
template <class T>
OKPCV_INLINE Vec<T> zeroPixels(const uint8_t* src, int64_t x, AtEdge edge) {
    using Lane = std::conditional_t<kIsFloat<T>, int32_t, T>;
    const Part part{edge.lanesFrom(x, Vec<T>::lanes)};
    return bitCast<T>(equal(loadAs<Lane>(src + x, part), zeros<Lane>()));
}

template <class T>
OKPCV_INLINE void storeAt(T* row, int64_t x, Vec<T> v, Inside) {
    store(row + x, v);
}
template <class T>
OKPCV_INLINE void storeAt(T* row, int64_t x, Vec<T> v, AtEdge edge) {
    store(row + x, v, Part{edge.lanesFrom(x, Vec<T>::lanes)});
}

// One row of a pass: what it reads and writes.
template <class T>
struct RowVisit {
    const uint8_t* src;
    T* distances;
    Row<T> near, far;  // the row visited before this one, and the one before that
};

// ---- Passes ---------------------------------------------------------------------------------------------

template <class T, bool kKnight, bool kForward>
class Pass {
  public:
    template <class Weight>
    explicit Pass(const Weight* weights)
        : straight_(weights[0]), a_(weightOf(weights[0])), b_(weightOf(weights[1])), c_(a_) {
        if constexpr (kKnight) c_ = weightOf(weights[2]);
    }

    // Rows that are visited side by side, each this many vectors behind the one before. One vector would do
    // to be right; with a few more, loads rarely meet two stores that are still on their way to the cache.
    static constexpr int kRows = kIsFloat<T> ? 4 : 1;
    static constexpr int64_t kLag = 3;

    void run(Image<const uint8_t> src, Image<T> dst, Size size) const {
        constexpr int64_t toBefore = kForward ? -1 : 1;
        const auto visitOf = [&](int64_t i) {
            const int64_t y = kForward ? i : size.height - 1 - i;
            return RowVisit<T>{src.row(y), dst.row(y), rowOf(dst, size, y + toBefore),
                               rowOf(dst, size, y + 2 * toBefore)};
        };
        int64_t i = 0;
        if constexpr (kRows > 1) {
            for (; i + kRows <= size.height; i += kRows) {
                RowVisit<T> rows[kRows];
                for (int r = 0; r < kRows; ++r) rows[r] = visitOf(i + r);
                visitRows(rows, size.width);
            }
        }
        for (; i < size.height; ++i) {
            RowVisit<T> row[] = {visitOf(i)};
            visitRows(row, size.width);
        }
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;

    template <class Weight>
    static Vec<T> weightOf(Weight weight) {
        if constexpr (kIsFloat<T>) {
            return broadcast(weight);
        } else {
            return broadcast(weightAs<T>(weight));
        }
    }

    // Visits the vector at column x; `before` is what the visit before this one returned.
    template <class Where>
    OKPCV_INLINE Vec<T> visit(const RowVisit<T>& row, int64_t x, Vec<T> before, Where where) const {
        Vec<T> v = lesser(plus(loadAt<0>(row.near, x, where), a_),
                          plus(lesser(loadAt<-1>(row.near, x, where), loadAt<1>(row.near, x, where)), b_));
        if constexpr (kKnight) {
            const Vec<T> near = lesser(loadAt<-2>(row.near, x, where), loadAt<2>(row.near, x, where));
            const Vec<T> far = lesser(loadAt<-1>(row.far, x, where), loadAt<1>(row.far, x, where));
            v = lesser(v, plus(lesser(near, far), c_));
        }
        if constexpr (kForward) {
            // Integers are saturated already.
            if constexpr (kIsFloat<T>) v = lesser(v, broadcast(kUnreachable<T>));
            v = andNot(v, zeroPixels<T>(row.src, x, where));
        } else {
            v = lesser(v, loadAt<0>(Row<T>{row.distances, -1}, x, where));
            // Nothing comes back from outside the image.
            if constexpr (std::is_same_v<Where, AtEdge>) {
                v = max(v, unreachableFrom<T>(where.lanesFrom(x, kLanes)));
            }
        }
        v = straight_(before, v);
        storeAt(row.distances, x, v, where);
        return v;
    }

    // The rows, moved so that all are visited at the same column while each is kLag vectors behind the one
    // before. What a row reads is told by the rows that were visited before it.
    template <int N>
    static OKPCV_INLINE void alignRows(const RowVisit<T> (&rows)[N], RowVisit<T> (&inStep)[N]) {
        constexpr int64_t lag = (kForward ? -1 : 1) * kLag * kLanes;
        unrolled<N>([&](auto r) OKPCV_INLINE_LAMBDA {
            inStep[r].src = rows[r].src + r * lag;
            inStep[r].distances = rows[r].distances + r * lag;
            const auto before = [&](auto back, Row<T> row) OKPCV_INLINE_LAMBDA {
                if constexpr (r >= back) return Row<T>{inStep[r - back].distances + back * lag, -1};
                return Row<T>{row.data + (r * lag & row.columnMask), row.columnMask};
            };
            inStep[r].near = before(std::integral_constant<int, 1>{}, rows[r].near);
            inStep[r].far = before(std::integral_constant<int, 2>{}, rows[r].far);
        });
    }

    template <int N>
    OKPCV_INLINE void visitRows(RowVisit<T> (&rows)[N], int64_t width) const {
        const int64_t vectors = (width + kLanes - 1) / kLanes;
        // The vectors from 1 to clearEnd - 1 are clear of the edges. In the order of visits these are
        // clearFrom to clearTo - 1.
        const int64_t clearEnd = width < kReach ? 0 : (width - kReach) / kLanes;
        const int64_t clearFrom = kForward ? 1 : vectors - clearEnd;
        const int64_t clearTo = kForward ? clearEnd : vectors - 1;
        const auto column = [=](int64_t i) { return (kForward ? i : vectors - 1 - i) * kLanes; };

        const int64_t ticks = vectors + (N - 1) * kLag;
        const int64_t allClearFrom = clearFrom + (N - 1) * kLag;
        Vec<T> before[N];
        for (Vec<T>& v : before) v = broadcast(kUnreachable<T>);

        int64_t tick = 0;
        const auto visitUntil = [&](int64_t end) {
            for (; tick < end; ++tick) {
                for (int r = 0; r < N; ++r) {
                    const int64_t i = tick - r * kLag;
                    if (i < 0 || i >= vectors) continue;
                    if (i >= clearFrom && i < clearTo) {
                        before[r] = visit(rows[r], column(i), before[r], Inside{});
                    } else {
                        before[r] = visit(rows[r], column(i), before[r], AtEdge{width});
                    }
                }
            }
        };
        visitUntil(allClearFrom < ticks ? allClearFrom : ticks);
        // Copies stay in registers; what a pointer may reach is loaded again after every store.
        const Pass pass = *this;
        RowVisit<T> inStep[N];
        alignRows(rows, inStep);
        Vec<T> last[N];
        for (int r = 0; r < N; ++r) last[r] = before[r];
        for (; tick < clearTo; ++tick) {
            unrolled<N>([&](auto r) OKPCV_INLINE_LAMBDA {
                last[r] = pass.visit(inStep[r], column(tick), last[r], Inside{});
            });
        }
        for (int r = 0; r < N; ++r) before[r] = last[r];
        visitUntil(ticks);
    }

    StraightSteps<T, kForward> straight_;
    Vec<T> a_, b_, c_;
};

constexpr int weightCount(int32_t maskSize) {
    return maskSize == 3 ? 2 : 3;
}

// Whether a knight's step can be left out: when it costs no less than the two steps that replace it, and no
// straight step more than a diagonal one, so that the passes of the smaller mask find the cheapest path of
// all. The larger mask cannot find a cheaper one, nor, having all of the smaller one's neighbours, miss it.
// Float sums depend on how a path is split, so there this holds for no weights.
template <class T, class Weight>
constexpr bool isKnightUseless(const Weight* weights) {
    if constexpr (kIsFloat<T>) {
        return false;
    } else {
        return weights[0] <= weights[1] && weights[2] >= int64_t{weights[0]} + weights[1];
    }
}

template <class T, bool kKnight, class Weight>
void transform(Image<const uint8_t> src, Image<T> dst, Size size, const Weight* weights) {
    Pass<T, kKnight, true>(weights).run(src, dst, size);
    Pass<T, kKnight, false>(weights).run(src, dst, size);
}

template <class T, int kMask, class Weight>
okpStatus distanceTransform(Image<const uint8_t> src, Image<T> dst, RoiSize roiSize, const Weight* weights) {
    const Size size = roiSize;
    Checks checks;
    checks.pointers(src.data, dst.data, weights).size(size).steps(size, src, dst);
    if (checks.failed()) return checks.status();
    for (int i = 0; i < weightCount(kMask); ++i) {
        if (!(weights[i] > 0)) return okpStatusBadMetric;
    }

    if (kMask == 3 || isKnightUseless<T>(weights)) {
        transform<T, false>(src, dst, size, weights);
    } else {
        transform<T, kMask == 5>(src, dst, size, weights);
    }
    return okpStatusOk;
}

// ---- Weights of the common norms ------------------------------------------------------------------------

// By mask size, 3 x 3 and 5 x 5, and norm code: maximum, L1, L2.
template <class Weight>
using WeightTable = Weight[2][3][3];
constexpr WeightTable<float> kFloatWeights = {
    {{1.0F, 1.0F}, {1.0F, 2.0F}, {0.955F, 1.3693F}},
    {{1.0F, 1.0F, 2.0F}, {1.0F, 2.0F, 3.0F}, {1.0F, 1.4F, 2.1969F}}};
constexpr WeightTable<int32_t> kIntegerWeights = {{{1, 1}, {1, 2}, {2, 3}},
                                                  {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}}};

constexpr bool isMaskSize(int32_t size) {
    return size == 3 || size == 5;
}

template <class Weight>
void copyWeights(const WeightTable<Weight>& table, int32_t maskSize, int32_t norm, Weight* weights) {
    for (int i = 0; i < weightCount(maskSize); ++i) weights[i] = table[maskSize == 5][norm][i];
}

template <class Weight>
okpStatus normWeights(const WeightTable<Weight>& table, int32_t maskSize, int32_t norm, Weight* weights) {
    Checks checks;
    checks.pointers(weights)
        .require(isMaskSize(maskSize), okpStatusBadSize)
        .require(norm >= 0 && norm <= 2, okpStatusBadArgument);
    if (checks.failed()) return checks.status();
    copyWeights(table, maskSize, norm, weights);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiDistanceTransform_3x3_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, const int32_t* pMetrics) {
    return distanceTransform<uint8_t, 3>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_5x5_8u_C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                           int32_t dstStep, RoiSize roiSize, const int32_t* pMetrics) {
    return distanceTransform<uint8_t, 5>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_3x3_8u_C1IR(uint8_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                            const int32_t* pMetrics) {
    return distanceTransform<uint8_t, 3>({pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_5x5_8u_C1IR(uint8_t* pSrcDst, int32_t srcDstStep, RoiSize roiSize,
                                            const int32_t* pMetrics) {
    return distanceTransform<uint8_t, 5>({pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_3x3_8u16u_C1R(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                              int32_t dstStep, RoiSize roiSize, const int32_t* pMetrics) {
    return distanceTransform<uint16_t, 3>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_5x5_8u16u_C1R(const uint8_t* pSrc, int32_t srcStep, uint16_t* pDst,
                                              int32_t dstStep, RoiSize roiSize, const int32_t* pMetrics) {
    return distanceTransform<uint16_t, 5>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_3x3_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                              int32_t dstStep, RoiSize roiSize, const float* pMetrics) {
    return distanceTransform<float, 3>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiDistanceTransform_5x5_8u32f_C1R(const uint8_t* pSrc, int32_t srcStep, float* pDst,
                                              int32_t dstStep, RoiSize roiSize, const float* pMetrics) {
    return distanceTransform<float, 5>({pSrc, srcStep}, {pDst, dstStep}, roiSize, pMetrics);
}

okpStatus okpiGetDistanceTransformMask(int32_t maskType, float* pMetrics) {
    const int32_t maskSize = maskType / 10;
    const int32_t norm = maskType % 10;
    Checks checks;
    checks.require(norm <= 2, okpStatusBadArgument)
        .pointers(pMetrics)
        .require(isMaskSize(maskSize), okpStatusBadSize)
        .require(maskType >= 30 && maskType <= 52, okpStatusOutOfRange);
    if (checks.failed()) return checks.status();
    copyWeights(kFloatWeights, maskSize, norm, pMetrics);
    return okpStatusOk;
}

okpStatus okpiGetDistanceTransformMask_32f(int32_t kernelSize, int32_t norm, float* pMetrics) {
    return normWeights(kFloatWeights, kernelSize, norm, pMetrics);
}

okpStatus okpiGetDistanceTransformMask_32s(int32_t kernelSize, int32_t norm, int32_t* pMetrics) {
    return normWeights(kIntegerWeights, kernelSize, norm, pMetrics);
}
