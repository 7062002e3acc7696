// How much stack a call uses.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace okpcv::test {

// Sanitizers and debug builds make frames several times as large.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
inline constexpr bool kFramesAreTypical = false;
#elif defined(__has_feature)
inline constexpr bool kFramesAreTypical =
    !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer);
#else
inline constexpr bool kFramesAreTypical = true;
#endif

namespace detail {

// The bytes that a thread leaves changed on its stack when it does nothing but make the call.
inline int64_t bytesTouched(const std::function<void()>& call) {
    constexpr size_t bytes = 256 * 1024;
    constexpr size_t page = 4096;
    constexpr uint8_t untouched = 0xA5;
    std::vector<uint8_t> memory(bytes + page, untouched);
    uint8_t* const stack = memory.data() + (page - reinterpret_cast<uintptr_t>(memory.data()) % page) % page;
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    EXPECT_EQ(pthread_attr_setstack(&attributes, stack, bytes), 0);
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    EXPECT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&call)), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
    const uint8_t* const top = stack + bytes;
    return top - std::find_if(static_cast<const uint8_t*>(stack), top,
                              [](uint8_t byte) { return byte != untouched; });
}

}  // namespace detail

// Bytes of stack that `call` uses beyond what a thread needs for itself.
inline int64_t stackUse(const std::function<void()>& call) {
    call();  // the first call also binds the functions that it calls
    return detail::bytesTouched(call) - detail::bytesTouched([] {});
}

}  // namespace okpcv::test
