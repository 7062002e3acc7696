// The fast path of pyramid layers: rate 2 and the binomial kernel 1 4 6 4 1 / 16 (P. J. Burt, E. H. Adelson,
// "The Laplacian pyramid as a compact image code", 1983). Columns first: the rows that an output row sees
// become one line of sums, whose mirrored ends are added; then every second pixel of the line is filtered, or
// every pixel twice, and stored. Smaller levels of 16-bit images of one channel take their rows first.
//
// Sums of 8- and 16-bit images are integers, in lanes of twice the width, and hold every value exactly; so
// the results are those of single precision, which holds them too. Sums of floats take their terms in kernel
// order.
//
// Bound: the instructions of the column sums, which a smaller level takes of all source pixels for half as
// many rows: per vector about three loads, the terms of the sum and a store. The lines' filters come to half
// of that.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "core/area.h"
#include "core/image.h"
#include "core/rows.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "pyramid/mirror.h"

namespace okpcv {

// What sums of elements of S are formed in.
template <class S>
using OctaveSum = std::conditional_t<std::is_same_v<S, uint8_t>, uint16_t,
                                     std::conditional_t<std::is_same_v<S, uint16_t>, int32_t, float>>;

// Rows of a smaller level that are made together: they share the source rows that several of them see.
inline constexpr int kOctaveBatch = 4;

// Lines of sums, of all pixels of a source row. A smaller level takes one for each row of a batch, a larger
// one takes two.
template <class T>
struct OctaveLines {
    T* line[kOctaveBatch];
    // From the pixels of even number to those of odd number, where these have a line of their own.
    int64_t odd;

