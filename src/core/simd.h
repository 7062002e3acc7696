// Vectors: the only file that knows vector intrinsics and the register width. Kernels see Vec<T>, its lane
// count and operations on whole vectors; another register width is another implementation of this file.
//
// Where an operation's name is that of a scalar one, each lane is exactly the scalar result: integer sums
// wrap, float operations round to nearest, comparisons are ordered (false with NaN) and give all ones or all
// zeros.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

// The code of a vector has no calls in it. Where sanitizers watch every access, one copy of each function is
// enough: copies of all their checks would take minutes to compile.
#if defined(OKPCV_SANITIZED)
#define OKPCV_INLINE inline
#define OKPCV_INLINE_LAMBDA
#else
#define OKPCV_INLINE inline __attribute__((always_inline))
// The same for a lambda, behind its parameters.
#define OKPCV_INLINE_LAMBDA __attribute__((always_inline))
#endif

namespace okpcv {

inline constexpr int kVectorBytes = 16;
inline constexpr int kCacheLineBytes = 64;

namespace detail {
template <class T>
struct Register {
    using Type = __m128i;
};
template <>
struct Register<float> {
    using Type = __m128;
};
template <>
struct Register<double> {
    using Type = __m128d;
};
}  // namespace detail

template <class T>
struct Vec {
    using Raw = typename detail::Register<T>::Type;
    static constexpr int lanes = kVectorBytes / int{sizeof(T)};
    Raw raw;
};

template <class T>
inline constexpr bool kIsFloat = std::is_same_v<T, float>;
template <class T>
inline constexpr bool kIsDouble = std::is_same_v<T, double>;
template <class T>
inline constexpr bool kIsInt = std::is_integral_v<T>;
// The unsigned integer of T's size.
template <class T>
using UnsignedLane = std::conditional_t<
    sizeof(T) == 1, uint8_t,
    std::conditional_t<sizeof(T) == 2, uint16_t, std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>>;

// The same bits as another lane type.
template <class To, class From>
OKPCV_INLINE Vec<To> bitCast(Vec<From> v) {
    return {std::bit_cast<typename Vec<To>::Raw>(v.raw)};
}

// ---- Constants ------------------------------------------------------------------------------------------

template <class T>
OKPCV_INLINE Vec<T> zeros() {
    return bitCast<T>(Vec<int32_t>{_mm_setzero_si128()});
}

template <class T>
OKPCV_INLINE Vec<T> broadcast(T value) {
    if constexpr (kIsFloat<T>) {
        return {_mm_set1_ps(value)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_set1_pd(value)};
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_set1_epi8(static_cast<char>(value))};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_set1_epi16(static_cast<short>(value))};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_set1_epi32(static_cast<int>(value))};
    } else {
        return {_mm_set1_epi64x(static_cast<long long>(value))};
    }
}

// 0, 1, 2, ... in the lanes.
template <class T>
OKPCV_INLINE Vec<T> laneNumbers() {
    T numbers[Vec<T>::lanes];
    for (int i = 0; i < Vec<T>::lanes; ++i) numbers[i] = static_cast<T>(i);
    return std::bit_cast<Vec<T>>(numbers);
}

// ---- Memory ---------------------------------------------------------------------------------------------

// How much of a vector a load or store touches. Row engines hand one of these to a kernel, which passes it
// on, so that one kernel serves whole vectors, the rest of a row, and streaming stores.
struct Whole {
    static constexpr Whole from(int) { return {}; }
};
// The first `count` lanes; lanes beyond it load as zero and are not stored.
struct Part {
    int count;
    // What is left of it for a vector that begins `lanes` further on, or has come to it for one before.
    constexpr Part from(int lanes) const { return {count - lanes}; }
};
// A whole vector whose store bypasses the caches; the address must be a multiple of kVectorBytes.
struct Streamed {
    static constexpr Streamed from(int) { return {}; }
};

// One value at any address: the elements of images need not be aligned.
template <class T>
OKPCV_INLINE T loadScalar(const void* p) {
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

template <class T>
OKPCV_INLINE void storeScalar(void* p, T value) {
    std::memcpy(p, &value, sizeof value);
}

namespace detail {

// The first 1 to 7 bytes at p, in loads that stay inside them.
OKPCV_INLINE uint64_t loadUpTo7(const unsigned char* p, int bytes) {
    if (bytes >= 4) {
        const uint64_t low = loadScalar<uint32_t>(p);
        const uint64_t high = loadScalar<uint32_t>(p + bytes - 4);
        return low | high << (8 * (bytes - 4));
    }
    const uint64_t first = p[0];
    const uint64_t middle = p[bytes >> 1];
    const uint64_t last = p[bytes - 1];
    return first | middle << (8 * (bytes >> 1)) | last << (8 * (bytes - 1));
}

OKPCV_INLINE void storeUpTo7(unsigned char* p, uint64_t value, int bytes) {
    if (bytes >= 4) {
        storeScalar(p, static_cast<uint32_t>(value));
        storeScalar(p + bytes - 4, static_cast<uint32_t>(value >> (8 * (bytes - 4))));
        return;
    }
    p[0] = static_cast<unsigned char>(value);
    p[bytes >> 1] = static_cast<unsigned char>(value >> (8 * (bytes >> 1)));
    p[bytes - 1] = static_cast<unsigned char>(value >> (8 * (bytes - 1)));
}

// The first `bytes` bytes at p (any number; 16 or more load 16), zeros behind them.
OKPCV_INLINE __m128i loadBytes(const void* from, int bytes) {
    const auto* p = static_cast<const unsigned char*>(from);
    if (bytes >= 16) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    if (bytes >= 8) {
        const __m128i low = _mm_cvtsi64_si128(loadScalar<int64_t>(p));
        if (bytes == 8) return low;
        return _mm_insert_epi64(
            low, static_cast<int64_t>(loadScalar<uint64_t>(p + bytes - 8) >> (8 * (16 - bytes))), 1);
    }
    if (bytes <= 0) return _mm_setzero_si128();
    return _mm_cvtsi64_si128(static_cast<int64_t>(loadUpTo7(p, bytes)));
}

OKPCV_INLINE void storeBytes(void* to, __m128i value, int bytes) {
    auto* p = static_cast<unsigned char*>(to);
    if (bytes >= 16) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), value);
        return;
    }
    const auto low = static_cast<uint64_t>(_mm_cvtsi128_si64(value));
    if (bytes >= 8) {
        storeScalar(p, low);
        if (bytes > 8) {
            const auto high = static_cast<uint64_t>(_mm_extract_epi64(value, 1));
            // The last 8 of the bytes: the tail of the low half, then the head of the high half.
            storeScalar(p + bytes - 8, low >> (8 * (bytes - 8)) | high << (8 * (16 - bytes)));
        }
        return;
    }
    if (bytes > 0) storeUpTo7(p, low, bytes);
}

}  // namespace detail

