// Calls the library from C++.
#include <okpcv.hpp>

#include <array>

int main() {
    const std::array<uint8_t, 4> pixels{1, 2, 3, 4};
    std::array<int32_t, 9> sums{};
    const okpcv::ImageView<const uint8_t> image(pixels, {2, 2});
    okpcv::integral(image, okpcv::ImageView<int32_t>(sums, {3, 3})).orThrow();
    return sums[8] == 10 ? 0 : 1;
}
