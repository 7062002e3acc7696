// The Canny edge detector behind all of its exports: gradient magnitudes and directions of each row,
// suppression of all but the ridges' pixels, and hysteresis (Canny, "A Computational Approach to Edge
// Detection", IEEE Transactions on Pattern Analysis and Machine Intelligence 8, 1986).
//
// Bound by operations: per vector of four magnitudes about a dozen for magnitude and direction and thirty for
// the suppression, a cycle or two per pixel in all. Both are skipped for groups of pixels whose magnitudes
// are all below the low threshold, so a picture of few edges costs little more than its magnitudes.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/area.h"
#include "core/cache.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"

namespace okpcv::canny {

// ---- Magnitudes and directions --------------------------------------------------------------------------

// A direction is three bits of a byte, placed so that shifts bring each to the sign of a 32-bit lane. Without
// Horizontal and Vertical the gradient is diagonal: up-left to down-right, or with Opposed up-right to
// down-left.
inline constexpr int32_t kOpposed = 128;
inline constexpr int32_t kHorizontal = 64;
inline constexpr int32_t kVertical = 32;
// Set wherever the magnitude is not 0, so that a group without magnitudes has directions of 0 only.
inline constexpr int32_t kPresent = 16;

inline constexpr double kTan67 = 2.414213562373095;
inline constexpr double kTan22 = 0.41421356237309503;

// What is left of magnitudes below the low threshold is 0; edges start where they exceed the high one.
template <class M>
struct Thresholds;

// Integer magnitudes pass when they exceed the truncated low threshold.
template <>
struct Thresholds<int32_t> {
    // Beyond the integers, where NaN belongs too, nothing passes.
    Thresholds(float low, float high, bool squared)
        : low_(low < 2147483648.0F ? static_cast<int32_t>(low) : INT32_MAX), high_(high) {
        // No square exceeds that of the sum, so when the sum does not exceed the root, the square does not
        // pass.
        const auto least = squared ? static_cast<int32_t>(__builtin_sqrt(low_)) : low_;
        leastSum_ = static_cast<uint16_t>(least < UINT16_MAX ? least : UINT16_MAX - 1);
    }
    OKPCV_INLINE Vec<int32_t> keep(Vec<int32_t> m) const { return m & greater(m, broadcast(low_)); }
    OKPCV_INLINE Vec<int32_t> areStrong(Vec<int32_t> m) const {
        return bitCast<int32_t>(greater(toFloat(m), broadcast(high_)));
    }
    // Whether no sum of absolute derivatives, saturated to 16 bits, may belong to a magnitude that passes.
    OKPCV_INLINE bool refuseAll(Vec<uint16_t> sums) const {
        return !anyBit(subSaturated(sums, broadcast(leastSum_)));
    }

    int32_t low_;
    float high_;
    uint16_t leastSum_;
};

// Float magnitudes pass when they are not below the low threshold.
template <>
struct Thresholds<float> {
    Thresholds(float low, float high, bool) : low_(low), high_(high) {}
    OKPCV_INLINE Vec<float> keep(Vec<float> m) const { return m & greaterEqual(m, broadcast(low_)); }
    OKPCV_INLINE Vec<int32_t> areStrong(Vec<float> m) const {
        return bitCast<int32_t>(greater(m, broadcast(high_)));
    }
    float low_, high_;
};

// Pixels that are treated together: a vector of bytes, four (or as many as it takes) vectors of magnitudes.
inline constexpr int kGroup = Vec<uint8_t>::lanes;
inline constexpr int kLanes = Vec<int32_t>::lanes;
inline constexpr int kParts = kGroup / kLanes;

// A group of gradients of 16-bit derivatives.
struct IntegerGradients {
    using Derivative = int16_t;
    using Magnitude = int32_t;