template <class T>
OKPCV_INLINE Vec<T> load(const T* p) {
    return bitCast<T>(Vec<int32_t>{_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))});
}
template <class T>
OKPCV_INLINE Vec<T> load(const T* p, Whole) {
    return load(p);
}
template <class T>
OKPCV_INLINE Vec<T> load(const T* p, Streamed) {
    return load(p);
}
template <class T>
OKPCV_INLINE Vec<T> load(const T* p, Part part) {
    return bitCast<T>(Vec<int32_t>{detail::loadBytes(p, part.count * int{sizeof(T)})});
}

// From an address that is a multiple of kVectorBytes: instructions may then take it as an operand.
template <class T>
OKPCV_INLINE Vec<T> loadAligned(const T* p) {
    return bitCast<T>(Vec<int32_t>{_mm_load_si128(reinterpret_cast<const __m128i*>(p))});
}

// From p on, the elements before the first whose address is a multiple of kVectorBytes.
template <class T>
OKPCV_INLINE int elementsToAligned(const T* p) {
    return static_cast<int>(-reinterpret_cast<uintptr_t>(p) % kVectorBytes / sizeof(T));
}

template <class T>
OKPCV_INLINE void store(T* p, Vec<T> v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bitCast<int32_t>(v).raw);
}
template <class T>
OKPCV_INLINE void store(T* p, Vec<T> v, Whole) {
    store(p, v);
}
template <class T>
OKPCV_INLINE void store(T* p, Vec<T> v, Streamed) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(p), bitCast<int32_t>(v).raw);
}
template <class T>
OKPCV_INLINE void store(T* p, Vec<T> v, Part part) {
    detail::storeBytes(p, bitCast<int32_t>(v).raw, part.count * int{sizeof(T)});
}

// Stores the first N lanes, or of a part those among them.
template <int N, class T, class Extent>
OKPCV_INLINE void storeFirst(T* p, Vec<T> v, Extent extent) {
    static_assert(N < Vec<T>::lanes);
    if constexpr (std::is_same_v<Extent, Part>) {
        store(p, v, Part{extent.count < N ? extent.count : N});
    } else if constexpr (N * int{sizeof(T)} == 8) {
        storeScalar(p, _mm_cvtsi128_si64(bitCast<int32_t>(v).raw));
    } else if constexpr (N * int{sizeof(T)} == 4) {
        storeScalar(p, _mm_cvtsi128_si32(bitCast<int32_t>(v).raw));
    } else {
        store(p, v, Part{N});
    }
}

// Loads the first N lanes, or of a part those among them, and zeros behind them.
template <int N, class T, class Extent>
OKPCV_INLINE Vec<T> loadFirst(const T* p, Extent extent) {
    static_assert(N * int{sizeof(T)} == 8);
    if constexpr (std::is_same_v<Extent, Part>) {
        return load(p, Part{extent.count < N ? extent.count : N});
    } else {
        return bitCast<T>(Vec<int32_t>{_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))});
    }
}

// The same vector, kept in a register: left to themselves, compilers read a constant, or what was loaded,
// again wherever it is used, and loads are what loops have too many of.
template <class T>
OKPCV_INLINE Vec<T> inRegister(Vec<T> v) {
    __asm__("" : "+x"(v.raw));
    return v;
}

// The same address, as one from which nothing has been loaded yet: left to themselves, compilers keep what
// they have loaded until it is used again, with copies and spilled registers where another load costs less.
template <class T>
OKPCV_INLINE const T* unseen(const T* p) {
    __asm__("" : "+r"(p));
    return p;
}

// Half a vector from each of two addresses.
template <class T>
OKPCV_INLINE Vec<T> loadHalves(const T* low, const T* high) {
    const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(low));
    return bitCast<T>(
        Vec<double>{_mm_loadh_pd(_mm_castsi128_pd(first), reinterpret_cast<const double*>(high))});
}

// Starts to fetch the cache line of an address, without waiting for it.
OKPCV_INLINE void fetch(const void* p) {
    _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T0);
}

// Orders the streaming stores before it against whatever the caller does next.
OKPCV_INLINE void finishStreaming() {
    _mm_sfence();
}

// table[index] in every lane.
template <class T>
OKPCV_INLINE Vec<T> gather(const T* table, Vec<int32_t> index) {
    static_assert(sizeof(T) == 4);
    const auto low = static_cast<uint64_t>(_mm_cvtsi128_si64(index.raw));
    const auto high = static_cast<uint64_t>(_mm_extract_epi64(index.raw, 1));
    const auto at = [table](uint64_t i) {
        return _mm_cvtsi32_si128(loadScalar<int32_t>(table + static_cast<int32_t>(i)));
    };
    return bitCast<T>(Vec<int32_t>{_mm_unpacklo_epi64(_mm_unpacklo_epi32(at(low), at(low >> 32)),
                                                      _mm_unpacklo_epi32(at(high), at(high >> 32)))});
}

namespace detail {

// Vec<To>::lanes elements of From from the low bytes of `raw`, converted exactly.
template <class To, class From>
OKPCV_INLINE Vec<To> extend(__m128i raw) {
    using Mid = std::conditional_t<kIsInt<To>, To, int32_t>;  // floats come from 32-bit integers
    __m128i mid = raw;
    if constexpr (sizeof(From) == 1 && sizeof(Mid) == 2) {
        mid = std::is_signed_v<From> ? _mm_cvtepi8_epi16(raw) : _mm_cvtepu8_epi16(raw);
    } else if constexpr (sizeof(From) == 1 && sizeof(Mid) == 4) {
        mid = std::is_signed_v<From> ? _mm_cvtepi8_epi32(raw) : _mm_cvtepu8_epi32(raw);
    } else if constexpr (sizeof(From) == 2 && sizeof(Mid) == 4) {
        mid = std::is_signed_v<From> ? _mm_cvtepi16_epi32(raw) : _mm_cvtepu16_epi32(raw);
    } else if constexpr (sizeof(From) == 4 && sizeof(Mid) == 8) {
        mid = std::is_signed_v<From> ? _mm_cvtepi32_epi64(raw) : _mm_cvtepu32_epi64(raw);
    }
    if constexpr (kIsFloat<To>) {
        return {_mm_cvtepi32_ps(mid)};
    } else if constexpr (kIsDouble<To>) {
        return {_mm_cvtepi32_pd(mid)};
    } else {
        return {mid};
    }
}

}  // namespace detail

