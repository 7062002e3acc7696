// Column streams to unsigned 16-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

ColumnStreamCode<uint16_t> columnStreamTo16u(int64_t length, bool symmetric) {
    return selectColumnStream<uint16_t>(length, symmetric);
}

}  // namespace okpcv
