// What the C++ face costs: the same operation through okpcv.hpp and, as its peer, through the C interface.
#include "okpcv.hpp"

#include <array>
#include <memory>

#include "support/compare.h"

namespace {

constexpr char kPeer[] = "the C function";

template <class T>
okpcv::ImageView<T> view(const bench::Image<T>& image) {
    return {image.data(), image.size(), image.step()};
}

bench::Case absDiff(RoiSize size) {
    const auto a = bench::randomImage<uint8_t>(size), b = bench::randomImage<uint8_t>(size);
    const bench::Image<uint8_t> dst(size), theirs(size);
    return {.reads = 2,
            .writes = 1,
            .ours = [=] { return okpcv::absDiff(view(a), view(b), view(dst)).code(); },
            .peerName = kPeer,
            .peer =
                [=] {
                    return okpiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), theirs.data(),
                                              theirs.step(), size);
                },
            .agree = bench::same(dst, theirs)};
}

bench::Case separable(RoiSize size) {
    static constexpr std::array<float, 5> kernel{0.0625F, 0.25F, 0.375F, 0.25F, 0.0625F};
    const auto src = bench::randomImage<float>(size);
    const bench::Image<float> dst(size), theirs(size);
    using Filter = okpcv::SeparableFilter<float>;
    const auto filter = std::make_shared<Filter>(Filter::create(size, kernel, kernel).orThrow());

    int32_t specBytes = 0, bufferBytes = 0;
    okpiFilterSeparableGetSpecSize({5, 5}, DataType32f, 1, &specBytes);
    okpiFilterSeparableGetBufferSize(size, {5, 5}, DataType32f, DataType32f, 1, &bufferBytes);
    const auto spec = std::make_shared<okpcv::Buffer>(specBytes);
    const auto buffer = std::make_shared<okpcv::Buffer>(bufferBytes);
    okpiFilterSeparableInit_32f(kernel.data(), kernel.data(), {5, 5}, DataType32f, 1, spec->data());
    return {.reads = 4,
            .writes = 4,
            .ours = [=] { return (*filter)(view(src), view(dst), BorderMirror).code(); },
            .peerName = kPeer,
            .peer =
                [=] {
                    return okpiFilterSeparable_32f_C1R(src.data(), src.step(), theirs.data(), theirs.step(),
                                                       size, BorderMirror, 0, spec->data(), buffer->data());
                },
            .agree = bench::same(dst, theirs)};
}

constexpr RoiSize kSizes[] = {{8, 8}, {16, 16}, {640, 480}};

const bench::Family family("face", [](bench::Family& f) {
    f.add("okpcv::absDiff<uint8_t>", absDiff, kSizes);
    f.add("okpcv::SeparableFilter<float>/k5", separable, kSizes);
});

}  // namespace
