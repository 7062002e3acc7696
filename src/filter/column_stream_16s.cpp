// Column streams to signed 16-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

OKPCV_COLUMN_STREAMS(int16_t)

}  // namespace okpcv
