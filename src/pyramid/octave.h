// The fast path of pyramid layers: rate 2 and the binomial kernel 1 4 6 4 1 / 16 (P. J. Burt, E. H. Adelson,
// "The Laplacian pyramid as a compact image code", 1983). Columns first: the rows that an output row sees
// become one line of sums, whose mirrored ends are added; then every second pixel of the line is filtered, or
// every pixel twice, and stored.
//
// Sums of 8- and 16-bit images are integers, in lanes of twice the width, and hold every value exactly; so
// the results are those of single precision, which holds them too. Sums of floats take their terms in kernel
// order, beginning with zero.
//
// Bound: the instructions of about two vectors per output vector and tap; all of a line stays in the first
// cache.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/area.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"
#include "pyramid/mirror.h"

namespace okpcv {

// What sums of elements of S are formed in.
template <class S>
using OctaveSum = std::conditional_t<std::is_same_v<S, uint8_t>, uint16_t,
                                     std::conditional_t<std::is_same_v<S, uint16_t>, int32_t, float>>;

template <class T>
struct OctaveLines {
    T *even, *odd;  // the second one serves layers that grow

    // Elements before a line and behind it: mirrored pixels, and what whole vectors read beyond them.
    static constexpr int64_t margin = 8;
    static constexpr int64_t slack = 64;
};

template <class T>
OctaveLines<T> layOutOctave(Area& area, int64_t elements) {
    using Lines = OctaveLines<T>;
    const auto take = [&] {
        int64_t count = 0;
        if (!addChecked(elements, Lines::margin + Lines::slack, count)) count = -1;
        T* const line = area.take<T>(count, kVectorBytes);
        return line == nullptr ? nullptr : line + Lines::margin;
    };
    T* const even = take();
    return {even, take()};
}

namespace detail {

// The sums of the definition: 16 times the weighted mean in integers, the mean itself in floats.
template <class T>
OKPCV_INLINE Vec<T> binomial(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d, Vec<T> e) {
    if constexpr (kIsFloat<T>) {
        Vec<T> sum = broadcast(1 / 16.0F) * a;
        accumulate(sum, broadcast(4 / 16.0F) * b);
        accumulate(sum, broadcast(6 / 16.0F) * c);
        accumulate(sum, broadcast(4 / 16.0F) * d);
        accumulate(sum, broadcast(1 / 16.0F) * e);
        return sum + zeros<T>();
    } else {
        return (a + e) + shiftLeft((b + d) + c, 2) + shiftLeft(c, 1);
    }
}
// The same of lines with zeros between the pixels, times 2: 8 times the mean in integers.
template <class T>
OKPCV_INLINE Vec<T> binomialAtPixel(Vec<T> a, Vec<T> b, Vec<T> c) {
    if constexpr (kIsFloat<T>) {
        Vec<T> sum = broadcast(2 / 16.0F) * a;
        accumulate(sum, broadcast(12 / 16.0F) * b);
        accumulate(sum, broadcast(2 / 16.0F) * c);
        return sum + zeros<T>();
    } else {
        return (a + c) + shiftLeft(b, 2) + shiftLeft(b, 1);
    }
}
template <class T>
OKPCV_INLINE Vec<T> binomialBetween(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return broadcast(8 / 16.0F) * a + broadcast(8 / 16.0F) * b + zeros<T>();
    } else {
        return shiftLeft(a + b, 2);
    }
}

// Sums divided by 2^Bits, rounded half up.
template <int Bits, class T>
OKPCV_INLINE Vec<T> rounded(Vec<T> sum) {
    if constexpr (kIsFloat<T>) {
        return sum;
    } else {
        return shiftRight(sum + broadcast(static_cast<T>(1 << (Bits - 1))), Bits);
    }
}
// Rounded sums, which fit the narrower type, of two vectors.
template <class D, class T>
OKPCV_INLINE Vec<D> narrowFitting(Vec<T> low, Vec<T> high) {
    using Signed = std::make_signed_t<T>;
    return narrowSaturated<D>(bitCast<Signed>(low), bitCast<Signed>(high));
}

// Pixels of three channels are filtered one in four lanes, the last of which is ignored.
template <class T>
inline constexpr int kPixelsOf4 = Vec<T>::lanes / 4;

// The vector's number of pixels, `stride` elements apart.
template <class T>
OKPCV_INLINE Vec<T> loadPixels(const T* p, int64_t stride) {
    if constexpr (kPixelsOf4<T> == 1) {
        return load(p);
    } else {
        static_assert(kPixelsOf4<T> == 2);
        return loadHalves(p, p + stride);
    }
}

// Stores the pixels of a vector, of which `count` lie inside the row. Whole vectors are stored where the row
// goes on for long enough; what lies behind the pixels is stored again later.
template <class D>
OKPCV_INLINE void storePixels(D* out, Vec<D> pixels, int64_t count) {
    constexpr int lanes = Vec<D>::lanes;
    constexpr int elements = 3 * kPixelsOf4<D>;
    if constexpr (kPixelsOf4 < D >> 1) pixels = dropFourthLanes(pixels);
    if (3 * count >= lanes) {
        store(out, pixels);
    } else {
        store(out, pixels, Part{3 * count < elements ? static_cast<int>(3 * count) : elements});
    }
}

template <int Channels, class D, class T>
void octaveLineDown(D* out, int64_t width, const T* line) {
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (Channels == 3) {
        const auto filtered = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const p = line + 6 * (x - 1);
            const auto tap = [&](int i) OKPCV_INLINE_LAMBDA { return loadPixels(p + 3 * i, 6); };
            return rounded<8>(binomial(tap(0), tap(1), tap(2), tap(3), tap(4)));
        };
        for (int64_t x = 0; x < width; x += kPixelsOf4<D>) {
            Vec<D> pixels;
            if constexpr (kIsFloat<D>) {
                pixels = filtered(x);
            } else {
                pixels = narrowFitting<D>(filtered(x), filtered(x + kPixelsOf4<T>));
            }
            storePixels(out + 3 * x, pixels, width - x);
        }
    } else if constexpr (sizeof(T) == 2) {
        // Sums of columns fit signed 16 bits; pairs of products are added as 32.
        const Vec<int16_t> weights0 = bitCast<int16_t>(broadcast(0x00040001));
        const Vec<int16_t> weights2 = bitCast<int16_t>(broadcast(0x00040006));
        const Vec<int16_t> weights4 = bitCast<int16_t>(broadcast(0x00000001));
        const auto filtered = [&](const T* p) OKPCV_INLINE_LAMBDA {
            const auto sum = mulAddPairs(bitCast<int16_t>(load(p)), weights0) +
                             mulAddPairs(bitCast<int16_t>(load(p + 2)), weights2) +
                             mulAddPairs(bitCast<int16_t>(load(p + 4)), weights4);
            return rounded<8>(sum);
        };
        mapColumns<Vec<D>::lanes>(width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const p = line + 2 * (x - 1);
            const auto low = narrowSaturated<int16_t>(filtered(p), filtered(p + lanes));
            const auto high = narrowSaturated<int16_t>(filtered(p + 2 * lanes), filtered(p + 3 * lanes));
            store(out + x, narrowSaturated<D>(low, high), extent);
        });
    } else {
        const auto filtered = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const p = line + 2 * (x - 1);
            const Vec<T> p0 = load(p), p2 = load(p + 2), p4 = load(p + 4), p6 = load(p + 6), p8 = load(p + 8);
            return rounded<8>(binomial(evenLanes(p0, p4), oddLanes(p0, p4), evenLanes(p2, p6),
                                       oddLanes(p2, p6), evenLanes(p4, p8)));
        };
        mapColumns<Vec<D>::lanes>(width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            if constexpr (kIsFloat<D>) {
                store(out + x, filtered(x), extent);
            } else {
                store(out + x, narrowFitting<D>(filtered(x), filtered(x + lanes)), extent);
            }
        });
    }
}

