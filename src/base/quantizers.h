// The two searches for a palette, as steps of MV40_QuantizeRGBTo8Bit.
#pragma once

#include "base/image_view.h"
#include "runtime/base_call.h"

namespace zlv {

// Both look at a source of three or four bytes a pixel (its channels) and find at most `colors` entries, 1 to 256.
// False when the work was cancelled or has failed: it knows the code.

// Counts colours in cells of 8 x 8 x 8 and folds the rarest together until few enough are left. Writes 256 entries.
// Without memory it finds nothing and leaves the palette as it is; that is no failure.
[[nodiscard]] bool QuantizeByPopulation(BaseWork& work, const ImageView<const u8>& source, u32 colors, u8* palette,
                                        u32 flags);

// Grows an octree pixel by pixel and prunes it whenever it has too many leaves. Writes as many entries as it finds.
[[nodiscard]] bool QuantizeIncrementally(BaseWork& work, const ImageView<const u8>& source, u32 colors, u8* palette,
                                         u32 flags);

}  // namespace zlv
