// Drop shadows within a picture's own frame. The library makes a larger image; of that the frame is cut out again.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <memory>

namespace zlv {

// Named by the catalogue.
uint32_t CallDropShadow(const EffectCall& call);
uint32_t CallCardShadow(const EffectCall& call);

namespace {

struct FreeBlock {
    void operator()(uint8_t* block) const { ZLV40_FreeBlock(block); }
};

// An image that the library has made; its rows have no gaps.
struct MadeImage {
    std::unique_ptr<uint8_t, FreeBlock> samples;
    uint32_t width = 0, height = 0;
};

// The image, with its pixel `from` in the picture's corner. What it does not cover stays.
void Draw(const MadeImage& image, point from, const ImageGroup& picture)
{
    for (uint32_t y = 0; y < picture.height; ++y) {
        for (uint32_t x = 0; x < picture.width; ++x) {
            const int64_t imageX = int64_t{x} + from.x, imageY = int64_t{y} + from.y;
            if (imageX < 0 || imageY < 0 || imageX >= image.width || imageY >= image.height) continue;
            const size_t place = static_cast<size_t>(imageY) * image.width + static_cast<size_t>(imageX);
            std::copy_n(image.samples.get() + place * picture.channels, picture.channels,
                        picture.samples + size_t{y} * picture.stride + size_t{x} * picture.channels);
        }
    }
}

}  // namespace

// The shape stays where it is.
uint32_t CallDropShadow(const EffectCall& call)
{
    const ImageGroup& picture = call.target;
    MadeImage image;
    uint8_t* made = nullptr;
    point corner{}, shadowCorner{};
    const uint32_t result = ZLV40_DropShadowEx(
        picture.samples, picture.width, picture.height, picture.channels, picture.stride, &made, &image.width,
        &image.height, static_cast<int32_t>(call.values[0]), static_cast<int32_t>(call.values[1]), 0,
        static_cast<uint32_t>(call.values[3]), static_cast<int32_t>(call.values[2]), &corner, &shadowCorner,
        ZLV40_SHADOW_OF_ALPHA | ZLV40_SHADOW_TINTED);
    image.samples.reset(made);
    if (result) Draw(image, corner, picture);
    return result;
}

// The picture loses a margin, and the shadow lies in its place.
uint32_t CallCardShadow(const EffectCall& call)
{
    const ImageGroup& picture = call.target;
    const auto side = std::min(picture.width, picture.height);
    const uint32_t margin = std::min(static_cast<uint32_t>(call.values[0]), (side - 1) / 2);
    ImageGroup card = picture;
    card.width -= 2 * margin, card.height -= 2 * margin, card.stride = card.width * card.channels;
    const auto samples = std::make_unique<uint8_t[]>(size_t{card.stride} * card.height);
    for (uint32_t y = 0; y < card.height; ++y) {
        std::copy_n(picture.samples + size_t{y + margin} * picture.stride + size_t{margin} * picture.channels,
                    card.stride, samples.get() + size_t{y} * card.stride);
    }
    MadeImage image;
    uint8_t* made = nullptr;
    const auto ground = static_cast<uint32_t>(call.values[4]);
    const uint32_t result =
        ZLV40_DropShadow(samples.get(), card.width, card.height, card.channels, &made, &image.width, &image.height,
                         static_cast<int32_t>(call.values[1]), static_cast<int32_t>(call.values[2]), ground,
                         static_cast<uint32_t>(call.values[5]), static_cast<int32_t>(call.values[3]), 0);
    image.samples.reset(made);
    if (!result) return result;
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t i = 0; i < picture.width * picture.channels; ++i)
            picture.samples[size_t{y} * picture.stride + i] =
                static_cast<uint8_t>(ground >> 8 * (i % picture.channels));
    const auto middle = [](uint32_t imageSize, uint32_t size) {
        return static_cast<int32_t>((int64_t{imageSize} - size) / 2);
    };
    Draw(image, {middle(image.width, picture.width), middle(image.height, picture.height)}, picture);
    return result;
}

}  // namespace zlv
