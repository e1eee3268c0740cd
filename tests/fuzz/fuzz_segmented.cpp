// Calls the segmented colourise and the crackle on buffers of exactly the described size.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include "zlv40.h"

#include <algorithm>

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

enum Function : std::uint8_t { kSegmented, kShorterSegmented, kCrackle, kFunctions };

struct Sizes {
    std::uint32_t width, height;

    explicit Sizes(Input& input) : width(std::uint32_t(input.Size(40))), height(std::uint32_t(input.Size(20))) {}

    // Larger ones are refused before anybody looks at a pixel, but for planes that a test can't hold.
    bool IsPossible() const
    {
        const std::uint64_t pixels = std::uint64_t{width} * height;
        return pixels <= 1 << 16 || pixels > INT32_MAX;
    }
    std::size_t Bytes(std::uint64_t row, std::uint64_t stride) const
    {
        const bool isEmpty = width == 0 || height == 0 || std::uint64_t{width} * height > INT32_MAX;
        return isEmpty ? 1 : std::size_t((height - 1) * std::max(stride, row) + row);
    }
};

std::uint32_t CallSegmented(Function function, Input& input)
{
    const Sizes sizes(input);
    if (!sizes.IsPossible()) return 1;
    const auto stride = std::int32_t(input.Byte() & 1 ? input.Number(4) : sizes.width + input.Byte() % 8);
    if (stride > 1 << 16) return 1;
    const auto colors = std::uint32_t(input.Size(20)), filterSize = std::uint32_t(input.Size(40));
    const std::uint8_t mode = input.Byte() % 5, nulls = input.Byte();
    const std::uint64_t used = stride < 0 ? 0 : std::uint64_t(stride);
    const auto source = Buffer(sizes.Bytes(std::uint64_t{3} * sizes.width, 0), input);
    const auto destination = Buffer(sizes.Bytes(sizes.width, used), input), palette = Buffer(1024, input);
    std::uint8_t* const to = nulls % 16 == 15 ? nullptr : destination.get();
    std::uint8_t* const entries = nulls % 16 == 14 ? nullptr : palette.get();
    if (function == kSegmented) {
        return ZLV40_SegmentedColorizeRGBImage(source.get(), sizes.width, sizes.height, nulls, to, stride, entries,
                                               colors, mode, filterSize, nulls);
    }
    return ZLV40_SegmentedColorizeRGB(source.get(), sizes.width, sizes.height, nulls, to, stride, entries, colors,
                                      filterSize, mode % 2);
}

std::uint32_t CallCrackle(Input& input)
{
    const Sizes sizes(input);
    if (!sizes.IsPossible()) return 1;
    const std::uint64_t row = std::uint64_t{3} * sizes.width;
    const auto sourceStride = std::uint32_t(row + input.Byte() % 8), stride = std::uint32_t(row + input.Byte() % 8);
    const auto strength = std::int32_t(input.Size(120));
    const std::uint8_t kind = input.Byte() % 6, flags = input.Byte();
    const auto source = Buffer(sizes.Bytes(row, sourceStride), input);
    const auto destination = Buffer(sizes.Bytes(row, stride), input);
    return ZLV40_CrackleRGB(source.get(), sizes.width, sizes.height, sourceStride, destination.get(), stride, kind,
                            strength, flags);
}

}  // namespace

void zlvtest::FuzzSegmented(Input& input)
{
    const Function function = Function(input.Byte() % kFunctions);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 8);
    // A step that refuses leaves its code beside a result of 1, and an unknown crackle gives 0 with none.
    const std::uint32_t result = function == kCrackle ? CallCrackle(input) : CallSegmented(function, input);
    zlvtest::Require(result <= 1);
    zlvtest::NoteResult(input, result, ZLV40_GetLastError());
}
