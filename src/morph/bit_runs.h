// The kernel of morphology for rectangles over bit-packed images: maxima of short runs of pixels, of one row
// or of a few at once.
//
// The runs grow inside of words of pixels. The words overlap, so that the runs that begin in the bytes of
// output that a word gives end in the word. Per 96 pixels (112 where the offsets allow) of a square of 3
// that is 10.5 operations in the registers, 1.5 loads and a store, which is what bounds it: about five
// instructions start in a cycle.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/image.h"
#include "core/simd.h"
#include "core/unrolled.h"
#include "morph/combine.h"

namespace okpcv::morph {

// Eight pixels a byte, the leftmost in the most significant bit; so are words, once their bytes are reversed.
using BitWord = uint64_t;
inline constexpr int kBitWordBytes = sizeof(BitWord);
inline constexpr int kBitWordBits = 8 * kBitWordBytes;

// Rows of pixels to take runs from, and what stands outside of them.
struct BitSource {
    Image<const uint8_t> rows;  // from the byte on in which the first run of row 0 begins
    int shift;                  // the place of the run in the byte
    int64_t from, to;           // the bytes to read, relative to that byte
    int64_t firstBit, endBit;   // the pixels among them
    bool outside;
};

// Rows of `width` pixels to write, of which the first is bit `phase` of the byte at rows.data. Bits beside
// them stay as they are.
struct BitTarget {
    Image<uint8_t> rows;
    int phase;
    int64_t width;

    int64_t bits() const { return phase + width; }
    int64_t bytes() const { return (bits() + 7) / 8; }
    // Whether a row begins in the byte in which the one above it ends.
    bool sharesBytes() const { return bytes() > rows.step; }
};

// The length of runs up to which a word gives half as many bytes of output as it has.
inline constexpr int kLongestInWord = 26;

namespace detail {

inline constexpr int kBitRowsTogether = 4;

// How vectors of bytes become words that begin wordBytes after each other, and back.
struct BitOrders {
    int wordBytes;
    Vec<uint8_t> toWords, toBytes, toLastBytes;

    // The first run begins `shift` pixels after the word does.
    BitOrders(int shift, int32_t length) : wordBytes((kBitWordBits - shift - (length - 1)) / 8) {
        BitWord places[Vec<BitWord>::lanes];
        uint8_t back[2 * kVectorBytes] = {};
        for (int w = 0; w < Vec<BitWord>::lanes; ++w) {
            places[w] = 0x0001020304050607 + static_cast<BitWord>(w * wordBytes) * 0x0101010101010101;
            for (int i = 0; i < kBitWordBytes; ++i)
                back[w * wordBytes + i] = static_cast<uint8_t>((w + 1) * kBitWordBytes - 1 - i);
        }
        toWords = bitCast<uint8_t>(load(places));
        toBytes = load(back);
        toLastBytes = load(back + vectorBytes() - kBitWordBytes);
    }
    int vectorBytes() const { return Vec<BitWord>::lanes * wordBytes; }
};

// A vector of output at an end of the rows, where words reach outside of the source.
struct BitSide {
    int64_t to, from;  // the byte of output, and that of the source to load from
    Vec<uint8_t> toWords;
    Vec<BitWord> inside, outside;

