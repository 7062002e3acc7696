// The engine of morphology for bit-packed images. Dilation is or, erosion and, of words of pixels.
//
// Rows are kept as they come, bytes of eight pixels with the leftmost in the most significant bit, and at
// the source's place within a byte: rows are combined in columns without regard to pixels, by the kernels for
// bytes. Only passes along rows, and the last one into the destination, take words apart: a word that begins
// at any pixel is two shifts and an or. Rectangles that are not wide have a kernel of their own.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/area.h"
#include "core/border.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
#include "core/with_constant.h"
#include "morph/bit_runs.h"
#include "morph/combine.h"
#include "morph/intake.h"
#include "morph/plan.h"
#include "morph/spec.h"

namespace okpcv::morph {

struct BitOr {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return a | b;
    }
    template <class T>
    static constexpr T identity = T{0};
    static constexpr bool defaultBorder = false;
};
struct BitAnd {
    template <class T>
    static OKPCV_INLINE Vec<T> of(Vec<T> a, Vec<T> b) {
        return a & b;
    }
    template <class T>
    static constexpr T identity = static_cast<T>(~T{0});
    static constexpr bool defaultBorder = true;
};

// An image of bits: the first pixel of row 0 is bit `phase`, 0 to 7, of the byte at data.
template <class T>
struct BitImage {
    Image<T> bytes;
    int phase;

    BitImage(T* data, int64_t step, int32_t bitOffset)
        : bytes{data + bitOffset / 8, step}, phase(bitOffset % 8) {}
};

struct BitSizes {
    int32_t maskWidth, maskHeight;
    int64_t blockRows;
    int64_t margin;    // bytes of a row before that of the region's first pixel
    int64_t rowBytes;  // a row, with room to load whole vectors at its last pixel
    int64_t rows;      // of a plane

    static constexpr int64_t kTogether = 8;  // rows of output whose columns of terms are made together

    BitSizes(int32_t maskW, int32_t maskH, int64_t roiWidth)
        : maskWidth(maskW),
          maskHeight(maskH),
          blockRows(std::clamp<int64_t>(roundUp(maskH, kTogether), 16, 64)),
          margin(roundUp(maskW / 2 + 8, 64) / 8),
          rowBytes(roundUp(margin + (roiWidth + maskW + 14) / 8 + 2 * kVectorBytes, kVectorBytes)),
          rows(maskH - 1 + blockRows) {}

    // Planes for a plan, whose elements are bits.
    Window window() const { return {rows, rowBytes * 8}; }
};

struct BitScratch {
    // The terms of one column of the mask.
    struct Column {
        int32_t column;
        TermList terms;
    };
    // Words that begin `shift` pixels after byte `from`, 8 bytes apart.
    struct Part {
        const uint8_t* from;
        int shift;
    };

    uint8_t* planes;
    uint8_t* copies;
    uint8_t* columnRows;  // for each of the columns the rows of its combined terms
    Term *terms, *sorted;
    Column* columns;
    Part* parts;
    int64_t* weights;
};

inline BitScratch layOutBitScratch(Area& area, const BitSizes& sizes) {
    BitScratch scratch;
    const int64_t elements = int64_t{sizes.maskWidth} * sizes.maskHeight;
    scratch.planes = area.takeRows<uint8_t>(Plan::kMaxPlanes * sizes.rows, sizes.rowBytes, kVectorBytes);
    scratch.copies = area.takeRows<uint8_t>(sizes.rows, sizes.rowBytes, kVectorBytes);
    scratch.columnRows =
        area.takeRows<uint8_t>(sizes.maskWidth * BitSizes::kTogether, sizes.rowBytes, kVectorBytes);
    scratch.terms = area.take<Term>(2 * elements);
    scratch.sorted = area.take<Term>(elements);
    scratch.columns = area.take<BitScratch::Column>(sizes.maskWidth);
    scratch.parts = area.take<BitScratch::Part>(sizes.maskWidth);
    scratch.weights = area.take<int64_t>(int64_t{sizes.maskWidth} + 1);
    return scratch;
}

template <class Op>
class BitEngine {
  public:
    using Cells = Integers<uint8_t, Op>;
    using Part = BitScratch::Part;