// Loads Vec<To>::lanes elements and converts each exactly: integers to wider integers or to floats that hold
// every value of the type.
template <class To, class From, class Extent = Whole>
OKPCV_INLINE Vec<To> loadAs(const From* p, Extent extent = {}) {
    if constexpr (std::is_same_v<To, From>) {
        return load(p, extent);
    } else {
        static_assert(sizeof(From) < sizeof(To) && (kIsInt<From> || (kIsFloat<From> && kIsDouble<To>)));
        constexpr int bytes = Vec<To>::lanes * int{sizeof(From)};
        __m128i raw;
        if constexpr (std::is_same_v<Extent, Part>) {
            const int count = extent.count < Vec<To>::lanes ? extent.count : Vec<To>::lanes;
            raw = detail::loadBytes(p, count * int{sizeof(From)});
        } else if constexpr (bytes == 8) {
            raw = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        } else if constexpr (bytes == 4) {
            raw = _mm_cvtsi32_si128(loadScalar<int32_t>(p));
        } else {
            raw = _mm_cvtsi32_si128(loadScalar<uint16_t>(p));
        }
        if constexpr (kIsFloat<From>) {
            return {_mm_cvtps_pd(_mm_castsi128_ps(raw))};
        } else {
            return detail::extend<To, From>(raw);
        }
    }
}

// ---- Bits and comparisons -------------------------------------------------------------------------------

template <class T>
OKPCV_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return bitCast<T>(Vec<int32_t>{_mm_and_si128(bitCast<int32_t>(a).raw, bitCast<int32_t>(b).raw)});
}
template <class T>
OKPCV_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return bitCast<T>(Vec<int32_t>{_mm_or_si128(bitCast<int32_t>(a).raw, bitCast<int32_t>(b).raw)});
}
template <class T>
OKPCV_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return bitCast<T>(Vec<int32_t>{_mm_xor_si128(bitCast<int32_t>(a).raw, bitCast<int32_t>(b).raw)});
}
template <class T>
OKPCV_INLINE Vec<T> operator~(Vec<T> a) {
    return bitCast<T>(Vec<int32_t>{_mm_xor_si128(bitCast<int32_t>(a).raw, _mm_set1_epi32(-1))});
}
// a where `mask` is zero, 0 where it is all ones.
template <class T>
OKPCV_INLINE Vec<T> andNot(Vec<T> a, Vec<T> mask) {
    return bitCast<T>(Vec<int32_t>{_mm_andnot_si128(bitCast<int32_t>(mask).raw, bitCast<int32_t>(a).raw)});
}
// mask ? a : b.
template <class T>
OKPCV_INLINE Vec<T> select(Vec<T> mask, Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_blendv_ps(b.raw, a.raw, mask.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_blendv_pd(b.raw, a.raw, mask.raw)};
    } else {
        return {_mm_blendv_epi8(b.raw, a.raw, mask.raw)};
    }
}

template <class T>
OKPCV_INLINE Vec<T> min(Vec<T> a, Vec<T> b);
template <class T>
OKPCV_INLINE Vec<T> max(Vec<T> a, Vec<T> b);

template <class T>
OKPCV_INLINE Vec<T> equal(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_cmpeq_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_cmpeq_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_cmpeq_epi8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_cmpeq_epi16(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_cmpeq_epi32(a.raw, b.raw)};
    } else {
        return {_mm_cmpeq_epi64(a.raw, b.raw)};
    }
}
template <class T>
OKPCV_INLINE Vec<T> greater(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_cmpgt_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_cmpgt_pd(a.raw, b.raw)};
    } else if constexpr (std::is_unsigned_v<T>) {
        return ~equal(min(a, b), a);
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_cmpgt_epi8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_cmpgt_epi16(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_cmpgt_epi32(a.raw, b.raw)};
    } else {
        return {_mm_cmpgt_epi64(a.raw, b.raw)};
    }
}
template <class T>
OKPCV_INLINE Vec<T> less(Vec<T> a, Vec<T> b) {
    return greater(b, a);
}
template <class T>
OKPCV_INLINE Vec<T> greaterEqual(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_cmpge_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_cmpge_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 8) {
        return ~greater(b, a);
    } else {
        return equal(max(a, b), a);
    }
}
template <class T>
OKPCV_INLINE Vec<T> lessEqual(Vec<T> a, Vec<T> b) {
    return greaterEqual(b, a);
}

// One bit per lane of a comparison's result, lane 0 lowest.
template <class T>
OKPCV_INLINE uint32_t laneBits(Vec<T> mask) {
    if constexpr (sizeof(T) == 1) {
        return static_cast<uint32_t>(_mm_movemask_epi8(mask.raw));
    } else if constexpr (sizeof(T) == 2) {
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(mask.raw, _mm_setzero_si128())));
    } else if constexpr (sizeof(T) == 4) {
        return static_cast<uint32_t>(_mm_movemask_ps(bitCast<float>(mask).raw));
    } else {
        return static_cast<uint32_t>(_mm_movemask_pd(bitCast<double>(mask).raw));
    }
}
// The inverse of laneBits: all ones in the lanes whose bit is set.
template <class T>
OKPCV_INLINE Vec<T> laneMask(uint32_t bits) {
    using Lane = UnsignedLane<T>;
    // Every lane gets the bits, or of two bytes of them the one that holds its own, and looks at its own bit.
    constexpr int bitsPerLane = sizeof(T) == 1 ? 8 : Vec<T>::lanes;
    Vec<Lane> all =
        bitCast<Lane>(broadcast(static_cast<std::conditional_t<sizeof(T) == 1, uint16_t, Lane>>(bits)));
    if constexpr (sizeof(T) == 1) all.raw = _mm_shuffle_epi8(all.raw, _mm_set_epi64x(0x0101010101010101, 0));
    Lane own[Vec<T>::lanes];
    for (int i = 0; i < Vec<T>::lanes; ++i) own[i] = static_cast<Lane>(Lane{1} << (i % bitsPerLane));
    const auto ownBit = std::bit_cast<Vec<Lane>>(own);
    return bitCast<T>(equal(all & ownBit, ownBit));
}
// Whether any bit of v is set.
template <class T>
OKPCV_INLINE bool anyBit(Vec<T> v) {
    return !_mm_testz_si128(bitCast<int32_t>(v).raw, bitCast<int32_t>(v).raw);
}

