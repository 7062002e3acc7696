// Scan-line fill: grows the connected region of a seed run by run. A stack holds the runs whose neighbouring
// rows are still to be searched; what belongs to the region, and how pixels are marked as taken, is up to the
// kind of region (Heckbert, "A Seed Fill Algorithm", Graphics Gems, 1990; Smith, "Tint Fill", SIGGRAPH 1979).
//
// Long runs are bound by memory: a row is compared once, a vector at a time, and written once. Short runs are
// bound by mispredicted branches, about one search of each neighbouring row per run.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "core/image.h"
#include "okpcv/segment.h"
#include "segment/pixel_bits.h"

namespace okpcv {

enum class Connectivity { Four, Eight };

// Consecutive pixels of a row, both ends included.
struct Span {
    int32_t left, right;

    int64_t length() const { return int64_t{right} - left + 1; }
};

// The bytes that the size query of the plain and range fills reports, in its 32-bit arithmetic.
inline uint32_t fillBufferBytes(RoiSize size) {
    return static_cast<uint32_t>(size.width) * static_cast<uint32_t>(size.height) * 6 + 32;
}

// A run of the region whose neighbouring rows are still to be searched, in twelve bytes. The row from which
// it was found, its parent, is row() + direction(). Of the span that it was found from only one fact is kept:
// whether the parent's row may hold more of the region beyond that span's ends.
class Segment {
  public:
    Segment(int32_t row, Span span, int32_t direction, bool open)
        : row_(pack(row, direction > 0)), left_(pack(span.left, open)), right_(pack(span.right, false)) {}

    int32_t row() const { return static_cast<int32_t>(row_ >> 1); }
    Span span() const { return {static_cast<int32_t>(left_ >> 1), static_cast<int32_t>(right_ >> 1)}; }
    int32_t direction() const { return (row_ & 1) != 0 ? 1 : -1; }
    bool open() const { return (left_ & 1) != 0; }

  private:
    static uint32_t pack(int32_t value, bool flag) { return static_cast<uint32_t>(value) << 1 | flag; }

    uint32_t row_, left_, right_;
};
static_assert(sizeof(Segment) == 12);

// A stack in the caller's buffer. It is a ring: a push beyond its capacity replaces the oldest entry, so
// whatever is pushed, nothing outside the buffer is written.
class SegmentStack {
  public:
    // At most `limit` entries in the `bytes` bytes at `buffer`, which may begin anywhere.
    SegmentStack(uint8_t* buffer, int64_t bytes, int64_t limit = INT64_MAX) {
        const auto lost = static_cast<int64_t>(-reinterpret_cast<uintptr_t>(buffer) % alignof(Segment));
        slots_ = reinterpret_cast<Segment*>(buffer + lost);
        capacity_ = std::min(limit, std::max(bytes - lost, int64_t{0}) / int64_t{sizeof(Segment)});
    }

    int64_t capacity() const { return capacity_; }
    bool empty() const { return count_ == 0; }

    // Needs a capacity of at least 1.
    void push(Segment segment) {
        slots_[next_] = segment;
        next_ = next_ + 1 == capacity_ ? 0 : next_ + 1;
        if (count_ < capacity_) ++count_;
    }
    // The latest entry.
    Segment pop() {
        next_ = next_ == 0 ? capacity_ - 1 : next_ - 1;
        --count_;
        return slots_[next_];
    }

  private:
    Segment* slots_;
    int64_t capacity_;
    int64_t next_ = 0;
    int64_t count_ = 0;
};

struct FilledRegion {
    int64_t area;
    int32_t left, top, right, bottom;

    void widen(int32_t row, Span span) {
        left = std::min(left, span.left);
        right = std::max(right, span.right);
        top = std::min(top, row);
        bottom = std::max(bottom, row);
    }
};

// Fills from the seed. What a region has to offer:
//     Span seedRun(seed)
//         Takes the seed and its run.
//     takeRuns(row, where, fromRow, from, found)
//         Takes the runs of `row` that begin in `where` and are reached from the pixels `from` of `fromRow`,
//         the row beside it. Calls found(run) for each.
//     kRejectedBeyond
//         How many pixels beyond either end of a run are known to be no part of the region.
// The order of the searches is part of the contract: the result of a gradient fill depends on it.
template <Connectivity kConnectivity, class Region>
FilledRegion scanFill(RoiSize size, PixelPoint seed, SegmentStack& stack, Region& region) {
    const int32_t lastColumn = size.width - 1;
    const int32_t lastRow = size.height - 1;
    const Span seedRun = region.seedRun(seed);
    FilledRegion filled{seedRun.length(), seedRun.left, seed.y, seedRun.right, seed.y};

    // Columns in which a run touches the rows beside it.
    const auto reached = [=](Span span) {
        if constexpr (kConnectivity == Connectivity::Four) return span;
        return Span{std::max(span.left - 1, 0), span.right + (span.right < lastColumn ? 1 : 0)};
    };
    // The first run has no parent: both rows beside it are searched in full. In the second of them the column
    // behind the run's right end counts as a search of its own.
    Segment segment(seed.y, seedRun, seed.y == lastRow ? -1 : 1, true);
    bool isFirst = true;
    if (lastRow == 0 || stack.capacity() == 0) return filled;
    for (;;) {
        const int32_t row = segment.row();
        const Span span = segment.span();
        const Span around = reached(span);
        const int32_t ahead = row - segment.direction();
        const int32_t behind = row + segment.direction();
        filled.widen(row, span);

        struct {
            int32_t row;
            Span where;
        } searches[3];
        int count = 0;
        if (ahead >= 0 && ahead <= lastRow) searches[count++] = {ahead, around};
        if (isFirst) {
            isFirst = false;
            searches[count++] = {behind, {around.left, span.right}};
            if (around.right > span.right) searches[count++] = {behind, {around.right, around.right}};
        } else if (segment.open()) {
            // The parent's span is searched along, too: its pixels are taken, so nothing is found there.
            searches[count++] = {behind, around};
        }
        for (int i = 0; i < count; ++i) {
            region.takeRuns(searches[i].row, searches[i].where, row, span, [&](Span run) {
                filled.area += run.length();
                const Span back = reached(run);
                const bool open = int64_t{span.left} - back.left > Region::kRejectedBeyond ||
                                  int64_t{back.right} - span.right > Region::kRejectedBeyond;
                stack.push({searches[i].row, run, row - searches[i].row, open});
            });
        }
        if (stack.empty()) break;
        segment = stack.pop();
    }
    return filled;
}

// A region of pixels whose values pass a test, written at once with a value that does not pass it: what is
// taken no longer passes. Members gives the comparison of a vector of pixels, all ones where they pass.
template <class T, int C, class Members>
class ValueRegion {
  public:
    static constexpr int32_t kRejectedBeyond = 1;

