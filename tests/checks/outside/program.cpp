// Calls the library from C++.
#include <okpcv.h>

#include <array>

int main() {
    const std::array<uint8_t, 4> pixels{1, 2, 3, 4};
    std::array<int32_t, 9> sums{};
    const okpStatus status = okpiIntegral_8u32s_C1R(pixels.data(), 2, sums.data(), 12, {2, 2}, 0);
    return status == okpStatusOk && sums[8] == 10 ? 0 : 1;
}
