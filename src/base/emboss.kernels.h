// Kernels of the relief: shades of a row, and a texture under them.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Light from one direction, and how high the surface's normal is: the larger, the flatter the surface.
struct EmbossLight {
    i32 x, y, z;
    i32 normalZ;
};

// A row of the bump map with its neighbours.
struct BumpRows {
    const u8 *above, *here, *below;
};

struct EmbossKernels {
    // How bright `count` pixels are, from -255 to 255. Reads the rows from -1 to count.
    void (*shadeRow)(const EmbossLight& light, const BumpRows& rows, size_t count, i16* shades);

    // out = (texture * shade) >> 8, its low byte, of `count` pixels of three bytes. Both may be the same memory.
    void (*paintRow)(const u8* texture, const i16* shades, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(EmbossKernels, kEmbossKernels);

}  // namespace zlv
