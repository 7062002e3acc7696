// Column streams to unsigned 8-bit integers.
#include "filter/column_stream_code.h"

namespace okpcv {

ColumnStreamCode<uint8_t> columnStreamTo8u(int64_t length, bool symmetric) {
    return selectColumnStream<uint8_t>(length, symmetric);
}

}  // namespace okpcv
