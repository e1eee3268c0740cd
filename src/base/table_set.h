// A table set: one table pointer for each channel; null skips the channel.
#pragma once

#include "runtime/array.h"

namespace zlv {

class TableSet {
public:
    // Points every channel to the same table. False when memory is out; up to kInlineChannels none is needed.
    [[nodiscard]] bool Resize(u32 channels, const void* table)
    {
        if (channels > kInlineChannels && !more_.Resize(channels)) return false;
        tables_ = channels > kInlineChannels ? more_.GetData() : inline_;
        for (u32 c = 0; c < channels; ++c) tables_[c] = table;
        return true;
    }

    void Set(u32 channel, const void* table) { tables_[channel] = table; }

    const void* const* Data() const { return tables_; }

private:
    static constexpr u32 kInlineChannels = 8;

    const void* inline_[kInlineChannels];
    MVBuffer<const void*> more_;
    const void** tables_ = inline_;
};

}  // namespace zlv
