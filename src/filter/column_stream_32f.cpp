// Column streams to floats.
#include "filter/column_stream_code.h"

namespace okpcv {

ColumnStreamCode<float> columnStreamTo32f(int64_t length, bool symmetric) {
    return selectColumnStream<float>(length, symmetric);
}

}  // namespace okpcv