    template <class Extent>
    OKPCV_INLINE IntegerGradients(const int16_t* dx, const int16_t* dy, Extent extent) {
        for (int i = 0; i < kHalves; ++i) {
            x[i] = load(dx + i * kHalfLanes, extent.from(i * kHalfLanes));
            y[i] = load(dy + i * kHalfLanes, extent.from(i * kHalfLanes));
        }
    }

    // A quick test that spares most groups of a picture everything else.
    OKPCV_INLINE bool isBelow(const Thresholds<int32_t>& thresholds) const {
        Vec<uint16_t> largest = zeros<uint16_t>();
        for (int i = 0; i < kHalves; ++i) {
            largest = max(largest, addSaturated(bitCast<uint16_t>(abs(x[i])), bitCast<uint16_t>(abs(y[i]))));
        }
        return thresholds.refuseAll(largest);
    }

    // |dx| + |dy|.
    OKPCV_INLINE void sumMagnitudes(Vec<int32_t> (&m)[kParts]) const {
        for (int i = 0; i < kParts; ++i) m[i] = absolutes(x, i) + absolutes(y, i);
    }
    // dx * dx + dy * dy. The one sum that exceeds 32 bits, 2^31, becomes the number below it: no other sum is
    // that large, and as a float it is the same.
    OKPCV_INLINE void squareMagnitudes(Vec<int32_t> (&m)[kParts]) const {
        for (int i = 0; i < kParts; ++i) {
            const Vec<int16_t> pairs =
                i % 2 == 0 ? interleaveLow(x[i / 2], y[i / 2]) : interleaveHigh(x[i / 2], y[i / 2]);
            const Vec<int32_t> sum = mulAddPairs(pairs, pairs);
            m[i] = sum ^ shiftRight(sum, 31);
        }
    }

    // The products with the tangents are to be formed in double precision and rounded to single. For the
    // 32769 absolute values there are, this sum of two single-precision products lies on the same side of
    // every integer.
    OKPCV_INLINE Vec<int32_t> directions(int i) const {
        const Vec<float> ax = toFloat(absolutes(x, i));
        const Vec<float> ay = toFloat(absolutes(y, i));
        const Vec<float> low = ax * broadcast(kTanLow);
        const Vec<float> vertical = greater(ay, ax * broadcast(kTan67High) + low);
        const Vec<float> horizontal = greater(ax * broadcast(kTan22High) + low, ay);
        const Vec<int32_t> opposed = shiftRight(widen(x[i / 2] ^ y[i / 2], i), 31);
        return (bitCast<int32_t>(vertical) & broadcast(kVertical)) |
               (bitCast<int32_t>(horizontal) & broadcast(kHorizontal)) | (opposed & broadcast(kOpposed));
    }

  private:
    static constexpr int kHalfLanes = Vec<int16_t>::lanes;
    static constexpr int kHalves = kGroup / kHalfLanes;
    // The first nine bits of each tangent and the rest, which is the same for both.
    static constexpr float kTan67High = 2.4140625F;
    static constexpr float kTan22High = 0.4140625F;
    static constexpr float kTanLow = static_cast<float>(kTan22 - double{kTan22High});

    static OKPCV_INLINE Vec<int32_t> widen(Vec<int16_t> v, int part) {
        return part % 2 == 0 ? widenLow<int32_t>(v) : widenHigh<int32_t>(v);
    }
    static OKPCV_INLINE Vec<int32_t> absolutes(const Vec<int16_t> (&v)[kHalves], int part) {
        const Vec<uint16_t> a = bitCast<uint16_t>(abs(v[part / 2]));
        return part % 2 == 0 ? widenLow<int32_t>(a) : widenHigh<int32_t>(a);
    }

    Vec<int16_t> x[kHalves], y[kHalves];
};

// A group of gradients of float derivatives.
struct FloatGradients {
    using Derivative = float;
    using Magnitude = float;

    template <class Extent>
    OKPCV_INLINE FloatGradients(const float* dx, const float* dy, Extent extent) {
        for (int i = 0; i < kParts; ++i) {
            x[i] = load(dx + i * kLanes, extent.from(i * kLanes));
            y[i] = load(dy + i * kLanes, extent.from(i * kLanes));
        }
    }