// `width` pixels of the larger row.
template <int Channels, class D, class T>
void octaveLineUp(D* out, int64_t width, const T* line) {
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (Channels == 3) {
        // Source pixels are taken as many as fit four lanes each.
        constexpr int step = kPixelsOf4<T>;
        for (int64_t x = 0; 2 * x < width; x += step) {
            const auto tap = [&](int i) OKPCV_INLINE_LAMBDA { return loadPixels(line + 3 * (x + i), 3); };
            const Vec<T> before = tap(-1), here = tap(0), behind = tap(1);
            const auto even = rounded<6>(binomialAtPixel(before, here, behind));
            const auto odd = rounded<6>(binomialBetween(here, behind));
            D* const p = out + 6 * x;
            const int64_t left = width - 2 * x;
            if constexpr (kIsFloat<D>) {
                storePixels(p, even, left);
                if (left > 1) storePixels(p + 3, odd, left - 1);
            } else if constexpr (step == 1) {
                storePixels(p, narrowFitting<D>(even, odd), left);
            } else {
                const auto e = bitCast<uint64_t>(even), o = bitCast<uint64_t>(odd);
                storePixels(
                    p, narrowFitting<D>(bitCast<T>(interleaveLow(e, o)), bitCast<T>(interleaveHigh(e, o))),
                    left);
            }
        }
    } else {
        mapColumns<2 * lanes>(width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const p = line + x / 2;
            const Vec<T> before = load(p - 1), here = load(p), behind = load(p + 1);
            const auto even = rounded<6>(binomialAtPixel(before, here, behind));
            const auto odd = rounded<6>(binomialBetween(here, behind));
            const Vec<T> low = interleaveLow(even, odd), high = interleaveHigh(even, odd);
            if constexpr (kIsFloat<D>) {
                store(out + x, low, extent);
                store(out + x + lanes, high, extent.from(lanes));
            } else {
                store(out + x, narrowFitting<D>(low, high), extent);
            }
        });
    }
}

}  // namespace detail

