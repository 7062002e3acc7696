// Column streams to signed 16-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

ColumnStreamCode<int16_t> columnStreamTo16s(int64_t length, bool symmetric) {
    return selectColumnStream<int16_t>(length, symmetric);
}

}  // namespace okpcv
