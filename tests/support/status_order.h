// The order of argument checks. A call is described by its faults in the documented order; each is tried
// alone, and every pair together, which must report the earlier one.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "okpcv.h"

namespace okpcv::test {

// A fault turns the arguments of a valid call into those of a bad one.
template <class Arguments>
struct Fault {
    std::string name;
    okpStatus status;
    std::function<void(Arguments&)> inject;
};

// `call` runs the export with the arguments; nothing may have been written when it fails, which the caller of
// this function checks on the images behind them.
template <class Arguments>
void expectStatusOrder(const Arguments& valid, const std::function<okpStatus(const Arguments&)>& call,
                       const std::vector<Fault<Arguments>>& faults) {
    for (size_t i = 0; i < faults.size(); ++i) {
        Arguments alone = valid;
        faults[i].inject(alone);
        EXPECT_EQ(call(alone), faults[i].status) << faults[i].name;
        for (size_t later = i + 1; later < faults.size(); ++later) {
            // The later fault goes in first, so that a shared argument ends up as the earlier one wants it.
            Arguments both = valid;
            faults[later].inject(both);
            faults[i].inject(both);
            EXPECT_EQ(call(both), faults[i].status) << faults[i].name << " before " << faults[later].name;
        }
    }
}

// Calls with sizes and steps far outside what memory holds; each must be refused, and none may overflow on
// the way (which the build with the undefined-behaviour sanitizer sees). call(roi, step) takes the step for
// all images.
template <class Call>
void expectRefusesAbsurdSizes(Call call) {
    const int32_t sizes[] = {INT32_MIN,     INT32_MIN + 1,     -1,       0, INT32_MAX / 12,
                             INT32_MAX / 3, INT32_MAX / 2 + 1, INT32_MAX};
    const int32_t steps[] = {INT32_MIN, -4, -1, 0, 4, 1024};
    for (const int32_t width : sizes) {
        for (const int32_t height : sizes) {
            for (const int32_t step : steps) {
                EXPECT_LT(call(RoiSize{width, height}, step), 0)
                    << width << 'x' << height << " step " << step;
            }
        }
    }
}

}  // namespace okpcv::test
