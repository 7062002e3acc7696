// The Canny edge detector behind all of its exports: gradient magnitudes and directions of each row,
// suppression of all but the ridges' pixels, and hysteresis (Canny, "A Computational Approach to Edge
// Detection", IEEE Transactions on Pattern Analysis and Machine Intelligence 8, 1986).
//
// Bound by operations: of most pixels of most pictures the magnitude is below the low threshold. So a scan
// without branches, a cycle for some six pixels, finds the groups of pixels that hold any other, and only
// these are measured and suppressed, at a cycle or two per pixel. Sums of integers are treated in 16 bits.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/area.h"
#include "core/cache.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"

namespace okpcv::canny {

// ---- Gradients and their directions ---------------------------------------------------------------------

// A direction is a few bits of a byte, placed so that shifts bring three of them to the byte's sign. Without
// Horizontal and Vertical the gradient is diagonal: up-left to down-right, or with Opposed up-right to
// down-left.
inline constexpr int kOpposed = 128;
inline constexpr int kHorizontal = 64;
inline constexpr int kVertical = 32;
inline constexpr int kStraight = 1;  // horizontal or vertical

inline constexpr double kTan67 = 2.414213562373095;
inline constexpr double kTan22 = 0.41421356237309503;

// Pixels that are treated together: a vector of bytes, of 16-bit lanes two vectors, of 32-bit lanes four.
inline constexpr int kGroup = Vec<uint8_t>::lanes;
template <class T>
inline constexpr int kParts = kGroup / Vec<T>::lanes;
template <class T>
using Parts = Vec<T>[kParts<T>];

// Truth values of a group's pixels as bytes. Any other number becomes one that is not 0 either.
OKPCV_INLINE Vec<uint8_t> toBytes(Vec<int16_t> low, Vec<int16_t> high) {
    return bitCast<uint8_t>(narrowSaturated<int8_t>(low, high));
}
OKPCV_INLINE Vec<uint8_t> toBytes(const Parts<uint16_t>& v) {
    return toBytes(bitCast<int16_t>(v[0]), bitCast<int16_t>(v[1]));
}
OKPCV_INLINE Vec<uint8_t> toBytes(const Parts<int32_t>& v) {
    return toBytes(narrowSaturated<int16_t>(v[0], v[1]), narrowSaturated<int16_t>(v[2], v[3]));
}

// The directions of a group. Of `opposed` only the signs count; nothing is vertical and horizontal.
OKPCV_INLINE Vec<uint8_t> combine(Vec<uint8_t> vertical, Vec<uint8_t> horizontal, Vec<uint8_t> opposed) {
    const auto bits = [](int v) { return broadcast(static_cast<uint8_t>(v)); };
    return (vertical & bits(kVertical | kStraight)) | (horizontal & bits(kHorizontal | kStraight)) |
           (opposed & bits(kOpposed));
}

// A group of gradients of 16-bit derivatives.
struct IntegerGradients {
    using Derivative = int16_t;

    template <class Extent>
    OKPCV_INLINE IntegerGradients(const int16_t* dx, const int16_t* dy, Extent extent) {
        for (int i = 0; i < kParts<int16_t>; ++i) {
            const int at = i * Vec<int16_t>::lanes;
            x[i] = load(dx + at, extent.from(at));
            y[i] = load(dy + at, extent.from(at));
        }
    }

    // |dx| and |dy|.
    OKPCV_INLINE Vec<uint16_t> absX(int i) const { return bitCast<uint16_t>(abs(x[i])); }
    OKPCV_INLINE Vec<uint16_t> absY(int i) const { return bitCast<uint16_t>(abs(y[i])); }

    // By how much |dx| + |dy|, as far as 16 bits hold it, exceeds a limit somewhere in the group.
    OKPCV_INLINE Vec<int16_t> sumsAbove(uint16_t limit) const {
        const Vec<uint16_t> sums = max(addSaturated(absX(0), absY(0)), addSaturated(absX(1), absY(1)));
        return bitCast<int16_t>(subSaturated(sums, broadcast(limit)));
    }

