// Dilation and erosion of bit-packed images against their definition, at all bit offsets on both sides.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "morph/reference.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace okpcv::test {
namespace {

// Rows of bits, the leftmost pixel of a byte in its most significant bit. The image begins `offset` bits
// behind data() and has readable pixels around it; the last row ends at an unreadable page.
class BitRows {
  public:
    struct Frame {
        int left = 0, top = 0, right = 0, bottom = 0;
    };

    BitRows(RoiSize size, int offset, Frame frame, int padding, Random& random)
        : offset_(offset), frame_(frame) {
        // Pixels to the left of the first one may lie in bytes before the pointer.
        before_ = (std::max(frame.left - offset, 0) + 7) / 8;
        const int rowBytes = before_ + (offset + size.width + frame.right + 7) / 8;
        step_ = rowBytes + padding;
        const int rows = frame.top + size.height + frame.bottom;
        memory_ = std::make_unique<GuardedMemory>(static_cast<size_t>(step_) * (rows - 1) + rowBytes,
                                                  GuardedMemory::At::End);
        bytes_ = static_cast<size_t>(step_) * (rows - 1) + rowBytes;
        for (size_t i = 0; i < bytes_; ++i) memory_->data()[i] = static_cast<char>(random.integer(0, 255));
    }
    uint8_t* data() const {
        return reinterpret_cast<uint8_t*>(memory_->data()) + before_ +
               static_cast<ptrdiff_t>(frame_.top) * step_;
    }
    int step() const { return step_; }
    uint8_t at(int x, int y) const {
        const int bit = offset_ + x + 8 * before_;
        return data()[static_cast<ptrdiff_t>(y) * step_ - before_ + bit / 8] >> (7 - bit % 8) & 1;
    }
    void set(int x, int y, int value) {
        const int bit = offset_ + x + 8 * before_;
        uint8_t& byte = data()[static_cast<ptrdiff_t>(y) * step_ - before_ + bit / 8];
        byte = static_cast<uint8_t>((byte & ~(1 << (7 - bit % 8))) | value << (7 - bit % 8));
    }
    std::vector<char> content() const { return {memory_->data(), memory_->data() + bytes_}; }

  private:
    int offset_;
    Frame frame_;
    int before_ = 0, step_ = 0;
    size_t bytes_ = 0;
    std::unique_ptr<GuardedMemory> memory_;
};

void expectDefinition(Random& random, RoiSize roi, const Mask& mask, uint32_t border, int srcOffset,
                      int dstOffset, double density) {
    SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height << " mask " << mask.width << "x"
                                    << mask.height << " border " << border << " offsets " << srcOffset << " "
                                    << dstOffset);
    const uint32_t flags = border | border >> 4;
    BitRows src(roi, srcOffset,
                {flags & BorderInMemLeft ? mask.left() : 0, flags & BorderInMemTop ? mask.above() : 0,
                 flags & BorderInMemRight ? mask.right() : 0, flags & BorderInMemBottom ? mask.below() : 0},
                random.integer(0, 3), random);
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) src.set(x, y, random.chance(density));
    }
    for (const Op op : {Op::Dilate, Op::Erode}) {
        // With the smallest step that is allowed, a row may begin in the byte in which the one above it ends.
        const int narrowest = (roi.width + 7) / 8 - (dstOffset + roi.width + 7) / 8;
        const BitRows dst(roi, dstOffset, {}, random.chance(0.3) ? narrowest : random.integer(0, 3), random);
        const std::vector<char> before = dst.content();
        const uint8_t value = random.chance(0.5) ? static_cast<uint8_t>(random.integer(1, 255)) : uint8_t{0};

        okpStatus status;
        if (random.chance(0.5)) {
            int32_t specSize = 0, bufferSize = 0;
            ASSERT_EQ(okpiMorphologyBorderGetSize_1u_C1R(roi, mask.size(), &specSize, &bufferSize),
                      okpStatusOk);
            const GuardedMemory spec(static_cast<size_t>(specSize), GuardedMemory::At::End);
            const GuardedMemory buffer(static_cast<size_t>(bufferSize), GuardedMemory::At::End);
            auto* const pSpec = reinterpret_cast<MorphSpec*>(spec.data());
            auto* const pBuffer = reinterpret_cast<uint8_t*>(buffer.data());
            std::memset(pBuffer, 0x3C, static_cast<size_t>(bufferSize));
            ASSERT_EQ(okpiMorphologyBorderInit_1u_C1R(roi, mask.bytes.data(), mask.size(), pSpec, pBuffer),
                      okpStatusOk);
            status = (op == Op::Dilate ? okpiDilateBorder_1u_C1R : okpiErodeBorder_1u_C1R)(
                src.data(), src.step(), srcOffset, dst.data(), dst.step(), dstOffset, roi, border, value,
                pSpec, pBuffer);
        } else {
            const RoiSizeL roiL{roi.width, roi.height}, maskL{mask.width, mask.height};
            int64_t specSize = 0, bufferSize = 0;
            ASSERT_EQ(okpiDilateGetSpecSize_L(roiL, maskL, &specSize), okpStatusOk);
            ASSERT_EQ(okpiErodeGetBufferSize_L(roiL, maskL, DataType1u, 1, &bufferSize), okpStatusOk);
            const GuardedMemory spec(static_cast<size_t>(specSize), GuardedMemory::At::End);
            const GuardedMemory buffer(static_cast<size_t>(bufferSize), GuardedMemory::At::Start);
            auto* const pSpec = reinterpret_cast<MorphSpec*>(spec.data());
            auto* const pBuffer = reinterpret_cast<uint8_t*>(buffer.data());
            ASSERT_EQ(okpiErodeInit_L(roiL, mask.bytes.data(), maskL, pSpec), okpStatusOk);
            status = (op == Op::Dilate ? okpiDilate_1u_C1R_L : okpiErode_1u_C1R_L)(
                src.data(), src.step(), srcOffset, dst.data(), dst.step(), dstOffset, roiL, border, &value,
                pSpec, pBuffer);
        }
        ASSERT_EQ(status, okpStatusOk);

        const uint32_t kind = border & 15;
        const int outside = kind == BorderDefault ? op == Op::Erode : value != 0;
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                const int result =
                    morphed<int>(op, mask, roi, kind == BorderDefault ? border + 1 : border, outside, x, y,
                                 [&](int sx, int sy) { return int{src.at(sx, sy)}; });
                ASSERT_EQ(int{dst.at(x, y)}, result)
                    << (op == Op::Dilate ? "dilation" : "erosion") << " at " << x << "," << y;
            }
        }
        const std::vector<char> after = dst.content();
        std::vector<char> inside(after.size());
        for (int y = 0; y < roi.height; ++y) {
            for (int bit = dstOffset; bit < dstOffset + roi.width; ++bit)
                inside[static_cast<size_t>(y * dst.step() + bit / 8)] |= static_cast<char>(0x80 >> bit % 8);
        }
        size_t differing = 0;
        for (size_t i = 0; i < after.size(); ++i) differing += ((after[i] ^ before[i]) & ~inside[i]) != 0;
        ASSERT_EQ(differing, 0U) << "bits outside the region";
    }
}

