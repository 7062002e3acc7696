/**
 * @file okpcv.hpp
 * @brief The library for C++20: views of images, statuses that cannot be overlooked, and objects that own the
 * areas which operations need.
 *
 * Header-only, and a thin face: every function here is one call of the C interface, whose documentation holds
 * for it. A call through it costs what the C call costs.
 */
#ifndef OKPCV_HPP
#define OKPCV_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "okpcv.h"

/**
 * @defgroup cpp The C++ face
 * @brief `okpcv.hpp`: views, statuses, and objects that own their areas.
 *
 * @code{.cpp}
 * okpcv::ImageView<const uint8_t> src(pixels, {640, 480});
 * okpcv::ImageView<uint8_t> dst(result, {640, 480});
 * auto blur = okpcv::GaussianFilter<uint8_t>::create({640, 480}, 5, 1.4F).orThrow();
 * blur(src, dst).orThrow();
 * @endcode
 *
 * - An image is a view: a pointer, a size, a step, and the channels as a part of the type.
 * - A function returns a Status, or a Result when it has more to say. Both are `[[nodiscard]]`; test them, or
 *   call `orThrow()`.
 * - An object that owns areas is made by a named function, which asks for the sizes, allocates, and calls the
 *   initialiser. It serves every region that is at most as large as the one it was made for. Nothing else
 *   allocates. An object serves one call at a time; those whose spec is only read by a call also take a
 *   Buffer, so that threads can share them.
 * - Views that must be of one size and are not, and regions larger than the object is made for, are refused
 *   with #okpStatusBadSize.
 * @{
 */

/** @brief The C++ face of the library. */
namespace okpcv {

/** @brief What Status::orThrow() and Result::orThrow() throw. */
class Error : public std::runtime_error {
  public:
    /**
     * @brief The error of a failed call.
     * @param status What the call returned.
     */
    explicit Error(okpStatus status)
        : std::runtime_error("okpcv: status " + std::to_string(status)), status_(status) {}
    /** @return What the call returned. */
    okpStatus status() const noexcept { return status_; }

  private:
    okpStatus status_;
};

/** @brief What a call returned: success, a warning, or an error. */
class [[nodiscard]] Status {
  public:
    /**
     * @brief A status of the C interface.
     * @param code Its value.
     */
    constexpr Status(okpStatus code = okpStatusOk) noexcept : code_(code) {}
    /** @return The value of the C interface. */
    constexpr okpStatus code() const noexcept { return code_; }
    /** @return Whether the call did its work; it may have a warning. */
    constexpr bool ok() const noexcept { return code_ >= 0; }
    /** @return Whether the call did its work with a reservation. */
    constexpr bool warning() const noexcept { return code_ > 0; }
    /** @return The same as ok(). */
    constexpr explicit operator bool() const noexcept { return ok(); }
    /** @brief Throws an Error unless ok(). */
    void orThrow() const {
        if (!ok()) throw Error(code_);
    }

    /**
     * @brief Whether two statuses are the same.
     * @param a One.
     * @param b The other.
     */
    friend constexpr bool operator==(Status a, Status b) noexcept = default;

  private:
    okpStatus code_;
};

/** @brief A value, or the error that prevented it. */
template <class T>
class [[nodiscard]] Result {
  public:
    /**
     * @brief A value.
     * @param value  The value.
     * @param status Success or a warning.
     */
    constexpr Result(T value, Status status = {}) : value_(std::move(value)), status_(status) {}
    /**
     * @brief An error.
     * @param error Its status, not that of a success.
     */
    constexpr Result(Status error) : status_(error) {}
    /** @return What the call returned. */
    constexpr Status status() const noexcept { return status_; }
    /** @return Whether there is a value. */
    constexpr bool ok() const noexcept { return value_.has_value(); }
    /** @return The same as ok(). */
    constexpr explicit operator bool() const noexcept { return ok(); }
    /** @return The value; there must be one. */
    constexpr T& operator*() & { return *value_; }
    /** @return The value; there must be one. */
    constexpr const T& operator*() const& { return *value_; }
    /** @return The value; there must be one. */
    constexpr T&& operator*() && { return *std::move(value_); }
    /** @return A member of the value; there must be one. */
    constexpr T* operator->() { return &*value_; }
    /** @return A member of the value; there must be one. */
    constexpr const T* operator->() const { return &*value_; }
    /** @return The value; throws an Error when there is none. */
    T orThrow() && {
        if (!ok()) throw Error(status_.code());
        return *std::move(value_);
    }
    /** @return The value; throws an Error when there is none. */
    const T& orThrow() const& {
        if (!ok()) throw Error(status_.code());
        return *value_;
    }

  private:
    std::optional<T> value_;
    Status status_;
};

/** @cond */
namespace detail {

template <class Elements>
using ElementOf = std::remove_reference_t<std::ranges::range_reference_t<Elements>>;
template <class T>
using ArrayPointer = T (*)[];

// Contiguous elements of T; for a const T also elements that are not const. Pointers to arrays convert just
// so, while those to single elements would also convert to a base.
template <class Elements, class T>
concept BufferOf = std::ranges::contiguous_range<Elements> &&
    std::is_convertible_v<ArrayPointer<ElementOf<Elements>>, ArrayPointer<T>>;

}  // namespace detail
/** @endcond */

/**
 * @brief An image that somebody else owns.
 *
 * @tparam T        Type of an element, `const` for images that are only read.
 * @tparam Channels Interleaved channels of a pixel.
 */
template <class T, int Channels = 1>
class ImageView {
  public:
    /**
     * @brief A view of an image in memory.
     * @param data First pixel of the region.
     * @param size Size of the region in pixels.
     * @param step Bytes from one row to the next.
     */
    constexpr ImageView(T* data, RoiSize size, int32_t step) noexcept
        : data_(data), size_(size), step_(step) {}

    /**
     * @brief A view of an image whose rows lie close together.
     * @param data First pixel.
     * @param size Size in pixels.
     */
    constexpr ImageView(T* data, RoiSize size) noexcept : ImageView(data, size, tightStep(size.width)) {}

    /**
     * @brief A view of the image in a buffer: a vector, an array, a span.
     * @param buffer The elements. Too few of them give a view of 0 x 0 pixels, which every call refuses.
     * @param size   Size in pixels.
     * @param step   Bytes from one row to the next; by default rows lie close together.
     */
    template <detail::BufferOf<T> Elements>
    constexpr ImageView(Elements&& buffer, RoiSize size, std::optional<int32_t> step = {}) noexcept
        : ImageView(std::ranges::data(buffer), size, step.value_or(tightStep(size.width))) {
        const int64_t rowBytes = int64_t{size_.width} * Channels * int64_t{sizeof(T)};
        const int64_t needed = int64_t{size_.height - 1} * step_ + rowBytes;
        const uint64_t given = static_cast<uint64_t>(std::ranges::size(buffer)) * sizeof(T);
        if (size_.width < 1 || size_.height < 1 || step_ < rowBytes || static_cast<uint64_t>(needed) > given)
            size_ = {0, 0};
    }

    /**
     * @brief Any view may be used where one that only reads is wanted.
     * @param other A view through which the image could be changed.
     */
    template <class U>
    requires(std::is_same_v<const U, T> &&
             !std::is_const_v<U>) constexpr ImageView(ImageView<U, Channels> other) noexcept
        : ImageView(other.data(), other.size(), other.step()) {}

    /** @return First pixel. */
    constexpr T* data() const noexcept { return data_; }
    /** @return Size in pixels. */
    constexpr RoiSize size() const noexcept { return size_; }
    /** @return Bytes from one row to the next. */
    constexpr int32_t step() const noexcept { return step_; }

    /**
     * @brief The elements of a row.
     * @param y Number of the row, from 0.
     * @return Its elements, without the padding.
     */
    std::span<T> row(int32_t y) const noexcept {
        using Byte = std::conditional_t<std::is_const_v<T>, const std::byte, std::byte>;
        auto* const first = reinterpret_cast<Byte*>(data_) + int64_t{y} * step_;
        return {reinterpret_cast<T*>(first), static_cast<size_t>(size_.width) * Channels};
    }

    /**
     * @brief A part of the image.
     * @param part Where it lies. Unless that is inside the image, the view has 0 x 0 pixels.
     * @return A view of it.
     */
    ImageView sub(PixelRect part) const noexcept {
        const bool inside = part.x >= 0 && part.y >= 0 && part.width >= 1 && part.height >= 1 &&
                            part.width <= size_.width - part.x && part.height <= size_.height - part.y;
        if (!inside) return {data_, RoiSize{0, 0}, step_};
        T* const first = row(part.y).data() + size_t(part.x) * Channels;
        return {first, RoiSize{part.width, part.height}, step_};
    }

  private:
    // 0, which no call accepts, where the rows are too long.
    static constexpr int32_t tightStep(int32_t width) noexcept {
        const int64_t step = int64_t{width} * Channels * int64_t{sizeof(T)};
        return step <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(step) : 0;
    }

    T* data_;
    RoiSize size_;
    int32_t step_;
};

/** @brief A view whose type is not deduced: other arguments decide, and views of mutable images convert. */
template <class T, int Channels = 1>
using Source = std::type_identity_t<ImageView<const T, Channels>>;

/** @brief Values of a pixel: one number, or an array of one number per channel. */
template <class T, int Channels>
using Pixel = std::conditional_t<Channels == 1, T, std::array<T, Channels>>;

/** @brief Neighbours that count as connected: those at the sides, or those at the corners as well. */
enum class Connectivity { Four = 4, Eight = 8 };

/** @brief Bytes that an operation uses while it runs. */
class Buffer {
  public:
    /**
     * @brief Allocates; throws `std::bad_alloc` when there is no memory.
     * @param bytes How many.
     */
    explicit Buffer(int32_t bytes = 0)
        : bytes_(std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(std::max(bytes, 1)))) {}
    /** @return The first byte. */
    uint8_t* data() const noexcept { return bytes_.get(); }

