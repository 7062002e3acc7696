// What the tests of the statistics share: one argument set for all forms, and the faults that its images can
// have.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/guarded_image.h"
#include "support/random.h"
#include "support/status_order.h"

namespace okpcv::test {

// `b` stands for the second source; forms leave out what they do not take.
template <class T>
struct StatsArguments {
    const T* a;
    int32_t aStep;
    const T* b;
    int32_t bStep;
    const uint8_t* mask;
    int32_t maskStep;
    RoiSize roi;
    int32_t coi;
};

// Two sources and a mask of the same size between guard pages.
template <class T>
struct StatsImages {
    GuardedImage<T> a, b;
    GuardedImage<uint8_t> mask;
    int channels;

    StatsImages(int width, int height, int channelCount, int padding = 0,
                GuardedMemory::At at = GuardedMemory::At::End)
        : a(width, height, {.channels = channelCount, .padding = padding, .at = at}),
          b(width, height, {.channels = channelCount, .padding = 2 * padding, .at = at}),
          mask(width, height, {.padding = padding / 3, .at = at}),
          channels(channelCount) {}

    StatsArguments<T> arguments(int32_t coi = 1) const {
        return {a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), a.roi(), coi};
    }

    // Calls visit(a, b, x, y) for every selected pixel in row-major order.
    template <class Visit>
    void forSelected(int32_t coi, Visit visit) const {
        const int c = channels == 3 ? coi - 1 : 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                if (mask.at(x, y) != 0) visit(a.at(x, y, c), b.at(x, y, c), x, y);
            }
        }
    }
};

// Values that any order of additions sums exactly.
template <class T>
T exactValue(Random& random) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(random.integer(-40, 40));
    } else {
        return random.special<T>();
    }
}

// Every channel's forms over widths from 1 to several vectors, at both ends of memory, with and without
// padding, under masks of different density: visit(images, coi).
template <class T, class Visit>
void forVariedImages(int channels, T (*value)(Random&), Visit visit) {
    Random random(31);
    for (int width = 1; width <= 150; width += width < 40 ? 1 : 11) {
        const auto at = width % 2 == 0 ? GuardedMemory::At::End : GuardedMemory::At::Start;
        StatsImages<T> images(width, 1 + width % 4, channels, 12 * (width % 3), at);
        images.a.fill([&](int, int, int) { return value(random); });
        images.b.fill([&](int, int, int) { return value(random); });
        const double density = (width % 5) / 4.0;
        images.mask.fill([&](int, int, int) { return random.maskByte(density); });
        visit(images, 1 + width % 3);
    }
}

// The faults in the order in which the checks find them. `Order` says how steps are tested.
enum class Order { SourceThenMask, AllShortThenMultiples };

template <class T>
std::vector<Fault<StatsArguments<T>>> statsFaults(int width, int channels, bool second, bool masked,
                                                  Order order) {
    using A = StatsArguments<T>;
    const int row = width * channels * static_cast<int>(sizeof(T));
    std::vector<Fault<A>> faults{{"null source", okpStatusNullPointer, [](A& v) { v.a = nullptr; }}};
    if (second) faults.push_back({"null second", okpStatusNullPointer, [](A& v) { v.b = nullptr; }});
    if (masked) faults.push_back({"null mask", okpStatusNullPointer, [](A& v) { v.mask = nullptr; }});
    faults.push_back({"no width", okpStatusBadSize, [](A& v) { v.roi.width = 0; }});
    faults.push_back({"negative height", okpStatusBadSize, [](A& v) { v.roi.height = -1; }});
    // A row of more bytes than any step has.
    faults.push_back({"huge width", okpStatusBadStep, [](A& v) {
                          v.roi.width = INT32_MAX;
                          v.aStep = v.bStep = v.maskStep = INT32_MAX - INT32_MAX % 4;
                      }});
    const Fault<A> shortA{"short step", okpStatusBadStep, [=](A& v) { v.aStep = row - 1; }};
    const Fault<A> negativeA{"negative step", okpStatusBadStep, [=](A& v) { v.aStep = -row; }};
    const Fault<A> oddA{"odd step", okpStatusStepNotMultiple, [=](A& v) { v.aStep = row + 1; }};
    const Fault<A> shortMask{"short mask", okpStatusBadStep, [=](A& v) { v.maskStep = width - 1; }};
    faults.push_back(negativeA);
    faults.push_back(shortA);
    if (second) faults.push_back({"short second", okpStatusBadStep, [=](A& v) { v.bStep = row - 1; }});
    if (masked && order == Order::AllShortThenMultiples) faults.push_back(shortMask);
    if (sizeof(T) > 1) {
        faults.push_back(oddA);
        if (second)
            faults.push_back({"odd second", okpStatusStepNotMultiple, [=](A& v) { v.bStep = row + 1; }});
    }
    if (masked && order == Order::SourceThenMask) faults.push_back(shortMask);
    if (channels == 3) {
        for (const int32_t coi : {0, 4, -1}) {
            faults.push_back({"channel", okpStatusBadChannelOfInterest, [=](A& v) { v.coi = coi; }});
        }
    }
    return faults;
}

}  // namespace okpcv::test
