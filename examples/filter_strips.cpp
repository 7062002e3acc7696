// Filters a large image in strips from several threads, and shows that the result is that of filtering it
// whole, bit for bit. Each thread has a work buffer of its own; they share the spec, which filtering only
// reads. A strip's neighbours are in memory, so its border says so on those sides, and only the first and the
// last strip make up rows of their own.
#include <okpcv.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr RoiSize kSize{4096, 3072};
constexpr int kThreads = 4;
const std::vector<float> kKernel{0.0625F, 0.25F, 0.375F, 0.25F, 0.0625F};
constexpr RoiSize kKernelSize{5, 5};

void check(const char* function, okpStatus status) {
    if (status == okpStatusOk) return;
    std::fprintf(stderr, "%s failed with status %d\n", function, static_cast<int>(status));
    std::exit(1);
}

// One strip of the image, rows `from` to `to` - 1.
void filterStrip(const std::vector<float>& src, std::vector<float>& dst, const std::vector<char>& spec,
                 int from, int to) {
    const RoiSize size{kSize.width, to - from};
    const int32_t step = kSize.width * static_cast<int32_t>(sizeof(float));
    const size_t offset = static_cast<size_t>(from) * kSize.width;
    BorderKind border = BorderMirror;
    if (from > 0) border |= BorderInMemTop;
    if (to < kSize.height) border |= BorderInMemBottom;

    int32_t bytes = 0;
    check("okpiFilterSeparableGetBufferSize",
          okpiFilterSeparableGetBufferSize(size, kKernelSize, DataType32f, DataType32f, 1, &bytes));
    std::vector<char> buffer(static_cast<size_t>(bytes));
    check("okpiFilterSeparable_32f_C1R",
          okpiFilterSeparable_32f_C1R(src.data() + offset, step, dst.data() + offset, step, size, border, 0,
                                      spec.data(), buffer.data()));
}

}  // namespace

int main() {
    std::vector<float> src(static_cast<size_t>(kSize.width) * kSize.height);
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<float>(i * 2654435761U % 1000);

    int32_t bytes = 0;
    check("okpiFilterSeparableGetSpecSize",
          okpiFilterSeparableGetSpecSize(kKernelSize, DataType32f, 1, &bytes));
    std::vector<char> spec(static_cast<size_t>(bytes));
    check("okpiFilterSeparableInit_32f",
          okpiFilterSeparableInit_32f(kKernel.data(), kKernel.data(), kKernelSize, DataType32f, 1,
                                      spec.data()));

    std::vector<float> whole(src.size()), strips(src.size());
    filterStrip(src, whole, spec, 0, kSize.height);

    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            filterStrip(src, strips, spec, kSize.height * t / kThreads, kSize.height * (t + 1) / kThreads);
        });
    }
    for (std::thread& thread : threads) thread.join();

    const bool same = std::equal(whole.begin(), whole.end(), strips.begin());
    std::printf("%d strips of %d x %d pixels: %s the image filtered whole\n", kThreads, kSize.width,
                kSize.height, same ? "the same as" : "DIFFERENT from");
    return same ? 0 : 1;
}