  private:
    std::unique_ptr<uint8_t[]> bytes_;
};

/** @cond */
namespace detail {

// The exports by the types that they work on; nullptr where there is none.
#define OKPCV_EXPORT(function, table, ...) \
    template <>                            \
    inline constexpr auto table<__VA_ARGS__> = function;

template <class T, int Channels>
inline constexpr auto kAbsDiff = nullptr;
OKPCV_EXPORT(okpiAbsDiff_8u_C1R, kAbsDiff, uint8_t, 1)
OKPCV_EXPORT(okpiAbsDiff_8u_C3R, kAbsDiff, uint8_t, 3)
OKPCV_EXPORT(okpiAbsDiff_16u_C1R, kAbsDiff, uint16_t, 1)
OKPCV_EXPORT(okpiAbsDiff_32f_C1R, kAbsDiff, float, 1)

template <class T>
inline constexpr auto kAbsDiffC = nullptr;
OKPCV_EXPORT(okpiAbsDiffC_8u_C1R, kAbsDiffC, uint8_t)
OKPCV_EXPORT(okpiAbsDiffC_16u_C1R, kAbsDiffC, uint16_t)
OKPCV_EXPORT(okpiAbsDiffC_32f_C1R, kAbsDiffC, float)

template <class T>
inline constexpr auto kAdd = nullptr;
OKPCV_EXPORT(okpiAdd_8u32f_C1IR, kAdd, uint8_t)
OKPCV_EXPORT(okpiAdd_16u32f_C1IR, kAdd, uint16_t)

template <class T>
inline constexpr auto kAddMasked = nullptr;
OKPCV_EXPORT(okpiAdd_8u32f_C1IMR, kAddMasked, uint8_t)
OKPCV_EXPORT(okpiAdd_16u32f_C1IMR, kAddMasked, uint16_t)
OKPCV_EXPORT(okpiAdd_32f_C1IMR, kAddMasked, float)

template <class T>
inline constexpr auto kAddSquare = nullptr;
OKPCV_EXPORT(okpiAddSquare_8u32f_C1IR, kAddSquare, uint8_t)
OKPCV_EXPORT(okpiAddSquare_16u32f_C1IR, kAddSquare, uint16_t)
OKPCV_EXPORT(okpiAddSquare_32f_C1IR, kAddSquare, float)

template <class T>
inline constexpr auto kAddSquareMasked = nullptr;
OKPCV_EXPORT(okpiAddSquare_8u32f_C1IMR, kAddSquareMasked, uint8_t)
OKPCV_EXPORT(okpiAddSquare_16u32f_C1IMR, kAddSquareMasked, uint16_t)
OKPCV_EXPORT(okpiAddSquare_32f_C1IMR, kAddSquareMasked, float)

template <class T>
inline constexpr auto kAddProduct = nullptr;
OKPCV_EXPORT(okpiAddProduct_8u32f_C1IR, kAddProduct, uint8_t)
OKPCV_EXPORT(okpiAddProduct_16u32f_C1IR, kAddProduct, uint16_t)
OKPCV_EXPORT(okpiAddProduct_32f_C1IR, kAddProduct, float)

template <class T>
inline constexpr auto kAddProductMasked = nullptr;
OKPCV_EXPORT(okpiAddProduct_8u32f_C1IMR, kAddProductMasked, uint8_t)
OKPCV_EXPORT(okpiAddProduct_16u32f_C1IMR, kAddProductMasked, uint16_t)
OKPCV_EXPORT(okpiAddProduct_32f_C1IMR, kAddProductMasked, float)

template <class T>
inline constexpr auto kAddWeighted = nullptr;
OKPCV_EXPORT(okpiAddWeighted_8u32f_C1IR, kAddWeighted, uint8_t)
OKPCV_EXPORT(okpiAddWeighted_16u32f_C1IR, kAddWeighted, uint16_t)
OKPCV_EXPORT(okpiAddWeighted_32f_C1IR, kAddWeighted, float)

template <class T>
inline constexpr auto kAddWeightedMasked = nullptr;
OKPCV_EXPORT(okpiAddWeighted_8u32f_C1IMR, kAddWeightedMasked, uint8_t)
OKPCV_EXPORT(okpiAddWeighted_16u32f_C1IMR, kAddWeightedMasked, uint16_t)
OKPCV_EXPORT(okpiAddWeighted_32f_C1IMR, kAddWeightedMasked, float)

template <NormKind kind, class T>
inline constexpr auto kNorm = nullptr;
OKPCV_EXPORT(okpiNorm_Inf_8u_C1MR, kNorm, NormInf, uint8_t)
OKPCV_EXPORT(okpiNorm_Inf_16u_C1MR, kNorm, NormInf, uint16_t)
OKPCV_EXPORT(okpiNorm_Inf_32f_C1MR, kNorm, NormInf, float)
OKPCV_EXPORT(okpiNorm_L1_8u_C1MR, kNorm, NormL1, uint8_t)
OKPCV_EXPORT(okpiNorm_L1_16u_C1MR, kNorm, NormL1, uint16_t)
OKPCV_EXPORT(okpiNorm_L1_32f_C1MR, kNorm, NormL1, float)
OKPCV_EXPORT(okpiNorm_L2_8u_C1MR, kNorm, NormL2, uint8_t)
OKPCV_EXPORT(okpiNorm_L2_16u_C1MR, kNorm, NormL2, uint16_t)
OKPCV_EXPORT(okpiNorm_L2_32f_C1MR, kNorm, NormL2, float)

template <NormKind kind, class T>
inline constexpr auto kNormDiff = nullptr;
OKPCV_EXPORT(okpiNormDiff_Inf_8u_C1MR, kNormDiff, NormInf, uint8_t)
OKPCV_EXPORT(okpiNormDiff_Inf_16u_C1MR, kNormDiff, NormInf, uint16_t)
OKPCV_EXPORT(okpiNormDiff_Inf_32f_C1MR, kNormDiff, NormInf, float)
OKPCV_EXPORT(okpiNormDiff_L1_8u_C1MR, kNormDiff, NormL1, uint8_t)
OKPCV_EXPORT(okpiNormDiff_L1_16u_C1MR, kNormDiff, NormL1, uint16_t)
OKPCV_EXPORT(okpiNormDiff_L1_32f_C1MR, kNormDiff, NormL1, float)
OKPCV_EXPORT(okpiNormDiff_L2_8u_C1MR, kNormDiff, NormL2, uint8_t)
OKPCV_EXPORT(okpiNormDiff_L2_16u_C1MR, kNormDiff, NormL2, uint16_t)
OKPCV_EXPORT(okpiNormDiff_L2_32f_C1MR, kNormDiff, NormL2, float)

template <NormKind kind, class T>
inline constexpr auto kNormRel = nullptr;
OKPCV_EXPORT(okpiNormRel_Inf_8u_C1MR, kNormRel, NormInf, uint8_t)
OKPCV_EXPORT(okpiNormRel_Inf_16u_C1MR, kNormRel, NormInf, uint16_t)
OKPCV_EXPORT(okpiNormRel_Inf_32f_C1MR, kNormRel, NormInf, float)
OKPCV_EXPORT(okpiNormRel_L1_8u_C1MR, kNormRel, NormL1, uint8_t)
OKPCV_EXPORT(okpiNormRel_L1_16u_C1MR, kNormRel, NormL1, uint16_t)
OKPCV_EXPORT(okpiNormRel_L1_32f_C1MR, kNormRel, NormL1, float)
OKPCV_EXPORT(okpiNormRel_L2_8u_C1MR, kNormRel, NormL2, uint8_t)
OKPCV_EXPORT(okpiNormRel_L2_16u_C1MR, kNormRel, NormL2, uint16_t)
OKPCV_EXPORT(okpiNormRel_L2_32f_C1MR, kNormRel, NormL2, float)

template <class T>
inline constexpr auto kMean = nullptr;
OKPCV_EXPORT(okpiMean_8u_C1MR, kMean, uint8_t)
OKPCV_EXPORT(okpiMean_16u_C1MR, kMean, uint16_t)
OKPCV_EXPORT(okpiMean_32f_C1MR, kMean, float)

template <class T>
inline constexpr auto kMeanStdDev = nullptr;
OKPCV_EXPORT(okpiMean_StdDev_8u_C1R, kMeanStdDev, uint8_t)
OKPCV_EXPORT(okpiMean_StdDev_16u_C1R, kMeanStdDev, uint16_t)
OKPCV_EXPORT(okpiMean_StdDev_32f_C1R, kMeanStdDev, float)

template <class T>
inline constexpr auto kMeanStdDevMasked = nullptr;
OKPCV_EXPORT(okpiMean_StdDev_8u_C1MR, kMeanStdDevMasked, uint8_t)
OKPCV_EXPORT(okpiMean_StdDev_16u_C1MR, kMeanStdDevMasked, uint16_t)
OKPCV_EXPORT(okpiMean_StdDev_32f_C1MR, kMeanStdDevMasked, float)

template <class T>
inline constexpr auto kMinMax = nullptr;
OKPCV_EXPORT(okpiMinMaxIndx_8u_C1R, kMinMax, uint8_t)
OKPCV_EXPORT(okpiMinMaxIndx_16u_C1R, kMinMax, uint16_t)
OKPCV_EXPORT(okpiMinMaxIndx_32f_C1R, kMinMax, float)

template <class T>
inline constexpr auto kMinMaxMasked = nullptr;
OKPCV_EXPORT(okpiMinMaxIndx_8u_C1MR, kMinMaxMasked, uint8_t)
OKPCV_EXPORT(okpiMinMaxIndx_16u_C1MR, kMinMaxMasked, uint16_t)
OKPCV_EXPORT(okpiMinMaxIndx_32f_C1MR, kMinMaxMasked, float)

template <class T, class D>
inline constexpr auto kIntegral = nullptr;
OKPCV_EXPORT(okpiIntegral_8u32s_C1R, kIntegral, uint8_t, int32_t)
OKPCV_EXPORT(okpiIntegral_8u32f_C1R, kIntegral, uint8_t, float)

template <class T, class D>
inline constexpr auto kCopySubpix = nullptr;
OKPCV_EXPORT(okpiCopySubpix_8u_C1R, kCopySubpix, uint8_t, uint8_t)
OKPCV_EXPORT(okpiCopySubpix_16u_C1R, kCopySubpix, uint16_t, uint16_t)
OKPCV_EXPORT(okpiCopySubpix_8u32f_C1R, kCopySubpix, uint8_t, float)
OKPCV_EXPORT(okpiCopySubpix_16u32f_C1R, kCopySubpix, uint16_t, float)
OKPCV_EXPORT(okpiCopySubpix_32f_C1R, kCopySubpix, float, float)

template <int maskSize, class D>
inline constexpr auto kDistance = nullptr;
OKPCV_EXPORT(okpiDistanceTransform_3x3_8u_C1R, kDistance, 3, uint8_t)
OKPCV_EXPORT(okpiDistanceTransform_3x3_8u16u_C1R, kDistance, 3, uint16_t)
OKPCV_EXPORT(okpiDistanceTransform_3x3_8u32f_C1R, kDistance, 3, float)
OKPCV_EXPORT(okpiDistanceTransform_5x5_8u_C1R, kDistance, 5, uint8_t)
OKPCV_EXPORT(okpiDistanceTransform_5x5_8u16u_C1R, kDistance, 5, uint16_t)
OKPCV_EXPORT(okpiDistanceTransform_5x5_8u32f_C1R, kDistance, 5, float)

template <class T, class D, int Channels>
inline constexpr auto kSeparable = nullptr;
OKPCV_EXPORT(okpiFilterSeparable_8u_C1R, kSeparable, uint8_t, uint8_t, 1)
OKPCV_EXPORT(okpiFilterSeparable_8u_C3R, kSeparable, uint8_t, uint8_t, 3)
OKPCV_EXPORT(okpiFilterSeparable_8u_C4R, kSeparable, uint8_t, uint8_t, 4)
OKPCV_EXPORT(okpiFilterSeparable_16u_C1R, kSeparable, uint16_t, uint16_t, 1)
OKPCV_EXPORT(okpiFilterSeparable_16u_C3R, kSeparable, uint16_t, uint16_t, 3)
OKPCV_EXPORT(okpiFilterSeparable_16u_C4R, kSeparable, uint16_t, uint16_t, 4)
OKPCV_EXPORT(okpiFilterSeparable_16s_C1R, kSeparable, int16_t, int16_t, 1)
OKPCV_EXPORT(okpiFilterSeparable_16s_C3R, kSeparable, int16_t, int16_t, 3)
OKPCV_EXPORT(okpiFilterSeparable_16s_C4R, kSeparable, int16_t, int16_t, 4)
OKPCV_EXPORT(okpiFilterSeparable_32f_C1R, kSeparable, float, float, 1)
OKPCV_EXPORT(okpiFilterSeparable_32f_C3R, kSeparable, float, float, 3)
OKPCV_EXPORT(okpiFilterSeparable_32f_C4R, kSeparable, float, float, 4)
OKPCV_EXPORT(okpiFilterSeparable_8u16s_C1R, kSeparable, uint8_t, int16_t, 1)
OKPCV_EXPORT(okpiFilterSeparable_8u16s_C3R, kSeparable, uint8_t, int16_t, 3)
OKPCV_EXPORT(okpiFilterSeparable_8u16s_C4R, kSeparable, uint8_t, int16_t, 4)

template <class T, int Channels>
inline constexpr auto kGaussian = nullptr;
OKPCV_EXPORT(okpiFilterGaussian_8u_C1R, kGaussian, uint8_t, 1)
OKPCV_EXPORT(okpiFilterGaussian_8u_C3R, kGaussian, uint8_t, 3)
OKPCV_EXPORT(okpiFilterGaussian_16u_C1R, kGaussian, uint16_t, 1)
OKPCV_EXPORT(okpiFilterGaussian_16u_C3R, kGaussian, uint16_t, 3)
OKPCV_EXPORT(okpiFilterGaussian_16s_C1R, kGaussian, int16_t, 1)
OKPCV_EXPORT(okpiFilterGaussian_16s_C3R, kGaussian, int16_t, 3)
OKPCV_EXPORT(okpiFilterGaussian_32f_C1R, kGaussian, float, 1)
OKPCV_EXPORT(okpiFilterGaussian_32f_C3R, kGaussian, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerDownSize = nullptr;
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_8u_C1R, kLayerDownSize, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_8u_C3R, kLayerDownSize, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_16u_C1R, kLayerDownSize, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_16u_C3R, kLayerDownSize, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_32f_C1R, kLayerDownSize, float, 1)
OKPCV_EXPORT(okpiPyramidLayerDownGetSize_32f_C3R, kLayerDownSize, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerDownInit = nullptr;
OKPCV_EXPORT(okpiPyramidLayerDownInit_8u_C1R, kLayerDownInit, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDownInit_8u_C3R, kLayerDownInit, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDownInit_16u_C1R, kLayerDownInit, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDownInit_16u_C3R, kLayerDownInit, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDownInit_32f_C1R, kLayerDownInit, float, 1)
OKPCV_EXPORT(okpiPyramidLayerDownInit_32f_C3R, kLayerDownInit, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerDown = nullptr;
OKPCV_EXPORT(okpiPyramidLayerDown_8u_C1R, kLayerDown, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDown_8u_C3R, kLayerDown, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDown_16u_C1R, kLayerDown, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerDown_16u_C3R, kLayerDown, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerDown_32f_C1R, kLayerDown, float, 1)
OKPCV_EXPORT(okpiPyramidLayerDown_32f_C3R, kLayerDown, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerUpSize = nullptr;
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_8u_C1R, kLayerUpSize, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_8u_C3R, kLayerUpSize, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_16u_C1R, kLayerUpSize, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_16u_C3R, kLayerUpSize, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_32f_C1R, kLayerUpSize, float, 1)
OKPCV_EXPORT(okpiPyramidLayerUpGetSize_32f_C3R, kLayerUpSize, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerUpInit = nullptr;
OKPCV_EXPORT(okpiPyramidLayerUpInit_8u_C1R, kLayerUpInit, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUpInit_8u_C3R, kLayerUpInit, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUpInit_16u_C1R, kLayerUpInit, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUpInit_16u_C3R, kLayerUpInit, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUpInit_32f_C1R, kLayerUpInit, float, 1)
OKPCV_EXPORT(okpiPyramidLayerUpInit_32f_C3R, kLayerUpInit, float, 3)

template <class T, int Channels>
inline constexpr auto kLayerUp = nullptr;
OKPCV_EXPORT(okpiPyramidLayerUp_8u_C1R, kLayerUp, uint8_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUp_8u_C3R, kLayerUp, uint8_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUp_16u_C1R, kLayerUp, uint16_t, 1)
OKPCV_EXPORT(okpiPyramidLayerUp_16u_C3R, kLayerUp, uint16_t, 3)
OKPCV_EXPORT(okpiPyramidLayerUp_32f_C1R, kLayerUp, float, 1)
OKPCV_EXPORT(okpiPyramidLayerUp_32f_C3R, kLayerUp, float, 3)

template <class T, int Channels>
inline constexpr auto kMorphologySize = nullptr;
OKPCV_EXPORT(okpiMorphologyBorderGetSize_8u_C1R, kMorphologySize, uint8_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_8u_C3R, kMorphologySize, uint8_t, 3)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_8u_C4R, kMorphologySize, uint8_t, 4)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_16u_C1R, kMorphologySize, uint16_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_16s_C1R, kMorphologySize, int16_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_32f_C1R, kMorphologySize, float, 1)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_32f_C3R, kMorphologySize, float, 3)
OKPCV_EXPORT(okpiMorphologyBorderGetSize_32f_C4R, kMorphologySize, float, 4)

template <class T, int Channels>
inline constexpr auto kMorphologyInit = nullptr;
OKPCV_EXPORT(okpiMorphologyBorderInit_8u_C1R, kMorphologyInit, uint8_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderInit_8u_C3R, kMorphologyInit, uint8_t, 3)
OKPCV_EXPORT(okpiMorphologyBorderInit_8u_C4R, kMorphologyInit, uint8_t, 4)
OKPCV_EXPORT(okpiMorphologyBorderInit_16u_C1R, kMorphologyInit, uint16_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderInit_16s_C1R, kMorphologyInit, int16_t, 1)
OKPCV_EXPORT(okpiMorphologyBorderInit_32f_C1R, kMorphologyInit, float, 1)
OKPCV_EXPORT(okpiMorphologyBorderInit_32f_C3R, kMorphologyInit, float, 3)
OKPCV_EXPORT(okpiMorphologyBorderInit_32f_C4R, kMorphologyInit, float, 4)

template <class T, int Channels>
inline constexpr auto kDilate = nullptr;
OKPCV_EXPORT(okpiDilateBorder_8u_C1R, kDilate, uint8_t, 1)
OKPCV_EXPORT(okpiDilateBorder_8u_C3R, kDilate, uint8_t, 3)
OKPCV_EXPORT(okpiDilateBorder_8u_C4R, kDilate, uint8_t, 4)
OKPCV_EXPORT(okpiDilateBorder_16u_C1R, kDilate, uint16_t, 1)
OKPCV_EXPORT(okpiDilateBorder_16s_C1R, kDilate, int16_t, 1)
OKPCV_EXPORT(okpiDilateBorder_32f_C1R, kDilate, float, 1)
OKPCV_EXPORT(okpiDilateBorder_32f_C3R, kDilate, float, 3)
OKPCV_EXPORT(okpiDilateBorder_32f_C4R, kDilate, float, 4)

template <class T, int Channels>
inline constexpr auto kErode = nullptr;
OKPCV_EXPORT(okpiErodeBorder_8u_C1R, kErode, uint8_t, 1)
OKPCV_EXPORT(okpiErodeBorder_8u_C3R, kErode, uint8_t, 3)
OKPCV_EXPORT(okpiErodeBorder_8u_C4R, kErode, uint8_t, 4)
OKPCV_EXPORT(okpiErodeBorder_16u_C1R, kErode, uint16_t, 1)
OKPCV_EXPORT(okpiErodeBorder_16s_C1R, kErode, int16_t, 1)
OKPCV_EXPORT(okpiErodeBorder_32f_C1R, kErode, float, 1)
OKPCV_EXPORT(okpiErodeBorder_32f_C3R, kErode, float, 3)
OKPCV_EXPORT(okpiErodeBorder_32f_C4R, kErode, float, 4)

template <class T>
inline constexpr auto kCanny = nullptr;
OKPCV_EXPORT(okpiCanny_16s8u_C1R, kCanny, int16_t)
OKPCV_EXPORT(okpiCanny_32f8u_C1R, kCanny, float)

template <Connectivity connectivity, class T, int Channels>
inline constexpr auto kFill = nullptr;
OKPCV_EXPORT(okpiFloodFill_4Con_8u_C1IR, kFill, Connectivity::Four, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_4Con_8u_C3IR, kFill, Connectivity::Four, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_4Con_16u_C1IR, kFill, Connectivity::Four, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_4Con_16u_C3IR, kFill, Connectivity::Four, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_4Con_32s_C1IR, kFill, Connectivity::Four, int32_t, 1)
OKPCV_EXPORT(okpiFloodFill_4Con_32f_C1IR, kFill, Connectivity::Four, float, 1)
OKPCV_EXPORT(okpiFloodFill_4Con_32f_C3IR, kFill, Connectivity::Four, float, 3)
OKPCV_EXPORT(okpiFloodFill_8Con_8u_C1IR, kFill, Connectivity::Eight, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_8Con_8u_C3IR, kFill, Connectivity::Eight, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_8Con_16u_C1IR, kFill, Connectivity::Eight, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_8Con_16u_C3IR, kFill, Connectivity::Eight, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_8Con_32s_C1IR, kFill, Connectivity::Eight, int32_t, 1)
OKPCV_EXPORT(okpiFloodFill_8Con_32f_C1IR, kFill, Connectivity::Eight, float, 1)
OKPCV_EXPORT(okpiFloodFill_8Con_32f_C3IR, kFill, Connectivity::Eight, float, 3)

template <Connectivity connectivity, class T, int Channels>
inline constexpr auto kFillRange = nullptr;
OKPCV_EXPORT(okpiFloodFill_Range4Con_8u_C1IR, kFillRange, Connectivity::Four, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_Range4Con_8u_C3IR, kFillRange, Connectivity::Four, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_Range4Con_16u_C1IR, kFillRange, Connectivity::Four, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_Range4Con_16u_C3IR, kFillRange, Connectivity::Four, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_Range4Con_32f_C1IR, kFillRange, Connectivity::Four, float, 1)
OKPCV_EXPORT(okpiFloodFill_Range4Con_32f_C3IR, kFillRange, Connectivity::Four, float, 3)
OKPCV_EXPORT(okpiFloodFill_Range8Con_8u_C1IR, kFillRange, Connectivity::Eight, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_Range8Con_8u_C3IR, kFillRange, Connectivity::Eight, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_Range8Con_16u_C1IR, kFillRange, Connectivity::Eight, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_Range8Con_16u_C3IR, kFillRange, Connectivity::Eight, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_Range8Con_32f_C1IR, kFillRange, Connectivity::Eight, float, 1)
OKPCV_EXPORT(okpiFloodFill_Range8Con_32f_C3IR, kFillRange, Connectivity::Eight, float, 3)

template <Connectivity connectivity, class T, int Channels>
inline constexpr auto kFillGrad = nullptr;
OKPCV_EXPORT(okpiFloodFill_Grad4Con_8u_C1IR, kFillGrad, Connectivity::Four, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_Grad4Con_8u_C3IR, kFillGrad, Connectivity::Four, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_Grad4Con_16u_C1IR, kFillGrad, Connectivity::Four, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_Grad4Con_16u_C3IR, kFillGrad, Connectivity::Four, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_Grad4Con_32f_C1IR, kFillGrad, Connectivity::Four, float, 1)
OKPCV_EXPORT(okpiFloodFill_Grad4Con_32f_C3IR, kFillGrad, Connectivity::Four, float, 3)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_8u_C1IR, kFillGrad, Connectivity::Eight, uint8_t, 1)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_8u_C3IR, kFillGrad, Connectivity::Eight, uint8_t, 3)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_16u_C1IR, kFillGrad, Connectivity::Eight, uint16_t, 1)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_16u_C3IR, kFillGrad, Connectivity::Eight, uint16_t, 3)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_32f_C1IR, kFillGrad, Connectivity::Eight, float, 1)
OKPCV_EXPORT(okpiFloodFill_Grad8Con_32f_C3IR, kFillGrad, Connectivity::Eight, float, 3)