    ValueRegion(Image<T, C> image, int32_t width, Members members, Pixel<T, C> newValue)
        : image_(image), width_(width), members_(members), newValue_(Pixels<T, C>::repeated(newValue)) {}

    // The seed belongs to the region whatever its value.
    Span seedRun(PixelPoint seed) {
        T* const row = image_.row(seed.y);
        const int32_t begin = runBegin(row, seed.x);
        return take(row, begin, runEnd(row, seed.x + 1));
    }

    template <class Found>
    OKPCV_INLINE void takeRuns(int32_t y, Span where, int32_t, Span, const Found& found) {
        T* const row = image_.row(y);
        int32_t x = where.left;
        while (x <= where.right) {
            const uint32_t members = memberBits(row, x);
            const uint32_t here =
                where.right - x + 1 < kLanes ? members & lowBits(where.right - x + 1) : members;
            if (here == 0) {
                if (where.right - x < kLanes) return;
                x += kLanes;
                continue;
            }
            const int first = std::countr_zero(here);
            const int ones = std::countr_one(members >> first);
            // A run that begins where the search does may have begun before.
            const int32_t begin = x + first == where.left ? runBegin(row, x + first) : x + first;
            const int32_t end = first + ones < kLanes ? x + first + ones : runEnd(row, x + kLanes);
            const Span run = take(row, begin, end);
            found(run);
            if (where.right - run.right < 2) return;
            x = run.right + 2;
        }
    }

  private:
    static constexpr int kLanes = Vec<T>::lanes;

    Span take(T* row, int32_t begin, int32_t end) {
        fillPixels<T, C>(row + int64_t{begin} * C, end - begin, newValue_);
        return {begin, end - 1};
    }

    // Which of the pixels x, x + 1, ... pass; none beyond the row.
    OKPCV_INLINE uint32_t memberBits(const T* row, int32_t x) const {
        const T* const p = row + int64_t{x} * C;
        const int32_t left = width_ - x;
        if (left >= kLanes) return pixelBits<T, C>(members_(Pixels<T, C>::load(p, Whole{})));
        return pixelBits<T, C>(members_(Pixels<T, C>::load(p, Part{left * C}))) & lowBits(left);
    }
    // First of the passing pixels that end before x.
    int32_t runBegin(const T* row, int32_t x) const {
        while (x > 0) {
            const int32_t from = std::max(x - kLanes, 0);
            const uint32_t others = ~memberBits(row, from) & lowBits(x - from);
            if (others != 0) return from + static_cast<int32_t>(std::bit_width(others));
            x = from;
        }
        return 0;
    }
    // First pixel from x on that does not pass, or the width.
    int32_t runEnd(const T* row, int32_t x) const {
        for (; width_ - x >= kUnrolled * kLanes; x += kUnrolled * kLanes) {
            const T* const p = row + int64_t{x} * C;
            const auto compare = [this, p](int i) {
                return members_(Pixels<T, C>::load(p + i * C * kLanes, Whole{}));
            };
            if (!allPixels<T, C>(compare)) break;
        }
        while (x < width_) {
            const uint32_t others = ~memberBits(row, x) & lowBits(kLanes);
            if (others != 0) return x + std::countr_zero(others);
            x += kLanes;
        }
        return width_;
    }

    Image<T, C> image_;
    int32_t width_;
    Members members_;
    Pixels<T, C> newValue_;
};

// Members: the pixels equal to a value in every channel.
template <class T, int C>
class EqualTo {
  public:
    explicit EqualTo(const Pixel<T, C>& value) : value_(Pixels<T, C>::repeated(value)) {}

    OKPCV_INLINE Pixels<T, C> operator()(const Pixels<T, C>& pixels) const {
        return pixels.map([](Vec<T> p, Vec<T> v) { return equal(p, v); }, value_);
    }

  private:
    Pixels<T, C> value_;
};

}  // namespace okpcv
