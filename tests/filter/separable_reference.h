// The definition of a separable filter, element by element.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "core/border.h"
#include "core/numbers.h"
#include "support/first_nan.h"
#include "support/guarded_image.h"

namespace okpcv::test {

template <class D>
D converted(float v) {
    if constexpr (std::is_same_v<D, float>) {
        return v;
    } else {
        return truncateSaturated<D>(v);
    }
}

// K is int16_t or float.
template <class K>
struct Kernels {
    std::vector<K> row, column;
    int divisor = 1;
    int scaleFactor = 0;

    float reciprocal() const { return 1.0F / static_cast<float>(divisor); }
};

template <class D, class K, class S>
std::vector<D> separableReference(const GuardedImage<S>& src, const Kernels<K>& kernels, BorderKind kind,
                                  const std::vector<S>& borderValue) {
    const Border border(kind);
    const int width = src.width();
    const int height = src.height();
    const int channels = src.channels();
    const int kw = static_cast<int>(kernels.row.size());
    const int kh = static_cast<int>(kernels.column.size());
    const float reciprocal = kernels.reciprocal();
    const auto scaled = [&](float sum) { return std::is_same_v<K, float> ? sum : sum * reciprocal; };
    const auto pixel = [&](int64_t x, int y, int c) {
        const int64_t source = border.column(x, width);
        return source == Border::kValue ? borderValue[c] : src.at(static_cast<int>(source), y, c);
    };
    const auto filteredRow = [&](int x, int y, int c) {
        float sum = 0;
        for (int i = 0; i < kw; ++i) {
            if constexpr (std::is_same_v<K, float>) {
                sum = test::sum(
                    sum, product(static_cast<float>(pixel(x - (kw - 1) / 2 + i, y, c)), kernels.row[i]));
            } else {
                sum = sum + static_cast<float>(kernels.row[i] * pixel(x - (kw - 1) / 2 + i, y, c));
            }
        }
        return scaled(sum);
    };
    const auto outside = [&](int c) {
        if constexpr (std::is_same_v<K, float>) {
            float sum = 0;
            for (const float k : kernels.row) sum += k;
            return static_cast<float>(borderValue[c]) * sum;
        } else {
            int sum = 0;
            for (const int k : kernels.row) sum += k;
            return static_cast<float>(borderValue[c] * sum) * reciprocal;
        }
    };

    // Rows -anchor to height + behind of intermediate values.
    const int first = -(kh - 1) / 2;
    const int rows = height + kh - 1;
    std::vector<float> intermediate;
    for (int y = first; y < first + rows; ++y) {
        const int64_t source = border.row(y, height);
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                intermediate.push_back(
                    source == Border::kValue ? outside(c) : filteredRow(x, static_cast<int>(source), c));
            }
        }
    }
    std::vector<D> result;
    const int rowElements = width * channels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowElements; ++x) {
            float sum = 0;
            for (int j = 0; j < kh; ++j) {
                sum = test::sum(sum, product(intermediate[(y + j) * rowElements + x],
                                             static_cast<float>(kernels.column[j])));
            }
            float value = scaled(sum);
            if (std::is_same_v<D, int16_t>) value = std::ldexp(value, -kernels.scaleFactor);
            result.push_back(converted<D>(value));
        }
    }
    return result;
}

}  // namespace okpcv::test
