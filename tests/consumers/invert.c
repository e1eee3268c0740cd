/* A user's program in plain C: inverts an image with padded rows and looks at every byte. */
#include "zlv40.h"

#include <stdio.h>
#include <string.h>

enum { kWidth = 5, kHeight = 3, kChannels = 4, kStride = 24 };

static int CheckPixels(const uint8_t* image)
{
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kStride; ++x) {
            const int before = y * kStride + x;
            const int isAlpha = x % kChannels == 3;
            const int isPadding = x >= kWidth * kChannels;
            const int wanted = isAlpha || isPadding ? before : 255 - before;
            if (image[y * kStride + x] != wanted) {
                printf("byte %d of row %d is %d, not %d\n", x, y, image[y * kStride + x], wanted);
                return 0;
            }
        }
    }
    return 1;
}

int main(void)
{
    uint8_t image[kHeight * kStride];
    char version[ZLV40_VERSION_BYTES];

    for (int i = 0; i < kHeight * kStride; ++i) image[i] = (uint8_t)i;
    if (ZLV40_InvertImage(image, kWidth, kHeight, kChannels, kStride, ZLV40_PROTECT_ALPHA) != 1) return 1;
    if (ZLV40_GetLastError() != ZLV40_ERROR_NONE) return 2;
    if (!CheckPixels(image)) return 3;

    if (ZLV40_InvertImage(NULL, kWidth, kHeight, kChannels, kStride, 0) != 0) return 4;
    if (ZLV40_GetLastError() != ZLV40_ERROR_BAD_ARGUMENT) return 5;

    memset(version, '?', sizeof version);
    if (ZLV40_GetLibVersion(version) != version || version[sizeof version - 1] != '\0') return 6;
    ZLV40_FreeBlock(NULL);
    printf("%s: the pixels are right\n", version);
    return 0;
}
