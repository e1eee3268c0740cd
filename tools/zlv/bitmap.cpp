#include "bitmap.h"

#include <algorithm>

namespace zlv {
namespace {

constexpr uint32_t kByteBits = 8;

// The leftmost pixel stands in the highest bit.
uint8_t BitOf(uint32_t x) { return static_cast<uint8_t>(0x80u >> x % kByteBits); }

}  // namespace

Bitmap::Bitmap(uint32_t width, uint32_t height)
    : width_(width),
      height_(height),
      stride_(width / kByteBits + (width % kByteBits != 0 ? 1 : 0)),
      bytes_(size_t{stride_} * height)
{
}

Bitmap::Bitmap(const ImageGroup& picture, double level, uint32_t width) : Bitmap(width, picture.height)
{
    for (uint32_t y = 0; y < height_; ++y) {
        const uint8_t* const row = picture.samples + size_t{y} * picture.stride;
        for (uint32_t x = 0; x < width; ++x)
            if (row[std::min(x, picture.width - 1)] >= level) Set(x, y);
    }
}

void Bitmap::Set(uint32_t x, uint32_t y) { bytes_[size_t{y} * stride_ + x / kByteBits] |= BitOf(x); }

void Bitmap::Draw(const ImageGroup& picture) const
{
    for (uint32_t y = 0; y < picture.height; ++y) {
        const uint8_t* const row = bytes_.data() + size_t{y} * stride_;
        for (uint32_t x = 0; x < picture.width; ++x) {
            const bool isSet = (row[x / kByteBits] & BitOf(x)) != 0;
            picture.samples[size_t{y} * picture.stride + x] = isSet ? uint8_t{255} : uint8_t{0};
        }
    }
}

}  // namespace zlv