    OKPCV_INLINE Vec<uint8_t> directions() const {
        const Vec<uint16_t> largest = max(max(absX(0), absX(1)), max(absY(0), absY(1)));
        if (anyBit(subSaturated(largest, broadcast(kLargestShort))))
            return wideDirections(x[0], x[1], y[0], y[1]);
        Parts<uint16_t> vertical, notHorizontal;
        for (int i = 0; i < kParts<uint16_t>; ++i) {
            const Vec<int16_t> ax = abs(x[i]);
            const Vec<int16_t> ay = abs(y[i]);
            const Vec<int16_t> turn =
                bitCast<int16_t>(mulHigh(bitCast<uint16_t>(ax), broadcast(kTan22Of65536)));
            notHorizontal[i] = bitCast<uint16_t>(greater(ay, turn));
            vertical[i] = bitCast<uint16_t>(greater(ay, ax + ax + turn));
        }
        return combine(toBytes(vertical), ~toBytes(notHorizontal), toBytes(x[0] ^ y[0], x[1] ^ y[1]));
    }

    Vec<int16_t> x[kParts<int16_t>], y[kParts<int16_t>];

  private:
    // The products with the tangents are to be formed in double precision and rounded to single. Up to this
    // |dx| they lie between the same integers as the products with a tangent of 16 bits.
    static constexpr uint16_t kLargestShort = 1392;
    static constexpr uint16_t kTan22Of65536 = 27146;

    // The same in single precision, for all derivatives: of the 32769 absolute values there are, the sum of
    // two products lies on the same side of every integer.
    [[gnu::noinline]] static Vec<uint8_t> wideDirections(Vec<int16_t> x0, Vec<int16_t> x1, Vec<int16_t> y0,
                                                         Vec<int16_t> y1) {
        // The first nine bits of each tangent and the rest, which is the same for both.
        constexpr float kTan67High = 2.4140625F;
        constexpr float kTan22High = 0.4140625F;
        constexpr auto kTanLow = static_cast<float>(kTan22 - double{kTan22High});
        const Vec<uint16_t> xs[] = {bitCast<uint16_t>(abs(x0)), bitCast<uint16_t>(abs(x1))};
        const Vec<uint16_t> ys[] = {bitCast<uint16_t>(abs(y0)), bitCast<uint16_t>(abs(y1))};
        Parts<int32_t> vertical, horizontal;
        for (int i = 0; i < kParts<int32_t>; ++i) {
            const auto widened = [i](const auto& v) {
                return toFloat(i % 2 == 0 ? widenLow<int32_t>(v[i / 2]) : widenHigh<int32_t>(v[i / 2]));
            };
            const Vec<float> ax = widened(xs);
            const Vec<float> ay = widened(ys);
            const Vec<float> low = ax * broadcast(kTanLow);
            vertical[i] = bitCast<int32_t>(greater(ay, ax * broadcast(kTan67High) + low));
            horizontal[i] = bitCast<int32_t>(greater(ax * broadcast(kTan22High) + low, ay));
        }
        return combine(toBytes(vertical), toBytes(horizontal), toBytes(x0 ^ y0, x1 ^ y1));
    }
};

// A group of gradients of float derivatives.
struct FloatGradients {
    using Derivative = float;

    template <class Extent>
    OKPCV_INLINE FloatGradients(const float* dx, const float* dy, Extent extent) {
        for (int i = 0; i < kParts<float>; ++i) {
            const int at = i * Vec<float>::lanes;
            x[i] = load(dx + at, extent.from(at));
            y[i] = load(dy + at, extent.from(at));
        }
    }

    OKPCV_INLINE Vec<uint8_t> directions() const {
        Parts<int32_t> vertical, horizontal, opposed;
        for (int i = 0; i < kParts<float>; ++i) {
            const Vec<float> ax = abs(x[i]);
            const Vec<float> ay = abs(y[i]);
            vertical[i] = bitCast<int32_t>(greater(ay, product(ax, kTan67)));
            horizontal[i] = bitCast<int32_t>(greater(product(ax, kTan22), ay));
            opposed[i] = bitCast<int32_t>(less(x[i], zeros<float>()) ^ less(y[i], zeros<float>()));
        }
        return combine(toBytes(vertical), toBytes(horizontal), toBytes(opposed));
    }

    Vec<float> x[kParts<float>], y[kParts<float>];

