// The spec of dilation and erosion: the mask as a list of blocks, disjoint rectangles of nonzero elements
// that together are the mask; or one block that slants. One layout serves both operations and all types.
//
// A spec is a header followed by its blocks. Both are read and written bytewise, so a spec may lie at any
// address and may be copied. Blocks take 8 bytes each; a mask row has at most one run for every two columns,
// so that the blocks of any mask fit the size that the queries report.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/numbers.h"
#include "okpcv/types.h"

namespace okpcv::morph {

enum class Shape : int32_t { General = 0, Empty = 3 };

struct SpecHeader {
    int32_t maskWidth, maskHeight;
    int32_t anchorX, anchorY;           // columns left of the centre, rows above it
    int32_t rightExtent, bottomExtent;  // columns right of the centre, rows below it
    int32_t roiWidth;                   // the width that the buffer was sized for
    int32_t roiWidthAligned;            // the same rounded up to a multiple of 16; nothing here reads it
    Shape shape;
    int32_t blockCount;
    int32_t slope;  // columns by which each row of the only block stands right of the row above
};

struct Block {
    uint32_t first;  // row * maskWidth + column of its first element
    uint16_t length, height;
};
static_assert(sizeof(Block) == 8);
inline constexpr int32_t kLongestBlock = 65535;

// What both generations report for a mask; the second adds alignment of its own.
constexpr int64_t specBytes(int64_t maskWidth, int64_t maskHeight, int64_t fixedBytes) {
    return ((maskWidth | 1) * 5 + 4) * (maskHeight | 1) + fixedBytes;
}
inline constexpr int64_t kSpecFixedBytes = 136;
inline constexpr int64_t kSpecFixedBytesL = 160 + 16;
static_assert(sizeof(SpecHeader) <= kSpecFixedBytes);

// A spec in the caller's memory, as the operations read it.
class Spec {
  public:
    explicit Spec(const void* memory) : blocks_(static_cast<const char*>(memory) + sizeof(SpecHeader)) {
        std::memcpy(&header_, memory, sizeof header_);
    }
    const SpecHeader& header() const { return header_; }

    // A block with its place in the mask.
    struct Place {
        int32_t row, column, length, height;

        bool has(int32_t x, int32_t y) const {
            return x >= column && x < column + length && y >= row && y < row + height;
        }
    };
    Place block(int32_t i) const {
        Block block;
        std::memcpy(&block, blocks_ + int64_t{i} * int64_t{sizeof block}, sizeof block);
        const auto width = static_cast<uint32_t>(header_.maskWidth);
        return {static_cast<int32_t>(block.first / width), static_cast<int32_t>(block.first % width),
                block.length, block.height};
    }

    // Whether the neighbourhood is the pixel itself, so that the operation is a copy. Empty masks copy too.
    bool isIdentity() const {
        if (header_.shape == Shape::Empty) return true;
        if (header_.blockCount != 1) return false;
        const Place b = block(0);
        return b.length == 1 && b.height == 1 && b.has(header_.anchorX, header_.anchorY);
    }
    // Whether the mask is one upright rectangle.
    bool isRectangle() const { return header_.blockCount == 1 && header_.slope == 0; }

    // A run of a row and a run of a column that cross, or meet at an end.
    struct Cross {
        Place row, column;
    };
    // Of no height when the mask is something else.
    Cross findCross() const {
        // The centre belongs to one of the runs; of the other there is a block on either side of it.
        if (header_.blockCount < 2 || header_.blockCount > 3) return {};
        Place leftmost = block(0), topmost = block(0);
        int32_t right = 0, bottom = 0;
        int64_t elements = 0;
        for (int32_t i = 0; i < header_.blockCount; ++i) {
            const Place b = block(i);
            if (b.column < leftmost.column) leftmost = b;
            if (b.row < topmost.row) topmost = b;
            right = std::max(right, b.column + b.length);
            bottom = std::max(bottom, b.row + b.height);
            elements += int64_t{b.length} * b.height;
        }
        const Cross cross{{leftmost.row, leftmost.column, right - leftmost.column, 1},
                          {topmost.row, topmost.column, 1, bottom - topmost.row}};
        for (int32_t i = 0; i < header_.blockCount; ++i) {
            const Place b = block(i);
            const bool inRow = b.row == cross.row.row && b.height == 1;
            const bool inColumn = b.column == cross.column.column && b.length == 1;
            if (!inRow && !inColumn) return {};
        }
        const bool meet = elements == int64_t{cross.row.length} + cross.column.height - 1;
        return meet ? cross : Cross{};
    }

  private:
    SpecHeader header_;
    const char* blocks_;
};

namespace detail {

// A mask seen by rows or, transposed, by columns: lines of elements, `along` a line and `across` lines.
struct MaskView {
    const uint8_t* mask;
    int64_t length, lines;
    int64_t along, across;

