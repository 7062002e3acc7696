// What the fuzzers share. A fuzzer is a list of exports, each with the shape of its call; an input chooses an
// export and everything that the call gets.
//
// A Call makes the arguments: images in exactly as many bytes as they may be accessed in, at any alignment,
// with poisoned gaps between their rows; areas of exactly the bytes that a query reported; and at most one
// fault: a null pointer, a size below 1 or far too large, or a step too small for the row. A call with a
// fault must be refused and leave all memory as it was. A call without one may return any documented status.
// What else can go wrong, the sanitizers see.
#ifndef OKPCV_FUZZ_FUZZ_H
#define OKPCV_FUZZ_FUZZ_H

#include <fuzzer/FuzzedDataProvider.h>
#include <sanitizer/asan_interface.h>
#include <valgrind/memcheck.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <initializer_list>
#include <limits>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "okpcv.h"

namespace fuzz {

[[noreturn]] inline void fail(const char* what, int64_t status) {
    std::fprintf(stderr, "%s (status %lld)\n", what, static_cast<long long>(status));
    std::abort();
}

// The input, as values.
class Data {
  public:
    Data(const uint8_t* bytes, size_t count) : provider_(bytes, count) {}

    template <class T>
    T between(T low, T high) {
        return provider_.ConsumeIntegralInRange<T>(low, high);
    }
    bool oneIn(int n) { return between(0, n - 1) == 0; }

    template <class T>
    T oneOf(std::initializer_list<T> values) {
        return values.begin()[between<size_t>(0, values.size() - 1)];
    }

    // Any value of a type, special ones often.
    template <class T>
    T any() {
        using Limits = std::numeric_limits<T>;
        if constexpr (std::is_floating_point_v<T>) {
            switch (between(0, 3)) {
                case 0:
                    return static_cast<T>(between(-4, 300));
                case 1:
                    return static_cast<T>(between(0, 1000)) / 1000;
                case 2:
                    return oneOf<T>({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), -T(0),
                                     Limits::denorm_min(), Limits::max(), Limits::lowest(), Limits::min()});
                default: {
                    T value = 0;
                    provider_.ConsumeData(&value, sizeof value);
                    return value;
                }
            }
        } else {
            if (oneIn(3))
                return oneOf<T>({Limits::min(), Limits::max(), T(Limits::max() / 2 + 1), T(0), T(1), T(-1),
                                 T(Limits::max() - 1), T(Limits::min() + 1)});
            return oneIn(2) ? static_cast<T>(between(0, 70)) : provider_.ConsumeIntegral<T>();
        }
    }

    void bytes(void* to, size_t count) { provider_.ConsumeData(to, count); }

  private:
    FuzzedDataProvider provider_;
};

// Exactly so many bytes, at any alignment or one that is given; the address sanitizer guards both ends.
class Block {
  public:
    Block(Data& data, int64_t bytes, size_t alignment = 1)
        : lead_(data.between<size_t>(0, 15) / alignment * alignment),
          bytes_(static_cast<size_t>(bytes)),
          memory_(std::make_unique<uint8_t[]>(lead_ + bytes_)) {}

    uint8_t* begin() const { return memory_.get() + lead_; }
    size_t size() const { return bytes_; }

    // Bits of any kind: noise, few values, or one.
    void fill(Data& data) {
        uint64_t state = data.any<uint32_t>() | uint64_t{1} << 40;
        const int kind = data.between(0, 3);
        uint8_t few[4] = {};
        data.bytes(few, sizeof few);
        for (size_t i = 0; i < bytes_; ++i) {
            state ^= state << 13, state ^= state >> 7, state ^= state << 17;
            const auto noise = static_cast<uint8_t>(state >> 24);
            begin()[i] = kind == 0 ? noise : kind == 1 ? few[noise % 2 * 2] : kind == 2 ? noise % 3 : few[0];
        }
    }

  private:
    size_t lead_, bytes_;
    std::unique_ptr<uint8_t[]> memory_;
};

// Pixels beyond the region that may be read.
struct Margins {
    int left = 0, top = 0, right = 0, bottom = 0;
};

// Readable pixels for the sides that a border takes from memory.
inline Margins marginsOf(BorderKind border, Margins reach) {
    const BorderKind sides = border | border >> 4;  // some operations take the flags four bits higher, too
    return {sides & BorderInMemLeft ? reach.left : 0, sides & BorderInMemTop ? reach.top : 0,
            sides & BorderInMemRight ? reach.right : 0, sides & BorderInMemBottom ? reach.bottom : 0};
}

// Values that become an argument of either width.
struct Step {
    int64_t bytes;
    operator int32_t() const { return static_cast<int32_t>(bytes); }
    operator int64_t() const { return bytes; }
};
struct Size {
    int64_t width, height;
    operator RoiSize() const { return {static_cast<int32_t>(width), static_cast<int32_t>(height)}; }
    operator RoiSizeL() const { return {width, height}; }
};

template <class T>
struct Image {
    T* data;
    Step step;
};

