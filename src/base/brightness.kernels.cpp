// Shifts are looked up pixel by pixel and laid out sample by sample; the compiler makes vectors of what follows.
#include "base/brightness.kernels.h"

#include <cstring>

namespace zlv::ZLV_TARGET {

namespace {

template <size_t kChannels>
void ShiftRow(u8* pixels, size_t count, const BrightnessShift* shifts)
{
    constexpr size_t kBlock = 128, kLanes = 4;
    i16 lanes[kBlock * kChannels + kLanes];
    for (size_t begin = 0; begin < count; begin += kBlock) {
        const size_t taken = count - begin < kBlock ? count - begin : kBlock, samples = taken * kChannels;
        u8* const block = pixels + begin * kChannels;
        for (size_t i = 0; i < taken; ++i) {
            const u8* const pixel = block + i * kChannels;
            // Of three samples the next pixel writes over the fourth.
            std::memcpy(lanes + i * kChannels, shifts + (pixel[0] + pixel[1] + pixel[2]), sizeof(BrightnessShift));
        }
        for (size_t k = 0; k < samples; ++k) {
            const i16 moved = i16(block[k] - lanes[k]);
            const i16 notNegative = moved < 0 ? i16(0) : moved;
            block[k] = u8(notNegative > 255 ? i16(255) : notNegative);
        }
    }
}

}  // namespace

extern const BrightnessKernels kBrightnessKernels;
const BrightnessKernels kBrightnessKernels = {ShiftRow<3>, ShiftRow<4>};

}  // namespace zlv::ZLV_TARGET