    OKPCV_INLINE bool isBelow(const Thresholds<float>&) const { return false; }

    OKPCV_INLINE void sumMagnitudes(Vec<float> (&m)[kParts]) const {
        for (int i = 0; i < kParts; ++i) m[i] = abs(x[i]) + abs(y[i]);
    }
    OKPCV_INLINE void squareMagnitudes(Vec<float> (&m)[kParts]) const {
        for (int i = 0; i < kParts; ++i) m[i] = x[i] * x[i] + y[i] * y[i];
    }

    OKPCV_INLINE Vec<int32_t> directions(int i) const {
        const Vec<float> ax = abs(x[i]);
        const Vec<float> ay = abs(y[i]);
        const Vec<float> vertical = greater(ay, product(ax, kTan67));
        const Vec<float> horizontal = greater(product(ax, kTan22), ay);
        const Vec<float> opposed = less(x[i], zeros<float>()) ^ less(y[i], zeros<float>());
        return (bitCast<int32_t>(vertical) & broadcast(kVertical)) |
               (bitCast<int32_t>(horizontal) & broadcast(kHorizontal)) |
               (bitCast<int32_t>(opposed) & broadcast(kOpposed));
    }

  private:
    static OKPCV_INLINE Vec<float> product(Vec<float> a, double factor) {
        return narrow(widenLow<double>(a) * broadcast(factor), widenHigh<double>(a) * broadcast(factor));
    }

    Vec<float> x[kParts], y[kParts];
};

// ---- The work buffer ------------------------------------------------------------------------------------

// Bytes of the candidate map.
inline constexpr uint8_t kCandidate = 128;  // survived the suppression
inline constexpr uint8_t kEdge = 255;

template <class M, class Index>
struct Workspace {
    uint8_t* map;            // width + 2 by height + 2: a frame of zeros keeps hysteresis inside
    M* magnitudes[3];        // width + 2 each, of which the first and the last stay 0
    uint8_t* directions[2];  // width each
    Index* stack;            // places in the map of edge pixels yet to be followed; each pixel once
};

constexpr int64_t mapBytes(Size size) {
    return (size.width + 2) * (size.height + 2);
}

template <class M, class Index>
Workspace<M, Index> layOut(Area& area, Size size) {
    Workspace<M, Index> work;
    work.map = area.take<uint8_t>(mapBytes(size), 32);
    for (M*& row : work.magnitudes) row = area.take<M>(size.width + 2);
    work.stack = area.take<Index>(size.width * size.height);
    for (uint8_t*& row : work.directions) row = area.take<uint8_t>(size.width);
    return work;
}

// ---- The detector ---------------------------------------------------------------------------------------

// Derivatives that the caller gives.
template <class T>
struct GivenDerivatives {
    Image<const T> dx, dy;
    // Calls body(dx, dy) with row y of both.
    template <class Body>
    OKPCV_INLINE void row(int64_t y, Body body) {
        body(dx.row(y), dy.row(y));
    }
};

template <class Gradients, class Index, class Derivatives>
class Detector {
  public:
    using M = typename Gradients::Magnitude;

    Detector(Derivatives& derivatives, Image<uint8_t> dst, Size size, bool squared, Thresholds<M> thresholds,
             const Workspace<M, Index>& work)
        : derivatives_(derivatives),
          dst_(dst),
          size_(size),
          squared_(squared),
          thresholds_(thresholds),
          work_(work),
          stackTop_(work.stack) {}

    void run() {
        clear();
        for (int64_t y = 0; y < size_.height; ++y) {
            measure(y);
            if (y > 0) suppress(y - 1);
        }
        // Below the last row all is zero.
        std::memset(magnitudes(size_.height), 0, rowBytes());
        suppress(size_.height - 1);
        follow();
        writeEdges();
    }

