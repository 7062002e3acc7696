// The flood fills, step by step as they are documented, pixel by pixel and with a stack that grows as needed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <type_traits>
#include <vector>

#include "okpcv.h"

namespace okpcv::test {

enum class Rule { Plain, Range, Gradient };

template <class T>
class FillReference {
  public:
    FillReference(Rule theRule, bool withDiagonals, int channelCount, RoiSize roi,
                  const std::vector<T>& pixels, const std::vector<T>& value, const std::vector<T>& minDeltas,
                  const std::vector<T>& maxDeltas)
        : image(pixels),
          rule(theRule),
          diagonals(withDiagonals),
          channels(channelCount),
          width(roi.width),
          height(roi.height),
          newVal(value),
          minDelta(minDeltas),
          maxDelta(maxDeltas) {}

    std::vector<T> image;
    size_t mostWaiting = 0;

    // Fills, and returns the record that is written, if one is.
    std::optional<ConnectedComp> fill(PixelPoint seed) {
        const std::vector<T> old(pixel(seed.x, seed.y), pixel(seed.x, seed.y) + channels);
        if (rule == Rule::Plain && old == newVal) return std::nullopt;
        for (int c = 0; c < channels; ++c) addBounds(old[c], c);
        taken.assign(static_cast<size_t>(width) * height, false);

        take(seed.x, seed.y);
        const auto [xl, xr] = extend(seed.x, seed.y);
        left = xl;
        right = xr;
        top = bottom = seed.y;
        area = xr - xl + 1;
        const size_t ring = static_cast<size_t>(width) * height / 4;
        const bool skip = height == 1 || (rule == Rule::Range && ring == 1);
        if (skip) {
            writeRun(seed.y, xl, xr);
        } else {
            stack.push_back({seed.y, xl, xr, xr + 1, xr, seed.y == height - 1 ? -1 : 1});
        }
        while (!stack.empty()) {
            const Segment s = stack.back();
            stack.pop_back();
            left = std::min(left, s.l);
            right = std::max(right, s.r);
            top = std::min(top, s.y);
            bottom = std::max(bottom, s.y);
            const int from = diagonals ? std::max(s.l - 1, 0) : s.l;
            const int to = diagonals ? std::min(s.r + 1, width - 1) : s.r;
            const int ahead = s.y - s.d;
            if (ahead >= 0 && ahead < height) scan(s, ahead, s.d, from, to);
            scan(s, s.y + s.d, -s.d, from, std::min(s.pl - 1, to));
            scan(s, s.y + s.d, -s.d, std::max(s.pr + 1, from), to);
            writeRun(s.y, s.l, s.r);
            mostWaiting = std::max(mostWaiting, stack.size());
            while (rule == Rule::Range && ring > 0 && stack.size() > ring) stack.pop_front();
        }
        ConnectedComp record{};
        record.area = area;
        for (int c = 0; c < channels; ++c) record.value[c] = newVal[c];
        record.rect = {left, top, right - left + 1, bottom - top + 1};
        return record;
    }

  private:
    struct Segment {
        int y, l, r, pl, pr, d;
    };

    T* pixel(int x, int y) { return image.data() + (static_cast<size_t>(y) * width + x) * channels; }
    bool isTaken(int x, int y) const { return taken[static_cast<size_t>(y) * width + x]; }

    void addBounds(T v, int c) {
        if constexpr (std::is_floating_point_v<T>) {
            lower.push_back(v - minDelta[c]);
            upper.push_back(v + maxDelta[c]);
        } else if constexpr (sizeof(T) < 4) {
            lower.push_back(static_cast<T>(std::max(v - minDelta[c], 0)));
            upper.push_back(static_cast<T>(v + std::min<int>(maxDelta[c], T(-1) - v)));
        }
        seedValue.push_back(v);
    }

    void take(int x, int y) {
        taken[static_cast<size_t>(y) * width + x] = true;
        // Gradient fills write later.
        if (rule != Rule::Gradient) std::copy(newVal.begin(), newVal.end(), pixel(x, y));
    }
    void writeRun(int y, int l, int r) {
        for (int x = l; x <= r; ++x) std::copy(newVal.begin(), newVal.end(), pixel(x, y));
    }

    // Whether the pixel, not yet taken, belongs to the region as the neighbour (fromX, fromY) sees it.
    bool accepts(int x, int y, int fromX, int fromY) {
        if (isTaken(x, y)) return false;
        for (int c = 0; c < channels; ++c) {
            const T p = pixel(x, y)[c], n = pixel(fromX, fromY)[c];
            bool holds = false;
            if (rule == Rule::Plain) {
                holds = p == seedValue[c];
            } else if (rule == Rule::Range) {
                holds = lower[c] <= p && p <= upper[c];
            } else if constexpr (std::is_floating_point_v<T>) {
                holds = n - minDelta[c] <= p && p <= n + maxDelta[c];
            } else if constexpr (sizeof(T) < 4) {
                holds = uint32_t{p} + minDelta[c] - n <= uint32_t{minDelta[c]} + maxDelta[c];
            }
            if (!holds) return false;
        }
        return true;
    }

    std::pair<int, int> extend(int x, int y) {
        int l = x, r = x;
        while (l > 0 && accepts(l - 1, y, l, y)) take(--l, y);
        while (r + 1 < width && accepts(r + 1, y, r, y)) take(++r, y);
        return {l, r};
    }

    void scan(const Segment& s, int y, int direction, int from, int to) {
        for (int x = from; x <= to; ++x) {
            bool accepted = false;
            for (int n = x - (diagonals ? 1 : 0); n <= x + (diagonals ? 1 : 0); ++n)
                accepted = accepted || (n >= s.l && n <= s.r && accepts(x, y, n, s.y));
            if (!accepted) continue;
            take(x, y);
            const auto [nl, nr] = extend(x, y);
            stack.push_back({y, nl, nr, s.l, s.r, direction});
            area += nr - nl + 1;
            x = nr + 1;
        }
    }

    Rule rule;
    bool diagonals;
    int channels, width, height;
    std::vector<T> newVal, minDelta, maxDelta;
    std::vector<T> seedValue, lower, upper;
    std::vector<bool> taken;
    std::deque<Segment> stack;
    int left = 0, right = 0, top = 0, bottom = 0, area = 0;
};

}  // namespace okpcv::test
