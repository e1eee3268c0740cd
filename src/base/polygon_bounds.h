// The part of an image that a polygon can reach.
#pragma once

#include "base/image_view.h"
#include "base/polygon_scan.h"

namespace zlv {

// From the polygon's truncated coordinates, each limited to the image; the right column and the bottom row belong to
// it.
struct PolygonBounds {
    u32 left, top, right, bottom;
};

// The image has pixels, the coordinates are in range.
inline PolygonBounds BoundsOf(const f64* points, u32 count, const ImageView<u8>& image)
{
    const auto limit = [](f64 coordinate, u32 size) {
        if (!(coordinate > 0)) return 0u;
        return u32(std::min(coordinate, f64(size - 1)));
    };
    PolygonBounds bounds = {image.width, image.height, 0, 0};
    for (size_t i = 0; i < count; ++i) {
        const u32 x = limit(points[2 * i], image.width), y = limit(points[2 * i + 1], image.height);
        bounds.left = std::min(bounds.left, x);
        bounds.right = std::max(bounds.right, x);
        bounds.top = std::min(bounds.top, y);
        bounds.bottom = std::max(bounds.bottom, y);
    }
    return bounds;
}

}  // namespace zlv