TEST(DilateErodeBits, AllOffsets) {
    Random random(21);
    for (int srcOffset = 0; srcOffset < 9; ++srcOffset) {
        for (int dstOffset = 0; dstOffset < 9; ++dstOffset) {
            const RoiSize roi{random.integer(1, 300), random.integer(1, 6)};
            expectDefinition(random, roi, randomMask(random, 5), randomBorder(random, false), srcOffset,
                             dstOffset, 0.5);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

// A rectangle at any place in a mask that is hardly larger.
Mask rectangleIn(int width, int height, Random& random) {
    const int left = random.integer(0, 1), right = random.integer(0, 1);
    const int above = random.integer(0, 1), below = random.integer(0, 1);
    return {left + width + right, above + height + below, [=](int i, int j) {
                return i >= left && i < left + width && j >= above && j < above + height ? 1 : 0;
            }};
}

TEST(DilateErodeBits, SmallRectanglesOverWideRows) {
    Random random(23);
    for (int srcOffset = 0; srcOffset < 8; ++srcOffset) {
        for (int dstOffset = 0; dstOffset < 8; ++dstOffset) {
            const Mask mask = rectangleIn(random.integer(1, 5), random.integer(1, 4), random);
            const RoiSize roi{random.integer(350, 700), random.integer(1, 11)};
            expectDefinition(random, roi, mask, randomBorder(random, false), srcOffset, dstOffset,
                             random.chance(0.5) ? 0.1 : 0.9);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

TEST(DilateErodeBits, RunsOfEveryLength) {
    Random random(24);
    for (int length = 1; length <= 30; ++length) {
        for (int i = 0; i < 12; ++i) {
            const Mask mask = rectangleIn(length, random.integer(1, 6), random);
            expectDefinition(random, {random.integer(1, 400), random.integer(1, 9)}, mask,
                             randomBorder(random, false), random.integer(0, 7), random.integer(0, 7),
                             random.chance(0.5) ? 0.02 : 0.98);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

TEST(DilateErodeBits, AllMasks) {
    Random random(22);
    for (int i = 0; i < 400; ++i) {
        const RoiSize roi{random.integer(1, 200), random.integer(1, 40)};
        expectDefinition(random, roi, randomMask(random, i % 4 == 0 ? 80 : 12), randomBorder(random, false),
                         random.integer(0, 40), random.integer(0, 40), random.chance(0.5) ? 0.03 : 0.97);
        ASSERT_FALSE(testing::Test::HasFatalFailure());
    }
}

}  // namespace
}  // namespace okpcv::test
