// Fuzzes norms, means, deviations and extrema.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

// What a function reports through pointers.
template <int count>
struct Doubles {
    static auto make(Call& call) {
        if constexpr (count == 1) {
            return std::tuple(call.area<double>());
        } else {
            return std::tuple(call.optionalResult<double>(), call.optionalResult<double>());
        }
    }
};
struct Places {
    static auto make(Call& call) {
        return std::tuple(call.optionalResult<float>(), call.optionalResult<float>(),
                          call.optionalResult<PixelPoint>(), call.optionalResult<PixelPoint>());
    }
};

// Sources, a mask, the size, a channel of interest where there are several, and results.
template <class T, int channels, int sources, bool masked, class Results, class F>
void statistic(F function, Data& data) {
    Call call(data);
    const auto images = [&] {
        const auto src = call.source<T>(channels);
        if constexpr (sources == 2 && masked) {
            const auto second = call.source<T>(channels);
            return std::tuple(src, second, call.source<uint8_t>());
        } else if constexpr (sources == 2) {
            return std::tuple(src, call.source<T>(channels));
        } else if constexpr (masked) {
            return std::tuple(src, call.source<uint8_t>());
        } else {
            return std::tuple(src);
        }
    }();
    const auto channel = [&] {
        if constexpr (channels == 3) {
            return std::tuple(data.oneIn(6) ? data.any<int32_t>() : data.between(1, 3));
        } else {
            return std::tuple();
        }
    }();
    std::apply([&](auto... arguments) { call(function, arguments...); },
               std::tuple_cat(images, std::tuple(call.size()), channel, Results::make(call)));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((statistic<uint16_t, 1, 1, true, Doubles<1>>), okpiMean_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 1, true, Doubles<1>>), okpiMean_16u_C3CMR),
    FUZZ((statistic<float, 1, 1, true, Doubles<1>>), okpiMean_32f_C1MR),
    FUZZ((statistic<float, 3, 1, true, Doubles<1>>), okpiMean_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 1, true, Doubles<1>>), okpiMean_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 1, true, Doubles<1>>), okpiMean_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 1, true, Doubles<2>>), okpiMean_StdDev_16u_C1MR),
    FUZZ((statistic<uint16_t, 1, 1, false, Doubles<2>>), okpiMean_StdDev_16u_C1R),
    FUZZ((statistic<uint16_t, 3, 1, true, Doubles<2>>), okpiMean_StdDev_16u_C3CMR),
    FUZZ((statistic<uint16_t, 3, 1, false, Doubles<2>>), okpiMean_StdDev_16u_C3CR),
    FUZZ((statistic<float, 1, 1, true, Doubles<2>>), okpiMean_StdDev_32f_C1MR),
    FUZZ((statistic<float, 1, 1, false, Doubles<2>>), okpiMean_StdDev_32f_C1R),
    FUZZ((statistic<float, 3, 1, true, Doubles<2>>), okpiMean_StdDev_32f_C3CMR),
    FUZZ((statistic<float, 3, 1, false, Doubles<2>>), okpiMean_StdDev_32f_C3CR),
    FUZZ((statistic<uint8_t, 1, 1, true, Doubles<2>>), okpiMean_StdDev_8u_C1MR),
    FUZZ((statistic<uint8_t, 1, 1, false, Doubles<2>>), okpiMean_StdDev_8u_C1R),
    FUZZ((statistic<uint8_t, 3, 1, true, Doubles<2>>), okpiMean_StdDev_8u_C3CMR),
    FUZZ((statistic<uint8_t, 3, 1, false, Doubles<2>>), okpiMean_StdDev_8u_C3CR),
    FUZZ((statistic<uint16_t, 1, 1, true, Places>), okpiMinMaxIndx_16u_C1MR),
    FUZZ((statistic<uint16_t, 1, 1, false, Places>), okpiMinMaxIndx_16u_C1R),
    FUZZ((statistic<uint16_t, 3, 1, true, Places>), okpiMinMaxIndx_16u_C3CMR),
    FUZZ((statistic<uint16_t, 3, 1, false, Places>), okpiMinMaxIndx_16u_C3CR),
    FUZZ((statistic<float, 1, 1, true, Places>), okpiMinMaxIndx_32f_C1MR),
    FUZZ((statistic<float, 1, 1, false, Places>), okpiMinMaxIndx_32f_C1R),
    FUZZ((statistic<float, 3, 1, true, Places>), okpiMinMaxIndx_32f_C3CMR),
    FUZZ((statistic<float, 3, 1, false, Places>), okpiMinMaxIndx_32f_C3CR),
    FUZZ((statistic<uint8_t, 1, 1, true, Places>), okpiMinMaxIndx_8u_C1MR),
    FUZZ((statistic<uint8_t, 1, 1, false, Places>), okpiMinMaxIndx_8u_C1R),
    FUZZ((statistic<uint8_t, 3, 1, true, Places>), okpiMinMaxIndx_8u_C3CMR),
    FUZZ((statistic<uint8_t, 3, 1, false, Places>), okpiMinMaxIndx_8u_C3CR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormDiff_Inf_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormDiff_Inf_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormDiff_Inf_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormDiff_Inf_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormDiff_Inf_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormDiff_Inf_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormDiff_L1_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormDiff_L1_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormDiff_L1_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormDiff_L1_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormDiff_L1_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormDiff_L1_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormDiff_L2_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormDiff_L2_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormDiff_L2_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormDiff_L2_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormDiff_L2_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormDiff_L2_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormRel_Inf_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormRel_Inf_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormRel_Inf_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormRel_Inf_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormRel_Inf_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormRel_Inf_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormRel_L1_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormRel_L1_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormRel_L1_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormRel_L1_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormRel_L1_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormRel_L1_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 2, true, Doubles<1>>), okpiNormRel_L2_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 2, true, Doubles<1>>), okpiNormRel_L2_16u_C3CMR),
    FUZZ((statistic<float, 1, 2, true, Doubles<1>>), okpiNormRel_L2_32f_C1MR),
    FUZZ((statistic<float, 3, 2, true, Doubles<1>>), okpiNormRel_L2_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 2, true, Doubles<1>>), okpiNormRel_L2_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 2, true, Doubles<1>>), okpiNormRel_L2_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 1, true, Doubles<1>>), okpiNorm_Inf_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 1, true, Doubles<1>>), okpiNorm_Inf_16u_C3CMR),
    FUZZ((statistic<float, 1, 1, true, Doubles<1>>), okpiNorm_Inf_32f_C1MR),
    FUZZ((statistic<float, 3, 1, true, Doubles<1>>), okpiNorm_Inf_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 1, true, Doubles<1>>), okpiNorm_Inf_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 1, true, Doubles<1>>), okpiNorm_Inf_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 1, true, Doubles<1>>), okpiNorm_L1_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 1, true, Doubles<1>>), okpiNorm_L1_16u_C3CMR),
    FUZZ((statistic<float, 1, 1, true, Doubles<1>>), okpiNorm_L1_32f_C1MR),
    FUZZ((statistic<float, 3, 1, true, Doubles<1>>), okpiNorm_L1_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 1, true, Doubles<1>>), okpiNorm_L1_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 1, true, Doubles<1>>), okpiNorm_L1_8u_C3CMR),
    FUZZ((statistic<uint16_t, 1, 1, true, Doubles<1>>), okpiNorm_L2_16u_C1MR),
    FUZZ((statistic<uint16_t, 3, 1, true, Doubles<1>>), okpiNorm_L2_16u_C3CMR),
    FUZZ((statistic<float, 1, 1, true, Doubles<1>>), okpiNorm_L2_32f_C1MR),
    FUZZ((statistic<float, 3, 1, true, Doubles<1>>), okpiNorm_L2_32f_C3CMR),
    FUZZ((statistic<uint8_t, 1, 1, true, Doubles<1>>), okpiNorm_L2_8u_C1MR),
    FUZZ((statistic<uint8_t, 3, 1, true, Doubles<1>>), okpiNorm_L2_8u_C3CMR),
};

}  // namespace

FUZZ_FAMILY(kShapes)
