// A real photograph, for operations whose time depends on the picture.
#ifndef OKPCV_BENCH_PHOTOGRAPH_H
#define OKPCV_BENCH_PHOTOGRAPH_H

#include "support/image.h"

namespace bench {

// The photographer of examples/images, mirrored at its sides as often as it takes to fill the size. Throws
// std::runtime_error when the file cannot be read.
Image<uint8_t> photograph(RoiSize size);

}  // namespace bench

#endif  // OKPCV_BENCH_PHOTOGRAPH_H
