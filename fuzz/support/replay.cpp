// Runs a fuzzer's entry without a fuzzer, for tools that bring their own instruments: on the files named, or
// on so many inputs of random bytes. usage: FAMILY_replay COUNT | FILE...
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count);

int main(int argc, char** argv) {
    std::vector<uint8_t> input(400);
    std::mt19937 random(1);
    for (int i = 1; i < argc; ++i) {
        char* end = nullptr;
        const long count = std::strtol(argv[i], &end, 10);
        for (long n = 0; *end == 0 && n < count; ++n) {
            for (uint8_t& byte : input) byte = static_cast<uint8_t>(random());
            LLVMFuzzerTestOneInput(input.data(), input.size());
        }
        if (*end == 0) continue;
        std::ifstream file(argv[i], std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    return 0;
}