class Call {
  public:
    explicit Call(Data& data, int maxWidth = 70, int maxHeight = 12)
        : data_(data), size_{data.between(1, maxWidth), data.between(1, maxHeight)} {
        if (!data.oneIn(3)) return;
        fault_ = data.oneOf({Fault::Null, Fault::Size, Fault::Step});
        place_ = data.between(0, 4);
        if (fault_ != Fault::Size) return;
        // Of a width that is far too large the steps tell.
        const int32_t bad = data.oneOf({0, -1, INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX / 2 + 1});
        given_ = bad > 0 || data.oneIn(2) ? Size{bad, size_.height} : Size{size_.width, bad};
    }

    // For functions that refuse only steps that are not positive.
    void acceptSmallSteps() { smallestStep_ = 1; }

    // What the memory is for, and what the function is told.
    RoiSize real() const { return size_; }
    // The latter is asked for behind the images.
    Size size() { return sizeOr(size_); }
    // The same for another size than the images'.
    Size sizeOr(RoiSize valid) {
        const bool toldBySteps = madeStep_ > 0 && smallestStep_ == 0;
        if (fault_ != Fault::Size || (given_.width > size_.width && !toldBySteps))
            return {valid.width, valid.height};
        faulty_ = true;
        return given_;
    }
    Data& data() { return data_; }

    template <class T>
    Image<const T> source(int channels = 1, Margins margins = {}) {
        const Image<T> image = make<T>(size_, channels, margins);
        return {image.data, image.step};
    }
    // An image that is read and written.
    template <class T>
    Image<T> inOut(int channels = 1) {
        return make<T>(size_, channels, {});
    }
    // An image that is only written.
    template <class T>
    Image<T> destination(int channels = 1, RoiSize larger = {0, 0}) {
        const RoiSize size{size_.width + larger.width, size_.height + larger.height};
        const Image<T> image = make<T>(size, channels, {});
        const Block& block = blocks_.back();
        undefined_.push_back(&block);
        const auto row = static_cast<size_t>(size.width * channels) * sizeof(T);
        for (int y = 0; y < size.height; ++y) written_.emplace_back(block.begin() + y * madeStep_, row);
        return image;
    }

    // Memory that is not an image: values to read, and places for results, buffers and specs. Values are
    // aligned as their type is; bytes, as pixels, are not.
    template <class T>
    const T* input(int64_t count) {
        Block& block = blocks_.emplace_back(data_, count * int64_t{sizeof(T)}, alignof(T));
        block.fill(data_);
        return pointer(reinterpret_cast<const T*>(block.begin()));
    }
    template <class T = uint8_t>
    T* area(int64_t count = 1) {
        T* const values = const_cast<T*>(input<T>(count));
        undefined_.push_back(&blocks_.back());
        return values;
    }
    // The same where null is not always a fault: values that may not have to be looked at, results that may
    // not be wanted.
    template <class T>
    const T* optionalInput(int64_t count = 1) {
        return whichever<const T>([&] { return input<T>(count); });
    }
    template <class T>
    T* optionalResult() {
        return whichever<T>([&] { return data_.oneIn(4) ? nullptr : area<T>(); });
    }

    // Calls the function. Images stand for a pointer and a step.
    template <class Function, class... Arguments>
    okpStatus operator()(Function function, Arguments... arguments) {
        std::vector<std::vector<uint8_t>> before;
        if (faulty_) {
            for (const Block& block : blocks_)
                before.emplace_back(block.begin(), block.begin() + block.size());
        }
        // What a refused call may have written is looked at, so it stays defined.
        if (!faulty_) {
            for (const Block* block : undefined_)
                (void)VALGRIND_MAKE_MEM_UNDEFINED(block->begin(), block->size());
        }
        for (const auto& [first, bytes] : gaps_) ASAN_POISON_MEMORY_REGION(first, bytes);
        const okpStatus status = std::apply(function, std::tuple_cat(flat(arguments)...));
        for (const auto& [first, bytes] : gaps_) ASAN_UNPOISON_MEMORY_REGION(first, bytes);
        check(status);
        if (status >= 0) {
            for (const auto& [first, bytes] : written_) (void)VALGRIND_CHECK_MEM_IS_DEFINED(first, bytes);
        }
        if (faulty_) {
            if (status >= 0) fail("a bad call was accepted", status);
            for (size_t i = 0; i < before.size(); ++i) {
                if (!std::equal(before[i].begin(), before[i].end(), blocks_[i].begin()))
                    fail("a refused call wrote", status);
            }
        }
        return status;
    }

