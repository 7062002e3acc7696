// Column streams to unsigned 8-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

OKPCV_COLUMN_STREAMS(uint8_t)

}  // namespace okpcv