template <class S, int Channels>
void octaveDown(const Image<const S, Channels>& src, Size srcSize, const Image<S, Channels>& dst,
                Size dstSize, const OctaveLines<OctaveSum<S>>& lines) {
    using T = OctaveSum<S>;
    T* const line = lines.even;
    for (int64_t y = 0; y < dstSize.height; ++y) {
        const auto row = [&](int64_t i) { return src.row(mirroredPixel(2 * y + i, srcSize.height, 1)); };
        mapRow<Vec<T>::lanes>(
            srcSize.width * Channels,
            [](auto extent, T* out, const S* a, const S* b, const S* c, const S* d,
               const S* e) OKPCV_INLINE_LAMBDA {
                store(out, detail::binomial(loadAs<T>(a, extent), loadAs<T>(b, extent), loadAs<T>(c, extent),
                                            loadAs<T>(d, extent), loadAs<T>(e, extent)));
            },
            line, row(-2), row(-1), row(0), row(1), row(2));
        extendLine<Channels>(line, srcSize.width, 2, 1);
        detail::octaveLineDown<Channels>(dst.row(y), dstSize.width, line);
    }
}

template <class S, int Channels>
void octaveUp(const Image<const S, Channels>& src, Size srcSize, const Image<S, Channels>& dst, Size dstSize,
              const OctaveLines<OctaveSum<S>>& lines) {
    using T = OctaveSum<S>;
    for (int64_t y = 0; 2 * y < dstSize.height; ++y) {
        const auto row = [&](int64_t i) { return src.row(mirroredPixel(y + i, srcSize.height, 2)); };
        mapRow<Vec<T>::lanes>(
            srcSize.width * Channels,
            [](auto extent, T* even, T* odd, const S* a, const S* b, const S* c) OKPCV_INLINE_LAMBDA {
                const Vec<T> here = loadAs<T>(b, extent), below = loadAs<T>(c, extent);
                store(even, detail::binomialAtPixel(loadAs<T>(a, extent), here, below));
                store(odd, detail::binomialBetween(here, below));
            },
            lines.even, lines.odd, row(-1), row(0), row(1));
        extendLine<Channels>(lines.even, srcSize.width, 1, 2);
        detail::octaveLineUp<Channels>(dst.row(2 * y), dstSize.width, lines.even);
        if (2 * y + 1 == dstSize.height) continue;
        extendLine<Channels>(lines.odd, srcSize.width, 1, 2);
        detail::octaveLineUp<Channels>(dst.row(2 * y + 1), dstSize.width, lines.odd);
    }
}

}  // namespace okpcv