  private:
    static OKPCV_INLINE Vec<float> product(Vec<float> a, double factor) {
        return narrow(widenLow<double>(a) * broadcast(factor), widenHigh<double>(a) * broadcast(factor));
    }
};

// ---- Magnitudes -----------------------------------------------------------------------------------------

// A measure makes a group's magnitudes of its gradients: numbers that order like the magnitudes, 0 for those
// that do not pass the low threshold. Its excess is not 0 where they exceed the high one and edges start. Its
// witnesses of a group are all 0 only if the magnitudes are.

// |dx| + |dy| of integers as 16-bit numbers: what exceeds the truncated low threshold. With a threshold of at
// least 1 the largest sum there is, 65536, fits.
class ShortSums {
  public:
    using Gradients = IntegerGradients;
    using Magnitude = uint16_t;

    static bool serves(float low) { return low >= 1.0F && low < 65535.0F; }
    ShortSums(float low, float high)
        : low_(static_cast<uint16_t>(low)),
          high_(high < 65536.0F ? static_cast<uint16_t>(static_cast<int32_t>(high) - low_) : UINT16_MAX) {}

    OKPCV_INLINE Vec<int16_t> witnesses(const IntegerGradients& g) const { return g.sumsAbove(low_); }
    OKPCV_INLINE void measure(const IntegerGradients& g, Parts<uint16_t>& m) const {
        for (int i = 0; i < kParts<uint16_t>; ++i) {
            // What |dx| does not use of the threshold goes off |dy|.
            const Vec<uint16_t> ax = g.absX(i);
            const Vec<uint16_t> low = broadcast(low_);
            m[i] = subSaturated(ax, low) + subSaturated(g.absY(i), subSaturated(low, ax));
        }
    }
    OKPCV_INLINE Vec<uint16_t> excess(Vec<uint16_t> m) const { return subSaturated(m, broadcast(high_)); }

  private:
    uint16_t low_, high_;
};

// |dx| + |dy| or dx * dx + dy * dy of integers.
class IntegerMagnitudes {
  public:
    using Gradients = IntegerGradients;
    using Magnitude = int32_t;

    // Beyond the integers, where NaN belongs too, nothing passes.
    IntegerMagnitudes(float low, float high, bool squared)
        : squared_(squared), low_(low < 2147483648.0F ? static_cast<int32_t>(low) : INT32_MAX), high_(high) {
        // No square exceeds that of the sum, so when the sum does not exceed the root, the square does not
        // pass.
        const auto least = squared ? static_cast<int32_t>(__builtin_sqrt(low_)) : low_;
        leastSum_ = static_cast<uint16_t>(least < UINT16_MAX ? least : UINT16_MAX - 1);
    }

    OKPCV_INLINE Vec<int16_t> witnesses(const IntegerGradients& g) const { return g.sumsAbove(leastSum_); }
    OKPCV_INLINE void measure(const IntegerGradients& g, Parts<int32_t>& m) const {
        for (int i = 0; i < kParts<int32_t>; ++i) {
            const Vec<int32_t> v = squared_ ? squares(g, i) : sums(g, i);
            m[i] = v & greater(v, broadcast(low_));
        }
    }
    OKPCV_INLINE Vec<int32_t> excess(Vec<int32_t> m) const {
        return bitCast<int32_t>(greater(toFloat(m), broadcast(high_)));
    }

  private:
    static OKPCV_INLINE Vec<int32_t> sums(const IntegerGradients& g, int i) {
        const auto widened = [i](Vec<uint16_t> v) {
            return i % 2 == 0 ? widenLow<int32_t>(v) : widenHigh<int32_t>(v);
        };
        return widened(g.absX(i / 2)) + widened(g.absY(i / 2));
    }
    // The one sum that exceeds 32 bits, 2^31, becomes the number below it: no other sum is that large, and as
    // a float it is the same.
    static OKPCV_INLINE Vec<int32_t> squares(const IntegerGradients& g, int i) {
        const Vec<int16_t> pairs =
            i % 2 == 0 ? interleaveLow(g.x[i / 2], g.y[i / 2]) : interleaveHigh(g.x[i / 2], g.y[i / 2]);
        const Vec<int32_t> sum = mulAddPairs(pairs, pairs);
        return sum ^ shiftRight(sum, 31);
    }

    bool squared_;
    int32_t low_;
    float high_;
    uint16_t leastSum_;
};

// The same of floats, which pass when they are not below the low threshold. Their bits, read as integers,
// order like the floats, none of which is negative or NaN.
class FloatMagnitudes {
  public:
    using Gradients = FloatGradients;
    using Magnitude = int32_t;