  private:
    size_t rowBytes() const { return static_cast<size_t>(size_.width + 2) * sizeof(M); }
    M* magnitudes(int64_t y) const { return work_.magnitudes[(y + 3) % 3]; }
    uint8_t* directions(int64_t y) const { return work_.directions[y % 2]; }
    uint8_t* mapRow(int64_t y) const { return work_.map + (y + 1) * (size_.width + 2) + 1; }

    void clear() {
        std::memset(work_.map, 0, static_cast<size_t>(mapBytes(size_)));
        for (M* row : work_.magnitudes) std::memset(row, 0, rowBytes());
    }

    // Magnitudes and directions of row y.
    void measure(int64_t y) {
        M* const magnitude = magnitudes(y) + 1;
        uint8_t* const direction = directions(y);
        derivatives_.row(y, [&](const auto* dx, const auto* dy) {
            const auto kernel = [&](auto extent, M* mOut, uint8_t* dOut, const auto* xIn, const auto* yIn) {
                const Gradients gradients(xIn, yIn, extent);
                Vec<M> m[kParts] = {zeros<M>(), zeros<M>(), zeros<M>(), zeros<M>()};
                Vec<uint8_t> d = zeros<uint8_t>();
                if (!gradients.isBelow(thresholds_)) {
                    if (squared_) {
                        gradients.squareMagnitudes(m);
                    } else {
                        gradients.sumMagnitudes(m);
                    }
                    for (Vec<M>& part : m) part = thresholds_.keep(part);
                    d = groupDirections(gradients, m);
                }
                for (int i = 0; i < kParts; ++i) store(mOut + i * kLanes, m[i], extent.from(i * kLanes));
                store(dOut, d, extent);
            };
            okpcv::mapRow<kGroup>(size_.width, kernel, magnitude, direction, dx, dy);
        });
    }

    static OKPCV_INLINE Vec<uint8_t> groupDirections(const Gradients& gradients, const Vec<M> (&m)[kParts]) {
        static_assert(kParts == 4);
        const auto part = [&](int i) {
            const Vec<int32_t> none = bitCast<int32_t>(equal(m[i], zeros<M>()));
            return andNot(gradients.directions(i) | broadcast(kPresent), none);
        };
        return narrowSaturated<uint8_t>(narrowSaturated<int16_t>(part(0), part(1)),
                                        narrowSaturated<int16_t>(part(2), part(3)));
    }

    // Marks what survives in row y, and starts edges at the strong ones.
    void suppress(int64_t y) {
        const M* const above = magnitudes(y - 1) + 1;
        const M* const here = magnitudes(y) + 1;
        const M* const below = magnitudes(y + 1) + 1;
        const auto kernel = [&](auto extent, uint8_t* map, const uint8_t* direction, const M* up, const M* m,
                                const M* down) {
            if (!anyBit(load(direction, extent))) return;
            Vec<int32_t> survivors[kParts], strong[kParts];
            for (int i = 0; i < kParts; ++i) {
                const int x = i * kLanes;
                const auto part = extent.from(x);
                const Vec<M> centre = load(m + x, part);
                survivors[i] =
                    ridge(centre, up + x, m + x, down + x, loadAs<int32_t>(direction + x, part), part);
                strong[i] = survivors[i] & thresholds_.areStrong(centre);
            }
            const Vec<uint8_t> edges = toBytes(strong);
            store(map, (toBytes(survivors) & broadcast(kCandidate)) | edges, extent);
            for (uint32_t lanes = laneBits(edges); lanes != 0; lanes &= lanes - 1) {
                push(map + __builtin_ctz(lanes));
            }
        };
        okpcv::mapRow<kGroup>(size_.width, kernel, mapRow(y), directions(y), above, here, below);
    }

    // Truth values of a group's lanes as bytes.
    static OKPCV_INLINE Vec<uint8_t> toBytes(const Vec<int32_t> (&v)[kParts]) {
        return bitCast<uint8_t>(narrowSaturated<int8_t>(narrowSaturated<int16_t>(v[0], v[1]),
                                                        narrowSaturated<int16_t>(v[2], v[3])));
    }