    bool at(int64_t line, int64_t i) const { return mask[line * across + i * along] != 0; }
    // The end of the run of equal elements that begins at i.
    int64_t runEnd(int64_t line, int64_t i) const {
        const bool inside = at(line, i);
        while (i < length && at(line, i) == inside) ++i;
        return i;
    }
    // Whether [from, to) is a whole run of nonzero elements of the line.
    bool isRun(int64_t line, int64_t from, int64_t to) const {
        return at(line, from) && (from == 0 || !at(line, from - 1)) && runEnd(line, from) == to;
    }
};

// Calls visit(line, from, to, lines) for every run [from, to) of nonzero elements; equal runs of consecutive
// lines make one block. What is longer or taller than a block's fields hold is split.
template <class Visit>
void visitBlocks(const MaskView& view, Visit visit) {
    const auto pieces = [](int64_t from, int64_t to, auto piece) {
        for (; from < to; from += kLongestBlock)
            piece(from, to - from < kLongestBlock ? to - from : int64_t{kLongestBlock});
    };
    for (int64_t line = 0; line < view.lines; ++line) {
        for (int64_t from = 0, to = 0; from < view.length; from = to) {
            to = view.runEnd(line, from);
            if (!view.at(line, from) || (line > 0 && view.isRun(line - 1, from, to))) continue;
            int64_t end = line + 1;
            while (end < view.lines && view.isRun(end, from, to)) ++end;
            pieces(line, end, [&](int64_t first, int64_t lines) {
                pieces(from, to, [&](int64_t start, int64_t length) { visit(first, start, length, lines); });
            });
        }
    }
}

// Rows of one run each, of equal length, each the same number of columns right of the one above: a slanted
// line. No height when the mask is something else or upright.
struct Slant {
    int64_t row = 0, column = 0, length = 0, height = 0, slope = 0;
};
inline Slant findSlant(const MaskView& view) {
    Slant s;
    for (int64_t line = 0; line < view.lines; ++line) {
        int64_t from = view.at(line, 0) ? 0 : view.runEnd(line, 0);
        if (from == view.length) continue;
        const int64_t to = view.runEnd(line, from);
        if (to < view.length && view.runEnd(line, to) < view.length) return {};
        if (s.height == 0) {
            s = {line, from, to - from, 0, 0};
        } else {
            if (s.height == 1) s.slope = from - s.column;
            if (line != s.row + s.height || to - from != s.length || s.slope == 0 ||
                from != s.column + s.height * s.slope)
                return {};
        }
        ++s.height;
    }
    return s.length > kLongestBlock || s.height > kLongestBlock ? Slant{} : s;
}

// The blocks and the cost of applying them, in quarters of a load per vector: four rows of output share the
// rows of a tall block, for which there is a loop. A length is combined of as many parts as the longest runs
// before it need, or gets a plane of runs of its own.
struct Cost {
    static constexpr int kLengths = 64;

    int64_t blocks = 0;
    int64_t loads[kLengths]{};  // by length; all long ones together

    void add(int64_t length, int64_t height) {
        ++blocks;
        loads[length < kLengths ? length : kLengths - 1] += height + (height <= 3 ? 3 : 5);
    }
    int64_t quarterLoads() const {
        int64_t sum = loads[1], longest = 1;
        for (int64_t length = 2; length < kLengths; ++length) {
            if (loads[length] == 0) continue;
            const int64_t inParts = (length + longest - 1) / longest * loads[length];
            const int64_t withPlane = loads[length] + (length <= 4 ? 12 : 16);
            if (withPlane < inParts) longest = length;
            sum += std::min(inParts, withPlane);
        }
        return sum;
    }
};

}  // namespace detail

// Fills a spec from a mask of nonzero and zero bytes without padding.
inline void initSpec(void* memory, const uint8_t* mask, int32_t maskWidth, int32_t maskHeight,
                     int32_t roiWidth) {
    SpecHeader header{};
    header.maskWidth = maskWidth;
    header.maskHeight = maskHeight;
    header.anchorX = (maskWidth - 1) / 2;
    header.anchorY = (maskHeight - 1) / 2;
    header.rightExtent = maskWidth - 1 - header.anchorX;
    header.bottomExtent = maskHeight - 1 - header.anchorY;
    header.roiWidth = roiWidth;
    header.roiWidthAligned = static_cast<int32_t>((int64_t{roiWidth} + 15) / 16 * 16);

    char* const blocks = static_cast<char*>(memory) + sizeof header;
    const auto add = [&](int64_t row, int64_t column, int64_t length, int64_t height) {
        const Block block{static_cast<uint32_t>(row * maskWidth + column), static_cast<uint16_t>(length),
                          static_cast<uint16_t>(height)};
        std::memcpy(blocks + int64_t{header.blockCount} * int64_t{sizeof block}, &block, sizeof block);
        ++header.blockCount;
    };

    const detail::MaskView byRows{mask, maskWidth, maskHeight, 1, maskWidth};
    const detail::MaskView byColumns{mask, maskHeight, maskWidth, maskWidth, 1};
    detail::Cost rowsCost, columnsCost;
    detail::visitBlocks(
        byRows, [&](int64_t, int64_t, int64_t length, int64_t height) { rowsCost.add(length, height); });
    detail::visitBlocks(byColumns, [&](int64_t, int64_t, int64_t height, int64_t length) {
        columnsCost.add(length, height);
    });
    if (const detail::Slant slant = detail::findSlant(byRows); slant.height > 1) {
        add(slant.row, slant.column, slant.length, slant.height);
        header.slope = static_cast<int32_t>(slant.slope);
    } else if (columnsCost.quarterLoads() < rowsCost.quarterLoads() &&
               columnsCost.blocks <= rowsCost.blocks) {
        // Not more blocks than there are runs of rows, for which there is room.
        detail::visitBlocks(byColumns, [&](int64_t column, int64_t row, int64_t height, int64_t length) {
            add(row, column, length, height);
        });
    } else {
        detail::visitBlocks(byRows, add);
    }
    header.shape = header.blockCount == 0 ? Shape::Empty : Shape::General;
    std::memcpy(memory, &header, sizeof header);
}

}  // namespace okpcv::morph