    BitSide(const BitSource& source, const BitOrders& orders, int64_t byte)
        : to(byte), from(std::clamp(byte, source.from, source.to - kVectorBytes)) {
        BitWord mask[Vec<BitWord>::lanes];
        for (int w = 0; w < Vec<BitWord>::lanes; ++w) {
            const int64_t first = (to + w * orders.wordBytes) * 8, end = first + kBitWordBits;
            mask[w] = ~BitWord{0} >> std::clamp<int64_t>(source.firstBit - first, 0, kBitWordBits - 1) &
                      ~BitWord{0} << std::clamp<int64_t>(end - source.endBit, 0, kBitWordBits - 1);
        }
        // Bytes that are not in the vector are not inside either.
        toWords = orders.toWords + broadcast(static_cast<uint8_t>(to - from));
        inside = load(mask);
        outside = source.outside ? ~inside : zeros<BitWord>();
    }
};

inline void setBits(uint8_t& byte, uint8_t value, int mask) {
    byte = static_cast<uint8_t>((byte & ~mask) | (value & mask));
}

}  // namespace detail

// Whether runs of at most 4 pixels that begin at most so many pixels before the rows are far enough from both
// ends in all vectors but the first and the last.
constexpr bool areWideBitRows(int64_t bytes) {
    return bytes >= 3 * kVectorBytes;
}

// dst(x, y) = the maximum of the kHeight rows of `length` pixels from (x, y) on, which grow to their length
// in kSteps steps. The source has at least a vector of bytes. Only wide rows may reach outside of it. Rows
// that are fewer than kBitRowsTogether, or share bytes, have a height of 1.
template <class P, int kHeight, int kSteps>
void combineBitRuns(const BitSource& source, const BitTarget& target, int64_t rows, int32_t length) {
    using Op = typename P::Op;
    constexpr int kRows = detail::kBitRowsTogether;
    const detail::Growth growth(length);
    const detail::BitOrders orders(source.shift, length);
    const int64_t bytes = target.bytes(), vectorBytes = orders.vectorBytes();
    const int64_t beforeLast = bytes - 2 * vectorBytes;
    const detail::BitSide left(source, orders, 0);
    const detail::BitSide right(source, orders, std::max<int64_t>(bytes - vectorBytes, 0));
    const Vec<uint8_t> toWords = orders.toWords, toBytes = orders.toBytes;
    const int shift = source.shift;

    // Rows that are too few, or share bytes, are made one by one, each as often as rows are made together.
    const int64_t together = rows < kRows || target.sharesBytes() ? 1 : kRows;
    for (int64_t next = 0; next < rows; next += together) {
        const int64_t y = std::min(next, rows - together), isMore = together > 1 ? 1 : 0;
        const Image<const uint8_t> src{source.rows.row(y), source.rows.step * isMore};
        const Image<uint8_t> dst{target.rows.row(y), target.rows.step * isMore};
        // Calls write(row of output, words of runs) for what begins in the words at p.
        const auto combine = [&](const uint8_t* p, auto wordsOf, auto write) OKPCV_INLINE_LAMBDA {
            NoWatch none;
            detail::Tile<P, kRows, 1, Whole> tile(Whole{});
            tile.fill(p, src.step, kHeight, none);
            unrolled<kRows>([&](auto r) OKPCV_INLINE_LAMBDA {
                Vec<BitWord> run = shiftLeft(wordsOf(tile.template vector<r>()), shift);
                unrolled<kSteps>([&](auto s) OKPCV_INLINE_LAMBDA {
                    run = Op::of(run, s == 0 ? run + run : shiftLeft(run, growth.by[s]));
                });
                write(dst.row(r), bitCast<uint8_t>(run));
            });
        };
        const auto combineSide = [&](const detail::BitSide& side, auto write) OKPCV_INLINE_LAMBDA {
            const auto wordsOf = [&](Vec<uint8_t> v) OKPCV_INLINE_LAMBDA {
                return (bitCast<BitWord>(permuted(v, side.toWords)) & side.inside) | side.outside;
            };
            combine(src.data + side.from, wordsOf, write);
        };
        const auto combineAt = [&](int64_t x) OKPCV_INLINE_LAMBDA {
            combine(
                src.data + x,
                [&](Vec<uint8_t> v) OKPCV_INLINE_LAMBDA { return bitCast<BitWord>(permuted(v, toWords)); },
                [&](uint8_t* to, Vec<uint8_t> v)
                    OKPCV_INLINE_LAMBDA { store(to + x, permuted(v, toBytes)); });
        };

        uint8_t first[kRows], last[kRows];
        for (int r = 0; r < kRows; ++r) {
            first[r] = dst.row(r)[0];
            last[r] = dst.row(r)[bytes - 1];
        }
        // What a vector stores behind its output is the next one's to write.
        combineSide(left, [&](uint8_t* to, Vec<uint8_t> v) OKPCV_INLINE_LAMBDA {
            if (bytes >= kVectorBytes) return store(to, permuted(v, toBytes));
            store(to, permuted(v, toBytes), Part{static_cast<int>(std::min(bytes, vectorBytes))});
        });
        for (int64_t x = vectorBytes; x < beforeLast; x += vectorBytes) combineAt(x);
        if (beforeLast > 0) combineAt(beforeLast);
        if (bytes > vectorBytes) {
            combineSide(right, [&](uint8_t* to, Vec<uint8_t> v) OKPCV_INLINE_LAMBDA {
                storeFirst<kBitWordBytes>(to + right.to, permuted(v, toBytes), Whole{});
                storeFirst<kBitWordBytes>(to + bytes - kBitWordBytes, permuted(v, orders.toLastBytes),
                                          Whole{});
            });
        }
        for (int r = 0; r < kRows; ++r) {
            if (target.phase != 0) detail::setBits(dst.row(r)[0], first[r], 0xFF00 >> target.phase);
            if (target.bits() % 8 != 0)
                detail::setBits(dst.row(r)[bytes - 1], last[r], 0xFF >> target.bits() % 8);
        }
    }
}

}  // namespace okpcv::morph
