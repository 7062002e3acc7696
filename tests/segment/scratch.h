// Scratch buffers of exactly the queried size, at any address, with canaries on both sides.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace okpcv::test {

class Scratch {
  public:
    Scratch(size_t bytes, size_t offset)
        : memory_(kMargin + offset + bytes + kMargin, kCanary), begin_(kMargin + offset), bytes_(bytes) {
        std::fill_n(data(), bytes, uint8_t{0xFF});
    }

    uint8_t* data() { return memory_.data() + begin_; }
    bool intact() const {
        const auto isCanary = [](uint8_t b) { return b == kCanary; };
        const auto end = memory_.begin() + static_cast<ptrdiff_t>(begin_ + bytes_);
        return std::all_of(memory_.begin(), memory_.begin() + static_cast<ptrdiff_t>(begin_), isCanary) &&
               std::all_of(end, memory_.end(), isCanary);
    }

  private:
    static constexpr uint8_t kCanary = 0xA7;
    static constexpr size_t kMargin = 64;
    std::vector<uint8_t> memory_;
    size_t begin_, bytes_;
};

}  // namespace okpcv::test