    // Elements before a line and behind it: mirrored pixels, and what whole vectors read beyond them.
    static constexpr int64_t margin = 8;
    static constexpr int64_t slack = 64;
};

template <class T>
OctaveLines<T> layOutOctave(Area& area, int channels, int64_t width, int phases) {
    using Lines = OctaveLines<T>;
    Lines lines{};
    // An odd number of cache lines, so that what stands at one column shares no place in the nearest cache;
    // and lines well apart, without which long rows out of the caches were measured to take a fifth longer.
    constexpr int64_t cacheLine = kCacheLineBytes / sizeof(T), apart = 16 * cacheLine;
    lines.odd = (width / 2 + 1 + Lines::slack) / (2 * cacheLine) * (2 * cacheLine) + cacheLine + apart;
    int64_t count = 0;
    const bool fits = phases == 1 ? multiplyChecked(2 * channels, lines.odd, count)
                                  : multiplyChecked(width, channels, count) &&
                                        addChecked(count, Lines::margin + Lines::slack, count);
    for (int i = 0; i < (phases == 1 ? kOctaveBatch : 2); ++i) {
        lines.line[i] = area.take<T>(fits ? count : -1, kVectorBytes);
        if (lines.line[i] != nullptr) lines.line[i] += Lines::margin;
    }
    return lines;
}

namespace detail {

// The sums of the definition: 16 times the weighted mean in integers, the mean itself in floats.
template <class T>
OKPCV_INLINE Vec<T> binomial(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d, Vec<T> e) {
    if constexpr (kIsFloat<T>) {
        Vec<T> sum = a * broadcast(1 / 16.0F);
        accumulate(sum, b * broadcast(4 / 16.0F));
        accumulate(sum, c * broadcast(6 / 16.0F));
        accumulate(sum, d * broadcast(4 / 16.0F));
        accumulate(sum, e * broadcast(1 / 16.0F));
        return sum;
    } else {
        return (a + e) + shiftLeft((b + d) + c, 2) + shiftLeft(c, 1);
    }
}
// The same of lines with zeros between the pixels, times 2: 8 times the mean in integers.
template <class T>
OKPCV_INLINE Vec<T> binomialAtPixel(Vec<T> a, Vec<T> b, Vec<T> c) {
    if constexpr (kIsFloat<T>) {
        Vec<T> sum = a * broadcast(2 / 16.0F);
        accumulate(sum, b * broadcast(12 / 16.0F));
        accumulate(sum, c * broadcast(2 / 16.0F));
        return sum;
    } else {
        return (a + c) + shiftLeft(b, 2) + shiftLeft(b, 1);
    }
}
template <class T>
OKPCV_INLINE Vec<T> binomialBetween(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return a * broadcast(8 / 16.0F) + b * broadcast(8 / 16.0F);
    } else {
        return shiftLeft(a + b, 2);
    }
}

// Integer sums divided by 2^Bits, rounded half up. To float sums the zero is added that they should have
// begun with; the sign of a zero in the sums of columns leaves no trace behind it.
template <int Bits, class T>
OKPCV_INLINE Vec<T> rounded(Vec<T> sum) {
    if constexpr (kIsFloat<T>) {
        return sum + zeros<T>();
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
    constexpr int pixelsOf4 = kPixelsOf4<D>, elements = 3 * pixelsOf4;
    if constexpr (pixelsOf4 > 1) pixels = dropFourthLanes(pixels);
    if (3 * count >= lanes) {
        store(out, pixels);
    } else {
        store(out, pixels, Part{3 * count < elements ? static_cast<int>(3 * count) : elements});
    }
}

// Whether sums of even and of odd columns are kept apart: so no lane has to move when every second is taken.
template <int Channels, class T>
inline constexpr bool kSplitsColumns = Channels == 1 && kIsFloat<T>;

// The sums at pixel x of a line.
template <int Channels, class T>
OKPCV_INLINE T* pixelOfLine(T* line, int64_t x, int64_t odd) {
    if constexpr (kSplitsColumns<Channels, T>) {
        return line + (x >> 1) + (x & 1) * odd;
    } else {
        return line + x * Channels;
    }
}

// The line of each of `Rows` output rows, of `width` source pixels.
template <int Rows, int Channels, class S, class T>
void octaveColumnsDown(const OctaveLines<T>& lines, const S* const* rows, int64_t width) {
    constexpr int lanes = Vec<T>::lanes;
    constexpr int inputs = 2 * Rows + 3;
    T* out[Rows];
    std::copy(lines.line, lines.line + Rows, out);
    const auto sum = [](const Vec<T>(&v)[inputs], auto r) OKPCV_INLINE_LAMBDA {
        return binomial(v[2 * r], v[2 * r + 1], v[2 * r + 2], v[2 * r + 3], v[2 * r + 4]);
    };
    // Each row is loaded when the first sum needs it, so that few are held at a time.
    const auto forRows = [](const auto& loadRow, const auto& finishRow) OKPCV_INLINE_LAMBDA {
        unrolled<3>(loadRow);
        unrolled<Rows>([&](auto r) OKPCV_INLINE_LAMBDA {
            loadRow(std::integral_constant<int, 2 * r + 3>{});
            loadRow(std::integral_constant<int, 2 * r + 4>{});
            finishRow(r);
        });
    };
    const S* in[inputs];  // as locals, which no store can change
    std::copy(rows, rows + inputs, in);
    const int64_t count = width * Channels;
    if constexpr (kSplitsColumns<Channels, T>) {
        const int64_t odd = lines.odd;
        mapColumns<2 * lanes>(count, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            Vec<T> low[inputs], high[inputs];
            const auto loadRow = [&](auto i) OKPCV_INLINE_LAMBDA {
                low[i] = load(in[i] + x, extent);
                high[i] = load(in[i] + x + lanes, extent.from(lanes));
            };
            forRows(loadRow, [&](auto r) OKPCV_INLINE_LAMBDA {
                const Vec<T> a = sum(low, r), b = sum(high, r);
                store(out[r] + x / 2, evenLanes(a, b));
                store(out[r] + x / 2 + odd, oddLanes(a, b));
            });
        });
    } else {
        mapColumns<lanes>(count, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
            Vec<T> v[inputs];
            forRows([&](auto i) OKPCV_INLINE_LAMBDA { v[i] = loadAs<T>(in[i] + x, extent); },
                    [&](auto r) OKPCV_INLINE_LAMBDA { store(out[r] + x, sum(v, r)); });
        });
    }
}