    BitEngine(Size size, BitImage<const uint8_t> src, BitImage<uint8_t> dst, Border border, bool value,
              const Spec& spec, void* buffer)
        : size_(size),
          src_(src),
          dst_(dst),
          border_(border),
          value_(value),
          spec_(spec),
          header_(spec.header()),
          sizes_(header_.maskWidth, header_.maskHeight, header_.roiWidth),
          scratch_(placeScratch(buffer, sizes_)),
          plan_(spec, 1, kFirstRun, kFirstRun, sizes_.window(), scratch_.terms, scratch_.weights) {
        // Where the mask reaches beyond an edge only with the edge, what repeats the edge never wins.
        if (border.kind() == BorderReplicate && spec.isRectangle() &&
            spec.block(0).has(header_.anchorX, header_.anchorY)) {
            border_ = border.withKind(BorderConstant);
            value_ = Op::defaultBorder;
        }
    }

    void run() {
        from_ = -header_.anchorX;
        to_ = size_.width + header_.rightExtent;
        const int64_t readableFrom = border_.leftInMemory() ? from_ : 0;
        const int64_t readableTo = border_.rightInMemory() ? to_ : size_.width;
        before_ = spanOf(from_, readableFrom);
        after_ = spanOf(readableTo, to_);
        readable_ = {src_.phase + readableFrom, src_.phase + readableTo};
        const int64_t firstByte = readable_.firstByte(), endByte = readable_.endByte();
        const uint8_t everywhere = value_ ? 0xFF : 0;
        NoWatch none;
        Intake intake({src_.bytes.data + firstByte, src_.bytes.step}, {endByte - firstByte, size_.height},
                      border_, &everywhere, 1, {planeRow(0, 0) + sizes_.margin + firstByte, sizes_.rowBytes},
                      {scratch_.copies, sizes_.rowBytes}, none);
        if (spec_.isIdentity()) {
            runRectangle(intake, {header_.anchorY, header_.anchorX, 1, 1});
        } else if (spec_.isRectangle()) {
            runRectangle(intake, spec_.block(0));
        } else {
            runRuns(intake);
        }
    }

  private:
    using Intake = RowIntake<Cells, NoWatch>;
    // The pixels of a row that are in readable memory, relative to the first byte of the region.
    struct Readable {
        int64_t firstBit, endBit;
        int64_t firstByte() const { return firstBit >> 3; }
        int64_t endByte() const { return ((endBit - 1) >> 3) + 1; }
    };
    using Word = BitWord;
    static constexpr int32_t kFirstRun = 8;
    // The steps in which runs grow inside of words.
    static constexpr int kMostGrowth = detail::Growth(kLongestInWord).steps;
    // The rectangles that are made from the source at once.
    static constexpr int kTallestAtOnce = 3;
    static constexpr int kLongestAtOnce = 4;
    static constexpr int kMostGrowthAtOnce = detail::Growth(kLongestAtOnce).steps;

    static BitScratch placeScratch(void* buffer, const BitSizes& sizes) {
        Area area(buffer);
        return layOutBitScratch(area, sizes);
    }

    uint8_t* planeRow(int plane, int64_t row) const {
        return scratch_.planes + (plane * sizes_.rows + row) * sizes_.rowBytes;
    }

    // A rectangle: the maxima of the columns, then those along the rows, which need no other rows. The rows
    // of small ones whose pixels are all in readable memory are made at once.
    void runRectangle(Intake& intake, const Spec::Place& block) {
        const int64_t above = header_.anchorY - block.row, below = block.height - 1 - above;
        const int64_t top = border_.topInMemory() ? 0 : std::max<int64_t>(above, 0);
        const int64_t bottom = size_.height - (border_.bottomInMemory() ? 0 : std::max<int64_t>(below, 0));
        if (bottom - top < detail::kBitRowsTogether || !canWriteAtOnce(block))
            return runRectangle(intake, block, 0, size_.height);
        runRectangle(intake, block, 0, top);
        writeAtOnce(block, top, bottom - top);
        runRectangle(intake, block, bottom, size_.height);
    }

    // Rows `top` to `bottom` - 1.
    void runRectangle(Intake& intake, const Spec::Place& block, int64_t top, int64_t bottom) {
        const int last = plan_.planeCount() - 1;
        for (int64_t y = top; y < bottom; y += sizes_.blockRows) {
            const int64_t rows = std::min(sizes_.blockRows, bottom - y);
            intake.takeMaxima(y + block.row - header_.anchorY, rows, block.height);
            for (int64_t i = 0; i < rows; ++i) extendRow(planeRow(0, i));
            if (block.length <= kLongestInWord) {
                writeRuns(y, rows, block);
                continue;
            }
            for (int p = 1; p <= last; ++p) makePlaneRows(plan_.plane(p), p, 0, rows);
            int count = 0;
            const int32_t run = plan_.plane(last).run;
            for (int32_t at = 0, end = block.length - run;; at += run) {
                scratch_.parts[count++] = partAt(planeRow(last, 0), block.column + std::min(at, end));
                if (at >= end) break;
            }
            writeRows(y, rows, count);
        }
    }