    FloatMagnitudes(float low, float high, bool squared) : squared_(squared), low_(low), high_(high) {}

    OKPCV_INLINE Vec<int16_t> witnesses(const FloatGradients& g) const {
        Parts<int32_t> m;
        measure(g, m);
        return bitCast<int16_t>((m[0] | m[1]) | (m[2] | m[3]));
    }
    OKPCV_INLINE void measure(const FloatGradients& g, Parts<int32_t>& m) const {
        for (int i = 0; i < kParts<float>; ++i) {
            const Vec<float> v = squared_ ? g.x[i] * g.x[i] + g.y[i] * g.y[i] : abs(g.x[i]) + abs(g.y[i]);
            m[i] = bitCast<int32_t>(v & greaterEqual(v, broadcast(low_)));
        }
    }
    OKPCV_INLINE Vec<int32_t> excess(Vec<int32_t> m) const {
        return bitCast<int32_t>(greater(bitCast<float>(m), broadcast(high_)));
    }

  private:
    bool squared_;
    float low_, high_;
};

// ---- Ridges ---------------------------------------------------------------------------------------------

// Each byte of a group's part in all bytes of its lane.
template <class M>
OKPCV_INLINE Vec<M> spread(Vec<uint8_t> bytes, int part) {
    const bool first = part < kParts<M> / 2;
    const auto pairs = bitCast<uint16_t>(first ? interleaveLow(bytes, bytes) : interleaveHigh(bytes, bytes));
    if constexpr (sizeof(M) == 2) {
        return bitCast<M>(pairs);
    } else {
        return bitCast<M>(part % 2 == 0 ? interleaveLow(pairs, pairs) : interleaveHigh(pairs, pairs));
    }
}

// a where the signs of the choice's lanes are set, else b. All bytes of a lane hold the same bits, of which
// shifts may have mixed the lower ones.
OKPCV_INLINE Vec<uint16_t> choose(Vec<uint16_t> choice, Vec<uint16_t> a, Vec<uint16_t> b) {
    return bitCast<uint16_t>(select(bitCast<uint8_t>(choice), bitCast<uint8_t>(a), bitCast<uint8_t>(b)));
}
OKPCV_INLINE Vec<int32_t> choose(Vec<int32_t> choice, Vec<int32_t> a, Vec<int32_t> b) {
    return bitCast<int32_t>(select(bitCast<float>(choice), bitCast<float>(a), bitCast<float>(b)));
}

// Not 0 where m exceeds a, and either exceeds b or, where `tie` is 1, equals it. Nowhere does an m of 0.
OKPCV_INLINE Vec<uint16_t> exceeding(Vec<uint16_t> m, Vec<uint16_t> a, Vec<uint16_t> b, Vec<uint16_t> tie) {
    return subSaturated(m, max(a, subSaturated(b, tie)));
}
OKPCV_INLINE Vec<int32_t> exceeding(Vec<int32_t> m, Vec<int32_t> a, Vec<int32_t> b, Vec<int32_t> tie) {
    return greater(m, max(a, b - tie));
}

// Not 0 where magnitudes exceed both neighbours along the gradient. Off the diagonals the neighbour to the
// right or below may be equal.
template <class M, class Extent>
OKPCV_INLINE Vec<M> ridge(Vec<M> m, const M* up, const M* here, const M* down, Vec<M> direction,
                          Extent extent) {
    const Vec<M> horizontal = shiftLeft(direction, 1);
    const Vec<M> vertical = shiftLeft(direction, 2);
    const auto at = [&](const M* p) { return load(p, extent); };
    Vec<M> previous = choose(direction, at(up + 1), at(up - 1));
    Vec<M> next = choose(direction, at(down - 1), at(down + 1));
    previous = choose(horizontal, at(here - 1), previous);
    next = choose(horizontal, at(here + 1), next);
    previous = choose(vertical, at(up), previous);
    next = choose(vertical, at(down), next);
    return exceeding(m, previous, next, direction & broadcast(M{kStraight}));
}

// ---- The work buffer ------------------------------------------------------------------------------------

// Bytes of the candidate map.
inline constexpr uint8_t kCandidate = 128;  // survived the suppression
inline constexpr uint8_t kEdge = 255;

// Pixels whose groups a word of bits stands for.
inline constexpr int64_t kPixelsOfWord = int64_t{64} * kGroup;

template <class M, class Index>
struct Workspace {
    uint8_t* map;            // width + 2 by height + 2: a frame of zeros keeps hysteresis inside
    uint64_t* active[3];     // of the rows of magnitudes: a bit for each group that is not all 0
    M* magnitudes[3];        // width + 2 each, of which the first and the last stay 0
    uint8_t* directions[2];  // width each, written for active groups
    Index* stack;            // places in the map of edge pixels yet to be followed; each pixel once
};

constexpr int64_t mapBytes(Size size) {
    return (size.width + 2) * (size.height + 2);
}
constexpr int64_t activeWords(int64_t width) {
    return (width + kPixelsOfWord - 1) / kPixelsOfWord;
}

// The sizes that the queries report hold it: beside the map and the stack, of 4 or 8 bytes for each pixel,
// they leave 24 bytes for each column, of which this takes 14 and the rows of an image's derivatives 9.
template <class M, class Index>
Workspace<M, Index> layOut(Area& area, Size size) {
    Workspace<M, Index> work;
    work.map = area.take<uint8_t>(mapBytes(size), 32);
    for (uint64_t*& row : work.active) row = area.take<uint64_t>(activeWords(size.width));
    for (M*& row : work.magnitudes) row = area.take<M>(size.width + 2);
    work.stack = area.take<Index>(size.width * size.height);
    for (uint8_t*& row : work.directions) row = area.take<uint8_t>(size.width);
    return work;
}

// ---- The detector ---------------------------------------------------------------------------------------

// Where rows of horizontal and vertical derivatives come from. One detector serves all sources: it calls them
// by their address.
template <class T>
struct DerivativeRow {
    const T *dx, *dy;
};
template <class T>
struct DerivativeSource {
    void* rows;
    DerivativeRow<T> (*rowOf)(void* rows, int64_t y);
    DerivativeRow<T> row(int64_t y) const { return rowOf(rows, y); }
};
// Of anything with a member DerivativeRow<T> row(int64_t y).
template <class T, class Rows>
DerivativeSource<T> sourceOf(Rows& rows) {
    return {&rows, [](void* r, int64_t y) { return static_cast<Rows*>(r)->row(y); }};
}

// Derivatives that the caller gives.
template <class T>
struct GivenDerivatives {
    Image<const T> dx, dy;
    DerivativeRow<T> row(int64_t y) const { return {dx.row(y), dy.row(y)}; }
};

template <class Measure, class Index>
class Detector {
  public:
    using Gradients = typename Measure::Gradients;
    using T = typename Gradients::Derivative;
    using M = typename Measure::Magnitude;