// `width` pixels of three floats of the smaller level. Neighbours share the products of the pixels that both
// see, those of even number with two weights, those of odd number with one.
inline void octaveFloatPixelsDown(float* out, int64_t width, const float* line) {
    const Vec<float> outer = broadcast(1 / 16.0F), inner = broadcast(4 / 16.0F),
                     middle = broadcast(6 / 16.0F);
    struct Even {
        Vec<float> outer, middle;
    };
    const auto even = [&](int64_t x) OKPCV_INLINE_LAMBDA {
        const Vec<float> pixel = load(line + 6 * x);
        return Even{pixel * outer, pixel * middle};
    };
    const auto odd = [&](int64_t x) OKPCV_INLINE_LAMBDA { return load(line + 6 * x + 3) * inner; };
    const auto mean = [](Even a, Vec<float> b, Even c, Vec<float> d, Even e) OKPCV_INLINE_LAMBDA {
        Vec<float> sum = a.outer;
        accumulate(sum, b);
        accumulate(sum, c.middle);
        accumulate(sum, d);
        accumulate(sum, e.outer);
        return rounded<8>(sum);
    };
    Even a = even(-1), c = even(0);
    Vec<float> b = odd(-1);
    int64_t x = 0;
    // By twos, so that hardly a product need be moved from register to register; not up to the end, where the
    // fourth lane would leave the row.
    for (; x + 2 < width; x += 2) {
        const Vec<float> d = odd(x), f = odd(x + 1);
        const Even e = even(x + 1), g = even(x + 2);
        store(out + 3 * x, mean(a, b, c, d, e));
        store(out + 3 * x + 3, mean(c, d, e, f, g));
        a = e;
        b = f;
        c = g;
    }
    for (; x < width; ++x) {
        const Vec<float> d = odd(x);
        const Even e = even(x + 1);
        storePixels(out + 3 * x, mean(a, b, c, d, e), width - x);
        a = c;
        b = d;
        c = e;
    }
}

// `width` pixels of a row of the smaller level.
template <int Channels, class D, class T>
void octaveLineDown(D* out, int64_t width, const T* line, [[maybe_unused]] int64_t fromEvenToOdd) {
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (Channels == 3 && kIsFloat<D>) {
        octaveFloatPixelsDown(out, width, line);
    } else if constexpr (Channels == 3) {
        const auto filtered = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const p = line + 6 * (x - 1);
            const auto tap = [&](int i) OKPCV_INLINE_LAMBDA { return loadPixels(p + 3 * i, 6); };
            return rounded<8>(binomial(tap(0), tap(1), tap(2), tap(3), tap(4)));
        };
        for (int64_t x = 0; x < width; x += kPixelsOf4<D>) {
            storePixels(out + 3 * x, narrowFitting<D>(filtered(x), filtered(x + kPixelsOf4<T>)), width - x);
        }
    } else if constexpr (kSplitsColumns<Channels, T>) {
        const auto filtered = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            const T* const even = line + x;
            const T* const odd = even + fromEvenToOdd;
            return rounded<8>(binomial(load(even - 1), load(odd - 1), load(even), load(odd), load(even + 1)));
        };
        mapColumns<lanes>(
            width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA { store(out + x, filtered(x), extent); });
    } else {
        // Sums of columns fit signed 16 bits; pairs of products are added as 32.
        static_assert(sizeof(T) == 2);
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
    }
}

// `Rows` output rows from row y on.
template <int Rows, class S, int Channels>
void octaveRowsDown(const Image<const S, Channels>& src, Size srcSize, const Image<S, Channels>& dst,
                    int64_t dstWidth, int64_t y, const OctaveLines<OctaveSum<S>>& lines) {
    using T = OctaveSum<S>;
    const S* rows[2 * Rows + 3];
    for (int i = 0; i < 2 * Rows + 3; ++i) {
        rows[i] = src.row(mirroredPixel(2 * (y - 1) + i, srcSize.height, 1));
    }
    octaveColumnsDown<Rows, Channels>(lines, rows, srcSize.width);
    for (int r = 0; r < Rows; ++r) {
        const auto pixel = [&](int64_t x) { return pixelOfLine<Channels>(lines.line[r], x, lines.odd); };
        for (const int64_t x : {int64_t{-2}, int64_t{-1}, srcSize.width, srcSize.width + 1}) {
            const T* const source = pixel(mirroredPixel(x, srcSize.width, 1));
            std::copy(source, source + Channels, pixel(x));
        }
        octaveLineDown<Channels>(dst.row(y + r), dstWidth, lines.line[r], lines.odd);
    }
}

