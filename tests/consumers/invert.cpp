// A user's program in C++17: a callback, containers of its own, a second thread.
#include "zlv40.h"

#include <cstdio>
#include <thread>
#include <vector>

namespace {

uint32_t Continue(uint32_t, uint32_t, uint64_t) { return 1; }

bool InvertsItsOwnImage(uint8_t seed)
{
    std::vector<uint8_t> image(3 * 64 * 64);
    for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(seed + i * 7);
    const std::vector<uint8_t> before = image;

    ZLV40_SetCallback(Continue, seed);
    uint64_t callbackData = 0;
    if (ZLV40_GetCallback(&callbackData) != Continue || callbackData != seed) return false;
    if (!ZLV40_InvertImage(image.data(), 64, 64, 3, 3 * 64, 0)) return false;
    for (size_t i = 0; i < image.size(); ++i) {
        if (image[i] != 255 - before[i]) return false;
    }
    return true;
}

}  // namespace

int main()
{
    bool otherIsRight = false;
    std::thread other([&] { otherIsRight = InvertsItsOwnImage(9); });
    const bool isRight = InvertsItsOwnImage(4);
    other.join();
    std::puts(isRight && otherIsRight ? "the pixels are right" : "the pixels are wrong");
    return isRight && otherIsRight ? 0 : 1;
}