template <class T>
inline constexpr auto kMarkSpeckles = nullptr;
OKPCV_EXPORT(okpiMarkSpeckles_8u_C1IR, kMarkSpeckles, uint8_t)
OKPCV_EXPORT(okpiMarkSpeckles_16u_C1IR, kMarkSpeckles, uint16_t)
OKPCV_EXPORT(okpiMarkSpeckles_16s_C1IR, kMarkSpeckles, int16_t)
OKPCV_EXPORT(okpiMarkSpeckles_32f_C1IR, kMarkSpeckles, float)

#undef OKPCV_EXPORT

// A table's entry is a function.
template <auto entry>
concept Exported = std::is_pointer_v<decltype(entry)>;

template <class T>
inline constexpr DataTypeCode kDataType = -1;
template <>
inline constexpr DataTypeCode kDataType<uint8_t> = DataType8u;
template <>
inline constexpr DataTypeCode kDataType<uint16_t> = DataType16u;
template <>
inline constexpr DataTypeCode kDataType<int16_t> = DataType16s;
template <>
inline constexpr DataTypeCode kDataType<float> = DataType32f;

// A pixel's values as the C interface takes them: by value for one channel, by address for several.
template <class T>
constexpr T argument(const T& value) {
    return value;
}
template <class T, size_t channels>
constexpr const T* argument(const std::array<T, channels>& values) {
    return values.data();
}

