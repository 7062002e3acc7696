// Column streams to floats.
#include "filter/column_stream_code.h"

namespace okpcv {

OKPCV_COLUMN_STREAMS(float)

}  // namespace okpcv
