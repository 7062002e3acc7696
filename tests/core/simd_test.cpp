// Vector operations against their scalar meaning, lane by lane, over special values.
#include "core/simd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "support/first_nan.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace okpcv::test {
namespace {

template <class T>
using Lanes = std::array<T, static_cast<size_t>(Vec<T>::lanes)>;

template <class T>
Lanes<T> lanesOf(Vec<T> v) {
    return std::bit_cast<Lanes<T>>(v);
}
template <class T>
Vec<T> vectorOf(const Lanes<T>& lanes) {
    return std::bit_cast<Vec<T>>(lanes);
}
template <class T>
bool sameBit(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

template <class T>
struct SimdTest : testing::Test {
    static constexpr int kRounds = 200;
    Random random{sizeof(T) + (std::is_floating_point_v<T> ? 100 : 0)};

    Lanes<T> draw() {
        Lanes<T> lanes;
        for (T& lane : lanes) lane = random.template special<T>();
        return lanes;
    }

    // operation(a, b) has in every lane what expected(a, b) gives for that lane.
    template <class Operation, class Expected>
    void expectLanes(Operation operation, Expected expected) {
        for (int round = 0; round < kRounds; ++round) {
            const Lanes<T> a = draw();
            const Lanes<T> b = draw();
            const Lanes<T> actual = lanesOf(operation(vectorOf(a), vectorOf(b)));
            for (size_t i = 0; i < a.size(); ++i) {
                const T want = expected(a[i], b[i]);
                EXPECT_TRUE(sameBit(actual[i], want))
                    << +a[i] << ", " << +b[i] << ": " << +actual[i] << " not " << +want;
            }
        }
    }
};

template <class T>
T allOnes() {
    T value;
    std::memset(&value, 0xFF, sizeof value);
    return value;
}

// The wrapping result of an integer operation evaluated without overflow.
template <class T, class Wide>
T wrap(Wide wide) {
    return static_cast<T>(wide);
}

using AllTypes =
    testing::Types<uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t, uint64_t, int64_t, float, double>;
template <class T>
struct SimdAll : SimdTest<T> {};
TYPED_TEST_SUITE(SimdAll, AllTypes);

TYPED_TEST(SimdAll, ComparesAndSelects) {
    using T = TypeParam;
    const auto truth = [](bool b) { return b ? allOnes<T>() : T{}; };
    this->expectLanes([](auto a, auto b) { return equal(a, b); }, [&](T a, T b) { return truth(a == b); });
    this->expectLanes([](auto a, auto b) { return select(equal(a, b), a, b); },
                      [](T a, T b) { return a == b ? a : b; });
    if constexpr (!std::is_same_v<T, uint64_t>) {
        this->expectLanes([](auto a, auto b) { return greater(a, b); },
                          [&](T a, T b) { return truth(a > b); });
        this->expectLanes([](auto a, auto b) { return less(a, b); }, [&](T a, T b) { return truth(a < b); });
        this->expectLanes([](auto a, auto b) { return greaterEqual(a, b); },
                          [&](T a, T b) { return truth(a >= b); });
        this->expectLanes([](auto a, auto b) { return lessEqual(a, b); },
                          [&](T a, T b) { return truth(a <= b); });
    }
}

TYPED_TEST(SimdAll, AddsSubtractsAndMultiplies) {
    using T = TypeParam;
    if constexpr (std::is_floating_point_v<T>) {
        // Where two doubles are NaN, it is open which of them comes through.
        const auto second = [](auto b) {
            return std::is_same_v<T, float> ? b : select(equal(b, b), b, zeros<T>());
        };
        const auto ofSecond = [](T b) { return std::is_same_v<T, float> || b == b ? b : T(0); };
        this->expectLanes([&](auto a, auto b) { return a + second(b); },
                          [&](T a, T b) { return test::sum(a, ofSecond(b)); });
        this->expectLanes([&](auto a, auto b) { return a - second(b); },
                          [&](T a, T b) { return test::difference(a, ofSecond(b)); });
        this->expectLanes([&](auto a, auto b) { return a * second(b); },
                          [&](T a, T b) { return test::product(a, ofSecond(b)); });
        this->expectLanes([&](auto a, auto b) { return a / second(b); },
                          [&](T a, T b) { return test::quotient(a, ofSecond(b)); });
    } else {
        using U = std::make_unsigned_t<T>;
        this->expectLanes([](auto a, auto b) { return a + b; },
                          [](T a, T b) { return wrap<T>(U(a) + U(b)); });
        this->expectLanes([](auto a, auto b) { return a - b; },
                          [](T a, T b) { return wrap<T>(U(a) - U(b)); });
        if constexpr (sizeof(T) == 2 || sizeof(T) == 4) {
            this->expectLanes([](auto a, auto b) { return a * b; },
                              [](T a, T b) { return wrap<T>(uint64_t(U(a)) * uint64_t(U(b))); });
        }
    }
}

TYPED_TEST(SimdAll, CombinesBits) {
    using T = TypeParam;
    using Bits = std::array<uint8_t, sizeof(T)>;
    const auto bitwise = [](T a, T b, auto op) {
        auto x = std::bit_cast<Bits>(a);
        const auto y = std::bit_cast<Bits>(b);
        for (size_t i = 0; i < x.size(); ++i) x[i] = static_cast<uint8_t>(op(x[i], y[i]));
        return std::bit_cast<T>(x);
    };
    this->expectLanes([](auto a, auto b) { return a & b; },
                      [&](T a, T b) { return bitwise(a, b, std::bit_and<>()); });
    this->expectLanes([](auto a, auto b) { return a | b; },
                      [&](T a, T b) { return bitwise(a, b, std::bit_or<>()); });
    this->expectLanes([](auto a, auto b) { return a ^ b; },
                      [&](T a, T b) { return bitwise(a, b, std::bit_xor<>()); });
    this->expectLanes([](auto a, auto b) { return andNot(a, b); },
                      [&](T a, T b) { return bitwise(a, b, [](int x, int y) { return x & ~y; }); });
    this->expectLanes([](auto a, auto) { return ~a; },
                      [&](T a, T) { return bitwise(a, a, [](int x, int) { return ~x; }); });
}

TYPED_TEST(SimdAll, LoadsAndStoresParts) {
    using T = TypeParam;
    constexpr int lanes = Vec<T>::lanes;
    for (int count = 1; count <= lanes; ++count) {
        for (const auto at : {GuardedMemory::At::End, GuardedMemory::At::Start}) {
            GuardedImage<T> from(count, 1, {.at = at});
            GuardedImage<T> to(count, 1, {.at = at});
            from.fill([&](int, int, int) { return this->random.template value<T>(); });
            const Vec<T> loaded = load(from.data(), Part{count});
            store(to.data(), loaded, Part{count});
            EXPECT_EQ(to.pixels(), from.pixels()) << count;
            const Lanes<T> all = lanesOf(loaded);
            for (int i = count; i < lanes; ++i) EXPECT_EQ(all[static_cast<size_t>(i)], T{}) << count;
        }
    }
    constexpr int half = lanes / 2;
    GuardedImage<T> first(half, 1);
    first.fill([&](int, int, int) { return this->random.template value<T>(); });
    for (int count = 1; count <= lanes; ++count) {
        const Lanes<T> loaded = lanesOf(loadFirst<half>(first.data(), Part{count}));
        for (int i = 0; i < lanes; ++i) {
            EXPECT_EQ(loaded[static_cast<size_t>(i)], i < std::min(count, half) ? first.at(i, 0) : T{});
        }
    }
    EXPECT_EQ(lanesOf(loadFirst<half>(first.data(), Whole{})),
              lanesOf(loadFirst<half>(first.data(), Part{half})));
    // Counts outside 1 to lanes, as they arise where several vectors share one extent.
    EXPECT_EQ(lanesOf(load(static_cast<const T*>(nullptr), Part{-3})), Lanes<T>{});
    store(static_cast<T*>(nullptr), zeros<T>(), Part{0});
    GuardedImage<T> whole(lanes, 1);
    store(whole.data(), laneNumbers<T>(), Part{lanes + 2});
    EXPECT_EQ(lanesOf(load(whole.data(), Part{lanes + 2})), lanesOf(laneNumbers<T>()));
}

TYPED_TEST(SimdAll, MovesLanes) {
    using T = TypeParam;
    constexpr size_t n = static_cast<size_t>(Vec<T>::lanes);
    const Lanes<T> a = this->draw();
    const Lanes<T> b = this->draw();
    const Lanes<T> up = lanesOf(shiftLanesUp<1>(vectorOf(a)));
    const Lanes<T> down = lanesOf(shiftLanesDown<1>(vectorOf(a)));
    const Lanes<T> slid = lanesOf(slide<1>(vectorOf(a), vectorOf(b)));
    const Lanes<T> low = lanesOf(interleaveLow(vectorOf(a), vectorOf(b)));
    const Lanes<T> high = lanesOf(interleaveHigh(vectorOf(a), vectorOf(b)));
    for (size_t i = 0; i < n; ++i) {
        EXPECT_TRUE(sameBit(up[i], i == 0 ? T{} : a[i - 1]));
        EXPECT_TRUE(sameBit(down[i], i + 1 == n ? T{} : a[i + 1]));
        EXPECT_TRUE(sameBit(slid[i], i + 1 == n ? b[0] : a[i + 1]));
        EXPECT_TRUE(sameBit(low[i], (i % 2 == 0 ? a : b)[i / 2]));
        EXPECT_TRUE(sameBit(high[i], (i % 2 == 0 ? a : b)[n / 2 + i / 2]));
    }
    if constexpr (sizeof(T) == 4) {
        const Lanes<T> up1 = lanesOf(repeatLanesUp<1>(vectorOf(a)));
        const Lanes<T> up2 = lanesOf(repeatLanesUp<2>(vectorOf(a)));
        const Lanes<T> down1 = lanesOf(repeatLanesDown<1>(vectorOf(a)));
        const Lanes<T> down2 = lanesOf(repeatLanesDown<2>(vectorOf(a)));
        for (size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(sameBit(up1[i], a[i < 1 ? i : i - 1]));
            EXPECT_TRUE(sameBit(up2[i], a[i < 2 ? i : i - 2]));
            EXPECT_TRUE(sameBit(down1[i], a[i + 1 < n ? i + 1 : i]));
            EXPECT_TRUE(sameBit(down2[i], a[i + 2 < n ? i + 2 : i]));
        }
    }
    const Lanes<T> halves = lanesOf(loadHalves(a.data(), b.data() + 1));
    for (size_t i = 0; i < n; ++i) EXPECT_TRUE(sameBit(halves[i], i < n / 2 ? a[i] : b[1 + i - n / 2]));
    if constexpr (sizeof(T) == 4) {
        const Lanes<T> even = lanesOf(evenLanes(vectorOf(a), vectorOf(b)));
        const Lanes<T> odd = lanesOf(oddLanes(vectorOf(a), vectorOf(b)));
        for (size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(sameBit(even[i], (2 * i < n ? a : b)[2 * i % n]));
            EXPECT_TRUE(sameBit(odd[i], (2 * i < n ? a : b)[2 * i % n + 1]));
        }
    }
    if constexpr (sizeof(T) <= 4) {
        const Lanes<T> dropped = lanesOf(dropFourthLanes(vectorOf(a)));
        for (size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(sameBit(dropped[i], i < n / 4 * 3 ? a[i / 3 * 4 + i % 3] : T{}));
        }
    }
    if constexpr (sizeof(T) == 2) {
        const Lanes<T> interleaved = lanesOf(interleaveHalves(vectorOf(a)));
        for (size_t i = 0; i < n; ++i) EXPECT_TRUE(sameBit(interleaved[i], a[i / 2 + (i % 2) * n / 2]));
    }
    if constexpr (std::is_same_v<T, uint8_t>) {
        const auto order = [](int i) { return i % 5 == 3 ? -1 : (7 * i + 2) % Vec<uint8_t>::lanes; };
        const Lanes<T> moved = lanesOf(permuted(vectorOf(a), laneOrder(order)));
        for (size_t i = 0; i < n; ++i) {
            const int from = order(static_cast<int>(i));
            EXPECT_EQ(moved[i], from < 0 ? 0 : a[static_cast<size_t>(from)]);
        }
    }
    EXPECT_TRUE(sameBit(lanesOf(inRegister(vectorOf(a))).back(), a.back()));
    alignas(kVectorBytes) T aligned[Vec<T>::lanes];
    store(aligned, vectorOf(a));
    const Lanes<T> loaded = lanesOf(loadAligned(aligned));
    for (size_t i = 0; i < n; ++i) EXPECT_TRUE(sameBit(loaded[i], a[i]));
    const Lanes<T> ofFirst = lanesOf(broadcastLane<0>(vectorOf(a)));
    const Lanes<T> ofLast = lanesOf(broadcastLast(vectorOf(a)));
    for (size_t i = 0; i < n; ++i) {
        EXPECT_TRUE(sameBit(ofFirst[i], a.front()));
        EXPECT_TRUE(sameBit(ofLast[i], a.back()));
    }
    EXPECT_TRUE(sameBit(firstLane(vectorOf(a)), a.front()));
    EXPECT_TRUE(sameBit(lastLane(vectorOf(a)), a.back()));
}

TYPED_TEST(SimdAll, SplitsAndJoinsChannels) {
    using T = TypeParam;
    constexpr size_t n = static_cast<size_t>(Vec<T>::lanes);
    std::array<T, 3 * n> triples;
    for (T& value : triples) value = this->random.template value<T>();
    const auto split =
        deinterleave3(load(triples.data()), load(triples.data() + n), load(triples.data() + 2 * n));
    const std::array channels{lanesOf(split.c0), lanesOf(split.c1), lanesOf(split.c2)};
    for (size_t i = 0; i < triples.size(); ++i) EXPECT_EQ(channels[i % 3][i / 3], triples[i]);
    const auto joined = interleave3(split.c0, split.c1, split.c2);
    std::array<T, 3 * n> again;
    store(again.data(), joined.c0);
    store(again.data() + n, joined.c1);
    store(again.data() + 2 * n, joined.c2);
    EXPECT_EQ(again, triples);
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(lanesOf(pick(channelOf3<T>(c), load(triples.data()), load(triples.data() + n),
                               load(triples.data() + 2 * n))),
                  channels[static_cast<size_t>(c)]);
    }
}

TYPED_TEST(SimdAll, ReportsLanes) {
    using T = TypeParam;
    for (int round = 0; round < this->kRounds; ++round) {
        Lanes<T> mask{};
        uint32_t bits = 0;
        for (size_t i = 0; i < mask.size(); ++i) {
            if (!this->random.chance(0.2)) continue;
            mask[i] = allOnes<T>();
            bits |= 1U << i;
        }
        EXPECT_EQ(laneBits(vectorOf(mask)), bits);
        const Lanes<T> again = lanesOf(laneMask<T>(bits));
        EXPECT_EQ(std::memcmp(&again, &mask, sizeof mask), 0);
        EXPECT_EQ(anyBit(vectorOf(mask)), bits != 0);
    }
}

using MinMaxTypes = testing::Types<uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t, float, double>;
template <class T>
struct SimdMinMax : SimdTest<T> {};
TYPED_TEST_SUITE(SimdMinMax, MinMaxTypes);

TYPED_TEST(SimdMinMax, TakesTheSecondOperandUnlessTheFirstWins) {
    using T = TypeParam;
    this->expectLanes([](auto a, auto b) { return min(a, b); }, [](T a, T b) { return a < b ? a : b; });
    this->expectLanes([](auto a, auto b) { return max(a, b); }, [](T a, T b) { return a > b ? a : b; });
    for (int round = 0; round < this->kRounds; ++round) {
        Lanes<T> a;
        for (T& lane : a) lane = this->random.template value<T>();
        EXPECT_EQ(minLane(vectorOf(a)), *std::min_element(a.begin(), a.end()));
        EXPECT_EQ(maxLane(vectorOf(a)), *std::max_element(a.begin(), a.end()));
    }
}

using SaturatingTypes = testing::Types<uint8_t, int8_t, uint16_t, int16_t>;
template <class T>
struct SimdSaturating : SimdTest<T> {};
TYPED_TEST_SUITE(SimdSaturating, SaturatingTypes);

TYPED_TEST(SimdSaturating, ClampsToTheType) {
    using T = TypeParam;
    const auto clamp = [](int v) {
        return static_cast<T>(
            std::clamp<int>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    };
    this->expectLanes([](auto a, auto b) { return addSaturated(a, b); },
                      [&](T a, T b) { return clamp(a + b); });
    this->expectLanes([](auto a, auto b) { return subSaturated(a, b); },
                      [&](T a, T b) { return clamp(a - b); });
    if constexpr (std::is_unsigned_v<T>) {
        this->expectLanes([](auto a, auto b) { return absDiff(a, b); },
                          [](T a, T b) { return T(a > b ? a - b : b - a); });
    } else {
        this->expectLanes([](auto a, auto) { return abs(a); },
                          [](T a, T) { return static_cast<T>(std::abs(int{a})); });
    }
    if constexpr (sizeof(T) == 2) {
        this->expectLanes([](auto a, auto b) { return mulHigh(a, b); },
                          [](T a, T b) { return static_cast<T>((int64_t{a} * b) >> 16); });
        if constexpr (std::is_signed_v<T>) {
            this->expectLanes([](auto a, auto b) { return mulFraction(a, b); },
                              [](T a, T b) { return static_cast<T>((int64_t{a} * b + 16384) >> 15); });
        }
        this->expectLanes([](auto a, auto) { return shiftLeft(a, 3); },
                          [](T a, T) { return static_cast<T>(a << 3); });
        this->expectLanes([](auto a, auto) { return shiftRight(a, 3); },
                          [](T a, T) { return static_cast<T>(a >> 3); });
    }
}

TEST(Simd, AbsoluteValuesAndRootsOfFloats) {
    const Lanes<float> a{-0.0F, -2.25F, 9.0F, std::numeric_limits<float>::infinity()};
    EXPECT_EQ(lanesOf(abs(vectorOf(a))), (Lanes<float>{0.0F, 2.25F, 9.0F, a[3]}));
    EXPECT_EQ(lanesOf(sqrt(abs(vectorOf(a)))), (Lanes<float>{0.0F, 1.5F, 3.0F, a[3]}));
    EXPECT_FALSE(std::signbit(lanesOf(abs(vectorOf(a)))[0]));
}

template <class To, class From>
void expectWidening() {
    Random random(7);
    constexpr size_t n = static_cast<size_t>(Vec<To>::lanes);
    for (int count = 1; count <= Vec<To>::lanes; ++count) {
        GuardedImage<From> image(count, 1);
        image.fill([&](int, int, int) { return random.special<From>(); });
        const Lanes<To> part = lanesOf(loadAs<To>(image.data(), Part{count}));
        for (int i = 0; i < Vec<To>::lanes; ++i) {
            EXPECT_EQ(part[static_cast<size_t>(i)], i < count ? static_cast<To>(image.at(i, 0)) : To{});
        }
        if (count == Vec<To>::lanes) {
            EXPECT_EQ(lanesOf(loadAs<To>(image.data())), part);
        }
    }
    if constexpr (sizeof(To) == 2 * sizeof(From)) {
        Lanes<From> from;
        for (From& lane : from) lane = random.value<From>();
        const Lanes<To> low = lanesOf(widenLow<To>(vectorOf(from)));
        const Lanes<To> high = lanesOf(widenHigh<To>(vectorOf(from)));
        for (size_t i = 0; i < n; ++i) {
            EXPECT_EQ(low[i], static_cast<To>(from[i]));
            EXPECT_EQ(high[i], static_cast<To>(from[n + i]));
        }
    }
}

TEST(Simd, WidensExactly) {
    expectWidening<uint16_t, uint8_t>();
    expectWidening<int16_t, uint8_t>();
    expectWidening<int16_t, int8_t>();
    expectWidening<int32_t, uint8_t>();
    expectWidening<int32_t, uint16_t>();
    expectWidening<int32_t, int16_t>();
    expectWidening<uint32_t, uint16_t>();
    expectWidening<int64_t, int32_t>();
    expectWidening<uint64_t, uint32_t>();
    expectWidening<float, uint8_t>();
    expectWidening<float, uint16_t>();
    expectWidening<float, int16_t>();
    expectWidening<double, int32_t>();
}

TEST(Simd, NarrowsWithSaturation) {
    const Lanes<int32_t> a{-70000, -1, 70000, 40000};
    const Lanes<int32_t> b{0, 32767, 65535, -32769};
    EXPECT_EQ(lanesOf(narrowSaturated<int16_t>(vectorOf(a), vectorOf(b))),
              (Lanes<int16_t>{-32768, -1, 32767, 32767, 0, 32767, 32767, -32768}));
    EXPECT_EQ(lanesOf(narrowSaturated<uint16_t>(vectorOf(a), vectorOf(b))),
              (Lanes<uint16_t>{0, 0, 65535, 40000, 0, 32767, 65535, 0}));
    const Lanes<int16_t> c{-200, -128, 0, 127, 128, 255, 256, 32767};
    EXPECT_EQ(lanesOf(narrowSaturated<uint8_t>(vectorOf(c), vectorOf(c))),
              (Lanes<uint8_t>{0, 0, 0, 127, 128, 255, 255, 255, 0, 0, 0, 127, 128, 255, 255, 255}));
    EXPECT_EQ(lanesOf(narrowSaturated<int8_t>(vectorOf(c), vectorOf(c)))[0], -128);
}

TEST(Simd, ConvertsFloats) {
    Lanes<float> a{2.5F, -3.5F, 1e10F, std::numeric_limits<float>::quiet_NaN()};
    // GCC 12 folds these conversions of constants out of range to other values than the processor gives.
    asm volatile("" : "+m"(a));
    EXPECT_EQ(lanesOf(truncateToInt(vectorOf(a))), (Lanes<int32_t>{2, -3, INT32_MIN, INT32_MIN}));
    EXPECT_EQ(lanesOf(roundToInt(vectorOf(a))), (Lanes<int32_t>{2, -4, INT32_MIN, INT32_MIN}));
    EXPECT_EQ(lanesOf(toFloat(vectorOf(Lanes<int32_t>{-1, 0, 1 << 24, 7}))),
              (Lanes<float>{-1, 0, 1 << 24, 7}));
    EXPECT_EQ(lanesOf(narrow(vectorOf(Lanes<double>{0.1, 2}), vectorOf(Lanes<double>{-3, 1e300}))),
              (Lanes<float>{0.1F, 2, -3, std::numeric_limits<float>::infinity()}));
    EXPECT_EQ(lanesOf(widenHigh<double>(vectorOf(Lanes<float>{1, 2, 3, 4.5F}))), (Lanes<double>{3, 4.5}));
    Lanes<double> wide{-1e10, -7.9};
    asm volatile("" : "+m"(wide));
    EXPECT_EQ(lanesOf(narrowTruncated(vectorOf(Lanes<double>{2147483647.9, 0.99}), vectorOf(wide))),
              (Lanes<int32_t>{INT32_MAX, 0, INT32_MIN, -7}));
}

TEST(Simd, ReversesBytes) {
    const Lanes<uint64_t> reversed =
        lanesOf(reverseBytes(vectorOf(Lanes<uint64_t>{0x0102030405060708U, 0xFF00000000000080U})));
    EXPECT_EQ(reversed[0], 0x0807060504030201U);
    EXPECT_EQ(reversed[1], 0x80000000000000FFU);
}

TEST(Simd, PacksChosenLanes) {
    const Lanes<int32_t> a{11, 22, 33, 44};
    for (uint32_t set = 0; set < 16; ++set) {
        const Lanes<int32_t> packed = lanesOf(packLanes(vectorOf(a), set));
        size_t place = 0;
        for (size_t i = 0; i < 4; ++i) {
            if ((set >> i & 1) == 0) continue;
            EXPECT_EQ(packed[place++], a[i]) << set;
        }
    }
}

TEST(Simd, GathersAndFindsPrefixMaxima) {
    const float table[] = {-3, -2, -1, 0.5F, 1, 2};
    EXPECT_EQ(lanesOf(gather(table + 3, vectorOf(Lanes<int32_t>{2, -3, 0, -1}))),
              (Lanes<float>{2, -3, 0.5F, -1}));
    EXPECT_EQ(lanesOf(prefixMax(vectorOf(Lanes<int32_t>{-5, 7, 3, 9}))), (Lanes<int32_t>{0, 7, 7, 9}));
    EXPECT_EQ(lanesOf(prefixMax(vectorOf(Lanes<int16_t>{1, 0, 4, 2, 3, -1, 9, 8}))),
              (Lanes<int16_t>{1, 1, 4, 4, 4, 4, 9, 9}));
}

TEST(Simd, AddsProductsAndDistances) {
    const Lanes<int16_t> a{-32768, -32768, 1, 2, 3, 4, 30000, 30000};
    const Lanes<int16_t> b{-32768, 32767, 5, 6, 7, 8, 30000, -30000};
    EXPECT_EQ(lanesOf(mulAddPairs(vectorOf(a), vectorOf(b))), (Lanes<int32_t>{32768, 17, 53, 0}));
    Lanes<uint8_t> bytes{};
    Lanes<int8_t> weights{};
    bytes[0] = bytes[1] = 255;
    weights[0] = weights[1] = 127;  // 64770 saturates
    bytes[2] = 200;
    weights[2] = -128;
    const Lanes<int16_t> sums = lanesOf(mulAddPairs(vectorOf(bytes), vectorOf(weights)));
    EXPECT_EQ(sums[0], 32767);
    EXPECT_EQ(sums[1], -25600);
    Lanes<uint8_t> zero{};
    bytes[15] = 9;
    EXPECT_EQ(lanesOf(sumAbsDiff(vectorOf(zero), vectorOf(bytes))), (Lanes<uint64_t>{710, 9}));
}

TEST(Simd, FormsPrefixSums) {
    // The order shows: (1 - 1e8) + (1e8 + 1), not ((1 + 1e8) - 1e8) + 1.
    EXPECT_EQ(lanesOf(prefixSums(vectorOf(Lanes<float>{1, 1e8F, -1e8F, 1}))),
              (Lanes<float>{1, 1e8F, 1, (1 - 1e8F) + (1e8F + 1)}));
}

TEST(Simd, AddsFourBytesOrTheirSquares) {
    Random random(9);
    for (int round = 0; round < 50; ++round) {
        Lanes<uint8_t> bytes;
        for (uint8_t& byte : bytes) byte = random.special<uint8_t>();
        const auto sums = lanesOf(sumsOfFour(vectorOf(bytes)));
        const auto beside = lanesOf(sumsOfFourBesideSquares(vectorOf(bytes)));
        const auto squares = lanesOf(squareSumsOfFour(vectorOf(bytes)));
        for (size_t i = 0; i < sums.size(); ++i) {
            int sum = 0;
            int square = 0;
            for (size_t j = i; j < i + 4; ++j) {
                sum += bytes[j];
                square += bytes[j] * bytes[j];
            }
            EXPECT_EQ(sums[i], sum);
            EXPECT_EQ(beside[i], sum);
            EXPECT_EQ(squares[i], square);
        }
    }
}

}  // namespace
}  // namespace okpcv::test