    Detector(DerivativeSource<T> derivatives, Image<uint8_t> dst, Size size, const Measure& measure,
             const Workspace<M, Index>& work)
        : derivatives_(derivatives),
          dst_(dst),
          size_(size),
          measure_(measure),
          work_(work),
          stackTop_(work.stack) {}

    void run() {
        clear();
        for (int64_t y = 0; y < size_.height; ++y) {
            measure(y);
            if (y > 0) suppress(y - 1);
        }
        measureNothing(size_.height);  // below the last row all is 0
        suppress(size_.height - 1);
        follow();
        writeEdges();
    }

  private:
    M* magnitudes(int64_t y) const { return work_.magnitudes[(y + 3) % 3] + 1; }
    uint64_t* active(int64_t y) const { return work_.active[y % 3]; }
    uint8_t* directions(int64_t y) const { return work_.directions[y % 2]; }
    uint8_t* mapRow(int64_t y) const { return work_.map + (y + 1) * (size_.width + 2) + 1; }

    void clear() {
        std::memset(work_.map, 0, static_cast<size_t>(mapBytes(size_)));
        const auto words = static_cast<size_t>(activeWords(size_.width));
        for (uint64_t* row : work_.active) std::memset(row, 0, words * sizeof(uint64_t));
        const auto pixels = static_cast<size_t>(size_.width) + 2;
        for (M* row : work_.magnitudes) std::memset(row, 0, pixels * sizeof(M));
    }

