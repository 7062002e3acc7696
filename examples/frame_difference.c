/* Finds what moved between two frames: the absolute difference of the frames, then the box around every pixel
   that changed by more than a threshold. */
#include <okpcv.h>
#include <stdio.h>

enum { WIDTH = 320, HEIGHT = 240, THRESHOLD = 25 };

/* A dim gradient with a bright square of 40 x 40 pixels at (left, top). */
static void drawFrame(uint8_t frame[HEIGHT][WIDTH], int left, int top) {
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) {
            int inSquare = x >= left && x < left + 40 && y >= top && y < top + 40;
            frame[y][x] = inSquare ? 200 : (uint8_t)(x / 4);
        }
    }
}

int main(void) {
    static uint8_t before[HEIGHT][WIDTH], after[HEIGHT][WIDTH], difference[HEIGHT][WIDTH];
    drawFrame(before, 100, 80);
    drawFrame(after, 112, 86);

    RoiSize size = {WIDTH, HEIGHT};
    okpStatus status = okpiAbsDiff_8u_C1R(before[0], WIDTH, after[0], WIDTH, difference[0], WIDTH, size);
    if (status != okpStatusOk) {
        fprintf(stderr, "okpiAbsDiff_8u_C1R failed with status %d\n", (int)status);
        return 1;
    }

    int changed = 0, left = WIDTH, top = HEIGHT, right = -1, bottom = -1;
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) {
            if (difference[y][x] <= THRESHOLD) continue;
            changed++;
            if (x < left) left = x;
            if (x > right) right = x;
            if (y < top) top = y;
            if (y > bottom) bottom = y;
        }
    }
    printf("%d pixels changed, all between (%d, %d) and (%d, %d)\n", changed, left, top, right, bottom);
    return 0;
}
