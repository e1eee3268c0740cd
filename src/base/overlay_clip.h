// Where an overlay lies on a base, and what of it is to be seen.
#pragma once

#include "base/image_view.h"

#include <algorithm>

namespace zlv {

// The part of an overlay that lies on the base. Coordinates of the base and of the overlay begin at (left, top) and
// (fromLeft, fromTop) there.
struct OverlayClip {
    u32 left, top;
    u32 fromLeft, fromTop;
    size_t columns;
    u32 rows;

    bool IsEmpty() const { return columns == 0 || rows == 0; }
};

template <class Base, class Overlay>
OverlayClip ClipOverlay(const ImageView<Base>& base, const ImageView<Overlay>& overlay, i32 x, i32 y)
{
    // In 64 bits: a position and a size may add up to more than 32 hold.
    const auto limit = [](i64 value, u32 size) { return std::clamp<i64>(value, 0, size); };
    const i64 left = limit(x, base.width), right = limit(i64(x) + overlay.width, base.width);
    const i64 top = limit(y, base.height), bottom = limit(i64(y) + overlay.height, base.height);
    return {u32(left), u32(top), u32(left - x), u32(top - y), size_t(right - left), u32(bottom - top)};
}

// The two images of a call and what of them is to be seen, row by row.
template <class T>
struct OverlayScene {
    OverlayScene(const ImageView<T>& theBase, const ImageView<const T>& theOverlay, i32 x, i32 y)
        : base(theBase), overlay(theOverlay), clip(ClipOverlay(theBase, theOverlay, x, y))
    {
    }

    const ImageView<T> base;
    const ImageView<const T> overlay;
    const OverlayClip clip;

    T* BaseRow(u32 row) const { return base.Row(clip.top + row) + size_t(clip.left) * base.channels; }
    const T* OverlayRow(u32 row) const
    {
        return overlay.Row(clip.fromTop + row) + size_t(clip.fromLeft) * overlay.channels;
    }
    // The overlay turned over; each row from its first pixel.
    const T* FlippedOverlayRow(u32 row) const { return overlay.Row(overlay.height - 1 - clip.fromTop - row); }
    size_t SamplesPerRow() const { return clip.columns * base.channels; }
    // Whether the visible rows follow each other without a gap in both images.
    bool IsContiguous() const { return SamplesPerRow() == base.stride && SamplesPerRow() == overlay.stride; }
};

// How many of `count` elements a row may take at once: all of them, or one when the two stretches of memory overlap.
// Then each element sees what the ones before it have written, whatever the instruction set.
inline size_t StretchOf(const void* written, size_t writtenBytes, const void* read, size_t readBytes, size_t count)
{
    const u64 to = reinterpret_cast<u64>(written), from = reinterpret_cast<u64>(read);
    const bool isApart = to + writtenBytes <= from || from + readBytes <= to;
    return isApart ? count : 1;
}

}  // namespace zlv
