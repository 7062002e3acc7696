// A large readable area that takes little memory: one chunk of equal bytes, mapped again and again.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace okpcv::test {

class RepeatedMemory {
  public:
    RepeatedMemory(int64_t bytes, uint8_t value) : chunks_((bytes + kChunk - 1) / kChunk) {
        const int file = memfd_create("repeated", 0);
        if (file < 0 || ftruncate(file, kChunk) != 0) std::abort();
        data_ = static_cast<uint8_t*>(mmap(nullptr, static_cast<size_t>(chunks_ * kChunk), PROT_NONE,
                                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        if (data_ == MAP_FAILED) std::abort();
        for (int64_t i = 0; i < chunks_; ++i) {
            void* const chunk = mmap(data_ + i * kChunk, kChunk, PROT_READ | PROT_WRITE,
                                     MAP_SHARED | MAP_FIXED | MAP_POPULATE, file, 0);
            if (chunk == MAP_FAILED) std::abort();
            if (i == 0) std::memset(chunk, value, kChunk);
        }
        close(file);
    }
    ~RepeatedMemory() { munmap(data_, static_cast<size_t>(chunks_ * kChunk)); }
    RepeatedMemory(const RepeatedMemory&) = delete;
    RepeatedMemory& operator=(const RepeatedMemory&) = delete;

    const uint8_t* data() const { return data_; }
    // The same bytes of T; writing them writes every repetition.
    template <class T>
    const T* as() const {
        return reinterpret_cast<const T*>(data_);
    }

  private:
    static constexpr int64_t kChunk = int64_t{1} << 23;
    int64_t chunks_;
    uint8_t* data_;
};

}  // namespace okpcv::test
