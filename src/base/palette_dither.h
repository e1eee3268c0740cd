// The mapping with diffusion as a step of another function.
#pragma once

#include "base/image_view.h"
#include "runtime/base_call.h"

namespace zlv {

struct DitherSettings {
    u32 colors;  // entries of the palette
    const u8* palette;
    u32 ditherKind;
    u8 limit;
    u32 flags;
};

// The work of MV40_RGBTo8BitDithered. Returns 1, or 0 with the code in `error`.
u32 MapWithDiffusion(MVThreadContext& context, Error& error, const ImageView<const u8>& source,
                     const ImageView<u8>& destination, const DitherSettings& settings);

}  // namespace zlv