constexpr bool same(RoiSize a, RoiSize b) {
    return a.width == b.width && a.height == b.height;
}
constexpr bool fits(RoiSize size, RoiSize limit) {
    return size.width <= limit.width && size.height <= limit.height;
}

}  // namespace detail
/** @endcond */

/** @name Arithmetic
 *  @{ */

/**
 * @brief The absolute difference of two images.
 * @param a   One image.
 * @param b   The other.
 * @param dst Destination.
 * @return The C function's status.
 */
template <class T, int Channels>
requires detail::Exported<detail::kAbsDiff<T, Channels>> Status absDiff(Source<T, Channels> a,
                                                                        Source<T, Channels> b,
                                                                        ImageView<T, Channels> dst) {
    if (!detail::same(a.size(), dst.size()) || !detail::same(b.size(), dst.size())) return okpStatusBadSize;
    return detail::kAbsDiff<T, Channels>(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(),
                                         dst.size());
}

/**
 * @brief The absolute difference of an image and a number.
 * @param src   Source.
 * @param value The number.
 * @param dst   Destination.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAbsDiffC<T>> Status
absDiff(Source<T> src, std::conditional_t<std::is_integral_v<T>, int32_t, T> value, ImageView<T> dst) {
    if (!detail::same(src.size(), dst.size())) return okpStatusBadSize;
    return detail::kAbsDiffC<T>(src.data(), src.step(), dst.data(), dst.step(), dst.size(), value);
}

/**
 * @brief Adds an image to an accumulator.
 * @param src Source.
 * @param sum Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAdd<std::remove_const_t<T>>> Status add(ImageView<T> src,
                                                                           ImageView<float> sum) {
    if (!detail::same(src.size(), sum.size())) return okpStatusBadSize;
    return detail::kAdd<std::remove_const_t<T>>(src.data(), src.step(), sum.data(), sum.step(), sum.size());
}

/**
 * @brief Adds the pixels of an image that a mask selects to an accumulator.
 * @param src  Source.
 * @param mask Mask.
 * @param sum  Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddMasked<std::remove_const_t<T>>> Status
add(ImageView<T> src, ImageView<const uint8_t> mask, ImageView<float> sum) {
    if (!detail::same(src.size(), sum.size()) || !detail::same(mask.size(), sum.size()))
        return okpStatusBadSize;
    return detail::kAddMasked<std::remove_const_t<T>>(src.data(), src.step(), mask.data(), mask.step(),
                                                      sum.data(), sum.step(), sum.size());
}

/**
 * @brief Adds the squares of an image to an accumulator.
 * @param src Source.
 * @param sum Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddSquare<std::remove_const_t<T>>> Status addSquare(ImageView<T> src,
                                                                                       ImageView<float> sum) {
    if (!detail::same(src.size(), sum.size())) return okpStatusBadSize;
    return detail::kAddSquare<std::remove_const_t<T>>(src.data(), src.step(), sum.data(), sum.step(),
                                                      sum.size());
}

/**
 * @brief Adds the squares of the pixels that a mask selects to an accumulator.
 * @param src  Source.
 * @param mask Mask.
 * @param sum  Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddSquareMasked<std::remove_const_t<T>>> Status
addSquare(ImageView<T> src, ImageView<const uint8_t> mask, ImageView<float> sum) {
    if (!detail::same(src.size(), sum.size()) || !detail::same(mask.size(), sum.size()))
        return okpStatusBadSize;
    return detail::kAddSquareMasked<std::remove_const_t<T>>(src.data(), src.step(), mask.data(), mask.step(),
                                                            sum.data(), sum.step(), sum.size());
}

/**
 * @brief Adds the products of two images to an accumulator.
 * @param a   One image.
 * @param b   The other.
 * @param sum Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddProduct<std::remove_const_t<T>>> Status
addProduct(ImageView<T> a, Source<std::remove_const_t<T>> b, ImageView<float> sum) {
    if (!detail::same(a.size(), sum.size()) || !detail::same(b.size(), sum.size())) return okpStatusBadSize;
    return detail::kAddProduct<std::remove_const_t<T>>(a.data(), a.step(), b.data(), b.step(), sum.data(),
                                                       sum.step(), sum.size());
}

/**
 * @brief Adds the products of the pixels that a mask selects to an accumulator.
 * @param a    One image.
 * @param b    The other.
 * @param mask Mask.
 * @param sum  Accumulator.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddProductMasked<std::remove_const_t<T>>> Status addProduct(
    ImageView<T> a, Source<std::remove_const_t<T>> b, ImageView<const uint8_t> mask, ImageView<float> sum) {
    if (!detail::same(a.size(), sum.size()) || !detail::same(b.size(), sum.size()) ||
        !detail::same(mask.size(), sum.size()))
        return okpStatusBadSize;
    return detail::kAddProductMasked<std::remove_const_t<T>>(
        a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), sum.data(), sum.step(), sum.size());
}

/**
 * @brief Moves an accumulator towards an image: a running average.
 * @param src   Source.
 * @param sum   Accumulator.
 * @param alpha Weight of the source.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddWeighted<std::remove_const_t<T>>> Status
addWeighted(ImageView<T> src, ImageView<float> sum, float alpha) {
    if (!detail::same(src.size(), sum.size())) return okpStatusBadSize;
    return detail::kAddWeighted<std::remove_const_t<T>>(src.data(), src.step(), sum.data(), sum.step(),
                                                        sum.size(), alpha);
}

/**
 * @brief Moves an accumulator towards the pixels that a mask selects.
 * @param src   Source.
 * @param mask  Mask.
 * @param sum   Accumulator.
 * @param alpha Weight of the source.
 * @return The C function's status.
 */
