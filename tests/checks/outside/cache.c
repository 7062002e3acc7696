/* Calls the companion library. */
#include <okpcore.h>

int main(void) {
    int32_t bytes = 0;
    return okpGetMaxCacheSizeB(&bytes) == okpStatusOk && bytes > 0 ? 0 : 1;
}