// ---- Smaller levels of 16-bit images of one channel -------------------------------------------------------
// Their rows come first, since a multiply-add takes two pixels to the sum of a pixel of the smaller level:
// about 11 instructions for eight source pixels, and half as many to add the sums of five rows.

// What signed multiply-adds leave out of a pixel, and out of a row's sum, in which one pixel is added as it
// is.
inline constexpr int32_t kSignedBias = 32768;
inline constexpr int32_t kRowSumBias = (1 + 4 + 6 + 4) * kSignedBias;

// The sums, less kRowSumBias, of a source row for `width` pixels of the smaller level.
__attribute__((noinline)) inline void octaveRowSums(int32_t* out, int64_t width, const uint16_t* row,
                                                    int64_t srcWidth) {
    constexpr int lanes = Vec<int32_t>::lanes;
    const Vec<uint16_t> bias = broadcast(static_cast<uint16_t>(kSignedBias));
    const Vec<int16_t> weights0 = bitCast<int16_t>(broadcast(0x00040001));
    const Vec<int16_t> weights2 = bitCast<int16_t>(broadcast(0x00040006));
    const auto sumVector = [&](int64_t x) OKPCV_INLINE_LAMBDA {
        const uint16_t* const p = row + 2 * x;
        const auto pairs = [&](int i, Vec<int16_t> weights) OKPCV_INLINE_LAMBDA {
            return mulAddPairs(bitCast<int16_t>(load(p + i) ^ bias), weights);
        };
        const auto last = bitCast<int32_t>(shiftRight(bitCast<uint32_t>(load(p + 1)), 16));
        store(out + x, pairs(-2, weights0) + pairs(0, weights2) + last);
    };
    const auto sumPixels = [&](int64_t x, int64_t end) {
        for (; x < end; ++x) {
            constexpr int32_t weights[] = {1, 4, 6, 4, 1};
            int32_t sum = -kRowSumBias;
            for (int i = 0; i < 5; ++i) {
                sum += weights[i] * loadScalar<uint16_t>(row + mirroredPixel(2 * x + i - 2, srcWidth, 1));
            }
            out[x] = sum;
        }
    };

    // Where the first and the last vector stand that see pixels of the row alone.
    const int64_t firstVector = 1;
    const int64_t lastVector = std::min(width - lanes, (srcWidth - 2 * lanes - 1) / 2);
    if (lastVector < firstVector) return sumPixels(0, width);
    sumPixels(0, firstVector);
    sumVector(firstVector);
    mapColumns<lanes>(lastVector, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        sumVector(std::is_same_v<decltype(extent), Part> ? lastVector : x + lanes);
    });
    sumPixels(lastVector + lanes, width);
}

// The row sums that two rows of the smaller level see. They are kept two to a line.
inline constexpr int kOctaveRowSums = 7;
static_assert(kOctaveRowSums <= 2 * kOctaveBatch);

// `Rows` rows of the smaller level from the sums of the source rows.
template <int Rows>
__attribute__((noinline)) void octaveMeans(const Image<uint16_t>& dst, int64_t width,
                                           const int32_t* const* sums) {
    constexpr int lanes = Vec<int32_t>::lanes;
    constexpr int inputs = 2 * Rows + 3;
    static_assert(inputs <= kOctaveRowSums);
    const int32_t* in[inputs];  // as locals, which no store can change
    std::copy(sums, sums + inputs, in);
    uint16_t* out[Rows];
    for (int r = 0; r < Rows; ++r) out[r] = dst.row(r);
    mapColumns<2 * lanes>(width, [&](auto extent, int64_t x) OKPCV_INLINE_LAMBDA {
        Vec<int32_t> means[Rows][2];
        unrolled<2>([&](auto half) OKPCV_INLINE_LAMBDA {
            Vec<int32_t> v[inputs];
            unrolled<inputs>([&](auto i)
                                 OKPCV_INLINE_LAMBDA { v[i] = loadAligned(in[i] + x + half * lanes); });
            unrolled<Rows>([&](auto r) OKPCV_INLINE_LAMBDA {
                const auto sum = binomial(v[2 * r], v[2 * r + 1], v[2 * r + 2], v[2 * r + 3], v[2 * r + 4]);
                means[r][half] = rounded<8>(sum + broadcast(16 * kRowSumBias));
            });
        });
        unrolled<Rows>([&](auto r) OKPCV_INLINE_LAMBDA {
            store(out[r] + x, narrowFitting<uint16_t>(means[r][0], means[r][1]), extent);
        });
    });
}