template <class T>
requires detail::Exported<detail::kAddWeightedMasked<std::remove_const_t<T>>> Status
addWeighted(ImageView<T> src, ImageView<const uint8_t> mask, ImageView<float> sum, float alpha) {
    if (!detail::same(src.size(), sum.size()) || !detail::same(mask.size(), sum.size()))
        return okpStatusBadSize;
    return detail::kAddWeightedMasked<std::remove_const_t<T>>(
        src.data(), src.step(), mask.data(), mask.step(), sum.data(), sum.step(), sum.size(), alpha);
}

/** @}
 *  @name Statistics
 *  @{ */

/**
 * @brief The norm of the pixels that a mask selects.
 * @tparam kind #NormInf, #NormL1 or #NormL2.
 * @param src  Source.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <NormKind kind, class T>
requires detail::Exported<detail::kNorm<kind, std::remove_const_t<T>>> Result<double> norm(
    ImageView<T> src, ImageView<const uint8_t> mask) {
    if (!detail::same(src.size(), mask.size())) return Status(okpStatusBadSize);
    double value = 0;
    const Status status = detail::kNorm<kind, std::remove_const_t<T>>(src.data(), src.step(), mask.data(),
                                                                      mask.step(), src.size(), &value);
    return status ? Result<double>(value, status) : status;
}

/**
 * @brief The norm of the difference of the pixels that a mask selects.
 * @tparam kind #NormInf, #NormL1 or #NormL2.
 * @param a    One image.
 * @param b    The other.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <NormKind kind, class T>
requires detail::Exported<detail::kNormDiff<kind, std::remove_const_t<T>>> Result<double> normDiff(
    ImageView<T> a, Source<std::remove_const_t<T>> b, ImageView<const uint8_t> mask) {
    if (!detail::same(a.size(), mask.size()) || !detail::same(b.size(), mask.size()))
        return Status(okpStatusBadSize);
    double value = 0;
    const Status status = detail::kNormDiff<kind, std::remove_const_t<T>>(
        a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), a.size(), &value);
    return status ? Result<double>(value, status) : status;
}

/**
 * @brief The norm of the difference over the norm of the second image, of the pixels that a mask selects.
 *
 * A divisor of zero is a warning, and the value is infinite or NaN.
 *
 * @tparam kind #NormInf, #NormL1 or #NormL2.
 * @param a    One image.
 * @param b    The other.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <NormKind kind, class T>
requires detail::Exported<detail::kNormRel<kind, std::remove_const_t<T>>> Result<double> normRel(
    ImageView<T> a, Source<std::remove_const_t<T>> b, ImageView<const uint8_t> mask) {
    if (!detail::same(a.size(), mask.size()) || !detail::same(b.size(), mask.size()))
        return Status(okpStatusBadSize);
    double value = 0;
    const Status status = detail::kNormRel<kind, std::remove_const_t<T>>(
        a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), a.size(), &value);
    return status ? Result<double>(value, status) : status;
}

/**
 * @brief The mean of the pixels that a mask selects.
 * @param src  Source.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <class T>
requires detail::Exported<detail::kMean<std::remove_const_t<T>>> Result<double> mean(
    ImageView<T> src, ImageView<const uint8_t> mask) {
    if (!detail::same(src.size(), mask.size())) return Status(okpStatusBadSize);
    double value = 0;
    const Status status = detail::kMean<std::remove_const_t<T>>(src.data(), src.step(), mask.data(),
                                                                mask.step(), src.size(), &value);
    return status ? Result<double>(value, status) : status;
}

/** @brief What meanStdDev() finds. */
struct MeanStdDev {
    double mean = 0;   /**< Mean. */
    double stdDev = 0; /**< Standard deviation. */
};

/**
 * @brief The mean and the standard deviation of an image.
 * @param src Source.
 * @return The result, or the C function's status.
 */
template <class T>
requires detail::Exported<detail::kMeanStdDev<std::remove_const_t<T>>> Result<MeanStdDev> meanStdDev(
    ImageView<T> src) {
    MeanStdDev found;
    const Status status = detail::kMeanStdDev<std::remove_const_t<T>>(src.data(), src.step(), src.size(),
                                                                      &found.mean, &found.stdDev);
    return status ? Result<MeanStdDev>(found, status) : status;
}

/**
 * @brief The mean and the standard deviation of the pixels that a mask selects.
 * @param src  Source.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <class T>
requires detail::Exported<detail::kMeanStdDevMasked<std::remove_const_t<T>>> Result<MeanStdDev> meanStdDev(
    ImageView<T> src, ImageView<const uint8_t> mask) {
    if (!detail::same(src.size(), mask.size())) return Status(okpStatusBadSize);
    MeanStdDev found;
    const Status status = detail::kMeanStdDevMasked<std::remove_const_t<T>>(
        src.data(), src.step(), mask.data(), mask.step(), src.size(), &found.mean, &found.stdDev);
    return status ? Result<MeanStdDev>(found, status) : status;
}

/** @brief What minMax() finds. */
struct MinMax {
    float min = 0;          /**< Smallest value. */
    float max = 0;          /**< Largest value. */
    PixelPoint minAt{0, 0}; /**< Its first pixel. */
    PixelPoint maxAt{0, 0}; /**< Its first pixel. */
};

/**
 * @brief The smallest and the largest pixel of an image, and where they are.
 * @param src Source.
 * @return The result, or the C function's status.
 */
template <class T>
requires detail::Exported<detail::kMinMax<std::remove_const_t<T>>> Result<MinMax> minMax(ImageView<T> src) {
    MinMax found;
    const Status status = detail::kMinMax<std::remove_const_t<T>>(
        src.data(), src.step(), src.size(), &found.min, &found.max, &found.minAt, &found.maxAt);
    return status ? Result<MinMax>(found, status) : status;
}

/**
 * @brief The smallest and the largest of the pixels that a mask selects, and where they are.
 * @param src  Source.
 * @param mask Mask.
 * @return The result, or the C function's status.
 */
template <class T>
requires detail::Exported<detail::kMinMaxMasked<std::remove_const_t<T>>> Result<MinMax> minMax(
    ImageView<T> src, ImageView<const uint8_t> mask) {
    if (!detail::same(src.size(), mask.size())) return Status(okpStatusBadSize);
    MinMax found;
    const Status status = detail::kMinMaxMasked<std::remove_const_t<T>>(
        src.data(), src.step(), mask.data(), mask.step(), src.size(), &found.min, &found.max, &found.minAt,
        &found.maxAt);
    return status ? Result<MinMax>(found, status) : status;
}

/** @}
 *  @name Integral images and sampling
 *  @{ */

/**
 * @brief The integral image.
 * @param src    Source.
 * @param dst    Integral image, one column and one row larger than the source.
 * @param offset Its first row and column.
 * @return The C function's status.
 */
template <class D>
requires detail::Exported<detail::kIntegral<uint8_t, D>> Status integral(ImageView<const uint8_t> src,
                                                                         ImageView<D> dst,
                                                                         std::type_identity_t<D> offset = 0) {
    if (dst.size().width - 1 != src.size().width || dst.size().height - 1 != src.size().height)
        return okpStatusBadSize;
    return detail::kIntegral<uint8_t, D>(src.data(), src.step(), dst.data(), dst.step(), src.size(), offset);
}

/**
 * @brief Copies a region shifted by a fraction of a pixel.
 * @param src Source, one column and one row larger than the destination.
 * @param dst Destination.
 * @param dx  Shift to the right.
 * @param dy  Shift down.
 * @return The C function's status.
 */
