// Pixels that were computed as 32-bit words, channel 0 in the low byte, on their way into an image.
#pragma once

#include "platform/types.h"

#include <cstring>

namespace zlv {

// Writes the lowest `channels` bytes of each word, 1 to 4.
inline void StorePixels(const u32* words, size_t count, u32 channels, u8* out)
{
    switch (channels) {
    case 1:
        for (size_t i = 0; i < count; ++i) out[i] = u8(words[i]);
        return;
    case 2:
        for (size_t i = 0; i < count; ++i) std::memcpy(out + 2 * i, words + i, 2);
        return;
    case 3:
        // Whole words, each of which the next pixel overwrites where it goes too far.
        for (size_t i = 0; i + 1 < count; ++i) std::memcpy(out + 3 * i, words + i, sizeof *words);
        if (count > 0) std::memcpy(out + 3 * (count - 1), words + count - 1, 3);
        return;
    default: std::memcpy(out, words, count * sizeof *words); return;
    }
}

}  // namespace zlv