// ---- Arithmetic -----------------------------------------------------------------------------------------

// Where both operands are NaN the first one results. Compilers take those of sums and products in either
// order, here so and there so: of floats they are written as instructions, of doubles it is left open.
template <class T>
OKPCV_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        __asm__("addps %1, %0" : "+x"(a.raw) : "x"(b.raw));
        return a;
    } else if constexpr (kIsDouble<T>) {
        return {_mm_add_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_add_epi8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_add_epi16(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_add_epi32(a.raw, b.raw)};
    } else {
        return {_mm_add_epi64(a.raw, b.raw)};
    }
}
template <class T>
OKPCV_INLINE Vec<T> operator-(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_sub_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_sub_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_sub_epi8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_sub_epi16(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_sub_epi32(a.raw, b.raw)};
    } else {
        return {_mm_sub_epi64(a.raw, b.raw)};
    }
}
// The low half of the product for integers (16- and 32-bit).
template <class T>
OKPCV_INLINE Vec<T> operator*(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        __asm__("mulps %1, %0" : "+x"(a.raw) : "x"(b.raw));
        return a;
    } else if constexpr (kIsDouble<T>) {
        return {_mm_mul_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_mullo_epi16(a.raw, b.raw)};
    } else {
        static_assert(sizeof(T) == 4);
        return {_mm_mullo_epi32(a.raw, b.raw)};
    }
}
// a times the vector at p, from where the instruction takes it: a multiple of kVectorBytes.
OKPCV_INLINE Vec<float> timesAligned(Vec<float> a, const float* p) {
    __asm__("mulps %1, %0" : "+x"(a.raw) : "m"(*reinterpret_cast<const __m128*>(p)));
    return a;
}
template <class T>
OKPCV_INLINE Vec<T> operator/(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_div_ps(a.raw, b.raw)};
    } else {
        static_assert(kIsDouble<T>);
        return {_mm_div_pd(a.raw, b.raw)};
    }
}

// sum += term, in the register of the sum. Left to themselves, compilers add into the register of the term as
// often, and finish one sum before they begin the next: copies, and additions that wait for each other, where
// several sums should advance side by side.
OKPCV_INLINE void accumulate(Vec<float>& sum, Vec<float> term) {
    sum = sum + term;
}
OKPCV_INLINE void accumulate(Vec<int32_t>& sum, Vec<int32_t> term) {
    __asm__("paddd %1, %0" : "+x"(sum.raw) : "x"(term.raw));
}
OKPCV_INLINE void accumulate(Vec<int16_t>& sum, Vec<int16_t> term) {
    __asm__("paddw %1, %0" : "+x"(sum.raw) : "x"(term.raw));
}