template <class T, class D>
requires detail::Exported<detail::kCopySubpix<std::remove_const_t<T>, D>> Status copySubpix(ImageView<T> src,
                                                                                            ImageView<D> dst,
                                                                                            float dx,
                                                                                            float dy) {
    if (src.size().width - 1 != dst.size().width || src.size().height - 1 != dst.size().height)
        return okpStatusBadSize;
    return detail::kCopySubpix<std::remove_const_t<T>, D>(src.data(), src.step(), dst.data(), dst.step(),
                                                          dst.size(), dx, dy);
}

/** @}
 *  @name Filters
 *  @{ */

/**
 * @brief A separable filter with the areas that it needs.
 * @tparam T        Type of the source.
 * @tparam D        Type of the destination.
 * @tparam Channels Channels of both.
 */
template <class T, class D = T, int Channels = 1>
requires detail::Exported<detail::kSeparable<T, D, Channels>>
class SeparableFilter {
  public:
    /**
     * @brief A filter with float kernels.
     * @param maxSize The largest region.
     * @param row     Row kernel.
     * @param column  Column kernel.
     * @return The object, or the error that prevented it.
     */
    static Result<SeparableFilter> create(RoiSize maxSize, std::span<const float> row,
                                          std::span<const float> column) {
        return make(maxSize, row.size(), column.size(), DataType32f, [&](RoiSize kernel, void* spec) {
            return okpiFilterSeparableInit_32f(row.data(), column.data(), kernel, detail::kDataType<T>,
                                               Channels, spec);
        });
    }

    /**
     * @brief A filter with integer kernels.
     * @param maxSize     The largest region.
     * @param row         Row kernel.
     * @param column      Column kernel.
     * @param divisor     Divisor of both passes.
     * @param scaleFactor Signed 16-bit results are multiplied by 2 to the power of minus this.
     * @return The object, or the error that prevented it.
     */
    static Result<SeparableFilter> create(RoiSize maxSize, std::span<const int16_t> row,
                                          std::span<const int16_t> column, int32_t divisor,
                                          int32_t scaleFactor = 0) {
        return make(maxSize, row.size(), column.size(), DataType16s, [&](RoiSize kernel, void* spec) {
            return okpiFilterSeparableInit_16s(row.data(), column.data(), kernel, divisor, scaleFactor,
                                               detail::kDataType<T>, Channels, spec);
        });
    }

    /**
     * @brief Filters.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @return The C function's status.
     */
    Status operator()(ImageView<const T, Channels> src, ImageView<D, Channels> dst,
                      BorderKind border = BorderReplicate, const Pixel<T, Channels>& value = {}) {
        return (*this)(src, dst, border, value, buffer_);
    }

    /**
     * @brief Filters in a buffer of the caller's; several threads may do so at once, each in its own.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @param buffer What makeBuffer() gave.
     * @return The C function's status.
     */
    Status operator()(ImageView<const T, Channels> src, ImageView<D, Channels> dst, BorderKind border,
                      const Pixel<T, Channels>& value, const Buffer& buffer) const {
        if (!detail::same(src.size(), dst.size()) || !detail::fits(dst.size(), maxSize_))
            return okpStatusBadSize;
        return detail::kSeparable<T, D, Channels>(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                                  border, detail::argument(value), spec_.data(),
                                                  buffer.data());
    }

    /** @return A buffer for a thread. */
    Buffer makeBuffer() const { return Buffer(bufferBytes_); }

  private:
    template <class Init>
    static Result<SeparableFilter> make(RoiSize maxSize, size_t rowLength, size_t columnLength,
                                        DataTypeCode kernelType, Init init) {
        constexpr size_t kLongest = std::numeric_limits<int32_t>::max();
        if (rowLength > kLongest || columnLength > kLongest) return Status(okpStatusBadSize);
        const RoiSize kernel{static_cast<int32_t>(rowLength), static_cast<int32_t>(columnLength)};
        int32_t specBytes = 0, bufferBytes = 0;
        Status status = okpiFilterSeparableGetSpecSize(kernel, kernelType, Channels, &specBytes);
        if (status)
            status = okpiFilterSeparableGetBufferSize(maxSize, kernel, detail::kDataType<T>, kernelType,
                                                      Channels, &bufferBytes);
        if (!status) return status;
        SeparableFilter filter(maxSize, specBytes, bufferBytes);
        status = init(kernel, filter.spec_.data());
        return status ? Result<SeparableFilter>(std::move(filter)) : status;
    }

    SeparableFilter(RoiSize maxSize, int32_t specBytes, int32_t bufferBytes)
        : maxSize_(maxSize), bufferBytes_(bufferBytes), spec_(specBytes), buffer_(bufferBytes) {}

    RoiSize maxSize_;
    int32_t bufferBytes_;
    Buffer spec_, buffer_;
};

/**
 * @brief A Gaussian filter with the areas that it needs.
 * @tparam T        Type of the images.
 * @tparam Channels Their channels.
 */
template <class T, int Channels = 1>
requires detail::Exported<detail::kGaussian<T, Channels>>
class GaussianFilter {
  public:
    /**
     * @brief A filter.
     * @param maxSize    The largest region.
     * @param kernelSize Size of the kernel: odd, at least 3.
     * @param sigma      Standard deviation in pixels.
     * @return The object, or the error that prevented it.
     */
    static Result<GaussianFilter> create(RoiSize maxSize, int32_t kernelSize, float sigma) {
        constexpr DataTypeCode type = detail::kDataType<T>;
        int32_t specBytes = 0, initBytes = 0, bufferBytes = 0;
        Status status = okpiFilterGaussianGetSpecSize(kernelSize, type, Channels, &specBytes, &initBytes);
        if (!status) return status;
        int32_t unused = 0;
        status = okpiFilterGaussianGetBufferSize(maxSize, kernelSize, type, Channels, &unused, &bufferBytes);
        if (!status) return status;
        GaussianFilter filter(maxSize, specBytes, bufferBytes);
        const Buffer init(initBytes);
        // The border is that of the calls.
        status = okpiFilterGaussianInit(maxSize, kernelSize, sigma, BorderReplicate, type, Channels,
                                        filter.spec_.data(), init.data());
        return status ? Result<GaussianFilter>(std::move(filter)) : status;
    }

    /**
     * @brief Filters.
     * @param src    Source.
     * @param dst    Destination; may be the source.
     * @param border Border.
     * @param value  Value of a constant border.
     * @return The C function's status.
     */
    Status operator()(ImageView<const T, Channels> src, ImageView<T, Channels> dst,
                      BorderKind border = BorderReplicate, const Pixel<T, Channels>& value = {}) {
        return (*this)(src, dst, border, value, buffer_);
    }

    /**
     * @brief Filters in a buffer of the caller's; several threads may do so at once, each in its own.
     * @param src    Source.
     * @param dst    Destination; may be the source.
     * @param border Border.
     * @param value  Value of a constant border.
     * @param buffer What makeBuffer() gave.
     * @return The C function's status.
     */
    Status operator()(ImageView<const T, Channels> src, ImageView<T, Channels> dst, BorderKind border,
                      const Pixel<T, Channels>& value, const Buffer& buffer) const {
        if (!detail::same(src.size(), dst.size()) || !detail::fits(dst.size(), maxSize_))
            return okpStatusBadSize;
        return detail::kGaussian<T, Channels>(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                              border, detail::argument(value), spec_.data(), buffer.data());
    }

    /** @return A buffer for a thread. */
    Buffer makeBuffer() const { return Buffer(bufferBytes_); }

  private:
    GaussianFilter(RoiSize maxSize, int32_t specBytes, int32_t bufferBytes)
        : maxSize_(maxSize), bufferBytes_(bufferBytes), spec_(specBytes), buffer_(bufferBytes) {}

    RoiSize maxSize_;
    int32_t bufferBytes_;
    Buffer spec_, buffer_;
};

/**
 * @brief Dilation and erosion by one mask, with the areas that they need.
 * @tparam T        Type of the images.
 * @tparam Channels Their channels.
 */
template <class T, int Channels = 1>
requires detail::Exported<detail::kDilate<T, Channels>>
class Morphology {
  public:
    /**
     * @brief A mask of any form.
     * @param maxSize  The largest region.
     * @param mask     Elements of the mask, row by row.
     * @param maskSize Its size.
     * @return The object, or the error that prevented it.
     */
    static Result<Morphology> create(RoiSize maxSize, std::span<const uint8_t> mask, RoiSize maskSize) {
        int32_t specBytes = 0, bufferBytes = 0;
        Status status = detail::kMorphologySize<T, Channels>(maxSize, maskSize, &specBytes, &bufferBytes);
        if (!status) return status;
        if (static_cast<uint64_t>(maskSize.width) * static_cast<uint64_t>(maskSize.height) > mask.size())
            return Status(okpStatusBadSize);
        Morphology morphology(maxSize, specBytes, bufferBytes);
        status = detail::kMorphologyInit<T, Channels>(maxSize, mask.data(), maskSize, morphology.spec(),
                                                      morphology.buffer_.data());
        return status ? Result<Morphology>(std::move(morphology)) : status;
    }

    /**
     * @brief A rectangle.
     * @param maxSize  The largest region.
     * @param maskSize The rectangle.
     * @return The object, or the error that prevented it.
     */
    static Result<Morphology> rectangle(RoiSize maxSize, RoiSize maskSize) {
        if (maskSize.width < 1 || maskSize.height < 1) return Status(okpStatusBadSize);
        // What is refused is refused before anything of its size is allocated.
        int32_t specBytes = 0, bufferBytes = 0;
        const Status status =
            detail::kMorphologySize<T, Channels>(maxSize, maskSize, &specBytes, &bufferBytes);
        if (!status) return status;
        const size_t elements = static_cast<size_t>(maskSize.width) * static_cast<size_t>(maskSize.height);
        const auto mask = std::make_unique<uint8_t[]>(elements);
        std::fill_n(mask.get(), elements, uint8_t{1});
        return create(maxSize, {mask.get(), elements}, maskSize);
    }

