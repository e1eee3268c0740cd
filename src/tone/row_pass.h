// An effect that goes through an image row by row and reports each.
#pragma once

#include "base/image_view.h"
#include "runtime/frame.h"

namespace zlv {

// Calls work(row, y) for the rows from the top and reports (y, height) after each. Returns 1; or 0 when the client
// cancels: the rows done so far stay.
template <class Work>
u32 ForRows(CallFrame& frame, const ImageView<u8>& image, Work work)
{
    if (image.width == 0 && !frame.MayReport()) return 1;  // there can be billions of empty rows
    for (u32 y = 0; y < image.height; ++y) {
        work(image.Row(y), y);
        if (!frame.Report(y, image.height)) return 0;
    }
    return 1;
}

}  // namespace zlv
