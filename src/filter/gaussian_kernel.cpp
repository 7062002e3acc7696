#include "filter/gaussian_kernel.h"

#include <cmath>
#include <cstring>

#include "core/area.h"
#include "core/numbers.h"

namespace okpcv {
namespace {

constexpr int32_t kTapsOffset = 20;
constexpr int64_t kTapsAlignment = 16;
constexpr int32_t kHalfKernelOffset = 64;
static_assert(sizeof(FullKernelRecord) == kTapsOffset && sizeof(HalfKernelRecord) <= kHalfKernelOffset);

constexpr int64_t tapBytes(DataTypeCode dataType) {
    return dataType == DataType32f ? sizeof(float) : sizeof(int16_t);
}

// Where the parts of a spec are.
struct HalfParts {
    char* record;
    float* kernel;
};
HalfParts layOutHalf(Area& area, int32_t kernelSize) {
    HalfParts parts;
    parts.record = area.take<char>(kHalfKernelOffset, kHalfKernelOffset);
    parts.kernel = area.take<float>(kernelSize / 2 + 1, kHalfKernelOffset);
    return parts;
}
struct SpecParts {
    char* fullRecord;
    char* taps;  // of tapBytes() each
    HalfParts half;
};
SpecParts layOutSpec(Area& area, int32_t kernelSize, DataTypeCode dataType) {
    SpecParts parts;
    parts.fullRecord = area.take<char>(kTapsOffset);
    parts.taps = area.take<char>(kernelSize * tapBytes(dataType), kTapsAlignment);
    parts.half = layOutHalf(area, kernelSize);
    return parts;
}

// e^(-i^2 / (2 sigma^2)), every operation rounded to single precision in this order. `q` is 1 / sigma^2; it
// is infinite where the square of sigma is too small for the format, and then only the centre has weight.
float weight(int32_t i, float q) {
    if (i == 0) return 1.0F;
    const auto offset = static_cast<float>(i);
    return std::exp(offset * 0.5F * -offset * q);
}

// A weight as a fixed-point number, rounded half up. `one` is the number that stands for 1.
int64_t fixedPoint(float weight, float one, float reciprocal) {
    return static_cast<int64_t>(static_cast<double>(weight * one * reciprocal) + 0.5);
}

template <class T>
void put(char* taps, int64_t i, T value) {
    std::memcpy(taps + i * int64_t{sizeof(T)}, &value, sizeof value);
}

int32_t fractionBitsOf(DataTypeCode dataType) {
    switch (dataType) {
        case DataType8u:
            return 12;
        case DataType32f:
            return 0;
        default:
            return 15;
    }
}

}  // namespace

int64_t gaussianSpecBytes(int32_t kernelSize, DataTypeCode dataType) {
    Area counted;
    layOutSpec(counted, kernelSize, dataType);
    return counted.bytes();
}

int64_t gaussianHalfRecordBytes(int32_t kernelSize) {
    Area counted;
    layOutHalf(counted, kernelSize);
    return counted.bytes();
}

int64_t gaussianInitBytes(int32_t kernelSize) {
    Area counted;
    counted.take<float>(kernelSize / 2 + 1);
    return counted.bytes();
}

void fillGaussianSpec(int32_t kernelSize, float sigma, BorderKind border, DataTypeCode dataType, void* pSpec,
                      void* pInitBuffer) {
    const int32_t half = kernelSize / 2;
    Area scratch(pInitBuffer);
    float* const weights = scratch.take<float>(int64_t{half} + 1);  // of the offsets 0 to half
    const float q = 1.0F / (sigma * sigma);
    for (int32_t i = 0; i <= half; ++i) weights[i] = weight(i, q);

    // Each record has its own sum: they differ in the order of additions.
    float outer = 0;
    for (int32_t i = half; i >= 1; --i) outer += weights[i];
    const float halfReciprocal = 1.0F / (1.0F + 2.0F * outer);
    float sum = 0;
    for (int32_t i = -half; i <= half; ++i) sum += weights[i < 0 ? -i : i];
    const float reciprocal = 1.0F / sum;

    Area area(pSpec);
    const SpecParts parts = layOutSpec(area, kernelSize, dataType);
    const int32_t bits = fractionBitsOf(dataType);
    const FullKernelRecord full{kernelSize, kTapsOffset, dataType, border, bits};
    std::memcpy(parts.fullRecord, &full, sizeof full);
    const auto one = static_cast<float>(int32_t{1} << bits);
    for (int32_t i = 0; i < kernelSize; ++i) {
        const float w = weights[i < half ? half - i : i - half];
        switch (dataType) {
            case DataType32f:
                put(parts.taps, i, w * reciprocal);
                break;
            case DataType16u:
                put(parts.taps, i, saturate<uint16_t>(fixedPoint(w, one, reciprocal)));
                break;
            default:
                put(parts.taps, i, saturate<int16_t>(fixedPoint(w, one, reciprocal)));
        }
    }

    const HalfKernelRecord halfRecord{kernelSize, kHalfKernelOffset, dataType, 0};
    std::memcpy(parts.half.record, &halfRecord, sizeof halfRecord);
    for (int32_t i = 0; i < half; ++i) parts.half.kernel[i] = weights[half - i] * halfReciprocal;
    parts.half.kernel[half] = halfReciprocal;
}

FullKernelRecord readGaussianRecord(const void* pSpec) {
    FullKernelRecord record;
    std::memcpy(&record, pSpec, sizeof record);
    return record;
}

const void* gaussianTaps(const void* pSpec) {
    // They begin at the same place whatever their number and type.
    Area area(const_cast<void*>(pSpec));
    return layOutSpec(area, 0, DataType8u).taps;
}

}  // namespace okpcv