    /**
     * @brief The maximum under the mask.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @return The C function's status.
     */
    Status dilate(ImageView<const T, Channels> src, ImageView<T, Channels> dst,
                  BorderKind border = BorderDefault, const Pixel<T, Channels>& value = {}) {
        return dilate(src, dst, border, value, buffer_);
    }

    /**
     * @brief The maximum under the mask, in a buffer of the caller's, so that threads can share the mask.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @param buffer What makeBuffer() gave.
     * @return The C function's status.
     */
    Status dilate(ImageView<const T, Channels> src, ImageView<T, Channels> dst, BorderKind border,
                  const Pixel<T, Channels>& value, const Buffer& buffer) const {
        return run<detail::kDilate<T, Channels>>(src, dst, border, value, buffer);
    }

    /**
     * @brief The minimum under the mask.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @return The C function's status.
     */
    Status erode(ImageView<const T, Channels> src, ImageView<T, Channels> dst,
                 BorderKind border = BorderDefault, const Pixel<T, Channels>& value = {}) {
        return erode(src, dst, border, value, buffer_);
    }

    /**
     * @brief The minimum under the mask, in a buffer of the caller's, so that threads can share the mask.
     * @param src    Source.
     * @param dst    Destination.
     * @param border Border.
     * @param value  Value of a constant border.
     * @param buffer What makeBuffer() gave.
     * @return The C function's status.
     */
    Status erode(ImageView<const T, Channels> src, ImageView<T, Channels> dst, BorderKind border,
                 const Pixel<T, Channels>& value, const Buffer& buffer) const {
        return run<detail::kErode<T, Channels>>(src, dst, border, value, buffer);
    }

    /** @return A buffer for a thread. */
    Buffer makeBuffer() const { return Buffer(bufferBytes_); }

  private:
    Morphology(RoiSize maxSize, int32_t specBytes, int32_t bufferBytes)
        : maxSize_(maxSize), bufferBytes_(bufferBytes), spec_(specBytes), buffer_(bufferBytes) {}

    MorphSpec* spec() const { return reinterpret_cast<MorphSpec*>(spec_.data()); }

    template <auto function>
    Status run(ImageView<const T, Channels> src, ImageView<T, Channels> dst, BorderKind border,
               const Pixel<T, Channels>& value, const Buffer& buffer) const {
        if (!detail::same(src.size(), dst.size()) || !detail::fits(dst.size(), maxSize_))
            return okpStatusBadSize;
        return function(src.data(), src.step(), dst.data(), dst.step(), dst.size(), border,
                        detail::argument(value), spec(), buffer.data());
    }

    RoiSize maxSize_;
    int32_t bufferBytes_;
    Buffer spec_, buffer_;
};

/** @}
 *  @name Edges, fills and labels
 *  @{ */

/** @brief The Canny edge detector with the buffer that it needs. */
class Canny {
  public:
    /**
     * @brief A detector.
     * @param maxSize        The largest region.
     * @param derivativeKind Kind of the built-in derivatives.
     * @param mask           Their size.
     * @return The object, or the error that prevented it.
     */
    static Result<Canny> create(RoiSize maxSize, int32_t derivativeKind = 2,
                                MaskSizeCode mask = MaskSize3x3) {
        int32_t bytes = 0, borderBytes = 0;
        Status status = okpiCannyGetSize(maxSize, &bytes);
        if (status) status = okpiCannyBorderGetSize(maxSize, derivativeKind, mask, DataType8u, &borderBytes);
        if (!status) return status;
        return Canny(maxSize, derivativeKind, mask, std::max(bytes, borderBytes));
    }

    /**
     * @brief The edges of an image.
     * @param src    Source.
     * @param edges  255 on edges, 0 elsewhere.
     * @param low    Low threshold.
     * @param high   High threshold.
     * @param norm   Magnitude: #NormL1 or #NormL2.
     * @param border Border.
     * @param value  Value of a constant border.
     * @return The C function's status.
     */
    Status operator()(ImageView<const uint8_t> src, ImageView<uint8_t> edges, float low, float high,
                      NormKind norm = NormL2, BorderKind border = BorderReplicate, uint8_t value = 0) {
        if (!detail::same(src.size(), edges.size()) || !detail::fits(src.size(), maxSize_))
            return okpStatusBadSize;
        return okpiCannyBorder_8u_C1R(src.data(), src.step(), edges.data(), edges.step(), src.size(),
                                      derivativeKind_, mask_, border, value, low, high, norm, buffer_.data());
    }

    /**
     * @brief The edges of an image whose derivatives are known.
     * @param dx    Horizontal derivative, of 16-bit integers or floats.
     * @param dy    Vertical derivative.
     * @param edges 255 on edges, 0 elsewhere.
     * @param low   Low threshold.
     * @param high  High threshold.
     * @return The C function's status.
     */
    template <class T>
    requires detail::Exported<detail::kCanny<std::remove_const_t<T>>> Status fromDerivatives(
        ImageView<T> dx, Source<std::remove_const_t<T>> dy, ImageView<uint8_t> edges, float low, float high) {
        if (!detail::same(dx.size(), edges.size()) || !detail::same(dy.size(), edges.size()) ||
            !detail::fits(edges.size(), maxSize_))
            return okpStatusBadSize;
        return detail::kCanny<std::remove_const_t<T>>(dx.data(), dx.step(), dy.data(), dy.step(),
                                                      edges.data(), edges.step(), edges.size(), low, high,
                                                      buffer_.data());
    }

  private:
    Canny(RoiSize maxSize, int32_t derivativeKind, MaskSizeCode mask, int32_t bytes)
        : maxSize_(maxSize), derivativeKind_(derivativeKind), mask_(mask), buffer_(bytes) {}

    RoiSize maxSize_;
    int32_t derivativeKind_;
    MaskSizeCode mask_;
    Buffer buffer_;
};

/** @brief Flood fills with the buffer that they need. */
class FloodFill {
  public:
    /**
     * @brief Fills of regions up to a size.
     * @param maxSize The largest region.
     * @return The object, or the error that prevented it.
     */
    static Result<FloodFill> create(RoiSize maxSize) {
        int32_t bytes = 0, gradientBytes = 0;
        Status status = okpiFloodFillGetSize(maxSize, &bytes);
        if (status) status = okpiFloodFillGetSize_Grad(maxSize, &gradientBytes);
        if (!status) return status;
        return FloodFill(maxSize, std::max(bytes, gradientBytes));
    }

    /**
     * @brief Fills the region that equals the seed.
     *
     * When the seed has the value already, nothing happens, and the record is empty.
     *
     * @tparam connectivity Which neighbours are connected.
     * @param image Image.
     * @param seed  Seed.
     * @param value Value to write.
     * @return The result, or the C function's status.
     */
    template <Connectivity connectivity = Connectivity::Four, class T, int Channels>
    requires detail::Exported<detail::kFill<connectivity, T, Channels>> Result<ConnectedComp> equal(
        ImageView<T, Channels> image, PixelPoint seed,
        const std::type_identity_t<Pixel<T, Channels>>& value) {
        if (!detail::fits(image.size(), maxSize_)) return Status(okpStatusBadSize);
        ConnectedComp region{};
        const Status status = detail::kFill<connectivity, T, Channels>(
            image.data(), image.step(), image.size(), seed, detail::argument(value), &region, buffer_.data());
        return status ? Result<ConnectedComp>(region, status) : status;
    }

    /**
     * @brief Fills the region whose values lie in an interval around the seed's.
     * @tparam connectivity Which neighbours are connected.
     * @param image Image.
     * @param seed  Seed.
     * @param value Value to write.
     * @param below How far below the seed's value a pixel may lie.
     * @param above How far above.
     * @return The result, or the C function's status.
     */
    template <Connectivity connectivity = Connectivity::Four, class T, int Channels>
    requires detail::Exported<detail::kFillRange<connectivity, T, Channels>> Result<ConnectedComp> range(
        ImageView<T, Channels> image, PixelPoint seed, const std::type_identity_t<Pixel<T, Channels>>& value,
        const std::type_identity_t<Pixel<T, Channels>>& below,
        const std::type_identity_t<Pixel<T, Channels>>& above) {
        return deltas<detail::kFillRange<connectivity, T, Channels>>(image, seed, value, below, above);
    }

    /**
     * @brief Fills the region that small steps reach.
     * @tparam connectivity Which neighbours are connected.
     * @param image Image.
     * @param seed  Seed.
     * @param value Value to write.
     * @param below How far below its neighbour's value a pixel may lie.
     * @param above How far above.
     * @return The result, or the C function's status.
     */
    template <Connectivity connectivity = Connectivity::Four, class T, int Channels>
    requires detail::Exported<detail::kFillGrad<connectivity, T, Channels>> Result<ConnectedComp> gradient(
        ImageView<T, Channels> image, PixelPoint seed, const std::type_identity_t<Pixel<T, Channels>>& value,
        const std::type_identity_t<Pixel<T, Channels>>& below,
        const std::type_identity_t<Pixel<T, Channels>>& above) {
        return deltas<detail::kFillGrad<connectivity, T, Channels>>(image, seed, value, below, above);
    }

  private:
    FloodFill(RoiSize maxSize, int32_t bytes) : maxSize_(maxSize), buffer_(bytes) {}

    template <auto function, class T, int Channels>
    Result<ConnectedComp> deltas(ImageView<T, Channels> image, PixelPoint seed,
                                 const Pixel<T, Channels>& value, const Pixel<T, Channels>& below,
                                 const Pixel<T, Channels>& above) {
        if (!detail::fits(image.size(), maxSize_)) return Status(okpStatusBadSize);
        ConnectedComp region{};
        const Status status =
            function(image.data(), image.step(), image.size(), seed, detail::argument(value),
                     detail::argument(below), detail::argument(above), &region, buffer_.data());
        return status ? Result<ConnectedComp>(region, status) : status;
    }

