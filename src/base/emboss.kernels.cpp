// The compiler makes vectors of these loops: what would be branches in them is decided ahead of the division.
#include "base/emboss.kernels.h"

#include <cstring>

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kBlock = 128;

// A shade as a fraction: its square root is still to be taken of `squared`.
struct Fractions {
    i32 above[kBlock], squared[kBlock];
};

// Where the surface is flat a shade is the light's height, and 0 where it turns away from the light.
void MakeFractions(const EmbossLight& light, const u8* above, const u8* here, const u8* below, size_t count,
                   Fractions& fractions)
{
    const i32 lightX = light.x, lightY = light.y, lightZ = light.z, normalZ = light.normalZ;
    for (i64 i = 0; i < i64(count); ++i) {  // signed: the column before the first is read
        const i32 left = above[i - 1] + here[i - 1] + below[i - 1];
        const i32 right = above[i + 1] + here[i + 1] + below[i + 1];
        const i32 top = above[i - 1] + above[i] + above[i + 1];
        const i32 bottom = below[i - 1] + below[i] + below[i + 1];
        const i32 x = left - right, y = bottom - top;
        const i32 toLight = x * lightX + y * lightY + normalZ * lightZ;
        const bool isFlat = (x | y) == 0;
        fractions.above[i] = isFlat ? lightZ : toLight < 0 ? 0 : toLight;
        fractions.squared[i] = isFlat ? 1 : x * x + y * y + normalZ * normalZ;
    }
}

void ShadeRow(const EmbossLight& light, const BumpRows& rows, size_t count, i16* shades)
{
    Fractions fractions;
    for (size_t begin = 0; begin < count; begin += kBlock) {
        const size_t pixels = count - begin < kBlock ? count - begin : kBlock;
        MakeFractions(light, rows.above + begin, rows.here + begin, rows.below + begin, pixels, fractions);
        for (size_t i = 0; i < pixels; ++i) {
            shades[begin + i] = i16(i32(f64(fractions.above[i]) / __builtin_sqrt(f64(fractions.squared[i]))));
        }
    }
}

void PaintRow(const u8* texture, const i16* shades, size_t count, u8* out)
{
    constexpr size_t kChannels = 3, kLanes = 4;
    u16 lanes[kBlock * kChannels + kLanes];
    for (size_t begin = 0; begin < count; begin += kBlock) {
        const size_t pixels = count - begin < kBlock ? count - begin : kBlock, samples = pixels * kChannels;
        // Each shade four times, three of which the next one leaves.
        for (size_t i = 0; i < pixels; ++i) {
            const u64 copies = u64(u16(shades[begin + i])) * 0x0001000100010001u;
            std::memcpy(lanes + i * kChannels, &copies, sizeof copies);
        }
        const u8* const from = texture + begin * kChannels;
        u8* const to = out + begin * kChannels;
        // The lower half of a product is all that comes through.
        for (size_t k = 0; k < samples; ++k) to[k] = u8(u16(from[k] * lanes[k]) >> 8);
    }
}

}  // namespace

extern const EmbossKernels kEmbossKernels;
const EmbossKernels kEmbossKernels = {ShadeRow, PaintRow};

}  // namespace zlv::ZLV_TARGET
