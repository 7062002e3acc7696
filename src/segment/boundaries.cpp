// Segment boundaries: in a labelled image, every pixel that touches a differently labelled earlier neighbour
// is overwritten, where earlier neighbours are seen as they are after their own turn.
//
// What the row above says about a pixel is compared a vector at a time. The left neighbour makes a
// recurrence: with d where a pixel differs from its left neighbour and s where it is set in any case,
//     set(x) = s(x) or (d(x) and not set(x - 1)).
// It is solved for 64 pixels at once in the bits of a word. Bound by the comparisons, and by the stores where
// there are many boundaries.
#include <algorithm>
#include <bit>
#include <cstdint>

#include "core/checks.h"
#include "okpcv/segment.h"
#include "segment/pixel_bits.h"

namespace okpcv {
namespace {

// Bit i: whether an odd number of the bits 0 to i are set.
constexpr uint64_t parityUpTo(uint64_t bits) {
    for (int shift = 1; shift < kWordBits; shift *= 2) bits ^= bits << shift;
    return bits;
}

// Bit i: s(i) or (d(i) and not bit i - 1), where bit -1 is `before`.
constexpr uint64_t solve(uint64_t s, uint64_t d, uint64_t before) {
    // Where only d is set the result is the opposite of its left neighbour's: it is the result left of the
    // run of such bits, changed once per bit. That first result, compared with the parity there, is carried
    // through the run by an addition.
    const uint64_t flips = d & ~s;
    if (flips == 0) return s;
    const uint64_t parity = parityUpTo(flips);
    const uint64_t odd = (s ^ parity) & ~flips;
    const uint64_t starts = (odd << 1 | before) & flips;
    const uint64_t runs = flips & ~(flips + starts);
    return (flips & (runs ^ parity)) | (s & ~flips);
}

template <class T>
class BoundaryMarker {
  public:
    BoundaryMarker(Image<T> image, int32_t width, T value, bool diagonals)
        : image_(image), width_(width), value_(value), diagonals_(diagonals) {}

    void markRow(int32_t y) const {
        T* const row = image_.row(y);
        const auto isValue = [row, value = broadcast(value_)](int64_t x, auto extent) {
            return laneBits(equal(load(row + x, extent), value));
        };
        // The left neighbour is read before it is overwritten; the first pixel of the row is its own.
        uint64_t before = 0;
        T left = loadScalar<T>(row);
        for (int64_t x = 0; x < width_; x += kWordBits) {
            const uint64_t already = rowWord<kLanes>(x, width_, isValue);
            uint64_t set = already;
            if (y > 0) set |= differsFromAbove(y, x);
            const uint64_t differsInside = rowWord<kLanes>(x, width_ - 1, [row](int64_t at, auto extent) {
                return ~laneBits(equal(load(row + at, extent), load(row + at + 1, extent))) & lowBits(kLanes);
            });
            const uint64_t differs = differsInside << 1 | (loadScalar<T>(row + x) != left ? 1 : 0);
            left = loadScalar<T>(row + std::min<int64_t>(x + kWordBits, width_) - 1);
            set = solve(set, differs, before);
            before = set >> (kWordBits - 1);
            for (uint64_t bits = set & ~already; bits != 0; bits &= bits - 1)
                storeScalar(row + x + std::countr_zero(bits), value_);
        }
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;

    // Pixels with a neighbour above that is neither the value nor equal to them.
    uint64_t differsFromAbove(int32_t y, int64_t x) const {
        const T* const row = image_.row(y);
        const T* const above = image_.row(y - 1);
        const auto differs = [value = broadcast(value_)](Vec<T> pixel, Vec<T> neighbour) {
            return ~laneBits(equal(neighbour, value) | equal(neighbour, pixel)) & lowBits(kLanes);
        };
        uint64_t word = rowWord<kLanes>(x, width_, [=](int64_t at, auto extent) {
            return differs(load(row + at, extent), load(above + at, extent));
        });
        if (!diagonals_) return word;
        // Bits of the pixels to the right of a neighbour, and to the left of one.
        if (x == 0) {
            word |= rowWord<kLanes>(0, width_ - 1,
                                    [=](int64_t at, auto extent) {
                                        return differs(load(row + at + 1, extent), load(above + at, extent));
                                    })
                    << 1;
        } else {
            word |= rowWord<kLanes>(x, width_, [=](int64_t at, auto extent) {
                return differs(load(row + at, extent), load(above + at - 1, extent));
            });
        }
        return word | rowWord<kLanes>(x, width_ - 1, [=](int64_t at, auto extent) {
                   return differs(load(row + at, extent), load(above + at + 1, extent));
               });
    }

    Image<T> image_;
    int32_t width_;
    T value_;
    bool diagonals_;
};

template <class T>
okpStatus boundSegments(Image<T> marker, RoiSize size, T value, int32_t norm) {
    Checks checks;
    checks.pointers(marker.data)
        .size(size)
        .steps(size, marker)
        .require(norm == 0 || norm == 1, okpStatusBadArgument);
    if (checks.failed()) return checks.status();

    const BoundaryMarker<T> boundaries(marker, size.width, value, norm == 0);
    for (int32_t y = 0; y < size.height; ++y) boundaries.markRow(y);
    return okpStatusOk;
}

}  // namespace
}  // namespace okpcv

using namespace okpcv;

okpStatus okpiBoundSegments_8u_C1IR(uint8_t* pMarker, int32_t markerStep, RoiSize roiSize, uint8_t val,
                                    int32_t norm) {
    return boundSegments<uint8_t>({pMarker, markerStep}, roiSize, val, norm);
}

okpStatus okpiBoundSegments_16u_C1IR(uint16_t* pMarker, int32_t markerStep, RoiSize roiSize, uint16_t val,
                                     int32_t norm) {
    return boundSegments<uint16_t>({pMarker, markerStep}, roiSize, val, norm);
}