// a < b ? a : b, so b where the lanes are unordered or equal.
template <class T>
OKPCV_INLINE Vec<T> min(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_min_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_min_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {std::is_signed_v<T> ? _mm_min_epi8(a.raw, b.raw) : _mm_min_epu8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {std::is_signed_v<T> ? _mm_min_epi16(a.raw, b.raw) : _mm_min_epu16(a.raw, b.raw)};
    } else {
        static_assert(sizeof(T) == 4);
        return {std::is_signed_v<T> ? _mm_min_epi32(a.raw, b.raw) : _mm_min_epu32(a.raw, b.raw)};
    }
}
// a > b ? a : b, so b where the lanes are unordered or equal.
template <class T>
OKPCV_INLINE Vec<T> max(Vec<T> a, Vec<T> b) {
    if constexpr (kIsFloat<T>) {
        return {_mm_max_ps(a.raw, b.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_max_pd(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {std::is_signed_v<T> ? _mm_max_epi8(a.raw, b.raw) : _mm_max_epu8(a.raw, b.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {std::is_signed_v<T> ? _mm_max_epi16(a.raw, b.raw) : _mm_max_epu16(a.raw, b.raw)};
    } else {
        static_assert(sizeof(T) == 4);
        return {std::is_signed_v<T> ? _mm_max_epi32(a.raw, b.raw) : _mm_max_epu32(a.raw, b.raw)};
    }
}

// Sum and difference clamped to the type (8- and 16-bit).
template <class T>
OKPCV_INLINE Vec<T> addSaturated(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) {
        return {std::is_signed_v<T> ? _mm_adds_epi8(a.raw, b.raw) : _mm_adds_epu8(a.raw, b.raw)};
    } else {
        static_assert(sizeof(T) == 2);
        return {std::is_signed_v<T> ? _mm_adds_epi16(a.raw, b.raw) : _mm_adds_epu16(a.raw, b.raw)};
    }
}
template <class T>
OKPCV_INLINE Vec<T> subSaturated(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) {
        return {std::is_signed_v<T> ? _mm_subs_epi8(a.raw, b.raw) : _mm_subs_epu8(a.raw, b.raw)};
    } else {
        static_assert(sizeof(T) == 2);
        return {std::is_signed_v<T> ? _mm_subs_epi16(a.raw, b.raw) : _mm_subs_epu16(a.raw, b.raw)};
    }
}

// |a| with the sign bit cleared for floats; the most negative integer stays as it is (its own modulus as an
// unsigned number).
template <class T>
OKPCV_INLINE Vec<T> abs(Vec<T> a) {
    if constexpr (kIsFloat<T>) {
        return {_mm_andnot_ps(_mm_set1_ps(-0.0F), a.raw)};
    } else if constexpr (kIsDouble<T>) {
        return {_mm_andnot_pd(_mm_set1_pd(-0.0), a.raw)};
    } else if constexpr (sizeof(T) == 1) {
        return {_mm_abs_epi8(a.raw)};
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_abs_epi16(a.raw)};
    } else {
        static_assert(sizeof(T) == 4);
        return {_mm_abs_epi32(a.raw)};
    }
}
// |a - b| of unsigned 8- and 16-bit lanes.
template <class T>
OKPCV_INLINE Vec<T> absDiff(Vec<T> a, Vec<T> b) {
    static_assert(std::is_unsigned_v<T>);
    return subSaturated(a, b) | subSaturated(b, a);
}

template <class T>
OKPCV_INLINE Vec<T> sqrt(Vec<T> a) {
    if constexpr (kIsFloat<T>) {
        return {_mm_sqrt_ps(a.raw)};
    } else {
        static_assert(kIsDouble<T>);
        return {_mm_sqrt_pd(a.raw)};
    }
}

// Shifts of every lane by the same number of bits; right shifts of signed lanes keep the sign. A shift by a
// lane's width or more leaves no bit.
template <class T>
OKPCV_INLINE Vec<T> shiftLeft(Vec<T> a, int bits) {
    if constexpr (sizeof(T) == 2) {
        return {_mm_slli_epi16(a.raw, bits)};
    } else if constexpr (sizeof(T) == 4) {
        return {_mm_slli_epi32(a.raw, bits)};
    } else {
        static_assert(sizeof(T) == 8);
        return {_mm_slli_epi64(a.raw, bits)};
    }
}
template <class T>
OKPCV_INLINE Vec<T> shiftRight(Vec<T> a, int bits) {
    if constexpr (sizeof(T) == 2) {
        return {std::is_signed_v<T> ? _mm_srai_epi16(a.raw, bits) : _mm_srli_epi16(a.raw, bits)};
    } else if constexpr (sizeof(T) == 4) {
        return {std::is_signed_v<T> ? _mm_srai_epi32(a.raw, bits) : _mm_srli_epi32(a.raw, bits)};
    } else {
        static_assert(sizeof(T) == 8 && std::is_unsigned_v<T>);
        return {_mm_srli_epi64(a.raw, bits)};
    }
}

// Products of signed 16-bit lanes, neighbours added: a[2i] * b[2i] + a[2i + 1] * b[2i + 1].
OKPCV_INLINE Vec<int32_t> mulAddPairs(Vec<int16_t> a, Vec<int16_t> b) {
    return {_mm_madd_epi16(a.raw, b.raw)};
}
// The same of unsigned by signed bytes, saturated to 16 bits.
OKPCV_INLINE Vec<int16_t> mulAddPairs(Vec<uint8_t> a, Vec<int8_t> b) {
    return {_mm_maddubs_epi16(a.raw, b.raw)};
}
// The high half of the product (16-bit).
template <class T>
OKPCV_INLINE Vec<T> mulHigh(Vec<T> a, Vec<T> b) {
    static_assert(sizeof(T) == 2);
    return {std::is_signed_v<T> ? _mm_mulhi_epi16(a.raw, b.raw) : _mm_mulhi_epu16(a.raw, b.raw)};
}
// The product as a fraction of 2^15, rounded half up: (a * b + 2^14) >> 15 (signed 16-bit).
OKPCV_INLINE Vec<int16_t> mulFraction(Vec<int16_t> a, Vec<int16_t> b) {
    return {_mm_mulhrs_epi16(a.raw, b.raw)};
}
// |a - b| summed over each group of eight bytes.
OKPCV_INLINE Vec<uint64_t> sumAbsDiff(Vec<uint8_t> a, Vec<uint8_t> b) {
    return {_mm_sad_epu8(a.raw, b.raw)};
}

// ---- Conversion -----------------------------------------------------------------------------------------

// The first and the second half of the lanes, each converted exactly to a type twice as wide.
template <class To, class From>
OKPCV_INLINE Vec<To> widenLow(Vec<From> a) {
    static_assert(sizeof(To) == 2 * sizeof(From) || (kIsDouble<To> && sizeof(From) == 4));
    if constexpr (kIsFloat<From>) {
        return {_mm_cvtps_pd(a.raw)};
    } else {
        return detail::extend<To, From>(a.raw);
    }
}
template <class To, class From>
OKPCV_INLINE Vec<To> widenHigh(Vec<From> a) {
    if constexpr (kIsInt<From> && std::is_unsigned_v<From> && kIsInt<To>) {
        const __m128i zero = _mm_setzero_si128();
        if constexpr (sizeof(From) == 1) {
            return {_mm_unpackhi_epi8(a.raw, zero)};
        } else if constexpr (sizeof(From) == 2) {
            return {_mm_unpackhi_epi16(a.raw, zero)};
        } else {
            return {_mm_unpackhi_epi32(a.raw, zero)};
        }
    } else {
        const __m128i high = _mm_shuffle_epi32(bitCast<int32_t>(a).raw, 0xEE);
        return widenLow<To>(bitCast<From>(Vec<int32_t>{high}));
    }
}

// Two vectors of signed integers clamped into one of half the width.
template <class To, class From>
OKPCV_INLINE Vec<To> narrowSaturated(Vec<From> low, Vec<From> high) {
    static_assert(std::is_signed_v<From> && sizeof(From) == 2 * sizeof(To));
    if constexpr (sizeof(From) == 2) {
        return {std::is_signed_v<To> ? _mm_packs_epi16(low.raw, high.raw)
                                     : _mm_packus_epi16(low.raw, high.raw)};
    } else {
        static_assert(sizeof(From) == 4);
        return {std::is_signed_v<To> ? _mm_packs_epi32(low.raw, high.raw)
                                     : _mm_packus_epi32(low.raw, high.raw)};
    }
}

OKPCV_INLINE Vec<float> toFloat(Vec<int32_t> a) {
    return {_mm_cvtepi32_ps(a.raw)};
}
// Towards zero, and to nearest with ties to even. Out of range and NaN give INT32_MIN.
OKPCV_INLINE Vec<int32_t> truncateToInt(Vec<float> a) {
    return {_mm_cvttps_epi32(a.raw)};
}
OKPCV_INLINE Vec<int32_t> roundToInt(Vec<float> a) {
    return {_mm_cvtps_epi32(a.raw)};
}
// Two vectors of doubles truncated to 32-bit integers. Out of range and NaN give INT32_MIN.
OKPCV_INLINE Vec<int32_t> narrowTruncated(Vec<double> low, Vec<double> high) {
    return {_mm_unpacklo_epi64(_mm_cvttpd_epi32(low.raw), _mm_cvttpd_epi32(high.raw))};
}
// Truncated towards zero, for narrowSaturated<T> to finish: the two together are truncateSaturated<T> (see
// numbers.h) in every lane. Below the range and for NaN the conversion gives INT32_MIN, which narrows to the
// smallest T; so only the upper side needs a clamp, and its operands are ordered to let NaN through.
template <class T>
OKPCV_INLINE Vec<int32_t> truncateToNarrow(Vec<float> a) {
    static_assert(kIsInt<T> && sizeof(T) <= 2);
    return truncateToInt(min(broadcast(static_cast<float>(std::numeric_limits<T>::max())), a));
}
// Two vectors of doubles rounded to single precision.
OKPCV_INLINE Vec<float> narrow(Vec<double> low, Vec<double> high) {
    return {_mm_movelh_ps(_mm_cvtpd_ps(low.raw), _mm_cvtpd_ps(high.raw))};
}

// ---- Lanes ----------------------------------------------------------------------------------------------

// Lane i takes lane i - N of a (i + N for the second form), 0 where there is none.
template <int N, class T>
OKPCV_INLINE Vec<T> shiftLanesUp(Vec<T> a) {
    return bitCast<T>(Vec<int32_t>{_mm_slli_si128(bitCast<int32_t>(a).raw, N * int{sizeof(T)})});
}
template <int N, class T>
OKPCV_INLINE Vec<T> shiftLanesDown(Vec<T> a) {
    return bitCast<T>(Vec<int32_t>{_mm_srli_si128(bitCast<int32_t>(a).raw, N * int{sizeof(T)})});
}
// The same of 4-byte lanes, but where there is none the lane keeps its own.
template <int N, class T>
OKPCV_INLINE Vec<T> repeatLanesUp(Vec<T> a) {
    static_assert(sizeof(T) == 4 && (N == 1 || N == 2));
    return bitCast<T>(Vec<int32_t>{_mm_shuffle_epi32(bitCast<int32_t>(a).raw, N == 1 ? 0x90 : 0x44)});
}
template <int N, class T>
OKPCV_INLINE Vec<T> repeatLanesDown(Vec<T> a) {
    static_assert(sizeof(T) == 4 && (N == 1 || N == 2));
    return bitCast<T>(Vec<int32_t>{_mm_shuffle_epi32(bitCast<int32_t>(a).raw, N == 1 ? 0xF9 : 0xEE)});
}
// Lanes N, N + 1, ... of the sequence first, second.
template <int N, class T>
OKPCV_INLINE Vec<T> slide(Vec<T> first, Vec<T> second) {
    return bitCast<T>(Vec<int32_t>{
        _mm_alignr_epi8(bitCast<int32_t>(second).raw, bitCast<int32_t>(first).raw, N * int{sizeof(T)})});
}
// Lane N in all lanes.
template <int N, class T>
OKPCV_INLINE Vec<T> broadcastLane(Vec<T> a) {
    const __m128i x = bitCast<int32_t>(a).raw;
    if constexpr (sizeof(T) == 8) {
        return bitCast<T>(Vec<int32_t>{_mm_shuffle_epi32(x, N * 0xAA + 0x44)});
    } else if constexpr (sizeof(T) == 4) {
        return bitCast<T>(Vec<int32_t>{_mm_shuffle_epi32(x, N * 0x55)});
    } else if constexpr (sizeof(T) == 2) {
        return {_mm_shuffle_epi8(x, _mm_set1_epi16(static_cast<short>(2 * N + 256 * (2 * N + 1))))};
    } else {
        return {_mm_shuffle_epi8(x, _mm_set1_epi8(static_cast<char>(N)))};
    }
}
template <class T>
OKPCV_INLINE Vec<T> broadcastLast(Vec<T> a) {
    return broadcastLane<Vec<T>::lanes - 1>(a);
}
// Lane i becomes the largest of the lanes 0 to i, and at least 0.
template <int N = 1, class T>
OKPCV_INLINE Vec<T> prefixMax(Vec<T> a) {
    if constexpr (N < Vec<T>::lanes) {
        return prefixMax<2 * N>(max(a, shiftLanesUp<N>(a)));
    } else {
        return max(a, zeros<T>());
    }
}
// a0 b0 a1 b1 ... from the first (second) half of the lanes.
template <class T>
OKPCV_INLINE Vec<T> interleaveLow(Vec<T> a, Vec<T> b) {
    const __m128i x = bitCast<int32_t>(a).raw;
    const __m128i y = bitCast<int32_t>(b).raw;
    __m128i z;
    if constexpr (sizeof(T) == 1) {
        z = _mm_unpacklo_epi8(x, y);
    } else if constexpr (sizeof(T) == 2) {
        z = _mm_unpacklo_epi16(x, y);
    } else if constexpr (sizeof(T) == 4) {
        z = _mm_unpacklo_epi32(x, y);
    } else {
        z = _mm_unpacklo_epi64(x, y);
    }
    return bitCast<T>(Vec<int32_t>{z});
}
template <class T>
OKPCV_INLINE Vec<T> interleaveHigh(Vec<T> a, Vec<T> b) {
    const __m128i x = bitCast<int32_t>(a).raw;
    const __m128i y = bitCast<int32_t>(b).raw;
    __m128i z;
    if constexpr (sizeof(T) == 1) {
        z = _mm_unpackhi_epi8(x, y);
    } else if constexpr (sizeof(T) == 2) {
        z = _mm_unpackhi_epi16(x, y);
    } else if constexpr (sizeof(T) == 4) {
        z = _mm_unpackhi_epi32(x, y);
    } else {
        z = _mm_unpackhi_epi64(x, y);
    }
    return bitCast<T>(Vec<int32_t>{z});
}
// Lanes 0, 2, 4, ... (1, 3, 5, ... for the second form) of the sequence a, b.
template <class T>
OKPCV_INLINE Vec<T> evenLanes(Vec<T> a, Vec<T> b) {
    static_assert(sizeof(T) == 4);
    return bitCast<T>(Vec<float>{_mm_shuffle_ps(bitCast<float>(a).raw, bitCast<float>(b).raw, 0x88)});
}
template <class T>
OKPCV_INLINE Vec<T> oddLanes(Vec<T> a, Vec<T> b) {
    static_assert(sizeof(T) == 4);
    return bitCast<T>(Vec<float>{_mm_shuffle_ps(bitCast<float>(a).raw, bitCast<float>(b).raw, 0xDD)});
}
// a0 a4 a1 a5 a2 a6 a3 a7: the first half of the lanes interleaved with the second (16-bit).
template <class T>
OKPCV_INLINE Vec<T> interleaveHalves(Vec<T> a) {
    static_assert(sizeof(T) == 2);
    const __m128i order = _mm_set_epi8(15, 14, 7, 6, 13, 12, 5, 4, 11, 10, 3, 2, 9, 8, 1, 0);
    return {_mm_shuffle_epi8(a.raw, order)};
}
// The bytes of each lane in the opposite order.
template <class T>
OKPCV_INLINE Vec<T> reverseBytes(Vec<T> a) {
    static_assert(sizeof(T) == 8);
    const __m128i order = _mm_set_epi8(8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7);
    return {_mm_shuffle_epi8(a.raw, order)};
}
template <class T>
OKPCV_INLINE T firstLane(Vec<T> a) {
    return loadScalar<T>(&a);
}
template <class T>
OKPCV_INLINE T lastLane(Vec<T> a) {
    return firstLane(broadcastLast(a));
}

namespace detail {

struct LaneShuffle {
    alignas(16) int8_t bytes[16];
};
struct LaneShuffles {
    LaneShuffle of[16];
};
// For every set of four lanes the shuffle that moves them to the front.
constexpr LaneShuffles packingShuffles() {
    LaneShuffles shuffles{};
    for (int set = 0; set < 16; ++set) {
        int place = 0;
        for (int lane = 0; lane < 4; ++lane) {
            if ((set >> lane & 1) == 0) continue;
            for (int i = 0; i < 4; ++i) shuffles.of[set].bytes[place++] = static_cast<int8_t>(4 * lane + i);
        }
    }
    return shuffles;
}
inline constexpr LaneShuffles kPackingShuffles = packingShuffles();

}  // namespace detail

// The lanes whose bits are set, in their order, from lane 0 on; the other lanes are unspecified.
template <class T>
OKPCV_INLINE Vec<T> packLanes(Vec<T> a, uint32_t laneSet) {
    static_assert(sizeof(T) == 4);
    const auto* shuffle = reinterpret_cast<const __m128i*>(detail::kPackingShuffles.of[laneSet].bytes);
    return bitCast<T>(Vec<int32_t>{_mm_shuffle_epi8(bitCast<int32_t>(a).raw, _mm_load_si128(shuffle))});
}

// All lanes folded by an operation, halves first: for four lanes (0 op 2) op (1 op 3).
template <class T, class Op>
OKPCV_INLINE T foldLanes(Vec<T> a, Op op) {
    if constexpr (Vec<T>::lanes >= 16) a = op(a, shiftLanesDown<8>(a));
    if constexpr (Vec<T>::lanes >= 8) a = op(a, shiftLanesDown<4>(a));
    if constexpr (Vec<T>::lanes >= 4) a = op(a, shiftLanesDown<2>(a));
    a = op(a, shiftLanesDown<1>(a));
    return firstLane(a);
}
template <class T>
OKPCV_INLINE T sumLanes(Vec<T> a) {
    return foldLanes(a, [](Vec<T> x, Vec<T> y) { return x + y; });
}
template <class T>
OKPCV_INLINE T minLane(Vec<T> a) {
    return foldLanes(a, [](Vec<T> x, Vec<T> y) { return min(x, y); });
}
template <class T>
OKPCV_INLINE T maxLane(Vec<T> a) {
    return foldLanes(a, [](Vec<T> x, Vec<T> y) { return max(x, y); });
}

template <class T>
struct Channels3 {
    Vec<T> c0, c1, c2;
};

namespace detail {

// As a source: no byte.
inline constexpr int kNowhere = -1;

// The byte shuffle that moves to place i of the result the byte of input register `input` that belongs there,
// where source(i) gives the index in the sequence of the three inputs; other places become zero.
struct ShuffleIndices {
    alignas(16) int8_t at[16];
};
template <class Source>
constexpr ShuffleIndices shuffleFrom(int input, Source source) {
    ShuffleIndices indices{};
    for (int i = 0; i < 16; ++i) {
        const int from = source(i) - 16 * input;
        indices.at[i] = from >= 0 && from < 16 ? static_cast<int8_t>(from) : int8_t{-128};
    }
    return indices;
}

OKPCV_INLINE __m128i shuffled(__m128i a, const ShuffleIndices& indices) {
    return _mm_shuffle_epi8(a, _mm_load_si128(reinterpret_cast<const __m128i*>(indices.at)));
}

// Byte i of channel c of interleaved triples of T, as an index into the three input registers.
template <class T>
constexpr int tripleSource(int c, int i) {
    constexpr int e = sizeof(T);
    return (3 * (i / e) + c) * e + i % e;
}
// Byte i of output register `out` of interleaving, as an index into the three channel registers.
template <class T>
constexpr int channelSource(int out, int i) {
    constexpr int e = sizeof(T);
    const int element = (16 * out + i) / e;
    return 16 * (element % 3) + (element / 3) * e + i % e;
}

template <class Source>
OKPCV_INLINE __m128i gather3(__m128i in0, __m128i in1, __m128i in2, Source) {
    static constexpr auto from0 = shuffleFrom(0, Source{});
    static constexpr auto from1 = shuffleFrom(1, Source{});
    static constexpr auto from2 = shuffleFrom(2, Source{});
    return _mm_or_si128(_mm_or_si128(shuffled(in0, from0), shuffled(in1, from1)), shuffled(in2, from2));
}

template <class T, int C>
struct TripleSource {
    constexpr int operator()(int i) const { return tripleSource<T>(C, i); }
};
template <class T, int Out>
struct ChannelSource {
    constexpr int operator()(int i) const { return channelSource<T>(Out, i); }
};

// The shuffles of every channel, input by input.
template <class T>
constexpr auto channelShuffles() {
    struct {
        ShuffleIndices at[3][3];
    } shuffles{};
    for (int input = 0; input < 3; ++input) {
        shuffles.at[0][input] = shuffleFrom(input, TripleSource<T, 0>{});
        shuffles.at[1][input] = shuffleFrom(input, TripleSource<T, 1>{});
        shuffles.at[2][input] = shuffleFrom(input, TripleSource<T, 2>{});
    }
    return shuffles;
}

}  // namespace detail

// Orders of lanes: lane i takes lane order(i), or 0 where that is negative. `order` is a constant function.
template <class Order>
OKPCV_INLINE Vec<uint8_t> laneOrder(Order) {
    static constexpr auto indices = detail::shuffleFrom(0, Order{});
    return load(reinterpret_cast<const uint8_t*>(indices.at));
}
OKPCV_INLINE Vec<uint8_t> permuted(Vec<uint8_t> a, Vec<uint8_t> order) {
    return {_mm_shuffle_epi8(a.raw, order.raw)};
}

// The lanes without every fourth, moved together; zeros behind them.
template <class T>
OKPCV_INLINE Vec<T> dropFourthLanes(Vec<T> a) {
    static constexpr auto kept = detail::shuffleFrom(0, [](int i) {
        constexpr int e = sizeof(T);
        return i < 12 ? (i / e / 3 * 4 + i / e % 3) * e + i % e : detail::kNowhere;
    });
    return bitCast<T>(Vec<int32_t>{detail::shuffled(bitCast<int32_t>(a).raw, kept)});
}

// Splits interleaved triples: with p the sequence in0, in1, in2, channel c is p[c], p[c + 3], p[c + 6], ...
template <class T>
OKPCV_INLINE Channels3<T> deinterleave3(Vec<T> in0, Vec<T> in1, Vec<T> in2) {
    const __m128i x = bitCast<int32_t>(in0).raw;
    const __m128i y = bitCast<int32_t>(in1).raw;
    const __m128i z = bitCast<int32_t>(in2).raw;
    const auto channel = [&](auto source) {
        return bitCast<T>(Vec<int32_t>{detail::gather3(x, y, z, source)});
    };
    return {channel(detail::TripleSource<T, 0>{}), channel(detail::TripleSource<T, 1>{}),
            channel(detail::TripleSource<T, 2>{})};
}
// One channel of interleaved triples, chosen at run time.
template <class T>
struct ChannelOf3 {
    Vec<uint8_t> from0, from1, from2;
};
// `channel` counts from 0.
template <class T>
OKPCV_INLINE ChannelOf3<T> channelOf3(int channel) {
    static constexpr auto shuffles = detail::channelShuffles<T>();
    const auto at = [channel](int input) {
        return load(reinterpret_cast<const uint8_t*>(shuffles.at[channel][input].at));
    };
    return {at(0), at(1), at(2)};
}
// deinterleave3(in0, in1, in2).c<channel>.
template <class T>
OKPCV_INLINE Vec<T> pick(const ChannelOf3<T>& channel, Vec<T> in0, Vec<T> in1, Vec<T> in2) {
    const auto from = [](Vec<T> in, Vec<uint8_t> shuffle) {
        return Vec<uint8_t>{_mm_shuffle_epi8(bitCast<uint8_t>(in).raw, shuffle.raw)};
    };
    return bitCast<T>(from(in0, channel.from0) | from(in1, channel.from1) | from(in2, channel.from2));
}
// The inverse of deinterleave3.
template <class T>
OKPCV_INLINE Channels3<T> interleave3(Vec<T> c0, Vec<T> c1, Vec<T> c2) {
    const __m128i x = bitCast<int32_t>(c0).raw;
    const __m128i y = bitCast<int32_t>(c1).raw;
    const __m128i z = bitCast<int32_t>(c2).raw;
    const auto output = [&](auto source) {
        return bitCast<T>(Vec<int32_t>{detail::gather3(x, y, z, source)});
    };
    return {output(detail::ChannelSource<T, 0>{}), output(detail::ChannelSource<T, 1>{}),
            output(detail::ChannelSource<T, 2>{})};
}

// Lane i becomes the sum of the lanes 0 to i of four lanes: neighbours are added first, then pairs, so that
// lane 3 is (a0 + a1) + (a2 + a3).
OKPCV_INLINE Vec<float> prefixSums(Vec<float> a) {
    static_assert(Vec<float>::lanes == 4);
    Vec<float> pairs = shiftLanesUp<1>(a);
    accumulate(pairs, a);
    Vec<float> sums = shiftLanesUp<2>(pairs);
    accumulate(sums, pairs);
    return sums;
}

// Lane i becomes the sum of the bytes i to i + 3.
OKPCV_INLINE Vec<int32_t> sumsOfFour(Vec<uint8_t> a) {
    const __m128i fours =
        _mm_shuffle_epi8(a.raw, _mm_setr_epi8(0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, 5, 3, 4, 5, 6));
    return {_mm_madd_epi16(_mm_maddubs_epi16(fours, _mm_set1_epi8(1)), _mm_set1_epi16(1))};
}

namespace detail {
// In lane i the bytes i and i + 2, and i + 1 and i + 3, as 16-bit numbers.
struct Fours {
    __m128i even, odd;
};
OKPCV_INLINE Fours foursOf(Vec<uint8_t> a) {
    static constexpr auto even = shuffleFrom(0, [](int i) { return i % 2 == 0 ? i / 4 + i % 4 : kNowhere; });
    static constexpr auto odd =
        shuffleFrom(0, [](int i) { return i % 2 == 0 ? i / 4 + i % 4 + 1 : kNowhere; });
    return {shuffled(a.raw, even), shuffled(a.raw, odd)};
}
}  // namespace detail

// The same, by what the sums of squares below begin with: in fewer operations where both are made.
OKPCV_INLINE Vec<int32_t> sumsOfFourBesideSquares(Vec<uint8_t> a) {
    const detail::Fours fours = detail::foursOf(a);
    return {_mm_madd_epi16(_mm_add_epi16(fours.even, fours.odd), _mm_set1_epi16(1))};
}
// The same of the bytes' squares.
OKPCV_INLINE Vec<int32_t> squareSumsOfFour(Vec<uint8_t> a) {
    const detail::Fours fours = detail::foursOf(a);
    return {_mm_add_epi32(_mm_madd_epi16(fours.even, fours.even), _mm_madd_epi16(fours.odd, fours.odd))};
}

}  // namespace okpcv