    // Small rectangles take what is outside from the border's value, and reach it at the ends of rows only.
    bool canWriteAtOnce(const Spec::Place& block) const {
        return block.height <= kTallestAtOnce && block.length <= kLongestAtOnce &&
               block.has(header_.anchorX, header_.anchorY) && border_.kind() != BorderReplicate &&
               !target(0).sharesBytes() && areWideBitRows(readable_.endByte() - readable_.firstByte());
    }
    void writeAtOnce(const Spec::Place& block, int64_t y, int64_t rows) const {
        const int64_t bit = src_.phase + block.column - header_.anchorX - dst_.phase, byte = bit >> 3;
        const BitSource source{{src_.bytes.row(y + block.row - header_.anchorY) + byte, src_.bytes.step},
                               static_cast<int>(bit & 7),
                               readable_.firstByte() - byte,
                               readable_.endByte() - byte,
                               readable_.firstBit - byte * 8,
                               readable_.endBit - byte * 8,
                               value_};
        withCount<1, kTallestAtOnce>(block.height, [&](auto height) {
            withCount<0, kMostGrowthAtOnce>(detail::Growth(block.length).steps, [&](auto steps) {
                combineBitRuns<Cells, height, steps>(source, target(y), rows, block.length);
            });
        });
    }
    // Rows of the destination from plane 0, which holds what is outside too.
    void writeRuns(int64_t y, int64_t rows, const Spec::Place& block) const {
        const Part part = partAt(planeRow(0, 0), block.column);
        const int64_t from = planeRow(0, 0) - part.from, to = from + sizes_.rowBytes;
        const BitSource source{{part.from, sizes_.rowBytes}, part.shift, from, to, from * 8, to * 8, value_};
        withCount<0, kMostGrowth>(detail::Growth(block.length).steps, [&](auto steps) {
            combineBitRuns<Cells, 1, steps>(source, target(y), rows, block.length);
        });
    }
    BitTarget target(int64_t y) const {
        return {{dst_.bytes.row(y), dst_.bytes.step}, dst_.phase, size_.width};
    }

    // Any other mask: rows come in as they are and stay while the mask reaches them. The terms of each column
    // of the mask are combined byte by byte; then the columns are put together.
    void runRuns(Intake& intake) {
        const int32_t columns = sortTerms();
        const int64_t kept = header_.maskHeight - 1;
        for (int64_t y = 0; y < size_.height; y += sizes_.blockRows) {
            const int64_t rows = std::min(sizes_.blockRows, size_.height - y);
            const int64_t old = y == 0 ? 0 : kept;
            intake.takeRows(y - header_.anchorY + old, old, kept + rows);
            for (int64_t i = old; i < kept + rows; ++i) extendRow(planeRow(0, i));
            for (int p = 1; p < plan_.planeCount(); ++p)
                makePlaneRows(plan_.plane(p), p, old, kept + rows - old);
            for (int64_t i = 0; i < rows; i += BitSizes::kTogether)
                combineColumnsOfTerms(y, i, std::min(BitSizes::kTogether, rows - i), columns);
            for (int p = 0; p < plan_.planeCount(); ++p) {
                if (plan_.plane(p).inTerms)
                    std::memmove(planeRow(p, 0), planeRow(p, rows),
                                 static_cast<size_t>(kept * sizes_.rowBytes));
            }
        }
    }

    void combineColumnsOfTerms(int64_t y, int64_t first, int64_t rows, int32_t columns) {
        const int64_t columnBytes = BitSizes::kTogether * sizes_.rowBytes;
        for (int32_t c = 0; c < columns; ++c) {
            combineRows<Cells>(Image<const uint8_t>{planeRow(0, first), sizes_.rowBytes},
                               Image<uint8_t>{scratch_.columnRows + c * columnBytes, sizes_.rowBytes},
                               sizes_.rowBytes - kVectorBytes, rows, scratch_.columns[c].terms);
        }
        for (int32_t c = 0; c < columns; ++c)
            scratch_.parts[c] = partAt(scratch_.columnRows + c * columnBytes, scratch_.columns[c].column);
        writeRows(y + first, rows, columns);
    }