    // Which magnitudes exceed both neighbours along the gradient. Off the diagonals the neighbour to the
    // right or below may be equal.
    template <class Extent>
    static OKPCV_INLINE Vec<int32_t> ridge(Vec<M> m, const M* up, const M* here, const M* down,
                                           Vec<int32_t> direction, Extent extent) {
        // The sign bit of a lane decides a selection between floats.
        const Vec<float> opposed = bitCast<float>(shiftLeft(direction, 24));
        const Vec<float> horizontal = bitCast<float>(shiftLeft(direction, 25));
        const Vec<float> vertical = bitCast<float>(shiftLeft(direction, 26));
        const auto at = [&](const M* p) { return bitCast<float>(load(p, extent)); };
        Vec<float> previous = select(opposed, at(up + 1), at(up - 1));
        Vec<float> next = select(opposed, at(down - 1), at(down + 1));
        previous = select(horizontal, at(here - 1), previous);
        next = select(horizontal, at(here + 1), next);
        previous = select(vertical, at(up), previous);
        next = select(vertical, at(down), next);
        const Vec<int32_t> straight = shiftRight(bitCast<int32_t>(horizontal | vertical), 31);
        const Vec<M> after = bitCast<M>(next);
        const auto truth = [](Vec<M> v) { return bitCast<int32_t>(v); };
        return truth(greater(m, bitCast<M>(previous))) &
               (truth(greater(m, after)) | (truth(equal(m, after)) & straight));
    }

    void push(const uint8_t* place) { *stackTop_++ = static_cast<Index>(place - work_.map); }

    // Hysteresis: what touches an edge and survived is an edge.
    void follow() {
        const int64_t step = size_.width + 2;
        const int64_t neighbours[] = {-step - 1, -step, -step + 1, -1, 1, step - 1, step, step + 1};
        while (stackTop_ != work_.stack) {
            uint8_t* const place = work_.map + *--stackTop_;
            for (const int64_t offset : neighbours) {
                if (place[offset] != kCandidate) continue;
                place[offset] = kEdge;
                push(place + offset);
            }
        }
    }

    // Edges become 255, all else 0.
    void writeEdges() {
        constexpr int64_t kSmallestStreamed = 524289;
        const auto kernel = [](auto extent, uint8_t* out, const uint8_t* map) {
            store(out, equal(load(map, extent), broadcast(kEdge)), extent);
        };
        const Image<const uint8_t> map{mapRow(0), size_.width + 2};
        if (streamsOutput(size_.width * size_.height, kSmallestStreamed)) {
            mapRowsStreamed<kGroup>(size_, kernel, dst_, map);
        } else {
            mapRows<kGroup>(size_, kernel, dst_, map);
        }
    }

    Derivatives& derivatives_;
    Image<uint8_t> dst_;
    Size size_;
    bool squared_;
    Thresholds<M> thresholds_;
    Workspace<M, Index> work_;
    Index* stackTop_;  // behind the last place
};

// Runs the detector in the next part of an area, with places of the map as wide as they must be.
template <class Gradients, class Derivatives>
void detect(Derivatives& derivatives, Image<uint8_t> dst, Size size, bool squared,
            Thresholds<typename Gradients::Magnitude> thresholds, Area& area) {
    using M = typename Gradients::Magnitude;
    const auto run = [&](const auto& work) {
        using Index = std::remove_pointer_t<decltype(work.stack)>;
        Detector<Gradients, Index, Derivatives>(derivatives, dst, size, squared, thresholds, work).run();
    };
    if (mapBytes(size) <= UINT32_MAX) {
        run(layOut<M, uint32_t>(area, size));
    } else {
        run(layOut<M, uint64_t>(area, size));
    }
}

}  // namespace okpcv::canny
