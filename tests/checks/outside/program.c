/* Calls the library from C: an absolute difference, and the version. */
#include <okpcv.h>
#include <stdio.h>

int main(void) {
    const uint8_t a[6] = {1, 2, 3, 4, 5, 6}, b[6] = {6, 5, 4, 3, 2, 1}, expected[6] = {5, 3, 1, 1, 3, 5};
    uint8_t difference[6] = {0};
    RoiSize size = {3, 2};
    if (okpiAbsDiff_8u_C1R(a, 3, b, 3, difference, 3, size) != okpStatusOk) return 1;
    for (int i = 0; i < 6; i++) {
        if (difference[i] != expected[i]) return 1;
    }
    printf("%s %s\n", okpcvGetLibVersion()->name, okpcvGetLibVersion()->version);
    return 0;
}