    // Calls visit(column, row of bytes, height) for the plan's terms, shortest first.
    template <class Visit>
    void visitTerms(Visit visit) const {
        const TermList all = header_.slope == 0 ? plan_.terms() : plan_.rowByRow();
        const int64_t rowBits = sizes_.window().step;
        for (const Term* t = all.begin; t != all.begin + all.count(); ++t)
            visit(static_cast<int32_t>(t->offset % rowBits), t->offset / rowBits, t->height);
    }

    // Sorts the plan's terms by their column, keeping the order of heights, with offsets in bytes; returns
    // the number of columns.
    int32_t sortTerms() {
        int64_t* const starts = scratch_.weights;
        std::fill_n(starts, header_.maskWidth + 1, int64_t{0});
        visitTerms([&](int32_t column, int64_t, int32_t) { ++starts[column + 1]; });
        int32_t columns = 0;
        for (int32_t c = 0; c < header_.maskWidth; ++c) {
            const int64_t count = starts[c + 1];
            starts[c + 1] += starts[c];
            if (count > 0) scratch_.columns[columns++] = {c, {scratch_.sorted + starts[c], {}, 0}};
        }
        visitTerms([&](int32_t column, int64_t row, int32_t height) {
            scratch_.sorted[starts[column]++] = {row * sizes_.rowBytes, height};
        });
        for (int32_t c = 0; c < columns; ++c) {
            TermList& list = scratch_.columns[c].terms;
            const Term* const end = scratch_.sorted + starts[scratch_.columns[c].column];
            for (const Term* t = list.begin; t != end; ++t)
                ++(t->height <= 3 ? list.ofHeight[t->height - 1] : list.taller);
        }
        return columns;
    }

    // ---- Along a row -------------------------------------------------------------------------------------

    // Pixels of a row of a plane, by the bytes that hold them.
    struct Span {
        int64_t first = 0, last = -1;  // bytes; none when last is smaller
        int firstMask = 0, lastMask = 0;

        void set(uint8_t* row, bool value) const {
            if (last < first) return;
            const auto setBits = [&](int64_t byte, int mask) {
                row[byte] = static_cast<uint8_t>(value ? row[byte] | mask : row[byte] & ~mask);
            };
            setBits(first, firstMask);
            if (last == first) return;
            std::fill(row + first + 1, row + last, value ? uint8_t{0xFF} : uint8_t{0});
            setBits(last, lastMask);
        }
    };
    // The pixels from `from` to `to` - 1.
    Span spanOf(int64_t from, int64_t to) const {
        if (from >= to) return {};
        const int64_t first = bitOf(from), last = bitOf(to - 1);
        Span span{first >> 3, last >> 3, 0xFF >> (first & 7), 0xFF << (7 - (last & 7)) & 0xFF};
        if (span.first == span.last) span.firstMask &= span.lastMask;
        return span;
    }
    int64_t bitOf(int64_t x) const { return sizes_.margin * 8 + src_.phase + x; }

    // Makes the pixels of a row that are not in readable memory.
    void extendRow(uint8_t* row) const {
        const bool replicates = border_.kind() == BorderReplicate;
        const auto pixel = [&](int64_t x) { return (row[bitOf(x) >> 3] >> (7 - (bitOf(x) & 7)) & 1) != 0; };
        before_.set(row, replicates ? pixel(0) : value_);
        after_.set(row, replicates ? pixel(size_.width - 1) : value_);
    }

    // The part of output words for a column of the mask. Output begins at the destination's first byte,
    // `phase` pixels before the region.
    Part partAt(const uint8_t* row, int32_t column) const {
        const int64_t at = bitOf(column - header_.anchorX - dst_.phase);
        return {row + (at >> 3), static_cast<int>(at & 7)};
    }

    static OKPCV_INLINE Vec<Word> wordsAt(const uint8_t* p) { return reverseBytes(bitCast<Word>(load(p))); }
    static OKPCV_INLINE Vec<Word> shifted(Vec<Word> words, Vec<Word> next, int shift) {
        return shiftLeft(words, shift) | shiftRight(next, kBitWordBits - shift);
    }

    // Whether the parts are all near enough to the first to come out of the same two words.
    static bool areClose(const Part* parts, int count) {
        for (int i = 0; i < count; ++i) {
            const int64_t distance = (parts[i].from - parts[0].from) * 8 + parts[i].shift;
            if (distance < 0 || distance >= kBitWordBits) return false;
        }
        return true;
    }