    // Calls body(extent, x) for the groups of a word of bits, of which the first begins at `start`.
    template <class Body>
    OKPCV_INLINE void forGroups(uint64_t groups, int64_t start, const Body& body) const {
        for (; groups != 0; groups &= groups - 1) {
            const int64_t x = start + int64_t{__builtin_ctzll(groups)} * kGroup;
            if (x + kGroup <= size_.width) {
                body(Whole{}, x);
            } else {
                body(Part{static_cast<int>(size_.width - x)}, x);
            }
        }
    }

    // Finds the active groups of row y, and their magnitudes and directions. Groups that were active in the
    // row whose place this one takes are measured too, so that what is not active is 0.
    void measure(int64_t y) {
        const auto [dx, dy] = derivatives_.row(y);
        M* const magnitude = magnitudes(y);
        uint8_t* const direction = directions(y);
        // A copy, because to the compiler the rows may be anything.
        const auto kernel = [=, measure = measure_, dx = dx, dy = dy](auto extent, int64_t x) {
            const Gradients gradients(dx + x, dy + x, extent);
            Parts<M> m;
            measure.measure(gradients, m);
            for (int i = 0; i < kParts<M>; ++i) {
                const int at = i * Vec<M>::lanes;
                store(magnitude + x + at, m[i], extent.from(at));
            }
            store(direction + x, gradients.directions(), extent);
        };
        uint64_t* word = active(y);
        for (int64_t x = 0; x < size_.width; x += kPixelsOfWord, ++word) {
            const uint64_t groups = findActive(dx + x, dy + x, size_.width - x);
            forGroups(groups | *word, x, kernel);
            *word = groups;
        }
    }

    // The groups of a word that may hold a magnitude other than 0.
    uint64_t findActive(const T* dx, const T* dy, int64_t pixels) const {
        if (pixels > kPixelsOfWord) pixels = kPixelsOfWord;
        constexpr int kMany = Vec<int8_t>::lanes;
        uint64_t groups = 0;
        int group = 0;
        for (; (group + kMany) * kGroup <= pixels; group += kMany) {
            const auto found = bitCast<int8_t>(witnesses<kMany>(dx + group * kGroup, dy + group * kGroup));
            groups |= uint64_t{laneBits(~equal(found, zeros<int8_t>()))} << group;
        }
        const auto kernel = [&](auto extent, const T* xIn, const T* yIn) {
            const Vec<int16_t> found = measure_.witnesses(Gradients(xIn, yIn, extent));
            groups |= uint64_t{anyBit(found)} << group++;
        };
        const int64_t x = int64_t{group} * kGroup;
        okpcv::mapRow<kGroup>(pixels - x, kernel, dx + x, dy + x);
        return groups;
    }

    // The witnesses of so many groups in as many parts of a vector. Clamping makes nothing 0.
    template <int Groups>
    OKPCV_INLINE Vec<int16_t> witnesses(const T* dx, const T* dy) const {
        if constexpr (Groups == 1) {
            return measure_.witnesses(Gradients(dx, dy, Whole{}));
        } else {
            constexpr int kHalf = Groups / 2;
            const Vec<int16_t> low = witnesses<kHalf>(dx, dy);
            const Vec<int16_t> high = witnesses<kHalf>(dx + kHalf * kGroup, dy + kHalf * kGroup);
            return bitCast<int16_t>(narrowSaturated<int8_t>(low, high));
        }
    }

    // Makes the magnitudes in the place of row y all 0.
    void measureNothing(int64_t y) {
        std::memset(magnitudes(y), 0, static_cast<size_t>(size_.width) * sizeof(M));
    }

