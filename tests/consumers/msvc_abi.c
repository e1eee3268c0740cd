/* A user's program in the binary interface of Microsoft's tools, without any run-time of theirs: compiled by Clang,
 * linked by lld-link with zlv40.lib. Its exit status tells what was wrong; 100 is all right. */
#include "zlv40.h"

__declspec(dllimport) void __stdcall ExitProcess(unsigned int status);

enum { kPixels = 7, kChannels = 3, kBytes = kPixels * kChannels };

static uint8_t image[kBytes + 1];

static unsigned int Run(void)
{
    for (int i = 0; i <= kBytes; ++i) image[i] = (uint8_t)(i * 11);
    if (ZLV40_InvertImage(image, kPixels, 1, kChannels, kBytes, 0) != 1) return 1;
    for (int i = 0; i < kBytes; ++i) {
        if (image[i] != 255 - (uint8_t)(i * 11)) return 2;
    }
    if (image[kBytes] != (uint8_t)(kBytes * 11)) return 3;
    if (ZLV40_InvertImage(image, kPixels, 1, -1, kBytes, 0) != 0) return 4;
    if (ZLV40_GetLastError() != ZLV40_ERROR_BAD_ARGUMENT) return 5;
    ZLV40_FreeBlock(image[0] == 255 ? NULL : image);
    return 100;
}

void Start(void) { ExitProcess(Run()); }
