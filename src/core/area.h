// Areas: one layout function per spec or scratch buffer places its parts. The size query runs it over no
// memory to count, the initialiser and the operation run it over the caller's, so the three cannot disagree.
//
//     struct Scratch { float* rows; int32_t* stack; };
//     Scratch layOut(Area& area, Size size) {
//         Scratch s;
//         s.rows = area.take<float>(size.width * 3, 32);
//         s.stack = area.take<int32_t>(size.width * size.height);
//         return s;
//     }
//
//     Area counted; layOut(counted, size);            counted.bytes(): enough at any address
//     Area placed(pBuffer); auto s = layOut(placed, size);
#pragma once

#include <cstdint>

#include "core/numbers.h"

namespace okpcv {

class Area {
  public:
    // Counts only.
    Area() = default;
    // Places parts in the caller's memory.
    explicit Area(void* memory) : base_(reinterpret_cast<uintptr_t>(memory)) {}

    // The next `count` elements, aligned to `alignment` bytes (a power of two). Null when counting.
    template <class T>
    T* take(int64_t count, int64_t alignment = alignof(T)) {
        int64_t bytes = 0;
        fits_ = fits_ && count >= 0 && multiplyChecked(count, int64_t{sizeof(T)}, bytes);
        if (!fits_) return nullptr;
        if (base_ == 0) {
            // The caller's memory may begin anywhere, so aligning may cost alignment - 1 bytes each time.
            fits_ = addChecked(used_, alignment - 1, used_) && addChecked(used_, bytes, used_);
            return nullptr;
        }
        const uintptr_t mask = static_cast<uintptr_t>(alignment) - 1;
        const uintptr_t at = (base_ + static_cast<uintptr_t>(used_) + mask) & ~mask;
        used_ = static_cast<int64_t>(at - base_) + bytes;
        return reinterpret_cast<T*>(at);
    }

    // The same for `rows` rows of so many elements.
    template <class T>
    T* takeRows(int64_t rows, int64_t elements, int64_t alignment = alignof(T)) {
        int64_t count = 0;
        return take<T>(multiplyChecked(rows, elements, count) ? count : -1, alignment);
    }

    // Bytes from the start to the end of the last part.
    int64_t bytes() const { return used_; }
    // Whether the bytes fit 64 bits.
    bool fits() const { return fits_; }

  private:
    uintptr_t base_ = 0;
    int64_t used_ = 0;
    bool fits_ = true;
};

}  // namespace okpcv