    static void check(okpStatus status) {
        static constexpr okpStatus kAll[] = {okpStatusOk,
                                             okpStatusNoOperation,
                                             okpStatusDivByZeroWarning,
                                             okpStatusTooManyLines,
                                             okpStatusLineTooLong,
                                             okpStatusBadArgument,
                                             okpStatusBadSize,
                                             okpStatusBadRange,
                                             okpStatusNullPointer,
                                             okpStatusDivByZero,
                                             okpStatusOutOfRange,
                                             okpStatusBadContext,
                                             okpStatusBadMode,
                                             okpStatusBadStep,
                                             okpStatusBadThreshold,
                                             okpStatusBadMaskKind,
                                             okpStatusBadAnchor,
                                             okpStatusBadNumChannels,
                                             okpStatusZeroDivisor,
                                             okpStatusBadChannelOfInterest,
                                             okpStatusBadChannelCount,
                                             okpStatusBadMetric,
                                             okpStatusBadDataType,
                                             okpStatusStepNotMultiple,
                                             okpStatusBadBorder,
                                             okpStatusBadNorm,
                                             okpStatusBadFilterKind,
                                             okpStatusSizeTooLarge,
                                             okpStatusInPlaceNotSupported};
        if (std::find(std::begin(kAll), std::end(kAll), status) == std::end(kAll))
            fail("an unknown status", status);
    }

  private:
    enum class Fault { None, Null, Size, Step };

    template <class T, class Make>
    T* whichever(Make make) {
        const int place = std::exchange(place_, -1);
        T* const made = make();
        place_ = place;
        return made;
    }

    template <class T>
    T* pointer(T* valid) {
        if (fault_ != Fault::Null || place_ < 0 || pointers_++ != place_) return valid;
        faulty_ = true;
        return nullptr;
    }

    template <class T>
    Image<T> make(RoiSize size, int channels, Margins margins) {
        const int64_t pixel = channels * int64_t{sizeof(T)};
        const int64_t width = margins.left + size.width + margins.right;
        const int64_t rows = margins.top + size.height + margins.bottom;
        int64_t gap = data_.between(0, 5) * int64_t{sizeof(T)};
        if (data_.oneIn(8)) gap += data_.between(0, 7);
        const int64_t step = madeStep_ = width * pixel + gap;

        Block& block = blocks_.emplace_back(data_, (rows - 1) * step + width * pixel);
        block.fill(data_);
        if (gap > 0) {
            for (int64_t y = 0; y + 1 < rows; ++y)
                gaps_.emplace_back(block.begin() + y * step + width * pixel, static_cast<size_t>(gap));
        }
        Image<T> image{
            pointer(reinterpret_cast<T*>(block.begin() + margins.top * step + margins.left * pixel)), {step}};
        if (fault_ == Fault::Step && images_++ == place_ % 2) {
            faulty_ = true;
            const int64_t row = size.width * pixel;
            const int64_t most = smallestStep_ > 0 ? smallestStep_ - 1 : row - 1;
            image.step.bytes =
                data_.oneOf<int64_t>({0, -1, -step, INT32_MIN, most, data_.between<int64_t>(-row, most)});
        }
        return image;
    }

    template <class T>
    static auto flat(const Image<T>& image) {
        return std::tuple(image.data, image.step);
    }
    template <class T>
    static auto flat(const T& value) {
        return std::tuple(value);
    }

    Data& data_;
    RoiSize size_;
    Size given_{};
    Fault fault_ = Fault::None;
    int place_ = 0, pointers_ = 0, images_ = 0;
    bool faulty_ = false;
    std::deque<Block> blocks_;
    int64_t madeStep_ = 0, smallestStep_ = 0;
    std::vector<std::pair<uint8_t*, size_t>> gaps_, written_;
    std::vector<const Block*> undefined_;
};

// A border: mostly a kind that exists, with any sides.
inline BorderKind anyBorder(Data& data) {
    if (data.oneIn(8)) return data.any<uint32_t>();
    return data.oneOf<BorderKind>({BorderReplicate, BorderMirror, BorderDefault, BorderConstant, 0}) |
           (data.oneIn(2) ? data.between<BorderKind>(0, 15) << 4 : 0);
}

// A size for a query: anything at all, or something that can be made.
template <class S>
S anySize(Data& data, int largest = 70) {
    using Extent = decltype(S::width);
    if (data.oneIn(2)) return {data.any<Extent>(), data.any<Extent>()};
    return {data.between<Extent>(1, largest), data.between<Extent>(1, largest)};
}

// What a query reports: an error, or sizes above 0.
template <class... Sizes>
void checkQuery(okpStatus status, Sizes... sizes) {
    Call::check(status);
    if (status > 0) fail("a query warned", status);
    if (status == okpStatusOk && ((sizes < 1) || ...)) fail("a query reported no bytes", status);
}

using Shape = void (*)(Data&);
struct Family {
    const Shape* shapes;
    size_t count;
};
// The exports of this fuzzer, defined by its family.
extern const Family family;

}  // namespace fuzz

// One export: FUZZ((shape<types>), export) calls shape<types>(export, data).
#define FUZZ_UNWRAP(...) __VA_ARGS__
#define FUZZ(shape, function) [](fuzz::Data& data) { FUZZ_UNWRAP shape(function, data); }
#define FUZZ_FAMILY(shapes) const fuzz::Family fuzz::family{shapes, std::size(shapes)};

#endif  // OKPCV_FUZZ_FUZZ_H
