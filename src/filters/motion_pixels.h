// Pixels of a row that walk together around an image's centre.
#pragma once

#include "filters/motion_blur.h"

namespace zlv {

// Those from low to high - 1.
struct Stretch {
    size_t low, high;

    bool operator==(const Stretch&) const = default;
    bool IsEmpty() const { return low >= high; }
    size_t Count() const { return high - low; }
};

// A pixel: half the size in whole numbers.
struct Centre {
    explicit Centre(const MotionImages& images) : x(i32(images.src.width / 2)), y(i32(images.src.height / 2)) {}
    f64 x, y;
};

// Whether the kernels that find offsets can do it in this image.
inline bool HasShortOffsets(const ImageView<const u8>& image) { return BytesOf(image) >> 32 == 0; }

// Positions are truncated: what lies between -1 and 0 is inside.
inline bool IsInside(f64 position, u32 size) { return position > -1 && position < f64(size); }

}  // namespace zlv
