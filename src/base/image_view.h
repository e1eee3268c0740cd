// Pixels somewhere in memory: the image arguments of a call as one thing.
#pragma once

#include "platform/types.h"

namespace zlv {

// Channel counts of colour images: three colours, with or without alpha behind them.
constexpr bool IsColour(i64 channels) { return channels == 3 || channels == 4; }

// T is u8, or u16 in the 16-bit mode of the base layer, where the stride counts words.
template <class T>
struct ImageView {
    T* data;
    u32 width;
    u32 height;
    u32 channels;
    u32 stride;

    T* Row(u32 y) const { return data + size_t(y) * stride; }
    size_t SamplesPerRow() const { return size_t(width) * channels; }
    // Whether the rows follow each other without padding.
    bool IsContiguous() const { return SamplesPerRow() == stride; }
};

// What an image of bytes takes, from its first one to its last; it is not empty.
inline u64 BytesOf(const ImageView<const u8>& image)
{
    return u64(image.height - 1) * image.stride + image.SamplesPerRow();
}

}  // namespace zlv
