// Border kinds: which are accepted, and which pixel stands where.
#include "core/border.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/guarded_image.h"

namespace okpcv::test {
namespace {

TEST(Border, FiltersAcceptReplicateMirrorConstantAndMemory) {
    for (BorderKind value = 0; value < 600; ++value) {
        const BorderKind kind = value & 15;
        const bool accepted = value <= 255 && (value == 240 || kind == 1 || kind == 3 || kind == 6);
        EXPECT_EQ(isFilterBorder(value), accepted) << value;
    }
    EXPECT_FALSE(isFilterBorder(0x80000001U));
}

TEST(Border, MorphologyAcceptsTheDefaultToo) {
    for (BorderKind value = 0; value < 5000; ++value) {
        const BorderKind kind = value & 15;
        const bool accepted =
            value <= 4095 && (value == 240 || kind == 1 || kind == 3 || kind == 5 || kind == 6);
        EXPECT_EQ(isMorphologyBorder(value), accepted) << value;
    }
    EXPECT_FALSE(isMorphologyBorder(0x80000001U));
}

TEST(Border, FlagsFold) {
    EXPECT_EQ(foldBorderFlags(BorderReplicate | 0x100U), BorderReplicate | BorderInMemTop);
    EXPECT_EQ(foldBorderFlags(BorderConstant | 0x800U | BorderInMemTop),
              BorderConstant | BorderInMemRight | BorderInMemTop);
    EXPECT_EQ(foldBorderFlags(BorderInMemory), BorderKind{BorderInMemory});
    EXPECT_EQ(foldBorderFlags(0xFF5U), BorderDefault | BorderKind{BorderInMemory});
}

TEST(Border, PlacesPixels) {
    const auto line = [](BorderKind kind, int64_t from, int64_t to, int64_t n) {
        std::vector<int64_t> columns;
        for (int64_t x = from; x < to; ++x) columns.push_back(Border(kind).column(x, n));
        return columns;
    };
    constexpr int64_t value = Border::kValue;
    using Columns = std::vector<int64_t>;
    EXPECT_EQ(line(BorderReplicate, -2, 7, 5), (Columns{0, 0, 0, 1, 2, 3, 4, 4, 4}));
    EXPECT_EQ(line(BorderMirror, -3, 8, 5), (Columns{3, 2, 1, 0, 1, 2, 3, 4, 3, 2, 1}));
    EXPECT_EQ(line(BorderConstant, -1, 3, 2), (Columns{value, 0, 1, value}));
    EXPECT_EQ(line(BorderInMemory, -2, 4, 2), (Columns{-2, -1, 0, 1, 2, 3}));
    EXPECT_EQ(line(BorderMirror | BorderInMemLeft, -2, 4, 2), (Columns{-2, -1, 0, 1, 0, 1}));
    EXPECT_EQ(line(BorderMirror | BorderInMemTop | BorderInMemBottom, -1, 3, 2), (Columns{1, 0, 1, 0}));
    // Lines shorter than the reach are read inside.
    EXPECT_EQ(line(BorderMirror, -4, 5, 1), (Columns(9, 0)));
    EXPECT_EQ(line(BorderMirror, -5, 6, 2), (Columns{1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1}));
    EXPECT_EQ(line(BorderMirror, -6, 8, 3), (Columns{2, 1, 0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2, 1}));
}

TEST(Border, FlagsApplyToTheirOwnSide) {
    for (const BorderKind flag : {BorderInMemTop, BorderInMemBottom, BorderInMemLeft, BorderInMemRight}) {
        const Border border(BorderReplicate | flag);
        EXPECT_EQ(border.row(-2, 4), flag == BorderInMemTop ? -2 : 0);
        EXPECT_EQ(border.row(5, 4), flag == BorderInMemBottom ? 5 : 3);
        EXPECT_EQ(border.column(-2, 4), flag == BorderInMemLeft ? -2 : 0);
        EXPECT_EQ(border.column(5, 4), flag == BorderInMemRight ? 5 : 3);
    }
}

TEST(Border, ProducesColumnsOfEveryRangeInsideTheReadableMemory) {
    constexpr int kReach = 7;
    const uint8_t value[3] = {201, 202, 203};
    for (const BorderKind kind : {BorderReplicate, BorderMirror, BorderConstant}) {
        for (BorderKind flags = 0; flags < 256; flags += 64) {
            const Border border(kind | flags);
            for (int width = 1; width <= 6; ++width) {
                GuardedImage<uint8_t> row(width, 1,
                                          {.channels = 3,
                                           .left = border.leftInMemory() ? kReach : 0,
                                           .right = border.rightInMemory() ? kReach : 0});
                row.fill([](int x, int, int c) { return 100 + 10 * x + c; });
                for (int from = -kReach; from < width + kReach; ++from) {
                    for (int to = from + 1; to <= width + kReach; ++to) {
                        std::vector<uint8_t> actual(static_cast<size_t>(to - from) * 3);
                        std::vector<uint8_t> expected;
                        for (int x = from; x < to; ++x) {
                            const int64_t source = border.column(x, width);
                            for (int c = 0; c < 3; ++c) {
                                expected.push_back(source == Border::kValue
                                                       ? value[c]
                                                       : row.at(static_cast<int>(source), 0, c));
                            }
                        }
                        produceColumns<3>(actual.data(), row.data(), width, from, to, border, value);
                        ASSERT_EQ(actual, expected)
                            << kind << ' ' << flags << ' ' << width << ' ' << from << ' ' << to;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace okpcv::test
