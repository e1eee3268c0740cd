// Throws the shadows of pictures of any kind in any direction, and reads every byte of the new pictures.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

// A new picture is larger by the shadow's distance and its blur: they can't be of any size.
struct Shadow {
    std::int32_t distance, blurPercent, angle;
    std::uint32_t background, color, flags;

    explicit Shadow(Input& input)
        : distance(std::int8_t(input.Byte())),
          blurPercent(input.Byte() % 8 == 7 ? -std::int32_t(input.Number(4) >> 1)
                                            : std::int16_t(input.Number(2)) % 400),
          angle(input.Byte() % 8 == 7 ? std::int32_t(input.Number(4)) : std::int16_t(input.Number(2)) % 360),
          background(std::uint32_t(input.Number(4))),
          color(std::uint32_t(input.Number(4))),
          flags(std::uint32_t(input.Size(4)))
    {
    }
};

void NoteCorner(Input& input, const point& corner)
{
    input.GetHost().Note(reinterpret_cast<const std::uint8_t*>(&corner), sizeof corner);
}

}  // namespace

void zlvtest::FuzzShadows(Input& input)
{
    const std::uint32_t width = input.Byte() % 40, height = input.Byte() % 30, channels = input.Byte() % 6;
    const bool isPacked = input.Byte() & 1;
    const std::uint32_t stride = width * channels + (isPacked ? 0 : input.Byte() % 8);
    const Shadow shadow(input);
    const std::uint8_t nulls = input.Byte();
    // With the rectangle rows are read as if they were packed.
    const Buffer source(height ? std::size_t(stride) * (height - 1) + width * channels : 0, input);
    const std::uint8_t* const from = nulls == 0x7F ? nullptr : source.get();

    std::uint8_t* image = nullptr;
    std::uint32_t size[2] = {};
    point corners[2] = {};
    const Listener listener(input, kExports, input.Byte() % 16);
    const std::uint32_t result =
        isPacked ? ZLV40_DropShadow(from, width, height, channels, nulls == 0x7E ? nullptr : &image, &size[0],
                                    nulls == 0x7D ? nullptr : &size[1], shadow.distance, shadow.blurPercent,
                                    shadow.background, shadow.color, shadow.angle, shadow.flags)
                 : ZLV40_DropShadowEx(from, width, height, channels, stride, nulls == 0x7E ? nullptr : &image, &size[0],
                                      nulls == 0x7D ? nullptr : &size[1], shadow.distance, shadow.blurPercent,
                                      shadow.background, shadow.color, shadow.angle, nulls & 1 ? nullptr : &corners[0],
                                      nulls & 2 ? nullptr : &corners[1], shadow.flags);
    RequireResult(input, "DropShadow", result, ZLV40_GetLastError());
    Require((result == 1) == (image != nullptr) && (result == 1) == (size[0] != 0) && (result == 1) == (size[1] != 0));
    if (result == 0) return;
    input.GetHost().Note(image, std::size_t(size[0]) * size[1] * channels);
    for (const point& corner : corners) NoteCorner(input, corner);
    image[std::size_t(size[0]) * size[1] * channels - 1] = 1;
    ZLV40_FreeBlock(image);
}
