// Column streams to unsigned 16-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

OKPCV_COLUMN_STREAMS(uint16_t)

}  // namespace okpcv
