/* Inverts a gray gradient: the smallest complete program in C. Prints what it has done; ends with 1 if anything failed.
 *
 *     cc invert.c -lzlv40 -o invert
 */
#include <stdio.h>
#include <zlv40.h>

enum { WIDTH = 256, HEIGHT = 16, STRIDE = 260 }; /* rows may be longer than their pixels */

/* Called by effects that report progress; 0 would cancel. `data` is what was given to ZLV40_SetCallback. */
static uint32_t ShowProgress(uint32_t current, uint32_t total, uint64_t data)
{
    printf("%s: step %u of %u\n", (const char*)(uintptr_t)data, (unsigned)current + 1, (unsigned)total);
    return 1;
}

int main(void)
{
    static uint8_t pixels[HEIGHT * STRIDE];
    char version[ZLV40_VERSION_BYTES];
    int x, y;

    for (y = 0; y < HEIGHT; ++y)
        for (x = 0; x < WIDTH; ++x) pixels[y * STRIDE + x] = (uint8_t)x;

    printf("library: %s\n", ZLV40_GetLibVersion(version));
    ZLV40_SetCallback(ShowProgress, (uint64_t)(uintptr_t) "invert");
    if (!ZLV40_InvertImage(pixels, WIDTH, HEIGHT, 1, STRIDE, 0)) {
        fprintf(stderr, "invert failed with error %u\n", (unsigned)ZLV40_GetLastError());
        return 1;
    }
    ZLV40_SetCallback(NULL, 0);

    for (y = 0; y < HEIGHT; ++y)
        for (x = 0; x < WIDTH; ++x)
            if (pixels[y * STRIDE + x] != 255 - x) return 1;
    printf("left edge %d, right edge %d\n", pixels[0], pixels[WIDTH - 1]);

    /* A null buffer is refused, and the error tells why. */
    if (ZLV40_InvertImage(NULL, WIDTH, HEIGHT, 1, STRIDE, 0) || ZLV40_GetLastError() != ZLV40_ERROR_BAD_ARGUMENT)
        return 1;
    printf("a null buffer gives error %u\n", (unsigned)ZLV40_GetLastError());
    return 0;
}
