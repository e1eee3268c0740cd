// Reflects a picture of any size with any numbers, on buffers of exactly the size that the call describes.
#include "fuzz/topics.h"

#include "zlv40.h"

void zlvtest::FuzzReflection(Input& input)
{
    constexpr std::uint32_t kLargestPadding = 5;
    const std::uint32_t width = input.Byte() % 40, height = input.Byte() % 40;
    const std::uint32_t splitRow = input.Byte() % 48, reflectionHeight = input.Byte() % 40;
    const std::uint32_t row = width * 3, sourceStride = row + input.Byte() % kLargestPadding;
    const std::uint32_t destinationStride = row + input.Byte() % kLargestPadding;
    const std::uint8_t nulls = input.Byte() % 16, channels = input.Byte() % 16;
    const std::uint32_t color = std::uint32_t(input.Number(4)), fadeShape = input.Byte() % 4;
    const double fadeStart = input.Real(), fadeEnd = input.Real(), ripple = input.Real();
    const std::uint32_t rippleScale = std::uint32_t(input.Size(30)), flags = input.Byte();

    const auto size = [row](std::size_t rows, std::size_t stride) { return rows ? (rows - 1) * stride + row : 0; };
    const auto destination = zlvtest::Buffer(size(splitRow + reflectionHeight, destinationStride), input);
    const auto source = zlvtest::Buffer(size(height, sourceStride), input);
    const std::uint32_t result =
        ZLV40_ReflectImage(nulls == 1 ? nullptr : source.get(), width, height, channels ? 3 : 4, sourceStride,
                           nulls == 2 ? nullptr : destination.get(), destinationStride, splitRow, reflectionHeight,
                           fadeStart, fadeEnd, color, fadeShape, ripple, rippleScale, flags);
    zlvtest::RequireResult(input, "ReflectImage", result, ZLV40_GetLastError());
}
