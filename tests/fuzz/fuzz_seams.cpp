// Takes seams out of pictures and puts them in, on one thread and on two.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <algorithm>

void zlvtest::FuzzSeams(Input& input)
{
    const std::uint32_t width = input.Byte() % 40, height = input.Byte() % 20, channels = 3 + input.Byte() % 2;
    const std::uint32_t flags = input.Byte() % 4;
    // Two threads are started for every seam and wait for each other in every row.
    const std::int32_t mostSeams = flags & ZLV40_ONE_THREAD ? 40 : 4;
    const std::int32_t seams = std::int8_t(input.Byte()) % (mostSeams + 1);
    const auto penalty = std::uint16_t(input.Number(2));
    const std::uint32_t result = std::uint32_t(std::max<std::int64_t>(std::int64_t{width} + seams, 0));
    const std::uint32_t sourceStride = width * channels + input.Byte() % 8, maskStride = width + input.Byte() % 4;
    // Rows may be shorter than the result's.
    const std::uint32_t stride = input.Byte() % 8 == 7 ? input.Byte() : result * channels + input.Byte() % 8;
    const std::uint8_t nulls = input.Byte();
    const bool isInPlace = nulls & 0x10 && stride <= sourceStride;

    const Buffer source(std::size_t(sourceStride) * height, input), mask(std::size_t(maskStride) * height, input);
    const Buffer destination(std::size_t(stride) * height, input);
    std::uint8_t* const to = isInPlace ? source.get() : destination.get();
    const Listener listener(input, kExports, input.Byte() % 32);
    const std::uint32_t answer = ZLV40_SeamCarve(nulls == 0x7F ? nullptr : source.get(), width, height, channels,
                                                 sourceStride, nulls & 1 ? nullptr : mask.get(), maskStride,
                                                 nulls == 0x7E ? nullptr : to, stride, seams, penalty, flags);
    RequireResult(input, "SeamCarve", answer, ZLV40_GetLastError());
}
