// Pictures of one bit a pixel, as the library's 1-bit functions take them.
#ifndef ZLV_TOOLS_BITMAP_H
#define ZLV_TOOLS_BITMAP_H

#include "catalogue.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zlv {

class Bitmap {
public:
    // All bits are clear.
    Bitmap(uint32_t width, uint32_t height);

    // Set where a gray picture is as light as `level`. Columns behind its last one repeat that.
    Bitmap(const ImageGroup& picture, double level, uint32_t width);
    Bitmap(const ImageGroup& picture, double level) : Bitmap(picture, level, picture.width) {}

    uint32_t Width() const { return width_; }
    uint32_t Height() const { return height_; }
    uint32_t Stride() const { return stride_; }
    uint32_t Size() const { return static_cast<uint32_t>(bytes_.size()); }
    const uint8_t* Bytes() const { return bytes_.data(); }
    uint8_t* Bytes() { return bytes_.data(); }

    void Set(uint32_t x, uint32_t y);

    // White where a bit is set, black elsewhere. The picture may be narrower.
    void Draw(const ImageGroup& picture) const;

private:
    uint32_t width_, height_, stride_;
    std::vector<uint8_t> bytes_;
};

}  // namespace zlv

#endif