    // Marks what survives in row y, and starts edges at the strong ones.
    void suppress(int64_t y) {
        const M* const above = magnitudes(y - 1);
        const M* const here = magnitudes(y);
        const M* const below = magnitudes(y + 1);
        const uint8_t* const direction = directions(y);
        uint8_t* const map = mapRow(y);
        Index* top = stackTop_;
        const auto kernel = [=, &top, measure = measure_, mapStart = work_.map](auto extent, int64_t x) {
            const Vec<uint8_t> bytes = load(direction + x, extent);
            Parts<M> ridges, excesses;
            for (int i = 0; i < kParts<M>; ++i) {
                const int64_t at = x + i * Vec<M>::lanes;
                const auto part = extent.from(i * Vec<M>::lanes);
                const Vec<M> centre = load(here + at, part);
                ridges[i] = ridge(centre, above + at, here + at, below + at, spread<M>(bytes, i), part);
                excesses[i] = measure.excess(centre);
            }
            const Vec<uint8_t> off = equal(toBytes(ridges), zeros<uint8_t>());
            const Vec<uint8_t> weak = equal(toBytes(excesses), zeros<uint8_t>());
            const Vec<uint8_t> edges = ~(off | weak);
            store(map + x, andNot(broadcast(kCandidate), off) | edges, extent);
            top = push(top, map + x - mapStart, laneBits(edges));
        };
        const uint64_t* word = active(y);
        for (int64_t x = 0; x < size_.width; x += kPixelsOfWord) forGroups(*word++, x, kernel);
        stackTop_ = top;
    }

    // Pushes the places of a group's lanes.
    static OKPCV_INLINE Index* push(Index* top, int64_t group, uint32_t lanes) {
        for (; lanes != 0; lanes &= lanes - 1) {
            *top++ = static_cast<Index>(group + __builtin_ctz(lanes));
        }
        return top;
    }

    // Hysteresis: what touches an edge and survived is an edge.
    void follow() {
        const int64_t step = size_.width + 2;
        // In the order of the bytes of their word.
        const int64_t neighbours[] = {-step - 1, -step, -step + 1, step - 1, step, step + 1, -1, 1};
        uint8_t* const map = work_.map;
        const Index* const bottom = work_.stack;
        Index* top = stackTop_;
        while (top != bottom) {
            uint8_t* const place = map + *--top;
            // Of the values there are only a candidate has the highest bit but not the lowest.
            const uint64_t around = neighboursOf(place, step);
            uint64_t found = around >> 7 & ~around & 0x0101010101010101U;
            for (; found != 0; found &= found - 1) {
                uint8_t* const neighbour = place + neighbours[__builtin_ctzll(found) / 8];
                *neighbour = kEdge;
                *top++ = static_cast<Index>(neighbour - map);
            }
        }
    }

    // The eight bytes around a place. The fourth byte that each row's load reads is inside the map, too.
    static OKPCV_INLINE uint64_t neighboursOf(const uint8_t* place, int64_t step) {
        const uint64_t above = loadScalar<uint32_t>(place - step - 1) & 0xFFFFFFU;
        const uint64_t below = loadScalar<uint32_t>(place + step - 2) >> 8;
        const uint64_t sides = place[-1] | uint64_t{place[1]} << 8;
        return above | below << 24 | sides << 48;
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

    DerivativeSource<T> derivatives_;
    Image<uint8_t> dst_;
    Size size_;
    Measure measure_;
    Workspace<M, Index> work_;
    Index* stackTop_;  // behind the last place
};

// Runs the detector in the next part of an area, with places of the map as wide as they must be.
template <class T, class Measure>
void detect(DerivativeSource<T> derivatives, Image<uint8_t> dst, Size size, const Measure& measure,
            Area& area) {
    using M = typename Measure::Magnitude;
    if (mapBytes(size) <= UINT32_MAX) {
        Detector(derivatives, dst, size, measure, layOut<M, uint32_t>(area, size)).run();
    } else {
        Detector(derivatives, dst, size, measure, layOut<M, uint64_t>(area, size)).run();
    }
}

// Thresholds, squared where the magnitudes are squares.
struct Limits {
    float low, high;
    bool squared;
    Limits(float l, float h, bool isSquared)
        : low(isSquared ? l * l : l), high(isSquared ? h * h : h), squared(isSquared) {}
    bool areOrdered() const { return !(low < 0.0F) && !(low > high); }
};

// The same with the measure that serves derivatives of type T and the thresholds.
template <class T>
void detect(DerivativeSource<T> derivatives, Image<uint8_t> dst, Size size, const Limits& limits,
            Area& area) {
    const auto& [low, high, squared] = limits;
    if constexpr (kIsFloat<T>) {
        detect(derivatives, dst, size, FloatMagnitudes(low, high, squared), area);
    } else if (!squared && ShortSums::serves(low)) {
        detect(derivatives, dst, size, ShortSums(low, high), area);
    } else {
        detect(derivatives, dst, size, IntegerMagnitudes(low, high, squared), area);
    }
}

}  // namespace okpcv::canny
