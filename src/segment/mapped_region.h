// A region for scanFill() whose pixels are taken in a map of bits and written when the fill is complete. So
// all comparisons see the values before the fill, and no search waits for pixels that have just been written.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "segment/scan_fill.h"

namespace okpcv {

// One bit per pixel, row behind row without gaps, set where a pixel is taken.
class PixelMap {
  public:
    // How many words it needs: one more than the bits fill, so that 64 bits can be read from any pixel on.
    static int64_t words(RoiSize size) { return wordsPerRow(int64_t{size.width} * size.height) + 1; }

    // Rows are cleared when the fill first comes to them, in the neighbourhood of those that are.
    PixelMap(uint64_t* words, RoiSize size, int32_t firstRow)
        : words_(words), width_(size.width), top_(firstRow), bottom_(firstRow) {
        clear(firstWord(firstRow), lastWord(firstRow) + 1);
    }
    void prepareRow(int32_t y) {
        if (y < top_) {
            clear(firstWord(y), firstWord(top_));
            top_ = y;
        } else if (y > bottom_) {
            clear(lastWord(bottom_) + 1, lastWord(y) + 1);
            bottom_ = y;
        }
    }

    // The bits of 64 pixels from (x, y) on. Those behind the row mean nothing.
    OKPCV_INLINE uint64_t takenFrom(int32_t y, int32_t x) const {
        const uint64_t i = index(y, x);
        const uint64_t* const word = words_ + i / kWordBits;
        const int shift = static_cast<int>(i % kWordBits);
        return word[0] >> shift | word[1] << (kWordBits - 1 - shift) << 1;
    }

    void take(int32_t y, Span span) {
        const uint64_t first = index(y, span.left);
        const uint64_t last = index(y, span.right);
        const uint64_t fromFirst = ~uint64_t{0} << (first % kWordBits);
        const uint64_t toLast = ~uint64_t{0} >> (kWordBits - 1 - last % kWordBits);
        uint64_t* word = words_ + first / kWordBits;
        uint64_t* const lastOne = words_ + last / kWordBits;
        if (word == lastOne) {
            *word |= fromFirst & toLast;
            return;
        }
        *word |= fromFirst;
        while (++word != lastOne) *word = ~uint64_t{0};
        *word |= toLast;
    }

    // Writes the value that `pixels` repeats to all taken pixels.
    template <class T, int C>
    void writeTaken(Image<T, C> image, const Pixels<T, C>& pixels) const {
        constexpr int lanes = Vec<T>::lanes;
        for (int32_t y = top_; y <= bottom_; ++y) {
            T* p = image.row(y);
            for (int64_t x = 0; x < width_; x += kWordBits, p += kWordBits * C) {
                const int rest = static_cast<int>(std::min<int64_t>(width_ - x, kWordBits));
                const uint64_t inRow = ~uint64_t{0} >> (kWordBits - rest);
                const uint64_t taken = takenFrom(y, static_cast<int32_t>(x)) & inRow;
                if (taken == 0) continue;
                if (taken == inRow) {
                    fillPixels<T, C>(p, rest, pixels);
                    continue;
                }
                for (int i = 0; i < rest; i += lanes) {
                    const uint32_t bits = static_cast<uint32_t>(taken >> i) & lowBits(lanes);
                    if (bits != 0) writePixels<T, C>(p + i * C, rest - i, bits, pixels);
                }
            }
        }
    }

  private:
    // Unsigned, so that words and bits are found by shifting and masking.
    uint64_t index(int32_t y, int32_t x) const { return static_cast<uint64_t>(int64_t{y} * width_ + x); }
    uint64_t firstWord(int32_t y) const { return index(y, 0) / kWordBits; }
    uint64_t lastWord(int32_t y) const { return index(y, width_ - 1) / kWordBits; }
    void clear(uint64_t begin, uint64_t end) {
        std::memset(words_ + begin, 0, (end - begin) * sizeof(uint64_t));
    }

    uint64_t* words_;
    int32_t width_;
    int32_t top_, bottom_;
};

// The rule says what belongs to the region, as bits of up to kLanes pixels:
//     follow(y, x, fromX, count)
//         Which of the pixels (x, y), (x + 1, y), ... belong when their neighbours (fromX, y), ... do.
//     allFollow(y, x, fromX)
//         Whether kUnrolled * kLanes pixels all do.
//     reached(y, x, count, fromRow, from)
//         Which belong when the pixels `from` of the row beside them do.
//     kRejectedBeyond
//         As for scanFill().
template <class Rule>
class MappedRegion {
  public:
    static constexpr int32_t kRejectedBeyond = Rule::kRejectedBeyond;

    MappedRegion(const Rule& rule, int32_t width, const PixelMap& map)
        : rule_(rule), width_(width), map_(map) {}

    Span seedRun(PixelPoint seed) { return take(seed.y, seed.x); }

    template <class Found>
    OKPCV_INLINE void takeRuns(int32_t y, Span where, int32_t fromRow, Span from, const Found& found) {
        map_.prepareRow(y);
        int32_t x = where.left;
        while (x <= where.right) {
            const int32_t rest = where.right - x + 1;
            const uint64_t free = ~map_.takenFrom(y, x);
            if (rest > kLanes && free == 0) {
                if (rest <= kWordBits) return;
                x += kWordBits;
                continue;
            }
            const int count = std::min(rest, kLanes);
            const uint32_t accepted = static_cast<uint32_t>(free) & rule_.reached(y, x, count, fromRow, from);
            if (accepted == 0) {
                x += count;
                continue;
            }
            const Span run = take(y, x + std::countr_zero(accepted));
            found(run);
            // The pixel behind the run is not tried from the row that is searched from.
            if (where.right - run.right < 2) return;
            x = run.right + 2;
        }
    }

    template <class T, int C>
    void write(Image<T, C> image, const Pixel<T, C>& value) const {
        map_.writeTaken(image, Pixels<T, C>::repeated(value));
    }

  private:
    static constexpr int kLanes = Rule::kLanes;

    // Takes the pixel and the run around it in which every pixel follows from its neighbour.
    Span take(int32_t y, int32_t x) {
        const Span run{runLeft(y, x), runRight(y, x)};
        map_.take(y, run);
        return run;
    }
    int32_t runLeft(int32_t y, int32_t x) const {
        while (x > 0) {
            const int32_t from = std::max(x - kLanes, 0);
            const int count = x - from;
            const auto free = static_cast<uint32_t>(~map_.takenFrom(y, from));
            const uint32_t others = ~(free & rule_.follow(y, from, from + 1, count)) & lowBits(count);
            if (others != 0) return from + static_cast<int32_t>(std::bit_width(others));
            x = from;
        }
        return 0;
    }
    int32_t runRight(int32_t y, int32_t x) const {
        while (x + 1 < width_) {
            // As far as pixels are free.
            const int free = std::min(std::countr_zero(map_.takenFrom(y, x + 1)), width_ - 1 - x);
            int tried = 0;
            for (; free - tried >= kUnrolled * kLanes && rule_.allFollow(y, x + 1, x);
                 x += kUnrolled * kLanes)
                tried += kUnrolled * kLanes;
            while (tried < free) {
                const int count = std::min(free - tried, kLanes);
                const uint32_t others = ~rule_.follow(y, x + 1, x, count) & lowBits(count);
                if (others != 0) return x + std::countr_zero(others);
                x += count;
                tried += count;
            }
            if (free < kWordBits) break;
        }
        return x;
    }

    Rule rule_;
    int32_t width_;
    PixelMap map_;
};

}  // namespace okpcv