    RoiSize maxSize_;
    Buffer buffer_;
};

/** @brief Labelling of connected components, with the buffer that it needs. */
class Labeller {
  public:
    /**
     * @brief Labelling of regions up to a size.
     * @param maxSize The largest region.
     * @return The object, or the error that prevented it.
     */
    static Result<Labeller> create(RoiSize maxSize) {
        int32_t bytes = 0;
        const Status status = okpiLabelMarkersGetBufferSize_8u32s_C1R(maxSize, &bytes);
        if (!status) return status;
        // The number that the query reports wraps where it does not fit.
        constexpr int64_t kMostPixels = (std::numeric_limits<int32_t>::max() - 32) / 6;
        if (int64_t{maxSize.width} * maxSize.height > kMostPixels) return Status(okpStatusSizeTooLarge);
        return Labeller(maxSize, bytes);
    }

    /**
     * @brief Labels the connected groups of nonzero pixels, and tells how many there are.
     * @param markers      Pixels, of which those that are not zero are labelled.
     * @param labels       Their labels, from 1; 0 elsewhere.
     * @param connectivity Which neighbours are connected.
     * @return The result, or the C function's status.
     */
    Result<int32_t> operator()(ImageView<const uint8_t> markers, ImageView<int32_t> labels,
                               Connectivity connectivity = Connectivity::Eight) {
        if (!detail::same(markers.size(), labels.size()) || !detail::fits(labels.size(), maxSize_))
            return Status(okpStatusBadSize);
        int32_t count = 0;
        const Status status =
            okpiLabelMarkers_8u32s_C1R(markers.data(), markers.step(), labels.data(), labels.step(),
                                       labels.size(), 1, std::numeric_limits<int32_t>::max() - 1,
                                       connectivity == Connectivity::Four, &count, buffer_.data());
        return status ? Result<int32_t>(count, status) : status;
    }

  private:
    Labeller(RoiSize maxSize, int32_t bytes) : maxSize_(maxSize), buffer_(bytes) {}

    RoiSize maxSize_;
    Buffer buffer_;
};

/** @brief Removal of speckles, with the buffer that it needs. */
template <class T>
requires detail::Exported<detail::kMarkSpeckles<T>>
class SpeckleMarker {
  public:
    /**
     * @brief Removal from regions up to a size.
     * @param maxSize The largest region.
     * @return The object, or the error that prevented it.
     */
    static Result<SpeckleMarker> create(RoiSize maxSize) {
        int32_t bytes = 0;
        const Status status = okpiMarkSpecklesGetBufferSize(maxSize, detail::kDataType<T>, 1, &bytes);
        if (!status) return status;
        return SpeckleMarker(maxSize, bytes);
    }

    /**
     * @brief Overwrites small regions of similar values.
     * @param image         Image.
     * @param value         Value to write.
     * @param maxSize       Pixels of the largest speckle.
     * @param maxDifference Largest difference of joined neighbours.
     * @return The C function's status.
     */
    Status operator()(ImageView<T> image, T value, int32_t maxSize, T maxDifference) {
        if (!detail::fits(image.size(), maxSize_)) return okpStatusBadSize;
        return detail::kMarkSpeckles<T>(image.data(), image.step(), image.size(), value, maxSize,
                                        maxDifference, NormInf, buffer_.data());
    }

  private:
    SpeckleMarker(RoiSize maxSize, int32_t bytes) : maxSize_(maxSize), buffer_(bytes) {}

    RoiSize maxSize_;
    Buffer buffer_;
};

/** @}
 *  @name Distances and pyramids
 *  @{ */

/**
 * @brief Chamfer distances to the nearest zero pixel.
 * @tparam maskSize 3 or 5.
 * @param src     Source.
 * @param dst     Distances.
 * @param metrics Weights of the steps, two for mask size 3 and three for 5.
 * @return The C function's status.
 */
template <int maskSize, class D>
requires detail::Exported<detail::kDistance<maskSize, D>> Status distanceTransform(
    ImageView<const uint8_t> src, ImageView<D> dst,
    const std::array<std::conditional_t<std::is_integral_v<D>, int32_t, D>, (maskSize + 1) / 2>& metrics) {
    if (!detail::same(src.size(), dst.size())) return okpStatusBadSize;
    return detail::kDistance<maskSize, D>(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                          metrics.data());
}

/** @brief Exact Euclidean distances, with the buffer that they need. */
class ExactDistance {
  public:
    /**
     * @brief Distances in regions up to a size.
     * @param maxSize The largest region.
     * @return The object, or the error that prevented it.
     */
    static Result<ExactDistance> create(RoiSize maxSize) {
        int32_t bytes = 0;
        const Status status = okpiTrueDistanceTransformGetBufferSize_8u32f_C1R(maxSize, &bytes);
        if (!status) return status;
        return ExactDistance(maxSize, bytes);
    }

    /**
     * @brief The distance of every pixel to the nearest zero pixel.
     * @param src Source.
     * @param dst Distances.
     * @return The C function's status.
     */
    Status operator()(ImageView<const uint8_t> src, ImageView<float> dst) {
        if (!detail::same(src.size(), dst.size()) || !detail::fits(dst.size(), maxSize_))
            return okpStatusBadSize;
        return okpiTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                                   buffer_.data());
    }

  private:
    ExactDistance(RoiSize maxSize, int32_t bytes) : maxSize_(maxSize), buffer_(bytes) {}

    RoiSize maxSize_;
    Buffer buffer_;
};

/** @brief The record of a pyramid, with the area that it lies in. */
class Pyramid {
  public:
    /**
     * @brief The sizes of the levels of a pyramid.
     * @param size   Size of level 0.
     * @param levels Largest number of further levels.
     * @param rate   How much smaller each is than the one before, 1 < rate <= 10.
     * @return The object, or the error that prevented it.
     */
    static Result<Pyramid> create(RoiSize size, int32_t levels, float rate = 2.0F) {
        int32_t recordBytes = 0, bufferBytes = 0;
        Status status = okpiPyramidGetSize(&recordBytes, &bufferBytes, levels, size, rate);
        if (!status) return status;
        Pyramid pyramid(recordBytes);
        const Buffer buffer(bufferBytes);
        status = okpiPyramidInit(&pyramid.record_, levels, size, rate, pyramid.area_.data(), buffer.data());
        return status ? Result<Pyramid>(std::move(pyramid)) : status;
    }

    /** @return Number of levels above level 0. */
    int32_t levels() const noexcept { return record_->level; }
    /**
     * @brief Size of a level in pixels.
     * @param level Its number, from 0 to levels().
     * @return Its size.
     */
    RoiSize size(int32_t level) const noexcept { return record_->pRoi[level]; }
    /**
     * @brief Scale of a level relative to level 0.
     * @param level Its number, from 0 to levels().
     * @return Its scale.
     */
    double scale(int32_t level) const noexcept { return record_->pRate[level]; }
    /** @return The record of the C interface. */
    PyramidRecord& record() const noexcept { return *record_; }

  private:
    explicit Pyramid(int32_t recordBytes) : area_(recordBytes) {}

    Buffer area_;
    PyramidRecord* record_ = nullptr;
};

/**
 * @brief The step from a level of a pyramid to its neighbour by the binomial kernel, with the areas that it
 * needs.
 * @tparam T         Type of the images.
 * @tparam Channels  Their channels.
 * @tparam GetSize   The C functions of the step: the size query,
 * @tparam Init      the initialiser
 * @tparam Operation and the operation.
 */
template <class T, int Channels, auto GetSize, auto Init, auto Operation>
class PyramidStep {
  public:
    /**
     * @brief A step.
     * @param maxSize The largest source.
     * @param rate    How much the sizes of the levels differ, 1 < rate <= 10.
     * @return The object, or the error that prevented it.
     */
    static Result<PyramidStep> create(RoiSize maxSize, float rate = 2.0F) {
        int32_t specBytes = 0, bufferBytes = 0;
        Status status = GetSize(maxSize, rate, 5, &specBytes, &bufferBytes);
        if (!status) return status;
        PyramidStep step(specBytes, bufferBytes);
        status = Init(maxSize, rate, nullptr, 5, step.spec_.data());
        return status ? Result<PyramidStep>(std::move(step)) : status;
    }

    /**
     * @brief Makes the neighbouring level.
     * @param src Source.
     * @param dst Destination, of a size that belongs to the source's.
     * @return The C function's status.
     */
    Status operator()(ImageView<const T, Channels> src, ImageView<T, Channels> dst) {
        return Operation(src.data(), src.step(), src.size(), dst.data(), dst.step(), dst.size(), spec_.data(),
                         buffer_.data());
    }

  private:
    PyramidStep(int32_t specBytes, int32_t bufferBytes) : spec_(specBytes), buffer_(bufferBytes) {}

    Buffer spec_, buffer_;
};

/**
 * @brief The step to the next smaller level.
 * @tparam T        Type of the images.
 * @tparam Channels Their channels.
 */
template <class T, int Channels = 1>
requires detail::Exported<detail::kLayerDown<T, Channels>>
using PyramidDown = PyramidStep<T, Channels, detail::kLayerDownSize<T, Channels>,
                                detail::kLayerDownInit<T, Channels>, detail::kLayerDown<T, Channels>>;

/**
 * @brief The step to the next larger level.
 * @tparam T        Type of the images.
 * @tparam Channels Their channels.
 */
template <class T, int Channels = 1>
requires detail::Exported<detail::kLayerUp<T, Channels>>
using PyramidUp = PyramidStep<T, Channels, detail::kLayerUpSize<T, Channels>,
                              detail::kLayerUpInit<T, Channels>, detail::kLayerUp<T, Channels>>;

/** @} */
}  // namespace okpcv
/** @} */

#endif  // OKPCV_HPP