// ---- Larger levels ----------------------------------------------------------------------------------------

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
    int64_t y = 0;
    for (; y + kOctaveBatch <= dstSize.height; y += kOctaveBatch) {
        detail::octaveRowsDown<kOctaveBatch>(src, srcSize, dst, dstSize.width, y, lines);
    }
    for (; y < dstSize.height; ++y) detail::octaveRowsDown<1>(src, srcSize, dst, dstSize.width, y, lines);
}

inline void octaveDown(const Image<const uint16_t>& src, Size srcSize, const Image<uint16_t>& dst,
                       Size dstSize, const OctaveLines<int32_t>& lines) {
    // The sums of source row y, -2 at least.
    const auto sumsOf = [&](int64_t y) {
        const int64_t i = (y + 2) % detail::kOctaveRowSums;
        return lines.line[i / 2] + i % 2 * lines.odd;
    };
    const auto sumRow = [&](int64_t y) {
        const uint16_t* const row = src.row(mirroredPixel(y, srcSize.height, 1));
        detail::octaveRowSums(sumsOf(y), dstSize.width, row, srcSize.width);
    };
    for (int64_t y = -2; y <= 0; ++y) sumRow(y);
    int64_t y = 0;
    const auto makeRows = [&](auto rows) {
        constexpr int inputs = 2 * rows + 3;
        const int32_t* sums[inputs];
        for (int i = 0; i < inputs; ++i) {
            sums[i] = sumsOf(2 * y - 2 + i);
            if (i >= 3) sumRow(2 * y - 2 + i);
        }
        detail::octaveMeans<rows>({dst.row(y), dst.step}, dstSize.width, sums);
    };
    for (; y + 2 <= dstSize.height; y += 2) makeRows(std::integral_constant<int, 2>{});
    if (y < dstSize.height) makeRows(std::integral_constant<int, 1>{});
}

template <class S, int Channels>
void octaveUp(const Image<const S, Channels>& src, Size srcSize, const Image<S, Channels>& dst, Size dstSize,
              const OctaveLines<OctaveSum<S>>& lines) {
    using T = OctaveSum<S>;
    T* const lineOfEven = lines.line[0];
    T* const lineOfOdd = lines.line[1];
    for (int64_t y = 0; 2 * y < dstSize.height; ++y) {
        const auto row = [&](int64_t i) { return src.row(mirroredPixel(y + i, srcSize.height, 2)); };
        mapRow<Vec<T>::lanes>(
            srcSize.width * Channels,
            [](auto extent, T* even, T* odd, const S* a, const S* b, const S* c) OKPCV_INLINE_LAMBDA {
                const Vec<T> here = loadAs<T>(b, extent), below = loadAs<T>(c, extent);
                store(even, detail::binomialAtPixel(loadAs<T>(a, extent), here, below));
                store(odd, detail::binomialBetween(here, below));
            },
            lineOfEven, lineOfOdd, row(-1), row(0), row(1));
        extendLine<Channels>(lineOfEven, srcSize.width, 1, 2);
        detail::octaveLineUp<Channels>(dst.row(2 * y), dstSize.width, lineOfEven);
        if (2 * y + 1 == dstSize.height) continue;
        extendLine<Channels>(lineOfOdd, srcSize.width, 1, 2);
        detail::octaveLineUp<Channels>(dst.row(2 * y + 1), dstSize.width, lineOfOdd);
    }
}

}  // namespace okpcv
