// The table pass: replaces every sample by its entry in its channel's table. Most tone effects are this pass.
#pragma once

#include "base/image_view.h"
#include "runtime/base_call.h"

namespace zlv {

// Maps an image in place. `luts` is an array of one table for each channel, 256 entries of u8 or, with
// kSixteenBitSamples in `flags`, 65536 of u16; a null table leaves its channel alone. Returns 1; or 0 with code 5 for a
// null buffer, or null luts of an image that has channels. Reports (row, height) after each row; a cancel gives code
// 14.
ZLV_BASE u32 MV40_ApplyLUTsToImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                   const void* const* luts, u32 flags);

// The pass as a step of another worker of the base layer.
template <class T>
u32 ApplyTables(MVThreadContext& context, Error& error, const ImageView<T>& image, const void* const* tables);

extern template u32 ApplyTables(MVThreadContext&, Error&, const ImageView<u8>&, const void* const*);
extern template u32 ApplyTables(MVThreadContext&, Error&, const ImageView<u16>&, const void* const*);

}  // namespace zlv