    // For each of so many rows, of which the parts stand rowBytes apart: calls put(row, byte, vector of
    // bytes) for the vectors of output that begin before byte `end`.
    template <class Put>
    void combineParts(const Part* parts, int count, int64_t rows, int64_t end, Put put) const {
        if (count <= kMostParts && areClose(parts, count)) {
            withCount<1, kMostParts>(count, [&](auto n) OKPCV_INLINE_LAMBDA {
                int shifts[n];
                for (int i = 0; i < n; ++i)
                    shifts[i] = static_cast<int>((parts[i].from - parts[0].from) * 8) + parts[i].shift;
                for (int64_t r = 0; r < rows; ++r) {
                    const uint8_t* const from = parts[0].from + r * sizes_.rowBytes;
                    for (int64_t x = 0; x < end; x += kVectorBytes) {
                        const Vec<Word> words = wordsAt(from + x), next = wordsAt(from + x + sizeof(Word));
                        Vec<Word> result = shifted(words, next, shifts[0]);
                        for (int i = 1; i < n; ++i) result = Op::of(result, shifted(words, next, shifts[i]));
                        put(r, x, bitCast<uint8_t>(reverseBytes(result)));
                    }
                }
            });
            return;
        }
        for (int64_t r = 0; r < rows; ++r) {
            for (int64_t x = 0; x < end; x += kVectorBytes) {
                Vec<Word> result = broadcast(Op::template identity<Word>);
                for (int i = 0; i < count; ++i) {
                    const uint8_t* const p = parts[i].from + r * sizes_.rowBytes + x;
                    result = Op::of(result, shifted(wordsAt(p), wordsAt(p + sizeof(Word)), parts[i].shift));
                }
                put(r, x, bitCast<uint8_t>(reverseBytes(result)));
            }
        }
    }

    // Rows of a plane: runs of a length from those of its source.
    void makePlaneRows(const Plan::Plane& plane, int p, int64_t row, int64_t rows) const {
        // From the first pixel that the mask reaches to the last that begins a run.
        const int64_t first = bitOf(from_) >> 3;
        const int64_t end = (bitOf(to_ - plane.run) >> 3) + 1;
        Part parts[kMostParts];
        for (int i = 0; i < plane.parts; ++i) {
            const int64_t at = plane.steps[i].offset;
            parts[i] = {planeRow(plane.source, row) + first + (at >> 3), static_cast<int>(at & 7)};
        }
        uint8_t* const to = planeRow(p, row) + first;
        combineParts(parts, plane.parts, rows, end - first,
                     [&](int64_t r, int64_t x, Vec<uint8_t> v)
                         OKPCV_INLINE_LAMBDA { store(to + r * sizes_.rowBytes + x, v); });
    }

    // Rows of the destination from scratch_.parts.
    void writeRows(int64_t y, int64_t rows, int count) const {
        const int64_t bits = dst_.phase + size_.width;
        const int64_t wholeBytes = bits / 8 / kVectorBytes * kVectorBytes;
        const int headMask = 0xFF >> dst_.phase;
        uint8_t head = 0;
        combineParts(scratch_.parts, count, rows, (bits + 7) / 8,
                     [&](int64_t r, int64_t x, Vec<uint8_t> v) OKPCV_INLINE_LAMBDA {
                         uint8_t* const row = dst_.bytes.row(y + r);
                         if (x == 0) head = row[0];
                         if (x < wholeBytes) {
                             store(row + x, v);
                         } else {
                             writeRest(row + x, v, static_cast<int>(bits - x * 8));
                         }
                         if (x == 0) row[0] = static_cast<uint8_t>((head & ~headMask) | (row[0] & headMask));
                     });
    }
    // Less than a vector; the bits of the last byte that are not of the region stay.
    static void writeRest(uint8_t* to, Vec<uint8_t> v, int bits) {
        const int bytes = bits / 8;
        store(to, v, okpcv::Part{bytes});
        if (bits % 8 == 0) return;
        uint8_t rest[kVectorBytes];
        store(rest, v);
        const int mask = 0xFF >> (bits % 8);
        to[bytes] = static_cast<uint8_t>((rest[bytes] & ~mask) | (to[bytes] & mask));
    }

    Size size_;
    BitImage<const uint8_t> src_;
    BitImage<uint8_t> dst_;
    Border border_;
    bool value_;
    const Spec& spec_;
    const SpecHeader& header_;
    BitSizes sizes_;
    BitScratch scratch_;
    Plan plan_;
    int64_t from_ = 0, to_ = 0;  // pixels of a row that the mask reaches
    Readable readable_{};
    Span before_, after_;  // those that are not in readable memory
};

}  // namespace okpcv::morph
