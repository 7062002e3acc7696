// Gaussian kernels: the weights, and the spec that keeps them.
//
// The caller's spec area holds two records. The full-kernel record begins at its first byte: five 32-bit
// fields, then all taps at the next 16-byte boundary, as fixed-point numbers for integer images and as floats
// for float images. Behind it, at a 64-byte boundary, begins the half-kernel record: four 32-bit fields, then
// 64 bytes further on the outer half of the taps and the centre as floats. Boundaries are those of memory, so
// a spec stays where it was filled.
#pragma once

#include <cstdint>

#include "okpcv/types.h"

namespace okpcv {

struct FullKernelRecord {
    int32_t kernelSize;
    int32_t kernelOffset;  // of the taps, before they are moved up to the boundary
    int32_t dataType;
    uint32_t borderType;
    int32_t fractionBits;
};
struct HalfKernelRecord {
    int32_t kernelSize;
    int32_t kernelOffset;
    int32_t dataType;
    int32_t reserved;
};

// Bytes of a spec, and of its half-kernel record alone; both are enough at any address.
int64_t gaussianSpecBytes(int32_t kernelSize, DataTypeCode dataType);
int64_t gaussianHalfRecordBytes(int32_t kernelSize);
// Bytes that filling a spec takes beside it.
int64_t gaussianInitBytes(int32_t kernelSize);

// Fills a spec. The arguments must be valid.
void fillGaussianSpec(int32_t kernelSize, float sigma, BorderKind border, DataTypeCode dataType, void* pSpec,
                      void* pInitBuffer);

// Reads a spec that may be anything: the record, and the taps if the record says so.
FullKernelRecord readGaussianRecord(const void* pSpec);
const void* gaussianTaps(const void* pSpec);

}  // namespace okpcv
