// The engine of morphology for bit-packed images. Dilation is or, erosion and, of words of pixels.
//
// Rows are kept as they come, bytes of eight pixels with the leftmost in the most significant bit, and at
// the source's place within a byte: rows are combined in columns without regard to pixels, by the kernels for
// bytes. Only passes along rows, and the last one into the destination, take words apart: a word that begins
// at any pixel is two shifts and an or. Per 128 pixels of a rectangle of 3 x 3 that is about 20 operations in
// the registers, 4 loads and 2 stores.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/area.h"
#include "core/border.h"
#include "core/image.h"
#include "core/numbers.h"
#include "core/simd.h"
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
    scratch.planes = area.take<uint8_t>(Plan::kMaxPlanes * sizes.rows * sizes.rowBytes, kVectorBytes);
    scratch.copies = area.take<uint8_t>(sizes.rows * sizes.rowBytes, kVectorBytes);
    scratch.columnRows =
        area.take<uint8_t>(sizes.maskWidth * BitSizes::kTogether * sizes.rowBytes, kVectorBytes);
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
          plan_(spec, 1, 8, sizes_.window(), scratch_.terms, scratch_.weights) {}

    void run() {
        // Pixels of a row that the mask reaches, and of these the first to the last in readable memory.
        from_ = -header_.anchorX;
        to_ = size_.width + header_.rightExtent;
        readableFrom_ = border_.leftInMemory() ? from_ : 0;
        readableTo_ = border_.rightInMemory() ? to_ : size_.width;
        const int64_t firstByte = (src_.phase + readableFrom_) >> 3;
        const int64_t endByte = ((src_.phase + readableTo_ - 1) >> 3) + 1;
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
    using Word = uint64_t;
    static constexpr int kWordBits = 64;

    static BitScratch placeScratch(void* buffer, const BitSizes& sizes) {
        Area area(buffer);
        return layOutBitScratch(area, sizes);
    }

    uint8_t* planeRow(int plane, int64_t row) const {
        return scratch_.planes + (plane * sizes_.rows + row) * sizes_.rowBytes;
    }

    // A rectangle: the maxima of the columns, then those along the rows, which need no other rows.
    void runRectangle(Intake& intake, const Spec::Place& block) {
        for (int64_t y = 0; y < size_.height; y += sizes_.blockRows) {
            const int64_t rows = std::min(sizes_.blockRows, size_.height - y);
            intake.takeMaxima(y + block.row - header_.anchorY, rows, block.height);
            for (int64_t i = 0; i < rows; ++i) {
                extendRow(planeRow(0, i));
                const uint8_t* row = planeRow(0, i);
                for (int p = 1; p < plan_.planeCount(); ++p) {
                    const Plan::Plane& plane = plan_.plane(p);
                    makePlaneRow(plane, plane.source == 0 ? row : planeRow(plane.source, 0), planeRow(p, 0));
                }
                const int last = plan_.planeCount() - 1;
                const int32_t run = plan_.plane(last).run;
                int count = 0;
                for (int32_t at = 0;; at += run) {
                    const bool end = at + run >= block.length;
                    const int32_t column = block.column + (end ? block.length - run : at);
                    scratch_.parts[count++] = partAt(last == 0 ? row : planeRow(last, 0), column);
                    if (end) break;
                }
                writeRow(dst_.bytes.row(y + i), count);
            }
        }
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
            for (int64_t i = old; i < kept + rows; ++i) {
                extendRow(planeRow(0, i));
                for (int p = 1; p < plan_.planeCount(); ++p) {
                    const Plan::Plane& plane = plan_.plane(p);
                    makePlaneRow(plane, planeRow(plane.source, i), planeRow(p, i));
                }
            }
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
        for (int64_t r = 0; r < rows; ++r) {
            for (int32_t c = 0; c < columns; ++c) {
                scratch_.parts[c] = partAt(scratch_.columnRows + c * columnBytes + r * sizes_.rowBytes,
                                           scratch_.columns[c].column);
            }
            writeRow(dst_.bytes.row(y + first + r), columns);
        }
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

    // Makes the pixels of a row that are not in readable memory.
    void extendRow(uint8_t* row) const {
        const auto bit = [&](int64_t x) {
            const int64_t at = sizes_.margin * 8 + src_.phase + x;
            return (row[at >> 3] >> (7 - (at & 7)) & 1) != 0;
        };
        const bool replicates = border_.kind() == BorderReplicate;
        setPixels(row, from_, readableFrom_, replicates ? bit(0) : value_);
        setPixels(row, readableTo_, to_, replicates ? bit(size_.width - 1) : value_);
    }
    void setPixels(uint8_t* row, int64_t from, int64_t to, bool value) const {
        if (from >= to) return;
        const int64_t first = sizes_.margin * 8 + src_.phase + from;
        const int64_t last = sizes_.margin * 8 + src_.phase + to - 1;
        const auto set = [&](int64_t byte, int mask) {
            row[byte] = static_cast<uint8_t>(value ? row[byte] | mask : row[byte] & ~mask);
        };
        const int firstMask = 0xFF >> (first & 7);
        const int lastMask = 0xFF << (7 - (last & 7)) & 0xFF;
        if (first >> 3 == last >> 3) return set(first >> 3, firstMask & lastMask);
        set(first >> 3, firstMask);
        std::memset(row + (first >> 3) + 1, value ? 0xFF : 0,
                    static_cast<size_t>((last >> 3) - (first >> 3) - 1));
        set(last >> 3, lastMask);
    }

    // The part of output words for a column of the mask. Output begins at the destination's first byte,
    // `phase` pixels before the region.
    Part partAt(const uint8_t* row, int32_t column) const {
        const int64_t at = sizes_.margin * 8 + src_.phase - dst_.phase + column - header_.anchorX;
        return {row + (at >> 3), static_cast<int>(at & 7)};
    }

    static OKPCV_INLINE Vec<Word> wordsAt(const uint8_t* p) { return reverseBytes(bitCast<Word>(load(p))); }
    static OKPCV_INLINE Vec<Word> shifted(Vec<Word> words, Vec<Word> next, int shift) {
        return shiftLeft(words, shift) | shiftRight(next, kWordBits - shift);
    }

    // Whether the parts are all near enough to the first to come out of the same two words.
    static bool areClose(const Part* parts, int count) {
        for (int i = 0; i < count; ++i) {
            const int64_t distance = (parts[i].from - parts[0].from) * 8 + parts[i].shift;
            if (distance < 0 || distance >= kWordBits) return false;
        }
        return true;
    }

    // Calls put(vector of bytes, byte) for each whole vector of output, then for one behind the last.
    template <class Put>
    static OKPCV_INLINE void combineParts(const Part* parts, int count, int64_t wholeBytes, Put put) {
        if (count <= kMostParts && areClose(parts, count)) {
            detail::withCount<1, kMostParts>(count, [&](auto n) OKPCV_INLINE_LAMBDA {
                int shifts[n];
                for (int i = 0; i < n; ++i)
                    shifts[i] = static_cast<int>((parts[i].from - parts[0].from) * 8) + parts[i].shift;
                const uint8_t* const from = parts[0].from;
                for (int64_t x = 0; x <= wholeBytes; x += kVectorBytes) {
                    const Vec<Word> words = wordsAt(from + x), next = wordsAt(from + x + sizeof(Word));
                    Vec<Word> result = shifted(words, next, shifts[0]);
                    for (int i = 1; i < n; ++i) result = Op::of(result, shifted(words, next, shifts[i]));
                    put(bitCast<uint8_t>(reverseBytes(result)), x);
                }
            });
            return;
        }
        for (int64_t x = 0; x <= wholeBytes; x += kVectorBytes) {
            Vec<Word> result = broadcast(Op::template identity<Word>);
            for (int i = 0; i < count; ++i) {
                const uint8_t* const p = parts[i].from + x;
                result = Op::of(result, shifted(wordsAt(p), wordsAt(p + sizeof(Word)), parts[i].shift));
            }
            put(bitCast<uint8_t>(reverseBytes(result)), x);
        }
    }

    // A row of a plane: runs of a length from those of its source.
    void makePlaneRow(const Plan::Plane& plane, const uint8_t* source, uint8_t* row) const {
        Part parts[kMostParts];
        for (int i = 0; i < plane.parts; ++i) {
            const int64_t at = plane.steps[i].offset;
            parts[i] = {source + (at >> 3), static_cast<int>(at & 7)};
        }
        // From the first pixel that the mask reaches to the last that begins a run.
        const int64_t first = (sizes_.margin * 8 + src_.phase + from_) >> 3;
        const int64_t end = (sizes_.margin * 8 + src_.phase + to_ - plane.run) >> 3;
        for (int i = 0; i < plane.parts; ++i) parts[i].from += first;
        combineParts(parts, plane.parts, end - first,
                     [&](Vec<uint8_t> v, int64_t x) OKPCV_INLINE_LAMBDA { store(row + first + x, v); });
    }

    // A row of the destination from scratch_.parts.
    void writeRow(uint8_t* row, int count) const {
        const int64_t bits = dst_.phase + size_.width;
        const int64_t wholeBytes = bits / 8 / kVectorBytes * kVectorBytes;
        const uint8_t head = row[0];
        combineParts(scratch_.parts, count, wholeBytes, [&](Vec<uint8_t> v, int64_t x) OKPCV_INLINE_LAMBDA {
            if (x < wholeBytes) {
                store(row + x, v);
            } else {
                writeRest(row + x, v, static_cast<int>(bits - x * 8));
            }
        });
        const int headMask = 0xFF >> dst_.phase;
        row[0] = static_cast<uint8_t>((head & ~headMask) | (row[0] & headMask));
    }
    // Less than a vector; the bits of the last byte that are not of the region stay.
    static void writeRest(uint8_t* to, Vec<uint8_t> v, int bits) {
        if (bits == 0) return;
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
    int64_t from_ = 0, to_ = 0, readableFrom_ = 0, readableTo_ = 0;
};

}  // namespace okpcv::morph
