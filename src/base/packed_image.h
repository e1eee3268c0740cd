// Pictures of an effect's own, between its steps.
#pragma once

#include "runtime/array.h"

namespace zlv {

// Its rows have no padding.
class PackedImage {
public:
    // False when it would have no bytes or memory is out: effects treat them alike. The bytes are not cleared.
    [[nodiscard]] bool Resize(u32 width, u32 height, u32 channels)
    {
        const u64 rowBytes = u64(width) * channels;
        stride_ = u32(rowBytes);
        return stride_ == rowBytes && bytes_.Resize(rowBytes * height);
    }

    u8* Data() { return bytes_.GetData(); }
    u64 Size() const { return bytes_.GetCount(); }
    u32 Stride() const { return stride_; }
    // Gives the memory back.
    void Clear() { bytes_.Clear(); }

private:
    MVBuffer<u8> bytes_;
    u32 stride_ = 0;
};

}  // namespace zlv
